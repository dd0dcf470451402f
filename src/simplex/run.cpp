/*
 * run.cpp - what the primal and the dual simplex share of a run: the
 * record's arrays, the parameters, the main loop with its stopping tests
 * (iteration and time limits, the callback, the objective limit), the
 * status of a run that stopped on a limit, the first steps of a
 * refactorization, the recomputations from the factor, and the iteration
 * log. Where the drivers differ the run's table of choices (run_ops)
 * decides.
 */
#include <cmath>
#include <cstring>

#include "frame/callback.h"
#include "simplex/core.h"

int simplex_checking = 0;
long simplex_check_faults = 0;

/* ---- the record ------------------------------------------------------------ */

int run_alloc(TRVlp lp, simplex_run *r) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m, nc = s->ncoltot;
    r->lower = trv_alloc<double>(nc);
    r->upper = trv_alloc<double>(nc);
    r->cost = trv_alloc<double>(nc);
    r->rhs = trv_zalloc<double>(m);
    r->work = trv_zalloc<double>(m);
    r->work2 = trv_zalloc<double>(m);
    r->prow = trv_zalloc<double>(nc);
    r->prow_idx = trv_alloc<int>(nc);
    r->attempted = trv_alloc<int>(64);
    if (it->d == nullptr) it->d = trv_zalloc<double>(nc);
    if (it->y == nullptr) it->y = trv_zalloc<double>(m);
    if (!r->lower || !r->upper || !r->cost || !r->rhs || !r->work || !r->work2 || !r->prow ||
        !r->prow_idx || !r->attempted || !it->d || !it->y)
        return 1001;
    if (sv_alloc(&r->col, m) || sv_alloc(&r->alpha, m) || sv_alloc(&r->rho, m) ||
        sv_alloc(&r->tau, m))
        return 1001;
    for (int j = 0; j < nc; j++) r->cost[j] = s->sense * s->cost[j];
    const lp_data *d = lp->lpdata;
    for (int i = 0; i < m; i++) r->rhs[i] = d->rhs[i];
    return 0;
}

void run_release(simplex_run *r) {
    trv_free(&r->lower);
    trv_free(&r->upper);
    trv_free(&r->cost);
    trv_free(&r->rhs);
    trv_free(&r->work);
    trv_free(&r->work2);
    sv_free(&r->col);
    sv_free(&r->alpha);
    sv_free(&r->rho);
    sv_free(&r->tau);
    trv_free(&r->prow);
    trv_free(&r->prow_idx);
    trv_free(&r->ar_beg);
    trv_free(&r->ar_idx);
    trv_free(&r->ar_val);
    trv_free(&r->attempted);
}

int run_rowwise(const simplex_lp *s, simplex_run *r) {
    int m = s->m, nt = s->ntotal;
    long nz = 0;
    for (int j = 0; j < nt; j++) nz += s->col_len[j];
    r->ar_beg = trv_zalloc<int>(m + 1);
    r->ar_idx = trv_alloc<int>(nz);
    r->ar_val = trv_alloc<double>(nz);
    if (!r->ar_beg || !r->ar_idx || !r->ar_val) return 1001;
    for (int j = 0; j < nt; j++)
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) r->ar_beg[s->row_idx[k] + 1]++;
    for (int i = 0; i < m; i++) r->ar_beg[i + 1] += r->ar_beg[i];
    return 0;
}

int candidates_for(int size) {
    static const int lim[] = {100, 500, 1000, 5000, 10000, 100000};
    static const int val[] = {5, 10, 15, 20, 25, 30};
    for (int k = 0; k < 6; k++)
        if (size < lim[k]) return val[k];
    return 35;
}

void run_parameters(TRVenv env, TRVlp lp, simplex_run *r, double start_time, int it_so_far,
                    int it1_so_far) {
    const simplex_lp *s = &lp->solver->splp;
    r->opt_tol = par_dbl(env, 1014);
    r->feas_tol = par_dbl(env, 1016);
    r->p1_tol = 1e-7;
    r->log.display = par_int(env, 1019);
    r->it_limit = par_int(env, 1020);
    r->time_limit = par_dbl(env, 1039);
    /* the run minimises sense * c x: the limit the objective passes on its
     * way to the optimum (a lower one when it falls, an upper one when it
     * rises), negated for a maximisation */
    int lo = 1025, hi = 1026;
    if (r->ops->dir > 0) lo = 1026, hi = 1025;
    r->obj_limit = s->sense > 0 ? par_dbl(env, lo) : -par_dbl(env, hi);
    r->perturb.size = par_dbl(env, 1015);
    r->perturb.shift_limit = PR_NOLIMIT;
    r->log.last_phase_logged = 0;
    r->log.entered = r->log.left = -1;
    r->fast = par_int(env, 1017) > 0;
    r->log.scaled = lp->lpdata->colscale != nullptr;
    r->start_time = start_time;
    r->log.last_elapsed_print = start_time;
    lp->solver->it.n_it = it_so_far;
    r->n_it_phase1 = it1_so_far;
}

/* ---- the main loop ------------------------------------------------------------ */

/* The objective has passed the limit on its way to the optimum. */
static bool limit_passed(const simplex_run *r, double v) {
    return r->ops->dir > 0 ? v >= r->obj_limit : v < r->obj_limit;
}

/* Objective limit of phase 2: status 4 once the objective, recomputed on a
 * fresh factorization, passes it. While costs are perturbed the objective
 * is not the model's, and the limit waits. */
static int objective_limit(TRVenv env, TRVlp lp, simplex_run *r) {
    const run_ops *o = r->ops;
    if (r->phase != 2 || std::fabs(r->obj_limit) >= PR_BIG) return 0;
    if (o->perturbs_costs && (r->perturb.active || r->perturb.shift_count > 0)) return 0;
    if (!limit_passed(r, r->objective)) return 0;
    if (r->fast) {
        r->status = LPS_OBJLIM;
        return 0;
    }
    if (r->updates > 0) {
        int st = o->refactor(env, lp);
        if (st != 0) return st;
    }
    r->objective = o->objective(lp);
    if (r->phase == 2 && limit_passed(r, r->objective)) r->status = LPS_OBJLIM;
    return 0;
}

/* The elapsed time, every 1000 iterations and at most every 10 seconds. */
static void log_elapsed(TRVenv env, iter_log *lg, int n_it, double start_time) {
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

/* One iteration: price and pivot until something other than a retry. */
static int iterate(TRVenv env, TRVlp lp, simplex_run *r) {
    for (int round = 0; round < 20; round++) {
        int k = -1;
        int st = r->ops->price(env, lp, &k);
        if (st == RC_RETRY) continue;
        if (st != 0 || r->status != 0 || k < 0) return st;
        st = r->ops->pivot(env, lp, k);
        if (st != RC_RETRY) return st;
    }
    return 0;
}

int run_main_loop(TRVenv env, TRVlp lp, simplex_run *r) {
    const run_ops *o = r->ops;
    simplex_iter *it = &lp->solver->it;
    progress_reset(lp, r);
    while (true) {
        if (it->n_it >= r->it_limit || r->abort) break;
        if (cb_call(env, PAR_LP, lp->handle, o->place) != 0) {
            r->abort = 1;
            break;
        }
        if (it->n_it > 0 && it->n_it % 25 == 0 && r->time_limit < PR_BIG &&
            env_time(env) - r->start_time >= r->time_limit) {
            r->abort = 2;
            break;
        }
        int phase_before = r->phase;
        int st = o->before != nullptr ? o->before(env, lp) : 0;
        if (st != 0) return st;
        st = iterate(env, lp, r);
        if (st != 0) return st;
        if (r->status != 0) break;
        st = objective_limit(env, lp, r);
        if (st != 0) return st;
        if (r->status != 0) break;
        start_periodic(env, lp, it->n_it);
        log_elapsed(env, &r->log, it->n_it, r->start_time);
        st = progress_check(env, lp, r);
        if (st != 0) return st;
        it->n_it++;
        if (phase_before == 1) r->n_it_phase1++;
        if (r->status != 0) break; /* the stall control gave up */
        if (r->log.display >= 2) run_log_detail(env, lp, r);
        else if (r->log.display == 1) run_log(env, lp, r, 0);
    }
    return 0;
}

int run_release_dropped(TRVenv env, TRVlp lp, double tol, double (*dj)(TRVlp lp, int j),
                        void (*after)(TRVlp lp)) {
    int released = 0;
    int v = release_fixed(env, lp, tol, dj, &released);
    if (released == 0) return 0;
    if (after != nullptr) after(lp);
    if (v == 0) {
        TRVmsg(env->errchannel, "Dropped variables satisfy optimality criteria.\n");
        return 0;
    }
    if (lp->solver->it.reincluded < RELEASE_ROUNDS) {
        lp->solver->it.reincluded++;
        TRVmsg(env->errchannel, "Attempting to reinclude dropped variables.\n");
        return 1;
    }
    TRVmsg(env->errchannel, "There are %d violations to optimality.\n", v);
    return 2;
}

/* A violation in the working units of variable j made one in the
 * caller's: of a bound (primal) or of the sign of a reduced cost. */
static double caller_units(const lp_data *d, const simplex_lp *s, int j, double v, bool primal) {
    if (j < s->nstruct) return primal ? v / d->colscale[j] : v * d->colscale[j];
    double r = d->rowscale[s->row_of_var[j]];
    return primal ? v * r : v * (1.0 / r);
}

double run_unscaled_pinf(TRVlp lp) {
    const lp_data *d = lp->lpdata;
    if (d->colscale == nullptr) return 0.0;
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    double worst = 0.0;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        double x = it->x[j], v = 0.0;
        if (s->has_lower[j] && x < s->lower[j]) v = s->lower[j] - x;
        if (s->has_upper[j] && x > s->upper[j]) v = x - s->upper[j];
        if (v == 0.0) continue; /* an artificial: its row's violation */
        v = caller_units(d, s, j, v, true);
        if (v > worst) worst = v;
    }
    return worst;
}

double run_unscaled_dinf(TRVlp lp, double (*violation)(TRVlp lp, int j)) {
    const lp_data *d = lp->lpdata;
    if (d->colscale == nullptr) return 0.0;
    const simplex_lp *s = &lp->solver->splp;
    double worst = 0.0;
    for (int j = 0; j < s->ntotal; j++) {
        double v = violation(lp, j);
        if (v == 0.0) continue;
        v = caller_units(d, s, j, v, false);
        if (v > worst) worst = v;
    }
    return worst;
}

int run_limit_status(TRVlp lp, const simplex_run *r) {
    bool feas = r->ops->feasible(lp);
    if (r->abort == 1) return feas ? LPS_ABORT_FEAS : LPS_ABORT_INFEAS;
    if (r->abort == 2) return feas ? LPS_TIME_FEAS : LPS_TIME_INFEAS;
    return feas ? LPS_IT_FEAS : LPS_IT_INFEAS;
}

int run_refactor(TRVenv env, TRVlp lp, simplex_run *r) {
    simplex_iter *it = &lp->solver->it;
    int st = lu_refactor(env, lp, &it->markowitz, it->pivot_tol, 1, 0);
    if (st != 0 && st != RC_REPAIRED) return st;
    r->updates = 0;
    r->log.refactored = 1;
    /* the candidates banned for the round: variables of the primal, basis
     * positions of the dual */
    if (r->n_banned > 0) {
        const simplex_lp *s = &lp->solver->splp;
        for (int j = 0; j < s->ncoltot; j++)
            if (it->ban[j] == BAN_ROUND) it->ban[j] = BAN_NONE;
        for (int i = 0; i < s->m; i++)
            if (it->pos_ban[i] == BAN_ROUND) it->pos_ban[i] = BAN_NONE;
        r->n_banned = 0;
    }
    return st;
}

int run_refactor_retry(TRVenv env, TRVlp lp, simplex_run *r) {
    int st = r->ops->refactor(env, lp);
    return st != 0 ? st : RC_RETRY;
}

int run_pivot_check(TRVenv env, TRVlp lp, simplex_run *r, int p, int q, double alpha_p,
                    double min_pivot, int forced) {
    simplex_iter *it = &lp->solver->it;
    double check = r->prow[q];
    if (std::fabs(check - alpha_p) > 1e-7 * (1.0 + std::fabs(alpha_p))) {
        if (r->updates > 0) return run_refactor_retry(env, lp, r);
        if (std::fabs(check - alpha_p) > 1e-3 * (1.0 + std::fabs(alpha_p)) && !forced)
            return RC_RETRY;
    }
    if (std::fabs(alpha_p) < min_pivot) return RC_RETRY;
    it->leave_pos = p;
    it->enter_var = q;
    it->alpha = alpha_p;
    int ck = 0;
    lu_update_check(lp, alpha_p, 1, &ck);
    return ck == RC_RETRY && !forced ? RC_RETRY : 0;
}

/* ---- recomputation from the factor ------------------------------------------- */

void basic_values(TRVlp lp, const double *rhs, double *w) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m, nc = s->ncoltot;
    for (int i = 0; i < m; i++) w[i] = rhs[i];
    for (int j = 0; j < nc; j++) {
        if (it->status[j] == VS_BASIC) continue;
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

void run_compute_x(TRVlp lp, simplex_run *r) {
    simplex_iter *it = &lp->solver->it;
    for (int j = 0; j < lp->solver->splp.ncoltot; j++) {
        int st = it->status[j];
        if (st == VS_LOWER) it->x[j] = r->lower[j];
        else if (st == VS_UPPER) it->x[j] = r->upper[j];
    }
    basic_values(lp, r->rhs, r->work);
}

double working_objective(TRVlp lp, const double *cost) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    double z = 0.0;
    for (int j = 0; j < s->ntotal; j++) z += cost[j] * it->x[j];
    return z;
}

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

void reduced_costs(TRVlp lp, const double *cost) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    for (int j = 0; j < s->ncoltot; j++)
        it->d[j] = it->status[j] == VS_BASIC ? 0.0 : column_dj(s, it->y, cost ? cost[j] : 0.0, j);
}

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
        if (it->pos_ban[p] == BAN_FIXED) it->pos_ban[p] = BAN_NONE;
    for (int j = 0; j < s->ncoltot; j++) {
        if (it->ban[j] != BAN_FIXED) continue;
        it->ban[j] = BAN_NONE;
        n++;
        int st = it->status[j];
        if (st == VS_BASIC) continue;
        double d = dj(lp, j);
        double bad = st == VS_LOWER ? -d : st == VS_UPPER ? d : std::fabs(d);
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

const char *run_varlabel(TRVenv env, TRVlp lp, int j, char *buf, size_t sz) {
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

void run_log(TRVenv env, TRVlp lp, simplex_run *r, int force) {
    iter_log *lg = &r->log;
    if (lg->display < 1) return;
    if (!force && !lg->refactored && r->phase == lg->last_phase_logged) return;
    log_header(env, lg);
    int n_it = lp->solver->it.n_it;
    if (r->phase == 1)
        TRVmsg(env->reschannel, lg->scaled ? "Iteration: %5d    Scaled infeas = %20.6f\n"
                                           : "Iteration: %5d    Infeasibility = %20.6f\n",
               n_it, r->ops->infeasibility(lp));
    else
        TRVmsg(env->reschannel, "Iteration: %5d    Objective     = %20.6f\n", n_it,
               lp->solver->splp.sense * r->objective);
    lg->refactored = 0;
    lg->last_phase_logged = r->phase;
}

void run_log_detail(TRVenv env, TRVlp lp, simplex_run *r) {
    iter_log *lg = &r->log;
    log_header(env, lg);
    if (!lg->detail_head_done) {
        TRVmsg(env->reschannel, "       In Variable           Out Variable\n");
        lg->detail_head_done = 1;
    }
    int n_it = lp->solver->it.n_it;
    char tag[32], val[40], in[300], out[300];
    if (r->phase == 1)
        std::snprintf(tag, sizeof tag, r->perturb.active ? "%6d sI" : "%6d  I", n_it);
    else
        std::snprintf(tag, sizeof tag, "%6d   ", n_it);
    double z = r->phase == 1 ? r->ops->infeasibility(lp) : lp->solver->splp.sense * r->objective;
    std::snprintf(val, sizeof val, std::fabs(z) > 1e11 ? "%20.6e" : "%20.6f", z);
    if (lg->entered >= 0)
        run_varlabel(env, lp, lg->entered, in, sizeof in);
    else
        in[0] = '\0';
    if (lg->left >= 0)
        run_varlabel(env, lp, lg->left, out, sizeof out);
    else if (lg->left_status == VS_UPPER)
        std::snprintf(out, sizeof out, "    goes to upper bound");
    else if (lg->left_status == VS_LOWER)
        std::snprintf(out, sizeof out, "    goes to lower bound");
    else
        std::snprintf(out, sizeof out, "      leaves superbasis");
    TRVmsg(env->reschannel, "%s%s  %-20s  %s\n", tag, val, in, out);
}
