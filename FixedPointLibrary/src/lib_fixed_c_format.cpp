// Record layer: re-quantising a record into another format (fixedformat).
//
// The routine builds the result header, checks its arguments and picks the
// work by two facts about the conversion: whether integer bits are gained,
// kept or lost (d), and whether low source bits are dropped. Each of the six
// cases is one word copy or one kernel of the word layer.
#include <cstdint>

#include "fixed_report.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

// What a case needs to know about one conversion, derived once.
struct Conversion {
    const int32_t* srcTop;
    int32_t* dstTop;
    int sourceBits;
    int sourceWords;
    int resultBits;
    int gained;      // integer bits gained (d), negative when lost
    int kept;        // source bits at or above the result's last place
    int sign;
    int round;
    int wrap;
};

// Same integer bits and every source bit kept: the source words become the
// top words of the result, the new low words stay zero.
// Each case returns the saturation flag; gaining integer bits never saturates.
uint32_t copyWords(const Conversion& c)
{
    for (int i = 0; i < c.sourceWords; ++i)
        c.dstTop[-i] = c.srcTop[-i];
    return 0;
}

uint32_t widen(const Conversion& c)
{
    fixwiden(c.srcTop, c.dstTop, c.sourceBits, c.gained, c.sign);
    return 0;
}

uint32_t widenRound(const Conversion& c)
{
    fixwidenround(c.srcTop, c.dstTop, c.kept, c.gained, c.sign, c.round);
    return 0;
}

uint32_t roundOnly(const Conversion& c)
{
    return fixround(c.srcTop, c.dstTop, c.resultBits, c.sign, c.round, c.wrap);
}

uint32_t narrow(const Conversion& c)
{
    return fixnarrow(c.srcTop, c.dstTop, c.sourceBits, c.resultBits, -c.gained, c.sign, c.wrap);
}

uint32_t narrowRound(const Conversion& c)
{
    return fixnarrowround(c.srcTop, c.dstTop, c.resultBits, -c.gained, c.sign, c.round, c.wrap);
}

// Rows: integer bits gained, kept, lost. Columns: no source bit dropped,
// low source bits dropped.
using Case = uint32_t (*)(const Conversion&);
const Case caseTable[3][2] = {
    {widen, widenRound},
    {copyWords, roundOnly},
    {narrow, narrowRound},
};

int rowFor(int gained)
{
    return gained > 0 ? 0 : (gained == 0 ? 1 : 2);
}

// The argument reports, out of line: composing a text needs a large frame
// that a valid conversion should not set up on every call.
[[gnu::noinline]] void reportArguments(int sign, int round, int wrap, int resultBits)
{
    reportInvalidFlags(signature::fixedformat,
                       {message::fixedformatSign, message::fixedformatRound,
                        message::fixedformatWrap},
                       sign, round, wrap);
    if (resultBits > maxBits)
        FIXED_REPORT(signature::fixedformat, message::fixedformatWidth);
}

}  // namespace

Quantised fixedformatWithFlag(fixed x, int intbits, int fracbits, int sign, int round, int wrap)
{
    // The result starts all zero: that is the clearing the kernels rely on
    // (they OR bits into the words in use), and it leaves no indeterminate
    // word in the returned record. For a width outside 1..160 it is the whole
    // result: the record then reads as zero and nothing beyond val[4] is
    // written.
    Quantised quantised{};
    fixed& result = quantised.value;
    result.bits = wrappingAdd(intbits, fracbits);
    result.exp = wrappingNegate(fracbits);
    result.sign = sign;

    if (hasArgumentToReport(sign, round, wrap, result.bits))
        reportArguments(sign, round, wrap, result.bits);

    // A source that breaks the record's width range has no mantissa to read;
    // a width below 1 (not reported) leaves nothing to write.
    if (!isMantissaWidth(x.bits) || !isMantissaWidth(result.bits))
        return quantised;

    const int gained = clampedShift(int64_t{intbits} - (int64_t{x.bits} + int64_t{x.exp}));
    // Formats of up to 64 bits: one 64-bit integer instead of the kernels
    // (the result words are still clear, so ORing into them is storing).
    uint32_t saturated = 0;
    if (fixformat64(x.val, result.val, x.bits, result.bits, gained, sign, round, wrap, saturated)) {
        quantised.saturated = saturated != 0 ? 1 : 0;
        return quantised;
    }

    // Pad bits of the source are masked away first (only the raw two-word
    // store above 64 bits leaves them set), so every case, including those
    // that move whole words, gives exactly the value the mantissa holds.
    x.val[0] = asWord(asUnsigned(x.val[0]) & highmask[x.bits % 32]);

    const int sourceWords = wordCount(x.bits);
    const Conversion conversion{x.val + sourceWords - 1,
                                result.val + wordCount(result.bits) - 1,
                                x.bits,
                                sourceWords,
                                result.bits,
                                gained,
                                result.bits - gained,
                                sign,
                                round,
                                wrap};
    const bool dropsBits = x.bits > conversion.kept;
    quantised.saturated = caseTable[rowFor(gained)][dropsBits ? 1 : 0](conversion) != 0 ? 1 : 0;
    return quantised;
}

fixed fixedformat(fixed x, int intbits, int fracbits, int sign, int round, int wrap)
{
    return fixedformatWithFlag(x, intbits, fracbits, sign, round, wrap).value;
}

}  // namespace Fixed
