/*
 * fchange.cpp - changes of the row and column sets: additions (through the
 * cache for a library-owned model, directly for a caller-owned one),
 * deletions by range or by a set, and the moves of rows to and from the
 * free rows.
 */
#include <cstring>

#include "store/basis.h"
#include "store/change.h"

/* Opens an addition: the frame without the merge, so that additions can
 * pile up in the cache, and the counts. */
static int add_enter(TRVenv *env, TRVlp *lp, int c1, int c2, int c3) {
    int st = call_enter(env, lp, CALL_SINGLE);
    if (st == 0 && (c1 < 0 || c2 < 0 || c3 < 0)) st = 1003;
    return st;
}

/* The checks of the data check switch on new names: none null, none equal
 * to another name of the model. Pending additions are merged first so that
 * their names take part. */
static int check_newnames(TRVenv env, TRVlp lp, int which, int cnt,
                          char **names) {
    if (names == nullptr || cnt == 0 || par_int(env, 1056) != 1) return 0;
    for (int k = 0; k < cnt; k++)
        if (names[k] == nullptr) return env_error(env, 1224, k);
    int st = lp_flush(env, lp, 1);
    if (st != 0) return st;
    lp_data *d = lp->lpdata;
    char **cur = which == NAMES_COLS ? d->colname : d->rowname;
    int n0 = cur ? (which == NAMES_COLS ? d->ncols : d->nrows) : 0;
    const char **list = trv_alloc<const char *>(static_cast<size_t>(n0) + cnt);
    char *old = trv_alloc<char>(static_cast<size_t>(n0) + cnt);
    if (list == nullptr || old == nullptr) st = 1001;
    for (int k = 0; st == 0 && k < n0; k++) list[k] = cur[k], old[k] = 1;
    for (int k = 0; st == 0 && k < cnt; k++) list[n0 + k] = names[k], old[n0 + k] = 0;
    if (st == 0) st = names_check(env, n0 + cnt, list, old);
    trv_free(&list);
    trv_free(&old);
    return st;
}

static int check_ctype(int cnt, const char *ctype) {
    for (int k = 0; ctype && k < cnt; k++)
        if (!std::strchr("CBISN", ctype[k]) || ctype[k] == '\0') return 1003;
    return 0;
}

/* A start array of a sparse list: ascending, inside [0, nzcnt]; with the
 * data check no index twice in one vector. */
static int check_sparse(TRVenv env, int cnt, int nzcnt, const int *beg,
                        const int *ind, int range, bool cols) {
    for (int k = 0; k < cnt; k++) {
        if (beg[k] < 0 || (k > 0 && beg[k] < beg[k - 1])) return env_error(env, 1226, k);
        if (beg[k] > nzcnt) return env_error(env, 1228, k);
    }
    int st = check_indices(env, nzcnt, ind, range, cols);
    if (st != 0 || par_int(env, 1056) != 1) return st;
    int *seen = trv_alloc<int>(range);
    if (seen == nullptr) return 1001;
    for (int x = 0; x < range; x++) seen[x] = -1;
    for (int k = 0; st == 0 && k < cnt; k++) {
        int end = k + 1 < cnt ? beg[k + 1] : nzcnt;
        for (int q = beg[k]; st == 0 && q < end; q++) {
            if (seen[ind[q]] == k) st = env_error(env, 1222);
            seen[ind[q]] = k;
        }
    }
    trv_free(&seen);
    return st;
}

/* Triplets of a sparse list of cnt vectors; vector k is row (or column)
 * first + k. */
static int to_triplets(int cnt, int nzcnt, const int *beg, const int *ind,
                       const double *val, int first, bool rows, int **ti, int **tj) {
    *ti = trv_alloc<int>(nzcnt);
    *tj = trv_alloc<int>(nzcnt);
    if (*ti == nullptr || *tj == nullptr) {
        trv_free(ti);
        trv_free(tj);
        return 1001;
    }
    for (int k = 0; k < cnt; k++) {
        int end = k + 1 < cnt ? beg[k + 1] : nzcnt;
        for (int q = beg[k]; q < end; q++) {
            (rows ? *ti : *tj)[q] = first + k;
            (rows ? *tj : *ti)[q] = ind[q];
        }
    }
    (void)val;
    return 0;
}

/* Appends to the cache and merges when it outgrows the model; a failure
 * takes back what this call appended. */
static int to_cache(TRVenv env, TRVlp lp, const add_part *p, int kind) {
    cache_rec *c = cache_get(lp->lpdata);
    if (c == nullptr) return 1001;
    int nc = c->ncolsnew, nr = c->nrowsnew, nz = c->nzcount, empty = c->empty;
    int st = cache_addcols(c, p->ccnt, p->obj, p->lb, p->ub, p->ctype,
                           const_cast<char **>(p->colname));
    if (st == 0)
        st = cache_addrows(c, p->rcnt, p->rhs, p->sense, p->rngval,
                           const_cast<char **>(p->rowname));
    if (st == 0) st = cache_addnz(c, kind, p->nzcnt, p->nzi, p->nzj, p->nzv);
    if (st != 0) {
        c->ncolsnew = nc, c->nrowsnew = nr, c->nzcount = nz, c->empty = empty;
        return st;
    }
    return lp_cachehigh(env, lp);
}

/* The addition itself: the cache for a library-owned model, else directly
 * with the code given. */
static int add_run(TRVenv env, TRVlp lp, const add_part *p, int kind, int code) {
    if (lp->memmodel == MEM_COPY) return to_cache(env, lp, p, kind);
    int st = lp_flush(env, lp, 1);
    if (st != 0) return st;
    invalidate(env, lp, code);
    return lp_append(env, lp, p);
}

TRV_EXPORT int TRVnewcols(TRVenv env, TRVlp lp, int ccnt, const double *obj,
                          const double *lb, const double *ub, const char *ctype,
                          char **colname) {
    int st = add_enter(&env, &lp, ccnt, 0, 0);
    if (st == 0) st = check_ctype(ccnt, ctype);
    if (st == 0) st = check_newnames(env, lp, NAMES_COLS, ccnt, colname);
    if (st == 0 && ccnt > 0) {
        presolve_follow(env, lp, "Warning: Adding columns to the presolved model fails.\n");
        add_part p = {};
        p.ccnt = ccnt, p.obj = obj, p.lb = lb, p.ub = ub, p.ctype = ctype;
        p.colname = colname;
        st = add_run(env, lp, &p, 2, 28);
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVnewrows(TRVenv env, TRVlp lp, int rcnt, const double *rhs,
                          const char *sense, const double *rngval, char **rowname) {
    int st = add_enter(&env, &lp, rcnt, 0, 0);
    if (st == 0 && sense != nullptr) st = check_senses(env, rcnt, sense);
    if (st == 0) st = check_newnames(env, lp, NAMES_ROWS, rcnt, rowname);
    if (st == 0 && rcnt > 0) {
        presolve_follow(env, lp, "Warning: Adding rows to the presolved model fails.\n");
        add_part p = {};
        p.rcnt = rcnt, p.rhs = rhs, p.sense = sense, p.rngval = rngval;
        p.rowname = rowname;
        st = add_run(env, lp, &p, 1, 17);
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVaddrows(TRVenv env, TRVlp lp, int ccnt, int rcnt, int nzcnt,
                          const double *rhs, const char *sense, const int *rmatbeg,
                          const int *rmatind, const double *rmatval, char **colname,
                          char **rowname) {
    int st = add_enter(&env, &lp, ccnt, rcnt, nzcnt);
    if (st == 0 && nzcnt > 0 && (rcnt == 0 || !rmatbeg || !rmatind || !rmatval)) st = 1004;
    if (st == 0 && sense != nullptr) st = check_senses(env, rcnt, sense);
    if (st == 0) st = check_newnames(env, lp, NAMES_COLS, ccnt, colname);
    if (st == 0) st = check_newnames(env, lp, NAMES_ROWS, rcnt, rowname);
    if (st == 0 && lp->memmodel != MEM_COPY) st = lp_flush(env, lp, 1);
    lp_data *d = st == 0 ? lp->lpdata : nullptr;
    int n = d ? d->ncols + cache_pendcols(d) : 0, m = d ? d->nrows + cache_pendrows(d) : 0;
    if (st == 0 && nzcnt > 0)
        st = check_sparse(env, rcnt, nzcnt, rmatbeg, rmatind, n + ccnt, true);
    int *ti = nullptr, *tj = nullptr;
    if (st == 0 && nzcnt > 0)
        st = to_triplets(rcnt, nzcnt, rmatbeg, rmatind, rmatval, m, true, &ti, &tj);
    if (st == 0 && (ccnt > 0 || rcnt > 0)) {
        presolve_follow(env, lp, "Warning: Adding rows to the presolved model fails.\n");
        add_part p = {};
        p.ccnt = ccnt, p.colname = colname;
        p.rcnt = rcnt, p.rhs = rhs, p.sense = sense, p.rowname = rowname;
        p.nzcnt = nzcnt, p.nzi = ti, p.nzj = tj, p.nzv = rmatval;
        st = add_run(env, lp, &p, 1, 17);
    }
    trv_free(&ti);
    trv_free(&tj);
    return call_leave(env, st);
}

TRV_EXPORT int TRVaddcols(TRVenv env, TRVlp lp, int ccnt, int nzcnt, const double *obj,
                          const int *cmatbeg, const int *cmatind, const double *cmatval,
                          const double *lb, const double *ub, char **colname) {
    int st = add_enter(&env, &lp, ccnt, nzcnt, 0);
    if (st == 0 && nzcnt > 0 && (ccnt == 0 || !cmatbeg || !cmatind || !cmatval)) st = 1004;
    if (st == 0) st = check_newnames(env, lp, NAMES_COLS, ccnt, colname);
    if (st == 0 && lp->memmodel != MEM_COPY) st = lp_flush(env, lp, 1);
    lp_data *d = st == 0 ? lp->lpdata : nullptr;
    int n = d ? d->ncols + cache_pendcols(d) : 0, m = d ? d->nrows + cache_pendrows(d) : 0;
    if (st == 0 && nzcnt > 0) st = check_sparse(env, ccnt, nzcnt, cmatbeg, cmatind, m, false);
    int *ti = nullptr, *tj = nullptr;
    if (st == 0 && nzcnt > 0)
        st = to_triplets(ccnt, nzcnt, cmatbeg, cmatind, cmatval, n, false, &ti, &tj);
    if (st == 0 && ccnt > 0) {
        presolve_follow(env, lp, "Warning: Adding columns to the presolved model fails.\n");
        add_part p = {};
        p.ccnt = ccnt, p.obj = obj, p.lb = lb, p.ub = ub, p.colname = colname;
        p.nzcnt = nzcnt, p.nzi = ti, p.nzj = tj, p.nzv = cmatval;
        st = add_run(env, lp, &p, 2, nzcnt > 0 ? 29 : 28);
    }
    trv_free(&ti);
    trv_free(&tj);
    return call_leave(env, st);
}

/* ---- deletions ---------------------------------------------------------------- */

static int del_set(TRVenv env, TRVlp lp, int *delstat, bool rows, int code) {
    if (delstat == nullptr) return 1004;
    invalidate(env, lp, code);
    /* user cuts and lazy constraints are freed here with their warnings
     * when columns go, once the MIP keeps them */
    int st = rows ? lp_droprows(env, lp, delstat) : lp_dropcols(env, lp, delstat);
    /* the stored basis follows, so that the next run starts from it */
    if (st == 0) start_delete(lp, delstat, rows);
    else start_free(lp);
    return st;
}

static int del_range(TRVenv env, TRVlp lp, int begin, int end, bool rows,
                     const char *fname, int code) {
    int count = rows ? lp->lpdata->nrows : lp->lpdata->ncols;
    if (begin > end) return 0;
    if (!range_check(env, fname, begin, end, 0, count)) return 1200;
    int *delstat = trv_zalloc<int>(count);
    if (delstat == nullptr) return 1001;
    for (int k = begin; k <= end; k++) delstat[k] = 1;
    int st = del_set(env, lp, delstat, rows, code);
    trv_free(&delstat);
    return st;
}

TRV_EXPORT int TRVdelrows(TRVenv env, TRVlp lp, int begin, int end) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = del_range(env, lp, begin, end, true, "TRVdelrows", 19);
    return call_leave(env, st);
}

TRV_EXPORT int TRVdelcols(TRVenv env, TRVlp lp, int begin, int end) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = del_range(env, lp, begin, end, false, "TRVdelcols", 31);
    return call_leave(env, st);
}

TRV_EXPORT int TRVdelsetrows(TRVenv env, TRVlp lp, int *delstat) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = del_set(env, lp, delstat, true, 20);
    return call_leave(env, st);
}

TRV_EXPORT int TRVdelsetcols(TRVenv env, TRVlp lp, int *delstat) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = del_set(env, lp, delstat, false, 32);
    return call_leave(env, st);
}

/* ---- free rows ------------------------------------------------------------------ */

/* The entries of the free rows as a list (slot, column, value), with room
 * for extra more; values are true values, free of any scaling. */
struct rim_list {
    int n, cap;
    int *slot, *col;
    double *val;
};

static void rim_list_free(rim_list *r) {
    trv_free(&r->slot);
    trv_free(&r->col);
    trv_free(&r->val);
}

static int rim_list_take(const lp_data *d, rim_list *r, long extra) {
    long n = 0;
    for (int k = 0; k < d->nfreerows; k++) n += d->rimcnt[k];
    r->cap = static_cast<int>(n + extra);
    r->slot = trv_alloc<int>(r->cap);
    r->col = trv_alloc<int>(r->cap);
    r->val = trv_alloc<double>(r->cap);
    if (!r->slot || !r->col || !r->val) {
        rim_list_free(r);
        return 1001;
    }
    r->n = 0;
    for (int k = 0; k < d->nfreerows; k++)
        for (int q = d->rimbeg[k]; q < d->rimbeg[k] + d->rimcnt[k]; q++) {
            r->slot[r->n] = k;
            r->col[r->n] = d->matind[q];
            r->val[r->n++] = d->matval[q];
        }
    return 0;
}

/* Room for a block of n entries above the packed columns. */
static int rim_room(TRVenv env, TRVlp lp, long n) {
    lp_data *d = lp->lpdata;
    long nz = 0;
    int top = 0;
    for (int j = 0; j < d->nstruct; j++) {
        nz += d->matcnt[j];
        if (d->colend[j] > top) top = d->colend[j];
    }
    if (top + n <= d->nzspace) return 0;
    int st = lp_ensure(env, lp, d->colspace, d->rowspace, static_cast<int>(nz + n), 0, 0);
    if (st == 0) lp_compress(d);
    return st;
}

/* Writes the list as the block at the high end, slot by slot in list
 * order, over nslots free rows. */
static void rim_list_put(lp_data *d, const rim_list *r, int nslots) {
    int n = 0;
    for (int t = 0; t < r->n; t++) n += r->slot[t] >= 0;
    int pos = d->nzspace - n;
    for (int k = 0; k < nslots; k++) {
        d->rimbeg[k] = pos;
        d->rimcnt[k] = 0;
        for (int t = 0; t < r->n; t++) {
            if (r->slot[t] != k) continue;
            d->matind[pos] = r->col[t];
            d->matval[pos++] = r->val[t];
            d->rimcnt[k]++;
        }
    }
}

/* Capacity of the rim descriptors for count rims. */
static int rim_space(TRVenv env, TRVlp lp, int count) {
    lp_data *d = lp->lpdata;
    bool have = d->rimtype && d->rimbeg && d->rimcnt && d->freerowind;
    if (have && count <= d->rimspace) return 0;
    if (lp->memmodel != MEM_COPY) return env_error(env, 1401);
    int cap = count + 16;
    int st = chg_grow(&d->rimtype, cap);
    st = st ? st : chg_grow(&d->rimbeg, cap);
    st = st ? st : chg_grow(&d->rimcnt, cap);
    st = st ? st : chg_grow(&d->freerowind, cap);
    if (!st && d->rimname) st = chg_grow(&d->rimname, cap);
    if (!st) d->rimspace = cap;
    return st;
}

TRV_EXPORT int TRVchgtofreerow(TRVenv env, TRVlp lp, int cnt, const int *indices,
                               int *freeind) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0 && cnt < 0) st = 1003;
    if (st != 0) return call_leave(env, st);
    if (cnt == 0 || indices == nullptr) {
        TRVmsg(env->warnchannel, "Warning:  No rows being freed.\n");
        return 0;
    }
    lp_data *d = st == 0 ? lp->lpdata : nullptr;
    if (st == 0) st = check_indices(env, cnt, indices, d->nrows, false);
    int *delstat = st == 0 ? trv_zalloc<int>(d->nrows) : nullptr;
    if (st == 0 && delstat == nullptr) st = 1001;
    for (int k = 0; st == 0 && k < cnt; k++) {
        if (delstat[indices[k]]) st = env_error(env, 1222);
        delstat[indices[k]] = 1;
    }
    /* the rows' entries, in the order of the list */
    rim_list r = {};
    if (st == 0) {
        long add = 0;
        for (int j = 0; j < d->ncols; j++)
            for (int q = d->matbeg[j]; q < d->colend[j]; q++) add += delstat[d->matind[q]];
        st = rim_list_take(d, &r, add);
    }
    int *slot_of_row = nullptr;
    if (st == 0) {
        slot_of_row = trv_alloc<int>(d->nrows);
        if (slot_of_row == nullptr) st = 1001;
    }
    if (st == 0) st = rim_space(env, lp, d->nrims + cnt);
    if (st == 0) st = rim_room(env, lp, r.cap);
    /* names of the rims: the old ones, then the rows' */
    const char **rn = nullptr;
    int nf = st == 0 ? d->nfreerows : 0;
    if (st == 0 && (d->rimname != nullptr || d->rowname != nullptr)) {
        rn = trv_alloc<const char *>(static_cast<size_t>(d->nrims) + cnt);
        if (rn == nullptr) st = 1001;
        for (int k = 0; st == 0 && k < d->nrims; k++)
            rn[k < nf ? k : k + cnt] = d->rimname ? d->rimname[k] : nullptr;
        for (int k = 0; st == 0 && k < cnt; k++)
            rn[nf + k] = d->rowname ? d->rowname[indices[k]] : nullptr;
        if (st == 0) st = names_commit(env, lp, NAMES_RIMS, d->nrims + cnt, rn);
    }
    trv_free(&rn);
    if (st == 0) {
        invalidate(env, lp, 22);
        for (int k = 0; k < cnt; k++) slot_of_row[indices[k]] = nf + k;
        for (int j = 0; j < d->ncols; j++)
            for (int q = d->matbeg[j]; q < d->colend[j]; q++) {
                int i = d->matind[q];
                if (!delstat[i]) continue;
                r.slot[r.n] = slot_of_row[i];
                r.col[r.n] = j;
                r.val[r.n++] = d->matval[q] * rowfac(d, i) * colfac(d, j);
            }
        /* the other rims move up behind the free rows */
        for (int k = d->nrims - 1; k >= nf; k--) {
            d->rimtype[k + cnt] = d->rimtype[k];
            d->rimbeg[k + cnt] = d->rimbeg[k];
            d->rimcnt[k + cnt] = d->rimcnt[k];
            d->freerowind[k + cnt] = d->freerowind[k];
        }
        for (int k = 0; k < cnt; k++) {
            d->rimtype[nf + k] = 1;
            d->freerowind[nf + k] = indices[k];
            if (freeind) freeind[k] = nf + k;
        }
        d->nfreerows += cnt;
        d->nrims += cnt;
        rim_list_put(d, &r, d->nfreerows);
        st = lp_droprows(env, lp, delstat);
    }
    rim_list_free(&r);
    trv_free(&slot_of_row);
    trv_free(&delstat);
    return call_leave(env, st);
}

/* Takes the listed slots out of the rim descriptors and names. */
static int rims_remove(TRVenv env, TRVlp lp, const int *gone, rim_list *r) {
    lp_data *d = lp->lpdata;
    int st = 0, out = 0, nf = 0;
    const char **rn = d->rimname ? trv_alloc<const char *>(d->nrims) : nullptr;
    int *map = trv_alloc<int>(d->nrims);
    if (map == nullptr || (d->rimname && rn == nullptr)) st = 1001;
    for (int k = 0; st == 0 && k < d->nrims; k++) {
        map[k] = gone[k] ? -1 : out;
        if (gone[k]) continue;
        d->rimtype[out] = d->rimtype[k];
        d->rimbeg[out] = d->rimbeg[k];
        d->rimcnt[out] = d->rimcnt[k];
        d->freerowind[out] = d->freerowind[k];
        if (rn) rn[out] = d->rimname[k];
        nf += k < d->nfreerows;
        out++;
    }
    if (st == 0) {
        for (int t = 0; t < r->n; t++) r->slot[t] = map[r->slot[t]];
        d->nrims = out;
        d->nfreerows = nf;
        rim_list_put(d, r, nf);
        if (rn) st = names_commit(env, lp, NAMES_RIMS, out, rn);
    }
    trv_free(&rn);
    trv_free(&map);
    return st;
}

TRV_EXPORT int TRVchgfromfreerow(TRVenv env, TRVlp lp, int cnt, const int *indices,
                                 const double *rhs, const char *sense,
                                 const double *rngval) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    lp_data *d = st == 0 ? lp->lpdata : nullptr;
    if (st == 0 && cnt < 0) st = 1003;
    if (st == 0 && cnt > 0 && (!indices || !rhs || !sense)) st = 1004;
    if (st == 0 && cnt > 0 && d->nfreerows == 0) st = 1218;
    if (st == 0) st = check_indices(env, cnt, indices, d->nfreerows, false);
    if (st == 0) st = check_senses(env, cnt, sense);
    if (st != 0 || cnt == 0) return call_leave(env, st);
    int *gone = trv_zalloc<int>(d->nrims);
    rim_list r = {};
    if (gone == nullptr) st = 1001;
    for (int k = 0; st == 0 && k < cnt; k++) {
        if (gone[indices[k]]) st = env_error(env, 1222);
        gone[indices[k]] = 1;
    }
    if (st == 0) st = rim_list_take(d, &r, 0);
    /* the entries of the slots, as entries of new rows */
    int *ti = nullptr, *tj = nullptr;
    double *tv = nullptr;
    const char **rn = nullptr;
    int nt = 0;
    if (st == 0) {
        ti = trv_alloc<int>(r.n), tj = trv_alloc<int>(r.n), tv = trv_alloc<double>(r.n);
        rn = trv_alloc<const char *>(cnt);
        if (!ti || !tj || !tv || !rn) st = 1001;
    }
    for (int k = 0; st == 0 && k < cnt; k++) {
        rn[k] = d->rimname ? d->rimname[indices[k]] : nullptr;
        for (int t = 0; t < r.n; t++) {
            if (r.slot[t] != indices[k]) continue;
            ti[nt] = d->nrows + k, tj[nt] = r.col[t], tv[nt++] = r.val[t];
            r.slot[t] = -1;
        }
    }
    if (st == 0) {
        /* the names point into the rim store, which the append leaves */
        add_part p = {};
        p.rcnt = cnt, p.rhs = rhs, p.sense = sense, p.rngval = rngval;
        p.rowname = d->rimname ? rn : nullptr;
        p.nzcnt = nt, p.nzi = ti, p.nzj = tj, p.nzv = tv;
        invalidate(env, lp, 21);
        st = lp_append(env, lp, &p);
    }
    if (st == 0) {
        /* slots gone from the list are marked -1; rims_remove renumbers */
        for (int t = 0; t < r.n; t++)
            if (r.slot[t] < 0) r.slot[t] = 0, r.col[t] = -1;
        int keep = 0;
        for (int t = 0; t < r.n; t++)
            if (r.col[t] >= 0) {
                r.slot[keep] = r.slot[t], r.col[keep] = r.col[t], r.val[keep++] = r.val[t];
            }
        r.n = keep;
        st = rims_remove(env, lp, gone, &r);
    }
    trv_free(&ti);
    trv_free(&tj);
    trv_free(&tv);
    trv_free(&rn);
    rim_list_free(&r);
    trv_free(&gone);
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgfreecoef(TRVenv env, TRVlp lp, int cnt, const int *freeind,
                              const int *colind, const double *val) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    lp_data *d = st == 0 ? lp->lpdata : nullptr;
    if (st == 0 && cnt < 0) st = 1003;
    if (st == 0 && cnt > 0 && (!freeind || !colind || !val)) st = 1004;
    if (st == 0 && cnt > 0 && d->nfreerows == 0) st = 1218;
    if (st == 0) st = check_indices(env, cnt, freeind, d->nfreerows, false);
    if (st == 0) st = check_indices(env, cnt, colind, d->ncols, true);
    rim_list r = {};
    if (st == 0 && cnt > 0) st = rim_list_take(d, &r, cnt);
    if (st == 0 && cnt > 0) {
        for (int k = 0; k < cnt; k++) {
            int t = 0;
            while (t < r.n && !(r.slot[t] == freeind[k] && r.col[t] == colind[k])) t++;
            if (t == r.n) {
                r.slot[t] = freeind[k], r.col[t] = colind[k];
                r.n++;
            }
            r.val[t] = val[k];
        }
        int keep = 0;
        for (int t = 0; t < r.n; t++)
            if (r.val[t] != 0.0)
                r.slot[keep] = r.slot[t], r.col[keep] = r.col[t], r.val[keep++] = r.val[t];
        r.n = keep;
        st = rim_room(env, lp, r.n);
        if (st == 0) {
            invalidate(env, lp, 23);
            rim_list_put(d, &r, d->nfreerows);
        }
    }
    rim_list_free(&r);
    return call_leave(env, st);
}
