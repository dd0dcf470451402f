/*
 * dual.h - the dual simplex: its run state (dual_state), the dual pricing
 * with its norms, the dual ratio test with bound flipping, the cost
 * perturbation and the progress watch of the dual, and the stored basis
 * that a finished run leaves on the problem for a warm start.
 *
 * Conventions of the dual code (those of the primal code):
 *   - all values are those of the working LP, scaled when the model is;
 *   - the run minimises sense * c x: the working costs carry the sense;
 *   - it->d holds c_j - y a_j for the nonbasic variables, 0 for the basic;
 *   - it->x holds every value: nonbasic ones at their working bound (or,
 *     for a free nonbasic, at the stored value), basic ones from the
 *     factorization;
 *   - it->dweight holds the dual norms by basis position.
 *
 * Phase 1 is the dual simplex itself on an auxiliary box: every variable
 * gets the bounds [0,0] (boxed in the model), [0,1] (lower bound only),
 * [-1,0] (upper bound only) or [-1,1] (free), the right-hand side 0. All
 * variables are then boxed, so every basis is dual feasible by a choice of
 * bound; the optimum of the box minimises the sum of dual infeasibilities
 * of the model, and its basis starts phase 2 when that sum is zero.
 */
#ifndef TRV_SIMPLEX_DUAL_H
#define TRV_SIMPLEX_DUAL_H

#include "simplex/primal.h"

/* A finished run's status when the dual proves dual infeasibility and the
 * primal is not asked to tell unboundedness from infeasibility. */
enum { LPS_UNB_OR_INF = 19 };

/* Entries of the pivot row at or below this size do not take part in the
 * ratio test. */
#define DR_TINY 1e-9

/* Pricing modes of the dual. */
enum {
    DPR_PLAIN = 1,      /* largest squared infeasibility */
    DPR_STEEP = 2,      /* steepest edge from exact norms */
    DPR_FULL = 3,       /* steepest edge with the full norms */
    DPR_STEEP_UNIT = 4, /* steepest edge from unit norms */
    DPR_SWITCH = 5      /* plain first, steepest edge later */
};

struct dual_progress {
    double base_value;
    int base_it, last_it, interval, sample;
    double rate;
    int phase, fix_pending, restart_count;
    int falls;          /* returns from phase 2 to phase 1 since the last stall */
    int gave_up;        /* the stall control ended the run */
};

using dual_perturb_rec = perturb_rec;

struct dual_state {
    int phase;          /* 1 dual infeasible (the auxiliary box), 2 feasible */
    int pricing;        /* DPR_* */
    int n_banned;
    double dual_tol, feas_tol, harris_delta, harris_base, p1_tol;
    double infeas_limit;
    dual_perturb_rec perturb;
    dual_progress progress;
    /* working bounds and their flags, costs, right-hand side */
    double *lower, *upper, *cost, *rhs;
    signed char *lo_on, *up_on;
    /* vectors of one iteration */
    sparse_vec rho;     /* row p of the inverse, by rows */
    sparse_vec col;     /* a column of the matrix, by rows */
    sparse_vec alpha;   /* the entering column, by positions */
    sparse_vec tau;     /* inverse times rho, by positions */
    sparse_vec fcol;    /* the sum of the flipped columns, by rows */
    sparse_vec fdelta;  /* its solve, by positions */
    double *prow;       /* the pivot row over the nonbasic variables */
    int *prow_idx, prow_nz;
    /* row-wise copy of the columns 0..ntotal-1, each row's nonbasic entries
     * first (ar_nnb of them); ar_pos: the place of each column entry in
     * the copy, ar_k: the column entry of each place */
    int *ar_beg, *ar_nnb, *ar_idx, *ar_pos, *ar_k;
    double *ar_val;
    double *work, *work2; /* m, zero between uses */
    int *iwork;           /* m, scratch of the row-wise copy's layout */
    /* ratio test */
    int *cand_j;
    double *cand_ratio, *cand_a, *cand_h; /* ratio, signed entry, relaxed ratio */
    int *flip_list, n_flip;
    int *attempted;
    double rw_step;     /* dual step of the last test */
    int rw_enter;       /* entering variable or -1 */
    double rw_pivot_abs, rw_max_abs;
    /* iteration state */
    int candidates_max;
    int it_limit, n_it_phase1;
    double time_limit, obj_limit, start_time;
    int status;
    int fast;
    double objective;     /* sense * c x of the working problem */
    double sum_dinf;      /* sum of dual infeasibilities (phase 1) */
    int n_dinf;
    double sum_pinf;      /* sum of primal infeasibilities */
    int updates;
    int abort;            /* 1 callback, 2 time */
    int n_tol_events;
    int last_perturb_it;
    int dual_unbounded_events;
    int norms_ready;
    int flip_count;
    int polished;         /* the optimum was checked at tightened tolerances */
    int p1_rechecks;      /* an end of phase 1 looked at again more closely */
    int phase_sets;       /* count of the phase tests, which recompute the values */
    iter_log log;
};

/* ---- driver (dualopt.cpp) -------------------------------------------------- */

int dual_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far, double start_time,
             int mode, int internal);
void dual_free(TRVlp lp);
/* At the end of a primal run whose basis lost primal feasibility with the
 * removal of the perturbation: 1 when the dual took over (its result code
 * in *rc and its status on the problem), 0 when the primal goes on. */
int dual_takeover(TRVenv env, TRVlp lp, int *rc);

/* ---- state and recomputation (doptutil.cpp) ------------------------------- */

int dual_state_alloc(TRVenv env, TRVlp lp);
void dual_compute_x(TRVlp lp);
void dual_compute_d(TRVlp lp);
double dual_objective(TRVlp lp);
double dual_pinf(TRVlp lp, double tol, int *count);
int dual_fix_boxed(TRVlp lp);
int dual_count_dinf(TRVlp lp, double tol, double *sum);
int dual_set_phase(TRVlp lp);
void dual_true_bounds(TRVlp lp);
void dual_true_values(TRVlp lp);
int dual_refactor(TRVenv env, TRVlp lp);
/* The reduced cost of j as the run keeps it. */
double dual_dj(TRVlp lp, int j);
/* A run that would end without the variables a repair fixed lets them go
 * first, when it needs one of them (row set: one with an entry in the
 * pivot row; else one that is dual infeasible), within the rounds of
 * RELEASE_ROUNDS: 1 when they were released (the phase is then set
 * anew). */
int dual_release_fixed(TRVenv env, TRVlp lp, int row);
int dual_refresh(TRVenv env, TRVlp lp);
void dual_pivot_row(TRVlp lp, int p);
void dual_row_partition(TRVlp lp);
void dual_row_swap(TRVlp lp, int entering, int leaving);
void dual_log(TRVenv env, TRVlp lp, int force);
void dual_log_detail(TRVenv env, TRVlp lp);

/* ---- pricing and norms (dprice.cpp) ---------------------------------------- */

int dual_pricing_mode(TRVenv env, TRVlp lp, int param, int *mode);
int dual_price_select(TRVlp lp, double tol);
void dual_price_pivot(TRVlp lp, int p, double alpha_p, double rho_norm2);
int dual_norms_init(TRVenv env, TRVlp lp);
void dual_norms_reset(TRVlp lp);
double dual_infeasibility(const dual_state *ds, const simplex_iter *it, int j);

/* ---- ratio test (dratio.cpp) ----------------------------------------------- */

/* dir: +1 the leaving variable goes to its upper bound (it is above it),
 * -1 to its lower bound. slope: its infeasibility. Returns 0, 3 (no
 * candidate: dual unbounded) or 2003 (no usable pivot). */
int ratio_dual(TRVlp lp, int dir, double slope, int flipping);

/* ---- one iteration (dleave.cpp) -------------------------------------------- */

int dual_iterate(TRVenv env, TRVlp lp);

/* ---- perturbation and progress (dperturb.cpp) ----------------------------- */

void dual_progress_init(TRVenv env, dual_state *ds, int n);
void dual_progress_reset(TRVlp lp);
int dual_progress_check(TRVenv env, TRVlp lp);
void dual_perturb(TRVenv env, TRVlp lp);
int dual_remove(TRVenv env, TRVlp lp);
int dual_shift_cost(TRVlp lp, int j, double amount);

/* ---- the stored basis and the working LP (start.cpp) --------------------- */

/* Keeps the working basis of the run on the problem; with_norms keeps the
 * run's pricing norms with it (dual norms, primal weights) where final. */
int start_save(TRVlp lp, int with_norms);
/* The working basis of a run in the record's terms: a status per
 * structural column, per row for its slack or artificial (an artificial
 * of a row with a slack counts as the row's), per row for its range
 * column or -1. */
void start_fill(const simplex_lp *s, const simplex_iter *it, signed char *cstat,
                signed char *rstat, signed char *gstat);
/* The working basis of the running driver in TRVgetbase's statuses, as
 * start_save would store it; 0 or 1001 (not reported). */
int start_working(TRVlp lp, int *cstat, int *rstat);
/* Loads the stored basis into the working LP; 1 when loaded, 0 when there
 * is none that fits. */
int start_load(TRVenv env, TRVlp lp);
/* The same whatever parameter 1001 says. */
int start_apply(TRVenv env, TRVlp lp);
/* Norms of the stored basis by position into it->dweight; the count of
 * positions left without a norm (0 weight). */
int start_norms(TRVlp lp);
/* The stored status of working variable j, or -1 when the record has none
 * (a column or row added since). */
int start_status(const start_rec *sr, const simplex_lp *s, int j);
/* The weights of a finished primal run with steepest-edge pricing onto
 * the stored basis; nothing when another pricing or a dual run after it
 * owns the basis, or without memory. */
void start_pnorms_save(TRVlp lp);
/* The stored weight of working variable j, 0 when there is none: a
 * variable basic in the stored basis or added since. */
double start_pnorm(const start_rec *sr, const simplex_lp *s, int j);
/* In a driver's main loop: every parameter 1004 iterations (n_it nonzero)
 * the working basis goes to the recovery file. A failed write warns. */
void start_periodic(TRVenv env, TRVlp lp, int n_it);

/* One run of a driver on the problem as it stands (solve.cpp): the counts
 * of iterations in all and in phase 1 come back. */
typedef int (*solve_run_fn)(TRVenv env, TRVlp lp, double start, int *itcnt, int *ph1);
int solve_simplex(TRVenv env, TRVlp lp, int method, solve_run_fn run);

#endif
