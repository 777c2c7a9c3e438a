// The parts of the compiled module fixpt._core, each registered by its own
// source file.
#ifndef FIXPT_PYTHON_BINDINGS_H
#define FIXPT_PYTHON_BINDINGS_H

#include <pybind11/pybind11.h>

namespace fixpt {

/// Inclusive bounds of a format's width.
void checkWidth(long long bits);

/// quantize, to_float and requantize over NumPy arrays.
void bindArrayCalls(pybind11::module_& module);
/// The class Value around one CFixedPoint.
void bindValueClass(pybind11::module_& module);

}  // namespace fixpt

#endif  // FIXPT_PYTHON_BINDINGS_H
