// Conversions from and to doubles: double2fixed, float2fix and fixed2double;
// beside SystemC's sc_fix (construction from a double, assignment of a
// double, to_double()) and, up to 32 bits, the native int32 quantiser.
#include <cmath>
#include <cstdint>

#include "bench_support.h"
#include "lib_fixpoint.h"
#include "native_support.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

using bench::Format;

// float2fix takes the value already counted in units of the LSB.
std::vector<double> unitsFor(const Format& f, double scale)
{
    auto units = bench::valuesFor(f, 1);
    for (double& value : units)
        value *= scale;
    return units;
}

void registerOurs(int width)
{
    const Format f = bench::formatFor(width);
    bench::add("double2fixed", "ours", width, [f](benchmark::State& state) {
        bench::runOver(state, bench::valuesFor(f, 1), [f](double value) {
            return Fixed::double2fixed(value, f.intbits, f.fracbits, 1, 1, 0);
        });
    });
    bench::add("float2fix", "ours", width, [f](benchmark::State& state) {
        int32_t words[Fixed::maxWords] = {};
        bench::runOver(state, unitsFor(f, std::ldexp(1.0, f.fracbits)), [&](double units) {
            const int saturated = Fixed::float2fix(units, f.bits, words, 1, 1, 0);
            benchmark::DoNotOptimize(words);
            return saturated;
        });
    });
    bench::add("fixed2double", "ours", width, [f](benchmark::State& state) {
        bench::runOver(state, bench::recordsFor(f, 1),
                       [](const Fixed::fixed& record) { return Fixed::fixed2double(record); });
    });
}

void registerNative(int width)
{
    const Format f = bench::formatFor(width);
    const bench::NativeFormat n = bench::nativeFormatFor(f);
    bench::add("double2fixed", "native", width, [n, f](benchmark::State& state) {
        bench::runOver(state, bench::valuesFor(f, 1),
                       [n](double value) { return bench::nativeQuantise(value * n.scale, n); });
    });
    bench::add("float2fix", "native", width, [n, f](benchmark::State& state) {
        bench::runOver(state, unitsFor(f, n.scale),
                       [n](double units) { return bench::nativeQuantise(units, n); });
    });
    bench::add("fixed2double", "native", width, [f](benchmark::State& state) {
        const double step = std::ldexp(1.0, -f.fracbits);
        bench::runOver(state, bench::nativeValuesFor(f, 1),
                       [step](int32_t value) { return static_cast<double>(value) * step; });
    });
}

#ifdef FIXEDPOINT_BENCH_SYSTEMC
void registerSystemC(int width)
{
    using namespace sc_dt;
    const Format f = bench::formatFor(width);
    bench::add("double2fixed", "systemc", width, [f](benchmark::State& state) {
        bench::runOver(state, bench::valuesFor(f, 1), [f](double value) {
            return sc_fix(value, f.bits, f.intbits, SC_RND, SC_SAT);
        });
    });
    bench::add("float2fix", "systemc", width, [f](benchmark::State& state) {
        sc_fix x(f.bits, f.intbits, SC_RND, SC_SAT);
        bench::runOver(state, bench::valuesFor(f, 1), [&x](double value) {
            x = value;
            benchmark::DoNotOptimize(x);
            return 0;
        });
    });
    bench::add("fixed2double", "systemc", width, [f](benchmark::State& state) {
        bench::runOver(state, bench::scFixesFor(f, 1), [](const sc_fix& x) { return x.to_double(); });
    });
}
#endif

const bench::Registration registration([] {
    for (int width : bench::widths) {
        registerOurs(width);
#ifdef FIXEDPOINT_BENCH_SYSTEMC
        registerSystemC(width);
#endif
        if (width <= 32)
            registerNative(width);
    }
});

}  // namespace
