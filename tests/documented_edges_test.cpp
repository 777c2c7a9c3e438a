// What FixedPoint.h promises at the edges of each member: NaN, infinities and
// scaled values beyond the double range, widths outside 1 to 160, the 53
// significant bits of the 64-bit pattern, operator double above 64 bits,
// large shifts. The header states these; a change of behaviour fails here
// first, so the header changes with it. Also: reports name their source file
// relative to the source tree.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "FixedPoint.h"
#include "fixed_report.h"
#include "report_recorder.h"

namespace {

using C = CFixedPoint;
const double nan = std::numeric_limits<double>::quiet_NaN();
const double inf = std::numeric_limits<double>::infinity();

C fromDouble(double value, int intBits, int fracBits, C::SIGN sign,
             C::ROUND round = C::ROUND_NEAREST, C::WRAP wrap = C::WRAP_SATURATE)
{
    return C(value, intBits, fracBits, sign, round, wrap, false, C::MAXVALUE_2N_MINUS_1);
}

// A record of a format of 64 bits or less holding the right-aligned pattern.
C fromPattern(int bits, int sign, uint64_t pattern)
{
    const uint64_t aligned = pattern << (64 - bits);
    Fixed::fixed f{bits, 0, sign, {0, 0, 0, 0, 0}};
    f.val[0] = static_cast<int32_t>(static_cast<uint32_t>(aligned));
    f.val[1] = static_cast<int32_t>(static_cast<uint32_t>(aligned >> 32));
    return C(f);
}

bool mantissaIsZero(const C& x)
{
    const Fixed::fixed f = x.GetValue();
    return f.val[0] == 0 && f.val[1] == 0 && f.val[2] == 0 && f.val[3] == 0 && f.val[4] == 0;
}

class DocumentedEdges : public ReportingTest {};

const ExpectedReport splitError{Fixed::signature::float2fix, Fixed::message::float2fixSplit};

TEST_F(DocumentedEdges, NaNIsZeroAndReportedInEveryMode)
{
    for (int round = 0; round < 2; ++round)
        for (int wrap = 0; wrap < 2; ++wrap)
            for (C::SIGN sign : {C::SIGN_UNSIGNED, C::SIGN_SIGNED}) {
                SCOPED_TRACE("round " + std::to_string(round) + " wrap " + std::to_string(wrap));
                const C x = fromDouble(nan, 4, 12, sign, static_cast<C::ROUND>(round),
                                       static_cast<C::WRAP>(wrap));
                EXPECT_TRUE(mantissaIsZero(x));
                expectReports({splitError});
            }
}

TEST_F(DocumentedEdges, InfinitiesSaturateOnlyWhenFlooredAndSaturating)
{
    EXPECT_EQ(fromDouble(inf, 4, 12, C::SIGN_SIGNED, C::ROUND_FLOOR).GetValueAs_uint64_t(), 0x7FFFu);
    EXPECT_EQ(fromDouble(-inf, 4, 12, C::SIGN_SIGNED, C::ROUND_FLOOR).GetValueAs_uint64_t(), 0x8000u);
    EXPECT_EQ(fromDouble(inf, 4, 12, C::SIGN_UNSIGNED, C::ROUND_FLOOR).GetValueAs_uint64_t(), 0xFFFFu);
    EXPECT_EQ(fromDouble(-inf, 4, 12, C::SIGN_UNSIGNED, C::ROUND_FLOOR).GetValueAs_uint64_t(), 0u);
    expectNoReports();
    EXPECT_TRUE(mantissaIsZero(fromDouble(inf, 4, 12, C::SIGN_SIGNED, C::ROUND_NEAREST)));
    expectReports({splitError});
    EXPECT_TRUE(mantissaIsZero(fromDouble(-inf, 4, 12, C::SIGN_SIGNED, C::ROUND_FLOOR, C::WRAP_AROUND)));
    expectReports({splitError});
}

TEST_F(DocumentedEdges, ScaledOverflowBehavesAsInfinity)
{
    // 1e300 fits a double; 1e300 x 2^48 does not.
    EXPECT_TRUE(mantissaIsZero(fromDouble(1e300, 0, 48, C::SIGN_UNSIGNED, C::ROUND_NEAREST)));
    expectReports({splitError});
    const Fixed::fixed max = fromDouble(1e300, 0, 48, C::SIGN_UNSIGNED, C::ROUND_FLOOR).GetValue();
    EXPECT_EQ(static_cast<uint32_t>(max.val[0]), 0xFFFF0000u);
    EXPECT_EQ(static_cast<uint32_t>(max.val[1]), 0xFFFFFFFFu);
    expectNoReports();
}

TEST_F(DocumentedEdges, WidthsOutsideTheRecordGiveZero)
{
    const C tooWide = fromDouble(1.5, 161, 0, C::SIGN_SIGNED);
    expectReports({{Fixed::signature::double2fixed, Fixed::message::double2fixedWidth}});
    EXPECT_TRUE(mantissaIsZero(tooWide));
    for (const C& narrow : {fromDouble(1.5, 0, 0, C::SIGN_SIGNED), fromDouble(1.5, -5, 2, C::SIGN_SIGNED),
                            fromDouble(1.5, INT_MAX, 1, C::SIGN_SIGNED)}) {
        EXPECT_LT(narrow.GetValue().bits, 1);
        EXPECT_TRUE(mantissaIsZero(narrow));
        EXPECT_EQ(narrow.GetValueAs_uint64_t(), 0u);
    }
    expectNoReports();

    const C source = fromDouble(1.5, 4, 12, C::SIGN_SIGNED);
    EXPECT_TRUE(mantissaIsZero(C(source, 161, 0, C::SIGN_SIGNED, C::ROUND_NEAREST, C::WRAP_SATURATE)));
    expectReports({{Fixed::signature::fixedformat, Fixed::message::fixedformatWidth}});
    EXPECT_TRUE(mantissaIsZero(C(source, 0, 0, C::SIGN_SIGNED, C::ROUND_NEAREST, C::WRAP_SATURATE)));
    EXPECT_TRUE(mantissaIsZero(C(C(Fixed::fixed{200, 0, 1, {1, 2, 3, 4, 5}}), 8, 0, C::SIGN_SIGNED,
                                 C::ROUND_NEAREST, C::WRAP_SATURATE)));
    // Raw words of a record wider than 160 bits are kept but read as zero.
    C raw(1u, 5u, 200, 0, C::SIGN_UNSIGNED);
    EXPECT_EQ(raw.GetValue().val[0], 5);
    EXPECT_EQ(static_cast<double>(raw), 0.0);
    expectNoReports();
}

TEST_F(DocumentedEdges, RawWordsAboveSixtyFourBitsAreStoredUnaligned)
{
    C x(1u, 5u, 100, 0, C::SIGN_SIGNED);  // pad 28: (2^32 + 5) >> 28
    EXPECT_EQ(static_cast<double>(x), 16.0);
    C y(0xFFFFFFFFu, 0xFFFFFFFFu, 96, 0, C::SIGN_SIGNED);  // no sign extension
    EXPECT_EQ(static_cast<double>(y), 18446744073709551615.0);
    expectNoReports();
}

TEST_F(DocumentedEdges, SixtyFourBitPatternsKeepFiftyThreeBits)
{
    // Rounding that carries out of the width.
    EXPECT_EQ(fromPattern(64, 1, 0x7FFFFFFFFFFFFFFFu).GetValueAs_uint64_t(), 0x8000000000000000u);
    EXPECT_EQ(fromPattern(60, 1, 0x7FFFFFFFFFFFFFFu).GetValueAs_uint64_t(), 0x800000000000000u);
    EXPECT_EQ(fromPattern(54, 0, 0x3FFFFFFFFFFFFFu).GetValueAs_uint64_t(), 0u);
    EXPECT_EQ(fromPattern(64, 0, 0xFFFFFFFFFFFFFC01u).GetValueAs_uint64_t(), 0xFFFFFFFFFFFFFFFFu);
    // Still exact at 53 significant bits.
    EXPECT_EQ(fromPattern(54, 1, 0x1FFFFFFFFFFFFFu).GetValueAs_uint64_t(), 0x1FFFFFFFFFFFFFu);
    const C lost = fromPattern(60, 0, 0x800000000000001u);
    EXPECT_EQ(lost.GetValueAs_uint64_t(), 0x800000000000000u);
    EXPECT_EQ(lost.LSB(), 0u);
    EXPECT_EQ(lost.MSB(), 0x08000000u);
    // The raw-word constructor: the low bit is lost; the top saturates.
    EXPECT_EQ(C(0x08000000u, 1u, 60, 0, C::SIGN_UNSIGNED).GetValue().val[0], 0);
    const Fixed::fixed top = C(0x7FFFFFFFu, 0xFFFFFFFFu, 64, 0, C::SIGN_SIGNED).GetValue();
    EXPECT_EQ(static_cast<uint32_t>(top.val[0]), 0xFFFFFFFFu);
    EXPECT_EQ(static_cast<uint32_t>(top.val[1]), 0x7FFFFFFFu);
    expectNoReports();
}

TEST_F(DocumentedEdges, WideNegativeValuesCanCancelInOperatorDouble)
{
    EXPECT_EQ(static_cast<double>(fromDouble(-1.0, 100, 60, C::SIGN_SIGNED)), 0.0);
    EXPECT_EQ(static_cast<double>(fromDouble(-1.0, 96, 32, C::SIGN_SIGNED)), 0.0);
    EXPECT_EQ(static_cast<double>(fromDouble(-1.0, 40, 40, C::SIGN_SIGNED)), -1.0);
    // A non-negative 96-bit mantissa off the correctly rounded double.
    C x(Fixed::fixed{96, 0, 1, {static_cast<int32_t>(0xFFFFFF7Fu), 0x7B988DFF, 0x70E03CBF, 0, 0}});
    EXPECT_EQ(static_cast<double>(x), 3.493340735780744e+28);
    EXPECT_NE(static_cast<double>(x), 3.4933407357807437e+28);  // the exact value's double
    expectNoReports();
}

TEST_F(DocumentedEdges, LargeShiftsFollowTheDoubleRange)
{
    C x = fromDouble(1.5, 4, 12, C::SIGN_SIGNED);
    EXPECT_EQ(static_cast<double>(x << 1000), std::ldexp(1.5, 1000));
    EXPECT_EQ(static_cast<double>(x << 1100), inf);
    EXPECT_EQ(static_cast<double>(x << -1070), 0.0);  // 1.5 x 2^-1070 would be a subnormal
    EXPECT_EQ((x << INT_MIN).GetValue().exp, 2147483636);
    EXPECT_EQ((x << INT_MAX).GetValueAs_uint64_t(), x.GetValueAs_uint64_t());
    C zero = fromDouble(0.0, 4, 12, C::SIGN_SIGNED);
    EXPECT_TRUE(std::isnan(static_cast<double>(zero << 2000)));
    expectNoReports();
}

TEST_F(DocumentedEdges, InfinitiesFitNoIntegerRange)
{
    for (int bits : {1, 64, 160, 1023})
        for (C::SIGN sign : {C::SIGN_UNSIGNED, C::SIGN_SIGNED})
            for (C::MAXVALUE max : {C::MAXVALUE_2N_MINUS_1, C::MAXVALUE_2N}) {
                EXPECT_FALSE(C::PreDecimalSufficient(inf, bits, sign, max)) << bits;
                EXPECT_FALSE(C::PreDecimalSufficient(-inf, bits, sign, max)) << bits;
                EXPECT_FALSE(C::PreDecimalSufficient(nan, bits, sign, max)) << bits;
            }
}

TEST_F(DocumentedEdges, ReportsNameFilesRelativeToTheSourceTree)
{
    fromDouble(1.5, 161, 0, C::SIGN_SIGNED);
    C(20.0, 4, 12, C::SIGN_SIGNED, C::ROUND_NEAREST, C::WRAP_SATURATE, true, C::MAXVALUE_2N_MINUS_1);
    fromDouble(nan, 4, 12, C::SIGN_SIGNED);
    const std::vector<RecordedReport> reports = recordedReports();
    clearRecordedReports();
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_EQ(reports[1].file, "Common/FixedPointLibrary/FixedPoint.cpp");
    for (const RecordedReport& report : reports) {
        EXPECT_NE(report.file.front(), '/') << report.file;
        const bool inCore = report.file.rfind("FixedPointLibrary/src/", 0) == 0;
        EXPECT_TRUE(inCore || report.file == "Common/FixedPointLibrary/FixedPoint.cpp") << report.file;
    }
}

}  // namespace
