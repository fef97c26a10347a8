"""What scripts/fleet_demo.sh does once everything is built.

    scripts/fleet_demo.py FOLDER_OF_PROGRAMS [RECORDINGS [PORT]]
"""

import os
import pathlib
import shlex
import subprocess
import sys

from private_postgres import PrivatePostgres

BIN = pathlib.Path(sys.argv[1]).resolve()
RECORDINGS = int(sys.argv[2]) if len(sys.argv) > 2 else 1000
PORT = sys.argv[3] if len(sys.argv) > 3 else "8080"
NIGHTS = 10 if RECORDINGS >= 10 else 1
QUESTIONS = (
    "SELECT verdict, count(*) FROM verdict_now GROUP BY verdict ORDER BY count(*) DESC",
    "SELECT server, id, serial, firmware, media_errors FROM drives WHERE media_errors > 0 "
    "ORDER BY media_errors DESC, server LIMIT 5",
)


def main(server):
    environment = {**os.environ, "PGHOST": server.folder, "PGUSER": "fleet",
                   "PGDATABASE": "postgres", "PQFLEET_STORE": f"{server.folder}/store"}
    incoming = pathlib.Path(server.folder) / "incoming"
    incoming.mkdir()

    def run(*words, accepted=(0,), **more):
        print("$", shlex.join(("pqfleet", *words)), flush=True)
        ended = subprocess.run([BIN / "pqfleet", *words], env=environment, **more)
        if ended.returncode not in accepted:
            raise SystemExit(f"pqfleet {words[0]} ended with {ended.returncode}")

    print(f"{RECORDINGS // NIGHTS} servers, {NIGHTS} nights", flush=True)
    subprocess.run([BIN / "write_random_recordings", incoming, str(RECORDINGS // NIGHTS),
                    str(NIGHTS), "0"], check=True)
    run("init", stdout=subprocess.DEVNULL)
    run("submit", str(incoming), stdout=subprocess.DEVNULL)
    run("work", "--once", "--workers", str(os.cpu_count() or 1), accepted=(0, 1))
    for question in QUESTIONS:
        run("query", question)
    try:
        run("serve", "--port", PORT)
    except KeyboardInterrupt:
        pass  # It was for pqfleet as well.


if __name__ == "__main__":
    with PrivatePostgres() as postgres:
        main(postgres)
