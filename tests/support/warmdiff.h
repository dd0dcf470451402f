/* The differential test of warm starts: random sequences of model changes
 * (bounds, costs, right-hand sides, senses, coefficients, ranges, added and
 * deleted rows and columns, objective sense) applied to a problem through
 * the interface and to the test's own copy of the model. After each round
 * of changes the problem is solved in place from its kept basis, and a
 * fresh copy built from the test's model is solved cold by the same
 * method; the two must end alike, and every optimum must meet the
 * optimality conditions as the test's own code checks them. Clones taken
 * before and after the solves must hold the model the test holds, and a
 * clone solves as a cold start does.
 *
 * Shared by the suite (a few hundred sequences) and by bench/warm_diff
 * (several thousand). */
#ifndef TRV_TEST_WARMDIFF_H
#define TRV_TEST_WARMDIFF_H

#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "kkt.h"
#include "model.h"

namespace warmdiff {

/* The test's own copy of the model, in a form that takes every change. */
struct Ref {
    int objsen = 1;
    std::vector<double> obj, lb, ub;
    std::vector<std::map<int, double>> col;
    std::vector<double> rhs, rng;
    std::vector<char> sense;
    int ncols() const { return static_cast<int>(obj.size()); }
    int nrows() const { return static_cast<int>(rhs.size()); }

    static Ref of(const Model &m) {
        Ref r;
        r.objsen = m.objsen;
        r.obj = m.obj, r.lb = m.lb, r.ub = m.ub;
        for (double &u : r.ub)
            if (u >= 1e17) u = 1e20;
        for (double &l : r.lb)
            if (l <= -1e17) l = -1e20;
        for (int j = 0; j < m.ncols(); j++) {
            std::map<int, double> c;
            for (int k = m.matbeg[j]; k < m.matbeg[j] + m.matcnt[j]; k++)
                if (m.matval[k] != 0.0) c[m.matind[k]] = m.matval[k];
            r.col.push_back(c);
        }
        r.rhs = m.rhs, r.sense = m.sense;
        r.rng = m.rngval;
        r.rng.resize(m.nrows(), 0.0);
        return r;
    }

    Model model() const {
        Model m;
        m.name = "diff";
        m.objsen = objsen;
        for (int i = 0; i < nrows(); i++) m.row(sense[i], rhs[i], rng[i]);
        for (int j = 0; j < ncols(); j++)
            m.col(obj[j], lb[j], ub[j], std::vector<std::pair<int, double>>(col[j].begin(), col[j].end()));
        return m;
    }
};

/* The model of a problem read back through the queries. */
inline Ref ref_of_problem(TRVenv env, TRVlp lp) {
    Ref r;
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    r.objsen = TRVgetobjsen(env, lp);
    r.obj.resize(n), r.lb.resize(n), r.ub.resize(n), r.col.resize(n);
    r.rhs.resize(m), r.rng.assign(m, 0.0), r.sense.resize(m);
    if (n > 0) {
        TRVgetobj(env, lp, r.obj.data(), 0, n - 1);
        TRVgetlb(env, lp, r.lb.data(), 0, n - 1);
        TRVgetub(env, lp, r.ub.data(), 0, n - 1);
    }
    if (m > 0) {
        TRVgetrhs(env, lp, r.rhs.data(), 0, m - 1);
        TRVgetsense(env, lp, r.sense.data(), 0, m - 1);
        bool ranged = false;
        for (char s : r.sense) ranged |= s == 'R';
        if (ranged) TRVgetrngval(env, lp, r.rng.data(), 0, m - 1);
    }
    if (n > 0) {
        int nz = TRVgetnumnz(env, lp), got = 0, surplus = 0;
        std::vector<int> beg(n), ind(nz > 0 ? nz : 1);
        std::vector<double> val(nz > 0 ? nz : 1);
        TRVgetcols(env, lp, &got, beg.data(), ind.data(), val.data(), nz, &surplus, 0, n - 1);
        for (int j = 0; j < n; j++) {
            int e = j + 1 < n ? beg[j + 1] : got;
            for (int k = beg[j]; k < e; k++) r.col[j][ind[k]] = val[k];
        }
    }
    return r;
}

/* The first difference between the test's model and a problem's, or "". */
inline std::string compare_model(TRVenv env, TRVlp lp, const Ref &want) {
    Ref got = ref_of_problem(env, lp);
    std::ostringstream e;
    auto near = [](double a, double b) {
        if (a == b) return true;
        return std::fabs(a - b) <= 1e-9 * (1.0 + std::fabs(b));
    };
    if (got.ncols() != want.ncols() || got.nrows() != want.nrows()) {
        e << "size " << got.nrows() << "x" << got.ncols() << " for " << want.nrows() << "x"
          << want.ncols();
        return e.str();
    }
    if (got.objsen != want.objsen) return "objective sense";
    for (int j = 0; j < want.ncols(); j++) {
        if (!near(got.obj[j], want.obj[j])) e << "obj " << j << " " << got.obj[j] << " for " << want.obj[j];
        else if (!near(got.lb[j], want.lb[j])) e << "lb " << j << " " << got.lb[j] << " for " << want.lb[j];
        else if (!near(got.ub[j], want.ub[j])) e << "ub " << j << " " << got.ub[j] << " for " << want.ub[j];
        else if (got.col[j].size() != want.col[j].size()) e << "column " << j << " length";
        else
            for (auto &[i, v] : want.col[j]) {
                auto f = got.col[j].find(i);
                if (f == got.col[j].end() || !near(f->second, v)) {
                    e << "a(" << i << "," << j << ") " << (f == got.col[j].end() ? 0.0 : f->second)
                      << " for " << v;
                    break;
                }
            }
        if (!e.str().empty()) return e.str();
    }
    for (int i = 0; i < want.nrows(); i++) {
        if (got.sense[i] != want.sense[i]) e << "sense " << i;
        else if (!near(got.rhs[i], want.rhs[i])) e << "rhs " << i << " " << got.rhs[i] << " for " << want.rhs[i];
        else if (want.sense[i] == 'R' && !near(got.rng[i], want.rng[i])) e << "range " << i;
        if (!e.str().empty()) return e.str();
    }
    return "";
}

/* The outcome of a solve: status, objective and, for an optimum, the check
 * of the optimality conditions against the test's model. */
struct Outcome {
    int rc = 0, stat = 0, its = 0;
    double obj = 0.0;
    std::string kkt;
};

inline Outcome solve(TRVenv env, TRVlp lp, const Model &md, bool dual) {
    Outcome o;
    o.rc = dual ? TRVdualopt(env, lp) : TRVprimopt(env, lp);
    if (o.rc != 0) return o;
    o.stat = TRVgetstat(env, lp);
    o.its = TRVgetitcnt(env, lp);
    if (o.stat != 1) return o;
    Solution s;
    int n = md.ncols(), m = md.nrows();
    s.x.resize(n), s.dj.resize(n), s.pi.resize(m), s.slack.resize(m);
    int rc = TRVsolution(env, lp, &s.stat, &s.obj, n ? s.x.data() : nullptr,
                         m ? s.pi.data() : nullptr, m ? s.slack.data() : nullptr,
                         n ? s.dj.data() : nullptr);
    if (rc != 0) {
        o.kkt = "TRVsolution " + std::to_string(rc);
        return o;
    }
    o.obj = s.obj;
    o.kkt = check_kkt(md, s, 1e-6);
    return o;
}

/* The statuses of a decided run. */
inline bool decided(int stat) { return stat == 1 || stat == 2 || stat == 3; }

/* "" when the warm outcome ends where the cold one does. */
inline std::string compare(const Outcome &w, const Outcome &c) {
    std::ostringstream e;
    if (w.rc != 0 || c.rc != 0) {
        e << "error " << w.rc << " (warm) " << c.rc << " (cold)";
        return e.str();
    }
    if (!decided(c.stat)) {
        e << "cold status " << c.stat;
        return e.str();
    }
    if (w.stat != c.stat) {
        e << "status " << w.stat << " warm, " << c.stat << " cold";
        return e.str();
    }
    if (c.stat != 1) return "";
    if (!c.kkt.empty()) return "cold kkt: " + c.kkt;
    if (!w.kkt.empty()) return "warm kkt: " + w.kkt;
    if (std::fabs(w.obj - c.obj) > 1e-6 * (1.0 + std::fabs(c.obj))) {
        e.precision(12);
        e << "objective " << w.obj << " warm, " << c.obj << " cold";
        return e.str();
    }
    return "";
}

/* Prints each step of a sequence (the bench's --display). */
inline bool trace = false;
/* Leaves the clones out (the bench's --noclone), to see the faults that a
 * fault of the clones would hide. */
inline bool no_clones = false;

/* The kinds of change. */
enum Kind {
    K_BOUND, K_OBJ, K_RHS, K_SENSE, K_COEF, K_RANGE, K_ADDROWS, K_ADDCOLS, K_DELROWS,
    K_DELCOLS, K_OBJSEN, K_SINGULAR, K_COUNT
};
inline const char *kind_name(int k) {
    static const char *n[] = {"bound", "obj", "rhs", "sense", "coef", "range",
                              "addrows", "addcols", "delrows", "delcols", "objsen", "singular"};
    return n[k];
}

struct Changer {
    TRVenv env;
    TRVlp lp;
    Ref &ref;
    std::mt19937 &g;
    std::vector<double> x; /* the last optimum, for rows that keep it feasible */

    double uni(double a, double b) { return std::uniform_real_distribution<double>(a, b)(g); }
    int pick(int n) { return static_cast<int>(g() % static_cast<unsigned>(n)); }
    double val() { return std::round(uni(-10.0, 10.0) * 4.0) / 4.0; }

    /* Applies one change of kind k; the API's result code (0 when fine). */
    int apply(int k) {
        int n = ref.ncols(), m = ref.nrows();
        switch (k) {
        case K_BOUND: {
            if (n == 0) return 0;
            int j = pick(n);
            double l = ref.lb[j], u = ref.ub[j];
            double mid = l > -1e19 ? (u < 1e19 ? 0.5 * (l + u) : l + 1.0) : (u < 1e19 ? u - 1.0 : 0.0);
            int r = pick(20);
            char lu;
            double v;
            if (r < 8) lu = 'L', v = mid - uni(0.0, 5.0);
            else if (r < 16) lu = 'U', v = mid + uni(0.0, 5.0);
            else if (r < 18) lu = 'B', v = mid;
            else if (r < 19) lu = 'L', v = -1e20;
            else lu = 'U', v = 1e20;
            /* now and then a crossed pair */
            if (pick(40) == 0) lu = 'L', v = (u < 1e19 ? u : mid) + 1.0;
            v = std::round(v * 4.0) / 4.0 + (std::fabs(v) >= 1e20 ? 0.0 : 0.0);
            int rc = TRVchgbds(env, lp, 1, &j, &lu, &v);
            if (rc == 0) {
                if (lu == 'L' || lu == 'B') ref.lb[j] = v;
                if (lu == 'U' || lu == 'B') ref.ub[j] = v;
            }
            return rc;
        }
        case K_OBJ: {
            if (n == 0) return 0;
            int j = pick(n);
            double v = pick(5) == 0 ? 0.0 : val();
            int rc = TRVchgobj(env, lp, 1, &j, &v);
            if (rc == 0) ref.obj[j] = v;
            return rc;
        }
        case K_RHS: {
            if (m == 0) return 0;
            int i = pick(m);
            double v = ref.rhs[i] + std::round(uni(-3.0, 3.0) * 4.0) / 4.0;
            int rc = TRVchgrhs(env, lp, 1, &i, &v);
            if (rc == 0) ref.rhs[i] = v;
            return rc;
        }
        case K_SENSE: {
            if (m == 0) return 0;
            int i = pick(m);
            char s = "LGER"[pick(4)];
            int rc = TRVchgsense(env, lp, 1, &i, &s);
            if (rc == 0) ref.sense[i] = s;
            if (rc == 0 && s == 'R') {
                double r = std::round(uni(-4.0, 4.0) * 4.0) / 4.0;
                rc = TRVchgrngval(env, lp, 1, &i, &r);
                if (rc == 0) ref.rng[i] = r;
            }
            return rc;
        }
        case K_COEF: {
            if (n == 0 || m == 0) return 0;
            int i, j;
            double v;
            if (pick(3) == 0 || true) {
                j = pick(n);
                i = pick(m);
                /* an entry that exists, mostly */
                if (!ref.col[j].empty() && pick(3) != 0) {
                    auto it = ref.col[j].begin();
                    std::advance(it, pick(static_cast<int>(ref.col[j].size())));
                    i = it->first;
                }
            }
            v = pick(4) == 0 ? 0.0 : val();
            int rc = TRVchgcoef(env, lp, i, j, v);
            if (rc == 0) {
                if (v == 0.0) ref.col[j].erase(i);
                else ref.col[j][i] = v;
            }
            return rc;
        }
        case K_RANGE: {
            std::vector<int> ranged;
            for (int i = 0; i < m; i++)
                if (ref.sense[i] == 'R') ranged.push_back(i);
            if (ranged.empty()) return 0;
            int i = ranged[pick(static_cast<int>(ranged.size()))];
            double r = std::round(uni(-4.0, 4.0) * 4.0) / 4.0;
            int rc = TRVchgrngval(env, lp, 1, &i, &r);
            if (rc == 0) ref.rng[i] = r;
            return rc;
        }
        case K_ADDROWS: {
            if (n == 0) return 0;
            int cnt = 1 + pick(2);
            std::vector<double> rhs;
            std::vector<char> sense;
            std::vector<int> beg, ind;
            std::vector<double> v;
            for (int r = 0; r < cnt; r++) {
                beg.push_back(static_cast<int>(ind.size()));
                double act = 0.0;
                for (int j = 0; j < n; j++)
                    if (pick(100) < 30 || (j == n - 1 && static_cast<int>(ind.size()) == beg.back())) {
                        double a = val();
                        if (a == 0.0) a = 1.0;
                        ind.push_back(j), v.push_back(a);
                        if (j < static_cast<int>(x.size())) act += a * x[j];
                    }
                char s = "LGE"[pick(3)];
                double slack = pick(3) == 0 ? -uni(0.0, 2.0) : uni(0.0, 2.0);
                double b = s == 'L' ? act + slack : s == 'G' ? act - slack : act;
                rhs.push_back(std::round(b * 4.0) / 4.0);
                sense.push_back(s);
            }
            int rc = TRVaddrows(env, lp, 0, cnt, static_cast<int>(ind.size()), rhs.data(),
                                sense.data(), beg.data(), ind.data(), v.data(), nullptr, nullptr);
            if (rc == 0) {
                beg.push_back(static_cast<int>(ind.size()));
                for (int r = 0; r < cnt; r++) {
                    int i = ref.nrows();
                    ref.rhs.push_back(rhs[r]);
                    ref.sense.push_back(sense[r]);
                    ref.rng.push_back(0.0);
                    for (int k = beg[r]; k < beg[r + 1]; k++) ref.col[ind[k]][i] = v[k];
                }
            }
            return rc;
        }
        case K_ADDCOLS: {
            int cnt = 1 + pick(2);
            std::vector<double> obj, lb, ub, v;
            std::vector<int> beg, ind;
            for (int c = 0; c < cnt; c++) {
                beg.push_back(static_cast<int>(ind.size()));
                for (int i = 0; i < m; i++)
                    if (pick(100) < 35) {
                        double a = val();
                        if (a == 0.0) a = -1.0;
                        ind.push_back(i), v.push_back(a);
                    }
                obj.push_back(val());
                double l = std::round(uni(-5.0, 2.0) * 4.0) / 4.0;
                double u = l + std::round(uni(0.0, 8.0) * 4.0) / 4.0;
                int kind = pick(10);
                if (kind == 0) l = -1e20;
                if (kind == 1) u = 1e20;
                lb.push_back(l), ub.push_back(u);
            }
            int rc = TRVaddcols(env, lp, cnt, static_cast<int>(ind.size()), obj.data(),
                                beg.data(), ind.data(), v.data(), lb.data(), ub.data(), nullptr);
            if (rc == 0) {
                beg.push_back(static_cast<int>(ind.size()));
                for (int c = 0; c < cnt; c++) {
                    std::map<int, double> col;
                    for (int k = beg[c]; k < beg[c + 1]; k++) col[ind[k]] = v[k];
                    ref.obj.push_back(obj[c]), ref.lb.push_back(lb[c]), ref.ub.push_back(ub[c]);
                    ref.col.push_back(col);
                }
            }
            return rc;
        }
        case K_DELROWS: {
            if (m <= 1) return 0;
            int rc;
            std::vector<int> keep(m, 1);
            if (pick(2) == 0) {
                int b = pick(m), e = std::min(m - 1, b + pick(2));
                rc = TRVdelrows(env, lp, b, e);
                for (int i = b; i <= e; i++) keep[i] = 0;
            } else {
                std::vector<int> del(m, 0);
                for (int i = 0; i < m; i++)
                    if (pick(m) < 2) del[i] = 1, keep[i] = 0;
                rc = TRVdelsetrows(env, lp, del.data());
            }
            if (rc == 0) {
                std::vector<int> map(m, -1);
                Ref r2 = ref;
                r2.rhs.clear(), r2.sense.clear(), r2.rng.clear();
                for (int i = 0; i < m; i++)
                    if (keep[i]) {
                        map[i] = r2.nrows();
                        r2.rhs.push_back(ref.rhs[i]), r2.sense.push_back(ref.sense[i]);
                        r2.rng.push_back(ref.rng[i]);
                    }
                for (auto &c : r2.col) {
                    std::map<int, double> c2;
                    for (auto &[i, a] : c)
                        if (map[i] >= 0) c2[map[i]] = a;
                    c = c2;
                }
                ref = r2;
            }
            return rc;
        }
        case K_DELCOLS: {
            if (n <= 1) return 0;
            int b = pick(n), e = std::min(n - 1, b + pick(2));
            int rc = TRVdelcols(env, lp, b, e);
            if (rc == 0) {
                ref.obj.erase(ref.obj.begin() + b, ref.obj.begin() + e + 1);
                ref.lb.erase(ref.lb.begin() + b, ref.lb.begin() + e + 1);
                ref.ub.erase(ref.ub.begin() + b, ref.ub.begin() + e + 1);
                ref.col.erase(ref.col.begin() + b, ref.col.begin() + e + 1);
                if (static_cast<int>(x.size()) > b) x.erase(x.begin() + b, x.begin() + std::min<int>(e + 1, x.size()));
            }
            return rc;
        }
        case K_SINGULAR: {
            /* a column of the kept basis made equal to another basic
             * column, or one of its entries dropped: the basis turns
             * singular */
            std::vector<int> cstat(n + 1), rstat(m + 1), basic;
            if (n == 0 || m == 0 || TRVgetbase(env, lp, cstat.data(), rstat.data()) != 0) return 0;
            for (int j = 0; j < n; j++)
                if (cstat[j] == 1) basic.push_back(j);
            if (basic.empty()) return 0;
            int j2 = basic[pick(static_cast<int>(basic.size()))];
            if (basic.size() < 2 || pick(2) == 0) {
                if (ref.col[j2].empty()) return 0;
                auto it = ref.col[j2].begin();
                std::advance(it, pick(static_cast<int>(ref.col[j2].size())));
                int i = it->first;
                int rc = TRVchgcoef(env, lp, i, j2, 0.0);
                if (rc == 0) ref.col[j2].erase(i);
                return rc;
            }
            int j1 = j2;
            while (j1 == j2) j1 = basic[pick(static_cast<int>(basic.size()))];
            std::map<int, double> want = ref.col[j1];
            for (int i = 0; i < m; i++) {
                double v = want.count(i) ? want[i] : 0.0;
                double old = ref.col[j2].count(i) ? ref.col[j2][i] : 0.0;
                if (v == old) continue;
                int rc = TRVchgcoef(env, lp, i, j2, v);
                if (rc != 0) return rc;
                if (v == 0.0) ref.col[j2].erase(i);
                else ref.col[j2][i] = v;
            }
            return 0;
        }
        case K_OBJSEN: {
            int s = -ref.objsen;
            int rc = TRVchgobjsen(env, lp, s);
            if (rc == 0) ref.objsen = s;
            return rc;
        }
        }
        return 0;
    }
};

/* The tally of a run of sequences. */
struct Tally {
    int sequences = 0, agree = 0, solves = 0;
    std::map<std::string, int> first_fault; /* by kind of the first fault */
    std::vector<std::string> examples;
};

/* The kind of a fault for the tally: its first words. */
inline std::string fault_kind(const std::string &why) {
    size_t k = why.find_first_of("0123456789:(");
    std::string s = why.substr(0, k);
    while (!s.empty() && s.back() == ' ') s.pop_back();
    return s;
}

/* One sequence from model start: steps rounds of one to three changes,
 * each followed by the warm solve in place, the cold solve of a fresh copy,
 * and the clone checks. Returns "" when everything agreed, else the first
 * fault with the seed and the step. */
inline std::string run_sequence(TRVenv env, const Model &start, unsigned seed, int steps,
                                int *solves = nullptr) {
    std::mt19937 g(seed);
    Ref ref = Ref::of(start);
    TRVlp lp = start.copy_into(env);
    if (lp == nullptr) return "copy failed";
    Changer ch{env, lp, ref, g, {}};
    std::string fault;
    std::ostringstream where;
    auto fail = [&](const std::string &why, int step, const std::string &what) {
        if (!fault.empty()) return;
        std::ostringstream e;
        e << why << " [seed " << seed << " step " << step << what << "]";
        fault = e.str();
    };
    /* a first cold solve leaves the basis the sequence starts from */
    bool dual = g() % 2 == 0;
    Outcome first = solve(env, lp, start, dual);
    if (solves) ++*solves;
    if (first.rc != 0) fail("error " + std::to_string(first.rc), 0, "");
    std::string history;
    for (int step = 1; step <= steps && fault.empty(); step++) {
        history.clear();
        int nch = 1 + ch.pick(3);
        for (int c = 0; c < nch; c++) {
            int k = ch.pick(K_COUNT);
            /* deletions and additions a little less often than value changes */
            if ((k == K_DELROWS || k == K_DELCOLS || k == K_ADDCOLS || k == K_ADDROWS) && ch.pick(2))
                k = ch.pick(K_SENSE + 1);
            int rc = ch.apply(k);
            history += std::string(" ") + kind_name(k);
            if (rc != 0) fail(std::string("change ") + kind_name(k) + " failed " + std::to_string(rc), step, history);
        }
        if (!fault.empty()) break;
        Model md = ref.model();
        dual = ch.pick(2) == 0;
        std::string what = history + (dual ? "; dual" : "; primal");
        if (ch.pick(3) == 0 && !no_clones) {
            int st = 0;
            TRVlp c = TRVcloneprob(env, lp, &st);
            if (c == nullptr) fail("clone before the solve failed", step, what);
            else {
                std::string d = compare_model(env, c, ref);
                if (!d.empty()) fail("clone before the solve: " + d, step, what);
                TRVfreeprob(env, &c);
            }
        }
        /* the kept basis, for a fresh copy started from it by TRVcopybase */
        std::vector<int> cstat(ref.ncols() + 1), rstat(ref.nrows() + 1);
        bool copied = ch.pick(3) == 0 &&
                      TRVgetbase(env, lp, cstat.data(), rstat.data()) == 0;
        /* half the warm runs with another pricing */
        int par = dual ? 1009 : 1029, keep = 0;
        TRVgetintparam(env, par, &keep);
        int pricing = ch.pick(2) == 0 ? (dual ? ch.pick(6) : ch.pick(5)) : keep;
        TRVsetintparam(env, par, pricing);
        Outcome w = solve(env, lp, md, dual);
        TRVsetintparam(env, par, keep);
        what += " pricing " + std::to_string(pricing);
        TRVlp fresh = md.copy_into(env);
        Outcome c = solve(env, fresh, md, dual);
        TRVfreeprob(env, &fresh);
        if (solves) *solves += 2;
        if (copied) {
            fresh = md.copy_into(env);
            int rc = TRVcopybase(env, fresh, cstat.data(), rstat.data());
            if (rc != 0) fail("TRVcopybase " + std::to_string(rc), step, what);
            Outcome b = solve(env, fresh, md, dual);
            TRVfreeprob(env, &fresh);
            if (solves) ++*solves;
            std::string why = compare(b, c);
            if (!why.empty()) fail("copied basis: " + why, step, what);
        }
        if (trace)
            std::printf("step %d:%s -> warm %d (%d its, %.9g), cold %d (%d its, %.9g)\n", step,
                        what.c_str(), w.stat, w.its, w.obj, c.stat, c.its, c.obj);
        std::string why = compare(w, c);
        if (!why.empty()) fail(why, step, what);
        std::string d = compare_model(env, lp, ref);
        if (!d.empty()) fail("model after the solve: " + d, step, what);
        if (ch.pick(2) == 0 && !no_clones) {
            int st = 0;
            TRVlp cl = TRVcloneprob(env, lp, &st);
            if (cl == nullptr) {
                fail("clone after the solve failed", step, what);
            } else {
                d = compare_model(env, cl, ref);
                if (!d.empty()) fail("clone after the solve: " + d, step, what);
                Outcome o = solve(env, cl, md, dual);
                if (solves) ++*solves;
                why = compare(o, c);
                if (!why.empty()) fail("clone " + why, step, what);
                TRVfreeprob(env, &cl);
            }
        }
        if (w.stat == 1) {
            ch.x.assign(ref.ncols(), 0.0);
            if (ref.ncols() > 0) TRVgetx(env, lp, ch.x.data(), 0, ref.ncols() - 1);
        }
    }
    TRVfreeprob(env, &lp);
    return fault;
}

/* A model read from a file, as the test's model. */
inline bool read_model(TRVenv env, const std::string &file, Model *out) {
    int st = 0;
    TRVlp lp = TRVcreateprob(env, &st, "read");
    if (lp == nullptr) return false;
    st = TRVreadcopyprob(env, lp, file.c_str(), nullptr);
    if (st == 0) *out = ref_of_problem(env, lp).model();
    TRVfreeprob(env, &lp);
    return st == 0;
}

/* The models of a run: random ones of a few sizes, with boxes or with open
 * bounds, and the given netlib models; seed picks one. */
struct Pool {
    std::vector<Model> netlib;
    Model pick(unsigned seed) const {
        std::mt19937 g(seed * 2654435761u);
        if (!netlib.empty() && g() % 4 == 0) return netlib[g() % netlib.size()];
        int n = 3 + static_cast<int>(g() % 25), m = 2 + static_cast<int>(g() % 18);
        return random_lp(seed, n, m, g() % 2 == 0);
    }
};

inline void record(Tally &t, const std::string &fault, size_t keep_examples = 8) {
    t.sequences++;
    if (fault.empty()) {
        t.agree++;
        return;
    }
    t.first_fault[fault_kind(fault)]++;
    if (t.examples.size() < keep_examples) t.examples.push_back(fault);
}

}  // namespace warmdiff

#endif
