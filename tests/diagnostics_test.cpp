// Every catalogued report: exact text, signature and order, and what the call
// still delivers; then widths outside 1..160 that must stay inside the record.
#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "FixedPoint.h"
#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

const std::string d2f = "Fixed::fixed Fixed::double2fixed(double, int, int, int, int, int)";
const std::string ff = "Fixed::fixed Fixed::fixedformat(Fixed::fixed, int, int, int, int, int)";
const std::string ctor = "CFixedPoint::CFixedPoint(const double&, int, int, CFixedPoint::SIGN, CFixedPoint::ROUND, "
                         "CFixedPoint::WRAP, bool, CFixedPoint::MAXVALUE)";
const std::string u64 = "uint64_t CFixedPoint::GetValueAs_uint64_t() const";
const std::string badD2f = "C error: illegal value for 'double2fixed' (";
const std::string badFf = "C error: Illegal value for 'fixedformat' (";

std::string warning(const char* count, const char* value)
{
    return std::string("Not enough predecimal bits (") + count + ")  for fixed point conversion of value " + value +
           ". The value will be limited.";
}

Fixed::fixed rec(int bits, int exp, int sign, uint32_t top, uint32_t low = 0)
{
    return Fixed::fixed{bits, exp, sign, {static_cast<int32_t>(top), static_cast<int32_t>(low), 0, 0, 0}};
}

CFixedPoint make(double v, int intBits, int fracBits, int sign, bool warn, int max = 0)
{
    return CFixedPoint(v, intBits, fracBits, static_cast<CFixedPoint::SIGN>(sign), CFixedPoint::ROUND_FLOOR,
                       CFixedPoint::WRAP_SATURATE, warn, static_cast<CFixedPoint::MAXVALUE>(max));
}

uint32_t top(const Fixed::fixed& f) { return static_cast<uint32_t>(f.val[0]); }

// fix2str1's report followed by fix2str2's, once per call pair.
std::vector<ExpectedReport> digitWidthReports(int pairs)
{
    std::vector<ExpectedReport> reports;
    for (int i = 0; i < pairs; ++i)
        reports.insert(reports.end(),
                       {{"int Fixed::fix2str1(long int*, int, int, char*, int, int, int, int, int)",
                         "Internal error fixpoint calculation No. 2. Report error to author (with parameters)."},
                        {"int Fixed::fix2str2(long int*, int, int, char*, int, int, int, int, int)",
                         "Internal error fixpoint calculation No. 3. Report error to author (with parameters)."}});
    return reports;
}

class Diagnostics : public ReportingTest {};

TEST_F(Diagnostics, TextsSignaturesAndOrder)
{
    struct Case { const char* what; std::function<void()> call; std::vector<ExpectedReport> reports; };
    const Case cases[] = {
        // Invalid flags act as 1 (signed, nearest, wrap): 200.5 -> 201 wrapped.
        {"d2f sign", [] { EXPECT_EQ(top(Fixed::double2fixed(200.5, 8, 0, 2, 0, 0)), 0x7F000000u); }, {{d2f, badD2f + "Vorz)."}}},
        {"d2f round", [] { EXPECT_EQ(top(Fixed::double2fixed(200.5, 8, 0, 0, 7, 0)), 0xC9000000u); }, {{d2f, badD2f + "Rund)."}}},
        {"d2f all", [] { EXPECT_EQ(top(Fixed::double2fixed(200.5, 8, 0, 5, -7, 9)), 0xC9000000u); },
         {{d2f, badD2f + "Vorz)."}, {d2f, badD2f + "Rund)."}, {d2f, badD2f + "Wrap)."}}},
        {"d2f 161 bits", [] {
             const Fixed::fixed f = Fixed::double2fixed(1.0, 100, 61, 1, 0, 0);
             EXPECT_EQ(model::hexWords(f.val, 5) + std::to_string(f.bits) + " " + std::to_string(f.exp),
                       "00000000 00000000 00000000 00000000 00000000 161 -61");
             // A value far beyond any format: still zero words, and no
             // saturation pattern written, so no saturation flagged.
             const Fixed::Quantised q = Fixed::double2fixedWithFlag(1e300, 100, 61, 1, 0, 0);
             EXPECT_EQ(model::hexWords(q.value.val, 5) + std::to_string(q.saturated),
                       "00000000 00000000 00000000 00000000 00000000 0");
         }, {{d2f, "C error: Too many bits used (double2fixed)."}, {d2f, "C error: Too many bits used (double2fixed)."}}},
        {"d2f 160 bits", [] { EXPECT_EQ(Fixed::double2fixed(std::ldexp(-1.0, -80), 80, 80, 1, 0, 0).val[4], -1); }, {}},
        {"d2f wrapped width", [] { EXPECT_EQ(Fixed::double2fixed(1.0, INT_MAX, INT_MAX, 5, 0, 0).bits, -2); },
         {{d2f, badD2f + "Vorz)."}}},
        {"ff flags", [] { EXPECT_EQ(top(Fixed::fixedformat(rec(16, 0, 1, 0x012C0000), 8, 0, 2, -1, 7)), 0x2C000000u); },
         {{ff, badFf + "Vorz)."}, {ff, badFf + "Rund)."}, {ff, badFf + "Wrap)."}}},
        {"ff round -1 is nearest", [] { EXPECT_EQ(top(Fixed::fixedformat(rec(16, -8, 1, 0x01800000), 4, 0, 1, -1, 0)), 0x20000000u); },
         {{ff, badFf + "Rund)."}}},
        {"ff width after flags", [] { Fixed::fixedformat(rec(16, 0, 1, 0x012C0000), 200, 0, -1, 0, 5); },
         {{ff, badFf + "Vorz)."}, {ff, badFf + "Wrap)."}, {ff, "C error: Too many bits used (fixedformat)."}}},
        {"ff 160 bits", [] { Fixed::fixedformat(rec(16, 0, 1, 0x012C0000), 100, 60, 1, 0, 0); }, {}},
        {"fixedadd", [] { EXPECT_EQ(top(Fixed::fixedadd(rec(16, -8, 1, 0x00050000), rec(16, -4, 1, 0x00070000))), 0x000C0000u); },
         {{"Fixed::fixed Fixed::fixedadd(Fixed::fixed, Fixed::fixed)",
           "C error: fixedpoint numbers with different format can't be added (fixedadd)."}}},
        // Widths 16 and 17 differ: both one word, combined as they stand.
        {"fixedsub", [] { EXPECT_EQ(top(Fixed::fixedsub(rec(16, -8, 1, 0x00050000), rec(17, -8, 1, 0x00078000))), 0xFFFD8000u); },
         {{"Fixed::fixed Fixed::fixedsub(Fixed::fixed, Fixed::fixed)",
           "C error: fixedpoint numbers with different format can't be subtracted (fixedsub)."}}},
        {"fixedmult 161", [] {
             const Fixed::fixed p = Fixed::fixedmult(rec(80, -3, 0, 1, 2), rec(81, -4, 1, 4, 5));
             EXPECT_EQ(model::hexWords(p.val, 5) + std::to_string(p.bits) + " " + std::to_string(p.exp) + " " + std::to_string(p.sign),
                       "00000000 00000000 00000000 00000000 00000000 161 -7 1");
         }, {{"Fixed::fixed Fixed::fixedmult(Fixed::fixed, Fixed::fixed)", "C error: Too many bits used (fixedmult)."}}},
        {"gt le", [] {
             EXPECT_EQ(Fixed::fixedgt(rec(16, -8, 0, 0x00030000), rec(16, -4, 0, 0x00020000)), 1);
             EXPECT_EQ(Fixed::fixedle(rec(16, -8, 0, 0x00030000), rec(16, -4, 0, 0x00020000)), 0);
             // Signed mantissas 3 and -2: read as plain words they would order the other way.
             EXPECT_EQ(Fixed::fixedgt(rec(16, -8, 1, 0x00030000), rec(16, -4, 1, 0xFFFE0000)), 1);
         }, std::vector<ExpectedReport>(3, {"int Fixed::fixedgt(Fixed::fixed, Fixed::fixed)",
             "C error: fixedpoint numbers with different format can't be compared (fixed/gt/lt/ge/le)."})},
        {"eq", [] { EXPECT_EQ(Fixed::fixedeq(rec(8, 0, 0, 0x80000000), rec(8, 0, 1, 0x80000000)), 1); },
         {{"int Fixed::fixedeq(Fixed::fixed, Fixed::fixed)", "C error: fixedpoint numbers with different format can't be compared (fixedeq)."}}},
        {"digit width", [] {
             const int32_t w[1] = {static_cast<int32_t>(0xFFC00000u)};
             std::string buffer(8, '#');
             for (int k : {0, 5, -3, INT_MIN})
                 for (int query : {0, 1})
                     EXPECT_EQ(Fixed::fix2str1(w, 10, -8, &buffer[7], k, 1, 0, 0, query) +
                               Fixed::fix2str2(w, 10, -8, &buffer[7], k, 1, 0, 0, query), 0);
             EXPECT_EQ(buffer, std::string(8, '#'));
         }, digitWidthReports(8)},
        {"uint64 of 96 bits", [] {
             CFixedPoint x(1u, 0u, 64, 32, CFixedPoint::SIGN_SIGNED);
             EXPECT_EQ(static_cast<double>(x), 1.0);
             EXPECT_EQ(x.GetValueAs_uint64_t() + static_cast<unsigned long long>(x) + x.MSB() + x.LSB(), 0u);
         }, std::vector<ExpectedReport>(4, {u64, "Method is not supported for numbers with more than 64bits"})},
        // Doubles in the warning are streamed with six significant digits;
        // the warning follows the conversion's own reports.
        {"warning", [] { EXPECT_EQ(static_cast<double>(make(20.0, 4, 12, 1, true)), 7.999755859375); }, {{ctor, warning("4", "20")}}},
        {"silent", [] { make(20.0, 4, 12, 1, false); }, {}},
        {"fits", [] { make(7.5, 4, 12, 1, true); }, {}},
        {"warning digits", [] { make(1234567.0, 8, 0, 0, true, 1); make(17.25, 4, 2, 1, true, 1); make(-0.0001234, 0, 20, 0, true, 1); },
         {{ctor, warning("8", "1.23457e+06")}, {ctor, warning("4", "17.25")}, {ctor, warning("0", "-0.0001234")}}},
        {"warning after", [] { make(99.0, 4, 4, 3, true); }, {{d2f, badD2f + "Vorz)."}, {ctor, warning("4", "99")}}},
        {"reformat", [] {
             const CFixedPoint source = make(-1.5, 8, 8, 1, false);  // unsigned view 254.5: saturates
             CFixedPoint view(source, 4, 0, CFixedPoint::SIGN_UNSIGNED, static_cast<CFixedPoint::ROUND>(3),
                              CFixedPoint::WRAP_SATURATE);
             EXPECT_EQ(static_cast<double>(view), 15.0);
         }, {{ff, badFf + "Rund)."}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        c.call();
        expectReports(c.reports);
    }
}

// A width outside 1..160 gets no mantissa and never makes a routine touch
// words beyond the record's five.
TEST_F(Diagnostics, WidthsOutsideTheRecordStayInside)
{
    const std::string zeros = model::hexWords(Fixed::fixed{}.val, 5);
    for (int bits : {0, -7, 161, 1000, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(bits);
        const Fixed::fixed ones{bits, 0, 1, {-1, -1, -1, -1, -1}};
        EXPECT_EQ(model::hexWords(Fixed::fixedformat(ones, 40, 8, 1, 1, 0).val, 5), zeros);
        EXPECT_EQ(model::hexWords(Fixed::fixedmult(ones, rec(12, 0, 1, 0x80000000)).val, 5), zeros);
        EXPECT_EQ(model::hexWords(Fixed::fixedmult(rec(12, 0, 1, 0x80000000), ones).val, 5), zeros);
        const Fixed::fixed five{bits, 0, 0, {5, 5, 5, 5, 5}}, one{bits, 0, 0, {1, 1, 1, 1, 1}};
        EXPECT_EQ(Fixed::fixedsub(five, one).val[0], 4);
        EXPECT_EQ(Fixed::fixedadd(five, one).val[0], 6);
        EXPECT_EQ(Fixed::fixedgt(ones, ones) + Fixed::fixedeq(ones, ones), 1);
        clearRecordedReports();
    }
}

}  // namespace
