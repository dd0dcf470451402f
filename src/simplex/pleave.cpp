/*
 * pleave.cpp - one primal iteration: the choice of the entering variable
 * with the clean-up when no candidate is left, the attempts at a pivot with
 * bans on numerically poor columns, the step and the basis change.
 */
#include <cmath>

#include "simplex/core.h"

static void clear_bans(TRVlp lp) {
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    if (ps->n_banned == 0) return;
    for (int j = 0; j < lp->solver->splp.ncoltot; j++)
        if (it->ban[j] == 33) it->ban[j] = 0;
    ps->n_banned = 0;
    primal_price_reset(lp);
}

/* Duals and reduced costs of the phase from scratch. */
static void reprice(TRVlp lp) {
    primal_compute_y(lp);
    if (lp->primal->d_kept) primal_compute_d(lp);
    primal_price_reset(lp);
}

static double phase_tol(const primal_state *ps) {
    return ps->phase == 1 ? ps->p1_tol : ps->opt_tol;
}

/* The entering variable, or -1 with a status set (1 optimal, 2 infeasible)
 * when no candidate remains after the clean-up; 2003 asks the caller to
 * price again, other values are errors. */
int primal_price_ladder(TRVenv env, TRVlp lp, int *q_out) {
    primal_state *ps = lp->primal;
    *q_out = -1;
    if (ps->phase == 1 && ps->n_inf == 0) {
        primal_set_phase(lp);
        reprice(lp);
        ps->objective = primal_objective(lp);
    }
    int q = primal_price_select(lp, phase_tol(ps));
    if (q >= 0) {
        *q_out = q;
        return 0;
    }
    /* nothing to choose: make sure the figures are fresh */
    bool fast_skip = ps->fast && ps->n_banned == 0 && ps->phase == 2;
    if (!fast_skip && ps->updates > 0) {
        int st = primal_refactor(env, lp);
        if (st != 0) return st;
    } else {
        primal_compute_x(lp);
        primal_composite(lp);
        if (ps->phase == 2 && ps->n_inf > 0) ps->phase = 1;
        reprice(lp);
    }
    clear_bans(lp);
    if (ps->phase == 2 && ps->n_inf > 0) {
        primal_set_phase(lp);
        reprice(lp);
    }
    q = primal_price_select(lp, phase_tol(ps));
    if (q >= 0) {
        *q_out = q;
        return 0;
    }
    if (ps->phase == 1) {
        if (primal_set_phase(lp) && ps->phase == 2) {
            reprice(lp);
            ps->objective = primal_objective(lp);
            q = primal_price_select(lp, phase_tol(ps));
            if (q >= 0) {
                *q_out = q;
                return 0;
            }
            ps->status = LPS_OPTIMAL;
            return 0;
        }
        ps->status = LPS_INFEASIBLE;
        return 0;
    }
    ps->status = LPS_OPTIMAL;
    return 0;
}

/* The entering column through the factorization into ps->alpha. */
static void entering_column(TRVlp lp, int q) {
    primal_state *ps = lp->primal;
    column_solve(lp, q, &ps->col, &ps->alpha);
    ps->work_pivots += ps->alpha.nz;
}

static int direction_of(const simplex_iter *it, int q) {
    int st = it->status[q];
    if (st == 0) return 1;
    if (st == 2) return -1;
    return it->d[q] <= 0.0 ? 1 : -1;
}

static double step_limit_of(const simplex_lp *s, const simplex_iter *it,
                            const primal_state *ps, int q, int dir) {
    if (it->status[q] == 3) {
        if (dir > 0) return s->has_upper[q] ? ps->upper[q] - it->x[q] : PR_BIG;
        return s->has_lower[q] ? it->x[q] - ps->lower[q] : PR_BIG;
    }
    if (s->has_lower[q] && s->has_upper[q]) return ps->upper[q] - ps->lower[q];
    return PR_BIG;
}

/* Moves the entering variable by theta and the basic ones along. */
static void move_values(TRVlp lp, int q, double theta) {
    simplex_iter *it = &lp->solver->it;
    const sparse_vec *a = &lp->primal->alpha;
    if (theta == 0.0) return;
    it->x[q] += theta;
    for (int k = 0; k < a->nz; k++) {
        int i = a->idx[k];
        it->x[it->head[i]] -= theta * a->val[i];
    }
}

/* After a step in phase 1 the composite costs may have changed. */
static void after_step_phase1(TRVlp lp) {
    primal_state *ps = lp->primal;
    primal_composite(lp);
    if (ps->n_inf == 0) {
        primal_set_phase(lp);
        ps->objective = primal_objective(lp);
    }
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
}

static int bound_flip(TRVlp lp, int q, int dir) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    double theta = ps->rw.step * dir;
    double dq = it->d[q];
    move_values(lp, q, theta);
    int old = it->status[q];
    if (dir > 0 && s->has_upper[q]) {
        it->status[q] = 2;
        it->x[q] = ps->upper[q];
    } else if (dir < 0 && s->has_lower[q]) {
        it->status[q] = 0;
        it->x[q] = ps->lower[q];
    }
    ps->log.entered = q;
    ps->log.left = -1;
    ps->log.left_status = old == 3 ? 3 : it->status[q];
    ps->flipped = 1;
    primal_price_touch(ps, q);
    if (ps->phase == 1) {
        after_step_phase1(lp);
    } else {
        ps->objective += theta * dq;
    }
    return 0;
}

/* The basis change: q enters at position p. A forced pivot (the last
 * resort of a round whose attempts all failed) is taken even when the
 * row and the column disagree or the update looks unstable: refusing it
 * once more would leave the round where it started. */
static int basis_change(TRVenv env, TRVlp lp, int q, int dir, int forced) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    ratio_work *rw = &ps->rw;
    int p = rw->leaving;
    double alpha_p = ps->alpha.val[p];
    int st = primal_pivot_row(lp, p);
    if (st != 0) return st;
    st = run_pivot_check(env, lp, ps, p, q, alpha_p, 0.0, forced);
    if (st != 0) return st;
    int r = it->head[p];
    double theta = rw->step * dir;
    double dq = it->d[q];
    move_values(lp, q, theta);
    it->x[r] = rw->status_to == 2 ? ps->upper[r] : ps->lower[r];
    if (!s->has_lower[r] && !s->has_upper[r]) it->x[r] = 0.0;
    primal_price_pivot(lp, p, r, q, alpha_p);
    /* duals and reduced costs along the pivot row */
    double td = dq / alpha_p;
    if (ps->phase == 2) {
        const sparse_vec *rho = &ps->rho;
        for (int k = 0; k < rho->nz; k++) {
            int i = rho->idx[k];
            it->y[i] += td * rho->val[i];
        }
        if (ps->d_kept) {
            for (int k = 0; k < ps->prow_nz; k++) {
                int j = ps->prow_idx[k];
                it->d[j] -= td * ps->prow[j];
            }
        }
        ps->objective += theta * dq;
    }
    /* reduced costs and weights along the pivot row move */
    for (int k = 0; k < ps->prow_nz; k++) primal_price_touch(ps, ps->prow_idx[k]);
    it->d[q] = 0.0;
    it->d[r] = -td;
    it->status[r] = static_cast<signed char>(rw->status_to == 2 ? 2 : 0);
    if (!s->has_lower[r] && !s->has_upper[r]) it->status[r] = 3;
    it->status[q] = 1;
    it->head[p] = q;
    primal_price_touch(ps, q);
    primal_price_touch(ps, r);
    ps->log.entered = q;
    ps->log.left = r;
    ps->flipped = 0;
    st = lu_update(env, lp);
    ps->updates++;
    if (st != 0 && st != RC_REPAIRED) return st;
    lu_record *lu = lp->factor;
    if (st == RC_REPAIRED || lu->update_count == 0) {
        /* the update refactored: everything from scratch */
        ps->updates = 0;
        ps->log.refactored = 1;
        primal_compute_x(lp);
        if (primal_set_phase(lp)) primal_price_reset(lp);
        primal_compute_y(lp);
        if (ps->d_kept) primal_compute_d(lp);
        ps->objective = primal_objective(lp);
        return 0;
    }
    if (ps->phase == 1) after_step_phase1(lp);
    return 0;
}

/* One attempt with q. forced accepts a pivot the quality test doubts;
 * recheck marks the second look at an unbounded direction. */
static int primal_try_dir(TRVenv env, TRVlp lp, int q, int forced, int recheck, int dir);

static int primal_try(TRVenv env, TRVlp lp, int q, int forced, int recheck) {
    return primal_try_dir(env, lp, q, forced, recheck, direction_of(&lp->solver->it, q));
}

static int primal_try_dir(TRVenv env, TRVlp lp, int q, int forced, int recheck, int dir) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    entering_column(lp, q);
    double lim = step_limit_of(s, it, ps, q, dir);
    if (lim < 0.0) lim = 0.0;
    ps->rw.forced = forced;
    double dq = it->d[q];
    int r = ps->phase == 1 ? ratio_primal_p1(lp, dir, dq, lim, q)
                           : ratio_primal_p2(lp, dir, dq, lim, q);
    if (r == 3) {
        /* an unbounded direction is confirmed on fresh figures */
        ps->log.entered = q;
        if (ps->phase == 2 && (recheck || (ps->fast && std::fabs(dq) >= 0.0005))) {
            ps->status = LPS_UNBOUNDED;
            return 0;
        }
        if (ps->updates > 0) {
            int st = primal_refactor(env, lp);
            if (st != 0) return st;
        }
        if (ps->phase == 1) return RC_RETRY;
        double d = primal_dj(lp, q);
        it->d[q] = d;
        primal_price_touch(ps, q);
        if (primal_attract(it, q, d) >= -ps->opt_tol) return RC_RETRY;
        return primal_try(env, lp, q, forced, 1);
    }
    if (r != 0) return r;
    if (ps->rw.leaving < 0) return bound_flip(lp, q, dir);
    return basis_change(env, lp, q, dir, forced);
}

/* Tries the candidates: q first, then further choices of the pricing while
 * attempts fail on poor pivots. */
int primal_pivot(TRVenv env, TRVlp lp, int q) {
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int n_att = 0, best = -1;
    double best_r = -1.0;
    int kmax = ps->candidates_max < 64 ? ps->candidates_max : 64;
    for (int k = 0; k < kmax; k++) {
        if (k > 0) {
            q = primal_price_select(lp, phase_tol(ps));
            if (q < 0) break;
        }
        int r = primal_try(env, lp, q, 0, 0);
        if (r != RC_RETRY) return r;
        if (ps->status != 0) return 0;
        it->ban[q] = BAN_ROUND;
        ps->n_banned++;
        primal_price_touch(ps, q);
        ps->attempted[n_att++] = q;
        double p = ps->rw.pivot_abs;
        if (p > best_r) {
            best_r = p;
            best = q;
        }
        if (!lp->factor->valid) break;
    }
    if (ps->updates > 1 || (ps->updates == 1 && env_randomd(env) >= 0.5))
        return run_refactor_retry(env, lp, ps);
    if (best < 0) return RC_RETRY;
    it->ban[best] = BAN_NONE;
    ps->n_banned--;
    it->d[best] = primal_dj(lp, best);
    primal_price_touch(ps, best);
    if (primal_attract(it, best, it->d[best]) >= -phase_tol(ps)) return RC_RETRY;
    int r = primal_try(env, lp, best, 1, 0);
    return r;
}

/* The superbasic pass: each nonbasic variable between its bounds (a free
 * column left at zero, a value kept by a repair) is moved to its nearer
 * bound or into the basis, so that the final solution is basic. A free
 * column along which nothing blocks in either direction stays. *moved gets
 * the number moved; the caller checks optimality again afterwards. */
int push_primal(TRVenv env, TRVlp lp, int *moved_p) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int moved = 0;
    *moved_p = 0;
    /* the pass runs at an optimum; a direction along which nothing blocks
     * costs nothing (the reduced cost is within the tolerance) and leaves
     * the decision as it was */
    const int decided = ps->status;
    for (int j = 0; j < s->ntotal; j++) {
        if (it->status[j] != 3) continue;
        it->d[j] = primal_dj(lp, j);
        primal_price_touch(ps, j);
        int dirs[2], nd = 0;
        bool fl = s->has_lower[j], fu = s->has_upper[j];
        double x = it->x[j];
        if (fl && fu) dirs[nd++] = ps->upper[j] - x <= x - ps->lower[j] ? 1 : -1;
        else if (fu) dirs[nd++] = 1;
        else if (fl) dirs[nd++] = -1;
        else {
            dirs[nd++] = it->d[j] <= 0.0 ? 1 : -1;
            dirs[nd++] = -dirs[0];
        }
        for (int k = 0; k < nd && it->status[j] == 3; k++) {
            int st = primal_try_dir(env, lp, j, 1, 1, dirs[k]);
            if (ps->status == LPS_UNBOUNDED) ps->status = decided; /* nothing blocks this way */
            if (st == RC_RETRY) continue;
            if (st != 0) return st;
        }
        if (it->status[j] != 3) moved++;
    }
    *moved_p = moved;
    return 0;
}
