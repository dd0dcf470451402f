/*
 * build.cpp - the working LP of the simplex (simplex_lp) built from the
 * problem record, the iteration state with a slack basis, and the hooks
 * through which a change of the model reaches them.
 */
#include <cmath>
#include <cstring>

#include "simplex/core.h"

static void splp_release(simplex_lp *s) {
    trv_free(&s->col_len);
    trv_free(&s->col_beg);
    trv_free(&s->col_end);
    trv_free(&s->row_idx);
    trv_free(&s->val);
    trv_free(&s->lower);
    trv_free(&s->upper);
    trv_free(&s->cost);
    trv_free(&s->has_lower);
    trv_free(&s->has_upper);
    trv_free(&s->rowscale);
    trv_free(&s->colscale);
    trv_free(&s->slack_of_row);
    trv_free(&s->row_of_var);
}

static void iter_release(simplex_iter *it) {
    trv_free(&it->head);
    trv_free(&it->status);
    trv_free(&it->x);
    trv_free(&it->d);
    trv_free(&it->y);
    trv_free(&it->ban);
    trv_free(&it->pos_ban);
    trv_free(&it->pweight);
    trv_free(&it->dweight);
    trv_free(&it->super_var);
    trv_free(&it->super_val);
}

void simplex_free(TRVlp lp) {
    if (lp->solver == nullptr) return;
    splp_release(&lp->solver->splp);
    iter_release(&lp->solver->it);
    trv_free(&lp->solver);
}

int simplex_fix_allowance(TRVenv env, int m) {
    int a = m < 10 ? 0 : m < 100 ? 1 : m < 1000 ? 2 : m < 10000 ? 3 : 4;
    int p = par_int(env, 1037);
    if (p != 0 && a >= p) a = p - 1;
    return a;
}

const char *simplex_varname(TRVenv env, TRVlp lp, int j) {
    lp_data *d = lp->lpdata;
    const simplex_lp *s = &lp->solver->splp;
    if (j < s->n) return env_varname(env, d->colname, d->ncols, j);
    return env_conname(env, d->rowname, d->nrows, s->row_of_var[j]);
}

static int build_lp(TRVenv env, const lp_data *d, simplex_lp *s) {
    int m = d->nrows, ns = d->nstruct, nt = d->ntotal;
    int nc = nt + m;
    s->m = m;
    s->n = d->ncols;
    s->nstruct = ns;
    s->ntotal = nt;
    s->ncoltot = nc;
    long nz = 0;
    for (int j = 0; j < ns; j++) nz += d->matcnt[j];
    long nzall = nz + (nt - ns) + m;
    if (nzall > 2000000000L) return 1001;
    s->col_len = trv_alloc<int>(nc);
    s->col_beg = trv_alloc<int>(nc);
    s->col_end = trv_alloc<int>(nc);
    s->row_idx = trv_alloc<int>(nzall);
    s->val = trv_alloc<double>(nzall);
    s->lower = trv_alloc<double>(nc);
    s->upper = trv_alloc<double>(nc);
    s->cost = trv_alloc<double>(nc);
    s->has_lower = trv_alloc<signed char>(nc);
    s->has_upper = trv_alloc<signed char>(nc);
    s->rowscale = trv_alloc<double>(m);
    s->colscale = trv_alloc<double>(nc);
    s->slack_of_row = trv_alloc<int>(m);
    s->row_of_var = trv_alloc<int>(nc);
    if (!s->col_len || !s->col_beg || !s->col_end || !s->row_idx || !s->val ||
        !s->lower || !s->upper || !s->cost || !s->has_lower || !s->has_upper ||
        !s->rowscale || !s->colscale || !s->slack_of_row || !s->row_of_var)
        return 1001;
    s->nz_matrix = 0;
    int pos = 0;
    for (int j = 0; j < ns; j++) {
        s->col_beg[j] = pos;
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
            if (d->matval[k] == 0.0) continue;
            s->row_idx[pos] = d->matind[k];
            s->val[pos] = d->matval[k];
            pos++;
        }
        s->col_end[j] = pos;
        s->col_len[j] = pos - s->col_beg[j];
        s->lower[j] = d->lb[j];
        s->upper[j] = d->ub[j];
        s->cost[j] = d->obj[j];
        s->row_of_var[j] = -1;
        if (j < d->ncols) s->nz_matrix += s->col_len[j];
    }
    /* range columns: the row of their single entry */
    for (int j = d->ncols; j < ns; j++)
        s->row_of_var[j] = s->col_len[j] > 0 ? s->row_idx[s->col_beg[j]] : -1;
    for (int i = 0; i < m; i++) s->slack_of_row[i] = nt + i;
    for (int j = ns; j < nt; j++) {
        int i = d->slackrow[j - ns];
        s->col_beg[j] = pos;
        s->row_idx[pos] = i;
        s->val[pos] = d->slackval[j - ns];
        pos++;
        s->col_end[j] = pos;
        s->col_len[j] = 1;
        s->lower[j] = 0.0;
        s->upper[j] = TRV_INF;
        s->cost[j] = 0.0;
        s->row_of_var[j] = i;
        s->slack_of_row[i] = j;
    }
    for (int i = 0; i < m; i++) {
        int j = nt + i;
        s->col_beg[j] = pos;
        s->row_idx[pos] = i;
        s->val[pos] = 1.0;
        pos++;
        s->col_end[j] = pos;
        s->col_len[j] = 1;
        s->lower[j] = 0.0;
        s->upper[j] = 0.0;
        s->cost[j] = 0.0;
        s->row_of_var[j] = i;
    }
    for (int j = 0; j < nc; j++) {
        s->has_lower[j] = s->lower[j] > -TRV_INFTEST;
        s->has_upper[j] = s->upper[j] < TRV_INFTEST;
        s->colscale[j] = 1.0;
    }
    for (int i = 0; i < m; i++) s->rowscale[i] = 1.0;
    s->sense = d->objsen < 0 ? -1.0 : 1.0;
    s->fill_row = d->fillfac_a; /* parameter 1033 */
    s->fill_col = d->fillfac_b; /* parameter 1005 */
    if (s->fill_row < 1.1) s->fill_row = par_dbl(env, 1033);
    if (s->fill_col < 1.1) s->fill_col = par_dbl(env, 1005);
    double hp = par_dbl(env, 1050), hd = par_dbl(env, 1049);
    s->harris_primal = hp < par_dbl(env, 1016) ? hp : par_dbl(env, 1016);
    s->harris_dual = hd < par_dbl(env, 1014) ? hd : par_dbl(env, 1014);
    return 0;
}

static int build_iter(TRVenv env, const simplex_lp *s, simplex_iter *it) {
    int m = s->m, nc = s->ncoltot;
    it->head = trv_alloc<int>(m);
    it->status = trv_alloc<signed char>(nc);
    it->x = trv_zalloc<double>(nc);
    it->ban = trv_zalloc<int>(nc);
    it->pos_ban = trv_zalloc<int>(m);
    it->super_cap = 16;
    it->super_var = trv_alloc<int>(it->super_cap);
    it->super_val = trv_alloc<double>(it->super_cap);
    if (!it->head || !it->status || !it->x || !it->ban || !it->pos_ban ||
        !it->super_var || !it->super_val)
        return 1001;
    for (int j = 0; j < nc; j++) {
        bool fl = s->has_lower[j], fu = s->has_upper[j];
        if (!fl && !fu) {
            it->status[j] = 3;
            it->x[j] = 0.0;
        } else if (fl && (!fu || std::abs(s->lower[j]) <= std::abs(s->upper[j]))) {
            it->status[j] = 0;
            it->x[j] = s->lower[j];
        } else {
            it->status[j] = 2;
            it->x[j] = s->upper[j];
        }
    }
    for (int i = 0; i < m; i++) {
        it->head[i] = s->slack_of_row[i];
        it->status[s->slack_of_row[i]] = 1;
    }
    it->sing_limit = par_int(env, 1037);
    it->fix_allowance = simplex_fix_allowance(env, m);
    it->markowitz = par_dbl(env, 1013);
    it->pivot_tol = 1e-11;
    it->leave_pos = -1;
    it->enter_var = -1;
    return 0;
}

/* A change of the model drops or marks the working records. */
static void work_drop(TRVlp lp, unsigned what) {
    if (what & WORK_DUAL) dual_free(lp);
    if (what & WORK_PRIMAL) primal_free(lp);
    if (what & WORK_SOLVER) {
        simplex_free(lp);
    } else if (lp->solver != nullptr) {
        if (what & WORK_STALE_LP) lp->solver->ready = 0;
        if (what & WORK_STALE_X) lp->solver->ready2 = 0;
    }
    if (what & WORK_FACTOR) lu_free(lp);
}

/* Tightened bounds: the working LP takes the model's new bounds, so that
 * it stays in step; a nonbasic value follows its bound. */
static void work_bounds(TRVlp lp, int cnt, const int *indices, const bool *taken) {
    solver_rec *r = lp->solver;
    const lp_data *d = lp->lpdata;
    if (r == nullptr || r->splp.n != d->ncols) return;
    simplex_lp *s = &r->splp;
    for (int k = 0; k < cnt; k++) {
        if (!taken[k]) continue;
        int j = indices[k];
        s->lower[j] = d->lb[j];
        s->upper[j] = d->ub[j];
        s->has_lower[j] = s->lower[j] > -TRV_INFTEST;
        s->has_upper[j] = s->upper[j] < TRV_INFTEST;
        if (r->it.status && r->it.x) {
            if (r->it.status[j] == 0 && s->has_lower[j]) r->it.x[j] = s->lower[j];
            if (r->it.status[j] == 2 && s->has_upper[j]) r->it.x[j] = s->upper[j];
        }
    }
    r->ready = 1;
}

static const work_hooks simplex_hooks = {work_drop, work_bounds, simplex_cbinfo};

int simplex_build(TRVenv env, TRVlp lp) {
    simplex_free(lp);
    solver_rec *r = trv_zalloc<solver_rec>(1);
    if (r == nullptr) return 1001;
    lp->solver = r;
    lp->work = &simplex_hooks;
    int status = build_lp(env, lp->lpdata, &r->splp);
    if (status == 0) status = build_iter(env, &r->splp, &r->it);
    if (status != 0) simplex_free(lp);
    if (status == 0) r->ready = r->ready2 = 1;
    return status;
}
