/*
 * basis.h - what a finished optimisation leaves on the problem for the
 * caller and for the next run: the stored basis with its pricing norms
 * (start_rec) and the solution record (soln_rec). Both are kept in the
 * model's terms, so that they survive changes of bounds and costs; the
 * optimisers load them into and fill them from their working records.
 */
#ifndef TRV_STORE_BASIS_H
#define TRV_STORE_BASIS_H

#include "store/lp.h"

/* ---- the stored basis (basis.cpp, basequery.cpp) ------------------------- */

struct start_rec {
    int ncols, nrows;       /* structural columns and rows when saved */
    signed char *cstat;     /* status of each structural column */
    signed char *rstat;     /* status of each row's slack or artificial */
    signed char *gstat;     /* status of each row's range column, or -1 */
    double *cnorm, *rnorm, *gnorm; /* dual norms of the basic ones, 0 if none */
    int has_norms;          /* the dual norms are valid */
    /* primal steepest-edge weights: one per structural column and one per
     * row for its slack or range column (1 for a row with neither); null
     * until a primal run or the caller sets them */
    double *pcnorm, *prnorm;
    int has_pnorms;         /* the primal weights are valid */
    int forced; /* loaded by the next run whatever parameter 1001 says */
};

void start_free(TRVlp lp);
/* A new empty record of n columns and m rows in place of the stored one,
 * which stays when there is no memory (1001). */
int start_replace(TRVlp lp, int n, int m);
/* The norms kept with the stored basis made stale (free_them 0: the
 * memory stays for the next save) or released. */
void start_drop_norms(TRVlp lp, int free_them);
/* Grows the stored basis to the model's size, the columns and rows added
 * since entering as the next run would take them; the norms of a basis
 * that grows are dropped. 0 or 1001. */
int start_grow(TRVlp lp);
/* The record in step with a deletion of rows (rows set) or columns: map
 * holds -1 for each one gone. */
void start_delete(TRVlp lp, const int *map, int rows);
/* The stored basis when it fits the model as it now stands, else null. */
const start_rec *start_fitting(TRVlp lp);
/* A record in TRVgetbase's statuses; a null array is skipped. */
void start_statuses(const start_rec *sr, const lp_data *d, int *cstat, int *rstat);
/* The stored basis in TRVgetbase's statuses; 1262 (not reported) when
 * none fits the model. */
int start_get(TRVlp lp, int *cstat, int *rstat);
/* The caller's statuses (TRVgetbase's form) as the stored start, replacing
 * any other and dropping the solution; 1253 reported for a bad entry. */
int start_from_status(TRVenv env, TRVlp lp, const int *cstat, const int *rstat);
void start_pnorms_free(start_rec *sr);
/* Both primal weight arrays of the record, allocated on first use; 0 or
 * 1001. */
int start_pnorms_alloc(start_rec *sr);

/* ---- the solution record (soln.cpp) --------------------------------------- */

struct soln_rec {
    int method;
    int has_basis;
    int ncols, nrows;
    double objval;
    double *x, *pi, *slack, *dj;
    int itcnt, phase1cnt;
    /* the variable that proved the run's end: the entering column of an
     * unbounded ray, the row or column whose infeasibility stood; the
     * row in idiv, the column in jdiv, -1 in both when there is none */
    int idiv, jdiv;
};

void solution_free(TRVlp lp);

#endif
