/*
 * primal.h - the primal simplex: its run state (primal_state), the pricing
 * families, the ratio tests, perturbation and progress control, and the
 * hand-over of a finished run's figures to the solution record.
 *
 * Conventions of the primal code:
 *   - all values are those of the working LP, scaled when the model is;
 *   - the run minimises sense * c x, so the working costs carry the sense;
 *   - it->d holds mathematical reduced costs (c_j - y a_j); the pricing
 *     turns them into "attractiveness" values, negative when the variable
 *     should move: d at lower, -d at upper, -|d| for a superbasic;
 *   - basic values live in it->x[head[i]], nonbasic ones at their bound or,
 *     for a superbasic, at the stored value.
 */
#ifndef TRV_SIMPLEX_PRIMAL_H
#define TRV_SIMPLEX_PRIMAL_H

#include "simplex/lu.h"
#include "simplex/splp.h"
#include "store/basis.h"

#define PR_BIG 1e75        /* the absent value */
#define PR_NOLIMIT 2100000000

/* Result statuses of an LP run. */
enum {
    LPS_OPTIMAL = 1, LPS_INFEASIBLE = 2, LPS_UNBOUNDED = 3, LPS_OBJLIM = 4,
    LPS_IT_FEAS = 5, LPS_IT_INFEAS = 6, LPS_TIME_FEAS = 7, LPS_TIME_INFEAS = 8,
    LPS_NONOPT_FEAS = 9, LPS_NONOPT_INFEAS = 10, LPS_OPT_UNSCALED = 11,
    LPS_ABORT_FEAS = 12, LPS_ABORT_INFEAS = 13
};

/* Internal codes that never reach a caller. */
enum { RC_REPAIRED = 2002, RC_RETRY = 2003 };

struct perturb_rec {
    int active, count, shift_count, shift_limit;
    double size;
};

struct progress_rec {
    double base_value;
    int base_it, last_it, interval, sample, last_count;
    double rate;
    int phase, fix_pending, restart_count;
};

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

/* The state of the iteration log and of the last pivot it reports, the
 * same for the primal and the dual run. */
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

struct primal_state {
    int phase;        /* 1 infeasible, 2 feasible */
    int pricing;      /* family of parameter 1029, 1 after the switch, -1 blocked */
    int n_banned;
    int ban_epoch;
    perturb_rec perturb;
    double infeas_limit, feas_tol, harris_delta, harris_base, opt_tol, p1_tol;
    progress_rec progress;
    double *lower, *upper, *cost; /* working bounds and costs, ncoltot */
    double *rhs;                  /* working right-hand side, m */
    double *c1;                   /* phase 1 cost per basis position */
    double *work;                 /* m, scratch for dense solves */
    double *work2;                /* m */
    sparse_vec col, alpha, rho;   /* entering column, its solve, pivot row's */
    sparse_vec tau;               /* steepest edge */
    double *prow;                 /* pivot row over variables, ncoltot */
    int *prow_idx, prow_nz;
    char *pmark;                  /* ncoltot, zero between pivots */
    int *ar_beg, *ar_idx;         /* row-wise copy of all columns */
    double *ar_val;
    int *attempted;               /* candidates of one pivot round */
    primal_partial *partial;
    primal_devex *devex;
    int d_kept;                   /* the family keeps it->d up to date */
    int d_valid;
    ratio_work rw;
    int candidates_max;
    /* iteration state */
    int it_limit;
    int n_it_phase1;
    double time_limit, obj_limit, start_time;
    int status;
    int shift_on;
    double objective;
    double sum_inf;
    int n_inf;
    int updates;          /* basis changes since the last factorization */
    int fast;
    int abort;            /* 1 callback, 2 time */
    long work_pivots;     /* accumulated work of the entering columns */
    int flipped;
    int pushed;           /* the superbasic pass has run */
    int polished;         /* the optimum was rechecked at a tighter tolerance */
    int steep_miss;       /* pivots whose entering steepest-edge weight was
                           * off its exact value by more than a factor 2 */
    int p1_rechecks;      /* infeasibility rechecked at a tighter phase 1 tolerance */
    iter_log log;
};

/* ---- driver (primopt.cpp) ---------------------------------------------- */

int primal_opt(TRVenv env, TRVlp lp, int it_so_far, int it1_so_far,
               double start_time, int pricing_mode, int internal);
void primal_free(TRVlp lp);

/* ---- state and recomputation (poptutil.cpp) ------------------------------- */

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
void primal_log(TRVenv env, TRVlp lp, int force);
void primal_log_detail(TRVenv env, TRVlp lp);
const char *primal_varlabel(TRVenv env, TRVlp lp, int j, char *buf, size_t sz);

/* ---- shared by the primal and the dual run (poptutil.cpp) ------------------ */

/* The summary line of the log; infeas is the figure of phase 1, objective
 * the one of phase 2 (sense * c x). */
void iter_log_line(TRVenv env, iter_log *lg, int phase, int n_it, double infeas,
                   double objective, int force);
void iter_log_detail(TRVenv env, TRVlp lp, iter_log *lg, int phase, int perturbed, int n_it,
                     double infeas, double objective);
void iter_log_elapsed(TRVenv env, iter_log *lg, int n_it, double start_time);
/* Basic values from rhs and the nonbasic values; w: m of zero scratch. */
void basic_values(TRVlp lp, const double *rhs, double *w);
double working_objective(TRVlp lp, const double *cost);
int candidates_for(int size);
void duals_from_costs(TRVlp lp, double *w, double *work2);
void reduced_costs(TRVlp lp, const double *cost);
/* c less the duals y times column j. */
inline double column_dj(const simplex_lp *s, const double *y, double c, int j) {
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) c -= y[s->row_idx[k]] * s->val[k];
    return c;
}
/* Column q of the matrix into col, its solve into alpha. */
void column_solve(TRVlp lp, int q, sparse_vec *col, sparse_vec *alpha);
/* The size rule of a new start of the perturbation. */
void perturb_next_size(perturb_rec *pr, double *harris_delta, double *harris_base);
void perturb_begin(TRVenv env, const iter_log *lg, perturb_rec *pr);
/* The common start of the removal of a perturbation or of shifts; 0 when
 * neither is in force. */
int perturb_end(TRVenv env, const iter_log *lg, perturb_rec *pr, double *harris_base,
                double *harris_delta);

/* The end of a run lets go of what a repair fixed: every variable and every
 * basis position with ban 32 is released. Each released nonbasic variable
 * is judged by its reduced cost dj(lp, j) against its status; one that
 * asks to move by more than tol is named on the error channel. Returns the
 * count of those; *released gets the count of variables released. */
int release_fixed(TRVenv env, TRVlp lp, double tol, double (*dj)(TRVlp lp, int j),
                  int *released);
/* How often a run goes on with the variables it let go before their
 * reduced costs count as violations that end it. */
enum { RELEASE_ROUNDS = 1 };

/* ---- pricing (price.cpp) --------------------------------------------------- */

int primal_price_init(TRVenv env, TRVlp lp, int family);
void primal_price_free(primal_state *ps);
int primal_price_select(TRVlp lp, double tol);
void primal_price_reset(TRVlp lp);
void primal_price_pivot(TRVlp lp, int p, int leaving, int entering, double alpha_p);
int primal_norms_init(TRVenv env, TRVlp lp, int mode);
double primal_attract(const simplex_iter *it, int j, double d);

/* ---- ratio tests (ratio.cpp) ------------------------------------------------ */

int ratio_primal_p1(TRVlp lp, int dir, double d, double step_limit, int q);
int ratio_primal_p2(TRVlp lp, int dir, double d, double step_limit, int q);

/* ---- pivoting (pleave.cpp) -------------------------------------------------- */

int primal_iterate(TRVenv env, TRVlp lp);
int primal_pivot(TRVenv env, TRVlp lp, int q);
int push_primal(TRVenv env, TRVlp lp, int *moved);

/* ---- perturbation and progress (perturb.cpp, progress.cpp) ----------------- */

void progress_init(TRVenv env, primal_state *ps, int m);
void progress_reset(TRVlp lp);
int progress_check(TRVenv env, TRVlp lp);
void primal_perturb(TRVenv env, TRVlp lp);
int primal_remove(TRVenv env, TRVlp lp);
int primal_shift_bound(TRVlp lp, int pos, int to, double target);
int extend_shifts(TRVlp lp);
double tol_raise(double t);
double tol_step(double t);
double tol_reduce(double t);

/* ---- starting basis (advance.cpp) ------------------------------------------- */

int start_basis(TRVenv env, TRVlp lp);

/* ---- solution record (solution.cpp) ----------------------------------------- */

int solution_store(TRVenv env, TRVlp lp, int method, int itcnt, int phase1cnt);

#endif
