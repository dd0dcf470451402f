/* Conformance on public models, for the primal and the dual simplex each:
 * every netlib model whose peer solves it in under a second reaches the
 * reference objective within a relative 1e-6, and every model of the
 * infeasible set ends infeasible (or "unbounded or infeasible"). The data
 * folder comes from TRV_DATA_DIR (environment first, then the build
 * setting); without it the tests are skipped. The comparison with the
 * peer's iterations and times is bench/netlib_simplex's. */
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <string>
#include <vector>

#include "support/methods.h"
#include "support/peer.h"
#include "trvlib.h"

#ifndef TRV_DATA_DIR
#define TRV_DATA_DIR "../shared/data"
#endif

namespace {

struct Outcome {
    int rc = -1, stat = 0;
    double obj = 0.0;
    int itcnt = 0;
};

Outcome solve_file(const std::string &path, const SimplexMethod &m) {
    Outcome o;
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    if (env == nullptr) return o;
    TRVsetintparam(env, 1019, 0);
    TRVlp lp = TRVcreateprob(env, &st, "conformance");
    if (lp != nullptr && TRVreadcopyprob(env, lp, path.c_str(), nullptr) == 0) {
        o.rc = m.opt(env, lp);
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

struct Case {
    std::string folder;
    RefEntry ref; /* name "absent" without data */
    SimplexMethod method;
    std::string path() const {
        return data_dir(TRV_DATA_DIR) + "/" + folder + "/" + ref.name + ".mps.gz";
    }
};

void PrintTo(const Case &c, std::ostream *os) {
    *os << c.folder << "/" << c.ref.name << " " << c.method.name;
}

/* The models of a folder that pass the filter, each under both methods. */
template <class Keep>
std::vector<Case> cases(const std::string &folder, Keep keep) {
    std::vector<Case> out;
    for (const RefEntry &r : read_reference(data_dir(TRV_DATA_DIR) + "/" + folder))
        if (keep(r))
            for (const SimplexMethod &m : {kPrimal, kDual}) out.push_back({folder, r, m});
    if (out.empty()) {
        RefEntry absent;
        absent.name = "absent";
        out.push_back({folder, absent, kDual});
    }
    return out;
}

std::string case_name(const testing::TestParamInfo<Case> &info) {
    std::string n = info.param.ref.name + "_" + info.param.method.name;
    for (char &c : n)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return n;
}

class Netlib : public testing::TestWithParam<Case> {};
class Infeasible : public testing::TestWithParam<Case> {};

TEST_P(Netlib, ReferenceObjective) {
    const Case &c = GetParam();
    if (c.ref.name == "absent" || !path_exists(c.path()))
        GTEST_SKIP() << "no netlib data at " << data_dir(TRV_DATA_DIR);
    Outcome o = solve_file(c.path(), c.method);
    ASSERT_EQ(o.rc, 0) << c.ref.name;
    ASSERT_EQ(o.stat, 1) << c.ref.name;
    double ref = c.ref.objective;
    EXPECT_LE(std::fabs(o.obj - ref), 1e-6 * std::fmax(1.0, std::fabs(ref)))
        << c.ref.name << ": " << o.obj << " against " << ref << " after " << o.itcnt
        << " iterations";
}

TEST_P(Infeasible, EndsInfeasible) {
    const Case &c = GetParam();
    if (c.ref.name == "absent" || !path_exists(c.path()))
        GTEST_SKIP() << "no infeas data at " << data_dir(TRV_DATA_DIR);
    Outcome o = solve_file(c.path(), c.method);
    ASSERT_EQ(o.rc, 0) << c.ref.name;
    EXPECT_TRUE(o.stat == 2 || o.stat == 19) << c.ref.name << " ends with status " << o.stat;
}

INSTANTIATE_TEST_SUITE_P(Models, Netlib,
                         testing::ValuesIn(cases("netlib",
                                                 [](const RefEntry &r) {
                                                     return r.peer_seconds < 1.0 &&
                                                            r.status == "optimal";
                                                 })),
                         case_name);
INSTANTIATE_TEST_SUITE_P(Models, Infeasible,
                         testing::ValuesIn(cases("infeas", [](const RefEntry &) { return true; })),
                         case_name);

} // namespace
