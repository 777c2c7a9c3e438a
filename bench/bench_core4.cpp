// Multiplication, comparison and text rendering: fixedmult, fixedgt,
// fixedeq and fix2str2, with the multiplication sizes (16x16, 32x32,
// 64x64, 80x80 bits); beside SystemC's sc_fix product, comparisons and
// to_string.
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

void registerMult(const std::string& operation, const std::string& label, const Format& f)
{
    bench::add(operation, "ours", label, [f](benchmark::State& state) {
        const auto a = bench::recordsFor(f, 1);
        const auto b = bench::recordsFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixedmult(a[i], b[i]));
            i = (i + 1) & tableMask;
        }
    });
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    bench::add(operation, "systemc", label, [f](benchmark::State& state) {
        const auto a = bench::scFixesFor(f, 1);
        const auto b = bench::scFixesFor(f, 2);
        // The exact product's format: widths and integer bits add.
        sc_dt::sc_fix product(2 * f.bits, 2 * f.intbits, sc_dt::SC_TRN, sc_dt::SC_WRAP);
        std::size_t i = 0;
        for (auto _ : state) {
            product = a[i] * b[i];
            benchmark::DoNotOptimize(product);
            i = (i + 1) & tableMask;
        }
    });
#endif
}

void registerWidth(int width)
{
    const Format f = bench::formatFor(width);
    // The product of two records holds at most 160 bits.
    if (2 * width <= 160)
        registerMult("fixedmult", std::to_string(width), f);
    bench::add("fixedgt", "ours", width, [f](benchmark::State& state) {
        const auto a = bench::recordsFor(f, 1);
        const auto b = bench::recordsFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixedgt(a[i], b[i]));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedeq", "ours", width, [f](benchmark::State& state) {
        // Half of the pairs equal, so that the early exit and the full scan
        // both count.
        const auto a = bench::recordsFor(f, 1);
        auto b = bench::recordsFor(f, 2);
        for (std::size_t k = 0; k < b.size(); k += 2)
            b[k] = a[k];
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(Fixed::fixedeq(a[i], b[i]));
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fix2str2", "ours", width, [f](benchmark::State& state) {
        const auto records = bench::recordsFor(f, 1);
        char text[96];
        std::size_t i = 0;
        for (auto _ : state) {
            const Fixed::fixed& r = records[i];
            const int length = Fixed::fix2str2(r.val, r.bits, r.exp, text, 4, 1, 0, 0, 1);
            benchmark::DoNotOptimize(
                Fixed::fix2str2(r.val, r.bits, r.exp, text + length - 1, 4, 1, 0, 0, 0));
            benchmark::DoNotOptimize(text);
            i = (i + 1) & tableMask;
        }
    });
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    bench::add("fixedgt", "systemc", width, [f](benchmark::State& state) {
        const auto a = bench::scFixesFor(f, 1);
        const auto b = bench::scFixesFor(f, 2);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(a[i] > b[i]);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fixedeq", "systemc", width, [f](benchmark::State& state) {
        const auto a = bench::scFixesFor(f, 1);
        auto b = bench::scFixesFor(f, 2);
        for (std::size_t k = 0; k < b.size(); k += 2)
            b[k] = a[k];
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(a[i] == b[i]);
            i = (i + 1) & tableMask;
        }
    });
    bench::add("fix2str2", "systemc", width, [f](benchmark::State& state) {
        const auto values = bench::scFixesFor(f, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(values[i].to_string(sc_dt::SC_HEX));
            i = (i + 1) & tableMask;
        }
    });
#endif
}

const bench::Registration registration([] {
    for (int width : bench::widths)
        registerWidth(width);
    for (int width : {16, 32, 64, 80}) {
        const std::string label = std::to_string(width) + "x" + std::to_string(width);
        registerMult("fixedmult issue-3", label, bench::formatFor(width));
    }
});

}  // namespace
