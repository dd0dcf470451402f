/*
 * trv.h - the library's internal frame: records of the environment and its
 * channels, the allocator, the checks of every exported call, parameter
 * access and message output. Every source file of the library includes it.
 */
#ifndef TRV_FRAME_H
#define TRV_FRAME_H

#include <cstdarg>
#include <cstddef>
#include <cstdio>

#include "trvlib.h"

#define TRV_EXPORT extern "C" TRVAPI

/* ---- allocator: 16-byte aligned blocks --------------------------------- */

void *trv_malloc(size_t size);
void *trv_calloc(size_t count, size_t size);
void *trv_realloc(void *block, size_t size);
void trv_free_block(void *block);
template <class T> inline void trv_free(T **pp) {
    trv_free_block(static_cast<void *>(*pp));
    *pp = nullptr;
}
/* Typed helpers: n elements of T, n = 0 taken as 1. */
template <class T> inline T *trv_alloc(size_t n) {
    return static_cast<T *>(trv_malloc((n ? n : 1) * sizeof(T)));
}
template <class T> inline T *trv_zalloc(size_t n) {
    return static_cast<T *>(trv_calloc(n ? n : 1, sizeof(T)));
}
template <class T> inline int trv_grow(T **pp, size_t n) {
    void *q = trv_realloc(*pp, (n ? n : 1) * sizeof(T));
    if (q == nullptr) return 1001;
    *pp = static_cast<T *>(q);
    return 0;
}
/* Test hook: the n-th allocation from now fails (n >= 1); 0 switches it off. */
void trv_alloc_failat(long n);
long trv_alloc_count(void);
char *trv_strdup(const char *s);

/* ---- parameters --------------------------------------------------------- */

enum { PAR_INT = 1, PAR_DBL = 2, PAR_STR = 3 };
enum { PAR_LP = 0, PAR_MIP = 1, PAR_BAR = 2, PAR_QP = 3, PAR_NET = 4, PAR_NFAM = 5 };
#define PAR_SLOTS 72
#define PAR_STRLEN 512

union par_value {
    int i;
    double d;
};

/* One family's block. Only the LP block uses logfile and str; the LP, MIP
 * and network blocks hold the family's progress callback. The default,
 * minimum and maximum tables have the same shape as the current block. */
struct par_block {
    FILE *logfile;
    TRVcallbackfunc cbfunc;
    void *cbhandle;
    par_value v[PAR_SLOTS];
    char str[PAR_STRLEN];
};

/* ---- channels ----------------------------------------------------------- */

struct chan_dest {
    TRVchannel channel;
    int kind; /* 1 file, 2 indirect file, 3 function */
    chan_dest *next;
    FILE *file;
    FILE **fileslot;
    void *handle;
    TRVmsgfunc function;
};

struct trvchannel_rec {
    chan_dest *head;
};

int TRVmsg(TRVchannel channel, const char *format, ...)
    __attribute__((format(printf, 2, 3)));
int trv_vmsg(TRVchannel channel, const char *format, va_list ap);
bool channel_hasfile(TRVchannel channel, FILE *file);
void channel_screen(TRVenv env, int on);
TRVchannel channel_new(void);
/* Drops every destination, flushing the files. */
void channel_clear(TRVchannel channel);
void channel_flush(TRVchannel channel);
/* Attaches file to the four standard channels in place of the log file
 * before it (null only detaches); 0 or 1001. */
int channel_setlogfile(TRVenv env, FILE *file);

/* ---- environment -------------------------------------------------------- */

enum { OWN_PROBLEM = 1, OWN_CHANNEL = 2, OWN_CLONE = 3, OWN_NETWORK = 4 };

struct own_node {
    int kind;
    void *object;
    own_node *next;
};

#define ERRHASH_SIZE 479

struct trvenv_rec {
    trvenv_rec *self;
    int nparchild;
    trvenv_rec **parchild;
    par_block *cur[PAR_NFAM];
    par_block *def[PAR_NFAM];
    par_block *min[PAR_NFAM];
    par_block *max[PAR_NFAM];
    TRVchannel errchannel, warnchannel, reschannel, logchannel;
    trvenv_rec *parent;
    int nclones;
    int threadnum;
    unsigned randseed;
    char rownamebuf[17];
    char colnamebuf[23];
    char msgbuf[1024];
    int errhash[ERRHASH_SIZE];
    int maxthreads;
    own_node *ownedhead;
    int owning;
    const char *version;
    TRVnamefunc rownamefn, colnamefn;
    void *namefnhandle;
    TRVenv handle; /* the token the caller holds for this record */
};

bool env_valid(TRVenv env);
void env_report(TRVenv env, int *status);
const char *env_errfmt(TRVenv env, int code);
/* Prints the message of code, formatted with the arguments, on the error
 * channel and returns -code (the message is out: see env_report). */
int env_error(TRVenv env, int code, ...);
int env_own(TRVenv env, int kind, void *object);
void env_disown(TRVenv env, int kind, void *object);
int env_random(TRVenv env);
double env_randomd(TRVenv env);
int env_ncpu(int limit);
double env_time(TRVenv env);
bool range_check(TRVenv env, const char *fname, int begin, int end, int low,
                 int count);
/* Default names: variables "x%d", constraints "c%d" (index + 1). */
const char *env_varname(TRVenv env, char **names, int count, int index);
const char *env_conname(TRVenv env, char **names, int count, int index);

#define TRV_MAXTHREADS 64

/* ---- parameter access for the library's own code ------------------------ */

int par_int(TRVenv env, int num);
/* Sets an integer parameter for the library's own use, unchecked, and
 * returns the value it had: a run that overrides one puts it back. */
int par_swap_int(TRVenv env, int num, int value);
double par_dbl(TRVenv env, int num);
const char *par_str(TRVenv env);
void par_fill_tables(TRVenv env);
void par_setdefaults(TRVenv env);
void par_copy(TRVenv dst, TRVenv src);
void errhash_build(int *hash);

/* ---- handles and the frame of an exported call ---------------------------- */

/* A caller holds tokens, never record addresses: handle_new registers a
 * record and gives its token (null when no memory is left), handle_drop
 * makes the token stale for good, handle_find gives the record of a live
 * token of that kind (with its owner and the record's check hook) or null
 * for anything else, stale or garbage. */
enum { HANDLE_ENV = 1, HANDLE_LP = 2, HANDLE_NET = 3 };
/* The checks a record kind adds to the frame: may replace *rec (a view by
 * the problem it wraps); 0 or a code not yet reported. */
typedef int (*handle_check_fn)(TRVenv env, void **rec, unsigned flags);
void *handle_new(int kind, void *rec, void *owner, handle_check_fn check);
void handle_drop(const void *h);
void *handle_find(const void *h, int kind, void **owner, handle_check_fn *check);
long handle_live(void);

/* What an exported call asks of its problem handle. */
enum : unsigned {
    CALL_VIEW = 1u << 0,   /* a relaxed or fixed view answers for the problem it wraps */
    CALL_SINGLE = 1u << 1, /* refuses a relaxed, fixed or zeroed-QP problem (1023) */
    CALL_MERGE = 1u << 2,  /* pending additions are merged first */
    CALL_LOADED = 1u << 3, /* only a problem over the caller's arrays (1008) */
    CALL_COPIED = 1u << 4, /* only a problem that owns its arrays (1008) */
    CALL_FAMILY = 1u << 5  /* the problem may also be the parent's or a clone's */
};

/* Opens an exported call. *env becomes the environment's record, or null
 * with 1002; with lp_p, *lp_p becomes the problem's record after the checks
 * of flags (1009 for a stale, foreign or garbage handle), or null. Returns
 * 0 or a code that is not yet reported. */
int call_enter(TRVenv *env, TRVlp *lp_p, unsigned flags);
/* Closes it: a failure is reported once (a negative status is out
 * already; a null env prints nothing) and its positive code returned. */
int call_leave(TRVenv env, int status);
/* The record of an environment handle, or null. */
TRVenv env_record(TRVenv env);

#endif
