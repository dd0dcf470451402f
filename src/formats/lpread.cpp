/*
 * lpread.cpp - the LP format reader: an objective, constraints, user cuts
 * and lazy constraints, bounds, integer lists, semi-continuous lists and
 * special ordered sets, ended by End.
 *
 * The parse is a state machine over compact lines, so an expression may
 * run over any number of lines. Terms go to growing tables: the constraint
 * entries row by row, the objective's apart, and the bounds and integer
 * declarations as lists applied in order at the end. All counts sit in the
 * parse record, which is copied at each line start: reading from a
 * terminal, a bad line is undone by restoring that copy and trimming the
 * name tables, and the user types it again.
 */
#include <cmath>
#include <cstring>

#include "formats/lputil.h"
#include "store/lp.h"

namespace {

/* ---- tables ------------------------------------------------------------------- */

template <class T> bool resize(T **p, int n) {
    if (*p == nullptr) {
        *p = trv_alloc<T>(n);
        return *p != nullptr;
    }
    return trv_grow(p, n) == 0;
}

/* Grows parallel arrays to hold need entries (plus one). */
template <class... T> int ensure(int need, int *cap, T **...arrays) {
    if (need < *cap) return 0;
    long c = 2L * *cap;
    if (c < need + 1) c = need + 1;
    if (c < 64) c = 64;
    if (c > 2100000000L) return 1012;
    bool ok = true;
    ((ok = ok && resize(arrays, static_cast<int>(c))), ...);
    if (!ok) return 1001;
    *cap = static_cast<int>(c);
    return 0;
}

void tables_free(lp_state *st) {
    nameset_free(&st->cols);
    nameset_free(&st->rnames);
    nameset_free(&st->snames);
    trv_free(&st->rowbeg), trv_free(&st->rname), trv_free(&st->rsense);
    trv_free(&st->rkind), trv_free(&st->rrhs);
    trv_free(&st->ecol), trv_free(&st->eval);
    trv_free(&st->ocol), trv_free(&st->oval);
    trv_free(&st->bcol), trv_free(&st->bkind), trv_free(&st->bval);
    trv_free(&st->icol), trv_free(&st->ikind);
    trv_free(&st->qa), trv_free(&st->qb), trv_free(&st->qv);
    trv_free(&st->sostype), trv_free(&st->sosbeg), trv_free(&st->sosname);
    trv_free(&st->sosind), trv_free(&st->sosref);
    trv_free(&st->buf), trv_free(&st->cbuf);
}

int tables_init(lp_state *st) {
    int status = 0;
    st->cols = nameset_new(12000, 204000, 'x', 1, &status);
    if (status == 0) st->rnames = nameset_new(1000, 16000, 'c', 0, &status);
    if (status == 0) st->snames = nameset_new(16, 256, 's', 0, &status);
    if (status != 0) return status;
    nameset_setgrow(st->cols, 12000, 204000);
    if ((status = ensure(0, &st->rowcap, &st->rowbeg, &st->rname, &st->rsense, &st->rkind,
                         &st->rrhs)) != 0)
        return status;
    st->rowbeg[0] = 0;
    st->p.rowname = -1;
    return 0;
}

/* ---- helpers of the parse ---------------------------------------------------------- */

#define P (st->p)

bool in_objective(const lp_state *st) { return P.section == LPS_MIN || P.section == LPS_MAX; }

unsigned short cls_of(const lp_state *st, char c) {
    return st->cls[static_cast<unsigned char>(c)];
}

/* Two terms without an operator between them. */
int expect_op(lp_state *st, char c) {
    return env_error(st->env, in_objective(st) ? 1607 : 1608, st->lineno, c);
}

/* The end of a name token that starts at b. */
const char *name_end(const lp_state *st, const char *b, const char *end) {
    while (b < end && !(cls_of(st, *b) & LPC_DELIM)) b++;
    return b;
}

/* A name of the tables: cut at 255 characters with a warning. */
int cut_name(lp_state *st, const char *b, int len) {
    if (len <= RW_NAMELEN) return len;
    if (++st->truncwarn <= 20)
        TRVmsg(st->env->warnchannel, "Warning, line %d: '%.255s' truncated.\n", st->lineno, b);
    return RW_NAMELEN;
}

/* A name that looks like an exponent: "e", "E", "e1", ... It cannot be
 * read as a number (an exponent needs digits before it), so it is a name
 * wherever a name may stand; only where the name must already exist and
 * does not is it told apart from a misplaced number. */
bool exponent_like(const char *b, int len) {
    return (b[0] == 'e' || b[0] == 'E') && (len == 1 || (b[1] >= '0' && b[1] <= '9'));
}

int bad_identifier(lp_state *st, const char *b, int len) {
    char tok[RW_NAMELEN + 1];
    int n = len > RW_NAMELEN ? RW_NAMELEN : len;
    std::memcpy(tok, b, n);
    tok[n] = '\0';
    return env_error(st->env, 1617, st->lineno, tok);
}

int column(lp_state *st, const char *b, int len, int *col) {
    int status = 0;
    *col = nameset_findaddn(st->cols, b, len, &status);
    P.ncols = nameset_count(st->cols);
    return *col < 0 ? status : 0;
}

int find_column(const lp_state *st, const char *b, int len) {
    unsigned word;
    return namehash_lookup_n(st->cols->index, b, static_cast<size_t>(len), &word);
}

int number_error(lp_state *st, int code, const char *b, const char *end) {
    char tok[RW_LINE + 1];
    const char *e = b;
    while (e < end && !(cls_of(st, *e) & LPC_DELIM)) e++;
    if (e == b && e < end) e++;
    int n = static_cast<int>(e - b) > RW_LINE ? RW_LINE : static_cast<int>(e - b);
    std::memcpy(tok, b, n);
    tok[n] = '\0';
    if (code == RWNUM_EXPSTART || code == RWNUM_EXPEND)
        return env_error(st->env, 1618, st->lineno, tok,
                         code == RWNUM_EXPSTART ? "started" : "ended");
    return env_error(st->env, code, st->lineno, tok);
}

/* A coefficient: digits, fraction, exponent; a name may follow at once. */
int read_coef(lp_state *st, const char **pp, const char *end, double *v) {
    const char *stop;
    int code = rw_decimal(*pp, end, RWNUM_PREFIX, v, &stop);
    if (code != 0) return number_error(st, code, *pp, end);
    if (stop < end && (*stop == 'e' || *stop == 'E') &&
        (stop + 1 == end || (cls_of(st, stop[1]) & LPC_DELIM)))
        return number_error(st, RWNUM_EXPEND, *pp, end);
    *pp = stop;
    return 0;
}

int add_term(lp_state *st, int col, double v) {
    int status;
    if (in_objective(st)) {
        if ((status = ensure(P.nobj, &st->objcap, &st->ocol, &st->oval)) != 0) return status;
        st->ocol[P.nobj] = col;
        st->oval[P.nobj++] = v;
    } else {
        if ((status = ensure(P.nent, &st->entcap, &st->ecol, &st->eval)) != 0) return status;
        st->ecol[P.nent] = col;
        st->eval[P.nent++] = v;
    }
    return 0;
}

int add_quad(lp_state *st, int a, int b, double v) {
    int status = ensure(P.nq, &st->qcap, &st->qa, &st->qb, &st->qv);
    if (status != 0) return status;
    st->qa[P.nq] = a;
    st->qb[P.nq] = b;
    st->qv[P.nq++] = v;
    return 0;
}

void clear_term(lp_state *st) {
    P.havesign = P.havecoef = false;
    P.sign = P.coef = 1.0;
}

/* A row is complete with its right-hand side. */
int end_row(lp_state *st, double rhs) {
    int status = ensure(P.nrows + 1, &st->rowcap, &st->rowbeg, &st->rname, &st->rsense,
                        &st->rkind, &st->rrhs);
    if (status != 0) return status;
    st->rname[P.nrows] = P.rowname;
    st->rsense[P.nrows] = P.sense;
    st->rrhs[P.nrows] = rhs;
    st->rkind[P.nrows] = static_cast<char>(P.section - LPS_ROWS);
    st->rowbeg[++P.nrows] = P.nent;
    P.rowname = -1;
    P.inrow = false;
    P.phase = RP_START;
    clear_term(st);
    return 0;
}

/* ---- expressions -------------------------------------------------------------- */

/* True when [p, end) starts with a number: a sign, then a digit or a point
 * and a digit. */
bool number_ahead(const lp_state *st, const char *p, const char *end) {
    if (p < end && (cls_of(st, *p) & LPC_SIGN)) p++;
    if (p < end && *p == '.') p++;
    return p < end && (cls_of(st, *p) & LPC_DIGIT);
}

/* A right-hand side that runs into a colon: "c>1: x + y >= 2" or
 * "c>a: ...". The row began with a name that holds a sense character, and
 * what was taken for its sense is part of it; the whole name is the bad
 * token. Null when the row did not begin so on this line. */
const char *sense_in_row_name(const lp_state *st, const char *p, const char *end) {
    if (P.rowpos < 0) return nullptr;
    const char *b = st->cbuf + P.rowpos;
    if (!(cls_of(st, *b) & LPC_NAME)) return nullptr;
    for (const char *q = b; q < p; q++)
        if (cls_of(st, *q) & (LPC_SIGN | LPC_QUAD)) return nullptr; /* terms, not one name */
    if (p < end && (cls_of(st, *p) & LPC_SIGN)) p++;
    while (p < end && *p != ':' &&
           (!(cls_of(st, *p) & LPC_DELIM) || (cls_of(st, *p) & LPC_SENSE)))
        p++;
    return p < end && *p == ':' ? p : nullptr;
}

int read_rhs(lp_state *st, const char **pp, const char *end) {
    const char *colon = sense_in_row_name(st, *pp, end);
    const char *name = st->cbuf + P.rowpos;
    if (!number_ahead(st, *pp, end)) {
        if (colon != nullptr) return bad_identifier(st, name, static_cast<int>(colon - name));
        return env_error(st->env, 1610, st->lineno);
    }
    double v;
    int status = read_coef(st, pp, end, &v);
    if (status != 0) return status;
    if (*pp < end && **pp == ':' && colon != nullptr)
        return bad_identifier(st, name, static_cast<int>(colon - name));
    return end_row(st, v);
}

int read_sense(lp_state *st, const char **pp, const char *end) {
    const char *p = *pp;
    char a = p[0], b = p + 1 < end ? p[1] : '\0';
    char s;
    int used = 2;
    if ((a == '<' && b == '=') || (a == '=' && b == '<'))
        s = 'L';
    else if ((a == '>' && b == '=') || (a == '=' && b == '>'))
        s = 'G';
    else if (a == '<')
        s = 'L', used = 1;
    else if (a == '>')
        s = 'G', used = 1;
    else
        s = 'E', used = 1;
    *pp = p + used;
    P.sense = s;
    P.phase = RP_RHS;
    P.inrow = true;
    return 0;
}

int name_token(lp_state *st, const char **pp, const char *end) {
    const char *b = *pp, *e = name_end(st, b, end);
    int len = static_cast<int>(e - b);
    *pp = e;
    if (e < end && *e == ':' && P.phase == RP_START && !P.havesign && !P.havecoef) {
        /* the row's name */
        *pp = e + 1;
        len = cut_name(st, b, len);
        if (in_objective(st)) {
            std::memcpy(st->objname, b, len);
            st->objname[len] = '\0';
            P.objnamed = true;
        } else {
            char name[RW_NAMELEN + 1];
            std::memcpy(name, b, len);
            name[len] = '\0';
            const char *one[1] = {name};
            int status = nameset_add(st->rnames, 1, one);
            if (status != 0) return status;
            P.rowname = P.nrnames++;
        }
        P.inrow = true;
        P.phase = RP_TERM;
        return 0;
    }
    if (P.phase == RP_AFTER && !P.havesign && !P.havecoef) return expect_op(st, *b);
    len = cut_name(st, b, len);
    int col, status = column(st, b, len, &col);
    if (status != 0) return status;
    double v = (P.havesign ? P.sign : 1.0) * (P.havecoef ? P.coef : 1.0);
    if ((status = add_term(st, col, v)) != 0) return status;
    clear_term(st);
    P.phase = RP_AFTER;
    P.inrow = true;
    return 0;
}

/* One step inside "[ ... ]". */
int quad_step(lp_state *st, const char **pp, const char *end) {
    const char *p = *pp;
    char c = *p;
    unsigned short k = cls_of(st, c);
    switch (P.quad) {
    case Q_TERM:
        if (k & LPC_SIGN) {
            if (P.havesign) return env_error(st->env, 1602, P.signline, st->lineno);
            P.havesign = true;
            P.sign = c == '-' ? -1.0 : 1.0;
            P.signline = st->lineno;
            *pp = p + 1;
            return 0;
        }
        if (c == ']') {
            if (P.havesign) return env_error(st->env, 1606, P.signline, st->lineno);
            if (P.qhavecoef) return env_error(st->env, 1609, st->lineno);
            P.quad = Q_OFF;
            P.phase = RP_AFTER;
            *pp = p + 1;
            return 0;
        }
        if ((k & LPC_DIGIT) || c == '.') {
            if (P.qhavecoef) return env_error(st->env, 1609, st->lineno);
            int status = read_coef(st, pp, end, &P.qcoef);
            P.qhavecoef = true;
            return status;
        }
        if (k & LPC_NAME) {
            const char *e = name_end(st, p, end);
            int len = static_cast<int>(e - p);
            int status = column(st, p, cut_name(st, p, len), &P.qcol);
            *pp = e;
            P.quad = Q_OP;
            return status;
        }
        if ((k & LPC_QUAD) && P.havesign) return env_error(st->env, 1606, P.signline, st->lineno);
        return env_error(st->env, (k & LPC_QUAD) ? 1609 : 1611, st->lineno);
    case Q_OP:
        if (c == '^')
            P.quad = Q_EXP;
        else if (c == '*')
            P.quad = Q_NAME2;
        else
            return env_error(st->env, 1614, st->lineno);
        *pp = p + 1;
        return 0;
    case Q_EXP: {
        if (!(k & LPC_DIGIT) && c != '.') return env_error(st->env, 1612, st->lineno);
        double e;
        int status = read_coef(st, pp, end, &e);
        if (status != 0) return status;
        if (e != 2.0) return env_error(st->env, 1613, st->lineno);
        double v = P.qsign * (P.havesign ? P.sign : 1.0) * (P.qhavecoef ? P.qcoef : 1.0);
        P.quad = Q_AFTER;
        P.havesign = P.qhavecoef = false;
        return add_quad(st, P.qcol, P.qcol, v);
    }
    case Q_NAME2: {
        if (!(k & LPC_NAME)) return env_error(st->env, 1609, st->lineno);
        const char *e = name_end(st, p, end);
        int len = static_cast<int>(e - p);
        int col, status = column(st, p, cut_name(st, p, len), &col);
        if (status != 0) return status;
        *pp = e;
        double v = P.qsign * (P.havesign ? P.sign : 1.0) * (P.qhavecoef ? P.qcoef : 1.0);
        P.quad = Q_AFTER;
        P.havesign = P.qhavecoef = false;
        return add_quad(st, P.qcol, col, v);
    }
    default: /* Q_AFTER */
        if (k & LPC_SIGN) {
            P.quad = Q_TERM;
            return 0; /* the sign is taken as the next term's */
        }
        if (c == ']') {
            P.quad = Q_OFF;
            P.phase = RP_AFTER;
            *pp = p + 1;
            return 0;
        }
        return env_error(st->env, 1607, st->lineno, c);
    }
}

int expr_line(lp_state *st, const char *p, const char *end) {
    bool obj = in_objective(st);
    P.rowpos = -1;
    while (p < end) {
        char c = *p;
        unsigned short k = cls_of(st, c);
        int status = 0;
        if (c == ' ') {
            p++;
            continue;
        }
        if (!P.inrow && P.phase == RP_START && !P.havesign && !P.havecoef)
            P.rowpos = static_cast<int>(p - st->cbuf);
        if (P.quad != Q_OFF) {
            status = quad_step(st, &p, end);
        } else if (P.phase == RP_RHS) {
            status = read_rhs(st, &p, end);
        } else if (k & LPC_SIGN) {
            if (P.havesign) return env_error(st->env, 1602, P.signline, st->lineno);
            if (P.havecoef) return env_error(st->env, 1616, st->lineno, c);
            P.havesign = true;
            P.sign = c == '-' ? -1.0 : 1.0;
            P.signline = st->lineno;
            P.phase = RP_TERM;
            P.inrow = true;
            p++;
        } else if ((k & LPC_DIGIT) || c == '.') {
            if (P.phase == RP_AFTER && !P.havesign) return expect_op(st, c);
            if (P.havecoef) return env_error(st->env, 1616, st->lineno, c);
            status = read_coef(st, &p, end, &P.coef);
            P.havecoef = true;
            P.inrow = true;
        } else if (k & LPC_NAME) {
            status = name_token(st, &p, end);
        } else if (c == ':') {
            if (P.phase != RP_START || P.havesign || P.havecoef) return expect_op(st, c);
            p++;
        } else if (k & LPC_SENSE) {
            if (obj) return env_error(st->env, 1603, st->lineno);
            if (P.havesign) return env_error(st->env, 1604, P.signline, st->lineno);
            if (P.havecoef) return env_error(st->env, 1616, st->lineno, c);
            status = read_sense(st, &p, end);
        } else if (c == '[') {
            if (!obj) return env_error(st->env, 1605, st->lineno);
            if (P.havecoef) return env_error(st->env, 1616, st->lineno, c);
            if (P.phase == RP_AFTER && !P.havesign) return expect_op(st, c);
            P.quad = Q_TERM;
            P.qsign = P.havesign ? P.sign : 1.0;
            P.qhavecoef = false;
            clear_term(st);
            P.inrow = true;
            p++;
        } else if (k & LPC_QUAD) {
            if (P.havesign) return env_error(st->env, 1606, P.signline, st->lineno);
            return expect_op(st, c);
        } else {
            p++;
        }
        if (status != 0) return status;
    }
    if (P.phase == RP_RHS && !obj) return env_error(st->env, 1610, st->lineno);
    return 0;
}

/* ---- bounds ------------------------------------------------------------------- */

int add_bound(lp_state *st, int col, char kind, double v) {
    int status = ensure(P.nbnd, &st->bndcap, &st->bcol, &st->bkind, &st->bval);
    if (status != 0) return status;
    st->bcol[P.nbnd] = col;
    st->bkind[P.nbnd] = kind;
    st->bval[P.nbnd++] = v;
    return 0;
}

/* A sense in a bound line: 'L' for <=, 'G' for >=, 'E' for =; 0 if none,
 * -1 if the characters make no sense. */
int bound_sense(const lp_state *st, const char **pp, const char *end) {
    const char *p = *pp;
    if (p == end || !(cls_of(st, *p) & LPC_SENSE)) return 0;
    const char *q = p;
    while (q < end && (cls_of(st, *q) & LPC_SENSE)) q++;
    int n = static_cast<int>(q - p);
    *pp = q;
    if (n == 1) return *p == '<' ? 'L' : *p == '>' ? 'G' : 'E';
    if (n == 2 && ((p[0] == '<' && p[1] == '=') || (p[0] == '=' && p[1] == '<'))) return 'L';
    if (n == 2 && ((p[0] == '>' && p[1] == '=') || (p[0] == '=' && p[1] == '>'))) return 'G';
    return -1;
}

int bound_value(lp_state *st, const char **pp, const char *end, double *v) {
    const char *p = *pp;
    if (p < end && (cls_of(st, *p) & LPC_SIGN)) p++;
    if (p == end || (cls_of(st, *p) & LPC_SENSE)) return env_error(st->env, 1623, st->lineno);
    const char *stop;
    int status = lp_bound_number(st, *pp, end, v, &stop);
    if (status != 0) return status;
    if (stop == *pp) return env_error(st->env, 1623, st->lineno);
    if (stop < end && !(cls_of(st, *stop) & LPC_SENSE)) return number_error(st, 1434, *pp, end);
    *pp = stop;
    return 0;
}

/* A name of the bound, integer or set lines, which must exist: its column,
 * or -1 after a warning. A name that looks like an exponent is the column
 * of that name; only where there is none is it taken for a misplaced
 * number. */
int bound_column(lp_state *st, const char *b, int len) {
    char tok[RW_NAMELEN + 1];
    int n = len > RW_NAMELEN ? RW_NAMELEN : len;
    std::memcpy(tok, b, n);
    tok[n] = '\0';
    bool invalid = len > 0 && !(cls_of(st, b[0]) & LPC_NAME);
    if (!invalid) {
        int j = find_column(st, b, n);
        if (j >= 0) return j;
        invalid = len > 0 && exponent_like(b, len);
    }
    /* a list of unknown names is told for its first few */
    if (++st->namewarn > 20) return -1;
    if (invalid)
        TRVmsg(st->env->warnchannel, "Line %d: '%s' not valid identifier.\n", st->lineno, tok);
    else
        TRVmsg(st->env->warnchannel, "Line %d: Name '%s' does not exist.\n", st->lineno, tok);
    return -1;
}

/* The bound that a sense sets: "x <= v" an upper one, "v <= x" a lower one. */
char name_first(int s) { return s == 'L' ? 'U' : s == 'G' ? 'L' : 'B'; }
char number_first(int s) { return s == 'L' ? 'L' : s == 'G' ? 'U' : 'B'; }

int bound_line(lp_state *st, const char *p, const char *end) {
    TRVenv env = st->env;
    if (cls_of(st, *p) & LPC_NAME) {
        const char *e = name_end(st, p, end);
        if (e == end) {
            int len = static_cast<int>(e - p);
            bool free = len >= 4 && (e[-4] | 0x20) == 'f' && (e[-3] | 0x20) == 'r' &&
                        (e[-2] | 0x20) == 'e' && (e[-1] | 0x20) == 'e';
            if (!free) return env_error(env, 1621, st->lineno);
            int j = bound_column(st, p, len - 4);
            if (j < 0) return 0;
            int status = add_bound(st, j, 'L', -TRV_INF);
            return status != 0 ? status : add_bound(st, j, 'U', TRV_INF);
        }
        const char *q = e;
        int s = bound_sense(st, &q, end);
        if (s == 0) return env_error(env, 1621, st->lineno);
        if (s < 0) return env_error(env, 1622, st->lineno);
        double v;
        int status = bound_value(st, &q, end, &v);
        if (status != 0) return status;
        if (q != end) return env_error(env, 1622, st->lineno);
        int j = bound_column(st, p, static_cast<int>(e - p));
        return j < 0 ? 0 : add_bound(st, j, name_first(s), v);
    }
    if (!(cls_of(st, *p) & LPC_NUM)) return env_error(env, 1616, st->lineno, *p);
    const char *q = p;
    double v1, v2 = 0.0;
    int status = bound_value(st, &q, end, &v1);
    if (status != 0) return status;
    int s1 = bound_sense(st, &q, end);
    if (s1 == 0) return env_error(env, 1621, st->lineno);
    if (s1 < 0) return env_error(env, 1622, st->lineno);
    const char *nb = q, *ne = name_end(st, q, end);
    q = ne;
    int s2 = 0;
    if (q < end) {
        s2 = bound_sense(st, &q, end);
        if (s2 <= 0) return env_error(env, 1622, st->lineno);
        if ((status = bound_value(st, &q, end, &v2)) != 0) return status;
        if (q != end) return env_error(env, 1622, st->lineno);
        if (s1 != s2 || s1 == 'E')
            TRVmsg(env->warnchannel, "Warning, line %d: Possible sense conflict.\n", st->lineno);
    }
    int j = bound_column(st, nb, static_cast<int>(ne - nb));
    if (j < 0) return 0;
    status = add_bound(st, j, number_first(s1), v1);
    if (status == 0 && s2 != 0) status = add_bound(st, j, name_first(s2), v2);
    return status;
}

/* ---- integer lists and sets ------------------------------------------------------ */

int add_int(lp_state *st, int col, char kind) {
    int status = ensure(P.nint, &st->intcap, &st->icol, &st->ikind);
    if (status != 0) return status;
    st->icol[P.nint] = col;
    st->ikind[P.nint++] = kind;
    return 0;
}

int int_line(lp_state *st, const char *p, const char *end) {
    static const char kinds[] = {'I', 'B', 'G', 'S'};
    char kind = kinds[P.section - LPS_INT];
    while (p < end) {
        if (*p == ' ') {
            p++;
            continue;
        }
        const char *b = p;
        while (p < end && *p != ' ') p++;
        int j = bound_column(st, b, static_cast<int>(p - b));
        if (j >= 0) {
            int status = add_int(st, j, kind);
            if (status != 0) return status;
        }
    }
    return 0;
}

/* A word of a set line: up to a blank or a colon. */
const char *sos_word(const char *p, const char *end) {
    while (p < end && *p != ' ' && *p != ':') p++;
    return p;
}

const char *skip_blank(const char *p, const char *end) {
    while (p < end && *p == ' ') p++;
    return p;
}

bool sos_type(const char *b, const char *e) {
    return e - b == 2 && (b[0] == 'S' || b[0] == 's') && (b[1] == '1' || b[1] == '2');
}

int open_set(lp_state *st, const char *tb, const char *te, const char *nb, const char *ne) {
    if (!sos_type(tb, te))
        return env_error(st->env, 1442, st->lineno, te > tb ? tb[0] : ' ',
                         te - tb > 1 ? tb[1] : ' ');
    int status = ensure(P.nsos + 1, &st->soscap, &st->sostype, &st->sosbeg, &st->sosname);
    if (status != 0) return status;
    st->sostype[P.nsos] = tb[1];
    st->sosbeg[P.nsos] = P.nsosnz;
    st->sosname[P.nsos] = -1;
    if (nb != nullptr) {
        char name[RW_NAMELEN + 1];
        int n = static_cast<int>(ne - nb) > RW_NAMELEN ? RW_NAMELEN : static_cast<int>(ne - nb);
        std::memcpy(name, nb, n);
        name[n] = '\0';
        const char *one[1] = {name};
        if ((status = nameset_add(st->snames, 1, one)) != 0) return status;
        st->sosname[P.nsos] = P.nsnames++;
    }
    P.nsos++;
    P.sosopen = true;
    return 0;
}

int add_member(lp_state *st, const char *nb, const char *ne, const char **pp, const char *end) {
    const char *q = skip_blank(*pp, end);
    const char *stop;
    double w;
    int code = rw_decimal(q, end, 0, &w, &stop);
    if (code != 0) return number_error(st, code, q, end);
    if (stop == q || (stop < end && *stop != ' ')) return number_error(st, 1434, q, end);
    *pp = stop;
    if (!P.sosopen) return env_error(st->env, 1442, st->lineno, ' ', ' ');
    int j = bound_column(st, nb, static_cast<int>(ne - nb));
    if (j < 0) return 0;
    int status = ensure(P.nsosnz, &st->sosnzcap, &st->sosind, &st->sosref);
    if (status != 0) return status;
    st->sosind[P.nsosnz] = j;
    st->sosref[P.nsosnz++] = w;
    return 0;
}

int sos_line(lp_state *st, const char *p, const char *end) {
    for (;;) {
        p = skip_blank(p, end);
        if (p == end) return 0;
        const char *wb = p, *we = sos_word(p, end);
        p = skip_blank(we, end);
        if (p == end || *p != ':') {
            if (!P.sosopen && sos_type(wb, we)) return env_error(st->env, 1442, st->lineno, wb[0], wb[1]);
            return env_error(st->env, 1607, st->lineno, p == end ? ' ' : *p);
        }
        p = skip_blank(p + 1, end);
        if (p < end && *p == ':') { /* "S1::" */
            int status = open_set(st, wb, we, nullptr, nullptr);
            if (status != 0) return status;
            p++;
            continue;
        }
        /* "name: S1::" opens a named set; "name: weight" is a member */
        const char *vb = p, *ve = sos_word(p, end);
        const char *r = skip_blank(ve, end);
        if (r + 1 < end && r[0] == ':' && r[1] == ':') {
            int status = open_set(st, vb, ve, wb, we);
            if (status != 0) return status;
            p = r + 2;
            continue;
        }
        int status = add_member(st, wb, we, &p, end);
        if (status != 0) return status;
    }
}

/* ---- sections -------------------------------------------------------------------- */

/* Closes the section that a keyword ends. */
int leave_section(lp_state *st) {
    if (in_objective(st)) {
        if (P.havesign || P.havecoef || P.quad != Q_OFF || P.phase == RP_TERM)
            TRVmsg(st->env->warnchannel, "Warning, line %d: Objective ended unexpectedly.\n",
                   st->lineno);
        P.quad = Q_OFF;
        clear_term(st);
        P.phase = RP_START;
        P.inrow = false; /* an empty constraint section may follow */
        return 0;
    }
    if (P.section >= LPS_ROWS && P.section <= LPS_LAZY && (P.inrow || P.havesign || P.havecoef))
        return env_error(st->env, 1610, st->lineno);
    return 0;
}

int section_line(lp_state *st) {
    const char *p = st->cbuf, *end = st->cbuf + st->clen;
    if (p == end) return 0;
    switch (P.section) {
    case LPS_MIN:
    case LPS_MAX:
    case LPS_ROWS:
    case LPS_CUTS:
    case LPS_LAZY:
        return expr_line(st, p, end);
    case LPS_BOUNDS:
        return bound_line(st, p, end);
    case LPS_SOS:
        return sos_line(st, p, end);
    case LPS_INT:
    case LPS_BIN:
    case LPS_GEN:
    case LPS_SEMI:
        return int_line(st, p, end);
    default:
        return 0;
    }
}

/* One line: 1 at End, 0 to go on, or a negative status. */
int one_line(lp_state *st, rw_input *in) {
    int code = lp_getline(st, in);
    if (code < 0) return code;
    if (code == LPS_EOF) return 2;
    if (P.section == LPS_START && code != LPS_MIN && code != LPS_MAX)
        return env_error(st->env, 1436);
    if (code != LPS_LINE) {
        int status = leave_section(st);
        if (status != 0) return status;
        st->lastcode = code;
        if (code == LPS_END) return 1;
        if ((code == LPS_MIN || code == LPS_MAX) && P.section == LPS_START) st->objsense = code;
        P.section = code;
        P.phase = RP_START;
    }
    return section_line(st);
}

/* Back to the state at the start of the line. */
void rollback(lp_state *st, const lp_parse *mark) {
    P = *mark;
    nameset_trim(st->cols, P.ncols);
    nameset_trim(st->rnames, P.nrnames);
    nameset_trim(st->snames, P.nsnames);
}

int read_lines(lp_state *st, rw_input *in) {
    for (;;) {
        lp_parse mark = P;
        int status = one_line(st, in);
        if (status == 1) return 0;
        if (status == 2) { /* the end of the file ends the read, good or bad */
            status = leave_section(st);
            if (status == 0 && P.section == LPS_START) status = env_error(st->env, 1436);
            return status;
        }
        if (status < 0 && st->interactive && status != -1001) {
            rollback(st, &mark);
            TRVmsg(st->env->reschannel, "Please reenter last line:\n");
            channel_flush(st->env->reschannel);
            continue;
        }
        if (status != 0) return status;
    }
}

/* ---- the model ---------------------------------------------------------------------- */

/* A column named twice in one row: its coefficients are added, which is
 * what the format says, but two columns of one name in another program's
 * model would come out as one here. */
void repeated_column(lp_state *st, int j, const char *row) {
    if (++st->repwarn <= 5)
        TRVmsg(st->env->warnchannel,
               "Warning:  Column '%.255s' appears more than once in row '%.255s'; its "
               "coefficients are added.\n",
               nameset_name(st->cols, j), row);
}

/* Bounds, then the integer declarations, in the order of the file. */
int assemble_columns(lp_state *st, read_model *m) {
    TRVenv env = st->env;
    int n = P.ncols, space = n + par_int(env, 1047);
    m->ncols = n;
    m->colspace = space;
    m->obj = trv_zalloc<double>(space);
    m->lb = trv_zalloc<double>(space);
    m->ub = trv_alloc<double>(space);
    char *ct = trv_alloc<char>(space);
    char *hasbnd = trv_zalloc<char>(space);
    if (!m->obj || !m->lb || !m->ub || !ct || !hasbnd) {
        trv_free(&ct);
        trv_free(&hasbnd);
        return 1001;
    }
    for (int j = 0; j < space; j++) m->ub[j] = TRV_INF, ct[j] = 'C';
    for (int k = 0; k < P.nobj; k++) {
        int j = st->ocol[k];
        if (hasbnd[j]) repeated_column(st, j, P.objnamed ? st->objname : "obj");
        hasbnd[j] = 1;
        m->obj[j] += st->oval[k];
    }
    std::memset(hasbnd, 0, space);
    for (int k = 0; k < P.nbnd; k++) {
        int j = st->bcol[k];
        double v = st->bval[k];
        if (v >= TRV_INFTEST) v = TRV_INF;
        if (v <= -TRV_INFTEST) v = -TRV_INF;
        if (st->bkind[k] != 'U') m->lb[j] = v;
        if (st->bkind[k] != 'L') m->ub[j] = v;
        hasbnd[j] = 1;
    }
    bool ints = (st->want & RM_INTS) != 0, binwarn = false;
    for (int k = 0; k < P.nint; k++) {
        int j = st->icol[k];
        char &t = ct[j];
        switch (st->ikind[k]) {
        case 'G':
            t = t == 'S' ? 'N' : 'I';
            break;
        case 'S':
            t = t == 'I' ? 'N' : 'S';
            break;
        case 'B':
            t = 'B';
            if (!ints) break;
            if (std::fabs(m->ub[j] - m->lb[j]) >= 1e-10) {
                if (!hasbnd[j])
                    m->lb[j] = 0.0, m->ub[j] = 1.0;
                else if (!(m->lb[j] == 0.0 && m->ub[j] == 1.0))
                    binwarn = true;
            } else if (m->ub[j] != 0.0 && m->ub[j] != 1.0) {
                binwarn = true;
            }
            break;
        default: /* 'I': a listed integer with no bound of its own is binary */
            if (hasbnd[j]) {
                t = m->lb[j] == 0.0 && m->ub[j] == 1.0 ? 'B' : 'I';
            } else {
                /* other programs mean a general integer here: say so */
                if (ints && t != 'B' && ++st->binwarn <= 5)
                    TRVmsg(env->warnchannel,
                           "Warning:  Integer variable '%.255s' has no bounds of its own and is "
                           "taken as binary; list it under GENERALS or bound it for a general "
                           "integer.\n",
                           nameset_name(st->cols, j));
                t = 'B';
                if (ints) m->ub[j] = 1.0;
            }
            break;
        }
    }
    for (int j = 0; j < n; j++) m->nints += ct[j] != 'C';
    if (st->binwarn > 5)
        TRVmsg(env->warnchannel, "%d integer-as-binary warnings not printed.\n", st->binwarn - 5);
    trv_free(&hasbnd);
    if (binwarn)
        TRVmsg(env->warnchannel,
               "Warning:  Binary variables declared with bounds other than 0 and 1.\n");
    if (ints && m->nints > 0)
        m->ctype = ct;
    else
        trv_free(&ct);
    return 0;
}

/* Rows of one kind (0 constraints, 1 user cuts, 2 lazy constraints): the
 * entries of each row merged and the names kept. */
struct kind_rows {
    int n, nz;
    int *beg, *ind;
    double *val, *rhs;
    char *sense;
    const char **names;
};

void kind_free(kind_rows *k) {
    trv_free(&k->beg), trv_free(&k->ind), trv_free(&k->val);
    trv_free(&k->rhs), trv_free(&k->sense), trv_free(&k->names);
}

/* Collects the rows of a kind row-wise: repeats within a row added, exact
 * zeros dropped. mark is scratch of the column count, all -1. */
int collect_rows(lp_state *st, int kind, int *mark, char (*defname)[16], kind_rows *k) {
    int cnt = 0, nzmax = 0;
    for (int r = 0; r < P.nrows; r++)
        if (st->rkind[r] == kind) cnt++, nzmax += st->rowbeg[r + 1] - st->rowbeg[r];
    k->n = cnt;
    k->beg = trv_alloc<int>(cnt + 1);
    k->ind = trv_alloc<int>(nzmax);
    k->val = trv_alloc<double>(nzmax);
    k->rhs = trv_alloc<double>(cnt);
    k->sense = trv_alloc<char>(cnt);
    k->names = trv_alloc<const char *>(cnt);
    if (!k->beg || !k->ind || !k->val || !k->rhs || !k->sense || !k->names) return 1001;
    int i = 0, nz = 0;
    for (int r = 0; r < P.nrows; r++) {
        if (st->rkind[r] != kind) continue;
        k->beg[i] = nz;
        if (st->rname[r] >= 0) {
            k->names[i] = nameset_name(st->rnames, st->rname[r]);
        } else {
            std::snprintf(defname[r], sizeof defname[r], "c%d", r + 1);
            k->names[i] = defname[r];
        }
        for (int e = st->rowbeg[r]; e < st->rowbeg[r + 1]; e++) {
            int j = st->ecol[e];
            if (mark[j] >= k->beg[i]) {
                repeated_column(st, j, k->names[i]);
                k->val[mark[j]] += st->eval[e];
            } else {
                mark[j] = nz;
                k->ind[nz] = j;
                k->val[nz++] = st->eval[e];
            }
        }
        int out = k->beg[i];
        for (int e = k->beg[i]; e < nz; e++) {
            mark[k->ind[e]] = -1;
            if (k->val[e] != 0.0) k->ind[out] = k->ind[e], k->val[out++] = k->val[e];
        }
        nz = out;
        k->rhs[i] = st->rrhs[r];
        k->sense[i] = st->rsense[r];
        i++;
    }
    k->beg[cnt] = nz;
    k->nz = nz;
    return 0;
}

/* The constraint rows by columns, in the caller's spaces. */
int assemble_matrix(lp_state *st, const kind_rows *k, read_model *m) {
    TRVenv env = st->env;
    int n = m->ncols, space = m->colspace, nzspace = k->nz + par_int(env, 1048);
    m->nzspace = nzspace;
    m->matbeg = trv_zalloc<int>(space);
    m->matcnt = trv_zalloc<int>(space);
    m->matind = trv_alloc<int>(nzspace);
    m->matval = trv_alloc<double>(nzspace);
    if (!m->matbeg || !m->matcnt || !m->matind || !m->matval) return 1001;
    for (int e = 0; e < k->nz; e++) m->matcnt[k->ind[e]]++;
    for (int j = 1; j < n; j++) m->matbeg[j] = m->matbeg[j - 1] + m->matcnt[j - 1];
    for (int j = n; j < space; j++) m->matbeg[j] = k->nz;
    for (int j = 0; j < n; j++) m->matcnt[j] = 0;
    for (int i = 0; i < k->n; i++)
        for (int e = k->beg[i]; e < k->beg[i + 1]; e++) {
            int j = k->ind[e], p = m->matbeg[j] + m->matcnt[j]++;
            m->matind[p] = i;
            m->matval[p] = k->val[e];
        }
    int rspace = k->n + par_int(env, 1046);
    m->nrows = k->n;
    m->rowspace = rspace;
    m->rhs = trv_zalloc<double>(rspace);
    m->sense = trv_zalloc<char>(rspace);
    if (!m->rhs || !m->sense) return 1001;
    if (k->n > 0) {
        std::memcpy(m->rhs, k->rhs, k->n * sizeof(double));
        std::memcpy(m->sense, k->sense, k->n);
    }
    return rm_names(k->n, rspace, k->names, &m->rowname, &m->rownamestore, &m->rownamespace);
}

/* User cuts and lazy constraints stay by rows. */
int assemble_cuts(kind_rows *k, int which, read_model *m) {
    m->ncut[which] = k->n;
    m->ncutnz[which] = k->nz;
    m->cutrhs[which] = k->rhs, k->rhs = nullptr;
    m->cutsense[which] = k->sense, k->sense = nullptr;
    m->cutbeg[which] = k->beg, k->beg = nullptr;
    m->cutind[which] = k->ind, k->ind = nullptr;
    m->cutval[which] = k->val, k->val = nullptr;
    return rm_names(k->n, k->n, k->names, &m->cutname[which], &m->cutnamestore[which],
                    &m->cutnamespace[which]);
}

/* Row names that repeat, the objective's among them, are told about. */
int check_repeats(lp_state *st, const read_model *m) {
    int status = 0;
    namehash *h = namehash_new(m->nrows + 1, &status);
    if (h == nullptr) return status;
    int told = 0;
    namehash_add(h, m->objname, -1);
    for (int i = 0; i < m->nrows && status == 0; i++) {
        if (namehash_find(h, m->rowname[i]) != -1 || std::strcmp(m->rowname[i], m->objname) == 0) {
            if (++told <= 5) TRVmsg(st->env->warnchannel, "Row '%s' repeats.\n", m->rowname[i]);
        } else {
            status = namehash_add(h, m->rowname[i], i);
        }
    }
    if (told > 5)
        TRVmsg(st->env->warnchannel, "%d repeated row warnings not printed.\n", told - 5);
    namehash_free(&h);
    return status;
}

int assemble_sets(lp_state *st, read_model *m) {
    if (P.nsos == 0) return 0;
    m->numsos = P.nsos;
    m->numsosnz = P.nsosnz;
    m->sostype = st->sostype, st->sostype = nullptr;
    m->sosbeg = st->sosbeg, st->sosbeg = nullptr;
    m->sosind = st->sosind, st->sosind = nullptr;
    m->sosref = st->sosref, st->sosref = nullptr;
    m->sosbeg[P.nsos] = P.nsosnz;
    return 0;
}

int assemble(lp_state *st, read_model *m) {
    TRVenv env = st->env;
    if (st->lastcode != LPS_END) TRVmsg(env->warnchannel, "Warning: 'End' missing.\n");
    m->objsen = st->objsense == LPS_MAX ? -1 : 1;
    m->objname = trv_strdup(P.objnamed ? st->objname : "obj");
    m->rhsname = trv_strdup("rhs");
    if (!m->objname || !m->rhsname) return 1001;
    int status = assemble_columns(st, m);
    if (status != 0) return status;
    int *mark = trv_alloc<int>(P.ncols);
    char(*defname)[16] = static_cast<char(*)[16]>(trv_malloc(16 * static_cast<size_t>(P.nrows + 1)));
    kind_rows k[3];
    std::memset(k, 0, sizeof k);
    if (!mark || !defname) status = 1001;
    for (int j = 0; j < P.ncols && status == 0; j++) mark[j] = -1;
    for (int kind = 0; kind < 3 && status == 0; kind++)
        status = collect_rows(st, kind, mark, defname, &k[kind]);
    if (st->repwarn > 5)
        TRVmsg(env->warnchannel, "%d repeated column warnings not printed.\n", st->repwarn - 5);
    if (status == 0) status = assemble_matrix(st, &k[0], m);
    for (int kind = 1; kind < 3 && status == 0; kind++)
        if (k[kind].n > 0) status = assemble_cuts(&k[kind], kind - 1, m);
    if (status == 0)
        status = rm_names(P.ncols, m->colspace, st->cols->names, &m->colname, &m->colnamestore,
                          &m->colnamespace);
    if (status == 0) status = check_repeats(st, m);
    if (status == 0) status = assemble_sets(st, m);
    if (status == 0 && P.nq > 0) {
        if (st->want & RM_QUAD)
            status = rm_quad(m, P.nq, st->qa, st->qb, st->qv, true);
        else
            m->nquad = P.nq;
    }
    for (auto &kr : k) kind_free(&kr);
    trv_free(&mark);
    trv_free(&defname);
    return status;
}

}  // namespace

int lp_read(TRVenv env, const char *filename, int want, read_model *m) {
    std::memset(m, 0, sizeof *m);
    lp_state *st = trv_zalloc<lp_state>(1);
    if (st == nullptr) return env_error(env, 1001);
    st->env = env;
    st->want = want;
    lp_classes(st->cls);
    int status = 0;
    if (filename == nullptr) {
        st->fp = stdin;
        st->interactive = true;
        st->source = "<stdin>";
        TRVmsg(env->reschannel, "Enter new problem ['end' on a separate line terminates]:\n");
        channel_flush(env->reschannel);
    } else {
        st->source = filename;
        st->fp = trv_fopen(env, filename, "r", ".lp", 0, 1, &status);
    }
    if (st->fp != nullptr) {
        rw_input in;
        status = rw_open_input(&in, st->fp);
        in.bylines = st->interactive;
        if (status == 0) status = tables_init(st);
        if (status == 0) status = read_lines(st, &in);
        if (st->kwwarn > 5)
            TRVmsg(env->warnchannel, "%d keyword warnings not printed.\n", st->kwwarn - 5);
        if (st->namewarn > 20)
            TRVmsg(env->warnchannel, "%d unknown name warnings not printed.\n",
                   st->namewarn - 20);
        if (st->truncwarn > 20)
            TRVmsg(env->warnchannel, "%d truncation warning messages not printed.\n",
                   st->truncwarn - 20);
        if (status == 0) status = assemble(st, m);
        rw_close_input(&in);
        if (!st->interactive) status = trv_rclose(env, filename, &st->fp, status);
    }
    tables_free(st);
    trv_free(&st);
    if (status != 0) {
        rm_free(m);
        if (status > 0) status = env_error(env, status);
    }
    return status;
}

/* ---- the exported readers ------------------------------------------------------------- */

static int lp_export(TRVenv env, const char *filename, int want, const rm_out *o) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) return status;
    status = rm_out_check(o);
    read_model m;
    std::memset(&m, 0, sizeof m);
    if (status == 0) status = lp_read(env, filename, want, &m);
    const char *source = filename != nullptr ? filename : "<stdin>";
    if (status == 0 && !(want & RM_INTS) && (m.nints > 0 || m.numsos > 0))
        TRVmsg(env->warnchannel, "Problem %s contains integer variable declarations, ignored.\n",
               source);
    if (status == 0 && !(want & RM_QUAD) && m.nquad > 0)
        TRVmsg(env->warnchannel, "Problem %s contains quadratic objective coefficients, ignored.\n",
               source);
    if (status != 0) rm_free(&m);
    rm_give(&m, o);
    return call_leave(env, status);
}

#define LP_OUT_BASE                                                                        \
    o.numcols = numcols_p, o.numrows = numrows_p, o.objsen = objsen_p, o.obj = obj_p,      \
    o.rhs = rhs_p, o.sense = sense_p, o.matbeg = matbeg_p, o.matcnt = matcnt_p,           \
    o.matind = matind_p, o.matval = matval_p, o.lb = lb_p, o.ub = ub_p,                   \
    o.rngval = rngval_p, o.objname = objname_p, o.rhsname = rhsname_p,                    \
    o.colname = colname_p, o.colnamestore = colnamestore_p, o.rowname = rowname_p,        \
    o.rownamestore = rownamestore_p, o.colspace = colspace_p, o.rowspace = rowspace_p,    \
    o.nzspace = nzspace_p, o.colnamespace = colnamespace_p, o.rownamespace = rownamespace_p

TRV_EXPORT int TRVlpread(TRVenv env, const char *filename, int *numcols_p, int *numrows_p,
    int *objsen_p, double **obj_p, double **rhs_p, char **sense_p, int **matbeg_p,
    int **matcnt_p, int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, char **objname_p, char **rhsname_p, char ***colname_p,
    char **colnamestore_p, char ***rowname_p, char **rownamestore_p, int *colspace_p,
    int *rowspace_p, int *nzspace_p, int *colnamespace_p, int *rownamespace_p) {
    rm_out o;
    std::memset(&o, 0, sizeof o);
    LP_OUT_BASE;
    return lp_export(env, filename, 0, &o);
}

TRV_EXPORT int TRVlpmread(TRVenv env, const char *filename, int *numcols_p, int *numrows_p,
    int *objsen_p, double **obj_p, double **rhs_p, char **sense_p, int **matbeg_p,
    int **matcnt_p, int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, char **objname_p, char **rhsname_p, char ***colname_p,
    char **colnamestore_p, char ***rowname_p, char **rownamestore_p, int *colspace_p,
    int *rowspace_p, int *nzspace_p, int *colnamespace_p, int *rownamespace_p,
    char **ctype_p) {
    rm_out o;
    std::memset(&o, 0, sizeof o);
    LP_OUT_BASE;
    o.ctype = ctype_p;
    return lp_export(env, filename, RM_INTS, &o);
}

TRV_EXPORT int TRVlpqread(TRVenv env, const char *filename, int *numcols_p, int *numrows_p,
    int *objsen_p, double **obj_p, double **rhs_p, char **sense_p, int **matbeg_p,
    int **matcnt_p, int **matind_p, double **matval_p, double **lb_p, double **ub_p,
    double **rngval_p, char **objname_p, char **rhsname_p, char ***colname_p,
    char **colnamestore_p, char ***rowname_p, char **rownamestore_p, int *colspace_p,
    int *rowspace_p, int *nzspace_p, int *colnamespace_p, int *rownamespace_p,
    char **ctype_p, int **qmatbeg_p, int **qmatcnt_p, int **qmatind_p, double **qmatval_p,
    int *qnzspace_p) {
    rm_out o;
    std::memset(&o, 0, sizeof o);
    LP_OUT_BASE;
    o.ctype = ctype_p;
    o.qmatbeg = qmatbeg_p, o.qmatcnt = qmatcnt_p, o.qmatind = qmatind_p;
    o.qmatval = qmatval_p, o.qnzspace = qnzspace_p;
    return lp_export(env, filename, RM_INTS | RM_QUAD, &o);
}
