/* The LP reader on small files: the grammar, bounds in every form, the
 * integer family, sets, cuts, the quadratic part, every error with its
 * line, and the re-entry of a bad line from standard input. */
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "fmt_util.h"
#include "store/lp.h"

TEST(LpRead, FourLineModel) {
    Read r;
    ASSERT_EQ(r.lp("minimize obj: x + 2y\nst\n x + y >= 2\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.nrows, 1);
    EXPECT_EQ(r.m.ncols, 2);
    EXPECT_EQ(r.m.sense[0], 'G');
    EXPECT_EQ(r.m.rhs[0], 2.0);
    EXPECT_EQ(r.m.obj[r.col("y")], 2.0);
    EXPECT_STREQ(r.m.objname, "obj");
    EXPECT_STREQ(r.m.rowname[0], "c1");
    EXPECT_EQ(r.m.objsen, 1);
    EXPECT_EQ(r.m.lb[0], 0.0);
    EXPECT_EQ(r.m.ub[0], TRV_INF);
    EXPECT_EQ(r.te.warn, "");
}

TEST(LpRead, ExpressionsSpanLinesAndIgnoreWhiteSpace) {
    Read r;
    ASSERT_EQ(r.lp("MAXIMIZE\n profit: 3 x1 + 2x2\n - x3\nsubject to\n"
                   " lim: x1 + x2\n + x3 <= 10 \\ a comment\n"
                   "c2:x1-x2=>-4\n : 2 x1 + 3 x1 - x2 =< 7\n = 1 x3 >= 0.5\nEND\n"),
              0)
        << r.te.err;
    EXPECT_EQ(r.m.objsen, -1);
    EXPECT_STREQ(r.m.objname, "profit");
    EXPECT_EQ(r.m.obj[r.col("x3")], -1.0);
    ASSERT_EQ(r.m.nrows, 5); /* "= 1" is a row of its own, with no terms */
    EXPECT_EQ(r.m.sense[3], 'E');
    EXPECT_EQ(r.m.rhs[3], 1.0);
    EXPECT_EQ(r.coef(4, r.col("x3")), 1.0);
    EXPECT_STREQ(r.m.rowname[0], "lim");
    EXPECT_EQ(r.m.rhs[0], 10.0);
    EXPECT_EQ(r.m.sense[1], 'G');
    EXPECT_EQ(r.m.rhs[1], -4.0);
    EXPECT_EQ(r.coef(2, r.col("x1")), 5.0); /* repeats add */
    EXPECT_EQ(r.m.sense[2], 'L');
    EXPECT_STREQ(r.m.rowname[2], "c3");
}

TEST(LpRead, ExponentsAndExponentLikeNames) {
    Read r;
    EXPECT_EQ(r.lp("min: 3e38x\nend\n"), -1435);
    EXPECT_TRUE(r.said("Line 1: Exponent '3e38x' out of range"));
    ASSERT_EQ(r.lp("min: 3e-38x + y\nend\n"), 0);
    EXPECT_EQ(r.m.ncols, 2);
    EXPECT_EQ(r.m.obj[r.col("x")], 0.0);
    /* an exponent needs digits before it: alone, "e1" and "E" are names */
    ASSERT_EQ(r.lp("min: e1 + E\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.obj[r.col("e1")], 1.0);
    EXPECT_EQ(r.m.obj[r.col("E")], 1.0);
    ASSERT_EQ(r.lp("min: - 10 E11 + E2\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.obj[r.col("E11")], -10.0);
    EXPECT_EQ(r.m.obj[r.col("E2")], 1.0);
    /* joined to digits the exponent is one: 2e1 x is 20 x */
    ASSERT_EQ(r.lp("min: 2e1x\nend\n"), 0);
    EXPECT_EQ(r.m.obj[0], 20.0);
}

/* Names like E1COL01, E11, e2 (as netlib models have them) in every place a
 * name may stand, written without a sign before them. */
TEST(LpRead, ExponentLikeNamesInEverySection) {
    Read r;
    ASSERT_EQ(r.lp("Minimize\n E1COL01 + 2 E2COL01 - E11 + [ E11 ^ 2 + 2 E1COL01 * e2 ]\n"
                   "Subject To\n E1ROW: E1COL01 + E11 >= 4\n E11: e2 + E3 <= 1\n"
                   "c3: E11 >= -2\nBounds\n E1COL01 <= 1.5\n 0.5 <= E2COL01 <= 3\n"
                   " E11 >= -1\n -1 <= e2\n E3 free\n e4 <= 3\n nosuch <= 3\n"
                   "Generals\n E2COL01 e5\nSOS\n s1: S1:: E11:1 e2:2\nEnd\n"),
              0)
        << r.te.err;
    int a = r.col("E1COL01"), b = r.col("E2COL01"), c = r.col("E11"), d = r.col("e2"),
        e = r.col("E3");
    ASSERT_EQ(r.m.ncols, 5);
    EXPECT_EQ(r.m.obj[a], 1.0);
    EXPECT_EQ(r.m.obj[c], -1.0);
    EXPECT_EQ(r.m.qmatval[r.m.qmatbeg[c]], 2.0);
    EXPECT_EQ(r.coef(1, d), 1.0);
    EXPECT_STREQ(r.m.rowname[1], "E11");
    EXPECT_EQ(r.coef(2, c), 1.0);
    EXPECT_EQ(r.m.ub[a], 1.5);
    EXPECT_EQ(r.m.lb[b], 0.5);
    EXPECT_EQ(r.m.ub[b], 3.0);
    EXPECT_EQ(r.m.lb[c], -1.0);
    EXPECT_EQ(r.m.lb[d], -1.0);
    EXPECT_EQ(r.m.lb[e], -TRV_INF);
    EXPECT_EQ(r.m.ctype[b], 'I');
    EXPECT_EQ(r.m.sosind[0], c);
    EXPECT_EQ(r.m.sosind[1], d);
    /* only a name that exists nowhere is told apart from a misplaced number */
    EXPECT_EQ(r.te.warn, "Line 13: 'e4' not valid identifier.\n"
                         "Line 14: Name 'nosuch' does not exist.\n"
                         "Line 16: 'e5' not valid identifier.\n");
}

/* A modelling library writes a variable called end, int, bin or general at
 * the start of a bounds line; a relation, "free", a sign or a weight after
 * the word makes it the name it is. */
TEST(LpRead, KeywordsFollowedByARelationAreNames) {
    Read r;
    ASSERT_EQ(r.lp("Maximize\n obj: bin + end + general + int + semi + x\nSubject To\n"
                   " c1: x + end <= 10\nend + int - x >= -20\nBounds\nbin <= 2\nend <= 3\n"
                   "general = 4\nint >= -5\nsemi free\nbounds <= 1\nSOS\n s1: S1:: x:1\n"
                   "end:2 int:3\nEnd\n"),
              0)
        << r.te.err;
    ASSERT_EQ(r.m.nrows, 2);
    EXPECT_EQ(r.coef(1, r.col("end")), 1.0);
    EXPECT_EQ(r.m.ub[r.col("bin")], 2.0);
    EXPECT_EQ(r.m.ub[r.col("end")], 3.0);
    EXPECT_EQ(r.m.lb[r.col("general")], 4.0);
    EXPECT_EQ(r.m.lb[r.col("int")], -5.0);
    EXPECT_EQ(r.m.lb[r.col("semi")], -TRV_INF);
    EXPECT_EQ(r.m.numsosnz, 3);
    EXPECT_EQ(r.m.sosind[1], r.col("end"));
    EXPECT_EQ(r.te.warn, "Line 12: Name 'bounds' does not exist.\n");
    ASSERT_EQ(r.lp("min: x +\n max + 2 y\nst\n c1: x + y + max >= 1\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.obj[r.col("max")], 1.0);
    EXPECT_EQ(r.m.objsen, 1);
    /* where the keyword must stand, a column of its name is mentioned */
    ASSERT_EQ(r.lp("min: x + end + int\nst\n c1: x + end + int >= 1\ngenerals\n x\n end\n"), 0);
    EXPECT_EQ(r.te.warn,
              "Warning, line 6: 'end' taken as a keyword, not as the column of that name.\n");
    EXPECT_EQ(r.m.ctype[r.col("end")], 'C');
    ASSERT_EQ(r.lp("min: x + int\nst\n c1: x + int >= 1\nint x\nend\n"), 0);
    EXPECT_TRUE(
        r.said("Warning, line 4: 'int' taken as a keyword, not as the column of that name.\n"));
    EXPECT_EQ(r.m.ctype[r.col("x")], 'B');
}

/* What the format says but other programs do not mean is told, once and
 * counted: integers without bounds become binary, a name repeated in a row
 * adds its coefficients. */
TEST(LpRead, QuietDeviationsAreToldOnceAndCounted) {
    Read r;
    ASSERT_EQ(r.lp("min: - a - b - c - d - e1 - f - g + a\nst\n c1: a + b + 2 c + c + d <= 9\n"
                   " c2: e1 + f + g + g - g <= 9\nbounds\n g <= 5\n"
                   "integers\n a b c d e1 f g\nend\n"),
              0)
        << r.te.err;
    const char *hint = "' has no bounds of its own and is taken as binary; list it under "
                       "GENERALS or bound it for a general integer.\n";
    std::string want = "Warning:  Column 'a' appears more than once in row 'obj'; its "
                       "coefficients are added.\n";
    for (const char *n : {"a", "b", "c", "d", "e1"})
        want += std::string("Warning:  Integer variable '") + n + hint;
    want += "1 integer-as-binary warnings not printed.\n";
    want += "Warning:  Column 'c' appears more than once in row 'c1'; its coefficients are "
            "added.\n";
    want += "Warning:  Column 'g' appears more than once in row 'c2'; its coefficients are "
            "added.\n";
    want += "Warning:  Column 'g' appears more than once in row 'c2'; its coefficients are "
            "added.\n";
    EXPECT_EQ(r.te.warn, want);
    EXPECT_EQ(r.m.ub[r.col("f")], 1.0);
    EXPECT_EQ(r.m.ctype[r.col("g")], 'I'); /* bounded: a general integer */
    EXPECT_EQ(r.m.ub[r.col("g")], 5.0);
    EXPECT_EQ(r.m.obj[r.col("a")], 0.0);
    EXPECT_EQ(r.coef(0, r.col("c")), 3.0);
    EXPECT_EQ(r.coef(1, r.col("g")), 1.0);
    /* a reader without integers changes no bound and says nothing of it */
    ASSERT_EQ(r.lp("min: x\nst\n c1: x >= 0\nint\n x\nend\n", 0), 0);
    EXPECT_EQ(r.te.warn, "");
}

/* A constraint section may be empty: a model of bounds only. */
TEST(LpRead, EmptyConstraintSection) {
    Read r;
    ASSERT_EQ(r.lp("max: x + 2 y\nsubject to\n\nbounds\n x <= 3\n 1 <= y <= 2\nend\n"), 0)
        << r.te.err;
    EXPECT_EQ(r.m.nrows, 0);
    EXPECT_EQ(r.m.ncols, 2);
    EXPECT_EQ(r.m.ub[r.col("y")], 2.0);
    ASSERT_EQ(r.lp("min: x\nst\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.nrows, 0);
    ASSERT_EQ(r.lp("min: x\nst\ngenerals\n x\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.ctype[0], 'I');
}

TEST(LpRead, ZeroCoefficientsDropButTheColumnStays) {
    Read r;
    ASSERT_EQ(r.lp("min: x\nst\n 0 y + x - x + z >= 1\nend\n"), 0);
    EXPECT_EQ(r.m.ncols, 3);
    EXPECT_EQ(r.m.matcnt[r.col("y")], 0);
    EXPECT_EQ(r.m.matcnt[r.col("x")], 0);
    EXPECT_EQ(r.m.matcnt[r.col("z")], 1);
}

TEST(LpRead, BoundsInAllForms) {
    Read r;
    ASSERT_EQ(r.lp("min: a + b + c + d + ee + f + g\nst\n a >= 0\nbounds\n a free\n b FREE\n"
                   " c <= 4\n 2 <= d\n -inf <= ee <= +INF\n f = 3\n 1 <= g <= 2\n c >= -1e30\n"
                   " 5 >= g >= 7\n nosuch <= 3\nend\n"),
              0)
        << r.te.err;
    auto lb = [&](const char *n) { return r.m.lb[r.col(n)]; };
    auto ub = [&](const char *n) { return r.m.ub[r.col(n)]; };
    EXPECT_EQ(lb("a"), -TRV_INF);
    EXPECT_EQ(ub("a"), TRV_INF);
    EXPECT_EQ(lb("b"), -TRV_INF);
    EXPECT_EQ(ub("c"), 4.0);
    EXPECT_EQ(lb("c"), -TRV_INF);
    EXPECT_EQ(lb("d"), 2.0);
    EXPECT_EQ(lb("ee"), -TRV_INF);
    EXPECT_EQ(ub("ee"), TRV_INF);
    EXPECT_EQ(lb("f"), 3.0);
    EXPECT_EQ(ub("f"), 3.0);
    EXPECT_EQ(ub("g"), 5.0); /* the last entry wins */
    EXPECT_EQ(lb("g"), 7.0);
    EXPECT_TRUE(r.said("Warning, line 13: Possible sense conflict.\n") == false);
    EXPECT_TRUE(r.said("Line 14: Name 'nosuch' does not exist.\n"));
    ASSERT_EQ(r.lp("min: x\nbounds\n 1 <= x >= 0\nFREE\nend\n"), 0);
    EXPECT_TRUE(r.said("Warning, line 3: Possible sense conflict.\n"));
    EXPECT_TRUE(r.said("Line 4: Name '' does not exist.\n"));
}

TEST(LpRead, IntegersMeansBinaryGeneralsKeepsBounds) {
    Read r;
    ASSERT_EQ(r.lp("min: x + y + z + w + s\nst\n x + y + z + w + s >= 1\nbounds\n z <= 5\n s <= 9\n"
                   "integers\n x z\ngenerals\n y\nbinaries\n w\nsemi-continuous\n s\nend\n"),
              0);
    ASSERT_NE(r.m.ctype, nullptr);
    EXPECT_EQ(r.m.ctype[r.col("x")], 'B');
    EXPECT_EQ(r.m.ub[r.col("x")], 1.0);
    EXPECT_EQ(r.m.ctype[r.col("y")], 'I');
    EXPECT_EQ(r.m.ub[r.col("y")], TRV_INF);
    EXPECT_EQ(r.m.ctype[r.col("z")], 'I');
    EXPECT_EQ(r.m.ub[r.col("z")], 5.0);
    EXPECT_EQ(r.m.ctype[r.col("w")], 'B');
    EXPECT_EQ(r.m.ub[r.col("w")], 1.0);
    EXPECT_EQ(r.m.ctype[r.col("s")], 'S');
    EXPECT_EQ(r.m.nints, 5);
    ASSERT_EQ(r.lp("min: x\nbounds\n x <= 3\nbin\n x\nint\n q e1\nend\n"), 0);
    EXPECT_TRUE(r.said("Warning:  Binary variables declared with bounds other than 0 and 1.\n"));
    EXPECT_TRUE(r.said("Line 7: Name 'q' does not exist.\n"));
    EXPECT_TRUE(r.said("Line 7: 'e1' not valid identifier.\n"));
    /* a caller without integers keeps the bounds as they are */
    ASSERT_EQ(r.lp("min: x\nint\n x\nend\n", 0), 0);
    EXPECT_EQ(r.m.ctype, nullptr);
    EXPECT_EQ(r.m.ub[0], TRV_INF);
    EXPECT_EQ(r.m.nints, 1);
}

TEST(LpRead, SetsCutsAndTheQuadraticPart) {
    Read r;
    ASSERT_EQ(r.lp("max: x + y + z + [ 2 x^2 - 3 x*y ]\nst\n x + y + z <= 3\n"
                   "user cuts\n u1: x + y <= 2\nlazy constraints\n x <= 1\n"
                   "sos\n s1: S1:: x:1 y:2\n S2 :: y : 3 z:4\nend\n"),
              0)
        << r.te.err;
    EXPECT_EQ(r.m.nrows, 1);
    EXPECT_EQ(r.m.ncut[0], 1);
    EXPECT_EQ(r.m.ncut[1], 1);
    EXPECT_STREQ(r.m.cutname[0][0], "u1");
    EXPECT_EQ(r.m.cutrhs[0][0], 2.0);
    EXPECT_EQ(r.m.numsos, 2);
    EXPECT_EQ(r.m.sostype[1], '2');
    EXPECT_EQ(r.m.sosref[2], 3.0);
    ASSERT_NE(r.m.qmatbeg, nullptr);
    int x = r.col("x"), y = r.col("y");
    EXPECT_EQ(r.m.qmatcnt[x], 2);
    EXPECT_EQ(r.m.qmatval[r.m.qmatbeg[x]], 4.0);       /* 1/2 x'Qx: Q_xx = 2 * 2 */
    EXPECT_EQ(r.m.qmatval[r.m.qmatbeg[x] + 1], -3.0);  /* Q_yx */
    EXPECT_EQ(r.m.qmatval[r.m.qmatbeg[y]], -3.0);
}

TEST(LpRead, EndMissingAndRowNameRepeats) {
    Read r;
    ASSERT_EQ(r.lp("min: x\nst\n a: x >= 1\n a: x <= 3\n x: x <= 5\n"), 0);
    EXPECT_TRUE(r.said("Warning: 'End' missing.\n"));
    EXPECT_TRUE(r.said("Row 'a' repeats.\n"));
    EXPECT_EQ(r.m.nrows, 3);
    ASSERT_EQ(r.lp("min: x + \nst\n x >= 1\nend\n"), 0);
    EXPECT_TRUE(r.said("Warning, line 2: Objective ended unexpectedly.\n"));
}

TEST(LpRead, LongLinesReadWhole) {
    std::string expr = "min: ";
    for (int j = 0; j < 120; j++) expr += " + x" + std::to_string(j);
    Read r;
    ASSERT_EQ(r.lp(expr + "\nst\n x0 + x5 >= 1\nend\n"), 0) << r.te.err;
    EXPECT_EQ(r.m.ncols, 120);
    EXPECT_EQ(r.m.obj[119], 1.0);
    ASSERT_EQ(r.lp("min: " + std::string(600, 'x') + "\nend\n"), 0) << r.te.err;
    EXPECT_EQ(std::strlen(r.m.colname[0]), 255u);
    ASSERT_EQ(r.lp("min: " + std::string(300, 'y') + "\nend\n"), 0);
    EXPECT_EQ(std::strlen(r.m.colname[0]), 255u);
    EXPECT_TRUE(r.said("Warning, line 1: '" + std::string(255, 'y') + "' truncated.\n"));
}

TEST(LpRead, UnexpectedCharactersAreSkipped) {
    Read r;
    ASSERT_EQ(r.lp("min: x \x01+ y\nend\n"), 0);
    EXPECT_TRUE(r.said("Warning, line 1: Unexpected character code 1 skipped.\n"));
    EXPECT_EQ(r.m.ncols, 2);
}

struct BadLp {
    const char *text;
    int code;
    const char *message;
};

class LpErrors : public ::testing::TestWithParam<BadLp> {};

TEST_P(LpErrors, GiveTheirCodeAndLine) {
    Read r;
    EXPECT_EQ(r.lp(GetParam().text), -GetParam().code) << GetParam().text;
    EXPECT_NE(r.te.err.find(GetParam().message), std::string::npos) << r.te.err;
    EXPECT_EQ(r.m.obj, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Files, LpErrors,
    ::testing::Values(
        BadLp{"", 1436, "Max or Min missing"},
        BadLp{"st\n x >= 1\nend\n", 1436, "Max or Min missing"},
        BadLp{"min: x +\n - y\nend\n", 1602, "Lines 1,2: Adjacent signs"},
        BadLp{"min: x <= 3\nend\n", 1603, "Line 1: RHS sense in objective"},
        BadLp{"min: x\nst\n x + >= 3\nend\n", 1604, "Lines 3,3: Adjacent sign and sense"},
        BadLp{"min: x\nst\n [ x^2 ] <= 3\nend\n", 1605, "Line 3: Quadratic term in constraint"},
        BadLp{"min: x + [ + ^2 ]\nend\n", 1606, "Lines 1,1: Adjacent sign and quadratic character"},
        BadLp{"min: [ x^2 ] y\nend\n", 1607, "Line 1: Expected operator, found 'y'"},
        BadLp{"min: x\nst\n x + y : >= 2\nend\n", 1608, "Line 3: Expected '+','-' or sense, found ':'"},
        BadLp{"min: x\nst\n x >=\n 2\nend\n", 1610, "Line 3: Expected RHS coefficient"},
        BadLp{"min: x\nst\n x + y\nbounds\nend\n", 1610, "Line 4: Expected RHS coefficient"},
        BadLp{"min: [ x ^ ]\nend\n", 1612, "Line 1: Expected quadratic exponent"},
        BadLp{"min: [ x ^ 3 ]\nend\n", 1613, "Line 1: Quadratic exponent must be 2"},
        BadLp{"min: [ x + y ]\nend\n", 1614, "Line 1: Expected ^ or *"},
        BadLp{"min: [ x * 2 ]\nend\n", 1609, "Line 1: Expected identifier first"},
        BadLp{"min: 3 + x\nend\n", 1616, "Line 1: Expected identifier, found '+'"},
        BadLp{"min: x\nst\n c>1: x >= 2\nend\n", 1617, "Line 3: 'c>1' not valid identifier"},
        BadLp{"min: x\nst\n flow>=a_1: x >= 2\nend\n", 1617,
              "Line 3: 'flow>=a_1' not valid identifier"},
        BadLp{"min: x\nst\n c1: x >= 2\n c<-3: x <= 4\nend\n", 1617,
              "Line 4: 'c<-3' not valid identifier"},
        BadLp{"min: .e5x\nend\n", 1618, "Line 1: Exponent '.e5x' not started with number"},
        BadLp{"min: 2e + x\nend\n", 1618, "Line 1: Exponent '2e' not ended with number"},
        BadLp{"min: x\nbounds\n x 3\nend\n", 1621, "Line 3: No bound sense"},
        BadLp{"min: x\nbounds\n x\nend\n", 1621, "Line 3: No bound sense"},
        BadLp{"min: x\nbounds\n x <> 3\nend\n", 1622, "Line 3: Invalid bound sense"},
        BadLp{"min: x\nbounds\n x <=\nend\n", 1623, "Line 3: Missing bound number"},
        BadLp{"min: x\nbounds\n x <= -\nend\n", 1623, "Line 3: Missing bound number"},
        BadLp{"min: x\nbounds\n + <= x\nend\n", 1623, "Line 3: Missing bound number"},
        BadLp{"min: x\nst\n x >= +y\nend\n", 1610, "Line 3: Expected RHS coefficient"},
        BadLp{"min: x\nbounds\n x <= 3y\nend\n", 1434, "Line 3: Couldn't convert '3y' to a number"},
        BadLp{"min: x\nsos\n s: S3:: x:1\nend\n", 1442, "Line 3: Unrecognized SOS type: S3"},
        BadLp{"min: x\nsos\n S1:: x 1\nend\n", 1607, "Line 3: Expected operator, found '1'"}),
    [](const ::testing::TestParamInfo<BadLp> &info) {
        return "Code" + std::to_string(info.param.code) + "_" + std::to_string(info.index);
    });

/* Reads "text" as standard input through lp_read with a null name. */
static int read_stdin(Read &r, const std::string &text) {
    std::string path = write_file("stdin.lp", text);
    fflush(stdin);
    int saved = dup(0);
    FILE *f = freopen(path.c_str(), "r", stdin);
    EXPECT_NE(f, nullptr);
    int status = lp_read(env_of(r.te.env), nullptr, RM_INTS, &r.m);
    fflush(stdin);
    dup2(saved, 0);
    close(saved);
    clearerr(stdin);
    return status;
}

TEST(LpRead, TerminalInputAsksForABadLineAgain) {
    Read r;
    ASSERT_EQ(read_stdin(r, "minimize\n x + y\nst\n c1: x + + y >= 1\n c1: x + y >= 1\n"
                            " c2: x - q >=\n c2: x - q >= 2\nend\n"),
              0)
        << r.te.err;
    EXPECT_TRUE(r.said("Enter new problem ['end' on a separate line terminates]:\n"));
    EXPECT_TRUE(r.said("Lines 4,4: Adjacent signs"));
    size_t n = 0;
    for (size_t p = 0; (p = r.te.res.find("Please reenter last line:\n", p)) != std::string::npos; p++) n++;
    EXPECT_EQ(n, 2u);
    EXPECT_EQ(r.m.nrows, 2);
    EXPECT_EQ(r.m.ncols, 3); /* q of the bad line stays: it came back with the good one */
    EXPECT_EQ(r.coef(1, r.col("q")), -1.0);
    EXPECT_EQ(r.m.rhs[1], 2.0);
}

TEST(LpRead, UnknownNamesAreToldForTheFirstTwenty) {
    Read r;
    std::string text = "Minimize\n obj: x\nSubject To\n c: x >= 1\nGenerals\n";
    for (int k = 0; k < 30; k++) text += " u" + std::to_string(k) + "\n";
    text += "End\n";
    ASSERT_EQ(r.lp(text), 0);
    EXPECT_NE(r.te.warn.find("Line 25: Name 'u19' does not exist.\n"), std::string::npos);
    EXPECT_EQ(r.te.warn.find("'u20'"), std::string::npos);
    EXPECT_NE(r.te.warn.find("10 unknown name warnings not printed.\n"), std::string::npos);
}
