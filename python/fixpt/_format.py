"""Fixed-point formats: integer bits, fractional bits and signedness."""

import re
from fractions import Fraction

#: Widths a value record holds.
MIN_BITS, MAX_BITS = 1, 160
#: Bound on the fractional bits (and so on every exponent): far beyond any
#: double's range, yet every exponent sum and shift of two formats stays
#: within the library's 32-bit fields.
EXPONENT_LIMIT = 2**30

_COMPACT = re.compile(r"([su])(-?\d+)\.(-?\d+)\Z")


class Format:
    """A binary fixed-point format.

    ``Format("s4.12")``, ``Format("u8.0")``, ``Format("s-2.10")`` or
    ``Format(4, 12, signed=True)``: *intbits* integer bits (the sign bit
    included for a signed format) and *fracbits* fractional bits, 1 to 160
    bits in all. Either count may be negative as long as the width is at
    least 1: ``s-2.10`` is an 8-bit signed format for values below 1/8.
    """

    __slots__ = ("intbits", "fracbits", "signed")

    def __init__(self, intbits, fracbits=None, *, signed=None):
        if isinstance(intbits, str):
            if fracbits is not None or signed is not None:
                raise TypeError("a compact format such as 's4.12' carries its own fractional bits and sign")
            intbits, fracbits, signed = _parse_compact(intbits)
        elif fracbits is None:
            raise TypeError("Format takes a compact string or intbits and fracbits")
        intbits, fracbits = _count(intbits, "intbits"), _count(fracbits, "fracbits")
        if not MIN_BITS <= intbits + fracbits <= MAX_BITS:
            raise ValueError(f"a format has {MIN_BITS} to {MAX_BITS} bits, not {intbits + fracbits}")
        if abs(fracbits) > EXPONENT_LIMIT:
            raise ValueError(f"fractional bits beyond +-2**30: {fracbits}")
        object.__setattr__(self, "intbits", intbits)
        object.__setattr__(self, "fracbits", fracbits)
        object.__setattr__(self, "signed", True if signed is None else bool(signed))

    def __setattr__(self, name, value):
        raise AttributeError("a Format is immutable")

    @property
    def bits(self):
        """Total width: integer plus fractional bits."""
        return self.intbits + self.fracbits

    @property
    def exp(self):
        """Power of two of the least significant bit."""
        return -self.fracbits

    @property
    def resolution(self):
        """Weight of the least significant bit, exactly."""
        return Fraction(2) ** self.exp

    @property
    def min(self):
        """Smallest value, exactly."""
        return -(2 ** (self.bits - 1)) * self.resolution if self.signed else Fraction(0)

    @property
    def max(self):
        """Largest value, exactly."""
        return (2 ** (self.bits - self.signed) - 1) * self.resolution

    def _key(self):
        return (self.intbits, self.fracbits, self.signed)

    def __eq__(self, other):
        return self._key() == other._key() if isinstance(other, Format) else NotImplemented

    def __hash__(self):
        return hash(self._key())

    def __str__(self):
        return f"{'s' if self.signed else 'u'}{self.intbits}.{self.fracbits}"

    def __repr__(self):
        return f"Format({str(self)!r})"


def as_format(fmt):
    """A Format, or a compact string read as one."""
    if isinstance(fmt, Format):
        return fmt
    if isinstance(fmt, str):
        return Format(fmt)
    raise TypeError(f"expected a fixpt.Format or a string such as 's4.12', not {type(fmt).__name__}")


def format_of_record(bits, exp, sign):
    """The format of a record with this width, exponent and signedness."""
    return Format(bits + exp, -exp, signed=bool(sign))


def _parse_compact(text):
    match = _COMPACT.match(text)
    if match is None:
        raise ValueError(f"not a format: {text!r} (expected a sign letter and bits, such as 's4.12' or 'u8.0')")
    return int(match[2]), int(match[3]), match[1] == "s"


def _count(number, name):
    if isinstance(number, bool) or not hasattr(number, "__index__"):
        raise TypeError(f"{name} must be an integer, not {type(number).__name__}")
    return number.__index__()
