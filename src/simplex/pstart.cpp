/*
 * pstart.cpp - the primal steepest-edge weights that a finished primal run
 * leaves with its stored basis, and their lookup when a later run starts
 * from that basis. Like the statuses they are kept in the model's terms,
 * one per structural column and one per row for its slack or range column,
 * so that they outlive a change of bounds or costs; a basic variable and a
 * row with neither kind of column (its artificial is never priced) keep 1.
 * The weights depend only on the basis and the matrix, and are in the
 * terms of the working form the optimisers saw (scaled when the model is).
 */
#include "simplex/dual.h"

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
