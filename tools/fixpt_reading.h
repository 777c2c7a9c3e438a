// fixpt: the texts the tool prints for one record: its exact readings and
// the class's own.
#ifndef FIXPT_READING_H
#define FIXPT_READING_H

#include <string>

#include "FixedPoint.h"

struct Reading {
    std::string raw;           // the width's pattern, right-aligned, zero-padded
    std::string integer;       // the mantissa as a signed (or unsigned) integer
    std::string exact;         // the value as an exact decimal
    std::string nearest;       // the double nearest to the exact value
    std::string classDouble;   // the class's operator double
    std::string classPattern;  // GetValueAs_uint64_t where it differs from raw, else empty
    std::string text;          // the positional text of the core's renderer
};

/// The readings of a record of 1 to 160 bits.
Reading readingOf(const Fixed::fixed& record, int digitBits, int align);

/// "signed 16 bits, exp -12".
std::string formatText(const Fixed::fixed& record);

/// A double as the tool prints it: %.17g, so that it reads back unchanged.
std::string doubleText(double value);

#endif  // FIXPT_READING_H
