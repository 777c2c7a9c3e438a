#include "text_reference.h"

#include <cstdint>

namespace reference {
namespace {

// Binary digits as radix-2^k digits: zeros appended below when grouped from
// the top, then zeros prepended to whole digits.
std::string grouped(std::string binary, int k, bool fromTop, bool lower)
{
    const char* const alphabet = lower ? "0123456789abcdef" : "0123456789ABCDEF";
    const size_t width = static_cast<size_t>(k);
    if (fromTop)
        binary.append((width - binary.size() % width) % width, '0');
    binary.insert(0, (width - binary.size() % width) % width, '0');
    std::string text;
    for (size_t i = 0; i < binary.size(); i += width) {
        int digit = 0;
        for (size_t j = i; j < i + width; ++j)
            digit = 2 * digit + (binary[j] - '0');
        text += alphabet[digit];
    }
    return text;
}

std::string exponentSuffix(int64_t e)
{
    return e != 0 ? "*2^" + std::to_string(e) : "";
}

}  // namespace

std::string binaryDigits(const mpz_class& m, int bits)
{
    const std::string digits = m.get_str(2);
    return std::string(static_cast<size_t>(bits) - digits.size(), '0') + digits;
}

std::string wholeText(const std::string& binary, int exp, int k, int align, bool lower)
{
    return grouped(binary, k, align != 2, lower) + exponentSuffix(exp);
}

std::string positionalText(const std::string& binary, int exp, int k, int align, bool lower)
{
    const int64_t bits = static_cast<int64_t>(binary.size());
    const bool positional = exp <= 0 && -static_cast<int64_t>(exp) < bits;
    const size_t fractionBits = static_cast<size_t>(positional ? -static_cast<int64_t>(exp) : bits - 1);
    const size_t integerBits = binary.size() - fractionBits;
    std::string text = grouped(binary.substr(0, integerBits), k, align == 1, lower);
    if (fractionBits > 0)
        text += "." + grouped(binary.substr(integerBits), k, align != 2, lower);
    return text + (positional ? "" : "*2^" + std::to_string(static_cast<int64_t>(exp) + bits - 1));
}

Rendered render(Renderer fn, const int32_t* words, int bits, int exp, int k, int step, int align, int lower)
{
    const size_t guardBytes = 8;
    Rendered r;
    r.queried = fn(words, bits, exp, nullptr, k, step, align, lower, 1);
    const size_t n = r.queried < 0 ? 0 : static_cast<size_t>(r.queried);
    std::string buffer(n + 2 * guardBytes, '#');
    char* const str = step > 0 ? &buffer[guardBytes + n] - 1 : &buffer[guardBytes];
    r.written = fn(words, bits, exp, str, k, step, align, lower, 0);
    r.text = buffer.substr(guardBytes, n);
    if (step < 0)
        r.text.assign(r.text.rbegin(), r.text.rend());
    const std::string guards(guardBytes, '#');
    r.guardsIntact = buffer.compare(0, guardBytes, guards) == 0 && buffer.compare(guardBytes + n, guardBytes, guards) == 0;
    return r;
}

}  // namespace reference
