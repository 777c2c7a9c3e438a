// The floors every figure can be read against: a call of a do-nothing
// routine with the record layer's by-value signatures, and the allocation and
// release of one heap record, the part of every class object that its
// ownership contract fixes. Inputs come from the same tables as the real
// operations, so the copies of the records cost what they cost there.
#include "FixedPoint.h"
#include "bench_support.h"
#include "reference_calls.h"

namespace {

using bench::tableMask;

// The floors do not depend on the width; one format stands for all.
const bench::Format format = bench::formatFor(64);
const char* const implementation = "floor";
const char* const anyWidth = "any";

const bench::Registration registration([] {
    bench::add("empty call fixed(fixed, fixed)", implementation, anyWidth,
               [](benchmark::State& state) {
                   const auto a = bench::recordsFor(format, 1);
                   const auto b = bench::recordsFor(format, 2);
                   std::size_t i = 0;
                   for (auto _ : state) {
                       benchmark::DoNotOptimize(bench::emptyRecordOperation(a[i], b[i]));
                       i = (i + 1) & tableMask;
                   }
               });
    bench::add("empty call int(fixed, fixed)", implementation, anyWidth,
               [](benchmark::State& state) {
                   const auto a = bench::recordsFor(format, 1);
                   const auto b = bench::recordsFor(format, 2);
                   std::size_t i = 0;
                   for (auto _ : state) {
                       benchmark::DoNotOptimize(bench::emptyComparison(a[i], b[i]));
                       i = (i + 1) & tableMask;
                   }
               });
    bench::add("empty call fixed(double, int x5)", implementation, anyWidth,
               [](benchmark::State& state) {
                   const auto values = bench::valuesFor(format, 1);
                   std::size_t i = 0;
                   for (auto _ : state) {
                       benchmark::DoNotOptimize(bench::emptyConversion(
                           values[i], format.intbits, format.fracbits, 1, 1, 0));
                       i = (i + 1) & tableMask;
                   }
               });
    bench::add("new+delete record", implementation, anyWidth, [](benchmark::State& state) {
        const auto records = bench::recordsFor(format, 1);
        std::size_t i = 0;
        for (auto _ : state) {
            Fixed::fixed* record = new Fixed::fixed(records[i]);
            benchmark::DoNotOptimize(record);
            delete record;
            i = (i + 1) & tableMask;
        }
    });
});

}  // namespace
