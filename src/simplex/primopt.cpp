/*
 * primopt.cpp - the primal simplex driver: the set-up of a run, the main
 * loop with its stopping tests, and the end of a run (removal of the
 * perturbation and shifts, the final recomputation).
 *
 * Phase 1 minimises the sum of infeasibilities of the basic variables
 * through costs of -1 and +1; phase 2 the true objective.
 */
#include <cmath>

#include "simplex/core.h"

/* The primal's own parameters beside those both drivers read. */
static void load_run_parameters(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    primal_state *ps = lp->primal;
    double h = par_dbl(env, 1050);
    ps->harris_delta = h < ps->feas_tol ? h : ps->feas_tol;
    ps->harris_base = ps->harris_delta;
    ps->candidates_max = candidates_for(s->m);
    ps->shift_on = 1;
    ps->rw.no_length = par_int(env, 1068);
    ps->ban_epoch = PR_NOLIMIT;
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

/* The stall interval of a primal run on a model of m rows. */
static int primal_stall_interval(int m) {
    static const int lim[] = {1000, 5000, 7500, 10000, 15000, 20000, 30000, 40000};
    static const int val[] = {400, 500, 600, 700, 900, 1100, 1600, 2100};
    for (int k = 0; k < 8; k++)
        if (m < lim[k]) return val[k];
    return 2600;
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

/* The dual infeasibility of nonbasic j, in the working units: the
 * attractiveness of a variable that is neither basic, banned nor fixed. */
static double dual_violation(TRVlp lp, int j) {
    const simplex_iter *it = &lp->solver->it;
    const primal_state *ps = lp->primal;
    if (it->status[j] == VS_BASIC || it->ban[j] != BAN_NONE) return 0.0;
    if (it->status[j] != VS_SUPER && ps->upper[j] <= ps->lower[j]) return 0.0;
    double a = -primal_attract(it, j, it->d[j]);
    return a > 0.0 ? a : 0.0;
}

/* The variables a repair fixed are let go at a decision (optimal or
 * infeasible): the decision stands when none of them can improve it;
 * otherwise the run goes on with them, a few rounds at most. Returns 1
 * when the main loop must run again. */
static void repriced(TRVlp lp) {
    primal_price_reset(lp);
    if (lp->primal->d_kept) primal_compute_d(lp);
}

static int release_dropped(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    /* judged at the caller's tolerance: the run may have tightened its
     * own for a closer look */
    double tol = ps->phase == 1 ? std::fmax(ps->p1_tol, 1e-7) : std::fmax(ps->opt_tol, par_dbl(env, 1014));
    int r = run_release_dropped(env, lp, tol, primal_dj, repriced);
    if (r == 1) ps->status = 0;
    if (r == 2) ps->status = ps->phase == 2 ? LPS_NONOPT_FEAS : LPS_NONOPT_INFEAS;
    return r == 1;
}

/* ---- the primal's choices in the shared parts of a run ------------------------ */

static double infeasibility(TRVlp lp) { return lp->primal->sum_inf; }

/* The primal's objective falls: the watch follows its negative. */
static double progress_value(TRVlp lp) {
    const primal_state *ps = lp->primal;
    return -(ps->phase == 1 ? ps->sum_inf : ps->objective);
}

/* A stall under a perturbation in phase 2: the basic variables outside
 * their working bounds have the bounds shifted to them. */
static int stall_remedy(TRVlp lp) {
    primal_state *ps = lp->primal;
    if (ps->phase != 2 || extend_shifts(lp) == 0) return 0;
    primal_set_phase(lp);
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
    return 1;
}

static bool feasible(TRVlp lp) { return lp->primal->phase == 2; }

const run_ops primal_ops = {
    TRV_CALLBACK_PRIMAL, -1, 0, devex_switch, primal_price_ladder, primal_pivot, primal_refactor,
    primal_objective, infeasibility, progress_value, primal_perturb, stall_remedy, feasible,
};

int primal_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far,
               double start_time, int pricing_mode, int internal) {
    if (pricing_mode < -1 || pricing_mode > 4) return env_error(env, 1257);
    int st = primal_state_alloc(env, lp);
    if (st != 0) return st;
    primal_state *ps = lp->primal;
    run_parameters(env, lp, ps, start_time, it_so_far, it1_so_far);
    load_run_parameters(env, lp);
    lp->solver->cbinfo = primal_cbinfo;
    st = lu_alloc(env, lp);
    if (st != 0) return st;
    st = start_basis(env, lp);
    if (st != 0) return st;
    st = primal_price_init(env, lp, pricing_mode);
    if (st != 0) return st;
    progress_init(env, ps, primal_stall_interval(lp->solver->splp.m), lp->solver->splp.m);
    ps->phase = 0;
    st = primal_refactor(env, lp);
    if (st != 0) return st;
    if (primal_set_phase(lp)) primal_price_reset(lp);
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
    ps->objective = primal_objective(lp);
    if (pricing_mode == 2 || pricing_mode == 3) primal_norms_init(env, lp, pricing_mode);
    if (par_int(env, 1027)) primal_perturb(env, lp);
    if (ps->log.display == 1) run_log(env, lp, ps, 1);
    int rounds = 0, tol_events = 0;
    while (true) {
        st = run_main_loop(env, lp, ps);
        if (st != 0) return st;
        if (ps->status == 0 || ps->status == LPS_NONOPT_FEAS || ps->status == LPS_NONOPT_INFEAS) {
            /* a limit, an abort or a stall given up: the values on the
             * true bounds */
            if (ps->perturb.active || ps->perturb.shift_count > 0) {
                if (ps->phase == 2) primal_remove(env, lp);
            }
            if (ps->status == 0) ps->status = run_limit_status(lp, ps);
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
                double w = run_unscaled_dinf(lp, dual_violation);
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
    if (ps->status == LPS_OPTIMAL && run_unscaled_pinf(lp) > ps->feas_tol)
        ps->status = LPS_OPT_UNSCALED;
    /* final figures on a fresh factorization */
    if (ps->status != LPS_OBJLIM || !ps->fast) {
        st = primal_refresh(env, lp);
        if (st != 0) return st;
        if (ps->d_kept == 0) primal_compute_d(lp);
        ps->objective = primal_objective(lp);
    }
    if (ps->log.display >= 1) run_log(env, lp, ps, 1);
    lp->stat = ps->status;
    return 0;
}
