/* Random small LPs, some infeasible or unbounded, solved by the primal
 * simplex and by clp on an MPS file written here; outcome and objective
 * must agree. Skipped when clp is not installed. */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

#include "support/kkt.h"
#include "support/model.h"
#include "support/peer.h"

namespace {

/* Rows and bounds drawn without a known feasible point. */
Model wild_lp(unsigned seed) {
    std::mt19937 g(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::uniform_int_distribution<int> pick(0, 99);
    int n = 3 + static_cast<int>(seed % 8), m = 2 + static_cast<int>(seed % 6);
    Model md;
    md.objsen = pick(g) < 50 ? 1 : -1;
    for (int i = 0; i < m; i++) {
        int k = pick(g);
        double r = std::round(20.0 * u(g)) / 2.0;
        if (k < 40) md.row('L', r);
        else if (k < 75) md.row('G', r);
        else if (k < 90) md.row('E', r);
        else md.row('R', r, std::round(10.0 * u(g)));
    }
    for (int j = 0; j < n; j++) {
        std::vector<std::pair<int, double>> e;
        for (int i = 0; i < m; i++)
            if (pick(g) < 50)
                e.push_back({i, (pick(g) < 50 ? 1.0 : -1.0) * (0.5 + std::round(4.0 * (u(g) + 1.0)) / 2.0)});
        /* every column meets a row: the peer misjudges empty columns */
        if (e.empty()) e.push_back({j % m, 1.0});
        double l = 0.0, h = 1e20;
        int k = pick(g);
        if (k < 15) l = -1e20;
        else if (k < 45) h = std::round(10.0 * (u(g) + 1.0));
        else if (k < 55) l = std::round(-5.0 * (u(g) + 1.0));
        md.col(std::round(6.0 * u(g)), l, h, e);
    }
    return md;
}

/* One line of fixed-format MPS: fields at columns 2, 5, 15, 25. */
std::string line(const char *code, const std::string &f2, const std::string &f3,
                 const double *v = nullptr) {
    char b[128];
    if (v != nullptr)
        std::snprintf(b, sizeof b, " %-2s %-8s  %-8s  %12.10g\n", code, f2.c_str(), f3.c_str(), *v);
    else
        std::snprintf(b, sizeof b, " %-2s %-8s  %-8s\n", code, f2.c_str(), f3.c_str());
    return b;
}

void write_mps(const Model &md, const std::string &path) {
    std::ofstream f(path);
    f << "NAME          RANDOM\nROWS\n N  OBJ\n";
    /* a ranged row is an 'E' row with a RANGES entry: [r, r + g] or [r + g, r] */
    for (int i = 0; i < md.nrows(); i++)
        f << " " << (md.sense[i] == 'R' ? 'E' : md.sense[i]) << "  R" << i << "\n";
    f << "COLUMNS\n";
    for (int j = 0; j < md.ncols(); j++) {
        std::string c = "C" + std::to_string(j);
        f << line("", c, "OBJ", &md.obj[j]);
        for (int k = md.matbeg[j]; k < md.matbeg[j] + md.matcnt[j]; k++)
            f << line("", c, "R" + std::to_string(md.matind[k]), &md.matval[k]);
    }
    f << "RHS\n";
    for (int i = 0; i < md.nrows(); i++) f << line("", "RHS", "R" + std::to_string(i), &md.rhs[i]);
    f << "RANGES\n";
    for (int i = 0; i < md.nrows(); i++)
        if (md.sense[i] == 'R') f << line("", "RNG", "R" + std::to_string(i), &md.rngval[i]);
    f << "BOUNDS\n";
    for (int j = 0; j < md.ncols(); j++) {
        std::string c = "C" + std::to_string(j);
        double l = md.lb[j], h = md.ub[j];
        if (l <= -1e20 && h >= 1e20) {
            f << line("FR", "BND", c);
            continue;
        }
        if (l <= -1e20) f << line("MI", "BND", c);
        else if (l != 0.0) f << line("LO", "BND", c, &l);
        if (h < 1e20) f << line("UP", "BND", c, &h);
    }
    f << "ENDATA\n";
}

/* clp's verdict by one method: 1 optimal, 2 infeasible, 3 unbounded, 0
 * unknown. */
int clp_run(const std::string &file, bool maximise, const char *method, double *obj) {
    std::string cmd = std::string(peer_program()) + " " + file + (maximise ? " -max" : "") +
                      " -presolve off " + method + " 2>&1";
    FILE *p = popen(cmd.c_str(), "r");
    if (p == nullptr) return 0;
    std::string out;
    char buf[1024];
    while (std::fgets(buf, sizeof buf, p) != nullptr) out += buf;
    pclose(p);
    size_t k = out.find("Optimal objective ");
    if (k != std::string::npos) {
        *obj = std::strtod(out.c_str() + k + 18, nullptr);
        return 1;
    }
    if (out.find("PrimalInfeasible") != std::string::npos) return 2;
    if (out.find("DualInfeasible") != std::string::npos) return 3;
    return 0;
}

/* The verdict when clp's primal and dual simplex agree, else 0: on a few
 * degenerate models its primal simplex calls a feasible, unbounded model
 * infeasible. */
int clp_verdict(const std::string &file, bool maximise, double *obj) {
    double z2 = 0.0;
    int a = clp_run(file, maximise, "-primalsimplex", obj);
    int b = clp_run(file, maximise, "-dualsimplex", &z2);
    if (a != b) return 0;
    if (a == 1 && std::fabs(*obj - z2) > 1e-6 * (1.0 + std::fabs(z2))) return 0;
    return a;
}

} // namespace

TEST(PrimoptPeer, RandomLpsAgreeWithClp) {
    if (!path_exists(peer_program())) GTEST_SKIP() << "clp is not installed";
    std::string file = "/tmp/trv_peer_" + std::to_string(getpid()) + ".mps";
    int compared = 0, kinds[4] = {0, 0, 0, 0};
    /* TRV_PEER_SEEDS widens the sweep for a longer hunt by hand */
    unsigned seeds = 150;
    if (const char *e = std::getenv("TRV_PEER_SEEDS")) seeds = static_cast<unsigned>(std::atoi(e));
    for (unsigned seed = 1; seed <= seeds; seed++) {
        Model md = wild_lp(seed);
        write_mps(md, file);
        double cz = 0.0;
        int cv = clp_verdict(file, md.objsen < 0, &cz);
        if (cv == 0) continue;
        TestEnv te;
        TRVsetintparam(te.env, 1019, 0);
        TRVlp lp = md.copy_into(te.env);
        ASSERT_NE(lp, nullptr);
        Solution s;
        ASSERT_EQ(solve_primal(te.env, lp, s), 0);
        compared++;
        kinds[cv]++;
        EXPECT_EQ(s.stat, cv) << "seed " << seed;
        if (cv == 1 && s.stat == 1) {
            EXPECT_NEAR(s.obj, cz, 1e-6 * (1.0 + std::fabs(cz))) << "seed " << seed;
            EXPECT_EQ(check_kkt(md, s), "") << "seed " << seed;
        }
        TRVfreeprob(te.env, &lp);
    }
    if (!std::getenv("TRV_KEEP_MPS")) std::remove(file.c_str());
    EXPECT_GT(compared, 100);
    EXPECT_GT(kinds[1], 10);
    EXPECT_GT(kinds[2], 3);
    EXPECT_GT(kinds[3], 3);
}
