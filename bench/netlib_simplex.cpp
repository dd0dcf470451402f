/* The simplex optimisers on the netlib models against clp in the same
 * run: objective agreement (relative 1e-6), iterations and wall time, with
 * the geometric mean of the time ratio (ours over the peer's) over the
 * models. Both sides are timed from the compressed file to the solution:
 * ours in the process (read and solve), the peer's as the wall time of its
 * process; the ratio of the optimisation alone uses the time clp reports.
 *
 *   netlib_simplex [--primal] [--small] [--nopeer] [--check] [name ...]
 *
 * --primal runs the primal simplex (and clp -primalsimplex) instead of the
 * dual; --small keeps the models whose peer time in the reference table is
 * under a second; --nopeer skips clp; --check prints the largest primal
 * and dual infeasibility of each solution. TRV_PARAMS="1029:1,1034:-1"
 * sets parameters (a value with '.' or 'e' is a double), TRV_DISPLAY the
 * display level (the log then goes to the screen). The folder comes from
 * TRV_DATA_DIR (the environment) or the build's setting. */
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "support/peer.h"
#include "trvlib.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

/* Largest primal and dual infeasibility of the solution in the model's own
 * units, as a minimisation. */
static void quality(TRVenv env, TRVlp lp, double *pinf, double *dinf) {
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    std::vector<double> x(n), dj(n), pi(m), slack(m), lb(n), ub(n), rhs(m), rng(m);
    std::vector<char> sense(m);
    TRVsolution(env, lp, nullptr, nullptr, x.data(), pi.data(), slack.data(), dj.data());
    TRVgetlb(env, lp, lb.data(), 0, n - 1);
    TRVgetub(env, lp, ub.data(), 0, n - 1);
    TRVgetrhs(env, lp, rhs.data(), 0, m - 1);
    TRVgetsense(env, lp, sense.data(), 0, m - 1);
    TRVgetrngval(env, lp, rng.data(), 0, m - 1);
    double sg = TRVgetobjsen(env, lp) < 0 ? -1.0 : 1.0;
    *pinf = *dinf = 0.0;
    for (int j = 0; j < n; j++) {
        *pinf = std::fmax(*pinf, std::fmax(lb[j] - x[j], x[j] - ub[j]));
        double d = sg * dj[j];
        if (x[j] < ub[j] - 1e-7 * (1 + std::fabs(ub[j]))) *dinf = std::fmax(*dinf, -d);
        if (x[j] > lb[j] + 1e-7 * (1 + std::fabs(lb[j]))) *dinf = std::fmax(*dinf, d);
    }
    for (int i = 0; i < m; i++) {
        double a = rhs[i] - slack[i], lo = -1e30, hi = 1e30;
        if (sense[i] == 'L') hi = rhs[i];
        else if (sense[i] == 'G') lo = rhs[i];
        else if (sense[i] == 'E') lo = hi = rhs[i];
        else lo = rng[i] >= 0 ? rhs[i] : rhs[i] + rng[i], hi = rng[i] >= 0 ? rhs[i] + rng[i] : rhs[i];
        *pinf = std::fmax(*pinf, std::fmax(lo - a, a - hi));
        double p = sg * pi[i];
        if (a > lo + 1e-7 * (1 + std::fabs(lo))) *dinf = std::fmax(*dinf, p);
        if (a < hi - 1e-7 * (1 + std::fabs(hi))) *dinf = std::fmax(*dinf, -p);
    }
}

int main(int argc, char **argv) {
    bool small = false, peer = true, primal = false, check = false;
    std::set<std::string> only;
    for (int k = 1; k < argc; k++) {
        if (!std::strcmp(argv[k], "--small")) small = true;
        else if (!std::strcmp(argv[k], "--nopeer")) peer = false;
        else if (!std::strcmp(argv[k], "--primal")) primal = true;
        else if (!std::strcmp(argv[k], "--check")) check = true;
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
    /* no basis recovery files in the working folder on the long runs */
    TRVsetintparam(env, 1004, 2100000000);
    if (const char *pp = std::getenv("TRV_PARAMS")) {
        std::string list = pp;
        size_t at = 0;
        while (at < list.size()) {
            size_t comma = list.find(',', at);
            std::string item = list.substr(at, comma == std::string::npos ? std::string::npos : comma - at);
            size_t colon = item.find(':');
            if (colon != std::string::npos) {
                const char *v = item.c_str() + colon + 1;
                int num = std::atoi(item.c_str());
                if (std::strpbrk(v, ".eE") != nullptr) TRVsetdblparam(env, num, std::atof(v));
                else TRVsetintparam(env, num, std::atoi(v));
            }
            if (comma == std::string::npos) break;
            at = comma + 1;
        }
    }
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
        double pinf = 0.0, dinf = 0.0;
        if (st == 0) {
            stat = TRVgetstat(env, lp);
            it = TRVgetitcnt(env, lp);
            TRVgetobjval(env, lp, &z);
            if (check) quality(env, lp, &pinf, &dinf);
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
            pr = run_clp(file, primal ? "-primalsimplex" : "-dualsimplex", &pts);
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
        if (check && st == 0)
            std::printf("           primal infeasibility %.2e, dual infeasibility %.2e\n", pinf, dinf);
        std::fflush(stdout);
    }
    std::printf("\n%s: %d of %d models reach the reference; %ld iterations; %.2f s\n",
                primal ? "primal" : "dual", agreed, tried, its, secs);
    if (ratios > 0)
        std::printf("clp %s: %d of %d; %ld iterations; %.2f s\n"
                    "geometric mean of the time ratio (ours / clp) over %d models: %.3f\n"
                    "the same for the optimisation alone (the peer's own figure): %.3f\n",
                    primal ? "-primalsimplex" : "-dualsimplex", peer_agreed, tried, peer_its, peer_secs, ratios, std::exp(logsum / ratios),
                    std::exp(logsolve / ratios));
    TRVcloseTORVA(&env);
    return agreed == tried ? 0 : 1;
}
