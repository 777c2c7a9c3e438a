// The library's reports inside Python: the module defines the host's report
// function, which keeps every report of the calling thread; a call of the
// module collects them while it computes (with the GIL released, if it likes)
// and turns them into fixpt.FixedPointWarning warnings once it holds the GIL
// again, one per report and in the library's order.
#ifndef FIXPT_PYTHON_REPORTS_H
#define FIXPT_PYTHON_REPORTS_H

#include <string>
#include <vector>

namespace fixpt {

/// One report: the reporting function's signature text and the message.
struct Report {
    std::string signature;
    std::string message;
};

/// The reports of one call of the module, on its own thread. Construct it
/// before calling into the library; call issueWarnings() with the GIL held
/// once the results are complete. A warning turned into an exception by the
/// warning filters propagates from there, after every result is computed.
/// (Not "emit": Qt defines that word as a macro.)
class ReportScope {
public:
    ReportScope();
    ReportScope(const ReportScope&) = delete;
    ReportScope& operator=(const ReportScope&) = delete;
    void issueWarnings();
};

/// The reports collected on this thread since the current scope began.
std::vector<Report>& collectedReports();

/// Runs compute (which calls the library with the GIL held) and issues its
/// reports as warnings afterwards; returns compute's result.
template <class Compute>
auto withReports(Compute compute)
{
    ReportScope reports;
    auto result = compute();
    reports.issueWarnings();
    return result;
}

}  // namespace fixpt

#endif  // FIXPT_PYTHON_REPORTS_H
