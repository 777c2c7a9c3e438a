#include "exact_model.h"

#include <cstdio>

namespace model {

int wordsFor(int bits) { return (bits + 31) / 32; }

mpz_class minimum(int bits, bool isSigned) { return isSigned ? mpz_class(-(mpz_class(1) << (bits - 1))) : mpz_class(0); }

mpz_class maximum(int bits, bool isSigned) { return (mpz_class(1) << (isSigned ? bits - 1 : bits)) - 1; }

mpz_class readMantissa(const int32_t* words, int bits, bool isSigned)
{
    const int nw = wordsFor(bits);
    mpz_class all = 0;
    for (int i = nw - 1; i >= 0; --i)
        all = (all << 32) + static_cast<unsigned long>(static_cast<uint32_t>(words[i]));
    const mpz_class m = all >> (32 * nw - bits);
    return isSigned ? wrapInto(m, bits, true) : m;
}

void writeMantissa(const mpz_class& m, int bits, int32_t* words)
{
    mpz_class pattern = wrapInto(m, bits, false) << (32 * wordsFor(bits) - bits);
    for (int i = 0; i < wordsFor(bits); ++i, pattern >>= 32)
        words[i] = static_cast<int32_t>(static_cast<uint32_t>(mpz_class(pattern & 0xFFFFFFFFul).get_ui()));
}

mpz_class roundDouble(double value, bool nearest)
{
    const mpq_class exact = mpq_class(value) + mpq_class(nearest ? 1 : 0, 2);
    mpz_class result;
    mpz_fdiv_q(result.get_mpz_t(), exact.get_num_mpz_t(), exact.get_den_mpz_t());
    return result;
}

mpz_class wrapInto(const mpz_class& m, int bits, bool isSigned)
{
    mpz_class r;
    mpz_fdiv_r_2exp(r.get_mpz_t(), m.get_mpz_t(), static_cast<unsigned long>(bits));
    return isSigned && r > maximum(bits, true) ? mpz_class(r - (mpz_class(1) << bits)) : r;
}

bool wrapStepRounds(const mpz_class& m, int bits)
{
    // s = (m + 2^(bits-1)) / 2^bits and its ceiling k: rounding to nearest
    // moves s by at most half an ulp, at most max(|s|, |k|) 2^-53.
    const mpq_class s(m + (mpz_class(1) << (bits - 1)), mpz_class(1) << bits);
    mpz_class k;
    mpz_cdiv_q(k.get_mpz_t(), s.get_num_mpz_t(), s.get_den_mpz_t());
    const mpq_class gap = mpq_class(k) - s;
    const mpq_class magnitude = abs(s) > abs(mpq_class(k)) ? mpq_class(abs(s)) : mpq_class(abs(mpq_class(k)));
    return gap > 0 && gap * (mpz_class(1) << 53) <= magnitude;
}

mpz_class saturateInto(const mpz_class& m, int bits, bool isSigned)
{
    return m < minimum(bits, isSigned) ? minimum(bits, isSigned) : m > maximum(bits, isSigned) ? maximum(bits, isSigned) : m;
}

std::string hexWords(const int32_t* words, int count)
{
    std::string text;
    char buffer[12];
    for (int i = count - 1; i >= 0; --i) {
        std::snprintf(buffer, sizeof buffer, "%08X ", static_cast<uint32_t>(words[i]));
        text += buffer;
    }
    return text;
}

int boundaryWeightedWidth(std::mt19937_64& random)
{
    static const int boundaries[] = {1, 31, 32, 33, 53, 54, 63, 64, 65, 96, 159, 160};
    return random() % 2 == 0 ? boundaries[random() % 12] : static_cast<int>(random() % 160) + 1;
}

mpz_class randomMantissa(std::mt19937_64& random, int bits, bool isSigned)
{
    mpz_class pattern = 0;
    for (int i = 0; i < 5; ++i)
        pattern = (pattern << 32) + static_cast<unsigned long>(random() & 0xFFFFFFFFu);
    return wrapInto(pattern, bits, isSigned);
}

mpz_class edgeWeightedMantissa(std::mt19937_64& random, int bits, bool isSigned)
{
    switch (random() % 9) {
    case 0: return minimum(bits, isSigned);
    case 4: return wrapInto(1, bits, isSigned);  // all ones plus one ripples through every word
    case 1: return maximum(bits, isSigned);
    case 2: return isSigned ? mpz_class(-1) : mpz_class(0);
    case 3: return maximum(bits, isSigned) - 1;
    default: return randomMantissa(random, bits, isSigned);
    }
}

}  // namespace model
