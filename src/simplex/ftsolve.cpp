/*
 * ftsolve.cpp - the forward and backward solves with the LU
 * and its row etas, each with a dense sweep and a hyper-sparse
 * path driven by a heap of pivot positions.
 *
 * Scratch that must be zero between calls: sparse_work (row space), work2
 * (basis-position space), mark. Nothing is allocated here.
 */
#include <algorithm>
#include <cmath>
#include <cstring>

#include "simplex/core.h"

/* ---- sparse vectors ---------------------------------------------------------- */

int sv_alloc(sparse_vec *v, int dim) {
    v->nz = 0;
    v->dim = dim;
    v->idx = trv_alloc<int>(dim);
    v->val = trv_zalloc<double>(dim);
    if (v->idx == nullptr || v->val == nullptr) {
        sv_free(v);
        return 1001;
    }
    return 0;
}

void sv_free(sparse_vec *v) {
    trv_free(&v->idx);
    trv_free(&v->val);
    v->nz = 0;
}

void sv_clear(sparse_vec *v) {
    if (v->nz < 0) {
        std::memset(v->val, 0, v->dim * sizeof(double));
    } else {
        for (int k = 0; k < v->nz; k++) v->val[v->idx[k]] = 0.0;
    }
    v->nz = 0;
}

void sv_copy(sparse_vec *dst, const sparse_vec *src) {
    sv_clear(dst);
    for (int k = 0; k < src->nz; k++) {
        int i = src->idx[k];
        dst->val[i] = src->val[i];
        dst->idx[k] = i;
    }
    dst->nz = src->nz;
}

void sv_from_dense(sparse_vec *v) {
    int n = 0;
    for (int i = 0; i < v->dim; i++)
        if (v->val[i] != 0.0) v->idx[n++] = i;
    v->nz = n;
}

void lu_set_path(lu_record *lu, int path) { lu->solve_path = path; }

/* ---- heaps of positions ------------------------------------------------------ */

static inline void minheap_push(int *h, int &n, int key) {
    int i = n++;
    while (i > 0) {
        int p = (i - 1) >> 1;
        if (h[p] <= key) break;
        h[i] = h[p];
        i = p;
    }
    h[i] = key;
}

static inline int minheap_pop(int *h, int &n) {
    int top = h[0];
    int key = h[--n];
    int i = 0;
    for (;;) {
        int c = 2 * i + 1;
        if (c >= n) break;
        if (c + 1 < n && h[c + 1] < h[c]) c++;
        if (key <= h[c]) break;
        h[i] = h[c];
        i = c;
    }
    if (n > 0) h[i] = key;
    return top;
}

static inline void maxheap_push(int *h, int &n, int key) {
    int i = n++;
    while (i > 0) {
        int p = (i - 1) >> 1;
        if (h[p] >= key) break;
        h[i] = h[p];
        i = p;
    }
    h[i] = key;
}

static inline int maxheap_pop(int *h, int &n) {
    int top = h[0];
    int key = h[--n];
    int i = 0;
    for (;;) {
        int c = 2 * i + 1;
        if (c >= n) break;
        if (c + 1 < n && h[c + 1] > h[c]) c++;
        if (key >= h[c]) break;
        h[i] = h[c];
        i = c;
    }
    if (n > 0) h[i] = key;
    return top;
}

/* ---- forward solve ------------------------------------------------------------- */

/* L, D and the row etas on w (row space) with its list of nonzero rows
 * (marked in mark). Returns the new list length; tiny entries dropped. */
static int ftran_lower(lu_record *f, int nl) {
    const int m = f->m;
    double *w = f->sparse_work;
    int *mark = f->mark, *list = f->list;
    const int *srow = f->l_step_of_row, *lrow = f->l_row, *lb = f->l_beg, *li = f->l_idx;
    const double *lv = f->l_val, *pinv = f->pivot_inv;
    const int lfirst = f->l_first;
    int k0 = m, nk = nl;
    for (int q = 0; q < nl; q++) {
        int r = list[q], k = srow[r];
        if (k < lfirst)
            w[r] *= pinv[r];
        else if (k < k0)
            k0 = k;
    }
    bool hyper = f->solve_path == 2 ||
                 (f->solve_path == 0 && !f->heavy_fill && m > 50 * nl);
    int sweep_from = k0;
    if (hyper && k0 < m) {
        int *h = f->heap, hn = 0;
        for (int q = 0; q < nl; q++) {
            int k = srow[list[q]];
            if (k >= lfirst) minheap_push(h, hn, k);
        }
        sweep_from = m;
        while (hn > 0) {
            if (f->solve_path != 2 && m - h[0] <= 50 * hn) {
                sweep_from = h[0];
                break;
            }
            int k = minheap_pop(h, hn);
            int r = lrow[k];
            double v = w[r];
            if (v == 0.0) continue;
            for (int q = lb[k], e = lb[k + 1]; q < e; q++) {
                int i = li[q];
                if (!mark[i]) {
                    mark[i] = 1;
                    list[nk++] = i;
                    minheap_push(h, hn, srow[i]);
                }
                w[i] -= lv[q] * v;
            }
            w[r] = v * pinv[r];
        }
    }
    for (int k = sweep_from; k < m; k++) {
        int r = lrow[k];
        double v = w[r];
        if (v == 0.0) continue;
        for (int q = lb[k], e = lb[k + 1]; q < e; q++) {
            int i = li[q];
            if (!mark[i]) {
                mark[i] = 1;
                list[nk++] = i;
            }
            w[i] -= lv[q] * v;
        }
        w[r] = v * pinv[r];
    }
    /* the row etas, from the first that touches a nonzero */
    if (f->eta_count > 0) {
        int e0 = TRV_BIGINT;
        for (int q = 0; q < nk; q++) e0 = std::min(e0, f->first_eta_touching[list[q]]);
        const int *eb = f->eta_beg, *ei = f->eta_idx;
        const double *ev = f->eta_val;
        for (int e = e0; e < f->eta_count; e++) {
            double sum = 0.0;
            for (int q = eb[e]; q < eb[e + 1]; q++) sum += ev[q] * w[ei[q]];
            int r = f->eta_row[e];
            if (sum != 0.0 && !mark[r]) {
                mark[r] = 1;
                list[nk++] = r;
            }
            w[r] = sum;
        }
    }
    int n = 0;
    for (int q = 0; q < nk; q++) {
        int r = list[q];
        if (std::fabs(w[r]) <= LU_DROP) {
            w[r] = 0.0;
            mark[r] = 0;
        } else {
            list[n++] = r;
        }
    }
    return n;
}

/* The U solve: w (row space, list of nl marked rows) to out by basis
 * position. w and mark are left clear. Returns the count written to outi
 * (if outi is given). */
static int ftran_upper(lu_record *f, int nl, double *out, int *outi) {
    double *w = f->sparse_work;
    int *mark = f->mark, *list = f->list;
    const int *pr = f->perm_row, *pc = f->perm_col, *pos = f->pos_of_row;
    const int *cb = f->uc_beg, *cl = f->uc_len, *ci = f->uc_idx;
    const double *cv = f->uc_val;
    const int F = f->u_first_dense;
    int nout = 0;
    if (nl == 0) return 0;
    int top = -1;
    for (int q = 0; q < nl; q++) top = std::max(top, pos[list[q]]);
    /* rows below F need no U work: collected in low, handled at the end */
    int *low = f->list2, nlow = 0;
    bool hyper = f->solve_path == 2 || (f->solve_path == 0 && top > 30 * nl);
    int sweep_top = top;
    if (hyper) {
        int *h = f->heap, hn = 0;
        for (int q = 0; q < nl; q++) {
            int r = list[q];
            mark[r] = 2;
            maxheap_push(h, hn, pos[r]);
        }
        sweep_top = -1;
        while (hn > 0) {
            if (f->solve_path != 2 && h[0] <= 30 * hn) {
                sweep_top = h[0];
                /* rows left in the heap below F go to low */
                for (int q = 0; q < hn; q++)
                    if (h[q] < F) low[nlow++] = pr[h[q]];
                break;
            }
            int p = maxheap_pop(h, hn);
            int r = pr[p];
            double v = w[r];
            w[r] = 0.0;
            mark[r] = 0;
            if (v == 0.0) continue;
            int c = pc[p];
            out[c] = v;
            if (outi) outi[nout++] = c;
            for (int q = cb[c], e = q + cl[c]; q < e; q++) {
                int i = ci[q];
                if (!mark[i]) {
                    mark[i] = 2;
                    maxheap_push(h, hn, pos[i]);
                }
                w[i] -= cv[q] * v;
            }
        }
    } else {
        for (int q = 0; q < nl; q++) {
            int r = list[q];
            mark[r] = 2;
            if (pos[r] < F) low[nlow++] = r;
        }
    }
    for (int p = sweep_top; p >= F; p--) {
        int r = pr[p];
        if (r < 0) continue;
        mark[r] = 0;
        double v = w[r];
        if (v == 0.0) continue;
        w[r] = 0.0;
        int c = pc[p];
        out[c] = v;
        if (outi) outi[nout++] = c;
        for (int q = cb[c], e = q + cl[c]; q < e; q++) {
            int i = ci[q];
            if (!mark[i]) {
                mark[i] = 2;
                if (pos[i] < F) low[nlow++] = i;
            }
            w[i] -= cv[q] * v;
        }
    }
    for (int q = 0; q < nlow; q++) {
        int r = low[q];
        mark[r] = 0;
        double v = w[r];
        if (v == 0.0) continue;
        w[r] = 0.0;
        int c = pc[pos[r]];
        out[c] = v;
        if (outi) outi[nout++] = c;
    }
    return nout;
}

/* Loads a sparse right-hand side into w and the list; the source is
 * cleared. Returns the list length. */
static int load_rows(lu_record *f, double *val, const int *idx, int nz) {
    double *w = f->sparse_work;
    int *mark = f->mark, *list = f->list;
    int nl = 0;
    if (nz < 0) {
        for (int i = 0; i < f->m; i++)
            if (val[i] != 0.0) {
                w[i] = val[i];
                val[i] = 0.0;
                mark[i] = 1;
                list[nl++] = i;
            }
    } else {
        for (int k = 0; k < nz; k++) {
            int i = idx[k];
            double v = val[i];
            val[i] = 0.0;
            if (v == 0.0 || mark[i]) continue;
            w[i] = v;
            mark[i] = 1;
            list[nl++] = i;
        }
    }
    return nl;
}

static void store_spike(lu_record *f, int nl) {
    const double *w = f->sparse_work;
    for (int q = 0; q < nl; q++) {
        int r = f->list[q];
        f->spike_idx[q] = r;
        f->spike_val[q] = w[r];
    }
    f->spike_nz = nl;
}

static void ftran(lu_record *f, sparse_vec *result, sparse_vec *rhs, bool spike) {
    int nl = load_rows(f, rhs->val, rhs->idx, rhs->nz);
    rhs->nz = 0;
    if (result != rhs) sv_clear(result);
    nl = ftran_lower(f, nl);
    if (spike) store_spike(f, nl);
    result->nz = ftran_upper(f, nl, result->val, result->idx);
}

void lu_ftran(lu_record *lu, sparse_vec *result, sparse_vec *rhs) {
    ftran(lu, result, rhs, true);
}

void lu_ftran_nospike(lu_record *lu, sparse_vec *result, sparse_vec *rhs) {
    ftran(lu, result, rhs, false);
}

void lu_ftran_dense(lu_record *lu, double *array) {
    int nl = load_rows(lu, array, nullptr, -1);
    nl = ftran_lower(lu, nl);
    ftran_upper(lu, nl, array, nullptr);
}

/* ---- backward solve -------------------------------------------------------------- */

/* U^-T: c (basis-position space, in work2, list of nc positions) to w (row
 * space). work2 and mark are left clear. Returns the row list length; the
 * rows are in list (unmarked). */
static int btran_upper(lu_record *f, int nc) {
    double *c = f->work2, *w = f->sparse_work;
    int *mark = f->mark, *list = f->list, *cl = f->list2;
    const int *pr = f->perm_row, *pc = f->perm_col, *posc = f->pos_of_col;
    const int *rb = f->ur_beg, *rl = f->ur_len, *ri = f->ur_idx;
    const double *rv = f->ur_val;
    const int np = f->npos;
    int nr = 0;
    if (nc == 0) return 0;
    int low = np;
    for (int q = 0; q < nc; q++) low = std::min(low, posc[cl[q]]);
    bool hyper = f->solve_path == 2 || (f->solve_path == 0 && f->m > 10 * nc);
    int sweep_from = low;
    if (hyper) {
        int *h = f->heap, hn = 0;
        for (int q = 0; q < nc; q++) {
            mark[cl[q]] = 1;
            minheap_push(h, hn, posc[cl[q]]);
        }
        sweep_from = np;
        while (hn > 0) {
            if (f->solve_path != 2 && np - h[0] <= 30 * hn) {
                sweep_from = h[0];
                break;
            }
            int p = minheap_pop(h, hn);
            int j = pc[p];
            double v = c[j];
            c[j] = 0.0;
            mark[j] = 0;
            if (std::fabs(v) <= LU_DROP) continue;
            int r = pr[p];
            w[r] = v;
            list[nr++] = r;
            for (int q = rb[r], e = q + rl[r]; q < e; q++) {
                int k = ri[q];
                if (!mark[k]) {
                    mark[k] = 1;
                    minheap_push(h, hn, posc[k]);
                }
                c[k] -= rv[q] * v;
            }
        }
    }
    for (int p = sweep_from; p < np; p++) {
        int j = pc[p];
        if (j < 0) continue;
        mark[j] = 0;
        double v = c[j];
        if (v == 0.0) continue;
        c[j] = 0.0;
        if (std::fabs(v) <= LU_DROP) continue;
        int r = pr[p];
        w[r] = v;
        list[nr++] = r;
        for (int q = rb[r], e = q + rl[r]; q < e; q++) c[ri[q]] -= rv[q] * v;
    }
    return nr;
}

/* Row etas transposed in reverse, D, L^-T on w with the marked list. */
static int btran_lower(lu_record *f, int nr) {
    const int m = f->m;
    double *w = f->sparse_work;
    int *mark = f->mark, *list = f->list;
    for (int q = 0; q < nr; q++) mark[list[q]] = 1;
    const int *erow = f->eta_row, *eb = f->eta_beg, *ei = f->eta_idx;
    const double *ev = f->eta_val;
    for (int e = f->eta_count - 1; e >= 0; e--) {
        int r = erow[e];
        double t = w[r];
        if (t == 0.0) continue;
        w[r] = 0.0;
        for (int q = eb[e], end = eb[e + 1]; q < end; q++) {
            int i = ei[q];
            if (!mark[i]) {
                mark[i] = 1;
                list[nr++] = i;
            }
            w[i] += ev[q] * t;
        }
    }
    const double *pinv = f->pivot_inv;
    for (int q = 0; q < nr; q++) w[list[q]] *= pinv[list[q]];
    const int *srow = f->l_step_of_row, *lrow = f->l_row;
    const int lfirst = f->l_first;
    bool rowwise = f->lr_idx != nullptr && !f->heavy_fill &&
                   (f->solve_path == 2 || (f->solve_path == 0 && m > 30 * nr));
    if (rowwise) {
        int *h = f->heap, hn = 0;
        for (int q = 0; q < nr; q++) {
            int k = srow[list[q]];
            if (k > lfirst) maxheap_push(h, hn, k);
        }
        const int *lb = f->lr_beg, *ll = f->lr_len, *li = f->lr_idx;
        const double *lv = f->lr_val;
        int sweep_from = -1;
        while (hn > 0) {
            if (f->solve_path != 2 && 30 * hn >= h[0]) {
                sweep_from = h[0];
                break;
            }
            int k = maxheap_pop(h, hn);
            int i = lrow[k];
            double v = w[i];
            if (v == 0.0) continue;
            if (std::fabs(v) <= LU_DROP) {
                w[i] = 0.0;
                continue;
            }
            for (int q = lb[i], e = q + ll[i]; q < e; q++) {
                int r = li[q];
                if (!mark[r]) {
                    mark[r] = 1;
                    list[nr++] = r;
                    maxheap_push(h, hn, srow[r]);
                }
                w[r] -= lv[q] * v;
            }
        }
        for (int k = sweep_from; k > lfirst; k--) {
            int i = lrow[k];
            double v = w[i];
            if (v == 0.0) continue;
            if (std::fabs(v) <= LU_DROP) {
                w[i] = 0.0;
                continue;
            }
            for (int q = lb[i], e = q + ll[i]; q < e; q++) {
                int r = li[q];
                if (!mark[r]) {
                    mark[r] = 1;
                    list[nr++] = r;
                }
                w[r] -= lv[q] * v;
            }
        }
    } else {
        const int *lb = f->l_beg, *li = f->l_idx;
        const double *lv = f->l_val;
        for (int k = f->l_nsteps - 1; k >= lfirst; k--) {
            int b = lb[k], e = lb[k + 1];
            if (b == e) continue;
            int r = lrow[k];
            double sum = w[r];
            for (int q = b; q < e; q++) sum -= lv[q] * w[li[q]];
            if (sum != w[r]) {
                if (!mark[r]) {
                    mark[r] = 1;
                    list[nr++] = r;
                }
                w[r] = sum;
            }
        }
    }
    return nr;
}

/* Moves w with its list to a row-space result, dropping tiny values. */
static int gather_rows(lu_record *f, int nr, double *out, int *outi) {
    double *w = f->sparse_work;
    int *mark = f->mark, *list = f->list;
    int n = 0;
    for (int q = 0; q < nr; q++) {
        int r = list[q];
        mark[r] = 0;
        double v = w[r];
        w[r] = 0.0;
        if (std::fabs(v) <= LU_DROP) continue;
        out[r] = v;
        if (outi) outi[n++] = r;
    }
    return n;
}

static int load_positions(lu_record *f, double *val, const int *idx, int nz) {
    double *c = f->work2;
    int *cl = f->list2, *mark = f->mark;
    int n = 0;
    if (nz < 0) {
        for (int j = 0; j < f->m; j++)
            if (val[j] != 0.0) {
                c[j] = val[j];
                val[j] = 0.0;
                cl[n++] = j;
            }
    } else {
        for (int k = 0; k < nz; k++) {
            int j = idx[k];
            double v = val[j];
            val[j] = 0.0;
            if (v == 0.0 || mark[j]) continue;
            mark[j] = 1; /* duplicates */
            c[j] = v;
            cl[n++] = j;
        }
        for (int q = 0; q < n; q++) mark[cl[q]] = 0;
    }
    return n;
}

static void store_row_spike(lu_record *f, int nr, int p) {
    const double *w = f->sparse_work;
    for (int q = 0; q < nr; q++) {
        int r = f->list[q];
        f->rspike_idx[q] = r;
        f->rspike_val[q] = w[r];
    }
    f->row_nz = nr;
    f->rspike_pos = p;
}

void lu_btran(lu_record *lu, sparse_vec *result, sparse_vec *rhs) {
    int nc = load_positions(lu, rhs->val, rhs->idx, rhs->nz);
    rhs->nz = 0;
    if (result != rhs) sv_clear(result);
    int nr = btran_upper(lu, nc);
    nr = btran_lower(lu, nr);
    result->nz = gather_rows(lu, nr, result->val, result->idx);
}

void lu_btran_row(lu_record *lu, sparse_vec *result, int p) {
    sv_clear(result);
    lu->work2[p] = 1.0;
    lu->list2[0] = p;
    int nr = btran_upper(lu, 1);
    store_row_spike(lu, nr, p);
    nr = btran_lower(lu, nr);
    result->nz = gather_rows(lu, nr, result->val, result->idx);
}

void lu_btran_dense(lu_record *lu, double *array, double * /*work*/) {
    int nc = load_positions(lu, array, nullptr, -1);
    int nr = btran_upper(lu, nc);
    nr = btran_lower(lu, nr);
    gather_rows(lu, nr, array, nullptr);
}

/* The row spike of position p alone: U^-T e_p, kept for the update. */
void lu_row_spike(lu_record *lu, int p) {
    int kp = lu->pos_of_col[p];
    int rp = lu->perm_row[kp];
    if (lu->ur_len[rp] == 0) {
        lu->rspike_idx[0] = rp;
        lu->rspike_val[0] = 1.0;
        lu->row_nz = 1;
        lu->rspike_pos = p;
        return;
    }
    lu->work2[p] = 1.0;
    lu->list2[0] = p;
    int nr = btran_upper(lu, 1);
    store_row_spike(lu, nr, p);
    double *w = lu->sparse_work;
    for (int q = 0; q < nr; q++) w[lu->list[q]] = 0.0;
}

/* The spike of column j of the working LP alone (L, D and etas), kept for
 * the update. */
void lu_make_spike(lu_record *lu, const simplex_lp *s, int j) {
    double *w = lu->sparse_work;
    int *mark = lu->mark, *list = lu->list, nl = 0;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
        int i = s->row_idx[k];
        if (!mark[i]) {
            mark[i] = 1;
            list[nl++] = i;
        }
        w[i] += s->val[k];
    }
    nl = ftran_lower(lu, nl);
    store_spike(lu, nl);
    for (int q = 0; q < nl; q++) {
        w[list[q]] = 0.0;
        mark[list[q]] = 0;
    }
}
