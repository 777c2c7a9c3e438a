// Record layout, bit tables, fix2float, fixed2double and fixedshift.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

Fixed::fixed record(int bits, int exp, int sign, std::initializer_list<uint32_t> lowFirst)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    int i = 0;
    for (uint32_t word : lowFirst)
        f.val[i++] = static_cast<int32_t>(word);
    return f;
}

TEST(BitTables, FollowTheirRules)
{
    EXPECT_EQ(Fixed::highmask[0], 0xFFFFFFFFu);
    for (int n = 1; n < 32; ++n) {
        SCOPED_TRACE(n);
        EXPECT_EQ(Fixed::highmask[n], ~((1u << (32 - n)) - 1u));
        EXPECT_EQ(Fixed::lowbit[n], 1u << n);
        EXPECT_EQ(Fixed::highbit[n], 0x80000000u >> n);
    }
    for (unsigned i = 0; i < 16; ++i)
        EXPECT_EQ(Fixed::nibblecount[i], static_cast<uint32_t>(__builtin_popcount(i)));
}

TEST(Fix2Float, WorkedExamples)
{
    struct Case {
        Fixed::fixed f;
        double mantissa;
    };
    const Case cases[] = {
        {record(12, -8, 1, {0xE8000000}), -384.0},
        {record(12, -8, 0, {0xE8000000}), 3712.0},
        {record(12, -8, 1, {0xE80FFFFF}), -384.0},  // pad bits are shifted out
        {record(40, 0, 0, {0x05000000, 0x01000000}), 4294967301.0},
        {record(32, 0, 1, {0x80000000}), -2147483648.0},
        {record(32, 0, 0, {0x80000000}), 2147483648.0},
        {record(33, 0, 0, {0x80000000, 0}), 1.0},
        {record(33, 0, 1, {0x80000000, 0xFFFFFFFF}), -1.0},
        {record(64, 0, 0, {0xFFFFFFFF, 0xFFFFFFFF}), 18446744073709551616.0},
        // Wider than 64 bits the low words are summed first and cancel: -1 in
        // 96 bits comes out as 0.0, as the firmware's data has it.
        {record(96, 0, 1, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}), 0.0},
        {record(160, 0, 0, {0, 0, 0, 0, 1}), std::ldexp(1.0, 128)},
        {record(0, 0, 1, {0xFFFFFFFF}), 0.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(model::hexWords(c.f.val, 5) + " bits " + std::to_string(c.f.bits));
        EXPECT_EQ(Fixed::fix2float(c.f.val, c.f.bits, c.f.sign), c.mantissa);
    }
    EXPECT_EQ(Fixed::fixed2double(record(12, -8, 1, {0xE8000000})), -1.5);
}

TEST(Fix2Float, ExactUpTo53BitsAndCorrectlyRoundedUpTo64)
{
    std::mt19937_64 random(53);
    for (int trial = 0; trial < 20000; ++trial) {
        const int bits = static_cast<int>(random() % 64) + 1;
        const bool isSigned = random() % 2 == 0;
        const mpz_class m = model::randomMantissa(random, bits, isSigned);
        Fixed::fixed f{bits, 0, isSigned ? 1 : 0, {0, 0, 0, 0, 0}};
        model::writeMantissa(m, bits, f.val);
        // Words above the ones in use never take part.
        for (int i = model::wordsFor(bits); i < 5; ++i)
            f.val[i] = static_cast<int32_t>(random());
        SCOPED_TRACE(m.get_str(16) + " in " + std::to_string(bits) + " bits");
        // mpz's get_d truncates; the correctly rounded double comes from mpfr
        // semantics, checked here by exactness below 54 bits and by the
        // rounding error bound above.
        const double got = Fixed::fix2float(f.val, bits, f.sign);
        if (bits <= 53) {
            EXPECT_EQ(mpz_class(got), m);
        } else {
            const mpz_class error = abs(mpz_class(got) - m);
            const mpz_class halfUlp = mpz_class(1) << (bits - 54 < 0 ? 0 : bits - 54);
            EXPECT_LE(error, halfUlp);
        }
    }
}

TEST(FixedShift, MovesTheExponentOnly)
{
    const Fixed::fixed f = record(12, -8, 1, {0xE8000000});
    for (int n : {3, -3, 0}) {
        SCOPED_TRACE(n);
        const Fixed::fixed g = Fixed::fixedshift(f, n);
        EXPECT_EQ(g.exp, f.exp + n);
        EXPECT_EQ(g.bits, f.bits);
        EXPECT_EQ(g.sign, f.sign);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(g.val[i], f.val[i]);
        EXPECT_EQ(Fixed::fixed2double(g), -1.5 * std::ldexp(1.0, n));
    }
    EXPECT_EQ(Fixed::fixedshift(record(8, 2147483647, 0, {}), 1).exp, -2147483647 - 1);
}

}  // namespace
