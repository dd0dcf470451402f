/* Conformance on the small netlib models (peer time in the reference table
 * under a second): every model read from its compressed MPS file, solved
 * by the primal simplex, must reach the reference objective within a
 * relative 1e-6. The run's totals are printed beside those of clp
 * -primalsimplex on the same files when clp is installed. */
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "support/peer.h"
#include "trvlib.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

TEST(NetlibConformance, SmallModelsReachTheReferenceObjective) {
    std::string dir = data_dir(TRV_DATA_DIR) + "/netlib";
    if (!path_exists(dir + "/REFERENCE.tsv")) GTEST_SKIP() << "no netlib data in " << dir;
    auto refs = read_reference(dir);
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    ASSERT_NE(env, nullptr);
    TRVsetintparam(env, 1019, 0);
    int tried = 0, reached = 0, peer_reached = 0;
    long its = 0, peer_its = 0;
    double secs = 0.0, peer_secs = 0.0;
    for (auto &e : refs) {
        if (e.status != "optimal" || e.peer_seconds >= 1.0) continue;
        std::string file = dir + "/" + e.name + ".mps.gz";
        if (!path_exists(file)) continue;
        TRVlp lp = TRVcreateprob(env, &st, e.name.c_str());
        ASSERT_NE(lp, nullptr);
        auto t0 = std::chrono::steady_clock::now();
        ASSERT_EQ(TRVreadcopyprob(env, lp, file.c_str(), nullptr), 0) << e.name;
        ASSERT_EQ(TRVprimopt(env, lp), 0) << e.name;
        secs += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        double z = 0.0;
        int stat = TRVgetstat(env, lp);
        TRVgetobjval(env, lp, &z);
        its += TRVgetitcnt(env, lp);
        double rel = std::fabs(z - e.objective) / std::fmax(1.0, std::fabs(e.objective));
        EXPECT_EQ(stat, 1) << e.name;
        EXPECT_LE(rel, 1e-6) << e.name << ": " << z << " against " << e.objective;
        tried++;
        reached += stat == 1 && rel <= 1e-6;
        PeerRun pr = run_clp(file);
        if (pr.ran) {
            double prel = std::fabs(pr.objective - e.objective) / std::fmax(1.0, std::fabs(e.objective));
            peer_reached += pr.optimal && prel <= 1e-6;
            peer_its += pr.iterations;
            peer_secs += pr.seconds;
        }
        TRVfreeprob(env, &lp);
    }
    std::printf("netlib small: %d of %d reached the reference; %ld iterations, %.2f s\n", reached,
                tried, its, secs);
    if (peer_secs > 0.0)
        std::printf("clp -primalsimplex: %d of %d; %ld iterations, %.2f s (ratios %.2f, %.2f)\n",
                    peer_reached, tried, peer_its, peer_secs,
                    peer_its ? static_cast<double>(its) / peer_its : 0.0, secs / peer_secs);
    EXPECT_GT(tried, 0);
    TRVcloseTORVA(&env);
}
