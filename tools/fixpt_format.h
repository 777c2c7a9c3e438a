// fixpt: fixed-point formats as the user writes them, checked before any of
// them reaches the library.
#ifndef FIXPT_FORMAT_H
#define FIXPT_FORMAT_H

#include <QString>
#include <QStringList>

#include <string>

#include "FixedPoint.h"

struct Format {
    int intBits = 0;
    int fracBits = 0;
    CFixedPoint::SIGN sign = CFixedPoint::SIGN_SIGNED;
    CFixedPoint::ROUND round = CFixedPoint::ROUND_NEAREST;
    CFixedPoint::WRAP wrap = CFixedPoint::WRAP_SATURATE;

    int bits() const { return intBits + fracBits; }
};

/// Fractional bits the tool accepts either way. Beyond them no double reaches
/// the format, and exact decimals would run to many thousands of digits.
constexpr int maxFractionMagnitude = 4096;

/// Whether text is a compact format: a sign letter, integer bits, a point and
/// fractional bits (s4.12, u8.0, s-2.10).
bool isCompactFormat(const QString& text);

/// Reads a format given as one compact argument (its letter sets the sign)
/// or as the two parts INTBITS and FRACBITS (the sign is kept). Returns an
/// empty text, or why the format is refused: malformed numbers, a width
/// outside 1 to 160, fractional bits beyond maxFractionMagnitude.
QString readFormat(const QStringList& parts, Format* format);

/// The compact name: "s4.12".
std::string compactName(const Format& format);

#endif  // FIXPT_FORMAT_H
