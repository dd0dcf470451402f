/*
 * invalid.cpp - the change notification. Each change of the model raises a
 * code, and the code says which derived state has gone stale: either it is
 * marked (the memory stays for reuse, its content must be refreshed) or
 * freed. A change of bounds or objective keeps the basis and the factor,
 * so that the next solve starts warm; a change of the matrix or of the
 * column set drops the factor; a change of the row set drops every solver
 * record.
 *
 * The pricing norms live with the stored basis (start record). Records
 * that no module defines yet (sensitivity, presolve, barrier, MIP state)
 * are null on every problem; their steps are listed in the table and do
 * nothing until their module frees or marks them here.
 */
#include "store/basis.h"

enum : unsigned {
    S_RELAXED = 1u << 0,   /* F relaxed */
    S_WORKCOPY = 1u << 1,  /* F workcopy */
    S_STAT = 1u << 2,      /* stat zero */
    S_MNORMS = 1u << 3,    /* m pnorms, m dnorms */
    S_FNORMS = 1u << 4,    /* F pnorms, F dnorms */
    S_MSENS = 1u << 5,     /* m sens */
    S_FSENS = 1u << 6,     /* F sens */
    S_MSOLN = 1u << 7,     /* m soln */
    S_FSOLN = 1u << 8,     /* F soln */
    S_MDUAL = 1u << 9,     /* m dual */
    S_FDUAL = 1u << 10,    /* F dual */
    S_MSOLVER1 = 1u << 11, /* m solver: the working LP */
    S_MSOLVER2 = 1u << 12, /* m solver: the values */
    S_FSOLVER = 1u << 13,  /* F solver */
    S_FPRIMAL = 1u << 14,  /* F primal */
    S_FFACTOR = 1u << 15,  /* F factor */
    S_DATAPTRS = 1u << 16, /* F dataptrs */
    S_PRESOLVE = 1u << 17, /* F presolve */
    S_BARRIER = 1u << 18,  /* F barrier */
    S_MIPSTATE = 1u << 19, /* F mipstate */
    S_MIP = 1u << 20,      /* F mip */
    S_START = 1u << 21,    /* F start, startaux */
    S_SCALE = 1u << 22     /* drop scale */
};

/* The common tails of the table. */
static const unsigned TAIL = S_PRESOLVE | S_BARRIER | S_MIPSTATE;
static const unsigned ALL15 = S_RELAXED | S_WORKCOPY | S_STAT | S_FPRIMAL | S_FDUAL |
                              S_FSOLVER | S_FFACTOR | S_FSOLN | S_FNORMS | S_FSENS |
                              S_DATAPTRS | TAIL;
static const unsigned KEEP3 = S_RELAXED | S_WORKCOPY | S_STAT | S_MNORMS | S_MSENS |
                              S_MSOLN | S_MDUAL | S_DATAPTRS | TAIL;
static const unsigned COLS28 = S_RELAXED | S_WORKCOPY | S_STAT | S_MNORMS | S_FPRIMAL |
                               S_FDUAL | S_FSOLVER | S_FSENS | S_DATAPTRS | TAIL;

/* The steps of a code; 0 for the codes that the optimisers raise for their
 * own state and for codes outside the table. */
static unsigned steps_of(int code) {
    switch (code) {
    case 1: /* arrays reallocated, columns stay */
        return S_RELAXED | TAIL;
    case 2: /* arrays reallocated, columns grow */
        return S_RELAXED | S_FFACTOR | S_FSOLN | TAIL;
    case 3:
    case 58: /* ranges */
        return KEEP3 | S_MSOLVER1 | S_MSOLVER2;
    case 4: /* bounds */
        return KEEP3 | S_MSOLVER1;
    case 6: /* right-hand side of a ranged row, entries of new columns */
        return S_RELAXED | S_WORKCOPY | S_STAT | S_MNORMS | S_MSENS | S_DATAPTRS | TAIL;
    case 7: case 8: case 9: case 10: case 11: /* types, rhs, SOS */
        return S_RELAXED | S_WORKCOPY | S_STAT | S_DATAPTRS | TAIL;
    case 12: case 13: case 14: /* objective */
        return S_RELAXED | S_WORKCOPY | S_STAT | S_MSOLN | S_MDUAL | TAIL;
    case 15:
        return ALL15;
    case 16: /* the model replaced */
        return ALL15 | S_START | S_MIP | S_SCALE;
    case 17: case 18: case 19: case 20: case 21: case 22: case 60: /* row set */
        return (ALL15 & ~S_FSENS) | S_MSENS;
    case 23: /* names */
        return S_RELAXED | S_WORKCOPY;
    case 24: case 25: case 26: /* quadratic part */
        return (ALL15 & ~S_FSENS & ~S_RELAXED) | S_MSENS;
    case 27: /* the type leaves QP */
        return ALL15 | S_START;
    case 28: /* columns with bounds only */
        return COLS28;
    case 29: case 30: case 31: case 32: case 33: /* column set, senses */
        return COLS28 | S_FFACTOR | S_FSOLN;
    case 34: /* matrix entries */
        return S_RELAXED | S_WORKCOPY | S_STAT | S_MNORMS | S_MSENS | S_FPRIMAL | S_FDUAL |
               S_FSOLVER | S_FFACTOR | S_FSOLN | S_DATAPTRS | TAIL;
    default:
        return 0;
    }
}

/* Norms are a function of the basis and the matrix alone: of the changes
 * that mark them, a change of bounds, ranges or right-hand sides leaves
 * them exact, and added columns leave those of the others exact; only a
 * change of matrix entries or of row senses makes them stale. */
static bool norms_stale(int code) { return code == 33 || code == 34; }

void invalidate(TRVenv env, TRVlp lp, int code) {
    if (code < 1 || code > 60) return;
    unsigned s = steps_of(code);
    if (s == 0) return;
    if (s & S_START) {
        start_free(lp);
        trv_free(&lp->startaux);
    }
    /* Moving rows to and from the free rows renumbers them: the stored
     * basis would no longer fit, so it goes. A deletion keeps it and maps
     * it in step (start_delete, after the rows or columns are gone);
     * additions keep it: new rows enter with their slacks basic. */
    if (code == 21 || code == 22) start_free(lp);
    if ((s & S_RELAXED) && lp->relaxed != nullptr && lp->probtype != PROB_RELAXED &&
        lp->probtype != PROB_FIXED) {
        /* a basis of the view goes back to the problem once start records
         * exist; the view itself goes */
        lp_free(env, &lp->relaxed);
    }
    if ((s & S_WORKCOPY) && lp->workcopy != nullptr) lp_free(env, &lp->workcopy);
    if (s & S_STAT) lp->stat = 0;
    /* the primal and dual norms kept with the stored basis (the
     * sensitivity record, S_MSENS and S_FSENS, has none yet) */
    if (s & S_FNORMS)
        start_drop_norms(lp, 1);
    else if ((s & S_MNORMS) && norms_stale(code))
        start_drop_norms(lp, 0);
    if (s & S_FSOLN)
        soln_invalidate(lp, 1);
    else if (s & S_MSOLN)
        soln_invalidate(lp, 0);
    /* the optimisers' working records: the dual state lives for one run,
     * so stale or not it goes */
    if (lp->work != nullptr) {
        unsigned w = 0;
        if (s & (S_MDUAL | S_FDUAL)) w |= WORK_DUAL;
        if (s & S_FPRIMAL) w |= WORK_PRIMAL;
        if (s & S_FSOLVER) w |= WORK_SOLVER;
        if (s & S_MSOLVER1) w |= WORK_STALE_LP;
        if (s & S_MSOLVER2) w |= WORK_STALE_X;
        if (s & S_FFACTOR) w |= WORK_FACTOR;
        if (w != 0) lp->work->drop(lp, w);
    }
    if (s & S_DATAPTRS)
        for (int k = 0; k < 4; k++) trv_free(&lp->dataptrs[k]);
    /* presolve, barrier, MIP state and MIP record (S_PRESOLVE, S_BARRIER,
     * S_MIPSTATE, S_MIP): no records yet */
    if (s & S_SCALE) {
        lp_data *d = lp->lpdata;
        d->rowscale = d->colscale = nullptr;
        trv_free(&d->rowscalestore);
        trv_free(&d->colscalestore);
        d->scaletype = -1;
    }
}
