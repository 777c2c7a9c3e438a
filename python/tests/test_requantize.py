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


@pytest.mark.parametrize("src", ["u64.0", "s67.-3", "u100.0", "s150.10"])
def test_uint64_and_object_inputs_agree(src):
    src, dst, patterns = fixpt.Format(src), fixpt.Format("u100.-40"), [0, 1, 2**63, 2**64 - 1]
    as_uint64 = fixpt.requantize(np.array(patterns, dtype=np.uint64), src, dst)
    as_ints = fixpt.requantize(np.array(patterns, dtype=object), src, dst)
    expected = [model.requantize(p, src, dst, nearest=True, wrap=False)[0] for p in patterns]
    assert as_uint64.tolist() == as_ints.tolist() == expected
    assert fixpt.to_float(np.array(patterns, dtype=np.uint64), src).tolist() == [model.to_float(p, src) for p in patterns]
