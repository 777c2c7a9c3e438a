// fixpt: what the command line asks for, parsed and validated.
#ifndef FIXPT_REQUEST_H
#define FIXPT_REQUEST_H

#include <QString>
#include <QStringList>

#include "FixedPoint.h"

struct Format {
    int intBits;
    int fracBits;
    CFixedPoint::SIGN sign;
    CFixedPoint::ROUND round;
    CFixedPoint::WRAP wrap;
};

struct Request {
    double value;   // the single value (unused in batch mode)
    bool batch;     // values come from stdin, one per line, CSV goes to stdout
    bool strict;    // a saturated value makes the exit status 1
    Format format;
    bool warn;
    CFixedPoint::MAXVALUE maxValue;
    bool reformat;
    Format target;  // the format of --to, when reformat is set
    int digitBits;  // bits per digit of the printed text: 1 to 4
    int align;      // digit grouping of the printed text: 0, 1 or 2
};

/// Exit statuses of the tool.
enum ExitStatus { EXIT_OK = 0, EXIT_SATURATED = 1, EXIT_USAGE = 2 };

/// Parses the arguments (the program name first). Prints the help and exits 0
/// for --help; prints a message with the usage and exits 2 for anything
/// malformed.
Request parseRequest(const QStringList& arguments);

/// Prints "fixpt: message" to stderr and exits with the usage status.
[[noreturn]] void usageFailure(const QString& message);

#endif  // FIXPT_REQUEST_H
