/*
 * baseupd.cpp - the Forrest-Tomlin update: the spike of the
 * entering column replaces a column of U, the leaving row is eliminated by
 * one row eta, and the pair (row, basis position) moves to a new last
 * position. Also the stability check before an update and the automatic
 * refactorization rule.
 */
#include <algorithm>
#include <cmath>
#include <cstring>

#include "simplex/core.h"

void lu_release_spikes(lu_record *lu) {
    lu->spike_nz = -1;
    lu->row_nz = -1;
}

template <class T> static int arr_grow(T **p, int64_t n) {
    size_t bytes = static_cast<size_t>(n < 1 ? 1 : n) * sizeof(T);
    void *q = *p == nullptr ? trv_malloc(bytes) : trv_realloc(*p, bytes);
    if (q == nullptr) return 1001;
    *p = static_cast<T *>(q);
    return 0;
}

struct slot_less {
    const int *beg;
    bool operator()(int a, int b) const { return beg[a] < beg[b]; }
};

/* Squeezes the U column file (slots become tight). */
static void uc_compress(lu_record *f) {
    int n = 0;
    for (int c = 0; c < f->m; c++)
        if (f->uc_room[c] > 0) f->sortbuf[n++] = c;
    std::sort(f->sortbuf, f->sortbuf + n, slot_less{f->uc_beg});
    int top = 0;
    for (int k = 0; k < n; k++) {
        int c = f->sortbuf[k], b = f->uc_beg[c], l = f->uc_len[c];
        if (b != top) {
            std::memmove(f->uc_idx + top, f->uc_idx + b, l * sizeof(int));
            std::memmove(f->uc_val + top, f->uc_val + b, l * sizeof(double));
        }
        f->uc_beg[c] = top;
        f->uc_room[c] = l;
        top += l;
    }
    f->uc_top = top;
}

static void ur_compress(lu_record *f) {
    int n = 0;
    for (int r = 0; r < f->m; r++)
        if (f->ur_room[r] > 0) f->sortbuf[n++] = r;
    std::sort(f->sortbuf, f->sortbuf + n, slot_less{f->ur_beg});
    int top = 0;
    for (int k = 0; k < n; k++) {
        int r = f->sortbuf[k], b = f->ur_beg[r], l = f->ur_len[r];
        if (b != top) {
            std::memmove(f->ur_idx + top, f->ur_idx + b, l * sizeof(int));
            std::memmove(f->ur_val + top, f->ur_val + b, l * sizeof(double));
        }
        f->ur_beg[r] = top;
        f->ur_room[r] = l;
        top += l;
    }
    f->u_row_top = top;
}

/* Scaled estimate of the room the rest of the cycle needs. */
static double cycle_need(const lu_record *f, double per_cycle) {
    double n = per_cycle / double(f->update_count + 1);
    if (f->update_auto)
        return f->update_count < 100 ? n * 100.0 : per_cycle;
    return n * double(f->update_limit);
}

/* Room in the eta file for `need` entries; 1 refuses. */
static int eta_ensure(lu_record *f, int need) {
    int used = f->eta_beg[f->eta_count];
    if (int64_t(used) + need <= f->eta_cap) return 0;
    int64_t want = int64_t(used) + need + 1;
    if (f->eta_hard_cap > 0 && want > f->eta_hard_cap) return 1;
    if (f->eta_count >= 4) {
        double est = cycle_need(f, 1.2 * used);
        if (est > double(want)) want = static_cast<int64_t>(std::min(est, double(LU_MAXFILE)));
    } else {
        want = std::max<int64_t>(want, 2 * int64_t(f->m) + 16);
    }
    if (want > LU_MAXFILE) want = LU_MAXFILE;
    if (want < int64_t(used) + need) return 1;
    if (arr_grow(&f->eta_idx, want) || arr_grow(&f->eta_val, want)) {
        f->eta_hard_cap = f->eta_cap;
        return 1;
    }
    f->eta_cap = static_cast<int>(want);
    return 0;
}

/* Room at the top of U's row file for `need` entries; 1 refuses. */
static int ur_ensure(lu_record *f, int64_t need) {
    int64_t t = int64_t(f->u_row_top) + need;
    if (t >= f->u_row_hard_cap) {
        ur_compress(f);
        t = int64_t(f->u_row_top) + need;
        if (t >= f->u_row_hard_cap) return 1;
    }
    if (t < f->u_row_soft_cap && t <= f->u_row_cap) return 0;
    ur_compress(f);
    t = int64_t(f->u_row_top) + need;
    if (t < f->u_row_soft_cap && t <= f->u_row_cap && t < 0.8 * f->u_row_cap) return 0;
    double grow = std::max(cycle_need(f, 1.2 * double(t - f->nz_lu + f->m)),
                           double(t) * 0.3 + need);
    int64_t cap = static_cast<int64_t>(std::min(double(t) + grow, double(LU_MAXFILE)));
    if (cap <= t) return t <= f->u_row_cap ? 0 : 1;
    if (arr_grow(&f->ur_idx, cap) || arr_grow(&f->ur_val, cap)) return t <= f->u_row_cap ? 0 : 1;
    f->u_row_cap = f->u_row_soft_cap = static_cast<int>(cap);
    return 0;
}

static int uc_ensure(lu_record *f, int need) {
    if (int64_t(f->uc_top) + need <= f->uc_cap) return 0;
    uc_compress(f);
    if (int64_t(f->uc_top) + need <= f->uc_cap && f->uc_top + need < 0.8 * f->uc_cap) return 0;
    int64_t cap = std::max<int64_t>(int64_t(1.1 * (double(f->uc_cap) + need)), f->uc_top + need + 1);
    if (cap > LU_MAXFILE) cap = LU_MAXFILE;
    if (cap < int64_t(f->uc_top) + need) return 1;
    if (arr_grow(&f->uc_idx, cap) || arr_grow(&f->uc_val, cap))
        return int64_t(f->uc_top) + need <= f->uc_cap ? 0 : 1;
    f->uc_cap = static_cast<int>(cap);
    return 0;
}

/* Appends (c, v) to U row r; room at the top has been ensured. */
static inline void ur_append(lu_record *f, int r, int c, double v) {
    int len = f->ur_len[r];
    if (len >= f->ur_room[r]) {
        int b = f->ur_beg[r], t = f->u_row_top;
        if (b + f->ur_room[r] == t) {
            f->u_row_top = t + 1;
            f->ur_room[r]++;
        } else {
            int room = len + 2 + len / 4;
            std::memcpy(f->ur_idx + t, f->ur_idx + b, len * sizeof(int));
            std::memcpy(f->ur_val + t, f->ur_val + b, len * sizeof(double));
            f->ur_beg[r] = t;
            f->ur_room[r] = room;
            f->u_row_top = t + room;
        }
    }
    int at = f->ur_beg[r] + len;
    f->ur_idx[at] = c;
    f->ur_val[at] = v;
    f->ur_len[r] = len + 1;
}

int lu_update_store(lu_record *f, int p, double /*alpha*/) {
    const int m = f->m;
    if (p < 0 || p >= m || !f->valid) return 1;
    if (f->spike_nz < 0) return 1;
    if (f->row_nz < 0 || f->rspike_pos != p) lu_row_spike(f, p);
    int old = f->update_count;
    f->update_count++;
    if (old >= f->update_limit) return 1;
    if (old >= 100 && f->update_capped) return 1;
    if (f->npos >= f->poscap) return 1;
    if (f->eta_count >= f->eta_ncap) return 1;
    int kp = f->pos_of_col[p];
    int rp = f->perm_row[kp];

    /* the new diagonal: row spike times spike */
    double *w = f->sparse_work;
    for (int q = 0; q < f->spike_nz; q++) w[f->spike_idx[q]] = f->spike_val[q];
    double piv = 0.0;
    for (int q = 0; q < f->row_nz; q++) piv += f->rspike_val[q] * w[f->rspike_idx[q]];
    for (int q = 0; q < f->spike_nz; q++) w[f->spike_idx[q]] = 0.0;
    if (std::fabs(piv) <= LU_DROP) return 1;

    /* room first, so that a refusal leaves the factor intact */
    if (eta_ensure(f, f->row_nz)) return 1;
    int64_t need = 0;
    for (int q = 0; q < f->spike_nz; q++) {
        int r = f->spike_idx[q];
        if (r != rp) need += f->ur_len[r] + 3 + f->ur_len[r] / 4;
    }
    if (ur_ensure(f, need)) return 1;
    if (uc_ensure(f, f->spike_nz)) return 1;

    int64_t oldrow = f->ur_len[rp], oldcol = f->uc_len[p];
    /* delete row rp from the columns, then column p from the rows */
    for (int q = f->ur_beg[rp], e = q + f->ur_len[rp]; q < e; q++) {
        int c = f->ur_idx[q];
        int b = f->uc_beg[c], l = f->uc_len[c];
        for (int k = b; k < b + l; k++)
            if (f->uc_idx[k] == rp) {
                f->uc_idx[k] = f->uc_idx[b + l - 1];
                f->uc_val[k] = f->uc_val[b + l - 1];
                f->uc_len[c] = l - 1;
                break;
            }
    }
    f->ur_len[rp] = 0;
    for (int q = f->uc_beg[p], e = q + f->uc_len[p]; q < e; q++) {
        int r = f->uc_idx[q];
        int b = f->ur_beg[r], l = f->ur_len[r];
        for (int k = b; k < b + l; k++)
            if (f->ur_idx[k] == p) {
                f->ur_idx[k] = f->ur_idx[b + l - 1];
                f->ur_val[k] = f->ur_val[b + l - 1];
                f->ur_len[r] = l - 1;
                break;
            }
    }
    f->uc_len[p] = 0;
    f->uc_room[p] = 0;

    /* the row eta */
    int e = f->eta_count;
    int eb = f->eta_beg[e];
    double pinv = 1.0 / piv;
    if (f->row_nz == 1 && f->rspike_idx[0] == rp && f->rspike_val[0] == 1.0 && piv == 1.0) {
        f->eta_idx[eb] = rp;
        f->eta_val[eb] = 1.0;
        eb++;
    } else {
        for (int q = 0; q < f->row_nz; q++) {
            int r = f->rspike_idx[q];
            f->eta_idx[eb] = r;
            f->eta_val[eb] = f->rspike_val[q] * pinv;
            eb++;
            if (f->first_eta_touching[r] > e) f->first_eta_touching[r] = e;
        }
    }
    if (f->first_eta_touching[rp] > e) f->first_eta_touching[rp] = e;
    f->eta_row[e] = rp;
    f->eta_beg[e + 1] = eb;
    f->eta_count = e + 1;

    /* the spike becomes column p */
    int t = f->uc_top;
    f->uc_beg[p] = t;
    int len = 0;
    for (int q = 0; q < f->spike_nz; q++) {
        int r = f->spike_idx[q];
        if (r == rp) continue;
        double v = f->spike_val[q];
        f->uc_idx[t + len] = r;
        f->uc_val[t + len] = v;
        len++;
        ur_append(f, r, p, v);
    }
    f->uc_len[p] = len;
    f->uc_room[p] = len;
    f->uc_top = t + len;

    /* the pair moves to a new last position */
    f->perm_row[kp] = -1;
    f->perm_col[kp] = -1;
    int np = f->npos++;
    f->perm_row[np] = rp;
    f->perm_col[np] = p;
    f->pos_of_row[rp] = np;
    f->pos_of_col[p] = np;
    if (kp < f->first_nontrivial) f->first_nontrivial = kp;
    f->nz_lu_now += int64_t(f->row_nz) - oldrow - oldcol + f->spike_nz;
    lu_release_spikes(f);
    return 0;
}

/* The automatic refactorization rule; true when the factor should be
 * rebuilt now. */
static bool refactor_due(lu_record *f, const simplex_lp *s, int c, int64_t nz_now) {
    if (!f->update_auto) return false;
    double fnz = f->nz_basis > 0 ? double(f->nz_basis2) * double(f->nz_lu) / double(f->nz_basis)
                                 : double(f->nz_lu);
    double a = 0.2 * double(s->nz_matrix);
    double cost = ((a + fnz) * c + double(f->nz_sum)) / double(f->update_count + 1);
    if (cost > f->avg_cost && f->update_count >= 61) return true;
    f->avg_cost = cost;
    f->nz_sum += nz_now;
    return false;
}

int lu_update(TRVenv env, TRVlp lp) {
    lu_record *f = lp->factor;
    solver_rec *sv = lp->solver;
    if (f == nullptr || sv == nullptr) return 1258;
    simplex_iter *it = &sv->it;
    int p = it->leave_pos, q = it->enter_var;
    if (p < 0 || p >= f->m || q < 0 || q >= sv->splp.ncoltot) return 1003;
    it->head[p] = q;
    int status = 0;
    bool refactor = !f->valid;
    if (!refactor) {
        /* 1. both spikes */
        if (f->spike_nz < 0) lu_make_spike(f, &sv->splp, q);
        if (f->row_nz < 0 || f->rspike_pos != p) lu_row_spike(f, p);
        /* 2, 3. the growth enters the automatic rule; c is 20 until the
         * primal and dual pricing structures tell otherwise */
        int c = 20;
        int kp = f->pos_of_col[p];
        int64_t growth = int64_t(f->row_nz) - f->ur_len[f->perm_row[kp]] - f->uc_len[p] +
                         f->spike_nz;
        if (refactor_due(f, &sv->splp, c, f->nz_lu_now + growth)) refactor = true;
    }
    if (!refactor) {
        /* 4, 5. the storage step, the fill factors kept */
        double fr = sv->splp.fill_row, fc = sv->splp.fill_col;
        refactor = lu_update_store(f, p, it->alpha) != 0;
        sv->splp.fill_row = fr, sv->splp.fill_col = fc;
    }
    if (refactor) {
        lu_release_spikes(f);
        double u = it->markowitz;
        status = lu_refactor(env, lp, &u, it->pivot_tol, 1, 0);
        it->markowitz = u;
    }
    lu_release_spikes(f);
    return status;
}

int lu_update_check(TRVlp lp, double alpha, int keep, int *status) {
    lu_record *f = lp->factor;
    simplex_iter *it = &lp->solver->it;
    const simplex_lp *s = &lp->solver->splp;
    int p = it->leave_pos;
    bool made_row = false, made_spike = false;
    int st = 0;
    if (f->row_nz < 0 || f->rspike_pos != p) {
        lu_row_spike(f, p);
        made_row = true;
    }
    if (std::fabs(alpha) <= LU_DROP) {
        st = 2003;
    } else {
        double big = 0.0;
        for (int q = 0; q < f->row_nz; q++) big = std::max(big, std::fabs(f->rspike_val[q]));
        if (big / alpha > 1e8) st = 2003;
    }
    if (st == 0) {
        if (f->spike_nz < 0 && it->enter_var >= 0) {
            lu_make_spike(f, s, it->enter_var);
            made_spike = true;
        }
        double big = 0.0;
        for (int q = 0; q < f->spike_nz; q++) big = std::max(big, std::fabs(f->spike_val[q]));
        if (big > 1e8) st = 2003;
    }
    if (st != 0) {
        f->row_nz = -1;
    } else if (!keep) {
        if (made_row) f->row_nz = -1;
        if (made_spike) f->spike_nz = -1;
    }
    if (status != nullptr) *status = st;
    return st;
}
