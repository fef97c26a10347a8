"""What of others is in a package: versions and licences, read from where the build takes it.

components.json names for each its evidence: a file that is compiled in, linked in or found at the
start. The Debian package that owns this file tells version and copyright.
"""

import functools
import json
import os
import pathlib
import re

from product import ROOT, run, write

COMPILERS = {"native": "g++", "mingw": "x86_64-w64-mingw32-g++-posix"}
NPM = ROOT / "node_modules"
COMMON_LICENCES = pathlib.Path("/usr/share/common-licenses")


@functools.cache
def list_components():
    return json.loads((ROOT / "packaging" / "components.json").read_text())


def components_of(package):
    return [component for component in list_components() if package in component["evidence"]]


def find_evidence(text):
    """The file that an entry of components.json names."""
    kind, _, name = text.partition(":")
    if kind == "npm":
        return NPM / name
    if kind in COMPILERS:
        name = run(COMPILERS[kind], f"-print-file-name={name}").strip()
    path = pathlib.Path(os.path.realpath(name or kind))
    if not path.is_file():
        raise SystemExit(f"{text} of packaging/components.json is not there")
    return path


@functools.cache
def find_owner(path):
    """The Debian package that a file belongs to. Of /usr/lib it may know the place as /lib."""
    for known in (str(path), str(path).removeprefix("/usr")):
        try:
            said = run("dpkg-query", "-S", known)
        except SystemExit:
            continue
        return said.split(":")[0]
    raise SystemExit(f"no Debian package owns {path}")


class Origin:
    """Where a component comes from: version, package URL, copyright."""

    def __init__(self, component, package):
        self.component = component
        evidence = component["evidence"][package]
        self.path = find_evidence(evidence)
        if evidence.startswith("npm:"):
            module = evidence.removeprefix("npm:").split("/")[0]
            told = json.loads((NPM / module / "package.json").read_text())
            self.version = re.search(r'#define SQLITE_VERSION +"([\d.]+)"',
                                     self.path.read_text())[1]
            inside = self.path.parent.relative_to(NPM / module)
            self.purl = f"pkg:npm/{module}@{told['version']}#{inside}"
            # The first comment, instead of a licence.
            words = re.search(r"/\*\n(.*?)\*{10}", self.path.read_text(), re.S)[1]
            self.copyright = re.sub(r"^\*\* ?", "", words, flags=re.M)
            return
        owner = find_owner(self.path)
        whole = run("dpkg-query", "-W", "-f=${Version} ${Architecture}\n", owner).splitlines()[0]
        version, architecture = whole.split(" ")
        self.version = re.sub(r"^\d+:|[+.](ds|dfsg)\d*$", "", version.split("-")[0])
        # A plus is a blank to those who read it as a form.
        self.purl = (f"pkg:deb/debian/{owner.replace('+', '%2B')}@{version.replace('+', '%2B')}"
                     f"?arch={architecture}&distro=debian-12").replace(":", "%3A").replace(
                         "pkg%3A", "pkg:")
        self.copyright = self.read_copyright(owner)

    def read_copyright(self, owner):
        text = pathlib.Path(f"/usr/share/doc/{owner}/copyright").read_text()
        paragraph = self.component.get("paragraph")
        if not paragraph:
            return text
        # Of the many that name a licence the one that has its words.
        words = re.search(rf"^License: {re.escape(paragraph)}\n((?: .+\n){{5,}})", text, re.M)[1]
        return re.sub(r"^ \.?", "", words, flags=re.M)


def write_licences(package, folder, line_end):
    """A text for each component that is in the package, those texts that it refers to, and a list."""
    lines = [f"{'what':<22}{'version':<10}{'licence':<42}use", ""]
    for component in components_of(package):
        if component["use"] == "the system's shared library":
            continue
        origin = Origin(component, package)
        name = component["name"].lower().replace(" ", "-")
        write(folder / f"{name}.txt", origin.copyright, line_end)
        lines.append(f"{component['name']:<22}{origin.version:<10}{component['licence']:<42}"
                     f"{component['use']}")
        for common in component.get("common", []):
            write(folder / f"{common}.txt", (COMMON_LICENCES / common).read_text(), line_end)
    write(folder / "contents.txt", "\n".join(lines) + "\n", line_end)
