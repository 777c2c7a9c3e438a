// fixpt: quantise a value into a fixed-point format from the command line.
//
//   fixpt VALUE FORMAT [options]        one value, printed line by line
//   fixpt --batch FORMAT [options]      one value per stdin line, CSV out
//
// FORMAT is INTBITS FRACBITS or compactly s4.12 / u8.0 / s-2.10; --to FORMAT
// re-quantises every value into a second format. Exit status 0 on success,
// 1 when --strict is given and a value saturated, 2 on usage errors.
// Diagnostics of the library reach stderr through the host's report function.
#include <QCoreApplication>

#include <cstdio>

#include "fixpt_batch.h"
#include "fixpt_convert.h"
#include "fixpt_request.h"

namespace {

void printFormat(const Fixed::fix& record)
{
    std::printf("format:     %s %d bits, exp %d\n", record.sign != 0 ? "signed" : "unsigned",
                record.bits, record.exp);
}

void printRawPattern(const Fixed::fix& record)
{
    // Above 64 bits the words are shown as stored: left-aligned, top word first.
    std::printf("%-12s%s\n", record.bits <= 64 ? "raw:" : "words:", rawHex(record).c_str());
}

void printText(const Fixed::fix& record, int digitBits, int align)
{
    char label[16];
    std::snprintf(label, sizeof label, "radix %d:", 1 << digitBits);
    std::printf("%-12s%s\n", label, valueText(record, digitBits, align).c_str());
}

// The value's format, the value, its raw pattern, its text, its distance from
// what it was made from (the input, or the quantised value for --to) and
// whether it saturated.
void printOutcome(const char* label, const Outcome& outcome, const Request& request)
{
    printFormat(outcome.record);
    std::printf("%s%.17g\n", label, outcome.value);
    printRawPattern(outcome.record);
    printText(outcome.record, request.digitBits, request.align);
    std::printf("error:      %.17g\n", outcome.error);
    std::printf("saturated:  %s\n", outcome.saturated ? "yes" : "no");
}

// Returns whether anything saturated.
bool runSingle(const Request& request)
{
    std::printf("input:      %.17g\n", request.value);
    const Outcome quantised = quantise(request, request.value);
    printOutcome("quantised:  ", quantised, request);
    if (!request.reformat)
        return quantised.saturated;
    const Outcome converted = convert(request, quantised);
    printOutcome("converted:  ", converted, request);
    return quantised.saturated || converted.saturated;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const Request request = parseRequest(QCoreApplication::arguments());
    const bool saturated = request.batch ? runBatch(request, stdin, stdout) : runSingle(request);
    return request.strict && saturated ? EXIT_SATURATED : EXIT_OK;
}
