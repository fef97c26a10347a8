"""nginx for a test: with the project's own configuration, on loopback, as a plain user."""

import os
import pathlib
import shutil
import socket
import subprocess
import time

from private_postgres import NOBODY

ROOT = pathlib.Path(__file__).resolve().parent.parent


def find_nginx():
    unpacked = ROOT / "build" / "tools" / "nginx"
    program = str(unpacked) if unpacked.exists() else shutil.which("nginx")
    if program is None:
        raise SystemExit("there is no nginx here: run scripts/install.sh test")
    return program


def find_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class PrivateNginx:
    """Runs as long as it is entered. `replaced` are texts of the configuration that a test has
    otherwise, as its paths; the listening address is replaced here. `folder` is for its files."""

    def __init__(self, configuration, folder, replaced):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir()
        self.port = find_port()
        text = configuration.read_text()
        for old, new in {"listen 443": f"listen 127.0.0.1:{self.port}",
                         "/var/log/nginx": str(self.folder), **replaced}.items():
            if old not in text:
                raise RuntimeError(f"{configuration} has no {old}")
            text = text.replace(old, str(new))
        (self.folder / "nginx.conf").write_text(
            f"pid {self.folder}/pid;\ndaemon off;\nworker_processes 1;\n"
            f"events {{}}\nhttp {{\n" + "".join(
                f"{name}_temp_path {self.folder}/{name};\n"
                for name in ("proxy", "fastcgi", "uwsgi", "scgi")) + text + "}\n")
        if os.geteuid() == 0:
            os.chown(self.folder, NOBODY, NOBODY)

    def __enter__(self):
        # It would take root for its master, and another user for the rest.
        user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        self.process = subprocess.Popen(
            [find_nginx(), "-e", self.folder / "errors", "-p", self.folder, "-c",
             self.folder / "nginx.conf"], cwd="/", stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, **user)
        for _ in range(200):
            with socket.socket() as probe:
                if probe.connect_ex(("127.0.0.1", self.port)) == 0:
                    return self
            if self.process.poll() is not None:
                break
            time.sleep(0.02)
        self.__exit__()
        raise RuntimeError(f"nginx does not start: {(self.folder / 'errors').read_text()}")

    def __exit__(self, *unused):
        self.process.terminate()
        self.process.wait(timeout=20)
