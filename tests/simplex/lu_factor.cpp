/* The factorization and its solves on random bases. */
#include <gtest/gtest.h>

#include "lu_support.h"

namespace {

struct Factor {
    lu_record *f = nullptr;
    std::vector<int> rowmap, colmap;
    double fill_row = 3.0, fill_col = 3.0;
    Factor(int m, int ncols, int update_param = 0) : rowmap(m), colmap(std::max(ncols, 1)) {
        f = lu_create(m, ncols, update_param);
    }
    ~Factor() { lu_free_record(&f); }
    int factor(VecLP &L, const std::vector<int> &head, double u = 0.01, double t = 1e-11,
               double *kappa = nullptr, const char *subset = nullptr, int mode = 0) {
        return lu_factor_on(f, L.lp(), head.data(), static_cast<int>(head.size()), rowmap.data(),
                            colmap.data(), mode, subset, u, t, kappa, &fill_col, &fill_row);
    }
};

std::vector<double> random_dense(std::mt19937 &rng, int m, double density) {
    std::uniform_real_distribution<double> U(0.0, 1.0);
    std::vector<double> b(m, 0.0);
    for (int i = 0; i < m; i++)
        if (U(rng) < density) b[i] = 2.0 * U(rng) - 1.0;
    if (norm_inf(b) == 0.0 && m > 0) b[rng() % m] = 1.0;
    return b;
}

/* FTRAN and BTRAN residuals for a few right-hand sides of both kinds. */
void check_solves(VecLP &L, Factor &F, const std::vector<int> &head, std::mt19937 &rng,
                  double tol, int path = 0) {
    int m = L.m;
    lu_set_path(F.f, path);
    SVec v(m);
    for (double density : {1.0 / m, 0.05, 1.0}) {
        auto b = random_dense(rng, m, density);
        v.set(b);
        lu_ftran_nospike(F.f, &v.v, &v.v);
        ASSERT_TRUE(v.consistent());
        EXPECT_LE(ftran_residual(L, head, v.dense(), b), tol) << "ftran density " << density;
        auto c = random_dense(rng, m, density);
        v.set(c);
        lu_btran(F.f, &v.v, &v.v);
        ASSERT_TRUE(v.consistent());
        EXPECT_LE(btran_residual(L, head, v.dense(), c), tol) << "btran density " << density;
    }
    /* the dense forms */
    auto b = random_dense(rng, m, 0.3);
    std::vector<double> x = b;
    lu_ftran_dense(F.f, x.data());
    EXPECT_LE(ftran_residual(L, head, x, b), tol);
    std::vector<double> y = b, work(m);
    lu_btran_dense(F.f, y.data(), work.data());
    EXPECT_LE(btran_residual(L, head, y, b), tol);
    lu_set_path(F.f, 0);
}

struct KindCase {
    BasisKind kind;
    int m;
};

class RandomBasis : public ::testing::TestWithParam<KindCase> {};

TEST_P(RandomBasis, FactorAndSolve) {
    auto [kind, m] = GetParam();
    for (unsigned seed = 1; seed <= 3; seed++) {
        std::mt19937 rng(seed * 7919 + m);
        VecLP L(m);
        auto head = make_basis(L, kind, rng, 0);
        Factor F(m, m);
        double kappa = 0.0;
        ASSERT_EQ(F.factor(L, head, 0.01, 1e-11, &kappa), 0) << "seed " << seed;
        EXPECT_TRUE(F.f->valid);
        EXPECT_GE(F.f->nz_lu, F.f->nz_basis - F.f->m);
        check_solves(L, F, head, rng, 1e-9, 0);
        check_solves(L, F, head, rng, 1e-9, 1);
        check_solves(L, F, head, rng, 1e-9, 2);
        if (kind == DENSECORE) {
            EXPECT_GT(F.f->n_dense, 0);
        }
        if (kind == SINGLETON) {
            EXPECT_GT(F.f->n_colsing + F.f->n_rowsing, m / 3);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, RandomBasis,
                         ::testing::Values(KindCase{WELL, 50}, KindCase{WELL, 400},
                                           KindCase{BAD, 300}, KindCase{SINGLETON, 300},
                                           KindCase{DENSECORE, 200}, KindCase{WELL, 2},
                                           KindCase{BAD, 3000}));

/* Sparse, hyper-sparse and dense paths agree on the same factor. */
TEST(LuSolve, PathsAgree) {
    std::mt19937 rng(42);
    int m = 2000;
    VecLP L(m);
    auto head = make_basis(L, WELL, rng, 0);
    Factor F(m, m);
    ASSERT_EQ(F.factor(L, head), 0);
    SVec a(m), b(m);
    for (int trial = 0; trial < 40; trial++) {
        double density = trial < 20 ? 1.0 / m : 0.02 * (trial - 19);
        auto rhs = random_dense(rng, m, density);
        for (int dir = 0; dir < 2; dir++) {
            lu_set_path(F.f, 1);
            a.set(rhs);
            if (dir == 0)
                lu_ftran_nospike(F.f, &a.v, &a.v);
            else
                lu_btran(F.f, &a.v, &a.v);
            lu_set_path(F.f, 2);
            b.set(rhs);
            if (dir == 0)
                lu_ftran_nospike(F.f, &b.v, &b.v);
            else
                lu_btran(F.f, &b.v, &b.v);
            auto da = a.dense(), db = b.dense();
            double scale = std::max(1.0, norm_inf(da));
            for (int i = 0; i < m; i++) ASSERT_NEAR(da[i], db[i], 1e-11 * scale) << trial << dir;
            ASSERT_TRUE(a.consistent());
            ASSERT_TRUE(b.consistent());
        }
    }
}

/* Hundreds of Forrest-Tomlin updates agree with a fresh factorization. */
class Updates : public ::testing::TestWithParam<KindCase> {};

TEST_P(Updates, AgreeWithFreshFactor) {
    auto [kind, m] = GetParam();
    std::mt19937 rng(1234 + m);
    int extra = 2 * m;
    VecLP L(m);
    auto head = make_basis(L, kind, rng, extra);
    Factor F(m, m);
    double kappa = 0.0;
    ASSERT_EQ(F.factor(L, head, 0.01, 1e-11, &kappa), 0);
    std::vector<int> basic(L.ncols(), -1);
    for (int c = 0; c < m; c++) basic[head[c]] = c;
    SVec col(m), row(m);
    std::uniform_int_distribution<int> pick(0, L.ncols() - 1);
    int done = 0;
    for (int it = 0; it < 400; it++) {
        int q;
        do q = pick(rng);
        while (basic[q] >= 0);
        /* FTRAN of the entering column, with the spike */
        std::vector<double> a(m, 0.0);
        for (int k = L.beg[q]; k < L.end[q]; k++) a[L.idx[k]] = L.val[k];
        col.set(a);
        lu_ftran(F.f, &col.v, &col.v);
        /* a leaving position among the large entries, chosen at random, whose
         * row of the inverse is not large against the pivot (a stable pivot
         * as a ratio test with a tolerance would take) */
        double amax = norm_inf(col.dense());
        std::vector<int> cand;
        for (int k = 0; k < col.v.nz; k++)
            if (std::fabs(col.v.val[col.v.idx[k]]) >= 0.5 * amax) cand.push_back(col.v.idx[k]);
        ASSERT_FALSE(cand.empty());
        std::shuffle(cand.begin(), cand.end(), rng);
        int p = cand[0];
        for (int c : cand) {
            lu_row_spike(F.f, c);
            double zmax = 0.0;
            for (int k = 0; k < F.f->row_nz; k++) zmax = std::max(zmax, std::fabs(F.f->rspike_val[k]));
            if (zmax <= 10.0 * std::fabs(col.v.val[c])) {
                p = c;
                break;
            }
        }
        double alpha = col.v.val[p];
        if (it % 2 == 0) lu_btran_row(F.f, &row.v, p); /* else the row spike above */
        /* the stability check passes on such a pivot */
        if (F.f->row_nz < 0 || F.f->rspike_pos != p) lu_row_spike(F.f, p);
        double zmax = 0.0;
        for (int k = 0; k < F.f->row_nz; k++) zmax = std::max(zmax, std::fabs(F.f->rspike_val[k]));
        if (kind != BAD) { /* scaling moves the quotient */
            EXPECT_LE(zmax / std::fabs(alpha), 1e8);
        }
        int refuse = lu_update_store(F.f, p, alpha);
        basic[head[p]] = -1;
        head[p] = q;
        basic[q] = p;
        if (refuse) {
            ASSERT_EQ(F.factor(L, head, 0.01, 1e-11, &kappa), 0);
        } else {
            done++;
        }
        if (it % 25 == 0 || it > 390) check_solves(L, F, head, rng, 1e-9, it % 3);
    }
    EXPECT_GT(done, 300);
    /* the updated solves against a fresh factor of the same basis */
    Factor G(m, m);
    ASSERT_EQ(G.factor(L, head, 0.01, 1e-11, &kappa), 0);
    SVec x1(m), x2(m);
    for (int trial = 0; trial < 5; trial++) {
        auto b = random_dense(rng, m, trial < 2 ? 0.01 : 0.5);
        x1.set(b);
        x2.set(b);
        lu_ftran_nospike(F.f, &x1.v, &x1.v);
        lu_ftran_nospike(G.f, &x2.v, &x2.v);
        auto d1 = x1.dense(), d2 = x2.dense();
        double sc = std::max(1.0, norm_inf(d2));
        for (int i = 0; i < m; i++) EXPECT_NEAR(d1[i], d2[i], 1e-7 * sc);
        x1.set(b);
        x2.set(b);
        lu_btran(F.f, &x1.v, &x1.v);
        lu_btran(G.f, &x2.v, &x2.v);
        d1 = x1.dense(), d2 = x2.dense();
        sc = std::max(1.0, norm_inf(d2));
        for (int i = 0; i < m; i++) EXPECT_NEAR(d1[i], d2[i], 1e-7 * sc);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Updates,
                         ::testing::Values(KindCase{WELL, 300}, KindCase{SINGLETON, 400},
                                           KindCase{DENSECORE, 150}, KindCase{BAD, 200},
                                           KindCase{WELL, 1}));

TEST(LuFactor, EmptyBasis) {
    VecLP L(0);
    Factor F(0, 0);
    std::vector<int> head;
    EXPECT_EQ(F.factor(L, head), 0);
    EXPECT_TRUE(F.f->valid);
    SVec v(0);
    lu_ftran(F.f, &v.v, &v.v);
    EXPECT_EQ(v.v.nz, 0);
    lu_btran(F.f, &v.v, &v.v);
    EXPECT_EQ(v.v.nz, 0);
}

TEST(LuFactor, OneRow) {
    VecLP L(1);
    int big = L.add({{0, 4.0}});
    int tiny = L.add({{0, 1e-14}});
    Factor F(1, 1);
    EXPECT_EQ(F.factor(L, {tiny}), 1256);
    EXPECT_FALSE(F.f->valid);
    EXPECT_EQ(F.rowmap[0], -1);
    ASSERT_EQ(F.factor(L, {big}), 0);
    SVec v(1);
    v.set({2.0});
    lu_ftran(F.f, &v.v, &v.v);
    EXPECT_DOUBLE_EQ(v.v.val[0], 0.5);
    /* m = 1: the update stores a trivial eta and the spike is one element */
    int other = L.add({{0, -2.0}});
    v.set({-2.0});
    lu_ftran(F.f, &v.v, &v.v);
    EXPECT_EQ(F.f->spike_nz, 1);
    ASSERT_EQ(lu_update_store(F.f, 0, v.v.val[0]), 0);
    v.set({3.0});
    lu_ftran_nospike(F.f, &v.v, &v.v);
    EXPECT_DOUBLE_EQ(v.v.val[0], -1.5);
    v.set({3.0});
    lu_btran(F.f, &v.v, &v.v);
    EXPECT_DOUBLE_EQ(v.v.val[0], -1.5);
    (void)other;
}

TEST(LuSolve, TinyRightHandSideGivesEmptyResult) {
    std::mt19937 rng(21);
    int m = 40;
    VecLP L(m);
    auto head = make_basis(L, WELL, rng, 0);
    Factor F(m, m);
    ASSERT_EQ(F.factor(L, head), 0);
    SVec v(m);
    std::vector<double> b(m, 0.0);
    b[3] = 1e-14;
    b[17] = -5e-14;
    v.set(b);
    lu_ftran(F.f, &v.v, &v.v);
    EXPECT_EQ(v.v.nz, 0);
    EXPECT_EQ(F.f->spike_nz, 0);
    EXPECT_TRUE(v.consistent());
}

TEST(LuFactor, AllSlackBasisIsSingletonsOnly) {
    int m = 100;
    VecLP L(m);
    std::vector<int> head;
    for (int i = 0; i < m; i++) head.push_back(L.add({{i, i % 2 ? 1.0 : -1.0}}));
    Factor F(m, m);
    double kappa = 0.0;
    ASSERT_EQ(F.factor(L, head, 0.01, 1e-11, &kappa), 0);
    EXPECT_EQ(kappa, 1.0);
    EXPECT_EQ(F.f->n_colsing + F.f->n_rowsing, m);
    EXPECT_EQ(F.f->nz_lu, m);
}

TEST(LuFactor, DuplicateColumnIsSingular) {
    std::mt19937 rng(5);
    int m = 50;
    VecLP L(m);
    auto head = make_basis(L, WELL, rng, 0);
    head[7] = head[3];
    Factor F(m, m);
    EXPECT_EQ(F.factor(L, head), 1256);
    int unpiv = 0;
    for (int c = 0; c < m; c++) unpiv += F.colmap[c] < 0;
    EXPECT_EQ(unpiv, 1);
    EXPECT_TRUE(F.colmap[7] < 0 || F.colmap[3] < 0);
}

TEST(LuFactor, RectangularBasisReportsMaps) {
    std::mt19937 rng(9);
    int m = 30;
    VecLP L(m);
    auto head = make_basis(L, WELL, rng, 5);
    std::vector<int> wide = head;
    for (int j = m; j < m + 5; j++) wide.push_back(j);
    Factor F(m, m + 5);
    double kappa;
    EXPECT_EQ(F.factor(L, wide, 0.01, 1e-11, &kappa, nullptr, 1), 1256);
    int piv = 0;
    for (int c = 0; c < m + 5; c++) piv += F.colmap[c] >= 0;
    EXPECT_EQ(piv, m);
    /* a row subset in crash mode is valid with 1256 */
    std::vector<char> subset(m, 0);
    for (int i = 0; i < m; i += 2) subset[i] = 1;
    EXPECT_EQ(F.factor(L, head, 0.01, 1e-11, &kappa, subset.data(), 1), 1256);
    EXPECT_TRUE(F.f->valid);
    int rows = 0;
    for (int i = 0; i < m; i++) {
        if (!subset[i]) {
            EXPECT_LT(F.rowmap[i], 0);
        }
        rows += F.rowmap[i] >= 0;
    }
    EXPECT_EQ(rows, (m + 1) / 2);
}

TEST(LuFactor, StabilityTestAndKappa) {
    VecLP L(2);
    std::vector<int> head = {L.add({{0, 1.0}}), L.add({{1, 1e-10}})};
    Factor F(2, 2);
    EXPECT_EQ(F.factor(L, head, 0.01), 2009);
    EXPECT_EQ(F.factor(L, head, 0.1), 2009);
    EXPECT_EQ(F.factor(L, head, 0.2), 0);
    double kappa = 0.0;
    EXPECT_EQ(F.factor(L, head, 0.01, 1e-11, &kappa), 0);
    EXPECT_NEAR(kappa, 1e10, 1e-3 * 1e10);
    /* a spread of 1e20 with kappa_out given is no failure */
    VecLP L2(2);
    std::vector<int> h2 = {L2.add({{0, 1e10}}), L2.add({{1, 1e-10}})};
    EXPECT_EQ(F.factor(L2, h2, 0.01, 1e-11, &kappa), 0);
    EXPECT_GE(kappa, 1e19);
    /* at 0.99999 the last row of the table no longer fires */
    EXPECT_EQ(F.factor(L2, h2, 0.99999), 0);
}

TEST(LuFactor, DenseTailOffWithLargeFraction) {
    std::mt19937 rng(77);
    int m = 120;
    VecLP L(m);
    auto head = make_basis(L, DENSECORE, rng, 0);
    Factor F(m, m);
    F.f->dense_frac = 10.0;
    ASSERT_EQ(F.factor(L, head), 0);
    EXPECT_EQ(F.f->n_dense, 0);
    check_solves(L, F, head, rng, 1e-9);
}

/* Out of memory at every allocation the factorization makes: 1001, the
 * arrays released, and the next attempt succeeds. */
TEST(LuFactor, OutOfMemoryAtEveryAllocation) {
    std::mt19937 rng(3);
    int m = 300;
    VecLP L(m);
    auto head = make_basis(L, DENSECORE, rng, 0);
    long before = trv_alloc_count();
    {
        Factor probe(m, m);
        ASSERT_EQ(probe.factor(L, head), 0);
    }
    long per_run = trv_alloc_count() - before;
    int failures = 0;
    for (long n = 1; n <= per_run; n++) {
        Factor F(m, m);
        ASSERT_NE(F.f, nullptr);
        trv_alloc_failat(n);
        int st = F.factor(L, head);
        trv_alloc_failat(0);
        if (st != 0) {
            EXPECT_TRUE(st == 1001 || st == 2000) << n;
            EXPECT_FALSE(F.f->valid);
            failures++;
            if (st == 1001) {
                EXPECT_EQ(F.f->l_idx, nullptr);
                EXPECT_EQ(F.f->uc_idx, nullptr);
                EXPECT_EQ(F.f->rf_cap, 0);
            }
            F.fill_row = F.fill_col = 3.0;
            ASSERT_EQ(F.factor(L, head), 0) << n;
            check_solves(L, F, head, rng, 1e-9);
        }
    }
    EXPECT_GT(failures, 3);
}

TEST(LuFactor, FileGrowthFromTightFillFactors) {
    std::mt19937 rng(11);
    int m = 400;
    VecLP L(m);
    auto head = make_basis(L, WELL, rng, 0);
    Factor F(m, m);
    F.fill_row = F.fill_col = 1.1;
    ASSERT_EQ(F.factor(L, head), 0);
    check_solves(L, F, head, rng, 1e-9);
    EXPECT_GE(F.fill_row, 1.1);
}

} // namespace

/* Rows first: long rows met by every row singleton shrink by count and are
 * compacted once. The basis here has two long rows, a 4 by 4 block the
 * Markowitz phase must take after the pass, and a tiny row singleton the pass
 * rejects; the factor must solve as the one taken columns first. */
TEST(LuFactor, RowSingletonPassCompactsLongRows) {
    std::mt19937 rng(77);
    std::uniform_real_distribution<double> U(0.5, 2.0);
    int m = 300, blk = m - 4;
    for (int tiny_row : {-1, 17}) {
        VecLP L(m);
        std::vector<int> head;
        for (int c = 0; c < blk; c++) {
            std::vector<std::pair<int, double>> e;
            e.push_back({c, c == tiny_row ? 1e-13 : U(rng)});
            if (c % 2 == 0) e.push_back({m - 2, -U(rng)});
            e.push_back({m - 1, U(rng) * (c % 7 == 0 ? 100.0 : 1.0)});
            head.push_back(L.add(e));
        }
        for (int c = blk; c < m; c++) {
            std::vector<std::pair<int, double>> e;
            for (int i = blk; i < m; i++) e.push_back({i, (i == c ? 5.0 : 0.0) + U(rng)});
            head.push_back(L.add(e));
        }
        Factor rows(m, m), cols(m, m);
        rows.f->order_flag = 0;
        cols.f->order_flag = 1;
        int sr = rows.factor(L, head), sc = cols.factor(L, head);
        if (tiny_row >= 0) {
            /* the row's only entry is below the pivot tolerance: singular */
            EXPECT_EQ(sr, 1256);
            EXPECT_EQ(rows.rowmap[tiny_row], -1);
            continue;
        }
        ASSERT_EQ(sr, 0);
        ASSERT_EQ(sc, 0);
        EXPECT_EQ(rows.f->n_rowsing, blk);
        check_solves(L, rows, head, rng, 1e-12, 0);
        auto b = random_dense(rng, m, 1.0);
        std::vector<double> x1 = b, x2 = b;
        lu_ftran_dense(rows.f, x1.data());
        lu_ftran_dense(cols.f, x2.data());
        for (int i = 0; i < m; i++) EXPECT_NEAR(x1[i], x2[i], 1e-9 * (1.0 + std::fabs(x2[i])));
    }
}
