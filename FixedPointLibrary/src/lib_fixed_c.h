// Record layer of the core: operations on whole Fixed::fixed records, passed
// and returned by value. Argument errors are reported ("C error: ...") and the
// operation still returns a record.
#ifndef FIXEDPOINT_LIB_FIXED_C_H
#define FIXEDPOINT_LIB_FIXED_C_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "FixedPoint.h"
#include "lib_fixpoint.h"

namespace Fixed {

/// Signedness, rounding and overflow flags are valid as 0 or 1 only. The
/// comparison is unsigned so that negative values are invalid too; the
/// operations report an invalid flag and then pass it on unchanged.
inline bool isInvalidFlag(int flag) { return static_cast<uint32_t>(flag) > 1u; }

/// The texts one record operation reports for its three flags.
struct FlagMessages {
    const char* sign;
    const char* round;
    const char* wrap;
};

/// Reports each invalid flag, in the order sign, round, wrap, with the
/// calling operation's signature text and messages.
void reportInvalidFlags(const char* function, const FlagMessages& messages, int sign, int round,
                        int wrap);

/// The format fields two operands must share. Comparisons by value read each
/// mantissa under its own signedness and need width and exponent only; the
/// word-wise operations need the signedness too.
enum class FormatFields { WidthAndExponent, All };

/// A record's width and exponent as one 64-bit value: two records agree in
/// both exactly when these agree, on either byte order. A record passed by
/// value has just been stored by its caller, and every field read back costs
/// a forwarded load; one read serves both fields.
inline uint64_t widthAndExponent(const fixed& f)
{
    static_assert(offsetof(fixed, exp) == offsetof(fixed, bits) + sizeof(int32_t),
                  "width and exponent are adjacent");
    uint64_t both = 0;
    std::memcpy(&both, reinterpret_cast<const unsigned char*>(&f) + offsetof(fixed, bits),
                sizeof both);
    return both;
}

/// Whether a and b agree in the given fields. The operations report a
/// mismatch and then carry on with the raw words.
inline bool formatsMatch(const fixed& a, const fixed& b, FormatFields fields = FormatFields::All)
{
    // Differences ORed rather than tested in turn: one branch on the hot paths.
    const uint64_t differingWidthOrExponent = widthAndExponent(a) ^ widthAndExponent(b);
    const uint32_t signedness = fields == FormatFields::All ? asUnsigned(a.sign ^ b.sign) : 0u;
    return (differingWidthOrExponent | signedness) == 0u;
}

/// True when any flag is invalid or the width exceeds a record: the calls
/// that have something to report.
inline bool hasArgumentToReport(int sign, int round, int wrap, int bits)
{
    return isInvalidFlag(sign) || isInvalidFlag(round) || isInvalidFlag(wrap) || bits > maxBits;
}

/// A record with the given header and every mantissa word zero (so that the
/// words above a width carry nothing and records copy and compare
/// deterministically): the one place records are begun.
inline fixed blankRecord(int32_t bits, int32_t exp, int32_t sign)
{
    fixed record{};
    record.bits = bits;
    record.exp = exp;
    record.sign = sign;
    return record;
}

/// A blank record in the format of intbits integer and fracbits fractional
/// bits: bits = intbits + fracbits, exp = -fracbits (both wrapping at 32
/// bits, as the format's arguments are not checked on their own).
inline fixed blankRecordInFormat(int intbits, int fracbits, int sign)
{
    return blankRecord(wrappingAdd(intbits, fracbits), wrappingNegate(fracbits), sign);
}

/// A record of intbits + fracbits bits and exp = -fracbits holding value,
/// floored or rounded to nearest (ties up), saturated or wrapped.
fixed double2fixed(double value, int intbits, int fracbits, int sign, int round, int wrap);
/// A record together with the saturation flag its quantiser computed: 1 when
/// a saturation pattern was written in place of the rounded value.
struct Quantised {
    fixed value;
    int saturated;
};

/// double2fixed, also returning the quantiser's saturation flag.
Quantised double2fixedWithFlag(double value, int intbits, int fracbits, int sign, int round,
                               int wrap);
/// fixedformat, also returning the conversion's saturation flag.
Quantised fixedformatWithFlag(fixed x, int intbits, int fracbits, int sign, int round, int wrap);

/// 2^exp x mantissa.
double fixed2double(fixed f);
/// The mantissa alone as a double, read in place: what fixed2double scales,
/// for callers that need M itself (the class's raw 64-bit pattern).
inline double mantissa2double(const fixed& f)
{
    return fix2float(f.val, f.bits, f.sign);
}
/// f with exp moved by n: the value times 2^n, mantissa words unchanged.
fixed fixedshift(fixed f, int n);
/// x re-quantised into intbits integer and fracbits fractional bits; the
/// source mantissa is read under sign.
fixed fixedformat(fixed x, int intbits, int fracbits, int sign, int round, int wrap);
/// a + b in a's format, wrapping at its width.
fixed fixedadd(fixed a, fixed b);
/// a - b in a's format, wrapping at its width.
fixed fixedsub(fixed a, fixed b);
/// The exact product: widths and exponents add, signed if either factor is.
fixed fixedmult(fixed a, fixed b);
/// 1 when a > b, each mantissa read with its own signedness.
int fixedgt(fixed a, fixed b);
/// 1 when a <= b (the negation of fixedgt).
int fixedle(fixed a, fixed b);
/// 1 when the mantissa words are equal.
int fixedeq(fixed a, fixed b);

}  // namespace Fixed

#endif  // FIXEDPOINT_LIB_FIXED_C_H
