/* Name tables: bucket sizing, the hash and its rollback, sets without hash,
 * the sorted index, and lookups in a loaded model. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/names.h"
#include "support/model.h"

TEST(NameHash, TableSizeKeepsAboutTenPerBucket) {
    EXPECT_EQ(namehash_size(1), 1023);
    EXPECT_EQ(namehash_size(10229), 1023);
    EXPECT_EQ(namehash_size(10230), 7161);
    EXPECT_EQ(namehash_size(71610), 7161 * 7);
}

TEST(NameHash, FirstByteDifferenceInOneBucket) {
    int status = 0;
    namehash *h = namehash_new(16, &status);
    ASSERT_NE(h, nullptr);
    /* "ab" and "ba" hash alike only by chance; these two share all bits but
     * the first byte's, four positions apart */
    const char *a = "xAAAy", *b = "yAAAx";
    ASSERT_EQ(namehash_fn(a, h->nbuckets), namehash_fn(b, h->nbuckets));
    EXPECT_EQ(namehash_add(h, a, 1), 0);
    EXPECT_EQ(namehash_add(h, b, 2), 0);
    EXPECT_EQ(namehash_find(h, a), 1);
    EXPECT_EQ(namehash_find(h, b), 2);
    EXPECT_EQ(namehash_find(h, "xAAAx"), -1);
    namehash_free(&h);
    EXPECT_EQ(h, nullptr);
}

TEST(NameSet, HashedSetGrowsAndFindsEveryName) {
    int status = 0;
    nameset *s = nameset_new(4, 8, 'x', 1, &status);
    ASSERT_NE(s, nullptr);
    for (int k = 0; k < 50000; k++) {
        std::string n = "R" + std::to_string(k * 7919 % 100003);
        int before = nameset_count(s);
        int i = nameset_findaddn(s, n.data(), static_cast<int>(n.size()), &status);
        ASSERT_EQ(i, before) << n;
    }
    for (int k = 0; k < 50000; k += 97) {
        std::string n = "R" + std::to_string(k * 7919 % 100003);
        EXPECT_EQ(nameset_find(s, n.c_str()), k);
        EXPECT_STREQ(nameset_name(s, k), n.c_str());
    }
    EXPECT_EQ(nameset_findadd(s, "R0", &status), 0); /* present: no add */
    EXPECT_EQ(nameset_count(s), 50000);
    nameset_free(&s);
}

TEST(NameSet, TrimTakesNamesOutOfTheHash) {
    int status = 0;
    nameset *s = nameset_new(8, 64, 'c', 1, &status);
    nameset_findadd(s, "a", &status);
    nameset_findadd(s, "b", &status);
    nameset_findadd(s, "c", &status);
    nameset_trim(s, 1);
    EXPECT_EQ(nameset_count(s), 1);
    EXPECT_EQ(nameset_find(s, "b"), -1);
    EXPECT_EQ(nameset_find(s, "c"), -1);
    EXPECT_EQ(nameset_findadd(s, "c", &status), 1);
    EXPECT_EQ(nameset_find(s, "a"), 0);
    nameset_free(&s);
}

TEST(NameSet, WithoutHashFindsNewestDuplicateAndMakesDefaults) {
    int status = 0;
    nameset *s = nameset_new(2, 6, 'c', 0, &status);
    const char *names[] = {"dup", "x", "dup", ""};
    ASSERT_EQ(nameset_add(s, 4, names), 0);
    EXPECT_EQ(nameset_find(s, "dup"), 2);
    EXPECT_STREQ(nameset_name(s, 3), "c4");
    ASSERT_EQ(nameset_add(s, 2, nullptr), 0);
    EXPECT_STREQ(nameset_name(s, 5), "c6");
    EXPECT_EQ(nameset_add(s, -1, nullptr), 1200);
    EXPECT_EQ(nameset_add(nullptr, 1, nullptr), 1004);
    EXPECT_EQ(nameset_findadd(s, "q", &status), -1); /* hash sets only */
    EXPECT_EQ(nameset_find(nullptr, "x"), -1);
    EXPECT_EQ(nameset_find(s, nullptr), -1);
    nameset_free(&s);
    nameset_new(1, 2100000000L, 'c', 0, &status);
    EXPECT_EQ(status, 1012);
}

TEST(SortedIndex, FindsEachNameAndRemembersThePosition) {
    std::vector<std::string> v = {"delta", "alpha", "\xe9t\xe9", "charlie", "bravo", "echo"};
    std::vector<char *> names;
    for (auto &s : v) names.push_back(s.data());
    int n = static_cast<int>(names.size());
    std::vector<int> order(n);
    sorted_index(n, names.data(), order.data());
    for (int k = 1; k < n; k++)
        EXPECT_LT(static_cast<unsigned char>(names[order[k - 1]][0]),
                  static_cast<unsigned char>(names[order[k]][0]));
    EXPECT_EQ(names[order[n - 1]][0], '\xe9'); /* bytes compare unsigned */
    int state = 0;
    for (const char *key : {"alpha", "bravo", "charlie", "delta"}) {
        int before = state;
        int i = sorted_find(&state, names.data(), key, order.data(), n);
        ASSERT_GE(i, 0);
        EXPECT_STREQ(names[i], key);
        EXPECT_EQ(state, before + 1); /* sorted keys hit the remembered spot */
    }
    EXPECT_EQ(sorted_find(&state, names.data(), "zulu", order.data(), n), -1);
    EXPECT_EQ(sorted_find(&state, names.data(), "charlie", order.data(), n), 3);
}

TEST(NameLookup, RowAndColumnIndexThroughTheInterface) {
    TestEnv te;
    Model m = small_model();
    TRVlp lp = m.copy_into(te.env);
    ASSERT_NE(lp, nullptr);
    int idx = -5;
    EXPECT_EQ(TRVgetcolindex(te.env, lp, m.colnames[2].c_str(), &idx), 0);
    EXPECT_EQ(idx, 2);
    EXPECT_EQ(TRVgetrowindex(te.env, lp, m.rownames[1].c_str(), &idx), 0);
    EXPECT_EQ(idx, 1);
    te.clear();
    EXPECT_EQ(TRVgetrowindex(te.env, lp, "nosuch", &idx), 1210);
    EXPECT_EQ(idx, -1);
    EXPECT_EQ(te.err, ""); /* not found is an answer, not an error */
    EXPECT_EQ(TRVgetcolindex(te.env, lp, nullptr, &idx), 1004);
    EXPECT_EQ(TRVgetcolindex(te.env, nullptr, "x", &idx), 1009);
    TRVlp bare = TRVcreateprob(te.env, nullptr, "bare");
    EXPECT_EQ(TRVgetcolindex(te.env, bare, "x", &idx), 1219);
    TRVfreeprob(te.env, &bare);
    TRVfreeprob(te.env, &lp);
}
