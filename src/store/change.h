/*
 * change.h - the pieces that the change functions share: the cache of
 * pending additions, the append of rows, columns and entries to the
 * computational form, the plain name stores, and the scaled view of values.
 */
#ifndef TRV_STORE_CHANGE_H
#define TRV_STORE_CHANGE_H

#include "store/lp.h"

/* The frame of a change: a single problem, pending additions merged. */
#define CALL_CHANGE (CALL_SINGLE | CALL_MERGE)

/* Grows an array to n elements, or allocates it when it is null. */
template <class T> inline int chg_grow(T **pp, size_t n) {
    if (*pp == nullptr) {
        *pp = trv_alloc<T>(n);
        return *pp == nullptr ? 1001 : 0;
    }
    return trv_grow(pp, n);
}

/* ---- the cache of pending additions (cache.cpp) --------------------------- */

/* Names of pending rows or columns, packed; off[k] -1 when k has none. */
struct cache_names {
    long *off;
    char *text;
    long used, cap;
    int any;
};

struct cache_rec {
    int colsbase, rowsbase; /* ncols, nrows at the last merge */
    int ordered;            /* reserved, 0 */
    int empty;              /* 1 when nothing is pending */
    int ncolsnew, colspace;
    double *colobj, *collb, *colub;
    char *colctype;         /* null until some column brings a type */
    cache_names colnames;
    int nrowsnew, rowspace;
    double *rowrhs;
    char *rowsense;
    double *rowrngval;
    cache_names rownames;
    /* Pending entries, held as triplets whatever form they came in; nzkind
     * tells that form: 1 by rows, 2 by columns, 3 triplets or mixed, -1
     * none. Indices count pending rows and columns after the model's. */
    int nzkind;
    int nzrows;             /* reserved, 0 */
    int nzspace, nzcount;
    int *nzi, *nzj;
    double *nzv;
    int *nzbeg;             /* reserved, null */
    int nzbase;             /* nonzeros at the last merge */
};

/* The record, created on first use; null only when memory runs out. */
cache_rec *cache_get(lp_data *d);
void cache_clear(cache_rec *c);
int cache_pendcols(const lp_data *d);
int cache_pendrows(const lp_data *d);
int cache_pendnz(const lp_data *d);
int cache_addcols(cache_rec *c, int ccnt, const double *obj, const double *lb,
                  const double *ub, const char *ctype, char **colname);
int cache_addrows(cache_rec *c, int rcnt, const double *rhs, const char *sense,
                  const double *rngval, char **rowname);
int cache_addnz(cache_rec *c, int kind, int cnt, const int *i, const int *j,
                const double *v);

/* ---- appending to the computational form (sparse.cpp) -------------------- */

/* New columns, then new rows, then entries as triplets whose indices count
 * the new rows and columns after the model's. Null arrays take defaults:
 * objective 0, bounds [0, +inf], rhs 0, sense 'E', range 0, 'C', default
 * names where the model has names. */
struct add_part {
    int ccnt;
    const double *obj, *lb, *ub;
    const char *ctype;
    const char *const *colname;
    int rcnt;
    const double *rhs;
    const char *sense;
    const double *rngval;
    const char *const *rowname;
    int nzcnt;
    const int *nzi, *nzj;
    const double *nzv;
};

int lp_append(TRVenv env, TRVlp lp, const add_part *p);
/* Sets or inserts entries (a zero value removes one); new entries go in with
 * one repack of the matrix. */
int lp_setentries(TRVenv env, TRVlp lp, int cnt, const int *i, const int *j,
                  const double *v);
/* Range columns, slacks, kinds again after the senses or counts changed;
 * makes room for the range columns first. */
int lp_reform(TRVenv env, TRVlp lp);
/* Drops the rows or columns marked in delstat (non-zero) and turns delstat
 * into the map old index -> new index or -1. */
int lp_droprows(TRVenv env, TRVlp lp, int *delstat);
int lp_dropcols(TRVenv env, TRVlp lp, int *delstat);
/* Takes the scaling out of the data and frees the scale vectors. */
void lp_dropscale(lp_data *d);
/* Lowest position of the free-row block in matind, matval (nzspace if none),
 * and the number of its entries. */
int lp_rimlow(const lp_data *d);
int lp_rimnz(const lp_data *d);
/* Moves the free-row block to the high end of matind, matval. */
void lp_rimtohigh(lp_data *d);

/* ---- plain name stores (sparse.cpp) ---------------------------------------- */

enum { NAMES_COLS = 0, NAMES_ROWS = 1, NAMES_RIMS = 2 };

/* Replaces the names of rows, columns or rims by the list text[0..count-1]
 * (null entries take the default name of their index), packed into the
 * store. With text null the names go. The store grows for a library-owned
 * problem; a caller-owned one reports its shortage and gives 1401. */
int names_commit(TRVenv env, TRVlp lp, int which, int count,
                 const char *const *text);
/* With the data check on: 1222 if a name of the list equals another one of
 * it that is not marked old (old[k] non-zero: an existing name, which may
 * repeat an existing one); also 1224 for a null entry that is new. */
int names_check(TRVenv env, int count, const char *const *text,
                const char *old);

/* ---- the scaled view --------------------------------------------------------- */

inline double colfac(const lp_data *d, int j) { return d->colscale ? d->colscale[j] : 1.0; }
inline double rowfac(const lp_data *d, int i) { return d->rowscale ? d->rowscale[i] : 1.0; }
inline bool is_inf(double v) { return v >= TRV_INF || v <= -TRV_INF; }
/* The stored form of a caller's bound of column j. */
inline double bound_in(const lp_data *d, int j, double v) {
    if (v >= TRV_INFTEST) return TRV_INF;
    if (v <= -TRV_INFTEST) return -TRV_INF;
    return v * colfac(d, j);
}
inline signed char bound_kind(double v) {
    if (is_inf(v)) return KIND_INF;
    return v == 0.0 ? KIND_ZERO : KIND_FINITE;
}

/* ---- shared frame pieces ------------------------------------------------------ */

/* 1003 for a negative count. Index lists: each entry in [0, count); the
 * first one outside prints "Column index %d out of range" (cols) or "Row
 * index %d out of range" and gives that code. */
int check_indices(TRVenv env, int cnt, const int *ind, int count, bool cols);
int check_senses(TRVenv env, int cnt, const char *sense);
/* Written when a change meets a presolved model that it cannot follow. */
void presolve_follow(TRVenv env, TRVlp lp, const char *message);

#endif
