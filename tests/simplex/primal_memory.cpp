/* The primal simplex when memory runs out: every allocation of a solve is
 * made to fail in turn. Each run must end with 0 or 1001, leave the model
 * as it was, and leak nothing (the sanitizer build checks the last). */
#include <gtest/gtest.h>

#include "frame/trv.h"
#include "support/kkt.h"
#include "support/model.h"

TEST(PrimalMemory, EveryAllocationFailureEndsCleanly) {
    Model md = random_lp(7, 9, 6);
    TestEnv te;
    TRVsetintparam(te.env, 1019, 1);
    TRVsetintparam(te.env, 1034, 1); /* with scaling */
    TRVlp lp = md.copy_into(te.env);
    ASSERT_NE(lp, nullptr);
    /* the reference run */
    Solution ref;
    long before = trv_alloc_count();
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    long used = trv_alloc_count() - before;
    ASSERT_EQ(solve_primal(te.env, lp, ref), 0);
    ASSERT_EQ(ref.stat, 1);
    int failures = 0;
    for (long n = 1; n <= used; n++) {
        TRVlp c = md.copy_into(te.env);
        ASSERT_NE(c, nullptr);
        trv_alloc_failat(n);
        int st = TRVprimopt(te.env, c);
        trv_alloc_failat(0);
        EXPECT_TRUE(st == 0 || st == 1001) << "allocation " << n << ": " << st;
        if (st == 1001) {
            failures++;
            double z;
            EXPECT_EQ(TRVgetobjval(te.env, c, &z), 1217);
        }
        /* the model is intact: a solve now gives the reference */
        Solution s;
        ASSERT_EQ(solve_primal(te.env, c, s), 0) << n;
        EXPECT_EQ(s.stat, 1) << n;
        EXPECT_NEAR(s.obj, ref.obj, 1e-9 * (1 + std::fabs(ref.obj))) << n;
        TRVfreeprob(te.env, &c);
    }
    EXPECT_GT(failures, 10);
    TRVfreeprob(te.env, &lp);
}
