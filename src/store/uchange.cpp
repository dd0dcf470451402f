/*
 * uchange.cpp - changes of values in place: objective, right-hand sides,
 * ranges, senses, bounds, single entries and lists of them, the objective
 * sense, names, and the report of the room left.
 *
 * Every change checks all of its input before it touches the model, so a
 * bad entry anywhere in a list leaves the model as it was. Values go in
 * through the scaling in force: an objective entry is divided by its
 * column's factor, a bound multiplied by it, a right-hand side or range
 * divided by its row's factor.
 */
#include <cstring>

#include "store/change.h"

/* ---- shared frame pieces ----------------------------------------------------- */

int check_indices(TRVenv env, int cnt, const int *ind, int count, bool cols) {
    if (cnt < 0) return 1003;
    for (int k = 0; k < cnt; k++)
        if (ind[k] < 0 || ind[k] >= count) return env_error(env, cols ? 1201 : 1203, ind[k]);
    return 0;
}

int check_senses(TRVenv env, int cnt, const char *sense) {
    for (int k = 0; k < cnt; k++)
        if (sense[k] != 'L' && sense[k] != 'G' && sense[k] != 'E' && sense[k] != 'R')
            return env_error(env, 1215, k);
    return 0;
}

/* The presolve record cannot follow changes yet: it is told and dropped by
 * its module. */
void presolve_follow(TRVenv env, TRVlp lp, const char *message) {
    if (lp->presolve != nullptr) TRVmsg(env->warnchannel, "%s", message);
}

/* The checks of a list change: cnt, arrays, indices. */
static int list_args(TRVenv env, TRVlp lp, int cnt, const int *ind, const void *a,
                     const void *b, bool cols) {
    if (cnt < 0) return 1003;
    if (cnt > 0 && (ind == nullptr || a == nullptr || b == nullptr)) return 1004;
    lp_data *d = lp->lpdata;
    return check_indices(env, cnt, ind, cols ? d->ncols : d->nrows, cols);
}

/* ---- objective, right-hand side, ranges ------------------------------------------ */

TRV_EXPORT int TRVchgobj(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         const double *values) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = list_args(env, lp, cnt, indices, values, values, true);
    if (st == 0 && cnt > 0) {
        lp_data *d = lp->lpdata;
        presolve_follow(env, lp, "Warning: Changing obj. of the presolved model fails.\n");
        invalidate(env, lp, 14);
        for (int k = 0; k < cnt; k++) {
            int j = indices[k];
            d->obj[j] = values[k] / colfac(d, j);
        }
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgrhs(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         const double *values) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = list_args(env, lp, cnt, indices, values, values, false);
    if (st == 0 && cnt > 0) {
        lp_data *d = lp->lpdata;
        presolve_follow(env, lp, "Warning: Changing rhs of the presolved model fails.\n");
        invalidate(env, lp, 8);
        for (int k = 0; k < cnt; k++) {
            int i = indices[k];
            d->rhs[i] = values[k] / rowfac(d, i);
        }
    }
    return call_leave(env, st);
}

/* The range column of row i, or -1. */
static int range_col(const lp_data *d, int i) {
    for (int j = d->ncols; j < d->nstruct; j++)
        if (d->matcnt[j] > 0 && d->matind[d->matbeg[j]] == i) return j;
    return -1;
}

/* Stores the range of row i and moves its range column's bounds along. */
static void set_range(lp_data *d, int i, double v) {
    double r = v / rowfac(d, i);
    d->rngval[i] = r;
    int j = d->sense[i] == 'R' ? range_col(d, i) : -1;
    if (j < 0) return;
    d->lb[j] = r >= 0 ? 0.0 : r;
    d->ub[j] = r >= 0 ? r : 0.0;
    d->lowerkind[j] = bound_kind(d->lb[j]);
    d->upperkind[j] = bound_kind(d->ub[j]);
}

/* A range array for a library-owned model that has none. */
static int need_ranges(TRVenv env, TRVlp lp) {
    lp_data *d = lp->lpdata;
    if (d->rngval != nullptr) return 0;
    if (lp->memmodel != MEM_COPY) return env_error(env, 1216);
    d->rngval = trv_zalloc<double>(d->rowspace);
    return d->rngval == nullptr ? 1001 : 0;
}

TRV_EXPORT int TRVchgrngval(TRVenv env, TRVlp lp, int cnt, const int *indices,
                            const double *values) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = list_args(env, lp, cnt, indices, values, values, false);
    if (st == 0 && cnt > 0) st = need_ranges(env, lp);
    if (st == 0 && cnt > 0) {
        invalidate(env, lp, 58);
        for (int k = 0; k < cnt; k++) set_range(lp->lpdata, indices[k], values[k]);
    }
    return call_leave(env, st);
}

/* ---- senses ---------------------------------------------------------------------- */

TRV_EXPORT int TRVchgsense(TRVenv env, TRVlp lp, int cnt, const int *indices,
                           const char *sense) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = list_args(env, lp, cnt, indices, sense, sense, false);
    if (st == 0) st = check_senses(env, cnt, sense);
    if (st == 0 && cnt > 0) {
        lp_data *d = lp->lpdata;
        /* room for the range columns of the new senses, before any change */
        int nranged = 0;
        for (int i = 0; i < d->nrows; i++) nranged += d->sense[i] == 'R';
        for (int k = 0; k < cnt; k++)
            nranged += (sense[k] == 'R') - (d->sense[indices[k]] == 'R');
        long nz = 0;
        for (int j = 0; j < d->ncols; j++) nz += d->matcnt[j];
        nz += nranged + lp_rimnz(d);
        st = lp_ensure(env, lp, d->ncols + nranged, d->nrows, static_cast<int>(nz), 0, 0);
        if (st == 0) {
            lp_rimtohigh(d);
            invalidate(env, lp, 33);
            for (int k = 0; k < cnt; k++) d->sense[indices[k]] = sense[k];
            st = lp_reform(env, lp);
        }
    }
    return call_leave(env, st);
}

/* ---- bounds ----------------------------------------------------------------------- */

/* The checks of a bound list. */
static int bounds_check(TRVenv env, TRVlp lp, int cnt, const int *indices,
                        const char *lu, const double *bd) {
    int st = list_args(env, lp, cnt, indices, lu, bd, true);
    for (int k = 0; st == 0 && k < cnt; k++)
        if (lu[k] != 'L' && lu[k] != 'U' && lu[k] != 'B') st = env_error(env, 1229, k);
    return st;
}

/* Applies a checked bound list; an infinite bound on the wrong side is told
 * and skipped. Gives the number of entries taken. */
static int bounds_apply(TRVenv env, lp_data *d, int cnt, const int *indices,
                        const char *lu, const double *bd, bool *taken) {
    int n = 0;
    for (int k = 0; k < cnt; k++) {
        int j = indices[k];
        char c = lu[k];
        double v = bd[k];
        taken[k] = false;
        if ((c == 'L' || c == 'B') && v >= TRV_INF) {
            TRVmsg(env->warnchannel, "Warning:  Infinity lower bound ignored.\n");
            continue;
        }
        if ((c == 'U' || c == 'B') && v <= -TRV_INF) {
            TRVmsg(env->warnchannel, "Warning:  -Infinity upper bound ignored.\n");
            continue;
        }
        double s = bound_in(d, j, v);
        if (c == 'L' || c == 'B') {
            d->lb[j] = s;
            d->lowerkind[j] = bound_kind(s);
        }
        if (c == 'U' || c == 'B') {
            d->ub[j] = s;
            d->upperkind[j] = bound_kind(s);
        }
        taken[k] = true;
        n++;
    }
    return n;
}

static int bounds_change(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         const char *lu, const double *bd, bool tighten) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = bounds_check(env, lp, cnt, indices, lu, bd);
    bool *taken = st == 0 && cnt > 0 ? trv_alloc<bool>(cnt) : nullptr;
    if (st == 0 && cnt > 0 && taken == nullptr) st = 1001;
    if (st == 0 && cnt > 0) {
        lp_data *d = lp->lpdata;
        presolve_follow(env, lp, "Warning: Changing bounds of the presolved model fails.\n");
        invalidate(env, lp, 4);
        bounds_apply(env, d, cnt, indices, lu, bd, taken);
        lp_setsimple(lp);
        /* a tightening reaches the working LP, so that it stays in step */
        if (tighten && lp->work != nullptr) lp->work->follow_bounds(lp, cnt, indices, taken);
    }
    trv_free(&taken);
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgbds(TRVenv env, TRVlp lp, int cnt, const int *indices,
                         const char *lu, const double *bd) {
    return bounds_change(env, lp, cnt, indices, lu, bd, false);
}

TRV_EXPORT int TRVtightenbds(TRVenv env, TRVlp lp, int cnt, const int *indices,
                             const char *lu, const double *bd) {
    return bounds_change(env, lp, cnt, indices, lu, bd, true);
}

/* ---- single entries and lists ------------------------------------------------------- */

static bool entry_present(const lp_data *d, int i, int j) {
    for (int k = d->matbeg[j]; k < d->colend[j]; k++)
        if (d->matind[k] == i) return true;
    return false;
}

TRV_EXPORT int TRVchgcoef(TRVenv env, TRVlp lp, int i, int j, double newvalue) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    lp_data *d = st == 0 ? lp->lpdata : nullptr;
    if (st == 0 && i == -1 && j < 0) st = 1211;
    if (st == 0 && i == -1) {
        if (!range_check(env, "TRVchgcoef", j, j, 0, d->ncols)) {
            st = 1200;
        } else {
            invalidate(env, lp, 13);
            d->obj[j] = newvalue / colfac(d, j);
        }
    } else if (st == 0 && (j == -1 || j == -2)) {
        /* j = -1: the right-hand side of row i; j = -2: its range */
        if (!range_check(env, "TRVchgcoef", i, i, 0, d->nrows)) {
            st = 1200;
        } else if (j == -1) {
            invalidate(env, lp, d->sense[i] == 'R' ? 6 : 10);
            d->rhs[i] = newvalue / rowfac(d, i);
        } else {
            st = need_ranges(env, lp);
            if (st == 0) {
                invalidate(env, lp, 3);
                set_range(d, i, newvalue);
            }
        }
    } else if (st == 0) {
        if (!range_check(env, "TRVchgcoef", i, i, 0, d->nrows) ||
            !range_check(env, "TRVchgcoef", j, j, 0, d->ncols)) {
            st = 1200;
        } else if (newvalue != 0.0 || entry_present(d, i, j)) {
            invalidate(env, lp, 34);
            st = lp_setentries(env, lp, 1, &i, &j, &newvalue);
        }
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgcoeflist(TRVenv env, TRVlp lp, int numcoefs, const int *rowlist,
                              const int *collist, const double *vallist) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0 && numcoefs < 0) st = 1003;
    if (st == 0 && numcoefs > 0 && (!rowlist || !collist || !vallist)) st = 1004;
    if (st == 0) st = check_indices(env, numcoefs, rowlist, lp->lpdata->nrows, false);
    if (st == 0) st = check_indices(env, numcoefs, collist, lp->lpdata->ncols, true);
    if (st == 0 && numcoefs > 0) {
        invalidate(env, lp, 34);
        st = lp_setentries(env, lp, numcoefs, rowlist, collist, vallist);
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgobjsen(TRVenv env, TRVlp lp, int maxormin) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0 && maxormin != 1 && maxormin != -1) st = 1003;
    if (st == 0) {
        if (lp->probtype == PROB_QP)
            TRVmsg(env->warnchannel,
                   "Warning:  Changing objective sense may make QP unsolvable.\n");
        lp->lpdata->objsen = maxormin;
        invalidate(env, lp, 12);
    }
    return call_leave(env, st);
}

/* ---- names --------------------------------------------------------------------------- */

TRV_EXPORT int TRVchgprobname(TRVenv env, TRVlp lp, const char *probname) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0 && probname == nullptr) st = 1004;
    if (st == 0 && std::strlen(probname) + 1.0 >= 2099999999.0) st = 1012;
    if (st == 0) {
        char *copy = trv_strdup(probname);
        if (copy == nullptr) {
            st = 1001;
        } else {
            trv_free(&lp->lpdata->probname);
            lp->lpdata->probname = copy;
            invalidate(env, lp, 23);
        }
    }
    return call_leave(env, st);
}

/* New names for the listed rows or columns; the others keep theirs, or get
 * default names when the model had none. */
static int rename(TRVenv env, TRVlp lp, int which, int cnt, const int *indices,
                  char **names) {
    int st = 0;
    lp_data *d = lp->lpdata;
    bool cols = which == NAMES_COLS;
    int count = cols ? d->ncols : d->nrows;
    char **cur = cols ? d->colname : d->rowname;
    if (cnt < 0) return 1003;
    if (cnt == 0) return 0;
    if (indices == nullptr || names == nullptr) return 1004;
    st = check_indices(env, cnt, indices, count, cols);
    for (int k = 0; st == 0 && k < cnt; k++)
        if (names[k] == nullptr) st = env_error(env, 1224, k);
    if (st != 0) return st;
    const char **list = trv_alloc<const char *>(count);
    char *old = trv_alloc<char>(count);
    char buf[32];
    if (list == nullptr || old == nullptr) st = 1001;
    for (int k = 0; st == 0 && k < count; k++) {
        list[k] = cur ? cur[k] : nullptr;
        old[k] = 1;
    }
    for (int k = 0; st == 0 && k < cnt; k++) {
        list[indices[k]] = names[k];
        old[indices[k]] = 0;
    }
    if (st == 0 && par_int(env, 1056) == 1) {
        /* the check compares texts: defaults are spelled out for it */
        char **spelled = trv_zalloc<char *>(count);
        if (spelled == nullptr) st = 1001;
        for (int k = 0; st == 0 && k < count; k++) {
            if (list[k] != nullptr) continue;
            std::snprintf(buf, sizeof buf, cols ? "x%d" : "c%d", k + 1);
            spelled[k] = trv_strdup(buf);
            if (spelled[k] == nullptr) st = 1001;
            list[k] = spelled[k];
        }
        if (st == 0) st = names_check(env, count, list, old);
        for (int k = 0; spelled && k < count; k++) trv_free(&spelled[k]);
        trv_free(&spelled);
        for (int k = 0; st == 0 && cur == nullptr && k < count; k++)
            if (old[k]) list[k] = nullptr;
    }
    if (st == 0) st = names_commit(env, lp, which, count, list);
    if (st == 0) invalidate(env, lp, 23);
    trv_free(&list);
    trv_free(&old);
    return st;
}

TRV_EXPORT int TRVchgcolname(TRVenv env, TRVlp lp, int cnt, const int *indices,
                             char **newname) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = rename(env, lp, NAMES_COLS, cnt, indices, newname);
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgrowname(TRVenv env, TRVlp lp, int cnt, const int *indices,
                             char **newname) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) st = rename(env, lp, NAMES_ROWS, cnt, indices, newname);
    return call_leave(env, st);
}

TRV_EXPORT int TRVchgname(TRVenv env, TRVlp lp, int key, int ij, const char *name) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st != 0) {
    } else if (key != 'c' && key != 'r') {
        st = 1003;
    } else {
        char *nm = const_cast<char *>(name);
        st = rename(env, lp, key == 'c' ? NAMES_COLS : NAMES_ROWS, 1, &ij,
                    name ? &nm : nullptr);
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVdelnames(TRVenv env, TRVlp lp) {
    int st = call_enter(&env, &lp, CALL_CHANGE);
    if (st == 0) {
        names_commit(env, lp, NAMES_COLS, 0, nullptr);
        names_commit(env, lp, NAMES_ROWS, 0, nullptr);
        invalidate(env, lp, 23);
    }
    return call_leave(env, st);
}

/* ---- room left ------------------------------------------------------------------------ */

static long names_used(char **names, int count) {
    long n = 0;
    for (int k = 0; k < count; k++) n += static_cast<long>(std::strlen(names[k])) + 1;
    return n;
}

TRV_EXPORT int TRVgetspace(TRVenv env, TRVlp lp, int *colfree_p, int *rowfree_p,
                           int *nzfree_p, int *colnamefree_p, int *rownamefree_p) {
    if (colfree_p) *colfree_p = 0;
    if (rowfree_p) *rowfree_p = 0;
    if (nzfree_p) *nzfree_p = 0;
    if (colnamefree_p) *colnamefree_p = 0;
    if (rownamefree_p) *rownamefree_p = 0;
    int st = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (st == 0) {
        const lp_data *d = lp->lpdata;
        long nz = 0;
        for (int j = 0; j < d->nstruct; j++) nz += d->matcnt[j];
        for (int k = 0; d->rimcnt && k < d->nfreerows; k++) nz += d->rimcnt[k];
        if (colfree_p) *colfree_p = d->colspace - d->nstruct;
        if (rowfree_p) *rowfree_p = d->rowspace - d->nrows;
        if (nzfree_p) *nzfree_p = static_cast<int>(d->nzspace - nz);
        /* a store without names is free as a whole */
        if (colnamefree_p && d->colname == nullptr && d->colnamestore != nullptr)
            *colnamefree_p = d->colnamespace;
        if (rownamefree_p && d->rowname == nullptr && d->rownamestore != nullptr)
            *rownamefree_p = d->rownamespace;
        if (colnamefree_p && d->colname)
            *colnamefree_p = static_cast<int>(d->colnamespace - names_used(d->colname, d->ncols));
        if (rownamefree_p && d->rowname)
            *rownamefree_p = static_cast<int>(d->rownamespace - names_used(d->rowname, d->nrows));
    }
    return call_leave(env, st);
}
