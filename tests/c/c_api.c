/* A C99 program against trvlib.h alone: open, parameters, channels, error
 * texts, loading and close. Exit status 0 when every check holds. */
#include <stdio.h>
#include <string.h>

#include "trvlib.h"

static int failures = 0;
#define CHECK(cond)                                                     \
    do {                                                                \
        if (!(cond)) {                                                  \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__,      \
                    __LINE__, #cond);                                   \
            failures++;                                                 \
        }                                                               \
    } while (0)

static char captured[4096];
static void capture(void *handle, const char *text) {
    (void)handle;
    if (strlen(captured) + strlen(text) < sizeof captured)
        strcat(captured, text);
}

int main(void) {
    int status = -1, ival = 0;
    double dval = 0.0;
    char buf[TRV_MSGBUF];
    TRVenv env = TRVopenTORVA(&status);
    TRVchannel res, warn, err, log;
    TRVlp lp;
    double obj[2] = {1.0, 2.0}, rhs[1] = {4.0}, lb[3] = {0, 0, 0},
           ub[3] = {10, 10, 0};
    char sense[1] = {'R'};
    double rng[1] = {2.0};
    int matbeg[3] = {0, 1, 0}, matcnt[3] = {1, 1, 0}, matind[3] = {0, 0, 0};
    double matval[3] = {1.0, 1.0, 0.0};
    double obj3[3] = {1.0, 2.0, 0.0};

    (void)obj;
    CHECK(env != NULL && status == 0);
    CHECK(strcmp(TRVversion(env), "7.1.0") == 0);
    CHECK(TRVgetchannels(env, &res, &warn, &err, &log) == 0);
    CHECK(TRVaddfuncdest(env, err, NULL, capture) == 0);

    CHECK(TRVsetintparam(env, 1020, 77) == 0);
    CHECK(TRVgetintparam(env, 1020, &ival) == 0 && ival == 77);
    CHECK(TRVsetdblparam(env, 1014, 1e-7) == 0);
    CHECK(TRVgetdblparam(env, 1014, &dval) == 0 && dval == 1e-7);
    CHECK(TRVsetintparam(env, 1020, -1) == TRVERR_PARAMETER_VALUE_TOO_SMALL);
    CHECK(strcmp(captured, "TORVA Error  1014: Parameter value too small.\n") == 0);

    CHECK(TRVgeterrorstring(NULL, 1001, buf) == buf);
    CHECK(strcmp(buf, "TORVA Error  1001: Out of memory.\n") == 0);
    CHECK(TRVgetstatstring(env, TRV_STAT_OPTIMAL, buf) != NULL);
    CHECK(strcmp(buf, "optimal") == 0);

    /* memory model 1: the library writes the range column into the
     * caller's spare slots */
    lp = TRVloadlp(env, "c", 2, 1, 1, obj3, rhs, sense, matbeg, matcnt, matind,
                   matval, lb, ub, rng, 3, 1, 3);
    CHECK(lp != NULL);
    CHECK(TRVgetnumcols(env, lp) == 2);
    CHECK(TRVgetnumrows(env, lp) == 1);
    CHECK(TRVgetnumnz(env, lp) == 2);
    CHECK(TRVgetprobtype(env, lp) == 0);
    CHECK(TRVgetstat(env, lp) == 0);
    CHECK(ub[2] == 2.0 && matval[2] == -1.0);
    CHECK(TRVfreeprob(env, &lp) == 0 && lp == NULL);

    CHECK(TRVcloseTORVA(&env) == 0 && env == NULL);
    if (failures == 0) printf("c_api: all checks passed\n");
    return failures != 0;
}
