/* A warm primal re-solve after a bound change, with the steepest-edge
 * weights kept from the first run against the same re-solve with them
 * dropped (TRVkillpnorms), so that the start computes them anew.
 *
 *   warm_primal [--mode 2|3] [--small] [name ...]
 *
 * The change: the basic column with the largest value has its upper bound
 * put halfway between that value and its lower bound (or 0), which leaves
 * the basis primal infeasible. TRV_DISPLAY sets the display level. The
 * folder comes from TRV_DATA_DIR (the environment) or the build's
 * setting. */
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

struct Rerun {
    int status = 0, stat = 0, iters = 0;
    double z = 0.0, seconds = 0.0;
};

/* The column to tighten and its new upper bound; -1 when none moves. */
static int pick_change(TRVenv env, TRVlp lp, double *ub) {
    int n = TRVgetnumcols(env, lp);
    std::vector<int> cstat(n), rstat(TRVgetnumrows(env, lp));
    std::vector<double> x(n), lb(n);
    if (n == 0 || TRVgetbase(env, lp, cstat.data(), rstat.data()) != 0) return -1;
    TRVgetx(env, lp, x.data(), 0, n - 1);
    TRVgetlb(env, lp, lb.data(), 0, n - 1);
    int best = -1;
    for (int j = 0; j < n; j++) {
        if (cstat[j] != 1 || x[j] <= std::fmax(lb[j], 0.0) + 1e-6) continue;
        if (best < 0 || x[j] > x[best]) best = j;
    }
    if (best >= 0) *ub = 0.5 * (x[best] + std::fmax(lb[best], 0.0));
    return best;
}

/* Solve, change, and re-solve with the kept weights or without them. */
static Rerun run(TRVenv env, const std::string &file, bool keep) {
    Rerun r;
    int st = 0;
    TRVlp lp = TRVcreateprob(env, &st, "warm");
    st = TRVreadcopyprob(env, lp, file.c_str(), nullptr);
    if (st == 0) st = TRVprimopt(env, lp);
    double ub = 0.0;
    int j = st == 0 ? pick_change(env, lp, &ub) : -1;
    if (j >= 0) {
        char u = 'U';
        TRVchgbds(env, lp, 1, &j, &u, &ub);
        if (!keep) TRVkillpnorms(lp);
        auto t0 = std::chrono::steady_clock::now();
        st = TRVprimopt(env, lp);
        r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        if (st == 0) {
            r.stat = TRVgetstat(env, lp);
            r.iters = TRVgetitcnt(env, lp);
            TRVgetobjval(env, lp, &r.z);
        }
    }
    r.status = j < 0 ? -1 : st;
    TRVfreeprob(env, &lp);
    return r;
}

int main(int argc, char **argv) {
    bool small = false;
    int mode = 2;
    std::set<std::string> only;
    for (int k = 1; k < argc; k++) {
        if (!std::strcmp(argv[k], "--small")) small = true;
        else if (!std::strcmp(argv[k], "--mode") && k + 1 < argc) mode = std::atoi(argv[++k]);
        else only.insert(argv[k]);
    }
    std::string dir = data_dir(TRV_DATA_DIR) + "/netlib";
    auto refs = read_reference(dir);
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    const char *disp = std::getenv("TRV_DISPLAY");
    TRVsetintparam(env, 1019, disp ? std::atoi(disp) : 0);
    if (disp) TRVsetintparam(env, 1035, 1);
    TRVsetintparam(env, 1029, mode);
    std::printf("%-10s %6s %6s | %7s %8s | %7s %8s | %s\n", "model", "rows", "cols", "kept.it",
                "kept.s", "new.it", "new.s", "objectives");
    long it_kept = 0, it_new = 0;
    double s_kept = 0.0, s_new = 0.0;
    for (auto &e : refs) {
        if (!only.empty() && !only.count(e.name)) continue;
        if (small && e.peer_seconds >= 1.0) continue;
        std::string file = dir + "/" + e.name + ".mps.gz";
        Rerun a = run(env, file, true), b = run(env, file, false);
        if (a.status != 0 || b.status != 0) {
            std::printf("%-10s skipped (%d, %d)\n", e.name.c_str(), a.status, b.status);
            continue;
        }
        /* the objective of a run that ended infeasible tells nothing */
        double rel = std::fabs(a.z - b.z) / std::fmax(1.0, std::fabs(b.z));
        if (a.stat == b.stat && a.stat != 1) rel = 0.0;
        std::printf("%-10s %6d %6d | %7d %8.3f | %7d %8.3f | %s\n", e.name.c_str(), e.rows, e.cols,
                    a.iters, a.seconds, b.iters, b.seconds,
                    a.stat == b.stat && rel <= 1e-6 ? "agree" : "DIFFER");
        if (a.stat != b.stat || rel > 1e-6)
            std::printf("           status %d, %d; objective %.10g, %.10g\n", a.stat, b.stat, a.z, b.z);
        std::fflush(stdout);
        it_kept += a.iters, it_new += b.iters;
        s_kept += a.seconds, s_new += b.seconds;
    }
    std::printf("\ntotal: kept weights %ld iterations %.2f s; new weights %ld iterations %.2f s\n",
                it_kept, s_kept, it_new, s_new);
    TRVcloseTORVA(&env);
    return 0;
}
