/*
 * invalid.cpp - the change notification. A change of the model drops what
 * it has made stale: the solution status and every solver record. The
 * records of the solvers are freed through lp_free_records as their modules
 * arrive; keeping a basis for an advanced start is decided per change code.
 */
#include "simplex/dual.h"

void invalidate(TRVenv env, TRVlp lp, int code) {
    if (code < 1 || code > 60) return;
    lp->stat = 0;
    /* a new model or one that leaves the QP form keeps no starting basis */
    if (code == 16 || code == 27) start_free(lp);
    lp_free_records(env, lp);
}
