#include "reports.h"

#include <pybind11/pybind11.h>

#include <utility>

#include "KV_ProcessErrorString.h"

namespace py = pybind11;

namespace fixpt {

std::vector<Report>& collectedReports()
{
    // Per thread: calls on other threads, which may run while this one has
    // released the GIL, keep their own reports.
    thread_local std::vector<Report> reports;
    return reports;
}

ReportScope::ReportScope()
{
    // Whatever an earlier call left behind (one that failed half-way) is not
    // this call's.
    collectedReports().clear();
}

void ReportScope::issueWarnings()
{
    // Taken out first: a warning handler may call the module again, which
    // starts its own scope on this thread.
    std::vector<Report> reports = std::move(collectedReports());
    collectedReports().clear();
    if (reports.empty())
        return;
    const py::object warningClass = py::module_::import("fixpt._warning").attr("FixedPointWarning");
    const py::object warn = py::module_::import("warnings").attr("warn");
    // Every public entry of the package is one Python function that calls
    // this module directly: two frames up is the caller's code.
    constexpr int callerFrame = 2;
    for (const Report& report : reports)
        warn(warningClass(report.message, report.signature), py::arg("stacklevel") = callerFrame);
}

}  // namespace fixpt

// The host's report function, defined by the module itself: the package needs
// neither libFixedPoint.so nor the host stand-in. Called on the thread of the
// failing operation, possibly without the GIL: it touches no Python object.
void _KV_ProcessErrorString(const QString& file, int line, const QString& function,
                            QString& message, e_KV_MESSAGE_TYPE type)
{
    (void)file;
    (void)line;
    (void)type;
    fixpt::collectedReports().push_back({function.toStdString(), message.toStdString()});
}
