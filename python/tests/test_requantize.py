"""Raw patterns re-quantised between formats, against the exact model."""

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import exact_model as model
import fixpt
from strategies import formats, overflows, patterns_for, roundings


@given(st.data(), formats(), formats(), roundings, overflows)
def test_requantize_matches_the_model_and_the_class(data, src, dst, rounding, overflow):
    patterns = data.draw(st.lists(patterns_for(src), min_size=1, max_size=6))
    expected = [model.requantize(p, src, dst, rounding == "nearest", overflow == "wrap") for p in patterns]
    raw = np.array(patterns, dtype=object)  # Python ints at every width
    converted, saturated = fixpt.requantize(raw, src, dst, rounding, overflow, return_saturated=True)
    assert [(int(c), bool(s)) for c, s in zip(converted, saturated)] == expected
    assert [fixpt.Fixed.from_raw(p, src).to(dst, rounding, overflow).raw for p in patterns] == [
        p for p, _ in expected]


@pytest.mark.parametrize("raw, src, dst, rounding, overflow, expected", [
    (0x0180, "s8.8", "s4.0", "nearest", "saturate", 0x2),      # 1.5 rounds up to 2
    (0xFE80, "s8.8", "s4.0", "nearest", "saturate", 0xF),      # -1.5 rounds up to -1
    (0xFE80, "s8.8", "s4.0", "floor", "saturate", 0xE),
    (0xFED4, "s16.0", "s8.0", "floor", "wrap", 0xD4),          # -300 wraps to -44
    (0xFF, "s8.0", "u16.0", "floor", "saturate", 0xFF),        # read under the target's sign:
    (0xFF, "u8.0", "s16.0", "floor", "saturate", 0xFFFF),      # 0xFF is -1 for a signed target
    (0x7FFFFFFF, "s16.16", "s16.15", "nearest", "wrap", 0x40000000),  # the carry wraps to the minimum
    (0x1_80000000, "s32.32", "s33.0", "nearest", "saturate", 2),
])
def test_documented_conversions(raw, src, dst, rounding, overflow, expected):
    assert fixpt.requantize(raw, src, dst, rounding, overflow) == expected


def test_uint64_and_object_inputs_agree():
    patterns = [0, 1, 2**63, 2**64 - 1]
    as_uint64 = fixpt.requantize(np.array(patterns, dtype=np.uint64), "u64.0", "u100.-40")
    as_ints = fixpt.requantize(np.array(patterns, dtype=object), "u64.0", "u100.-40")
    assert as_uint64.tolist() == as_ints.tolist() == [0, 0, 2**23, 2**24]
