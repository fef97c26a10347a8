"""Packages as files: the same each time, complete, told by their list, signed."""

import copy
import hashlib
import json
import os
import pathlib
import re
import subprocess
import time
import zipfile

import jsonschema

import components
from product import (NAME, OWN_WINDOWS_FILES, RELEASED, ROOT, RUNTIME_FILES, VERSION)

LARGEST_ZIP = 4_000_000
WINDOWS = f"{NAME}-{VERSION}-win64"
ZIP = WINDOWS + ".zip"
MSI = WINDOWS + ".msi"
DEBIAN = f"{NAME}_{VERSION}_amd64.deb"
FLEET = f"pqfleet_{VERSION}_amd64.deb"
SBOM = f"{NAME}-{VERSION}.cdx.json"
SCHEMAS = ROOT / "node_modules" / "@cyclonedx" / "cyclonedx-library" / "res" / "schema"


def run(*command, **more):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          errors="replace", check=False, timeout=300, **more)


def pack(output, *options, **variables):
    ran = run(ROOT / "packaging" / "pack.py", "--output", output, *options,
              env=os.environ | variables)
    if ran.returncode != 0:
        raise SystemExit(f"pack.py ended with {ran.returncode}:\n{ran.stderr}")
    return output


def pack_twice(tally, work):
    """The folder of the packages; another one, made a second later in another place, is equal."""
    first = pack(work / "first")
    time.sleep(1)
    second = pack(work / "elsewhere" / "second", TZ="Asia/Tokyo", LANG="de_DE.UTF-8")
    names = [sorted(path.name for path in folder.iterdir()) for folder in (first, second)]
    tally.expect(names[0] == names[1] == sorted([ZIP, MSI, DEBIAN, FLEET, SBOM, "SHA256SUMS"]),
                 f"the packages are {names}")
    for name in names[0]:
        tally.expect((first / name).read_bytes() == (second / name).read_bytes(),
                     f"{name} is another one each time")
    return first


def check_zip(tally, packages):
    tally.expect((packages / ZIP).stat().st_size <= LARGEST_ZIP, f"{ZIP} is larger than 4 MB")
    with zipfile.ZipFile(packages / ZIP) as archive:
        entries = {entry.filename.removeprefix(WINDOWS + "/"): entry for entry in archive.infolist()}
        texts = {name: archive.read(entry) for name, entry in entries.items()}
    others = {*OWN_WINDOWS_FILES, *RUNTIME_FILES, "README.txt", "completions/pqhost.ps1"}
    licences = {name for name in texts if name.startswith("licences/")}
    tally.expect(set(texts) - licences == others, f"{ZIP} has {sorted(texts)}")
    tally.expect(list(entries) == sorted(entries), f"{ZIP} is not sorted")
    days = {entry.date_time[:3] for entry in entries.values()}
    tally.expect(days == {(RELEASED.year, RELEASED.month, RELEASED.day)}, f"{ZIP} is of {days}")
    readme = texts["README.txt"].decode("ascii")
    tally.expect(readme.startswith(f"{NAME} {VERSION}\r\n") and "@" not in readme,
                 "README.txt does not begin with the version")
    tally.expect(readme.count("\n") == readme.count("\r\n"), "README.txt has ends of another system")
    tools = set(re.findall(r"[\w\\]+\\(\w+\.exe)", readme))
    needed = list_tools()
    missing = needed - tools
    tally.expect(needed and not missing, f"README.txt does not tell where to put {missing}")
    contents = texts["licences/contents.txt"].decode()
    for component in components.components_of("win64"):
        name = "licences/" + component["name"].lower().replace(" ", "-") + ".txt"
        tally.expect(len(texts.get(name, "")) > 200 and component["licence"] in contents,
                     f"{name} has no licence")


def list_tools():
    """The programs that modules look for below their host's folder."""
    said = run(ROOT / "build" / "native" / "bin" / "pqhost", "collect", "--dry-run",
               "--replay", ROOT / "samples" / "bare-machine").stdout
    return set(re.findall(r"\\(?:pq_tools|utilities\\\w+)\\(\w+\.exe)", said))


def check_paths(tally, packages, work):
    """Nothing that is shipped tells where it was built, else no other folder gives the same."""
    with zipfile.ZipFile(packages / ZIP) as archive:
        archive.extractall(work / "paths")
    run("dpkg-deb", "-x", packages / DEBIAN, work / "paths" / "debian")
    run("dpkg-deb", "-x", packages / FLEET, work / "paths" / "fleet")
    files = [path for path in (work / "paths").rglob("*") if path.is_file()]
    for path in files:
        found = str(ROOT).encode() in path.read_bytes()
        tally.expect(not found, f"{path.name} tells {ROOT}")


def check_sums(tally, packages):
    ran = run("sha256sum", "--check", "--strict", "SHA256SUMS", cwd=packages)
    tally.expect(ran.returncode == 0 and ran.stdout.count(": OK") == 5, ran.stdout + ran.stderr)


def make_validator():
    schema = json.loads((SCHEMAS / "bom-1.6.SNAPSHOT.schema.json").read_text())
    # It refers to others by their files' names, which are here and not where it says it is itself.
    base = schema["$id"].rpartition("/")[0]
    known = {f"{base}/{path.name}": json.loads(path.read_text())
             for path in SCHEMAS.glob("*.schema.json")}
    resolver = jsonschema.RefResolver(schema["$id"], schema, known)
    return jsonschema.Draft7Validator(schema, resolver=resolver)


def damaged(good):
    def change(what, edit):
        bad = copy.deepcopy(good)
        edit(bad)
        return what, bad

    def library(bom):
        return next(c for c in bom["components"] if c["type"] == "library")

    yield change("another format", lambda b: b.update(bomFormat="SPDX"))
    yield change("a component without name", lambda b: library(b).pop("name"))
    yield change("an unknown licence", lambda b: library(b).update(
        licenses=[{"license": {"id": "NOBODYS-1.0"}}]))
    yield change("half a hash", lambda b: b["components"][0]["components"][0]["hashes"][0].update(
        content="abc"))


def list_told_files(component, told):
    for inside in component.get("components", []):
        if inside["type"] == "file":
            told[inside["bom-ref"]] = inside["hashes"][0]["content"]
        list_told_files(inside, told)


def check_sbom(tally, packages, work):
    bom = json.loads((packages / SBOM).read_text(encoding="utf-8"))
    validator = make_validator()
    errors = [f"{'/'.join(map(str, e.absolute_path))}: {e.message[:200]}"
              for e in validator.iter_errors(bom)]
    tally.expect(not errors, f"{SBOM}: {errors[:3]}")
    for what, bad in damaged(bom):
        tally.expect(not validator.is_valid(bad), f"the schema lets {what} pass")

    told = {}
    list_told_files({"components": bom["components"]}, told)
    shipped = {}
    for package, folder in (("win64", work / "paths" / WINDOWS), ("debian", work / "paths" / "debian"),
                            ("fleet", work / "paths" / "fleet")):
        for path in folder.rglob("*"):
            if path.is_file():
                shipped[f"{package}/{path.relative_to(folder).as_posix()}"] = hashlib.sha256(
                    path.read_bytes()).hexdigest()
    tally.expect(told == shipped, f"{SBOM} tells other files: {set(told.items()) ^ set(shipped.items())}")
    sqlite = [c["version"] for c in bom["components"] if c["name"] == "SQLite"]
    tally.expect(len(sqlite) == 3, f"{SBOM} has SQLite {sqlite}")
    for package, program in (("debian", NAME), ("fleet", "pqfleet")):
        check_needed(tally, bom, package, work / "paths" / package / "usr" / "bin" / program)


def check_needed(tally, bom, package, program):
    """Whether the list knows the libraries that a program is linked with."""
    needed = set(re.findall(r"NEEDED.*\[lib([\w+-]+?)[-.\d]*\.so",
                            run("readelf", "-d", program).stdout))
    names = {"sqlite": "SQLite", "nettle": "Nettle", "z": "zlib", "stdc++": "GCC runtime",
             "gcc_s": "GCC runtime", "c": "GNU C library", "m": "GNU C library",
             "pq": "PostgreSQL client library", "cpp-httplib": "cpp-httplib"}
    known = {c["name"] for c in bom["components"] if c["bom-ref"].startswith(f"{package}:")}
    lacking = {library for library in needed if names.get(library) not in known}
    tally.expect(needed and not lacking, f"{SBOM} lacks {lacking} of {needed}")


def check_signatures(tally, work):
    """The example of signing, with a certificate that nobody trusts but this test."""
    key, certificate = work / "key.pem", work / "certificate.pem"
    run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
        "/CN=pqhost test", "-addext", "extendedKeyUsage=codeSigning", "-keyout", key, "-out",
        certificate)
    signed = pack(work / "signed", "--sign", ROOT / "docs" / "examples" / "sign.sh",
                  CERTIFICATE=str(certificate), KEY=str(key))
    with zipfile.ZipFile(signed / ZIP) as archive:
        archive.extractall(work / "signed-files")
    files = [work / "signed-files" / WINDOWS / name for name in OWN_WINDOWS_FILES]
    for file in [*files, signed / MSI]:
        tally.expect(is_signed(file, certificate), f"{file.name} is not signed")
    changed = work / "changed.exe"
    data = bytearray(files[0].read_bytes())
    data[len(data) // 2] ^= 1
    changed.write_bytes(data)
    tally.expect(not is_signed(changed, certificate), "a changed program counts as signed")
    run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
        "/CN=somebody else", "-addext", "extendedKeyUsage=codeSigning", "-keyout",
        work / "other-key.pem", "-out", work / "other.pem")
    tally.expect(not is_signed(files[0], work / "other.pem"),
                 "somebody else's certificate counts as ours")


def is_signed(file, certificate):
    return run("osslsigncode", "verify", "-CAfile", certificate, "-TSA-CAfile", certificate, "-in",
               file).returncode == 0
