/* The dual simplex when memory runs out: every allocation of a solve is
 * made to fail in turn, from a cold start and from a kept basis. Each run
 * must end with 0 or 1001, leave the model as it was, and leak nothing
 * (the sanitizer build checks the last). */
#include <gtest/gtest.h>

#include "support/alloc.h"
#include "support/kkt.h"
#include "support/model.h"

namespace {

int solve_dual(TRVenv env, TRVlp lp, Solution &s) {
    int st = TRVdualopt(env, lp);
    if (st != 0) return st;
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    s.x.assign(n, 0.0), s.dj.assign(n, 0.0), s.pi.assign(m, 0.0), s.slack.assign(m, 0.0);
    return TRVsolution(env, lp, &s.stat, &s.obj, s.x.data(), s.pi.data(), s.slack.data(),
                       s.dj.data());
}

void every_failure(bool warm) {
    Model md = random_lp(12, 10, 7);
    TestEnv te;
    TRVsetintparam(te.env, 1019, 1);
    Solution ref;
    {
        TRVlp lp = md.copy_into(te.env);
        ASSERT_EQ(solve_dual(te.env, lp, ref), 0);
        ASSERT_EQ(ref.stat, 1);
        TRVfreeprob(te.env, &lp);
    }
    /* a cold start from a fresh copy, or a warm one from a solved copy */
    auto prepare = [&] {
        TRVlp c = md.copy_into(te.env);
        EXPECT_NE(c, nullptr);
        if (warm) {
            EXPECT_EQ(TRVdualopt(te.env, c), 0);
        }
        return c;
    };
    auto call = [&](TRVlp c) { return TRVdualopt(te.env, c); };
    auto after = [&](TRVlp c, int st, long n) {
        if (st == 1001) {
            double z;
            EXPECT_EQ(TRVgetobjval(te.env, c, &z), 1217) << n;
        }
        /* the model is intact: a solve now gives the reference */
        Solution s;
        EXPECT_EQ(solve_dual(te.env, c, s), 0) << n;
        EXPECT_EQ(s.stat, 1) << n;
        EXPECT_NEAR(s.obj, ref.obj, 1e-9 * (1 + std::fabs(ref.obj))) << n;
        TRVfreeprob(te.env, &c);
    };
    EXPECT_GT(every_allocation_fails(prepare, call, after), 10);
}

} // namespace

TEST(DualMemory, EveryAllocationFailureEndsCleanly) { every_failure(false); }

TEST(DualMemory, EveryAllocationFailureOfAWarmStartEndsCleanly) { every_failure(true); }
