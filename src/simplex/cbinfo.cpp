/*
 * cbinfo.cpp - the answers of TRVgetcallbackinfo at the simplex places
 * wherefrom 1 (primal) and 2 (dual). The figures that need the
 * state of a running driver come from the driver's answer function, set in
 * the solver record when the primal and dual drivers run.
 */
#include "frame/callback.h"
#include "simplex/splp.h"

int simplex_cbinfo(TRVenv env, void *cbdata, int wherefrom, int whichinfo, void *result) {
    (void)env;
    if (cbdata == nullptr) return 1006;
    /* the callback's data is the running problem's handle */
    TRVlp lp = static_cast<TRVlp>(handle_find(cbdata, HANDLE_LP, nullptr, nullptr));
    bool known;
    if (wherefrom == 1)
        known = whichinfo == 1 || whichinfo == 3 || whichinfo == 4 || whichinfo == 5 ||
                whichinfo == 7 || whichinfo == 17;
    else
        known = whichinfo == 2 || whichinfo == 3 || whichinfo == 4 || whichinfo == 6 ||
                whichinfo == 7 || whichinfo == 17;
    if (!known) return 1003;
    if (lp == nullptr || lp->solver == nullptr) return 1006;
    void *state = wherefrom == 1 ? static_cast<void *>(lp->primal) : static_cast<void *>(lp->dual);
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
