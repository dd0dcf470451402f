/* The file layer and the dispatch: type words and suffixes, the default
 * suffix, gzip pipes, and what a failed read leaves in the problem. */
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "fmt_util.h"
#include "store/lp.h"

namespace {

const char *SMALL_MPS = "NAME SMALL\nROWS\n N obj\n L c1\nCOLUMNS\n    x obj 1 c1 1\n"
                        "    y obj 2 c1 1\nRHS\n    RHS c1 4\nENDATA\n";
const char *SMALL_LP = "min: x + 2 y\nst\n c1: x + y <= 4\nend\n";

bool have_gzip() { return std::system("gzip --version > /dev/null 2>&1") == 0; }

std::string gzip_file(const std::string &name, const std::string &text) {
    std::string plain = write_file(name + ".plain", text);
    std::string gz = scratch_dir() + "/" + name;
    auto quote = [](const std::string &path) {
        std::string q = "'";
        for (char c : path) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
        return q + "'";
    };
    std::string cmd = "gzip -c " + quote(plain) + " > " + quote(gz);
    EXPECT_EQ(std::system(cmd.c_str()), 0);
    return gz;
}

/* A problem holding a three-column model, to see it survive failures. */
struct Prob {
    TestEnv te;
    TRVlp lp = nullptr;
    Prob() { lp = small_model().copy_into(te.env); }
    ~Prob() { TRVfreeprob(te.env, &lp); }
    int read(const std::string &path, const char *type = nullptr) {
        te.clear();
        return TRVreadcopyprob(te.env, lp, path.c_str(), type);
    }
};

}  // namespace

TEST(FileLayer, CompressedNamesAndStems) {
    EXPECT_TRUE(trv_hasgz("a.gz"));
    EXPECT_TRUE(trv_hasgz("a.GZ"));
    EXPECT_TRUE(trv_hasgz("m.mps.Z"));
    EXPECT_FALSE(trv_hasgz("m.mps.z"));
    EXPECT_FALSE(trv_hasgz("gz"));
    EXPECT_FALSE(trv_hasgz(nullptr));
    char out[64];
    trv_stem(out, "dir/model.mps.gz");
    EXPECT_STREQ(out, "dir/model");
    trv_stem(out, "model.lp");
    EXPECT_STREQ(out, "model");
    trv_stem(out, "d.x/model");
    EXPECT_STREQ(out, "d.x/model");
}

TEST(FileLayer, OpenTriesTheDefaultSuffixAndNamesTheGivenName) {
    TestEnv te;
    int status = 0;
    write_file("afiro.mps", SMALL_MPS);
    std::string stem = scratch_dir() + "/afiro";
    FILE *f = trv_fopen(env_of(te.env), stem.c_str(), "r", ".mps", 0, 1, &status);
    ASSERT_NE(f, nullptr);
    trv_fclose(stem.c_str(), &f);
    EXPECT_EQ(f, nullptr);
    std::string none = scratch_dir() + "/absent";
    EXPECT_EQ(trv_fopen(env_of(te.env), none.c_str(), "r", ".mps", 0, 1, &status), nullptr);
    EXPECT_EQ(status, -1423);
    EXPECT_EQ(te.err, "TORVA Error  1423: Could not open file '" + none + "' for reading.\n");
    EXPECT_EQ(trv_fopen(env_of(te.env), "", "r", ".mps", 0, 1, &status), nullptr);
    EXPECT_EQ(status, -1421);
    te.clear();
    EXPECT_EQ(trv_fopen(env_of(te.env), none.c_str(), "r", ".mps", 0, 1, nullptr), nullptr);
    EXPECT_EQ(te.err, ""); /* no status pointer: no message */
}

TEST(FileLayer, TempFileIsCreatedInTheDirectory) {
    TestEnv te;
    char *name = nullptr;
    ASSERT_EQ(trv_tempfile(env_of(te.env), scratch_dir().c_str(), "node", &name), 0);
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(std::string(name).rfind(scratch_dir() + "/node", 0), 0u);
    EXPECT_EQ(std::remove(name), 0);
    trv_free(&name);
    EXPECT_EQ(trv_tempfile(env_of(te.env), "/nonexistent/dir", "x", &name), -1422);
    EXPECT_EQ(name, nullptr);
}

TEST(ReadCopy, PicksTheFormatByTypeWordOrSuffix) {
    Prob p;
    ASSERT_EQ(p.read(write_file("s.mps", SMALL_MPS)), 0) << p.te.err;
    EXPECT_EQ(TRVgetnumcols(p.te.env, p.lp), 2);
    EXPECT_EQ(TRVgetnumrows(p.te.env, p.lp), 1);
    EXPECT_STREQ(lp_of(p.lp)->lpdata->objname, "obj");
    ASSERT_EQ(p.read(write_file("s.txt", SMALL_LP), "lp"), 0) << p.te.err;
    EXPECT_EQ(TRVgetnumnz(p.te.env, p.lp), 2);
    ASSERT_EQ(p.read(write_file("S.LP", SMALL_LP)), 0);
    EXPECT_EQ(p.read(write_file("s.mps", SMALL_MPS), "MPSX"), 1424);
    EXPECT_EQ(p.te.err, "TORVA Error  1424: Invalid filetype.\n");
    EXPECT_EQ(p.read(write_file("s.txt", SMALL_MPS)), 1424);
    EXPECT_EQ(p.read(write_file("model.Z", SMALL_MPS)), 1424);
    EXPECT_EQ(p.read(write_file("s.sav", SMALL_MPS)), 1003); /* no SAV reader yet */
    int idx;
    EXPECT_EQ(TRVgetcolindex(p.te.env, p.lp, "y", &idx), 0);
    EXPECT_EQ(idx, 1);
}

TEST(ReadCopy, CompressedFilesComeThroughGzip) {
    if (!have_gzip()) GTEST_SKIP() << "no gzip";
    Prob p;
    ASSERT_EQ(p.read(gzip_file("z.mps.gz", SMALL_MPS)), 0) << p.te.err;
    EXPECT_EQ(TRVgetnumcols(p.te.env, p.lp), 2);
    ASSERT_EQ(p.read(gzip_file("Z.MPS.Z", SMALL_MPS)), 0) << p.te.err;
    ASSERT_EQ(p.read(gzip_file("z.lp.GZ", SMALL_LP)), 0) << p.te.err;
    EXPECT_EQ(TRVgetnumrows(p.te.env, p.lp), 1);
    ASSERT_EQ(p.read(gzip_file("quote'd name.mps.gz", SMALL_MPS)), 0) << p.te.err;
}

namespace {

std::string bytes_of(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string put_bytes(const std::string &name, const std::string &bytes) {
    std::string path = scratch_dir() + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

/* The two halves of a model, each readable on its own: the first a smaller
 * model than the whole. */
struct Halves {
    const char *suffix, *head, *tail;
};
const Halves HALVES[] = {
    {".mps.gz", "NAME CUT\nROWS\n N obj\n G c1\n G c2\nCOLUMNS\n    x obj 1 c1 1\n"
                "    x c2 1\nRHS\n    RHS c1 1\n",
     "    RHS c2 5\nENDATA\n"},
    {".lp.gz", "min: x\nst\n c1: x >= 1\n", " c2: x >= 5\nend\n"},
};

}  // namespace

TEST(ReadCopy, DamagedCompressedFilesAreRefusedByBothReaders) {
    if (!have_gzip()) GTEST_SKIP() << "no gzip";
    for (const Halves &h : HALVES) {
        std::string whole = std::string(h.head) + h.tail, sfx = h.suffix;
        Prob p;
        int cols = TRVgetnumcols(p.te.env, p.lp);
        ASSERT_EQ(p.read(gzip_file("whole" + sfx, whole)), 0) << p.te.err;
        double rhs;
        ASSERT_EQ(TRVgetrhs(p.te.env, p.lp, &rhs, TRVgetnumrows(p.te.env, p.lp) - 1,
                            TRVgetnumrows(p.te.env, p.lp) - 1), 0);
        EXPECT_EQ(rhs, 5.0);
        /* two members, the second cut in its header: gzip gives the first
         * whole, a model of its own, and then fails */
        std::string first = bytes_of(gzip_file("first" + sfx, h.head));
        std::string second = bytes_of(gzip_file("second" + sfx, h.tail));
        Prob q;
        std::string cut = put_bytes("cut" + sfx, first + second.substr(0, 6));
        EXPECT_EQ(q.read(cut), 1423) << sfx;
        EXPECT_EQ(q.te.err, "TORVA Error  1423: Could not open file '" + cut + "' for reading.\n");
        EXPECT_EQ(TRVgetnumcols(q.te.env, q.lp), cols);
        ASSERT_EQ(q.read(put_bytes("both" + sfx, first + second)), 0) << q.te.err;
        /* a wrong check sum behind a complete stream; a flipped byte
         * inside it; a plain cut in the middle */
        std::string gz = bytes_of(gzip_file("w" + sfx, whole));
        std::string crc = gz, mid = gz;
        crc[crc.size() - 6] ^= 0x55;
        mid[mid.size() / 2] ^= 0x55;
        EXPECT_EQ(q.read(put_bytes("crc" + sfx, crc)), 1423) << sfx;
        EXPECT_NE(q.read(put_bytes("mid" + sfx, mid)), 0) << sfx;
        EXPECT_NE(q.read(put_bytes("half" + sfx, gz.substr(0, gz.size() / 2))), 0) << sfx;
        EXPECT_EQ(TRVgetnumcols(q.te.env, q.lp), 1);
    }
}

TEST(ReadCopy, CompressedFilesAreReadToTheirEnd) {
    if (!have_gzip()) GTEST_SKIP() << "no gzip";
    /* text after the model's end is read off, so that gzip is not cut
     * short of its output */
    std::string comments;
    while (comments.size() < 4000000) comments += "* a line of comment after the end\n";
    Prob p;
    EXPECT_EQ(p.read(gzip_file("tail.mps.gz", std::string(SMALL_MPS) + comments)), 0)
        << p.te.err;
    EXPECT_EQ(p.read(gzip_file("tail.lp.gz", std::string(SMALL_LP) + comments)), 0)
        << p.te.err;
    /* a name that starts with a dash is a file name, not an option */
    std::string dash = gzip_file("-dash.mps.gz", SMALL_MPS);
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    ASSERT_EQ(chdir(scratch_dir().c_str()), 0);
    int status = p.read("-dash.mps.gz");
    ASSERT_EQ(chdir(cwd), 0);
    EXPECT_EQ(status, 0) << p.te.err;
    EXPECT_EQ(TRVgetnumcols(p.te.env, p.lp), 2);
}

TEST(ReadCopy, FailuresLeaveThePreviousModel) {
    Prob p;
    ASSERT_NE(p.lp, nullptr);
    int cols = TRVgetnumcols(p.te.env, p.lp), rows = TRVgetnumrows(p.te.env, p.lp);
    const std::string bad[] = {
        write_file("empty.mps", ""),
        write_file("trunc.mps", std::string(SMALL_MPS).substr(0, 25)),
        write_file("garbage.mps", std::string("\x01\xff\xfe\x00NAME\x80\x90", 10)),
        write_file("badrow.mps", "NAME\nROWS\n N o\nCOLUMNS\n    x q 1\nENDATA\n"),
        write_file("bad.lp", "min: x\nst\n x >= \nend\n"),
        write_file("empty.lp", ""),
        write_file("notgz.mps.gz", SMALL_MPS),
        scratch_dir() + "/missing.mps",
    };
    for (const auto &path : bad) {
        EXPECT_NE(p.read(path), 0) << path;
        EXPECT_NE(p.te.err, "") << path;
        EXPECT_EQ(TRVgetnumcols(p.te.env, p.lp), cols) << path;
        EXPECT_EQ(TRVgetnumrows(p.te.env, p.lp), rows) << path;
    }
    EXPECT_EQ(p.read(scratch_dir() + "/missing.mps"), 1423);
    EXPECT_EQ(TRVreadcopyprob(p.te.env, p.lp, nullptr, nullptr), 1421);
    EXPECT_EQ(TRVreadcopyprob(p.te.env, nullptr, "x.mps", nullptr), 1009);
    EXPECT_EQ(TRVreadcopyprob(nullptr, p.lp, "x.mps", nullptr), 1002);
}

TEST(ReadCopy, IntegerModelsLoadAsLinearWithAWarning) {
    Prob p;
    ASSERT_EQ(p.read(write_file("i.mps", "NAME\nROWS\n N o\nCOLUMNS\n    M 'MARKER' 'INTORG'\n"
                                         "    x o 1\n    M 'MARKER' 'INTEND'\nENDATA\n")),
              0);
    EXPECT_NE(p.te.warn.find("Problem contains integer declarations, ignored.\n"), std::string::npos);
    EXPECT_EQ(TRVgetprobtype(p.te.env, p.lp), 0);
    EXPECT_EQ(lp_of(p.lp)->lpdata->ub[0], 1.0); /* the marker's binary bounds stay */
}

TEST(ReadCopy, AllocationFailuresAreCleanAtEveryStep) {
    std::string mps = write_file("alloc.mps", SMALL_MPS), lp = write_file("alloc.lp", SMALL_LP);
    for (const auto &path : {mps, lp}) {
        Prob p;
        int cols = TRVgetnumcols(p.te.env, p.lp);
        bool done = false;
        long n = 1;
        for (; n < 400 && !done; n++) {
            trv_alloc_failat(n);
            int status = p.read(path);
            trv_alloc_failat(0);
            if (status == 0) {
                done = true;
            } else {
                EXPECT_EQ(status, 1001) << path << " " << n;
                /* a failure in the reader leaves the old model; one in the
                 * copy leaves an empty one, and one in storing the
                 * objective's name the whole new model: never a part */
                int now = TRVgetnumcols(p.te.env, p.lp), rows = TRVgetnumrows(p.te.env, p.lp);
                EXPECT_TRUE(now == cols || (now == 0 && rows == 0) || (now == 2 && rows == 1))
                    << path << " " << n;
            }
        }
        EXPECT_TRUE(done) << path;
        EXPECT_GT(n, 20) << path; /* the failures hit the reader's many blocks */
    }
}

TEST(WriteProb, TypeWordsAndSuffixes) {
    Prob p;
    EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, "x.lp", "LPXX"), 1424);
    EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, "x", nullptr), 1424);
    EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, "x.txt", nullptr), 1424);
    EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, "x.mpsx", nullptr), 1424);
    EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, nullptr, nullptr), 1421);
    /* known formats whose writers are not there yet */
    for (const char *name : {"x.lp", "x.rew", "x.mps.gz", "x.RLP", "x.sav", "x.rmp.Z"})
        EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, name, nullptr), 1003) << name;
    EXPECT_EQ(TRVwriteprob(p.te.env, p.lp, "x.txt", "mps"), 1003);
}
