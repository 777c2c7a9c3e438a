// fixpt's exact arithmetic and pattern layout held against GMP: patterns and
// record words against the model's layout, exact decimals and differences
// parsed back into rationals, the nearest double bracketed by its
// neighbours, and --fit's proposals against the model's rounding.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "exact_model.h"
#include "fixpt_exact.h"
#include "fixpt_fit.h"
#include "fixpt_pattern.h"

namespace {

constexpr int draws = 3000;

// A record of the format holding m (in the format's range), built by the model.
Fixed::fixed modelRecord(const mpz_class& m, int bits, int exp, bool isSigned)
{
    Fixed::fixed record = {};
    record.bits = bits;
    record.exp = exp;
    record.sign = isSigned ? 1 : 0;
    model::writeMantissa(m, bits, record.val);
    return record;
}

mpq_class scaled(const mpz_class& m, int64_t exp)
{
    mpz_class power = 1;
    power <<= static_cast<unsigned long>(std::llabs(exp));
    mpq_class value = exp >= 0 ? mpq_class(m * power) : mpq_class(m, power);
    value.canonicalize();
    return value;
}

// The rational a decimal text ("-12.5") stands for.
mpq_class rationalOf(const std::string& text)
{
    const size_t point = text.find('.');
    if (point == std::string::npos)
        return mpq_class(mpz_class(text, 10));
    mpz_class denominator = 1;
    for (size_t i = point + 1; i < text.size(); ++i)
        denominator *= 10;
    mpq_class value(mpz_class(text.substr(0, point) + text.substr(point + 1), 10), denominator);
    value.canonicalize();
    return value;
}

// No trailing fractional zeros, no lone point, no "-0".
bool isCanonical(const std::string& text)
{
    return text != "-0" && text.back() != '.' && (text.find('.') == std::string::npos || text.back() != '0');
}

TEST(FixptPattern, RecordWordsAndPatternsFollowTheModelLayout)
{
    std::mt19937_64 random(20261123);
    for (int i = 0; i < draws; ++i) {
        const int bits = model::boundaryWeightedWidth(random);
        const bool isSigned = random() % 2 == 0;
        const mpz_class m = model::edgeWeightedMantissa(random, bits, isSigned);
        const Fixed::fixed record = modelRecord(m, bits, 0, isSigned);
        const mpz_class unsignedPattern = model::wrapInto(m, bits, false);

        const std::string hex = patternHex(patternOf(record), bits);
        std::string expected = unsignedPattern.get_str(16);
        for (char& c : expected)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        expected.insert(0, static_cast<size_t>((bits + 3) / 4) - expected.size(), '0');
        ASSERT_EQ(hex, "0x" + expected) << "m " << m << " bits " << bits;

        Pattern read;
        bool tooWide = true;
        ASSERT_TRUE(readPattern(hex, &read, &tooWide));
        EXPECT_FALSE(tooWide || hasBitsAbove(read, bits));
        const Fixed::fixed rebuilt = recordOf(read, bits, 0, isSigned);
        for (int w = 0; w < model::wordsFor(bits); ++w)
            ASSERT_EQ(rebuilt.val[w], record.val[w]) << hex << " word " << w;
        EXPECT_EQ(decimalText(mantissaOfRecord(record)), m.get_str()) << hex;
    }
}

TEST(FixptPattern, BitsAboveTheWidthAreSeen)
{
    Pattern pattern;
    bool tooWide = false;
    ASSERT_TRUE(readPattern("0x1_0000", &pattern, &tooWide));
    EXPECT_TRUE(hasBitsAbove(pattern, 16));
    EXPECT_FALSE(hasBitsAbove(pattern, 17));
    ASSERT_TRUE(readPattern("1" + std::string(40, '0'), &pattern, &tooWide));
    EXPECT_TRUE(tooWide);  // bit 160 lies outside every record
    for (const char* malformed : {"", "0x", "0x_", "0x1g", "-1", " 1", "1 "})
        EXPECT_FALSE(readPattern(malformed, &pattern, &tooWide)) << malformed;
}

TEST(FixptExact, DecimalsAndDifferencesAreExact)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < draws; ++i) {
        const int bits = model::boundaryWeightedWidth(random);
        const bool isSigned = random() % 2 == 0;
        const int exp = static_cast<int>(random() % 601) - 400;
        const mpz_class m = model::edgeWeightedMantissa(random, bits, isSigned);
        const Dyadic value = exactOfRecord(modelRecord(m, bits, exp, isSigned));
        const std::string text = decimalText(value);
        ASSERT_TRUE(isCanonical(text)) << text;
        ASSERT_EQ(rationalOf(text), scaled(m, exp)) << m << " x 2^" << exp;

        const double origin = std::ldexp(static_cast<double>(random() % 2000001) - 1e6, static_cast<int>(random() % 41) - 20);
        const Dyadic originExact = exactOfDouble(origin);
        EXPECT_EQ(rationalOf(decimalText(difference(value, originExact))), scaled(m, exp) - mpq_class(origin));
        EXPECT_EQ(rationalOf(decimalText(difference(originExact, value))), mpq_class(origin) - scaled(m, exp));
    }
}

TEST(FixptExact, NearestDoubleIsCloserThanBothNeighbours)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < draws; ++i) {
        const int bits = model::boundaryWeightedWidth(random);
        const int exp = static_cast<int>(random() % 2201) - 1200;
        const mpz_class m = model::randomMantissa(random, bits, true);
        if (m == 0)
            continue;
        const mpq_class exact = scaled(m, exp);
        const double nearest = nearestDouble(exactOfRecord(modelRecord(m, bits, exp, true)));
        if (std::isinf(nearest) || nearest == 0.0)
            continue;  // beyond the double range either way
        const mpq_class distance = abs(mpq_class(nearest) - exact);
        for (double neighbour : {std::nextafter(nearest, HUGE_VAL), std::nextafter(nearest, -HUGE_VAL)}) {
            if (std::isfinite(neighbour)) {
                ASSERT_LE(distance, abs(mpq_class(neighbour) - exact)) << m << " x 2^" << exp;
            }
        }
    }
}

// Whether the model's rounding of value lies in the format's range.
bool modelHolds(double value, const Format& format)
{
    mpq_class units = mpq_class(value) * scaled(1, format.fracBits);
    if (format.round == CFixedPoint::ROUND_NEAREST)
        units += mpq_class(1, 2);
    mpz_class rounded;
    mpz_fdiv_q(rounded.get_mpz_t(), units.get_num_mpz_t(), units.get_den_mpz_t());
    const bool isSigned = format.sign == CFixedPoint::SIGN_SIGNED;
    return rounded >= model::minimum(format.bits(), isSigned) && rounded <= model::maximum(format.bits(), isSigned);
}

TEST(FixptFit, ProposalHoldsTheRangeAndOneIntegerBitLessDoesNot)
{
    std::mt19937_64 random(13);
    for (int i = 0; i < 400; ++i) {
        const double a = std::ldexp(static_cast<double>(random() % 200001) - 1e5, static_cast<int>(random() % 81) - 60);
        const double b = std::ldexp(static_cast<double>(random() % 200001) - 1e5, static_cast<int>(random() % 81) - 60);
        if (a == 0.0 && b == 0.0)
            continue;
        FitRequest request;
        request.bits = 1 + static_cast<int>(random() % 160);
        const auto round = static_cast<CFixedPoint::ROUND>(random() % 2);
        const FitResult fit = fitFormat(request, std::min(a, b), std::max(a, b), round);
        ASSERT_TRUE(fit.refusal.isEmpty()) << a << " " << b;
        const Format& format = fit.format;
        ASSERT_EQ(format.bits(), request.bits);
        EXPECT_EQ(format.sign == CFixedPoint::SIGN_SIGNED, std::min(a, b) < 0.0);
        EXPECT_TRUE(modelHolds(a, format) && modelHolds(b, format)) << compactName(format) << " " << a << " " << b;
        Format narrower = format;
        --narrower.intBits;
        ++narrower.fracBits;
        EXPECT_FALSE(modelHolds(a, narrower) && modelHolds(b, narrower))
            << compactName(narrower) << " holds " << a << " " << b;
    }
}

}  // namespace
