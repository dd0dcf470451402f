/*
 * lputil.cpp - character classes, the line reader and the keywords of the
 * LP reader.
 *
 * The line reader gives the parser compact lines: white space is dropped,
 * so that a token ends only at a delimiter, except in the integer and set
 * lists where one blank is kept between words. A line is read whole,
 * however long; its names are cut at 255 characters by the parser.
 */
#include <cctype>
#include <cstring>

#include "formats/lputil.h"

void lp_classes(unsigned short *cls) {
    std::memset(cls, 0, 256 * sizeof *cls);
    for (int c = 'a'; c <= 'z'; c++) cls[c] |= LPC_NAME;
    for (int c = 'A'; c <= 'Z'; c++) cls[c] |= LPC_NAME;
    for (const char *p = "!\"#$%&'(),;?@_`{|}~/"; *p; p++)
        cls[static_cast<unsigned char>(*p)] |= LPC_NAME;
    for (int c = 128; c <= 251; c++) cls[c] |= LPC_NAME;
    for (const char *p = "<=>"; *p; p++) cls[static_cast<unsigned char>(*p)] |= LPC_SENSE;
    for (const char *p = "0123456789+-.eE"; *p; p++)
        cls[static_cast<unsigned char>(*p)] |= LPC_NUM;
    cls[static_cast<unsigned char>('e')] |= LPC_EXP;
    cls[static_cast<unsigned char>('E')] |= LPC_EXP;
    for (int c = 0; c < 256; c++)
        if (cls[c] & (LPC_NAME | LPC_SENSE | LPC_NUM)) cls[c] |= LPC_OK;
    for (const char *p = ":*[]^ \t"; *p; p++) cls[static_cast<unsigned char>(*p)] |= LPC_OK;
    cls[0] |= LPC_EOL;
    for (const char *p = "\n\f\r\\"; *p; p++) cls[static_cast<unsigned char>(*p)] |= LPC_EOL;
    for (int c = '0'; c <= '9'; c++) cls[c] |= LPC_DIGIT;
    cls[static_cast<unsigned char>('+')] |= LPC_SIGN;
    cls[static_cast<unsigned char>('-')] |= LPC_SIGN;
    for (int c = 0; c < 256; c++)
        if (std::isspace(c)) cls[c] |= LPC_SPACE;
    cls[static_cast<unsigned char>(' ')] |= LPC_SPACE;
    cls[static_cast<unsigned char>('\t')] |= LPC_SPACE;
    for (const char *p = " \t:<=>+-*[]^"; *p; p++)
        cls[static_cast<unsigned char>(*p)] |= LPC_DELIM;
    for (int c = 0; c < 256; c++)
        if (cls[c] & LPC_EOL) cls[c] |= LPC_DELIM;
    for (const char *p = "*[]^"; *p; p++) cls[static_cast<unsigned char>(*p)] |= LPC_QUAD;
}

/* ---- keywords ------------------------------------------------------------------- */

static bool word_eq(const char *word, int len, const char *lower) {
    if (static_cast<int>(std::strlen(lower)) != len) return false;
    for (int i = 0; i < len; i++)
        if (std::tolower(static_cast<unsigned char>(word[i])) != lower[i]) return false;
    return true;
}

/* A prefix of full of at least min characters. */
static bool word_prefix(const char *word, int len, const char *full, int min) {
    if (len < min || len > static_cast<int>(std::strlen(full))) return false;
    for (int i = 0; i < len; i++)
        if (std::tolower(static_cast<unsigned char>(word[i])) != full[i]) return false;
    return true;
}

static int kw_sense(const char *w, int len, bool allowmin) {
    if (allowmin && word_prefix(w, len, "minimize", 3)) return LPS_MIN;
    if (word_prefix(w, len, "maximize", 3)) return LPS_MAX;
    return 0;
}

static int kw_rows(const char *w, int len) {
    static const char *const st[] = {"st", "st.", "s.t", "s.t.", "subjectto", "suchthat"};
    for (const char *k : st)
        if (word_eq(w, len, k)) return LPS_ROWS;
    if (word_eq(w, len, "usercuts")) return LPS_CUTS;
    if (word_eq(w, len, "lazyconstraints")) return LPS_LAZY;
    return 0;
}

static int kw_ints(const char *w, int len) {
    static const struct {
        const char *word;
        int code;
    } words[] = {{"int", LPS_INT},      {"ints", LPS_INT},     {"integer", LPS_INT},
                 {"integers", LPS_INT}, {"bin", LPS_BIN},      {"bins", LPS_BIN},
                 {"binary", LPS_BIN},   {"binaries", LPS_BIN}, {"gen", LPS_GEN},
                 {"gens", LPS_GEN},     {"general", LPS_GEN},  {"generals", LPS_GEN},
                 {"semi", LPS_SEMI},    {"semis", LPS_SEMI},   {"semi-continuous", LPS_SEMI}};
    for (const auto &k : words)
        if (word_eq(w, len, k.word)) return k.code;
    return 0;
}

int lp_keyword(const char *w, int len, int state) {
    int code = 0;
    bool senses = state <= LPS_MAX, rows = senses || (state >= LPS_ROWS && state <= LPS_LAZY);
    bool bounds = rows || state == LPS_BOUNDS;
    bool ints = bounds || (state >= LPS_INT && state <= LPS_SEMI);
    bool sos = ints || state == LPS_SOS;
    bool end = sos || state == LPS_END;
    if (state == 3) return 0;
    if (senses) code = kw_sense(w, len, state != LPS_MAX);
    if (code == 0 && rows) code = kw_rows(w, len);
    if (code == 0 && bounds && word_prefix(w, len, "bounds", 4)) code = LPS_BOUNDS;
    if (code == 0 && ints) code = kw_ints(w, len);
    if (code == 0 && sos && word_eq(w, len, "sos")) code = LPS_SOS;
    if (code == 0 && end && word_eq(w, len, "end")) code = LPS_END;
    return code;
}

/* ---- lines ---------------------------------------------------------------------- */

/* Reads one whole line into buf, with the compact buffer grown to its
 * size. Returns its length, 0 at the end of the file, or a negative
 * status. */
static int read_raw(lp_state *st, rw_input *in) {
    if (st->buf == nullptr) {
        st->bufcap = RW_LINE + 2;
        st->buf = trv_alloc<char>(static_cast<size_t>(st->bufcap));
        st->cbuf = trv_alloc<char>(static_cast<size_t>(st->bufcap));
        if (st->buf == nullptr || st->cbuf == nullptr) return env_error(st->env, 1001);
    }
    int cap = st->bufcap, n = 0;
    if (rw_getline(in, &st->buf, &st->bufcap, &n) != 0) return env_error(st->env, 1001);
    if (st->bufcap > cap && trv_grow(&st->cbuf, static_cast<size_t>(st->bufcap)) != 0)
        return env_error(st->env, 1001);
    if (n > 0) st->lineno++;
    return n;
}

static int unexpected_char(lp_state *st, unsigned char c) {
    if (++st->truncwarn <= 5)
        TRVmsg(st->env->warnchannel, "Warning, line %d: Unexpected character code %d skipped.\n",
               st->lineno, c);
    return 0;
}

/* Copies from p into the compact buffer up to the end of the line; a
 * list section keeps one blank between words. A blank between a number and
 * a following e or E is kept too: "10 E11" is ten times the variable E11,
 * where "10E11" is a number. */
static void compact_rest(lp_state *st, const char *p, const char *end, bool keepspace) {
    char *out = st->cbuf + st->clen;
    bool gap = false;
    for (; p < end; p++) {
        unsigned char c = static_cast<unsigned char>(*p);
        unsigned short k = st->cls[c];
        if (k & LPC_EOL) break;
        if (k & LPC_SPACE) {
            gap = true;
            continue;
        }
        if (!(k & LPC_OK)) {
            unexpected_char(st, c);
            continue;
        }
        if (gap && out > st->cbuf &&
            (keepspace || ((k & LPC_EXP) && ((st->cls[static_cast<unsigned char>(out[-1])] &
                                              LPC_DIGIT) || out[-1] == '.'))))
            *out++ = ' ';
        gap = false;
        *out++ = static_cast<char>(c);
    }
    *out = '\0';
    st->clen = static_cast<int>(out - st->cbuf);
}

/* The first word of a line: up to white space, the end of line or a colon;
 * characters that are not accepted are skipped. */
static const char *first_word(lp_state *st, const char *p, const char *end, char *word,
                              int *len) {
    int n = 0;
    for (; p < end; p++) {
        unsigned char c = static_cast<unsigned char>(*p);
        unsigned short k = st->cls[c];
        if ((k & (LPC_SPACE | LPC_EOL)) || c == ':') break;
        if (!(k & LPC_OK)) {
            unexpected_char(st, c);
            continue;
        }
        if (n < RW_LINE) word[n++] = static_cast<char>(c);
    }
    word[n] = '\0';
    *len = n;
    return p;
}

static bool two_word_head(const char *w, int len) {
    return word_eq(w, len, "subject") || word_eq(w, len, "such") || word_eq(w, len, "user") ||
           word_eq(w, len, "lazy");
}

/* Past blanks, not past the end of the line. */
static const char *skip_blanks(const lp_state *st, const char *q, const char *end) {
    while (q < end && (st->cls[static_cast<unsigned char>(*q)] & LPC_SPACE) &&
           !(st->cls[static_cast<unsigned char>(*q)] & LPC_EOL))
        q++;
    return q;
}

static bool line_ends(const lp_state *st, const char *q, const char *end) {
    return q == end || (st->cls[static_cast<unsigned char>(*q)] & LPC_EOL);
}

static bool number_start(const lp_state *st, char c) {
    return (st->cls[static_cast<unsigned char>(c)] & (LPC_SIGN | LPC_DIGIT)) || c == '.';
}

/* A keyword word that begins a line may be a column's name: "end <= 3",
 * "int >= 2", "bin free" in the bounds, "end:2" in a set, "end + x >= 1"
 * in a row. True when what follows the word on its line can only go with a
 * name: a relation; a sign or a number after End, the integer words or a
 * sense word inside the objective, none of which takes one; the word
 * "free" in the bounds; a colon and a weight in the sets. The sense words
 * that open the file always stand. */
static bool keyword_is_name(const lp_state *st, int code, const char *q, const char *end) {
    int section = st->p.section;
    if (section == LPS_START) return false;
    q = skip_blanks(st, q, end);
    if (line_ends(st, q, end)) return false;
    if (st->cls[static_cast<unsigned char>(*q)] & LPC_SENSE) return true;
    bool takes_none = code == LPS_END || code == LPS_MIN || code == LPS_MAX ||
                      (code >= LPS_INT && code <= LPS_SEMI);
    if (takes_none && number_start(st, *q)) return true;
    if (section == LPS_BOUNDS) {
        const char *e = q;
        while (!line_ends(st, e, end) && !(st->cls[static_cast<unsigned char>(*e)] & LPC_SPACE))
            e++;
        return word_eq(q, static_cast<int>(e - q), "free") &&
               line_ends(st, skip_blanks(st, e, end), end);
    }
    if (section == LPS_SOS && *q == ':') {
        q = skip_blanks(st, q + 1, end);
        return q < end && number_start(st, *q);
    }
    return false;
}

/* A keyword that stands though a column has its name is said, since the
 * line might have meant the column: where text follows the word, or the
 * section is a list of names. */
static void keyword_over_name(lp_state *st, const char *word, int len, const char *q,
                              const char *end) {
    if (st->cols == nullptr || st->cols->index == nullptr) return;
    int section = st->p.section;
    bool list = section == LPS_SOS || (section >= LPS_INT && section <= LPS_SEMI);
    if (line_ends(st, skip_blanks(st, q, end), end) && !list) return;
    unsigned w;
    if (namehash_lookup_n(st->cols->index, word, static_cast<size_t>(len), &w) < 0) return;
    if (++st->kwwarn <= 5)
        TRVmsg(st->env->warnchannel,
               "Warning, line %d: '%.255s' taken as a keyword, not as the column of that name.\n",
               st->lineno, word);
}

int lp_getline(lp_state *st, rw_input *in) {
    for (;;) {
        int n = read_raw(st, in);
        if (n < 0) return n;
        if (n == 0) {
            st->lineno++;
            return LPS_EOF;
        }
        const char *p = st->buf, *end = st->buf + n;
        while (p < end && (st->cls[static_cast<unsigned char>(*p)] & LPC_SPACE) &&
               !(st->cls[static_cast<unsigned char>(*p)] & LPC_EOL))
            p++;
        if (p == end || (st->cls[static_cast<unsigned char>(*p)] & LPC_EOL)) continue;
        int state = st->p.section;
        bool keep = state == LPS_SOS || (state >= LPS_INT && state <= LPS_SEMI);
        char word[RW_LINE + 1];
        int wlen;
        const char *q = first_word(st, p, end, word, &wlen);
        int code = lp_keyword(word, wlen, state);
        if (code != 0 && keyword_is_name(st, code, q, end)) code = 0;
        if (code != 0) keyword_over_name(st, word, wlen, q, end);
        if (code == 0 && two_word_head(word, wlen)) {
            const char *r = q;
            while (r < end && (st->cls[static_cast<unsigned char>(*r)] & LPC_SPACE) &&
                   !(st->cls[static_cast<unsigned char>(*r)] & LPC_EOL))
                r++;
            int len2;
            char w2[RW_LINE + 1];
            const char *r2 = first_word(st, r, end, w2, &len2);
            if (wlen + len2 == 8 || wlen + len2 == 9 || wlen + len2 == 15) {
                std::memcpy(word + wlen, w2, len2);
                int c2 = lp_keyword(word, wlen + len2, state);
                if (c2 != 0) {
                    code = c2;
                    q = r2;
                }
            }
        }
        st->clen = 0;
        if (code != 0) {
            bool keep2 = code == LPS_SOS || (code >= LPS_INT && code <= LPS_SEMI);
            compact_rest(st, q, end, keep2);
            return code;
        }
        compact_rest(st, p, end, keep);
        return LPS_LINE;
    }
}

int lp_bound_number(lp_state *st, const char *s, const char *end, double *v,
                    const char **stop) {
    const char *p = s;
    double sign = 1.0;
    if (p < end && (*p == '+' || *p == '-')) {
        if (*p == '-') sign = -1.0;
        p++;
    }
    const char *e = p;
    while (e < end && !(st->cls[static_cast<unsigned char>(*e)] & LPC_DELIM)) e++;
    if (word_eq(p, static_cast<int>(e - p), "inf") ||
        word_eq(p, static_cast<int>(e - p), "infinity")) {
        *v = sign * 1e20;
        *stop = e;
        return 0;
    }
    int code = rw_decimal(s, end, 0, v, stop);
    if (code == 0) return 0;
    char tok[RW_LINE + 1]; /* the token as the message shows it */
    int n = static_cast<int>(e - s) > RW_LINE ? RW_LINE : static_cast<int>(e - s);
    std::memcpy(tok, s, n);
    tok[n] = '\0';
    if (code == RWNUM_EXPSTART || code == RWNUM_EXPEND)
        return env_error(st->env, 1618, st->lineno, tok,
                         code == RWNUM_EXPSTART ? "started" : "ended");
    return env_error(st->env, code, st->lineno, tok);
}
