/* Conformance on public models: every netlib model whose peer solves it in
 * under a second is solved by the dual simplex to the reference objective
 * within a relative 1e-6 (netlib_primal.cpp does the same for the primal);
 * every model of the infeasible set ends infeasible (or "unbounded or
 * infeasible") under the dual. The data folder comes from TRV_DATA_DIR (environment first, then
 * the build setting); without it the tests are skipped. */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "trvlib.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

namespace {

std::string data_dir() {
    const char *e = std::getenv("TRV_DATA_DIR");
    return e != nullptr && *e != '\0' ? e : TRV_DATA_DIR;
}

struct Ref {
    std::string name;
    std::string status;
    double objective = 0.0;
    double peer_seconds = 0.0;
};

/* The rows of a folder's REFERENCE.tsv; empty when it is absent. */
std::vector<Ref> references(const std::string &folder) {
    std::vector<Ref> out;
    std::ifstream in(data_dir() + "/" + folder + "/REFERENCE.tsv");
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream ls(line);
        std::vector<std::string> f;
        std::string cell;
        while (std::getline(ls, cell, '\t')) f.push_back(cell);
        if (f.size() < 4) continue;
        Ref r;
        r.name = f[0];
        r.status = f[3];
        r.objective = f.size() > 4 && f[4] != "-" ? std::atof(f[4].c_str()) : 0.0;
        r.peer_seconds = f.size() > 5 ? std::atof(f[5].c_str()) : 0.0;
        out.push_back(r);
    }
    return out;
}

struct Outcome {
    int rc = -1, stat = 0;
    double obj = 0.0;
    int itcnt = 0;
};

Outcome solve_file(const std::string &path, int method) {
    Outcome o;
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    if (env == nullptr) return o;
    TRVsetintparam(env, 1019, 0);
    TRVlp lp = TRVcreateprob(env, &st, "conformance");
    if (lp != nullptr && TRVreadcopyprob(env, lp, path.c_str(), nullptr) == 0) {
        o.rc = method == 1 ? TRVprimopt(env, lp) : TRVdualopt(env, lp);
        if (o.rc == 0) {
            o.stat = TRVgetstat(env, lp);
            TRVgetobjval(env, lp, &o.obj);
            o.itcnt = TRVgetitcnt(env, lp);
        }
    }
    if (lp != nullptr) TRVfreeprob(env, &lp);
    TRVcloseTORVA(&env);
    return o;
}

bool exists(const std::string &path) {
    struct stat sb;
    return ::stat(path.c_str(), &sb) == 0;
}

struct Case {
    std::string folder, name;
    Ref ref;
    int method;
};

void PrintTo(const Case &c, std::ostream *os) { *os << c.folder << "/" << c.name; }

std::vector<Case> netlib_cases() {
    std::vector<Case> out;
    for (const Ref &r : references("netlib"))
        if (r.peer_seconds < 1.0 && r.status == "optimal")
            out.push_back({"netlib", r.name, r, 2});
    if (out.empty()) out.push_back({"netlib", "absent", Ref{}, 2});
    return out;
}

std::vector<Case> infeas_cases() {
    std::vector<Case> out;
    for (const Ref &r : references("infeas")) out.push_back({"infeas", r.name, r, 2});
    if (out.empty()) out.push_back({"infeas", "absent", Ref{}, 2});
    return out;
}

std::string case_name(const testing::TestParamInfo<Case> &info) {
    std::string n = info.param.name + (info.param.method == 1 ? "_primal" : "_dual");
    for (char &c : n)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return n;
}

class Netlib : public testing::TestWithParam<Case> {};
class Infeasible : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(Netlib, ReferenceObjective) {
    const Case &c = GetParam();
    std::string path = data_dir() + "/netlib/" + c.name + ".mps.gz";
    if (c.name == "absent" || !exists(path)) GTEST_SKIP() << "no netlib data at " << data_dir();
    Outcome o = solve_file(path, c.method);
    ASSERT_EQ(o.rc, 0) << c.name;
    ASSERT_EQ(o.stat, 1) << c.name;
    double ref = c.ref.objective;
    EXPECT_LE(std::fabs(o.obj - ref), 1e-6 * (1.0 + std::fabs(ref)))
        << c.name << ": " << o.obj << " against " << ref << " after " << o.itcnt << " iterations";
}

TEST_P(Infeasible, DualEndsInfeasible) {
    const Case &c = GetParam();
    std::string path = data_dir() + "/infeas/" + c.name + ".mps.gz";
    if (c.name == "absent" || !exists(path)) GTEST_SKIP() << "no infeas data at " << data_dir();
    Outcome o = solve_file(path, c.method);
    ASSERT_EQ(o.rc, 0) << c.name;
    EXPECT_TRUE(o.stat == 2 || o.stat == 19) << c.name << " ends with status " << o.stat;
}

INSTANTIATE_TEST_SUITE_P(Models, Netlib, testing::ValuesIn(netlib_cases()), case_name);
INSTANTIATE_TEST_SUITE_P(Models, Infeasible, testing::ValuesIn(infeas_cases()), case_name);
