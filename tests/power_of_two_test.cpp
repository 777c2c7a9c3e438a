// powerOfTwo builds 2^n from its IEEE bits; every conversion depends on it
// giving exactly the double pow(2.0, n) gives, including the overflow and
// underflow ends.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "lib_fixpoint.h"

namespace {

uint64_t bitsOf(double x)
{
    uint64_t pattern;
    std::memcpy(&pattern, &x, sizeof pattern);
    return pattern;
}

// The normal range, the subnormals, the first exponents that overflow to
// infinity and underflow to zero, well beyond both, and the integer extremes.
TEST(PowerOfTwo, MatchesPowBitForBitAcrossTheExponentRange)
{
    std::vector<int> exponents = {INT_MIN, INT_MIN + 1, -1000000, 1000000, INT_MAX - 1, INT_MAX};
    for (int n = -1100; n <= 1100; ++n)
        exponents.push_back(n);
    for (int n : exponents)
        EXPECT_EQ(bitsOf(Fixed::powerOfTwo(n)), bitsOf(std::pow(2.0, n))) << n;
}

}  // namespace
