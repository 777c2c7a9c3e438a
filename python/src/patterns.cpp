#include "patterns.h"

#include <Python.h>

#include "lib_fixpoint.h"

namespace py = pybind11;

namespace fixpt {
namespace {

constexpr int patternBytes = 4 * Fixed::maxWords;

// Bits below the mantissa in the lowest word of a record of this width.
int padBits(int bits)
{
    return 32 * Fixed::wordCount(bits) - bits;
}

}  // namespace

Pattern patternOf(const Fixed::fixed& record)
{
    Pattern pattern = {};
    const int nw = Fixed::recordWordCount(record.bits);
    const int pad = padBits(record.bits);
    for (int i = 0; i < nw; ++i) {
        const uint32_t low = Fixed::asUnsigned(record.val[i]) >> pad;
        const uint32_t high = i + 1 < nw && pad > 0 ? Fixed::asUnsigned(record.val[i + 1]) << (32 - pad) : 0u;
        pattern.words[i] = low | high;
    }
    return pattern;
}

bool fitsWidth(const Pattern& pattern, int bits)
{
    for (int i = 0; i < Fixed::maxWords; ++i) {
        const int below = bits - 32 * i;  // bits of the width in this word
        if (below >= 32)
            continue;
        const uint32_t outside = below <= 0 ? pattern.words[i] : pattern.words[i] >> below;
        if (outside != 0)
            return false;
    }
    return true;
}

Fixed::fixed recordOf(const Pattern& pattern, int bits, int exp, int sign)
{
    Fixed::fixed record = {bits, exp, sign, {0, 0, 0, 0, 0}};
    const int nw = Fixed::recordWordCount(bits);
    const int pad = padBits(bits);
    for (int i = 0; i < nw; ++i) {
        const uint32_t high = pattern.words[i] << pad;
        const uint32_t low = i > 0 && pad > 0 ? pattern.words[i - 1] >> (32 - pad) : 0u;
        record.val[i] = Fixed::asWord(high | low);
    }
    return record;
}

Fixed::fixed recordOf64(uint64_t pattern, int bits, int exp, int sign)
{
    Fixed::fixed record = {bits, exp, sign, {0, 0, 0, 0, 0}};
    const uint64_t aligned = pattern << padBits(bits);
    record.val[0] = Fixed::asWord(static_cast<uint32_t>(aligned));
    if (bits > 32)
        record.val[1] = Fixed::asWord(static_cast<uint32_t>(aligned >> 32));
    return record;
}

py::int_ toPythonInt(const Pattern& pattern)
{
    unsigned char bytes[patternBytes];
    for (int i = 0; i < patternBytes; ++i)
        bytes[i] = static_cast<unsigned char>(pattern.words[i / 4] >> (8 * (i % 4)));
    PyObject* integer = _PyLong_FromByteArray(bytes, patternBytes, /*little_endian=*/1, /*is_signed=*/0);
    if (integer == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::int_>(integer);
}

Pattern patternFromPython(py::handle value)
{
    const py::object integer = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!integer)
        throw py::error_already_set();
    if (PyObject_RichCompareBool(integer.ptr(), py::int_(0).ptr(), Py_LT) == 1)
        throw py::value_error("a raw pattern is a non-negative integer, not " + py::repr(value).cast<std::string>());
    unsigned char bytes[patternBytes];
#if PY_VERSION_HEX >= 0x030D0000
    const int failed = _PyLong_AsByteArray(reinterpret_cast<PyLongObject*>(integer.ptr()), bytes,
                                           patternBytes, 1, 0, 1);
#else
    const int failed = _PyLong_AsByteArray(reinterpret_cast<PyLongObject*>(integer.ptr()), bytes,
                                           patternBytes, 1, 0);
#endif
    if (failed != 0) {
        PyErr_Clear();
        throw py::value_error("raw pattern " + py::repr(value).cast<std::string>() + " is wider than 160 bits");
    }
    Pattern pattern = {};
    for (int i = 0; i < patternBytes; ++i)
        pattern.words[i / 4] |= uint32_t{bytes[i]} << (8 * (i % 4));
    return pattern;
}

}  // namespace fixpt
