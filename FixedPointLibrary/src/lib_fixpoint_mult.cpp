// Word multiplication: schoolbook on 16-bit half-words, so that no 64-bit
// multiplication is needed on the 32-bit target; each product word position
// counts its carries and one pass folds them in, then negative two's
// complement factors are corrected by subtraction.
#include "lib_fixpoint.h"

#include <cstdlib>
#include <type_traits>

namespace Fixed {
namespace {

struct WordProduct {
    uint32_t lo;
    uint32_t hi;
};

// The exact 64-bit product of two words from four 16 x 16-bit products.
[[gnu::always_inline]] inline WordProduct multiplyWords(uint32_t x, uint32_t y)
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

// Folds the counted carries of positions 0..steps-1 into the words above
// them, lowest first, in one pass; a wrap while folding joins the next
// position's count. Nothing branches on a count: with random factors one is
// as often zero as not.
template <typename Steps>
[[gnu::always_inline]] inline void foldCarries(int32_t* out, const uint32_t* carries, Steps steps)
{
    uint64_t wrapped = 0;  // the wrap of the previous step
    for (int k = 0; k < steps; ++k) {
        const uint64_t sum = uint64_t{asUnsigned(out[k + 1])} + carries[k] + wrapped;
        out[k + 1] = asWord(static_cast<uint32_t>(sum));
        wrapped = sum >> 32;
    }
}

// The fold steps of a carry pass over `nout` counters of an nx + ny word
// product. The top product word never receives a carry, so a pass of
// nx + ny counters folds as many as one of nx + ny - 1, and k + 1 stays
// inside the product's words.
inline int foldSteps(int nout, int total)
{
    return nout < total ? nout : total - 1;
}

// Adds the partial products position by position, each position's sum held
// in 64 bits: the caller's word there, the low halves of the word products
// that land on it and the high halves of those one position lower. The low
// 32 bits of the sum are the position's word, the high 32 bits the number of
// times a 32-bit sum would have wrapped: its carry count, propagated only by
// the fold. Summing in registers rather than adding into out word by word
// keeps the additions off a chain of loads and stores through memory.
void sumPositions(int32_t* out, uint32_t* carries, const int32_t* x, const int32_t* y, int nx,
                  int ny)
{
    uint64_t highHalves = 0;  // owed to the current position by the one below
    for (int k = 0; k < nx + ny; ++k) {
        uint64_t sum = uint64_t{asUnsigned(out[k])} + highHalves;
        highHalves = 0;
        const int first = k < ny ? 0 : k - ny + 1;
        const int last = k < nx ? k : nx - 1;
        for (int i = first; i <= last; ++i) {
            const WordProduct p = multiplyWords(asUnsigned(x[i]), asUnsigned(y[k - i]));
            sum += p.lo;
            highHalves += p.hi;
        }
        out[k] = asWord(static_cast<uint32_t>(sum));
        carries[k] = static_cast<uint32_t>(sum >> 32);
    }
}

// sumPositions for factors of a record's sizes ahead of a full carry pass,
// summed by 16-bit position instead: each 16 x 16-bit product is added whole
// into the 64-bit sum of its half-word position, so no addition tests for a
// wrap, and the factors are split into halves once rather than once per word
// product. Two neighbouring half-word sums then make a word position's sum,
// whose low 32 bits are its word and whose high bits its carry count. The
// counts differ from sumPositions' (the word products are never formed), the
// folded product does not: both sum to the same number.
template <int NX, int NY>
[[gnu::always_inline]] inline void sumHalfWordPositions(int32_t* out, uint32_t* carries,
                                                        const int32_t* x, const int32_t* y)
{
    uint32_t xHalves[2 * NX];
    uint32_t yHalves[2 * NY];
#pragma GCC unroll 16
    for (int i = 0; i < NX; ++i) {
        xHalves[2 * i] = asUnsigned(x[i]) & 0xFFFFu;
        xHalves[2 * i + 1] = asUnsigned(x[i]) >> 16;
    }
#pragma GCC unroll 16
    for (int j = 0; j < NY; ++j) {
        yHalves[2 * j] = asUnsigned(y[j]) & 0xFFFFu;
        yHalves[2 * j + 1] = asUnsigned(y[j]) >> 16;
    }
    uint64_t halfSums[2 * (NX + NY)] = {};
#pragma GCC unroll 16
    for (int a = 0; a < 2 * NX; ++a) {
#pragma GCC unroll 16
        for (int b = 0; b < 2 * NY; ++b)
            halfSums[a + b] += xHalves[a] * yHalves[b];
    }
#pragma GCC unroll 16
    for (int k = 0; k < NX + NY; ++k) {
        const uint64_t sum =
            uint64_t{asUnsigned(out[k])} + halfSums[2 * k] + (halfSums[2 * k + 1] << 16);
        out[k] = asWord(static_cast<uint32_t>(sum));
        carries[k] = static_cast<uint32_t>(sum >> 32);
    }
}

// out[0..n-1] -= other[0..n-1] when `factor` (n words) is negative, the
// borrow out of the top dropped: the correction for a negative two's
// complement factor. The other factor is masked word by word rather than the
// subtraction branched on, since a factor's sign is as unpredictable as its
// value; it is neither negated nor copied.
template <typename CountN, typename CountF>
[[gnu::always_inline]] inline void subtractIfNegative(int32_t* out, const int32_t* other,
                                                      CountN n, const int32_t* factor, CountF nf)
{
    const uint32_t mask = 0u - (asUnsigned(factor[nf - 1]) >> 31);
    uint64_t borrow = 0;
    for (int i = 0; i < n; ++i) {
        const uint64_t difference = uint64_t{asUnsigned(out[i])} - (asUnsigned(other[i]) & mask) - borrow;
        out[i] = asWord(static_cast<uint32_t>(difference));
        borrow = difference >> 63;
    }
}

// Everything after the sums: carries folded, negative factors corrected.
template <typename CountX, typename CountY, typename Steps>
[[gnu::always_inline]] inline void correctAfterSums(int32_t* out, const uint32_t* carries,
                                                    const int32_t* x, const int32_t* y, CountX nx,
                                                    CountY ny, Steps steps, int sx, int sy)
{
    foldCarries(out, carries, steps);
    // A negative factor stands for itself minus 2^(32 n): the product loses
    // the other factor shifted up by n words; the cross term falls off the top.
    if (sx != 0)
        subtractIfNegative(out + nx, y, ny, x, nx);
    if (sy != 0)
        subtractIfNegative(out + ny, x, nx, y, ny);
}

// Runs multiply(carries) with nx + ny carry counters from the heap, released
// afterwards. If the counters cannot be had, nothing runs and out is left
// as the caller zeroed it: a product of zero is a defined value, and no word
// is left half-summed.
template <typename Multiply>
[[gnu::always_inline]] inline void withCarryCounters(size_t count, Multiply multiply)
{
    uint32_t* carries = static_cast<uint32_t*>(std::malloc(count * sizeof(uint32_t)));
    if (carries == nullptr)
        return;
    multiply(carries);
    std::free(carries);
}

using RecordSizedMultiplier = void (*)(int32_t*, const int32_t*, const int32_t*, int, int);

// A record-sized product with a carry pass to the top, the whole routine
// in one frame: the counters, the sums and the corrections.
template <int NX, int NY>
void multiplyRecordSized(int32_t* out, const int32_t* x, const int32_t* y, int sx, int sy)
{
    withCarryCounters(NX + NY, [&](uint32_t* carries) {
        sumHalfWordPositions<NX, NY>(out, carries, x, y);
        // The dispatch sends only passes reaching the top counter that can be
        // nonzero (nout of nx + ny - 1 or nx + ny), which all fold alike.
        correctAfterSums(out, carries, x, y, std::integral_constant<int, NX>{},
                         std::integral_constant<int, NY>{},
                         std::integral_constant<int, NX + NY - 1>{}, sx, sy);
    });
}

// Longer factors, or a shorter carry pass, whose unfolded counts are part of
// its result: word products summed per position. Out of line, so that fixmult
// stays a leaf that passes record-sized calls straight on.
[[gnu::noinline]] void multiplyGeneral(int32_t* out, const int32_t* x, const int32_t* y, int nx,
                                       int ny, int nout, int sx, int sy)
{
    withCarryCounters(static_cast<size_t>(nx) + static_cast<size_t>(ny), [&](uint32_t* carries) {
        sumPositions(out, carries, x, y, nx, ny);
        correctAfterSums(out, carries, x, y, nx, ny, foldSteps(nout, nx + ny), sx, sy);
    });
}

// Entry [nx - 1][ny - 1]: the unrolled multiplication for factors of one to
// five words each.
constexpr RecordSizedMultiplier recordSizedMultipliers[maxWords][maxWords] = {
    {multiplyRecordSized<1, 1>, multiplyRecordSized<1, 2>, multiplyRecordSized<1, 3>,
     multiplyRecordSized<1, 4>, multiplyRecordSized<1, 5>},
    {multiplyRecordSized<2, 1>, multiplyRecordSized<2, 2>, multiplyRecordSized<2, 3>,
     multiplyRecordSized<2, 4>, multiplyRecordSized<2, 5>},
    {multiplyRecordSized<3, 1>, multiplyRecordSized<3, 2>, multiplyRecordSized<3, 3>,
     multiplyRecordSized<3, 4>, multiplyRecordSized<3, 5>},
    {multiplyRecordSized<4, 1>, multiplyRecordSized<4, 2>, multiplyRecordSized<4, 3>,
     multiplyRecordSized<4, 4>, multiplyRecordSized<4, 5>},
    {multiplyRecordSized<5, 1>, multiplyRecordSized<5, 2>, multiplyRecordSized<5, 3>,
     multiplyRecordSized<5, 4>, multiplyRecordSized<5, 5>},
};

}  // namespace

void fixmult(int32_t* out, const int32_t* x, const int32_t* y, int nx, int ny, int nout, int sx,
             int sy)
{
    // An empty factor makes an empty product: out stays as the caller zeroed it.
    if (nx < 1 || ny < 1)
        return;
    // Factors of a record's sizes whose carry pass runs to the top (nout of
    // nx + ny - 1 or nx + ny, as fixedmult calls it) leave only the product:
    // they take the unrolled half-word sums. Every other call sums word
    // products.
    if (nx <= maxWords && ny <= maxWords && nout >= nx + ny - 1)
        recordSizedMultipliers[nx - 1][ny - 1](out, x, y, sx, sy);
    else
        multiplyGeneral(out, x, y, nx, ny, nout, sx, sy);
}

}  // namespace Fixed
