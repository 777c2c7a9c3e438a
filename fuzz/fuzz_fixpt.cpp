// fixpt's request parser and batch reader with arbitrary bytes: the input is
// a list of NUL-separated arguments, ended by an empty one, then the text a
// batch would read from stdin. Whatever the bytes, the parser either accepts
// a request whose formats the library can take or refuses with a reason, and
// a run either writes its results or refuses with nothing on stdout.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz_support.h"
#include "fixpt_request.h"
#include "fixpt_run.h"

namespace {

constexpr int maxArguments = 12;

bool acceptable(const Format& format)
{
    return fuzz::validWidth(format.bits()) && format.fracBits >= -maxFractionMagnitude &&
           format.fracBits <= maxFractionMagnitude;
}

// Output written to a memory stream, readable after close().
class Capture {
public:
    Capture() : m_stream(open_memstream(&m_text, &m_size)) {}
    ~Capture() { std::free(m_text); }
    std::FILE* stream() { return m_stream; }
    size_t close()
    {
        std::fclose(m_stream);
        return m_size;
    }

private:
    char* m_text = nullptr;
    size_t m_size = 0;
    std::FILE* m_stream;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    QStringList arguments{QStringLiteral("fixpt")};
    size_t start = 0;
    while (start < bytes.size() && arguments.size() <= maxArguments) {
        size_t end = bytes.find('\0', start);
        if (end == std::string::npos)
            end = bytes.size();
        if (end == start) {  // the empty argument ends the list
            ++start;
            break;
        }
        arguments << QString::fromLocal8Bit(bytes.data() + start, static_cast<int>(end - start));
        start = end + 1;
    }
    const std::string batchInput = start < bytes.size() ? bytes.substr(start) : std::string();

    const ParsedRequest parsed = parseRequest(arguments);
    fuzz::require(parsed.refusal.isEmpty() == (parsed.status != ParsedRequest::Usage),
                  "a refusal without a reason, or a reason without a refusal");
    if (parsed.status != ParsedRequest::Run)
        return 0;
    const Request& request = parsed.request;
    if (request.mode != Mode::Fit)
        fuzz::require(acceptable(request.format), "an accepted format the library cannot take");
    if (request.reformat)
        fuzz::require(acceptable(request.target), "an accepted --to format the library cannot take");

    Capture output;
    Capture errors;
    const int status = runRequest(request, batchInput, output.stream(), errors.stream());
    const size_t written = output.close();
    const size_t complained = errors.close();
    fuzz::require(status >= EXIT_OK && status <= EXIT_USAGE, "an exit status outside 0 to 2");
    if (status == EXIT_USAGE)
        fuzz::require(written == 0 && complained > 0, "a refused run wrote output or no reason");
    else
        fuzz::require(written > 0 && complained == 0, "a run wrote no output, or a complaint");
    return 0;
}
