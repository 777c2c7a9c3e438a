// Record multiplication: the exact product in the summed format.
#include "lib_fixed_c.h"

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

// Whether factors of nwA and nwB words make a product of nwR words, or of
// one word more, within the six scratch words. It cannot fail for factors of
// 1..160 bits whose sum is within 160 (branches not counted); it keeps the
// scratch words safe for every other width.
bool productFitsScratch(int nwA, int nwB, int nwR)
{
    return nwA >= 1 && nwB >= 1 && nwA + nwB >= nwR && nwA + nwB <= nwR + 1;  // GCOVR_EXCL_BR_LINE
}

}  // namespace

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
    // summed width within 160 then keeps nwA + nwB within the six scratch
    // words. For factors of 1..160 bits the counts need no clamp.
    const bool factorsInRange = isMantissaWidth(a.bits) && isMantissaWidth(b.bits);
    const int nwA = factorsInRange ? wordsInUse(a.bits) : recordWordCount(a.bits);
    const int nwB = factorsInRange ? wordsInUse(b.bits) : recordWordCount(b.bits);
    const int nwR = wordsInUse(result.bits);
    if (!factorsInRange && !productFitsScratch(nwA, nwB, nwR))
        return result;
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
