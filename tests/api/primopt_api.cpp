/* The primal simplex through the public interface: outcomes of small LPs
 * with known answers, solutions checked against the optimality conditions,
 * limits, callbacks, the log, scaling and the solution queries' checks. */
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/kkt.h"
#include "support/model.h"

namespace {

struct Solved {
    TestEnv te;
    TRVlp lp = nullptr;
    Solution s;
    int rc = -1;
    explicit Solved(const Model &md, int display = 0) {
        TRVsetintparam(te.env, 1019, display);
        lp = md.copy_into(te.env);
        if (lp != nullptr) rc = solve_primal(te.env, lp, s);
    }
    ~Solved() {
        if (lp != nullptr) TRVfreeprob(te.env, &lp);
    }
};

/* max 3x + 2y, x + y <= 4, x + 3y <= 6, x <= 3 */
Model small_max() {
    Model md;
    md.objsen = -1;
    md.row('L', 4.0);
    md.row('L', 6.0);
    md.col(3.0, 0.0, 3.0, {{0, 1.0}, {1, 1.0}});
    md.col(2.0, 0.0, 1e20, {{0, 1.0}, {1, 3.0}});
    return md;
}

/* Beale's example, which cycles under the textbook rule. */
Model beale() {
    Model md;
    md.row('L', 0.0);
    md.row('L', 0.0);
    md.row('L', 1.0);
    md.col(-0.75, 0.0, 1e20, {{0, 0.25}, {1, 0.5}});
    md.col(20.0, 0.0, 1e20, {{0, -8.0}, {1, -12.0}});
    md.col(-0.5, 0.0, 1e20, {{0, -1.0}, {1, -0.5}, {2, 1.0}});
    md.col(6.0, 0.0, 1e20, {{0, 9.0}, {1, 3.0}});
    return md;
}

} // namespace

TEST(PrimoptKnown, MaximisationReachesVertex) {
    Model md = small_max();
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_NEAR(r.s.obj, 11.0, 1e-9); /* x = 3, y = 1 */
    EXPECT_NEAR(r.s.x[0], 3.0, 1e-9);
    EXPECT_NEAR(r.s.x[1], 1.0, 1e-9);
    EXPECT_EQ(check_kkt(md, r.s), "");
    EXPECT_EQ(TRVgetstat(r.te.env, r.lp), 1);
    EXPECT_EQ(TRVgetmethod(r.te.env, r.lp), 1);
}

TEST(PrimoptKnown, BealeDoesNotCycle) {
    Model md = beale();
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_NEAR(r.s.obj, -1.25, 1e-9);
    EXPECT_EQ(check_kkt(md, r.s), "");
}

TEST(PrimoptKnown, Unbounded) {
    Model md; /* min -x - y, x - y <= 1, x, y >= 0 */
    md.row('L', 1.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}});
    md.col(-1.0, 0.0, 1e20, {{0, -1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 3);
}

TEST(PrimoptKnown, Infeasible) {
    Model md; /* x + y <= 1, x + y >= 3 */
    md.row('L', 1.0);
    md.row('G', 3.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 2);
    EXPECT_EQ(TRVgetstat(r.te.env, r.lp), 2);
}

TEST(PrimoptKnown, InfeasibleByBoundsAndEquality) {
    Model md; /* x + y = 10 with x, y in [0, 2] */
    md.row('E', 10.0);
    md.col(1.0, 0.0, 2.0, {{0, 1.0}});
    md.col(1.0, 0.0, 2.0, {{0, 1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 2);
}

TEST(PrimoptKnown, FreeVariables) {
    Model md; /* min x + 2y, x + y >= 2, x - y = 0.5, x and y free */
    md.row('G', 2.0);
    md.row('E', 0.5);
    md.col(1.0, -1e20, 1e20, {{0, 1.0}, {1, 1.0}});
    md.col(2.0, -1e20, 1e20, {{0, 1.0}, {1, -1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_NEAR(r.s.x[0], 1.25, 1e-9);
    EXPECT_NEAR(r.s.x[1], 0.75, 1e-9);
    EXPECT_NEAR(r.s.obj, 2.75, 1e-9);
    EXPECT_EQ(check_kkt(md, r.s), "");
}

TEST(PrimoptKnown, FreeVariableUnbounded) {
    Model md; /* min x - y with x - y free of rows except y <= 3 */
    md.row('L', 3.0);
    md.col(1.0, -1e20, 1e20, {});
    md.col(-1.0, -1e20, 1e20, {{0, 1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 3);
}

TEST(PrimoptKnown, RangedRowsBothSides) {
    /* min x - y with 1 <= x + y <= 5 (range +4) and -2 <= x - y <= 2
     * (range given negative from the upper end) */
    Model md;
    md.row('R', 1.0, 4.0);
    md.row('R', 2.0, -4.0);
    md.col(1.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}});
    md.col(-1.0, 0.0, 10.0, {{0, 1.0}, {1, -1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_NEAR(r.s.obj, -2.0, 1e-9);
    EXPECT_EQ(check_kkt(md, r.s), "");
    /* the slack of a ranged row is rhs minus activity */
    double ax0 = r.s.x[0] + r.s.x[1];
    EXPECT_NEAR(r.s.slack[0], 1.0 - ax0, 1e-9);
}

TEST(PrimoptKnown, BoundedAndFixedColumns) {
    /* min -x - 2y + z, x + y + z <= 10, x in [1, 3], y in [-2, 4], z fixed 2 */
    Model md;
    md.row('L', 10.0);
    md.row('G', -5.0);
    md.col(-1.0, 1.0, 3.0, {{0, 1.0}, {1, 1.0}});
    md.col(-2.0, -2.0, 4.0, {{0, 1.0}, {1, -1.0}});
    md.col(1.0, 2.0, 2.0, {{0, 1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_NEAR(r.s.x[0], 3.0, 1e-9);
    EXPECT_NEAR(r.s.x[1], 4.0, 1e-9);
    EXPECT_NEAR(r.s.x[2], 2.0, 1e-12);
    EXPECT_NEAR(r.s.obj, -9.0, 1e-9);
    EXPECT_EQ(check_kkt(md, r.s), "");
}

TEST(PrimoptKnown, DegenerateTransportation) {
    /* a balanced transportation problem: degenerate at many vertices */
    Model md;
    const double supply[3] = {20, 30, 25}, demand[3] = {10, 35, 30};
    const double cost[3][3] = {{8, 6, 10}, {9, 12, 13}, {14, 9, 16}};
    for (double s : supply) md.row('E', s);
    for (double d : demand) md.row('E', d);
    for (int a = 0; a < 3; a++)
        for (int b = 0; b < 3; b++) md.col(cost[a][b], 0.0, 1e20, {{a, 1.0}, {3 + b, 1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_EQ(check_kkt(md, r.s), "");
}

TEST(PrimoptLimits, IterationLimitZeroMakesNoPivot) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    ASSERT_EQ(TRVsetintparam(te.env, 1020, 0), 0);
    Model md = small_max();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    int stat = TRVgetstat(te.env, lp);
    EXPECT_TRUE(stat == 5 || stat == 6) << stat;
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 0);
    /* the values read back are those of the starting basis */
    double x[2];
    ASSERT_EQ(TRVgetx(te.env, lp, x, 0, 1), 0);
    EXPECT_EQ(x[0], 0.0);
    EXPECT_EQ(x[1], 0.0);
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptLimits, IterationLimitInPhaseOneIsInfeasibleStatus) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    TRVsetintparam(te.env, 1020, 1);
    Model md; /* each column meets two of the three violated rows */
    md.row('G', 4.0);
    md.row('G', 3.0);
    md.row('G', 2.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {2, 1.0}});
    md.col(1.0, 0.0, 1e20, {{1, 1.0}, {2, 1.0}});
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 6);
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 1);
    EXPECT_EQ(TRVgetphase1cnt(te.env, lp), 1);
    TRVfreeprob(te.env, &lp);
}

static int stop_at_once(TRVenv, void *, int wherefrom, void *handle) {
    int *calls = static_cast<int *>(handle);
    (*calls)++;
    return wherefrom == 1 ? 1 : 0;
}

TEST(PrimoptLimits, CallbackAborts) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    int calls = 0;
    TRVsetlpcallbackfunc(te.env, stop_at_once, &calls);
    Model md = beale();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    int stat = TRVgetstat(te.env, lp);
    EXPECT_TRUE(stat == 12 || stat == 13) << stat;
    EXPECT_EQ(calls, 1);
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptLimits, ObjectiveLimitStopsPhaseTwo) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    /* maximisation: stop once the objective exceeds 1 */
    ASSERT_EQ(TRVsetdblparam(te.env, 1026, 1.0), 0);
    Model md = small_max();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 4);
    double z = 0.0;
    ASSERT_EQ(TRVgetobjval(te.env, lp, &z), 0);
    EXPECT_GT(z, 1.0);
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptLog, DisplayLevels) {
    Model md = beale();
    {
        Solved r(md, 0);
        EXPECT_EQ(r.te.res.find("Iteration"), std::string::npos);
    }
    {
        Solved r(md, 1);
        EXPECT_NE(r.te.res.find("\nIteration log . . .\n"), std::string::npos) << r.te.res;
        EXPECT_NE(r.te.res.find("Iteration:     0    Objective     =             0.000000\n"),
                  std::string::npos)
            << r.te.res;
    }
    {
        Solved r(md, 2);
        EXPECT_NE(r.te.res.find("       In Variable           Out Variable\n"), std::string::npos)
            << r.te.res;
        EXPECT_NE(r.te.res.find("slack"), std::string::npos) << r.te.res;
    }
}

TEST(PrimoptLog, PhaseOneLine) {
    Model md;
    md.row('G', 2.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}});
    Solved r(md, 1);
    EXPECT_NE(r.te.res.find("Iteration:     0    Infeasibility =             2.000000\n"),
              std::string::npos)
        << r.te.res;
}

TEST(PrimoptRandom, BoxedLpsMeetOptimalityConditions) {
    for (unsigned seed = 1; seed <= 60; seed++) {
        Model md = random_lp(seed, 4 + seed % 9, 3 + seed % 7);
        Solved r(md);
        ASSERT_EQ(r.rc, 0) << seed;
        ASSERT_EQ(r.s.stat, 1) << "seed " << seed;
        EXPECT_EQ(check_kkt(md, r.s), "") << "seed " << seed;
    }
}

TEST(PrimoptRandom, EveryPricingFamilyAgrees) {
    for (unsigned seed = 100; seed < 130; seed++) {
        Model md = random_lp(seed, 12, 8, true);
        double ref = 0.0;
        int refstat = -1;
        for (int fam = -1; fam <= 4; fam++) {
            TestEnv te;
            TRVsetintparam(te.env, 1019, 0);
            ASSERT_EQ(TRVsetintparam(te.env, 1029, fam), 0);
            TRVlp lp = md.copy_into(te.env);
            Solution s;
            ASSERT_EQ(solve_primal(te.env, lp, s), 0);
            if (refstat < 0) refstat = s.stat, ref = s.obj;
            EXPECT_EQ(s.stat, refstat) << "seed " << seed << " family " << fam;
            if (s.stat == 1) {
                EXPECT_NEAR(s.obj, ref, 1e-6 * (1 + std::fabs(ref))) << seed << " " << fam;
                EXPECT_EQ(check_kkt(md, s), "") << "seed " << seed << " family " << fam;
            }
            TRVfreeprob(te.env, &lp);
        }
    }
}

TEST(PrimoptScaling, BadlyScaledModelAnswersInItsOwnUnits) {
    for (int scheme = -1; scheme <= 1; scheme++) {
        Model md;
        md.row('L', 4e4);
        md.row('G', 1e-3);
        md.row('R', 2e-2, 5e-2);
        md.col(-1.0, 0.0, 1e5, {{0, 1e3}, {1, 1e-4}, {2, 1e-3}});
        md.col(-2e3, 0.0, 30.0, {{0, 2e4}, {1, 2e-3}});
        md.col(5e-3, -1e3, 1e3, {{0, 1.0}, {2, 1e-2}});
        TestEnv te;
        TRVsetintparam(te.env, 1019, 0);
        ASSERT_EQ(TRVsetintparam(te.env, 1034, scheme), 0);
        TRVlp lp = md.copy_into(te.env);
        Solution s;
        ASSERT_EQ(solve_primal(te.env, lp, s), 0);
        EXPECT_EQ(s.stat, 1) << scheme;
        EXPECT_EQ(check_kkt(md, s, 1e-6), "") << "scheme " << scheme;
        /* the model reads back as given */
        double obj[3], lb[3], ub[3], rhs[3], rng[3];
        ASSERT_EQ(TRVgetobj(te.env, lp, obj, 0, 2), 0);
        ASSERT_EQ(TRVgetlb(te.env, lp, lb, 0, 2), 0);
        ASSERT_EQ(TRVgetub(te.env, lp, ub, 0, 2), 0);
        ASSERT_EQ(TRVgetrhs(te.env, lp, rhs, 0, 2), 0);
        ASSERT_EQ(TRVgetrngval(te.env, lp, rng, 0, 2), 0);
        for (int j = 0; j < 3; j++) {
            EXPECT_NEAR(obj[j], md.obj[j], 1e-12 * std::fabs(md.obj[j]));
            EXPECT_NEAR(lb[j], md.lb[j], 1e-12 * std::fabs(md.lb[j]));
            EXPECT_NEAR(ub[j], md.ub[j], 1e-12 * std::fabs(md.ub[j]));
        }
        for (int i = 0; i < 3; i++) EXPECT_NEAR(rhs[i], md.rhs[i], 1e-12 * std::fabs(md.rhs[i]));
        EXPECT_NEAR(rng[2], 5e-2, 1e-15);
        double a = 0.0;
        ASSERT_EQ(TRVgetcoef(te.env, lp, 1, 0, &a), 0);
        EXPECT_NEAR(a, 1e-4, 1e-16);
        /* unscaled again, a second solve gives the same objective */
        ASSERT_EQ(TRVunscaleprob(te.env, lp), 0);
        ASSERT_EQ(TRVsetintparam(te.env, 1034, -1), 0);
        Solution s2;
        ASSERT_EQ(solve_primal(te.env, lp, s2), 0);
        EXPECT_NEAR(s2.obj, s.obj, 1e-7 * (1 + std::fabs(s.obj)));
        TRVfreeprob(te.env, &lp);
    }
}

TEST(PrimoptQueries, ChecksAndErrors) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = small_max();
    TRVlp lp = md.copy_into(te.env);
    double v[4] = {0, 0, 0, 0};
    /* before a solve: no solution */
    EXPECT_EQ(TRVgetx(te.env, lp, v, 0, 1), 1217);
    EXPECT_EQ(TRVsolution(te.env, lp, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 1217);
    EXPECT_EQ(TRVgetobjval(te.env, lp, v), 1217);
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 0);
    EXPECT_NE(te.err.find("No solution exists"), std::string::npos);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    te.clear();
    /* ranges */
    EXPECT_EQ(TRVgetx(te.env, lp, v, 1, 0), 1200);
    EXPECT_EQ(TRVgetx(te.env, lp, v, -1, 1), 1200);
    EXPECT_EQ(TRVgetx(te.env, lp, v, 0, 2), 1200);
    EXPECT_EQ(TRVgetpi(te.env, lp, v, 0, 2), 1200);
    EXPECT_EQ(TRVgetslack(te.env, lp, v, 2, 2), 1200);
    EXPECT_EQ(TRVgetdj(te.env, lp, v, 0, 5), 1200);
    EXPECT_NE(te.err.find("'end' value 2 is greater than 1"), std::string::npos) << te.err;
    /* null pointers */
    EXPECT_EQ(TRVgetx(te.env, lp, nullptr, 0, 1), 1004);
    EXPECT_EQ(TRVgetobjval(te.env, lp, nullptr), 1004);
    /* a null item of TRVsolution is skipped */
    double z = 0.0;
    EXPECT_EQ(TRVsolution(te.env, lp, nullptr, &z, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_NEAR(z, 11.0, 1e-9);
    /* single entries */
    EXPECT_EQ(TRVgetx(te.env, lp, v, 1, 1), 0);
    EXPECT_NEAR(v[0], 1.0, 1e-9);
    /* bad handles */
    EXPECT_EQ(TRVgetx(nullptr, lp, v, 0, 1), 1002);
    EXPECT_EQ(TRVprimopt(nullptr, lp), 1002);
    EXPECT_EQ(TRVprimopt(te.env, nullptr), 1009);
    EXPECT_EQ(TRVgetx(te.env, nullptr, v, 0, 1), 1009);
    TRVlp stale = lp;
    TRVfreeprob(te.env, &lp);
    EXPECT_EQ(TRVgetx(te.env, stale, v, 0, 1), 1009);
    EXPECT_EQ(TRVprimopt(te.env, stale), 1009);
}

TEST(PrimoptQueries, ModelChangeDropsSolution) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = small_max();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    double z;
    ASSERT_EQ(TRVgetobjval(te.env, lp, &z), 0);
    /* a new copy of the model is a change */
    Model m2 = beale();
    ASSERT_EQ(TRVcopylp(te.env, lp, m2.ncols(), m2.nrows(), m2.objsen, m2.obj.data(),
                        m2.rhs.data(), m2.sense.data(), m2.matbeg.data(), m2.matcnt.data(),
                        m2.matind.data(), m2.matval.data(), m2.lb.data(), m2.ub.data(),
                        m2.rngval.data()),
              0);
    EXPECT_EQ(TRVgetobjval(te.env, lp, &z), 1217);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    ASSERT_EQ(TRVgetobjval(te.env, lp, &z), 0);
    EXPECT_NEAR(z, -1.25, 1e-9);
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptQueries, EmptyAndRowlessModels) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    /* no rows: every column goes to its better bound */
    double obj[2] = {1.0, -1.0}, lb[2] = {-2.0, -2.0}, ub[2] = {3.0, 3.0};
    double rhs[1] = {0.0}, matval[1] = {0.0};
    char sense[1] = {'L'};
    int matbeg[2] = {0, 0}, matcnt[2] = {0, 0}, matind[1] = {0};
    int st = 0;
    TRVlp lp = TRVcreateprob(te.env, &st, "rowless");
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVcopylp(te.env, lp, 2, 0, 1, obj, rhs, sense, matbeg, matcnt, matind, matval,
                        lb, ub, nullptr),
              0);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 1);
    double z = 0.0, x[2];
    ASSERT_EQ(TRVgetobjval(te.env, lp, &z), 0);
    EXPECT_NEAR(z, -5.0, 1e-12);
    ASSERT_EQ(TRVgetx(te.env, lp, x, 0, 1), 0);
    EXPECT_EQ(x[0], -2.0);
    EXPECT_EQ(x[1], 3.0);
    /* no rows and an open direction */
    ub[1] = 1e20;
    ASSERT_EQ(TRVcopylp(te.env, lp, 2, 0, 1, obj, rhs, sense, matbeg, matcnt, matind, matval,
                        lb, ub, nullptr),
              0);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 3);
    TRVfreeprob(te.env, &lp);
    /* a problem with nothing in it */
    lp = TRVcreateprob(te.env, &st, "empty");
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 1);
    ASSERT_EQ(TRVgetobjval(te.env, lp, &z), 0);
    EXPECT_EQ(z, 0.0);
    TRVfreeprob(te.env, &lp);
}

namespace {
struct Seen {
    int calls = 0, last_it = -1, phase1 = 0, phase2 = 0, bad = 0;
    double last_obj = 0.0;
};
int watch(TRVenv env, void *cbdata, int wherefrom, void *handle) {
    Seen *s = static_cast<Seen *>(handle);
    s->calls++;
    int it = -1, ph = -1, rows = -1;
    double obj = 0.0, inf = -1.0;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 7, &it) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 5, &ph) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 17, &rows) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 1, &obj) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 3, &inf) != 0) s->bad++;
    /* a figure of the dual side is not known here */
    double dummy;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 2, &dummy) != 1003) s->bad++;
    if (it < s->last_it || rows != 3) s->bad++;
    s->last_it = it;
    (ph == 1 ? s->phase2 : s->phase1)++;
    if (ph == 1 && inf > 1e-6) s->bad++;
    s->last_obj = obj;
    return 0;
}
} // namespace

TEST(PrimoptLimits, CallbackSeesProgressFigures) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Seen seen;
    TRVsetlpcallbackfunc(te.env, watch, &seen);
    Model md; /* phase 1 first: the 'G' row is violated by the slack basis */
    md.row('G', 2.0);
    md.row('L', 6.0);
    md.row('L', 5.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}, {2, 2.0}});
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}, {1, 2.0}});
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 1);
    EXPECT_GT(seen.calls, 1);
    EXPECT_EQ(seen.bad, 0) << te.err;
    EXPECT_GT(seen.phase1, 0);
    EXPECT_GT(seen.phase2, 0);
    EXPECT_LE(seen.last_it, TRVgetitcnt(te.env, lp));
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptStart, CrashFillsEqualityRowsWithStructurals) {
    /* two equations in two unknowns, triangular: the crash basis is the
     * answer and no pivot is needed */
    Model md;
    md.row('E', 1.0);
    md.row('E', 3.0);
    md.col(1.0, 0.0, 10.0, {{0, 1.0}, {1, 0.5}});
    md.col(1.0, 0.0, 10.0, {{1, 2.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_EQ(TRVgetitcnt(r.te.env, r.lp), 0);
    EXPECT_EQ(TRVgetphase1cnt(r.te.env, r.lp), 0);
    EXPECT_NEAR(r.s.x[0], 1.0, 1e-12);
    EXPECT_NEAR(r.s.x[1], 1.25, 1e-12);
    EXPECT_EQ(check_kkt(md, r.s), "");
}

TEST(PrimoptStart, SpreadPivotsFallBackToTheUnitBasis) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    TRVsetintparam(te.env, 1034, -1); /* no scaling to even the entries out */
    Model md;
    md.row('E', 1.0);
    md.row('E', 1e-4);
    md.col(1.0, 0.0, 10.0, {{0, 1.0}});
    md.col(1.0, 0.0, 10.0, {{1, 1e-4}});
    TRVlp lp = md.copy_into(te.env);
    Solution s;
    ASSERT_EQ(solve_primal(te.env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    EXPECT_NE(te.err.find("Using conservative initial basis.\n"), std::string::npos) << te.err;
    EXPECT_NE(te.err.find("Using unit initial basis.\n"), std::string::npos) << te.err;
    EXPECT_NE(te.err.find("Primal crash basis not built.\n"), std::string::npos) << te.err;
    EXPECT_GT(TRVgetphase1cnt(te.env, lp), 0);
    EXPECT_EQ(check_kkt(md, s), "");
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptLimits, TimeLimitIsReadEveryTwentyFiveIterations) {
    Model md = random_lp(4242, 80, 60);
    {
        Solved r(md); /* the run needs more than 25 iterations */
        ASSERT_EQ(r.rc, 0);
        ASSERT_EQ(r.s.stat, 1);
        ASSERT_GT(TRVgetitcnt(r.te.env, r.lp), 25);
    }
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    ASSERT_EQ(TRVsetdblparam(te.env, 1039, 0.0), 0);
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    int stat = TRVgetstat(te.env, lp);
    EXPECT_TRUE(stat == 7 || stat == 8) << stat;
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 25);
    /* the values read back are consistent with the rows */
    Solution s;
    s.x.resize(md.ncols()), s.pi.resize(md.nrows()), s.slack.resize(md.nrows()), s.dj.resize(md.ncols());
    ASSERT_EQ(TRVsolution(te.env, lp, &s.stat, &s.obj, s.x.data(), s.pi.data(), s.slack.data(), s.dj.data()), 0);
    for (int i = 0; i < md.nrows(); i++) {
        double a = 0.0;
        for (int j = 0; j < md.ncols(); j++)
            for (int k = md.matbeg[j]; k < md.matbeg[j] + md.matcnt[j]; k++)
                if (md.matind[k] == i) a += md.matval[k] * s.x[j];
        EXPECT_NEAR(s.slack[i], md.rhs[i] - a, 1e-8 * (1 + std::fabs(a)));
    }
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptScaling, CallerOwnedArraysComeBackOnUnload) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    TRVsetintparam(te.env, 1034, 0);
    /* a badly scaled model in the caller's arrays, with room to spare */
    double obj[2] = {-1.0, -3e3}, rhs[2] = {5e4, 2e-3}, lb[2] = {0.0, 0.0}, ub[2] = {1e20, 40.0};
    double rng[2] = {0.0, 0.0}, val[4] = {1e3, 1e-4, 2e4, 1e-3};
    char sense[2] = {'L', 'L'};
    int beg[2] = {0, 2}, cnt[2] = {2, 2}, ind[4] = {0, 1, 0, 1};
    double obj0[2], rhs0[2], ub0[2], val0[4];
    std::memcpy(obj0, obj, sizeof obj), std::memcpy(rhs0, rhs, sizeof rhs);
    std::memcpy(ub0, ub, sizeof ub), std::memcpy(val0, val, sizeof val);
    TRVlp lp = TRVloadlp(te.env, "owned", 2, 2, 1, obj, rhs, sense, beg, cnt, ind, val, lb, ub,
                         rng, 2, 2, 4);
    ASSERT_NE(lp, nullptr);
    Solution s;
    ASSERT_EQ(solve_primal(te.env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    /* the model answers in its own units while held scaled */
    double q[2];
    ASSERT_EQ(TRVgetobj(te.env, lp, q, 0, 1), 0);
    EXPECT_NEAR(q[1], -3e3, 1e-9);
    ASSERT_EQ(TRVgetrhs(te.env, lp, q, 0, 1), 0);
    EXPECT_NEAR(q[1], 2e-3, 1e-15);
    ASSERT_EQ(TRVunloadprob(te.env, &lp), 0);
    for (int k = 0; k < 2; k++) {
        EXPECT_NEAR(obj[k], obj0[k], 1e-12 * std::fabs(obj0[k]));
        EXPECT_NEAR(rhs[k], rhs0[k], 1e-12 * std::fabs(rhs0[k]));
        EXPECT_NEAR(ub[k], ub0[k], 1e-12 * std::fabs(ub0[k]));
    }
    for (int k = 0; k < 4; k++) EXPECT_NEAR(val[k], val0[k], 1e-12 * std::fabs(val0[k]));
}

TEST(PrimoptScaling, NewDataAfterAScaledSolve) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md;
    md.row('L', 4e4);
    md.row('G', 1e-3);
    md.col(-1.0, 0.0, 1e5, {{0, 1e3}, {1, 1e-4}});
    md.col(-2e3, 0.0, 30.0, {{0, 2e4}, {1, 2e-3}});
    TRVlp lp = md.copy_into(te.env);
    Solution s1, s2;
    ASSERT_EQ(solve_primal(te.env, lp, s1), 0);
    /* the same data again: a copy drops the old scaling */
    ASSERT_EQ(TRVcopylp(te.env, lp, md.ncols(), md.nrows(), md.objsen, md.obj.data(),
                        md.rhs.data(), md.sense.data(), md.matbeg.data(), md.matcnt.data(),
                        md.matind.data(), md.matval.data(), md.lb.data(), md.ub.data(),
                        md.rngval.data()),
              0);
    ASSERT_EQ(solve_primal(te.env, lp, s2), 0);
    EXPECT_EQ(s2.stat, 1);
    EXPECT_NEAR(s2.obj, s1.obj, 1e-9 * (1 + std::fabs(s1.obj)));
    EXPECT_EQ(check_kkt(md, s2), "");
    TRVfreeprob(te.env, &lp);
}

TEST(PrimoptKnown, FreeColumnOfNoCostEndsBasic) {
    /* min -y, y <= 3, f + y <= 10, f free and without cost: every f up to 7
     * is optimal; the basic answer puts f where its row blocks */
    Model md;
    md.row('L', 3.0);
    md.row('L', 10.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    md.col(0.0, -1e20, 1e20, {{1, 1.0}});
    Solved r(md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_NEAR(r.s.obj, -3.0, 1e-12);
    EXPECT_NEAR(r.s.x[1], 7.0, 1e-12);
    EXPECT_EQ(check_kkt(md, r.s), "");
}
