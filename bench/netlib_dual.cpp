/* The dual simplex on the netlib models against clp -dualsimplex in the
 * same run: objective agreement (relative 1e-6), iterations and wall time,
 * with the geometric mean of the time ratio (ours over the peer's) over
 * the models. Both sides are timed from the compressed file to the
 * solution: ours in the process (read and solve), the peer's as the wall
 * time of its process.
 *
 *   netlib_dual [--small] [--nopeer] [--primal] [name ...]
 *
 * --small keeps the models whose peer time in the reference table is under
 * a second; --nopeer skips clp; --primal times the primal simplex instead.
 * The folder comes from TRV_DATA_DIR (the environment) or the build's
 * setting. */
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

/* clp on a model file with the dual simplex; solve_seconds gets the time
 * clp reports for its optimisation alone (after reading the file). */
static PeerRun run_clp_dual(const std::string &file, double *solve_seconds) {
    PeerRun r;
    *solve_seconds = 0.0;
    if (!path_exists(peer_program())) return r;
    std::string cmd = std::string(peer_program()) + " '" + file + "' -dualsimplex 2>&1";
    auto t0 = std::chrono::steady_clock::now();
    FILE *p = popen(cmd.c_str(), "r");
    if (p == nullptr) return r;
    char buf[4096];
    std::string out;
    while (std::fgets(buf, sizeof buf, p) != nullptr) out += buf;
    pclose(p);
    r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    r.ran = true;
    size_t k = out.find("Optimal objective ");
    if (k != std::string::npos) {
        r.optimal = true;
        char *end = nullptr;
        r.objective = std::strtod(out.c_str() + k + 18, &end);
        const char *dash = std::strstr(end, "- ");
        if (dash != nullptr) r.iterations = std::strtol(dash + 2, nullptr, 10);
        const char *tm = std::strstr(end, "time ");
        if (tm != nullptr) *solve_seconds = std::strtod(tm + 5, nullptr);
    }
    return r;
}

int main(int argc, char **argv) {
    bool small = false, peer = true, primal = false;
    std::set<std::string> only;
    for (int k = 1; k < argc; k++) {
        if (!std::strcmp(argv[k], "--small")) small = true;
        else if (!std::strcmp(argv[k], "--nopeer")) peer = false;
        else if (!std::strcmp(argv[k], "--primal")) primal = true;
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
    int tried = 0, agreed = 0, peer_agreed = 0, ratios = 0;
    long its = 0, peer_its = 0;
    double secs = 0.0, peer_secs = 0.0, logsum = 0.0, logsolve = 0.0;
    std::printf("%-10s %6s %6s %4s %18s %9s %7s %8s | %7s %8s %7s\n", "model", "rows", "cols",
                "stat", "objective", "relerr", "iters", "seconds", "p.iters", "p.secs", "ratio");
    for (auto &e : refs) {
        if (!only.empty() && !only.count(e.name)) continue;
        if (small && e.peer_seconds >= 1.0) continue;
        if (e.status != "optimal") continue;
        std::string file = dir + "/" + e.name + ".mps.gz";
        if (!path_exists(file)) continue;
        TRVlp lp = TRVcreateprob(env, &st, e.name.c_str());
        auto t0 = std::chrono::steady_clock::now();
        st = TRVreadcopyprob(env, lp, file.c_str(), nullptr);
        int stat = 0, it = 0;
        double z = 0.0;
        auto t1 = std::chrono::steady_clock::now();
        if (st == 0) st = primal ? TRVprimopt(env, lp) : TRVdualopt(env, lp);
        auto t2 = std::chrono::steady_clock::now();
        double t = std::chrono::duration<double>(t2 - t0).count();
        double ts = std::chrono::duration<double>(t2 - t1).count();
        if (st == 0) {
            stat = TRVgetstat(env, lp);
            it = TRVgetitcnt(env, lp);
            TRVgetobjval(env, lp, &z);
        }
        TRVfreeprob(env, &lp);
        double rel = std::fabs(z - e.objective) / (1.0 + std::fabs(e.objective));
        bool ok = st == 0 && stat == 1 && rel <= 1e-6;
        tried++;
        agreed += ok;
        its += it;
        secs += t;
        PeerRun pr;
        double ratio = 0.0;
        if (peer) {
            double pts = 0.0;
            pr = run_clp_dual(file, &pts);
            double prel = std::fabs(pr.objective - e.objective) / (1.0 + std::fabs(e.objective));
            peer_agreed += pr.optimal && prel <= 1e-6;
            peer_its += pr.iterations;
            peer_secs += pr.seconds;
            if (pr.ran && pr.seconds > 0.0) {
                ratio = t / pr.seconds;
                logsum += std::log(ratio);
                ratios++;
                /* solve alone: a floor of a millisecond on both sides, the
                 * resolution of the peer's figure */
                logsolve += std::log(std::fmax(ts, 1e-3) / std::fmax(pts, 1e-3));
            }
        }
        std::printf("%-10s %6d %6d %4d %18.10g %9.1e %7d %8.3f | %7ld %8.3f %7.3f %s\n",
                    e.name.c_str(), e.rows, e.cols, stat, z, rel, it, t, pr.iterations, pr.seconds,
                    ratio, ok ? "" : "MISMATCH");
        std::fflush(stdout);
    }
    std::printf("\n%s: %d of %d models reach the reference; %ld iterations; %.2f s\n",
                primal ? "primal" : "dual", agreed, tried, its, secs);
    if (ratios > 0)
        std::printf("clp -dualsimplex: %d of %d; %ld iterations; %.2f s\n"
                    "geometric mean of the time ratio (ours / clp) over %d models: %.3f\n"
                    "the same for the optimisation alone (the peer's own figure): %.3f\n",
                    peer_agreed, tried, peer_its, peer_secs, ratios, std::exp(logsum / ratios),
                    std::exp(logsolve / ratios));
    TRVcloseTORVA(&env);
    return agreed == tried ? 0 : 1;
}
