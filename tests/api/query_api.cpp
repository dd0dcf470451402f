/* Model queries read back what was loaded, in the caller's view. */
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/model.h"

class Query : public ::testing::Test {
protected:
    TestEnv t;
    Model m = small_model();
    TRVlp lp = nullptr;
    void SetUp() override { lp = m.copy_into(t.env); ASSERT_NE(lp, nullptr); }
};

TEST_F(Query, VectorsReadBackAsLoaded) {
    std::vector<double> v(4);
    ASSERT_EQ(TRVgetobj(t.env, lp, v.data(), 0, 2), 0);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], -2.0);
    EXPECT_EQ(v[2], 0.5);
    ASSERT_EQ(TRVgetrhs(t.env, lp, v.data(), 0, 3), 0);
    EXPECT_EQ(v, m.rhs);
    char s[4];
    ASSERT_EQ(TRVgetsense(t.env, lp, s, 0, 3), 0);
    EXPECT_EQ(std::string(s, 4), "LGER"); /* the ranged row stays 'R' */
    ASSERT_EQ(TRVgetrngval(t.env, lp, v.data(), 3, 3), 0);
    EXPECT_EQ(v[0], -3.0);
    ASSERT_EQ(TRVgetlb(t.env, lp, v.data(), 0, 2), 0);
    EXPECT_EQ(v[1], -1.0);
    ASSERT_EQ(TRVgetub(t.env, lp, v.data(), 0, 2), 0);
    EXPECT_EQ(v[2], 1e20);
    double c = -1;
    ASSERT_EQ(TRVgetcoef(t.env, lp, 3, 0, &c), 0);
    EXPECT_EQ(c, 2.0);
    ASSERT_EQ(TRVgetcoef(t.env, lp, 2, 0, &c), 0);
    EXPECT_EQ(c, 0.0);
    EXPECT_EQ(TRVgetobjsen(t.env, lp), 1);
}

TEST_F(Query, EmptyRangeWritesNothingAndBadRangesReport) {
    double v = 42.0;
    EXPECT_EQ(TRVgetobj(t.env, lp, &v, 3, 2), 0);
    EXPECT_EQ(v, 42.0);
    t.clear();
    EXPECT_EQ(TRVgetobj(t.env, lp, &v, 0, 3), 1200); /* range column hidden */
    EXPECT_EQ(t.err,
              "TORVA Error  1206: TRVgetobj: 'end' value 3 is greater than 2.\n"
              "TORVA Error  1200: Index is outside range of valid values.\n");
    EXPECT_EQ(TRVgetobj(t.env, lp, nullptr, 0, 1), 1004);
    EXPECT_EQ(TRVgetrhs(t.env, lp, &v, -1, 0), 1200);
}

TEST_F(Query, ColumnsAndRowsWithTheSpaceConvention) {
    int nz = -1, surplus = -1;
    /* a probe: null arrays, silent 1207 */
    t.clear();
    EXPECT_EQ(TRVgetcols(t.env, lp, &nz, nullptr, nullptr, nullptr, 0, &surplus, 0, 2), 1207);
    EXPECT_EQ(surplus, -8);
    EXPECT_EQ(nz, 0);
    EXPECT_EQ(t.err, "");
    std::vector<int> beg(3), ind(8);
    std::vector<double> val(8);
    ASSERT_EQ(TRVgetcols(t.env, lp, &nz, beg.data(), ind.data(), val.data(), 8, &surplus, 0, 2), 0);
    EXPECT_EQ(nz, 8);
    EXPECT_EQ(surplus, 0);
    EXPECT_EQ(beg, (std::vector<int>{0, 3, 5}));
    EXPECT_EQ(ind, m.matind);
    EXPECT_EQ(val, m.matval);
    /* too little room: counted, reported, truncated */
    EXPECT_EQ(TRVgetcols(t.env, lp, &nz, beg.data(), ind.data(), val.data(), 4, &surplus, 0, 2), 1207);
    EXPECT_EQ(nz, 4);
    EXPECT_EQ(surplus, -4);
    EXPECT_EQ(beg[2], 5);
    /* rows: transposed, the range column is not among them */
    std::vector<int> rbeg(4), rind(8);
    std::vector<double> rval(8);
    ASSERT_EQ(TRVgetrows(t.env, lp, &nz, rbeg.data(), rind.data(), rval.data(), 8, &surplus, 0, 3), 0);
    EXPECT_EQ(nz, 8);
    EXPECT_EQ(rbeg, (std::vector<int>{0, 2, 4, 6}));
    EXPECT_EQ(rind[6], 0);
    EXPECT_EQ(rval[6], 2.0);
    EXPECT_EQ(rind[7], 2);
}

TEST_F(Query, NamesWithTheSpaceConvention) {
    int surplus = 0;
    EXPECT_EQ(TRVgetcolname(t.env, lp, nullptr, nullptr, 0, &surplus, 0, 2), 1207);
    EXPECT_EQ(surplus, -9);
    char *names[3];
    char store[9];
    ASSERT_EQ(TRVgetcolname(t.env, lp, names, store, 9, &surplus, 0, 2), 0);
    EXPECT_STREQ(names[2], "x3");
    char *rn[1];
    char rs[2];
    t.clear();
    EXPECT_EQ(TRVgetrowname(t.env, lp, rn, rs, 2, &surplus, 1, 1), 1207);
    EXPECT_EQ(surplus, -1);
    EXPECT_NE(t.err.find("1207"), std::string::npos);
    char pn[16];
    ASSERT_EQ(TRVgetprobname(t.env, lp, pn, 16, &surplus), 0);
    EXPECT_STREQ(pn, "small");
    EXPECT_EQ(TRVgetobjname(t.env, lp, pn, 16, &surplus), 1220);
    /* a problem without names */
    Model plain = small_model();
    TRVlp p2 = TRVcreateprob(t.env, &surplus, "p");
    TRVcopylp(t.env, p2, plain.ncols(), plain.nrows(), 1, plain.obj.data(),
              plain.rhs.data(), plain.sense.data(), plain.matbeg.data(),
              plain.matcnt.data(), plain.matind.data(), plain.matval.data(),
              plain.lb.data(), plain.ub.data(), plain.rngval.data());
    EXPECT_EQ(TRVgetcolname(t.env, p2, names, store, 9, &surplus, 0, 0), 1219);
}

/* Free rows and other rim vectors: the same space convention as the
 * columns, their own ranges, and 1218 without any. */
TEST_F(Query, FreeRowsAndRimsWithTheSpaceConvention) {
    int nz = -1, surplus = -1, beg[3] = {9, 9, 9}, ind[4];
    double val[4];
    t.clear();
    EXPECT_EQ(TRVgetfreerows(t.env, lp, &nz, beg, ind, val, 4, &surplus, 0, 0), 1218);
    EXPECT_EQ(t.err, "TORVA Error  1218: No rim vectors.\n");
    EXPECT_EQ(TRVgetrims(t.env, lp, &nz, beg, ind, val, 4, &surplus, 0, 0), 1218);
    /* rows 0 (x0: 1, x1: 3) and 2 (x1: 1, x2: 1) become free rows */
    int rows[2] = {0, 2}, slot[2] = {-1, -1};
    ASSERT_EQ(TRVchgtofreerow(t.env, lp, 2, rows, slot), 0);
    ASSERT_EQ(TRVgetnumfreerows(t.env, lp), 2);
    t.clear();
    EXPECT_EQ(TRVgetfreerows(t.env, lp, &nz, nullptr, nullptr, nullptr, 0, &surplus, 0, 1), 1207);
    EXPECT_EQ(surplus, -4);
    EXPECT_EQ(nz, 0);
    EXPECT_EQ(t.err, "");
    EXPECT_EQ(TRVgetfreerows(t.env, lp, &nz, beg, nullptr, val, 4, &surplus, 0, 1), 1004);
    ASSERT_EQ(TRVgetfreerows(t.env, lp, &nz, beg, ind, val, 4, &surplus, 0, 1), 0);
    EXPECT_EQ(nz, 4);
    EXPECT_EQ(surplus, 0);
    EXPECT_EQ(beg[0], 0);
    EXPECT_EQ(beg[1], 2);
    /* each free row holds what its row held, whatever the order */
    for (int k = 0; k < 2; k++) {
        int r = slot[k] == 0 ? 0 : 1; /* the slot row k landed in */
        double want[3] = {0, 0, 0}, got[3] = {0, 0, 0};
        if (rows[k] == 0) want[0] = 1.0, want[1] = 3.0;
        else want[1] = 1.0, want[2] = 1.0;
        for (int q = beg[r]; q < (r == 0 ? beg[1] : nz); q++) got[ind[q]] = val[q];
        for (int j = 0; j < 3; j++) EXPECT_EQ(got[j], want[j]) << "row " << rows[k] << " col " << j;
    }
    /* short of room: counted, reported, cut */
    t.clear();
    EXPECT_EQ(TRVgetfreerows(t.env, lp, &nz, beg, ind, val, 3, &surplus, 0, 1), 1207);
    EXPECT_EQ(nz, 3);
    EXPECT_EQ(surplus, -1);
    EXPECT_EQ(t.err, "TORVA Error  1207: Insufficient array length.\n");
    t.clear();
    EXPECT_EQ(TRVgetfreerows(t.env, lp, &nz, beg, ind, val, 4, &surplus, 1, 2), 1200);
    EXPECT_EQ(t.err,
              "TORVA Error  1206: TRVgetfreerows: 'end' value 2 is greater than 1.\n"
              "TORVA Error  1200: Index is outside range of valid values.\n");
    /* the other rims start after the free rows; there are none here */
    t.clear();
    EXPECT_EQ(TRVgetrims(t.env, lp, &nz, beg, ind, val, 4, &surplus, 0, 0), 1200);
    EXPECT_EQ(t.err,
              "TORVA Error  1205: TRVgetrims: 'begin' value 0 is less than 2.\n"
              "TORVA Error  1200: Index is outside range of valid values.\n");
    EXPECT_EQ(TRVgetrims(t.env, lp, &nz, beg, ind, val, 4, &surplus, 2, 1), 0);
    /* free rows keep their names as rim names: a silent probe, the names,
     * a short store */
    int need = 0;
    t.clear();
    EXPECT_EQ(TRVgetrimname(t.env, lp, nullptr, nullptr, 0, &need, 0, 1), 1207);
    EXPECT_EQ(t.err, "");
    std::vector<char> store(-need);
    char *nm[2] = {nullptr, nullptr};
    ASSERT_EQ(TRVgetrimname(t.env, lp, nm, store.data(), -need, &surplus, 0, 1), 0);
    EXPECT_EQ(surplus, 0);
    ASSERT_NE(nm[slot[0]], nullptr);
    ASSERT_NE(nm[slot[1]], nullptr);
    EXPECT_EQ(std::string(nm[slot[0]]), m.rownames[0]);
    EXPECT_EQ(std::string(nm[slot[1]]), m.rownames[2]);
    EXPECT_EQ(TRVgetrimname(t.env, lp, nm, store.data(), 2, &surplus, 0, 1), 1207);
    EXPECT_EQ(surplus, 2 + need);
    EXPECT_EQ(TRVgetrimname(t.env, lp, nm, store.data(), -need, &surplus, 0, 2), 1200);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 2);
}

TEST_F(Query, VectorNamesAndIdleCountersOfAModelInMemory) {
    char *p = reinterpret_cast<char *>(&p);
    ASSERT_EQ(TRVgetdataname(t.env, lp, &p), 0);
    ASSERT_EQ(TRVgetrhsname(t.env, lp, &p), 0);
    EXPECT_EQ(p, nullptr); /* a model built in memory names no vectors */
    EXPECT_EQ(TRVgetrngname(t.env, lp, &p), 0);
    EXPECT_EQ(TRVgetbndname(t.env, lp, &p), 0);
    EXPECT_EQ(TRVgetbndname(t.env, lp, nullptr), 1004);
    EXPECT_EQ(TRVgetrhsname(t.env, nullptr, &p), 1009);
    EXPECT_EQ(TRVgetrhsname(nullptr, lp, &p), 1002);
    /* counters of routes that did not run */
    EXPECT_EQ(TRVgetbaritcnt(t.env, lp), 0);
    EXPECT_EQ(TRVgetcrossppushcnt(t.env, lp), 0);
    EXPECT_EQ(TRVgetcrosspexchcnt(t.env, lp), 0);
    EXPECT_EQ(TRVgetcrossdpushcnt(t.env, lp), 0);
    EXPECT_EQ(TRVgetcrossdexchcnt(t.env, lp), 0);
    EXPECT_EQ(TRVgetpsbcnt(t.env, lp), 0);
    EXPECT_EQ(TRVgetdsbcnt(t.env, lp), 0);
    t.clear();
    EXPECT_EQ(TRVgetbaritcnt(t.env, nullptr), 0);
    EXPECT_EQ(t.err, "TORVA Error  1009: No problem exists.\n");
}

TEST(QueryLoaded, VectorNamesArePointersToTheModelsOwn) {
    TestEnv t;
    /* min x, x + y <= 4, x >= 1 - y; the caller's arrays stay in use */
    double obj[2] = {1.0, 0.0}, rhs[2] = {4.0, 1.0}, val[4] = {1.0, 1.0, 1.0, 1.0};
    double lb[2] = {0.0, 0.0}, ub[2] = {3.0, 3.0};
    char sense[2] = {'L', 'G'};
    int beg[2] = {0, 2}, cnt[2] = {2, 2}, ind[4] = {0, 1, 0, 1};
    char data[] = "SET1", objn[] = "cost", rhsn[] = "RHSA", rngn[] = "RNGB", bndn[] = "BNDC";
    TRVlp lp = TRVloadprob(t.env, "p", 2, 2, 0, 1, obj, rhs, sense, beg, cnt, ind, val, lb,
                           ub, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           data, objn, rhsn, rngn, bndn, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr, 2, 2, 4, 0, 0, 0, 0, 0);
    ASSERT_NE(lp, nullptr) << t.err;
    char *p = nullptr;
    ASSERT_EQ(TRVgetdataname(t.env, lp, &p), 0);
    EXPECT_EQ(p, data);
    ASSERT_EQ(TRVgetrhsname(t.env, lp, &p), 0);
    EXPECT_EQ(p, rhsn);
    ASSERT_EQ(TRVgetrngname(t.env, lp, &p), 0);
    EXPECT_EQ(p, rngn);
    ASSERT_EQ(TRVgetbndname(t.env, lp, &p), 0);
    EXPECT_EQ(p, bndn);
    TRVfreeprob(t.env, &lp);
}
