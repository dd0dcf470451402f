/* Test helpers for the factorization: a working LP held in vectors, random
 * bases of several kinds, and residuals of the solves. */
#ifndef TRV_TEST_LU_SUPPORT_H
#define TRV_TEST_LU_SUPPORT_H

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "simplex/core.h"

/* A simplex_lp whose arrays live in vectors: columns only (the solves need
 * nothing else). */
struct VecLP {
    int m = 0;
    std::vector<int> beg, end, len, idx;
    std::vector<double> val;
    simplex_lp s{};

    explicit VecLP(int rows) : m(rows) {}
    int add(const std::vector<std::pair<int, double>> &entries) {
        beg.push_back(static_cast<int>(idx.size()));
        for (auto &e : entries) {
            idx.push_back(e.first);
            val.push_back(e.second);
        }
        end.push_back(static_cast<int>(idx.size()));
        len.push_back(static_cast<int>(entries.size()));
        return static_cast<int>(beg.size()) - 1;
    }
    simplex_lp *lp() {
        s = simplex_lp{};
        s.m = m;
        s.n = s.nstruct = s.ntotal = s.ncoltot = static_cast<int>(beg.size());
        s.col_beg = beg.data();
        s.col_end = end.data();
        s.col_len = len.data();
        s.row_idx = idx.data();
        s.val = val.data();
        s.nz_matrix = static_cast<int>(idx.size());
        s.fill_row = s.fill_col = 3.0;
        return &s;
    }
    int ncols() const { return static_cast<int>(beg.size()); }
};

/* y = B x for basis head (x by position, y by row). */
inline std::vector<double> times_b(VecLP &L, const std::vector<int> &head,
                                   const std::vector<double> &x) {
    std::vector<double> y(L.m, 0.0);
    for (size_t c = 0; c < head.size(); c++)
        for (int k = L.beg[head[c]]; k < L.end[head[c]]; k++) y[L.idx[k]] += L.val[k] * x[c];
    return y;
}

/* z = y^T B (y by row, z by position). */
inline std::vector<double> times_bt(VecLP &L, const std::vector<int> &head,
                                    const std::vector<double> &y) {
    std::vector<double> z(head.size(), 0.0);
    for (size_t c = 0; c < head.size(); c++)
        for (int k = L.beg[head[c]]; k < L.end[head[c]]; k++) z[c] += L.val[k] * y[L.idx[k]];
    return z;
}

inline double norm_inf(const std::vector<double> &v) {
    double t = 0.0;
    for (double a : v) t = std::max(t, std::fabs(a));
    return t;
}

/* Largest absolute row sum of B. */
inline double norm_b(VecLP &L, const std::vector<int> &head) {
    std::vector<double> r(L.m, 0.0);
    for (int j : head)
        for (int k = L.beg[j]; k < L.end[j]; k++) r[L.idx[k]] += std::fabs(L.val[k]);
    return norm_inf(r);
}

/* Relative residual of B x = b: |Bx - b| / (|B| |x| + |b|). */
inline double ftran_residual(VecLP &L, const std::vector<int> &head,
                             const std::vector<double> &x, const std::vector<double> &b) {
    auto bx = times_b(L, head, x);
    for (int i = 0; i < L.m; i++) bx[i] -= b[i];
    return norm_inf(bx) / (norm_b(L, head) * norm_inf(x) + norm_inf(b) + 1e-300);
}

inline double btran_residual(VecLP &L, const std::vector<int> &head,
                             const std::vector<double> &y, const std::vector<double> &c) {
    auto yb = times_bt(L, head, y);
    double nb = 0.0; /* largest column sum */
    for (int j : head) {
        double t = 0.0;
        for (int k = L.beg[j]; k < L.end[j]; k++) t += std::fabs(L.val[k]);
        nb = std::max(nb, t);
    }
    for (size_t k = 0; k < c.size(); k++) yb[k] -= c[k];
    return norm_inf(yb) / (nb * norm_inf(y) + norm_inf(c) + 1e-300);
}

/* A sparse vector with the given dense values. */
struct SVec {
    sparse_vec v{};
    explicit SVec(int dim) { sv_alloc(&v, dim); }
    ~SVec() { sv_free(&v); }
    SVec(const SVec &) = delete;
    SVec &operator=(const SVec &) = delete;
    void set(const std::vector<double> &d) {
        sv_clear(&v);
        for (size_t i = 0; i < d.size(); i++) v.val[i] = d[i];
        sv_from_dense(&v);
    }
    std::vector<double> dense() const { return std::vector<double>(v.val, v.val + v.dim); }
    /* the list and the dense array agree */
    bool consistent() const {
        if (v.nz < 0) return true;
        std::vector<char> in(v.dim, 0);
        for (int k = 0; k < v.nz; k++) {
            if (in[v.idx[k]]) return false;
            in[v.idx[k]] = 1;
        }
        for (int i = 0; i < v.dim; i++)
            if (!in[i] && v.val[i] != 0.0) return false;
        return true;
    }
};

enum BasisKind { WELL, BAD, SINGLETON, DENSECORE };

/* A model of m rows with m basic columns (returned in head) and extra
 * columns to enter by updates. */
inline std::vector<int> make_basis(VecLP &L, BasisKind kind, std::mt19937 &rng, int extra) {
    int m = L.m;
    std::uniform_real_distribution<double> U(0.0, 1.0);
    std::uniform_int_distribution<int> R(0, m - 1);
    std::vector<int> perm(m);
    for (int i = 0; i < m; i++) perm[i] = i;
    std::shuffle(perm.begin(), perm.end(), rng);
    std::vector<double> rs(m, 1.0), cs(m + extra, 1.0);
    if (kind == BAD) {
        for (auto &a : rs) a = std::pow(10.0, 6.0 * U(rng) - 3.0);
        for (auto &a : cs) a = std::pow(10.0, 6.0 * U(rng) - 3.0);
    }
    auto value = [&](void) { return (U(rng) < 0.5 ? -1.0 : 1.0) * (0.5 + 1.5 * U(rng)); };
    std::vector<int> head;
    int core = kind == DENSECORE ? std::min(m, 60) : 0;
    for (int c = 0; c < m + extra; c++) {
        std::vector<std::pair<int, double>> e;
        std::vector<char> used(m, 0);
        auto put = [&](int i, double v) {
            if (used[i]) return;
            used[i] = 1;
            e.push_back({i, v * rs[i] * cs[c]});
        };
        int diag = perm[c % m];
        if (kind == SINGLETON && c < m) {
            /* slacks, a lower triangle and a small coupled block */
            if (c < m / 3) {
                put(diag, 1.0);
            } else if (c < (2 * m) / 3) {
                put(diag, 3.0 * value());
                for (int k = 0; k < 2; k++) put(perm[c / 2 + R(rng) % (m / 3 + 1)], value());
            } else {
                put(diag, 4.0 + U(rng));
                for (int k = 0; k < 3; k++) put(perm[(2 * m) / 3 + R(rng) % (m - (2 * m) / 3)], value());
            }
        } else if (c < core) {
            for (int i = 0; i < core; i++) put(perm[i], value());
        } else {
            put(diag, (c < m ? 4.0 : 1.0) * value());
            int k = 1 + R(rng) % 4;
            for (int q = 0; q < k; q++) put(R(rng), value());
        }
        int j = L.add(e);
        if (c < m) head.push_back(j);
    }
    return head;
}

#endif
