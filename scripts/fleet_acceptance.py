"""What scripts/fleet_acceptance.sh does once everything is built.

    scripts/fleet_acceptance.py FOLDER_OF_PROGRAMS [RECORDINGS [PART...]]
"""

import contextlib
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import time

from fleet_tests import (PQHOST, ROOT, SAMPLES, Fleet, answers, await_true, compare_with_pqhost,
                         count_processes, differences, digest, expect, fetch, make_random, tally)
from made_up_fleet import make_fleet
from private_nginx import find_port
from private_postgres import PrivatePostgres

RECORDINGS = int(sys.argv[2]) if len(sys.argv) > 2 else 10_000
NIGHTS = 10
SERVERS = RECORDINGS // NIGHTS
TICKS = os.sysconf("SC_CLK_TCK")
FIRMWARE = ("select server, id, serial, media_errors from drives"
            " where media_errors > 0 and firmware = 'HN07' order by media_errors desc")


def hold(what, value, bar, unit, least=False):
    holds = value >= bar if least else value <= bar
    print(f"{what}: {value:.3g} {unit}, {'at least' if least else 'at most'} {bar:g}"
          f"{'' if holds else ', MISSED'}", flush=True)
    expect(holds, f"{what}: {value:.3g} {unit}")


# --- processor time of PostgreSQL ---

def read_stat(process):
    """Of a process: its parent, and seconds of itself and of its ended children."""
    with contextlib.suppress(OSError):
        words = pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
        return words[1], sum(map(int, words[11:13])) / TICKS, sum(map(int, words[13:15])) / TICKS
    return None, 0, 0


def read_processor(server):
    """Seconds of all processes that PostgreSQL has and had."""
    time.sleep(0.5)  # Whose connection has ended is counted with its parent by then.
    postmaster = pathlib.Path(f"{server.data}/postmaster.pid").read_text().split()[0]
    seconds = sum(read_stat(postmaster)[1:])
    for folder in pathlib.Path("/proc").iterdir():
        if folder.name.isdigit() and (stat := read_stat(folder.name))[0] == postmaster:
            seconds += stat[1]
    return seconds


# --- cost ---

class Load:
    """A run of workers over what is ready: seconds, and processor seconds of each part of it."""

    def __init__(self, fleet, *words):
        fleet.sql("select pg_stat_statements_reset()")
        self.ready = int(fleet.value("select count(*) from fleet.job where state = 0"))
        database = read_processor(fleet.server)
        begin = time.monotonic()
        used = sum(os.times()[2:4])
        self.rows = fleet.work(*words)
        self.seconds = time.monotonic() - begin
        self.database = (read_processor(fleet.server) - database) * 1000 / self.ready
        self.child = float(fleet.value(
            f"select avg(cpu_us) / 1000 from (select cpu_us from fleet.result"
            f" order by finished desc limit {self.ready}) r"))
        self.worker = (sum(os.times()[2:4]) - used) * 1000 / self.ready - self.child
        self.claim = float(fleet.value(
            "select sum(total_exec_time) from pg_stat_statements where query like"
            " 'with c as (%for update skip locked%'")) / self.ready
        print(f"{' '.join(words) or '1 worker'}: {self.ready} recordings, {self.seconds:.1f} s,"
              f" {self.ready / self.seconds:.0f} a second; ms a recording: child {self.child:.2f},"
              f" worker {self.worker:.2f}, PostgreSQL {self.database:.2f}, claim {self.claim:.3f};"
              f" {self.rows} rows written", flush=True)


def measure_bytes(fleet):
    fleet.sql("vacuum")
    return int(fleet.value("select pg_database_size(current_database())"))


def time_question(fleet, question):
    """Milliseconds: the fastest of five."""
    told = [fleet.sql(f"explain (analyze, timing off) {question}")[-1][0] for _ in range(5)]
    return min(float(re.search(r"[\d.]+", line)[0]) for line in told)


def measure_cost(server):
    print(f"{SERVERS} servers, {NIGHTS} nights", flush=True)
    fleet = Fleet(server)
    fleet.sql("create extension if not exists pg_stat_statements schema public")
    fleet.sql("alter role fleet set search_path = fleet, public")
    empty = measure_bytes(fleet)
    files = make_files(server)
    begin = time.monotonic()
    submit(fleet, files[0::NIGHTS])
    first = Load(fleet)
    waited = time.monotonic()
    after_first = measure_bytes(fleet)
    waited = time.monotonic() - waited
    submit(fleet, files[1::NIGHTS])
    night = Load(fleet)
    submit(fleet, [file for number, file in enumerate(files) if number % NIGHTS > 1])
    rest = Load(fleet, "--workers", "2")
    asked = time.monotonic()
    fleet.query(FIRMWARE)
    seconds = time.monotonic() - begin - waited
    print(f"submitted, worked and asked: {seconds:.0f} s, a query {time.monotonic() - asked:.2f} s")
    hold("time of all", seconds, 600 * RECORDINGS / 100_000, "s")
    fleet.sql("vacuum analyze")
    known = int(fleet.value("select count(*) from fleet.object"))
    hold("database a server", (after_first - empty) / SERVERS / 1000, 120, "kB")
    hold("a further recording", (measure_bytes(fleet) - after_first) / (known - SERVERS) / 1000, 5, "kB")
    hold("the firmware question", time_question(fleet, FIRMWARE), 50, "ms")
    check_pages(fleet, f"srv-{SERVERS // 2:06}")
    again = []
    for words in ([], ["--workers", "2"]):
        fleet.run("reparse", "--all")
        again.append(Load(fleet, *words))
        expect(again[-1].rows == 0, f"unchanged, {again[-1].rows} rows are written")
    hold("two workers against one", again[0].seconds / again[1].seconds, 1.8, "times", least=True)
    hold("child", first.child, 6, "ms")
    for name, load, bar in (("first load", first, 0.8), ("next night", night, 0.5),
                            ("parsed again", again[0], 0.15)):
        hold(f"PostgreSQL, {name}", load.database, bar, "ms")
    hold("claim at first", first.claim, 0.06, "ms")
    hold("claim later", rest.claim, 0.06, "ms")


def make_files(server):
    folder = pathlib.Path(server.folder) / "made-up"
    if folder.exists():
        return sorted(folder.iterdir())
    folder.mkdir()
    begin = time.monotonic()
    files = make_fleet(folder, SERVERS, NIGHTS, PQHOST)
    print(f"made {len(files)} recordings: {time.monotonic() - begin:.0f} s,"
          f" {sum(file.stat().st_size for file in files) / len(files) / 1000:.1f} kB each", flush=True)
    return files


def submit(fleet, files):
    begin = time.monotonic()
    fleet.submit(*files)
    print(f"submitted {len(files)}: {time.monotonic() - begin:.1f} s", flush=True)


def check_pages(fleet, one):
    port = find_port()
    pages = fleet.start("serve", "--port", port)
    expect(await_true(lambda: answers(port)), "it serves")
    for path in ("/", "/?verdict=critical", "/?q=00-5", "/drives", "/silent", "/queue",
                 f"/server?name={one}&site=default"):
        taken = []
        for _ in range(5):
            begin = time.monotonic()
            status, _ = fetch(port, path)
            taken.append((time.monotonic() - begin) * 1000)
            expect(status == 200, f"{path}: {status}")
        hold(f"page {path}", min(taken), 200, "ms")
    pages.send_signal(signal.SIGTERM)
    pages.communicate()


# --- chaos ---

def measure_chaos(server):
    """50 workers and two servers killed, three workers asleep past their lease: nothing is lost."""
    files = make_files(server)
    calm, chaos = Fleet(server), Fleet(server)
    for fleet in (calm, chaos):
        submit(fleet, files)
    calm.work("--workers", "2")
    draw = random.Random(7)
    distinct = int(calm.value("select count(*) from fleet.object"))
    team = chaos.start("work", "--once", "--workers", "2", "--batch", "16", "--lease", "5")
    kills = sleeps = crashes = 0
    asleep = {}
    while team.poll() is None:
        time.sleep(draw.uniform(0.05, 0.3))
        for process, since in list(asleep.items()):
            if time.monotonic() - since > 9:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(process, signal.SIGCONT)
                del asleep[process]
        children = [int(word) for word in subprocess.run(
            ["pgrep", "-P", str(team.pid)], capture_output=True, text=True).stdout.split()]
        awake = [process for process in children if process not in asleep]
        if not awake:
            continue
        with contextlib.suppress(ProcessLookupError, RuntimeError):
            if sleeps < 3 and kills > 10 * sleeps and not asleep:
                chosen = draw.choice(awake)
                os.kill(chosen, signal.SIGSTOP)
                asleep[chosen] = time.monotonic()
                sleeps += 1
            elif crashes < 2 and kills > 20 * (crashes + 1):
                crashes += 1
                server.stop("immediate")
                server.start()
            elif kills < 60:
                os.kill(draw.choice(awake), signal.SIGKILL)
                kills += 1
    team.communicate()
    chaos.work("--lease", "5")
    print(f"kill -9 of workers {kills}, asleep {sleeps}, PostgreSQL killed {crashes} times", flush=True)
    expect(kills >= 50 and sleeps == 3 and crashes == 2, "too few ends to tell: more recordings")
    expect(chaos.value("select count(*) from fleet.job where state in (2, 3)") == str(distinct),
           "done and parked are all of them")
    expect(not differences(digest(calm), digest(chaos)),
           f"lost or doubled: {differences(digest(calm), digest(chaos))}")
    expect(count_processes() == 0, "no process is left")


def multiply(fleet, copies):
    """As many servers more as others have drives, findings and nights like theirs."""
    step = 10_000_000  # between the numbers of a server and of its copies
    clone = lambda table, columns, values: fleet.sql(
        f"insert into fleet.{table} ({', '.join(columns)}) overriding system value select"
        f" {', '.join(values.get(column, column) for column in columns)}"
        f" from fleet.{table}, generate_series(1, {copies - 1}) c")
    number = lambda column: f"{column} + c * {step}"
    own = {"server": {"id": number("id"), "name": "name || '-' || c"},
           "object": {"id": number("id"), "key": "sha256(key || convert_to(c::text, 'UTF8'))"}}
    usual = {name: number(name) for name in ("server", "object", "_server")}
    parts = [table for table in fleet.stored if table.startswith("part_") and table != "part_sensors"]
    for table in ["server", "object", "submission", "job", "result", "drive_error", "server_state",
                  "drive_growth", *parts]:
        columns = [row[0] for row in fleet.sql(
            f"select attname from pg_attribute where attrelid = 'fleet.{table}'::regclass"
            f" and attnum > 0 and not attisdropped and attgenerated = '' order by attnum")]
        clone(table, [f'"{column}"' for column in columns],
              {f'"{name}"': value for name, value in {**usual, **own.get(table, {})}.items()})
    fleet.sql("vacuum analyze")


def measure_large(server):
    """Questions and pages of 100,000 servers, of which 1,000 are parsed and the others copies."""
    fleet = Fleet(server)
    folder = pathlib.Path(server.folder) / "large"
    folder.mkdir()
    submit(fleet, make_fleet(folder, 1000, 2, PQHOST))
    fleet.work("--workers", "2")
    begin = time.monotonic()
    multiply(fleet, 100)
    counted = fleet.sql("select (select count(*) from fleet.servers), (select count(*) from fleet.drives)")[0]
    print(f"{counted[0]} servers, {counted[1]} drives, copied in {time.monotonic() - begin:.0f} s")
    expect(counted[0] == "100000", "100,000 servers")
    hold("the firmware question", time_question(fleet, FIRMWARE), 50, "ms")
    check_pages(fleet, "srv-000500-50")


def measure_equality(server):
    """Rows of the samples and of 1,000 random recordings are those of pqhost."""
    fleet = Fleet(server)
    files = make_random(server, 1000, 1, 200_000)
    submit(fleet, [*SAMPLES, *files])
    fleet.work("--workers", "2")
    named = {"two-socket-server": "NODE31"}
    compare_with_pqhost(fleet, {named.get(path.name, path.name): path for path in SAMPLES} |
                        {path.name.split("_")[0]: path for path in files})
    print("rows of 1,000 random recordings compared", flush=True)


def list_settings():
    """Those for a fleet, as far as they are for any machine."""
    text = (ROOT / "docs" / "examples" / "pqfleet-postgresql.conf").read_text()
    given = re.findall(r"^(\w+) = (\S+)$", text, re.MULTILINE)
    return " ".join(f"-c {name}={value}" for name, value in given
                    if name not in ("shared_buffers", "effective_cache_size"))


PARTS = {"cost": measure_cost, "large": measure_large, "chaos": measure_chaos,
         "equality": measure_equality}

if __name__ == "__main__":
    Fleet.patience = None  # It takes what it takes.
    settings = f"-c shared_buffers=512MB -c shared_preload_libraries=pg_stat_statements {list_settings()}"
    with PrivatePostgres(settings) as postgres:
        for part in sys.argv[3:] or PARTS:
            PARTS[part](postgres)
    sys.exit(tally.end())
