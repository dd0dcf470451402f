/* Problem loading and copying: the computational form, capacities, the data
 * check, and failures that must leave the caller's model alone. */
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "store/lp.h"
#include "support/internal.h"
#include "support/model.h"

TEST(Load, SmallModelHasRangeColumnAndSlacks) {
    TestEnv t;
    int st = 0;
    TRVlp lp = small_model().copy_into(t.env, &st);
    ASSERT_EQ(st, 0);
    lp_data *d = lp_of(lp)->lpdata;
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 3);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 4);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 8);
    /* row 3 is ranged with -3: a column with -1 in row 3, bounds [-3, 0] */
    ASSERT_EQ(d->nstruct, 4);
    EXPECT_EQ(d->matcnt[3], 1);
    EXPECT_EQ(d->matind[d->matbeg[3]], 3);
    EXPECT_EQ(d->matval[d->matbeg[3]], -1.0);
    EXPECT_EQ(d->lb[3], -3.0);
    EXPECT_EQ(d->ub[3], 0.0);
    EXPECT_EQ(d->obj[3], 0.0);
    /* slacks for the 'L' and 'G' rows only */
    EXPECT_EQ(d->ntotal, 6);
    EXPECT_EQ(d->slackrow[0], 0);
    EXPECT_EQ(d->slackval[0], 1.0);
    EXPECT_EQ(d->slackrow[1], 1);
    EXPECT_EQ(d->slackval[1], -1.0);
    /* 1e18 is infinite and stored as 1e20 */
    EXPECT_EQ(d->ub[2], 1e20);
    EXPECT_EQ(d->upperkind[2], KIND_INF);
    EXPECT_EQ(d->lowerkind[0], KIND_ZERO);
    EXPECT_EQ(d->lowerkind[1], KIND_FINITE);
    EXPECT_EQ(d->notsimple, 1);
    for (int j = 0; j < d->nstruct; j++) EXPECT_EQ(d->colend[j], d->matbeg[j] + d->matcnt[j]);
    EXPECT_STREQ(d->colname[1], "x2");
    EXPECT_STREQ(d->rowname[3], "r4");
    /* spare room per the growth parameters */
    EXPECT_GE(d->colspace, 4 + 100);
    EXPECT_GE(d->rowspace, 4 + 100);
    EXPECT_GE(d->nzspace, 9 + 500);
}

TEST(Load, SimpleModelIsMarkedSimple) {
    TestEnv t;
    Model m;
    m.row('L', 1.0);
    m.col(1.0, 0.0, TRV_INFBOUND, {{0, 1.0}});
    TRVlp lp = m.copy_into(t.env);
    ASSERT_NE(lp, nullptr);
    EXPECT_EQ(lp_of(lp)->lpdata->notsimple, 0);
}

TEST(Load, LoadModelKeepsTheCallersArrays) {
    TestEnv t;
    double obj[3] = {1, 2, 0}, rhs[2] = {1, 5}, lb[3] = {0, 0, 0}, ub[3] = {4, 4, 0};
    double rng[2] = {0, 3};
    char sense[2] = {'L', 'R'};
    int beg[3] = {0, 2, 0}, cnt[3] = {2, 1, 0}, ind[4] = {0, 1, 1, 0};
    double val[4] = {1, 1, 1, 0};
    TRVlp lp = TRVloadlp(t.env, "ld", 2, 2, 1, obj, rhs, sense, beg, cnt, ind,
                         val, lb, ub, rng, 3, 2, 4);
    ASSERT_NE(lp, nullptr);
    EXPECT_EQ(lp_of(lp)->memmodel, MEM_LOAD);
    EXPECT_EQ(lp_of(lp)->lpdata->obj, obj);
    EXPECT_EQ(beg[2], 3); /* the range column went into the caller's spare room */
    EXPECT_EQ(ub[2], 3.0);
    /* a copy into a loaded problem is refused */
    EXPECT_EQ(TRVcopylp(t.env, lp, 2, 2, 1, obj, rhs, sense, beg, cnt, ind, val,
                        lb, ub, rng),
              1008);
    /* without room for the range column: 1401 */
    t.clear();
    TRVlp full = TRVloadlp(t.env, "full", 2, 2, 1, obj, rhs, sense, beg, cnt,
                           ind, val, lb, ub, rng, 2, 2, 4);
    EXPECT_EQ(full, nullptr);
    EXPECT_NE(t.err.find("TORVA Error  1401:"), std::string::npos);
    EXPECT_EQ(TRVunloadprob(t.env, &lp), 0);
    EXPECT_EQ(lp, nullptr);
}

TEST(Load, BadSpacesAndPointersAreRefusedBeforeAnyAllocation) {
    TestEnv t;
    double v[1] = {0};
    char s[1] = {'L'};
    int i[1] = {0};
    long before = trv_alloc_count();
    EXPECT_EQ(TRVloadlp(t.env, "a", 1, 1, 1, v, v, s, i, i, i, v, v, v, nullptr,
                        0, 1, 1),
              nullptr);
    EXPECT_NE(t.err.find("TORVA Error  1007:"), std::string::npos);
    EXPECT_EQ(trv_alloc_count(), before);
    t.clear();
    EXPECT_EQ(TRVloadlp(t.env, "a", 1, 1, 1, nullptr, v, s, i, i, i, v, v, v,
                        nullptr, 1, 1, 1),
              nullptr);
    EXPECT_EQ(t.err, "TORVA Error  1004: Null pointer for required data.\n");
    int st = 0;
    EXPECT_EQ(TRVcreateprob(t.env, &st, nullptr), nullptr);
    EXPECT_EQ(st, 1004);
}

/* Name stores are measured before they are allocated: names of 2100000000
 * bytes or more are a size error, not a wrapped int. Many names point at
 * one long text, so nothing of that size is ever allocated. */
TEST(Load, NameStoresOfTwoGigabytesAreRefusedBeforeAllocation) {
    std::string big(1049999, 'n'), less(1049998, 'n');
    std::vector<char *> names(2000, big.data());
    long bytes = 0;
    EXPECT_EQ(lp_namestore_bytes(2000, names.data(), 2000, &bytes), 1012);
    EXPECT_EQ(bytes, 2100000000L);
    names[0] = less.data();
    EXPECT_EQ(lp_namestore_bytes(2000, names.data(), 2000, &bytes), 0);
    EXPECT_EQ(bytes, 2099999999L);
    /* the spare slots count too */
    EXPECT_EQ(lp_namestore_bytes(2000, names.data(), 2001, &bytes), 1012);
    EXPECT_EQ(lp_namestore_bytes(0, nullptr, 10, &bytes), 0);
    EXPECT_EQ(bytes, 170L);

    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    ASSERT_NE(lp, nullptr);
    const int n = 2100;
    std::vector<double> obj(n, 1.0), lb(n, 0.0), ub(n, 1.0), rhs(1, 0.0), val(1, 0.0);
    std::vector<int> beg(n, 0), cnt(n, 0), ind(1, 0);
    std::vector<char *> colname(n, big.data());
    char sense[1] = {'L'};
    t.clear();
    EXPECT_EQ(TRVcopylpwnames(t.env, lp, n, 1, 1, obj.data(), rhs.data(), sense, beg.data(),
                              cnt.data(), ind.data(), val.data(), lb.data(), ub.data(), nullptr,
                              colname.data(), nullptr),
              1012);
    EXPECT_EQ(t.err, "TORVA Error  1012: Problem size limits too large.\n");
    /* the problem is left empty and usable */
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 0);
    colname.assign(n, less.data() + less.size() - 3);
    EXPECT_EQ(TRVcopylpwnames(t.env, lp, n, 1, 1, obj.data(), rhs.data(), sense, beg.data(),
                              cnt.data(), ind.data(), val.data(), lb.data(), ub.data(), nullptr,
                              colname.data(), nullptr),
              0);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), n);
    TRVfreeprob(t.env, &lp);
}

TEST(Load, DataCheckCatchesBadInputAndKeepsTheModel) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    ASSERT_NE(lp, nullptr);
    TRVsetintparam(t.env, 1056, 1);
    Model bad = small_model();
    bad.sense[1] = 'X';
    std::vector<char *> cn, rn;
    auto copy = [&](Model &m) {
        return TRVcopylp(t.env, lp, m.ncols(), m.nrows(), m.objsen, m.obj.data(),
                         m.rhs.data(), m.sense.data(), m.matbeg.data(),
                         m.matcnt.data(), m.matind.data(), m.matval.data(),
                         m.lb.data(), m.ub.data(), m.rngval.data());
    };
    t.clear();
    EXPECT_EQ(copy(bad), 1215);
    EXPECT_EQ(t.err, "TORVA Error  1215: Illegal sense entry 1.\n");
    Model dup = small_model();
    dup.matind[1] = 0; /* column 0 names row 0 twice */
    EXPECT_EQ(copy(dup), 1222);
    Model oob = small_model();
    oob.matind[4] = 9;
    t.clear();
    EXPECT_EQ(copy(oob), 1203);
    EXPECT_EQ(t.err, "TORVA Error  1203: Row index 4 out of range.\n");
    Model neg = small_model();
    neg.matcnt[0] = -1;
    EXPECT_EQ(copy(neg), 1227);
    /* the earlier model is untouched */
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 4);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 8);
    EXPECT_EQ(lp_of(lp)->lpdata->sense[1], 'G');
}

TEST(Load, CopyOverAMipDropsItsData) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    lp_of(lp)->probtype = PROB_MIP;
    lp_of(lp)->lpdata->ctype = trv_alloc<char>(lp_of(lp)->lpdata->colspace);
    Model m = small_model();
    ASSERT_EQ(TRVcopylp(t.env, lp, m.ncols(), m.nrows(), 1, m.obj.data(),
                        m.rhs.data(), m.sense.data(), m.matbeg.data(),
                        m.matcnt.data(), m.matind.data(), m.matval.data(),
                        m.lb.data(), m.ub.data(), m.rngval.data()),
              0);
    EXPECT_EQ(t.warn, "Freeing MIP data.\n");
    EXPECT_EQ(TRVgetprobtype(t.env, lp), 0);
    EXPECT_EQ(lp_of(lp)->lpdata->ctype, nullptr);
    EXPECT_EQ(lp_of(lp)->lpdata->colname, nullptr); /* copied without names */
}

TEST(Load, CloneIsDeepAndHasNoSpareRoom) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    TRVcopyobjname(t.env, lp, "cost");
    int st = -1;
    TRVlp c = TRVcloneprob(t.env, lp, &st);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(st, 0);
    lp_data *a = lp_of(lp)->lpdata, *b = lp_of(c)->lpdata;
    EXPECT_NE(a->obj, b->obj);
    EXPECT_EQ(b->nstruct, a->nstruct);
    EXPECT_EQ(b->colspace, 4); /* structurals plus the range column */
    EXPECT_STREQ(b->objname, "cost");
    EXPECT_STREQ(b->rowname[2], "r3");
    for (int j = 0; j < a->nstruct; j++) {
        EXPECT_EQ(a->lb[j], b->lb[j]);
        EXPECT_EQ(a->ub[j], b->ub[j]);
    }
    int v;
    TRVgetintparam(t.env, 1048, &v);
    EXPECT_EQ(v, 500);
}

TEST(Load, CloneRestoresGrowthParametersWhenTheCopyFails) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    TRVsetintparam(t.env, 1046, 7);
    for (long n = 1; n < 60; n++) {
        trv_alloc_failat(n);
        int st = 0;
        TRVlp c = TRVcloneprob(t.env, lp, &st);
        trv_alloc_failat(0);
        if (c != nullptr) {
            EXPECT_EQ(st, 0);
            TRVfreeprob(t.env, &c);
            break;
        }
        EXPECT_EQ(st, 1001) << n;
        int v;
        TRVgetintparam(t.env, 1046, &v);
        ASSERT_EQ(v, 7) << n;
    }
}

TEST(Load, ReallocGrowsTheCallersArraysOnlyWithCurrentPointers) {
    TestEnv t;
    double *obj = static_cast<double *>(TRVmalloc(2 * sizeof(double)));
    double *lb = static_cast<double *>(TRVmalloc(2 * sizeof(double)));
    double *ub = static_cast<double *>(TRVmalloc(2 * sizeof(double)));
    double *rhs = static_cast<double *>(TRVmalloc(sizeof(double)));
    double *val = static_cast<double *>(TRVmalloc(2 * sizeof(double)));
    char *sense = static_cast<char *>(TRVmalloc(1));
    int *beg = static_cast<int *>(TRVmalloc(2 * sizeof(int)));
    int *cnt = static_cast<int *>(TRVmalloc(2 * sizeof(int)));
    int *ind = static_cast<int *>(TRVmalloc(2 * sizeof(int)));
    obj[0] = 1, obj[1] = 1, lb[0] = lb[1] = 0, ub[0] = ub[1] = 1;
    rhs[0] = 1, sense[0] = 'L', beg[0] = 0, beg[1] = 1, cnt[0] = cnt[1] = 1;
    ind[0] = ind[1] = 0, val[0] = val[1] = 1;
    TRVlp lp = TRVloadlp(t.env, "r", 2, 1, 1, obj, rhs, sense, beg, cnt, ind,
                         val, lb, ub, nullptr, 2, 1, 2);
    ASSERT_NE(lp, nullptr);
    double *stale = obj + 1;
    EXPECT_EQ(TRVreallocprob(t.env, lp, &stale, nullptr, nullptr, &beg, &cnt,
                             nullptr, nullptr, &lb, &ub, nullptr, nullptr,
                             nullptr, nullptr, nullptr, 10, 1, 2, 0, 0),
              1005);
    EXPECT_EQ(lp_of(lp)->lpdata->colspace, 2);
    ASSERT_EQ(TRVreallocprob(t.env, lp, &obj, &rhs, &sense, &beg, &cnt, &ind,
                             &val, &lb, &ub, nullptr, nullptr, nullptr, nullptr,
                             nullptr, 10, 5, 20, 0, 0),
              0);
    EXPECT_EQ(lp_of(lp)->lpdata->colspace, 10);
    EXPECT_EQ(lp_of(lp)->lpdata->obj, obj);
    EXPECT_EQ(obj[1], 1.0);
    /* a shrink keeps the capacity */
    ASSERT_EQ(TRVreallocprob(t.env, lp, &obj, &rhs, &sense, &beg, &cnt, &ind,
                             &val, &lb, &ub, nullptr, nullptr, nullptr, nullptr,
                             nullptr, 3, 1, 2, 0, 0),
              0);
    EXPECT_EQ(lp_of(lp)->lpdata->colspace, 10);
    TRVfreeprob(t.env, &lp);
    for (void *p : {(void *)obj, (void *)lb, (void *)ub, (void *)rhs, (void *)val,
                    (void *)sense, (void *)beg, (void *)cnt, (void *)ind})
        TRVfree(p);
}

TEST(Load, UpdateCapFollowsTheRowCountAndParameter) {
    TestEnv t;
    lp_data d{};
    d.nrows = 10;
    lp_updatecap(env_of(t.env), &d);
    EXPECT_EQ(d.updatecap, 1001);
    d.nrows = 50;
    lp_updatecap(env_of(t.env), &d);
    EXPECT_EQ(d.updatecap, 5001);
    TRVsetintparam(t.env, 1031, 21);
    lp_updatecap(env_of(t.env), &d);
    EXPECT_EQ(d.updatecap, 1001); /* min(50*20+1, 50*20+1) */
    d.nrows = 10;
    lp_updatecap(env_of(t.env), &d);
    EXPECT_EQ(d.updatecap, 201);
}

TEST(Load, FreeprobChecksItsPointer) {
    TestEnv t;
    EXPECT_EQ(TRVfreeprob(t.env, nullptr), 1004);
    TRVlp none = nullptr;
    EXPECT_EQ(TRVfreeprob(t.env, &none), 0);
}

/* Every allocation of open, clone and load fails once in turn: the call
 * reports 1001 and leaks nothing (the sanitizer build checks the leaks). */
TEST(OutOfMemory, OpenCloneAndLoadFailCleanly) {
    for (long n = 1;; n++) {
        trv_alloc_failat(n);
        int st = -1;
        TRVenv env = TRVopenTORVA(&st);
        trv_alloc_failat(0);
        if (env != nullptr) {
            TRVcloseTORVA(&env);
            EXPECT_GT(n, 5);
            break;
        }
        EXPECT_EQ(st, 1001);
    }
    TestEnv t;
    for (long n = 1;; n++) {
        trv_alloc_failat(n);
        int st = -1;
        TRVenv c = TRVparenv(t.env, &st);
        trv_alloc_failat(0);
        if (c != nullptr) {
            TRVfreeparenv(t.env, &c);
            break;
        }
        EXPECT_EQ(st, 1001);
    }
    for (long n = 1;; n++) {
        trv_alloc_failat(n);
        int st = -1;
        TRVlp lp = small_model().copy_into(t.env, &st);
        trv_alloc_failat(0);
        if (lp != nullptr) {
            TRVfreeprob(t.env, &lp);
            break;
        }
        EXPECT_EQ(st, 1001);
    }
}

TEST(Frame, RangeCheckPrintsBothMessagesForOneFailure) {
    TestEnv t;
    EXPECT_FALSE(range_check(env_of(t.env), "TRVgetx", -1, 9, 0, 5));
    EXPECT_EQ(t.err,
              "TORVA Error  1205: TRVgetx: 'begin' value -1 is less than 0.\n"
              "TORVA Error  1206: TRVgetx: 'end' value 9 is greater than 4.\n");
    EXPECT_TRUE(range_check(env_of(t.env), "f", 0, 4, 0, 5));
}

TEST(Frame, ReportPrintsOnceAndTurnsNegativeCodesPositive) {
    TestEnv t;
    int st = env_error(env_of(t.env), 1423, "nofile.mps");
    EXPECT_EQ(st, -1423);
    env_report(env_of(t.env), &st);
    EXPECT_EQ(st, 1423);
    EXPECT_EQ(t.err, "TORVA Error  1423: Could not open file 'nofile.mps' for reading.\n");
    t.clear();
    st = 1101;
    TRVsetintparam(t.env, 1043, 0);
    env_report(env_of(t.env), &st);
    EXPECT_EQ(t.err, ""); /* presolve messages switched off */
    st = 77777;
    env_report(env_of(t.env), &st);
    EXPECT_EQ(t.err, "TORVA Error 77777:  Unknown error code.\n");
}

TEST(Frame, DefaultNamesAndRandomGenerator) {
    TestEnv t;
    EXPECT_STREQ(env_varname(env_of(t.env), nullptr, 5, 2), "x3");
    EXPECT_STREQ(env_conname(env_of(t.env), nullptr, 5, 0), "c1");
    EXPECT_STREQ(env_varname(env_of(t.env), nullptr, 5, 5), "");
    /* the generator's first draws from seed 1 */
    EXPECT_EQ(env_random(env_of(t.env)), 16838);
    EXPECT_EQ(env_random(env_of(t.env)), 5758);
    EXPECT_GE(env_time(env_of(t.env)), 0.0);
}
