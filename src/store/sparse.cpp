/*
 * sparse.cpp - structural edits of the column-wise matrix: appending rows
 * and columns, setting and inserting entries, dropping rows and columns,
 * the free-row block at the high end of matind and matval, and the plain
 * name stores that follow every such edit.
 *
 * Columns lie in ascending position order (matbeg[j] <= matbeg[j + 1]), so
 * the room of column j runs from colend[j] to matbeg[j + 1], and for the
 * last column to the start of the free-row block. A column that needs more
 * room than it has makes the whole matrix repack: packed first from the
 * low end, then spread from the high end with each column's new count.
 */
#include <cstring>

#include "store/change.h"
#include "store/names.h"

/* ---- the free-row block ------------------------------------------------------ */

int lp_rimlow(const lp_data *d) {
    int low = d->nzspace;
    if (d->rimbeg != nullptr)
        for (int k = 0; k < d->nfreerows; k++)
            if (d->rimbeg[k] < low) low = d->rimbeg[k];
    return low;
}

/* Extent of the block: from its lowest entry to its highest end. */
int lp_rimnz(const lp_data *d) {
    if (d->nfreerows == 0 || d->rimbeg == nullptr) return 0;
    int low = lp_rimlow(d), high = low;
    for (int k = 0; k < d->nfreerows; k++)
        if (d->rimbeg[k] + d->rimcnt[k] > high) high = d->rimbeg[k] + d->rimcnt[k];
    return high - low;
}

void lp_rimtohigh(lp_data *d) {
    int n = lp_rimnz(d);
    if (n == 0) return;
    int low = lp_rimlow(d), to = d->nzspace - n;
    if (low == to) return;
    std::memmove(d->matind + to, d->matind + low, n * sizeof(int));
    std::memmove(d->matval + to, d->matval + low, n * sizeof(double));
    for (int k = 0; k < d->nfreerows; k++) d->rimbeg[k] += to - low;
}

/* ---- scaling ---------------------------------------------------------------- */

void lp_dropscale(lp_data *d) {
    if (d->rowscale != nullptr && d->colscale != nullptr) {
        const double *R = d->rowscale, *C = d->colscale;
        for (int j = 0; j < d->nstruct; j++) {
            for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++)
                d->matval[k] *= R[d->matind[k]] * C[j];
            d->obj[j] *= C[j];
            if (!is_inf(d->lb[j])) d->lb[j] /= C[j];
            if (!is_inf(d->ub[j])) d->ub[j] /= C[j];
        }
        for (int i = 0; i < d->nrows; i++) {
            d->rhs[i] *= R[i];
            if (d->rngval != nullptr) d->rngval[i] *= R[i];
        }
    }
    d->rowscale = d->colscale = nullptr;
    trv_free(&d->rowscalestore);
    trv_free(&d->colscalestore);
    d->scaletype = -1;
}

/* ---- plain name stores -------------------------------------------------------- */

struct name_slot {
    char ***names;
    char **store;
    int *space;
    int cap;
};

static name_slot slot_of(lp_data *d, int which) {
    if (which == NAMES_COLS) return {&d->colname, &d->colnamestore, &d->colnamespace, d->colspace};
    if (which == NAMES_ROWS) return {&d->rowname, &d->rownamestore, &d->rownamespace, d->rowspace};
    return {&d->rimname, &d->rimnamestore, &d->rimnamespace, d->rimspace};
}

/* The default name of entry k: x1, x2, ... for columns, c1, ... for rows
 * (or what the environment's name functions give), f1, ... for free rows. */
static const char *default_name(TRVenv env, int which, int k, char *buf, size_t n) {
    if (which == NAMES_COLS) return env_varname(env, nullptr, k + 1, k);
    if (which == NAMES_ROWS) return env_conname(env, nullptr, k + 1, k);
    std::snprintf(buf, n, "f%d", k + 1);
    return buf;
}

int names_commit(TRVenv env, TRVlp lp, int which, int count,
                 const char *const *text) {
    lp_data *d = lp->lpdata;
    name_slot s = slot_of(d, which);
    bool owned = lp->memmodel == MEM_COPY;
    if (text == nullptr) {
        if (owned) {
            trv_free(s.names);
            trv_free(s.store);
        }
        *s.names = nullptr;
        *s.store = nullptr;
        *s.space = 0;
        return 0;
    }
    char buf[32];
    long bytes = 0;
    for (int k = 0; k < count; k++) {
        const char *t = text[k] ? text[k] : default_name(env, which, k, buf, sizeof buf);
        bytes += static_cast<long>(std::strlen(t)) + 1;
    }
    if (bytes >= 2100000000L) return 1012;
    if (!owned && (*s.names == nullptr || bytes > *s.space)) {
        const char *fmt = which == NAMES_COLS
            ? "Column names need space for %d characters, only %d available.\n"
            : "Row names need space for %d characters, only %d available.\n";
        TRVmsg(env->reschannel, fmt, static_cast<int>(bytes), *s.space);
        return 1401;
    }
    long cap = *s.space;
    if (owned && bytes > cap) {
        int extra = par_int(env, which == NAMES_COLS ? 1047 : 1046);
        cap = bytes + 17L * extra;
        if (cap >= 2100000000L) cap = bytes;
    }
    char *fresh = trv_alloc<char>(cap > bytes ? cap : bytes);
    char **names = *s.names;
    if (fresh != nullptr && names == nullptr) names = trv_zalloc<char *>(s.cap);
    if (fresh == nullptr || names == nullptr) {
        trv_free(&fresh);
        return 1001;
    }
    long pos = 0;
    for (int k = 0; k < count; k++) {
        const char *t = text[k] ? text[k] : default_name(env, which, k, buf, sizeof buf);
        size_t n = std::strlen(t) + 1;
        std::memcpy(fresh + pos, t, n);
        pos += static_cast<long>(n);
    }
    char *store = fresh;
    if (!owned) {
        std::memcpy(*s.store, fresh, bytes);
        store = *s.store;
        trv_free(&fresh);
    } else {
        trv_free(s.store);
        *s.space = static_cast<int>(cap);
    }
    pos = 0;
    for (int k = 0; k < count; k++) {
        names[k] = store + pos;
        pos += static_cast<long>(std::strlen(store + pos)) + 1;
    }
    *s.names = names;
    *s.store = store;
    return 0;
}

int names_check(TRVenv env, int count, const char *const *text, const char *old) {
    if (text == nullptr) return 0;
    for (int k = 0; k < count; k++)
        if (text[k] == nullptr && !(old && old[k])) return env_error(env, 1224, k);
    int status = 0;
    namehash *h = namehash_new(count, &status);
    if (h == nullptr) return status;
    for (int k = 0; status == 0 && k < count; k++)
        if (old && old[k]) status = namehash_add(h, text[k], k);
    for (int k = 0; status == 0 && k < count; k++) {
        if (old && old[k]) continue;
        if (namehash_find(h, text[k]) >= 0)
            status = env_error(env, 1222);
        else
            status = namehash_add(h, text[k], k);
    }
    namehash_free(&h);
    return status;
}

/* ---- room in the matrix ------------------------------------------------------- */

static long struct_nz(const lp_data *d, int ncols) {
    long nz = 0;
    for (int j = 0; j < ncols; j++) nz += d->matcnt[j];
    return nz;
}

static int count_ranged(const lp_data *d) {
    int n = 0;
    for (int i = 0; i < d->nrows; i++) n += d->sense[i] == 'R';
    return n;
}

/* Makes the capacities reach cols, rows and nz, where nz counts packed
 * entries and the free-row block; the block goes back to the high end. */
static int room(TRVenv env, TRVlp lp, int cols, int rows, long nz) {
    if (nz > 2100000000L) return 1012;
    int st = lp_ensure(env, lp, cols, rows, static_cast<int>(nz), 0, 0);
    if (st == 0) lp_rimtohigh(lp->lpdata);
    return st;
}

/* Spreads the columns so that column j gets add[j] more positions after
 * its entries; add may be null for a plain pack. The room is there. */
static void repack(lp_data *d, const int *add) {
    lp_compress(d);
    if (add == nullptr) return;
    int n = d->nstruct;
    long total = 0;
    for (int j = 0; j < n; j++) total += d->matcnt[j] + add[j];
    long top = total;
    for (int j = n - 1; j >= 0; j--) {
        top -= d->matcnt[j] + add[j];
        int b = d->matbeg[j], c = d->matcnt[j];
        if (top != b && c > 0) {
            std::memmove(d->matind + top, d->matind + b, c * sizeof(int));
            std::memmove(d->matval + top, d->matval + b, c * sizeof(double));
        }
        d->matbeg[j] = static_cast<int>(top);
        d->colend[j] = static_cast<int>(top) + c;
    }
}

/* Room after column j's entries. */
static long col_room(const lp_data *d, int j) {
    long next = j + 1 < d->nstruct ? d->matbeg[j + 1] : lp_rimlow(d);
    return next - d->colend[j];
}

/* ---- setting entries ------------------------------------------------------------- */

/* Work arrays of one batch of entries: the batch sorted by column. */
struct entry_work {
    int *first; /* ncols + 1: start of each column's part of order */
    int *order; /* cnt: batch positions by column */
    int *pos;   /* nrows: position of a row's entry in the current column */
    int *add;   /* nstruct: new entries per column */
};

static void work_free(entry_work *w) {
    trv_free(&w->first);
    trv_free(&w->order);
    trv_free(&w->pos);
    trv_free(&w->add);
}

static int work_alloc(entry_work *w, int ncols, int nrows, int nstruct, int cnt) {
    w->first = trv_zalloc<int>(static_cast<size_t>(ncols) + 1);
    w->order = trv_alloc<int>(cnt);
    w->pos = trv_alloc<int>(nrows);
    w->add = trv_zalloc<int>(nstruct > ncols ? nstruct : ncols);
    if (!w->first || !w->order || !w->pos || !w->add) {
        work_free(w);
        return 1001;
    }
    for (int i = 0; i < nrows; i++) w->pos[i] = -1;
    return 0;
}

/* Sorts the batch by column and counts the entries each column gains: a
 * non-zero value for a row the column lacks, counted once per row. */
static long work_plan(const lp_data *d, entry_work *w, int cnt, const int *ii,
                      const int *jj, const double *vv) {
    for (int t = 0; t < cnt; t++) w->first[jj[t] + 1]++;
    for (int j = 0; j < d->ncols; j++) w->first[j + 1] += w->first[j];
    for (int t = 0; t < cnt; t++) w->order[w->first[jj[t]]++] = t;
    for (int j = d->ncols; j > 0; j--) w->first[j] = w->first[j - 1];
    w->first[0] = 0;
    long added = 0;
    for (int j = 0; j < d->ncols; j++) {
        if (w->first[j] == w->first[j + 1]) continue;
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) w->pos[d->matind[k]] = k;
        for (int q = w->first[j]; q < w->first[j + 1]; q++) {
            int t = w->order[q];
            if (w->pos[ii[t]] == -1 && vv[t] != 0.0) {
                w->add[j]++;
                w->pos[ii[t]] = -2;
            }
        }
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) w->pos[d->matind[k]] = -1;
        for (int q = w->first[j]; q < w->first[j + 1]; q++) w->pos[ii[w->order[q]]] = -1;
        added += w->add[j];
    }
    return added;
}

/* Applies a planned batch; the room for the new entries is there. */
static void work_apply(lp_data *d, entry_work *w, const int *ii, const int *jj,
                       const double *vv) {
    (void)jj;
    for (int j = 0; j < d->ncols; j++) {
        if (w->first[j] == w->first[j + 1]) continue;
        double cs = colfac(d, j);
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) w->pos[d->matind[k]] = k;
        bool zeros = false;
        for (int q = w->first[j]; q < w->first[j + 1]; q++) {
            int t = w->order[q], i = ii[t];
            double v = vv[t] / (rowfac(d, i) * cs);
            int k = w->pos[i];
            if (k >= 0) {
                d->matval[k] = v;
                zeros = zeros || v == 0.0;
            } else if (v != 0.0) {
                k = d->colend[j]++;
                d->matind[k] = i;
                d->matval[k] = v;
                d->matcnt[j]++;
                w->pos[i] = k;
            }
        }
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) w->pos[d->matind[k]] = -1;
        if (!zeros) continue;
        int out = d->matbeg[j];
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) {
            if (d->matval[k] == 0.0) continue;
            d->matind[out] = d->matind[k];
            d->matval[out++] = d->matval[k];
        }
        d->colend[j] = out;
        d->matcnt[j] = out - d->matbeg[j];
    }
}

/* Makes room for the planned additions: in place where each column has it,
 * otherwise by a repack, with growth first where the total needs it. */
static int work_room(TRVenv env, TRVlp lp, entry_work *w, long added) {
    lp_data *d = lp->lpdata;
    if (added == 0) return 0;
    bool fits = true;
    for (int j = 0; j < d->ncols && fits; j++)
        if (w->add[j] > 0 && col_room(d, j) < w->add[j]) fits = false;
    if (fits) return 0;
    long need = struct_nz(d, d->nstruct) + added + lp_rimnz(d);
    int st = room(env, lp, d->colspace, d->rowspace, need);
    if (st == 0) repack(d, w->add);
    return st;
}

int lp_setentries(TRVenv env, TRVlp lp, int cnt, const int *i, const int *j,
                  const double *v) {
    if (cnt <= 0) return 0;
    lp_data *d = lp->lpdata;
    entry_work w = {};
    int st = work_alloc(&w, d->ncols, d->nrows, d->nstruct, cnt);
    if (st != 0) return st;
    long added = work_plan(d, &w, cnt, i, j, v);
    st = work_room(env, lp, &w, added);
    if (st == 0) work_apply(d, &w, i, j, v);
    work_free(&w);
    return st;
}

/* ---- the computational form again ---------------------------------------------- */

int lp_reform(TRVenv env, TRVlp lp) {
    lp_data *d = lp->lpdata;
    int nranged = count_ranged(d);
    int nzend = 0;
    for (int j = 0; j < d->ncols; j++)
        if (d->colend[j] > nzend) nzend = d->colend[j];
    int st = 0;
    if (d->ncols + nranged > d->colspace || nzend + nranged > lp_rimlow(d)) {
        long need = struct_nz(d, d->ncols) + nranged + lp_rimnz(d);
        st = room(env, lp, d->ncols + nranged, d->nrows, need);
        if (st != 0) return st;
        d->nstruct = d->ncols;
        repack(d, nullptr);
    }
    st = lp_rebuild(env, lp);
    if (st == 0) st = lp_slacks(env, lp);
    if (st != 0) return st;
    lp_setsimple(lp);
    lp_updatecap(env, d);
    return 0;
}

/* ---- appending rows and columns ---------------------------------------------------- */

static long name_bytes_of(char **names, int count) {
    long n = 0;
    for (int k = 0; names && k < count; k++) n += static_cast<long>(std::strlen(names[k])) + 1;
    return n;
}

/* Bytes of a list of new names; a default name is taken as 12 at most. */
static long list_bytes(int count, const char *const *text) {
    long n = 0;
    for (int k = 0; k < count; k++)
        n += text && text[k] ? static_cast<long>(std::strlen(text[k])) + 1 : 12;
    return n;
}

/* The name list after an append: existing names, then the new ones; null
 * when neither side has names. */
static const char **append_names(char **names, int n0, const char *const *add,
                                 int cnt, int *status) {
    if (names == nullptr && add == nullptr) return nullptr;
    const char **list = trv_alloc<const char *>(static_cast<size_t>(n0) + cnt);
    if (list == nullptr) {
        *status = 1001;
        return nullptr;
    }
    for (int k = 0; k < n0; k++) list[k] = names ? names[k] : nullptr;
    for (int k = 0; k < cnt; k++) list[n0 + k] = add ? add[k] : nullptr;
    return list;
}

int lp_append(TRVenv env, TRVlp lp, const add_part *p) {
    lp_data *d = lp->lpdata;
    int n0 = d->ncols, m0 = d->nrows;
    int n1 = n0 + p->ccnt, m1 = m0 + p->rcnt;
    int nranged = count_ranged(d);
    for (int k = 0; k < p->rcnt; k++) nranged += p->sense && p->sense[k] == 'R';
    /* a caller-owned model keeps the arrays it was loaded with */
    if (lp->memmodel != MEM_COPY &&
        ((p->ctype != nullptr && d->ctype == nullptr) ||
         (p->rcnt > 0 && p->rngval != nullptr && d->rngval == nullptr)))
        return env_error(env, 1401);
    /* capacities first: a caller-owned model that lacks them stays as it is */
    long nz = struct_nz(d, n0) + p->nzcnt + nranged + lp_rimnz(d);
    long cbytes = 0, rbytes = 0;
    if (lp->memmodel != MEM_COPY) {
        if (d->colname != nullptr || p->colname != nullptr)
            cbytes = name_bytes_of(d->colname, n0) + list_bytes(p->ccnt, p->colname);
        if (d->rowname != nullptr || p->rowname != nullptr)
            rbytes = name_bytes_of(d->rowname, m0) + list_bytes(p->rcnt, p->rowname);
    }
    if (nz > 2100000000L) return 1012;
    int st = lp_ensure(env, lp, n1 + nranged, m1, static_cast<int>(nz), cbytes, rbytes);
    if (st != 0) return st;
    lp_rimtohigh(d);
    entry_work w = {};
    if (p->nzcnt > 0) st = work_alloc(&w, n1, m1, n1, p->nzcnt);
    if (st == 0 && p->ctype != nullptr && d->ctype == nullptr) {
        d->ctype = trv_alloc<char>(d->colspace);
        if (d->ctype == nullptr)
            st = 1001;
        else
            std::memset(d->ctype, 'C', d->colspace);
    }
    if (st == 0 && p->rcnt > 0 && p->rngval != nullptr && d->rngval == nullptr) {
        d->rngval = trv_zalloc<double>(d->rowspace);
        if (d->rngval == nullptr) st = 1001;
    }
    const char **cl = st ? nullptr : append_names(d->colname, n0, p->colname, p->ccnt, &st);
    const char **rl = st ? nullptr : append_names(d->rowname, m0, p->rowname, p->rcnt, &st);
    if (st == 0 && cl != nullptr) st = names_commit(env, lp, NAMES_COLS, n1, cl);
    if (st == 0 && rl != nullptr) st = names_commit(env, lp, NAMES_ROWS, m1, rl);
    trv_free(&cl);
    trv_free(&rl);
    if (st != 0) {
        work_free(&w);
        return st;
    }
    /* the range columns go; they come back after the new columns */
    d->nstruct = n0;
    int top = 0;
    for (int j = 0; j < n0; j++)
        if (d->colend[j] > top) top = d->colend[j];
    for (int k = 0; k < p->ccnt; k++) {
        int j = n0 + k;
        d->obj[j] = p->obj ? p->obj[k] : 0.0;
        d->lb[j] = p->lb ? p->lb[k] : 0.0;
        d->ub[j] = p->ub ? p->ub[k] : TRV_INF;
        d->matbeg[j] = d->colend[j] = top;
        d->matcnt[j] = 0;
        if (d->ctype) d->ctype[j] = p->ctype ? p->ctype[k] : 'C';
        if (d->colscalestore) d->colscalestore[j] = 1.0;
        d->obj[j] /= colfac(d, j);
        d->lb[j] = bound_in(d, j, d->lb[j]);
        d->ub[j] = bound_in(d, j, d->ub[j]);
    }
    for (int k = 0; k < p->rcnt; k++) {
        int i = m0 + k;
        if (d->rowscalestore) d->rowscalestore[i] = 1.0;
        d->rhs[i] = (p->rhs ? p->rhs[k] : 0.0) / rowfac(d, i);
        d->sense[i] = p->sense ? p->sense[k] : 'E';
        if (d->rngval) d->rngval[i] = (p->rngval ? p->rngval[k] : 0.0) / rowfac(d, i);
    }
    d->ncols = d->nstruct = n1;
    d->nrows = m1;
    for (int j = n0; j < n1; j++) {
        d->lowerkind[j] = bound_kind(d->lb[j]);
        d->upperkind[j] = bound_kind(d->ub[j]);
    }
    if (p->nzcnt > 0) {
        long added = work_plan(d, &w, p->nzcnt, p->nzi, p->nzj, p->nzv);
        st = work_room(env, lp, &w, added);
        if (st == 0) work_apply(d, &w, p->nzi, p->nzj, p->nzv);
        work_free(&w);
    }
    int st2 = lp_reform(env, lp);
    return st != 0 ? st : st2;
}

/* ---- dropping rows and columns ------------------------------------------------------ */

/* The map old -> new index of a delstat; the count kept. */
static int make_map(const int *delstat, int n, int *map) {
    int k = 0;
    for (int i = 0; i < n; i++) map[i] = delstat[i] ? -1 : k++;
    return k;
}

/* The names kept, in order. */
static int keep_names(TRVenv env, TRVlp lp, int which, char **names, int n,
                      const int *map, int kept) {
    if (names == nullptr) return 0;
    const char **list = trv_alloc<const char *>(kept);
    if (list == nullptr) return 1001;
    for (int i = 0; i < n; i++)
        if (map[i] >= 0) list[map[i]] = names[i];
    int st = names_commit(env, lp, which, kept, list);
    trv_free(&list);
    return st;
}

int lp_droprows(TRVenv env, TRVlp lp, int *delstat) {
    lp_data *d = lp->lpdata;
    int m = d->nrows;
    int *map = trv_alloc<int>(m);
    if (map == nullptr) return 1001;
    int m1 = make_map(delstat, m, map);
    int st = keep_names(env, lp, NAMES_ROWS, d->rowname, m, map, m1);
    if (st != 0) {
        trv_free(&map);
        return st;
    }
    for (int j = 0; j < d->ncols; j++) {
        int out = d->matbeg[j];
        for (int k = d->matbeg[j]; k < d->colend[j]; k++) {
            int i = map[d->matind[k]];
            if (i < 0) continue;
            d->matind[out] = i;
            d->matval[out++] = d->matval[k];
        }
        d->colend[j] = out;
        d->matcnt[j] = out - d->matbeg[j];
    }
    d->nstruct = d->ncols;
    for (int i = 0; i < m; i++) {
        int t = map[i];
        if (t < 0 || t == i) continue;
        d->rhs[t] = d->rhs[i];
        d->sense[t] = d->sense[i];
        if (d->rngval) d->rngval[t] = d->rngval[i];
        if (d->rowscalestore) d->rowscalestore[t] = d->rowscalestore[i];
    }
    d->nrows = m1;
    for (int i = 0; i < m; i++) delstat[i] = map[i];
    trv_free(&map);
    if (m1 == 0 && (d->rowscalestore != nullptr || d->colscalestore != nullptr))
        lp_dropscale(d);
    return lp_reform(env, lp);
}

/* Free-row entries follow the columns: dropped or renumbered. */
static void rims_dropcols(lp_data *d, const int *map) {
    if (d->nfreerows == 0 || d->rimbeg == nullptr) return;
    int out = lp_rimlow(d);
    for (int k = 0; k < d->nfreerows; k++) {
        int b = d->rimbeg[k], c = d->rimcnt[k], start = out;
        for (int q = b; q < b + c; q++) {
            int j = map[d->matind[q]];
            if (j < 0) continue;
            d->matind[out] = j;
            d->matval[out++] = d->matval[q];
        }
        d->rimbeg[k] = start;
        d->rimcnt[k] = out - start;
    }
    lp_rimtohigh(d);
}

int lp_dropcols(TRVenv env, TRVlp lp, int *delstat) {
    lp_data *d = lp->lpdata;
    int n = d->ncols;
    int *map = trv_alloc<int>(n);
    if (map == nullptr) return 1001;
    int n1 = make_map(delstat, n, map);
    int st = keep_names(env, lp, NAMES_COLS, d->colname, n, map, n1);
    if (st != 0) {
        trv_free(&map);
        return st;
    }
    for (int j = 0; j < n; j++) {
        int t = map[j];
        if (t < 0 || t == j) continue;
        d->obj[t] = d->obj[j];
        d->lb[t] = d->lb[j];
        d->ub[t] = d->ub[j];
        d->matbeg[t] = d->matbeg[j];
        d->matcnt[t] = d->matcnt[j];
        d->colend[t] = d->colend[j];
        if (d->ctype) d->ctype[t] = d->ctype[j];
        if (d->colscalestore) d->colscalestore[t] = d->colscalestore[j];
    }
    rims_dropcols(d, map);
    d->ncols = d->nstruct = n1;
    for (int j = 0; j < n; j++) delstat[j] = map[j];
    trv_free(&map);
    return lp_reform(env, lp);
}
