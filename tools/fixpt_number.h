// fixpt: numbers as the C library's strtod reads them.
#ifndef FIXPT_NUMBER_H
#define FIXPT_NUMBER_H

#include <string>

/// A number read from text.
struct Number {
    double value;
    bool beyondRange;  // the magnitude exceeded the double range: value is +-inf
};

/// Reads the whole text as strtod does (decimal or hexadecimal, inf,
/// Infinity, nan, with a sign); no surrounding blanks. Returns false for
/// anything else, the empty text included.
bool readNumber(const std::string& text, Number* number);

#endif  // FIXPT_NUMBER_H
