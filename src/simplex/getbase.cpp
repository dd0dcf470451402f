/*
 * getbase.cpp - the stored basis of the last run read back in the caller's
 * terms, with the dual norms of its basic variables and the primal norms.
 *
 * Column status: 0 nonbasic at lower bound, 1 basic, 2 nonbasic at upper
 * bound, 3 nonbasic free. Row status: 1 when the row's slack (or, for a
 * ranged row, its range column) is basic, otherwise 0; a ranged row that
 * sits at the upper end of its range is 2. Columns and rows added since
 * the run read as they would enter the next one: columns nonbasic at a
 * finite bound, rows with a basic slack.
 */
#include <cstring>

#include "simplex/dual.h"

/* The stored basis when it fits the model as it now stands (a deletion
 * keeps it in step; rows and columns added since read as they would
 * enter), else null. */
static const start_rec *fitting_start(TRVlp lp) {
    const start_rec *sr = lp->start;
    const lp_data *d = lp->lpdata;
    if (sr == nullptr || sr->ncols > d->ncols || sr->nrows > d->nrows) return nullptr;
    return sr;
}

static int column_status(const start_rec *sr, const lp_data *d, int j) {
    if (j < sr->ncols) return sr->cstat[j];
    if (d->lb[j] > -TRV_INF) return 0;
    if (d->ub[j] < TRV_INF) return 2;
    return 3;
}

static int row_status(const start_rec *sr, const lp_data *d, int i) {
    if (i >= sr->nrows || sr->rstat[i] == 1) return 1;
    if (d->sense[i] != 'R' || sr->gstat[i] < 0) return 0;
    /* the range column decides: at its lower bound the row is at the
     * lower end of its range */
    return sr->gstat[i] == 1 ? 1 : sr->gstat[i] == 2 ? 2 : 0;
}

/* Handle checks, merge of pending additions, and the basis; null with
 * *status set when there is none. */
static const start_rec *base_frame(TRVenv *env, TRVlp *lp, int *status) {
    *status = call_enter(env, lp, CALL_MERGE);
    if (*status != 0) return nullptr;
    const start_rec *sr = fitting_start(*lp);
    if (sr == nullptr) *status = 1262;
    return sr;
}

void start_statuses(const start_rec *sr, const lp_data *d, int *cstat, int *rstat) {
    if (cstat)
        for (int j = 0; j < d->ncols; j++) cstat[j] = column_status(sr, d, j);
    if (rstat)
        for (int i = 0; i < d->nrows; i++) rstat[i] = row_status(sr, d, i);
}

int start_get(TRVlp lp, int *cstat, int *rstat) {
    const start_rec *sr = fitting_start(lp);
    if (sr == nullptr) return 1262;
    start_statuses(sr, lp->lpdata, cstat, rstat);
    return 0;
}

TRV_EXPORT int TRVgetbase(TRVenv env, TRVlp lp, int *cstat, int *rstat) {
    int status;
    const start_rec *sr = base_frame(&env, &lp, &status);
    if (sr != nullptr) start_statuses(sr, lp->lpdata, cstat, rstat);
    return call_leave(env, status);
}

TRV_EXPORT int TRVcangetbase(TRVenv env, TRVlp lp) {
    int status = call_enter(&env, &lp, 0);
    if (status != 0) {
        call_leave(env, status);
        return 0;
    }
    return fitting_start(lp) != nullptr;
}

/* The basic variables of the stored basis in the order the norm getters
 * hand them out, structural columns by index and then rows by index, with
 * their norms; a row's entry is its basic slack or range column. Returns
 * the count, at most the number of rows. */
static int basic_list(const start_rec *sr, const lp_data *d, int *head, double *norm) {
    int k = 0;
    for (int j = 0; j < sr->ncols && j < d->ncols; j++) {
        if (sr->cstat[j] != 1) continue;
        if (head) head[k] = j;
        if (norm) norm[k] = sr->cnorm[j];
        k++;
    }
    for (int i = 0; i < sr->nrows; i++) {
        double w;
        if (sr->rstat[i] == 1) w = sr->rnorm[i];
        else if (sr->gstat[i] == 1) w = sr->gnorm[i];
        else continue;
        if (head) head[k] = -i - 1;
        if (norm) norm[k] = w;
        k++;
    }
    return k;
}

/* Norms exist only for a basis that a dual run with steepest-edge
 * pricing left, and only while no row or column has been added. */
static int norms_frame(TRVenv *env, TRVlp *lp, const start_rec **sr_p) {
    int status;
    const start_rec *sr = base_frame(env, lp, &status);
    if (sr == nullptr) return status;
    const lp_data *d = (*lp)->lpdata;
    if (!sr->has_norms || sr->ncols != d->ncols || sr->nrows != d->nrows) return 1264;
    *sr_p = sr;
    return 0;
}

TRV_EXPORT int TRVgetdnorms(TRVenv env, TRVlp lp, double *norm, int *head, int *len_p) {
    const start_rec *sr = nullptr;
    int status = norms_frame(&env, &lp, &sr);
    if (status == 0 && (norm == nullptr || head == nullptr || len_p == nullptr)) status = 1004;
    if (status != 0) return call_leave(env, status);
    *len_p = basic_list(sr, lp->lpdata, head, norm);
    return 0;
}

TRV_EXPORT int TRVgetbasednorms(TRVenv env, TRVlp lp, int *cstat, int *rstat,
                                double *dnorm) {
    const start_rec *sr = nullptr;
    int status = norms_frame(&env, &lp, &sr);
    if (status == 0 && (cstat == nullptr || rstat == nullptr || dnorm == nullptr)) status = 1004;
    if (status != 0) return call_leave(env, status);
    start_statuses(sr, lp->lpdata, cstat, rstat);
    basic_list(sr, lp->lpdata, nullptr, dnorm);
    return 0;
}

/* Primal norms exist for a basis that a primal run with steepest-edge
 * pricing left or that the caller gave them, while the model has the
 * basis's size. */
TRV_EXPORT int TRVgetpnorms(TRVenv env, TRVlp lp, double *cnorm, double *rnorm, int *len_p) {
    int status;
    const start_rec *sr = base_frame(&env, &lp, &status);
    if (sr == nullptr) return call_leave(env, status);
    const lp_data *d = lp->lpdata;
    if (!sr->has_pnorms || sr->ncols != d->ncols || sr->nrows != d->nrows) status = 1264;
    else if (cnorm == nullptr || rnorm == nullptr || len_p == nullptr) status = 1004;
    if (status != 0) return call_leave(env, status);
    std::memcpy(cnorm, sr->pcnorm, sizeof(double) * sr->ncols);
    std::memcpy(rnorm, sr->prnorm, sizeof(double) * sr->nrows);
    *len_p = sr->ncols;
    return 0;
}
