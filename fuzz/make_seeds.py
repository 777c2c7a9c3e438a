#!/usr/bin/env python3
"""Writes the checked-in seed corpus of every fuzz target: a few dozen inputs
each, from a fixed seed so the files are reproducible. The targets decode
bytes through FuzzedDataProvider (integers taken from the end of the input,
choices from the front), so the seeds mix all-zero, all-ones, boundary
bytes (word and width edges) and random bytes at lengths that cover every
decoding path of the targets."""
import pathlib
import random
import sys

TARGETS = ["double", "format", "arith", "mult", "compare", "text"]
EDGE_BYTES = [0x00, 0x01, 0x1F, 0x20, 0x21, 0x35, 0x3F, 0x40, 0x41, 0x7F, 0x80, 0x9F, 0xA0, 0xA1, 0xFF]


def seeds(rng):
    out = [bytes(32), bytes([0xFF]) * 32, bytes(range(64))]
    while len(out) < 40:
        size = rng.choice([8, 16, 24, 32, 48, 64, 96, 128])
        if rng.random() < 0.4:
            out.append(bytes(rng.choice(EDGE_BYTES) for _ in range(size)))
        else:
            out.append(bytes(rng.getrandbits(8) for _ in range(size)))
    return out


# fixpt's target reads NUL-separated arguments, an empty one, then stdin.
FIXPT_SEEDS = [
    (["1.7", "s4.12", "--to", "u8.4"], ""),
    (["--raw", "0x1B33", "s4.12", "--radix", "2", "--align", "2"], ""),
    (["--raw", "0x8000000000000001", "u64.0", "--via-words"], ""),
    (["--raw", "--batch", "s70.10", "--to", "8,4", "--to-unsigned"],
     "0x1\n0xFFFF_FFFF_FFFF_FFFF_FFFF\n# dump\n\n0x8000\n"),
    (["--batch", "u0.48", "--strict", "--warn"], "1e300\n-nan\nInfinity\n0x1p-3\n  7.5  \n"),
    (["--info", "s-2.10"], ""),
    (["--info", "100", "60", "--unsigned"], ""),
    (["--fit", "-8.0001", "7", "--bits", "16", "--round", "floor"], ""),
    (["--fit", "0", "1", "--resolution", "1e-3", "--signed"], ""),
    (["--fit", "--batch", "--bits", "8"], "1\n-3\n2.5\n"),
    (["1", "s2147483647.1"], ""),
    (["--batch", "s4.12"], "1\n" + "0" * 1100 + "\n"),
]


def fixpt_seed(arguments, stdin):
    return b"".join(a.encode() + b"\0" for a in arguments) + b"\0" + stdin.encode()


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent / "corpus")
    for index, target in enumerate(TARGETS):
        directory = root / target
        directory.mkdir(parents=True, exist_ok=True)
        for number, data in enumerate(seeds(random.Random(20261123 + index))):
            (directory / f"seed-{number:02d}").write_bytes(data)
    directory = root / "fixpt"
    directory.mkdir(parents=True, exist_ok=True)
    for number, (arguments, stdin) in enumerate(FIXPT_SEEDS):
        (directory / f"seed-{number:02d}").write_bytes(fixpt_seed(arguments, stdin))


if __name__ == "__main__":
    main()
