// fixedformat against the exact model of re-quantisation: read the source
// under the target signedness, shift by the exponent difference, floor or
// round half up, saturate or reduce modulo 2^bits, lay out left-aligned.
// fixformat runs the same conversion; what is its own is turning exponents
// into a shift: ordinary exponents are in the exhaustive test, the extreme
// ones here.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

using model::sentinel;

// Shifts with weight on word boundaries and on several words, both ways.
int weightedShift(std::mt19937_64& random)
{
    static const int shifts[] = {0, 1, 2, 31, 32, 33, 63, 64, 65, 95, 96, 97, 127, 128, 159, 160, 161};
    if (random() % 4 == 0)
        return static_cast<int>(random() % 4001) - 2000;
    const int shift = shifts[random() % (sizeof shifts / sizeof shifts[0])];
    return random() % 2 == 0 ? shift : -shift;
}

// A source pattern that often sits on the edges the conversion decides on:
// top bits that all repeat the sign (just fitting or not), runs of ones
// below the kept bits (rounding carries that ripple or overflow), extremes.
mpz_class weightedPattern(std::mt19937_64& random, int bits)
{
    mpz_class pattern = model::randomMantissa(random, bits, false);
    const auto setRun = [&](int top, int length, bool ones) {
        for (int i = 0; i < length && top - i >= 0; ++i)
            (ones ? mpz_setbit : mpz_clrbit)(pattern.get_mpz_t(), static_cast<unsigned long>(top - i));
    };
    const int kind = static_cast<int>(random() % 6);
    if (kind == 1 || kind == 3)
        setRun(bits - 1, static_cast<int>(random() % (bits + 1)), random() % 2 == 0);
    if (kind == 2 || kind == 3)
        setRun(static_cast<int>(random() % bits), static_cast<int>(random() % (bits + 1)), random() % 4 != 0);
    if (kind == 5)
        setRun(bits - 2, static_cast<int>(random() % bits), true);
    if (kind == 4) {
        const mpz_class extremes[] = {0, (mpz_class(1) << bits) - 1, mpz_class(1) << (bits - 1),
                                      (mpz_class(1) << (bits - 1)) - 1};
        return extremes[random() % 4];
    }
    return pattern;
}

// fixedformat and its flagged form against the model: the whole record (the
// words above those in use stay zero, so junk above the source's words was
// not read either) and the flag.
::testing::AssertionResult convertsAsTheModel(const Fixed::fixed& x, int intbits, int fracbits, int sign, int round,
                                              int wrap, int& saturations)
{
    const int bits = intbits + fracbits;
    const auto expected = model::requantise(model::readMantissa(x.val, x.bits, sign != 0),
                                            static_cast<long>(x.exp) + fracbits, bits, sign != 0, round != 0, wrap != 0);
    saturations += expected.second ? 1 : 0;
    Fixed::fixed want{bits, -fracbits, sign, {0, 0, 0, 0, 0}};
    model::writeMantissa(expected.first, bits, want.val);
    const Fixed::fixed result = Fixed::fixedformat(x, intbits, fracbits, sign, round, wrap);
    const Fixed::Quantised flagged = Fixed::fixedformatWithFlag(x, intbits, fracbits, sign, round, wrap);
    if (std::memcmp(&result, &want, sizeof want) == 0 && std::memcmp(&flagged.value, &want, sizeof want) == 0 &&
        flagged.saturated == (expected.second ? 1 : 0))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "source " << x.bits << " bits exp " << x.exp << " words " << model::hexWords(x.val, 5) << "-> "
           << intbits << "." << fracbits << " s" << sign << " r" << round << " w" << wrap << "\n  model       "
           << model::hexWords(want.val, 5) << "saturated " << expected.second << "\n  fixedformat "
           << model::hexWords(result.val, 5) << "\n  with flag   " << model::hexWords(flagged.value.val, 5) << "flag "
           << flagged.saturated;
}

constexpr int conversionCount = 120000;

TEST(FormatModel, FixedformatAndItsFlagMatchTheExactModel)
{
    clearRecordedReports();
    std::mt19937_64 random(20261123);
    int saturations = 0;
    for (int trial = 0; trial < conversionCount; ++trial) {
        // The integer bits gained or the exponent difference is drawn from
        // the weighted shifts (or the integer bits stay nearly the same); the
        // other follows from the two widths.
        const int sourceBits = model::boundaryWeightedWidth(random), bits = model::boundaryWeightedWidth(random);
        const int mode = static_cast<int>(random() % 5);
        const int gained = mode < 2 ? weightedShift(random) : static_cast<int>(random() % 3) - 1;
        const int shift = mode < 2 || mode == 4 ? bits - sourceBits - gained : weightedShift(random);
        const int sourceExp = random() % 3 == 0 ? static_cast<int>(random() % 601) - 300
                                                : static_cast<int>(random() % 81) - 40;
        const int fracbits = shift - sourceExp, intbits = bits - fracbits;
        const int sign = static_cast<int>(random() % 2), round = static_cast<int>(random() % 2);
        const int wrap = static_cast<int>(random() % 2);
        // Junk in the pad bits and in the words above those in use must not
        // change the result.
        Fixed::fixed x{sourceBits, sourceExp, static_cast<int>(random() % 2), {0, 0, 0, 0, 0}};
        for (int32_t& w : x.val)
            w = static_cast<int32_t>(random());
        model::writeMantissa(weightedPattern(random, sourceBits), sourceBits, x.val);
        if (random() % 4 == 0)
            x.val[0] |= static_cast<int32_t>(~Fixed::highmask[sourceBits % 32] & random());
        ASSERT_TRUE(convertsAsTheModel(x, intbits, fracbits, sign, round, wrap, saturations));
    }
    EXPECT_GT(saturations, conversionCount / 20) << "too few saturating cases drawn";
    EXPECT_TRUE(recordedReports().empty());
}

// Widths and shifts on either side of the 64-bit limbs wide formats are
// worked on (the limb holding the last place, the rounding bit at the top of
// the next limb, whole-limb moves and the far moves beyond the window), each
// with the patterns whose rounding carries run through every limb or whose
// range check sits on its edge.
TEST(FormatModel, LimbBoundariesMatchTheExactModel)
{
    const int widths[] = {63, 64, 65, 127, 128, 129, 159, 160};
    const int gains[] = {-193, -129, -128, -65, -64, -63, -1, 0, 1, 63, 64, 65, 127, 128, 191, 192, 193};
    clearRecordedReports();
    int saturations = 0;
    for (int sourceBits : widths) {
        const mpz_class one = 1;
        const mpz_class patterns[] = {
            0,
            (one << sourceBits) - 1,                     // all ones: -1 signed
            one << (sourceBits - 1),                     // signed minimum
            (one << (sourceBits - 1)) - 1,               // signed maximum: carries through all
            (one << (sourceBits - 1)) - (one << (sourceBits / 2)),  // maximum's top half
            (one << sourceBits) - (one << (sourceBits - 1)) + 1,    // just above the minimum
            (one << sourceBits) >> 64,  // one bit 64 places below the top: fits when 63 integer bits go
        };
        for (int bits : widths)
        for (int gained : gains)
        for (const mpz_class& pattern : patterns)
        for (int flags = 0; flags < 8; ++flags) {
            const int sourceExp = -sourceBits / 2, intbits = sourceBits + sourceExp + gained;
            Fixed::fixed x{sourceBits, sourceExp, flags & 1, {0, 0, 0, 0, 0}};
            model::writeMantissa(pattern, sourceBits, x.val);
            ASSERT_TRUE(convertsAsTheModel(x, intbits, bits - intbits, flags & 1, (flags >> 1) & 1, flags >> 2,
                                           saturations));
        }
    }
    EXPECT_TRUE(recordedReports().empty());
}

TEST(FixFormat, ExponentsBecomeTheShift)
{
    constexpr int most = 2147483647, least = -2147483647 - 1;
    struct Case { uint32_t source; int srcexp, dstexp, round; uint32_t expected, flag; };
    const Case cases[] = {
        {0x01000000, most, least, 0, 0x7F000000, 1},  // far too large
        {0xFF000000, most, least, 0, 0x80000000, 1},  // far too small
        {0x01000000, least, most, 1, 0x00000000, 0},  // far below the last place
        {0xFF000000, least, most, 0, 0xFF000000, 0},  // floor of a tiny negative: -1
        {0xFF000000, least, most, 1, 0x00000000, 0},  // rounded: 0
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.srcexp) + " -> " + std::to_string(c.dstexp));
        const int32_t source = static_cast<int32_t>(c.source);
        int32_t frame[3] = {sentinel, 0, sentinel};
        EXPECT_EQ(Fixed::fixformat(&source, frame + 1, 8, 8, c.srcexp, c.dstexp, 1, c.round, 0), c.flag);
        EXPECT_EQ(static_cast<uint32_t>(frame[1]), c.expected);
        EXPECT_TRUE(frame[0] == sentinel && frame[2] == sentinel);
    }
}

}  // namespace
