#!/usr/bin/env python3
"""Turns the suite's JSON output into Markdown tables.

Case names read "operation/implementation/label"; the implementations are
"ours", "systemc", "native" and "floor". Times are CPU nanoseconds per
operation, the fastest of a case's repetitions. The floors (a do-nothing call with the record layer's by-value
signatures, one heap record allocated and released) come first, in a table
of their own; then every operation. "SystemC / ours" is how many times
faster this library is; "ours / native" how many times slower than the
hand-written int32 quantiser.
"""
import json
import sys


def widthOrder(label):
    """Labels sort by the width they start with ("16", "160->96 rounded")."""
    digits = ""
    for character in label:
        if not character.isdigit():
            break
        digits += character
    return (int(digits) if digits else 0, label)


def main(path):
    with open(path) as handle:
        report = json.load(handle)
    times = {}
    order = []
    for case in report["benchmarks"]:
        if case.get("run_type", "iteration") != "iteration":
            continue
        operation, implementation, label = case["name"].split("/")[:3]
        scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[case.get("time_unit", "ns")]
        key = (operation, label)
        if key not in times:
            times[key] = {}
            order.append(key)
        time = case["cpu_time"] * scale
        times[key][implementation] = min(time, times[key].get(implementation, time))

    def cell(value):
        return "" if value is None else f"{value:.1f}" if value >= 10 else f"{value:.2f}"

    floors = [key for key in order if "floor" in times[key]]
    if floors:
        print("| floor | ns |")
        print("|---|---:|")
        for operation, label in sorted(floors):
            print(f"| {operation} | {cell(times[(operation, label)]['floor'])} |")
        print()

    print("| operation | width | ours (ns) | SystemC (ns) | native (ns) | SystemC / ours | ours / native |")
    print("|---|---|---:|---:|---:|---:|---:|")
    operations = [key for key in order if key not in floors]
    for operation, label in sorted(operations, key=lambda k: (k[0], widthOrder(k[1]))):
        row = times[(operation, label)]
        ours, systemc, native = row.get("ours"), row.get("systemc"), row.get("native")
        speedup = f"{systemc / ours:.1f}x" if ours and systemc else ""
        overhead = f"{ours / native:.1f}x" if ours and native else ""
        print(f"| {operation} | {label} | {cell(ours)} | {cell(systemc)} | {cell(native)} "
              f"| {speedup} | {overhead} |")
    context = report.get("context", {})
    print()
    print(f"Host: {context.get('num_cpus', '?')} CPUs at {context.get('mhz_per_cpu', '?')} MHz, "
          f"{context.get('date', '')}")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "build-bench/bench.json")
