// Independent renderer of the library's texts: reads the digits straight off
// the mantissa's binary digits, grouped by plain string slicing.
#ifndef FIXEDPOINT_TESTS_TEXT_REFERENCE_H
#define FIXEDPOINT_TESTS_TEXT_REFERENCE_H

#include <gmpxx.h>

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

}  // namespace reference

#endif  // FIXEDPOINT_TESTS_TEXT_REFERENCE_H
