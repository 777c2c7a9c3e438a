// The host firmware's error-report function, as the FixedPoint library sees
// it. The firmware's utility library defines it; this repository only ships a
// stand-in (KV_ProcessErrorString.cpp) for its own tools. The header is
// installed with the library, so that any definition of the function includes
// this declaration and the compiler checks that it matches what the library
// calls.
#ifndef KV_PROCESSERRORSTRING_H
#define KV_PROCESSERRORSTRING_H

#include <QString>

/// Message types of the host's report function. The FixedPoint library passes
/// KV_MESSAGE_TYPE_2 for every report, errors and warnings alike.
enum e_KV_MESSAGE_TYPE {
    KV_MESSAGE_TYPE_0 = 0,
    KV_MESSAGE_TYPE_1 = 1,
    KV_MESSAGE_TYPE_2 = 2
};

void _KV_ProcessErrorString(const QString& file, int line,
                            const QString& function, QString& message,
                            e_KV_MESSAGE_TYPE type);

#endif  // KV_PROCESSERRORSTRING_H
