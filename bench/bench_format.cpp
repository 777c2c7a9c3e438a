// Format conversion: fixedformat (widening, same width with rounding,
// narrowing with saturation, and conversions between different widths) and
// the word-array fixformat; beside SystemC's sc_fix cast constructor and
// assignment to an sc_fix of the target format.
#include <cstdint>
#include <string>

#include "bench_support.h"
#include "lib_fixpoint.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

using bench::Format;
using bench::tableMask;

/// One conversion: source format, target format and modes. Source values
/// spread over `valueIntbits` integer bits (so that a chosen share of them
/// saturates).
struct Conversion {
    std::string operation;
    std::string label;
    Format source;
    Format target;
    int valueIntbits;
    int round;
    int wrap;
};

Format makeFormat(int intbits, int fracbits)
{
    return {intbits + fracbits, intbits, fracbits};
}

std::vector<Fixed::fixed> sourceRecords(const Conversion& c)
{
    auto values = bench::valuesFor(makeFormat(c.valueIntbits, c.source.fracbits), 3);
    std::vector<Fixed::fixed> records;
    for (double value : values)
        records.push_back(
            Fixed::double2fixed(value, c.source.intbits, c.source.fracbits, 1, 1, 0));
    return records;
}

void registerOurs(const Conversion& c)
{
    bench::add(c.operation, "ours", c.label, [c](benchmark::State& state) {
        const auto sources = sourceRecords(c);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixedformat(sources[i], c.target.intbits,
                                                        c.target.fracbits, 1, c.round, c.wrap));
            i = (i + 1) & tableMask;
        }
    });
}

#ifdef FIXEDPOINT_BENCH_SYSTEMC
sc_dt::sc_q_mode quantisation(int round)
{
    return round != 0 ? sc_dt::SC_RND : sc_dt::SC_TRN;
}

sc_dt::sc_o_mode overflow(int wrap)
{
    return wrap != 0 ? sc_dt::SC_WRAP : sc_dt::SC_SAT;
}

std::vector<sc_dt::sc_fix> sourceFixes(const Conversion& c)
{
    std::vector<sc_dt::sc_fix> out;
    for (const Fixed::fixed& record : sourceRecords(c))
        out.emplace_back(Fixed::fixed2double(record), c.source.bits, c.source.intbits,
                         sc_dt::SC_TRN, sc_dt::SC_WRAP);
    return out;
}

void registerSystemC(const Conversion& c)
{
    bench::add(c.operation, "systemc", c.label, [c](benchmark::State& state) {
        const auto sources = sourceFixes(c);
        std::size_t i = 0;
        for (auto _ : state) {
            sc_dt::sc_fix result(sources[i], c.target.bits, c.target.intbits,
                                 quantisation(c.round), overflow(c.wrap));
            benchmark::DoNotOptimize(result);
            i = (i + 1) & tableMask;
        }
    });
}
#endif

std::vector<Conversion> conversions()
{
    std::vector<Conversion> out;
    for (int width : bench::widths) {
        const Format f = bench::formatFor(width);
        const std::string label = std::to_string(width);
        // Eight bits fewer on each side widened back to the full width.
        if (width >= 32)
            out.push_back({"fixedformat widen", label, makeFormat(f.intbits - 8, f.fracbits - 8), f,
                           f.intbits - 8, 0, 0});
        // Four fraction bits traded for integer bits, rounded to nearest.
        out.push_back({"fixedformat same width rounded", label, f,
                       makeFormat(f.intbits + 4, f.fracbits - 4), f.intbits, 1, 0});
        // Four integer bits fewer, saturating about half of the values.
        out.push_back({"fixedformat narrow saturated", label, f,
                       makeFormat(f.intbits - 4, f.fracbits), f.intbits - 3, 0, 0});
    }
    const std::string between = "fixedformat between widths";
    out.push_back({between, "16->12 rounded", makeFormat(8, 8), makeFormat(8, 4), 8, 1, 0});
    out.push_back({between, "32->64 widened", makeFormat(16, 16), makeFormat(32, 32), 16, 0, 0});
    out.push_back({between, "64->33 saturated", makeFormat(32, 32), makeFormat(17, 16), 18, 0, 0});
    out.push_back({between, "160->96 rounded", makeFormat(80, 80), makeFormat(80, 16), 80, 1, 0});
    return out;
}

// The word-array conversion on the same-width rounded case.
void registerWordArray(int width)
{
    const Format f = bench::formatFor(width);
    const Conversion c{"", "", f, makeFormat(f.intbits + 4, f.fracbits - 4), f.intbits, 1, 0};
    bench::add("fixformat", "ours", width, [c](benchmark::State& state) {
        const auto sources = sourceRecords(c);
        std::size_t i = 0;
        for (auto _ : state) {
            int32_t words[5] = {};  // the caller clears the destination
            benchmark::DoNotOptimize(Fixed::fixformat(sources[i].val, words, c.source.bits,
                                                      c.target.bits, -c.source.fracbits,
                                                      -c.target.fracbits, 1, 1, 0));
            benchmark::DoNotOptimize(words);
            i = (i + 1) & tableMask;
        }
    });
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    bench::add("fixformat", "systemc", width, [c](benchmark::State& state) {
        const auto sources = sourceFixes(c);
        sc_dt::sc_fix result(c.target.bits, c.target.intbits, sc_dt::SC_RND, sc_dt::SC_SAT);
        std::size_t i = 0;
        for (auto _ : state) {
            result = sources[i];
            benchmark::DoNotOptimize(result);
            i = (i + 1) & tableMask;
        }
    });
#endif
}

const bench::Registration registration([] {
    for (const Conversion& c : conversions()) {
        registerOurs(c);
#ifdef FIXEDPOINT_BENCH_SYSTEMC
        registerSystemC(c);
#endif
    }
    for (int width : bench::widths)
        registerWordArray(width);
});

}  // namespace
