// The class's operations: construction from a double (warning check on,
// values inside the range so that nothing is reported) and destruction, the
// reformat constructor and destruction, += and the raw 64-bit pattern;
// beside the sc_fix equivalents (construction from a double, the cast
// constructor, +=, range().to_uint64()). Every object owns one heap record:
// the floor table's new+delete is the part of that no implementation avoids.
#include "FixedPoint.h"
#include "bench_support.h"

#ifdef FIXEDPOINT_BENCH_SYSTEMC
#include "systemc_support.h"
#endif

namespace {

using bench::Format;

// Inside the range, so that the warning check passes without a report.
std::vector<double> valuesInside(const Format& f)
{
    auto values = bench::valuesFor(f, 1);
    for (double& value : values)
        value *= 0.9;
    return values;
}

std::vector<CFixedPoint> objectsFor(const Format& f, unsigned seed)
{
    std::vector<CFixedPoint> objects;
    for (const Fixed::fixed& record : bench::recordsFor(f, seed))
        objects.emplace_back(record);
    return objects;
}

#ifdef FIXEDPOINT_BENCH_SYSTEMC
void registerSystemC(int width)
{
    using namespace sc_dt;
    const Format f = bench::formatFor(width);
    bench::add("class from double", "systemc", width, [f](benchmark::State& state) {
        bench::runOver(state, valuesInside(f), [f](double value) {
            sc_fix x(value, f.bits, f.intbits, SC_RND, SC_SAT);
            benchmark::DoNotOptimize(x);
            return 0;
        });
    });
    bench::add("class reformat", "systemc", width, [f](benchmark::State& state) {
        bench::runOver(state, bench::scFixesFor(f, 3), [f](const sc_fix& source) {
            sc_fix result(source, f.bits, f.intbits + 4, SC_RND, SC_SAT);
            benchmark::DoNotOptimize(result);
            return 0;
        });
    });
    bench::add("class +=", "systemc", width, [f](benchmark::State& state) {
        sc_fix sum(0.0, f.bits, f.intbits, SC_TRN, SC_WRAP);
        bench::runOver(state, bench::scFixesFor(f, 2), [&sum](const sc_fix& term) {
            sum += term;
            benchmark::ClobberMemory();
            return 0;
        });
        benchmark::DoNotOptimize(sum.to_double());
    });
    if (width <= 64) {
        bench::add("class GetValueAs_uint64_t", "systemc", width, [f](benchmark::State& state) {
            bench::runOver(state, bench::scFixesFor(f, 1),
                           [f](const sc_fix& x) { return x.range(f.bits - 1, 0).to_uint64(); });
        });
    }
}
#endif

void registerWidth(int width)
{
    const Format f = bench::formatFor(width);
    bench::add("class from double", "ours", width, [f](benchmark::State& state) {
        bench::runOver(state, valuesInside(f), [f](double value) {
            CFixedPoint x(value, f.intbits, f.fracbits, CFixedPoint::SIGN_SIGNED,
                          CFixedPoint::ROUND_NEAREST, CFixedPoint::WRAP_SATURATE, true,
                          CFixedPoint::MAXVALUE_2N_MINUS_1);
            benchmark::DoNotOptimize(x);
            return 0;
        });
    });
    // The same-width conversion trading four fraction bits for integer bits,
    // rounded to nearest, saturating.
    bench::add("class reformat", "ours", width, [f](benchmark::State& state) {
        bench::runOver(state, objectsFor(f, 3), [f](const CFixedPoint& source) {
            CFixedPoint result(source, f.intbits + 4, f.fracbits - 4, CFixedPoint::SIGN_SIGNED,
                               CFixedPoint::ROUND_NEAREST, CFixedPoint::WRAP_SATURATE);
            benchmark::DoNotOptimize(result);
            return 0;
        });
    });
    bench::add("class +=", "ours", width, [f](benchmark::State& state) {
        CFixedPoint sum(0.0, f.intbits, f.fracbits, CFixedPoint::SIGN_SIGNED,
                        CFixedPoint::ROUND_FLOOR, CFixedPoint::WRAP_AROUND, false,
                        CFixedPoint::MAXVALUE_2N_MINUS_1);
        bench::runOver(state, objectsFor(f, 2), [&sum](const CFixedPoint& term) {
            sum += term;
            benchmark::ClobberMemory();
            return 0;
        });
        benchmark::DoNotOptimize(static_cast<double>(sum));
    });
    if (width <= 64) {
        bench::add("class GetValueAs_uint64_t", "ours", width, [f](benchmark::State& state) {
            bench::runOver(state, objectsFor(f, 1),
                           [](const CFixedPoint& x) { return x.GetValueAs_uint64_t(); });
        });
    }
#ifdef FIXEDPOINT_BENCH_SYSTEMC
    registerSystemC(width);
#endif
}


const bench::Registration registration([] {
    for (int width : bench::widths)
        registerWidth(width);
});

}  // namespace
