// fixpt: fixed-point values at the bench, from the command line.
//
//   fixpt VALUE FORMAT [options]        quantise one value, printed line by line
//   fixpt --batch FORMAT [options]      one value per stdin line, CSV out
//   fixpt --raw PATTERN FORMAT          the value a raw pattern holds
//   fixpt --info FORMAT                 width, range, resolution, saturation patterns
//   fixpt --fit MIN MAX --bits N        the format a range needs
//
// Exit status 0 on success, 1 when --strict is given and a value saturated or
// was flagged, 2 on usage errors. Diagnostics of the library reach stderr
// through the host's report function, linked into the tool.
#include <QCoreApplication>

#include <clocale>
#include <cstdio>
#include <iterator>
#include <string>

#include "fixpt_request.h"
#include "fixpt_run.h"

namespace {

std::string readAll(std::FILE* input)
{
    std::string text;
    char buffer[4096];
    size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, input)) > 0)
        text.append(buffer, count);
    return text;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fixpt"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FIXPT_VERSION));
    // Qt takes the environment's locale; numbers are read and written with a
    // decimal point whatever it says.
    std::setlocale(LC_NUMERIC, "C");

    const ParsedRequest parsed = parseRequest(QCoreApplication::arguments());
    switch (parsed.status) {
    case ParsedRequest::Help:
        std::printf("%s", helpText().toLocal8Bit().constData());
        return EXIT_OK;
    case ParsedRequest::Version:
        std::printf("fixpt %s\n", FIXPT_VERSION);
        return EXIT_OK;
    case ParsedRequest::Usage:
        std::fprintf(stderr, "fixpt: %s\n\n%s", parsed.refusal.toLocal8Bit().constData(),
                     helpText().toLocal8Bit().constData());
        return EXIT_USAGE;
    case ParsedRequest::Run:
        break;
    }
    const Request& request = parsed.request;
    const std::string batchInput = request.batch ? readAll(stdin) : std::string();
    return runRequest(request, batchInput, stdout, stderr);
}
