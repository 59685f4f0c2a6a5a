#!/usr/bin/env python3
"""Holds that C and C++ files open with a sentence of purpose, that comments begin alike, that no folders circle."""
import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
FOLDERS = ["ov_sys", "simulator", "tools", "tests", "bench", "fuzz", "examples", "packaging", "python"]
ENDINGS = {".h", ".hpp", ".c", ".cpp"}
PURPOSE = re.compile(r"(//|/\*) \S.*")
INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
LONG_MARK = re.compile(r"(^|[\s;,{}])///(?!/)")


def findings(path):
    """What is wrong with one file."""
    lines = path.read_text(encoding="utf-8").splitlines() or [""]
    if PURPOSE.match(lines[0]) is None:
        yield f"{path}:1: does not open with a sentence of purpose"
    for number, line in enumerate(lines, 1):
        if LONG_MARK.search(line):
            yield f"{path}:{number}: a comment begins with // here"


def folders_below(files):
    """What each folder includes from other folders."""
    below = {}
    for path in files:
        for included in INCLUDE.findall(path.read_text(encoding="utf-8")):
            if (SOURCE / included).exists():
                below.setdefault(path.parent, set()).add((SOURCE / included).parent)
    return {folder: others - {folder} for folder, others in below.items()}


def circles(below):
    """Folders that include each other, directly or through others."""
    def reached(folder):
        seen, ahead = set(), list(below.get(folder, ()))
        while ahead:
            other = ahead.pop()
            if other not in seen:
                seen.add(other)
                ahead += below.get(other, ())
        return seen
    for folder in sorted(below):
        if folder in reached(folder):
            yield f"{folder.relative_to(SOURCE)} includes what includes it"


def main():
    """Prints what is wrong; 1 when there is anything."""
    files = [path for folder in FOLDERS for path in sorted((SOURCE / folder).rglob("*")) if path.suffix in ENDINGS]
    wrong = [finding for path in files for finding in findings(path)]
    wrong += circles(folders_below(files))
    print("\n".join(wrong) or f"{len(files)} files open with a sentence, and comment alike; no folders circle")
    return 1 if wrong or not files else 0


if __name__ == "__main__":
    sys.exit(main())
