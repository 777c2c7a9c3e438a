// Every pattern of widths 1 to 12 as text, in every digit width, grouping
// mode and step direction, against the independent renderer; then wide
// mantissas with exponents up to the ends of int. Each text is sized by a
// query call and written between guard bytes.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "exact_model.h"
#include "lib_fixpoint.h"
#include "text_reference.h"

namespace {

// fix2str1 with and without an exponent part; fix2str2 with every radix
// point position inside the mantissa and the scientific form on both sides.
std::vector<int> exponentsFor(bool whole, int bits)
{
    if (whole)
        return {0, -5};
    std::vector<int> exps;
    for (int exp = -bits - 1; exp <= 1; ++exp)
        exps.push_back(exp);
    return exps;
}

TEST(ExhaustiveText, Fix2str1AndFix2str2RenderEveryPatternOfWidthsUpTo12)
{
    for (int bits = 1; bits <= 12; ++bits)
    for (uint32_t p = 0; p < (1u << bits); ++p) {
        // Junk in the pad bits and the words above is not part of the mantissa.
        const int32_t words[5] = {static_cast<int32_t>(p << (32 - bits) | (0x0F0F0F0Fu >> bits)), -1, -1, -1, -1};
        const std::string binary = reference::binaryDigits(mpz_class(p), bits);
        const int lower = static_cast<int>(p % 2);
        for (bool whole : {true, false})
        for (int exp : exponentsFor(whole, bits))
        for (int k = 1; k <= 4; ++k)
        for (int align = 0; align <= 2; ++align) {
            const std::string expected = whole ? reference::wholeText(binary, exp, k, align, lower != 0)
                                               : reference::positionalText(binary, exp, k, align, lower != 0);
            for (int step : {1, -1}) {
                const reference::Rendered r = reference::render(whole ? Fixed::fix2str1 : Fixed::fix2str2, words,
                                                                bits, exp, k, step, align, lower);
                if (r.text != expected || r.written != r.queried || !r.guardsIntact) {
                    ADD_FAILURE() << (whole ? "fix2str1 " : "fix2str2 ") << binary << " exp " << exp << " k " << k
                                  << " align " << align << " step " << step << ": got \"" << r.text << "\", expected \""
                                  << expected << "\" (or the count or a guard byte differs)";
                    return;
                }
            }
        }
    }
}

// Wide mantissas whose digits differ at the top, the bottom and the word
// boundaries, with junk in the pad bits and the words above; exponents at
// the radix point's ends and at the ends of int, where fix2str2's scientific
// exponent exp + bits - 1 leaves int. Grouping modes outside 0..2 act as 0.
TEST(ExhaustiveText, WideMantissasAndExtremeExponents)
{
    const int widths[] = {31, 32, 33, 63, 64, 65, 96, 127, 159, 160};
    for (int bits : widths) {
        const mpz_class all = (mpz_class(1) << bits) - 1;
        const mpz_class patterns[] = {1, mpz_class(1) << (bits - 1), all / 5 * 3, all};
        for (const mpz_class& m : patterns) {
            int32_t words[5] = {-1, -1, -1, -1, -1};
            model::writeMantissa(m, bits, words);
            words[0] |= static_cast<int32_t>(~Fixed::highmask[bits % 32] & 0x2D4B6A79u);
            const std::string binary = reference::binaryDigits(m, bits);
            for (int exp : {INT_MIN, INT_MIN + 1, -bits - 1, -bits, 1 - bits, -33, -32, -1, 0, 1, INT_MAX - 159, INT_MAX})
            for (bool whole : {true, false})
            for (int k = 1; k <= 4; ++k)
            for (int align = -1; align <= 3; ++align)
            for (int step : {1, -1}) {
                const int lower = (k + align) % 2 != 0 ? 1 : 0;
                const std::string expected = whole ? reference::wholeText(binary, exp, k, align, lower != 0)
                                                   : reference::positionalText(binary, exp, k, align, lower != 0);
                const reference::Rendered r = reference::render(whole ? Fixed::fix2str1 : Fixed::fix2str2, words,
                                                                bits, exp, k, step, align, lower);
                ASSERT_TRUE(r.text == expected && r.written == r.queried && r.guardsIntact)
                    << (whole ? "fix2str1 " : "fix2str2 ") << m.get_str(16) << " (" << bits << " bits) exp " << exp
                    << " k " << k << " align " << align << " step " << step << ": got \"" << r.text
                    << "\", expected \"" << expected << "\"";
            }
        }
    }
}

}  // namespace
