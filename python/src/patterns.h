// Raw patterns: a format's bits-bit mantissa pattern as a register holds it,
// right-aligned (bit 0 is the mantissa's lowest bit, two's complement for a
// negative signed mantissa), against the record's left-aligned words.
#ifndef FIXPT_PYTHON_PATTERNS_H
#define FIXPT_PYTHON_PATTERNS_H

#include <pybind11/pybind11.h>

#include <cstdint>

#include "FixedPoint.h"

namespace fixpt {

/// A pattern of up to 160 bits, least significant word first.
struct Pattern {
    uint32_t words[5];
};

/// The record's top `bits` bits, right-aligned: the pad bits below the
/// mantissa are dropped, words above the width are zero. The record's width
/// must lie within 1 to 160.
Pattern patternOf(const Fixed::fixed& record);
/// The same for a width of at most 64 bits. Inline: it runs once per
/// element of the array calls.
inline uint64_t pattern64Of(const Fixed::fixed& record)
{
    const uint64_t low = static_cast<uint32_t>(record.val[0]);
    const uint64_t words = record.bits > 32 ? (uint64_t{static_cast<uint32_t>(record.val[1])} << 32) | low : low;
    const int pad = (record.bits > 32 ? 64 : 32) - record.bits;
    return words >> pad;
}

/// A 64-bit pattern in words.
inline Pattern patternOf64(uint64_t pattern)
{
    return {{static_cast<uint32_t>(pattern), static_cast<uint32_t>(pattern >> 32), 0u, 0u, 0u}};
}

/// Whether the pattern has no bit at or above `bits`.
bool fitsWidth(const Pattern& pattern, int bits);
inline bool fitsWidth(uint64_t pattern, int bits)
{
    return bits >= 64 || (pattern >> bits) == 0;
}

/// A record of the format holding the pattern (which must fit the width)
/// left-aligned, pad bits and unused words zero.
Fixed::fixed recordOf(const Pattern& pattern, int bits, int exp, int sign);
/// The same for a width of at most 64 bits.
Fixed::fixed recordOf64(uint64_t pattern, int bits, int exp, int sign);

/// The pattern as a Python int.
pybind11::int_ toPythonInt(const Pattern& pattern);
/// A non-negative Python integer (anything with __index__) of at most 160
/// bits as a pattern; raises ValueError for other integers, TypeError for
/// non-integers.
Pattern patternFromPython(pybind11::handle value);

}  // namespace fixpt

#endif  // FIXPT_PYTHON_PATTERNS_H
