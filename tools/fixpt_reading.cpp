// Readings of one record. The exact ones come from the words; the class's
// are shown beside them because the firmware sees those.
#include "fixpt_reading.h"

#include <cstdio>
#include <vector>

#include "fixpt_exact.h"
#include "fixpt_pattern.h"
#include "lib_fixpoint.h"

namespace {

// GetValueAs_uint64_t's result as a pattern of the record's width, or empty
// where it is the pattern itself or does not exist (above 64 bits the class
// reports the call instead).
std::string classPatternText(const Fixed::fixed& record, const Pattern& pattern)
{
    if (record.bits > 64)
        return std::string();
    const uint64_t value = CFixedPoint(record).GetValueAs_uint64_t();
    Pattern reading = {};
    reading.words[0] = static_cast<uint32_t>(value);
    reading.words[1] = static_cast<uint32_t>(value >> 32);
    if (reading.words[0] == pattern.words[0] && reading.words[1] == pattern.words[1])
        return std::string();
    return patternHex(reading, record.bits);
}

// Sized by a length query first; the terminator is ours to add.
std::string positionalText(const Fixed::fixed& record, int digitBits, int align)
{
    const int length = Fixed::fix2str2(record.val, record.bits, record.exp, nullptr, digitBits, 1, align, 0, 1);
    if (length <= 0)
        return std::string();
    std::vector<char> text(static_cast<size_t>(length), '\0');
    Fixed::fix2str2(record.val, record.bits, record.exp, &text[static_cast<size_t>(length) - 1], digitBits, 1,
                    align, 0, 0);
    return std::string(text.begin(), text.end());
}

}  // namespace

std::string doubleText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string formatText(const Fixed::fixed& record)
{
    return std::string(record.sign != 0 ? "signed " : "unsigned ") + std::to_string(record.bits) + " bits, exp " +
           std::to_string(record.exp);
}

Reading readingOf(const Fixed::fixed& record, int digitBits, int align)
{
    const Pattern pattern = patternOf(record);
    const Dyadic exact = exactOfRecord(record);
    Reading reading;
    reading.raw = patternHex(pattern, record.bits);
    reading.integer = decimalText(mantissaOfRecord(record));
    reading.exact = decimalText(exact);
    reading.nearest = doubleText(nearestDouble(exact));
    CFixedPoint value(record);
    reading.classDouble = doubleText(static_cast<double>(value));
    reading.classPattern = classPatternText(record, pattern);
    reading.text = positionalText(record, digitBits, align);
    return reading;
}
