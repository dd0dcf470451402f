/*
 * call.cpp - the frame of every exported call: the environment handle and
 * the problem handle become their records (or the call ends with 1002 or
 * 1009), the problem's own checks run through the hook its handle holds,
 * and a failure is reported once on the way out.
 */
#include "trv.h"

TRVenv env_record(TRVenv env) {
    return static_cast<TRVenv>(handle_find(env, HANDLE_ENV, nullptr, nullptr));
}

/* A problem may be used under the environment that made it; a call that
 * allows it (the source of a clone) also takes one of the parent's or of a
 * clone's. */
static bool owned_by(TRVenv env, TRVenv owner, unsigned flags) {
    if (owner == env) return true;
    if ((flags & CALL_FAMILY) == 0) return false;
    return owner == env->parent || owner->parent == env;
}

int call_enter(TRVenv *env_p, TRVlp *lp_p, unsigned flags) {
    TRVenv env = env_record(*env_p);
    *env_p = env;
    if (env == nullptr) {
        if (lp_p != nullptr) *lp_p = nullptr;
        return 1002;
    }
    if (lp_p == nullptr) return 0;
    void *owner = nullptr;
    handle_check_fn check = nullptr;
    void *rec = handle_find(*lp_p, HANDLE_LP, &owner, &check);
    *lp_p = nullptr;
    if (rec == nullptr || !owned_by(env, static_cast<TRVenv>(owner), flags)) return 1009;
    int status = check != nullptr ? check(env, &rec, flags) : 0;
    if (status == 0) *lp_p = static_cast<TRVlp>(rec);
    return status;
}

int call_leave(TRVenv env, int status) {
    if (status != 0) env_report(env, &status);
    return status;
}
