/* Inputs that once broke a reader, or that stress its edges, kept as
 * regression cases: each reads to a status, with and without failing
 * allocations, and leaves nothing behind. */
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "fmt_util.h"

namespace {

void read_corpus(const char *sub, bool lp) {
    std::string dir = std::string(TRV_SOURCE_TESTS) + "/fuzz/corpus/" + sub;
    ASSERT_TRUE(std::filesystem::is_directory(dir)) << dir;
    int files = 0;
    for (const auto &e : std::filesystem::directory_iterator(dir)) {
        std::string path = e.path().string();
        files++;
        for (long fail = 0; fail <= 40; fail++) {
            Read r;
            trv_alloc_failat(fail);
            int status = lp ? lp_read(env_of(r.te.env), path.c_str(), RM_INTS | RM_QUAD, &r.m)
                            : mps_read(env_of(r.te.env), path.c_str(), RM_INTS | RM_QUAD, &r.m);
            trv_alloc_failat(0);
            EXPECT_LE(status, 0) << path;
            if (status < 0) {
                EXPECT_NE(r.te.err, "") << path << " fail at " << fail;
                EXPECT_EQ(r.m.obj, nullptr) << path;
            }
            if (fail == 0 && status == 0) {
                EXPECT_NE(r.m.obj, nullptr) << path;
            }
        }
    }
    EXPECT_GT(files, 0);
}

}  // namespace

TEST(ReaderCorpus, MpsInputsReadCleanly) { read_corpus("mps", false); }
TEST(ReaderCorpus, LpInputsReadCleanly) { read_corpus("lp", true); }
