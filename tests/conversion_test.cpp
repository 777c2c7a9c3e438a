// Doubles into words and records and back, against the exact model; plus the
// inputs the model has no answer for (non-finite values, the >64-bit sum).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

using model::sentinel;

// A double of random magnitude around the format's range, with a fraction
// (and an exact half every so often, to exercise ties).
double randomValue(std::mt19937_64& random, int bits)
{
    const int magnitude = static_cast<int>(random() % static_cast<unsigned>(bits + 6)) - 3;
    double value = std::ldexp(static_cast<double>(random() >> 11), magnitude - 53);
    if (random() % 4 == 0)
        value = std::floor(value) + 0.5;
    return random() % 2 == 0 ? -value : value;
}

TEST(Float2FixModel, MatchesTheExactModelWithoutWritingPastTheWidth)
{
    std::mt19937_64 random(2024);
    int stepped = 0;
    for (int trial = 0; trial < 60000; ++trial) {
        const int bits = model::boundaryWeightedWidth(random), sign = static_cast<int>(random() % 2);
        const int round = static_cast<int>(random() % 2), wrap = static_cast<int>(random() % 2);
        const double value = randomValue(random, bits);
        SCOPED_TRACE(testing::Message() << std::hexfloat << value << std::defaultfloat << " into " << bits
                                        << " bits, sign " << sign << " round " << round << " wrap " << wrap);
        const mpz_class rounded = model::roundDouble(value, round != 0);
        const bool inRange = rounded >= model::minimum(bits, sign != 0) && rounded <= model::maximum(bits, sign != 0);
        const mpz_class expected = wrap != 0 ? model::wrapInto(rounded, bits, true)
                                             : model::saturateInto(rounded, bits, sign != 0);
        int32_t want[6], words[6];
        std::fill(std::begin(want), std::end(want), sentinel);
        std::fill(std::begin(words), std::end(words), sentinel);
        model::writeMantissa(expected, bits, want);
        EXPECT_EQ(Fixed::float2fix(value, bits, words, sign, round, wrap), wrap == 0 && !inRange ? 1 : 0);
        // Where a double step of the wide wrap-around rounds, the words follow
        // the steps, not the residue: pinned in WideWrapAroundFollowsTheDoubleSteps.
        if (wrap != 0 && bits > 53 && model::wrapStepRounds(rounded, bits)) {
            ++stepped;
            ASSERT_EQ(model::hexWords(words + model::wordsFor(bits), 6 - model::wordsFor(bits)),
                      model::hexWords(want + model::wordsFor(bits), 6 - model::wordsFor(bits)));
            continue;
        }
        ASSERT_EQ(model::hexWords(words, 6), model::hexWords(want, 6));
    }
    EXPECT_LT(stepped, 600);  // the rounding region stays a rarity
}

// Wide wrap-around runs in doubles: q = floor(0.5 + x 2^-bits), then
// x - q 2^bits. Just below 2^(bits-1) the first sum is a tie that rounds to
// 1.0, and the difference x - 2^bits a tie that rounds to -2^(bits-1): the
// words hold the format's minimum, not x. Worked out in exact rationals with
// round-to-nearest-even to 53 bits; for 2^63 - 2^10 into 64 bits the sum is
// 1 - 2^-54 (ties to 1.0) and the difference -2^63 - 2^10 (ties to -2^63).
// The last row lies in the rounding region but keeps its residue.
TEST(Float2FixWrap, WideWrapAroundFollowsTheDoubleSteps)
{
    struct Case { double value; int bits; const char* words; };
    const Case cases[] = {
        {0x1.fffffffffffffp+53, 55, "80000000 00000000 "},
        {0x1.fffffffffffffp+62, 64, "80000000 00000000 "},
        {0x1.fffffffffffffp+63, 65, "80000000 00000000 00000000 "},
        {0x1.fffffffffffffp+98, 100, "80000000 00000000 00000000 00000000 "},
        {0x1.fffffffffffffp+158, 160, "80000000 00000000 00000000 00000000 00000000 "},
        {0x1.0000000000001p+62, 64, "40000000 00000400 "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hexfloat << c.value << " into " << c.bits << " bits");
        for (int round = 0; round <= 1; ++round) {
            int32_t words[5];
            std::fill(std::begin(words), std::end(words), sentinel);
            EXPECT_EQ(Fixed::float2fix(c.value, c.bits, words, 1, round, 1), 0);
            EXPECT_EQ(model::hexWords(words, model::wordsFor(c.bits)), c.words);
        }
    }
}

class Float2Fix : public ReportingTest {};

TEST_F(Float2Fix, NonFiniteValuesAndEmptyWidths)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const char* const split = "Internal error fixpoint calculation No. 1.2. Report error to author (with parameters).";
    struct Case { double value; int bits, sign, round, wrap; uint32_t top; int saturated; bool reported; };
    const Case cases[] = {
        {nan, 8, 1, 0, 0, 0, 0, true},        {nan, 160, 1, 1, 0, 0, 0, true},
        {inf, 8, 1, 1, 0, 0, 0, true},        {-inf, 64, 1, 1, 1, 0, 0, true},  // rounding/wrapping make NaN
        {inf, 8, 1, 0, 1, 0, 0, true},        {inf, 8, 1, 0, 0, 0x7F000000, 1, false},
        {-inf, 8, 1, 0, 0, 0x80000000, 1, false}, {-inf, 8, 0, 0, 0, 0, 1, false},
        {1234.5, 0, 1, 1, 0, 0, 0, false},    {1234.5, std::numeric_limits<int>::min(), 1, 1, 0, 0, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " into " << c.bits << " r" << c.round << " w" << c.wrap);
        int32_t words[6];
        std::fill(std::begin(words), std::end(words), sentinel);
        EXPECT_EQ(Fixed::float2fix(c.value, c.bits, words, c.sign, c.round, c.wrap), c.saturated);
        const int nw = c.bits < 1 ? 0 : model::wordsFor(c.bits);
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(static_cast<uint32_t>(words[i]), i >= nw ? 0x5A5A5A5Au : i == nw - 1 ? c.top : 0u) << i;
        expectReports(c.reported ? std::vector<ExpectedReport>{{"int Fixed::float2fix(double, int, long int*, int, int, int)", split}}
                                 : std::vector<ExpectedReport>{});
    }
}

TEST(Fix2FloatModel, ExactUpTo53BitsAndWithinHalfAnUlpAbove)
{
    std::mt19937_64 random(53);
    for (int trial = 0; trial < 20000; ++trial) {
        const int bits = static_cast<int>(random() % 64) + 1;
        const bool isSigned = random() % 2 == 0;
        const mpz_class m = model::randomMantissa(random, bits, isSigned);
        Fixed::fixed f{bits, -3, isSigned ? 1 : 0, {0, 0, 0, 0, 0}};
        for (int32_t& w : f.val)  // words above those in use never take part
            w = static_cast<int32_t>(random());
        model::writeMantissa(m, bits, f.val);
        SCOPED_TRACE(m.get_str(16) + " in " + std::to_string(bits) + " bits");
        const double got = Fixed::fix2float(f.val, bits, f.sign);
        const mpz_class halfUlp = mpz_class(1) << (bits <= 54 ? 0 : bits - 54);
        EXPECT_LE(abs(mpz_class(got) - m), bits <= 53 ? mpz_class(0) : halfUlp);
        EXPECT_EQ(Fixed::fixed2double(f), std::ldexp(got, -3));
    }
}

TEST(Fix2Float, WiderThan64BitsSumsFromTheLowWordsUp)
{
    // -1 in 96 bits comes out as 0.0: the low words cancel first, as the
    // firmware's data has it. A width of 0 reads nothing.
    const int32_t ones[5] = {-1, -1, -1, -1, -1};
    EXPECT_EQ(Fixed::fix2float(ones, 96, 1), 0.0);
    EXPECT_EQ(Fixed::fix2float(ones, 0, 1), 0.0);
    const int32_t top[5] = {0, 0, 0, 0, 1};
    EXPECT_EQ(Fixed::fix2float(top, 160, 0), std::ldexp(1.0, 128));
    // Positive mantissas of 53 significant bits spread over three words or
    // more sum exactly, whatever the partial lowest word. (Negative ones
    // carry ones up to the top word, so their partial sums round.)
    for (int bits : {65, 100, 127, 160})
        for (int shift : {0, 7, bits - 54}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, shift " + std::to_string(shift));
            const mpz_class m = ((mpz_class(1) << 52) + (mpz_class(1) << 20) + 1) << shift;
            int32_t words[5] = {0, 0, 0, 0, 0};
            model::writeMantissa(m, bits, words);
            EXPECT_EQ(Fixed::fix2float(words, bits, 0), m.get_d());
            EXPECT_EQ(Fixed::fix2float(words, bits, 1), m.get_d());
        }
    EXPECT_EQ(Fixed::fixedshift(Fixed::fixed{8, 2147483647, 0, {}}, 1).exp, -2147483647 - 1);
}

}  // namespace
