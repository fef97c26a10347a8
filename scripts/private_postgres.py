"""A PostgreSQL server for a test: in a temporary folder, by a socket there, as a plain user."""

import glob
import os
import pathlib
import shutil
import subprocess
import tempfile

NOBODY = 65534


def find_programs():
    """The folder of initdb and pg_ctl; Debian keeps them out of PATH."""
    found = sorted(glob.glob("/usr/lib/postgresql/*/bin"), key=lambda path: int(path.split("/")[4]))
    if found:
        return pathlib.Path(found[-1])
    program = shutil.which("initdb")
    if program is None:
        raise SystemExit("there is no PostgreSQL here: run scripts/install.sh test")
    return pathlib.Path(program).resolve().parent


class PrivatePostgres:
    """Runs as long as it is entered. `folder` has its socket, and may be used for other files."""

    # What is lost with the machine is not asked for in most tests; jit is as for a fleet.
    def __init__(self, settings="-c fsync=off -c autovacuum=off -c jit=off"):
        self.settings = settings

    def __enter__(self):
        self.programs = find_programs()
        self.folder = tempfile.mkdtemp(prefix="pqfleet-")
        # It refuses to run as root.
        self.user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        if self.user:
            os.chown(self.folder, NOBODY, NOBODY)
        self.data = f"{self.folder}/data"
        try:
            self.run("initdb", "-D", self.data, "-U", "fleet", "-A", "trust", "--no-sync",
                     "--no-instructions", "--locale=C.UTF-8", "-E", "UTF8")
            self.start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def start(self, **environment):
        settings = f"-k {self.folder} -c listen_addresses= {self.settings}"
        self.run("pg_ctl", "-D", self.data, "-l", f"{self.folder}/log", "-o", settings, "-w", "start",
                 env={**os.environ, **environment})

    def stop(self, mode="fast"):
        self.run("pg_ctl", "-D", self.data, "-m", mode, "-w", "stop")

    def run(self, program, *words, **more):
        ended = subprocess.run([self.programs / program, *words], capture_output=True, text=True,
                               cwd="/", stdin=subprocess.DEVNULL, timeout=120, **self.user, **more)
        # What pg_ctl starts must not keep a pipe of this process open: it has a log file.
        if ended.returncode != 0:
            raise SystemExit(f"{program} failed:\n{ended.stdout}{ended.stderr}")

    def __exit__(self, *unused):
        if os.path.exists(f"{self.data}/postmaster.pid"):
            subprocess.run([self.programs / "pg_ctl", "-D", self.data, "-m", "immediate", "-w",
                            "stop"], capture_output=True, cwd="/", **self.user)
        shutil.rmtree(self.folder, ignore_errors=True)
