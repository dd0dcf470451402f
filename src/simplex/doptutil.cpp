/*
 * doptutil.cpp - the dual's part of the run record and its
 * recomputations: basic values, duals and reduced costs, the bound choice
 * of the boxed variables, the auxiliary box of phase 1 and the phase
 * test, the layout of the row-wise copy, the pivot row and the
 * refactorization.
 */
#include <cmath>
#include <cstring>

#include "simplex/core.h"

static void state_release(dual_state *ds) {
    run_release(ds);
    trv_free(&ds->lo_on);
    trv_free(&ds->up_on);
    sv_free(&ds->fcol);
    sv_free(&ds->fdelta);
    trv_free(&ds->ar_nnb);
    trv_free(&ds->ar_pos);
    trv_free(&ds->ar_k);
    trv_free(&ds->iwork);
    trv_free(&ds->cand_j);
    trv_free(&ds->cand_ratio);
    trv_free(&ds->cand_a);
    trv_free(&ds->cand_h);
    trv_free(&ds->cand_ord);
    trv_free(&ds->cand_hord);
    trv_free(&ds->cand_group);
    trv_free(&ds->cand_done);
    trv_free(&ds->flip_list);
    kheap_free(&ds->rows);
}

void dual_free(TRVlp lp) {
    if (lp->dual == nullptr) return;
    state_release(lp->dual);
    trv_free(&lp->dual);
    if (lp->solver != nullptr) lp->solver->it.has_dual = 0;
}

/* Row-wise copy of the columns 0..ntotal-1 (artificials never enter),
 * laid out by dual_row_partition. */
static int build_rowwise(const simplex_lp *s, dual_state *ds) {
    if (run_rowwise(s, ds) != 0) return 1001;
    int m = s->m;
    long nz = ds->ar_beg[m];
    ds->ar_nnb = trv_zalloc<int>(m);
    ds->ar_k = trv_alloc<int>(nz);
    /* one place per entry of the columns 0..ntotal-1, which start at 0 */
    ds->ar_pos = trv_alloc<int>(nz + 1);
    return ds->ar_nnb && ds->ar_k && ds->ar_pos ? 0 : 1001;
}

/* Lays out each row of the copy with its nonbasic entries first. */
void dual_row_partition(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    int m = s->m, nt = s->ntotal;
    int *fill = ds->ar_nnb; /* the front of each row while placing */
    for (int i = 0; i < m; i++) fill[i] = 0;
    for (int j = 0; j < nt; j++)
        if (it->status[j] != 1)
            for (int k = s->col_beg[j]; k < s->col_end[j]; k++) fill[s->row_idx[k]]++;
    /* nonbasic entries from the row start, basic ones from the count */
    int *back = ds->iwork;
    for (int i = 0; i < m; i++) back[i] = ds->ar_beg[i] + fill[i];
    for (int i = 0; i < m; i++) fill[i] = ds->ar_beg[i];
    for (int j = 0; j < nt; j++) {
        bool basic = it->status[j] == 1;
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
            int i = s->row_idx[k];
            int e = basic ? back[i]++ : fill[i]++;
            ds->ar_idx[e] = j;
            ds->ar_val[e] = s->val[k];
            ds->ar_k[e] = k;
            ds->ar_pos[k] = e;
        }
    }
    for (int i = 0; i < m; i++) ds->ar_nnb[i] = fill[i] - ds->ar_beg[i];
}

static inline void swap_places(dual_state *ds, int a, int b) {
    if (a == b) return;
    int ja = ds->ar_idx[a], ka = ds->ar_k[a];
    double va = ds->ar_val[a];
    ds->ar_idx[a] = ds->ar_idx[b];
    ds->ar_val[a] = ds->ar_val[b];
    ds->ar_k[a] = ds->ar_k[b];
    ds->ar_pos[ds->ar_k[a]] = a;
    ds->ar_idx[b] = ja;
    ds->ar_val[b] = va;
    ds->ar_k[b] = ka;
    ds->ar_pos[ka] = b;
}

/* The basis change in the copy: entering's entries join the basic part of
 * their rows, leaving's the nonbasic part (an artificial has none). */
void dual_row_swap(TRVlp lp, int entering, int leaving) {
    const simplex_lp *s = &lp->solver->splp;
    dual_state *ds = lp->dual;
    for (int k = s->col_beg[entering]; k < s->col_end[entering]; k++) {
        int i = s->row_idx[k];
        int last = ds->ar_beg[i] + ds->ar_nnb[i] - 1;
        swap_places(ds, ds->ar_pos[k], last);
        ds->ar_nnb[i]--;
    }
    if (leaving >= s->ntotal) return;
    for (int k = s->col_beg[leaving]; k < s->col_end[leaving]; k++) {
        int i = s->row_idx[k];
        int first = ds->ar_beg[i] + ds->ar_nnb[i];
        swap_places(ds, ds->ar_pos[k], first);
        ds->ar_nnb[i]++;
    }
}

int dual_state_alloc(TRVenv env, TRVlp lp) {
    (void)env;
    dual_free(lp);
    dual_state *ds = run_new(&lp->dual, &dual_ops);
    if (ds == nullptr) return 1001;
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m, nc = s->ncoltot;
    if (run_alloc(lp, ds) != 0) return 1001;
    ds->lo_on = trv_alloc<signed char>(nc);
    ds->up_on = trv_alloc<signed char>(nc);
    ds->iwork = trv_alloc<int>(m);
    ds->cand_j = trv_alloc<int>(nc);
    ds->cand_ratio = trv_alloc<double>(nc);
    ds->cand_a = trv_alloc<double>(nc);
    ds->cand_h = trv_alloc<double>(nc);
    ds->flip_list = trv_alloc<int>(nc);
    ds->cand_ord = trv_alloc<int>(nc);
    ds->cand_hord = trv_alloc<int>(nc);
    ds->cand_group = trv_alloc<int>(nc);
    ds->cand_done = trv_alloc<char>(nc);
    int heap_status = kheap_alloc(&ds->rows, m);
    if (it->dweight == nullptr) it->dweight = trv_alloc<double>(m);
    if (!ds->lo_on || !ds->up_on || !ds->iwork || !ds->cand_j || !ds->cand_ratio ||
        !ds->cand_a || !ds->cand_h || !ds->flip_list || !ds->cand_ord || !ds->cand_hord ||
        !ds->cand_group || !ds->cand_done || heap_status != 0 ||
        !it->dweight)
        return 1001;
    if (sv_alloc(&ds->fcol, m) || sv_alloc(&ds->fdelta, m)) return 1001;
    if (build_rowwise(s, ds)) return 1001;
    for (int i = 0; i < m; i++) it->dweight[i] = 1.0;
    dual_true_bounds(lp);
    it->has_dual = 1;
    return 0;
}

/* The working bounds of the model (phase 2). */
void dual_true_bounds(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    dual_state *ds = lp->dual;
    for (int j = 0; j < s->ncoltot; j++) {
        ds->lower[j] = s->lower[j];
        ds->upper[j] = s->upper[j];
        ds->lo_on[j] = s->has_lower[j];
        ds->up_on[j] = s->has_upper[j];
    }
    const lp_data *d = lp->lpdata;
    for (int i = 0; i < s->m; i++) ds->rhs[i] = d->rhs[i];
}

/* The auxiliary box of phase 1, with a zero right-hand side. A variable
 * that a repair dropped stays out as a fixed one. */
static void aux_bounds(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    for (int j = 0; j < s->ncoltot; j++) {
        bool fl = s->has_lower[j], fu = s->has_upper[j];
        ds->lower[j] = fl ? 0.0 : -1.0;
        ds->upper[j] = fu ? 0.0 : 1.0;
        if ((fl && fu) || it->ban[j] == 32) ds->lower[j] = ds->upper[j] = 0.0;
        ds->lo_on[j] = 1;
        ds->up_on[j] = 1;
    }
    for (int i = 0; i < s->m; i++) ds->rhs[i] = 0.0;
}

/* Nonbasic values from their status, basic values by a dense solve. */
void dual_compute_x(TRVlp lp) {
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    /* a free variable in the auxiliary box sits at zero */
    for (int j = 0; j < lp->solver->splp.ncoltot; j++)
        if (it->status[j] == VS_SUPER && ds->lo_on[j] && ds->up_on[j]) it->x[j] = 0.0;
    run_compute_x(lp, ds);
    ds->rows.stale = 1;
}

/* Duals from the basic costs, reduced costs of the nonbasic variables. */
void dual_compute_d(TRVlp lp) {
    const simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    double *w = ds->work;
    for (int i = 0; i < lp->solver->splp.m; i++) w[i] = ds->cost[it->head[i]];
    duals_from_costs(lp, w, ds->work2);
    reduced_costs(lp, ds->cost);
}

double dual_objective(TRVlp lp) {
    return working_objective(lp, lp->dual->cost);
}

/* Sum and count of the violations of the working bounds by basic values. */
double dual_pinf(TRVlp lp, double tol, int *count) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const dual_state *ds = lp->dual;
    double sum = 0.0;
    int n = 0;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        double x = it->x[j], v = 0.0;
        if (ds->lo_on[j] && x < ds->lower[j] - tol) v = ds->lower[j] - x;
        else if (ds->up_on[j] && x > ds->upper[j] + tol) v = x - ds->upper[j];
        if (v > 0.0) {
            sum += v;
            n++;
        }
    }
    if (count) *count = n;
    return sum;
}

/* A boxed nonbasic variable sits at the bound its reduced cost asks for;
 * returns the count of moves (the basic values are then stale). One that
 * a repair dropped stays where it was put: the ratio test never lets it
 * in, so its reduced cost drifts, and moving it across a wide box would
 * undo the progress of the dual objective at every factorization. */
int dual_fix_boxed(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    int moved = 0;
    for (int j = 0; j < s->ncoltot; j++) {
        int st = it->status[j];
        if (st == 1 || !ds->lo_on[j] || !ds->up_on[j] || it->ban[j] == 32) continue;
        if (ds->lower[j] == ds->upper[j]) {
            if (st == 3) it->status[j] = 0, moved++;
            continue;
        }
        double dj = it->d[j];
        if (st == 0 && dj < -ds->opt_tol) it->status[j] = 2, moved++;
        else if (st == 2 && dj > ds->opt_tol) it->status[j] = 0, moved++;
        else if (st == 3) it->status[j] = dj >= 0.0 ? 0 : 2, moved++;
    }
    return moved;
}

/* Count and sum of the dual infeasibilities of the nonbasic variables that
 * are not boxed in the working bounds, nor dropped by a repair (they are
 * judged at the end of the run). */
int dual_count_dinf(TRVlp lp, double tol, double *sum) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const dual_state *ds = lp->dual;
    int n = 0;
    double tot = 0.0;
    for (int j = 0; j < s->ncoltot; j++) {
        int st = it->status[j];
        if (st == 1 || (ds->lo_on[j] && ds->up_on[j]) || it->ban[j] == 2 || it->ban[j] == 32)
            continue;
        double v = dual_infeasibility(ds, it, j);
        if (v > tol) {
            n++;
            tot += v;
        }
    }
    if (sum) *sum = tot;
    return n;
}

/* The status a nonbasic variable takes under the true bounds. */
static void true_status(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    for (int j = 0; j < s->ncoltot; j++) {
        if (it->status[j] == 1) continue;
        bool fl = s->has_lower[j], fu = s->has_upper[j];
        if (fl && fu) {
            if (it->status[j] == 3) it->status[j] = it->d[j] >= 0.0 ? 0 : 2;
        } else if (fl) {
            it->status[j] = 0;
        } else if (fu) {
            it->status[j] = 2;
        } else {
            if (it->status[j] != 3) it->x[j] = 0.0;
            it->status[j] = 3;
        }
    }
}

/* The values of the true bounds for a run that ends in phase 1. */
void dual_true_values(TRVlp lp) {
    dual_state *ds = lp->dual;
    dual_true_bounds(lp);
    true_status(lp);
    dual_compute_x(lp);
    ds->objective = dual_objective(lp);
}

/* The phase test on fresh reduced costs: phase 2 on the true bounds when
 * no variable that is not boxed has a dual infeasibility, phase 1 on the
 * auxiliary box otherwise. The basic values are recomputed. Returns 1 when
 * the phase changed. */
int dual_set_phase(TRVlp lp) {
    dual_state *ds = lp->dual;
    int old = ds->phase;
    ds->phase_sets++;
    dual_true_bounds(lp);
    true_status(lp);
    ds->n_dinf = dual_count_dinf(lp, ds->opt_tol, &ds->sum_dinf);
    if (ds->n_dinf == 0) {
        ds->phase = 2;
    } else {
        ds->phase = 1;
        aux_bounds(lp);
    }
    dual_fix_boxed(lp);
    dual_compute_x(lp);
    ds->objective = dual_objective(lp);
    if (ds->phase == 1) ds->sum_dinf = -ds->objective;
    return ds->phase != old;
}

/* The refactorization with repair allowed; the values, duals and phase
 * follow. */
int dual_refactor(TRVenv env, TRVlp lp) {
    dual_state *ds = lp->dual;
    int st = run_refactor(env, lp, ds);
    if (st != 0 && st != RC_REPAIRED) return st;
    dual_row_partition(lp);
    dual_compute_d(lp);
    if (st == RC_REPAIRED) {
        dual_norms_reset(lp);
        dual_set_phase(lp);
        progress_reset(lp, ds);
        return 0;
    }
    if (ds->phase == 2 && dual_count_dinf(lp, ds->opt_tol, nullptr) > 0) {
        dual_set_phase(lp);
        return 0;
    }
    dual_fix_boxed(lp);
    dual_compute_x(lp);
    ds->objective = dual_objective(lp);
    if (ds->phase == 1) ds->sum_dinf = -ds->objective;
    return 0;
}

double dual_dj(TRVlp lp, int j) { return lp->solver->it.d[j]; }

/* A variable a repair fixed that the run needs: one with an entry in the
 * pivot row (row set) or one whose reduced cost is wrong for its bound. */
static bool fixed_needed(const TRVlp lp, bool row) {
    const simplex_iter *it = &lp->solver->it;
    const dual_state *ds = lp->dual;
    if (row) {
        for (int k = 0; k < ds->prow_nz; k++) {
            int j = ds->prow_idx[k];
            if (it->ban[j] == 32 && std::fabs(ds->prow[j]) > DR_TINY) return true;
        }
        return false;
    }
    for (int j = 0; j < lp->solver->splp.ncoltot; j++)
        if (it->ban[j] == 32 && it->status[j] != 1 &&
            dual_infeasibility(ds, it, j) > ds->opt_tol)
            return true;
    return false;
}

int dual_release_fixed(TRVenv env, TRVlp lp, int row) {
    /* each one let go that enters may make the basis singular again:
     * only those the run needs, and as many rounds as at the end, or the
     * repairs run up to their limit */
    if (lp->solver->it.reincluded >= RELEASE_ROUNDS || !fixed_needed(lp, row != 0)) return 0;
    int released = 0;
    release_fixed(env, lp, PR_BIG, dual_dj, &released);
    if (released == 0) return 0;
    lp->solver->it.reincluded++;
    dual_set_phase(lp);
    progress_reset(lp, lp->dual);
    return 1;
}

/* The pivot row of basis position p over the nonbasic variables, in prow
 * with its list; rho holds the row of the inverse. */
void dual_pivot_row(TRVlp lp, int p) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    for (int k = 0; k < ds->prow_nz; k++) ds->prow[ds->prow_idx[k]] = 0.0;
    ds->prow_nz = 0;
    sparse_vec *r = &ds->rho;
    sv_clear(r);
    lu_btran_row(lp->factor, r, p);
    if (r->nz < 0) sv_from_dense(r);
    long work = 0;
    for (int k = 0; k < r->nz; k++) work += ds->ar_nnb[r->idx[k]];
    const signed char *status = it->status;
    if (work < s->nz_matrix / 2) {
        /* the nonbasic part of the rows of rho; a sum that cancels to zero
         * keeps a tiny stand-in so that the list stays without repeats */
        double *prow = ds->prow;
        int *list = ds->prow_idx, nz = 0;
        for (int k = 0; k < r->nz; k++) {
            int i = r->idx[k];
            double v = r->val[i];
            if (v == 0.0) continue;
            const int *idx = ds->ar_idx;
            const double *val = ds->ar_val;
            for (int e = ds->ar_beg[i], end = e + ds->ar_nnb[i]; e < end; e++) {
                int j = idx[e];
                double old = prow[j];
                if (old == 0.0) list[nz++] = j;
                double nw = old + v * val[e];
                prow[j] = nw != 0.0 ? nw : 1e-300;
            }
        }
        ds->prow_nz = nz;
    } else {
        const double *rv = r->val;
        for (int j = 0; j < s->ntotal; j++) {
            if (status[j] == 1) continue;
            double v = 0.0;
            for (int k = s->col_beg[j]; k < s->col_end[j]; k++) v += rv[s->row_idx[k]] * s->val[k];
            if (v != 0.0) {
                ds->prow_idx[ds->prow_nz++] = j;
                ds->prow[j] = v;
            }
        }
    }
}
