// fixpt: exact values. Every fixed-point value and every finite double is a
// finite binary fraction, so the tool can print them, and their differences,
// as exact decimals without passing them through a double.
#ifndef FIXPT_EXACT_H
#define FIXPT_EXACT_H

#include <cstdint>
#include <string>
#include <vector>

#include "FixedPoint.h"

/// (-1)^negative x magnitude x 2^exp, the magnitude in 32-bit words, the
/// lowest first.
struct Dyadic {
    bool negative = false;
    std::vector<uint32_t> magnitude;
    int64_t exp = 0;
};

/// The record's mantissa read from its words (two's complement when its sign
/// is set), times 2^exp. The record's width must be 1 to 160.
Dyadic exactOfRecord(const Fixed::fixed& record);

/// The record's mantissa M alone, as the integer a register holds.
Dyadic mantissaOfRecord(const Fixed::fixed& record);

/// A finite double, exactly.
Dyadic exactOfDouble(double value);

/// (-1)^negative x magnitude x 2^exp for a magnitude of up to 64 bits.
Dyadic exactOfInteger(bool negative, uint64_t magnitude, int64_t exp);

/// a - b, exactly.
Dyadic difference(const Dyadic& a, const Dyadic& b);

/// The exact decimal: "-1.5", "0.000244140625", "4294967296"; no exponent.
std::string decimalText(const Dyadic& value);

/// The double nearest to the value (ties to even), as strtod rounds.
double nearestDouble(const Dyadic& value);

#endif  // FIXPT_EXACT_H
