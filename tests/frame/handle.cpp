/* The handle table: tokens of one slot reused by later records stay
 * distinct, a token of one kind is not one of another, and the table goes
 * when the last handle does, so a host that closes what it opened leaves
 * nothing behind. */
#include <gtest/gtest.h>

#include <vector>

#include "frame/trv.h"

TEST(Handle, ReusedSlotsGiveNewTokens) {
    long base = handle_live();
    int a = 0, b = 0;
    void *ha = handle_new(HANDLE_LP, &a, nullptr, nullptr);
    ASSERT_NE(ha, nullptr);
    EXPECT_EQ(handle_find(ha, HANDLE_LP, nullptr, nullptr), &a);
    EXPECT_EQ(handle_find(ha, HANDLE_ENV, nullptr, nullptr), nullptr);
    handle_drop(ha);
    EXPECT_EQ(handle_find(ha, HANDLE_LP, nullptr, nullptr), nullptr);
    /* the slot comes back for b, at the same record address too */
    void *hb = handle_new(HANDLE_LP, &a, &b, nullptr);
    ASSERT_NE(hb, nullptr);
    EXPECT_NE(hb, ha);
    EXPECT_EQ(handle_find(ha, HANDLE_LP, nullptr, nullptr), nullptr);
    void *owner = nullptr;
    EXPECT_EQ(handle_find(hb, HANDLE_LP, &owner, nullptr), &a);
    EXPECT_EQ(owner, &b);
    handle_drop(ha); /* a stale drop does nothing */
    EXPECT_EQ(handle_find(hb, HANDLE_LP, nullptr, nullptr), &a);
    handle_drop(hb);
    EXPECT_EQ(handle_live(), base);
    /* addresses and nulls are no tokens */
    EXPECT_EQ(handle_find(&a, HANDLE_LP, nullptr, nullptr), nullptr);
    EXPECT_EQ(handle_find(nullptr, HANDLE_LP, nullptr, nullptr), nullptr);
}

TEST(Handle, TheTableGoesWithTheLastEnvironment) {
    ASSERT_EQ(handle_live(), 0);
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    ASSERT_EQ(st, 0);
    TRVenv child = TRVparenv(env, &st);
    ASSERT_EQ(st, 0);
    std::vector<TRVlp> lps;
    for (int k = 0; k < 100; k++) lps.push_back(TRVcreateprob(k % 2 ? env : child, &st, "p"));
    EXPECT_EQ(handle_live(), 102);
    for (int k = 0; k < 100; k += 4) ASSERT_EQ(TRVfreeprob(env, &lps[k + 1]), 0);
    EXPECT_EQ(handle_live(), 77);
    /* the close frees the clone and every problem left */
    ASSERT_EQ(TRVcloseTORVA(&env), 0);
    EXPECT_EQ(handle_live(), 0);
    for (TRVlp lp : lps) EXPECT_EQ(handle_find(lp, HANDLE_LP, nullptr, nullptr), nullptr);
}
