/*
 * query.cpp - model queries: counts, type and status.
 */
#include "store/lp.h"

/* Frame of a count query: a bad handle reports and counts as 0. */
static lp_data *query_data(TRVenv env, TRVlp lp) {
    if (!env_valid(env)) return nullptr;
    if (!lp_resolve(&lp)) {
        int status = 1009;
        env_report(env, &status);
        return nullptr;
    }
    return lp->lpdata;
}

TRV_EXPORT int TRVgetnumcols(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(env, lp);
    return d ? d->ncols : 0;
}

TRV_EXPORT int TRVgetnumrows(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(env, lp);
    return d ? d->nrows : 0;
}

TRV_EXPORT int TRVgetnumnz(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(env, lp);
    if (d == nullptr) return 0;
    int nz = 0;
    for (int j = 0; j < d->ncols; j++) nz += d->matcnt[j];
    return nz;
}

TRV_EXPORT int TRVgetprobtype(TRVenv env, TRVlp lp) {
    if (!env_valid(env)) return -1;
    if (!lp_valid(lp)) {
        int status = 1009;
        env_report(env, &status);
        return -1;
    }
    return lp->probtype;
}

TRV_EXPORT int TRVgetstat(TRVenv env, TRVlp lp) {
    if (!env_valid(env)) return 0;
    if (!lp_valid(lp)) {
        int status = 1009;
        env_report(env, &status);
        return 0;
    }
    return lp->stat;
}
