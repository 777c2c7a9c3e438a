// The hand-written int32 quantiser a firmware would use for one fixed format
// of at most 32 bits: the native baseline of the conversion and arithmetic
// cases.
#ifndef FIXEDPOINT_BENCH_NATIVE_SUPPORT_H
#define FIXEDPOINT_BENCH_NATIVE_SUPPORT_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "bench_support.h"

namespace bench {

struct NativeFormat {
    double scale;
    double lowest;
    double highest;
};

inline NativeFormat nativeFormatFor(const Format& f)
{
    return {std::ldexp(1.0, f.fracbits), -std::ldexp(1.0, f.bits - 1),
            std::ldexp(1.0, f.bits - 1) - 1.0};
}

/// Multiply, floor (half up), clamp.
inline int32_t nativeQuantise(double units, const NativeFormat& n)
{
    double x = std::floor(units + 0.5);
    x = x < n.lowest ? n.lowest : (x > n.highest ? n.highest : x);
    return static_cast<int32_t>(x);
}

/// The input doubles of a seed, quantised natively.
inline std::vector<int32_t> nativeValuesFor(const Format& f, unsigned seed)
{
    const NativeFormat n = nativeFormatFor(f);
    std::vector<int32_t> out;
    for (double value : valuesFor(f, seed))
        out.push_back(nativeQuantise(value * n.scale, n));
    return out;
}

}  // namespace bench

#endif  // FIXEDPOINT_BENCH_NATIVE_SUPPORT_H
