// Command-line parsing of fixpt: options, positional arguments and the two
// ways of writing a format (INTBITS FRACBITS, or compactly as s4.12 / u8.0).
#include "fixpt_request.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void usageError(const QCommandLineParser& parser, const QString& message)
{
    std::fprintf(stderr, "fixpt: %s\n\n%s", message.toLocal8Bit().constData(),
                 parser.helpText().toLocal8Bit().constData());
    std::exit(EXIT_USAGE);
}

// Options that take a value; everything else that does not start with '-'
// or reads as a number is a positional argument (-1.5 and -inf included).
const char* const optionsWithValue[] = {"--round",    "--overflow", "--max",   "--to",
                                        "--to-round", "--to-overflow", "--radix", "--align"};

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
    bool isNumber = false;
    argument.toDouble(&isNumber);
    return argument.size() > 1 && argument.at(0) == QLatin1Char('-') && !isNumber;
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

int parseInt(const QCommandLineParser& parser, const QString& text, const QString& what)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok)
        usageError(parser, QStringLiteral("%1 is not an integer: %2").arg(what, text));
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

// Index of text among the choices, as the option's value.
int parseIndexedChoice(const QCommandLineParser& parser, const QString& option,
                       const QStringList& choices)
{
    const QString text = parser.value(option);
    const int index = choices.indexOf(text);
    if (index < 0)
        usageError(parser, QStringLiteral("--%1 takes %2, not %3")
                               .arg(option, choices.join(QStringLiteral(", ")), text));
    return index;
}

bool isCompactFormat(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^[su]-?\\d+\\.-?\\d+$"));
    return pattern.match(text).hasMatch();
}

// The bits of a compact format "s4.12" (sign letter, integer bits, fractional
// bits); the sign letter overrides the --unsigned flag unless they disagree.
void parseCompactFormat(const QCommandLineParser& parser, const QString& text, const QString& prefix,
                        Format* format)
{
    const bool isUnsigned = text.at(0) == QLatin1Char('u');
    if (!isUnsigned && format->sign == CFixedPoint::SIGN_UNSIGNED)
        usageError(parser, QStringLiteral("format %1 is signed but --%2unsigned is given").arg(text, prefix));
    format->sign = isUnsigned ? CFixedPoint::SIGN_UNSIGNED : CFixedPoint::SIGN_SIGNED;
    const int point = text.indexOf(QLatin1Char('.'));
    format->intBits = parseInt(parser, text.mid(1, point - 1), QStringLiteral("INTBITS of ") + text);
    format->fracBits = parseInt(parser, text.mid(point + 1), QStringLiteral("FRACBITS of ") + text);
}

// The value of --to: a compact format or "INTBITS,FRACBITS".
void parseTargetBits(const QCommandLineParser& parser, const QString& text, Format* format)
{
    if (isCompactFormat(text)) {
        parseCompactFormat(parser, text, QStringLiteral("to-"), format);
        return;
    }
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2)
        usageError(parser, QStringLiteral("--to takes INTBITS,FRACBITS or a format such as u8.4, not %1")
                               .arg(text));
    format->intBits = parseInt(parser, parts.at(0), QStringLiteral("--to INTBITS"));
    format->fracBits = parseInt(parser, parts.at(1), QStringLiteral("--to FRACBITS"));
}

// The positional format: one compact argument or INTBITS FRACBITS.
void parseFormatArguments(const QCommandLineParser& parser, const QStringList& arguments, Format* format)
{
    if (arguments.size() == 1 && isCompactFormat(arguments.at(0))) {
        parseCompactFormat(parser, arguments.at(0), QString(), format);
        return;
    }
    if (arguments.size() != 2)
        usageError(parser, QStringLiteral("expected a format: INTBITS FRACBITS, or s4.12 / u8.0"));
    format->intBits = parseInt(parser, arguments.at(0), QStringLiteral("INTBITS"));
    format->fracBits = parseInt(parser, arguments.at(1), QStringLiteral("FRACBITS"));
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

void describeArguments(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        QStringLiteral("Quantise VALUE into a fixed-point format, or with --batch every value read "
                       "from stdin.\nFORMAT is INTBITS FRACBITS (integer bits include the sign bit "
                       "of a signed format) or compactly s4.12, u8.0, s-2.10.\nExit status: 0 done, "
                       "1 a value saturated under --strict, 2 usage error."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("VALUE"),
                                 QStringLiteral("The number to quantise (not with --batch)."));
    parser.addPositionalArgument(QStringLiteral("FORMAT"),
                                 QStringLiteral("INTBITS FRACBITS, or s4.12 / u8.0."));
    addFormatOptions(parser, QString(), QStringLiteral("the format"));
    parser.addOption({QStringLiteral("warn"),
                      QStringLiteral("Report an integer part that does not fit INTBITS.")});
    parser.addOption({QStringLiteral("max"),
                      QStringLiteral("Largest integer part accepted by --warn: 2n-1 or 2n."),
                      QStringLiteral("bound"), QStringLiteral("2n-1")});
    parser.addOption({QStringLiteral("to"),
                      QStringLiteral("Re-quantise the value into INTBITS,FRACBITS or a format such as "
                                     "u8.4 as well."),
                      QStringLiteral("format")});
    addFormatOptions(parser, QStringLiteral("to-"), QStringLiteral("the --to format"));
    parser.addOption({QStringLiteral("radix"),
                      QStringLiteral("Radix of the printed text: 2, 4, 8 or 16 (default 16)."),
                      QStringLiteral("radix"), QStringLiteral("16")});
    parser.addOption({QStringLiteral("align"),
                      QStringLiteral("Digit grouping of the printed text: 0 from the radix point, 1 "
                                     "integer digits from their top bit, 2 each part from its "
                                     "lowest bit (default 0)."),
                      QStringLiteral("align"), QStringLiteral("0")});
    parser.addOption({QStringLiteral("batch"),
                      QStringLiteral("Read one value per line from stdin (blank lines and # comments "
                                     "skipped) and write CSV to stdout.")});
    parser.addOption({QStringLiteral("strict"),
                      QStringLiteral("Exit with status 1 when any value saturated.")});
}

void parseArguments(QCommandLineParser& parser, const QStringList& arguments)
{
    describeArguments(parser);
    if (!parser.parse(separatePositionals(arguments)))
        usageError(parser, parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        std::printf("%s", parser.helpText().toLocal8Bit().constData());
        std::exit(EXIT_OK);
    }
}

double parseValue(const QCommandLineParser& parser, const QString& text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok)
        usageError(parser, QStringLiteral("VALUE is not a number: %1").arg(text));
    return value;
}

}  // namespace

void usageFailure(const QString& message)
{
    std::fprintf(stderr, "fixpt: %s\n", message.toLocal8Bit().constData());
    std::exit(EXIT_USAGE);
}

Request parseRequest(const QStringList& arguments)
{
    QCommandLineParser parser;
    parseArguments(parser, arguments);

    Request request;
    request.batch = parser.isSet(QStringLiteral("batch"));
    request.strict = parser.isSet(QStringLiteral("strict"));
    QStringList positionals = parser.positionalArguments();
    request.value = 0.0;
    if (!request.batch) {
        if (positionals.isEmpty())
            usageError(parser, QStringLiteral("expected VALUE FORMAT"));
        request.value = parseValue(parser, positionals.takeFirst());
    }
    request.format = parseFormatOptions(parser, QString());
    parseFormatArguments(parser, positionals, &request.format);
    request.warn = parser.isSet(QStringLiteral("warn"));
    request.maxValue = parseChoice<CFixedPoint::MAXVALUE>(parser, QStringLiteral("max"), "2n-1", "2n");
    request.reformat = parser.isSet(QStringLiteral("to"));
    request.target = parseFormatOptions(parser, QStringLiteral("to-"));
    if (request.reformat)
        parseTargetBits(parser, parser.value(QStringLiteral("to")), &request.target);
    request.digitBits = 1 + parseIndexedChoice(parser, QStringLiteral("radix"),
                                               {QStringLiteral("2"), QStringLiteral("4"),
                                                QStringLiteral("8"), QStringLiteral("16")});
    request.align = parseIndexedChoice(parser, QStringLiteral("align"),
                                       {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
    return request;
}
