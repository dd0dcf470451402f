/* The dual ratio test on hand-made pivot rows: which variable enters,
 * which flip, the dual step, the Harris choice of the largest pivot among
 * near ties, and the cases with no entering variable. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "simplex/core.h"
#include "support/internal.h"
#include "support/model.h"

namespace {

/* Six structurals and one row; each test writes the bounds, statuses,
 * reduced costs and the pivot row it needs. */
struct Kit {
    TestEnv te;
    TRVlp lp = nullptr;
    dual_state *ds = nullptr;
    simplex_iter *it = nullptr;
    int n;
    explicit Kit(int ncols = 6) : n(ncols) {
        Model md;
        md.row('L', 1.0);
        for (int j = 0; j < n; j++) md.col(0.0, 0.0, 1e20, {{0, 1.0}});
        lp = lp_of(md.copy_into(te.env));
        EXPECT_EQ(simplex_build(env_of(te.env), lp), 0);
        EXPECT_EQ(dual_state_alloc(env_of(te.env), lp), 0);
        ds = lp->dual;
        it = &lp->solver->it;
        ds->harris_delta = 1e-7;
        ds->feas_tol = 1e-6;
        for (int j = 0; j < n; j++) set(j, 0, 0.0, 0.0, 1e20);
    }
    ~Kit() {
        dual_free(lp);
        simplex_free(lp);
        TRVlp h = lp->handle;
        TRVfreeprob(te.env, &h);
    }
    /* variable j: status, reduced cost, working bounds (1e20: none) */
    void set(int j, int status, double d, double lo, double up) {
        it->status[j] = static_cast<signed char>(status);
        it->d[j] = d;
        ds->lower[j] = lo;
        ds->upper[j] = up;
        ds->lo_on[j] = lo > -1e19;
        ds->up_on[j] = up < 1e19;
    }
    void row(std::vector<std::pair<int, double>> entries) {
        ds->prow_nz = 0;
        for (auto &e : entries) {
            ds->prow[e.first] = e.second;
            ds->prow_idx[ds->prow_nz++] = e.first;
        }
    }
    std::vector<int> flips() const {
        std::vector<int> f(ds->flip_list, ds->flip_list + ds->n_flip);
        std::sort(f.begin(), f.end());
        return f;
    }
};

} // namespace

TEST(DualRatio, SmallestRatioEntersWithoutBoxes) {
    Kit k;
    /* leaving goes to its lower bound (dir -1): a_j = -alpha_j; at lower a
     * candidate needs a_j > 0, so alpha_j < 0 */
    k.set(0, 0, 4.0, 0.0, 1e20);
    k.set(1, 0, 1.0, 0.0, 1e20);
    k.set(2, 0, 0.5, 0.0, 1e20);
    k.row({{0, -1.0}, {1, -0.5}, {2, 2.0}}); /* ratios 4, 2, and 2 of the wrong sign */
    ASSERT_EQ(ratio_dual(k.lp, -1, 3.0, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 1);
    EXPECT_NEAR(k.ds->rw_step, 2.0, 1e-12);
    EXPECT_EQ(k.ds->n_flip, 0);
}

TEST(DualRatio, DirectionTurnsTheSigns) {
    Kit k;
    k.set(0, 0, 1.0, 0.0, 1e20);
    k.set(1, 2, -1.0, -1e20, 0.0); /* at an upper bound: d <= 0 */
    k.row({{0, 1.0}, {1, -2.0}});
    /* to the upper bound (dir +1): column 0 blocks at 1, column 1 at 0.5 */
    ASSERT_EQ(ratio_dual(k.lp, 1, 1.0, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 1);
    EXPECT_NEAR(k.ds->rw_step, 0.5, 1e-12);
    /* to the lower bound neither blocks */
    EXPECT_EQ(ratio_dual(k.lp, -1, 1.0, 1), 3);
    EXPECT_EQ(k.ds->rw_enter, -1);
}

TEST(DualRatio, BoxedBreakpointsFlipWhileTheSlopeLasts) {
    Kit k;
    /* boxes of width 1 with |a| = 1: each passing costs 1 of the slope */
    k.set(0, 0, 1.0, 0.0, 1.0);
    k.set(1, 0, 2.0, 0.0, 1.0);
    k.set(2, 0, 3.0, 0.0, 1.0);
    k.set(3, 0, 4.0, 0.0, 1e20);
    k.row({{0, -1.0}, {1, -1.0}, {2, -1.0}, {3, -1.0}});
    ASSERT_EQ(ratio_dual(k.lp, -1, 2.5, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 2); /* the slope 2.5 passes two boxes */
    EXPECT_EQ(k.flips(), (std::vector<int>{0, 1}));
    EXPECT_NEAR(k.ds->rw_step, 3.0, 1e-12);
    /* without flipping the first breakpoint enters */
    ASSERT_EQ(ratio_dual(k.lp, -1, 2.5, 0), 0);
    EXPECT_EQ(k.ds->rw_enter, 0);
    EXPECT_EQ(k.ds->n_flip, 0);
}

TEST(DualRatio, SlopeUsedUpExactlyEntersTheLastBreakpoint) {
    Kit k;
    k.set(0, 2, -1.0, 0.0, 1.0); /* at upper, a < 0 blocks: ratio 10 */
    k.set(1, 0, 2.0, 0.0, 1.0);  /* ratio 2 */
    k.row({{0, 0.1}, {1, -1.0}});
    /* slope 1.1 = 1 * 1 + 0.1 * 1, in floating point a hair above zero
     * after both: the leaving variable sits on its bound, and the last
     * breakpoint enters rather than the row being taken for a proof of
     * infeasibility */
    ASSERT_EQ(ratio_dual(k.lp, -1, 1.1, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 0);
    EXPECT_EQ(k.flips(), (std::vector<int>{1}));
}

TEST(DualRatio, EveryBoxFlippedMeansNoEntering) {
    Kit k;
    k.set(0, 0, 1.0, 0.0, 1.0);
    k.set(1, 0, 2.0, 0.0, 1.0);
    k.row({{0, -1.0}, {1, -1.0}});
    EXPECT_EQ(ratio_dual(k.lp, -1, 5.0, 1), 3);
    EXPECT_EQ(k.ds->n_flip, 0); /* no flips stay behind */
    EXPECT_EQ(k.ds->rw_enter, -1);
}

TEST(DualRatio, FixedBasicAndTinyEntriesNeverEnter) {
    Kit k;
    k.set(0, 0, 0.0, 2.0, 2.0);   /* fixed: its d may take any sign */
    k.set(1, 1, 0.0, 0.0, 1e20);  /* basic */
    k.set(2, 0, 0.0, 0.0, 1e20);  /* entry at the skip level */
    k.set(3, 0, 5.0, 0.0, 1e20);
    k.row({{0, -3.0}, {1, -3.0}, {2, -1e-9}, {3, -1e-3}});
    ASSERT_EQ(ratio_dual(k.lp, -1, 1.0, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 3);
    EXPECT_NEAR(k.ds->rw_step, 5000.0, 1e-6);
}

TEST(DualRatio, HarrisPrefersTheLargestPivotAmongNearTies) {
    Kit k;
    k.set(0, 0, 0.0, 0.0, 1e20);
    k.set(1, 0, 5e-8, 0.0, 1e20); /* ratio 1e-8, within the relaxation */
    k.set(2, 0, 1.0, 0.0, 1e20);
    k.row({{0, -0.01}, {1, -5.0}, {2, -10.0}});
    ASSERT_EQ(ratio_dual(k.lp, -1, 1.0, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 1);
    EXPECT_NEAR(k.ds->rw_pivot_abs, 5.0, 1e-12);
}

TEST(DualRatio, FreeNonbasicEntersAtOnce) {
    Kit k;
    k.set(0, 0, 0.5, 0.0, 1.0);
    k.set(1, 3, 0.0, -1e20, 1e20); /* free, d = 0 */
    k.set(2, 0, 1.0, 0.0, 1e20);
    k.row({{0, -1.0}, {1, 0.5}, {2, -1.0}});
    ASSERT_EQ(ratio_dual(k.lp, -1, 10.0, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 1); /* a free variable ends the walk */
    EXPECT_EQ(k.ds->n_flip, 0);
}

TEST(DualRatio, PoorPivotAsksForAnotherRow) {
    Kit k;
    k.set(0, 0, 0.0, 0.0, 1e20);
    k.set(1, 0, 1.0, 0.0, 1e20);
    /* the only blocking entry is 1e-8 against 1 elsewhere in the row */
    k.row({{0, -1e-8}, {1, 1.0}});
    EXPECT_EQ(ratio_dual(k.lp, -1, 1.0, 1), RC_RETRY);
    EXPECT_EQ(k.ds->rw_enter, 0);
    /* a tiny blocking entry with a good one inside the relaxation: the
     * Harris pass takes the good one */
    k.row({{0, -1e-8}, {1, -1.0}});
    ASSERT_EQ(ratio_dual(k.lp, -1, 1.0, 1), 0);
    EXPECT_EQ(k.ds->rw_enter, 1);
}

/* The long-step test walked the way it reads, group after group over all
 * candidates left: the reference for the test that walks past the first
 * group by heaps. Returns the entering variable (-1: none) with its step
 * and the flips. */
static int reference_walk(const Kit &k, int dir, double slope, double delta,
                          std::vector<int> *flips, double *step) {
    std::vector<int> cj;
    std::vector<double> cr, ca, ch;
    for (int j = 0; j < k.n; j++) {
        double a = dir * k.ds->prow[j];
        if (std::fabs(a) <= DR_TINY) continue;
        int st = k.it->status[j];
        bool block = st == 0 ? a > 0.0 : st == 2 ? a < 0.0 : true;
        if (!block || k.ds->lower[j] == k.ds->upper[j]) continue;
        cj.push_back(j), ca.push_back(a), cr.push_back(k.it->d[j] / a);
        ch.push_back((k.it->d[j] + (a > 0.0 ? delta : -delta)) / a);
    }
    flips->clear();
    while (!cj.empty()) {
        double tmax = *std::min_element(ch.begin(), ch.end());
        if (tmax < 0.0) tmax = 0.0;
        double reduce = 0.0, best_abs = 0.0;
        int best = -1;
        bool open_var = false;
        for (size_t q = 0; q < cj.size(); q++) {
            if (cr[q] > tmax) continue;
            int j = cj[q];
            if (k.ds->lo_on[j] && k.ds->up_on[j]) reduce += std::fabs(ca[q]) * (k.ds->upper[j] - k.ds->lower[j]);
            else open_var = true;
            if (std::fabs(ca[q]) > best_abs) best_abs = std::fabs(ca[q]), best = static_cast<int>(q);
        }
        if (best < 0) return -1;
        if (open_var || !(slope - reduce > 1e-9)) {
            *step = cr[best];
            return cj[best];
        }
        slope -= reduce;
        size_t w = 0;
        for (size_t q = 0; q < cj.size(); q++) {
            if (cr[q] <= tmax) {
                flips->push_back(cj[q]);
                continue;
            }
            cj[w] = cj[q], ca[w] = ca[q], cr[w] = cr[q], ch[w] = ch[q];
            w++;
        }
        cj.resize(w), ca.resize(w), cr.resize(w), ch.resize(w);
    }
    return -1;
}

TEST(DualRatio, LongRowsWalkManyGroupsAsTheyRead) {
    /* rows of many boxed candidates with ties among the ratios, a large
     * slope that passes many groups, some free and one-sided candidates */
    Kit k(400);
    std::mt19937 g(17);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    int walked = 0;
    for (int round = 0; round < 200; round++) {
        std::vector<std::pair<int, double>> entries;
        for (int j = 0; j < k.n; j++) {
            int kind = static_cast<int>(u(g) * 10);
            double d = std::floor(u(g) * 20) * 0.25;
            double width = 0.5 + std::floor(u(g) * 4);
            if (kind < 7) k.set(j, 0, d, 0.0, width);              /* boxed at lower */
            else if (kind < 9) k.set(j, 2, -d, -width, 0.0);       /* boxed at upper */
            else k.set(j, 0, d, 0.0, 1e20);                        /* lower bound only */
            double a = (u(g) < 0.5 ? -1.0 : 1.0) * (0.25 + std::floor(u(g) * 8) * 0.25);
            if (u(g) < 0.8) entries.push_back({j, a});
        }
        k.row(entries);
        double slope = 1.0 + u(g) * 400.0;
        int dir = round % 2 ? 1 : -1;
        std::vector<int> ref_flips;
        double ref_step = 0.0;
        int ref = reference_walk(k, dir, slope, k.ds->harris_delta, &ref_flips, &ref_step);
        int st = ratio_dual(k.lp, dir, slope, 1);
        ASSERT_TRUE(st == 0 || st == 3 || st == RC_RETRY) << st;
        if (ref < 0) {
            EXPECT_EQ(st, 3) << round;
            continue;
        }
        walked += !ref_flips.empty();
        EXPECT_EQ(k.ds->rw_enter, ref) << round;
        EXPECT_EQ(k.ds->rw_step, ref_step) << round;
        std::sort(ref_flips.begin(), ref_flips.end());
        if (st == 0) {
            EXPECT_EQ(k.flips(), ref_flips) << round;
        }
        for (auto &e : entries) k.ds->prow[e.first] = 0.0;
    }
    EXPECT_GT(walked, 50);
}
