/*
 * soln.cpp - the solution record of the last optimisation and the
 * exported functions that read it. The record holds the figures of the
 * model as the caller gave it: unscaled, with the caller's objective sense.
 */
#include <cstring>

#include "store/basis.h"

void solution_free(TRVlp lp) {
    soln_rec *sr = lp->soln;
    if (sr == nullptr) return;
    trv_free(&sr->x);
    trv_free(&sr->pi);
    trv_free(&sr->slack);
    trv_free(&sr->dj);
    trv_free(&lp->soln);
}

/* A change of the model makes the stored solution stale. The record keeps
 * nothing but the vectors, so marking it and freeing it come to the same. */
void soln_invalidate(TRVlp lp, int free_it) {
    (void)free_it;
    solution_free(lp);
}

/* ---- exported reading functions ---------------------------------------- */

/* The handle checks of a solution query; null with *status set otherwise. */
/* Opens a solution query (a pending addition invalidates the solution
 * when it merges): the solution, or null with *status set. */
static soln_rec *soln_frame(TRVenv *env, TRVlp *lp, int *status) {
    *status = call_enter(env, lp, CALL_MERGE);
    if (*status != 0) return nullptr;
    if ((*lp)->soln == nullptr) *status = 1217;
    return (*lp)->soln;
}

TRV_EXPORT int TRVsolution(TRVenv env, TRVlp lp, int *lpstat_p, double *objval_p,
                           double *x, double *pi, double *slack, double *dj) {
    int status = 0;
    soln_rec *sr = soln_frame(&env, &lp, &status);
    if (sr == nullptr) return call_leave(env, status);
    if (lpstat_p) *lpstat_p = lp->stat;
    if (objval_p) *objval_p = sr->objval;
    if (x) std::memcpy(x, sr->x, sizeof(double) * sr->ncols);
    if (dj) std::memcpy(dj, sr->dj, sizeof(double) * sr->ncols);
    if (pi) std::memcpy(pi, sr->pi, sizeof(double) * sr->nrows);
    if (slack) std::memcpy(slack, sr->slack, sizeof(double) * sr->nrows);
    return 0;
}

TRV_EXPORT int TRVgetobjval(TRVenv env, TRVlp lp, double *objval_p) {
    int status = 0;
    soln_rec *sr = soln_frame(&env, &lp, &status);
    if (status == 0 && objval_p == nullptr) status = 1004;
    if (status != 0) return call_leave(env, status);
    *objval_p = sr->objval;
    return 0;
}

/* A range of one of the vectors: over columns (rows false) or rows. */
static int soln_range(TRVenv env, TRVlp lp, const char *fname, double *out,
                      int begin, int end, bool rows, int which) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status != 0) return call_leave(env, status);
    int count = rows ? lp->lpdata->nrows : lp->lpdata->ncols;
    if (begin > end) return call_leave(env, 1200);
    if (!range_check(env, fname, begin, end, 0, count)) return call_leave(env, 1200);
    if (out == nullptr) return call_leave(env, 1004);
    soln_rec *sr = lp->soln;
    if (sr == nullptr) return call_leave(env, 1217);
    const double *src = which == 0 ? sr->x : which == 1 ? sr->pi : which == 2 ? sr->slack : sr->dj;
    std::memcpy(out, src + begin, sizeof(double) * (end - begin + 1));
    return 0;
}

TRV_EXPORT int TRVgetx(TRVenv env, TRVlp lp, double *x, int begin, int end) {
    return soln_range(env, lp, "TRVgetx", x, begin, end, false, 0);
}

TRV_EXPORT int TRVgetpi(TRVenv env, TRVlp lp, double *pi, int begin, int end) {
    return soln_range(env, lp, "TRVgetpi", pi, begin, end, true, 1);
}

TRV_EXPORT int TRVgetslack(TRVenv env, TRVlp lp, double *slack, int begin, int end) {
    return soln_range(env, lp, "TRVgetslack", slack, begin, end, true, 2);
}

TRV_EXPORT int TRVgetdj(TRVenv env, TRVlp lp, double *dj, int begin, int end) {
    return soln_range(env, lp, "TRVgetdj", dj, begin, end, false, 3);
}

/* Row activities A x of a range of rows, from the stored x and the
 * caller's (unscaled) matrix; the range columns of ranged rows are not
 * part of the activity. */
TRV_EXPORT int TRVgetax(TRVenv env, TRVlp lp, double *ax, int begin, int end) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status != 0) return call_leave(env, status);
    if (begin > end) return call_leave(env, 1200);
    if (!range_check(env, "TRVgetax", begin, end, 0, lp->lpdata->nrows))
        return call_leave(env, 1200);
    if (ax == nullptr) return call_leave(env, 1004);
    soln_rec *sr = lp->soln;
    if (sr == nullptr) return call_leave(env, 1217);
    const lp_data *d = lp->lpdata;
    const double *cs = d->colscale, *rs = d->rowscale;
    for (int i = begin; i <= end; i++) ax[i - begin] = 0.0;
    for (int j = 0; j < d->ncols && j < sr->ncols; j++) {
        double xj = sr->x[j];
        if (xj == 0.0) continue;
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) {
            int i = d->matind[k];
            if (i < begin || i > end) continue;
            double a = d->matval[k];
            if (cs) a *= cs[j] * rs[i];
            ax[i - begin] += a * xj;
        }
    }
    return 0;
}

/* The row or column that proved an infeasible or unbounded end: one of
 * the two is set, the other -1; both -1 after any other end. */
TRV_EXPORT int TRVgetijdiv(TRVenv env, TRVlp lp, int *idiv_p, int *jdiv_p) {
    int status = 0;
    soln_rec *sr = soln_frame(&env, &lp, &status);
    if (status == 0 && (idiv_p == nullptr || jdiv_p == nullptr)) status = 1004;
    if (status != 0) return call_leave(env, status);
    *idiv_p = sr->idiv;
    *jdiv_p = sr->jdiv;
    return 0;
}

/* Counts of the last run; 0 with no solution or a bad handle. */
static int count_query(TRVenv env, TRVlp lp, bool phase1) {
    int status = call_enter(&env, &lp, 0);
    if (status != 0) {
        call_leave(env, status);
        return 0;
    }
    if (lp->soln == nullptr) return 0;
    return phase1 ? lp->soln->phase1cnt : lp->soln->itcnt;
}

TRV_EXPORT int TRVgetitcnt(TRVenv env, TRVlp lp) { return count_query(env, lp, false); }

TRV_EXPORT int TRVgetphase1cnt(TRVenv env, TRVlp lp) { return count_query(env, lp, true); }

/* Counters of the barrier, the crossover and the sifting routes. None of
 * them runs in this build, so after the handle checks they are 0. */
static int unused_count(TRVenv env, TRVlp lp) {
    call_leave(env, call_enter(&env, &lp, 0));
    return 0;
}

TRV_EXPORT int TRVgetbaritcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }
TRV_EXPORT int TRVgetcrossppushcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }
TRV_EXPORT int TRVgetcrosspexchcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }
TRV_EXPORT int TRVgetcrossdpushcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }
TRV_EXPORT int TRVgetcrossdexchcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }
TRV_EXPORT int TRVgetpsbcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }
TRV_EXPORT int TRVgetdsbcnt(TRVenv env, TRVlp lp) { return unused_count(env, lp); }

TRV_EXPORT int TRVgetmethod(TRVenv env, TRVlp lp) {
    int status = 0;
    soln_rec *sr = soln_frame(&env, &lp, &status);
    if (sr == nullptr) {
        call_leave(env, status);
        return 0;
    }
    return sr->method;
}
