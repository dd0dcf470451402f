/* The clean-up run: an optimum of the scaled working copy that breaks the
 * tolerances in the caller's units is solved once more on the problem as
 * given, from the basis it ended with, so that what the caller reads back
 * satisfies the optimality conditions of the model as loaded. */
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"

TEST(CleanUp, OptimaHoldInTheCallersUnits) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    int optimal = 0, unscaled = 0;
    /* seeds 6, 12 and 30 end the primal's scaled run outside the
     * tolerances and need the clean-up; with entries spread over twelve
     * orders of magnitude the two methods may stop at optima whose
     * objectives differ within the tolerances, so each is checked on its
     * own against the model (open bounds make a few unbounded) */
    for (unsigned seed = 1; seed <= 40; seed++) {
        Model md = badly_scaled(seed);
        for (int dual = 0; dual < 2; dual++) {
            TRVlp lp = md.copy_into(t.env);
            ASSERT_EQ(dual ? TRVdualopt(t.env, lp) : TRVprimopt(t.env, lp), 0);
            int stat = TRVgetstat(t.env, lp);
            std::string what = "seed " + std::to_string(seed) + (dual ? " dual" : " primal");
            EXPECT_TRUE(stat == 1 || stat == 11 || stat == 3) << what << " status " << stat;
            if (stat == 11) unscaled++;
            if (stat == 1) {
                Solution s;
                int n = md.ncols(), m = md.nrows();
                s.x.resize(n), s.dj.resize(n), s.pi.resize(m), s.slack.resize(m);
                ASSERT_EQ(TRVsolution(t.env, lp, &s.stat, &s.obj, s.x.data(), s.pi.data(),
                                      s.slack.data(), s.dj.data()), 0);
                EXPECT_EQ(check_kkt(md, s, 1e-6), "") << what;
                optimal++;
            }
            TRVfreeprob(t.env, &lp);
        }
    }
    EXPECT_GE(optimal, 76);
    EXPECT_LE(unscaled, 2);
}

TEST(CleanUp, AFailedCleanUpKeepsTheFirstSolution) {
    /* seed 30: the primal's clean-up used to stall and run out of its
     * iterations, and the scaled run's solution stood with status 11, its
     * basis kept; since the primal no longer stalls there the clean-up
     * finishes (status 1) and the failed path waits for a new model */
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = badly_scaled(30);
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    int stat = TRVgetstat(t.env, lp);
    ASSERT_TRUE(stat == 1 || stat == 11) << stat;
    int n = md.ncols(), m = md.nrows();
    std::vector<double> x(n);
    EXPECT_EQ(TRVgetx(t.env, lp, x.data(), 0, n - 1), 0);
    EXPECT_EQ(TRVgetmethod(t.env, lp), 1);
    std::vector<int> cstat(n), rstat(m);
    EXPECT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    /* the iteration limit the clean-up borrowed is the caller's again */
    int lim = 0;
    TRVgetintparam(t.env, 1020, &lim);
    int deflim = 0;
    TRVinfointparam(t.env, 1020, &deflim, nullptr, nullptr);
    EXPECT_EQ(lim, deflim);
    /* the dual from that basis finishes the job */
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    TRVfreeprob(t.env, &lp);
}
