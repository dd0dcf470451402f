/* LP files as other programs write them, read by TRVreadcopyprob and
 * solved by both simplex methods to the optimum another solver gives; the
 * warnings they deserve come once, the errors name their line and token. */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/model.h"

namespace {

/* A scratch folder for this test binary, removed at exit. */
std::string scratch() {
    static std::string dir = [] {
        std::string t = (std::filesystem::temp_directory_path() / "trvlpXXXXXX").string();
        char *d = mkdtemp(t.data());
        static struct gone {
            std::string path;
            ~gone() {
                std::error_code ec;
                std::filesystem::remove_all(path, ec);
            }
        } g{d != nullptr ? d : ""};
        return g.path;
    }();
    return dir;
}

std::string file_of(const std::string &name, const std::string &text) {
    std::string path = scratch() + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

int count_of(const std::string &text, const std::string &what) {
    int n = 0;
    for (size_t p = 0; (p = text.find(what, p)) != std::string::npos; p += what.size()) n++;
    return n;
}

/* Reads the file into a new problem and solves it by the given method
 * (1 primal, 2 dual); the objective, or NaN when there is none. */
double solve_file(TestEnv &te, const std::string &path, int method) {
    int status = 0;
    TRVlp lp = TRVcreateprob(te.env, &status, "file");
    EXPECT_NE(lp, nullptr);
    double obj = std::nan("");
    if (lp == nullptr) return obj;
    status = TRVreadcopyprob(te.env, lp, path.c_str(), nullptr);
    EXPECT_EQ(status, 0) << te.err;
    if (status == 0) {
        status = method == 1 ? TRVprimopt(te.env, lp) : TRVdualopt(te.env, lp);
        EXPECT_EQ(status, 0) << te.err;
        int stat = 0;
        if (TRVsolution(te.env, lp, &stat, &obj, nullptr, nullptr, nullptr, nullptr) != 0)
            obj = std::nan("");
    }
    TRVfreeprob(te.env, &lp);
    return obj;
}

/* Solved by both methods to the peer's optimum; what was said on the
 * warning channel by one read. */
std::string expect_optimum(const std::string &path, double optimum) {
    std::string warn;
    for (int method : {1, 2}) {
        TestEnv te;
        double obj = solve_file(te, path, method);
        EXPECT_NEAR(obj, optimum, 1e-9 * (1.0 + std::fabs(optimum)))
            << path << (method == 1 ? " primal" : " dual");
        EXPECT_EQ(te.err, "") << path;
        warn = te.warn;
    }
    return warn;
}

}  // namespace

/* GLPK's LP writer, on a model with netlib-like names: "E1 free" and
 * "e2 = 0.25" begin their bound lines. glpsol and clp: 0.75. Read with
 * those bounds lost, the model is unbounded. */
TEST(LpElsewhere, GlpkWriterWithExponentLikeNames) {
    std::string path = file_of("enames.lp",
        "\\* Problem: ENAMES *\\\n\n"
        "Minimize\n"
        " COST: + E1COL01 + 2 E2COL01 - E11 + 3 E1 - 2 e2\n\n"
        "Subject To\n"
        " E1ROW: + E1COL01 + E2COL01 + E11 + 2 E1 >= 4\n"
        " E2ROW: - E1COL01 + E11 + e2 <= 1\n"
        " E11: + E2COL01 - E11 >= -2\n"
        " R4: + E1COL01 + E1 - e2 = 0.5\n\n"
        "Bounds\n"
        " 0 <= E1COL01 <= 1.5\n"
        " 0.5 <= E2COL01 <= 3\n"
        " -1 <= E11 <= 2\n"
        " E1 free\n"
        " e2 = 0.25\n\n"
        "End\n");
    EXPECT_EQ(expect_optimum(path, 0.75), "");
}

/* The same names where a writer puts no sign before the first term, in
 * the objective, the rows, the bounds and the integer list.
 * glpsol --nomip and clp: 2.25. */
TEST(LpElsewhere, ExponentLikeNamesWithoutSignsInEverySection) {
    std::string path = file_of("bare.lp",
        "\\ Model enames\n"
        "Minimize\n"
        "  E1COL01 + 2 E2COL01 - E11 + 3 E1 - 2 e2\n"
        "Subject To\n"
        " E1ROW: E1COL01 + E2COL01 + E11 + 2 E1 >= 4\n"
        " E2ROW: - E1COL01 + E11 + e2 <= 1\n"
        " E11: E2COL01 - E11 >= -2\n"
        " R4: E1COL01 + E1 - e2 = 0.5\n"
        " R5: E11 <= 1.5\n"
        "Bounds\n"
        " E1COL01 <= 1.5\n"
        " 0.5 <= E2COL01 <= 3\n"
        " -1 <= E11 <= 2\n"
        " E1 free\n"
        " e2 = 0.25\n"
        "Generals\n"
        " E2COL01\n"
        "End\n");
    EXPECT_EQ(expect_optimum(path, 2.25), "Problem contains integer declarations, ignored.\n");
}

/* A modelling library's writer with variables called bin, end, general,
 * int and semi, each at the start of its bound line. glpsol stops at
 * "end <= 3" and clp refuses the name; with the variables renamed glpsol
 * gives 20. Taken as keywords, the bounds are lost and the optimum is 100. */
TEST(LpElsewhere, ModellingLibraryWithKeywordNames) {
    std::string path = file_of("kw.lp",
        "\\* kw *\\\n"
        "Maximize\n"
        "OBJ: bin + end + general + int + semi\n"
        "Subject To\n"
        "_C1: bin + end + general + int + semi <= 100\n"
        "Bounds\n"
        "bin <= 2\n"
        "end <= 3\n"
        "general <= 4\n"
        "int <= 5\n"
        "semi <= 6\n"
        "End\n");
    EXPECT_EQ(expect_optimum(path, 20.0), "");
}

/* A model of bounds only, with an empty constraint section. clp: 7. */
TEST(LpElsewhere, EmptyConstraintSection) {
    std::string path = file_of("bounds.lp",
        "Maximize\n obj: x + 2 y\nSubject To\nBounds\n x <= 3\n 1 <= y <= 2\nEnd\n");
    EXPECT_EQ(expect_optimum(path, 7.0), "");
}

/* Two variables of one name in a row: the coefficients add, with a word.
 * glpsol on "c1: 2 x + y <= 4": 10 (11 if one x were dropped). */
TEST(LpElsewhere, OneNameTwiceInARowIsAddedAndSaid) {
    std::string path = file_of("twice.lp",
        "Maximize\n obj: 2 x + 3 y\nSubject To\n c1: x + y + x <= 4\n c2: y <= 3\nEnd\n");
    std::string warn = expect_optimum(path, 10.0);
    EXPECT_EQ(warn,
              "Warning:  Column 'x' appears more than once in row 'c1'; its coefficients are "
              "added.\n");
}

/* INTEGERS without bounds of its own is binary, as the format reads it;
 * other programs mean a general integer there, so each read says so, once
 * for each of the first five and a count for the rest. */
TEST(LpElsewhere, IntegersWithoutBoundsAreBinaryAndSaid) {
    std::string text = "Maximize\n obj: x1 + x2 + x3 + x4 + x5 + x6 + x7\nSubject To\n"
                       " c1: x1 + x2 + x3 + x4 + x5 + x6 + x7 <= 20\nBounds\n x7 <= 8\n"
                       "Integers\n x1 x2 x3 x4 x5 x6 x7\nEnd\n";
    std::string path = file_of("ints.lp", text);
    TestEnv te;
    double obj = solve_file(te, path, 2);
    EXPECT_NEAR(obj, 14.0, 1e-9); /* six binaries and x7 <= 8 */
    for (int k = 1; k <= 5; k++)
        EXPECT_EQ(count_of(te.warn, "Integer variable 'x" + std::to_string(k) + "' has no bounds"),
                  1);
    EXPECT_EQ(count_of(te.warn, "'x6'"), 0);
    EXPECT_EQ(count_of(te.warn, "'x7'"), 0);
    EXPECT_EQ(count_of(te.warn, "1 integer-as-binary warnings not printed.\n"), 1);
}

/* A row name holding '>' is refused with the name and its line. */
TEST(LpElsewhere, RowNameWithASenseIsRefusedByName) {
    std::string path = file_of("gt.lp",
        "Minimize\n obj: x + y\nSubject To\n c1: x + y >= 1\n flow>0: x - y >= 0\nEnd\n");
    TestEnv te;
    int status = 0;
    TRVlp lp = TRVcreateprob(te.env, &status, "gt");
    ASSERT_NE(lp, nullptr);
    EXPECT_EQ(TRVreadcopyprob(te.env, lp, path.c_str(), nullptr), 1617);
    EXPECT_EQ(te.err, "TORVA Error  1617: Line 5: 'flow>0' not valid identifier.\n");
    TRVfreeprob(te.env, &lp);
}
