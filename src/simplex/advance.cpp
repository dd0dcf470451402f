/*
 * advance.cpp - the starting basis of a primal run: the basis of slacks
 * with every structural at its bound of smaller magnitude (a free one
 * superbasic at zero).
 */
#include <cmath>

#include "simplex/dual.h"

/* All slacks (or the artificials of rows without one) basic. */
static void start_slack(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    for (int j = 0; j < s->ncoltot; j++) {
        bool fl = s->has_lower[j], fu = s->has_upper[j];
        if (!fl && !fu) {
            it->status[j] = 3;
            it->x[j] = 0.0;
        } else if (fl && (!fu || std::fabs(s->lower[j]) <= std::fabs(s->upper[j]))) {
            it->status[j] = 0;
            it->x[j] = s->lower[j];
        } else {
            it->status[j] = 2;
            it->x[j] = s->upper[j];
        }
    }
    for (int i = 0; i < s->m; i++) {
        it->head[i] = s->slack_of_row[i];
        it->status[s->slack_of_row[i]] = 1;
    }
}

int start_basis(TRVenv env, TRVlp lp) {
    if (start_load(env, lp)) return 0;
    start_slack(lp);
    return 0;
}
