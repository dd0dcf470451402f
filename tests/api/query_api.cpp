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
