/* Starting a run from a basis the caller gives: the optimal basis of one
 * problem loaded into a fresh copy solves it without a pivot, a bad status
 * is refused without touching what was stored, and a copied basis replaces
 * the solution of the run before. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"

TEST(CopyBase, OptimalBasisRestartsWithoutPivots) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    for (unsigned seed = 21; seed <= 30; seed++) {
        Model md = random_lp(seed, 14, 9, seed % 2 == 0);
        TRVlp lp = md.copy_into(t.env);
        ASSERT_NE(lp, nullptr);
        ASSERT_EQ(TRVdualopt(t.env, lp), 0);
        if (TRVgetstat(t.env, lp) != 1) {
            TRVfreeprob(t.env, &lp);
            continue;
        }
        double z0;
        ASSERT_EQ(TRVgetobjval(t.env, lp, &z0), 0);
        int n = md.ncols(), m = md.nrows();
        std::vector<int> cstat(n), rstat(m);
        ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
        for (bool dual : {false, true}) {
            TRVlp fresh = md.copy_into(t.env);
            ASSERT_EQ(TRVcopybase(t.env, fresh, cstat.data(), rstat.data()), 0);
            std::vector<int> c2(n), r2(m);
            ASSERT_EQ(TRVgetbase(t.env, fresh, c2.data(), r2.data()), 0);
            EXPECT_EQ(c2, cstat);
            EXPECT_EQ(r2, rstat);
            ASSERT_EQ(dual ? TRVdualopt(t.env, fresh) : TRVprimopt(t.env, fresh), 0);
            EXPECT_EQ(TRVgetstat(t.env, fresh), 1);
            EXPECT_EQ(TRVgetitcnt(t.env, fresh), 0) << "seed " << seed;
            double z;
            ASSERT_EQ(TRVgetobjval(t.env, fresh, &z), 0);
            EXPECT_NEAR(z, z0, 1e-9 * (1.0 + std::fabs(z0)));
            TRVfreeprob(t.env, &fresh);
        }
        TRVfreeprob(t.env, &lp);
    }
}

TEST(CopyBase, BadStatusesAreRefusedAndChangeNothing) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = small_model(); /* rows 'L', 'G', 'E', 'R' */
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    int stat0 = TRVgetstat(t.env, lp);
    ASSERT_NE(stat0, 0);
    int n = md.ncols(), m = md.nrows();
    std::vector<int> cstat(n), rstat(m);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    std::vector<int> bad = cstat;
    bad[1] = 4;
    t.clear();
    EXPECT_EQ(TRVcopybase(t.env, lp, bad.data(), rstat.data()), 1253);
    EXPECT_EQ(t.err, "TORVA Error  1253: Invalid status entry 1 for basis specification.\n");
    /* a row that is not ranged has no upper end of a range */
    std::vector<int> badr = rstat;
    badr[0] = 2;
    t.clear();
    EXPECT_EQ(TRVcopybase(t.env, lp, cstat.data(), badr.data()), 1253);
    EXPECT_EQ(t.err, "TORVA Error  1253: Invalid status entry " + std::to_string(n) +
                         " for basis specification.\n");
    badr = rstat;
    badr[3] = -1;
    EXPECT_EQ(TRVcopybase(t.env, lp, cstat.data(), badr.data()), 1253);
    EXPECT_EQ(TRVcopybase(t.env, lp, nullptr, rstat.data()), 1004);
    EXPECT_EQ(TRVcopybase(t.env, lp, cstat.data(), nullptr), 1004);
    EXPECT_EQ(TRVcopybase(t.env, nullptr, cstat.data(), rstat.data()), 1009);
    EXPECT_EQ(TRVcopybase(nullptr, lp, cstat.data(), rstat.data()), 1002);
    /* the solution and the basis of the run survive the refusals */
    EXPECT_EQ(TRVgetstat(t.env, lp), stat0);
    std::vector<int> c2(n), r2(m);
    ASSERT_EQ(TRVgetbase(t.env, lp, c2.data(), r2.data()), 0);
    EXPECT_EQ(c2, cstat);
    EXPECT_EQ(r2, rstat);
    /* an accepted basis drops the solution it did not produce */
    ASSERT_EQ(TRVcopybase(t.env, lp, cstat.data(), rstat.data()), 0);
    int st;
    EXPECT_EQ(TRVsolution(t.env, lp, &st, nullptr, nullptr, nullptr, nullptr, nullptr), 1217);
    EXPECT_EQ(TRVgetstat(t.env, lp), 0);
    TRVfreeprob(t.env, &lp);
}

TEST(CopyBase, AnyBasisShapeStillSolves) {
    /* too many or too few basic variables, statuses at infinite bounds:
     * the run mends the basis and still reaches the optimum */
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    for (unsigned seed = 41; seed <= 48; seed++) {
        Model md = random_lp(seed, 12, 8, true);
        TRVlp ref = md.copy_into(t.env);
        ASSERT_EQ(TRVdualopt(t.env, ref), 0);
        int stat = TRVgetstat(t.env, ref);
        double z0 = 0.0;
        if (stat == 1) TRVgetobjval(t.env, ref, &z0);
        int n = md.ncols(), m = md.nrows();
        std::vector<int> cstat(n), rstat(m);
        for (int j = 0; j < n; j++) cstat[j] = (j * 7 + seed) % 4;
        for (int i = 0; i < m; i++) rstat[i] = (i + seed) % 2;
        for (bool dual : {false, true}) {
            TRVlp lp = md.copy_into(t.env);
            ASSERT_EQ(TRVcopybase(t.env, lp, cstat.data(), rstat.data()), 0);
            ASSERT_EQ(dual ? TRVdualopt(t.env, lp) : TRVprimopt(t.env, lp), 0);
            EXPECT_EQ(TRVgetstat(t.env, lp), stat) << "seed " << seed;
            if (stat == 1) {
                Solution s;
                s.x.resize(n), s.dj.resize(n), s.pi.resize(m), s.slack.resize(m);
                ASSERT_EQ(TRVsolution(t.env, lp, &s.stat, &s.obj, s.x.data(), s.pi.data(),
                                      s.slack.data(), s.dj.data()), 0);
                EXPECT_NEAR(s.obj, z0, 1e-7 * (1.0 + std::fabs(z0)));
                EXPECT_EQ(check_kkt(md, s), "") << "seed " << seed;
            }
            TRVfreeprob(t.env, &lp);
        }
        TRVfreeprob(t.env, &ref);
    }
}
