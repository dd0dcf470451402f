/*
 * cbinfo.cpp - the answers of TRVgetcallbackinfo at the simplex places
 * wherefrom 1 (primal) and 2 (dual). The figures that need the
 * state of a running driver come from the driver's answer function, set in
 * the solver record when the primal and dual drivers run.
 */
#include "simplex/core.h"

int simplex_cbinfo(TRVlp lp, int wherefrom, int whichinfo, void *result) {
    if (lp->solver == nullptr) return 1006;
    void *state = wherefrom == TRV_CALLBACK_PRIMAL ? static_cast<void *>(lp->primal)
                : wherefrom == TRV_CALLBACK_DUAL   ? static_cast<void *>(lp->dual)
                                                   : nullptr;
    if (state == nullptr) return 1006;
    solver_rec *sv = lp->solver;
    switch (whichinfo) {
    case 7:
        *static_cast<int *>(result) = sv->it.n_it;
        return 0;
    case 17:
        *static_cast<int *>(result) = sv->splp.m;
        return 0;
    default:
        if (sv->cbinfo == nullptr) return 1006;
        return sv->cbinfo(lp, wherefrom, whichinfo, result);
    }
}
