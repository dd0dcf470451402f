/*
 * dstart.cpp - the basis that a finished run leaves on the problem, with
 * the dual norms of its basic variables, and its load into the working LP
 * of a later run. The record is kept in the model's terms (a status per
 * structural column, and per row for its slack or artificial and for its
 * range column), so that it survives a change of bounds or costs; columns
 * and rows added after it was saved enter nonbasic and with their slacks
 * basic respectively, and a deletion takes their entries out in step.
 */
#include <cmath>

#include "simplex/dual.h"

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

/* The variable standing for row i: its slack, or its artificial. */
static int row_var(const simplex_lp *s, int i) { return s->slack_of_row[i]; }

void start_fill(const simplex_lp *s, const simplex_iter *it, signed char *cstat,
                signed char *rstat, signed char *gstat) {
    for (int j = 0; j < s->n; j++) cstat[j] = it->status[j];
    for (int i = 0; i < s->m; i++) {
        int j = row_var(s, i);
        rstat[i] = it->status[j];
        /* an artificial of a row with a slack counts as that row's */
        if (j != s->ntotal + i && it->status[s->ntotal + i] == 1) rstat[i] = 1;
        gstat[i] = -1;
    }
    for (int j = s->n; j < s->nstruct; j++) {
        int i = s->row_of_var[j];
        if (i >= 0) gstat[i] = it->status[j];
    }
}

int start_working(TRVlp lp, int *cstat, int *rstat) {
    const simplex_lp *s = &lp->solver->splp;
    start_rec sr{};
    sr.ncols = s->n;
    sr.nrows = s->m;
    sr.cstat = trv_alloc<signed char>(s->n);
    sr.rstat = trv_alloc<signed char>(s->m);
    sr.gstat = trv_alloc<signed char>(s->m);
    int status = 1001;
    if (sr.cstat && sr.rstat && sr.gstat) {
        start_fill(s, &lp->solver->it, sr.cstat, sr.rstat, sr.gstat);
        start_statuses(&sr, lp->lpdata, cstat, rstat);
        status = 0;
    }
    trv_free(&sr.cstat);
    trv_free(&sr.rstat);
    trv_free(&sr.gstat);
    return status;
}

int start_save(TRVlp lp, int with_norms) {
    if (lp->solver == nullptr) return 0;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    int n = s->n, m = s->m;
    /* a save that fails leaves no basis: the next run starts cold */
    start_free(lp);
    if (start_replace(lp, n, m) != 0) return 1001;
    start_rec *sr = lp->start;
    start_fill(s, it, sr->cstat, sr->rstat, sr->gstat);
    sr->has_norms = with_norms && it->dweight != nullptr && lp->dual != nullptr &&
                    lp->dual->pricing != DPR_PLAIN && lp->dual->pricing != DPR_SWITCH;
    if (sr->has_norms) {
        for (int p = 0; p < m; p++) {
            int j = it->head[p];
            if (j < n) sr->cnorm[j] = it->dweight[p];
            else if (j < s->nstruct) sr->gnorm[s->row_of_var[j]] = it->dweight[p];
            else sr->rnorm[s->row_of_var[j]] = it->dweight[p];
        }
    }
    if (with_norms) start_pnorms_save(lp);
    return 0;
}

/* The status a nonbasic variable can take with its bounds. */
static int fit_status(const simplex_lp *s, int j, int st) {
    bool fl = s->has_lower[j], fu = s->has_upper[j];
    if (st == 0 && fl) return 0;
    if (st == 2 && fu) return 2;
    if (st == 3 && !fl && !fu) return 3;
    if (!fl && !fu) return 3;
    if (fl && (!fu || std::fabs(s->lower[j]) <= std::fabs(s->upper[j]))) return 0;
    return 2;
}

int start_status(const start_rec *sr, const simplex_lp *s, int j) {
    if (j < s->n) return j < sr->ncols ? sr->cstat[j] : -1;
    int i = s->row_of_var[j];
    if (i < 0 || i >= sr->nrows) return -1;
    if (j < s->nstruct) return sr->gstat[i];
    return j == row_var(s, i) ? sr->rstat[i] : -1;
}

int start_load(TRVenv env, TRVlp lp) {
    if (lp->start == nullptr) return 0;
    if (par_int(env, 1001) == 0 && !lp->start->forced) return 0;
    lp->start->forced = 0;
    return start_apply(env, lp);
}

/* The status variable j takes from the record: a row added since the save
 * enters with its slack basic, a column added since at a bound. */
static int stored_status(const start_rec *sr, const simplex_lp *s, int j) {
    int st = start_status(sr, s, j);
    if (st < 0 && j >= s->ntotal) st = 0;
    if (st < 0 && j >= s->nstruct && j == row_var(s, s->row_of_var[j])) st = 1;
    return st;
}

/* More basic variables than rows (a row deleted while its slack was
 * nonbasic, a copied basis with one too many): a factorization of all of
 * them keeps in the header those that pivot, so that the basis the run
 * starts from is not singular for want of a choice. Returns the count
 * kept, or -1 when it cannot tell (no memory). */
static int trim_basic(TRVenv env, TRVlp lp, int *cand, int nb) {
    int m = lp->solver->splp.m;
    int *rowmap = trv_alloc<int>(m > 0 ? m : 1), *colmap = trv_alloc<int>(nb);
    int kept = -1;
    if (rowmap != nullptr && colmap != nullptr && lp->factor != nullptr) {
        const simplex_iter *it = &lp->solver->it;
        int st = lu_crash_factor(env, lp, nb, cand, rowmap, colmap, nullptr, it->markowitz,
                                 it->pivot_tol);
        if (st == 0 || st == RC_REPAIRED) {
            kept = 0;
            for (int c = 0; c < nb; c++)
                if (colmap[c] >= 0) cand[kept++] = cand[c];
        }
    }
    trv_free(&rowmap);
    trv_free(&colmap);
    return kept;
}

int start_apply(TRVenv env, TRVlp lp) {
    start_rec *sr = lp->start;
    if (sr == nullptr || lp->solver == nullptr) return 0;
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m;
    if (sr->ncols > s->n || sr->nrows > m) return 0;
    int nb = 0;
    for (int j = 0; j < s->ncoltot; j++) nb += stored_status(sr, s, j) == 1;
    int *cand = nb > m ? trv_alloc<int>(nb) : nullptr;
    int kept = -1;
    if (cand != nullptr) {
        int k = 0;
        for (int j = 0; j < s->ncoltot; j++)
            if (stored_status(sr, s, j) == 1) cand[k++] = j;
        kept = trim_basic(env, lp, cand, nb);
    }
    if (kept >= 0) {
        /* the variables that pivoted, the others at a bound */
        for (int j = 0; j < s->ncoltot; j++) {
            int st = stored_status(sr, s, j);
            it->status[j] = static_cast<signed char>(fit_status(s, j, st == 1 ? 0 : st));
        }
        for (int k = 0; k < kept; k++) {
            it->status[cand[k]] = 1;
            it->head[k] = cand[k];
        }
        nb = kept;
    } else {
        /* the first m basic variables by index */
        nb = 0;
        for (int j = 0; j < s->ncoltot; j++) {
            int st = stored_status(sr, s, j);
            if (st == 1 && nb < m) {
                it->status[j] = 1;
                it->head[nb++] = j;
            } else {
                it->status[j] = static_cast<signed char>(fit_status(s, j, st == 1 ? 0 : st));
            }
        }
    }
    trv_free(&cand);
    /* too few basic variables: slacks fill the basis, and the
     * factorization's repair replaces those that make it singular */
    for (int i = 0; i < m && nb < m; i++) {
        int j = row_var(s, i);
        if (it->status[j] == 1) continue;
        it->status[j] = 1;
        it->head[nb++] = j;
    }
    for (int j = 0; j < s->ncoltot; j++) {
        if (it->status[j] == 0) it->x[j] = s->lower[j];
        else if (it->status[j] == 2) it->x[j] = s->upper[j];
        else if (it->status[j] == 3) it->x[j] = 0.0;
    }
    return 1;
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

int start_norms(TRVlp lp) {
    const start_rec *sr = lp->start;
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int missing = 0;
    for (int p = 0; p < s->m; p++) {
        int j = it->head[p];
        double w = 0.0;
        if (sr != nullptr && sr->has_norms) {
            if (j < s->n) {
                if (j < sr->ncols) w = sr->cnorm[j];
            } else {
                int i = s->row_of_var[j];
                if (i >= 0 && i < sr->nrows) {
                    if (j < s->nstruct) w = sr->gnorm[i];
                    else if (j == row_var(s, i)) w = sr->rnorm[i];
                }
            }
        }
        it->dweight[p] = w;
        if (w < 1e-10) missing++;
    }
    return missing;
}
