/* What a run keeps from iteration to iteration, checked against a choice
 * made from scratch at every iteration: the dual's heap of infeasible
 * positions (the leaving row). Random LPs large enough for the kept paths
 * to matter (many infeasibilities, updates between factorizations), every
 * dual pricing mode, and some netlib models, solved to the same optimum
 * with the checks on as without. */
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

double dual_objective_of(TRVenv env, TRVlp lp, int *stat) {
    double z = 0.0;
    EXPECT_EQ(TRVdualopt(env, lp), 0);
    *stat = TRVgetstat(env, lp);
    TRVgetobjval(env, lp, &z);
    return z;
}

} // namespace

TEST(KeptChoice, RandomModelsEveryPricingMode) {
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    for (unsigned seed = 1; seed <= 4; seed++) {
        Model md = random_lp(seed, 300, 200, seed % 2 == 0);
        for (int mode : {1, 2, 3, 4, 5}) {
            TRVsetintparam(te.env, 1009, mode);
            TRVlp plain = md.copy_into(te.env);
            int st0 = 0, st1 = 0;
            double z0 = dual_objective_of(te.env, plain, &st0);
            TRVfreeprob(te.env, &plain);
            Checking c;
            TRVlp lp = md.copy_into(te.env);
            double z1 = dual_objective_of(te.env, lp, &st1);
            EXPECT_EQ(simplex_check_faults, 0) << "seed " << seed << " mode " << mode;
            EXPECT_EQ(st1, st0);
            EXPECT_EQ(z1, z0) << "seed " << seed << " mode " << mode;
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
        ASSERT_EQ(TRVdualopt(te.env, lp), 0) << name;
        EXPECT_EQ(TRVgetstat(te.env, lp), 1) << name;
        EXPECT_EQ(simplex_check_faults, 0) << name;
        TRVfreeprob(te.env, &lp);
    }
}
