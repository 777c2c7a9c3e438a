#include "exact_model.h"

#include <cmath>
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

std::vector<mpz_class> allMantissas(int bits, bool isSigned)
{
    std::vector<mpz_class> values;
    for (unsigned long p = 0; p < (1ul << bits); ++p)
        values.push_back(wrapInto(mpz_class(p), bits, isSigned));
    return values;
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

mpz_class saturateInto(const mpz_class& m, int bits, bool isSigned)
{
    return m < minimum(bits, isSigned) ? minimum(bits, isSigned) : m > maximum(bits, isSigned) ? maximum(bits, isSigned) : m;
}

std::pair<mpz_class, bool> requantise(const mpz_class& m, long k, int bits, bool isSigned, bool nearest, bool wrap)
{
    const mpz_class floored = k >= 0 ? mpz_class(m << k) : mpz_class(m >> -k);  // floor, sign-extending
    const mpz_class rounded = floored + (k < 0 && nearest && mpz_tstbit(m.get_mpz_t(), -k - 1) ? 1 : 0);
    if (wrap)
        return {wrapInto(rounded, bits, isSigned), false};
    const mpz_class saturated = saturateInto(rounded, bits, isSigned);
    return {saturated, saturated != rounded || floored < minimum(bits, isSigned)};
}

double nearestDouble(const mpq_class& v)
{
    if (v == 0)
        return 0.0;
    // Scale |v| into [2^52, 2^53), round the integer part half to even.
    mpq_class scaled = abs(v);
    long e = static_cast<long>(mpz_sizeinbase(scaled.get_num_mpz_t(), 2)) -
             static_cast<long>(mpz_sizeinbase(scaled.get_den_mpz_t(), 2)) - 52;
    if (e >= 0)
        mpq_div_2exp(scaled.get_mpq_t(), scaled.get_mpq_t(), static_cast<unsigned long>(e));
    else
        mpq_mul_2exp(scaled.get_mpq_t(), scaled.get_mpq_t(), static_cast<unsigned long>(-e));
    const mpq_class low(mpz_class(1) << 52), high(mpz_class(1) << 53);
    for (; scaled >= high; ++e)
        scaled /= 2;
    for (; scaled < low; --e)
        scaled *= 2;
    mpz_class q;
    mpz_fdiv_q(q.get_mpz_t(), scaled.get_num_mpz_t(), scaled.get_den_mpz_t());
    const mpq_class rest = scaled - q;
    if (rest > mpq_class(1, 2) || (rest == mpq_class(1, 2) && mpz_odd_p(q.get_mpz_t())))
        ++q;
    const double magnitude = std::ldexp(q.get_d(), static_cast<int>(e));  // q <= 2^53: exact
    return v < 0 ? -magnitude : magnitude;
}

mpz_class wrapByDoubleSteps(const mpz_class& x, int bits)
{
    mpq_class t(x);
    mpq_div_2exp(t.get_mpq_t(), t.get_mpq_t(), static_cast<unsigned long>(bits));  // exact scaling
    const mpq_class s(nearestDouble(t + mpq_class(1, 2)));
    mpz_class q;
    mpz_fdiv_q(q.get_mpz_t(), s.get_num_mpz_t(), s.get_den_mpz_t());
    // q 2^bits is exact; the subtraction rounds once.
    return mpz_class(nearestDouble(mpq_class(x - (q << bits))));
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
