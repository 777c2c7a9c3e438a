// The tool's conversions and their saturation flags. A value counts as
// saturated when the exact rounding of its input lies outside the format and
// was replaced by the format's bound; with --overflow wrap nothing saturates.
#include "fixpt_convert.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "lib_fixpoint.h"

namespace {

bool sameRecord(const Fixed::fix& a, const Fixed::fix& b)
{
    if (a.bits != b.bits || a.exp != b.exp || a.sign != b.sign)
        return false;
    const int words = Fixed::recordWordCount(a.bits);
    return std::equal(a.val, a.val + words, b.val);
}

// The first quantisation asks the library's own quantiser whether it wrote a
// saturation pattern, with the same scaled input and flags as the value itself.
// A scaled input that is not finite never gets a saturation pattern (the
// quantiser reports it instead); it is not passed again so that the report
// appears once.
bool quantiseSaturates(const Format& format, double value, const Fixed::fix& record)
{
    if (format.wrap != CFixedPoint::WRAP_SATURATE || !Fixed::isMantissaWidth(record.bits))
        return false;
    const double scaled = Fixed::powerOfTwo(format.fracBits) * value;
    if (!std::isfinite(scaled))
        return false;
    int32_t scratch[Fixed::maxWords] = {};
    return Fixed::float2fix(scaled, record.bits, scratch, format.sign, format.round, 0) != 0;
}

// Integer bits that hold any value of source (read under sign) after rounding
// to the target's fractional bits, and the target's own range: one more than
// the larger of the two, for the carry of rounding up.
int64_t headroomIntBits(const Fixed::fix& source, const Format& target)
{
    const int64_t sourceIntBits = static_cast<int64_t>(source.bits) + source.exp;
    return std::max<int64_t>(sourceIntBits, target.intBits) + 1;
}

// A conversion saturated when the exact rounding, taken in a format wide
// enough never to overflow, differs from the converted value widened into that
// same format. Where no such format fits in 160 bits, the saturated result is
// compared with the wrapped one instead (they can coincide only when the input
// lies a whole multiple of the format's span beyond the bound).
bool convertSaturates(CFixedPoint& source, CFixedPoint& converted, const Format& target)
{
    const Fixed::fix record = converted.GetValue();
    if (target.wrap != CFixedPoint::WRAP_SATURATE || !Fixed::isMantissaWidth(record.bits))
        return false;
    const int64_t wideIntBits = headroomIntBits(source.GetValue(), target);
    if (!Fixed::isMantissaWidth(wideIntBits + target.fracBits)) {
        CFixedPoint wrapped(source, target.intBits, target.fracBits, target.sign, target.round,
                            CFixedPoint::WRAP_AROUND);
        return !sameRecord(wrapped.GetValue(), record);
    }
    const int wide = static_cast<int>(wideIntBits);
    CFixedPoint exact(source, wide, target.fracBits, target.sign, target.round, CFixedPoint::WRAP_AROUND);
    CFixedPoint widened(converted, wide, target.fracBits, target.sign, CFixedPoint::ROUND_FLOOR,
                        CFixedPoint::WRAP_AROUND);
    return !sameRecord(exact.GetValue(), widened.GetValue());
}

Outcome outcomeOf(CFixedPoint& value, double origin, bool saturated)
{
    Outcome outcome;
    outcome.record = value.GetValue();
    outcome.value = static_cast<double>(value);
    outcome.error = outcome.value - origin;
    outcome.saturated = saturated;
    return outcome;
}

}  // namespace

Outcome quantise(const Request& request, double value)
{
    const Format& format = request.format;
    CFixedPoint quantised(value, format.intBits, format.fracBits, format.sign, format.round, format.wrap,
                          request.warn, request.maxValue);
    return outcomeOf(quantised, value, quantiseSaturates(format, value, quantised.GetValue()));
}

Outcome convert(const Request& request, const Outcome& source)
{
    const Format& target = request.target;
    CFixedPoint sourceValue(source.record);
    CFixedPoint converted(sourceValue, target.intBits, target.fracBits, target.sign, target.round,
                          target.wrap);
    return outcomeOf(converted, source.value, convertSaturates(sourceValue, converted, target));
}

std::string rawHex(const Fixed::fix& record)
{
    char digits[24];
    if (record.bits <= 64) {
        const CFixedPoint value(record);
        std::snprintf(digits, sizeof digits, "0x%llX",
                      static_cast<unsigned long long>(value.GetValueAs_uint64_t()));
        return digits;
    }
    std::string text = "0x";
    for (int i = Fixed::recordWordCount(record.bits) - 1; i >= 0; --i) {
        std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned int>(record.val[i]));
        text += digits;
        if (i > 0)
            text += '_';
    }
    return text;
}

// Sized by a length query first; the terminator is ours to add.
std::string valueText(const Fixed::fix& record, int digitBits, int align)
{
    const int length =
        Fixed::fix2str2(record.val, record.bits, record.exp, nullptr, digitBits, 1, align, 0, 1);
    if (length <= 0)
        return std::string();
    std::vector<char> text(static_cast<size_t>(length), '\0');
    Fixed::fix2str2(record.val, record.bits, record.exp, &text[static_cast<size_t>(length) - 1], digitBits,
                    1, align, 0, 0);
    return std::string(text.begin(), text.end());
}
