/*
 * mpsread.cpp - the MPS reader: sections NAME, OBJSENSE, OBJNAME, REFROW,
 * ROWS, COLUMNS (with integer and set markers), RHS, RANGES, BOUNDS,
 * QMATRIX, SOS and ENDATA.
 *
 * Rows and columns are kept in hashed name sets in file order; free rows
 * stay in the row set so that their entries can be recognised and dropped.
 * The first vector of each of RHS, RANGES and BOUNDS is the one used, and
 * a second one is dropped with a warning. Each column's entries are
 * appended as its lines come, so the matrix grows in column order with no
 * sort. The arrays are trimmed to the need plus the allowances of the
 * environment when the file has been read.
 *
 * Files written by other programs are read as they mean: a line of
 * COLUMNS, RHS or RANGES may hold any number of pairs, each read as if it
 * stood on a line of its own; a card of the fixed layout whose column,
 * vector or bound-set name is blank goes on with the one of the card
 * above. Each such reading is reported once a section, with its count.
 */
#include <cmath>
#include <cctype>
#include <cstring>

#include "formats/mpsutil.h"
#include "store/lp.h"

namespace {

enum { BND_LOWER = 1, BND_UPPER = 2, BND_MARKER = 4 /* integer by the marker */ };

/* A reading the file asked for that the section reports once, at its end:
 * how many lines and the first of them. */
struct line_count {
    int lines, first;
};

void count_line(line_count *c, int lineno) {
    if (c->lines++ == 0) c->first = lineno;
}

struct mps_work {
    /* rows in file order, free rows included */
    nameset *rows;
    int rowcap;
    char *rsense;  /* 'N', 'L', 'G', 'E' */
    int *rowmap;   /* index among the kept rows, -1 for a free row */
    int *rowmark;  /* last column (or vector pass) that touched the row */
    int objrow;    /* file index of the objective row */
    int nkept;     /* rows that are not free */
    double *rhs, *rng; /* by file index */
    bool anyrng;
    char *rngset;  /* a range was given */
    /* columns */
    nameset *cols;
    int colcap;
    double *obj, *lb, *ub;
    int *matbeg, *matcnt;
    char *ctype;
    unsigned char *bflag;
    int cur; /* the column being read, -1 for none or a skipped run */
    /* entries */
    int nz, nzcap;
    int *ind;
    double *val;
    /* sets */
    int nsos, soscap, nsosnz, sosnzcap;
    char *sostype;
    int *sosbeg, *sosind;
    double *sosref;
    char **sosname;
    bool insos, inint;
    /* quadratic terms */
    int nq, qcap;
    int *qi, *qj;
    double *qv;
    /* names and choices */
    char probname[RW_NAMELEN + 1];
    char objname[RW_NAMELEN + 1];
    char refrow[RW_NAMELEN + 1];
    char rhsname[RW_NAMELEN + 1], rngname[RW_NAMELEN + 1], bndname[RW_NAMELEN + 1];
    bool hasobjname, hasrefrow, hasrhs, hasrng, hasbnd, sensegiven;
    int objsen;
    /* counted messages */
    int rowrepeats, colrepeats, objwarn, freewarn, bndsets, priwarn;
    int colfail; /* the code of the first repeat in COLUMNS */
    bool emptywarned;
    /* lines read in a way the section reports at its end */
    line_count manypairs; /* more than two pairs */
    line_count blankname; /* a blank name field continuing the one above */
    line_count extrabnd;  /* BOUNDS fields after the value */
    bool lastused; /* the vector or bound set of the last card is the one used */
    bool secondset; /* the section's second vector was reported */
};

template <class T> int grow_to(T **p, int cap) {
    if (*p == nullptr) {
        *p = trv_alloc<T>(static_cast<size_t>(cap));
        return *p == nullptr ? 1001 : 0;
    }
    return trv_grow(p, static_cast<size_t>(cap));
}

int next_cap(int cap, int need) {
    long c = 2L * cap;
    if (c < need) c = need;
    if (c < 16) c = 16;
    if (c > 2100000000L) c = 2100000000L;
    return static_cast<int>(c);
}

void work_free(mps_work *w) {
    nameset_free(&w->rows);
    nameset_free(&w->cols);
    trv_free(&w->rsense), trv_free(&w->rowmap), trv_free(&w->rowmark);
    trv_free(&w->rhs), trv_free(&w->rng), trv_free(&w->rngset);
    trv_free(&w->obj), trv_free(&w->lb), trv_free(&w->ub);
    trv_free(&w->matbeg), trv_free(&w->matcnt), trv_free(&w->ctype);
    trv_free(&w->bflag);
    trv_free(&w->ind), trv_free(&w->val);
    trv_free(&w->sostype), trv_free(&w->sosbeg), trv_free(&w->sosind);
    trv_free(&w->sosref);
    if (w->sosname != nullptr)
        for (int k = 0; k < w->nsos; k++) trv_free(&w->sosname[k]);
    trv_free(&w->sosname);
    trv_free(&w->qi), trv_free(&w->qj), trv_free(&w->qv);
}

int work_init(TRVenv env, mps_work *w) {
    std::memset(w, 0, sizeof *w);
    w->objrow = -1;
    w->cur = -1;
    w->objsen = 1;
    int status = 0;
    int r = par_int(env, 1021), c = par_int(env, 1023), nz = par_int(env, 1024);
    w->rowcap = r < 16 ? 16 : r;
    w->colcap = c < 16 ? 16 : c;
    w->nzcap = nz < 16 ? 16 : nz;
    w->rows = nameset_new(w->rowcap > 12000 ? w->rowcap : 12000, 204000, 'c', 1, &status);
    if (status == 0)
        w->cols = nameset_new(w->colcap > 12000 ? w->colcap : 12000, 204000, 'x', 1, &status);
    if (status != 0) return status;
    nameset_setgrow(w->rows, w->rowcap, 204000);
    nameset_setgrow(w->cols, w->colcap, 204000);
    w->rsense = trv_alloc<char>(w->rowcap);
    w->rowmark = trv_alloc<int>(w->rowcap);
    w->obj = trv_alloc<double>(w->colcap);
    w->lb = trv_alloc<double>(w->colcap);
    w->ub = trv_alloc<double>(w->colcap);
    w->matbeg = trv_alloc<int>(w->colcap);
    w->matcnt = trv_alloc<int>(w->colcap);
    w->ctype = trv_alloc<char>(w->colcap);
    w->bflag = trv_alloc<unsigned char>(w->colcap);
    w->ind = trv_alloc<int>(w->nzcap);
    w->val = trv_alloc<double>(w->nzcap);
    if (!w->rsense || !w->rowmark || !w->obj || !w->lb || !w->ub || !w->matbeg ||
        !w->matcnt || !w->ctype || !w->bflag || !w->ind || !w->val)
        return 1001;
    return 0;
}

int grow_rows(mps_work *w, int need) {
    if (need <= w->rowcap) return 0;
    int cap = next_cap(w->rowcap, need);
    if (grow_to(&w->rsense, cap) || grow_to(&w->rowmark, cap)) return 1001;
    w->rowcap = cap;
    return 0;
}

int grow_cols(mps_work *w, int need) {
    if (need <= w->colcap) return 0;
    int cap = next_cap(w->colcap, need);
    if (grow_to(&w->obj, cap) || grow_to(&w->lb, cap) || grow_to(&w->ub, cap) ||
        grow_to(&w->matbeg, cap) || grow_to(&w->matcnt, cap) ||
        grow_to(&w->ctype, cap) || grow_to(&w->bflag, cap))
        return 1001;
    w->colcap = cap;
    return 0;
}

int grow_nz(mps_work *w, int need) {
    if (need <= w->nzcap) return 0;
    int cap = next_cap(w->nzcap, need);
    if (grow_to(&w->ind, cap) || grow_to(&w->val, cap)) return 1001;
    w->nzcap = cap;
    return 0;
}

void copy_name(char *dst, const char *src) {
    std::snprintf(dst, RW_NAMELEN + 1, "%s", src);
}

const char *row_name(const mps_work *w, int r) { return nameset_name(w->rows, r); }

/* ---- header sections ------------------------------------------------------------ */

/* The first token after the section word, or an empty field. */
mps_field inline_word(mps_state *st) {
    mps_tokens(st);
    if (st->nfree >= 2) {
        mps_field f = st->tok[1];
        if (f.len > RW_NAMELEN) f.len = RW_NAMELEN;
        f.text[f.len] = '\0';
        return f;
    }
    return {st->nul, 0};
}

int read_objsense(mps_state *st, mps_work *w, const mps_field *f) {
    TRVenv env = st->env;
    if (f->len >= 3 && mps_word_is(f->text, "MAX")) {
        w->objsen = -1;
        TRVmsg(env->reschannel, "Specified objective sense: MAXIMIZE\n");
    } else if (f->len >= 3 && mps_word_is(f->text, "MIN")) {
        w->objsen = 1;
        TRVmsg(env->reschannel, "Specified objective sense: MINIMIZE\n");
    } else {
        return env_error(env, 1487, st->lineno, f->text);
    }
    w->sensegiven = true;
    return 0;
}

/* ---- ROWS ----------------------------------------------------------------------- */

int read_row(mps_state *st, mps_work *w) {
    if (st->nfree == 2) {
        st->f[0] = st->tok[0];
        st->f[1] = st->tok[1];
        for (int k = 2; k < MPS_NFIELD; k++) st->f[k] = {nullptr, 0};
    } else if (!mps_fixed(st)) {
        st->f[0] = st->tok[0];
        st->f[1] = st->nfree > 1 ? st->tok[1] : mps_field{nullptr, 0};
        for (int k = 2; k < MPS_NFIELD; k++) st->f[k] = {nullptr, 0};
    }
    mps_terminate(st, 1u << 1);
    const mps_field *s = &st->f[0], *n = &st->f[1];
    if (s->len != 1 || !(st->cls[static_cast<unsigned char>(s->text[0])] & MPSC_SENSE))
        return env_error(st->env, 1453, st->lineno);
    if (n->len == 0) return env_error(st->env, 1486, st->lineno);
    int status = 0, before = nameset_count(w->rows);
    int r = nameset_findaddn(w->rows, n->text, n->len, &status);
    if (r < 0) return status;
    if (r < before) {
        if (++w->rowrepeats <= 20) env_error(st->env, 1445, n->text);
        return 0;
    }
    if ((status = grow_rows(w, r + 1)) != 0) return status;
    char c = s->text[0];
    w->rsense[r] = static_cast<char>(c >= 'a' ? c - 'a' + 'A' : c);
    w->rowmark[r] = -1;
    return 0;
}

/* The objective and the kept rows, once ROWS is done. */
int finish_rows(mps_state *st, mps_work *w) {
    TRVenv env = st->env;
    if (w->rowrepeats > 20)
        TRVmsg(env->errchannel, "%d Row repeats messages not printed.\n", w->rowrepeats - 20);
    if (w->rowrepeats > 0) return -1445;
    int n = nameset_count(w->rows);
    if (w->hasobjname) {
        int r = nameset_find(w->rows, w->objname);
        if (r >= 0 && w->rsense[r] == 'N') {
            w->objrow = r;
        } else {
            TRVmsg(env->warnchannel, "Warning:  Specified objective '%.255s' not found.\n",
                   w->objname);
        }
    }
    int nfree = 0;
    for (int r = 0; r < n; r++)
        if (w->rsense[r] == 'N') {
            nfree++;
            if (w->objrow < 0) w->objrow = r;
        }
    if (w->objrow < 0) return env_error(env, 1476, st->lineno);
    TRVmsg(env->reschannel, "Selected objective  name:  %.255s", row_name(w, w->objrow));
    if (nfree == 2)
        TRVmsg(env->reschannel, "  [1 free row deleted]\n");
    else if (nfree > 2)
        TRVmsg(env->reschannel, "  [%d free rows deleted]\n", nfree - 1);
    else
        TRVmsg(env->reschannel, "\n");
    w->rowmap = trv_alloc<int>(n);
    w->rhs = trv_zalloc<double>(n);
    w->rng = trv_zalloc<double>(n);
    w->rngset = trv_zalloc<char>(n);
    if (!w->rowmap || !w->rhs || !w->rng || !w->rngset) return 1001;
    for (int r = 0; r < n; r++) w->rowmap[r] = w->rsense[r] == 'N' ? -1 : w->nkept++;
    return 0;
}

/* ---- COLUMNS ---------------------------------------------------------------------- */

bool is_marker(const mps_field *f) {
    return f->len >= 8 && mps_word_is(f->text, "'MARKER'");
}

int open_set(mps_state *st, mps_work *w, char type) {
    if (w->nsos >= w->soscap) {
        int cap = next_cap(w->soscap, w->nsos + 1);
        if (grow_to(&w->sostype, cap) || grow_to(&w->sosbeg, cap + 1)) return 1001;
        if (grow_to(&w->sosname, cap) != 0) return 1001;
        w->soscap = cap;
    }
    (void)st;
    w->sostype[w->nsos] = type;
    w->sosbeg[w->nsos] = w->nsosnz;
    w->sosname[w->nsos] = nullptr;
    w->nsos++;
    return 0;
}

int add_member(mps_work *w, int col, double weight) {
    if (w->nsosnz >= w->sosnzcap) {
        int cap = next_cap(w->sosnzcap, w->nsosnz + 1);
        if (grow_to(&w->sosind, cap) || grow_to(&w->sosref, cap)) return 1001;
        w->sosnzcap = cap;
    }
    w->sosind[w->nsosnz] = col;
    w->sosref[w->nsosnz++] = weight;
    return 0;
}

int read_marker(mps_state *st, mps_work *w, const mps_field *type, const mps_field *kind) {
    TRVenv env = st->env;
    w->cur = -1;
    if (kind->len >= 8 && mps_word_is(kind->text, "'INTORG'")) {
        if (w->inint) return env_error(env, 1480, st->lineno);
        w->inint = true;
    } else if (kind->len >= 8 && mps_word_is(kind->text, "'INTEND'")) {
        if (!w->inint) return env_error(env, 1481, st->lineno);
        w->inint = false;
    } else if (kind->len >= 8 && mps_word_is(kind->text, "'SOSORG'")) {
        if (w->insos) return env_error(env, 1482, st->lineno);
        char t = '1';
        if (type != nullptr && type->len > 0) {
            if (type->len == 2 && (type->text[0] == 'S' || type->text[0] == 's') &&
                (type->text[1] == '1' || type->text[1] == '2'))
                t = type->text[1];
            else
                return env_error(env, 1442, st->lineno, type->text[0],
                                 type->len > 1 ? type->text[1] : ' ');
        }
        int status = open_set(st, w, t);
        if (status != 0) return status;
        w->insos = true;
    } else if (kind->len >= 8 && mps_word_is(kind->text, "'SOSEND'")) {
        if (!w->insos) return env_error(env, 1483, st->lineno);
        w->insos = false;
    } else {
        TRVmsg(env->warnchannel, "Line %d:  Unidentified MARKER found. Ignored.\n",
               st->lineno);
    }
    return 0;
}

/* Starts the column named by f, or goes on with the current one. */
int column_of(mps_state *st, mps_work *w, const mps_field *f) {
    if (w->cur >= 0) {
        const char *name = nameset_name(w->cols, w->cur);
        if (std::strcmp(name, f->text) == 0) return 0;
    }
    int status = 0, before = nameset_count(w->cols);
    int j = nameset_findaddn(w->cols, f->text, f->len, &status);
    if (j < 0) return status;
    if (j < before) {
        /* a column in two separate runs: counted, the read fails later */
        if (w->colfail == 0) w->colfail = 1446;
        if (++w->colrepeats <= 20) env_error(st->env, 1446, f->text);
        w->cur = -2;
        return 0;
    }
    if ((status = grow_cols(w, j + 1)) != 0) return status;
    w->cur = j;
    w->obj[j] = 0.0;
    w->lb[j] = 0.0;
    w->ub[j] = w->inint ? 1.0 : TRV_INF;
    w->ctype[j] = w->inint ? 'B' : 'C';
    w->bflag[j] = w->inint ? BND_MARKER : 0;
    w->matbeg[j] = w->nz;
    w->matcnt[j] = 0;
    if (w->insos)
        status = add_member(w, j, static_cast<double>(w->nsosnz - w->sosbeg[w->nsos - 1] + 1));
    return status;
}

int column_entry(mps_state *st, mps_work *w, const mps_field *rf, const mps_field *vf) {
    int r = nameset_find(w->rows, rf->text);
    if (r < 0) return env_error(st->env, 1448, st->lineno, rf->text);
    double v;
    int status = mps_number(st, vf, &v);
    if (status != 0) return status;
    int j = w->cur;
    if (j < 0) return 0; /* a repeated column's run */
    if (w->rowmark[r] == j) {
        if (w->colfail == 0) w->colfail = 1443;
        if (++w->colrepeats <= 20)
            env_error(st->env, 1443, nameset_name(w->cols, j), rf->text);
        return 0;
    }
    w->rowmark[r] = j;
    if (w->insos && w->hasrefrow && std::strcmp(rf->text, w->refrow) == 0)
        w->sosref[w->nsosnz - 1] = v;
    if (r == w->objrow) {
        w->obj[j] = v;
        return 0;
    }
    int k = w->rowmap[r];
    if (k < 0) return 0; /* a free row's entry goes */
    if ((status = grow_nz(w, w->nz + 1)) != 0) return status;
    w->ind[w->nz] = k;
    w->val[w->nz++] = v;
    w->matcnt[j]++;
    return 0;
}

bool comment_field(const mps_field *f) { return f->len > 0 && f->text[0] == '$'; }

/* A row of that name, as the name reads once cut to 255 characters. */
bool is_row(const mps_work *w, const mps_field *f) {
    unsigned b;
    size_t len = static_cast<size_t>(f->len > RW_NAMELEN ? RW_NAMELEN : f->len);
    return namehash_lookup_n(w->rows->index, f->text, len, &b) >= 0;
}

/* The tokens from `from` on are pairs of a row (a known one if rows is
 * set) and a value that looks like a number, up to the end of the line or
 * a comment. */
bool pairs_from(const mps_state *st, const mps_work *w, int from, bool rows) {
    const mps_field *t = st->tok;
    int n = st->nfree, pairs = 0;
    for (int k = from; k < n; k += 2) {
        if (comment_field(&t[k])) break;
        if (k + 1 >= n || !mps_numeric_look(&t[k + 1]) || (rows && !is_row(w, &t[k])))
            return false;
        pairs++;
    }
    return pairs > 0;
}

/* The name field of a card left blank in the fixed layout: the card goes
 * on with the column or vector of the card above. */
void blank_name(mps_state *st, mps_work *w) { count_line(&w->blankname, st->lineno); }

/* Reads the pairs of a free line from token `from` on, each as if it stood
 * on a line of its own; a last row without its value reads a zero. */
template <class F> int free_pairs(mps_state *st, mps_work *w, int from, F entry) {
    mps_field *t = st->tok;
    int n = st->nfree, pairs = 0;
    for (int k = from; k < n; k += 2) {
        if (comment_field(&t[k])) break;
        mps_field rf = t[k], vf = k + 1 < n ? t[k + 1] : mps_field{nullptr, 0};
        mps_cut(st, &rf, true);
        mps_cut(st, &vf, false);
        int status = entry(&rf, &vf);
        if (status != 0) return status;
        pairs++;
    }
    if (pairs > 2) count_line(&w->manypairs, st->lineno);
    return 0;
}

/* The pairs of a line in the fixed layout, fields 3-4 and 5-6; a value
 * whose row field is blank cannot be read. */
template <class F> int fixed_pairs(mps_state *st, int unknown, F entry) {
    for (int k = 2; k <= 4; k += 2) {
        const mps_field *rf = &st->f[k], *vf = &st->f[k + 1];
        if (rf->len == 0) {
            if (vf->len > 0) return env_error(st->env, unknown, st->lineno, rf->text);
            continue;
        }
        if (comment_field(rf)) break;
        int status = entry(rf, vf);
        if (status != 0) return status;
    }
    return 0;
}

/* A card whose column name is blank goes on with the column above; with
 * none above (the first card, or one after a marker) it cannot be read. */
int continue_column(mps_state *st, mps_work *w) {
    if (w->cur == -1) return env_error(st->env, 1449, st->lineno, "");
    blank_name(st, w);
    return 0;
}

/* A COLUMNS line: a column name and pairs of row and value, written free
 * (any number of pairs) or in the fixed layout, whose blank column name
 * goes on with the column above. */
int read_column(mps_state *st, mps_work *w) {
    mps_field *t = st->tok;
    int n = st->nfree;
    if (n >= 3 && is_marker(&t[1])) {
        t[2].text[t[2].len] = '\0';
        return read_marker(st, w, nullptr, &t[2]);
    }
    if (n >= 4 && is_marker(&t[2]) && t[0].len <= 2) {
        t[0].text[t[0].len] = '\0';
        t[3].text[t[3].len] = '\0';
        return read_marker(st, w, &t[0], &t[3]);
    }
    auto entry = [st, w](const mps_field *rf, const mps_field *vf) {
        return column_entry(st, w, rf, vf);
    };
    /* the free form; with more than two pairs its rows must be rows, as a
     * line of the fixed layout with blanks in its names splits into more
     * tokens too */
    if (n >= 3 && pairs_from(st, w, 1, n > 5)) {
        mps_field cf = t[0];
        mps_cut(st, &cf, true);
        int status = column_of(st, w, &cf);
        return status != 0 ? status : free_pairs(st, w, 1, entry);
    }
    if (mps_fixed(st)) {
        mps_terminate(st, (1u << 1) | (1u << 2) | (1u << 4));
        int status = st->f[1].len > 0 ? column_of(st, w, &st->f[1]) : continue_column(st, w);
        return status != 0 ? status : fixed_pairs(st, 1448, entry);
    }
    /* pairs alone: the column name left blank; else a column and pairs,
     * the last of which may lack its value */
    int from = n % 2 == 0 && pairs_from(st, w, 0, true) ? 0 : 1;
    int status;
    if (from == 0) {
        status = continue_column(st, w);
    } else {
        mps_field cf = t[0];
        mps_cut(st, &cf, true);
        status = column_of(st, w, &cf);
    }
    return status != 0 ? status : free_pairs(st, w, from, entry);
}

void empty_warning(mps_state *st, mps_work *w) {
    if (st->emptynum && !w->emptywarned) {
        TRVmsg(st->env->warnchannel, "Warning:  Empty numeric fields read as zeros.\n");
        w->emptywarned = true;
    }
}

int finish_columns(mps_state *st, mps_work *w) {
    empty_warning(st, w);
    if (w->colrepeats > 20)
        TRVmsg(st->env->errchannel, "%d Column repeats messages not printed.\n",
               w->colrepeats - 20);
    if (w->colrepeats > 0) return -w->colfail;
    return 0;
}

/* ---- RHS and RANGES ---------------------------------------------------------------- */

struct vec_kind {
    const char *word;  /* in messages */
    const char *label; /* in the selection line */
    int unknown;       /* code of an unknown row */
};

const vec_kind RHS_KIND = {"RHS", "RHS", 1450};
const vec_kind RNG_KIND = {"RANGES", "range", 1452};

int vector_entry(mps_state *st, mps_work *w, const vec_kind *kind, int pass,
                 const mps_field *rf, const mps_field *vf) {
    TRVenv env = st->env;
    if (!w->lastused) return 0; /* another vector's entry */
    int r = nameset_find(w->rows, rf->text);
    if (r < 0) return env_error(env, kind->unknown, st->lineno, rf->text);
    double v;
    int status = mps_number(st, vf, &v);
    if (status != 0) return status;
    const char *vec = kind == &RHS_KIND ? w->rhsname : w->rngname;
    if (r == w->objrow) {
        if (++w->objwarn <= 5)
            TRVmsg(env->warnchannel, "Warning, line %d:  OBJ coefficient in %s section ignored.\n",
                   st->lineno, kind->word);
        return 0;
    }
    if (w->rsense[r] == 'N') {
        if (++w->freewarn <= 5)
            TRVmsg(env->warnchannel, "Warning:  %s '%.255s' value for free row '%.255s' ignored.\n",
                   kind->word, vec, rf->text);
        return 0;
    }
    if (w->rowmark[r] == pass) {
        if (++w->rowrepeats <= 20) env_error(env, 1444, kind->word, vec, rf->text);
        return 0;
    }
    w->rowmark[r] = pass;
    if (kind == &RHS_KIND) {
        w->rhs[r] = v;
    } else {
        w->rng[r] = v;
        w->rngset[r] = 1;
        w->anyrng = true;
    }
    return 0;
}

/* The vector of a card: the first one named is used and later ones are
 * dropped with one warning; a blank name on a later card goes on with the
 * vector of the card above. */
void vector_of(mps_state *st, mps_work *w, const vec_kind *kind, const mps_field *name) {
    bool *has = kind == &RHS_KIND ? &w->hasrhs : &w->hasrng;
    char *used = kind == &RHS_KIND ? w->rhsname : w->rngname;
    if (!*has) {
        *has = true;
        copy_name(used, name->text);
        TRVmsg(st->env->reschannel, "Selected %-10s name:  %.255s\n", kind->label, used);
        w->lastused = true;
    } else if (name->len == 0 && used[0] != '\0') {
        blank_name(st, w);
    } else if (std::strcmp(used, name->text) == 0) {
        w->lastused = true;
    } else {
        w->lastused = false;
        if (!w->secondset) {
            w->secondset = true;
            TRVmsg(st->env->warnchannel,
                   "Warning:  More than one %s set specified.  Only the first set is used.\n",
                   kind->label);
        }
    }
}

/* A vector line: a vector name and pairs of row and value, written free
 * (any number of pairs) or in the fixed layout; a card may leave the
 * vector name blank. */
int read_vector(mps_state *st, mps_work *w, const vec_kind *kind, int pass) {
    mps_field *t = st->tok;
    int n = st->nfree;
    auto entry = [st, w, kind, pass](const mps_field *rf, const mps_field *vf) {
        return vector_entry(st, w, kind, pass, rf, vf);
    };
    /* a vector name and pairs, or pairs alone; where neither fits the
     * rows, the fixed layout, and else the form the values suggest, so
     * that an unknown row is named in the error */
    int from = 1;
    if (n >= 3 && pairs_from(st, w, 1, true)) {
        from = 1;
    } else if (n % 2 == 0 && pairs_from(st, w, 0, true)) {
        from = 0;
    } else if (mps_fixed(st)) {
        mps_terminate(st, (1u << 1) | (1u << 2) | (1u << 4));
        vector_of(st, w, kind, &st->f[1]);
        return fixed_pairs(st, kind->unknown, entry);
    } else if (n % 2 == 0 && pairs_from(st, w, 0, false)) {
        from = 0;
    }
    mps_field name = from == 1 ? t[0] : mps_field{nullptr, 0};
    mps_cut(st, &name, true);
    vector_of(st, w, kind, &name);
    return free_pairs(st, w, from, entry);
}

int finish_vector(mps_state *st, mps_work *w, int *pass) {
    TRVenv env = st->env;
    empty_warning(st, w);
    if (w->objwarn > 5) TRVmsg(env->warnchannel, "%d OBJ warnings not printed.\n", w->objwarn - 5);
    if (w->freewarn > 5)
        TRVmsg(env->warnchannel, "%d free row warnings not printed.\n", w->freewarn - 5);
    w->objwarn = w->freewarn = 0;
    w->secondset = false;
    (*pass)--;
    if (w->rowrepeats > 20)
        TRVmsg(env->errchannel, "%d Row repeats messages not printed.\n", w->rowrepeats - 20);
    if (w->rowrepeats > 0) return -1444;
    return 0;
}

/* ---- BOUNDS ------------------------------------------------------------------------- */

bool bound_needs_value(const mps_field *type) {
    static const char *const novalue[] = {"FR", "MI", "PL", "BV"};
    if (type->len != 2) return true;
    for (const char *w : novalue)
        if (mps_word_is(type->text, w)) return false;
    return true;
}

/* Fields of a BOUNDS line: type, an optional set name, column and value;
 * fields after these are counted and ignored. */
void bound_fields(mps_state *st, mps_work *w) {
    const mps_field *t = st->tok;
    int n = st->nfree;
    bool value = n > 0 && bound_needs_value(&t[0]);
    bool free_ok = value ? (n == 4 && mps_numeric_look(&t[3])) ||
                               (n == 3 && mps_numeric_look(&t[2]))
                         : n >= 2 && n <= 4;
    bool extra;
    if (free_ok || !mps_fixed(st)) {
        for (int k = 0; k < MPS_NFIELD; k++) st->f[k] = {nullptr, 0};
        if (n > 0) st->f[0] = t[0];
        bool named = value ? n >= 4 : n >= 3;
        int off = named ? 0 : 1;
        for (int k = 1; k < n && k + off < 4; k++) st->f[k + off] = t[k];
        extra = n > 4;
    } else {
        extra = st->f[4].len > 0 || st->f[5].len > 0;
    }
    if (extra) count_line(&w->extrabnd, st->lineno);
    mps_terminate(st, (1u << 1) | (1u << 2));
}

int bound_flag_error(mps_state *st, unsigned char have, unsigned char need, int code) {
    if (have & need) return env_error(st->env, code, st->lineno);
    return 0;
}

int read_bound(mps_state *st, mps_work *w) {
    TRVenv env = st->env;
    bound_fields(st, w);
    const mps_field *type = &st->f[0], *set = &st->f[1], *col = &st->f[2];
    if (type->len == 0) return env_error(env, 1460, st->lineno);
    char t0 = static_cast<char>(std::toupper(static_cast<unsigned char>(type->text[0])));
    char t1 = type->len > 1
                  ? static_cast<char>(std::toupper(static_cast<unsigned char>(type->text[1])))
                  : ' ';
    int kind = type->len == 2 ? (t0 << 8) | t1 : 0;
    static const int known[] = {('U' << 8) | 'P', ('U' << 8) | 'I', ('L' << 8) | 'O',
                                ('L' << 8) | 'I', ('F' << 8) | 'X', ('F' << 8) | 'R',
                                ('M' << 8) | 'I', ('P' << 8) | 'L', ('B' << 8) | 'V',
                                ('S' << 8) | 'C'};
    bool ok = false;
    for (int k : known) ok |= k == kind;
    if (!ok) return env_error(env, 1457, st->lineno, type->text);
    /* the first set is used; a blank set name on a later card goes on
     * with the set of the card above */
    if (!w->hasbnd) {
        w->hasbnd = true;
        copy_name(w->bndname, set->text);
        TRVmsg(env->reschannel, "Selected %-10s name:  %.255s\n", "bound", w->bndname);
        w->lastused = true;
    } else if (set->len == 0 && w->bndname[0] != '\0') {
        blank_name(st, w);
    } else if (std::strcmp(w->bndname, set->text) == 0) {
        w->lastused = true;
    } else {
        w->lastused = false;
        if (w->bndsets++ == 0)
            TRVmsg(env->warnchannel, "Warning:  More than one bound set specified.  "
                                     "Only the first set is used.\n");
    }
    if (!w->lastused) return 0;
    int j = nameset_find(w->cols, col->text);
    if (j < 0) return env_error(env, 1449, st->lineno, col->text);
    double v = 0.0;
    int status = 0;
    if (bound_needs_value(type)) status = mps_number(st, &st->f[3], &v);
    if (status != 0) return status;
    if (v >= TRV_INFTEST) v = TRV_INF;
    if (v <= -TRV_INFTEST) v = -TRV_INF;
    unsigned char &fl = w->bflag[j];
    char &ct = w->ctype[j];
    switch (kind) {
    case ('U' << 8) | 'P':
    case ('U' << 8) | 'I':
    case ('P' << 8) | 'L':
    case ('S' << 8) | 'C':
        if ((status = bound_flag_error(st, fl, BND_UPPER, 1458)) != 0) return status;
        w->ub[j] = kind == (('P' << 8) | 'L') ? TRV_INF : v;
        fl |= BND_UPPER;
        if (kind == (('U' << 8) | 'I') && ct == 'C') ct = 'I';
        if (kind == (('S' << 8) | 'C')) ct = ct == 'I' || ct == 'B' ? 'N' : 'S';
        break;
    case ('L' << 8) | 'O':
    case ('L' << 8) | 'I':
    case ('M' << 8) | 'I':
        if ((status = bound_flag_error(st, fl, BND_LOWER, 1459)) != 0) return status;
        w->lb[j] = kind == (('M' << 8) | 'I') ? -TRV_INF : v;
        fl |= BND_LOWER;
        if (kind == (('L' << 8) | 'I')) ct = ct == 'S' ? 'N' : 'I';
        break;
    case ('F' << 8) | 'X':
        if ((status = bound_flag_error(st, fl, BND_LOWER | BND_UPPER, 1454)) != 0) return status;
        w->lb[j] = w->ub[j] = v;
        fl |= BND_LOWER | BND_UPPER;
        break;
    case ('F' << 8) | 'R':
        if ((status = bound_flag_error(st, fl, BND_LOWER | BND_UPPER, 1455)) != 0) return status;
        w->lb[j] = -TRV_INF;
        w->ub[j] = TRV_INF;
        fl |= BND_LOWER | BND_UPPER;
        break;
    default: /* BV */
        if ((status = bound_flag_error(st, fl, BND_LOWER | BND_UPPER, 1456)) != 0) return status;
        w->lb[j] = 0.0;
        w->ub[j] = 1.0;
        ct = 'B';
        fl |= BND_LOWER | BND_UPPER;
        break;
    }
    return 0;
}

/* ---- QMATRIX and SOS ---------------------------------------------------------------- */

int read_qterm(mps_state *st, mps_work *w) {
    const mps_field *t = st->tok;
    if (!(st->nfree == 3 && mps_numeric_look(&t[2])) && mps_fixed(st)) {
        /* fixed columns: the two names in fields 2 and 3, the value in 4 */
    } else {
        st->f[0] = {nullptr, 0};
        for (int k = 1; k < MPS_NFIELD; k++)
            st->f[k] = k - 1 < st->nfree ? t[k - 1] : mps_field{nullptr, 0};
    }
    mps_terminate(st, (1u << 1) | (1u << 2));
    int a = nameset_find(w->cols, st->f[1].text);
    if (a < 0) return env_error(st->env, 1449, st->lineno, st->f[1].text);
    int b = nameset_find(w->cols, st->f[2].text);
    if (b < 0) return env_error(st->env, 1449, st->lineno, st->f[2].text);
    double v;
    int status = mps_number(st, &st->f[3], &v);
    if (status != 0) return status;
    if (w->nq >= w->qcap) {
        int cap = next_cap(w->qcap, w->nq + 1);
        if (grow_to(&w->qi, cap) || grow_to(&w->qj, cap) || grow_to(&w->qv, cap)) return 1001;
        w->qcap = cap;
    }
    w->qi[w->nq] = a;
    w->qj[w->nq] = b;
    w->qv[w->nq++] = v;
    return 0;
}

int read_sosline(mps_state *st, mps_work *w) {
    TRVenv env = st->env;
    const mps_field *t = st->tok;
    int n = st->nfree;
    for (int k = 0; k < n && k < 8; k++) t[k].text[t[k].len] = '\0';
    bool header = st->line[0] != '\0' && (st->line[1] == t[0].text[0]) &&
                  t[0].text == st->line + 1;
    if (header) {
        if (!(t[0].len == 2 && (t[0].text[0] == 'S' || t[0].text[0] == 's') &&
              (t[0].text[1] == '1' || t[0].text[1] == '2')))
            return env_error(env, 1442, st->lineno, t[0].text[0],
                             t[0].len > 1 ? t[0].text[1] : ' ');
        int status = open_set(st, w, t[0].text[1]);
        if (status != 0) return status;
        for (int k = 1; k < n && k < 8; k++) {
            if (mps_numeric_look(&t[k])) {
                if (w->priwarn++ == 0)
                    TRVmsg(env->warnchannel, "Warning:  SOS priority values ignored.\n");
            } else if (!(k == 1 && mps_word_is(t[k].text, "SOS") && t[k].len == 3 && n > 2)) {
                trv_free(&w->sosname[w->nsos - 1]);
                w->sosname[w->nsos - 1] = trv_strdup(t[k].len > RW_NAMELEN ? "" : t[k].text);
                if (w->sosname[w->nsos - 1] == nullptr) return 1001;
            }
        }
        return 0;
    }
    if (w->nsos == 0) return env_error(env, 1442, st->lineno, t[0].text[0], ' ');
    int j = nameset_find(w->cols, t[0].text);
    if (j < 0) return env_error(env, 1449, st->lineno, t[0].text);
    double v = 0.0;
    if (n >= 2) {
        int status = mps_number(st, &t[1], &v);
        if (status != 0) return status;
    }
    return add_member(w, j, v);
}

/* Sets whose weights are all zero get 1, 2, ... */
void sos_weights(TRVenv env, mps_work *w) {
    int told = 0;
    for (int s = 0; s < w->nsos; s++) {
        int b = w->sosbeg[s], e = s + 1 < w->nsos ? w->sosbeg[s + 1] : w->nsosnz;
        bool zero = true;
        for (int k = b; k < e; k++) zero &= w->sosref[k] == 0.0;
        if (!zero || e == b) continue;
        for (int k = b; k < e; k++) w->sosref[k] = k - b + 1;
        if (++told <= 5)
            TRVmsg(env->warnchannel, "Default weights 1, 2,... generated for set number %d.\n",
                   s + 1);
    }
    if (told > 5)
        TRVmsg(env->warnchannel, "Default weight warnings in excess of 5 not printed.\n");
}

/* ---- checks after the sections -------------------------------------------------------- */

void check_bounds(TRVenv env, mps_work *w) {
    int nfree = 0, nminus = 0, nfixed = 0;
    int n = nameset_count(w->cols);
    for (int j = 0; j < n; j++) {
        if (w->bflag[j] & BND_LOWER) continue;
        const char *name = nameset_name(w->cols, j);
        if (w->lb[j] < -TRV_INFTEST) {
            if (++nfree <= 5)
                TRVmsg(env->warnchannel, "Warning:  Column '%s' in bound '%s' is Free.\n",
                       name, w->bndname);
        } else if (w->ub[j] == 0.0) {
            if (++nfixed <= 5)
                TRVmsg(env->warnchannel, "Warning:  Column '%s' in bound '%s' is Fixed.\n",
                       name, w->bndname);
        } else if (w->ub[j] < 0.0) {
            w->lb[j] = -TRV_INF;
            if (++nminus <= 5) {
                TRVmsg(env->warnchannel, "Warning:  Lower bound on column '%s' in bound '%s'\n",
                       name, w->bndname);
                TRVmsg(env->warnchannel, "          changed to minus infinity.\n");
            }
        }
    }
    if (nfree > 5) TRVmsg(env->warnchannel, "%d Column-free warnings not printed.\n", nfree - 5);
    if (nminus > 5)
        TRVmsg(env->warnchannel, "%d Minus-infinity warnings not printed.\n", nminus - 5);
    if (nfixed > 5)
        TRVmsg(env->warnchannel, "%d Column-fixed warnings not printed.\n", nfixed - 5);
}

void fraction_warning(TRVenv env, double v, const char *name) {
    if (std::fabs(v) >= TRV_INFTEST) return;
    double f = v - std::floor(v);
    if (f >= 1e-10 && f < 0.9999999999)
        TRVmsg(env->warnchannel,
               "Warning:  Non-integral bound value %g for integer column '%.255s'.\n", v, name);
}

void check_ints(TRVenv env, mps_work *w) {
    int n = nameset_count(w->cols);
    for (int j = 0; j < n; j++) {
        char &ct = w->ctype[j];
        /* A bound card on a column of the integer markers replaces the
         * markers' default range [0, 1]: with a lower bound and no upper
         * one the column is a general integer, not a binary. */
        if ((w->bflag[j] & (BND_MARKER | BND_LOWER | BND_UPPER)) == (BND_MARKER | BND_LOWER))
            w->ub[j] = TRV_INF;
        if (ct == 'C' || ct == 'S') continue;
        const char *name = nameset_name(w->cols, j);
        if (w->bflag[j] & BND_UPPER) fraction_warning(env, w->ub[j], name);
        if (ct != 'N') {
            if (std::fabs(w->ub[j] - 1.0) <= 1e-10)
                ct = w->lb[j] == 0.0 ? 'B' : 'I';
            else
                ct = 'I';
        }
        if (w->bflag[j] & BND_LOWER) {
            fraction_warning(env, w->lb[j], name);
            if (ct != 'N' && (w->lb[j] != 0.0 || std::fabs(w->ub[j] - 1.0) > 1e-10)) ct = 'I';
        }
        if (ct == 'B') w->ub[j] = 1.0;
    }
}

void check_semi(TRVenv env, mps_work *w) {
    int told = 0;
    int n = nameset_count(w->cols);
    for (int j = 0; j < n; j++) {
        if (w->ctype[j] != 'S' || (w->bflag[j] & BND_LOWER)) continue;
        if (std::fabs(w->ub[j]) < 1e-10) {
            w->ub[j] = 1.0;
            if (++told <= 5)
                TRVmsg(env->warnchannel,
                       "Warning:  Lower bound of 1.0 assumed for semi-continuous column \n"
                       "          '%s' in bound '%s'\n",
                       nameset_name(w->cols, j), w->bndname);
        }
    }
    if (told > 5)
        TRVmsg(env->warnchannel, "%d semi-continuous bound warnings not printed.\n", told - 5);
}

void check_rhsname(TRVenv env, mps_work *w) {
    if (w->hasrhs && w->rhsname[0] != '\0') return;
    if (nameset_find(w->cols, "rhs") < 0) {
        copy_name(w->rhsname, "rhs");
        TRVmsg(env->warnchannel, "Warning:  Blank RHS name changed to 'rhs'.\n");
    } else {
        TRVmsg(env->warnchannel, "Warning:  Blank RHS name unchanged.  "
                                 "Column with name 'rhs' already exists.\n");
    }
}

/* ---- the walk through the sections ------------------------------------------------------ */

const char *const section_words[] = {"",       "NAME",   "OBJSENSE", "OBJNAME", "REFROW",
                                     "ROWS",   "COLUMNS", "RHS",     "RANGES",  "BOUNDS",
                                     "QMATRIX", "SOS",    "ENDATA",  ""};

/* Decides what a section line means in the current state: 1 enter it, 0
 * skip it and its data, or a negative status. */
int section_step(mps_state *st, int state, int code) {
    TRVenv env = st->env;
    bool known = code != MS_UNKNOWN;
    if (state < MS_ROWS) {
        if (code == MS_ROWS || (code > state && code < MS_ROWS)) return 1;
        if (known && code < MS_ROWS) goto out_of_order;
        return env_error(env, 1471, st->lineno);
    }
    if (state == MS_ROWS) {
        if (code == MS_COLUMNS) return 1;
        return env_error(env, 1472, st->lineno);
    }
    if (known && code > state && code >= MS_RANGES) {
        if (state == MS_COLUMNS && code != MS_RHS)
            TRVmsg(env->warnchannel, "Warning, line %d:  %s section missing or out of order.\n",
                   st->lineno, "RHS");
        return 1;
    }
    if (code == MS_RHS && state == MS_COLUMNS) return 1;
    if (code == MS_RANGES && state > MS_RANGES) return env_error(env, 1474, st->lineno);
    if (known) goto out_of_order;
    if (state <= MS_RANGES) return env_error(env, 1473, st->lineno);
    if (state == MS_BOUNDS) return env_error(env, 1475, st->lineno);
    return env_error(env, 1462, st->lineno);
out_of_order:
    TRVmsg(env->warnchannel, "Warning, line %d:  %s section illegal or out of order.\n",
           st->lineno, section_words[code]);
    return 0;
}

int read_data(mps_state *st, mps_work *w, int state, int *pass) {
    mps_tokens(st);
    if (st->nfree == 0) return 0;
    switch (state) {
    case MS_OBJSENSE: {
        mps_field f = st->tok[0];
        f.text[f.len] = '\0';
        return read_objsense(st, w, &f);
    }
    case MS_OBJNAME:
    case MS_REFROW: {
        mps_field f = st->tok[0];
        if (f.len > RW_NAMELEN) f.len = RW_NAMELEN;
        f.text[f.len] = '\0';
        if (state == MS_OBJNAME) {
            copy_name(w->objname, f.text);
            w->hasobjname = true;
        } else {
            copy_name(w->refrow, f.text);
            w->hasrefrow = true;
        }
        return 0;
    }
    case MS_ROWS:
        return read_row(st, w);
    case MS_COLUMNS:
        return read_column(st, w);
    case MS_RHS:
        return read_vector(st, w, &RHS_KIND, *pass);
    case MS_RANGES:
        return read_vector(st, w, &RNG_KIND, *pass);
    case MS_BOUNDS:
        return read_bound(st, w);
    case MS_QMATRIX:
        return read_qterm(st, w);
    case MS_SOS:
        return read_sosline(st, w);
    default:
        return 0;
    }
}

/* The readings a section reports once, with their counts. */
void report_lines(mps_state *st, mps_work *w, int state) {
    TRVenv env = st->env;
    const char *word = section_words[state];
    const line_count &p = w->manypairs, &b = w->blankname, &x = w->extrabnd;
    if (p.lines > 0)
        TRVmsg(env->warnchannel,
               "Warning, line %d:  More than two pairs on a line; further pairs read as if "
               "on lines of their own (%d line%s in %s).\n",
               p.first, p.lines, p.lines > 1 ? "s" : "", word);
    if (b.lines > 0)
        TRVmsg(env->warnchannel,
               "Warning, line %d:  Blank name field read as continuing the %s above "
               "(%d line%s in %s).\n",
               b.first,
               state == MS_COLUMNS ? "column" : state == MS_BOUNDS ? "bound set" : "vector",
               b.lines, b.lines > 1 ? "s" : "", word);
    if (x.lines > 0)
        TRVmsg(env->warnchannel,
               "Warning, line %d:  Fields after the bound value ignored (%d line%s).\n",
               x.first, x.lines, x.lines > 1 ? "s" : "");
    w->manypairs = w->blankname = w->extrabnd = line_count{0, 0};
    w->lastused = false;
}

/* Work done when a section ends. */
int leave_section(mps_state *st, mps_work *w, int state, int *pass) {
    if (state == MS_COLUMNS || state == MS_RHS || state == MS_RANGES || state == MS_BOUNDS)
        report_lines(st, w, state);
    switch (state) {
    case MS_ROWS:
        return finish_rows(st, w);
    case MS_COLUMNS:
        return finish_columns(st, w);
    case MS_RHS:
    case MS_RANGES:
        return finish_vector(st, w, pass);
    case MS_BOUNDS:
    case MS_QMATRIX:
    case MS_SOS:
        empty_warning(st, w);
        return 0;
    default:
        return 0;
    }
}

/* Enters a section: the header sections take a word on their own line. */
int enter_section(mps_state *st, mps_work *w, int code) {
    TRVenv env = st->env;
    if (code == MS_ROWS && !w->sensegiven)
        TRVmsg(env->reschannel, "Selected objective sense:  MINIMIZE\n");
    if (code == MS_OBJSENSE || code == MS_OBJNAME || code == MS_REFROW) {
        mps_field f = inline_word(st);
        if (f.len == 0) return 0;
        if (code == MS_OBJSENSE) return read_objsense(st, w, &f);
        if (code == MS_OBJNAME) {
            copy_name(w->objname, f.text);
            w->hasobjname = true;
        } else {
            copy_name(w->refrow, f.text);
            w->hasrefrow = true;
        }
    }
    return 0;
}

int read_name(mps_state *st, mps_work *w) {
    int got;
    while ((got = mps_getline(st)) == 1) {
        const char *p = st->line;
        while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') p++;
        if (*p == '\0') continue; /* a blank line */
        if (p != st->line || mps_section(st->line) != MS_NAME) break;
        mps_field f = inline_word(st);
        copy_name(w->probname, f.text);
        TRVmsg(st->env->reschannel, "\n");
        return 0;
    }
    return got > 1 ? got : env_error(st->env, 1441, st->lineno);
}

int read_sections(mps_state *st, mps_work *w) {
    int status = read_name(st, w);
    int state = MS_NAME, pass = -2;
    bool skip = false;
    while (status == 0) {
        int got = mps_getline(st);
        if (got > 1) return got;
        if (got == 0) {
            if (state < MS_ROWS) return env_error(st->env, 1471, st->lineno);
            if (state == MS_ROWS) return env_error(st->env, 1472, st->lineno);
            status = leave_section(st, w, state, &pass);
            if (status == 0)
                TRVmsg(st->env->warnchannel, "Warning, line %d:  'ENDATA' missing.\n",
                       st->lineno);
            return status;
        }
        char c = st->line[0];
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0') {
            if (!skip) status = read_data(st, w, state, &pass);
            continue;
        }
        int code = mps_section(st->line);
        int step = section_step(st, state, code);
        if (step < 0) return step;
        if (step == 0) {
            skip = true;
            continue;
        }
        skip = false;
        status = leave_section(st, w, state, &pass);
        if (status != 0) return status;
        if (code == MS_ENDATA) return 0;
        state = code;
        status = enter_section(st, w, code);
    }
    return status;
}

/* ---- handing out the model ---------------------------------------------------------------- */

void apply_ranges(mps_work *w, int r, char *sense, double *rhs, double *rng) {
    double b = w->rhs[r], R = w->rng[r];
    switch (w->rsense[r]) {
    case 'G':
        *sense = 'R';
        *rhs = b;
        *rng = std::fabs(R);
        break;
    case 'L':
        *sense = 'R';
        *rhs = b - std::fabs(R);
        *rng = std::fabs(R);
        break;
    default: /* 'E' */
        *sense = 'R';
        *rhs = b;
        *rng = R;
        break;
    }
}

int hand_rows(TRVenv env, mps_work *w, read_model *m) {
    int n = w->nkept, space = n + par_int(env, 1046);
    m->nrows = n;
    m->rowspace = space;
    m->rhs = trv_zalloc<double>(space);
    m->sense = trv_zalloc<char>(space);
    if (w->anyrng) m->rngval = trv_zalloc<double>(space);
    const char **names = trv_alloc<const char *>(n);
    if (!m->rhs || !m->sense || (w->anyrng && !m->rngval) || !names) {
        trv_free(&names);
        return 1001;
    }
    int all = nameset_count(w->rows);
    for (int r = 0; r < all; r++) {
        int i = w->rowmap[r];
        if (i < 0) continue;
        names[i] = nameset_name(w->rows, r);
        m->sense[i] = w->rsense[r];
        m->rhs[i] = w->rhs[r];
        if (w->rngset[r]) apply_ranges(w, r, &m->sense[i], &m->rhs[i], &m->rngval[i]);
    }
    int status = rm_names(n, space, names, &m->rowname, &m->rownamestore, &m->rownamespace);
    trv_free(&names);
    return status;
}

int hand_cols(TRVenv env, mps_work *w, read_model *m) {
    int n = nameset_count(w->cols), space = n + par_int(env, 1047);
    int nzspace = w->nz + par_int(env, 1048);
    m->ncols = n;
    m->colspace = space;
    m->nzspace = nzspace;
    if (grow_to(&w->obj, space) || grow_to(&w->lb, space) || grow_to(&w->ub, space) ||
        grow_to(&w->matbeg, space) || grow_to(&w->matcnt, space) ||
        grow_to(&w->ctype, space) || grow_to(&w->ind, nzspace) || grow_to(&w->val, nzspace))
        return 1001;
    for (int j = 0; j < n; j++) {
        if (w->ctype[j] != 'C') m->nints++;
        if (w->lb[j] <= -TRV_INFTEST) w->lb[j] = -TRV_INF;
        if (w->ub[j] >= TRV_INFTEST) w->ub[j] = TRV_INF;
    }
    m->obj = w->obj, w->obj = nullptr;
    m->lb = w->lb, w->lb = nullptr;
    m->ub = w->ub, w->ub = nullptr;
    m->matbeg = w->matbeg, w->matbeg = nullptr;
    m->matcnt = w->matcnt, w->matcnt = nullptr;
    m->matind = w->ind, w->ind = nullptr;
    m->matval = w->val, w->val = nullptr;
    return rm_names(n, space, w->cols->names, &m->colname, &m->colnamestore,
                    &m->colnamespace);
}

int hand_ints(mps_work *w, read_model *m) {
    if (m->nints > 0) {
        m->ctype = w->ctype, w->ctype = nullptr;
        for (int j = m->ncols; j < m->colspace; j++) m->ctype[j] = 'C';
    }
    if (w->nsos > 0) {
        m->numsos = w->nsos;
        m->numsosnz = w->nsosnz;
        m->sostype = w->sostype, w->sostype = nullptr;
        m->sosbeg = w->sosbeg, w->sosbeg = nullptr;
        m->sosind = w->sosind, w->sosind = nullptr;
        m->sosref = w->sosref, w->sosref = nullptr;
        m->sosbeg[m->numsos] = m->numsosnz;
    }
    return 0;
}

int hand_out(TRVenv env, mps_work *w, int want, read_model *m) {
    m->objsen = w->objsen;
    int status = hand_rows(env, w, m);
    if (status == 0) status = hand_cols(env, w, m);
    if (status == 0 && (want & RM_INTS)) status = hand_ints(w, m);
    if (status == 0 && (want & RM_QUAD) && w->nq > 0) status = rm_quad(m, w->nq, w->qi, w->qj, w->qv, false);
    if (status == 0 && !(want & RM_QUAD)) m->nquad = w->nq;
    if (status == 0) {
        m->probname = trv_strdup(w->probname);
        m->objname = trv_strdup(row_name(w, w->objrow));
        m->rhsname = trv_strdup(w->rhsname);
        if (w->hasrng) m->rngname = trv_strdup(w->rngname);
        if (w->hasbnd) m->bndname = trv_strdup(w->bndname);
        if (!m->probname || !m->objname || !m->rhsname || (w->hasrng && !m->rngname) ||
            (w->hasbnd && !m->bndname))
            status = 1001;
    }
    return status;
}

}  // namespace

int mps_read(TRVenv env, const char *filename, int want, read_model *m) {
    std::memset(m, 0, sizeof *m);
    int status = 0;
    mps_state *st = trv_zalloc<mps_state>(1);
    if (st == nullptr) return env_error(env, 1001);
    mps_init(st, env, filename);
    st->want = want;
    st->fp = trv_fopen(env, filename, "r", ".mps", 0, 1, &status);
    mps_work w;
    if (st->fp != nullptr) {
        status = work_init(env, &w);
        if (status == 0) status = mps_open_lines(st);
        if (status == 0) status = read_sections(st, &w);
        if (st->truncated > 20)
            TRVmsg(env->warnchannel, "%d truncation warning messages not printed.\n",
                   st->truncated - 20);
        if (status == 0) {
            check_bounds(env, &w);
            check_ints(env, &w);
            check_semi(env, &w);
            check_rhsname(env, &w);
            sos_weights(env, &w);
            status = hand_out(env, &w, want, m);
        }
        work_free(&w);
        mps_close_lines(st);
        status = trv_rclose(env, filename, &st->fp, status);
    }
    trv_free(&st);
    if (status != 0) {
        rm_free(m);
        if (status > 0) status = env_error(env, status);
    }
    return status;
}

/* ---- the exported readers ---------------------------------------------------------------- */

static int mps_export(TRVenv env, const char *filename, int want, const rm_out *o) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) return status;
    status = rm_out_check(o);
    read_model m;
    std::memset(&m, 0, sizeof m);
    if (status == 0) status = mps_read(env, filename, want | RM_INTS | RM_QUAD, &m);
    if (status == 0 && !(want & RM_INTS) && (m.nints > 0 || m.numsos > 0)) {
        TRVmsg(env->warnchannel, "Problem %s contains integer variable declarations, ignored.\n",
               filename);
        trv_free(&m.ctype);
        trv_free(&m.sostype), trv_free(&m.sosbeg), trv_free(&m.sosind), trv_free(&m.sosref);
        m.numsos = m.numsosnz = 0;
    }
    if (status == 0 && !(want & RM_QUAD) && m.nquad > 0)
        TRVmsg(env->warnchannel, "Problem contains quadratic objective coefficients, ignored.\n");
    if (status != 0) rm_free(&m);
    rm_give(&m, o);
    return call_leave(env, status);
}

#define MPS_OUT_BASE                                                                      \
    o.numcols = numcols_p, o.numrows = numrows_p, o.numrims = numrims_p,                 \
    o.objsen = objsen_p, o.obj = obj_p, o.rhs = rhs_p, o.sense = sense_p,                \
    o.matbeg = matbeg_p, o.matcnt = matcnt_p, o.matind = matind_p, o.matval = matval_p,  \
    o.lb = lb_p, o.ub = ub_p, o.rngval = rngval_p, o.freerowind = freerowind_p,          \
    o.rimtype = rimtype_p, o.rimbeg = rimbeg_p, o.rimcnt = rimcnt_p, o.rimind = rimind_p, \
    o.rimval = rimval_p, o.dataname = dataname_p, o.objname = objname_p,                 \
    o.rhsname = rhsname_p, o.rngname = rngname_p, o.bndname = bndname_p,                 \
    o.colname = colname_p, o.colnamestore = colnamestore_p, o.rowname = rowname_p,       \
    o.rownamestore = rownamestore_p, o.rimname = rimname_p,                              \
    o.rimnamestore = rimnamestore_p, o.colspace = colspace_p, o.rowspace = rowspace_p,   \
    o.nzspace = nzspace_p, o.rimspace = rimspace_p, o.rimnzspace = rimnzspace_p,         \
    o.colnamespace = colnamespace_p, o.rownamespace = rownamespace_p,                    \
    o.rimnamespace = rimnamespace_p

TRV_EXPORT int TRVmpsread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *numrims_p, int *objsen_p, double **obj_p, double **rhs_p,
    char **sense_p, int **matbeg_p, int **matcnt_p, int **matind_p, double **matval_p,
    double **lb_p, double **ub_p, double **rngval_p, int **freerowind_p,
    int **rimtype_p, int **rimbeg_p, int **rimcnt_p, int **rimind_p, double **rimval_p,
    char **dataname_p, char **objname_p, char **rhsname_p, char **rngname_p,
    char **bndname_p, char ***colname_p, char **colnamestore_p, char ***rowname_p,
    char **rownamestore_p, char ***rimname_p, char **rimnamestore_p, int *colspace_p,
    int *rowspace_p, int *nzspace_p, int *rimspace_p, int *rimnzspace_p,
    int *colnamespace_p, int *rownamespace_p, int *rimnamespace_p) {
    rm_out o;
    std::memset(&o, 0, sizeof o);
    MPS_OUT_BASE;
    return mps_export(env, filename, 0, &o);
}

TRV_EXPORT int TRVmpsmread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *numrims_p, int *objsen_p, double **obj_p, double **rhs_p,
    char **sense_p, int **matbeg_p, int **matcnt_p, int **matind_p, double **matval_p,
    double **lb_p, double **ub_p, double **rngval_p, int **freerowind_p,
    int **rimtype_p, int **rimbeg_p, int **rimcnt_p, int **rimind_p, double **rimval_p,
    char **dataname_p, char **objname_p, char **rhsname_p, char **rngname_p,
    char **bndname_p, char ***colname_p, char **colnamestore_p, char ***rowname_p,
    char **rownamestore_p, char ***rimname_p, char **rimnamestore_p, int *colspace_p,
    int *rowspace_p, int *nzspace_p, int *rimspace_p, int *rimnzspace_p,
    int *colnamespace_p, int *rownamespace_p, int *rimnamespace_p, char **ctype_p,
    int *numsos_p, int *numsosnz_p, char **sostype_p, int **sosbeg_p, int **sosind_p,
    double **sosref_p) {
    rm_out o;
    std::memset(&o, 0, sizeof o);
    MPS_OUT_BASE;
    o.ctype = ctype_p, o.numsos = numsos_p, o.numsosnz = numsosnz_p;
    o.sostype = sostype_p, o.sosbeg = sosbeg_p, o.sosind = sosind_p, o.sosref = sosref_p;
    return mps_export(env, filename, RM_INTS, &o);
}

TRV_EXPORT int TRVmpsqread(TRVenv env, const char *filename, int *numcols_p,
    int *numrows_p, int *numrims_p, int *objsen_p, double **obj_p, double **rhs_p,
    char **sense_p, int **matbeg_p, int **matcnt_p, int **matind_p, double **matval_p,
    double **lb_p, double **ub_p, double **rngval_p, int **freerowind_p,
    int **rimtype_p, int **rimbeg_p, int **rimcnt_p, int **rimind_p, double **rimval_p,
    char **dataname_p, char **objname_p, char **rhsname_p, char **rngname_p,
    char **bndname_p, char ***colname_p, char **colnamestore_p, char ***rowname_p,
    char **rownamestore_p, char ***rimname_p, char **rimnamestore_p, int *colspace_p,
    int *rowspace_p, int *nzspace_p, int *rimspace_p, int *rimnzspace_p,
    int *colnamespace_p, int *rownamespace_p, int *rimnamespace_p, char **ctype_p,
    int *numsos_p, int *numsosnz_p, char **sostype_p, int **sosbeg_p, int **sosind_p,
    double **sosref_p, int **qmatbeg_p, int **qmatcnt_p, int **qmatind_p,
    double **qmatval_p, int *qnzspace_p) {
    rm_out o;
    std::memset(&o, 0, sizeof o);
    MPS_OUT_BASE;
    o.ctype = ctype_p, o.numsos = numsos_p, o.numsosnz = numsosnz_p;
    o.sostype = sostype_p, o.sosbeg = sosbeg_p, o.sosind = sosind_p, o.sosref = sosref_p;
    o.qmatbeg = qmatbeg_p, o.qmatcnt = qmatcnt_p, o.qmatind = qmatind_p;
    o.qmatval = qmatval_p, o.qnzspace = qnzspace_p;
    return mps_export(env, filename, RM_INTS | RM_QUAD, &o);
}
