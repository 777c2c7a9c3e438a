// Text rendering in radix 2, 4, 8 and 16: a randomized comparison with a
// renderer that reads the digits straight off the GMP integer, the spacing of
// characters and widths outside the record.
#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "exact_model.h"
#include "lib_fixpoint.h"
#include "text_reference.h"

namespace {

using Renderer = int (*)(const int32_t*, int, int, char*, int, int, int, int, int);

const int guardBytes = 16;

struct Rendered { int queried, written; std::string text; bool guardsIntact; };

// Sizes the text with a query call, then writes it contiguously into exactly
// that many characters between guard bytes.
Rendered render(Renderer fn, const int32_t* words, int bits, int exp, int k, int align, int lower)
{
    Rendered r;
    r.queried = fn(words, bits, exp, nullptr, k, 1, align, lower, 1);
    const int n = r.queried < 0 ? 0 : r.queried;
    std::vector<char> buffer(static_cast<size_t>(n) + 2 * guardBytes, '#');
    r.written = fn(words, bits, exp, buffer.data() + guardBytes + n - 1, k, 1, align, lower, 0);
    r.text.assign(buffer.data() + guardBytes, static_cast<size_t>(n));
    const std::string guard(guardBytes, '#');
    r.guardsIntact = std::string(buffer.data(), guardBytes) == guard &&
                     std::string(buffer.data() + guardBytes + n, guardBytes) == guard;
    return r;
}

TEST(TextRendering, StepSpreadsTheCharactersAndWidthsOutsideTheRecordStayInIt)
{
    const int32_t words[5] = {static_cast<int32_t>(0xFFC00000u), -1, -1, -1, -1};
    std::string buffer(9, '.');
    EXPECT_EQ(Fixed::fix2str2(words, 10, -8, &buffer[8], 4, 2, 0, 0, 0), 4);
    EXPECT_EQ(buffer, "..3...F.F");
    struct Case { Renderer fn; int bits, exp; const char* text; };
    const Case cases[] = {{Fixed::fix2str1, 0, -8, "*2^-8"}, {Fixed::fix2str1, -7, 0, ""},
                          {Fixed::fix2str2, 0, -8, "0*2^-8"}, {Fixed::fix2str2, INT_MIN, 0, "0"},
                          // Above 160 bits the bits beyond the record's words read as zero.
                          {Fixed::fix2str1, 164, 0, "00000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.bits) + " " + std::to_string(c.exp));
        const Rendered r = render(c.fn, words, c.bits, c.exp, 4, 0, 0);
        EXPECT_EQ(r.text, c.text);
        EXPECT_TRUE(r.written == r.queried && r.guardsIntact);
    }
}

int randomExponent(std::mt19937_64& random)
{
    const int extremes[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 159, -1000, 1000, -999, 999,
                            -100000, 99999, 1000000000, -1000000000};
    switch (random() % 4) {
    case 0: return extremes[random() % (sizeof extremes / sizeof extremes[0])];
    case 1: return static_cast<int>(static_cast<int32_t>(random()));
    default: return static_cast<int>(random() % 341) - 170;
    }
}

TEST(TextRenderingModel, MatchesTheDigitsOfTheIntegerWithGuardedWrites)
{
    std::mt19937_64 random(0x7E47);
    const int aligns[] = {0, 1, 2, 3, -1};
    for (int c = 0; c < 40000; ++c) {
        const int bits = model::boundaryWeightedWidth(random), exp = randomExponent(random);
        const int k = 1 + static_cast<int>(random() % 4), align = aligns[random() % 5];
        const int lower = static_cast<int>(random() % 2);
        const mpz_class m = model::randomMantissa(random, bits, false);
        std::vector<int32_t> words(5);
        for (int32_t& w : words)
            w = static_cast<int32_t>(random());
        model::writeMantissa(m, bits, words.data());
        const int pad = 32 * model::wordsFor(bits) - bits;
        if (pad > 0)  // pad bits are not part of the mantissa
            words[0] |= static_cast<int32_t>(random() & ((1u << pad) - 1u));
        const bool whole = c % 2 == 0;
        const std::string binary = reference::binaryDigits(m, bits);
        const std::string expected = whole ? reference::wholeText(binary, exp, k, align, lower != 0)
                                           : reference::positionalText(binary, exp, k, align, lower != 0);
        const Rendered r = render(whole ? Fixed::fix2str1 : Fixed::fix2str2, words.data(), bits, exp, k,
                                  align, lower);
        if (r.text != expected || r.queried != static_cast<int>(expected.size()) ||
            r.written != r.queried || !r.guardsIntact) {
            ADD_FAILURE() << (whole ? "fix2str1 " : "fix2str2 ") << m.get_str(16) << " bits " << bits
                          << " exp " << exp << " k " << k << " align " << align << ": got \"" << r.text
                          << "\" (" << r.queried << "/" << r.written << "), expected \"" << expected << "\"";
            return;
        }
    }
}

}  // namespace
