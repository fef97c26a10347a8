"""The Debian packages of the native programs."""

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
FLEET = "pqfleet"
# What components.json calls each of the packages.
PACKAGES = {NAME: "debian", FLEET: "fleet"}
# Below it a package may have libraries of its own, in a folder of its name.
LIB = pathlib.Path("usr/lib")
SHARE = pathlib.Path("usr/share")
# Which compiler made a file is nobody's business who runs it.
NO_NOTES = ("--remove-section=.comment", "--remove-section=.note")


def write_packed(target, text):
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(gzip.compress(text.encode("utf-8"), 9, mtime=0))
    target.chmod(0o644)


def describe_changes(name):
    """CHANGELOG.md's lines of this version, as Debian writes them."""
    lines = [f"{name} ({VERSION}) stable; urgency=medium", ""]
    for change in re.split(r"^- ", CHANGES, flags=re.M)[1:]:
        lines += textwrap.wrap(" ".join(change.split()), 76, initial_indent="  * ",
                               subsequent_indent="    ")
    when = datetime.datetime.fromtimestamp(TIME, datetime.timezone.utc)
    lines += ["", f" -- {MAINTAINER}  {email.utils.format_datetime(when)}"]
    return "\n".join(lines) + "\n"


def find_dependencies(name, folder):
    """The packages of the shared libraries, and which versions have what the program calls."""
    with tempfile.TemporaryDirectory() as work:
        write(pathlib.Path(work) / "debian" / "control",
              f"Source: {NAME}\n\nPackage: {name}\nArchitecture: amd64\n")
        own = folder / LIB / name
        said = run("dpkg-shlibdeps", "-O", "--ignore-missing-info", f"-l{own}",
                   f"-e{folder / 'usr' / 'bin' / name}", *(f"-e{own / one}" for one in LIBRARIES),
                   cwd=work)
    return said.strip().removeprefix("shlibs:Depends=")


def stage(name, folder):
    """What both packages have."""
    own, share = folder / LIB / name, folder / SHARE
    program = folder / "usr" / "bin" / name
    copy(NATIVE / "debian" / name, program, 0o755)
    run("strip", "--strip-all", *NO_NOTES, program)
    for library in LIBRARIES:
        copy(NATIVE / "bin" / library, own / library)
        run("strip", "--strip-unneeded", *NO_NOTES, own / library)
    write_packed(share / f"man/man1/{name}.1.gz", (ROOT / "docs" / f"{name}.1").read_text())
    documents = share / "doc" / name
    copy(ROOT / "packaging" / "debian" / "copyright", documents / "copyright")
    write_packed(documents / "changelog.gz", describe_changes(name))
    components.write_licences(PACKAGES[name], documents / "licences", "\n")


def stage_host(folder):
    copy(ROOT / "completions" / "pqhost.bash",
         folder / SHARE / "bash-completion/completions/pqhost")


def stage_fleet(staged):
    for unit in sorted((ROOT / "packaging" / "debian" / "systemd").iterdir()):
        copy(unit, staged / "lib/systemd/system" / unit.name)
    documents = staged / SHARE / "doc" / FLEET
    write_packed(documents / "fleet.md.gz", (ROOT / "docs" / "fleet.md").read_text())
    examples = ROOT / "docs" / "examples"
    copy(examples / "pqfleet-postgresql.conf", documents / "examples" / "pqfleet-postgresql.conf")
    for folder in ("door", "store"):
        for file in list_files(examples / folder):
            copy(file, documents / "examples" / folder / file.name,
                 0o755 if file.suffix == ".sh" else 0o644)


def write_control(name, folder):
    files = list_files(folder)
    size = sum(-(-path.stat().st_size // 1024) for path in files)
    control = (ROOT / "packaging" / "debian" / f"{name}.control").read_text()
    for word, value in {"VERSION": VERSION, "DEPENDS": find_dependencies(name, folder), "SIZE": str(size),
                        "MAINTAINER": MAINTAINER}.items():
        control = control.replace(f"@{word}@", value)
    sums = "".join(f"{hashlib.md5(path.read_bytes()).hexdigest()}  {path.relative_to(folder)}\n"
                   for path in files)
    write(folder / "DEBIAN" / "control", control)
    write(folder / "DEBIAN" / "md5sums", sums)


def pack_debian(output, work):
    for name, stage_own in ((NAME, stage_host), (FLEET, stage_fleet)):
        folder = work / PACKAGES[name]
        stage(name, folder)
        stage_own(folder)
        write_control(name, folder)
        settle(folder)
        run("dpkg-deb", "--root-owner-group", "-Zxz", "--build", folder,
            output / f"{name}_{VERSION}_amd64.deb")
