/*
 * load.cpp - creating, loading, copying, cloning and freeing problems, and
 * the computational form: range columns, implicit slacks, bound kinds and
 * capacities.
 */
#include <cstring>

#include "store/lp.h"
#include "store/basis.h"
#include "store/scale.h"

/* ---- handle checks ------------------------------------------------------- */

bool lp_valid(TRVlp lp) {
    return lp != nullptr && lp->self == lp && lp->lpdata != nullptr;
}

bool lp_resolve(TRVlp *lp) {
    if (!lp_valid(*lp)) return false;
    if ((*lp)->probtype == PROB_RELAXED || (*lp)->probtype == PROB_FIXED)
        *lp = (*lp)->relaxed;
    return lp_valid(*lp);
}

/* The problem's part of the call frame, held by its handle: the view, the
 * type and memory model the call needs, and the merge of pending
 * additions. */
static int lp_check(TRVenv env, void **rec, unsigned flags) {
    TRVlp lp = static_cast<TRVlp>(*rec);
    if (!lp_valid(lp)) return 1009;
    if ((flags & CALL_SINGLE) && (lp->probtype == PROB_RELAXED ||
                                  lp->probtype == PROB_FIXED ||
                                  lp->probtype == PROB_ZEROEDQP))
        return 1023;
    if ((flags & CALL_VIEW) && !lp_resolve(&lp)) return 1009;
    if ((flags & CALL_LOADED) && lp->memmodel != MEM_LOAD) return 1008;
    if ((flags & CALL_COPIED) && lp->memmodel != MEM_COPY) return 1008;
    *rec = lp;
    return (flags & CALL_MERGE) ? lp_flush(env, lp, 1) : 0;
}

/* ---- computational form ---------------------------------------------------- */

static double clamp_inf(double v) {
    if (v <= -TRV_INFTEST) return -TRV_INF;
    if (v >= TRV_INFTEST) return TRV_INF;
    return v;
}

static signed char kind_of(double v) {
    if (v == TRV_INF || v == -TRV_INF) return KIND_INF;
    return v == 0.0 ? KIND_ZERO : KIND_FINITE;
}

/* Bounds of all columns to the stored infinity, then kinds and ends. */
void lp_kinds(lp_data *d) {
    for (int j = 0; j < d->nstruct; j++) {
        d->lb[j] = clamp_inf(d->lb[j]);
        d->ub[j] = clamp_inf(d->ub[j]);
        d->lowerkind[j] = kind_of(d->lb[j]);
        d->upperkind[j] = kind_of(d->ub[j]);
        d->colend[j] = d->matbeg[j] + d->matcnt[j];
    }
}

/* Range columns: a row 'R' gets a column with the single entry -1 in that
 * row, objective 0 and bounds [0, R] or [R, 0]. Old range columns are
 * dropped first, so the rebuild can run after any change. */
int lp_rebuild(TRVenv env, TRVlp lp) {
    lp_data *d = lp->lpdata;
    int nzend = 0;
    for (int j = 0; j < d->ncols; j++)
        if (d->matbeg[j] + d->matcnt[j] > nzend) nzend = d->matbeg[j] + d->matcnt[j];
    int nranged = 0;
    for (int i = 0; i < d->nrows; i++)
        if (d->sense[i] == 'R') nranged++;
    if (d->ncols + nranged > d->colspace || nzend + nranged > d->nzspace) {
        d->nstruct = d->ncols;
        return env_error(env, 1401);
    }
    int j = d->ncols;
    for (int i = 0; i < d->nrows; i++) {
        if (d->sense[i] != 'R') continue;
        double r = d->rngval != nullptr ? d->rngval[i] : 0.0;
        d->matbeg[j] = nzend;
        d->matcnt[j] = 1;
        d->matind[nzend] = i;
        d->matval[nzend] = -1.0;
        nzend++;
        d->obj[j] = 0.0;
        /* under a scaling the stored range is already divided by the
         * row's factor, which is the range column's bound as it stands */
        if (d->colscale != nullptr && d->rowscalestore != nullptr)
            d->colscalestore[j] = 1.0 / d->rowscalestore[i];
        d->lb[j] = r >= 0 ? 0.0 : r;
        d->ub[j] = r >= 0 ? r : 0.0;
        if (d->ctype != nullptr) d->ctype[j] = 'C';
        if (d->colname != nullptr) d->colname[j] = nullptr;
        j++;
    }
    d->nstruct = j;
    lp_kinds(d);
    return 0;
}

/* Implicit slacks of the 'L' and 'G' rows. */
int lp_slacks(TRVenv, TRVlp lp) {
    lp_data *d = lp->lpdata;
    int k = 0;
    for (int i = 0; i < d->nrows; i++) {
        if (d->sense[i] != 'L' && d->sense[i] != 'G') continue;
        d->slackrow[k] = i;
        d->slackval[k] = d->sense[i] == 'L' ? 1.0 : -1.0;
        k++;
    }
    d->ntotal = d->ntotalcopy = d->nstruct + k;
    return 0;
}

void lp_setsimple(TRVlp lp) {
    lp_data *d = lp->lpdata;
    int ns = lp->barrier != nullptr || lp->qp != nullptr || d->ncols < d->nstruct;
    for (int j = 0; !ns && j < d->ncols; j++)
        ns = d->upperkind[j] != KIND_INF || d->lowerkind[j] != KIND_ZERO;
    d->notsimple = ns;
}

void lp_updatecap(TRVenv env, lp_data *d) {
    int p = par_int(env, 1031), r = d->nrows, cap;
    if (p == 0) {
        cap = r >= 50 ? 5001 : 100 * r + 1;
    } else {
        double k = p - 1;
        double v = r * k + 1;
        if (v > 262499999.0) v = 262499999.0;
        double w = (r >= 50 ? 50 * k : r * k) + 1;
        cap = static_cast<int>(v < w ? v : w);
    }
    d->updatecap = d->updatecap2 = cap;
}

/* The size guards of a problem, in double. */
static int size_guard(const lp_data *d) {
    double r = d->nrows, t = d->ntotal, c = d->colspace;
    if (r + t > 262499999.0 || r + c > 524999999.0 ||
        22.0 * r + 2.0 * c > 262499999.0)
        return 1001;
    return 0;
}

/* ---- capacities -------------------------------------------------------- */

/* Moves a name store of oldbytes into a new block of bytes and its
 * pointers along, while the old block still stands. */
static int names_grow(char **names, int count, char **store, long oldbytes, long bytes) {
    char *old = *store;
    char *q = trv_alloc<char>(bytes);
    if (q == nullptr) return 1001;
    std::memcpy(q, old, oldbytes < bytes ? oldbytes : bytes);
    for (int k = 0; k < count; k++)
        if (names[k] != nullptr) names[k] = q + (names[k] - old);
    trv_free(store);
    *store = q;
    return 0;
}

static int grow_cols(lp_data *d, int space) {
    if (space <= d->colspace) return 0;
    int st = 0;
    st = st ? st : trv_grow(&d->obj, space);
    st = st ? st : trv_grow(&d->lb, space);
    st = st ? st : trv_grow(&d->ub, space);
    st = st ? st : trv_grow(&d->matbeg, space);
    st = st ? st : trv_grow(&d->matcnt, space);
    st = st ? st : trv_grow(&d->colend, space);
    st = st ? st : trv_grow(&d->lowerkind, space);
    st = st ? st : trv_grow(&d->upperkind, space);
    if (!st && d->ctype) st = trv_grow(&d->ctype, space);
    if (!st && d->colname) st = trv_grow(&d->colname, space);
    if (!st && d->colscalestore) {
        bool active = d->colscale == d->colscalestore;
        st = trv_grow(&d->colscalestore, space);
        if (active) d->colscale = d->colscalestore;
    }
    if (!st) d->colspace = space;
    return st;
}

static int grow_rows(lp_data *d, int space) {
    if (space <= d->rowspace) return 0;
    int st = 0;
    st = st ? st : trv_grow(&d->rhs, space);
    st = st ? st : trv_grow(&d->sense, space);
    st = st ? st : trv_grow(&d->slackrow, space);
    st = st ? st : trv_grow(&d->slackval, space);
    if (!st && d->rngval) st = trv_grow(&d->rngval, space);
    if (!st && d->rowname) st = trv_grow(&d->rowname, space);
    if (!st && d->rowscalestore) {
        bool active = d->rowscale == d->rowscalestore;
        st = trv_grow(&d->rowscalestore, space);
        if (active) d->rowscale = d->rowscalestore;
    }
    if (!st) d->rowspace = space;
    return st;
}

static int grow_nz(lp_data *d, int space) {
    if (space <= d->nzspace) return 0;
    int st = trv_grow(&d->matind, space);
    st = st ? st : trv_grow(&d->matval, space);
    if (!st) d->nzspace = space;
    return st;
}

int lp_ensure(TRVenv env, TRVlp lp, int cols, int rows, int nz,
              long colnamebytes, long rownamebytes) {
    lp_data *d = lp->lpdata;
    if (colnamebytes >= LP_NAMEBYTES_MAX || rownamebytes >= LP_NAMEBYTES_MAX) return 1012;
    if (lp->memmodel == MEM_LOAD) {
        const char *fmt = nullptr;
        long need = 0, have = 0;
        if (cols > d->colspace) {
            fmt = "Space for %d columns needed, only %d available.\n";
            need = cols, have = d->colspace;
        } else if (rows > d->rowspace) {
            fmt = "Space for %d rows needed, only %d available.\n";
            need = rows, have = d->rowspace;
        } else if (nz > d->nzspace) {
            fmt = "Space for %d nonzeros needed, only %d available.\n";
            need = nz, have = d->nzspace;
        } else if (colnamebytes > d->colnamespace) {
            fmt = "Column names need space for %d characters, only %d available.\n";
            need = colnamebytes, have = d->colnamespace;
        } else if (rownamebytes > d->rownamespace) {
            fmt = "Row names need space for %d characters, only %d available.\n";
            need = rownamebytes, have = d->rownamespace;
        }
        if (fmt == nullptr) return 0;
        TRVmsg(env->reschannel, fmt, static_cast<int>(need), static_cast<int>(have));
        return 1401;
    }
    int xc = par_int(env, 1047), xr = par_int(env, 1046), xn = par_int(env, 1048);
    double newcols = cols > d->colspace ? double(cols) + xc : d->colspace;
    double newrows = rows > d->rowspace ? double(rows) + xr : d->rowspace;
    double newnz = nz > d->nzspace ? double(nz) + xn : d->nzspace;
    if (newrows + newcols > 524999999.0 || 22.0 * newrows + 2.0 * newcols > 262499999.0 ||
        newnz > 2147483000.0)
        return 1001;
    int st = grow_cols(d, static_cast<int>(newcols));
    st = st ? st : grow_rows(d, static_cast<int>(newrows));
    st = st ? st : grow_nz(d, static_cast<int>(newnz));
    if (!st && colnamebytes > d->colnamespace && d->colnamestore != nullptr) {
        long bytes = colnamebytes + 17L * xc;
        if (bytes >= LP_NAMEBYTES_MAX) bytes = colnamebytes; /* no spare room then */
        st = names_grow(d->colname, d->ncols, &d->colnamestore, d->colnamespace, bytes);
        if (!st) d->colnamespace = static_cast<int>(bytes);
    }
    if (!st && rownamebytes > d->rownamespace && d->rownamestore != nullptr) {
        long bytes = rownamebytes + 17L * xr;
        if (bytes >= LP_NAMEBYTES_MAX) bytes = rownamebytes;
        st = names_grow(d->rowname, d->nrows, &d->rownamestore, d->rownamespace, bytes);
        if (!st) d->rownamespace = static_cast<int>(bytes);
    }
    return st;
}

/* Closes the gaps between columns. */
void lp_compress(lp_data *d) {
    bool gaps = false;
    int pos = 0;
    for (int j = 0; j < d->nstruct && !gaps; j++) {
        gaps = d->matbeg[j] != pos;
        pos += d->matcnt[j];
    }
    if (!gaps) return;
    pos = 0;
    for (int j = 0; j < d->nstruct; j++) {
        int b = d->matbeg[j], c = d->matcnt[j];
        if (b != pos) {
            std::memmove(d->matind + pos, d->matind + b, c * sizeof(int));
            std::memmove(d->matval + pos, d->matval + b, c * sizeof(double));
        }
        d->matbeg[j] = pos;
        pos += c;
        d->colend[j] = pos;
    }
}

/* ---- the matrix check of parameter 1056 ------------------------------------ */

int lp_check_matrix(TRVenv env, int numcols, int numrows, const int *matbeg,
                    const int *matcnt, const int *matind) {
    int *seen = trv_alloc<int>(numrows);
    if (seen == nullptr) return 1001;
    for (int i = 0; i < numrows; i++) seen[i] = -1;
    int status = 0;
    for (int j = 0; j < numcols && status == 0; j++) {
        if (matcnt[j] < 0 || matcnt[j] > numrows) {
            status = env_error(env, 1227, j);
        } else if (j + 1 < numcols && matbeg[j] > matbeg[j + 1]) {
            status = env_error(env, 1226, j);
        } else if (j + 1 < numcols && matbeg[j] + matcnt[j] > matbeg[j + 1]) {
            status = env_error(env, 1228, j);
        } else if (matbeg[j] < 0) {
            status = env_error(env, 1226, j);
        }
        for (int k = matbeg[j]; status == 0 && k < matbeg[j] + matcnt[j]; k++) {
            int i = matind[k];
            if (i < 0 || i >= numrows) {
                status = env_error(env, 1203, k);
            } else if (seen[i] == j) {
                status = 1222;
            } else {
                seen[i] = j;
            }
        }
    }
    trv_free(&seen);
    return status;
}

static int check_sense(TRVenv env, int numrows, const char *sense) {
    for (int i = 0; i < numrows; i++)
        if (sense[i] != 'L' && sense[i] != 'G' && sense[i] != 'E' && sense[i] != 'R')
            return env_error(env, 1215, i);
    return 0;
}

static int check_names(TRVenv env, int count, char **names) {
    if (names == nullptr) return 0;
    for (int k = 0; k < count; k++)
        if (names[k] == nullptr) return env_error(env, 1224, k);
    return 0;
}

/* ---- freeing -------------------------------------------------------------- */

/* Releases the solver records that hang off the handle, in the order of
 * teardown. Each module that defines one of these records frees it here;
 * until a module exists its pointer stays null. */
void lp_free_records(TRVenv env, TRVlp lp) {
    if (lp->relaxed != nullptr && lp->probtype != PROB_RELAXED &&
        lp->probtype != PROB_FIXED)
        lp_free(env, &lp->relaxed);
    if (lp->workcopy != nullptr) lp_free(env, &lp->workcopy);
    trv_free(&lp->dataptrs[0]);
    trv_free(&lp->dataptrs[1]);
    trv_free(&lp->dataptrs[2]);
    trv_free(&lp->dataptrs[3]);
    trv_free(&lp->startaux);
    /* the optimisers' working records, and the solution record */
    if (lp->work != nullptr) lp->work->drop(lp, WORK_ALL);
    solution_free(lp);
}

static void lp_data_free(lp_data **dp, int memmodel) {
    lp_data *d = *dp;
    if (d == nullptr) return;
    trv_free(&d->lbsave);
    trv_free(&d->ubsave);
    trv_free(&d->colend);
    trv_free(&d->lowerkind);
    trv_free(&d->upperkind);
    trv_free(&d->slackrow);
    trv_free(&d->slackval);
    trv_free(&d->rowscalestore);
    trv_free(&d->colscalestore);
    trv_free(&d->probname);
    cache_free(&d->cache);
    if (memmodel == MEM_COPY) {
        trv_free(&d->freerowind);
        trv_free(&d->rimtype);
        trv_free(&d->rimbeg);
        trv_free(&d->rimcnt);
        trv_free(&d->rimind);
        trv_free(&d->rimval);
        trv_free(&d->rimname);
        trv_free(&d->rimnamestore);
        trv_free(&d->dataname);
        trv_free(&d->objname);
        trv_free(&d->rhsname);
        trv_free(&d->rngname);
        trv_free(&d->bndname);
        trv_free(&d->rownamestore);
        trv_free(&d->colnamestore);
        trv_free(&d->rowname);
        trv_free(&d->colname);
        trv_free(&d->obj);
        trv_free(&d->rhs);
        trv_free(&d->sense);
        trv_free(&d->matbeg);
        trv_free(&d->matcnt);
        trv_free(&d->matind);
        trv_free(&d->matval);
        trv_free(&d->lb);
        trv_free(&d->ub);
        trv_free(&d->rngval);
        trv_free(&d->ctype);
    }
    trv_free(dp);
}

static void lp_destroy(TRVenv env, TRVlp lp) {
    lp_free_records(env, lp);
    start_free(lp);
    lp_data_free(&lp->lpdata, lp->memmodel);
    trv_free(&lp->baseblock);
    if (lp->handle != nullptr) handle_drop(lp->handle);
    lp->self = nullptr;
    trv_free(&lp);
}

void lp_free(TRVenv env, TRVlp *lp_p) {
    if (*lp_p == nullptr) return;
    env_disown(env, OWN_PROBLEM, (*lp_p)->handle);
    lp_destroy(env, *lp_p);
    *lp_p = nullptr;
}

TRV_EXPORT int TRVfreeprob(TRVenv env, TRVlp *lp_p) {
    TRVlp lp = lp_p != nullptr ? *lp_p : nullptr;
    int status = call_enter(&env, lp != nullptr ? &lp : nullptr, 0);
    if (status == 0 && lp_p == nullptr) status = 1004;
    if (status == 0 && lp != nullptr) {
        lp_free(env, &lp);
        *lp_p = nullptr;
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVunloadprob(TRVenv env, TRVlp *lp_p) {
    TRVenv e = env;
    TRVlp lp = lp_p != nullptr ? *lp_p : nullptr;
    int status = call_enter(&e, &lp, CALL_LOADED);
    if (status == 0 && lp_p == nullptr) status = 1004;
    if (status != 0) return call_leave(e, status);
    /* The caller's arrays are held unscaled whenever the problem is free of
     * a scaling; a scaled problem gives its arrays back unscaled. */
    lp_unscale(e, lp);
    return TRVfreeprob(env, lp_p);
}

/* ---- building the handle ---------------------------------------------- */

struct load_args {
    const char *probname;
    int numcols, numrows, numrims, objsen;
    double *obj, *rhs;
    char *sense;
    int *matbeg, *matcnt, *matind;
    double *matval, *lb, *ub, *rngval;
    int *freerowind, *rimtype, *rimbeg, *rimcnt, *rimind;
    double *rimval;
    char *dataname, *objname, *rhsname, *rngname, *bndname;
    char **colname;
    char *colnamestore;
    char **rowname;
    char *rownamestore;
    char **rimname;
    char *rimnamestore;
    int colspace, rowspace, nzspace, rimspace, rimnzspace;
    int colnamespace, rownamespace, rimnamespace;
};

/* Takes the problem's private copies of tolerances and growth limits. */
static void lp_take_params(TRVenv env, lp_data *d) {
    d->fillfac_a = par_dbl(env, 1033);
    d->fillfac_b = par_dbl(env, 1005);
    d->tol_opt = par_dbl(env, 1050);
    d->tol_feas = par_dbl(env, 1049);
    d->tol_opt2 = par_dbl(env, 1050);
    d->tol_feas2 = par_dbl(env, 1049);
}

/* Completes the computational form after a load or copy. */
static int lp_finish_form(TRVenv env, TRVlp lp) {
    lp_data *d = lp->lpdata;
    int status = lp_rebuild(env, lp);
    if (status == 0) status = lp_slacks(env, lp);
    if (status == 0) status = size_guard(d);
    if (status != 0) return status;
    lp_setsimple(lp);
    d->nfreerows = 0;
    for (int k = 0; k < d->nrims; k++)
        if (d->rimtype != nullptr && d->rimtype[k] == 1) d->nfreerows++;
    lp_take_params(env, d);
    lp_updatecap(env, d);
    return 0;
}

/* Builds a handle over the caller's arrays (memory model 1). */
static TRVlp lp_build(TRVenv env, const load_args &a, int *status_p) {
    int status = 0;
    TRVlp lp = nullptr;
    if (a.probname == nullptr) {
        status = 1004;
    } else if (a.colspace < 1 || a.rowspace < 1 || a.nzspace < 1) {
        status = 1007;
    } else if (a.numcols < 0 || a.numrows < 0 || a.numrims < 0 ||
               (a.objsen != 1 && a.objsen != -1)) {
        status = 1003;
    } else if (!a.obj || !a.rhs || !a.sense || !a.matbeg || !a.matcnt ||
               !a.matind || !a.matval || !a.lb || !a.ub ||
               (a.rownamespace > 0 && (!a.rowname || !a.rownamestore)) ||
               (a.colnamespace > 0 && (!a.colname || !a.colnamestore))) {
        status = 1004;
    } else if (a.numcols > a.colspace || a.numrows > a.rowspace) {
        status = 1401;
    }
    if (status == 0 && par_int(env, 1056) == 1) {
        status = lp_check_matrix(env, a.numcols, a.numrows, a.matbeg, a.matcnt,
                                 a.matind);
        if (status == 0) status = check_sense(env, a.numrows, a.sense);
    }
    if (status == 0) {
        lp = trv_zalloc<trvlp_rec>(1);
        lp_data *d = lp ? trv_zalloc<lp_data>(1) : nullptr;
        if (d == nullptr) {
            trv_free(&lp);
            status = 1001;
        } else {
            lp->self = lp->me = lp;
            lp->memmodel = MEM_LOAD;
            lp->lpdata = d;
            d->probname = trv_strdup(a.probname);
            d->nrows = a.numrows, d->ncols = a.numcols, d->nrims = a.numrims;
            d->rowspace = a.rowspace, d->colspace = a.colspace;
            d->rimspace = a.rimspace, d->nzspace = a.nzspace;
            d->rimnzspace = a.rimnzspace;
            d->rownamespace = a.rownamespace, d->colnamespace = a.colnamespace;
            d->rimnamespace = a.rimnamespace;
            d->objsen = a.objsen;
            d->obj = a.obj, d->rhs = a.rhs, d->sense = a.sense;
            d->dataname = a.dataname, d->objname = a.objname;
            d->rhsname = a.rhsname, d->rngname = a.rngname, d->bndname = a.bndname;
            d->rowname = a.rownamespace > 0 ? a.rowname : nullptr;
            d->colname = a.colnamespace > 0 ? a.colname : nullptr;
            d->rimname = a.rimname;
            d->rownamestore = a.rownamestore, d->colnamestore = a.colnamestore;
            d->rimnamestore = a.rimnamestore;
            d->matbeg = a.matbeg, d->matcnt = a.matcnt, d->matind = a.matind;
            d->matval = a.matval, d->lb = a.lb, d->ub = a.ub, d->rngval = a.rngval;
            d->freerowind = a.freerowind, d->rimtype = a.rimtype;
            d->rimbeg = a.rimbeg, d->rimcnt = a.rimcnt, d->rimind = a.rimind;
            d->rimval = a.rimval;
            d->nstruct = d->ntotal = d->ntotalcopy = a.numcols;
            d->scaletype = -1;
            d->notsimple = 1;
            d->colend = trv_alloc<int>(a.colspace);
            d->lowerkind = trv_alloc<signed char>(a.colspace);
            d->upperkind = trv_alloc<signed char>(a.colspace);
            d->slackrow = trv_alloc<int>(a.rowspace);
            d->slackval = trv_alloc<double>(a.rowspace);
            if (!d->probname || !d->colend || !d->lowerkind || !d->upperkind ||
                !d->slackrow || !d->slackval)
                status = 1001;
            if (status == 0) status = lp_finish_form(env, lp);
            if (status == 0) {
                lp->handle = static_cast<TRVlp>(handle_new(HANDLE_LP, lp, env, lp_check));
                if (lp->handle == nullptr || env_own(env, OWN_PROBLEM, lp->handle) != 0)
                    status = 1001;
            }
            if (status != 0) {
                lp_destroy(env, lp);
                lp = nullptr;
            }
        }
    }
    if (status_p != nullptr) *status_p = status;
    return lp;
}

TRV_EXPORT TRVlp TRVloadprob(TRVenv env, const char *probname, int numcols,
    int numrows, int numrims, int objsen, double *obj, double *rhs,
    char *sense, int *matbeg, int *matcnt, int *matind, double *matval,
    double *lb, double *ub, double *rngval, int *freerowind, int *rimtype,
    int *rimbeg, int *rimcnt, int *rimind, double *rimval, char *dataname,
    char *objname, char *rhsname, char *rngname, char *bndname,
    char **colname, char *colnamestore, char **rowname, char *rownamestore,
    char **rimname, char *rimnamestore, int colspace, int rowspace,
    int nzspace, int rimspace, int rimnzspace, int colnamespace,
    int rownamespace, int rimnamespace) {
    if (call_enter(&env, nullptr, 0) != 0) return nullptr;
    load_args a = {probname, numcols, numrows, numrims, objsen, obj, rhs,
                   sense, matbeg, matcnt, matind, matval, lb, ub, rngval,
                   freerowind, rimtype, rimbeg, rimcnt, rimind, rimval,
                   dataname, objname, rhsname, rngname, bndname, colname,
                   colnamestore, rowname, rownamestore, rimname, rimnamestore,
                   colspace, rowspace, nzspace, rimspace, rimnzspace,
                   colnamespace, rownamespace, rimnamespace};
    int status = 0;
    TRVlp lp = lp_build(env, a, &status);
    call_leave(env, status);
    return lp != nullptr ? lp->handle : nullptr;
}

TRV_EXPORT TRVlp TRVloadlpwnames(TRVenv env, const char *probname, int numcols,
    int numrows, int objsen, double *obj, double *rhs, char *sense,
    int *matbeg, int *matcnt, int *matind, double *matval, double *lb,
    double *ub, double *rngval, char **colname, char *colnamestore,
    char **rowname, char *rownamestore, int colspace, int rowspace,
    int nzspace, int colnamespace, int rownamespace) {
    return TRVloadprob(env, probname, numcols, numrows, 0, objsen, obj, rhs,
                       sense, matbeg, matcnt, matind, matval, lb, ub, rngval,
                       nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr, nullptr, nullptr, colname,
                       colnamestore, rowname, rownamestore, nullptr, nullptr,
                       colspace, rowspace, nzspace, 0, 0, colnamespace,
                       rownamespace, 0);
}

TRV_EXPORT TRVlp TRVloadlp(TRVenv env, const char *probname, int numcols,
    int numrows, int objsen, double *obj, double *rhs, char *sense,
    int *matbeg, int *matcnt, int *matind, double *matval, double *lb,
    double *ub, double *rngval, int colspace, int rowspace, int nzspace) {
    return TRVloadlpwnames(env, probname, numcols, numrows, objsen, obj, rhs,
                           sense, matbeg, matcnt, matind, matval, lb, ub,
                           rngval, nullptr, nullptr, nullptr, nullptr,
                           colspace, rowspace, nzspace, 0, 0);
}

TRVlp lp_create(TRVenv env, int *status_p, const char *probname) {
    int status = 0;
    TRVlp lp = nullptr;
    if (probname == nullptr) {
        status = 1004;
    } else if (std::strlen(probname) + 1.0 >= 2099999999.0) {
        status = 1012;
    } else {
        double *obj = trv_zalloc<double>(1), *rhs = trv_zalloc<double>(1);
        double *matval = trv_zalloc<double>(1), *lb = trv_zalloc<double>(1);
        double *ub = trv_zalloc<double>(1);
        char *sense = trv_zalloc<char>(1);
        int *matbeg = trv_zalloc<int>(1), *matcnt = trv_zalloc<int>(1);
        int *matind = trv_zalloc<int>(1);
        if (obj && rhs && matval && lb && ub && sense && matbeg && matcnt && matind) {
            load_args a = {};
            a.probname = probname;
            a.objsen = 1;
            a.obj = obj, a.rhs = rhs, a.sense = sense, a.matbeg = matbeg;
            a.matcnt = matcnt, a.matind = matind, a.matval = matval;
            a.lb = lb, a.ub = ub;
            a.colspace = a.rowspace = a.nzspace = 1;
            lp = lp_build(env, a, &status);
            if (lp != nullptr) lp->memmodel = MEM_COPY;
        } else {
            status = 1001;
        }
        if (lp == nullptr) {
            trv_free(&obj), trv_free(&rhs), trv_free(&matval), trv_free(&lb);
            trv_free(&ub), trv_free(&sense), trv_free(&matbeg);
            trv_free(&matcnt), trv_free(&matind);
        }
    }
    if (status_p != nullptr) *status_p = status;
    return lp;
}

TRV_EXPORT TRVlp TRVcreateprob(TRVenv env, int *status_p, const char *probname) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) {
        if (status_p != nullptr) *status_p = status;
        return nullptr;
    }
    TRVlp lp = lp_create(env, &status, probname);
    status = call_leave(env, status);
    if (status_p != nullptr) *status_p = status;
    return lp != nullptr ? lp->handle : nullptr;
}

/* ---- copying a model into a library-owned problem --------------------------- */

/* Bytes of a name list, terminators included. */
int lp_namestore_bytes(int count, char *const *names, int space, long *bytes_p) {
    long n = 0;
    if (names != nullptr)
        for (int k = 0; k < count && n < LP_NAMEBYTES_MAX; k++)
            n += static_cast<long>(std::strlen(names[k])) + 1;
    if (space > count) n += 17L * (space - count);
    *bytes_p = n;
    return n >= LP_NAMEBYTES_MAX ? 1012 : 0;
}

/* Packs names into a store with room for 16-character names in the spare
 * slots; the pointer array has space entries. */
static int names_copy(int count, char **src, int space, char ***names_p,
                      char **store_p, int *bytes_p) {
    long bytes = 0;
    if (src != nullptr) {
        int status = lp_namestore_bytes(count, src, space, &bytes);
        if (status != 0) return status;
    }
    trv_free(names_p);
    trv_free(store_p);
    *bytes_p = 0;
    if (src == nullptr) return 0;
    char **names = trv_zalloc<char *>(space);
    char *store = trv_alloc<char>(bytes);
    if (names == nullptr || store == nullptr) {
        trv_free(&names);
        trv_free(&store);
        return 1001;
    }
    char *p = store;
    for (int k = 0; k < count; k++) {
        size_t n = std::strlen(src[k]) + 1;
        std::memcpy(p, src[k], n);
        names[k] = p;
        p += n;
    }
    *names_p = names;
    *store_p = store;
    *bytes_p = static_cast<int>(bytes);
    return 0;
}

/* Drops the MIP or QP parts before the model is replaced. */
static void drop_special(TRVenv env, TRVlp lp) {
    lp_data *d = lp->lpdata;
    if (lp->probtype == PROB_MIP || lp->probtype == PROB_RELAXED ||
        lp->probtype == PROB_FIXED) {
        TRVmsg(env->warnchannel, "Freeing MIP data.\n");
        if (lp->workcopy != nullptr) lp_free(env, &lp->workcopy);
        trv_free(&d->ctype);
    } else if (lp->probtype == PROB_QP || lp->probtype == PROB_ZEROEDQP) {
        TRVmsg(env->warnchannel, "Freeing QP data.\n");
        if (lp->probtype == PROB_QP) invalidate(env, lp, 27);
    }
    lp->probtype = PROB_LP;
}

TRV_EXPORT int TRVcopylpwnames(TRVenv env, TRVlp lp, int numcols, int numrows,
    int objsen, const double *obj, const double *rhs, const char *sense,
    const int *matbeg, const int *matcnt, const int *matind,
    const double *matval, const double *lb, const double *ub,
    const double *rngval, char **colname, char **rowname) {
    int status = call_enter(&env, &lp, CALL_SINGLE | CALL_COPIED);
    if (status == 0)
        status = lp_copy(env, lp, numcols, numrows, objsen, obj, rhs, sense, matbeg,
                         matcnt, matind, matval, lb, ub, rngval, colname, rowname);
    return call_leave(env, status);
}

int lp_copy(TRVenv env, TRVlp lp, int numcols, int numrows, int objsen,
            const double *obj, const double *rhs, const char *sense,
            const int *matbeg, const int *matcnt, const int *matind,
            const double *matval, const double *lb, const double *ub,
            const double *rngval, char **colname, char **rowname) {
    int status = numcols < 0 || numrows < 0 ? 1003 : 0;
    if (status == 0) drop_special(env, lp);
    if (status == 0 && (!obj || !rhs || !sense || !matbeg || !matcnt ||
                        !matind || !matval || !lb || !ub))
        status = 1004;
    if (status == 0 && par_int(env, 1056) == 1) {
        if (objsen != 1 && objsen != -1) status = 1003;
        if (status == 0) status = check_sense(env, numrows, sense);
        if (status == 0)
            status = lp_check_matrix(env, numcols, numrows, matbeg, matcnt, matind);
        if (status == 0) status = check_names(env, numcols, colname);
        if (status == 0) status = check_names(env, numrows, rowname);
    }
    if (status != 0) return status;
    invalidate(env, lp, 16);
    lp_data *d = lp->lpdata;
    cache_free(&d->cache); /* pending additions belonged to the old model */
    int nranged = 0, nzend = 0;
    for (int i = 0; i < numrows; i++) nranged += sense[i] == 'R';
    for (int j = 0; j < numcols; j++)
        if (matbeg[j] + matcnt[j] > nzend) nzend = matbeg[j] + matcnt[j];
    status = lp_ensure(env, lp, numcols + nranged, numrows, nzend + nranged, 0, 0);
    if (status == 0 && rngval != nullptr && d->rngval == nullptr) {
        d->rngval = trv_zalloc<double>(d->rowspace);
        if (d->rngval == nullptr) status = 1001;
    }
    if (status == 0 && rngval == nullptr) trv_free(&d->rngval);
    if (status == 0)
        status = names_copy(numrows, rowname, d->rowspace, &d->rowname,
                            &d->rownamestore, &d->rownamespace);
    if (status == 0)
        status = names_copy(numcols, colname, d->colspace, &d->colname,
                            &d->colnamestore, &d->colnamespace);
    if (status == 0) {
        d->objsen = objsen;
        d->ncols = numcols, d->nrows = numrows, d->nrims = 0;
        d->nstruct = d->ntotal = d->ntotalcopy = numcols;
        d->nfreerows = 0;
        trv_free(&d->rhsname), trv_free(&d->rngname), trv_free(&d->bndname);
        trv_free(&d->dataname), trv_free(&d->objname);
        if (numrows > 0) {
            std::memcpy(d->rhs, rhs, numrows * sizeof(double));
            std::memcpy(d->sense, sense, numrows);
            if (rngval != nullptr)
                std::memcpy(d->rngval, rngval, numrows * sizeof(double));
        }
        for (int j = 0; j < numcols; j++) {
            d->obj[j] = obj[j];
            d->lb[j] = lb[j];
            d->ub[j] = ub[j];
            d->matbeg[j] = matbeg[j];
            d->matcnt[j] = matcnt[j];
            int b = matbeg[j], c = matcnt[j];
            if (c > 0) {
                std::memcpy(d->matind + b, matind + b, c * sizeof(int));
                std::memcpy(d->matval + b, matval + b, c * sizeof(double));
            }
        }
        /* A stale scaling is dropped; scaling is applied afresh on solve. */
        d->rowscale = d->colscale = nullptr;
        d->scaletype = -1;
        status = lp_finish_form(env, lp);
    }
    if (status != 0) {
        /* The model is in an unknown state: leave an empty, valid one. */
        d->ncols = d->nrows = d->nstruct = d->ntotal = d->ntotalcopy = 0;
        trv_free(&d->rowname), trv_free(&d->colname);
        trv_free(&d->rownamestore), trv_free(&d->colnamestore);
        d->rownamespace = d->colnamespace = 0;
    }
    return status;
}

TRV_EXPORT int TRVcopylp(TRVenv env, TRVlp lp, int numcols, int numrows,
    int objsen, const double *obj, const double *rhs, const char *sense,
    const int *matbeg, const int *matcnt, const int *matind,
    const double *matval, const double *lb, const double *ub,
    const double *rngval) {
    return TRVcopylpwnames(env, lp, numcols, numrows, objsen, obj, rhs, sense,
                           matbeg, matcnt, matind, matval, lb, ub, rngval,
                           nullptr, nullptr);
}

TRV_EXPORT int TRVcopyobjname(TRVenv env, TRVlp lp, const char *objname) {
    int status = call_enter(&env, &lp, CALL_VIEW | CALL_COPIED);
    if (status == 0 && objname == nullptr) status = 1004;
    if (status == 0) {
        char *copy = trv_strdup(objname);
        if (copy == nullptr) {
            status = 1001;
        } else {
            trv_free(&lp->lpdata->objname);
            lp->lpdata->objname = copy;
        }
    }
    return call_leave(env, status);
}

TRV_EXPORT TRVlp TRVcloneprob(TRVenv env, TRVlp lp, int *status_p) {
    TRVlp copy = nullptr;
    int status = call_enter(&env, &lp, CALL_VIEW | CALL_MERGE | CALL_FAMILY);
    if (status == 0) {
        lp_data *s = lp->lpdata;
        copy = lp_create(env, &status, s->probname);
        if (copy != nullptr) {
            int keep[3] = {par_swap_int(env, 1046, 0), par_swap_int(env, 1047, 0),
                           par_swap_int(env, 1048, 0)};
            /* a solved problem holds its model scaled: the clone gets the
             * caller's values */
            lp_unscaled u;
            status = lp_unscaled_copy(s, &u);
            if (status == 0) {
                bool sc = u.obj != nullptr;
                status = lp_copy(env, copy, s->ncols, s->nrows, s->objsen,
                                 sc ? u.obj : s->obj, sc ? u.rhs : s->rhs, s->sense,
                                 s->matbeg, s->matcnt, s->matind, sc ? u.matval : s->matval,
                                 sc ? u.lb : s->lb, sc ? u.ub : s->ub,
                                 sc ? u.rngval : s->rngval, s->colname, s->rowname);
                lp_unscaled_free(&u);
            }
            par_swap_int(env, 1046, keep[0]);
            par_swap_int(env, 1047, keep[1]);
            par_swap_int(env, 1048, keep[2]);
            lp_data *d = copy->lpdata;
            if (status == 0 && s->objname != nullptr) {
                d->objname = trv_strdup(s->objname);
                if (d->objname == nullptr) status = 1001;
            }
            if (status == 0 && s->ctype != nullptr) {
                d->ctype = trv_alloc<char>(d->colspace);
                if (d->ctype == nullptr)
                    status = 1001;
                else
                    std::memcpy(d->ctype, s->ctype, d->nstruct);
            }
            if (status == 0)
                copy->probtype = lp->probtype;
            else
                lp_free(env, &copy);
        }
    }
    status = call_leave(env, status);
    if (status_p != nullptr) *status_p = status;
    return copy != nullptr ? copy->handle : nullptr;
}

TRV_EXPORT int TRVcompletelp(TRVenv env, TRVlp lp) {
    return call_leave(env, call_enter(&env, &lp, CALL_VIEW | CALL_MERGE));
}

/* ---- growing a loaded problem's arrays in place of its caller ------------- */

TRV_EXPORT int TRVreallocprob(TRVenv env, TRVlp lp, double **obj_p,
    double **rhs_p, char **sense_p, int **matbeg_p, int **matcnt_p,
    int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, char ***colname_p, char **colnamestore_p,
    char ***rowname_p, char **rownamestore_p, int colspace, int rowspace,
    int nzspace, int colnamespace, int rownamespace) {
    int status = call_enter(&env, &lp, CALL_SINGLE | CALL_LOADED);
    lp_data *d = nullptr;
    if (status != 0) {
    } else if (lp->probtype == PROB_QP) {
        status = 1018;
    } else if (colspace < 1 || rowspace < 1 || nzspace < 1 || colnamespace < 0 ||
               rownamespace < 0) {
        status = 1007;
    } else {
        d = lp->lpdata;
        if (d->freerowind || d->rimtype || d->rimbeg || d->rimcnt || d->rimind ||
            d->rimval || d->rimname || d->rimnamestore)
            status = 1214;
    }
    bool gcols = status == 0 && colspace > d->colspace;
    bool grows = status == 0 && rowspace > d->rowspace;
    bool gnz = status == 0 && nzspace > d->nzspace;
    bool gcn = status == 0 && colnamespace > d->colnamespace;
    bool grn = status == 0 && rownamespace > d->rownamespace;
    /* Every pointer that must move has to be the caller's current one. */
    if (status == 0 && gcols) {
        if (!obj_p || !matbeg_p || !matcnt_p || !lb_p || !ub_p)
            status = 1004;
        else if (*obj_p != d->obj || *matbeg_p != d->matbeg ||
                 *matcnt_p != d->matcnt || *lb_p != d->lb || *ub_p != d->ub)
            status = 1005;
        else if (d->colname && (!colname_p || *colname_p != d->colname))
            status = colname_p ? 1005 : 1004;
    }
    if (status == 0 && grows) {
        if (!rhs_p || !sense_p)
            status = 1004;
        else if (*rhs_p != d->rhs || *sense_p != d->sense)
            status = 1005;
        else if (d->rngval && (!rngval_p || *rngval_p != d->rngval))
            status = rngval_p ? 1005 : 1004;
        else if (d->rowname && (!rowname_p || *rowname_p != d->rowname))
            status = rowname_p ? 1005 : 1004;
    }
    if (status == 0 && gnz) {
        if (!matind_p || !matval_p)
            status = 1004;
        else if (*matind_p != d->matind || *matval_p != d->matval)
            status = 1005;
    }
    if (status == 0 && gcn) {
        if (!d->colname || !d->colnamestore || !colnamestore_p)
            status = 1004;
        else if (*colnamestore_p != d->colnamestore)
            status = 1005;
    }
    if (status == 0 && grn) {
        if (!d->rowname || !d->rownamestore || !rownamestore_p)
            status = 1004;
        else if (*rownamestore_p != d->rownamestore)
            status = 1005;
    }
    if (status == 0) {
        invalidate(env, lp, gcols ? 2 : 1);
        if (gcols) status = grow_cols(d, colspace);
        if (status == 0 && grows) status = grow_rows(d, rowspace);
        if (status == 0 && gnz) status = grow_nz(d, nzspace);
        if (status == 0 && gcn) {
            status = names_grow(d->colname, d->ncols, &d->colnamestore, d->colnamespace,
                                colnamespace);
            if (status == 0) d->colnamespace = colnamespace;
        }
        if (status == 0 && grn) {
            status = names_grow(d->rowname, d->nrows, &d->rownamestore, d->rownamespace,
                                rownamespace);
            if (status == 0) d->rownamespace = rownamespace;
        }
        /* Whatever moved, the caller gets the current pointers back. */
        if (obj_p) *obj_p = d->obj;
        if (rhs_p) *rhs_p = d->rhs;
        if (sense_p) *sense_p = d->sense;
        if (matbeg_p) *matbeg_p = d->matbeg;
        if (matcnt_p) *matcnt_p = d->matcnt;
        if (matind_p) *matind_p = d->matind;
        if (matval_p) *matval_p = d->matval;
        if (lb_p) *lb_p = d->lb;
        if (ub_p) *ub_p = d->ub;
        if (rngval_p && d->rngval) *rngval_p = d->rngval;
        if (colname_p && d->colname) *colname_p = d->colname;
        if (colnamestore_p && d->colnamestore) *colnamestore_p = d->colnamestore;
        if (rowname_p && d->rowname) *rowname_p = d->rowname;
        if (rownamestore_p && d->rownamestore) *rownamestore_p = d->rownamestore;
        if (status == 0) lp_updatecap(env, d);
    }
    return call_leave(env, status);
}
