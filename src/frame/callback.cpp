/*
 * callback.cpp - the progress callback slots. Each slot lives in its
 * family's parameter block, so a clone made later takes it over.
 */
#include "frame/callback.h"

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

/* ---- the call point ----------------------------------------------------------- */

int cb_call(TRVenv env, int fam, void *cbdata, int wherefrom) {
    TRVcallbackfunc fn = env->cur[fam]->cbfunc;
    if (fn == nullptr) return 0;
    return fn(env->handle, cbdata, wherefrom, env->cur[fam]->cbhandle) != 0;
}
