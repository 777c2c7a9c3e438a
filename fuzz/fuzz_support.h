// Shared pieces of the fuzz targets: a report function that only counts, a
// divergence check that aborts (so libFuzzer keeps the input), word arrays
// fenced by sentinel words, and the input decoding helpers.
#ifndef FIXEDPOINT_FUZZ_SUPPORT_H
#define FIXEDPOINT_FUZZ_SUPPORT_H

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "FixedPoint.h"

namespace fuzz {

/// Reports received by _KV_ProcessErrorString since the last reset.
long reportCount();
void resetReports();

/// Prints what diverged and aborts, so the input is kept as a crash.
[[noreturn]] void fail(const std::string& what);

inline void require(bool condition, const char* what)
{
    if (!condition)
        fail(what);
}

/// Words fenced by sentinels on both sides; `words()` points at the first
/// usable word. Anything that writes outside [0, count) is caught by
/// `intact()` (and usually earlier by AddressSanitizer, since the vector is
/// exactly as large as needed).
class Fenced {
public:
    static constexpr int guard = 4;
    static constexpr int32_t sentinel = 0x5A5A5A5A;

    explicit Fenced(int count) : m_words(static_cast<size_t>(count + 2 * guard), sentinel), m_count(count) {}
    int32_t* words() { return m_words.data() + guard; }
    int count() const { return m_count; }
    /// Sentinels intact below and above, and (optionally) from `from` up.
    bool intact(int from) const
    {
        for (int i = 0; i < guard; ++i)
            if (m_words[static_cast<size_t>(i)] != sentinel)
                return false;
        for (size_t i = static_cast<size_t>(guard + from); i < m_words.size(); ++i)
            if (m_words[i] != sentinel)
                return false;
        return true;
    }

private:
    std::vector<int32_t> m_words;
    int m_count;
};

/// An int that is usually a plausible width, sometimes anything at all.
inline int width(FuzzedDataProvider& in, int low, int high)
{
    switch (in.ConsumeIntegralInRange<int>(0, 7)) {
    case 0:
        return in.ConsumeIntegral<int>();
    case 1:
        return in.ConsumeIntegralInRange<int>(-200, 400);
    default:
        return in.ConsumeIntegralInRange<int>(low, high);
    }
}

/// A flag that is usually 0 or 1, sometimes any int.
inline int flag(FuzzedDataProvider& in)
{
    return in.ConsumeIntegralInRange<int>(0, 9) == 0 ? in.ConsumeIntegral<int>()
                                                     : in.ConsumeIntegralInRange<int>(0, 1);
}

/// A record with arbitrary header and words.
inline Fixed::fixed record(FuzzedDataProvider& in)
{
    Fixed::fixed f{};
    f.bits = width(in, 1, 160);
    f.exp = width(in, -200, 200);
    f.sign = flag(in);
    for (int32_t& w : f.val)
        w = in.ConsumeIntegral<int32_t>();
    return f;
}

/// Is the record's width one the layout allows?
inline bool validWidth(int bits) { return bits >= 1 && bits <= 160; }

/// Clears the pad bits below the width, so the record obeys the layout.
void clearPadBits(Fixed::fixed& f);

}  // namespace fuzz

#endif  // FIXEDPOINT_FUZZ_SUPPORT_H
