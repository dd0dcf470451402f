/*
 * progress.cpp - the watch over the progress of a primal run. The objective
 * of the phase (the sum of infeasibilities in phase 1) is compared with its
 * value when watching started; a run that has not moved for the stall
 * interval is perturbed, and a perturbed run that stalls again has its
 * tolerances stepped and its violated bounds shifted.
 */
#include <cmath>

#include "simplex/primal.h"

void progress_init(TRVenv env, primal_state *ps, int m) {
    progress_rec *pg = &ps->progress;
    int p = par_int(env, 1028);
    if (p > 0) {
        pg->interval = p;
    } else {
        static const int lim[] = {1000, 5000, 7500, 10000, 15000, 20000, 30000, 40000};
        static const int val[] = {400, 500, 600, 700, 900, 1100, 1600, 2100};
        pg->interval = 2600;
        for (int k = 0; k < 8; k++)
            if (m < lim[k]) {
                pg->interval = val[k];
                break;
            }
    }
    pg->sample = m < 5000 ? 501 : m < 10000 ? 1000 : m < 50000 ? 2000 : m < 100000 ? 10000 : 20000;
    pg->rate = 1e-6;
    pg->restart_count = 0;
    pg->fix_pending = 0;
}

static double phase_value(const primal_state *ps) {
    return ps->phase == 1 ? ps->sum_inf : ps->objective;
}

void progress_reset(TRVlp lp) {
    primal_state *ps = lp->primal;
    progress_rec *pg = &ps->progress;
    pg->base_value = phase_value(ps);
    pg->base_it = lp->solver->it.n_it;
    pg->last_it = pg->base_it;
    pg->phase = ps->phase;
}

/* Progress made since watching started, with a margin relative to the
 * size of the value. */
static bool moved(const primal_state *ps) {
    const progress_rec *pg = &ps->progress;
    double v = phase_value(ps);
    double margin = 1e-9 * (1.0 + std::fabs(pg->base_value));
    return v < pg->base_value - margin;
}

/* Run once per iteration after the update. Returns 0 or an error code. */
int progress_check(TRVenv env, TRVlp lp) {
    primal_state *ps = lp->primal;
    progress_rec *pg = &ps->progress;
    int n_it = lp->solver->it.n_it;
    if (ps->phase != pg->phase || moved(ps)) {
        progress_reset(lp);
        return 0;
    }
    if (pg->last_it + pg->interval >= n_it) return 0;
    if (!ps->perturb.active) {
        /* stalled: lift the degenerate vertex */
        double mm = 0.01 * std::fabs(ps->objective);
        if (ps->phase == 2 && ps->obj_limit > -PR_BIG && ps->objective - ps->obj_limit < mm)
            ps->obj_limit -= mm;
        primal_perturb(env, lp);
        if (ps->perturb.count > 1 && ps->perturb.size <= 1e-6) pg->interval *= 2;
        progress_reset(lp);
        return 0;
    }
    if (pg->last_it + pg->sample >= n_it) return 0;
    /* stalled under a perturbation: step the tolerances, shift violations */
    if (pg->restart_count == 0) pg->fix_pending = 1;
    double delta_before = ps->harris_delta;
    ps->harris_delta = tol_step(ps->harris_delta);
    if (ps->harris_delta < 1e-9) ps->harris_delta = 1e-9;
    if (ps->phase == 2 && extend_shifts(lp) > 0) {
        primal_set_phase(lp);
        primal_compute_y(lp);
        if (ps->d_kept) primal_compute_d(lp);
    } else if (pg->restart_count < 3) {
        pg->restart_count++;
        primal_perturb(env, lp);
    } else if (ps->harris_delta >= delta_before) {
        /* the new starts are used up, nothing was left to shift and the
         * relaxation is at its floor: another interval would see the same
         * vertex, so the run ends here as not optimal */
        ps->status = ps->phase == 2 ? LPS_NONOPT_FEAS : LPS_NONOPT_INFEAS;
        return 0;
    }
    progress_reset(lp);
    return 0;
}
