/*
 * cbinfo.cpp - TRVgetcallbackinfo: the questions a progress callback may
 * ask at each place, and their answers. The callback's data is the handle
 * of the problem being solved; the optimiser running on it answers through
 * the hook its working records hold. Places whose optimiser has no state
 * to answer from give 1006.
 */
#include "store/lp.h"

/* The whichinfo numbers each place answers. */
static bool cbinfo_known(int wherefrom, int whichinfo) {
    switch (wherefrom) {
    case TRV_CALLBACK_PRIMAL:
        return whichinfo == 1 || whichinfo == 3 || whichinfo == 4 || whichinfo == 5 ||
               whichinfo == 7 || whichinfo == 17;
    case TRV_CALLBACK_DUAL:
        return whichinfo == 2 || whichinfo == 3 || whichinfo == 4 || whichinfo == 6 ||
               whichinfo == 7 || whichinfo == 17;
    case TRV_CALLBACK_NETWORK:
        return whichinfo == 1 || whichinfo == 3 || whichinfo == 5 || whichinfo == 7;
    case TRV_CALLBACK_BARRIER:
    case TRV_CALLBACK_BARRIER_X:
    case TRV_CALLBACK_CROSSOVER:
        return (whichinfo >= 8 && whichinfo <= 12) || whichinfo == 17;
    case TRV_CALLBACK_PRESOLVE:
        return whichinfo >= 13 && whichinfo <= 16;
    default: /* 101 to 111: the MIP's places */
        return whichinfo >= 1 && whichinfo <= 17;
    }
}

TRV_EXPORT int TRVgetcallbackinfo(TRVenv env, void *cbdata, int wherefrom, int whichinfo,
                                  void *result_p) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) return status;
    if (wherefrom < 1 || wherefrom > 111 || (wherefrom >= 8 && wherefrom <= 100)) {
        status = 1003;
    } else if (result_p == nullptr) {
        status = 1004;
    } else if (cbdata == nullptr) {
        status = 1006;
    } else if (!cbinfo_known(wherefrom, whichinfo)) {
        status = 1003;
    } else {
        TRVlp lp = static_cast<TRVlp>(handle_find(cbdata, HANDLE_LP, nullptr, nullptr));
        if (lp == nullptr || lp->work == nullptr || lp->work->cbinfo == nullptr)
            status = 1006;
        else
            status = lp->work->cbinfo(lp, wherefrom, whichinfo, result_p);
    }
    return call_leave(env, status);
}
