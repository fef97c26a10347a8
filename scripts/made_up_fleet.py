"""Recordings of a made-up fleet: the samples, three of four the large one, each server with drives of
its own, whose temperatures and errors are others each night."""

import hashlib
import json
import pathlib
import random
import re
import subprocess
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
LARGE = "two-socket-server"
TEMPERATURE = re.compile(rb"\b\d\d(?=(?: ?C\b| degrees))")
ERRORS = re.compile(rb"Media Error Count = 37\b")


class Sample:
    def __init__(self, folder, pqhost):
        self.files = {path.relative_to(folder).as_posix(): path.read_bytes()
                      for path in sorted(folder.rglob("*")) if path.is_file()
                      and path.name not in ("submission.json", "manifest.sha256")}
        told = json.loads(subprocess.run([pqhost, "collect", "--replay", folder, "--format", "json"],
                                         capture_output=True).stdout)
        serials = {drive["serial"].encode() for drive in told["parts"]["drives"] if drive["serial"]}
        self.serials = re.compile(b"|".join(map(re.escape, sorted(serials)))) if serials else None
        self.changing = [name for name, text in self.files.items() if TEMPERATURE.search(text)]

    def make_server(self, number):
        """Its files on a night on which nothing changes."""
        if self.serials is None:
            return {**self.files, "note.txt": b"%d" % number}
        own = lambda match: match[0][:-6] + b"%06d" % number
        return {name: self.serials.sub(own, text) for name, text in self.files.items()}

    def make_night(self, files, number, night):
        draw = random.Random(number * 1000 + night)
        temperature = lambda match: b"%02d" % min(99, int(match[0]) + draw.randrange(3))
        errors = lambda match: b"Media Error Count = %d" % (37 + night if number % 100 == 0 else 0)
        return {name: ERRORS.sub(errors, TEMPERATURE.sub(temperature, text))
                if name in self.changing else text for name, text in files.items()}


def pack(path, files, name, night):
    told = {"format": 1, "name": name, "recordedAt": f"2026-01-{night + 1:02}T01:00:00Z"}
    manifest = "".join(f"{hashlib.sha256(content).hexdigest()}  {file}\n"
                       for file, content in sorted(files.items()))
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as archive:
        archive.writestr("submission.json", json.dumps(told))
        archive.writestr("manifest.sha256", manifest)
        for file, content in files.items():
            archive.writestr(file, content)


def make_fleet(folder, servers, nights, pqhost):
    """Files in the order of servers, then nights. Every fifth night nothing has changed."""
    samples = {path.name: Sample(path, pqhost) for path in sorted((ROOT / "samples").iterdir())}
    small = [sample for name, sample in samples.items() if name != LARGE]
    paths = []
    for number in range(servers):
        sample = small[number // 4 % len(small)] if number % 4 == 3 else samples[LARGE]
        own = sample.make_server(number)
        for night in range(nights):
            files = sample.make_night(own, number, night - 1 if night % 5 == 4 else night)
            paths.append(folder / f"srv-{number:06}_{night}.zip")
            pack(paths[-1], files, f"srv-{number:06}", night)
    return paths
