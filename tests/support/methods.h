/* The two simplex methods as a test meets them: the optimiser to call and
 * what tells the methods apart from outside (the method a run reports, the
 * place of its callbacks and the figures it answers there). A suite
 * parameterized by SimplexMethod runs each case once per method, and the
 * method's name ends the name of each test. */
#ifndef TRV_TEST_METHODS_H
#define TRV_TEST_METHODS_H

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "kkt.h"
#include "trvlib.h"

struct SimplexMethod {
    const char *name;           /* "Primal" or "Dual" */
    int (*opt)(TRVenv, TRVlp);  /* TRVprimopt or TRVdualopt */
    int method;                 /* TRVgetmethod after its run: 1 or 2 */
    int place;                  /* the wherefrom of its callbacks */
    int objinfo;                /* whichinfo of its objective there */
    int infinfo;                /* of the infeasibility its phase 1 removes */
    int phaseinfo;              /* of its phase: 1 once feasible on its side */
    int otherinfo;              /* the other method's objective: 1003 there */
    bool dual() const { return method == 2; }
};

inline const SimplexMethod kPrimal = {"Primal", TRVprimopt, 1, TRV_CALLBACK_PRIMAL, 1, 3, 5, 2};
inline const SimplexMethod kDual = {"Dual", TRVdualopt, 2, TRV_CALLBACK_DUAL, 2, 4, 6, 1};

inline const SimplexMethod &other(const SimplexMethod &m) { return m.dual() ? kPrimal : kDual; }

inline void PrintTo(const SimplexMethod &m, std::ostream *os) { *os << m.name; }

inline std::string method_name(const testing::TestParamInfo<SimplexMethod> &info) {
    return info.param.name;
}

/* Instantiates a suite parameterized by SimplexMethod for both methods. */
#define TRV_BOTH_METHODS(suite)                                                      \
    INSTANTIATE_TEST_SUITE_P(Simplex, suite, testing::Values(kPrimal, kDual), method_name)

inline int solve(const SimplexMethod &m, TRVenv env, TRVlp lp, Solution &s) {
    return solve_by(m.opt, env, lp, s);
}

/* A solve of a fresh copy of the model by the method (see solve_outcome). */
inline Outcome solve_outcome(TRVenv env, const Model &md, const SimplexMethod &m) {
    return solve_outcome(env, md, m.dual());
}

#endif
