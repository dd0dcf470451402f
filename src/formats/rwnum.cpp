/*
 * rwnum.cpp - decimal text to double for the readers, correctly rounded and
 * without the C library's conversion.
 *
 * The scan collects the significant digits and a decimal exponent. Most
 * numbers in model files have at most 15 digits and a small exponent; the
 * value is then one exact integer times or divided by one exact power of
 * ten, a single rounding. Anything else goes through integer arithmetic on
 * the whole digit string: the leading 64 bits of the binary value and a
 * sticky bit for the rest, rounded once to nearest-even. The written
 * exponent is limited to 37 in magnitude: a larger positive one is an
 * error, a larger negative one gives zero.
 */
#include <cmath>
#include <cstdint>
#include <cstring>

#include "formats/rwutil.h"

namespace {

const double pow10_exact[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

#define MAXDIGITS 780
#define BIG_LIMBS 200 /* 6400 bits: 780 digits, a power of ten and a shift */

struct big {
    int n; /* limbs in use; the top one is non-zero unless n is 0 */
    uint32_t w[BIG_LIMBS];
};

void big_trim(big *a) {
    while (a->n > 0 && a->w[a->n - 1] == 0) a->n--;
}

void big_muladd(big *a, uint32_t mul, uint32_t add) {
    uint64_t carry = add;
    for (int i = 0; i < a->n; i++) {
        uint64_t t = static_cast<uint64_t>(a->w[i]) * mul + carry;
        a->w[i] = static_cast<uint32_t>(t);
        carry = t >> 32;
    }
    if (carry != 0 && a->n < BIG_LIMBS) a->w[a->n++] = static_cast<uint32_t>(carry);
}

void big_pow10(big *a, int k) {
    while (k >= 9) {
        big_muladd(a, 1000000000u, 0);
        k -= 9;
    }
    static const uint32_t small[9] = {1,      10,      100,      1000,     10000,
                                      100000, 1000000, 10000000, 100000000};
    if (k > 0) big_muladd(a, small[k], 0);
}

int big_bits(const big *a) {
    if (a->n == 0) return 0;
    return 32 * (a->n - 1) + (32 - __builtin_clz(a->w[a->n - 1]));
}

void big_shl(big *a, int s) {
    if (a->n == 0 || s == 0) return;
    int limbs = s / 32, bits = s % 32;
    int n = a->n + limbs + 1;
    if (n > BIG_LIMBS) n = BIG_LIMBS;
    for (int i = n - 1; i >= 0; i--) {
        int src = i - limbs;
        uint64_t hi = src >= 0 && src < a->n ? a->w[src] : 0;
        uint64_t lo = src - 1 >= 0 && src - 1 < a->n ? a->w[src - 1] : 0;
        a->w[i] = bits == 0 ? static_cast<uint32_t>(hi)
                            : static_cast<uint32_t>((hi << bits) | (lo >> (32 - bits)));
    }
    a->n = n;
    big_trim(a);
}

/* Right shift by one bit. */
void big_shr1(big *a) {
    for (int i = 0; i < a->n; i++) {
        uint32_t next = i + 1 < a->n ? a->w[i + 1] : 0;
        a->w[i] = (a->w[i] >> 1) | (next << 31);
    }
    big_trim(a);
}

int big_cmp(const big *a, const big *b) {
    if (a->n != b->n) return a->n < b->n ? -1 : 1;
    for (int i = a->n - 1; i >= 0; i--)
        if (a->w[i] != b->w[i]) return a->w[i] < b->w[i] ? -1 : 1;
    return 0;
}

/* a -= b, with a >= b. */
void big_sub(big *a, const big *b) {
    int64_t borrow = 0;
    for (int i = 0; i < a->n; i++) {
        int64_t t = static_cast<int64_t>(a->w[i]) - (i < b->n ? b->w[i] : 0) - borrow;
        borrow = t < 0;
        a->w[i] = static_cast<uint32_t>(t + (borrow ? (int64_t{1} << 32) : 0));
    }
    big_trim(a);
}

/* The leading 64 bits (bit 63 set) and whether any bit below them is set. */
uint64_t big_top(const big *a, bool *sticky) {
    int bits = big_bits(a);
    uint64_t t = 0;
    *sticky = false;
    for (int b = bits - 1, k = 0; k < 64; b--, k++) {
        t <<= 1;
        if (b >= 0) t |= (a->w[b / 32] >> (b % 32)) & 1u;
    }
    for (int b = bits - 65; b >= 0 && !*sticky; b--)
        if ((a->w[b / 32] >> (b % 32)) & 1u) *sticky = true;
    return t;
}

/* Rounds t * 2^e (bit 63 of t set) plus a sticky remainder to a double. */
double round_bits(uint64_t t, int e, bool sticky) {
    int lead = e + 63; /* exponent of the leading bit */
    int keep = 53;
    if (lead < -1022) keep = 53 - (-1022 - lead);
    if (keep < 0) return 0.0;
    int drop = 64 - keep;
    uint64_t m = drop >= 64 ? 0 : t >> drop;
    uint64_t rem = drop >= 64 ? t : t & ((uint64_t{1} << drop) - 1);
    uint64_t half = uint64_t{1} << (drop - 1);
    if (rem > half || (rem == half && (sticky || (m & 1))))
        m++;
    return std::ldexp(static_cast<double>(m), e + drop);
}

/* Value of the digit string d[0..nd) times 10^e10, digits non-empty with a
 * non-zero first and last digit. */
double digits_value(const char *d, int nd, int e10) {
    if (nd <= 19) {
        uint64_t m = 0;
        for (int i = 0; i < nd; i++) m = m * 10 + static_cast<uint64_t>(d[i] - '0');
        if (m <= (uint64_t{1} << 53)) {
            double v = static_cast<double>(m);
            if (e10 == 0) return v;
            if (e10 > 0 && e10 <= 22) return v * pow10_exact[e10];
            if (e10 < 0 && e10 >= -22) return v / pow10_exact[-e10];
            if (e10 > 22 && e10 <= 22 + 15) {
                double w = v * pow10_exact[e10 - 22]; /* exact while below 2^53 */
                if (w <= 9007199254740992.0) return w * pow10_exact[22];
            }
        }
    }
    static thread_local big num, den;
    num.n = 0;
    int i = 0;
    while (i < nd) { /* nine digits at a time */
        uint32_t chunk = 0, mul = 1;
        for (int k = 0; k < 9 && i < nd; k++, i++) {
            chunk = chunk * 10 + static_cast<uint32_t>(d[i] - '0');
            mul *= 10;
        }
        if (num.n == 0) {
            num.w[0] = chunk;
            num.n = chunk != 0;
        } else {
            big_muladd(&num, mul, chunk);
        }
    }
    bool sticky;
    if (e10 >= 0) {
        big_pow10(&num, e10);
        int bits = big_bits(&num);
        if (bits > 1100) return HUGE_VAL;
        uint64_t t = big_top(&num, &sticky);
        return round_bits(t, bits - 64, sticky);
    }
    den.n = 1;
    den.w[0] = 1;
    big_pow10(&den, -e10);
    int s = 63 - (big_bits(&num) - big_bits(&den));
    if (s >= 0)
        big_shl(&num, s);
    else
        big_shl(&den, -s);
    /* num / den now lies in (2^62, 2^64): long division, one bit a step */
    big_shl(&den, 63);
    uint64_t q = 0;
    for (int b = 63; b >= 0; b--) {
        if (big_cmp(&num, &den) >= 0) {
            big_sub(&num, &den);
            q |= uint64_t{1} << b;
        }
        if (b > 0) big_shr1(&den);
    }
    int e = -s;
    if ((q >> 63) == 0) { /* one more quotient bit */
        big_shl(&num, 1);
        q <<= 1;
        if (big_cmp(&num, &den) >= 0) {
            big_sub(&num, &den);
            q |= 1;
        }
        e--;
    }
    return round_bits(q, e, num.n != 0);
}

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

/* Trailing zeros go to the exponent; a digit string cut at MAXDIGITS gets a
 * final 1 standing for the non-zero rest, which is below any rounding
 * boundary a double can have. The buffer holds MAXDIGITS + 1 digits. */
double digits_value_checked(char *digits, int nd, int e10, bool dropped) {
    if (dropped) {
        digits[nd++] = '1';
        e10--;
    }
    while (nd > 1 && digits[nd - 1] == '0') nd--, e10++;
    return digits_value(digits, nd, e10);
}

}  // namespace

int rw_decimal(const char *s, const char *end, int flags, double *value,
               const char **stop) {
    const char *p = s;
    double sign = 1.0;
    *value = 0.0;
    if (p < end && (*p == '+' || *p == '-')) {
        if (*p == '-') sign = -1.0;
        p++;
    }
    char digits[MAXDIGITS + 1];
    int nd = 0, e10 = 0;
    bool any = false, dropped = false;
    while (p < end && is_digit(*p)) {
        any = true;
        if (nd > 0 || *p != '0') {
            if (nd < MAXDIGITS)
                digits[nd++] = *p;
            else
                e10++, dropped |= *p != '0';
        }
        p++;
    }
    if (p < end && *p == '.') {
        p++;
        while (p < end && is_digit(*p)) {
            any = true;
            if (nd > 0 || *p != '0') {
                if (nd < MAXDIGITS) {
                    digits[nd++] = *p;
                    e10--;
                } else {
                    dropped |= *p != '0';
                }
            } else {
                e10--;
            }
            p++;
        }
    }
    auto is_exp = [flags](char c) {
        return c == 'e' || c == 'E' || ((flags & RWNUM_DEXP) && (c == 'd' || c == 'D'));
    };
    if (!any) {
        *stop = p;
        if (p < end && is_exp(*p)) return RWNUM_EXPSTART;
        if (p > s && p[-1] == '.') return 1434;
        *value = p > s ? sign : 0.0; /* a lone sign is one, nothing is zero */
        return 0;
    }
    int ex = 0;
    if (p < end && is_exp(*p)) {
        const char *q = p + 1;
        int esign = 1;
        if (q < end && (*q == '+' || *q == '-')) {
            if (*q == '-') esign = -1;
            q++;
        }
        if (q < end && is_digit(*q)) {
            while (q < end && is_digit(*q)) {
                if (ex < 100000) ex = ex * 10 + (*q - '0');
                q++;
            }
            p = q;
            if (ex > 37) {
                *stop = p;
                if (esign > 0) return 1435;
                *value = 0.0 * sign;
                return 0;
            }
            ex *= esign;
        } else if (flags & RWNUM_PREFIX) {
            /* no exponent after all: the caller reads on from the letter */
            *stop = p;
            *value = sign * (nd == 0 ? 0.0 : digits_value_checked(digits, nd, e10, dropped));
            return 0;
        } else {
            *stop = q;
            return RWNUM_EXPEND;
        }
    }
    *stop = p;
    if (nd == 0) {
        *value = 0.0 * sign;
        return 0;
    }
    *value = sign * digits_value_checked(digits, nd, e10 + ex, dropped);
    return 0;
}
