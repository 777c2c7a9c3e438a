// Record multiplication: the exact product in the summed format.
#include "lib_fixed_c.h"

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {

fixed fixedmult(fixed a, fixed b)
{
    // The sign fields are ORed as they stand: 0 and 1 give the usual
    // signedness, and a field outside them is carried into the product's.
    fixed result =
        blankRecord(wrappingAdd(a.bits, b.bits), wrappingAdd(a.exp, b.exp), a.sign | b.sign);
    if (result.bits > maxBits) {
        FIXED_REPORT(signature::fixedmult, message::fixedmultWidth);
        // Five words cannot hold the product: the record reads as zero rather
        // than as some truncated part of it.
        return result;
    }
    // Factors whose width lies outside 1..160 count as holding no words; a
    // summed width within 160 then keeps nwA + nwB within the six scratch words.
    const int nwA = recordWordCount(a.bits);
    const int nwB = recordWordCount(b.bits);
    const int nwR = recordWordCount(result.bits);
    // Branches not counted: the word-count bounds cannot fail for factors of
    // 1..160 bits whose sum is within 160; they keep the scratch words safe.
    if (nwA < 1 || nwB < 1 || nwA + nwB < nwR || nwA + nwB > nwR + 1)  // GCOVR_EXCL_BR_LINE
        return result;
    int32_t scratch[maxWords + 1] = {0, 0, 0, 0, 0, 0};
    fixmult(scratch, a.val, b.val, nwA, nwB, nwR, a.sign, b.sign);
    // The word product carries the factors' pad bits; when they add up to a
    // whole word, its lowest word is that pad and is dropped.
    const int first = nwA + nwB - nwR;
    for (int i = 0; i < nwR; ++i)
        result.val[i] = scratch[first + i];
    return result;
}

}  // namespace Fixed
