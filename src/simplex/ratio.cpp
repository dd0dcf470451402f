/*
 * ratio.cpp - the primal ratio tests. Both are two-pass Harris tests: the
 * first pass finds the largest step that keeps every basic variable within
 * its bound relaxed by delta, the second chooses among the candidates whose
 * true ratio lies within that step the pivot of best weighted size. The
 * phase 1 test walks through the breakpoints of the sum of infeasibilities
 * and stops where its slope turns.
 *
 * The entering variable moves by t * dir (dir +1 up, -1 down); a basic
 * variable at position i then moves by -t * dir * alpha[i].
 */
#include <algorithm>
#include <cmath>

#include "simplex/core.h"

#define ALPHA_SKIP 1e-13

/* Weight of a candidate: long structural columns are driven out first. */
static inline double cand_weight(const simplex_lp *s, const ratio_work *rw, int j,
                                 double a) {
    if (rw->len_limit < 0) return a;
    if (j < s->nstruct) {
        double l = s->col_len[j] - 0.5;
        return (l < 50.0 ? l : 50.0) * a;
    }
    return 0.4999 * a;
}

static void ratio_reset(TRVlp lp, ratio_work *rw) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    rw->leaving = -1;
    rw->status_to = 1;
    rw->n_cand = 0;
    rw->step = 0.0;
    rw->max_abs = 0.0;
    rw->pivot_abs = 0.0;
    rw->objective_gain = 0.0;
    rw->delta = lp->primal->harris_delta;
    rw->len_limit = s->nstruct;
    if (rw->no_length || it->sing_count > 0 || it->markowitz >= 0.1) rw->len_limit = -1;
}

static inline void add_cand(ratio_work *rw, int i, double ratio, double a, double red,
                            int to) {
    int k = rw->n_cand++;
    rw->cand_idx[k] = i;
    rw->cand_ratio[k] = ratio;
    rw->cand_alpha[k] = a;
    rw->cand_red[k] = red;
    rw->cand_to[k] = static_cast<signed char>(to);
    rw->cand_state[k] = 0;
    if (a > rw->max_abs) rw->max_abs = a;
}

/* Largest magnitude of the whole column. */
static double column_max(const sparse_vec *a) {
    double n = 0.0;
    for (int k = 0; k < a->nz; k++) n = std::max(n, std::fabs(a->val[a->idx[k]]));
    return n;
}

/* Shift the leaving bound to the current value when the chosen ratio is
 * negative, so that the step is zero; the pivot quality test follows. */
static int settle(TRVlp lp, ratio_work *rw, int k, int dir, double d) {
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int i = rw->cand_idx[k];
    rw->leaving = i;
    rw->status_to = rw->cand_to[k];
    rw->pivot_abs = rw->cand_alpha[k];
    double step = rw->cand_ratio[k];
    if (step < 0.0) {
        if (ps->shift_on) primal_shift_bound(lp, i, rw->status_to, it->x[it->head[i]]);
        step = 0.0;
    }
    rw->step = step;
    double g = step * dir * d;
    rw->objective_gain = g;
    double p = rw->pivot_abs;
    if (g <= 100.0 && p >= 0.1 && rw->max_abs >= 0.1) return 0;
    double n = column_max(&ps->alpha);
    if (n <= 0.0 || rw->max_abs / n < ALPHA_SKIP) return 3;
    if (p < 1e-8 || p / n < 1e-8) return rw->forced ? 0 : RC_RETRY;
    if (rw->forced) return 0;
    if (g <= 1e-6 && g <= 10.0 * rw->delta && step >= -10.0 * rw->delta) return 0;
    return RC_RETRY;
}

static int bound_flip_or_unbounded(ratio_work *rw, double step_limit, int dir, double d) {
    rw->leaving = -1;
    if (step_limit < PR_BIG) {
        rw->step = step_limit;
        rw->objective_gain = step_limit * dir * d;
        rw->status_to = 1;
        return 0;
    }
    rw->status_to = 3;
    return 3;
}

int ratio_primal_p2(TRVlp lp, int dir, double d, double step_limit, int q) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    ratio_work *rw = &ps->rw;
    const sparse_vec *av = &ps->alpha;
    ratio_reset(lp, rw);
    for (int k = 0; k < av->nz; k++) {
        int i = av->idx[k];
        double a = av->val[i];
        if (std::fabs(a) <= ALPHA_SKIP) continue;
        int j = it->head[i];
        double r = -dir * a, x = it->x[j];
        if (r < 0.0) {
            if (s->has_lower[j]) add_cand(rw, i, (x - ps->lower[j]) / -r, -r, 0.0, 0);
        } else if (s->has_upper[j]) {
            add_cand(rw, i, (ps->upper[j] - x) / r, r, 0.0, 2);
        }
    }
    if (rw->n_cand == 0 || rw->max_abs < 1e-9) return bound_flip_or_unbounded(rw, step_limit, dir, d);
    double t = PR_BIG;
    for (int k = 0; k < rw->n_cand; k++) {
        double h = rw->cand_ratio[k] + rw->delta / rw->cand_alpha[k];
        if (h < t) t = h;
    }
    if (t < 0.0) t = 0.0;
    if (t >= step_limit) return bound_flip_or_unbounded(rw, step_limit, dir, d);
    int best = -1;
    double bw = 0.0;
    for (int k = 0; k < rw->n_cand; k++) {
        if (rw->cand_ratio[k] > t) continue;
        double w = cand_weight(s, rw, it->head[rw->cand_idx[k]], rw->cand_alpha[k]);
        if (w > bw) {
            bw = w;
            best = k;
        }
    }
    if (best < 0) return bound_flip_or_unbounded(rw, step_limit, dir, d);
    (void)q;
    return settle(lp, rw, best, dir, d);
}

int ratio_primal_p1(TRVlp lp, int dir, double d, double step_limit, int q) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    ratio_work *rw = &ps->rw;
    const sparse_vec *av = &ps->alpha;
    ratio_reset(lp, rw);
    for (int k = 0; k < av->nz; k++) {
        int i = av->idx[k];
        double a = av->val[i];
        if (std::fabs(a) <= ALPHA_SKIP) continue;
        int j = it->head[i];
        double r = -dir * a, x = it->x[j], c = ps->c1[i], aa = std::fabs(a);
        double l = ps->lower[j], u = ps->upper[j];
        if (r < 0.0) {
            if (c > 0.0) {
                add_cand(rw, i, (x - u) / -r, aa, aa, 2);
                if (s->has_lower[j]) add_cand(rw, i, (x - l) / -r, aa, aa, 0);
            } else if (c == 0.0 && s->has_lower[j]) {
                add_cand(rw, i, (x - l) / -r, aa, aa, 0);
            }
        } else {
            if (c < 0.0) {
                add_cand(rw, i, (l - x) / r, aa, aa, 0);
                if (s->has_upper[j]) add_cand(rw, i, (u - x) / r, aa, aa, 2);
            } else if (c == 0.0 && s->has_upper[j]) {
                add_cand(rw, i, (u - x) / r, aa, aa, 2);
            }
        }
    }
    if (rw->n_cand == 0 || rw->max_abs < 1e-9) return bound_flip_or_unbounded(rw, step_limit, dir, d);
    /* order the breakpoints by ratio */
    int n = rw->n_cand;
    int *ord = rw->cand_order;
    for (int k = 0; k < n; k++) ord[k] = k;
    std::sort(ord, ord + n, [rw](int a, int b) { return rw->cand_ratio[a] < rw->cand_ratio[b]; });
    double slope = std::fabs(d);
    int stop = -1;
    for (int k = 0; k < n; k++) {
        int c = ord[k];
        if (rw->cand_ratio[c] >= step_limit) break;
        /* stop where the slope is used up: moving on at a zero slope
         * would only trade infeasibility between variables */
        if (slope - rw->cand_red[c] <= 1e-12 * (1.0 + std::fabs(d))) {
            stop = k;
            break;
        }
        slope -= rw->cand_red[c];
        rw->cand_state[c] = 1;
    }
    if (stop < 0) {
        /* every breakpoint below the entering variable's own bound passed */
        if (step_limit < PR_BIG) return bound_flip_or_unbounded(rw, step_limit, dir, d);
        stop = n - 1; /* the slope cannot stay positive forever */
    }
    double t = PR_BIG;
    for (int k = stop; k < n; k++) {
        int c = ord[k];
        double h = rw->cand_ratio[c] + rw->delta / rw->cand_alpha[c];
        if (h < t) t = h;
    }
    int best = ord[stop];
    double bw = 0.0;
    for (int k = stop; k < n; k++) {
        int c = ord[k];
        if (rw->cand_ratio[c] > t) break;
        double w = cand_weight(s, rw, it->head[rw->cand_idx[c]], rw->cand_alpha[c]);
        if (w > bw) {
            bw = w;
            best = c;
        }
    }
    (void)q;
    return settle(lp, rw, best, dir, d);
}
