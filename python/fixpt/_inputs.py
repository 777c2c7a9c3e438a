"""Arguments as the compiled module takes them.

Values convert to float64 only where every element converts exactly; raw
patterns to uint64 (or Python ints above 64 bits) only where they are
non-negative integers. Everything else is refused: nothing is read as
something it is not.
"""

import numpy as np

ROUNDING = {"floor": 0, "nearest": 1}
OVERFLOW = {"saturate": 0, "wrap": 1}
MAX_VALUE = {"2n-1": 0, "2n": 1}

#: Integers up to this magnitude are doubles exactly.
_EXACT_INTEGER = 2**53


def mode(table, name, what):
    """The library's flag for a mode's name."""
    try:
        return table[name]
    except (KeyError, TypeError):
        raise ValueError(f"unknown {what} {name!r}; expected one of {', '.join(map(repr, table))}") from None


def float64_values(values):
    """values as a C-contiguous float64 array (0-d for a scalar)."""
    array = np.asarray(values)
    kind = array.dtype.kind
    if kind == "f":
        if array.dtype.itemsize > 8:
            raise TypeError(f"{array.dtype} values would lose precision as float64")
    elif kind in "iu":
        if array.size and (array.min() < -_EXACT_INTEGER or array.max() > _EXACT_INTEGER):
            raise TypeError(f"{array.dtype} values beyond 2**53 are not doubles; convert them explicitly")
    else:
        raise TypeError(f"values must be real numbers (float64), not {array.dtype}")
    return np.require(array, dtype=np.float64, requirements="C")


def raw_patterns(raw):
    """raw as C-contiguous uint64, or as a C-contiguous object array of ints."""
    array = np.asarray(raw)
    kind = array.dtype.kind
    if kind == "O":
        return np.require(array, requirements="C")
    if kind not in "iu":
        raise TypeError(f"raw patterns must be integers, not {array.dtype}")
    if kind == "i" and array.size and array.min() < 0:
        raise ValueError("raw patterns are non-negative (the format's bits as a register holds them)")
    return np.require(array, dtype=np.uint64, requirements="C")


def exact_double(value):
    """One value as a Python float, if it is one exactly."""
    converted = float64_values(value)
    if converted.ndim:
        raise TypeError("expected one number, not an array")
    return float(converted)


def scalar_or_array(array, was_scalar):
    """NumPy's convention: a scalar in, a scalar out."""
    return array[()] if was_scalar else array
