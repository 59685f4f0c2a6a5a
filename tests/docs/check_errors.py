#!/usr/bin/env python3
"""Holds that docs/errors.md names every text of the class and flat interfaces that is thrown or a diagnostic."""
import pathlib
import re
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
LITERAL = re.compile(r'"((?:[^"\\]|\\.)*)"')
# Where a literal is a text for people: these calls, and what runs on to the next lines of a statement.
CALLS = re.compile(r"Diagnostics::(error|warning|output)\(|Standard\(|failure\(|retrainFailed\(|fprintf\(stderr|fputs\(|require\("
                   r"|refuseOnSmbus\(|record\(|length_error\(|const std::string failed|return \"|kBoardAdvice = ")
TOO_SHORT = 6


def texts(file):
    """Literals of the statements that write or throw, cut at the first thing that is filled in."""
    for statement in re.split(r"[;{}]\s*\n", file.read_text()):
        if CALLS.search(statement):
            joined = re.sub(r'"\s*\n\s*"', "", statement[CALLS.search(statement).start():])
            for literal in LITERAL.findall(joined):
                text = re.split(r"(?:0x)?%|0x$|\\n", literal.removeprefix("\\n"))[0]
                if len(text.strip()) >= TOO_SHORT and not text.startswith(("ov_sys/", ",", ":")): # not in between
                    yield text


def main():
    page = (SOURCE / "docs/errors.md").read_text()
    # A map's problems name a line of the user's, a rack's failures carry their advice.
    sources = [file for folder in ("Interface", "capi", "routing") for file in (SOURCE / "ov_sys" / folder).rglob("*.cpp")]
    found = {text: file for file in sorted(sources) for text in texts(file) if file.name != "Logging.cpp"}
    missing = [f"{found[text].relative_to(SOURCE)}: {text}" for text in sorted(found) if text.strip() not in page]
    if missing:
        sys.exit("docs/errors.md does not name\n" + "\n".join(missing))
    if len(found) < 50:
        sys.exit(f"only {len(found)} texts found in the sources: this check has lost its way")
    print(f"docs/errors.md names all {len(found)} texts")


if __name__ == "__main__":
    main()
