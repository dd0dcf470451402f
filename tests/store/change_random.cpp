/* Random sequences of model changes, applied through the interface and to a
 * plain copy of the model held here. After each step every query agrees
 * with the copy, and the computational form (range columns, slacks, kinds,
 * column order, name stores) is whole. Run on a library-owned problem
 * (changes collect in the cache) and on a caller-owned one (changes go in
 * directly). */
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "store/change.h"
#include "support/internal.h"
#include "support/model.h"

namespace {

struct Ref {
    int objsen = 1;
    std::vector<double> obj, lb, ub;
    std::vector<std::string> cname;
    std::vector<std::map<int, double>> col;
    std::vector<double> rhs, rng;
    std::vector<char> sense;
    std::vector<std::string> rname;
    int ncols() const { return static_cast<int>(obj.size()); }
    int nrows() const { return static_cast<int>(rhs.size()); }
    long nz() const {
        long n = 0;
        for (auto &c : col) n += static_cast<long>(c.size());
        return n;
    }
};

Ref ref_of(const Model &m) {
    Ref r;
    r.objsen = m.objsen;
    r.obj = m.obj, r.lb = m.lb, r.ub = m.ub, r.cname = m.colnames;
    for (double &u : r.ub)
        if (u >= 1e17) u = 1e20;
    for (int j = 0; j < m.ncols(); j++) {
        std::map<int, double> c;
        for (int k = m.matbeg[j]; k < m.matbeg[j] + m.matcnt[j]; k++) c[m.matind[k]] = m.matval[k];
        r.col.push_back(c);
    }
    r.rhs = m.rhs, r.rng = m.rngval, r.sense = m.sense, r.rname = m.rownames;
    return r;
}

/* The computational form behind the interface is whole. */
void check_form(TRVlp lp) {
    const lp_data *d = lp_of(lp)->lpdata;
    int nranged = 0, nslack = 0;
    for (int i = 0; i < d->nrows; i++) {
        nranged += d->sense[i] == 'R';
        nslack += d->sense[i] == 'L' || d->sense[i] == 'G';
    }
    ASSERT_EQ(d->nstruct, d->ncols + nranged);
    ASSERT_EQ(d->ntotal, d->nstruct + nslack);
    ASSERT_LE(d->nstruct, d->colspace);
    ASSERT_LE(d->nrows, d->rowspace);
    int low = lp_rimlow(d);
    for (int j = 0; j < d->nstruct; j++) {
        ASSERT_EQ(d->colend[j], d->matbeg[j] + d->matcnt[j]) << j;
        ASSERT_LE(d->colend[j], low) << j;
        if (j + 1 < d->nstruct) {
            ASSERT_LE(d->colend[j], d->matbeg[j + 1]) << j;
        }
        ASSERT_EQ(d->lowerkind[j], bound_kind(d->lb[j])) << j;
        ASSERT_EQ(d->upperkind[j], bound_kind(d->ub[j])) << j;
    }
    /* range columns in row order, one entry -1, bounds from the range */
    int j = d->ncols;
    for (int i = 0; i < d->nrows; i++) {
        if (d->sense[i] != 'R') continue;
        ASSERT_EQ(d->matcnt[j], 1);
        ASSERT_EQ(d->matind[d->matbeg[j]], i);
        ASSERT_EQ(d->matval[d->matbeg[j]], -1.0);
        double r = d->rngval ? d->rngval[i] : 0.0;
        ASSERT_EQ(d->lb[j], r >= 0 ? 0.0 : r);
        ASSERT_EQ(d->ub[j], r >= 0 ? r : 0.0);
        j++;
    }
    int k = 0;
    for (int i = 0; i < d->nrows; i++) {
        if (d->sense[i] != 'L' && d->sense[i] != 'G') continue;
        ASSERT_EQ(d->slackrow[k], i);
        ASSERT_EQ(d->slackval[k], d->sense[i] == 'L' ? 1.0 : -1.0);
        k++;
    }
    for (int c = 0; d->colname && c < d->ncols; c++) {
        ASSERT_GE(d->colname[c], d->colnamestore);
        ASSERT_LT(d->colname[c], d->colnamestore + d->colnamespace);
    }
    for (int r = 0; d->rowname && r < d->nrows; r++) {
        ASSERT_GE(d->rowname[r], d->rownamestore);
        ASSERT_LT(d->rowname[r], d->rownamestore + d->rownamespace);
    }
}

void expect_same(TRVenv env, TRVlp lp, const Ref &r, const std::string &step) {
    SCOPED_TRACE(step);
    int n = r.ncols(), m = r.nrows();
    ASSERT_EQ(TRVgetnumcols(env, lp), n);
    ASSERT_EQ(TRVgetnumrows(env, lp), m);
    ASSERT_EQ(TRVgetobjsen(env, lp), r.objsen);
    std::vector<double> v(n + m + 1);
    if (n > 0) {
        ASSERT_EQ(TRVgetobj(env, lp, v.data(), 0, n - 1), 0);
        for (int j = 0; j < n; j++) ASSERT_EQ(v[j], r.obj[j]) << j;
        ASSERT_EQ(TRVgetlb(env, lp, v.data(), 0, n - 1), 0);
        for (int j = 0; j < n; j++) ASSERT_EQ(v[j], r.lb[j]) << j;
        ASSERT_EQ(TRVgetub(env, lp, v.data(), 0, n - 1), 0);
        for (int j = 0; j < n; j++) ASSERT_EQ(v[j], r.ub[j]) << j;
    }
    if (m > 0) {
        ASSERT_EQ(TRVgetrhs(env, lp, v.data(), 0, m - 1), 0);
        for (int i = 0; i < m; i++) ASSERT_EQ(v[i], r.rhs[i]) << i;
        ASSERT_EQ(TRVgetrngval(env, lp, v.data(), 0, m - 1), 0);
        for (int i = 0; i < m; i++) ASSERT_EQ(v[i], r.rng[i]) << i;
        std::vector<char> s(m);
        ASSERT_EQ(TRVgetsense(env, lp, s.data(), 0, m - 1), 0);
        for (int i = 0; i < m; i++) ASSERT_EQ(s[i], r.sense[i]) << i;
    }
    /* pending entries count as new ones until a merge; the getters above
     * have merged */
    ASSERT_EQ(TRVgetnumnz(env, lp), r.nz());
    long nz = r.nz();
    std::vector<int> beg(n + m + 1), ind(nz + 1);
    std::vector<double> val(nz + 1);
    int cnt = 0, surplus = 0;
    if (n > 0) {
        ASSERT_EQ(TRVgetcols(env, lp, &cnt, beg.data(), ind.data(), val.data(),
                             static_cast<int>(nz + 1), &surplus, 0, n - 1), 0);
        ASSERT_EQ(cnt, nz);
        for (int j = 0; j < n; j++) {
            int e = j + 1 < n ? beg[j + 1] : cnt;
            std::map<int, double> c;
            for (int q = beg[j]; q < e; q++) c[ind[q]] = val[q];
            ASSERT_EQ(c, r.col[j]) << "column " << j;
        }
    }
    if (m > 0) {
        ASSERT_EQ(TRVgetrows(env, lp, &cnt, beg.data(), ind.data(), val.data(),
                             static_cast<int>(nz + 1), &surplus, 0, m - 1), 0);
        ASSERT_EQ(cnt, nz);
        for (int i = 0; i < m; i++) {
            int e = i + 1 < m ? beg[i + 1] : cnt;
            for (int q = beg[i]; q < e; q++) {
                auto it = r.col[ind[q]].find(i);
                ASSERT_TRUE(it != r.col[ind[q]].end()) << i << " " << ind[q];
                ASSERT_EQ(it->second, val[q]);
            }
        }
    }
    std::vector<char *> nm(n + m + 1);
    std::vector<char> store(16 * (n + m) + 64);
    if (n > 0) {
        ASSERT_EQ(TRVgetcolname(env, lp, nm.data(), store.data(), static_cast<int>(store.size()),
                                &surplus, 0, n - 1), 0);
        for (int j = 0; j < n; j++) ASSERT_EQ(std::string(nm[j]), r.cname[j]) << j;
        int idx = -2;
        ASSERT_EQ(TRVgetcolindex(env, lp, r.cname[n - 1].c_str(), &idx), 0);
        ASSERT_EQ(r.cname[idx], r.cname[n - 1]); /* default names may repeat */
    }
    if (m > 0) {
        ASSERT_EQ(TRVgetrowname(env, lp, nm.data(), store.data(), static_cast<int>(store.size()),
                                &surplus, 0, m - 1), 0);
        for (int i = 0; i < m; i++) ASSERT_EQ(std::string(nm[i]), r.rname[i]) << i;
    }
    check_form(lp);
}

/* The arrays of a caller-owned model, with room to grow into. */
struct Owned {
    enum { CS = 120, RS = 120, NZ = 3000, NS = 6000 };
    std::vector<double> obj = std::vector<double>(CS), lb = std::vector<double>(CS),
                        ub = std::vector<double>(CS), rhs = std::vector<double>(RS),
                        rng = std::vector<double>(RS), val = std::vector<double>(NZ);
    std::vector<char> sense = std::vector<char>(RS);
    std::vector<int> beg = std::vector<int>(CS), cnt = std::vector<int>(CS),
                     ind = std::vector<int>(NZ);
    std::vector<char *> cn = std::vector<char *>(CS), rn = std::vector<char *>(RS);
    std::vector<char> cstore = std::vector<char>(NS), rstore = std::vector<char>(NS);

    TRVlp load(TRVenv env, const Model &m) {
        int pos = 0;
        for (int j = 0; j < m.ncols(); j++) {
            obj[j] = m.obj[j], lb[j] = m.lb[j], ub[j] = m.ub[j];
            beg[j] = pos, cnt[j] = m.matcnt[j];
            for (int k = 0; k < m.matcnt[j]; k++, pos++) {
                ind[pos] = m.matind[m.matbeg[j] + k];
                val[pos] = m.matval[m.matbeg[j] + k];
            }
            pos += 2; /* some room in place */
        }
        for (int i = 0; i < m.nrows(); i++) rhs[i] = m.rhs[i], rng[i] = m.rngval[i], sense[i] = m.sense[i];
        size_t p = 0;
        for (int j = 0; j < m.ncols(); j++) {
            std::memcpy(&cstore[p], m.colnames[j].c_str(), m.colnames[j].size() + 1);
            cn[j] = &cstore[p];
            p += m.colnames[j].size() + 1;
        }
        p = 0;
        for (int i = 0; i < m.nrows(); i++) {
            std::memcpy(&rstore[p], m.rownames[i].c_str(), m.rownames[i].size() + 1);
            rn[i] = &rstore[p];
            p += m.rownames[i].size() + 1;
        }
        return TRVloadlpwnames(env, "owned", m.ncols(), m.nrows(), m.objsen, obj.data(),
                               rhs.data(), sense.data(), beg.data(), cnt.data(), ind.data(),
                               val.data(), lb.data(), ub.data(), rng.data(), cn.data(),
                               cstore.data(), rn.data(), rstore.data(), CS, RS, NZ, NS, NS);
    }
};

struct Runner {
    TRVenv env;
    TRVlp lp;
    Ref r;
    std::mt19937 rng;
    int namecount;
    bool owned;

    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); }
    double value() {
        static const double vals[] = {0.0, 1.0, -1.0, 2.5, -3.25, 7.0, 0.5, 1e3};
        return vals[pick(8)];
    }
    double bound() {
        static const double vals[] = {0.0, 1.0, -2.0, 4.0, 1e20, -1e20, 1e18, -1e19};
        return vals[pick(8)];
    }
    char sense() { return "LGER"[pick(4)]; }
    std::string fresh(char c) { return std::string(1, c) + "n" + std::to_string(++namecount); }

    /* Names for k new entries, or none (defaults from the final index). */
    bool names(int k, std::vector<std::string> &txt, std::vector<char *> &ptr, char c) {
        bool give = pick(3) != 0;
        txt.clear(), ptr.clear();
        for (int q = 0; q < k; q++) txt.push_back(fresh(c));
        for (auto &s : txt) ptr.push_back(const_cast<char *>(s.c_str()));
        return give;
    }

    void add_cols_ref(int k, const double *o, const double *l, const double *u,
                      const std::vector<std::string> *nm) {
        for (int q = 0; q < k; q++) {
            r.obj.push_back(o ? o[q] : 0.0);
            r.lb.push_back(l ? l[q] : 0.0);
            double ub = u ? u[q] : 1e20;
            r.ub.push_back(ub >= 1e17 ? 1e20 : ub <= -1e17 ? -1e20 : ub);
            double lb = r.lb.back();
            r.lb.back() = lb >= 1e17 ? 1e20 : lb <= -1e17 ? -1e20 : lb;
            r.cname.push_back(nm ? (*nm)[q] : "x" + std::to_string(r.ncols()));
            r.col.emplace_back();
        }
    }
    void add_rows_ref(int k, const double *rh, const char *s, const double *rg,
                      const std::vector<std::string> *nm) {
        for (int q = 0; q < k; q++) {
            r.rhs.push_back(rh ? rh[q] : 0.0);
            r.sense.push_back(s ? s[q] : 'E');
            r.rng.push_back(rg ? rg[q] : 0.0);
            r.rname.push_back(nm ? (*nm)[q] : "c" + std::to_string(r.nrows()));
        }
    }

    void step(int s) {
        int n = r.ncols(), m = r.nrows();
        int op = pick(owned ? 18 : 19);
        if ((op <= 3) && (n > 40 || m > 40)) op = 4 + pick(4); /* keep it small */
        std::vector<std::string> t1, t2;
        std::vector<char *> p1, p2;
        switch (op) {
        case 0: { /* new columns */
            int k = 1 + pick(3);
            std::vector<double> o(k), l(k), u(k);
            for (int q = 0; q < k; q++) o[q] = value(), l[q] = bound(), u[q] = bound();
            if (l[0] >= 1e17) l[0] = 0.0; /* an infinite lower bound is legal but odd */
            bool g = names(k, t1, p1, 'x');
            ASSERT_EQ(TRVnewcols(env, lp, k, o.data(), l.data(), u.data(), nullptr,
                                 g ? p1.data() : nullptr), 0);
            add_cols_ref(k, o.data(), l.data(), u.data(), g ? &t1 : nullptr);
            break;
        }
        case 1: { /* new rows */
            int k = 1 + pick(3);
            std::vector<double> rh(k), rg(k);
            std::vector<char> sn(k);
            for (int q = 0; q < k; q++) rh[q] = value(), rg[q] = value(), sn[q] = sense();
            bool g = names(k, t1, p1, 'r');
            ASSERT_EQ(TRVnewrows(env, lp, k, rh.data(), sn.data(), rg.data(),
                                 g ? p1.data() : nullptr), 0);
            add_rows_ref(k, rh.data(), sn.data(), rg.data(), g ? &t1 : nullptr);
            break;
        }
        case 2: { /* rows with entries, and new columns first */
            int cc = pick(3), rc = 1 + pick(3);
            std::vector<double> rh(rc), vals;
            std::vector<char> sn(rc);
            std::vector<int> beg, ind;
            for (int q = 0; q < rc; q++) {
                rh[q] = value(), sn[q] = sense();
                beg.push_back(static_cast<int>(ind.size()));
                std::map<int, double> row;
                for (int e = 0; e < 3 && n + cc > 0; e++) {
                    int j = pick(n + cc);
                    if (row.count(j)) continue;
                    double v = value();
                    if (v == 0.0) v = 4.0;
                    row[j] = v;
                    ind.push_back(j);
                    vals.push_back(v);
                }
            }
            bool gc = names(cc, t1, p1, 'x'), gr = names(rc, t2, p2, 'r');
            ASSERT_EQ(TRVaddrows(env, lp, cc, rc, static_cast<int>(ind.size()), rh.data(),
                                 sn.data(), beg.data(), ind.data(), vals.data(),
                                 gc ? p1.data() : nullptr, gr ? p2.data() : nullptr), 0);
            add_cols_ref(cc, nullptr, nullptr, nullptr, gc ? &t1 : nullptr);
            add_rows_ref(rc, rh.data(), sn.data(), nullptr, gr ? &t2 : nullptr);
            for (int q = 0; q < rc; q++) {
                int e = q + 1 < rc ? beg[q + 1] : static_cast<int>(ind.size());
                for (int k = beg[q]; k < e; k++) r.col[ind[k]][m + q] = vals[k];
            }
            break;
        }
        case 3: { /* columns with entries */
            int cc = 1 + pick(3);
            std::vector<double> o(cc), l(cc), u(cc), vals;
            std::vector<int> beg, ind;
            for (int q = 0; q < cc; q++) {
                o[q] = value(), l[q] = -bound(), u[q] = 10.0;
                if (l[q] >= 1e17) l[q] = -1.0;
                beg.push_back(static_cast<int>(ind.size()));
                std::map<int, double> c;
                for (int e = 0; e < 3 && m > 0; e++) {
                    int i = pick(m);
                    if (c.count(i)) continue;
                    double v = value();
                    if (v == 0.0) v = -6.0;
                    c[i] = v;
                    ind.push_back(i);
                    vals.push_back(v);
                }
            }
            bool g = names(cc, t1, p1, 'x');
            ASSERT_EQ(TRVaddcols(env, lp, cc, static_cast<int>(ind.size()), o.data(), beg.data(),
                                 ind.data(), vals.data(), l.data(), u.data(),
                                 g ? p1.data() : nullptr), 0);
            add_cols_ref(cc, o.data(), l.data(), u.data(), g ? &t1 : nullptr);
            for (int q = 0; q < cc; q++) {
                int e = q + 1 < cc ? beg[q + 1] : static_cast<int>(ind.size());
                for (int k = beg[q]; k < e; k++) r.col[n + q][ind[k]] = vals[k];
            }
            break;
        }
        case 4:
        case 5: { /* rows go: a range or a set */
            if (m == 0) break;
            std::vector<int> del(m, 0);
            if (op == 4) {
                int b = pick(m), e = b + pick(std::min(3, m - b));
                ASSERT_EQ(TRVdelrows(env, lp, b, e), 0);
                for (int i = b; i <= e; i++) del[i] = 1;
            } else {
                for (int i = 0; i < m; i++) del[i] = pick(4) == 0;
                std::vector<int> ds = del;
                ASSERT_EQ(TRVdelsetrows(env, lp, ds.data()), 0);
                int k = 0;
                for (int i = 0; i < m; i++) ASSERT_EQ(ds[i], del[i] ? -1 : k++);
            }
            Ref o = r;
            r.rhs.clear(), r.rng.clear(), r.sense.clear(), r.rname.clear();
            std::vector<int> map(m);
            int k = 0;
            for (int i = 0; i < m; i++) {
                map[i] = del[i] ? -1 : k++;
                if (del[i]) continue;
                r.rhs.push_back(o.rhs[i]), r.rng.push_back(o.rng[i]);
                r.sense.push_back(o.sense[i]), r.rname.push_back(o.rname[i]);
            }
            for (auto &c : r.col) {
                std::map<int, double> nc;
                for (auto &e : c)
                    if (map[e.first] >= 0) nc[map[e.first]] = e.second;
                c = nc;
            }
            break;
        }
        case 6:
        case 7: { /* columns go */
            if (n == 0) break;
            std::vector<int> del(n, 0);
            if (op == 6) {
                int b = pick(n), e = b + pick(std::min(3, n - b));
                ASSERT_EQ(TRVdelcols(env, lp, b, e), 0);
                for (int j = b; j <= e; j++) del[j] = 1;
            } else {
                for (int j = 0; j < n; j++) del[j] = pick(4) == 0;
                std::vector<int> ds = del;
                ASSERT_EQ(TRVdelsetcols(env, lp, ds.data()), 0);
            }
            Ref o = r;
            r.obj.clear(), r.lb.clear(), r.ub.clear(), r.cname.clear(), r.col.clear();
            for (int j = 0; j < n; j++) {
                if (del[j]) continue;
                r.obj.push_back(o.obj[j]), r.lb.push_back(o.lb[j]), r.ub.push_back(o.ub[j]);
                r.cname.push_back(o.cname[j]), r.col.push_back(o.col[j]);
            }
            break;
        }
        case 8: { /* one coefficient */
            if (n == 0 || m == 0) break;
            int i = pick(m + 1) - 1, j = pick(n + 2) - 2;
            if (i == -1 && j < 0) j = 0;
            double v = value();
            ASSERT_EQ(TRVchgcoef(env, lp, i, j, v), 0);
            if (i == -1)
                r.obj[j] = v;
            else if (j == -1)
                r.rhs[i] = v;
            else if (j == -2)
                r.rng[i] = v;
            else if (v == 0.0)
                r.col[j].erase(i);
            else
                r.col[j][i] = v;
            break;
        }
        case 9: { /* a list of coefficients, repeats allowed */
            if (n == 0 || m == 0) break;
            int k = 1 + pick(6);
            std::vector<int> ii(k), jj(k);
            std::vector<double> vv(k);
            for (int q = 0; q < k; q++) ii[q] = pick(m), jj[q] = pick(n), vv[q] = value();
            ASSERT_EQ(TRVchgcoeflist(env, lp, k, ii.data(), jj.data(), vv.data()), 0);
            for (int q = 0; q < k; q++) {
                if (vv[q] == 0.0)
                    r.col[jj[q]].erase(ii[q]);
                else
                    r.col[jj[q]][ii[q]] = vv[q];
            }
            break;
        }
        case 10: { /* bounds */
            if (n == 0) break;
            int k = 1 + pick(3);
            std::vector<int> ind(k);
            std::vector<char> lu(k);
            std::vector<double> bd(k);
            for (int q = 0; q < k; q++) ind[q] = pick(n), lu[q] = "LUB"[pick(3)], bd[q] = bound();
            ASSERT_EQ(TRVchgbds(env, lp, k, ind.data(), lu.data(), bd.data()), 0);
            for (int q = 0; q < k; q++) {
                double b = bd[q];
                if ((lu[q] != 'U' && b >= 1e20) || (lu[q] != 'L' && b <= -1e20)) continue;
                b = b >= 1e17 ? 1e20 : b <= -1e17 ? -1e20 : b;
                if (lu[q] != 'U') r.lb[ind[q]] = b;
                if (lu[q] != 'L') r.ub[ind[q]] = b;
            }
            break;
        }
        case 11:
        case 12:
        case 13: { /* objective, right-hand sides, ranges */
            int count = op == 11 ? n : m;
            if (count == 0) break;
            int k = 1 + pick(3);
            std::vector<int> ind(k);
            std::vector<double> v(k);
            for (int q = 0; q < k; q++) ind[q] = pick(count), v[q] = value();
            auto fn = op == 11 ? TRVchgobj : op == 12 ? TRVchgrhs : TRVchgrngval;
            ASSERT_EQ(fn(env, lp, k, ind.data(), v.data()), 0);
            auto &vec = op == 11 ? r.obj : op == 12 ? r.rhs : r.rng;
            for (int q = 0; q < k; q++) vec[ind[q]] = v[q];
            break;
        }
        case 14: { /* senses, to and from ranged */
            if (m == 0) break;
            int k = 1 + pick(3);
            std::vector<int> ind(k);
            std::vector<char> sn(k);
            for (int q = 0; q < k; q++) ind[q] = pick(m), sn[q] = sense();
            ASSERT_EQ(TRVchgsense(env, lp, k, ind.data(), sn.data()), 0);
            for (int q = 0; q < k; q++) r.sense[ind[q]] = sn[q];
            break;
        }
        case 15:
            r.objsen = -r.objsen;
            ASSERT_EQ(TRVchgobjsen(env, lp, r.objsen), 0);
            break;
        case 16: { /* names */
            bool cols = pick(2) == 0;
            int count = cols ? n : m;
            if (count == 0) break;
            if (pick(2) == 0) {
                int ij = pick(count);
                std::string s = fresh(cols ? 'x' : 'r');
                ASSERT_EQ(TRVchgname(env, lp, cols ? 'c' : 'r', ij, s.c_str()), 0);
                (cols ? r.cname : r.rname)[ij] = s;
            } else {
                int k = 1 + pick(3);
                std::vector<int> ind(k);
                for (int q = 0; q < k; q++) ind[q] = pick(count);
                names(k, t1, p1, cols ? 'x' : 'r');
                auto fn = cols ? TRVchgcolname : TRVchgrowname;
                ASSERT_EQ(fn(env, lp, k, ind.data(), p1.data()), 0);
                for (int q = 0; q < k; q++) (cols ? r.cname : r.rname)[ind[q]] = t1[q];
            }
            break;
        }
        case 17: { /* bad input: refused, model unchanged */
            int bad[] = {n + pick(3)};
            double v = 1.0;
            char s = 'X', lu = 'Q';
            int zero = 0;
            switch (pick(5)) {
            case 0:
                ASSERT_EQ(TRVchgobj(env, lp, 1, bad, &v), 1201);
                break;
            case 1:
                if (m > 0) {
                    ASSERT_EQ(TRVchgsense(env, lp, 1, &zero, &s), 1215);
                }
                break;
            case 2:
                if (n > 0) {
                    ASSERT_EQ(TRVchgbds(env, lp, 1, &zero, &lu, &v), 1229);
                }
                break;
            case 3:
                ASSERT_EQ(TRVchgcoef(env, lp, m, 0, 1.0), 1200);
                break;
            default:
                ASSERT_EQ(TRVdelrows(env, lp, 0, m), 1200);
                break;
            }
            break;
        }
        default: { /* entries by triplets through the cache */
            if (n == 0 || m == 0) break;
            int k = 1 + pick(4);
            std::vector<int> ii(k), jj(k);
            std::vector<double> vv(k);
            for (int q = 0; q < k; q++) ii[q] = pick(m), jj[q] = pick(n), vv[q] = value();
            ASSERT_EQ(TRVEcacheNewNZsByNZ(env, lp, k, ii.data(), jj.data(), vv.data()), 0);
            for (int q = 0; q < k; q++) {
                if (vv[q] == 0.0)
                    r.col[jj[q]].erase(ii[q]);
                else
                    r.col[jj[q]][ii[q]] = vv[q];
            }
            break;
        }
        }
        /* counts never merge; a full comparison now and then lets
         * additions pile up in between */
        ASSERT_EQ(TRVgetnumcols(env, lp), r.ncols());
        ASSERT_EQ(TRVgetnumrows(env, lp), r.nrows());
        if (pick(3) == 0) expect_same(env, lp, r, "step " + std::to_string(s) + " op " + std::to_string(op));
    }
};

} // namespace

TEST(ChangeRandom, LibraryOwnedModelAgreesWithItsCopy) {
    for (unsigned seed : {1u, 2u, 3u, 4u}) {
        TestEnv t;
        Model m = small_model();
        TRVlp lp = m.copy_into(t.env);
        ASSERT_NE(lp, nullptr);
        Runner run{t.env, lp, ref_of(m), std::mt19937(1), 0, false};
        run.rng.seed(seed);
        run.owned = false;
        expect_same(t.env, lp, run.r, "start");
        for (int s = 0; s < 400 && !HasFatalFailure(); s++) run.step(s);
        expect_same(t.env, lp, run.r, "end");
    }
}

TEST(ChangeRandom, CallerOwnedModelAgreesWithItsCopy) {
    for (unsigned seed : {5u, 6u, 7u}) {
        TestEnv t;
        Model m = small_model();
        Owned o;
        TRVlp lp = o.load(t.env, m);
        ASSERT_NE(lp, nullptr) << t.err;
        Runner run{t.env, lp, ref_of(m), std::mt19937(1), 0, false};
        run.rng.seed(seed);
        run.owned = true;
        expect_same(t.env, lp, run.r, "start");
        for (int s = 0; s < 300 && !HasFatalFailure(); s++) run.step(s);
        expect_same(t.env, lp, run.r, "end");
        EXPECT_EQ(t.res, ""); /* the room was never short */
        TRVfreeprob(t.env, &lp);
    }
}
