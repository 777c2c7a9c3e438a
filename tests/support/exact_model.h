// Independent exact model of the library's numbers on GMP integers: mantissa
// words read and written in the left-aligned layout, doubles floored or
// rounded half up exactly, saturation and wrap-around.
#ifndef FIXEDPOINT_TESTS_EXACT_MODEL_H
#define FIXEDPOINT_TESTS_EXACT_MODEL_H

#include <gmpxx.h>

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace model {

using Words = std::array<int32_t, 5>;

/// Words in use for a width of 1..160 bits.
int wordsFor(int bits);

/// The integer held left-aligned in the words (pad bits ignored).
mpz_class readMantissa(const int32_t* words, int bits, bool isSigned);

/// m modulo 2^bits written left-aligned into wordsFor(bits) words, pad bits
/// zero; words above are left alone.
void writeMantissa(const mpz_class& m, int bits, int32_t* words);

/// Every mantissa of a width, indexed by its bit pattern: the pattern read
/// unsigned or as two's complement.
std::vector<mpz_class> allMantissas(int bits, bool isSigned);

/// Range of a bits-wide mantissa.
mpz_class minimum(int bits, bool isSigned);
mpz_class maximum(int bits, bool isSigned);

/// floor(value) or floor(value + 1/2), exactly. value must be finite.
mpz_class roundDouble(double value, bool nearest);

/// m reduced modulo 2^bits into the format's range (two's complement read
/// back for signed formats).
mpz_class wrapInto(const mpz_class& m, int bits, bool isSigned);

/// Whether the first double step of wrapping the integer m into bits bits,
/// q = floor(1/2 + m 2^-bits), may come out one too high: the exact sum lies
/// so close below the next integer that rounding it to a double (53
/// significant bits, to nearest) can reach that integer. Only then can the
/// words leave m's residue class; with q exact the remaining steps are exact.
bool wrapStepRounds(const mpz_class& m, int bits);

/// m clamped to the format's range.
mpz_class saturateInto(const mpz_class& m, int bits, bool isSigned);

/// Re-quantisation of m by k places (k = source exponent - result
/// exponent): shifted, floored or rounded half up, then saturated or reduced
/// modulo 2^bits. Returns the mantissa and whether a saturation pattern is
/// written: a value below the minimum that rounding lifts onto it still
/// counts, as the range check decides before rounding.
std::pair<mpz_class, bool> requantise(const mpz_class& m, long k, int bits, bool isSigned, bool nearest, bool wrap);

/// The double nearest to v, ties to even (normal magnitudes only): what one
/// IEEE double operation with exact result v gives.
double nearestDouble(const mpq_class& v);

/// The wrap-around of an integer-valued double x into bits bits by the
/// library's double steps, q = floor(0.5 + x 2^-bits) and x - q 2^bits, each
/// operation rounded as a double would round it. Above 53 bits the result
/// can leave the residue class of x.
mpz_class wrapByDoubleSteps(const mpz_class& x, int bits);

/// Hex text of the words, top first, for failure messages.
std::string hexWords(const int32_t* words, int count);

/// A record's width, exponent, sign field and words, for failure messages.
template <typename Record>
std::string describe(const Record& f)
{
    return std::to_string(f.bits) + "/" + std::to_string(f.exp) + "/" + std::to_string(f.sign) + " " + hexWords(f.val, 5);
}

/// A width drawn with weight on the boundaries that matter for 32-bit words
/// and 53-bit doubles: 1, 31-33, 53-54, 63-65, 96, 159-160; else uniform.
int boundaryWeightedWidth(std::mt19937_64& random);

/// A uniformly random integer in the format's range.
mpz_class randomMantissa(std::mt19937_64& random, int bits, bool isSigned);

/// Often one of the values where carries, borrows and overflows happen (the
/// extremes, zero, one or minus one, one below the maximum), else uniform.
mpz_class edgeWeightedMantissa(std::mt19937_64& random, int bits, bool isSigned);

/// Fill value of the words around a destination: a write past it shows.
constexpr int32_t sentinel = 0x5A5A5A5A;

}  // namespace model

#endif  // FIXEDPOINT_TESTS_EXACT_MODEL_H
