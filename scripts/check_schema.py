"""Validates what pqhost writes as JSON against its schemas."""

import copy
import json
import pathlib
import subprocess
import sys

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parent.parent


def ask(pqhost, command, recording, codes=(0, 1)):
    """The JSON of one recording; exit code 1 only says that something is missing."""
    run = subprocess.run(
        [pqhost, command, "--replay", recording, "--format", "json"],
        capture_output=True, timeout=300)
    if run.returncode not in codes:
        sys.exit(f"{recording.name}: pqhost ended with {run.returncode}: {run.stderr.decode()}")
    return json.loads(run.stdout.decode("utf-8"))


def judge(pqhost, recording):
    """The verdict on one recording, or on a folder of them; every code says something of it."""
    return ask(pqhost, "health", recording, codes=(0, 1, 2, 3))


def without_time(health):
    """As of when is the time of the run for a machine that does not tell another."""
    return {name: value for name, value in health.items() if name != "asOf"}


def compare(pqhost, before, after):
    """The JSON of a comparison; exit code 1 says that there are differences."""
    run = subprocess.run(
        [pqhost, "diff", before, after, "--all", "--format", "json"], capture_output=True,
        timeout=300)
    if run.returncode not in (0, 1):
        sys.exit(f"{after.name}: pqhost diff ended with {run.returncode}: {run.stderr.decode()}")
    return json.loads(run.stdout.decode("utf-8"))


def change(good, what, edit):
    """What is wrong, and `good` with that."""
    bad = copy.deepcopy(good)
    edit(bad)
    return what, bad


def damaged(good):
    """Results that a careless change could write, each with what is wrong in it."""
    yield change(good, "another format", lambda c: c.update(format=2))
    yield change(good, "no machine", lambda c: c.pop("machine"))
    yield change(good, "a time with a zone", lambda c: c.update(collected="2026-11-18T09:41:07+01:00"))
    yield change(good, "a row that is a list", lambda c: c["tables"][0]["rows"].append(["a"]))
    yield change(good, "a value that is null", lambda c: c["tables"][0]["rows"].append({"item1": None}))
    yield change(good, "a column without label", lambda c: c["tables"][0]["columns"].append({"key": "a"}))
    yield change(good, "a table without class", lambda c: c["tables"][0].pop("class"))
    yield change(good, "no verdict", lambda c: c.pop("health"))
    yield change(good, "another verdict", lambda c: c["health"].update(verdict="fine"))


def damaged_check(good):
    """The same of a machine's check."""
    yield change(good, "a check of another format", lambda c: c.update(format=2))
    yield change(good, "no areas", lambda c: c.pop("areas"))
    yield change(good, "another rating", lambda c: c["areas"][0].update(rating="good"))
    yield change(good, "a tool without a path", lambda c: c["areas"][0]["tools"][0].pop("path"))
    yield change(good, "another state", lambda c: c["machine"][0].update(state="full"))


def damaged_difference(good):
    """The same of a comparison of two machines."""
    yield change(good, "a difference of another format", lambda c: c.update(format=2))
    yield change(good, "no list of parts", lambda c: c.pop("parts"))
    yield change(good, "another change", lambda c: c["parts"][0].update(change="vanished"))
    yield change(good, "a severity of no word", lambda c: c["findings"][0].update(new="bad"))
    yield change(good, "a third side", lambda c: c["notCompared"][0].update(side="both"))


def damaged_health(good):
    """The same of the verdicts on several machines."""
    def finding(health):
        return next(m for m in health["machines"] if m["health"]["findings"])["health"]["findings"][0]

    yield change(good, "verdicts without machines", lambda h: h.pop("machines"))
    yield change(good, "a machine without its verdict", lambda h: h["machines"][0].pop("health"))
    yield change(good, "a machine's other exit code", lambda h: h["machines"][0]["health"].update(exit=4))
    yield change(good, "a finding without evidence", lambda h: finding(h).update(evidence=[]))
    yield change(good, "evidence without a place", lambda h: finding(h)["evidence"][0].pop("place"))


def make_validator(name):
    schema = json.loads((ROOT / "docs" / name).read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    # Schemas refer to each other by their files' names.
    resolver = jsonschema.RefResolver((ROOT / "docs" / name).as_uri(), schema)
    return jsonschema.Draft7Validator(schema, resolver=resolver)


def list_errors(validator, value):
    return [f"{'/'.join(map(str, e.absolute_path))}: {e.message[:200]}"
            for e in validator.iter_errors(value)]


def main():
    pqhost = sys.argv[1]
    validator = make_validator("collection.schema.json")
    check_validator = make_validator("check.schema.json")
    difference_validator = make_validator("diff.schema.json")
    health_validator = make_validator("health.schema.json")
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
        check = ask(pqhost, "check", recording)
        errors = list_errors(check_validator, check)
        report(not errors, f"the check of {recording.name}: {errors[:3]}")
        collection = ask(pqhost, "collect", recording)
        errors = list_errors(validator, collection)
        report(not errors, f"{recording.name}: {errors[:3]}")
        health = judge(pqhost, recording)
        errors = list_errors(health_validator, health)
        report(not errors, f"the verdict on {recording.name}: {errors[:3]}")
        report(without_time(health) == without_time(collection["health"]),
               f"{recording.name}: the collection's verdict is another one")
        for table in collection["tables"]:
            keys = {column["key"] for column in table["columns"]}
            strays = {key for row in table["rows"] for key in row} - keys
            report(not strays, f"{recording.name}, {table['class']}: no column for {strays}")
    for after in recordings:
        difference = compare(pqhost, ROOT / "samples" / "two-socket-server", after)
        errors = list_errors(difference_validator, difference)
        report(not errors, f"the difference to {after.name}: {errors[:3]}")
    for what, bad in damaged_difference(difference):
        report(not difference_validator.is_valid(bad), f"the schema lets {what} pass")
    several = judge(pqhost, ROOT / "samples")
    errors = list_errors(health_validator, several)
    report(not errors, f"the verdicts on all samples: {errors[:3]}")
    report(len(several["machines"]) == len(recordings), "not every sample has its verdict")
    for what, bad in damaged(collection):
        report(not validator.is_valid(bad), f"the schema lets {what} pass")
    for what, bad in damaged_check(check):
        report(not check_validator.is_valid(bad), f"the schema lets {what} pass")
    for what, bad in damaged_health(several):
        report(not health_validator.is_valid(bad), f"the schema lets {what} pass")
    print(f"schema: {passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
