#!/usr/bin/env python3
"""Fails on a shipped program or library that lacks one of the guards of cmake/Hardening.cmake.

    scripts/check_binaries.py NATIVE_BUILD WINDOWS_BUILD

What shows in a file is read from it, the rest from the commands that compiled it. Ends with
"N passed, N failed".
"""

import json
import pathlib
import re
import shlex
import struct
import subprocess
import sys

from tally import Tally

ROOT = pathlib.Path(__file__).resolve().parent.parent
ELF_FILES = ("pqhost", "pqfleet", "repository.so", "logger.so")
PE_FILES = ("pqhost.exe", "repository_pqmodule.dll", "repository.dll", "logger.dll")

FLAGS = ("-fstack-protector-strong", "-fcf-protection", "-ftrivial-auto-var-init=zero",
         "-D_FORTIFY_SOURCE=3", "-D_GLIBCXX_ASSERTIONS")
NATIVE_FLAGS = ("-fstack-clash-protection",)
# Without optimisation, _FORTIFY_SOURCE does nothing.
OPTIMISED = {"-O2", "-O3"}
UNDONE = re.compile(r"-O(?![23]$)|-fno-stack-|-fcf-protection=|-ftrivial-auto-var-init=(?!zero$)"
                    r"|-[DU]_FORTIFY_SOURCE|-U_GLIBCXX_ASSERTIONS")
NOT_SHIPPED = ("tests", "fuzz", "bench")

HIGH_ENTROPY, DYNAMIC_BASE, NX_COMPATIBLE = 0x20, 0x40, 0x100
RELOCATIONS_STRIPPED = 0x1
EXPORTS, IMPORTS, RESOURCES = 0, 1, 2
VERSION_RESOURCE, MANIFEST = 16, 24
# Windows takes these from its own folder, never from the program's.
KNOWN_LIBRARIES = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "shell32.dll"}
# They come along.
OWN_LIBRARIES = {"repository.dll", "logger.dll", "libgcc_s_seh-1.dll", "libstdc++-6.dll",
                 "libwinpthread-1.dll"}

tally = Tally()
expect = tally.expect


def check_commands(build, flags):
    """The flags of everything that is compiled into what is shipped."""
    units = 0
    for entry in json.loads((build / "compile_commands.json").read_text()):
        words = shlex.split(entry["command"])
        file = pathlib.Path(entry["file"])
        base = build if file.is_relative_to(build) else ROOT
        folder = file.relative_to(base).parts[0] if file.is_relative_to(base) else ""
        if folder in NOT_SHIPPED or "googletest" in file.parts or file.suffix == ".rc":
            continue
        units += 1
        missing = [flag for flag in flags if flag not in words]
        if not OPTIMISED.intersection(words):
            missing.append("-O2")
        fortified = words.index("-D_FORTIFY_SOURCE=3") if "-D_FORTIFY_SOURCE=3" in words else 0
        undone = [word for at, word in enumerate(words) if UNDONE.match(word) and
                  (at > fortified or "FORTIFY" not in word)]
        expect(not missing and not undone,
               f"{build.name}: {file.name} is compiled without {missing}, or with {undone}")
    expect(units > 40, f"{build.name}: only {units} units are compiled into what is shipped")


def read_elf(*options):
    return subprocess.run(["readelf", "-W", *options], check=True, capture_output=True,
                          text=True).stdout


def check_elf(file):
    name = file.name
    header = read_elf("-h", file)
    segments = read_elf("-l", file)
    dynamic = read_elf("-d", file)
    symbols = read_elf("--dyn-syms", file)
    expect(re.search(r"Type:\s+DYN", header), f"{name} has a fixed address")
    if "." not in name:
        expect(re.search(r"FLAGS_1.*\bPIE\b", dynamic), f"{name} is no PIE")
    expect("GNU_RELRO" in segments, f"{name} has no RELRO")
    expect(re.search(r"\bBIND_NOW\b", dynamic), f"{name} is not bound at its start")
    stack = re.search(r"GNU_STACK.*?\s(R\S*)\s+0x\S+$", segments, re.MULTILINE)
    expect(stack and "E" not in stack[1], f"{name} can execute its stack")
    expect(not re.search(r"LOAD.*\sRWE\s", segments), f"{name} can execute what it can write")
    expect("__stack_chk_fail" in symbols, f"{name} does not look after its stack")
    if "." not in name:
        expect(re.search(r"\b__\w+_chk\b", symbols), f"{name} measures no buffers")
    paths = re.findall(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", dynamic)
    expect(all(path == "$ORIGIN" for path in paths), f"{name} looks for libraries in {paths}")


class PortableExecutable:
    """The little of a PE32+ file that is looked at here."""

    def __init__(self, path):
        self.bytes = path.read_bytes()
        header = self.number(0x3C, "I") + 4
        sections, self.time_stamp = self.number(header + 2, "H"), self.number(header + 4, "I")
        self.characteristics = self.number(header + 18, "H")
        optional = header + 20
        self.magic = self.number(optional, "H")
        self.guards = self.number(optional + 70, "H")
        count = self.number(optional + 108, "I")
        self.directories = [self.number(optional + 112 + 8 * i, "I") for i in range(count)]
        table = optional + self.number(header + 16, "H")
        self.sections = [struct.unpack_from("<4I", self.bytes, table + 40 * i + 8)
                         for i in range(sections)]

    def number(self, at, kind):
        return struct.unpack_from("<" + kind, self.bytes, at)[0]

    def offset(self, address):
        for size, start, stored, at in self.sections:
            if start <= address < start + max(size, stored):
                return address - start + at
        raise ValueError(f"nothing is at {address:#x}")

    def text(self, address):
        at = self.offset(address)
        return self.bytes[at:self.bytes.index(0, at)].decode("ascii")

    def export_time_stamp(self):
        address = self.directories[EXPORTS]
        return self.number(self.offset(address) + 4, "I") if address else 0

    def imported_libraries(self):
        at = self.offset(self.directories[IMPORTS])
        names = []
        while self.number(at + 12, "I"):
            names.append(self.text(self.number(at + 12, "I")).lower())
            at += 20
        return names

    def resources(self):
        """Type -> the bytes of its resources."""
        found = {}
        if not self.directories[RESOURCES]:
            return found
        base = self.offset(self.directories[RESOURCES])

        def walk(at, kind):
            count = self.number(at + 12, "H") + self.number(at + 14, "H")
            for entry in range(at + 16, at + 16 + 8 * count, 8):
                name, target = self.number(entry, "I"), self.number(entry + 4, "I")
                if target & 0x80000000:
                    walk(base + (target & 0x7FFFFFFF), name if kind is None else kind)
                else:
                    data = self.offset(self.number(base + target, "I"))
                    size = self.number(base + target + 4, "I")
                    found.setdefault(kind, []).append(self.bytes[data:data + size])
        walk(base, None)
        return found


def check_pe(file, version):
    name = file.name
    image = PortableExecutable(file)
    expect(image.magic == 0x20B, f"{name} is not for 64 bits")
    expect(image.guards & DYNAMIC_BASE and not image.characteristics & RELOCATIONS_STRIPPED,
           f"{name} has a fixed address")
    expect(image.guards & HIGH_ENTROPY, f"{name} is loaded within few addresses")
    expect(image.guards & NX_COMPATIBLE, f"{name} can execute its data")
    expect(image.time_stamp == 0 and image.export_time_stamp() == 0,
           f"{name} tells when it was linked, so no two builds are equal")
    foreign = set(image.imported_libraries()) - KNOWN_LIBRARIES - OWN_LIBRARIES
    expect(not foreign, f"{name} imports {sorted(foreign)}, which could lie beside the program")

    resources = image.resources()
    versions = resources.get(VERSION_RESOURCE, [])
    told = f"FileVersion\0{version}\0".encode("utf-16-le")
    # A value begins at a multiple of four bytes.
    padded = f"FileVersion\0\0{version}\0".encode("utf-16-le")
    numbers = struct.pack("<2I", *((a << 16) | b for a, b in
                                   zip(*[iter([*map(int, version.split(".")), 0])] * 2)))
    expect(len(versions) == 1 and (told in versions[0] or padded in versions[0])
           and numbers in versions[0], f"{name} does not tell version {version}")
    manifests = resources.get(MANIFEST, [])
    if not name.endswith(".exe"):
        expect(not manifests, f"{name} has a manifest")
        return
    text = manifests[0].decode() if len(manifests) == 1 else ""
    text = re.sub(r"<!--.*?-->", "", text, flags=re.DOTALL)
    expect('level="asInvoker"' in text, f"{name} does not run as who started it")
    expect(re.search(r"<longPathAware[^>]*>true<", text), f"{name} knows no long paths")
    expect("activeCodePage" not in text, f"{name} changes the code page of the modules' texts")


def main():
    native, windows = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    version = re.search(r'kVersion\[\] = "([\d.]+)"',
                        (ROOT / "host" / "text" / "version.h").read_text())[1]
    check_commands(native, FLAGS + NATIVE_FLAGS)
    check_commands(windows, FLAGS)
    for name in ELF_FILES:
        check_elf(native / "bin" / name)
    for name in PE_FILES:
        check_pe(windows / "bin" / name, version)
    return tally.end()


sys.exit(main())
