/*
 * copynorm.cpp - pricing norms that the caller gives for the stored basis,
 * and their release. Primal weights come one per column and one per row
 * (for the row's slack or range column); dual norms one per basic
 * variable, named as TRVgetdnorms names them (a column j, or -i-1 for row
 * i's basic slack or range column). Every value must be positive and
 * finite (1003 otherwise); an array of the wrong length is 1207 when short
 * and 1208 when long. Nothing is changed unless all the checks pass. When
 * rows or columns were added since the basis was kept, the basis grows to
 * the model's size first, the new columns nonbasic and the new rows with
 * their slacks basic, as the next run would take them.
 */
#include <cmath>

#include "simplex/dual.h"

/* 1003 reported unless each of the cnt values can be a norm. */
static int check_values(TRVenv env, const double *v, int cnt) {
    for (int k = 0; k < cnt; k++)
        if (!(v[k] > 0.0 && std::isfinite(v[k]))) return env_error(env, 1003);
    return 0;
}

static int check_length(TRVenv env, int len, int want) {
    if (len < want) return env_error(env, 1207);
    if (len > want) return env_error(env, 1208);
    return 0;
}

/* Opens a norm copy: the frame with the merge, the required arrays and
 * a stored basis that fits the model; 0 or the code. */
static int norm_enter(TRVenv *env, TRVlp *lp, bool given) {
    int status = call_enter(env, lp, CALL_MERGE);
    if (status != 0) return status;
    if (!given) return 1004;
    const start_rec *sr = (*lp)->start;
    const lp_data *d = (*lp)->lpdata;
    if (sr == nullptr || sr->ncols > d->ncols || sr->nrows > d->nrows) return 1262;
    return 0;
}

/* ---- primal ------------------------------------------------------------------ */

static int put_pnorms(TRVlp lp, const double *cnorm, const double *rnorm) {
    int status = start_grow(lp);
    if (status == 0) status = start_pnorms_alloc(lp->start);
    if (status != 0) return status;
    start_rec *sr = lp->start;
    for (int j = 0; j < sr->ncols; j++) sr->pcnorm[j] = cnorm[j];
    for (int i = 0; i < sr->nrows; i++) sr->prnorm[i] = rnorm[i];
    sr->has_pnorms = 1;
    return 0;
}

TRV_EXPORT int TRVcopypnorms(TRVenv env, TRVlp lp, const double *cnorm, const double *rnorm,
                             int len) {
    int status = norm_enter(&env, &lp, cnorm != nullptr && rnorm != nullptr);
    if (status == 0) {
        const lp_data *d = lp->lpdata;
        status = check_length(env, len, d->ncols);
        if (status == 0) status = check_values(env, cnorm, d->ncols);
        if (status == 0) status = check_values(env, rnorm, d->nrows);
    }
    if (status == 0) status = put_pnorms(lp, cnorm, rnorm);
    return call_leave(env, status);
}

TRV_EXPORT int TRVkillpnorms(TRVlp lp) {
    lp = static_cast<TRVlp>(handle_find(lp, HANDLE_LP, nullptr, nullptr));
    if (lp == nullptr) return 1009;
    if (lp->start != nullptr) start_pnorms_free(lp->start);
    return 0;
}

/* ---- dual -------------------------------------------------------------------- */

/* Head entry h must name a basic variable of the stored basis: 1201 or
 * 1203 reported for an index out of range, 1251 for a nonbasic one. A row
 * added since the basis was kept has its slack basic. */
static int check_head(TRVenv env, const start_rec *sr, const lp_data *d, int h) {
    if (h >= 0) {
        if (h >= d->ncols) return env_error(env, 1201, h);
        if (h >= sr->ncols || sr->cstat[h] != 1) return env_error(env, 1251);
        return 0;
    }
    int i = -(h + 1);
    if (i >= d->nrows) return env_error(env, 1203, i);
    if (i < sr->nrows && sr->rstat[i] != 1 && sr->gstat[i] != 1) return env_error(env, 1251);
    return 0;
}

/* The norm of the basic variable that head entry h names. */
static void put_dnorm(start_rec *sr, int h, double w) {
    if (h >= 0) {
        sr->cnorm[h] = w;
        return;
    }
    int i = -(h + 1);
    if (sr->rstat[i] == 1) sr->rnorm[i] = w;
    else sr->gnorm[i] = w;
}

/* Every dual norm cleared: a basic variable the caller leaves out is
 * computed at the start of the next run. */
static void clear_dnorms(start_rec *sr) {
    for (int j = 0; j < sr->ncols; j++) sr->cnorm[j] = 0.0;
    for (int i = 0; i < sr->nrows; i++) sr->rnorm[i] = sr->gnorm[i] = 0.0;
}

TRV_EXPORT int TRVcopydnorms(TRVenv env, TRVlp lp, const double *norm, const int *head,
                             int len) {
    int status = norm_enter(&env, &lp, norm != nullptr && head != nullptr);
    if (status == 0) status = check_length(env, len, lp->lpdata->nrows);
    for (int k = 0; status == 0 && k < len; k++)
        status = check_head(env, lp->start, lp->lpdata, head[k]);
    if (status == 0) status = check_values(env, norm, len);
    if (status == 0) status = start_grow(lp);
    if (status == 0) {
        start_rec *sr = lp->start;
        clear_dnorms(sr);
        for (int k = 0; k < len; k++) put_dnorm(sr, head[k], norm[k]);
        sr->has_norms = 1;
    }
    return call_leave(env, status);
}

/* The basic variables of the caller's statuses: columns, then rows. */
static int count_basic(const lp_data *d, const int *cstat, const int *rstat) {
    int k = 0;
    for (int j = 0; j < d->ncols; j++) k += cstat[j] == 1;
    for (int i = 0; i < d->nrows; i++) k += rstat[i] == 1;
    return k;
}

TRV_EXPORT int TRVcopybasednorms(TRVenv env, TRVlp lp, const int *cstat, const int *rstat,
                                 const double *dnorm) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status == 0 && (cstat == nullptr || rstat == nullptr || dnorm == nullptr)) status = 1004;
    if (status == 0) status = check_values(env, dnorm, count_basic(lp->lpdata, cstat, rstat));
    if (status == 0) status = start_from_status(env, lp, cstat, rstat);
    if (status == 0) {
        start_rec *sr = lp->start;
        int k = 0;
        for (int j = 0; j < sr->ncols; j++)
            if (cstat[j] == 1) put_dnorm(sr, j, dnorm[k++]);
        for (int i = 0; i < sr->nrows; i++)
            if (rstat[i] == 1) put_dnorm(sr, -i - 1, dnorm[k++]);
        sr->has_norms = 1;
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVkilldnorms(TRVlp lp) {
    lp = static_cast<TRVlp>(handle_find(lp, HANDLE_LP, nullptr, nullptr));
    if (lp == nullptr) return 1009;
    if (lp->start != nullptr) lp->start->has_norms = 0;
    return 0;
}
