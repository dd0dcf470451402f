/*
 * solnstub.cpp - stand-ins for the solution record and the primal state
 * until their module joins this one. When it does, this file goes:
 * primal_free is the primal module's own, and soln_invalidate moves to the
 * solution record, where it marks the record stale (free_it 0) or frees it
 * (free_it 1).
 */
#include "store/lp.h"

void soln_invalidate(TRVlp lp, int free_it) {
    (void)lp;
    (void)free_it;
}

void primal_free(TRVlp lp) { (void)lp; }
