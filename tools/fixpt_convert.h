// fixpt: the conversions the tool performs and what it flags about them.
#ifndef FIXPT_CONVERT_H
#define FIXPT_CONVERT_H

#include <string>

#include "FixedPoint.h"
#include "fixpt_number.h"
#include "fixpt_pattern.h"
#include "fixpt_request.h"

/// One quantised, decoded or converted value.
struct Outcome {
    Fixed::fixed record = {};
    bool saturated = false;  // the quantiser wrote a saturation pattern
    double error = 0.0;      // the value minus what it was made from, exact until rounded to print
    std::string note;        // what the tool flags about it ("; " between items), or empty
};

/// The input quantised into the request's format by the record layer.
Outcome quantise(const Request& request, const Number& input);

/// The value a pattern holds in the request's format: exact, or through the
/// class's raw-word constructor with --via-words.
Outcome decode(const Request& request, const Pattern& pattern);

/// source reformatted into the request's --to format, as the class's reformat
/// constructor does: the source is read under the target's signedness.
Outcome convert(const Request& request, const Outcome& source);

/// Whether the outcome counts under --strict.
inline bool isFlagged(const Outcome& outcome) { return outcome.saturated || !outcome.note.empty(); }

#endif  // FIXPT_CONVERT_H
