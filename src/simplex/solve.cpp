/*
 * solve.cpp - the procedure around both simplex drivers: the checks, the
 * preparation of the model (scaling, the working LP), the driver, and the
 * hand-over of the solution and the final basis to the problem record;
 * the exported entry of the primal simplex.
 */
#include "formats/bas.h"
#include "simplex/core.h"
#include "store/scale.h"

/* Releases the working structures of a run; the solution record stays. */
static void run_release(TRVlp lp) {
    primal_free(lp);
    dual_free(lp); /* a dual that took over from the primal */
    lu_free(lp);
    simplex_free(lp);
}

/* The type checks of both simplex entries. */
static int solve_check(TRVlp lp) {
    if (lp->probtype == PROB_MIP) return 1017;
    if (lp->probtype == PROB_QP) return 1018;
    return 0;
}

/* One run of the driver on the problem as it stands. */
static int prim_run(TRVenv env, TRVlp lp, double start, int *itcnt, int *ph1) {
    int status = simplex_build(env, lp);
    if (status == 0)
        status = primal_opt(env, lp, 0, 0, start, par_int(env, 1029), 0);
    if (status == 0) {
        *itcnt = lp->solver->it.n_it;
        *ph1 = lp->primal->n_it_phase1;
    }
    return status;
}

/* The largest bound violation and the largest dual infeasibility of the
 * run's final point, in the caller's units: a working value times f is the
 * caller's value, a working reduced cost divided by f the caller's. */
static void solve_measure(const TRVlp lp, double *pinf, double *dinf) {
    const lp_data *d = lp->lpdata;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const double *cs = d->colscale, *rs = d->rowscale;
    double pw = 0.0, dw = 0.0;
    /* the artificial of an equality row is that row's violation */
    for (int j = 0; j < s->ncoltot; j++) {
        double f = 1.0;
        if (cs != nullptr) f = j < s->n ? 1.0 / cs[j] : rs[s->row_of_var[j]];
        double x = it->x[j], v = 0.0;
        if (s->has_lower[j] && x < s->lower[j]) v = s->lower[j] - x;
        if (s->has_upper[j] && x > s->upper[j]) v = x - s->upper[j];
        if (v * f > pw) pw = v * f;
        int st = it->status[j];
        if (st == 1 || it->d == nullptr || j >= s->ntotal) continue;
        if (s->has_lower[j] && s->has_upper[j] && s->lower[j] >= s->upper[j]) continue;
        double dj = it->d[j], e = 0.0;
        if (st == 0) e = -dj;
        else if (st == 2) e = dj;
        else if (st == 3) e = dj < 0.0 ? -dj : dj;
        if (e / f > dw) dw = e / f;
    }
    *pinf = pw;
    *dinf = dw;
}

/* An optimum that fails the tolerances in the caller's units is not yet a
 * solution of the caller's problem. */
static bool solve_valid(TRVenv env, TRVlp lp) {
    /* a run that ended without a decision, on a dead end of numerical
     * trouble, gets another from its basis with a fresh start */
    if (lp->stat == LPS_NONOPT_FEAS || lp->stat == LPS_NONOPT_INFEAS) return false;
    if (lp->stat != LPS_OPTIMAL) return lp->stat != LPS_OPT_UNSCALED;
    double pinf, dinf;
    solve_measure(lp, &pinf, &dinf);
    return pinf <= par_dbl(env, 1016) && dinf <= par_dbl(env, 1014);
}

/* The clean-up run: the driver once more on the problem itself, unscaled,
 * from the basis the first run returned. When the clean-up cannot finish,
 * the first run's solution stands: an optimum with status 11, a run
 * without a decision with its own status. */
static int solve_cleanup(TRVenv env, TRVlp lp, int method, solve_run_fn run, double start,
                         int *itcnt, int *ph1) {
    /* the norms belong to the scaled copy: the clean-up prices afresh */
    int status = start_save(lp, 0);
    if (status != 0) return status;
    lp->start->forced = 1;
    const int first_stat = lp->stat;
    const bool undecided = first_stat == LPS_NONOPT_FEAS || first_stat == LPS_NONOPT_INFEAS;
    soln_rec *first = lp->soln;
    lp->soln = nullptr;
    run_release(lp);
    if (lp->lpdata->colscale != nullptr) {
        lp_unscale(env, lp);
        lp->lpdata->scaletype = -1;
    }
    /* a clean-up that does not finish soon will not finish better: it may
     * take as many iterations as the run so far and a twentieth more, and
     * the two together stay within the caller's limit (1020) */
    int left = par_int(env, 1020) - *itcnt;
    int own = *itcnt + *itcnt / 20 + 100;
    int it2 = 0, p2 = 0;
    int saved = par_swap_int(env, 1020, own < left ? own : left > 0 ? left : 0);
    status = run(env, lp, start, &it2, &p2);
    par_swap_int(env, 1020, saved);
    *itcnt += it2;
    *ph1 += p2;
    bool optimal = lp->stat == LPS_OPTIMAL || lp->stat == LPS_OPT_UNSCALED;
    bool decision = undecided && (lp->stat == LPS_INFEASIBLE || lp->stat == LPS_UNBOUNDED);
    if (status == 0 && (optimal || decision)) {
        if (optimal && !solve_valid(env, lp)) lp->stat = LPS_OPT_UNSCALED;
        status = solution_store(env, lp, method, *itcnt, *ph1);
        if (status == 0) {
            soln_rec *keep = lp->soln;
            lp->soln = first;
            solution_free(lp);
            lp->soln = keep;
            start_save(lp, 1);
            return 0;
        }
    }
    /* the first run's solution and basis stand */
    solution_free(lp);
    lp->soln = first;
    lp->soln->itcnt = *itcnt;
    lp->soln->phase1cnt = *ph1;
    lp->stat = undecided ? first_stat : LPS_OPT_UNSCALED;
    if (lp->start != nullptr) lp->start->forced = 0;
    return status == 1001 ? 1001 : 0;
}

/* The restart of parameter 1041 (with presolve, 1030, on): the recovery
 * file of an earlier run becomes the stored basis, which the run starts
 * from when parameter 1001 is set. A missing or bad file leaves the
 * problem as it was. */
static void solve_restart(TRVenv env, TRVlp lp) {
    if (par_int(env, 1030) == 0 || par_int(env, 1041) != 1) return;
    int status = bas_recoverload(env, lp);
    TRVmsg(env->reschannel, status == 0 ? "Load of restart from file succeeded.\n"
                                        : "Load of restart from file failed.\n");
}

/* A column whose lower bound lies above its upper bound by more than the
 * feasibility tolerance, in the caller's units, or -1. No point meets such
 * bounds: the model is infeasible before any run, as presolve's column
 * pass would find it. */
static int crossed_bounds(TRVenv env, TRVlp lp) {
    const lp_data *d = lp->lpdata;
    double tol = par_dbl(env, 1016);
    for (int j = 0; j < d->ncols; j++) {
        if (d->lb[j] <= -TRV_INF || d->ub[j] >= TRV_INF || d->lb[j] <= d->ub[j]) continue;
        double gap = d->lb[j] - d->ub[j];
        if (d->colscale != nullptr) gap /= d->colscale[j];
        if (gap > tol) return j;
    }
    return -1;
}

/* The procedure around a simplex driver, the same for both: checks,
 * scaling, the run, the clean-up run when its optimum fails in the caller's
 * units, the solution record, and the final basis kept for a later warm
 * start (the dual keeps its norms with it). */
int solve_simplex(TRVenv env, TRVlp lp, int method, solve_run_fn run) {
    /* pending additions join the model before it is solved */
    int status = call_enter(&env, &lp, 0);
    if (status == 0) status = solve_check(lp);
    if (status == 0) status = lp_flush(env, lp, 1);
    if (status != 0) return call_leave(env, status);
    double start = env_time(env);
    solution_free(lp);
    run_release(lp);
    lp->stat = 0;

    solve_restart(env, lp);
    /* Presolve goes here: the reduced problem would be solved in place of
     * lp, its solution carried back by postsolve, and a solution that is
     * not valid for the original problem cleaned up below. For now the
     * driver works on the problem itself. */

    int crossed = crossed_bounds(env, lp);
    if (crossed >= 0) {
        /* the stored basis stays for a run after the bounds are mended */
        if (par_int(env, 1019) != 0)
            TRVmsg(env->reschannel, "Bound infeasibility column '%.255s'.\n",
                   env_varname(env, lp->lpdata->colname, lp->lpdata->ncols, crossed));
        lp->stat = LPS_INFEASIBLE;
        return 0;
    }

    int scale_status = lp_scale(env, lp, par_int(env, 1034));
    if (scale_status != 0) {
        TRVmsg(env->warnchannel, "Not enough memory to scale.\n");
        lp_unscale(env, lp);
    }
    int itcnt = 0, ph1 = 0;
    status = run(env, lp, start, &itcnt, &ph1);
    bool clean = status == 0 && solve_valid(env, lp);
    if (status == 0) status = solution_store(env, lp, method, itcnt, ph1);
    if (status == 0 && !clean) status = solve_cleanup(env, lp, method, run, start, &itcnt, &ph1);
    else if (status == 0) start_save(lp, 1);
    /* without memory for the basis the next run starts cold */
    if (status != 0) {
        solution_free(lp);
        lp->stat = 0;
    }
    run_release(lp);
    return call_leave(env, status);
}

TRV_EXPORT int TRVprimopt(TRVenv env, TRVlp lp) {
    return solve_simplex(env, lp, 1, prim_run);
}
