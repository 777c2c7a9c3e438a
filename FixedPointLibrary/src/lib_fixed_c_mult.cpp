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
    // A factor whose width lies outside 1..160 holds no words to multiply:
    // the record reads as zero. (With both factors of 1..160 bits and their
    // sum within 160, nwA + nwB is nwR or nwR + 1, within the six scratch
    // words.)
    if (!isMantissaWidth(a.bits) || !isMantissaWidth(b.bits))
        return result;
    const int nwA = wordsInUse(a.bits);
    const int nwB = wordsInUse(b.bits);
    const int nwR = wordsInUse(result.bits);
    int32_t scratch[maxWords + 1] = {0, 0, 0, 0, 0, 0};
    fixmult(scratch, a.val, b.val, nwA, nwB, nwR, a.sign, b.sign);
    // The word product carries the factors' pad bits; when they add up to a
    // whole word, its lowest word is that pad and is dropped. All five words
    // are copied: those above the product are scratch words fixmult never
    // wrote, zero like the blank record's, and a fixed copy needs no loop.
    const int32_t* product = scratch + (nwA + nwB - nwR);
    for (int i = 0; i < maxWords; ++i)
        result.val[i] = product[i];
    return result;
}

}  // namespace Fixed
