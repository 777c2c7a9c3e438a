// The floors every figure can be read against: a call of a do-nothing
// routine with the record layer's by-value signatures, and the allocation and
// release of one heap record, the part of every class object that its
// ownership contract fixes. Inputs come from the same tables as the real
// operations, so the copies of the records cost what they cost there.
#include "FixedPoint.h"
#include "bench_support.h"
#include "reference_calls.h"

namespace {

// The floors do not depend on the width; one format stands for all.
const bench::Format format = bench::formatFor(64);
const char* const implementation = "floor";
const char* const anyWidth = "any";

const bench::Registration registration([] {
    bench::add("empty call fixed(fixed, fixed)", implementation, anyWidth,
               [](benchmark::State& state) {
                   bench::runOverPairs(state, bench::recordsFor(format, 1),
                                       bench::recordsFor(format, 2), bench::emptyRecordOperation);
               });
    bench::add("empty call int(fixed, fixed)", implementation, anyWidth,
               [](benchmark::State& state) {
                   bench::runOverPairs(state, bench::recordsFor(format, 1),
                                       bench::recordsFor(format, 2), bench::emptyComparison);
               });
    bench::add("empty call fixed(double, int x5)", implementation, anyWidth,
               [](benchmark::State& state) {
                   bench::runOver(state, bench::valuesFor(format, 1), [](double value) {
                       return bench::emptyConversion(value, format.intbits, format.fracbits, 1, 1, 0);
                   });
               });
    bench::add("new+delete record", implementation, anyWidth, [](benchmark::State& state) {
        bench::runOver(state, bench::recordsFor(format, 1), [](const Fixed::fixed& value) {
            Fixed::fixed* record = new Fixed::fixed(value);
            benchmark::DoNotOptimize(record);
            delete record;
            return 0;
        });
    });
});

}  // namespace
