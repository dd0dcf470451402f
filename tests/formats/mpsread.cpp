/* The MPS reader on small files: sections, bounds, markers, ranges, the
 * objective choice, warnings and every error with its line. */
#include <gtest/gtest.h>

#include <string>

#include "fmt_util.h"
#include "store/lp.h"

namespace {

const char *HEAD =
    "NAME          TEST\n"
    "ROWS\n"
    " N  COST\n"
    " L  LIM1\n"
    " G  LIM2\n"
    " E  MYEQN\n"
    "COLUMNS\n"
    "    X1        COST         1.0   LIM1         1.0\n"
    "    X1        LIM2         1.0\n"
    "    X2        COST         2.0   LIM1         1.0\n"
    "    X2        MYEQN       -1.0\n"
    "    X3        COST        -1.0   MYEQN        1.0\n";

std::string with(const std::string &tail) { return std::string(HEAD) + tail; }

}  // namespace

TEST(MpsRead, SmallModelWithAllSections) {
    Read r;
    ASSERT_EQ(r.mps(with("RHS\n    RHS       LIM1         4.0   LIM2         1.0\n"
                         "    RHS       MYEQN        7.0\n"
                         "RANGES\n    RNG       LIM1         2.5   MYEQN       -3.0\n"
                         "BOUNDS\n UP BND       X1           4.0\n LO BND       X2          -1.0\n"
                         " FR BND       X3\nENDATA\n")),
              0)
        << r.te.err;
    const read_model &m = r.m;
    EXPECT_EQ(m.nrows, 3);
    EXPECT_EQ(m.ncols, 3);
    EXPECT_STREQ(m.probname, "TEST");
    EXPECT_STREQ(m.objname, "COST");
    EXPECT_STREQ(m.rhsname, "RHS");
    EXPECT_STREQ(m.rngname, "RNG");
    EXPECT_STREQ(m.bndname, "BND");
    EXPECT_EQ(m.obj[r.col("X2")], 2.0);
    EXPECT_EQ(r.coef(r.row("MYEQN"), r.col("X2")), -1.0);
    /* L row with range 2.5: [4 - 2.5, 4]; E row with -3: [7 - 3, 7] */
    int l = r.row("LIM1"), e = r.row("MYEQN"), g = r.row("LIM2");
    EXPECT_EQ(m.sense[l], 'R');
    EXPECT_EQ(m.rhs[l], 1.5);
    EXPECT_EQ(m.rngval[l], 2.5);
    EXPECT_EQ(m.sense[e], 'R');
    EXPECT_EQ(m.rhs[e], 7.0);
    EXPECT_EQ(m.rngval[e], -3.0);
    EXPECT_EQ(m.sense[g], 'G');
    EXPECT_EQ(m.ub[r.col("X1")], 4.0);
    EXPECT_EQ(m.lb[r.col("X2")], -1.0);
    EXPECT_EQ(m.lb[r.col("X3")], -TRV_INF);
    EXPECT_EQ(m.ub[r.col("X3")], TRV_INF);
    EXPECT_EQ(m.ctype, nullptr);
    EXPECT_TRUE(r.said("Selected objective sense:  MINIMIZE\n"));
    EXPECT_TRUE(r.said("Selected objective  name:  COST\n"));
    EXPECT_TRUE(r.said("Selected RHS        name:  RHS\n"));
    EXPECT_TRUE(r.said("Selected range      name:  RNG\n"));
    EXPECT_TRUE(r.said("Selected bound      name:  BND\n"));
    EXPECT_EQ(r.te.warn, "");
    EXPECT_GE(m.colspace, m.ncols + 100);
    EXPECT_GE(m.rowspace, m.nrows + 100);
    EXPECT_GE(m.nzspace, 5 + 500);
}

TEST(MpsRead, RangeOnGreaterAndNegativeOnEqual) {
    Read r;
    ASSERT_EQ(r.mps(with("RHS\n    RHS       LIM2         1.0   MYEQN        7.0\n"
                         "RANGES\n    RNG       LIM2        -2.0   MYEQN        3.0\nENDATA\n")),
              0);
    int g = r.row("LIM2"), e = r.row("MYEQN");
    EXPECT_EQ(r.m.rhs[g], 1.0);
    EXPECT_EQ(r.m.rngval[g], 2.0); /* |R| on a G row */
    EXPECT_EQ(r.m.rhs[e], 7.0);
    EXPECT_EQ(r.m.rngval[e], 3.0);
}

TEST(MpsRead, NegativeUpperBoundsAndZeroUpperBound) {
    Read r;
    ASSERT_EQ(r.mps(with("BOUNDS\n UP BND X1 -5\n UP BND X2 0\n UP BND X3 -1\n LO BND X3 -9\n"
                         "ENDATA\n")),
              0);
    EXPECT_EQ(r.m.lb[r.col("X1")], -TRV_INF);
    EXPECT_EQ(r.m.ub[r.col("X1")], -5.0);
    EXPECT_TRUE(r.said("Warning:  Lower bound on column 'X1' in bound 'BND'\n"
                       "          changed to minus infinity.\n"));
    EXPECT_EQ(r.m.lb[r.col("X2")], 0.0);
    EXPECT_EQ(r.m.ub[r.col("X2")], 0.0);
    EXPECT_TRUE(r.said("Warning:  Column 'X2' in bound 'BND' is Fixed.\n"));
    EXPECT_EQ(r.m.lb[r.col("X3")], -9.0); /* a lower bound of its own stays */
}

TEST(MpsRead, WarningsStopAfterFiveWithAClosingLine) {
    std::string cols, bnds;
    for (int j = 0; j < 8; j++) {
        cols += "    Y" + std::to_string(j) + "  LIM1  1\n";
        bnds += " UP BND Y" + std::to_string(j) + " -1\n";
    }
    Read r;
    ASSERT_EQ(r.mps(with(cols + "BOUNDS\n" + bnds + "ENDATA\n")), 0);
    size_t n = 0;
    for (size_t p = 0; (p = r.te.warn.find("changed to minus infinity", p)) != std::string::npos; p++) n++;
    EXPECT_EQ(n, 5u);
    EXPECT_TRUE(r.said("3 Minus-infinity warnings not printed.\n"));
}

TEST(MpsRead, IntegerMarkersAndTheirBounds) {
    Read r;
    ASSERT_EQ(r.mps("NAME M\nROWS\n N obj\n L c1\nCOLUMNS\n"
                    "    MARKER  'MARKER'  'INTORG'\n"
                    "    A  obj 1  c1 1\n    B  c1 1\n    C  c1 1\n    D  c1 1\n"
                    "    MARKER  'MARKER'  'INTEND'\n"
                    "    E  c1 1\n"
                    "RHS\n    RHS c1 3\nBOUNDS\n UP BND A 10\n LO BND C 2\n UP BND C 1\n"
                    " UP BND D 2.5\n BV BND E\nENDATA\n"),
              0)
        << r.te.err;
    ASSERT_NE(r.m.ctype, nullptr);
    EXPECT_EQ(r.m.ctype[r.col("A")], 'I');
    EXPECT_EQ(r.m.ub[r.col("A")], 10.0);
    EXPECT_EQ(r.m.ctype[r.col("B")], 'B');
    EXPECT_EQ(r.m.ub[r.col("B")], 1.0);
    EXPECT_EQ(r.m.ctype[r.col("C")], 'I'); /* lower bound 2 */
    EXPECT_EQ(r.m.ctype[r.col("E")], 'B');
    EXPECT_EQ(r.m.nints, 5);
    EXPECT_TRUE(r.said("Warning:  Non-integral bound value 2.5 for integer column 'D'.\n"));
    Read lp; /* a caller without integers */
    ASSERT_EQ(lp.mps("NAME M\nROWS\n N obj\nCOLUMNS\n    MARKER 'MARKER' 'INTORG'\n    A obj 1\n"
                     "    MARKER 'MARKER' 'INTEND'\nENDATA\n",
                     0),
              0);
    EXPECT_EQ(lp.m.ctype, nullptr);
    EXPECT_EQ(lp.m.nints, 1);
}

TEST(MpsRead, BoundTypesOfTheIntegerAndSemiFamilies) {
    Read r;
    ASSERT_EQ(r.mps(with("BOUNDS\n UI BND X1 7\n LI BND X2 2\n SC BND X3 0\n PL BND X2\n"
                         "ENDATA\n")),
              0);
    EXPECT_EQ(r.m.ctype[r.col("X1")], 'I');
    EXPECT_EQ(r.m.ub[r.col("X1")], 7.0);
    EXPECT_EQ(r.m.ctype[r.col("X2")], 'I');
    EXPECT_EQ(r.m.lb[r.col("X2")], 2.0);
    EXPECT_EQ(r.m.ub[r.col("X2")], TRV_INF);
    EXPECT_EQ(r.m.ctype[r.col("X3")], 'S');
    EXPECT_EQ(r.m.ub[r.col("X3")], 1.0);
    EXPECT_TRUE(r.said("Warning:  Lower bound of 1.0 assumed for semi-continuous column \n"
                       "          'X3' in bound 'BND'\n"));
    ASSERT_EQ(r.mps(with("BOUNDS\n MI BND X1\n FX BND X2 3.5\n BV BND X3\nENDATA\n")), 0);
    EXPECT_EQ(r.m.lb[r.col("X1")], -TRV_INF);
    EXPECT_EQ(r.m.lb[r.col("X2")], 3.5);
    EXPECT_EQ(r.m.ub[r.col("X2")], 3.5);
    EXPECT_EQ(r.m.ctype[r.col("X3")], 'B');
}

TEST(MpsRead, ObjectiveChoiceAmongFreeRows) {
    Read r;
    ASSERT_EQ(r.mps("NAME\nOBJSENSE\n    MAX\nOBJNAME\n    SECOND\nROWS\n N FIRST\n N SECOND\n"
                    " L c1\nCOLUMNS\n    x FIRST 1 SECOND 2\n    x c1 1\nRHS\n    RHS c1 1\n"
                    "    RHS FIRST 5\nENDATA\n"),
              0);
    EXPECT_EQ(r.m.objsen, -1);
    EXPECT_STREQ(r.m.objname, "SECOND");
    EXPECT_EQ(r.m.obj[0], 2.0);
    EXPECT_EQ(r.m.nrows, 1);
    EXPECT_EQ(r.m.matcnt[0], 1);
    EXPECT_TRUE(r.said("Specified objective sense: MAXIMIZE\n"));
    EXPECT_TRUE(r.said("Selected objective  name:  SECOND  [1 free row deleted]\n"));
    EXPECT_TRUE(r.said("Warning:  RHS 'RHS' value for free row 'FIRST' ignored.\n"));
    ASSERT_EQ(r.mps("NAME\nOBJNAME\n    NONE\nROWS\n N A\n N B\n N C\nCOLUMNS\n    x A 1\n"
                    "ENDATA\n"),
              0);
    EXPECT_STREQ(r.m.objname, "A");
    EXPECT_TRUE(r.said("Warning:  Specified objective 'NONE' not found.\n"));
    EXPECT_TRUE(r.said("  [2 free rows deleted]\n"));
}

TEST(MpsRead, RhsOnTheObjectiveAndBlankVectorNames) {
    Read r;
    ASSERT_EQ(r.mps(with("RHS\n    COST 10   LIM1 4\nENDATA\n")), 0);
    EXPECT_TRUE(r.said("Warning, line 14:  OBJ coefficient in RHS section ignored.\n"));
    EXPECT_EQ(r.m.rhs[r.row("LIM1")], 4.0);
    EXPECT_TRUE(r.said("Warning:  Blank RHS name changed to 'rhs'.\n"));
    EXPECT_STREQ(r.m.rhsname, "rhs");
    ASSERT_EQ(r.mps("NAME\nROWS\n N obj\nCOLUMNS\n    rhs obj 1\nENDATA\n"), 0);
    EXPECT_TRUE(r.said("Warning:  Blank RHS name unchanged.  Column with name 'rhs' already exists.\n"));
}

/* A line of the fixed columns: fields at 2, 5, 15, 25, 40 and 50. */
std::string fixed(const char *f1, const char *f2, const char *f3, const char *f4,
                  const char *f5 = "", const char *f6 = "") {
    static const int at[] = {1, 4, 14, 24, 39, 49};
    const char *f[] = {f1, f2, f3, f4, f5, f6};
    std::string line(61, ' ');
    for (int k = 0; k < 6; k++) line.replace(at[k], std::strlen(f[k]), f[k]);
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line + "\n";
}

TEST(MpsRead, FixedColumnsWithBlanksInNames) {
    Read r;
    ASSERT_EQ(r.mps("NAME          FIXED\nROWS\n N  COST\n L  ROW 1\nCOLUMNS\n" +
                    fixed("", "COL 1", "COST", "1.0", "ROW 1", "2.0") +
                    fixed("", "COL 2", "ROW 1", "3.0") + "RHS\n" +
                    fixed("", "RHS 1", "ROW 1", "4.0") + "BOUNDS\n" +
                    fixed("UP", "BND 1", "COL 2", "5.0") + "ENDATA\n"),
              0)
        << r.te.err;
    ASSERT_EQ(r.m.ncols, 2);
    EXPECT_STREQ(r.m.colname[0], "COL 1");
    EXPECT_STREQ(r.m.rowname[0], "ROW 1");
    EXPECT_EQ(r.coef(0, 1), 3.0);
    EXPECT_EQ(r.m.rhs[0], 4.0);
    EXPECT_EQ(r.m.ub[1], 5.0);
    EXPECT_STREQ(r.m.rhsname, "RHS 1");
}

TEST(MpsRead, NumbersWithDExponentsAndEmptyFields) {
    Read r;
    ASSERT_EQ(r.mps("NAME\nROWS\n N obj\n L c\nCOLUMNS\n    x obj 1.5D2 c\nENDATA\n"), 0);
    EXPECT_EQ(r.m.obj[0], 150.0);
    EXPECT_EQ(r.m.matval[0], 0.0);
    EXPECT_TRUE(r.said("Warning:  Empty numeric fields read as zeros.\n"));
    EXPECT_TRUE(r.said("Warning, line 7:  'ENDATA' missing.\n") == false);
}

TEST(MpsRead, SetsFromMarkersAndFromTheSection) {
    Read r;
    ASSERT_EQ(r.mps("NAME\nROWS\n N obj\n L c\nCOLUMNS\n"
                    " S2 SOS1 'MARKER' 'SOSORG'\n    a obj 1\n    b obj 1\n"
                    "    SOS1 'MARKER' 'SOSEND'\n    c obj 1\n"
                    "SOS\n S1 SOS s2 5\n    a 3\n    c 4\nENDATA\n"),
              0)
        << r.te.err;
    ASSERT_EQ(r.m.numsos, 2);
    EXPECT_EQ(r.m.sostype[0], '2');
    EXPECT_EQ(r.m.sostype[1], '1');
    EXPECT_EQ(r.m.numsosnz, 4);
    EXPECT_EQ(r.m.sosind[2], 0);
    EXPECT_EQ(r.m.sosref[3], 4.0);
    EXPECT_TRUE(r.said("Warning:  SOS priority values ignored.\n"));
}

TEST(MpsRead, QuadraticSectionForTheQuadraticCaller) {
    Read r;
    ASSERT_EQ(r.mps("NAME\nROWS\n N obj\nCOLUMNS\n    x obj 1\n    y obj 1\n"
                    "QMATRIX\n    x x 2\n    x y 1\n    y x 1\n    x x 1\nENDATA\n"),
              0);
    ASSERT_NE(r.m.qmatbeg, nullptr);
    EXPECT_EQ(r.m.qmatcnt[0], 2);
    EXPECT_EQ(r.m.qmatval[r.m.qmatbeg[0]], 3.0); /* repeats add */
    ASSERT_EQ(r.mps("NAME\nROWS\n N obj\nCOLUMNS\n    x obj 1\nQMATRIX\n    x x 2\nENDATA\n",
                    RM_INTS),
              0);
    EXPECT_EQ(r.m.qmatbeg, nullptr);
    EXPECT_EQ(r.m.nquad, 1);
}

/* Each malformed file gives its code, its text with the line, and nothing
 * else is handed out. */
struct BadMps {
    const char *text;
    int code;
    const char *message;
};

class MpsErrors : public ::testing::TestWithParam<BadMps> {};

TEST_P(MpsErrors, GiveTheirCodeAndLine) {
    Read r;
    int status = r.mps(GetParam().text);
    EXPECT_EQ(status, -GetParam().code) << GetParam().text;
    EXPECT_NE(r.te.err.find(GetParam().message), std::string::npos) << r.te.err;
    EXPECT_EQ(r.m.obj, nullptr);
    EXPECT_EQ(r.m.colname, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Files, MpsErrors,
    ::testing::Values(
        BadMps{"", 1441, "Line 0: No NAME section"},
        BadMps{"ROWS\n", 1441, "Line 1: No NAME section"},
        BadMps{"NAME\nCOLUMNS\n", 1471, "Line 2: No ROWS section"},
        BadMps{"NAME\nROWS\n N obj\nRHS\n", 1472, "Line 4: No COLUMNS section"},
        BadMps{"NAME\nROWS\n N obj\n", 1472, "No COLUMNS section"},
        BadMps{"NAME\nROWS\n X obj\n", 1453, "Line 3: No row sense"},
        BadMps{"NAME\nROWS\n N\n", 1486, "Line 3: No row name"},
        BadMps{"NAME\nROWS\n N obj\n L obj\nCOLUMNS\n", 1445, "Row 'obj' repeats"},
        BadMps{"NAME\nROWS\n L c\nCOLUMNS\n", 1476, "Line 4: No objective row found"},
        BadMps{"NAME\nOBJSENSE\n    UP\n", 1487, "Line 3: Unrecognized objective sense 'UP'"},
        BadMps{"NAME\nROWS\n N obj\nCOLUMNS\n    x nosuch 1\n", 1448,
               "Line 5: 'nosuch' is not a row name"},
        BadMps{"NAME\nROWS\n N obj\nCOLUMNS\n    x obj 1\n    y obj 1\n    x obj 2\nRHS\n", 1446,
               "Column 'x' repeats"},
        BadMps{"NAME\nROWS\n N o\n L c\nCOLUMNS\n    x c 1 c 2\nRHS\n", 1443,
               "Column 'x' has repeated row 'c'"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1x\n", 1434,
               "Line 5: Couldn't convert '1x' to a number"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1e99\n", 1435, "Line 5: Exponent '1e99' out of range"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1e\n", 1618,
               "Line 5: Exponent '1e' not ended with number"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    M 'MARKER' 'INTORG'\n    M 'MARKER' 'INTORG'\n",
               1480, "Line 6: 'INTORG' found while reading integers"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    M 'MARKER' 'INTEND'\n", 1481,
               "Line 5: 'INTEND' found while not reading integers"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    M 'MARKER' 'SOSORG'\n    M 'MARKER' 'SOSORG'\n",
               1482, "Line 6: 'SOSORG' found while reading a SOS"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    M 'MARKER' 'SOSEND'\n", 1483,
               "Line 5: 'SOSEND' found while not reading a SOS"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n S3 M 'MARKER' 'SOSORG'\n", 1442,
               "Line 5: Unrecognized SOS type: S3"},
        BadMps{"NAME\nROWS\n N o\n L c\nCOLUMNS\n    x o 1\nRHS\n    R nosuch 1\n", 1450,
               "Line 8: 'nosuch' is not a RHS name"},
        BadMps{"NAME\nROWS\n N o\n L c\nCOLUMNS\n    x o 1\nRANGES\n    R nosuch 1\n", 1452,
               "Line 8: 'nosuch' is not a range name"},
        BadMps{"NAME\nROWS\n N o\n L c\nCOLUMNS\n    x o 1\nRHS\n    R c 1 c 2\nRANGES\n", 1444,
               "RHS 'R' has repeated row 'c'"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n XX B x 1\n", 1457,
               "Line 7: Unrecognized bound type 'XX'"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n UP B o 1\n", 1449,
               "Line 7: 'o' is not a column name"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n UP B x 1\n UP B x 2\n", 1458,
               "Line 8: Repeated upper bound"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n LO B x 1\n LO B x 2\n", 1459,
               "Line 8: Repeated lower bound"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n LO B x 1\n FX B x 2\n", 1454,
               "Line 8: 'FX' bound type illegal when prior bound given"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n UP B x 1\n FR B x\n", 1455,
               "Line 8: 'FR' bound type illegal when prior bound given"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n MI B x\n BV B x\n", 1456,
               "Line 8: 'BV' bound type illegal when prior bound given"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\n UP B x 1\nRANGES\n", 1474,
               "Line 8: 'RANGES' section out of order"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nRHS\nFOO\n", 1473,
               "Line 7: Unrecognized section indicator.\n      Expecting RANGES, BOUNDS, QMATRIX, or ENDATA"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nBOUNDS\nFOO\n", 1475,
               "Line 7: Unrecognized section indicator.\n      Expecting QMATRIX or ENDATA"},
        BadMps{"NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nSOS\nFOO\n", 1462,
               "Line 7: Unrecognized section indicator.\n      Expecting ENDATA"}),
    [](const ::testing::TestParamInfo<BadMps> &info) {
        return "Code" + std::to_string(info.param.code) + "_" + std::to_string(info.index);
    });

TEST(MpsRead, OutOfOrderSectionIsSkippedWithAWarning) {
    Read r;
    ASSERT_EQ(r.mps(with("RHS\n    RHS LIM1 4\nROWS\n L LATE\nBOUNDS\n UP B X1 2\nENDATA\n")), 0);
    EXPECT_TRUE(r.said("Warning, line 15:  ROWS section illegal or out of order.\n"));
    EXPECT_EQ(r.m.nrows, 3);
    EXPECT_EQ(r.m.ub[r.col("X1")], 2.0);
    ASSERT_EQ(r.mps(with("BOUNDS\n UP B X1 2\n")), 0);
    EXPECT_TRUE(r.said("Warning, line 13:  RHS section missing or out of order.\n"));
    EXPECT_TRUE(r.said("Warning, line 14:  'ENDATA' missing.\n"));
}

TEST(MpsRead, LongNamesAreCutWithCountedWarnings) {
    std::string cols;
    for (int j = 0; j < 22; j++) cols += "    " + std::string(300, 'a' + j % 26) + std::to_string(j) + " o 1\n";
    Read r;
    ASSERT_EQ(r.mps("NAME\nROWS\n N o\nCOLUMNS\n" + cols + "ENDATA\n"), 0) << r.te.err;
    EXPECT_EQ(strlen(r.m.colname[0]), 255u);
    EXPECT_TRUE(r.said("Warning, line 5:  '" + std::string(255, 'a') + "' truncated.\n"));
    EXPECT_TRUE(r.said("2 truncation warning messages not printed.\n"));
}

TEST(MpsRead, MissingFileAndTheDefaultSuffix) {
    Read r;
    write_file("onlysuffix.mps", "NAME\nROWS\n N o\nCOLUMNS\n    x o 1\nENDATA\n");
    std::string stem = scratch_dir() + "/onlysuffix";
    EXPECT_EQ(mps_read(env_of(r.te.env), stem.c_str(), 0, &r.m), 0);
    EXPECT_EQ(r.m.ncols, 1);
    rm_free(&r.m);
    std::string none = scratch_dir() + "/nosuchfile";
    EXPECT_EQ(mps_read(env_of(r.te.env), none.c_str(), 0, &r.m), -1423);
    EXPECT_TRUE(r.said("Could not open file '" + none + "' for reading"));
}
