// One request of fixpt from input to exit status, shared by main() and the
// fuzz target.
#include "fixpt_run.h"

#include <algorithm>

#include "fixpt_batch.h"
#include "fixpt_fit.h"
#include "fixpt_info.h"
#include "fixpt_single.h"

namespace {

int refuse(const QString& why, std::FILE* errors)
{
    std::fprintf(errors, "fixpt: %s\n", why.toLocal8Bit().constData());
    return EXIT_USAGE;
}

int runFit(const Request& request, const std::vector<Item>& items, std::FILE* output, std::FILE* errors)
{
    double low = request.fit.low;
    double high = request.fit.high;
    if (request.batch) {
        if (items.empty())
            return refuse(QStringLiteral("--fit --batch read no values"), errors);
        const auto bounds = std::minmax_element(items.begin(), items.end(), [](const Item& a, const Item& b) {
            return a.number.value < b.number.value;
        });
        low = bounds.first->number.value;
        high = bounds.second->number.value;
    }
    const FitResult fit = fitFormat(request.fit, low, high, request.format.round);
    if (!fit.refusal.isEmpty())
        return refuse(fit.refusal, errors);
    printFit(fit.format, output);
    return EXIT_OK;
}

}  // namespace

int runRequest(const Request& request, const std::string& batchInput, std::FILE* output, std::FILE* errors)
{
    if (request.mode == Mode::Info) {
        printInfo(request.format, output);
        return EXIT_OK;
    }
    std::vector<Item> items;
    if (request.batch) {
        BatchInput input = readBatch(request, batchInput);
        if (!input.refusal.isEmpty())
            return refuse(input.refusal, errors);
        items = std::move(input.items);
    }
    if (request.mode == Mode::Fit)
        return runFit(request, items, output, errors);
    const bool flagged = request.batch ? writeBatch(request, items, output) : runSingle(request, output);
    return request.strict && flagged ? EXIT_FLAGGED : EXIT_OK;
}
