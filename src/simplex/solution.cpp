/*
 * solution.cpp - the figures of a finished run taken back to the caller's
 * model as the solution record: unscaled, with the caller's objective
 * sense, and the variable that proved an infeasible or unbounded end.
 */
#include "simplex/core.h"

/* The basic variable the farthest outside its bounds, or -1. */
static int worst_infeasible(const simplex_lp *s, const simplex_iter *it) {
    int best = -1;
    double worst = 0.0;
    for (int p = 0; p < s->m; p++) {
        int j = it->head[p];
        double v = it->x[j], e = 0.0;
        if (s->has_lower[j] && v < s->lower[j]) e = s->lower[j] - v;
        if (s->has_upper[j] && v > s->upper[j]) e = v - s->upper[j];
        if (e > worst) worst = e, best = j;
    }
    return best;
}

/* The variable behind an unbounded or infeasible end, in the caller's
 * terms: a structural column in jdiv, a row (its slack, artificial or
 * range column) in idiv. */
static void solution_divergence(TRVlp lp, soln_rec *sr) {
    const simplex_lp *s = &lp->solver->splp;
    int j = -1;
    if (lp->stat == LPS_UNBOUNDED && lp->primal != nullptr) j = lp->primal->log.entered;
    if (lp->stat == LPS_INFEASIBLE) {
        if (lp->dual != nullptr && lp->dual->status == LPS_INFEASIBLE) j = lp->dual->log.left;
        else j = worst_infeasible(s, &lp->solver->it);
    }
    sr->idiv = sr->jdiv = -1;
    if (j < 0 || j >= s->ncoltot) return;
    if (j < s->n) sr->jdiv = j;
    else sr->idiv = s->row_of_var[j];
}

/* Takes the figures of the working LP back to the caller's model. */
int solution_store(TRVenv env, TRVlp lp, int method, int itcnt, int phase1cnt) {
    (void)env;
    solution_free(lp);
    const lp_data *d = lp->lpdata;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    int n = d->ncols, m = d->nrows;
    soln_rec *sr = trv_zalloc<soln_rec>(1);
    if (sr == nullptr) return 1001;
    lp->soln = sr;
    sr->x = trv_alloc<double>(n);
    sr->dj = trv_alloc<double>(n);
    sr->pi = trv_alloc<double>(m);
    sr->slack = trv_alloc<double>(m);
    if (!sr->x || !sr->dj || !sr->pi || !sr->slack) {
        solution_free(lp);
        return 1001;
    }
    sr->method = method;
    sr->has_basis = 1;
    sr->ncols = n;
    sr->nrows = m;
    sr->itcnt = itcnt;
    sr->phase1cnt = phase1cnt;
    const double *cs = d->colscale, *rs = d->rowscale;
    double sense = s->sense, z = 0.0;
    for (int i = 0; i < m; i++) sr->slack[i] = d->rhs[i];
    for (int j = 0; j < n; j++) {
        double xs = it->x[j];
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) sr->slack[s->row_idx[k]] -= s->val[k] * xs;
        z += s->cost[j] * xs;
        sr->x[j] = cs ? xs / cs[j] : xs;
        sr->dj[j] = sense * (cs ? it->d[j] * cs[j] : it->d[j]);
    }
    for (int i = 0; i < m; i++) {
        sr->pi[i] = sense * (rs ? it->y[i] / rs[i] : it->y[i]);
        if (rs) sr->slack[i] *= rs[i];
    }
    sr->objval = z;
    solution_divergence(lp, sr);
    return 0;
}

