/*
 * progress.cpp - the watch over the progress of a run. The value of the
 * phase (run_ops.progress_value: the dual objective, or the negated
 * objective or sum of infeasibilities of the primal, so that it rises) is
 * compared with its value when watching started. A run that has not moved
 * for the stall interval is perturbed; a perturbed run that stalls again
 * has its Harris relaxation stepped, the driver's own remedy tried, and
 * is perturbed anew; when the new starts are used up and the relaxation is
 * at its floor the run gives up as not optimal. A run that keeps falling
 * back from phase 2 to phase 1 goes round in a loop that the watch never
 * sees, since each change of phase starts the watch afresh: a healthy run
 * falls back a few times at most.
 */
#include <cmath>

#include "simplex/core.h"

#define PROGRESS_MAX_FALLS 10

void progress_init(TRVenv env, simplex_run *r, int interval, int m) {
    progress_rec *pg = &r->progress;
    int p = par_int(env, 1028);
    pg->interval = p > 0 ? p : interval;
    pg->sample = m < 5000 ? 501 : m < 10000 ? 1000 : m < 50000 ? 2000 : m < 100000 ? 10000 : 20000;
    pg->restart_count = 0;
    pg->fix_pending = 0;
    pg->falls = 0;
    pg->gave_up = 0;
}

void progress_reset(TRVlp lp, simplex_run *r) {
    progress_rec *pg = &r->progress;
    pg->base_value = r->ops->progress_value(lp);
    pg->base_it = lp->solver->it.n_it;
    pg->last_it = pg->base_it;
    pg->phase = r->phase;
}

/* Progress made since watching started, with a margin relative to the
 * size of the value. */
static bool moved(TRVlp lp, const simplex_run *r) {
    const progress_rec *pg = &r->progress;
    double margin = 1e-9 * (1.0 + std::fabs(pg->base_value));
    return r->ops->progress_value(lp) > pg->base_value + margin;
}

int progress_check(TRVenv env, TRVlp lp, simplex_run *r) {
    const run_ops *o = r->ops;
    progress_rec *pg = &r->progress;
    int n_it = lp->solver->it.n_it;
    bool looping = false;
    if (r->phase != pg->phase) {
        if (pg->phase == 2 && r->phase == 1) pg->falls++;
        looping = pg->falls > PROGRESS_MAX_FALLS;
        if (!looping) {
            progress_reset(lp, r);
            return 0;
        }
        pg->falls = 0;
    } else if (moved(lp, r)) {
        progress_reset(lp, r);
        return 0;
    }
    if (!looping && pg->last_it + pg->interval >= n_it) return 0;
    if (!r->perturb.active) {
        /* stalled: lift the degenerate vertex; an objective limit close
         * ahead moves out of the way of the perturbed objective */
        double mm = 0.01 * std::fabs(r->objective);
        if (r->phase == 2 && std::fabs(r->obj_limit) < PR_BIG &&
            o->dir * (r->obj_limit - r->objective) < mm)
            r->obj_limit += o->dir * mm;
        o->perturb(env, lp);
        if (r->perturb.count > 1 && r->perturb.size <= 1e-6) pg->interval *= 2;
        progress_reset(lp, r);
        return 0;
    }
    if (!looping && pg->last_it + pg->sample >= n_it) return 0;
    /* stalled under a perturbation: step the relaxation and perturb anew */
    if (pg->restart_count == 0) pg->fix_pending = 1;
    double delta_before = r->harris_delta;
    r->harris_delta = tol_step(r->harris_delta);
    if (r->harris_delta < 1e-9) r->harris_delta = 1e-9;
    if (o->stall_remedy != nullptr && o->stall_remedy(lp)) {
    } else if (pg->restart_count < 3) {
        pg->restart_count++;
        o->perturb(env, lp);
    } else if (looping || r->harris_delta >= delta_before) {
        /* the new starts are used up and the relaxation is at its floor:
         * another interval would see the same vertices, so the run ends
         * here as not optimal */
        pg->gave_up = 1;
        r->status = o->feasible(lp) ? LPS_NONOPT_FEAS : LPS_NONOPT_INFEAS;
        return 0;
    }
    progress_reset(lp, r);
    return 0;
}
