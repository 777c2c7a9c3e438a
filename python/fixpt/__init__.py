"""fixpt: the FixedPoint library's exact binary fixed-point numbers in Python.

The package links the firmware's own core, so a value quantised here has the
bits the instrument writes into its registers: the same rounding of ties, the
same wrap-around and saturation, the same reading of wide formats, and the
same diagnostics, as :class:`FixedPointWarning` warnings.

>>> import numpy as np, fixpt
>>> f = fixpt.Format("s4.12")
>>> fixpt.quantize(np.array([1.7, 20.0, -3.25]), f)
array([ 6963, 32767, 52224], dtype=uint64)
"""

from ._arrays import quantize, requantize, to_float
from ._fixed import Fixed
from ._format import Format
from ._warning import FixedPointWarning

__all__ = ["Format", "Fixed", "FixedPointWarning", "quantize", "requantize", "to_float"]
