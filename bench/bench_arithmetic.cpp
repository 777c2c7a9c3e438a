// Addition, subtraction and multiplication of records: fixedadd, fixedsub
// (beside SystemC's a + b and a - b assigned to an sc_fix of the format, and
// the native int32 sum up to 32 bits) and fixedmult from 16 x 16 to 80 x 80
// bits, whose products fit a record (beside a * b assigned to an sc_fix of
// the product's format).
#include <cstdint>
#include <string>

#include "bench_support.h"
#include "native_support.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

using bench::Format;

void registerSums(int width)
{
    const Format f = bench::formatFor(width);
    bench::add("fixedadd", "ours", width, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::recordsFor(f, 1), bench::recordsFor(f, 2),
                            [](const Fixed::fixed& a, const Fixed::fixed& b) { return Fixed::fixedadd(a, b); });
    });
    bench::add("fixedsub", "ours", width, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::recordsFor(f, 1), bench::recordsFor(f, 2),
                            [](const Fixed::fixed& a, const Fixed::fixed& b) { return Fixed::fixedsub(a, b); });
    });
    if (width <= 32) {
        bench::add("fixedadd", "native", width, [f](benchmark::State& state) {
            bench::runOverPairs(state, bench::nativeValuesFor(f, 1), bench::nativeValuesFor(f, 2),
                                [](int32_t a, int32_t b) { return static_cast<uint32_t>(a) + static_cast<uint32_t>(b); });
        });
        bench::add("fixedsub", "native", width, [f](benchmark::State& state) {
            bench::runOverPairs(state, bench::nativeValuesFor(f, 1), bench::nativeValuesFor(f, 2),
                                [](int32_t a, int32_t b) { return static_cast<uint32_t>(a) - static_cast<uint32_t>(b); });
        });
    }
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    bench::add("fixedadd", "systemc", width, [f](benchmark::State& state) {
        sc_dt::sc_fix sum(f.bits, f.intbits, sc_dt::SC_TRN, sc_dt::SC_WRAP);
        bench::runOverPairs(state, bench::scFixesFor(f, 1), bench::scFixesFor(f, 2),
                            [&sum](const sc_dt::sc_fix& a, const sc_dt::sc_fix& b) {
                                sum = a + b;
                                benchmark::DoNotOptimize(sum);
                                return 0;
                            });
    });
    bench::add("fixedsub", "systemc", width, [f](benchmark::State& state) {
        sc_dt::sc_fix difference(f.bits, f.intbits, sc_dt::SC_TRN, sc_dt::SC_WRAP);
        bench::runOverPairs(state, bench::scFixesFor(f, 1), bench::scFixesFor(f, 2),
                            [&difference](const sc_dt::sc_fix& a, const sc_dt::sc_fix& b) {
                                difference = a - b;
                                benchmark::DoNotOptimize(difference);
                                return 0;
                            });
    });
#endif
}

// Both factors of one width, labelled "16x16" and so on.
void registerProduct(int width)
{
    const Format f = bench::formatFor(width);
    const std::string label = std::to_string(width) + "x" + std::to_string(width);
    bench::add("fixedmult", "ours", label, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::recordsFor(f, 1), bench::recordsFor(f, 2),
                            [](const Fixed::fixed& a, const Fixed::fixed& b) { return Fixed::fixedmult(a, b); });
    });
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    bench::add("fixedmult", "systemc", label, [f](benchmark::State& state) {
        // The exact product's format: widths and integer bits add.
        sc_dt::sc_fix product(2 * f.bits, 2 * f.intbits, sc_dt::SC_TRN, sc_dt::SC_WRAP);
        bench::runOverPairs(state, bench::scFixesFor(f, 1), bench::scFixesFor(f, 2),
                            [&product](const sc_dt::sc_fix& a, const sc_dt::sc_fix& b) {
                                product = a * b;
                                benchmark::DoNotOptimize(product);
                                return 0;
                            });
    });
#endif
}

const bench::Registration registration([] {
    for (int width : bench::widths)
        registerSums(width);
    for (int width : {16, 32, 48, 64, 80})
        registerProduct(width);
});

}  // namespace
