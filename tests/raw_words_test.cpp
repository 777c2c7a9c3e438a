// Raw 32-bit word pairs in and out of CFixedPoint.
#include <gtest/gtest.h>

#include <random>

#include "FixedPoint.h"
#include "report_recorder.h"

namespace {

const char* const uint64Signature = "uint64_t CFixedPoint::GetValueAs_uint64_t() const";
const char* const tooWide = "Method is not supported for numbers with more than 64bits";

class RawWords : public ReportingTest {};

TEST_F(RawWords, RoundTripsThroughTheMantissa)
{
    using C = CFixedPoint;
    struct Case {
        uint32_t msb, lsb;
        int intBits, fracBits;
        C::SIGN sign;
        double value;
        uint64_t pattern;  // GetValueAs_uint64_t
    };
    const Case cases[] = {
        {0, 0xE80, 4, 8, C::SIGN_SIGNED, -1.5, 0xE80},
        {0, 0xE80, 4, 8, C::SIGN_UNSIGNED, 14.5, 0xE80},
        {1, 5, 40, 0, C::SIGN_UNSIGNED, 4294967301.0, 0x100000005},
        {0xFFFFFFFF, 0xFFFFFFFF, 64, 0, C::SIGN_SIGNED, -1.0, 0xFFFFFFFFFFFFFFFF},
        {0x80000000, 0, 64, 0, C::SIGN_SIGNED, -9223372036854775808.0, 0x8000000000000000},
        // An unsigned 64-bit pattern near the top rounds up to 2^64 in the
        // double and saturates to the largest mantissa.
        {0xFFFFFFFF, 0xFFFFFFFF, 64, 0, C::SIGN_UNSIGNED, 18446744073709551616.0, 0xFFFFFFFFFFFFFFFF},
        // A bit above the width of an unsigned pattern saturates.
        {0, 0x1FFF, 12, 0, C::SIGN_UNSIGNED, 4095.0, 0xFFF},
        // Above 53 bits the pattern keeps 53 significant bits.
        {0x08000000, 0x00000001, 60, 0, C::SIGN_UNSIGNED, 576460752303423488.0, 0x800000000000000},
        {0, 1, 1, 0, C::SIGN_SIGNED, -1.0, 1},
        {0, 0x7F, 12, -4, C::SIGN_SIGNED, 2032.0, 0x7F},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.msb << ":" << c.lsb << std::dec << " as "
                                        << c.intBits << "." << c.fracBits << " sign " << c.sign);
        CFixedPoint x(c.msb, c.lsb, c.intBits, c.fracBits, c.sign);
        EXPECT_EQ(static_cast<double>(x), c.value);
        EXPECT_EQ(x.GetValueAs_uint64_t(), c.pattern);
        EXPECT_EQ(static_cast<unsigned long long>(x), c.pattern);
        EXPECT_EQ(x.MSB(), static_cast<unsigned int>(c.pattern >> 32));
        EXPECT_EQ(x.LSB(), static_cast<unsigned int>(c.pattern));
    }
    expectNoReports();
}

TEST_F(RawWords, RoundTripsEveryPatternUpTo53Bits)
{
    std::mt19937_64 random(99);
    for (int trial = 0; trial < 20000; ++trial) {
        const int bits = static_cast<int>(random() % 53) + 1;
        const uint64_t pattern = random() & ((uint64_t{1} << bits) - 1);
        const auto sign = static_cast<CFixedPoint::SIGN>(random() % 2);
        CFixedPoint x(static_cast<unsigned>(pattern >> 32), static_cast<unsigned>(pattern), bits, 0, sign);
        ASSERT_EQ(x.GetValueAs_uint64_t(), pattern) << bits << " bits, sign " << sign;
        const Fixed::fix record = x.GetValue();
        EXPECT_EQ(record.val[2] | record.val[3] | record.val[4], 0);
    }
}

TEST_F(RawWords, WiderThan64BitsKeepsTheWordsAndReports)
{
    CFixedPoint x(1u, 0u, 64, 32, CFixedPoint::SIGN_SIGNED);
    const Fixed::fix record = x.GetValue();
    EXPECT_EQ(record.bits, 96);
    EXPECT_EQ(record.val[0], 0);
    EXPECT_EQ(record.val[1], 1);
    EXPECT_EQ(record.val[2], 0);
    EXPECT_EQ(static_cast<double>(x), 1.0);
    expectNoReports();

    EXPECT_EQ(x.GetValueAs_uint64_t(), 0u);
    EXPECT_EQ(static_cast<unsigned long long>(x), 0u);
    expectReports({{uint64Signature, tooWide}, {uint64Signature, tooWide}});
    EXPECT_EQ(x.MSB(), 0u);
    EXPECT_EQ(x.LSB(), 0u);
    expectReports({{uint64Signature, tooWide}, {uint64Signature, tooWide}});
}

}  // namespace
