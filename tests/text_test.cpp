// Text rendering in radix 2, 4, 8 and 16: worked examples in every grouping
// mode, digit-width reports, and a randomized comparison with a renderer that
// reads the digits straight off the GMP integer.
#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "exact_model.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

using Renderer = int (*)(const int32_t*, int, int, char*, int, int, int, int, int);

const int guardBytes = 16;

struct Rendered {
    int queried;
    int written;
    std::string text;
    bool guardsIntact;
};

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
    r.guardsIntact = std::string(buffer.data(), guardBytes) == std::string(guardBytes, '#') &&
                     std::string(buffer.data() + guardBytes + n, guardBytes) == std::string(guardBytes, '#');
    return r;
}

std::vector<int32_t> mantissaWords(const mpz_class& m, int bits)
{
    std::vector<int32_t> words(5, 0);
    model::writeMantissa(m, bits, words.data());
    return words;
}

struct Example {
    Renderer fn;
    const char* mantissa;  // hex
    int bits, exp, k, align, lower;
    const char* text;
};

TEST(TextRendering, WorkedExamples)
{
    const Renderer s1 = Fixed::fix2str1;
    const Renderer s2 = Fixed::fix2str2;
    const Example examples[] = {
        {s1, "3FF", 10, 0, 4, 2, 0, "3FF"},
        {s1, "3FF", 10, 0, 4, 0, 0, "FFC"},
        {s1, "3FF", 10, 0, 4, 1, 0, "FFC"},
        {s2, "3FF", 10, 0, 4, 0, 0, "3FF"},
        {s2, "3FF", 10, 0, 4, 2, 0, "3FF"},
        {s2, "3FF", 10, 0, 4, 1, 0, "FFC"},
        {s1, "3FF", 10, -8, 4, 2, 0, "3FF*2^-8"},
        {s1, "3FF", 10, -8, 4, 0, 0, "FFC*2^-8"},
        {s2, "3FF", 10, -8, 4, 0, 0, "3.FF"},
        {s2, "3FF", 10, -8, 4, 2, 0, "3.FF"},
        {s2, "3FF", 10, -8, 4, 1, 0, "C.FF"},
        {s2, "3FF", 10, -4, 4, 0, 0, "3F.F"},
        {s2, "3FF", 10, -4, 3, 0, 0, "77.74"},
        {s2, "3FF", 10, -4, 3, 2, 0, "77.17"},
        {s2, "3FF", 10, 3, 4, 0, 0, "1.FF8*2^12"},
        {s2, "3FF", 10, 3, 4, 2, 0, "1.1FF*2^12"},
        {s2, "3FF", 10, 3, 4, 1, 0, "8.FF8*2^12"},
        {s2, "3FF", 10, -10, 4, 0, 0, "1.FF8*2^-1"},
        {s2, "3FF", 10, -12, 4, 0, 0, "1.FF8*2^-3"},
        {s2, "1B33", 16, -12, 4, 0, 0, "1.B33"},
        {s2, "1B33", 16, -12, 4, 0, 1, "1.b33"},
        {s1, "1B33", 16, -12, 4, 2, 0, "1B33*2^-12"},
        {s2, "E80", 12, -8, 4, 0, 0, "E.80"},
        {s1, "E80", 12, -1000, 4, 2, 0, "E80*2^-1000"},
        {s2, "ABCDEF123", 40, -16, 4, 0, 0, "0ABCDE.F123"},
        {s1, "ABCDEF123", 40, -16, 4, 2, 0, "0ABCDEF123*2^-16"},
        {s1, "ABCDEF123", 40, -16, 4, 2, 1, "0abcdef123*2^-16"},
        {s2, "5", 3, 0, 4, 0, 0, "5"},
        {s2, "5", 3, 0, 4, 1, 0, "A"},
        {s2, "5", 3, 2, 4, 0, 0, "1.4*2^4"},
        {s2, "1", 1, -5, 4, 0, 0, "1*2^-5"},
        {s2, "80000000", 32, -40, 4, 0, 0, "1.00000000*2^-9"},
        {s2, "FF", 8, -4, 4, 0, 0, "F.F"},
        {s1, "FF", 8, -4, 4, 2, 0, "FF*2^-4"},
        {s1, "3FF", 10, 7, 2, 2, 0, "33333*2^7"},
        {s2, "1", 1, 0, 1, 0, 0, "1"},
        {s2, "0", 160, -159, 4, 0, 0, "0.0000000000000000000000000000000000000000"},
        {s1, "1", 33, INT_MIN, 4, 2, 0, "000000001*2^-2147483648"},
        {s2, "1", 2, INT_MAX, 4, 0, 0, "0.8*2^2147483648"},
    };
    for (const Example& e : examples) {
        SCOPED_TRACE(std::string(e.fn == s1 ? "fix2str1 " : "fix2str2 ") + e.mantissa + " bits " +
                     std::to_string(e.bits) + " exp " + std::to_string(e.exp) + " k " +
                     std::to_string(e.k) + " align " + std::to_string(e.align));
        const std::vector<int32_t> words = mantissaWords(mpz_class(e.mantissa, 16), e.bits);
        const Rendered r = render(e.fn, words.data(), e.bits, e.exp, e.k, e.align, e.lower);
        EXPECT_EQ(r.text, e.text);
        EXPECT_EQ(r.written, r.queried);
        EXPECT_TRUE(r.guardsIntact);
    }
}

TEST(TextRendering, BinaryLengthOfTheSmallestPower)
{
    const std::vector<int32_t> words = mantissaWords(mpz_class(0x80000000u), 32);
    const Rendered r = render(Fixed::fix2str2, words.data(), 32, -40, 1, 0, 0);
    EXPECT_EQ(r.queried, 38);
    EXPECT_EQ(r.text, "1.0000000000000000000000000000000*2^-9");
}

TEST(TextRendering, StepSpreadsTheCharacters)
{
    const std::vector<int32_t> words = mantissaWords(mpz_class(0x3FF), 10);
    std::string buffer(9, '.');
    EXPECT_EQ(Fixed::fix2str2(words.data(), 10, -8, &buffer[8], 4, 2, 0, 0, 0), 4);
    EXPECT_EQ(buffer, "..3...F.F");
}

class TextReports : public ReportingTest {};

// A digit width outside 1..4 is reported and gives the empty text.
TEST_F(TextReports, DigitWidthOutsideOneToFour)
{
    const std::vector<int32_t> words = mantissaWords(mpz_class(0x3FF), 10);
    for (int k : {0, 5, 7, -3, INT_MIN}) {
        SCOPED_TRACE(k);
        std::string buffer(8, '#');
        for (int query : {0, 1}) {
            EXPECT_EQ(Fixed::fix2str1(words.data(), 10, -8, &buffer[7], k, 1, 0, 0, query), 0);
            EXPECT_EQ(Fixed::fix2str2(words.data(), 10, -8, &buffer[7], k, 1, 0, 0, query), 0);
            expectReports(
                {{"int Fixed::fix2str1(long int*, int, int, char*, int, int, int, int, int)",
                  "Internal error fixpoint calculation No. 2. Report error to author (with parameters)."},
                 {"int Fixed::fix2str2(long int*, int, int, char*, int, int, int, int, int)",
                  "Internal error fixpoint calculation No. 3. Report error to author (with parameters)."}});
        }
        EXPECT_EQ(buffer, std::string(8, '#'));
    }
}

TEST_F(TextReports, WidthsBelowOneGiveAtMostTheExponentAndOneDigit)
{
    const int32_t words[5] = {-1, -1, -1, -1, -1};
    struct Case {
        Renderer fn;
        int bits, exp;
        const char* text;
    };
    const Case cases[] = {
        {Fixed::fix2str1, 0, -8, "*2^-8"}, {Fixed::fix2str1, -7, 0, ""},
        {Fixed::fix2str2, 0, -8, "0*2^-8"}, {Fixed::fix2str2, INT_MIN, 0, "0"},
        {Fixed::fix2str2, -3, 12, "0*2^12"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.bits) + " " + std::to_string(c.exp));
        const Rendered r = render(c.fn, words, c.bits, c.exp, 4, 0, 0);
        EXPECT_EQ(r.text, c.text);
        EXPECT_EQ(r.written, r.queried);
        EXPECT_TRUE(r.guardsIntact);
    }
    expectNoReports();
}

// ---- Independent renderer --------------------------------------------------

int padTo(int n, int k)
{
    return (k - n % k) % k;
}

// The n bits of x as ceil(n / k) digits, most significant first.
std::string digitsOf(const mpz_class& x, int n, int k, bool lower)
{
    const char* const alphabet = lower ? "0123456789abcdef" : "0123456789ABCDEF";
    std::string text;
    const int count = (n + k - 1) / k;
    const mpz_class mask = (mpz_class(1) << k) - 1;
    for (int d = count - 1; d >= 0; --d) {
        const mpz_class digit = (x >> (d * k)) & mask;
        text += alphabet[digit.get_ui()];
    }
    return text;
}

// The digits with a pad of zero bits below, grouping from the top.
std::string groupedDigits(const mpz_class& x, int n, int k, bool fromTop, bool lower)
{
    const int pad = fromTop ? padTo(n, k) : 0;
    return digitsOf(x << pad, n + pad, k, lower);
}

std::string referenceWhole(const mpz_class& m, int bits, int exp, int k, int align, bool lower)
{
    std::string text = groupedDigits(m, bits, k, align != 2, lower);
    if (exp != 0)
        text += "*2^" + std::to_string(exp);
    return text;
}

std::string referencePositional(const mpz_class& m, int bits, int exp, int k, int align, bool lower)
{
    const bool positional = exp <= 0 && -static_cast<int64_t>(exp) < bits;
    const int fractionBits = positional ? -exp : bits - 1;
    const mpz_class integer = m >> fractionBits;
    const mpz_class fraction = m - (integer << fractionBits);
    std::string text = groupedDigits(integer, bits - fractionBits, k, align == 1, lower);
    if (fractionBits > 0)
        text += "." + groupedDigits(fraction, fractionBits, k, align != 2, lower);
    if (!positional)
        text += "*2^" + std::to_string(static_cast<int64_t>(exp) + bits - 1);
    return text;
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
    for (int c = 0; c < 30000; ++c) {
        const int bits = model::boundaryWeightedWidth(random);
        const int exp = randomExponent(random);
        const int k = 1 + static_cast<int>(random() % 4);
        const int align = aligns[random() % 5];
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
        const std::string expected = whole ? referenceWhole(m, bits, exp, k, align, lower != 0)
                                           : referencePositional(m, bits, exp, k, align, lower != 0);
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
