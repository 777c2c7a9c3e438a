// Doubles into and out of mantissa words: fix2float and float2fix. Both give
// the results of working operation by operation in doubles, in the order the
// firmware's data was produced with (the roundings of widths above 53 bits
// included), bit for bit on every platform. Where those steps are exact
// float2fix takes shortcuts: values below 2^63 LSB units are rounded and
// saturated in 64-bit integers, larger finite values under saturation are
// read off their IEEE fields, and an integral double, m x 2^e with a 64-bit
// m, is shifted into its words whole instead of being split off word by word.
// The double steps themselves remain for wrap-around of large values and for
// infinities and NaN.
#include <cmath>
#include <cstring>

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

constexpr double twoTo32 = 4294967296.0;

// floor(value) without a library call, equal to std::floor for every value
// the conversions compute with (the sign of a zero included). From 2^52 up
// every double is an integer, and infinities are their own floor; a NaN stays
// a NaN and never reaches a word. Below, truncation to an integer is exact
// (one instruction for 32 bits on x86-64 and ARM alike) and stepping down by
// one for a negative non-integer is exact too.
inline double floorExact(double value)
{
    constexpr double integralFrom = 4503599627370496.0;  // 2^52
    if (!(value > -integralFrom && value < integralFrom))
        return value;
    const double truncated = value > -2147483648.0 && value < 2147483648.0
                                 ? static_cast<double>(static_cast<int32_t>(value))
                                 : static_cast<double>(static_cast<int64_t>(value));
    if (truncated == value)
        return value;
    return truncated > value ? truncated - 1.0 : truncated;
}

// Rounding stage: value to an integer-valued double x. Only magnitudes from
// 2^51 up and NaN come here (smaller values take the integer path), so the
// fraction is 0 or one half; from 2^52 up every finite value is its own floor
// and rounds by nothing.
double roundToInteger(double value, int round)
{
    constexpr double integralFrom = 4503599627370496.0;  // 2^52
    constexpr double largest = 1.7976931348623157e308;
    const double magnitude = value < 0.0 ? -value : value;
    if (magnitude >= integralFrom && magnitude <= largest)
        return value;
    if (round == 0)
        return floorExact(value);
    const double whole = floorExact(value);
    const double increment = floorExact(2.0 * (value - whole));
    // GCOVR_EXCL_START: no finite value gives an increment outside 0..1 and a
    // NaN one passes the test; the check and its report stay as the firmware's
    // rounding step has them.
    if (increment > 1.0 || increment < 0.0) {
        FIXED_REPORT(signature::float2fix, message::float2fixRounding);
        return value;
    }
    // GCOVR_EXCL_STOP
    return whole + increment;
}

// Range stage under saturation: the bound x lies beyond, if any. Only
// infinities and NaN come here (finite values are range-checked on their
// IEEE fields); the limits are compared as doubles, so infinities saturate
// and a NaN lies beyond none.
bool isOutOfRange(double x, int bits, int sign, Bound& bound)
{
    if (sign != 0) {
        const double limit = powerOfTwo(bits - 1);
        bound = x < -limit ? Bound::SignedMinimum : Bound::SignedMaximum;
        return x < -limit || x >= limit;
    }
    bound = x < 0.0 ? Bound::Zero : Bound::UnsignedMaximum;
    return x < 0.0 || x >= powerOfTwo(bits);
}

// Range stage under wrap-around: the integer congruent to x modulo 2^bits
// nearest to zero from below, computed in doubles.
double wrapIntoRange(double x, int bits)
{
    const double q = floorExact(0.5 + x * powerOfTwo(-bits));
    return x - q * powerOfTwo(bits);
}

// Stores m x 2^shift in two's complement into nw (1..5) words, lowest first:
// the bits below `shift` zero, the bits above m's 64 its sign. The callers'
// values fit their words, so shift stays below 128 (at most 31 pad bits, or
// a 53-bit significand's exponent within a 160-bit width). The words are
// three 64-bit limbs chosen without a branch and stored directly.
void writeShiftedInteger(int64_t m, int shift, int32_t* words, int nw)
{
    const uint64_t pattern = static_cast<uint64_t>(m);
    const uint64_t fill = topBitMask(pattern);
    const int r = static_cast<int>(static_cast<unsigned>(shift) % 64u);
    const bool upperLimb = (static_cast<unsigned>(shift) & 64u) != 0u;
    const uint64_t shiftedLow = pattern << r;
    // m's bits pushed out of the top, sign-extended; the first shift is
    // split so that r = 0 shifts by 64 nowhere.
    const uint64_t shiftedHigh = ((pattern >> 1) >> (63 - r)) | (fill << r);
    const uint64_t lo = upperLimb ? 0u : shiftedLow;
    const uint64_t mid = upperLimb ? shiftedLow : shiftedHigh;
    const uint64_t hi = upperLimb ? shiftedHigh : fill;
    switch (nw) {
    case 5:
        words[4] = asWord(static_cast<uint32_t>(hi));
        [[fallthrough]];
    case 4:
        words[3] = asWord(static_cast<uint32_t>(mid >> 32));
        [[fallthrough]];
    case 3:
        words[2] = asWord(static_cast<uint32_t>(mid));
        [[fallthrough]];
    case 2:
        words[1] = asWord(static_cast<uint32_t>(lo >> 32));
        [[fallthrough]];
    default:
        words[0] = asWord(static_cast<uint32_t>(lo));
    }
}

// Split stage for a range-checked x, an integer or NaN: x into nw words,
// left-aligned above `pad` zero bits. A finite x is m x 2^e with a 64-bit m, so
// its two's complement is m's shifted into place (floor-and-truncate walks
// in doubles give exactly that; the range stage leaves every finite x within
// [-2^bits, 2^bits), whose words are those of x modulo 2^bits). A NaN has no
// integer part: the words are zero and the internal error is reported.
void splitIntoWords(double x, int32_t* words, int nw, int pad)
{
    if (x != x) {
        for (int k = 0; k < nw; ++k)
            words[k] = 0;
        FIXED_REPORT(signature::float2fix, message::float2fixSplit);
        return;
    }
    if (x > -9223372036854775808.0 && x < 9223372036854775808.0) {
        writeShiftedInteger(static_cast<int64_t>(x), pad, words, nw);
        return;
    }
    // |x| >= 2^63: the 53-bit significand with the sign, and its exponent.
    uint64_t bitsOfX;
    std::memcpy(&bitsOfX, &x, sizeof bitsOfX);
    const int64_t significand =
        static_cast<int64_t>((bitsOfX & ((uint64_t{1} << 52) - 1u)) | (uint64_t{1} << 52));
    const int exponent = static_cast<int>((bitsOfX >> 52) & 0x7FFu) - 1075;
    writeShiftedInteger(x < 0.0 ? -significand : significand, exponent + pad, words, nw);
}

// The rounding, range and split stages under saturation for a finite value
// of magnitude from 2^63 LSB units. (Infinities keep the double steps: the
// rounding to nearest turns them into NaN, which is reported.) Such a double
// is already an integer, so rounding leaves it as it is; comparing it with
// the powers of two that bound the format, and splitting it into m x 2^e,
// both come down to its IEEE bits, which are read here once instead of
// being worked out again stage by stage. Nothing branches on the value's
// sign.
int quantiseLargeSaturated(double value, int bits, int32_t* words, int sign, int pad)
{
    uint64_t ieee;
    std::memcpy(&ieee, &value, sizeof ieee);
    const uint64_t negative = ieee >> 63;
    // The IEEE bits of a positive double order like its values, so the
    // magnitude is compared with 2^topBit, the first value beyond the
    // format's maximum and the negated signed minimum, as an integer:
    // beyond the maximum is magnitude >= 2^topBit for a positive value,
    // below the minimum magnitude > 2^topBit for a negative one (adding 1
    // for a positive value turns the first into the second), and any
    // negative value for an unsigned format.
    const uint64_t magnitude = ieee & ~(uint64_t{1} << 63);
    const int topBit = sign != 0 ? bits - 1 : bits;
    const uint64_t firstBeyond = static_cast<uint64_t>(topBit + 1023) << 52;
    const bool outside =
        (magnitude + (negative ^ 1u) > firstBeyond) | ((negative != 0u) & (sign == 0));
    if (outside) {
        const Bound minimum = sign != 0 ? Bound::SignedMinimum : Bound::Zero;
        writeBound(words, bits, negative != 0u ? minimum : maximumFor(sign));
        return 1;
    }
    // value = significand x 2^(biased exponent - 1075); the signed
    // significand is negated through a mask.
    const uint64_t signMask = topBitMask(ieee);
    const uint64_t significand = (magnitude & ((uint64_t{1} << 52) - 1u)) | (uint64_t{1} << 52);
    const int exponent = static_cast<int>(magnitude >> 52) - 1075;
    writeShiftedInteger(static_cast<int64_t>((significand ^ signMask) - signMask), exponent + pad,
                        words, wordsInUse(bits));
    return 0;
}

// The rounding, range and split stages in doubles, as the firmware's data
// was produced: for wrap-around from 2^51 LSB units within 64 bits (from
// 2^63 above), and for infinities and NaN. Out of line, so that the common
// quantisations need not set up its frame.
[[gnu::noinline]] int quantiseByDoubleSteps(double value, int bits, int32_t* words, int sign,
                                            int round, int wrap)
{
    const int nw = wordsInUse(bits);
    double x = roundToInteger(value, round);
    Bound bound = Bound::Zero;
    if (wrap != 0) {
        x = wrapIntoRange(x, bits);
    } else if (isOutOfRange(x, bits, sign, bound)) {
        writeBound(words, bits, bound);
        return 1;
    }
    splitIntoWords(x, words, nw, 32 * nw - bits);
    return 0;
}

}  // namespace

double fix2float(const int32_t* words, int bits, int sign)
{
    if (bits < 1 || bits > maxBits)
        return 0.0;
    const int r = bits % 32;
    const int nw = wordCount(bits);
    if (r != 0 && nw == 1) {
        const int shift = 32 - r;
        if (sign != 0)
            return static_cast<double>(words[0] >> shift);  // arithmetic shift
        return static_cast<double>(asUnsigned(words[0]) >> shift);
    }
    double sum = 0.0;
    double scale = 1.0;
    int next = 0;
    if (r != 0) {
        sum = static_cast<double>(asUnsigned(words[0]) >> (32 - r));
        scale = powerOfTwo(r);
        next = 1;
    }
    for (; next < nw - 1; ++next) {
        sum += static_cast<double>(asUnsigned(words[next])) * scale;
        scale *= twoTo32;
    }
    const double top = sign != 0 ? static_cast<double>(words[nw - 1])
                                 : static_cast<double>(asUnsigned(words[nw - 1]));
    return sum + top * scale;
}

int float2fixGeneral(double value, int bits, int32_t* words, int sign, int round, int wrap)
{
    // A width below 1 has no words in use; nothing is written for it.
    if (bits < 1)
        return 0;
    const int nw = wordsInUse(bits);
    const int pad = 32 * nw - bits;
    const double limit = integerPathLimit(bits, wrap);
    if (takesIntegerPath(value, limit)) {
        // Wider than 64 bits: the integer steps of the inline part, with the
        // pattern's sign filling the words above its 64 bits.
        int saturated = 0;
        int64_t x = roundSmallValue(value, round);
        if (wrap == 0)
            x = saturateSmallValue(x, bits, sign, saturated);
        writeShiftedInteger(x, pad, words, nw);
        return saturated;
    }
    if (wrap == 0 && std::isfinite(value))
        return quantiseLargeSaturated(value, bits, words, sign, pad);
    return quantiseByDoubleSteps(value, bits, words, sign, round, wrap);
}

}  // namespace Fixed
