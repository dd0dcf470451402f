/*
 * binv.cpp - the basis inverse applied for the caller. The stored basis of
 * the last run is loaded into a working copy and factored afresh; the copy
 * lives for the call only, and results come back in the caller's units and
 * signs.
 *
 * The caller's basis header: head[p] is the structural column j basic in
 * position p, or -i-1 when the variable of row i is basic there (its slack,
 * or for a ranged row its range column). Every row variable is taken with
 * the column +e_i, so that its value is the row's slack rhs - A x.
 */
#include "simplex/core.h"

/* What turns a working value of variable j into the caller's: the scale
 * factor, and for a row variable the sign of its working column. */
static double caller_factor(const lp_data *d, const simplex_lp *s, int j) {
    if (j < s->n) return d->colscale ? 1.0 / d->colscale[j] : 1.0;
    int i = s->row_of_var[j];
    double f = d->rowscale ? d->rowscale[i] : 1.0;
    return s->val[s->col_beg[j]] < 0.0 ? -f : f;
}

static int caller_head(const simplex_lp *s, int j) {
    return j < s->n ? j : -s->row_of_var[j] - 1;
}

/* A working copy of the problem with the stored basis factored; the
 * caller releases it with binv_release. */
static int binv_prepare(TRVenv env, TRVlp lp) {
    if (lp->start == nullptr) return 1262;
    int status = simplex_build(env, lp);
    if (status != 0) return status;
    start_apply(env, lp);
    double u = lp->solver->it.markowitz;
    status = lu_refactor(env, lp, &u, lp->solver->it.pivot_tol, 0, 0);
    return status;
}

static void binv_release(TRVlp lp) {
    lu_free(lp);
    simplex_free(lp);
}

/* y = B^-1 A_j for column j, with the header of B. */
static void binv_column(TRVlp lp, int j, int *head, double *y) {
    const lp_data *d = lp->lpdata;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    int m = s->m;
    double *work = y;
    for (int i = 0; i < m; i++) work[i] = 0.0;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) work[s->row_idx[k]] = s->val[k];
    lu_ftran_dense(lp->factor, work);
    double fq = caller_factor(d, s, j);
    for (int p = 0; p < m; p++) {
        int h = it->head[p];
        y[p] = work[p] * caller_factor(d, s, h) / fq;
        if (head) head[p] = caller_head(s, h);
    }
}

TRV_EXPORT int TRVgetgrad(TRVenv env, TRVlp lp, int j, int *head, double *y) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status == 0 && (j < 0 || j >= lp->lpdata->ncols)) status = env_error(env, 1201, j);
    if (status == 0 && y == nullptr) status = 1004;
    /* a run in progress owns the working structures */
    if (status == 0 && lp->solver != nullptr) status = 1003;
    if (status == 0) {
        status = binv_prepare(env, lp);
        if (status == 0) binv_column(lp, j, head, y);
        binv_release(lp);
    }
    return call_leave(env, status);
}
