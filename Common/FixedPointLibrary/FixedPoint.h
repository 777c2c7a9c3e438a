// FixedPoint: exact binary fixed-point values of 1 to 160 bits.
//
// CFixedPoint is the library's only exported type. It owns one value record
// (Fixed::fix) on the heap; the record is also the exchange format of the
// core. Failures never throw from the library itself and never return error
// codes: every failed check is reported to the host through
// _KV_ProcessErrorString (message type 2) and the operation completes with a
// defined result.
#ifndef FIXEDPOINT_FIXEDPOINT_H
#define FIXEDPOINT_FIXEDPOINT_H

#include <cstdint>

#include "FixedPoint_export.h"

namespace Fixed {

/// A fixed-point value: M x 2^exp, M held left-aligned in val[0..nw-1].
///
/// - bits: total width (integer + fractional bits), 1 to 160.
/// - exp:  power of two of the least significant mantissa bit.
/// - sign: 0 unsigned mantissa, 1 two's complement mantissa.
/// - val:  mantissa words, val[0] least significant. nw = ceil(bits / 32)
///         words are in use; the top mantissa bit is bit 31 of val[nw-1] and
///         the pad bits at the bottom of val[0] are zero. Words above nw carry
///         no part of the value.
struct fix {
    int32_t bits;
    int32_t exp;
    int32_t sign;
    int32_t val[5];
};

typedef fix fixed;

static_assert(sizeof(fix) == 32, "the value record is exactly eight 32-bit words");

}  // namespace Fixed

/// One fixed-point value with its format, owned on the heap.
///
/// Copies (copy construction and assignment) are deep: no two objects ever
/// share a record.
class FIXEDPOINT_EXPORT CFixedPoint {
public:
    /// Signedness of a format. The underlying type is fixed so that values
    /// outside the enumerators (which the library reports and tolerates) are
    /// well-defined.
    enum SIGN : int { SIGN_UNSIGNED = 0, SIGN_SIGNED = 1 };
    /// Rounding of bits dropped at the low end: floor, or nearest with ties
    /// toward plus infinity.
    enum ROUND : int { ROUND_FLOOR = 0, ROUND_NEAREST = 1 };
    /// Out-of-range values: saturate to the format's bounds, or keep the low
    /// bits (wrap-around modulo 2^bits).
    enum WRAP : int { WRAP_SATURATE = 0, WRAP_AROUND = 1 };
    /// Largest integer part accepted by PreDecimalSufficient: 2^n - 1 or 2^n.
    enum MAXVALUE : int { MAXVALUE_2N_MINUS_1 = 0, MAXVALUE_2N = 1 };

    /// Takes the record unchanged (all eight words); no validation.
    CFixedPoint(const Fixed::fix& value);

    /// Deep copy of other's record.
    CFixedPoint(const CFixedPoint& other);

    /// Quantises value into preDecimalBits integer bits (sign bit included
    /// for signed formats) and fractionBits fractional bits. Invalid flags and
    /// widths above 160 are reported and tolerated. With warn set, an integer
    /// part outside the range chosen by maxValue is reported as
    /// "Not enough predecimal bits (" ... after the conversion's own reports;
    /// the value itself is saturated or wrapped as wrap says.
    CFixedPoint(const double& value, int preDecimalBits, int fractionBits,
                CFixedPoint::SIGN sign, CFixedPoint::ROUND round,
                CFixedPoint::WRAP wrap, bool warn,
                CFixedPoint::MAXVALUE maxValue);

    /// Builds a value from the right-aligned raw pattern msb:lsb of a format
    /// of at most 64 bits (the pattern passes through a double, so widths
    /// above 53 keep 53 significant bits; an unsigned pattern with bits above
    /// the width saturates). Above 64 bits the words are stored raw:
    /// val[0] = lsb, val[1] = msb, the rest zero.
    CFixedPoint(const unsigned int& msb, const unsigned int& lsb,
                int preDecimalBits, int fractionBits, CFixedPoint::SIGN sign);

    /// Re-quantises other's value into a new format. The source mantissa is
    /// read under the new signedness. Dropped low bits are floored or rounded
    /// half up; out-of-range values saturate or wrap.
    CFixedPoint(const CFixedPoint& other, int preDecimalBits, int fractionBits,
                CFixedPoint::SIGN sign, CFixedPoint::ROUND round,
                CFixedPoint::WRAP wrap);

    /// Deep copy into this object's existing record.
    CFixedPoint& operator=(const CFixedPoint& other);

    virtual ~CFixedPoint();

    /// A copy of the record, all eight words.
    Fixed::fix GetValue() const;

    /// The value as a double: 2^exp x mantissa. Exact up to 53 bits,
    /// correctly rounded up to 64 bits.
    operator double();

    /// A new object with the same mantissa and exp larger by n: the value
    /// times 2^n, exactly. This object is unchanged.
    CFixedPoint operator<<(int n);

    /// Whether floor(value) lies within the integer range of preDecimalBits
    /// bits: [-2^(n-1), 2^(n-1) - 1] signed, [0, 2^n - 1] unsigned; with
    /// MAXVALUE_2N the upper bound is one larger. A sign other than
    /// SIGN_SIGNED counts as unsigned.
    static bool PreDecimalSufficient(const double& value, int preDecimalBits,
                                     CFixedPoint::SIGN sign,
                                     CFixedPoint::MAXVALUE maxValue);

    /// The mantissa's raw pattern, right-aligned, zeros above the width (a
    /// negative mantissa comes back in two's complement within its width).
    /// Above 64 bits: reports "Method is not supported for numbers with more
    /// than 64bits" and returns 0.
    uint64_t GetValueAs_uint64_t() const;

    /// Same as GetValueAs_uint64_t(), with the same report.
    operator unsigned long long();

    /// Bits 32 to 63 of GetValueAs_uint64_t().
    unsigned int MSB() const;

    /// Bits 0 to 31 of GetValueAs_uint64_t().
    unsigned int LSB() const;

    /// Adds other's value in place, keeping this object's format. The sum
    /// wraps at the format's width. A different format of other is reported
    /// and its raw words are added anyway. x += x doubles x.
    CFixedPoint& operator+=(const CFixedPoint& other);

private:
    Fixed::fix* m_pValue;
};

#endif  // FIXEDPOINT_FIXEDPOINT_H
