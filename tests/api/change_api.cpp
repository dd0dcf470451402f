/* Model changes through the public interface: bad input is refused with its
 * code and message and leaves the model as it was; deletions keep names and
 * ranged rows in step; names, free rows and the room report. */
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/model.h"

namespace {

class Change : public ::testing::Test {
protected:
    TestEnv t;
    Model m = small_model();
    TRVlp lp = nullptr;
    void SetUp() override {
        lp = m.copy_into(t.env);
        ASSERT_NE(lp, nullptr);
        t.clear();
    }
    std::vector<double> obj() {
        std::vector<double> v(TRVgetnumcols(t.env, lp));
        if (!v.empty()) TRVgetobj(t.env, lp, v.data(), 0, static_cast<int>(v.size()) - 1);
        return v;
    }
    std::vector<double> rhs() {
        std::vector<double> v(TRVgetnumrows(t.env, lp));
        if (!v.empty()) TRVgetrhs(t.env, lp, v.data(), 0, static_cast<int>(v.size()) - 1);
        return v;
    }
    std::string senses() {
        int n = TRVgetnumrows(t.env, lp);
        std::string s(n, '?');
        if (n > 0) TRVgetsense(t.env, lp, s.data(), 0, n - 1);
        return s;
    }
    std::vector<std::string> names(bool cols) {
        int n = cols ? TRVgetnumcols(t.env, lp) : TRVgetnumrows(t.env, lp);
        std::vector<char *> p(n);
        std::vector<char> store(64 * n + 1);
        std::vector<std::string> out;
        if (n == 0) return out;
        int surplus = 0;
        int st = cols ? TRVgetcolname(t.env, lp, p.data(), store.data(), 64 * n, &surplus, 0, n - 1)
                      : TRVgetrowname(t.env, lp, p.data(), store.data(), 64 * n, &surplus, 0, n - 1);
        if (st != 0) return out;
        for (auto q : p) out.emplace_back(q);
        return out;
    }
    double coef(int i, int j) {
        double v = -99;
        TRVgetcoef(t.env, lp, i, j, &v);
        return v;
    }
};

using Names = std::vector<std::string>;

TEST_F(Change, BadIndicesSensesAndBoundKindsAreRefusedWholesale) {
    int ind[] = {0, 7};
    double v[] = {5.0, 6.0};
    EXPECT_EQ(TRVchgobj(t.env, lp, 2, ind, v), 1201);
    EXPECT_EQ(t.err, "TORVA Error  1201: Column index 7 out of range.\n");
    EXPECT_EQ(obj(), (std::vector<double>{1.0, -2.0, 0.5})); /* entry 0 untouched too */
    t.clear();
    int rows[] = {1, 4};
    EXPECT_EQ(TRVchgrhs(t.env, lp, 2, rows, v), 1203);
    EXPECT_EQ(t.err, "TORVA Error  1203: Row index 4 out of range.\n");
    EXPECT_EQ(rhs(), m.rhs);
    t.clear();
    int r2[] = {0, 1};
    char bad[] = {'G', 'X'};
    EXPECT_EQ(TRVchgsense(t.env, lp, 2, r2, bad), 1215);
    EXPECT_EQ(t.err, "TORVA Error  1215: Illegal sense entry 1.\n");
    EXPECT_EQ(senses(), "LGER");
    t.clear();
    char lu[] = {'L', 'x'};
    EXPECT_EQ(TRVchgbds(t.env, lp, 2, r2, lu, v), 1229);
    EXPECT_EQ(t.err, "TORVA Error  1229: Illegal bound change indicator entry 1.\n");
    double lb[3];
    TRVgetlb(t.env, lp, lb, 0, 2);
    EXPECT_EQ(lb[0], 0.0);
    EXPECT_EQ(TRVchgobj(t.env, lp, -1, ind, v), 1003);
    EXPECT_EQ(TRVchgobj(t.env, lp, 1, nullptr, v), 1004);
    EXPECT_EQ(TRVchgobj(t.env, nullptr, 1, ind, v), 1009);
    EXPECT_EQ(TRVchgobj(nullptr, lp, 1, ind, v), 1002);
    EXPECT_EQ(TRVchgobj(t.env, lp, 0, nullptr, nullptr), 0); /* nothing to do */
    t.clear();
    EXPECT_EQ(TRVchgcoef(t.env, lp, 4, 0, 1.0), 1200);
    EXPECT_EQ(t.err, "TORVA Error  1206: TRVchgcoef: 'end' value 4 is greater than 3.\n"
                     "TORVA Error  1200: Index is outside range of valid values.\n");
    EXPECT_EQ(TRVchgcoef(t.env, lp, -1, -1, 1.0), 1211);
    EXPECT_EQ(TRVchgobjsen(t.env, lp, 0), 1003);
    EXPECT_EQ(TRVdelrows(t.env, lp, 2, 4), 1200);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 4);
}

TEST_F(Change, InfiniteBoundsOnTheWrongSideAreIgnoredWithAWarning) {
    int j[] = {1, 1, 0, 2};
    char lu[] = {'L', 'U', 'B', 'U'};
    double bd[] = {1e21, -1e20, 1e20, 1e18};
    ASSERT_EQ(TRVchgbds(t.env, lp, 4, j, lu, bd), 0);
    EXPECT_EQ(t.warn, "Warning:  Infinity lower bound ignored.\n"
                      "Warning:  -Infinity upper bound ignored.\n"
                      "Warning:  Infinity lower bound ignored.\n");
    double lb[3], ub[3];
    TRVgetlb(t.env, lp, lb, 0, 2);
    TRVgetub(t.env, lp, ub, 0, 2);
    EXPECT_EQ(lb[1], -1.0);
    EXPECT_EQ(ub[1], 5.0);
    EXPECT_EQ(lb[0], 0.0);
    EXPECT_EQ(ub[2], 1e20); /* beyond 1e17 is infinite */
    char l = 'L';
    double minus = -5e17;
    int one = 1;
    ASSERT_EQ(TRVchgbds(t.env, lp, 1, &one, &l, &minus), 0);
    TRVgetlb(t.env, lp, lb, 0, 2);
    EXPECT_EQ(lb[1], -1e20);
}

TEST_F(Change, DuplicateNamesAreRefusedUnderTheDataCheck) {
    ASSERT_EQ(TRVsetintparam(t.env, 1056, 1), 0);
    char *dup[] = {const_cast<char *>("x2")};
    EXPECT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, dup), 1222);
    EXPECT_EQ(t.err, "TORVA Error  1222: Duplicate entry.\n");
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 3);
    char *two[] = {const_cast<char *>("new"), const_cast<char *>("new")};
    EXPECT_EQ(TRVnewrows(t.env, lp, 2, nullptr, nullptr, nullptr, two), 1222);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 4);
    int j = 0;
    EXPECT_EQ(TRVchgcolname(t.env, lp, 1, &j, dup), 1222);
    EXPECT_EQ(names(true), (Names{"x1", "x2", "x3"}));
    EXPECT_EQ(TRVchgname(t.env, lp, 'r', 0, "r2"), 1222);
    /* a rename to its own name, and a swap, are no duplicates */
    EXPECT_EQ(TRVchgname(t.env, lp, 'r', 1, "r2"), 0);
    int both[] = {0, 1};
    char *swap[] = {const_cast<char *>("x2"), const_cast<char *>("x1")};
    EXPECT_EQ(TRVchgcolname(t.env, lp, 2, both, swap), 0);
    EXPECT_EQ(names(true), (Names{"x2", "x1", "x3"}));
    char *null[] = {nullptr};
    t.clear();
    EXPECT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, null), 1224);
    EXPECT_EQ(t.err, "TORVA Error  1224: Null pointer 0 in name array.\n");
    /* pending names take part: a name waiting in the cache is a duplicate */
    ASSERT_EQ(TRVsetintparam(t.env, 1056, 0), 0);
    char *nn[] = {const_cast<char *>("late")};
    ASSERT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, nn), 0);
    ASSERT_EQ(TRVsetintparam(t.env, 1056, 1), 0);
    EXPECT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, nn), 1222);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 4);
}

TEST_F(Change, DeletingRowsKeepsNamesRangesAndRangeColumnsInStep) {
    /* rows L G E R(-3): delete the 'G' row; the ranged row moves up */
    ASSERT_EQ(TRVdelrows(t.env, lp, 1, 1), 0);
    EXPECT_EQ(senses(), "LER");
    EXPECT_EQ(names(false), (Names{"r1", "r3", "r4"}));
    double r = 0;
    ASSERT_EQ(TRVgetrngval(t.env, lp, &r, 2, 2), 0);
    EXPECT_EQ(r, -3.0);
    EXPECT_EQ(coef(2, 0), 2.0); /* old row 3 */
    EXPECT_EQ(coef(1, 1), 1.0); /* old row 2 */
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 3);
    int idx = -1;
    ASSERT_EQ(TRVgetrowindex(t.env, lp, "r4", &idx), 0);
    EXPECT_EQ(idx, 2);
    /* the ranged row itself goes; ranges of the others stay */
    int del[] = {0, 0, 1};
    ASSERT_EQ(TRVdelsetrows(t.env, lp, del), 0);
    EXPECT_EQ(del[0], 0);
    EXPECT_EQ(del[1], 1);
    EXPECT_EQ(del[2], -1);
    EXPECT_EQ(senses(), "LE");
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 4);
    EXPECT_EQ(TRVgetrowindex(t.env, lp, "r4", &idx), 1210);
    EXPECT_EQ(idx, -1);
    /* all rows: delstat all -1, no rows, the columns stay */
    int all[] = {1, 1};
    ASSERT_EQ(TRVdelsetrows(t.env, lp, all), 0);
    EXPECT_EQ(all[0], -1);
    EXPECT_EQ(all[1], -1);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 0);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 0);
    EXPECT_EQ(obj(), (std::vector<double>{1.0, -2.0, 0.5}));
}

TEST_F(Change, DeletingColumnsKeepsNamesBoundsAndTheRangedRows) {
    int del[] = {1, 0, 1};
    ASSERT_EQ(TRVdelsetcols(t.env, lp, del), 0);
    EXPECT_EQ(del[0], -1);
    EXPECT_EQ(del[1], 0);
    EXPECT_EQ(del[2], -1);
    EXPECT_EQ(names(true), (Names{"x2"}));
    EXPECT_EQ(obj(), (std::vector<double>{-2.0}));
    double lb = 0, ub = 0;
    TRVgetlb(t.env, lp, &lb, 0, 0);
    TRVgetub(t.env, lp, &ub, 0, 0);
    EXPECT_EQ(lb, -1.0);
    EXPECT_EQ(ub, 5.0);
    EXPECT_EQ(coef(0, 0), 3.0);
    EXPECT_EQ(coef(2, 0), 1.0);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 2);
    EXPECT_EQ(senses(), "LGER");
    double r = 0;
    ASSERT_EQ(TRVgetrngval(t.env, lp, &r, 3, 3), 0);
    EXPECT_EQ(r, -3.0);
    /* new columns come before the range column, and read back */
    double o = 9.0;
    int beg = 0, ind = 3;
    double val = 4.0;
    ASSERT_EQ(TRVaddcols(t.env, lp, 1, 1, &o, &beg, &ind, &val, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(coef(3, 1), 4.0);
    EXPECT_EQ(names(true), (Names{"x2", "x2"})); /* a default name may repeat */
    EXPECT_EQ(TRVdelcols(t.env, lp, 0, 1), 0);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 0);
    EXPECT_EQ(TRVdelcols(t.env, lp, 0, 0), 1200);
}

TEST_F(Change, ADeleteSetCoversPendingRows) {
    /* two rows wait in the cache: the set array has 6 entries, and the
     * merge before the deletion makes that the row count */
    double r[] = {7.0, 8.0};
    ASSERT_EQ(TRVnewrows(t.env, lp, 2, r, nullptr, nullptr, nullptr), 0);
    int del[] = {0, 0, 0, 0, 1, 0};
    ASSERT_EQ(TRVdelsetrows(t.env, lp, del), 0);
    EXPECT_EQ(del[4], -1);
    EXPECT_EQ(del[5], 4);
    EXPECT_EQ(rhs(), (std::vector<double>{10.0, 2.0, 4.0, 1.0, 8.0}));
    EXPECT_EQ(names(false), (Names{"r1", "r2", "r3", "r4", "c6"}));
}

TEST_F(Change, SenseChangesMakeAndDropRangeColumns) {
    int rows[] = {0, 3};
    char s[] = {'R', 'L'};
    ASSERT_EQ(TRVchgsense(t.env, lp, 2, rows, s), 0);
    EXPECT_EQ(senses(), "RGEL");
    double r = 6.0;
    int zero = 0;
    ASSERT_EQ(TRVchgrngval(t.env, lp, 1, &zero, &r), 0);
    double back[4];
    ASSERT_EQ(TRVgetrngval(t.env, lp, back, 0, 3), 0);
    EXPECT_EQ(back[0], 6.0);
    EXPECT_EQ(back[3], -3.0); /* kept while the row is not ranged */
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 3);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 8);
    ASSERT_EQ(TRVchgcoef(t.env, lp, 0, -2, -1.5), 0); /* the range through chgcoef */
    ASSERT_EQ(TRVgetrngval(t.env, lp, back, 0, 0), 0);
    EXPECT_EQ(back[0], -1.5);
}

TEST_F(Change, CoefficientsComeAndGo) {
    ASSERT_EQ(TRVchgcoef(t.env, lp, 2, 0, 0.0), 0); /* absent and zero: nothing */
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 8);
    ASSERT_EQ(TRVchgcoef(t.env, lp, 2, 0, 5.0), 0);
    EXPECT_EQ(coef(2, 0), 5.0);
    ASSERT_EQ(TRVchgcoef(t.env, lp, 0, 0, 0.0), 0);
    EXPECT_EQ(coef(0, 0), 0.0);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 8);
    ASSERT_EQ(TRVchgcoef(t.env, lp, -1, 2, 3.0), 0);
    ASSERT_EQ(TRVchgcoef(t.env, lp, 1, -1, -4.0), 0);
    EXPECT_EQ(obj()[2], 3.0);
    EXPECT_EQ(rhs()[1], -4.0);
    /* a list with a repeat: the last value stands */
    int ii[] = {0, 0, 1, 3}, jj[] = {1, 1, 2, 1};
    double vv[] = {1.0, 0.0, 0.0, 9.0};
    ASSERT_EQ(TRVchgcoeflist(t.env, lp, 4, ii, jj, vv), 0);
    EXPECT_EQ(coef(0, 1), 0.0);
    EXPECT_EQ(coef(1, 2), 0.0);
    EXPECT_EQ(coef(3, 1), 9.0);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 7);
    int badr[] = {0, 9};
    EXPECT_EQ(TRVchgcoeflist(t.env, lp, 2, badr, jj, vv), 1203);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 7);
}

TEST_F(Change, AddRowsWithNewColumnsAndDefaultNames) {
    /* one new column, two rows, entries in old and new columns */
    double r[] = {1.0, 2.0};
    char s[] = {'G', 'R'};
    int beg[] = {0, 2};
    int ind[] = {0, 3, 3};
    double val[] = {1.5, 2.5, -1.0};
    char *rn[] = {const_cast<char *>("a"), const_cast<char *>("b")};
    ASSERT_EQ(TRVaddrows(t.env, lp, 1, 2, 3, r, s, beg, ind, val, nullptr, rn), 0);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 4);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 6);
    EXPECT_EQ(coef(4, 0), 1.5);
    EXPECT_EQ(coef(4, 3), 2.5);
    EXPECT_EQ(coef(5, 3), -1.0);
    EXPECT_EQ(names(true), (Names{"x1", "x2", "x3", "x4"}));
    EXPECT_EQ(names(false), (Names{"r1", "r2", "r3", "r4", "a", "b"}));
    double lb = -1, ub = -1;
    TRVgetlb(t.env, lp, &lb, 3, 3);
    TRVgetub(t.env, lp, &ub, 3, 3);
    EXPECT_EQ(lb, 0.0);
    EXPECT_EQ(ub, 1e20);
    EXPECT_EQ(senses(), "LGERGR");
    /* bad starts and indices are refused before anything goes in */
    int badbeg[] = {2, 1};
    EXPECT_EQ(TRVaddrows(t.env, lp, 0, 2, 3, r, s, badbeg, ind, val, nullptr, nullptr), 1226);
    int badind[] = {0, 9, 1};
    EXPECT_EQ(TRVaddrows(t.env, lp, 0, 2, 3, r, s, beg, badind, val, nullptr, nullptr), 1201);
    EXPECT_EQ(TRVaddcols(t.env, lp, 1, 1, nullptr, beg, badind + 1, val, nullptr, nullptr,
                         nullptr), 1203);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 6);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 4);
}

TEST(ChangeNames, AModelWithoutNamesGetsDefaultsWhenOneIsGiven) {
    TestEnv t;
    int st = 0;
    TRVlp lp = TRVcreateprob(t.env, &st, "p");
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVnewcols(t.env, lp, 2, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    char *nm[] = {const_cast<char *>("z")};
    ASSERT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, nm), 0);
    char *p[3];
    char store[32];
    int surplus = 0;
    ASSERT_EQ(TRVgetcolname(t.env, lp, p, store, 32, &surplus, 0, 2), 0);
    EXPECT_STREQ(p[0], "x1");
    EXPECT_STREQ(p[1], "x2");
    EXPECT_STREQ(p[2], "z");
    EXPECT_EQ(TRVgetrowname(t.env, lp, p, store, 32, &surplus, 0, 0), 1200);
    /* a rename on a model without row names gives the others defaults */
    ASSERT_EQ(TRVnewrows(t.env, lp, 2, nullptr, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(TRVchgname(t.env, lp, 'r', 1, "second"), 0);
    ASSERT_EQ(TRVgetrowname(t.env, lp, p, store, 32, &surplus, 0, 1), 0);
    EXPECT_STREQ(p[0], "c1");
    EXPECT_STREQ(p[1], "second");
    EXPECT_EQ(TRVchgname(t.env, lp, 'q', 0, "x"), 1003);
    EXPECT_EQ(TRVchgname(t.env, lp, 'c', 0, nullptr), 1004);
    ASSERT_EQ(TRVchgprobname(t.env, lp, "renamed"), 0);
    char buf[16];
    ASSERT_EQ(TRVgetprobname(t.env, lp, buf, 16, &surplus), 0);
    EXPECT_STREQ(buf, "renamed");
    ASSERT_EQ(TRVdelnames(t.env, lp), 0);
    EXPECT_EQ(TRVgetcolname(t.env, lp, p, store, 32, &surplus, 0, 2), 1219);
    int idx = 0;
    EXPECT_EQ(TRVgetcolindex(t.env, lp, "z", &idx), 1219);
    TRVfreeprob(t.env, &lp);
}

TEST(ChangeCache, CountsWithoutMergingAndGettersMerge) {
    TestEnv t;
    int st = 0;
    TRVlp lp = TRVcreateprob(t.env, &st, "p");
    ASSERT_NE(lp, nullptr);
    double o[] = {1, 2, 3, 4, 5};
    ASSERT_EQ(TRVnewcols(t.env, lp, 5, o, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 5);
    double back[5] = {};
    ASSERT_EQ(TRVgetobj(t.env, lp, back, 0, 4), 0);
    EXPECT_EQ(std::vector<double>(back, back + 5), std::vector<double>(o, o + 5));
    /* entries by triplets into pending rows and columns */
    ASSERT_EQ(TRVnewrows(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    int i[] = {0, 0}, j[] = {5, 2};
    double v[] = {3.0, -1.0};
    ASSERT_EQ(TRVEcacheNewNZsByNZ(t.env, lp, 2, i, j, v), 0);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 2);
    EXPECT_NE(TRVEgetCache(lp), nullptr);
    int bad[] = {1};
    EXPECT_EQ(TRVEcacheNewNZsByNZ(t.env, lp, 1, bad, j, v), 1203);
    ASSERT_EQ(TRVcompletelp(t.env, lp), 0);
    double c = 0;
    ASSERT_EQ(TRVgetcoef(t.env, lp, 0, 5, &c), 0);
    EXPECT_EQ(c, 3.0);
    int colfree = -1, rowfree = -1, nzfree = -1, cn = -1, rn = -1;
    ASSERT_EQ(TRVgetspace(t.env, lp, &colfree, &rowfree, &nzfree, &cn, &rn), 0);
    EXPECT_EQ(colfree, TRVgetcolspace(t.env, lp) - 6);
    EXPECT_EQ(rowfree, TRVgetrowspace(t.env, lp) - 1);
    EXPECT_EQ(nzfree, TRVgetnzspace(t.env, lp) - 2);
    EXPECT_EQ(cn, 0); /* no names */
    EXPECT_EQ(rn, 0);
    EXPECT_EQ(TRVgetspace(t.env, lp, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TRVgetspace(t.env, nullptr, &colfree, nullptr, nullptr, nullptr, nullptr), 1009);
    EXPECT_EQ(colfree, 0);
    TRVfreeprob(t.env, &lp);
}

TEST(ChangeLoaded, ACallerOwnedModelThatLacksRoomStaysAsItWas) {
    TestEnv t;
    double obj[2] = {1, 2}, rhs[2] = {3, 0}, lb[2] = {0, 0}, ub[2] = {1, 1};
    char sense[2] = {'L', 'L'};
    int beg[2] = {0, 1}, cnt[2] = {1, 1}, ind[3] = {0, 0, 0};
    double val[3] = {1, 1, 0};
    TRVlp lp = TRVloadlp(t.env, "own", 2, 1, 1, obj, rhs, sense, beg, cnt, ind, val, lb, ub,
                         nullptr, 2, 2, 3);
    ASSERT_NE(lp, nullptr);
    /* a row with two entries needs 4 nonzeros */
    double r = 5;
    int rb = 0, ri[] = {0, 1};
    double rv[] = {1, 1};
    EXPECT_EQ(TRVaddrows(t.env, lp, 0, 1, 2, &r, nullptr, &rb, ri, rv, nullptr, nullptr), 1401);
    EXPECT_EQ(t.res, "Space for 4 nonzeros needed, only 3 available.\n");
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 1);
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 2);
    /* one entry fits, in the gap after the last column */
    ASSERT_EQ(TRVaddrows(t.env, lp, 0, 1, 1, &r, nullptr, &rb, ri + 1, rv, nullptr, nullptr), 0);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 2);
    EXPECT_EQ(rhs[1], 5.0); /* straight into the caller's arrays */
    t.clear();
    EXPECT_EQ(TRVnewcols(t.env, lp, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 1401);
    EXPECT_EQ(t.res, "Space for 3 columns needed, only 2 available.\n");
    char *nm[] = {const_cast<char *>("n")};
    t.clear();
    EXPECT_EQ(TRVchgcolname(t.env, lp, 1, beg, nm), 1401);
    EXPECT_EQ(t.res, "Column names need space for 5 characters, only 0 available.\n");
    EXPECT_EQ(TRVgetcolname(t.env, lp, nullptr, nullptr, 0, nullptr, 0, 0), 1219);
    /* a sense 'R' needs a range column */
    char rs = 'R';
    int zero = 0;
    EXPECT_EQ(TRVchgsense(t.env, lp, 1, &zero, &rs), 1401);
    EXPECT_EQ(TRVchgrngval(t.env, lp, 1, &zero, &r), 1216);
    char s2[2];
    TRVgetsense(t.env, lp, s2, 0, 1);
    EXPECT_EQ(s2[0], 'L');
    TRVfreeprob(t.env, &lp);
}

TEST_F(Change, FreeRowsLeaveTheRowsAndComeBack) {
    int one = 1, slot = -1;
    ASSERT_EQ(TRVchgtofreerow(t.env, lp, 1, &one, &slot), 0);
    EXPECT_EQ(slot, 0);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 3);
    EXPECT_EQ(TRVgetnumfreerows(t.env, lp), 1);
    EXPECT_EQ(TRVgetnumfreerownz(t.env, lp), 2); /* x1 and x3 had entries */
    EXPECT_EQ(TRVgetnumnz(t.env, lp), 6);
    EXPECT_EQ(names(false), (Names{"r1", "r3", "r4"}));
    int origin = -1;
    ASSERT_EQ(TRVgetfreerowind(t.env, lp, &origin, 0, 0), 0);
    EXPECT_EQ(origin, 1);
    /* an entry of the free row changes; a deleted column takes its entry */
    int col = 1;
    double v = 7.0;
    int fr = 0;
    ASSERT_EQ(TRVchgfreecoef(t.env, lp, 1, &fr, &col, &v), 0);
    EXPECT_EQ(TRVgetnumfreerownz(t.env, lp), 3);
    ASSERT_EQ(TRVdelcols(t.env, lp, 0, 0), 0);
    EXPECT_EQ(TRVgetnumfreerownz(t.env, lp), 2);
    /* back as the last row, with its name and entries */
    double r = 2.0;
    char s = 'G';
    ASSERT_EQ(TRVchgfromfreerow(t.env, lp, 1, &fr, &r, &s, nullptr), 0);
    EXPECT_EQ(TRVgetnumfreerows(t.env, lp), 0);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 4);
    EXPECT_EQ(names(false), (Names{"r1", "r3", "r4", "r2"}));
    EXPECT_EQ(coef(3, 0), 7.0);  /* old column 1, set while free */
    EXPECT_EQ(coef(3, 1), -1.0); /* old column 2 */
    EXPECT_EQ(senses(), "LERG");
    EXPECT_EQ(TRVchgtofreerow(t.env, lp, 0, nullptr, nullptr), 0);
    EXPECT_EQ(t.warn, "Warning:  No rows being freed.\n");
    int twice[] = {0, 0};
    EXPECT_EQ(TRVchgtofreerow(t.env, lp, 2, twice, nullptr), 1222);
    EXPECT_EQ(TRVchgfromfreerow(t.env, lp, 1, &fr, &r, &s, nullptr), 1218);
    EXPECT_EQ(TRVgetnumrows(t.env, lp), 4);
}

} // namespace
