#include "exact_model.h"

#include <cstdio>

namespace model {

int wordsFor(int bits)
{
    return (bits + 31) / 32;
}

mpz_class readMantissa(const int32_t* words, int bits, bool isSigned)
{
    const int nw = wordsFor(bits);
    mpz_class all = 0;
    for (int i = nw - 1; i >= 0; --i) {
        all <<= 32;
        all += static_cast<unsigned long>(static_cast<uint32_t>(words[i]));
    }
    mpz_class m = all >> (32 * nw - bits);
    if (isSigned && mpz_tstbit(m.get_mpz_t(), bits - 1))
        m -= mpz_class(1) << bits;
    return m;
}

void writeMantissa(const mpz_class& m, int bits, int32_t* words)
{
    const int nw = wordsFor(bits);
    mpz_class modulus = mpz_class(1) << bits;
    mpz_class pattern = m % modulus;
    if (pattern < 0)
        pattern += modulus;
    pattern <<= (32 * nw - bits);
    const mpz_class wordMask = 0xFFFFFFFFul;
    for (int i = 0; i < nw; ++i) {
        const mpz_class word = pattern & wordMask;
        words[i] = static_cast<int32_t>(static_cast<uint32_t>(word.get_ui()));
        pattern >>= 32;
    }
}

mpz_class minimum(int bits, bool isSigned)
{
    return isSigned ? mpz_class(-(mpz_class(1) << (bits - 1))) : mpz_class(0);
}

mpz_class maximum(int bits, bool isSigned)
{
    return (mpz_class(1) << (isSigned ? bits - 1 : bits)) - 1;
}

mpz_class roundDouble(double value, bool nearest)
{
    mpq_class exact(value);
    if (nearest)
        exact += mpq_class(1, 2);
    mpz_class result;
    mpz_fdiv_q(result.get_mpz_t(), exact.get_num_mpz_t(), exact.get_den_mpz_t());
    return result;
}

mpz_class wrapInto(const mpz_class& m, int bits, bool isSigned)
{
    const mpz_class modulus = mpz_class(1) << bits;
    mpz_class r = m % modulus;
    if (r < 0)
        r += modulus;
    if (isSigned && r > maximum(bits, true))
        r -= modulus;
    return r;
}

mpz_class saturateInto(const mpz_class& m, int bits, bool isSigned)
{
    if (m < minimum(bits, isSigned))
        return minimum(bits, isSigned);
    if (m > maximum(bits, isSigned))
        return maximum(bits, isSigned);
    return m;
}

std::string hexWords(const int32_t* words, int count)
{
    std::string text;
    for (int i = count - 1; i >= 0; --i) {
        char buffer[12];
        std::snprintf(buffer, sizeof buffer, "%08X ", static_cast<uint32_t>(words[i]));
        text += buffer;
    }
    return text;
}

int boundaryWeightedWidth(std::mt19937_64& random)
{
    static const int boundaries[] = {1, 31, 32, 33, 53, 54, 63, 64, 65, 96, 159, 160};
    if (random() % 2 == 0)
        return boundaries[random() % (sizeof boundaries / sizeof boundaries[0])];
    return static_cast<int>(random() % 160) + 1;
}

mpz_class randomMantissa(std::mt19937_64& random, int bits, bool isSigned)
{
    mpz_class pattern = 0;
    for (int i = 0; i < 5; ++i) {
        pattern <<= 32;
        pattern += static_cast<unsigned long>(random() & 0xFFFFFFFFu);
    }
    pattern &= (mpz_class(1) << bits) - 1;
    return wrapInto(pattern, bits, isSigned);
}

mpz_class edgeWeightedMantissa(std::mt19937_64& random, int bits, bool isSigned)
{
    switch (random() % 8) {
    case 0: return minimum(bits, isSigned);
    case 1: return maximum(bits, isSigned);
    case 2: return isSigned ? mpz_class(-1) : mpz_class(0);
    case 3: return maximum(bits, isSigned) - 1;
    default: return randomMantissa(random, bits, isSigned);
    }
}

}  // namespace model
