// --fit of fixpt. Whether a format holds a value is asked of the library's
// own quantiser (its saturation flag), so the proposal agrees with what the
// firmware will do, rounding included: 7.99995 needs a fifth integer bit at
// twelve fractional bits because it rounds up to 8.
#include "fixpt_fit.h"

#include <cmath>

#include "fixpt_info.h"
#include "fixpt_single.h"
#include "lib_fixed_c.h"

namespace {

// Scaled values at least this large saturate every format of 160 bits; the
// quantiser is not asked about them (nor about scaled values it cannot
// take at all).
constexpr double beyondEveryWidth = 1.4615016373309029e+48;  // 2^160

bool holds(double value, int intBits, int fracBits, CFixedPoint::SIGN sign, CFixedPoint::ROUND round)
{
    if (value == 0.0)
        return true;
    const double scaled = value * Fixed::powerOfTwo(fracBits);
    if (!(std::fabs(scaled) < beyondEveryWidth))
        return false;
    return Fixed::double2fixedWithFlag(value, intBits, fracBits, sign, round, CFixedPoint::WRAP_SATURATE)
               .saturated == 0;
}

// The smallest integer bit count in [first, last] whose format, of
// width - intBits fractional bits, holds both ends of the range; last + 1
// when none does. A format that holds both ends holds everything between.
int fewestIntBits(const Format& base, int width, int first, int last, double low, double high)
{
    int intBits = first;
    for (; intBits <= last; ++intBits) {
        const int fracBits = width - intBits;
        if (holds(low, intBits, fracBits, base.sign, base.round) && holds(high, intBits, fracBits, base.sign, base.round))
            break;
    }
    return intBits;
}

}  // namespace

FitResult fitFormat(const FitRequest& fit, double low, double high, CFixedPoint::ROUND round)
{
    FitResult result;
    Format& format = result.format;
    format.sign = low < 0.0 || fit.forceSigned ? CFixedPoint::SIGN_SIGNED : CFixedPoint::SIGN_UNSIGNED;
    format.round = round;
    if (low == 0.0 && high == 0.0) {
        result.refusal = QStringLiteral("every format holds a range of zeros only; give a nonzero bound");
        return result;
    }
    if (fit.bits > 0) {
        // Fractional bits run from the tool's bound down.
        const int first = fit.bits - maxFractionMagnitude;
        const int last = fit.bits + maxFractionMagnitude;
        format.intBits = fewestIntBits(format, fit.bits, first, last, low, high);
        format.fracBits = fit.bits - format.intBits;
        if (format.intBits > last)
            result.refusal = QStringLiteral("no format of %1 bits holds the range").arg(fit.bits);
        return result;
    }
    // 2^(exponent - 1) <= resolution < 2^exponent, so 2^-fracBits is the
    // largest power of two not above it.
    int exponent = 0;
    std::frexp(fit.resolution, &exponent);
    format.fracBits = 1 - exponent;
    int width = 1;
    for (; width <= Fixed::maxBits; ++width) {
        const int intBits = width - format.fracBits;
        if (holds(low, intBits, format.fracBits, format.sign, round) &&
            holds(high, intBits, format.fracBits, format.sign, round))
            break;
    }
    format.intBits = width - format.fracBits;
    if (width > Fixed::maxBits)
        result.refusal = QStringLiteral("the range needs more than %1 bits at a resolution of %2")
                             .arg(Fixed::maxBits)
                             .arg(QString::fromStdString(powerOfTwoText(-format.fracBits)));
    return result;
}

void printFit(const Format& format, std::FILE* output)
{
    printInfo(format, output);
    const int exp = -format.fracBits;
    printField(output, "worst error", powerOfTwoText(format.round == CFixedPoint::ROUND_NEAREST ? exp - 1 : exp));
}
