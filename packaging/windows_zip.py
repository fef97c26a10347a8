"""The folder for Windows, and the ZIP file of it."""

import time
import zipfile

import components
from product import (NAME, OWN_WINDOWS_FILES, ROOT, RUNTIME_FILES, TIME, VERSION, WINDOWS, copy,
                     list_files, run, settle, write)

STRIP = "x86_64-w64-mingw32-strip"
CRLF = "\r\n"


def stage_windows(folder, sign):
    """Lays out what an administrator gets, program and libraries stripped and signed."""
    for name in (*OWN_WINDOWS_FILES, *RUNTIME_FILES):
        copy(WINDOWS / name, folder / name)
        run(STRIP, "--strip-all", folder / name)
    for name in OWN_WINDOWS_FILES:
        sign(folder / name)
    readme = (ROOT / "packaging" / "windows" / "README.txt").read_text()
    write(folder / "README.txt", readme.replace("@VERSION@", VERSION), CRLF)
    completion = (ROOT / "completions" / "pqhost.ps1").read_text()
    write(folder / "completions" / "pqhost.ps1", completion, CRLF)
    components.write_licences("win64", folder / "licences", CRLF)
    settle(folder)


def write_zip(folder, target):
    """Below one folder that is called like the file, always in the same order."""
    when = time.gmtime(TIME)[:6]
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for path in list_files(folder):
            entry = zipfile.ZipInfo(f"{target.stem}/{path.relative_to(folder).as_posix()}", when)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, path.read_bytes(), compresslevel=9)


def pack_zip(folder, output):
    write_zip(folder, output / f"{NAME}-{VERSION}-win64.zip")
