/*
 * primopt.cpp - the primal simplex driver: the set-up of a run, the main
 * loop with its stopping tests, and the end of a run (removal of the
 * perturbation and shifts, the final recomputation).
 *
 * Phase 1 minimises the sum of infeasibilities of the basic variables
 * through costs of -1 and +1; phase 2 the true objective.
 */
#include <cmath>

#include "formats/bas.h"
#include "frame/callback.h"
#include "simplex/dual.h"

/* How many candidates a pivot round may try, by the size of the model. */
int candidates_for(int size) {
    static const int lim[] = {100, 500, 1000, 5000, 10000, 100000};
    static const int val[] = {5, 10, 15, 20, 25, 30};
    for (int k = 0; k < 6; k++)
        if (size < lim[k]) return val[k];
    return 35;
}

static void load_run_parameters(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    primal_state *ps = lp->primal;
    ps->feas_tol = par_dbl(env, 1016);
    ps->opt_tol = par_dbl(env, 1014);
    ps->p1_tol = 1e-7;
    double h = par_dbl(env, 1050);
    ps->harris_delta = h < ps->feas_tol ? h : ps->feas_tol;
    ps->harris_base = ps->harris_delta;
    ps->infeas_limit = s->m * ps->feas_tol;
    ps->log.display = par_int(env, 1019);
    ps->it_limit = par_int(env, 1020);
    ps->time_limit = par_dbl(env, 1039);
    ps->obj_limit = s->sense > 0 ? par_dbl(env, 1025) : -par_dbl(env, 1026);
    ps->candidates_max = candidates_for(s->m);
    ps->perturb.size = par_dbl(env, 1015);
    ps->perturb.shift_limit = PR_NOLIMIT;
    ps->shift_on = 1;
    ps->rw.no_length = par_int(env, 1068);
    ps->ban_epoch = PR_NOLIMIT;
    ps->log.last_phase_logged = 0;
    ps->log.entered = ps->log.left = -1;
    ps->fast = par_int(env, 1017) > 0;
    ps->log.scaled = lp->lpdata->colscale != nullptr;
}

/* The user's progress function; nonzero asks for a stop. */
static int call_back(TRVenv env, TRVlp lp) {
    return cb_call(env, PAR_LP, lp->handle, TRV_CALLBACK_PRIMAL);
}

/* Sum of the dual infeasibilities of the nonbasic variables. */
static double dual_infeas(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    double sum = 0.0;
    for (int j = 0; j < s->ntotal; j++) {
        if (it->status[j] == 1) continue;
        double a = primal_attract(it, j, primal_dj(lp, j));
        if (a < 0.0) sum -= a;
    }
    return sum;
}

/* The figures of a running primal for TRVgetcallbackinfo. */
static int primal_cbinfo(TRVlp lp, int wherefrom, int whichinfo, void *result) {
    primal_state *ps = lp->primal;
    if (wherefrom != 1 || ps == nullptr) return 1006;
    double *r = static_cast<double *>(result);
    switch (whichinfo) {
    case 1:
        *r = lp->solver->splp.sense * (ps->phase == 1 ? primal_objective(lp) : ps->objective);
        return 0;
    case 3:
        if (ps->phase == 2) primal_composite(lp);
        *r = ps->sum_inf;
        return 0;
    case 4:
        *r = dual_infeas(lp);
        return 0;
    case 5:
        *static_cast<int *>(result) = ps->phase - 1;
        return 0;
    default:
        return 1003;
    }
}

/* Objective limit of phase 2: status 4 once the objective, recomputed on a
 * fresh factorization, passes it. */
static int objective_limit(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    if (ps->phase != 2 || ps->obj_limit <= -PR_BIG) return 0;
    if (ps->objective >= ps->obj_limit) return 0;
    if (ps->fast) {
        ps->status = LPS_OBJLIM;
        return 0;
    }
    if (ps->updates > 0) {
        int st = primal_refactor(env, lp);
        if (st != 0) return st;
    }
    ps->objective = primal_objective(lp);
    if (ps->phase == 2 && ps->objective < ps->obj_limit) ps->status = LPS_OBJLIM;
    return 0;
}

static void elapsed_print(TRVenv env, TRVlp lp) {
    iter_log_elapsed(env, &lp->primal->log, lp->solver->it.n_it, lp->primal->start_time);
}

/* The automatic switch from partial pricing to devex, weighing the work of
 * the entering columns against the size of the factorization. Value -1 of
 * the pricing family means partial pricing that never switches. */
static int devex_switch(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    if (ps->pricing != 0 || ps->partial == nullptr) return 0;
    const simplex_lp *s = &lp->solver->splp;
    const lu_record *lu = lp->factor;
    double v = static_cast<double>(lu->nz_lu) + 1e-10;
    double w = static_cast<double>(ps->work_pivots) - static_cast<double>(lu->nz_basis);
    double i = lp->solver->it.n_it, n = s->nstruct + 1e-10;
    bool go;
    if (ps->perturb.active && !par_int(env, 1027) && w < 5.0 * v) go = true;
    else if (ps->phase == 2 && 9.0 * v > 4.0 * w) go = true;
    else if (s->m >= 1000 && 2.0 * v > 3.0 * w) go = true;
    else go = w / v < 2.0 * (i / n);
    if (!go) return 0;
    int st = primal_price_init(env, lp, 1);
    if (st == 1001) {
        TRVmsg(env->errchannel, "Not enough memory for devex.\n");
        primal_price_init(env, lp, 0);
        ps->pricing = -1;
        return 0;
    }
    if (st != 0) return st;
    primal_compute_d(lp);
    if (ps->log.display > 0)
        TRVmsg(env->reschannel, i > 0 ? "Switched to devex.\n" : "Using devex.\n");
    return 0;
}

/* The main loop until a decision, a limit or an error. */
static int main_loop(TRVenv env, TRVlp lp) {
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    progress_reset(lp);
    while (true) {
        if (it->n_it >= ps->it_limit || ps->abort) break;
        if (call_back(env, lp) != 0) {
            ps->abort = 1;
            break;
        }
        if (it->n_it > 0 && it->n_it % 25 == 0 && ps->time_limit < PR_BIG &&
            env_time(env) - ps->start_time >= ps->time_limit) {
            ps->abort = 2;
            break;
        }
        int phase_before = ps->phase;
        int st = devex_switch(env, lp);
        if (st != 0) return st;
        st = primal_iterate(env, lp);
        if (st != 0) return st;
        if (ps->status != 0) break;
        st = objective_limit(env, lp);
        if (st != 0) return st;
        if (ps->status != 0) break;
        start_periodic(env, lp, it->n_it);
        elapsed_print(env, lp);
        st = progress_check(env, lp);
        if (st != 0) return st;
        it->n_it++;
        if (phase_before == 1) ps->n_it_phase1++;
        if (ps->status != 0) break;
        if (ps->log.display >= 2) primal_log_detail(env, lp);
        else if (ps->log.display == 1) primal_log(env, lp, 0);
    }
    return 0;
}

/* Status of a run that stopped on a limit or an abort. */
static int limit_status(const primal_state *ps) {
    bool feas = ps->phase == 2;
    if (ps->abort == 1) return feas ? LPS_ABORT_FEAS : LPS_ABORT_INFEAS;
    if (ps->abort == 2) return feas ? LPS_TIME_FEAS : LPS_TIME_INFEAS;
    return feas ? LPS_IT_FEAS : LPS_IT_INFEAS;
}

/* Tolerance reset after an apparent optimum reached with loosened working
 * tolerances; returns 1 when the main loop must run again. */
static int tolerance_reset(TRVenv env, TRVlp lp, int *events) {
    primal_state *ps = lp->primal;
    if (*events >= 2) return 0;
    bool loose = ps->feas_tol > par_dbl(env, 1016) + 1e-10 || ps->opt_tol > par_dbl(env, 1014) + 1e-10;
    bool p1 = ps->status == LPS_INFEASIBLE && ps->p1_tol > 1e-7;
    if (!(loose && ps->status == LPS_OPTIMAL) && !p1) return 0;
    (*events)++;
    ps->feas_tol = par_dbl(env, 1016);
    ps->opt_tol = par_dbl(env, 1014);
    ps->p1_tol = 1e-7;
    if (ps->harris_delta > ps->feas_tol) ps->harris_delta = ps->feas_tol;
    ps->status = 0;
    return 1;
}

/* A scaled optimum whose basic values break a bound of the caller's model
 * by more than the tolerance. */
static bool unscaled_infeasible(TRVlp lp) {
    const lp_data *d = lp->lpdata;
    if (d->colscale == nullptr) return false;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const primal_state *ps = lp->primal;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        double x = it->x[j], v = 0.0;
        if (s->has_lower[j] && x < s->lower[j]) v = s->lower[j] - x;
        if (s->has_upper[j] && x > s->upper[j]) v = x - s->upper[j];
        if (v == 0.0) continue;
        v = j < s->nstruct ? v / d->colscale[j] : v * d->rowscale[s->row_of_var[j]];
        if (v > ps->feas_tol) return true;
    }
    return false;
}

/* Largest dual infeasibility of the nonbasic variables in the caller's
 * units; 0 for an unscaled model. */
static double unscaled_dual_infeas(TRVlp lp) {
    const lp_data *d = lp->lpdata;
    if (d->colscale == nullptr) return 0.0;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const primal_state *ps = lp->primal;
    double worst = 0.0;
    for (int j = 0; j < s->ntotal; j++) {
        if (it->status[j] == 1 || it->ban[j] != 0) continue;
        if (it->status[j] != 3 && ps->upper[j] <= ps->lower[j]) continue;
        double a = -primal_attract(it, j, it->d[j]);
        if (a <= 0.0) continue;
        a *= j < s->nstruct ? d->colscale[j] : 1.0 / d->rowscale[s->row_of_var[j]];
        if (a > worst) worst = a;
    }
    return worst;
}

/* The variables a repair fixed are let go at a decision (optimal or
 * infeasible): the decision stands when none of them can improve it;
 * otherwise the run goes on with them, a few rounds at most. Returns 1
 * when the main loop must run again. */
static int release_dropped(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    int released = 0;
    /* judged at the caller's tolerance: the run may have tightened its
     * own for a closer look */
    double tol = ps->phase == 1 ? std::fmax(ps->p1_tol, 1e-7) : std::fmax(ps->opt_tol, par_dbl(env, 1014));
    int v = release_fixed(env, lp, tol, primal_dj, &released);
    if (released == 0) return 0;
    primal_price_reset(lp);
    if (ps->d_kept) primal_compute_d(lp);
    if (v == 0) {
        TRVmsg(env->errchannel, "Dropped variables satisfy optimality criteria.\n");
        return 0;
    }
    if (lp->solver->it.reincluded < RELEASE_ROUNDS) {
        lp->solver->it.reincluded++;
        TRVmsg(env->errchannel, "Attempting to reinclude dropped variables.\n");
        ps->status = 0;
        return 1;
    }
    TRVmsg(env->errchannel, "There are %d violations to optimality.\n", v);
    ps->status = ps->phase == 2 ? LPS_NONOPT_FEAS : LPS_NONOPT_INFEAS;
    return 0;
}

int primal_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far,
               double start_time, int pricing_mode, int internal) {
    if (pricing_mode < -1 || pricing_mode > 4) return env_error(env, 1257);
    int st = primal_state_alloc(env, lp);
    if (st != 0) return st;
    primal_state *ps = lp->primal;
    simplex_iter *it = &lp->solver->it;
    load_run_parameters(env, lp);
    lp->solver->cbinfo = primal_cbinfo;
    ps->start_time = start_time;
    ps->log.last_elapsed_print = start_time;
    it->n_it = it_so_far;
    ps->n_it_phase1 = it1_so_far;
    st = lu_alloc(env, lp);
    if (st != 0) return st;
    st = start_basis(env, lp);
    if (st != 0) return st;
    st = primal_price_init(env, lp, pricing_mode);
    if (st != 0) return st;
    progress_init(env, ps, lp->solver->splp.m);
    ps->phase = 0;
    st = primal_refactor(env, lp);
    if (st != 0) return st;
    if (primal_set_phase(lp)) primal_price_reset(lp);
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
    ps->objective = primal_objective(lp);
    if (pricing_mode == 2 || pricing_mode == 3) primal_norms_init(env, lp, pricing_mode);
    if (par_int(env, 1027)) primal_perturb(env, lp);
    if (ps->log.display == 1) primal_log(env, lp, 1);
    int rounds = 0, tol_events = 0;
    while (true) {
        st = main_loop(env, lp);
        if (st != 0) return st;
        if (ps->status == 0 || ps->status == LPS_NONOPT_FEAS || ps->status == LPS_NONOPT_INFEAS) {
            /* a limit, an abort or a stall given up: the values on the
             * true bounds */
            if (ps->perturb.active || ps->perturb.shift_count > 0) {
                if (ps->phase == 2) primal_remove(env, lp);
            }
            if (ps->status == 0) ps->status = limit_status(ps);
            else if (ps->phase == 1) ps->status = LPS_NONOPT_INFEAS;
            break;
        }
        if (ps->status == LPS_OBJLIM) break;
        if (++rounds > 30) break;
        if (primal_remove(env, lp)) {
            /* the true problem may need more iterations; when the true
             * bounds leave the basis infeasible the dual may take over */
            int rc = 0;
            if (ps->status == LPS_OPTIMAL && ps->perturb.count <= 1 && !internal &&
                dual_takeover(env, lp, &rc))
                return rc;
            ps->status = 0;
            continue;
        }
        if ((ps->status == LPS_OPTIMAL || ps->status == LPS_INFEASIBLE) && release_dropped(env, lp))
            continue;
        if (ps->status == LPS_OPTIMAL || ps->status == LPS_INFEASIBLE) {
            /* the decision must stand on a fresh factorization */
            st = primal_refresh(env, lp);
            if (st != 0) return st;
            bool lost = ps->status == LPS_OPTIMAL ? ps->n_inf > 0 : ps->n_inf == 0;
            if (lost) {
                ps->status = 0;
                continue;
            }
            /* phase 1 reduced costs are per unit of each variable: on a
             * model left unscaled, a column of tiny entries with a wide box
             * still removes infeasibility at a reduced cost under the
             * tolerance. Infeasibility stands only after a look at a
             * hundredth and a ten-thousandth of it. */
            if (ps->status == LPS_INFEASIBLE && ps->p1_rechecks < 2) {
                ps->p1_rechecks++;
                ps->p1_tol *= 0.01;
                ps->status = 0;
                continue;
            }
            if (ps->status == LPS_OPTIMAL) {
                /* a scaled optimum must also be one in the caller's units */
                if (!ps->d_kept) primal_compute_d(lp);
                double w = unscaled_dual_infeas(lp);
                if (w > par_dbl(env, 1014) && ps->opt_tol > 1e-12) {
                    ps->opt_tol = std::fmax(ps->opt_tol * par_dbl(env, 1014) / w, 1e-12);
                    ps->status = 0;
                    continue;
                }
                /* one polishing round at a tenth of the tolerance: the
                 * reduced costs just inside it can still move the
                 * objective visibly on models with large values */
                if (!ps->polished) {
                    ps->polished = 1;
                    ps->opt_tol *= 0.1;
                    ps->status = 0;
                    continue;
                }
                if (!ps->pushed) {
                    ps->pushed = 1;
                    int moved = 0;
                    st = push_primal(env, lp, &moved);
                    if (st != 0) return st;
                    if (moved > 0) {
                        ps->status = 0;
                        continue;
                    }
                }
            }
        }
        if (tolerance_reset(env, lp, &tol_events)) continue;
        break;
    }
    if (ps->status == LPS_OPTIMAL && unscaled_infeasible(lp)) ps->status = LPS_OPT_UNSCALED;
    /* final figures on a fresh factorization */
    if (ps->status != LPS_OBJLIM || !ps->fast) {
        st = primal_refresh(env, lp);
        if (st != 0) return st;
        if (ps->d_kept == 0) primal_compute_d(lp);
        ps->objective = primal_objective(lp);
    }
    if (ps->log.display >= 1) primal_log(env, lp, 1);
    lp->stat = ps->status;
    return 0;
}
