/* Scaling of the model in place: the need test, the factors of both
 * schemes, range columns, and the way back. */
#include <gtest/gtest.h>

#include <cmath>

#include "store/lp.h"
#include "store/scale.h"
#include "support/internal.h"
#include "support/model.h"

namespace {

Model spread_model() {
    Model md;
    md.row('L', 1e3);
    md.row('R', 2e-3, 4e-3);
    md.row('G', 0.0); /* a row with no entries */
    md.col(1.0, 0.0, 5e2, {{0, 1e3}, {1, 1e-3}});
    md.col(2.0, -1.0, 1e20, {{0, 5e2}, {1, 4e-3}});
    return md;
}

double max_spread(const lp_data *d) {
    double lo = 1e300, hi = 0.0;
    for (int j = 0; j < d->ncols; j++)
        for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++) {
            double a = std::fabs(d->matval[k]);
            lo = std::fmin(lo, a), hi = std::fmax(hi, a);
        }
    return hi / lo;
}

} // namespace

TEST(Scaling, UnitMatrixIsLeftAlone) {
    TestEnv te;
    Model md;
    md.row('L', 3.0);
    md.row('G', 1.0);
    md.col(1.0, 0.0, 4.0, {{0, 1.0}, {1, -1.0}});
    md.col(1.0, 0.0, 4.0, {{0, 2.0}, {1, 0.5}});
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(lp_scale(env_of(te.env), lp_of(lp), 0), 0);
    EXPECT_EQ(lp_of(lp)->lpdata->scaletype, -2);
    EXPECT_EQ(lp_of(lp)->lpdata->colscale, nullptr);
    TRVfreeprob(te.env, &lp);
}

TEST(Scaling, EquilibrationAndGeometricNarrowTheSpread) {
    for (int scheme = 0; scheme <= 1; scheme++) {
        TestEnv te;
        Model md = spread_model();
        TRVlp lp = md.copy_into(te.env);
        lp_data *d = lp_of(lp)->lpdata;
        double before = max_spread(d);
        ASSERT_EQ(lp_scale(env_of(te.env), lp_of(lp), scheme), 0);
        EXPECT_EQ(d->scaletype, scheme);
        ASSERT_NE(d->colscale, nullptr);
        EXPECT_LT(max_spread(d), before / 100.0) << scheme;
        /* an empty row keeps the factor 1 */
        EXPECT_EQ(d->rowscale[2], 1.0);
        /* the range column keeps its entry -1 and the range its meaning */
        int rc = d->ncols;
        ASSERT_EQ(d->matcnt[rc], 1);
        EXPECT_NEAR(d->matval[d->matbeg[rc]], -1.0, 1e-15);
        EXPECT_NEAR(d->ub[rc] * 1.0, d->rngval[1], 1e-15 * std::fabs(d->rngval[1]));
        if (scheme == 0)
            for (int j = 0; j < d->ncols; j++) {
                double c = 0.0;
                for (int k = d->matbeg[j]; k < d->matbeg[j] + d->matcnt[j]; k++)
                    c = std::fmax(c, std::fabs(d->matval[k]));
                EXPECT_NEAR(c, 1.0, 1e-12) << "column " << j;
            }
        /* infinite bounds stay as stored */
        EXPECT_EQ(d->ub[1], 1e20);
        /* and back */
        ASSERT_EQ(lp_unscale(env_of(te.env), lp_of(lp)), 0);
        EXPECT_EQ(d->colscale, nullptr);
        for (int j = 0; j < md.ncols(); j++) {
            EXPECT_NEAR(d->obj[j], md.obj[j], 1e-14 * std::fabs(md.obj[j]));
            for (int k = 0; k < md.matcnt[j]; k++)
                EXPECT_NEAR(d->matval[d->matbeg[j] + k], md.matval[md.matbeg[j] + k],
                            1e-14 * std::fabs(md.matval[md.matbeg[j] + k]));
        }
        EXPECT_NEAR(d->rhs[1], 2e-3, 1e-18);
        EXPECT_NEAR(d->rngval[1], 4e-3, 1e-18);
        TRVfreeprob(te.env, &lp);
    }
}

TEST(Scaling, UnscaleprobChecksItsHandles) {
    TestEnv te;
    EXPECT_EQ(TRVunscaleprob(nullptr, nullptr), 1002);
    EXPECT_EQ(TRVunscaleprob(te.env, nullptr), 1009);
    Model md = spread_model();
    TRVlp lp = md.copy_into(te.env);
    ASSERT_EQ(lp_scale(env_of(te.env), lp_of(lp), 1), 0);
    ASSERT_EQ(TRVunscaleprob(te.env, lp), 0);
    EXPECT_EQ(lp_of(lp)->lpdata->scaletype, -1);
    EXPECT_EQ(lp_of(lp)->lpdata->rowscalestore, nullptr);
    TRVlp stale = lp;
    TRVfreeprob(te.env, &lp);
    EXPECT_EQ(TRVunscaleprob(te.env, stale), 1009);
}
