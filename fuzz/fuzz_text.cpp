// Both text routines with arbitrary widths, exponents, digit widths, steps
// and grouping modes. The destination is sized by a query call and fenced
// by guard bytes; positions between the characters of a stepped text stay
// untouched as well. The count written equals the count queried, and for
// valid digit widths the digits are those of GMP's radix conversion.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "exact_model.h"
#include "fuzz_support.h"
#include "lib_fixpoint.h"

namespace {

constexpr char guardByte = static_cast<char>(0xA5);
constexpr int guard = 32;

// n digits of value in radix 2^k, leading zeros included.
std::string digits(const mpz_class& value, int k, int n, bool lower)
{
    std::string text = value.get_str(1 << k);
    if (!lower)
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    return std::string(static_cast<size_t>(std::max(0, n - static_cast<int>(text.size()))), '0') + text;
}

int ceilDiv(int n, int k) { return n / k + (n % k > 0 ? 1 : 0); }

// The text the routine should give, or "" where no oracle is kept here.
std::string expectedText(bool second, const int32_t* words, int bits, int exp, int k, int align, bool lower)
{
    if (bits < 1 || k < 1 || k > 4)
        return "";
    const mpz_class m = model::readMantissa(words, bits, false);
    if (!second) {
        if (align != 2)
            return "";
        return digits(m, k, ceilDiv(bits, k), lower) + (exp != 0 ? "*2^" + std::to_string(exp) : "");
    }
    if (align != 0 || exp > 0 || -int64_t{exp} >= bits)
        return "";
    const int f = -exp;
    const mpz_class integer = m >> static_cast<unsigned long>(f);
    std::string text = digits(integer, k, ceilDiv(bits - f, k), lower);
    if (f > 0) {
        const int pad = (k - f % k) % k;
        const mpz_class fraction = (m - (integer << static_cast<unsigned long>(f))) << static_cast<unsigned long>(pad);
        text += "." + digits(fraction, k, ceilDiv(f, k), lower);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    const bool second = in.ConsumeBool();
    int bits = fuzz::width(in, 1, 160);
    if (bits > 160)
        bits %= 161;  // the routines read ceil(bits / 32) words of a record
    const int exp = in.ConsumeIntegralInRange<int>(0, 3) == 0 ? in.ConsumeIntegral<int>()
                                                               : in.ConsumeIntegralInRange<int>(-200, 200);
    const int digitbits = in.ConsumeIntegralInRange<int>(0, 9) == 0 ? in.ConsumeIntegral<int>()
                                                                     : in.ConsumeIntegralInRange<int>(1, 4);
    const int step = in.ConsumeIntegralInRange<int>(-3, 3);
    const int align = in.ConsumeIntegralInRange<int>(0, 9) == 0 ? in.ConsumeIntegral<int>()
                                                                 : in.ConsumeIntegralInRange<int>(0, 2);
    const int lower = fuzz::flag(in);
    int32_t words[Fixed::maxWords];
    for (int32_t& w : words)
        w = in.ConsumeIntegral<int32_t>();

    const auto render = second ? Fixed::fix2str2 : Fixed::fix2str1;
    fuzz::resetReports();
    char unused = guardByte;
    const int queried = render(words, bits, exp, &unused, digitbits, step, align, lower, 1);
    fuzz::require(unused == guardByte, "text query wrote a character");
    fuzz::require(queried >= 0 && queried < 4096, "text query count out of range");
    const bool badDigits = digitbits < 1 || digitbits > 4;
    fuzz::require(fuzz::reportCount() == (badDigits ? 1 : 0), "text query report count");

    // Room for `queried` characters `step` apart; str is the last one
    // written (the highest address for a positive step).
    const int span = queried < 1 ? 1 : (queried - 1) * std::abs(step) + 1;
    std::vector<char> buffer(static_cast<size_t>(span + 2 * guard), guardByte);
    char* const first = buffer.data() + guard;
    char* const str = step >= 0 ? first + span - 1 : first;
    fuzz::resetReports();
    const int written = render(words, bits, exp, str, digitbits, step, align, lower, 0);
    fuzz::require(fuzz::reportCount() == (badDigits ? 1 : 0), "text report count");
    fuzz::require(written == queried, "text: written count differs from the queried count");

    // Characters sit at str, str - step, ...; everything else is untouched.
    std::string text;
    std::vector<bool> used(buffer.size(), false);
    for (int i = written - 1; i >= 0; --i) {
        char* const at = str - static_cast<ptrdiff_t>(i) * step;
        used[static_cast<size_t>(at - buffer.data())] = true;
        text += *at;
    }
    for (size_t i = 0; i < buffer.size(); ++i)
        if (!used[i])
            fuzz::require(buffer[i] == guardByte, "text wrote outside its characters");
    if (badDigits)
        return 0;
    for (char c : text)
        fuzz::require(std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '*' || c == '^' ||
                          c == '-',
                      "text holds a character outside its alphabet");
    const std::string expected = expectedText(second, words, bits, exp, digitbits, align, lower != 0);
    // With step 0 every character lands on str: only the last one remains.
    if (step != 0 && !expected.empty() && text != expected)
        fuzz::fail(std::string(second ? "fix2str2" : "fix2str1") + " gave \"" + text + "\", expected \"" +
                   expected + "\" for " + model::hexWords(words, 5) + " bits " + std::to_string(bits) +
                   " exp " + std::to_string(exp) + " digitbits " + std::to_string(digitbits) + " step " +
                   std::to_string(step) + " align " + std::to_string(align) + " lower " +
                   std::to_string(lower));
    return 0;
}
