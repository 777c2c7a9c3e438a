// CFixedPoint: the exported object around one heap record.
#include "FixedPoint.h"

#include <cmath>
#include <memory>
#include <new>

#include "fixed_report.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

// The record under construction: released again if a report throws before
// the constructor completes.
using RecordHolder = std::unique_ptr<Fixed::fixed>;

RecordHolder allocateRecord(const Fixed::fixed& value)
{
    return RecordHolder(new Fixed::fixed(value));
}

// Raw pattern V = msb:lsb of a format of at most 64 bits, as the double that
// is quantised into the mantissa. A signed pattern is negated through its sign bit so
// the double carries the sign; the pattern is expected to have zeros above
// its width (other input gives a defined but meaningless double).
double rawPatternAsDouble(uint64_t pattern, int bits, int sign)
{
    if (sign != CFixedPoint::SIGN_SIGNED)
        return static_cast<double>(pattern);
    const uint32_t top = static_cast<uint32_t>(pattern >> (bits - 1));
    const double factor = 1.0 - 2.0 * static_cast<double>(top);
    if (factor < 0.0)
        pattern = 0u - pattern;
    if (bits < 64)
        pattern &= (uint64_t{1} << bits) - 1u;
    return factor * static_cast<double>(pattern);
}

// The raw pattern x (in mantissa units) floored and saturated into a width
// of 1 to 64 bits, built as a record with no fractional bits. This
// constructor validates nothing: a sign field other than 0 and 1 is read as
// signed, as the quantiser reads it, without the report the record builder
// would give.
Fixed::fixed quantiseRawPattern(double x, int bits, int sign)
{
    const int signedness = sign != CFixedPoint::SIGN_UNSIGNED ? CFixedPoint::SIGN_SIGNED
                                                              : CFixedPoint::SIGN_UNSIGNED;
    return Fixed::double2fixed(x, bits, 0, signedness, CFixedPoint::ROUND_FLOOR,
                               CFixedPoint::WRAP_SATURATE);
}

// The mantissa words in use of a valid width copied into a record; the words
// above keep what the record held.
void storeMantissa(Fixed::fixed& record, const Fixed::fixed& value)
{
    for (int i = 0; i < Fixed::wordCount(value.bits); ++i)
        record.val[i] = value.val[i];
}

// floor(x) as a 64-bit pattern: two's complement for negative values, the
// plain value up to 2^64 - 1, and 2^64 - 1 for 2^64 itself (an unsigned
// 64-bit mantissa near the top rounds up to it as a double). The C++
// conversion is undefined outside the target range, so the cases are spelled
// out; NaN gives 0.
uint64_t floorAsPattern(double x)
{
    const double floored = std::floor(x);
    // GCOVR_EXCL_START: the only caller passes fix2float of at most 64 bits,
    // never NaN nor below -2^63; the guards keep the conversion defined.
    if (!(floored == floored))
        return 0u;
    // GCOVR_EXCL_STOP
    if (floored < 0.0) {
        // GCOVR_EXCL_START: as above
        if (floored < -9223372036854775808.0)
            return uint64_t{1} << 63;
        // GCOVR_EXCL_STOP
        return static_cast<uint64_t>(static_cast<int64_t>(floored));
    }
    if (floored >= 18446744073709551616.0)
        return ~uint64_t{0};
    return static_cast<uint64_t>(floored);
}

}  // namespace

CFixedPoint::CFixedPoint(const Fixed::fixed& value) : m_pValue(new Fixed::fixed(value)) {}

// Branch counts leave out the cleanup edges the compiler adds to the
// new-expressions below (taken only if the initializer throws) and delete's
// null test (a constructed object's record is never null).
CFixedPoint::CFixedPoint(const CFixedPoint& other) : m_pValue(new Fixed::fixed(other.GetValue())) {}  // GCOVR_EXCL_BR_LINE

CFixedPoint::CFixedPoint(const double& value, int preDecimalBits, int fractionBits,
                         CFixedPoint::SIGN sign, CFixedPoint::ROUND round, CFixedPoint::WRAP wrap,
                         bool warn, CFixedPoint::MAXVALUE maxValue)
    : m_pValue(nullptr)
{
    // The conversion's result is built directly in the heap record (no
    // temporary to copy); the record is released again if a report throws.
    RecordHolder record(
        new Fixed::fixed(Fixed::double2fixed(value, preDecimalBits, fractionBits, sign, round, wrap)));  // GCOVR_EXCL_BR_LINE
    if (warn && !PreDecimalSufficient(value, preDecimalBits, sign, maxValue)) {
        FIXED_REPORT(Fixed::signature::constructFromDouble, Fixed::message::predecimalBefore,
                     preDecimalBits, Fixed::message::predecimalMiddle, value,
                     Fixed::message::predecimalAfter);
    }
    m_pValue = record.release();
}

CFixedPoint::CFixedPoint(const unsigned int& msb, const unsigned int& lsb, int preDecimalBits,
                         int fractionBits, CFixedPoint::SIGN sign)
    : m_pValue(nullptr)
{
    Fixed::fixed raw = Fixed::blankRecordInFormat(preDecimalBits, fractionBits, sign);
    raw.val[0] = Fixed::asWord(lsb);
    raw.val[1] = Fixed::asWord(msb);
    RecordHolder record = allocateRecord(raw);
    // Above 64 bits the words stay raw; below 1 bit there is nothing to
    // convert (and no sign bit to test).
    if (raw.bits >= 1 && raw.bits <= 64) {
        const uint64_t pattern = (uint64_t{msb} << 32) | lsb;
        const double x = rawPatternAsDouble(pattern, raw.bits, sign);
        storeMantissa(*record, quantiseRawPattern(x, raw.bits, sign));
    }
    m_pValue = record.release();
}

CFixedPoint::CFixedPoint(const CFixedPoint& other, int preDecimalBits, int fractionBits,
                         CFixedPoint::SIGN sign, CFixedPoint::ROUND round, CFixedPoint::WRAP wrap)
    : m_pValue(nullptr)
{
    // The conversion's result is built directly in the heap record (no
    // temporary to copy); a report that throws releases the record again.
    m_pValue = new Fixed::fixed(  // GCOVR_EXCL_BR_LINE
        Fixed::fixedformat(*other.m_pValue, preDecimalBits, fractionBits, sign, round, wrap));
}

CFixedPoint& CFixedPoint::operator=(const CFixedPoint& other)
{
    *m_pValue = other.GetValue();
    return *this;
}

CFixedPoint::~CFixedPoint()
{
    delete m_pValue;  // GCOVR_EXCL_BR_LINE
    m_pValue = nullptr;
}

Fixed::fixed CFixedPoint::GetValue() const
{
    return *m_pValue;
}

CFixedPoint::operator double()
{
    return Fixed::fixed2double(*m_pValue);
}

CFixedPoint CFixedPoint::operator<<(int n)
{
    return CFixedPoint(Fixed::fixedshift(*m_pValue, n));
}

bool CFixedPoint::PreDecimalSufficient(const double& value, int preDecimalBits,
                                       CFixedPoint::SIGN sign, CFixedPoint::MAXVALUE maxValue)
{
    // The test is floor(value) in [L, U] with P = 2^m, m the magnitude bits.
    // It is evaluated on the floor as a double against exact powers of two,
    // which matches 64-bit integer bounds wherever those exist and keeps the
    // same meaning for magnitudes of 63 bits and more, for negative bit
    // counts (fractional P) and for doubles beyond 64-bit range. NaN fits no
    // range.
    const double floored = std::floor(value);
    if (floored != floored)
        return false;
    const bool isSigned = sign == SIGN_SIGNED;
    const int64_t magnitudeBits = int64_t{preDecimalBits} - (isSigned ? 1 : 0);
    const int exponent = static_cast<int>(
        magnitudeBits < -2000 ? -2000 : (magnitudeBits > 2000 ? 2000 : magnitudeBits));
    const double p = Fixed::powerOfTwo(exponent);
    const double lower = isSigned ? -p : 0.0;
    if (floored < lower)
        return false;
    if (maxValue != MAXVALUE_2N_MINUS_1)
        return floored <= p;
    // floor <= P - 1: for an integral P that is floor < P (P - 1 may not be
    // representable); for a fractional P, P - 1 rounds to a double with the
    // same integers at or below it.
    return p >= 1.0 ? floored < p : floored <= p - 1.0;
}

uint64_t CFixedPoint::GetValueAs_uint64_t() const
{
    const int bits = m_pValue->bits;
    if (bits > 64) {
        FIXED_REPORT(Fixed::signature::getValueAsUint64, Fixed::message::moreThan64Bits);
        return 0u;
    }
    if (bits < 1)
        return 0u;
    const uint64_t pattern = floorAsPattern(Fixed::mantissa2double(*m_pValue));
    return bits == 64 ? pattern : pattern & ((uint64_t{1} << bits) - 1u);
}

CFixedPoint::operator unsigned long long()
{
    return GetValueAs_uint64_t();
}

unsigned int CFixedPoint::MSB() const
{
    return static_cast<unsigned int>(GetValueAs_uint64_t() >> 32);
}

unsigned int CFixedPoint::LSB() const
{
    return static_cast<unsigned int>(GetValueAs_uint64_t() & 0xFFFFFFFFu);
}

CFixedPoint& CFixedPoint::operator+=(const CFixedPoint& other)
{
    // The sum is built directly in this object's record: both operands are
    // copies taken before the call (so x += x adds the old value), and
    // fixedadd reports a mismatch before it writes its result, so a report
    // that throws leaves this object unchanged. Assigning a returned record
    // instead would copy it with wide loads right after the addition's
    // narrow word stores, which the processor cannot forward.
    // The compiler's null test of the placement address is never taken: a
    // constructed object always holds its record.
    new (m_pValue) Fixed::fixed(Fixed::fixedadd(*m_pValue, other.GetValue()));  // GCOVR_EXCL_BR_LINE
    return *this;
}
