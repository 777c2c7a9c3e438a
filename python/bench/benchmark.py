#!/usr/bin/env python3
"""Throughput of fixpt.quantize, side by side with plain NumPy and a Python loop.

    PYTHONPATH=build/python /usr/bin/python3 python/bench/benchmark.py [--count N]

Prints, for s4.12, the time of quantize against the NumPy expression that
does the same arithmetic without the library's semantics (no ties toward plus
infinity from the library, no diagnostics, no wide formats), and against a
Python loop over fixpt.Fixed; then quantize at 64 and 160 bits. Each figure is
the best of several runs, all in one process.
"""

import argparse
import time

import numpy as np

import fixpt


def best_time(function, repeat):
    best = float("inf")
    for _ in range(repeat):
        start = time.perf_counter()
        function()
        best = min(best, time.perf_counter() - start)
    return best


def numpy_s4_12(x):
    return np.clip(np.floor(x * 4096 + 0.5), -32768, 32767).astype(np.int64) & 0xFFFF


def fixed_loop(values, fmt):
    return [fixpt.Fixed(v, fmt).raw for v in values]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=10**6, help="values per array call (default 10**6)")
    parser.add_argument("--loop-count", type=int, default=20000, help="values in the Python loop")
    parser.add_argument("--repeat", type=int, default=7)
    args = parser.parse_args()

    values = np.random.default_rng(1).normal(0.0, 4.0, args.count)
    s4_12 = fixpt.Format("s4.12")
    assert np.array_equal(fixpt.quantize(values, s4_12).astype(np.int64), numpy_s4_12(values))

    library = best_time(lambda: fixpt.quantize(values, s4_12), args.repeat)
    plain = best_time(lambda: numpy_s4_12(values), args.repeat)
    loop_values = values[: args.loop_count].tolist()
    loop = best_time(lambda: fixed_loop(loop_values, s4_12), max(1, args.repeat // 3)) / len(loop_values)

    per_value = library / args.count
    print(f"{'case':<34}{'ns/value':>10}{'Mvalues/s':>11}")
    rows = [("fixpt.quantize s4.12", per_value), ("NumPy expression s4.12", plain / args.count),
            ("Python loop over fixpt.Fixed s4.12", loop)]
    for name in ("s32.32", "s80.80"):
        rows.append((f"fixpt.quantize {name}", best_time(lambda: fixpt.quantize(values, name), 3) / args.count))
    for name, seconds in rows:
        print(f"{name:<34}{seconds * 1e9:>10.1f}{1e-6 / seconds:>11.1f}")
    print(f"quantize / NumPy expression: {library / plain:.2f}x the time (goal: within 2x)")
    print(f"Python loop / quantize: {loop / per_value:.0f}x the time (goal: at least 50x)")


if __name__ == "__main__":
    main()
