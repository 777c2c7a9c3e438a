// The five conversion kernels called directly, as the word layer's callers
// may call them, against the exact model: each case draws a source width and
// a result width in the kernel's own region (integer bits gained, kept or
// lost; low bits dropped or not) and derives the kernel's arguments from
// them. Sources are exactly sized (a read past them is an address-sanitizer
// error) and destinations are framed by sentinel words.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "exact_model.h"
#include "lib_fixpoint.h"

namespace {

constexpr int32_t sentinel = 0x5A5A5A5A;

// The integer bits a conversion gains (negative: loses), the result width,
// and which kernel carries it out.
struct KernelCase {
    const char* name;
    int gained;
    int resultBits;
};

// A result width for a source of sourceBits bits in the region of `kernel`,
// or 0 when the source admits none (a result never exceeds 160 bits).
KernelCase drawCase(std::mt19937_64& random, int kernel, int sourceBits)
{
    auto pick = [&random](int low, int high) {
        return high < low ? 0 : low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    const int room = Fixed::maxBits;
    switch (kernel) {
    case 0: {  // fixwiden: d >= 1 and every source bit kept (bt >= n + d)
        const int d = pick(1, room - sourceBits);
        return {"fixwiden", d, d == 0 ? 0 : pick(sourceBits + d, room)};
    }
    case 1: {  // fixwidenround: d >= 1, low bits dropped (kept < n, d + kept >= 1)
        const int d = pick(1, room);
        const int kept = pick(1 - d, std::min(sourceBits - 1, room - d));
        return {"fixwidenround", d, d + kept >= 1 && kept < sourceBits ? d + kept : 0};
    }
    case 2:  // fixround: same integer bits, fewer fractional bits
        return {"fixround", 0, pick(1, sourceBits - 1)};
    case 3: {  // fixnarrow: k >= 1 integer bits lost, no fractional bit dropped
        const int k = pick(1, sourceBits + 40);
        return {"fixnarrow", -k, pick(std::max(1, sourceBits - k), room)};
    }
    default: {  // fixnarrowround: k >= 1 lost and low bits dropped (bt < n - k)
        const int k = pick(1, sourceBits - 2);
        return {"fixnarrowround", -k, k == 0 ? 0 : pick(1, sourceBits - k - 1)};
    }
    }
}

uint32_t callKernel(int kernel, const int32_t* srcTop, int32_t* dstTop, int sourceBits, const KernelCase& c, int sign,
                    int round, int wrap)
{
    const int bt = c.resultBits;
    switch (kernel) {
    case 0:
        Fixed::fixwiden(srcTop, dstTop, sourceBits, c.gained, sign);
        return 0;
    case 1:
        Fixed::fixwidenround(srcTop, dstTop, bt - c.gained, c.gained, sign, round);
        return 0;
    case 2:
        return Fixed::fixround(srcTop, dstTop, bt, sign, round, wrap);
    case 3:
        return Fixed::fixnarrow(srcTop, dstTop, sourceBits, bt, -c.gained, sign, wrap);
    default:
        return Fixed::fixnarrowround(srcTop, dstTop, bt, -c.gained, sign, round, wrap);
    }
}

TEST(Kernels, EachKernelRequantisesExactlyInItsRegion)
{
    std::mt19937_64 random(2024);
    int cases[5] = {};
    for (int trial = 0; trial < 50000; ++trial) {
        const int kernel = trial % 5;
        const int sourceBits = model::boundaryWeightedWidth(random);
        const KernelCase c = drawCase(random, kernel, sourceBits);
        if (c.resultBits < 1)
            continue;
        ++cases[kernel];
        const int sign = static_cast<int>(random() % 2), round = static_cast<int>(random() % 2);
        const int wrap = static_cast<int>(random() % 2);
        const int sourceWords = model::wordsFor(sourceBits), resultWords = model::wordsFor(c.resultBits);
        std::unique_ptr<int32_t[]> source(new int32_t[sourceWords]);
        const mpz_class m = model::randomMantissa(random, sourceBits, sign != 0);
        model::writeMantissa(m, sourceBits, source.get());
        std::vector<int32_t> frame(resultWords + 2, 0);
        frame.front() = frame.back() = sentinel;

        const uint32_t flag = callKernel(kernel, source.get() + sourceWords - 1, frame.data() + resultWords, sourceBits,
                                         c, sign, round, wrap);

        // Source exponent 0, result integer bits n + d: the result's last
        // place lies resultBits - n - d places below the source's.
        const auto expected = model::requantise(m, static_cast<long>(c.resultBits) - sourceBits - c.gained,
                                                c.resultBits, sign != 0, round != 0, wrap != 0);
        model::Words want{};
        model::writeMantissa(expected.first, c.resultBits, want.data());
        if (model::hexWords(frame.data() + 1, resultWords) != model::hexWords(want.data(), resultWords) ||
            flag != (expected.second ? 1u : 0u) || frame.front() != sentinel || frame.back() != sentinel) {
            ADD_FAILURE() << c.name << " source " << sourceBits << " bits " << model::hexWords(source.get(), sourceWords)
                          << " gaining " << c.gained << " into " << c.resultBits << " bits, s" << sign << " r"
                          << round << " w" << wrap << "\n  want " << model::hexWords(want.data(), resultWords)
                          << " flag " << expected.second << "\n  got  "
                          << model::hexWords(frame.data(), resultWords + 2) << " flag " << flag;
            return;
        }
    }
    for (int kernel = 0; kernel < 5; ++kernel)
        EXPECT_GT(cases[kernel], 5000) << "kernel " << kernel << " drew too few cases";
}

}  // namespace
