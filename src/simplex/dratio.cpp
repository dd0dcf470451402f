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
#include <cmath>

#include "simplex/core.h"

#define DR_GOOD 1e-7      /* smallest pivot taken without a second look */

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
    while (nc > 0) {
        /* the Harris bound of the remaining candidates */
        double tmax = hmin;
        if (tmax < 0.0) tmax = 0.0;
        /* the group within the bound, its slope reduction and best pivot */
        double reduce = 0.0;
        int best = -1;
        double best_abs = 0.0;
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
        if (best < 0) break;
        if (flipping && !open_var && slope - reduce > 1e-9) {
            /* the whole group flips; the walk goes on */
            slope -= reduce;
            int w = 0;
            hmin = PR_BIG;
            for (int k = 0; k < nc; k++) {
                if (cr[k] <= tmax) {
                    ds->flip_list[ds->n_flip++] = cj[k];
                } else {
                    cj[w] = cj[k];
                    ca[w] = ca[k];
                    cr[w] = cr[k];
                    ch[w] = ch[k];
                    if (ch[w] < hmin) hmin = ch[w];
                    w++;
                }
            }
            nc = w;
            continue;
        }
        enter = cj[best];
        enter_abs = best_abs;
        ds->rw_step = cr[best];
        break;
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
