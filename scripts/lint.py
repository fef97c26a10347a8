"""Runs clang-tidy on what changed since it was last clean.

Nearly all of its time goes into the libraries' headers, so it is shown what is declared outside of
them, and gets several groups of files as one: a group is what the compiler gets as one, or files of
one folder. Where that does not hold, for a warning or because two of the files use one name, they are
looked at in halves, down to groups and then single files.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

ROOT = pathlib.Path.cwd()
# What clang's build compiles for fuzzing is read as that does, and all else as the native build does.
BUILDS = {ROOT / "build" / "asan": ROOT / "fuzz", ROOT / "build" / "native": ROOT}
# Benchmarks are named as their library wants it.
LEFT_OUT = ROOT / "bench"
# Modules name things alike, and so do their tests.
APART = [ROOT / "pqmodules", ROOT / "tests" / "pqmodules"]
# Of groups as one: the larger they are, the more often two of their files use one name.
MOST_BYTES = 120_000
LINT = ROOT / "build" / "lint"
STAMPS = LINT / "clean"
CONFIGS = [ROOT / ".clang-tidy", ROOT / "tests" / ".clang-tidy"]
SCOPE_SOURCE = ROOT / "scripts" / "own_declarations.cpp"
SCOPE = LINT / "own_declarations.so"


def is_own(file):
    return file.is_relative_to(ROOT) and not file.is_relative_to(ROOT / "build")


def dependencies(build):
    """Source file -> the project's own files that it, or what is compiled with it, is made from."""
    listing = subprocess.run(
        ["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True
    ).stdout
    found = {}
    for block in listing.split("\n\n"):
        files = [(build / line.strip()).resolve() for line in block.splitlines()[1:]]
        own = [file for file in files if is_own(file)]
        for file in own:
            if file.suffix == ".cpp":
                found[file] = own
    return found


def fingerprint(files):
    digest = hashlib.sha256()
    for file in [*CONFIGS, *sorted(set(files))]:
        digest.update(str(file.relative_to(ROOT)).encode())
        digest.update(file.read_bytes())
    return digest.hexdigest()


def flags(command):
    """What matters to clang-tidy of a compiler's command: include paths, and all other settings."""
    paths, settings = [], []
    words = iter(shlex.split(command))
    for word in words:
        if word == "-isystem":
            paths.append((word, next(words)))
        elif word.startswith("-I"):
            paths.append((word,))
        # Nothing is optimised here, so the system's headers would warn that nothing is fortified.
        elif word.startswith(("-D", "-std=")) and not word.startswith("-D_FORTIFY_SOURCE"):
            settings.append(word)
    return paths, tuple(settings)


class Source:
    def __init__(self, path, entry, known):
        self.path = path
        self.paths, settings = flags(entry["command"])
        self.folder = "tests" if self.path.is_relative_to(ROOT / "tests") else "."
        self.settings = (self.folder, settings)
        compiled = pathlib.Path(entry["file"])
        self.group = compiled if is_compiled_together(compiled) else self.path.parent
        self.stamp = STAMPS / fingerprint(known.get(self.path, [self.path]))


def build_scope():
    """The library that shows clang-tidy the project's own declarations alone."""
    if SCOPE.exists() and SCOPE.stat().st_mtime >= SCOPE_SOURCE.stat().st_mtime:
        return
    settings = subprocess.run(["llvm-config-14", "--cxxflags"], capture_output=True, text=True,
                              check=True).stdout.split()
    subprocess.run(["g++", *settings, "-shared", "-fPIC", SCOPE_SOURCE, "-o", SCOPE], check=True)


def tidy(batch):
    """Whether the files are clean together, and what clang-tidy says."""
    if len(batch) == 1:
        file = batch[0].path
    else:
        # Its folder decides about the checks.
        name = hashlib.sha256("\n".join(str(s.path) for s in batch).encode()).hexdigest()[:16]
        file = LINT / batch[0].folder / f"{name}.cpp"
        # Each program has a function that the system calls, or libFuzzer.
        file.write_text("".join(
            f'#define main main{number}  // NOLINT\n'
            f'#define LLVMFuzzerTestOneInput TestOneInput{number}  // NOLINT\n'
            f'#include "{source.path}"  // NOLINT(bugprone-suspicious-include)\n'
            '#undef LLVMFuzzerTestOneInput\n'
            '#undef main\n'
            for number, source in enumerate(batch)))
    paths = dict.fromkeys(path for source in batch for path in source.paths)
    run = subprocess.run(
        ["clang-tidy", "-quiet", file, "--",
         *batch[0].settings[1], *(word for path in paths for word in path)],
        capture_output=True, text=True, env={**os.environ, "LD_PRELOAD": str(SCOPE)})
    return run.returncode == 0 and "warning:" not in run.stdout, run.stdout


def look_at(groups):
    """The files of the groups that are not clean, each with what clang-tidy says."""
    batch = [source for group in groups for source in group]
    clean, text = tidy(batch)
    if clean:
        for source in batch:
            source.stamp.touch()
        return []
    if len(batch) == 1:
        return [(batch[0].path, text)]
    parts = groups if len(groups) > 1 else [[source] for source in batch]
    middle = len(parts) // 2
    return look_at(parts[:middle]) + look_at(parts[middle:])


def count_bytes(groups):
    return sum(source.path.stat().st_size for group in groups for source in group)


def list_batches(sources):
    """Lists of groups that are looked at as one."""
    alike = {}
    for source in sources:
        # A file that two programs compile is looked at once.
        alike.setdefault((source.settings, source.group), {})[source.path] = source
    batches, open_batches = [], {}
    for (settings, _), found in alike.items():
        group = list(found.values())
        if any(group[0].path.is_relative_to(folder) for folder in APART):
            batches.append([group])
            continue
        batch = open_batches.get(settings)
        if batch is None or count_bytes([*batch, group]) > MOST_BYTES:
            batch = open_batches[settings] = []
            batches.append(batch)
        batch.append(group)
    return sorted(batches, key=count_bytes, reverse=True)


def is_compiled_together(file):
    return file.parent.name == "Unity"


def list_compiled(entry):
    """The file that is compiled, or those that are compiled together in it."""
    path = pathlib.Path(entry["file"]).resolve()
    if not is_compiled_together(path):
        return [path]
    return [pathlib.Path(name).resolve()
            for name in re.findall(r'^#include "(.+)"$', path.read_text(), re.MULTILINE)]


def list_sources(build, folder):
    """What `build` compiles of `folder`."""
    known = dependencies(build)
    compiled = json.loads((build / "compile_commands.json").read_text())
    for entry in sorted(compiled, key=lambda entry: entry["file"]):
        for path in list_compiled(entry):
            if is_own(path) and path.is_relative_to(folder) and not path.is_relative_to(LEFT_OUT):
                yield Source(path, entry, known)


def main():
    STAMPS.mkdir(parents=True, exist_ok=True)
    (LINT / "tests").mkdir(exist_ok=True)
    shutil.copy(CONFIGS[1], LINT / "tests")
    build_scope()
    sources = []
    for build, folder in BUILDS.items():
        known = {source.path for source in sources}
        sources += [source for source in list_sources(build, folder) if source.path not in known]
    todo = [source for source in sources if not source.stamp.exists()]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        dirty = [found for founds in pool.map(look_at, list_batches(todo)) for found in founds]
    for path, text in dirty:
        print(text)
        print(f"lint: {path.relative_to(ROOT)}")
    print(f"lint: {len(sources) - len(dirty)} files clean, {len(dirty)} not")
    return 1 if dirty else 0


if __name__ == "__main__":
    sys.exit(main())
