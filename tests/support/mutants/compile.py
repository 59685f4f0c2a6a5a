#!/usr/bin/env python3
"""Compiles a source of the library with all its changes in it, each to be made by its number while the tests run.

    compile.py ROOT CLANG ... -o OBJECT -c SOURCE

The compiler's output is changed between the compiler and the assembler: where the source compares two numbers, or
where a constant stands, code is put that asks orvane_mutant() which of the two ways to go. What was changed is told in
OBJECT.mutants. Of other sources only the library's headers are changed, and that only in the tests of its rooms.

Left alone is what cannot matter: the constant that an implicit comparison with zero has, a bound moved by one where
that is the same as another sign, sizes of objects, what a variable holds until a call writes over it, and what the
compiler asks itself: which exception was caught, whether a result was made in its place, where a list in braces ends.
"""

import functools
import json
import os
import re
import shutil
import subprocess
import sys
import zlib

NUMBERS = 1 << 26  # as active.cpp has it
PREDICATES = {"eq": "ne", "ne": "eq", "slt": "sle", "sle": "slt", "sgt": "sge", "sge": "sgt", "ult": "ule",
              "ule": "ult", "ugt": "uge", "uge": "ugt"}
SIGNS = {"eq": "==", "ne": "!=", "slt": "<", "sle": "<=", "sgt": ">", "sge": ">=", "ult": "<", "ule": "<=", "ugt": ">",
         "uge": ">="}

# The library's objects, and those of tests, which have what stands in the library's headers once more.
COMPILED = re.compile(r"orvane_objects\.dir/|/test_\w+\.dir/")
LOCATION = re.compile(r"!dbg !(\d+)")
COMPARISON = re.compile(r"^  (\S+) = icmp (\w+) (.*?), !dbg !\d+$")
ARITHMETIC = re.compile(r"^  \S+ = (add|sub|mul|and|or|xor|shl|lshr|ashr|udiv|sdiv(?! exact)|urem|srem|icmp \w+)"
                        r"[ a-z]*? (i\d+) (\S+), (\S+), !dbg !\d+$")
STORE = re.compile(r"^  store (i\d+) (-?\d+|true|false), \S+ (\S+), align")
RETURN = re.compile(r"^  ret (i\d+) (-?\d+|true|false), !dbg")
CALL = re.compile(r"^  (?:\S+ = )?(?:tail |musttail |notail )?(?:call|invoke) .*?@([\w.$]+|\"[^\"]+\")\((.*)\)")
ARGUMENT = re.compile(r"(i1|i8|i16|i32|i64)((?: noundef| signext| zeroext)*) (-?\d+|true|false)")
# Room for objects, what the compiler itself calls, and orders of memory: no test can tell them from stronger ones.
OF_THE_COMPILER = re.compile(r"^(llvm\.|_Zn[wa]m|_Zd[la]Pv|__cxa_|__clang|__gxx|_ZSt9terminatev)|12memory_order")
ITS_OWN = re.compile(r"^%(retval|cleanup\.|ehselector|exn|nrvo|matches|array(destroy|init)\.)")
# A list in braces: one element more would be whatever stands behind it.
LENGTH_OF_LIST = re.compile(r"^%_M_len")
# One more or less here is the same as the other sign.
SAME_AS_SIGN = {"slt": 1, "ult": 1, "sge": 1, "uge": 1, "sle": -1, "ule": -1, "sgt": -1, "ugt": -1}

META = re.compile(r"^!(\d+) = (?:distinct )?!(DILocation|DISubprogram|DILexicalBlock(?:File)?|DIFile)\((.*)\)$")


class Places:
    """Where instructions come from."""

    def __init__(self, lines, root):
        self.root = root
        self.nodes = {}
        for line in lines:
            found = META.match(line)
            if found:
                self.nodes[found.group(1)] = (found.group(2), found.group(3))

    def of(self, line):
        """(file from the root, line, column) of the library's own; None elsewhere."""
        mark = LOCATION.search(line)
        node = self.nodes.get(mark.group(1)) if mark else None
        if node is None or node[0] != "DILocation":
            return None
        values = dict(re.findall(r"(\w+): !?(\d+)", node[1]))
        if values.get("line", "0") == "0":
            return None
        file = self.file(values["scope"])
        return (file, int(values["line"]), int(values.get("column", 0))) if file else None

    def file(self, scope):
        node = self.nodes.get(scope)
        found = re.search(r"(?<!\w)file: !(\d+)", node[1]) if node else None
        node = self.nodes.get(found.group(1)) if found else None
        if node is None:
            return None
        names = dict(re.findall(r'(filename|directory): "([^"]*)"', node[1]))
        path = os.path.realpath(os.path.join(names.get("directory", ""), names["filename"]))
        inside = os.path.relpath(path, self.root)
        return inside if inside.startswith("ov_sys/") else None

    @functools.lru_cache(None)
    def source(self, file):
        with open(os.path.join(self.root, file), encoding="utf-8") as text:
            return text.read().splitlines()

    def text(self, place):
        """The line, from the place on."""
        file, line, column = place
        return self.source(file)[line - 1][column - 1:]

    def is_given(self, place):
        """Whether the statement, from the place on, has a constant; else a default argument or member is one."""
        text = " ".join(self.source(place[0])[place[1] - 1:place[1] + 7])[place[2] - 1:].split(";")[0]
        return re.search(r"'|\b(\d|k?[A-Z]|true\b|false\b)|::", re.sub(r'"(\\.|[^"\\])*"', "", text)) is not None

    def of_a_size(self, place, value):
        """Whether the line takes a size of an object that is this number."""
        line = self.source(place[0])[place[1] - 1]
        return "sizeof" in line and not re.search(rf"(?<!\w){value}(?!\w)", line)


def others(kind, value, masks=False, zero=False):
    """What a constant becomes."""
    if kind == "i1" or value in ("true", "false"):
        return ["false" if value == "true" else "true"]
    number = int(value)
    if kind == "i8" and number in (0, 1):
        return [str(1 - number)]
    changed = [number + 1, number - 1]
    if masks and number > 3:
        changed.append(number & ~(1 << (number.bit_length() - 1)))
    if zero and number > 9:
        changed.append(0)
    return [str(each) for each in dict.fromkeys(changed)]


def split(text):
    """What commas separate outside of brackets, up to the bracket that ends it all."""
    depth, begin = 0, 0
    for at, sign in enumerate(text):
        depth += {"(": 1, "[": 1, "{": 1, "<": 1, ")": -1, "]": -1, "}": -1, ">": -1}.get(sign, 0)
        if sign == "," and depth == 0:
            yield text[begin:at]
            begin = at + 2
    yield text[begin:]


class Rewriter:
    """Puts the changes into one module."""

    def __init__(self, lines, root):
        self.lines = lines
        self.places = Places(lines, root)
        self.seen = {}
        self.mutants = []
        self.names = 0

    def number(self, place, text):
        """The same in every source that includes the same line."""
        ordinal = self.seen.setdefault((self.function, place, text), 0)
        self.seen[self.function, place, text] += 1
        file, line, column = place
        number = zlib.crc32(f"{file}:{line}:{column}:{ordinal}:{text}".encode()) % NUMBERS
        self.mutants.append({"number": number, "file": file, "line": line, "column": column, "change": text})
        return number

    def asked(self, place, text):
        self.names += 1
        name = f"%mutant.{self.names}"
        self.out.append(f"  {name} = call zeroext i1 @orvane_mutant(i32 {self.number(place, text)})"
                        f"{self.debug}")
        return name

    def constant(self, place, kind, value, changed):
        """The name of what takes the constant's place."""
        name = value
        for other in changed if not self.places.of_a_size(place, value) else ():
            asked = self.asked(place, f"{value} -> {other}")
            self.names += 1
            self.out.append(f"  %other.{self.names} = select i1 {asked}, {kind} {other}, {kind} {name}{self.debug}")
            name = f"%other.{self.names}"
        return name

    def comparison(self, line, place):
        result, predicate, rest = COMPARISON.match(line).groups()
        other = PREDICATES[predicate]
        asked = self.asked(place, f"{SIGNS[predicate]} -> {SIGNS[other]}")
        self.names += 1
        left, right = f"%as.{self.names}", f"%not.{self.names}"
        self.out.append(f"  {left} = icmp {predicate} {rest}{self.debug}")
        self.out.append(f"  {right} = icmp {other} {rest}{self.debug}")
        self.out.append(f"  {result} = select i1 {asked}, i1 {right}, i1 {left}{self.debug}")

    def instruction(self, line):
        place = self.places.of(line)
        if place is None:
            return self.out.append(line)
        self.debug = ", " + LOCATION.search(line).group(0)
        found = ARITHMETIC.match(line)
        if found:
            operation, kind, first, second = found.groups()
            for operand in (first, second):
                if re.fullmatch(r"-?\d+|true|false", operand) and kind != "i1":
                    name = self.constant(place, kind, operand, self.operands(place, operation, kind, operand))
                    line = re.sub(rf"(?<=[ ]){re.escape(operand)}(?=, )", name, line, count=1) \
                        if operand == first else line.replace(f", {operand}, !dbg", f", {name}, !dbg")
        if COMPARISON.match(line) and not ITS_OWN.match(line.lstrip()):
            return self.comparison(line, place)
        found = STORE.match(line) or RETURN.match(line)
        if found and not (len(found.groups()) == 3 and self.of_no_use(found.group(3))):
            kind, value = found.groups()[:2]
            changed = others(kind, value)
            if len(found.groups()) == 3 and LENGTH_OF_LIST.match(found.group(3)):
                changed = changed[1:]
            elif len(found.groups()) == 3 and not self.places.is_given(place):
                changed = ()
            name = self.constant(place, kind, value, changed)
            line = line.replace(f" {kind} {value}", f" {kind} {name}", 1)
        found = CALL.match(line)
        if found and not OF_THE_COMPILER.search(found.group(1)):
            begin, end = found.span(2)
            line = line[:begin] + self.arguments(line[begin:end], place) + line[end:]
        self.out.append(line)

    def operands(self, place, operation, kind, value):
        """What the constant of an operation becomes."""
        if not operation.startswith("icmp "):
            return others(kind, value, masks=operation in ("and", "or"))
        if not re.match(r"[=!]=|[<>]", self.places.text(place)):
            return ()
        same = int(value) + SAME_AS_SIGN.get(operation[len("icmp "):], 0)
        return [other for other in others(kind, value) if int(other) != same]

    def of_no_use(self, variable):
        """Whether nothing reads what is stored here: a call gets the variable's address first, or nothing does."""
        if ITS_OWN.match(variable):
            return True
        name = re.compile(re.escape(variable) + r"(?![\w.])")
        uses = [line for line in self.lines[self.begin:self.lines.index("}", self.at)] if name.search(line)]
        if len(uses) == 2 and re.match(rf"  {name.pattern} = alloca ", uses[0]):
            return True
        for line in self.lines[self.at + 1:]:
            if line == "}":
                return False
            if name.search(line):
                return CALL.match(line) is not None
        return False

    def arguments(self, text, place):
        """Those of a call; what stands in brackets is the compiler's."""
        result = []
        for one in split(text):
            found = ARGUMENT.fullmatch(one)
            if found and self.places.is_given(place):
                kind, marks, value = found.groups()
                one = f"{kind}{marks} {self.constant(place, kind, value, others(kind, value, zero=True))}"
            result.append(one)
        return ", ".join(result)

    def run(self):
        self.out, self.function, inside = [], "", False
        for self.at, line in enumerate(self.lines):
            if line.startswith("define "):
                inside, self.function, self.names, self.begin = True, line, 0, self.at
            elif line == "}":
                inside = False
            if inside and "!dbg" in line and not line.startswith("define "):
                self.instruction(line)
            else:
                self.out.append(line)
        if not any(line.startswith("declare zeroext i1 @orvane_mutant(") for line in self.out):
            self.out.append("declare zeroext i1 @orvane_mutant(i32)")
        return self.out


def joined(lines):
    """One line for each instruction: an invoke has its second line, where the location stands, behind it."""
    held = None
    for line in lines:
        if held is not None:
            yield held + "\n" + line
            held = None
        elif re.match(r"^  (\S+ = )?invoke ", line):
            held = line
        else:
            yield line


def main():
    root, *command = sys.argv[1:]
    target = command[command.index("-o") + 1] if "-o" in command else ""
    if "-c" not in command or not COMPILED.search(target):
        cached = [shutil.which("ccache")] if shutil.which("ccache") else []
        return subprocess.run(cached + command, check=False).returncode
    text = target + ".ll"
    flags = ["-S", "-emit-llvm", "-gline-tables-only", "-gcolumn-info", "-fno-discard-value-names"]
    emitted = [text if word == target else word for word in command]
    done = subprocess.run(emitted[:-2] + flags + emitted[-2:], check=False)
    if done.returncode != 0:
        return done.returncode
    with open(text, encoding="utf-8") as file:
        rewriter = Rewriter(list(joined(file.read().splitlines())), os.path.realpath(root))
    with open(text, "w", encoding="utf-8") as file:
        file.write("\n".join(rewriter.run()) + "\n")
    with open(target + ".mutants", "w", encoding="utf-8") as file:
        json.dump(rewriter.mutants, file)
    done = subprocess.run([command[0], "-O0", "-fPIC", "-Wno-unused-command-line-argument", "-c", text, "-o", target],
                          check=False)
    os.unlink(text)
    return done.returncode


if __name__ == "__main__":
    sys.exit(main())
