/*
 * rwutil.cpp - the file layer of the model formats and the dispatch by
 * format: files open with a default suffix, compressed files come through a
 * gzip pipe, and TRVreadcopyprob / TRVwriteprob pick the reader or writer
 * by a type word or the file's suffix.
 */
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

#include "formats/rwutil.h"
#include "store/lp.h"
#include "store/names.h"

/* ---- compressed names ---------------------------------------------------------- */

bool trv_hasgz(const char *name) {
    if (name == nullptr) return false;
    size_t n = std::strlen(name);
    if (n < 3) return false;
    const char *e = name + n - 3;
    if (e[0] == '.' && std::toupper(static_cast<unsigned char>(e[1])) == 'G' &&
        std::toupper(static_cast<unsigned char>(e[2])) == 'Z')
        return true;
    return name[n - 2] == '.' && name[n - 1] == 'Z';
}

/* Case-insensitive test of the name's end. */
static bool ends_with(const char *name, const char *suffix) {
    size_t n = std::strlen(name), k = std::strlen(suffix);
    if (k > n) return false;
    const char *e = name + n - k;
    for (size_t i = 0; i < k; i++)
        if (std::toupper(static_cast<unsigned char>(e[i])) !=
            std::toupper(static_cast<unsigned char>(suffix[i])))
            return false;
    return true;
}

/* The shell command for a pipe: the file name goes in single quotes, each
 * quote of the name closed, escaped and reopened. */
static char *gz_command(const char *format_head, const char *name,
                        const char *tail) {
    size_t n = std::strlen(name);
    size_t bytes = std::strlen(format_head) + 4 * n + std::strlen(tail) + 200;
    char *cmd = trv_alloc<char>(bytes);
    if (cmd == nullptr) return nullptr;
    char *p = cmd;
    p += std::snprintf(p, bytes, "%s'", format_head);
    for (size_t i = 0; i < n; i++) {
        if (name[i] == '\'') {
            std::memcpy(p, "'\\''", 4);
            p += 4;
        } else {
            *p++ = name[i];
        }
    }
    std::snprintf(p, bytes - (p - cmd), "'%s", tail);
    return cmd;
}

/* The pipe's program starts afresh from the shell, so nothing buffered in
 * this process can be written twice, and the host's streams are left for
 * the host to flush. */
static FILE *gz_popen(const char *head, const char *name, const char *tail,
                      const char *mode) {
    char *cmd = gz_command(head, name, tail);
    if (cmd == nullptr) return nullptr;
    FILE *f = popen(cmd, mode);
    trv_free(&cmd);
    return f;
}

FILE *trv_fopen(TRVenv env, const char *name, const char *mode,
                const char *suffix, int quiet, int allowgz, int *status_p) {
    if (name == nullptr || name[0] == '\0') {
        if (status_p != nullptr) *status_p = env_error(env, 1421);
        return nullptr;
    }
    if (allowgz && trv_hasgz(name)) {
        FILE *test = std::fopen(name, mode);
        if (test == nullptr) {
            if (status_p != nullptr) *status_p = env_error(env, 1423, name);
            return nullptr;
        }
        std::fclose(test);
        FILE *pipe = gz_popen("gzip -cd -- ", name, " 2>/dev/null", "r");
        if (pipe == nullptr && status_p != nullptr)
            *status_p = env_error(env, 1423, name);
        return pipe;
    }
    FILE *f = std::fopen(name, mode);
    if (f != nullptr) return f;
    if (status_p == nullptr) return nullptr;
    if (!quiet && suffix != nullptr && suffix[0] != '\0' && !ends_with(name, suffix)) {
        char buf[512];
        size_t room = sizeof buf - 1 - std::strlen(suffix);
        std::snprintf(buf, sizeof buf, "%.*s%s", static_cast<int>(room), name, suffix);
        f = std::fopen(buf, mode);
        if (f != nullptr) return f;
    }
    *status_p = env_error(env, 1423, name);
    return nullptr;
}

FILE *trv_wfopen(const char *name, const char *mode, int allowgz) {
    if (name == nullptr) return nullptr;
    if (allowgz && trv_hasgz(name)) {
        FILE *test = std::fopen(name, "wb");
        if (test == nullptr) return nullptr;
        std::fclose(test);
        return gz_popen("gzip -c > ", name, "", "w");
    }
    return std::fopen(name, mode);
}

/* gzip ends with 0, with 1 on an error and with 2 after a mere warning
 * (trailing garbage ignored); the shell adds 127 for a missing program. */
static bool pipe_failed(int rc) {
    return rc == -1 || !WIFEXITED(rc) || (WEXITSTATUS(rc) != 0 && WEXITSTATUS(rc) != 2);
}

int trv_fclose(const char *name, FILE **file) {
    if (*file == nullptr) return 0;
    bool failed;
    if (trv_hasgz(name))
        failed = pipe_failed(pclose(*file));
    else
        failed = std::fclose(*file) != 0;
    *file = nullptr;
    return failed ? 1 : 0;
}

int trv_rclose(TRVenv env, const char *name, FILE **file, int status) {
    if (*file == nullptr) return status;
    bool failed = false;
    if (status == 0) {
        if (trv_hasgz(name)) {
            char buf[4096];
            while (std::fread(buf, 1, sizeof buf, *file) > 0) {
            }
        }
        failed = std::ferror(*file) != 0;
    }
    failed |= trv_fclose(name, file) != 0 && trv_hasgz(name);
    if (status == 0 && failed) status = env_error(env, 1423, name);
    return status;
}

void trv_stem(char *out, const char *name) {
    size_t n = std::strlen(name);
    if (trv_hasgz(name)) n -= name[n - 1] == 'Z' && name[n - 2] == '.' ? 2 : 3;
    size_t dot = n;
    for (size_t i = n; i > 0; i--) {
        if (name[i - 1] == '.') {
            dot = i - 1;
            break;
        }
        if (name[i - 1] == '/') break;
    }
    std::memcpy(out, name, dot);
    out[dot] = '\0';
}

int trv_tempfile(TRVenv env, const char *directory, const char *stem,
                 char **name_p) {
    *name_p = nullptr;
    char *name = trv_alloc<char>(522);
    if (name == nullptr) return 1001;
    std::snprintf(name, 522, "%s/%sXXXXXX", directory != nullptr ? directory : ".",
                  stem != nullptr ? stem : "");
    int fd = mkstemp(name);
    if (fd < 0) {
        int status = env_error(env, 1422, name);
        trv_free(&name);
        return status;
    }
    close(fd);
    *name_p = name;
    return 0;
}

/* ---- buffered line input -------------------------------------------------------- */

#define RW_BLOCK 65536

int rw_open_input(rw_input *in, FILE *fp) {
    in->fp = fp;
    in->pos = in->len = 0;
    in->eof = false;
    in->bylines = false;
    in->block = trv_alloc<char>(RW_BLOCK);
    return in->block == nullptr ? 1001 : 0;
}

void rw_close_input(rw_input *in) { trv_free(&in->block); }

int rw_gets(rw_input *in, char *buf, int size) {
    if (in->bylines) {
        if (std::fgets(buf, size, in->fp) == nullptr) return 0;
        return static_cast<int>(std::strlen(buf));
    }
    int n = 0;
    while (n < size - 1) {
        if (in->pos == in->len) {
            if (in->eof) break;
            in->len = std::fread(in->block, 1, RW_BLOCK, in->fp);
            in->pos = 0;
            if (in->len == 0) {
                in->eof = true;
                break;
            }
        }
        size_t room = static_cast<size_t>(size - 1 - n);
        size_t avail = in->len - in->pos;
        if (avail > room) avail = room;
        const char *src = in->block + in->pos;
        const void *nl = std::memchr(src, '\n', avail);
        size_t take = nl != nullptr ? static_cast<const char *>(nl) - src + 1 : avail;
        std::memcpy(buf + n, src, take);
        n += static_cast<int>(take);
        in->pos += take;
        if (nl != nullptr) break;
    }
    buf[n] = '\0';
    return n;
}

int rw_getline(rw_input *in, char **buf, int *cap, int *len) {
    int n = 0;
    for (;;) {
        int got = rw_gets(in, *buf + n, *cap - n);
        n += got;
        if (got == 0 || (*buf)[n - 1] == '\n' || n < *cap - 1) break;
        if (*cap > 1000000000) return 1001;
        if (trv_grow(buf, static_cast<size_t>(2 * *cap)) != 0) return 1001;
        *cap *= 2;
    }
    *len = n;
    return 0;
}

/* ---- the record of a read model ------------------------------------------------ */

void rm_free(read_model *m) {
    trv_free(&m->probname);
    trv_free(&m->obj), trv_free(&m->rhs), trv_free(&m->sense);
    trv_free(&m->matbeg), trv_free(&m->matcnt), trv_free(&m->matind);
    trv_free(&m->matval);
    trv_free(&m->lb), trv_free(&m->ub), trv_free(&m->rngval);
    trv_free(&m->objname), trv_free(&m->rhsname), trv_free(&m->rngname);
    trv_free(&m->bndname);
    trv_free(&m->colname), trv_free(&m->colnamestore);
    trv_free(&m->rowname), trv_free(&m->rownamestore);
    trv_free(&m->freerowind), trv_free(&m->rimtype), trv_free(&m->rimbeg);
    trv_free(&m->rimcnt), trv_free(&m->rimind), trv_free(&m->rimval);
    trv_free(&m->rimname), trv_free(&m->rimnamestore);
    trv_free(&m->ctype);
    trv_free(&m->sostype), trv_free(&m->sospri), trv_free(&m->sosbeg);
    trv_free(&m->sosind), trv_free(&m->sosref);
    trv_free(&m->sosname), trv_free(&m->sosnamestore);
    trv_free(&m->qmatbeg), trv_free(&m->qmatcnt), trv_free(&m->qmatind);
    trv_free(&m->qmatval);
    for (int k = 0; k < 2; k++) {
        trv_free(&m->cutrhs[k]), trv_free(&m->cutsense[k]);
        trv_free(&m->cutbeg[k]), trv_free(&m->cutind[k]), trv_free(&m->cutval[k]);
        trv_free(&m->cutname[k]), trv_free(&m->cutnamestore[k]);
    }
    std::memset(m, 0, sizeof *m);
}

int rm_names(int n, int space, const char *const *src, char ***names_p,
             char **store_p, int *bytes_p) {
    long bytes = 17L * (space - n);
    for (int k = 0; k < n; k++) bytes += static_cast<long>(std::strlen(src[k])) + 1;
    if (bytes < 1) bytes = 1;
    if (bytes >= 2100000000L) return 1012;
    char **names = trv_zalloc<char *>(space);
    char *store = trv_alloc<char>(bytes);
    if (names == nullptr || store == nullptr) {
        trv_free(&names);
        trv_free(&store);
        return 1001;
    }
    char *p = store;
    for (int k = 0; k < n; k++) {
        size_t len = std::strlen(src[k]) + 1;
        std::memcpy(p, src[k], len);
        names[k] = p;
        p += len;
    }
    *names_p = names;
    *store_p = store;
    *bytes_p = static_cast<int>(bytes);
    return 0;
}

int rm_quad(read_model *m, int nq, const int *qa, const int *qb, const double *qv,
            bool objective_terms) {
    int n = m->ncols;
    int cap = objective_terms ? 2 * nq : nq;
    m->qmatbeg = trv_zalloc<int>(n + 1);
    m->qmatcnt = trv_zalloc<int>(n);
    m->qmatind = trv_alloc<int>(cap);
    m->qmatval = trv_alloc<double>(cap);
    if (!m->qmatbeg || !m->qmatcnt || !m->qmatind || !m->qmatval) return 1001;
    m->nquad = cap;
    for (int k = 0; k < nq; k++) {
        m->qmatcnt[qb[k]]++;
        if (objective_terms && qa[k] != qb[k]) m->qmatcnt[qa[k]]++;
    }
    for (int j = 0; j < n; j++) m->qmatbeg[j + 1] = m->qmatbeg[j] + m->qmatcnt[j];
    for (int j = 0; j < n; j++) m->qmatcnt[j] = 0;
    auto put = [m](int i, int j, double v) {
        int p = m->qmatbeg[j] + m->qmatcnt[j]++;
        m->qmatind[p] = i;
        m->qmatval[p] = v;
    };
    for (int k = 0; k < nq; k++) {
        if (!objective_terms) {
            put(qa[k], qb[k], qv[k]);
        } else if (qa[k] == qb[k]) {
            put(qa[k], qa[k], 2.0 * qv[k]);
        } else {
            put(qa[k], qb[k], qv[k]);
            put(qb[k], qa[k], qv[k]);
        }
    }
    for (int j = 0; j < n; j++) {
        int b = m->qmatbeg[j], c = m->qmatcnt[j];
        sorted_pairs(c, m->qmatind + b, m->qmatval + b);
        int out = 0;
        for (int k = 0; k < c; k++) {
            if (out > 0 && m->qmatind[b + out - 1] == m->qmatind[b + k]) {
                m->qmatval[b + out - 1] += m->qmatval[b + k];
            } else {
                m->qmatind[b + out] = m->qmatind[b + k];
                m->qmatval[b + out++] = m->qmatval[b + k];
            }
        }
        m->qmatcnt[j] = out;
    }
    return 0;
}

int rm_out_check(const rm_out *o) {
    if (!o->numcols || !o->numrows || !o->objsen || !o->obj || !o->rhs || !o->sense ||
        !o->matbeg || !o->matcnt || !o->matind || !o->matval || !o->lb || !o->ub)
        return 1004;
    return 0;
}

template <class T> static void give(T **dst, T **src) {
    if (dst == nullptr) return;
    *dst = *src;
    *src = nullptr;
}

static void give_int(int *dst, int v) {
    if (dst != nullptr) *dst = v;
}

void rm_give(read_model *m, const rm_out *o) {
    give_int(o->qnzspace, m->qmatind != nullptr ? m->nquad : 0);
    give_int(o->numcols, m->ncols);
    give_int(o->numrows, m->nrows);
    give_int(o->numrims, m->nrims);
    give_int(o->objsen, m->objsen);
    give(o->obj, &m->obj), give(o->rhs, &m->rhs), give(o->sense, &m->sense);
    give(o->matbeg, &m->matbeg), give(o->matcnt, &m->matcnt);
    give(o->matind, &m->matind), give(o->matval, &m->matval);
    give(o->lb, &m->lb), give(o->ub, &m->ub), give(o->rngval, &m->rngval);
    give(o->freerowind, &m->freerowind), give(o->rimtype, &m->rimtype);
    give(o->rimbeg, &m->rimbeg), give(o->rimcnt, &m->rimcnt);
    give(o->rimind, &m->rimind), give(o->rimval, &m->rimval);
    give(o->dataname, &m->probname), give(o->objname, &m->objname);
    give(o->rhsname, &m->rhsname), give(o->rngname, &m->rngname);
    give(o->bndname, &m->bndname);
    give(o->colname, &m->colname), give(o->colnamestore, &m->colnamestore);
    give(o->rowname, &m->rowname), give(o->rownamestore, &m->rownamestore);
    give(o->rimname, &m->rimname), give(o->rimnamestore, &m->rimnamestore);
    give_int(o->colspace, m->colspace);
    give_int(o->rowspace, m->rowspace);
    give_int(o->nzspace, m->nzspace);
    give_int(o->rimspace, m->rimspace);
    give_int(o->rimnzspace, m->rimnzspace);
    give_int(o->colnamespace, m->colnamespace);
    give_int(o->rownamespace, m->rownamespace);
    give_int(o->rimnamespace, m->rimnamespace);
    give(o->ctype, &m->ctype);
    give_int(o->numsos, m->numsos);
    give_int(o->numsosnz, m->numsosnz);
    give(o->sostype, &m->sostype), give(o->sosbeg, &m->sosbeg);
    give(o->sosind, &m->sosind), give(o->sosref, &m->sosref);
    give(o->qmatbeg, &m->qmatbeg), give(o->qmatcnt, &m->qmatcnt);
    give(o->qmatind, &m->qmatind), give(o->qmatval, &m->qmatval);
    rm_free(m);
}

/* ---- dispatch -------------------------------------------------------------------- */

enum { FMT_NONE = 0, FMT_LP, FMT_MPS, FMT_PAR, FMT_SAV, FMT_RMP, FMT_RLP };

static bool word_is(const char *word, const char *upper) {
    for (; *word != '\0' && *upper != '\0'; word++, upper++)
        if (std::toupper(static_cast<unsigned char>(*word)) != *upper) return false;
    return *word == '\0' && *upper == '\0';
}

/* The reading format from a type word, or else from the file's suffix. */
static int read_format(const char *filename, const char *filetype) {
    static const char *const words[] = {"LP", "MPS", "PAR", "SAV"};
    static const int codes[] = {FMT_LP, FMT_MPS, FMT_PAR, FMT_SAV};
    if (filetype != nullptr) {
        if (std::strlen(filetype) > 3) return FMT_NONE;
        for (int k = 0; k < 4; k++)
            if (word_is(filetype, words[k])) return codes[k];
        return FMT_NONE;
    }
    static const char *const ends[] = {".LP", ".MPS", ".PAR", ".SAV"};
    for (int k = 0; k < 4; k++)
        if (ends_with(filename, ends[k])) return codes[k];
    char buf[16];
    for (int k = 0; k < 4; k++) {
        std::snprintf(buf, sizeof buf, "%s.GZ", ends[k]);
        if (ends_with(filename, buf)) return codes[k];
        std::snprintf(buf, sizeof buf, "%s.Z", ends[k]);
        if (ends_with(filename, buf)) return codes[k];
    }
    return FMT_NONE;
}

/* A format the dispatcher knows whose reader or writer is not part of the
 * library yet. */
#define RW_NOT_BUILT 1003

/* Copies what was read into the problem; the problem keeps its old model
 * until here. */
static int readcopy_apply(TRVenv env, TRVlp lp, read_model *m) {
    if (m->nints > 0 || m->numsos > 0)
        TRVmsg(env->warnchannel, "Problem contains integer declarations, ignored.\n");
    if (m->nquad > 0)
        TRVmsg(env->warnchannel,
               "Problem contains quadratic objective coefficients, ignored.\n");
    /* the objective's name is taken first, so that no failure can come
     * after the model has been replaced */
    char *objname = nullptr;
    if (m->objname != nullptr) {
        objname = trv_strdup(m->objname);
        if (objname == nullptr) return 1001;
    }
    int status = lp_copy(env, lp, m->ncols, m->nrows, m->objsen, m->obj, m->rhs,
                         m->sense, m->matbeg, m->matcnt, m->matind, m->matval, m->lb,
                         m->ub, m->rngval, m->colname, m->rowname);
    if (status == 0 && objname != nullptr) {
        trv_free(&lp->lpdata->objname);
        lp->lpdata->objname = objname;
        objname = nullptr;
    }
    trv_free(&objname);
    return status;
}

TRV_EXPORT int TRVreadcopyprob(TRVenv env, TRVlp lp, const char *filename,
                               const char *filetype) {
    int status = call_enter(&env, &lp, CALL_SINGLE | CALL_COPIED);
    if (status == 0 && filename == nullptr) status = 1421;
    if (status == 0) {
        read_model m;
        std::memset(&m, 0, sizeof m);
        switch (read_format(filename, filetype)) {
        case FMT_LP:
            status = lp_read(env, filename, RM_INTS | RM_QUAD, &m);
            break;
        case FMT_MPS:
            status = mps_read(env, filename, RM_INTS | RM_QUAD, &m);
            break;
        case FMT_PAR:
        case FMT_SAV:
            status = RW_NOT_BUILT;
            break;
        default:
            status = 1424;
            break;
        }
        if (status == 0) status = readcopy_apply(env, lp, &m);
        rm_free(&m);
    }
    return call_leave(env, status);
}

/* The writing format: the type word, or the name's extension before any
 * compression suffix; at most 3 characters. */
static int write_format(const char *filename, const char *filetype) {
    char ext[8];
    if (filetype != nullptr) {
        if (std::strlen(filetype) > 3) return FMT_NONE;
        std::strcpy(ext, filetype);
    } else {
        size_t n = std::strlen(filename);
        if (trv_hasgz(filename)) n -= filename[n - 1] == 'Z' && filename[n - 2] == '.' ? 2 : 3;
        size_t dot = n;
        while (dot > 0 && filename[dot - 1] != '.' && filename[dot - 1] != '/') dot--;
        if (dot == 0 || filename[dot - 1] != '.' || n - dot > 3 || n == dot)
            return FMT_NONE;
        std::memcpy(ext, filename + dot, n - dot);
        ext[n - dot] = '\0';
    }
    if (word_is(ext, "MPS")) return FMT_MPS;
    if (word_is(ext, "RMP") || word_is(ext, "REW")) return FMT_RMP;
    if (word_is(ext, "LP")) return FMT_LP;
    if (word_is(ext, "RLP")) return FMT_RLP;
    if (word_is(ext, "SAV")) return FMT_SAV;
    return FMT_NONE;
}

TRV_EXPORT int TRVwriteprob(TRVenv env, TRVlp lp, const char *filename,
                            const char *filetype) {
    int status = call_enter(&env, &lp, CALL_VIEW);
    if (status != 0)
        ;
    else if (filename == nullptr)
        status = 1421;
    else if (write_format(filename, filetype) == FMT_NONE)
        status = 1424;
    else
        status = RW_NOT_BUILT; /* the writers come with their formats */
    return call_leave(env, status);
}
