/*
 * callback.cpp - the progress callback slots. Each slot lives in its
 * family's parameter block, so a clone made later takes it over.
 */
#include "trv.h"

static int cb_set(TRVenv env, int fam, TRVcallbackfunc func, void *handle) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    env->cur[fam]->cbfunc = func;
    env->cur[fam]->cbhandle = func != nullptr ? handle : nullptr;
    return 0;
}

static int cb_get(TRVenv env, int fam, TRVcallbackfunc *func_p,
                  void **handle_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    if (func_p != nullptr) *func_p = env->cur[fam]->cbfunc;
    if (handle_p != nullptr) *handle_p = env->cur[fam]->cbhandle;
    return 0;
}

TRV_EXPORT int TRVsetlpcallbackfunc(TRVenv env, TRVcallbackfunc func,
                                    void *handle) {
    return cb_set(env, PAR_LP, func, handle);
}
TRV_EXPORT int TRVgetlpcallbackfunc(TRVenv env, TRVcallbackfunc *func_p,
                                    void **handle_p) {
    return cb_get(env, PAR_LP, func_p, handle_p);
}
TRV_EXPORT int TRVsetmipcallbackfunc(TRVenv env, TRVcallbackfunc func,
                                     void *handle) {
    return cb_set(env, PAR_MIP, func, handle);
}
TRV_EXPORT int TRVgetmipcallbackfunc(TRVenv env, TRVcallbackfunc *func_p,
                                     void **handle_p) {
    return cb_get(env, PAR_MIP, func_p, handle_p);
}
TRV_EXPORT int TRVsetnetcallbackfunc(TRVenv env, TRVcallbackfunc func,
                                     void *handle) {
    return cb_set(env, PAR_NET, func, handle);
}
TRV_EXPORT int TRVgetnetcallbackfunc(TRVenv env, TRVcallbackfunc *func_p,
                                     void **handle_p) {
    return cb_get(env, PAR_NET, func_p, handle_p);
}

/* ---- the call point and TRVgetcallbackinfo ------------------------------------ */

#include "frame/callback.h"

int cb_call(TRVenv env, int fam, void *cbdata, int wherefrom) {
    TRVcallbackfunc fn = env->cur[fam]->cbfunc;
    if (fn == nullptr) return 0;
    return fn(env->handle, cbdata, wherefrom, env->cur[fam]->cbhandle) != 0;
}

/* The places whose optimisers have not landed: the whichinfo numbers of
 * the callback frame are checked, and with no solver state the answer is 1006. */
static int cbinfo_nostate(void *cbdata, int wherefrom, int whichinfo) {
    if (cbdata == nullptr) return 1006;
    bool known;
    switch (wherefrom) {
    case 3:
        known = whichinfo == 1 || whichinfo == 3 || whichinfo == 5 || whichinfo == 7;
        break;
    case 4:
    case 5:
    case 6:
        known = (whichinfo >= 8 && whichinfo <= 12) || whichinfo == 17;
        break;
    case 7:
        known = whichinfo >= 13 && whichinfo <= 16;
        break;
    default: /* 101 to 111: the MIP's places */
        known = whichinfo >= 1 && whichinfo <= 17;
        break;
    }
    return known ? 1006 : 1003;
}

TRV_EXPORT int TRVgetcallbackinfo(TRVenv env, void *cbdata, int wherefrom, int whichinfo,
                                  void *result_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int status;
    if (wherefrom < 1 || wherefrom > 111 || (wherefrom >= 8 && wherefrom <= 100)) {
        status = 1003;
    } else if (result_p == nullptr) {
        status = 1004;
    } else if (wherefrom == 1 || wherefrom == 2) {
        status = simplex_cbinfo(env, cbdata, wherefrom, whichinfo, result_p);
    } else {
        status = cbinfo_nostate(cbdata, wherefrom, whichinfo);
    }
    return call_leave(env, status);
}
