/* Warm starts after model changes, and clones: each case is solved in
 * place from the kept basis and through a fresh copy of the changed model
 * given the same basis by TRVcopybase; both must end where a cold start
 * ends. Clones are the caller's model, whenever they are taken. */
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"

#ifndef TRV_SOURCE_TESTS
#define TRV_SOURCE_TESTS "."
#endif

namespace {

struct Basis {
    std::vector<int> cstat, rstat;
};

Basis basis_of(TRVenv env, TRVlp lp) {
    Basis b;
    b.cstat.resize(TRVgetnumcols(env, lp));
    b.rstat.resize(TRVgetnumrows(env, lp));
    EXPECT_EQ(TRVgetbase(env, lp, b.cstat.data(), b.rstat.data()), 0);
    return b;
}

int run(TRVenv env, TRVlp lp, bool dual) {
    EXPECT_EQ(dual ? TRVdualopt(env, lp) : TRVprimopt(env, lp), 0);
    return TRVgetstat(env, lp);
}

/* The outcome of one solve: the status, and for an optimum the objective
 * and the check of the optimality conditions against the model. */
struct Result {
    int stat = 0;
    double obj = 0.0;
    std::string kkt;
};

Result result_of(TRVenv env, TRVlp lp, const Model &md) {
    Result r;
    r.stat = TRVgetstat(env, lp);
    if (r.stat != 1) return r;
    Solution s;
    s.x.resize(md.ncols()), s.dj.resize(md.ncols());
    s.pi.resize(md.nrows()), s.slack.resize(md.nrows());
    EXPECT_EQ(TRVsolution(env, lp, &s.stat, &r.obj, s.x.data(), s.pi.data(), s.slack.data(),
                          s.dj.data()),
              0);
    s.obj = r.obj;
    r.kkt = check_kkt(md, s, 1e-6);
    return r;
}

/* The changed model md solved by one method from basis b given to a fresh
 * copy. */
Result from_copied_basis(TRVenv env, const Model &md, const Basis &b, bool dual) {
    TRVlp lp = md.copy_into(env);
    EXPECT_NE(lp, nullptr);
    EXPECT_EQ(TRVcopybase(env, lp, b.cstat.data(), b.rstat.data()), 0);
    run(env, lp, dual);
    Result r = result_of(env, lp, md);
    TRVfreeprob(env, &lp);
    return r;
}

Result cold(TRVenv env, const Model &md, bool dual) {
    TRVlp lp = md.copy_into(env);
    run(env, lp, dual);
    Result r = result_of(env, lp, md);
    TRVfreeprob(env, &lp);
    return r;
}

void expect_same(const Result &got, const Result &want, const std::string &what) {
    EXPECT_EQ(got.stat, want.stat) << what;
    if (got.stat != 1 || want.stat != 1) return;
    EXPECT_NEAR(got.obj, want.obj, 1e-6 * (1.0 + std::fabs(want.obj))) << what;
    EXPECT_EQ(got.kkt, "") << what;
}

/* Sets entry (i, j) in the plain copy of the model. */
void set_coef(Model &md, int i, int j, double v) {
    for (int k = md.matbeg[j]; k < md.matbeg[j] + md.matcnt[j]; k++)
        if (md.matind[k] == i) {
            md.matval[k] = v;
            return;
        }
    Model out = md;
    out.matind.clear(), out.matval.clear();
    for (int c = 0; c < md.ncols(); c++) {
        out.matbeg[c] = static_cast<int>(out.matind.size());
        for (int k = md.matbeg[c]; k < md.matbeg[c] + md.matcnt[c]; k++)
            out.matind.push_back(md.matind[k]), out.matval.push_back(md.matval[k]);
        if (c == j) out.matind.push_back(i), out.matval.push_back(v);
        out.matcnt[c] = static_cast<int>(out.matind.size()) - out.matbeg[c];
    }
    md = out;
}

/* A coefficient change after a solve by `first`, then a warm solve by
 * `second` in place and through a fresh copy with the kept basis; both end
 * as a cold start of the changed model by `second` does. */
void coef_case(const Model &md0, int i, int j, double v, const std::string &name) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = md0;
    set_coef(md, i, j, v);
    for (bool first : {false, true})
        for (bool second : {false, true}) {
            std::string what = name + (first ? " dual" : " primal") +
                               (second ? " then dual" : " then primal");
            TRVlp lp = md0.copy_into(t.env);
            run(t.env, lp, first);
            Basis b = basis_of(t.env, lp);
            ASSERT_EQ(TRVchgcoef(t.env, lp, i, j, v), 0);
            run(t.env, lp, second);
            Result want = cold(t.env, md, second);
            expect_same(result_of(t.env, lp, md), want, what + ", in place");
            expect_same(from_copied_basis(t.env, md, b, second), want, what + ", copied basis");
            TRVfreeprob(t.env, &lp);
        }
}

}  // namespace

/* Scaling changes the stored data of a solved problem; a clone taken after
 * the solve still reads back, and solves as, the caller's model. */
TEST(Clone, SolvedProblemClonesTheCallersModel) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md;
    md.row('L', 8.0);
    md.row('L', 6.0);
    md.col(-1.0, 0.0, 10.0, {{0, 40.0}, {1, 0.3}});
    md.col(-1.0, 0.0, 10.0, {{0, 2.0}, {1, 7.0}});
    TRVlp lp = md.copy_into(t.env);
    for (bool dual : {false, true}) {
        run(t.env, lp, dual);
        int st = 0;
        TRVlp c = TRVcloneprob(t.env, lp, &st);
        ASSERT_EQ(st, 0);
        double rhs[2], a = 0.0, lb[2], ub[2], obj[2];
        ASSERT_EQ(TRVgetrhs(t.env, c, rhs, 0, 1), 0);
        ASSERT_EQ(TRVgetcoef(t.env, c, 0, 0, &a), 0);
        ASSERT_EQ(TRVgetlb(t.env, c, lb, 0, 1), 0);
        ASSERT_EQ(TRVgetub(t.env, c, ub, 0, 1), 0);
        ASSERT_EQ(TRVgetobj(t.env, c, obj, 0, 1), 0);
        EXPECT_DOUBLE_EQ(rhs[0], 8.0);
        EXPECT_DOUBLE_EQ(rhs[1], 6.0);
        EXPECT_DOUBLE_EQ(a, 40.0);
        EXPECT_DOUBLE_EQ(ub[0], 10.0);
        EXPECT_DOUBLE_EQ(ub[1], 10.0);
        EXPECT_DOUBLE_EQ(obj[0], -1.0);
        run(t.env, c, !dual);
        Result r = result_of(t.env, c, md);
        EXPECT_EQ(r.stat, 1);
        EXPECT_EQ(r.kkt, "");
        double pi[2];
        ASSERT_EQ(TRVgetpi(t.env, c, pi, 0, 1), 0);
        /* both rows tight: y B = c gives y = (-6.7, -38) / 279.4 */
        EXPECT_NEAR(pi[0], -6.7 / 279.4, 1e-9);
        EXPECT_NEAR(pi[1], -38.0 / 279.4, 1e-9);
        TRVfreeprob(t.env, &c);
    }
    TRVfreeprob(t.env, &lp);
}

/* Crossed bounds, from the model or from TRVchgbds, make the model
 * infeasible by either method; mended, the model solves again from the
 * kept basis. */
TEST(CrossedBounds, InfeasibleByEitherMethod) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md;
    md.row('L', 4.0);
    md.col(-1.0, 3.0, 1.0, {{0, 1.0}});
    md.col(-1.0, 0.0, 2.0, {{0, 1.0}});
    for (bool dual : {false, true}) {
        TRVlp lp = md.copy_into(t.env);
        EXPECT_EQ(run(t.env, lp, dual), 2) << dual;
        int j = 0;
        char u = 'U';
        double v = 3.5;
        ASSERT_EQ(TRVchgbds(t.env, lp, 1, &j, &u, &v), 0);
        EXPECT_EQ(run(t.env, lp, dual), 1) << dual;
        double z = 0.0;
        ASSERT_EQ(TRVgetobjval(t.env, lp, &z), 0);
        EXPECT_NEAR(z, -4.0, 1e-9);
        /* through a change after a solve: 3.5 <= x0 <= 0.5 */
        v = 0.5;
        ASSERT_EQ(TRVchgbds(t.env, lp, 1, &j, &u, &v), 0);
        EXPECT_EQ(run(t.env, lp, dual), 2) << dual;
        EXPECT_EQ(run(t.env, lp, !dual), 2) << dual;
        TRVfreeprob(t.env, &lp);
    }
}

/* Models without columns, without rows, or without either solve to the
 * optimum 0 (or their constant) by each method. */
TEST(EmptyModel, EveryMethodSolvesIt) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model rows_only;
    rows_only.row('L', 1.0);
    rows_only.row('G', -2.0);
    rows_only.row('E', 0.0);
    Model cols_only;
    cols_only.col(1.0, 0.0, 4.0, {});
    cols_only.col(-2.0, -1.0, 3.0, {});
    Model none;
    struct Case {
        const Model *md;
        double z;
        const char *what;
    } cases[] = {{&rows_only, 0.0, "rows only"}, {&cols_only, -6.0, "columns only"},
                 {&none, 0.0, "nothing"}};
    for (const Case &c : cases)
        for (bool dual : {false, true}) {
            TRVlp lp = c.md->copy_into(t.env);
            ASSERT_NE(lp, nullptr) << c.what;
            EXPECT_EQ(run(t.env, lp, dual), 1) << c.what;
            Result r = result_of(t.env, lp, *c.md);
            EXPECT_NEAR(r.obj, c.z, 1e-12) << c.what;
            EXPECT_EQ(r.kkt, "") << c.what;
            EXPECT_EQ(run(t.env, lp, !dual), 1) << c.what << ", again";
            TRVfreeprob(t.env, &lp);
        }
}

/* A free column that the basis leaves nonbasic with a zero reduced cost is
 * optimal where it stands. */
TEST(WarmStart, FreeNonbasicColumnWithZeroReducedCost) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md;
    md.row('E', 1.0);
    md.col(1.0, 0.0, 4.0, {{0, 1.0}});
    md.col(0.0, -1e20, 1e20, {{0, 1.0}});
    md.col(0.0, -1e20, 1e20, {{0, -1.0}});
    TRVlp lp = md.copy_into(t.env);
    EXPECT_EQ(run(t.env, lp, false), 1) << "cold primal";
    expect_same(result_of(t.env, lp, md), Result{1, 0.0, ""}, "cold primal");
    TRVfreeprob(t.env, &lp);
    lp = md.copy_into(t.env);
    EXPECT_EQ(run(t.env, lp, true), 1);
    Basis b = basis_of(t.env, lp);
    EXPECT_EQ(run(t.env, lp, false), 1) << "primal after the dual";
    expect_same(result_of(t.env, lp, md), Result{1, 0.0, ""}, "primal after the dual");
    expect_same(from_copied_basis(t.env, md, b, false), Result{1, 0.0, ""},
                "primal from the dual's basis, copied");
    TRVfreeprob(t.env, &lp);
}

namespace {

std::string repro(const char *name) {
    return std::string(TRV_SOURCE_TESTS) + "/api/data/" + name;
}

}  // namespace

/* The primal from the basis where the dual proved infeasibility proves it
 * too, in a few dozen iterations, as a cold primal does. */
TEST(WarmStart, PrimalFromTheDualsInfeasibleEnd) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    int st = 0;
    TRVlp lp = TRVcreateprob(t.env, &st, "blend");
    ASSERT_EQ(TRVreadcopyprob(t.env, lp, repro("d-blend-stall.mps").c_str(), nullptr), 0);
    ASSERT_EQ(run(t.env, lp, true), 2);
    Basis b = basis_of(t.env, lp);
    EXPECT_EQ(run(t.env, lp, false), 2);
    EXPECT_LT(TRVgetitcnt(t.env, lp), 500);
    TRVlp fresh = TRVcreateprob(t.env, &st, "blend");
    ASSERT_EQ(TRVreadcopyprob(t.env, fresh, repro("d-blend-stall.mps").c_str(), nullptr), 0);
    ASSERT_EQ(TRVcopybase(t.env, fresh, b.cstat.data(), b.rstat.data()), 0);
    EXPECT_EQ(run(t.env, fresh, false), 2);
    EXPECT_LT(TRVgetitcnt(t.env, fresh), 500);
    TRVfreeprob(t.env, &fresh);
    TRVfreeprob(t.env, &lp);
}

/* The dual from the basis where the primal (steepest edge) proved
 * infeasibility ends infeasible too. */
TEST(WarmStart, DualFromThePrimalsInfeasibleEnd) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    int st = 0;
    TRVlp lp = TRVcreateprob(t.env, &st, "boeing2");
    ASSERT_EQ(TRVreadcopyprob(t.env, lp, repro("e-boeing2-dual9.mps").c_str(), nullptr), 0);
    TRVsetintparam(t.env, 1029, 2);
    ASSERT_EQ(run(t.env, lp, false), 2);
    TRVsetintparam(t.env, 1029, 0);
    Basis b = basis_of(t.env, lp);
    EXPECT_EQ(run(t.env, lp, true), 2);
    TRVlp fresh = TRVcreateprob(t.env, &st, "boeing2");
    ASSERT_EQ(TRVreadcopyprob(t.env, fresh, repro("e-boeing2-dual9.mps").c_str(), nullptr), 0);
    ASSERT_EQ(TRVcopybase(t.env, fresh, b.cstat.data(), b.rstat.data()), 0);
    EXPECT_EQ(run(t.env, fresh, true), 2);
    TRVfreeprob(t.env, &fresh);
    TRVfreeprob(t.env, &lp);
}

/* A coefficient change that makes the kept basis singular: the repair
 * may fix a variable for a while, but the run ends as a cold start. */
TEST(WarmStart, SingularKeptBasisAfterACoefficientChange) {
    Model a;
    a.objsen = -1;
    a.row('L', -530.0);
    a.row('L', 95.0);
    a.col(1.0, 0.0, 88.0, {{0, 5.0}});
    a.col(6.0, -50.0, 50.0, {{0, 10.0}});
    a.col(18.0, 0.0, 52.0, {{0, -2.0}, {1, 3.0}});
    coef_case(a, 1, 2, 0.0, "max 680.4");

    Model b; /* unbounded once x1 leaves its row */
    b.row('L', 4.0);
    b.row('L', 3.0);
    b.col(-1.0, 0.0, 1e20, {{0, 1.0}});
    b.col(-1.0, 0.0, 1e20, {{1, 1.0}});
    coef_case(b, 0, 0, 0.0, "unbounded");

    Model c; /* a range row loses its entry of the basic column */
    c.row('E', -2.0);
    c.row('R', -1.0, 2.0);
    c.col(3.0, -1.0, 1.0, {{0, -2.0}});
    c.col(4.0, -3.0, 2.0, {{0, 2.0}, {1, 5.0}});
    coef_case(c, 1, 1, 0.0, "range row");
}

/* A copied basis with two equal columns basic, and one with a basic
 * variable too many, start a run that ends as a cold one. */
TEST(WarmStart, CopiedBasisSingularOrOneTooMany) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md;
    md.row('G', 2.0);
    md.row('L', 5.0);
    md.row('G', 1.0);
    md.col(1.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}});
    md.col(2.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}});
    md.col(1.5, 0.0, 10.0, {{0, 1.0}, {2, 1.0}});
    for (bool dual : {false, true}) {
        Result want = cold(t.env, md, dual);
        ASSERT_EQ(want.stat, 1);
        Basis twins{{1, 1, 0}, {0, 1, 1}};
        expect_same(from_copied_basis(t.env, md, twins, dual), want, "two equal columns");
        Basis many{{1, 1, 1}, {1, 1, 1}};
        expect_same(from_copied_basis(t.env, md, many, dual), want, "all basic");
        /* the optimal basis of a model with one row more, that row's slack
         * nonbasic, less that row */
        Model big;
        big.row('G', 2.0);
        big.row('L', 5.0);
        big.row('G', 1.0);
        big.row('L', 1.5);
        big.col(1.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}, {3, 1.0}});
        big.col(2.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}});
        big.col(1.5, 0.0, 10.0, {{0, 1.0}, {2, 1.0}, {3, 1.0}});
        TRVlp lp = big.copy_into(t.env);
        ASSERT_EQ(run(t.env, lp, dual), 1);
        Basis b = basis_of(t.env, lp);
        TRVfreeprob(t.env, &lp);
        ASSERT_EQ(b.rstat[3], 0);
        b.rstat.pop_back();
        expect_same(from_copied_basis(t.env, md, b, dual), want, "a row less");
    }
}

namespace {

std::string netlib(const char *name) {
    return std::string(TRV_DATA_DIR) + "/netlib/" + name + ".mps.gz";
}

}  // namespace

/* A deletion keeps the stored basis, mapped: without the row of a basic
 * slack, or a nonbasic column, the optimal basis stays optimal and the
 * re-solve makes no pivot; without the row of a nonbasic slack the basis
 * has one basic variable too many, and the re-solve ends where a cold
 * start ends, in fewer iterations. */
TEST(WarmStart, DeletionKeepsTheBasis) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    for (const char *name : {"afiro", "boeing2"}) {
        std::string file = netlib(name);
        int st = 0;
        TRVlp probe = TRVcreateprob(t.env, &st, name);
        bool have = TRVreadcopyprob(t.env, probe, file.c_str(), nullptr) == 0;
        TRVfreeprob(t.env, &probe);
        if (!have) GTEST_SKIP() << file << " absent";
        for (bool dual : {false, true})
            for (int kind = 0; kind < 3; kind++) {
                std::string what = std::string(name) + (dual ? " dual" : " primal") +
                                   (kind == 0 ? ", basic slack's row" :
                                    kind == 1 ? ", nonbasic column" : ", nonbasic slack's row");
                TRVlp lp = TRVcreateprob(t.env, &st, name);
                ASSERT_EQ(TRVreadcopyprob(t.env, lp, file.c_str(), nullptr), 0);
                ASSERT_EQ(run(t.env, lp, dual), 1) << what;
                Basis b = basis_of(t.env, lp);
                int n = static_cast<int>(b.cstat.size()), m = static_cast<int>(b.rstat.size());
                int target = -1;
                for (int k = 0; k < (kind == 1 ? n : m) && target < 0; k++) {
                    int s = kind == 1 ? b.cstat[k] : b.rstat[k];
                    if ((kind == 0) == (s == 1)) target = k;
                }
                ASSERT_GE(target, 0) << what;
                if (kind == 1) {
                    ASSERT_EQ(TRVdelcols(t.env, lp, target, target), 0);
                    b.cstat.erase(b.cstat.begin() + target);
                } else {
                    ASSERT_EQ(TRVdelrows(t.env, lp, target, target), 0);
                    b.rstat.erase(b.rstat.begin() + target);
                }
                /* the stored basis reads back mapped */
                Basis kept = basis_of(t.env, lp);
                EXPECT_EQ(kept.cstat, b.cstat) << what;
                EXPECT_EQ(kept.rstat, b.rstat) << what;
                int stat = 0;
                TRVlp fresh = TRVcloneprob(t.env, lp, &stat);
                ASSERT_NE(fresh, nullptr);
                int cold_stat = run(t.env, fresh, dual);
                int cold_its = TRVgetitcnt(t.env, fresh);
                double cold_z = 0.0, z = 0.0;
                TRVgetobjval(t.env, fresh, &cold_z);
                TRVfreeprob(t.env, &fresh);
                EXPECT_EQ(run(t.env, lp, dual), cold_stat) << what;
                int its = TRVgetitcnt(t.env, lp);
                if (kind < 2) EXPECT_EQ(its, 0) << what;
                else EXPECT_LE(its, cold_its) << what;
                if (cold_stat == 1) {
                    TRVgetobjval(t.env, lp, &z);
                    EXPECT_NEAR(z, cold_z, 1e-7 * (1.0 + std::fabs(cold_z))) << what;
                }
                TRVfreeprob(t.env, &lp);
            }
    }
}

/* The dual norms kept with the basis belong to its matrix: they stay with
 * the deletion of a nonbasic column and go with that of a basic column or
 * of a row. */
TEST(WarmStart, DeletionKeepsTheNormsOnlyOfAnUnchangedBasis) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = random_lp(7, 12, 8);
    for (int kind = 0; kind < 4; kind++) {
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(run(t.env, lp, true), 1);
        Basis b = basis_of(t.env, lp);
        int n = static_cast<int>(b.cstat.size()), m = static_cast<int>(b.rstat.size());
        std::vector<double> norm(m);
        std::vector<int> head(m);
        int len = 0;
        ASSERT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 0);
        /* 0 a nonbasic column, 1 a basic column, 2 a basic slack's row,
         * 3 a nonbasic slack's row */
        int target = -1;
        bool want_basic = kind == 1 || kind == 2;
        for (int k = 0; k < (kind < 2 ? n : m) && target < 0; k++)
            if (((kind < 2 ? b.cstat[k] : b.rstat[k]) == 1) == want_basic) target = k;
        if (target < 0) continue;
        if (kind < 2) ASSERT_EQ(TRVdelcols(t.env, lp, target, target), 0);
        else ASSERT_EQ(TRVdelrows(t.env, lp, target, target), 0);
        int rc = TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len);
        EXPECT_EQ(rc, kind == 0 ? 0 : 1264) << kind;
        TRVfreeprob(t.env, &lp);
    }
}

namespace {

/* md without row i. */
Model without_row(const Model &md, int i) {
    Model out;
    out.objsen = md.objsen;
    for (int r = 0; r < md.nrows(); r++)
        if (r != i) out.row(md.sense[r], md.rhs[r], md.rngval[r]);
    for (int j = 0; j < md.ncols(); j++) {
        std::vector<std::pair<int, double>> e;
        for (int k = md.matbeg[j]; k < md.matbeg[j] + md.matcnt[j]; k++) {
            int r = md.matind[k];
            if (r != i) e.push_back({r > i ? r - 1 : r, md.matval[k]});
        }
        out.col(md.obj[j], md.lb[j], md.ub[j], e);
    }
    return out;
}

}  // namespace

/* The optimal basis of a model, given by TRVcopybase to the model without
 * a row whose slack was nonbasic: one basic variable too many, and on
 * these seeds the basic variables chosen by index made a singular basis
 * whose repair ended the run infeasible, unbounded or non-optimal. */
TEST(WarmStart, CopiedBasisWithABasicVariableTooMany) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    for (unsigned seed : {5u, 11u, 21u, 29u}) {
        Model md = random_lp(seed, 3 + seed % 6, 3 + seed % 4, seed % 2);
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(run(t.env, lp, true), 1) << seed;
        Basis b = basis_of(t.env, lp);
        TRVfreeprob(t.env, &lp);
        for (int i = 0; i < md.nrows(); i++) {
            if (b.rstat[i] == 1) continue;
            Model less = without_row(md, i);
            Basis bl = b;
            bl.rstat.erase(bl.rstat.begin() + i);
            for (bool dual : {false, true}) {
                std::string what = "seed " + std::to_string(seed) + " row " + std::to_string(i) +
                                   (dual ? " dual" : " primal");
                expect_same(from_copied_basis(t.env, less, bl, dual), cold(t.env, less, dual), what);
            }
        }
    }
}
