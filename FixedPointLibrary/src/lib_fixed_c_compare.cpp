// Record comparisons: greater-than exact across signed and unsigned operands,
// its negation, and bitwise equality of the mantissa words.
#include "lib_fixed_c.h"

#include "fixed_report.h"
#include "lib_fixpoint.h"

namespace Fixed {
namespace {

// The bit a one-bit-wider copy of the words would carry on top: the sign bit
// of a signed mantissa, zero for an unsigned one.
uint32_t extensionBit(const fixed& f, int nw)
{
    return f.sign != 0 ? asUnsigned(f.val[nw - 1]) >> 31 : 0u;
}

// With differing signedness the one-bit-wider difference can overflow; the
// top bit of the word difference then decides. Rows: t, a signed, b signed.
int decideGreater(uint32_t t, int aSign, int bSign, uint32_t differenceTopBit)
{
    if (t != 0u) {
        if (aSign != 1 || bSign != 0)
            return 1;
        return static_cast<int>(differenceTopBit);
    }
    if (aSign != 0 || bSign != 1)
        return 0;
    return static_cast<int>(differenceTopBit);
}

}  // namespace

int fixedgt(fixed a, fixed b)
{
    if (a.bits != b.bits || a.exp != b.exp)
        FIXED_REPORT(signature::fixedgt, message::fixedgtFormat);
    // A width outside 1..160 is clamped to the record's words; below 1 there
    // is nothing to compare and a is not greater.
    const int nw = recordWordCount(a.bits);
    if (nw < 1)
        return 0;
    int32_t difference[maxWords];
    const uint32_t borrow = static_cast<uint32_t>(fixsub(difference, b.val, a.val, nw));
    const uint32_t t = (extensionBit(b, nw) - extensionBit(a, nw) - borrow) & 1u;
    return decideGreater(t, a.sign, b.sign, asUnsigned(difference[nw - 1]) >> 31);
}

int fixedle(fixed a, fixed b)
{
    return fixedgt(a, b) == 0 ? 1 : 0;
}

int fixedeq(fixed a, fixed b)
{
    if (a.bits != b.bits || a.exp != b.exp || a.sign != b.sign)
        FIXED_REPORT(signature::fixedeq, message::fixedeqFormat);
    return fixeq(a.val, b.val, recordWordCount(a.bits));
}

}  // namespace Fixed
