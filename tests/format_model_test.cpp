// fixedformat and fixformat against the exact model of re-quantisation:
// read the source under the target signedness, shift by the exponent
// difference, floor or round half up, saturate or reduce modulo 2^bits, lay
// out left-aligned.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

constexpr int32_t sentinel = 0x5A5A5A5A;

struct Expected {
    mpz_class mantissa;
    bool saturated;  // a saturation pattern is written (only under saturation)
};

// k = source exponent - result exponent.
Expected requantise(const mpz_class& m, long k, int bits, bool isSigned, bool nearest, bool wrap)
{
    mpz_class floored;
    mpz_class rounded;
    if (k >= 0) {
        floored = rounded = m << static_cast<unsigned long>(k);
    } else {
        const unsigned long dropped = static_cast<unsigned long>(-k);
        floored = m >> dropped;  // floor division, sign-extending
        rounded = floored;
        if (nearest && mpz_tstbit(m.get_mpz_t(), dropped - 1))
            ++rounded;
    }
    if (wrap)
        return {model::wrapInto(rounded, bits, isSigned), false};
    // A value below the minimum that rounding lifts exactly onto it still
    // counts as saturated: the range check decides before rounding.
    const mpz_class saturated = model::saturateInto(rounded, bits, isSigned);
    const bool outside = saturated != rounded || floored < model::minimum(bits, isSigned);
    return {saturated, outside};
}

struct Conversion {
    int sourceBits, sourceExp, intbits, fracbits;
    int sign, round, wrap;
    mpz_class pattern;  // source bits, right-aligned
};

// Shifts with weight on word boundaries and on several words, both ways.
int weightedShift(std::mt19937_64& random)
{
    static const int shifts[] = {0, 1, 2, 31, 32, 33, 63, 64, 65, 95, 96, 97, 127, 128, 159, 160, 161};
    switch (random() % 8) {
    case 0:
        return static_cast<int>(random() % 401) - 200;
    case 1:
        return static_cast<int>(random() % 4001) - 2000;
    default: {
        const int shift = shifts[random() % (sizeof shifts / sizeof shifts[0])];
        return random() % 2 == 0 ? shift : -shift;
    }
    }
}

// A source pattern that often sits on the edges the conversion decides on:
// top bits that all repeat the sign (just fitting or not), runs of ones
// below the kept bits (rounding carries that ripple or overflow), extremes.
mpz_class weightedPattern(std::mt19937_64& random, int bits)
{
    mpz_class pattern = model::randomMantissa(random, bits, false);
    const auto setRun = [&](int top, int length, bool ones) {
        for (int i = 0; i < length && top - i >= 0; ++i) {
            if (ones)
                mpz_setbit(pattern.get_mpz_t(), static_cast<unsigned long>(top - i));
            else
                mpz_clrbit(pattern.get_mpz_t(), static_cast<unsigned long>(top - i));
        }
    };
    switch (random() % 6) {
    case 0:
        return pattern;
    case 1:
        setRun(bits - 1, static_cast<int>(random() % (bits + 1)), random() % 2 == 0);
        return pattern;
    case 2:
        setRun(static_cast<int>(random() % bits), static_cast<int>(random() % (bits + 1)), true);
        return pattern;
    case 3:
        setRun(bits - 1, static_cast<int>(random() % (bits + 1)), random() % 2 == 0);
        setRun(static_cast<int>(random() % bits), static_cast<int>(random() % (bits + 1)),
               random() % 4 != 0);
        return pattern;
    case 4: {
        static const int extremes[] = {0, 1, 2, 3};
        switch (extremes[random() % 4]) {
        case 0:
            return 0;
        case 1:
            return (mpz_class(1) << bits) - 1;
        case 2:
            return mpz_class(1) << (bits - 1);
        default:
            return (mpz_class(1) << (bits - 1)) - 1;
        }
    }
    default:
        setRun(bits - 2, static_cast<int>(random() % bits), true);
        return pattern;
    }
}

Conversion randomConversion(std::mt19937_64& random)
{
    Conversion c;
    c.sourceBits = model::boundaryWeightedWidth(random);
    const int resultBits = model::boundaryWeightedWidth(random);
    // The integer bits gained or the exponent difference is drawn from the
    // weighted shifts (or the integer bits stay nearly the same); the other
    // follows from the two widths.
    const int mode = static_cast<int>(random() % 5);
    const int gained = mode < 2 ? weightedShift(random) : static_cast<int>(random() % 3) - 1;
    const int shift = mode < 2 || mode == 4 ? resultBits - c.sourceBits - gained : weightedShift(random);
    c.sourceExp = random() % 3 == 0 ? static_cast<int>(random() % 601) - 300
                                    : static_cast<int>(random() % 81) - 40;
    c.fracbits = shift - c.sourceExp;
    c.intbits = resultBits - c.fracbits;
    c.sign = static_cast<int>(random() % 2);
    c.round = static_cast<int>(random() % 2);
    c.wrap = static_cast<int>(random() % 2);
    c.pattern = weightedPattern(random, c.sourceBits);
    return c;
}

std::string describe(const Conversion& c)
{
    return "source " + std::to_string(c.sourceBits) + " bits exp " + std::to_string(c.sourceExp) +
           " pattern 0x" + c.pattern.get_str(16) + " -> " + std::to_string(c.intbits) + "." +
           std::to_string(c.fracbits) + " sign " + std::to_string(c.sign) + " round " +
           std::to_string(c.round) + " wrap " + std::to_string(c.wrap);
}

// The source record, with junk in its pad bits and in the words above the
// ones in use: neither may change the result.
Fixed::fixed sourceRecord(const Conversion& c, std::mt19937_64& random)
{
    Fixed::fixed x{c.sourceBits, c.sourceExp, static_cast<int>(random() % 2), {0, 0, 0, 0, 0}};
    const int nw = model::wordsFor(c.sourceBits);
    for (int i = nw; i < 5; ++i)
        x.val[i] = static_cast<int32_t>(random());
    model::writeMantissa(c.pattern, c.sourceBits, x.val);
    if (random() % 4 == 0)
        x.val[0] |= static_cast<int32_t>(~Fixed::highmask[c.sourceBits % 32] & random());
    return x;
}

constexpr int conversionCount = 120000;

TEST(FormatModel, FixedformatAndFixformatMatchTheExactModel)
{
    clearRecordedReports();
    std::mt19937_64 random(20261123);
    int saturations = 0;
    for (int trial = 0; trial < conversionCount; ++trial) {
        const Conversion c = randomConversion(random);
        const int bits = c.intbits + c.fracbits;
        const int nwt = model::wordsFor(bits);
        const int nws = model::wordsFor(c.sourceBits);
        const Fixed::fixed x = sourceRecord(c, random);
        const mpz_class m = model::readMantissa(x.val, c.sourceBits, c.sign != 0);
        const Expected expected = requantise(m, static_cast<long>(c.sourceExp) + c.fracbits, bits,
                                             c.sign != 0, c.round != 0, c.wrap != 0);
        saturations += expected.saturated ? 1 : 0;
        Fixed::fixed want{};
        model::writeMantissa(expected.mantissa, bits, want.val);

        const Fixed::fixed result = Fixed::fixedformat(x, c.intbits, c.fracbits, c.sign, c.round, c.wrap);
        // Exactly sized source array (a read past it is an address-sanitizer
        // error) and a destination framed by sentinels.
        std::unique_ptr<int32_t[]> source(new int32_t[nws]);
        std::copy(x.val, x.val + nws, source.get());
        std::vector<int32_t> frame(nwt + 2, 0);
        frame.front() = frame.back() = sentinel;
        const uint32_t flag = Fixed::fixformat(source.get(), frame.data() + 1, c.sourceBits, bits,
                                               c.sourceExp, -c.fracbits, c.sign, c.round, c.wrap);

        // All five result words are compared: those above the ones in use
        // stay zero. fixformat must give fixedformat's words exactly.
        const std::string wanted = model::hexWords(want.val, 5);
        if (model::hexWords(result.val, 5) != wanted || flag != (expected.saturated ? 1u : 0u) ||
            model::hexWords(frame.data() + 1, nwt) != model::hexWords(result.val, nwt) ||
            frame.front() != sentinel || frame.back() != sentinel || result.bits != bits ||
            result.exp != -c.fracbits || result.sign != c.sign) {
            ADD_FAILURE() << describe(c) << "\n  model       " << wanted << " saturated "
                          << expected.saturated << "\n  fixedformat " << model::hexWords(result.val, 5)
                          << "\n  fixformat   " << model::hexWords(frame.data(), nwt + 2) << " flag "
                          << flag;
            return;
        }
    }
    EXPECT_GT(saturations, conversionCount / 20) << "too few saturating cases drawn";
    EXPECT_TRUE(recordedReports().empty());
}

}  // namespace
