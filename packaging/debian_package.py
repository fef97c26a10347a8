"""The Debian package of the native program."""

import datetime
import email.utils
import gzip
import hashlib
import pathlib
import re
import tempfile
import textwrap

import components
from product import (CHANGES, MAINTAINER, NAME, NATIVE, ROOT, TIME, VERSION, copy, list_files, run,
                     settle, write)

LIBRARIES = ("repository.so", "logger.so")
# The folder in which a package of this name may have libraries of its own.
OWN = pathlib.Path("usr/lib") / NAME
SHARE = pathlib.Path("usr/share")
# Which compiler made a file is nobody's business who runs it.
NO_NOTES = ("--remove-section=.comment", "--remove-section=.note")


def write_packed(target, text):
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(gzip.compress(text.encode("utf-8"), 9, mtime=0))
    target.chmod(0o644)


def describe_changes():
    """CHANGELOG.md's lines of this version, as Debian writes them."""
    lines = [f"{NAME} ({VERSION}) stable; urgency=medium", ""]
    for change in re.split(r"^- ", CHANGES, flags=re.M)[1:]:
        lines += textwrap.wrap(" ".join(change.split()), 76, initial_indent="  * ",
                               subsequent_indent="    ")
    when = datetime.datetime.fromtimestamp(TIME, datetime.timezone.utc)
    lines += ["", f" -- {MAINTAINER}  {email.utils.format_datetime(when)}"]
    return "\n".join(lines) + "\n"


def find_dependencies(folder):
    """The packages of the shared libraries, and which versions have what the program calls."""
    with tempfile.TemporaryDirectory() as work:
        write(pathlib.Path(work) / "debian" / "control",
              f"Source: {NAME}\n\nPackage: {NAME}\nArchitecture: amd64\n")
        own = folder / OWN
        said = run("dpkg-shlibdeps", "-O", "--ignore-missing-info", f"-l{own}",
                   f"-e{folder / 'usr' / 'bin' / NAME}", *(f"-e{own / name}" for name in LIBRARIES),
                   cwd=work)
    return said.strip().removeprefix("shlibs:Depends=")


def stage(folder):
    own, share = folder / OWN, folder / SHARE
    program = folder / "usr" / "bin" / NAME
    copy(NATIVE / "debian" / NAME, program, 0o755)
    run("strip", "--strip-all", *NO_NOTES, program)
    for name in LIBRARIES:
        copy(NATIVE / "bin" / name, own / name)
        run("strip", "--strip-unneeded", *NO_NOTES, own / name)
    write_packed(share / "man/man1/pqhost.1.gz", (ROOT / "docs" / "pqhost.1").read_text())
    copy(ROOT / "completions" / "pqhost.bash", share / "bash-completion/completions" / NAME)
    documents = share / "doc" / NAME
    copy(ROOT / "packaging" / "debian" / "copyright", documents / "copyright")
    write_packed(documents / "changelog.gz", describe_changes())
    components.write_licences("debian", documents / "licences", "\n")


def write_control(folder):
    files = list_files(folder)
    size = sum(-(-path.stat().st_size // 1024) for path in files)
    control = (ROOT / "packaging" / "debian" / "control").read_text()
    for word, value in {"VERSION": VERSION, "DEPENDS": find_dependencies(folder), "SIZE": str(size),
                        "MAINTAINER": MAINTAINER}.items():
        control = control.replace(f"@{word}@", value)
    sums = "".join(f"{hashlib.md5(path.read_bytes()).hexdigest()}  {path.relative_to(folder)}\n"
                   for path in files)
    write(folder / "DEBIAN" / "control", control)
    write(folder / "DEBIAN" / "md5sums", sums)


def pack_debian(output, work):
    folder = work / "debian"
    stage(folder)
    write_control(folder)
    settle(folder)
    run("dpkg-deb", "--root-owner-group", "-Zxz", "--build", folder,
        output / f"{NAME}_{VERSION}_amd64.deb")
