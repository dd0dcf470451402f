/* Files in the styles other programs write, read with TRVreadcopyprob and
 * solved by both simplex methods to the optimum another solver gives for
 * the same model (glpsol or clp on the file, or on its twin written in a
 * form that solver takes: one pair a line, names of at most 255
 * characters). */
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "support/model.h"
#include "support/tempdir.h"

namespace {

struct Case {
    const char *name;
    std::string text;
    double optimum;
};

/* A transportation model with three pairs on a COLUMNS line and on the
 * first RHS line; glpsol on the one-pair twin: 115. */
std::string transport3() {
    return "NAME          TRANSP\nROWS\n N  obj\n L  s0\n L  s1\n G  d0\n G  d1\n G  d2\n"
           "COLUMNS\n"
           "    x0_0 obj 2 s0 1 d0 1\n    x0_1 obj 3 s0 1 d1 1\n    x0_2 obj 4 s0 1 d2 1\n"
           "    x1_0 obj 5 s1 1 d0 1\n    x1_1 obj 1 s1 1 d1 1\n    x1_2 obj 2 s1 1 d2 1\n"
           "RHS\n    rhs s0 30 s1 40 d0 20\n    rhs d1 25 d2 20\nENDATA\n";
}

/* Fixed layout with blank column, vector and bound-set names on later
 * cards; glpsol --mps on the same file: -7. */
std::string fixed_blanks() {
    return "NAME          TESTPROB\n"
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
           "BOUNDS\n"
           " UP BND       XONE                 4\n"
           " LO           YTWO                -1\n"
           " UP           YTWO                 1\n"
           "ENDATA\n";
}

/* Two RHS and two RANGES vectors, the first of each used; clp: 5. */
std::string two_vectors() {
    return "NAME          TWORHS\nROWS\n N  obj\n G  c1\n G  c2\nCOLUMNS\n"
           "    x         obj          1    c1           1\n"
           "    x         c2           1\n"
           "    y         obj          2    c1           1\n"
           "    y         c2           3\n"
           "RHS\n    RHS1      c1           4    c2           6\n"
           "    RHS2      c1          10    c2          30\n"
           "RANGES\n    RNG1      c1           2\n    RNG2      c1           1    c2           1\n"
           "ENDATA\n";
}

/* Integer columns with a lower bound card only, as a modelling library
 * writes every integer without an upper bound; read as a linear program,
 * clp: -22.5 (cbc's continuous relaxation too). */
std::string integer_lower() {
    return "NAME          INTLO\nROWS\n N  obj\n L  cap\n G  need\nCOLUMNS\n"
           "    MARKER                 'MARKER'                 'INTORG'\n"
           "    n         obj          -3   cap           2\n"
           "    n         need          1\n"
           "    m         obj          -2   cap           3\n"
           "    MARKER                 'MARKER'                 'INTEND'\n"
           "    y         obj          -1   cap           1\n"
           "RHS\n    rhs       cap          20   need          3\n"
           "BOUNDS\n LO BND       n             0\n LO BND       m             3\n"
           " UP BND       y             2.5\nENDATA\n";
}

/* Lines of over a thousand characters: two rows named by 300 characters
 * each, cut to 255 on reading, and every column on one line; glpsol on the
 * one-pair twin with the cut names: -37.67741935. */
std::string long_mps() {
    const std::string p(300, 'p'), q(300, 'q');
    std::string rows[12];
    for (int k = 0; k < 12; k++)
        rows[k] = "row" + std::string(k < 10 ? "0" : "") + std::to_string(k) +
                  "_with_a_rather_long_generated_name";
    std::string s = "NAME          LONGLINES\nROWS\n N  cost\n G  " + p + "\n L  " + q + "\n";
    for (const auto &r : rows) s += " L  " + r + "\n";
    s += "COLUMNS\n";
    char v[32];
    for (int j = 0; j < 6; j++) {
        s += "    x" + std::to_string(j) + " cost " + std::to_string(-(j + 1)) + " " + p +
             " 1 " + q + (j % 2 == 0 ? " 1" : " 2");
        for (int k = 0; k < 12; k++) {
            std::snprintf(v, sizeof v, "%.3f", 1 + ((j * 7 + k * 3) % 11) * 0.125);
            s += " " + rows[k] + " " + v;
        }
        s += "\n";
    }
    s += "RHS\n    rhs " + p + " 2 " + q + " 12\n    rhs";
    for (int k = 0; k < 12; k++) s += " " + rows[k] + " " + std::to_string(10 + k);
    return s + "\nENDATA\n";
}

/* An LP file with names of 600 and 300 characters and a list of integers
 * on one line of 750 characters; glpsol and clp on the twin with the names
 * cut to 255: 8. */
std::string long_lp() {
    const std::string a(600, 'a'), b(300, 'b');
    std::string g, gl;
    for (int k = 0; k < 150; k++) {
        char n[8];
        std::snprintf(n, sizeof n, "g%03d", k);
        g += (k ? " + " : "") + std::string(n);
        gl += (k ? " " : "") + std::string(n);
    }
    return "\\ names longer than the line buffer\nMinimize\n obj: 2 " + a + " + 3 " + b +
           " + x + y\nSubject To\n c1: " + a + " + " + b + " + x >= 4\n c2: " + a +
           " - x >= 1\n c3: " + b + " + y >= 1\n c4: " + g + " - x <= 0\nBounds\n " + a +
           " <= 2\n " + b + " <= 3\nGenerals\n " + gl + "\nEnd\n";
}

struct Solved {
    int status = -1, stat = 0;
    double obj = 0.0;
};

Solved read_and_solve(TestEnv &te, const std::string &path, int method) {
    Solved s;
    TRVlp lp = TRVcreateprob(te.env, &s.status, "t");
    if (lp == nullptr) return s;
    s.status = TRVreadcopyprob(te.env, lp, path.c_str(), nullptr);
    if (s.status == 0) s.status = TRVsetintparam(te.env, 1062, method);
    if (s.status == 0) s.status = TRVlpopt(te.env, lp);
    if (s.status == 0) s.status = TRVsolution(te.env, lp, &s.stat, &s.obj, nullptr, nullptr,
                                              nullptr, nullptr);
    TRVfreeprob(te.env, &lp);
    return s;
}

}  // namespace

TEST(OtherWriters, FilesSolveToThePeersOptimum) {
    const Case cases[] = {
        {"transport3.mps", transport3(), 115.0},
        {"fixedblanks.mps", fixed_blanks(), -7.0},
        {"twovectors.mps", two_vectors(), 5.0},
        {"intlower.mps", integer_lower(), -22.5},
        {"longlines.mps", long_mps(), -37.67741935},
        {"longlines.lp", long_lp(), 8.0},
    };
    TempDir dir;
    for (const Case &c : cases) {
        std::string path = dir.put(c.name, c.text);
        for (int method : {1, 2}) {
            TestEnv te;
            Solved s = read_and_solve(te, path, method);
            EXPECT_EQ(s.status, 0) << c.name << "\n" << te.err;
            if (s.status != 0) continue;
            EXPECT_EQ(s.stat, 1) << c.name << " method " << method;
            EXPECT_NEAR(s.obj, c.optimum, 1e-7 * (1 + std::abs(c.optimum)))
                << c.name << " method " << method;
            EXPECT_EQ(te.err, "") << c.name;
        }
    }
}
