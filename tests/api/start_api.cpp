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

namespace {

/* The columns of the caller's basis times y, against column j itself:
 * B y = A_j with a row's variable standing for +e_i. */
void expect_grad_solves(TRVenv env, TRVlp lp, int j, const char *what) {
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    int nz = 0, surplus = 0;
    std::vector<int> beg(n + 1), ind(TRVgetnumnz(env, lp) + 1);
    std::vector<double> val(ind.size());
    ASSERT_EQ(TRVgetcols(env, lp, &nz, beg.data(), ind.data(), val.data(),
                         static_cast<int>(ind.size()), &surplus, 0, n - 1), 0);
    beg[n] = nz;
    std::vector<int> head(m, 12345);
    std::vector<double> y(m, 0.0), by(m, 0.0), aj(m, 0.0), mag(m, 0.0);
    ASSERT_EQ(TRVgetgrad(env, lp, j, head.data(), y.data()), 0) << what;
    std::vector<int> seen(n + m, 0);
    for (int p = 0; p < m; p++) {
        int h = head[p];
        ASSERT_TRUE(h >= -m && h < n) << what << " head " << h;
        EXPECT_EQ(seen[h + m]++, 0) << what << " twice in the header: " << h;
        if (h < 0) {
            by[-h - 1] += y[p];
            mag[-h - 1] += std::fabs(y[p]);
            continue;
        }
        for (int k = beg[h]; k < beg[h + 1]; k++) {
            by[ind[k]] += val[k] * y[p];
            mag[ind[k]] += std::fabs(val[k] * y[p]);
        }
    }
    for (int k = beg[j]; k < beg[j + 1]; k++) aj[ind[k]] += val[k];
    /* the sum cancels: its error is relative to the size of its terms */
    for (int i = 0; i < m; i++)
        EXPECT_NEAR(by[i], aj[i], 1e-12 * mag[i] + 1e-12) << what << " row " << i;
}

} // namespace

TEST(BasisColumns, GradSolvesWithTheStoredBasis) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    for (unsigned seed = 51; seed <= 60; seed++) {
        Model md = random_lp(seed, 12, 9, seed % 2 == 1);
        /* rows of every sense, and entries of very different sizes so that
         * scaling changes the working copy */
        for (int k = 0; k < static_cast<int>(md.matval.size()); k++)
            if (k % 3 == 0) md.matval[k] *= 1e3;
        md.sense[0] = 'G';
        md.sense[1] = 'R', md.rngval[1] = 6.0;
        md.sense[2] = 'E';
        for (int scale : {0, 1}) {
            TRVsetintparam(t.env, 1034, scale);
            TRVlp lp = md.copy_into(t.env);
            ASSERT_EQ(TRVdualopt(t.env, lp), 0);
            if (!TRVcangetbase(t.env, lp)) {
                TRVfreeprob(t.env, &lp);
                continue;
            }
            std::string what = "seed " + std::to_string(seed) + " scale " + std::to_string(scale);
            for (int j = 0; j < md.ncols(); j++) expect_grad_solves(t.env, lp, j, what.c_str());
            TRVfreeprob(t.env, &lp);
        }
    }
    TRVsetintparam(t.env, 1034, 0);
}

TEST(BasisColumns, GradChecksItsArguments) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = random_lp(7, 6, 4);
    TRVlp lp = md.copy_into(t.env);
    double y[4];
    int head[4];
    EXPECT_EQ(TRVgetgrad(t.env, lp, 0, head, y), 1262); /* no basis before a run */
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    t.clear();
    EXPECT_EQ(TRVgetgrad(t.env, lp, 6, head, y), 1201);
    EXPECT_EQ(t.err, "TORVA Error  1201: Column index 6 out of range.\n");
    EXPECT_EQ(TRVgetgrad(t.env, lp, -1, head, y), 1201);
    EXPECT_EQ(TRVgetgrad(t.env, lp, 0, head, nullptr), 1004);
    EXPECT_EQ(TRVgetgrad(t.env, nullptr, 0, head, y), 1009);
    EXPECT_EQ(TRVgetgrad(nullptr, lp, 0, head, y), 1002);
    EXPECT_EQ(TRVgetgrad(t.env, lp, 0, nullptr, y), 0); /* the header is optional */
    /* the call leaves the solution as it was */
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    double z;
    EXPECT_EQ(TRVgetobjval(t.env, lp, &z), 0);
    EXPECT_EQ(TRVprimopt(t.env, lp), 0);
    EXPECT_EQ(TRVgetitcnt(t.env, lp), 0);
    TRVfreeprob(t.env, &lp);
}

TEST(BasisColumns, GradRefusesASingularBasisAndKeepsIt) {
    /* two equal columns both basic: the caller's basis is singular, and the
     * call says so rather than answering for a repaired one */
    TestEnv t;
    Model md;
    md.row('L', 4.0);
    md.row('L', 6.0);
    md.col(-1.0, 0.0, 10.0, {{0, 1.0}, {1, 2.0}});
    md.col(-1.0, 0.0, 10.0, {{0, 1.0}, {1, 2.0}});
    md.col(-2.0, 0.0, 10.0, {{0, 1.0}});
    TRVlp lp = md.copy_into(t.env);
    std::vector<int> cstat = {1, 1, 0}, rstat = {0, 0};
    ASSERT_EQ(TRVcopybase(t.env, lp, cstat.data(), rstat.data()), 0);
    double y[2];
    int head[2];
    t.clear();
    EXPECT_EQ(TRVgetgrad(t.env, lp, 2, head, y), 1256);
    EXPECT_EQ(t.err, "TORVA Error  1256: Basis singular.\n");
    std::vector<int> c(3), r(2);
    ASSERT_EQ(TRVgetbase(t.env, lp, c.data(), r.data()), 0);
    EXPECT_EQ(c, cstat);
    EXPECT_EQ(r, rstat);
    /* a solve from it repairs the basis and reaches the optimum */
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    double z;
    ASSERT_EQ(TRVgetobjval(t.env, lp, &z), 0);
    EXPECT_NEAR(z, -8.0, 1e-9);
    TRVfreeprob(t.env, &lp);
}

TEST(Divergence, NamesTheRowOrColumnThatProvedTheEnd) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    int idiv = 7, jdiv = 7;
    {
        /* min -x1 with x0 - x1 <= 1: x1 enters first and nothing stops it */
        Model md;
        md.row('L', 1.0);
        md.row('L', 4.0);
        md.col(0.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
        md.col(-1.0, 0.0, 1e20, {{0, -1.0}});
        TRVlp lp = md.copy_into(t.env);
        EXPECT_EQ(TRVgetijdiv(t.env, lp, &idiv, &jdiv), 1217);
        ASSERT_EQ(TRVprimopt(t.env, lp), 0);
        ASSERT_EQ(TRVgetstat(t.env, lp), 3);
        ASSERT_EQ(TRVgetijdiv(t.env, lp, &idiv, &jdiv), 0);
        EXPECT_EQ(idiv, -1);
        EXPECT_EQ(jdiv, 1);
        EXPECT_EQ(TRVgetijdiv(t.env, lp, nullptr, &jdiv), 1004);
        TRVfreeprob(t.env, &lp);
    }
    for (bool dual : {false, true}) {
        /* x0 + x1 >= 10 with both at most 3: row 0 cannot be met */
        Model md;
        md.row('L', 100.0);
        md.row('G', 10.0);
        md.col(1.0, 0.0, 3.0, {{0, 1.0}, {1, 1.0}});
        md.col(1.0, 0.0, 3.0, {{0, 1.0}, {1, 1.0}});
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(dual ? TRVdualopt(t.env, lp) : TRVprimopt(t.env, lp), 0);
        ASSERT_EQ(TRVgetstat(t.env, lp), 2);
        ASSERT_EQ(TRVgetijdiv(t.env, lp, &idiv, &jdiv), 0);
        EXPECT_EQ(idiv, 1) << (dual ? "dual" : "primal");
        EXPECT_EQ(jdiv, -1);
        TRVfreeprob(t.env, &lp);
    }
    /* an optimum names nothing */
    Model md = random_lp(3, 5, 3);
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVlpopt(t.env, lp), 0);
    ASSERT_EQ(TRVgetijdiv(t.env, lp, &idiv, &jdiv), 0);
    EXPECT_EQ(idiv, -1);
    EXPECT_EQ(jdiv, -1);
    TRVfreeprob(t.env, &lp);
}
