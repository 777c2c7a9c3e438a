"""Doubles into raw patterns and back, against the exact model."""

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import exact_model as model
import fixpt
from strategies import formats, overflows, patterns_for, roundings, values_for


@given(st.data(), formats(), roundings, overflows)
def test_quantize_matches_the_model_and_the_class(data, fmt, rounding, overflow):
    values = data.draw(st.lists(values_for(fmt), min_size=1, max_size=8))
    expected = [model.quantize(v, fmt, rounding == "nearest", overflow == "wrap") for v in values]
    raw, saturated = fixpt.quantize(values, fmt, rounding, overflow, return_saturated=True)
    assert [(int(r), bool(s)) for r, s in zip(raw, saturated)] == expected
    assert raw.dtype == (np.uint64 if fmt.bits <= 64 else object)
    # The class's constructor from a double takes the same path.
    assert [fixpt.Fixed(v, fmt, rounding, overflow).raw for v in values] == [p for p, _ in expected]


@given(st.data(), formats())
def test_to_float_is_the_documented_conversion(data, fmt):
    patterns = data.draw(st.lists(patterns_for(fmt), min_size=1, max_size=8))
    raw = np.array(patterns, dtype=np.uint64 if fmt.bits <= 64 else object)
    assert fixpt.to_float(raw, fmt).tolist() == [model.to_float(p, fmt) for p in patterns]
    assert [float(fixpt.Fixed.from_raw(p, fmt)) for p in patterns] == [model.to_float(p, fmt) for p in patterns]


@pytest.mark.parametrize("value, fmt, rounding, overflow, raw, saturated", [
    (1.7, "s4.12", "nearest", "saturate", 0x1B33, False),
    (20.0, "s4.12", "nearest", "saturate", 0x7FFF, True),
    (-3.25, "s4.12", "nearest", "saturate", 0xCC00, False),
    (1e30, "s70.10", "nearest", "saturate", 2**79 - 1, True),
])
def test_documented_values(value, fmt, rounding, overflow, raw, saturated):
    assert fixpt.quantize(value, fmt, rounding, overflow, return_saturated=True) == (raw, saturated)


@pytest.mark.parametrize("fmt", ["s4.12", "s32.32", "u80.80"])
@pytest.mark.parametrize("shape", [(), (0,), (3,), (2, 0, 3), (2, 3)])
def test_shape_and_scalars_are_kept(fmt, shape):
    values = (np.arange(int(np.prod(shape))) * 0.125).reshape(shape)  # exact in every format here
    raw, saturated = fixpt.quantize(values, fmt, return_saturated=True)
    back = fixpt.to_float(raw, fmt)
    assert np.shape(raw) == np.shape(saturated) == np.shape(back) == shape
    if shape == ():
        assert isinstance(back, np.float64) and not isinstance(raw, np.ndarray)
    else:
        assert back.dtype == np.float64 and saturated.dtype == np.bool_
    assert np.array_equal(back, values)
