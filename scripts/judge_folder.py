"""Makes recordings of tool outputs, and compares how pqhost judges them with what is known.

The known verdicts are in tests/data/verdicts.json, found by what was asked and the SHA-256 of the
texts, so that the texts themselves need not be here. Ends with "N passed, N failed".
"""

import argparse
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import tempfile

VERDICTS = pathlib.Path(__file__).parent.parent / "tests" / "data" / "verdicts.json"

# What a file holds, by its tool's folder and its name up to "__": the answer of a program to
# arguments, or (program None) a file of the machine. A text that the modules do not ask for answers
# the question that it is most like.
SHOW = ("storcli.exe", "/c0 show")
DRIVES = ("storcli.exe", "/c0/eall/sall show all")
EVENTS = ("storcli.exe", "/c0 show events")
FIRMWARE_LOG = ("storcli.exe", "/c0 show termlog")
ARCHIVE = "C:\\Support\\Firmware\\"
TEXTS = [
    ("storcli2?", r"(show_)?ctrlcount", ("storcli.exe", "show ctrlcount")),
    ("storcli2?", r"c0_(eall_)?sall_show_all", DRIVES),
    ("storcli2?", r"(c0_)?show_events.*", EVENTS),
    ("storcli2?", r"(c0_show_)?termlog.*", FIRMWARE_LOG),
    ("storcli2?", r"(c0_|call_)?(cv_)?show(_all)?", SHOW),
    ("megacli", r".*", FIRMWARE_LOG),
    ("arcconf", r"getconfig_1|Controller_1_Config", (None, ARCHIVE + "Controller_1_Config.txt")),
    ("arcconf", r"Controller_\d_\w+", (None, ARCHIVE + "{name}.txt")),
    ("intelrst", r"IntelVROCCli.*", ("IntelVROCCli.exe", "-I")),
    ("intelrst", r"rstcli64.*", ("rstcli64_5.exe", "-I")),
    ("ipmiutil", r"(\w*_)?sensor_s_q", ("ipmiutilnh.exe", "sensor -s -q")),
    ("ipmiutil", r"(\w*_)?sensor", ("ipmiutilnh.exe", "sensor")),
    ("ipmiutil", r"(\w*_)?sel_r", ("ipmiutilnh.exe", "sel -r")),
    ("ipmiutil", r"(\w*_)?sel", ("ipmiutilnh.exe", "sel")),
    ("ipmiutil", r"(\w*_)?lan", ("ipmiutilnh.exe", "lan")),
    ("ipmiutil", r"(korvaxoem_|\w*_)?fru", ("ipmiutilnh.exe", "korvaxoem fru")),
    ("ipmiutil", r"korvaxoem_(mc|selftest|psu|led|ver)", ("ipmiutilnh.exe", "korvaxoem {1}")),
]
# Tools whose absence says nothing, and a device that is asked for first.
PRESENT = {
    "ipmiutil": [("check_amt_bmc.exe", "bmc", b"", 5)],
    "arcconf": [("arcconf.exe", "savesupportarchive c:\\", b"Controllers found: 1\r\n", 0)],
}
# What begins the answer for a controller in a text about all of them, and what it is without that.
SUMMARY = re.compile(rb"(?m)^Generating detailed summary")
CONTROLLER = re.compile(rb"(?m)^Controller = \d+\r?$")



class Text:
    """A file that a tool wrote."""

    def __init__(self, path):
        self.path = path
        self.content = path.read_bytes()
        self.key = None
        self.tool = path.parent.name
        command, _, machine = path.stem.partition("__")
        self.machine = machine
        self.question = None
        for tool, name, question in TEXTS:
            found = re.fullmatch(name, command)
            if re.fullmatch(tool, self.tool) and found:
                program, arguments = question
                fields = [command, *("" if group is None else group for group in found.groups())]
                self.question = (program, arguments.format(*fields, name=command))
                # One text can be the answer to two questions.
                self.key = f"{self.question[1]}: {hashlib.sha256(self.content).hexdigest()}"
                if self.tool == "ipmiutil" and not machine:
                    # Texts of one visit begin alike: "late_sel", "late_sensor".
                    group = fields[1] if len(fields) > 1 else ""
                    self.machine = "" if command.startswith("korvaxoem_") else group.strip("_")
                break


def split_controllers(text):
    """The answers of each controller in a text about all of them; else the text alone."""
    starts = [match.start() for match in (SUMMARY if SUMMARY.search(text) else CONTROLLER).finditer(text)]
    starts = [0] + starts[1:]
    return [text[start:end] for start, end in zip(starts, starts[1:] + [len(text)])]


def write_recording(folder, texts):
    """A machine that answers with these texts and knows nothing else."""
    recording = {"format": 1, "commands": [], "files": {}}

    def keep(name, content):
        (folder / name).write_bytes(content)
        return name

    def answer(program, arguments, content, exit_code=0):
        number = len(recording["commands"])
        recording["commands"].append({"tool": program, "arguments": arguments,
                                      "stdout": keep(f"{number}.txt", content),
                                      "exitCode": exit_code})

    for tool in {text.tool for text in texts}:
        for command in PRESENT.get(tool, []):
            answer(*command)
    controllers = 0
    for text in texts:
        program, arguments = text.question
        if program is None:
            recording["files"][arguments] = keep(arguments.rsplit("\\", 1)[1], text.content)
        elif text.question == SHOW:
            answers = split_controllers(text.content)
            controllers = max(controllers, len(answers))
            for number, content in enumerate(answers):
                answer(program, f"/c{number} show", content)
        else:
            answer(program, arguments, text.content)
    asked = {text.question for text in texts}
    if asked & {SHOW, DRIVES, EVENTS, FIRMWARE_LOG} and ("storcli.exe", "show ctrlcount") not in asked:
        count = f"Status = Success\r\n\r\nController Count = {max(controllers, 1)}\r\n\r\n"
        answer("storcli.exe", "show ctrlcount", count.encode())
    (folder / "recording.json").write_text(json.dumps(recording))


def judge(pqhost, folder):
    """Verdict and alarming findings, as verdicts.json has them."""
    process = subprocess.run([pqhost, "health", "--replay", folder, "--format", "json"],
                             capture_output=True, text=True, check=False)
    if not process.stdout:
        return {"verdict": "refused", "findings": [process.stderr.strip()]}
    health = json.loads(process.stdout)
    findings = [f"{finding['severity']} {finding['key']}" for finding in health["findings"]
                if finding["severity"] != "notice"]
    return {"verdict": health["verdict"], "findings": findings}


def find_machines(folder):
    """Lists of texts: each text alone, and all of one machine where there are several."""
    texts = [Text(path) for path in sorted(folder.glob("*/*")) if path.is_file()]
    known = [text for text in texts if text.question]
    for text in texts:
        if text.question is None:
            print(f"not judged: {text.path.relative_to(folder)}")
    machines = [[text] for text in known]
    together = {}
    for text in known:
        # Intel's two programs are for different drivers: one machine has one of them.
        if text.tool != "intelrst":
            together.setdefault((text.tool, text.machine), []).append(text)
    machines += [group for group in together.values()
                 if len({text.question for text in group}) == len(group) > 1]
    return machines


def write_verdicts(verdicts):
    """A line for each machine, in the order of its texts."""
    lines = [json.dumps({"texts": list(texts), **verdicts[texts]}) for texts in sorted(verdicts)]
    VERDICTS.write_text("[\n" + ",\n".join(lines) + "\n]\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("pqhost", type=pathlib.Path)
    parser.add_argument("folders", type=pathlib.Path, nargs="+")
    parser.add_argument("--keep", type=pathlib.Path)
    parser.add_argument("--learn", action="store_true")
    options = parser.parse_args()
    verdicts = {tuple(machine.pop("texts")): machine for machine in json.loads(VERDICTS.read_text())}
    machines = [texts for folder in options.folders for texts in find_machines(folder)]
    counts = {True: 0, False: 0}
    with tempfile.TemporaryDirectory() as temporary:
        kept = options.keep or pathlib.Path(temporary)
        for number, texts in enumerate(machines):
            name = " + ".join(f"{text.tool}/{text.path.name}" for text in texts)
            folder = kept / (f"{number:03} " + name.replace("/", " "))[:100]
            folder.mkdir(parents=True)
            write_recording(folder, texts)
            found = judge(options.pqhost, folder)
            key = tuple(sorted(text.key for text in texts))
            if options.learn:
                verdicts.setdefault(key, found)
            known = verdicts.get(key)
            counts[found == known] += 1
            print(f"{'' if found == known else 'FAILED '}{found['verdict']:9} {name}")
            for finding in found["findings"]:
                print(f"            {finding}")
            if known is None:
                print("            no verdict is known: read it by eye, then --learn")
            elif found != known:
                print(f"            expected {known['verdict']}: {'; '.join(known['findings'])}")
    if options.learn:
        write_verdicts(verdicts)
    print(f"{counts[True]} passed, {counts[False]} failed")
    return 1 if counts[False] or not counts[True] else 0


if __name__ == "__main__":
    sys.exit(main())
