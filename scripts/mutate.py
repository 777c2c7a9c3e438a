#!/usr/bin/python3
"""Mutation score of the unit tests over the library's sources.

Applies one small fault at a time to a library source file (a relational
operator flipped, an integer constant off by one, & and | swapped, a shift
direction reversed, a condition negated, a statement deleted), rebuilds the
test executables incrementally in build-mutate (-O1), runs them (the
exhaustive tests included) and records whether the fault was killed (a test
failed, crashed or ran past the timeout), survived, or did not compile.

The sample is deterministic for a seed and spread over every file; the
results file makes a run resumable (mutants already recorded are skipped).
The source is always restored, also on Ctrl-C; a run killed harder leaves a
journal that the next start restores from.

    /usr/bin/python3 scripts/mutate.py                    # 300 mutants, seed 1
    /usr/bin/python3 scripts/mutate.py --count 400 --seed 7
    /usr/bin/python3 scripts/mutate.py --files FixedPointLibrary/src/lib_fixpoint_mult.cpp
    /usr/bin/python3 scripts/mutate.py --list              # the sample only
"""

import argparse
import glob
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.join(ROOT, "build-mutate")
JOURNAL = os.path.join(BUILD, "mutation-in-progress.json")
PRISTINE = os.path.join(BUILD, "pristine-objects")
# Fastest to fail first: the randomized and table tests, then the exhaustive
# ones, then the two small executables with replaced allocation functions.
TESTS = ["fixedpoint_tests", "fixedpoint_exhaustive_tests", "fixedpoint_malloc_failure_tests",
         "fixedpoint_allocation_tests"]
DEFAULT_FILES = (sorted(glob.glob(os.path.join(ROOT, "FixedPointLibrary/src/*.cpp")))
                 + sorted(glob.glob(os.path.join(ROOT, "FixedPointLibrary/src/*.h")))
                 + [os.path.join(ROOT, "Common/FixedPointLibrary/FixedPoint.cpp")])
MIN_PER_FILE = 6

# ---- Finding mutation points -------------------------------------------------


def code_only(text):
    """The text with comments, string and character literals and preprocessor
    lines blanked (same length, newlines kept), so that patterns match code."""
    out = list(text)
    i, n = 0, len(text)
    at_line_start = True

    def blank(a, b):
        for k in range(a, b):
            if out[k] != "\n":
                out[k] = " "

    while i < n:
        c = text[i]
        if at_line_start and c == "#":
            j = i
            while j < n and (text[j] != "\n" or text[j - 1] == "\\"):
                j += 1
            blank(i, j)
            i = j
            continue
        if c == "\n":
            at_line_start = True
            i += 1
            continue
        if not c.isspace():
            at_line_start = False
        if text.startswith("//", i):
            j = text.find("\n", i)
            j = n if j < 0 else j
            blank(i, j)
            i = j
        elif text.startswith("/*", i):
            j = text.find("*/", i + 2)
            j = n if j < 0 else j + 2
            blank(i, j)
            i = j
        elif c in "\"'":
            j = i + 1
            while j < n and text[j] != c:
                j += 2 if text[j] == "\\" else 1
            blank(i + 1, j)  # the quotes stay, so a literal is still one token
            i = j + 1
        else:
            i += 1
    return "".join(out)


SWAPS = {
    "relational": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    "and-or": {"&": "|", "|": "&", "&&": "||", "||": "&&", "&=": "|=", "|=": "&="},
    "shift": {"<<": ">>", ">>": "<<", "<<=": ">>=", ">>=": "<<="},
}
# Binary operators written with spaces on both sides (the code's style), so
# that template brackets, references and pointers never match.
OPERATOR = re.compile(r"(?<=\s)(<<=|>>=|<<|>>|<=|>=|==|!=|&&|\|\||&=|\|=|<|>|&|\|)(?=\s)")
CONSTANT = re.compile(r"(?<![\w.])(?<![eE][-+])(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)(?![\w.])")
CONDITION = re.compile(r"\b(if|while)\s*\(")
STATEMENT = re.compile(
    r"^(\s+)((?:\+\+|--)?[A-Za-z_][\w:]*(?:\[[^\]]*\])*(?:(?:->|\.)\w+(?:\[[^\]]*\])*)*"
    r"\s*(?:\(|=(?!=)|\+=|-=|\|=|&=|\^=|<<=|>>=|\+\+|--).*;)\s*$")
NOT_STATEMENTS = {"if", "for", "while", "switch", "return", "else", "case", "do", "sizeof", "const",
                  "static", "constexpr", "using", "typedef", "struct", "class", "enum", "namespace",
                  "template", "static_assert", "delete"}


def matching_paren(code, open_at):
    depth = 0
    for k in range(open_at, len(code)):
        if code[k] == "(":
            depth += 1
        elif code[k] == ")":
            depth -= 1
            if depth == 0:
                return k
    return -1


def mutation_points(text, rng):
    """Every mutant of one file: (start, end, replacement, kind)."""
    code = code_only(text)
    points = []
    for m in OPERATOR.finditer(code):
        for kind, table in SWAPS.items():
            if m.group(1) in table:
                points.append((m.start(1), m.end(1), table[m.group(1)], kind))
    for m in CONSTANT.finditer(code):
        literal = m.group(1)
        value = int(literal, 16) if literal[:2].lower() == "0x" else int(literal)
        new = value + 1 if value == 0 or rng.random() < 0.5 else value - 1
        if literal[:2].lower() == "0x":
            new_text = "0x%0*X" % (len(literal) - 2, new)
        else:
            new_text = str(new)
        points.append((m.start(1), m.end(1), new_text, "constant"))
    for m in CONDITION.finditer(code):
        open_at = m.end() - 1
        close_at = matching_paren(code, open_at)
        if close_at > open_at:
            inner = text[open_at + 1:close_at]
            points.append((open_at, close_at + 1, "(!(" + inner + "))", "negate"))
    offset = 0
    previous = ";"
    for line in code.split("\n"):
        m = STATEMENT.match(line)
        stripped = line.strip()
        first = re.match(r"[+-]*(\w+)", stripped)
        if (m and first and first.group(1) not in NOT_STATEMENTS and "{" not in line
                and previous[-1:] in ";{}):" or (m and previous.endswith("else"))):
            start = offset + len(m.group(1))
            end = offset + len(line.rstrip())
            points.append((start, end, ";", "delete"))
        if stripped:
            previous = stripped
        offset += len(line) + 1
    return sorted(points)


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def mutant_id(rel, text, point):
    start, end, replacement, kind = point
    line = line_of(text, start)
    column = start - (text.rfind("\n", 0, start) + 1) + 1
    return "%s:%d:%d:%s:%s" % (rel, line, column, kind, replacement.replace("\n", " ")[:40])


def sample(files, count, seed):
    """A deterministic sample of about `count` mutants, at least MIN_PER_FILE
    from every file (or all it has), the rest in proportion to the file's
    mutation points; grouped by file so that each rebuild touches one file."""
    rng = random.Random(seed)
    candidates = {}
    for path in files:
        with open(path, encoding="utf-8") as f:
            text = f.read()
        candidates[path] = (text, mutation_points(text, random.Random("%s:%s" % (seed, path))))
    total = sum(len(points) for _, points in candidates.values())
    chosen = []
    for path in files:
        text, points = candidates[path]
        quota = max(MIN_PER_FILE, round(count * len(points) / max(total, 1)))
        picked = sorted(rng.sample(points, min(quota, len(points))))
        rel = os.path.relpath(path, ROOT)
        chosen += [(rel, point, mutant_id(rel, text, point)) for point in picked]
    return chosen

# ---- Building and running ----------------------------------------------------


def run(cmd, timeout=None, quiet=True):
    """Exit status of cmd in its own process group; None on timeout."""
    process = subprocess.Popen(cmd, cwd=ROOT, start_new_session=True,
                               stdout=subprocess.DEVNULL if quiet else None,
                               stderr=subprocess.DEVNULL if quiet else None)
    try:
        return process.wait(timeout=timeout)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        return None
    except BaseException:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        raise


def remove_test_executables():
    """Executables are relinked only when an object changes; after restored
    objects they may still hold the last mutant, so they are never kept
    across runs."""
    for test in TESTS:
        path = os.path.join(BUILD, "tests", test)
        if os.path.exists(path):
            os.remove(path)


def configure(jobs):
    remove_test_executables()
    if not os.path.exists(os.path.join(BUILD, "CMakeCache.txt")):
        subprocess.check_call(["cmake", "-S", ROOT, "-B", BUILD, "-DCMAKE_BUILD_TYPE=None",
                               "-DCMAKE_CXX_FLAGS=-O1", "-DFIXEDPOINT_BUILD_TOOLS=OFF"],
                              stdout=subprocess.DEVNULL)
    build(jobs, quiet=False, required=True)


def build(jobs, quiet=True, required=False):
    status = run(["cmake", "--build", BUILD, "-j%d" % jobs, "--target"] + TESTS, quiet=quiet)
    if required and status != 0:
        sys.exit("mutate: the unmutated sources do not build")
    return status == 0


def object_files():
    for directory, _, names in os.walk(BUILD):
        if directory.startswith(PRISTINE):
            continue
        for name in names:
            if name.endswith(".o"):
                yield os.path.join(directory, name)


def save_pristine_objects():
    """Copies of the unmutated objects: restoring them (with their older
    timestamps) after a mutant spares the rebuild of the restored source."""
    shutil.rmtree(PRISTINE, ignore_errors=True)
    saved = {}
    for path in object_files():
        copy = os.path.join(PRISTINE, os.path.relpath(path, BUILD))
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        shutil.copy2(path, copy)
        saved[path] = (copy, os.stat(path).st_mtime_ns)
    return saved


def restore_pristine_objects(saved):
    for path, (copy, mtime) in saved.items():
        if not os.path.exists(path) or os.stat(path).st_mtime_ns != mtime:
            shutil.copy2(copy, path)


def run_tests(timeout):
    """'killed by <test>', 'timeout in <test>' or None when every test passed."""
    deadline = time.monotonic() + timeout
    for test in TESTS:
        left = deadline - time.monotonic()
        if left <= 0:
            return "timeout in " + test
        status = run([os.path.join(BUILD, "tests", test), "--gtest_fail_fast", "--gtest_brief=1"],
                     timeout=left)
        if status is None:
            return "timeout in " + test
        if status != 0:
            return "killed by " + test
    return None

# ---- Applying and restoring --------------------------------------------------


class Restorer:
    """Writes a mutant and puts the original back (content and timestamp),
    journaled so that a run killed hard is repaired by the next start."""

    def __init__(self):
        self.active = None

    def apply(self, rel, text, point):
        path = os.path.join(ROOT, rel)
        stat = os.stat(path)
        self.active = (path, text, stat.st_atime_ns, stat.st_mtime_ns)
        with open(JOURNAL, "w", encoding="utf-8") as f:
            json.dump({"path": path, "text": text, "atime": stat.st_atime_ns,
                       "mtime": stat.st_mtime_ns}, f)
        start, end, replacement, _ = point
        with open(path, "w", encoding="utf-8") as f:
            f.write(text[:start] + replacement + text[end:])

    def restore(self):
        if self.active is None:
            return
        path, text, atime, mtime = self.active
        with open(path, "w", encoding="utf-8") as f:
            f.write(text)
        os.utime(path, ns=(atime, mtime))
        self.active = None
        if os.path.exists(JOURNAL):
            os.remove(JOURNAL)

    @staticmethod
    def repair_interrupted_run():
        if not os.path.exists(JOURNAL):
            return
        with open(JOURNAL, encoding="utf-8") as f:
            journal = json.load(f)
        with open(journal["path"], "w", encoding="utf-8") as f:
            f.write(journal["text"])
        os.utime(journal["path"], ns=(journal["atime"], journal["mtime"]))
        os.remove(JOURNAL)
        print("mutate: restored %s from an interrupted run" % journal["path"])

# ---- Results -------------------------------------------------------------------


def load_results(path):
    results = {}
    if os.path.exists(path):
        with open(path, encoding="utf-8") as f:
            for line in f:
                fields = line.rstrip("\n").split("\t")
                if len(fields) >= 4 and fields[0] != "id":
                    results[fields[0]] = fields
    return results


def summarize(chosen, results):
    counts = {"killed": 0, "survived": 0, "no-compile": 0}
    per_file = {}
    survivors = []
    for rel, _, ident in chosen:
        if ident not in results:
            continue
        status = results[ident][1]
        counts[status] += 1
        per_file.setdefault(rel, {"killed": 0, "survived": 0, "no-compile": 0})[status] += 1
        if status == "survived":
            survivors.append(ident)
    for rel in sorted(per_file):
        c = per_file[rel]
        print("  %-48s killed %3d  survived %3d  did not compile %3d" % (
            rel, c["killed"], c["survived"], c["no-compile"]))
    for ident in survivors:
        print("  survived: " + ident)
    scored = counts["killed"] + counts["survived"]
    score = 100.0 * counts["killed"] / scored if scored else 0.0
    print("mutants: %d run of %d sampled; killed %d, survived %d, did not compile %d; score %.1f%%" % (
        sum(counts.values()), len(chosen), counts["killed"], counts["survived"], counts["no-compile"],
        score))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--files", nargs="+", help="library files to mutate (default: all)")
    parser.add_argument("--count", type=int, default=300, help="mutants to sample (default 300)")
    parser.add_argument("--seed", type=int, default=1, help="sampling seed (default 1)")
    parser.add_argument("--results", default=os.path.join(BUILD, "mutation-results.tsv"),
                        help="results file, appended to and resumed from")
    parser.add_argument("--timeout", type=float, default=0,
                        help="seconds per mutant's tests (default: 4 x the unmutated run + 20)")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--list", action="store_true", help="print the sample and stop")
    args = parser.parse_args()

    os.makedirs(BUILD, exist_ok=True)
    Restorer.repair_interrupted_run()
    files = [os.path.abspath(f) for f in args.files] if args.files else DEFAULT_FILES
    chosen = sample(files, args.count, args.seed)
    if args.list:
        for _, _, ident in chosen:
            print(ident)
        print("%d mutants" % len(chosen))
        return 0

    results = load_results(args.results)
    configure(args.jobs)
    started = time.monotonic()
    if run_tests(3600) is not None:
        sys.exit("mutate: the unmutated tests fail")
    baseline = time.monotonic() - started
    timeout = args.timeout or 4 * baseline + 20
    print("mutate: unmutated tests %.1f s, timeout per mutant %.0f s" % (baseline, timeout))
    pristine = save_pristine_objects()
    new_file = not os.path.exists(args.results)
    restorer = Restorer()
    # SIGTERM restores like Ctrl-C does.
    signal.signal(signal.SIGTERM, lambda *_: (_ for _ in ()).throw(KeyboardInterrupt()))
    todo = [c for c in chosen if c[2] not in results]
    print("mutate: %d mutants, %d already recorded" % (len(chosen), len(chosen) - len(todo)))
    with open(args.results, "a", encoding="utf-8") as out:
        if new_file:
            out.write("id\tstatus\tdetail\tseconds\n")
        try:
            for number, (rel, point, ident) in enumerate(todo, 1):
                with open(os.path.join(ROOT, rel), encoding="utf-8") as f:
                    text = f.read()
                begin = time.monotonic()
                restorer.apply(rel, text, point)
                try:
                    if not build(args.jobs):
                        status, detail = "no-compile", ""
                    else:
                        detail = run_tests(timeout)
                        status = "killed" if detail else "survived"
                        detail = detail or ""
                finally:
                    restorer.restore()
                    restore_pristine_objects(pristine)
                seconds = time.monotonic() - begin
                out.write("%s\t%s\t%s\t%.1f\n" % (ident, status, detail, seconds))
                out.flush()
                results[ident] = [ident, status, detail, "%.1f" % seconds]
                print("[%d/%d] %-10s %5.1f s  %s" % (number, len(todo), status, seconds, ident), flush=True)
        except KeyboardInterrupt:
            print("mutate: interrupted; sources restored, results kept in " + args.results)
            summarize(chosen, results)
            return 130
        finally:
            remove_test_executables()
    print("mutate: %.0f s in all" % (time.monotonic() - started))
    summarize(chosen, results)
    return 0


if __name__ == "__main__":
    sys.exit(main())
