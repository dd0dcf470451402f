/* The primal simplex when memory runs out: every allocation of a solve is
 * made to fail in turn. Each run must end with 0 or 1001, leave the model
 * as it was, and leak nothing (the sanitizer build checks the last). */
#include <gtest/gtest.h>

#include "support/alloc.h"
#include "support/kkt.h"
#include "support/model.h"

TEST(PrimalMemory, EveryAllocationFailureEndsCleanly) {
    Model md = random_lp(7, 9, 6);
    TestEnv te;
    TRVsetintparam(te.env, 1019, 1);
    TRVsetintparam(te.env, 1034, 1); /* with scaling */
    Solution ref;
    {
        TRVlp lp = md.copy_into(te.env);
        ASSERT_EQ(solve_primal(te.env, lp, ref), 0);
        ASSERT_EQ(ref.stat, 1);
        TRVfreeprob(te.env, &lp);
    }
    auto prepare = [&] { return md.copy_into(te.env); };
    auto call = [&](TRVlp c) { return TRVprimopt(te.env, c); };
    auto after = [&](TRVlp c, int st, long n) {
        if (st == 1001) {
            double z;
            EXPECT_EQ(TRVgetobjval(te.env, c, &z), 1217) << n;
        }
        /* the model is intact: a solve now gives the reference */
        Solution s;
        EXPECT_EQ(solve_primal(te.env, c, s), 0) << n;
        EXPECT_EQ(s.stat, 1) << n;
        EXPECT_NEAR(s.obj, ref.obj, 1e-9 * (1 + std::fabs(ref.obj))) << n;
        TRVfreeprob(te.env, &c);
    };
    EXPECT_GT(every_allocation_fails(prepare, call, after), 10);
}
