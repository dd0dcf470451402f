/*
 * uset.cpp - the parameter system. Five families (LP, MIP, barrier, QP,
 * network) each keep their current values in one block and their default,
 * minimum and maximum in three blocks of the same shape. A parameter number
 * maps to one slot of its family; int, double and string numbers are
 * separate, so asking for an int by the number of a double answers 1013.
 */
#include <cstring>

#include "trv.h"

namespace {

#define PAR_NCPU (-7777.0) /* the processor count, clamped to maxthreads */

struct par_row {
    int num;
    int type;
    double def, min, max;
};

const par_row par_lp_rows[] = {
    {1001, PAR_INT, 1, 0, 1},  /* advanced start indicator */
    {1002, PAR_INT, 10, 0, 2100000000},  /* aggregator fill  */
    {1003, PAR_INT, -1, -1, 2100000000},  /* aggregator application limit; -1 automatic  */
    {1004, PAR_INT, 50000, 1, 2100000000},  /* interval in iterations of the basis recovery file  */
    {1005, PAR_DBL, 3.0, 1.1, 1e+75},  /* fill factor kept per problem  */
    {1006, PAR_INT, 1, 1, 2},  /* clock type: 1 or 2 (both read the same clock) */
    {1007, PAR_INT, 1, -1, 1},  /* crash ordering  */
    {1008, PAR_INT, 0, 0, 1},  /* dependency indicator  */
    {1009, PAR_INT, 0, 0, 4},  /* start algorithm hint, also set by the MIP driver ; accepted up to 5, see below */
    {1010, PAR_INT, 0, 0, 2100000000},  /* section count of partial pricing  */
    {1011, PAR_INT, 500, 0, 268435450},  /* rim vectors allowance */
    {1012, PAR_INT, 1000, 0, 268435450},  /* rim nonzeros allowance */
    {1013, PAR_DBL, 0.01, 0.0001, 0.99999},  /* Markowitz threshold  */
    {1014, PAR_DBL, 1e-06, 1e-09, 0.1},  /* optimality tolerance  */
    {1015, PAR_DBL, 1e-06, 1e-08, 1e+75},  /* starting perturbation size  */
    {1016, PAR_DBL, 1e-06, 1e-09, 0.1},  /* feasibility tolerance */
    {1017, PAR_INT, 0, 0, 2},  /* fast mode of the simplex  */
    {1018, PAR_INT, 0, 0, 1},
    {1019, PAR_INT, 1, 0, 2},  /* simplex display level */
    {1020, PAR_INT, 2100000000, 0, 2100000000},  /* simplex iteration limit  */
    {1021, PAR_INT, 4000, 0, 268435450},  /* reader allowance: rows */
    {1022, PAR_INT, 2, 1, 3},
    {1023, PAR_INT, 12000, 0, 268435450},  /* reader allowance: columns */
    {1024, PAR_INT, 60000, 0, 268435450},  /* reader allowance: nonzeros */
    {1025, PAR_DBL, -1e+75, 0.0, 0.0},  /* lower objective limit */
    {1026, PAR_DBL, 1e+75, 0.0, 0.0},  /* upper objective limit */
    {1027, PAR_INT, 0, 0, 1},  /* perturbation from the start  */
    {1028, PAR_INT, 0, 0, 2100000000},
    {1029, PAR_INT, 0, -1, 4},  /* primal pricing family  */
    {1030, PAR_INT, 1, 0, 1},  /* presolve indicator: 0 solves without presolve */
    {1031, PAR_INT, 0, 0, 10000},  /* update limit plus one; 0 automatic  */
    {1032, PAR_INT, 0, 0, 1},
    {1033, PAR_DBL, 3.0, 1.1, 1e+75},  /* fill factor kept per problem  */
    {1034, PAR_INT, 0, -1, 1},  /* scaling indicator  */
    {1035, PAR_INT, 0, 0, 1},  /* screen indicator: stdout on the three standard channels */
    {1036, PAR_INT, 1, 1, 1},  /* parallel norm start; only 1 is accepted  */
    {1037, PAR_INT, 10, 0, 2100000000},  /* singularity repair limit  */
    {1038, PAR_DBL, 1e-13, 1e-10, 0.9},
    {1039, PAR_DBL, 1e+75, 0.0, 1e+75},  /* time limit */
    {1041, PAR_INT, 0, 0, 1},  /* restart file  */
    {1043, PAR_INT, 1, 0, 1},  /* presolve message switch; env_report keys on it */
    {1044, PAR_INT, 0, -1, 1},  /* dual formulation switch of presolve: -1 keeps the primal, 0 automatic, 1 forms the dual  */
    {1045, PAR_DBL, 0.1, 0.001, 1.0},
    {1046, PAR_INT, 100, 0, 268435450},  /* extra rows on growth */
    {1047, PAR_INT, 100, 0, 268435450},  /* extra columns on growth */
    {1048, PAR_INT, 500, 0, 268435450},  /* extra nonzeros on growth */
    {1049, PAR_DBL, 1e-06, 1e-10, 0.1},  /* tolerance copied to the problem at load */
    {1050, PAR_DBL, 1e-06, 1e-10, 0.1},  /* tolerance copied to the problem at load */
    {1051, PAR_INT, 1, 0, 1},
    {1052, PAR_INT, -1, -1, 2100000000},  /* presolve application limit; -1 no limit  */
    {1054, PAR_INT, 0, 0, 1},
    {1055, PAR_DBL, 0.05, 1e-10, 0.99},  /* aggregator tolerance  */
    {1056, PAR_INT, 0, 0, 1},  /* data check switch */
    {1057, PAR_INT, 3, 0, 3},  /* TRV_PARAM_REDUCE: presolve reduction kinds  */
    {1058, PAR_INT, 1, 0, 1},  /* TRV_PARAM_PRELINEAR: non-linear reductions */
    {1059, PAR_INT, 0, 0, 1},  /* presolve switch (first of four) */
    {1060, PAR_INT, 0, 0, 1},  /* run TRVbasicpresolve at the start of presolve  */
    {1061, PAR_INT, 1, 0, 1},  /* aggregate rows by increasing length  */
    {1062, PAR_INT, 0, 0, 4},  /* LP method of TRVlpopt  */
    {1063, PAR_INT, 0, -1, 1},  /* hand-over between the simplex drivers */
    {1065, PAR_DBL, 128.0, 0.0, 1e+75},  /* working storage in megabytes  */
    {1066, PAR_INT, 0, -1, 1},  /* in-memory compression of the matrix during a solve, with value 1  */
    {1067, PAR_INT, 0, 0, 1},  /* parameter echo: prints each change on the results channel */
    {1068, PAR_INT, 0, 0, 1},  /* turns the length preference of the ratio test off  */
    {1069, PAR_INT, 0, 0, 1},  /* presolve switch (second of four) */
};

const par_row par_mip_rows[] = {
    {1042, PAR_INT, 0, 0, 1},  /* effective slack indicator of MIP presolve  */
    {2001, PAR_INT, 0, -1, 1},  /* branching direction */
    {2002, PAR_DBL, 0.01, 0.0, 1.0},  /* backtrack tolerance  */
    {2003, PAR_INT, 0, -1, 2},  /* clique cut level */
    {2004, PAR_INT, 2, 0, 2},  /* coefficient reduction setting  */
    {2005, PAR_INT, 0, -1, 2},  /* cover cut level */
    {2006, PAR_DBL, -1e+75, -1e+75, 1e+75},  /* lower cutoff */
    {2007, PAR_DBL, 1e+75, -1e+75, 1e+75},  /* upper cutoff */
    {2008, PAR_DBL, 1e-06, 0.0, 1e+20},  /* absolute gap */
    {2009, PAR_DBL, 0.0001, 0.0, 1.0},  /* relative gap */
    {2010, PAR_DBL, 1e-05, 1e-09, 1.0},  /* integrality tolerance */
    {2011, PAR_INT, -1, -1, 1},  /* root rounding switch: -1 off, 0 automatic, 1 on */
    {2012, PAR_INT, 2, 0, 5},  /* MIP display level */
    {2013, PAR_INT, 100, 1, 2100000000},  /* node log interval */
    {2014, PAR_INT, PAR_NCPU, 1, PAR_NCPU},  /* threads of the parallel MIP */
    {2015, PAR_INT, 2100000000, 1, 2100000000},  /* solution limit */
    {2016, PAR_INT, 1, 0, 3},  /* node file mode */
    {2017, PAR_INT, 2100000000, 0, 2100000000},  /* node limit */
    {2018, PAR_INT, 1, 0, 3},  /* node selection rule */
    {2019, PAR_DBL, 0.0, -1e+75, 1e+75},  /* absolute objective difference of the cutoff rule  */
    {2020, PAR_INT, 1, 0, 1},  /* use of the priority order */
    {2021, PAR_INT, 1, 0, 1},  /* reduced-cost fixing switch */
    {2022, PAR_DBL, 0.0, 0.0, 1.0},  /* relative objective difference of the cutoff rule  */
    {2023, PAR_INT, 0, 0, 1},
    {2024, PAR_INT, 2, 2, 2100000000},
    {2025, PAR_INT, 2, 1, 6},  /* start algorithm */
    {2026, PAR_INT, 2, 1, 6},  /* subproblem algorithm */
    {2027, PAR_DBL, 1e+75, 0.0, 1e+75},
    {2028, PAR_INT, 0, -1, 4},  /* variable selection rule */
    {2029, PAR_INT, -1, -1, 1},  /* bound strengthening indicator: -1 automatic, 0 off, 1 on  */
    {2031, PAR_INT, 0, -1, 2100000000},  /* heuristic frequency: -1 off, 0 automatic  */
    {2032, PAR_INT, 0, -1, 3},  /* priority order rule */
    {2033, PAR_DBL, 4.0, 0.0, 1e+75},  /* cut factor */
    {2034, PAR_INT, 0, 0, 1},
    {2035, PAR_INT, 0, 0, 1},  /* use of start values held by the presolved problem  */
    {2037, PAR_INT, 0, -1, 1},  /* node probing */
    {2038, PAR_INT, 1, -1, 1},  /* implication pass switch */
    {2039, PAR_INT, 7, 0, 2100000000},  /* best-bound interval  */
    {2040, PAR_INT, 0, -1, 2},  /* flow cover cut level */
    {2041, PAR_INT, 0, -1, 2},  /* implied bound cut level */
    {2042, PAR_INT, 0, -1, 3},  /* probing level */
    {2044, PAR_INT, 0, -1, 2},  /* GUB cover cut level */
    {2045, PAR_INT, 10, 1, 2100000000},  /* strong branching candidates */
    {2046, PAR_INT, 0, 0, 2100000000},  /* strong branching iteration limit */
    {2047, PAR_INT, 1, 1, PAR_NCPU},  /* strong branching threads */
    {2048, PAR_INT, 200, 1, 2100000000},  /* Gomory candidate cap */
    {2049, PAR_INT, 0, -1, 2},  /* Gomory cut level */
    {2050, PAR_INT, 0, 0, 2100000000},  /* Gomory pass limit */
    {2051, PAR_INT, 0, -1, 2},  /* flow path cut level */
    {2052, PAR_INT, 0, -1, 2},  /* MIR cut level */
    {2053, PAR_INT, 0, -1, 3},  /* disjunctive cut level */
    {2054, PAR_INT, 3, 0, 2100000000},  /* rows in an aggregate of the MIR search  */
    {2055, PAR_INT, 1, 0, 1},  /* callback reduced-model switch */
    {2056, PAR_INT, 0, -1, 2100000000},  /* cut pass limit */
    {2057, PAR_INT, 0, 0, 1},  /* automatic lazy rows  */
    {2058, PAR_INT, 0, 0, 1},
};

const par_row par_bar_rows[] = {
    {3001, PAR_DBL, 0.0, 0.0, 1e+18},  /* start value of the barrier (one of the pair; 0 means computed) */
    {3002, PAR_DBL, 1e-08, 1e-12, 1e+75},  /* convergence tolerance */
    {3003, PAR_DBL, 1000000.0, 1.0, 1e+75},  /* growth limit  */
    {3004, PAR_DBL, 1e+20, 0.0, 1e+75},  /* objective range */
    {3005, PAR_DBL, 0.0, 0.0, 1e+18},  /* start value of the barrier (the other of the pair) */
    {3006, PAR_DBL, 1e+20, 0.001, 1e+20},  /* variable upper limit */
    {3007, PAR_INT, 0, 0, 3},  /* ordering: 0 automatic, 1 minimum degree, 2 minimum fill, 3 nested dissection  */
    {3009, PAR_INT, 0, 0, 2100000000},  /* dense column threshold; 0 automatic  */
    {3010, PAR_INT, 1, 0, 2},  /* barrier display */
    {3012, PAR_INT, -1, -1, 2100000000},  /* iteration limit */
    {3013, PAR_INT, -1, -1, 2100000000},  /* central corrections; -1 automatic  */
    {3014, PAR_INT, 0, 0, 3},  /* barrier algorithm */
    {3015, PAR_INT, 100, 1, 2100000000},  /* minimum rows for the dense search  */
    {3016, PAR_INT, PAR_NCPU, 1, PAR_NCPU},  /* threads */
    {3017, PAR_INT, 1, 1, 4},  /* starting algorithm of the barrier  */
    {3018, PAR_INT, 0, -1, 2},  /* crossover: -1 none, 0 automatic, 1 primal, 2 dual  */
    {3019, PAR_INT, 0, 0, 1},
    {3020, PAR_INT, 0, -1, 2},
    {3021, PAR_DBL, 1e+75, 0.0, 1e+75},
};

const par_row par_qp_rows[] = {
    {4001, PAR_INT, 500, 0, 268435450},  /* quadratic nonzeros allowance: read by the QP loaders  */
    {4002, PAR_INT, 200, 0, 268435450},  /* second allowance of the QP loaders  */
};

const par_row par_net_rows[] = {
    {5001, PAR_INT, 2100000000, 0, 2100000000},  /* network iteration limit */
    {5002, PAR_DBL, 1e-06, 1e-11, 0.1},  /* network tolerance  */
    {5003, PAR_DBL, 1e-06, 1e-11, 0.1},  /* network tolerance  */
    {5004, PAR_INT, 0, 0, 3},  /* network switch  */
    {5005, PAR_INT, 2, 0, 2},  /* network switch  */
};

struct par_family {
    const par_row *rows;
    int nrows;
};

const par_family families[PAR_NFAM] = {
    {par_lp_rows, static_cast<int>(sizeof par_lp_rows / sizeof par_lp_rows[0])},
    {par_mip_rows, static_cast<int>(sizeof par_mip_rows / sizeof par_mip_rows[0])},
    {par_bar_rows, static_cast<int>(sizeof par_bar_rows / sizeof par_bar_rows[0])},
    {par_qp_rows, static_cast<int>(sizeof par_qp_rows / sizeof par_qp_rows[0])},
    {par_net_rows, static_cast<int>(sizeof par_net_rows / sizeof par_net_rows[0])},
};

#define PAR_STRNUM 1064
#define PAR_LO 1001
#define PAR_HI 6000

/* Number -> family * 256 + slot, or -1. Built once. */
struct par_index {
    short at[PAR_HI - PAR_LO];
    par_index() {
        for (short &a : at) a = -1;
        for (int f = 0; f < PAR_NFAM; f++)
            for (int k = 0; k < families[f].nrows; k++)
                at[families[f].rows[k].num - PAR_LO] =
                    static_cast<short>(f * 256 + k);
    }
};

const par_index &par_idx(void) {
    static const par_index idx;
    return idx;
}

/* Finds the family and slot of number num of the given type; 1013 if no
 * family owns such a parameter. */
int par_find(int num, int type, int *fam, int *slot) {
    if (num < PAR_LO || num >= PAR_HI) return 1013;
    if (type == PAR_STR) {
        if (num != PAR_STRNUM) return 1013;
        *fam = PAR_LP;
        *slot = -1;
        return 0;
    }
    int a = par_idx().at[num - PAR_LO];
    if (a < 0) return 1013;
    const par_row &r = families[a / 256].rows[a % 256];
    if (r.type != type) return 1013;
    *fam = a / 256;
    *slot = a % 256;
    return 0;
}

void fill_block(par_block *b, int f, int which, int ncpu) {
    std::memset(b, 0, sizeof *b);
    for (int k = 0; k < families[f].nrows; k++) {
        const par_row &r = families[f].rows[k];
        double v = which == 0 ? r.def : which == 1 ? r.min : r.max;
        if (v == PAR_NCPU) v = ncpu;
        if (r.type == PAR_INT)
            b->v[k].i = static_cast<int>(v);
        else
            b->v[k].d = v;
    }
    if (f == PAR_LP && which == 0) std::strcpy(b->str, ".");
}

}  // namespace

void par_fill_tables(TRVenv env) {
    int ncpu = env_ncpu(env->maxthreads);
    for (int f = 0; f < PAR_NFAM; f++) {
        fill_block(env->def[f], f, 0, ncpu);
        fill_block(env->min[f], f, 1, ncpu);
        fill_block(env->max[f], f, 2, ncpu);
    }
}

/* Copies the defaults to the current blocks; the log file stays. */
void par_setdefaults(TRVenv env) {
    static const int order[PAR_NFAM] = {PAR_LP, PAR_BAR, PAR_MIP, PAR_NET, PAR_QP};
    for (int f : order) {
        FILE *keep = env->cur[f]->logfile;
        std::memcpy(env->cur[f], env->def[f], sizeof(par_block));
        env->cur[f]->logfile = keep;
    }
}

void par_copy(TRVenv dst, TRVenv src) {
    for (int f = 0; f < PAR_NFAM; f++) {
        FILE *keep = dst->cur[f]->logfile;
        std::memcpy(dst->cur[f], src->cur[f], sizeof(par_block));
        dst->cur[f]->logfile = keep;
    }
}

int par_int(TRVenv env, int num) {
    int a = par_idx().at[num - PAR_LO];
    return env->cur[a / 256]->v[a % 256].i;
}

int par_swap_int(TRVenv env, int num, int value) {
    int a = par_idx().at[num - PAR_LO];
    int old = env->cur[a / 256]->v[a % 256].i;
    env->cur[a / 256]->v[a % 256].i = value;
    return old;
}

double par_dbl(TRVenv env, int num) {
    int a = par_idx().at[num - PAR_LO];
    return env->cur[a / 256]->v[a % 256].d;
}

const char *par_str(TRVenv env) { return env->cur[PAR_LP]->str; }

TRV_EXPORT int TRVsetdefaults(TRVenv env) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    par_setdefaults(env);
    return 0;
}

TRV_EXPORT int TRVsetintparam(TRVenv env, int whichparam, int newvalue) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k;
    int status = par_find(whichparam, PAR_INT, &f, &k);
    if (status == 0) {
        int lo = env->min[f]->v[k].i, hi = env->max[f]->v[k].i;
        if (whichparam == 1009) hi = 5; /* 5 is accepted beyond the table */
        if (f == PAR_QP && lo == hi) {
            /* equal bounds: no check */
        } else if (newvalue < lo) {
            status = 1014;
        } else if (newvalue > hi) {
            status = 1015;
        }
    }
    if (status == 0) {
        env->cur[f]->v[k].i = newvalue;
        if (whichparam == 1035) channel_screen(env, newvalue);
        if (par_int(env, 1067) == 1)
            TRVmsg(env->reschannel, "Parameter %d set to %d.\n", whichparam,
                   newvalue);
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVsetdblparam(TRVenv env, int whichparam, double newvalue) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k;
    int status = par_find(whichparam, PAR_DBL, &f, &k);
    if (status == 0) {
        double lo = env->min[f]->v[k].d, hi = env->max[f]->v[k].d;
        if (lo != hi) {
            if (newvalue < lo)
                status = 1014;
            else if (newvalue > hi)
                status = 1015;
            else if (newvalue != newvalue)
                status = 1003;
        }
    }
    if (status == 0) {
        env->cur[f]->v[k].d = newvalue;
        if (par_int(env, 1067) == 1)
            TRVmsg(env->reschannel, "Parameter %d set to %g.\n", whichparam,
                   newvalue);
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVsetstrparam(TRVenv env, int whichparam, const char *newvalue) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k;
    int status = par_find(whichparam, PAR_STR, &f, &k);
    if (status == 0 && newvalue == nullptr) status = 1004;
    if (status == 0 && std::strlen(newvalue) >= PAR_STRLEN) status = 1026;
    if (status == 0) {
        std::memmove(env->cur[PAR_LP]->str, newvalue, std::strlen(newvalue) + 1);
        if (par_int(env, 1067) == 1)
            TRVmsg(env->reschannel, "Parameter %d set to \"%s\".\n", whichparam,
                   newvalue);
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVgetintparam(TRVenv env, int whichparam, int *value_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k, status = 1004;
    if (value_p != nullptr) status = par_find(whichparam, PAR_INT, &f, &k);
    if (status == 0) *value_p = env->cur[f]->v[k].i;
    return call_leave(env, status);
}

TRV_EXPORT int TRVgetdblparam(TRVenv env, int whichparam, double *value_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k, status = 1004;
    if (value_p != nullptr) status = par_find(whichparam, PAR_DBL, &f, &k);
    if (status == 0) *value_p = env->cur[f]->v[k].d;
    return call_leave(env, status);
}

TRV_EXPORT int TRVgetstrparam(TRVenv env, int whichparam, char *value) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k, status = 1004;
    if (value != nullptr) status = par_find(whichparam, PAR_STR, &f, &k);
    if (status == 0) std::strcpy(value, env->cur[PAR_LP]->str);
    return call_leave(env, status);
}

TRV_EXPORT int TRVinfointparam(TRVenv env, int whichparam, int *defvalue_p,
                               int *minvalue_p, int *maxvalue_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k;
    int status = par_find(whichparam, PAR_INT, &f, &k);
    if (status == 0) {
        if (defvalue_p != nullptr) *defvalue_p = env->def[f]->v[k].i;
        if (minvalue_p != nullptr) *minvalue_p = env->min[f]->v[k].i;
        if (maxvalue_p != nullptr) *maxvalue_p = env->max[f]->v[k].i;
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVinfodblparam(TRVenv env, int whichparam, double *defvalue_p,
                               double *minvalue_p, double *maxvalue_p) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k;
    int status = par_find(whichparam, PAR_DBL, &f, &k);
    if (status == 0) {
        if (defvalue_p != nullptr) *defvalue_p = env->def[f]->v[k].d;
        if (minvalue_p != nullptr) *minvalue_p = env->min[f]->v[k].d;
        if (maxvalue_p != nullptr) *maxvalue_p = env->max[f]->v[k].d;
    }
    return call_leave(env, status);
}

TRV_EXPORT int TRVinfostrparam(TRVenv env, int whichparam, char *defvalue) {
    if (call_enter(&env, nullptr, 0) != 0) return 1002;
    int f, k;
    int status = par_find(whichparam, PAR_STR, &f, &k);
    if (status == 0 && defvalue != nullptr)
        std::strcpy(defvalue, env->def[PAR_LP]->str);
    return call_leave(env, status);
}
