// fixpt: quantise a value into a fixed-point format from the command line.
//
//   fixpt VALUE INTBITS FRACBITS [--unsigned] [--round floor|nearest]
//         [--overflow saturate|wrap] [--warn] [--max 2n-1|2n] [--radix 2|4|8|16]
//         [--to INTBITS,FRACBITS [--to-unsigned] [--to-round floor|nearest]
//          [--to-overflow saturate|wrap]]
//
// Prints the quantised value, the raw pattern (or the mantissa words above
// 64 bits), the value as text in a power-of-two radix (hexadecimal unless
// --radix says otherwise) and the quantisation error. With --to the quantised
// value is then re-quantised into a second format (reading its bits under the
// second format's signedness) and printed the same way. Diagnostics reach
// stderr through the host's report function.
#include <QCoreApplication>
#include <QCommandLineParser>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "FixedPoint.h"
#include "lib_fixpoint.h"

namespace {

struct Format {
    int intBits;
    int fracBits;
    CFixedPoint::SIGN sign;
    CFixedPoint::ROUND round;
    CFixedPoint::WRAP wrap;
};

struct Request {
    double value;
    Format format;
    bool warn;
    CFixedPoint::MAXVALUE maxValue;
    bool reformat;
    Format target;  // the format of --to, when reformat is set
    int digitBits;  // bits per digit of the printed text: 1 to 4
};

[[noreturn]] void usageError(const QCommandLineParser& parser, const QString& message)
{
    std::fprintf(stderr, "fixpt: %s\n\n%s", message.toLocal8Bit().constData(),
                 parser.helpText().toLocal8Bit().constData());
    std::exit(2);
}

// Options that take a value; everything else that does not start with '-'
// followed by a letter is a positional argument (negative numbers included).
const char* const optionsWithValue[] = {"--round", "--overflow", "--max", "--to", "--to-round",
                                        "--to-overflow", "--radix"};

bool takesValue(const QString& argument)
{
    for (const char* option : optionsWithValue) {
        if (argument == QLatin1String(option))
            return true;
    }
    return false;
}

bool isOption(const QString& argument)
{
    return argument.size() > 1 && argument.at(0) == QLatin1Char('-') &&
           !argument.at(1).isDigit() && argument.at(1) != QLatin1Char('.');
}

// Moves positional arguments behind "--" so that negative values such as
// -1.5 are not taken for options.
QStringList separatePositionals(const QStringList& arguments)
{
    QStringList options;
    QStringList positionals;
    options << arguments.value(0);
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (argument == QLatin1String("--")) {
            positionals << arguments.mid(i + 1);
            break;
        }
        if (isOption(argument)) {
            options << argument;
            if (takesValue(argument) && i + 1 < arguments.size())
                options << arguments.at(++i);
        } else {
            positionals << argument;
        }
    }
    return options << QStringLiteral("--") << positionals;
}

int parseInt(const QCommandLineParser& parser, const QString& text, const char* what)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok)
        usageError(parser, QStringLiteral("%1 is not an integer: %2").arg(QLatin1String(what), text));
    return value;
}

template <typename Enum>
Enum parseChoice(const QCommandLineParser& parser, const QString& option, const char* first,
                 const char* second)
{
    const QString text = parser.value(option);
    if (text == QLatin1String(first))
        return static_cast<Enum>(0);
    if (text == QLatin1String(second))
        return static_cast<Enum>(1);
    usageError(parser, QStringLiteral("--%1 takes %2 or %3, not %4")
                           .arg(option, QLatin1String(first), QLatin1String(second), text));
}

// "INTBITS,FRACBITS" of --to.
void parseBitPair(const QCommandLineParser& parser, const QString& text, Format* format)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2)
        usageError(parser, QStringLiteral("--to takes INTBITS,FRACBITS, not %1").arg(text));
    format->intBits = parseInt(parser, parts.at(0), "--to INTBITS");
    format->fracBits = parseInt(parser, parts.at(1), "--to FRACBITS");
}

// The options of one format: signedness, rounding and overflow, each with its
// own option names (prefix "" for the value's format, "to-" for --to).
Format parseFormatOptions(const QCommandLineParser& parser, const QString& prefix)
{
    Format format;
    format.intBits = 0;
    format.fracBits = 0;
    format.sign = parser.isSet(prefix + QStringLiteral("unsigned")) ? CFixedPoint::SIGN_UNSIGNED
                                                                    : CFixedPoint::SIGN_SIGNED;
    format.round = parseChoice<CFixedPoint::ROUND>(parser, prefix + QStringLiteral("round"), "floor",
                                                   "nearest");
    format.wrap = parseChoice<CFixedPoint::WRAP>(parser, prefix + QStringLiteral("overflow"), "saturate",
                                                 "wrap");
    return format;
}

void addFormatOptions(QCommandLineParser& parser, const QString& prefix, const QString& whose)
{
    parser.addOption({prefix + QStringLiteral("unsigned"),
                      QStringLiteral("Make %1 unsigned (default: signed).").arg(whose)});
    parser.addOption({prefix + QStringLiteral("round"),
                      QStringLiteral("Rounding of %1: floor or nearest (default nearest).").arg(whose),
                      QStringLiteral("mode"), QStringLiteral("nearest")});
    parser.addOption({prefix + QStringLiteral("overflow"),
                      QStringLiteral("Overflow of %1: saturate or wrap (default saturate).").arg(whose),
                      QStringLiteral("mode"), QStringLiteral("saturate")});
}

// Bits per digit of a power-of-two radix.
int parseRadix(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("radix"));
    const int radixes[] = {2, 4, 8, 16};
    for (int digitBits = 1; digitBits <= 4; ++digitBits) {
        if (text == QString::number(radixes[digitBits - 1]))
            return digitBits;
    }
    usageError(parser, QStringLiteral("--radix takes 2, 4, 8 or 16, not %1").arg(text));
}

Request parseRequest(QCommandLineParser& parser, const QStringList& arguments)
{
    parser.setApplicationDescription(QStringLiteral("Quantise VALUE into a fixed-point format."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("VALUE"), QStringLiteral("The number to quantise."));
    parser.addPositionalArgument(QStringLiteral("INTBITS"),
                                 QStringLiteral("Integer bits, the sign bit included when signed."));
    parser.addPositionalArgument(QStringLiteral("FRACBITS"), QStringLiteral("Fractional bits."));
    addFormatOptions(parser, QString(), QStringLiteral("the format"));
    parser.addOption({QStringLiteral("warn"),
                      QStringLiteral("Report an integer part that does not fit INTBITS.")});
    parser.addOption({QStringLiteral("max"),
                      QStringLiteral("Largest integer part accepted by --warn: 2n-1 or 2n."),
                      QStringLiteral("bound"), QStringLiteral("2n-1")});
    parser.addOption({QStringLiteral("to"),
                      QStringLiteral("Re-quantise the value into INTBITS,FRACBITS as well."),
                      QStringLiteral("bits")});
    addFormatOptions(parser, QStringLiteral("to-"), QStringLiteral("the --to format"));
    parser.addOption({QStringLiteral("radix"),
                      QStringLiteral("Radix of the printed text: 2, 4, 8 or 16 (default 16)."),
                      QStringLiteral("radix"), QStringLiteral("16")});
    if (!parser.parse(separatePositionals(arguments)))
        usageError(parser, parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        std::printf("%s", parser.helpText().toLocal8Bit().constData());
        std::exit(0);
    }
    const QStringList positionals = parser.positionalArguments();
    if (positionals.size() != 3)
        usageError(parser, QStringLiteral("expected VALUE INTBITS FRACBITS"));

    Request request;
    bool ok = false;
    request.value = positionals.at(0).toDouble(&ok);
    if (!ok)
        usageError(parser, QStringLiteral("VALUE is not a number: %1").arg(positionals.at(0)));
    request.format = parseFormatOptions(parser, QString());
    request.format.intBits = parseInt(parser, positionals.at(1), "INTBITS");
    request.format.fracBits = parseInt(parser, positionals.at(2), "FRACBITS");
    request.format.sign =
        parser.isSet(QStringLiteral("unsigned")) ? CFixedPoint::SIGN_UNSIGNED : CFixedPoint::SIGN_SIGNED;
    request.format.round =
        parseChoice<CFixedPoint::ROUND>(parser, QStringLiteral("round"), "floor", "nearest");
    request.format.wrap =
        parseChoice<CFixedPoint::WRAP>(parser, QStringLiteral("overflow"), "saturate", "wrap");
    request.warn = parser.isSet(QStringLiteral("warn"));
    request.maxValue = parseChoice<CFixedPoint::MAXVALUE>(parser, QStringLiteral("max"), "2n-1", "2n");
    request.reformat = parser.isSet(QStringLiteral("to"));
    request.target = parseFormatOptions(parser, QStringLiteral("to-"));
    if (request.reformat)
        parseBitPair(parser, parser.value(QStringLiteral("to")), &request.target);
    request.digitBits = parseRadix(parser);
    return request;
}

void printFormat(const Fixed::fix& record)
{
    std::printf("format:     %s %d bits, exp %d\n", record.sign != 0 ? "signed" : "unsigned",
                record.bits, record.exp);
}

void printRawPattern(CFixedPoint& value)
{
    const Fixed::fix record = value.GetValue();
    if (record.bits <= 64) {
        std::printf("raw:        0x%llX\n", static_cast<unsigned long long>(value.GetValueAs_uint64_t()));
        return;
    }
    std::printf("words:     ");
    const int words = record.bits > 160 ? 5 : (record.bits + 31) / 32;
    for (int i = words - 1; i >= 0; --i)
        std::printf(" 0x%08X", static_cast<unsigned int>(record.val[i]));
    std::printf("  (val[%d] .. val[0])\n", words - 1);
}

// The mantissa as positional text with a radix point (or in scientific form),
// sized by a length query first; the terminator is ours to add.
void printText(const Fixed::fix& record, int digitBits)
{
    const int length = Fixed::fix2str2(record.val, record.bits, record.exp, nullptr, digitBits, 1, 0, 0, 1);
    std::vector<char> text(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
    if (length > 0)
        Fixed::fix2str2(record.val, record.bits, record.exp, &text[static_cast<size_t>(length) - 1],
                        digitBits, 1, 0, 0, 0);
    char label[16];
    std::snprintf(label, sizeof label, "radix %d:", 1 << digitBits);
    std::printf("%-12s%s\n", label, text.data());
}

// The value's format, the value, its raw pattern, its text and its distance from what
// it was made from (the input, or the quantised value for --to); returns the
// value.
double printValue(const char* label, CFixedPoint& value, double origin, int digitBits)
{
    const double quantised = static_cast<double>(value);
    printFormat(value.GetValue());
    std::printf("%s%.17g\n", label, quantised);
    printRawPattern(value);
    printText(value.GetValue(), digitBits);
    std::printf("error:      %.17g\n", quantised - origin);
    return quantised;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const Request request = parseRequest(parser, QCoreApplication::arguments());
    const Format& format = request.format;
    CFixedPoint value(request.value, format.intBits, format.fracBits, format.sign, format.round,
                      format.wrap, request.warn, request.maxValue);
    std::printf("input:      %.17g\n", request.value);
    const double quantised = printValue("quantised:  ", value, request.value, request.digitBits);
    if (request.reformat) {
        const Format& target = request.target;
        CFixedPoint converted(value, target.intBits, target.fracBits, target.sign, target.round,
                              target.wrap);
        printValue("converted:  ", converted, quantised, request.digitBits);
    }
    return 0;
}
