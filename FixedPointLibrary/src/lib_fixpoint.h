// Word layer of the core: routines on arrays of 32-bit mantissa words in the
// left-aligned layout of Fixed::fixed (val[0] least significant, the top
// mantissa bit at bit 31 of the top word in use, zero pad bits at the bottom
// of the lowest word). Flags are plain ints and every nonzero flag counts as
// 1. Nothing here allocates except fixmult's carry counters.
#ifndef FIXEDPOINT_LIB_FIXPOINT_H
#define FIXEDPOINT_LIB_FIXPOINT_H

#include <cmath>
#include <cstdint>
#include <cstring>

namespace Fixed {

/// Most mantissa words a record holds (160 bits).
constexpr int maxWords = 5;
/// Widest mantissa a record holds.
constexpr int maxBits = 32 * maxWords;

// ---- Bit tables -----------------------------------------------------------

/// Entry 0 all ones; entry n (1..31) the n highest bits set. Indexed by
/// bits mod 32 it masks the mantissa bits of the lowest word.
extern const uint32_t highmask[32];
/// Entry i: 1 << i.
extern const uint32_t lowbit[32];
/// Entry i: 0x80000000 >> i.
extern const uint32_t highbit[32];
/// Entry i: number of set bits in the nibble i.
extern const uint32_t nibblecount[16];

// ---- Shared integer helpers ----------------------------------------------

/// Words in use for a width: ceil(bits / 32) with truncating division, so 0
/// for widths 0 to -31 and negative below.
constexpr int wordCount(int bits) { return bits / 32 + (bits % 32 > 0 ? 1 : 0); }

/// wordCount for a width known to be at least 0, without the sign cases.
constexpr int wordsInUse(int bits)
{
    return static_cast<int>((static_cast<unsigned>(bits) + 31u) / 32u);
}

/// Words of a record that a width may touch: wordCount clamped to 0..5, so
/// that a record left behind by a reported width error is never read or
/// written beyond val[4].
constexpr int recordWordCount(int bits)
{
    return bits < 1 ? 0 : (bits > maxBits ? maxWords : wordCount(bits));
}

/// Whether a width names a mantissa a record can hold (1..160 bits).
constexpr bool isMantissaWidth(int64_t bits) { return bits >= 1 && bits <= maxBits; }

/// A shift between two formats (a difference of widths and exponents,
/// computed in 64 bits) clamped to +-1024 bits. With at most 160 bits on
/// either side every bit of a longer shift is sign extension or lost, so the
/// clamp changes no result and keeps later sums clear of int overflow.
constexpr int clampedShift(int64_t shift)
{
    return static_cast<int>(shift < -1024 ? -1024 : (shift > 1024 ? 1024 : shift));
}

/// 32-bit two's complement addition without signed overflow.
constexpr int32_t wrappingAdd(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

/// 32-bit two's complement negation without signed overflow.
constexpr int32_t wrappingNegate(int32_t a)
{
    return static_cast<int32_t>(0u - static_cast<uint32_t>(a));
}

/// The word's bits as an unsigned number.
constexpr uint32_t asUnsigned(int32_t word) { return static_cast<uint32_t>(word); }

/// An unsigned word stored into the signed word arrays (same bits).
constexpr int32_t asWord(uint32_t bits) { return static_cast<int32_t>(bits); }

/// All ones when the top bit of `bits` is set, else zero: a value's sign as
/// a mask for extending, negating or selecting without a branch. Measured
/// data makes the sign a coin toss, so a branch on it mispredicts about
/// every other call.
constexpr uint64_t topBitMask(uint64_t bits) { return 0u - (bits >> 63); }

/// 2^n as a double: exact for every integer n, overflowing to infinity and
/// underflowing to zero exactly as pow(2.0, n) does. The IEEE bits are built
/// directly (a biased exponent for normal results, a single mantissa bit for
/// subnormal ones), which keeps a library call off every conversion path.
inline double powerOfTwo(int n)
{
    constexpr int maxNormal = 1023;
    constexpr int minNormal = -1022;
    constexpr int minSubnormal = -1074;
    uint64_t pattern = 0;  // zero below the subnormals
    if (n > maxNormal)
        pattern = uint64_t{0x7FF} << 52;  // infinity
    else if (n >= minNormal)
        pattern = static_cast<uint64_t>(n + maxNormal) << 52;
    else if (n >= minSubnormal)
        pattern = uint64_t{1} << (n - minSubnormal);
    double result;
    std::memcpy(&result, &pattern, sizeof result);
    return result;
}

// ---- Saturation patterns --------------------------------------------------

/// The bounds a quantiser writes in place of a value outside its format.
enum class Bound { Zero, SignedMinimum, SignedMaximum, UnsignedMaximum };

/// How a bound looks in words: every word `fill`, the lowest word cut to the
/// mantissa bits, then the top word ANDed with `topAnd` and ORed with `topOr`.
struct BoundPattern {
    uint32_t fill;
    uint32_t topAnd;
    uint32_t topOr;
};

/// The patterns, indexed by Bound.
inline constexpr BoundPattern boundPatterns[4] = {
    {0u, 0xFFFFFFFFu, 0u},                    // Zero
    {0u, 0xFFFFFFFFu, 0x80000000u},           // SignedMinimum: -2^(bits-1)
    {0xFFFFFFFFu, 0x7FFFFFFFu, 0u},           // SignedMaximum: 2^(bits-1) - 1
    {0xFFFFFFFFu, 0xFFFFFFFFu, 0u},           // UnsignedMaximum: 2^bits - 1
};

/// The maximum of a format's signedness.
constexpr Bound maximumFor(int sign)
{
    return sign != 0 ? Bound::SignedMaximum : Bound::UnsignedMaximum;
}

/// Stores a bound left-aligned into the words of a width of at least 1 bit,
/// lowest word first (pad bits zero). The one place the patterns are made.
inline void writeBound(int32_t* words, int bits, Bound bound)
{
    const BoundPattern& pattern = boundPatterns[static_cast<int>(bound)];
    const int nw = wordsInUse(bits);
    for (int i = 0; i < nw; ++i)
        words[i] = asWord(pattern.fill);
    words[0] = asWord(pattern.fill & highmask[bits % 32]);
    words[nw - 1] = asWord((asUnsigned(words[nw - 1]) & pattern.topAnd) | pattern.topOr);
}

// ---- Doubles in and out ---------------------------------------------------

/// The integer M held in the words (exponent not applied), summed from the
/// lowest word upward: exact up to 53 bits, correctly rounded up to 64 bits,
/// rounded in sequence above. Widths outside 1..160 give 0.0.
double fix2float(const int32_t* words, int bits, int sign);

/// Below this magnitude (2^51 LSB units) quantising runs on 64-bit integers
/// whatever the format: every double step of the rounding, range and split
/// stages is exact there (the floor, the fraction that decides rounding, a
/// wrap-around that then keeps exactly the low bits), so the integer steps
/// give the same words.
constexpr double smallValueLimit = 2251799813685248.0;

/// The magnitude below which a quantisation runs on 64-bit integers: 2^63
/// LSB units, where a 64-bit integer holds the rounded value and comparing
/// it with the bounds is as exact as the double steps' comparison, except
/// under wrap-around within 64 bits. There the double steps' wrap of values
/// from 2^53 up rounds, and that rounding is part of the result, so integers
/// take over only below 2^51. (Wider formats wrap nothing below 2^63.)
constexpr double integerPathLimit(int bits, int wrap)
{
    return wrap != 0 && bits <= 64 ? smallValueLimit : 9223372036854775808.0;
}

/// Whether a value takes the integer steps: |value| below the limit, tested
/// on the magnitude so that one branch decides. (Testing value > -limit and
/// value < limit in turn branches on the value's sign, a coin toss for
/// measured data.) A NaN is below no limit.
inline bool takesIntegerPath(double value, double limit)
{
    return std::fabs(value) < limit;
}

/// A value of magnitude below 2^63 floored, or rounded to nearest with
/// halves upward, as an integer.
inline int64_t roundSmallValue(double value, int round)
{
    int64_t x = static_cast<int64_t>(value);  // toward zero, exact in range
    if (static_cast<double>(x) > value)
        --x;
    // value - floor(value) is exact: the fraction of value. (Comparing value
    // with floor(value) + 0.5 instead would round that sum from 2^52 up.)
    if (round != 0 && value - static_cast<double>(x) >= 0.5)
        ++x;
    return x;
}

/// x (|x| < 2^63) saturated into the range of a width; `saturated` tells
/// whether it was outside. Bounds from 2^63 up decide nothing more.
inline int64_t saturateSmallValue(int64_t x, int bits, int sign, int& saturated)
{
    const int magnitudeBits = sign != 0 ? bits - 1 : bits;
    const int64_t highest =
        magnitudeBits >= 63 ? INT64_MAX : static_cast<int64_t>((uint64_t{1} << magnitudeBits) - 1u);
    const int64_t lowest = sign != 0 ? -highest - 1 : 0;
    saturated = x < lowest || x > highest ? 1 : 0;
    return x < lowest ? lowest : (x > highest ? highest : x);
}

/// float2fix for the widths and values its inline part leaves: wider than
/// 64 bits, magnitudes beyond integerPathLimit, non-finite values.
int float2fixGeneral(double value, int bits, int32_t* words, int sign, int round, int wrap);

/// Quantises value (counted in LSB units) into nw = ceil(bits / 32) words:
/// floor or nearest (ties up), then saturation or wrap-around. Returns 1 when
/// a saturation pattern was written. Writes nothing for widths below 1.
///
/// Widths up to 64 bits with values below integerPathLimit, the common case,
/// are done here, inline in the callers; under wrap-around the bits above the
/// width simply fall off the left-aligned store.
inline int float2fix(double value, int bits, int32_t* words, int sign, int round, int wrap)
{
    const double limit = integerPathLimit(bits, wrap);
    if (bits < 1 || bits > 64 || !takesIntegerPath(value, limit))
        return float2fixGeneral(value, bits, words, sign, round, wrap);
    int saturated = 0;
    int64_t x = roundSmallValue(value, round);
    if (wrap == 0)
        x = saturateSmallValue(x, bits, sign, saturated);
    const uint64_t pattern = static_cast<uint64_t>(x);
    if (bits <= 32) {
        words[0] = asWord(static_cast<uint32_t>(pattern << (32 - bits)));
    } else {
        const uint64_t aligned = pattern << (64 - bits);
        words[0] = asWord(static_cast<uint32_t>(aligned));
        words[1] = asWord(static_cast<uint32_t>(aligned >> 32));
    }
    return saturated;
}

// ---- Format conversion kernels (destination words cleared on entry) -----
// Each kernel reads only the source bits its arguments imply (for the ones
// not given the source width: the kept bits and the rounding bit below
// them); a call implying more than 160 source or result bits writes nothing.

/// More integer bits, every source bit kept: sign fill and shifted copy.
void fixwiden(const int32_t* srcTop, int32_t* dstTop, int n, int d, int sign);
/// More integer bits, low source bits dropped and optionally rounded.
void fixwidenround(const int32_t* srcTop, int32_t* dstTop, int kept, int d, int sign, int round);
/// Same integer bits, fewer fractional bits: masked copy and rounding carry.
uint32_t fixround(const int32_t* srcTop, int32_t* dstTop, int bt, int sign, int round, int wrap);
/// Fewer integer bits, no fractional bit dropped: range check and copy.
uint32_t fixnarrow(const int32_t* srcTop, int32_t* dstTop, int n, int bt, int k, int sign, int wrap);
/// Fewer integer bits and fewer fractional bits.
uint32_t fixnarrowround(const int32_t* srcTop, int32_t* dstTop, int bt, int k, int sign, int round,
                        int wrap);
/// The conversion behind fixformat and fixedformat: src (srcbits wide) into
/// the cleared dst (dstbits wide), both given by their lowest word, with
/// `gained` integer bits gained (negative when lost, within +-1024). ORs the
/// result into dst and returns 1 when it saturated. Source pad bits take no
/// part; widths outside 1..160 touch no word and return 0.
uint32_t convertFormat(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int gained,
                       int sign, int round, int wrap);
/// Word-array form of the whole conversion; returns 1 when it saturated.
/// Source pad bits take no part; widths outside 1..160 touch no word and
/// return 0.
uint32_t fixformat(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int srcexp,
                   int dstexp, int sign, int round, int wrap);

// ---- Multiplication -------------------------------------------------------

/// out[0..nx+ny-1] = x * y (two's complement where sx / sy are set); out
/// must be zero on entry. Carry counters are taken from the heap and released;
/// if they cannot be had, out is left all zero. nout (nx + ny - 1 or nx + ny)
/// bounds the carry pass; no word beyond out[nx + ny - 1] is written.
void fixmult(int32_t* out, const int32_t* x, const int32_t* y, int nx, int ny, int nout, int sx,
             int sy);

// ---- Word primitives ------------------------------------------------------

/// out = x + y over n >= 1 words; returns the carry out of the top word.
int fixadd(int32_t* out, const int32_t* x, const int32_t* y, int n);
/// out = x - y over n >= 1 words; returns the borrow out of the top word.
int fixsub(int32_t* out, const int32_t* x, const int32_t* y, int n);
/// out = -x over n words; returns 1 when x was zero (or n < 1).
int fixneg(int32_t* out, const int32_t* x, int n);
/// out = NOT x over the words of a width, pad bits of out[0] cleared.
void fixnot(int32_t* out, const int32_t* x, int width);
/// out = x AND y over n words.
void fixand(int32_t* out, const int32_t* x, const int32_t* y, int n);
/// 1 when all n word pairs are equal (1 for n < 1); stops at the first
/// unequal pair. Inline: fixedeq's whole work, where a call would cost as
/// much as the comparison.
inline int fixeq(const int32_t* x, const int32_t* y, int n)
{
    for (int i = 0; i < n; ++i) {
        if (x[i] != y[i])
            return 0;
    }
    return 1;
}
/// 1 when some word pair differs (0 for n < 1).
int fixne(const int32_t* x, const int32_t* y, int n);
/// Number of set bits in n words (0 for n < 1).
int fixbitcount(const int32_t* x, int n);

// ---- Text -----------------------------------------------------------------

/// The whole mantissa as digits of digitbits bits, then "*2^exp" when exp is
/// nonzero; written backward ending at str, step apart. Returns the length;
/// with query nonzero writes nothing and returns the same length. A digit
/// width outside 1..4 is reported and gives the empty text (0, nothing
/// written); a width below 1 gives the exponent part only.
int fix2str1(const int32_t* words, int bits, int exp, char* str, int digitbits, int step, int align,
             int lower, int query);
/// Positional text with a radix point, or scientific form with one integer
/// bit and "*2^e"; same conventions as fix2str1, except that a width below 1
/// gives the digit "0" followed by the exponent part when exp is nonzero.
int fix2str2(const int32_t* words, int bits, int exp, char* str, int digitbits, int step, int align,
             int lower, int query);

}  // namespace Fixed

#endif  // FIXEDPOINT_LIB_FIXPOINT_H
