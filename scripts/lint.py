"""Runs clang-tidy on what changed since it was last clean."""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path.cwd()
BUILD = ROOT / "build" / "native"
STAMPS = ROOT / "build" / "lint"


def dependencies():
    """Source file -> the project's own files that it is compiled from."""
    listing = subprocess.run(
        ["ninja", "-C", BUILD, "-t", "deps"], capture_output=True, text=True, check=True
    ).stdout
    found = {}
    for block in listing.split("\n\n"):
        files = [(BUILD / line.strip()).resolve() for line in block.splitlines()[1:]]
        own = [f for f in files if f.is_relative_to(ROOT) and not f.is_relative_to(ROOT / "build")]
        if own:
            found[own[0]] = own
    return found


def fingerprint(files):
    digest = hashlib.sha256()
    for file in [ROOT / ".clang-tidy", ROOT / "tests" / ".clang-tidy", *sorted(set(files))]:
        digest.update(str(file.relative_to(ROOT)).encode())
        digest.update(file.read_bytes())
    return digest.hexdigest()


def tidy(source):
    run = subprocess.run(
        ["clang-tidy", "-quiet", "-p", BUILD, "--extra-arg=-Wno-unknown-warning-option", source],
        capture_output=True, text=True)
    return run.returncode == 0 and "warning:" not in run.stdout, run.stdout


def main():
    compiled = {pathlib.Path(e["file"]).resolve()
                for e in json.loads((BUILD / "compile_commands.json").read_text())}
    known = dependencies()
    STAMPS.mkdir(parents=True, exist_ok=True)
    todo = []
    clean = 0
    for source in sorted(s for s in compiled if s.is_relative_to(ROOT)):
        stamp = STAMPS / fingerprint(known.get(source, [source]))
        if stamp.exists():
            clean += 1
        else:
            todo.append((source, stamp))
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for (source, stamp), (ok, text) in zip(todo, pool.map(tidy, [s for s, _ in todo])):
            if ok:
                clean += 1
                stamp.touch()
            else:
                failed += 1
                print(text)
                print(f"lint: {source.relative_to(ROOT)}")
    print(f"lint: {clean} files clean, {failed} not")
    return 1 if failed else 0


sys.exit(main())
