// Doubles into and out of mantissa words: fix2float and float2fix. Both work
// operation by operation in doubles, in the order the firmware's data was
// produced with, so their results (including the roundings of widths above
// 53 bits) are reproducible bit for bit on every platform.
#include <cmath>
#include <cstring>

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

constexpr double twoToMinus32 = 2.3283064365386963e-10;
constexpr double twoTo32 = 4294967296.0;

// A double in [0, 2^32) truncated toward zero. C++ leaves the conversion of
// NaN and out-of-range doubles undefined (x86-64 and ARM disagree), so those
// are defined here: NaN and negatives give 0, values from 2^32 up give the
// largest word. The split only produces them for non-finite input.
uint32_t truncateToWord(double value)
{
    // GCOVR_EXCL_START: only non-finite values reach the word walk (the
    // integer splits take every finite one), and their fractions are NaN.
    if (!(value > 0.0))
        return 0u;
    if (value >= twoTo32)
        return 0xFFFFFFFFu;
    return static_cast<uint32_t>(value);
    // GCOVR_EXCL_STOP
}

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

// Rounding stage: value to an integer-valued double x.
double roundToInteger(double value, int round)
{
    if (round == 0)
        return floorExact(value);
    if (value >= -0.5 && value < 0.5)
        return 0.0;
    const double whole = floorExact(value);
    const double increment = floorExact(2.0 * (value - whole));
    // GCOVR_EXCL_START: no finite value gives an increment outside 0..1, and
    // a NaN one passes the test; the report stays for the firmware's contract.
    if (increment > 1.0 || increment < 0.0) {
        FIXED_REPORT(signature::float2fix, message::float2fixRounding);
        return value;
    }
    // GCOVR_EXCL_STOP
    return whole + increment;
}

void writeSignedMinimum(int32_t* words, int nw)
{
    for (int i = 0; i < nw - 1; ++i)
        words[i] = 0;
    words[nw - 1] = asWord(0x80000000u);
}

void writeSignedMaximum(int32_t* words, int nw, int r)
{
    if (nw == 1) {
        words[0] = asWord(highmask[r] & 0x7FFFFFFFu);
        return;
    }
    words[0] = asWord(highmask[r]);
    for (int i = 1; i < nw - 1; ++i)
        words[i] = asWord(0xFFFFFFFFu);
    words[nw - 1] = asWord(0x7FFFFFFFu);
}

void writeUnsignedMaximum(int32_t* words, int nw, int r)
{
    words[0] = asWord(highmask[r]);
    for (int i = 1; i < nw; ++i)
        words[i] = asWord(0xFFFFFFFFu);
}

void writeZero(int32_t* words, int nw)
{
    for (int i = 0; i < nw; ++i)
        words[i] = 0;
}

// Range stage under saturation: writes the saturation pattern and returns 1
// when x lies outside the format, else 0.
int saturateIfOutOfRange(double x, int bits, int32_t* words, int nw, int r, int sign)
{
    if (sign != 0) {
        const double limit = powerOfTwo(bits - 1);
        if (x < -limit) {
            writeSignedMinimum(words, nw);
            return 1;
        }
        if (x >= limit) {
            writeSignedMaximum(words, nw, r);
            return 1;
        }
        return 0;
    }
    if (x < 0.0) {
        writeZero(words, nw);
        return 1;
    }
    if (x >= powerOfTwo(bits)) {
        writeUnsignedMaximum(words, nw, r);
        return 1;
    }
    return 0;
}

// Range stage under wrap-around: the integer congruent to x modulo 2^bits
// nearest to zero from below, computed in doubles.
double wrapIntoRange(double x, int bits)
{
    const double q = floorExact(0.5 + x * powerOfTwo(-bits));
    return x - q * powerOfTwo(bits);
}

// Split stage for an integral x below 2^63 in magnitude: its 64-bit two's
// complement pattern, shifted into place, gives the same words as the
// double walk below (which is exact for every integral x). Returns false,
// writing nothing, when x is outside that range or does not fit the width,
// so that the walk and its check handle it.
bool splitSmallInteger(double x, int32_t* words, int nw, int r)
{
    if (!(x >= -9223372036854775808.0 && x < 9223372036854775808.0))
        return false;
    const int64_t m = static_cast<int64_t>(x);
    const int width = r != 0 ? 32 * (nw - 1) + r : 32 * nw;
    // Bits above the width must be a sign extension (0 or -1), as the walk
    // requires; a width of 64 and more always holds the whole pattern.
    if (width < 64) {
        const int64_t above = m < 0 ? ~(~m >> width) : m >> width;
        // GCOVR_EXCL_START: after the range stage every finite integer fits.
        if (above != 0 && above != -1)
            return false;
        // GCOVR_EXCL_STOP
    }
    uint64_t pattern = static_cast<uint64_t>(m);
    const uint32_t fill = m < 0 ? 0xFFFFFFFFu : 0u;
    int consumed = 0;  // bits of the pattern already written
    int k = 0;
    if (r != 0) {
        words[0] = asWord(static_cast<uint32_t>(pattern << (64 - r) >> 32));
        consumed = r;
        k = 1;
    }
    for (; k < nw; ++k, consumed += 32) {
        if (consumed >= 64) {
            words[k] = asWord(fill);
            continue;
        }
        uint64_t part = pattern >> consumed;
        // Bits shifted in from beyond the pattern's top take the sign.
        if (consumed > 32 && fill != 0u)
            part |= ~uint64_t{0} << (64 - consumed);
        words[k] = asWord(static_cast<uint32_t>(part));
    }
    return true;
}

// Split stage for a finite x of 2^63 and more in magnitude (an integer, as
// every such double is): its 53-bit significand shifted into place, then
// negated over the words when x is negative. That is the two's complement the
// double walk below produces. Returns false, writing nothing, for infinities,
// NaN, smaller values and values outside [-2^width, 2^width), which the walk
// and its check handle.
bool splitLargeInteger(double x, int32_t* words, int nw, int r)
{
    const int width = r != 0 ? 32 * (nw - 1) + r : 32 * nw;
    const double limit = powerOfTwo(width);
    // Branches not counted: after the range stage no finite x lies outside the limit.
    if (!(x >= -limit && x < limit) || (x > -9223372036854775808.0 && x < 9223372036854775808.0))  // GCOVR_EXCL_BR_LINE
        return false;
    uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const uint64_t significand = (bits & ((uint64_t{1} << 52) - 1u)) | (uint64_t{1} << 52);
    const int exponent = static_cast<int>((bits >> 52) & 0x7FFu) - 1075;  // x = +-significand * 2^exponent
    const int shift = exponent + (r != 0 ? 32 - r : 0);                   // and the pad bits below
    const int first = shift / 32;
    const int offset = shift % 32;
    // The significand spans at most three words from `first` up.
    const uint32_t parts[3] = {
        static_cast<uint32_t>(significand << offset),
        static_cast<uint32_t>(offset == 0 ? significand >> 32 : significand >> (32 - offset)),
        static_cast<uint32_t>(offset == 0 ? 0u : significand >> (64 - offset)),
    };
    for (int k = 0; k < nw; ++k) {
        const int part = k - first;
        words[k] = asWord(part >= 0 && part < 3 ? parts[part] : 0u);
    }
    if (x < 0.0)
        fixneg(words, words, nw);
    return true;
}

// Split stage: the integer x into nw words, least significant first. Floor
// produces two's complement for negative x without a negation.
void splitIntoWords(double x, int32_t* words, int nw, int r)
{
    if (splitSmallInteger(x, words, nw, r) || splitLargeInteger(x, words, nw, r))
        return;
    int k = 0;
    int left = nw;
    if (r != 0) {
        const double t = x * powerOfTwo(-r);
        const double whole = floorExact(t);
        const uint32_t low = truncateToWord((t - whole) * powerOfTwo(r));
        words[0] = asWord(low << (32 - r));
        x = whole;
        k = 1;
        left = nw - 1;
    }
    for (; left > 0; ++k, --left) {
        // GCOVR_EXCL_START: only NaN and infinities reach this walk (the
        // integer splits take every finite value), so x never becomes 0 or -1.
        if (x == 0.0 || x == -1.0) {
            const int32_t fill = x == 0.0 ? 0 : -1;
            for (; left > 0; ++k, --left)
                words[k] = fill;
            break;
        }
        // GCOVR_EXCL_STOP
        const double t = x * twoToMinus32;
        const double whole = floorExact(t);
        words[k] = asWord(truncateToWord((t - whole) * twoTo32));
        x = whole;
    }
    if (x != 0.0 && x != -1.0)  // GCOVR_EXCL_BR_LINE: as above, x is never 0 or -1 here
        FIXED_REPORT(signature::float2fix, message::float2fixSplit);
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

int float2fixInDoubles(double value, int bits, int32_t* words, int sign, int round, int wrap)
{
    // A width below 1 has no words in use; nothing is written for it.
    if (bits < 1)
        return 0;
    const int r = bits % 32;
    const int nw = wordCount(bits);
    double x = roundToInteger(value, round);
    if (wrap != 0)
        x = wrapIntoRange(x, bits);
    else if (saturateIfOutOfRange(x, bits, words, nw, r, sign) != 0)
        return 1;
    splitIntoWords(x, words, nw, r);
    return 0;
}

}  // namespace Fixed
