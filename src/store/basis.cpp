/*
 * basis.cpp - the basis that a finished run leaves on the problem, with
 * the pricing norms of its variables: its life (replace, grow with added
 * rows and columns, follow a deletion, drop the norms), its statuses in
 * the caller's terms, and a basis the caller gives. The record is kept in
 * the model's terms (a status per structural column, and per row for its
 * slack or artificial and for its range column), so that it survives a
 * change of bounds or costs; columns and rows added after it was saved
 * enter nonbasic and with their slacks basic respectively.
 *
 * Statuses in the caller's terms are those of TRVgetbase: columns 0 at
 * lower, 1 basic, 2 at upper, 3 free at zero; rows 1 with the slack basic,
 * 0 nonbasic, and for a ranged row 2 at the upper end of its range.
 */
#include "store/basis.h"

static void start_release(start_rec **srp) {
    start_rec *sr = *srp;
    if (sr == nullptr) return;
    trv_free(&sr->cstat);
    trv_free(&sr->rstat);
    trv_free(&sr->gstat);
    trv_free(&sr->cnorm);
    trv_free(&sr->rnorm);
    trv_free(&sr->gnorm);
    start_pnorms_free(sr);
    trv_free(srp);
}

void start_free(TRVlp lp) { start_release(&lp->start); }

int start_replace(TRVlp lp, int n, int m) {
    start_rec *sr = trv_zalloc<start_rec>(1);
    if (sr == nullptr) return 1001;
    sr->ncols = n;
    sr->nrows = m;
    sr->cstat = trv_alloc<signed char>(n);
    sr->rstat = trv_alloc<signed char>(m);
    sr->gstat = trv_alloc<signed char>(m);
    sr->cnorm = trv_zalloc<double>(n);
    sr->rnorm = trv_zalloc<double>(m);
    sr->gnorm = trv_zalloc<double>(m);
    if (!sr->cstat || !sr->rstat || !sr->gstat || !sr->cnorm || !sr->rnorm || !sr->gnorm) {
        start_release(&sr);
        return 1001;
    }
    start_free(lp);
    lp->start = sr;
    return 0;
}

void start_drop_norms(TRVlp lp, int free_them) {
    start_rec *sr = lp->start;
    if (sr == nullptr) return;
    sr->has_norms = 0;
    sr->has_pnorms = 0;
    if (free_them) start_pnorms_free(sr);
}

void start_pnorms_free(start_rec *sr) {
    trv_free(&sr->pcnorm);
    trv_free(&sr->prnorm);
    sr->has_pnorms = 0;
}

int start_pnorms_alloc(start_rec *sr) {
    if (sr->pcnorm == nullptr) sr->pcnorm = trv_alloc<double>(sr->ncols);
    if (sr->prnorm == nullptr) sr->prnorm = trv_alloc<double>(sr->nrows);
    if (sr->pcnorm != nullptr && sr->prnorm != nullptr) return 0;
    start_pnorms_free(sr);
    return 1001;
}


void start_delete(TRVlp lp, const int *map, int rows) {
    start_rec *sr = lp->start;
    if (sr == nullptr) return;
    /* the record may hold fewer rows or columns than the model had (those
     * added since the save): its entries keep their order, so the kept
     * ones take the places 0, 1, ... */
    int old = rows ? sr->nrows : sr->ncols, k = 0;
    bool basic_gone = false;
    for (int i = 0; i < old; i++) {
        if (map[i] < 0) {
            if (!rows && sr->cstat[i] == 1) basic_gone = true;
            continue;
        }
        if (rows) {
            sr->rstat[k] = sr->rstat[i];
            sr->gstat[k] = sr->gstat[i];
            sr->rnorm[k] = sr->rnorm[i];
            sr->gnorm[k] = sr->gnorm[i];
            if (sr->prnorm != nullptr) sr->prnorm[k] = sr->prnorm[i];
        } else {
            sr->cstat[k] = sr->cstat[i];
            sr->cnorm[k] = sr->cnorm[i];
            if (sr->pcnorm != nullptr) sr->pcnorm[k] = sr->pcnorm[i];
        }
        k++;
    }
    if (rows) sr->nrows = k;
    else sr->ncols = k;
    /* the norms belong to the basis matrix: a deletion of rows has dropped
     * them already (the change table), one of nonbasic columns leaves them
     * exact, one of a basic column does not */
    if (basic_gone) start_drop_norms(lp, 0);
}

/* A copy of the first keep entries of old in an array of len, the rest
 * set to fill; null without memory. */
template <typename T> static T *grown(const T *old, int keep, int len, T fill) {
    T *a = trv_alloc<T>(len);
    if (a == nullptr) return nullptr;
    for (int k = 0; k < len; k++) a[k] = k < keep ? old[k] : fill;
    return a;
}

/* The status a column added since the save enters with: at a finite
 * bound, else free. */
static signed char entering_status(const lp_data *d, int j) {
    if (d->lb[j] > -TRV_INF) return 0;
    return d->ub[j] < TRV_INF ? 2 : 3;
}

int start_grow(TRVlp lp) {
    start_rec *sr = lp->start;
    const lp_data *d = lp->lpdata;
    int n = d->ncols, m = d->nrows, n0 = sr->ncols, m0 = sr->nrows;
    if (n0 == n && m0 == m) return 0;
    /* new rows enter with their slacks basic */
    signed char *cs = grown<signed char>(sr->cstat, n0, n, 0);
    signed char *rs = grown<signed char>(sr->rstat, m0, m, 1);
    signed char *gs = grown<signed char>(sr->gstat, m0, m, -1);
    double *cn = grown(sr->cnorm, n0, n, 0.0), *rn = grown(sr->rnorm, m0, m, 0.0);
    double *gn = grown(sr->gnorm, m0, m, 0.0);
    if (!cs || !rs || !gs || !cn || !rn || !gn) {
        trv_free(&cs), trv_free(&rs), trv_free(&gs);
        trv_free(&cn), trv_free(&rn), trv_free(&gn);
        return 1001;
    }
    for (int j = n0; j < n; j++) cs[j] = entering_status(d, j);
    trv_free(&sr->cstat), trv_free(&sr->rstat), trv_free(&sr->gstat);
    trv_free(&sr->cnorm), trv_free(&sr->rnorm), trv_free(&sr->gnorm);
    sr->cstat = cs, sr->rstat = rs, sr->gstat = gs;
    sr->cnorm = cn, sr->rnorm = rn, sr->gnorm = gn;
    sr->ncols = n, sr->nrows = m;
    start_drop_norms(lp, 1);
    return 0;
}

/* The stored basis when it fits the model as it now stands (a deletion
 * keeps it in step; rows and columns added since read as they would
 * enter), else null. */
const start_rec *start_fitting(TRVlp lp) {
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

void start_statuses(const start_rec *sr, const lp_data *d, int *cstat, int *rstat) {
    if (cstat)
        for (int j = 0; j < d->ncols; j++) cstat[j] = column_status(sr, d, j);
    if (rstat)
        for (int i = 0; i < d->nrows; i++) rstat[i] = row_status(sr, d, i);
}

int start_get(TRVlp lp, int *cstat, int *rstat) {
    const start_rec *sr = start_fitting(lp);
    if (sr == nullptr) return 1262;
    start_statuses(sr, lp->lpdata, cstat, rstat);
    return 0;
}

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
