"""Validates what pqhost writes as JSON against its schema."""

import copy
import json
import pathlib
import subprocess
import sys

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parent.parent


def collect(pqhost, recording, *options):
    """The JSON of one recording; exit code 1 only says that something could not be collected."""
    run = subprocess.run(
        [pqhost, "collect", "--replay", recording, "--format", "json", *options],
        capture_output=True, timeout=300)
    if run.returncode not in (0, 1):
        sys.exit(f"{recording.name}: pqhost ended with {run.returncode}: {run.stderr.decode()}")
    return json.loads(run.stdout.decode("utf-8"))


def damaged(good):
    """Results that a careless change could write, each with what is wrong in it."""
    def change(what, edit):
        bad = copy.deepcopy(good)
        edit(bad)
        return what, bad

    yield change("another format", lambda c: c.update(format=2))
    yield change("no machine", lambda c: c.pop("machine"))
    yield change("a time with a zone", lambda c: c.update(collected="2026-11-18T09:41:07+01:00"))
    yield change("a row that is a list", lambda c: c["tables"][0]["rows"].append(["a"]))
    yield change("a value that is null", lambda c: c["tables"][0]["rows"].append({"item1": None}))
    yield change("a column without label", lambda c: c["tables"][0]["columns"].append({"key": "a"}))
    yield change("a table without class", lambda c: c["tables"][0].pop("class"))


def main():
    pqhost = sys.argv[1]
    schema = json.loads((ROOT / "docs" / "collection.schema.json").read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    passed = failed = 0

    def report(ok, text):
        nonlocal passed, failed
        passed += ok
        failed += not ok
        if not ok:
            print(f"FAILED: {text}")

    recordings = sorted(p.parent for p in (ROOT / "samples").glob("*/recording.json"))
    if not recordings:
        sys.exit("no sample recordings")
    for recording in recordings:
        collection = collect(pqhost, recording)
        errors = [f"{'/'.join(map(str, e.absolute_path))}: {e.message[:200]}"
                  for e in validator.iter_errors(collection)]
        report(not errors, f"{recording.name}: {errors[:3]}")
        for table in collection["tables"]:
            keys = {column["key"] for column in table["columns"]}
            strays = {key for row in table["rows"] for key in row} - keys
            report(not strays, f"{recording.name}, {table['class']}: no column for {strays}")
    for what, bad in damaged(collection):
        report(not validator.is_valid(bad), f"the schema lets {what} pass")
    print(f"schema: {passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
