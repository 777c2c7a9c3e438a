#include "fuzz_support.h"

#include "KV_ProcessErrorString.h"
#include "lib_fixpoint.h"

namespace {
long reports = 0;
}

void _KV_ProcessErrorString(const QString& file, int line, const QString& function,
                            QString& message, e_KV_MESSAGE_TYPE type)
{
    // Every report must carry its origin and the one message type in use.
    fuzz::require(!file.isEmpty() && line > 0 && !function.isEmpty() && !message.isEmpty(),
                  "report without origin or text");
    fuzz::require(type == KV_MESSAGE_TYPE_2, "report with a message type other than 2");
    ++reports;
}

namespace fuzz {

long reportCount() { return reports; }
void resetReports() { reports = 0; }

void fail(const std::string& what)
{
    std::fprintf(stderr, "divergence: %s\n", what.c_str());
    std::abort();
}

void clearPadBits(Fixed::fixed& f)
{
    if (!validWidth(f.bits))
        return;
    f.val[0] = Fixed::asWord(Fixed::asUnsigned(f.val[0]) & Fixed::highmask[f.bits % 32]);
}

}  // namespace fuzz
