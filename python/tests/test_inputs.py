"""Inputs the package converts exactly or refuses; never a misread buffer."""

import numpy as np
import pytest

import fixpt
from fixpt import _core

VALUES = np.array([[1.7, -3.25, 20.0], [0.5, -0.125, 7.0]])
EXPECTED = fixpt.quantize(VALUES, "s4.12")


@pytest.mark.parametrize("values", [
    VALUES.T.copy().T,                          # Fortran order
    np.repeat(VALUES, 2, axis=1)[:, ::2],       # strided
    VALUES.astype(">f8"),                       # big-endian
    VALUES.astype(np.float32).astype(np.float64),
])
def test_layouts_and_byte_orders_are_converted(values):
    assert np.array_equal(fixpt.quantize(values, "s4.12"), fixpt.quantize(np.array(values, order="C"), "s4.12"))


@pytest.mark.parametrize("values, expected", [
    (np.array([3, -2], dtype=np.int32), [0x3000, 0xE000]),
    (np.array([2**53, 1], dtype=np.int64), [2**53, 1]),
    (np.array([0.5], dtype=np.float16), [0x0800]),
    ([1, 2.5], [0x1000, 0x2800]),
])
def test_exact_conversions_are_taken(values, expected):
    fmt = "s60.0" if np.max(np.abs(values)) > 8 else "s4.12"
    assert fixpt.quantize(values, fmt).tolist() == expected


@pytest.mark.parametrize("values", [
    np.array([2**53 + 1], dtype=np.int64), np.array([True]), np.array([1 + 2j]), np.array(["1.5"]),
    np.array([1.5, None]), np.array([1.0], dtype=np.longdouble),
])
def test_inexact_or_foreign_values_are_refused(values):
    with pytest.raises(TypeError):
        fixpt.quantize(values, "s60.0")


@pytest.mark.parametrize("call, error", [
    (lambda: fixpt.to_float(np.array([0x10000]), "s4.12"), ValueError),       # wider than the format
    (lambda: fixpt.to_float(np.array([2**80], dtype=object), "u80.0"), ValueError),
    (lambda: fixpt.to_float(np.array([2**200], dtype=object), "u160.0"), ValueError),
    (lambda: fixpt.Fixed.from_raw(0x10000, "s4.12"), ValueError),
    (lambda: fixpt.requantize(np.array([-1]), "s4.12", "s8.4"), ValueError),
    (lambda: fixpt.requantize(np.array([-1], dtype=object), "s80.4", "s8.4"), ValueError),
    (lambda: fixpt.to_float(np.array([1.0]), "s4.12"), TypeError),
    (lambda: fixpt.to_float(np.array([1.5], dtype=object), "s80.12"), TypeError),
    (lambda: fixpt.quantize([1.0], "s4.12", rounding="half-even"), ValueError),
    (lambda: fixpt.quantize([1.0], "s4.12", overflow="clip"), ValueError),
    (lambda: fixpt.Format("s0.0"), ValueError), (lambda: fixpt.Format("u100.61"), ValueError),
    (lambda: fixpt.Format(2**30 + 10, -(2**30 + 5)), ValueError), (lambda: fixpt.Format(4, 12.0), TypeError),
])
def test_bad_arguments_are_refused(call, error):
    with pytest.raises(error):
        call()


@pytest.mark.parametrize("call, error", [
    (lambda: _core.quantize(np.arange(3), 4, 12, 1, 1, 0), TypeError),
    (lambda: _core.quantize(VALUES[:, ::2], 4, 12, 1, 1, 0), TypeError),
    (lambda: _core.quantize(VALUES.astype(">f8"), 4, 12, 1, 1, 0), TypeError),
    (lambda: _core.quantize(VALUES, 100, 61, 1, 1, 0), ValueError),
    (lambda: _core.to_float(np.arange(4, dtype=np.uint64)[::2], 4, 12, 1), TypeError),
    (lambda: _core.requantize(np.array([1], dtype=np.uint64), 4, 12, 1, 0, 0, 1, 1, 0), ValueError),
])
def test_the_compiled_module_checks_for_itself(call, error):
    with pytest.raises(error):
        call()
