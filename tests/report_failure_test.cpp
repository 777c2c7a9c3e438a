// A report function that throws: every construction that reports propagates
// the failure without leaving its record behind (LeakSanitizer in the ASan
// build and Valgrind in CI check the release), and members that report leave
// their object as it was.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "FixedPoint.h"
#include "report_recorder.h"

namespace {

using Sign = CFixedPoint::SIGN;
using Round = CFixedPoint::ROUND;
using Wrap = CFixedPoint::WRAP;

CFixedPoint fromDouble(double value, int intbits, int fracbits, int sign, int round, int wrap, bool warn)
{
    return CFixedPoint(value, intbits, fracbits, static_cast<Sign>(sign), static_cast<Round>(round),
                       static_cast<Wrap>(wrap), warn, CFixedPoint::MAXVALUE_2N_MINUS_1);
}

bool sameRecord(const Fixed::fixed& a, const Fixed::fixed& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

class ThrowingReport : public ReportingTest {};

TEST_F(ThrowingReport, ConstructionsThatReportReleaseTheirRecord)
{
    const CFixedPoint source = fromDouble(-1.5, 8, 8, 1, 0, 0, false);
    struct Case {
        const char* name;
        std::function<void()> construct;
    };
    const std::vector<Case> cases = {
        {"range warning", [] { fromDouble(20.0, 4, 12, 1, 1, 0, true); }},
        {"invalid sign", [] { fromDouble(1.0, 4, 12, 2, 0, 0, false); }},
        {"invalid wrap, then warning", [] { fromDouble(99.0, 4, 4, 0, 0, 5, true); }},
        {"width above 160", [] { fromDouble(1.0, 100, 61, 1, 0, 0, false); }},
        {"reformat, invalid rounding", [&] { CFixedPoint(source, 4, 0, CFixedPoint::SIGN_UNSIGNED, static_cast<Round>(3), CFixedPoint::WRAP_SATURATE); }},
        {"reformat, width above 160", [&] { CFixedPoint(source, 161, 0, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR, CFixedPoint::WRAP_SATURATE); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        throwOnReports(1);
        EXPECT_THROW(c.construct(), ReportFailure);
        EXPECT_EQ(recordedReports().size(), 1u) << "the first report throws, nothing follows";
        throwOnReports(0);
        clearRecordedReports();
    }
}

TEST_F(ThrowingReport, MembersThatReportLeaveTheObjectUnchanged)
{
    CFixedPoint wide = fromDouble(3.25, 64, 32, 1, 0, 0, false);
    const Fixed::fixed before = wide.GetValue();
    throwOnReports(3);
    EXPECT_THROW(wide.GetValueAs_uint64_t(), ReportFailure);
    EXPECT_THROW(wide.MSB(), ReportFailure);
    EXPECT_THROW(wide += fromDouble(1.0, 8, 8, 1, 0, 0, false), ReportFailure);
    EXPECT_TRUE(sameRecord(wide.GetValue(), before));
    EXPECT_EQ(static_cast<double>(wide), 3.25);
    clearRecordedReports();
}

}  // namespace
