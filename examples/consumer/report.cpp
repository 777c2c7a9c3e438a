// This program's own report function, for installs without the stand-in:
// the firmware's utility library would provide it. The installed
// KV_ProcessErrorString.h declares it exactly as the library calls it.
#include <KV_ProcessErrorString.h>

#include <cstdio>

void _KV_ProcessErrorString(const QString& file, int line, const QString& function,
                            QString& message, e_KV_MESSAGE_TYPE type)
{
    std::fprintf(stderr, "%s:%d: [type %d] %s: %s\n", qPrintable(file), line,
                 static_cast<int>(type), qPrintable(function), qPrintable(message));
}
