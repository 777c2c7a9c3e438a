// fixpt: what the command line asks for, parsed and validated. Nothing here
// prints or exits: refusals come back as text, so that the parser can be
// driven by a fuzzer as well as by main().
#ifndef FIXPT_REQUEST_H
#define FIXPT_REQUEST_H

#include <QString>
#include <QStringList>

#include "FixedPoint.h"
#include "fixpt_format.h"
#include "fixpt_item.h"

/// --fit: the range to hold and how the width is chosen.
struct FitRequest {
    double low = 0.0;     // MIN (single mode)
    double high = 0.0;    // MAX (single mode)
    int bits = 0;         // --bits N, or 0 with --resolution
    double resolution = 0.0;
    bool forceSigned = false;
};

struct Request {
    Mode mode = Mode::Quantise;
    bool batch = false;    // items come from stdin, one per line; CSV goes to stdout
    bool strict = false;   // a saturated or flagged value makes the exit status 1
    bool viaWords = false; // decode through the class's raw-word constructor
    Item item;             // the single VALUE or PATTERN
    Format format;
    bool warn = false;
    CFixedPoint::MAXVALUE maxValue = CFixedPoint::MAXVALUE_2N_MINUS_1;
    bool reformat = false;
    Format target;         // the format of --to, when reformat is set
    int digitBits = 4;     // bits per digit of the printed text: 1 to 4
    int align = 0;         // digit grouping of the printed text: 0, 1 or 2
    FitRequest fit;
};

/// Exit statuses of the tool.
enum ExitStatus { EXIT_OK = 0, EXIT_FLAGGED = 1, EXIT_USAGE = 2 };

struct ParsedRequest {
    enum Status { Run, Help, Version, Usage };
    Status status = Usage;
    Request request;
    QString refusal;  // why the arguments were refused (Usage)
};

/// Parses the arguments (the program name first).
ParsedRequest parseRequest(const QStringList& arguments);

/// The text --help prints, naming the program "fixpt". Needs the
/// application object.
QString helpText();

#endif  // FIXPT_REQUEST_H
