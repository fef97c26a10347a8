"""The Debian packages: clean, installed into roots of their own, run there, removed."""

import contextlib
import os
import pathlib
import re
import shlex
import shutil
import tempfile

from archive_checks import DEBIAN, FLEET, run
from private_postgres import PrivatePostgres
from product import NAME, ROOT, VERSION

SAMPLE = ROOT / "samples" / "two-socket-server"


def list_files(root):
    return {path.relative_to(root).as_posix() for path in root.rglob("*")
            if "var" not in path.relative_to(root).parts}


def furnish(root, program):
    """The shared libraries that the program's package depends on, and nothing else."""
    folder = pathlib.Path("/usr/lib/x86_64-linux-gnu/gconv")  # the C library's code pages
    shutil.copytree(folder, root / folder.relative_to("/"))
    said = run("ldd", ROOT / "build" / "native" / "debian" / program).stdout
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


def enter(root):
    return ["chroot", root] if os.geteuid() == 0 else ["unshare", "--map-root-user", "chroot", root]


def check_lint(tally, package):
    # It takes words of Windows, and two texts that meet in the file, for mistakes; services are for
    # systemd alone.
    lint = run("lintian", "--allow-root", "--pedantic", "--display-info", "--fail-on",
               "error,warning,info,pedantic", "--suppress-tags",
               "spelling-error-in-binary,package-supports-alternative-init-but-no-init.d-script",
               package)
    tally.expect(lint.returncode == 0 and not lint.stdout, f"lintian: {lint.stdout}{lint.stderr}")


def read_manual(root, program):
    page = run("man", "--warnings", "-l", root / f"usr/share/man/man1/{program}.1.gz",
               env=os.environ | {"LC_ALL": "C.UTF-8", "MANWIDTH": "100"})
    return page.stdout, page.stderr


@contextlib.contextmanager
def install(tally, package, program, root):
    """Installs a package into a root that has what it depends on; removes it, and looks for what it
    leaves."""
    for folder in ("var/lib/dpkg/info", "var/lib/dpkg/updates", "tmp"):
        (root / folder).mkdir(parents=True)
    (root / "var/lib/dpkg/status").touch()
    furnish(root, program)
    # A verdict on a recording tells its folder's name.
    shutil.copytree(SAMPLE, root / SAMPLE.name)
    before = list_files(root)
    installed = dpkg(root, "--install", package)
    tally.expect(installed.returncode == 0, f"dpkg: {installed.stderr}")
    version = run(*enter(root), f"/usr/bin/{program}", "--version")
    tally.expect(version.stdout == f"{program} {VERSION}\n", f"--version: {version}")
    yield
    removed = dpkg(root, "--purge", program)
    tally.expect(removed.returncode == 0, f"dpkg: {removed.stderr}")
    left = list_files(root) ^ before
    tally.expect(not left, f"the package leaves {sorted(left)}")


def check_debian(tally, packages, work):
    check_lint(tally, packages / DEBIAN)
    root = work / "root"
    with install(tally, packages / DEBIAN, NAME, root):
        told = run(*enter(root), "/usr/bin/pqhost", "health", "--replay", f"/{SAMPLE.name}",
                   "--format", "json")
        built = run(ROOT / "build" / "native" / "bin" / NAME, "health", "--replay", SAMPLE,
                    "--format", "json")
        tally.expect(told.stdout == built.stdout and told.stdout,
                     f"the package judges another way: {told.stderr}")
        text, warnings = read_manual(root, NAME)
        tally.expect("pqhost health" in text and not warnings, f"man: {warnings}")
        completion = root / "usr/share/bash-completion/completions/pqhost"
        asked = run("bash", "-c", f"source {completion}; COMP_WORDS=(pqhost he); COMP_CWORD=1; "
                    "_pqhost_complete; echo ${COMPREPLY[*]}")
        tally.expect(asked.stdout.split() == ["health", "help"], f"completion: {asked}")


def list_first_commands():
    """What README.md has a newcomer type, from pqfleet init on."""
    text = (ROOT / "README.md").read_text()
    return re.findall(r"(?:^|&& )(pqfleet .+)$", text, re.M)


def check_units(tally, root):
    units = sorted(path.name for path in (root / "lib/systemd/system").iterdir())
    tally.expect(units == [f"pqfleet-{name}.service" for name in ("door", "serve", "work")],
                 f"units: {units}")
    # The system's own, which ours refer to.
    other = root.parent / "units"
    shutil.copytree(root / "lib", other / "lib", symlinks=True)
    shutil.copytree(root / "usr/bin", other / "usr/bin")
    shutil.copytree("/lib/systemd/system", other / "lib/systemd/system", symlinks=True,
                    dirs_exist_ok=True)
    verified = run("systemd-analyze", "verify", "--man=no", f"--root={other}", *units)
    ours = [line for line in verified.stderr.splitlines() if "pqfleet" in line]
    tally.expect(not ours, f"systemd-analyze verify: {ours}")
    for unit in units:
        text = (root / "lib/systemd/system" / unit).read_text()
        for setting in ("DynamicUser=yes", "ProtectSystem=strict", "MemoryMax=", "WatchdogSec="):
            tally.expect(f"\n{setting}" in text, f"{unit} has no {setting}")


def check_fleet(tally, packages, work):
    """From the package to the first answer, in a root of its own, as README.md has it."""
    check_lint(tally, packages / FLEET)
    root = work / "fleet-root"
    with install(tally, packages / FLEET, "pqfleet", root):
        text, warnings = read_manual(root, "pqfleet")
        tally.expect("pqfleet command" in text and not warnings, f"man: {warnings}")
        check_units(tally, root)
        shutil.copytree(ROOT / "samples", root / "samples")
        former, tempfile.tempdir = tempfile.tempdir, str(root / "tmp")
        try:
            with PrivatePostgres() as server:
                host = f"/tmp/{pathlib.Path(server.folder).name}"
                for statement in ("create role newcomer login createdb createrole",
                                  "create database fleet owner newcomer"):
                    run("psql", "-h", server.folder, "-U", "fleet", "-c", statement, "postgres")
                commands = list_first_commands()
                tally.expect(len(commands) == 4, f"README.md: {commands}")
                told = None
                for command in commands:
                    told = run(*enter(root), *(f"/usr/bin/{word}" if word == "pqfleet" else word
                                               for word in shlex.split(command)),
                               env=os.environ | {"PGHOST": host, "PGUSER": "newcomer",
                                                 "PGDATABASE": "fleet",
                                                 "PQFLEET_STORE": "/tmp/store"})
                    tally.expect(told.returncode == 0, f"{command}: {told.stdout}{told.stderr}")
                tally.expect("NODE31" in told.stdout and "critical" in told.stdout,
                             f"the first answer: {told}")
        finally:
            tempfile.tempdir = former
        shutil.rmtree(root / "samples")
        shutil.rmtree(root / "tmp" / "store", ignore_errors=True)
