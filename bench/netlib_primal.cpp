/* The primal simplex on the netlib models against clp -primalsimplex in the
 * same run: objective agreement (relative 1e-6), iterations and time, with
 * the totals as ratios against the peer.
 *
 *   netlib_primal [--small] [--peer] [name ...]
 *
 * --small keeps the models whose peer time in the reference table is under
 * a second; --peer also runs clp. The folder comes from TRV_DATA_DIR (the
 * environment) or the build's setting. */
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#include "support/peer.h"
#include "trvlib.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

int main(int argc, char **argv) {
    bool small = false, peer = false;
    std::set<std::string> only;
    for (int k = 1; k < argc; k++) {
        if (!std::strcmp(argv[k], "--small")) small = true;
        else if (!std::strcmp(argv[k], "--peer")) peer = true;
        else only.insert(argv[k]);
    }
    std::string dir = data_dir(TRV_DATA_DIR) + "/netlib";
    auto refs = read_reference(dir);
    if (refs.empty()) {
        std::printf("no models in %s\n", dir.c_str());
        return 0;
    }
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    const char *disp = std::getenv("TRV_DISPLAY");
    TRVsetintparam(env, 1019, disp ? std::atoi(disp) : 0);
    if (disp) TRVsetintparam(env, 1035, 1);
    int tried = 0, agreed = 0, peer_agreed = 0;
    long its = 0, peer_its = 0;
    double secs = 0.0, peer_secs = 0.0;
    std::printf("%-10s %6s %6s %4s %20s %20s %9s %7s %8s | %7s %8s\n", "model", "rows", "cols",
                "stat", "objective", "reference", "relerr", "iters", "seconds", "p.iters",
                "p.secs");
    for (auto &e : refs) {
        if (!only.empty() && !only.count(e.name)) continue;
        if (small && e.peer_seconds >= 1.0) continue;
        std::string file = dir + "/" + e.name + ".mps.gz";
        TRVlp lp = TRVcreateprob(env, &st, e.name.c_str());
        auto t0 = std::chrono::steady_clock::now();
        st = TRVreadcopyprob(env, lp, file.c_str(), nullptr);
        int stat = 0, it = 0;
        double z = 0.0;
        if (st == 0) st = TRVprimopt(env, lp);
        double t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        if (st == 0) {
            stat = TRVgetstat(env, lp);
            it = TRVgetitcnt(env, lp);
            TRVgetobjval(env, lp, &z);
        }
        double rel = std::fabs(z - e.objective) / std::fmax(1.0, std::fabs(e.objective));
        bool ok = st == 0 && stat == 1 && rel <= 1e-6;
        tried++;
        agreed += ok;
        its += it;
        secs += t;
        PeerRun pr;
        if (peer) {
            pr = run_clp(file);
            double prel = std::fabs(pr.objective - e.objective) / std::fmax(1.0, std::fabs(e.objective));
            peer_agreed += pr.optimal && prel <= 1e-6;
            peer_its += pr.iterations;
            peer_secs += pr.seconds;
        }
        std::printf("%-10s %6d %6d %4d %20.10g %20.10g %9.1e %7d %8.3f | %7ld %8.3f %s\n",
                    e.name.c_str(), e.rows, e.cols, st ? -st : stat, z, e.objective, rel, it, t,
                    pr.iterations, pr.seconds, ok ? "" : "MISS");
        std::fflush(stdout);
        TRVfreeprob(env, &lp);
    }
    std::printf("\nreached the reference: %d of %d; iterations %ld, seconds %.2f\n", agreed, tried,
                its, secs);
    if (peer)
        std::printf("peer: %d of %d; iterations %ld, seconds %.2f; ratios: iterations %.2f, time %.2f\n",
                    peer_agreed, tried, peer_its, peer_secs,
                    peer_its ? static_cast<double>(its) / peer_its : 0.0,
                    peer_secs > 0 ? secs / peer_secs : 0.0);
    TRVcloseTORVA(&env);
    return 0;
}
