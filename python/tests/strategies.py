"""Draws for the property tests: formats weighted toward the widths where
32-bit words and 53-bit doubles change behaviour, values around each format's
range with ties, raw patterns with their extremes."""

import math

from hypothesis import strategies as st

import fixpt

BOUNDARY_WIDTHS = [1, 31, 32, 33, 53, 54, 63, 64, 65, 96, 159, 160]
widths = st.one_of(st.sampled_from(BOUNDARY_WIDTHS), st.integers(1, 160))
roundings = st.sampled_from(["floor", "nearest"])
overflows = st.sampled_from(["saturate", "wrap"])


@st.composite
def formats(draw, width=widths):
    bits = draw(width)
    fracbits = draw(st.integers(-20, 180))
    return fixpt.Format(bits - fracbits, fracbits, signed=draw(st.booleans()))


@st.composite
def values_for(draw, fmt):
    """A double whose scaled value (in units of the format's LSB) is exact,
    of about the format's magnitude, a tie every so often."""
    half = 2.0 ** (fmt.bits - 1)
    # The bounds, and the doubles just inside them, where wide wrap-around rounds.
    edges = [half, math.nextafter(half, 0), -half, -math.nextafter(half, 0), 2 * half, -2 * half - 1]
    units = math.ldexp(draw(st.integers(-(2**53) + 1, 2**53 - 1)), draw(st.integers(-58, fmt.bits - 50)))
    units = draw(st.one_of(st.just(units), st.sampled_from(edges)))
    if draw(st.booleans()) and abs(units) < 2**52:
        units = math.floor(units) + 0.5
    return math.ldexp(units, -fmt.fracbits)


@st.composite
def patterns_for(draw, fmt):
    top = (1 << fmt.bits) - 1
    return draw(st.one_of(st.sampled_from([0, 1, top, top >> 1, (top >> 1) + 1]), st.integers(0, top)))
