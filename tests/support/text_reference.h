// Independent renderer of the library's texts: reads the digits straight off
// the mantissa's binary digits, grouped by plain string slicing. Also the
// guarded call of a library renderer that the text tests share.
#ifndef FIXEDPOINT_TESTS_TEXT_REFERENCE_H
#define FIXEDPOINT_TESTS_TEXT_REFERENCE_H

#include <gmpxx.h>

#include <cstdint>
#include <string>

namespace reference {

/// The bits-wide mantissa m (read as unsigned) as binary digits, most
/// significant first; bits >= 1.
std::string binaryDigits(const mpz_class& m, int bits);

/// fix2str1's text: every mantissa digit (grouped from the top bit unless
/// align is 2), then "*2^exp" when exp is nonzero.
std::string wholeText(const std::string& binary, int exp, int k, int align, bool lower);

/// fix2str2's text: integer digits, a radix point and fraction digits when
/// the radix point lies within the mantissa, else one integer bit and the
/// adjusted exponent.
std::string positionalText(const std::string& binary, int exp, int k, int align, bool lower);

using Renderer = int (*)(const int32_t*, int, int, char*, int, int, int, int, int);

/// What a renderer gave: the counts of the query and the writing call, the
/// text as it reads (first character first) and whether the guard bytes
/// around it are intact.
struct Rendered { int queried, written; std::string text; bool guardsIntact; };

/// Sizes the text with a query call, as a caller would, then writes it into
/// exactly that many characters between guard bytes. Backward steps (+1) end
/// at the last character; forward steps (-1) start the reversed text at the
/// first position.
Rendered render(Renderer fn, const int32_t* words, int bits, int exp, int k, int step, int align, int lower);

}  // namespace reference

#endif  // FIXEDPOINT_TESTS_TEXT_REFERENCE_H
