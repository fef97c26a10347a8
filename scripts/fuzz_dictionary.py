#!/usr/bin/env python3
"""Prints a fuzz target's dictionary: the words that the code looks for which it drives.

    scripts/fuzz_dictionary.py TARGET

They are the texts of the sources below, so that a dictionary knows a new label as soon as the code does.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# What reads the input of a target, besides the target itself. One that has none gets the target's texts.
READERS = {
    "amt": ["pqmodules/ramtinfo*", "pqmodules/ramtinfo/*"],
    "bmc": ["pqmodules/rbmcinfo*", "pqmodules/rbmcinfo/*"],
    "bmc_pieces": ["pqmodules/rbmcinfo/*"],
    "command_line": ["host/commands/*", "host/pqhost/commands/*"],
    "drive_rows": ["pqmodules/rsamplemodule2/drive_*"],
    "event_pages": ["pqmodules/rsamplemodule2/event_log*"],
    "health_files": ["host/answers/health/rule_*", "host/answers/health/health_options*"],
    "health": ["host/answers/parts/*", "host/answers/health/rules.sql"],
    "interpreter": ["host/recorded/*"],
    "lsi_parts": ["host/answers/parts/lsi*", "host/answers/parts/storcli*",
                  "host/answers/parts/condition_words*"],
    "machine_parts": ["host/answers/parts/*"],
    "module": ["pqmodules/*", "pqmodules/*/*"],
    "net_table": ["pqmodules/rwininfo/*"],
    "password": ["host/secrets/*"],
    "query": ["host/database/query_guard*", "host/database/database.cpp"],
    "raid1": ["pqmodules/rsamplemodule1*", "pqmodules/rsamplemodule1/*", "pqmodules/raid/*"],
    "raid2": ["pqmodules/rsamplemodule2*", "pqmodules/rsamplemodule2/*", "pqmodules/raid/*"],
    "recorder": ["host/recording/*"],
    "recording": ["host/recording/*"],
}
TEXT = re.compile(r'^[ \t]*#[^\n]*|//[^\n]*|"((?:\\.|[^"\\\n])*)"', re.MULTILINE)
SQL_TEXT = re.compile(r"--[^\n]*|'([^'\n]*)'")
ESCAPES = {"n": b"\n", "r": b"\r", "t": b"\t", "0": b"\0", '"': b'"', "\\": b"\\"}
LONGEST = 48  # libFuzzer takes 64 bytes


def read_bytes(text):
    def replace(found):
        return ESCAPES.get(found.group(1), b"").decode()
    return re.sub(r"\\(.)", replace, text).encode()


def list_words(target):
    words = set()
    files = [ROOT / f"fuzz/{target}_fuzz.cpp"]
    for pattern in READERS.get(target, []):
        files += [f for f in ROOT.glob(pattern) if f.suffix in (".cpp", ".h", ".sql")]
    for file in files:
        kind = SQL_TEXT if file.suffix == ".sql" else TEXT
        for found in kind.finditer(file.read_text()):
            word = read_bytes(found.group(1) or "")
            if 1 < len(word) <= LONGEST:
                words.add(word)
    return sorted(words)


def main():
    for word in list_words(sys.argv[1].removesuffix("_fuzz")):
        shown = "".join(chr(c) if 32 <= c < 127 and c not in b'"\\' else f"\\x{c:02x}" for c in word)
        print(f'"{shown}"')


if __name__ == "__main__":
    main()
