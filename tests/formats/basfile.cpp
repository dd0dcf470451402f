/* The BAS reader and writer: the reader's kernel against name tables,
 * its errors and warnings, the writer's lines with the 'G'-row exchange of
 * XU and XL, round trips through a problem, and that a failed read leaves
 * the problem's stored basis as it was. */
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "fmt_util.h"
#include "formats/bas.h"

namespace {

/* Reads of a text against the columns x1 x2 x3 and the rows r1 ('L'),
 * r2 ('G'), r3 ('E'), r4 ('R'). */
struct BasRead {
    TestEnv te;
    std::vector<std::string> cn{"x1", "x2", "x3"}, rn{"r1", "r2", "r3", "r4"};
    const char *sense = "LGER";
    std::vector<int> cstat, rstat;
    int read(const std::string &text, bool senses = true) {
        std::vector<char *> cp, rp;
        for (auto &s : cn) cp.push_back(s.data());
        for (auto &s : rn) rp.push_back(s.data());
        bas_target t = {static_cast<int>(cn.size()), static_cast<int>(rn.size()), cp.data(),
                        rp.data(), senses ? sense : nullptr};
        cstat.assign(cn.size(), -7);
        rstat.assign(rn.size(), -7);
        te.clear();
        return bas_read(env_of(te.env), write_file("t.bas", text).c_str(), nullptr, &t, cstat.data(),
                        rstat.data());
    }
    bool untouched() const {
        for (int v : cstat)
            if (v != -7) return false;
        for (int v : rstat)
            if (v != -7) return false;
        return true;
    }
};

const std::string HEAD = "NAME          small  Iterations 3  Rows 4  Cols 3\n";

std::string read_text(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(BasRead, EmptyBodyIsAllSlack) {
    BasRead b;
    EXPECT_EQ(b.read("NAME\nENDATA\n"), 0);
    EXPECT_EQ(b.cstat, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 1, 1, 1}));
    EXPECT_EQ(b.te.err + b.te.warn, "");
}

TEST(BasRead, LinesSetStatuses) {
    BasRead b;
    EXPECT_EQ(b.read(HEAD + "* a comment\n XU x1  r4\n\n XL x3 r1\n UL x2\n LL x2\nENDATA\n"), 0);
    EXPECT_EQ(b.cstat, (std::vector<int>{1, 0, 1}));
    EXPECT_EQ(b.rstat, (std::vector<int>{0, 1, 1, 2}));
    /* indicators in either case, a line not indented, text after ENDATA */
    EXPECT_EQ(b.read("NAME x\nxl x1 r4\n ul x2\nENDATA\n junk\n"), 0);
    EXPECT_EQ(b.cstat, (std::vector<int>{1, 2, 0}));
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 1, 1, 0}));
}

TEST(BasRead, GRowExchangesTheLetters) {
    /* a 'G' row's logical sits at its lower bound under XU; for a ranged
     * row XU is the upper end of the range */
    BasRead b;
    EXPECT_EQ(b.read("NAME\n XU x1 r2\n XL x2 r4\nENDATA\n"), 0);
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 0, 1, 0}));
    EXPECT_EQ(b.read("NAME\n XL x1 r2\n XU x2 r4\nENDATA\n"), 0);
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 0, 1, 2}));
    /* without senses every nonbasic row is 0 */
    EXPECT_EQ(b.read("NAME\n XL x1 r2\n XU x2 r4\nENDATA\n", false), 0);
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 0, 1, 0}));
}

TEST(BasRead, UnknownNamesWarnAndTheRestLoads) {
    BasRead b;
    EXPECT_EQ(b.read("NAME\n XU zz r1\n XL x1 r9\n XU x2 r2\n UL qq\nENDATA\n"), 0);
    EXPECT_EQ(b.cstat, (std::vector<int>{0, 1, 0}));
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 0, 1, 1}));
    EXPECT_EQ(b.te.warn, "Warning, line 2: 'zz' is not a variable.\n"
                         "Warning, line 3: 'r9' is not a row.\n"
                         "Warning, line 5: 'qq' is not a variable.\n");
    EXPECT_EQ(b.te.err, "");
}

TEST(BasRead, MoreThanFiveWarningsAreSummed) {
    BasRead b;
    std::string text = "NAME\n";
    for (int k = 0; k < 8; k++) text += " UL y" + std::to_string(k) + "\n";
    EXPECT_EQ(b.read(text + "ENDATA\n"), 0);
    EXPECT_NE(b.te.warn.find("Warning, line 6: 'y4' is not a variable.\n"), std::string::npos);
    EXPECT_EQ(b.te.warn.find("'y5'"), std::string::npos);
    EXPECT_NE(b.te.warn.find("3 warnings not printed.\n"), std::string::npos);
}

TEST(BasRead, OneXuTooManyIsExtra) {
    BasRead b;
    EXPECT_EQ(b.read("NAME\n XU x1 r1\n XU x2 r1\nENDATA\n"), -1555);
    EXPECT_EQ(b.te.err, "TORVA Error  1555: 1 extra basic variable(s).\n");
    EXPECT_TRUE(b.untouched());
    EXPECT_EQ(b.read("NAME\n XU x1 r1\n XL x2 r2\n LL x1\nENDATA\n"), -1555);
    EXPECT_EQ(b.te.err, "TORVA Error  1555: 1 too few basic variable(s).\n");
    EXPECT_TRUE(b.untouched());
}

TEST(BasRead, LineErrors) {
    BasRead b;
    EXPECT_EQ(b.read("NAME\n XU x1\nENDATA\n"), -1553);
    EXPECT_EQ(b.te.err, "TORVA Error  1553: Line 2: Wrong number of entries.\n");
    EXPECT_EQ(b.read("NAME\n UL x1 r1\nENDATA\n"), -1553);
    EXPECT_EQ(b.read("NAME\n XU x1 r1 1.0 2.0\nENDATA\n"), -1553);
    EXPECT_EQ(b.read("NAME\n\n QQ x1 r1\nENDATA\n"), -1551);
    EXPECT_EQ(b.te.err, "TORVA Error  1551: Line 3: Unrecognized basis indicator 'QQ'.\n");
    EXPECT_EQ(b.read("NAME\n XUU x1 r1\nENDATA\n"), -1551);
    EXPECT_EQ(b.read("NAME\nROWS\nENDATA\n"), -1551);
    EXPECT_EQ(b.read(" XU x1 r1\nENDATA\n"), -1441);
    EXPECT_EQ(b.te.err, "TORVA Error  1441: Line 1: No NAME section.\n");
    EXPECT_EQ(b.read("\n\n"), -1441);
    EXPECT_EQ(b.read("NAME\n SC x1 1.5\nENDATA\n"), -1554);
    EXPECT_EQ(b.te.err, "TORVA Error  1554: Superbases are not allowed.\n");
    EXPECT_EQ(b.read("NAME\n XU x1 r1 1.5x\nENDATA\n"), -1434);
    EXPECT_TRUE(b.untouched());
}

TEST(BasRead, ValuesMustBeAllOrNone) {
    BasRead b;
    EXPECT_EQ(b.read("NAME\n XU x1 r1 1.5\n XL x2 r2 -2e3\nENDATA\n"), 0);
    EXPECT_EQ(b.cstat, (std::vector<int>{1, 1, 0}));
    EXPECT_EQ(b.read("NAME\n XU x1 r1\n XL x2 r2 2.0\nENDATA\n"), -1550);
    EXPECT_EQ(b.te.err, "Line 2: Missing basic value.\n"
                        "TORVA Error  1550: Basis missing some basic values.\n");
    EXPECT_TRUE(b.untouched());
}

TEST(BasRead, MissingEndataWarns) {
    BasRead b;
    EXPECT_EQ(b.read("NAME\n XU x1 r1\n"), 0);
    EXPECT_EQ(b.te.warn, "Warning: 'ENDATA' missing.\n");
    EXPECT_EQ(b.cstat, (std::vector<int>{1, 0, 0}));
}

TEST(BasRead, LongNamesAreCut) {
    BasRead b;
    std::string longname(300, 'a');
    b.cn[1] = std::string(255, 'a');
    b.rn[2] = std::string(255, 'b');
    EXPECT_EQ(b.read("NAME\n XL " + longname + "  " + std::string(255, 'b') + "  1.0\nENDATA\n"),
              0);
    EXPECT_EQ(b.cstat, (std::vector<int>{0, 1, 0}));
    EXPECT_EQ(b.rstat, (std::vector<int>{1, 1, 0, 1}));
    EXPECT_EQ(b.te.warn, "Warning, line 2:  '" + std::string(255, 'a') + "' truncated.\n");
}

TEST(BasRead, DefaultNamesAndSuffix) {
    TestEnv te;
    write_file("dflt.bas", "NAME\n XU x2 c3\n UL x1\nENDATA\n");
    std::vector<int> cstat(2), rstat(3);
    std::string stem = scratch_dir() + "/dflt";
    EXPECT_EQ(TRVmbaseread(te.env, stem.c_str(), 2, 3, nullptr, nullptr, cstat.data(),
                           rstat.data()),
              0);
    EXPECT_EQ(cstat, (std::vector<int>{2, 1}));
    EXPECT_EQ(rstat, (std::vector<int>{1, 1, 0}));
    te.clear();
    std::string none = scratch_dir() + "/nothere";
    EXPECT_EQ(TRVmbaseread(te.env, none.c_str(), 2, 3, nullptr, nullptr, cstat.data(),
                           rstat.data()),
              1423);
    EXPECT_EQ(te.err, "TORVA Error  1423: Could not open file '" + none + "' for reading.\n");
    EXPECT_EQ(TRVmbaseread(te.env, nullptr, 2, 3, nullptr, nullptr, cstat.data(),
                           rstat.data()),
              1421);
    EXPECT_EQ(TRVmbaseread(te.env, stem.c_str(), -1, 3, nullptr, nullptr, cstat.data(),
                           rstat.data()),
              1003);
    EXPECT_EQ(TRVmbaseread(te.env, stem.c_str(), 2, 3, nullptr, nullptr, nullptr,
                           rstat.data()),
              1004);
    EXPECT_EQ(TRVmbaseread(nullptr, stem.c_str(), 2, 3, nullptr, nullptr, cstat.data(),
                           rstat.data()),
              1002);
}

/* ---- the writer and the problem ------------------------------------------- */

namespace {

/* The small model solved, with its stored basis. */
struct Solved {
    TestEnv te;
    Model md = small_model();
    TRVlp lp = nullptr;
    std::vector<int> cstat, rstat;
    Solved() {
        TRVsetintparam(te.env, 1019, 0);
        lp = md.copy_into(te.env);
        EXPECT_EQ(TRVprimopt(te.env, lp), 0);
        cstat.resize(md.ncols()), rstat.resize(md.nrows());
        EXPECT_EQ(TRVgetbase(te.env, lp, cstat.data(), rstat.data()), 0);
    }
    ~Solved() { TRVfreeprob(te.env, &lp); }
    void expect_basis(TRVlp p, const std::vector<int> &c, const std::vector<int> &r) {
        std::vector<int> c2(c.size()), r2(r.size());
        ASSERT_EQ(TRVgetbase(te.env, p, c2.data(), r2.data()), 0);
        EXPECT_EQ(c2, c);
        EXPECT_EQ(r2, r);
    }
};

}  // namespace

TEST(BasWrite, LinesAndGRowExchange) {
    Solved s;
    /* x1 and x3 basic with r2 ('G') and r4 (ranged, upper end) nonbasic,
     * x2 at its upper bound */
    std::vector<int> c{1, 2, 1}, r{1, 0, 1, 2};
    ASSERT_EQ(TRVcopybase(s.te.env, s.lp, c.data(), r.data()), 0);
    std::string path = scratch_dir() + "/w1.bas";
    ASSERT_EQ(TRVmbasewrite(s.te.env, s.lp, path.c_str()), 0);
    EXPECT_EQ(read_text(path), "NAME          small\n XU x1  r2\n UL x2\n XU x3  r4\nENDATA\n");
    r = {0, 1, 1, 0};
    ASSERT_EQ(TRVcopybase(s.te.env, s.lp, c.data(), r.data()), 0);
    ASSERT_EQ(TRVmbasewrite(s.te.env, s.lp, path.c_str()), 0);
    EXPECT_EQ(read_text(path), "NAME          small\n XL x1  r1\n UL x2\n XL x3  r4\nENDATA\n");
    /* read back: the same statuses */
    ASSERT_EQ(TRVreadcopybase(s.te.env, s.lp, path.c_str()), 0);
    s.expect_basis(s.lp, c, r);
}

TEST(BasWrite, RoundTripOfASolvedBasis) {
    Solved s;
    std::string path = scratch_dir() + "/w2.bas";
    ASSERT_EQ(TRVmbasewrite(s.te.env, s.lp, path.c_str()), 0);
    std::string text = read_text(path);
    EXPECT_EQ(text.rfind("NAME          small  Iterations ", 0), 0u) << text;
    EXPECT_NE(text.find("  Rows 4  Cols 3\n"), std::string::npos) << text;
    TRVlp fresh = s.md.copy_into(s.te.env);
    ASSERT_EQ(TRVreadcopybase(s.te.env, fresh, path.c_str()), 0);
    s.expect_basis(fresh, s.cstat, s.rstat);
    ASSERT_EQ(TRVprimopt(s.te.env, fresh), 0);
    EXPECT_EQ(TRVgetitcnt(s.te.env, fresh), 0);
    TRVfreeprob(s.te.env, &fresh);
}

TEST(BasWrite, FreeColumnsAndDefaultNames) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    /* min x1 - x2, x1 + x2 <= 4, x1 - x2 >= -2; x2 free, no names */
    double obj[] = {1, -1}, rhs[] = {4, -2}, lb[] = {0, -TRV_INFBOUND},
           ub[] = {TRV_INFBOUND, TRV_INFBOUND};
    char sense[] = {'L', 'G'};
    int beg[] = {0, 2}, cnt[] = {2, 2}, ind[] = {0, 1, 0, 1};
    double val[] = {1, 1, 1, -1};
    int st = 0;
    TRVlp lp = TRVcreateprob(te.env, &st, "noname.lp");
    ASSERT_EQ(TRVcopylp(te.env, lp, 2, 2, 1, obj, rhs, sense, beg, cnt, ind, val, lb, ub,
                        nullptr),
              0);
    std::vector<int> c{0, 3}, r{1, 1};
    ASSERT_EQ(TRVcopybase(te.env, lp, c.data(), r.data()), 0);
    std::string path = scratch_dir() + "/w3.bas";
    te.clear();
    ASSERT_EQ(TRVmbasewrite(te.env, lp, path.c_str()), 0);
    EXPECT_EQ(te.warn, "Default variable names x1, x2 ... to be created.\n"
                       "Default row names c1, c2 ... to be created.\n");
    EXPECT_EQ(read_text(path), "NAME          noname.lp\nENDATA\n");
    write_file("w4.bas", "NAME\n XL x2 c1\n XU x1 c2\nENDATA\n");
    ASSERT_EQ(TRVreadcopybase(te.env, lp, (scratch_dir() + "/w4").c_str()), 0);
    std::vector<int> c2(2), r2(2);
    ASSERT_EQ(TRVgetbase(te.env, lp, c2.data(), r2.data()), 0);
    EXPECT_EQ(c2, (std::vector<int>{1, 1}));
    EXPECT_EQ(r2, (std::vector<int>{0, 0}));
    /* the free column left at lower reads back free */
    write_file("w5.bas", "NAME\nENDATA\n");
    ASSERT_EQ(TRVreadcopybase(te.env, lp, (scratch_dir() + "/w5.bas").c_str()), 0);
    ASSERT_EQ(TRVgetbase(te.env, lp, c2.data(), r2.data()), 0);
    EXPECT_EQ(c2, (std::vector<int>{0, 3}));
    ASSERT_EQ(TRVprimopt(te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(te.env, lp), 1);
    TRVfreeprob(te.env, &lp);
}

TEST(BasWrite, Errors) {
    TestEnv te;
    TRVlp lp = small_model().copy_into(te.env);
    std::string path = scratch_dir() + "/w6.bas";
    EXPECT_EQ(TRVmbasewrite(te.env, lp, path.c_str()), 1262);
    EXPECT_EQ(te.err, "TORVA Error  1262: No basis exists.\n");
    EXPECT_EQ(TRVmbasewrite(te.env, lp, nullptr), 1421);
    EXPECT_EQ(TRVmbasewrite(te.env, nullptr, path.c_str()), 1009);
    EXPECT_EQ(TRVmbasewrite(nullptr, lp, path.c_str()), 1002);
    std::vector<int> c{0, 0, 0}, r{1, 1, 1, 1};
    ASSERT_EQ(TRVcopybase(te.env, lp, c.data(), r.data()), 0);
    te.clear();
    std::string bad = scratch_dir() + "/no/such/dir.bas";
    EXPECT_EQ(TRVmbasewrite(te.env, lp, bad.c_str()), 1422);
    EXPECT_EQ(te.err, "TORVA Error  1422: Could not open file '" + bad + "' for writing.\n");
    TRVfreeprob(te.env, &lp);
}

TEST(BasWrite, CompressedRoundTrip) {
    if (std::system("gzip --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no gzip";
    Solved s;
    std::string path = scratch_dir() + "/w7.bas.gz";
    ASSERT_EQ(TRVmbasewrite(s.te.env, s.lp, path.c_str()), 0);
    TRVlp fresh = s.md.copy_into(s.te.env);
    ASSERT_EQ(TRVreadcopybase(s.te.env, fresh, path.c_str()), 0);
    s.expect_basis(fresh, s.cstat, s.rstat);
    TRVfreeprob(s.te.env, &fresh);
}

TEST(BasReadCopy, ErrorsLeaveTheStoredBasis) {
    Solved s;
    const char *bad[] = {
        "NAME\n XU x1 r1\n XU x2 r1\nENDATA\n",   /* 1555 extra */
        "NAME\n XU x1 r1\n LL x1\nENDATA\n",      /* 1555 too few */
        "NAME\n XU x1\nENDATA\n",                 /* 1553 */
        "NAME\n ZZ x1 r1\nENDATA\n",              /* 1551 */
        " XU x1 r1\nENDATA\n",                    /* 1441 */
        "NAME\n BR r1 1.0\nENDATA\n",             /* 1554 */
        "NAME\n XU x1 r1 1\n XU x2 r2\nENDATA\n", /* 1550 */
        "NAME\n XU x1 r1 1e99999\nENDATA\n",      /* 1435 */
    };
    const int codes[] = {1555, 1555, 1553, 1551, 1441, 1554, 1550, 1435};
    int stat0 = TRVgetstat(s.te.env, s.lp);
    for (int k = 0; k < 8; k++) {
        std::string path = write_file("e" + std::to_string(k) + ".bas", bad[k]);
        EXPECT_EQ(TRVreadcopybase(s.te.env, s.lp, path.c_str()), codes[k]) << bad[k];
        s.expect_basis(s.lp, s.cstat, s.rstat);
        EXPECT_EQ(TRVgetstat(s.te.env, s.lp), stat0);
    }
    EXPECT_EQ(TRVreadcopybase(s.te.env, s.lp, (scratch_dir() + "/none").c_str()), 1423);
    EXPECT_EQ(TRVreadcopybase(s.te.env, s.lp, nullptr), 1421);
    EXPECT_EQ(TRVreadcopybase(s.te.env, nullptr, "x.bas"), 1009);
    EXPECT_EQ(TRVreadcopybase(nullptr, s.lp, "x.bas"), 1002);
    s.expect_basis(s.lp, s.cstat, s.rstat);
}

TEST(BasRecover, NameFromTheProblemName) {
    TestEnv te;
    const char *names[][2] = {{"afiro.mps.gz", "afiro.xxx"}, {"afiro.mps", "afiro.xxx"},
                              {"afiro", "afiro.xxx"},         {"d.x/m.lp", "d.x/m.xxx"},
                              {"", "torva.xxx"},              {"dir/.mps", "dir/torva.xxx"}};
    for (auto &nm : names) {
        int st = 0;
        TRVlp lp = TRVcreateprob(te.env, &st, nm[0]);
        ASSERT_NE(lp, nullptr);
        char *r = bas_recovername(lp_of(lp));
        EXPECT_STREQ(r, nm[1]);
        trv_free(&r);
        TRVfreeprob(te.env, &lp);
    }
}
