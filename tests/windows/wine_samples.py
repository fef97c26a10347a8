"""Runs the Windows program with the real library under Wine on every recording in samples/, and
compares what it did with the native replay of the same recording.

Stand-ins for the machine's tools and interpreter (tests/standin) answer from the recording; all
else is real: processes, pipes, files, the console, the system language. Three things differ by
nature and are levelled first, see `merge_chunks`, `hide_password` and `native_only`.

Usage: wine_samples.py WINDOWS_BINARIES STANDINS NATIVE_PQHOST [SAMPLE]...
Environment: WINEPREFIX, a prefix that this program may change.
"""

import json
import locale
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import termios
import time
import tty
import zipfile

ROOT = pathlib.Path.cwd()
PREFIX = pathlib.Path(os.environ["WINEPREFIX"])
LOCALES = ROOT / "build" / "locale"
OUTPUT = ROOT / "build" / "wine-samples"

# Where the host looks for its tools, below its own folder.
TOOL_FOLDERS = ["pq_tools", r"utilities\lsi", r"utilities\arcconf", r"utilities\vroc"]
# Programs of the system. They are in a folder that is first in PATH, so that none of Wine's own
# answers in place of one that is not recorded.
SYSTEM_TOOLS = ["arp", "net", "netstat", "route"]
SYSTEM_FOLDER = r"C:\Halyard\system"
# Where the program is started. A live collection then works in the log folder.
WORKING_FOLDER = r"C:\Halyard\work"
# What a tool leaves in the current folder; no recording holds it.
LEFT_FILE = "logir.log"
HOST_FILES = ["repository_pqmodule.dll", "repository.dll", "logger.dll", "libstdc++-6.dll",
              "libgcc_s_seh-1.dll", "libwinpthread-1.dll"]
US_ENGLISH = 1033
TIME_LIMIT = 300
CONSOLE_WIDTH = 150
CANCELLED = 1223  # ERROR_CANCELLED
INTERPRETER = r"C:\Windows\System32\cmd.exe"
# ERROR_INTERNAL_ERROR, which Wine gives when a process met addresses that are taken: see
# scripts/wine_env.sh. Where addresses cannot be fixed, a check is repeated. No sample records this
# number, so it is never what a check looks for.
WINES_OWN_FAILURE = re.compile(rb"CreateProcess failed.*\(1359\)")


class Failure(Exception):
    pass


class WineFailure(Failure):
    """Wine itself failed; the same may well work when it is tried again."""


def unix_path(windows_path):
    """Where a path of drive C lies; the parts that exist are found without regard to case."""
    parts = [part for part in windows_path.split("\\") if part]
    if parts[0].lower() != "c:":
        raise Failure(f"{windows_path} is not on drive C")
    path = PREFIX / "drive_c"
    for part in parts[1:]:
        known = [p for p in path.iterdir() if p.name.lower() == part.lower()] if path.is_dir() else []
        path = known[0] if known else path / part
    return path


def windows_path(path):
    """How a program under Wine reaches a file of this machine."""
    return "Z:" + str(path).replace("/", "\\")


def place(source, target):
    """A second name for a file; a copy where the file system cannot."""
    target.parent.mkdir(parents=True, exist_ok=True)
    try:
        os.link(source, target)
    except OSError:
        shutil.copyfile(source, target)


def locale_of(language):
    """A locale from which Wine derives that system language; made when it is not there yet."""
    if language == US_ENGLISH:
        return "C"
    name = locale.windows_locale.get(language)
    if name is None:
        raise Failure(f"no locale is known for the language {language}")
    if not (LOCALES / f"{name}.UTF-8").is_dir():
        LOCALES.mkdir(parents=True, exist_ok=True)
        subprocess.run(["localedef", "-i", name, "-f", "UTF-8", LOCALES / f"{name}.UTF-8"], check=True)
    return f"{name}.UTF-8"


def wait_for_wine():
    """Ends what still runs in the prefix; the next process starts with a language of its own."""
    subprocess.run(["wineserver", "-k"], check=False)
    subprocess.run(["wineserver", "-w"], check=False)


def run_wine(arguments, language, variables, stdin=b""):
    # What is no console is read only where that is asked for. An operator who gives no login presses
    # Enter.
    if "collect" in arguments:
        arguments, stdin = [*arguments, "--amt-login", "-"], stdin or b"\n"
    environment = os.environ | {"LOCPATH": str(LOCALES), "LC_ALL": locale_of(language)} | variables
    # Files, because a pipe has its end only when all have gone that a tool left behind.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as error:
        ran = subprocess.run(["wine", *arguments], cwd=unix_path(WORKING_FOLDER), env=environment,
                             input=stdin, stdout=out, stderr=error, timeout=TIME_LIMIT, check=False)
        for stream in (out, error):
            stream.seek(0)
        ran.stdout, ran.stderr = out.read(), error.read()
    if ran.returncode not in (0, 1):
        raise Failure(f"exit code {ran.returncode}\n{ran.stderr.decode(errors='replace')}")
    if WINES_OWN_FAILURE.search(ran.stderr):
        raise WineFailure(ran.stderr.decode(errors="replace"))
    if b"stand-in" in ran.stderr:
        raise Failure(ran.stderr.decode(errors="replace"))
    return ran


def interpreter_of_ours():
    return {"WINEDLLOVERRIDES": os.environ["WINEDLLOVERRIDES"] + ";cmd.exe=n"}


def count_running(program):
    """How many processes of a Windows program run in the prefix. Wine's own tasklist tells nothing."""
    count = 0
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            command = (process / "cmdline").read_bytes().split(b"\0")[0]
            environment = (process / "environ").read_bytes().split(b"\0")
        except OSError:  # gone meanwhile
            continue
        is_ours = f"WINEPREFIX={PREFIX}".encode() in environment
        count += is_ours and command.lower().rpartition(b"\\")[2] == program.encode()
    return count


class Machine:
    """A recording laid out on drive C, until closed."""

    def __init__(self, binaries, standins, sample):
        self.recording = json.loads((sample / "recording.json").read_text(encoding="utf-8"))
        self.sample = sample
        self.placed = []
        self.host = self.recording.get("hostExecutable", r"C:\Halyard\halyard.exe")
        self.log_folder = self.recording.get("logFolder", "C:\\Halyard\\logs\\")
        host_folder = self.host.rpartition("\\")[0]
        self.folders = {host_folder, self.log_folder, r"C:\Halyard", r"C:\Support"}
        self.clear()
        unix_path(WORKING_FOLDER).mkdir(parents=True)
        unix_path(self.log_folder).mkdir(parents=True, exist_ok=True)
        place(binaries / "pqhost.exe", unix_path(self.host))
        for name in HOST_FILES:
            place(binaries / name, unix_path(host_folder + "\\" + name))
        self.place_tools(standins / "standin_tool.exe", host_folder)
        self.place_files()

    def place_tools(self, standin, host_folder):
        names = {c["tool"].lower().removesuffix(".exe") for c in self.recording.get("commands", [])}
        for name in SYSTEM_TOOLS:
            place(standin, unix_path(f"{SYSTEM_FOLDER}\\{name}.exe"))
        for name in names - set(SYSTEM_TOOLS):
            for folder in TOOL_FOLDERS:
                place(standin, unix_path(f"{host_folder}\\{folder}\\{name}.exe"))

    def place_files(self):
        etc = unix_path(r"C:\Windows\System32\drivers\etc")
        shutil.rmtree(etc, ignore_errors=True)
        etc.mkdir(parents=True)
        for path, file in self.recording.get("files", {}).items():
            target = unix_path(path)
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(self.sample / file, target)
            # As if a tool wrote it meanwhile: a stand-in cannot, and a file from before the
            # collection would be told as one.
            later = time.time() + 3600
            os.utime(target, (later, later))
            self.placed.append(target)
        # A folder of that name is what nothing can be written to, whoever runs the test.
        for path in self.recording.get("readOnly", []):
            unix_path(path).mkdir(parents=True)
            self.placed.append(unix_path(path))

    def clear(self):
        for path in self.placed:
            if path.is_dir():
                shutil.rmtree(path, ignore_errors=True)
            else:
                path.unlink(missing_ok=True)
        for folder in self.folders:
            if unix_path(folder) != PREFIX / "drive_c":
                shutil.rmtree(unix_path(folder), ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.clear()


def varied(sample, name, change):
    """A copy of a sample of which `change(recording, folder)` made another one."""
    folder = OUTPUT / "variants" / name
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(sample, folder)
    path = folder / "recording.json"
    recording = json.loads(path.read_text(encoding="utf-8"))
    change(recording, folder)
    path.write_text(json.dumps(recording), encoding="utf-8")
    return folder


def native_only(sample):
    """Why a recording cannot be made real here, or None."""
    recording = json.loads((sample / "recording.json").read_text(encoding="utf-8"))
    for member in ["startError", "pipeError", "exitCodeError"]:
        if any(command.get(member) for command in recording.get("commands", [])):
            return f"the system cannot be made to fail on demand ({member})"
    own = {"copy", "md", "findstr"}
    if any(command["tool"].lower() in own for command in recording.get("commands", [])):
        return "it records a command of the interpreter's own"
    files = {path.lower() for path in recording.get("files", {})}
    if any(path.lower() in files for path in recording.get("readOnly", [])):
        return "a file that cannot be written is so for everyone only in a recording"
    return None


def merge_chunks(events):
    """How much one read of a pipe brings depends on time. So the chunks that follow each other, each
    logged as its text and its size, become one: the texts joined, the sizes added."""
    def size_of(event):
        text = event.get("text", "") if event["event"] == "log" else ""
        match = re.fullmatch(r"\[repo\] dw:(\d+)", text)
        return int(match[1]) if match else None

    merged = []
    previous = None  # (text event, size event) of the chunk before, when nothing came between
    i = 0
    while i < len(events):
        pair = None
        if i + 1 < len(events) and events[i + 1]["event"] == "log":
            # The Windows module logs the text first, the BMC module the size.
            sized_first = events[i].get("file") == "pqmodules/rbmcinfo"
            text, size = (i + 1, i) if sized_first else (i, i + 1)
            if events[text]["event"] == "log" and size_of(events[size]) is not None:
                pair = events[text], events[size]
        if pair is None:
            merged.append(events[i])
            previous = None
            i += 1
            continue
        if previous is None:
            merged += [dict(events[i]), dict(events[i + 1])]
            first, second = merged[-2:]
            previous = (first, second) if size_of(second) is not None else (second, first)
        else:
            previous[0]["text"] += pair[0]["text"].removeprefix("[repo] ")
            total = size_of(previous[1]) + size_of(pair[1])
            previous[1]["text"] = f"[repo] dw:{total}"
        i += 2
    return merged


def passwords(recording):
    """What the operator types as password: the last argument of the AMT log tool."""
    return {command["arguments"].split()[-1] for command in recording.get("commands", [])
            if command["tool"].lower().startswith("amt_log") and command.get("arguments")}


def hide_password(event):
    """A password that was typed on a live machine is hidden in its trace; a recording holds it."""
    line = event.get("commandLine", "")
    match = re.fullmatch(r'(.*\\amt_log\.exe" \S+ \S+ ).*(>"[^>]*)', line)
    return event | {"commandLine": f"{match[1]}***{match[2]}"} if match else event


def check_passwords_hidden(recording, ran, trace):
    for password in passwords(recording):
        for where, text in [("trace", trace.read_bytes()), ("standard output", ran.stdout),
                            ("standard error", ran.stderr)]:
            if password.encode("latin-1") in text:
                raise Failure(f"the password {password} stands in the {where}")


def compare_failures(native, wine):
    """What is said on standard error to be not collected, such as for a missing presence tool. Code 1
    is left out: a stand-in ends with it where the recording has no answer, and natively such a tool is
    missing, which is no failure."""
    def failures(ran):
        return [line for line in ran.stderr.decode(errors="replace").splitlines()
                if "not collected" in line and not re.search(r"ended with code 1\b", line)]

    if failures(native) != failures(wine):
        raise Failure(f"not collected natively: {failures(native)}\n  under Wine: {failures(wine)}")


def read_trace(path):
    lines = path.read_bytes().split(b"\n")
    if lines[-1] != b"":
        raise Failure(f"{path} is cut off")
    return [json.loads(line) for line in lines[:-1]]


def compare(native, wine, least=20):
    native, wine = merge_chunks([hide_password(event) for event in native]), merge_chunks(wine)
    if len(native) < least:
        raise Failure(f"the native trace has only {len(native)} events")
    for number, (expected, got) in enumerate(zip(native, wine), start=1):
        if expected != got:
            raise Failure(f"event {number} differs\n  native: {json.dumps(expected)[:2000]}\n"
                          f"  wine:   {json.dumps(got)[:2000]}")
    if len(native) != len(wine):
        longer = native if len(native) > len(wine) else wine
        raise Failure(f"{len(native)} events natively, {len(wine)} under Wine; the first that only "
                      f"one has: {json.dumps(longer[min(len(native), len(wine))])[:2000]}")
    return len(native)


def compare_files(native, wine):
    """The log folder as each of them left it."""
    def content(folder):
        return {str(path.relative_to(folder)).lower(): path.read_bytes()
                for path in folder.rglob("*") if path.is_file()}

    expected, got = content(native), content(wine)
    if expected.keys() != got.keys():
        raise Failure("log files that only one of them left: "
                      f"{sorted(expected.keys() ^ got.keys())}, natively {sorted(expected)}")
    for name, data in expected.items():
        if got[name] != data:
            raise Failure(f"log file {name} differs:\n  native: {data[:500]!r}\n"
                          f"  wine:   {got[name][:500]!r}")


def standin_variables(sample, state):
    shutil.rmtree(state, ignore_errors=True)
    state.mkdir(parents=True)
    return {"PQ_STANDIN_RECORDING": windows_path(sample), "PQ_STANDIN_STATE": windows_path(state),
            "WINEPATH": SYSTEM_FOLDER}


def check_sample(binaries, standins, pqhost, sample, *options):
    """Compares the two traces; says how many events. `options` are for the live collection alone."""
    traces = OUTPUT / sample.name
    traces.mkdir(parents=True, exist_ok=True)
    native_trace, wine_trace = traces / "native.jsonl", traces / "wine.jsonl"
    wine_trace.unlink(missing_ok=True)
    native_logs = traces / "native-logs"
    shutil.rmtree(native_logs, ignore_errors=True)
    native = subprocess.run([pqhost, "collect", "--replay", sample, "--format", "none", "--trace",
                             native_trace, "--log-folder", native_logs],
                            capture_output=True, check=False, stdin=subprocess.DEVNULL)
    if native.returncode not in (0, 1):
        raise Failure(f"native replay: exit code {native.returncode}\n{native.stderr.decode()}")
    with Machine(binaries, standins, sample) as machine:
        ran = run_wine([machine.host, "collect", "--log-folder", machine.log_folder.rstrip("\\"),
                        "--format", "none", "--trace", windows_path(wine_trace), *options],
                       machine.recording.get("languageId", US_ENGLISH),
                       standin_variables(sample, traces / "state")
                       | interpreter_of_ours(),
                       machine.recording.get("console", "").encode("latin-1"))
        check_passwords_hidden(machine.recording, ran, wine_trace)
        compare_failures(native, ran)
        count = compare(read_trace(native_trace), read_trace(wine_trace))
        if any(LEFT_FILE in event.get("command", "") for event in read_trace(wine_trace)):
            (unix_path(machine.log_folder) / LEFT_FILE).unlink()
        compare_files(native_logs, unix_path(machine.log_folder))
        left = list(unix_path(WORKING_FOLDER).iterdir())
        if left:
            raise Failure(f"left in the folder where the program was started: {left}")
        return count


# A host that lies where the interpreter's quote rule matters: a command line with just two quotes
# keeps them around a blank, and loses them, so that it is split there, around a parenthesis.
HOST_FOLDERS = {
    "a blank": (r"C:\Halyard Host", True),
    "parentheses": (r"C:\Program Files (x86)\Halyard", False),
}


def check_host_folder(folder, is_found):
    """The sample on a host in that folder, as any other; and whether the presence test, which has
    just two quotes on its line, is found there."""
    def check(binaries, standins, pqhost, sample):
        def move(recording, _):
            recording["hostExecutable"] = folder + r"\halyard.exe"
            recording["logFolder"] = folder + "\\logs\\"

        moved = varied(sample, sample.name + " in " + folder.rpartition("\\")[2], move)
        count = check_sample(binaries, standins, pqhost, moved, "--unsafe-folder")
        trace = read_trace(OUTPUT / moved.name / "wine.jsonl")
        tested = [e for e in trace if e.get("commandLine") ==
                  f'/c "{folder}\\pq_tools\\check_amt_bmc.exe" bmc']
        asked = [e for e in trace if "ipmiutil" in e.get("commandLine", "")]
        if not tested or bool(asked) != is_found:
            raise Failure(f"{len(tested)} presence tests, {len(asked)} questions to the BMC")
        return count
    return check


# Folders in which nothing is to be run: the host's, the log folder, and what is wrong with them.
UNSAFE_FOLDERS = {
    "host": (r"C:\Program Files (x86)\Halyard", r"C:\Halyard\logs", "is cut at its first blank"),
    "log": (r"C:\Program Files\Halyard", r"C:\Halyard\100%\logs", "has a %"),
}


def check_unsafe_folder(host_folder, log_folder, said):
    """Nothing is started and nothing written; a check tells the same."""
    def check(binaries, standins, _pqhost, sample):
        def move(recording, _):
            recording["hostExecutable"] = host_folder + r"\halyard.exe"
            recording["logFolder"] = log_folder + "\\"

        moved = varied(sample, sample.name + " in an unsafe folder", move)
        state = OUTPUT / moved.name / "state"
        with Machine(binaries, standins, moved) as machine:
            unix_path(log_folder).rmdir()
            for command in (["collect"], ["query", "SELECT 1"], ["check"]):
                ran = subprocess.run(
                    ["wine", machine.host, *command, "--log-folder", log_folder],
                    cwd=unix_path(WORKING_FOLDER), capture_output=True, stdin=subprocess.DEVNULL,
                    env=os.environ | standin_variables(moved, state) | interpreter_of_ours(),
                    timeout=TIME_LIMIT, check=False)
                if ran.returncode != (1 if command == ["check"] else 2):
                    raise Failure(f"{command}: exit code {ran.returncode}: {ran.stderr!r}")
                if said.encode() not in ran.stderr + ran.stdout:
                    raise Failure(f"{command} says {ran.stderr + ran.stdout!r}")
                if list(state.iterdir()) or unix_path(log_folder).exists():
                    raise Failure(f"{command} has run a tool or made a folder")
        return 3
    return check


# Samples that are recorded from the laid out machine: with a password, a folder that is copied and
# filtered pipes; and one in another language, where much is missing.
RECORDED = ["amt-desktop", "two-socket-server", "bare-machine"]


# Of these, the one that is recorded as a ZIP file.
ZIPPED = "two-socket-server"


def check_recording(binaries, standins, pqhost, sample):
    """Records the live collection and replays it natively: both do the same."""
    folder = OUTPUT / (sample.name + ".recorded")
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    files, wine_trace, native_trace = (
        folder / "recording", folder / "wine.jsonl", folder / "native.jsonl")
    recorded = folder / "recording.zip" if sample.name == ZIPPED else files
    with Machine(binaries, standins, sample) as machine:
        ran = run_wine([machine.host, "collect", "--log-folder", machine.log_folder.rstrip("\\"),
                        "--format", "none", "--trace", windows_path(wine_trace),
                        "--record", windows_path(recorded)],
                       machine.recording.get("languageId", US_ENGLISH),
                       standin_variables(sample, folder / "state")
                       | interpreter_of_ours(),
                       machine.recording.get("console", "").encode("latin-1"))
        again = subprocess.run(["wine", machine.host, "collect", "--format", "none", "--record",
                                windows_path(recorded)], cwd=unix_path(WORKING_FOLDER),
                               capture_output=True, stdin=subprocess.DEVNULL, timeout=TIME_LIMIT,
                               check=False)
        refusal = b"is there already" if sample.name == ZIPPED else b"is not empty"
        if again.returncode != 2 or refusal not in again.stderr:
            raise Failure(f"a recording is written over: {again.returncode} {again.stderr!r}")
        password_of = passwords(machine.recording)
    if recorded != files:
        with zipfile.ZipFile(recorded) as packed:
            if packed.namelist()[:3] != ["submission.json", "recording.json", "manifest.sha256"]:
                raise Failure(f"the ZIP file begins with {packed.namelist()[:3]}")
            packed.extractall(files)
        subprocess.run([pqhost, "verify", recorded], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["sha256sum", "--quiet", "--strict", "-c", "manifest.sha256"], cwd=files,
                   check=True)
    listed = {line.split("  ", 1)[1] for line in
              (files / "manifest.sha256").read_text(encoding="ascii").splitlines()}
    present = {str(path.relative_to(files)) for path in files.rglob("*") if path.is_file()}
    if present - listed != {"manifest.sha256", "submission.json"}:
        raise Failure(f"the manifest lacks {sorted(present - listed)}")
    for path in files.rglob("*"):
        for password in password_of:
            if path.is_file() and password.encode("latin-1") in path.read_bytes():
                raise Failure(f"the password {password} stands in {path}")
    replayed = subprocess.run([pqhost, "collect", "--replay", recorded, "--format", "none",
                               "--trace", native_trace], capture_output=True, check=False,
                              stdin=subprocess.DEVNULL)
    if replayed.returncode not in (0, 1):
        raise Failure(f"replay: exit code {replayed.returncode}\n{replayed.stderr.decode()}")
    compare_failures(replayed, ran)
    return compare(read_trace(native_trace), read_trace(wine_trace))


FORMATS = ["json", "ndjson", "csv", "html", "sqlite", "table"]

# Passwords, and what becomes of them: "distinct" ones stand in no text by chance, "ordinary" ones do;
# the interpreter takes some "apart", so that the tool is never asked with them, and a "digit" for the
# handle of the redirection. The stand-in tool repeats each one, in its login and behind a label.
PASSWORDS = {"Lantern-52": "distinct", "s3cr\xe9t": "distinct", "x&y^z%1": "distinct",
             "deskadmin": "ordinary", "1": "digit", "11": "ordinary", "***": "ordinary", "opened": "ordinary",
             "a>b-Lantern": "apart", "p\"quoted-9": "apart", "pipe|Lantern": "apart"}


def check_password(password, kind):
    """A live collection from a tool that repeats the password, once recorded and traced, once in each
    format: the password is nowhere, other texts are whole, and the recording can be replayed."""
    def check(binaries, standins, pqhost, sample):
        text = ("192.0.2.40 deskadmin {0}\r\nPassword: {0}\r\n"
                "1 2024-01-11 11:11:01 deskadmin opened the cover, sensor 1 of 11\r\n")
        if kind == "distinct":
            text += "no session for {0}, user deskadmin\r\n"

        def change(recording, folder):
            recording["console"] = f"192.0.2.40 deskadmin {password}\n"
            for command in recording["commands"]:
                if command["tool"] == "amt_log.exe":
                    command["arguments"] = f"192.0.2.40 deskadmin {password}"
                    (folder / command["stdout"]).write_bytes(
                        text.format(password).encode("latin-1"))

        number = list(PASSWORDS).index(password)
        varied_sample = varied(sample, f"password {number}", change)
        folder = OUTPUT / f"password_{number}"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        recorded, trace = folder / "recording", folder / "wine.jsonl"
        with Machine(binaries, standins, varied_sample) as machine:
            def collect(*options):
                ran = run_wine([machine.host, "collect", "--module", "AMT_Info", "--log-folder",
                                machine.log_folder.rstrip("\\"), *options], US_ENGLISH,
                               standin_variables(varied_sample, folder / "state")
                               | interpreter_of_ours(),
                               machine.recording["console"].encode("latin-1"))
                shutil.rmtree(folder / "state")
                (folder / "said").open("ab").write(ran.stdout + ran.stderr)
                return ran

            ran = collect("--format", "none", "--trace", windows_path(trace), "--record",
                          windows_path(recorded))
            if password == "Lantern-52":
                for name in FORMATS:
                    collect("--format", name, "--output", windows_path(folder / ("all." + name)))
                collect("--format", "table")
            shutil.copytree(unix_path(machine.log_folder), folder / "logs")
        replay = folder / "native.jsonl"
        native = subprocess.run([pqhost, "collect", "--replay", recorded, "--module", "AMT_Info",
                                 "--format", "none", "--trace", replay], capture_output=True,
                                check=False, stdin=subprocess.DEVNULL)
        compare_failures(native, ran)
        count = compare(read_trace(replay), read_trace(trace), least=10)
        rows = [event["value"] for event in read_trace(trace) if event["event"] == "property"]
        expected = text.format("***").replace("\r\n", "\n").splitlines(keepends=True)
        if kind in ("apart", "digit"):
            expected = []
        if rows != expected:
            raise Failure(f"rows: {rows}\n  expected: {expected}")
        if kind in ("distinct", "apart"):
            for path in (p for p in folder.rglob("*") if p.is_file()):
                for form in {password.encode("latin-1"), password.encode("utf-8"),
                             json.dumps(password)[1:-1].encode()}:
                    if form in path.read_bytes():
                        raise Failure(f"the password {password} stands in {path}")
        return count
    return check


TOOL_LIMIT = 4  # seconds


def check_tool_limit(tool, mode, is_ended):
    """The server's collection with a tool that hangs, or that ends but leaves a child behind, which
    holds what the tool wrote to. It is ended with its child, by the limit or, when nothing waits for
    it any more, with the collection, and everything else is collected."""
    def check(binaries, standins, _pqhost, sample):
        folder = OUTPUT / f"tool_limit_{tool}_{mode}"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        result = folder / "result.json"
        with Machine(binaries, standins, sample) as machine:
            program = unix_path(f"{SYSTEM_FOLDER}\\{tool}.exe")
            program.unlink()
            place(standins / "standin_endless.exe", program)
            ran = run_wine([machine.host, "collect", "--module", "Windows_Related_Info",
                            "--log-folder", machine.log_folder.rstrip("\\"), "--format", "json",
                            "--output", windows_path(result), "--tool-limit", str(TOOL_LIMIT)],
                           US_ENGLISH,
                           standin_variables(sample, folder / "state")
                           | {"PQ_STANDIN_MODE": mode} | interpreter_of_ours())
            left = count_running(f"{tool}.exe")
        if left:
            raise Failure(f"{left} processes of {tool}.exe run on")
        said = f"did not end by itself and was ended after {TOOL_LIMIT} s" in ran.stderr.decode(
            errors="replace")
        if said != is_ended or ran.returncode != (1 if is_ended else 0):
            raise Failure(f"exit code {ran.returncode}: {ran.stderr!r}")
        tables = json.loads(result.read_text(encoding="utf-8"))["tables"]
        rows = {table["class"]: len(table["rows"]) for table in tables}
        texts = {table["class"]: table["status"]["text"] for table in tables}
        if rows["NETSTATINFO"] == 0 or (rows["ARPINFO"] == 0) != (tool == "arp"):
            raise Failure(f"rows: {rows}")
        if tool == "arp" and texts["ARPINFO"] != f"arp.exe was ended after {TOOL_LIMIT} s":
            raise Failure(f"status: {texts}")
        return rows["NETSTATINFO"]
    return check


def check_hung_tool(binaries, standins, _pqhost, sample):
    """A BMC's utility that hangs is started once, though a dozen steps ask for it."""
    folder = OUTPUT / "hung_tool"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    result, recorded = folder / "result.json", folder / "recording"
    with Machine(binaries, standins, sample) as machine:
        host_folder = machine.host.rpartition("\\")[0]
        program = unix_path(f"{host_folder}\\pq_tools\\ipmiutilnh.exe")
        program.unlink()
        place(standins / "standin_endless.exe", program)
        began = time.monotonic()
        ran = run_wine([machine.host, "collect", "--module", "BMC_Info", "--log-folder",
                        machine.log_folder.rstrip("\\"), "--format", "json", "--output",
                        windows_path(result), "--tool-limit", str(TOOL_LIMIT), "--record",
                        windows_path(recorded)],
                       US_ENGLISH,
                       standin_variables(sample, folder / "state")
                       | {"PQ_STANDIN_MODE": "hang"} | interpreter_of_ours())
        seconds = time.monotonic() - began
    said = ran.stderr.decode(errors="replace")
    ended = f"did not end by itself and was ended after {TOOL_LIMIT} s"
    refused = f"was not started again, because it had been ended after {TOOL_LIMIT} s"
    if ran.returncode != 1 or said.count(ended) != 1 or said.count(refused) != 1:
        raise Failure(f"exit code {ran.returncode}: {said}")
    if seconds > 4 * TOOL_LIMIT:
        raise Failure(f"it took {seconds} s")
    tables = json.loads(result.read_text(encoding="utf-8"))["tables"]
    texts = {table["class"]: table["status"]["text"] for table in tables}
    if not texts["SELINFO"].endswith(f"had been ended after {TOOL_LIMIT} s and was not started again"):
        raise Failure(f"status: {texts}")
    runs = [command for command in
            json.loads((recorded / "recording.json").read_text(encoding="utf-8"))["commands"]
            if command["tool"] == "ipmiutilnh.exe"]
    refused = [command for command in runs if command.get("startError") == CANCELLED]
    if len(runs) < 2 or len(refused) != len(runs) - 1 or "startError" in runs[0]:
        raise Failure(f"recorded: {runs}")
    return len(tables)


def check_no_interpreter(binaries, standins, pqhost, sample):
    """The system's interpreter cannot be started: the steps say so, and so does the recording."""
    folder = OUTPUT / "no_interpreter"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    recorded, wine_trace, native_trace = (
        folder / "recording", folder / "wine.jsonl", folder / "native.jsonl")
    interpreter = unix_path(INTERPRETER)
    with Machine(binaries, standins, sample) as machine:
        kept = interpreter.rename(interpreter.with_name("kept.exe"))
        try:
            ran = run_wine([machine.host, "collect", "--module", "BMC_Info", "--module",
                            "Windows_Related_Info", "--module", "sampleModule2", "--log-folder",
                            machine.log_folder.rstrip("\\"), "--format", "none", "--trace",
                            windows_path(wine_trace), "--record", windows_path(recorded)],
                           US_ENGLISH, standin_variables(sample, folder / "state")
                           | interpreter_of_ours())
        finally:
            kept.rename(interpreter)
    if ran.returncode != 1 or b"CreateProcess failed" not in wine_trace.read_bytes():
        raise Failure(f"exit code {ran.returncode}: {ran.stderr!r}")
    subprocess.run([pqhost, "collect", "--replay", recorded, "--module", "BMC_Info", "--module",
                    "Windows_Related_Info", "--module", "sampleModule2", "--format", "none",
                    "--trace", native_trace], capture_output=True, check=False,
                   stdin=subprocess.DEVNULL)
    return compare(read_trace(native_trace), read_trace(wine_trace), least=5)


def run_on_console(arguments, variables, answers=()):
    """What a program prints on a console of its own, which Wine makes of a terminal, without what
    moves the cursor; and its exit code. Each answer is a pair: typed when the text was printed."""
    terminal, inside = pty.openpty()
    tty.setraw(inside)
    termios.tcsetwinsize(inside, (50, CONSOLE_WIDTH))
    environment = os.environ | {"TERM": "xterm", "LC_ALL": "C"} | variables
    said = plain = b""
    answers = list(answers)
    with subprocess.Popen(["wine", *arguments], cwd=unix_path(WORKING_FOLDER), env=environment,
                          stdin=inside, stdout=inside, stderr=inside, start_new_session=True) as ran:
        os.close(inside)
        deadline = time.monotonic() + TIME_LIMIT
        while time.monotonic() < deadline:
            ready = select.select([terminal], [], [], 0.2)[0]
            try:
                piece = os.read(terminal, 1 << 16) if ready else None
            except OSError:  # nobody has the other end any more
                break
            if piece is None:
                if ran.poll() is not None:
                    break
                continue
            said += piece
            plain = re.sub(rb"\x1b\[[?0-9;]*[A-Za-ln-z]", b"", said.replace(b"\x1b[1C", b" "))
            if answers and answers[0][0] in plain:
                os.write(terminal, answers.pop(0)[1])
        else:
            ran.kill()
            raise Failure(f"it waits for ever: {plain[-500:]!r}")
    os.close(terminal)
    if answers:
        raise Failure(f"never printed: {answers[0][0]!r}; but {plain[-2000:]!r}")
    return plain, ran.returncode


PRESS_ENTER = b"Press Enter to close this window."


def check_console(binaries, standins, _pqhost, sample):
    """On a console there are colours, unless the user wants none; a window of the program's own stays
    until Enter is pressed."""
    with Machine(binaries, standins, sample) as machine:
        command = [machine.host, "health", "--replay", windows_path(sample)]
        plain, code = run_on_console([*command, "--own-window"], {}, [(PRESS_ENTER, b"x\r")])
        if b"\x1b[35m" not in plain or code != 1:
            raise Failure(f"exit code {code}: {plain!r}")
        plain, code = run_on_console(command, {"NO_COLOR": "1"})
        if b"\x1b[35m" in plain or PRESS_ENTER in plain or code != 1:
            raise Failure(f"exit code {code} without colours: {plain!r}")
    return 2


def check_double_click(binaries, standins, _pqhost, sample):
    """Started without any word in a window of its own: the report is on the desktop, Explorer opens
    it, and the window stays until Enter is pressed."""
    state = OUTPUT / "double_click.state"
    desktop = next((PREFIX / "drive_c" / "users").glob("*/Desktop"))
    explorer, before = unix_path(r"C:\Windows\explorer.exe"), set(desktop.iterdir())
    variables = standin_variables(sample, state) | interpreter_of_ours()
    with Machine(binaries, standins, sample) as machine:
        kept = explorer.rename(explorer.with_name("kept.exe"))
        try:
            shutil.copyfile(standins / "standin_explorer.exe", explorer)
            plain, _ = run_on_console(
                [machine.host], variables, [(b"just press Enter:", b"\r"), (PRESS_ENTER, b"\r")])
            deadline = time.monotonic() + 30
            while not (state / "explorer").exists() and time.monotonic() < deadline:
                time.sleep(0.1)
        finally:
            kept.replace(explorer)
            made = set(desktop.iterdir()) - before
            for path in made:
                path.unlink()
    opened = (state / "explorer").read_text() if (state / "explorer").exists() else ""
    reports = [path.name for path in made if path.suffix == ".html"]
    if len(reports) != 1 or f'\\Desktop\\{reports[0]}"' not in opened:
        raise Failure(f"made: {made}, opened: {opened}, said: {plain!r}")
    return 1


def check_closed_output(binaries, standins, _pqhost, sample):
    """Without a standard output there is nothing to write results to, and that is said; without a
    standard error the results are whole."""
    question = ["query", "SELECT 1", "--replay", windows_path(sample), "--format", "csv"]
    with Machine(binaries, standins, sample) as machine:
        def run(closed, **streams):
            return subprocess.run(
                ["sh", "-c", f'exec wine "$@" {closed}', "sh", machine.host, *question],
                cwd=unix_path(WORKING_FOLDER), env=os.environ, stdin=subprocess.DEVNULL,
                timeout=TIME_LIMIT, check=False, **streams)

        ran = run(">&-", stderr=subprocess.PIPE)
        if ran.returncode != 1 or b"standard output could not be written" not in ran.stderr:
            raise Failure(f"without output: exit code {ran.returncode}, {ran.stderr!r}")
        ran = run("2>&-", stdout=subprocess.PIPE)
        if not ran.stdout.endswith(b"1\r\n"):
            raise Failure(f"without errors: {ran.stdout!r}")
    return 2


def check_setup(binaries, standins, _pqhost, sample):
    """Of a tool that is found elsewhere its version and signer are told."""
    folder = OUTPUT / "setup"
    shutil.rmtree(folder, ignore_errors=True)
    for name, subject in [("storcli64", "/CN=Lantern Works"), ("arcconf", "/")]:
        (folder / "found").mkdir(parents=True, exist_ok=True)
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", subject,
                        "-keyout", folder / "key", "-out", folder / "certificate"],
                       check=True, capture_output=True)
        subprocess.run(["osslsigncode", "sign", "-certs", folder / "certificate", "-key",
                        folder / "key", "-in", binaries / "repository.dll", "-out",
                        folder / "found" / f"{name}.exe"], check=True, capture_output=True)
    with Machine(binaries, standins, sample) as machine:
        host_folder = machine.host.rpartition("\\")[0]
        shutil.rmtree(unix_path(host_folder + r"\utilities"), ignore_errors=True)
        ran = run_wine([machine.host, "setup", "--from", windows_path(folder / "found")], US_ENGLISH,
                       {"WINEPATH": SYSTEM_FOLDER})
    said = ran.stdout.decode()
    for tool, signer in [("storcli64", "signed by Lantern Works"), ("arcconf", "not signed")]:
        if not re.search(rf"{tool}\.exe, version \d+\.\d+\.\d+\.0, {signer}\s", said):
            raise Failure(f"{tool}: {said}{ran.stderr!r}")
    return 2


def check_old_archive(binaries, standins, _pqhost, sample):
    """The archive in the folder is days old: arcconf left none, because it is missing, or though it
    ran. Its tables say so with the date of the oldest file, and the collection has a problem."""
    folder = OUTPUT / "old_archive"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    result = folder / "result.json"
    days = 24 * 3600
    oldest = time.time() - 5 * days
    said = "files of " + time.strftime("%Y-%m-%d %H:%M:%S", time.localtime(oldest))
    with Machine(binaries, standins, sample) as machine:
        for path in machine.recording["files"]:
            is_config = path.endswith("Controller_1_Config.txt")
            written = oldest if is_config else oldest + 2 * days
            os.utime(unix_path(path), (written, written))
        host_folder = machine.host.rpartition("\\")[0]
        arcconf = unix_path(host_folder + r"\utilities\arcconf\arcconf.exe")
        for reason in ("left no newer ones", "is not on this machine"):
            if reason == "is not on this machine":
                arcconf.unlink()
            ran = run_wine([machine.host, "collect", "--module", "sampleModule1", "--log-folder",
                            machine.log_folder.rstrip("\\"), "--format", "json", "--output",
                            windows_path(result)], US_ENGLISH,
                           standin_variables(sample, folder / "state") | interpreter_of_ours())
            collected = json.loads(result.read_text(encoding="utf-8"))
            tables = {table["class"]: table for table in collected["tables"]}
            for name in ("PMCINFO", "PMCVER", "PMCLINK"):
                notes = tables[name]["status"]["notes"]
                if not tables[name]["rows"] or not any(
                        note.startswith(f"from {said}") and note.endswith(f"; arcconf.exe {reason}")
                        for note in notes):
                    raise Failure(f"{name}, where arcconf {reason}: {notes}")
            problem = f"{reason}; {said}"
            if ran.returncode != 1 or problem not in ran.stderr.decode(errors="replace"):
                raise Failure(f"exit code {ran.returncode}: {ran.stderr!r}")
            if len(collected["problems"]) != 1 or problem not in collected["problems"][0]:
                raise Failure(f"problems: {collected['problems']}")
    return len(tables)


def check_killed(binaries, standins, _pqhost, sample):
    """The program is killed while arp.exe hangs: arp.exe and its interpreter go with it."""
    folder = OUTPUT / "killed"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    with Machine(binaries, standins, sample) as machine:
        arp = unix_path(SYSTEM_FOLDER + r"\arp.exe")
        arp.unlink()
        place(standins / "standin_endless.exe", arp)
        variables = standin_variables(sample, folder / "state") | interpreter_of_ours() | {
            "LC_ALL": locale_of(US_ENGLISH), "PQ_STANDIN_MODE": "hang"}
        with subprocess.Popen(
                ["wine", machine.host, "collect", "--module", "Windows_Related_Info"],
                cwd=unix_path(WORKING_FOLDER), env=os.environ | variables, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as ran:
            wait_for_first_tool(folder / "state")
            running = count_running("arp.exe")
            ran.kill()
        deadline = time.monotonic() + 30
        while count_running("arp.exe") and time.monotonic() < deadline:
            time.sleep(0.1)
        if running != 1 or count_running("arp.exe"):
            raise Failure(f"arp.exe ran {running} times, {count_running('arp.exe')} run on")
    return running


def check_standard_output(binaries, standins, _pqhost, sample):
    """Results alone are on standard output: the prompt for the AMT login and what the presence test
    for a BMC prints are on standard error."""
    with Machine(binaries, standins, sample) as machine:
        ran = run_wine([machine.host, "collect", "--module", "AMT_Info", "--module", "BMC_Info",
                        "--log-folder", machine.log_folder.rstrip("\\"), "--format", "json"],
                       US_ENGLISH,
                       standin_variables(sample, OUTPUT / "standard_output.state")
                       | interpreter_of_ours(), machine.recording["console"].encode("latin-1"))
    tables = json.loads(ran.stdout)["tables"]
    for said in (b"no BMC here", b"Please input the AMT IP"):
        if said not in ran.stderr:
            raise Failure(f"{said} is not on standard error: {ran.stderr!r}")
    return len(tables)


def check_login(binaries, standins, _pqhost, sample):
    """Whoever has no console is not waited for; a file gives the login if it is its owner's alone; and
    what the interpreter would take for its own is warned of."""
    count = 0
    with Machine(binaries, standins, sample) as machine:
        login = unix_path(WORKING_FOLDER) / "login"

        def expect(code, said, *options):
            shutil.rmtree(OUTPUT / "login.state", ignore_errors=True)
            # A pipe that nobody writes to, as a service has.
            silent, kept = os.pipe()
            ran = subprocess.run(["wine", machine.host, "collect", "--module", "AMT_Info", "--format", "csv",
                                  "--log-folder", machine.log_folder.rstrip("\\"), *options],
                                 cwd=unix_path(WORKING_FOLDER), stdin=silent, capture_output=True,
                                 env=os.environ | standin_variables(sample, OUTPUT / "login.state")
                                 | interpreter_of_ours(), timeout=TIME_LIMIT, check=False)
            os.close(silent)
            os.close(kept)
            if ran.returncode != code or said not in ran.stderr:
                raise Failure(f"{options}: exit code {ran.returncode}, {ran.stderr!r}")
            return ran

        none = b"asked for a login and got none, so its log is not collected: "
        expect(1, none + b"--no-input", "--no-input")
        expect(1, none + b"standard input is no console")
        login.write_text(machine.recording["console"], encoding="latin-1")
        login.chmod(0o600)
        ran = expect(0, b"AMTLOG", "--amt-login", "login", "--no-input")
        if b"Cover opened" not in ran.stdout:
            raise Failure(f"the log is not collected: {ran.stdout!r}")
        login.chmod(0o644)
        expect(2, b"--amt-login login may be read by others", "--amt-login", "login")
        login.write_text("192.0.2.40 deskadmin a&inj\n")
        login.chmod(0o600)
        ran = expect(1, b"the AMT login holds & which", "--amt-login", "login")
        if b"inj" in ran.stderr:
            raise Failure(f"a part of the password is shown: {ran.stderr!r}")
        login.unlink()
        count += 5
    return count


def print_presence(recording, folder):
    """The presence test for a BMC prints something to its standard output."""
    (folder / "presence.txt").write_bytes(b"no BMC here\r\n")
    for command in recording["commands"]:
        if command.get("arguments") == "bmc":
            command["stdout"] = "presence.txt"


def check_planted(binaries, standins, _pqhost, sample):
    """Programs with the names of the system's in the folder where the program is started: none of
    them is run, and the results are where a relative path says, seen from there."""
    folder = OUTPUT / "planted"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    with Machine(binaries, standins, sample) as machine:
        for name in SYSTEM_TOOLS:
            place(standins / "standin_endless.exe", unix_path(f"{WORKING_FOLDER}\\{name}.exe"))
        run_wine([machine.host, "collect", "--module", "Windows_Related_Info", "--format", "json",
                  "--output", "result.json", "--trace", "trace.jsonl", "--log-folder", "own logs",
                  "--record", "recorded"], US_ENGLISH,
                 standin_variables(sample, folder / "state")
                 | {"PQ_STANDIN_MODE": "slow"} | interpreter_of_ours())
        started = unix_path(WORKING_FOLDER)
        rows = {table["class"]: len(table["rows"]) for table in
                json.loads((started / "result.json").read_text(encoding="utf-8"))["tables"]}
        said = (started / "trace.jsonl").read_bytes()
        left = {path.name for path in started.iterdir()} - {f"{name}.exe" for name in SYSTEM_TOOLS}
    if b"slow tool" in said or rows["ARPINFO"] == 0 or rows["NETSTATINFO"] == 0:
        raise Failure(f"a planted program was run: {rows}")
    if left != {"result.json", "trace.jsonl", "own logs", "recorded"}:
        raise Failure(f"where the program was started: {left}")
    return rows["ARPINFO"]


def wait_for_first_tool(state):
    """Until a stand-in has answered and the tool behind it has had the time to start."""
    deadline = time.monotonic() + TIME_LIMIT
    while not any(state.iterdir()) and time.monotonic() < deadline:
        time.sleep(0.1)
    time.sleep(2)


def check_interruption(binaries, standins, _pqhost, sample):
    """Ctrl-C while arp.exe takes its time: it ends by itself, netstat.exe is not run any more, and
    what is there is written. Wine makes the event out of the signal."""
    folder = OUTPUT / "interruption"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    result, trace, recorded = folder / "result.json", folder / "trace.jsonl", folder / "recording"
    with Machine(binaries, standins, sample) as machine:
        arp = unix_path(SYSTEM_FOLDER + r"\arp.exe")
        arp.unlink()
        place(standins / "standin_endless.exe", arp)
        variables = standin_variables(sample, folder / "state") | {
            "LC_ALL": locale_of(US_ENGLISH), "PQ_STANDIN_MODE": "slow"} | interpreter_of_ours()
        with subprocess.Popen(
                ["wine", machine.host, "collect", "--module", "Windows_Related_Info",
                 "--log-folder", machine.log_folder.rstrip("\\"), "--format", "json", "--output",
                 windows_path(result), "--trace", windows_path(trace), "--record",
                 windows_path(recorded)],
                cwd=unix_path(WORKING_FOLDER), env=os.environ | variables, stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE, stderr=subprocess.PIPE) as ran:
            wait_for_first_tool(folder / "state")
            ran.send_signal(signal.SIGINT)
            error = ran.communicate(timeout=TIME_LIMIT)[1].decode(errors="replace")
    if ran.returncode != 1 or "interrupted: the collection ended" not in error:
        raise Failure(f"exit code {ran.returncode}: {error}")
    events = read_trace(trace)
    if not any("slow tool is done" in event.get("text", "") for event in events):
        raise Failure("the running tool did not end by itself")
    if any("netstat" in event.get("commandLine", "") for event in events):
        raise Failure("netstat.exe was started")
    outcomes = {table["class"]: table["status"] for table in
                json.loads(result.read_text(encoding="utf-8"))["tables"]}
    if "interrupted" not in json.dumps(outcomes["NETSTATINFO"]):
        raise Failure(f"status: {outcomes}")
    kept = json.loads((recorded / "recording.json").read_text(encoding="utf-8"))["commands"]
    if [command["tool"] for command in kept] != ["route", "arp.exe"]:
        raise Failure(f"recorded: {kept}")
    return len(events)


def check_second_interruption(binaries, standins, _pqhost, sample):
    """A second Ctrl-C while arp.exe hangs ends the program at once and leaves no half output."""
    folder = OUTPUT / "second_interruption"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    with Machine(binaries, standins, sample) as machine:
        arp = unix_path(SYSTEM_FOLDER + r"\arp.exe")
        arp.unlink()
        place(standins / "standin_endless.exe", arp)
        variables = standin_variables(sample, folder / "state") | interpreter_of_ours() | {
            "LC_ALL": locale_of(US_ENGLISH), "PQ_STANDIN_MODE": "hang"}
        with subprocess.Popen(
                ["wine", machine.host, "collect", "--module", "Windows_Related_Info",
                 "--log-folder", machine.log_folder.rstrip("\\"), "--format", "json", "--output",
                 windows_path(folder / "result.json")],
                cwd=unix_path(WORKING_FOLDER), env=os.environ | variables, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as ran:
            wait_for_first_tool(folder / "state")
            for _ in range(2):
                ran.send_signal(signal.SIGINT)
                time.sleep(2)
            try:
                ran.wait(timeout=30)  # far less than the tool takes
            except subprocess.TimeoutExpired as late:
                ran.kill()
                raise Failure("it runs on") from late
    # Nothing of the exit code: the system gives it, and Wine's is 0.
    written = [path.name for path in folder.iterdir() if path.name != "state"]
    if written:
        raise Failure(f"half a result: {written}")
    return 2


def check_wines_own(binaries, standins, _pqhost, sample):
    """The ARP and the connection table through Wine's own interpreter and its own netstat, which
    lists the connections that this very machine has. Wine has no arp; that one stands in."""
    result = OUTPUT / "wines_own.json"
    result.unlink(missing_ok=True)
    with socket.create_server(("127.0.0.1", 0)) as server, \
         socket.create_connection(server.getsockname()) as client, \
         Machine(binaries, standins, sample) as machine:
        local, remote = client.getsockname()[1], client.getpeername()[1]
        for name in SYSTEM_TOOLS:
            if name != "arp":
                unix_path(f"{SYSTEM_FOLDER}\\{name}.exe").unlink()
        run_wine([machine.host, "collect", "--module", "Windows_Related_Info", "--log-folder",
                  machine.log_folder.rstrip("\\"), "--format", "json", "--output",
                  windows_path(result)],
                 US_ENGLISH,
                 standin_variables(sample, OUTPUT / "wines_own.state")
                 | {"WINEDLLOVERRIDES": os.environ["WINEDLLOVERRIDES"] + ";cmd.exe=b"})
    collected = json.loads(result.read_text(encoding="utf-8"))
    rows = {table["class"]: [list(row.values()) for row in table["rows"]]
            for table in collected["tables"]}
    arp_file = next(c["stdout"] for c in machine.recording["commands"] if "arp" in c["tool"])
    kept = [line.split() for line in (sample / arp_file).read_bytes().decode("latin-1").split("\n")
            if len(line) + 1 > 52]
    if not kept or rows["ARPINFO"] != kept:
        raise Failure(f"ARP table: {rows['ARPINFO']}\nexpected: {kept}")
    ours = [row for row in rows["NETSTATINFO"]
            if row[0] == "TCP" and row[1].endswith(f":{local}") and row[2].endswith(f":{remote}")
            and row[3] == "ESTABLISHED"]
    if len(ours) != 1:
        raise Failure(f"the connection {local} to {remote} is in the table {len(ours)} times: "
                      f"{rows['NETSTATINFO']}")
    return len(rows["ARPINFO"]) + len(rows["NETSTATINFO"])


def main():
    binaries, standins, pqhost = (pathlib.Path(a).resolve() for a in sys.argv[1:4])
    samples = sorted(path.parent for path in (ROOT / "samples").glob("*/recording.json"))
    if len(sys.argv) > 4:
        samples = [sample for sample in samples if sample.name in sys.argv[4:]]
    shutil.copyfile(standins / "standin_interpreter.exe", unix_path(INTERPRETER))
    passed = failed = 0

    def check(name, run, sample):
        nonlocal passed, failed
        try:
            print(f"[       OK ] {name}: {repeat(run, name, sample)} events")
            passed += 1
        except (Failure, OSError, ValueError, KeyError, subprocess.SubprocessError) as failure:
            print(f"[  FAILED  ] {name}: {type(failure).__name__}: {failure}")
            failed += 1
        sys.stdout.flush()

    def repeat(run, name, sample):
        for left in (2, 1, 0):
            wait_for_wine()
            try:
                return run(binaries, standins, pqhost, sample)
            except WineFailure:
                if not left:
                    raise
                print(f"[ repeated ] {name}: Wine could not start a process")

    for sample in samples:
        reason = native_only(sample)
        if reason:
            print(f"[ native   ] {sample.name}: not under Wine, {reason}")
        else:
            check(sample.name, check_sample, sample)
    for sample in samples:
        if sample.name in RECORDED:
            check(f"recording of {sample.name}", check_recording, sample)
    for name, (folder, is_found) in HOST_FOLDERS.items():
        check(f"blade on a host in a folder with {name}", check_host_folder(folder, is_found),
              ROOT / "samples" / "blade")
    for name, folders in UNSAFE_FOLDERS.items():
        check(f"an unsafe {name} folder", check_unsafe_folder(*folders), ROOT / "samples" / "blade")
    for password, kind in PASSWORDS.items():
        check(f"the AMT password {ascii(password)}", check_password(password, kind),
              ROOT / "samples" / "amt-desktop")
    # arp.exe is read through a pipe, route.exe writes to a file.
    for tool, mode, is_ended in [("arp", "hang", True), ("arp", "leave-child", True),
                                 ("route", "hang", True), ("route", "leave-child", False)]:
        check(f"{tool} with a limit ({mode})", check_tool_limit(tool, mode, is_ended),
              ROOT / "samples" / "two-socket-server")
    check("a tool that hangs each time", check_hung_tool, ROOT / "samples" / "two-socket-server")
    check("no interpreter", check_no_interpreter, ROOT / "samples" / "two-socket-server")
    check("a console", check_console, ROOT / "samples" / "blade")
    check("a double-click", check_double_click, ROOT / "samples" / "bare-machine")
    check("no standard output", check_closed_output, ROOT / "samples" / "bare-machine")
    check("signed tools", check_setup, ROOT / "samples" / "two-socket-server")
    check("an old archive", check_old_archive, ROOT / "samples" / "two-socket-server")
    check("planted programs", check_planted, ROOT / "samples" / "two-socket-server")
    check("a killed collection", check_killed, ROOT / "samples" / "two-socket-server")
    check("AMT login", check_login, ROOT / "samples" / "amt-desktop")
    check("standard output", check_standard_output,
          varied(ROOT / "samples" / "amt-desktop", "standard output", print_presence))
    check("Ctrl-C", check_interruption, ROOT / "samples" / "two-socket-server")
    check("Ctrl-C twice", check_second_interruption, ROOT / "samples" / "two-socket-server")
    check("Wine's own interpreter and netstat", check_wines_own, ROOT / "samples" / "two-socket-server")
    wait_for_wine()
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


sys.exit(main())
