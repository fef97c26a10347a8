#!/usr/bin/env python3
"""Compiles the plug-in and the host's two libraries as the production host's compiler family does.

    scripts/check_msvc.py [--update]    compares; --update writes the expected names anew

clang speaks that family's language and mangles names as it does, with Wine's headers for C library and
system, libc++ for the standard library, and the little that is lacking (tests/msvc/headers). What the
objects import from the host has to be tests/msvc/imported_names.txt, and the two libraries have to
export it. Ends with "N passed, N failed".
"""
import concurrent.futures
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys

from tally import Tally

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/msvc_check"
PRECOMPILED = BUILD / "precompiled.pch"
NAMES = ROOT / "tests/msvc/imported_names.txt"
LLVM = pathlib.Path("/usr/lib/llvm-14")
NOT_CHECKED = """Not checked: the other compiler's own standard library, in whose place libc++ stands;
linking, and so whether a library of the production host takes these objects; the rest of host/ and
fleet/, which are no part of the plug-in; frame/bound/, which only pqhost links."""

EXPORT, IMPORT = "__declspec(dllexport)", "__declspec(dllimport)"
# As CMakeLists.txt has them.
PLUGIN = {"REPOSITORY_API": IMPORT, "LOGGER_API": IMPORT, "REPOSITORY_INLINE_API": EXPORT,
          "PQMODULE_API": EXPORT}
GROUPS = {
    "plug-in": (["frame/*.cpp", "frame/windows/*.cpp", "pqmodules/*.cpp", "pqmodules/*/*.cpp"], PLUGIN),
    "repository": (["host/repository/*.cpp"],
                   {"REPOSITORY_API": EXPORT, "REPOSITORY_INLINE_API": ""}),
    "logger": (["host/logger/*.cpp"], {"LOGGER_API": EXPORT}),
}
FLAGS = [
    "--target=x86_64-pc-windows-msvc", "-std=c++20", "-O0", "-nostdinc",
    "-Wall", "-Wextra", "-Wconversion", "-Wno-sign-conversion", "-Werror",
    "-D_LIBCPP_NO_VCRUNTIME",  # its own base classes of exceptions: there are no others here
    "-DBOOST_TYPE_INDEX_FORCE_NO_RTTI_COMPATIBILITY",  # type_info::raw_name is the other library's
    "-include", "tests/msvc/headers/c_library.h", "-I.",
    *(word for folder in ("tests/msvc/headers", LLVM / "include/c++/v1",
                          LLVM / "lib/clang/14.0.6/include", "/usr/include/wine/wine/msvcrt",
                          "/usr/include/wine/wine/windows", BUILD / "headers")
      for word in ("-isystem", str(folder))),
]
# Functions of the host.
HOSTS = re.compile(r"(?:__imp_)?\?{1,2}\w+@(?:\w+@)*(?:halyard|LogKit)@@")

tally = Tally()
expect = tally.expect


def compile_file(file, group):
    defined = [f"-D{name}={value}" for name, value in GROUPS[group][1].items()]
    built = BUILD / (str(file.relative_to(ROOT)).replace("/", "_") + ".obj")
    done = subprocess.run(["clang++", *FLAGS, *defined, "-include-pch", str(PRECOMPILED), "-c",
                           "-o", str(built), str(file.relative_to(ROOT))],
                          cwd=ROOT, capture_output=True, text=True, check=False)
    expect(done.returncode == 0, f"{file.relative_to(ROOT)} does not compile:\n{done.stderr[:3000]}")
    return built if done.returncode == 0 else None


def read_symbols(objects):
    """Letter and name of each symbol."""
    listed = subprocess.run(["x86_64-w64-mingw32-nm", *map(str, objects)], capture_output=True,
                            text=True, check=True).stdout
    return set(re.findall(r"^[0-9a-f ]* ([A-Za-z]) (\S+)$", listed, re.MULTILINE))


def read_exports(objects):
    """What the objects tell the linker to export."""
    names = set()
    for built in objects:
        content = built.read_bytes()
        sections, optional = struct.unpack_from("<H12xH", content, 2)
        for number in range(sections):
            name, size, start = struct.unpack_from("<8s8x2I", content, 20 + optional + 40 * number)
            if name == b".drectve":
                orders = content[start:start + size].decode()
                names.update(re.findall(r'/EXPORT:"?([^\s",]+)', orders))
    return names


def main():
    shutil.rmtree(BUILD, ignore_errors=True)
    (BUILD / "headers").mkdir(parents=True)
    (BUILD / "headers/boost").symlink_to("/usr/include/boost")
    subprocess.run(["clang++", *FLAGS, "-x", "c++-header", "-o", str(PRECOMPILED),
                    "tests/msvc/headers/precompiled.h"], cwd=ROOT, check=True)
    jobs = [(file, group) for group, (patterns, _) in GROUPS.items()
            for pattern in patterns for file in sorted(ROOT.glob(pattern))]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        built = list(pool.map(lambda job: compile_file(*job), jobs))
    objects = {group: [o for o, (_, g) in zip(built, jobs) if o and g == group] for group in GROUPS}

    symbols, exports = read_symbols(objects["plug-in"]), read_exports(objects["plug-in"])
    expect(("T", "AddModules") in symbols and "AddModules" in exports,
           "AddModules is not exported by that name alone")
    defined = {name for letter, name in symbols if letter != "U"}
    # A table of virtual functions names a function itself, calls go through __imp_.
    imported = sorted({name.removeprefix("__imp_") for letter, name in symbols
                       if letter == "U" and HOSTS.match(name) and name not in defined})
    if "--update" in sys.argv:
        NAMES.write_text("\n".join(imported) + "\n")
    expected = NAMES.read_text().split()
    for name in sorted(set(imported) ^ set(expected)):
        expect(False, f"{name} is {'no longer' if name in expected else 'now'} imported")
    expect(imported == expected, f"{NAMES.relative_to(ROOT)} differs")
    offered = read_exports(objects["repository"] + objects["logger"])
    for name in imported:
        expect(name in offered, f"neither repository nor logger exports {name}")
    print(NOT_CHECKED)
    return tally.end()


if __name__ == "__main__":
    sys.exit(main())
