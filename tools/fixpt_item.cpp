// Input items of fixpt, with the refusals that name what was wrong.
#include "fixpt_item.h"

#include <cmath>

namespace {

QString quoted(const std::string& text)
{
    return QStringLiteral("'%1'").arg(QString::fromLocal8Bit(text.data(), static_cast<int>(text.size())));
}

QString readPatternItem(const std::string& text, const Format& format, Item* item)
{
    bool tooWide = false;
    if (!readPattern(text, &item->pattern, &tooWide))
        return QStringLiteral("not a hexadecimal pattern: %1").arg(quoted(text));
    if (tooWide || hasBitsAbove(item->pattern, format.bits()))
        return QStringLiteral("pattern %1 has bits above the %2 bits of %3")
            .arg(quoted(text))
            .arg(format.bits())
            .arg(QString::fromStdString(compactName(format)));
    return QString();
}

}  // namespace

QString readItem(Mode mode, const std::string& text, const Format& format, Item* item)
{
    if (mode == Mode::Decode)
        return readPatternItem(text, format, item);
    if (!readNumber(text, &item->number))
        return QStringLiteral("not a number: %1").arg(quoted(text));
    if (mode == Mode::Fit && !std::isfinite(item->number.value))
        return QStringLiteral("a range needs finite numbers, not %1").arg(quoted(text));
    return QString();
}
