/*
 * query.cpp - model queries: counts, type and status.
 */
#include <cstring>

#include "store/lp.h"

/* A count query: a bad handle reports and counts as 0. */
static lp_data *query_data(TRVenv *env, TRVlp lp, unsigned flags) {
    int status = call_enter(env, &lp, flags);
    if (status != 0) {
        call_leave(*env, status);
        return nullptr;
    }
    return lp->lpdata;
}

/* The counts include pending additions without merging them. */
static int pending(const lp_data *d, int what) {
    if (d->cache == nullptr) return 0;
    return lp_cachecount(d->cache, what);
}

TRV_EXPORT int TRVgetnumcols(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(&env, lp, CALL_VIEW);
    return d ? d->ncols + pending(d, 0) : 0;
}

TRV_EXPORT int TRVgetnumrows(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(&env, lp, CALL_VIEW);
    return d ? d->nrows + pending(d, 1) : 0;
}

TRV_EXPORT int TRVgetnumnz(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(&env, lp, CALL_VIEW);
    if (d == nullptr) return 0;
    int nz = 0;
    for (int j = 0; j < d->ncols; j++) nz += d->matcnt[j];
    return nz + pending(d, 2);
}

TRV_EXPORT int TRVgetprobtype(TRVenv env, TRVlp lp) {
    int status = call_enter(&env, &lp, 0);
    if (status != 0) {
        call_leave(env, status);
        return -1;
    }
    return lp->probtype;
}

TRV_EXPORT int TRVgetstat(TRVenv env, TRVlp lp) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status != 0) {
        call_leave(env, status);
        return 0;
    }
    return lp->stat;
}

/* ---- scalar getters --------------------------------------------------- */

#define SCALAR_GETTER(fname, expr)                  \
    TRV_EXPORT int fname(TRVenv env, TRVlp lp) {    \
        lp_data *d = query_data(&env, lp, CALL_VIEW); \
        return d ? (expr) : 0;                      \
    }

TRV_EXPORT int TRVgetnumrims(TRVenv env, TRVlp lp) {
    lp_data *d = query_data(&env, lp, CALL_VIEW | CALL_MERGE);
    return d ? d->nrims : 0;
}

SCALAR_GETTER(TRVgetnumfreerows, d->nfreerows)
SCALAR_GETTER(TRVgetobjsen, d->objsen)
SCALAR_GETTER(TRVgetcolspace, d->colspace)
SCALAR_GETTER(TRVgetrowspace, d->rowspace)
SCALAR_GETTER(TRVgetnzspace, d->nzspace)
SCALAR_GETTER(TRVgetrimspace, d->rimspace)
SCALAR_GETTER(TRVgetrimnzspace, d->rimnzspace)
SCALAR_GETTER(TRVgetcolnamespace, d->colnamespace)
SCALAR_GETTER(TRVgetrownamespace, d->rownamespace)
SCALAR_GETTER(TRVgetrimnamespace, d->rimnamespace)

static int rim_nz(const lp_data *d, int from, int to) {
    int nz = 0;
    if (d->rimcnt != nullptr)
        for (int k = from; k < to; k++) nz += d->rimcnt[k];
    return nz;
}

SCALAR_GETTER(TRVgetnumfreerownz, rim_nz(d, 0, d->nfreerows))
SCALAR_GETTER(TRVgetnumrimnz, rim_nz(d, d->nfreerows, d->nrims))

/* ---- range getters ------------------------------------------------------ */

/* The arguments of a range getter over count items: an empty range
 * writes nothing; else the range and the array. */
static int range_args(TRVenv env, const char *fname, const void *array, int begin,
                      int end, int count) {
    if (begin > end) return 0;
    if (!range_check(env, fname, begin, end, 0, count)) return 1200;
    return array == nullptr ? 1004 : 0;
}

/* Opens a range getter: the frame and then its arguments; the model's
 * data, or null with *status set. */
static lp_data *range_frame(TRVenv *env, TRVlp lp, const char *fname, const void *array,
                            int begin, int end, int count_kind, int *status) {
    *status = call_enter(env, &lp, CALL_VIEW | CALL_MERGE);
    if (*status != 0) return nullptr;
    lp_data *d = lp->lpdata;
    int count = count_kind == 0 ? d->ncols : count_kind == 1 ? d->nrows
              : count_kind == 2 ? d->nfreerows : d->nrims;
    *status = range_args(*env, fname, array, begin, end, count);
    return *status == 0 ? d : nullptr;
}

enum { OVER_COLS = 0, OVER_ROWS = 1, OVER_FREEROWS = 2, OVER_RIMS = 3 };

/* The matrix getters check their arrays after the size probe, so the frame
 * is given this stand-in for the array it would otherwise check. */
static const char arrays_checked_later = 0;

TRV_EXPORT int TRVgetobj(TRVenv env, TRVlp lp, double *obj, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetobj", obj, begin, end, OVER_COLS, &st);
    for (int j = begin; d && j <= end; j++)
        obj[j - begin] = d->colscale ? d->obj[j] * d->colscale[j] : d->obj[j];
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetrhs(TRVenv env, TRVlp lp, double *rhs, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetrhs", rhs, begin, end, OVER_ROWS, &st);
    for (int i = begin; d && i <= end; i++)
        rhs[i - begin] = d->rowscale ? d->rhs[i] * d->rowscale[i] : d->rhs[i];
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetsense(TRVenv env, TRVlp lp, char *sense, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetsense", sense, begin, end, OVER_ROWS, &st);
    for (int i = begin; d && i <= end; i++) sense[i - begin] = d->sense[i];
    return call_leave(env, st);
}

static double unscale_bound(const lp_data *d, int j, double v) {
    if (d->colscale == nullptr || v == TRV_INF || v == -TRV_INF) return v;
    return v / d->colscale[j];
}

TRV_EXPORT int TRVgetlb(TRVenv env, TRVlp lp, double *lb, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetlb", lb, begin, end, OVER_COLS, &st);
    for (int j = begin; d && j <= end; j++) lb[j - begin] = unscale_bound(d, j, d->lb[j]);
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetub(TRVenv env, TRVlp lp, double *ub, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetub", ub, begin, end, OVER_COLS, &st);
    for (int j = begin; d && j <= end; j++) ub[j - begin] = unscale_bound(d, j, d->ub[j]);
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetrngval(TRVenv env, TRVlp lp, double *rngval, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetrngval", rngval, begin, end, OVER_ROWS, &st);
    if (d && begin <= end && d->rngval == nullptr) {
        st = 1216;
        d = nullptr;
    }
    for (int i = begin; d && i <= end; i++)
        rngval[i - begin] = d->rowscale ? d->rngval[i] * d->rowscale[i] : d->rngval[i];
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetfreerowind(TRVenv env, TRVlp lp, int *ind, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetfreerowind", ind, begin, end, OVER_FREEROWS, &st);
    if (d && begin <= end && d->freerowind == nullptr) {
        st = 1218;
        d = nullptr;
    }
    for (int k = begin; d && k <= end; k++) ind[k - begin] = d->freerowind[k];
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetrimtype(TRVenv env, TRVlp lp, int *type, int begin, int end) {
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetrimtype", type, begin, end, OVER_RIMS, &st);
    if (d && begin <= end && d->rimtype == nullptr) {
        st = 1218;
        d = nullptr;
    }
    for (int k = begin; d && k <= end; k++) type[k - begin] = d->rimtype[k];
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetcoef(TRVenv env, TRVlp lp, int i, int j, double *coef_p) {
    int st = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (st == 0) {
        lp_data *d = lp->lpdata;
        if (!range_check(env, "TRVgetcoef", i, i, 0, d->nrows) ||
            !range_check(env, "TRVgetcoef", j, j, 0, d->ncols)) {
            st = 1200;
        } else if (coef_p == nullptr) {
            st = 1004;
        } else {
            *coef_p = 0.0;
            for (int k = d->matbeg[j]; k < d->colend[j]; k++)
                if (d->matind[k] == i) {
                    double v = d->matval[k];
                    if (d->colscale) v *= d->colscale[j] * d->rowscale[i];
                    *coef_p = v;
                    break;
                }
        }
    }
    return call_leave(env, st);
}

/* ---- matrix getters --------------------------------------------------------- */

/* Shared ending of the matrix and name getters: the space convention. */
static int space_result(int space, long total, int *nzcnt_p, int *surplus_p) {
    long surplus = space - total;
    if (surplus_p) *surplus_p = static_cast<int>(surplus);
    if (surplus < 0) {
        if (nzcnt_p) *nzcnt_p = space;
        return 1207;
    }
    if (nzcnt_p) *nzcnt_p = static_cast<int>(total);
    return 0;
}

TRV_EXPORT int TRVgetcols(TRVenv env, TRVlp lp, int *nzcnt_p, int *cmatbeg,
                          int *cmatind, double *cmatval, int cmatspace,
                          int *surplus_p, int begin, int end) {
    if (nzcnt_p) *nzcnt_p = 0;
    if (surplus_p) *surplus_p = 0;
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetcols", &arrays_checked_later, begin, end, OVER_COLS, &st);
    if (d == nullptr || begin > end) return call_leave(env, st);
    long total = 0;
    for (int j = begin; j <= end; j++) total += d->matcnt[j];
    if (cmatspace == 0 && surplus_p != nullptr) {
        /* a probe of the size: silent */
        *surplus_p = static_cast<int>(-total);
        if (cmatbeg)
            for (int j = begin; j <= end; j++) cmatbeg[j - begin] = 0;
        return total > 0 ? 1207 : 0;
    }
    if (!nzcnt_p || !cmatbeg || !cmatind || !cmatval || !surplus_p)
        return call_leave(env, 1004);
    long k = 0;
    for (int j = begin; j <= end; j++) {
        cmatbeg[j - begin] = static_cast<int>(k);
        for (int p = d->matbeg[j]; p < d->colend[j]; p++, k++) {
            if (k >= cmatspace) continue;
            int i = d->matind[p];
            double v = d->matval[p];
            if (d->colscale) v *= d->colscale[j] * d->rowscale[i];
            cmatind[k] = i;
            cmatval[k] = v;
        }
    }
    return call_leave(env, space_result(cmatspace, total, nzcnt_p, surplus_p));
}

TRV_EXPORT int TRVgetrows(TRVenv env, TRVlp lp, int *nzcnt_p, int *rmatbeg,
                          int *rmatind, double *rmatval, int rmatspace,
                          int *surplus_p, int begin, int end) {
    if (nzcnt_p) *nzcnt_p = 0;
    if (surplus_p) *surplus_p = 0;
    int st;
    lp_data *d = range_frame(&env, lp, "TRVgetrows", &arrays_checked_later, begin, end, OVER_ROWS, &st);
    if (d == nullptr || begin > end) return call_leave(env, st);
    int nr = end - begin + 1;
    int *cnt = trv_zalloc<int>(nr + 1);
    if (cnt == nullptr) return call_leave(env, 1001);
    for (int j = 0; j < d->ncols; j++)
        for (int p = d->matbeg[j]; p < d->colend[j]; p++) {
            int i = d->matind[p];
            if (i >= begin && i <= end) cnt[i - begin + 1]++;
        }
    for (int r = 0; r < nr; r++) cnt[r + 1] += cnt[r]; /* starts */
    long total = cnt[nr];
    if (rmatspace == 0 && surplus_p != nullptr) {
        *surplus_p = static_cast<int>(-total);
        if (rmatbeg)
            for (int r = 0; r < nr; r++) rmatbeg[r] = 0;
        trv_free(&cnt);
        return total > 0 ? 1207 : 0;
    }
    if (!nzcnt_p || !rmatbeg || !rmatind || !rmatval || !surplus_p) {
        trv_free(&cnt);
        return call_leave(env, 1004);
    }
    for (int r = 0; r < nr; r++) rmatbeg[r] = cnt[r];
    /* columns in order, so each row's entries come out by column */
    for (int j = 0; j < d->ncols; j++)
        for (int p = d->matbeg[j]; p < d->colend[j]; p++) {
            int i = d->matind[p];
            if (i < begin || i > end) continue;
            int k = cnt[i - begin]++;
            if (k >= rmatspace) continue;
            double v = d->matval[p];
            if (d->colscale) v *= d->colscale[j] * d->rowscale[i];
            rmatind[k] = j;
            rmatval[k] = v;
        }
    trv_free(&cnt);
    return call_leave(env, space_result(rmatspace, total, nzcnt_p, surplus_p));
}

/* Free rows (rims from 0 to nfreerows - 1) keep their entries in the top
 * block of matind and matval; the other rims in rimind and rimval. Both
 * are stored unscaled, by column. */
static int rim_matrix(TRVenv env, TRVlp lp, const char *fname, bool freerows,
                      int *nzcnt_p, int *beg, int *ind, double *val, int space,
                      int *surplus_p, int begin, int end) {
    if (nzcnt_p) *nzcnt_p = 0;
    if (surplus_p) *surplus_p = 0;
    int st = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (st != 0) return call_leave(env, st);
    const lp_data *d = lp->lpdata;
    if (d->rimbeg == nullptr || d->rimcnt == nullptr || d->nfreerows == 0)
        return call_leave(env, 1218);
    if (begin > end) return 0;
    int low = freerows ? 0 : d->nfreerows, count = freerows ? d->nfreerows : d->nrims;
    if (!range_check(env, fname, begin, end, low, count)) return call_leave(env, 1200);
    const int *src_ind = freerows ? d->matind : d->rimind;
    const double *src_val = freerows ? d->matval : d->rimval;
    if (!freerows && (src_ind == nullptr || src_val == nullptr)) return call_leave(env, 1218);
    long total = 0;
    for (int k = begin; k <= end; k++) total += d->rimcnt[k];
    if (space == 0 && surplus_p != nullptr) {
        *surplus_p = static_cast<int>(-total);
        if (beg)
            for (int k = begin; k <= end; k++) beg[k - begin] = 0;
        return total > 0 ? 1207 : 0;
    }
    if (!nzcnt_p || !beg || !ind || !val || !surplus_p) return call_leave(env, 1004);
    long n = 0;
    for (int k = begin; k <= end; k++) {
        beg[k - begin] = static_cast<int>(n);
        for (int q = d->rimbeg[k]; q < d->rimbeg[k] + d->rimcnt[k]; q++, n++) {
            if (n >= space) continue;
            ind[n] = src_ind[q];
            val[n] = src_val[q];
        }
    }
    return call_leave(env, space_result(space, total, nzcnt_p, surplus_p));
}

TRV_EXPORT int TRVgetfreerows(TRVenv env, TRVlp lp, int *nzcnt_p, int *fmatbeg,
                              int *fmatind, double *fmatval, int fmatspace,
                              int *surplus_p, int begin, int end) {
    return rim_matrix(env, lp, "TRVgetfreerows", true, nzcnt_p, fmatbeg, fmatind,
                      fmatval, fmatspace, surplus_p, begin, end);
}

TRV_EXPORT int TRVgetrims(TRVenv env, TRVlp lp, int *nzcnt_p, int *rmatbeg,
                          int *rmatind, double *rmatval, int rmatspace,
                          int *surplus_p, int begin, int end) {
    return rim_matrix(env, lp, "TRVgetrims", false, nzcnt_p, rmatbeg, rmatind,
                      rmatval, rmatspace, surplus_p, begin, end);
}

/* ---- names ---------------------------------------------------------------- */

static int names_out(TRVenv env, char **names, const char *fname, int count,
                     char **name, char *store, int storespace, int *surplus_p,
                     int begin, int end) {
    if (surplus_p) *surplus_p = 0;
    if (begin > end) return 0;
    if (!range_check(env, fname, begin, end, 0, count)) return 1200;
    if (names == nullptr) return 1219;
    long need = 0;
    for (int k = begin; k <= end; k++) need += static_cast<long>(std::strlen(names[k])) + 1;
    if (storespace == 0 && surplus_p != nullptr) {
        *surplus_p = static_cast<int>(-need);
        return -1207; /* a probe: silent */
    }
    if (!name || !store || !surplus_p) return 1004;
    long pos = 0;
    for (int k = begin; k <= end; k++) {
        size_t n = std::strlen(names[k]) + 1;
        if (pos + static_cast<long>(n) <= storespace) {
            std::memcpy(store + pos, names[k], n);
            name[k - begin] = store + pos;
        } else {
            name[k - begin] = nullptr;
        }
        pos += static_cast<long>(n);
    }
    return space_result(storespace, need, nullptr, surplus_p);
}

TRV_EXPORT int TRVgetcolname(TRVenv env, TRVlp lp, char **name, char *namestore,
                             int storespace, int *surplus_p, int begin, int end) {
    int st = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (st == 0) {
        lp_data *d = lp->lpdata;
        st = names_out(env, d->colname, "TRVgetcname", d->ncols, name, namestore,
                       storespace, surplus_p, begin, end);
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetrowname(TRVenv env, TRVlp lp, char **name, char *namestore,
                             int storespace, int *surplus_p, int begin, int end) {
    int st = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (st == 0) {
        lp_data *d = lp->lpdata;
        st = names_out(env, d->rowname, "TRVgetrname", d->nrows, name, namestore,
                       storespace, surplus_p, begin, end);
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetrimname(TRVenv env, TRVlp lp, char **name, char *namestore,
                             int storespace, int *surplus_p, int begin, int end) {
    int st = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE);
    if (st == 0) {
        lp_data *d = lp->lpdata;
        st = names_out(env, d->rimname, "TRVgetrimname", d->nrims, name, namestore,
                       storespace, surplus_p, begin, end);
    }
    return call_leave(env, st);
}

/* One string into a caller's buffer, with the space convention. */
static int string_out(const char *s, char *buf, int bufspace, int *surplus_p) {
    long need = static_cast<long>(std::strlen(s)) + 1;
    if (bufspace == 0 && surplus_p != nullptr) {
        *surplus_p = static_cast<int>(-need);
        return -1207;
    }
    if (buf == nullptr || surplus_p == nullptr) return 1004;
    if (need <= bufspace) std::memcpy(buf, s, need);
    return space_result(bufspace, need, nullptr, surplus_p);
}

TRV_EXPORT int TRVgetprobname(TRVenv env, TRVlp lp, char *buf, int bufspace,
                              int *surplus_p) {
    if (surplus_p) *surplus_p = 0;
    int st = call_enter(&env, &lp, CALL_VIEW);
    if (st == 0) st = string_out(lp->lpdata->probname, buf, bufspace, surplus_p);
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetobjname(TRVenv env, TRVlp lp, char *buf, int bufspace,
                             int *surplus_p) {
    if (surplus_p) *surplus_p = 0;
    int st = call_enter(&env, &lp, CALL_VIEW);
    if (st == 0) {
        const char *s = lp->lpdata->objname;
        st = s == nullptr ? 1220 : string_out(s, buf, bufspace, surplus_p);
    }
    return call_leave(env, st);
}

/* The names of the data set and of the chosen RHS, RANGES and BOUNDS
 * vectors, as kept from a file: the pointer to the internal string, which
 * is null when there is none. */
static int name_pointer(TRVenv env, TRVlp lp, char **name_p, int which) {
    int st = call_enter(&env, &lp, CALL_VIEW);
    if (st != 0) {
    } else if (name_p == nullptr) {
        st = 1004;
    } else {
        const lp_data *d = lp->lpdata;
        *name_p = which == 0 ? d->dataname : which == 1 ? d->rhsname
                : which == 2 ? d->rngname : d->bndname;
    }
    return call_leave(env, st);
}

TRV_EXPORT int TRVgetdataname(TRVenv env, TRVlp lp, char **name_p) {
    return name_pointer(env, lp, name_p, 0);
}

TRV_EXPORT int TRVgetrhsname(TRVenv env, TRVlp lp, char **name_p) {
    return name_pointer(env, lp, name_p, 1);
}

TRV_EXPORT int TRVgetrngname(TRVenv env, TRVlp lp, char **name_p) {
    return name_pointer(env, lp, name_p, 2);
}

TRV_EXPORT int TRVgetbndname(TRVenv env, TRVlp lp, char **name_p) {
    return name_pointer(env, lp, name_p, 3);
}
