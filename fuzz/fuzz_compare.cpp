// Comparisons of arbitrary records: fixedle is always the negation of
// fixedgt, each mismatch is reported once, and for records of one width and
// exponent (signs 0 or 1) the results are the exact model's.
#include "exact_model.h"
#include "fuzz_support.h"
#include "lib_fixed_c.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    Fixed::fixed a = fuzz::record(in);
    Fixed::fixed b = in.ConsumeBool() ? a : fuzz::record(in);
    if (in.ConsumeBool()) {
        b.bits = a.bits;
        b.exp = a.exp;
        if (in.ConsumeBool())
            b.sign = a.sign;
    }
    fuzz::clearPadBits(a);
    fuzz::clearPadBits(b);
    const bool widthAndExp = a.bits == b.bits && a.exp == b.exp;
    fuzz::resetReports();
    const int gt = Fixed::fixedgt(a, b);
    const int le = Fixed::fixedle(a, b);
    fuzz::require(fuzz::reportCount() == (widthAndExp ? 0 : 2), "fixedgt/fixedle report count");
    fuzz::resetReports();
    const int eq = Fixed::fixedeq(a, b);
    fuzz::require(fuzz::reportCount() == (widthAndExp && a.sign == b.sign ? 0 : 1),
                  "fixedeq report count");
    fuzz::require((gt == 0 || gt == 1) && le == 1 - gt && (eq == 0 || eq == 1), "comparison results");

    if (!widthAndExp || !fuzz::validWidth(a.bits))
        return 0;
    const int nw = model::wordsFor(a.bits);
    bool sameWords = true;
    for (int i = 0; i < nw; ++i)
        sameWords = sameWords && a.val[i] == b.val[i];
    fuzz::require(eq == (sameWords ? 1 : 0), "fixedeq differs from the words");
    if ((a.sign != 0 && a.sign != 1) || (b.sign != 0 && b.sign != 1))
        return 0;
    const mpz_class ma = model::readMantissa(a.val, a.bits, a.sign != 0);
    const mpz_class mb = model::readMantissa(b.val, b.bits, b.sign != 0);
    fuzz::require(gt == (ma > mb ? 1 : 0), "fixedgt differs from the model");
    return 0;
}
