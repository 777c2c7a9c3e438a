// Doubles into words and back where the exact model has no answer:
// non-finite values, empty widths, the sum above 64 bits. Finite values are
// in the exhaustive tests.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "report_recorder.h"

namespace {

using model::sentinel;

class Float2Fix : public ReportingTest {};

TEST_F(Float2Fix, NonFiniteValuesAndEmptyWidths)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const char* const split = "Internal error fixpoint calculation No. 1.2. Report error to author (with parameters).";
    struct Case { double value; int bits, sign, round, wrap; uint32_t top; int saturated; bool reported; };
    const Case cases[] = {
        {nan, 8, 1, 0, 0, 0, 0, true},        {nan, 160, 1, 1, 0, 0, 0, true},
        {inf, 8, 1, 1, 0, 0, 0, true},        {-inf, 64, 1, 1, 1, 0, 0, true},  // rounding/wrapping make NaN
        {inf, 8, 1, 0, 1, 0, 0, true},        {inf, 8, 1, 0, 0, 0x7F000000, 1, false},
        {-inf, 8, 1, 0, 0, 0x80000000, 1, false}, {-inf, 8, 0, 0, 0, 0, 1, false},
        {1234.5, 0, 1, 1, 0, 0, 0, false},    {1234.5, std::numeric_limits<int>::min(), 1, 1, 0, 0, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " into " << c.bits << " r" << c.round << " w" << c.wrap);
        int32_t words[6];
        std::fill(std::begin(words), std::end(words), sentinel);
        EXPECT_EQ(Fixed::float2fix(c.value, c.bits, words, c.sign, c.round, c.wrap), c.saturated);
        const int nw = c.bits < 1 ? 0 : model::wordsFor(c.bits);
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(static_cast<uint32_t>(words[i]), i >= nw ? 0x5A5A5A5Au : i == nw - 1 ? c.top : 0u) << i;
        expectReports(c.reported ? std::vector<ExpectedReport>{{"int Fixed::float2fix(double, int, long int*, int, int, int)", split}}
                                 : std::vector<ExpectedReport>{});
    }
}

TEST(Fix2Float, WiderThan64BitsSumsFromTheLowWordsUp)
{
    // -1 in 96 bits comes out as 0.0: the low words cancel first, as the
    // firmware's data has it. A width of 0 reads nothing.
    const int32_t ones[5] = {-1, -1, -1, -1, -1};
    EXPECT_EQ(Fixed::fix2float(ones, 96, 1), 0.0);
    EXPECT_EQ(Fixed::fix2float(ones, 0, 1), 0.0);
    const int32_t top[5] = {0, 0, 0, 0, 1};
    EXPECT_EQ(Fixed::fix2float(top, 160, 0), std::ldexp(1.0, 128));
    // Positive mantissas of 53 significant bits spread over three words or
    // more sum exactly, whatever the partial lowest word. (Negative ones
    // carry ones up to the top word, so their partial sums round.)
    for (int bits : {65, 100, 127, 160})
        for (int shift : {0, 7, bits - 54}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, shift " + std::to_string(shift));
            const mpz_class m = ((mpz_class(1) << 52) + (mpz_class(1) << 20) + 1) << shift;
            int32_t words[5] = {0, 0, 0, 0, 0};
            model::writeMantissa(m, bits, words);
            EXPECT_EQ(Fixed::fix2float(words, bits, 0), m.get_d());
            EXPECT_EQ(Fixed::fix2float(words, bits, 1), m.get_d());
        }
    EXPECT_EQ(Fixed::fixedshift(Fixed::fixed{8, 2147483647, 0, {}}, 1).exp, -2147483647 - 1);
}

}  // namespace
