/*
 * mpsutil.cpp - lines, sections, fields and numbers of the MPS reader.
 *
 * A data line is split at white space. Files written in the old fixed
 * columns may hold names with blanks in them; a line whose white-space
 * split does not fit its section is taken by the fixed columns instead
 * (fields at 2-3, 5-12, 15-22, 25-36, 40-47 and 50-61), as long as the
 * line's blanks sit where that layout wants them.
 */
#include <cctype>
#include <cstring>

#include "formats/mpsutil.h"

void mps_classes(unsigned char *cls) {
    std::memset(cls, 0, 256);
    for (int c = 0; c < 256; c++) {
        if (std::isalnum(c) || (c >= 128 && c <= 251) || (std::ispunct(c) && c < 128))
            cls[c] |= MPSC_NAME;
        if (c < 128 && std::iscntrl(c) && !std::isspace(c)) cls[c] |= MPSC_SKIP;
    }
    cls[static_cast<unsigned char>('*')] |= MPSC_SKIP;
    for (int c = '0'; c <= '9'; c++) cls[c] |= MPSC_DIGIT;
    for (const char *p = "eEdD"; *p; p++) cls[static_cast<unsigned char>(*p)] |= MPSC_EXP;
    for (const char *p = "LGENlgen"; *p; p++)
        cls[static_cast<unsigned char>(*p)] |= MPSC_SENSE;
}

void mps_init(mps_state *st, TRVenv env, const char *filename) {
    st->env = env;
    st->filename = filename;
    mps_classes(st->cls);
    st->tok = st->tok8;
    st->tokcap = 8;
}

int mps_open_lines(mps_state *st) {
    st->linecap = RW_LINE + 2;
    st->line = trv_alloc<char>(static_cast<size_t>(st->linecap));
    if (st->line == nullptr) return 1001;
    st->line[0] = '\0';
    return rw_open_input(&st->in, st->fp);
}

void mps_close_lines(mps_state *st) {
    rw_close_input(&st->in);
    trv_free(&st->line);
    if (st->tok != st->tok8) trv_free(&st->tok);
    st->tok = st->tok8;
    st->tokcap = 8;
}

int mps_getline(mps_state *st) {
    for (;;) {
        int len = 0;
        if (rw_getline(&st->in, &st->line, &st->linecap, &len) != 0) return 1001;
        if (len == 0) return 0;
        st->lineno++;
        /* a line of n characters holds at most n / 2 + 1 tokens */
        int need = len / 2 + 1;
        if (need > st->tokcap) {
            mps_field *t = trv_alloc<mps_field>(static_cast<size_t>(need));
            if (t == nullptr) return 1001;
            if (st->tok != st->tok8) trv_free(&st->tok);
            st->tok = t;
            st->tokcap = need;
        }
        unsigned char c = static_cast<unsigned char>(st->line[0]);
        if (c == '\0' || !(st->cls[c] & MPSC_SKIP)) return 1;
    }
}

bool mps_word_is(const char *text, const char *upper) {
    for (; *upper != '\0'; text++, upper++)
        if (std::toupper(static_cast<unsigned char>(*text)) != *upper) return false;
    return true;
}

static bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

int mps_section(const char *line) {
    static const struct {
        const char *word;
        int code;
    } words[] = {{"NAME", MS_NAME},       {"OBJSENSE", MS_OBJSENSE},
                 {"OBJSENCE", MS_OBJSENSE}, {"OBJNAME", MS_OBJNAME},
                 {"REFROW", MS_REFROW},   {"ROWS", MS_ROWS},
                 {"COLUMNS", MS_COLUMNS}, {"RHS", MS_RHS},
                 {"RANGES", MS_RANGES},   {"BOUNDS", MS_BOUNDS},
                 {"QMATRIX", MS_QMATRIX}, {"SOS", MS_SOS},
                 {"ENDATA", MS_ENDATA}};
    size_t n = 0;
    while (line[n] != '\0' && !is_blank(line[n])) n++;
    for (const auto &w : words)
        if (std::strlen(w.word) == n && mps_word_is(line, w.word)) return w.code;
    return MS_UNKNOWN;
}

void mps_tokens(mps_state *st) { mps_tokens_of(st, st->line); }

void mps_tokens_of(mps_state *st, char *line) {
    st->nfree = 0;
    char *p = line;
    for (;;) {
        while (*p != '\0' && !(st->cls[static_cast<unsigned char>(*p)] & MPSC_NAME)) p++;
        if (*p == '\0') break;
        char *b = p;
        while (st->cls[static_cast<unsigned char>(*p)] & MPSC_NAME) p++;
        if (st->nfree < st->tokcap) st->tok[st->nfree] = {b, static_cast<int>(p - b)};
        st->nfree++;
    }
}

bool mps_fixed(mps_state *st) {
    static const int sep[] = {0, 3, 12, 13, 22, 23, 36, 37, 38, 47, 48};
    static const int beg[MPS_NFIELD] = {1, 4, 14, 24, 39, 49};
    static const int end[MPS_NFIELD] = {3, 12, 22, 36, 47, 61};
    char *line = st->line;
    int n = static_cast<int>(std::strlen(line));
    while (n > 0 && is_blank(line[n - 1])) n--;
    if (n > 61) return false;
    for (int s : sep)
        if (s < n && !is_blank(line[s])) return false;
    for (int k = 0; k < MPS_NFIELD; k++) {
        int b = beg[k], e = end[k] < n ? end[k] : n;
        while (b < e && is_blank(line[b])) b++;
        while (e > b && is_blank(line[e - 1])) e--;
        st->f[k] = {line + (b < n ? b : n), e > b ? e - b : 0};
    }
    return true;
}

void mps_cut(mps_state *st, mps_field *f, bool name) {
    if (f->len == 0) {
        st->nul[0] = '\0';
        f->text = &st->nul[0];
        return;
    }
    if (f->len > RW_NAMELEN && name) {
        f->len = RW_NAMELEN;
        f->text[RW_NAMELEN] = '\0';
        if (++st->truncated <= 20)
            TRVmsg(st->env->warnchannel, "Warning, line %d:  '%s' truncated.\n", st->lineno,
                   f->text);
    }
    f->text[f->len] = '\0';
}

void mps_terminate(mps_state *st, unsigned namemask) {
    for (int k = 0; k < MPS_NFIELD; k++) mps_cut(st, &st->f[k], (namemask & (1u << k)) != 0);
}

bool mps_numeric_look(const mps_field *fld) {
    if (fld->len == 0) return false;
    char c = fld->text[0];
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

int mps_number(mps_state *st, const mps_field *fld, double *value) {
    if (fld->len == 0) {
        st->emptynum = true;
        *value = 0.0;
        return 0;
    }
    const char *stop;
    int code = rw_decimal(fld->text, fld->text + fld->len, RWNUM_DEXP, value, &stop);
    if (code == RWNUM_EXPSTART || code == RWNUM_EXPEND)
        return env_error(st->env, 1618, st->lineno, fld->text,
                         code == RWNUM_EXPSTART ? "started" : "ended");
    if (code == 1435) return env_error(st->env, 1435, st->lineno, fld->text);
    if (code != 0 || stop != fld->text + fld->len)
        return env_error(st->env, 1434, st->lineno, fld->text);
    return 0;
}
