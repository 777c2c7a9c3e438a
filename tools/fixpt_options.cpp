// Options of fixpt. One table says which mode each option serves, so that an
// option given where it would be ignored is refused instead.
#include "fixpt_options.h"

namespace {

enum ModeBit : unsigned { quantise = 1, decode = 2, info = 4, fit = 8 };
constexpr unsigned values = quantise | decode;

struct OptionEntry {
    const char* name;
    const char* valueName;  // nullptr for a flag
    const char* defaultValue;
    unsigned modes;
    const char* help;
};

const OptionEntry options[] = {
    {"unsigned", nullptr, nullptr, values | info, "Make FORMAT unsigned (INTBITS FRACBITS form; default signed)."},
    {"round", "mode", "nearest", values | fit, "Rounding: floor or nearest, ties up (default nearest)."},
    {"overflow", "mode", "saturate", values, "Overflow: saturate or wrap (default saturate)."},
    {"warn", nullptr, nullptr, quantise,
     "Flag an integer part outside INTBITS (the class's PreDecimalSufficient test) in a note, "
     "with the class's own warning on stderr."},
    {"max", "bound", "2n-1", quantise, "Largest integer part --warn accepts: 2n-1 or 2n."},
    {"to", "format", nullptr, values,
     "Also reformat the result into a second format (u8.4, or INTBITS,FRACBITS) with the class's "
     "reformat constructor: it rounds the first result again and reads it under the second "
     "format's signedness."},
    {"to-unsigned", nullptr, nullptr, values, "Make the --to format unsigned (INTBITS,FRACBITS form)."},
    {"to-round", "mode", "nearest", values, "Rounding of --to: floor or nearest (default nearest)."},
    {"to-overflow", "mode", "saturate", values, "Overflow of --to: saturate or wrap (default saturate)."},
    {"radix", "radix", "16", values, "Radix of the printed text: 2, 4, 8 or 16 (default 16)."},
    {"align", "align", "0", values,
     "Digit grouping of the printed text: 0 from the radix point, 1 integer digits from their top "
     "bit, 2 each part from its lowest bit (default 0)."},
    {"raw", nullptr, nullptr, decode,
     "Decode: VALUE is a raw pattern in hexadecimal (0x optional, _ allowed), right-aligned in "
     "FORMAT's width; the value it holds is printed exactly."},
    {"via-words", nullptr, nullptr, decode,
     "With --raw: build the value with the class's raw-word constructor (formats of up to 64 bits; "
     "above 53 bits it keeps 53 significant bits)."},
    {"info", nullptr, nullptr, info,
     "Describe FORMAT: width, words, exponent, range, resolution and saturation patterns."},
    {"fit", nullptr, nullptr, fit,
     "Propose a format for the range MIN MAX (or every value read with --batch): with --bits the "
     "one with the fewest integer bits, with --resolution the narrowest."},
    {"bits", "n", nullptr, fit, "With --fit: the width of the format, 1 to 160."},
    {"resolution", "r", nullptr, fit, "With --fit: the largest step allowed between values."},
    {"signed", nullptr, nullptr, fit, "With --fit: signed even when MIN is not negative."},
    {"batch", nullptr, nullptr, values | fit,
     "Read one value (or pattern with --raw) per line from stdin, blank lines and # comments "
     "skipped; write CSV to stdout. With --fit, propose one format for all values."},
    {"strict", nullptr, nullptr, values,
     "Exit with status 1 when any value saturated or was flagged in a note."},
};

unsigned modeBit(Mode mode)
{
    switch (mode) {
    case Mode::Quantise:
        return quantise;
    case Mode::Decode:
        return decode;
    case Mode::Info:
        return info;
    case Mode::Fit:
        return fit;
    }
    return 0;
}

}  // namespace

void describeOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Quantise VALUE into a fixed-point format and show the exact result, decode a raw "
        "pattern (--raw), describe a format (--info) or propose one (--fit).\n"
        "Modes: fixpt VALUE FORMAT; fixpt --raw PATTERN FORMAT; fixpt --info FORMAT; fixpt --fit "
        "MIN MAX --bits N or --resolution R. With --batch the values (or patterns) come from "
        "stdin and FORMAT (or nothing, with --fit) is the only argument.\n"
        "FORMAT is INTBITS FRACBITS (integer bits include the sign bit of a signed format) or "
        "compactly s4.12, u8.0, s-2.10; its width is 1 to 160 bits.\n"
        "Numbers are read as C's strtod reads them (1e-3, 0x1p-4, inf, -nan).\n"
        "Exit status: 0 done, 1 a value saturated or was flagged under --strict, 2 usage error."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("VALUE"),
                                 QStringLiteral("The number to quantise, or the pattern to decode with --raw."));
    parser.addPositionalArgument(QStringLiteral("FORMAT"), QStringLiteral("INTBITS FRACBITS, or s4.12 / u8.0."));
    for (const OptionEntry& entry : options) {
        QCommandLineOption option(QString::fromLatin1(entry.name), QString::fromLatin1(entry.help));
        if (entry.valueName != nullptr)
            option.setValueName(QString::fromLatin1(entry.valueName));
        if (entry.defaultValue != nullptr)
            option.setDefaultValue(QString::fromLatin1(entry.defaultValue));
        parser.addOption(option);
    }
}

bool takesValue(const QString& option)
{
    for (const OptionEntry& entry : options) {
        if (entry.valueName != nullptr && option == QLatin1String("--") + QLatin1String(entry.name))
            return true;
    }
    return false;
}

QString optionOutsideMode(const QCommandLineParser& parser, Mode mode)
{
    for (const OptionEntry& entry : options) {
        if ((entry.modes & modeBit(mode)) == 0 && parser.isSet(QString::fromLatin1(entry.name)))
            return QString::fromLatin1(entry.name);
    }
    return QString();
}
