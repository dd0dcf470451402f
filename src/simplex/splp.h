/*
 * splp.h - the working copy of the LP that the simplex optimisers see
 * (simplex_lp), the iteration state that the factorization's recovery ladder
 * and the basis repair work on (simplex_iter), and the record that holds
 * both on the problem handle (solver_rec, lp->solver).
 *
 * Variables of the working LP, in index order:
 *   0 .. n-1              structural columns of the model
 *   n .. nstruct-1        range columns (one per ranged row, entry -1)
 *   nstruct .. ntotal-1   slacks of the 'L' (+1) and 'G' (-1) rows
 *   ntotal .. ntotal+m-1  artificials, one per row, unit column +1
 * Every variable has an explicit column in the matrix, so that any basis
 * header can be factored through the same access (col_beg, col_end).
 */
#ifndef TRV_SIMPLEX_SPLP_H
#define TRV_SIMPLEX_SPLP_H

#include "store/lp.h"

struct simplex_lp {
    int m;        /* rows */
    int n;        /* structural columns */
    int nstruct;  /* structurals and range columns */
    int ntotal;   /* nstruct and slacks: the column count */
    int ncoltot;  /* ntotal and the m artificials */
    int nz_matrix; /* nonzeros of the constraint matrix (structurals) */
    /* the column-wise matrix of all ncoltot variables */
    int *col_len, *col_beg, *col_end;
    int *row_idx;
    double *val;
    /* bounds, flags (1 finite), costs */
    double *lower, *upper, *cost;
    signed char *has_lower, *has_upper;
    double sense; /* 1 minimise, -1 maximise */
    double *rowscale, *colscale; /* unit until scaling scales the copy */
    double fill_row, fill_col;   /* the two fill factors of the LU files */
    double harris_primal, harris_dual; /* Harris relaxations kept between runs */
    int *slack_of_row;  /* the slack of each row, or its artificial */
    int *row_of_var;    /* for range columns, slacks and artificials: the row */
};

/* The iteration state and basis of a run, as far as the factorization
 * and its update use them. The drivers extend this record. */
struct simplex_iter {
    int *head;            /* m: the variable in each basis position */
    signed char *status;  /* ncoltot: 0 lower, 1 basic, 2 upper, 3 superbasic */
    double *x;            /* ncoltot: values of the variables */
    double *d;            /* ncoltot reduced costs, or null */
    double *y;            /* m duals by row, or null */
    int *ban;             /* ncoltot: ban value per variable */
    int *pos_ban;         /* m: ban value per basis position */
    double *pweight;      /* primal devex or steepest weights, or null */
    double *dweight;      /* m dual norms by position, or null */
    int dual_full_norms;  /* 1 when dweight holds full steepest-edge norms */
    int has_dual;         /* a dual state exists */
    int *super_var;       /* superbasic list: variables and values */
    double *super_val;
    int nsuper, nsuper_dual, super_cap;
    int n_it, n_lu;
    int sing_count, sing_limit, fix_allowance;
    /* rounds a run went on with the variables a repair fixed, let go
     * (RELEASE_ROUNDS at most; a hand-over between the drivers counts on) */
    int reincluded;
    double markowitz, pivot_tol;
    /* the pending basis change, read by lu_update */
    int leave_pos, enter_var;
    double alpha;
    /* "Markowitz threshold set to %g." was told to the dual pricing bias */
    double bias_markowitz;
};

struct solver_rec {
    simplex_lp splp;
    simplex_iter it;
    /* the running driver's answers to TRVgetcallbackinfo (objective,
     * infeasibilities, phase): 0, 1003 or 1006 */
    int (*cbinfo)(TRVlp lp, int wherefrom, int whichinfo, void *result);
    /* 1 while the working LP (ready) and the values of the iteration state
     * (ready2) agree with the model; a change that keeps the basis clears
     * them, and the record is refreshed from the model before it is used */
    int ready, ready2;
};

/* Builds lp->solver from the model: working LP with unit scale and a slack
 * basis (every row's slack or artificial basic). Returns 0 or 1001. */
int simplex_build(TRVenv env, TRVlp lp);
void simplex_free(TRVlp lp);

/* The fixing allowance of the basis repair from m and parameter 1037. */
int simplex_fix_allowance(TRVenv env, int m);

/* The answer of a running primal or dual to TRVgetcallbackinfo (the
 * question is known to the place): 0, or 1006 without its state. */
int simplex_cbinfo(TRVlp lp, int wherefrom, int whichinfo, void *result);

/* Name of variable j for messages ("range <row>" is added by the caller). */
const char *simplex_varname(TRVenv env, TRVlp lp, int j);

#endif
