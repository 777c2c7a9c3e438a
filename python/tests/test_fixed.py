"""fixpt.Fixed and fixpt.Format against the exact model."""

import warnings
from fractions import Fraction

import pytest
from hypothesis import given
from hypothesis import strategies as st

import exact_model as model
import fixpt
from strategies import formats, patterns_for, values_for

def quietly(call):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", fixpt.FixedPointWarning)
        return call()


@given(st.data(), formats(st.integers(1, 96)))
def test_word_pair_and_64_bit_readers_pass_through_a_double(data, fmt):
    pattern = data.draw(patterns_for(fmt)) % 2**64
    x = fixpt.Fixed.from_words(pattern >> 32, pattern & 0xFFFFFFFF, fmt)
    if fmt.bits <= 64:
        m = model.read(pattern, fmt.bits, fmt.signed)
        expected, _ = model.into_range(int(float(m)), fmt.bits, fmt.signed, wrap=False)
    else:  # the words are stored as they are, left-aligned in the record
        expected = pattern >> (-fmt.bits % 32)
    assert x.raw == expected
    through_double = model.pattern_through_double(model.read(x.raw, fmt.bits, fmt.signed), fmt.bits)
    assert quietly(lambda: (x.uint64(), x.msb(), x.lsb())) == (
        through_double, through_double >> 32, through_double & 0xFFFFFFFF)


@given(st.data(), formats(), formats(st.integers(1, 80)))
def test_arithmetic_and_comparisons_are_exact(data, fmt, other_fmt):
    a, b = (fixpt.Fixed.from_raw(data.draw(patterns_for(fmt)), fmt) for _ in range(2))
    total = a.as_fraction() + b.as_fraction()
    assert (a + b).as_fraction() == model.read(int(total / fmt.resolution) % 2**fmt.bits, fmt.bits,
                                               fmt.signed) * fmt.resolution
    assert ((a > b), (a <= b), (a == b), (a < b)) == (
        a.as_fraction() > b.as_fraction(), a.as_fraction() <= b.as_fraction(), a.raw == b.raw,
        a.as_fraction() < b.as_fraction())
    c = fixpt.Fixed.from_raw(data.draw(patterns_for(other_fmt)), other_fmt)
    if fmt.bits + other_fmt.bits <= 160:
        product = a * c
        assert product.as_fraction() == a.as_fraction() * c.as_fraction()
        assert product.format == fixpt.Format(fmt.intbits + other_fmt.intbits, fmt.fracbits + other_fmt.fracbits,
                                              signed=fmt.signed or other_fmt.signed)
    else:
        with pytest.raises(ValueError):
            a * c
    n = data.draw(st.integers(-40, 40))
    assert (a << n).raw == a.raw and (a << n).as_fraction() == a.as_fraction() * Fraction(2) ** n


@given(st.data(), formats(st.integers(1, 60)), st.booleans())
def test_range_warning_follows_the_integer_part(data, fmt, two_n):
    value = data.draw(values_for(fmt))
    max_value = "2n" if two_n else "2n-1"
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        fixpt.Fixed(value, fmt, warn=True, max_value=max_value)
    assert len(caught) == (0 if model.predecimal_sufficient(value, fmt.intbits, fmt.signed, two_n) else 1)


@given(st.data(), formats(), st.sampled_from([2, 4, 8, 16]))
def test_text_reads_back_as_the_unsigned_pattern(data, fmt, radix):
    raw = data.draw(patterns_for(fmt))
    text = fixpt.Fixed.from_raw(raw, fmt).to_string(radix=radix)
    digits, _, exponent = text.partition("*2^")
    whole, _, fraction = digits.partition(".")
    number = int(whole + fraction, radix) * Fraction(radix) ** -len(fraction)
    assert number * Fraction(2) ** int(exponent or 0) == raw * fmt.resolution


@pytest.mark.parametrize("raw, fmt, radix, align, text", [
    (0x3FF, "u2.8", 16, 1, "C.FF"), (0x3FF, "u6.4", 8, 2, "77.17"), (0x3FF, "u13.-3", 16, 2, "1.1FF*2^12"),
    (0xFF, "s4.4", 16, 0, "F.F"),   # two's complement digits, no minus sign
])
def test_documented_texts(raw, fmt, radix, align, text):
    assert fixpt.Fixed.from_raw(raw, fmt).to_string(radix, align) == text


def test_repr_reading_and_hashing():
    x = fixpt.Fixed(1.7, "s4.12")
    assert repr(x) == "Fixed(1.699951171875, s4.12, raw=0x1B33)" and x.format == fixpt.Format(4, 12)
    with pytest.raises(TypeError):
        hash(x)


@pytest.mark.parametrize("text, bits, lowest, highest", [
    ("s4.12", 16, -8, Fraction(32767, 4096)), ("u8.0", 8, 0, 255), ("s-2.10", 8, Fraction(-1, 8), Fraction(127, 1024)),
    ("u12.-4", 8, 0, 255 * 16), ("s1.0", 1, -1, 0),
])
def test_format_bounds(text, bits, lowest, highest):
    fmt = fixpt.Format(text)
    assert (fmt.bits, fmt.min, fmt.max, fmt.resolution, str(fmt)) == (bits, lowest, highest, 2 ** Fraction(fmt.exp), text)
    same = fixpt.Format(fmt.intbits, fmt.fracbits, signed=fmt.signed)
    assert same == fmt and hash(same) == hash(fmt) and same != fixpt.Format(fmt.intbits + 1, fmt.fracbits - 1)
