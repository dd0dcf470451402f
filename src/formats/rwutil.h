/*
 * rwutil.h - the file layer of the model readers and writers: opening with
 * a default suffix and through a gzip pipe, the decimal conversion, and the
 * record in which a reader hands out the model it has read.
 */
#ifndef TRV_FORMATS_RWUTIL_H
#define TRV_FORMATS_RWUTIL_H

#include "frame/trv.h"

#define RW_LINE 510    /* line buffer of the text formats */
#define RW_NAMELEN 255 /* longest name */

/* ---- files ------------------------------------------------------------------ */

bool trv_hasgz(const char *name);
FILE *trv_fopen(TRVenv env, const char *name, const char *mode,
                const char *suffix, int quiet, int allowgz, int *status_p);
FILE *trv_wfopen(const char *name, const char *mode, int allowgz);
/* Closes a file or a pipe and nulls the handle; nonzero when the close
 * failed or the pipe's program ended in error. */
int trv_fclose(const char *name, FILE **file);
/* Closes a file that a reader has read, given the reader's status. With a
 * status of 0 the rest of a pipe is read first, so that the decompressor
 * runs to its end, and a stream that ended in error (a read error, or a
 * decompressor that failed on a damaged or truncated file) makes the read
 * fail: 1423 printed, its negative returned. Any other status is returned
 * as it is. */
int trv_rclose(TRVenv env, const char *name, FILE **file, int status);
/* The name without compression suffix and without its last extension. */
void trv_stem(char *out, const char *name);
int trv_tempfile(TRVenv env, const char *directory, const char *stem,
                 char **name_p);

/* Buffered line input: a line is read through its line feed or up to
 * size - 1 characters, whichever comes first, like fgets, but with its
 * length returned, so that a zero byte in a line is just a character. */
struct rw_input {
    FILE *fp;
    char *block;
    size_t pos, len;
    bool eof;
    bool bylines; /* a terminal: one line at a time, no read-ahead */
};

int rw_open_input(rw_input *in, FILE *fp);
void rw_close_input(rw_input *in);
/* Length of the line put in buf (terminated); 0 at the end of the file. */
int rw_gets(rw_input *in, char *buf, int size);
/* One whole line, however long, into *buf, which grows on the library's
 * allocator (*cap its size, at least 2 on entry); *len is its length, 0 at
 * the end of the file. 0, or 1001 when memory runs out. */
int rw_getline(rw_input *in, char **buf, int *cap, int *len);

/* ---- decimal conversion ---------------------------------------------------- */

enum {
    RWNUM_DEXP = 1,   /* d and D are exponent letters too */
    RWNUM_PREFIX = 2, /* the number may be followed by a name: "2x", "3ex" */
};
enum { RWNUM_EXPSTART = 16180, RWNUM_EXPEND = 16181 };

/* Converts the text [s, end): optional sign, digits with a fraction, and an
 * exponent of at most 37. A lone sign is 1.0 with its sign, an empty text
 * 0.0. Returns 0, RWNUM_EXPSTART (exponent letter with no digits before
 * it), RWNUM_EXPEND (exponent letter with no digits after it), 1435 (an
 * exponent above 37) or 1434 (a point and nothing else); *stop is where
 * the scan ended. */
int rw_decimal(const char *s, const char *end, int flags, double *value,
               const char **stop);

/* ---- the model a reader hands out ---------------------------------------- */

struct read_model {
    char *probname;
    int ncols, nrows, objsen;
    double *obj, *rhs;
    char *sense;
    int *matbeg, *matcnt, *matind;
    double *matval;
    double *lb, *ub, *rngval;
    char *objname, *rhsname, *rngname, *bndname;
    char **colname, *colnamestore;
    char **rowname, *rownamestore;
    int colspace, rowspace, nzspace, colnamespace, rownamespace;
    /* free rows and other vectors kept as rim data */
    int nrims, rimspace, rimnzspace, rimnamespace;
    int *freerowind, *rimtype, *rimbeg, *rimcnt, *rimind;
    double *rimval;
    char **rimname, *rimnamestore;
    /* column types: null for a pure LP */
    char *ctype;
    int nints; /* columns declared of a type other than 'C' */
    /* special ordered sets */
    int numsos, numsosnz;
    char *sostype;
    int *sospri, *sosbeg, *sosind;
    double *sosref;
    char **sosname, *sosnamestore;
    /* quadratic objective, by columns */
    int nquad;
    int *qmatbeg, *qmatcnt, *qmatind;
    double *qmatval;
    /* user cuts [0] and lazy constraints [1], by rows */
    int ncut[2], ncutnz[2];
    double *cutrhs[2];
    char *cutsense[2];
    int *cutbeg[2], *cutind[2];
    double *cutval[2];
    char **cutname[2], *cutnamestore[2];
    int cutnamespace[2];
};

/* What the caller of a reader wants besides the LP. */
enum {
    RM_INTS = 1, /* column types and sets */
    RM_QUAD = 2, /* the quadratic part */
    RM_RIMS = 4, /* free rows and other vectors */
};

void rm_free(read_model *m);
/* Packs n names of a name list into a pointer array with space slots and a
 * store with room for 16 characters in each spare slot. */
int rm_names(int n, int space, const char *const *src, char ***names_p,
             char **store_p, int *bytes_p);

/* The quadratic part by columns from a list of terms (a, b, v), repeats
 * added. With objective_terms the terms are those of an objective written
 * out (v x_a x_b, or v x_a^2 when a = b) and become entries of the matrix
 * Q of 1/2 x'Qx; otherwise each term is one entry of Q. */
int rm_quad(read_model *m, int nq, const int *qa, const int *qb, const double *qv,
            bool objective_terms);

/* Out-pointers of the exported readers; a null pointer declines that
 * array. */
struct rm_out {
    int *numcols, *numrows, *numrims, *objsen;
    double **obj, **rhs;
    char **sense;
    int **matbeg, **matcnt, **matind;
    double **matval, **lb, **ub, **rngval;
    int **freerowind, **rimtype, **rimbeg, **rimcnt, **rimind;
    double **rimval;
    char **dataname, **objname, **rhsname, **rngname, **bndname;
    char ***colname, **colnamestore, ***rowname, **rownamestore;
    char ***rimname, **rimnamestore;
    int *colspace, *rowspace, *nzspace, *rimspace, *rimnzspace;
    int *colnamespace, *rownamespace, *rimnamespace;
    char **ctype;
    int *numsos, *numsosnz;
    char **sostype;
    int **sosbeg, **sosind;
    double **sosref;
    int **qmatbeg, **qmatcnt, **qmatind;
    double **qmatval;
    int *qnzspace;
};

/* 1004 when an array every model has is declined. */
int rm_out_check(const rm_out *o);
/* Moves the arrays to the caller; the record keeps what was declined and
 * is then freed. */
void rm_give(read_model *m, const rm_out *o);

/* The readers: a file name (null: standard input for the LP reader), what
 * to keep, and the record to fill. 0 or a negative status (printed). */
int lp_read(TRVenv env, const char *filename, int want, read_model *m);
int mps_read(TRVenv env, const char *filename, int want, read_model *m);

#endif
