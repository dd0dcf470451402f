/*
 * factor_bench.cpp - factorization and solve times on crash bases of the
 * netlib models.
 *
 * For each model (*.mps.gz under $TRV_DATA_DIR/netlib, or the names given
 * on the command line) a crash basis of structural columns is chosen in the
 * manner of the crash placement (sparse columns first, a pivot row not
 * yet covered, large entries preferred), completed with the slacks or
 * artificials of the rows left, and factored through lu_refactor. Reported
 * per model: nonzeros of the basis and of L+U, their ratio, the time of one
 * factorization (best of several), and the mean time of an FTRAN of a
 * nonbasic structural column and of a BTRAN of a unit row (lu_btran_row),
 * the two solves of every simplex iteration.
 *
 * read_model() reads each file through the library's own reader.
 */
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <map>
#include <string>
#include <vector>

#include "simplex/core.h"

namespace {

using clk = std::chrono::steady_clock;

double seconds_since(clk::time_point t0) {
    return std::chrono::duration<double>(clk::now() - t0).count();
}

/* ---- the reader (to be replaced by TRVreadcopyprob) ----------------------------- */

/* Reads the ROWS and COLUMNS sections of a free-format MPS file (names
 * without blanks) and copies the model in; right-hand sides, ranges and
 * bounds are not needed for the factorization and are left at their
 * defaults (rhs 0, bounds [0, inf)). */
int read_model(TRVenv env, TRVlp lp, const char *path) {
    return TRVreadcopyprob(env, lp, path, nullptr);
}

/* ---- the crash basis ----------------------------------------------------------- */

/* Structural columns placed greedily on uncovered rows, then a logical for
 * every row left. Returns the number of structurals. */
int crash_basis(const simplex_lp &s, int *head) {
    int m = s.m, n = s.n;
    std::vector<int> order(n);
    for (int j = 0; j < n; j++) order[j] = j;
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return s.col_len[a] < s.col_len[b]; });
    std::vector<char> used(m, 0);
    std::vector<int> count(m, 0);
    std::vector<double> bar(m, 0.0);
    int k = 0;
    for (int j : order) {
        if (k == m) break;
        int best = -1;
        double bmag = 0.0;
        for (int e = s.col_beg[j]; e < s.col_end[j]; e++) {
            int i = s.row_idx[e];
            double a = std::fabs(s.val[e]);
            if (!used[i] && count[i] == 0 && a > 0.99 && a > bmag) best = i, bmag = a;
        }
        if (best < 0) {
            bool refused = false;
            for (int e = s.col_beg[j]; e < s.col_end[j] && !refused; e++) {
                int i = s.row_idx[e];
                double a = std::fabs(s.val[e]);
                if (used[i]) {
                    if (bar[i] < a) refused = true;
                } else if (a > 1e-10 && a > bmag) {
                    best = i, bmag = a;
                }
            }
            if (refused) best = -1;
        }
        if (best < 0) continue;
        used[best] = 1;
        bar[best] = 0.01 * bmag;
        for (int e = s.col_beg[j]; e < s.col_end[j]; e++) count[s.row_idx[e]]++;
        head[k++] = j;
    }
    int nstruct = k;
    for (int i = 0; i < m; i++)
        if (!used[i]) head[k++] = s.slack_of_row[i];
    return nstruct;
}

/* As many structural columns as the factorization can pivot, longest
 * columns first: lu_crash_factor on all structurals picks an independent
 * set (step 5 of crash_primal); the rows left get logicals. A basis with a
 * real Markowitz phase, unlike the near-triangular crash. */
int struct_basis(TRVenv env, TRVlp lp, int *head) {
    const simplex_lp &s = lp->solver->splp;
    int m = s.m, n = s.n;
    std::vector<int> cand(n), rowmap(m), colmap(n);
    for (int j = 0; j < n; j++) cand[j] = j;
    std::stable_sort(cand.begin(), cand.end(),
                     [&](int a, int b) { return s.col_len[a] > s.col_len[b]; });
    int st = lu_crash_factor(env, lp, n, cand.data(), rowmap.data(), colmap.data(), nullptr,
                             0.1, 1e-9);
    if (st != 0 && st != 2002) return -1;
    int k = 0;
    for (int c = 0; c < n && k < m; c++)
        if (colmap[c] >= 0) head[k++] = cand[c];
    int ns = k;
    for (int i = 0; i < m; i++)
        if (rowmap[i] < 0 && k < m) head[k++] = s.slack_of_row[i];
    return ns;
}

struct Result {
    std::string name;
    int m = 0, n = 0, nstruct = 0, status = 0;
    long nzb = 0, nzlu = 0;
    double tfac = 0, tft = 0, tbt = 0;
};

Result run_model(TRVenv env, const std::string &dir, const std::string &name, int kind) {
    Result r;
    r.name = name;
    int st = 0;
    TRVlp lp = TRVcreateprob(env, &st, name.c_str());
    if (lp == nullptr) {
        r.status = st;
        return r;
    }
    std::string path = dir + "/" + name + ".mps.gz";
    st = read_model(env, lp, path.c_str());
    if (st == 0) st = simplex_build(env, lp);
    if (st == 0) st = lu_alloc(env, lp);
    if (st != 0) {
        r.status = st;
        TRVfreeprob(env, &lp);
        return r;
    }
    simplex_lp &s = lp->solver->splp;
    simplex_iter &it = lp->solver->it;
    r.m = s.m;
    r.n = s.n;
    for (int i = 0; i < s.m; i++) it.status[it.head[i]] = 0;
    r.nstruct = kind == 0 ? crash_basis(s, it.head) : struct_basis(env, lp, it.head);
    if (r.nstruct < 0) {
        r.status = 1256;
        TRVfreeprob(env, &lp);
        return r;
    }
    for (int i = 0; i < s.m; i++) it.status[it.head[i]] = 1;
    /* the first factorization repairs the basis if need be */
    double u = it.markowitz;
    st = lu_refactor(env, lp, &u, it.pivot_tol, 1, 0);
    if (st != 0 && st != 2002) {
        r.status = st;
        TRVfreeprob(env, &lp);
        return r;
    }
    r.nstruct = 0;
    for (int i = 0; i < s.m; i++) r.nstruct += it.head[i] < s.nstruct;
    /* timing of the factorization: best of several */
    double best = 1e30;
    int reps = 0;
    auto t_all = clk::now();
    while (reps < 3 || (seconds_since(t_all) < 0.3 && reps < 200)) {
        auto t0 = clk::now();
        st = lu_refactor(env, lp, &u, it.pivot_tol, 1, 0);
        best = std::min(best, seconds_since(t0));
        reps++;
    }
    r.tfac = best;
    r.nzb = static_cast<long>(lp->factor->nz_basis);
    r.nzlu = static_cast<long>(lp->factor->nz_lu);
    /* solves: FTRAN of nonbasic structural columns, BTRAN of unit rows */
    sparse_vec v;
    sv_alloc(&v, s.m);
    std::vector<int> nonbasic;
    for (int j = 0; j < s.n; j++)
        if (it.status[j] != 1) nonbasic.push_back(j);
    if (nonbasic.empty()) nonbasic.push_back(0);
    int nsolve = std::max(200, std::min(2000, 4 * s.m));
    double sink = 0.0;
    auto t0 = clk::now();
    for (int k = 0; k < nsolve; k++) {
        int j = nonbasic[(k * 7919) % nonbasic.size()];
        for (int e = s.col_beg[j]; e < s.col_end[j]; e++) v.val[s.row_idx[e]] = s.val[e];
        v.nz = 0;
        for (int e = s.col_beg[j]; e < s.col_end[j]; e++) v.idx[v.nz++] = s.row_idx[e];
        lu_ftran(lp->factor, &v, &v);
        sink += v.nz;
        sv_clear(&v);
    }
    r.tft = seconds_since(t0) / nsolve;
    t0 = clk::now();
    for (int k = 0; k < nsolve; k++) {
        lu_btran_row(lp->factor, &v, (k * 7919) % s.m);
        sink += v.nz;
        sv_clear(&v);
    }
    r.tbt = seconds_since(t0) / nsolve;
    if (sink < 0) std::printf("?");
    sv_free(&v);
    TRVfreeprob(env, &lp);
    return r;
}

} // namespace

int main(int argc, char **argv) {
    const char *dd = std::getenv("TRV_DATA_DIR");
    std::string dir = std::string(dd ? dd : TRV_DATA_DIR) + "/netlib";
    std::vector<std::string> names;
    for (int k = 1; k < argc; k++) names.push_back(argv[k]);
    if (names.empty()) {
        DIR *d = opendir(dir.c_str());
        if (d == nullptr) {
            std::fprintf(stderr, "no folder %s\n", dir.c_str());
            return 1;
        }
        while (dirent *e = readdir(d)) {
            std::string f = e->d_name;
            if (f.size() > 7 && f.compare(f.size() - 7, 7, ".mps.gz") == 0)
                names.push_back(f.substr(0, f.size() - 7));
        }
        closedir(d);
        std::sort(names.begin(), names.end());
    }
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    if (env == nullptr) return 1;
    bool all_ok = true;
    for (int kind = 0; kind < 2; kind++) {
        std::printf("\n%s bases\n", kind == 0 ? "crash placement" : "structural (longest first)");
        std::printf("%-10s %7s %7s %7s %9s %9s %6s %10s %10s %10s\n", "model", "rows", "cols",
                    "struct", "nz(B)", "nz(L+U)", "ratio", "factor_ms", "ftran_us", "btran_us");
        int ok = 0, within = 0;
        double logsum = 0.0, worst = 0.0, tfac = 0.0, tft = 0.0, tbt = 0.0;
        std::string worst_name;
        for (auto &nm : names) {
            Result r = run_model(env, dir, nm, kind);
            if (r.status != 0) {
                std::printf("%-10s  failed with %d\n", nm.c_str(), r.status);
                all_ok = false;
                continue;
            }
            double ratio = double(r.nzlu) / double(std::max(1L, r.nzb));
            std::printf("%-10s %7d %7d %7d %9ld %9ld %6.3f %10.3f %10.2f %10.2f\n", r.name.c_str(),
                        r.m, r.n, r.nstruct, r.nzb, r.nzlu, ratio, 1e3 * r.tfac, 1e6 * r.tft,
                        1e6 * r.tbt);
            std::fflush(stdout);
            ok++;
            within += ratio <= 2.0;
            logsum += std::log(ratio);
            if (ratio > worst) worst = ratio, worst_name = r.name;
            tfac += r.tfac, tft += r.tft, tbt += r.tbt;
        }
        if (ok > 0)
            std::printf("summary (%s): %d models, fill ratio geometric mean %.3f, worst %.3f (%s), "
                        "%d of %d within 2.0; total factor %.1f ms, mean ftran %.2f us, "
                        "mean btran %.2f us\n",
                        kind == 0 ? "crash" : "structural", ok, std::exp(logsum / ok), worst,
                        worst_name.c_str(), within, ok, 1e3 * tfac, 1e6 * tft / ok, 1e6 * tbt / ok);
    }
    TRVcloseTORVA(&env);
    return all_ok ? 0 : 1;
}
