/*
 * start.cpp - the stored basis and the working LP of a run: the basis
 * that a finished run leaves on the problem with the pricing norms of its
 * variables, its load into the working LP of a later run (trimmed to the
 * variables that pivot when a deletion or the caller left too many basic),
 * and the recovery file that a long run writes.
 *
 * The primal steepest-edge weights are kept in the model's terms like the
 * statuses, one per structural column and one per row for its slack or
 * range column; a basic variable and a row with neither kind of column
 * (its artificial is never priced) keep 1. They depend only on the basis
 * and the matrix, and are in the terms of the working form the optimisers
 * saw (scaled when the model is).
 */
#include <cmath>

#include "formats/bas.h"
#include "simplex/core.h"

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

/* The primal run's weights are its last word on the basis: steepest-edge
 * pricing, and no dual took over from it. Weights from an exact start
 * are kept only while the updates stayed true: each pivot checks the
 * entering weight against its exact value, and a weight that drifted once
 * leaves others astray, which would cost a later run more than computing
 * them anew. Weights from the cheap start were estimates from the first. */
static bool weights_final(TRVlp lp) {
    const primal_state *ps = lp->primal;
    if (ps == nullptr || lp->dual != nullptr || lp->solver->it.pweight == nullptr) return false;
    return ps->pricing == 3 || (ps->pricing == 2 && ps->steep_miss == 0);
}

void start_pnorms_save(TRVlp lp) {
    start_rec *sr = lp->start;
    if (sr == nullptr || !weights_final(lp) || start_pnorms_alloc(sr) != 0) return;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    for (int j = 0; j < sr->ncols; j++) sr->pcnorm[j] = 1.0;
    for (int i = 0; i < sr->nrows; i++) sr->prnorm[i] = 1.0;
    for (int j = 0; j < s->ntotal; j++) {
        double w = it->status[j] == 1 ? 1.0 : it->pweight[j];
        if (j < s->n) sr->pcnorm[j] = w;
        else sr->prnorm[s->row_of_var[j]] = w;
    }
    sr->has_pnorms = 1;
}

double start_pnorm(const start_rec *sr, const simplex_lp *s, int j) {
    if (sr == nullptr || !sr->has_pnorms || j >= s->ntotal) return 0.0;
    int st = start_status(sr, s, j);
    if (st < 0 || st == 1) return 0.0;
    return j < s->n ? sr->pcnorm[j] : sr->prnorm[s->row_of_var[j]];
}

/* The recovery file of a run: every parameter 1004 iterations the working
 * basis goes to the file; a failed write warns. */
void start_periodic(TRVenv env, TRVlp lp, int n_it) {
    if (n_it == 0 || n_it % par_int(env, 1004) != 0) return;
    const lp_data *d = lp->lpdata;
    char *name = bas_recovername(lp);
    int *cstat = trv_alloc<int>(d->ncols);
    int *rstat = trv_alloc<int>(d->nrows);
    int status = name && cstat && rstat ? start_working(lp, cstat, rstat) : 1001;
    if (status == 0) status = bas_write(env, lp, name, cstat, rstat, n_it, 0);
    if (status == 0)
        TRVmsg(env->reschannel, "Basis written to file '%s'.\n", name);
    else
        TRVmsg(env->warnchannel, "Warning: Basis recovery file '%s' not written.\n",
               name != nullptr ? name : "");
    trv_free(&name);
    trv_free(&cstat);
    trv_free(&rstat);
}

