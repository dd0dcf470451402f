/*
 * dualopt.cpp - the dual simplex driver: the set-up of a run, the main loop
 * with its stopping tests, and the end of a run: removal of the cost
 * perturbation and shifts, the checks of the decision on a fresh
 * factorization, and the hand-over to the primal simplex when the true
 * costs leave the basis dual infeasible or when the dual proves dual
 * infeasibility and only the primal can tell unboundedness from
 * infeasibility.
 */
#include <cmath>

#include "simplex/core.h"

/* The dual's own parameters beside those both drivers read. */
static void load_run_parameters(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    dual_state *ds = lp->dual;
    double h = par_dbl(env, 1049);
    ds->harris_delta = h < ds->opt_tol ? h : ds->opt_tol;
    if (s->harris_dual > 0.0 && s->harris_dual < ds->harris_delta) ds->harris_delta = s->harris_dual;
    ds->harris_base = ds->harris_delta;
    ds->candidates_max = candidates_for(s->n);
}

/* The figures of a running dual for TRVgetcallbackinfo. */
static int dual_cbinfo(TRVlp lp, int wherefrom, int whichinfo, void *result) {
    dual_state *ds = lp->dual;
    if (wherefrom != TRV_CALLBACK_DUAL || ds == nullptr) return 1006;
    double *r = static_cast<double *>(result);
    switch (whichinfo) {
    case 2:
        *r = lp->solver->splp.sense * (ds->phase == 1 ? dual_objective(lp) : ds->objective);
        return 0;
    case 3:
        *r = dual_pinf(lp, 0.0, nullptr);
        return 0;
    case 4: {
        double sum = 0.0;
        if (ds->phase == 1) sum = -ds->objective;
        else dual_count_dinf(lp, 0.0, &sum);
        *r = sum;
        return 0;
    }
    case 6:
        *static_cast<int *>(result) = ds->phase - 1;
        return 0;
    default:
        return 1003;
    }
}

/* ---- the dual's choices in the shared parts of a run ---------------------------- */

/* Phase 1 reports the sum of dual infeasibilities, minus the objective of
 * the auxiliary box. */
static double infeasibility(TRVlp lp) { return -lp->dual->objective; }

/* The dual objective rises in both phases. */
static double progress_value(TRVlp lp) { return lp->dual->objective; }

/* Feasible means primal feasible here, as for the primal simplex. */
static bool feasible(TRVlp lp) {
    const dual_state *ds = lp->dual;
    int n_inf = 0;
    dual_pinf(lp, ds->feas_tol, &n_inf);
    return ds->phase == 2 && n_inf == 0;
}

const run_ops dual_ops = {
    TRV_CALLBACK_DUAL, 1, 1, nullptr, dual_price_ladder, dual_pivot, dual_refactor,
    dual_objective, infeasibility, progress_value, dual_perturb, nullptr, feasible,
};

/* A cold start where many structurals have a zero reduced cost: the run
 * would stall on ties from its first iterations, so the costs are
 * perturbed at once rather than after the first stall. */
static bool dual_degenerate(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const dual_state *ds = lp->dual;
    int nonbasic = 0, zero = 0;
    for (int j = 0; j < s->n; j++) {
        if (it->status[j] == 1) continue;
        if (ds->lo_on[j] && ds->up_on[j] && ds->lower[j] == ds->upper[j]) continue;
        nonbasic++;
        if (std::fabs(it->d[j]) <= ds->opt_tol) zero++;
    }
    return nonbasic > 0 && 20 * zero >= nonbasic;
}

/* The basis goes to the primal simplex, which finishes the run from it.
 * The iteration counts add up; the primal's status stands. */
static int hand_to_primal(TRVenv env, TRVlp lp) {
    dual_state *ds = lp->dual;
    simplex_iter *it = &lp->solver->it;
    int n_it = it->n_it, n1 = ds->n_it_phase1;
    double start = ds->start_time;
    int left = ds->it_limit - n_it;
    (void)left;
    int st = start_save(lp, 1);
    if (st != 0) return st;
    int keep = par_int(env, 1001);
    par_swap_int(env, 1001, 1);
    st = primal_opt(env, lp, n_it, n1, start, par_int(env, 1029), 0);
    par_swap_int(env, 1001, keep);
    lp->solver->cbinfo = nullptr;
    return st;
}

/* The primal's basis after the removal of its perturbation: primal
 * infeasible (phase 1 again). With parameter 1063 at 1 the dual takes over
 * at once; at 0 when the infeasibility is large against the columns and
 * the basis is far more primal degenerate than dual degenerate. */
int dual_takeover(TRVenv env, TRVlp lp, int *rc) {
    *rc = 0;
    primal_state *ps = lp->primal;
    int h = par_int(env, 1063);
    /* a primal that the dual started does not hand back */
    if (h < 0 || ps == nullptr || ps->phase != 1 || lp->dual != nullptr) return 0;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    if (h == 0) {
        if (ps->sum_inf / (s->ntotal + 1) < 1e-4) return 0;
        int near = 0, zero = 0, nonbasic = 0;
        for (int i = 0; i < s->m; i++) {
            int j = it->head[i];
            double x = it->x[j];
            if ((s->has_lower[j] && std::fabs(x - ps->lower[j]) <= ps->feas_tol) ||
                (s->has_upper[j] && std::fabs(x - ps->upper[j]) <= ps->feas_tol))
                near++;
        }
        for (int j = 0; j < s->ntotal; j++) {
            if (it->status[j] == 1) continue;
            nonbasic++;
            if (std::fabs(primal_dj(lp, j)) <= ps->opt_tol) zero++;
        }
        double p = double(near) / (s->m > 0 ? s->m : 1);
        double q = double(zero) / (nonbasic > 0 ? nonbasic : 1);
        if (!(p > 4.0 * q)) return 0;
    }
    int st = start_save(lp, 0);
    if (st != 0) {
        *rc = st;
        return 1;
    }
    int keep = par_int(env, 1001);
    par_swap_int(env, 1001, 1);
    *rc = dual_opt(env, lp, it->n_it, ps->n_it_phase1, ps->start_time, par_int(env, 1009), 1);
    par_swap_int(env, 1001, keep);
    return 1;
}

/* The dual infeasibility of nonbasic j, in the working units; a boxed
 * variable has none, a flip fixes it. */
static double dual_violation(TRVlp lp, int j) {
    const simplex_iter *it = &lp->solver->it;
    const dual_state *ds = lp->dual;
    if (it->status[j] == VS_BASIC || (ds->lo_on[j] && ds->up_on[j])) return 0.0;
    return dual_infeasibility(ds, it, j);
}

/* The ratio test lets a reduced cost pass zero by up to the Harris
 * relaxation; the phase test calls it dual infeasible beyond the dual
 * tolerance. Once the tolerance is tightened the relaxation must follow,
 * or every step that uses it sends the run back to phase 1 at the next
 * factorization, and phase 1 hands it back at once: a loop between the
 * phases. */
static void relax_within_tolerance(dual_state *ds) {
    double cap = 0.5 * ds->opt_tol;
    if (ds->harris_delta > cap) ds->harris_delta = cap;
    if (ds->harris_base > cap) ds->harris_base = cap;
}

/* The variables a repair dropped (ban 32) come back at an optimum: each
 * is released and its reduced cost judged against its bound. Returns 0
 * when none was dropped or none violates, 1 when the run must go on with
 * them, 2 when they still violate after that round. */
static int release_dropped(TRVenv env, TRVlp lp) {
    /* judged at the caller's tolerance: the run may have tightened its
     * own for a closer look */
    double tol = std::fmax(lp->dual->opt_tol, par_dbl(env, 1014));
    return run_release_dropped(env, lp, tol, dual_dj, nullptr);
}

/* Removal of the perturbation and the decision on fresh figures. Returns 1
 * when the main loop must run again, 2 when the primal takes over. */
static int confirm_optimum(TRVenv env, TRVlp lp, int internal, int *err) {
    dual_state *ds = lp->dual;
    *err = 0;
    dual_remove(env, lp);
    /* the refactorization flips the boxed variables to the bound their
     * reduced cost asks for and falls back to phase 1 when another
     * variable is dual infeasible */
    int st = dual_refactor(env, lp);
    if (st != 0) {
        *err = st;
        return 0;
    }
    if (ds->phase == 1) {
        /* the true costs leave the basis dual infeasible: the primal takes
         * over when asked to (parameter 1063 at 1) or when many variables
         * are wrong; otherwise the dual goes through its phase 1 again,
         * which keeps its accuracy on models with wide value ranges */
        ds->status = 0;
        int h = par_int(env, 1063);
        int many = lp->solver->splp.n / 10 > 10 ? lp->solver->splp.n / 10 : 10;
        if (internal) h = -1; /* no hand-back to a primal that handed over */
        if (h == 1 || (h == 0 && ds->n_dinf > many)) return 2;
        return 1;
    }
    int n_inf = 0;
    dual_pinf(lp, ds->feas_tol, &n_inf);
    if (n_inf > 0) {
        ds->status = 0;
        return 1;
    }
    /* a scaled optimum must also be one in the caller's units: the
     * working tolerance that let a violation through is tightened */
    double w = run_unscaled_pinf(lp);
    double tol = par_dbl(env, 1016);
    if (w > tol && ds->feas_tol > 1e-12) {
        ds->feas_tol = std::fmax(ds->feas_tol * tol / w, 1e-12);
        ds->status = 0;
        return 1;
    }
    w = run_unscaled_dinf(lp, dual_violation);
    tol = par_dbl(env, 1014);
    if (w > tol && ds->opt_tol > 1e-12) {
        ds->opt_tol = std::fmax(ds->opt_tol * tol / w, 1e-12);
        relax_within_tolerance(ds);
        ds->status = 0;
        dual_set_phase(lp);
        return 1;
    }
    /* one polishing round at a tenth of both tolerances: reduced costs
     * and violations just inside them can still move the objective
     * visibly on models with large values */
    if (!ds->polished) {
        ds->polished = 1;
        ds->opt_tol *= 0.1;
        ds->feas_tol *= 0.1;
        relax_within_tolerance(ds);
        if (dual_count_dinf(lp, ds->opt_tol, nullptr) > 0) {
            ds->status = 0;
            dual_set_phase(lp);
            return 1;
        }
        if (dual_fix_boxed(lp) > 0) dual_compute_x(lp);
        dual_pinf(lp, ds->feas_tol, &n_inf);
        if (n_inf > 0) {
            ds->status = 0;
            return 1;
        }
    }
    int r = release_dropped(env, lp);
    if (r == 1) {
        /* back in the ratio test, and at the bound their reduced costs
         * ask for */
        ds->status = 0;
        dual_set_phase(lp);
        return 1;
    }
    if (r == 2) {
        /* the basis is primal feasible and a little dual infeasible: the
         * primal can finish from it, unless it is the primal that handed
         * over or the caller asked for no hand-over */
        if (!internal && par_int(env, 1063) >= 0) return 2;
        ds->status = LPS_NONOPT_FEAS;
    }
    return 0;
}

int dual_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far, double start_time,
             int mode, int internal) {
    int pricing = 0;
    int st = dual_pricing_mode(env, lp, mode, &pricing);
    if (st != 0) return st;
    st = dual_state_alloc(env, lp);
    if (st != 0) return st;
    dual_state *ds = lp->dual;
    run_parameters(env, lp, ds, start_time, it_so_far, it1_so_far);
    load_run_parameters(env, lp);
    ds->pricing = pricing;
    lp->solver->cbinfo = dual_cbinfo;
    st = lu_alloc(env, lp);
    if (st != 0) return st;
    /* the kept basis of the problem, or the slack basis the working LP
     * was built with */
    int loaded = start_load(env, lp);
    if (mode == 0 && loaded && par_int(env, 1001) != 0) ds->pricing = DPR_STEEP_UNIT;
    int n = lp->solver->splp.n;
    progress_init(env, ds, n < 1000 ? 50 : 100, n);
    ds->phase = 0;
    st = dual_refactor(env, lp);
    if (st != 0) return st;
    dual_set_phase(lp);
    st = dual_norms_init(env, lp);
    if (st != 0) return st;
    if (par_int(env, 1027) || (!loaded && dual_degenerate(lp))) dual_perturb(env, lp);
    if (ds->log.display == 1) run_log(env, lp, ds, 1);
    int rounds = 0;
    while (true) {
        st = run_main_loop(env, lp, ds);
        if (st != 0) return st;
        if (ds->status == 0) {
            /* a limit or an abort: the values on the true costs */
            if (ds->perturb.active || ds->perturb.shift_count > 0) dual_remove(env, lp);
            ds->status = run_limit_status(lp, ds);
            break;
        }
        if (ds->status == LPS_OBJLIM || ds->status == LPS_NONOPT_FEAS ||
            ds->status == LPS_NONOPT_INFEAS)
            break;
        if (++rounds > 30) break;
        if (ds->status == LPS_UNB_OR_INF) {
            /* dual infeasible: only the primal tells unbounded from
             * infeasible, unless the caller asked for no hand-over */
            dual_remove(env, lp);
            if (par_int(env, 1063) >= 0) return hand_to_primal(env, lp);
            break;
        }
        if (ds->status == LPS_INFEASIBLE) {
            /* the proof must stand on a fresh factorization and the true
             * bounds; where it falls, the basis may be an optimum */
            ds->status = 0;
            dual_remove(env, lp);
            st = dual_refactor(env, lp);
            if (st != 0) return st;
            int n_inf = 0;
            dual_pinf(lp, ds->feas_tol, &n_inf);
            ds->status = n_inf == 0 && ds->phase == 2 ? LPS_OPTIMAL : LPS_INFEASIBLE;
        }
        if (ds->status == LPS_OPTIMAL) {
            int err = 0;
            int again = confirm_optimum(env, lp, internal, &err);
            if (err != 0) return err;
            if (again == 1) continue;
            if (again == 2) return hand_to_primal(env, lp);
        }
        break;
    }
    /* final figures on a fresh factorization and the true costs */
    if (ds->status != LPS_OBJLIM || !ds->fast) {
        if (ds->perturb.active || ds->perturb.shift_count > 0) dual_remove(env, lp);
        if (ds->updates > 0 || !lp->factor->valid) {
            int phase = ds->phase;
            st = dual_refactor(env, lp);
            if (st != 0) return st;
            ds->phase = phase;
        } else {
            dual_compute_d(lp);
            dual_compute_x(lp);
        }
        ds->objective = dual_objective(lp);
    }
    if (ds->phase == 1) dual_true_values(lp);
    if (ds->progress.gave_up) {
        /* a stall given up: feasible means primal feasible, as after a
         * limit */
        int n_inf = 0;
        dual_pinf(lp, ds->feas_tol, &n_inf);
        ds->status = ds->phase == 2 && n_inf == 0 ? LPS_NONOPT_FEAS : LPS_NONOPT_INFEAS;
    }
    if (ds->log.display >= 1) run_log(env, lp, ds, 1);
    lp->stat = ds->status;
    return 0;
}
