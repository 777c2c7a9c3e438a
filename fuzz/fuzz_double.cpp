// Doubles into mantissas and back: float2fix into a destination sized for
// any width, double2fixed and the class constructor with any arguments,
// PreDecimalSufficient, the raw-word constructor with the 64-bit readers.
// Results for valid arguments are compared with the exact GMP model.
#include <cmath>
#include <cstring>

#include "exact_model.h"
#include "fuzz_support.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"

namespace {

double anyDouble(FuzzedDataProvider& in)
{
    switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: {
        const uint64_t bits = in.ConsumeIntegral<uint64_t>();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        return d;  // NaN, infinities and subnormals included
    }
    case 1:
        return static_cast<double>(in.ConsumeIntegral<int64_t>());
    default:
        return std::ldexp(static_cast<double>(in.ConsumeIntegral<int64_t>()),
                          in.ConsumeIntegralInRange<int>(-1100, 1100));
    }
}

// What float2fix must produce for a finite value into 1..160 bits, or false
// where the words follow the double steps of a wide wrap-around rather than
// the residue (the unit tests pin those results).
bool expectedMantissa(double value, int bits, int sign, int round, int wrap, mpz_class& mantissa,
                      bool& saturated)
{
    const mpz_class rounded = model::roundDouble(value, round != 0);
    const bool inRange =
        rounded >= model::minimum(bits, sign != 0) && rounded <= model::maximum(bits, sign != 0);
    saturated = wrap == 0 && !inRange;
    if (wrap != 0 && bits > 53 && model::wrapStepRounds(rounded, bits))
        return false;
    mantissa = wrap != 0 ? model::wrapInto(rounded, bits, true)
                         : model::saturateInto(rounded, bits, sign != 0);
    return true;
}

void requireWords(const int32_t* words, const mpz_class& mantissa, int bits, const char* what)
{
    model::Words expected{};
    model::writeMantissa(mantissa, bits, expected.data());
    for (int i = 0; i < model::wordsFor(bits); ++i)
        if (words[i] != expected[static_cast<size_t>(i)])
            fuzz::fail(std::string(what) + ": " + model::hexWords(words, model::wordsFor(bits)) +
                       " expected " + model::hexWords(expected.data(), model::wordsFor(bits)));
}

void checkFloat2fix(FuzzedDataProvider& in)
{
    const double value = anyDouble(in);
    const int bits = fuzz::width(in, -40, 1100);
    const int sign = fuzz::flag(in), round = fuzz::flag(in), wrap = fuzz::flag(in);
    // The routine writes ceil(bits / 32) words and, for widths below 1, at
    // most words[0]: the destination has exactly that room. Widths of many
    // thousand words are not worth the allocation.
    if (bits > 32 * 4096)
        return;
    const int room = bits < 1 ? 1 : Fixed::wordCount(bits);
    fuzz::Fenced dst(room);
    const int saturated = Fixed::float2fix(value, bits, dst.words(), sign, round, wrap);
    fuzz::require(dst.intact(room), "float2fix wrote outside its words");
    fuzz::require(saturated == 0 || saturated == 1, "float2fix result not 0 or 1");
    if (!fuzz::validWidth(bits) || !std::isfinite(value))
        return;
    mpz_class mantissa;
    bool expectSaturated = false;
    if (!expectedMantissa(value, bits, sign, round, wrap, mantissa, expectSaturated))
        return;
    requireWords(dst.words(), mantissa, bits, "float2fix");
    fuzz::require(saturated == (expectSaturated ? 1 : 0), "float2fix saturation flag");
}

void checkDouble2fixed(FuzzedDataProvider& in)
{
    const double value = anyDouble(in);
    const int intbits = fuzz::width(in, -20, 170), fracbits = fuzz::width(in, -20, 170);
    const int sign = fuzz::flag(in), round = fuzz::flag(in), wrap = fuzz::flag(in);
    fuzz::resetReports();
    const Fixed::fixed f = Fixed::double2fixed(value, intbits, fracbits, sign, round, wrap);
    const long expectedReports = (sign != 0 && sign != 1) + (round != 0 && round != 1) +
                                 (wrap != 0 && wrap != 1);
    const int bits = Fixed::wrappingAdd(intbits, fracbits);
    fuzz::require(f.bits == bits && f.exp == Fixed::wrappingNegate(fracbits) && f.sign == sign,
                  "double2fixed header");
    // A width above 160 adds its own report; float2fix may add internal ones
    // only for NaN results.
    const long widthReports = bits > 160 ? 1 : 0;
    if (std::isfinite(value))
        fuzz::require(fuzz::reportCount() >= expectedReports + widthReports,
                      "double2fixed report count");
    (void)Fixed::fixed2double(f);  // any width: must stay inside the record
    if (!fuzz::validWidth(bits))
        return;
    const double scaled = value * std::pow(2.0, static_cast<double>(fracbits));
    if (!std::isfinite(scaled))
        return;
    mpz_class mantissa;
    bool saturated = false;
    if (!expectedMantissa(scaled, bits, sign, round, wrap, mantissa, saturated))
        return;
    requireWords(f.val, mantissa, bits, "double2fixed");
    if (expectedReports == 0)
        fuzz::require(fuzz::reportCount() == 0, "double2fixed reported a valid conversion");

    // The class constructor keeps exactly that record; the warning is the
    // only report it may add.
    const bool warn = in.ConsumeBool();
    const auto maxValue = static_cast<CFixedPoint::MAXVALUE>(fuzz::flag(in));
    fuzz::resetReports();
    CFixedPoint object(value, intbits, fracbits, static_cast<CFixedPoint::SIGN>(sign),
                       static_cast<CFixedPoint::ROUND>(round), static_cast<CFixedPoint::WRAP>(wrap),
                       warn, maxValue);
    const Fixed::fixed g = object.GetValue();
    fuzz::require(std::memcmp(&f, &g, sizeof f) == 0, "constructor record differs from double2fixed");
    const bool fits = CFixedPoint::PreDecimalSufficient(value, intbits,
                                                        static_cast<CFixedPoint::SIGN>(sign), maxValue);
    fuzz::require(fuzz::reportCount() == expectedReports + (warn && !fits ? 1 : 0),
                  "constructor report count");
}

// floor(value) within [L, U] of the integer bits, exactly.
void checkPreDecimalSufficient(FuzzedDataProvider& in)
{
    const double value = anyDouble(in);
    const int preDecimalBits = fuzz::width(in, -5, 70);
    const int sign = fuzz::flag(in), maxValue = fuzz::flag(in);
    const bool fits = CFixedPoint::PreDecimalSufficient(
        value, preDecimalBits, static_cast<CFixedPoint::SIGN>(sign),
        static_cast<CFixedPoint::MAXVALUE>(maxValue));
    if (!std::isfinite(value) || preDecimalBits < -64 || preDecimalBits > 2000)
        return;
    const mpz_class floored = model::roundDouble(value, false);
    const bool isSigned = sign == 1;
    const long m = static_cast<long>(preDecimalBits) - (isSigned ? 1 : 0);
    // P = 2^m; with m < 0 the integers within [L, U] are those of a bound
    // below 1: L = -P rounds up to 0, U = P - 1 is negative, U = P below 1.
    const mpq_class p = m >= 0 ? mpq_class(mpz_class(1) << static_cast<unsigned long>(m))
                               : mpq_class(1, mpz_class(1) << static_cast<unsigned long>(-m));
    const mpq_class lower = isSigned ? mpq_class(-p) : mpq_class(0);
    const mpq_class upper = maxValue == 0 ? mpq_class(p - 1) : p;
    const bool expected = mpq_class(floored) >= lower && mpq_class(floored) <= upper;
    fuzz::require(fits == expected, "PreDecimalSufficient");
}

// The raw pattern survives the round trip exactly up to 53 bits when it has
// no bits above its width; every width is safe to construct and read.
void checkRawWords(FuzzedDataProvider& in)
{
    const unsigned int msb = in.ConsumeIntegral<uint32_t>(), lsb = in.ConsumeIntegral<uint32_t>();
    const int preDecimalBits = fuzz::width(in, 0, 70), fractionBits = fuzz::width(in, -4, 70);
    const int sign = fuzz::flag(in);
    fuzz::resetReports();
    CFixedPoint object(msb, lsb, preDecimalBits, fractionBits, static_cast<CFixedPoint::SIGN>(sign));
    const Fixed::fixed f = object.GetValue();
    const int bits = f.bits;
    const uint64_t value = object.GetValueAs_uint64_t();
    fuzz::require(object.MSB() == static_cast<unsigned int>(value >> 32) &&
                      object.LSB() == static_cast<unsigned int>(value),
                  "MSB/LSB are not the halves of GetValueAs_uint64_t");
    fuzz::require(fuzz::reportCount() == (bits > 64 ? 3 : 0), "raw-word report count");
    if (bits > 64) {
        fuzz::require(value == 0 && f.val[0] == static_cast<int32_t>(lsb) &&
                          f.val[1] == static_cast<int32_t>(msb) && f.val[2] == 0 && f.val[3] == 0 &&
                          f.val[4] == 0,
                      "raw words above 64 bits");
        return;
    }
    if (bits < 1)
        return;
    if (bits < 64)
        fuzz::require(value >> bits == 0, "GetValueAs_uint64_t has bits above the width");
    const uint64_t pattern = (uint64_t{msb} << 32) | lsb;
    if (bits <= 53 && pattern >> bits == 0 && (sign == 0 || sign == 1))
        fuzz::require(value == pattern, "raw pattern round trip");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
        checkFloat2fix(in);
        break;
    case 1:
        checkDouble2fixed(in);
        break;
    case 2:
        checkPreDecimalSufficient(in);
        break;
    default:
        checkRawWords(in);
        break;
    }
    return 0;
}
