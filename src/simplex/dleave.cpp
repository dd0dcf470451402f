/*
 * dleave.cpp - one dual iteration: the choice of the leaving row with the
 * clean-up when none is left, the attempts at a pivot with bans on rows
 * whose pivot is poor, the flips, the primal and dual steps, the norm
 * update and the basis change.
 */
#include <cmath>

#include "simplex/core.h"

/* The violation a basic value must pass to be chosen. In phase 1 the
 * values are those of the auxiliary box, whose units are those of the
 * rows: on a model left unscaled a row of tiny entries still carries a
 * sizeable dual infeasibility at a violation under the tolerance, so an
 * end of phase 1 is looked at again at a hundredth and a ten-thousandth
 * of it. */
static double select_tol(const dual_state *ds) {
    double t = ds->feas_tol;
    if (ds->phase == 1)
        for (int k = 0; k < ds->p1_rechecks; k++) t *= 0.01;
    return t;
}

/* The leaving row, or -1 with a status set when none remains after the
 * clean-up. Returns 0 or an error code. */
int dual_price_ladder(TRVenv env, TRVlp lp, int *p_out) {
    dual_state *ds = lp->dual;
    *p_out = dual_price_select(lp, select_tol(ds));
    if (*p_out >= 0) return 0;
    /* nothing to choose: the decision stands on fresh figures */
    int phase_before = ds->phase;
    if (ds->updates > 0 || ds->n_banned > 0) {
        int st = dual_refactor(env, lp);
        if (st != 0) return st;
        *p_out = dual_price_select(lp, select_tol(ds));
        if (*p_out >= 0) return 0;
    }
    if (ds->phase == 1 && phase_before == 1) {
        /* the auxiliary box is solved: the basis is dual feasible for the
         * model unless the sum of dual infeasibilities is positive */
        dual_set_phase(lp);
        if (ds->phase == 1) {
            if (ds->p1_rechecks < 2) {
                ds->p1_rechecks++;
                return RC_RETRY;
            }
            /* the variables a repair fixed may still remove the rest */
            if (dual_release_fixed(env, lp, 0)) return RC_RETRY;
            ds->status = LPS_UNB_OR_INF;
            return 0;
        }
        progress_reset(lp, ds);
        *p_out = dual_price_select(lp, ds->feas_tol);
        if (*p_out >= 0) return 0;
    }
    if (ds->phase == 1) return RC_RETRY; /* the phase fell back on refactoring */
    if (ds->pricing == DPR_SWITCH) {
        /* plain pricing has done its part: steepest edge from unit norms
         * for whatever the clean-up still finds */
        ds->pricing = DPR_STEEP_UNIT;
        dual_norms_reset(lp);
        ds->norms_ready = 1;
        progress_reset(lp, ds);
        if (ds->log.display > 0 && lp->solver->it.n_it > 0)
            TRVmsg(env->reschannel, "Switched to steepest-edge.\n");
        *p_out = dual_price_select(lp, ds->feas_tol);
        if (*p_out >= 0) return 0;
    }
    ds->status = LPS_OPTIMAL;
    return 0;
}

/* The entering column through the factorization into ds->alpha. */
static void entering_column(TRVlp lp, int q) {
    column_solve(lp, q, &lp->dual->col, &lp->dual->alpha);
}

/* The flips of the ratio test: the variables go to their other bound and
 * the basic values follow through one solve. Returns the objective change. */
static double do_flips(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    if (ds->n_flip == 0) return 0.0;
    sparse_vec *f = &ds->fcol;
    sv_clear(f);
    f->nz = 0;
    double dz = 0.0;
    for (int k = 0; k < ds->n_flip; k++) {
        int j = ds->flip_list[k];
        double old = it->x[j], nw;
        if (it->status[j] == 0) {
            it->status[j] = 2;
            nw = ds->upper[j];
        } else {
            it->status[j] = 0;
            nw = ds->lower[j];
        }
        double dx = nw - old;
        it->x[j] = nw;
        dz += it->d[j] * dx;
        for (int e = s->col_beg[j]; e < s->col_end[j]; e++) {
            int i = s->row_idx[e];
            if (f->val[i] == 0.0) f->idx[f->nz++] = i;
            f->val[i] += s->val[e] * dx;
            if (f->val[i] == 0.0) f->val[i] = 1e-300;
        }
    }
    sparse_vec *r = &ds->fdelta;
    sv_clear(r);
    lu_ftran_nospike(lp->factor, r, f);
    if (r->nz < 0) sv_from_dense(r);
    for (int k = 0; k < r->nz; k++) {
        int i = r->idx[k];
        it->x[it->head[i]] -= r->val[i];
        kheap_touch(&ds->rows, i);
    }
    ds->flip_count += ds->n_flip;
    return dz;
}

/* After a refactorization inside the update: everything from scratch. */
static void after_refactor(TRVlp lp) {
    dual_state *ds = lp->dual;
    ds->updates = 0;
    ds->log.refactored = 1;
    dual_compute_d(lp);
    if (ds->phase == 2 && dual_count_dinf(lp, ds->opt_tol, nullptr) > 0) {
        dual_set_phase(lp);
        return;
    }
    dual_fix_boxed(lp);
    dual_compute_x(lp);
    ds->objective = dual_objective(lp);
}

/* The proof of a row without an entering variable, with every entry of the
 * row above round-off counted: the nonbasic variables can move the
 * leaving one toward its bound by at most the sum of |alpha| times their
 * room, which must fall short of its violation. Round-off is what the
 * ratio test leaves out as such: an entry it will not pivot on must not
 * stand against the proof either, or in an ill-conditioned basis a row
 * whose only other entries are noise is neither a pivot nor a proof, and
 * the run ends without a decision. */
static bool row_proves_infeasibility(TRVlp lp, int dir, double slope) {
    const simplex_iter *it = &lp->solver->it;
    const dual_state *ds = lp->dual;
    double room = 0.0;
    for (int k = 0; k < ds->prow_nz; k++) {
        int j = ds->prow_idx[k];
        double a = dir * ds->prow[j];
        int st = it->status[j];
        if (st == 1 || std::fabs(a) <= DR_TINY) continue; /* round-off, as in the ratio test */
        double up = ds->up_on[j] ? ds->upper[j] - it->x[j] : PR_BIG;
        double down = ds->lo_on[j] ? it->x[j] - ds->lower[j] : PR_BIG;
        /* a > 0: the variable rising helps; a < 0: falling helps */
        double r = a > 0.0 ? up : down;
        if (r >= PR_BIG) return false;
        room += std::fabs(a) * r;
    }
    return room < slope - ds->feas_tol;
}

/* The ratio test leaves out the entries of the pivot row at or below
 * round-off size, but a long dual step still moves their reduced costs:
 * on a model whose entries span many orders of magnitude a step of 1e5
 * takes one of them 1e-4 past zero, the next factorization finds the
 * basis dual infeasible and the run falls back to phase 1, over and over.
 * Such a reduced cost is shifted back to zero instead, a shift that goes
 * with the others at the end of the run. */
static void shift_tiny_entries(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    for (int k = 0; k < ds->prow_nz; k++) {
        int j = ds->prow_idx[k];
        if (std::fabs(ds->prow[j]) > DR_TINY || it->status[j] == 1 || j >= s->ntotal) continue;
        if (it->ban[j] == 32 || (ds->lo_on[j] && ds->up_on[j] && ds->lower[j] == ds->upper[j]))
            continue;
        if (dual_infeasibility(ds, it, j) > ds->harris_delta) dual_shift_cost(lp, j, it->d[j]);
    }
}

/* One attempt on position p. forced takes a pivot the ratio test doubts. */
static int dual_try(TRVenv env, TRVlp lp, int p, int forced) {
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    int r_var = it->head[p];
    double x = it->x[r_var];
    int dir;
    double slope;
    if (x < ds->lower[r_var]) {
        dir = -1;
        slope = ds->lower[r_var] - x;
    } else {
        dir = 1;
        slope = x - ds->upper[r_var];
    }
    dual_pivot_row(lp, p);
    int r = ratio_dual(lp, dir, slope, 1);
    if (r == 3) {
        /* no entering variable: the row proves primal infeasibility once
         * it stands on a fresh factorization and with every variable in
         * the ratio test, those a repair fixed included */
        if (dual_release_fixed(env, lp, 1)) return RC_RETRY;
        if (ds->updates > 0) return run_refactor_retry(env, lp, ds);
        if (ds->phase == 1 || !row_proves_infeasibility(lp, dir, slope)) return RC_RETRY;
        ds->status = LPS_INFEASIBLE;
        ds->log.left = r_var;
        return 0;
    }
    if (r == RC_RETRY && !(forced && ds->rw_enter >= 0)) return RC_RETRY;
    int q = ds->rw_enter;
    entering_column(lp, q);
    double alpha_p = ds->alpha.val[p];
    int ck = run_pivot_check(env, lp, ds, p, q, alpha_p, 1e-11, forced);
    if (ck != 0) return ck;

    /* the dual step; a slightly infeasible d[q] is shifted to zero */
    double a_q = dir * ds->prow[q];
    double theta_d = it->d[q] / a_q;
    if (theta_d * 1.0 < 0.0 || !std::isfinite(theta_d)) {
        dual_shift_cost(lp, q, it->d[q]);
        theta_d = 0.0;
    }
    /* norms: tau = B^-1 rho before the basis changes */
    double rho2 = 0.0;
    bool steep = ds->pricing != DPR_PLAIN && ds->pricing != DPR_SWITCH;
    if (steep) {
        const sparse_vec *rho = &ds->rho;
        for (int k = 0; k < rho->nz; k++) {
            double v = rho->val[rho->idx[k]];
            rho2 += v * v;
        }
        /* the solve consumes its right-hand side: rho goes in a copy */
        sv_copy(&ds->col, rho);
        sv_clear(&ds->tau);
        lu_ftran_nospike(lp->factor, &ds->tau, &ds->col);
        if (ds->tau.nz < 0) sv_from_dense(&ds->tau);
    }
    double dq_old = it->d[q];
    /* flips, then the primal step */
    double dz = do_flips(lp);
    double target = dir > 0 ? ds->upper[r_var] : ds->lower[r_var];
    double theta_p = (it->x[r_var] - target) / alpha_p;
    const sparse_vec *a = &ds->alpha;
    if (theta_p != 0.0) {
        for (int k = 0; k < a->nz; k++) {
            int i = a->idx[k];
            it->x[it->head[i]] -= theta_p * a->val[i];
        }
    }
    /* values and weights along the entering column move */
    for (int k = 0; k < a->nz; k++) kheap_touch(&ds->rows, a->idx[k]);
    it->x[q] += theta_p;
    it->x[r_var] = target;
    dz += dq_old * theta_p;
    ds->objective += dz;
    /* reduced costs along the pivot row */
    if (theta_d != 0.0) {
        double t = theta_d * dir;
        for (int k = 0; k < ds->prow_nz; k++) {
            int j = ds->prow_idx[k];
            it->d[j] -= t * ds->prow[j];
        }
        if (std::fabs(theta_d) * DR_TINY > ds->harris_delta) shift_tiny_entries(lp);
    }
    it->d[q] = 0.0;
    it->d[r_var] = -dir * theta_d;
    if (steep) dual_price_pivot(lp, p, alpha_p, rho2);
    if (steep) sv_clear(&ds->tau);
    it->status[r_var] = static_cast<signed char>(dir > 0 ? 2 : 0);
    it->status[q] = 1;
    dual_row_swap(lp, q, r_var);
    ds->log.entered = q;
    ds->log.left = r_var;
    ds->log.left_status = it->status[r_var];
    int st = lu_update(env, lp);
    ds->updates++;
    if (st != 0 && st != RC_REPAIRED) return st;
    if (st == RC_REPAIRED) {
        dual_row_partition(lp);
        after_refactor(lp);
        dual_norms_reset(lp);
        dual_set_phase(lp);
        return 0;
    }
    if (lp->factor->update_count == 0) after_refactor(lp);
    return 0;
}

/* Tries the rows: p first, then further choices of the pricing while
 * attempts fail on poor pivots. */
int dual_pivot(TRVenv env, TRVlp lp, int p) {
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    int first = p;
    int kmax = ds->candidates_max < 64 ? ds->candidates_max : 64;
    for (int k = 0; k < kmax; k++) {
        if (k > 0) {
            p = dual_price_select(lp, select_tol(ds));
            if (p < 0) break;
        }
        int sets = ds->phase_sets;
        int r = dual_try(env, lp, p, 0);
        if (r != RC_RETRY) return r;
        if (ds->status != 0) return 0;
        /* values and phase set anew (a repair, variables let go): the
         * rows are chosen again from them */
        if (!lp->factor->valid || ds->phase_sets != sets) return RC_RETRY;
        if (ds->updates == 0 && ds->n_banned == 0 && k > 0) break;
        it->pos_ban[p] = 33;
        ds->n_banned++;
    }
    if (ds->updates > 0) return run_refactor_retry(env, lp, ds);
    /* a fresh factorization and still no good pivot: take one */
    for (int i = 0; i < lp->solver->splp.m; i++)
        if (it->pos_ban[i] == 33) it->pos_ban[i] = 0;
    ds->n_banned = 0;
    int r = dual_try(env, lp, first, 1);
    /* a dead end while a repair keeps variables out is none: they come
     * back first */
    if (r == RC_RETRY && dual_release_fixed(env, lp, 1)) return RC_RETRY;
    if (r == RC_RETRY) {
        /* a row the closer look at the end of phase 1 found has no usable
         * pivot: phase 1 ends as it would have without that look */
        if (ds->phase == 1 && ds->p1_rechecks > 0) ds->status = LPS_UNB_OR_INF;
        /* feasible means primal feasible, and the row chosen breaks its
         * bound */
        else ds->status = LPS_NONOPT_INFEAS;
        return 0;
    }
    return r;
}
