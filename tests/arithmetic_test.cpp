// Subtraction, multiplication and comparison of records, and the word
// primitives: worked examples and randomized differential runs against GMP.
#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

const char* const fixedsubSignature = "Fixed::fixed Fixed::fixedsub(Fixed::fixed, Fixed::fixed)";
const char* const fixedmultSignature = "Fixed::fixed Fixed::fixedmult(Fixed::fixed, Fixed::fixed)";
const char* const fixedgtSignature = "int Fixed::fixedgt(Fixed::fixed, Fixed::fixed)";
const char* const fixedeqSignature = "int Fixed::fixedeq(Fixed::fixed, Fixed::fixed)";

Fixed::fixed record(int bits, int exp, int sign, std::initializer_list<uint32_t> lowFirst)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    int i = 0;
    for (uint32_t word : lowFirst)
        f.val[i++] = static_cast<int32_t>(word);
    return f;
}

std::string describe(const Fixed::fixed& f)
{
    return "bits " + std::to_string(f.bits) + " exp " + std::to_string(f.exp) + " sign " +
           std::to_string(f.sign) + " words " + model::hexWords(f.val, 5);
}

void expectWords(const Fixed::fixed& actual, const Fixed::fixed& expected, int count)
{
    EXPECT_EQ(model::hexWords(actual.val, count), model::hexWords(expected.val, count));
}

// A mantissa that is often one of the values where carries, borrows and
// overflowing differences happen: the extremes, zero and minus one.
mpz_class edgeWeightedMantissa(std::mt19937_64& random, int bits, bool isSigned)
{
    switch (random() % 8) {
    case 0: return model::minimum(bits, isSigned);
    case 1: return model::maximum(bits, isSigned);
    case 2: return isSigned ? mpz_class(-1) : mpz_class(0);
    case 3: return model::maximum(bits, isSigned) - 1;
    default: return model::randomMantissa(random, bits, isSigned);
    }
}

Fixed::fixed modelRecord(const mpz_class& m, int bits, int exp, int sign)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    model::writeMantissa(m, bits, f.val);
    return f;
}

// ---- Subtraction -----------------------------------------------------------

class Subtraction : public ReportingTest {};

TEST_F(Subtraction, WorkedExamples)
{
    struct Case {
        Fixed::fixed a, b, difference;
    };
    const Case cases[] = {
        {record(8, 0, 0, {0}), record(8, 0, 0, {0x01000000}), record(8, 0, 0, {0xFF000000})},
        {record(12, -8, 1, {0x80000000}), record(12, -8, 1, {0x00100000}),
         record(12, -8, 1, {0x7FF00000})},
        {record(64, 0, 1, {0, 1}), record(64, 0, 1, {1, 0}), record(64, 0, 1, {0xFFFFFFFF, 0})},
        {record(96, 0, 0, {0, 0, 1}), record(96, 0, 0, {1, 0, 0}),
         record(96, 0, 0, {0xFFFFFFFF, 0xFFFFFFFF, 0})},
        {record(160, 0, 1, {0, 0, 0, 0, 0}), record(160, 0, 1, {1, 0, 0, 0, 0}),
         record(160, 0, 1, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(describe(c.a) + " - " + describe(c.b));
        const Fixed::fixed result = Fixed::fixedsub(c.a, c.b);
        EXPECT_EQ(result.bits, c.difference.bits);
        EXPECT_EQ(result.sign, c.difference.sign);
        expectWords(result, c.difference, model::wordsFor(c.a.bits));
    }
    expectNoReports();
}

TEST_F(Subtraction, MismatchIsReportedAndRawWordsSubtracted)
{
    const Fixed::fixed result =
        Fixed::fixedsub(record(16, -8, 1, {0x00050000}), record(16, -4, 1, {0x00070000}));
    expectReports({{fixedsubSignature,
                    "C error: fixedpoint numbers with different format can't be subtracted (fixedsub)."}});
    EXPECT_EQ(result.exp, -8);
    EXPECT_EQ(static_cast<uint32_t>(result.val[0]), 0xFFFE0000u);
}

TEST_F(Subtraction, WidthsOutsideTheRecordStayInside)
{
    for (int bits : {0, -5, 161, 1000, INT_MIN}) {
        SCOPED_TRACE(bits);
        Fixed::fixed a = record(bits, 0, 0, {5, 5, 5, 5, 5});
        Fixed::fixed b = record(bits, 0, 0, {1, 1, 1, 1, 1});
        const Fixed::fixed result = Fixed::fixedsub(a, b);
        EXPECT_EQ(result.val[0], 4);
    }
    expectNoReports();
}

TEST(SubtractionModel, MatchesGmpModuloTheWidth)
{
    std::mt19937_64 random(0x5AB);
    for (int n = 0; n < 20000; ++n) {
        const int bits = model::boundaryWeightedWidth(random);
        const bool isSigned = random() % 2 == 0;
        const mpz_class a = edgeWeightedMantissa(random, bits, isSigned);
        const mpz_class b = edgeWeightedMantissa(random, bits, isSigned);
        const Fixed::fixed fa = modelRecord(a, bits, -3, isSigned);
        const Fixed::fixed result = Fixed::fixedsub(fa, modelRecord(b, bits, -3, isSigned));
        const Fixed::fixed expected = modelRecord(a - b, bits, -3, isSigned);
        SCOPED_TRACE(describe(fa) + " minus " + b.get_str(16));
        expectWords(result, expected, model::wordsFor(bits));
        if (::testing::Test::HasFailure())
            return;
    }
}

// ---- Multiplication --------------------------------------------------------

class Multiplication : public ReportingTest {};

TEST_F(Multiplication, WorkedExamples)
{
    struct Case {
        Fixed::fixed a, b, product;
    };
    const Case cases[] = {
        // 1.5 x -2
        {record(8, -4, 1, {0x18000000}), record(8, -4, 1, {0xE0000000}), record(16, -8, 1, {0xFD000000})},
        {record(32, 0, 1, {0xFFFFFFFF}), record(32, 0, 1, {0xFFFFFFFF}), record(64, 0, 1, {1, 0})},
        {record(32, 0, 0, {0xFFFFFFFF}), record(32, 0, 0, {0xFFFFFFFF}),
         record(64, 0, 0, {1, 0xFFFFFFFE})},
        // -1 signed x 255 unsigned, both orders
        {record(8, 0, 1, {0xFF000000}), record(8, 0, 0, {0xFF000000}), record(16, 0, 1, {0xFF010000})},
        {record(8, 0, 0, {0xFF000000}), record(8, 0, 1, {0xFF000000}), record(16, 0, 1, {0xFF010000})},
        {record(12, 0, 1, {0x80000000}), record(12, 0, 1, {0x80000000}), record(24, 0, 1, {0x40000000})},
        // -5 x 3 into 160 bits
        {record(100, 0, 1, {0xB0000000, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}),
         record(60, 0, 0, {0x30, 0}),
         record(160, 0, 1, {0xFFFFFFF1, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF})},
        // all-ones words: every partial product carries into the next word
        {record(96, 0, 0, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}), record(64, 0, 0, {0xFFFFFFFF, 0xFFFFFFFF}),
         record(160, 0, 0, {1, 0, 0xFFFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF})},
        // exponents add
        {record(16, -8, 0, {0x00030000}), record(16, 3, 0, {0x00020000}), record(32, -5, 0, {6})},
        {record(40, 0, 1, {0, 0}), record(70, 0, 0, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}),
         record(110, 0, 1, {0, 0, 0, 0})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(describe(c.a) + " x " + describe(c.b));
        const Fixed::fixed result = Fixed::fixedmult(c.a, c.b);
        EXPECT_EQ(result.bits, c.product.bits);
        EXPECT_EQ(result.exp, c.product.exp);
        EXPECT_EQ(result.sign, c.product.sign);
        expectWords(result, c.product, model::wordsFor(c.product.bits));
    }
    expectNoReports();
}

TEST_F(Multiplication, TooWideProductIsReportedAndReadsAsZero)
{
    const Fixed::fixed result = Fixed::fixedmult(record(80, -3, 0, {1, 2, 3}), record(81, -4, 1, {4, 5, 6}));
    expectReports({{fixedmultSignature, "C error: Too many bits used (fixedmult)."}});
    EXPECT_EQ(result.bits, 161);
    EXPECT_EQ(result.exp, -7);
    EXPECT_EQ(result.sign, 1);
    for (int32_t word : result.val)
        EXPECT_EQ(word, 0);
}

TEST_F(Multiplication, FactorsOutsideTheWidthRangeGiveZero)
{
    const int widths[][2] = {{0, 12}, {-40, 100}, {200, -60}, {161, -1}, {INT_MIN, 5}};
    for (const auto& w : widths) {
        SCOPED_TRACE(std::to_string(w[0]) + " x " + std::to_string(w[1]));
        const Fixed::fixed a = record(w[0], 0, 1, {~0u, ~0u, ~0u, ~0u, ~0u});
        const Fixed::fixed b = record(w[1], 0, 1, {~0u, ~0u, ~0u, ~0u, ~0u});
        const Fixed::fixed result = Fixed::fixedmult(a, b);
        for (int32_t word : result.val)
            EXPECT_EQ(word, 0);
        clearRecordedReports();
    }
}

TEST(WordMultiplication, WritesOnlyTheProductWordsForEitherBound)
{
    const int32_t x[3] = {-1, -1, -1};
    const int32_t y[2] = {-1, -1};
    for (int nout : {4, 5}) {
        SCOPED_TRACE(nout);
        int32_t out[7] = {0, 0, 0, 0, 0, 0x5A5A5A5A, 0x5A5A5A5A};
        Fixed::fixmult(out, x, y, 3, 2, nout, 0, 0);
        // (2^96 - 1)(2^64 - 1) = 2^160 - 2^96 - 2^64 + 1
        EXPECT_EQ(model::hexWords(out, 7),
                  "5A5A5A5A 5A5A5A5A FFFFFFFF FFFFFFFE FFFFFFFF 00000000 00000001 ");
        int32_t signedOut[7] = {0, 0, 0, 0, 0, 0x5A5A5A5A, 0x5A5A5A5A};
        Fixed::fixmult(signedOut, x, y, 3, 2, nout, 1, 1);
        EXPECT_EQ(model::hexWords(signedOut, 7),
                  "5A5A5A5A 5A5A5A5A 00000000 00000000 00000000 00000000 00000001 ");
    }
}

// Every pair of widths whose sum fits, in all four signedness combinations.
TEST(MultiplicationModel, AllWidthPairsMatchGmp)
{
    std::mt19937_64 random(0x3417);
    int cases = 0;
    for (int aBits = 1; aBits < Fixed::maxBits; ++aBits) {
        for (int bBits = 1; aBits + bBits <= Fixed::maxBits; ++bBits) {
            for (int signs = 0; signs < 4; ++signs, ++cases) {
                const int aSign = signs & 1;
                const int bSign = signs >> 1;
                const mpz_class a = edgeWeightedMantissa(random, aBits, aSign != 0);
                const mpz_class b = edgeWeightedMantissa(random, bBits, bSign != 0);
                const Fixed::fixed fa = modelRecord(a, aBits, -2, aSign);
                const Fixed::fixed fb = modelRecord(b, bBits, 5, bSign);
                const Fixed::fixed result = Fixed::fixedmult(fa, fb);
                const int bits = aBits + bBits;
                const bool wrong = result.bits != bits || result.exp != 3 ||
                                   result.sign != (aSign | bSign) ||
                                   model::readMantissa(result.val, bits, result.sign != 0) != a * b;
                if (wrong) {
                    ADD_FAILURE() << describe(fa) << " x " << describe(fb) << " gave " << describe(result);
                    return;
                }
            }
        }
    }
    EXPECT_EQ(cases, 4 * 159 * 160 / 2);
}

// ---- Comparison ------------------------------------------------------------

class Comparison : public ReportingTest {};

TEST_F(Comparison, WorkedExamples)
{
    struct Case {
        Fixed::fixed a, b;
        int greater;
    };
    const Case cases[] = {
        {record(8, 0, 1, {0x05000000}), record(8, 0, 1, {0x05000000}), 0},
        {record(8, 0, 1, {0xFF000000}), record(8, 0, 1, {0}), 0},
        {record(8, 0, 1, {0}), record(8, 0, 1, {0xFF000000}), 1},
        {record(8, 0, 0, {0x80000000}), record(8, 0, 1, {0x80000000}), 1},
        {record(8, 0, 1, {0x80000000}), record(8, 0, 0, {0x80000000}), 0},
        {record(8, 0, 0, {0xFF000000}), record(8, 0, 1, {0x7F000000}), 1},
        {record(8, 0, 1, {0x7F000000}), record(8, 0, 0, {0xFF000000}), 0},
        {record(40, 0, 0, {0, 0x01000000}), record(40, 0, 0, {0xFF000000, 0x00FFFFFF}), 1},
        {record(40, 0, 0, {0xFF000000, 0x00FFFFFF}), record(40, 0, 0, {0, 0x01000000}), 0},
        // the word difference overflows
        {record(64, 0, 1, {0, 0x80000000}), record(64, 0, 1, {0xFFFFFFFF, 0x7FFFFFFF}), 0},
        {record(64, 0, 1, {0xFFFFFFFF, 0x7FFFFFFF}), record(64, 0, 1, {0, 0x80000000}), 1},
        {record(32, 0, 0, {0xFFFFFFFF}), record(32, 0, 1, {0x80000000}), 1},
        {record(32, 0, 1, {0x80000000}), record(32, 0, 0, {0xFFFFFFFF}), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(describe(c.a) + " vs " + describe(c.b));
        EXPECT_EQ(Fixed::fixedgt(c.a, c.b), c.greater);
        EXPECT_EQ(Fixed::fixedle(c.a, c.b), 1 - c.greater);
    }
    expectNoReports();
}

TEST_F(Comparison, MismatchesAreReportedWithTheirOwnTexts)
{
    const char* const gtText =
        "C error: fixedpoint numbers with different format can't be compared (fixed/gt/lt/ge/le).";
    const Fixed::fixed a = record(16, -8, 0, {0x00030000});
    const Fixed::fixed b = record(16, -4, 0, {0x00020000});
    EXPECT_EQ(Fixed::fixedgt(a, b), 1);
    EXPECT_EQ(Fixed::fixedle(a, b), 0);
    expectReports({{fixedgtSignature, gtText}, {fixedgtSignature, gtText}});

    const Fixed::fixed u128 = record(8, 0, 0, {0x80000000});
    const Fixed::fixed s128 = record(8, 0, 1, {0x80000000});
    EXPECT_EQ(Fixed::fixedeq(u128, s128), 1);
    expectReports({{fixedeqSignature,
                    "C error: fixedpoint numbers with different format can't be compared (fixedeq)."}});
    EXPECT_EQ(Fixed::fixedeq(record(12, 0, 0, {0x80000000}), record(12, 0, 0, {0x80000001})), 0);
    EXPECT_EQ(Fixed::fixedeq(record(0, 0, 0, {1}), record(0, 0, 0, {2})), 1);
    expectNoReports();
}

TEST_F(Comparison, WidthsOutsideTheRecordStayInside)
{
    for (int bits : {0, -1, 161, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(bits);
        const Fixed::fixed a = record(bits, 0, 1, {1, 2, 3, 4, 5});
        EXPECT_EQ(Fixed::fixedgt(a, a), 0);
        EXPECT_EQ(Fixed::fixedeq(a, a), 1);
    }
    expectNoReports();
}

TEST(ComparisonModel, MixedSignednessMatchesGmp)
{
    std::mt19937_64 random(0xC0DE);
    for (int n = 0; n < 20000; ++n) {
        const int bits = model::boundaryWeightedWidth(random);
        const int aSign = static_cast<int>(random() % 2);
        const int bSign = static_cast<int>(random() % 2);
        const mpz_class a = edgeWeightedMantissa(random, bits, aSign != 0);
        const mpz_class b = random() % 8 == 0 ? model::wrapInto(a, bits, bSign != 0)
                                               : edgeWeightedMantissa(random, bits, bSign != 0);
        const Fixed::fixed fa = modelRecord(a, bits, 1, aSign);
        const Fixed::fixed fb = modelRecord(b, bits, 1, bSign);
        const int greater = a > b ? 1 : 0;
        if (Fixed::fixedgt(fa, fb) != greater || Fixed::fixedle(fa, fb) != 1 - greater ||
            (aSign == bSign && Fixed::fixedeq(fa, fb) != (a == b ? 1 : 0))) {
            ADD_FAILURE() << describe(fa) << " vs " << describe(fb);
            return;
        }
    }
}

// ---- Word primitives -------------------------------------------------------

TEST(WordPrimitives, WorkedExamples)
{
    int32_t out[2] = {0x11, 0x11};
    const int32_t ones[2] = {-1, -1};
    const int32_t one[2] = {1, 0};
    EXPECT_EQ(Fixed::fixadd(out, ones, one, 2), 1);
    EXPECT_EQ(model::hexWords(out, 2), "00000000 00000000 ");
    const int32_t top[1] = {INT32_MIN};
    EXPECT_EQ(Fixed::fixadd(out, top, top, 1), 1);
    EXPECT_EQ(out[0], 0);

    struct Negation {
        int32_t x[2];
        const char* negated;
        int zero;
    };
    const Negation negations[] = {
        {{0, 1}, "FFFFFFFF 00000000 ", 0},
        {{1, 0}, "FFFFFFFF FFFFFFFF ", 0},
        {{0, 0}, "00000000 00000000 ", 1},
    };
    for (const Negation& c : negations) {
        SCOPED_TRACE(model::hexWords(c.x, 2));
        EXPECT_EQ(Fixed::fixneg(out, c.x, 2), c.zero);
        EXPECT_EQ(model::hexWords(out, 2), c.negated);
    }
    int32_t untouched[1] = {7};
    EXPECT_EQ(Fixed::fixneg(untouched, one, 0), 1);
    EXPECT_EQ(untouched[0], 7);

    const int32_t e8[1] = {static_cast<int32_t>(0xE8000000u)};
    Fixed::fixnot(out, e8, 12);
    EXPECT_EQ(static_cast<uint32_t>(out[0]), 0x17F00000u);
    const int32_t forty[2] = {0, 0};
    Fixed::fixnot(out, forty, 40);
    EXPECT_EQ(model::hexWords(out, 2), "FFFFFFFF FF000000 ");

    EXPECT_EQ(Fixed::fixeq(ones, one, 0), 1);
    EXPECT_EQ(Fixed::fixne(ones, one, 0), 0);
    const int32_t topDiffers[2] = {-1, 0};
    EXPECT_EQ(Fixed::fixeq(ones, topDiffers, 2), 0);
    EXPECT_EQ(Fixed::fixne(ones, topDiffers, 2), 1);
    const int32_t count33[2] = {-1, 1};
    EXPECT_EQ(Fixed::fixbitcount(count33, 2), 33);
    EXPECT_EQ(Fixed::fixbitcount(forty, 2), 0);
}

mpz_class rawValue(const int32_t* words, int n)
{
    return model::readMantissa(words, 32 * n, false);
}

// The primitives over 1 to 5 raw words against GMP on the same bits.
TEST(WordPrimitivesModel, MatchGmp)
{
    std::mt19937_64 random(0x9A1);
    for (int c = 0; c < 10000; ++c) {
        const int n = 1 + static_cast<int>(random() % 5);
        const mpz_class modulus = mpz_class(1) << (32 * n);
        int32_t x[5], y[5], out[5];
        model::writeMantissa(edgeWeightedMantissa(random, 32 * n, false), 32 * n, x);
        model::writeMantissa(random() % 4 == 0 ? rawValue(x, n) : edgeWeightedMantissa(random, 32 * n, false),
                             32 * n, y);
        const mpz_class X = rawValue(x, n);
        const mpz_class Y = rawValue(y, n);
        SCOPED_TRACE(model::hexWords(x, n) + "/ " + model::hexWords(y, n));

        EXPECT_EQ(Fixed::fixadd(out, x, y, n), X + Y >= modulus ? 1 : 0);
        EXPECT_EQ(rawValue(out, n), (X + Y) % modulus);
        EXPECT_EQ(Fixed::fixsub(out, x, y, n), X < Y ? 1 : 0);
        EXPECT_EQ(rawValue(out, n), (X - Y + modulus) % modulus);
        EXPECT_EQ(Fixed::fixneg(out, x, n), X == 0 ? 1 : 0);
        EXPECT_EQ(rawValue(out, n), (modulus - X) % modulus);
        Fixed::fixand(out, x, y, n);
        EXPECT_EQ(rawValue(out, n), mpz_class(X & Y));
        EXPECT_EQ(Fixed::fixeq(x, y, n), X == Y ? 1 : 0);
        EXPECT_EQ(Fixed::fixne(x, y, n), X != Y ? 1 : 0);
        EXPECT_EQ(Fixed::fixbitcount(x, n), static_cast<int>(mpz_popcount(X.get_mpz_t())));

        const int width = 32 * (n - 1) + 1 + static_cast<int>(random() % 32);
        const mpz_class m = model::readMantissa(x, width, false);
        int32_t expected[5];
        model::writeMantissa((mpz_class(1) << width) - 1 - m, width, expected);
        Fixed::fixnot(out, x, width);
        EXPECT_EQ(model::hexWords(out, n), model::hexWords(expected, n)) << "width " << width;
        if (::testing::Test::HasFailure())
            return;
    }
}

}  // namespace
