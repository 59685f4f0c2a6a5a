#!/usr/bin/env python3
"""Holds that every name on the pages about the code is in the tree: files, folders, and names of the code."""
import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
PAGES = [SOURCE / "docs/architecture.md", SOURCE / "docs/walks.md"]
# The folders from which the pages name files and rooms.
ROOTS = ["", "ov_sys", "ov_sys/Interface", "ov_sys/Interface/buses", "ov_sys/include", "simulator", "simulator/include",
         "tools", "tools/orvane"]
CODE = ["ov_sys", "simulator", "tools", "python", "tests/CMakeLists.txt", "packaging/debian-packages", "/usr/include/tirpc/rpc"]
FILE = re.compile(r"[\w.-]+(/[\w.-]+)*/?")
QUOTED = re.compile(r"`([^`\n]+)`")
LABEL = re.compile(r'label="\s*([^"]*)"')
FENCE = re.compile(r"^```(\w*)\n(.*?)^```", re.DOTALL | re.MULTILINE)
NAME = re.compile(r"[A-Za-z_]\w*")


def listed():
    """Files, their stems and folders, from the top of the tree."""
    found = set()
    for top in SOURCE.iterdir():
        if top.name not in {".git", "build"}:
            for path in [top, *top.rglob("*")]:
                found.update({path.relative_to(SOURCE).as_posix(), path.relative_to(SOURCE).with_suffix("").as_posix()})
    return found


def is_in_tree(name, tree):
    """Whether `name` is a file, a file's stem or a folder, from one of the roots."""
    bare = name.strip("<>").rstrip("/")
    return FILE.fullmatch(bare) is not None and any(f"{root}/{bare}".lstrip("/") in tree for root in ROOTS)


def words():
    """Every identifier in the code."""
    found = set()
    for folder in CODE:
        place = SOURCE / folder
        for file in [place] if place.is_file() else place.rglob("*"):
            if file.is_file():
                found.update(NAME.findall(file.read_text(errors="replace")))
                found.add(file.suffix)
    return found


def names(page):
    """What the page quotes, and the paths in its pictures; samples have tests of their own."""
    pictures = "\n".join(body for kind, body in FENCE.findall(page) if kind == "dot")
    paths = [word for label in LABEL.findall(pictures) for word in re.split(r"[\s,;:]|\\n", label) if "/" in word]
    return QUOTED.findall(FENCE.sub("", page)) + paths


def is_in_code(name, known):
    """Whether every identifier of `name` occurs in the code; the arguments of a call are the page's own."""
    if name in known:
        return True
    callee = NAME.findall(re.sub(r"\(.*", "", name))
    return bool(callee) and all(part in known for part in callee)


def main():
    tree, known = listed(), words()
    quoted = sorted({name for page in PAGES for name in names(page.read_text())})
    missing = [name for name in quoted
               if not is_in_tree(name, tree) and ("/" in name.strip("<>/") or not is_in_code(name, known))]
    if missing:
        sys.exit("docs/architecture.md or docs/walks.md names what is not in the tree:\n  " + "\n  ".join(missing))
    if len(quoted) < 150:
        sys.exit(f"only {len(quoted)} names found: this check has lost its way")
    print(f"all {len(quoted)} names of docs/architecture.md and docs/walks.md are in the tree")


if __name__ == "__main__":
    main()
