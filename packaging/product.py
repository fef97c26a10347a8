"""What every package tells of the product, and how a folder to be packed is laid out."""

import datetime
import os
import pathlib
import re
import shutil
import subprocess
import uuid

ROOT = pathlib.Path(__file__).resolve().parent.parent
NATIVE = ROOT / "build" / "native"
WINDOWS = ROOT / "build" / "windows" / "bin"

NAME = "pqhost"
SUMMARY = "Collects what a server knows about itself"
MAKER = "repository_pqmodule"
MAINTAINER = "Maintainers of repository_pqmodule <maintainers@repository-pqmodule.invalid>"
# All identifiers of packages are made from this one, so that the same sources give the same.
FAMILY = uuid.UUID("5d0d7c4b-5c0e-4f0b-9e0c-6a4c3f0c7a11")

# Of our own: what is signed.
OWN_WINDOWS_FILES = ("pqhost.exe", "repository_pqmodule.dll", "repository.dll", "logger.dll")
RUNTIME_FILES = ("libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll")


def read_version():
    text = (ROOT / "host" / "text" / "version.h").read_text()
    return re.search(r'kVersion\[\] = "(\d+\.\d+\.\d+)"', text)[1]


def read_changes(version):
    """The day of a version, and its lines of CHANGELOG.md, of which the first has to be it."""
    text = (ROOT / "CHANGELOG.md").read_text()
    found = re.search(r"^## (\S+), (\d{4}-\d\d-\d\d)\n(.*?)(?=^## |\Z)", text, re.M | re.S)
    if not found or found[1] != version:
        raise SystemExit(f"CHANGELOG.md does not begin with '## {version}, YEAR-MONTH-DAY'")
    day = datetime.datetime.fromisoformat(found[2]).replace(tzinfo=datetime.timezone.utc)
    return day, found[3].strip()


VERSION = read_version()
RELEASED, CHANGES = read_changes(VERSION)
# Seconds since 1970: the time of all files in packages.
TIME = int(os.environ.get("SOURCE_DATE_EPOCH") or RELEASED.timestamp())


def make_id(text):
    """A GUID that is always the same for a text."""
    return str(uuid.uuid5(FAMILY, text)).upper()


def run(*command, **more):
    """What a command prints; ends the program when it fails."""
    done = subprocess.run([str(word) for word in command], capture_output=True, check=False,
                          text=True, env=os.environ | {"SOURCE_DATE_EPOCH": str(TIME), "LC_ALL": "C"},
                          **more)
    if done.returncode != 0:
        raise SystemExit(f"{command[0]} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def copy(source, target, mode=0o644):
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(source, target)
    target.chmod(mode)


def write(target, text, line_end="\n"):
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(text.replace("\n", line_end).encode("utf-8"))
    target.chmod(0o644)


def settle(folder):
    """Gives all below a folder the same time and, to folders, the usual mode."""
    for path in sorted(folder.rglob("*"), reverse=True):
        if path.is_dir() and not path.is_symlink():
            path.chmod(0o755)
        os.utime(path, (TIME, TIME), follow_symlinks=False)
    folder.chmod(0o755)
    os.utime(folder, (TIME, TIME))


def list_files(folder):
    """All files below a folder, always in the same order."""
    return sorted(path for path in folder.rglob("*") if path.is_file())
