/* Memory running out in the functions around the stored basis: copying a
 * basis in, reading one from a file, a column of the basis inverse, and a
 * solve that needs its clean-up run. Every allocation is made to fail in
 * turn; each call ends with 0 or 1001, keeps what the problem held, and
 * leaks nothing (the sanitizer build checks the last). */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "support/alloc.h"
#include "support/kkt.h"
#include "support/model.h"

namespace {

std::vector<int> base_of(TRVenv env, TRVlp lp) {
    std::vector<int> b(TRVgetnumcols(env, lp) + TRVgetnumrows(env, lp), -1);
    if (TRVgetbase(env, lp, b.data(), b.data() + TRVgetnumcols(env, lp)) != 0) b.clear();
    return b;
}

} // namespace

TEST(StartMemory, CopyAndReadKeepTheOldBasisWhenMemoryRunsOut) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = random_lp(5, 9, 6);
    std::vector<int> solved;
    {
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(TRVdualopt(t.env, lp), 0);
        solved = base_of(t.env, lp);
        ASSERT_FALSE(solved.empty());
        TRVfreeprob(t.env, &lp);
    }
    /* the slack basis, as the basis to copy and to read */
    int n = md.ncols(), m = md.nrows();
    std::vector<int> cstat(n, 0), rstat(m, 1);
    std::string path = ::testing::TempDir() + "start_memory.bas";
    {
        TRVlp other = md.copy_into(t.env);
        ASSERT_EQ(TRVcopybase(t.env, other, cstat.data(), rstat.data()), 0);
        ASSERT_EQ(TRVmbasewrite(t.env, other, path.c_str()), 0);
        TRVfreeprob(t.env, &other);
    }
    for (int which = 0; which < 2; which++) {
        /* each call starts from a solved copy that holds its basis */
        auto prepare = [&] {
            TRVlp c = md.copy_into(t.env);
            EXPECT_EQ(TRVdualopt(t.env, c), 0);
            return c;
        };
        auto call = [&](TRVlp c) {
            return which == 0 ? TRVcopybase(t.env, c, cstat.data(), rstat.data())
                              : TRVreadcopybase(t.env, c, path.c_str());
        };
        auto after = [&](TRVlp c, int st, long k) {
            if (st == 1001) {
                EXPECT_EQ(base_of(t.env, c), solved) << which << " allocation " << k;
                EXPECT_EQ(TRVgetstat(t.env, c), 1);
            }
            TRVfreeprob(t.env, &c);
        };
        EXPECT_GT(every_allocation_fails(prepare, call, after), 0) << which;
    }
    std::remove(path.c_str());
}

TEST(StartMemory, GradLeavesTheProblemAsItWas) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = random_lp(8, 10, 7);
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    int m = md.nrows();
    std::vector<double> ref(m), y(m);
    std::vector<int> head(m);
    ASSERT_EQ(TRVgetgrad(t.env, lp, 3, head.data(), ref.data()), 0);
    auto prepare = [&] { return 0; };
    auto call = [&](int) { return TRVgetgrad(t.env, lp, 3, head.data(), y.data()); };
    auto after = [&](int, int st, long k) {
        if (st == 0) {
            EXPECT_EQ(y, ref) << k;
        }
    };
    every_allocation_fails(prepare, call, after);
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    ASSERT_EQ(TRVgetgrad(t.env, lp, 3, head.data(), y.data()), 0);
    EXPECT_EQ(y, ref);
    TRVfreeprob(t.env, &lp);
}

TEST(StartMemory, CleanUpRunEndsCleanWhenMemoryRunsOut) {
    /* a model scaled so that the primal's first optimum needs the clean-up
     * (rows and columns times powers of ten up to 1e6) */
    Model md = badly_scaled(6);
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    auto prepare = [&] { return md.copy_into(t.env); };
    auto call = [&](TRVlp c) { return TRVprimopt(t.env, c); };
    auto after = [&](TRVlp c, int st, long k) {
        if (st == 1001) {
            EXPECT_EQ(TRVgetstat(t.env, c), 0) << k;
        }
        TRVfreeprob(t.env, &c);
    };
    EXPECT_GT(every_allocation_fails(prepare, call, after), 0);
}
