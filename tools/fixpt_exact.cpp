// Exact values of fixpt: small arbitrary-precision binary fractions and
// their decimal text. The magnitudes are at most a few thousand bits (a
// record's 160 bits shifted across the exponents the tool accepts), so plain
// schoolbook arithmetic is fast enough.
#include "fixpt_exact.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "fixpt_pattern.h"

namespace {

using Words = std::vector<uint32_t>;
constexpr uint32_t decimalBase = 1000000000u;  // nine decimal digits per limb

void trim(Words& words)
{
    while (!words.empty() && words.back() == 0)
        words.pop_back();
}

Words shiftedLeft(const Words& words, int64_t shift)
{
    Words result(static_cast<size_t>(shift / 32), 0u);
    const int bits = static_cast<int>(shift % 32);
    uint32_t carry = 0;
    for (uint32_t word : words) {
        result.push_back(word << bits | carry);
        carry = bits != 0 ? word >> (32 - bits) : 0;
    }
    result.push_back(carry);
    trim(result);
    return result;
}

int compareMagnitudes(const Words& a, const Words& b)
{
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    for (size_t i = a.size(); i-- > 0;) {
        if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    }
    return 0;
}

Words sum(const Words& a, const Words& b)
{
    Words result;
    uint64_t carry = 0;
    for (size_t i = 0; i < std::max(a.size(), b.size()) || carry != 0; ++i) {
        carry += (i < a.size() ? a[i] : 0u) + uint64_t{i < b.size() ? b[i] : 0u};
        result.push_back(static_cast<uint32_t>(carry));
        carry >>= 32;
    }
    trim(result);
    return result;
}

// a - b for a >= b.
Words differenceOfMagnitudes(const Words& a, const Words& b)
{
    Words result;
    int64_t borrow = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        int64_t word = int64_t{a[i]} - (i < b.size() ? int64_t{b[i]} : 0) - borrow;
        borrow = word < 0 ? 1 : 0;
        result.push_back(static_cast<uint32_t>(word + (borrow << 32)));
    }
    trim(result);
    return result;
}

// limbs (base 10^9, lowest first) = limbs x factor + addend.
void multiplyAdd(Words& limbs, uint32_t factor, uint32_t addend)
{
    uint64_t carry = addend;
    for (uint32_t& limb : limbs) {
        carry += uint64_t{limb} * factor;
        limb = static_cast<uint32_t>(carry % decimalBase);
        carry /= decimalBase;
    }
    while (carry != 0) {
        limbs.push_back(static_cast<uint32_t>(carry % decimalBase));
        carry /= decimalBase;
    }
}

// limbs x base^count, in steps whose products stay within 64 bits.
void multiplyByPower(Words& limbs, uint32_t base, uint32_t largestStep, int stepCount, int64_t count)
{
    for (; count >= stepCount; count -= stepCount)
        multiplyAdd(limbs, largestStep, 0);
    uint32_t rest = 1;
    for (; count > 0; --count)
        rest *= base;
    multiplyAdd(limbs, rest, 0);
}

std::string digitsOf(const Words& limbs)
{
    if (limbs.empty())
        return "0";
    std::string text = std::to_string(limbs.back());
    char group[16];
    for (size_t i = limbs.size() - 1; i-- > 0;) {
        std::snprintf(group, sizeof group, "%09u", static_cast<unsigned>(limbs[i]));
        text += group;
    }
    return text;
}

// The decimal digits of magnitude x 2^exp when exp >= 0, of
// magnitude x 5^-exp otherwise (the value times 10^-exp).
std::string scaledDigits(const Words& magnitude, int64_t exp)
{
    Words limbs;
    for (size_t i = magnitude.size(); i-- > 0;) {  // limbs x 2^32 + word, in halves
        multiplyAdd(limbs, 65536u, magnitude[i] >> 16);
        multiplyAdd(limbs, 65536u, magnitude[i] & 0xFFFFu);
    }
    if (exp >= 0)
        multiplyByPower(limbs, 2u, 1u << 29, 29, exp);
    else
        multiplyByPower(limbs, 5u, 1220703125u, 13, -exp);  // 5^13
    return digitsOf(limbs);
}

}  // namespace

Dyadic exactOfRecord(const Fixed::fixed& record)
{
    Dyadic value = mantissaOfRecord(record);
    value.exp = record.exp;
    return value;
}

Dyadic mantissaOfRecord(const Fixed::fixed& record)
{
    Pattern pattern = patternOf(record);
    const int bits = record.bits;
    const bool negative = record.sign != 0 && (pattern.words[(bits - 1) / 32] >> ((bits - 1) % 32) & 1u) != 0;
    Dyadic value;
    value.negative = negative;
    value.magnitude.assign(pattern.words, pattern.words + Fixed::maxWords);
    if (negative) {
        // The magnitude of a negative pattern is 2^bits - pattern.
        Words power((static_cast<size_t>(bits) / 32) + 1, 0u);
        power.back() = 1u << (bits % 32);
        trim(value.magnitude);
        value.magnitude = differenceOfMagnitudes(power, value.magnitude);
    }
    trim(value.magnitude);
    return value;
}

Dyadic exactOfDouble(double value)
{
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(value), &exponent);
    // fraction x 2^53 is an integer of at most 53 bits.
    const auto mantissa = static_cast<uint64_t>(std::ldexp(fraction, 53));
    return exactOfInteger(std::signbit(value), mantissa, int64_t{exponent} - 53);
}

Dyadic exactOfInteger(bool negative, uint64_t magnitude, int64_t exp)
{
    Dyadic value;
    value.negative = negative;
    value.magnitude = {static_cast<uint32_t>(magnitude), static_cast<uint32_t>(magnitude >> 32)};
    value.exp = exp;
    trim(value.magnitude);
    return value;
}

Dyadic difference(const Dyadic& a, const Dyadic& b)
{
    const int64_t exp = std::min(a.exp, b.exp);
    const Words x = shiftedLeft(a.magnitude, a.exp - exp);
    const Words y = shiftedLeft(b.magnitude, b.exp - exp);
    Dyadic result;
    result.exp = exp;
    if (a.negative != b.negative) {  // a - b = a + |b| with a's sign
        result.negative = a.negative;
        result.magnitude = sum(x, y);
    } else if (compareMagnitudes(x, y) >= 0) {
        result.negative = a.negative;
        result.magnitude = differenceOfMagnitudes(x, y);
    } else {
        result.negative = !a.negative;
        result.magnitude = differenceOfMagnitudes(y, x);
    }
    return result;
}

std::string decimalText(const Dyadic& value)
{
    if (value.magnitude.empty())
        return "0";
    std::string digits = scaledDigits(value.magnitude, value.exp);
    if (value.exp < 0) {
        const auto fractionDigits = static_cast<size_t>(-value.exp);
        if (digits.size() <= fractionDigits)
            digits.insert(0, fractionDigits + 1 - digits.size(), '0');
        digits.insert(digits.size() - fractionDigits, 1, '.');
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.')
            digits.pop_back();
    }
    return value.negative ? "-" + digits : digits;
}

double nearestDouble(const Dyadic& value)
{
    // strtod rounds the exact decimal correctly; the text is ASCII digits
    // and one point, read the same in every locale that keeps '.' (the tool
    // sets LC_NUMERIC to "C").
    const std::string text = decimalText(value);
    return std::strtod(text.c_str(), nullptr);
}
