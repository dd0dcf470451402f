/*
 * copybase.cpp - a basis given by the caller becomes the stored start of
 * the next run, in the statuses TRVgetbase hands out: columns 0 at lower,
 * 1 basic, 2 at upper, 3 free at zero; rows 1 with the slack basic, 0
 * nonbasic, and for a ranged row 2 at the upper end of its range.
 *
 * The statuses are taken as they stand; a status the bounds cannot hold
 * (at an infinite bound, say) is mended when the run loads the basis, and
 * a basis with the wrong count of basic variables is completed or repaired
 * by the factorization.
 */
#include "simplex/dual.h"

/* The rows and columns the statuses are checked against; 1253 names the
 * first bad entry: columns by index, rows by the count of columns plus the
 * row index, one numbering for both arrays. */
static int check_statuses(TRVenv env, const lp_data *d, const int *cstat, const int *rstat) {
    for (int j = 0; j < d->ncols; j++)
        if (cstat[j] < 0 || cstat[j] > 3) return env_error(env, 1253, j);
    for (int i = 0; i < d->nrows; i++) {
        int hi = d->sense[i] == 'R' ? 2 : 1;
        if (rstat[i] < 0 || rstat[i] > hi) return env_error(env, 1253, d->ncols + i);
    }
    return 0;
}

int start_from_status(TRVenv env, TRVlp lp, const int *cstat, const int *rstat) {
    const lp_data *d = lp->lpdata;
    int status = check_statuses(env, d, cstat, rstat);
    if (status != 0) return status; /* reported already */
    int n = d->ncols, m = d->nrows;
    /* the old basis stays when there is no memory for the new */
    if (start_replace(lp, n, m) != 0) return 1001;
    start_rec *sr = lp->start;
    for (int j = 0; j < n; j++) sr->cstat[j] = static_cast<signed char>(cstat[j]);
    for (int i = 0; i < m; i++) {
        if (d->sense[i] == 'R') {
            /* the range column carries the row's status; the row's own
             * variable stays out of the basis */
            sr->rstat[i] = 0;
            sr->gstat[i] = static_cast<signed char>(rstat[i]);
        } else {
            sr->rstat[i] = static_cast<signed char>(rstat[i] == 1 ? 1 : 0);
            sr->gstat[i] = -1;
        }
    }
    sr->has_norms = 0;
    /* the solution belongs to the basis it came from */
    solution_free(lp);
    lp->stat = 0;
    return 0;
}

TRV_EXPORT int TRVcopybase(TRVenv env, TRVlp lp, const int *cstat, const int *rstat) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status == 0 && (cstat == nullptr || rstat == nullptr)) status = 1004;
    if (status == 0) status = start_from_status(env, lp, cstat, rstat);
    return call_leave(env, status);
}
