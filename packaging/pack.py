#!/usr/bin/env python3
"""Packs what has been built. The same files give the same packages, byte by byte.

    packaging/pack.py [--output FOLDER] [--sign COMMAND]

COMMAND is run with the path of each program, library of ours and installer, to sign it in its place.
"""

import argparse
import hashlib
import pathlib
import shutil
import subprocess
import tempfile

import debian_package
import installer
import sbom
import windows_zip
from product import ROOT


def main():
    parser = argparse.ArgumentParser(description="Packs what has been built.")
    parser.add_argument("--output", type=pathlib.Path, default=ROOT / "build" / "packages",
                        help="folder for the packages; what is in it is removed")
    parser.add_argument("--sign", metavar="COMMAND", help="signs the file that it is given")
    options = parser.parse_args()

    def sign(path):
        if options.sign:
            subprocess.run([options.sign, path], check=True)

    output = options.output.resolve()
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        windows = work / "windows"
        windows_zip.stage_windows(windows, sign)
        windows_zip.pack_zip(windows, output)
        installer.pack_installer(windows, output, work, sign)
        debian_package.pack_debian(output, work)
        sbom.write_sbom({"win64": windows, "debian": work / "debian", "fleet": work / "fleet"},
                        output)
    sums = "".join(f"{hashlib.sha256(path.read_bytes()).hexdigest()}  {path.name}\n"
                   for path in sorted(output.iterdir()))
    (output / "SHA256SUMS").write_text(sums)
    for path in sorted(output.iterdir()):
        print(f"{path.stat().st_size:>9}  {path.relative_to(ROOT) if ROOT in path.parents else path}")


main()
