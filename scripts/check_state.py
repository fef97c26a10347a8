#!/usr/bin/env python3
"""Fails on a mutable static in the libraries that was not agreed on.

    scripts/check_state.py NM LIBRARY... [NM LIBRARY...]

A process collects many recordings, on several threads, and none of them may see another. So no
state is outside objects, but for what is listed here with its reason. Constants are named
kLikeThis, and clang-tidy sees to it that what is named so is const. Ends with "N passed, N failed".
"""

import re
import subprocess
import sys

BINDING = "binds to the thread that collects, for the time of a scope"
MODULE_WIDE = "a module's own, of one thread, set anew by each collection"
SIGNAL = "set by a signal handler, which can be given no object"
CATALOGUE = "the error catalogue is one for the process; it is complete before main() and then only read"
IMPORTS = "replaced imports are the process's: a function in the table cannot tell for whom it is there"
TERMINATION = "read by what std::terminate() calls, which can be given no object"
CONSOLE = "the process has one console"
MEMORY = "the process has one memory; the store counts what is in it, and shows no text to others"

AGREED = {
    "pq::(anonymous namespace)::machineInUse": BINDING,
    "host::(anonymous namespace)::sinkInUse": BINDING,
    "host::(anonymous namespace)::folderInUse": BINDING,
    "host::(anonymous namespace)::observerInUse": BINDING,
    "pq::(anonymous namespace)::exePath": MODULE_WIDE,
    "pq::(anonymous namespace)::logDir": MODULE_WIDE,
    "host::(anonymous namespace)::requested": SIGNAL,
    "host::(anonymous namespace)::isWatched": SIGNAL,
    "host::(anonymous namespace)::exitCodeWhenAsked": SIGNAL,
    "host::(anonymous namespace)::partialPaths": SIGNAL,
    "host::(anonymous namespace)::exitCodeWithoutMemory": TERMINATION,
    "host::(anonymous namespace)::usualEnd": TERMINATION,
    "host::LimitProgramSearch()::done": IMPORTS,
    "pq::GeneralErrors()::errors": CATALOGUE,
    "pq::CategoryErrors()::errors": CATALOGUE,
    "host::(anonymous namespace)::GetWatch()::watch": IMPORTS,
    "host::PrepareTerminal()::codePageBefore": CONSOLE,
    "host::GetTextStore()::store": MEMORY,
}
# The Windows library's machine has no members.
AGREED["pq::Machine()::machine"] = "has no members"

CONSTANT = re.compile(r"(^|::)k[A-Z]\w*(\[\w+\])?$")
# Of the compiler, the C runtime and the libraries that are used here.
FOREIGN = re.compile(
    r"^(DW\.ref\.|__|completed\.|std::|CLI::|fmt::|nlohmann::|boost::|\.|_ZGV|TLS init function|p\.0$"
    r"|vtable for |typeinfo |guard variable for (std|CLI|fmt|nlohmann|boost)::)")
WRITABLE = re.compile(r"^\.(bss|data|tbss|tdata)(?!\.rel\.ro)")


def list_statics(nm, library):
    """The names in a library's writable sections, as the source spells them."""
    listing = subprocess.run([nm, "-C", "--format=sysv", library], check=True, capture_output=True,
                             text=True).stdout
    for line in listing.splitlines():
        fields = [field.strip() for field in line.split("|")]
        # mingw's runtime frees the variables of a thread before it destroys them.
        if fields[0] == "__cxa_thread_atexit":
            yield "a variable of a thread that needs a destructor"
        if len(fields) != 7 or not WRITABLE.match(fields[6]) or fields[3] in ("FUNC", "SECTION"):
            continue
        # A variable of a thread is reached through the runtime on Windows.
        name, is_thread_local = re.subn(r"^__emutls_[vt]\.", "", fields[0])
        if is_thread_local:
            name = subprocess.run(["c++filt", name], check=True, capture_output=True,
                                  text=True).stdout.strip()
        name = re.sub(r"^guard variable for ", "", name) if "host::" in name or "pq::" in name else name
        yield name.replace("[abi:cxx11]", "")


def main():
    met, refused = set(), set()
    nm = None
    for word in sys.argv[1:]:
        if word.endswith("nm"):
            nm = word
            continue
        for name in list_statics(nm, word):
            if name in AGREED:
                met.add(name)
            elif not CONSTANT.search(name) and not FOREIGN.match(name):
                refused.add(f"{word}: {name}")
    for line in sorted(refused):
        print(f"mutable static: {line}")
    print(f"{len(met)} passed, {len(refused)} failed")
    return 1 if refused or not met else 0


sys.exit(main())
