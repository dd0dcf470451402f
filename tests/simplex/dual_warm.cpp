/* Warm starts of the dual simplex after a change of the model made the way
 * the change functions make it: the bound is edited in the model and the
 * change notification runs. The re-solve starts from the kept basis and
 * norms and needs only a few iterations; its answer meets the optimality
 * conditions of the changed model and matches a solve from scratch. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "simplex/core.h"
#include "store/scale.h"
#include "support/kkt.h"
#include "support/internal.h"
#include "support/model.h"


namespace {

Model transportation(int ns, int nd) {
    Model md;
    for (int a = 0; a < ns; a++) md.row('L', 12.0 + 3 * a);
    for (int b = 0; b < nd; b++) md.row('G', 8.0 + b);
    for (int a = 0; a < ns; a++)
        for (int b = 0; b < nd; b++)
            md.col(1.0 + (3 * a + 5 * b) % 7, 0.0, 1e20, {{a, 1.0}, {ns + b, 1.0}});
    return md;
}

int solve(TRVenv env, TRVlp lp, Solution &s) {
    int st = TRVdualopt(env, lp);
    if (st != 0) return st;
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    s.x.assign(n, 0.0), s.dj.assign(n, 0.0), s.pi.assign(m, 0.0), s.slack.assign(m, 0.0);
    return TRVsolution(env, lp, &s.stat, &s.obj, s.x.data(), s.pi.data(), s.slack.data(),
                       s.dj.data());
}

/* The bound change of the change functions: in the model's own units, then
 * the notification that keeps the basis. */
void set_upper(TRVenv env, TRVlp handle, Model &md, int j, double u) {
    env = env_of(env);
    TRVlp lp = lp_of(handle);
    lp_unscale(env, lp);
    lp->lpdata->ub[j] = u;
    lp_kinds(lp->lpdata);
    invalidate(env, lp, 4);
    md.ub[j] = u;
}

} // namespace

TEST(DualWarm, TightenedBoundResolvesInAFewIterations) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = transportation(8, 9);
    TRVlp lp = md.copy_into(te.env);
    Solution s;
    ASSERT_EQ(solve(te.env, lp, s), 0);
    ASSERT_EQ(s.stat, 1);
    int cold = TRVgetitcnt(te.env, lp);
    ASSERT_NE(lp_of(lp)->start, nullptr);
    EXPECT_EQ(lp_of(lp)->start->has_norms, 1);
    /* cut the flow on the largest shipment to half its value */
    int big = 0;
    for (int j = 1; j < md.ncols(); j++)
        if (s.x[j] > s.x[big]) big = j;
    ASSERT_GT(s.x[big], 1.0);
    double before = s.obj;
    set_upper(te.env, lp, md, big, 0.5 * s.x[big]);
    ASSERT_EQ(solve(te.env, lp, s), 0);
    ASSERT_EQ(s.stat, 1);
    EXPECT_EQ(check_kkt(md, s), "");
    EXPECT_GE(s.obj, before - 1e-9);
    int warm = TRVgetitcnt(te.env, lp);
    EXPECT_LE(warm, 8);
    EXPECT_LT(warm, cold);
    EXPECT_EQ(TRVgetphase1cnt(te.env, lp), 0);
    /* a solve from scratch of the changed model agrees */
    TestEnv t2;
    TRVsetintparam(t2.env, 1019, 0);
    TRVlp fresh = md.copy_into(t2.env);
    Solution f;
    ASSERT_EQ(solve(t2.env, fresh, f), 0);
    EXPECT_NEAR(f.obj, s.obj, 1e-8 * (1 + std::fabs(f.obj)));
    TRVfreeprob(t2.env, &fresh);
    TRVfreeprob(te.env, &lp);
}

TEST(DualWarm, BoundChangeThatMakesTheModelInfeasible) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = transportation(3, 3);
    TRVlp lp = md.copy_into(te.env);
    Solution s;
    ASSERT_EQ(solve(te.env, lp, s), 0);
    ASSERT_EQ(s.stat, 1);
    /* every column capped at 1: each demand can get 3 at most */
    for (int j = 0; j < md.ncols(); j++) set_upper(te.env, lp, md, j, 1.0);
    ASSERT_EQ(solve(te.env, lp, s), 0);
    EXPECT_EQ(s.stat, 2);
    EXPECT_LE(TRVgetitcnt(te.env, lp), 6);
    TRVfreeprob(te.env, &lp);
}

TEST(DualWarm, StoredNormsFillMissingPositions) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 1);
    Model md = transportation(5, 5);
    TRVlp lp = md.copy_into(te.env);
    Solution s;
    ASSERT_EQ(solve(te.env, lp, s), 0);
    ASSERT_NE(lp_of(lp)->start, nullptr);
    /* lose the norm of every basic slack: the start computes them anew */
    for (int i = 0; i < lp_of(lp)->start->nrows; i++) lp_of(lp)->start->rnorm[i] = 0.0;
    te.clear();
    ASSERT_EQ(solve(te.env, lp, s), 0);
    EXPECT_NE(te.res.find("Reinitializing dual norms . . .\n"), std::string::npos) << te.res;
    EXPECT_NE(te.res.find("Computed "), std::string::npos) << te.res;
    EXPECT_EQ(s.stat, 1);
    TRVfreeprob(te.env, &lp);
}

TEST(DualWarm, AddedRowsAndColumnStartFromTheKeptBasis) {
    /* the basis of a model carried to the same model with a cut, a ranged
     * row and a new column, as the row and column additions leave it: the
     * new rows enter with their slacks basic and the column nonbasic */
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = transportation(7, 8);
    TRVlp lp = md.copy_into(te.env);
    Solution s;
    ASSERT_EQ(solve(te.env, lp, s), 0);
    ASSERT_EQ(s.stat, 1);
    int cold = TRVgetitcnt(te.env, lp);
    /* a cut on the two largest shipments, a ranged row on another pair */
    std::vector<int> order(md.ncols());
    for (int j = 0; j < md.ncols(); j++) order[j] = j;
    std::sort(order.begin(), order.end(), [&](int a, int b) { return s.x[a] > s.x[b]; });
    Model big = md;
    int r1 = big.nrows(), r2 = r1 + 1;
    big.row('L', 0.5 * (s.x[order[0]] + s.x[order[1]]));
    big.row('R', 0.25 * s.x[order[2]], 0.5 * s.x[order[2]]);
    auto add_entry = [&](int j, int row) {
        /* rebuild column j with one more entry */
        big.matind.insert(big.matind.begin() + big.matbeg[j] + big.matcnt[j], row);
        big.matval.insert(big.matval.begin() + big.matbeg[j] + big.matcnt[j], 1.0);
        big.matcnt[j]++;
        for (int k = j + 1; k < big.ncols(); k++) big.matbeg[k]++;
    };
    add_entry(order[0], r1);
    add_entry(order[1], r1);
    add_entry(order[2], r2);
    big.col(50.0, 0.0, 1e20, {{0, 1.0}, {r1, -1.0}});
    TRVlp lp2 = big.copy_into(te.env);
    ASSERT_NE(lp2, nullptr);
    lp_of(lp2)->start = lp_of(lp)->start;
    lp_of(lp)->start = nullptr;
    Solution w;
    ASSERT_EQ(solve(te.env, lp2, w), 0);
    ASSERT_EQ(w.stat, 1);
    EXPECT_EQ(check_kkt(big, w), "");
    EXPECT_LE(TRVgetitcnt(te.env, lp2), 10);
    EXPECT_LT(TRVgetitcnt(te.env, lp2), cold);
    TestEnv t2;
    TRVsetintparam(t2.env, 1019, 0);
    TRVlp fresh = big.copy_into(t2.env);
    Solution f;
    ASSERT_EQ(solve(t2.env, fresh, f), 0);
    EXPECT_NEAR(f.obj, w.obj, 1e-8 * (1 + std::fabs(f.obj)));
    TRVfreeprob(t2.env, &fresh);
    TRVfreeprob(te.env, &lp2);
    TRVfreeprob(te.env, &lp);
}
