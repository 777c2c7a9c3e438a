// Record layer: building a record from a double, reading it back, shifting
// it, and adding or subtracting records of one format.
#include "lib_fixed_c.h"

#include <cmath>

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

// The words of a record with a valid width: value x 2^fracbits quantised
// (2^fracbits rather than 2^-exp, whose negation could overflow for the most
// negative fracbits).
inline int quantiseInto(fixed& result, double value, int fracbits, int sign, int round, int wrap)
{
    const double scaled = powerOfTwo(fracbits) * value;
    return float2fix(scaled, result.bits, result.val, sign, round, wrap);
}

// A carry or borrow chain over the words of a's width, in a's format: the
// shared body of addition and subtraction. A format mismatch is reported once
// and the raw words are combined anyway. val[0] is always combined, even for
// a width below 1, and no word beyond val[4] is touched whatever a.bits says.
// The carry or borrow out of the top word is dropped: the result wraps at the
// format's width.
//
// The result is a named local rather than the modified parameter: the local
// is built in the caller's result slot, while a parameter would be copied out
// with wide loads right after the chain's narrow word stores, which the
// processor cannot forward.
using WordChain = int (*)(int32_t*, const int32_t*, const int32_t*, int);

fixed combineWordwise(const fixed& a, const fixed& b, const char* function, const char* mismatch,
                      WordChain chain)
{
    if (!formatsMatch(a, b))
        FIXED_REPORT(function, mismatch);
    const int nw = recordWordCount(a.bits);
    fixed result = a;
    chain(result.val, a.val, b.val, nw < 1 ? 1 : nw);
    return result;
}

// double2fixed with something to report, out of line: composing a text needs
// a large frame that the common conversion should not set up on every call.
[[gnu::noinline]] int reportAndQuantise(fixed& result, double value, int fracbits, int sign,
                                        int round, int wrap)
{
    reportInvalidFlags(signature::double2fixed,
                       {message::double2fixedSign, message::double2fixedRound,
                        message::double2fixedWrap},
                       sign, round, wrap);
    if (result.bits > maxBits) {
        FIXED_REPORT(signature::double2fixed, message::double2fixedWidth);
        // The five words cannot hold the mantissa: they are cleared instead,
        // so the record reads as zero and nothing is written beyond val[4].
        for (int32_t& word : result.val)
            word = 0;
        return 0;
    }
    return quantiseInto(result, value, fracbits, sign, round, wrap);
}

// The quantisation into a record begun in the caller's result, checks
// first: double2fixed and its flagged variant each build their own result in
// place, so neither copies a record right after the quantiser's narrow word
// stores (a copy the processor cannot forward) and the plain one pays
// nothing for the flag. Returns the quantiser's saturation flag.
inline int quantiseRecord(fixed& result, double value, int fracbits, int sign, int round, int wrap)
{
    if (hasArgumentToReport(sign, round, wrap, result.bits))
        return reportAndQuantise(result, value, fracbits, sign, round, wrap);
    return quantiseInto(result, value, fracbits, sign, round, wrap);
}

}  // namespace

Quantised double2fixedWithFlag(double value, int intbits, int fracbits, int sign, int round,
                               int wrap)
{
    Quantised result{blankRecordInFormat(intbits, fracbits, sign), 0};
    result.saturated = quantiseRecord(result.value, value, fracbits, sign, round, wrap);
    return result;
}

fixed double2fixed(double value, int intbits, int fracbits, int sign, int round, int wrap)
{
    fixed result = blankRecordInFormat(intbits, fracbits, sign);
    quantiseRecord(result, value, fracbits, sign, round, wrap);
    return result;
}

double fixed2double(fixed f)
{
    const double scale = powerOfTwo(f.exp);
    const double mantissa = fix2float(f.val, f.bits, f.sign);
    return scale * mantissa;
}

// A named result, built in place, for the same reason as combineWordwise's.
fixed fixedshift(fixed f, int n)
{
    fixed result = f;
    result.exp = wrappingAdd(f.exp, n);
    return result;
}

fixed fixedadd(fixed a, fixed b)
{
    return combineWordwise(a, b, signature::fixedadd, message::fixedaddFormat, fixadd);
}

fixed fixedsub(fixed a, fixed b)
{
    return combineWordwise(a, b, signature::fixedsub, message::fixedsubFormat, fixsub);
}

void reportInvalidFlags(const char* function, const FlagMessages& messages, int sign, int round,
                        int wrap)
{
    if (isInvalidFlag(sign))
        FIXED_REPORT(function, messages.sign);
    if (isInvalidFlag(round))
        FIXED_REPORT(function, messages.round);
    if (isInvalidFlag(wrap))
        FIXED_REPORT(function, messages.wrap);
}

}  // namespace Fixed
