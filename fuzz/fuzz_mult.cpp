// Multiplication: fixedmult on arbitrary records and fixmult on exactly
// sized word arrays. For valid widths the product is the exact model's; the
// word routine writes nothing beyond its nx + ny result words.
#include <cstring>
#include <memory>

#include "exact_model.h"
#include "fuzz_support.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

// The words as one number, two's complement when isSigned.
mpz_class wordsValue(const int32_t* words, int n, bool isSigned)
{
    mpz_class v = 0;
    for (int i = n - 1; i >= 0; --i)
        v = (v << 32) + Fixed::asUnsigned(words[i]);
    if (isSigned && n > 0 && words[n - 1] < 0)
        v -= mpz_class(1) << static_cast<unsigned long>(32 * n);
    return v;
}

void checkRecords(FuzzedDataProvider& in)
{
    Fixed::fixed a = fuzz::record(in), b = fuzz::record(in);
    fuzz::clearPadBits(a);
    fuzz::clearPadBits(b);
    fuzz::resetReports();
    const Fixed::fixed product = Fixed::fixedmult(a, b);
    const int bits = Fixed::wrappingAdd(a.bits, b.bits);
    fuzz::require(fuzz::reportCount() == (bits > 160 ? 1 : 0), "fixedmult report count");
    fuzz::require(product.bits == bits && product.exp == Fixed::wrappingAdd(a.exp, b.exp),
                  "fixedmult header");
    if (!fuzz::validWidth(a.bits) || !fuzz::validWidth(b.bits) || bits > 160)
        return;
    if ((a.sign != 0 && a.sign != 1) || (b.sign != 0 && b.sign != 1))
        return;
    fuzz::require(product.sign == (a.sign | b.sign), "fixedmult signedness");
    const mpz_class exact = model::readMantissa(a.val, a.bits, a.sign != 0) *
                            model::readMantissa(b.val, b.bits, b.sign != 0);
    model::Words want{};
    model::writeMantissa(exact, bits, want.data());
    const int nw = model::wordsFor(bits);
    if (std::memcmp(want.data(), product.val, sizeof(int32_t) * static_cast<size_t>(nw)) != 0)
        fuzz::fail("fixedmult: " + model::hexWords(product.val, nw) + " expected " +
                   model::hexWords(want.data(), nw));
}

void checkWords(FuzzedDataProvider& in)
{
    const int nx = in.ConsumeIntegralInRange<int>(1, 5), ny = in.ConsumeIntegralInRange<int>(1, 5);
    const int sx = fuzz::flag(in), sy = fuzz::flag(in);
    std::unique_ptr<int32_t[]> x(new int32_t[static_cast<size_t>(nx)]);
    std::unique_ptr<int32_t[]> y(new int32_t[static_cast<size_t>(ny)]);
    for (int i = 0; i < nx; ++i)
        x[static_cast<size_t>(i)] = in.ConsumeIntegral<int32_t>();
    for (int i = 0; i < ny; ++i)
        y[static_cast<size_t>(i)] = in.ConsumeIntegral<int32_t>();
    const int n = nx + ny;
    fuzz::Fenced out(n);
    std::fill(out.words(), out.words() + n, 0);
    Fixed::fixmult(out.words(), x.get(), y.get(), nx, ny, n, sx, sy);
    fuzz::require(out.intact(n), "fixmult wrote outside its result words");
    const mpz_class modulus = mpz_class(1) << static_cast<unsigned long>(32 * n);
    mpz_class expected = wordsValue(x.get(), nx, sx != 0) * wordsValue(y.get(), ny, sy != 0);
    expected %= modulus;
    if (expected < 0)
        expected += modulus;
    fuzz::require(wordsValue(out.words(), n, false) == expected, "fixmult differs from the model");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    if (in.ConsumeBool())
        checkRecords(in);
    else
        checkWords(in);
    return 0;
}
