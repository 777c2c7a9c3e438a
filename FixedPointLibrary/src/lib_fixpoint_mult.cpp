// Word multiplication: schoolbook on 16-bit half-words, so that no 64-bit
// multiplication is needed on the 32-bit target; carries are counted per
// product word and folded in one pass, then negative two's complement factors
// are corrected by subtraction.
#include "lib_fixpoint.h"

#include <cstdlib>

namespace Fixed {
namespace {

struct WordProduct {
    uint32_t lo;
    uint32_t hi;
};

// The exact 64-bit product of two words from four 16 x 16-bit products.
WordProduct multiplyWords(uint32_t x, uint32_t y)
{
    const uint32_t xl = x & 0xFFFFu;
    const uint32_t xh = x >> 16;
    const uint32_t yl = y & 0xFFFFu;
    const uint32_t yh = y >> 16;
    const uint32_t ll = yl * xl;
    const uint32_t lh = yh * xl;
    const uint32_t hl = yl * xh;
    const uint32_t hh = yh * xh;
    const uint32_t first = ll + (lh << 16);
    uint32_t wraps = first < ll ? 1u : 0u;
    const uint32_t lo = first + (hl << 16);
    wraps += lo < first ? 1u : 0u;
    return {lo, hh + (lh >> 16) + (hl >> 16) + wraps};
}

// Adds a word into out[k] and counts the wrap in carries[k] instead of
// propagating it now.
void accumulate(int32_t* out, uint32_t* carries, int k, uint32_t addend)
{
    const uint32_t sum = asUnsigned(out[k]) + addend;
    if (sum < addend)
        ++carries[k];
    out[k] = asWord(sum);
}

// Folds the counted carries into the words above them, lowest first; a wrap
// while folding is counted at the next position and folded at the next step.
// The top product word never receives a carry, so k + 1 stays inside the
// nx + ny words even for nout = nx + ny.
void foldCarries(int32_t* out, uint32_t* carries, int nout, int total)
{
    const int last = nout < total ? nout : total - 1;
    for (int k = 0; k < last; ++k) {
        if (carries[k] != 0u)
            accumulate(out, carries, k + 1, carries[k]);
    }
}

bool isNegative(const int32_t* words, int n, int isSigned)
{
    return isSigned != 0 && (asUnsigned(words[n - 1]) & 0x80000000u) != 0u;
}

}  // namespace

void fixmult(int32_t* out, const int32_t* x, const int32_t* y, int nx, int ny, int nout, int sx,
             int sy)
{
    // An empty factor makes an empty product: out stays as the caller zeroed it.
    if (nx < 1 || ny < 1)
        return;
    const int total = nx + ny;
    // If the counters cannot be had, out is left as the caller zeroed it: a
    // product of zero is a defined value, and no word is left half-summed.
    uint32_t* carries = static_cast<uint32_t*>(std::malloc(static_cast<size_t>(total) * sizeof(uint32_t)));
    if (carries == nullptr)
        return;
    for (int k = 0; k < total; ++k)
        carries[k] = 0u;
    for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            const WordProduct p = multiplyWords(asUnsigned(x[i]), asUnsigned(y[j]));
            accumulate(out, carries, i + j, p.lo);
            accumulate(out, carries, i + j + 1, p.hi);
        }
    }
    foldCarries(out, carries, nout, total);
    std::free(carries);
    // A negative factor stands for itself minus 2^(32 n): the product loses
    // the other factor shifted up by n words; the cross term falls off the top.
    if (isNegative(x, nx, sx))
        fixsub(out + nx, out + nx, y, ny);
    if (isNegative(y, ny, sy))
        fixsub(out + ny, out + ny, x, nx);
}

}  // namespace Fixed
