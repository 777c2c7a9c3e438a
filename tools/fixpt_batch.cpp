// Batch mode of fixpt: coefficient tables from stdin to CSV.
#include "fixpt_batch.h"

#include <QString>

#include <string>
#include <vector>

#include "fixpt_convert.h"

namespace {

std::string readLine(std::FILE* input, bool* more)
{
    std::string line;
    int c;
    while ((c = std::fgetc(input)) != EOF && c != '\n')
        line += static_cast<char>(c);
    *more = c != EOF || !line.empty();
    return line;
}

bool isSkipped(const QString& line)
{
    return line.isEmpty() || line.startsWith(QLatin1Char('#'));
}

// Every value of the input, or a usage error at the first malformed line.
std::vector<double> readValues(std::FILE* input)
{
    std::vector<double> values;
    bool more = true;
    for (int number = 1;; ++number) {
        const QString line = QString::fromStdString(readLine(input, &more)).trimmed();
        if (!more)
            break;
        if (isSkipped(line))
            continue;
        bool ok = false;
        values.push_back(line.toDouble(&ok));
        if (!ok)
            usageFailure(QStringLiteral("line %1: not a number: %2").arg(number).arg(line));
    }
    return values;
}

void writeHeader(const Request& request, std::FILE* output)
{
    std::fputs("value,quantised,raw,error,saturated", output);
    if (request.reformat)
        std::fputs(",converted,converted_raw,converted_error,converted_saturated", output);
    std::fputc('\n', output);
}

void writeColumns(const Outcome& outcome, std::FILE* output)
{
    std::fprintf(output, ",%.17g,%s,%.17g,%s", outcome.value, rawHex(outcome.record).c_str(),
                 outcome.error, outcome.saturated ? "yes" : "no");
}

// One row; returns whether it saturated.
bool writeRow(const Request& request, double value, std::FILE* output)
{
    const Outcome quantised = quantise(request, value);
    std::fprintf(output, "%.17g", value);
    writeColumns(quantised, output);
    bool saturated = quantised.saturated;
    if (request.reformat) {
        const Outcome converted = convert(request, quantised);
        writeColumns(converted, output);
        saturated = saturated || converted.saturated;
    }
    std::fputc('\n', output);
    return saturated;
}

}  // namespace

bool runBatch(const Request& request, std::FILE* input, std::FILE* output)
{
    const std::vector<double> values = readValues(input);
    writeHeader(request, output);
    bool saturated = false;
    for (double value : values)
        saturated = writeRow(request, value, output) || saturated;
    return saturated;
}
