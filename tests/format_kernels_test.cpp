// Format conversion by example: the word kernels, fixedformat and its
// reports. The randomized comparison with the exact model is in
// format_model_test.cpp.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

using Words = std::vector<uint32_t>;  // top word first, as the kernels index
using Kernel = std::function<uint32_t(const int32_t* srcTop, int32_t* dstTop)>;

constexpr int32_t sentinel = 0x5A5A5A5A;

struct KernelCase {
    const char* call;
    Kernel kernel;
    Words source;
    Words expected;
    uint32_t saturated;
};

std::string hexTopFirst(const Words& words)
{
    std::string text;
    for (uint32_t word : words) {
        char buffer[12];
        std::snprintf(buffer, sizeof buffer, "%08X ", word);
        text += buffer;
    }
    return text;
}

// Runs a kernel on a source array of exactly its words (so that a read past
// it is caught by the address sanitizer) and a cleared destination framed by
// sentinels; returns the destination top word first.
Words runKernel(const KernelCase& c, uint32_t* flag)
{
    const size_t ns = c.source.size();
    const size_t nd = c.expected.size();
    std::unique_ptr<int32_t[]> source(new int32_t[ns]);
    for (size_t i = 0; i < ns; ++i)
        source[i] = static_cast<int32_t>(c.source[ns - 1 - i]);
    std::vector<int32_t> frame(nd + 2, 0);
    frame.front() = frame.back() = sentinel;
    *flag = c.kernel(source.get() + ns - 1, frame.data() + nd);
    EXPECT_EQ(frame.front(), sentinel) << "word below the destination written";
    EXPECT_EQ(frame.back(), sentinel) << "word above the destination written";
    Words result;
    for (size_t i = nd; i >= 1; --i)
        result.push_back(static_cast<uint32_t>(frame[i]));
    return result;
}

Kernel widen(int n, int d, int sign)
{
    return [=](const int32_t* s, int32_t* t) { Fixed::fixwiden(s, t, n, d, sign); return 0u; };
}

Kernel widenRound(int kept, int d, int sign, int round)
{
    return [=](const int32_t* s, int32_t* t) {
        Fixed::fixwidenround(s, t, kept, d, sign, round);
        return 0u;
    };
}

Kernel roundOnly(int bt, int sign, int round, int wrap)
{
    return [=](const int32_t* s, int32_t* t) { return Fixed::fixround(s, t, bt, sign, round, wrap); };
}

Kernel narrow(int n, int bt, int k, int sign, int wrap)
{
    return [=](const int32_t* s, int32_t* t) { return Fixed::fixnarrow(s, t, n, bt, k, sign, wrap); };
}

Kernel narrowRound(int bt, int k, int sign, int round, int wrap)
{
    return [=](const int32_t* s, int32_t* t) {
        return Fixed::fixnarrowround(s, t, bt, k, sign, round, wrap);
    };
}

TEST(FormatKernels, WordTables)
{
    const KernelCase cases[] = {
        // Sign fill and the shift across word boundaries.
        {"fixwiden n40 d8 s", widen(40, 8, 1), {0x80000001, 0x23000000}, {0xFF800000, 0x01230000}, 0},
        {"fixwiden n40 d33 s", widen(40, 33, 1), {0x80000001, 0x23000000},
         {0xFFFFFFFF, 0xC0000000, 0x91800000}, 0},
        {"fixwiden n40 d33 u", widen(40, 33, 0), {0x80000001, 0x23000000},
         {0x00000000, 0x40000000, 0x91800000}, 0},
        {"fixwiden n40 d32 s", widen(40, 32, 1), {0x80000001, 0x23000000},
         {0xFFFFFFFF, 0x80000001, 0x23000000}, 0},
        {"fixwiden n40 d31 s", widen(40, 31, 1), {0x80000001, 0x23000000},
         {0xFFFFFFFF, 0x00000002, 0x46000000}, 0},
        {"fixwiden n1 d63 s", widen(1, 63, 1), {0x80000000}, {0xFFFFFFFF, 0xFFFFFFFF}, 0},
        {"fixwiden n64 d64 s", widen(64, 64, 1), {0xF0000000, 0x00000001},
         {0xFFFFFFFF, 0xFFFFFFFF, 0xF0000000, 0x00000001}, 0},
        // Rounding of dropped bits, also when the carry ripples through.
        {"fixwidenround kept28 d4 nearest", widenRound(28, 4, 1, 1), {0x80000FF8, 0x00000000},
         {0xF8000100}, 0},
        {"fixwidenround kept28 d4 floor", widenRound(28, 4, 1, 0), {0x80000FF8, 0x00000000},
         {0xF80000FF}, 0},
        {"fixwidenround kept32 d1 ripple", widenRound(32, 1, 1, 1), {0x7FFFFFFF, 0x80000000},
         {0x40000000, 0x00000000}, 0},
        {"fixwidenround kept32 d1 -1 unit", widenRound(32, 1, 1, 1), {0xFFFFFFFF, 0x80000000},
         {0x00000000, 0x00000000}, 0},
        {"fixwidenround kept31 d1 bit0", widenRound(31, 1, 1, 1), {0x00000003, 0x00000000},
         {0x00000002}, 0},
        // Every source bit below the result: 0, -1 or one unit.
        {"fixwidenround kept0 unsigned nearest", widenRound(0, 40, 0, 1), {0x80000000},
         {0x00000000, 0x01000000}, 0},
        {"fixwidenround kept0 unsigned nearest s0", widenRound(0, 32, 0, 1), {0x80000000},
         {0x00000001}, 0},
        {"fixwidenround kept-1 unsigned nearest", widenRound(-1, 41, 0, 1), {0x80000000},
         {0x00000000, 0x00000000}, 0},
        {"fixwidenround kept-3 signed floor", widenRound(-3, 43, 1, 0), {0x80000000},
         {0xFFFFFFFF, 0xFF000000}, 0},
        {"fixwidenround kept0 signed nearest", widenRound(0, 40, 1, 1), {0x80000000},
         {0x00000000, 0x00000000}, 0},
        // Same integer bits: masked copy, rounding carry, overflow.
        {"fixround bt40", roundOnly(40, 1, 1, 0), {0x00000001, 0x7FFFFFFF}, {0x00000001, 0x80000000}, 0},
        {"fixround bt40 saturate", roundOnly(40, 1, 1, 0), {0x7FFFFFFF, 0xFFFFFFFF},
         {0x7FFFFFFF, 0xFF000000}, 1},
        {"fixround bt40 wrap", roundOnly(40, 1, 1, 1), {0x7FFFFFFF, 0xFFFFFFFF},
         {0x80000000, 0x00000000}, 0},
        {"fixround bt32 unsigned saturate", roundOnly(32, 0, 1, 0), {0xFFFFFFFF, 0x80000000},
         {0xFFFFFFFF}, 1},
        {"fixround bt32 unsigned wrap", roundOnly(32, 0, 1, 1), {0xFFFFFFFF, 0x80000000}, {0x00000000},
         0},
        {"fixround bt64 floor", roundOnly(64, 1, 0, 0), {0x12345678, 0x9ABCDEF0, 0xFFFFFFFF},
         {0x12345678, 0x9ABCDEF0}, 0},
        // Range checks of lost integer bits.
        {"fixnarrow fits max", narrow(64, 33, 31, 1, 0), {0x00000000, 0xFFFFFFFF}, {0x7FFFFFFF, 0x80000000},
         0},
        {"fixnarrow too large", narrow(64, 33, 31, 1, 0), {0x00000001, 0x00000000},
         {0x7FFFFFFF, 0x80000000}, 1},
        {"fixnarrow fits min", narrow(64, 33, 31, 1, 0), {0xFFFFFFFF, 0x00000000}, {0x80000000, 0x00000000},
         0},
        {"fixnarrow too small", narrow(64, 33, 31, 1, 0), {0xFFFFFFFE, 0xFFFFFFFF},
         {0x80000000, 0x00000000}, 1},
        {"fixnarrow wrap", narrow(64, 33, 31, 1, 1), {0xFFFFFFFE, 0xFFFFFFFF}, {0x7FFFFFFF, 0x80000000}, 0},
        {"fixnarrow k32 fits", narrow(64, 32, 32, 1, 0), {0xFFFFFFFF, 0x80000000}, {0x80000000}, 0},
        {"fixnarrow k32 too small", narrow(64, 32, 32, 1, 0), {0xFFFFFFFF, 0x7FFFFFFF}, {0x80000000}, 1},
        {"fixnarrow unsigned top bit", narrow(64, 40, 1, 0, 0), {0x80000000, 0x00000000},
         {0xFFFFFFFF, 0xFF000000}, 1},
        {"fixnarrow k1 signed 11", narrow(8, 7, 1, 1, 0), {0xC1000000}, {0x82000000}, 0},
        {"fixnarrow k1 signed 10", narrow(8, 7, 1, 1, 0), {0xA1000000}, {0x80000000}, 1},
        {"fixnarrow all lost zero", narrow(32, 8, 40, 1, 0), {0x00000000}, {0x00000000}, 0},
        {"fixnarrow all lost positive", narrow(32, 8, 40, 1, 0), {0x00000001}, {0x7F000000}, 1},
        {"fixnarrow all lost unsigned", narrow(32, 8, 40, 0, 0), {0x00000001}, {0xFF000000}, 1},
        {"fixnarrow all lost negative", narrow(32, 8, 40, 1, 0), {0x80000000}, {0x80000000}, 1},
        {"fixnarrow all lost wrap", narrow(32, 8, 40, 1, 1), {0x80000001}, {0x00000000}, 0},
        // Both: range check first, then rounding with its overflow test.
        {"fixnarrowround overflow", narrowRound(24, 16, 1, 1, 0), {0x00007FFF, 0xFF800000}, {0x7FFFFF00},
         1},
        {"fixnarrowround below half", narrowRound(24, 16, 1, 1, 0), {0x00007FFF, 0xFF7FFFFF}, {0x7FFFFF00},
         0},
        {"fixnarrowround min", narrowRound(24, 16, 1, 1, 0), {0xFFFF8000, 0x00000000}, {0x80000000}, 0},
        {"fixnarrowround too small", narrowRound(24, 16, 1, 1, 0), {0xFFFF7FFF, 0xFFFFFFFF},
         {0x80000000}, 1},
        {"fixnarrowround wrap carry", narrowRound(24, 16, 1, 1, 1), {0x00007FFF, 0xFF800000},
         {0x80000000}, 0},
        {"fixnarrowround k33 two words", narrowRound(40, 33, 1, 1, 0),
         {0x00000000, 0x12345678, 0x9AFCDEF0}, {0x2468ACF1, 0x36000000}, 0},
    };
    for (const KernelCase& c : cases) {
        SCOPED_TRACE(std::string(c.call) + " source " + hexTopFirst(c.source));
        uint32_t flag = 0;
        const Words result = runKernel(c, &flag);
        EXPECT_EQ(hexTopFirst(result), hexTopFirst(c.expected));
        EXPECT_EQ(flag, c.saturated);
    }
}

// ---- fixedformat -----------------------------------------------------------

Fixed::fixed rightAligned(int bits, int exp, int sign, uint64_t pattern)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    model::writeMantissa(mpz_class(static_cast<unsigned long>(pattern)), bits, f.val);
    return f;
}

TEST(FixedFormat, WorkedExamples)
{
    struct Case {
        Fixed::fixed source;
        int intbits, fracbits, sign, round, wrap;
        uint32_t expected;
    };
    const Case cases[] = {
        {rightAligned(16, -8, 1, 0x0180), 4, 0, 1, 1, 0, 0x20000000},
        {rightAligned(16, -8, 1, 0x0180), 4, 0, 1, 0, 0, 0x10000000},
        {rightAligned(16, -8, 1, 0xFE80), 4, 0, 1, 1, 0, 0xF0000000},
        {rightAligned(16, -8, 1, 0xFE80), 4, 0, 1, 0, 0, 0xE0000000},
        {rightAligned(16, 0, 1, 0x012C), 8, 0, 1, 0, 0, 0x7F000000},
        {rightAligned(16, 0, 1, 0x012C), 8, 0, 1, 0, 1, 0x2C000000},
        {rightAligned(16, 0, 1, 0xFED4), 8, 0, 1, 0, 0, 0x80000000},
        {rightAligned(16, 0, 1, 0xFED4), 8, 0, 1, 0, 1, 0xD4000000},
        {rightAligned(8, 0, 1, 0xFF), 16, 0, 0, 0, 0, 0x00FF0000},
        {rightAligned(8, 0, 0, 0xFF), 16, 0, 1, 0, 0, 0xFFFF0000},
        {rightAligned(32, -16, 1, 0x7FFFFFFF), 16, 15, 1, 1, 0, 0x7FFFFFFE},
        {rightAligned(32, -16, 1, 0x7FFFFFFF), 16, 15, 1, 1, 1, 0x80000000},
        // Same format: a copy, whatever the flags say, read under the new sign.
        {rightAligned(12, -4, 1, 0xE81), 8, 4, 0, 1, 1, 0xE8100000},
        // Negative fractional bits; integer bits below zero.
        {rightAligned(16, 0, 0, 0x1234), 16, -8, 0, 1, 0, 0x12000000},
        {rightAligned(16, -20, 0, 0x1234), -2, 10, 0, 1, 0, 0x05000000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(model::hexWords(c.source.val, 1) + " -> " + std::to_string(c.intbits) + "." +
                     std::to_string(c.fracbits) + " s" + std::to_string(c.sign) + " r" +
                     std::to_string(c.round) + " w" + std::to_string(c.wrap));
        const Fixed::fixed result =
            Fixed::fixedformat(c.source, c.intbits, c.fracbits, c.sign, c.round, c.wrap);
        EXPECT_EQ(result.bits, c.intbits + c.fracbits);
        EXPECT_EQ(result.exp, -c.fracbits);
        EXPECT_EQ(result.sign, c.sign);
        EXPECT_EQ(static_cast<uint32_t>(result.val[0]), c.expected);
    }

    // 1.5 as a 64-bit value rounds to 2 in 33 integer bits.
    const Fixed::fixed wide{64, -32, 1, {static_cast<int32_t>(0x80000000), 1, 0, 0, 0}};
    const Fixed::fixed two = Fixed::fixedformat(wide, 33, 0, 1, 1, 0);
    EXPECT_EQ(model::hexWords(two.val, 2), "00000001 00000000 ");
}

TEST(FixFormat, ExtremeExponentsSaturateOrVanish)
{
    constexpr int most = 2147483647;
    constexpr int least = -2147483647 - 1;
    struct Case {
        uint32_t source;
        int srcexp, dstexp, round;
        uint32_t expected, flag;
    };
    const Case cases[] = {
        {0x01000000, most, least, 0, 0x7F000000, 1},   // far too large
        {0xFF000000, most, least, 0, 0x80000000, 1},   // far too small
        {0x01000000, least, most, 1, 0x00000000, 0},   // far below the last place
        {0xFF000000, least, most, 0, 0xFF000000, 0},   // floor of a tiny negative: -1
        {0xFF000000, least, most, 1, 0x00000000, 0},   // rounded: 0
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.srcexp) + " -> " + std::to_string(c.dstexp));
        const int32_t source = static_cast<int32_t>(c.source);
        int32_t frame[3] = {sentinel, 0, sentinel};
        EXPECT_EQ(Fixed::fixformat(&source, frame + 1, 8, 8, c.srcexp, c.dstexp, 1, c.round, 0), c.flag);
        EXPECT_EQ(static_cast<uint32_t>(frame[1]), c.expected);
        EXPECT_EQ(frame[0], sentinel);
        EXPECT_EQ(frame[2], sentinel);
    }
}

class FixedFormatReports : public ReportingTest {};

const char* const fixedformatSignature =
    "Fixed::fixed Fixed::fixedformat(Fixed::fixed, int, int, int, int, int)";

TEST_F(FixedFormatReports, InvalidFlagsAreReportedInOrderAndActAsOne)
{
    const Fixed::fixed source = rightAligned(16, 0, 1, 0x012C);
    const Fixed::fixed result = Fixed::fixedformat(source, 8, 0, 2, -1, 7);
    expectReports({{fixedformatSignature, "C error: Illegal value for 'fixedformat' (Vorz)."},
                   {fixedformatSignature, "C error: Illegal value for 'fixedformat' (Rund)."},
                   {fixedformatSignature, "C error: Illegal value for 'fixedformat' (Wrap)."}});
    EXPECT_EQ(result.sign, 2);
    EXPECT_EQ(static_cast<uint32_t>(result.val[0]), 0x2C000000u);  // signed, wrapped

    // round = -1 rounds to nearest: 1.5 becomes 2.
    Fixed::fixedformat(rightAligned(16, -8, 1, 0x0180), 4, 0, 1, -1, 0);
    expectReports({{fixedformatSignature, "C error: Illegal value for 'fixedformat' (Rund)."}});
}

TEST_F(FixedFormatReports, EachFailedCheckReportsOnce)
{
    const Fixed::fixed source = rightAligned(16, 0, 1, 0x012C);
    struct Case {
        int intbits, fracbits, sign, round, wrap;
        std::vector<ExpectedReport> reports;
    };
    const std::string width = "C error: Too many bits used (fixedformat).";
    const Case cases[] = {
        {8, 0, 1, 0, 0, {}},
        {100, 60, 1, 0, 0, {}},
        {100, 61, 1, 0, 0, {{fixedformatSignature, width}}},
        {0, 0, 1, 0, 0, {}},
        {-5, 2, 1, 0, 0, {}},
        {8, 0, 3, 0, 0, {{fixedformatSignature, "C error: Illegal value for 'fixedformat' (Vorz)."}}},
        {8, 0, 0, 2, 0, {{fixedformatSignature, "C error: Illegal value for 'fixedformat' (Rund)."}}},
        {8, 0, 0, 0, -2, {{fixedformatSignature, "C error: Illegal value for 'fixedformat' (Wrap)."}}},
        {200, 0, -1, 0, 5,
         {{fixedformatSignature, "C error: Illegal value for 'fixedformat' (Vorz)."},
          {fixedformatSignature, "C error: Illegal value for 'fixedformat' (Wrap)."},
          {fixedformatSignature, width}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.intbits) + "." + std::to_string(c.fracbits));
        const Fixed::fixed result = Fixed::fixedformat(source, c.intbits, c.fracbits, c.sign, c.round, c.wrap);
        expectReports(c.reports);
        EXPECT_EQ(result.bits, c.intbits + c.fracbits);
        // No width outside 1..160 gets a mantissa: all five words read zero.
        if (result.bits < 1 || result.bits > 160) {
            EXPECT_EQ(model::hexWords(result.val, 5), model::hexWords(Fixed::fixed{}.val, 5));
        }
    }
}

TEST_F(FixedFormatReports, BrokenSourceWidthsAreNotRead)
{
    for (int bits : {0, -7, 161, 1000, -2147483647 - 1}) {
        SCOPED_TRACE(bits);
        const Fixed::fixed broken{bits, 0, 1, {-1, -1, -1, -1, -1}};
        const Fixed::fixed result = Fixed::fixedformat(broken, 40, 8, 1, 1, 0);
        EXPECT_EQ(model::hexWords(result.val, 5), model::hexWords(Fixed::fixed{}.val, 5));
    }
    expectNoReports();
}

}  // namespace
