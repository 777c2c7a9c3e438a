// Word primitives: carry and borrow chains, negation, complement within a
// width, AND, equality and bit counts over mantissa word arrays.
#include "lib_fixpoint.h"

namespace Fixed {

int fixadd(int32_t* out, const int32_t* x, const int32_t* y, int n)
{
    const uint32_t first = asUnsigned(x[0]) + asUnsigned(y[0]);
    uint32_t carry = first < asUnsigned(x[0]) ? 1u : 0u;
    out[0] = asWord(first);
    for (int i = 1; i < n; ++i) {
        const uint32_t xi = asUnsigned(x[i]);
        const uint32_t partial = xi + asUnsigned(y[i]);
        const uint32_t sum = partial + carry;
        carry = (partial < xi || sum < partial) ? 1u : 0u;
        out[i] = asWord(sum);
    }
    return static_cast<int>(carry);
}

int fixsub(int32_t* out, const int32_t* x, const int32_t* y, int n)
{
    const uint32_t first = asUnsigned(x[0]) - asUnsigned(y[0]);
    uint32_t borrow = asUnsigned(x[0]) < first ? 1u : 0u;
    out[0] = asWord(first);
    for (int i = 1; i < n; ++i) {
        const uint32_t xi = asUnsigned(x[i]);
        const uint32_t yi = asUnsigned(y[i]);
        const uint32_t difference = xi - yi - borrow;
        borrow = (xi < yi || (xi == yi && borrow != 0u)) ? 1u : 0u;
        out[i] = asWord(difference);
    }
    return static_cast<int>(borrow);
}

int fixneg(int32_t* out, const int32_t* x, int n)
{
    int carry = 1;
    int i = 0;
    for (; i < n && carry != 0; ++i) {
        const uint32_t negated = ~asUnsigned(x[i]) + 1u;
        carry = negated == 0u ? 1 : 0;
        out[i] = asWord(negated);
    }
    for (; i < n; ++i)
        out[i] = asWord(~asUnsigned(x[i]));
    return carry;
}

void fixnot(int32_t* out, const int32_t* x, int width)
{
    // A width outside 1..160 is not a mantissa width; it complements nothing
    // rather than index highmask with a negative remainder or run past the
    // five words of a record.
    if (width < 1 || width > maxBits)
        return;
    const int nw = wordCount(width);
    out[0] = asWord(highmask[width % 32] & ~asUnsigned(x[0]));
    for (int i = 1; i < nw; ++i)
        out[i] = asWord(~asUnsigned(x[i]));
}

void fixand(int32_t* out, const int32_t* x, const int32_t* y, int n)
{
    for (int i = 0; i < n; ++i)
        out[i] = asWord(asUnsigned(x[i]) & asUnsigned(y[i]));
}

int fixne(const int32_t* x, const int32_t* y, int n)
{
    return n < 1 ? 0 : 1 - fixeq(x, y, n);
}

int fixbitcount(const int32_t* x, int n)
{
    int total = 0;
    for (int i = 0; i < n; ++i) {
        uint32_t word = asUnsigned(x[i]);
        for (int nibble = 0; nibble < 8; ++nibble, word >>= 4)
            total += static_cast<int>(nibblecount[word & 0xFu]);
    }
    return total;
}

}  // namespace Fixed
