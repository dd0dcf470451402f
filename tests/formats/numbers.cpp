/* The readers' decimal conversion: exact against the C library on ordinary
 * input, and the special forms of the formats. */
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "formats/rwutil.h"

namespace {

double conv(const std::string &s, int flags = 0, int *code = nullptr, size_t *used = nullptr) {
    double v = -12345.0;
    const char *stop;
    int c = rw_decimal(s.data(), s.data() + s.size(), flags, &v, &stop);
    if (code != nullptr) *code = c;
    if (used != nullptr) *used = static_cast<size_t>(stop - s.data());
    return v;
}

/* Bitwise equality, so that a last-bit difference shows. */
void expect_same(double a, double b, const std::string &text) {
    EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0) << text << ": " << a << " vs " << b;
}

}  // namespace

TEST(Decimal, MatchesStrtodOnRandomDecimals) {
    std::mt19937_64 rng(20240601);
    char buf[128];
    for (int trial = 0; trial < 300000; trial++) {
        int kind = trial % 6;
        std::string s;
        if (kind == 0) { /* printf round trips of random doubles */
            double x = std::ldexp(static_cast<double>(rng() >> 11), -static_cast<int>(rng() % 80));
            std::snprintf(buf, sizeof buf, "%.*g", 1 + static_cast<int>(rng() % 17), x);
            s = buf;
        } else if (kind == 1) { /* full precision */
            double x = std::ldexp(static_cast<double>(rng() >> 11), static_cast<int>(rng() % 120) - 60);
            std::snprintf(buf, sizeof buf, "%.17g", x);
            s = buf;
        } else { /* random digit strings with a point and an exponent */
            int nd = 1 + static_cast<int>(rng() % (kind == 2 ? 8 : kind == 3 ? 19 : 40));
            int point = static_cast<int>(rng() % (nd + 1));
            if (rng() % 4 == 0) s += rng() % 2 ? "-" : "+";
            for (int i = 0; i < nd; i++) {
                if (i == point) s += '.';
                s += static_cast<char>('0' + rng() % 10);
            }
            if (rng() % 2) {
                int e = static_cast<int>(rng() % 75) - 37;
                s += (rng() % 2 ? "e" : "E") + std::to_string(e);
            }
        }
        int code;
        size_t used;
        double v = conv(s, 0, &code, &used);
        ASSERT_EQ(code, 0) << s;
        ASSERT_EQ(used, s.size()) << s;
        expect_same(v, std::strtod(s.c_str(), nullptr), s);
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(Decimal, HardCasesAreCorrectlyRounded) {
    const char *cases[] = {
        "9007199254740993",        /* 2^53 + 1: a tie, rounds to even */
        "9007199254740995",
        "0.1", "0.2", "0.3", "123456789012345678901234567890",
        "2.2250738585072011e-30", "4.9406564584124654e-30",
        "0.500000000000000166533453693773481063544750213623046875",
        "1.00000000000000011102230246251565404236316680908203125",
        "1.00000000000000011102230246251565404236316680908203124",
        "1.00000000000000011102230246251565404236316680908203126",
        "3.14159265358979323846264338327950288419716939937510",
        "0.000000000000000000000000000000000000000000001e37",
        "100000000000000000000000", "1e23", "8.98846567431158e30",
        "123456789e-37", "1.5e-37", "99999999999999999999999999999999999e2",
    };
    for (const char *c : cases) {
        std::string s = c;
        expect_same(conv(s), std::strtod(c, nullptr), s);
    }
    /* more digits than the buffer holds, with a non-zero tail */
    std::string big = "1." + std::string(900, '0') + "1";
    expect_same(conv(big), std::strtod(big.c_str(), nullptr), "long");
    std::string half = "9007199254740993" + std::string(700, '0') + "e-37";
    expect_same(conv(half), std::strtod(half.c_str(), nullptr), "long tie");
}

TEST(Decimal, SignsEmptyAndExponentRules) {
    int code;
    EXPECT_EQ(conv("-", 0, &code), -1.0);
    EXPECT_EQ(conv("+", 0, &code), 1.0);
    EXPECT_EQ(conv("", 0, &code), 0.0);
    EXPECT_EQ(code, 0);
    conv("3e38", 0, &code);
    EXPECT_EQ(code, 1435);
    EXPECT_EQ(conv("3e-38", 0, &code), 0.0); /* an exponent below -37 is zero */
    EXPECT_EQ(code, 0);
    EXPECT_EQ(conv("3e37", 0, &code), 3e37);
    conv(".e5", 0, &code);
    EXPECT_EQ(code, RWNUM_EXPSTART);
    conv("3e", 0, &code);
    EXPECT_EQ(code, RWNUM_EXPEND);
    conv("3e+", 0, &code);
    EXPECT_EQ(code, RWNUM_EXPEND);
    conv(".", 0, &code);
    EXPECT_EQ(code, 1434);
    EXPECT_EQ(conv("1.5D2", RWNUM_DEXP, &code), 150.0);
    size_t used;
    conv("1.5D2", 0, &code, &used);
    EXPECT_EQ(used, 3u); /* D is no exponent letter without the flag */
    /* with a name behind the number the scan stops before it */
    EXPECT_EQ(conv("2x", RWNUM_PREFIX, &code, &used), 2.0);
    EXPECT_EQ(used, 1u);
    EXPECT_EQ(conv("2ex", RWNUM_PREFIX, &code, &used), 2.0);
    EXPECT_EQ(used, 1u);
    EXPECT_EQ(conv("2e1x", RWNUM_PREFIX, &code, &used), 20.0);
    EXPECT_EQ(used, 3u);
    EXPECT_TRUE(std::signbit(conv("-0", 0, &code)));
}
