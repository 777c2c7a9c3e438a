// Batch mode of fixpt: coefficient tables and register dumps from stdin to
// CSV. Every line is read before the first row is written, so a bad line
// leaves stdout empty.
#include "fixpt_batch.h"

#include "fixpt_convert.h"
#include "fixpt_reading.h"

namespace {

std::string trimmed(const std::string& line)
{
    const char* const blanks = " \t\r\f\v";
    const size_t first = line.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    return line.substr(first, line.find_last_not_of(blanks) + 1 - first);
}

bool isSkipped(const std::string& line)
{
    return line.empty() || line[0] == '#';
}

const char* const quantiseHeader = "value,raw,int,exact,double,uint64,error,saturated,note";
const char* const decodeHeader = "raw,value,exact,int,double,uint64,note";
const char* const targetHeader = ",to_raw,to_int,to_exact,to_double,to_uint64,to_error,to_saturated,to_note";

void writeQuantisedColumns(std::FILE* output, const Reading& reading, const Outcome& outcome)
{
    std::fprintf(output, ",%s,%s,%s,%s,%s,%s,%s,%s", reading.raw.c_str(), reading.integer.c_str(),
                 reading.exact.c_str(), reading.classDouble.c_str(), reading.classPattern.c_str(),
                 doubleText(outcome.error).c_str(), outcome.saturated ? "yes" : "no", outcome.note.c_str());
}

void writeDecodedColumns(std::FILE* output, const Reading& reading, const Outcome& outcome)
{
    std::fprintf(output, "%s,%s,%s,%s,%s,%s,%s", reading.raw.c_str(), reading.nearest.c_str(),
                 reading.exact.c_str(), reading.integer.c_str(), reading.classDouble.c_str(),
                 reading.classPattern.c_str(), outcome.note.c_str());
}

// One row; returns whether it counts under --strict.
bool writeRow(const Request& request, const Item& item, std::FILE* output)
{
    const bool decoding = request.mode == Mode::Decode;
    const Outcome first = decoding ? decode(request, item.pattern) : quantise(request, item.number);
    const Reading reading = readingOf(first.record, request.digitBits, request.align);
    if (decoding) {
        writeDecodedColumns(output, reading, first);
    } else {
        std::fputs(doubleText(item.number.value).c_str(), output);
        writeQuantisedColumns(output, reading, first);
    }
    bool flagged = isFlagged(first);
    if (request.reformat) {
        const Outcome converted = convert(request, first);
        writeQuantisedColumns(output, readingOf(converted.record, request.digitBits, request.align), converted);
        flagged = flagged || isFlagged(converted);
    }
    std::fputc('\n', output);
    return flagged;
}

}  // namespace

BatchInput readBatch(const Request& request, const std::string& text)
{
    BatchInput input;
    size_t start = 0;
    for (int number = 1; start < text.size(); ++number) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string line = text.substr(start, end - start);
        start = end + 1;
        if (line.size() > maxBatchLine) {
            input.refusal = QStringLiteral("line %1: longer than %2 characters").arg(number).arg(maxBatchLine);
            break;
        }
        const std::string item = trimmed(line);
        if (isSkipped(item))
            continue;
        input.items.emplace_back();
        const QString why = readItem(request.mode, item, request.format, &input.items.back());
        if (!why.isEmpty()) {
            input.refusal = QStringLiteral("line %1: %2").arg(number).arg(why);
            break;
        }
    }
    if (!input.refusal.isEmpty())
        input.items.clear();
    return input;
}

bool writeBatch(const Request& request, const std::vector<Item>& items, std::FILE* output)
{
    std::fputs(request.mode == Mode::Decode ? decodeHeader : quantiseHeader, output);
    if (request.reformat)
        std::fputs(targetHeader, output);
    std::fputc('\n', output);
    bool flagged = false;
    for (const Item& item : items)
        flagged = writeRow(request, item, output) || flagged;
    return flagged;
}
