// Record layer: building a record from a double, reading it back, shifting
// it, and adding or subtracting records of one format.
#include "lib_fixed_c.h"

#include <cmath>

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

bool sameWidthAndExponent(const fixed& a, const fixed& b)
{
    return a.bits == b.bits && a.exp == b.exp;
}

bool sameFormat(const fixed& a, const fixed& b)
{
    return sameWidthAndExponent(a, b) && a.sign == b.sign;
}

// A carry or borrow chain over the words of a's width, in a's format: the
// shared body of addition and subtraction. A format mismatch is reported once
// and the raw words are combined anyway. val[0] is always combined, even for
// a width below 1, and no word beyond val[4] is touched whatever a.bits says.
// The carry or borrow out of the top word is dropped: the result wraps at the
// format's width.
using WordChain = int (*)(int32_t*, const int32_t*, const int32_t*, int);

fixed combineWordwise(fixed a, const fixed& b, const char* function, const char* mismatch,
                      WordChain chain)
{
    if (!sameFormat(a, b))
        FIXED_REPORT(function, mismatch);
    const int nw = recordWordCount(a.bits);
    chain(a.val, a.val, b.val, nw < 1 ? 1 : nw);
    return a;
}

}  // namespace

fixed double2fixed(double value, int intbits, int fracbits, int sign, int round, int wrap)
{
    if (isInvalidFlag(sign))
        FIXED_REPORT(signature::double2fixed, message::double2fixedSign);
    if (isInvalidFlag(round))
        FIXED_REPORT(signature::double2fixed, message::double2fixedRound);
    if (isInvalidFlag(wrap))
        FIXED_REPORT(signature::double2fixed, message::double2fixedWrap);

    // Words above the width carry nothing; they are zeroed so that records
    // built here compare and copy deterministically.
    fixed result = {};
    result.sign = sign;
    result.bits = wrappingAdd(intbits, fracbits);
    result.exp = wrappingNegate(fracbits);
    if (result.bits > maxBits) {
        FIXED_REPORT(signature::double2fixed, message::double2fixedWidth);
        // The five words cannot hold the mantissa: they are cleared instead,
        // so the record reads as zero and nothing is written beyond val[4].
        for (int32_t& word : result.val)
            word = 0;
        return result;
    }
    // value x 2^fracbits (that is 2^-exp without negating exp, which could
    // overflow for the most negative fracbits).
    const double scaled = powerOfTwo(fracbits) * value;
    float2fix(scaled, result.bits, result.val, sign, round, wrap);
    return result;
}

double fixed2double(fixed f)
{
    const double scale = powerOfTwo(f.exp);
    const double mantissa = fix2float(f.val, f.bits, f.sign);
    return scale * mantissa;
}

fixed fixedshift(fixed f, int n)
{
    f.exp = wrappingAdd(f.exp, n);
    return f;
}

fixed fixedadd(fixed a, fixed b)
{
    return combineWordwise(a, b, signature::fixedadd, message::fixedaddFormat, fixadd);
}

fixed fixedsub(fixed a, fixed b)
{
    return combineWordwise(a, b, signature::fixedsub, message::fixedsubFormat, fixsub);
}

}  // namespace Fixed
