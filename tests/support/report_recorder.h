// A recording _KV_ProcessErrorString for the tests: every report is kept per
// thread so tests can assert text, function, type, count and order.
#ifndef FIXEDPOINT_TESTS_REPORT_RECORDER_H
#define FIXEDPOINT_TESTS_REPORT_RECORDER_H

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

struct RecordedReport { std::string file; int line; std::string function, message; int type; };

/// Reports received on this thread since the last clear.
std::vector<RecordedReport>& recordedReports();
inline void clearRecordedReports() { recordedReports().clear(); }

/// Makes the next `count` reports on this thread throw ReportFailure after
/// recording them.
void throwOnReports(int count);
struct ReportFailure : std::runtime_error { ReportFailure() : std::runtime_error("report failed") {} };

/// Expected report: function signature text and message text.
struct ExpectedReport { std::string function, message; };

/// Fixture that starts every test with no recorded reports.
class ReportingTest : public ::testing::Test {
protected:
    void SetUp() override { clearRecordedReports(); }
    void TearDown() override { throwOnReports(0); }
    /// The reports since the last check equal `expected`, in order, each of
    /// type 2 with a source position; clears them afterwards.
    static void expectReports(const std::vector<ExpectedReport>& expected);
    static void expectNoReports() { expectReports({}); }
};

#endif  // FIXEDPOINT_TESTS_REPORT_RECORDER_H
