// Single mode of fixpt: every field on its own "key: value" line, the --to
// result's keys prefixed with "to ", so that scripts can pick lines by key.
#include "fixpt_single.h"

#include <string>

#include "fixpt_convert.h"
#include "fixpt_reading.h"

namespace {

void printOutcome(std::FILE* output, const std::string& prefix, const Outcome& outcome, const Request& request,
                  bool quantised)
{
    const Reading reading = readingOf(outcome.record, request.digitBits, request.align);
    printField(output, prefix + "format", formatText(outcome.record));
    printField(output, prefix + "raw", reading.raw);
    printField(output, prefix + "exact", reading.exact);
    printField(output, prefix + "double", reading.classDouble);
    if (!reading.classPattern.empty())
        printField(output, prefix + "uint64", reading.classPattern);
    printField(output, prefix + "radix " + std::to_string(1 << request.digitBits), reading.text);
    if (quantised) {
        printField(output, prefix + "error", doubleText(outcome.error));
        printField(output, prefix + "saturated", outcome.saturated ? "yes" : "no");
    }
    if (!outcome.note.empty())
        printField(output, prefix + "note", outcome.note);
}

}  // namespace

void printField(std::FILE* output, const std::string& key, const std::string& value)
{
    std::fprintf(output, "%-16s%s\n", (key + ": ").c_str(), value.c_str());
}

bool runSingle(const Request& request, std::FILE* output)
{
    const bool decoding = request.mode == Mode::Decode;
    if (!decoding)
        printField(output, "input", doubleText(request.item.number.value));
    const Outcome first = decoding ? decode(request, request.item.pattern) : quantise(request, request.item.number);
    printOutcome(output, "", first, request, !decoding);
    if (!request.reformat)
        return isFlagged(first);
    const Outcome converted = convert(request, first);
    printOutcome(output, "to ", converted, request, true);
    return isFlagged(first) || isFlagged(converted);
}
