#include <gtest/gtest.h>

#include "support/model.h"

TEST(Smoke, OpenLoadClose) {
    TestEnv t;
    ASSERT_NE(t.env, nullptr);
    int st = 0;
    TRVlp lp = small_model().copy_into(t.env, &st);
    ASSERT_EQ(st, 0);
    EXPECT_EQ(TRVgetnumcols(t.env, lp), 3);
}
