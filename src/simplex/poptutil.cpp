/*
 * poptutil.cpp - the primal's part of the run record and its
 * recomputations: duals, reduced costs, the composite data of phase 1,
 * the phase test, the refactorization and the pivot row.
 */
#include <cmath>
#include <cstring>

#include "simplex/core.h"

static void state_release(primal_state *ps) {
    run_release(ps);
    trv_free(&ps->c1);
    trv_free(&ps->pmark);
    trv_free(&ps->rw.cand_idx);
    trv_free(&ps->rw.cand_ratio);
    trv_free(&ps->rw.cand_alpha);
    trv_free(&ps->rw.cand_red);
    trv_free(&ps->rw.cand_to);
    trv_free(&ps->rw.cand_state);
    trv_free(&ps->rw.cand_order);
    primal_price_free(ps);
}

void primal_free(TRVlp lp) {
    if (lp->primal == nullptr) return;
    state_release(lp->primal);
    trv_free(&lp->primal);
}

/* Row-wise copy of the columns 0..ntotal-1 (artificials never enter), in
 * column order along each row. */
static int build_rowwise(const simplex_lp *s, primal_state *ps) {
    int m = s->m, nt = s->ntotal;
    if (run_rowwise(s, ps) != 0) return 1001;
    int *fill = trv_alloc<int>(m);
    if (fill == nullptr) return 1001;
    std::memcpy(fill, ps->ar_beg, sizeof(int) * (m > 0 ? m : 1));
    for (int j = 0; j < nt; j++)
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
            int i = s->row_idx[k];
            ps->ar_idx[fill[i]] = j;
            ps->ar_val[fill[i]] = s->val[k];
            fill[i]++;
        }
    trv_free(&fill);
    return 0;
}

int primal_state_alloc(TRVenv env, TRVlp lp) {
    primal_free(lp);
    primal_state *ps = run_new(&lp->primal, &primal_ops);
    if (ps == nullptr) return 1001;
    const simplex_lp *s = &lp->solver->splp;
    int m = s->m, nc = s->ncoltot;
    if (run_alloc(lp, ps) != 0) return 1001;
    ps->c1 = trv_zalloc<double>(m);
    ps->pmark = trv_zalloc<char>(nc);
    ratio_work *rw = &ps->rw;
    rw->cand_idx = trv_alloc<int>(2 * m);
    rw->cand_ratio = trv_alloc<double>(2 * m);
    rw->cand_alpha = trv_alloc<double>(2 * m);
    rw->cand_red = trv_alloc<double>(2 * m);
    rw->cand_to = trv_alloc<signed char>(2 * m);
    rw->cand_state = trv_alloc<signed char>(2 * m);
    rw->cand_order = trv_alloc<int>(2 * m);
    if (!ps->c1 || !ps->pmark || !rw->cand_idx || !rw->cand_ratio || !rw->cand_alpha ||
        !rw->cand_red || !rw->cand_to || !rw->cand_state || !rw->cand_order)
        return 1001;
    if (build_rowwise(s, ps)) return 1001;
    for (int j = 0; j < nc; j++) {
        ps->lower[j] = s->lower[j];
        ps->upper[j] = s->upper[j];
    }
    (void)env;
    return 0;
}

/* ---- recomputation ----------------------------------------------------- */

/* Nonbasic values from their status (a superbasic keeps its value),
 * basic values by a dense solve. */
void primal_compute_x(TRVlp lp) { run_compute_x(lp, lp->primal); }

void primal_compute_y(TRVlp lp) {
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    double *w = ps->work;
    for (int i = 0; i < lp->solver->splp.m; i++)
        w[i] = ps->phase == 1 ? ps->c1[i] : ps->cost[it->head[i]];
    duals_from_costs(lp, w, ps->work2);
}

/* The reduced cost of j from the current duals. */
double primal_dj(TRVlp lp, int j) {
    const primal_state *ps = lp->primal;
    return column_dj(&lp->solver->splp, lp->solver->it.y, ps->phase == 1 ? 0.0 : ps->cost[j], j);
}

void primal_compute_d(TRVlp lp) {
    primal_state *ps = lp->primal;
    reduced_costs(lp, ps->phase == 1 ? nullptr : ps->cost);
    ps->cols.stale = 1;
}

/* Phase 1 costs of the basic variables: -1 below the lower bound, +1 above
 * the upper bound, 0 inside. Also the sum and count of infeasibilities. */
void primal_composite(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    double t = ps->feas_tol, sum = 0.0;
    int n = 0;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        double x = it->x[j], c = 0.0;
        if (s->has_lower[j] && x < ps->lower[j] - t) {
            c = -1.0;
            sum += ps->lower[j] - x;
        } else if (s->has_upper[j] && x > ps->upper[j] + t) {
            c = 1.0;
            sum += x - ps->upper[j];
        }
        if (c != 0.0) n++;
        ps->c1[i] = c;
    }
    ps->sum_inf = sum;
    ps->n_inf = n;
}

/* The phase test: rewrites the composite data and sets the phase. Returns
 * 1 when the phase changed. */
int primal_set_phase(TRVlp lp) {
    primal_state *ps = lp->primal;
    int old = ps->phase;
    primal_composite(lp);
    ps->phase = ps->n_inf > 0 ? 1 : 2;
    ps->ban_epoch = PR_NOLIMIT;
    return ps->phase != old;
}

double primal_objective(TRVlp lp) {
    return working_objective(lp, lp->primal->cost);
}

/* Largest violation of a working bound by a basic variable. */
double primal_max_infeas(TRVlp lp, double tol) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    const primal_state *ps = lp->primal;
    double worst = 0.0;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        double x = it->x[j], v = 0.0;
        if (s->has_lower[j] && x < ps->lower[j] - tol) v = ps->lower[j] - x;
        if (s->has_upper[j] && x > ps->upper[j] + tol) v = x - ps->upper[j];
        if (v > worst) worst = v;
    }
    return worst;
}

/* The refactorization with repair allowed; on success the values, the
 * phase and the duals are recomputed. */
int primal_refactor(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    int st = run_refactor(env, lp, ps);
    if (st != 0 && st != RC_REPAIRED) return st;
    primal_compute_x(lp);
    if (st == RC_REPAIRED) {
        if (primal_set_phase(lp)) primal_price_reset(lp);
        progress_reset(lp, ps);
    } else {
        primal_composite(lp);
        if (ps->phase == 2 && ps->n_inf > 0) {
            ps->phase = 1;
            primal_price_reset(lp);
        }
    }
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
    ps->objective = primal_objective(lp);
    return 0;
}

/* Refactor if no factorization exists or updates are pending, then the
 * costs and duals. */
int primal_refresh(TRVenv env, TRVlp lp) {
    lu_record *lu = lp->factor;
    if (lu == nullptr || !lu->valid || lp->primal->updates > 0) return primal_refactor(env, lp);
    primal_compute_x(lp);
    primal_set_phase(lp);
    primal_compute_y(lp);
    if (lp->primal->d_kept) primal_compute_d(lp);
    lp->primal->objective = primal_objective(lp);
    return 0;
}

/* The pivot row of basis position p over the nonbasic variables, in prow
 * with its list; rho holds the row of the inverse. */
int primal_pivot_row(TRVlp lp, int p) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    for (int k = 0; k < ps->prow_nz; k++) {
        ps->prow[ps->prow_idx[k]] = 0.0;
        ps->pmark[ps->prow_idx[k]] = 0;
    }
    ps->prow_nz = 0;
    lu_btran_row(lp->factor, &ps->rho, p);
    sparse_vec *r = &ps->rho;
    if (r->nz < 0) sv_from_dense(r);
    long work = 0;
    for (int k = 0; k < r->nz; k++) {
        int i = r->idx[k];
        work += ps->ar_beg[i + 1] - ps->ar_beg[i];
    }
    if (work < s->nz_matrix / 2) {
        for (int k = 0; k < r->nz; k++) {
            int i = r->idx[k];
            double v = r->val[i];
            if (v == 0.0) continue;
            for (int e = ps->ar_beg[i]; e < ps->ar_beg[i + 1]; e++) {
                int j = ps->ar_idx[e];
                if (it->status[j] == 1) continue;
                if (!ps->pmark[j]) {
                    ps->pmark[j] = 1;
                    ps->prow_idx[ps->prow_nz++] = j;
                }
                ps->prow[j] += v * ps->ar_val[e];
            }
        }
    } else {
        for (int j = 0; j < s->ntotal; j++) {
            if (it->status[j] == 1) continue;
            double v = 0.0;
            for (int k = s->col_beg[j]; k < s->col_end[j]; k++) v += r->val[s->row_idx[k]] * s->val[k];
            if (v != 0.0) {
                ps->pmark[j] = 1;
                ps->prow_idx[ps->prow_nz++] = j;
                ps->prow[j] = v;
            }
        }
    }
    return 0;
}
