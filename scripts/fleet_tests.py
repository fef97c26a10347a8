#!/usr/bin/env python3
"""Tries pqfleet as its users do, and as nobody should.

    scripts/fleet_tests.py FOLDER_OF_PROGRAMS [NAME...]

Only the tests whose names are given, otherwise all. Ends with "N passed, N failed".
"""

import contextlib
import csv
import hashlib
import http.server
import io
import itertools
import json
import os
import pathlib
import random
import re
import shutil
import signal
import socket
import subprocess
import sys
import threading
import time
import urllib.error
import urllib.request
import zipfile

from private_nginx import PrivateNginx, find_port
from private_postgres import NOBODY, PrivatePostgres
from tally import Tally

ROOT = pathlib.Path(__file__).resolve().parent.parent
SAMPLES = sorted((ROOT / "samples").iterdir())
BIN = pathlib.Path(sys.argv[1]).resolve()
PQFLEET, PQHOST, RANDOM = (str(BIN / name)
                           for name in ("pqfleet", "pqhost", "write_random_recordings"))

tally = Tally()
expect = tally.expect


class Fleet:
    """A database with a fleet, a store, and pqfleet for them."""

    first = None  # of which the others are copies: to make one takes its time
    patience = 120  # seconds for a command
    count = 0

    def __init__(self, server):
        if Fleet.first is None and Fleet.count == 0:
            Fleet.count += 1
            Fleet.first = Fleet(server)
        self.server = server
        self.database = f"fleet{Fleet.count}"
        self.store = pathlib.Path(server.folder) / f"store{Fleet.count}"
        self.environment = {**os.environ, "PGHOST": server.folder, "PGUSER": "fleet",
                            "PGDATABASE": self.database, "PQFLEET_STORE": str(self.store)}
        Fleet.count += 1
        if Fleet.first is None:
            sql("postgres", server, f"create database {self.database}")
            expect(self.run("init").returncode == 0, "init")
            self.tables = [row[0] for row in
                           self.sql("select name from fleet.row_table order by name")]
            # Rows that are packed are shown by a view.
            self.packed = [row[0] for row in self.sql("select name from fleet.row_table"
                                                      " where columns is not null order by name")]
            self.stored = [("packed_" if name in self.packed else "") + name for name in self.tables]
            return
        self.tables, self.packed = Fleet.first.tables, Fleet.first.packed
        self.stored = Fleet.first.stored
        sql("postgres", server,
            f"create database {self.database} template {Fleet.first.database}"
            f" strategy file_copy")
        shutil.copytree(Fleet.first.store, self.store)

    def start(self, *words, user=None, program=PQFLEET, **more):
        environment = {**self.environment, "LD_LIBRARY_PATH": str(BIN),
                       **({"PGUSER": user} if user else {})}
        return subprocess.Popen([program, *map(str, words)], env=environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)

    def run(self, *words, user=None, **more):
        process = self.start(*words, user=user, **more)
        try:
            process.stdout, process.stderr = process.communicate(timeout=Fleet.patience)
        except subprocess.TimeoutExpired:
            process.kill()
            expect(False, f"{' '.join(map(str, words))} hangs")
            process.stdout, process.stderr = process.communicate()
        return process

    def submit(self, *paths):
        for begin in range(0, len(paths), 1000):
            ended = self.run("submit", "--server-by-file", *paths[begin:begin + 1000])
            expect(ended.returncode == 0, f"submit: {ended.stdout[-300:]}{ended.stderr}")

    def work(self, *words):
        """How many rows were written."""
        ended = self.run("work", "--once", *words)
        expect(ended.returncode in (0, 1), f"work: {ended.stderr}")
        return int(ended.stderr.strip().split(" row")[0].split()[-1])

    def sql(self, text):
        return sql(self.database, self.server, text)

    def value(self, text):
        return self.sql(text)[0][0]

    def query(self, text, *more, **who):
        return self.run("query", text, "--format", "csv", *more, **who)


def sql(database, server, text):
    """Rows of the answer to one statement; cells are texts, None for null."""
    ended = subprocess.run(
        ["psql", "-XqAt", "-h", server.folder, "-U", "fleet", "-d", database, "-F", "\x1f",
         "-R", "\x1e", "-P", "null=\x1d", "-v", "ON_ERROR_STOP=1", "-c", text],
        capture_output=True, text=True, timeout=Fleet.patience)
    if ended.returncode != 0:
        raise RuntimeError(f"{text[:200]}: {ended.stderr}")
    rows = ended.stdout.removesuffix("\n").removesuffix("\x1e")
    return [[None if cell == "\x1d" else cell for cell in row.split("\x1f")]
            for row in rows.split("\x1e")] if rows else []


def read_rows(fleet, prefix):
    """Of each server the rows of each table whose name begins so: column to value, null left out."""
    servers = {}
    tables = [table for table in fleet.tables if table.startswith(prefix)]
    parts = [f"select v.name, '{table}', r._row, to_jsonb(r) from fleet.{table} r "
             f"join fleet.server v on v.id = r._server" for table in tables]
    for server, table, number, row in fleet.sql(" union all ".join(parts) + " order by 1, 2, 3"):
        cells = {name: value for name, value in json.loads(row).items() if value is not None}
        of_table = servers.setdefault(server, {}).setdefault(table.removeprefix(prefix), [])
        expect(cells.pop("_row") == len(of_table) + 1, f"{server} {table}: numbers of rows")
        cells.pop("_server")
        cells.update(cells.pop("_more", {}))
        of_table.append(cells)
    return servers


def digest(fleet):
    """All that is known, apart from when and how it was found out."""
    questions = [
        f"select count(*) || coalesce(md5(string_agg(v.name || (to_jsonb(r) - '_server'), ''"
        f" order by v.name, r._row)), '') from fleet.{table} r"
        f" join fleet.server v on v.id = r._server" for table in fleet.tables]
    questions += [
        "select count(*) || md5(string_agg(encode(o.key, 'hex') || (to_jsonb(r)"
        " - '{object,cpu_us,finished,parser}'::text[]), '' order by o.key))"
        " from fleet.result r join fleet.object o on o.id = r.object",
        "select count(*) || coalesce(md5(string_agg(encode(o.key, 'hex') || (to_jsonb(e)"
        " - 'object'), '' order by o.key, e.drive)), '')"
        " from fleet.drive_error e join fleet.object o on o.id = e.object",
        "select count(*) || md5(string_agg(v.name || encode(o.key, 'hex'), '' order by v.name))"
        " from fleet.server_state s join fleet.server v on v.id = s.server"
        " join fleet.object o on o.id = s.object",
        "select string_agg(state || ':' || n, ' ' order by state) from"
        " (select state, count(*) n from fleet.job group by 1) s",
        "select count(*) || coalesce(md5(string_agg(v.name || (to_jsonb(g) - 'server'), ''"
        " order by v.name, g.drive)), '') from fleet.drive_growth g"
        " join fleet.server v on v.id = g.server",
        "select count(*)::text from fleet.submission"]
    return fleet.sql("select " + ", ".join(f"({question})" for question in questions))[0]


def differences(one, other):
    return [f"{a} {b}" for a, b in zip(one, other) if a != b]


def make_random(server, servers, nights=1, first=0):
    """Files in the order of servers, then nights."""
    folder = pathlib.Path(server.folder) / f"random{servers}_{nights}_{first}"
    if not folder.exists():
        folder.mkdir()
        subprocess.run([RANDOM, folder, str(servers), str(nights), str(first)], check=True)
    return [folder / f"srv-{one}_{night}.zip" for one in range(first, first + servers)
            for night in range(nights)]


def count_processes():
    """Those of pqfleet that this script or its ended children left."""
    listed = subprocess.run(["ps", "-eo", "args"], capture_output=True, text=True).stdout
    return sum(line.split()[0] == PQFLEET for line in listed.splitlines() if line.split())


# --- what is found is what pqhost finds ---

def expected_cells(table, number, row):
    """A class's row of pqhost's JSON, as the database has it."""
    cells = {key: value.replace("\0", "\ufffd") if isinstance(value, str) else value
             for key, value in row.items()}
    for attachment in table["attachments"]:
        if attachment["row"] == number and attachment["attributes"].get("raw") == "true":
            cells[attachment["key"]] = (attachment["attributes"].get("filename", ""),
                                        attachment["bytes"])
    return cells


def found_cells(row, expected):
    cells = dict(row)
    for key, value in expected.items():
        if isinstance(value, tuple):
            file = json.loads(cells[key])
            expect(len(file["sha256"]) == 64, "digest of a file")
            cells[key] = (file["file"], file["bytes"])
    return cells


def compare_with_pqhost(fleet, recordings):
    """`recordings`: paths by the names of their servers."""
    classes, parts = read_rows(fleet, "class_"), read_rows(fleet, "part_")
    verdicts = {row[0]: row[1:] for row in fleet.sql(
        "select server, verdict, critical, warning, unknown, notice from fleet.verdict_now")}
    for server, path in recordings.items():
        collected = json.loads(subprocess.run(
            [PQHOST, "collect", "--replay", path, "--format", "json"], capture_output=True,
            text=True).stdout)
        rows = classes.get(server, {})
        for table in collected["tables"]:
            name = table["class"].lower()
            expected = [expected_cells(table, number, row)
                        for number, row in enumerate(table["rows"])]
            got = rows.pop(name, [])
            same = len(got) == len(expected) and all(
                found_cells(one, other) == other for one, other in zip(got, expected))
            expect(same, f"{server}: {name} differs")
        expect(not rows, f"{server}: more tables: {list(rows)}")
        of_server = parts.get(server, {})
        findings, evidence = of_server.pop("findings", []), of_server.pop("evidence", [])
        for name, listed in collected["parts"].items():
            expected = [{key: value.replace("\0", "\ufffd") if isinstance(value, str) else value
                         for key, value in part.items() if value is not None} for part in listed]
            expect(of_server.pop(name, []) == expected, f"{server}: parts {name} differ")
        expect(not of_server, f"{server}: more parts: {list(of_server)}")
        health = collected["health"]
        counts = [str(health["counts"][word])
                  for word in ("critical", "warning", "unknown", "notice")]
        expect(verdicts.get(server) == [health["verdict"], *counts], f"{server}: verdict differs")
        expect([one["finding"] for one in findings] ==
               [one["key"] for one in health["findings"]], f"{server}: findings differ")
        expect(bool(evidence) == bool(findings), f"{server}: evidence")


def test_samples(server):
    fleet = Fleet(server)
    fleet.submit(*SAMPLES)
    fleet.work()
    named = {"two-socket-server": "NODE31"}
    compare_with_pqhost(fleet, {named.get(path.name, path.name): path for path in SAMPLES})
    integers = fleet.value("select count(*) from fleet.class_s2table1"
                           " where jsonb_typeof(_more -> 'item1') = 'number'")
    expect(integers != "0", "integers come back as integers")
    again = fleet.run("submit", ROOT / "samples" / "two-socket-server")
    expect(again.stdout.startswith("known "), f"submitted again: {again.stdout}")
    expect(fleet.work() == 0, "nothing to do writes nothing")
    check_show(fleet)
    check_asking(fleet)
    check_document(fleet)
    check_commands(fleet)


def check_show(fleet):
    shown = fleet.run("show", "NODE31", "--format", "json")
    replayed = subprocess.run([PQHOST, "collect", "--replay", ROOT / "samples/two-socket-server",
                               "--format", "json"], capture_output=True, text=True).stdout
    one, other = json.loads(shown.stdout), json.loads(replayed)
    one.pop("collected"), other.pop("collected")
    expect(one == other, "show is what pqhost shows")
    expect(fleet.run("show", "nobody").returncode == 2, "show of nobody")
    early = fleet.run("show", "NODE31", "--at", "2020-01-01")
    expect(early.returncode == 2 and "as old as that" in early.stderr, "show before all")
    wrong = fleet.run("show", "NODE31", "--at", "yesterdayish")
    expect(wrong.returncode == 2 and "--at needs" in wrong.stderr, f"show --at: {wrong.stderr}")


def check_asking(fleet):
    ended = fleet.query("select server, serial, media_errors from drives where media_errors > 0")
    expect(ended.stdout.splitlines()[1:] == ["NODE31,Z4K002C9144,37"], f"query: {ended.stdout}")
    trend = fleet.query("select server, taken, serial, media_errors from media_error_trend"
                        " where media_errors > 0")
    expect("NODE31,2026-11-18 08:41:12+00,Z4K002C9144,37" in trend.stdout, f"trend: {trend.stdout}")
    typed = fleet.run("query", "select 1 as i, 1.5::float8 as r, 'a' as t, null as n, true as b",
                      "--format", "json")
    row = json.loads(typed.stdout)["tables"][0]["rows"][0]
    expect(row == {"i": 1, "r": 1.5, "t": "a", "n": None, "b": "yes"}, f"types: {row}")
    for refused in ("delete from server", "select * from class_pdlist", "select 1; select 2",
                    "create table x (i int)", "select * from submission", "selec", ""):
        ended = fleet.query(refused)
        expect(ended.returncode == 1 and ended.stderr.startswith("pqfleet: "),
               f"query {refused!r}: {ended.returncode} {ended.stderr}")
    begin = time.monotonic()
    late = fleet.query("select pg_sleep(20)", "--time-limit", "1")
    expect(late.returncode == 1 and time.monotonic() - begin < 10 and "timeout" in late.stderr,
           f"a query that takes long: {late.stderr}")
    for view in fleet.sql("select table_name from information_schema.views"
                          " where table_schema = 'fleet'"):
        ended = fleet.query(f"select * from {view[0]} limit 3")
        expect(ended.returncode == (1 if view[0] in fleet.packed else 0),
               f"view {view[0]}: {ended.stderr}")


def check_document(fleet):
    """The questions of docs/fleet.md have the answers that are written there."""
    text, of_logs = (block.split("```")[0] for block in
                     (ROOT / "docs" / "fleet.md").read_text().split("```sql\n")[1:])
    questions = 0
    for block in text.split("\n\n"):
        lines = block.strip().splitlines()
        answers = [line.removeprefix("--   ") for line in lines if line.startswith("--   ")]
        statement = " ".join(line for line in lines if not line.startswith("--"))
        ended = fleet.query(statement)
        rows = [" | ".join(row) for row in csv.reader(io.StringIO(ended.stdout))][1:]
        if answers and answers[-1] == "…":
            answers.pop()
            rows = rows[:len(answers)]
        expect(ended.returncode == 0 and rows == answers,
               f"{lines[0]} {rows} {ended.stderr}")
        questions += 1
    expect(questions == 12, f"{questions} questions")
    # Of the logs of some servers: the same as by a join, which looks at all.
    asked = fleet.query(of_logs).stdout.splitlines()
    expected = fleet.query("SELECT server, time, text FROM events JOIN verdict_now USING (server, site)"
                           " WHERE verdict = 'critical' AND level >= 2").stdout.splitlines()
    expect(sorted(asked) == sorted(expected) and len(asked) > 1, f"{len(asked)} of {len(expected)} entries")


def check_commands(fleet):
    status = json.loads(fleet.run("status", "--format", "json").stdout)
    expect((status["done"], status["ready"], status["parked"], status["servers"]) ==
           (len(SAMPLES), 0, 0, len(SAMPLES)), f"status: {status}")
    expect("done" in fleet.run("status").stdout, "status for people")
    watch = fleet.start("status", "--watch", "--format", "json")
    lines = [json.loads(watch.stdout.readline()) for _ in range(2)]
    watch.send_signal(signal.SIGINT)
    expect(watch.wait(timeout=10) == 0 and lines[0]["done"] == lines[1]["done"] == len(SAMPLES),
           f"status --watch: {lines}")
    watch.communicate()
    # One line for people, not what libpq or a library says by itself.
    for words, code in ((["init"], 2), (["work", "--store", "/nowhere"], 2), (["submit"], 2),
                        (["query"], 2), (["show"], 2), (["reparse", "--all", "--current"], 2), (["nothing"], 2),
                        (["status", "--database", "host=/nowhere"], 2),
                        (["status", "--database", "hots=x"], 2),
                        (["status", "--database", "dbname=postgres"], 2),
                        (["submit", "/nowhere.zip"], 1), (["--help"], 0), (["--version"], 0),
                        (["init", "--upgrade"], 0)):
        ended = fleet.run(*words)
        expect(ended.returncode == code, f"{words}: {ended.returncode} {ended.stderr}")
        expect(code != 2 or ended.stderr.count("\n") == 1, f"{words}: {ended.stderr!r}")
    for command in ("init", "submit", "work", "status", "parked", "reparse", "rebuild", "query", "show",
                    "history", "export", "forget", "expire", "metrics", "serve"):
        text = fleet.run(command, "--help").stdout
        expect("Examples:" in text and "Exit codes:" in text, f"{command} --help")
    file = pathlib.Path(fleet.server.folder) / "pqfleet.conf"
    file.write_text(f"database = host={fleet.server.folder} user=fleet dbname={fleet.database}\n")
    bare = {name: value for name, value in os.environ.items() if not name.startswith("PG")}
    ended = subprocess.run([PQFLEET, "status", "--config", file], env=bare, capture_output=True)
    expect(ended.returncode == 0, f"configuration file: {ended.stderr}")
    ended = subprocess.run([PQFLEET, "status", "--config", file], capture_output=True,
                           env={**bare, "PGDATABASE": "postgres"})
    expect(ended.returncode == 2, "the environment is nearer than the file")


def test_random(server):
    fleet = Fleet(server)
    files = make_random(server, 100)
    fleet.submit(*files)
    fleet.work("--workers", "2")
    compare_with_pqhost(fleet, {path.name.split("_")[0]: path for path in files})
    before = digest(fleet)
    expect(fleet.run("reparse", "--all").stdout == "100 recordings ready\n", "reparse")
    expect(fleet.work("--workers", "2") == 0, "unchanged, nothing is written")
    expect(digest(fleet) == before, "unchanged, all is as before")
    # Rows that are not as their recording says are put right, and no others.
    fleet.sql("update fleet.server_state set rows = ''"
              " where server = (select min(id) from fleet.server)")
    fleet.sql("delete from fleet.result where object = (select min(object) from fleet.result)")
    fleet.sql("; ".join(f"delete from fleet.{table} where _server = (select min(id) from"
                        f" fleet.server)" for table in fleet.stored))
    fleet.run("reparse", "--current")
    expect(fleet.work() > 0 and digest(fleet) == before, "what was taken away is made again")


# --- what nobody should send ---

def zip_bytes(files, method=zipfile.ZIP_DEFLATED):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", method) as archive:
        for name, content in files.items():
            archive.writestr(zipfile.ZipInfo(name), content, compress_type=method)
    return out.getvalue()


def commands_json(files):
    return json.dumps({"format": 1, "commands": [
        {"tool": "arp.exe", "arguments": f"-{number}", "stdout": name}
        for number, name in enumerate(files)]})


def hostile_recordings():
    """By name: bytes, and words of the reason."""
    good = zip_bytes({"recording.json": commands_json(["a"]), "a": "text"})
    manifest = "".join(f"{hashlib.sha256(text.encode()).hexdigest()}  {name}\n" for name, text in
                       (("a", "text"), ("recording.json", commands_json(["a"]))))
    damaged = bytearray(good)
    damaged[good.index(b"recording.json") + 20] ^= 0xff
    return {
        "bomb": (zip_bytes({"recording.json": commands_json(["a", "b", "c"]),
                            **{name: b"\0" * (100 << 20) for name in "abc"}}), "recording-size"),
        "repeated": (zip_bytes({"recording.json": commands_json([f"{n}" for n in range(5000)]),
                                **{f"{n}": "x" for n in range(5000)}}), "files"),
        "deep": (zip_bytes({"recording.json": '{"format": 1, "commands": ' + "[" * 200_000}),
                 "recording.json"),
        "upward": (zip_bytes({"recording.json": commands_json(["a"]), "../a": "x"}), "leads out"),
        "outside": (zip_bytes({"recording.json": commands_json(["../../etc/passwd"])}), "path"),
        "cut": (good[:-40], "no ZIP file"),
        "damaged": (bytes(damaged), ""),
        "changed": (zip_bytes({"recording.json": commands_json(["a"]), "a": "other",
                               "manifest.sha256": manifest}), "differs from manifest.sha256"),
        "empty": (b"", "no ZIP file"),
        "text": (b"<html>" * 100, "no ZIP file"),
        "unnamed": (zip_bytes({"a": "x"}), "no such file"),
        "member": (zip_bytes({"recording.json": '{"format": 1, "comands": []}'}), "comands"),
    }


def place(fleet, name, content, server):
    """Puts it into the store and registers it, past all that submit looks at."""
    key = hashlib.sha256(name.encode()).hexdigest()
    if content is not None:
        path = fleet.store / key[:2] / f"{key}.zip"
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(content)
    fleet.sql(f"select fleet.register('default', '{server}', '\\x{key}', 1, '2026-01-01', 0)")
    return key


def test_hostile(server):
    fleet = Fleet(server)
    files = hostile_recordings()
    folder = pathlib.Path(server.folder) / "hostile"
    folder.mkdir()
    for name, (content, words) in files.items():
        path = folder / f"{name}.zip"
        path.write_bytes(content)
        ended = fleet.run("submit", "--server", "x", path)
        refusal = ended.stdout.splitlines()
        expect(ended.returncode == 1 and len(refusal) == 1 and words in refusal[0] and
               refusal[0].startswith("refused "), f"submit of {name}: {ended.stdout}{ended.stderr}")
    large = folder / "large.zip"
    with large.open("wb") as file:
        file.truncate(65 << 20)
    ended = fleet.run("submit", large)
    expect(ended.returncode == 1 and "more than 64 MiB" in ended.stdout, "submit of 65 MiB")
    expect(fleet.value("select count(*) from fleet.submission") == "0", "none was registered")

    keys = {place(fleet, name, content, name): words for name, (content, words) in files.items()}
    keys[place(fleet, "missing", None, "missing")] = "not in the store"
    stolen = (folder / "good.zip")
    stolen.write_bytes(zip_bytes({"recording.json": commands_json(["a"]), "a": "text"}))
    keys[place(fleet, "wrong key", stolen.read_bytes(), "wrong")] = "another content key"
    fleet.submit(*SAMPLES)
    here = pathlib.Path(server.folder) / "work"
    here.mkdir()
    kept = sorted(fleet.store.rglob("*"))
    ended = fleet.run("work", "--once", cwd=here)
    expect(ended.returncode == 1, f"work that parks: {ended.returncode} {ended.stderr}")
    parked = {row[0]: row[1] for row in fleet.sql("select recording, reason from fleet.parked")}
    for key, words in keys.items():
        expect(words in parked.pop(key, "not parked"), f"parked for {words!r}: {parked.get(key)}")
    expect(not parked, f"others are parked: {parked}")
    expect(fleet.value("select count(*) from fleet.job where state = 2") == str(len(SAMPLES)),
           "good neighbours are done")
    expect(not list(here.iterdir()) and sorted(fleet.store.rglob("*")) == kept, "no file is left")
    expect(count_processes() == 0, "no process is left")
    shown = fleet.run("parked", "--reason", "not in the store", "--format", "csv").stdout
    expect(shown.count("\n") == 2 and "missing" in shown, f"parked --reason: {shown}")
    check_parked(fleet, keys, folder)
    check_retry(fleet)


def check_parked(fleet, keys, folder):
    key = next(key for key, words in keys.items() if words == "leads out")
    shown = fleet.run("parked", "--show", key[:12].upper(), "--format", "csv").stdout
    for words in (f"recording,{key}", "leads out", "upward of default at 2026-01-01", f"{key}.zip"):
        expect(words in shown, f"parked --show has {words}: {shown}")
    fetched = folder / "fetched.zip"
    ended = fleet.run("parked", "--fetch", key, "--output", fetched)
    expect(ended.returncode == 0 and fetched.read_bytes() == (folder / "upward.zip").read_bytes(),
           f"parked --fetch: {ended.stderr}")
    missing = next(key for key, words in keys.items() if words == "not in the store")
    expect("not in the store" in fleet.run("parked", "--show", missing).stdout, "a missing one")
    for words in (["--show", "xyz"], ["--show", ""], ["--fetch", missing],
                  ["--show", key, "--retry"], ["--show", key, "--fetch", key]):
        ended = fleet.run("parked", *words)
        expect(ended.returncode == 2 and ended.stderr.count("\n") == 1, f"parked {words}: {ended.stderr}")


def test_refused_values(server):
    """Rows that PostgreSQL takes exception to park their recording alone."""
    fleet = Fleet(server)
    fleet.submit(*SAMPLES)
    # What is wrong with the database itself parks nothing.
    fleet.sql("alter table fleet.part_volumes rename to gone")
    ended = fleet.run("work", "--once")
    expect(ended.returncode == 2 and "does not exist" in ended.stderr, f"no table: {ended.stderr}")
    expect(fleet.value("select count(*) from fleet.job where state = 0") == str(len(SAMPLES)),
           "all are ready for others")
    fleet.sql("alter table fleet.gone rename to part_volumes")
    fleet.sql("alter table fleet.part_drives add check (serial <> 'Z4K002C9144')")
    ended = fleet.run("work", "--once")
    expect(ended.returncode == 1 and f"{len(SAMPLES) - 1} done, 1 parked" in ended.stderr,
           f"refused values: {ended.stderr}")
    parked = fleet.sql("select servers, reason from fleet.parked")
    expect(len(parked) == 1 and parked[0][0] == "{NODE31}" and
           parked[0][1].startswith("the database refuses its rows: "), f"parked: {parked}")
    expect(fleet.value("select count(*) from fleet.server_state") == str(len(SAMPLES) - 1),
           "its neighbours are written")


def check_retry(fleet):
    """A file that was lost is submitted again; another one is mended in the store."""
    sample = ROOT / "samples" / "vroc"
    key = fleet.value("select encode(o.key, 'hex') from fleet.server v join fleet.submission s"
                      " on s.server = v.id join fleet.object o on o.id = s.object"
                      " where v.name = 'vroc'")
    path = fleet.store / key[:2] / f"{key}.zip"
    content = path.read_bytes()
    before = digest(fleet)
    for heal in (lambda: fleet.submit(sample),
                 lambda: (path.write_bytes(content), fleet.run("parked", "--reason", "content key",
                                                               "--retry"),
                          fleet.run("parked", "--reason", "not in the store", "--retry"))):
        path.unlink()
        fleet.run("reparse", "--server", "vroc")
        fleet.work()
        expect(fleet.value(f"select count(*) from fleet.parked where recording = '{key}'") == "1",
               "what is lost is parked")
        heal()
        fleet.work()
        expect(digest(fleet) == before, "what came back is done")
    moved = fleet.store.with_name("moved")
    fleet.store.rename(moved)
    fleet.run("reparse", "--all")
    ended = fleet.run("work", "--once")
    expect(ended.returncode == 2 and "no store of recordings" in ended.stderr,
           f"work without the store: {ended.stderr}")
    expect(fleet.value("select count(*) from fleet.parked where reason like '%submit%'") == "1",
           "nothing is parked for a store that is not there")
    moved.rename(fleet.store)
    fleet.work()
    expect(digest(fleet) == before, "the store is there again")


# --- workers that end ---

def test_kills(server):
    files = make_random(server, 40, 5, 1000)
    calm, chaos = Fleet(server), Fleet(server)
    for fleet in (calm, chaos):
        fleet.submit(*files)
    calm.work("--workers", "2")
    draw = random.Random(7)
    turn = kills = terminated = stopped = 0
    asleep = []
    # Batches so small that a busy machine has time for them within a lease.
    team = chaos.start("work", "--once", "--workers", "2", "--batch", "4", "--lease", "1")
    end = time.monotonic() + 60
    while team.poll() is None and time.monotonic() < end:
        time.sleep(draw.uniform(0.02, 0.12))
        children = subprocess.run(["pgrep", "-P", str(team.pid)], capture_output=True,
                                  text=True).stdout.split()
        for pid, since in list(asleep):
            if time.monotonic() - since > 2:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(pid, signal.SIGCONT)
                asleep.remove((pid, since))
        if not children or kills >= 12:
            continue
        chosen, turn = int(draw.choice(children)), turn + 1
        with contextlib.suppress(ProcessLookupError):
            if turn % 4 < 2:
                os.kill(chosen, signal.SIGKILL)
                kills += 1
            elif turn % 4 == 2 and not asleep:
                os.kill(chosen, signal.SIGSTOP)
                asleep.append((chosen, time.monotonic()))
                stopped += 1
            else:
                terminated += len(chaos.sql(
                    "select pg_terminate_backend(pid) from pg_stat_activity where datname ="
                    " current_database() and application_name = 'pqfleet work' limit 1"))
    team.communicate(timeout=60)
    expect(kills >= 5, f"{kills} kills of workers are too few to tell")
    print(f"kill -9 of workers {kills}, of their backends {terminated}, stopped {stopped}")
    # Who was asleep may have been the last one.
    chaos.work("--lease", "1")
    expect(not differences(digest(calm), digest(chaos)),
           f"lost or doubled: {differences(digest(calm), digest(chaos))};"
           f" parked: {chaos.sql('select reason, attempts, lost from fleet.parked')}")
    expect(count_processes() == 0, "no process is left")


def test_fence(server):
    fleet = Fleet(server)
    fleet.submit(*make_random(server, 40, 5, 1000))
    team = fleet.start("work", "--once")
    stolen = []
    for _ in range(500):
        time.sleep(0.01)
        worker = subprocess.run(["pgrep", "-P", str(team.pid)], capture_output=True,
                                text=True).stdout.split()
        if not worker:
            continue
        os.kill(int(worker[0]), signal.SIGSTOP)
        # Another worker took over what this one is at, unless it writes that just now.
        stolen = fleet.sql(
            "update fleet.job set claim = -1, worker = 'other', lease = 'infinity' where object in"
            " (select object from fleet.job where state = 1 for update skip locked)"
            " returning object")
        os.kill(int(worker[0]), signal.SIGCONT)
        if stolen:
            break
    for _ in range(300):
        time.sleep(0.05)
        if fleet.value("select count(*) from fleet.job where state = 0") == "0":
            break
    team.send_signal(signal.SIGTERM)
    team.communicate(timeout=60)
    expect(stolen and fleet.value("select count(*) from fleet.job where state = 1 and claim = -1")
           == str(len(stolen)), "what another worker has is left to it")
    expect(fleet.value("select count(*) from fleet.result r join fleet.job using (object)"
                       " where state = 1") == "0", "and nothing is written of it")
    fleet.sql("update fleet.job set lease = now() where state = 1")
    fleet.work()
    expect(fleet.value("select count(*) from fleet.job where state = 2 and claim is null")
           == fleet.value("select count(*) from fleet.object"),
           f"all are done in the end, but {fleet.sql('select reason from fleet.parked')}")


def test_end_request(server):
    fleet = Fleet(server)
    fleet.submit(*make_random(server, 40, 5, 1000))
    team = fleet.start("work", "--workers", "2", "--batch", "4")
    for _ in range(200):
        time.sleep(0.02)
        if fleet.value("select count(*) from fleet.job where state = 2") != "0":
            break
    team.send_signal(signal.SIGTERM)
    _, told = team.communicate(timeout=60)
    expect(team.returncode == 0 and fleet.value("select count(*) from fleet.job where state = 0")
           != "0", f"it ends when it is asked to: {team.returncode}, {told[-300:]}")
    expect(fleet.value("select count(*) from fleet.job where state = 1") == "0",
           "what was not begun is ready for others")
    expect(count_processes() == 0, "no process is left")
    server.stop("immediate")
    team = fleet.start("work", "--once")
    expect(team.wait(timeout=20) == 2, "no database: wrong use")
    server.start()
    # Of a claim whose answer the server could not send any more nobody knows until its lease ends.
    team = fleet.start("work", "--workers", "2", "--batch", "16", "--lease", "5")
    time.sleep(0.1)
    server.stop("immediate")
    server.start()
    await_true(lambda: fleet.value("select count(*) from fleet.job where state < 2") == "0", 120)
    team.send_signal(signal.SIGTERM)
    team.communicate(timeout=60)
    other = Fleet(server)
    other.submit(*make_random(server, 40, 5, 1000))
    other.work("--workers", "2")
    expect(not differences(digest(fleet), digest(other)), "PostgreSQL killed: nothing is lost")


def test_full_disk(server):
    """Where the database's disk is full, workers wait and say so; then it is restarted."""
    fleet, other = Fleet(server), Fleet(server)
    files = make_random(server, 20, 3, 1100)
    for one in (fleet, other):
        one.submit(*files)
    other.work("--workers", "2")
    server.stop("fast")
    server.start(LD_PRELOAD=str(BIN / "troubled_system.so"), PQ_DISK="/data/base/", PQ_ROOM="300000")
    team = fleet.start("work", "--once", "--batch", "16")
    told = team.stderr.readline()
    expect("could not extend file" in told and "trying again" in told, f"it waits and says so: {told}")
    expect(fleet.value("select count(*) from fleet.job where state = 3") == "0", "nothing is parked")
    ended = fleet.run("status")
    expect(ended.returncode == 0 and "trouble" in ended.stdout and
           "No space left on device" in ended.stdout, f"status says so: {ended.stdout}{ended.stderr}")
    server.stop("fast")
    server.start()
    expect("trouble" not in json.loads(fleet.run("status", "--format", "json").stdout), "there is room")
    errors = team.communicate(timeout=120)[1]
    expect(team.returncode == 0, f"with room it goes on: {errors}")
    expect(not differences(digest(fleet), digest(other)), "nothing is lost")


class SlowWay:
    """A way to the database on which each message takes `delay` seconds; counts those of the worker."""

    def __init__(self, server, delay):
        self.folder = pathlib.Path(server.folder) / "slow"
        self.folder.mkdir()
        self.there, self.delay, self.count = f"{server.folder}/.s.PGSQL.5432", delay, 0
        self.listening = socket.socket(socket.AF_UNIX)
        self.listening.bind(str(self.folder / ".s.PGSQL.5432"))
        self.listening.listen()
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            near, far = self.listening.accept()[0], socket.socket(socket.AF_UNIX)
            far.connect(self.there)
            for ends in ((near, far, 1), (far, near, 0)):
                threading.Thread(target=self.carry, args=ends, daemon=True).start()

    def carry(self, one, other, counts):
        with contextlib.suppress(OSError):
            while data := one.recv(1 << 20):
                self.count += counts
                time.sleep(self.delay)
                other.sendall(data)
            other.shutdown(socket.SHUT_WR)


def test_slow_network(server):
    """The database is far away: few messages for many recordings."""
    fleet, other = Fleet(server), Fleet(server)
    for one in (fleet, other):
        one.submit(*make_random(server, 20, 3, 1100))
    other.work()
    way = SlowWay(server, 0.005)
    fleet.environment["PGHOST"] = str(way.folder)
    fleet.work("--lease", "2")
    fleet.environment["PGHOST"] = server.folder
    expect(not differences(digest(fleet), digest(other)), "the same is known")
    batches = -(-int(fleet.value("select count(*) from fleet.object")) // 64)
    expect(way.count < 90 + 130 * batches, f"{way.count} messages for {batches} batches")


# --- nights ---

def test_month(server):
    """Thirty nights in random order, by two workers, and in theirs, one after the other."""
    files = make_random(server, 2, 30, 2500)
    ordered, shuffled = Fleet(server), Fleet(server)
    for night in range(30):
        ordered.submit(*files[night::30])
        ordered.work()
    rest = list(files)
    random.Random(13).shuffle(rest)
    for begin in range(0, len(rest), 20):
        shuffled.submit(*rest[begin:begin + 20])
        shuffled.work("--workers", "2", "--batch", "4")
    expect(not differences(digest(ordered), digest(shuffled)),
           f"the order of nights counts: {differences(digest(ordered), digest(shuffled))}")
    expect(ordered.value("select count(*) from fleet.verdict_now where taken ="
                         " '2026-01-30 00:00:00+00'") == "2", "the newest night shows")
    # A night's rows take the room of the last one's.
    updated, in_place = map(int, ordered.sql("select n_tup_upd, n_tup_hot_upd from"
                                             " pg_stat_user_tables where relname = 'part_drives'")[0])
    expect(updated >= in_place > 0, f"{updated} drives updated, {in_place} in their pages")
    compare_with_pqhost(ordered, {path.name.split("_")[0]: path for path in files[29::30]})


def test_order(server):
    files = make_random(server, 15, 6, 2000)
    ordered, shuffled = Fleet(server), Fleet(server)
    for night in range(6):
        ordered.submit(*files[night::6])
        ordered.work()
    draw = random.Random(11)
    rest = list(files)
    draw.shuffle(rest)
    for begin in range(0, len(rest), 30):
        shuffled.submit(*rest[begin:begin + 30])
        shuffled.work("--workers", "2")
    expect(not differences(digest(ordered), digest(shuffled)),
           f"the order of nights counts: {differences(digest(ordered), digest(shuffled))}")
    distinct = ordered.value("select count(*) from fleet.object")
    expect(distinct == str(15 * 4), f"the same content is kept once: {distinct}")
    history = ordered.value("select count(*) from fleet.verdict_history")
    expect(history == str(15 * 6), f"each night has a verdict: {history}")
    newest = ordered.value("select count(*) from fleet.verdict_now where taken ="
                           " '2026-01-06 00:00:00+00'")
    expect(newest == "15", f"the newest night shows: {newest}")


    server_of = "srv-2003"
    ended = ordered.run("history", server_of, "--part", "drives", "--format", "json")
    rows = json.loads(ended.stdout)["tables"][0]["rows"]
    expected = []
    for night, path in enumerate(files[18:24]):
        collected = json.loads(subprocess.run([PQHOST, "collect", "--replay", path, "--format",
                                               "json"], capture_output=True, text=True).stdout)
        expected += [{"taken": f"2026-01-0{night + 1} 00:00:00", **part}
                     for part in collected["parts"]["drives"]]
    expect(ended.returncode == 0 and rows == expected and rows, f"history: {ended.stderr}")
    since = ordered.run("history", server_of, "--class", "ARPINFO", "--since", "2026-01-04",
                        "--format", "csv").stdout
    expect("2026-01-04" in since and "2026-01-03" not in since, "history --since")
    for words in (["history", server_of], ["history", server_of, "--part", "x"],
                  ["history", "nobody", "--part", "drives"],
                  ["history", server_of, "--part", "drives", "--since", "x"], ["export"],
                  ["export", "--part", "x"], ["export", "--all", "--since", "x"]):
        ended = ordered.run(*words)
        expect(ended.returncode == 2 and ended.stderr.count("\n") == 1, f"{words} {ended.stderr}")
    lines = ordered.run("export", "--part", "drives", "--part", "findings").stdout.splitlines()
    counted = ordered.value("select (select count(*) from fleet.drives)"
                            " + (select count(*) from fleet.findings)")
    expect(str(len(lines)) == counted and counted != "0", f"export: {len(lines)} of {counted}")
    texts = [json.loads(line) for line in lines]
    drives = sorted(json.dumps(row) for row in texts if row.pop("view") == "drives"
                    and row.pop("taken"))
    listed = sorted(json.dumps(json.loads(row[0])) for row in ordered.sql(
        "select row_to_json(d) from fleet.drives d"))
    expect(drives == listed, "export has the rows of the view")
    expect(ordered.run("export", "--all", "--since", "2026-01-07").stdout == "", "export --since")


def test_clocks(server):
    fleet = Fleet(server)
    files = make_random(server, 1, 2, 3000)
    future = pathlib.Path(server.folder) / "future.zip"
    with zipfile.ZipFile(files[0]) as old, zipfile.ZipFile(future, "w") as new:
        for entry in old.infolist():
            text = old.read(entry)
            if entry.filename == "submission.json":
                text = text.replace(b"2026-01-01", b"2099-01-01")
            new.writestr(entry.filename, text)
    ended = fleet.run("submit", future)
    expect(ended.returncode == 0, f"a clock that is ahead: {ended.stdout}{ended.stderr}")
    row = fleet.sql("select note, taken <= now() from fleet.submission")[0]
    expect(row[0].startswith("the clock was ahead: 2099-01-01") and row[1] == "t", f"flag: {row}")
    expect(fleet.run("submit", future).stdout.startswith("known"), "it is known by its flag")
    fleet.work()
    fleet.sql("update fleet.submission set taken = '2026-01-01', received = '2026-01-01'")
    fleet.submit(files[1])
    fleet.work()
    expect(fleet.value("select count(*) from fleet.verdict_now where note is null") == "1",
           "a later night is not held up")
    expect(fleet.query("select server from silent").stdout.count("\n") == 1, "nobody is silent")
    fleet.sql("update fleet.server set received = now() - interval '3 days'")
    expect("srv-3000" in fleet.query("select server from silent").stdout, "a silent server")


def test_first_time(server):
    """Content is judged as of when it was first seen, whichever submission comes first."""
    sample = ROOT / "samples" / "amt-desktop"
    files = {str(path.relative_to(sample)): path.read_bytes()
             for path in sorted(sample.rglob("*")) if path.is_file()}
    nights = []
    for night in ("2022-06-03", "2026-06-03"):
        told = {"format": 1, "name": "one", "recordedAt": f"{night}T00:00:00Z"}
        nights.append(pathlib.Path(server.folder) / f"{night}.zip")
        nights[-1].write_bytes(zip_bytes({**files, "submission.json": json.dumps(told)}))
    verdicts = []
    for order in (nights, nights[::-1]):
        fleet = Fleet(server)
        for file in order:
            fleet.submit(file)
            fleet.work()
        verdicts.append(fleet.sql("select server, verdict from fleet.verdict_now order by 1"))
    expect(verdicts[0] == verdicts[1] == [["one", "critical"]],
           f"the order of submissions counts: {verdicts}")


# --- what goes, and what is made anew ---

def list_store(fleet):
    return sorted(path.stem for path in fleet.store.rglob("*.zip"))


def list_objects(fleet):
    return [row[0] for row in fleet.sql("select encode(key, 'hex') from fleet.object order by 1")]


def test_removal(server):
    files = make_random(server, 6, 6, 2000)
    fleet, other = Fleet(server), Fleet(server)
    fleet.submit(*files, ROOT / "samples" / "vroc")
    # Of the same content as the first server's.
    fleet.run("submit", "--site", "berlin", "--server", "twin", *files[:6])
    fleet.run("submit", "--site", "berlin", *files[:6])
    fleet.work()
    ended = fleet.run("forget", "srv-2000")
    expect(ended.returncode == 2 and "name its --site" in ended.stderr, f"two: {ended.stderr}")
    ended = fleet.run("forget", "srv-2000", "--site", "default")
    expect(ended.stdout == "forgot 1 server, 6 submissions, 0 recordings\n", f"{ended.stdout}")
    ended = fleet.run("forget", "--whole-site", "berlin")
    expect(ended.stdout == "forgot 2 servers, 12 submissions, 4 recordings\n", f"{ended.stdout}")
    for words in (["forget", "srv-2000"], ["forget", "--whole-site", "x"], ["forget"], ["expire"]):
        expect(fleet.run(*words).returncode == 2, f"{words}")
    expect(list_store(fleet) == list_objects(fleet), "the store has what is known, no more")
    other.submit(*files[6:], ROOT / "samples" / "vroc")
    other.work()
    expect(not differences(digest(fleet), digest(other)), "nothing is left of who was forgotten")
    # A run that was ended before it came to the store.
    key = list_objects(fleet)[0]
    stray = "ab" * 32
    path = fleet.store / stray[:2] / f"{stray}.zip"
    path.parent.mkdir(exist_ok=True)
    path.write_bytes(b"x")
    fleet.sql(f"insert into fleet.removal values ('\\x{stray}'), ('\\x{key}')")
    ended = fleet.run("expire", "--older-than", "36500")
    expect(ended.stdout == "removed 0 submissions, 0 recordings\n", f"{ended.stdout}")
    expect(list_store(fleet) == list_objects(fleet), "what was left over goes, what is known stays")
    # Of each server one of December as well: it, and the first of January, stay.
    fleet.sql("insert into fleet.submission (server, taken, object) select distinct on (server, n)"
              " server, timestamptz '2025-12-20 00:00Z' + n * interval '1 day', object from"
              " fleet.submission, generate_series(0, 1) n where taken < '2026-02-01'"
              " and taken >= '2026-01-01' order by server, n, taken")
    ended = fleet.run("expire", "--older-than", "1", "--keep-monthly")
    expect(ended.stdout == "removed 25 submissions, 10 recordings\n", f"{ended.stdout}")
    left = fleet.sql("select to_char(taken, 'MM-DD'), count(*) from fleet.submission"
                     " where taken < '2026-02-01' group by 1 order by 1")
    expect(left == [["01-01", "5"], ["01-06", "5"], ["12-20", "5"]], f"one of a month stays: {left}")
    ended = fleet.run("expire", "--older-than", "1")
    # Of night 5 and what is the same as in it only night 5 is left.
    expect(ended.stdout == "removed 10 submissions, 5 recordings\n", f"{ended.stdout}")
    expect(list_store(fleet) == list_objects(fleet), "old ones are out of the store")
    expect(fleet.value("select count(*) from fleet.verdict_now") == "6", "the newest ones stay")


def test_rebuild(server):
    fleet = Fleet(server)
    fleet.submit(*make_random(server, 15, 6, 2000))
    place(fleet, "missing", None, "missing")
    fleet.work()
    before = digest(fleet)
    ended = fleet.run("rebuild")
    expect(ended.stdout == "61 recordings ready\n", f"{ended.stdout}{ended.stderr}")
    expect(fleet.value("select count(*) from fleet.verdict_now") == "0", "nothing is known")
    fleet.work("--workers", "2")
    expect(not differences(before, digest(fleet)), "all is as before")
    check_metrics(fleet)


def check_metrics(fleet):
    file = pathlib.Path(fleet.server.folder) / "pqfleet.prom"
    fleet.run("metrics", "--output", file)
    lines = file.read_text().splitlines()
    for line in ('pqfleet_recordings{state="done"} 60', 'pqfleet_recordings{state="parked"} 1',
                 "pqfleet_servers 16", "pqfleet_silent_servers 0",
                 "pqfleet_oldest_waiting_seconds 0"):
        expect(line in lines, f"metrics without {line}")
    promtool = ROOT / "build" / "tools" / "promtool"
    if promtool.exists():
        ended = subprocess.run([promtool, "check", "metrics"], input=file.read_bytes(),
                               capture_output=True)
        expect(not ended.stderr + ended.stdout and ended.returncode == 0,
               f"promtool: {ended.stderr}{ended.stdout}")


# --- the door ---

DOOR = ROOT / "docs" / "examples" / "door"


def make_certificates(folder, *clients):
    """A server's for 127.0.0.1, and those of clients, each in a file of its own with its key."""
    for words in (["door", "127.0.0.1"], *(["site", client] for client in clients)):
        ended = subprocess.run([DOOR / "make_ca.sh", folder, *words], text=True,
                               env={**os.environ, "PASSWORD": "x"}, capture_output=True)
        expect(ended.returncode == 0, f"make_ca.sh {words}: {ended.stderr}")
    for client in clients:
        (folder / f"{client}-whole.pem").write_text(
            (folder / f"{client}.pem").read_text() + (folder / f"{client}.key").read_text())


def hand_over(folder, *files):
    """A folder with copies that a server which is a plain user may have."""
    folder.mkdir()
    for file in files:
        shutil.copy(file, folder)
    if os.geteuid() == 0:
        for path in (folder, *folder.iterdir()):
            os.chown(path, NOBODY, NOBODY)
    return folder


class Spool:
    """A spool of two sites, the door's nginx before it, and certificates."""

    def __init__(self, server, name):
        self.folder = pathlib.Path(server.folder) / name
        self.folder.mkdir(mode=0o755)
        self.keys, self.spool = self.folder / "keys", self.folder / "spool"
        self.spool.mkdir()
        for site in ("berlin", "oslo"):
            (self.spool / site).mkdir()
            # As the door's group may.
            os.chmod(self.spool / site, 0o777)
        os.chmod(self.spool, 0o777)
        make_certificates(self.keys, "berlin", "oslo", "nowhere")
        readable = hand_over(self.folder / "nginx-keys", *(
            self.keys / file for file in ("server.pem", "server.key", "ca.pem")))
        self.nginx = PrivateNginx(DOOR / "pqfleet-door.conf", self.folder / "nginx",
                                  {"/etc/pqfleet/door": readable,
                                   "/var/spool/pqfleet": self.spool})

    def curl(self, path, *words, site="berlin"):
        """The status of the answer; 0 when there is none."""
        certificate = ["--cert", self.keys / f"{site}.pem", "--key",
                       self.keys / f"{site}.key"] if site else []
        ended = subprocess.run(
            ["curl", "--silent", "--output", "/dev/null", "--write-out", "%{http_code}", "--cacert",
             self.keys / "ca.pem", *certificate, *words,
             f"https://127.0.0.1:{self.nginx.port}{path}"], capture_output=True, text=True)
        return int(ended.stdout)

    def put(self, file, *words, **more):
        digest = hashlib.sha256(pathlib.Path(file).read_bytes()).hexdigest()
        return self.curl(f"/recordings/{digest}.zip", "--upload-file", str(file), *words, **more)

    def list(self, *places):
        return sorted(str(path.relative_to(self.spool)) for path in self.spool.rglob("*.zip"))

    def send(self, folder, site):
        return subprocess.run(
            [DOOR / "send_recordings.sh", folder, f"https://127.0.0.1:{self.nginx.port}",
             self.keys / f"{site}.pem", self.keys / f"{site}.key", self.keys / "ca.pem"],
            env={**os.environ, "RETRIES": "1"}, capture_output=True, text=True)


def await_true(holds, seconds=30):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if holds():
            return True
        time.sleep(0.05)
    return False


def end_watch(process):
    process.send_signal(signal.SIGTERM)
    begin = time.monotonic()
    out, errors = process.communicate(timeout=60)
    expect(process.returncode == 0 and time.monotonic() - begin < 5,
           f"submit --watch ends when asked to: {process.returncode} {errors}")
    return out, errors


def test_door(server):
    fleet = Fleet(server)
    door = Spool(server, "door")
    files = make_random(server, 2, 2, 4000)
    with door.nginx:
        expect(door.put(files[0], site=None) == 400, "without a certificate")
        digest = "ab" * 32
        for path, words, status in (
                (f"/recordings/{digest}.zip", [], 403),
                (f"/recordings/{digest}.zip", ["--request", "DELETE"], 403),
                (f"/recordings/{digest}.zip", ["--request", "MKCOL"], 403),
                ("/recordings/x.zip", ["--upload-file", files[0]], 404),
                (f"/recordings/{digest[1:]}.zip", ["--upload-file", files[0]], 404),
                (f"/recordings/..%2f{digest}.zip", ["--upload-file", files[0]], 404),
                (f"/recordings/oslo/{digest}.zip", ["--upload-file", files[0]], 404), ("/", [], 404)):
            expect(door.curl(path, *words) == status, f"{words} {path} is answered {status}")
        expect(door.put(files[0], site="nowhere") == 403, "a site that is not one")
        large = door.folder / "large.zip"
        with large.open("wb") as file:
            file.truncate(65 << 20)
        expect(door.put(large) == 413, "65 MiB")
        expect(not door.list(), f"nothing was let in: {door.list()}")
        expect(door.put(files[0]) == 201 and door.put(files[0]) == 204, "a recording, twice")
        expect(len(door.list()) == 1 and door.list()[0].startswith("berlin/"), f"{door.list()}")
        slow = door.folder / "slow.zip"
        slow.write_bytes(random.Random(3).randbytes(8 << 20))
        cut = subprocess.Popen(
            ["curl", "--silent", "--limit-rate", "200k", "--cacert", door.keys / "ca.pem", "--cert",
             door.keys / "berlin.pem", "--key", door.keys / "berlin.key", "--upload-file", slow,
             f"https://127.0.0.1:{door.nginx.port}/recordings/{digest}.zip"])
        coming = lambda: [path for path in (door.spool / ".coming").rglob("*") if path.is_file()]
        expect(await_true(coming), "an upload is on its way")
        expect(len(door.list()) == 1, "and not there before it is whole")
        cut.kill()
        cut.wait()
        expect(await_true(lambda: not coming()) and len(door.list()) == 1,
               "of a cut upload nothing is left")
        for mark, status in ((".closed", 503), ("berlin/.closed", 429)):
            (door.spool / mark).touch()
            expect(door.put(files[1]) == status, f"closed by {mark}")
            expect((door.put(files[1], site="oslo") == 201) == (status == 429), "others are not")
            (door.spool / mark).unlink()
        check_senders(fleet, door, files)
    log = (door.nginx.folder / "pqfleet-door.log").read_text()
    for words in (' 400 127.0.0.1 "" ', ' 413 127.0.0.1 "berlin" ', ' 403 127.0.0.1 "nowhere" '):
        expect(words in log, f"the door's log has {words!r}")


def check_senders(fleet, door, files):
    """Two sites send recordings of servers that are called alike."""
    for site in ("berlin", "oslo"):
        outgoing = door.folder / f"to-send-{site}"
        outgoing.mkdir()
        for path in files:
            shutil.copy(path, outgoing)
        (door.spool / ".closed").touch()
        ended = door.send(outgoing, site)
        expect(ended.returncode == 1 and len(list(outgoing.iterdir())) == 4,
               f"what cannot be sent stays: {ended.stderr[-200:]}")
        (door.spool / ".closed").unlink()
        ended = door.send(outgoing, site)
        expect(ended.returncode == 0 and not list(outgoing.iterdir()), f"send: {ended.stderr}")
    watch = fleet.start("submit", "--watch", door.spool)
    expect(await_true(lambda: not door.list()), f"the spool is emptied: {door.list()}")
    end_watch(watch)
    counted = fleet.sql("select t.name, count(distinct v.id), count(*) from fleet.submission s"
                        " join fleet.server v on v.id = s.server join fleet.site t on t.id = v.site"
                        " group by 1 order by 1")
    expect(counted == [["berlin", "2", "4"], ["oslo", "2", "4"]],
           f"each site has servers of its own: {counted}")


def test_watch(server):
    """A folder that others write into as they like, while who watches it is killed."""
    fleet = Fleet(server)
    spool = pathlib.Path(server.folder) / "watched"
    for site in ("berlin", "oslo", ".hidden"):
        (spool / site).mkdir(parents=True)
    for words, reason in ((["--watch", spool / "nowhere"], "no such folder"),
                          (["--watch", spool, "--site", "x"], "beside it"),
                          (["--watch", spool, "x.zip"], "beside it"),
                          (["--watch", spool, "--store", "/nowhere"], "no store")):
        ended = fleet.run("submit", *words)
        expect(ended.returncode == 2 and reason in ended.stderr, f"{words}: {ended.stderr}")
    files = make_random(server, 60, 5, 5000)
    parts = [file.read_bytes() for file in files]
    watch = fleet.start("submit", "--watch", spool)
    expect(await_true((spool / ".lock").exists), "it watches")
    second = fleet.run("submit", "--watch", spool)
    expect(second.returncode == 2 and "another pqfleet submit" in second.stderr, "one for a spool")
    kills = 0
    for number, content in enumerate(parts):
        path = spool / ("berlin" if number % 2 else "oslo") / f"{number}.zip"
        # In two halves, and some under a name that another one had.
        if number % 50 == 49:
            path = path.with_name(f"again-{number % 2}.zip")
            await_true(lambda: not path.exists())
        with path.open("wb") as file:
            file.write(content[:len(content) // 2])
            file.flush()
            if number == 0:
                time.sleep(2)  # It looks every second.
            if number % 30 == 7:
                watch.kill()
                watch.communicate()
                kills += 1
                watch = fleet.start("submit", "--watch", spool)
            file.write(content[len(content) // 2:])
    (spool / ".hidden" / "0.zip").write_bytes(parts[0])
    (spool / "berlin" / "no.txt").write_bytes(parts[0])
    (spool / "berlin" / "link.zip").symlink_to(files[0])
    os.mkfifo(spool / "berlin" / "pipe.zip")
    waiting = lambda: [path for site in ("berlin", "oslo") for path in (spool / site).iterdir()
                       if path.suffix == ".zip" and path.is_file() and not path.is_symlink()]
    expect(await_true(lambda: not waiting(), 60), f"all are taken: {waiting()}")
    out, errors = end_watch(watch)
    found = fleet.value("select count(*) from fleet.submission")
    expect(found == str(len(files)), f"killed {kills} times, {found} of {len(files)} are registered")
    expect(not (spool / ".refused").exists(), "half-written ones are not refused")
    expect((spool / "berlin" / "no.txt").exists() and (spool / "berlin" / "link.zip").is_symlink() and
           (spool / ".hidden" / "0.zip").exists(), "what is no recording stays")
    check_refusals(fleet, spool, parts)
    check_quotas(fleet, spool, parts)


def check_refusals(fleet, spool, parts):
    half = spool / "oslo" / "half.zip"
    half.write_bytes(parts[0][:1000])
    # A name that would ring a bell wherever it is shown.
    odd = zip_bytes({"recording.json": commands_json(["a"]), "a": "odd",
                     "submission.json": json.dumps({"format": 1, "name": "x\u0007y",
                                                    "recordedAt": "2026-01-01T00:00:00Z"})})
    (spool / "oslo" / "odd.zip").write_bytes(odd)
    (spool / "oslo" / "good.zip").write_bytes(parts[0])
    watch = fleet.start("submit", "--watch", spool, "--patience", "1")
    expect(await_true(lambda: len(list((spool / ".refused").rglob("*.zip"))) == 2),
           "what stays half is refused")
    out, errors = end_watch(watch)
    expect(out.count("refused  ") == 2 and out.count("known  ") == 1, f"lines: {out}")
    expect((spool / ".refused" / "oslo" / "half.zip").read_bytes() == parts[0][:1000],
           "and kept to be looked at")


def check_quotas(fleet, spool, parts):
    fleet.sql("delete from fleet.site_day")
    for number in range(8):
        (spool / "berlin" / f"{number}.zip").write_bytes(parts[number])
    (spool / "oslo" / "0.zip").write_bytes(parts[0])
    watch = fleet.start("submit", "--watch", spool, "--day-recordings", "5")
    expect(await_true((spool / "berlin" / ".closed").exists) and
           await_true(lambda: not (spool / "oslo" / "0.zip").exists()), "a quota closes one site")
    out, errors = end_watch(watch)
    left = sum(path.is_file() for path in (spool / "berlin").glob("[0-7].zip"))
    expect(left == 3 and "closed to berlin" in errors, f"{left} are left: {errors}")
    fleet.sql("update fleet.site_day set day = day - 1")
    watch = fleet.start("submit", "--watch", spool, "--day-recordings", "5", "--most-ready", "100")
    expect(await_true((spool / ".closed").exists), "a full queue closes the door")
    fleet.sql("update fleet.job set state = 2")
    expect(await_true(lambda: not list((spool / "berlin").glob("[0-7].zip"))) and
           await_true(lambda: not (spool / ".closed").exists() and
                      not (spool / "berlin" / ".closed").exists()), "the next day it is open")
    end_watch(watch)
    fleet.sql("delete from fleet.site_day")
    (spool / "berlin" / "0.zip").write_bytes(parts[0])
    fleet.sql("insert into fleet.site_day select id, (now() at time zone 'UTC')::date, 1, 2 << 20"
              " from fleet.site where name = 'berlin'")
    watch = fleet.start("submit", "--watch", spool, "--day-mib", "2")
    expect(await_true((spool / "berlin" / ".closed").exists), "a quota of bytes")
    end_watch(watch)


# --- the store elsewhere ---

class HttpStore:
    """A store behind nginx, as the example has it. Enter `nginx` to have it run."""

    def __init__(self, server):
        self.folder = pathlib.Path(server.folder) / "http-store"
        self.folder.mkdir(mode=0o755)
        self.keys = self.folder / "keys"
        make_certificates(self.keys, "writer", "worker")
        self.root = hand_over(self.folder / "root")
        readable = hand_over(self.folder / "nginx-keys", *(
            self.keys / file for file in ("server.pem", "server.key", "ca.pem")))
        self.nginx = PrivateNginx(ROOT / "docs/examples/store/pqfleet-store.conf",
                                  self.folder / "nginx", {"/etc/pqfleet/store": readable,
                                                          "/srv/fleet": self.root})
        self.address = f"https://127.0.0.1:{self.nginx.port}"

    def be(self, fleet, who):
        fleet.environment.update(PQFLEET_STORE=self.address, SSL_CERT_FILE=str(self.keys / "ca.pem"),
                                 PQFLEET_STORE_CERTIFICATE=str(self.keys / f"{who}-whole.pem"))


def test_store(server):
    """A store that is reached by HTTPS holds and gives what one in a folder does."""
    near, far = Fleet(server), Fleet(server)
    files = make_random(server, 20, 3, 1100)
    near.submit(*SAMPLES, *files)
    near.work("--workers", "2")
    store = HttpStore(server)
    store.be(far, "writer")
    with store.nginx:
        ended = far.run("submit", SAMPLES[0])
        expect(ended.returncode == 2 and "no store of recordings" in ended.stderr,
               f"an empty place is no store: {ended.stderr}")
        ended = far.run("init", "--upgrade")
        expect(ended.returncode == 0 and (store.root / "pqfleet-store").read_text() == "1\n",
               f"init: {ended.stderr}")
        far.submit(*SAMPLES, *files)
        expect(far.run("submit", "--server-by-file", SAMPLES[0]).stdout.startswith("known"), "again")
        far.store = store.root
        expect(list_store(far) == list_store(near), "the same recordings are kept")
        check_certificates(far, store)
        store.be(far, "worker")
    with store.nginx:
        team = far.start("work", "--workers", "2", "--batch", "4")
        expect(await_true(lambda: far.value("select count(*) from fleet.job where state = 2") != "0"),
               "it works")
    # A pause is lived through, an end of it told.
    time.sleep(1)
    with store.nginx:
        expect(await_true(lambda: far.value("select count(*) from fleet.job where state < 2") == "0"),
               "it goes on when the store is back")
    expect(not differences(digest(near), digest(far)), "the same is known")
    far.run("reparse", "--all")
    errors = team.communicate(timeout=60)[1]
    expect(team.returncode == 2 and "cannot be reached" in errors, f"it ends: {errors}")
    expect(far.value("select count(*) from fleet.job where state = 0") ==
           far.value("select count(*) from fleet.object"), "all are ready for others")
    with store.nginx:
        expect(far.work("--workers", "2") == 0 and not differences(digest(near), digest(far)),
               "nothing is lost")
        shown = far.run("show", "NODE31", "--format", "json")
        expect(shown.returncode == 0 and '"tables"' in shown.stdout, f"show: {shown.stderr}")
        key = list_store(far)[0]
        (store.root / key[:2] / f"{key}.zip").unlink()
        far.run("reparse", "--all")
        far.work()
        shown = far.run("parked", "--show", key).stdout
        expect("not in the store" in shown, f"what is lost is parked: {shown}")
        ended = far.run("forget", "NODE31")
        expect(ended.returncode == 2 and "refuses it (status 403)" in ended.stderr,
               f"a worker may not remove: {ended.stderr}")
        store.be(far, "writer")
        expect(far.run("expire", "--older-than", "36500").returncode == 0 and
               set(list_store(far)) == set(list_objects(far)) - {key}, "what was left over goes")
    check_odd_servers(far)


def check_certificates(fleet, store):
    before = sorted(store.root.rglob("*"))
    sample = ROOT / "samples" / "vroc"
    for change, words in (
            ({"PQFLEET_STORE_CERTIFICATE": ""}, "--store-certificate"),
            ({"PQFLEET_STORE_CERTIFICATE": "/nowhere"}, "/nowhere: there is no certificate"),
            ({"SSL_CERT_FILE": str(store.keys / "worker.pem")}, "SSL_CERT_FILE"),
            ({"PQFLEET_STORE": store.address.replace("127.0.0.1", "localhost")}, "SSL_CERT_FILE"),
            ({"PQFLEET_STORE": store.address + "/elsewhere"}, "no store of recordings"),
            ({"PQFLEET_STORE": "https://"}, "write the store's address as"),
            ({"PQFLEET_STORE": "https://me@127.0.0.1/"}, "write the store's address as")):
        kept = dict(fleet.environment)
        fleet.environment.update(change)
        ended = fleet.run("submit", "--server", "x", sample)
        expect(ended.returncode == 2 and words in ended.stderr and ended.stderr.count("\n") == 1,
               f"{change}: {ended.returncode} {ended.stderr}")
        fleet.environment = kept
    store.be(fleet, "worker")
    ended = fleet.run("submit", "--server", "x", make_random(fleet.server, 1, 1, 9100)[0])
    expect(ended.returncode == 2 and "refuses it (status 403)" in ended.stderr,
           f"a worker may not write: {ended.stderr}")
    expect(sorted(store.root.rglob("*")) == before, "nothing was written")


def test_database_over_tls(server):
    """Workers of another machine reach the database by TLS, and no other one in its place."""
    fleet = Fleet(server)
    fleet.submit(*SAMPLES)
    keys = pathlib.Path(server.folder) / "database-keys"
    for name in ("ours", "others"):
        make_certificates(keys / name)
    files = hand_over(pathlib.Path(server.folder) / "database-tls", keys / "ours/server.pem",
                      keys / "ours/server.key")
    usual, port = server.settings, find_port()
    server.stop()
    server.settings += (f" -c listen_addresses=127.0.0.1 -c port={port} -c ssl=on"
                        f" -c ssl_cert_file={files}/server.pem -c ssl_key_file={files}/server.key")
    server.start()
    fleet.environment.update(PGHOST="127.0.0.1", PGPORT=str(port), PGSSLMODE="verify-full",
                             PGSSLROOTCERT=str(keys / "others/ca.pem"))
    ended = fleet.run("work", "--once")
    expect(ended.returncode == 2 and "certificate verify failed" in ended.stderr,
           f"another's certificate: {ended.stderr}")
    fleet.environment["PGSSLROOTCERT"] = str(keys / "ours/ca.pem")
    ended = fleet.run("work", "--once", "--workers", "2")
    expect(f"{len(SAMPLES)} done" in ended.stderr, f"by TLS: {ended.stderr}")
    server.stop()
    server.settings = usual
    server.start()


class OddServer(http.server.BaseHTTPRequestHandler):
    """Busy twice, then a store whose every recording is without an end, or cut off."""

    protocol_version = "HTTP/1.1"
    busy = 2

    def do_GET(self):
        if OddServer.busy > 0:
            OddServer.busy -= 1
            self.answer(503, b"")
        elif self.path.endswith("/pqfleet-store"):
            self.answer(200, b"1\n")
        else:
            self.answer_badly()

    def answer_badly(self):
        if "endless" in self.path:
            with contextlib.suppress(OSError):
                self.send_response(200)
                self.end_headers()
                while True:
                    self.wfile.write(bytes(1 << 20))
        else:
            self.send_response(200)
            self.send_header("Content-Length", "1000")
            self.end_headers()
            self.wfile.write(b"cut off")
        self.close_connection = True

    def answer(self, status, body):
        self.send_response(status)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *unused):
        pass


def check_odd_servers(fleet):
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), OddServer) as odd:
        threading.Thread(target=odd.serve_forever, daemon=True).start()
        parked = fleet.value("select count(*) from fleet.parked")
        for path, words in (("/endless", "sends more than 256 MiB"), ("/cut", "broke off")):
            fleet.environment["PQFLEET_STORE"] = f"http://127.0.0.1:{odd.server_address[1]}{path}"
            fleet.run("reparse", "--all")
            ended = fleet.run("work", "--once")
            expect(ended.returncode == 2 and words in ended.stderr, f"{path}: {ended.stderr}")
        expect(OddServer.busy == 0, "a busy server is asked again")
        odd.shutdown()
    expect(fleet.value("select count(*) from fleet.parked") == parked, "nothing is parked for that")


# --- the pages ---

def fetch(port, path, host="localhost", method="GET"):
    """Status and text."""
    asked = urllib.request.Request(f"http://127.0.0.1:{port}{path}", method=method,
                                   headers={"Host": host})
    try:
        with urllib.request.urlopen(asked, timeout=30) as answer:
            return answer.status, answer.read().decode()
    except urllib.error.HTTPError as error:
        return error.code, error.read().decode()


def test_serve(server):
    fleet = Fleet(server)
    fleet.submit(*SAMPLES, *make_random(server, 120, 1, 6000))
    fleet.run("submit", "--server", "<script>alert(1)</script><img src=x onerror=alert(2)>", "--site",
              "'\"><b>bold", ROOT / "samples" / "no-bmc")
    place(fleet, "missing", None, "<iframe src=//x>")
    fleet.work()
    fleet.sql("insert into fleet.drive_growth select id, 'x', 'c', 'Z4K002C9144', 'm', 'HN07', 37, 4,"
              " now() - interval '20 days' from fleet.server where name = 'NODE31'")
    fleet.sql("update fleet.server set received = now() - interval '3 days' where name = 'vroc'")
    fleet.sql("do $$ begin create role the_reader login; exception when duplicate_object then null;"
              " end $$")
    fleet.sql("grant fleet_reader to the_reader")
    port = find_port()
    pages = fleet.start("serve", "--port", port)
    expect(await_true(lambda: answers(port)), "it serves")
    ended = fleet.run("serve", "--port", port)
    expect(ended.returncode == 2 and "is not to be had" in ended.stderr, f"a port: {ended.stderr}")
    # The site as its own name's owner would have it.
    expect(fetch(port, "/", "elsewhere.example.org")[0] == 421, "another host's name")
    expect(fetch(port, "/", method="POST")[0] == 404, "nothing can be sent")
    ended = subprocess.run(["node", ROOT / "tests/browser/fleet_test.mjs", f"http://127.0.0.1:{port}",
                            ROOT / "build/browser"], capture_output=True, text=True, cwd=ROOT)
    print(ended.stdout.rsplit("\n", 2)[0])  # Its last line counts its tests, not this script's.
    passed = ended.stdout.count("ok      ")
    expect(ended.returncode == 0 and passed == 7, f"in Chromium: {ended.stderr[-500:]}")
    pages.send_signal(signal.SIGTERM)
    expect(pages.wait(timeout=20) == 0, "it ends when asked to")
    pages.communicate()
    # Without rights beyond a reader's, nor the store.
    pages = fleet.start("serve", "--port", port, "--host", "fleet.example.org", user="the_reader")
    expect(await_true(lambda: answers(port)), "it serves as a reader")
    expect(fetch(port, "/", "fleet.example.org:80")[0] == 200, "its host's name")
    server.stop("immediate")
    expect(fetch(port, "/")[0] == 503, "without a database it says so")
    server.start()
    expect(fetch(port, "/")[0] == 200, "and goes on when it is back")
    pages.send_signal(signal.SIGINT)
    expect(pages.wait(timeout=20) == 0, "it ends by Ctrl-C")
    pages.communicate()


def test_demo(_):
    """scripts/fleet_demo.py brings its own server."""
    port = find_port()
    demo = subprocess.Popen(
        [sys.executable, ROOT / "scripts" / "fleet_demo.py", str(BIN), "50", str(port)], text=True,
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
    expect(await_true(lambda: demo.poll() is not None or answers(port), 60), "it serves")
    os.killpg(demo.pid, signal.SIGINT)  # As Ctrl-C on a screen.
    out, errors = demo.communicate(timeout=60)
    expect(demo.returncode == 0 and "35 done, 0 parked" in errors and
           "$ pqfleet serve" in out and "warning" in out, f"the demonstration: {out[-500:]}{errors}")


def answers(port):
    try:
        return fetch(port, "/")[0] == 200
    except OSError:
        return False


def test_parquet(server):
    """docs/examples/parquet.sql: what DuckDB finds in the Parquet file is what the fleet answers."""
    fleet = Fleet(server)
    fleet.submit(*SAMPLES, *make_random(server, 120, 1, 8000))
    fleet.work()
    folder = pathlib.Path(server.folder) / "parquet"
    folder.mkdir()
    ended = fleet.run("export", "--part", "drives", "--output", folder / "drives.ndjson")
    expect(ended.returncode == 0, f"export: {ended.stderr}")
    script = ROOT / "docs" / "examples" / "parquet.sql"
    ran = subprocess.run(["node", ROOT / "tests/fleet/run_duckdb.mjs", script], cwd=folder,
                         capture_output=True, text=True, timeout=120)
    expect(ran.returncode == 0, f"DuckDB: {ran.stderr[-500:]}")
    told = json.loads(ran.stdout)
    question = "select server, id, serial, firmware, media_errors from drives" \
               " where media_errors > 0 order by media_errors desc, server, id"
    asked = list(csv.reader(io.StringIO(fleet.query(question).stdout)))[1:]
    expect(len(asked) > 3 and [[str(cell) for cell in row] for row in told["rows"]] == asked,
           f"{len(told['rows'])} rows in DuckDB, {len(asked)} in PostgreSQL")
    expect(told["types"] == ["VARCHAR"] * 4 + ["BIGINT"], f"types: {told['types']}")
    parquet = (folder / "drives.parquet").read_bytes()
    expect(parquet[:4] == parquet[-4:] == b"PAR1" and
           len(parquet) < (folder / "drives.ndjson").stat().st_size / 5, "it is packed")


# --- who may do what ---

def test_roles(server):
    fleet = Fleet(server)
    for who in ("door", "worker", "reader"):
        fleet.sql(f"do $$ begin create role the_{who} login; exception when duplicate_object"
                  f" then null; end $$")
        fleet.sql(f"grant fleet_{who} to the_{who}")
    sample = ROOT / "samples" / "two-socket-server"
    ended = fleet.run("submit", sample, user="the_door")
    expect(ended.returncode == 0, f"the door submits: {ended.stdout}{ended.stderr}")
    ended = fleet.run("work", "--once", user="the_worker")
    expect(ended.returncode == 0, f"the worker works: {ended.stderr}")
    ended = fleet.run("submit", sample, "--server", "again", user="the_door")
    expect(ended.returncode == 0, f"the door submits again: {ended.stderr}")
    fleet.run("reparse", "--all")
    ended = fleet.run("work", "--once", user="the_worker")
    expect(ended.returncode == 0, f"the worker writes again: {ended.stderr}")
    ended = fleet.query("select count(*) from drives", user="the_reader")
    expect(ended.returncode == 0, f"the reader asks: {ended.stderr}")
    for who, command in (("the_door", ["query", "select 1"]), ("the_reader", ["work", "--once"]),
                         ("the_reader", ["submit", sample]), ("the_worker", ["query", "select 1"])):
        ended = fleet.run(*command, user=who)
        expect(ended.returncode == 1 and "permission denied" in ended.stderr + ended.stdout,
               f"{who} {command[0]}: {ended.returncode} {ended.stderr}")


def test_watchdog(server):
    """A service manager hears of each command that goes on, of its workers too."""
    fleet = Fleet(server)
    fleet.submit(*SAMPLES)
    path = f"{server.folder}/notify"
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
        manager.bind(path)
        manager.settimeout(20)
        spool = pathlib.Path(server.folder) / "notified"
        spool.mkdir()
        fleet.environment["NOTIFY_SOCKET"] = path
        for words in (["work"], ["submit", "--watch", spool], ["serve", "--port", find_port()]):
            process = fleet.start(*words)
            try:
                expect(manager.recv(100) == b"READY=1\nWATCHDOG=1", f"{words[0]} tells that it lives")
            except TimeoutError:
                expect(False, f"{words[0]} tells nothing")
            process.send_signal(signal.SIGTERM)
            process.communicate(timeout=20)
            manager.setblocking(False)
            with contextlib.suppress(BlockingIOError):
                while manager.recv(100):
                    pass
            manager.settimeout(20)


# --- builds whose readers differ ---

def test_upgrade(server):
    fleet = Fleet(server)
    fleet.submit(*SAMPLES)
    fleet.work()
    before = digest(fleet)
    # As a former build would have left it.
    fleet.sql("update fleet.parser set version = '0.0.9+former'")
    fleet.sql("alter table fleet.part_drives drop column media_errors cascade")
    fleet.sql("drop table fleet.packed_class_pdlist cascade;"
              "update fleet.row_table set columns = null where name = 'class_pdlist'")
    fleet.sql("update fleet.server_state set rows = ''")
    fleet.sql("; ".join(f"delete from fleet.{table}" for table in fleet.stored
                        if table != "packed_class_pdlist"))
    ended = fleet.run("work", "--once")
    expect(ended.returncode == 2 and "init --upgrade" in ended.stderr, f"former: {ended.stderr}")
    ended = fleet.run("init", "--upgrade")
    expect(ended.returncode == 0 and "new column media_errors of part_drives" in ended.stdout and
           "new table class_pdlist" in ended.stdout, f"upgrade: {ended.stdout}{ended.stderr}")
    fleet.run("reparse", "--all")
    fleet.work()
    expect(not differences(before, digest(fleet)), "after an upgrade all is made again")
    expect(fleet.value("select count(distinct parser) from fleet.result") == "1", "all anew")


def pick(cells):
    """Statements after which packs of class_pdlist have these cells of what they had."""
    return ("update fleet.packed_class_pdlist set rows = (select string_agg(array_to_string("
            f"{cells.format('c')}, E'\\t', '\\N'), E'\\n' order by n)"
            " from string_to_table(rows, E'\\n') with ordinality l(line, n),"
            " lateral string_to_array(line, E'\\t', '\\N') c);"
            f"update fleet.row_table set columns = {cells.format('columns')} where name = 'class_pdlist'")


def test_packs(server):
    """A log that grows, and packs of a build that had other columns."""
    fleet = Fleet(server)
    sample = ROOT / "samples" / "two-socket-server"
    fleet.run("submit", sample, "--server", "one")
    fleet.work()
    packs = lambda: fleet.value("select string_agg(_row::text, ' ' order by _row)"
                                " from fleet.packed_class_fwtermlog")
    count = int(fleet.value("select count(*) from fleet.class_fwtermlog"))
    expect(packs() == "1", f"one pack: {packs()}")
    later = pathlib.Path(server.folder) / "grown"
    shutil.copytree(sample, later)
    told = later / "submission.json"
    log = later / "storcli" / "c0_show_termlog.txt"
    # The rows of the last one make the packs of as many rows that all are packed anew.
    for night, lines, expected in ((19, 1, f"1 {count + 1}"), (20, 1, f"1 {count + 1} {count + 2}"),
                                   (21, 256, "1")):
        told.write_text(re.sub(r"2026-11-\d\d", f"2026-11-{night}", told.read_text()))
        log.write_bytes(log.read_bytes() + b"".join(b"T1: more %d-%d\r\n" % (night, line)
                                                    for line in range(lines)))
        fleet.run("submit", later, "--server", "one")
        fleet.work()
        expect(packs() == expected, f"packs of night {night}: {packs()}")
        compare_with_pqhost(fleet, {"one": later})
    before = digest(fleet)
    names = [row[0] for row in fleet.sql("select attname from pg_attribute where attrelid ="
                                         " 'fleet.class_pdlist'::regclass order by attnum")]
    question = f"""select {', '.join(f'"{name}"' for name in names if name != names[4])}
                   from fleet.class_pdlist order by _row"""
    rows = fleet.sql(question)
    fleet.sql(pick("array[{0}[2], {0}[1]] || {0}[4:]"))
    ended = fleet.run("init", "--upgrade")
    expect(ended.stdout.startswith(f"new column {names[4]} of class_pdlist\n"),
           f"{ended.stdout}{ended.stderr}")
    expect(rows and fleet.sql(question) == rows, "each cell is of its column")
    expect(fleet.value(f'select count("{names[4]}") from fleet.class_pdlist') == "0", "one is new")
    fleet.sql("update fleet.server_state set rows = ''")
    fleet.sql("; ".join(f"delete from fleet.{table}" for table in fleet.stored))
    fleet.run("reparse", "--current")
    fleet.work()
    expect(not differences(before, digest(fleet)), "parsed again, it has its cells")


def read_less(server, name, errors):
    """The recording of NODE31 whose drive has so many errors instead of 37."""
    other = pathlib.Path(server.folder) / name
    if other.exists():
        return other
    shutil.copytree(ROOT / "samples" / "two-socket-server", other)
    text = other / "storcli" / "c0_eall_sall_show_all.txt"
    content = text.read_bytes()
    expect(content.count(b"Media Error Count = 37") == 1, "one drive has errors")
    text.write_bytes(content.replace(b"Media Error Count = 37", b"Media Error Count = %d" % errors))
    return other


def other_build(server, name, readers=()):
    """A program that is this one but for the digests of its readers: of all, and of those named."""
    source = (BIN.parent / "fleet" / "parser_sources.cpp").read_text()
    digests = dict(re.findall(r'\{"(\w+)", "([0-9a-f]{64})"\}', source))
    changed = [re.search(r'kParserSources = "([0-9a-f]{64})"', source)[1]]
    changed += [digests[reader] for reader in readers]
    program = pathlib.Path(PQFLEET).read_bytes()
    for digest in changed:
        expect(program.count(digest.encode()) == 1, f"{name}: the digest is in the program once")
        program = program.replace(digest.encode(), hashlib.sha256(
            (name + digest).encode()).hexdigest().encode())
    path = pathlib.Path(server.folder) / f"pqfleet-{name}"
    path.write_bytes(program)
    path.chmod(0o755)
    return str(path)


def test_builds(server):
    """Two versions at once, there and back."""
    fleet = Fleet(server)
    fleet.submit(*SAMPLES)
    fleet.work()
    before = digest(fleet)
    # Another version of the same readers, and one of others.
    same = other_build(server, "same")
    other = other_build(server, "other", ("raid", "answers"))
    expect(fleet.run("reparse").stdout == "0 recordings ready\n", "all is by these readers")
    fleet.run("init", "--upgrade", program=same)
    expect(fleet.run("reparse", program=same).stdout == "0 recordings ready\n", "the same readers")
    ended = fleet.run("init", "--upgrade", program=other)
    expect(ended.returncode == 0 and "of which others: answers, raid" in ended.stdout,
           f"what changed is told: {ended.stdout}{ended.stderr}")
    fleet.run("submit", "--site", "later", *make_random(server, 100, 1, 7000))  # The door is of any version.
    # The former program's workers write nothing any more, nor does a submission make them.
    ended = fleet.run("work", "--once")
    expect(ended.returncode == 2 and "other readers" in ended.stderr, f"former: {ended.stderr}")
    ended = fleet.run("work", "--once", program=other)
    expect("100 done" in ended.stderr, f"what is new: {ended.stderr}")
    told = json.loads(fleet.run("status", "--format", "json").stdout)
    expect([one["count"] for one in told["parsedBy"]] == [100, len(SAMPLES)] and
           told["readers"] == told["parsedBy"][0]["readers"], f"versions at work: {told}")
    ended = fleet.run("reparse", program=other)
    expect(ended.stdout == f"{len(SAMPLES)} recordings ready\n", f"the rest: {ended.stdout}")
    # An upgrade while a worker of the former build is in the midst of a batch.
    fleet.run("reparse", "--all")
    worker = fleet.start("work", "--once", program=other)
    await_true(lambda: fleet.value("select count(*) from fleet.job where state = 1") != "0")
    worker.send_signal(signal.SIGSTOP)
    ended = fleet.run("init", "--upgrade")
    expect(ended.returncode == 0 and "of which others: answers, raid" in ended.stdout,
           f"back: {ended.stdout}{ended.stderr}")
    fleet.work()
    fleet.run("reparse")
    fleet.work()
    worker.send_signal(signal.SIGCONT)
    errors = worker.communicate(timeout=60)[1]
    expect(worker.returncode == 2 and "other readers" in errors, f"it ends: {errors}")
    expect(fleet.value("select count(distinct parser) from fleet.result") == "1" and
           fleet.run("reparse").stdout == "0 recordings ready\n", "the newer ones' facts stay")
    fleet.run("forget", "--whole-site", "later")
    expect(not differences(before, digest(fleet)), f"as it was: {differences(before, digest(fleet))}")


def test_versions(server):
    """Tables of the first version, and of one to come."""
    fleet = Fleet(server)
    fleet.run("submit", read_less(server, "earlier", 4), "--server", "NODE31")
    fleet.run("submit", ROOT / "samples" / "two-socket-server", "--server", "NODE31")
    fleet.sql("update fleet.submission set taken = now() - interval '20 days', note = null where object ="
              " (select min(id) from fleet.object)")
    fleet.work()
    before = digest(fleet)
    grown = fleet.query("select drive, media_errors, media_errors_before from growing_drives").stdout
    expect(grown.count("\n") == 2 and grown.endswith(",37,4\n"), f"the drive grew: {grown}")
    # Their rows stood singly, and were no views.
    for table in fleet.packed:
        fleet.sql(f"create table fleet.single as select * from fleet.{table};"
                  f"drop table fleet.packed_{table} cascade; alter table fleet.single rename to {table}")
    fleet.sql("drop table fleet.drive_growth cascade; drop table fleet.schema_version;"
              "alter table fleet.parser drop column readers;"
              "alter table fleet.row_table drop column columns; drop function fleet.read_escaped")
    for words in (["work", "--once"], ["query", "select 1"], ["status"], ["submit", SAMPLES[0]]):
        ended = fleet.run(*words)
        expect(ended.returncode == 2 and "of version 1" in ended.stderr and
               "init --upgrade" in ended.stderr, f"{words[0]} on the first: {ended.stderr}")
    ended = fleet.run("reparse", "--shadow")
    expect(ended.returncode == 0, f"a look before the upgrade: {ended.stdout}{ended.stderr}")
    # A step that fails leaves all as it was.
    fleet.sql("create table fleet.drive_growth ()")
    ended = fleet.run("init", "--upgrade")
    expect(ended.returncode == 1 and "already exists" in ended.stderr and fleet.value(
        "select to_regclass('fleet.schema_version')") is None and fleet.value(
            "select count(*) from fleet.verdict_now") == "1", f"whole or not: {ended.stderr}")
    fleet.sql("drop table fleet.drive_growth")
    ended = fleet.run("init", "--upgrade")
    expect(ended.returncode == 0 and "version 1 brought to 3" in ended.stdout,
           f"the step: {ended.stdout}{ended.stderr}")
    expect(not differences(before, digest(fleet)), "the step makes what the worker makes")
    expect(fleet.run("init", "--upgrade").returncode == 0, "once more is no step")
    fleet.sql("update fleet.schema_version set version = 99")
    for words in (["work", "--once"], ["query", "select 1"], ["status"], ["init", "--upgrade"],
                  ["submit", SAMPLES[0]], ["reparse", "--shadow"], ["rebuild"]):
        ended = fleet.run(*words)
        expect(ended.returncode == 2 and "of version 99" in ended.stderr and
               "or a newer one" in ended.stderr, f"{words[0]} on a newer one: {ended.stderr}")


def test_shadow(server):
    """Rows of readers that read 4 where these read 37, and know no firmware."""
    fleet = Fleet(server)
    sample = ROOT / "samples" / "two-socket-server"
    other = read_less(server, "other", 4)
    fleet.run("submit", other, "--server", "one")
    fleet.run("submit", sample, "--server", "two")
    fleet.work()
    expect(fleet.run("reparse", "--shadow").stdout == "2 servers looked at\n", "nothing would change")
    for table in ("submission", "server_state"):
        fleet.sql(f"update fleet.{table} set object = (select s.object from fleet.submission s join"
                  f" fleet.server v on v.id = s.server where v.name = 'two') where server ="
                  f" (select id from fleet.server where name = 'one')")
    # Nor is the database made for this program.
    fleet.sql("update fleet.parser set version = '0.0.9+former'")
    before = digest(fleet)
    ended = fleet.run("reparse", "--shadow")
    lines = ended.stdout.splitlines()
    expect(ended.returncode == 1 and lines[-1] == "2 servers looked at", f"{ended.stdout}{ended.stderr}")
    expect('part_drives: 1 change of 1 server' in lines and any(
        line.startswith("  one row ") and line.endswith('media_errors "4" -> "37"')
        for line in lines), f"the drive is told: {lines}")
    expect(not any(line.startswith("  two ") for line in lines), "the other server has no change")
    expect(before == digest(fleet), "nothing is written")
    told = sum(int(line.split()[1]) for line in lines if not line.startswith(" ") and ": " in line
               and not line.startswith("verdict"))
    fleet.run("init", "--upgrade")
    fleet.run("reparse", "--server", "one")
    fleet.sql("update fleet.result set parser = (select id from fleet.parser where state = 'current')")
    fleet.sql("update fleet.server_state set parser = (select id from fleet.parser where state ="
              " 'current')")
    written = fleet.work()
    expect(written == 2 * told and told > 0, f"{told} rows are told, {written} removed and added")
    expect(fleet.run("reparse", "--shadow").stdout == "2 servers looked at\n", "then nothing is left")
    # A column that is not there yet, a verdict, and a recording that is lost.
    fleet.sql("alter table fleet.part_drives drop column media_errors cascade")
    fleet.sql("update fleet.server_state set rows = '' where server = (select id from fleet.server"
              " where name = 'one')")
    fleet.sql("update fleet.result set verdict = 'ok'")
    lines = fleet.run("reparse", "--shadow", "--server", "one").stdout.splitlines()
    expect(any('media_errors nothing -> "' in line for line in lines) and
           "verdict: 1 change of 1 server" in lines and "  one: ok -> warning" in lines and
           lines[-1] == "1 server looked at", f"{lines[:5]}")
    expect(max(sum(1 for _ in group) for _, group in itertools.groupby(
        lines, lambda line: line.startswith(" "))) <= 10, "ten examples of each")
    for path in fleet.store.rglob("*.zip"):
        path.unlink()
    lines = fleet.run("reparse", "--shadow").stdout.splitlines()
    expect(lines[0] == "parked: 2 changes of 2 servers" and "not in the store" in lines[1], f"{lines}")
    expect(fleet.run("reparse", "--shadow", "--all").returncode == 2, "--shadow --all")


TESTS = {name.removeprefix("test_"): function for name, function in list(globals().items())
         if name.startswith("test_")}

if __name__ == "__main__":
    with PrivatePostgres() as postgres:
        for test in sys.argv[2:] or TESTS:
            start, used = time.monotonic(), sum(os.times()[:4])
            try:
                TESTS[test](postgres)
            except Exception as error:  # What one test meets, the others do without.
                expect(False, f"{test}: {type(error).__name__} {error}")
            print(f"{test}: {time.monotonic() - start:.1f} s, {sum(os.times()[:4]) - used:.1f} s of processor"
                  f" without PostgreSQL's", flush=True)
    sys.exit(tally.end())
