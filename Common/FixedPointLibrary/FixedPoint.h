/// @file
/// FixedPoint: exact binary fixed-point values of 1 to 160 bits.
///
/// CFixedPoint is the library's only exported type. It owns one value record
/// (Fixed::fix) on the heap; the record is also the exchange format of the
/// core. Failures never throw from the library itself and never return error
/// codes: every failed check is reported to the host through
/// _KV_ProcessErrorString (message type 2, declared in
/// KV_ProcessErrorString.h) and the operation completes with a defined
/// result.
#ifndef FIXEDPOINT_FIXEDPOINT_H
#define FIXEDPOINT_FIXEDPOINT_H

#include <cstdint>

#include "FixedPoint_export.h"

/// The library's core: the value record and the operations on it.
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
    int32_t bits;    ///< Total width in bits; 1 to 160 for a valid record.
    int32_t exp;     ///< Power of two of the least significant mantissa bit.
    int32_t sign;    ///< 0 unsigned; any other value two's complement.
    int32_t val[5];  ///< Mantissa words, left-aligned, val[0] least significant.
};

/// The core's name for the record: the same type as Fixed::fix.
typedef fix fixed;

static_assert(sizeof(fix) == 32, "the value record is exactly eight 32-bit words");

}  // namespace Fixed

/// One fixed-point value with its format, owned on the heap.
///
/// Copies (copy construction and assignment) are deep: no two objects ever
/// share a record.
///
/// Widths: a format's width is preDecimalBits + fractionBits, added as 32-bit
/// two's complement (so 2147483647 + 1 gives a negative width), and a record
/// holds 1 to 160 bits. The constructors that convert (from a double, the
/// reformat) report a width above 160 as "C error: Too many bits used (...)."
/// and build a record of that width whose mantissa words are all zero; a
/// width below 1 is not reported and gives such a zero record too. The
/// record and raw-word constructors take any width without a report. Whatever
/// width a record claims, nothing reads or writes beyond its five words, and
/// a record whose width lies outside 1 to 160 reads as a zero mantissa: 0 from
/// GetValueAs_uint64_t(), MSB() and LSB(), and 0.0 from operator double()
/// unless its exp lies beyond the double range (see there).
///
/// Threads: the library keeps no mutable global state of its own; its only
/// shared data are constant tables. Distinct objects may be used on distinct
/// threads at the same time. One object may be read by several threads at
/// once: copied, passed as the source of the reformat constructor or as the
/// right operand of operator+=, or read through GetValue(),
/// GetValueAs_uint64_t(), MSB(), LSB(), operator double(), operator unsigned
/// long long() and operator<<() (the last three are not const members, but
/// none of them changes the object). operator+= and assignment change the
/// object: while they run, no other thread may use that object. Reports run
/// on the thread of the failing call and the library holds no lock while it
/// calls the host, so a host whose report function can be reached from
/// several threads makes it safe for concurrent calls.
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

    /// Takes the record unchanged (all eight words); no validation and no
    /// report, whatever its width, exponent or sign.
    CFixedPoint(const Fixed::fix& value);

    /// Deep copy of other's record.
    CFixedPoint(const CFixedPoint& other);

    /// Quantises value into preDecimalBits integer bits (sign bit included
    /// for signed formats) and fractionBits fractional bits: the record has
    /// preDecimalBits + fractionBits bits and exp = -fractionBits, and its
    /// mantissa is value x 2^fractionBits (one double multiplication),
    /// floored or rounded to nearest with ties toward plus infinity, then
    /// saturated to the format's bounds or wrapped modulo 2^bits. A double
    /// carries 53 significant bits, so in a wider mantissa the bits below
    /// them are zero.
    ///
    /// Invalid sign, round or wrap values are reported ("C error: illegal
    /// value for 'double2fixed' (...).") and then used as they are: any
    /// nonzero flag counts as SIGN_SIGNED, ROUND_NEAREST or WRAP_AROUND, and
    /// the record keeps the sign as passed. A width above 160 is reported and
    /// gives a zero mantissa; a width below 1 gives one without a report.
    ///
    /// Inputs the conversion cannot quantise (the mantissa words are written
    /// in doubles):
    /// - NaN: a zero mantissa and the report "Internal error fixpoint
    ///   calculation No. 1.2. ...", in every mode.
    /// - +inf and -inf: with ROUND_FLOOR and WRAP_SATURATE they saturate
    ///   silently (+inf to the maximum, -inf to the minimum, or to zero in an
    ///   unsigned format); with ROUND_NEAREST or WRAP_AROUND they give a zero
    ///   mantissa and the same "No. 1.2" report.
    /// - A finite value whose scaled size value x 2^fractionBits overflows the
    ///   double range (1e300 with 48 fractional bits) becomes the infinity of
    ///   its sign and then behaves as above.
    ///
    /// With warn set, PreDecimalSufficient() tests the unquantised value and,
    /// if its integer part does not fit, "Not enough predecimal bits (" ... is
    /// reported after the conversion's own reports (a NaN always gets it, an
    /// infinity for any preDecimalBits up to 1023). The warning changes
    /// nothing: the value is saturated or wrapped as wrap says, and warn
    /// false gives the identical record.
    CFixedPoint(const double& value, int preDecimalBits, int fractionBits,
                CFixedPoint::SIGN sign, CFixedPoint::ROUND round,
                CFixedPoint::WRAP wrap, bool warn,
                CFixedPoint::MAXVALUE maxValue);

    /// Builds a value from the raw mantissa pattern msb:lsb (msb holds bits
    /// 32 to 63), right-aligned, of a format of preDecimalBits +
    /// fractionBits bits with exp = -fractionBits; a signed pattern is in
    /// two's complement within the width. Nothing is reported.
    ///
    /// - 1 to 53 bits: the mantissa is the pattern, exactly.
    /// - 54 to 64 bits: the pattern passes through a double and keeps 53
    ///   significant bits (rounded to nearest, ties to even); a pattern that
    ///   rounds up beyond the largest mantissa is saturated to it. The 60-bit
    ///   unsigned pattern 0x800000000000001 becomes 0x800000000000000.
    /// - Bits set above the width: an unsigned pattern saturates to
    ///   2^bits - 1; for a signed pattern the result is a defined value that
    ///   means nothing, so clear those bits first.
    /// - Above 64 bits (above 160 too) the words are stored raw, unchecked:
    ///   val[0] = lsb, val[1] = msb, the rest zero, without sign extension.
    ///   For 96, 128 and 160 bits the mantissa is then msb:lsb; for other
    ///   widths the words are not left-aligned and the mantissa reads as
    ///   msb:lsb shifted right by the pad, 32 x ceil(bits / 32) - bits (by 28
    ///   for 100 bits).
    /// - Below 1 bit: the words are stored raw and nothing is converted; the
    ///   record reads as zero.
    CFixedPoint(const unsigned int& msb, const unsigned int& lsb,
                int preDecimalBits, int fractionBits, CFixedPoint::SIGN sign);

    /// Re-quantises other's value into a new format of preDecimalBits +
    /// fractionBits bits with exp = -fractionBits, bit-exact at every width.
    /// The source mantissa is read under the new signedness, not its own: 15.0
    /// held unsigned in 4.12 bits (pattern 0xF000) becomes -1.0 in a signed
    /// 8.4 format, and a negative signed value becomes the large unsigned
    /// number with the same pattern (then saturated or wrapped). Dropped low
    /// bits are floored or rounded half up; out-of-range values saturate or
    /// wrap. other is not changed.
    ///
    /// Invalid sign, round or wrap values are reported ("C error: Illegal
    /// value for 'fixedformat' (...).") and then used, any nonzero flag
    /// counting as 1. A new width above 160 is reported ("C error: Too many
    /// bits used (fixedformat).") and gives a zero mantissa; a new width
    /// below 1, or a source whose width lies outside 1 to 160, gives a zero
    /// mantissa without a report.
    CFixedPoint(const CFixedPoint& other, int preDecimalBits, int fractionBits,
                CFixedPoint::SIGN sign, CFixedPoint::ROUND round,
                CFixedPoint::WRAP wrap);

    /// Deep copy into this object's existing record (all eight words).
    CFixedPoint& operator=(const CFixedPoint& other);

    /// Releases the object's record.
    virtual ~CFixedPoint();

    /// A copy of the record, all eight words.
    Fixed::fix GetValue() const;

    /// The value as a double: 2^exp, formed first, times the mantissa read as
    /// a double.
    ///
    /// - Up to 53 bits: exact while the result is a normal double.
    /// - 54 to 64 bits: the mantissa correctly rounded to 53 bits.
    /// - Above 64 bits the mantissa words are converted and added as doubles
    ///   from the lowest word upward, the top word last and carrying the sign,
    ///   and every addition rounds to 53 bits. A non-negative value can differ
    ///   from the correctly rounded double in its last bits. For a negative
    ///   value the lower words add up to a large positive number that the
    ///   negative top word cancels, and the rounding error of that sum
    ///   survives: -1.0 held signed in 100 integer and 60 fractional bits
    ///   reads as 0.0. Read wide values exactly from GetValue().
    /// - A width outside 1 to 160 reads as a zero mantissa.
    /// - exp above 1023 (after a large shift): 2^exp is infinite, so a nonzero
    ///   mantissa gives +inf or -inf and a zero mantissa NaN. exp below -1074:
    ///   2^exp is 0, so the result is 0.0 even where mantissa x 2^exp would
    ///   be representable.
    ///
    /// Not const, but the object is not changed.
    operator double();

    /// A new object with the same width, signedness and mantissa words and exp
    /// larger by n: the value times 2^n, exactly, for any n (a negative n
    /// divides), with fractionBits - n fractional bits. This object is
    /// unchanged. exp + n is added as 32-bit two's complement, so a shift that
    /// carries exp past the int range wraps around (exp -12 shifted by
    /// INT_MIN gives exp 2147483636). Shifts never change the raw pattern of
    /// GetValueAs_uint64_t(); operator double() of a shifted value follows
    /// the double range (infinite or NaN for exp above 1023, 0.0 for exp
    /// below -1074).
    CFixedPoint operator<<(int n);

    /// Whether floor(value) lies within the integer range of preDecimalBits
    /// bits: [-2^(n-1), 2^(n-1) - 1] signed, [0, 2^n - 1] unsigned; with
    /// MAXVALUE_2N the upper bound is one larger. A sign other than
    /// SIGN_SIGNED counts as unsigned. The fractional bits play no part. NaN
    /// gives false, and so do the infinities for every preDecimalBits up to
    /// 1023. Reports nothing; uses no object.
    static bool PreDecimalSufficient(const double& value, int preDecimalBits,
                                     CFixedPoint::SIGN sign,
                                     CFixedPoint::MAXVALUE maxValue);

    /// The mantissa's raw pattern, right-aligned, zeros above the width (a
    /// negative mantissa comes back in two's complement within its width,
    /// not sign-extended); the exponent plays no part.
    ///
    /// - Up to 53 bits: the exact pattern.
    /// - 54 to 64 bits: the mantissa passes through a double and keeps 53
    ///   significant bits (rounded to nearest, ties to even) and is then cut
    ///   to the width. Near the top of the range the rounding can
    ///   carry out of the width: a signed mantissa that rounds up to
    ///   2^(bits-1) returns the minimum's pattern (the signed 64-bit maximum
    ///   0x7FFFFFFFFFFFFFFF returns 0x8000000000000000), and an unsigned one
    ///   that rounds up to 2^bits returns 0 (the unsigned 54-bit maximum
    ///   returns 0), except at 64 bits, where it returns 0xFFFFFFFFFFFFFFFF.
    /// - Above 64 bits: reports "Method is not supported for numbers with
    ///   more than 64bits" and returns 0.
    /// - Below 1 bit: returns 0 without a report.
    uint64_t GetValueAs_uint64_t() const;

    /// Same as GetValueAs_uint64_t(), with the same 53 significant bits and
    /// the same report. Not const, but the object is not changed.
    operator unsigned long long();

    /// Bits 32 to 63 of GetValueAs_uint64_t(): from 54 bits on, those of the
    /// pattern rounded to 53 significant bits. Above 64 bits each call
    /// reports once and returns 0.
    unsigned int MSB() const;

    /// Bits 0 to 31 of GetValueAs_uint64_t(): from 54 bits on, those of the
    /// pattern rounded to 53 significant bits. Above 64 bits each call
    /// reports once and returns 0.
    unsigned int LSB() const;

    /// Adds other's value in place, keeping this object's format. The sum
    /// wraps at the format's width. A different format of other (width,
    /// exp or sign) is reported ("C error: fixedpoint numbers with different
    /// format can't be added (fixedadd).") and its raw words are added
    /// anyway. x += x doubles x. If the host's report function throws, this
    /// object is unchanged.
    CFixedPoint& operator+=(const CFixedPoint& other);

private:
    Fixed::fix* m_pValue;
};

#endif  // FIXEDPOINT_FIXEDPOINT_H
