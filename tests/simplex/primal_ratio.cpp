/* The primal ratio tests and pricing on a prepared working LP: Harris
 * choice among near ties, degenerate steps, bound flips, skipped tiny
 * entries, the length preference, the phase 1 breakpoint walk, and the
 * entering choice of each pricing family. */
#include <gtest/gtest.h>

#include <cmath>

#include "support/internal.h"
#include "support/model.h"
#include "simplex/core.h"

namespace {

/* A working LP of m rows with a slack basis and a primal state, ready for
 * a ratio test on a hand-made column. */
struct Prepared {
    TestEnv te;
    TRVlp lp = nullptr;
    explicit Prepared(const Model &md, int family = 4) {
        TRVsetintparam(te.env, 1019, 0);
        lp = lp_of(md.copy_into(te.env));
        if (lp == nullptr) return;
        TRVenv env = env_of(te.env);
        EXPECT_EQ(simplex_build(env, lp), 0);
        EXPECT_EQ(primal_state_alloc(env, lp), 0);
        primal_state *ps = lp->primal;
        ps->feas_tol = 1e-6;
        ps->opt_tol = 1e-6;
        ps->harris_delta = 1e-6;
        ps->p1_tol = 1e-7;
        ps->shift_on = 1;
        EXPECT_EQ(lu_alloc(env, lp), 0);
        EXPECT_EQ(start_basis(env, lp), 0);
        EXPECT_EQ(primal_price_init(env, lp, family), 0);
        EXPECT_EQ(primal_refactor(env, lp), 0);
        primal_set_phase(lp);
        primal_compute_y(lp);
        primal_compute_d(lp);
    }
    ~Prepared() {
        if (lp == nullptr) return;
        TRVlp h = lp->handle;
        TRVfreeprob(te.env, &h);
    }
    primal_state *ps() { return lp->primal; }
    simplex_iter *it() { return &lp->solver->it; }
    /* alpha by basis position; the slack basis has position i on row i */
    void set_alpha(std::initializer_list<std::pair<int, double>> a) {
        sparse_vec *v = &ps()->alpha;
        sv_clear(v);
        for (auto &e : a) {
            v->val[e.first] = e.second;
            v->idx[v->nz++] = e.first;
        }
    }
    void set_basic(int pos, double x) { it()->x[it()->head[pos]] = x; }
};

/* n rows of 'L' with the given right-hand sides; one column of ones. */
Model rows_model(std::vector<double> rhs, std::vector<double> entries) {
    Model md;
    for (double r : rhs) md.row('L', r);
    std::vector<std::pair<int, double>> e;
    for (size_t i = 0; i < entries.size(); i++)
        if (entries[i] != 0.0) e.push_back({static_cast<int>(i), entries[i]});
    md.col(-1.0, 0.0, 1e20, e);
    md.col(-1.0, 0.0, 1e20, e);
    return md;
}

} // namespace

TEST(PrimalRefactor, EachFactorizationCountsOnce) {
    Model md = rows_model({1.0, 2.0, 5.0}, {1.0, 1.0, 1.0});
    Prepared p(md);
    EXPECT_EQ(p.it()->n_lu, 1); /* the first factorization */
    ASSERT_EQ(primal_refactor(env_of(p.te.env), p.lp), 0);
    EXPECT_EQ(p.it()->n_lu, 2);
}

TEST(PrimalRatio, HarrisPrefersTheLargerPivotAmongNearTies) {
    Model md = rows_model({1.0, 1.0, 5.0}, {1e-3, 1.0, 1.0});
    Prepared p(md);
    /* ratios 1.0 / 1e-3 * ... : position 0 has ratio (x - 0) / alpha */
    p.set_basic(0, 1e-3);      /* ratio 1.0 with alpha 1e-3 */
    p.set_basic(1, 1.0 + 1e-9); /* ratio 1.0 + 1e-9 with alpha 1 */
    p.set_basic(2, 5.0);        /* ratio 5 */
    p.set_alpha({{0, 1e-3}, {1, 1.0}, {2, 1.0}});
    ASSERT_EQ(ratio_primal_p2(p.lp, 1, -1.0, PR_BIG, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, 1);
    EXPECT_NEAR(p.ps()->rw.step, 1.0 + 1e-9, 1e-15);
    EXPECT_EQ(p.ps()->rw.status_to, 0);
}

TEST(PrimalRatio, DegenerateVertexTakesZeroStepAndLargestPivot) {
    Model md = rows_model({0.0, 0.0, 0.0}, {0.5, 2.0, 1.0});
    Prepared p(md);
    TRVsetintparam(p.te.env, 1068, 1);
    p.ps()->rw.no_length = 1;
    p.set_alpha({{0, 0.5}, {1, 2.0}, {2, 1.0}});
    ASSERT_EQ(ratio_primal_p2(p.lp, 1, -1.0, PR_BIG, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, 1);
    EXPECT_EQ(p.ps()->rw.step, 0.0);
}

TEST(PrimalRatio, NegativeRatioShiftsTheBoundToAZeroStep) {
    Model md = rows_model({1.0}, {1.0});
    Prepared p(md);
    p.set_basic(0, -5e-7); /* slightly below its lower bound of 0 */
    p.set_alpha({{0, 1.0}});
    ASSERT_EQ(ratio_primal_p2(p.lp, 1, -1.0, PR_BIG, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, 0);
    EXPECT_EQ(p.ps()->rw.step, 0.0);
    int slack = p.it()->head[0];
    EXPECT_EQ(p.ps()->lower[slack], -5e-7);
    EXPECT_EQ(p.ps()->perturb.shift_count, 1);
}

TEST(PrimalRatio, StepLimitGivesBoundFlip) {
    Model md = rows_model({10.0}, {1.0});
    Prepared p(md);
    p.set_alpha({{0, 1.0}});
    ASSERT_EQ(ratio_primal_p2(p.lp, 1, -1.0, 0.0, 0), 0); /* a fixed variable */
    EXPECT_EQ(p.ps()->rw.leaving, -1);
    EXPECT_EQ(p.ps()->rw.step, 0.0);
    ASSERT_EQ(ratio_primal_p2(p.lp, 1, -1.0, 3.0, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, -1);
    EXPECT_EQ(p.ps()->rw.step, 3.0);
}

TEST(PrimalRatio, TinyEntriesAreSkippedAndNoBlockIsUnbounded) {
    Model md = rows_model({1.0, 1.0}, {1.0, 1.0});
    Prepared p(md);
    p.set_alpha({{0, 1e-13}, {1, -1.0}}); /* the second row's slack rises freely */
    EXPECT_EQ(ratio_primal_p2(p.lp, 1, -1.0, PR_BIG, 0), 3);
    p.set_alpha({{0, 1e-13}, {1, -1.0}});
    EXPECT_EQ(ratio_primal_p2(p.lp, 1, -1.0, 7.0, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, -1);
    /* direction "D" turns the signs round */
    p.set_alpha({{0, 1e-13}, {1, -1.0}});
    ASSERT_EQ(ratio_primal_p2(p.lp, -1, 1.0, PR_BIG, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, 1);
    EXPECT_NEAR(p.ps()->rw.step, 1.0, 1e-15);
}

TEST(PrimalRatio, TinyPivotAsksForAnotherCandidate) {
    Model md = rows_model({1e-9, 5000.0}, {1.0, 1.0});
    Prepared p(md);
    p.set_alpha({{0, 2e-9}, {1, 1.0}}); /* ratio 0.5 through a pivot of 2e-9 */
    EXPECT_EQ(ratio_primal_p2(p.lp, 1, -1.0, PR_BIG, 0), RC_RETRY);
    p.set_alpha({{0, 2e-9}, {1, 1.0}});
    p.ps()->rw.forced = 1;
    EXPECT_EQ(ratio_primal_p2(p.lp, 1, -1.0, PR_BIG, 0), 0);
    EXPECT_EQ(p.ps()->rw.leaving, 0);
}

TEST(PrimalRatio, PhaseOneWalksPastBreakpointsWhileTheSlopeAllows) {
    /* three 'G' rows: slacks -1; position 0 and 1 infeasible, 2 feasible */
    Model md;
    md.row('G', 1.0);
    md.row('G', 1.0);
    md.row('G', -3.0);
    md.col(1.0, 0.0, 1e20, {{0, 1.0}, {1, 1.0}, {2, 1.0}});
    Prepared p(md);
    primal_state *ps = p.ps();
    ASSERT_EQ(ps->phase, 1);
    ASSERT_EQ(ps->n_inf, 2);
    /* x rises: each row's slack x - rhs rises with alpha -1 (slack -1) */
    primal_compute_y(p.lp);
    double d = primal_dj(p.lp, 0);
    EXPECT_NEAR(d, -2.0, 1e-12);
    sparse_vec *a = &ps->alpha;
    sv_clear(a);
    for (int i = 0; i < 3; i++) a->val[i] = 0.0;
    /* by position: head[i] is the slack of row i with coefficient -1 */
    for (int i = 0; i < 3; i++) {
        a->val[i] = -1.0;
        a->idx[a->nz++] = i;
    }
    ASSERT_EQ(ratio_primal_p1(p.lp, 1, d, PR_BIG, 0), 0);
    /* both infeasible rows become feasible at step 1; the slope 2 is used
     * up there, so the walk stops at step 1 */
    EXPECT_NEAR(ps->rw.step, 1.0, 1e-12);
    EXPECT_TRUE(ps->rw.leaving == 0 || ps->rw.leaving == 1);
}

TEST(PrimalPricing, FamiliesChooseAnAttractiveColumn) {
    Model md;
    md.row('L', 4.0);
    md.col(-1.0, 0.0, 1e20, {{0, 1.0}});
    md.col(-3.0, 0.0, 1e20, {{0, 1.0}});
    md.col(2.0, 0.0, 1e20, {{0, 1.0}});
    md.col(1.0, 0.0, 5.0, {{0, 1.0}});
    for (int fam : {0, 1, 2, 4}) {
        Prepared p(md, fam);
        int q = primal_price_select(p.lp, 1e-6);
        EXPECT_EQ(q, 1) << "family " << fam;
        /* a banned column is passed over */
        p.it()->ban[1] = 33;
        primal_price_reset(p.lp);
        EXPECT_EQ(primal_price_select(p.lp, 1e-6), 0) << "family " << fam;
        p.it()->ban[0] = 33;
        primal_price_reset(p.lp);
        EXPECT_EQ(primal_price_select(p.lp, 1e-6), -1) << "family " << fam;
    }
}

TEST(PrimalPricing, ColumnAtUpperPricesWithTheOtherSign) {
    Model md;
    md.row('L', 4.0);
    md.col(-1.0, -5.0, 2.0, {{0, 1.0}}); /* starts at its upper bound 2 */
    Prepared p(md, 4);
    ASSERT_EQ(p.it()->status[0], 2);
    /* d = -1 at upper: raising is impossible and lowering worsens */
    EXPECT_EQ(primal_price_select(p.lp, 1e-6), -1);
}

TEST(PrimalTolerance, SteppingRules) {
    EXPECT_DOUBLE_EQ(tol_step(1e-5), 1e-6);
    EXPECT_DOUBLE_EQ(tol_step(1e-6), std::fmax(0.3154574132492114e-6, 1e-7));
    EXPECT_DOUBLE_EQ(tol_raise(1e-6), 1.1e-6);
    EXPECT_DOUBLE_EQ(tol_raise(1e-4), 2e-4);
    EXPECT_DOUBLE_EQ(tol_reduce(1e-6), 1e-7);
    EXPECT_DOUBLE_EQ(tol_reduce(1e-12), 0.9900990099009901e-12);
}
