"""Array calls in NumPy's style: arrays in, arrays of the same shape out."""

from . import _core
from ._format import as_format
from ._inputs import OVERFLOW, ROUNDING, float64_values, mode, raw_patterns, scalar_or_array


def quantize(values, fmt, rounding="nearest", overflow="saturate", return_saturated=False):
    """Quantise doubles into a format, as the firmware's double2fixed does.

    Each value is scaled by 2**fracbits in one double multiplication, rounded
    (``"nearest"``: ties toward plus infinity; ``"floor"``) and brought into
    range (``"saturate"`` to the format's bounds; ``"wrap"``: the low bits).

    Parameters
    ----------
    values : array_like of float64
        Integers convert when every one is a double exactly; other dtypes
        are refused with ``TypeError``.
    fmt : Format or str
    rounding : {"nearest", "floor"}
    overflow : {"saturate", "wrap"}
    return_saturated : bool
        Also return where the quantiser wrote a bound instead of the value.

    Returns
    -------
    raw : ndarray
        The bits-wide pattern of each value as a register holds it
        (right-aligned, two's complement for negative values): ``uint64`` up
        to 64 bits, Python ints in an object array above. Same shape as
        *values*; a scalar for a scalar.
    saturated : ndarray of bool, only with *return_saturated*

    A NaN or infinite value is reported (a ``FixedPointWarning``) and
    quantised as the library does it.
    """
    fmt = as_format(fmt)
    array = float64_values(values)
    raw, saturated = _core.quantize(array, fmt.intbits, fmt.fracbits, int(fmt.signed),
                                    mode(ROUNDING, rounding, "rounding"), mode(OVERFLOW, overflow, "overflow"))
    return _results(raw, saturated if return_saturated else None, array.ndim == 0)


def to_float(raw, fmt):
    """The doubles that raw patterns of a format stand for (fixed2double).

    Exact up to 53 bits, correctly rounded up to 64 bits; above, the words are
    summed from the lowest as the firmware does it, which may differ from the
    correctly rounded value in the last place. A pattern wider than the format
    is a ``ValueError``.
    """
    fmt = as_format(fmt)
    array = raw_patterns(raw)
    result = _core.to_float(array, fmt.intbits, fmt.fracbits, int(fmt.signed))
    return scalar_or_array(result, array.ndim == 0)


def requantize(raw, src, dst, rounding="nearest", overflow="saturate", return_saturated=False):
    """Convert raw patterns of format *src* into format *dst* (fixedformat).

    The source bits are read under the *target's* signedness, as the firmware
    reads them: a negative signed pattern converted into an unsigned format
    is the large unsigned number with the same bits (saturated or wrapped
    if it does not fit), and an unsigned pattern with its top bit set
    converted into a signed format reads as negative. Dropped low bits are
    floored or rounded half up; out-of-range values saturate or wrap.

    Returns the patterns in *dst* (as :func:`quantize` does), and with
    *return_saturated* whether each saturated.
    """
    src, dst = as_format(src), as_format(dst)
    array = raw_patterns(raw)
    converted, saturated = _core.requantize(array, src.intbits, src.fracbits, int(src.signed), dst.intbits,
                                            dst.fracbits, int(dst.signed), mode(ROUNDING, rounding, "rounding"),
                                            mode(OVERFLOW, overflow, "overflow"))
    return _results(converted, saturated if return_saturated else None, array.ndim == 0)


def _results(raw, saturated, was_scalar):
    raw = scalar_or_array(raw, was_scalar)
    if saturated is None:
        return raw
    return raw, scalar_or_array(saturated, was_scalar)
