// The tool's conversions. Records come from the record layer's flag variants,
// so the saturation flag is the quantiser's own; errors are computed on exact
// values, never on the class's double (which cancels above 64 bits).
#include "fixpt_convert.h"

#include <cmath>
#include <cstring>

#include "fixpt_exact.h"
#include "lib_fixed_c.h"

namespace {

void addNote(Outcome& outcome, const std::string& note)
{
    outcome.note += (outcome.note.empty() ? "" : "; ") + note;
}

// Inputs the quantiser cannot take: it reports them and writes no rounding of
// the input.
std::string unquantisableNote(const Format& format, double value)
{
    if (std::isnan(value))
        return "NaN cannot be quantised";
    if (std::isinf(value))
        return "an infinity cannot be quantised";
    if (!std::isfinite(Fixed::powerOfTwo(format.fracBits) * value))
        return "the input times 2^" + std::to_string(format.fracBits) + " overflows a double and cannot be quantised";
    return std::string();
}

// The class's constructor is the one that words the range warning the
// firmware logs; it is built for its report only (the record and the flag
// are the record layer's), and only for inputs it quantises without reports.
void reportAsTheClassDoes(const Request& request, double value)
{
    const Format& format = request.format;
    const CFixedPoint reported(value, format.intBits, format.fracBits, format.sign, format.round, format.wrap, true,
                               request.maxValue);
    (void)reported;
}

// The exact distance of result from origin, rounded to a double at the end.
double exactError(const Fixed::fixed& result, const Dyadic& origin)
{
    return nearestDouble(difference(exactOfRecord(result), origin));
}

bool topBitSet(const Fixed::fixed& record)
{
    const int top = Fixed::recordWordCount(record.bits) - 1;
    return (Fixed::asUnsigned(record.val[top]) >> 31) != 0;
}

bool samePattern(const Pattern& a, const Pattern& b)
{
    return std::memcmp(a.words, b.words, sizeof a.words) == 0;
}

}  // namespace

Outcome quantise(const Request& request, const Number& input)
{
    const Format& format = request.format;
    const double value = input.value;
    const Fixed::Quantised quantised =
        Fixed::double2fixedWithFlag(value, format.intBits, format.fracBits, format.sign, format.round, format.wrap);
    Outcome outcome;
    outcome.record = quantised.value;
    outcome.saturated = quantised.saturated != 0;
    if (input.beyondRange)
        addNote(outcome, "the input lies beyond the double range and reads as infinity");
    const std::string refused = unquantisableNote(format, value);
    if (!refused.empty()) {
        addNote(outcome, refused);
        outcome.error = nearestDouble(exactOfRecord(outcome.record)) - value;
        return outcome;
    }
    if (request.warn && !CFixedPoint::PreDecimalSufficient(value, format.intBits, format.sign, request.maxValue)) {
        addNote(outcome, "the integer part exceeds " + std::to_string(format.intBits) + " integer bits (--warn)");
        reportAsTheClassDoes(request, value);
    }
    outcome.error = exactError(outcome.record, exactOfDouble(value));
    return outcome;
}

Outcome decode(const Request& request, const Pattern& pattern)
{
    const Format& format = request.format;
    Outcome outcome;
    if (!request.viaWords) {
        outcome.record = recordOf(pattern, format.bits(), -format.fracBits, format.sign);
        return outcome;
    }
    // The raw-word constructor takes the pattern's high and low 32 bits.
    const unsigned int msb = pattern.words[1];
    const unsigned int lsb = pattern.words[0];
    const CFixedPoint value(msb, lsb, format.intBits, format.fracBits, format.sign);
    outcome.record = value.GetValue();
    const Pattern stored = patternOf(outcome.record);
    if (!samePattern(stored, pattern))
        addNote(outcome, "the raw-word constructor stored " + patternHex(stored, format.bits()) + " for " +
                             patternHex(pattern, format.bits()));
    return outcome;
}

Outcome convert(const Request& request, const Outcome& source)
{
    const Format& target = request.target;
    const Fixed::Quantised converted = Fixed::fixedformatWithFlag(source.record, target.intBits, target.fracBits,
                                                                  target.sign, target.round, target.wrap);
    Outcome outcome;
    outcome.record = converted.value;
    outcome.saturated = converted.saturated != 0;
    if ((source.record.sign != 0) != (target.sign != 0) && topBitSet(source.record)) {
        Fixed::fixed reread = source.record;
        reread.sign = target.sign;
        addNote(outcome, std::string("the source reads as ") + (target.sign != 0 ? "signed: " : "unsigned: ") +
                             decimalText(exactOfRecord(reread)));
    }
    outcome.error = exactError(outcome.record, exactOfRecord(source.record));
    return outcome;
}
