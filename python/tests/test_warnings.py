"""The library's reports as FixedPointWarning: exact texts and signatures,
counts, order, per thread, and as errors under the warning filters."""

import threading
import warnings

import numpy as np
import pytest

import fixpt

SPLIT = ("int Fixed::float2fix(double, int, long int*, int, int, int)",
         "Internal error fixpoint calculation No. 1.2. Report error to author (with parameters).")
WIDE = ("uint64_t CFixedPoint::GetValueAs_uint64_t() const", "Method is not supported for numbers with more than 64bits")
ADD = ("Fixed::fixed Fixed::fixedadd(Fixed::fixed, Fixed::fixed)",
       "C error: fixedpoint numbers with different format can't be added (fixedadd).")
GT = ("int Fixed::fixedgt(Fixed::fixed, Fixed::fixed)",
      "C error: fixedpoint numbers with different format can't be compared (fixed/gt/lt/ge/le).")
EQ = ("int Fixed::fixedeq(Fixed::fixed, Fixed::fixed)",
      "C error: fixedpoint numbers with different format can't be compared (fixedeq).")


def range_warning(intbits, value_text):
    return ("CFixedPoint::CFixedPoint(const double&, int, int, CFixedPoint::SIGN, CFixedPoint::ROUND, "
            "CFixedPoint::WRAP, bool, CFixedPoint::MAXVALUE)",
            f"Not enough predecimal bits ({intbits})  for fixed point conversion of value {value_text}. "
            "The value will be limited.")


def reports_of(call):
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        call()
    assert all(w.category is fixpt.FixedPointWarning and w.filename == __file__ for w in caught)
    return [(w.message.signature, str(w.message)) for w in caught]


a, b, unsigned_a = fixpt.Fixed(1.5, "s4.12"), fixpt.Fixed(1.5, "s4.8"), fixpt.Fixed(1.5, "u4.12")


@pytest.mark.parametrize("call, expected", [
    (lambda: fixpt.quantize([np.nan, 1.0, np.inf, -np.inf], "s4.12"), [SPLIT] * 3),
    (lambda: fixpt.quantize([[-np.inf, np.nan]], "s80.80", "floor", "wrap"), [SPLIT] * 2),
    (lambda: fixpt.quantize([-np.inf, np.inf], "u8.0", "floor", "saturate"), []),
    (lambda: fixpt.Fixed(20.0, "s4.12", warn=True), [range_warning(4, "20")]),
    (lambda: fixpt.Fixed(1234567.0, "u8.0", warn=True), [range_warning(8, "1.23457e+06")]),
    (lambda: fixpt.Fixed(np.nan, "s4.12", warn=True), [SPLIT, range_warning(4, "nan")]),
    (lambda: fixpt.Fixed(1.0, "s80.0").msb(), [WIDE]),
    (lambda: fixpt.Fixed(1.0, "s64.0").uint64(), []),
    (lambda: a + b, [ADD]),
    (lambda: (a > b, a <= b), [GT] * 2),
    (lambda: a > unsigned_a, []),   # signedness may differ for an order, not for equality
    (lambda: a == unsigned_a, [EQ]),
])
def test_reports_arrive_exactly_once_in_order(call, expected):
    assert reports_of(call) == expected


def test_error_filter_raises_after_the_call_and_leaves_nothing_behind():
    values = np.array([1.0, np.nan, 2.0, np.nan])
    with warnings.catch_warnings():
        warnings.simplefilter("error", fixpt.FixedPointWarning)
        with pytest.raises(fixpt.FixedPointWarning) as raised:
            fixpt.quantize(values, "s4.12")
        assert (raised.value.signature, str(raised.value)) == SPLIT and isinstance(raised.value, UserWarning)
        assert fixpt.quantize(values[::2], "s4.12").tolist() == [0x1000, 0x2000]   # nothing left over
    assert np.isnan(values[1])   # the input is never written


def test_threads_keep_their_own_reports():
    results = {}

    def quantize(count):
        results[count] = fixpt.quantize(np.array([np.nan] * count + [1.5] * 20000), "s4.12")

    def run_all():
        threads = [threading.Thread(target=quantize, args=(count,)) for count in (1, 2, 3, 4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    assert len(reports_of(run_all)) == 10
    assert all(results[n].tolist() == [0] * n + [0x1800] * 20000 for n in (1, 2, 3, 4))
