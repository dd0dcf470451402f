/*
 * perturb.cpp - the fight against degeneracy: the start and the end of a
 * perturbation and the stepping rules of the working tolerances, which
 * both drivers share, and the primal's own perturbation: a random
 * widening of the bounds of the basic variables, single bound shifts made
 * by the ratio test, and their removal at the end of a run.
 */
#include <cmath>

#include "simplex/core.h"

double tol_raise(double t) {
    if (t < 9.99999999e-05) return 1.1 * t;
    return t * 2.0 > 0.0001 ? t * 2.0 : 0.0001;
}

double tol_step(double t) {
    if (t > 1.0000001e-06) return std::fmax(0.1 * t, 1e-06);
    if (t > 1.000001e-07) return std::fmax(0.3154574132492114 * t, 1e-07);
    if (t > 1.00001e-08) return std::fmax(0.7518796992481203 * t, 1e-08);
    if (t > 1.0001e-09) return std::fmax(0.8620689655172413 * t, 1e-09);
    if (t > 1.001e-10) return 0.9 * t + 1e-11;
    return 0.9900990099009901 * t;
}

double tol_reduce(double t) {
    if (t > 1.000001e-07) return std::fmax(0.1 * t, 1e-07);
    if (t > 1.0001e-09) return std::fmax(0.2155172413793104 * t, 1e-09);
    if (t > 1.01e-11) return 0.5 * t + 5e-12;
    return 0.9900990099009901 * t;
}

/* Size rule: the first start takes the size as it stands, later ones a
 * tenth of it, never below 1e-6; the Harris relaxation stays well below. */
void perturb_next_size(simplex_run *r) {
    perturb_rec *pr = &r->perturb;
    if (pr->count > 0) {
        pr->size *= 0.1;
        if (pr->size < 1e-6) pr->size = 1e-6;
    }
    if (100.0 * r->harris_delta >= pr->size) {
        r->harris_delta = 0.01 * pr->size;
        r->harris_base = 0.01 * pr->size;
    }
}

void primal_perturb(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    perturb_next_size(ps);
    double size = ps->perturb.size;
    bool rhs_moved = false;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        if (j < s->nstruct) {
            if (s->has_lower[j])
                ps->lower[j] -= env_randomd(env) * size * (1.0 + std::fabs(ps->lower[j]));
            if (s->has_upper[j])
                ps->upper[j] += env_randomd(env) * size * (1.0 + std::fabs(ps->upper[j]));
        } else if (j < s->ntotal) {
            int r = s->row_of_var[j];
            double coef = s->val[s->col_beg[j]];
            ps->rhs[r] += env_randomd(env) * coef * size * (1.0 + std::fabs(ps->rhs[r]));
            rhs_moved = true;
        }
    }
    perturb_begin(env, ps);
    if (rhs_moved) primal_compute_x(lp);
    primal_set_phase(lp);
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
    primal_price_reset(lp);
}

/* Moves the bound of the basic variable at pos that it is about to leave
 * at (to: 0 lower, 2 upper) to target. Refused (0) for a move of 1000 or
 * more. */
int primal_shift_bound(TRVlp lp, int pos, int to, double target) {
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int j = it->head[pos];
    double *b = to == 2 ? &ps->upper[j] : &ps->lower[j];
    if (std::fabs(target - *b) >= 1000.0) return 0;
    *b = target;
    ps->perturb.shift_count++;
    return 1;
}

/* Shifts the bounds of every basic variable outside its working bounds by
 * more than the feasibility tolerance. Returns the count. */
int extend_shifts(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int n = 0;
    for (int i = 0; i < s->m; i++) {
        int j = it->head[i];
        double x = it->x[j];
        if (s->has_lower[j] && x < ps->lower[j] - ps->feas_tol) n += primal_shift_bound(lp, i, 0, x);
        else if (s->has_upper[j] && x > ps->upper[j] + ps->feas_tol) n += primal_shift_bound(lp, i, 2, x);
    }
    return n;
}

/* Announces a new start of the perturbation and marks it in force. */
void perturb_begin(TRVenv env, simplex_run *r) {
    perturb_rec *pr = &r->perturb;
    if (r->log.display > 0)
        TRVmsg(env->reschannel, pr->count == 0 ? "Perturbation started.\n"
                                               : "Reperturbation started.\n");
    pr->active = 1;
    pr->count++;
    pr->shift_limit = PR_NOLIMIT;
}

/* The common part of the removal of a perturbation or of shifts: returns
 * 0 when neither is in force, else announces it, lowers the Harris
 * tolerance after shifts alone, and clears the record. */
int perturb_end(TRVenv env, simplex_run *r) {
    perturb_rec *pr = &r->perturb;
    if (!pr->active && pr->shift_count == 0) return 0;
    if (r->log.display > 0) {
        if (pr->active) TRVmsg(env->reschannel, "Removing perturbation.\n");
        else TRVmsg(env->reschannel, "Removing shift (%d).\n", pr->shift_count);
    }
    if (!pr->active) {
        r->harris_base = tol_reduce(r->harris_base);
        r->harris_delta = r->harris_base;
    }
    pr->active = 0;
    pr->shift_limit = PR_NOLIMIT;
    pr->shift_count = 0;
    return 1;
}

/* Back to the true bounds, costs and right-hand side. Returns 1 when a
 * perturbation or shifts were in force (the values are then recomputed). */
int primal_remove(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    if (!perturb_end(env, ps)) return 0;
    for (int j = 0; j < s->ncoltot; j++) {
        ps->lower[j] = s->lower[j];
        ps->upper[j] = s->upper[j];
        ps->cost[j] = s->sense * s->cost[j];
        /* a superbasic now on a bound takes that bound's status */
        if (it->status[j] == 3) {
            if (s->has_lower[j] && it->x[j] <= ps->lower[j]) it->status[j] = 0;
            else if (s->has_upper[j] && it->x[j] >= ps->upper[j]) it->status[j] = 2;
        }
    }
    const lp_data *d = lp->lpdata;
    for (int i = 0; i < s->m; i++) ps->rhs[i] = d->rhs[i];
    ps->ban_epoch = PR_NOLIMIT;
    primal_compute_x(lp);
    primal_set_phase(lp);
    primal_compute_y(lp);
    if (ps->d_kept) primal_compute_d(lp);
    ps->objective = primal_objective(lp);
    primal_price_reset(lp);
    return 1;
}
