#!/usr/bin/env python3
"""Changes one line of a room of ov_sys at a time and tells which changes its tests do not notice.

The tree is copied to build/mutants and built there, so nothing that is being worked on changes. Each mutant is
compiled, the room's tests are run until one fails, and the line is put back. Known survivors, which no test can
catch, stand in tests/mutants.md with the reason. The exit status is 1 when another one survives.
"""

import argparse
import hashlib
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / "build" / "mutants"
SOURCE = WORK / "source"
BUILD = WORK / "build"
KNOWN = ROOT / "tests" / "mutants.md"


@dataclass(frozen=True)
class Mutant:
    file: str  # from the root of the tree
    line: int  # from 1
    before: str
    after: str

    def __str__(self):
        return f"{self.file}:{self.line}: {self.before.strip()}  ->  {self.after.strip() or '(nothing)'}"


# What is changed -----------------------------------------------------------------------------------------------

NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9A-Fa-f']+|\d[\d']*)(?=[uUlL]*(?![\w.']))")
SWAPS = [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "), (" == ", " != "), (" != ", " == "),
         (" && ", " || "), (" || ", " && "), (" + ", " - "), (" - ", " + "), (" & ", " | "), (" | ", " & "),
         (" true", " false"), (" false", " true"), ("(true", "(false"), ("(false", "(true")]
NOT = re.compile(r"(?<![!\w])!(?=[\w(:*])")
CALL = re.compile(r"^\s*(?!return\b|throw\b|delete\b|static_assert\b)(\+\+|--)?(::)?[A-Za-z_][\w:.\[\]>-]*\(.*\);\s*$")
ASSIGNMENT = re.compile(r"^\s*[A-Za-z_][\w.\[\]]*(->[\w.]+)* ([-+|&^]|<<|>>)?= .*;\s*$|^\s*(\+\+|--)[\w.>-]+;\s*$")
SKIPPED = re.compile(r"^\s*(#|//|static_assert|using |template|namespace |extern |friend |\}|/?\*)")


def code_of(line):
    """The line with the content of texts and comments blanked out, character by character."""
    def blank(match):
        return match.group(0)[0] + " " * (len(match.group(0)) - 2) + match.group(0)[-1]
    line = re.sub(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'', blank, line)
    return re.sub(r"//.*$", lambda match: " " * len(match.group(0)), line)


def changed_numbers(code):
    for match in NUMBER.finditer(code):
        text = match.group(1).replace("'", "")
        value = int(text, 16 if text[:2].lower() == "0x" else 10)
        form = (lambda number: f"0x{number:X}") if text[:2].lower() == "0x" else str
        halved = value >> 1 if form is not str else 0  # a mask without its highest bit
        for other in sorted({value + 1, max(value - 1, 0), halved, 0} - {value}):
            yield match.start(1), match.end(1), form(other)


def mutations(line):
    """Every line that this one can become."""
    code = code_of(line)
    if SKIPPED.match(code) or not code.strip():
        return
    for begin, end, text in changed_numbers(code):
        yield line[:begin] + text + line[end:]
    for old, new in SWAPS:
        for match in re.finditer(re.escape(old), code):
            yield line[:match.start()] + new + line[match.end():]
    for match in NOT.finditer(code):
        yield line[:match.start()] + line[match.end():]
    if CALL.match(code) or ASSIGNMENT.match(code):
        yield re.match(r"\s*", line).group(0) + ";"


def mutants_of(path):
    lines = (ROOT / path).read_text().splitlines()
    previous = ""
    for number, line in enumerate(lines, 1):
        continued = previous.rstrip()[-1:] not in ("", ";", "{", "}", ":", ")")  # a part of a longer statement
        for after in mutations(line):
            if after.strip() == ";" and continued:
                continue
            yield Mutant(path, number, line, after.rstrip() if after.strip() != ";" else after)
        previous = code_of(line)


def known_survivors():
    """The rows of tests/mutants.md: (file, line before, line after)."""
    rows = set()
    for row in KNOWN.read_text().splitlines() if KNOWN.exists() else []:
        cells = re.match(r"\| `([^`]+)` \| `(.+?)` \| `(.+?)` \| .+ \|$", row)
        if cells:
            rows.add(cells.groups())
    return rows


# How it is tried -----------------------------------------------------------------------------------------------

def folder_of(room):
    for folder in (f"ov_sys/Interface/{room}", f"ov_sys/{room}"):
        if (ROOT / folder).is_dir():
            return folder
    sys.exit(f"mutants: ov_sys has no room {room}")


def copy_tree():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.splitlines()
    wanted = {name for name in listed if (ROOT / name).is_file()}
    for stale in [path for path in SOURCE.rglob("*") if path.is_file()]:
        if str(stale.relative_to(SOURCE)) not in wanted:
            stale.unlink()
    for name in wanted:
        target = SOURCE / name
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)


def quiet(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)


class Trial:
    """Builds the copy and runs the tests of one room."""

    def __init__(self, room, jobs):
        self.jobs = jobs
        self.target = f"test_{room}"
        self.program = BUILD / "tests" / room / self.target
        self.limit = None

    def configure(self):
        step = quiet(["cmake", "-G", "Ninja", "-S", SOURCE, "-B", BUILD, "-DCMAKE_BUILD_TYPE=Debug",
                      "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DORVANE_WERROR=OFF", "-DORVANE_BUILD_TOOLS=OFF",
                      "-DORVANE_BUILD_EXAMPLES=OFF", "-DORVANE_BUILD_BENCH=OFF", "-DORVANE_BUILD_TESTS=ON"])
        if step.returncode != 0:
            sys.exit(step.stdout)

    def build(self):
        return quiet(["cmake", "--build", BUILD, "--parallel", str(self.jobs), "--target", self.target])

    def begin(self):
        """The first build, which the unchanged tree must pass."""
        built = self.build()
        if built.returncode != 0:
            sys.exit(built.stdout[-4000:])
        started = time.monotonic()
        if self.tests() != "survived":
            sys.exit("mutants: the unchanged tree does not pass its tests")
        self.limit = 60 + 8 * (time.monotonic() - started)
        return time.monotonic() - started

    def objects(self, file):
        """What was compiled from a source; None for a header."""
        found = sorted(BUILD.glob(f"ov_sys/**/{pathlib.Path(file).name}.o"))
        return hashlib.sha256(b"".join(path.read_bytes() for path in found)).digest() if found else None

    def tests(self):
        """Runs the tests in several processes, and ends them all when one has failed or the time is up: "survived",
        "caught" or "never ends"."""
        shards = 2 * self.jobs
        running = [subprocess.Popen([self.program, "--gtest_fail_fast", "--gtest_brief=1"], cwd=self.program.parent,
                                    env={**os.environ, "GTEST_TOTAL_SHARDS": str(shards),
                                         "GTEST_SHARD_INDEX": str(index)},
                                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                   for index in range(shards)]
        deadline = time.monotonic() + self.limit if self.limit else float("inf")
        try:
            while any(process.poll() is None for process in running):
                if any(process.returncode for process in running):
                    return "caught"
                if time.monotonic() > deadline:
                    return "never ends"
                time.sleep(0.05)
            return "survived" if all(process.returncode == 0 for process in running) else "caught"
        finally:
            for process in running:
                if process.poll() is None:
                    process.kill()
                process.wait()

    def outcome(self, mutant):
        """caught, never ends (which is caught, too), survived, same code, or does not compile"""
        target = SOURCE / mutant.file
        text = target.read_text()
        lines = text.splitlines(keepends=True)
        lines[mutant.line - 1] = mutant.after + "\n"
        before = self.objects(mutant.file)
        target.write_text("".join(lines))
        try:
            if self.build().returncode != 0:
                return "does not compile"
            if before and self.objects(mutant.file) == before:
                return "same code"
            return self.tests()
        finally:
            target.write_text(text)


def arguments():
    parser = argparse.ArgumentParser(prog="./check mutants", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("room", help="a folder of ov_sys or ov_sys/Interface, such as connection")
    parser.add_argument("--limit", type=int, default=20, help="how many mutants, drawn by the seed (default 20)")
    parser.add_argument("--seed", type=int, default=1, help="which mutants are drawn (default 1)")
    parser.add_argument("--file", default="", help="only of files whose path holds this")
    parser.add_argument("--match", default="", help="only of lines that hold this")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="compilers and half the tests at a time")
    parser.add_argument("--list", action="store_true", help="print the mutants instead of trying them")
    return parser.parse_args()


def chosen(options):
    folder = folder_of(options.room)
    files = sorted(str(path.relative_to(ROOT)) for path in (ROOT / folder).rglob("*") if path.suffix in (".cpp", ".h"))
    known = known_survivors()
    mutants = [mutant for file in files if options.file in file for mutant in mutants_of(file)
               if options.match in mutant.before
               and (file, mutant.before.strip(), mutant.after.strip()) not in known]
    print(f"{len(mutants)} mutants in {folder}", flush=True)
    if options.limit < len(mutants):
        mutants = random.Random(options.seed).sample(mutants, options.limit)
    return sorted(mutants, key=lambda mutant: (mutant.file, mutant.line, mutant.after))


def main():
    options = arguments()
    mutants = chosen(options)
    if options.list:
        print(*mutants, sep="\n")
        return 0
    os.nice(5)
    SOURCE.mkdir(parents=True, exist_ok=True)
    copy_tree()
    trial = Trial(options.room, options.jobs)
    trial.configure()
    print(f"the tests pass unchanged in {trial.begin():.0f} s", flush=True)
    counts = {}
    for mutant in mutants:
        outcome = trial.outcome(mutant)
        counts[outcome] = counts.get(outcome, 0) + 1
        print(f"{outcome:>16}  {mutant}", flush=True)
    print(", ".join(f"{count} {outcome}" for outcome, count in sorted(counts.items())))
    return 1 if counts.get("survived") else 0


if __name__ == "__main__":
    sys.exit(main())
