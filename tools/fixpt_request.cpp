// Command-line parsing of fixpt: the mode, the positional arguments of each
// mode and the option values. The first refusal is kept and returned; the
// steps after it still run on defaults, which keeps each step free of early
// exits.
#include "fixpt_request.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cmath>

#include "fixpt_options.h"

namespace {

std::string bytesOf(const QString& text)
{
    return text.toLocal8Bit().toStdString();
}

bool isOption(const QString& argument)
{
    Number number;
    return argument.size() > 1 && argument.at(0) == QLatin1Char('-') && !readNumber(bytesOf(argument), &number);
}

// Moves positional arguments behind "--" so that negative values such as
// -1.5 and -inf are not taken for options.
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

class RequestReader {
public:
    ParsedRequest read(const QStringList& arguments);

private:
    void refuse(const QString& why)
    {
        if (m_refusal.isEmpty())
            m_refusal = why;
    }
    bool isSet(const char* option) const { return m_parser.isSet(QLatin1String(option)); }
    QString value(const char* option) const { return m_parser.value(QLatin1String(option)); }

    void readMode();
    int readChoice(const char* option, const QStringList& choices);
    void readFormatOptions(const char* prefix, Format* format);
    void readFormatParts(const QStringList& parts, const char* unsignedOption, Format* format);
    void readTarget();
    void readPositionals();
    void readFitOptions();
    void readItemArgument(const QString& text, const QString& what, Item* item);

    QCommandLineParser m_parser;
    Request m_request;
    QString m_refusal;
};

void RequestReader::readMode()
{
    const bool raw = isSet("raw");
    const bool info = isSet("info");
    const bool fit = isSet("fit");
    if (int{raw} + int{info} + int{fit} > 1)
        refuse(QStringLiteral("--raw, --info and --fit exclude each other"));
    m_request.mode = raw ? Mode::Decode : (info ? Mode::Info : (fit ? Mode::Fit : Mode::Quantise));
    m_request.batch = isSet("batch");
    const QString stray = optionOutsideMode(m_parser, m_request.mode);
    if (!stray.isEmpty())
        refuse(QStringLiteral("--%1 does not apply here").arg(stray));
}

// Index of the option's value among the choices.
int RequestReader::readChoice(const char* option, const QStringList& choices)
{
    const int index = choices.indexOf(value(option));
    if (index >= 0)
        return index;
    refuse(QStringLiteral("--%1 takes %2, not %3")
               .arg(QLatin1String(option), choices.join(QStringLiteral(", ")), value(option)));
    return 0;
}

// Signedness, rounding and overflow of one format; prefix "" for the value's
// format, "to-" for --to.
void RequestReader::readFormatOptions(const char* prefix, Format* format)
{
    const std::string p = prefix;
    format->sign = isSet((p + "unsigned").c_str()) ? CFixedPoint::SIGN_UNSIGNED : CFixedPoint::SIGN_SIGNED;
    format->round = static_cast<CFixedPoint::ROUND>(
        readChoice((p + "round").c_str(), {QStringLiteral("floor"), QStringLiteral("nearest")}));
    format->wrap = static_cast<CFixedPoint::WRAP>(
        readChoice((p + "overflow").c_str(), {QStringLiteral("saturate"), QStringLiteral("wrap")}));
}

// A compact format's letter must agree with the --unsigned flag when given.
void RequestReader::readFormatParts(const QStringList& parts, const char* unsignedOption, Format* format)
{
    const CFixedPoint::SIGN flagged = format->sign;
    refuse(readFormat(parts, format));
    if (isSet(unsignedOption) && format->sign != flagged)
        refuse(QStringLiteral("format %1 is signed but --%2 is given").arg(parts.join(QLatin1Char(' ')),
                                                                             QLatin1String(unsignedOption)));
}

void RequestReader::readTarget()
{
    m_request.reformat = isSet("to");
    readFormatOptions("to-", &m_request.target);
    if (!m_request.reformat)
        return;
    const QString text = value("to");
    readFormatParts(isCompactFormat(text) ? QStringList{text} : text.split(QLatin1Char(',')), "to-unsigned",
               &m_request.target);
}

void RequestReader::readItemArgument(const QString& text, const QString& what, Item* item)
{
    if (!m_refusal.isEmpty())
        return;  // a pattern is read against the format, which must be valid
    const QString why = readItem(m_request.mode, bytesOf(text), m_request.format, item);
    if (!why.isEmpty())
        refuse(QStringLiteral("%1: %2").arg(what, why));
}

void RequestReader::readPositionals()
{
    QStringList positionals = m_parser.positionalArguments();
    const Mode mode = m_request.mode;
    if (mode == Mode::Fit) {
        const int expected = m_request.batch ? 0 : 2;
        if (positionals.size() != expected)
            return refuse(m_request.batch ? QStringLiteral("--fit --batch reads the values from stdin")
                                          : QStringLiteral("--fit expects MIN MAX"));
        if (m_request.batch)
            return;
        Item low;
        Item high;
        readItemArgument(positionals.at(0), QStringLiteral("MIN"), &low);
        readItemArgument(positionals.at(1), QStringLiteral("MAX"), &high);
        m_request.fit.low = low.number.value;
        m_request.fit.high = high.number.value;
        if (m_refusal.isEmpty() && !(low.number.value <= high.number.value))
            refuse(QStringLiteral("MIN %1 is above MAX %2").arg(positionals.at(0), positionals.at(1)));
        return;
    }
    const bool hasItem = (mode == Mode::Quantise || mode == Mode::Decode) && !m_request.batch;
    if (hasItem && positionals.isEmpty())
        return refuse(mode == Mode::Decode ? QStringLiteral("expected PATTERN FORMAT")
                                           : QStringLiteral("expected VALUE FORMAT"));
    const QString itemText = hasItem ? positionals.takeFirst() : QString();
    readFormatParts(positionals, "unsigned", &m_request.format);
    if (hasItem)
        readItemArgument(itemText, mode == Mode::Decode ? QStringLiteral("PATTERN") : QStringLiteral("VALUE"),
                         &m_request.item);
    if (m_request.viaWords && m_refusal.isEmpty() && m_request.format.bits() > 64)
        refuse(QStringLiteral("--via-words: the raw-word constructor takes formats of at most 64 bits, not %1")
                   .arg(QString::fromStdString(compactName(m_request.format))));
}

void RequestReader::readFitOptions()
{
    FitRequest& fit = m_request.fit;
    fit.forceSigned = isSet("signed");
    if (m_request.mode != Mode::Fit)
        return;
    if (isSet("bits") == isSet("resolution"))
        return refuse(QStringLiteral("--fit takes either --bits N or --resolution R"));
    if (isSet("bits")) {
        bool ok = false;
        fit.bits = value("bits").toInt(&ok);
        if (!ok || fit.bits < 1 || fit.bits > Fixed::maxBits)
            refuse(QStringLiteral("--bits takes 1 to %1, not %2").arg(Fixed::maxBits).arg(value("bits")));
        return;
    }
    Number resolution;
    if (!readNumber(bytesOf(value("resolution")), &resolution) || !(resolution.value > 0.0) ||
        std::isinf(resolution.value))
        return refuse(QStringLiteral("--resolution takes a finite number above zero, not %1")
                          .arg(value("resolution")));
    fit.resolution = resolution.value;
}

ParsedRequest RequestReader::read(const QStringList& arguments)
{
    ParsedRequest parsed;
    describeOptions(m_parser);
    if (!m_parser.parse(separatePositionals(arguments))) {
        parsed.refusal = m_parser.errorText();
        return parsed;
    }
    if (isSet("help") || isSet("help-all") || isSet("version")) {
        parsed.status = isSet("version") ? ParsedRequest::Version : ParsedRequest::Help;
        return parsed;
    }
    readMode();
    m_request.strict = isSet("strict");
    m_request.viaWords = isSet("via-words");
    m_request.warn = isSet("warn");
    m_request.maxValue =
        static_cast<CFixedPoint::MAXVALUE>(readChoice("max", {QStringLiteral("2n-1"), QStringLiteral("2n")}));
    readFormatOptions("", &m_request.format);
    readTarget();
    readFitOptions();
    m_request.digitBits = 1 + readChoice("radix", {QStringLiteral("2"), QStringLiteral("4"), QStringLiteral("8"),
                                                   QStringLiteral("16")});
    m_request.align = readChoice("align", {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
    readPositionals();
    parsed.request = m_request;
    parsed.refusal = m_refusal;
    parsed.status = m_refusal.isEmpty() ? ParsedRequest::Run : ParsedRequest::Usage;
    return parsed;
}

}  // namespace

ParsedRequest parseRequest(const QStringList& arguments)
{
    return RequestReader().read(arguments);
}

QString helpText()
{
    QCommandLineParser parser;
    describeOptions(parser);
    // The usage line names the program as it was started; the manual and
    // the help should say "fixpt" wherever it lies.
    QString text = parser.helpText();
    const QString started = QStringLiteral("Usage: ") + QCoreApplication::arguments().value(0);
    if (text.startsWith(started))
        text.replace(0, started.size(), QStringLiteral("Usage: fixpt"));
    return text;
}
