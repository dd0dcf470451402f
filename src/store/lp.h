/*
 * lp.h - the problem record. The outer handle (trvlp_rec) carries the
 * problem's type, solution status and one pointer per solver's state; the
 * inner lp_data holds rows, columns, the column-wise matrix with spare room,
 * bounds and names, always in the computational form: a ranged row has an
 * explicit range column after the structurals, and each 'L' or 'G' row an
 * implicit slack.
 */
#ifndef TRV_STORE_LP_H
#define TRV_STORE_LP_H

#include "frame/trv.h"

#define TRV_INF 1.0e20      /* stored value of an infinite bound */
#define TRV_INFTEST 1.0e17  /* input at or beyond this is infinite */

enum { MEM_LOAD = 1, MEM_COPY = 2 };
enum {
    PROB_LP = 0, PROB_MIP = 1, PROB_RELAXED = 2, PROB_FIXED = 3,
    PROB_NETSUB = 4, PROB_QP = 5, PROB_ZEROEDQP = 6
};
enum { KIND_INF = 0, KIND_FINITE = 1, KIND_ZERO = 2 };

/* Records of later subsystems that hang off the handle. Each module that
 * defines one also frees it in lp_free_records. */
struct start_rec;       /* advanced start: stored basis and values */
struct soln_rec;        /* the solution of the last optimisation */
struct lu_record;       /* factorization of the current basis */
struct solver_rec;      /* common simplex working record */
struct primal_state;    /* primal simplex state */
struct dual_state;      /* dual simplex state */
struct norm_rec;        /* pricing norms */
struct sens_rec;        /* sensitivity and quality results */
struct presolve_record; /* presolve */
struct mipctl;          /* MIP */
struct bar_rec;         /* barrier */
struct qp_rec;          /* quadratic part */
struct cache_rec;       /* pending additions */

struct lp_data {
    char *probname;
    int nrows, ncols, nrims;
    int rowspace, colspace, rimspace, nzspace, rimnzspace;
    int rownamespace, colnamespace, rimnamespace;
    int objsen;
    double *obj;
    double *rhs;
    char *sense;
    char *dataname, *objname, *rhsname, *rngname, *bndname;
    char **rowname, **colname, **rimname;
    char *rownamestore, *colnamestore, *rimnamestore;
    int *matbeg, *matcnt, *matind;
    double *matval;
    double *lb, *ub;
    double *lbsave, *ubsave;
    double *rngval;
    int *freerowind, *rimtype, *rimbeg, *rimcnt, *rimind;
    double *rimval;
    char *ctype;
    int nstruct;    /* columns including the range columns */
    int ntotal;     /* nstruct + implicit slacks */
    int ntotalcopy; /* kept in step with ntotal by the simplex */
    int *colend;    /* matbeg + matcnt, for the solvers' inner loops */
    signed char *lowerkind, *upperkind; /* KIND_INF, KIND_FINITE, KIND_ZERO */
    int notsimple;
    int nfreerows;
    int *slackrow;     /* row of each implicit slack */
    double *slackval;  /* +1 for an 'L' row, -1 for a 'G' row */
    int scaletype;     /* -1 none yet */
    double *rowscale, *colscale;           /* active scaling, or null */
    double *rowscalestore, *colscalestore; /* owned scale arrays */
    int matdirty;
    double fillfac_a, fillfac_b; /* working copies of 1033 and 1005 */
    double tol_opt, tol_feas, tol_opt2, tol_feas2; /* 1050, 1049 copies */
    int updatecap, updatecap2;
    cache_rec *cache;
};

/* The working records of the optimisers (the solver's working LP, the
 * factorization, the run states) hang off the problem, but the store does
 * not know their layout: a change drops or marks them through the hooks
 * that the optimiser which built them set, and tightened bounds reach a
 * working LP the same way. */
enum : unsigned {
    WORK_DUAL = 1u << 0,      /* the dual run state */
    WORK_PRIMAL = 1u << 1,    /* the primal run state */
    WORK_SOLVER = 1u << 2,    /* the working LP and its iteration state */
    WORK_FACTOR = 1u << 3,    /* the factorization */
    WORK_STALE_LP = 1u << 4,  /* the working LP is refreshed from the model before use */
    WORK_STALE_X = 1u << 5,   /* the values of the iteration state likewise */
    WORK_ALL = WORK_DUAL | WORK_PRIMAL | WORK_SOLVER | WORK_FACTOR
};
struct work_hooks {
    void (*drop)(TRVlp lp, unsigned what);
    /* the model's new bounds of the listed columns (those with taken set)
     * into the working LP, nonbasic values following their bound */
    void (*follow_bounds)(TRVlp lp, int cnt, const int *indices, const bool *taken);
    /* the answer of the running optimiser to TRVgetcallbackinfo at its
     * place: 0, or 1006 when it has no state to answer from */
    int (*cbinfo)(TRVlp lp, int wherefrom, int whichinfo, void *result);
};

struct trvlp_rec {
    trvlp_rec *self;
    trvlp_rec *me;
    int reserved_a;
    void *baseblock;
    int stat;
    int probtype;
    int memmodel;
    lp_data *lpdata;
    start_rec *start;
    void *startaux;
    soln_rec *soln;
    lu_record *factor;
    solver_rec *solver;
    primal_state *primal;
    void *dataptrs[4];
    dual_state *dual;
    norm_rec *pnorms;
    norm_rec *dnorms;
    sens_rec *sensdata;
    presolve_record *presolve;
    mipctl *mip;
    trvlp_rec *relaxed;
    trvlp_rec *workcopy;
    bar_rec *barrier;
    qp_rec *qp;
    trvlp_rec *handle; /* the token the caller holds for this record */
    const work_hooks *work; /* set by the optimiser that built its records */
};

/* The record checks under the call frame: a live record; a relaxed or
 * fixed view replaced by the problem it wraps. */
bool lp_valid(TRVlp lp);
bool lp_resolve(TRVlp *lp);

/* A new empty problem that owns its arrays (the work of TRVcreateprob);
 * null with *status_p set, not reported. */
TRVlp lp_create(TRVenv env, int *status_p, const char *probname);
/* Frees a problem of env's and everything it holds; *lp_p is nulled. */
void lp_free(TRVenv env, TRVlp *lp_p);
/* Replaces the model of a problem that owns its arrays (the work of
 * TRVcopylpwnames); 0 or a code, not reported. */
int lp_copy(TRVenv env, TRVlp lp, int numcols, int numrows, int objsen,
            const double *obj, const double *rhs, const char *sense,
            const int *matbeg, const int *matcnt, const int *matind,
            const double *matval, const double *lb, const double *ub,
            const double *rngval, char **colname, char **rowname);

/* Computational form and capacities. */
int lp_rebuild(TRVenv env, TRVlp lp);
int lp_slacks(TRVenv env, TRVlp lp);
void lp_setsimple(TRVlp lp);
void lp_kinds(lp_data *d);
int lp_ensure(TRVenv env, TRVlp lp, int cols, int rows, int nz,
              long colnamebytes, long rownamebytes);
void lp_compress(lp_data *d);
/* Bytes of a packed name store for count names with room for 16-character
 * names in the spare slots up to space: 0, or 1012 when the store would
 * reach 2100000000 bytes. Measured before anything is allocated. */
#define LP_NAMEBYTES_MAX 2100000000L
int lp_namestore_bytes(int count, char *const *names, int space, long *bytes_p);
void lp_updatecap(TRVenv env, lp_data *d);
void lp_free_records(TRVenv env, TRVlp lp);
int lp_check_matrix(TRVenv env, int numcols, int numrows, const int *matbeg,
                    const int *matcnt, const int *matind);

/* The caller's values of a model held scaled, in arrays of their own (all
 * null when the model is not scaled): what a copy of the model takes. 0 or
 * 1001. */
struct lp_unscaled {
    double *obj, *lb, *ub, *rhs, *rngval, *matval;
};
int lp_unscaled_copy(const lp_data *d, lp_unscaled *u);
void lp_unscaled_free(lp_unscaled *u);

/* Change notification: drops what a change of the given code makes stale. */
void invalidate(TRVenv env, TRVlp lp, int code);

/* Pending additions (cache.cpp): the merge, raising the change codes when
 * raise is set; the merge once the pending counts outgrow the model. */
int lp_flush(TRVenv env, TRVlp lp, int raise);
int lp_cachehigh(TRVenv env, TRVlp lp);
void cache_free(cache_rec **cache);
/* Pending columns (what 0), rows (1) or nonzeros (2). */
int lp_cachecount(const cache_rec *cache, int what);

/* The solution record as a change sees it: marked stale (free_it 0) or
 * freed (soln.cpp). */
void soln_invalidate(TRVlp lp, int free_it);

#endif
