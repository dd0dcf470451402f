/* The differential test of warm starts in the suite: a few hundred random
 * sequences of model changes on random models and small netlib models,
 * each re-solve in place from the kept basis against a cold solve of a
 * fresh copy of the test's own model, with the optimality conditions
 * checked by the test and clones compared with the model
 * (support/warmdiff.h; bench/warm_diff runs thousands). */
#include <gtest/gtest.h>

#include <string>

#include "support/peer.h"
#include "support/warmdiff.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

namespace {

void run_all(unsigned first, int count, int steps, bool scaled) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    if (!scaled) TRVsetintparam(t.env, 1034, -1);
    warmdiff::Pool pool;
    std::string dir = data_dir(TRV_DATA_DIR) + "/netlib/";
    for (const char *name : {"afiro", "sc50a", "sc50b", "kb2", "adlittle", "blend"}) {
        Model md;
        if (warmdiff::read_model(t.env, dir + name + ".mps.gz", &md)) pool.netlib.push_back(md);
    }
    t.clear();
    warmdiff::Tally tally;
    for (int k = 0; k < count; k++) {
        unsigned seed = first + static_cast<unsigned>(k);
        warmdiff::record(tally, warmdiff::run_sequence(t.env, pool.pick(seed), seed, steps));
        t.clear();
    }
    std::string faults;
    for (auto &e : tally.examples) faults += "\n  " + e;
    EXPECT_EQ(tally.agree, tally.sequences) << "disagreements:" << faults;
}

}  // namespace

TEST(WarmDiff, ChangedModelsSolveWarmAsCold) { run_all(1, 400, 8, true); }

TEST(WarmDiff, ChangedModelsSolveWarmAsColdUnscaled) { run_all(5001, 200, 8, false); }
