"""Holds what --json printed against the JSON Schema of records: check_records.py SCHEMA, records on standard input.

They are an array or one on each line. Prints how many fit. Needs Debian's python3-jsonschema.
"""
import json
import pathlib
import sys

import jsonschema


def records(text):
    return json.loads(text) if text.startswith("[") else [json.loads(line) for line in text.splitlines()]


def main():
    validator = jsonschema.Draft202012Validator(json.loads(pathlib.Path(sys.argv[1]).read_text()))
    found = records(sys.stdin.read())
    wrong = [f"record {place}: {error.json_path}: {error.message[:200]}"
             for place, record in enumerate(found, 1) for error in validator.iter_errors(record)]
    if wrong:
        sys.exit("\n".join(wrong))
    print(f"{len(found)} fit")


if __name__ == "__main__":
    main()
