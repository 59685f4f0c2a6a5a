"""Holds the JSON Schema of register maps against files: check_schema.py SCHEMA ACCEPTED-FOLDER... -- REFUSED-FOLDER...

Each file beneath the first folders has to fit the schema, each beneath the last ones must not. The loader's tests hold it
against the same files. Needs Debian's python3-jsonschema.
"""
import json
import pathlib
import sys

import jsonschema


def files(folders):
    found = [file for folder in folders for file in sorted(pathlib.Path(folder).rglob("*.json"))]
    if not found:
        sys.exit(f"there are no files beneath {folders}: this check has lost its way")
    return found


def main():
    schema, *folders = sys.argv[1:]
    between = folders.index("--")
    jsonschema.Draft202012Validator.check_schema(json.loads(pathlib.Path(schema).read_text()))
    validator = jsonschema.Draft202012Validator(json.loads(pathlib.Path(schema).read_text()))
    wrong = []
    for file in files(folders[:between]):
        wrong += [f"{file}: {error.json_path}: {error.message[:200]}"
                  for error in validator.iter_errors(json.loads(file.read_text()))]
    for file in files(folders[between + 1:]):
        if validator.is_valid(json.loads(file.read_text())):
            wrong.append(f"{file}: fits the schema, which it should not")
    if wrong:
        sys.exit("\n".join(wrong))
    print(f"the schema takes and refuses {len(files(folders[:between]))} and {len(files(folders[between + 1:]))} files")


if __name__ == "__main__":
    main()
