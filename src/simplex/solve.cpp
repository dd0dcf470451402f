/*
 * solve.cpp - the procedure around both simplex drivers: the checks, the
 * preparation of the model (scaling, the working LP), the driver, and the
 * hand-over of the solution and the final basis to the problem record;
 * the exported entry of the primal simplex.
 */
#include "formats/bas.h"
#include "simplex/dual.h"

int lp_scale(TRVenv env, TRVlp lp, int want);
int lp_unscale(TRVenv env, TRVlp lp);

/* Releases the working structures of a run; the solution record stays. */
static void run_release(TRVlp lp) {
    primal_free(lp);
    dual_free(lp); /* a dual that took over from the primal */
    lu_free(lp);
    simplex_free(lp);
}

/* The checks that open both simplex entries. */
int solve_check(TRVenv env, TRVlp lp) {
    if (!lp_valid(lp)) return 1009;
    if (lp->probtype == PROB_MIP) return 1017;
    if (lp->probtype == PROB_QP) return 1018;
    /* pending additions join the model before it is solved */
    return lp_flush(env, lp, 1);
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

/* The procedure around a simplex driver, the same for both: checks,
 * scaling, the run, a rescue without scaling when the scaled optimum fails
 * in the caller's units, the solution record, and the final basis kept for
 * a later warm start (the dual keeps its norms with it). */
int solve_simplex(TRVenv env, TRVlp lp, int method, solve_run_fn run) {
    if (!env_valid(env)) return 1002;
    int status = solve_check(env, lp);
    if (status != 0) {
        env_report(env, &status);
        return status;
    }
    double start = env_time(env);
    solution_free(lp);
    run_release(lp);
    lp->stat = 0;

    solve_restart(env, lp);
    /* Presolve goes here: the reduced problem would be solved in place of
     * lp and its solution carried back afterwards. For now the driver works
     * on the problem itself. */

    int scale_status = lp_scale(env, lp, par_int(env, 1034));
    if (scale_status != 0) {
        TRVmsg(env->warnchannel, "Not enough memory to scale.\n");
        lp_unscale(env, lp);
    }
    int itcnt = 0, ph1 = 0;
    status = run(env, lp, start, &itcnt, &ph1);
    if (status == 0 && lp->stat == LPS_OPT_UNSCALED && lp->lpdata->colscale != nullptr) {
        run_release(lp);
        lp_unscale(env, lp);
        lp->lpdata->scaletype = -1;
        int it2 = 0, ph2 = 0;
        status = run(env, lp, start, &it2, &ph2);
        itcnt += it2;
        ph1 += ph2;
    }
    if (status == 0) status = solution_store(env, lp, method, itcnt, ph1);
    /* without memory for the basis the next run starts cold */
    if (status == 0) start_save(lp, method == 2);
    if (status != 0) lp->stat = 0;
    run_release(lp);
    if (status != 0) env_report(env, &status);
    return status;
}

TRV_EXPORT int TRVprimopt(TRVenv env, TRVlp lp) {
    return solve_simplex(env, lp, 1, prim_run);
}
