#!/usr/bin/env python3
"""Changes constants, masks, bounds and comparisons of a room of ov_sys one at a time and tells which changes its tests
do not notice.

The library is built once, in build/mutants, with every change in it, each to be switched on by its number (see
tests/support/mutants). The tests run one by one first, to learn which changes each of them reaches; then those that
reach a change run with it until one fails: the room's own, and then the quickest of the other rooms. Known survivors,
which no test can catch, stand in tests/mutants.md with the reason. The exit status is 1 when another one survives, or
when no test reaches it.
"""

import argparse
import array
import concurrent.futures
import functools
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass

ROOT = pathlib.Path(__file__).resolve().parent.parent
SUPPORT = ROOT / "tests" / "support" / "mutants"
BUILD = ROOT / "build" / "mutants"
RUNTIME = BUILD / "liborvane_mutants.so"
KNOWN = ROOT / "tests" / "mutants.md"
ROOMS = ("foundation", "rpc_protocol", "discovery", "connection", "sessions", "buses", "devices", "capi", "routing",
         "rack", "maps", "names")
LONGEST = 300  # seconds that the tests of one mutant may take: many would wait for one that turns in a loop for hours
MOST_OF_OTHERS = 40  # tests of another room that one mutant is tried by: what is everywhere would take hours


@dataclass
class Mutant:
    number: int
    file: str  # from the root of the tree
    line: int  # from 1
    column: int
    change: str
    reached: bool = False

    def source(self):
        """The line without what makes no difference."""
        return (ROOT / self.file).read_text().splitlines()[self.line - 1].strip()

    def __str__(self):
        return f"{self.file}:{self.line}:{self.column}: {self.source()}   {self.change}"


@dataclass(frozen=True)
class Test:
    name: str
    seconds: float
    reached: frozenset  # numbers


def folder_of(room):
    for folder in (f"ov_sys/Interface/{room}", f"ov_sys/{room}"):
        if (ROOT / folder).is_dir():
            return folder + "/"
    sys.exit(f"mutants: ov_sys has no room {room}")


class Survivors:
    """What tests/mutants.md lists: cells of text, or patterns between slashes."""

    def __init__(self):
        self.rows = []
        for row in KNOWN.read_text().splitlines():
            cells = re.match(r"\| `([^`]+)` \| `(.+?)` \| `(.+?)` \| .+ \|$", row)
            if cells:
                self.rows.append([cell.replace("\\|", "|") for cell in cells.groups()])
        self.met = [0] * len(self.rows)

    @staticmethod
    def holds(cell, text):
        pattern = re.fullmatch("/(.+)/", cell)
        return re.search(pattern.group(1), text) is not None if pattern else cell == text

    def __contains__(self, mutant):
        for index, row in enumerate(self.rows):
            if all(map(self.holds, row, (mutant.file, mutant.source(), mutant.change))):
                self.met[index] += 1
                return True
        return False

    def stale(self, folder):
        return [row for row, met in zip(self.rows, self.met) if row[0].startswith(folder) and not met]


# The build -----------------------------------------------------------------------------------------------------

def done(command, **options):
    step = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if step.returncode != 0:
        sys.exit(step.stdout[-6000:])


def build(rooms, jobs):
    BUILD.mkdir(parents=True, exist_ok=True)
    done(["clang++", "-std=c++17", "-O2", "-fPIC", "-shared", SUPPORT / "active.cpp", "-o", RUNTIME])
    linked = f"-L{BUILD} -lorvane_mutants -Wl,-rpath,{BUILD}"
    done(["cmake", "-G", "Ninja", "-S", ROOT, "-B", BUILD / "build", "-DCMAKE_BUILD_TYPE=Debug",
          "-DCMAKE_C_COMPILER=clang", "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
          f"-DCMAKE_CXX_COMPILER_LAUNCHER={SUPPORT / 'compile.py'};{ROOT}", "-DCMAKE_UNITY_BUILD=OFF",
          f"-DCMAKE_CXX_STANDARD_LIBRARIES={linked}", "-DORVANE_WERROR=OFF", "-DORVANE_BUILD_TOOLS=OFF",
          "-DORVANE_BUILD_EXAMPLES=OFF", "-DORVANE_BUILD_BENCH=OFF", "-DORVANE_BUILD_TESTS=ON"])
    done(["cmake", "--build", BUILD / "build", "--parallel", str(jobs), "--target",
          *(f"test_{room}" for room in rooms)])


def mutants_of(folder):
    """Each once, in the order of the source."""
    found = {}
    for table in (BUILD / "build" / "ov_sys").rglob("*.mutants"):
        if table.with_suffix("").exists():
            for row in json.loads(table.read_text()):
                if row["file"].startswith(folder):
                    found[row["number"]] = Mutant(**row)
    return sorted(found.values(), key=lambda one: (one.file, one.line, one.column, one.change))


# The tests -----------------------------------------------------------------------------------------------------

class Tests:
    """Those of one room, which run one by one when they are made."""

    def __init__(self, room, jobs):
        self.program = BUILD / "build" / "tests" / room / f"test_{room}"
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            self.tests = sorted((test for test in pool.map(self.learnt, self.names()) if test),
                                key=lambda test: test.seconds)

    def run(self, names, limit, **variables):
        """passed, failed, or never ends"""
        with tempfile.TemporaryDirectory(prefix="orvane-mutants-") as scratch:
            with subprocess.Popen([self.program, "--gtest_brief=1", "--gtest_fail_fast",
                                   "--gtest_filter=" + ":".join(names)], cwd=self.program.parent,
                                  env={**os.environ, "TMPDIR": scratch, **variables}, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                  start_new_session=True) as process:
                try:
                    return "passed" if process.wait(limit) == 0 else "failed"
                except subprocess.TimeoutExpired:
                    return "never ends"
                finally:
                    try:
                        os.killpg(process.pid, signal.SIGKILL)
                    except ProcessLookupError:
                        pass

    def names(self):
        suite, names = "", []
        for line in subprocess.run([self.program, "--gtest_list_tests"], check=True, capture_output=True, text=True,
                                   cwd=self.program.parent).stdout.splitlines():
            if not line.startswith(" "):
                suite = line.split()[0]
            elif "DISABLED_" not in line:
                names.append(suite + line.split()[0])
        return names

    def learnt(self, name):
        """The test with what it reaches; None when it fails without any change."""
        with tempfile.TemporaryDirectory(prefix="orvane-mutants-") as scratch:
            record = pathlib.Path(scratch) / "reached"
            started = time.monotonic()
            if self.run([name], 600, ORVANE_MUTANTS_REACHED=str(record)) != "passed":
                print(f"mutants: left out, for it fails without any change: {name}", flush=True)
                return None
            numbers = array.array("I", record.read_bytes() if record.exists() else b"")
            return Test(name, time.monotonic() - started, frozenset(numbers))

    def outcome(self, mutant, most=None):
        """passed, failed, or never ends, by so many of the quickest tests that reach it"""
        reaching = [test for test in self.tests if mutant.number in test.reached]
        mutant.reached = mutant.reached or bool(reaching)
        for some in (reaching[:4], reaching[4:most]):
            if some:
                limit = min(20 + 10 * sum(test.seconds for test in some), LONGEST)
                outcome = self.run([test.name for test in some], limit, ORVANE_MUTANT=str(mutant.number))
                if outcome != "passed":
                    return outcome
        return "passed"


def tried(mutants, rooms, jobs):
    """Tries mutants with the tests of one room after the other; those that are left, and how many ended how."""
    counts = {}
    for room in rooms:
        if not mutants:
            break
        tests = Tests(room, jobs)
        print(f"{len(mutants)} mutants, {len(tests.tests)} tests of {room}, "
              f"{sum(test.seconds for test in tests.tests):.0f} s", flush=True)
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            outcome = functools.partial(tests.outcome, most=None if room == rooms[0] else MOST_OF_OTHERS)
            outcomes = list(pool.map(outcome, mutants))
        for end in outcomes:
            counts[end] = counts.get(end, 0) + (end != "passed")
        mutants = [mutant for mutant, end in zip(mutants, outcomes) if end == "passed"]
    return mutants, counts


def arguments():
    parser = argparse.ArgumentParser(prog="./check mutants", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("room", help="a folder of ov_sys or ov_sys/Interface, such as connection")
    parser.add_argument("--limit", type=int, help="how many mutants, drawn by the seed (default: all)")
    parser.add_argument("--seed", type=int, default=1, help="which mutants are drawn (default 1)")
    parser.add_argument("--file", default="", help="only of files whose path holds this")
    parser.add_argument("--alone", action="store_true", help="only the room's own tests")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="compilers, and half the tests, at a time")
    parser.add_argument("--list", action="store_true", help="print the mutants instead of trying them")
    return parser.parse_args()


def main():
    options = arguments()
    rooms = [options.room] if options.alone else [options.room, *(room for room in ROOMS if room != options.room)]
    build(rooms, options.jobs)
    known = Survivors()
    mutants = [one for one in mutants_of(folder_of(options.room))
               if options.file in one.file and one not in known]
    for row in known.stale(options.file or folder_of(options.room)):
        print("mutants: tests/mutants.md lists what is no change any more:", " | ".join(row))
    if options.limit is not None and options.limit < len(mutants):
        mutants = sorted(random.Random(options.seed).sample(mutants, options.limit), key=mutants.index)
    if options.list:
        print(*mutants, sep="\n")
        return 0
    left, counts = tried(mutants, rooms, 2 * options.jobs)
    for mutant in left:
        print(f"{'survived' if mutant.reached else 'not reached':>12}  {mutant}")
    print(f"{len(mutants)} mutants of {options.room}: {counts.get('failed', 0)} caught, "
          f"{counts.get('never ends', 0)} never end, {sum(one.reached for one in left)} survived, "
          f"{sum(not one.reached for one in left)} not reached")
    return 1 if left else 0


if __name__ == "__main__":
    sys.exit(main())
