/* Model changes followed by solves: the changed model solves to the same
 * objective as the same model loaded fresh, and a re-solve after a change
 * that keeps the basis starts from it. */
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"

namespace {

/* A feasible, bounded random LP: minimise c x with c > 0 over
 * sum_j a_ij x_j >= b_i, 0 <= x <= 10. */
Model random_cover(unsigned seed, int m, int n) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    Model md;
    for (int i = 0; i < m; i++) md.row('G', 1.0 + 4.0 * u(rng));
    for (int j = 0; j < n; j++) {
        std::vector<std::pair<int, double>> col;
        for (int i = 0; i < m; i++)
            if (u(rng) < 0.3) col.push_back({i, 0.5 + u(rng)});
        md.col(1.0 + u(rng), 0.0, 10.0, col);
    }
    /* every row gets at least one entry */
    for (int i = 0; i < m; i++) {
        bool has = false;
        for (int k = 0; k < static_cast<int>(md.matind.size()); k++) has |= md.matind[k] == i;
        if (!has) md.col(5.0, 0.0, 10.0, {{i, 1.0}});
    }
    return md;
}

double solve_obj(TRVenv env, TRVlp lp, int *its = nullptr) {
    EXPECT_EQ(TRVlpopt(env, lp), 0);
    EXPECT_EQ(TRVgetstat(env, lp), 1);
    double z = 0.0;
    EXPECT_EQ(TRVgetobjval(env, lp, &z), 0);
    if (its) *its = TRVgetitcnt(env, lp);
    return z;
}

}  // namespace

TEST(ChangeSolve, ChangedModelSolvesAsTheSameModelLoadedFresh) {
    TestEnv t;
    for (unsigned seed = 1; seed <= 5; seed++) {
        Model md = random_cover(seed, 30, 40);
        TRVlp lp = md.copy_into(t.env);
        ASSERT_NE(lp, nullptr);
        solve_obj(t.env, lp);
        /* the same edits to the problem and to the plain copy */
        std::mt19937 rng(seed * 7);
        for (int step = 0; step < 10; step++) {
            int j = static_cast<int>(rng() % md.ncols());
            int i = static_cast<int>(rng() % md.nrows());
            switch (step % 4) {
            case 0: {
                double ub = 2.0 + (rng() % 8);
                char lu = 'U';
                ASSERT_EQ(TRVchgbds(t.env, lp, 1, &j, &lu, &ub), 0);
                md.ub[j] = ub;
                break;
            }
            case 1: {
                double c = 0.5 + (rng() % 5);
                ASSERT_EQ(TRVchgobj(t.env, lp, 1, &j, &c), 0);
                md.obj[j] = c;
                break;
            }
            case 2: {
                double b = 1.0 + (rng() % 3);
                ASSERT_EQ(TRVchgrhs(t.env, lp, 1, &i, &b), 0);
                md.rhs[i] = b;
                break;
            }
            default: {
                /* a new covering row over two columns */
                int k1 = static_cast<int>(rng() % md.ncols()), k2 = (k1 + 1) % md.ncols();
                double rhs = 3.0, val[2] = {1.0, 1.0};
                char sense = 'G';
                int beg = 0, ind[2] = {k1, k2};
                ASSERT_EQ(TRVaddrows(t.env, lp, 0, 1, 2, &rhs, &sense, &beg, ind, val,
                                     nullptr, nullptr),
                          0);
                md.row('G', 3.0);
                /* rebuild the copy's columns with the new entries */
                Model nm;
                nm.rhs = md.rhs, nm.sense = md.sense, nm.rngval = md.rngval;
                nm.rownames = md.rownames;
                int r = md.nrows() - 1;
                for (int c = 0; c < md.ncols(); c++) {
                    std::vector<std::pair<int, double>> col;
                    for (int p = md.matbeg[c]; p < md.matbeg[c] + md.matcnt[c]; p++)
                        col.push_back({md.matind[p], md.matval[p]});
                    if (c == k1 || c == k2) col.push_back({r, 1.0});
                    nm.col(md.obj[c], md.lb[c], md.ub[c], col, md.colnames[c]);
                }
                md = nm;
                break;
            }
            }
            double changed = solve_obj(t.env, lp);
            TRVlp fresh = md.copy_into(t.env);
            ASSERT_NE(fresh, nullptr);
            double ref = solve_obj(t.env, fresh);
            ASSERT_NEAR(changed, ref, 1e-7 * (1.0 + std::abs(ref))) << "seed " << seed << " step " << step;
            TRVfreeprob(t.env, &fresh);
        }
        TRVfreeprob(t.env, &lp);
    }
}

TEST(ChangeSolve, ReSolveAfterACutStartsFromTheStoredBasis) {
    TestEnv t;
    Model md = random_cover(11, 60, 80);
    TRVlp lp = md.copy_into(t.env);
    int cold = 0;
    solve_obj(t.env, lp, &cold);
    ASSERT_GT(cold, 10);
    int n = TRVgetnumcols(t.env, lp);
    std::vector<double> x(n);
    ASSERT_EQ(TRVgetx(t.env, lp, x.data(), 0, n - 1), 0);
    /* a cut that the optimum violates: the sum of the positive columns
     * at most half their sum */
    std::vector<int> ind;
    std::vector<double> val;
    double sum = 0.0;
    for (int j = 0; j < n; j++)
        if (x[j] > 1e-6) ind.push_back(j), val.push_back(1.0), sum += x[j];
    ASSERT_FALSE(ind.empty());
    double rhs = 0.9 * sum;
    char sense = 'L';
    int beg = 0;
    ASSERT_EQ(TRVaddrows(t.env, lp, 0, 1, static_cast<int>(ind.size()), &rhs, &sense, &beg,
                         ind.data(), val.data(), nullptr, nullptr),
              0);
    int warm = 0;
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    int stat = TRVgetstat(t.env, lp);
    warm = TRVgetitcnt(t.env, lp);
    /* the same model from scratch */
    TRVlp fresh = TRVcloneprob(t.env, lp, &stat);
    ASSERT_NE(fresh, nullptr);
    ASSERT_EQ(TRVdualopt(t.env, fresh), 0);
    int again = TRVgetitcnt(t.env, fresh);
    EXPECT_EQ(TRVgetstat(t.env, fresh), TRVgetstat(t.env, lp));
    if (TRVgetstat(t.env, lp) == 1) {
        double a = 0, b = 0;
        TRVgetobjval(t.env, lp, &a);
        TRVgetobjval(t.env, fresh, &b);
        EXPECT_NEAR(a, b, 1e-7 * (1.0 + std::abs(b)));
    }
    EXPECT_LT(warm, again);
    EXPECT_LE(warm, cold / 3 + 5);
}
