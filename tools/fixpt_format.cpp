// Formats of fixpt. Widths and bit counts are summed in 64 bits: the user's
// s2147483647.1 must be refused for its width, not wrap into another one.
#include "fixpt_format.h"

#include <QRegularExpression>

#include "lib_fixpoint.h"

namespace {

// One bit count as a 64-bit integer; ok is false when it is none.
qint64 readCount(const QString& text, bool* ok)
{
    return text.toLongLong(ok, 10);
}

QString checkBits(qint64 intBits, qint64 fracBits, const QString& name)
{
    const qint64 width = intBits + fracBits;
    if (!Fixed::isMantissaWidth(width))
        return QStringLiteral("format %1 has %2 bits; a format holds 1 to %3 bits")
            .arg(name)
            .arg(width)
            .arg(Fixed::maxBits);
    if (fracBits < -maxFractionMagnitude || fracBits > maxFractionMagnitude)
        return QStringLiteral("format %1 has %2 fractional bits; the tool takes %3 to %4")
            .arg(name)
            .arg(fracBits)
            .arg(-maxFractionMagnitude)
            .arg(maxFractionMagnitude);
    return QString();
}

}  // namespace

bool isCompactFormat(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^[su][+-]?\\d+\\.[+-]?\\d+$"));
    return pattern.match(text).hasMatch();
}

QString readFormat(const QStringList& parts, Format* format)
{
    QString intText;
    QString fracText;
    QString name;
    if (parts.size() == 1 && isCompactFormat(parts.at(0))) {
        name = parts.at(0);
        format->sign = name.at(0) == QLatin1Char('u') ? CFixedPoint::SIGN_UNSIGNED : CFixedPoint::SIGN_SIGNED;
        const int point = name.indexOf(QLatin1Char('.'));
        intText = name.mid(1, point - 1);
        fracText = name.mid(point + 1);
    } else if (parts.size() == 2) {
        intText = parts.at(0);
        fracText = parts.at(1);
        name = parts.join(QLatin1Char(' '));
    } else {
        return QStringLiteral("expected a format: INTBITS FRACBITS, or s4.12 / u8.0, not '%1'")
            .arg(parts.join(QLatin1Char(' ')));
    }
    bool intOk = false;
    bool fracOk = false;
    const qint64 intBits = readCount(intText, &intOk);
    const qint64 fracBits = readCount(fracText, &fracOk);
    if (!intOk || !fracOk)
        return QStringLiteral("format %1: INTBITS and FRACBITS must be integers").arg(name);
    const QString refusal = checkBits(intBits, fracBits, name);
    if (!refusal.isEmpty())
        return refusal;
    // Both fit an int: the width lies in 1..160 and fracBits within the bound.
    format->intBits = static_cast<int>(intBits);
    format->fracBits = static_cast<int>(fracBits);
    return QString();
}

std::string compactName(const Format& format)
{
    return (format.sign == CFixedPoint::SIGN_UNSIGNED ? "u" : "s") + std::to_string(format.intBits) + "." +
           std::to_string(format.fracBits);
}
