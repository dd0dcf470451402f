/*
 * mpsutil.h - the state of the MPS reader and its line and field helpers.
 */
#ifndef TRV_FORMATS_MPSUTIL_H
#define TRV_FORMATS_MPSUTIL_H

#include "formats/rwutil.h"
#include "store/names.h"

enum {
    MPSC_EXP = 0x01,   /* e E d D */
    MPSC_DIGIT = 0x02, /* 0 to 9 */
    MPSC_SKIP = 0x04,  /* a line starting with it is skipped */
    MPSC_NAME = 0x08,  /* may stand in a name */
    MPSC_SENSE = 0x10, /* L G E N */
};

/* Sections, in the order the reader walks them. */
enum {
    MS_NONE = 0, MS_NAME, MS_OBJSENSE, MS_OBJNAME, MS_REFROW, MS_ROWS,
    MS_COLUMNS, MS_RHS, MS_RANGES, MS_BOUNDS, MS_QMATRIX, MS_SOS, MS_ENDATA,
    MS_UNKNOWN
};

/* A field of the current line: text in the line buffer, terminated once
 * the line's split is decided. */
struct mps_field {
    char *text;
    int len;
};

#define MPS_NFIELD 6

struct mps_state {
    TRVenv env;
    FILE *fp;
    const char *filename;
    int want;
    rw_input in;
    char *line; /* the whole line, however long */
    int linecap;
    unsigned char cls[256];
    int lineno;
    int truncated; /* names cut at 255 characters */
    mps_field f[MPS_NFIELD]; /* positional fields 1 to 6 of the line */
    int nfree;               /* tokens of the free split, all counted */
    mps_field *tok;          /* the first tokcap of them */
    int tokcap;
    mps_field tok8[8]; /* the tokens of a line of the usual length */
    char nul[MPS_NFIELD]; /* the text of empty fields */
    bool emptynum; /* an empty numeric field was read as zero */
};

void mps_classes(unsigned char *cls);
/* A zeroed state made ready: the character classes and room for the
 * tokens of a line of usual length. */
void mps_init(mps_state *st, TRVenv env, const char *filename);
/* Starts the line input on st->fp; 0 or 1001. */
int mps_open_lines(mps_state *st);
/* Frees the line input and its buffers. */
void mps_close_lines(mps_state *st);
/* Next line that is not a comment, read whole: 1, 0 at the end of the
 * file, or 1001 when its buffers cannot grow. */
int mps_getline(mps_state *st);
/* Section of a line that does not start with white space. */
int mps_section(const char *line);
/* Splits a data line into white-space tokens; a line read by mps_getline
 * has room for all of them. */
void mps_tokens(mps_state *st);
/* The same over another line buffer. */
void mps_tokens_of(mps_state *st, char *line);
/* The fixed-column fields of the line, when its layout allows them. */
bool mps_fixed(mps_state *st);
/* Terminates the fields and cuts the names among them (bit k of namemask
 * for field k) beyond 255 characters. */
void mps_terminate(mps_state *st, unsigned namemask);
/* Terminates one field; a name is cut beyond 255 characters with the
 * counted warning. */
void mps_cut(mps_state *st, mps_field *f, bool name);
/* Reads a numeric field; 0 or a negative status (printed). */
int mps_number(mps_state *st, const mps_field *fld, double *value);
bool mps_numeric_look(const mps_field *fld);
bool mps_word_is(const char *text, const char *upper);

#endif
