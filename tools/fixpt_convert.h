// fixpt: the conversions the tool performs and what it reports about them.
#ifndef FIXPT_CONVERT_H
#define FIXPT_CONVERT_H

#include <string>

#include "FixedPoint.h"
#include "fixpt_request.h"

/// One quantised or converted value with what the tool prints about it.
struct Outcome {
    Fixed::fix record;
    double value;      // the record read back as a double
    double error;      // value minus what it was made from
    bool saturated;    // the exact rounding lay outside the format and was clamped
};

/// value quantised into the request's format.
Outcome quantise(const Request& request, double value);

/// source re-quantised into the request's --to format.
Outcome convert(const Request& request, const Outcome& source);

/// The raw pattern in hexadecimal: right-aligned up to 64 bits, the mantissa
/// words from the top down (as one number) above.
std::string rawHex(const Fixed::fix& record);

/// The mantissa as positional text in the request's radix and grouping.
std::string valueText(const Fixed::fix& record, int digitBits, int align);

#endif  // FIXPT_CONVERT_H
