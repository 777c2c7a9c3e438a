// Text of a mantissa in radix 2, 4, 8 or 16 with a decimal power-of-two
// exponent, written backward from the last character so that each character
// is stored once at its final place, with no buffer and no allocation.
#include "lib_fixpoint.h"

#include <cmath>
#include <cstddef>

#include "fixed_report.h"

namespace Fixed {
namespace {

enum class Routine { Whole, Positional };
enum class Walk { All, Fraction, Integer };

// Streams the mantissa bits from its least significant bit upward, across
// word boundaries. Bits beyond the five words of a record read as zero, so an
// oversized width never reads past the record.
class BitReader {
public:
    BitReader(const int32_t* words, int bits)
        : m_words(words), m_index(0), m_bit(bits % 32 > 0 ? 32 - bits % 32 : 0) {}

    uint32_t next()
    {
        if (m_index >= maxWords)
            return 0u;
        const uint32_t bit = (asUnsigned(m_words[m_index]) >> m_bit) & 1u;
        if (++m_bit == 32) {
            m_bit = 0;
            ++m_index;
        }
        return bit;
    }

private:
    const int32_t* m_words;
    int m_index;
    int m_bit;
};

// Places characters backward, step positions apart, and counts them. The
// offset is kept as a number so that no pointer outside the caller's
// characters is ever formed.
class BackwardWriter {
public:
    BackwardWriter(char* last, int step, int lower)
        : m_last(last), m_step(step), m_offset(0), m_count(0), m_letterA(lower != 0 ? 'a' : 'A') {}

    void put(char c)
    {
        m_last[-m_offset] = c;
        m_offset += m_step;
        ++m_count;
    }

    void putDigit(uint32_t digit)
    {
        put(digit <= 9u ? static_cast<char>('0' + digit) : static_cast<char>(m_letterA + (digit - 10u)));
    }

    int count() const { return m_count; }

private:
    char* m_last;
    std::ptrdiff_t m_step;
    std::ptrdiff_t m_offset;
    int m_count;
    char m_letterA;
};

bool isDigitWidth(int digitbits)
{
    return digitbits >= 1 && digitbits <= 4;
}

// ceil(n / k) with truncating division, as the length counts use it.
int digitsFor(int n, int k)
{
    return n / k + (n % k > 0 ? 1 : 0);
}

// Zero bits that complete n bits to whole digits.
int padFor(int n, int k)
{
    return (k - n % k) % k;
}

// Starting pad of a walk: grouped from the walk's top bit (pad) or from its
// lowest bit (0), by routine, walk and align.
int startingPad(Routine routine, Walk walk, int align, int n, int k)
{
    if (align == 2)
        return 0;
    if (routine == Routine::Positional && walk == Walk::Integer && align != 1)
        return 0;
    return padFor(n, k);
}

// n bits from the reader as digits of k bits, the first digit starting p
// positions up; least significant digit first.
void walkDigits(BitReader& reader, BackwardWriter& writer, int n, int k, int p)
{
    uint32_t digit = 0u;
    int filled = p;
    for (int i = 0; i < n; ++i) {
        digit |= reader.next() << filled;
        if (++filled == k) {
            writer.putDigit(digit);
            digit = 0u;
            filled = 0;
        }
    }
    if (filled > 0)
        writer.putDigit(digit);
}

// "*2^", a minus when negative, and the decimal digits of |e|; backward.
void writeExponent(BackwardWriter& writer, int64_t e, bool negative)
{
    uint64_t magnitude = static_cast<uint64_t>(e < 0 ? -e : e);
    do {
        writer.putDigit(static_cast<uint32_t>(magnitude % 10u));
        magnitude /= 10u;
    } while (magnitude != 0u);
    if (negative)
        writer.put('-');
    writer.put('^');
    writer.put('2');
    writer.put('*');
}

// Characters of "*2^e" (with its minus when negative), counted as the length
// query does: through log10, summed in doubles.
double exponentLength(int64_t e, bool negative)
{
    const double magnitude = std::fabs(static_cast<double>(e));
    return std::floor(std::log10(magnitude)) + 4.0 + (negative ? 1.0 : 0.0);
}

int truncated(double length)
{
    return static_cast<int>(length);
}

// A width below 1 holds no bits: the text is then a single "0" digit for the
// positional routine and nothing for the whole-mantissa one, each followed by
// the exponent part when the exponent is nonzero.
int emptyMantissaLength(Routine routine, int exp)
{
    const int digit = routine == Routine::Positional ? 1 : 0;
    return digit + (exp != 0 ? truncated(exponentLength(exp, exp < 0)) : 0);
}

int writeEmptyMantissa(Routine routine, int exp, BackwardWriter& writer)
{
    if (exp != 0)
        writeExponent(writer, exp, exp < 0);
    if (routine == Routine::Positional)
        writer.putDigit(0u);
    return writer.count();
}

struct Layout {
    bool scientific;
    int64_t shownExp;  // after "*2^" in scientific form; 64 bits wide, so it never wraps
    int fractionBits;
    int integerBits;
};

// Positional when the radix point lies inside the mantissa or at its right
// end; otherwise one integer bit and a power-of-two exponent.
Layout positionalLayout(int bits, int exp)
{
    if (exp <= 0 && -static_cast<int64_t>(exp) < bits)
        return {false, 0, -exp, bits + exp};
    return {true, static_cast<int64_t>(exp) + bits - 1, bits - 1, 1};
}

int positionalQuery(int bits, int exp, int k)
{
    const Layout layout = positionalLayout(bits, exp);
    if (!layout.scientific) {
        if (exp == 0)
            return digitsFor(bits, k);
        return digitsFor(-exp, k) + digitsFor(bits + exp, k) + 1;
    }
    const double length = static_cast<double>(digitsFor(bits - 1, k)) +
                          exponentLength(layout.shownExp, exp < 0) + 2.0 - (bits == 1 ? 1.0 : 0.0);
    return truncated(length);
}

}  // namespace

// A digit width outside 1..4 is reported and yields the empty text: nothing is
// written and 0 is returned, in query mode too, so the caller's sizing stays
// consistent and no division by the width happens.
int fix2str1(const int32_t* words, int bits, int exp, char* str, int digitbits, int step, int align,
             int lower, int query)
{
    if (!isDigitWidth(digitbits)) {
        FIXED_REPORT(signature::fix2str1, message::fix2str1DigitWidth);
        return 0;
    }
    const int k = digitbits;
    if (bits < 1 && query != 0)
        return emptyMantissaLength(Routine::Whole, exp);
    if (query != 0) {
        if (exp == 0)
            return digitsFor(bits, k);
        return truncated(static_cast<double>(digitsFor(bits, k)) + exponentLength(exp, exp < 0));
    }
    BackwardWriter writer(str, step, lower);
    if (bits < 1)
        return writeEmptyMantissa(Routine::Whole, exp, writer);
    if (exp != 0)
        writeExponent(writer, exp, exp < 0);
    BitReader reader(words, bits);
    walkDigits(reader, writer, bits, k, startingPad(Routine::Whole, Walk::All, align, bits, k));
    return writer.count();
}

int fix2str2(const int32_t* words, int bits, int exp, char* str, int digitbits, int step, int align,
             int lower, int query)
{
    if (!isDigitWidth(digitbits)) {
        FIXED_REPORT(signature::fix2str2, message::fix2str2DigitWidth);
        return 0;
    }
    const int k = digitbits;
    if (query != 0)
        return bits < 1 ? emptyMantissaLength(Routine::Positional, exp) : positionalQuery(bits, exp, k);
    BackwardWriter writer(str, step, lower);
    if (bits < 1)
        return writeEmptyMantissa(Routine::Positional, exp, writer);
    const Layout layout = positionalLayout(bits, exp);
    if (layout.scientific)
        writeExponent(writer, layout.shownExp, exp < 0);
    BitReader reader(words, bits);
    if (layout.fractionBits > 0) {
        const int n = layout.fractionBits;
        walkDigits(reader, writer, n, k, startingPad(Routine::Positional, Walk::Fraction, align, n, k));
        writer.put('.');
    }
    const int n = layout.integerBits;
    walkDigits(reader, writer, n, k, startingPad(Routine::Positional, Walk::Integer, align, n, k));
    return writer.count();
}

}  // namespace Fixed
