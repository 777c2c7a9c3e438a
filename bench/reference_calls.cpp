// The do-nothing routines of reference_calls.h. They live alone in this file:
// without link-time optimisation the callers see only their declarations.
#include "reference_calls.h"

#include "lib_fixpoint.h"

namespace bench {

Fixed::fixed emptyRecordOperation(Fixed::fixed a, Fixed::fixed)
{
    return a;
}

int emptyComparison(Fixed::fixed, Fixed::fixed)
{
    return 0;
}

Fixed::fixed emptyConversion(double, int intbits, int fracbits, int sign, int, int)
{
    Fixed::fixed result = {};
    result.bits = Fixed::wrappingAdd(intbits, fracbits);
    result.exp = Fixed::wrappingNegate(fracbits);
    result.sign = sign;
    return result;
}

}  // namespace bench
