/* The primal and the dual simplex through the public interface. What both
 * must show is written once and runs for each method: the outcomes of
 * small LPs with known answers, solutions checked against the optimality
 * conditions, limits, callbacks from the method's own place, the log,
 * scaling, and the solution queries with their errors. Then what belongs
 * to one method (the primal's pricing families and crash basis, the dual's
 * pricing modes, status 19 and warm starts), and what takes both (their
 * agreement, the hand-over between them, the choice of TRVlpopt). */
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "support/kkt.h"
#include "support/methods.h"
#include "support/model.h"

namespace {

/* A model solved by one method in a fresh environment. */
struct Solved {
    TestEnv te;
    TRVlp lp = nullptr;
    Solution s;
    int rc = -1;
    Solved(const SimplexMethod &m, const Model &md, int display = 0) {
        TRVsetintparam(te.env, 1019, display);
        lp = md.copy_into(te.env);
        if (lp != nullptr) rc = solve(m, te.env, lp, s);
    }
    ~Solved() {
        if (lp != nullptr) TRVfreeprob(te.env, &lp);
    }
};

/* An environment without a screen log, with the model copied in. */
struct Quiet {
    TestEnv te;
    TRVlp lp = nullptr;
    Quiet() { TRVsetintparam(te.env, 1019, 0); }
    TRVlp load(const Model &md) { return lp = md.copy_into(te.env); }
    ~Quiet() {
        if (lp != nullptr) TRVfreeprob(te.env, &lp);
    }
};

constexpr double INF = 1e20;

/* A small minimisation from dense rows: sense, rhs, the entry of each
 * column, and the range of an 'R' row. Bounds default to [0, INF). */
struct Row {
    char sense;
    double rhs;
    std::vector<double> a;
    double rng = 0.0;
};

Model dense(std::vector<double> c, std::vector<Row> rows, std::vector<double> lb = {},
            std::vector<double> ub = {}) {
    Model md;
    for (const Row &r : rows) md.row(r.sense, r.rhs, r.rng);
    for (size_t j = 0; j < c.size(); j++) {
        std::vector<std::pair<int, double>> e;
        for (size_t i = 0; i < rows.size(); i++)
            if (rows[i].a[j] != 0.0) e.push_back({static_cast<int>(i), rows[i].a[j]});
        md.col(c[j], lb.empty() ? 0.0 : lb[j], ub.empty() ? INF : ub[j], e);
    }
    return md;
}

/* max 3x + 2y, x + y <= 4, x + 3y <= 6, x <= 3: the slack basis is primal
 * feasible with objective 0 */
Model small_max() {
    Model md = dense({3, 2}, {{'L', 4, {1, 1}}, {'L', 6, {1, 3}}}, {0, 0}, {3, INF});
    md.objsen = -1;
    return md;
}

/* Beale's example, which cycles under the textbook rule. */
Model beale() {
    return dense({-0.75, 20, -0.5, 6}, {{'L', 0, {0.25, -8, -1, 9}},
                                        {'L', 0, {0.5, -12, -0.5, 3}},
                                        {'L', 1, {0, 0, 1, 0}}});
}

/* min c x with c >= 0 and 'G' rows: the slack basis is dual feasible and
 * primal infeasible, the classic start of the dual. */
Model diet() {
    return dense({2, 3, 1.5}, {{'G', 8, {2, 1, 1}}, {'G', 6, {1, 2, 0}}, {'G', 5, {0, 1, 2}}});
}

/* A model whose slack basis is feasible on the method's side and not
 * optimal: the primal's start in phase 2, the dual's too. */
Model own_start(const SimplexMethod &m) { return m.dual() ? diet() : beale(); }

Model negated(Model md) {
    md.objsen = -md.objsen;
    for (double &c : md.obj) c = -c;
    return md;
}

/* A balanced transportation problem: degenerate at many vertices. */
Model transportation(int ns, int nd) {
    Model md;
    for (int a = 0; a < ns; a++) md.row('E', 10.0 + a);
    double total = 0.0;
    for (int a = 0; a < ns; a++) total += 10.0 + a;
    for (int b = 0; b < nd; b++) md.row('E', total / nd);
    for (int a = 0; a < ns; a++)
        for (int b = 0; b < nd; b++)
            md.col(1.0 + (a + b) % 3, 0.0, 1e20, {{a, 1.0}, {ns + b, 1.0}});
    return md;
}

/* ---- outcomes of small LPs with known answers ----------------------------- */

constexpr double ANY = std::numeric_limits<double>::quiet_NaN();

struct Known {
    std::string name;
    Model md;
    int stat;
    double obj = ANY;                  /* the optimum */
    std::vector<double> x = {};        /* values the optimum fixes; ANY where it does not */
    std::vector<double> primal_x = {}; /* values the primal's basic answer fixes besides */
    double tol = 1e-9;
    int phase1[2] = {-1, -1}; /* phase 1 pivots of the primal, the dual: -1 any, 0 none, 1 some */
    bool pivots = false;      /* the start is not optimal */
};

std::vector<Known> known_cases() {
    const std::vector<double> zero2 = {0, 0}, free2 = {-INF, -INF}, open2 = {INF, INF};
    std::vector<Known> k = {
        {.name = "maximisation", .md = small_max(), .stat = 1, .obj = 11.0, .x = {3, 1}},
        {.name = "beale", .md = beale(), .stat = 1, .obj = -1.25},
        /* min -x - y, x - y <= 1 */
        {.name = "unbounded", .md = dense({-1, -1}, {{'L', 1, {1, -1}}}), .stat = 3},
        /* x + y <= 1, x + y >= 3 */
        {.name = "infeasible", .md = dense({1, 1}, {{'L', 1, {1, 1}}, {'G', 3, {1, 1}}}),
         .stat = 2},
        /* x + y = 10 with x, y in [0, 2], with costs of either sign */
        {.name = "infeasible_by_boxes", .md = dense({1, 1}, {{'E', 10, {1, 1}}}, zero2, {2, 2}),
         .stat = 2},
        {.name = "infeasible_by_boxes_mixed_costs",
         .md = dense({1, -1}, {{'E', 10, {1, 1}}}, zero2, {2, 2}), .stat = 2},
        /* x - y >= 1, -x + y >= 1 is infeasible; min -x - y is dual infeasible */
        {.name = "infeasible_and_dual_infeasible",
         .md = dense({-1, -1}, {{'G', 1, {1, -1}}, {'G', 1, {-1, 1}}}), .stat = 2},
        /* min x + 2y, x + y >= 2, x - y = 0.5, x and y free; then with
         * -3 <= x - y <= 3 besides */
        {.name = "free_variables",
         .md = dense({1, 2}, {{'G', 2, {1, 1}}, {'E', 0.5, {1, -1}}}, free2, open2), .stat = 1,
         .obj = 2.75, .x = {1.25, 0.75}},
        {.name = "free_variables_ranged_row",
         .md = dense({1, 2}, {{'G', 2, {1, 1}}, {'E', 0.5, {1, -1}}, {'R', -3, {1, -1}, 6}}, free2,
                     open2),
         .stat = 1, .obj = 2.75, .x = {1.25, 0.75}},
        /* min x - y, y <= 3 and x in no row */
        {.name = "free_variable_unbounded", .md = dense({1, -1}, {{'L', 3, {0, 1}}}, free2, open2),
         .stat = 3},
        /* min -y, y <= 3, f + y <= 10, f free and without cost: every f up
         * to 7 is optimal; the primal's basic answer puts f where its row
         * blocks, the dual may leave it nonbasic at 0 */
        {.name = "free_column_of_no_cost",
         .md = dense({-1, 0}, {{'L', 3, {1, 0}}, {'L', 10, {1, 1}}}, {0, -INF}, open2), .stat = 1,
         .obj = -3.0, .primal_x = {ANY, 7.0}, .tol = 1e-12},
        /* min x + y - z, z free and bounded only through the rows: the
         * slack basis leaves z dual infeasible; z = x + 2, y = 0 */
        {.name = "free_column_dual_infeasible",
         .md = dense({1, 1, -1}, {{'L', 4, {1, -1, 1}}, {'G', -2, {1, 0, -1}}}, {0, 0, -INF},
                     {INF, INF, INF}),
         .stat = 1, .obj = -2.0},
        /* min x - y with 1 <= x + y <= 5 (range +4) and -2 <= x - y <= 2
         * (range given negative from the upper end) */
        {.name = "ranged_rows_both_sides",
         .md = dense({1, -1}, {{'R', 1, {1, 1}, 4}, {'R', 2, {1, -1}, -4}}, zero2, {10, 10}),
         .stat = 1, .obj = -2.0},
        /* min -x - 2y + z, x + y + z <= 10, x - y >= -5, x in [1, 3], y in
         * [-2, 4], z fixed at 2 */
        {.name = "bounded_and_fixed_columns",
         .md = dense({-1, -2, 1}, {{'L', 10, {1, 1, 1}}, {'G', -5, {1, -1, 0}}}, {1, -2, 2},
                     {3, 4, 2}),
         .stat = 1, .obj = -9.0, .x = {3, 4, 2}, .tol = 1e-12},
        /* every column boxed: the dual's start is dual feasible by the
         * choice of bound */
        {.name = "boxed_columns",
         .md = dense({-3, -1, 2, 1},
                     {{'L', 4, {1, 2, 1, 0}}, {'G', -3, {-1, 0, 1, 1}}, {'R', 1, {1, 1, -1, 0}, 2}},
                     {0, -1, -2, 1}, {2, 3, 2, 1}),
         .stat = 1, .obj = -8.0, .phase1 = {-1, 0}},
        {.name = "diet", .md = diet(), .stat = 1, .obj = 12.5, .phase1 = {-1, 0}, .pivots = true},
        /* min -x - y: the slack basis is dual infeasible on both columns */
        {.name = "dual_infeasible_start",
         .md = dense({-1, -1}, {{'L', 4, {1, 1}}, {'L', 6, {1, 3}}, {'G', 1, {1, 0}}}), .stat = 1,
         .obj = -4.0, .phase1 = {-1, 1}},
        /* every reduced cost is zero at the start: any feasible point is optimal */
        {.name = "zero_costs",
         .md = dense({0, 0, 0}, {{'G', 2, {1, 1, 1}}, {'L', 5, {1, 2, 0}}, {'E', 1, {1, 0, -1}}},
                     {0, -1, -INF}, {10, INF, INF}),
         .stat = 1, .obj = 0.0, .tol = 1e-12},
        /* one row that binds nothing: columns go to their better bound */
        {.name = "loose_row", .md = dense({1, -1}, {{'L', 100, {1, 1}}}, {-2, 0}, {3, 4}),
         .stat = 1, .obj = -6.0, .tol = 1e-12},
        /* an empty equality row, with a zero right-hand side or one that
         * cannot hold */
        {.name = "empty_row", .md = dense({2}, {{'E', 0, {0}}, {'G', 1, {1}}}), .stat = 1,
         .obj = 2.0, .tol = 1e-12},
        {.name = "empty_row_infeasible", .md = dense({1}, {{'E', 1, {0}}, {'L', 5, {1}}}, {0}, {1}),
         .stat = 2},
        {.name = "transportation",
         .md = dense({8, 6, 10, 9, 12, 13, 14, 9, 16},
                     {{'E', 20, {1, 1, 1, 0, 0, 0, 0, 0, 0}},
                      {'E', 30, {0, 0, 0, 1, 1, 1, 0, 0, 0}},
                      {'E', 25, {0, 0, 0, 0, 0, 0, 1, 1, 1}},
                      {'E', 10, {1, 0, 0, 1, 0, 0, 1, 0, 0}},
                      {'E', 35, {0, 1, 0, 0, 1, 0, 0, 1, 0}},
                      {'E', 30, {0, 0, 1, 0, 0, 1, 0, 0, 1}}}),
         .stat = 1, .obj = 735.0},
    };
    const double tobj[] = {32.0, 43.25, 54.2, 73.0, 628.0 / 7.0};
    for (int n = 2; n <= 6; n++)
        k.push_back({.name = "transportation_" + std::to_string(n) + "x" + std::to_string(n + 1),
                     .md = transportation(n, n + 1), .stat = 1, .obj = tobj[n - 2]});
    return k;
}

void PrintTo(const Known &c, std::ostream *os) { *os << c.name; }

using KnownParam = std::tuple<SimplexMethod, Known>;
class SimplexKnown : public testing::TestWithParam<KnownParam> {};

TEST_P(SimplexKnown, Outcome) {
    const SimplexMethod &m = std::get<0>(GetParam());
    const Known &c = std::get<1>(GetParam());
    const Model &md = c.md;
    Solved r(m, md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, c.stat);
    EXPECT_EQ(TRVgetstat(r.te.env, r.lp), c.stat);
    int phase1 = c.phase1[m.dual()];
    if (phase1 >= 0) {
        EXPECT_EQ(TRVgetphase1cnt(r.te.env, r.lp) > 0, phase1 == 1);
    }
    if (c.pivots) {
        EXPECT_GT(TRVgetitcnt(r.te.env, r.lp), 0);
    }
    if (c.stat != 1) return;
    EXPECT_EQ(TRVgetmethod(r.te.env, r.lp), m.method);
    EXPECT_NEAR(r.s.obj, c.obj, c.tol);
    for (const auto &x : {c.x, m.dual() ? std::vector<double>() : c.primal_x})
        for (size_t j = 0; j < x.size(); j++)
            if (!std::isnan(x[j])) {
                EXPECT_NEAR(r.s.x[j], x[j], c.tol) << "column " << j;
            }
    EXPECT_EQ(check_kkt(md, r.s), "");
    /* the slack of every row, a ranged one too, is rhs minus activity */
    std::vector<double> ax = row_activity(md, r.s.x);
    for (int i = 0; i < md.nrows(); i++) EXPECT_NEAR(r.s.slack[i], md.rhs[i] - ax[i], 1e-9) << i;
}

INSTANTIATE_TEST_SUITE_P(Models, SimplexKnown,
                         testing::Combine(testing::Values(kPrimal, kDual),
                                          testing::ValuesIn(known_cases())),
                         [](const testing::TestParamInfo<KnownParam> &info) {
                             return std::string(std::get<0>(info.param).name) + "_" +
                                    std::get<1>(info.param).name;
                         });

/* ---- limits and callbacks ------------------------------------------------- */

class SimplexLimits : public testing::TestWithParam<SimplexMethod> {};
TRV_BOTH_METHODS(SimplexLimits);

TEST_P(SimplexLimits, IterationLimitZeroMakesNoPivot) {
    /* the primal from a feasible slack basis, the dual from a dual
     * feasible one that is primal infeasible */
    const SimplexMethod &m = GetParam();
    Quiet q;
    ASSERT_EQ(TRVsetintparam(q.te.env, 1020, 0), 0);
    Model md = m.dual() ? diet() : small_max();
    TRVlp lp = q.load(md);
    ASSERT_EQ(m.opt(q.te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(q.te.env, lp), m.dual() ? 6 : 5);
    EXPECT_EQ(TRVgetitcnt(q.te.env, lp), 0);
    /* the values read back are those of the starting basis */
    std::vector<double> x(md.ncols(), -1.0);
    ASSERT_EQ(TRVgetx(q.te.env, lp, x.data(), 0, md.ncols() - 1), 0);
    for (double v : x) EXPECT_EQ(v, 0.0);
}

TEST_P(SimplexLimits, IterationLimitBeforeFeasibilityIsInfeasibleStatus) {
    /* each column meets two of the three violated rows: the primal is in
     * phase 1 after one pivot, the dual (whose start is dual feasible) in
     * phase 2 without a primal feasible basis */
    const SimplexMethod &m = GetParam();
    Quiet q;
    TRVsetintparam(q.te.env, 1020, 1);
    TRVlp lp =
        q.load(dense({1, 1, 1}, {{'G', 4, {1, 0, 1}}, {'G', 3, {0, 1, 1}}, {'G', 2, {1, 1, 0}}}));
    ASSERT_EQ(m.opt(q.te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(q.te.env, lp), 6);
    EXPECT_EQ(TRVgetitcnt(q.te.env, lp), 1);
    EXPECT_EQ(TRVgetphase1cnt(q.te.env, lp), m.dual() ? 0 : 1);
}

TEST_P(SimplexLimits, ObjectiveLimitStopsTheRun) {
    /* From its slack basis each method's objective moves from 0 toward
     * the optimum: the primal's up to 11 on small_max, the dual's bound up
     * to 12.5 on diet, and down on their negations. A limit of 1 in that
     * direction stops the run; without it the run reaches the optimum. */
    const SimplexMethod &m = GetParam();
    for (bool up : {true, false}) {
        Model md = m.dual() ? diet() : small_max();
        if (!up) md = negated(md);
        int param = up ? 1026 : 1025;
        double limit = up ? 1.0 : -1.0, beyond = up ? 1.0 : -1.0;
        Quiet q;
        ASSERT_EQ(TRVsetdblparam(q.te.env, param, limit), 0);
        TRVlp lp = q.load(md);
        ASSERT_EQ(m.opt(q.te.env, lp), 0);
        EXPECT_EQ(TRVgetstat(q.te.env, lp), 4) << up;
        double z = 0.0;
        ASSERT_EQ(TRVgetobjval(q.te.env, lp, &z), 0);
        EXPECT_GT(beyond * z, 1.0) << up;
        ASSERT_EQ(TRVsetdblparam(q.te.env, param, up ? 1e75 : -1e75), 0);
        Solution s;
        ASSERT_EQ(solve(m, q.te.env, lp, s), 0);
        EXPECT_EQ(s.stat, 1) << up;
        EXPECT_GT(beyond * s.obj, 1.0) << up;
        EXPECT_EQ(check_kkt(md, s), "") << up;
    }
}

TEST_P(SimplexLimits, TimeLimitIsReadEveryTwentyFiveIterations) {
    const SimplexMethod &m = GetParam();
    struct {
        Model md;
        double limit;
    } cases[] = {{random_lp(4242, 80, 60), 0.0}, {transportation(14, 14), 1e-9}};
    for (auto &c : cases) {
        {
            Solved r(m, c.md); /* the run needs more than 25 iterations */
            ASSERT_EQ(r.rc, 0);
            ASSERT_EQ(r.s.stat, 1);
            ASSERT_GT(TRVgetitcnt(r.te.env, r.lp), 25);
        }
        Quiet q;
        ASSERT_EQ(TRVsetdblparam(q.te.env, 1039, c.limit), 0);
        TRVlp lp = q.load(c.md);
        ASSERT_EQ(m.opt(q.te.env, lp), 0);
        int stat = TRVgetstat(q.te.env, lp);
        EXPECT_TRUE(stat == 7 || stat == 8) << stat;
        EXPECT_EQ(TRVgetitcnt(q.te.env, lp), 25);
        /* the values read back are consistent with the rows */
        Solution s;
        ASSERT_EQ(read_solution(q.te.env, lp, s), 0);
        std::vector<double> ax = row_activity(c.md, s.x);
        for (int i = 0; i < c.md.nrows(); i++)
            EXPECT_NEAR(s.slack[i], c.md.rhs[i] - ax[i], 1e-8 * (1 + std::fabs(ax[i])));
    }
}

/* What a callback sees at the method's place, and its answer. */
struct Seen {
    const SimplexMethod *m = nullptr;
    int rows = 0;    /* the problem's row count */
    int stop_at = 0; /* the call that stops the run; 0 none */
    int calls = 0, last_it = -1, phase1 = 0, phase2 = 0, bad = 0;
};

int watch(TRVenv env, void *cbdata, int wherefrom, void *handle) {
    Seen *s = static_cast<Seen *>(handle);
    const SimplexMethod &m = *s->m;
    s->calls++;
    int it = -1, ph = -1, rows = -1;
    double obj = 0.0, inf = -1.0, dummy;
    if (wherefrom != m.place) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 7, &it) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, m.phaseinfo, &ph) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, 17, &rows) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, m.objinfo, &obj) != 0) s->bad++;
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, m.infinfo, &inf) != 0) s->bad++;
    /* the other method's objective is not known here */
    if (TRVgetcallbackinfo(env, cbdata, wherefrom, m.otherinfo, &dummy) != 1003) s->bad++;
    if (ph != 0 && ph != 1) s->bad++;
    if (it < s->last_it || rows != s->rows) s->bad++;
    s->last_it = it;
    (ph == 1 ? s->phase2 : s->phase1)++;
    /* feasible on its side: nothing left of its phase 1 measure */
    if (ph == 1 && inf > 1e-6) s->bad++;
    return s->calls == s->stop_at ? 1 : 0;
}

TEST_P(SimplexLimits, CallbackAbortsFromItsOwnPlace) {
    const SimplexMethod &m = GetParam();
    Quiet q;
    Seen seen;
    seen.m = &m;
    seen.stop_at = 1;
    TRVsetlpcallbackfunc(q.te.env, watch, &seen);
    Model md = own_start(m);
    seen.rows = md.nrows();
    TRVlp lp = q.load(md);
    ASSERT_EQ(m.opt(q.te.env, lp), 0);
    int stat = TRVgetstat(q.te.env, lp);
    EXPECT_TRUE(stat == 12 || stat == 13) << stat;
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.bad, 0) << q.te.err;
}

TEST_P(SimplexLimits, CallbackSeesProgressFigures) {
    /* both phases: for the primal a 'G' row violated by the slack basis;
     * for the dual, diet with a column whose cost is dual infeasible there */
    const SimplexMethod &m = GetParam();
    Quiet q;
    Seen seen;
    seen.m = &m;
    TRVsetlpcallbackfunc(q.te.env, watch, &seen);
    Model md = m.dual() ? dense({2, 3, 1.5, -1}, {{'G', 8, {2, 1, 1, 0}}, {'G', 6, {1, 2, 0, 1}},
                                                  {'G', 5, {0, 1, 2, 0}}, {'L', 4, {0, 0, 0, 1}}})
                        : dense({1, -1}, {{'G', 2, {1, 1}}, {'L', 6, {1, 2}}, {'L', 5, {2, 0}}});
    seen.rows = md.nrows();
    TRVlp lp = q.load(md);
    ASSERT_EQ(m.opt(q.te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(q.te.env, lp), 1);
    EXPECT_GT(seen.calls, 1);
    EXPECT_EQ(seen.bad, 0) << q.te.err;
    EXPECT_GT(seen.phase1, 0);
    EXPECT_GT(seen.phase2, 0);
    EXPECT_LE(seen.last_it, TRVgetitcnt(q.te.env, lp));
}

/* ---- the log -------------------------------------------------------------- */

class SimplexLog : public testing::TestWithParam<SimplexMethod> {};
TRV_BOTH_METHODS(SimplexLog);

TEST_P(SimplexLog, DisplayLevels) {
    const SimplexMethod &m = GetParam();
    Model md = own_start(m);
    {
        Solved r(m, md, 0);
        EXPECT_EQ(r.te.res.find("Iteration"), std::string::npos);
    }
    {
        Solved r(m, md, 1);
        EXPECT_NE(r.te.res.find("\nIteration log . . .\n"), std::string::npos) << r.te.res;
        EXPECT_NE(r.te.res.find("Iteration:     0    Objective     =             0.000000\n"),
                  std::string::npos)
            << r.te.res;
    }
    {
        Solved r(m, md, 2);
        EXPECT_NE(r.te.res.find("       In Variable           Out Variable\n"), std::string::npos)
            << r.te.res;
        EXPECT_NE(r.te.res.find(" slack"), std::string::npos) << r.te.res;
    }
}

TEST_P(SimplexLog, PhaseOneLine) {
    /* the primal: a 'G' row 2 short at the slack basis; the dual: min -x,
     * x + y <= 2, one dual infeasibility of 1 */
    const SimplexMethod &m = GetParam();
    Model md = m.dual() ? dense({-1, 0}, {{'L', 2, {1, 1}}}) : dense({1}, {{'G', 2, {1}}});
    Solved r(m, md, 1);
    std::string line = std::string("Iteration:     0    Infeasibility =             ") +
                       (m.dual() ? "1.000000\n" : "2.000000\n");
    EXPECT_NE(r.te.res.find(line), std::string::npos) << r.te.res;
}

/* ---- solution queries ----------------------------------------------------- */

class SimplexQueries : public testing::TestWithParam<SimplexMethod> {};
TRV_BOTH_METHODS(SimplexQueries);

TEST_P(SimplexQueries, ChecksAndErrors) {
    const SimplexMethod &m = GetParam();
    TestEnv te;
    TRVsetintparam(te.env, 1019, 0);
    Model md = small_max();
    TRVlp lp = md.copy_into(te.env);
    double v[4] = {0, 0, 0, 0};
    /* before a solve: no solution */
    EXPECT_EQ(TRVgetx(te.env, lp, v, 0, 1), TRVERR_NO_SOLUTION_EXISTS);
    EXPECT_EQ(TRVsolution(te.env, lp, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              TRVERR_NO_SOLUTION_EXISTS);
    EXPECT_EQ(TRVgetobjval(te.env, lp, v), TRVERR_NO_SOLUTION_EXISTS);
    EXPECT_EQ(TRVgetitcnt(te.env, lp), 0);
    EXPECT_NE(te.err.find("No solution exists"), std::string::npos);
    ASSERT_EQ(m.opt(te.env, lp), 0);
    te.clear();
    /* ranges */
    EXPECT_EQ(TRVgetx(te.env, lp, v, 1, 0), TRVERR_INDEX_OUTSIDE_RANGE_VALID);
    EXPECT_EQ(TRVgetx(te.env, lp, v, -1, 1), TRVERR_INDEX_OUTSIDE_RANGE_VALID);
    EXPECT_EQ(TRVgetx(te.env, lp, v, 0, 2), TRVERR_INDEX_OUTSIDE_RANGE_VALID);
    EXPECT_EQ(TRVgetpi(te.env, lp, v, 0, 2), TRVERR_INDEX_OUTSIDE_RANGE_VALID);
    EXPECT_EQ(TRVgetslack(te.env, lp, v, 2, 2), TRVERR_INDEX_OUTSIDE_RANGE_VALID);
    EXPECT_EQ(TRVgetdj(te.env, lp, v, 0, 5), TRVERR_INDEX_OUTSIDE_RANGE_VALID);
    EXPECT_NE(te.err.find("'end' value 2 is greater than 1"), std::string::npos) << te.err;
    /* null pointers */
    EXPECT_EQ(TRVgetx(te.env, lp, nullptr, 0, 1), TRVERR_NULL_POINTER_REQUIRED_DATA);
    EXPECT_EQ(TRVgetobjval(te.env, lp, nullptr), TRVERR_NULL_POINTER_REQUIRED_DATA);
    /* a null item of TRVsolution is skipped */
    double z = 0.0;
    EXPECT_EQ(TRVsolution(te.env, lp, nullptr, &z, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_NEAR(z, 11.0, 1e-9);
    /* single entries */
    EXPECT_EQ(TRVgetx(te.env, lp, v, 1, 1), 0);
    EXPECT_NEAR(v[0], 1.0, 1e-9);
    /* bad handles */
    EXPECT_EQ(TRVgetx(nullptr, lp, v, 0, 1), TRVERR_NO_ENVIRONMENT);
    EXPECT_EQ(m.opt(nullptr, lp), TRVERR_NO_ENVIRONMENT);
    EXPECT_EQ(m.opt(nullptr, nullptr), TRVERR_NO_ENVIRONMENT);
    EXPECT_EQ(m.opt(te.env, nullptr), TRVERR_NO_PROBLEM_EXISTS);
    EXPECT_EQ(TRVgetx(te.env, nullptr, v, 0, 1), TRVERR_NO_PROBLEM_EXISTS);
    TRVlp stale = lp;
    TRVfreeprob(te.env, &lp);
    EXPECT_EQ(TRVgetx(te.env, stale, v, 0, 1), TRVERR_NO_PROBLEM_EXISTS);
    EXPECT_EQ(m.opt(te.env, stale), TRVERR_NO_PROBLEM_EXISTS);
}

TEST_P(SimplexQueries, ModelChangeDropsSolution) {
    const SimplexMethod &m = GetParam();
    Quiet q;
    TRVenv env = q.te.env;
    TRVlp lp = q.load(small_max());
    ASSERT_EQ(m.opt(env, lp), 0);
    double z;
    ASSERT_EQ(TRVgetobjval(env, lp, &z), 0);
    /* a new copy of the model is a change */
    Model m2 = beale();
    ASSERT_EQ(TRVcopylp(env, lp, m2.ncols(), m2.nrows(), m2.objsen, m2.obj.data(),
                        m2.rhs.data(), m2.sense.data(), m2.matbeg.data(), m2.matcnt.data(),
                        m2.matind.data(), m2.matval.data(), m2.lb.data(), m2.ub.data(),
                        m2.rngval.data()),
              0);
    EXPECT_EQ(TRVgetobjval(env, lp, &z), TRVERR_NO_SOLUTION_EXISTS);
    ASSERT_EQ(m.opt(env, lp), 0);
    ASSERT_EQ(TRVgetobjval(env, lp, &z), 0);
    EXPECT_NEAR(z, -1.25, 1e-9);
}

TEST_P(SimplexQueries, EmptyAndRowlessModels) {
    const SimplexMethod &m = GetParam();
    Quiet q;
    TRVenv env = q.te.env;
    /* no rows: every column goes to its better bound */
    double obj[2] = {1.0, -1.0}, lb[2] = {-2.0, -2.0}, ub[2] = {3.0, 3.0};
    double rhs[1] = {0.0}, matval[1] = {0.0};
    char sense[1] = {'L'};
    int matbeg[2] = {0, 0}, matcnt[2] = {0, 0}, matind[1] = {0};
    int st = 0;
    TRVlp lp = q.lp = TRVcreateprob(env, &st, "rowless");
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(TRVcopylp(env, lp, 2, 0, 1, obj, rhs, sense, matbeg, matcnt, matind, matval, lb,
                        ub, nullptr),
              0);
    ASSERT_EQ(m.opt(env, lp), 0);
    EXPECT_EQ(TRVgetstat(env, lp), 1);
    double z = 0.0, x[2];
    ASSERT_EQ(TRVgetobjval(env, lp, &z), 0);
    EXPECT_NEAR(z, -5.0, 1e-12);
    ASSERT_EQ(TRVgetx(env, lp, x, 0, 1), 0);
    EXPECT_EQ(x[0], -2.0);
    EXPECT_EQ(x[1], 3.0);
    /* no rows and an open direction */
    ub[1] = 1e20;
    ASSERT_EQ(TRVcopylp(env, lp, 2, 0, 1, obj, rhs, sense, matbeg, matcnt, matind, matval, lb,
                        ub, nullptr),
              0);
    ASSERT_EQ(m.opt(env, lp), 0);
    EXPECT_EQ(TRVgetstat(env, lp), 3);
    TRVfreeprob(env, &q.lp);
    /* a problem with nothing in it */
    lp = q.lp = TRVcreateprob(env, &st, "empty");
    ASSERT_NE(lp, nullptr);
    ASSERT_EQ(m.opt(env, lp), 0);
    EXPECT_EQ(TRVgetstat(env, lp), 1);
    ASSERT_EQ(TRVgetobjval(env, lp, &z), 0);
    EXPECT_EQ(z, 0.0);
}

/* ---- scaling -------------------------------------------------------------- */

class SimplexScaling : public testing::TestWithParam<SimplexMethod> {};
TRV_BOTH_METHODS(SimplexScaling);

TEST_P(SimplexScaling, BadlyScaledModelAnswersInItsOwnUnits) {
    const SimplexMethod &m = GetParam();
    for (int scheme = -1; scheme <= 1; scheme++) {
        Model md;
        md.row('L', 4e4);
        md.row('G', 1e-3);
        md.row('R', 2e-2, 5e-2);
        md.col(-1.0, 0.0, 1e5, {{0, 1e3}, {1, 1e-4}, {2, 1e-3}});
        md.col(-2e3, 0.0, 30.0, {{0, 2e4}, {1, 2e-3}});
        md.col(5e-3, -1e3, 1e3, {{0, 1.0}, {2, 1e-2}});
        Quiet q;
        TRVenv env = q.te.env;
        ASSERT_EQ(TRVsetintparam(env, 1034, scheme), 0);
        TRVlp lp = q.load(md);
        Solution s;
        ASSERT_EQ(solve(m, env, lp, s), 0);
        EXPECT_EQ(s.stat, 1) << scheme;
        EXPECT_EQ(check_kkt(md, s, 1e-6), "") << "scheme " << scheme;
        /* the model reads back as given */
        double obj[3], lb[3], ub[3], rhs[3], rng[3];
        ASSERT_EQ(TRVgetobj(env, lp, obj, 0, 2), 0);
        ASSERT_EQ(TRVgetlb(env, lp, lb, 0, 2), 0);
        ASSERT_EQ(TRVgetub(env, lp, ub, 0, 2), 0);
        ASSERT_EQ(TRVgetrhs(env, lp, rhs, 0, 2), 0);
        ASSERT_EQ(TRVgetrngval(env, lp, rng, 0, 2), 0);
        for (int j = 0; j < 3; j++) {
            EXPECT_NEAR(obj[j], md.obj[j], 1e-12 * std::fabs(md.obj[j]));
            EXPECT_NEAR(lb[j], md.lb[j], 1e-12 * std::fabs(md.lb[j]));
            EXPECT_NEAR(ub[j], md.ub[j], 1e-12 * std::fabs(md.ub[j]));
        }
        for (int i = 0; i < 3; i++) EXPECT_NEAR(rhs[i], md.rhs[i], 1e-12 * std::fabs(md.rhs[i]));
        EXPECT_NEAR(rng[2], 5e-2, 1e-15);
        double a = 0.0;
        ASSERT_EQ(TRVgetcoef(env, lp, 1, 0, &a), 0);
        EXPECT_NEAR(a, 1e-4, 1e-16);
        /* unscaled again, a second solve gives the same objective */
        ASSERT_EQ(TRVunscaleprob(env, lp), 0);
        ASSERT_EQ(TRVsetintparam(env, 1034, -1), 0);
        Solution s2;
        ASSERT_EQ(solve(m, env, lp, s2), 0);
        EXPECT_NEAR(s2.obj, s.obj, 1e-7 * (1 + std::fabs(s.obj)));
    }
}

TEST_P(SimplexScaling, CallerOwnedArraysComeBackOnUnload) {
    const SimplexMethod &m = GetParam();
    Quiet q;
    TRVenv env = q.te.env;
    TRVsetintparam(env, 1034, 0);
    /* a badly scaled model in the caller's arrays, with room to spare */
    double obj[2] = {-1.0, -3e3}, rhs[2] = {5e4, 2e-3}, lb[2] = {0.0, 0.0}, ub[2] = {1e20, 40.0};
    double rng[2] = {0.0, 0.0}, val[4] = {1e3, 1e-4, 2e4, 1e-3};
    char sense[2] = {'L', 'L'};
    int beg[2] = {0, 2}, cnt[2] = {2, 2}, ind[4] = {0, 1, 0, 1};
    double obj0[2], rhs0[2], ub0[2], val0[4];
    std::memcpy(obj0, obj, sizeof obj), std::memcpy(rhs0, rhs, sizeof rhs);
    std::memcpy(ub0, ub, sizeof ub), std::memcpy(val0, val, sizeof val);
    TRVlp lp = TRVloadlp(env, "owned", 2, 2, 1, obj, rhs, sense, beg, cnt, ind, val, lb, ub, rng,
                         2, 2, 4);
    ASSERT_NE(lp, nullptr);
    Solution s;
    ASSERT_EQ(solve(m, env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    /* the model answers in its own units while held scaled */
    double v[2];
    ASSERT_EQ(TRVgetobj(env, lp, v, 0, 1), 0);
    EXPECT_NEAR(v[1], -3e3, 1e-9);
    ASSERT_EQ(TRVgetrhs(env, lp, v, 0, 1), 0);
    EXPECT_NEAR(v[1], 2e-3, 1e-15);
    ASSERT_EQ(TRVunloadprob(env, &lp), 0);
    for (int k = 0; k < 2; k++) {
        EXPECT_NEAR(obj[k], obj0[k], 1e-12 * std::fabs(obj0[k]));
        EXPECT_NEAR(rhs[k], rhs0[k], 1e-12 * std::fabs(rhs0[k]));
        EXPECT_NEAR(ub[k], ub0[k], 1e-12 * std::fabs(ub0[k]));
    }
    for (int k = 0; k < 4; k++) EXPECT_NEAR(val[k], val0[k], 1e-12 * std::fabs(val0[k]));
}

TEST_P(SimplexScaling, NewDataAfterAScaledSolve) {
    const SimplexMethod &m = GetParam();
    Quiet q;
    TRVenv env = q.te.env;
    Model md;
    md.row('L', 4e4);
    md.row('G', 1e-3);
    md.col(-1.0, 0.0, 1e5, {{0, 1e3}, {1, 1e-4}});
    md.col(-2e3, 0.0, 30.0, {{0, 2e4}, {1, 2e-3}});
    TRVlp lp = q.load(md);
    Solution s1, s2;
    ASSERT_EQ(solve(m, env, lp, s1), 0);
    /* the same data again: a copy drops the old scaling */
    ASSERT_EQ(TRVcopylp(env, lp, md.ncols(), md.nrows(), md.objsen, md.obj.data(),
                        md.rhs.data(), md.sense.data(), md.matbeg.data(), md.matcnt.data(),
                        md.matind.data(), md.matval.data(), md.lb.data(), md.ub.data(),
                        md.rngval.data()),
              0);
    ASSERT_EQ(solve(m, env, lp, s2), 0);
    EXPECT_EQ(s2.stat, 1);
    EXPECT_NEAR(s2.obj, s1.obj, 1e-9 * (1 + std::fabs(s1.obj)));
    EXPECT_EQ(check_kkt(md, s2), "");
}

/* ---- random models -------------------------------------------------------- */

class SimplexRandom : public testing::TestWithParam<SimplexMethod> {};
TRV_BOTH_METHODS(SimplexRandom);

TEST_P(SimplexRandom, BoxedLpsMeetOptimalityConditions) {
    for (unsigned seed = 1; seed <= 60; seed++) {
        Model md = random_lp(seed, 4 + seed % 9, 3 + seed % 7);
        Solved r(GetParam(), md);
        ASSERT_EQ(r.rc, 0) << seed;
        ASSERT_EQ(r.s.stat, 1) << "seed " << seed;
        EXPECT_EQ(check_kkt(md, r.s), "") << "seed " << seed;
    }
}

/* ---- the primal alone ----------------------------------------------------- */

TEST(PrimalPricing, EveryFamilyAgrees) {
    for (unsigned seed = 100; seed < 130; seed++) {
        Model md = random_lp(seed, 12, 8, true);
        double ref = 0.0;
        int refstat = -1;
        for (int fam = -1; fam <= 4; fam++) {
            Quiet q;
            ASSERT_EQ(TRVsetintparam(q.te.env, 1029, fam), 0);
            Solution s;
            ASSERT_EQ(solve_primal(q.te.env, q.load(md), s), 0);
            if (refstat < 0) refstat = s.stat, ref = s.obj;
            EXPECT_EQ(s.stat, refstat) << "seed " << seed << " family " << fam;
            if (s.stat == 1) {
                EXPECT_NEAR(s.obj, ref, 1e-6 * (1 + std::fabs(ref))) << seed << " " << fam;
                EXPECT_EQ(check_kkt(md, s), "") << "seed " << seed << " family " << fam;
            }
        }
    }
}

TEST(PrimalCrash, FillsEqualityRowsWithStructurals) {
    /* two equations in two unknowns, triangular: the crash basis is the
     * answer and no pivot is needed */
    Model md = dense({1, 1}, {{'E', 1, {1, 0}}, {'E', 3, {0.5, 2}}}, {0, 0}, {10, 10});
    Solved r(kPrimal, md);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.s.stat, 1);
    EXPECT_EQ(TRVgetitcnt(r.te.env, r.lp), 0);
    EXPECT_EQ(TRVgetphase1cnt(r.te.env, r.lp), 0);
    EXPECT_NEAR(r.s.x[0], 1.0, 1e-12);
    EXPECT_NEAR(r.s.x[1], 1.25, 1e-12);
    EXPECT_EQ(check_kkt(md, r.s), "");
}

TEST(PrimalCrash, SpreadPivotsFallBackToTheUnitBasis) {
    Quiet q;
    TRVsetintparam(q.te.env, 1034, -1); /* no scaling to even the entries out */
    Model md = dense({1, 1}, {{'E', 1, {1, 0}}, {'E', 1e-4, {0, 1e-4}}}, {0, 0}, {10, 10});
    TRVlp lp = q.load(md);
    Solution s;
    ASSERT_EQ(solve_primal(q.te.env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    const std::string &err = q.te.err;
    EXPECT_NE(err.find("Using conservative initial basis.\n"), std::string::npos) << err;
    EXPECT_NE(err.find("Using unit initial basis.\n"), std::string::npos) << err;
    EXPECT_NE(err.find("Primal crash basis not built.\n"), std::string::npos) << err;
    EXPECT_GT(TRVgetphase1cnt(q.te.env, lp), 0);
    EXPECT_EQ(check_kkt(md, s), "");
}

/* ---- the dual alone ------------------------------------------------------- */

TEST(DualPricing, EveryModeAgrees) {
    for (unsigned seed = 200; seed < 220; seed++) {
        Model md = random_lp(seed, 14, 9, true);
        double ref = 0.0;
        int refstat = -1;
        for (int mode : {0, 1, 2, 3, 4, 5}) {
            Quiet q;
            ASSERT_EQ(TRVsetintparam(q.te.env, 1009, mode), 0);
            Solution s;
            ASSERT_EQ(solve(kDual, q.te.env, q.load(md), s), 0);
            if (refstat < 0) refstat = s.stat, ref = s.obj;
            EXPECT_EQ(s.stat, refstat) << seed << " mode " << mode;
            if (s.stat == 1) {
                EXPECT_NEAR(s.obj, ref, 1e-7 * (1 + std::fabs(ref))) << seed << " mode " << mode;
                EXPECT_EQ(check_kkt(md, s), "") << seed << " mode " << mode;
            }
        }
    }
}

TEST(DualOutcomes, DualInfeasibleWithoutHandOverIsStatus19) {
    Quiet q;
    ASSERT_EQ(TRVsetintparam(q.te.env, 1063, -1), 0);
    /* unbounded: min -x with x - y <= 1 */
    TRVlp lp = q.load(dense({-1, 0}, {{'L', 1, {1, -1}}}));
    ASSERT_EQ(TRVdualopt(q.te.env, lp), 0);
    EXPECT_EQ(TRVgetstat(q.te.env, lp), 19);
}

TEST(DualWarm, ResolveStartsFromTheKeptBasis) {
    Quiet q;
    TRVenv env = q.te.env;
    TRVlp lp = q.load(transportation(6, 7));
    Solution s1, s2;
    ASSERT_EQ(solve(kDual, env, lp, s1), 0);
    ASSERT_EQ(s1.stat, 1);
    EXPECT_GT(TRVgetitcnt(env, lp), 3);
    /* the same model again: the kept basis is optimal */
    ASSERT_EQ(solve(kDual, env, lp, s2), 0);
    EXPECT_EQ(TRVgetitcnt(env, lp), 0);
    EXPECT_NEAR(s2.obj, s1.obj, 1e-9);
    /* without the advanced start the run begins from the slack basis */
    TRVsetintparam(env, 1001, 0);
    ASSERT_EQ(solve(kDual, env, lp, s2), 0);
    EXPECT_GT(TRVgetitcnt(env, lp), 3);
}

TEST(DualWarm, NewModelDropsTheKeptBasis) {
    Quiet q;
    TRVenv env = q.te.env;
    TRVlp lp = q.load(transportation(4, 4));
    Solution s;
    ASSERT_EQ(solve(kDual, env, lp, s), 0);
    /* copying another model of the same shape into the problem must not
     * start from the old basis' values */
    Model b = diet();
    ASSERT_EQ(TRVcopylp(env, lp, b.ncols(), b.nrows(), b.objsen, b.obj.data(), b.rhs.data(),
                        b.sense.data(), b.matbeg.data(), b.matcnt.data(), b.matind.data(),
                        b.matval.data(), b.lb.data(), b.ub.data(), nullptr),
              0);
    ASSERT_EQ(solve(kDual, env, lp, s), 0);
    EXPECT_EQ(s.stat, 1);
    EXPECT_EQ(check_kkt(b, s), "");
}

/* ---- both methods together ------------------------------------------------ */

TEST(MethodsTogether, AgreeOnRandomLps) {
    for (unsigned seed = 1; seed <= 80; seed++) {
        Model md = random_lp(seed, 4 + seed % 11, 3 + seed % 8, seed % 2 == 0);
        Solved p(kPrimal, md), d(kDual, md);
        ASSERT_EQ(p.rc, 0) << seed;
        ASSERT_EQ(d.rc, 0) << seed;
        ASSERT_EQ(d.s.stat, p.s.stat) << "seed " << seed;
        if (p.s.stat != 1) continue;
        EXPECT_NEAR(d.s.obj, p.s.obj, 1e-7 * (1.0 + std::fabs(p.s.obj))) << seed;
        EXPECT_EQ(check_kkt(md, d.s), "") << "seed " << seed << " dual";
        EXPECT_EQ(check_kkt(md, p.s), "") << "seed " << seed << " primal";
    }
}

TEST(MethodsTogether, HandOverInBothDirectionsKeepsTheAnswer) {
    /* perturbation from the start and the hand-over at once: each driver
     * may pass its basis to the other after the removal */
    int handed = 0;
    for (unsigned seed = 300; seed < 340; seed++) {
        Model md = random_lp(seed, 16, 11, seed % 3 == 0);
        Solved ref(kPrimal, md);
        for (const SimplexMethod &m : {kPrimal, kDual}) {
            TestEnv te;
            TRVsetintparam(te.env, 1019, 1);
            ASSERT_EQ(TRVsetintparam(te.env, 1027, 1), 0);
            ASSERT_EQ(TRVsetintparam(te.env, 1063, 1), 0);
            TRVlp lp = md.copy_into(te.env);
            Solution s;
            ASSERT_EQ(solve(m, te.env, lp, s), 0) << seed;
            EXPECT_EQ(s.stat, ref.s.stat) << seed << " " << m.name;
            if (s.stat == 1) {
                EXPECT_NEAR(s.obj, ref.s.obj, 1e-7 * (1 + std::fabs(ref.s.obj))) << seed;
                EXPECT_EQ(check_kkt(md, s), "") << seed;
            }
            /* a second iteration log header tells that the other driver ran */
            size_t first = te.res.find("Iteration log");
            if (first != std::string::npos &&
                te.res.find("Iteration log", first + 1) != std::string::npos)
                handed++;
            TRVfreeprob(te.env, &lp);
        }
    }
    EXPECT_GT(handed, 0);
}

TEST(LpoptDispatch, MethodChoice) {
    Quiet q;
    TRVenv env = q.te.env;
    TRVlp lp = q.load(diet());
    for (int method : {0, 1, 2}) {
        ASSERT_EQ(TRVsetintparam(env, 1062, method), 0);
        ASSERT_EQ(TRVlpopt(env, lp), 0);
        EXPECT_EQ(TRVgetstat(env, lp), 1);
        EXPECT_EQ(TRVgetmethod(env, lp), method == 1 ? 1 : 2) << method;
    }
    for (int method : {3, 4}) {
        ASSERT_EQ(TRVsetintparam(env, 1062, method), 0);
        q.te.clear();
        EXPECT_EQ(TRVlpopt(env, lp), TRVERR_INVALID_CHOICE_OPTIMIZATION_METHOD);
        EXPECT_NE(q.te.err.find("Invalid choice of optimization method"), std::string::npos)
            << q.te.err;
    }
}

TEST(LpoptDispatch, BadHandles) {
    TestEnv te;
    EXPECT_EQ(TRVlpopt(nullptr, nullptr), TRVERR_NO_ENVIRONMENT);
    EXPECT_EQ(TRVlpopt(te.env, nullptr), TRVERR_NO_PROBLEM_EXISTS);
    TRVlp lp = diet().copy_into(te.env);
    TRVlp stale = lp;
    TRVfreeprob(te.env, &lp);
    EXPECT_EQ(TRVlpopt(te.env, stale), TRVERR_NO_PROBLEM_EXISTS);
}

} // namespace
