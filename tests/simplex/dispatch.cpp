/* The entries of the simplex optimisers refuse problem types they cannot
 * solve with the exact error, and leave the problem as it was. Integer and
 * quadratic data cannot be loaded through the interface yet, so the type
 * word is set directly. */
#include <gtest/gtest.h>

#include "simplex/core.h"
#include "support/internal.h"
#include "support/model.h"

TEST(Dispatch, MixedIntegerAndQuadraticProblemsAreRefused) {
    TestEnv t;
    TRVsetintparam(t.env, 1019, 0);
    Model md = small_model();
    TRVlp lp = md.copy_into(t.env);
    ASSERT_NE(lp, nullptr);
    struct {
        int type, code;
        const char *text;
    } cases[] = {
        {PROB_MIP, 1017, "TORVA Error  1017: Not available for mixed-integer programs.\n"},
        {PROB_QP, 1018, "TORVA Error  1018: Not available for quadratic programs.\n"},
    };
    for (const auto &c : cases) {
        lp_of(lp)->probtype = c.type;
        for (int which = 0; which < 3; which++) {
            t.clear();
            int st = which == 0 ? TRVlpopt(t.env, lp) : which == 1 ? TRVprimopt(t.env, lp)
                                                                     : TRVdualopt(t.env, lp);
            EXPECT_EQ(st, c.code) << which;
            EXPECT_EQ(t.err, c.text) << which;
            EXPECT_EQ(TRVgetstat(t.env, lp), 0);
            EXPECT_EQ(TRVcangetbase(t.env, lp), 0);
        }
    }
    /* as an LP again it solves */
    lp_of(lp)->probtype = PROB_LP;
    EXPECT_EQ(TRVlpopt(t.env, lp), 0);
    EXPECT_NE(TRVgetstat(t.env, lp), 0);
    TRVfreeprob(t.env, &lp);
}
