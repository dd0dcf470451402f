/* Highly degenerate LPs: every row is tight at one point of the box, so
 * that the starting vertex and many others are degenerate. Every pricing
 * family must end at the same outcome and objective, with a solution that
 * meets the optimality conditions. */
#include <gtest/gtest.h>

#include <algorithm>

#include "support/kkt.h"
#include "support/model.h"

static Model degen(unsigned seed) {
    Model md = random_lp(seed, 25 + seed % 20, 20 + seed % 20, seed % 3 == 0);
    std::vector<double> x0(md.ncols());
    for (int j = 0; j < md.ncols(); j++) x0[j] = std::max(md.lb[j], std::min(md.ub[j], 0.0));
    for (int i = 0; i < md.nrows(); i++) md.rhs[i] = 0.0;
    for (int j = 0; j < md.ncols(); j++)
        for (int k = md.matbeg[j]; k < md.matbeg[j] + md.matcnt[j]; k++) md.rhs[md.matind[k]] += md.matval[k] * x0[j];
    for (int i = 0; i < md.nrows(); i++) if (md.sense[i] == 'R') md.rngval[i] = (i % 2) ? 0.0 : 3.0;
    return md;
}
TEST(PrimoptDegenerate, FamiliesAgreeOnTightRows) {
    int bad = 0;
    for (unsigned seed = 1; seed <= 80; seed++) {
        Model md = degen(seed);
        double ref = 0; int refstat = -1;
        for (int fam = -1; fam <= 4; fam++) {
            TestEnv te;
            TRVsetintparam(te.env, 1019, 0);
            TRVsetintparam(te.env, 1029, fam);
            TRVlp lp = md.copy_into(te.env);
            Solution s;
            ASSERT_EQ(solve_primal(te.env, lp, s), 0);
            if (refstat < 0) refstat = s.stat, ref = s.obj;
            if (s.stat != refstat) {
                bad++;
                ADD_FAILURE() << "seed " << seed << " family " << fam << " status " << s.stat << " vs " << refstat;
            }
            else if (s.stat == 1) {
                std::string k = check_kkt(md, s, 1e-6);
                if (std::fabs(s.obj - ref) > 1e-6 * (1 + std::fabs(ref)) || !k.empty()) {
                    bad++;
                    ADD_FAILURE() << "seed " << seed << " family " << fam << " objective " << s.obj
                                  << " vs " << ref << " " << k;
                }
            }
            TRVfreeprob(te.env, &lp);
        }
    }
    EXPECT_EQ(bad, 0);
}
