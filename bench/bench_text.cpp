// Text rendering: fix2str2 in hexadecimal, a length query and the write;
// beside SystemC's to_string(SC_HEX).
#include "bench_support.h"
#include "lib_fixpoint.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

void registerWidth(int width)
{
    const bench::Format f = bench::formatFor(width);
    bench::add("fix2str2", "ours", width, [f](benchmark::State& state) {
        char text[96];
        bench::runOver(state, bench::recordsFor(f, 1), [&text](const Fixed::fixed& r) {
            const int length = Fixed::fix2str2(r.val, r.bits, r.exp, text, 4, 1, 0, 0, 1);
            const int written = Fixed::fix2str2(r.val, r.bits, r.exp, text + length - 1, 4, 1, 0, 0, 0);
            benchmark::DoNotOptimize(text);
            return written;
        });
    });
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    bench::add("fix2str2", "systemc", width, [f](benchmark::State& state) {
        bench::runOver(state, bench::scFixesFor(f, 1),
                       [](const sc_dt::sc_fix& x) { return x.to_string(sc_dt::SC_HEX); });
    });
#endif
}

const bench::Registration registration([] {
    for (int width : bench::widths)
        registerWidth(width);
});

}  // namespace
