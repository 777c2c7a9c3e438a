// Addition and subtraction of records, operator+=, and the word primitives,
// with arbitrary headers and words. For valid widths: the exact model's
// results, words above the width untouched by the primitives, and
// operator+= equal to fixedadd (x += x included).
#include <cstring>

#include "exact_model.h"
#include "fuzz_support.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

bool sameFormat(const Fixed::fixed& a, const Fixed::fixed& b)
{
    return a.bits == b.bits && a.exp == b.exp && a.sign == b.sign;
}

mpz_class wordsValue(const int32_t* words, int n)
{
    mpz_class v = 0;
    for (int i = n - 1; i >= 0; --i)
        v = (v << 32) + Fixed::asUnsigned(words[i]);
    return v;
}

void checkRecordArithmetic(FuzzedDataProvider& in)
{
    Fixed::fixed a = fuzz::record(in);
    Fixed::fixed b = in.ConsumeBool() ? a : fuzz::record(in);
    if (in.ConsumeBool()) {  // same format, different words
        b.bits = a.bits;
        b.exp = a.exp;
        b.sign = a.sign;
    }
    fuzz::clearPadBits(a);
    fuzz::clearPadBits(b);
    const long mismatch = sameFormat(a, b) ? 0 : 1;
    fuzz::resetReports();
    const Fixed::fixed sum = Fixed::fixedadd(a, b);
    const Fixed::fixed difference = Fixed::fixedsub(a, b);
    fuzz::require(fuzz::reportCount() == 2 * mismatch, "fixedadd/fixedsub report count");
    fuzz::require(sameFormat(sum, a) && sameFormat(difference, a), "fixedadd/fixedsub header");

    {
        CFixedPoint x(a);
        const CFixedPoint y(b);
        x += y;
        const Fixed::fixed held = x.GetValue();
        fuzz::require(std::memcmp(held.val, sum.val, sizeof sum.val) == 0 && sameFormat(held, a),
                      "operator+= differs from fixedadd");
        CFixedPoint z(a);
        z += z;
        const Fixed::fixed doubled = Fixed::fixedadd(a, a);
        const Fixed::fixed heldTwice = z.GetValue();
        fuzz::require(std::memcmp(&heldTwice, &doubled, sizeof doubled) == 0, "x += x");
    }

    if (!fuzz::validWidth(a.bits))
        return;
    // The words add position by position over the first operand's words,
    // whatever the second operand's format: the raw sum modulo 2^(32 nw).
    const int nw = model::wordsFor(a.bits);
    const mpz_class modulus = mpz_class(1) << static_cast<unsigned long>(32 * nw);
    const mpz_class ma = wordsValue(a.val, nw), mb = wordsValue(b.val, nw);
    mpz_class d = ma - mb;
    if (d < 0)
        d += modulus;
    fuzz::require(wordsValue(sum.val, nw) == (ma + mb) % modulus, "fixedadd differs from the model");
    fuzz::require(wordsValue(difference.val, nw) == d, "fixedsub differs from the model");
}

void checkWordPrimitives(FuzzedDataProvider& in)
{
    const int n = in.ConsumeIntegralInRange<int>(-3, 7);
    const int room = n < 1 ? 1 : n;
    fuzz::Fenced x(room), y(room), out(room);
    for (int i = 0; i < room; ++i) {
        x.words()[i] = in.ConsumeIntegral<int32_t>();
        y.words()[i] = in.ConsumeBool() ? x.words()[i] : in.ConsumeIntegral<int32_t>();
    }
    const int used = n < 1 ? 0 : n;
    const mpz_class vx = wordsValue(x.words(), used), vy = wordsValue(y.words(), used);
    const mpz_class modulus = mpz_class(1) << static_cast<unsigned long>(32 * used);
    const auto outValue = [&] { return wordsValue(out.words(), used); };

    if (n >= 1) {
        const int carry = Fixed::fixadd(out.words(), x.words(), y.words(), n);
        fuzz::require(out.intact(n) && outValue() == (vx + vy) % modulus &&
                          carry == (vx + vy >= modulus ? 1 : 0),
                      "fixadd");
        const int borrow = Fixed::fixsub(out.words(), x.words(), y.words(), n);
        mpz_class d = vx - vy;
        if (d < 0)
            d += modulus;
        fuzz::require(out.intact(n) && outValue() == d && borrow == (vx < vy ? 1 : 0), "fixsub");
    }
    const int zero = Fixed::fixneg(out.words(), x.words(), n);
    fuzz::require(out.intact(used) && zero == (vx == 0 ? 1 : 0), "fixneg result");
    if (used > 0)
        fuzz::require(outValue() == (modulus - vx) % modulus, "fixneg");
    Fixed::fixand(out.words(), x.words(), y.words(), n);
    fuzz::require(out.intact(used) && (used == 0 || outValue() == (vx & vy)), "fixand");
    fuzz::require(Fixed::fixeq(x.words(), y.words(), n) == (vx == vy ? 1 : 0), "fixeq");
    fuzz::require(Fixed::fixne(x.words(), y.words(), n) == (vx != vy ? 1 : 0), "fixne");
    fuzz::require(Fixed::fixbitcount(x.words(), n) == static_cast<int>(mpz_popcount(vx.get_mpz_t())),
                  "fixbitcount");

    // fixnot takes a width: within 1..32n it complements the value bits and
    // clears the pad bits of the lowest word.
    if (n >= 1) {
        const int width = in.ConsumeIntegralInRange<int>(32 * (n - 1) + 1, 32 * n);
        fuzz::Fenced w(n);
        Fixed::fixnot(w.words(), x.words(), width);
        fuzz::require(w.intact(n), "fixnot wrote outside its words");
        if (n <= Fixed::maxWords) {
            const mpz_class m = model::readMantissa(x.words(), width, false);
            model::Words want{};
            model::writeMantissa((mpz_class(1) << static_cast<unsigned long>(width)) - 1 - m, width,
                                 want.data());
            fuzz::require(std::memcmp(want.data(), w.words(), sizeof(int32_t) * static_cast<size_t>(n)) == 0,
                          "fixnot");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    if (in.ConsumeBool())
        checkRecordArithmetic(in);
    else
        checkWordPrimitives(in);
    return 0;
}
