// Bit tables and the power-of-two helper shared by the word routines.
#include "lib_fixpoint.h"

#include <cstring>

namespace Fixed {

const uint32_t highmask[32] = {
    0xFFFFFFFFu, 0x80000000u, 0xC0000000u, 0xE0000000u, 0xF0000000u, 0xF8000000u, 0xFC000000u,
    0xFE000000u, 0xFF000000u, 0xFF800000u, 0xFFC00000u, 0xFFE00000u, 0xFFF00000u, 0xFFF80000u,
    0xFFFC0000u, 0xFFFE0000u, 0xFFFF0000u, 0xFFFF8000u, 0xFFFFC000u, 0xFFFFE000u, 0xFFFFF000u,
    0xFFFFF800u, 0xFFFFFC00u, 0xFFFFFE00u, 0xFFFFFF00u, 0xFFFFFF80u, 0xFFFFFFC0u, 0xFFFFFFE0u,
    0xFFFFFFF0u, 0xFFFFFFF8u, 0xFFFFFFFCu, 0xFFFFFFFEu};

const uint32_t lowbit[32] = {
    0x00000001u, 0x00000002u, 0x00000004u, 0x00000008u, 0x00000010u, 0x00000020u, 0x00000040u,
    0x00000080u, 0x00000100u, 0x00000200u, 0x00000400u, 0x00000800u, 0x00001000u, 0x00002000u,
    0x00004000u, 0x00008000u, 0x00010000u, 0x00020000u, 0x00040000u, 0x00080000u, 0x00100000u,
    0x00200000u, 0x00400000u, 0x00800000u, 0x01000000u, 0x02000000u, 0x04000000u, 0x08000000u,
    0x10000000u, 0x20000000u, 0x40000000u, 0x80000000u};

const uint32_t highbit[32] = {
    0x80000000u, 0x40000000u, 0x20000000u, 0x10000000u, 0x08000000u, 0x04000000u, 0x02000000u,
    0x01000000u, 0x00800000u, 0x00400000u, 0x00200000u, 0x00100000u, 0x00080000u, 0x00040000u,
    0x00020000u, 0x00010000u, 0x00008000u, 0x00004000u, 0x00002000u, 0x00001000u, 0x00000800u,
    0x00000400u, 0x00000200u, 0x00000100u, 0x00000080u, 0x00000040u, 0x00000020u, 0x00000010u,
    0x00000008u, 0x00000004u, 0x00000002u, 0x00000001u};

const uint32_t nibblecount[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};

double powerOfTwo(int n)
{
    // The IEEE bits of 2^n are built directly: a biased exponent for normal
    // results, a single mantissa bit for subnormal ones, and the overflow and
    // underflow ends that a correctly rounded pow(2.0, n) gives. This keeps a
    // library call off every conversion path while producing the same double.
    constexpr int minNormal = -1022;
    constexpr int maxNormal = 1023;
    constexpr int minSubnormal = -1074;
    uint64_t pattern = 0;
    if (n > maxNormal)
        pattern = uint64_t{0x7FF} << 52;  // infinity
    else if (n >= minNormal)
        pattern = static_cast<uint64_t>(n + 1023) << 52;
    else if (n >= minSubnormal)
        pattern = uint64_t{1} << (n - minSubnormal);
    double result;
    std::memcpy(&result, &pattern, sizeof result);
    return result;
}

}  // namespace Fixed
