// Array calls: doubles into raw patterns, raw patterns back into doubles and
// into other formats, element by element through the record layer. Inputs
// come C-contiguous in exactly the dtype named (the Python layer converts
// what converts exactly and refuses the rest); anything else is a TypeError
// here, never a misread buffer. The library runs with the GIL released; its
// reports become warnings once every result is written.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>
#include <vector>

#include "bindings.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "patterns.h"
#include "reports.h"

namespace py = pybind11;

namespace fixpt {
namespace {

using Shape = std::vector<py::ssize_t>;

Shape shapeOf(const py::array& array)
{
    return Shape(array.shape(), array.shape() + array.ndim());
}

bool isCContiguous(const py::array& array)
{
    return (array.flags() & py::array::c_style) == py::array::c_style;
}

// Raw patterns of an array call: uint64 read in place, or Python integers of
// an object array converted into words while the GIL is held. Every pattern
// is checked against the width before anything is computed.
class RawPatterns {
public:
    RawPatterns(const py::array& raw, int bits) : m_bits(bits), m_count(static_cast<size_t>(raw.size()))
    {
        if (!isCContiguous(raw))
            throw py::type_error("raw patterns must be C-contiguous");
        if (raw.dtype().equal(py::dtype::of<uint64_t>()))
            m_narrow = static_cast<const uint64_t*>(raw.data());
        else if (raw.dtype().kind() == 'O')
            readObjects(raw);
        else
            throw py::type_error("raw patterns must be uint64 or Python integers, not " +
                                 py::str(raw.dtype()).cast<std::string>());
        checkWidths();
    }

    size_t size() const { return m_count; }

    Fixed::fixed record(size_t i, int exp, int sign) const
    {
        if (m_narrow == nullptr)
            return recordOf(m_wide[i], m_bits, exp, sign);
        return m_bits <= 64 ? recordOf64(m_narrow[i], m_bits, exp, sign)
                            : recordOf(patternOf64(m_narrow[i]), m_bits, exp, sign);
    }

private:
    void readObjects(const py::array& raw)
    {
        const auto* objects = static_cast<PyObject* const*>(raw.data());
        m_wide.reserve(m_count);
        for (size_t i = 0; i < m_count; ++i)
            m_wide.push_back(patternFromPython(objects[i] != nullptr ? objects[i] : Py_None));
    }

    bool fits(size_t i) const
    {
        return m_narrow != nullptr ? fitsWidth(m_narrow[i], m_bits) : fitsWidth(m_wide[i], m_bits);
    }

    void checkWidths() const
    {
        size_t wider = m_count;
        {
            py::gil_scoped_release release;
            for (size_t i = 0; i < m_count && wider == m_count; ++i)
                if (!fits(i))
                    wider = i;
        }
        if (wider < m_count)
            throw py::value_error("raw pattern at flat index " + std::to_string(wider) + " is wider than " +
                                  std::to_string(m_bits) + " bits");
    }

    int m_bits;
    size_t m_count;
    const uint64_t* m_narrow = nullptr;
    std::vector<Pattern> m_wide;
};

// Results of the quantisers: raw patterns (a uint64 array up to 64 bits, an
// object array of Python ints above, collected as words first and converted
// once the GIL is back) and the saturation flags.
class QuantisedOutput {
public:
    QuantisedOutput(const Shape& shape, int bits) : m_shape(shape), m_bits(bits), m_saturated(shape) {}

    // Stores produce(i) for every i, with the GIL released. produce returns
    // the library's result itself, which is read where the library wrote it
    // (a copy of the record in between would cost more than the conversion).
    template <class Produce>
    void fill(size_t count, Produce produce)
    {
        bool* flags = m_saturated.mutable_data();
        if (m_bits <= 64) {
            m_narrow = py::array_t<uint64_t>(m_shape);
            uint64_t* out = m_narrow.mutable_data();
            py::gil_scoped_release release;
            for (size_t i = 0; i < count; ++i) {
                const Fixed::Quantised q = produce(i);
                out[i] = pattern64Of(q.value);
                flags[i] = q.saturated != 0;
            }
        } else {
            m_wide.resize(count);
            py::gil_scoped_release release;
            for (size_t i = 0; i < count; ++i) {
                const Fixed::Quantised q = produce(i);
                m_wide[i] = patternOf(q.value);
                flags[i] = q.saturated != 0;
            }
        }
    }

    py::tuple finish() { return py::make_tuple(rawPatterns(), m_saturated); }

private:
    py::array rawPatterns()
    {
        if (m_bits <= 64)
            return m_narrow;
        // NumPy starts an object array with null slots (read as None).
        py::array objects(py::dtype("O"), m_shape);
        auto** slots = static_cast<PyObject**>(objects.mutable_data());
        for (size_t i = 0; i < m_wide.size(); ++i)
            slots[i] = toPythonInt(m_wide[i]).release().ptr();
        return objects;
    }

    Shape m_shape;
    int m_bits;
    py::array_t<bool> m_saturated;
    py::array_t<uint64_t> m_narrow;
    std::vector<Pattern> m_wide;
};

py::tuple quantize(const py::array_t<double, py::array::c_style>& values, int intbits, int fracbits, int sign,
                   int round, int wrap)
{
    checkWidth(static_cast<long long>(intbits) + fracbits);
    ReportScope reports;
    const double* in = values.data();
    QuantisedOutput output(shapeOf(values), intbits + fracbits);
    output.fill(static_cast<size_t>(values.size()),
                [&](size_t i) { return Fixed::double2fixedWithFlag(in[i], intbits, fracbits, sign, round, wrap); });
    py::tuple result = output.finish();
    reports.issueWarnings();
    return result;
}

py::array_t<double> toFloat(const py::array& raw, int intbits, int fracbits, int sign)
{
    checkWidth(static_cast<long long>(intbits) + fracbits);
    ReportScope reports;
    const RawPatterns patterns(raw, intbits + fracbits);
    py::array_t<double> result(shapeOf(raw));
    double* out = result.mutable_data();
    {
        py::gil_scoped_release release;
        const int exp = Fixed::wrappingNegate(fracbits);
        for (size_t i = 0; i < patterns.size(); ++i)
            out[i] = Fixed::fixed2double(patterns.record(i, exp, sign));
    }
    reports.issueWarnings();
    return result;
}

py::tuple requantize(const py::array& raw, int srcIntbits, int srcFracbits, int srcSign, int intbits,
                     int fracbits, int sign, int round, int wrap)
{
    checkWidth(static_cast<long long>(srcIntbits) + srcFracbits);
    checkWidth(static_cast<long long>(intbits) + fracbits);
    ReportScope reports;
    const RawPatterns patterns(raw, srcIntbits + srcFracbits);
    QuantisedOutput output(shapeOf(raw), intbits + fracbits);
    const int srcExp = Fixed::wrappingNegate(srcFracbits);
    output.fill(patterns.size(), [&](size_t i) {
        return Fixed::fixedformatWithFlag(patterns.record(i, srcExp, srcSign), intbits, fracbits, sign, round, wrap);
    });
    py::tuple result = output.finish();
    reports.issueWarnings();
    return result;
}

}  // namespace

void bindArrayCalls(py::module_& module)
{
    module.def("quantize", &quantize, py::arg("values").noconvert(), py::arg("intbits"), py::arg("fracbits"),
               py::arg("sign"), py::arg("round"), py::arg("wrap"),
               "(raw, saturated) of float64 values quantised by double2fixed.");
    module.def("to_float", &toFloat, py::arg("raw"), py::arg("intbits"), py::arg("fracbits"), py::arg("sign"),
               "Raw patterns (uint64 or Python ints) as doubles, by fixed2double.");
    module.def("requantize", &requantize, py::arg("raw"), py::arg("src_intbits"), py::arg("src_fracbits"),
               py::arg("src_sign"), py::arg("intbits"), py::arg("fracbits"), py::arg("sign"), py::arg("round"),
               py::arg("wrap"), "(raw, saturated) of raw patterns converted by fixedformat.");
}

}  // namespace fixpt
