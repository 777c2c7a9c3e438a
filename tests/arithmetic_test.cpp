// Multiplication and comparison of records, and the word primitives, against
// GMP on randomized operands of every width (the exhaustive tests reach 8 to
// 14 bits; sums of records are the word primitives' chains).
#include <gtest/gtest.h>

#include <new>
#include <random>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

using model::describe;

Fixed::fixed modelRecord(const mpz_class& m, int bits, int exp, int sign)
{
    Fixed::fixed f{bits, exp, sign, {0, 0, 0, 0, 0}};
    model::writeMantissa(m, bits, f.val);
    return f;
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
                const Fixed::fixed want = modelRecord(a * b, aBits + bBits, 3, aSign | bSign);
                ASSERT_TRUE(describe(result) == describe(want) && frame.guard[0] == model::sentinel &&
                            frame.guard[1] == model::sentinel)
                    << describe(fa) << " x " << describe(fb) << " gave " << describe(result) << ", then "
                    << model::hexWords(frame.guard, 2);
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
        ASSERT_TRUE(Fixed::fixedgt(fa, fb) == greater && Fixed::fixedle(fa, fb) == 1 - greater &&
                    (aSign != bSign || Fixed::fixedeq(fa, fb) == (a == b ? 1 : 0)))
            << describe(fa) << " vs " << describe(fb);
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
