// fixpt: raw bit patterns of a format, right-aligned, and the record words
// they occupy (left-aligned, pad bits at the bottom of the lowest word).
#ifndef FIXPT_PATTERN_H
#define FIXPT_PATTERN_H

#include <cstdint>
#include <string>

#include "FixedPoint.h"
#include "lib_fixpoint.h"

/// A pattern of up to 160 bits, right-aligned: words[0] holds bits 0 to 31.
struct Pattern {
    uint32_t words[Fixed::maxWords];
};

/// The bits-bit pattern held in a record of 1 to 160 bits, read from its
/// words (never through a double); pad bits take no part.
Pattern patternOf(const Fixed::fixed& record);

/// A record of the given header whose mantissa is the pattern's low bits
/// bits (1 to 160), left-aligned, pad bits and unused words zero.
Fixed::fixed recordOf(const Pattern& pattern, int bits, int exp, int sign);

/// Whether any bit at or above position bits is set.
bool hasBitsAbove(const Pattern& pattern, int bits);

/// The low bits bits as "0x" and ceil(bits / 4) hexadecimal digits.
std::string patternHex(const Pattern& pattern, int bits);

/// A record's words in use as stored, top word first, "_" between words.
std::string wordsHex(const Fixed::fixed& record);

/// Reads hexadecimal digits (an optional 0x prefix, "_" between digits
/// allowed) into a pattern. Returns false for text that is not such a
/// pattern; sets *tooWide when a set bit lies above 160 bits.
bool readPattern(const std::string& text, Pattern* pattern, bool* tooWide);

#endif  // FIXPT_PATTERN_H
