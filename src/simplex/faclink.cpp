/*
 * faclink.cpp - the recovery ladder around the factorization:
 * lu_refactor for the drivers, lu_crash_factor for the starting basis, and
 * basis_repair, which rewrites the basis header after a singularity.
 */
#include <cmath>
#include <cstring>

#include "simplex/core.h"

static double raise_threshold(double u) {
    if (u < 0.1) return 0.1;
    u += 0.1;
    return u > 0.99999 ? 0.99999 : u;
}

/* The 1001 branch shared by both ladders: 0 to retry, else 1001. */
static int compress_branch(TRVenv env, lu_record *f, simplex_lp *s, bool *compressed,
                           double fr0, double fc0) {
    if (*compressed) return 1001;
    if (s->fill_col != fc0 || s->fill_row != fr0) return 1001;
    if (s->fill_row <= 1.1) return 1001;
    TRVmsg(env->errchannel, "Compressing row and column files.\n");
    f->growth_locked = 1;
    s->fill_row = s->fill_col = 1.1;
    *compressed = true;
    return 0;
}

int lu_refactor(TRVenv env, TRVlp lp, double *threshold_p, double pivtol,
                int repair_allowed, int partial_flag) {
    if (lp->solver == nullptr) return 1258;
    if (lp->factor == nullptr && lu_alloc(env, lp) != 0) return 1001;
    lu_record *f = lp->factor;
    simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    int m = s->m;
    f->update_count_prev = f->update_count;
    f->update_count = 0;
    lu_release_spikes(f);
    double fr0 = s->fill_row, fc0 = s->fill_col;
    double u0 = *threshold_p;
    bool compressed = false;
    int repairs = 0;
    int c = lu_factor(lp, it->head, m, f->rowmap, f->colmap, 0, nullptr, *threshold_p,
                      pivtol, nullptr, &s->fill_col, &s->fill_row);
    while (c != 0 && repairs < 10) {
        if (c == 1001) {
            if (compress_branch(env, f, s, &compressed, fr0, fc0) != 0) return 1001;
        } else if (c == 2000) {
            TRVmsg(env->errchannel, "Not enough memory for dense factorization.\n");
            f->dense_frac = 10.0;
        } else if (c == 2009) {
            *threshold_p = raise_threshold(*threshold_p);
        } else {
            if (!repair_allowed) return c == 1256 ? 1256 : c;
            if (repairs == 0) {
                int old = it->sing_count++;
                if (old >= it->sing_limit) return c;
                *threshold_p = raise_threshold(*threshold_p);
                if (par_int(env, 1019) != 0)
                    TRVmsg(env->errchannel, "Repairing basis singularity.\n");
            }
            int st = basis_repair(env, lp, f->rowmap, f->colmap, partial_flag);
            if (st == 1001) return 1001;
            repairs++;
        }
        c = lu_factor(lp, it->head, m, f->rowmap, f->colmap, 0, nullptr, *threshold_p,
                      pivtol, nullptr, &s->fill_col, &s->fill_row);
    }
    if (*threshold_p - u0 >= 0.01 && it->n_it > 0) {
        if (par_int(env, 1019) != 0)
            TRVmsg(env->reschannel, "Markowitz threshold set to %g.\n", *threshold_p);
        it->bias_markowitz = *threshold_p;
    }
    if (c != 0) return c;
    it->n_lu++;
    return repairs > 0 ? 2002 : 0;
}

int lu_crash_factor(TRVenv env, TRVlp lp, int ncols, const int *head, int *rowmap,
                    int *colmap, const char *rowsubset, double markowitz, double pivtol) {
    if (lp->solver == nullptr) return 1258;
    if (lp->factor == nullptr && lu_alloc(env, lp) != 0) return 1001;
    lu_record *f = lp->factor;
    simplex_lp *s = &lp->solver->splp;
    double fr0 = s->fill_row, fc0 = s->fill_col;
    bool compressed = false;
    for (int round = 0; round < 10; round++) {
        double kappa;
        int c = lu_factor(lp, head, ncols, rowmap, colmap, 1, rowsubset, markowitz, pivtol,
                          &kappa, &s->fill_col, &s->fill_row);
        if (c == 0) return 0;
        if (c == 1256) return 2002;
        if (c == 1001) {
            if (compress_branch(env, f, s, &compressed, fr0, fc0) != 0) return 1001;
        } else if (c == 2000) {
            TRVmsg(env->errchannel, "Not enough memory for dense factorization.\n");
            f->dense_frac = 10.0;
        } else {
            return c;
        }
    }
    return 1256;
}

/* Squared norm of column j. */
static double col_norm2(const simplex_lp *s, int j) {
    double t = 0.0;
    for (int k = s->col_beg[j]; k < s->col_end[j]; k++) t += s->val[k] * s->val[k];
    return t;
}

static int super_append(simplex_iter *it, int j, double v) {
    if (it->nsuper >= it->super_cap) {
        int cap = 2 * it->super_cap + 16;
        if (trv_grow(&it->super_var, cap) || trv_grow(&it->super_val, cap)) return 1001;
        it->super_cap = cap;
    }
    it->super_var[it->nsuper] = j;
    it->super_val[it->nsuper] = v;
    it->nsuper++;
    return 0;
}

/* Takes j out of the superbasic list; returns 1 with its value if it was
 * there. */
static int super_take(simplex_iter *it, int j, double *v) {
    for (int k = 0; k < it->nsuper; k++)
        if (it->super_var[k] == j) {
            *v = it->super_val[k];
            it->nsuper--;
            it->super_var[k] = it->super_var[it->nsuper];
            it->super_val[k] = it->super_val[it->nsuper];
            return 1;
        }
    return 0;
}

int basis_repair(TRVenv env, TRVlp lp, const int *rowmap, const int *colmap, int keep_values) {
    simplex_lp *s = &lp->solver->splp;
    simplex_iter *it = &lp->solver->it;
    lu_record *f = lp->factor;
    const int m = s->m;
    lp_data *d = lp->lpdata;
    /* 1. dual superbasics join the primal list */
    it->nsuper += it->nsuper_dual;
    it->nsuper_dual = 0;
    bool fixing = it->sing_count > it->fix_allowance;
    /* 2. pivoted positions keep their variables, compacted to the front;
     * the positions' own records move with them */
    int *leaving = f->list;
    int nleave = 0, k = 0;
    for (int p = 0; p < m; p++) {
        int j = it->head[p];
        if (colmap[p] < 0) {
            leaving[nleave++] = j;
            continue;
        }
        if (j >= s->ntotal) {
            int sl = s->slack_of_row[j - s->ntotal];
            if (sl != j && it->status[sl] != 1) {
                it->status[j] = 0;
                it->x[j] = 0.0;
                j = sl;
                it->status[j] = 1;
            }
        }
        it->head[k] = j;
        if (it->pos_ban) it->pos_ban[k] = it->pos_ban[p];
        if (it->dweight) it->dweight[k] = it->dweight[p];
        k++;
    }
    /* 3. the variables of unpivoted positions leave */
    for (int q = 0; q < nleave; q++) {
        int j = leaving[q];
        if (j >= s->ntotal) {
            it->status[j] = 0;
            it->x[j] = 0.0;
            continue;
        }
        if (j >= s->nstruct) {
            TRVmsg(env->errchannel, "Slack removed by singularity.\n");
            it->status[j] = 0;
            it->x[j] = s->lower[j];
            if (it->d != nullptr) {
                double dj = s->cost[j];
                if (it->y != nullptr)
                    for (int e = s->col_beg[j]; e < s->col_end[j]; e++)
                        dj -= it->y[s->row_idx[e]] * s->val[e];
                it->d[j] = dj;
            }
            continue;
        }
        if (fixing) {
            if (j >= s->n) {
                TRVmsg(env->errchannel, "Variable 'range %.255s' caused singularity.\n",
                       simplex_varname(env, lp, j));
            } else {
                TRVmsg(env->errchannel, "Variable '%.255s' fixed because of singularity.\n",
                       simplex_varname(env, lp, j));
                it->ban[j] = 32;
            }
        }
        double x = it->x[j], l = s->lower[j], u = s->upper[j];
        bool fl = s->has_lower[j], fu = s->has_upper[j];
        if (keep_values && (!fl || x > l) && (!fu || x < u) && std::fabs(x) < 1e10) {
            it->status[j] = 3;
            if (super_append(it, j, x) != 0) return 1001;
            TRVmsg(env->errchannel, "Added to superbasic list.\n");
        } else {
            int st;
            if (!fl && !fu)
                st = 3;
            else if (!fl)
                st = 2;
            else if (!fu)
                st = 0;
            else if (keep_values)
                st = (u - x) <= (x - l) ? 2 : 0;
            else
                st = std::fabs(u) < std::fabs(l) ? 2 : 0;
            it->status[j] = static_cast<signed char>(st);
            it->x[j] = st == 0 ? l : st == 2 ? u : 0.0;
            if (st == 3 && super_append(it, j, 0.0) != 0) return 1001;
        }
        if (it->pweight != nullptr) it->pweight[j] = 1.0 + col_norm2(s, j);
    }
    /* 4. each row without a pivot gets its own slack or artificial */
    for (int r = 0; r < m; r++) {
        if (rowmap[r] >= 0) continue;
        int j = s->slack_of_row[r];
        if (it->status[j] == 1) j = s->ntotal + r;
        int p = k++;
        it->head[p] = j;
        it->status[j] = 1;
        if (it->pos_ban != nullptr) it->pos_ban[p] = 0;
        if (fixing && it->has_dual) {
            TRVmsg(env->errchannel, "Dual '%.255s' fixed because of singularity.\n",
                   env_conname(env, d->rowname, d->nrows, r));
            if (it->pos_ban != nullptr) it->pos_ban[p] = 32;
        }
        double v = 0.0;
        if (!super_take(it, j, &v)) v = 0.0;
        it->x[j] = v;
        if (it->dweight != nullptr) {
            double w = 1.0;
            if (it->dual_full_norms) {
                double t = 0.0;
                for (int c = 0; c < s->nstruct; c++)
                    for (int e = s->col_beg[c]; e < s->col_end[c]; e++)
                        if (s->row_idx[e] == r) t += s->val[e] * s->val[e];
                w = 2.0 + t;
            }
            it->dweight[p] = w;
        }
    }
    /* 6. the dependent structures of the drivers are rebuilt by them */
    return k == m ? 0 : 1256;
}
