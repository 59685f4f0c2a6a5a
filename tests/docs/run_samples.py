#!/usr/bin/env python3
"""Runs the commands and programs that a page of the documentation shows, and compares what they print.

    run_samples.py PAGE --stage STAGE --scratch SCRATCH

STAGE is an installation (cmake --install --prefix STAGE). Every fenced sh, c, cpp, python, cmake and yaml block of the page
is treated as the HTML comment in front of it says (CONTRIBUTING.md, "Documentation"):

    (none)            sh, python: runs in a lab with two boards; c, cpp: compiles and runs there
    <!-- frame: F --> c, cpp: a fragment; it stands where tests/docs/frames/F says SAMPLE
    <!-- file: F -->  is written to the file F, for blocks that follow; so are blocks of other languages
    <!-- example: F --> is the file examples/tasks/F, which has a test of its own; it is written to a file of that name, too
    <!-- run: source --> sh: runs at the root of the source tree, outside a lab
    <!-- run: skip (why) --> is not run
    <!-- status: N --> ends with that exit status (default 0)
    <!-- prints -->   text: what the block before it printed; a line "..." stands for any lines, " ... " for any text
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import textwrap

SOURCE = pathlib.Path(__file__).resolve().parents[2]
COMMENT = re.compile(r"<!--\s*(\w+)(?::\s*(.*?))?\s*-->\s*$")
FENCE = re.compile(r"^(`{3,})(\w*)\s*$")
RUNNABLE = {"sh", "c", "cpp", "python", "cmake", "yaml"}
PYTHON = "/usr/bin/python3"  # Debian's, for which the package is built
COMPILERS = {"c": "cc -std=c99", "cpp": "c++ -std=c++17"}
WARNINGS = "-Wall -Wextra -Werror"
SECONDS = 120


class Failure(Exception):
    """A sample that does not do what the page says."""


class Block:
    """A fenced block: its language, text, first line and the marks in front of it."""

    def __init__(self, language, line, marks):
        self.language, self.line, self.marks, self.lines = language, line, marks, []

    @property
    def text(self):
        return "".join(each + "\n" for each in self.lines)


def blocks_of(page):
    """The fenced blocks of a page, with the comments that stand directly in front of them."""
    found, marks, block, fence = [], {}, None, ""
    for number, line in enumerate(page.read_text().splitlines(), 1):
        if block is not None:
            if line.strip() == fence:
                found.append(block)
                block = None
            else:
                block.lines.append(line)
        elif opening := FENCE.match(line):
            block, fence, marks = Block(opening[2], number, marks), opening[1], {}
        elif comment := COMMENT.match(line):
            marks[comment[1]] = comment[2] or ""
        elif line.strip():
            marks = {}
    if block is not None:
        raise Failure(f"{page}:{block.line}: the block does not end")
    return found


def pattern_of(shown):
    """A regular expression for shown output, in which "..." leaves something out."""
    parts = []
    for line in shown.rstrip("\n").split("\n"):
        if line.strip() == "...":
            parts.append(r"(?:.*\n)*?")
        else:
            parts.append(r".*?".join(re.escape(each.rstrip()) for each in line.split("...")) + r" *\n")
    return re.compile("".join(parts))


class Page:
    """Runs the samples of one page, in a folder of its own."""

    def __init__(self, path, stage, scratch):
        self.path, self.folder = path, scratch / path.stem
        self.printed, self.counts = None, {"run": 0, "compared": 0, "skipped": 0}
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        libraries = next(stage.rglob("liborvane.so")).parent
        packages = [str(module.parents[1]) for module in stage.rglob("orvane/_orvane.*.so")]
        self.environment = {
            **os.environ,
            "PATH": f"{stage}/bin:{os.environ['PATH']}",
            "LD_LIBRARY_PATH": str(libraries),
            "PKG_CONFIG_PATH": str(libraries / "pkgconfig"),
            "CMAKE_PREFIX_PATH": str(stage),
            "CMAKE_GENERATOR": "Ninja",
            "ORVANE_PYTHON": PYTHON,
            "PYTHONPATH": os.pathsep.join(packages),
            "LC_ALL": "C.UTF-8",
        }

    def run(self):
        for block in blocks_of(self.path):
            try:
                self.treat(block)
            except Failure as failure:
                raise Failure(f"{self.path}:{block.line}: {failure}") from None
        return self.counts

    def treat(self, block):
        if "prints" in block.marks:
            self.compare(block)
        elif block.language in RUNNABLE or "file" in block.marks:
            self.printed = None
            self.treat_sample(block)

    def treat_sample(self, block):
        marks = block.marks
        if marks.get("run", "").startswith("skip"):
            if not re.fullmatch(r"skip \(.+\)", marks["run"]):
                raise Failure("a sample is skipped without a reason")
            self.counts["skipped"] += 1
        elif "example" in marks:
            self.must_be_example(block, marks["example"])
            (self.folder / marks["example"]).write_text(block.text)
        elif "file" in marks:
            (self.folder / marks["file"]).write_text(block.text)
        elif block.language == "sh":
            self.run_shell(block)
        elif block.language in COMPILERS:
            self.run_program(block)
        elif block.language == "python":
            self.run_python(block)
        else:
            raise Failure(f"a {block.language} block says neither file nor skip")

    @staticmethod
    def must_be_example(block, name):
        tasks = SOURCE / "examples" / "tasks"
        if block.text != (tasks / name).read_text():
            raise Failure(f"the block is not the text of examples/tasks/{name}")

    def run_shell(self, block):
        script = self.folder / f"line{block.line}.sh"
        script.write_text(block.text)
        command = ["bash", "-e", str(script)]
        if block.marks.get("run") == "source":
            self.execute(block, command, SOURCE)
        else:
            self.execute(block, ["orvane-lab", "--boards", "2", "--", *command], self.folder)

    def run_python(self, block):
        script = self.folder / f"line{block.line}.py"
        script.write_text(block.text)
        self.execute(block, ["orvane-lab", "--boards", "2", "--", PYTHON, str(script)], self.folder)

    def run_program(self, block):
        text = block.text
        if "frame" in block.marks:
            frame = (SOURCE / "tests/docs/frames" / block.marks["frame"]).read_text()
            sample = textwrap.indent(text, "    ")
            text = re.sub(r"^.*\bSAMPLE\b.*\n", lambda _: sample, frame, flags=re.MULTILINE)
        source = self.folder / f"line{block.line}.{block.language}"
        source.write_text(text)
        program = source.with_suffix("")
        self.execute_or_fail(
            f"{COMPILERS[block.language]} {WARNINGS} {source} -o {program} -pthread"
            " $(pkg-config --cflags --libs orvane)")
        self.execute(block, ["orvane-lab", "--boards", "2", "--", str(program)], self.folder)

    def execute_or_fail(self, command):
        result = subprocess.run(command, shell=True, cwd=self.folder, env=self.environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=SECONDS)
        if result.returncode != 0:
            raise Failure(f"does not compile:\n{result.stdout}")

    def execute(self, block, command, folder):
        result = subprocess.run(command, cwd=folder, env=self.environment, text=True, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=SECONDS)
        expected = int(block.marks.get("status", 0))
        if result.returncode != expected:
            raise Failure(f"exit status {result.returncode} instead of {expected}:\n{result.stdout}")
        self.printed = result.stdout
        self.counts["run"] += 1

    def compare(self, block):
        if self.printed is None:
            raise Failure("there is no sample in front of this output")
        printed = "".join(line.rstrip() + "\n" for line in self.printed.splitlines())
        if not pattern_of(block.text).fullmatch(printed):
            raise Failure(f"the sample printed\n{self.printed}instead of\n{block.text}")
        self.counts["compared"] += 1


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    arguments.add_argument("page", type=pathlib.Path)
    arguments.add_argument("--stage", type=pathlib.Path, required=True)
    arguments.add_argument("--scratch", type=pathlib.Path, required=True)
    given = arguments.parse_args()
    try:
        counts = Page(given.page.resolve(), given.stage.resolve(), given.scratch.resolve()).run()
    except (Failure, subprocess.TimeoutExpired) as failure:
        sys.exit(f"{failure}")
    print(f"{given.page.name}: {counts['run']} samples run, {counts['compared']} outputs as shown,"
          f" {counts['skipped']} skipped")


if __name__ == "__main__":
    main()
