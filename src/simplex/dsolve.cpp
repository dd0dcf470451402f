/*
 * dsolve.cpp - the exported entries of the dual simplex and of the method
 * dispatch: the checks, the preparation of the model, the driver, and the
 * hand-over of the solution and of the final basis (with its dual norms)
 * to the problem record, where the next run starts from it.
 */
#include "simplex/dual.h"

int lp_scale(TRVenv env, TRVlp lp, int want);
int lp_unscale(TRVenv env, TRVlp lp);

static void run_release(TRVlp lp) {
    dual_free(lp);
    primal_free(lp);
    lu_free(lp);
    simplex_free(lp);
}

int solve_check(TRVenv env, TRVlp lp);

static int dual_run(TRVenv env, TRVlp lp, double start, int *itcnt, int *ph1) {
    int status = simplex_build(env, lp);
    if (status == 0) status = dual_opt(env, lp, 0, 0, start, par_int(env, 1009), 0);
    if (status == 0) {
        *itcnt = lp->solver->it.n_it;
        *ph1 = lp->dual != nullptr ? lp->dual->n_it_phase1 : 0;
        if (lp->primal != nullptr) *ph1 += lp->primal->n_it_phase1;
    }
    return status;
}

TRV_EXPORT int TRVdualopt(TRVenv env, TRVlp lp) {
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
    int scale_status = lp_scale(env, lp, par_int(env, 1034));
    if (scale_status != 0) {
        TRVmsg(env->warnchannel, "Not enough memory to scale.\n");
        lp_unscale(env, lp);
    }
    int itcnt = 0, ph1 = 0;
    status = dual_run(env, lp, start, &itcnt, &ph1);
    if (status == 0 && lp->stat == LPS_OPT_UNSCALED && lp->lpdata->colscale != nullptr) {
        run_release(lp);
        lp_unscale(env, lp);
        lp->lpdata->scaletype = -1;
        int it2 = 0, ph2 = 0;
        status = dual_run(env, lp, start, &it2, &ph2);
        itcnt += it2;
        ph1 += ph2;
    }
    if (status == 0) status = solution_store(env, lp, 2, itcnt, ph1);
    /* the final basis and norms for a later warm start; without memory
     * for them the next run starts cold */
    if (status == 0) start_save(lp, 1);
    if (status != 0) lp->stat = 0;
    run_release(lp);
    if (status != 0) env_report(env, &status);
    return status;
}

TRV_EXPORT int TRVlpopt(TRVenv env, TRVlp lp) {
    if (!env_valid(env)) return 1002;
    switch (par_int(env, 1062)) {
    case 0:
    case 2:
        return TRVdualopt(env, lp);
    case 1:
        return TRVprimopt(env, lp);
    default: {
        /* the network and barrier optimisers are not part of this build */
        int status = lp_valid(lp) ? 1292 : 1009;
        env_report(env, &status);
        return status;
    }
    }
}
