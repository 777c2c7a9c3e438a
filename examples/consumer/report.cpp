// This program's own report function, for installs without the stand-in:
// the firmware's utility library would provide it.
#include <QString>

#include <cstdio>

enum e_KV_MESSAGE_TYPE { KV_MESSAGE_TYPE_2 = 2 };

void _KV_ProcessErrorString(const QString& file, int line, const QString& function,
                            QString& message, e_KV_MESSAGE_TYPE type)
{
    std::fprintf(stderr, "report (type %d) from %s line %d in %s: %s\n", static_cast<int>(type),
                 qPrintable(file), line, qPrintable(function), qPrintable(message));
}
