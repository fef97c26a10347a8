"""The Debian package: clean, installed into a root of its own, run there, removed."""

import os
import pathlib
import re
import shutil

from archive_checks import DEBIAN, run
from product import NAME, ROOT, VERSION

SAMPLE = ROOT / "samples" / "two-socket-server"


def list_files(root):
    return {path.relative_to(root).as_posix() for path in root.rglob("*")
            if "var" not in path.relative_to(root).parts}


def furnish(root):
    """The shared libraries that the package depends on, and nothing else."""
    folder = pathlib.Path("/usr/lib/x86_64-linux-gnu/gconv")  # the C library's code pages
    shutil.copytree(folder, root / folder.relative_to("/"))
    said = run("ldd", ROOT / "build" / "native" / "debian" / NAME).stdout
    for path in re.findall(r"(/\S+) \(0x", said):
        if str(ROOT) not in path:
            target = root / path.lstrip("/")
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(os.path.realpath(path), target)
            target.chmod(0o755)


def dpkg(root, *words):
    # Its root has no other packages; it is ours, whoever runs this.
    return run("dpkg", f"--root={root}", "--force-depends", "--force-not-root",
               "--force-script-chrootless", "--log=/dev/null", *words)


def check_debian(tally, packages, work):
    package = packages / DEBIAN
    # It takes words of Windows, and two texts that meet in the file, for mistakes.
    lint = run("lintian", "--allow-root", "--pedantic", "--display-info", "--fail-on",
               "error,warning,info,pedantic", "--suppress-tags", "spelling-error-in-binary", package)
    tally.expect(lint.returncode == 0 and not lint.stdout, f"lintian: {lint.stdout}{lint.stderr}")

    root = work / "root"
    for folder in ("var/lib/dpkg/info", "var/lib/dpkg/updates", "tmp"):
        (root / folder).mkdir(parents=True)
    (root / "var/lib/dpkg/status").touch()
    furnish(root)
    # A verdict on a recording tells its folder's name.
    shutil.copytree(SAMPLE, root / SAMPLE.name)
    before = list_files(root)
    installed = dpkg(root, "--install", package)
    tally.expect(installed.returncode == 0, f"dpkg: {installed.stderr}")

    enter = ["chroot", root] if os.geteuid() == 0 else ["unshare", "--map-root-user", "chroot", root]
    version = run(*enter, "/usr/bin/pqhost", "--version")
    tally.expect(version.stdout == f"{NAME} {VERSION}\n", f"--version: {version}")
    told = run(*enter, "/usr/bin/pqhost", "health", "--replay", f"/{SAMPLE.name}",
               "--format", "json")
    built = run(ROOT / "build" / "native" / "bin" / NAME, "health", "--replay", SAMPLE, "--format",
                "json")
    tally.expect(told.stdout == built.stdout and told.stdout,
                 f"the package judges another way: {told.stderr}")
    page = run("man", "--warnings", "-l", root / "usr/share/man/man1/pqhost.1.gz",
               env=os.environ | {"LC_ALL": "C.UTF-8", "MANWIDTH": "100"})
    tally.expect("pqhost health" in page.stdout and not page.stderr, f"man: {page.stderr}")
    completion = root / "usr/share/bash-completion/completions/pqhost"
    asked = run("bash", "-c", f"source {completion}; COMP_WORDS=(pqhost he); COMP_CWORD=1; "
                "_pqhost_complete; echo ${COMPREPLY[*]}")
    tally.expect(asked.stdout.split() == ["health", "help"], f"completion: {asked}")

    removed = dpkg(root, "--purge", NAME)
    tally.expect(removed.returncode == 0, f"dpkg: {removed.stderr}")
    left = list_files(root) ^ before
    tally.expect(not left, f"the package leaves {sorted(left)}")
