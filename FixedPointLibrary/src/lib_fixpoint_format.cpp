// Format conversion on mantissa words: the five kernels behind fixedformat and
// the word-array routine fixformat.
//
// Every conversion is the same few steps on left-aligned words, with bit
// positions counted from the top of the source (0 = its top bit) and the
// destination's top bit sitting at source position -d (d = integer bits
// gained, negative when integer bits are lost):
//   1. range check of the lost integer bits (unless wrapping around), which
//      may end the conversion with a saturation pattern;
//   2. shifted copy of the kept source bits, sign-extended above the source's
//      top, the lowest copied word masked so that dropped bits and the
//      source's pad bits stay out;
//   3. rounding: one unit in the last place when the most significant dropped
//      bit is set, carried upward, with an overflow test after the carry.
// The kernels differ only in what they are told about the source, so each one
// states how many source bits it may read and hands over to convertWords.
// Nothing here allocates or touches floating point; no source word outside
// the bits a caller vouches for is read and no destination word outside the
// result's words in use is written.
#include "lib_fixpoint.h"

#include <cstdint>

namespace Fixed {
namespace {

// floor(position / 32) for negative positions too.
int wordIndexOf(int position)
{
    return position >= 0 ? position / 32 : -((31 - position) / 32);
}

// The source mantissa read from its top word down, bounded to the words that
// exist. Positions above the top read as the sign extension (all ones for a
// negative signed source), positions below the last readable bit as zero.
// The lowest readable word is masked to its mantissa bits, so pad bits never
// take part.
class SourceBits {
public:
    // A width outside 1..160 is no mantissa: nothing of it is read.
    SourceBits(const int32_t* top, int bits, int sign)
        : m_top(top),
          m_bits(bits),
          m_words(isMantissaWidth(bits) ? wordCount(bits) : 0),
          m_lowMask(isMantissaWidth(bits) ? highmask[bits % 32] : 0u),
          m_extension(m_words > 0 && sign != 0 && (asUnsigned(top[0]) & 0x80000000u) != 0u
                          ? 0xFFFFFFFFu
                          : 0u)
    {
    }

    bool isValid() const { return m_words > 0; }

    int bits() const { return m_bits; }
    int words() const { return m_words; }
    bool isNegative() const { return m_extension != 0u; }

    // Source word i places below the top.
    uint32_t word(int i) const
    {
        if (i < 0)
            return m_extension;
        if (i >= m_words)
            return 0u;
        const uint32_t value = asUnsigned(m_top[-i]);
        return i == m_words - 1 ? value & m_lowMask : value;
    }

    // The 32 bits starting at a position, top bit first.
    uint32_t wordAt(int position) const
    {
        const int index = wordIndexOf(position);
        const int shift = position - 32 * index;
        if (shift == 0)
            return word(index);
        return (word(index) << shift) | (word(index + 1) >> (32 - shift));
    }

    bool bitAt(int position) const
    {
        const int index = wordIndexOf(position);
        return (word(index) & highbit[position - 32 * index]) != 0u;
    }

private:
    const int32_t* m_top;
    int m_bits;
    int m_words;
    uint32_t m_lowMask;
    uint32_t m_extension;
};

// The destination: its top word and its width, words in use cleared on entry.
struct Destination {
    int32_t* top;
    int bits;

    Destination(int32_t* topWord, int64_t width)
        : top(topWord), bits(isMantissaWidth(width) ? static_cast<int>(width) : 0)
    {
    }

    bool isValid() const { return bits > 0; }
    int words() const { return wordCount(bits); }
    int padShift() const { return bits % 32; }
};

enum class Saturation { None, UnsignedMaximum, SignedMaximum, SignedMinimum };

Saturation maximumFor(int sign)
{
    return sign != 0 ? Saturation::SignedMaximum : Saturation::UnsignedMaximum;
}

// The saturation patterns, left-aligned in the destination's words. The
// minimum writes only its top word; the words below stay as cleared.
void writeSaturation(const Destination& dst, Saturation pattern)
{
    const int nw = dst.words();
    if (pattern == Saturation::SignedMinimum) {
        dst.top[0] = asWord(0x80000000u);
        return;
    }
    for (int i = 0; i < nw; ++i)
        dst.top[-i] = asWord(0xFFFFFFFFu);
    dst.top[-(nw - 1)] = asWord(highmask[dst.padShift()]);
    if (pattern == Saturation::SignedMaximum)
        dst.top[0] = asWord(asUnsigned(dst.top[0]) & 0x7FFFFFFFu);
}

// Range check of the `lost` top integer bits: they (and the new sign bit of
// a signed result) must all repeat the value's sign, all zero for a
// non-negative value and all one for a negative signed one. Stops at the
// first word that decides.
Saturation checkRange(const SourceBits& src, int lost, int sign)
{
    const uint32_t expected = src.isNegative() ? 0xFFFFFFFFu : 0u;
    const Saturation failure = src.isNegative() ? Saturation::SignedMinimum : maximumFor(sign);
    const int tested = sign != 0 ? lost + 1 : lost;
    const int wholeWords = tested / 32;
    for (int i = 0; i < wholeWords; ++i) {
        if (src.word(i) != expected)
            return failure;
        // Beyond the source every word reads as zero, and zeros were
        // expected: the rest passes too.
        if (i >= src.words())
            return Saturation::None;
    }
    const int rest = tested % 32;
    if (rest > 0 && ((src.word(wholeWords) ^ expected) & highmask[rest]) != 0u)
        return failure;
    return Saturation::None;
}

// ORs the source bits that land in the top `bits` destination bits into the
// destination, source position -d at the destination's top bit. The lowest
// word written is masked to those bits.
void shiftedCopy(const SourceBits& src, const Destination& dst, int bits, int d)
{
    const int nw = wordCount(bits);
    for (int j = 0; j < nw; ++j) {
        uint32_t value = src.wordAt(32 * j - d);
        if (j == nw - 1)
            value &= highmask[bits % 32];
        dst.top[-j] = asWord(asUnsigned(dst.top[-j]) | value);
    }
}

// Adds one unit in the destination's last place and carries it upward until
// a word does not wrap to zero or the top word has been incremented. Returns
// true when that overflowed the format: the carry reached the top word and
// made it 0 (unsigned) or 0x80000000 (signed, the maximum became negative).
bool addUnitInLastPlace(const Destination& dst, int sign)
{
    const int r = dst.padShift();
    int i = dst.words() - 1;
    uint32_t sum = asUnsigned(dst.top[-i]) + (r == 0 ? 1u : lowbit[32 - r]);
    dst.top[-i] = asWord(sum);
    while (sum == 0u && i > 0) {
        --i;
        sum = asUnsigned(dst.top[-i]) + 1u;
        dst.top[-i] = asWord(sum);
    }
    return i == 0 && sum == (sign != 0 ? 0x80000000u : 0u);
}

// The whole conversion: src into a destination of dst.bits bits whose top
// bit lies d bits above the source's. Returns 1 when a saturation pattern
// was written.
uint32_t convertWords(const SourceBits& src, const Destination& dst, int d, int sign, int round,
                      int wrap)
{
    if (!src.isValid() || !dst.isValid())
        return 0u;
    if (d < 0 && wrap == 0) {
        const Saturation saturation = checkRange(src, -d, sign);
        if (saturation != Saturation::None) {
            writeSaturation(dst, saturation);
            return 1u;
        }
    }
    const int keptBits = dst.bits - d;  // source bits at or above the destination's last place
    const bool dropsBits = src.bits() > keptBits;
    shiftedCopy(src, dst, dropsBits ? dst.bits : d + src.bits(), d);
    if (dropsBits && round != 0 && src.bitAt(keptBits) && addUnitInLastPlace(dst, sign) &&
        wrap == 0) {
        writeSaturation(dst, maximumFor(sign));
        return 1u;
    }
    return 0u;
}

}  // namespace

void fixwiden(const int32_t* srcTop, int32_t* dstTop, int n, int d, int sign)
{
    // The smallest destination that holds every source bit: any further low
    // words of the real destination stay zero.
    const int gained = clampedShift(d);
    convertWords(SourceBits(srcTop, n, sign), Destination(dstTop, int64_t{gained} + n), gained, sign,
                 0, 0);
}

void fixwidenround(const int32_t* srcTop, int32_t* dstTop, int kept, int d, int sign, int round)
{
    // The source width is not known, but the kept bits and the rounding bit
    // below them exist (with kept <= 0 only the top bit, for the sign).
    const int gained = clampedShift(d);
    const int keptBits = clampedShift(kept);
    const int readable = keptBits < 0 ? 1 : keptBits + 1;
    convertWords(SourceBits(srcTop, readable, sign), Destination(dstTop, int64_t{gained} + keptBits),
                 gained, sign, round, 0);
}

uint32_t fixround(const int32_t* srcTop, int32_t* dstTop, int bt, int sign, int round, int wrap)
{
    // The source holds at least the kept bits and the rounding bit.
    const int readable = clampedShift(int64_t{bt} + 1);
    return convertWords(SourceBits(srcTop, readable, sign), Destination(dstTop, bt), 0, sign, round,
                        wrap);
}

uint32_t fixnarrow(const int32_t* srcTop, int32_t* dstTop, int n, int bt, int k, int sign, int wrap)
{
    return convertWords(SourceBits(srcTop, n, sign), Destination(dstTop, bt), clampedShift(-int64_t{k}),
                        sign, 0, wrap);
}

uint32_t fixnarrowround(const int32_t* srcTop, int32_t* dstTop, int bt, int k, int sign, int round,
                        int wrap)
{
    // The source holds at least the lost bits, the kept bits and the
    // rounding bit.
    const int lost = clampedShift(k);
    const int readable = clampedShift(int64_t{bt} + lost + 1);
    return convertWords(SourceBits(srcTop, readable, sign), Destination(dstTop, bt), -lost, sign,
                        round, wrap);
}

bool fixformat64(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int gained, int sign,
                 int round, int wrap, uint32_t& saturated)
{
    // The source is read left-aligned in 64 bits; shifting it right by
    // `shift` = (integer bits lost) + (64 - result bits) leaves the result's
    // integer m, the bit below it is the rounding bit, and m is then
    // saturated or wrapped and stored left-aligned. That is the conversion's
    // numeric contract step for step, so the kernels give the same words.
    if (srcbits < 1 || srcbits > 64 || dstbits < 1 || dstbits > 64)
        return false;
    const int pad = 64 - dstbits;
    const int shift = gained + pad;  // gained is clamped to +-1024: no overflow
    if (shift < 0)
        return false;
    uint64_t a = srcbits > 32 ? (uint64_t{asUnsigned(src[1])} << 32) | asUnsigned(src[0])
                              : uint64_t{asUnsigned(src[0])} << 32;
    a &= ~uint64_t{0} << (64 - srcbits);  // pad bits take no part
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

uint32_t fixformat(const int32_t* src, int32_t* dst, int srcbits, int dstbits, int srcexp,
                   int dstexp, int sign, int round, int wrap)
{
    // Widths outside 1..160 name no mantissa: nothing is read or written.
    if (!isMantissaWidth(srcbits) || !isMantissaWidth(dstbits))
        return 0u;
    const int64_t gained =
        (int64_t{dstbits} + int64_t{dstexp}) - (int64_t{srcbits} + int64_t{srcexp});
    uint32_t saturated = 0;
    if (fixformat64(src, dst, srcbits, dstbits, clampedShift(gained), sign, round, wrap, saturated))
        return saturated;
    return convertWords(SourceBits(src + wordCount(srcbits) - 1, srcbits, sign),
                        Destination(dst + wordCount(dstbits) - 1, dstbits), clampedShift(gained), sign,
                        round, wrap);
}

}  // namespace Fixed
