// Comparisons of records: fixedgt, fixedle and fixedeq (half of its pairs
// equal, so that the early exit and the full scan both count); beside
// SystemC's >, <= and == on sc_fix values.
#include "bench_support.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

using bench::Format;

// Every other entry of b replaced by a's.
template <typename Table>
Table halfEqual(const Table& a, Table b)
{
    for (std::size_t k = 0; k < b.size(); k += 2)
        b[k] = a[k];
    return b;
}

void registerWidth(int width)
{
    const Format f = bench::formatFor(width);
    bench::add("fixedgt", "ours", width, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::recordsFor(f, 1), bench::recordsFor(f, 2),
                            [](const Fixed::fixed& a, const Fixed::fixed& b) { return Fixed::fixedgt(a, b); });
    });
    bench::add("fixedle", "ours", width, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::recordsFor(f, 1), bench::recordsFor(f, 2),
                            [](const Fixed::fixed& a, const Fixed::fixed& b) { return Fixed::fixedle(a, b); });
    });
    bench::add("fixedeq", "ours", width, [f](benchmark::State& state) {
        const auto a = bench::recordsFor(f, 1);
        bench::runOverPairs(state, a, halfEqual(a, bench::recordsFor(f, 2)),
                            [](const Fixed::fixed& x, const Fixed::fixed& y) { return Fixed::fixedeq(x, y); });
    });
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    using sc_dt::sc_fix;
    bench::add("fixedgt", "systemc", width, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::scFixesFor(f, 1), bench::scFixesFor(f, 2),
                            [](const sc_fix& a, const sc_fix& b) { return a > b; });
    });
    bench::add("fixedle", "systemc", width, [f](benchmark::State& state) {
        bench::runOverPairs(state, bench::scFixesFor(f, 1), bench::scFixesFor(f, 2),
                            [](const sc_fix& a, const sc_fix& b) { return a <= b; });
    });
    bench::add("fixedeq", "systemc", width, [f](benchmark::State& state) {
        const auto a = bench::scFixesFor(f, 1);
        bench::runOverPairs(state, a, halfEqual(a, bench::scFixesFor(f, 2)),
                            [](const sc_fix& x, const sc_fix& y) { return x == y; });
    });
#endif
}

const bench::Registration registration([] {
    for (int width : bench::widths)
        registerWidth(width);
});

}  // namespace
