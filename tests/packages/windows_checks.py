"""The ZIP file and the installer under Wine, by a user who may write nowhere but at home."""

import hashlib
import json
import os
import pathlib
import pwd
import re
import shutil
import subprocess
import zipfile

import installer
from archive_checks import MSI, WINDOWS, ZIP, run
from product import NAME, OWN_WINDOWS_FILES, ROOT, VERSION, settle

SAMPLE = ROOT / "samples" / "two-socket-server"
NATIVE = ROOT / "build" / "native" / "bin" / NAME
INSTALLED = "drive_c/pqhost"
# Keys of devices, which Wine writes anew when it finds a screen.
WINES_OWN = re.compile(r"\[System\\\\CurrentControlSet\\\\(Control\\\\(Class|DeviceClasses|Video)|Enum)\\\\")


class PlainUser:
    """Somebody with a home, a Wine prefix in it, and no rights elsewhere."""

    def __init__(self, home):
        self.home = home
        self.prefix = home / "prefix"
        self.environment = {"HOME": str(home), "WINEPREFIX": str(self.prefix), "WINEDEBUG": "-all",
                            "WINEDLLOVERRIDES": "mscoree,mshtml,winemenubuilder.exe=", "DISPLAY": "",
                            "PATH": os.environ["PATH"], "LC_ALL": "C"}
        self.become = []
        # Where a kernel may put things at any address, a process of Wine sometimes does not start.
        if run("setarch", "-R", "true").returncode == 0:
            self.become = ["setarch", "-R"]
        home.mkdir()
        if os.geteuid() == 0:
            nobody = pwd.getpwnam("nobody")
            os.chown(home, nobody.pw_uid, nobody.pw_gid)
            self.become = ["setpriv", f"--reuid={nobody.pw_uid}", f"--regid={nobody.pw_gid}",
                           "--clear-groups", *self.become]

    def __enter__(self):
        self.run("wineboot", "-i")
        self.run("wineserver", "-w")
        return self

    def __exit__(self, *_):
        self.run("wineserver", "-k")

    def run(self, *command, folder=None):
        # Files, because a pipe has its end only when all have gone that were started.
        with open(self.home.parent / "out", "w+b") as out, \
             open(self.home.parent / "error", "w+b") as error:
            ran = subprocess.run([*self.become, *map(str, command)], cwd=folder or self.home,
                                 env=self.environment, stdin=subprocess.DEVNULL, stdout=out,
                                 stderr=error, timeout=300, check=False)
            out.seek(0)
            error.seek(0)
            ran.stdout = out.read().decode(errors="replace").replace("\r\n", "\n")
            ran.stderr = error.read().decode(errors="replace").replace("\r\n", "\n")
        return ran

    def wine(self, *command, folder=None):
        return self.run("wine", *command, folder=folder)

    def rest(self):
        """Ends all that runs, so that the registry is in its files."""
        self.run("wineserver", "-k")
        self.run("wineserver", "-w")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def picture(folder):
    """Every file below a folder with what is in it."""
    return {path.relative_to(folder).as_posix():
            hashlib.sha256(path.read_bytes()).hexdigest() if path.is_file() else "folder"
            for path in folder.rglob("*")}


def make_read_only(folder):
    for path in [folder, *folder.rglob("*")]:
        path.chmod(0o555 if path.is_dir() else 0o444)


def check_unpacked(tally, packages, work, user):
    """From a folder with a blank in which nobody may write anything."""
    with zipfile.ZipFile(packages / ZIP) as archive:
        archive.extractall(work / "my tools")
    folder = work / "my tools" / WINDOWS
    program = folder / "pqhost.exe"
    before = picture(folder)
    make_read_only(folder)
    tally.expect(user.run("touch", folder / "x").returncode != 0, f"{folder} can be written")

    version = user.wine(program, "--version")
    tally.expect(version.stdout == f"{NAME} {VERSION}\n", f"--version: {version}")
    told = user.wine(program, "health", "--replay", windows_path(SAMPLE), "--format", "json")
    native = run(NATIVE, "health", "--replay", SAMPLE, "--format", "json")
    tally.expect(json.loads(told.stdout or "0") == json.loads(native.stdout),
                 f"the program for Windows judges another way: {told.stderr}")

    results = user.home / "results"
    user.run("mkdir", results)
    reported = user.wine(program, "collect", "--report", folder=results)
    made = sorted(path.suffix for path in results.iterdir())
    tally.expect(reported.returncode in (0, 1) and made == ["", ".html", ".zip"],
                 f"--report made {made}: {reported.stderr}")
    for recording in results.glob("*.zip"):
        verified = run(NATIVE, "verify", recording)
        tally.expect(verified.returncode == 0, f"verify: {verified.stdout}{verified.stderr}")
    # Its own folder is the current one, as after a double-click.
    output = windows_path(user.home / "tables.json")
    collected = user.wine(program, "collect", "--format", "json", "--output", output, folder=folder)
    tally.expect(collected.returncode in (0, 1) and (user.home / "tables.json").is_file(),
                 f"a collection in a read-only folder: {collected.stderr}")
    tally.expect(picture(folder) == before, "the program changes its own folder")


def check_setup(tally, packages, work, user):
    """Stand-ins of the vendors' tools, wherever they may be installed."""
    place = user.home / "pqhost"
    user.run("cp", "-r", work / "my tools" / WINDOWS, place)
    user.run("chmod", "-R", "u+w", place)
    drive = user.prefix / "drive_c"
    signed, unsigned = (work / folder / WINDOWS / "pqhost.exe" for folder in ("signed-files", "paths"))
    tools = {  # place of a tool: its stand-in, where that is found
        "utilities/lsi/storcli.exe": (signed, drive / "Program Files/Vendor/StorCLI/storcli64.exe"),
        "utilities/arcconf/arcconf.exe": (unsigned, drive / "max view/cmd/arcconf.exe"),
        "utilities/lsi/sas2ircu.exe": (ROOT / "README.md", user.home / "load/new/sas2ircu.exe"),
        "pq_tools/amt_log.exe": (unsigned, drive / "in path/amt_log.exe"),
        "pq_tools/ipmiutilnh.exe": (signed, drive / "Program Files/ipmi/ipmiutilnh.exe"),
    }
    for source, found in tools.values():
        user.run("mkdir", "-p", found.parent)
        user.run("cp", source, found)
    # It is there already, and stays.
    own = place / "pq_tools" / "ipmiutilnh.exe"
    user.run("mkdir", "-p", own.parent)
    user.run("cp", ROOT / "SECURITY.md", own)
    user.wine("reg", "add", r"HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\max view",
              "/v", "InstallLocation", "/d", r"C:\max view", "/f")
    user.environment["WINEPATH"] = r"C:\in path"
    program, load = place / "pqhost.exe", windows_path(user.home / "load")

    before = picture(place)
    shown = user.wine(program, "setup", "--from", load)
    tally.expect(shown.returncode == 1 and picture(place) == before,
                 f"setup copies without --copy, or ended with {shown.returncode}: {shown.stderr}")
    lines = [line for line in shown.stdout.splitlines() if line.startswith("found")]
    tally.expect(len(lines) == 4, f"setup found {lines}")
    ends = (rf"storcli\.exe: .*storcli64\.exe, version {VERSION}\.0, signed by pqhost test",
            rf"arcconf\.exe: .*max view.cmd.arcconf\.exe, version {VERSION}\.0, not signed",
            r"sas2ircu\.exe: .*load.new.sas2ircu\.exe, no version, not signed",
            rf"amt_log\.exe: .*in path.amt_log\.exe, version {VERSION}\.0, not signed")
    for end in ends:
        tally.expect(any(re.search(end + "$", line) for line in lines), f"no {end} in {lines}")
    tally.expect(re.search(r"^missing  .*getsmbios\.exe is not there", shown.stdout, re.M),
                 f"setup does not tell what is missing: {shown.stdout}")

    read_only = work / "my tools" / WINDOWS / "pqhost.exe"
    refused = user.wine(read_only, "setup", "--copy", "--from", load)
    tally.expect(refused.returncode == 1 and "copied" not in refused.stdout
                 and "cannot write" in refused.stdout, f"in a read-only folder: {refused.stdout}")
    copied = user.wine(program, "setup", "--copy", "--from", load)
    tally.expect(copied.stdout.count("\ncopied") + copied.stdout.startswith("copied") == 4,
                 f"setup --copy: {copied.stdout}{copied.stderr}")
    for name, (source, _) in tools.items():
        source = ROOT / "SECURITY.md" if place / name == own else source
        tally.expect((place / name).is_file()
                     and (place / name).read_bytes() == source.read_bytes(),
                     f"{name} is not what was found")
    again = user.wine(program, "setup", "--from", load)
    tally.expect("found" not in again.stdout and again.stdout.count("ok ") == 5,
                 f"after --copy: {again.stdout}")
    told = user.wine(program, "check")
    tally.expect("pqhost setup" in told.stdout, "check does not name setup")
    wrong = user.wine(program, "setup", "--from", r"C:\nowhere")
    tally.expect(wrong.returncode == 2, "setup takes a folder that is not there")


def read_registry(user):
    """Every value with its key, as text."""
    user.rest()
    values = set()
    for name in ("system.reg", "user.reg"):
        text = (user.prefix / name).read_text(encoding="utf-8", errors="replace")
        key = ""
        for line in text.replace("\\\n", "").splitlines():
            if line.startswith("["):
                key = line.rpartition("]")[0]
            elif line.startswith(('"', "@")) and not WINES_OWN.match(key):
                values.add(f"{key}] {line}")
    return values


def level_path(values):
    """Wine takes an entry out of PATH but leaves the separator before it."""
    return {re.sub(r';"$', '"', value) if '] "PATH"=' in value else value for value in values}


def picture_disk(user):
    found = picture(user.prefix / "drive_c")
    # Wine's own, empty afterwards.
    found.pop("windows/Installer", None)
    return found


def find_shortcut(disk):
    return [path for path in disk if path.endswith("/Programs/Report on this server.lnk")]


def install(tally, user, package, word="/i", succeeds=True):
    done = user.wine("msiexec", word, windows_path(package), "/qn")
    tally.expect((done.returncode == 0) == succeeds,
                 f"msiexec {word} {package.name} ended with {done.returncode}")


def pack_other(work, folder, version):
    """An installer of another version, with a file that the present one does not have."""
    changed = work / f"files-{version}"
    shutil.copytree(folder, changed)
    for path in [changed, *changed.rglob("*")]:
        path.chmod(0o755 if path.is_dir() else 0o644)
    (changed / "other.txt").write_text(version)
    settle(changed)
    own, installer.VERSION = installer.VERSION, version
    (work / version).mkdir()
    installer.pack_installer(changed, work, work / version, lambda path: None)
    installer.VERSION = own
    return work / f"{NAME}-{version}-win64.msi"


def export(package, table):
    said = run("msiinfo", "export", package, table).stdout
    return [line.split("\t") for line in said.splitlines()[3:]]


def check_tables(tally, package):
    """What Wine does not carry out, or what only tells between versions."""
    versions = {row[2]: row[4] for row in export(package, "File")}
    wrong = [name for name in OWN_WINDOWS_FILES if versions.get(name) != f"{VERSION}.0"]
    tally.expect(not wrong, f"the installer takes {wrong} for files without version")
    access = export(package, "MsiLockPermissionsEx")
    tally.expect([row[1:3] for row in access] == [["INSTALLDIR", "CreateFolder"]]
                 and re.fullmatch(r"D:P(\(A;OICI;\w+;;;(BA|SY|BU)\)){3}", access[0][3])
                 and ";0x1200a9;;;BU" in access[0][3], f"the folder's access is {access}")
    made = [row[0] for row in export(package, "CreateFolder")]
    tally.expect("INSTALLDIR" in made, "nothing has the access that the folder would get")


def check_installer(tally, packages, work, user):
    package = packages / MSI
    check_tables(tally, package)
    with zipfile.ZipFile(packages / ZIP) as archive:
        contents = {name.removeprefix(WINDOWS + "/") for name in archive.namelist()}
    disk, registry = picture_disk(user), read_registry(user)

    install(tally, user, package)
    installed = picture_disk(user)
    new = set(installed) - set(disk)
    files = {path.removeprefix("pqhost/") for path in new
             if path.startswith("pqhost/") and installed[path] != "folder"}
    tally.expect(files == contents, f"installed are {sorted(files)}")
    tally.expect(len(find_shortcut(new)) == 1, "the Start menu has no report")
    values = read_registry(user)
    tally.expect(any('] "PATH"=' in value and value.endswith(';C:\\\\pqhost\\\\"')
                     for value in values), "C:\\pqhost is not in PATH")
    tally.expect(any(value.endswith(f'"DisplayVersion"="{VERSION}"') for value in values),
                 "the list of programs does not have the version")
    ran = user.wine("cmd", "/c", "pqhost --version")
    tally.expect(ran.stdout == f"{NAME} {VERSION}\n", f"found by PATH: {ran}")
    install(tally, user, package, "/x")
    changed = {path for path, _ in set(picture_disk(user).items()) ^ set(disk.items())}
    tally.expect(not changed, f"the installer leaves {sorted(changed)}")
    left = level_path(read_registry(user)) ^ level_path(registry)
    tally.expect(not left, f"the installer leaves in the registry {sorted(left)[:5]}")

    # An older version is replaced, a newer one is not; what is not the installer's stays.
    folder = work / "my tools" / WINDOWS
    older, newer = pack_other(work, folder, "0.0.9"), pack_other(work, folder, "9.0.0")
    install(tally, user, older)
    place = user.prefix / INSTALLED
    theirs = {place / "pq_tools" / "getsmbios.exe": "tool", place / "logs" / "left.txt": "log"}
    for path, text in theirs.items():
        path.parent.mkdir()
        path.write_text(text)
    tally.expect((place / "other.txt").is_file(), "the older version is not installed")
    install(tally, user, package)
    tally.expect(not (place / "other.txt").exists(), "a file of the older version stays")
    tally.expect(all((place / name).is_file() for name in contents), "the newer lacks files")
    versions = [value for value in read_registry(user)
                if re.search(r'\\Uninstall\\.*"DisplayName"="pqhost"', value)]
    tally.expect(len(versions) == 1, f"installed at the same time are {versions}")
    install(tally, user, older, succeeds=False)
    tally.expect(not (place / "other.txt").exists(), "an older version replaces a newer one")
    install(tally, user, newer)
    install(tally, user, newer, "/x")
    rest = {path for path in place.rglob("*") if path.is_file()}
    tally.expect(rest == set(theirs) and all(p.read_text() == t for p, t in theirs.items()),
                 f"of tools and logs there is left {rest}")


def check_windows(tally, packages, work):
    with PlainUser(work / "home") as user:
        check_unpacked(tally, packages, work, user)
        check_installer(tally, packages, work, user)
        check_setup(tally, packages, work, user)
