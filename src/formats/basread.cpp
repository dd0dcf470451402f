/*
 * basread.cpp - the BAS reader and its exported entries: TRVmbaseread
 * reads against the caller's name arrays, TRVreadcopybase against the
 * problem's names and makes the basis the stored start.
 *
 * A file is "NAME" first, then data lines up to ENDATA: XU and XL (a
 * column and a row, maybe a value), UL and LL (a column). Tokens are split
 * at white space with the character classes of the MPS reader, names cut
 * at 255 characters with its warning. The line buffer holds 1024 bytes
 * rather than 510: an XU line of two names of 255 characters and a value
 * is longer than 510. The rest of a longer line is dropped.
 *
 * Choices within the design: a blank line is skipped; the indicator must
 * be one of the seven two-letter words in either case, wherever the line
 * starts; the first token ENDATA ends the data. Superbasic lines (BR, SR,
 * SC) give 1554, since both callers take statuses only. Once any X line
 * carries a value, an X line without one makes the read fail with 1550.
 * Without row senses (TRVmbaseread) every nonbasic row is 0; with them a
 * ranged row is 2 at the upper end of its range.
 *
 * Default suffix: both exported readers pass ".bas" to trv_fopen, so a
 * name that does not open as given, does not end in ".bas" and is not a
 * compressed name is tried once more with ".bas" appended; the error then
 * names the name as given. The restart reads its ".xxx" with no suffix.
 */
#include <cstdlib>
#include <cstring>

#include "formats/bas.h"
#include "formats/mpsutil.h"
#include "store/basis.h"

#define BAS_LINE 1024

namespace {

enum { BK_XU, BK_XL, BK_UL, BK_LL, BK_BR, BK_SR, BK_SC };

/* A name table with its sorted index; default names live in store. */
struct bas_table {
    int n;
    char **name;
    char *store;
    int *order;
    int state;
};

struct bas_reader {
    mps_state *st; /* env, file, classes, line number, fields, truncation */
    char line[BAS_LINE];
    bas_table cols, rows;
    const char *sense;
    int *cstat, *rstat;
    int namewarn;  /* names in no table */
    int valued;    /* X lines with a value */
    int plainline; /* first X line without one, 0 for none */
    bool endata;
};

const char *default_name(TRVenv env, bool rows, int n, int k) {
    return rows ? env_conname(env, nullptr, n, k) : env_varname(env, nullptr, n, k);
}

bool given(char *const *names, int k) { return names != nullptr && names[k] != nullptr; }

int table_init(TRVenv env, bas_table *t, int n, char *const *names, bool rows) {
    t->n = n;
    t->name = trv_alloc<char *>(n);
    t->order = trv_alloc<int>(n);
    size_t bytes = 0;
    for (int k = 0; k < n; k++)
        if (!given(names, k)) bytes += std::strlen(default_name(env, rows, n, k)) + 1;
    t->store = trv_alloc<char>(bytes);
    if (!t->name || !t->order || !t->store) return 1001;
    char *p = t->store;
    for (int k = 0; k < n; k++) {
        if (given(names, k)) {
            t->name[k] = names[k];
            continue;
        }
        const char *s = default_name(env, rows, n, k);
        size_t len = std::strlen(s) + 1;
        std::memcpy(p, s, len);
        t->name[k] = p;
        p += len;
    }
    sorted_index(n, t->name, t->order);
    return 0;
}

void table_free(bas_table *t) {
    trv_free(&t->name);
    trv_free(&t->store);
    trv_free(&t->order);
}

int reader_init(bas_reader *r, const bas_target *t) {
    TRVenv env = r->st->env;
    r->sense = t->sense;
    r->cstat = trv_zalloc<int>(t->ncols);
    r->rstat = trv_alloc<int>(t->nrows);
    if (!r->cstat || !r->rstat) return 1001;
    for (int i = 0; i < t->nrows; i++) r->rstat[i] = 1;
    int status = table_init(env, &r->cols, t->ncols, t->colname, false);
    if (status == 0) status = table_init(env, &r->rows, t->nrows, t->rowname, true);
    return status;
}

void reader_free(bas_reader *r) {
    table_free(&r->cols);
    table_free(&r->rows);
    trv_free(&r->cstat);
    trv_free(&r->rstat);
}

/* Next line that is not a comment, as mps_getline but in the longer
 * buffer; false at the end of the file. */
bool bas_getline(bas_reader *r) {
    mps_state *st = r->st;
    for (;;) {
        if (std::fgets(r->line, BAS_LINE, st->fp) == nullptr) return false;
        st->lineno++;
        size_t n = std::strlen(r->line);
        if (n == BAS_LINE - 1 && r->line[n - 1] != '\n') {
            int c;
            while ((c = std::fgetc(st->fp)) != EOF && c != '\n') {
            }
        }
        unsigned char c = static_cast<unsigned char>(r->line[0]);
        if (c == '\0' || !(st->cls[c] & MPSC_SKIP)) return true;
    }
}

/* White-space tokens of the line into st->tok (8 kept, all counted). */
void bas_tokens(bas_reader *r) {
    mps_state *st = r->st;
    mps_tokens_of(st, r->line);
    for (int k = 0; k < MPS_NFIELD; k++)
        st->f[k] = k < st->nfree && k < 8 ? st->tok[k] : mps_field{nullptr, 0};
}

int read_header(bas_reader *r) {
    while (bas_getline(r)) {
        const char *p = r->line;
        while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') p++;
        if (*p == '\0') continue;
        if (p != r->line || mps_section(r->line) != MS_NAME) break;
        return 0;
    }
    return env_error(r->st->env, 1441, r->st->lineno);
}

int indicator(const mps_field *f) {
    static const char *const words[] = {"XU", "XL", "UL", "LL", "BR", "SR", "SC"};
    if (f->len != 2) return -1;
    for (int k = 0; k < 7; k++)
        if (mps_word_is(f->text, words[k])) return k;
    return -1;
}

/* Index of a name in a table, or -1 with the counted warning. */
int find(bas_reader *r, bas_table *t, const char *name, bool row) {
    int k = sorted_find(&t->state, t->name, name, t->order, t->n);
    if (k < 0 && ++r->namewarn <= 5)
        TRVmsg(r->st->env->warnchannel,
               row ? "Warning, line %d: '%.255s' is not a row.\n"
                   : "Warning, line %d: '%.255s' is not a variable.\n",
               r->st->lineno, name);
    return k;
}

/* Status of a row made nonbasic by an XU (upper) or XL line. */
int nonbasic_row(const char *sense, int i, bool upper) {
    if (sense == nullptr) return 0;
    bool at_upper = upper != (sense[i] == 'G');
    return sense[i] == 'R' && at_upper ? 2 : 0;
}

/* The value of an X line, or the note of its absence. */
int line_value(bas_reader *r) {
    mps_state *st = r->st;
    if (st->nfree < 4) {
        if (r->plainline == 0) r->plainline = st->lineno;
        return 0;
    }
    double v;
    int status = mps_number(st, &st->f[3], &v);
    if (status == 0) r->valued++;
    return status;
}

int read_line(bas_reader *r) {
    mps_state *st = r->st;
    TRVenv env = st->env;
    bas_tokens(r);
    if (st->nfree == 0) return 0;
    int kind = indicator(&st->f[0]);
    if (kind < 0) {
        mps_terminate(st, 0);
        if (st->f[0].len == 6 && mps_word_is(st->f[0].text, "ENDATA")) {
            r->endata = true;
            return 0;
        }
        return env_error(env, 1551, st->lineno, st->f[0].text);
    }
    if (kind >= BK_BR) return env_error(env, 1554);
    bool x = kind == BK_XU || kind == BK_XL;
    if (x ? st->nfree < 3 || st->nfree > 4 : st->nfree != 2)
        return env_error(env, 1553, st->lineno);
    mps_terminate(st, x ? (1u << 1) | (1u << 2) : 1u << 1);
    int status = x ? line_value(r) : 0;
    if (status != 0) return status;
    int j = find(r, &r->cols, st->f[1].text, false);
    int i = x ? find(r, &r->rows, st->f[2].text, true) : 0;
    if (j < 0 || i < 0) return 0;
    if (x) {
        r->cstat[j] = 1;
        r->rstat[i] = nonbasic_row(r->sense, i, kind == BK_XU);
    } else {
        r->cstat[j] = kind == BK_UL ? 2 : 0;
    }
    return 0;
}

int read_body(bas_reader *r) {
    while (!r->endata && bas_getline(r)) {
        int status = read_line(r);
        if (status != 0) return status;
    }
    return 0;
}

void summaries(bas_reader *r) {
    TRVenv env = r->st->env;
    if (r->namewarn > 5)
        TRVmsg(env->warnchannel, "%d warnings not printed.\n", r->namewarn - 5);
    if (r->st->truncated > 20)
        TRVmsg(env->warnchannel, "%d truncation warning messages not printed.\n",
               r->st->truncated - 20);
}

/* The checks of a file read to its end. */
int finish(bas_reader *r, const bas_target *t) {
    TRVenv env = r->st->env;
    if (!r->endata) TRVmsg(env->warnchannel, "Warning: 'ENDATA' missing.\n");
    if (r->valued > 0 && r->plainline > 0) {
        TRVmsg(env->errchannel, "Line %d: Missing basic value.\n", r->plainline);
        return env_error(env, 1550);
    }
    int basic = 0;
    for (int j = 0; j < t->ncols; j++) basic += r->cstat[j] == 1;
    for (int i = 0; i < t->nrows; i++) basic += r->rstat[i] == 1;
    int diff = basic - t->nrows;
    if (diff != 0)
        return env_error(env, 1555, std::abs(diff), diff > 0 ? "extra" : "too few");
    return 0;
}

}  // namespace

int bas_read(TRVenv env, const char *filename, const char *suffix,
             const bas_target *t, int *cstat, int *rstat) {
    bas_reader *r = trv_zalloc<bas_reader>(1);
    mps_state *st = trv_zalloc<mps_state>(1);
    int status = 0;
    if (r == nullptr || st == nullptr) status = 1001;
    if (status == 0) {
        r->st = st;
        mps_init(st, env, filename);
        st->fp = trv_fopen(env, filename, "r", suffix, 0, 1, &status);
    }
    if (status == 0 && st->fp != nullptr) {
        status = reader_init(r, t);
        if (status == 0) status = read_header(r);
        if (status == 0) status = read_body(r);
        summaries(r);
        if (status == 0) status = finish(r, t);
        status = trv_rclose(env, filename, &st->fp, status);
        if (status == 0) {
            if (t->ncols > 0) std::memcpy(cstat, r->cstat, t->ncols * sizeof(int));
            if (t->nrows > 0) std::memcpy(rstat, r->rstat, t->nrows * sizeof(int));
        }
    }
    if (r != nullptr) reader_free(r);
    trv_free(&st);
    trv_free(&r);
    if (status > 0) status = env_error(env, status);
    return status;
}

/* A column that no line names, or an LL line names, without a finite
 * lower bound sits at its upper bound, or is free, as TRVgetbase tells. */
static void fit_columns(const lp_data *d, int *cstat) {
    for (int j = 0; j < d->ncols; j++)
        if (cstat[j] == 0 && d->lb[j] <= -TRV_INF) cstat[j] = d->ub[j] < TRV_INF ? 2 : 3;
}

int bas_readcopy(TRVenv env, TRVlp lp, const char *filename, const char *suffix) {
    const lp_data *d = lp->lpdata;
    int *cstat = trv_alloc<int>(d->ncols);
    int *rstat = trv_alloc<int>(d->nrows);
    int status = cstat && rstat ? 0 : 1001;
    if (status == 0) {
        bas_target t = {d->ncols, d->nrows, d->colname, d->rowname, d->sense};
        status = bas_read(env, filename, suffix, &t, cstat, rstat);
    }
    if (status == 0) {
        fit_columns(d, cstat);
        status = start_from_status(env, lp, cstat, rstat);
    }
    trv_free(&cstat);
    trv_free(&rstat);
    return status;
}

TRV_EXPORT int TRVmbaseread(TRVenv env, const char *filename, int numcols, int numrows,
                            char **colname, char **rowname, int *cstat, int *rstat) {
    int status = call_enter(&env, nullptr, 0);
    if (status != 0) {
    } else if (filename == nullptr) status = 1421;
    else if (numcols < 0 || numrows < 0) status = 1003;
    else if ((numcols > 0 && cstat == nullptr) || (numrows > 0 && rstat == nullptr))
        status = 1004;
    if (status == 0) {
        bas_target t = {numcols, numrows, colname, rowname, nullptr};
        status = bas_read(env, filename, ".bas", &t, cstat, rstat);
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVreadcopybase(TRVenv env, TRVlp lp, const char *filename) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status == 0 && filename == nullptr) status = 1421;
    if (status == 0) status = bas_readcopy(env, lp, filename, ".bas");
    return call_leave(env, status);
}
