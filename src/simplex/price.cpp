/*
 * price.cpp - primal pricing: the choice of the entering variable.
 * Families: partial pricing with a candidate list (0 and -1), devex (1),
 * steepest edge with an exact (2) or cheap (3) start, and full pricing by
 * reduced cost (4). Partial pricing works from the duals alone; the other
 * families keep every reduced cost up to date through the pivot row.
 */
#include <algorithm>
#include <cmath>
#include <cstring>

#include "simplex/core.h"

/* Attractiveness: negative when moving the variable improves. */
double primal_attract(const simplex_iter *it, int j, double d) {
    switch (it->status[j]) {
    case 0: return d;
    case 2: return -d;
    case 3: return -std::fabs(d);
    default: return 0.0;
    }
}

/* A nonbasic variable that may enter: not banned and able to move. */
static inline bool may_enter(const primal_state *ps, const simplex_iter *it, int j) {
    if (it->status[j] == 1 || it->ban[j] != 0) return false;
    if (it->status[j] == 3) return true;
    return ps->upper[j] > ps->lower[j];
}

void primal_price_free(primal_state *ps) {
    kheap_free(&ps->cols);
    kheap_free(&ps->supers);
    if (ps->partial != nullptr) {
        primal_partial *pp = ps->partial;
        trv_free(&pp->var);
        trv_free(&pp->key);
        trv_free(&pp->dir);
        trv_free(&pp->order);
        trv_free(&pp->mark);
        trv_free(&ps->partial);
    }
    if (ps->devex != nullptr) {
        trv_free(&ps->devex->ref);
        trv_free(&ps->devex);
    }
}

/* Section count of partial pricing from the sizes. */
static int partial_sections(TRVenv env, int n, int m, int ncols) {
    int p = par_int(env, 1010);
    if (p != 0) return std::max(1, std::min(p, std::max(ncols, 1)));
    if (n < 20 * m) {
        if (n < 100) return 5;
        if (n < 500) return 10;
        if (n < 1000) return 15;
        if (n < 2000) return 20;
        if (n < 5000) return 30;
        return 60;
    }
    static const int lim[] = {1000, 10000, 20000, 30000, 40000, 60000, 80000,
                              120000, 160000, 200000};
    static const int val[] = {5, 10, 20, 25, 30, 35, 40, 45, 50, 55};
    for (int k = 0; k < 10; k++)
        if (n < lim[k]) return val[k];
    return 60;
}

static void devex_reset(TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_devex *dv = lp->primal->devex;
    lp->primal->cols.stale = 1;
    dv->ref_size = 0;
    for (int j = 0; j < s->ncoltot; j++) {
        dv->ref[j] = it->status[j] != 1;
        dv->ref_size += dv->ref[j];
        it->pweight[j] = 1.0;
    }
}

int primal_price_init(TRVenv env, TRVlp lp, int family) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    primal_price_free(ps);
    int nc = s->ncoltot, nt = s->ntotal;
    ps->pricing = family;
    ps->d_kept = family >= 1;
    if (family <= 0) {
        primal_partial *pp = trv_zalloc<primal_partial>(1);
        if (pp == nullptr) return 1001;
        ps->partial = pp;
        pp->var = trv_alloc<int>(nt);
        pp->key = trv_alloc<double>(nt);
        pp->dir = trv_alloc<char>(nt);
        pp->order = trv_alloc<int>(nt);
        pp->mark = trv_zalloc<char>(nt);
        if (!pp->var || !pp->key || !pp->dir || !pp->order || !pp->mark) return 1001;
        pp->sections = partial_sections(env, s->nstruct, s->m, nt);
        pp->stride = std::max(1, nt / pp->sections);
        pp->target = pp->sections;
        pp->fresh = 1;
        return 0;
    }
    if (it->pweight == nullptr) {
        it->pweight = trv_alloc<double>(nc);
        if (it->pweight == nullptr) return 1001;
    }
    if (kheap_alloc(&ps->cols, nt) != 0 || kheap_alloc(&ps->supers, nt) != 0) return 1001;
    for (int j = 0; j < nc; j++) it->pweight[j] = 1.0;
    if (family == 1) {
        ps->devex = trv_zalloc<primal_devex>(1);
        if (ps->devex == nullptr) return 1001;
        ps->devex->ref = trv_zalloc<char>(nc);
        if (ps->devex->ref == nullptr) return 1001;
        devex_reset(lp);
    }
    return 0;
}

/* The candidate list is dropped; a new pass starts. */
void primal_price_reset(TRVlp lp) {
    primal_state *ps = lp->primal;
    ps->cols.stale = 1;
    primal_partial *pp = ps->partial;
    if (pp == nullptr) return;
    for (int k = 0; k < pp->count; k++) pp->mark[pp->var[k]] = 0;
    pp->count = 0;
    pp->fresh = 1;
}

/* ---- partial pricing ------------------------------------------------------- */

static void partial_scan(TRVlp lp, int section, double tol) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    primal_partial *pp = ps->partial;
    for (int j = section; j < s->ntotal; j += pp->stride) {
        if (pp->mark[j] || !may_enter(ps, it, j)) continue;
        double d = primal_dj(lp, j);
        int st = it->status[j];
        double key;
        char dir;
        if (st == 0) {
            if (d >= -tol) continue;
            key = d, dir = 'I';
        } else if (st == 2) {
            if (d <= tol) continue;
            key = -d, dir = 'D';
        } else {
            if (std::fabs(d) <= tol) continue;
            key = -std::fabs(d);
            if (std::fabs(d) > 1e-5) key -= 1e10;
            dir = d <= 0 ? 'I' : 'D';
        }
        pp->mark[j] = 1;
        pp->var[pp->count] = j;
        pp->key[pp->count] = key;
        pp->dir[pp->count] = dir;
        pp->count++;
    }
}

static int partial_select(TRVlp lp, double tol) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    primal_partial *pp = ps->partial;
    /* refresh the kept entries */
    int kept = 0;
    for (int k = 0; k < pp->count; k++) {
        int j = pp->var[k];
        double a = may_enter(ps, it, j) ? primal_attract(it, j, primal_dj(lp, j)) : 0.0;
        if (a < -tol) {
            pp->key[kept] = a;
            if (it->status[j] == 3 && -a > 1e-5) pp->key[kept] -= 1e10;
            pp->var[kept] = j;
            pp->dir[kept] = pp->dir[k];
            kept++;
        } else {
            pp->mark[j] = 0;
        }
    }
    pp->count = kept;
    pp->fresh = 0;
    /* scan sections until the list is long enough */
    int sec = pp->next_start % pp->stride, scanned = 0;
    bool full = true;
    while (scanned < pp->stride) {
        partial_scan(lp, sec, tol);
        sec = (sec + 1) % pp->stride;
        scanned++;
        if (pp->count > pp->target) {
            full = false;
            break;
        }
    }
    pp->next_start = sec;
    if (full && pp->target > 2) pp->target--;
    if (pp->count == 0) return -1;
    int best = 0;
    for (int k = 1; k < pp->count; k++)
        if (pp->key[k] < pp->key[best]) best = k;
    int q = pp->var[best];
    /* drop the choice from the list: it is about to enter */
    pp->mark[q] = 0;
    pp->count--;
    pp->var[best] = pp->var[pp->count];
    pp->key[best] = pp->key[pp->count];
    pp->dir[best] = pp->dir[pp->count];
    it->d[q] = primal_dj(lp, q);
    (void)s;
    return q;
}

/* ---- the families that keep every reduced cost ----------------------------- */

/* The family's measure of nonbasic j with attractiveness a (negative). */
static inline double family_key(int fam, const double *w, int j, double a) {
    if (fam == 4) return -a;
    if (fam == 1) return a * a / (w[j] * w[j]);
    return a * a / w[j];
}

/* Column j in its places in the two heaps at tol, or out of them. */
static void cols_set(primal_state *ps, const simplex_iter *it, int j) {
    double a = may_enter(ps, it, j) ? primal_attract(it, j, it->d[j]) : 0.0;
    if (a >= -ps->cols_tol) {
        kheap_remove(&ps->cols, j);
        kheap_remove(&ps->supers, j);
        return;
    }
    kheap_set(&ps->cols, j, family_key(ps->pricing, it->pweight, j, a), 1.0);
    if (it->status[j] == VS_SUPER && -a > 1e-5)
        kheap_set(&ps->supers, j, -a, 1.0);
    else
        kheap_remove(&ps->supers, j);
}

/* Both heaps made anew from every column. */
static void cols_build(primal_state *ps, const simplex_iter *it, int nt, double tol) {
    ps->cols_tol = tol;
    kheap_begin(&ps->cols);
    kheap_begin(&ps->supers);
    for (int j = 0; j < nt; j++) {
        if (!may_enter(ps, it, j)) continue;
        double a = primal_attract(it, j, it->d[j]);
        if (a >= -tol) continue;
        kheap_append(&ps->cols, j, family_key(ps->pricing, it->pweight, j, a), 1.0);
        if (it->status[j] == VS_SUPER && -a > 1e-5) kheap_append(&ps->supers, j, -a, 1.0);
    }
    kheap_order(&ps->cols);
    kheap_order(&ps->supers);
}

void primal_price_touch(primal_state *ps, int j) {
    /* artificials never enter */
    if (ps->cols.heap != nullptr && !ps->cols.stale && j < ps->cols.cap) kheap_touch(&ps->cols, j);
}

/* The choice by a scan of every column: a superbasic whose reduced cost
 * passes 1e-5 first, the largest; else the best by the family's measure. */
static int keyed_scan(TRVlp lp, double tol) {
    const simplex_lp *s = &lp->solver->splp;
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int best = -1, best_super = -1;
    double best_key = 0.0, best_sd = 1e-5;
    for (int j = 0; j < s->ntotal; j++) {
        if (!may_enter(ps, it, j)) continue;
        double a = primal_attract(it, j, it->d[j]);
        if (a >= -tol) continue;
        if (it->status[j] == VS_SUPER && -a > best_sd) {
            best_sd = -a;
            best_super = j;
        }
        double key = family_key(ps->pricing, it->pweight, j, a);
        if (key > best_key) {
            best_key = key;
            best = j;
        }
    }
    return best_super >= 0 ? best_super : best;
}

/* The same choice from the heaps, kept up with the columns that changed. */
static int keyed_select(TRVlp lp, double tol) {
    const simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    int nt = lp->solver->splp.ntotal;
    key_heap *h = &ps->cols;
    if (h->stale || tol != ps->cols_tol) {
        cols_build(ps, it, nt, tol);
    } else {
        for (int k = 0; k < h->ndirty; k++) {
            int j = h->dirty[k];
            h->dirty_in[j] = 0;
            cols_set(ps, it, j);
        }
        h->ndirty = 0;
    }
    int best = kheap_best(&ps->supers, it->ban);
    if (best < 0) best = kheap_best(h, it->ban);
    if (simplex_checking) {
        int scan = keyed_scan(lp, tol);
        if (scan != best) simplex_check_faults++;
    }
    return best;
}

/* A reduced cost is only as exact as the sum it comes from: one at the
 * level of the round-off of its terms (relative 1e-12 of the sum of
 * |y_i a_ij|) is no reason to pivot. The tolerances of the pricing lie far
 * above that level, save at the closer looks at an infeasible end of
 * phase 1, where a choice by round-off trades values between variables
 * without end. */
static bool above_noise(TRVlp lp, int j, double d) {
    const primal_state *ps = lp->primal;
    if (ps->phase != 1 || ps->p1_rechecks == 0) return true;
    const simplex_lp *s = &lp->solver->splp;
    const double *y = lp->solver->it.y;
    double terms = 0.0;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) terms += std::fabs(y[s->row_idx[k]] * s->val[k]);
    return std::fabs(d) > 1e-12 * terms;
}

/* A candidate whose reduced cost is round-off leaves the choice for the
 * round (ban 33). */
static void drop_noise(TRVlp lp, int q) {
    lp->solver->it.ban[q] = BAN_ROUND;
    lp->primal->n_banned++;
    primal_price_touch(lp->primal, q);
}

/* The entering variable, or -1; its reduced cost is verified against the
 * current duals before it is returned. */
int primal_price_select(TRVlp lp, double tol) {
    primal_state *ps = lp->primal;
    simplex_iter *it = &lp->solver->it;
    if (lp->solver->splp.ntotal == 0) return -1;
    if (ps->partial != nullptr) {
        for (int round = 0; round < 3; round++) {
            int q = partial_select(lp, tol);
            if (q < 0) return -1;
            if (primal_attract(it, q, it->d[q]) >= -tol) continue;
            if (above_noise(lp, q, it->d[q])) return q;
            drop_noise(lp, q);
            round--;
        }
        return -1;
    }
    for (int round = 0; round < 3; round++) {
        int q = keyed_select(lp, tol);
        if (q < 0) return -1;
        double d = primal_dj(lp, q);
        it->d[q] = d;
        primal_price_touch(ps, q);
        if (primal_attract(it, q, d) >= -tol) continue;
        if (above_noise(lp, q, d)) return q;
        drop_noise(lp, q);
        round--;
    }
    primal_compute_d(lp);
    while (true) {
        int q = keyed_select(lp, tol);
        if (q < 0 || above_noise(lp, q, it->d[q])) return q;
        drop_noise(lp, q);
    }
}

/* ---- weights after a pivot --------------------------------------------------- */

static void devex_pivot(TRVlp lp, int p, int r, int q, double alpha_p) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    primal_devex *dv = ps->devex;
    double *w = it->pweight;
    const sparse_vec *a = &ps->alpha;
    double v = 0.0;
    for (int k = 0; k < a->nz; k++) {
        int i = a->idx[k];
        if (dv->ref[it->head[i]]) v += a->val[i] * a->val[i];
    }
    double ap = std::fabs(alpha_p);
    double g2 = v + dv->ref[q] - alpha_p * alpha_p * (dv->ref[q] - dv->ref[r]);
    double wq = std::sqrt(std::max(g2, 1e-12));
    if (w[q] > 2.0 * std::max(wq, 1.0)) {
        devex_reset(lp);
        return;
    }
    for (int k = 0; k < ps->prow_nz; k++) {
        int j = ps->prow_idx[k];
        if (j == q) continue;
        double g = std::fabs(ps->prow[j]) * wq / ap;
        if (g > w[j]) w[j] = g;
    }
    w[r] = std::max(wq / ap, 1.0);
    (void)p;
    (void)s;
}

static void steep_pivot(TRVlp lp, int p, int r, int q, double alpha_p) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    double *w = it->pweight;
    const sparse_vec *a = &ps->alpha;
    double nrm = 1.0;
    for (int k = 0; k < a->nz; k++) nrm += a->val[a->idx[k]] * a->val[a->idx[k]];
    double v = nrm / (alpha_p * alpha_p);
    /* the entering weight is the one checked for free against its exact
     * value; a miss tells that the updates have drifted */
    if (w[q] > 2.0 * nrm || nrm > 2.0 * w[q]) ps->steep_miss++;
    /* tau = B^-T alpha */
    sparse_vec *t = &ps->tau;
    sv_copy(t, a);
    lu_btran(lp->factor, t, t);
    if (t->nz < 0) sv_from_dense(t);
    for (int k = 0; k < ps->prow_nz; k++) {
        int j = ps->prow_idx[k];
        if (j == q) continue;
        double rj = ps->prow[j] / alpha_p;
        double tj = 0.0;
        for (int e = s->col_beg[j]; e < s->col_end[j]; e++) tj += t->val[s->row_idx[e]] * s->val[e];
        double nw = w[j] - 2.0 * rj * tj + rj * rj * nrm;
        double fl = 1.0 + rj * rj;
        w[j] = nw < fl ? fl : nw;
        if (w[j] > 1e8) w[j] = 1e8;
    }
    w[r] = std::max(v, 1.0);
    sv_clear(t);
    (void)p;
    (void)q;
}

void primal_price_pivot(TRVlp lp, int p, int leaving, int entering, double alpha_p) {
    primal_state *ps = lp->primal;
    if (ps->pricing == 1 && ps->devex != nullptr)
        devex_pivot(lp, p, leaving, entering, alpha_p);
    else if (ps->pricing == 2 || ps->pricing == 3)
        steep_pivot(lp, p, leaving, entering, alpha_p);
}

/* ---- the start of the steepest-edge weights ---------------------------------- */

/* 1 + |a_j|^2: the weight of column j in a basis of slacks. */
static double cheap_weight(const simplex_lp *s, int j) {
    double v = 1.0;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) v += s->val[k] * s->val[k];
    return v;
}

/* 1 + |B^-1 a_j|^2 by a forward solve. */
static double exact_weight(TRVlp lp, int j) {
    const simplex_lp *s = &lp->solver->splp;
    primal_state *ps = lp->primal;
    sparse_vec *c = &ps->col, *t = &ps->tau;
    sv_clear(c);
    c->nz = 0;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) {
        c->val[s->row_idx[k]] = s->val[k];
        c->idx[c->nz++] = s->row_idx[k];
    }
    lu_ftran_nospike(lp->factor, t, c);
    if (t->nz < 0) sv_from_dense(t);
    double v = 1.0;
    for (int k = 0; k < t->nz; k++) v += t->val[t->idx[k]] * t->val[t->idx[k]];
    sv_clear(t);
    sv_clear(c);
    return v;
}

/* The clock of an exact start: once the run's time limit has passed the
 * start goes on cheaply and the run ends through its limit path. */
static bool norms_out_of_time(TRVenv env, primal_state *ps) {
    if (ps->time_limit >= 1e74 || env_time(env) - ps->start_time < ps->time_limit) return false;
    ps->abort = 2;
    return true;
}

static bool priced(const simplex_lp *s, const simplex_iter *it, int j) {
    return j < s->ntotal && it->status[j] != 1;
}

/* The weights kept with the stored basis, those missing computed exactly;
 * the count computed. */
static int stored_weights(TRVenv env, TRVlp lp) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    bool cheap = false;
    int computed = 0;
    for (int j = 0; j < s->ncoltot; j++) {
        double w = priced(s, it, j) ? start_pnorm(lp->start, s, j) : 1.0;
        if (!(w > 0.0)) {
            w = cheap ? cheap_weight(s, j) : exact_weight(lp, j);
            cheap = cheap || norms_out_of_time(env, lp->primal);
            computed++;
        }
        it->pweight[j] = w > 1e8 ? 1e8 : w;
    }
    return computed;
}

/* The stored weights apply to a basis loaded from the record that holds
 * them: parameter 1001 on, and a record no larger than the model. */
static bool weights_stored(TRVenv env, TRVlp lp) {
    const start_rec *sr = lp->start;
    const simplex_lp *s = &lp->solver->splp;
    return sr != nullptr && sr->has_pnorms && par_int(env, 1001) != 0 && sr->ncols <= s->n &&
           sr->nrows <= s->m;
}

/* Steepest-edge weights: those kept with the stored basis, else
 * 1 + |B^-1 a_j|^2, exactly (mode 2) or from the column norms (mode 3, or
 * a basis of slacks). */
int primal_norms_init(TRVenv env, TRVlp lp, int mode) {
    const simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    primal_state *ps = lp->primal;
    ps->cols.stale = 1;
    bool show = ps->log.display > 0;
    if (weights_stored(env, lp)) {
        if (show) TRVmsg(env->reschannel, "Reinitializing primal norms . . .\n");
        int computed = stored_weights(env, lp);
        if (show) TRVmsg(env->reschannel, "Computed %d new norms.\n", computed);
        return 0;
    }
    bool slack_basis = true;
    for (int i = 0; i < s->m; i++)
        if (it->head[i] < s->nstruct) slack_basis = false;
    bool cheap = mode == 3 || slack_basis;
    if (!cheap && show) TRVmsg(env->reschannel, "Initializing primal norms . . .\n");
    for (int j = 0; j < s->ncoltot; j++) {
        double v = 1.0;
        if (priced(s, it, j)) {
            v = cheap ? cheap_weight(s, j) : exact_weight(lp, j);
            cheap = cheap || norms_out_of_time(env, ps);
        }
        it->pweight[j] = v > 1e8 ? 1e8 : v;
    }
    return 0;
}
