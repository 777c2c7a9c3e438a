// Diagnostic reporting: every failed check of the library becomes one line of
// text handed to the host's _KV_ProcessErrorString with message type 2, and
// the operation then goes on. The texts and signature strings below are the
// library's fixed catalogue; hosts and log filters match them byte for byte.
#ifndef FIXEDPOINT_FIXED_REPORT_H
#define FIXEDPOINT_FIXED_REPORT_H

#include <initializer_list>

namespace Fixed {

/// One piece of a diagnostic text: 8-bit text, an int or a double. Ints and
/// doubles are streamed with QTextStream's default settings (decimal; smart
/// notation with 6 significant digits).
class ReportPiece {
public:
    enum Kind { Text, Integer, Real };
    ReportPiece(const char* text) : m_kind(Text), m_text(text), m_integer(0), m_real(0.0) {}
    ReportPiece(int value) : m_kind(Integer), m_text(nullptr), m_integer(value), m_real(0.0) {}
    ReportPiece(double value) : m_kind(Real), m_text(nullptr), m_integer(0), m_real(value) {}

    Kind kind() const { return m_kind; }
    const char* text() const { return m_text; }
    int integer() const { return m_integer; }
    double real() const { return m_real; }

private:
    Kind m_kind;
    const char* m_text;
    int m_integer;
    double m_real;
};

/// Composes the pieces (concatenated, nothing added) into a QString through a
/// QTextStream and calls _KV_ProcessErrorString(file, line, function, message,
/// 2). An exception thrown by the host propagates after the temporaries are
/// released.
void report(const char* file, int line, const char* function,
            std::initializer_list<ReportPiece> pieces);

/// Signature texts passed as the reporting function.
namespace signature {
constexpr const char* getValueAsUint64 = "uint64_t CFixedPoint::GetValueAs_uint64_t() const";
constexpr const char* constructFromDouble =
    "CFixedPoint::CFixedPoint(const double&, int, int, CFixedPoint::SIGN, CFixedPoint::ROUND, "
    "CFixedPoint::WRAP, bool, CFixedPoint::MAXVALUE)";
constexpr const char* double2fixed = "Fixed::fixed Fixed::double2fixed(double, int, int, int, int, int)";
constexpr const char* float2fix = "int Fixed::float2fix(double, int, long int*, int, int, int)";
constexpr const char* fixedformat = "Fixed::fixed Fixed::fixedformat(Fixed::fixed, int, int, int, int, int)";
constexpr const char* fixedadd = "Fixed::fixed Fixed::fixedadd(Fixed::fixed, Fixed::fixed)";
constexpr const char* fixedsub = "Fixed::fixed Fixed::fixedsub(Fixed::fixed, Fixed::fixed)";
constexpr const char* fixedmult = "Fixed::fixed Fixed::fixedmult(Fixed::fixed, Fixed::fixed)";
constexpr const char* fixedgt = "int Fixed::fixedgt(Fixed::fixed, Fixed::fixed)";
constexpr const char* fixedeq = "int Fixed::fixedeq(Fixed::fixed, Fixed::fixed)";
constexpr const char* fix2str1 = "int Fixed::fix2str1(long int*, int, int, char*, int, int, int, int, int)";
constexpr const char* fix2str2 = "int Fixed::fix2str2(long int*, int, int, char*, int, int, int, int, int)";
}  // namespace signature

/// The texts of the catalogue that are not composed from values.
namespace message {
constexpr const char* moreThan64Bits = "Method is not supported for numbers with more than 64bits";
constexpr const char* predecimalBefore = "Not enough predecimal bits (";
constexpr const char* predecimalMiddle = ")  for fixed point conversion of value ";
constexpr const char* predecimalAfter = ". The value will be limited.";
constexpr const char* double2fixedSign = "C error: illegal value for 'double2fixed' (Vorz).";
constexpr const char* double2fixedRound = "C error: illegal value for 'double2fixed' (Rund).";
constexpr const char* double2fixedWrap = "C error: illegal value for 'double2fixed' (Wrap).";
constexpr const char* double2fixedWidth = "C error: Too many bits used (double2fixed).";
constexpr const char* float2fixRounding =
    "Internal error fixpoint calculation No. 1.1. Report error to author (with parameters).";
constexpr const char* float2fixSplit =
    "Internal error fixpoint calculation No. 1.2. Report error to author (with parameters).";
constexpr const char* fixedformatSign = "C error: Illegal value for 'fixedformat' (Vorz).";
constexpr const char* fixedformatRound = "C error: Illegal value for 'fixedformat' (Rund).";
constexpr const char* fixedformatWrap = "C error: Illegal value for 'fixedformat' (Wrap).";
constexpr const char* fixedformatWidth = "C error: Too many bits used (fixedformat).";
constexpr const char* fixedaddFormat =
    "C error: fixedpoint numbers with different format can't be added (fixedadd).";
constexpr const char* fixedsubFormat =
    "C error: fixedpoint numbers with different format can't be subtracted (fixedsub).";
constexpr const char* fixedmultWidth = "C error: Too many bits used (fixedmult).";
constexpr const char* fixedgtFormat =
    "C error: fixedpoint numbers with different format can't be compared (fixed/gt/lt/ge/le).";
constexpr const char* fixedeqFormat =
    "C error: fixedpoint numbers with different format can't be compared (fixedeq).";
constexpr const char* fix2str1DigitWidth =
    "Internal error fixpoint calculation No. 2. Report error to author (with parameters).";
constexpr const char* fix2str2DigitWidth =
    "Internal error fixpoint calculation No. 3. Report error to author (with parameters).";
}  // namespace message

}  // namespace Fixed

/// Reports from the calling statement's own file and line.
#define FIXED_REPORT(function, ...) ::Fixed::report(__FILE__, __LINE__, (function), {__VA_ARGS__})

#endif  // FIXEDPOINT_FIXED_REPORT_H
