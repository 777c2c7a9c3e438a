#include "report_recorder.h"

#include "KV_ProcessErrorString.h"

namespace {
thread_local std::vector<RecordedReport> reports;
thread_local int reportsToFail = 0;
}  // namespace

std::vector<RecordedReport>& recordedReports() { return reports; }

void throwOnReports(int count) { reportsToFail = count; }

void ReportingTest::expectReports(const std::vector<ExpectedReport>& expected)
{
    const std::vector<RecordedReport> actual = recordedReports();
    clearRecordedReports();
    ASSERT_EQ(actual.size(), expected.size()) << "number of reports";
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE("report " + std::to_string(i));
        EXPECT_EQ(actual[i].function, expected[i].function);
        EXPECT_EQ(actual[i].message, expected[i].message);
        EXPECT_TRUE(actual[i].type == 2 && actual[i].line > 0 && !actual[i].file.empty());
    }
}

void _KV_ProcessErrorString(const QString& file, int line, const QString& function, QString& message,
                            e_KV_MESSAGE_TYPE type)
{
    reports.push_back({file.toStdString(), line, function.toStdString(), message.toStdString(), static_cast<int>(type)});
    if (reportsToFail > 0) {
        --reportsToFail;
        throw ReportFailure();
    }
}
