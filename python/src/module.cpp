// fixpt._core: the library's own routines for the package fixpt. The package's
// Python layer checks and names the arguments; this module takes formats as
// integer and fractional bits and the library's flags as their integers.
#include <string>

#include "bindings.h"
#include "lib_fixpoint.h"

namespace fixpt {

void checkWidth(long long bits)
{
    // A record holds 1 to 160 bits; the record operations would report a
    // wider format and clear it, which the package never asks for.
    if (!Fixed::isMantissaWidth(bits))
        throw pybind11::value_error("a format has 1 to 160 bits, not " + std::to_string(bits));
}

}  // namespace fixpt

PYBIND11_MODULE(_core, module)
{
    module.doc() = "The FixedPoint core, compiled into the fixpt package.";
    fixpt::bindArrayCalls(module);
    fixpt::bindValueClass(module);
}
