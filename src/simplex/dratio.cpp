/*
 * dratio.cpp - the dual ratio test: a long-step test with bound flipping
 * and a Harris relaxation.
 *
 * Let s be +1 when the leaving variable goes to its upper bound and -1
 * when it goes to its lower bound, and a_j = s * alpha_pj along the pivot
 * row. A dual step t moves d_j to d_j - t a_j. A nonbasic variable at its
 * lower bound blocks the step when a_j > 0, one at its upper bound when
 * a_j < 0, a free one for either sign; a fixed one never blocks (its d may
 * take either sign).
 *
 * The slope of the dual objective starts at the leaving variable's
 * infeasibility. The test walks the breakpoints in groups: the Harris bound
 * of the remaining candidates (each bound relaxed by delta) defines the
 * group, and passing the group lowers the slope by |a_j| times the box
 * width of its members. While the slope stays positive the members flip to
 * their other bound and the walk goes on; otherwise the member with the
 * largest |a_j| enters. A variable that is not boxed ends the walk.
 */
#include <algorithm>
#include <cmath>

#include "simplex/core.h"

#define DR_GOOD 1e-7      /* smallest pivot taken without a second look */

/* The outcomes of a group besides the entering candidate. */
enum { NONE = -1, FLIPPED = -2 };

/* The first group: the candidates whose ratio is within the Harris bound
 * hmin of them all. The candidate (its index among them) with the largest
 * |a| enters, unless the whole group may flip: then its members go on the
 * flip list, the others close up at the front, *slope falls by the
 * group's reduction and FLIPPED comes back with their count in
 * ds->cand_left. NONE when no candidate is within the bound. */
static int first_group(dual_state *ds, int nc, double hmin, int flipping, double *slope) {
    const double *lo = ds->lower, *up = ds->upper;
    const signed char *lo_on = ds->lo_on, *up_on = ds->up_on;
    int *cj = ds->cand_j;
    double *cr = ds->cand_ratio, *ca = ds->cand_a, *ch = ds->cand_h;
    double tmax = hmin < 0.0 ? 0.0 : hmin;
    double reduce = 0.0, best_abs = 0.0;
    int best = NONE;
    bool open_var = false;
    for (int k = 0; k < nc; k++) {
        if (cr[k] > tmax) continue;
        int j = cj[k];
        double aa = std::fabs(ca[k]);
        if (lo_on[j] && up_on[j]) reduce += aa * (up[j] - lo[j]);
        else open_var = true;
        if (aa > best_abs) {
            best_abs = aa;
            best = k;
        }
    }
    if (best < 0 || !flipping || open_var || !(*slope - reduce > 1e-9)) return best;
    *slope -= reduce;
    int w = 0;
    for (int k = 0; k < nc; k++) {
        if (cr[k] <= tmax) {
            ds->flip_list[ds->n_flip++] = cj[k];
        } else {
            cj[w] = cj[k];
            ca[w] = ca[k];
            cr[w] = cr[k];
            ch[w] = ch[k];
            w++;
        }
    }
    ds->cand_left = w;
    return FLIPPED;
}

/* The walk past the first group over the candidates left: two heaps, one
 * by ratio (the next group is the run of ratios within the bound) and one
 * by relaxed ratio (the Harris bound of those left, found past the
 * members already flipped), so that the work follows the groups walked,
 * not the row. Within a group the sums and the choice follow the order in
 * which the candidates were gathered, as in the first group. Returns the
 * entering variable, or -1 when every candidate flipped. */
static int walk_groups(dual_state *ds, double slope, double *enter_abs) {
    const double *lo = ds->lower, *up = ds->upper;
    const signed char *lo_on = ds->lo_on, *up_on = ds->up_on;
    const int *cj = ds->cand_j;
    const double *cr = ds->cand_ratio, *ca = ds->cand_a, *ch = ds->cand_h;
    int nc = ds->cand_left;
    int *byr = ds->cand_ord, *byh = ds->cand_hord, *group = ds->cand_group;
    char *done = ds->cand_done;
    auto later_r = [&](int a, int b) { return cr[a] > cr[b] || (cr[a] == cr[b] && a > b); };
    auto later_h = [&](int a, int b) { return ch[a] > ch[b] || (ch[a] == ch[b] && a > b); };
    for (int k = 0; k < nc; k++) byr[k] = byh[k] = k, done[k] = 0;
    int nr = nc, nh = nc;
    std::make_heap(byr, byr + nr, later_r);
    std::make_heap(byh, byh + nh, later_h);
    while (nr > 0) {
        while (done[byh[0]]) std::pop_heap(byh, byh + nh--, later_h);
        double tmax = ch[byh[0]] < 0.0 ? 0.0 : ch[byh[0]];
        int ng = 0;
        while (nr > 0 && cr[byr[0]] <= tmax) {
            group[ng++] = byr[0];
            std::pop_heap(byr, byr + nr--, later_r);
        }
        if (ng == 0) return -1;
        std::sort(group, group + ng);
        double reduce = 0.0, best_abs = 0.0;
        int best = -1;
        bool open_var = false;
        for (int g = 0; g < ng; g++) {
            int k = group[g], j = cj[k];
            double aa = std::fabs(ca[k]);
            if (lo_on[j] && up_on[j]) reduce += aa * (up[j] - lo[j]);
            else open_var = true;
            if (aa > best_abs) {
                best_abs = aa;
                best = k;
            }
        }
        if (open_var || !(slope - reduce > 1e-9)) {
            *enter_abs = best_abs;
            ds->rw_step = cr[best];
            return cj[best];
        }
        slope -= reduce;
        for (int g = 0; g < ng; g++) {
            ds->flip_list[ds->n_flip++] = cj[group[g]];
            done[group[g]] = 1;
        }
    }
    return -1;
}

int ratio_dual(TRVlp lp, int dir, double slope, int flipping) {
    const simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    const double *d = it->d, *prow = ds->prow;
    const double *lo = ds->lower, *up = ds->upper;
    const signed char *lo_on = ds->lo_on, *up_on = ds->up_on;
    const double delta = ds->harris_delta;
    int *cj = ds->cand_j;
    double *cr = ds->cand_ratio, *ca = ds->cand_a, *ch = ds->cand_h;
    int nc = 0;
    double max_abs = 0.0, row_abs = 0.0;
    double hmin = PR_BIG; /* the smallest Harris ratio of the candidates */
    ds->n_flip = 0;
    ds->rw_enter = -1;
    ds->rw_step = 0.0;
    ds->rw_pivot_abs = 0.0;
    /* gather the candidates */
    const int *pidx = ds->prow_idx, pnz = ds->prow_nz;
    const signed char *status = it->status;
    const auto *ban = it->ban;
    for (int k = 0; k < pnz; k++) {
        int j = pidx[k];
        double a = dir * prow[j];
        if (std::fabs(a) > row_abs && status[j] != 1) row_abs = std::fabs(a);
        if (std::fabs(a) <= DR_TINY) continue;
        int st = status[j];
        if (st == 1 || ban[j] == 32) continue;
        bool boxed = lo_on[j] && up_on[j];
        if (boxed && lo[j] == up[j]) continue;
        bool block;
        if (st == 0) block = a > 0.0;
        else if (st == 2) block = a < 0.0;
        else block = true;
        if (!block) continue;
        cj[nc] = j;
        ca[nc] = a;
        cr[nc] = d[j] / a;
        ch[nc] = (d[j] + (a > 0.0 ? delta : -delta)) / a;
        if (ch[nc] < hmin) hmin = ch[nc];
        if (std::fabs(a) > max_abs) max_abs = std::fabs(a);
        nc++;
    }
    ds->rw_max_abs = max_abs;
    if (nc == 0) return 3;
    int enter = -1;
    double enter_abs = 0.0;
    /* the first group from the candidates as gathered; most tests end
     * there */
    int best = first_group(ds, nc, hmin, flipping, &slope);
    if (best >= 0) {
        enter = cj[best];
        enter_abs = std::fabs(ca[best]);
        ds->rw_step = cr[best];
    } else if (best == FLIPPED) {
        enter = walk_groups(ds, slope, &enter_abs);
    }
    if (enter < 0) {
        /* every candidate flipped and the slope is still positive: the
         * dual is unbounded along this row */
        ds->n_flip = 0;
        return 3;
    }
    ds->rw_enter = enter;
    ds->rw_pivot_abs = enter_abs;
    /* a small pivot against the rest of the row asks for another row */
    if (enter_abs < DR_GOOD && enter_abs < 1e-3 * row_abs) {
        ds->n_flip = 0;
        return RC_RETRY;
    }
    return 0;
}
