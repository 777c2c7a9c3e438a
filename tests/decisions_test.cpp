// Results the library chose where its contract leaves the choice open, held
// here so that they stay: widths outside the record's range, empty factors,
// raw words without a width.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <functional>

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

// An invalid flag is reported and passed on; at the widest format the
// conversion still runs (only a width above 160 clears the words).
TEST_F(Decisions, AnInvalidFlagAtTheWidestFormatStillConverts)
{
    const Fixed::fixed built = Fixed::double2fixed(std::ldexp(-1.0, -80), 80, 80, 5, 0, 0);
    EXPECT_EQ(built.val[4], -1);
    EXPECT_EQ(Fixed::fixedformat(built, 100, 60, 1, 0, 9).val[4], -1);
    EXPECT_EQ(recordedReports().size(), 2u);  // the sign, then the wrap flag
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
    // The kernels, given arguments that imply more than 160 source or
    // result bits (or none).
    const int32_t* top = source + 4;
    const std::function<uint32_t(int32_t*)> calls[] = {
        [&](int32_t* dst) { Fixed::fixwiden(top, dst, 150, 20, 1); return 0u; },
        [&](int32_t* dst) { Fixed::fixwiden(top, dst, 0, 8, 1); return 0u; },
        [&](int32_t* dst) { Fixed::fixwidenround(top, dst, 200, 0, 1, 1); return 0u; },
        [&](int32_t* dst) { return Fixed::fixround(top, dst, 170, 1, 1, 0); },
        [&](int32_t* dst) { return Fixed::fixnarrow(top, dst, 0, 8, 4, 1, 0); },
        [&](int32_t* dst) { return Fixed::fixnarrowround(top, dst, 8, 200, 1, 1, 0); },
        [&](int32_t* dst) { Fixed::fixnot(dst, source, 0); return 0u; },
        [&](int32_t* dst) { Fixed::fixnot(dst, source, 161); return 0u; },
    };
    for (size_t i = 0; i < sizeof calls / sizeof calls[0]; ++i) {
        SCOPED_TRACE(i);
        GuardedWords dst(5, junk);
        EXPECT_EQ(calls[i](dst.data() + 4), 0u);
        EXPECT_EQ(model::hexWords(dst.data(), 5), model::hexWords(GuardedWords(5, junk).data(), 5));
        EXPECT_TRUE(dst.guardsIntact());
    }
    for (const auto& factors : {std::make_pair(0, 2), std::make_pair(2, 0), std::make_pair(-1, -1)}) {
        GuardedWords out(4, junk);
        Fixed::fixmult(out.data(), source, source, factors.first, factors.second, 4, 1, 1);
        EXPECT_EQ(model::hexWords(out.data(), 4), model::hexWords(GuardedWords(4, junk).data(), 4));
        EXPECT_TRUE(out.guardsIntact());
    }
    // Reading: no words differ over no words, and no width outside 1..160
    // has a value.
    EXPECT_EQ(Fixed::fixne(source, source + 1, 0), 0);
    EXPECT_EQ(Fixed::fix2float(source, 161, 1) + Fixed::fix2float(source, 0, 1), 0.0);
    expectNoReports();
}

// Every differing field of the format is reported once per call, whichever
// it is; fixedle reports as fixedgt does.
TEST_F(Decisions, ComparisonsReportEachFormatMismatchOnce)
{
    const Fixed::fixed a{8, 0, 1, {static_cast<int32_t>(0x80000000u), 0, 0, 0, 0}};
    struct Case { Fixed::fixed b; size_t gtReports, eqReports; };
    const Case cases[] = {
        {{9, 0, 1, {static_cast<int32_t>(0x80000000u), 0, 0, 0, 0}}, 1, 1},
        {{8, 3, 1, {static_cast<int32_t>(0x80000000u), 0, 0, 0, 0}}, 1, 1},
        {{8, 0, 0, {static_cast<int32_t>(0x80000000u), 0, 0, 0, 0}}, 0, 1},
        {{9, 3, 0, {static_cast<int32_t>(0x80000000u), 0, 0, 0, 0}}, 1, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.b.bits) + "/" + std::to_string(c.b.exp) + "/" + std::to_string(c.b.sign));
        Fixed::fixedgt(a, c.b);
        Fixed::fixedle(a, c.b);
        EXPECT_EQ(recordedReports().size(), 2 * c.gtReports);
        clearRecordedReports();
        EXPECT_EQ(Fixed::fixedeq(a, c.b), 1);  // the same words
        EXPECT_EQ(recordedReports().size(), c.eqReports);
        clearRecordedReports();
    }
}

// fixwidenround has no overflow flag: with no integer bit gained (d = 0) a
// rounding carry out of the kept bits saturates, as every conversion does
// unless told to wrap. 8-bit sources, 7 bits kept, the dropped bit set.
TEST_F(Decisions, FixwidenroundWithoutAGainedBitSaturatesTheCarry)
{
    struct Case { uint32_t source; int sign; uint32_t expected; };
    const Case cases[] = {
        {0xFF000000u, 0, 0xFE000000u},  // 127.5 units rounds to 128: 127, the unsigned maximum
        {0x7F000000u, 1, 0x7E000000u},  // 63.5 units rounds to 64: 63, the signed maximum
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.sign);
        const int32_t source = static_cast<int32_t>(c.source);
        GuardedWords dst(1);
        Fixed::fixwidenround(&source, dst.data(), 7, 0, c.sign, 1);
        EXPECT_EQ(static_cast<uint32_t>(dst.data()[0]), c.expected);
        EXPECT_TRUE(dst.guardsIntact());
    }
}

// Integer bit counts beyond any double's range keep their meaning: every
// finite value fits a huge count, none fits a hugely negative one.
TEST_F(Decisions, PreDecimalSufficientForBitCountsBeyondAnyDouble)
{
    for (auto sign : {CFixedPoint::SIGN_SIGNED, CFixedPoint::SIGN_UNSIGNED}) {
        SCOPED_TRACE(sign);
        EXPECT_TRUE(CFixedPoint::PreDecimalSufficient(1e300, INT_MAX, sign, CFixedPoint::MAXVALUE_2N_MINUS_1));
        EXPECT_TRUE(CFixedPoint::PreDecimalSufficient(1e300, 2100, sign, CFixedPoint::MAXVALUE_2N));
        EXPECT_FALSE(CFixedPoint::PreDecimalSufficient(1e-300, INT_MIN, sign, CFixedPoint::MAXVALUE_2N_MINUS_1));
        EXPECT_FALSE(CFixedPoint::PreDecimalSufficient(1.0, -2100, sign, CFixedPoint::MAXVALUE_2N));
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
        const Fixed::fixed record = x.GetValue();
        const Fixed::fixed want{format.first + format.second, -format.second, 1, {0x01234567, static_cast<int32_t>(0x89ABCDEFu), 0, 0, 0}};
        EXPECT_EQ(std::memcmp(&record, &want, sizeof want), 0) << model::hexWords(record.val, 5);
        EXPECT_EQ(x.GetValueAs_uint64_t(), 0u);
        EXPECT_EQ(x.MSB() + x.LSB(), 0u);
    }
    // Up to 64 bits they are converted, through a double: a 64-bit pattern
    // beyond 53 significant bits comes out rounded.
    const Fixed::fixed converted = CFixedPoint(0x80000000u, 1u, 64, 0, CFixedPoint::SIGN_UNSIGNED).GetValue();
    EXPECT_EQ(model::hexWords(converted.val, 2), "80000000 00000000 ");
    expectNoReports();
}

}  // namespace

// A record of a width below 1 holds no words: comparisons read none (such
// records are equal and neither is greater, whatever their words), and a
// factor of no words makes the product record blank.
TEST_F(Decisions, RecordsWithoutAWidthHoldNoWords)
{
    for (int bits : {0, -5}) {
        SCOPED_TRACE(bits);
        const Fixed::fixed a{bits, 0, 1, {1, 2, 3, 4, 5}};
        const Fixed::fixed b{bits, 0, 1, {-1, 7, 8, 9, 10}};
        EXPECT_EQ(Fixed::fixedeq(a, b), 1);
        EXPECT_EQ(Fixed::fixedgt(a, b) + Fixed::fixedgt(b, a), 0);
        const Fixed::fixed product = Fixed::fixedmult(a, Fixed::double2fixed(1.5, 8, 8, 1, 1, 0));
        EXPECT_EQ(product.bits, bits + 16);
        EXPECT_EQ(model::hexWords(product.val, 5), model::hexWords(Fixed::fixed{}.val, 5));
    }
    expectNoReports();
}
