// CFixedPoint: ownership, conversions, construction from doubles and the
// range warning.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "FixedPoint.h"
#include "report_recorder.h"

namespace {

const char* const constructorSignature =
    "CFixedPoint::CFixedPoint(const double&, int, int, CFixedPoint::SIGN, CFixedPoint::ROUND, "
    "CFixedPoint::WRAP, bool, CFixedPoint::MAXVALUE)";
const char* const double2fixedSignature =
    "Fixed::fixed Fixed::double2fixed(double, int, int, int, int, int)";

bool sameWords(const Fixed::fix& a, const Fixed::fix& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

CFixedPoint signed4dot12(double value, bool warn = true)
{
    return CFixedPoint(value, 4, 12, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_NEAREST,
                       CFixedPoint::WRAP_SATURATE, warn, CFixedPoint::MAXVALUE_2N_MINUS_1);
}

std::string rangeWarning(const char* count, const char* value)
{
    return std::string("Not enough predecimal bits (") + count +
           ")  for fixed point conversion of value " + value + ". The value will be limited.";
}

class ClassTest : public ReportingTest {};

TEST_F(ClassTest, OwnsADeepCopyOfItsRecord)
{
    const Fixed::fix record{16, -12, 1, {0x1B330000, 11, 22, 33, 44}};
    CFixedPoint a(record);
    EXPECT_TRUE(sameWords(a.GetValue(), record));  // words beyond the width included

    CFixedPoint copy(a);
    copy += a;
    EXPECT_TRUE(sameWords(a.GetValue(), record));
    EXPECT_EQ(static_cast<double>(copy), 2 * 6963 / 4096.0);

    CFixedPoint assigned(Fixed::fix{8, 0, 0, {0x01000000, 0, 0, 0, 0}});
    assigned = a;
    assigned += a;
    EXPECT_TRUE(sameWords(a.GetValue(), record));
    assigned = assigned;  // self-assignment keeps the value
    EXPECT_EQ(static_cast<double>(assigned), 2 * 6963 / 4096.0);
    expectNoReports();
}

TEST_F(ClassTest, ConvertsToDoubleUnderItsSignedness)
{
    struct Case {
        uint32_t word;
        int sign;
        double value;
    };
    const Case cases[] = {
        {0x1B330000, 1, 1.699951171875},   {0x1B330000, 0, 1.699951171875},
        {0xE4CD0000, 1, -1.699951171875},  {0xE4CD0000, 0, 14.300048828125},
        {0xE4CD0000, 2, -1.699951171875},  // any nonzero sign counts as signed
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.word);
        CFixedPoint x(Fixed::fix{16, -12, c.sign, {static_cast<int32_t>(c.word), 0, 0, 0, 0}});
        EXPECT_EQ(static_cast<double>(x), c.value);
    }
}

TEST_F(ClassTest, ShiftScalesByPowersOfTwoWithoutChangingTheObject)
{
    CFixedPoint x = signed4dot12(1.7);
    const Fixed::fix before = x.GetValue();
    for (int n : {3, -3, 0, 40}) {
        SCOPED_TRACE(n);
        CFixedPoint shifted = x << n;
        const Fixed::fix after = shifted.GetValue();
        EXPECT_EQ(after.exp, before.exp + n);
        EXPECT_EQ(std::memcmp(after.val, before.val, sizeof after.val), 0);
        EXPECT_EQ(static_cast<double>(shifted), std::ldexp(1.699951171875, n));
    }
    EXPECT_TRUE(sameWords(x.GetValue(), before));
}

TEST_F(ClassTest, PreDecimalSufficientTestsTheFloor)
{
    using C = CFixedPoint;
    struct Case {
        double value;
        int bits;
        C::SIGN sign;
        C::MAXVALUE max;
        bool fits;
    };
    const Case cases[] = {
        {7.999, 4, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {8.0, 4, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {-8.0, 4, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {-8.0001, 4, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {8.5, 4, C::SIGN_SIGNED, C::MAXVALUE_2N, true},
        {9.0, 4, C::SIGN_SIGNED, C::MAXVALUE_2N, false},
        {-8.0001, 4, C::SIGN_SIGNED, C::MAXVALUE_2N, false},
        {15.9, 4, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {16.0, 4, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {16.5, 4, C::SIGN_UNSIGNED, C::MAXVALUE_2N, true},
        {-0.25, 4, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {-0.25, 4, C::SIGN_UNSIGNED, C::MAXVALUE_2N, false},
        {0.0, 4, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {1.0, 1, C::SIGN_SIGNED, C::MAXVALUE_2N, true},
        {1.0, 1, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {-1.0, 4, static_cast<C::SIGN>(2), C::MAXVALUE_2N, false},  // sign 2 counts as unsigned
        {15.5, 4, static_cast<C::SIGN>(2), C::MAXVALUE_2N_MINUS_1, true},
        {16.0, 4, C::SIGN_UNSIGNED, static_cast<C::MAXVALUE>(2), true},
        // 62 and 63 magnitude bits: the bounds 2^62 and 2^63 themselves.
        {std::ldexp(1.0, 62) - 1024, 63, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {std::ldexp(1.0, 62), 63, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {std::ldexp(1.0, 62), 63, C::SIGN_SIGNED, C::MAXVALUE_2N, true},
        {-std::ldexp(1.0, 63), 64, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {std::ldexp(1.0, 63), 64, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {std::ldexp(1.0, 70), 100, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {1e300, 100, C::SIGN_UNSIGNED, C::MAXVALUE_2N, false},
        {std::nan(""), 100, C::SIGN_SIGNED, C::MAXVALUE_2N, false},
        // No magnitude bits or fewer: only what floors into [-P, P - 1] or
        // [-P, P] with a fractional P.
        {0.5, 0, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, true},
        {1.0, 0, C::SIGN_UNSIGNED, C::MAXVALUE_2N_MINUS_1, false},
        {0.5, 0, C::SIGN_UNSIGNED, C::MAXVALUE_2N, true},
        {0.5, 0, C::SIGN_SIGNED, C::MAXVALUE_2N, true},
        {-0.5, 0, C::SIGN_SIGNED, C::MAXVALUE_2N, false},
        {0.5, -5, C::SIGN_SIGNED, C::MAXVALUE_2N_MINUS_1, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " in " << c.bits << " bits, sign " << c.sign
                                        << " max " << c.max);
        EXPECT_EQ(CFixedPoint::PreDecimalSufficient(c.value, c.bits, c.sign, c.max), c.fits);
    }
}

TEST_F(ClassTest, RangeWarningTextAndOrder)
{
    CFixedPoint fits = signed4dot12(1.7);
    EXPECT_EQ(fits.GetValue().val[0], 0x1B330000);
    expectNoReports();

    CFixedPoint saturated = signed4dot12(20.0);
    EXPECT_EQ(static_cast<double>(saturated), 7.999755859375);
    expectReports({{constructorSignature, rangeWarning("4", "20")}});

    CFixedPoint silent = signed4dot12(20.0, false);
    EXPECT_TRUE(sameWords(silent.GetValue(), saturated.GetValue()));
    expectNoReports();

    // Doubles are streamed with six significant digits.
    CFixedPoint big(1234567.0, 8, 0, CFixedPoint::SIGN_UNSIGNED, CFixedPoint::ROUND_FLOOR,
                    CFixedPoint::WRAP_AROUND, true, CFixedPoint::MAXVALUE_2N);
    CFixedPoint quarter(17.25, 4, 2, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                        CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N);
    CFixedPoint tiny(-0.0001234, 0, 20, CFixedPoint::SIGN_UNSIGNED, CFixedPoint::ROUND_FLOOR,
                     CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N);
    expectReports({{constructorSignature, rangeWarning("8", "1.23457e+06")},
                   {constructorSignature, rangeWarning("4", "17.25")},
                   {constructorSignature, rangeWarning("0", "-0.0001234")}});

    // The warning follows the conversion's own reports.
    CFixedPoint both(99.0, 4, 4, static_cast<CFixedPoint::SIGN>(3), CFixedPoint::ROUND_FLOOR,
                     CFixedPoint::WRAP_SATURATE, true, CFixedPoint::MAXVALUE_2N_MINUS_1);
    expectReports({{double2fixedSignature, "C error: illegal value for 'double2fixed' (Vorz)."},
                   {constructorSignature, rangeWarning("4", "99")}});
}

TEST_F(ClassTest, AThrowingReportLeavesNoObjectBehind)
{
    // LeakSanitizer and Valgrind check that the record is released.
    throwOnReports(1);
    EXPECT_THROW(signed4dot12(20.0), ReportFailure);
    throwOnReports(1);
    EXPECT_THROW(CFixedPoint(1.0, 100, 61, CFixedPoint::SIGN_SIGNED, CFixedPoint::ROUND_FLOOR,
                             CFixedPoint::WRAP_SATURATE, false, CFixedPoint::MAXVALUE_2N),
                 ReportFailure);

    // A mismatch report that throws from operator+= leaves the object as it was.
    CFixedPoint sum = signed4dot12(1.7);
    const Fixed::fix before = sum.GetValue();
    const CFixedPoint other(Fixed::fix{8, 0, 1, {0x01000000, 0, 0, 0, 0}});
    throwOnReports(1);
    EXPECT_THROW(sum += other, ReportFailure);
    EXPECT_TRUE(sameWords(sum.GetValue(), before));
    clearRecordedReports();
}

}  // namespace
