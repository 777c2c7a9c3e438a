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

// The nw words as one unsigned number each: the highest differing word
// decides, so random operands are settled by their top words.
[[gnu::noinline]] bool wordsGreater(const int32_t* a, const int32_t* b, int nw)
{
    int i = nw - 1;
    while (i > 0 && a[i] == b[i])
        --i;
    return asUnsigned(a[i]) > asUnsigned(b[i]);
}

// The top word with its sign bit flipped when signed: offset readings whose
// unsigned order is the order of the values.
uint32_t orderedTopWord(const fixed& f, int top)
{
    return asUnsigned(f.val[top]) ^ (asUnsigned(f.sign) << 31);
}

// a > b from the unsigned order of the words and the extension bits.
//
// A signed operand against an unsigned one: a negative signed operand is the
// smaller, otherwise both read as plain numbers and the words decide.
//
// Every other pair is read as two numbers one bit wider than the words, each
// topped by its extension bit (any nonzero sign field counts as signed):
// with equal extension bits the words decide, with differing ones the order
// of the words is reversed. That is the sign of the wider difference b - a,
// exact for equal signedness; for a sign field outside 0 and 1 against an
// unsigned operand the difference can overflow, and its sign is still what
// is returned, as before.
int decideGreater(bool greaterWords, uint32_t ea, uint32_t eb, int aSign, int bSign)
{
    if (aSign == 1 && bSign == 0)
        return ea == 0u && greaterWords ? 1 : 0;
    if (aSign == 0 && bSign == 1)
        return eb != 0u || greaterWords ? 1 : 0;
    return greaterWords != (ea != eb) ? 1 : 0;
}

// The mismatch reports, out of line: composing a text needs a frame that the
// comparison itself, a leaf routine otherwise, should not set up on every call.
[[gnu::noinline, gnu::cold]] void reportComparedFormats()
{
    FIXED_REPORT(signature::fixedgt, message::fixedgtFormat);
}

[[gnu::noinline, gnu::cold]] void reportEqualityFormats()
{
    FIXED_REPORT(signature::fixedeq, message::fixedeqFormat);
}

// fixedgt for every pair but the common one: a format mismatch (reported
// here), mixed or unusual sign fields and widths outside 1..160 (clamped to
// the record's words; below 1 there is nothing to compare and a is not
// greater). Out of line, so that the common comparison stays a leaf without
// a frame; the records are passed on by value, in the slots they arrived in.
// Returns the decision XOR `invert` (1 for fixedle).
[[gnu::noinline]] int greaterInGeneral(fixed a, fixed b, int invert)
{
    if (!formatsMatch(a, b, FormatFields::WidthAndExponent))
        reportComparedFormats();
    const int nw = recordWordCount(a.bits);
    if (nw < 1)
        return invert;
    return decideGreater(wordsGreater(a.val, b.val, nw), extensionBit(a, nw), extensionBit(b, nw),
                         a.sign, b.sign) ^ invert;
}

// The common case with equal top words: the words below decide, read as
// unsigned numbers. Out of line and by value for the same reason.
[[gnu::noinline]] int greaterBelowTop(fixed a, fixed b, int top, int invert)
{
    return (wordsGreater(a.val, b.val, top) ? 1 : 0) ^ invert;
}

// a > b, decided where the records arrived: the body of fixedgt and of
// fixedle, which would otherwise copy both records a second time to call
// fixedgt; `invert` 1 gives the negation. The rare cases are handed on by
// value, so that the common one needs no frame.
[[gnu::always_inline]] inline int greater(const fixed& a, const fixed& b, int invert)
{
    // The common case, both operands in one format with a sign field of 0 or
    // 1 and a valid width, is laid out straight: every instruction counts
    // here, where the comparison itself is a handful of them.
    const bool common =
        formatsMatch(a, b) && isMantissaWidth(a.bits) && asUnsigned(a.sign) <= 1u;
    if (__builtin_expect(!common, 0))
        return greaterInGeneral(a, b, invert);
    const int top = static_cast<int>(asUnsigned(a.bits - 1) / 32u);
    const uint32_t aTop = orderedTopWord(a, top);
    const uint32_t bTop = orderedTopWord(b, top);
    if (__builtin_expect(aTop == bTop && top != 0, 0))
        return greaterBelowTop(a, b, top, invert);
    return (aTop > bTop ? 1 : 0) ^ invert;
}

}  // namespace

int fixedgt(fixed a, fixed b)
{
    return greater(a, b, 0);
}

int fixedle(fixed a, fixed b)
{
    return greater(a, b, 1);
}

int fixedeq(fixed a, fixed b)
{
    if (!formatsMatch(a, b))
        reportEqualityFormats();
    return fixeq(a.val, b.val, recordWordCount(a.bits));
}

}  // namespace Fixed
