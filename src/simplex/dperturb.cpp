/*
 * dperturb.cpp - the fight against dual degeneracy: a random perturbation
 * of the costs of the nonbasic variables in the direction that widens
 * their dual feasibility, single cost shifts made by the ratio test, and
 * their removal at the end of a run.
 */
#include <cmath>

#include "simplex/core.h"

/* Moves the cost of every nonbasic variable that is not fixed by a random
 * relative amount in the direction of its dual feasibility: up at a lower
 * bound, down at an upper bound; a free variable keeps its cost, and so
 * does one whose reduced cost has the wrong sign. */
void dual_perturb(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    perturb_next_size(ds);
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
    perturb_begin(env, ds);
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
    if (!perturb_end(env, ds)) return 0;
    for (int j = 0; j < s->ncoltot; j++) ds->cost[j] = j < s->ntotal ? s->sense * s->cost[j] : 0.0;
    dual_compute_d(lp);
    return 1;
}
