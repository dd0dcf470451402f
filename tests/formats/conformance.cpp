/* Conformance on the public test sets: every model of netlib, MIPLIB 3 and
 * the infeasible set reads, with the counts of the folder's reference and
 * of an independent reader; the LP-format files read with the counts of
 * their MPS twins and the same objective and bounds. */
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "fmt_util.h"
#include "store/lp.h"

namespace {

struct RefRow {
    std::vector<std::string> f;
};

/* The rows of a tab-separated reference, by the first field. */
std::map<std::string, std::vector<std::string>> read_tsv(const std::string &path) {
    std::map<std::string, std::vector<std::string>> out;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::stringstream ss(line);
        std::string x;
        while (std::getline(ss, x, '\t')) f.push_back(x);
        if (!f.empty()) out[f[0]] = f;
    }
    return out;
}

long nonzeros(const read_model &m) {
    long n = 0;
    for (int j = 0; j < m.ncols; j++)
        for (int k = m.matbeg[j]; k < m.matbeg[j] + m.matcnt[j]; k++) n += m.matval[k] != 0.0;
    return n;
}

const std::string counts_file = std::string(TRV_SOURCE_TESTS) + "/formats/data/model_counts.tsv";

/* Reads every model of a folder and checks it against both references. */
void check_folder(const std::string &folder, bool integers) {
    std::string dir = data_dir();
    if (dir.empty()) GTEST_SKIP() << "no data folder";
    dir += "/" + folder;
    if (!std::filesystem::is_directory(dir)) GTEST_SKIP() << "no " << dir;
    auto ref = read_tsv(dir + "/REFERENCE.tsv");
    auto counts = read_tsv(counts_file);
    int files = 0, matched = 0;
    for (const auto &e : std::filesystem::directory_iterator(dir)) {
        std::string file = e.path().filename().string();
        if (file.find(".mps") == std::string::npos) continue;
        std::string name = file.substr(0, file.find(".mps"));
        Read r;
        r.m = read_model{};
        int status = mps_read(env_of(r.te.env), e.path().c_str(), RM_INTS | RM_QUAD, &r.m);
        files++;
        EXPECT_EQ(status, 0) << file << ": " << r.te.err;
        if (status != 0) continue;
        EXPECT_EQ(r.te.err, "") << file;
        auto it = ref.find(name);
        if (it != ref.end()) {
            EXPECT_EQ(std::to_string(r.m.nrows), it->second[1]) << file;
            EXPECT_EQ(std::to_string(r.m.ncols), it->second[2]) << file;
            if (integers) {
                int nint = 0;
                for (int j = 0; r.m.ctype != nullptr && j < r.m.ncols; j++) nint += r.m.ctype[j] != 'C';
                EXPECT_EQ(std::to_string(nint), it->second[3]) << file;
            }
        }
        auto c = counts.find(folder + "/" + name);
        if (c != counts.end()) {
            EXPECT_EQ(std::to_string(r.m.nrows), c->second[1]) << file;
            EXPECT_EQ(std::to_string(r.m.ncols), c->second[2]) << file;
            EXPECT_EQ(std::to_string(nonzeros(r.m)), c->second[3]) << file;
        }
        matched += it != ref.end() && c != counts.end() && !::testing::Test::HasFailure();
    }
    EXPECT_EQ(files, static_cast<int>(ref.size())) << "files against reference rows";
    std::printf("[ %s ] %d files read, %d matched both references\n", folder.c_str(), files, matched);
}

}  // namespace

TEST(Conformance, NetlibReads) { check_folder("netlib", false); }
TEST(Conformance, Miplib3ReadsWithItsIntegers) { check_folder("miplib3", true); }
TEST(Conformance, InfeasibleSetReads) { check_folder("infeas", false); }

namespace {

bool close_to(double a, double b) {
    if (a == b) return true;
    return std::fabs(a - b) <= 1e-9 * std::max(std::fabs(a), std::fabs(b));
}

/* Columns the other program made for ranged rows. */
bool range_column(const char *name) { return std::strncmp(name, "~r_", 3) == 0; }

}  // namespace

TEST(Conformance, LpFilesMatchTheirMpsTwins) {
    std::string dir = data_dir();
    if (dir.empty() || !std::filesystem::is_directory(dir + "/lp")) GTEST_SKIP() << "no data folder";
    int files = 0, same = 0;
    long compared = 0;
    for (const auto &e : std::filesystem::directory_iterator(dir + "/lp")) {
        std::string file = e.path().filename().string();
        if (e.path().extension() != ".lp") continue;
        std::string name = e.path().stem().string();
        std::string twin = dir + "/netlib/" + name + ".mps.gz";
        if (!std::filesystem::exists(twin)) continue;
        files++;
        Read lp, mps;
        int s1 = lp_read(env_of(lp.te.env), e.path().c_str(), RM_INTS | RM_QUAD, &lp.m);
        int s2 = mps_read(env_of(mps.te.env), twin.c_str(), RM_INTS | RM_QUAD, &mps.m);
        ASSERT_EQ(s1, 0) << file << ": " << lp.te.err;
        ASSERT_EQ(s2, 0) << twin;
        int extra = 0;
        long extranz = 0;
        for (int j = 0; j < lp.m.ncols; j++)
            if (range_column(lp.m.colname[j])) extra++, extranz += lp.m.matcnt[j];
        EXPECT_EQ(lp.m.nrows, mps.m.nrows) << file;
        EXPECT_EQ(lp.m.ncols - extra, mps.m.ncols) << file;
        EXPECT_EQ(nonzeros(lp.m) - extranz, nonzeros(mps.m)) << file;
        EXPECT_EQ(lp.m.objsen, mps.m.objsen) << file;
        /* objective and bounds, column by column where the names match */
        for (int j = 0; j < mps.m.ncols; j++) {
            int k = lp.col(mps.m.colname[j]);
            if (k < 0) continue;
            compared++;
            EXPECT_TRUE(close_to(lp.m.obj[k], mps.m.obj[j])) << file << " obj " << mps.m.colname[j];
            EXPECT_TRUE(close_to(lp.m.lb[k], mps.m.lb[j])) << file << " lb " << mps.m.colname[j];
            EXPECT_TRUE(close_to(lp.m.ub[k], mps.m.ub[j])) << file << " ub " << mps.m.colname[j];
        }
        same += !::testing::Test::HasFailure();
    }
    EXPECT_GT(compared, 0);
    std::printf("[ lp ] %d files read, %d matched their MPS twins (%ld columns compared)\n", files,
                same, compared);
}

/* Netlib models whose column names look like exponents (E1COL01, E11, ...),
 * written as LP by GLPK's writer, which puts such names at the start of
 * bound lines: every bound and cost must come through, without a word.
 * Runs where glpsol is on the path. */
TEST(Conformance, GlpkLpFilesWithExponentLikeNames) {
    std::string dir = data_dir();
    if (dir.empty() || !std::filesystem::is_directory(dir + "/netlib")) GTEST_SKIP() << "no data";
    if (std::system("glpsol --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no glpsol";
    int files = 0;
    for (const char *name : {"lotfi", "25fv47", "maros", "pilot4", "pilot"}) {
        std::string packed = dir + "/netlib/" + name + ".mps.gz";
        if (!std::filesystem::exists(packed)) continue;
        std::string mps = scratch_dir() + "/" + name + ".mps", lp = scratch_dir() + "/" + name + ".lp";
        std::string cmd = "gzip -cd '" + packed + "' > '" + mps + "' && (glpsol --mps '" + mps +
                          "' --wlp '" + lp + "' --check || glpsol --freemps '" + mps +
                          "' --wlp '" + lp + "' --check) > /dev/null 2>&1";
        ASSERT_EQ(std::system(cmd.c_str()), 0) << cmd;
        Read a, b;
        ASSERT_EQ(lp_read(env_of(a.te.env), lp.c_str(), RM_INTS | RM_QUAD, &a.m), 0) << name << a.te.err;
        ASSERT_EQ(mps_read(env_of(b.te.env), mps.c_str(), RM_INTS | RM_QUAD, &b.m), 0) << name;
        EXPECT_EQ(a.te.warn, "") << name;
        int enames = 0;
        for (int j = 0; j < b.m.ncols; j++) {
            const char *cn = b.m.colname[j];
            int k = a.col(cn);
            if (k < 0) k = a.col(("x_" + std::to_string(j + 1)).c_str()); /* renamed: ".ETHSD" */
            ASSERT_GE(k, 0) << name << " " << cn;
            const char *ln = a.m.colname[k];
            enames += (ln[0] == 'E' || ln[0] == 'e') && ln[1] >= '0' && ln[1] <= '9';
            EXPECT_TRUE(close_to(a.m.obj[k], b.m.obj[j])) << name << " obj " << cn;
            EXPECT_TRUE(close_to(a.m.lb[k], b.m.lb[j])) << name << " lb " << cn;
            EXPECT_TRUE(close_to(a.m.ub[k], b.m.ub[j])) << name << " ub " << cn;
        }
        EXPECT_GT(enames, 0) << name;
        files++;
    }
    std::printf("[ glpk lp ] %d netlib models with exponent-like names compared\n", files);
}
