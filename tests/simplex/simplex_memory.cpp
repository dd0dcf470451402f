/* The simplex optimisers when memory runs out: every allocation of a solve
 * is made to fail in turn, from a cold start and from a kept basis, for
 * each method. Each run must end with 0 or 1001, leave the model as it
 * was, and leak nothing (the sanitizer build checks the last). */
#include <gtest/gtest.h>

#include <cmath>

#include "support/alloc.h"
#include "support/kkt.h"
#include "support/methods.h"
#include "support/model.h"

namespace {

/* scaling: the value of parameter 1034; warm: the call starts from the
 * basis a finished solve of the same copy kept */
void every_failure(const SimplexMethod &m, const Model &md, int scaling, bool warm) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 1);
    TRVsetintparam(te.env, 1034, scaling);
    Solution ref;
    {
        TRVlp lp = md.copy_into(te.env);
        ASSERT_EQ(solve(m, te.env, lp, ref), 0);
        ASSERT_EQ(ref.stat, 1);
        TRVfreeprob(te.env, &lp);
    }
    auto prepare = [&] {
        TRVlp c = md.copy_into(te.env);
        EXPECT_NE(c, nullptr);
        if (warm) {
            EXPECT_EQ(m.opt(te.env, c), 0);
        }
        return c;
    };
    auto call = [&](TRVlp c) { return m.opt(te.env, c); };
    auto after = [&](TRVlp c, int st, long n) {
        if (st == TRVERR_OUT_MEMORY) {
            double z;
            EXPECT_EQ(TRVgetobjval(te.env, c, &z), TRVERR_NO_SOLUTION_EXISTS) << n;
        }
        /* the model is intact: a solve now gives the reference */
        Solution s;
        EXPECT_EQ(solve(m, te.env, c, s), 0) << n;
        EXPECT_EQ(s.stat, 1) << n;
        EXPECT_NEAR(s.obj, ref.obj, 1e-9 * (1 + std::fabs(ref.obj))) << n;
        TRVfreeprob(te.env, &c);
    };
    EXPECT_GT(every_allocation_fails(prepare, call, after), 10);
}

class SimplexMemory : public testing::TestWithParam<SimplexMethod> {};
TRV_BOTH_METHODS(SimplexMemory);

/* two models, the first with the stronger of the scaling schemes */
TEST_P(SimplexMemory, EveryAllocationFailureEndsCleanly) {
    every_failure(GetParam(), random_lp(7, 9, 6), 1, false);
    every_failure(GetParam(), random_lp(12, 10, 7), 0, false);
}

TEST_P(SimplexMemory, EveryAllocationFailureOfAWarmStartEndsCleanly) {
    every_failure(GetParam(), random_lp(7, 9, 6), 1, true);
    every_failure(GetParam(), random_lp(12, 10, 7), 0, true);
}

} // namespace
