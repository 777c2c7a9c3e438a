// Every conversion between small formats, against the exact model: each
// pattern of every source width 1 to 8 into every target width 1 to 8, with
// the target's last place from 12 below to 12 above the source's, both
// signednesses, both roundings, saturation and wrap-around.
#include <gtest/gtest.h>

#include <cstring>

#include "exact_model.h"
#include "guarded_words.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

constexpr int widest = 8;
constexpr int farthest = 12;  // places between the two last places
constexpr int32_t junk = 0x6B6B6B6B;

TEST(ExhaustiveFormat, FixedformatAndFixformatMatchTheModelForEverySmallConversion)
{
    clearRecordedReports();
    long saturations = 0;
    for (int sourceBits = 1; sourceBits <= widest; ++sourceBits) {
        const int sourceExp = 3 - sourceBits;  // three integer bits: fracbits go negative too
        const std::vector<mpz_class> read[2] = {model::allMantissas(sourceBits, false),
                                                model::allMantissas(sourceBits, true)};
        const uint32_t pad = ~Fixed::highmask[sourceBits];
        for (int bits = 1; bits <= widest; ++bits)
        for (int shift = -farthest; shift <= farthest; ++shift)
        for (int mode = 0; mode < 8; ++mode) {
            const int sign = mode & 1, round = (mode >> 1) & 1, wrap = mode >> 2;
            const int dstExp = sourceExp + shift, fracbits = -dstExp, intbits = bits - fracbits;
            for (uint32_t p = 0; p < (1u << sourceBits); ++p) {
                // Junk in the pad bits (every other case), in the words above
                // the width and in the source's own sign take no part.
                const uint32_t word = p << (32 - sourceBits) | ((p + static_cast<uint32_t>(shift)) % 2 != 0 ? pad & 0x2D4B6A79u : 0u);
                const Fixed::fixed x{sourceBits, sourceExp, p % 2 == 0 ? sign : 1 - sign,
                                     {static_cast<int32_t>(word), junk, junk, junk, junk}};
                const auto expected = model::requantise(read[sign][p], -shift, bits, sign != 0, round != 0, wrap != 0);
                Fixed::fixed want{bits, dstExp, sign, {0, 0, 0, 0, 0}};
                model::writeMantissa(expected.first, bits, want.val);
                saturations += expected.second ? 1 : 0;

                const Fixed::fixed result = Fixed::fixedformat(x, intbits, fracbits, sign, round, wrap);
                const Fixed::Quantised flagged = Fixed::fixedformatWithFlag(x, intbits, fracbits, sign, round, wrap);
                const int32_t source = static_cast<int32_t>(word);  // exactly one source word
                GuardedWords dst(1);
                const uint32_t flag = Fixed::fixformat(&source, dst.data(), sourceBits, bits, sourceExp, dstExp, sign,
                                                       round, wrap);
                if (std::memcmp(&result, &want, sizeof want) != 0 || std::memcmp(&flagged.value, &want, sizeof want) != 0 ||
                    flagged.saturated != (expected.second ? 1 : 0) || flag != (expected.second ? 1u : 0u) ||
                    dst.data()[0] != want.val[0] || !dst.guardsIntact()) {
                    ADD_FAILURE() << "pattern " << std::hex << word << std::dec << " (" << sourceBits << " bits, exp "
                                  << sourceExp << ") -> " << intbits << "." << fracbits << " s" << sign << " r" << round
                                  << " w" << wrap << "\n  model       " << model::hexWords(want.val, 5) << "saturated "
                                  << expected.second << "\n  fixedformat " << model::hexWords(result.val, 5) << "bits "
                                  << result.bits << " exp " << result.exp << " sign " << result.sign
                                  << "\n  with flag   " << model::hexWords(flagged.value.val, 5) << "flag "
                                  << flagged.saturated << "\n  fixformat   " << dst.frameHex() << "flag " << flag;
                    return;
                }
            }
        }
    }
    EXPECT_GT(saturations, 0);
    EXPECT_TRUE(recordedReports().empty());
}

}  // namespace
