"""An exact model of the library's numbers on Python ints and Fractions: doubles
read exactly, floored or rounded half up, saturated or wrapped. Where the
documented double steps depart from exact arithmetic (wrap-around above 53
bits, the sum back to a double above 64 bits) it follows those steps."""

import math
from fractions import Fraction


def value_range(bits, signed):
    return (-(1 << (bits - 1)), (1 << (bits - 1)) - 1) if signed else (0, (1 << bits) - 1)


def read(pattern, bits, signed):
    """The integer a bits-wide pattern holds."""
    return pattern - (1 << bits) if signed and pattern >> (bits - 1) else pattern


def round_exact(x, nearest):
    return math.floor(x + Fraction(1, 2)) if nearest else math.floor(x)


def into_range(m, bits, signed, wrap):
    """(pattern, saturated) of the integer m in a bits-wide format."""
    low, high = value_range(bits, signed)
    if wrap or low <= m <= high:
        return m % (1 << bits), False
    return min(max(m, low), high) % (1 << bits), True


def _wrapped_by_double_steps(m, bits):
    # q = floor(0.5 + x 2^-bits), x - q 2^bits, each a rounded double operation.
    x = float(m)
    q = float(math.floor(0.5 + math.ldexp(x, -bits)))
    return int(x - q * math.ldexp(1.0, bits))


def quantize(value, fmt, nearest, wrap):
    """(pattern, saturated) for a finite double whose scaled value is a double."""
    m = round_exact(Fraction(value) * Fraction(2) ** fmt.fracbits, nearest)
    if wrap and fmt.bits > 53:
        m = _wrapped_by_double_steps(m, fmt.bits)
    return into_range(m, fmt.bits, fmt.signed, wrap)


def requantize(pattern, src, dst, nearest, wrap):
    """The source bits read under the target's signedness, then re-rounded."""
    x = read(pattern, src.bits, dst.signed) * Fraction(2) ** (src.exp - dst.exp)
    return into_range(round_exact(x, nearest), dst.bits, dst.signed, wrap)


def _power_of_two(exp):
    return 0.0 if exp < -1074 else math.inf if exp > 1023 else math.ldexp(1.0, exp)


def _sum_of_words(pattern, bits, signed):
    # The documented sum above 64 bits: left-aligned words from the lowest
    # upward, the top word signed, every addition rounded.
    words = (pattern << (-bits % 32)).to_bytes(20, "little")
    words = [int.from_bytes(words[4 * i:4 * i + 4], "little") for i in range(-(-bits // 32))]
    total, scale, rest = 0.0, 1.0, words
    if bits % 32:
        total, scale, rest = float(words[0] >> (32 - bits % 32)), float(2 ** (bits % 32)), words[1:]
    for word in rest[:-1]:
        total += float(word) * scale
        scale *= 2.0**32
    top = rest[-1] - (1 << 32) if signed and rest[-1] >> 31 else rest[-1]
    return total + float(top) * scale


def to_float(pattern, fmt):
    m = read(pattern, fmt.bits, fmt.signed)
    mantissa = float(m) if fmt.bits <= 64 else _sum_of_words(pattern, fmt.bits, fmt.signed)
    return _power_of_two(fmt.exp) * mantissa


def pattern_through_double(m, bits):
    """The class's 64-bit reader: the mantissa as a double, floored, masked."""
    return min(int(float(m)), 2**64 - 1) % (1 << bits) if bits <= 64 else 0


def predecimal_sufficient(value, intbits, signed, two_n):
    if math.isnan(value):
        return False
    magnitude = Fraction(2) ** (intbits - signed)
    upper = magnitude if two_n else magnitude - 1
    return (-magnitude if signed else 0) <= math.floor(value) <= upper
