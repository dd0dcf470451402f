/* What a run keeps from iteration to iteration, checked against a choice
 * made from scratch at every iteration: the dual's heap of infeasible
 * positions (the leaving row) and the primal's heaps of the columns that
 * may enter. Random LPs large enough for the kept paths to matter (many
 * infeasibilities and candidates, updates between factorizations), every
 * pricing mode of both, and some netlib models, solved to the same
 * optimum with the checks on as without. */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "simplex/core.h"
#include "support/kkt.h"
#include "support/model.h"

namespace {

struct Checking {
    Checking() {
        simplex_checking = 1;
        simplex_check_faults = 0;
    }
    ~Checking() { simplex_checking = 0; }
};

double objective_of(TRVenv env, TRVlp lp, int *stat, bool primal = false) {
    double z = 0.0;
    EXPECT_EQ(primal ? TRVprimopt(env, lp) : TRVdualopt(env, lp), 0);
    *stat = TRVgetstat(env, lp);
    TRVgetobjval(env, lp, &z);
    return z;
}

} // namespace

TEST(KeptChoice, RandomModelsEveryPricingMode) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    for (unsigned seed = 1; seed <= 3; seed++) {
        Model md = random_lp(seed, 300, 200, seed % 2 == 0);
        for (int mode : {1, 2, 3, 4, 5}) {
            TRVsetintparam(te.env, 1009, mode);
            TRVlp plain = md.copy_into(te.env);
            int st0 = 0, st1 = 0;
            double z0 = objective_of(te.env, plain, &st0);
            TRVfreeprob(te.env, &plain);
            Checking c;
            TRVlp lp = md.copy_into(te.env);
            double z1 = objective_of(te.env, lp, &st1);
            EXPECT_EQ(simplex_check_faults, 0) << "seed " << seed << " mode " << mode;
            EXPECT_EQ(st1, st0);
            EXPECT_EQ(z1, z0) << "seed " << seed << " mode " << mode;
            TRVfreeprob(te.env, &lp);
        }
    }
}

TEST(KeptChoice, PrimalFamiliesThatKeepReducedCosts) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    for (unsigned seed = 11; seed <= 13; seed++) {
        Model md = random_lp(seed, 200, 150, seed % 2 == 0);
        for (int family : {1, 2, 3, 4}) {
            TRVsetintparam(te.env, 1029, family);
            TRVlp plain = md.copy_into(te.env);
            int st0 = 0, st1 = 0;
            double z0 = objective_of(te.env, plain, &st0, true);
            TRVfreeprob(te.env, &plain);
            Checking c;
            TRVlp lp = md.copy_into(te.env);
            double z1 = objective_of(te.env, lp, &st1, true);
            EXPECT_EQ(simplex_check_faults, 0) << "seed " << seed << " family " << family;
            EXPECT_EQ(st1, st0);
            EXPECT_EQ(z1, z0) << "seed " << seed << " family " << family;
            TRVfreeprob(te.env, &lp);
        }
    }
}

TEST(KeptChoice, NetlibModels) {
    const char *e = std::getenv("TRV_DATA_DIR");
    std::string dir = std::string(e != nullptr && *e ? e : TRV_DATA_DIR) + "/netlib";
    if (!std::filesystem::is_directory(dir)) GTEST_SKIP() << "no data folder";
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Checking c;
    for (const char *name : {"afiro", "sc105", "share2b", "stocfor1", "blend", "boeing2",
                             "scfxm1", "grow7"}) {
        std::string path = dir + "/" + name + ".mps.gz";
        if (!std::filesystem::exists(path)) continue;
        int st = 0;
        TRVlp lp = TRVcreateprob(te.env, &st, name);
        ASSERT_EQ(TRVreadcopyprob(te.env, lp, path.c_str(), nullptr), 0) << name;
        for (int primal = 0; primal < 2; primal++) {
            TRVlp c = TRVcloneprob(te.env, lp, &st);
            ASSERT_EQ(primal ? TRVprimopt(te.env, c) : TRVdualopt(te.env, c), 0) << name;
            EXPECT_EQ(TRVgetstat(te.env, c), 1) << name;
            EXPECT_EQ(simplex_check_faults, 0) << name << (primal ? " primal" : " dual");
            TRVfreeprob(te.env, &c);
        }
        TRVfreeprob(te.env, &lp);
    }
}
