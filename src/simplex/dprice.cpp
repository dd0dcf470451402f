/*
 * dprice.cpp - the dual pricing: the choice of the leaving row among the
 * basic variables outside their bounds, weighted by the dual norms, and
 * the norms themselves (unit, exact start, update after each pivot).
 *
 * The key of position i is v * v / w[i], v the bound violation of its
 * basic variable; the largest key wins. With the steepest-edge norms,
 * w[i] = ||e_i B^-1||^2.
 */
#include <cmath>

#include "simplex/core.h"

/* The mode from the pricing parameter: 0 chooses the steepest edge with a
 * unit start when a basis is given, the exact start otherwise. */
int dual_pricing_mode(TRVenv env, TRVlp lp, int param, int *mode) {
    (void)lp;
    if (param < 0 || param > 5) return env_error(env, 1257);
    if (param == 0) {
        *mode = DPR_STEEP;
        return 0;
    }
    *mode = param;
    return 0;
}

/* The dual infeasibility of nonbasic j: the amount by which its reduced
 * cost has the wrong sign for its status. */
double dual_infeasibility(const dual_state *ds, const simplex_iter *it, int j) {
    (void)ds;
    double d = it->d[j];
    switch (it->status[j]) {
    case 0: return d < 0.0 ? -d : 0.0;
    case 2: return d > 0.0 ? d : 0.0;
    case 3: return std::fabs(d);
    default: return 0.0;
    }
}

/* The violation of the basic variable at position i beyond tol, or 0. */
static inline double violation(const dual_state *ds, const simplex_iter *it, int i, double tol) {
    int j = it->head[i];
    double xv = it->x[j];
    if (xv < ds->lower[j] - tol) return ds->lower[j] - xv;
    if (xv > ds->upper[j] + tol) return xv - ds->upper[j];
    return 0.0;
}

/* The candidates of the leaving row made anew from every position. */
static void rows_build(dual_state *ds, const simplex_iter *it, int m, double tol, int plain) {
    key_heap *h = &ds->rows;
    ds->rows_tol = tol;
    ds->rows_plain = plain;
    kheap_begin(h);
    for (int i = 0; i < m; i++) {
        double v = violation(ds, it, i, tol);
        if (v != 0.0) kheap_append(h, i, v * v, plain ? 1.0 : it->dweight[i]);
    }
    kheap_order(h);
}

/* The positions an iteration changed, back in their places. */
static void rows_settle(dual_state *ds, const simplex_iter *it) {
    key_heap *h = &ds->rows;
    for (int k = 0; k < h->ndirty; k++) {
        int i = h->dirty[k];
        h->dirty_in[i] = 0;
        double v = violation(ds, it, i, ds->rows_tol);
        if (v == 0.0) kheap_remove(h, i);
        else kheap_set(h, i, v * v, ds->rows_plain ? 1.0 : it->dweight[i]);
    }
    h->ndirty = 0;
}

/* The leaving position: the largest weighted violation above tol among the
 * positions not banned, or -1; of equal ones the first by position. */
int dual_price_select(TRVlp lp, double tol) {
    const simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    int m = lp->solver->splp.m;
    int plain = ds->pricing == DPR_PLAIN || ds->pricing == DPR_SWITCH;
    if (ds->rows.stale || tol != ds->rows_tol || plain != ds->rows_plain)
        rows_build(ds, it, m, tol, plain);
    else
        rows_settle(ds, it);
    int best = kheap_best(&ds->rows, it->pos_ban);
    if (simplex_checking) {
        /* the same choice by a scan of every position */
        const double *w = it->dweight;
        int scan = -1;
        double sv = 0.0, sw = 1.0;
        for (int i = 0; i < m; i++) {
            double v = violation(ds, it, i, tol);
            if (v == 0.0 || it->pos_ban[i] == BAN_ROUND) continue;
            double wi = plain ? 1.0 : w[i];
            if (v * v * sw > sv * sv * wi) scan = i, sv = v, sw = wi;
        }
        /* a near tie may go either way under rounding */
        const key_heap *h = &ds->rows;
        bool tie = scan >= 0 && best >= 0 &&
                   std::fabs(h->kv[best] * sw - sv * sv * h->kw[best]) <= 1e-12 * sv * sv * h->kw[best];
        if (scan != best && !tie) simplex_check_faults++;
    }
    return best;
}

/* The weight update after the pivot at position p with the entering
 * column alpha (by positions), pivot alpha_p and ||rho||^2; tau holds
 * B^-1 rho when the mode keeps norms. */
void dual_price_pivot(TRVlp lp, int p, double alpha_p, double rho_norm2) {
    simplex_iter *it = &lp->solver->it;
    dual_state *ds = lp->dual;
    if (ds->pricing == DPR_PLAIN || ds->pricing == DPR_SWITCH) return;
    double *w = it->dweight;
    int m = lp->solver->splp.m;
    double r = rho_norm2;
    if (1000.0 * r < w[p]) {
        /* the weights have drifted away from the true norms */
        for (int i = 0; i < m; i++) w[i] = 1.0;
        ds->rows.stale = 1;
        w[p] = r / (alpha_p * alpha_p);
        return;
    }
    const sparse_vec *a = &ds->alpha;
    const double *tau = ds->tau.val;
    double inv = 1.0 / alpha_p;
    for (int k = 0; k < a->nz; k++) {
        int i = a->idx[k];
        if (i == p) continue;
        double ai = a->val[i];
        if (ai == 0.0) continue;
        double sfac = ai * inv;
        double wi = w[i] + sfac * (sfac * r - 2.0 * tau[i]);
        w[i] = wi < 1e-4 ? 1e-4 : wi;
    }
    w[p] = r * inv * inv;
}

void dual_norms_reset(TRVlp lp) {
    simplex_iter *it = &lp->solver->it;
    for (int i = 0; i < lp->solver->splp.m; i++) it->dweight[i] = 1.0;
    lp->dual->norms_ready = 0;
    lp->dual->rows.stale = 1;
}

/* ||e_i B^-1||^2 at position i. */
static double exact_norm(TRVlp lp, int i) {
    dual_state *ds = lp->dual;
    sparse_vec *r = &ds->rho;
    sv_clear(r);
    lu_btran_row(lp->factor, r, i);
    if (r->nz < 0) sv_from_dense(r);
    double sum = 0.0;
    for (int k = 0; k < r->nz; k++) {
        double v = r->val[r->idx[k]];
        sum += v * v;
    }
    sv_clear(r);
    lu_release_spikes(lp->factor);
    return sum;
}

/* The start of the norms: the stored norms of the problem where they fit
 * (the missing ones computed), else unit norms (mode 4) or exact norms
 * (modes 2 and 3). A time limit ends the exact start early. */
int dual_norms_init(TRVenv env, TRVlp lp) {
    simplex_iter *it = &lp->solver->it;
    const simplex_lp *s = &lp->solver->splp;
    dual_state *ds = lp->dual;
    int m = s->m;
    ds->rows.stale = 1;
    if (ds->pricing == DPR_PLAIN || ds->pricing == DPR_SWITCH) {
        dual_norms_reset(lp);
        return 0;
    }
    bool stored = lp->start != nullptr && lp->start->has_norms && par_int(env, 1001) != 0;
    if (stored) {
        if (ds->log.display > 0) TRVmsg(env->reschannel, "Reinitializing dual norms . . .\n");
        start_norms(lp);
        int computed = 0;
        for (int i = 0; i < m; i++)
            if (it->dweight[i] < 1e-10) {
                it->dweight[i] = exact_norm(lp, i);
                computed++;
            }
        if (ds->log.display > 0) TRVmsg(env->reschannel, "Computed %d new norms.\n", computed);
        ds->norms_ready = 1;
        return 0;
    }
    bool structural = false;
    for (int i = 0; i < m && !structural; i++) structural = it->head[i] < s->nstruct;
    for (int i = 0; i < m; i++) it->dweight[i] = 1.0;
    if (ds->pricing == DPR_STEEP_UNIT || !structural) {
        ds->norms_ready = 1;
        return 0;
    }
    if (ds->log.display > 0) TRVmsg(env->reschannel, "Initializing dual steep norms . . .\n");
    for (int i = 0; i < m; i++) {
        /* a slack's row of the inverse is a unit row only in a slack basis */
        it->dweight[i] = exact_norm(lp, i);
        if (ds->time_limit < PR_BIG && env_time(env) - ds->start_time >= ds->time_limit) {
            ds->abort = 2;
            break;
        }
    }
    ds->norms_ready = 1;
    return 0;
}
