/* The call frame through the public interface: environments, clones,
 * parameters, channels and error texts. */
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/model.h"

namespace {

std::string errstr(int code) {
    char buf[TRV_MSGBUF];
    TRVgeterrorstring(nullptr, code, buf);
    return buf;
}

}  // namespace

TEST(Env, OpenGivesVersionAndCloseNullsThePointer) {
    int status = -1;
    TRVenv env = TRVopenTORVA(&status);
    ASSERT_NE(env, nullptr);
    EXPECT_EQ(status, 0);
    EXPECT_STREQ(TRVversion(env), "7.1.0");
    EXPECT_EQ(TRVcloseTORVA(&env), 0);
    EXPECT_EQ(env, nullptr);
    EXPECT_EQ(TRVcloseTORVA(&env), 1002);
    EXPECT_EQ(TRVcloseTORVA(nullptr), 1002);
    EXPECT_EQ(TRVversion(nullptr), nullptr);
}

TEST(Env, NullEnvironmentIsRefusedSilentlyEverywhere) {
    int v = 0;
    double d = 0;
    EXPECT_EQ(TRVsetintparam(nullptr, 1020, 5), 1002);
    EXPECT_EQ(TRVgetintparam(nullptr, 1020, &v), 1002);
    EXPECT_EQ(TRVgetdblparam(nullptr, 1014, &d), 1002);
    EXPECT_EQ(TRVsetdefaults(nullptr), 1002);
    EXPECT_EQ(TRVgetchannels(nullptr, nullptr, nullptr, nullptr, nullptr), 1002);
    EXPECT_EQ(TRVflushstdchannels(nullptr), 1002);
    EXPECT_EQ(TRVaddchannel(nullptr), nullptr);
    EXPECT_EQ(TRVgetnumcols(nullptr, nullptr), 0);
    EXPECT_EQ(TRVgetprobtype(nullptr, nullptr), -1);
    int st = 0;
    EXPECT_EQ(TRVcreateprob(nullptr, &st, "x"), nullptr);
    EXPECT_EQ(st, 1002);
    EXPECT_EQ(TRVparenv(nullptr, &st), nullptr);
    EXPECT_EQ(st, 1002);
}

TEST(Env, ClonesCopyParametersAndObeyTheirRules) {
    TestEnv t;
    ASSERT_EQ(TRVsetintparam(t.env, 1020, 1234), 0);
    int st = -1;
    TRVenv c = TRVparenv(t.env, &st);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(st, 0);
    int v = 0;
    TRVgetintparam(c, 1020, &v);
    EXPECT_EQ(v, 1234);
    /* later changes do not travel */
    TRVsetintparam(t.env, 1020, 99);
    TRVgetintparam(c, 1020, &v);
    EXPECT_EQ(v, 1234);
    /* a clone cannot clone and cannot be closed directly */
    EXPECT_EQ(TRVparenv(c, &st), nullptr);
    EXPECT_EQ(st, 1019);
    EXPECT_EQ(TRVcloseTORVA(&c), 1021);
    EXPECT_NE(c, nullptr);
    EXPECT_STREQ(TRVversion(c), "7.1.0"); /* still usable */
    /* freeing through the wrong parent frees nothing */
    TestEnv other;
    EXPECT_EQ(TRVfreeparenv(other.env, &c), 1003);
    EXPECT_NE(c, nullptr);
    EXPECT_NE(other.err.find("TORVA Error  1003:"), std::string::npos);
    EXPECT_EQ(TRVfreeparenv(t.env, &c), 0);
    EXPECT_EQ(c, nullptr);
    EXPECT_EQ(TRVfreeparenv(t.env, &c), 0); /* a null clone is success */
}

TEST(Env, ACallbackRegisteredInTheParentPassesToALaterClone) {
    TestEnv t;
    auto cb = [](TRVenv, void *, int, void *) { return 0; };
    int handle = 7;
    ASSERT_EQ(TRVsetlpcallbackfunc(t.env, cb, &handle), 0);
    int st = 0;
    TRVenv c = TRVparenv(t.env, &st);
    TRVcallbackfunc f = nullptr;
    void *h = nullptr;
    ASSERT_EQ(TRVgetlpcallbackfunc(c, &f, &h), 0);
    EXPECT_EQ(f, static_cast<TRVcallbackfunc>(cb));
    EXPECT_EQ(h, &handle);
    EXPECT_EQ(TRVgetmipcallbackfunc(c, &f, nullptr), 0);
    EXPECT_EQ(f, nullptr);
}

TEST(Env, CloseFreesWhatTheCallerLeftBehind) {
    /* run under the sanitizers, a leak here fails the build */
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    TRVlp a = small_model().copy_into(env);
    TRVlp b = small_model().copy_into(env);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    TRVchannel ch = TRVaddchannel(env);
    ASSERT_NE(ch, nullptr);
    TRVenv c1 = TRVparenv(env, &st);
    TRVenv c2 = TRVparenv(env, &st);
    ASSERT_NE(c1, nullptr);
    ASSERT_NE(c2, nullptr);
    TRVlp inclone = small_model().copy_into(c1);
    ASSERT_NE(inclone, nullptr);
    EXPECT_EQ(TRVfreeprob(env, &a), 0);
    EXPECT_EQ(TRVcloseTORVA(&env), 0);
}

TEST(Errors, TextsHaveThePrefixFieldAndPeriod) {
    char buf[TRV_MSGBUF];
    EXPECT_EQ(TRVgeterrorstring(nullptr, 1001, buf), buf);
    EXPECT_STREQ(buf, "TORVA Error  1001: Out of memory.\n");
    EXPECT_EQ(errstr(1462),
              "TORVA Error  1462: Line %d: Unrecognized section indicator.\n"
              "      Expecting ENDATA.\n");
    EXPECT_EQ(errstr(5001),
              "TORVA Error  5001: Invalid quadratic matrix.  Unequal "
              "off-diagonal components.\n");
}

TEST(Errors, CodesOutsideTheRangeLeaveTheBufferAlone) {
    char buf[TRV_MSGBUF];
    std::strcpy(buf, "untouched");
    EXPECT_EQ(TRVgeterrorstring(nullptr, 0, buf), nullptr);
    EXPECT_EQ(TRVgeterrorstring(nullptr, 100000, buf), nullptr);
    EXPECT_STREQ(buf, "untouched");
    EXPECT_EQ(TRVgeterrorstring(nullptr, 99999, buf), nullptr);
    EXPECT_STREQ(buf, "TORVA Error 99999: Unknown error code.\n");
}

TEST(Errors, HashLookupAgreesWithTheLinearScanForEveryCode) {
    TestEnv t;
    int known = 0;
    for (int code = 1; code <= 99999; code++) {
        char a[TRV_MSGBUF], b[TRV_MSGBUF];
        char *ra = TRVgeterrorstring(t.env, code, a);
        char *rb = TRVgeterrorstring(nullptr, code, b);
        ASSERT_EQ(ra == nullptr, rb == nullptr) << code;
        ASSERT_STREQ(a, b) << code;
        known += ra != nullptr;
    }
    EXPECT_EQ(known, 280);
}

TEST(Errors, StatusTexts) {
    char buf[TRV_MSGBUF];
    EXPECT_STREQ(TRVgetstatstring(nullptr, 1, buf), "optimal");
    EXPECT_STREQ(TRVgetstatstring(nullptr, 117, buf),
                 "error termination, no integer solution, no tree");
    EXPECT_EQ(TRVgetstatstring(nullptr, 21, buf), nullptr);
    EXPECT_STREQ(buf, "Unknown status value");
    int known = 0;
    for (int s = 0; s < 200; s++) known += TRVgetstatstring(nullptr, s, buf) != nullptr;
    EXPECT_EQ(known, 49);
}

TEST(Params, DefaultsAndRangesReadBack) {
    TestEnv t;
    int d, lo, hi;
    ASSERT_EQ(TRVinfointparam(t.env, 1020, &d, &lo, &hi), 0);
    EXPECT_EQ(d, 2100000000);
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, 2100000000);
    double dd, dl, dh;
    ASSERT_EQ(TRVinfodblparam(t.env, 1013, &dd, &dl, &dh), 0);
    EXPECT_EQ(dd, 0.01);
    EXPECT_EQ(dl, 0.0001);
    EXPECT_EQ(dh, 0.99999);
    ASSERT_EQ(TRVinfodblparam(t.env, 3002, &dd, nullptr, nullptr), 0);
    EXPECT_EQ(dd, 1e-08);
    ASSERT_EQ(TRVinfointparam(t.env, 1042, &d, &lo, &hi), 0); /* MIP owns 1042 */
    ASSERT_EQ(TRVinfointparam(t.env, 4001, &d, nullptr, nullptr), 0);
    EXPECT_EQ(d, 500);
    ASSERT_EQ(TRVinfodblparam(t.env, 5002, &dd, &dl, nullptr), 0);
    EXPECT_EQ(dl, 1e-11);
    /* the processor count enters defaults and maxima */
    ASSERT_EQ(TRVinfointparam(t.env, 2014, &d, &lo, &hi), 0);
    EXPECT_GE(d, 1);
    EXPECT_EQ(d, hi);
    ASSERT_EQ(TRVinfointparam(t.env, 2047, &d, &lo, &hi), 0);
    EXPECT_EQ(d, 1);
    EXPECT_GE(hi, 1);
    char s[512];
    ASSERT_EQ(TRVinfostrparam(t.env, 1064, s), 0);
    EXPECT_STREQ(s, ".");
}

TEST(Params, EveryNumberBelongsToExactlyOneType) {
    TestEnv t;
    int ints = 0, dbls = 0, strs = 0;
    for (int num = 1001; num < 6000; num++) {
        int iv;
        double dv;
        char sv[512];
        ints += TRVgetintparam(t.env, num, &iv) == 0;
        dbls += TRVgetdblparam(t.env, num, &dv) == 0;
        strs += TRVgetstrparam(t.env, num, sv) == 0;
    }
    EXPECT_EQ(ints + dbls + strs, 148);
    EXPECT_EQ(strs, 1);
    /* each failure was a 1013 printed once */
    size_t n = 0, pos = 0;
    while ((pos = t.err.find("TORVA Error  1013:", pos)) != std::string::npos) n++, pos++;
    EXPECT_EQ(n, 3u * 4999u - 148u);
}

TEST(Params, BoundsAreEnforcedAndTheValueKept) {
    TestEnv t;
    EXPECT_EQ(TRVsetintparam(t.env, 1019, 3), 1015);
    EXPECT_EQ(TRVsetintparam(t.env, 1019, -1), 1014);
    int v;
    TRVgetintparam(t.env, 1019, &v);
    EXPECT_EQ(v, 1);
    EXPECT_EQ(t.err, errstr(1015) + errstr(1014));
    EXPECT_EQ(TRVsetdblparam(t.env, 1014, 0.5), 1015);
    EXPECT_EQ(TRVsetintparam(t.env, 1000, 1), 1013);
    EXPECT_EQ(TRVsetintparam(t.env, 6000, 1), 1013);
    EXPECT_EQ(TRVsetintparam(t.env, 1040, 1), 1013); /* a gap */
    EXPECT_EQ(TRVgetintparam(t.env, 1005, &v), 1013); /* a double */
    EXPECT_EQ(TRVgetintparam(t.env, 1020, nullptr), 1004);
    EXPECT_EQ(TRVsetintparam(t.env, 1036, 2), 1015);
    EXPECT_EQ(TRVsetintparam(t.env, 1036, 1), 0);
}

TEST(Params, TheSpecialCases) {
    TestEnv t;
    EXPECT_EQ(TRVsetintparam(t.env, 1009, 5), 0);
    EXPECT_EQ(TRVsetintparam(t.env, 1009, 6), 1015);
    int hi;
    TRVinfointparam(t.env, 1009, nullptr, nullptr, &hi);
    EXPECT_EQ(hi, 4);
    EXPECT_EQ(TRVsetdblparam(t.env, 1025, -1e300), 0); /* equal bounds: no check */
    EXPECT_EQ(TRVsetdblparam(t.env, 1026, 1e300), 0);
    std::string s511(511, 'a'), s512(512, 'b');
    char buf[512];
    EXPECT_EQ(TRVsetstrparam(t.env, 1064, s511.c_str()), 0);
    EXPECT_EQ(TRVsetstrparam(t.env, 1064, s512.c_str()), 1026);
    TRVgetstrparam(t.env, 1064, buf);
    EXPECT_EQ(std::string(buf), s511);
}

TEST(Params, EchoOfChanges) {
    TestEnv t;
    TRVsetintparam(t.env, 1067, 1);
    TRVsetintparam(t.env, 1020, 50);
    TRVsetdblparam(t.env, 1014, 1e-7);
    TRVsetstrparam(t.env, 1064, "/tmp");
    EXPECT_EQ(t.res,
              "Parameter 1067 set to 1.\nParameter 1020 set to 50.\n"
              "Parameter 1014 set to 1e-07.\nParameter 1064 set to \"/tmp\".\n");
}

TEST(Params, SetDefaultsRestoresValuesButKeepsTheLogFile) {
    TestEnv t;
    FILE *f = std::tmpfile();
    TRVsetlogfile(t.env, f);
    TRVsetintparam(t.env, 1020, 50);
    ASSERT_EQ(TRVsetdefaults(t.env), 0);
    int v;
    TRVgetintparam(t.env, 1020, &v);
    EXPECT_EQ(v, 2100000000);
    FILE *g = nullptr;
    TRVgetlogfile(t.env, &g);
    EXPECT_EQ(g, f);
    TRVsetlogfile(t.env, nullptr);
    std::fclose(f);
}

TEST(Params, ScreenIndicatorAddsStdoutOnce) {
    TestEnv t;
    TRVchannel res;
    TRVgetchannels(t.env, &res, nullptr, nullptr, nullptr);
    ASSERT_EQ(TRVsetintparam(t.env, 1035, 1), 0);
    ASSERT_EQ(TRVsetintparam(t.env, 1035, 1), 0);
    /* one stdout destination: removing it once succeeds, twice fails */
    EXPECT_EQ(TRVdelfpdest(t.env, res, stdout), 0);
    EXPECT_EQ(TRVdelfpdest(t.env, res, stdout), 1052);
    TRVsetintparam(t.env, 1035, 1);
    TRVsetintparam(t.env, 1035, 0);
    EXPECT_EQ(TRVdelfpdest(t.env, res, stdout), 1052);
}

namespace {
void append_a(void *h, const char *s) { static_cast<std::string *>(h)->append("A:").append(s); }
void append_b(void *h, const char *s) { static_cast<std::string *>(h)->append("B:").append(s); }
}  // namespace

TEST(Channels, NewestDestinationIsServedFirst) {
    TestEnv t;
    TRVchannel c = TRVaddchannel(t.env);
    std::string out;
    ASSERT_EQ(TRVaddfuncdest(t.env, c, &out, append_a), 0);
    ASSERT_EQ(TRVaddfuncdest(t.env, c, &out, append_b), 0);
    EXPECT_EQ(TRVmsgstr(c, "hi\n"), 3);
    EXPECT_EQ(out, "B:hi\nA:hi\n");
    std::string other;
    EXPECT_EQ(TRVdelfuncdest(t.env, c, &other, append_a), 1053); /* other handle */
    EXPECT_EQ(TRVdelfuncdest(t.env, c, &out, append_a), 0);
    EXPECT_EQ(TRVaddfuncdest(t.env, c, &out, nullptr), 1053);
    EXPECT_EQ(TRVaddfuncdest(t.env, nullptr, &out, append_a), 1051);
    EXPECT_EQ(TRVaddfpdest(t.env, c, nullptr), 1052);
    TRVdisconnectchannel(t.env, c);
    out.clear();
    EXPECT_EQ(TRVmsgstr(c, "gone"), 4);
    EXPECT_EQ(out, "");
    EXPECT_EQ(TRVmsgstr(nullptr, "x"), 1);
    TRVdelchannel(t.env, &c);
    EXPECT_EQ(c, nullptr);
}

TEST(Channels, LogFileSitsOnceOnEachStandardChannel) {
    TestEnv t;
    FILE *f = std::tmpfile();
    ASSERT_EQ(TRVsetlogfile(t.env, f), 0);
    ASSERT_EQ(TRVsetlogfile(t.env, f), 0);
    TRVchannel r, w, e, l;
    TRVgetchannels(t.env, &r, &w, &e, &l);
    for (TRVchannel c : {r, w, e, l}) TRVmsgstr(c, "x");
    TRVflushstdchannels(t.env);
    EXPECT_EQ(std::ftell(f), 4);
    ASSERT_EQ(TRVsetlogfile(t.env, nullptr), 0);
    for (TRVchannel c : {r, w, e, l}) EXPECT_EQ(TRVdelfpdest(t.env, c, f), 1052);
    std::fclose(f);
}

TEST(Env, StaleHandlesAreRefused) {
    TestEnv t;
    TRVlp lp = small_model().copy_into(t.env);
    TRVlp stale = lp;
    ASSERT_EQ(TRVfreeprob(t.env, &lp), 0);
    EXPECT_EQ(TRVgetnumcols(t.env, stale), 0);
    EXPECT_EQ(TRVgetprobtype(t.env, stale), -1);
    EXPECT_EQ(TRVfreeprob(t.env, &stale), 1009);
    EXPECT_NE(t.err.find("TORVA Error  1009: No problem exists.\n"), std::string::npos);

    /* a problem left to the environment's close, and the closed
     * environment itself */
    int st = 0;
    TRVenv env = TRVopenTORVA(&st);
    TRVlp left = small_model().copy_into(env);
    TRVenv old = env;
    ASSERT_EQ(TRVcloseTORVA(&env), 0);
    EXPECT_EQ(TRVgetnumrows(t.env, left), 0);
    EXPECT_EQ(TRVversion(old), nullptr);
    EXPECT_EQ(TRVsetintparam(old, 1020, 1), 1002);
}

TEST(Env, StaleHandlesStayRefusedWhenTheirMemoryIsReused) {
    TestEnv t;
    /* a freed problem followed by new ones: however the records are
     * recycled, the old handle names none of them */
    TRVlp lp = small_model().copy_into(t.env);
    TRVlp stale = lp;
    ASSERT_EQ(TRVfreeprob(t.env, &lp), 0);
    std::vector<TRVlp> fresh;
    for (int k = 0; k < 50; k++) {
        int st = 0;
        fresh.push_back(TRVcreateprob(t.env, &st, "fresh"));
        ASSERT_EQ(st, 0);
        ASSERT_NE(fresh.back(), stale);
    }
    t.clear();
    EXPECT_EQ(TRVgetnumrows(t.env, stale), 0);
    EXPECT_EQ(TRVchgobjsen(t.env, stale, -1), 1009);
    EXPECT_EQ(TRVfreeprob(t.env, &stale), 1009);
    EXPECT_NE(t.err.find("TORVA Error  1009: No problem exists.\n"), std::string::npos);
    /* the freeing of a stale handle touched none of the new problems */
    for (TRVlp p : fresh) EXPECT_EQ(TRVgetobjsen(t.env, p), 1);
    for (TRVlp &p : fresh) ASSERT_EQ(TRVfreeprob(t.env, &p), 0);

    /* a closed environment followed by a new one */
    int st = 0;
    TRVenv a = TRVopenTORVA(&st);
    TRVenv old = a;
    ASSERT_EQ(TRVcloseTORVA(&a), 0);
    TRVenv b = TRVopenTORVA(&st);
    ASSERT_NE(b, old);
    EXPECT_EQ(TRVsetintparam(old, 1020, 7), 1002);
    int v = 0;
    ASSERT_EQ(TRVgetintparam(b, 1020, &v), 0);
    EXPECT_NE(v, 7);
    EXPECT_EQ(TRVcloseTORVA(&old), 1002);
    EXPECT_EQ(TRVcloseTORVA(&b), 0);
}

TEST(Env, AProblemBelongsToTheEnvironmentThatMadeIt) {
    TestEnv a, b;
    TRVlp lp = small_model().copy_into(a.env);
    ASSERT_NE(lp, nullptr);
    /* freeing, changing or solving it under another environment is refused
     * and leaves it on its own environment's list */
    TRVlp alias = lp;
    EXPECT_EQ(TRVfreeprob(b.env, &alias), 1009);
    EXPECT_EQ(alias, lp);
    EXPECT_EQ(TRVgetnumcols(b.env, lp), 0);
    EXPECT_EQ(TRVchgobjsen(b.env, lp, -1), 1009);
    EXPECT_EQ(TRVdualopt(b.env, lp), 1009);
    EXPECT_NE(b.err.find("TORVA Error  1009: No problem exists.\n"), std::string::npos);
    EXPECT_EQ(a.err, "");
    EXPECT_EQ(TRVgetnumcols(a.env, lp), 3);
    EXPECT_EQ(TRVgetobjsen(a.env, lp), 1);
    /* a clone environment may copy its parent's problem, not free it */
    int st = 0;
    TRVenv child = TRVparenv(a.env, &st);
    ASSERT_EQ(st, 0);
    TRVlp copy = TRVcloneprob(child, lp, &st);
    ASSERT_EQ(st, 0);
    EXPECT_EQ(TRVgetnumcols(child, copy), 3);
    alias = lp;
    EXPECT_EQ(TRVfreeprob(child, &alias), 1009);
    EXPECT_EQ(TRVgetnumcols(a.env, copy), 0); /* the copy is the clone's */
    EXPECT_EQ(TRVfreeparenv(a.env, &child), 0); /* frees the copy with it */
    EXPECT_EQ(TRVgetnumcols(a.env, lp), 3);
    ASSERT_EQ(TRVfreeprob(a.env, &lp), 0);
}

TEST(Env, GarbageHandlesAreRefusedWithoutBeingRead) {
    TestEnv t;
    alignas(16) static unsigned char junk[4096];
    for (unsigned char &c : junk) c = 0xA5;
    TRVenv genv = reinterpret_cast<TRVenv>(junk);
    TRVlp glp = reinterpret_cast<TRVlp>(junk);
    EXPECT_EQ(TRVsetintparam(genv, 1020, 1), 1002);
    EXPECT_EQ(TRVversion(genv), nullptr);
    EXPECT_EQ(TRVgetnumcols(t.env, glp), 0);
    EXPECT_EQ(TRVdualopt(t.env, glp), 1009);
    /* a problem handle passed as an environment, and the reverse */
    TRVlp lp = small_model().copy_into(t.env);
    EXPECT_EQ(TRVgetnumcols(reinterpret_cast<TRVenv>(lp), lp), 0);
    EXPECT_EQ(TRVgetnumcols(t.env, reinterpret_cast<TRVlp>(t.env)), 0);
    /* channels: another environment's or a deleted one is not touched */
    TestEnv u;
    TRVchannel mine = TRVaddchannel(t.env), theirs = TRVaddchannel(u.env);
    EXPECT_EQ(TRVaddfpdest(t.env, theirs, stderr), 1051);
    TRVchannel gone = mine;
    TRVdelchannel(t.env, &mine);
    EXPECT_EQ(mine, nullptr);
    EXPECT_EQ(TRVaddfpdest(t.env, gone, stderr), 1051);
    TRVdelchannel(t.env, &gone); /* nothing happens */
    TRVfreeprob(t.env, &lp);
}
