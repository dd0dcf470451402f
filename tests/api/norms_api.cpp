/* Pricing norms kept with the stored basis: the primal steepest-edge
 * weights that a primal run leaves and the dual norms, read back, given
 * by the caller and dropped. A get and copy onto a fresh copy of the
 * problem round-trips bit for bit and restarts without a pivot; the norms
 * outlive a change of bounds but not of the matrix or of the basis; every
 * refusal has its code and text and changes nothing. */
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"

namespace {

struct PNorms {
    std::vector<double> c, r;
    int len = -1;
};

int get_pnorms(TestEnv &t, TRVlp lp, PNorms &p) {
    p.c.assign(TRVgetnumcols(t.env, lp), -1.0);
    p.r.assign(TRVgetnumrows(t.env, lp), -1.0);
    return TRVgetpnorms(t.env, lp, p.c.data(), p.r.data(), &p.len);
}

bool has(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

/* A random LP of every row kind, solved to optimality by the primal with
 * steepest edge from exact norms; null when the seed gives no optimum. */
TRVlp solved_steep(TestEnv &t, const Model &md) {
    TRVlp lp = md.copy_into(t.env);
    if (lp == nullptr || TRVprimopt(t.env, lp) != 0 || TRVgetstat(t.env, lp) != 1)
        TRVfreeprob(t.env, &lp);
    return lp;
}

struct Steep : ::testing::Test {
    TestEnv t;
    void SetUp() override {
        TRVsetintparam(t.env, 1019, 0);
        TRVsetintparam(t.env, 1029, 2);
    }
};

} // namespace

TEST_F(Steep, PrimalNormsRoundTripAndRestartWithoutPivots) {
    int tried = 0;
    for (unsigned seed = 41; seed <= 52; seed++) {
        Model md = random_lp(seed, 24, 16, seed % 2 == 0);
        TRVlp lp = solved_steep(t, md);
        if (lp == nullptr) continue;
        tried++;
        int n = md.ncols(), m = md.nrows();
        PNorms p;
        ASSERT_EQ(get_pnorms(t, lp, p), 0) << "seed " << seed;
        EXPECT_EQ(p.len, n);
        std::vector<int> cstat(n), rstat(m);
        ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
        for (int j = 0; j < n; j++) {
            EXPECT_GT(p.c[j], 0.0);
            if (cstat[j] == 1) {
                EXPECT_EQ(p.c[j], 1.0);
            }
        }
        for (int i = 0; i < m; i++) {
            EXPECT_GT(p.r[i], 0.0);
            if (md.sense[i] == 'E') {
                EXPECT_EQ(p.r[i], 1.0);
            }
        }
        TRVlp fresh = md.copy_into(t.env);
        ASSERT_EQ(TRVcopybase(t.env, fresh, cstat.data(), rstat.data()), 0);
        ASSERT_EQ(TRVcopypnorms(t.env, fresh, p.c.data(), p.r.data(), n), 0);
        PNorms q;
        ASSERT_EQ(get_pnorms(t, fresh, q), 0);
        EXPECT_EQ(q.c, p.c);
        EXPECT_EQ(q.r, p.r);
        TRVsetintparam(t.env, 1019, 1);
        t.clear();
        ASSERT_EQ(TRVprimopt(t.env, fresh), 0);
        TRVsetintparam(t.env, 1019, 0);
        EXPECT_EQ(TRVgetitcnt(t.env, fresh), 0) << "seed " << seed;
        EXPECT_TRUE(has(t.res, "Reinitializing primal norms . . .\nComputed 0 new norms.\n"))
            << t.res;
        EXPECT_FALSE(has(t.res, "Initializing primal norms")) << t.res;
        /* without a pivot the run hands back the weights it was given:
         * the stored form maps every column and row onto itself */
        ASSERT_EQ(get_pnorms(t, fresh, q), 0);
        EXPECT_EQ(q.c, p.c);
        EXPECT_EQ(q.r, p.r);
        TRVfreeprob(t.env, &fresh);
        TRVfreeprob(t.env, &lp);
    }
    EXPECT_GE(tried, 6);
}

TEST_F(Steep, WarmResolveAfterABoundChangeStartsFromTheKeptWeights) {
    int tried = 0;
    for (unsigned seed = 61; seed <= 70; seed++) {
        Model md = random_lp(seed, 30, 20);
        TRVlp lp = solved_steep(t, md);
        if (lp == nullptr) continue;
        int n = md.ncols();
        std::vector<double> x(n);
        std::vector<int> cstat(n), rstat(md.nrows());
        ASSERT_EQ(TRVgetx(t.env, lp, x.data(), 0, n - 1), 0);
        ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
        int j = 0;
        while (j < n && (cstat[j] != 1 || x[j] - md.lb[j] < 1e-3)) j++;
        if (j == n) {
            TRVfreeprob(t.env, &lp);
            continue;
        }
        tried++;
        /* the basic column loses the top of its range */
        double ub = 0.5 * (x[j] + md.lb[j]);
        char u = 'U';
        ASSERT_EQ(TRVchgbds(t.env, lp, 1, &j, &u, &ub), 0);
        PNorms p;
        EXPECT_EQ(get_pnorms(t, lp, p), 0);
        TRVsetintparam(t.env, 1019, 1);
        t.clear();
        Solution s;
        ASSERT_EQ(solve_primal(t.env, lp, s), 0);
        TRVsetintparam(t.env, 1019, 0);
        EXPECT_TRUE(has(t.res, "Reinitializing primal norms . . .\nComputed 0 new norms.\n"))
            << t.res;
        Model changed = md;
        changed.ub[j] = ub;
        Solution cold;
        TRVlp ref = changed.copy_into(t.env);
        ASSERT_EQ(solve_primal(t.env, ref, cold), 0);
        ASSERT_EQ(s.stat, cold.stat) << "seed " << seed;
        if (s.stat == 1) {
            EXPECT_EQ(check_kkt(changed, s), "") << "seed " << seed;
            EXPECT_NEAR(s.obj, cold.obj, 1e-7 * (1.0 + std::fabs(cold.obj)));
        }
        TRVfreeprob(t.env, &ref);
        TRVfreeprob(t.env, &lp);
    }
    EXPECT_GE(tried, 5);
}

TEST_F(Steep, NormsOutliveBoundsAndCostsButNotTheMatrixOrAnotherBasis) {
    Model md = random_lp(43, 20, 12);
    int n = md.ncols(), m = md.nrows(), zero = 0;
    double v = md.lb[0] - 1.0, c = 3.0;
    char l = 'L';
    PNorms p;
    std::vector<int> cstat(n), rstat(m);

    TRVlp lp = solved_steep(t, md);
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVchgbds(t.env, lp, 1, &zero, &l, &v), 0);
    ASSERT_EQ(TRVchgobj(t.env, lp, 1, &zero, &c), 0);
    EXPECT_EQ(get_pnorms(t, lp, p), 0);
    t.clear();
    ASSERT_EQ(TRVchgcoef(t.env, lp, 0, 0, 7.5), 0);
    EXPECT_EQ(get_pnorms(t, lp, p), 1264);
    EXPECT_EQ(t.err, "TORVA Error  1264: No norms available.\n");
    TRVfreeprob(t.env, &lp);

    /* a basis of the caller's, or of a dual run, owns no primal weights */
    lp = solved_steep(t, md);
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    ASSERT_EQ(TRVcopybase(t.env, lp, cstat.data(), rstat.data()), 0);
    EXPECT_EQ(get_pnorms(t, lp, p), 1264);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    EXPECT_EQ(get_pnorms(t, lp, p), 0);
    ASSERT_EQ(TRVchgbds(t.env, lp, 1, &zero, &l, &v), 0);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_EQ(get_pnorms(t, lp, p), 1264);
    /* partial pricing keeps none either */
    TRVsetintparam(t.env, 1029, 0);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    EXPECT_EQ(get_pnorms(t, lp, p), 1264);
    TRVfreeprob(t.env, &lp);
}

TEST_F(Steep, DualNormsRoundTripAndMarkLikeThePrimal) {
    TRVsetintparam(t.env, 1009, 2);
    Model md = random_lp(47, 22, 14);
    int n = md.ncols(), m = md.nrows(), len = -1;
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    ASSERT_EQ(TRVgetstat(t.env, lp), 1);
    std::vector<double> norm(m);
    std::vector<int> head(m), cstat(n), rstat(m);
    ASSERT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 0);
    ASSERT_EQ(len, m);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    for (int how = 0; how < 2; how++) {
        TRVlp fresh = md.copy_into(t.env);
        if (how == 0) {
            ASSERT_EQ(TRVcopybase(t.env, fresh, cstat.data(), rstat.data()), 0);
            ASSERT_EQ(TRVcopydnorms(t.env, fresh, norm.data(), head.data(), m), 0);
        } else {
            ASSERT_EQ(TRVcopybasednorms(t.env, fresh, cstat.data(), rstat.data(), norm.data()),
                      0);
        }
        std::vector<double> n2(m);
        std::vector<int> h2(m);
        ASSERT_EQ(TRVgetdnorms(t.env, fresh, n2.data(), h2.data(), &len), 0);
        EXPECT_EQ(n2, norm);
        EXPECT_EQ(h2, head);
        TRVsetintparam(t.env, 1019, 1);
        t.clear();
        ASSERT_EQ(TRVdualopt(t.env, fresh), 0);
        TRVsetintparam(t.env, 1019, 0);
        EXPECT_EQ(TRVgetitcnt(t.env, fresh), 0);
        EXPECT_TRUE(has(t.res, "Reinitializing dual norms . . .\nComputed 0 new norms.\n"))
            << t.res;
        TRVfreeprob(t.env, &fresh);
    }
    /* bounds keep them, a matrix entry marks them */
    int zero = 0;
    double v = md.ub[0] + 1.0;
    char u = 'U';
    ASSERT_EQ(TRVchgbds(t.env, lp, 1, &zero, &u, &v), 0);
    EXPECT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 0);
    ASSERT_EQ(TRVchgcoef(t.env, lp, 1, 1, -2.5), 0);
    t.clear();
    EXPECT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 1264);
    EXPECT_EQ(t.err, "TORVA Error  1264: No norms available.\n");
    TRVfreeprob(t.env, &lp);
}

TEST_F(Steep, RefusalsHaveTheirCodesAndChangeNothing) {
    Model md = small_model(); /* rows 'L', 'G', 'E', 'R' */
    int n = md.ncols(), m = md.nrows();
    TRVlp lp = md.copy_into(t.env);
    PNorms p;
    std::vector<double> cn(n, 2.0), rn(m, 3.0), dn(m, 4.0);
    std::vector<int> head(m), cstat(n), rstat(m);
    auto err = [&](int code, const std::string &text) {
        return "TORVA Error  " + std::to_string(code) + ": " + text + ".\n";
    };
    t.clear();
    EXPECT_EQ(get_pnorms(t, lp, p), 1262);
    EXPECT_EQ(TRVcopypnorms(t.env, lp, cn.data(), rn.data(), n), 1262);
    EXPECT_EQ(TRVcopydnorms(t.env, lp, dn.data(), head.data(), m), 1262);
    EXPECT_EQ(t.err, err(1262, "No basis exists") + err(1262, "No basis exists") +
                         err(1262, "No basis exists"));

    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    PNorms kept;
    ASSERT_EQ(get_pnorms(t, lp, kept), 0);
    struct Case {
        int code;
        std::string text;
        std::function<int()> call;
    };
    double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> zero_c = cn, nan_r = rn;
    zero_c[1] = 0.0;
    nan_r[2] = nan;
    int nb = 0; /* a nonbasic column or row, and the basic variables */
    while (nb < n && cstat[nb] == 1) nb++;
    for (int i = 0; nb == n && i < m; i++)
        if (rstat[i] != 1) nb = -i - 1;
    ASSERT_NE(nb, n);
    int k = 0;
    for (int j = 0; j < n; j++)
        if (cstat[j] == 1) head[k++] = j;
    for (int i = 0; i < m; i++)
        if (rstat[i] == 1) head[k++] = -i - 1;
    ASSERT_EQ(k, m);
    std::vector<int> off = head, col_out = head, row_out = head;
    off[0] = nb;
    col_out[1] = n;
    row_out[1] = -m - 1;
    std::vector<double> neg = dn;
    neg[m - 1] = -1.0;
    std::vector<Case> cases = {
        {1004, "Null pointer for required data",
         [&] { return TRVgetpnorms(t.env, lp, cn.data(), nullptr, &k); }},
        {1004, "Null pointer for required data",
         [&] { return TRVcopypnorms(t.env, lp, nullptr, rn.data(), n); }},
        {1207, "Insufficient array length",
         [&] { return TRVcopypnorms(t.env, lp, cn.data(), rn.data(), n - 1); }},
        {1208, "Array length too long",
         [&] { return TRVcopypnorms(t.env, lp, cn.data(), rn.data(), n + 1); }},
        {1003, "Bad argument to Callable Library function",
         [&] { return TRVcopypnorms(t.env, lp, zero_c.data(), rn.data(), n); }},
        {1003, "Bad argument to Callable Library function",
         [&] { return TRVcopypnorms(t.env, lp, cn.data(), nan_r.data(), n); }},
        {1004, "Null pointer for required data",
         [&] { return TRVcopydnorms(t.env, lp, dn.data(), nullptr, m); }},
        {1207, "Insufficient array length",
         [&] { return TRVcopydnorms(t.env, lp, dn.data(), head.data(), m - 1); }},
        {1208, "Array length too long",
         [&] { return TRVcopydnorms(t.env, lp, dn.data(), head.data(), m + 1); }},
        {1251, "Index must correspond to a basic variable",
         [&] { return TRVcopydnorms(t.env, lp, dn.data(), off.data(), m); }},
        {1201, "Column index " + std::to_string(n) + " out of range",
         [&] { return TRVcopydnorms(t.env, lp, dn.data(), col_out.data(), m); }},
        {1203, "Row index " + std::to_string(m) + " out of range",
         [&] { return TRVcopydnorms(t.env, lp, dn.data(), row_out.data(), m); }},
        {1003, "Bad argument to Callable Library function",
         [&] { return TRVcopydnorms(t.env, lp, neg.data(), head.data(), m); }},
        {1004, "Null pointer for required data",
         [&] { return TRVcopybasednorms(t.env, lp, cstat.data(), rstat.data(), nullptr); }},
        {1003, "Bad argument to Callable Library function",
         [&] { return TRVcopybasednorms(t.env, lp, cstat.data(), rstat.data(), neg.data()); }},
    };
    for (size_t c = 0; c < cases.size(); c++) {
        t.clear();
        EXPECT_EQ(cases[c].call(), cases[c].code) << "case " << c;
        EXPECT_EQ(t.err, err(cases[c].code, cases[c].text)) << "case " << c;
    }
    /* nothing moved: the kept weights, the basis, and no dual norms */
    PNorms after;
    ASSERT_EQ(get_pnorms(t, lp, after), 0);
    EXPECT_EQ(after.c, kept.c);
    EXPECT_EQ(after.r, kept.r);
    std::vector<int> c2(n), r2(m);
    ASSERT_EQ(TRVgetbase(t.env, lp, c2.data(), r2.data()), 0);
    EXPECT_EQ(c2, cstat);
    EXPECT_EQ(r2, rstat);
    t.clear();
    EXPECT_EQ(TRVgetdnorms(t.env, lp, dn.data(), head.data(), &k), 1264);

    /* the kill functions drop what there is, silently */
    EXPECT_EQ(TRVcopydnorms(t.env, lp, dn.data(), head.data(), m), 0);
    EXPECT_EQ(TRVkillpnorms(lp), 0);
    EXPECT_EQ(TRVkilldnorms(lp), 0);
    EXPECT_EQ(TRVkillpnorms(lp), 0);
    t.clear();
    EXPECT_EQ(get_pnorms(t, lp, p), 1264);
    EXPECT_EQ(TRVgetdnorms(t.env, lp, dn.data(), head.data(), &k), 1264);
    EXPECT_EQ(TRVgetbase(t.env, lp, c2.data(), r2.data()), 0);

    /* null and stale handles */
    TRVlp stale = lp;
    TRVfreeprob(t.env, &lp);
    t.clear();
    EXPECT_EQ(TRVkillpnorms(nullptr), 1009);
    EXPECT_EQ(TRVkilldnorms(stale), 1009);
    EXPECT_EQ(TRVkillpnorms(stale), 1009);
    EXPECT_EQ(t.err, "");
    EXPECT_EQ(TRVgetpnorms(t.env, stale, cn.data(), rn.data(), &k), 1009);
    EXPECT_EQ(TRVcopypnorms(t.env, stale, cn.data(), rn.data(), n), 1009);
    EXPECT_EQ(TRVcopydnorms(t.env, stale, dn.data(), head.data(), m), 1009);
    EXPECT_EQ(TRVcopybasednorms(t.env, stale, cstat.data(), rstat.data(), dn.data()), 1009);
    EXPECT_EQ(t.err, err(1009, "No problem exists") + err(1009, "No problem exists") +
                         err(1009, "No problem exists") + err(1009, "No problem exists"));
    EXPECT_EQ(TRVgetpnorms(nullptr, stale, cn.data(), rn.data(), &k), 1002);
    EXPECT_EQ(TRVcopypnorms(nullptr, stale, cn.data(), rn.data(), n), 1002);
}

TEST_F(Steep, NormsForABasisTheModelOutgrew) {
    Model md = small_model();
    int n = md.ncols(), m = md.nrows();
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    /* a new row: its slack enters basic, so it may carry a dual norm */
    int beg = 0, ind[] = {0, 2};
    double val[] = {1.0, 1.0}, rhs = 50.0;
    char sense = 'L';
    ASSERT_EQ(TRVaddrows(t.env, lp, 0, 1, 2, &rhs, &sense, &beg, ind, val, nullptr, nullptr), 0);
    std::vector<int> cstat(n), rstat(m + 1);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    EXPECT_EQ(rstat[m], 1);
    std::vector<double> cn(n, 2.0), rn(m + 1, 3.0);
    ASSERT_EQ(TRVcopypnorms(t.env, lp, cn.data(), rn.data(), n), 0);
    PNorms p;
    ASSERT_EQ(get_pnorms(t, lp, p), 0);
    EXPECT_EQ(p.c, cn);
    EXPECT_EQ(p.r, rn);
    std::vector<int> c2(n), r2(m + 1);
    ASSERT_EQ(TRVgetbase(t.env, lp, c2.data(), r2.data()), 0);
    EXPECT_EQ(c2, cstat);
    EXPECT_EQ(r2, rstat);
    Solution s;
    ASSERT_EQ(solve_primal(t.env, lp, s), 0);
    TRVfreeprob(t.env, &lp);
}
