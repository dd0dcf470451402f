/*
 * poptutil.cpp - the run state of the primal simplex and its recomputations:
 * basic values, duals, reduced costs, the composite data of phase 1, the
 * phase test, the pivot row, and the iteration log.
 */
#include <cmath>
#include <cstring>

#include "simplex/primal.h"

static void state_release(primal_state *ps) {
    trv_free(&ps->lower);
    trv_free(&ps->upper);
    trv_free(&ps->cost);
    trv_free(&ps->rhs);
    trv_free(&ps->c1);
    trv_free(&ps->work);
    trv_free(&ps->work2);
    sv_free(&ps->col);
    sv_free(&ps->alpha);
    sv_free(&ps->rho);
    sv_free(&ps->tau);
    trv_free(&ps->prow);
    trv_free(&ps->prow_idx);
    trv_free(&ps->pmark);
    trv_free(&ps->ar_beg);
    trv_free(&ps->ar_idx);
    trv_free(&ps->ar_val);
    trv_free(&ps->attempted);
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

/* Row-wise copy of the columns 0..ntotal-1 (artificials never enter). */
static int build_rowwise(const simplex_lp *s, primal_state *ps) {
    int m = s->m, nt = s->ntotal;
    long nz = 0;
    for (int j = 0; j < nt; j++) nz += s->col_len[j];
    ps->ar_beg = trv_zalloc<int>(m + 1);
    ps->ar_idx = trv_alloc<int>(nz);
    ps->ar_val = trv_alloc<double>(nz);
    if (!ps->ar_beg || !ps->ar_idx || !ps->ar_val) return 1001;
    for (int j = 0; j < nt; j++)
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) ps->ar_beg[s->row_idx[k] + 1]++;
    for (int i = 0; i < m; i++) ps->ar_beg[i + 1] += ps->ar_beg[i];
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
    primal_state *ps = trv_zalloc<primal_state>(1);
    if (ps == nullptr) return 1001;
    lp->primal = ps;
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m, nc = s->ncoltot;
    ps->lower = trv_alloc<double>(nc);
    ps->upper = trv_alloc<double>(nc);
    ps->cost = trv_alloc<double>(nc);
    ps->rhs = trv_zalloc<double>(m);
    ps->c1 = trv_zalloc<double>(m);
    ps->work = trv_zalloc<double>(m);
    ps->work2 = trv_zalloc<double>(m);
    ps->prow = trv_zalloc<double>(nc);
    ps->prow_idx = trv_alloc<int>(nc);
    ps->pmark = trv_zalloc<char>(nc);
    ps->attempted = trv_alloc<int>(64);
    ratio_work *rw = &ps->rw;
    rw->cand_idx = trv_alloc<int>(2 * m);
    rw->cand_ratio = trv_alloc<double>(2 * m);
    rw->cand_alpha = trv_alloc<double>(2 * m);
    rw->cand_red = trv_alloc<double>(2 * m);
    rw->cand_to = trv_alloc<signed char>(2 * m);
    rw->cand_state = trv_alloc<signed char>(2 * m);
    rw->cand_order = trv_alloc<int>(2 * m);
    if (it->d == nullptr) it->d = trv_zalloc<double>(nc);
    if (it->y == nullptr) it->y = trv_zalloc<double>(m);
    if (!ps->lower || !ps->upper || !ps->cost || !ps->rhs || !ps->c1 ||
        !ps->work || !ps->work2 || !ps->prow || !ps->prow_idx || !ps->pmark ||
        !ps->attempted || !rw->cand_idx || !rw->cand_ratio || !rw->cand_alpha ||
        !rw->cand_red || !rw->cand_to || !rw->cand_state || !rw->cand_order || !it->d || !it->y)
        return 1001;
    if (sv_alloc(&ps->col, m) || sv_alloc(&ps->alpha, m) || sv_alloc(&ps->rho, m) ||
        sv_alloc(&ps->tau, m))
        return 1001;
    if (build_rowwise(s, ps)) return 1001;
    for (int j = 0; j < nc; j++) {
        ps->lower[j] = s->lower[j];
        ps->upper[j] = s->upper[j];
        ps->cost[j] = s->sense * s->cost[j];
    }
    const lp_data *d = lp->lpdata;
    for (int i = 0; i < m; i++) ps->rhs[i] = d->rhs[i];
    (void)env;
    return 0;
}

/* ---- recomputation ----------------------------------------------------- */

/* Basic values by a dense solve of rhs less the nonbasic columns at their
 * values; w is m of scratch, zero again on return. */
void basic_values(TRVlp lp, const double *rhs, double *w) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m, nc = s->ncoltot;
    for (int i = 0; i < m; i++) w[i] = rhs[i];
    for (int j = 0; j < nc; j++) {
        if (it->status[j] == 1) continue;
        double v = it->x[j];
        if (v == 0.0) continue;
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) w[s->row_idx[k]] -= s->val[k] * v;
    }
    lu_ftran_dense(lp->factor, w);
    for (int i = 0; i < m; i++) {
        it->x[it->head[i]] = w[i];
        w[i] = 0.0;
    }
}

/* sense * c x over the columns 0..ntotal-1 for the working costs. */
double working_objective(TRVlp lp, const double *cost) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    double z = 0.0;
    for (int j = 0; j < s->ntotal; j++) z += cost[j] * it->x[j];
    return z;
}

/* Nonbasic values from their status, basic values by a dense solve. */
void primal_compute_x(TRVlp lp) {
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    for (int j = 0; j < lp->solver->splp.ncoltot; j++) {
        int st = it->status[j];
        if (st == 0) it->x[j] = ps->lower[j];
        else if (st == 2) it->x[j] = ps->upper[j];
    }
    basic_values(lp, ps->rhs, ps->work);
}

/* The duals from the basic costs in w by a dense solve with work2 as
 * scratch; both are zero again on return. */
void duals_from_costs(TRVlp lp, double *w, double *work2) {
    simplex_iter *it = &lp->solver->it;
    int m = lp->solver->splp.m;
    lu_btran_dense(lp->factor, w, work2);
    for (int i = 0; i < m; i++) {
        it->y[i] = w[i];
        w[i] = 0.0;
        work2[i] = 0.0;
    }
}

/* The reduced costs of all nonbasic variables from the current duals, 0
 * for the basic ones; no cost array means zero costs. */
void reduced_costs(TRVlp lp, const double *cost) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    for (int j = 0; j < s->ncoltot; j++)
        it->d[j] = it->status[j] == 1 ? 0.0 : column_dj(s, it->y, cost ? cost[j] : 0.0, j);
}

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
    ps->d_valid = 1;
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
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int st = lu_refactor(env, lp, &it->markowitz, it->pivot_tol, 1, 0);
    if (st != 0 && st != RC_REPAIRED) return st;
    ps->updates = 0;
    ps->log.refactored = 1;
    ps->n_banned = 0;
    for (int j = 0; j < lp->solver->splp.ncoltot; j++)
        if (it->ban[j] == 33) it->ban[j] = 0;
    primal_compute_x(lp);
    if (st == RC_REPAIRED) {
        if (primal_set_phase(lp)) primal_price_reset(lp);
        progress_reset(lp);
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

/* Column q of the matrix into col, its solve into alpha. */
void column_solve(TRVlp lp, int q, sparse_vec *col, sparse_vec *alpha) {
    const simplex_lp *s = &lp->solver->splp;
    sv_clear(col);
    col->nz = 0;
    for (int k = s->col_beg[q]; k < s->col_end[q]; k++) {
        col->val[s->row_idx[k]] = s->val[k];
        col->idx[col->nz++] = s->row_idx[k];
    }
    sv_clear(alpha);
    lu_ftran(lp->factor, alpha, col);
    if (alpha->nz < 0) sv_from_dense(alpha);
}

int release_fixed(TRVenv env, TRVlp lp, double tol, double (*dj)(TRVlp lp, int j),
                  int *released) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    bool scaled = lp->lpdata->colscale != nullptr;
    int n = 0, v = 0;
    for (int p = 0; p < s->m; p++)
        if (it->pos_ban[p] == 32) it->pos_ban[p] = 0;
    for (int j = 0; j < s->ncoltot; j++) {
        if (it->ban[j] != 32) continue;
        it->ban[j] = 0;
        n++;
        int st = it->status[j];
        if (st == 1) continue;
        double d = dj(lp, j);
        double bad = st == 0 ? -d : st == 2 ? d : std::fabs(d);
        if (!(bad > tol)) continue;
        v++;
        TRVmsg(env->errchannel,
               scaled ? "Scaled reduced cost of dropped variable '%.255s' = %g\n"
                      : "Reduced cost of dropped variable '%.255s' = %g\n",
               simplex_varname(env, lp, j), d);
    }
    *released = n;
    return v;
}

/* ---- the iteration log ---------------------------------------------------- */

const char *primal_varlabel(TRVenv env, TRVlp lp, int j, char *buf, size_t sz) {
    const simplex_lp *s = &lp->solver->splp;
    const lp_data *d = lp->lpdata;
    if (j < s->n) {
        std::snprintf(buf, sz, "%s", env_varname(env, d->colname, d->ncols, j));
        return buf;
    }
    const char *kind = j < s->nstruct ? " range" : j < s->ntotal ? " slack" : " artif";
    int i = s->row_of_var[j];
    std::snprintf(buf, sz, "%s%s", env_conname(env, d->rowname, d->nrows, i), kind);
    return buf;
}

static void log_header(TRVenv env, iter_log *lg) {
    if (lg->header_done) return;
    TRVmsg(env->reschannel, "\nIteration log . . .\n");
    lg->header_done = 1;
}

/* The summary line; at display level 1 only after a factorization or a
 * change of phase unless forced. */
void iter_log_line(TRVenv env, iter_log *lg, int phase, int n_it, double infeas,
                   double objective, int force) {
    if (lg->display < 1) return;
    if (!force && !lg->refactored && phase == lg->last_phase_logged) return;
    log_header(env, lg);
    if (phase == 1)
        TRVmsg(env->reschannel, lg->scaled ? "Iteration: %5d    Scaled infeas = %20.6f\n"
                                           : "Iteration: %5d    Infeasibility = %20.6f\n",
               n_it, infeas);
    else
        TRVmsg(env->reschannel, "Iteration: %5d    Objective     = %20.6f\n", n_it, objective);
    lg->refactored = 0;
    lg->last_phase_logged = phase;
}

void iter_log_detail(TRVenv env, TRVlp lp, iter_log *lg, int phase, int perturbed, int n_it,
                     double infeas, double objective) {
    log_header(env, lg);
    if (!lg->detail_head_done) {
        TRVmsg(env->reschannel, "       In Variable           Out Variable\n");
        lg->detail_head_done = 1;
    }
    char tag[32], val[40], in[300], out[300];
    if (phase == 1)
        std::snprintf(tag, sizeof tag, perturbed ? "%6d sI" : "%6d  I", n_it);
    else
        std::snprintf(tag, sizeof tag, "%6d   ", n_it);
    double z = phase == 1 ? infeas : objective;
    std::snprintf(val, sizeof val, std::fabs(z) > 1e11 ? "%20.6e" : "%20.6f", z);
    if (lg->entered >= 0)
        primal_varlabel(env, lp, lg->entered, in, sizeof in);
    else
        in[0] = '\0';
    if (lg->left >= 0)
        primal_varlabel(env, lp, lg->left, out, sizeof out);
    else if (lg->left_status == 2)
        std::snprintf(out, sizeof out, "    goes to upper bound");
    else if (lg->left_status == 0)
        std::snprintf(out, sizeof out, "    goes to lower bound");
    else
        std::snprintf(out, sizeof out, "      leaves superbasis");
    TRVmsg(env->reschannel, "%s%s  %-20s  %s\n", tag, val, in, out);
}

/* The elapsed time, every 1000 iterations and at most every 10 seconds. */
void iter_log_elapsed(TRVenv env, iter_log *lg, int n_it, double start_time) {
    if (lg->display == 0 || n_it == 0 || n_it % 1000 != 0) return;
    if (n_it - lg->last_elapsed_it < 1000) return;
    double now = env_time(env);
    if (now - lg->last_elapsed_print < 10.0) return;
    TRVmsg(env->reschannel, "Elapsed time = %7.2f sec. (%d iterations)\n", now - start_time,
           n_it);
    channel_flush(env->reschannel);
    lg->last_elapsed_print = now;
    lg->last_elapsed_it = n_it;
}

void primal_log(TRVenv env, TRVlp lp, int force) {
    primal_state *ps = lp->primal;
    iter_log_line(env, &ps->log, ps->phase, lp->solver->it.n_it, ps->sum_inf,
                  lp->solver->splp.sense * ps->objective, force);
}

void primal_log_detail(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    iter_log_detail(env, lp, &ps->log, ps->phase, ps->perturb.active, lp->solver->it.n_it,
                    ps->sum_inf, lp->solver->splp.sense * ps->objective);
}
