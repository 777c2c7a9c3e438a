// Format conversion on mantissa words: the one conversion behind fixformat,
// fixedformat and the five kernels.
//
// Every conversion is the same few steps on left-aligned bits, with bit
// positions counted from the top of the source (0 = its top bit) and the
// destination's top bit sitting at source position -d (d = integer bits
// gained, negative when integer bits are lost):
//   1. range check of the lost integer bits (unless wrapping around), which
//      may end the conversion with a saturation pattern;
//   2. shifted copy: the source moved down by d bits, sign extension above
//      its top and zeros below its last bit, cut to the destination's width;
//   3. rounding: one unit in the last place when the most significant dropped
//      bit is set, carried upward, with an overflow test after the carry.
// Formats of up to 64 bits take these steps on one 64-bit integer, wider
// ones on three 64-bit limbs held in registers: the source is read once,
// each result limb is one funnel shift of two source limbs, and the limb
// holding the last place is fixed per width range, so masks and rounding
// need no search. The kernels differ only in what they are told about the
// source, so each states how many source bits it may read.
// Nothing here allocates or touches floating point; no source word outside
// the bits a caller vouches for is read and no destination word outside the
// result's words in use is written.
#include "lib_fixpoint.h"

#include <cstdint>

namespace Fixed {
namespace {

// Above 64 bits the conversion runs on three 64-bit limbs, a window of 192
// bits left-aligned like the words. Positions in it are counted from the
// top, 0 = the top bit. 160 bits leave the lowest 32 bits of every window
// zero, room for the rounding bit below a 160-bit result. The limbs are
// named rather than indexed: an array is copied with vector moves that the
// processor cannot forward from the scalar stores that filled it.
struct Limbs {
    uint64_t hi;
    uint64_t mid;
    uint64_t lo;
};

// The n highest bits of a limb: none for n <= 0, all for n >= 64.
constexpr uint64_t highBits(int n)
{
    return n <= 0 ? 0u : (n >= 64 ? ~uint64_t{0} : ~uint64_t{0} << (64 - n));
}

// Whether the top `count` bits of a window all repeat `extension` (bits
// below the window read as zero).
bool topBitsRepeat(const Limbs& v, uint64_t extension, int count)
{
    const uint64_t differing = ((v.hi ^ extension) & highBits(count)) |
                               ((v.mid ^ extension) & highBits(count - 64)) |
                               ((v.lo ^ extension) & highBits(count - 128));
    // A window holds at most 160 source bits, so a count reaching below them
    // meets zeros, which differ from a negative value's extension.
    return differing == 0u;
}

constexpr uint64_t joined(uint32_t high, uint32_t low) { return (uint64_t{high} << 32) | low; }

// The source's words (bits wide, 1..160) in a window, the lowest word cut to
// its mantissa bits so that pad bits never take part. Only the words in use
// are read, each once.
Limbs readSource(const int32_t* low, int bits)
{
    const uint32_t lowest = asUnsigned(low[0]) & highmask[static_cast<unsigned>(bits) % 32u];
    switch (wordsInUse(bits)) {
    case 1:
        return {uint64_t{lowest} << 32, 0u, 0u};
    case 2:
        return {joined(asUnsigned(low[1]), lowest), 0u, 0u};
    case 3:
        return {joined(asUnsigned(low[2]), asUnsigned(low[1])), uint64_t{lowest} << 32, 0u};
    case 4:
        return {joined(asUnsigned(low[3]), asUnsigned(low[2])), joined(asUnsigned(low[1]), lowest),
                0u};
    default:
        return {joined(asUnsigned(low[4]), asUnsigned(low[3])),
                joined(asUnsigned(low[2]), asUnsigned(low[1])), uint64_t{lowest} << 32};
    }
}

// Stores the window's top words into the cleared words of a width, lowest
// word first, ORing like every quantiser of the core; `last` is the limb
// holding the width's last place, so only its lower half may be left out.
template <int last>
void storeWords(int32_t* low, int words, const Limbs& v)
{
    const auto orInto = [](int32_t& word, uint64_t bitsToSet) {
        word = asWord(asUnsigned(word) | static_cast<uint32_t>(bitsToSet));
    };
    int32_t* const top = low + words - 1;
    const uint64_t limbs[3] = {v.hi, v.mid, v.lo};
    for (int i = 0; i < last; ++i) {
        orInto(top[-2 * i], limbs[i] >> 32);
        orInto(top[-2 * i - 1], limbs[i]);
    }
    orInto(top[-2 * last], limbs[last] >> 32);
    if (words == 2 * last + 2)
        orInto(top[-2 * last - 1], limbs[last]);
}

// The 64 bits that start `r` (0..63) bits above the top of `x`, `above` the
// limb over it; the second shift is split so that r = 0 shifts by 64 nowhere.
constexpr uint64_t funnel(uint64_t above, uint64_t x, int r)
{
    return (x >> r) | ((above << 1) << (63 - r));
}

// The window moved by 64 bits or more either way; beyond 192 bits every bit
// is the extension or zero. Limb i of the row is the window's limb i - 4
// (0 = hi): the extension above it, zeros below; g = 64 q + r, r in 0..63.
Limbs shiftedFar(const Limbs& s, uint64_t extension, int gained)
{
    const int g = gained > 192 ? 192 : (gained < -192 ? -192 : gained);
    const uint64_t row[10] = {extension, extension, extension, extension, s.hi,
                              s.mid,     s.lo,      0u,        0u,        0u};
    const int q = (g + 256) / 64 - 4;
    const int r = (g + 256) % 64;
    const int top = 3 - q;  // the row index of the limb above the result's top limb
    return {funnel(row[top], row[top + 1], r), funnel(row[top + 1], row[top + 2], r),
            funnel(row[top + 2], row[top + 3], r)};
}

// The window of the source moved down by `gained` bits (up when negative):
// the source's extension comes in above and zeros below. Shifts by less
// than 64 bits either way, the common case, work on registers.
inline Limbs shifted(const Limbs& s, uint64_t extension, int gained)
{
    if (gained < -64 || gained >= 64)
        return shiftedFar(s, extension, gained);
    const bool down = gained >= 0;
    const int r = down ? gained : gained + 64;
    const uint64_t a = down ? extension : s.hi;
    const uint64_t b = down ? s.hi : s.mid;
    const uint64_t c = down ? s.mid : s.lo;
    const uint64_t d = down ? s.lo : 0u;
    return {funnel(a, b, r), funnel(b, c, r), funnel(c, d, r)};
}

// Writes a saturation pattern; returns the flag that says so.
uint32_t saturate(int32_t* dstLow, int dstBits, Bound bound)
{
    writeBound(dstLow, dstBits, bound);
    return 1u;
}

// The result of `dstBits` bits cut from the moved window, rounded when
// `mayRound` and the bit below its last place is set, then stored; `last`
// is the limb holding the last place, so every index here is fixed.
// Returns 1 when rounding overflowed the format without wrap-around and a
// saturation pattern was stored instead: the carry left the top (unsigned)
// or turned the maximum negative (signed).
template <int last>
uint32_t roundAndStore(Limbs v, int32_t* dstLow, int dstBits, bool mayRound, int sign, int wrap)
{
    uint64_t& lastLimb = last == 0 ? v.hi : (last == 1 ? v.mid : v.lo);
    const uint64_t next = last == 0 ? v.mid : (last == 1 ? v.lo : 0u);
    const int unitShift = 63 - static_cast<int>(static_cast<unsigned>(dstBits - 1) % 64u);
    // The bit below the last place, brought one place up so that a last
    // place at the bottom of its limb finds it at the top of the next.
    const uint64_t belowLastPlace = (((lastLimb << 1) | (next >> 63)) >> unitShift) & 1u;
    lastLimb &= ~uint64_t{0} << unitShift;
    v.lo = last < 2 ? 0u : v.lo;
    v.mid = last < 1 ? 0u : v.mid;
    // No branch on the rounding bit: it is a coin toss for real values.
    uint64_t carry = (mayRound ? belowLastPlace : 0u) << unitShift;
    if (last == 2) {
        v.lo += carry;
        carry = v.lo < carry ? 1u : 0u;
    }
    if (last >= 1) {
        v.mid += carry;
        carry = v.mid < carry ? 1u : 0u;
    }
    const uint64_t topBefore = v.hi;
    v.hi += carry;
    carry = v.hi < carry ? 1u : 0u;
    const bool overflowed = sign != 0 ? ((~topBefore & v.hi) >> 63) != 0u : carry != 0u;
    if (overflowed && wrap == 0)
        return saturate(dstLow, dstBits, maximumFor(sign));
    storeWords<last>(dstLow, wordsInUse(dstBits), v);
    return 0u;
}

// Whether a width names a mantissa; the width itself, or 0 when not.
int mantissaWidthOrZero(int64_t bits)
{
    return isMantissaWidth(bits) ? static_cast<int>(bits) : 0;
}

// The conversion on limbs: src (srcBits wide, 1..160) into the cleared
// destination of dstBits (1..160) bits whose top bit lies `gained` bits
// above the source's, both given by their lowest word. Returns 1 when it
// wrote a saturation pattern.
uint32_t convertLimbs(const int32_t* srcLow, int srcBits, int32_t* dstLow, int dstBits, int gained,
                      int sign, int round, int wrap)
{
    const Limbs src = readSource(srcLow, srcBits);
    const uint64_t extension = sign != 0 ? topBitMask(src.hi) : 0u;
    // The lost integer bits, and the new sign bit of a signed result, must
    // all repeat the value's sign (below the source they read as zero).
    if (gained < 0 && wrap == 0 && !topBitsRepeat(src, extension, -gained + (sign != 0 ? 1 : 0)))
        return saturate(dstLow, dstBits, extension != 0u ? Bound::SignedMinimum : maximumFor(sign));
    const Limbs moved = shifted(src, extension, gained);
    // Rounding adds one unit in the last place when the most significant
    // dropped bit is set; only source bits can be dropped.
    const bool mayRound = round != 0 && srcBits > dstBits - gained;
    switch (static_cast<unsigned>(dstBits - 1) / 64u) {
    case 0:
        return roundAndStore<0>(moved, dstLow, dstBits, mayRound, sign, wrap);
    case 1:
        return roundAndStore<1>(moved, dstLow, dstBits, mayRound, sign, wrap);
    default:
        return roundAndStore<2>(moved, dstLow, dstBits, mayRound, sign, wrap);
    }
}

// The conversion for the kernels: the source (srcBits readable bits) and
// the destination given by their top words; widths outside 1..160 touch
// nothing.
uint32_t convertWords(const int32_t* srcTop, int srcBits, int32_t* dstTop, int dstBits, int gained,
                      int sign, int round, int wrap)
{
    if (!isMantissaWidth(srcBits) || !isMantissaWidth(dstBits))
        return 0u;
    return convertLimbs(srcTop - (wordsInUse(srcBits) - 1), srcBits,
                        dstTop - (wordsInUse(dstBits) - 1), dstBits, gained, sign, round, wrap);
}

// The conversion for source and destination widths of at most 64 bits whose
// result integer lies within the 64 bits read (no more integer bits gained
// than the destination's pad), on one 64-bit integer: ORs the result into
// dst and sets `saturated`. Returns false, touching nothing, for every other
// conversion, which the word steps handle.
inline bool convertWithin64Bits(const int32_t* src, int32_t* dst, int srcbits, int dstbits,
                                int gained, int sign, int round, int wrap, uint32_t& saturated)
{
    // The source is read left-aligned in 64 bits; shifting it right by
    // `shift` = (integer bits lost) + (64 - result bits) leaves the result's
    // integer m, the bit below it is the rounding bit, and m is then
    // saturated or wrapped and stored left-aligned. That is the conversion's
    // numeric contract step for step, so the word steps give the same words.
    if (srcbits < 1 || srcbits > 64 || dstbits < 1 || dstbits > 64)
        return false;
    const int pad = 64 - dstbits;
    const int shift = gained + pad;  // gained is clamped to +-1024: no overflow
    if (shift < 0)
        return false;
    // Pad bits take no part: they are cut from the lowest word before the
    // words are joined. (That also keeps the two loads apart: one wide load
    // of a record's words 0 and 1 would straddle the two 16-byte stores a
    // by-value record is usually copied with, which cannot be forwarded.)
    const uint32_t lowest = asUnsigned(src[0]) & highmask[srcbits % 32];
    const uint64_t a = srcbits > 32 ? (uint64_t{asUnsigned(src[1])} << 32) | lowest
                                    : uint64_t{lowest} << 32;
    // m's two's complement bits: a shifted right, sign-extended when signed.
    const uint64_t extension = sign != 0 ? topBitMask(a) : 0u;
    uint64_t m = 0;
    uint64_t roundingBit = 0;
    if (shift >= 64) {
        m = extension;
        roundingBit = shift == 64 ? a >> 63 : extension & 1u;
    } else if (shift > 0) {
        m = ((a ^ extension) >> shift) ^ extension;
        roundingBit = (a >> (shift - 1)) & 1u;
    } else {
        m = a;
    }
    // Only a shift leaves room for the increment: m is then below 2^63 in
    // magnitude. A 64-bit result therefore never leaves its range. The range
    // is checked below on the floor (too small is decided before rounding,
    // which only moves upward; a floor one below the minimum that rounds up
    // to it still counts as saturated) and above after rounding.
    const uint64_t floored = m;
    if (round != 0)
        m += roundingBit;
    saturated = 0;
    if (wrap == 0 && dstbits < 64) {
        if (sign != 0) {
            const int64_t highest = (int64_t{1} << (dstbits - 1)) - 1;
            const int64_t lowest = -highest - 1;
            const bool below = static_cast<int64_t>(floored) < lowest;
            const bool above = !below && static_cast<int64_t>(m) > highest;
            saturated = below || above ? 1u : 0u;
            if (below)
                m = static_cast<uint64_t>(lowest);
            else if (above)
                m = static_cast<uint64_t>(highest);
        } else {
            const uint64_t highest = (uint64_t{1} << dstbits) - 1u;
            saturated = m > highest ? 1u : 0u;
            m = m > highest ? highest : m;
        }
    }
    const uint64_t aligned = m << pad;  // under wrap-around the bits above fall off
    if (dstbits > 32) {
        dst[0] = asWord(asUnsigned(dst[0]) | static_cast<uint32_t>(aligned));
        dst[1] = asWord(asUnsigned(dst[1]) | static_cast<uint32_t>(aligned >> 32));
    } else {
        dst[0] = asWord(asUnsigned(dst[0]) | static_cast<uint32_t>(aligned >> 32));
    }
    return true;
}

}  // namespace

void fixwiden(const int32_t* srcTop, int32_t* dstTop, int n, int d, int sign)
{
    // The smallest destination that holds every source bit: any further low
    // words of the real destination stay zero.
    const int gained = clampedShift(d);
    convertWords(srcTop, n, dstTop, mantissaWidthOrZero(int64_t{gained} + n), gained, sign, 0, 0);
}

void fixwidenround(const int32_t* srcTop, int32_t* dstTop, int kept, int d, int sign, int round)
{
    // The source width is not known, but the kept bits and the rounding bit
    // below them exist (with kept <= 0 only the top bit, for the sign).
    const int gained = clampedShift(d);
    const int keptBits = clampedShift(kept);
    const int readable = keptBits < 0 ? 1 : keptBits + 1;
    convertWords(srcTop, readable, dstTop, mantissaWidthOrZero(int64_t{gained} + keptBits), gained,
                 sign, round, 0);
}

uint32_t fixround(const int32_t* srcTop, int32_t* dstTop, int bt, int sign, int round, int wrap)
{
    // The source holds at least the kept bits and the rounding bit.
    const int readable = clampedShift(int64_t{bt} + 1);
    return convertWords(srcTop, readable, dstTop, bt, 0, sign, round, wrap);
}

uint32_t fixnarrow(const int32_t* srcTop, int32_t* dstTop, int n, int bt, int k, int sign, int wrap)
{
    return convertWords(srcTop, n, dstTop, bt, clampedShift(-int64_t{k}), sign, 0, wrap);
}

uint32_t fixnarrowround(const int32_t* srcTop, int32_t* dstTop, int bt, int k, int sign, int round,
                        int wrap)
{
    // The source holds at least the lost bits, the kept bits and the
    // rounding bit.
    const int lost = clampedShift(k);
    const int readable = clampedShift(int64_t{bt} + lost + 1);
    return convertWords(srcTop, readable, dstTop, bt, -lost, sign, round, wrap);
}

uint32_t convertFormat(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int gained,
                       int sign, int round, int wrap)
{
    uint32_t saturated = 0;
    if (convertWithin64Bits(src, dst, srcbits, dstbits, gained, sign, round, wrap, saturated))
        return saturated;
    if (!isMantissaWidth(srcbits) || !isMantissaWidth(dstbits))
        return 0u;
    return convertLimbs(src, srcbits, dst, dstbits, gained, sign, round, wrap);
}

uint32_t fixformat(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int srcexp,
                   int dstexp, int sign, int round, int wrap)
{
    const int64_t gained =
        (int64_t{dstbits} + int64_t{dstexp}) - (int64_t{srcbits} + int64_t{srcexp});
    return convertFormat(src, dst, srcbits, dstbits, clampedShift(gained), sign, round, wrap);
}

}  // namespace Fixed
