/* Reading a solved model back: row activities against the matrix and x,
 * the argument checks of the solution getters, and the stored basis with
 * its statuses against the values of the solution. */
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"

namespace {

/* A x from the public matrix getter and the primal values. */
std::vector<double> activity_by_hand(TRVenv env, TRVlp lp) {
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    int nz = 0, surplus = 0;
    std::vector<int> beg(n), ind(TRVgetnumnz(env, lp) + 1);
    std::vector<double> val(ind.size()), x(n), ax(m, 0.0);
    EXPECT_EQ(TRVgetcols(env, lp, &nz, beg.data(), ind.data(), val.data(),
                         static_cast<int>(ind.size()), &surplus, 0, n - 1), 0);
    EXPECT_EQ(TRVgetx(env, lp, x.data(), 0, n - 1), 0);
    for (int j = 0; j < n; j++)
        for (int k = beg[j]; k < (j + 1 < n ? beg[j + 1] : nz); k++) ax[ind[k]] += val[k] * x[j];
    return ax;
}

void expect_activity(TRVenv env, TRVlp lp, const char *what) {
    int m = TRVgetnumrows(env, lp);
    std::vector<double> want = activity_by_hand(env, lp), ax(m, -7.0), rhs(m), slack(m);
    ASSERT_EQ(TRVgetax(env, lp, ax.data(), 0, m - 1), 0) << what;
    ASSERT_EQ(TRVgetrhs(env, lp, rhs.data(), 0, m - 1), 0) << what;
    ASSERT_EQ(TRVgetslack(env, lp, slack.data(), 0, m - 1), 0) << what;
    for (int i = 0; i < m; i++) {
        double tol = 1e-9 * (1.0 + std::fabs(want[i]));
        EXPECT_NEAR(ax[i], want[i], tol) << what << " row " << i;
        EXPECT_NEAR(ax[i], rhs[i] - slack[i], 1e-7 * (1.0 + std::fabs(rhs[i]))) << what << " row " << i;
    }
    /* a sub-range lands at the start of the array */
    if (m >= 3) {
        double two[2] = {-7.0, -7.0};
        ASSERT_EQ(TRVgetax(env, lp, two, 1, 2), 0);
        EXPECT_NEAR(two[0], want[1], 1e-9 * (1.0 + std::fabs(want[1])));
        EXPECT_NEAR(two[1], want[2], 1e-9 * (1.0 + std::fabs(want[2])));
    }
}

Model ranged_max() {
    Model md; /* max x + y, 2 <= x + 2y <= 6 as a ranged row, x - y <= 1 */
    md.objsen = -1;
    md.row('R', 2.0, 4.0);
    md.row('L', 1.0);
    md.col(1.0, 0.0, 10.0, {{0, 1.0}, {1, 1.0}});
    md.col(1.0, 0.0, 10.0, {{0, 2.0}, {1, -1.0}});
    return md;
}

/* min 2x + 3y + 1.5z over 'G', 'L', 'E' and a ranged row */
Model mixed_min() {
    Model md;
    md.row('G', 8.0);
    md.row('L', 20.0);
    md.row('E', 5.0);
    md.row('R', 3.0, 4.0);
    md.col(2.0, 0.0, 1e20, {{0, 2.0}, {1, 1.0}, {3, 1.0}});
    md.col(3.0, 0.0, 1e20, {{0, 1.0}, {1, 2.0}, {2, 1.0}});
    md.col(1.5, -1.0, 4.0, {{0, 1.0}, {2, 2.0}, {3, -1.0}});
    return md;
}

} // namespace

TEST(SolutionActivity, MatchesTheMatrixTimesX) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model small = mixed_min(), ranged = ranged_max();
    struct Case {
        const Model *md;
        bool dual;
        const char *what;
    } cases[] = {{&small, false, "min primal"}, {&small, true, "min dual"},
                 {&ranged, false, "max ranged primal"}, {&ranged, true, "max ranged dual"}};
    for (const Case &c : cases) {
        TRVlp lp = c.md->copy_into(t.env);
        ASSERT_NE(lp, nullptr);
        ASSERT_EQ(c.dual ? TRVdualopt(t.env, lp) : TRVprimopt(t.env, lp), 0) << c.what;
        ASSERT_EQ(TRVgetstat(t.env, lp), 1) << c.what;
        expect_activity(t.env, lp, c.what);
        TRVfreeprob(t.env, &lp);
    }
    /* the ranged row binds at its upper end: x = 8/3, y = 5/3 */
    TRVlp lp = ranged.copy_into(t.env);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    double ax[2];
    ASSERT_EQ(TRVgetax(t.env, lp, ax, 0, 1), 0);
    EXPECT_NEAR(ax[0], 6.0, 1e-9);
    EXPECT_NEAR(ax[1], 1.0, 1e-9);
    TRVfreeprob(t.env, &lp);
}

TEST(SolutionActivity, RandomModelsScaledAndNot) {
    for (int scaling : {-1, 0, 1}) {
        TestEnv t;
        TRVsetintparam(t.env, 1019, 0);
        TRVsetintparam(t.env, 1034, scaling);
        int solved = 0;
        for (unsigned seed = 1; seed <= 6; seed++) {
            Model md = random_lp(seed, 12, 8, seed % 2 == 0);
            TRVlp lp = md.copy_into(t.env);
            ASSERT_NE(lp, nullptr);
            ASSERT_EQ(TRVlpopt(t.env, lp), 0);
            if (TRVgetstat(t.env, lp) != 1) {
                TRVfreeprob(t.env, &lp);
                continue;
            }
            expect_activity(t.env, lp, ("seed " + std::to_string(seed)).c_str());
            TRVfreeprob(t.env, &lp);
            solved++;
        }
        EXPECT_GE(solved, 3);
    }
}

TEST(SolutionActivity, ArgumentChecks) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = small_model();
    TRVlp lp = md.copy_into(t.env);
    double ax[4] = {5.0, 5.0, 5.0, 5.0};
    /* no solution yet */
    t.clear();
    EXPECT_EQ(TRVgetax(t.env, lp, ax, 0, 3), 1217);
    EXPECT_EQ(t.err, "TORVA Error  1217: No solution exists.\n");
    EXPECT_EQ(ax[0], 5.0);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    t.clear();
    EXPECT_EQ(TRVgetax(t.env, lp, ax, 0, 4), 1200);
    EXPECT_EQ(t.err,
              "TORVA Error  1206: TRVgetax: 'end' value 4 is greater than 3.\n"
              "TORVA Error  1200: Index is outside range of valid values.\n");
    t.clear();
    EXPECT_EQ(TRVgetax(t.env, lp, ax, -2, 1), 1200);
    EXPECT_EQ(t.err,
              "TORVA Error  1205: TRVgetax: 'begin' value -2 is less than 0.\n"
              "TORVA Error  1200: Index is outside range of valid values.\n");
    EXPECT_EQ(TRVgetax(t.env, lp, ax, 2, 1), 1200);
    EXPECT_EQ(TRVgetax(t.env, lp, nullptr, 0, 3), 1004);
    EXPECT_EQ(TRVgetax(t.env, nullptr, ax, 0, 3), 1009);
    EXPECT_EQ(TRVgetax(nullptr, lp, ax, 0, 3), 1002);
    EXPECT_EQ(ax[0], 5.0); /* nothing written on a failure */
    /* a change of the matrix drops the solution */
    ASSERT_EQ(TRVchgcoef(t.env, lp, 0, 0, 2.0), 0);
    EXPECT_EQ(TRVgetax(t.env, lp, ax, 0, 3), 1217);
    TRVfreeprob(t.env, &lp);
}

namespace {

/* The basis read back has m basic variables, and every nonbasic one sits
 * at the bound its status names. */
void expect_basis_fits_x(TRVenv env, TRVlp lp, const char *what) {
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    std::vector<int> cstat(n, -9), rstat(m, -9);
    ASSERT_EQ(TRVcangetbase(env, lp), 1) << what;
    ASSERT_EQ(TRVgetbase(env, lp, cstat.data(), rstat.data()), 0) << what;
    std::vector<double> x(n), lb(n), ub(n), ax(m), rhs(m), rng(m, 0.0);
    std::vector<char> sense(m);
    ASSERT_EQ(TRVgetx(env, lp, x.data(), 0, n - 1), 0);
    ASSERT_EQ(TRVgetlb(env, lp, lb.data(), 0, n - 1), 0);
    ASSERT_EQ(TRVgetub(env, lp, ub.data(), 0, n - 1), 0);
    ASSERT_EQ(TRVgetax(env, lp, ax.data(), 0, m - 1), 0);
    ASSERT_EQ(TRVgetrhs(env, lp, rhs.data(), 0, m - 1), 0);
    ASSERT_EQ(TRVgetsense(env, lp, sense.data(), 0, m - 1), 0);
    TRVgetrngval(env, lp, rng.data(), 0, m - 1); /* 1216 without ranges */
    int basic = 0;
    const double tol = 1e-7;
    for (int j = 0; j < n; j++) {
        double s = tol * (1.0 + std::fabs(x[j]));
        switch (cstat[j]) {
        case 0: EXPECT_NEAR(x[j], lb[j], s) << what << " column " << j; break;
        case 2: EXPECT_NEAR(x[j], ub[j], s) << what << " column " << j; break;
        case 3:
            EXPECT_EQ(x[j], 0.0) << what << " column " << j;
            EXPECT_LE(lb[j], -1e20);
            EXPECT_GE(ub[j], 1e20);
            break;
        case 1:
            basic++;
            EXPECT_GE(x[j], lb[j] - s) << what << " column " << j;
            EXPECT_LE(x[j], ub[j] + s) << what << " column " << j;
            break;
        default: ADD_FAILURE() << what << " column " << j << " status " << cstat[j];
        }
    }
    for (int i = 0; i < m; i++) {
        double s = tol * (1.0 + std::fabs(rhs[i]));
        double lo = rhs[i], hi = rhs[i];
        if (sense[i] == 'R') lo += std::min(0.0, rng[i]), hi += std::max(0.0, rng[i]);
        if (rstat[i] == 1) {
            basic++;
            continue;
        }
        if (rstat[i] == 2) {
            EXPECT_EQ(sense[i], 'R') << what << " row " << i;
            EXPECT_NEAR(ax[i], hi, s) << what << " row " << i;
        } else {
            ASSERT_EQ(rstat[i], 0) << what << " row " << i;
            EXPECT_NEAR(ax[i], lo, s) << what << " row " << i;
        }
    }
    EXPECT_EQ(basic, m) << what;
}

} // namespace

TEST(SolutionBasis, StatusesAgreeWithTheSolution) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model mixed = mixed_min(), ranged = ranged_max();
    Model negrange = ranged_max(); /* the same row given from its upper end */
    negrange.rhs[0] = 6.0, negrange.rngval[0] = -4.0;
    for (const Model *md : {&mixed, &ranged, &negrange})
        for (bool dual : {false, true}) {
            TRVlp lp = md->copy_into(t.env);
            ASSERT_NE(lp, nullptr);
            ASSERT_EQ(dual ? TRVdualopt(t.env, lp) : TRVprimopt(t.env, lp), 0);
            ASSERT_EQ(TRVgetstat(t.env, lp), 1);
            expect_basis_fits_x(t.env, lp, dual ? "dual" : "primal");
            TRVfreeprob(t.env, &lp);
        }
    /* the ranged row binds at its upper end either way it is given */
    for (const Model *md : {&ranged, &negrange}) {
        TRVlp lp = md->copy_into(t.env);
        ASSERT_EQ(TRVprimopt(t.env, lp), 0);
        int rstat[2] = {-1, -1};
        ASSERT_EQ(TRVgetbase(t.env, lp, nullptr, rstat), 0);
        EXPECT_EQ(rstat[0], 2);
        TRVfreeprob(t.env, &lp);
    }
    for (unsigned seed = 11; seed <= 18; seed++) {
        Model md = random_lp(seed, 10, 7, seed % 2 == 1);
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(TRVlpopt(t.env, lp), 0);
        if (TRVgetstat(t.env, lp) == 1)
            expect_basis_fits_x(t.env, lp, ("seed " + std::to_string(seed)).c_str());
        TRVfreeprob(t.env, &lp);
    }
}

TEST(SolutionBasis, KeptAcrossBoundChangesAndGrowth) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = mixed_min();
    TRVlp lp = md.copy_into(t.env);
    int cstat[4], rstat[5];
    EXPECT_EQ(TRVcangetbase(t.env, lp), 0);
    t.clear();
    EXPECT_EQ(TRVgetbase(t.env, lp, cstat, rstat), 1262);
    EXPECT_EQ(t.err, "TORVA Error  1262: No basis exists.\n");
    EXPECT_EQ(TRVgetbase(t.env, nullptr, cstat, rstat), 1009);
    EXPECT_EQ(TRVgetbase(nullptr, lp, cstat, rstat), 1002);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    EXPECT_EQ(TRVgetbase(t.env, lp, nullptr, nullptr), 0);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat, rstat), 0);
    std::vector<int> c0(cstat, cstat + 3), r0(rstat, rstat + 4);
    /* a bound change keeps the basis */
    int j = 2;
    char lu = 'U';
    double bd = 3.5;
    ASSERT_EQ(TRVchgbds(t.env, lp, 1, &j, &lu, &bd), 0);
    EXPECT_EQ(TRVgetstat(t.env, lp), 0);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat, rstat), 0);
    EXPECT_EQ(std::vector<int>(cstat, cstat + 3), c0);
    EXPECT_EQ(std::vector<int>(rstat, rstat + 4), r0);
    /* a new column enters nonbasic at its finite bound, a new row with its
     * slack basic */
    double lb = -1e20, ub = 2.0;
    ASSERT_EQ(TRVnewcols(t.env, lp, 1, nullptr, &lb, &ub, nullptr, nullptr), 0);
    double r = 1.0;
    char s = 'L';
    ASSERT_EQ(TRVnewrows(t.env, lp, 1, &r, &s, nullptr, nullptr), 0);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat, rstat), 0);
    EXPECT_EQ(std::vector<int>(cstat, cstat + 3), c0);
    EXPECT_EQ(cstat[3], 2);
    EXPECT_EQ(rstat[4], 1);
    TRVfreeprob(t.env, &lp);
}

TEST(SolutionBasis, DualNormsOfTheKeptBasis) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = mixed_min();
    TRVlp lp = md.copy_into(t.env);
    int m = md.nrows(), n = md.ncols(), len = -1;
    std::vector<double> norm(m, -1.0);
    std::vector<int> head(m), cstat(n), rstat(m);
    t.clear();
    EXPECT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 1262);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    t.clear();
    EXPECT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 1264);
    EXPECT_EQ(t.err, "TORVA Error  1264: No norms available.\n");
    EXPECT_EQ(TRVgetbasednorms(t.env, lp, cstat.data(), rstat.data(), norm.data()), 1264);
    /* steepest edge in the dual leaves norms with its basis */
    TRVsetintparam(t.env, 1009, 2);
    TRVsetintparam(t.env, 1001, 0);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    ASSERT_EQ(TRVgetdnorms(t.env, lp, norm.data(), head.data(), &len), 0);
    EXPECT_EQ(len, m);
    ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
    std::vector<double> dn(m, -1.0);
    std::vector<int> c2(n), r2(m);
    ASSERT_EQ(TRVgetbasednorms(t.env, lp, c2.data(), r2.data(), dn.data()), 0);
    EXPECT_EQ(c2, cstat);
    EXPECT_EQ(r2, rstat);
    EXPECT_EQ(dn, norm);
    int prev = -1 - m - 1;
    for (int k = 0; k < len; k++) {
        EXPECT_GT(norm[k], 0.0) << k;
        int h = head[k];
        if (h >= 0) EXPECT_EQ(cstat[h], 1) << k;
        else EXPECT_EQ(rstat[-h - 1], 1) << k;
        /* columns by index, then rows by index */
        int key = h >= 0 ? h : n - h;
        EXPECT_GT(key, prev);
        prev = key;
    }
    EXPECT_EQ(TRVgetdnorms(t.env, lp, norm.data(), nullptr, &len), 1004);
    EXPECT_EQ(TRVgetbasednorms(t.env, lp, cstat.data(), nullptr, norm.data()), 1004);
    TRVfreeprob(t.env, &lp);
}
