// Stand-in for the host firmware's report function: one line per report on
// stderr, "file:line: function: message". The firmware links its own utility
// library instead.
#include "KV_ProcessErrorString.h"

#include <cstdio>

void _KV_ProcessErrorString(const QString& file, int line,
                            const QString& function, QString& message,
                            e_KV_MESSAGE_TYPE type)
{
    (void)type;
    std::fprintf(stderr, "%s:%d: %s: %s\n", file.toLocal8Bit().constData(), line,
                 function.toLocal8Bit().constData(),
                 message.toLocal8Bit().constData());
}
