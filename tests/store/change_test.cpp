/* Internals of model changes: when the cache merges, what each change code
 * drops or keeps, changes under a scaling, and failures of memory that
 * must leave the model whole. */
#include <gtest/gtest.h>

#include <vector>

#include "simplex/core.h"
#include "store/change.h"
#include "support/internal.h"
#include "support/model.h"

TEST(Cache, CountsPendingAdditionsWithoutMerging) {
    TestEnv t;
    int st = 0;
    TRVlp lp = TRVcreateprob(t.env, &st, "p");
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVnewcols(t.env, lp, 5, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 5);
    EXPECT_EQ(lp_of(lp)->lpdata->ncols, 0); /* still pending */
    double o[5];
    ASSERT_EQ(TRVgetobj(t.env, lp, o, 0, 4), 0);
    EXPECT_EQ(lp_of(lp)->lpdata->ncols, 5);
    cache_rec *c = static_cast<cache_rec *>(TRVEgetCache(lp));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->empty, 1);
    EXPECT_EQ(c->colsbase, 5);
    TRVfreeprob(t.env, &lp);
}

TEST(Cache, RowsOneAtATimeMergeGeometrically) {
    TestEnv t;
    int st = 0;
    TRVlp lp = TRVcreateprob(t.env, &st, "p");
    ASSERT_NE(lp, nullptr);
    std::vector<int> merged_at;
    int last = 0;
    for (int k = 1; k <= 60; k++) {
        double r = k;
        ASSERT_EQ(TRVnewrows(t.env, lp, 1, &r, nullptr, nullptr, nullptr), 0);
        if (lp_of(lp)->lpdata->nrows != last) {
            last = lp_of(lp)->lpdata->nrows;
            merged_at.push_back(last);
        }
    }
    /* past 10 pending, then past the rows of the last merge */
    EXPECT_EQ(merged_at, (std::vector<int>{11, 23, 47}));
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 60);
    std::vector<double> rhs(60);
    ASSERT_EQ(TRVgetrhs(t.env, lp, rhs.data(), 0, 59), 0);
    for (int k = 0; k < 60; k++) EXPECT_EQ(rhs[k], k + 1.0);
    TRVfreeprob(t.env, &lp);
}

TEST(Cache, AFailedMergeDropsThePendingAdditionsAndKeepsTheModel) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    ASSERT_NE(lp, nullptr);
    char *nm[] = {const_cast<char *>("new")};
    ASSERT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, nm), 0);
    bool failed = false;
    for (long n = 1; n < 40 && !failed; n++) {
        trv_alloc_failat(n);
        int st = TRVcompletelp(t.env, lp);
        trv_alloc_failat(0);
        if (st == 0) break;
        EXPECT_EQ(st, 1001);
        failed = true;
    }
    EXPECT_TRUE(failed);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 3);
    double o[3];
    EXPECT_EQ(TRVgetobj(t.env, lp, o, 0, 2), 0);
    TRVfreeprob(t.env, &lp);
}

TEST(ChangeMemory, FailuresOfEveryAllocationLeaveAWholeModel) {
    /* each change, with each of its allocations failing in turn: a 1001 and
     * a model whose queries still work */
    for (int which = 0; which < 5; which++) {
        int failures = 0;
        for (long n = 1; n < 60; n++) {
            TestEnv t;
            TRVlp lp = small_model().copy_into(t.env);
            ASSERT_NE(lp, nullptr);
            int rows[] = {0, 2};
            int del[] = {1, 0, 0, 1};
            char sn[] = {'R', 'G'};
            char *names[] = {const_cast<char *>("a"), const_cast<char *>("bb")};
            trv_alloc_failat(n);
            int st = 0;
            switch (which) {
            case 0: st = TRVdelsetrows(t.env, lp, del); break;
            case 1: st = TRVdelcols(t.env, lp, 0, 1); break;
            case 2: st = TRVchgsense(t.env, lp, 2, rows, sn); break;
            case 3: st = TRVchgrowname(t.env, lp, 2, rows, names); break;
            default: st = TRVchgtofreerow(t.env, lp, 2, rows, nullptr); break;
            }
            trv_alloc_failat(0);
            EXPECT_TRUE(st == 0 || st == 1001) << which << " " << n;
            int nc = TRVgetnumcols(t.env, lp), nr = TRVgetnumrows(t.env, lp);
            std::vector<double> v(nc + nr + 1);
            if (nc > 0) {
                EXPECT_EQ(TRVgetobj(t.env, lp, v.data(), 0, nc - 1), 0);
            }
            if (nr > 0) {
                EXPECT_EQ(TRVgetrhs(t.env, lp, v.data(), 0, nr - 1), 0);
            }
            const lp_data *d = lp_of(lp)->lpdata;
            int nranged = 0;
            for (int i = 0; i < d->nrows; i++) nranged += d->sense[i] == 'R';
            EXPECT_EQ(d->nstruct, d->ncols + nranged) << which << " " << n;
            TRVfreeprob(t.env, &lp);
            if (st == 0) break;
            failures++;
        }
        if (which != 2) { /* senses need no memory here */
            EXPECT_GT(failures, 0) << which;
        }
    }
}

TEST(ChangeScaled, ValuesGoInThroughTheScalingInForce) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    ASSERT_NE(lp, nullptr);
    lp_data *d = lp_of(lp)->lpdata;
    /* a scaling as the simplex leaves it: entries a / (R C), objective / C,
     * bounds * C, rhs and ranges / R; the range column's factor is 1 / R */
    d->rowscalestore = trv_alloc<double>(d->rowspace);
    d->colscalestore = trv_alloc<double>(d->colspace);
    const double R[] = {2.0, 4.0, 0.5, 8.0}, C[] = {0.25, 2.0, 4.0};
    for (int i = 0; i < 4; i++) d->rowscalestore[i] = R[i];
    for (int j = 0; j < 3; j++) d->colscalestore[j] = C[j];
    d->colscalestore[3] = 1.0 / R[3];
    for (int j = 0; j < d->nstruct; j++) {
        double c = d->colscalestore[j];
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) d->matval[k] /= R[d->matind[k]] * c;
        d->obj[j] /= c;
        if (!is_inf(d->lb[j])) d->lb[j] *= c;
        if (!is_inf(d->ub[j])) d->ub[j] *= c;
    }
    for (int i = 0; i < 4; i++) d->rhs[i] /= R[i], d->rngval[i] /= R[i];
    d->rowscale = d->rowscalestore;
    d->colscale = d->colscalestore;
    d->scaletype = 0;

    int j1 = 1, i3 = 3, i0 = 0;
    double v = 6.0;
    char b = 'U', s = 'R';
    ASSERT_EQ(TRVchgobj(t.env, lp, 1, &j1, &v), 0);
    ASSERT_EQ(TRVchgbds(t.env, lp, 1, &j1, &b, &v), 0);
    ASSERT_EQ(TRVchgrhs(t.env, lp, 1, &i3, &v), 0);
    ASSERT_EQ(TRVchgcoef(t.env, lp, 2, 0, v), 0);
    ASSERT_EQ(TRVchgrngval(t.env, lp, 1, &i0, &v), 0);
    ASSERT_EQ(TRVchgsense(t.env, lp, 1, &i0, &s), 0); /* a second range column */
    double x = 0;
    TRVgetobj(t.env, lp, &x, 1, 1);
    EXPECT_DOUBLE_EQ(x, 6.0);
    TRVgetub(t.env, lp, &x, 1, 1);
    EXPECT_DOUBLE_EQ(x, 6.0);
    TRVgetrhs(t.env, lp, &x, 3, 3);
    EXPECT_DOUBLE_EQ(x, 6.0);
    TRVgetcoef(t.env, lp, 2, 0, &x);
    EXPECT_DOUBLE_EQ(x, 6.0);
    TRVgetrngval(t.env, lp, &x, 0, 0);
    EXPECT_DOUBLE_EQ(x, 6.0);
    /* range columns: bounds in the scaled space are the stored ranges */
    ASSERT_EQ(d->nstruct, 5);
    EXPECT_DOUBLE_EQ(d->ub[3], 6.0 / R[0]);
    EXPECT_DOUBLE_EQ(d->colscale[3], 1.0 / R[0]);
    EXPECT_DOUBLE_EQ(d->lb[4], -3.0 / R[3]);
    EXPECT_DOUBLE_EQ(d->ub[3] / d->colscale[3], 6.0); /* the caller's view */
    /* new rows and columns come in with unit factors */
    double o = 3.0;
    int beg = 0, ind = 1;
    double val = 5.0;
    ASSERT_EQ(TRVaddcols(t.env, lp, 1, 1, &o, &beg, &ind, &val, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(TRVgetcoef(t.env, lp, 1, 3, &x), 0);
    EXPECT_DOUBLE_EQ(x, 5.0);
    TRVgetobj(t.env, lp, &x, 3, 3);
    EXPECT_DOUBLE_EQ(x, 3.0);
    /* with every row gone the scaling goes, the values stay */
    ASSERT_EQ(TRVdelrows(t.env, lp, 0, 3), 0);
    EXPECT_EQ(d->colscale, nullptr);
    TRVgetobj(t.env, lp, &x, 1, 1);
    EXPECT_DOUBLE_EQ(x, 6.0);
    TRVgetub(t.env, lp, &x, 1, 1);
    EXPECT_DOUBLE_EQ(x, 6.0);
    TRVfreeprob(t.env, &lp);
}

/* A problem with a working LP and a stored status, to see what a change
 * keeps. */
struct Solved {
    TestEnv t;
    TRVlp lp = nullptr;
    Solved() {
        lp = small_model().copy_into(t.env);
        if (lp != nullptr && simplex_build(env_of(t.env), lp_of(lp)) == 0) lp_of(lp)->stat = 1;
    }
    ~Solved() { TRVfreeprob(t.env, &lp); }
};

TEST(Invalidate, BoundsAndObjectiveKeepTheBasisMatrixChangesDropIt) {
    {
        Solved s;
        ASSERT_NE(lp_of(s.lp)->solver, nullptr);
        int j = 0;
        char lu = 'U';
        double v = 3.0;
        ASSERT_EQ(TRVchgbds(s.t.env, s.lp, 1, &j, &lu, &v), 0);
        EXPECT_EQ(TRVgetstat(s.t.env, s.lp), 0);
        ASSERT_NE(lp_of(s.lp)->solver, nullptr); /* the basis stays for a warm start */
        EXPECT_EQ(lp_of(s.lp)->solver->ready, 0);
        EXPECT_EQ(lp_of(s.lp)->solver->ready2, 1);
        ASSERT_EQ(TRVchgobj(s.t.env, s.lp, 1, &j, &v), 0);
        ASSERT_NE(lp_of(s.lp)->solver, nullptr);
        ASSERT_EQ(TRVchgrngval(s.t.env, s.lp, 1, &j, &v), 0);
        EXPECT_EQ(lp_of(s.lp)->solver->ready2, 0);
        ASSERT_EQ(TRVchgcoef(s.t.env, s.lp, 0, 0, 2.0), 0);
        EXPECT_EQ(lp_of(s.lp)->solver, nullptr);
    }
    {
        Solved s;
        int j = 0;
        char lu = 'L';
        double v = -1.0;
        ASSERT_EQ(TRVtightenbds(s.t.env, s.lp, 1, &j, &lu, &v), 0);
        ASSERT_NE(lp_of(s.lp)->solver, nullptr);
        EXPECT_EQ(lp_of(s.lp)->solver->ready, 1); /* kept in step */
        EXPECT_EQ(lp_of(s.lp)->solver->splp.lower[0], -1.0);
        EXPECT_EQ(lp_of(s.lp)->solver->it.x[0], -1.0); /* nonbasic at its lower bound */
    }
    {
        Solved s;
        lp_of(s.lp)->stat = 1;
        ASSERT_EQ(TRVchgname(s.t.env, s.lp, 'c', 0, "n"), 0);
        EXPECT_EQ(lp_of(s.lp)->stat, 1); /* names touch no solution */
        ASSERT_NE(lp_of(s.lp)->solver, nullptr);
        ASSERT_EQ(TRVnewcols(s.t.env, s.lp, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(TRVgetstat(s.t.env, s.lp), 0); /* the merge raised its code */
        EXPECT_EQ(lp_of(s.lp)->solver, nullptr);
    }
    {
        Solved s;
        ASSERT_EQ(TRVdelrows(s.t.env, s.lp, 0, 0), 0);
        EXPECT_EQ(lp_of(s.lp)->solver, nullptr);
        EXPECT_EQ(lp_of(s.lp)->stat, 0);
    }
    {
        Solved s;
        invalidate(env_of(s.t.env), lp_of(s.lp), 61); /* outside the table */
        invalidate(env_of(s.t.env), lp_of(s.lp), 40); /* an optimiser's own code */
        EXPECT_EQ(lp_of(s.lp)->stat, 1);
        ASSERT_NE(lp_of(s.lp)->solver, nullptr);
        invalidate(env_of(s.t.env), lp_of(s.lp), 23);
        EXPECT_EQ(lp_of(s.lp)->stat, 1);
        invalidate(env_of(s.t.env), lp_of(s.lp), 28);
        EXPECT_EQ(lp_of(s.lp)->solver, nullptr);
    }
}
