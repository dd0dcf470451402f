/*
 * lu.h - the basis factorization, its solves and the
 * Forrest-Tomlin update.
 *
 * The factor of B (columns = basis positions 0..m-1) is kept as
 *
 *     U_k = R_k ... R_1 D^-1 L^-1 B_k
 *
 * L: unit lower triangular, one column per factor step k (pivot row l_row[k])
 *    holding the multipliers; D: the pivots, kept as reciprocals per row
 *    (pivot_inv); R_e: the row etas of the updates; U: unit upper triangular
 *    in the order of the positions: position pos pairs row perm_row[pos] with
 *    basis position perm_col[pos]. An update retires the position of the
 *    leaving column (perm_row = perm_col = -1) and appends a new one at the
 *    end, so positions run up to m + update_count.
 *
 * FTRAN: w = D^-1 L^-1 b (row space), the etas in order (w[r] = sum v_i w[i]);
 *        w is then the spike; the U solve gives x by basis position.
 * BTRAN: U^-T c (basis position to row space), the etas transposed in reverse
 *        order, D^-1, L^-T.
 */
#ifndef TRV_SIMPLEX_LU_H
#define TRV_SIMPLEX_LU_H

#include <cstdint>

#include "store/lp.h"

struct simplex_lp;

#define LU_MAXFILE 262499999   /* a file never holds more entries */
#define LU_MAXGROW 262499998   /* growth never passes this */
#define LU_DROP 1e-13        /* entries at or below are dropped */

/* The vector form of all solves: count (or -1 while only val is valid),
 * index list, dense values zero outside the list. */
struct sparse_vec {
    int nz;
    int *idx;
    double *val;
    int dim;
};
int sv_alloc(sparse_vec *v, int dim);
void sv_free(sparse_vec *v);
void sv_clear(sparse_vec *v);            /* zero the listed (or all) entries */
void sv_from_dense(sparse_vec *v);       /* rebuild the list from val */
/* dst cleared, then the listed entries of src (its list valid) */
void sv_copy(sparse_vec *dst, const sparse_vec *src);

struct lu_record {
    int valid;
    int m;
    double dense_frac;
    int growth_locked;
    int heavy_fill;
    int n_colsing, n_rowsing, n_dense;
    int first_nontrivial;
    int u_first_dense; /* positions below have empty U columns */
    int64_t nz_basis, nz_lu, nz_lu_now, nz_sum, nz_basis2;
    double avg_cost;
    int order_flag;
    double kappa;      /* pivot spread of the last factorization */
    double markowitz_used;

    /* capacities of the arrays sized by m (wcap >= max(m, ncols)) */
    int mcap, wcap, poscap;

    /* L by columns: steps 0..l_nsteps-1 */
    int l_nsteps, l_first;   /* l_first: first step with a non-empty column */
    int *l_row;              /* step -> pivot row */
    int *l_step_of_row;      /* row -> step */
    int *l_beg;              /* l_nsteps + 1 */
    int *l_idx;
    double *l_val;
    int l_cap;
    double *pivot_inv;       /* by row */
    /* L by rows (absent with heavy_fill): entries (row of step, value) */
    int *lr_beg, *lr_len;
    int *lr_idx;
    double *lr_val;
    int lr_cap;

    /* positions of U */
    int npos;
    int *perm_row, *perm_col;   /* poscap */
    int *pos_of_row, *pos_of_col;
    /* U by columns (basis positions) and by rows; slots with room */
    int *uc_beg, *uc_len, *uc_room;
    int *uc_idx;
    double *uc_val;
    int uc_cap, uc_top;
    int *ur_beg, *ur_len, *ur_room;
    int *ur_idx;
    double *ur_val;
    int u_row_cap, u_row_top, u_row_soft_cap, u_row_hard_cap;

    /* updates and the row-eta file */
    int update_count, update_count_prev, update_limit, update_auto;
    int update_capped;
    int eta_count, eta_ncap;
    int *eta_row, *eta_beg;
    int *eta_idx;
    double *eta_val;
    int eta_cap, eta_hard_cap;
    int *first_eta_touching;

    /* the spike of the entering column (row space, after L, D, etas) and the
     * row spike of the leaving position (row space, after U^-T) */
    int spike_nz, row_nz; /* -1: absent */
    int spike_cap_unused;
    int *spike_idx;
    double *spike_val;
    int *rspike_idx;
    double *rspike_val;
    int rspike_pos; /* basis position the row spike belongs to */

    /* scratch of the solves */
    double *sparse_work;  /* m, zero between calls */
    double *work2;        /* wcap, zero between calls */
    int *mark;            /* poscap, zero between calls */
    int *list, *list2;    /* poscap */
    int *heap;            /* poscap */

    /* the factorization's active matrix and work arrays */
    int *rowmap, *colmap;   /* results of the last lu_factor */
    int *rf_beg, *rf_len, *rf_room;
    int *rf_act;          /* entries still active, during the row-singleton pass */
    int *rf_idx;
    double *rf_val;
    int rf_cap, rf_top;
    int *cf_beg, *cf_len, *cf_room;
    int *cf_idx;
    int cf_cap, cf_top;
    int *rc_next, *rc_prev, *rc_key, *cc_next, *cc_prev, *cc_key;
    int *rc_head, *cc_head;
    int list_max;
    int64_t nz_active;
    int *stamp, *seen;
    double *wval;
    int *sortbuf;
    int stamp_now, seen_now;
    int *us_beg;          /* U staging by step during the factorization */
    int *us_idx;
    double *us_val;
    int us_cap;
    double *dense;        /* the dense tail */
    int64_t dense_cap;
    int us_top, l_top;
    int solve_path; /* 0 automatic, 1 dense, 2 hyper-sparse */
};

/* ---- factorization -------------------------------------------------------- */

int lu_alloc(TRVenv env, TRVlp lp);
void lu_free(TRVlp lp);
void lu_free_record(lu_record **lup);

/* One attempt. head lists ncols variables of the working LP; rowmap (m) gets
 * the basis position pivoted in each row or -1, colmap (ncols) the row of
 * each column or -1. mode nonzero: crash use (no solve structures).
 * rowsubset (m flags) restricts the rows. kappa_out receives the pivot
 * spread and turns the stability test off. Returns 0, 1001, 1256, 2000,
 * 2009. */
int lu_factor(TRVlp lp, const int *head, int ncols, int *rowmap, int *colmap,
              int mode, const char *rowsubset, double markowitz, double pivtol,
              double *kappa_out, double *fill_col, double *fill_row);
/* The same on an explicit record and working LP (tests, benchmark). */
int lu_factor_on(lu_record *lu, const simplex_lp *s, const int *head,
                 int ncols, int *rowmap, int *colmap, int mode,
                 const char *rowsubset, double markowitz, double pivtol,
                 double *kappa_out, double *fill_col, double *fill_row);
lu_record *lu_create(int m, int ncols, int updatecap);

int lu_refactor(TRVenv env, TRVlp lp, double *threshold_p, double pivtol,
                int repair_allowed, int partial_flag);
int lu_crash_factor(TRVenv env, TRVlp lp, int ncols, const int *head,
                    int *rowmap, int *colmap, const char *rowsubset,
                    double markowitz, double pivtol);
int basis_repair(TRVenv env, TRVlp lp, const int *rowmap, const int *colmap,
                 int keep_values);

/* ---- solves and upd ------------------------------------------------------- */

/* rhs by rows, result by basis positions; result may be rhs. */
void lu_ftran(lu_record *lu, sparse_vec *result, sparse_vec *rhs);
void lu_ftran_nospike(lu_record *lu, sparse_vec *result, sparse_vec *rhs);
void lu_ftran_dense(lu_record *lu, double *array);
/* rhs by basis positions, result by rows; result may be rhs. */
void lu_btran(lu_record *lu, sparse_vec *result, sparse_vec *rhs);
void lu_btran_row(lu_record *lu, sparse_vec *result, int basis_pos);
void lu_btran_dense(lu_record *lu, double *array, double *work);
void lu_row_spike(lu_record *lu, int basis_pos);
/* The spike of column j of the working LP alone, kept for the update. */
void lu_make_spike(lu_record *lu, const simplex_lp *s, int j);

/* Solve paths for the tests: 0 automatic, 1 always dense, 2 always
 * hyper-sparse where the part has such a path. */
void lu_set_path(lu_record *lu, int path);

int lu_update(TRVenv env, TRVlp lp);
int lu_update_check(TRVlp lp, double alpha, int keep, int *status);
/* The storage step of the update on an explicit record: returns 0 or 1 when
 * a refactorization must be done instead. */
int lu_update_store(lu_record *lu, int p, double alpha);
void lu_release_spikes(lu_record *lu);
void lu_set_update_limit(lu_record *lu, int param1031);

#endif
