"""One fixed-point value with the semantics of the firmware's CFixedPoint."""

import operator
from fractions import Fraction

from . import _core
from ._format import EXPONENT_LIMIT, Format, as_format, format_of_record
from ._inputs import MAX_VALUE, OVERFLOW, ROUNDING, exact_double, mode

#: Digit widths of the text routines, by radix.
_DIGIT_BITS = {2: 1, 4: 2, 8: 3, 16: 4}
_WORD = 2**32


class Fixed:
    """One value of a format, held by the library's class CFixedPoint.

    ``Fixed(1.7, "s4.12")`` quantises a double (``rounding``, ``overflow``;
    with ``warn=True`` the class reports an integer part outside the format,
    the range chosen by ``max_value``: ``"2n-1"`` or ``"2n"``). The other
    constructors are :meth:`from_raw`, :meth:`from_words` and :meth:`to`.

    Values are immutable: ``x += y`` binds a new value, the sum the class's
    ``operator+=`` computes. ``==`` is the library's comparison of the
    mantissa words, which need not follow the values across formats, so a
    Fixed is not hashable.
    """

    __slots__ = ("_value",)
    __hash__ = None

    def __init__(self, value, fmt, rounding="nearest", overflow="saturate", warn=False, max_value="2n-1"):
        fmt = as_format(fmt)
        self._value = _core.Value.from_double(exact_double(value), fmt.intbits, fmt.fracbits, int(fmt.signed),
                                              mode(ROUNDING, rounding, "rounding"),
                                              mode(OVERFLOW, overflow, "overflow"), bool(warn),
                                              mode(MAX_VALUE, max_value, "max_value"))

    @classmethod
    def _wrap(cls, value):
        fixed = cls.__new__(cls)
        fixed._value = value
        return fixed

    @classmethod
    def from_raw(cls, raw, fmt):
        """The value whose pattern (right-aligned, any width) is *raw*, exactly."""
        fmt = as_format(fmt)
        return cls._wrap(_core.Value.from_pattern(_pattern(raw), fmt.intbits, fmt.fracbits, int(fmt.signed)))

    @classmethod
    def from_words(cls, msb, lsb, fmt):
        """The class's constructor from a high and a low 32-bit word.

        Up to 64 bits the pattern passes through a double, as the firmware's
        does (above 53 bits only 53 significant bits survive; an unsigned
        pattern with bits above the width saturates). Above 64 bits the two
        words are stored as they are, *lsb* in the lowest word.
        """
        fmt = as_format(fmt)
        msb, lsb = _word(msb, "msb"), _word(lsb, "lsb")
        return cls._wrap(_core.Value.from_words(msb, lsb, fmt.intbits, fmt.fracbits, int(fmt.signed)))

    def to(self, fmt, rounding="nearest", overflow="saturate"):
        """This value re-quantised into *fmt*; the bits are read under *fmt*'s signedness."""
        fmt = as_format(fmt)
        return Fixed._wrap(self._value.reformat(fmt.intbits, fmt.fracbits, int(fmt.signed),
                                                mode(ROUNDING, rounding, "rounding"),
                                                mode(OVERFLOW, overflow, "overflow")))

    @property
    def format(self):
        value = self._value
        return format_of_record(value.bits, value.exp, value.sign)

    @property
    def raw(self):
        """The mantissa's pattern, right-aligned, exactly, at any width."""
        return self._value.pattern()

    def uint64(self):
        """The class's GetValueAs_uint64_t: through a double; above 64 bits reported and 0."""
        return self._value.uint64()

    def msb(self):
        """Bits 32 to 63 of :meth:`uint64` (the class's MSB)."""
        return self._value.msb()

    def lsb(self):
        """Bits 0 to 31 of :meth:`uint64` (the class's LSB)."""
        return self._value.lsb()

    def as_fraction(self):
        """The value, exactly."""
        fmt, raw = self.format, self.raw
        if fmt.signed and raw >> (fmt.bits - 1):
            raw -= 1 << fmt.bits
        return raw * fmt.resolution

    def to_string(self, radix=16, align=0):
        """The library's text in radix 2, 4, 8 or 16 (positional, or scientific with ``*2^``).

        Negative values show their two's complement digits. *align* groups
        the digits: 0 from the radix point, 1 integer digits from their top
        bit, 2 each part from its lowest bit.
        """
        if radix not in _DIGIT_BITS:
            raise ValueError(f"radix must be 2, 4, 8 or 16, not {radix!r}")
        return self._value.text(_DIGIT_BITS[radix], operator.index(align))

    def __float__(self):
        return self._value.to_float()

    def __lshift__(self, n):
        """The same mantissa with the exponent raised by *n*: the value times 2**n."""
        n = operator.index(n)
        if abs(self._value.exp + n) > EXPONENT_LIMIT:
            raise ValueError(f"shifting by {n} leaves the exponents a format may have")
        return Fixed._wrap(self._value.shift(n))

    def __add__(self, other):
        """The sum in this value's format, wrapping at its width (a different format is reported)."""
        if not isinstance(other, Fixed):
            return NotImplemented
        return Fixed._wrap(self._value.add(other._value))

    def __mul__(self, other):
        """The exact product: widths and exponents add, signed if either factor is."""
        if not isinstance(other, Fixed):
            return NotImplemented
        a, b = self._value, other._value
        Format(a.bits + b.bits + a.exp + b.exp, -(a.exp + b.exp))  # the product's format must exist
        return Fixed._wrap(a.multiply(b))

    def __gt__(self, other):
        return self._value.greater(other._value) if isinstance(other, Fixed) else NotImplemented

    def __le__(self, other):
        return self._value.less_equal(other._value) if isinstance(other, Fixed) else NotImplemented

    def __eq__(self, other):
        return self._value.equal(other._value) if isinstance(other, Fixed) else NotImplemented

    def __repr__(self):
        return f"Fixed({float(self)!r}, {self.format}, raw=0x{self.raw:X})"


def _pattern(raw):
    if isinstance(raw, bool) or not hasattr(raw, "__index__"):
        raise TypeError(f"a raw pattern is an integer, not {type(raw).__name__}")
    return operator.index(raw)


def _word(word, name):
    word = _pattern(word)
    if not 0 <= word < _WORD:
        raise ValueError(f"{name} is a 32-bit word, not {word:#x}")
    return word
