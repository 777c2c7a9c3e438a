// Every product, comparison, sum and difference of small formats, and the
// word primitives on every pattern, against GMP.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "exact_model.h"
#include "guarded_words.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

constexpr int32_t junk = 0x3C3C3C3C;

int32_t leftAligned(uint32_t pattern, int bits)
{
    return static_cast<int32_t>(pattern << (32 - bits));
}

using model::describe;

// Widths whose sum is at most 14, all four signedness combinations; the word
// form on the same single words, with either carry bound.
TEST(ExhaustiveMultiplication, FixedmultAndFixmultGiveEveryProductOfSmallWidths)
{
    constexpr int widestProduct = 14;
    for (int aBits = 1; aBits < widestProduct; ++aBits)
    for (int bBits = 1; aBits + bBits <= widestProduct; ++bBits)
    for (int signs = 0; signs < 4; ++signs) {
        const int aSign = signs & 1, bSign = signs >> 1, bits = aBits + bBits;
        const std::vector<mpz_class> as = model::allMantissas(aBits, aSign != 0);
        const std::vector<mpz_class> bs = model::allMantissas(bBits, bSign != 0);
        for (uint32_t pa = 0; pa < as.size(); ++pa)
        for (uint32_t pb = 0; pb < bs.size(); ++pb) {
            const Fixed::fixed a{aBits, -2, aSign, {leftAligned(pa, aBits), junk, junk, junk, junk}};
            const Fixed::fixed b{bBits, 5, bSign, {leftAligned(pb, bBits), junk, junk, junk, junk}};
            const mpz_class product = as[pa] * bs[pb];
            Fixed::fixed want{bits, 3, aSign | bSign, {0, 0, 0, 0, 0}};
            model::writeMantissa(product, bits, want.val);
            int32_t wantWords[2];
            model::writeMantissa(product << (64 - bits), 64, wantWords);  // the product of the aligned words

            const Fixed::fixed result = Fixed::fixedmult(a, b);
            GuardedWords out(2);
            Fixed::fixmult(out.data(), &a.val[0], &b.val[0], 1, 1, 1 + static_cast<int>((pa + pb) % 2), aSign, bSign);
            if (std::memcmp(&result, &want, sizeof want) != 0 || out.data()[0] != wantWords[0] ||
                out.data()[1] != wantWords[1] || !out.guardsIntact()) {
                ADD_FAILURE() << describe(a) << " x " << describe(b) << "\n  model    " << describe(want)
                              << "\n  fixedmult " << describe(result) << "\n  fixmult  " << out.frameHex();
                return;
            }
        }
    }
}

// Every pair of patterns of one width 1 to 8, mixed signedness: fixedgt is
// the comparison of the values each read with its own signedness, fixedle
// its negation, fixedeq the equality of the words (reported when the
// signedness differs).
TEST(ExhaustiveComparison, FixedgtFixedleAndFixedeqDecideEveryPairOfSmallPatterns)
{
    clearRecordedReports();
    for (int bits = 1; bits <= 8; ++bits)
    for (int signs = 0; signs < 4; ++signs) {
        const int aSign = signs & 1, bSign = signs >> 1;
        const std::vector<mpz_class> as = model::allMantissas(bits, aSign != 0);
        const std::vector<mpz_class> bs = model::allMantissas(bits, bSign != 0);
        for (uint32_t pa = 0; pa < as.size(); ++pa)
        for (uint32_t pb = 0; pb < bs.size(); ++pb) {
            const Fixed::fixed a{bits, 1, aSign, {leftAligned(pa, bits), junk, junk, junk, junk}};
            const Fixed::fixed b{bits, 1, bSign, {leftAligned(pb, bits), 0, 0, 0, 0}};
            const int greater = as[pa] > bs[pb] ? 1 : 0;
            const int gt = Fixed::fixedgt(a, b), le = Fixed::fixedle(a, b), eq = Fixed::fixedeq(a, b);
            const size_t reports = recordedReports().size();
            const bool reportedByEq = reports == 1 && recordedReports()[0].function.find("fixedeq") != std::string::npos;
            clearRecordedReports();
            if (gt != greater || le != 1 - greater || eq != (pa == pb ? 1 : 0) ||
                (aSign == bSign ? reports != 0 : !reportedByEq)) {
                ADD_FAILURE() << describe(a) << " vs " << describe(b) << ": gt " << gt << " le " << le << " eq " << eq
                              << ", " << reports << " reports";
                return;
            }
        }
    }
}

// Sums and differences of every pair of patterns of widths 1 to 8 wrap at the
// width; negation, complement, bit count and double value of every pattern.
TEST(ExhaustiveWordArithmetic, SumsDifferencesAndPrimitivesOfEverySmallPattern)
{
    clearRecordedReports();
    for (int bits = 1; bits <= 8; ++bits) {
        const uint32_t count = 1u << bits, pad = ~Fixed::highmask[bits];
        for (int sign = 0; sign < 2; ++sign)
        for (uint32_t pa = 0; pa < count; ++pa)
        for (uint32_t pb = 0; pb < count; ++pb) {
            const Fixed::fixed a{bits, -3, sign, {leftAligned(pa, bits), 0, 0, 0, 0}};
            const Fixed::fixed b{bits, -3, sign, {leftAligned(pb, bits), junk, junk, junk, junk}};
            Fixed::fixed sum = a, difference = a;
            model::writeMantissa(mpz_class(pa) + pb, bits, sum.val);
            model::writeMantissa(mpz_class(pa) - pb, bits, difference.val);
            const Fixed::fixed added = Fixed::fixedadd(a, b), subtracted = Fixed::fixedsub(a, b);
            if (std::memcmp(&added, &sum, sizeof sum) != 0 || std::memcmp(&subtracted, &difference, sizeof sum) != 0) {
                ADD_FAILURE() << describe(a) << " +/- " << describe(b) << "\n  sum        " << describe(added)
                              << " (model " << describe(sum) << ")\n  difference " << describe(subtracted)
                              << " (model " << describe(difference) << ")";
                return;
            }
        }
        for (uint32_t p = 0; p < count; ++p) {
            SCOPED_TRACE("pattern " + std::to_string(p) + " of " + std::to_string(bits) + " bits");
            const int32_t x = leftAligned(p, bits);
            const int32_t withPad = static_cast<int32_t>(static_cast<uint32_t>(x) | (pad & (0x5A3C96E1u >> (p % 5))));
            int32_t negated, complement;
            model::writeMantissa(-mpz_class(p), bits, &negated);
            model::writeMantissa(mpz_class(count - 1 - p), bits, &complement);
            GuardedWords neg(1), inPlace(1, x), notOut(1);
            const int wasZero = Fixed::fixneg(neg.data(), &x, 1);
            Fixed::fixneg(inPlace.data(), inPlace.data(), 1);
            Fixed::fixnot(notOut.data(), &withPad, bits);  // source pad bits are cleared
            const int ones = Fixed::fixbitcount(&withPad, 1);
            EXPECT_EQ(wasZero, p == 0 ? 1 : 0);
            EXPECT_TRUE(neg.data()[0] == negated && inPlace.data()[0] == negated && neg.guardsIntact() &&
                        inPlace.guardsIntact())
                << neg.frameHex() << "/ " << inPlace.frameHex();
            EXPECT_TRUE(notOut.data()[0] == complement && notOut.guardsIntact()) << notOut.frameHex();
            EXPECT_EQ(ones, static_cast<int>(mpz_popcount(mpz_class(static_cast<uint32_t>(withPad)).get_mpz_t())));
            // Read back as a double: unsigned, and signed with an exponent and junk above.
            const double signedValue = p >> (bits - 1) != 0 ? static_cast<double>(p) - count : p;
            EXPECT_EQ(Fixed::fix2float(&withPad, bits, 0), static_cast<double>(p));
            EXPECT_EQ(Fixed::fixed2double(Fixed::fixed{bits, -3, 1, {withPad, junk, junk, junk, junk}}), signedValue / 8);
            if (::testing::Test::HasFailure())
                return;
        }
    }
    EXPECT_TRUE(recordedReports().empty());
}

}  // namespace
