#!/usr/bin/env python3
"""Holds that every C and C++ file opens with a sentence of purpose, and that comments begin alike."""
import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
FOLDERS = ["ov_sys", "simulator", "tools", "tests", "bench", "fuzz", "examples", "packaging", "python"]
ENDINGS = {".h", ".hpp", ".c", ".cpp"}
PURPOSE = re.compile(r"(//|/\*) \S.*")
LONG_MARK = re.compile(r"(^|[\s;,{}])///(?!/)")


def findings(path):
    """What is wrong with one file."""
    lines = path.read_text(encoding="utf-8").splitlines() or [""]
    if PURPOSE.match(lines[0]) is None:
        yield f"{path}:1: does not open with a sentence of purpose"
    for number, line in enumerate(lines, 1):
        if LONG_MARK.search(line):
            yield f"{path}:{number}: a comment begins with // here"


def main():
    """Prints what is wrong; 1 when there is anything."""
    files = [path for folder in FOLDERS for path in sorted((SOURCE / folder).rglob("*")) if path.suffix in ENDINGS]
    wrong = [finding for path in files for finding in findings(path)]
    print("\n".join(wrong) or f"{len(files)} files open with a sentence, and comment alike")
    return 1 if wrong or not files else 0


if __name__ == "__main__":
    sys.exit(main())
