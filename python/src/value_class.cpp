// fixpt._core.Value: one CFixedPoint, its constructors and conversions, and
// the record operations the class does not offer (product, comparisons,
// text), each of them the library's own routine. Every member collects the
// library's reports and emits them as warnings before it returns.
#include <pybind11/pybind11.h>

#include <string>
#include <vector>

#include "FixedPoint.h"
#include "bindings.h"
#include "lib_fixed_c.h"
#include "lib_fixpoint.h"
#include "patterns.h"
#include "reports.h"

namespace py = pybind11;

namespace fixpt {
namespace {

CFixedPoint fromDouble(double value, int intbits, int fracbits, int sign, int round, int wrap, bool warn,
                       int maxValue)
{
    checkWidth(static_cast<long long>(intbits) + fracbits);
    return withReports([&] {
        return CFixedPoint(value, intbits, fracbits, static_cast<CFixedPoint::SIGN>(sign),
                           static_cast<CFixedPoint::ROUND>(round), static_cast<CFixedPoint::WRAP>(wrap), warn,
                           static_cast<CFixedPoint::MAXVALUE>(maxValue));
    });
}

// Exact: the record is built from the pattern itself, at any width.
CFixedPoint fromPattern(py::handle raw, int intbits, int fracbits, int sign)
{
    checkWidth(static_cast<long long>(intbits) + fracbits);
    const int bits = intbits + fracbits;
    const Pattern pattern = patternFromPython(raw);
    if (!fitsWidth(pattern, bits))
        throw py::value_error("raw pattern " + py::repr(raw).cast<std::string>() + " is wider than " +
                              std::to_string(bits) + " bits");
    return CFixedPoint(recordOf(pattern, bits, Fixed::wrappingNegate(fracbits), sign));
}

// The class's word-pair constructor, with its pass through a double.
CFixedPoint fromWords(unsigned int msb, unsigned int lsb, int intbits, int fracbits, int sign)
{
    checkWidth(static_cast<long long>(intbits) + fracbits);
    return withReports(
        [&] { return CFixedPoint(msb, lsb, intbits, fracbits, static_cast<CFixedPoint::SIGN>(sign)); });
}

CFixedPoint reformat(const CFixedPoint& value, int intbits, int fracbits, int sign, int round, int wrap)
{
    checkWidth(static_cast<long long>(intbits) + fracbits);
    return withReports([&] {
        return CFixedPoint(value, intbits, fracbits, static_cast<CFixedPoint::SIGN>(sign),
                           static_cast<CFixedPoint::ROUND>(round), static_cast<CFixedPoint::WRAP>(wrap));
    });
}

// operator double and operator<< are not const members: they run on a copy.
double toDouble(const CFixedPoint& value)
{
    CFixedPoint copy(value);
    return static_cast<double>(copy);
}

CFixedPoint shifted(const CFixedPoint& value, int n)
{
    CFixedPoint copy(value);
    return copy << n;
}

CFixedPoint sum(const CFixedPoint& left, const CFixedPoint& right)
{
    return withReports([&] {
        CFixedPoint result(left);
        result += right;
        return result;
    });
}

CFixedPoint product(const CFixedPoint& left, const CFixedPoint& right)
{
    checkWidth(static_cast<long long>(left.GetValue().bits) + right.GetValue().bits);
    return withReports([&] { return CFixedPoint(Fixed::fixedmult(left.GetValue(), right.GetValue())); });
}

// A comparison of the record layer, reports included.
template <int (*compare)(Fixed::fixed, Fixed::fixed)>
bool comparison(const CFixedPoint& left, const CFixedPoint& right)
{
    return withReports([&] { return compare(left.GetValue(), right.GetValue()) != 0; });
}

// The positional (or scientific) text of fix2str2, sized by a length query.
std::string text(const CFixedPoint& value, int digitBits, int align)
{
    if (digitBits < 1 || digitBits > 4)
        throw py::value_error("a digit holds 1 to 4 bits, not " + std::to_string(digitBits));
    Fixed::fixed record = value.GetValue();
    return withReports([&] {
        const int length = Fixed::fix2str2(record.val, record.bits, record.exp, nullptr, digitBits, 1, align, 0, 1);
        if (length <= 0)
            return std::string();
        std::vector<char> characters(static_cast<size_t>(length));
        Fixed::fix2str2(record.val, record.bits, record.exp, &characters.back(), digitBits, 1, align, 0, 0);
        return std::string(characters.begin(), characters.end());
    });
}

template <class Reader>
auto reading(Reader reader)
{
    return [reader](const CFixedPoint& value) { return withReports([&] { return reader(value); }); };
}

}  // namespace

void bindValueClass(py::module_& module)
{
    py::class_<CFixedPoint>(module, "Value", "One CFixedPoint value.")
        .def_static("from_double", &fromDouble, py::arg("value"), py::arg("intbits"), py::arg("fracbits"),
                    py::arg("sign"), py::arg("round"), py::arg("wrap"), py::arg("warn"), py::arg("max_value"))
        .def_static("from_pattern", &fromPattern, py::arg("raw"), py::arg("intbits"), py::arg("fracbits"),
                    py::arg("sign"))
        .def_static("from_words", &fromWords, py::arg("msb"), py::arg("lsb"), py::arg("intbits"),
                    py::arg("fracbits"), py::arg("sign"))
        .def("reformat", &reformat, py::arg("intbits"), py::arg("fracbits"), py::arg("sign"), py::arg("round"),
             py::arg("wrap"))
        .def_property_readonly("bits", [](const CFixedPoint& value) { return value.GetValue().bits; })
        .def_property_readonly("exp", [](const CFixedPoint& value) { return value.GetValue().exp; })
        .def_property_readonly("sign", [](const CFixedPoint& value) { return value.GetValue().sign; })
        .def("pattern", [](const CFixedPoint& value) { return toPythonInt(patternOf(value.GetValue())); })
        .def("to_float", &toDouble)
        .def("uint64", reading([](const CFixedPoint& value) { return value.GetValueAs_uint64_t(); }))
        .def("msb", reading([](const CFixedPoint& value) { return value.MSB(); }))
        .def("lsb", reading([](const CFixedPoint& value) { return value.LSB(); }))
        .def("shift", &shifted, py::arg("n"))
        .def("add", &sum)
        .def("multiply", &product)
        .def("greater", &comparison<Fixed::fixedgt>)
        .def("less_equal", &comparison<Fixed::fixedle>)
        .def("equal", &comparison<Fixed::fixedeq>)
        .def("text", &text, py::arg("digit_bits"), py::arg("align"));
}

}  // namespace fixpt
