// Do-nothing routines with the record layer's by-value signatures, defined in
// their own source file so that the compiler cannot inline them or drop their
// arguments: what a call costs before any work is done.
#ifndef FIXEDPOINT_BENCH_REFERENCE_CALLS_H
#define FIXEDPOINT_BENCH_REFERENCE_CALLS_H

#include "FixedPoint.h"

namespace bench {

/// Returns a unchanged: the signature of fixedadd, fixedsub and fixedmult.
Fixed::fixed emptyRecordOperation(Fixed::fixed a, Fixed::fixed b);
/// Returns 0: the signature of fixedgt, fixedle and fixedeq.
int emptyComparison(Fixed::fixed a, Fixed::fixed b);
/// Returns a record holding only the format: the signature of double2fixed.
Fixed::fixed emptyConversion(double value, int intbits, int fracbits, int sign, int round, int wrap);

}  // namespace bench

#endif  // FIXEDPOINT_BENCH_REFERENCE_CALLS_H
