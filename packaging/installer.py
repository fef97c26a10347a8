"""The installer for Windows: wixl makes it, msibuild adds the tables that wixl cannot make."""

import re
import shutil
import struct
import xml.sax.saxutils as xml

from product import (FAMILY, MAKER, NAME, ROOT, SUMMARY, TIME, VERSION, list_files, make_id, run,
                     write)

SHORTCUT = ('            <CreateFolder/>\n'
            '            <Shortcut Id="StartReport" Directory="ProgramMenuFolder"'
            ' Name="Report on this server" Target="[INSTALLDIR]pqhost.exe"'
            ' WorkingDirectory="INSTALLDIR"'
            ' Description="Collects what this server knows about itself"/>\n')

# Administrators and the system may do everything, users read and run; nothing comes from C:\, where
# everybody may make files. Names of accounts differ by language, so this is not LockPermissions.
ACCESS = "D:P(A;OICI;FA;;;BA)(A;OICI;FA;;;SY)(A;OICI;0x1200a9;;;BU)"

# The beginning of the numbers in a file's version resource: its mark, and its own version.
FIXED_VERSION = struct.pack("<2I", 0xFEEF04BD, 0x10000)

QUERIES = (
    "CREATE TABLE `Environment` (`Environment` CHAR(72) NOT NULL, `Name` CHAR(255) NOT NULL"
    " LOCALIZABLE, `Value` CHAR(255) LOCALIZABLE, `Component_` CHAR(72) NOT NULL"
    " PRIMARY KEY `Environment`)",
    # At the end of the system's path, and gone when the program is removed.
    "INSERT INTO `Environment` (`Environment`, `Name`, `Value`, `Component_`)"
    " VALUES ('Path', '=-*PATH', '[~];[INSTALLDIR]', '@PROGRAM@')",
    "INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`)"
    " VALUES ('RemoveEnvironmentStrings', '', 3300)",
    "INSERT INTO `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`)"
    " VALUES ('WriteEnvironmentStrings', '', 5200)",
    "CREATE TABLE `MsiLockPermissionsEx` (`MsiLockPermissionsEx` CHAR(72) NOT NULL,"
    " `LockObject` CHAR(72) NOT NULL, `Table` CHAR(32) NOT NULL, `SDDLText` LONGCHAR NOT NULL,"
    " `Condition` CHAR(255) PRIMARY KEY `MsiLockPermissionsEx`)",
    "INSERT INTO `MsiLockPermissionsEx` (`MsiLockPermissionsEx`, `LockObject`, `Table`, `SDDLText`,"
    f" `Condition`) VALUES ('Access', 'INSTALLDIR', 'CreateFolder', '{ACCESS}', '')",
)


def name_component(path):
    return "c_" + re.sub(r"[^A-Za-z0-9_.]", "_", path)


class Source:
    """The files of a folder as components: one a file, as Windows counts who needs which."""

    def __init__(self, folder):
        self.components = []
        self.text = self.describe(folder, folder, 10)

    def describe(self, folder, top, indent):
        blanks = " " * indent
        lines = []
        for path in sorted(folder.iterdir()):
            inside = path.relative_to(top).as_posix()
            if path.is_dir():
                lines += [f'{blanks}<Directory Id="d_{inside}" Name="{path.name}">',
                          self.describe(path, top, indent + 2), f"{blanks}</Directory>"]
                continue
            component = name_component(inside)
            self.components.append(component)
            # The places are relative: wixl knows no others.
            lines += [f'{blanks}<Component Id="{component}" Guid="{make_id(inside)}" Win64="yes">',
                      f'{blanks}  <File Id="f_{component}" Name="{path.name}"'
                      f' Source="{xml.escape(inside)}" KeyPath="yes"/>']
            if inside == "pqhost.exe":
                lines.append(SHORTCUT.rstrip("\n"))
            lines.append(f"{blanks}</Component>")
        return "\n".join(lines)


def list_versions(folder):
    """Queries that tell the versions of programs and libraries. A file of no version never replaces
    one that has a version, so an older program would stay or, removed later, be missing."""
    for path in list_files(folder):
        data = path.read_bytes()
        at = data.find(FIXED_VERSION) if data.startswith(b"MZ") else -1
        if at >= 0:
            high, low = struct.unpack_from("<2I", data, at + 8)
            version = ".".join(str(n) for n in (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF))
            name = "f_" + name_component(path.relative_to(folder).as_posix())
            yield (f"UPDATE `File` SET `Version` = '{version}', `Language` = '1033'"
                   f" WHERE `File` = '{name}'")


def fill(folder):
    source = Source(folder)
    references = "\n".join(f'      <ComponentRef Id="{name}"/>' for name in source.components)
    text = (ROOT / "packaging" / "windows" / "pqhost.wxs").read_text()
    for word, value in {"PRODUCT": make_id(f"{NAME} {VERSION}"), "FAMILY": str(FAMILY).upper(),
                        "VERSION": VERSION, "MAKER": MAKER, "SUMMARY": SUMMARY,
                        "FILES": source.text, "REFERENCES": references}.items():
        text = text.replace(f"@{word}@", value)
    return text


def set_times(path):
    """wixl writes when it ran, as one of Windows' times, into the file's summary."""
    pattern = re.compile(rb"\x40\0\0\0(.{6}[\xd0-\xef]\x01)", re.S)
    data = path.read_bytes()
    stamp = struct.pack("<Q", (TIME + 11644473600) * 10**7)
    at = data.find(b"\x05\0S\0u\0m\0m\0a\0r\0y\0")
    data, count = pattern.subn(b"\x40\0\0\0" + stamp, data)
    if at < 0 or count != 2:
        raise SystemExit(f"{path.name} has {count} times instead of two")
    path.write_bytes(data)


def pack_installer(folder, output, work, sign):
    """`folder` is what is in the ZIP file too; `work` is for files that nobody needs afterwards."""
    target = output / f"{NAME}-{VERSION}-win64.msi"
    # wixl looks for files below the folder of its source, and takes their times.
    staged = work / "installer"
    shutil.copytree(folder, staged)
    write(work / "pqhost.wxs", fill(folder))
    made = work / "made.msi"
    shutil.copyfile(work / "pqhost.wxs", staged / "pqhost.wxs")
    run("wixl", "-a", "x64", "-o", made, "pqhost.wxs", cwd=staged)
    for query in (*QUERIES, *list_versions(folder)):
        run("msibuild", made, "-q", query.replace("@PROGRAM@", name_component("pqhost.exe")))
    # A package of other contents has another code.
    contents = "".join(run("sha256sum", path.relative_to(folder), cwd=folder)
                       for path in list_files(folder))
    run("msibuild", made, "-s", f"{NAME} {VERSION}", MAKER, "x64;1033",
        "{" + make_id(contents) + "}")
    set_times(made)
    shutil.copyfile(made, target)
    sign(target)
