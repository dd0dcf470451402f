/*
 * dperturb.cpp - the fight against dual degeneracy: a random perturbation
 * of the costs of the nonbasic variables in the direction that widens
 * their dual feasibility, single cost shifts made by the ratio test, their
 * removal at the end of a run, and the watch over the progress of the
 * dual objective that starts the perturbation when a run stalls.
 */
#include <cmath>

#include "simplex/dual.h"

void dual_progress_init(TRVenv env, dual_state *ds, int n) {
    dual_progress *pg = &ds->progress;
    int p = par_int(env, 1028);
    pg->interval = p > 0 ? p : n < 1000 ? 50 : 100;
    int m = n;
    pg->sample = m < 5000 ? 501 : m < 10000 ? 1000 : m < 50000 ? 2000 : m < 100000 ? 10000 : 20000;
    pg->rate = 1e-6;
    pg->restart_count = 0;
    pg->fix_pending = 0;
    pg->falls = 0;
    pg->gave_up = 0;
}

void dual_progress_reset(TRVlp lp) {
    dual_state *ds = lp->dual;
    dual_progress *pg = &ds->progress;
    pg->base_value = ds->objective;
    pg->base_it = lp->solver->it.n_it;
    pg->last_it = pg->base_it;
    pg->phase = ds->phase;
}

/* The dual objective rises in both phases; a rise beyond a margin relative
 * to its size is progress. */
static bool moved(const dual_state *ds) {
    const dual_progress *pg = &ds->progress;
    double margin = 1e-9 * (1.0 + std::fabs(pg->base_value));
    return ds->objective > pg->base_value + margin;
}

/* The size rule of the primal perturbation. */
static void perturb_size(dual_state *ds) {
    perturb_next_size(&ds->perturb, &ds->harris_delta, &ds->harris_base);
}

/* Moves the cost of every nonbasic variable that is not fixed by a random
 * relative amount in the direction of its dual feasibility: up at a lower
 * bound, down at an upper bound; a free variable keeps its cost, and so
 * does one whose reduced cost has the wrong sign. */
void dual_perturb(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    perturb_size(ds);
    double size = ds->perturb.size;
    for (int j = 0; j < s->ntotal; j++) {
        int st = it->status[j];
        if (st == 1 || st == 3 || it->ban[j] == 2) continue;
        if (ds->lo_on[j] && ds->up_on[j] && ds->lower[j] == ds->upper[j]) continue;
        /* a dual infeasible cost keeps its value: phase 1 measures it */
        if (s->has_lower[j] && !s->has_upper[j] && it->d[j] < 0.0) continue;
        if (s->has_upper[j] && !s->has_lower[j] && it->d[j] > 0.0) continue;
        if (!s->has_lower[j] && !s->has_upper[j]) continue;
        double c = s->sense * s->cost[j];
        double amt = (0.5 + env_randomd(env)) * size * (1.0 + std::fabs(c));
        if (st == 2) amt = -amt;
        ds->cost[j] += amt;
        it->d[j] += amt;
    }
    perturb_begin(env, &ds->log, &ds->perturb);
    ds->objective = dual_objective(lp);
}

/* Moves the cost of j so that its reduced cost falls by amount. Refused
 * (0) for a move of 1000 or more. */
int dual_shift_cost(TRVlp lp, int j, double amount) {
    dual_state *ds = lp->dual;
    simplex_iter *it = &lp->solver->it;
    if (std::fabs(amount) >= 1000.0) return 0;
    it->d[j] -= amount;
    ds->cost[j] -= amount;
    ds->perturb.shift_count++;
    return 1;
}

/* Back to the true costs. Returns 1 when a perturbation or shifts were in
 * force; the reduced costs, the bound choice of the boxed variables and
 * the values are then recomputed. */
int dual_remove(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    dual_state *ds = lp->dual;
    dual_perturb_rec *pr = &ds->perturb;
    if (!perturb_end(env, &ds->log, pr, &ds->harris_base, &ds->harris_delta)) return 0;
    for (int j = 0; j < s->ncoltot; j++) ds->cost[j] = j < s->ntotal ? s->sense * s->cost[j] : 0.0;
    dual_compute_d(lp);
    return 1;
}

/* A run that keeps falling back from phase 2 to phase 1 goes round in a
 * loop that the watch of the objective never sees, since each change of
 * phase starts the watch afresh; a healthy run falls back a few times at
 * most. */
#define DP_MAX_FALLS 10

/* Run once per iteration after the update. Returns 0 or an error code. */
int dual_progress_check(TRVenv env, TRVlp lp) {
    dual_state *ds = lp->dual;
    dual_progress *pg = &ds->progress;
    int n_it = lp->solver->it.n_it;
    bool looping = false;
    if (ds->phase != pg->phase) {
        if (pg->phase == 2 && ds->phase == 1) pg->falls++;
        looping = pg->falls > DP_MAX_FALLS;
        if (!looping) {
            dual_progress_reset(lp);
            return 0;
        }
        pg->falls = 0;
    } else if (moved(ds)) {
        dual_progress_reset(lp);
        return 0;
    }
    if (!looping && pg->last_it + pg->interval >= n_it) return 0;
    if (!ds->perturb.active) {
        /* stalled: lift the degenerate vertex of the dual */
        double mm = 0.01 * std::fabs(ds->objective);
        if (ds->phase == 2 && ds->obj_limit < PR_BIG && ds->obj_limit - ds->objective < mm)
            ds->obj_limit += mm;
        dual_perturb(env, lp);
        if (ds->perturb.count > 1 && ds->perturb.size <= 1e-6) pg->interval *= 2;
        dual_progress_reset(lp);
        return 0;
    }
    if (!looping && pg->last_it + pg->sample >= n_it) return 0;
    /* stalled under a perturbation: step the relaxation and perturb anew */
    if (pg->restart_count == 0) pg->fix_pending = 1;
    double delta_before = ds->harris_delta;
    ds->harris_delta = tol_step(ds->harris_delta);
    if (ds->harris_delta < 1e-9) ds->harris_delta = 1e-9;
    if (pg->restart_count < 3) {
        pg->restart_count++;
        dual_perturb(env, lp);
    } else if (looping || ds->harris_delta >= delta_before) {
        /* the new starts are used up and the relaxation is at its floor:
         * another interval would see the same vertices, so the run ends
         * here as not optimal */
        pg->gave_up = 1;
        ds->status = LPS_NONOPT_INFEAS;
        return 0;
    }
    dual_progress_reset(lp);
    return 0;
}
