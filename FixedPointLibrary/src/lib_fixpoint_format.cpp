// Format conversion on mantissa words: the one conversion behind fixformat,
// fixedformat and the five kernels.
//
// Every conversion is the same few steps on left-aligned words, with bit
// positions counted from the top of the source (0 = its top bit) and the
// destination's top bit sitting at source position -d (d = integer bits
// gained, negative when integer bits are lost):
//   1. range check of the lost integer bits (unless wrapping around), which
//      may end the conversion with a saturation pattern;
//   2. shifted copy: destination word j is the 32 source bits from position
//      32 j - d, sign extension above the source's top and zeros below its
//      last bit, the lowest word cut to the destination's width;
//   3. rounding: one unit in the last place when the most significant dropped
//      bit is set, carried upward, with an overflow test after the carry.
// The source is first read once into a window framed by zero words below
// and extension words above, so that whole words move with two loads and two
// shifts each, without a bound per read. Formats of up to 64 bits take the
// same steps on one 64-bit integer. The kernels differ only in what they are told about the
// source, so each states how many source bits it may read.
// Nothing here allocates or touches floating point; no source word outside
// the bits a caller vouches for is read and no destination word outside the
// result's words in use is written.
#include "lib_fixpoint.h"

#include <cstdint>

namespace Fixed {
namespace {

// The source mantissa, lowest word first, between the words that stand for
// everything around it: zeros below its last bit and, above its top, the
// extension (all ones for a negative signed source, else zero). Six words
// on either side cover every read of a destination of up to five words
// plus the word below it, so once a read's start is clamped into the window
// no read needs a bound of its own. The lowest source word is cut to its
// mantissa bits, so pad bits never take part.
class SourceWindow {
public:
    static constexpr int margin = maxWords + 1;

    // bits must lie in 1..160.
    SourceWindow(const int32_t* low, int bits, int words, int sign)
        : m_words(words),
          m_extension(sign != 0 && (asUnsigned(low[words - 1]) & 0x80000000u) != 0u ? 0xFFFFFFFFu
                                                                                    : 0u)
    {
        for (int i = 0; i < margin; ++i)
            m_window[i] = 0u;
        // The lowest word on its own, cut to its mantissa bits; the others
        // then start at a record's second word (so that a wide load of them
        // stays within one of the 16-byte stores a by-value record is
        // usually copied with, and can be forwarded).
        m_window[margin] = asUnsigned(low[0]) & highmask[bits % 32];
        for (int i = 1; i < words; ++i)
            m_window[margin + i] = asUnsigned(low[i]);
        for (int i = 0; i < margin; ++i)
            m_window[margin + words + i] = m_extension;
    }

    bool isNegative() const { return m_extension != 0u; }

    // Index in the window of the word holding bit `position` (counted from
    // the source's top, 0 = its top bit), and the position's offset from
    // that word's top bit. Positions stay within a few thousand bits
    // (shifts are clamped to +-1024), so a bias keeps the division on
    // non-negative numbers.
    int indexOf(int position) const
    {
        return margin + m_words - 1 - (static_cast<int>(biased(position) / 32u) - bias / 32);
    }
    static int offsetOf(int position) { return static_cast<int>(biased(position) % 32u); }

    // A start index for `count` further words downward, clamped into the
    // window: above it every word is the extension, below it zero.
    int clampedStart(int index, int count) const
    {
        const int highest = margin + m_words + margin - 1;
        return index > highest ? highest : (index < count ? count : index);
    }

    uint32_t word(int index) const { return m_window[index]; }

    // The 32 bits from `offset` bits below the top of `high` on, `low` the
    // word below it: 32-bit shifts only (the 32-bit ARM target has no wider
    // ones), the second split in two so that an offset of 0 shifts by 32
    // nowhere.
    static uint32_t bitsAt(uint32_t high, uint32_t low, int offset)
    {
        return (high << offset) | ((low >> 1) >> (31 - offset));
    }

    bool bitAt(int position) const
    {
        const int index = clampedStart(indexOf(position), 0);
        return (m_window[index] & highbit[offsetOf(position)]) != 0u;
    }

    // Whether the top `count` bits all repeat the extension. Below the
    // source every word reads as zero, so the scan stops at the first of them.
    bool topBitsRepeatExtension(int count) const
    {
        const int wholeWords = count / 32;
        const int top = margin + m_words - 1;
        const int scanned = wholeWords < m_words + 1 ? wholeWords : m_words + 1;
        for (int i = 0; i < scanned; ++i) {
            if (m_window[top - i] != m_extension)
                return false;
        }
        if (wholeWords > m_words)
            return m_extension == 0u;
        const int rest = count % 32;
        return rest == 0 || ((m_window[top - wholeWords] ^ m_extension) & highmask[rest]) == 0u;
    }

private:
    static constexpr int bias = 1 << 14;
    static unsigned biased(int position) { return static_cast<unsigned>(position + bias); }

    int m_words;
    uint32_t m_extension;
    uint32_t m_window[margin + maxWords + margin];
};

// Adds `unit` (zero, or one unit in the last place of the width) to the
// words of a width, lowest first, carrying through every word without a
// branch on the data (the rounding bit is a coin toss for real values).
// Returns true when that overflowed the format: the carry reached the top
// word and made it 0 (unsigned) or 0x80000000 (signed, the maximum became
// negative).
bool addWithCarry(int32_t* words, int nw, uint32_t unit, int sign)
{
    uint32_t carry = unit;
    for (int i = 0; i < nw - 1; ++i) {
        const uint32_t sum = asUnsigned(words[i]) + carry;
        words[i] = asWord(sum);
        carry = sum < carry ? 1u : 0u;
    }
    // The carry into the top word is what reached it.
    const uint32_t top = asUnsigned(words[nw - 1]) + carry;
    words[nw - 1] = asWord(top);
    return carry != 0u && top == (sign != 0 ? 0x80000000u : 0u);
}

// Whether a width names a mantissa; the width itself, or 0 when not.
int mantissaWidthOrZero(int64_t bits)
{
    return isMantissaWidth(bits) ? static_cast<int>(bits) : 0;
}

// The conversion on words: src (srcBits readable bits below srcTop) into the
// cleared destination of dstBits bits whose top word is dstTop and whose top
// bit lies `gained` bits above the source's. Returns 1 when it wrote a
// saturation pattern. The words are worked on in place: a result gathered
// elsewhere and copied over would be read back wide right after narrow
// stores, which the processor cannot forward.
uint32_t convertWords(const int32_t* srcTop, int srcBits, int32_t* dstTop, int dstBits, int gained,
                      int sign, int round, int wrap)
{
    if (!isMantissaWidth(srcBits) || !isMantissaWidth(dstBits))
        return 0u;
    const int nws = wordsInUse(srcBits);
    const int nwt = wordsInUse(dstBits);
    const SourceWindow src(srcTop - (nws - 1), srcBits, nws, sign);
    int32_t* const dstLow = dstTop - (nwt - 1);
    // The lost integer bits, and the new sign bit of a signed result, must
    // all repeat the value's sign.
    const int tested = -gained + (sign != 0 ? 1 : 0);
    if (gained < 0 && wrap == 0 && !src.topBitsRepeatExtension(tested)) {
        writeBound(dstLow, dstBits, src.isNegative() ? Bound::SignedMinimum : maximumFor(sign));
        return 1u;
    }
    // Destination word j (from the top) is the 32 source bits from position
    // 32 j - gained on.
    const int offset = SourceWindow::offsetOf(-gained);
    const int first = src.clampedStart(src.indexOf(-gained), nwt);
    uint32_t high = src.word(first);
    for (int j = 0; j < nwt - 1; ++j) {
        const uint32_t low = src.word(first - j - 1);
        dstTop[-j] = asWord(asUnsigned(dstTop[-j]) | SourceWindow::bitsAt(high, low, offset));
        high = low;
    }
    const uint32_t last = SourceWindow::bitsAt(high, src.word(first - nwt), offset);
    dstLow[0] = asWord(asUnsigned(dstLow[0]) | (last & highmask[dstBits % 32]));
    // Rounding adds one unit in the last place when the most significant
    // dropped bit is set.
    const int keptBits = dstBits - gained;  // source bits at or above the last place
    if (round == 0 || srcBits <= keptBits)
        return 0u;
    const int r = dstBits % 32;
    const uint32_t unit = src.bitAt(keptBits) ? (r == 0 ? 1u : lowbit[32 - r]) : 0u;
    if (addWithCarry(dstLow, nwt, unit, sign) && wrap == 0) {
        writeBound(dstLow, dstBits, maximumFor(sign));
        return 1u;
    }
    return 0u;
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
    const bool negative = sign != 0 && (a >> 63) != 0;
    // m's two's complement bits: a shifted right, sign-extended when signed.
    uint64_t m = 0;
    uint64_t roundingBit = 0;
    if (shift >= 64) {
        m = negative ? ~uint64_t{0} : 0u;
        roundingBit = shift == 64 ? a >> 63 : (negative ? 1u : 0u);
    } else if (shift > 0) {
        m = negative ? ~(~a >> shift) : a >> shift;
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
    return convertWords(src + wordsInUse(srcbits) - 1, srcbits, dst + wordsInUse(dstbits) - 1,
                        dstbits, gained, sign, round, wrap);
}

uint32_t fixformat(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int srcexp,
                   int dstexp, int sign, int round, int wrap)
{
    const int64_t gained =
        (int64_t{dstbits} + int64_t{dstexp}) - (int64_t{srcbits} + int64_t{srcexp});
    return convertFormat(src, dst, srcbits, dstbits, clampedShift(gained), sign, round, wrap);
}

}  // namespace Fixed
