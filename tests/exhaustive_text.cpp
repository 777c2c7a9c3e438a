// Every pattern of widths 1 to 12 as text, in every digit width, grouping
// mode and step direction, against the independent renderer; each text is
// sized by a query call and written between guard bytes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exact_model.h"
#include "lib_fixpoint.h"
#include "text_reference.h"

namespace {

using Renderer = int (*)(const int32_t*, int, int, char*, int, int, int, int, int);

constexpr int guardBytes = 8;
constexpr char guard = '#';

// The text as it reads (first character first), or why it does not.
// Backward steps (+1) end at the last character; forward steps (-1) start the
// reversed text at the first position.
bool renderMatches(Renderer fn, const int32_t* words, int bits, int exp, int k, int step, int align, int lower,
                   const std::string& expected, std::string& got)
{
    const int queried = fn(words, bits, exp, nullptr, k, step, align, lower, 1);
    const size_t n = queried < 0 ? 0 : static_cast<size_t>(queried);  // sized as a caller would
    std::string buffer(n + 2 * guardBytes, guard);
    char* const str = step > 0 ? &buffer[guardBytes + n] - 1 : &buffer[guardBytes];
    const int written = fn(words, bits, exp, str, k, step, align, lower, 0);
    got = buffer.substr(guardBytes, n);
    if (step < 0)
        got.assign(got.rbegin(), got.rend());
    const std::string guards(guardBytes, guard);
    return written == queried && got == expected && buffer.compare(0, guardBytes, guards) == 0 &&
           buffer.compare(guardBytes + n, guardBytes, guards) == 0;
}

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
                std::string got;
                if (!renderMatches(whole ? Fixed::fix2str1 : Fixed::fix2str2, words, bits, exp, k, step, align, lower,
                                   expected, got)) {
                    ADD_FAILURE() << (whole ? "fix2str1 " : "fix2str2 ") << binary << " exp " << exp << " k " << k
                                  << " align " << align << " step " << step << ": got \"" << got << "\", expected \""
                                  << expected << "\" (or the count or a guard byte differs)";
                    return;
                }
            }
        }
    }
}

}  // namespace
