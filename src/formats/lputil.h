/*
 * lputil.h - the state of the LP reader: character classes, the line
 * buffers, the growing tables of the model and the state of the parse.
 */
#ifndef TRV_FORMATS_LPUTIL_H
#define TRV_FORMATS_LPUTIL_H

#include "formats/rwutil.h"
#include "store/names.h"

enum {
    LPC_NAME = 0x001,   /* may start a name */
    LPC_SENSE = 0x002,  /* < = > */
    LPC_NUM = 0x004,    /* may start a number */
    LPC_EXP = 0x008,    /* e E */
    LPC_OK = 0x010,     /* accepted in a line */
    LPC_EOL = 0x020,    /* ends the line; a backslash starts a comment */
    LPC_DIGIT = 0x040,
    LPC_SIGN = 0x080,
    LPC_SPACE = 0x100,
    LPC_DELIM = 0x200,  /* ends a token */
    LPC_QUAD = 0x400,   /* * [ ] ^ */
};

/* Section codes, which are also the keyword codes and the states. */
enum {
    LPS_START = 0, LPS_MIN = 1, LPS_MAX = 2, LPS_BOUNDS = 4, LPS_SOS = 5,
    LPS_END = 16, LPS_LINE = 17, LPS_EOF = 18, LPS_ERROR = 19,
    LPS_ROWS = 32, LPS_CUTS = 33, LPS_LAZY = 34,
    LPS_INT = 65, LPS_BIN = 66, LPS_GEN = 67, LPS_SEMI = 68,
    LPS_INTFLAG = 0x40
};

/* Where the parse of an expression stands. */
enum {
    RP_START = 0, /* a row may begin, with a name and colon */
    RP_TERM,      /* after an operator: a term must come */
    RP_AFTER,     /* after a term: an operator, a sense or the end */
    RP_RHS,       /* after the sense: the right-hand side */
};
enum { Q_OFF = 0, Q_TERM, Q_OP, Q_EXP, Q_NAME2, Q_AFTER };

/* The parse state: copied at the start of every line, so that an
 * interactive reader can go back to it. */
struct lp_parse {
    int section;
    int phase;
    bool inrow;      /* the row has a name, a term or a sense */
    bool havesign, havecoef;
    double sign, coef;
    int signline;
    int quad, qcol;
    double qcoef, qsign;
    bool qhavecoef;
    char sense;
    int rowname; /* name index of the row being read, or -1 */
    int rowpos;  /* where the row began in the compact line, -1 on an earlier line */
    /* sets */
    bool sosopen;
    /* counts of the tables */
    int ncols, nrows, nent, nobj, nbnd, nint, nq, nsos, nsosnz, nrnames, nsnames;
    bool objnamed;
};

struct lp_state {
    TRVenv env;
    FILE *fp;
    const char *source;
    bool interactive;
    int want;
    unsigned short cls[256];
    int lineno;
    char *buf;  /* the raw line, read whole however long */
    char *cbuf; /* the compacted line, of the raw line's size */
    int bufcap;
    int clen;
    lp_parse p;
    int lastcode;
    int objsense;
    int truncwarn;
    int namewarn; /* unknown names in bounds, integer and set lines */
    int kwwarn;   /* keywords taken over a column's name */
    int repwarn;  /* a column repeated in a row */
    int binwarn;  /* integers without bounds taken as binary */
    /* tables */
    nameset *cols;
    nameset *rnames;  /* row names given in the file */
    nameset *snames;  /* set names */
    int rowcap;
    int *rowbeg, *rname;
    char *rsense, *rkind;
    double *rrhs;
    int entcap;
    int *ecol;
    double *eval;
    int objcap;
    int *ocol;
    double *oval;
    int bndcap;
    int *bcol;
    char *bkind;
    double *bval;
    int intcap;
    int *icol;
    char *ikind;
    int qcap;
    int *qa, *qb;
    double *qv;
    int soscap, sosnzcap;
    char *sostype;
    int *sosbeg, *sosname, *sosind;
    double *sosref;
    char objname[RW_NAMELEN + 1];
};

void lp_classes(unsigned short *cls);
/* The next line: a section code (with any text after the keyword left in
 * the compact buffer), LPS_LINE, LPS_EOF, or a negative status. */
int lp_getline(lp_state *st, rw_input *in);
/* The keyword code of a compact word in the given state, or 0. */
int lp_keyword(const char *word, int len, int state);
/* A number with "inf" and "infinity"; 0 or a negative status. */
int lp_bound_number(lp_state *st, const char *s, const char *end, double *v,
                    const char **stop);

#endif
