/* The recovery ladder, basis repair, the update through the iteration state,
 * and TRVgetcallbackinfo on problems built through the
 * interface. */
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "frame/callback.h"
#include "simplex/core.h"
#include "support/internal.h"
#include "support/model.h"

namespace {

/* A model with rows L, G, E, E and five columns; columns 2 = 0 + 1. */
Model ladder_model() {
    Model m;
    m.name = "ladder";
    m.row('L', 4.0);
    m.row('G', 1.0);
    m.row('E', 2.0);
    m.row('E', 3.0);
    m.col(1.0, 0.0, 10.0, {{0, 1.0}, {2, 2.0}}, "a");
    m.col(1.0, 0.0, TRV_INFBOUND, {{1, 1.0}, {3, 1.0}}, "b");
    m.col(1.0, -TRV_INFBOUND, TRV_INFBOUND, {{0, 1.0}, {1, 1.0}, {2, 2.0}, {3, 1.0}}, "sum");
    m.col(1.0, -5.0, 0.0, {{2, 1.0}, {3, -1.0}}, "d");
    m.col(1.0, 0.0, 1.0, {}, "empty");
    return m;
}

struct Prob {
    TestEnv t;
    TRVlp h = nullptr;  /* the handle */
    TRVlp lp = nullptr; /* its record */
    explicit Prob(const Model &m) {
        int st = 0;
        h = m.copy_into(t.env, &st);
        lp = lp_of(h);
        EXPECT_EQ(st, 0);
        EXPECT_EQ(simplex_build(env_of(t.env), lp), 0);
        EXPECT_EQ(lu_alloc(env_of(t.env), lp), 0);
    }
    simplex_iter &it() { return lp->solver->it; }
    simplex_lp &s() { return lp->solver->splp; }
    int refactor(int repair = 1, int keep = 0) {
        double u = it().markowitz;
        int st = lu_refactor(env_of(t.env), lp, &u, it().pivot_tol, repair, keep);
        it().markowitz = u;
        return st;
    }
    /* B x = b holds for the current header */
    double residual() {
        int m = s().m;
        sparse_vec v;
        sv_alloc(&v, m);
        std::vector<double> b(m);
        for (int i = 0; i < m; i++) b[i] = v.val[i] = 1.0 + i;
        sv_from_dense(&v);
        lu_ftran_nospike(lp->factor, &v, &v);
        std::vector<double> r(b);
        for (int p = 0; p < m; p++) {
            int j = it().head[p];
            for (int k = s().col_beg[j]; k < s().col_end[j]; k++) r[s().row_idx[k]] -= s().val[k] * v.val[p];
        }
        sv_free(&v);
        double t = 0;
        for (double a : r) t = std::max(t, std::fabs(a));
        return t;
    }
};

TEST(SimplexLP, BuildsUniformColumns) {
    Prob P(ladder_model());
    simplex_lp &s = P.s();
    EXPECT_EQ(s.m, 4);
    EXPECT_EQ(s.n, 5);
    EXPECT_EQ(s.nstruct, 5);
    EXPECT_EQ(s.ntotal, 7); /* two slacks */
    EXPECT_EQ(s.ncoltot, 11);
    EXPECT_EQ(s.sense, 1.0);
    /* slack of the L row +1, of the G row -1; artificials +1 */
    EXPECT_EQ(s.slack_of_row[0], 5);
    EXPECT_EQ(s.val[s.col_beg[5]], 1.0);
    EXPECT_EQ(s.slack_of_row[1], 6);
    EXPECT_EQ(s.val[s.col_beg[6]], -1.0);
    EXPECT_EQ(s.slack_of_row[2], 7 + 2);
    EXPECT_EQ(s.col_len[4], 0);
    EXPECT_EQ(s.has_lower[2], 0);
    EXPECT_EQ(s.has_upper[1], 0);
    EXPECT_EQ(s.has_upper[0], 1);
    EXPECT_EQ(s.fill_row, 3.0);
    /* the slack basis factors with singletons only */
    EXPECT_EQ(P.refactor(), 0);
    EXPECT_TRUE(P.lp->factor->valid);
    EXPECT_LT(P.residual(), 1e-12);
}

TEST(SimplexLP, RangeColumnAndMaximise) {
    Model m;
    m.objsen = -1;
    m.row('R', 1.0, -3.0, "rr");
    m.row('L', 2.0);
    m.col(1.0, 0.0, 4.0, {{0, 1.0}, {1, 1.0}});
    Prob P(m);
    EXPECT_EQ(P.s().sense, -1.0);
    EXPECT_EQ(P.s().nstruct, 2);
    EXPECT_EQ(P.s().val[P.s().col_beg[1]], -1.0);
    EXPECT_EQ(P.s().lower[1], -3.0);
    EXPECT_EQ(std::string(simplex_varname(env_of(P.t.env), P.lp, 1)), "rr");
}

TEST(Ladder, DuplicateColumnRepairedWithSlack) {
    Prob P(ladder_model());
    auto &it = P.it();
    /* a, a, b, d: the duplicate has no pivot */
    int head[4] = {0, 0, 1, 3};
    for (int p = 0; p < 4; p++) {
        it.status[it.head[p]] = 0;
        it.head[p] = head[p];
        it.status[head[p]] = 1;
    }
    P.t.clear();
    EXPECT_EQ(P.refactor(), 2002);
    EXPECT_NE(P.t.err.find("Repairing basis singularity.\n"), std::string::npos) << P.t.err;
    /* m < 10: the fixing allowance is 0 and one singularity exceeds it */
    EXPECT_NE(P.t.err.find("Variable 'a' fixed because of singularity.\n"), std::string::npos) << P.t.err;
    EXPECT_EQ(it.ban[0], 32);
    EXPECT_EQ(it.sing_count, 1);
    EXPECT_NEAR(it.markowitz, 0.1, 1e-15);
    int copies = 0, logicals = 0;
    for (int p = 0; p < 4; p++) {
        copies += it.head[p] == 0;
        logicals += it.head[p] >= P.s().nstruct;
    }
    EXPECT_EQ(copies, 1);
    EXPECT_EQ(logicals, 1);
    EXPECT_TRUE(P.lp->factor->valid);
    EXPECT_LT(P.residual(), 1e-12);
}

TEST(Ladder, ZeroColumnAndDependentBlock) {
    Prob P(ladder_model());
    auto &it = P.it();
    it.x[2] = 0.5; /* "sum" is free: with keep_values it goes superbasic */
    int head[4] = {0, 1, 2, 4}; /* sum = a + b, and the empty column */
    for (int p = 0; p < 4; p++) {
        it.status[it.head[p]] = 0;
        it.head[p] = head[p];
        it.status[head[p]] = 1;
    }
    P.t.clear();
    EXPECT_EQ(P.refactor(1, 1), 2002);
    EXPECT_LT(P.residual(), 1e-12);
    int structurals = 0;
    for (int p = 0; p < 4; p++) structurals += it.head[p] < P.s().nstruct;
    EXPECT_EQ(structurals, 2);
    EXPECT_EQ(it.status[4], 0); /* [0, 1]: nearer bound by magnitude is the lower */
    EXPECT_NE(P.t.err.find("fixed because of singularity."), std::string::npos);
    /* with no repair allowed the ladder gives 1256 */
    for (int p = 0; p < 4; p++) it.head[p] = head[p];
    EXPECT_EQ(P.refactor(0), 1256);
    EXPECT_FALSE(P.lp->factor->valid);
}

TEST(Ladder, SingularityLimitStops) {
    Prob P(ladder_model());
    TRVsetintparam(P.t.env, 1037, 1);
    auto &it = P.it();
    it.sing_limit = 1;
    it.sing_count = 1;
    int head[4] = {0, 0, 1, 3};
    for (int p = 0; p < 4; p++) it.head[p] = head[p];
    EXPECT_EQ(P.refactor(), 1256);
    EXPECT_EQ(it.sing_count, 2);
}

TEST(Ladder, SlackRemovedAndDualFixing) {
    Prob P(ladder_model());
    auto &it = P.it();
    it.has_dual = 1;
    it.sing_count = 5;
    /* two copies of the slack of row 0 */
    int s0 = P.s().slack_of_row[0];
    int head[4] = {s0, s0, 1, 3};
    for (int p = 0; p < 4; p++) it.head[p] = head[p];
    P.t.clear();
    EXPECT_EQ(P.refactor(), 2002);
    EXPECT_NE(P.t.err.find("Slack removed by singularity.\n"), std::string::npos) << P.t.err;
    EXPECT_NE(P.t.err.find("Dual '"), std::string::npos) << P.t.err;
    EXPECT_LT(P.residual(), 1e-12);
}

TEST(Ladder, ThresholdRaisedByStabilityTest) {
    Model m;
    m.row('E', 1.0);
    m.row('E', 1.0);
    m.col(0.0, 0.0, 1.0, {{0, 1.0}});
    m.col(0.0, 0.0, 1.0, {{1, 1e-10}});
    Prob P(m);
    auto &it = P.it();
    it.head[0] = 0;
    it.head[1] = 1;
    it.n_it = 5;
    P.t.clear();
    EXPECT_EQ(P.refactor(), 0);
    EXPECT_NEAR(it.markowitz, 0.2, 1e-12);
    EXPECT_NE(P.t.res.find("Markowitz threshold set to 0.2.\n"), std::string::npos) << P.t.res;
    EXPECT_EQ(it.n_lu, 1);
}

TEST(Ladder, OutOfMemoryCompressesAndRecovers) {
    Prob P(ladder_model());
    auto &it = P.it();
    it.head[0] = 0, it.head[1] = 1, it.head[2] = 3, it.head[3] = P.s().slack_of_row[0];
    lu_free(P.lp);
    ASSERT_EQ(lu_alloc(env_of(P.t.env), P.lp), 0);
    P.t.clear();
    trv_alloc_failat(1); /* the first array of the factorization */
    int st = P.refactor();
    trv_alloc_failat(0);
    EXPECT_EQ(st, 0);
    EXPECT_NE(P.t.err.find("Compressing row and column files.\n"), std::string::npos);
    EXPECT_EQ(P.s().fill_row, 1.1);
    EXPECT_EQ(P.lp->factor->growth_locked, 1);
    EXPECT_LT(P.residual(), 1e-12);
    /* a second failure after the compress branch is final */
    lu_free(P.lp);
    ASSERT_EQ(lu_alloc(env_of(P.t.env), P.lp), 0);
    trv_alloc_failat(1);
    st = P.refactor();
    trv_alloc_failat(0);
    EXPECT_EQ(st, 1001);
    EXPECT_FALSE(P.lp->factor->valid);
    EXPECT_EQ(P.refactor(), 0);
}

TEST(Ladder, CrashFactorReportsPivots) {
    Prob P(ladder_model());
    int cols[6] = {0, 1, 2, 3, 4, 5};
    std::vector<int> rowmap(4), colmap(6);
    EXPECT_EQ(lu_crash_factor(env_of(P.t.env), P.lp, 6, cols, rowmap.data(), colmap.data(), nullptr,
                              0.01, 1e-11),
              2002);
    int piv = 0;
    for (int c = 0; c < 6; c++) piv += colmap[c] >= 0;
    EXPECT_EQ(piv, 4);
    EXPECT_LT(colmap[4], 0); /* the empty column */
}

/* Updates through the iteration state: parameter 1031 = 1 refactors each
 * time; the automatic limit updates in place. */
Model random_model(int m, int n, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> U(0.5, 2.0);
    Model md;
    for (int i = 0; i < m; i++) md.row('E', 1.0);
    for (int j = 0; j < n; j++) {
        std::vector<std::pair<int, double>> e;
        std::vector<char> used(m, 0);
        int k = 1 + rng() % 4;
        for (int q = 0; q < k; q++) {
            int i = rng() % m;
            if (!used[i]) used[i] = 1, e.push_back({i, (rng() % 2 ? 1 : -1) * U(rng)});
        }
        md.col(0.0, 0.0, 1.0, e);
    }
    return md;
}

void run_updates(Prob &P, int count, std::mt19937 &rng) {
    auto &it = P.it();
    auto &s = P.s();
    int m = s.m;
    sparse_vec col;
    sv_alloc(&col, m);
    for (int k = 0; k < count; k++) {
        int q;
        do q = rng() % s.n;
        while (it.status[q] == 1);
        for (int e = s.col_beg[q]; e < s.col_end[q]; e++) col.val[s.row_idx[e]] = s.val[e];
        sv_from_dense(&col);
        lu_ftran(P.lp->factor, &col, &col);
        int p = -1;
        double best = 0;
        for (int e = 0; e < col.nz; e++)
            if (std::fabs(col.val[col.idx[e]]) > best) best = std::fabs(col.val[col.idx[e]]), p = col.idx[e];
        ASSERT_GE(p, 0);
        it.leave_pos = p;
        it.enter_var = q;
        it.alpha = col.val[p];
        int chk = -1;
        EXPECT_EQ(lu_update_check(P.lp, it.alpha, 1, &chk), 0);
        it.status[it.head[p]] = 0;
        it.status[q] = 1;
        int st = lu_update(env_of(P.t.env), P.lp);
        ASSERT_TRUE(st == 0 || st == 2002) << st;
        sv_clear(&col);
        ASSERT_LT(P.residual(), 1e-9);
    }
    sv_free(&col);
}

TEST(Update, EveryUpdateRefactorsWithLimitOne) {
    TestEnv t0;
    Model md = random_model(60, 200, 3);
    Prob P(md);
    TRVsetintparam(P.t.env, 1031, 1);
    ASSERT_EQ(lu_alloc(env_of(P.t.env), P.lp), 0);
    EXPECT_EQ(P.lp->factor->update_limit, 0);
    ASSERT_EQ(P.refactor(), 0);
    std::mt19937 rng(8);
    int before = P.it().n_lu;
    run_updates(P, 20, rng);
    EXPECT_EQ(P.it().n_lu, before + 20);
}

TEST(Update, AutomaticLimitUpdatesInPlace) {
    Model md = random_model(80, 300, 4);
    Prob P(md);
    ASSERT_EQ(P.refactor(), 0);
    EXPECT_EQ(P.lp->factor->update_limit, 10000);
    EXPECT_EQ(P.lp->factor->update_auto, 1);
    std::mt19937 rng(9);
    int before = P.it().n_lu;
    run_updates(P, 150, rng);
    /* the automatic rule may refactor after 61 updates, not before */
    EXPECT_LE(P.it().n_lu - before, 3);
    EXPECT_GE(P.lp->factor->update_count + (P.it().n_lu - before) * 61, 61);
}

TEST(Update, CheckRejectsTinyPivot) {
    Model md = random_model(10, 30, 5);
    Prob P(md);
    ASSERT_EQ(P.refactor(), 0);
    P.it().leave_pos = 3;
    P.it().enter_var = 0;
    int st = 0;
    EXPECT_EQ(lu_update_check(P.lp, 1e-14, 0, &st), 2003);
    EXPECT_EQ(st, 2003);
    EXPECT_EQ(P.lp->factor->row_nz, -1);
}

/* ---- callbacks -------------------------------------------------------------- */

TEST(CallbackInfo, ChecksAndDispatch) {
    Prob P(ladder_model());
    TRVenv env = P.t.env;
    int iv = 0;
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 50, 7, &iv), 1003);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 0, 7, &iv), 1003);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 112, 7, &iv), 1003);
    EXPECT_EQ(TRVgetcallbackinfo(nullptr, P.h, 1, 7, &iv), 1002);
    EXPECT_EQ(TRVgetcallbackinfo(env, nullptr, 1, 7, &iv), 1006);
    for (int w : {2, 6, 8, 16}) EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 1, w, &iv), 1003) << w;
    for (int w : {1, 5, 8, 16}) EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 2, w, &iv), 1003) << w;
    /* known numbers outside a running optimiser: no solver state */
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 1, 7, &iv), 1006);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 2, 17, &iv), 1006);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 7, 12, &iv), 1003);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 7, 13, &iv), 1006);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 3, 2, &iv), 1003);
    EXPECT_NE(P.t.err.find("Error during callback"), std::string::npos);
    /* with a primal state in place the iteration count and rows answer */
    P.it().n_it = 42;
    P.lp->primal = reinterpret_cast<primal_state *>(P.lp); /* a stand-in */
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 1, 7, &iv), 0);
    EXPECT_EQ(iv, 42);
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 1, 17, &iv), 0);
    EXPECT_EQ(iv, 4);
    double dv;
    EXPECT_EQ(TRVgetcallbackinfo(env, P.h, 1, 1, &dv), 1006); /* no answer function */
    P.lp->primal = nullptr;
}

struct CbSeen {
    int calls = 0;
    int where = 0;
    void *data = nullptr;
    int answer = 0;
};

int progress(TRVenv, void *cbdata, int wherefrom, void *handle) {
    auto *s = static_cast<CbSeen *>(handle);
    s->calls++;
    s->where = wherefrom;
    s->data = cbdata;
    return s->answer;
}

TEST(CallbackInfo, CallPointAborts) {
    TestEnv t;
    CbSeen seen;
    EXPECT_EQ(cb_call(env_of(t.env), PAR_LP, &seen, 1), 0); /* no function set */
    ASSERT_EQ(TRVsetlpcallbackfunc(t.env, progress, &seen), 0);
    EXPECT_EQ(cb_call(env_of(t.env), PAR_LP, &t, 2), 0);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.where, 2);
    EXPECT_EQ(seen.data, &t);
    seen.answer = 7;
    EXPECT_NE(cb_call(env_of(t.env), PAR_LP, &t, 1), 0);
    EXPECT_EQ(cb_call(env_of(t.env), PAR_MIP, &t, 101), 0);
}

} // namespace
