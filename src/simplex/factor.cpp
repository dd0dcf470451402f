/*
 * factor.cpp - the basis factorization: a right-looking
 * Markowitz LU with threshold pivoting, preceded by the column- and
 * row-singleton passes and followed by a dense tail when the active
 * submatrix has become dense.
 *
 * The active submatrix lives in two files: the row file holds (column,
 * value) pairs row by row with the entry of largest magnitude first; the
 * column file holds row indices only. Each row and column has a slot with
 * room; a slot that is full moves to the top of its file; a full file is
 * compressed and, if that does not win enough, grows.
 *
 * During the elimination L is written by steps and U by steps (the pivot
 * rows, scaled by the pivot's reciprocal); at the end the solve structures
 * of the update are built from them.
 */
#include <algorithm>
#include <cmath>
#include <cstring>

#include "simplex/core.h"

/* ---- allocation ------------------------------------------------------------ */

template <class T> static int arr_ensure(T **p, int64_t n) {
    if (n < 1) n = 1;
    void *q = *p == nullptr ? trv_malloc(static_cast<size_t>(n) * sizeof(T))
                            : trv_realloc(*p, static_cast<size_t>(n) * sizeof(T));
    if (q == nullptr) return 1001;
    *p = static_cast<T *>(q);
    return 0;
}

template <class T> static int arr_fresh(T **p, int64_t n) {
    trv_free(p);
    *p = static_cast<T *>(trv_malloc(static_cast<size_t>(n < 1 ? 1 : n) * sizeof(T)));
    return *p == nullptr ? 1001 : 0;
}

/* Releases the big arrays after an out-of-memory failure: U, L, the files,
 * the etas; their capacities go to zero so the next attempt reallocates. */
static void lu_release_big(lu_record *f) {
    trv_free(&f->l_idx);
    trv_free(&f->l_val);
    f->l_cap = 0;
    trv_free(&f->lr_idx);
    trv_free(&f->lr_val);
    f->lr_cap = 0;
    trv_free(&f->uc_idx);
    trv_free(&f->uc_val);
    f->uc_cap = f->uc_top = 0;
    trv_free(&f->ur_idx);
    trv_free(&f->ur_val);
    f->u_row_cap = f->u_row_top = f->u_row_soft_cap = 0;
    trv_free(&f->us_idx);
    trv_free(&f->us_val);
    f->us_cap = 0;
    trv_free(&f->rf_idx);
    trv_free(&f->rf_val);
    f->rf_cap = f->rf_top = 0;
    trv_free(&f->cf_idx);
    f->cf_cap = f->cf_top = 0;
    trv_free(&f->eta_idx);
    trv_free(&f->eta_val);
    f->eta_cap = 0;
    trv_free(&f->dense);
    f->dense_cap = 0;
    f->valid = 0;
}

void lu_free_record(lu_record **lup) {
    lu_record *f = *lup;
    if (f == nullptr) return;
    lu_release_big(f);
    int **ints[] = {&f->l_row, &f->l_step_of_row, &f->l_beg, &f->lr_beg, &f->lr_len,
                    &f->perm_row, &f->perm_col, &f->pos_of_row, &f->pos_of_col,
                    &f->uc_beg, &f->uc_len, &f->uc_room, &f->ur_beg, &f->ur_len,
                    &f->ur_room, &f->eta_row, &f->eta_beg, &f->first_eta_touching,
                    &f->spike_idx, &f->rspike_idx, &f->mark, &f->list, &f->list2,
                    &f->heap, &f->rowmap, &f->colmap, &f->rf_beg, &f->rf_len,
                    &f->rf_room, &f->rf_act, &f->cf_beg, &f->cf_len, &f->cf_room, &f->rc_next,
                    &f->rc_prev, &f->rc_key, &f->cc_next, &f->cc_prev, &f->cc_key,
                    &f->rc_head, &f->cc_head, &f->stamp, &f->seen, &f->sortbuf,
                    &f->us_beg};
    for (int **p : ints) trv_free(p);
    double **dbls[] = {&f->pivot_inv, &f->spike_val, &f->rspike_val, &f->sparse_work,
                       &f->work2, &f->wval};
    for (double **p : dbls) trv_free(p);
    trv_free(lup);
}

void lu_set_update_limit(lu_record *f, int p) {
    f->update_auto = p == 0;
    f->update_limit = p == 0 ? 10000 : p - 1;
}

/* Sizes the arrays that depend on m, on the column count and on the update
 * limit. Work arrays that must be zero between calls are zeroed here. */
static int lu_size(lu_record *f, int ncols) {
    int m = f->m;
    int w = std::max(m, ncols);
    int st = 0;
    if (f->mcap < m || f->l_row == nullptr) {
        int **ints[] = {&f->l_row, &f->l_step_of_row, &f->lr_beg, &f->lr_len,
                        &f->pos_of_row, &f->ur_beg, &f->ur_len, &f->ur_room,
                        &f->first_eta_touching, &f->spike_idx, &f->rspike_idx,
                        &f->rowmap, &f->rf_beg, &f->rf_len, &f->rf_room, &f->rf_act, &f->rc_next,
                        &f->rc_prev, &f->rc_key};
        for (int **p : ints) st = st ? st : arr_fresh(p, m);
        st = st ? st : arr_fresh(&f->l_beg, m + 1);
        st = st ? st : arr_fresh(&f->us_beg, m + 1);
        st = st ? st : arr_fresh(&f->rc_head, m + 3);
        double **dbls[] = {&f->pivot_inv, &f->spike_val, &f->rspike_val};
        for (double **p : dbls) st = st ? st : arr_fresh(p, m);
        if (st == 0) {
            trv_free(&f->sparse_work);
            f->sparse_work = trv_zalloc<double>(m);
            if (f->sparse_work == nullptr) st = 1001;
        }
        if (st != 0) return st;
        f->mcap = m;
    }
    if (f->wcap < w || f->colmap == nullptr) {
        int **ints[] = {&f->pos_of_col, &f->uc_beg, &f->uc_len, &f->uc_room,
                        &f->colmap, &f->cf_beg, &f->cf_len, &f->cf_room, &f->cc_next,
                        &f->cc_prev, &f->cc_key, &f->sortbuf};
        for (int **p : ints) st = st ? st : arr_fresh(p, w);
        st = st ? st : arr_fresh(&f->cc_head, w + 3);
        if (st == 0) {
            trv_free(&f->stamp);
            trv_free(&f->seen);
            trv_free(&f->work2);
            trv_free(&f->wval);
            f->stamp = trv_zalloc<int>(w);
            f->seen = trv_zalloc<int>(w);
            f->work2 = trv_zalloc<double>(w);
            f->wval = trv_zalloc<double>(w);
            if (!f->stamp || !f->seen || !f->work2 || !f->wval) st = 1001;
            f->stamp_now = f->seen_now = 0;
        }
        if (st != 0) return st;
        f->wcap = w;
    }
    int pc = std::max(m + f->update_limit + 1, w);
    if (f->poscap < pc || f->perm_row == nullptr) {
        st = st ? st : arr_fresh(&f->perm_row, pc);
        st = st ? st : arr_fresh(&f->perm_col, pc);
        st = st ? st : arr_fresh(&f->list, pc);
        st = st ? st : arr_fresh(&f->list2, pc);
        st = st ? st : arr_fresh(&f->heap, pc);
        if (st == 0) {
            trv_free(&f->mark);
            f->mark = trv_zalloc<int>(pc);
            if (f->mark == nullptr) st = 1001;
        }
        if (st != 0) return st;
        f->poscap = pc;
    }
    int ne = f->update_limit + 1;
    if (f->eta_ncap < ne || f->eta_row == nullptr) {
        st = st ? st : arr_fresh(&f->eta_row, ne);
        st = st ? st : arr_fresh(&f->eta_beg, ne + 1);
        if (st != 0) return st;
        f->eta_ncap = ne;
    }
    return 0;
}

lu_record *lu_create(int m, int ncols, int update_param) {
    if (m < 0 || m >= 175000000 || double(m) + 2 >= 525000000.0) return nullptr;
    lu_record *f = trv_zalloc<lu_record>(1);
    if (f == nullptr) return nullptr;
    f->m = m;
    f->dense_frac = 0.6;
    f->order_flag = 1;
    f->avg_cost = 1e75;
    f->spike_nz = f->row_nz = -1;
    lu_set_update_limit(f, update_param);
    if (lu_size(f, ncols) != 0) lu_free_record(&f);
    return f;
}

int lu_alloc(TRVenv env, TRVlp lp) {
    if (lp->solver == nullptr) return 1001;
    int m = lp->solver->splp.m;
    int p = par_int(env, 1031);
    if (m >= 175000000 || double(m) + 2 >= 525000000.0) return 1001;
    lu_record *f = lp->factor;
    if (f != nullptr && f->m == m) {
        lu_set_update_limit(f, p);
        return lu_size(f, m);
    }
    lu_free_record(&lp->factor);
    lp->factor = lu_create(m, m, p);
    return lp->factor == nullptr ? 1001 : 0;
}

void lu_free(TRVlp lp) { lu_free_record(&lp->factor); }

/* ---- count lists ------------------------------------------------------------- */

static inline void cl_remove(int *head, int *next, int *prev, int *key, int x) {
    int k = key[x];
    if (k < 0) return;
    if (prev[x] >= 0)
        next[prev[x]] = next[x];
    else
        head[k] = next[x];
    if (next[x] >= 0) prev[next[x]] = prev[x];
    key[x] = -1;
}

static inline void cl_insert(int *head, int *next, int *prev, int *key, int x, int k) {
    next[x] = head[k];
    prev[x] = -1;
    if (head[k] >= 0) prev[head[k]] = x;
    head[k] = x;
    key[x] = k;
}

static inline void row_relink(lu_record *f, int r) {
    cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r);
    int k = f->rf_len[r];
    if (k > 0)
        cl_insert(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r,
                  k < f->list_max ? k : f->list_max);
}

static inline void col_relink(lu_record *f, int c) {
    cl_remove(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c);
    int k = f->cf_len[c];
    if (k > 0)
        cl_insert(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c,
                  k < f->list_max ? k : f->list_max);
}

/* ---- the files ----------------------------------------------------------------- */

struct slot_cmp {
    const int *beg;
    bool operator()(int a, int b) const { return beg[a] < beg[b]; }
};

/* Squeezes the gaps out of the row file; slots become tight. */
static void rf_compress(lu_record *f, int nrows) {
    int n = 0;
    for (int r = 0; r < nrows; r++)
        if (f->rf_room[r] > 0) f->sortbuf[n++] = r;
    std::sort(f->sortbuf, f->sortbuf + n, slot_cmp{f->rf_beg});
    int top = 0;
    for (int k = 0; k < n; k++) {
        int r = f->sortbuf[k], b = f->rf_beg[r], l = f->rf_len[r];
        if (b != top) {
            std::memmove(f->rf_idx + top, f->rf_idx + b, l * sizeof(int));
            std::memmove(f->rf_val + top, f->rf_val + b, l * sizeof(double));
        }
        f->rf_beg[r] = top;
        f->rf_room[r] = l;
        top += l;
    }
    f->rf_top = top;
}

static void cf_compress(lu_record *f, int ncols) {
    int n = 0;
    for (int c = 0; c < ncols; c++)
        if (f->cf_room[c] > 0) f->sortbuf[n++] = c;
    std::sort(f->sortbuf, f->sortbuf + n, slot_cmp{f->cf_beg});
    int top = 0;
    for (int k = 0; k < n; k++) {
        int c = f->sortbuf[k], b = f->cf_beg[c], l = f->cf_len[c];
        if (b != top) std::memmove(f->cf_idx + top, f->cf_idx + b, l * sizeof(int));
        f->cf_beg[c] = top;
        f->cf_room[c] = l;
        top += l;
    }
    f->cf_top = top;
}

/* New capacity of a file that is short by need entries after compression,
 * or 0 if the file may not grow that far. */
static int64_t file_newcap(int64_t cap, int64_t top, int64_t need) {
    int64_t shortfall = top + need - cap;
    int64_t nc = std::max<int64_t>(cap + std::max<int64_t>(shortfall, 0),
                                   static_cast<int64_t>(1.3 * double(cap)));
    if (nc < top + need) nc = top + need;
    if (nc > LU_MAXGROW) nc = LU_MAXGROW;
    return nc >= top + need ? nc : 0;
}

struct fac_ctx {
    lu_record *f;
    int nrows, ncols;
    double *fill_row, *fill_col;
    int growth_locked;
    const simplex_lp *s; /* the basis columns: head[c] of the working LP */
    const int *head;
};

/* Makes room for need entries at the top of the row file. */
static int rf_room_for(fac_ctx &x, int64_t need) {
    lu_record *f = x.f;
    if (f->rf_top + need <= f->rf_cap) return 0;
    rf_compress(f, x.nrows);
    int64_t freesp = f->rf_cap - f->rf_top;
    if (freesp >= need && freesp > 0.2 * f->rf_cap) return 0;
    int64_t nc = file_newcap(f->rf_cap, f->rf_top, need);
    if (nc == 0) return freesp >= need ? 0 : 1001;
    if (arr_ensure(&f->rf_idx, nc) || arr_ensure(&f->rf_val, nc))
        return freesp >= need ? 0 : 1001;
    if (!x.growth_locked) *x.fill_row *= double(nc) / double(f->rf_cap + 1);
    f->rf_cap = static_cast<int>(nc);
    return 0;
}

static int cf_room_for(fac_ctx &x, int64_t need) {
    lu_record *f = x.f;
    if (f->cf_top + need <= f->cf_cap) return 0;
    cf_compress(f, x.ncols);
    int64_t freesp = f->cf_cap - f->cf_top;
    if (freesp >= need && freesp > 0.2 * f->cf_cap) return 0;
    int64_t nc = file_newcap(f->cf_cap, f->cf_top, need);
    if (nc == 0) return freesp >= need ? 0 : 1001;
    if (arr_ensure(&f->cf_idx, nc)) return freesp >= need ? 0 : 1001;
    if (!x.growth_locked) *x.fill_col *= double(nc) / double(f->cf_cap + 1);
    f->cf_cap = static_cast<int>(nc);
    return 0;
}

/* Gives row r room for extra more entries, moving it to the top. */
static int rf_make_room(fac_ctx &x, int r, int extra) {
    lu_record *f = x.f;
    int len = f->rf_len[r];
    if (len + extra <= f->rf_room[r]) return 0;
    int need = len + extra;
    /* the last slot of the file grows in place */
    if (f->rf_beg[r] + f->rf_room[r] == f->rf_top && f->rf_beg[r] + need <= f->rf_cap) {
        f->rf_top = f->rf_beg[r] + need;
        f->rf_room[r] = need;
        return 0;
    }
    int room = need + 4 + need / 4;
    if (rf_room_for(x, room) != 0) {
        room = need;
        if (f->rf_top + room > f->rf_cap) return 1001;
    }
    if (len + extra <= f->rf_room[r]) return 0; /* compression made it tight? */
    int b = f->rf_beg[r], t = f->rf_top;
    std::memcpy(f->rf_idx + t, f->rf_idx + b, len * sizeof(int));
    std::memcpy(f->rf_val + t, f->rf_val + b, len * sizeof(double));
    f->rf_beg[r] = t;
    f->rf_room[r] = room;
    f->rf_top = t + room;
    return 0;
}

static int cf_append(fac_ctx &x, int c, int r) {
    lu_record *f = x.f;
    int len = f->cf_len[c];
    if (len >= f->cf_room[c]) {
        int need = len + 1;
        if (f->cf_beg[c] + f->cf_room[c] == f->cf_top && f->cf_beg[c] + need <= f->cf_cap) {
            f->cf_top = f->cf_beg[c] + need;
            f->cf_room[c] = need;
        } else {
            int room = need + 4 + need / 4;
            if (cf_room_for(x, room) != 0) {
                room = need;
                if (f->cf_top + room > f->cf_cap) return 1001;
            }
            int b = f->cf_beg[c], t = f->cf_top;
            std::memcpy(f->cf_idx + t, f->cf_idx + b, len * sizeof(int));
            f->cf_beg[c] = t;
            f->cf_room[c] = room;
            f->cf_top = t + room;
        }
    }
    f->cf_idx[f->cf_beg[c] + len] = r;
    f->cf_len[c] = len + 1;
    return 0;
}

static inline void cf_remove(lu_record *f, int c, int r) {
    int b = f->cf_beg[c], e = b + f->cf_len[c];
    for (int k = b; k < e; k++)
        if (f->cf_idx[k] == r) {
            f->cf_idx[k] = f->cf_idx[e - 1];
            f->cf_len[c]--;
            return;
        }
}

/* Moves the entry of largest magnitude to the front of row r; another entry
 * takes the first place only if it exceeds the first by the margin. */
static inline void rf_largest_first(lu_record *f, int r) {
    int b = f->rf_beg[r], e = b + f->rf_len[r];
    if (e - b < 2) return;
    double best = std::fabs(f->rf_val[b]) + 1e-10;
    int at = b;
    for (int k = b + 1; k < e; k++) {
        double a = std::fabs(f->rf_val[k]);
        if (a > best) best = a, at = k;
    }
    if (at != b) {
        std::swap(f->rf_idx[b], f->rf_idx[at]);
        std::swap(f->rf_val[b], f->rf_val[at]);
    }
}

/* L and U staging grow on demand. */
static int l_room(lu_record *f, int64_t need) {
    if (f->l_top + need <= f->l_cap) return 0;
    int64_t nc = std::max<int64_t>(f->l_top + need, static_cast<int64_t>(1.5 * f->l_cap) + 16);
    if (nc > LU_MAXFILE) nc = LU_MAXFILE;
    if (nc < f->l_top + need) return 1001;
    if (arr_ensure(&f->l_idx, nc) || arr_ensure(&f->l_val, nc)) return 1001;
    f->l_cap = static_cast<int>(nc);
    return 0;
}

static int us_room(lu_record *f, int64_t need) {
    if (f->us_top + need <= f->us_cap) return 0;
    int64_t nc = std::max<int64_t>(f->us_top + need, static_cast<int64_t>(1.5 * f->us_cap) + 16);
    if (nc > LU_MAXFILE) nc = LU_MAXFILE;
    if (nc < f->us_top + need) return 1001;
    if (arr_ensure(&f->us_idx, nc) || arr_ensure(&f->us_val, nc)) return 1001;
    f->us_cap = static_cast<int>(nc);
    return 0;
}

/* Value of entry (i, c) of the active matrix. */
static inline double rf_value(const lu_record *f, int i, int c) {
    int b = f->rf_beg[i], e = b + f->rf_len[i];
    for (int k = b; k < e; k++)
        if (f->rf_idx[k] == c) return f->rf_val[k];
    return 0.0;
}

/* ---- elimination --------------------------------------------------------------- */

/* Pivots on (r, c) as factor step `step`. */
static int do_pivot(fac_ctx &x, int r, int c, int step) {
    lu_record *f = x.f;
    int rb = f->rf_beg[r], rl = f->rf_len[r];
    double p = 0.0;
    for (int k = rb; k < rb + rl; k++)
        if (f->rf_idx[k] == c) {
            p = f->rf_val[k];
            break;
        }
    double pinv = 1.0 / p;
    f->rowmap[r] = c;
    f->colmap[c] = r;
    f->l_row[step] = r;
    f->pivot_inv[r] = pinv;
    cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r);
    cl_remove(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c);

    /* the pivot row to U, scattered into wval */
    if (us_room(f, rl)) return 1001;
    int stmp = ++f->stamp_now;
    f->us_beg[step] = f->us_top;
    int ut = f->us_top;
    for (int k = rb; k < rb + rl; k++) {
        int j = f->rf_idx[k];
        if (j == c) continue;
        double v = f->rf_val[k];
        f->us_idx[ut] = j;
        f->us_val[ut] = v * pinv;
        ut++;
        f->wval[j] = v;
        f->stamp[j] = stmp;
        cf_remove(f, j, r);
    }
    int ub = f->us_top, ue = ut;
    f->us_top = ut;
    int plen = ue - ub;
    f->nz_active -= rl;
    f->rf_len[r] = 0;
    f->rf_room[r] = 0;

    /* the pivot column to L, and the update of its rows */
    /* the rows of the pivot column, copied: the column file may move */
    int cl = f->cf_len[c];
    int *crows = f->heap;
    std::memcpy(crows, f->cf_idx + f->cf_beg[c], cl * sizeof(int));
    if (l_room(f, cl)) return 1001;
    f->l_beg[step] = f->l_top;
    for (int q = 0; q < cl; q++) {
        int i = crows[q];
        if (i == r) continue;
        int ib = f->rf_beg[i], il = f->rf_len[i];
        double a = 0.0;
        for (int k = ib; k < ib + il; k++)
            if (f->rf_idx[k] == c) {
                a = f->rf_val[k];
                f->rf_idx[k] = f->rf_idx[ib + il - 1];
                f->rf_val[k] = f->rf_val[ib + il - 1];
                il--;
                break;
            }
        f->nz_active--;
        double l = a * pinv;
        f->l_idx[f->l_top] = i;
        f->l_val[f->l_top] = l;
        f->l_top++;
        if (plen > 0) {
            int sn = ++f->seen_now;
            int matched = 0;
            for (int k = ib; k < ib + il; k++) {
                int j = f->rf_idx[k];
                if (f->stamp[j] != stmp) continue;
                f->seen[j] = sn;
                matched++;
                double v = f->rf_val[k] - l * f->wval[j];
                if (std::fabs(v) < LU_DROP) {
                    f->rf_idx[k] = f->rf_idx[ib + il - 1];
                    f->rf_val[k] = f->rf_val[ib + il - 1];
                    il--;
                    k--;
                    cf_remove(f, j, i);
                    f->nz_active--;
                } else {
                    f->rf_val[k] = v;
                }
            }
            f->rf_len[i] = il;
            int nfill = plen - matched;
            if (nfill > 0) {
                if (rf_make_room(x, i, nfill)) return 1001;
                ib = f->rf_beg[i];
                for (int k = ub; k < ue; k++) {
                    int j = f->us_idx[k];
                    if (f->seen[j] == sn) continue;
                    double v = -l * f->wval[j];
                    if (std::fabs(v) < LU_DROP) continue;
                    f->rf_idx[ib + il] = j;
                    f->rf_val[ib + il] = v;
                    il++;
                    f->rf_len[i] = il;
                    if (cf_append(x, j, i)) return 1001;
                    f->nz_active++;
                }
            }
        }
        f->rf_len[i] = il;
        rf_largest_first(f, i);
        row_relink(f, i);
    }
    f->cf_len[c] = 0;
    f->cf_room[c] = 0;
    f->l_beg[step + 1] = f->l_top;
    for (int k = ub; k < ue; k++) col_relink(f, f->us_idx[k]);
    return 0;
}

/* A row singleton (r, c) of value a: U gets no entry; the rows of column c
 * lose it by count only (rf_act), their entries staying in the file until
 * the pass ends. The singleton passes never change a value, so the
 * multipliers are those of basis column c. */
static int row_singleton_pivot(fac_ctx &x, int r, int c, double a, int step) {
    lu_record *f = x.f;
    double pinv = 1.0 / a;
    f->rowmap[r] = c;
    f->colmap[c] = r;
    f->l_row[step] = r;
    f->pivot_inv[r] = pinv;
    cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r);
    cl_remove(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c);
    f->us_beg[step] = f->us_top;
    f->nz_active -= f->rf_act[r];
    f->rf_len[r] = f->rf_act[r] = 0;
    f->rf_room[r] = 0;

    int cl = f->cf_len[c];
    if (l_room(f, cl)) return 1001;
    double *col = f->work2;
    int j = x.head[c];
    for (int k = x.s->col_beg[j]; k < x.s->col_end[j]; k++) col[x.s->row_idx[k]] = x.s->val[k];
    f->l_beg[step] = f->l_top;
    const int *rows = f->cf_idx + f->cf_beg[c];
    for (int q = 0; q < cl; q++) {
        int i = rows[q];
        if (i == r) continue;
        f->nz_active--;
        f->l_idx[f->l_top] = i;
        f->l_val[f->l_top] = col[i] * pinv;
        f->l_top++;
        int k = --f->rf_act[i];
        cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, i);
        if (k > 0)
            cl_insert(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, i,
                      k < f->list_max ? k : f->list_max);
    }
    for (int k = x.s->col_beg[j]; k < x.s->col_end[j]; k++) col[x.s->row_idx[k]] = 0.0;
    f->cf_len[c] = 0;
    f->cf_room[c] = 0;
    f->l_beg[step + 1] = f->l_top;
    return 0;
}

/* The row-singleton pass. A long row met by many singleton pivots is not
 * scanned once per pivot: rows shrink by count and are compacted, largest
 * entry first, once at the end. */
static int row_singleton_pass(fac_ctx &x, double t, int *step, int *count) {
    lu_record *f = x.f;
    for (int r = 0; r < x.nrows; r++) f->rf_act[r] = f->rf_len[r];
    bool rejected = false;
    int st = 0;
    while (f->rc_head[1] >= 0) {
        int r = f->rc_head[1];
        int b = f->rf_beg[r], e = b + f->rf_len[r], at = b;
        while (at < e && f->colmap[f->rf_idx[at]] >= 0) at++;
        if (at == e) { /* cannot happen: the count says one entry is left */
            st = 1256;
            break;
        }
        if (std::fabs(f->rf_val[at]) < t) {
            cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r);
            rejected = true;
            continue;
        }
        st = row_singleton_pivot(x, r, f->rf_idx[at], f->rf_val[at], *step);
        if (st) break;
        (*step)++;
        (*count)++;
    }
    for (int r = 0; r < x.nrows; r++) {
        if (f->rowmap[r] >= 0 || f->rf_act[r] == f->rf_len[r]) continue;
        int b = f->rf_beg[r], e = b + f->rf_len[r], o = b;
        for (int k = b; k < e; k++) {
            if (f->colmap[f->rf_idx[k]] >= 0) continue;
            f->rf_idx[o] = f->rf_idx[k];
            f->rf_val[o] = f->rf_val[k];
            o++;
        }
        f->rf_len[r] = o - b;
        rf_largest_first(f, r);
    }
    if (rejected && st == 0)
        for (int r = 0; r < x.nrows; r++)
            if (f->rowmap[r] < 0 && f->rc_key[r] < 0 && f->rf_len[r] > 0) row_relink(f, r);
    return st;
}

/* The column-singleton pass: singletons of magnitude at least t. Rejected
 * singletons stay for the Markowitz phase. */
static int singleton_pass(fac_ctx &x, double t, int *step, int *count) {
    lu_record *f = x.f;
    bool rejected = false;
    while (f->cc_head[1] >= 0) {
        int c = f->cc_head[1];
        int r = f->cf_idx[f->cf_beg[c]];
        if (std::fabs(rf_value(f, r, c)) < t) {
            /* parked out of the list; put back after the pass */
            cl_remove(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c);
            rejected = true;
            continue;
        }
        int st = do_pivot(x, r, c, *step);
        if (st) return st;
        (*step)++;
        (*count)++;
    }
    if (rejected)
        for (int c = 0; c < x.ncols; c++)
            if (f->colmap[c] < 0 && f->cc_key[c] < 0 && f->cf_len[c] > 0) col_relink(f, c);
    return 0;
}

/* The Markowitz pivot search. Returns 0 with (*pr, *pc) or 1256. */
static int pivot_search(lu_record *f, double u, double t, int *pr, int *pc) {
    for (int c = f->cc_head[1]; c >= 0;) {
        int nx = f->cc_next[c];
        int r = f->cf_idx[f->cf_beg[c]];
        if (std::fabs(rf_value(f, r, c)) >= t) {
            *pr = r, *pc = c;
            return 0;
        }
        cl_remove(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c);
        c = nx;
    }
    for (int r = f->rc_head[1]; r >= 0;) {
        int nx = f->rc_next[r];
        if (std::fabs(f->rf_val[f->rf_beg[r]]) >= t) {
            *pr = r, *pc = f->rf_idx[f->rf_beg[r]];
            return 0;
        }
        cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r);
        r = nx;
    }
    if (f->m < 2) return 1256;
    double best = 1e75, bestmag = 0.0;
    int lines = 0, br = -1, bc = -1;
    for (int k = 2; k <= f->list_max; k++) {
        for (int c = f->cc_head[k]; c >= 0;) {
            int nx = f->cc_next[c];
            int kk = f->cf_len[c];
            bool useful = false;
            for (int q = f->cf_beg[c], qe = q + kk; q < qe; q++) {
                int i = f->cf_idx[q];
                double a = std::fabs(rf_value(f, i, c));
                double first = std::fabs(f->rf_val[f->rf_beg[i]]);
                if (first * u > a) continue;
                double merit = double(f->rf_len[i] - 1) * double(kk - 1);
                if (merit > best || (merit == best && a <= bestmag)) {
                    useful = true;
                    continue;
                }
                if (a >= t) {
                    best = merit, bestmag = a, br = i, bc = c;
                    useful = true;
                }
            }
            if (!useful) cl_remove(f->cc_head, f->cc_next, f->cc_prev, f->cc_key, c);
            lines++;
            if (br >= 0 && best <= double(k - 1) * double(k - 1)) goto found;
            if (lines >= 2 && br >= 0) goto found;
            c = nx;
        }
        for (int r = f->rc_head[k]; r >= 0;) {
            int nx = f->rc_next[r];
            int kk = f->rf_len[r];
            int b = f->rf_beg[r];
            double thr = std::fabs(f->rf_val[b]) * u;
            bool useful = false;
            for (int q = b; q < b + kk; q++) {
                double a = std::fabs(f->rf_val[q]);
                if (a < thr) continue;
                int j = f->rf_idx[q];
                double merit = double(f->cf_len[j] - 1) * double(kk - 1);
                if (merit > best || (merit == best && a <= bestmag)) {
                    useful = true;
                    continue;
                }
                if (a >= t) {
                    best = merit, bestmag = a, br = r, bc = j;
                    useful = true;
                }
            }
            if (!useful) cl_remove(f->rc_head, f->rc_next, f->rc_prev, f->rc_key, r);
            lines++;
            if (br >= 0 && best <= double(k) * double(k - 1)) goto found;
            if (lines >= 2 && br >= 0) goto found;
            r = nx;
        }
    }
    if (br < 0) return 1256;
found:
    *pr = br, *pc = bc;
    return 0;
}

/* The dense tail on the remaining rows and columns. */
static int dense_tail(fac_ctx &x, double t, int *step) {
    lu_record *f = x.f;
    int *drow = f->list, *dcol = f->list2;
    int nr = 0, nc = 0;
    for (int r = 0; r < x.nrows; r++)
        if (f->rowmap[r] < 0 && f->rf_len[r] > 0) drow[nr++] = r;
    for (int c = 0; c < x.ncols; c++)
        if (f->colmap[c] < 0 && f->cf_len[c] > 0) dcol[nc++] = c;
    if (nr == 0 || nc == 0) return 0;
    int64_t size = int64_t(nr) * nc;
    if (size >= LU_MAXFILE) return 2000;
    if (f->dense_cap < size) {
        trv_free(&f->dense);
        f->dense_cap = 0;
        f->dense = static_cast<double *>(trv_malloc(size * sizeof(double)));
        if (f->dense == nullptr) return 2000;
        f->dense_cap = size;
    }
    double *A = f->dense;
    std::memset(A, 0, size * sizeof(double));
    int *cpos = f->sortbuf; /* column -> dense column */
    for (int jj = 0; jj < nc; jj++) cpos[dcol[jj]] = jj;
    for (int ii = 0; ii < nr; ii++) {
        int r = drow[ii];
        for (int k = f->rf_beg[r], e = k + f->rf_len[r]; k < e; k++)
            A[int64_t(ii) * nc + cpos[f->rf_idx[k]]] = f->rf_val[k];
        f->rf_len[r] = 0;
    }
    for (int jj = 0; jj < nc; jj++) f->cf_len[dcol[jj]] = 0;
    int s = 0;
    f->n_dense = 0;
    for (int ii = 0; ii < nr && s < nc; ii++) {
        double *Ai = A + int64_t(ii) * nc;
        int jm = -1;
        double amax = 0.0;
        for (int j = s; j < nc; j++)
            if (std::fabs(Ai[j]) > amax) amax = std::fabs(Ai[j]), jm = j;
        if (jm < 0 || amax < t) continue; /* the row stays unpivoted */
        if (jm != s) {
            for (int kk = ii; kk < nr; kk++)
                std::swap(A[int64_t(kk) * nc + jm], A[int64_t(kk) * nc + s]);
            std::swap(dcol[jm], dcol[s]);
        }
        int r = drow[ii], c = dcol[s];
        double pinv = 1.0 / Ai[s];
        f->rowmap[r] = c;
        f->colmap[c] = r;
        f->l_row[*step] = r;
        f->pivot_inv[r] = pinv;
        if (us_room(f, nc - s - 1) || l_room(f, nr - ii - 1)) return 1001;
        f->us_beg[*step] = f->us_top;
        for (int j = s + 1; j < nc; j++)
            if (Ai[j] != 0.0) {
                f->us_idx[f->us_top] = dcol[j];
                f->us_val[f->us_top] = Ai[j] * pinv;
                f->us_top++;
            }
        f->l_beg[*step] = f->l_top;
        for (int kk = ii + 1; kk < nr; kk++) {
            double *Ak = A + int64_t(kk) * nc;
            double a = Ak[s];
            if (std::fabs(a) < LU_DROP) continue;
            double l = a * pinv;
            f->l_idx[f->l_top] = drow[kk];
            f->l_val[f->l_top] = l;
            f->l_top++;
            for (int j = s + 1; j < nc; j++) Ak[j] -= l * Ai[j];
        }
        f->l_beg[*step + 1] = f->l_top;
        (*step)++;
        s++;
        f->n_dense++;
    }
    return 0;
}

/* ---- the solve structures ------------------------------------------------------- */

/* Builds U by columns and rows, L by rows, the positions. */
static int build_solve(lu_record *f) {
    int m = f->m;
    int64_t nzu = f->us_top, nzl = f->l_top;
    /* U by rows: the staging itself, its arrays handed over */
    std::swap(f->ur_idx, f->us_idx);
    std::swap(f->ur_val, f->us_val);
    std::swap(f->u_row_cap, f->us_cap);
    f->us_top = 0;
    f->l_nsteps = m;
    f->l_first = m;
    for (int k = 0; k < m; k++) {
        int r = f->l_row[k];
        f->l_step_of_row[r] = k;
        f->ur_beg[r] = f->us_beg[k];
        f->ur_len[r] = (k + 1 < m ? f->us_beg[k + 1] : static_cast<int>(nzu)) - f->us_beg[k];
        f->ur_room[r] = f->ur_len[r];
        if (f->l_first == m && f->l_beg[k + 1] > f->l_beg[k]) f->l_first = k;
        f->perm_row[k] = r;
        f->perm_col[k] = f->rowmap[r];
        f->pos_of_row[r] = k;
        f->pos_of_col[f->rowmap[r]] = k;
    }
    f->npos = m;
    f->u_row_top = static_cast<int>(nzu);
    /* room for the updates: a share of the fill and m */
    int64_t extra = std::min<int64_t>(nzu + 4 * int64_t(m) + 16, LU_MAXFILE - nzu);
    int64_t ucap = nzu + extra;
    if (f->u_row_cap < ucap) {
        if (arr_ensure(&f->ur_idx, ucap) || arr_ensure(&f->ur_val, ucap)) return 1001;
        f->u_row_cap = static_cast<int>(ucap);
    }
    f->u_row_soft_cap = f->u_row_cap;
    f->u_row_hard_cap = LU_MAXFILE;
    /* U by columns */
    if (f->uc_cap < ucap) {
        if (arr_ensure(&f->uc_idx, ucap) || arr_ensure(&f->uc_val, ucap)) return 1001;
        f->uc_cap = static_cast<int>(ucap);
    }
    for (int c = 0; c < m; c++) f->uc_len[c] = 0;
    for (int64_t k = 0; k < nzu; k++) f->uc_len[f->ur_idx[k]]++;
    int pos = 0;
    for (int c = 0; c < m; c++) {
        f->uc_beg[c] = pos;
        f->uc_room[c] = f->uc_len[c];
        pos += f->uc_len[c];
        f->uc_len[c] = 0;
    }
    f->uc_top = pos;
    for (int k = 0; k < m; k++) {
        int r = f->l_row[k];
        for (int q = f->ur_beg[r], e = q + f->ur_len[r]; q < e; q++) {
            int c = f->ur_idx[q];
            int at = f->uc_beg[c] + f->uc_len[c]++;
            f->uc_idx[at] = r;
            f->uc_val[at] = f->ur_val[q];
        }
    }
    f->u_first_dense = m;
    for (int k = 0; k < m; k++)
        if (f->uc_len[f->perm_col[k]] > 0) {
            f->u_first_dense = k;
            break;
        }
    /* L by rows, unless the fill is heavy */
    if (!f->heavy_fill) {
        if (f->lr_cap < nzl) {
            if (arr_ensure(&f->lr_idx, nzl) || arr_ensure(&f->lr_val, nzl)) return 1001;
            f->lr_cap = static_cast<int>(std::max<int64_t>(nzl, 1));
        }
        for (int r = 0; r < m; r++) f->lr_len[r] = 0;
        for (int64_t k = 0; k < nzl; k++) f->lr_len[f->l_idx[k]]++;
        pos = 0;
        for (int r = 0; r < m; r++) {
            f->lr_beg[r] = pos;
            pos += f->lr_len[r];
            f->lr_len[r] = 0;
        }
        for (int k = 0; k < m; k++) {
            int rk = f->l_row[k];
            for (int q = f->l_beg[k]; q < f->l_beg[k + 1]; q++) {
                int i = f->l_idx[q];
                int at = f->lr_beg[i] + f->lr_len[i]++;
                f->lr_idx[at] = rk;
                f->lr_val[at] = f->l_val[q];
            }
        }
    } else {
        trv_free(&f->lr_idx);
        trv_free(&f->lr_val);
        f->lr_cap = 0;
    }
    /* the update state */
    f->update_count = 0;
    f->eta_count = 0;
    if (f->eta_beg != nullptr) f->eta_beg[0] = 0;
    for (int r = 0; r < m; r++) f->first_eta_touching[r] = TRV_BIGINT;
    f->first_nontrivial = m;
    f->spike_nz = f->row_nz = -1;
    return 0;
}

/* ---- lu_factor ---------------------------------------------------------------- */

int lu_factor_on(lu_record *f, const simplex_lp *s, const int *head, int ncols,
                 int *rowmap, int *colmap, int mode, const char *rowsubset,
                 double u, double t, double *kappa_out, double *fill_col,
                 double *fill_row) {
    int m = f->m;
    f->valid = 0;
    f->spike_nz = f->row_nz = -1;
    if (ncols < 0) ncols = 0;
    if (lu_size(f, ncols) != 0) {
        lu_release_big(f);
        return 1001;
    }
    fac_ctx x{f, m, ncols, fill_row, fill_col, f->growth_locked, s, head};

    /* 1. the order of the singleton passes */
    if (f->update_count_prev > 0 && f->nz_lu > 0) {
        double g = double(f->nz_lu_now + m - f->nz_lu) / double(f->nz_lu) /
                   double(f->update_count_prev);
        if (f->order_flag == 1 && g < 7.5e-05)
            f->order_flag = 0;
        else if (f->order_flag == 0 && g >= 0.00015)
            f->order_flag = 1;
    }

    /* 2. counts */
    int64_t nzb = 0;
    for (int r = 0; r < m; r++) f->rf_len[r] = 0;
    for (int c = 0; c < ncols; c++) {
        int j = head[c], len = 0;
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
            int i = s->row_idx[k];
            if (rowsubset != nullptr && !rowsubset[i]) continue;
            f->rf_len[i]++;
            len++;
        }
        f->cf_len[c] = len;
        nzb += len;
    }
    f->nz_basis = f->nz_basis2 = nzb;

    /* 3. the row file */
    double want = double(nzb) * *fill_row + m;
    if (want > LU_MAXFILE) {
        lu_release_big(f);
        return 1001;
    }
    int64_t rcap = std::max<int64_t>(static_cast<int64_t>(want), nzb + m + 1);
    if (f->rf_cap < rcap || f->rf_idx == nullptr) {
        if (arr_ensure(&f->rf_idx, rcap) || arr_ensure(&f->rf_val, rcap)) {
            lu_release_big(f);
            return 1001;
        }
        f->rf_cap = static_cast<int>(rcap);
    }
    /* 4. load: one spare slot ahead of each row */
    int pos = 0;
    for (int r = 0; r < m; r++) {
        f->rf_beg[r] = pos;
        f->rf_room[r] = f->rf_len[r] + 1;
        pos += f->rf_room[r];
        f->rf_len[r] = 0;
        f->rowmap[r] = -1;
    }
    f->rf_top = pos;
    for (int c = 0; c < ncols; c++) {
        int j = head[c];
        f->colmap[c] = -1;
        for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
            int i = s->row_idx[k];
            if (rowsubset != nullptr && !rowsubset[i]) continue;
            int at = f->rf_beg[i] + f->rf_len[i]++;
            f->rf_idx[at] = c;
            f->rf_val[at] = s->val[k];
        }
    }
    for (int r = 0; r < m; r++) rf_largest_first(f, r);

    /* the column file (the estimate of step 7, made up front) */
    int mx = std::max(m, ncols);
    double cwant = double(nzb + 1) * *fill_col + mx + 5.0 * (mx + 1) + 1;
    if (cwant >= 174999999.0 || cwant >= double(LU_MAXFILE)) {
        lu_release_big(f);
        return 1001;
    }
    int64_t ccap = static_cast<int64_t>(cwant);
    if (f->cf_cap < ccap || f->cf_idx == nullptr) {
        if (arr_ensure(&f->cf_idx, ccap)) {
            lu_release_big(f);
            return 1001;
        }
        f->cf_cap = static_cast<int>(ccap);
    }
    pos = 0;
    for (int c = 0; c < ncols; c++) {
        f->cf_beg[c] = pos;
        f->cf_room[c] = f->cf_len[c] + 1;
        pos += f->cf_room[c];
        f->cf_len[c] = 0;
    }
    f->cf_top = pos;
    for (int r = 0; r < m; r++)
        for (int k = f->rf_beg[r], e = k + f->rf_len[r]; k < e; k++) {
            int c = f->rf_idx[k];
            f->cf_idx[f->cf_beg[c] + f->cf_len[c]++] = r;
        }
    f->nz_active = nzb;

    /* count lists */
    f->list_max = std::max(1, std::min(std::max(m, 1), 32767));
    for (int k = 0; k <= f->list_max + 1; k++) f->rc_head[k] = -1;
    for (int k = 0; k <= f->list_max + 1; k++) f->cc_head[k] = -1;
    for (int r = m - 1; r >= 0; r--) {
        f->rc_key[r] = -1;
        row_relink(f, r);
    }
    for (int c = ncols - 1; c >= 0; c--) {
        f->cc_key[c] = -1;
        col_relink(f, c);
    }

    f->l_top = 0;
    f->us_top = 0;
    if (l_room(f, std::max<int64_t>(nzb, m)) || us_room(f, std::max<int64_t>(nzb, m))) {
        lu_release_big(f);
        return 1001;
    }
    f->l_beg[0] = 0;
    int nrows_active = 0;
    for (int r = 0; r < m; r++)
        if (rowsubset == nullptr || rowsubset[r]) nrows_active++;
    int target = std::min(nrows_active, ncols);

    /* 5, 6. the singleton passes */
    int step = 0, st = 0;
    f->n_colsing = f->n_rowsing = f->n_dense = 0;
    if (f->order_flag == 1) {
        st = singleton_pass(x, t, &step, &f->n_colsing);
        if (!st) st = row_singleton_pass(x, t, &step, &f->n_rowsing);
    } else {
        st = row_singleton_pass(x, t, &step, &f->n_rowsing);
        if (!st) st = singleton_pass(x, t, &step, &f->n_colsing);
    }

    /* 8. the Markowitz phase, 9. the dense tail */
    int result = st;
    while (result == 0 && step < target) {
        double rem = nrows_active - step;
        if (rowsubset == nullptr && rem * rem * f->dense_frac + 1e-10 < double(f->nz_active)) {
            result = dense_tail(x, t, &step);
            break;
        }
        int pr, pc;
        result = pivot_search(f, u, t, &pr, &pc);
        if (result != 0) break;
        result = do_pivot(x, pr, pc, step);
        if (result == 0) step++;
    }
    if (result == 1001) {
        lu_release_big(f);
        return 1001;
    }
    if (rowmap != f->rowmap && m > 0) std::memcpy(rowmap, f->rowmap, m * sizeof(int));
    if (colmap != f->colmap && ncols > 0) std::memcpy(colmap, f->colmap, ncols * sizeof(int));
    if (result == 2000) return 2000;
    if (result == 0 && (step < m || step < ncols)) result = 1256;
    for (int r = 0; r < m; r++) f->rf_room[r] = 0;
    for (int c = 0; c < ncols; c++) f->cf_room[c] = 0;

    f->markowitz_used = u;
    /* pivot spread */
    double pmax = 0.0, pmin = 1e300;
    for (int k = 0; k < step; k++) {
        double a = std::fabs(f->pivot_inv[f->l_row[k]]);
        pmax = std::max(pmax, a);
        pmin = std::min(pmin, a);
    }
    double kappa = step > 0 ? pmax / pmin : 1.0;
    f->kappa = kappa;
    f->l_nsteps = step;

    if (result == 1256) {
        if (mode != 0 && rowsubset != nullptr) f->valid = 1;
        return 1256;
    }
    /* 10. the result */
    int64_t nzl = f->l_top, nzu = f->us_top;
    f->nz_lu = nzl + nzu + m;
    f->nz_lu_now = f->nz_lu - m;
    f->nz_sum = f->nz_lu;
    f->avg_cost = 1e75;
    f->heavy_fill = double(f->nz_lu - nzb) >= double(static_cast<int64_t>(0.3 * double(nzb)));
    if (mode == 0) {
        if (build_solve(f) != 0) {
            lu_release_big(f);
            return 1001;
        }
        f->valid = 1;
    }
    /* 11. the stability test */
    if (kappa_out != nullptr) {
        *kappa_out = kappa;
    } else if ((kappa >= 1e9 && u < 0.1) || (kappa >= 1e10 && u < 0.2) ||
               (kappa >= 1e11 && u < 0.3) || (kappa >= 1e12 && u < 0.5) ||
               (kappa >= 1e13 && u < 0.9999899999)) {
        f->valid = 0;
        return 2009;
    }
    return 0;
}

int lu_factor(TRVlp lp, const int *head, int ncols, int *rowmap, int *colmap, int mode,
              const char *rowsubset, double markowitz, double pivtol, double *kappa_out,
              double *fill_col, double *fill_row) {
    return lu_factor_on(lp->factor, &lp->solver->splp, head, ncols, rowmap, colmap, mode,
                        rowsubset, markowitz, pivtol, kappa_out, fill_col, fill_row);
}
