/* The allocator: alignment, realloc moves, and injected failures. */
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "frame/trv.h"

TEST(Alloc, BlocksAre16ByteAligned) {
    for (size_t n : {0u, 1u, 7u, 16u, 17u, 1000u, 65536u}) {
        void *p = trv_malloc(n);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 16, 0u) << n;
        trv_free(&p);
        EXPECT_EQ(p, nullptr);
    }
}

TEST(Alloc, ReallocKeepsContentsAndAlignment) {
    unsigned char *p = static_cast<unsigned char *>(trv_malloc(5));
    for (int k = 0; k < 5; k++) p[k] = static_cast<unsigned char>(k + 1);
    for (size_t n = 6; n < 200000; n = n * 3 + 1) {
        p = static_cast<unsigned char *>(trv_realloc(p, n));
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 16, 0u);
        for (int k = 0; k < 5; k++) ASSERT_EQ(p[k], k + 1);
    }
    trv_free(&p);
}

TEST(Alloc, ExportedWrappersFollowTheirContract) {
    void *p = TRVmalloc(0);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(TRVrealloc(nullptr, 8), nullptr);
    TRVfree(p);
    TRVfree(nullptr);
    char buf[16];
    EXPECT_EQ(TRVstrcpy(buf, "abc"), buf);
    EXPECT_STREQ(buf, "abc");
    EXPECT_EQ(TRVstrlen("hello"), 5u);
    char dst[4] = {0};
    TRVmemcpy(dst, "xyz", 3);
    EXPECT_STREQ(dst, "xyz");
}

TEST(Alloc, InjectedFailureHitsTheNthAllocationOnly) {
    trv_alloc_failat(2);
    void *a = trv_malloc(8);
    void *b = trv_malloc(8);
    void *c = trv_malloc(8);
    EXPECT_NE(a, nullptr);
    EXPECT_EQ(b, nullptr);
    EXPECT_NE(c, nullptr);
    trv_free(&a);
    trv_free(&c);
}
