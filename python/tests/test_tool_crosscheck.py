"""The package and the fixpt tool give the same raw patterns for one table.

The tool's CSV is read by its header names. Both read the pattern exactly
from the record's words, so the table reaches the widths where a reading
through a double would differ (54 to 64 bits) and those above 64 bits.
"""

import csv
import io
import os
import subprocess
import warnings

import numpy as np
import pytest

import fixpt

TOOL = os.environ.get("FIXPT_TOOL")
pytestmark = pytest.mark.skipif(not TOOL, reason="FIXPT_TOOL names no fixpt tool (built with the tools only)")

FORMATS = [  # (format, rounding, overflow, target, target rounding, target overflow)
    ("s4.12", "nearest", "saturate", "u8.4", "nearest", "saturate"),
    ("u4.12", "floor", "wrap", "s8.4", "nearest", "saturate"),
    ("s1.31", "nearest", "wrap", "s2.30", "floor", "wrap"),
    ("u32.0", "floor", "saturate", "s17.-15", "nearest", "wrap"),
    ("s-2.10", "nearest", "saturate", "u3.50", "floor", "saturate"),
    ("s40.13", "floor", "saturate", "s20.33", "nearest", "saturate"),
    ("s40.24", "nearest", "saturate", "u60.4", "floor", "saturate"),
    ("u60.3", "floor", "wrap", "s33.31", "nearest", "wrap"),
    ("s100.60", "nearest", "saturate", "s70.10", "nearest", "saturate"),
    ("u90.70", "floor", "wrap", "u160.0", "floor", "saturate"),
]


def run_tool(fmt, rounding, overflow, target, target_rounding, target_overflow, values):
    command = [TOOL, "--batch", fmt, "--round", rounding, "--overflow", overflow, "--to", target,
               "--to-round", target_rounding, "--to-overflow", target_overflow]
    text = "".join(f"{v!r}\n" for v in values.tolist())
    done = subprocess.run(command, input=text, capture_output=True, text=True, check=True)
    return list(csv.DictReader(io.StringIO(done.stdout)))


@pytest.mark.parametrize("fmt, rounding, overflow, target, target_rounding, target_overflow", FORMATS)
def test_raw_patterns_match_the_tool(fmt, rounding, overflow, target, target_rounding, target_overflow):
    rng = np.random.default_rng(12)
    values = np.concatenate([rng.normal(0, 4, 40), rng.uniform(-1e6, 1e6, 10), np.arange(-16, 17) / 4,
                             [0.0, -0.0, 1e-30, 2.0**31, -2.0**31, 1e300, np.nan, np.inf, -np.inf]])
    rows = run_tool(fmt, rounding, overflow, target, target_rounding, target_overflow, values)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", fixpt.FixedPointWarning)
        raw, saturated = fixpt.quantize(values, fmt, rounding, overflow, return_saturated=True)
    converted = fixpt.requantize(raw, fmt, target, target_rounding, target_overflow)
    assert len(rows) == len(values)
    for row, v, r, s, c in zip(rows, values, raw.tolist(), saturated.tolist(), converted.tolist()):
        assert (int(row["raw"], 16), int(row["to_raw"], 16)) == (r, c), row
        # Both give the quantiser's own flag, infinities included.
        assert row["saturated"] == ("yes" if s else "no"), row
