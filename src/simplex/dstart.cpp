/*
 * dstart.cpp - the basis that a finished run leaves on the problem, with
 * the dual norms of its basic variables, and its load into the working LP
 * of a later run. The record is kept in the model's terms (a status per
 * column and per row), so that it survives a change of bounds or costs,
 * and rows added after it was saved enter with their slacks basic.
 */
#include <cmath>

#include "simplex/dual.h"

void start_free(TRVlp lp) {
    start_rec *sr = lp->start;
    if (sr == nullptr) return;
    trv_free(&sr->cstat);
    trv_free(&sr->rstat);
    trv_free(&sr->cnorm);
    trv_free(&sr->rnorm);
    trv_free(&lp->start);
}

/* The variable standing for row i: its slack, or its artificial. */
static int row_var(const simplex_lp *s, int i) { return s->slack_of_row[i]; }

int start_save(TRVlp lp, int with_norms) {
    if (lp->solver == nullptr) return 0;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    start_free(lp);
    start_rec *sr = trv_zalloc<start_rec>(1);
    if (sr == nullptr) return 1001;
    lp->start = sr;
    int nc = s->nstruct, m = s->m;
    sr->ncols = nc;
    sr->nrows = m;
    sr->cstat = trv_alloc<signed char>(nc);
    sr->rstat = trv_alloc<signed char>(m);
    sr->cnorm = trv_zalloc<double>(nc);
    sr->rnorm = trv_zalloc<double>(m);
    if (!sr->cstat || !sr->rstat || !sr->cnorm || !sr->rnorm) {
        start_free(lp);
        return 1001;
    }
    for (int j = 0; j < nc; j++) sr->cstat[j] = it->status[j];
    for (int i = 0; i < m; i++) {
        int j = row_var(s, i);
        sr->rstat[i] = it->status[j];
        /* an artificial of a row with a slack counts as that row's */
        if (j != s->ntotal + i && it->status[s->ntotal + i] == 1) sr->rstat[i] = 1;
    }
    sr->has_norms = with_norms && it->dweight != nullptr && lp->dual != nullptr &&
                    lp->dual->pricing != DPR_PLAIN && lp->dual->pricing != DPR_SWITCH;
    if (sr->has_norms) {
        for (int p = 0; p < m; p++) {
            int j = it->head[p];
            if (j < nc) sr->cnorm[j] = it->dweight[p];
            else sr->rnorm[s->row_of_var[j]] = it->dweight[p];
        }
    }
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

int start_load(TRVenv env, TRVlp lp) {
    start_rec *sr = lp->start;
    if (sr == nullptr || lp->solver == nullptr || par_int(env, 1001) == 0) return 0;
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m;
    if (sr->ncols != s->nstruct || sr->nrows > m) return 0;
    for (int j = 0; j < s->ncoltot; j++) it->status[j] = static_cast<signed char>(fit_status(s, j, 0));
    int nb = 0;
    for (int j = 0; j < s->nstruct; j++) {
        int st = sr->cstat[j];
        if (st == 1 && nb < m) {
            it->status[j] = 1;
            it->head[nb++] = j;
        } else {
            it->status[j] = static_cast<signed char>(fit_status(s, j, st == 1 ? 0 : st));
        }
    }
    for (int i = 0; i < m; i++) {
        int j = row_var(s, i);
        bool basic = i >= sr->nrows || sr->rstat[i] == 1;
        if (basic && nb < m) {
            it->status[j] = 1;
            it->head[nb++] = j;
        } else if (i < sr->nrows) {
            it->status[j] = static_cast<signed char>(fit_status(s, j, sr->rstat[i]));
        }
    }
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

int start_norms(TRVlp lp) {
    const start_rec *sr = lp->start;
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int missing = 0;
    for (int p = 0; p < s->m; p++) {
        int j = it->head[p];
        double w = 0.0;
        if (sr != nullptr && sr->has_norms) {
            if (j < s->nstruct) {
                if (j < sr->ncols) w = sr->cnorm[j];
            } else {
                int i = s->row_of_var[j];
                if (i >= 0 && i < sr->nrows && j == row_var(s, i)) w = sr->rnorm[i];
            }
        }
        it->dweight[p] = w;
        if (w < 1e-10) missing++;
    }
    return missing;
}
