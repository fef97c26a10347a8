#!/usr/bin/env python3
"""Tries metrics and docs/examples/ with the programs that they are for.

    scripts/metrics_tests.py PQHOST PROMTOOL
"""

import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml

from tally import Tally

ROOT = pathlib.Path(__file__).resolve().parent.parent
SAMPLES = ROOT / "samples"
EXAMPLES = ROOT / "docs" / "examples"
TASK = "{http://schemas.microsoft.com/windows/2004/02/mit/task}"

PQHOST, PROMTOOL = (str(pathlib.Path(word).resolve()) for word in sys.argv[1:])

tally = Tally()
expect = tally.expect


def run(*command, **more):
    return subprocess.run(command, capture_output=True, timeout=300, **more)


def collect(recording, *more):
    return run(PQHOST, "collect", "--replay", recording, "--format", "prometheus", *more)


def object_to(metrics):
    """What promtool says against it; nothing when it is right."""
    check = run(PROMTOOL, "check", "metrics", input=metrics)
    said = (check.stdout + check.stderr).decode(errors="replace")
    return said or (f"ended with {check.returncode}" if check.returncode else "")


def make_hostile(folder):
    """A recording with names that would end a label, and bytes that are no characters."""
    hostile = folder / "hostile"
    shutil.copytree(SAMPLES / "two-socket-server", hostile)
    for file in hostile.rglob("*"):
        if file.is_file() and file.name not in ("recording.json", "submission.json"):
            text = file.read_bytes()
            for name, other in ((b"HY8000NX0045", b'H"} 1\\\xff\x81\xc3"\\n'),
                                (b"Backup vault", b'B\\\\"ck\xe2\x80\xaev"\\'),
                                (b"Fan 5", b'F"\\ \xc3')):
                text = text.replace(name, other)
            file.write_bytes(text)
    return hostile


def check_metrics(folder):
    recordings = [*sorted(SAMPLES.iterdir()), make_hostile(folder)]
    for recording in recordings:
        metrics = collect(recording).stdout
        objection = object_to(metrics)
        expect(metrics and not objection, f"promtool on {recording.name}: {objection}")
    hostile = collect(recordings[-1]).stdout
    expect(b'model="H\\"} 1\\\\' in hostile, "nothing is hostile about the hostile machine")
    # It would say so.
    expect(object_to(hostile.replace(b'\\"', b'"')), "promtool reads labels that nothing escapes")
    expect(object_to(hostile + hostile), "promtool reads everything twice")

    # Two machines in one collector: no series may be of both.
    def list_series(name):
        lines = collect(SAMPLES / name, "--identify").stdout.decode().splitlines()
        return {line.rsplit(" ", 1)[0] for line in lines if not line.startswith("#")}
    expect(not list_series("two-socket-server") & list_series("blade"),
           "--identify does not tell two machines apart")


def check_alerts():
    alerts = EXAMPLES / "pqhost-alerts.yml"
    tests = EXAMPLES / "pqhost-alerts.test.yml"
    for command in (("check", "rules", alerts.name), ("test", "rules", tests.name)):
        ended = run(PROMTOOL, *command, cwd=EXAMPLES)
        expect(ended.returncode == 0,
               f"promtool {' '.join(command)}: {(ended.stdout + ended.stderr).decode()}")
    names = re.findall(r"- alert: (\w+)", alerts.read_text())
    expect(len(names) == len(set(names)) >= 4, "alerts are missing, or one is there twice")
    cases = re.findall(r"alertname: (\w+)\n +exp_alerts:( \[\])?", tests.read_text())
    for name in names:
        expect((name, "") in cases, f"{name} has no test that sets it off")
        expect((name, " []") in cases, f"{name} has no test that does not set it off")
    families = re.findall(r"^\| `(pqhost_\w+)`", (ROOT / "docs" / "metrics.md").read_text(), re.M)
    for file in (alerts, tests):
        strange = set(re.findall(r"\bpqhost_\w+", file.read_text())) - set(families)
        expect(not strange, f"{file.name}: pqhost writes no {', '.join(sorted(strange))}")


def split_windows(line):
    """Arguments as Windows' programs split them, as long as quotes are around whole ones."""
    return [word.strip('"') for word in re.findall(r'"[^"]*"|[^\s"]+', line)]


def check_task():
    file = EXAMPLES / "pqhost-task.xml"
    text = file.read_bytes()
    # schtasks hands the text on in UTF-16, where a declaration of another encoding is an error.
    expect(text.isascii() and b"encoding=" not in text, "the task is not plain ASCII")
    task = xml.fromstring(text)
    expect(task.tag == TASK + "Task", f"the task is a {task.tag}")
    children = {child.tag.removeprefix(TASK) for child in task}
    expect(children == {"RegistrationInfo", "Triggers", "Principals", "Settings", "Actions"},
           f"the task has {sorted(children)}")
    expect(task.find(f"{TASK}Actions").get("Context") ==
           task.find(f"{TASK}Principals/{TASK}Principal").get("id"), "the task runs as nobody")
    interval = task.findtext(f".//{TASK}Repetition/{TASK}Interval")
    expect(re.fullmatch(r"PT(15|20|30|60)M|PT1H", interval or ""), f"it runs every {interval}")
    action = task.find(f"{TASK}Actions/{TASK}Exec")
    expect(action.findtext(TASK + "Command").endswith(r"\pqhost.exe"), "it runs another program")
    arguments = split_windows(action.findtext(TASK + "Arguments"))
    output = arguments[arguments.index("--output") + 1]
    expect(output.endswith(".prom"), "its file is not one that the collector reads")
    # This system has no machine to collect from: that is all that may be wrong.
    ended = run(PQHOST, *arguments)
    plain = run(PQHOST, "collect")
    expect(plain.returncode == 2 and ended.stderr == plain.stderr,
           f"pqhost {shlex.join(arguments)}: {ended.stderr.decode()}")
    wrong = run(PQHOST, *(word.replace("--tool-limit", "--tool-limt") for word in arguments))
    expect(wrong.stderr != plain.stderr, "a wrong option would not be seen")


def check_timer(folder):
    units = folder / "units"
    units.mkdir()
    spool = folder / "spool"
    spool.mkdir()
    collector = folder / "collector"
    collector.mkdir()
    shutil.copytree(SAMPLES / "bmc-unreachable", spool / "node31")
    service = (EXAMPLES / "pqhost-metrics@.service").read_text()
    for there, here in (("/usr/bin/pqhost", PQHOST), ("/var/spool/pqhost", spool),
                        ("/var/lib/prometheus/node-exporter", collector)):
        expect(there in service, f"the service does not name {there}")
        service = service.replace(there, str(here))
    (units / "pqhost-metrics@.service").write_text(service)
    shutil.copy(EXAMPLES / "pqhost-metrics@.timer", units)

    if shutil.which("systemd-analyze"):
        for kind in ("service", "timer"):
            unit = units / f"pqhost-metrics@{kind}.{kind}"
            shutil.copy(units / f"pqhost-metrics@.{kind}", unit)
            verified = run("systemd-analyze", "verify", "--man=no", unit)
            said = verified.stderr.decode()
            expect(verified.returncode == 0 and "pqhost-metrics" not in said,
                   f"{unit.name}: {said}")
    else:
        print("not verified, for systemd-analyze is not here: the units")

    command = re.search(r"^ExecStart=(.*)$", service, re.M)[1].replace("%i", "node31")
    ended = run(*shlex.split(command))
    success = re.search(r"^SuccessExitStatus=(.*)$", service, re.M)[1].split()
    expect(ended.returncode == 0 or str(ended.returncode) in success,
           f"{command} ended with {ended.returncode}: {ended.stderr.decode()}")
    file = collector / "pqhost-node31.prom"
    expect(file.exists() and not object_to(file.read_bytes()), f"{command} wrote no metrics")
    # The scraper is another user.
    expect(file.exists() and file.stat().st_mode & 0o044 == 0o044, "others cannot read the metrics")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        check_metrics(folder)
        check_alerts()
        check_task()
        check_timer(folder)
    return tally.end()


sys.exit(main())
