// --info of fixpt. The bounds are built from the format's definition (the
// two's complement or unsigned range of its width), independently of the
// library's saturation code, which the tests hold against them.
#include "fixpt_info.h"

#include "fixpt_exact.h"
#include "fixpt_pattern.h"
#include "fixpt_single.h"
#include "lib_fixpoint.h"

namespace {

// The pattern with the bits [from, to) set.
Pattern bitRange(int from, int to)
{
    Pattern pattern = {};
    for (int bit = from; bit < to; ++bit)
        pattern.words[bit / 32] |= 1u << (bit % 32);
    return pattern;
}

void printBound(std::FILE* output, const char* name, const Format& format, const Pattern& pattern)
{
    const Fixed::fixed record = recordOf(pattern, format.bits(), -format.fracBits, format.sign);
    const std::string key = name;
    printField(output, key, decimalText(exactOfRecord(record)));
    printField(output, key + " raw", patternHex(pattern, format.bits()));
    printField(output, key + " words", wordsHex(record));
}

}  // namespace

std::string powerOfTwoText(int64_t exp)
{
    return decimalText(exactOfInteger(false, 1, exp));
}

void printInfo(const Format& format, std::FILE* output)
{
    const int bits = format.bits();
    const bool isSigned = format.sign != CFixedPoint::SIGN_UNSIGNED;
    printField(output, "format", compactName(format));
    printField(output, "signed", isSigned ? "yes" : "no");
    printField(output, "width", std::to_string(bits) + " bits");
    printField(output, "words", std::to_string(Fixed::wordCount(bits)));
    printField(output, "exponent", std::to_string(-format.fracBits));
    printField(output, "resolution", powerOfTwoText(-format.fracBits));
    printBound(output, "minimum", format, isSigned ? bitRange(bits - 1, bits) : Pattern{});
    printBound(output, "maximum", format, bitRange(0, isSigned ? bits - 1 : bits));
}
