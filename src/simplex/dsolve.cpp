/*
 * dsolve.cpp - the exported entries of the dual simplex and of the method
 * dispatch. The procedure around the driver is solve_simplex's; the final
 * basis is kept with its dual norms, so the next run starts from it.
 */
#include "simplex/core.h"

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
    return solve_simplex(env, lp, 2, dual_run);
}

TRV_EXPORT int TRVlpopt(TRVenv env, TRVlp lp) {
    TRVenv e = env;
    TRVlp p = lp;
    int status = call_enter(&e, &p, 0);
    if (status != 0) return call_leave(e, status);
    switch (par_int(e, 1062)) {
    case 0:
    case 2:
        return TRVdualopt(env, lp);
    case 1:
        return TRVprimopt(env, lp);
    default:
        /* the network and barrier optimisers are not part of this build */
        return call_leave(e, 1292);
    }
}
