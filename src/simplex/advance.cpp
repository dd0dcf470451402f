/*
 * advance.cpp - the starting basis of a primal run. A greedy crash puts
 * structural columns in the places of the artificials of equality and
 * ranged rows, preferring sparse columns (and, by parameter 1007, cheap
 * ones), each pivoting in a row of its own with small entries in the rows
 * taken before; a basis whose pivots spread too far is redone more
 * conservatively and finally replaced by the basis of slacks, where every
 * structural sits at its bound of smaller magnitude (a free one superbasic
 * at zero).
 */
#include <algorithm>
#include <cmath>

#include "simplex/core.h"

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

struct crash_rows {
    double *bar;
    char *used;
    int *count;
    int *order;
    double *key;
};

static void crash_release(crash_rows *c) {
    trv_free(&c->bar);
    trv_free(&c->used);
    trv_free(&c->count);
    trv_free(&c->order);
    trv_free(&c->key);
}

/* Column order: the sparsity preference, with the objective mixed in. */
static int crash_score(TRVenv env, TRVlp lp, crash_rows *c) {
    const simplex_lp *s = &lp->solver->splp;
    int mode = par_int(env, 1007), n = 0;
    double cmax = 0.0;
    for (int j = 0; j < s->nstruct; j++) cmax = std::max(cmax, std::fabs(s->cost[j]));
    double w = 0.0;
    if (mode != 0 && cmax > 1e-10) w = (mode == 1 ? 1.0 : -1.0) * s->sense / (100.0 * cmax);
    for (int j = 0; j < s->nstruct; j++) {
        if (s->col_len[j] == 0) continue;
        if (s->has_lower[j] && s->has_upper[j] && s->upper[j] <= s->lower[j]) continue;
        c->order[n] = j;
        c->key[j] = s->col_len[j] + w * s->cost[j];
        n++;
    }
    std::stable_sort(c->order, c->order + n, [c](int a, int b) { return c->key[a] < c->key[b]; });
    return n;
}

/* The pivot row of column j, or -1 when it is refused or has none. */
static int crash_row(const simplex_lp *s, const crash_rows *c, int j, double *mag) {
    int best = -1;
    double big = 0.99;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
        int i = s->row_idx[k];
        double a = std::fabs(s->val[k]);
        if (!c->used[i] && c->count[i] == 0 && a > big) big = a, best = i;
    }
    if (best >= 0) {
        *mag = big;
        return best;
    }
    big = 1e-10;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
        int i = s->row_idx[k];
        double a = std::fabs(s->val[k]);
        if (c->used[i]) {
            if (c->bar[i] < a) return -1;
            continue;
        }
        if (a > big) big = a, best = i;
    }
    *mag = big;
    return best;
}

/* One crash attempt with the given bar multiplier; returns the number of
 * structurals placed. */
static int crash_place(TRVenv env, TRVlp lp, crash_rows *c, double barmul) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    start_slack(lp);
    int left = 0;
    for (int i = 0; i < s->m; i++) {
        c->count[i] = 0;
        c->used[i] = 0;
        c->bar[i] = PR_BIG;
        if (s->slack_of_row[i] < s->ntotal) {
            c->used[i] = 1;
            c->count[i] = 1;
        } else {
            left++;
        }
    }
    if (left == 0) return 0;
    int n = crash_score(env, lp, c), placed = 0;
    for (int k = 0; k < n && left > 0; k++) {
        int j = c->order[k];
        if (it->status[j] == 1 || it->ban[j] != 0) continue;
        double mag = 0.0;
        int r = crash_row(s, c, j, &mag);
        if (r < 0) continue;
        int old = it->head[r];
        it->status[old] = 0;
        it->x[old] = s->lower[old];
        it->head[r] = j;
        it->status[j] = 1;
        c->used[r] = 1;
        c->bar[r] = barmul * mag;
        for (int e = s->col_beg[j]; e < s->col_end[j]; e++) c->count[s->row_idx[e]]++;
        left--;
        placed++;
    }
    return placed;
}

/* The crash of the primal; 2001 when no basis was built. */
static int crash_primal(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m;
    crash_rows c{};
    c.bar = trv_alloc<double>(m);
    c.used = trv_alloc<char>(m);
    c.count = trv_alloc<int>(m);
    c.order = trv_alloc<int>(s->nstruct);
    c.key = trv_alloc<double>(s->nstruct);
    if (!c.bar || !c.used || !c.count || !c.order || !c.key) {
        crash_release(&c);
        return 1001;
    }
    int result = 2001;
    for (int attempt = 0; attempt < 2; attempt++) {
        int placed = crash_place(env, lp, &c, attempt == 0 ? 0.01 : 1e-4);
        if (placed == 0) {
            result = 0;
            break;
        }
        double u = it->markowitz;
        int st = lu_refactor(env, lp, &u, it->pivot_tol, 1, 0);
        it->markowitz = u;
        if (st == 1001) {
            result = 1001;
            break;
        }
        if ((st == 0 || st == RC_REPAIRED) && lp->factor->kappa <= 1000.0) {
            result = 0;
            break;
        }
        TRVmsg(env->errchannel, attempt == 0 ? "Using conservative initial basis.\n"
                                             : "Using unit initial basis.\n");
    }
    if (result == 2001) TRVmsg(env->errchannel, "Primal crash basis not built.\n");
    crash_release(&c);
    return result;
}

int start_basis(TRVenv env, TRVlp lp) {
    if (start_load(env, lp)) return 0;
    int st = crash_primal(env, lp);
    if (st == 1001) return st;
    if (st != 0) start_slack(lp);
    return 0;
}
