#include "fixed_report.h"

#include <QIODevice>
#include <QString>
#include <QTextStream>

#include "KV_ProcessErrorString.h"

namespace Fixed {
namespace {

// QString::fromAscii exists only in Qt 4; Qt 5 and 6 spell the same 8-bit
// conversion fromLatin1. Every 8-bit text of a report goes through here.
QString fromEightBitText(const char* text)
{
#if QT_VERSION < 0x050000
    return QString::fromAscii(text);
#else
    return QString::fromLatin1(text);
#endif
}

void streamPiece(QTextStream& stream, const ReportPiece& piece)
{
    switch (piece.kind()) {  // GCOVR_EXCL_BR_LINE: every kind has its case; no other value exists
    case ReportPiece::Text:
        stream << piece.text();
        break;
    case ReportPiece::Integer:
        stream << piece.integer();
        break;
    case ReportPiece::Real:
        stream << piece.real();
        break;
    }
}

}  // namespace

void report(const char* file, int line, const char* function,
            std::initializer_list<ReportPiece> pieces)
{
    QString message;
    QTextStream stream(&message, QIODevice::ReadWrite);
    for (const ReportPiece& piece : pieces)
        streamPiece(stream, piece);
    stream.flush();
    const QString fileText = fromEightBitText(file);
    const QString functionText = fromEightBitText(function);
    _KV_ProcessErrorString(fileText, line, functionText, message,
                           static_cast<e_KV_MESSAGE_TYPE>(2));
}

}  // namespace Fixed
