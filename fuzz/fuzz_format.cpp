// Re-quantisation: fixedformat, fixformat and the reformat constructor with
// arbitrary records and formats (widths and exponents far outside the valid
// range). For valid widths the result must be the exact model's, fixformat
// must give fixedformat's words and flag-independent header, the
// constructor must hold fixedformat's record, and nothing may be written
// outside the destination words.
#include <cstring>
#include <memory>

#include "exact_model.h"
#include "fuzz_support.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

bool invalidFlag(int flag) { return flag != 0 && flag != 1; }

// The source shifted by k places, floored or rounded half up, then reduced
// or clamped into the result's range. Shifts beyond a few hundred places
// act like the clamped ones on a mantissa of at most 160 bits.
mpz_class requantise(const mpz_class& m, int64_t k, int bits, bool isSigned, bool nearest, bool wrap)
{
    k = k > 400 ? 400 : (k < -400 ? -400 : k);
    mpz_class rounded;
    if (k >= 0) {
        rounded = m << static_cast<unsigned long>(k);
    } else {
        const unsigned long dropped = static_cast<unsigned long>(-k);
        rounded = m >> dropped;
        if (nearest && mpz_tstbit(m.get_mpz_t(), dropped - 1))
            ++rounded;
    }
    return wrap ? model::wrapInto(rounded, bits, isSigned) : model::saturateInto(rounded, bits, isSigned);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    Fixed::fixed x = fuzz::record(in);
    const bool cleanPads = in.ConsumeIntegralInRange<int>(0, 3) != 0;
    if (cleanPads)
        fuzz::clearPadBits(x);
    const int intbits = fuzz::width(in, -40, 200), fracbits = fuzz::width(in, -200, 200);
    const int sign = fuzz::flag(in), round = fuzz::flag(in), wrap = fuzz::flag(in);

    fuzz::resetReports();
    const Fixed::fixed result = Fixed::fixedformat(x, intbits, fracbits, sign, round, wrap);
    const int bits = Fixed::wrappingAdd(intbits, fracbits);
    const long expectedReports = invalidFlag(sign) + invalidFlag(round) + invalidFlag(wrap) + (bits > 160);
    fuzz::require(fuzz::reportCount() == expectedReports, "fixedformat report count");
    fuzz::require(result.bits == bits && result.exp == Fixed::wrappingNegate(fracbits) &&
                      result.sign == sign,
                  "fixedformat header");

    // The reformat constructor holds exactly fixedformat's record.
    {
        const CFixedPoint source(x);
        const CFixedPoint object(source, intbits, fracbits, static_cast<CFixedPoint::SIGN>(sign),
                                 static_cast<CFixedPoint::ROUND>(round),
                                 static_cast<CFixedPoint::WRAP>(wrap));
        const Fixed::fixed held = object.GetValue();
        fuzz::require(std::memcmp(&held, &result, sizeof held) == 0,
                      "reformat constructor differs from fixedformat");
    }

    // Below, the format must be one a record can state: a width of 1..160
    // that is the true sum of integer and fractional bits (not wrapped).
    if (!fuzz::validWidth(x.bits) || !fuzz::validWidth(bits) ||
        int64_t{intbits} + int64_t{fracbits} != int64_t{bits})
        return 0;
    const int nws = Fixed::wordCount(x.bits), nwt = Fixed::wordCount(bits);
    for (int i = nwt; i < Fixed::maxWords; ++i)
        fuzz::require(result.val[i] == 0, "fixedformat left words above the width nonzero");

    // fixformat reads an exactly sized source and writes a fenced, cleared
    // destination: the same words as fixedformat, and the flag under wrap.
    std::unique_ptr<int32_t[]> source(new int32_t[static_cast<size_t>(nws)]);
    std::memcpy(source.get(), x.val, sizeof(int32_t) * static_cast<size_t>(nws));
    fuzz::Fenced dst(nwt);
    std::fill(dst.words(), dst.words() + nwt, 0);
    const uint32_t saturated = Fixed::fixformat(source.get(), dst.words(), x.bits, bits, x.exp,
                                                Fixed::wrappingNegate(fracbits), sign, round, wrap);
    fuzz::require(dst.intact(nwt), "fixformat wrote outside its destination");
    if (std::memcmp(dst.words(), result.val, sizeof(int32_t) * static_cast<size_t>(nwt)) != 0)
        fuzz::fail("fixformat differs from fixedformat: " + model::hexWords(dst.words(), nwt) +
                   " vs " + model::hexWords(result.val, nwt) + " source " + std::to_string(x.bits) +
                   "/" + std::to_string(x.exp) + " " + model::hexWords(x.val, 5) + " to " +
                   std::to_string(intbits) + "." + std::to_string(fracbits) + " flags " +
                   std::to_string(sign) + "," + std::to_string(round) + "," + std::to_string(wrap));
    fuzz::require(saturated <= 1 && (wrap == 0 || saturated == 0), "fixformat flag");

    if (!cleanPads)
        return 0;
    const mpz_class m = model::readMantissa(x.val, x.bits, sign != 0);
    const mpz_class expected = requantise(m, int64_t{x.exp} + fracbits, bits, sign != 0, round != 0,
                                          wrap != 0);
    model::Words want{};
    model::writeMantissa(expected, bits, want.data());
    if (std::memcmp(want.data(), result.val, sizeof(int32_t) * static_cast<size_t>(nwt)) != 0)
        fuzz::fail("fixedformat: " + model::hexWords(result.val, nwt) + " expected " +
                   model::hexWords(want.data(), nwt));
    return 0;
}
