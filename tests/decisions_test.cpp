// Results the library chose where its contract leaves the choice open, held
// here so that they stay: widths outside the record's range, empty factors,
// raw words without a width.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "FixedPoint.h"
#include "exact_model.h"
#include "guarded_words.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

class Decisions : public ReportingTest {};

constexpr int32_t junk = 0x4D4D4D4D;

// A result width above 160 (reported elsewhere) or below 1 (silent) gives
// the header as asked with all five words zero: the record reads as zero.
TEST_F(Decisions, FixedformatOutsideTheRecordWidthsGivesZeroWords)
{
    const Fixed::fixed source{16, -8, 1, {static_cast<int32_t>(0xFFFF0000u), junk, junk, junk, junk}};
    struct Case { int intbits, fracbits; size_t reports; };
    const Case cases[] = {{100, 61, 1}, {-4, 2, 0}, {0, 0, 0}, {-20, -20, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.intbits) + "." + std::to_string(c.fracbits));
        const Fixed::fixed result = Fixed::fixedformat(source, c.intbits, c.fracbits, 1, 1, 0);
        const Fixed::fixed want{c.intbits + c.fracbits, -c.fracbits, 1, {0, 0, 0, 0, 0}};
        EXPECT_EQ(std::memcmp(&result, &want, sizeof want), 0) << model::hexWords(result.val, 5);
        EXPECT_EQ(recordedReports().size(), c.reports);
        clearRecordedReports();
    }
}

// The word routines given a width outside 1..160 or a factor of no words
// touch nothing: fixformat returns 0, fixmult leaves out as it was.
TEST_F(Decisions, WordRoutinesWithoutAMantissaTouchNothing)
{
    const int32_t source[5] = {-1, -1, -1, -1, -1};
    for (int bad : {0, -1, 161, INT_MIN}) {
        SCOPED_TRACE(bad);
        for (const auto& widths : {std::make_pair(bad, 16), std::make_pair(16, bad)}) {
            GuardedWords dst(5, junk);
            EXPECT_EQ(Fixed::fixformat(source, dst.data(), widths.first, widths.second, 0, 0, 1, 1, 0), 0u);
            EXPECT_EQ(model::hexWords(dst.data(), 5), model::hexWords(GuardedWords(5, junk).data(), 5));
            EXPECT_TRUE(dst.guardsIntact());
        }
    }
    for (const auto& factors : {std::make_pair(0, 2), std::make_pair(2, 0), std::make_pair(-1, -1)}) {
        GuardedWords out(4, junk);
        Fixed::fixmult(out.data(), source, source, factors.first, factors.second, 4, 1, 1);
        EXPECT_EQ(model::hexWords(out.data(), 4), model::hexWords(GuardedWords(4, junk).data(), 4));
        EXPECT_TRUE(out.guardsIntact());
    }
    expectNoReports();
}

// Raw words with a width below 1 are kept as given, unconverted, and read
// back as the pattern 0 without a report.
TEST_F(Decisions, RawWordsWithoutAWidthStayRawAndReadAsZero)
{
    for (const auto& format : {std::make_pair(0, 0), std::make_pair(-3, 1), std::make_pair(4, -9)}) {
        SCOPED_TRACE(std::to_string(format.first) + "." + std::to_string(format.second));
        const CFixedPoint x(0x89ABCDEFu, 0x01234567u, format.first, format.second, CFixedPoint::SIGN_SIGNED);
        const Fixed::fix record = x.GetValue();
        const Fixed::fix want{format.first + format.second, -format.second, 1, {0x01234567, static_cast<int32_t>(0x89ABCDEFu), 0, 0, 0}};
        EXPECT_EQ(std::memcmp(&record, &want, sizeof want), 0) << model::hexWords(record.val, 5);
        EXPECT_EQ(x.GetValueAs_uint64_t(), 0u);
        EXPECT_EQ(x.MSB() + x.LSB(), 0u);
    }
    expectNoReports();
}

}  // namespace
