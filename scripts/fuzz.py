"""Runs the fuzz targets, as scripts/fuzz.sh tells."""
import concurrent.futures
import datetime
import functools
import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import threading

ROOT = pathlib.Path.cwd()
WORK = ROOT / "build/fuzz"
RESULTS = ROOT / "fuzz/results.txt"
HEADER = """\
# What scripts/fuzz.sh has tried of each target: processor time, inputs, edges that its seeds and grown
# inputs reach, inputs that broke it, day. Without its line a target begins anew.
"""
PIECE = 1200  # seconds by the clock, after which what has been tried is kept
# By the clock, which goes on while other programs have the processor.
LIMITS = ["-timeout=300", "-rss_limit_mb=2560", "-report_slow_units=60", "-print_funcs=0"]
REPLAY = ["-seed=1", "-runs=1000", "-max_total_time=5", "-timeout=25", "-rss_limit_mb=2560"]
# Counting how often an edge is taken would keep many times as many inputs.
BY_EDGES = ["-use_counters=0"]
UNNAMED = re.compile(r"[0-9a-f]{40}")
TROUBLE = re.compile(r"ERROR|SUMMARY|runtime error|deadly signal|Test unit written")


def run(command, log):
    """Exit code, processor seconds, and what it printed, which the log gets, too."""
    with log.open("ab+") as out:
        begin = out.seek(0, os.SEEK_END)
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=out, stderr=out)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        out.seek(begin)
        printed = out.read().decode(errors="replace")
    return process.returncode, usage.ru_utime + usage.ru_stime, printed


def last_number(pattern, printed):
    return int((re.findall(pattern, printed) or [0])[-1])


def count_edges(printed):
    return last_number(r" cov: (\d+) ", printed)


def count_runs(printed):
    return last_number(r"stat::number_of_executed_units: *(\d+)", printed)


class Results:
    """The lines of fuzz/results.txt."""

    LINE = re.compile(r"(\w+): ([\d.]+) min, (\d+) inputs, (\d+) edges, (\d+) found, ([\d-]+)")

    def __init__(self):
        self.lock = threading.Lock()

    def read(self):
        text = RESULTS.read_text() if RESULTS.exists() else ""
        return {name: (float(minutes), int(runs), int(edges), int(found), day)
                for name, minutes, runs, edges, found, day in self.LINE.findall(text)}

    def minutes(self, target):
        return self.read().get(target, (0.0,))[0]

    def add(self, target, seconds, runs, edges, found):
        with self.lock:
            lines = self.read()
            old = lines.get(target, (0.0, 0, 0, 0, ""))
            lines[target] = (old[0] + seconds / 60, old[1] + runs, edges, old[3] + found,
                             datetime.date.today().isoformat())
            new = RESULTS.with_suffix(".new")
            new.write_text(HEADER + "".join(
                "{}: {:.2f} min, {} inputs, {} edges, {} found, {}\n".format(name, *lines[name])
                for name in sorted(lines)))
            new.replace(RESULTS)


RECORD = Results()


class Target:
    def __init__(self, name):
        self.name = name
        self.program = ROOT / "build/asan/bin" / name
        self.corpus = ROOT / "fuzz/corpus" / name
        self.found = WORK / "found" / name
        self.grown = WORK / "grown" / name
        self.log = WORK / f"{name}.log"
        for folder in (self.found, self.grown):
            folder.mkdir(parents=True, exist_ok=True)
        self.log.write_bytes(b"")

    def seeds(self):
        return sorted(self.corpus.iterdir())

    def count_found(self):
        return sum(not file.name.startswith("slow-unit") for file in self.found.iterdir())

    def say(self, text):
        print(f"{self.name:<24} {text}", flush=True)

    def fail(self, status, printed):
        lines = [line for line in printed.splitlines() if TROUBLE.search(line)]
        self.say(f"FAILED with {status}, see {self.log} and {self.found}; what it found:\n" + "\n".join(lines[-6:]))
        return False

    def fuzz(self, arguments):
        words = WORK / f"{self.name}.dict"
        with words.open("w") as out:
            subprocess.run([ROOT / "scripts/fuzz_dictionary.py", self.name], stdout=out, check=True)
        dictionary = [f"-dict={words}"] if words.stat().st_size else []
        return run([self.program, f"-artifact_prefix={self.found}/", "-print_final_stats=1",
                    *arguments, *dictionary], self.log)

    def run_seeds(self):
        # libFuzzer takes files for inputs, each by itself, and folders for corpora.
        return run([self.program, f"-artifact_prefix={self.found}/", *self.seeds()], self.log)

    def replay(self):
        status, _, printed = self.run_seeds()
        if status == 0:
            with tempfile.TemporaryDirectory() as grown:
                status, _, printed = self.fuzz([*REPLAY, grown, self.corpus])
        if status:
            return self.fail(status, printed)
        self.say(f"{len(self.seeds()):4} seeds {count_runs(printed):10} runs   nothing found")
        return True

    def look_for(self, minutes):
        while (left := 60 * (minutes - RECORD.minutes(self.name))) >= 1:
            seconds = math.ceil(min(left, PIECE))
            found = self.count_found()
            status, used, printed = self.fuzz([f"-max_total_time={seconds}", *LIMITS, self.grown, self.corpus])
            RECORD.add(self.name, used, count_runs(printed), count_edges(printed), self.count_found() - found)
            if status:
                return self.fail(status, printed)
        self.say("{:.1f} minutes, {} inputs, {} edges, {} found".format(*RECORD.read()[self.name]))
        return True

    def edges(self, *folders):
        status, _, printed = run([self.program, f"-artifact_prefix={self.found}/", "-runs=0", *folders], self.log)
        if status:
            raise SystemExit(f"{self.name}: an input breaks it, see {self.log}")
        return count_edges(printed)

    def minimise(self):
        before, reachable = self.edges(self.corpus), self.edges(self.corpus, self.grown)
        with tempfile.TemporaryDirectory() as folder:
            named, others = pathlib.Path(folder, "named"), pathlib.Path(folder, "others")
            for place in (named, others):
                place.mkdir()
            for seed in self.seeds():
                shutil.copy(seed, others if UNNAMED.fullmatch(seed.name) else named)
            status, _, printed = run([self.program, "-set_cover_merge=1", *BY_EDGES, named, others, self.grown], self.log)
            if status:
                return self.fail(status, printed)
            shutil.rmtree(self.corpus)
            shutil.copytree(named, self.corpus)
        sizes = [seed.stat().st_size for seed in self.seeds()]
        after = self.edges(self.corpus)
        self.say(f"edges {before:6} before {after:6} after {reachable:6} reachable, "
                 f"{len(sizes):4} seeds of {sum(sizes):7} bytes")
        return after > 0.99 * before  # a few depend on addresses, which differ from run to run

    def check_memory(self):
        status, _, printed = run(
            ["valgrind", "-q", "--error-exitcode=9", "--leak-check=full", "--errors-for-leak-kinds=definite",
             "--suppressions=tests/memcheck.supp", ROOT / "build/native/bin" / self.name, *self.seeds()], self.log)
        if status:
            self.say(f"FAILED, see {self.log}; it ends with\n" + "\n".join(printed.splitlines()[-20:]))
            return False
        self.say(f"{len(self.seeds()):4} seeds, nothing found")
        return True


def main():
    usage = "usage: scripts/fuzz.sh MINUTES|--replay|--minimise|--valgrind [TARGET]..."
    if len(sys.argv) < 2:
        raise SystemExit(usage)
    purpose, names = sys.argv[1], sys.argv[2:]
    actions = {"--replay": Target.replay, "--minimise": Target.minimise, "--valgrind": Target.check_memory}
    if re.fullmatch("[1-9][0-9]*", purpose):
        action = functools.partial(Target.look_for, minutes=int(purpose))
    elif purpose in actions:
        action = actions[purpose]
    else:
        raise SystemExit(usage)
    known = sorted(source.stem for source in (ROOT / "fuzz").glob("*_fuzz.cpp"))
    for name in names:
        if name not in known:
            raise SystemExit(f"{name}: there is no fuzz/{name}.cpp")
    names = names or known
    subprocess.run(["scripts/build.sh", "native" if purpose == "--valgrind" else "asan", *names], check=True)
    # A target keeps one core busy.
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        passed = list(pool.map(action, map(Target, names)))
    print(f"{passed.count(True)} passed, {passed.count(False)} failed")
    sys.exit(not all(passed))


if __name__ == "__main__":
    main()
