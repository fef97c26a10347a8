#!/usr/bin/env python3
"""Prints what gcovr counted: a line for each folder, then the lines that nothing ran.

    scripts/coverage_report.py REPORT.json
"""
import collections
import json
import pathlib
import sys


def name_folder(file):
    """A room: the first folder, below host/ the second."""
    parts = pathlib.Path(file).parts
    return "/".join(parts[:2] if parts[0] == "host" else parts[:1])


def describe(name, lines, run, branches, taken):
    def percent(part, whole):
        return 100 * part / whole if whole else 100
    return (f"{name:<20} lines {percent(run, lines):5.1f} % of {lines:<6}"
            f" branches {percent(taken, branches):5.1f} % of {branches}")


def main():
    folders, missed = collections.defaultdict(lambda: [0, 0, 0, 0]), []
    for file in json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]:
        counts = folders[name_folder(file["file"])]
        open_lines = []
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            branches = [b for b in line.get("branches", []) if not b.get("throw")]
            for i, more in enumerate((1, line["count"] > 0, len(branches),
                                      sum(b["count"] > 0 for b in branches))):
                counts[i] += more
            if line["count"] == 0:
                open_lines.append(str(line["line_number"]))
        if open_lines:
            missed.append(f"{file['file']}: {', '.join(open_lines)}")
    for name, counts in sorted(folders.items()):
        print(describe(name, *counts))
    print(describe("all", *(sum(column) for column in zip(*folders.values()))))
    print("\nNot run:", *missed, sep="\n")


if __name__ == "__main__":
    main()
