/* Basis files through the public interface: a basis written after a solve
 * and read into a fresh copy restarts without a pivot; the recovery file
 * of parameter 1004 appears every so many iterations of both drivers and
 * reads back; the restart of parameter 1041 loads it before a solve. */
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/kkt.h"
#include "support/model.h"
#include "support/tempdir.h"

namespace {

bool exists(const std::string &p) { return std::filesystem::exists(p); }

size_t count_of(const std::string &text, const std::string &what) {
    size_t n = 0;
    for (size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 1)) n++;
    return n;
}

/* A random model that takes some iterations, named by a path. */
Model model_named(unsigned seed, const std::string &name) {
    Model md = random_lp(seed, 30, 20);
    md.name = name;
    return md;
}

int solve(TRVenv env, TRVlp lp, bool dual) {
    return dual ? TRVdualopt(env, lp) : TRVprimopt(env, lp);
}

}  // namespace

TEST(BasFileApi, WrittenBasisRestartsWithoutPivots) {
    TestEnv t;
    TempDir dir;
    TRVsetintparam(t.env, 1019, 0);
    int tested = 0;
    for (unsigned seed = 61; seed <= 68; seed++) {
        Model md = random_lp(seed, 14, 9, seed % 2 == 0);
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(TRVdualopt(t.env, lp), 0);
        if (TRVgetstat(t.env, lp) != 1) {
            TRVfreeprob(t.env, &lp);
            continue;
        }
        tested++;
        std::string path = dir.file("opt" + std::to_string(seed) + ".bas");
        ASSERT_EQ(TRVmbasewrite(t.env, lp, path.c_str()), 0);
        int n = md.ncols(), m = md.nrows();
        std::vector<int> cstat(n), rstat(m);
        ASSERT_EQ(TRVgetbase(t.env, lp, cstat.data(), rstat.data()), 0);
        for (bool dual : {false, true}) {
            TRVlp fresh = md.copy_into(t.env);
            ASSERT_EQ(TRVreadcopybase(t.env, fresh, path.c_str()), 0);
            std::vector<int> c2(n), r2(m);
            ASSERT_EQ(TRVgetbase(t.env, fresh, c2.data(), r2.data()), 0);
            EXPECT_EQ(c2, cstat) << "seed " << seed;
            EXPECT_EQ(r2, rstat) << "seed " << seed;
            ASSERT_EQ(solve(t.env, fresh, dual), 0);
            EXPECT_EQ(TRVgetstat(t.env, fresh), 1);
            EXPECT_EQ(TRVgetitcnt(t.env, fresh), 0) << "seed " << seed;
            TRVfreeprob(t.env, &fresh);
        }
        /* TRVmbaseread gives the columns as TRVgetbase */
        std::vector<std::string> names = md.colnames, rnames = md.rownames;
        std::vector<char *> cp, rp;
        for (auto &s : names) cp.push_back(s.data());
        for (auto &s : rnames) rp.push_back(s.data());
        std::vector<int> c3(n), r3(m);
        ASSERT_EQ(TRVmbaseread(t.env, path.c_str(), n, m, cp.data(), rp.data(), c3.data(),
                               r3.data()),
                  0);
        for (int j = 0; j < n; j++) {
            if (cstat[j] != 3) {
                EXPECT_EQ(c3[j], cstat[j]) << "seed " << seed << " col " << j;
            }
        }
        for (int i = 0; i < m; i++) EXPECT_EQ(r3[i] == 1, rstat[i] == 1);
        TRVfreeprob(t.env, &lp);
    }
    EXPECT_GT(tested, 2);
}

TEST(BasFileApi, RecoveryFileEveryFewIterations) {
    for (bool dual : {false, true}) {
        TestEnv t;
        TempDir dir;
        TRVsetintparam(t.env, 1019, 0);
        TRVsetintparam(t.env, 1004, 3);
        Model md = model_named(71, dir.file("rec.mps.gz"));
        TRVlp lp = md.copy_into(t.env);
        ASSERT_EQ(solve(t.env, lp, dual), 0);
        int its = TRVgetitcnt(t.env, lp);
        ASSERT_GT(its, 3) << "the model must take some iterations";
        std::string xxx = dir.file("rec.xxx");
        std::string msg = "Basis written to file '" + xxx + "'.\n";
        EXPECT_GE(count_of(t.res, msg), 1u) << t.res;
        EXPECT_LE(count_of(t.res, msg), static_cast<size_t>(its / 3));
        ASSERT_TRUE(exists(xxx));
        TRVlp fresh = md.copy_into(t.env);
        t.clear();
        ASSERT_EQ(TRVreadcopybase(t.env, fresh, xxx.c_str()), 0);
        EXPECT_EQ(t.err + t.warn, "");
        ASSERT_EQ(solve(t.env, fresh, dual), 0);
        EXPECT_EQ(TRVgetstat(t.env, fresh), TRVgetstat(t.env, lp));
        TRVfreeprob(t.env, &fresh);
        TRVfreeprob(t.env, &lp);
    }
}

TEST(BasFileApi, NoRecoveryFileAtTheDefaultInterval) {
    TestEnv t;
    TempDir dir;
    TRVsetintparam(t.env, 1019, 0);
    Model md = model_named(72, dir.file("quiet.lp"));
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_FALSE(exists(dir.file("quiet.xxx")));
    EXPECT_EQ(t.res.find("Basis written"), std::string::npos);
    TRVfreeprob(t.env, &lp);
}

TEST(BasFileApi, UnwritableRecoveryFileOnlyWarns) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    TRVsetintparam(t.env, 1004, 2);
    Model md = model_named(71, "/nonexistent-dir/rec.lp");
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    EXPECT_NE(t.warn.find("Warning: Basis recovery file '/nonexistent-dir/rec.xxx' not written.\n"),
              std::string::npos);
    EXPECT_EQ(t.err, "");
    TRVfreeprob(t.env, &lp);
}

TEST(BasFileApi, RestartLoadsTheRecoveryFile) {
    TestEnv t;
    TempDir dir;
    TRVsetintparam(t.env, 1019, 0);
    TRVsetintparam(t.env, 1004, 2);
    Model md = model_named(73, dir.file("rs.lp"));
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVprimopt(t.env, lp), 0);
    int its = TRVgetitcnt(t.env, lp), stat = TRVgetstat(t.env, lp);
    ASSERT_GT(its, 2);
    std::string xxx = dir.file("rs.xxx");
    ASSERT_TRUE(exists(xxx));
    int n = md.ncols(), m = md.nrows();
    std::vector<char *> cp, rp;
    std::vector<std::string> cn = md.colnames, rn = md.rownames;
    for (auto &s : cn) cp.push_back(s.data());
    for (auto &s : rn) rp.push_back(s.data());
    std::vector<int> cfile(n), rfile(m);
    ASSERT_EQ(TRVmbaseread(t.env, xxx.c_str(), n, m, cp.data(), rp.data(), cfile.data(),
                           rfile.data()),
              0);

    /* a fresh copy with the restart: the run starts from the file's basis
     * (seen with no iteration allowed) */
    TestEnv t2;
    TRVsetintparam(t2.env, 1019, 0);
    TRVsetintparam(t2.env, 1041, 1);
    TRVsetintparam(t2.env, 1020, 0);
    TRVlp fresh = md.copy_into(t2.env);
    ASSERT_EQ(TRVprimopt(t2.env, fresh), 0);
    EXPECT_NE(t2.res.find("Load of restart from file succeeded.\n"), std::string::npos) << t2.res;
    EXPECT_EQ(t2.err, "");
    std::vector<int> c2(n), r2(m);
    ASSERT_EQ(TRVgetbase(t2.env, fresh, c2.data(), r2.data()), 0);
    for (int j = 0; j < n; j++) EXPECT_EQ(c2[j] == 1, cfile[j] == 1) << "col " << j;
    for (int i = 0; i < m; i++) EXPECT_EQ(r2[i] == 1, rfile[i] == 1) << "row " << i;

    /* the full run from the restart ends as the first */
    TRVsetintparam(t2.env, 1020, 2100000000);
    TRVlp again = md.copy_into(t2.env);
    t2.clear();
    ASSERT_EQ(TRVprimopt(t2.env, again), 0);
    EXPECT_NE(t2.res.find("Load of restart from file succeeded.\n"), std::string::npos);
    EXPECT_EQ(TRVgetstat(t2.env, again), stat);
    EXPECT_LT(TRVgetitcnt(t2.env, again), its);
    TRVfreeprob(t2.env, &again);
    TRVfreeprob(t2.env, &fresh);
    TRVfreeprob(t.env, &lp);
}

TEST(BasFileApi, RestartWithoutFileFailsAndSolves) {
    TestEnv t;
    TempDir dir;
    TRVsetintparam(t.env, 1019, 0);
    TRVsetintparam(t.env, 1041, 1);
    Model md = model_named(74, dir.file("none.lp"));
    TRVlp lp = md.copy_into(t.env);
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_NE(t.res.find("Load of restart from file failed.\n"), std::string::npos);
    EXPECT_EQ(t.err, "");
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    /* a bad file fails as well, with the reader's error */
    std::FILE *f = std::fopen(dir.file("none.xxx").c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fputs("NAME\n QQ x1 r1\nENDATA\n", f);
    std::fclose(f);
    t.clear();
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_NE(t.res.find("Load of restart from file failed.\n"), std::string::npos);
    EXPECT_NE(t.err.find("1551"), std::string::npos);
    EXPECT_EQ(TRVgetstat(t.env, lp), 1);
    /* presolve off (1030 at 0): no restart is tried */
    TRVsetintparam(t.env, 1030, 0);
    t.clear();
    ASSERT_EQ(TRVdualopt(t.env, lp), 0);
    EXPECT_EQ(t.res.find("Load of restart"), std::string::npos);
    TRVfreeprob(t.env, &lp);
}
