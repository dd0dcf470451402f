/*
 * cache.cpp - pending additions. New rows, columns and entries of a
 * library-owned problem collect here and go into the matrix in one merge,
 * either when a query hands out data or when the pending counts pass the
 * counts of the last merge (at least 10). Merges thus come at geometric
 * intervals, and a model built one row at a time is built in O(log n)
 * repacks of the matrix.
 */
#include <cstring>

#include "store/change.h"

static void names_release(cache_names *n) {
    trv_free(&n->off);
    trv_free(&n->text);
    n->used = n->cap = 0;
    n->any = 0;
}

static void cache_release(cache_rec *c) {
    trv_free(&c->colobj);
    trv_free(&c->collb);
    trv_free(&c->colub);
    trv_free(&c->colctype);
    names_release(&c->colnames);
    trv_free(&c->rowrhs);
    trv_free(&c->rowsense);
    trv_free(&c->rowrngval);
    names_release(&c->rownames);
    trv_free(&c->nzi);
    trv_free(&c->nzj);
    trv_free(&c->nzv);
    trv_free(&c->nzbeg);
    c->colspace = c->rowspace = c->nzspace = 0;
}

void cache_free(cache_rec **cp) {
    if (*cp == nullptr) return;
    cache_release(*cp);
    trv_free(cp);
}

/* Drops what is pending; the arrays stay for reuse. */
void cache_clear(cache_rec *c) {
    if (c == nullptr) return;
    c->ncolsnew = c->nrowsnew = c->nzcount = 0;
    c->colnames.used = c->rownames.used = 0;
    c->colnames.any = c->rownames.any = 0;
    trv_free(&c->colctype);
    c->nzkind = -1;
    c->empty = 1;
}

cache_rec *cache_get(lp_data *d) {
    if (d->cache == nullptr) {
        cache_rec *c = trv_zalloc<cache_rec>(1);
        if (c == nullptr) return nullptr;
        c->empty = 1;
        c->nzkind = -1;
        c->colsbase = d->ncols;
        c->rowsbase = d->nrows;
        long nz = 0;
        for (int j = 0; j < d->ncols; j++) nz += d->matcnt[j];
        c->nzbase = static_cast<int>(nz);
        d->cache = c;
    }
    return d->cache;
}

int lp_cachecount(const cache_rec *c, int what) {
    return what == 0 ? c->ncolsnew : what == 1 ? c->nrowsnew : c->nzcount;
}

int cache_pendcols(const lp_data *d) { return d->cache ? d->cache->ncolsnew : 0; }
int cache_pendrows(const lp_data *d) { return d->cache ? d->cache->nrowsnew : 0; }
int cache_pendnz(const lp_data *d) { return d->cache ? d->cache->nzcount : 0; }

/* Room for need entries in an array of capacity *cap: doubles it at least. */
static long next_cap(long cap, long need) {
    long c = cap < 16 ? 16 : cap;
    while (c < need) c *= 2;
    return c;
}

static int names_append(cache_names *n, int first, int cnt, char **names) {
    long need = first + cnt;
    int status = chg_grow(&n->off, need);
    if (status != 0) return status;
    long bytes = 0;
    for (int k = 0; names && k < cnt; k++)
        if (names[k] != nullptr) bytes += static_cast<long>(std::strlen(names[k])) + 1;
    if (n->used + bytes > n->cap) {
        long cap = next_cap(n->cap, n->used + bytes);
        if (chg_grow(&n->text, cap) != 0) return 1001;
        n->cap = cap;
    }
    for (int k = 0; k < cnt; k++) {
        const char *s = names ? names[k] : nullptr;
        if (s == nullptr) {
            n->off[first + k] = -1;
            continue;
        }
        size_t len = std::strlen(s) + 1;
        std::memcpy(n->text + n->used, s, len);
        n->off[first + k] = n->used;
        n->used += static_cast<long>(len);
        n->any = 1;
    }
    return 0;
}

int cache_addcols(cache_rec *c, int ccnt, const double *obj, const double *lb,
                  const double *ub, const char *ctype, char **colname) {
    if (ccnt <= 0) return 0;
    int n0 = c->ncolsnew;
    long need = static_cast<long>(n0) + ccnt;
    if (need > c->colspace) {
        long cap = next_cap(c->colspace, need);
        int st = chg_grow(&c->colobj, cap);
        st = st ? st : chg_grow(&c->collb, cap);
        st = st ? st : chg_grow(&c->colub, cap);
        if (!st && c->colctype) st = chg_grow(&c->colctype, cap);
        if (st) return st;
        c->colspace = static_cast<int>(cap);
    }
    if (ctype != nullptr && c->colctype == nullptr) {
        c->colctype = trv_alloc<char>(c->colspace);
        if (c->colctype == nullptr) return 1001;
        std::memset(c->colctype, 'C', c->colspace);
    }
    if (names_append(&c->colnames, n0, ccnt, colname) != 0) return 1001;
    for (int k = 0; k < ccnt; k++) {
        c->colobj[n0 + k] = obj ? obj[k] : 0.0;
        c->collb[n0 + k] = lb ? lb[k] : 0.0;
        c->colub[n0 + k] = ub ? ub[k] : TRV_INF;
        if (c->colctype) c->colctype[n0 + k] = ctype ? ctype[k] : 'C';
    }
    c->ncolsnew += ccnt;
    c->empty = 0;
    return 0;
}

int cache_addrows(cache_rec *c, int rcnt, const double *rhs, const char *sense,
                  const double *rngval, char **rowname) {
    if (rcnt <= 0) return 0;
    int m0 = c->nrowsnew;
    long need = static_cast<long>(m0) + rcnt;
    if (need > c->rowspace) {
        long cap = next_cap(c->rowspace, need);
        int st = chg_grow(&c->rowrhs, cap);
        st = st ? st : chg_grow(&c->rowsense, cap);
        st = st ? st : chg_grow(&c->rowrngval, cap);
        if (st) return st;
        c->rowspace = static_cast<int>(cap);
    }
    if (names_append(&c->rownames, m0, rcnt, rowname) != 0) return 1001;
    for (int k = 0; k < rcnt; k++) {
        c->rowrhs[m0 + k] = rhs ? rhs[k] : 0.0;
        c->rowsense[m0 + k] = sense ? sense[k] : 'E';
        c->rowrngval[m0 + k] = rngval ? rngval[k] : 0.0;
    }
    c->nrowsnew += rcnt;
    c->empty = 0;
    return 0;
}

int cache_addnz(cache_rec *c, int kind, int cnt, const int *i, const int *j,
                const double *v) {
    if (cnt <= 0) return 0;
    long need = static_cast<long>(c->nzcount) + cnt;
    if (need > c->nzspace) {
        long cap = next_cap(c->nzspace, need);
        int st = chg_grow(&c->nzi, cap);
        st = st ? st : chg_grow(&c->nzj, cap);
        st = st ? st : chg_grow(&c->nzv, cap);
        if (st) return st;
        c->nzspace = static_cast<int>(cap);
    }
    std::memcpy(c->nzi + c->nzcount, i, cnt * sizeof(int));
    std::memcpy(c->nzj + c->nzcount, j, cnt * sizeof(int));
    std::memcpy(c->nzv + c->nzcount, v, cnt * sizeof(double));
    c->nzcount += cnt;
    c->nzkind = c->nzkind == -1 || c->nzkind == kind ? kind : 3;
    c->empty = 0;
    return 0;
}

/* Pointers to the pending names, null where a name is absent; null when no
 * pending entry has one. */
static const char **names_list(const cache_names *n, int count, int *status) {
    if (!n->any || count == 0) return nullptr;
    const char **list = trv_alloc<const char *>(count);
    if (list == nullptr) {
        *status = 1001;
        return nullptr;
    }
    for (int k = 0; k < count; k++)
        list[k] = n->off[k] < 0 ? nullptr : n->text + n->off[k];
    return list;
}

/* The merge: columns, rows and entries in one append. A failure drops what
 * was pending. */
int lp_flush(TRVenv env, TRVlp lp, int raise) {
    lp_data *d = lp->lpdata;
    cache_rec *c = d->cache;
    if (c == nullptr || c->empty) return 0;
    int status = 0;
    const char **cn = names_list(&c->colnames, c->ncolsnew, &status);
    const char **rn = status ? nullptr : names_list(&c->rownames, c->nrowsnew, &status);
    if (status == 0) {
        if (raise) {
            if (c->ncolsnew > 0) invalidate(env, lp, 29);
            if (c->nrowsnew > 0) invalidate(env, lp, 17);
            if (c->nzcount > 0) invalidate(env, lp, c->nzkind == 2 ? 6 : 34);
        }
        add_part p = {};
        p.ccnt = c->ncolsnew;
        p.obj = c->colobj, p.lb = c->collb, p.ub = c->colub, p.ctype = c->colctype;
        p.colname = cn;
        p.rcnt = c->nrowsnew;
        p.rhs = c->rowrhs, p.sense = c->rowsense, p.rngval = c->rowrngval;
        p.rowname = rn;
        p.nzcnt = c->nzcount;
        p.nzi = c->nzi, p.nzj = c->nzj, p.nzv = c->nzv;
        status = lp_append(env, lp, &p);
    }
    trv_free(&cn);
    trv_free(&rn);
    cache_clear(c);
    c->colsbase = d->ncols;
    c->rowsbase = d->nrows;
    long nz = 0;
    for (int j = 0; j < d->ncols; j++) nz += d->matcnt[j];
    c->nzbase = static_cast<int>(nz);
    return status;
}

static int over(int pending, int base) { return pending > (base > 10 ? base : 10); }

/* Merges once the pending additions outgrow the model of the last merge. */
int lp_cachehigh(TRVenv env, TRVlp lp) {
    cache_rec *c = lp->lpdata->cache;
    if (c == nullptr || c->empty) return 0;
    if (over(c->ncolsnew, c->colsbase) || over(c->nrowsnew, c->rowsbase) ||
        over(c->nzcount, c->nzbase))
        return lp_flush(env, lp, 1);
    return 0;
}

/* ---- the fast path of modelling layers --------------------------------------- */

TRV_EXPORT void *TRVEgetCache(TRVlp lp) {
    lp = static_cast<TRVlp>(handle_find(lp, HANDLE_LP, nullptr, nullptr));
    if (lp == nullptr || !lp_valid(lp)) return nullptr;
    return cache_get(lp->lpdata);
}

/* Opens a cache entry: a problem that is no view, without the merge, and
 * its cache. */
static int cache_enter(TRVenv *env, TRVlp *lp, int cnt) {
    int st = call_enter(env, lp, CALL_SINGLE);
    if (st == 0 && cnt < 0) st = 1003;
    if (st == 0 && cache_get((*lp)->lpdata) == nullptr) st = 1001;
    return st;
}

/* Closes it: pending additions that outgrow the model are merged. */
static int cache_leave(TRVenv env, TRVlp lp, int status) {
    if (status == 0) status = lp_cachehigh(env, lp);
    return call_leave(env, status);
}

TRV_EXPORT int TRVEcacheNewCols(TRVenv env, TRVlp lp, int ccnt, const double *obj,
                                const double *lb, const double *ub,
                                const char *ctype, char **colname) {
    int status = cache_enter(&env, &lp, ccnt);
    if (status == 0)
        status = cache_addcols(lp->lpdata->cache, ccnt, obj, lb, ub, ctype, colname);
    return cache_leave(env, lp, status);
}

TRV_EXPORT int TRVEcacheNewRows(TRVenv env, TRVlp lp, int rcnt, const double *rhs,
                                const char *sense, const double *rngval,
                                char **rowname) {
    int status = cache_enter(&env, &lp, rcnt);
    if (status == 0 && rcnt > 0 && sense != nullptr) status = check_senses(env, rcnt, sense);
    if (status == 0)
        status = cache_addrows(lp->lpdata->cache, rcnt, rhs, sense, rngval, rowname);
    return cache_leave(env, lp, status);
}

TRV_EXPORT int TRVEcacheNewNZsByNZ(TRVenv env, TRVlp lp, int cnt, const int *rowind,
                                   const int *colind, const double *val) {
    int status = cache_enter(&env, &lp, cnt);
    if (status == 0 && cnt > 0 && (!rowind || !colind || !val)) status = 1004;
    if (status == 0) {
        lp_data *d = lp->lpdata;
        status = check_indices(env, cnt, rowind, d->nrows + cache_pendrows(d), false);
        if (status == 0)
            status = check_indices(env, cnt, colind, d->ncols + cache_pendcols(d), true);
    }
    if (status == 0) status = cache_addnz(lp->lpdata->cache, 3, cnt, rowind, colind, val);
    return cache_leave(env, lp, status);
}
