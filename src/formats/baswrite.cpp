/*
 * baswrite.cpp - the BAS writer (TRVmbasewrite) and the name of the
 * recovery file that the simplex drivers write every parameter 1004
 * iterations, and which a later solve with parameter 1041 at 1 reads back
 * as its start.
 *
 * Columns and rows are walked in step: a basic column takes the next
 * nonbasic row and gives an XU or XL line by the side of that row's
 * logical, a column at its upper bound gives UL; columns at lower or free
 * stand in no line. A basis with a wrong count of basic variables (one
 * that TRVcopybase took) is written as far as it pairs: surplus basic
 * columns are left out (they read back nonbasic) and surplus nonbasic
 * rows too (they read back basic), so the file always reads.
 *
 * The recovery file's name is the problem name without one compression
 * suffix (.gz, .Z) and its last extension (trv_stem: "afiro.mps.gz" and
 * "afiro.mps" give "afiro"), with ".xxx"; a directory in the name stays,
 * an empty stem becomes "torva". It is a plain basis: superbasic
 * variables are written at their lower bound, and the default-name
 * notices are left to TRVmbasewrite.
 */
#include <cstring>

#include "formats/bas.h"
#include "formats/rwutil.h"
#include "store/basis.h"

namespace {

const char *col_name(TRVenv env, const lp_data *d, int j) {
    const char *s = env_varname(env, d->colname, d->ncols, j);
    return s != nullptr ? s : env_varname(env, nullptr, d->ncols, j);
}

const char *row_name(TRVenv env, const lp_data *d, int i) {
    const char *s = env_conname(env, d->rowname, d->nrows, i);
    return s != nullptr ? s : env_conname(env, nullptr, d->nrows, i);
}

/* The letter of a nonbasic row: its logical at the upper bound is 'U'
 * (only a ranged row's range column can be), exchanged for a 'G' row. */
char row_letter(char sense, int rstat) {
    bool at_upper = sense == 'R' && rstat == 2;
    return at_upper != (sense == 'G') ? 'U' : 'L';
}

int next_nonbasic(const int *rstat, int m, int i) {
    while (i < m && rstat[i] == 1) i++;
    return i;
}

void write_notices(TRVenv env, const lp_data *d) {
    if (d->colname == nullptr && d->ncols > 0)
        TRVmsg(env->warnchannel, "Default variable names x1, x2 ... to be created.\n");
    if (d->rowname == nullptr && d->nrows > 0)
        TRVmsg(env->warnchannel, "Default row names c1, c2 ... to be created.\n");
}

void write_lines(TRVenv env, FILE *fp, const lp_data *d, const int *cstat,
                 const int *rstat) {
    int m = d->nrows;
    int i = next_nonbasic(rstat, m, 0);
    for (int j = 0; j < d->ncols; j++) {
        if (cstat[j] == 2) {
            std::fprintf(fp, " UL %.255s\n", col_name(env, d, j));
        } else if (cstat[j] == 1 && i < m) {
            std::fprintf(fp, " X%c %.255s  %.255s\n", row_letter(d->sense[i], rstat[i]),
                         col_name(env, d, j), row_name(env, d, i));
            i = next_nonbasic(rstat, m, i + 1);
        }
    }
}

}  // namespace

int bas_write(TRVenv env, TRVlp lp, const char *filename, const int *cstat,
              const int *rstat, int itcnt, int notices) {
    const lp_data *d = lp->lpdata;
    if (notices) write_notices(env, d);
    FILE *fp = trv_wfopen(filename, "w", 1);
    if (fp == nullptr) return 1422;
    const char *name = d->probname != nullptr ? d->probname : "";
    if (itcnt >= 0)
        std::fprintf(fp, "NAME          %.255s  Iterations %d  Rows %d  Cols %d\n", name,
                     itcnt, d->nrows, d->ncols);
    else
        std::fprintf(fp, "NAME          %.255s\n", name);
    write_lines(env, fp, d, cstat, rstat);
    std::fprintf(fp, "ENDATA\n");
    bool failed = std::fflush(fp) != 0 || std::ferror(fp) != 0;
    failed |= trv_fclose(filename, &fp) != 0; /* a gzip pipe that failed */
    return failed ? 1422 : 0;
}

TRV_EXPORT int TRVmbasewrite(TRVenv env, TRVlp lp, const char *filename) {
    int status = call_enter(&env, &lp, CALL_MERGE);
    if (status == 0 && filename == nullptr) status = 1421;
    int *cstat = nullptr, *rstat = nullptr;
    if (status == 0) {
        cstat = trv_alloc<int>(lp->lpdata->ncols);
        rstat = trv_alloc<int>(lp->lpdata->nrows);
        status = cstat && rstat ? start_get(lp, cstat, rstat) : 1001;
    }
    if (status == 0) {
        int itcnt = lp->soln != nullptr ? lp->soln->itcnt : -1;
        status = bas_write(env, lp, filename, cstat, rstat, itcnt, 1);
        if (status == 1422) status = env_error(env, 1422, filename);
    }
    trv_free(&cstat);
    trv_free(&rstat);
    return call_leave(env, status);
}

/* ---- the recovery file ------------------------------------------------------- */

char *bas_recovername(TRVlp lp) {
    const char *pn = lp->lpdata->probname != nullptr ? lp->lpdata->probname : "";
    size_t n = std::strlen(pn);
    char *out = trv_alloc<char>(n + 16);
    if (out == nullptr) return nullptr;
    trv_stem(out, pn);
    size_t k = std::strlen(out);
    if (k == 0 || out[k - 1] == '/') std::strcat(out, "torva");
    std::strcat(out, ".xxx");
    return out;
}

int bas_recoverload(TRVenv env, TRVlp lp) {
    char *name = bas_recovername(lp);
    if (name == nullptr) return 1001;
    int status = 1423;
    FILE *test = std::fopen(name, "r");
    if (test != nullptr) {
        std::fclose(test);
        status = bas_readcopy(env, lp, name, nullptr);
    }
    trv_free(&name);
    return status;
}
