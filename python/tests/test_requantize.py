"""Raw patterns re-quantised between formats, against the exact model."""

import numpy as np
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


def test_uint64_and_object_inputs_agree():
    patterns = [0, 1, 2**63, 2**64 - 1]
    as_uint64 = fixpt.requantize(np.array(patterns, dtype=np.uint64), "u64.0", "u100.-40")
    as_ints = fixpt.requantize(np.array(patterns, dtype=object), "u64.0", "u100.-40")
    assert as_uint64.tolist() == as_ints.tolist() == [0, 0, 2**23, 2**24]
