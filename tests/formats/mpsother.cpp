/* MPS files as other programs write them: any number of pairs on a line,
 * blank name fields of the fixed layout, second vectors, integer columns
 * with a lower bound only, lines longer than the line buffer, extra fields
 * in BOUNDS. Each reading is checked entry by entry, with its warning
 * printed once and counted. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fmt_util.h"
#include "store/lp.h"

namespace {

/* A transportation model, its COLUMNS and RHS written `per` pairs a line
 * as a modelling library writes them when it packs its lines. */
std::string transport(int per) {
    std::string s = "NAME          TRANSP\nROWS\n N  obj\n L  s0\n L  s1\n G  d0\n G  d1\n G  d2\n"
                    "COLUMNS\n";
    const int cost[2][3] = {{2, 3, 4}, {5, 1, 2}};
    for (int i = 0; i < 2; i++)
        for (int j = 0; j < 3; j++) {
            std::string col = "x" + std::to_string(i) + "_" + std::to_string(j);
            std::vector<std::string> pairs = {"obj " + std::to_string(cost[i][j]),
                                              "s" + std::to_string(i) + " 1",
                                              "d" + std::to_string(j) + " 1"};
            for (size_t k = 0; k < pairs.size(); k += per) {
                s += "    " + col;
                for (size_t q = k; q < k + per && q < pairs.size(); q++) s += " " + pairs[q];
                s += "\n";
            }
        }
    std::vector<std::string> rhs = {"s0 30", "s1 40", "d0 20", "d1 25", "d2 20"};
    s += "RHS\n";
    for (size_t k = 0; k < rhs.size(); k += per) {
        s += "    rhs";
        for (size_t q = k; q < k + per && q < rhs.size(); q++) s += " " + rhs[q];
        s += "\n";
    }
    return s + "ENDATA\n";
}

size_t count(const std::string &text, const std::string &what) {
    size_t n = 0;
    for (size_t p = 0; (p = text.find(what, p)) != std::string::npos; p++) n++;
    return n;
}

void expect_same_model(const Read &a, const Read &b) {
    const read_model &x = a.m, &y = b.m;
    ASSERT_EQ(x.ncols, y.ncols);
    ASSERT_EQ(x.nrows, y.nrows);
    for (int i = 0; i < x.nrows; i++) {
        EXPECT_STREQ(x.rowname[i], y.rowname[i]);
        EXPECT_EQ(x.sense[i], y.sense[i]);
        EXPECT_EQ(x.rhs[i], y.rhs[i]) << x.rowname[i];
    }
    for (int j = 0; j < x.ncols; j++) {
        EXPECT_STREQ(x.colname[j], y.colname[j]);
        EXPECT_EQ(x.obj[j], y.obj[j]);
        EXPECT_EQ(x.lb[j], y.lb[j]);
        EXPECT_EQ(x.ub[j], y.ub[j]);
        ASSERT_EQ(x.matcnt[j], y.matcnt[j]) << x.colname[j];
        for (int k = 0; k < x.matcnt[j]; k++) {
            EXPECT_EQ(x.matind[x.matbeg[j] + k], y.matind[y.matbeg[j] + k]);
            EXPECT_EQ(x.matval[x.matbeg[j] + k], y.matval[y.matbeg[j] + k]);
        }
    }
}

const char *PAIRS_WARNING = "More than two pairs on a line; further pairs read as if on lines "
                            "of their own";

}  // namespace

TEST(MpsOtherWriters, OneTwoAndThreePairsALineReadAlike) {
    Read one, two, three;
    ASSERT_EQ(one.mps(transport(1)), 0) << one.te.err;
    ASSERT_EQ(two.mps(transport(2)), 0) << two.te.err;
    ASSERT_EQ(three.mps(transport(3)), 0) << three.te.err;
    EXPECT_EQ(three.m.ncols, 6);
    EXPECT_EQ(three.m.nrows, 5);
    EXPECT_EQ(three.coef(three.row("d1"), three.col("x0_1")), 1.0);
    EXPECT_EQ(three.m.rhs[three.row("d0")], 20.0);
    expect_same_model(one, two);
    expect_same_model(one, three);
    EXPECT_EQ(one.te.warn, "");
    EXPECT_EQ(two.te.warn, "");
    /* one warning a section, with the first line and the count */
    EXPECT_EQ(count(three.te.warn, PAIRS_WARNING), 2u) << three.te.warn;
    EXPECT_TRUE(three.said("Warning, line 10:  " + std::string(PAIRS_WARNING) +
                           " (6 lines in COLUMNS).\n"));
    EXPECT_TRUE(three.said("Warning, line 17:  " + std::string(PAIRS_WARNING) +
                           " (1 line in RHS).\n"));
    EXPECT_STREQ(three.m.rhsname, "rhs");
    EXPECT_TRUE(three.said("Selected RHS        name:  rhs\n"));
}

TEST(MpsOtherWriters, ManyPairsAndATrailingRowWithoutItsValue) {
    std::string head = "NAME\nROWS\n N obj\n L c1\n L c2\n L c3\n L c4\nCOLUMNS\n";
    Read r;
    ASSERT_EQ(r.mps(head + "    x obj 1 c1 2 c2 3 c3 4 c4 5\n    y obj 1 c1 1 c2\n"
                           "RHS\n    rhs c1 1 c2 2 c3 3 c4\n"
                           "RANGES\n    rng c1 1 c2 2 c3 3 c4 4\nENDATA\n"),
              0)
        << r.te.err;
    int x = r.col("x"), y = r.col("y");
    EXPECT_EQ(r.coef(r.row("c4"), x), 5.0);
    EXPECT_EQ(r.m.matcnt[x], 4);
    EXPECT_EQ(r.m.matcnt[y], 2); /* c2 with a zero */
    EXPECT_EQ(r.coef(r.row("c2"), y), 0.0);
    EXPECT_EQ(r.m.rhs[r.row("c3")] + r.m.rngval[r.row("c3")], 3.0);
    EXPECT_EQ(r.m.rngval[r.row("c4")], 4.0);
    EXPECT_EQ(count(r.te.warn, "Warning:  Empty numeric fields read as zeros.\n"), 1u);
    EXPECT_TRUE(r.said("Warning, line 9:  " + std::string(PAIRS_WARNING) +
                       " (2 lines in COLUMNS).\n"))
        << r.te.warn;
    EXPECT_TRUE(r.said("(1 line in RHS)"));
    EXPECT_TRUE(r.said("(1 line in RANGES)"));
    /* a row unknown among many pairs is named with its line */
    EXPECT_EQ(r.mps(head + "    x obj 1 c1 2 c2 3 cX 4\nENDATA\n"), -1448);
    EXPECT_TRUE(r.said("Line 9: 'cX' is not a row name"));
    EXPECT_EQ(r.mps(head + "    x obj 1\nRHS\n    rhs c1 1 c2 2 cX 3\nENDATA\n"), -1450);
    EXPECT_TRUE(r.said("Line 11: 'cX' is not a RHS name"));
    /* a pair after a comment is no pair */
    ASSERT_EQ(r.mps(head + "    x obj 1 c1 2 $ c2 3 c3 4\nENDATA\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.matcnt[0], 1);
}

namespace {

/* The fixed layout of a solver's shipped examples: the column name left
 * blank to continue the column above, the vector name blank on later
 * cards. */
const char *FIXED_BLANKS =
    "NAME          TESTPROB\n"
    "ROWS\n"
    " N  COST\n"
    " L  LIM1\n"
    " G  LIM2\n"
    " E  MYEQN\n"
    "COLUMNS\n"
    "    XONE      COST                 1   LIM1                 1\n"
    "              LIM2                 1\n"
    "    YTWO      COST                 2   LIM1                 1\n"
    "              MYEQN               -1\n"
    "    ZTHREE    COST                -1   MYEQN                1\n"
    "RHS\n"
    "    RHS       LIM1                 4   LIM2                 1\n"
    "              MYEQN                7\n"
    "RANGES\n"
    "    RNG       LIM1                 2\n"
    "              LIM2                 5\n"
    "BOUNDS\n"
    " UP BND       XONE                 4\n"
    " LO           YTWO                -1\n"
    " UP           YTWO                 1\n"
    "ENDATA\n";

}  // namespace

TEST(MpsOtherWriters, BlankNameFieldsContinueTheCardAbove) {
    Read r;
    ASSERT_EQ(r.mps(FIXED_BLANKS), 0) << r.te.err;
    int x = r.col("XONE"), y = r.col("YTWO");
    EXPECT_EQ(r.m.ncols, 3);
    EXPECT_EQ(r.coef(r.row("LIM2"), x), 1.0);
    EXPECT_EQ(r.coef(r.row("MYEQN"), y), -1.0);
    EXPECT_EQ(r.m.rhs[r.row("MYEQN")], 7.0);
    EXPECT_EQ(r.m.rngval[r.row("LIM2")], 5.0);
    EXPECT_EQ(r.m.lb[y], -1.0);
    EXPECT_EQ(r.m.ub[y], 1.0);
    EXPECT_STREQ(r.m.bndname, "BND");
    const std::string w = "Blank name field read as continuing the ";
    EXPECT_TRUE(r.said("Warning, line 9:  " + w + "column above (2 lines in COLUMNS).\n"))
        << r.te.warn;
    EXPECT_TRUE(r.said("Warning, line 15:  " + w + "vector above (1 line in RHS).\n"));
    EXPECT_TRUE(r.said("Warning, line 18:  " + w + "vector above (1 line in RANGES).\n"));
    EXPECT_TRUE(r.said("Warning, line 21:  " + w + "bound set above (2 lines in BOUNDS).\n"));
    EXPECT_EQ(count(r.te.warn, w), 4u);
    EXPECT_EQ(r.te.warn.find("More than one"), std::string::npos);
    /* the free split of the same cards reads the same model */
    Read f;
    ASSERT_EQ(f.mps("NAME TESTPROB\nROWS\n N COST\n L LIM1\n G LIM2\n E MYEQN\nCOLUMNS\n"
                    " XONE COST 1 LIM1 1\n XONE LIM2 1\n YTWO COST 2 LIM1 1\n YTWO MYEQN -1\n"
                    " ZTHREE COST -1 MYEQN 1\nRHS\n RHS LIM1 4 LIM2 1\n RHS MYEQN 7\n"
                    "RANGES\n RNG LIM1 2\n RNG LIM2 5\nBOUNDS\n UP BND XONE 4\n LO BND YTWO -1\n"
                    " UP BND YTWO 1\nENDATA\n"),
              0);
    expect_same_model(r, f);
}

TEST(MpsOtherWriters, BlankNamesThatCannotBeReadAreErrorsWithTheirLine) {
    const std::string head = "NAME\nROWS\n N  COST\n L  LIM1\nCOLUMNS\n";
    Read r;
    /* no column above */
    EXPECT_EQ(r.mps(head + "              LIM1                 1\nENDATA\n"), -1449);
    EXPECT_TRUE(r.said("Line 6: '' is not a column name")) << r.te.err;
    /* a marker line ends the column above */
    EXPECT_EQ(r.mps(head + "    X         LIM1                 1\n"
                           "    MARKER                 'MARKER'                 'INTORG'\n"
                           "              COST                 1\nENDATA\n"),
              -1449);
    EXPECT_TRUE(r.said("Line 8: '' is not a column name"));
    /* a value whose row field is blank */
    EXPECT_EQ(r.mps(head + "    X                              1\nENDATA\n"), -1448);
    EXPECT_TRUE(r.said("Line 6: '' is not a row name"));
    EXPECT_EQ(r.mps(head + "    X         LIM1                 1\nRHS\n"
                           "    RHS                            1\nENDATA\n"),
              -1450);
    EXPECT_TRUE(r.said("Line 8: '' is not a RHS name"));
}

TEST(MpsOtherWriters, SecondVectorsAreDroppedWithOneWarning) {
    Read r;
    ASSERT_EQ(r.mps("NAME TWORHS\nROWS\n N obj\n G c1\n G c2\nCOLUMNS\n    x obj 1 c1 1\n"
                    "    x c2 1\n    y obj 2 c1 1\n    y c2 3\nRHS\n    RHS1 c1 4 c2 6\n"
                    "    RHS2 c1 10 c2 30\n    RHS2 c1 11\nRANGES\n    RNG1 c1 2\n"
                    "    RNG2 c1 1 c2 1\nBOUNDS\n UP B1 x 9\n UP B2 y 9\nENDATA\n"),
              0)
        << r.te.err;
    int c1 = r.row("c1"), c2 = r.row("c2");
    EXPECT_EQ(r.m.rhs[c1], 4.0);
    EXPECT_EQ(r.m.rhs[c2], 6.0);
    EXPECT_EQ(r.m.sense[c1], 'R');
    EXPECT_EQ(r.m.rngval[c1], 2.0);
    EXPECT_EQ(r.m.sense[c2], 'G');
    EXPECT_EQ(r.m.ub[r.col("y")], TRV_INF);
    for (const char *kind : {"RHS", "range", "bound"})
        EXPECT_EQ(count(r.te.warn, std::string("Warning:  More than one ") + kind +
                                       " set specified.  Only the first set is used.\n"),
                  1u)
            << kind << "\n"
            << r.te.warn;
}

TEST(MpsOtherWriters, IntegerColumnsWithALowerBoundOnlyAreGeneralIntegers) {
    Read r;
    ASSERT_EQ(r.mps("NAME INTLO\nROWS\n N obj\n L cap\nCOLUMNS\n"
                    "    MARKER 'MARKER' 'INTORG'\n"
                    "    n obj -3 cap 2\n    m obj -2 cap 3\n    k cap 1\n    u cap 1\n"
                    "    v cap 1\n    f cap 1\n    b cap 1\n    l cap 1\n"
                    "    MARKER 'MARKER' 'INTEND'\n"
                    "BOUNDS\n LO BND n 0\n LO BND m 3\n UP BND k 5\n UP BND u 4\n LO BND u 2\n"
                    " MI BND v\n LI BND f 1\n LO BND l 0\n UP BND l 1\nENDATA\n"),
              0)
        << r.te.err;
    struct {
        const char *col;
        double lb, ub;
        char type;
    } want[] = {{"n", 0, TRV_INF, 'I'},  {"m", 3, TRV_INF, 'I'}, {"k", 0, 5, 'I'},
                {"u", 2, 4, 'I'},        {"v", -TRV_INF, TRV_INF, 'I'},
                {"f", 1, TRV_INF, 'I'},  {"b", 0, 1, 'B'},       {"l", 0, 1, 'B'}};
    ASSERT_NE(r.m.ctype, nullptr);
    for (const auto &c : want) {
        int j = r.col(c.col);
        EXPECT_EQ(r.m.lb[j], c.lb) << c.col;
        EXPECT_EQ(r.m.ub[j], c.ub) << c.col;
        EXPECT_EQ(r.m.ctype[j], c.type) << c.col;
    }
}

TEST(MpsOtherWriters, LinesLongerThanTheBufferReadWhole) {
    const std::string p(300, 'p'), q(300, 'q');
    std::string s = "NAME LONG\nROWS\n N cost\n G " + p + "\n L " + q + "\n";
    for (int k = 0; k < 40; k++) s += " L row" + std::to_string(k) + "_with_a_long_generated_name\n";
    s += "COLUMNS\n    x cost -1 " + p + " 1 " + q + " 2";
    for (int k = 0; k < 40; k++)
        s += " row" + std::to_string(k) + "_with_a_long_generated_name " + std::to_string(k + 1) +
             ".5";
    s += "\nRHS\n    rhs " + p + " 2 " + q + " 12\nENDATA\n";
    Read r;
    ASSERT_EQ(r.mps(s), 0) << r.te.err;
    EXPECT_EQ(r.m.ncols, 1);
    EXPECT_EQ(r.m.nrows, 42);
    EXPECT_EQ(r.m.matcnt[0], 42);
    EXPECT_EQ(r.coef(r.row("row39_with_a_long_generated_name"), 0), 40.5);
    int ip = r.row(p.substr(0, 255).c_str()), iq = r.row(q.substr(0, 255).c_str());
    ASSERT_GE(ip, 0);
    ASSERT_GE(iq, 0);
    EXPECT_EQ(r.m.rhs[ip], 2.0);
    EXPECT_EQ(r.m.rhs[iq], 12.0);
    EXPECT_EQ(r.coef(iq, 0), 2.0);
    EXPECT_TRUE(r.said("Warning, line 4:  '" + p.substr(0, 255) + "' truncated.\n"));
    /* a column of twenty thousand entries on one line */
    std::string big = "NAME\nROWS\n N obj\n", line = "    x obj 1";
    for (int k = 0; k < 20000; k++) {
        big += " L c" + std::to_string(k) + "\n";
        line += " c" + std::to_string(k) + " " + std::to_string(k);
    }
    Read b;
    ASSERT_EQ(b.mps(big + "COLUMNS\n" + line + "\nENDATA\n"), 0) << b.te.err;
    EXPECT_EQ(b.m.matcnt[0], 20000);
    EXPECT_EQ(b.coef(19999, 0), 19999.0);
}

TEST(MpsOtherWriters, BoundsLinesWithExtraFieldsWarn) {
    Read s;
    ASSERT_EQ(s.mps("NAME\nROWS\n N obj\n L c\nCOLUMNS\n    x obj 1 c 1\n    y obj 1 c 1\n"
                    "BOUNDS\n UP BND x 4 5\n UP BND       y                 3   junk\n"
                    " MI BND x\nENDATA\n"),
              0)
        << s.te.err;
    EXPECT_EQ(s.m.ub[0], 4.0);
    EXPECT_EQ(s.m.ub[1], 3.0);
    EXPECT_EQ(s.m.lb[0], -TRV_INF);
    EXPECT_EQ(count(s.te.warn, "Fields after the bound value ignored"), 1u);
    EXPECT_TRUE(s.said("Warning, line 9:  Fields after the bound value ignored (2 lines).\n"))
        << s.te.warn;
}
