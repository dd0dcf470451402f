/* The dual simplex and the method dispatch through the public interface:
 * outcomes of small LPs checked against the optimality conditions and
 * against the primal simplex, the dual's own cases (dual degeneracy, a
 * dual feasible slack basis, phase 1), limits, callbacks, the log, the
 * hand-over to the primal, warm starts from the kept basis, and the
 * checks of TRVlpopt. */
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "support/kkt.h"
#include "support/model.h"

namespace {

int read_back(TRVenv env, TRVlp lp, Solution &s) {
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    s.x.assign(n, 0.0), s.dj.assign(n, 0.0), s.pi.assign(m, 0.0), s.slack.assign(m, 0.0);
    return TRVsolution(env, lp, &s.stat, &s.obj, s.x.data(), s.pi.data(), s.slack.data(),
                       s.dj.data());
}

int solve_dual(TRVenv env, TRVlp lp, Solution &s) {
    int st = TRVdualopt(env, lp);
    return st != 0 ? st : read_back(env, lp, s);
}

/* A model solved by both drivers in fresh environments. */
struct Both {
    TestEnv td, tp;
    TRVlp lpd = nullptr, lpp = nullptr;
    Solution d, p;
    int rcd = -1, rcp = -1;
    explicit Both(const Model &md, int display = 0) {
        TRVsetintparam(td.env, 1019, display);
        TRVsetintparam(tp.env, 1019, 0);
        lpd = md.copy_into(td.env);
        lpp = md.copy_into(tp.env);
        if (lpd) rcd = solve_dual(td.env, lpd, d);
        if (lpp) rcp = solve_primal(tp.env, lpp, p);
    }
    ~Both() {
        if (lpd) TRVfreeprob(td.env, &lpd);
        if (lpp) TRVfreeprob(tp.env, &lpp);
    }
    /* both optimal with the same objective, the dual's solution meeting the
     * optimality conditions */
    void expect_agree(const Model &md, const char *what) const {
        ASSERT_EQ(rcd, 0) << what;
        ASSERT_EQ(rcp, 0) << what;
        ASSERT_EQ(d.stat, 1) << what;
        ASSERT_EQ(p.stat, 1) << what;
        EXPECT_NEAR(d.obj, p.obj, 1e-7 * (1.0 + std::fabs(p.obj))) << what;
        EXPECT_EQ(check_kkt(md, d), "") << what;
    }
};

Model small_max() {
    Model md; /* max 3x + 2y, x + y <= 4, x + 3y <= 6, x <= 3 */
    md.objsen = -1;
    md.row('L', 4.0);
    md.row('L', 6.0);
    md.col(3.0, 0.0, 3.0, {{0, 1.0}, {1, 1.0}});
    md.col(2.0, 0.0, 1e20, {{0, 1.0}, {1, 3.0}});
    return md;
}

/* min c x with c >= 0 and 'G' rows: the slack basis is dual feasible and
 * primal infeasible, the classic start of the dual. */
Model diet() {
    Model md;
    md.row('G', 8.0);
    md.row('G', 6.0);
    md.row('G', 5.0);
    md.col(2.0, 0.0, 1e20, {{0, 2.0}, {1, 1.0}});
    md.col(3.0, 0.0, 1e20, {{0, 1.0}, {1, 2.0}, {2, 1.0}});
    md.col(1.5, 0.0, 1e20, {{0, 1.0}, {2, 2.0}});
    return md;
}

Model transportation(int ns, int nd) {
    Model md;
    for (int a = 0; a < ns; a++) md.row('E', 10.0 + a);
    double total = 0.0;
    for (int a = 0; a < ns; a++) total += 10.0 + a;
    for (int b = 0; b < nd; b++) md.row('E', total / nd);
    for (int a = 0; a < ns; a++)
        for (int b = 0; b < nd; b++)
            md.col(1.0 + (a + b) % 3, 0.0, 1e20, {{a, 1.0}, {ns + b, 1.0}});
    return md;
}

} // namespace

TEST(DualoptKnown, MaximisationAndMethod) {
    Model md = small_max();
    Both r(md);
    r.expect_agree(md, "small max");
    EXPECT_NEAR(r.d.obj, 11.0, 1e-9);
    EXPECT_EQ(TRVgetmethod(r.td.env, r.lpd), 2);
    EXPECT_EQ(TRVgetstat(r.td.env, r.lpd), 1);
}

TEST(DualoptKnown, DualFeasibleSlackBasisNeedsNoPhaseOne) {
    Model md = diet();
    Both r(md);
    r.expect_agree(md, "diet");
    EXPECT_EQ(TRVgetphase1cnt(r.td.env, r.lpd), 0);
    EXPECT_GT(TRVgetitcnt(r.td.env, r.lpd), 0);
}

TEST(DualoptKnown, PhaseOneForDualInfeasibleStart) {
    /* min -x - y: the slack basis is dual infeasible on both columns */
    Model md;
    md.row('L', 4.0);
    md.row('L', 6.0);
    md.row('G', 1.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}, {2, 1.0}});
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}, {1, 3.0}});
    Both r(md);
    r.expect_agree(md, "phase 1");
    EXPECT_NEAR(r.d.obj, -4.0, 1e-9);
    EXPECT_GT(TRVgetphase1cnt(r.td.env, r.lpd), 0);
}

TEST(DualoptKnown, DualDegenerateTransportation) {
    for (int k = 2; k <= 6; k++) {
        Model md = transportation(k, k + 1);
        Both r(md);
        r.expect_agree(md, "transportation");
    }
}

TEST(DualoptKnown, ZeroCostsAreDualDegenerate) {
    /* every reduced cost is zero at the start: any feasible point is optimal */
    Model md;
    md.row('G', 2.0);
    md.row('L', 5.0);
    md.row('E', 1.0);
    md.col(0.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}, {2, 1.0}});
    md.col(0.0, -1.0, 1e20, {{0, 1.0}, {1, 2.0}});
    md.col(0.0, -1e20, 1e20, {{0, 1.0}, {2, -1.0}});
    Both r(md);
    r.expect_agree(md, "zero costs");
    EXPECT_NEAR(r.d.obj, 0.0, 1e-12);
}

TEST(DualoptKnown, FreeVariablesAndRangedRows) {
    Model md; /* min x + 2y, x + y >= 2, x - y = 0.5, x and y free */
    md.row('G', 2.0);
    md.row('E', 0.5);
    md.row('R', -3.0, 6.0);
    md.col(1.0, -1e20, 1e20, {{0, 1.0}, {1, 1.0}, {2, 1.0}});
    md.col(2.0, -1e20, 1e20, {{0, 1.0}, {1, -1.0}, {2, -1.0}});
    Both r(md);
    r.expect_agree(md, "free");
    EXPECT_NEAR(r.d.x[0], 1.25, 1e-9);
    EXPECT_NEAR(r.d.x[1], 0.75, 1e-9);
}

TEST(DualoptKnown, BoxedColumnsFlipWithoutPhaseOne) {
    /* every column boxed: the start is dual feasible by the choice of bound */
    Model md;
    md.row('L', 4.0);
    md.row('G', -3.0);
    md.row('R', 1.0, 2.0);
    md.col(-3.0, 0.0, 2.0, {{0, 1.0}, {1, -1.0}, {2, 1.0}});
    md.col(-1.0, -1.0, 3.0, {{0, 2.0}, {2, 1.0}});
    md.col(2.0, -2.0, 2.0, {{0, 1.0}, {1, 1.0}, {2, -1.0}});
    md.col(1.0, 1.0, 1.0, {{1, 1.0}});
    Both r(md);
    r.expect_agree(md, "boxed");
    EXPECT_EQ(TRVgetphase1cnt(r.td.env, r.lpd), 0);
}

TEST(DualoptOutcomes, SingleRowAndFreeRowModels) {
    {
        Model md; /* one row that binds nothing: columns go to their better bound */
        md.row('L', 100.0);
        md.col(1.0, -2.0, 3.0, {{0, 1.0}});
        md.col(-1.0, 0.0, 4.0, {{0, 1.0}});
        Both r(md);
        r.expect_agree(md, "loose row");
        EXPECT_NEAR(r.d.obj, -6.0, 1e-12);
    }
    {
        Model md; /* an empty equality row with a zero right-hand side */
        md.row('E', 0.0);
        md.row('G', 1.0);
        md.col(2.0, 0.0, 1e20, {{1, 1.0}});
        Both r(md);
        r.expect_agree(md, "empty row");
        EXPECT_NEAR(r.d.obj, 2.0, 1e-12);
    }
    {
        Model md; /* an empty equality row that cannot hold */
        md.row('E', 1.0);
        md.row('L', 5.0);
        md.col(1.0, 0.0, 1.0, {{1, 1.0}});
        Both r(md);
        ASSERT_EQ(r.rcd, 0);
        EXPECT_EQ(r.d.stat, 2);
        EXPECT_EQ(r.p.stat, 2);
    }
}

TEST(DualoptOutcomes, Infeasible) {
    Model md; /* x + y <= 1, x + y >= 3 */
    md.row('L', 1.0);
    md.row('G', 3.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    Both r(md);
    ASSERT_EQ(r.rcd, 0);
    EXPECT_EQ(r.d.stat, 2);
    EXPECT_EQ(r.p.stat, 2);
}

TEST(DualoptOutcomes, InfeasibleByBoxes) {
    Model md; /* x + y = 10 with x, y in [0, 2] */
    md.row('E', 10.0);
    md.col(1.0, 0.0, 2.0, {{0, 1.0}});
    md.col(-1.0, 0.0, 2.0, {{0, 1.0}});
    Both r(md);
    ASSERT_EQ(r.rcd, 0);
    EXPECT_EQ(r.d.stat, 2);
}

TEST(DualoptOutcomes, UnboundedThroughTheHandOver) {
    Model md; /* min -x - y, x - y <= 1 */
    md.row('L', 1.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}});
    md.col(-1.0, 0.0, 1e20, {{0, -1.0}});
    Both r(md);
    ASSERT_EQ(r.rcd, 0);
    EXPECT_EQ(r.d.stat, 3);
    EXPECT_EQ(r.p.stat, 3);
}

TEST(DualoptOutcomes, DualInfeasibleWithoutHandOverIsStatus19) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    ASSERT_EQ(TRVsetintparam(te.env, 1063, -1), 0);
    Model md; /* unbounded: min -x with x - y <= 1 */
    md.row('L', 1.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}});
    md.col(0.0, 0.0, 1e20, {{0, -1.0}});
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVdualopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 19);
    TRVfreeprob(te.env, &lp);
}

TEST(DualoptOutcomes, InfeasibleAndDualInfeasible) {
    /* x - y >= 1, -x + y >= 1 is infeasible; min -x - y is dual infeasible */
    Model md;
    md.row('G', 1.0);
    md.row('G', 1.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}, {1, -1.0}});
    md.col(-1.0, 0.0, 1e20, {{0, -1.0}, {1, 1.0}});
    Both r(md);
    ASSERT_EQ(r.rcd, 0);
    EXPECT_EQ(r.d.stat, 2);
}

TEST(DualoptRandom, AgreesWithThePrimal) {
    for (unsigned seed = 1; seed <= 80; seed++) {
        Model md = random_lp(seed, 4 + seed % 11, 3 + seed % 8, seed % 2 == 0);
        Both r(md);
        ASSERT_EQ(r.rcd, 0) << seed;
        ASSERT_EQ(r.d.stat, r.p.stat) << "seed " << seed;
        if (r.p.stat == 1) r.expect_agree(md, ("seed " + std::to_string(seed)).c_str());
    }
}

TEST(DualoptRandom, EveryPricingModeAgrees) {
    for (unsigned seed = 200; seed < 220; seed++) {
        Model md = random_lp(seed, 14, 9, true);
        double ref = 0.0;
        int refstat = -1;
        for (int mode : {0, 1, 2, 3, 4, 5}) {
            TestEnv te;
            TRVsetintparam(te.env, 1019, 0);
            ASSERT_EQ(TRVsetintparam(te.env, 1009, mode), 0);
            TRVlp lp = md.copy_into(te.env);
            Solution s;
            ASSERT_EQ(solve_dual(te.env, lp, s), 0);
            if (refstat < 0) refstat = s.stat, ref = s.obj;
            EXPECT_EQ(s.stat, refstat) << seed << " mode " << mode;
            if (s.stat == 1) {
                EXPECT_NEAR(s.obj, ref, 1e-7 * (1 + std::fabs(ref))) << seed << " mode " << mode;
                EXPECT_EQ(check_kkt(md, s), "") << seed << " mode " << mode;
            }
            TRVfreeprob(te.env, &lp);
        }
    }
}

TEST(DualoptHandOver, BothDirectionsKeepTheAnswer) {
    /* perturbation from the start and the hand-over at once: each driver
     * may pass its basis to the other after the removal */
    int handed = 0;
    for (unsigned seed = 300; seed < 340; seed++) {
        Model md = random_lp(seed, 16, 11, seed % 3 == 0);
        Both ref(md);
        for (int primal : {0, 1}) {
            TestEnv te;
            TRVsetintparam(te.env, 1019, 1);
            ASSERT_EQ(TRVsetintparam(te.env, 1027, 1), 0);
            ASSERT_EQ(TRVsetintparam(te.env, 1063, 1), 0);
            TRVlp lp = md.copy_into(te.env);
            Solution s;
            int rc = primal ? solve_primal(te.env, lp, s) : solve_dual(te.env, lp, s);
            ASSERT_EQ(rc, 0) << seed;
            EXPECT_EQ(s.stat, ref.p.stat) << seed << (primal ? " primal" : " dual");
            if (s.stat == 1) {
                EXPECT_NEAR(s.obj, ref.p.obj, 1e-7 * (1 + std::fabs(ref.p.obj))) << seed;
                EXPECT_EQ(check_kkt(md, s), "") << seed;
            }
            /* a second iteration log header tells that the other driver ran */
            size_t first = te.res.find("Iteration log");
            if (first != std::string::npos && te.res.find("Iteration log", first + 1) != std::string::npos)
                handed++;
            TRVfreeprob(te.env, &lp);
        }
    }
    EXPECT_GT(handed, 0);
}

TEST(DualoptLimits, IterationLimitZeroMakesNoPivot) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    ASSERT_EQ(TRVsetintparam(te.env, 1020, 0), 0);
    Model md = diet();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVdualopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 6); /* the slack basis is primal infeasible */
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 0);
    TRVfreeprob(te.env, &lp);
}

static int stop_at_once(TRVenv env, void *cbdata, int wherefrom, void *handle) {
    int *calls = static_cast<int *>(handle);
    (*calls)++;
    double z = 0.0;
    int phase = -1;
    EXPECT_EQ(TRVgetcallbackinfo(env, cbdata, wherefrom, 2, &z), 0);
    EXPECT_EQ(TRVgetcallbackinfo(env, cbdata, wherefrom, 6, &phase), 0);
    EXPECT_TRUE(phase == 0 || phase == 1);
    EXPECT_EQ(TRVgetcallbackinfo(env, cbdata, wherefrom, 1, &z), 1003);
    return wherefrom == 2 ? 1 : 0;
}

TEST(DualoptLimits, CallbackAbortsFromTheDualPlace) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    int calls = 0;
    TRVsetlpcallbackfunc(te.env, stop_at_once, &calls);
    Model md = diet();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVdualopt(te.env, lp), 0);
    int stat = TRVgetstat(te.env, lp);
    EXPECT_TRUE(stat == 12 || stat == 13) << stat;
    EXPECT_EQ(calls, 1);
    TRVfreeprob(te.env, &lp);
}

TEST(DualoptLimits, ObjectiveUpperLimitStopsAMinimisation) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    /* the dual objective rises toward the optimum 7.7: stop at 1 */
    ASSERT_EQ(TRVsetdblparam(te.env, 1026, 1.0), 0);
    Model md = diet();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVdualopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 4);
    TRVfreeprob(te.env, &lp);
}

TEST(DualoptLimits, ObjectiveLowerLimitStopsAMaximisation) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    /* max -2x - 3y - z with 'G' rows: the slack basis is dual feasible and
     * the dual bound falls from 0 toward the optimum; stop below -1 */
    ASSERT_EQ(TRVsetdblparam(te.env, 1025, -1.0), 0);
    Model md = diet();
    md.objsen = -1;
    for (double &c : md.obj) c = -c;
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVdualopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 4);
    /* without the limit the same run reaches the optimum */
    ASSERT_EQ(TRVsetdblparam(te.env, 1025, -1e75), 0);
    Solution s;
    ASSERT_EQ(solve_dual(te.env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    EXPECT_LT(s.obj, -1.0);
    EXPECT_EQ(check_kkt(md, s), "");
    TRVfreeprob(te.env, &lp);
}

TEST(DualoptLimits, TimeLimitStopsARun) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    ASSERT_EQ(TRVsetdblparam(te.env, 1039, 1e-9), 0);
    Model md = transportation(12, 12);
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(TRVdualopt(te.env, lp), 0);
    int stat = TRVgetstat(te.env, lp);
    EXPECT_TRUE(stat == 7 || stat == 8) << stat;
    EXPECT_LE(TRVgetitcnt(te.env, lp), 25);
    TRVfreeprob(te.env, &lp);
}

TEST(DualoptKnown, DualInfeasibleFreeColumnEntersInPhaseTwo) {
    /* min x + y - z with z free and bounded only through the rows: the
     * slack basis leaves z dual infeasible */
    Model md;
    md.row('L', 4.0);
    md.row('G', -2.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}});
    md.col(1.0, 0.0, 1e20, {{0, -1.0}});
    md.col(-1.0, -1e20, 1e20, {{0, 1.0}, {1, -1.0}});
    Both r(md);
    r.expect_agree(md, "free column");
    EXPECT_NEAR(r.d.obj, -2.0, 1e-9); /* z = x + 2, y = 0 */
}

TEST(DualoptLog, DisplayLevels) {
    Model md = diet();
    {
        Both r(md, 0);
        EXPECT_EQ(r.td.res.find("Iteration"), std::string::npos);
    }
    {
        Both r(md, 1);
        EXPECT_NE(r.td.res.find("\nIteration log . . .\n"), std::string::npos) << r.td.res;
        EXPECT_NE(r.td.res.find("Iteration:     0    Objective     =             0.000000\n"),
                  std::string::npos)
            << r.td.res;
    }
    {
        Both r(md, 2);
        EXPECT_NE(r.td.res.find("       In Variable           Out Variable\n"), std::string::npos)
            << r.td.res;
        EXPECT_NE(r.td.res.find(" slack"), std::string::npos) << r.td.res;
    }
}

TEST(DualoptLog, PhaseOneLine) {
    Model md; /* min -x, x + y <= 2: one dual infeasibility of 1 */
    md.row('L', 2.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}});
    md.col(0.0, 0.0, 1e20, {{0, 1.0}});
    Both r(md, 1);
    EXPECT_NE(r.td.res.find("Iteration:     0    Infeasibility =             1.000000\n"),
              std::string::npos)
        << r.td.res;
}

TEST(DualoptWarm, ResolveStartsFromTheKeptBasis) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = transportation(6, 7);
    TRVlp lp = md.copy_into(te.env);
    Solution s1, s2;
    ASSERT_EQ(solve_dual(te.env, lp, s1), 0);
    ASSERT_EQ(s1.stat, 1);
    EXPECT_GT(TRVgetitcnt(te.env, lp), 3);
    /* the same model again: the kept basis is optimal */
    ASSERT_EQ(solve_dual(te.env, lp, s2), 0);
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 0);
    EXPECT_NEAR(s2.obj, s1.obj, 1e-9);
    /* without the advanced start the run begins from the slack basis */
    TRVsetintparam(te.env, 1001, 0);
    ASSERT_EQ(solve_dual(te.env, lp, s2), 0);
    EXPECT_GT(TRVgetitcnt(te.env, lp), 3);
    TRVfreeprob(te.env, &lp);
}

TEST(DualoptWarm, NewModelDropsTheKeptBasis) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model a = transportation(4, 4);
    TRVlp lp = a.copy_into(te.env);
    Solution s;
    ASSERT_EQ(solve_dual(te.env, lp, s), 0);
    /* copying another model of the same shape into the problem must not
     * start from the old basis' values */
    Model b = diet();
    ASSERT_EQ(TRVcopylp(te.env, lp, b.ncols(), b.nrows(), b.objsen, b.obj.data(), b.rhs.data(),
                        b.sense.data(), b.matbeg.data(), b.matcnt.data(), b.matind.data(),
                        b.matval.data(), b.lb.data(), b.ub.data(), nullptr),
              0);
    ASSERT_EQ(solve_dual(te.env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    EXPECT_EQ(check_kkt(b, s), "");
    TRVfreeprob(te.env, &lp);
}

TEST(LpoptDispatch, MethodChoice) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = diet();
    TRVlp lp = md.copy_into(te.env);
    for (int method : {0, 1, 2}) {
        ASSERT_EQ(TRVsetintparam(te.env, 1062, method), 0);
        ASSERT_EQ(TRVlpopt(te.env, lp), 0);
        EXPECT_EQ(TRVgetstat(te.env, lp), 1);
        EXPECT_EQ(TRVgetmethod(te.env, lp), method == 1 ? 1 : 2) << method;
    }
    for (int method : {3, 4}) {
        ASSERT_EQ(TRVsetintparam(te.env, 1062, method), 0);
        te.clear();
        EXPECT_EQ(TRVlpopt(te.env, lp), 1292);
        EXPECT_NE(te.err.find("Invalid choice of optimization method"), std::string::npos)
            << te.err;
    }
    TRVfreeprob(te.env, &lp);
}

TEST(LpoptDispatch, BadHandles) {
    TestEnv te;
    EXPECT_EQ(TRVdualopt(nullptr, nullptr), 1002);
    EXPECT_EQ(TRVlpopt(nullptr, nullptr), 1002);
    EXPECT_EQ(TRVdualopt(te.env, nullptr), 1009);
    EXPECT_EQ(TRVlpopt(te.env, nullptr), 1009);
    /* a stale handle */
    Model md = diet();
    TRVlp lp = md.copy_into(te.env);
    TRVlp stale = lp;
    TRVfreeprob(te.env, &lp);
    EXPECT_EQ(TRVdualopt(te.env, stale), 1009);
}
