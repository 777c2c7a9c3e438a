// Addition, subtraction, multiplication and comparison of records, and the
// word primitives, against GMP on randomized operands.
#include <gtest/gtest.h>

#include <new>
#include <random>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

std::string describe(const Fixed::fixed& f)
{
    return std::to_string(f.bits) + "/" + std::to_string(f.exp) + "/" + std::to_string(f.sign) + " " + model::hexWords(f.val, 5);
}

Fixed::fixed modelRecord(const mpz_class& m, int bits, int exp, int sign)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    model::writeMantissa(m, bits, f.val);
    return f;
}

class SumModel : public ReportingTest {};

// One operand in four differs in one field of its format: reported once, and
// b's words are added (subtracted) where they stand as 32*nw-bit numbers.
TEST_F(SumModel, AddAndSubtractMatchGmpModuloTheWidth)
{
    std::mt19937_64 random(4101);
    for (int trial = 0; trial < 40000; ++trial) {
        const int bits = model::boundaryWeightedWidth(random);
        const int sign = static_cast<int>(random() % 2);
        const int exp = static_cast<int>(random() % 41) - 20;
        const Fixed::fixed a = modelRecord(model::edgeWeightedMantissa(random, bits, sign), bits, exp, sign);
        Fixed::fixed b = modelRecord(model::edgeWeightedMantissa(random, bits, sign), bits, exp, sign);
        const int mismatch = random() % 4 == 0 ? static_cast<int>(random() % 3) + 1 : 0;
        b.bits = mismatch == 1 ? (bits == 160 ? 159 : bits + 1) : bits;
        b.exp += mismatch == 2 ? 4 : 0;
        b.sign = mismatch == 3 ? 1 - sign : sign;
        const bool add = trial % 2 == 0;
        SCOPED_TRACE(describe(a) + (add ? " + " : " - ") + describe(b));
        const Fixed::fixed result = add ? Fixed::fixedadd(a, b) : Fixed::fixedsub(a, b);
        const int nw = model::wordsFor(bits);
        const int width = mismatch == 0 ? bits : 32 * nw;
        const mpz_class x = model::readMantissa(a.val, width, false), y = model::readMantissa(b.val, width, false);
        Fixed::fixed want = a;
        model::writeMantissa(add ? mpz_class(x + y) : mpz_class(x - y), width, want.val);
        ASSERT_EQ(model::hexWords(result.val, 5), model::hexWords(want.val, 5));
        ASSERT_TRUE(result.bits == a.bits && result.exp == a.exp && result.sign == a.sign);
        const std::string name = add ? "fixedadd" : "fixedsub";
        if (mismatch == 0)
            expectNoReports();
        else
            expectReports({{"Fixed::fixed Fixed::" + name + "(Fixed::fixed, Fixed::fixed)",
                            std::string("C error: fixedpoint numbers with different format can't be ") +
                                (add ? "added (" : "subtracted (") + name + ")."}});
    }
}

// Every pair of widths whose sum fits, in all four signedness combinations.
// The product is built straight into a record followed by sentinel words, so
// that a store beyond its five words shows.
TEST(MultiplicationModel, AllWidthPairsMatchGmp)
{
    struct GuardedRecord {
        Fixed::fixed record;
        int32_t guard[2];
    };
    std::mt19937_64 random(0x3417);
    for (int aBits = 1; aBits < Fixed::maxBits; ++aBits) {
        for (int bBits = 1; aBits + bBits <= Fixed::maxBits; ++bBits) {
            for (int signs = 0; signs < 4; ++signs) {
                const int aSign = signs & 1, bSign = signs >> 1;
                const mpz_class a = model::edgeWeightedMantissa(random, aBits, aSign != 0);
                const mpz_class b = model::edgeWeightedMantissa(random, bBits, bSign != 0);
                const Fixed::fixed fa = modelRecord(a, aBits, -2, aSign), fb = modelRecord(b, bBits, 5, bSign);
                GuardedRecord frame{{}, {model::sentinel, model::sentinel}};
                const Fixed::fixed& result = *new (&frame.record) Fixed::fixed(Fixed::fixedmult(fa, fb));
                const int bits = aBits + bBits;
                Fixed::fixed want = modelRecord(a * b, bits, 3, aSign | bSign);
                if (result.bits != bits || result.exp != 3 || result.sign != (aSign | bSign) ||
                    model::hexWords(result.val, 5) != model::hexWords(want.val, 5) ||
                    frame.guard[0] != model::sentinel || frame.guard[1] != model::sentinel) {
                    ADD_FAILURE() << describe(fa) << " x " << describe(fb) << " gave " << describe(result)
                                  << ", then " << model::hexWords(frame.guard, 2);
                    return;
                }
            }
        }
    }
}

// The product's sign field is the bitwise OR of the factors' fields, whatever
// they hold; a nonzero field reads its factor as two's complement.
TEST(MultiplicationModel, ResultSignIsTheOrOfTheSignFields)
{
    struct Case { int aSign, bSign, sign; };
    const Case cases[] = {{0, 0, 0}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}, {2, 1, 3}, {1, 2, 3}, {2, 0, 2}, {4, 3, 7}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.aSign << " | " << c.bSign);
        // -3 in 8 bits (or 253 unsigned) times 0x12345 in 40 bits.
        const Fixed::fixed a{8, -1, c.aSign, {static_cast<int32_t>(0xFD000000u), 0, 0, 0, 0}};
        const Fixed::fixed b{40, 2, c.bSign, {0x45000000, 0x00000123, 0, 0, 0}};
        const Fixed::fixed p = Fixed::fixedmult(a, b);
        EXPECT_EQ(p.sign, c.sign);
        EXPECT_EQ(p.bits, 48);
        EXPECT_EQ(p.exp, 1);
        const mpz_class product = (c.aSign != 0 ? mpz_class(-3) : mpz_class(253)) * mpz_class(0x12345);
        EXPECT_EQ(model::readMantissa(p.val, 48, c.sign != 0), product);
    }
}

TEST(WordMultiplication, WritesOnlyTheProductWordsForEitherBound)
{
    const int32_t x[3] = {-1, -1, -1}, y[2] = {-1, -1};
    for (int nout : {4, 5}) {
        SCOPED_TRACE(nout);
        int32_t out[7] = {0, 0, 0, 0, 0, model::sentinel, model::sentinel};
        Fixed::fixmult(out, x, y, 3, 2, nout, 0, 0);  // (2^96 - 1)(2^64 - 1)
        EXPECT_EQ(model::hexWords(out, 7), "5A5A5A5A 5A5A5A5A FFFFFFFF FFFFFFFE FFFFFFFF 00000000 00000001 ");
        int32_t signedOut[7] = {0, 0, 0, 0, 0, model::sentinel, model::sentinel};
        Fixed::fixmult(signedOut, x, y, 3, 2, nout, 1, 1);
        EXPECT_EQ(model::hexWords(signedOut, 7), "5A5A5A5A 5A5A5A5A 00000000 00000000 00000000 00000000 00000001 ");
    }
}

// A carry pass stopped at nout leaves the counts above it unfolded: each
// word position holds the low halves of the word products landing on it
// plus the high halves of those one position lower, modulo 2^32. For
// (2^64 - 1)^2 every word product is 0xFFFFFFFE_00000001, so position 2 sums
// to 0x1_FFFFFFFD and position 3 to 0xFFFFFFFE, one short of the product's.
// (Words printed top first.)
TEST(WordMultiplication, AShortCarryPassLeavesTheHigherCountsUnfolded)
{
    const int32_t ones[2] = {-1, -1};
    const struct {
        int nout;
        const char* words;
    } cases[] = {
        {0, "FFFFFFFE FFFFFFFD 00000000 00000001 "},
        {1, "FFFFFFFE FFFFFFFD 00000000 00000001 "},
        {2, "FFFFFFFE FFFFFFFE 00000000 00000001 "},
        {3, "FFFFFFFF FFFFFFFE 00000000 00000001 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.nout);
        int32_t out[4] = {0, 0, 0, 0};
        Fixed::fixmult(out, ones, ones, 2, 2, c.nout, 0, 0);
        EXPECT_EQ(model::hexWords(out, 4), c.words);
    }
}

// Factors longer than a record, and carry passes that stop short, sum word
// products: a full pass leaves the product modulo 2^(32 (nx + ny)), and a
// pass stopping at nout still leaves out[0..nout] exact, since no count
// below them is left unfolded.
TEST(WordMultiplication, LongFactorsAndShortPassesMatchGmp)
{
    std::mt19937_64 random(0x5EED);
    for (int n = 0; n < 3000; ++n) {
        const int nx = 1 + static_cast<int>(random() % 8);
        const int ny = 1 + static_cast<int>(random() % 8);
        const int total = nx + ny;
        const int nout = random() % 2 != 0 ? total - static_cast<int>(random() % 2)
                                           : static_cast<int>(random() % total);
        const bool full = nout >= total - 1;
        const int isSigned = full ? static_cast<int>(random() % 2) : 0;
        std::vector<int32_t> x(nx), y(ny), out(total + 1, 0);
        model::writeMantissa(model::edgeWeightedMantissa(random, 32 * nx, isSigned != 0), 32 * nx, x.data());
        model::writeMantissa(model::edgeWeightedMantissa(random, 32 * ny, isSigned != 0), 32 * ny, y.data());
        out[total] = model::sentinel;
        SCOPED_TRACE(model::hexWords(x.data(), nx) + "x " + model::hexWords(y.data(), ny) + "nout " + std::to_string(nout));
        Fixed::fixmult(out.data(), x.data(), y.data(), nx, ny, nout, isSigned, isSigned);
        const mpz_class product = model::readMantissa(x.data(), 32 * nx, isSigned != 0) *
                                  model::readMantissa(y.data(), 32 * ny, isSigned != 0);
        const int exactBits = 32 * (full ? total : nout + 1);
        EXPECT_EQ(model::readMantissa(out.data(), exactBits, false), model::wrapInto(product, exactBits, false));
        EXPECT_EQ(out[total], model::sentinel);
    }
}

TEST(ComparisonModel, MixedSignednessMatchesGmp)
{
    std::mt19937_64 random(0xC0DE);
    for (int n = 0; n < 30000; ++n) {
        const int bits = model::boundaryWeightedWidth(random);
        const int aSign = static_cast<int>(random() % 2), bSign = static_cast<int>(random() % 2);
        const mpz_class a = model::edgeWeightedMantissa(random, bits, aSign != 0);
        const mpz_class b = random() % 8 == 0 ? model::wrapInto(a, bits, bSign != 0)
                                               : model::edgeWeightedMantissa(random, bits, bSign != 0);
        const Fixed::fixed fa = modelRecord(a, bits, 1, aSign), fb = modelRecord(b, bits, 1, bSign);
        const int greater = a > b ? 1 : 0;
        if (Fixed::fixedgt(fa, fb) != greater || Fixed::fixedle(fa, fb) != 1 - greater ||
            (aSign == bSign && Fixed::fixedeq(fa, fb) != (a == b ? 1 : 0))) {
            ADD_FAILURE() << describe(fa) << " vs " << describe(fb);
            return;
        }
    }
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
        model::writeMantissa(model::edgeWeightedMantissa(random, 32 * n, false), 32 * n, x);
        model::writeMantissa(random() % 4 == 0 ? rawValue(x, n) : model::edgeWeightedMantissa(random, 32 * n, false),
                             32 * n, y);
        const mpz_class X = rawValue(x, n), Y = rawValue(y, n);
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
        int32_t expected[5];
        model::writeMantissa((mpz_class(1) << width) - 1 - model::readMantissa(x, width, false), width, expected);
        Fixed::fixnot(out, x, width);
        EXPECT_EQ(model::hexWords(out, n), model::hexWords(expected, n)) << "width " << width;
        if (::testing::Test::HasFailure())
            return;
    }
}

}  // namespace
