// double2fixed: format checks, reports, header fields and scaling.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "exact_model.h"
#include "lib_fixed_c.h"
#include "report_recorder.h"

namespace {

const char* const signature = "Fixed::fixed Fixed::double2fixed(double, int, int, int, int, int)";
const char* const badSign = "C error: illegal value for 'double2fixed' (Vorz).";
const char* const badRound = "C error: illegal value for 'double2fixed' (Rund).";
const char* const badWrap = "C error: illegal value for 'double2fixed' (Wrap).";
const char* const tooWide = "C error: Too many bits used (double2fixed).";

class Double2Fixed : public ReportingTest {};

TEST_F(Double2Fixed, BuildsTheRecord)
{
    struct Case {
        double value;
        int intbits, fracbits, sign, round, wrap;
        int bits, exp;
        uint32_t top;  // val[nw - 1]
    };
    const Case cases[] = {
        {1.7, 4, 12, 1, 1, 0, 16, -12, 0x1B330000},
        {1.8, 4, 12, 1, 1, 0, 16, -12, 0x1CCD0000},   // 7372.8 units round to 7373
        {1.8, 4, 12, 1, 0, 0, 16, -12, 0x1CCC0000},   // and floor to 7372
        {-1.5, 4, 8, 1, 0, 0, 12, -8, 0xE8000000},
        {20.0, 4, 12, 1, 1, 0, 16, -12, 0x7FFF0000},
        {-20.0, 4, 12, 0, 0, 0, 16, -12, 0x00000000},
        {-20.0, 4, 12, 0, 0, 1, 16, -12, 0xC0000000},
        {1024.0, 12, -4, 0, 0, 0, 8, 4, 0x40000000},  // negative fractional bits
        {0.75, -2, 4, 0, 1, 0, 2, -4, 0xC0000000},    // integer bits below zero
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " as " << c.intbits << "." << c.fracbits);
        const Fixed::fixed f = Fixed::double2fixed(c.value, c.intbits, c.fracbits, c.sign, c.round, c.wrap);
        EXPECT_EQ(f.bits, c.bits);
        EXPECT_EQ(f.exp, c.exp);
        EXPECT_EQ(f.sign, c.sign);
        EXPECT_EQ(static_cast<uint32_t>(f.val[0]), c.top);
    }
    expectNoReports();
}

TEST_F(Double2Fixed, ReportsEachInvalidFlagInOrderAndConvertsAsOne)
{
    struct Case {
        int sign, round, wrap;
        std::vector<ExpectedReport> reports;
    };
    const Case cases[] = {
        {2, 0, 0, {{signature, badSign}}},
        {-1, 0, 0, {{signature, badSign}}},
        {0, 7, 0, {{signature, badRound}}},
        {0, 0, -9, {{signature, badWrap}}},
        {5, 7, 9, {{signature, badSign}, {signature, badRound}, {signature, badWrap}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.sign << " " << c.round << " " << c.wrap);
        // 200.5 into 8 bits: invalid flags act as 1 (signed, nearest, wrap).
        const Fixed::fixed f = Fixed::double2fixed(200.5, 8, 0, c.sign, c.round, c.wrap);
        expectReports(c.reports);
        EXPECT_EQ(f.sign, c.sign);
        const unsigned rounded = c.round != 0 ? 201 : 200;
        const unsigned limit = c.sign != 0 ? 127 : 255;
        const unsigned pattern = c.wrap != 0 ? rounded : std::min(rounded, limit);
        EXPECT_EQ(static_cast<uint32_t>(f.val[0]), pattern << 24);
    }
}

TEST_F(Double2Fixed, WidthLimit)
{
    Fixed::fixed f = Fixed::double2fixed(std::ldexp(-1.0, -80), 80, 80, 1, 0, 0);
    expectNoReports();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(f.val[i], -1) << i;

    // 161 bits: reported, header kept, the five words cleared, nothing else
    // written (the record is the only storage the routine has).
    f = Fixed::double2fixed(1.0, 100, 61, 1, 0, 0);
    expectReports({{signature, tooWide}});
    EXPECT_EQ(f.bits, 161);
    EXPECT_EQ(f.exp, -61);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(f.val[i], 0) << i;

    const int most = std::numeric_limits<int>::max();
    f = Fixed::double2fixed(1.0, most, most, 5, 0, 0);
    expectReports({{signature, badSign}});  // the wrapped width is negative
    EXPECT_EQ(f.bits, -2);
    f = Fixed::double2fixed(1.0, 0, std::numeric_limits<int>::min(), 0, 0, 0);
    EXPECT_EQ(f.exp, std::numeric_limits<int>::min());
}

TEST(Double2FixedProperty, ScalesThenQuantisesExactly)
{
    std::mt19937_64 random(7);
    for (int trial = 0; trial < 20000; ++trial) {
        const int fracbits = static_cast<int>(random() % 80) - 20;
        const int bits = static_cast<int>(random() % 53) + 1;
        const int intbits = bits - fracbits;
        const int sign = static_cast<int>(random() % 2);
        const int round = static_cast<int>(random() % 2);
        const int wrap = static_cast<int>(random() % 2);
        const double value = std::ldexp(static_cast<double>(static_cast<int64_t>(random()) >> 11),
                                        intbits - 53);
        SCOPED_TRACE(testing::Message() << value << " as " << intbits << "." << fracbits);
        const Fixed::fixed f = Fixed::double2fixed(value, intbits, fracbits, sign, round, wrap);
        const mpz_class rounded = model::roundDouble(std::ldexp(value, fracbits), round != 0);
        const mpz_class expected = wrap != 0 ? model::wrapInto(rounded, bits, sign != 0)
                                             : model::saturateInto(rounded, bits, sign != 0);
        EXPECT_EQ(model::readMantissa(f.val, bits, sign != 0), expected);
    }
}

}  // namespace
