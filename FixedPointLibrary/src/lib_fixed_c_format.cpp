// Record layer: re-quantising a record into another format (fixedformat).
//
// The routine begins the result record, reports invalid arguments and hands
// the mantissa to the word layer's conversion, the same one fixformat uses:
// it picks the work by the formats' widths and the integer bits gained, and
// its five kernels are entries into the same steps.
#include <cstdint>

#include "fixed_report.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

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

// The conversion into a record begun in the caller's result: fixedformat
// and its flagged variant each build their own result in place, so neither
// copies a record right after the conversion's narrow word stores (a copy
// the processor cannot forward) and the plain one pays nothing for the flag.
// Returns 1 when the result is a saturation pattern.
int convertInto(fixed& result, const fixed& x, int intbits, int sign, int round, int wrap)
{
    if (hasArgumentToReport(sign, round, wrap, result.bits))
        reportArguments(sign, round, wrap, result.bits);
    // The integer bits gained, from the arguments rather than the result's
    // header (whose width may have wrapped around).
    const int gained = clampedShift(int64_t{intbits} - (int64_t{x.bits} + int64_t{x.exp}));
    return static_cast<int>(
        convertFormat(x.val, result.val, x.bits, result.bits, gained, sign, round, wrap));
}

}  // namespace

// The result starts all zero: that is the clearing the conversion relies on
// (it ORs bits into the words in use), and it leaves no indeterminate word
// in the returned record. For a width outside 1..160 it is the whole result:
// the record then reads as zero and nothing beyond val[4] is written.
Quantised fixedformatWithFlag(fixed x, int intbits, int fracbits, int sign, int round, int wrap)
{
    Quantised quantised{blankRecordInFormat(intbits, fracbits, sign), 0};
    quantised.saturated = convertInto(quantised.value, x, intbits, sign, round, wrap);
    return quantised;
}

fixed fixedformat(fixed x, int intbits, int fracbits, int sign, int round, int wrap)
{
    fixed result = blankRecordInFormat(intbits, fracbits, sign);
    convertInto(result, x, intbits, sign, round, wrap);
    return result;
}

}  // namespace Fixed
