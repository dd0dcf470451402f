/*
 * scale.cpp - scaling of the model in place. A scaled entry is
 * a / (R[i] * C[j]); objective entries are divided by C, bounds multiplied
 * by C, right-hand sides and ranges divided by R. rowscale and colscale
 * point at the stores exactly while the data is scaled; the queries
 * translate back.
 *
 * Schemes: 0 equilibration (rows by their largest entry, then columns), 1
 * geometric (alternating square roots of the smallest and largest entry,
 * finished by a column equilibration).
 */
#include <cmath>

#include "store/scale.h"

#define SCALE_ZERO 1e-13

static bool infinite(double v) { return v >= TRV_INF || v <= -TRV_INF; }

/* Range columns take the reciprocal of their row's factor, so that their
 * entry stays -1. */
static void range_factors(lp_data *d) {
    for (int j = d->ncols; j < d->nstruct; j++) {
        if (d->matcnt[j] < 1) continue;
        int i = d->matind[d->matbeg[j]];
        d->colscalestore[j] = 1.0 / d->rowscalestore[i];
    }
}

static void apply(lp_data *d) {
    const double *R = d->rowscalestore, *C = d->colscalestore;
    for (int j = 0; j < d->nstruct; j++) {
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++)
            d->matval[k] /= R[d->matind[k]] * C[j];
        d->obj[j] /= C[j];
        if (!infinite(d->lb[j])) d->lb[j] *= C[j];
        if (!infinite(d->ub[j])) d->ub[j] *= C[j];
    }
    for (int i = 0; i < d->nrows; i++) {
        d->rhs[i] /= R[i];
        if (d->rngval != nullptr) d->rngval[i] /= R[i];
    }
    d->rowscale = d->rowscalestore;
    d->colscale = d->colscalestore;
}

static void unapply(lp_data *d) {
    const double *R = d->rowscalestore, *C = d->colscalestore;
    for (int j = 0; j < d->nstruct; j++) {
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++)
            d->matval[k] *= R[d->matind[k]] * C[j];
        d->obj[j] *= C[j];
        if (!infinite(d->lb[j])) d->lb[j] /= C[j];
        if (!infinite(d->ub[j])) d->ub[j] /= C[j];
    }
    for (int i = 0; i < d->nrows; i++) {
        d->rhs[i] *= R[i];
        if (d->rngval != nullptr) d->rngval[i] *= R[i];
    }
    d->rowscale = nullptr;
    d->colscale = nullptr;
}

static void drop_stores(lp_data *d) {
    trv_free(&d->rowscalestore);
    trv_free(&d->colscalestore);
}

/* Returns true when the matrix needs scaling. */
static bool scale_needed(const lp_data *d) {
    double lo = 1e300, hi = 0.0;
    for (int j = 0; j < d->ncols; j++)
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
            double a = std::fabs(d->matval[k]);
            if (a < SCALE_ZERO) continue;
            if (a < lo) lo = a;
            if (a > hi) hi = a;
        }
    if (hi == 0.0) return false;
    return !(hi <= 10.0 && lo >= 0.1 && hi / lo <= 10.0);
}

/* Column factors as the largest entry of the row-scaled column. */
static void equilibrate_columns(lp_data *d) {
    double *R = d->rowscalestore, *C = d->colscalestore;
    for (int j = 0; j < d->ncols; j++) {
        double c = 0.0;
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
            double a = std::fabs(d->matval[k]) / R[d->matind[k]];
            if (a > c) c = a;
        }
        C[j] = c > 0.0 ? c : 1.0;
    }
}

static void scheme_equilibrate(lp_data *d) {
    double *R = d->rowscalestore;
    for (int i = 0; i < d->nrows; i++) R[i] = 0.0;
    for (int j = 0; j < d->ncols; j++)
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
            double a = std::fabs(d->matval[k]);
            if (a > R[d->matind[k]]) R[d->matind[k]] = a;
        }
    for (int i = 0; i < d->nrows; i++)
        if (R[i] == 0.0) R[i] = 1.0;
    equilibrate_columns(d);
}

/* Largest over columns of largest / smallest scaled entry. */
static double column_spread(const lp_data *d, const double *R, const double *C) {
    double q = 1.0;
    for (int j = 0; j < d->ncols; j++) {
        double lo = 1e300, hi = 0.0;
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
            double a = std::fabs(d->matval[k]);
            if (a < SCALE_ZERO) continue;
            a /= R[d->matind[k]] * C[j];
            if (a < lo) lo = a;
            if (a > hi) hi = a;
        }
        if (hi > 0.0 && hi / lo > q) q = hi / lo;
    }
    return q;
}

static int scheme_geometric(lp_data *d) {
    int m = d->nrows, n = d->ncols;
    double *R = d->rowscalestore, *C = d->colscalestore;
    double *lo = trv_alloc<double>(m), *hi = trv_alloc<double>(m);
    double *bestR = trv_alloc<double>(m), *bestC = trv_alloc<double>(n);
    if (!lo || !hi || !bestR || !bestC) {
        trv_free(&lo), trv_free(&hi), trv_free(&bestR), trv_free(&bestC);
        return 1001;
    }
    for (int i = 0; i < m; i++) R[i] = bestR[i] = 1.0;
    for (int j = 0; j < n; j++) C[j] = bestC[j] = 1.0;
    double old = column_spread(d, R, C);
    if (old >= 1.0 / 0.9) {
        for (int pass = 0; pass < 20; pass++) {
            for (int i = 0; i < m; i++) lo[i] = 1e300, hi[i] = 0.0;
            for (int j = 0; j < n; j++)
                for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
                    double a = std::fabs(d->matval[k]);
                    if (a < SCALE_ZERO) continue;
                    a /= C[j];
                    int i = d->matind[k];
                    if (a < lo[i]) lo[i] = a;
                    if (a > hi[i]) hi[i] = a;
                }
            for (int i = 0; i < m; i++) R[i] = hi[i] > 0.0 ? std::sqrt(lo[i] * hi[i]) : 1.0;
            for (int j = 0; j < n; j++) {
                double l = 1e300, h = 0.0;
                for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
                    double a = std::fabs(d->matval[k]);
                    if (a < SCALE_ZERO) continue;
                    a /= R[d->matind[k]];
                    if (a < l) l = a;
                    if (a > h) h = a;
                }
                C[j] = h > 0.0 ? std::sqrt(l * h) : 1.0;
            }
            double now = column_spread(d, R, C);
            if (now < old - 1e-10) {
                for (int i = 0; i < m; i++) bestR[i] = R[i];
                for (int j = 0; j < n; j++) bestC[j] = C[j];
            }
            if (!(now < 0.9 * old)) break;
            old = now;
        }
    }
    for (int i = 0; i < m; i++) R[i] = bestR[i];
    for (int j = 0; j < n; j++) C[j] = bestC[j];
    equilibrate_columns(d);
    trv_free(&lo), trv_free(&hi), trv_free(&bestR), trv_free(&bestC);
    return 0;
}

void lp_unscaled_free(lp_unscaled *u) {
    trv_free(&u->obj);
    trv_free(&u->lb);
    trv_free(&u->ub);
    trv_free(&u->rhs);
    trv_free(&u->rngval);
    trv_free(&u->matval);
}

int lp_unscaled_copy(const lp_data *d, lp_unscaled *u) {
    *u = lp_unscaled{};
    if (d->colscale == nullptr) return 0;
    const double *R = d->rowscalestore, *C = d->colscalestore;
    int n = d->ncols, m = d->nrows, nzend = 0;
    for (int j = 0; j < n; j++)
        if (d->matbeg[j] + d->matcnt[j] > nzend) nzend = d->matbeg[j] + d->matcnt[j];
    u->obj = trv_alloc<double>(n > 0 ? n : 1);
    u->lb = trv_alloc<double>(n > 0 ? n : 1);
    u->ub = trv_alloc<double>(n > 0 ? n : 1);
    u->rhs = trv_alloc<double>(m > 0 ? m : 1);
    u->matval = trv_alloc<double>(nzend > 0 ? nzend : 1);
    if (d->rngval != nullptr) u->rngval = trv_alloc<double>(m > 0 ? m : 1);
    if (!u->obj || !u->lb || !u->ub || !u->rhs || !u->matval ||
        (d->rngval != nullptr && !u->rngval)) {
        lp_unscaled_free(u);
        return 1001;
    }
    for (int j = 0; j < n; j++) {
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++)
            u->matval[k] = d->matval[k] * (R[d->matind[k]] * C[j]);
        u->obj[j] = d->obj[j] * C[j];
        u->lb[j] = infinite(d->lb[j]) ? d->lb[j] : d->lb[j] / C[j];
        u->ub[j] = infinite(d->ub[j]) ? d->ub[j] : d->ub[j] / C[j];
    }
    for (int i = 0; i < m; i++) {
        u->rhs[i] = d->rhs[i] * R[i];
        if (u->rngval != nullptr) u->rngval[i] = d->rngval[i] * R[i];
    }
    return 0;
}

/* Undoes the scaling of the data; the stores stay. */
int lp_unscale(TRVenv, TRVlp lp) {
    lp_data *d = lp->lpdata;
    if (d->colscale != nullptr && d->rowscalestore != nullptr) unapply(d);
    d->rowscale = d->colscale = nullptr;
    return 0;
}

/* Brings the model to the scaling of scheme want (-1 none). Returns 0 or
 * 1001, in which case the model is left unscaled. */
int lp_scale(TRVenv env, TRVlp lp, int want) {
    lp_data *d = lp->lpdata;
    if (d->nrows == 0 || d->ncols == 0) {
        lp_unscale(env, lp);
        drop_stores(d);
        return 0;
    }
    if (d->scaletype == want && d->rowscalestore != nullptr && d->colscalestore != nullptr) {
        if (d->colscale == nullptr) {
            range_factors(d);
            apply(d);
        }
        return 0;
    }
    if (d->scaletype == -2) return 0;
    lp_unscale(env, lp);
    drop_stores(d);
    d->scaletype = -1;
    if (want < 0) return 0;
    if (!scale_needed(d)) {
        d->scaletype = -2;
        return 0;
    }
    d->rowscalestore = trv_alloc<double>(d->rowspace > d->nrows ? d->rowspace : d->nrows);
    d->colscalestore = trv_alloc<double>(d->colspace > d->nstruct ? d->colspace : d->nstruct);
    if (d->rowscalestore == nullptr || d->colscalestore == nullptr) {
        drop_stores(d);
        return 1001;
    }
    if (want == 1) {
        if (scheme_geometric(d) != 0) {
            drop_stores(d);
            return 1001;
        }
    } else {
        scheme_equilibrate(d);
    }
    range_factors(d);
    apply(d);
    d->scaletype = want;
    return 0;
}

TRV_EXPORT int TRVunscaleprob(TRVenv env, TRVlp lp) {
    int status = call_enter(&env, &lp, 0);
    if (status != 0) return call_leave(env, status);
    bool was = lp->lpdata->colscale != nullptr;
    lp_unscale(env, lp);
    drop_stores(lp->lpdata);
    lp->lpdata->scaletype = -1;
    if (was) invalidate(env, lp, 51);
    return 0;
}
