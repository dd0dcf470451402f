/* Name tables: bucket sizing, the hash and its rollback, sets without hash,
 * the sorted index, and lookups in a loaded model. */
#include <gtest/gtest.h>

#include <cstdio>
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
    /* two names that differ in the first byte only and share a bucket */
    std::string a, b;
    for (int t = 0; a.empty() && t < 1000; t++) {
        std::string tail = "AAA" + std::to_string(t);
        for (char c1 = 'a'; c1 <= 'z' && a.empty(); c1++)
            for (char c2 = c1 + 1; c2 <= 'z'; c2++)
                if (namehash_fn((c1 + tail).c_str(), h->nbuckets) ==
                    namehash_fn((c2 + tail).c_str(), h->nbuckets)) {
                    a = c1 + tail, b = c2 + tail;
                    break;
                }
    }
    ASSERT_FALSE(a.empty());
    EXPECT_EQ(namehash_add(h, a.c_str(), 1), 0);
    EXPECT_EQ(namehash_add(h, b.c_str(), 2), 0);
    EXPECT_EQ(namehash_find(h, a.c_str()), 1);
    EXPECT_EQ(namehash_find(h, b.c_str()), 2);
    EXPECT_EQ(namehash_find(h, ("_" + a.substr(1)).c_str()), -1);
    namehash_free(&h);
    EXPECT_EQ(h, nullptr);
}

/* Generated names differ in a few trailing digits; they must fill the
 * table evenly rather than crowd into a few thousand chains. */
TEST(NameHash, GeneratedNamesSpreadOverTheTable) {
    const int n = 300000;
    int status = 0;
    namehash *h = namehash_new(n, &status);
    ASSERT_NE(h, nullptr);
    std::vector<std::string> names(n);
    char buf[16];
    for (int k = 0; k < n; k++) {
        std::snprintf(buf, sizeof buf, "C%07d", k + 1);
        names[k] = buf;
        ASSERT_EQ(namehash_add(h, names[k].c_str(), k), 0);
    }
    int used = 0, longest = 0;
    for (int b = 0; b < h->nbuckets; b++) {
        int len = 0;
        for (int e = h->bucket[b]; e != -1; e = h->entry[e].next) len++;
        used += len > 0;
        if (len > longest) longest = len;
    }
    /* about six a bucket: nearly all used, no chain far above the mean */
    EXPECT_GT(used, h->nbuckets * 99 / 100) << h->nbuckets;
    EXPECT_LT(longest, 25);
    EXPECT_EQ(namehash_find(h, "C0123457"), 123456);
    namehash_free(&h);
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
