/* The dual ratio test on hand-made pivot rows: which variable enters,
 * which flip, the dual step, the Harris choice of the largest pivot among
 * near ties, and the cases with no entering variable. */
#include <gtest/gtest.h>

#include <algorithm>
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
    Kit() {
        Model md;
        md.row('L', 1.0);
        for (int j = 0; j < 6; j++) md.col(0.0, 0.0, 1e20, {{0, 1.0}});
        lp = lp_of(md.copy_into(te.env));
        EXPECT_EQ(simplex_build(env_of(te.env), lp), 0);
        EXPECT_EQ(dual_state_alloc(env_of(te.env), lp), 0);
        ds = lp->dual;
        it = &lp->solver->it;
        ds->harris_delta = 1e-7;
        ds->feas_tol = 1e-6;
        for (int j = 0; j < 6; j++) set(j, 0, 0.0, 0.0, 1e20);
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
