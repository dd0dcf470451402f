/*
 * torva - the command-line optimiser: reads a model file, solves it and
 * reports. Written against trvlib.h alone, as any C caller would.
 *
 * Exit status: 0 when the run ended with a solution status, 1 for a library
 * error (its message on stderr), 2 for bad usage.
 */
#define _POSIX_C_SOURCE 200809L
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "trvlib.h"

static const char usage_text[] =
    "NAME\n"
    "    torva - solve a linear program with the torva71 library\n"
    "\n"
    "SYNOPSIS\n"
    "    torva [OPTIONS] MODEL\n"
    "\n"
    "DESCRIPTION\n"
    "    Reads MODEL (LP, MPS or SAV format, chosen by the suffix; a .gz or .Z\n"
    "    suffix is read through gzip), solves it and prints the optimiser's log\n"
    "    followed by a summary:\n"
    "\n"
    "        Solution status: <status text>\n"
    "        Objective value: <objective>      (when a solution exists)\n"
    "        Iterations: <count>\n"
    "        Solve time: <seconds> s\n"
    "\n"
    "OPTIONS\n"
    "    --format lp|mps|sav    read MODEL in this format, whatever its suffix\n"
    "    --method NAME          auto (default: the dual simplex), primal, dual\n"
    "    --param NUMBER=VALUE   set a parameter; repeatable. The value is read as\n"
    "                           an integer, a double or a string, as the\n"
    "                           parameter's type asks\n"
    "    --time-limit SECONDS   stop after this time (parameter 1039)\n"
    "    --iteration-limit N    stop after N simplex iterations (parameter 1020)\n"
    "    --quiet                no optimiser log, the summary only\n"
    "    --log FILE             also write all output to FILE\n"
    "    --write FILE           write the model as read, in the format of FILE's\n"
    "                           suffix, before solving\n"
    "    --solution FILE        write the value of every variable and row, with\n"
    "                           names, to FILE as plain text\n"
    "    --start FILE           start from the basis in FILE (BAS format)\n"
    "    --save-basis FILE      write the final basis to FILE (BAS format)\n"
    "    --help                 this text\n"
    "    --version              the library's version\n"
    "\n"
    "EXIT STATUS\n"
    "    0 the run ended with a solution status; 1 a library error; 2 bad usage.\n";

static double now_seconds(void) {
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (double)ts.tv_sec + 1e-9 * (double)ts.tv_nsec;
}

static int usage_error(const char *fmt, const char *arg) {
    fprintf(stderr, "torva: ");
    fprintf(stderr, fmt, arg);
    fprintf(stderr, "\nTry 'torva --help'.\n");
    return 2;
}

/* Library errors are printed by the library on its error channel, which is
 * attached to stderr; this only ends the run. */
static int lib_fail(TRVenv *env, TRVlp *lp, FILE *logf, int status) {
    if (*lp != NULL) TRVfreeprob(*env, lp);
    TRVflushstdchannels(*env);
    TRVcloseTORVA(env);
    if (logf != NULL) fclose(logf);
    return status != 0 ? 1 : 0;
}

/* Sets parameter NUMBER=VALUE by its type; 0, or a library code. */
static int set_param(TRVenv env, const char *setting, int *bad_usage) {
    char *end = NULL;
    long num;
    int ival;
    double dval;
    char sval[512];
    const char *eq = strchr(setting, '=');
    *bad_usage = 0;
    if (eq == NULL || eq == setting) {
        *bad_usage = 1;
        return 0;
    }
    errno = 0;
    num = strtol(setting, &end, 10);
    if (end != eq || errno != 0 || num < -2147483647L || num > 2147483647L) {
        *bad_usage = 1;
        return 0;
    }
    if (TRVinfointparam(env, (int)num, &ival, NULL, NULL) == 0) {
        long v;
        errno = 0;
        v = strtol(eq + 1, &end, 10);
        if (*end != '\0' || end == eq + 1 || errno != 0 || v < -2147483647L ||
            v > 2147483647L) {
            *bad_usage = 1;
            return 0;
        }
        return TRVsetintparam(env, (int)num, (int)v);
    }
    if (TRVinfodblparam(env, (int)num, &dval, NULL, NULL) == 0) {
        double v;
        errno = 0;
        v = strtod(eq + 1, &end);
        if (*end != '\0' || end == eq + 1 || errno != 0) {
            *bad_usage = 1;
            return 0;
        }
        return TRVsetdblparam(env, (int)num, v);
    }
    if (TRVinfostrparam(env, (int)num, sval) == 0)
        return TRVsetstrparam(env, (int)num, eq + 1);
    /* an unknown number: the library prints its own text */
    return TRVsetintparam(env, (int)num, 0);
}

/* A status that leaves a point satisfying the constraints: the only ones
 * with an objective value worth printing. */
static int has_solution(int stat) {
    switch (stat) {
    case TRV_STAT_OPTIMAL:
    case TRV_STAT_ITERATION_LIMIT_EXCEEDED_FEASIBLE:
    case TRV_STAT_TIME_LIMIT_EXCEEDED_FEASIBLE:
    case TRV_STAT_NON_OPTIMAL_FEASIBLE:
    case TRV_STAT_OPTIMAL_UNSCALED_INFEASIBILITIES:
    case TRV_STAT_ABORTED_FEASIBLE:
        return 1;
    default:
        return 0;
    }
}

static int write_solution(TRVenv env, TRVlp lp, const char *path) {
    int n = TRVgetnumcols(env, lp), m = TRVgetnumrows(env, lp);
    int lpstat = 0, k, surplus = 0, status = 0;
    double obj = 0.0;
    size_t cells = (size_t)(n > m ? n : m) + 1;
    double *x = (double *)calloc(cells, sizeof(double));
    double *pi = (double *)calloc(cells, sizeof(double));
    double *slack = (double *)calloc(cells, sizeof(double));
    double *dj = (double *)calloc(cells, sizeof(double));
    char **cname = (char **)calloc((size_t)n + 1, sizeof(char *));
    char **rname = (char **)calloc((size_t)m + 1, sizeof(char *));
    char *cstore = NULL, *rstore = NULL;
    FILE *f = NULL;
    if (!x || !pi || !slack || !dj || !cname || !rname) {
        status = 1001;
        goto done;
    }
    status = TRVsolution(env, lp, &lpstat, &obj, x, pi, slack, dj);
    if (status != 0) goto done;
    /* names, when the model has them: probe the size, then fetch */
    if (n > 0 && TRVgetcolname(env, lp, NULL, NULL, 0, &surplus, 0, n - 1) == 1207 &&
        surplus < 0) {
        cstore = (char *)malloc((size_t)-surplus);
        if (cstore == NULL ||
            TRVgetcolname(env, lp, cname, cstore, -surplus, &surplus, 0, n - 1) != 0)
            cname[0] = NULL;
    }
    if (m > 0 && TRVgetrowname(env, lp, NULL, NULL, 0, &surplus, 0, m - 1) == 1207 &&
        surplus < 0) {
        rstore = (char *)malloc((size_t)-surplus);
        if (rstore == NULL ||
            TRVgetrowname(env, lp, rname, rstore, -surplus, &surplus, 0, m - 1) != 0)
            rname[0] = NULL;
    }
    f = fopen(path, "w");
    if (f == NULL) {
        fprintf(stderr, "torva: cannot write '%s': %s\n", path, strerror(errno));
        status = -1;
        goto done;
    }
    fprintf(f, "objective %.12g\n\nvariable value reduced_cost\n", obj);
    for (k = 0; k < n; k++) {
        if (cname[0] != NULL)
            fprintf(f, "%s %.12g %.12g\n", cname[k], x[k] + 0.0, dj[k] + 0.0);
        else
            fprintf(f, "x%d %.12g %.12g\n", k + 1, x[k] + 0.0, dj[k] + 0.0);
    }
    fprintf(f, "\nrow slack dual\n");
    for (k = 0; k < m; k++) {
        if (rname[0] != NULL)
            fprintf(f, "%s %.12g %.12g\n", rname[k], slack[k] + 0.0, pi[k] + 0.0);
        else
            fprintf(f, "c%d %.12g %.12g\n", k + 1, slack[k] + 0.0, pi[k] + 0.0);
    }
    fclose(f);
done:
    free(x), free(pi), free(slack), free(dj);
    free(cname), free(rname), free(cstore), free(rstore);
    return status;
}

int main(int argc, char **argv) {
    const char *model = NULL, *format = NULL, *method = "auto";
    const char *logpath = NULL, *writepath = NULL, *solpath = NULL;
    const char *startpath = NULL, *basispath = NULL;
    const char *params[256];
    int nparams = 0, quiet = 0, i, status = 0, lpstat = 0, bad = 0;
    double timelimit = -1.0, t0, t1, obj = 0.0;
    long itlimit = -1;
    TRVenv env;
    TRVlp lp = NULL;
    TRVchannel res, warn, err, logc;
    FILE *logf = NULL;
    char text[TRV_MSGBUF];

    for (i = 1; i < argc; i++) {
        const char *a = argv[i];
        const char *next = i + 1 < argc ? argv[i + 1] : NULL;
        if (strcmp(a, "--help") == 0 || strcmp(a, "-h") == 0) {
            fputs(usage_text, stdout);
            return 0;
        } else if (strcmp(a, "--version") == 0) {
            printf("torva 7.1.0\n");
            return 0;
        } else if (strcmp(a, "--quiet") == 0) {
            quiet = 1;
        } else if (strcmp(a, "--format") == 0 || strcmp(a, "--method") == 0 ||
                   strcmp(a, "--param") == 0 || strcmp(a, "--time-limit") == 0 ||
                   strcmp(a, "--iteration-limit") == 0 || strcmp(a, "--log") == 0 ||
                   strcmp(a, "--write") == 0 || strcmp(a, "--solution") == 0 ||
                   strcmp(a, "--start") == 0 || strcmp(a, "--save-basis") == 0) {
            char *end = NULL;
            if (next == NULL) return usage_error("option '%s' needs a value", a);
            i++;
            if (strcmp(a, "--format") == 0) {
                if (strcmp(next, "lp") && strcmp(next, "mps") && strcmp(next, "sav"))
                    return usage_error("unknown format '%s' (lp, mps or sav)", next);
                format = next;
            } else if (strcmp(a, "--method") == 0) {
                if (strcmp(next, "auto") && strcmp(next, "primal") && strcmp(next, "dual"))
                    return usage_error("unknown method '%s' (auto, primal or dual)", next);
                method = next;
            } else if (strcmp(a, "--param") == 0) {
                if (nparams == 256) return usage_error("too many %s options", a);
                params[nparams++] = next;
            } else if (strcmp(a, "--time-limit") == 0) {
                timelimit = strtod(next, &end);
                if (*end != '\0' || end == next || timelimit < 0)
                    return usage_error("bad time limit '%s'", next);
            } else if (strcmp(a, "--iteration-limit") == 0) {
                itlimit = strtol(next, &end, 10);
                if (*end != '\0' || end == next || itlimit < 0 || itlimit > 2100000000L)
                    return usage_error("bad iteration limit '%s'", next);
            } else if (strcmp(a, "--log") == 0) {
                logpath = next;
            } else if (strcmp(a, "--write") == 0) {
                writepath = next;
            } else if (strcmp(a, "--start") == 0) {
                startpath = next;
            } else if (strcmp(a, "--save-basis") == 0) {
                basispath = next;
            } else {
                solpath = next;
            }
        } else if (a[0] == '-' && a[1] != '\0') {
            return usage_error("unknown option '%s'", a);
        } else if (model != NULL) {
            return usage_error("more than one model given ('%s')", a);
        } else {
            model = a;
        }
    }
    if (model == NULL) return usage_error("%s", "no model file given");

    env = TRVopenTORVA(&status);
    if (env == NULL) {
        fprintf(stderr, "%s", TRVgeterrorstring(NULL, status, text) ? text : "torva: cannot open the library\n");
        return 1;
    }
    TRVgetchannels(env, &res, &warn, &err, &logc);
    TRVaddfpdest(env, err, stderr);
    TRVaddfpdest(env, warn, stderr);
    if (!quiet) {
        TRVaddfpdest(env, res, stdout);
        TRVaddfpdest(env, logc, stdout);
    }
    if (logpath != NULL) {
        logf = fopen(logpath, "w");
        if (logf == NULL) {
            fprintf(stderr, "torva: cannot write log file '%s': %s\n", logpath, strerror(errno));
            TRVcloseTORVA(&env);
            return 2;
        }
        TRVsetlogfile(env, logf);
    }
    for (i = 0; i < nparams; i++) {
        status = set_param(env, params[i], &bad);
        if (bad) {
            TRVcloseTORVA(&env);
            if (logf) fclose(logf);
            return usage_error("bad --param '%s' (NUMBER=VALUE)", params[i]);
        }
        if (status != 0) return lib_fail(&env, &lp, logf, status);
    }
    if (timelimit >= 0 && (status = TRVsetdblparam(env, 1039, timelimit)) != 0)
        return lib_fail(&env, &lp, logf, status);
    if (itlimit >= 0 && (status = TRVsetintparam(env, 1020, (int)itlimit)) != 0)
        return lib_fail(&env, &lp, logf, status);
    if (strcmp(method, "primal") == 0) status = TRVsetintparam(env, 1062, 1);
    if (strcmp(method, "dual") == 0) status = TRVsetintparam(env, 1062, 2);
    if (status != 0) return lib_fail(&env, &lp, logf, status);

    lp = TRVcreateprob(env, &status, model);
    if (lp == NULL) return lib_fail(&env, &lp, logf, status);
    status = TRVreadcopyprob(env, lp, model, format);
    if (status != 0) return lib_fail(&env, &lp, logf, status);
    if (writepath != NULL && (status = TRVwriteprob(env, lp, writepath, NULL)) != 0)
        return lib_fail(&env, &lp, logf, status);
    if (startpath != NULL && (status = TRVreadcopybase(env, lp, startpath)) != 0)
        return lib_fail(&env, &lp, logf, status);

    t0 = now_seconds();
    status = TRVlpopt(env, lp);
    t1 = now_seconds();
    if (status != 0) return lib_fail(&env, &lp, logf, status);

    TRVflushstdchannels(env);
    fflush(stdout);
    status = TRVsolution(env, lp, &lpstat, &obj, NULL, NULL, NULL, NULL);
    if (TRVgetstatstring(env, TRVgetstat(env, lp), text) == NULL)
        snprintf(text, sizeof text, "status %d", TRVgetstat(env, lp));
    printf("Solution status: %s\n", text);
    if (status == 0 && has_solution(lpstat)) printf("Objective value: %.15g\n", obj);
    printf("Iterations: %d\n", TRVgetitcnt(env, lp));
    printf("Solve time: %.3f s\n", t1 - t0);
    if (logf != NULL)
        fprintf(logf, "Solution status: %s\nIterations: %d\nSolve time: %.3f s\n", text,
                TRVgetitcnt(env, lp), t1 - t0);
    status = 0;
    if (basispath != NULL && TRVcangetbase(env, lp)) {
        int st = TRVmbasewrite(env, lp, basispath);
        if (st != 0) return lib_fail(&env, &lp, logf, st);
    }
    if (solpath != NULL) {
        int st = write_solution(env, lp, solpath);
        if (st > 0) return lib_fail(&env, &lp, logf, st);
        if (st < 0) status = 1;
    }
    TRVfreeprob(env, &lp);
    TRVsetlogfile(env, NULL);
    TRVcloseTORVA(&env);
    if (logf != NULL) fclose(logf);
    return status;
}
