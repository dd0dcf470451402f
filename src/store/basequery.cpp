/*
 * basequery.cpp - the stored basis read back in the caller's terms, with
 * the dual norms of its basic variables and the primal weights, and the
 * pricing norms that the caller gives for it.
 *
 * Columns and rows added since the run read as they would enter the next
 * one: columns nonbasic at a finite bound, rows with a basic slack.
 * Norms given by the caller: primal weights one per column and one per
 * row (for the row's slack or range column); dual norms one per basic
 * variable, named as TRVgetdnorms names them (a column j, or -i-1 for row
 * i's basic slack or range column). Every value must be positive and
 * finite (1003 otherwise); an array of the wrong length is 1207 when short
 * and 1208 when long. Nothing is changed unless all the checks pass. When
 * rows or columns were added since the basis was kept, the basis grows to
 * the model's size first.
 */
#include <cmath>
#include <cstring>

#include "store/basis.h"

/* Handle checks, merge of pending additions, and the basis; null with
 * *status set when there is none. */
static const start_rec *base_frame(TRVenv *env, TRVlp *lp, int *status) {
    *status = call_enter(env, lp, CALL_MERGE);
    if (*status != 0) return nullptr;
    const start_rec *sr = start_fitting(*lp);
    if (sr == nullptr) *status = 1262;
    return sr;
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
    return start_fitting(lp) != nullptr;
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

/* ---- norms given by the caller ------------------------------------------ */

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
