// CFixedPoint: ownership, the range test, raw words, reformatting, += and
// reports that throw.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "FixedPoint.h"
#include "report_recorder.h"

namespace {

bool sameWords(const Fixed::fixed& a, const Fixed::fixed& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

class ClassTest : public ReportingTest {};

// Copies, assignment (self-assignment too), shifts and reformatting leave
// the source as it was, junk words beyond its width included; += accumulates
// in place, also into itself.
TEST_F(ClassTest, OwnsADeepCopyOfItsRecord)
{
    const Fixed::fixed record{16, -12, 1, {0x1B330000, 11, 22, 33, 44}};  // 6963 / 4096
    CFixedPoint a(record);
    EXPECT_TRUE(sameWords(a.GetValue(), record));
    CFixedPoint copy(a), assigned(Fixed::fixed{8, 0, 0, {0x01000000, 0, 0, 0, 0}});
    EXPECT_EQ(&(copy += a), &copy);
    copy += copy;
    assigned = a;
    assigned = assigned;
    assigned += CFixedPoint(Fixed::fixed{16, -12, 1, {static_cast<int32_t>(0xF8000000u), 0, 0, 0, 0}});  // -0.5
    CFixedPoint shifted = a << -3;
    const CFixedPoint nearest(a, 8, 4, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                              CFixedPoint::WRAP_SATURATE);
    EXPECT_TRUE(sameWords(a.GetValue(), record));
    EXPECT_EQ(static_cast<double>(copy), 4 * 6963 / 4096.0);
    EXPECT_EQ(static_cast<double>(assigned), (6963 - 2048) / 4096.0);
    EXPECT_EQ(static_cast<double>(shifted), 6963 / 32768.0);
    const Fixed::fixed r = nearest.GetValue();  // 1.6999 to the nearest sixteenth: 27/16
    EXPECT_EQ(std::to_string(r.bits) + " " + std::to_string(r.exp) + " " + std::to_string(r.sign), "12 -4 1");
    EXPECT_EQ(static_cast<uint32_t>(r.val[0]), 27u << 20);
    expectNoReports();
}

TEST_F(ClassTest, PreDecimalSufficientTestsTheFloor)
{
    const auto S = CFixedPoint::SIGN_SIGNED, U = CFixedPoint::SIGN_UNSIGNED, U2 = static_cast<CFixedPoint::SIGN>(2);
    const auto M1 = CFixedPoint::MAXVALUE_2N_MINUS_1, M = CFixedPoint::MAXVALUE_2N;
    struct Case { double value; int bits; CFixedPoint::SIGN sign; CFixedPoint::MAXVALUE max; bool fits; };
    const Case cases[] = {
        {7.999, 4, S, M1, true},    {8.0, 4, S, M1, false},     {-8.0, 4, S, M1, true},
        {-8.0001, 4, S, M1, false}, {8.5, 4, S, M, true},       {9.0, 4, S, M, false},
        {-8.0001, 4, S, M, false},  {15.9, 4, U, M1, true},     {16.0, 4, U, M1, false},
        {16.5, 4, U, M, true},      {-0.25, 4, U, M1, false},   {-0.25, 4, U, M, false},
        {0.0, 4, U, M1, true},      {1.0, 1, S, M, true},       {1.0, 1, S, M1, false},
        {-1.0, 4, U2, M, false},    {15.5, 4, U2, M1, true},    // sign 2 counts as unsigned
        {16.0, 4, U, static_cast<CFixedPoint::MAXVALUE>(2), true},
        // 62 and 63 magnitude bits: the bounds 2^62 and 2^63 themselves.
        {std::ldexp(1.0, 62) - 1024, 63, S, M1, true}, {std::ldexp(1.0, 62), 63, S, M1, false},
        {std::ldexp(1.0, 62), 63, S, M, true},         {-std::ldexp(1.0, 63), 64, S, M1, true},
        {std::ldexp(1.0, 63), 64, S, M1, false},       {std::ldexp(1.0, 70), 100, U, M1, true},
        {1e300, 100, U, M, false},  {std::nan(""), 100, S, M, false},
        // No magnitude bits or fewer: only what floors into [-P, P - 1] or
        // [-P, P] with a fractional P.
        {0.5, 0, U, M1, true},      {1.0, 0, U, M1, false},     {0.5, 0, U, M, true},
        {0.5, 0, S, M, true},       {-0.5, 0, S, M, false},     {0.5, -5, S, M1, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " in " << c.bits << " bits, sign " << c.sign
                                        << " max " << c.max);
        EXPECT_EQ(CFixedPoint::PreDecimalSufficient(c.value, c.bits, c.sign, c.max), c.fits);
    }
}

TEST_F(ClassTest, RawWordsRoundTripThroughTheMantissa)
{
    const auto S = CFixedPoint::SIGN_SIGNED, U = CFixedPoint::SIGN_UNSIGNED;
    struct Case { uint32_t msb, lsb; int intBits, fracBits; CFixedPoint::SIGN sign; double value; uint64_t pattern; };
    const Case cases[] = {
        {0, 0xE80, 4, 8, S, -1.5, 0xE80}, {0xFFFFFFFF, 0xFFFFFFFF, 64, 0, S, -1.0, 0xFFFFFFFFFFFFFFFF},
        {0xFFFFFFFF, 0xFFFFFFFF, 64, 0, U, 18446744073709551616.0, 0xFFFFFFFFFFFFFFFF},  // 2^64 saturates
        {0, 0x1FFF, 12, 0, U, 4095.0, 0xFFF},  // a bit above the width saturates
        {0x08000000, 0x00000001, 60, 0, U, 576460752303423488.0, 0x800000000000000},  // 53 bits kept
        {0, 1, 1, 0, S, -1.0, 1}, {0, 0x7F, 12, -4, S, 2032.0, 0x7F},
        // A sign field of 2: the pattern is not negated (only SIGN_SIGNED is),
        // but quantised and read as signed, so 3712 saturates to 2047; nothing
        // is reported, as this constructor validates nothing.
        {0, 0xE80, 4, 8, static_cast<CFixedPoint::SIGN>(2), 2047 / 256.0, 0x7FF},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.msb << ":" << c.lsb << std::dec << " as " << c.intBits << "."
                                        << c.fracBits << " sign " << c.sign);
        CFixedPoint x(c.msb, c.lsb, c.intBits, c.fracBits, c.sign);
        EXPECT_EQ(static_cast<double>(x), c.value);
        EXPECT_EQ(x.GetValueAs_uint64_t(), c.pattern);
        EXPECT_EQ(static_cast<unsigned long long>(x), c.pattern);
        EXPECT_EQ((uint64_t{x.MSB()} << 32) | x.LSB(), c.pattern);
    }
    std::mt19937_64 random(99);
    for (int trial = 0; trial < 5000; ++trial) {
        const int bits = static_cast<int>(random() % 53) + 1;
        const uint64_t pattern = random() & ((uint64_t{1} << bits) - 1);
        const auto sign = static_cast<CFixedPoint::SIGN>(random() % 2);
        CFixedPoint x(static_cast<unsigned>(pattern >> 32), static_cast<unsigned>(pattern), bits, 0, sign);
        ASSERT_EQ(x.GetValueAs_uint64_t(), pattern) << bits << " bits, sign " << sign;
    }
    expectNoReports();
}

}  // namespace
