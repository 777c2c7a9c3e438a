// Raw patterns of fixpt: moving bits between the right-aligned pattern a user
// reads and writes and the left-aligned words of the record.
#include "fixpt_pattern.h"

#include <cctype>

namespace {

constexpr int wordBits = 32;

// The word that holds bits [32 * index + shift, ...) of a pattern shifted
// right by shift (0 to 31) bits.
uint32_t shiftedWord(const uint32_t* words, int count, int index, int shift)
{
    const uint32_t low = index < count ? words[index] >> shift : 0;
    const uint32_t high = shift != 0 && index + 1 < count ? words[index + 1] << (wordBits - shift) : 0;
    return low | high;
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const int lower = std::tolower(static_cast<unsigned char>(c));
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Shifts the pattern left by one hexadecimal digit and adds it; returns
// whether bits fell off the top.
bool appendDigit(Pattern* pattern, int digit)
{
    const bool overflow = (pattern->words[Fixed::maxWords - 1] >> 28) != 0;
    for (int i = Fixed::maxWords - 1; i > 0; --i)
        pattern->words[i] = pattern->words[i] << 4 | pattern->words[i - 1] >> 28;
    pattern->words[0] = pattern->words[0] << 4 | static_cast<uint32_t>(digit);
    return overflow;
}

}  // namespace

Pattern patternOf(const Fixed::fixed& record)
{
    Pattern pattern = {};
    const int count = Fixed::recordWordCount(record.bits);
    uint32_t words[Fixed::maxWords] = {};
    for (int i = 0; i < count; ++i)
        words[i] = Fixed::asUnsigned(record.val[i]);
    const int pad = (wordBits - record.bits % wordBits) % wordBits;
    for (int i = 0; i < count; ++i)
        pattern.words[i] = shiftedWord(words, count, i, pad);
    return pattern;
}

Fixed::fixed recordOf(const Pattern& pattern, int bits, int exp, int sign)
{
    Fixed::fixed record = {};
    record.bits = bits;
    record.exp = exp;
    record.sign = sign;
    const int count = Fixed::recordWordCount(bits);
    const int pad = (wordBits - bits % wordBits) % wordBits;
    // Bits above the width shift out of the top word or lie in words not used.
    for (int i = 0; i < count; ++i) {
        const uint32_t low = pad != 0 && i > 0 ? pattern.words[i - 1] >> (wordBits - pad) : 0;
        record.val[i] = Fixed::asWord(pattern.words[i] << pad | low);
    }
    return record;
}

bool hasBitsAbove(const Pattern& pattern, int bits)
{
    for (int i = 0; i < Fixed::maxWords; ++i) {
        const int below = bits - wordBits * i;  // bits of word i inside the width
        const uint32_t outside = below <= 0 ? ~0u : (below >= wordBits ? 0u : ~0u << below);
        if ((pattern.words[i] & outside) != 0)
            return true;
    }
    return false;
}

std::string patternHex(const Pattern& pattern, int bits)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string text = "0x";
    for (int digit = (bits + 3) / 4 - 1; digit >= 0; --digit)
        text += digits[pattern.words[digit / 8] >> (4 * (digit % 8)) & 0xFu];
    return text;
}

std::string wordsHex(const Fixed::fixed& record)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string text = "0x";
    for (int i = Fixed::recordWordCount(record.bits) - 1; i >= 0; --i) {
        for (int shift = 28; shift >= 0; shift -= 4)
            text += digits[Fixed::asUnsigned(record.val[i]) >> shift & 0xFu];
        if (i > 0)
            text += '_';
    }
    return text;
}

bool readPattern(const std::string& text, Pattern* pattern, bool* tooWide)
{
    *pattern = Pattern{};
    *tooWide = false;
    size_t start = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') ? 2 : 0;
    bool anyDigit = false;
    for (size_t i = start; i < text.size(); ++i) {
        if (text[i] == '_')
            continue;
        const int digit = hexValue(text[i]);
        if (digit < 0)
            return false;
        anyDigit = true;
        *tooWide = appendDigit(pattern, digit) || *tooWide;
    }
    return anyDigit;
}
