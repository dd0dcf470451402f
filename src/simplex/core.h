/*
 * core.h - the simplex core: the working LP that the optimisers see
 * (simplex_lp), the iteration state of the basis (simplex_iter), the run
 * record that the primal and the dual share (simplex_run) with the small
 * part each adds (primal_state, dual_state), the table of the choices by
 * which they differ (run_ops), and the internal calls of the subsystem.
 * The factorization has its interface in lu.h.
 *
 * Variables of the working LP, in index order:
 *   0 .. n-1              structural columns of the model
 *   n .. nstruct-1        range columns (one per ranged row, entry -1)
 *   nstruct .. ntotal-1   slacks of the 'L' (+1) and 'G' (-1) rows
 *   ntotal .. ntotal+m-1  artificials, one per row, unit column +1
 * Every variable has an explicit column in the matrix, so that any basis
 * header can be factored through the same access (col_beg, col_end).
 *
 * Conventions of both drivers:
 *   - all values are those of the working LP, scaled when the model is;
 *   - a run minimises sense * c x: the working costs carry the sense;
 *   - it->d holds c_j - y a_j for the nonbasic variables;
 *   - it->x holds every value: nonbasic ones at their working bound (or,
 *     for a superbasic, at the stored value), basic ones from the
 *     factorization.
 *
 * The primal's pricing turns reduced costs into "attractiveness" values,
 * negative when the variable should move: d at lower, -d at upper, -|d|
 * for a superbasic. Its phase 1 minimises the sum of infeasibilities of
 * the basic variables through costs of -1 and +1.
 *
 * The dual's phase 1 is the dual simplex itself on an auxiliary box: every
 * variable gets the bounds [0,0] (boxed in the model), [0,1] (lower bound
 * only), [-1,0] (upper bound only) or [-1,1] (free), the right-hand side
 * 0. All variables are then boxed, so every basis is dual feasible by a
 * choice of bound; the optimum of the box minimises the sum of dual
 * infeasibilities of the model, and its basis starts phase 2 when that
 * sum is zero. it->dweight holds the dual norms by basis position.
 */
#ifndef TRV_SIMPLEX_CORE_H
#define TRV_SIMPLEX_CORE_H

#include "simplex/lu.h"
#include "store/basis.h"

/* ---- the working LP and the iteration state (build.cpp) ------------------- */

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

/* Statuses of a variable in the iteration state. */
enum { VS_LOWER = 0, VS_BASIC = 1, VS_UPPER = 2, VS_SUPER = 3 };
/* Ban values of a variable (it->ban) or a basis position (it->pos_ban). */
enum { BAN_NONE = 0, BAN_EXEMPT = 2, BAN_FIXED = 32, BAN_ROUND = 33 };

/* The iteration state and basis of a run, as far as the factorization
 * and its update use them. */
struct simplex_iter {
    int *head;            /* m: the variable in each basis position */
    signed char *status;  /* ncoltot: VS_* */
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

struct simplex_run;

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
/* Name of variable j for messages ("range <row>" is added by the caller). */
const char *simplex_varname(TRVenv env, TRVlp lp, int j);
/* The answer of a running primal or dual to TRVgetcallbackinfo (the
 * question is known to the place): 0, or 1006 without its state. */
int simplex_cbinfo(TRVlp lp, int wherefrom, int whichinfo, void *result);

/* ---- statuses and constants ---------------------------------------------- */

#define PR_BIG 1e75        /* the absent value */
#define PR_NOLIMIT 2100000000

/* Result statuses of an LP run. */
enum {
    LPS_OPTIMAL = 1, LPS_INFEASIBLE = 2, LPS_UNBOUNDED = 3, LPS_OBJLIM = 4,
    LPS_IT_FEAS = 5, LPS_IT_INFEAS = 6, LPS_TIME_FEAS = 7, LPS_TIME_INFEAS = 8,
    LPS_NONOPT_FEAS = 9, LPS_NONOPT_INFEAS = 10, LPS_OPT_UNSCALED = 11,
    LPS_ABORT_FEAS = 12, LPS_ABORT_INFEAS = 13,
    /* the dual proved dual infeasibility and the primal is not asked to
     * tell unboundedness from infeasibility */
    LPS_UNB_OR_INF = 19
};

/* Internal codes that never reach a caller. */
enum { RC_REPAIRED = 2002, RC_RETRY = 2003 };

/* How often a run goes on with the variables it let go before their
 * reduced costs count as violations that end it. */
enum { RELEASE_ROUNDS = 1 };

/* Entries of the pivot row at or below this size do not take part in the
 * dual ratio test. */
#define DR_TINY 1e-9

/* Pricing modes of the dual. */
enum {
    DPR_PLAIN = 1,      /* largest squared infeasibility */
    DPR_STEEP = 2,      /* steepest edge from exact norms */
    DPR_FULL = 3,       /* steepest edge with the full norms */
    DPR_STEEP_UNIT = 4, /* steepest edge from unit norms */
    DPR_SWITCH = 5      /* plain first, steepest edge later */
};

/* ---- the kept choices (kheap.cpp) ------------------------------------------- */

/* An indexed heap of items 0..cap-1 (basis positions or variables) that
 * are candidates of a choice, ordered by the key v/w, largest first. */
struct key_heap {
    int *heap, n;       /* the candidates in heap order */
    int *at;            /* the place of each item, -1 when it is none */
    double *kv, *kw;    /* the key each item is placed by */
    int *dirty, ndirty; /* the items an iteration changed, to be settled */
    char *dirty_in;
    int cap;
    int stale;          /* to be made anew before the next choice */
};

/* Item a's key beats b's: v/w larger, compared without the division; of
 * equal ones the smaller index. */
inline bool kheap_better(const key_heap *h, int a, int b) {
    double l = h->kv[a] * h->kw[b], r = h->kv[b] * h->kw[a];
    return l > r || (l == r && a < b);
}
int kheap_alloc(key_heap *h, int cap);
void kheap_free(key_heap *h);
/* Made anew: kheap_begin empties it, kheap_append adds the candidates in
 * any order, kheap_order puts them in order. */
void kheap_begin(key_heap *h);
void kheap_append(key_heap *h, int i, double v, double w);
void kheap_order(key_heap *h);
/* Item i with a new key, put in its place, or taken out. */
void kheap_set(key_heap *h, int i, double v, double w);
void kheap_remove(key_heap *h, int i);
/* Item i changed: settled before the next choice. */
inline void kheap_touch(key_heap *h, int i) {
    if (h->dirty_in[i]) return;
    h->dirty_in[i] = 1;
    h->dirty[h->ndirty++] = i;
}
/* The best item not banned for the round (ban[i] == BAN_ROUND): the top,
 * or after a failed pivot banned it the best of the others by a pass; -1
 * when none. */
int kheap_best(const key_heap *h, const int *ban);

/* ---- the run record the primal and the dual share ------------------------ */

struct perturb_rec {
    int active, count, shift_count, shift_limit;
    double size;
};

/* The watch over the progress of a run: the value of the phase (see
 * run_ops.progress_value) against its value when watching started. */
struct progress_rec {
    double base_value;
    int base_it, last_it, interval, sample;
    int phase, fix_pending, restart_count;
    int falls;          /* returns from phase 2 to phase 1 since the last stall */
    int gave_up;        /* the stall control ended the run */
};

/* The state of the iteration log and of the last pivot it reports. */
struct iter_log {
    int display;
    int scaled;
    int refactored;       /* a factorization since the last log line */
    int last_phase_logged;
    int header_done;
    int detail_head_done;
    double last_elapsed_print;
    int last_elapsed_it;
    int entered, left;    /* last pivot, for the log and the progress */
    int left_status;
};

struct run_ops;

/* What both drivers keep of a run. The primal and the dual state extend
 * it with their own part; lp->primal and lp->dual are the two states (a
 * hand-over keeps both), lp->solver->it the basis they share. */
struct simplex_run {
    const run_ops *ops;
    int phase;          /* 1: the phase-1 problem of the driver, 2: the model */
    int pricing;        /* the primal's family of 1029, or DPR_* */
    int n_banned;       /* candidates banned for the round (BAN_ROUND) */
    /* working tolerances: optimality (reduced costs), feasibility, the
     * phase-1 test, the Harris relaxation and its base */
    double opt_tol, feas_tol, p1_tol, harris_delta, harris_base;
    perturb_rec perturb;
    progress_rec progress;
    /* working bounds and costs (ncoltot), right-hand side (m) */
    double *lower, *upper, *cost, *rhs;
    double *work, *work2; /* m, zero between uses */
    /* vectors of one iteration */
    sparse_vec col;     /* a column of the matrix, by rows */
    sparse_vec alpha;   /* the entering column, by positions */
    sparse_vec rho;     /* row p of the inverse, by rows */
    sparse_vec tau;     /* the steepest-edge solve, by positions */
    double *prow;       /* the pivot row over the nonbasic variables */
    int *prow_idx, prow_nz;
    /* row-wise copy of the columns 0..ntotal-1 */
    int *ar_beg, *ar_idx;
    double *ar_val;
    int *attempted;     /* candidates of one pivot round */
    int candidates_max;
    /* limits and the state of the run */
    int it_limit, n_it_phase1;
    double time_limit, obj_limit, start_time;
    int status;
    int fast;
    int updates;        /* basis changes since the last factorization */
    int abort;          /* 1 callback, 2 time */
    int polished;       /* the optimum was rechecked at a tighter tolerance */
    int p1_rechecks;    /* an end of phase 1 looked at again more closely */
    double objective;   /* sense * c x of the working problem */
    iter_log log;
};

/* The choices by which the two drivers differ, for the parts of a run
 * they share: the main loop, its limits, the progress watch and the log. */
struct run_ops {
    int place;          /* TRV_CALLBACK_PRIMAL or TRV_CALLBACK_DUAL */
    /* +1 when the driver's objective rises to the optimum (the dual), -1
     * when it falls (the primal): the direction of the objective limit
     * and of progress */
    int dir;
    /* the perturbation moves costs (the dual), not bounds: the objective
     * is not the model's while it is in force */
    int perturbs_costs;
    /* work before each iteration (the primal's switch of pricing), or null */
    int (*before)(TRVenv env, TRVlp lp);
    /* the choice of the next candidate (the entering column of the
     * primal, the leaving row of the dual), with the clean-up when none
     * is left: 0 with the candidate or with a status set, RC_RETRY to
     * price again, or an error */
    int (*price)(TRVenv env, TRVlp lp, int *k);
    /* the attempts at a pivot from that candidate: 0, RC_RETRY or an
     * error */
    int (*pivot)(TRVenv env, TRVlp lp, int k);
    /* refactor with repair allowed; the values, duals and phase follow */
    int (*refactor)(TRVenv env, TRVlp lp);
    /* sense * c x over the working costs */
    double (*objective)(TRVlp lp);
    /* the figure of phase 1 in the log */
    double (*infeasibility)(TRVlp lp);
    /* the value the progress watch follows, signed so that it rises */
    double (*progress_value)(TRVlp lp);
    /* a new start of the perturbation */
    void (*perturb)(TRVenv env, TRVlp lp);
    /* a stall under a perturbation: the driver's own remedy before a new
     * start (the primal shifts violated bounds); 1 when it acted */
    int (*stall_remedy)(TRVlp lp);
    /* the basis is feasible for the model now, as a limit's status says */
    bool (*feasible)(TRVlp lp);
};

/* The choices of each driver (primopt.cpp, dualopt.cpp). */
extern const run_ops primal_ops;
extern const run_ops dual_ops;

/* ---- the shared parts of a run (run.cpp) ----------------------------------- */

/* A new zeroed state of a driver in *slot, with its choices; null without
 * memory. */
template <class T> inline T *run_new(T **slot, const run_ops *ops) {
    T *r = trv_zalloc<T>(1);
    if (r != nullptr) {
        r->ops = ops;
        *slot = r;
    }
    return r;
}

/* The arrays of the record both drivers use: bounds, costs, scratch, the
 * vectors of an iteration, the candidate list and the duals and reduced
 * costs of the iteration state; 0 or 1001. */
int run_alloc(TRVlp lp, simplex_run *r);
void run_release(simplex_run *r);
/* The row-wise copy of the columns 0..ntotal-1: ar_beg counted, ar_idx and
 * ar_val allocated for extra parallel arrays of the same length; 0 or
 * 1001. */
int run_rowwise(const simplex_lp *s, simplex_run *r);
/* The parameters of a run that both drivers read. */
void run_parameters(TRVenv env, TRVlp lp, simplex_run *r, double start_time, int it_so_far,
                    int it1_so_far);
/* The main loop until a decision, a limit or an error. */
int run_main_loop(TRVenv env, TRVlp lp, simplex_run *r);
/* At a decision, the variables a repair fixed are let go and judged at
 * tol by their reduced costs dj; after(lp), when given, runs once any are
 * let go. 0: none was fixed, or none can improve the decision (said so);
 * 1: the run goes on with them, within RELEASE_ROUNDS; 2: they still
 * violate optimality after those rounds (said so). */
int run_release_dropped(TRVenv env, TRVlp lp, double tol, double (*dj)(TRVlp lp, int j),
                        void (*after)(TRVlp lp));
/* The largest violation, in the caller's units, of a bound of the model by
 * a basic value of a scaled run; 0 for an unscaled model. */
double run_unscaled_pinf(TRVlp lp);
/* The same of the sign of a reduced cost, violation(lp, j) giving that of
 * nonbasic j in the working units (0 where none counts). */
double run_unscaled_dinf(TRVlp lp, double (*violation)(TRVlp lp, int j));
/* Status of a run that stopped on a limit or an abort. */
int run_limit_status(TRVlp lp, const simplex_run *r);
/* The driver's refactorization, then RC_RETRY (or its error). */
int run_refactor_retry(TRVenv env, TRVlp lp, simplex_run *r);
/* Before a pivot of q at position p on alpha_p (its entry in the solved
 * column): the pivot row must agree with it (a doubt with updates pending
 * refactors), it must reach min_pivot, and the update must look stable; a
 * forced pivot (the last resort of a round) passes the doubts short of a
 * gross disagreement. 0 with the pending basis change set in the
 * iteration state, RC_RETRY for another candidate, or an error. */
int run_pivot_check(TRVenv env, TRVlp lp, simplex_run *r, int p, int q, double alpha_p,
                    double min_pivot, int forced);
/* The first steps of a refactorization with repair allowed: the factor,
 * the update count, the log mark and the bans of the round; 0,
 * RC_REPAIRED or an error. */
int run_refactor(TRVenv env, TRVlp lp, simplex_run *r);
/* The iteration log: the summary line (at display level 1 only after a
 * factorization or a change of phase unless forced) and the detail line. */
void run_log(TRVenv env, TRVlp lp, simplex_run *r, int force);
void run_log_detail(TRVenv env, TRVlp lp, simplex_run *r);
/* The name of variable j in the detail log. */
const char *run_varlabel(TRVenv env, TRVlp lp, int j, char *buf, size_t sz);
/* How many candidates a pivot round may try, by the size of the model. */
int candidates_for(int size);
/* Nonbasic values at their working bound, basic values by a dense solve
 * of the right-hand side less the nonbasic columns at their values. */
void run_compute_x(TRVlp lp, simplex_run *r);
/* Basic values from rhs and the nonbasic values; w: m of zero scratch. */
void basic_values(TRVlp lp, const double *rhs, double *w);
double working_objective(TRVlp lp, const double *cost);
/* The duals from the basic costs in w by a dense solve with work2 as
 * scratch; both are zero again on return. */
void duals_from_costs(TRVlp lp, double *w, double *work2);
/* The reduced costs of all nonbasic variables from the current duals, 0
 * for the basic ones; no cost array means zero costs. */
void reduced_costs(TRVlp lp, const double *cost);
/* c less the duals y times column j. */
inline double column_dj(const simplex_lp *s, const double *y, double c, int j) {
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) c -= y[s->row_idx[k]] * s->val[k];
    return c;
}
/* Column q of the matrix into col, its solve into alpha. */
void column_solve(TRVlp lp, int q, sparse_vec *col, sparse_vec *alpha);
/* The variables a repair fixed (ban 32) let go: each is released and its
 * reduced cost dj(lp, j) judged against its status at tol; a violation
 * beyond it is printed. *released gets the count released; the count of
 * violations comes back. */
int release_fixed(TRVenv env, TRVlp lp, double tol, double (*dj)(TRVlp lp, int j),
                  int *released);

/* ---- progress and perturbation (progress.cpp, perturb.cpp) ---------------- */

/* The stall interval and sample of a run on a model of size m (rows for
 * the primal, columns for the dual), with the interval of parameter 1028
 * in place of the given one when that is set. */
void progress_init(TRVenv env, simplex_run *r, int interval, int m);
void progress_reset(TRVlp lp, simplex_run *r);
/* Run once per iteration after the update: the stall control. Returns 0
 * or an error code. */
int progress_check(TRVenv env, TRVlp lp, simplex_run *r);
/* The size rule of a new start of the perturbation. */
void perturb_next_size(simplex_run *r);
void perturb_begin(TRVenv env, simplex_run *r);
/* The common start of the removal of a perturbation or of shifts; 0 when
 * neither is in force. */
int perturb_end(TRVenv env, simplex_run *r);
double tol_raise(double t);
double tol_step(double t);
double tol_reduce(double t);

/* ---- the primal ----------------------------------------------------------- */

struct ratio_work {
    double delta;
    double pivot_floor;
    int n_cand;
    int *cand_idx;        /* basis position */
    double *cand_ratio;
    double *cand_alpha;   /* |alpha| */
    double *cand_red;     /* slope reduction of a breakpoint */
    signed char *cand_to; /* 0 leaves at lower, 2 at upper */
    signed char *cand_state;
    int *cand_order;
    int no_length;        /* parameter 1068: no length preference */
    int len_limit;        /* -1: no length preference */
    int forced;
    /* results */
    int leaving;          /* basis position or -1 */
    double step, slope, objective_gain, pivot_abs, max_abs;
    int status_to;        /* 0 lower, 2 upper, 3 unbounded, 1 nothing */
};

/* Partial pricing: a candidate list refreshed from the duals. */
struct primal_partial {
    int sections, stride, target, next_start, count, fresh;
    int *var;
    double *key;
    char *dir;
    int *order;
    char *mark;
};

/* Reference framework of devex. */
struct primal_devex {
    char *ref;
    int ref_size;
};

/* The primal's part of a run: pricing is the family of parameter 1029, 1
 * after the switch to devex, -1 when the switch is blocked. */
struct primal_state : simplex_run {
    int ban_epoch;
    double *c1;                   /* phase 1 cost per basis position */
    char *pmark;                  /* ncoltot, zero between pivots */
    primal_partial *partial;
    primal_devex *devex;
    /* the choice of the entering column by the families that keep every
     * reduced cost: the columns that may enter, keyed by the family's
     * measure, and the superbasic ones among them by their reduced cost
     * alone (they go first), kept up with the columns an iteration
     * changed and made anew when the reduced costs are recomputed */
    key_heap cols, supers;
    double cols_tol;
    int d_kept;                   /* the family keeps it->d up to date */
    ratio_work rw;
    int shift_on;
    double sum_inf;               /* sum and count of the basic infeasibilities */
    int n_inf;
    long work_pivots;             /* accumulated work of the entering columns */
    int flipped;
    int pushed;                   /* the superbasic pass has run */
    int steep_miss;               /* pivots whose entering steepest-edge weight was
                                   * off its exact value by more than a factor 2 */
};

/* driver (primopt.cpp) */
int primal_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far,
               double start_time, int pricing_mode, int internal);
void primal_free(TRVlp lp);

/* state and recomputation (poptutil.cpp) */
int primal_state_alloc(TRVenv env, TRVlp lp);
int primal_refactor(TRVenv env, TRVlp lp);
int primal_refresh(TRVenv env, TRVlp lp);
void primal_compute_x(TRVlp lp);
void primal_compute_y(TRVlp lp);
void primal_compute_d(TRVlp lp);
double primal_dj(TRVlp lp, int j);
void primal_composite(TRVlp lp);
int primal_set_phase(TRVlp lp);
double primal_objective(TRVlp lp);
double primal_max_infeas(TRVlp lp, double tol);
int primal_pivot_row(TRVlp lp, int p);

/* pricing (price.cpp) */
int primal_price_init(TRVenv env, TRVlp lp, int family);
void primal_price_free(primal_state *ps);
int primal_price_select(TRVlp lp, double tol);
void primal_price_reset(TRVlp lp);
void primal_price_pivot(TRVlp lp, int p, int leaving, int entering, double alpha_p);
/* Column j's reduced cost, status, weight or ban changed: the choice of
 * the entering column looks at it again. */
void primal_price_touch(primal_state *ps, int j);
int primal_norms_init(TRVenv env, TRVlp lp, int mode);
double primal_attract(const simplex_iter *it, int j, double d);

/* ratio tests (ratio.cpp) */
int ratio_primal_p1(TRVlp lp, int dir, double d, double step_limit, int q);
int ratio_primal_p2(TRVlp lp, int dir, double d, double step_limit, int q);

/* pivoting (pleave.cpp) */
int primal_price_ladder(TRVenv env, TRVlp lp, int *q);
int primal_pivot(TRVenv env, TRVlp lp, int q);
int push_primal(TRVenv env, TRVlp lp, int *moved);

/* perturbation (perturb.cpp) */
void primal_perturb(TRVenv env, TRVlp lp);
int primal_remove(TRVenv env, TRVlp lp);
int primal_shift_bound(TRVlp lp, int pos, int to, double target);
int extend_shifts(TRVlp lp);

/* starting basis (advance.cpp) */
int start_basis(TRVenv env, TRVlp lp);

/* ---- the dual ------------------------------------------------------------- */

/* The dual's part of a run: the working bound flags (the auxiliary box of
 * phase 1 sets all of them), the flips of the ratio test and the layout
 * of its row-wise copy. */
struct dual_state : simplex_run {
    signed char *lo_on, *up_on;
    sparse_vec fcol;    /* the sum of the flipped columns, by rows */
    sparse_vec fdelta;  /* its solve, by positions */
    /* the row-wise copy holds each row's nonbasic entries first (ar_nnb
     * of them); ar_pos: the place of each column entry in the copy, ar_k:
     * the column entry of each place */
    int *ar_nnb, *ar_pos, *ar_k;
    int *iwork;           /* m, scratch of the row-wise copy's layout */
    /* ratio test */
    int *cand_j;
    double *cand_ratio, *cand_a, *cand_h; /* ratio, signed entry, relaxed ratio */
    int cand_left;        /* candidates left after the first group flipped */
    int *cand_ord, *cand_hord; /* their heaps by ratio and by relaxed ratio */
    int *cand_group;      /* the members of a group */
    char *cand_done;      /* flipped in the walk */
    int *flip_list, n_flip;
    double rw_step;     /* dual step of the last test */
    int rw_enter;       /* entering variable or -1 */
    double rw_pivot_abs, rw_max_abs;
    /* the choice of the leaving row: the positions whose basic variable
     * is outside its working bounds by more than the tolerance, keyed by
     * the squared violation over the weight, kept up with the positions
     * whose value or weight an iteration changed and made anew when the
     * values are recomputed or the tolerance or the pricing changes */
    key_heap rows;
    double rows_tol;
    int rows_plain;
    double sum_dinf;      /* sum and count of dual infeasibilities (phase 1) */
    int n_dinf;
    int norms_ready;
    int flip_count;
    int phase_sets;       /* count of the phase tests, which recompute the values */
};

/* driver (dualopt.cpp) */
int dual_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far, double start_time,
             int mode, int internal);
void dual_free(TRVlp lp);
/* At the end of a primal run whose basis lost primal feasibility with the
 * removal of the perturbation: 1 when the dual took over (its result code
 * in *rc and its status on the problem), 0 when the primal goes on. */
int dual_takeover(TRVenv env, TRVlp lp, int *rc);

/* state and recomputation (doptutil.cpp) */
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
void dual_pivot_row(TRVlp lp, int p);
void dual_row_partition(TRVlp lp);
void dual_row_swap(TRVlp lp, int entering, int leaving);

/* pricing and norms (dprice.cpp) */
int dual_pricing_mode(TRVenv env, TRVlp lp, int param, int *mode);

/* With simplex_checking set, what a run keeps from iteration to iteration
 * (the candidate lists of the choices) is checked against a choice made
 * from scratch, and each difference counted in simplex_check_faults. For
 * tests: it costs a full scan each time. */
extern int simplex_checking;
extern long simplex_check_faults;
int dual_price_select(TRVlp lp, double tol);
void dual_price_pivot(TRVlp lp, int p, double alpha_p, double rho_norm2);
int dual_norms_init(TRVenv env, TRVlp lp);
void dual_norms_reset(TRVlp lp);
double dual_infeasibility(const dual_state *ds, const simplex_iter *it, int j);

/* ratio test (dratio.cpp): dir +1 the leaving variable goes to its upper
 * bound (it is above it), -1 to its lower bound; slope its infeasibility.
 * Returns 0, 3 (no candidate: dual unbounded) or 2003 (no usable pivot). */
int ratio_dual(TRVlp lp, int dir, double slope, int flipping);

/* one iteration (dleave.cpp) */
int dual_price_ladder(TRVenv env, TRVlp lp, int *p);
int dual_pivot(TRVenv env, TRVlp lp, int p);

/* perturbation (dperturb.cpp) */
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

/* ---- the solve around a driver (solve.cpp, solution.cpp) ------------------ */

/* One run of a driver on the problem as it stands: the counts of
 * iterations in all and in phase 1 come back. */
typedef int (*solve_run_fn)(TRVenv env, TRVlp lp, double start, int *itcnt, int *ph1);
int solve_simplex(TRVenv env, TRVlp lp, int method, solve_run_fn run);
/* The figures of the working LP back to the caller's model. */
int solution_store(TRVenv env, TRVlp lp, int method, int itcnt, int phase1cnt);

#endif
