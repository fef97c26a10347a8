#!/usr/bin/env python3
"""Changes one place of the program at a time and looks whether a test notices.

    scripts/mutate.py [--count N] [--jobs N]   goes on with the mutants that are not tried yet
    scripts/mutate.py --again                  first tries the survivors once more, after new tests

The mutants are drawn from frame/, pqmodules/ and host/answers/ (their sources and the rules of health;
frame/windows/ does not run here, and what headers hold is compiled into everything) with a fixed seed,
as many of each kind: conditions, offsets, constants, order of calls. One is compiled by itself and linked
in front of the native build, which stays as it is; so are the sources with which its own is compiled
together there. Tests that have noticed other mutants come first. What is drawn and what became of it is
kept in tests/mutants/results.txt, one line each, where a survivor's reason is written by hand behind "--".
"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import threading

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/native"
WORK = ROOT / "build/mutants"
RESULTS = ROOT / "tests/mutants/results.txt"
RULES = "host/answers/health/rules.sql"
SEED = 1
SECONDS = 150  # of processor time, for whatever runs
# Seconds that a test takes which comes early, which comes last, and which does not come at all.
QUICK, SLOW, TOO_SLOW = 0.03, 0.25, 2.5

# Tests that only run other programs, which have no mutant in them, and some that wait for a time to pass.
NOT_HERE = ":".join(["*TakesTwice*", "*TakesAboutTwice*", "*Memory.*", "*Deadline*", "QueryGuard*",
                     "OverdueCollection*", "HealthTimeLimit*", "HostileDatabase*", "SeveralThreads*",
                     "SourceLines*", "LongRecording*", "TroubledSystem*", "RefusedAllocations*",
                     "RepeatedCollections*", "*EndedWhileWriting*"])
# Which rooms' tests look at a source, the nearest first.
ROOMS = {
    "frame": ["frame", "pqmodules", "catalogue", "collect", "answers", "formats"],
    "pqmodules": ["pqmodules", "catalogue", "answers", "collect", "formats", "check"],
    "host": ["answers", "formats", "pqhost", "redact"],
}

CONDITIONS = [
    (re.compile(r"(?<=\s)==(?=\s)"), "!="),
    (re.compile(r"(?<=\s)!=(?=\s)"), "=="),
    (re.compile(r"(?<=\s)<(?=\s)"), "<="),
    (re.compile(r"(?<=\s)<=(?=\s)"), "<"),
    (re.compile(r"(?<=\s)>(?=\s)"), ">="),
    (re.compile(r"(?<=\s)>=(?=\s)"), ">"),
    (re.compile(r"(?<=\s)&&(?=\s)"), "||"),
    (re.compile(r"(?<=\s)\|\|(?=\s)"), "&&"),
    (re.compile(r"!(?=[A-Za-z_(*])"), ""),
    (re.compile(r"\bif \((?=[^;]*\) )"), "if (!"),
    (re.compile(r"\btrue\b"), "false"),
    (re.compile(r"\bfalse\b"), "true"),
]
OFFSETS = [
    (re.compile(r"(?<=\s)\+(?=\s)"), "-"),
    (re.compile(r"(?<=\s)-(?=\s)"), "+"),
    (re.compile(r"\+\+(?=[A-Za-z_])"), "--"),
    (re.compile(r"(?<=\s)\+=(?=\s)"), "-="),
    (re.compile(r"(?<=\s)-=(?=\s)"), "+="),
]
NUMBER = re.compile(r"(?<![\w.'])\d+(?![\w.'])")
SQL_CONDITIONS = [
    (re.compile(r"(?<=\s)=(?=\s)"), "<>"),
    (re.compile(r"(?<=\s)<>(?=\s)"), "="),
    (re.compile(r"(?<=\s)<(?=\s)"), "<="),
    (re.compile(r"(?<=\s)>(?=\s)"), ">="),
    (re.compile(r"(?<=\s)<=(?=\s)"), "<"),
    (re.compile(r"(?<=\s)>=(?=\s)"), ">"),
    (re.compile(r"\bAND\b"), "OR"),
    (re.compile(r"\bOR\b"), "AND"),
    (re.compile(r"\bIS NULL\b"), "IS NOT NULL"),
    (re.compile(r"\bIS NOT NULL\b"), "IS NULL"),
    (re.compile(r"\bNOT (?=EXISTS|IN)"), ""),
]
CODE = re.compile(r'//[^\n]*|/\*.*?\*/|^[ \t]*#[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'',
                  re.DOTALL | re.MULTILINE)
SQL = re.compile(r"--[^\n]*|'(?:''|[^'])*'")
INCLUDE = re.compile(r'^#include "(.*\.cpp)"$', re.MULTILINE)
CALL = re.compile(r"^(\s+)(?!return\b|throw\b|using\b|static_assert\b)[\w:.\->\[\]*]+\([^;]*\);$")


class Mutant:
    def __init__(self, file, text, start, end, after):
        self.file, self.text, self.start, self.end, self.after = file, text, start, end, after

    def line(self):
        return self.text.count("\n", 0, self.start) + 1

    def show(self):
        """What it is, in one line that still fits when lines above it have changed."""
        begin = self.text.rfind("\n", 0, self.start) + 1
        stop = self.text.find("\n", max(self.end - 1, begin))
        old, new = self.text[begin:stop], self.text[begin:self.start] + self.after + self.text[self.end:stop]
        same = self.text.count(old, 0, begin)
        return "{}{}: {}  =>  {}".format(self.file, f"~{same}" if same else "", *(
            " ; ".join(part.strip() for part in lines.split("\n")) for lines in (old, new)))

    def source(self):
        return self.text[:self.start] + self.after + self.text[self.end:]


def collect_mutants():
    """By kind."""
    kinds = {"conditions": [], "offsets": [], "numbers": [], "texts": [], "order": []}
    files = [f for folder in ("frame", "pqmodules", "host/answers")
             for f in sorted((ROOT / folder).rglob("*.cpp")) if "windows" not in f.parts]
    for path in files + [ROOT / RULES]:
        file, text = str(path.relative_to(ROOT)), path.read_text()
        sql = path.suffix == ".sql"
        code = list(text)
        for found in (SQL if sql else CODE).finditer(text):
            whole = found.group()
            code[found.start():found.end()] = re.sub(r"[^\n]", "\0", whole)
            if whole[0] == '"' and len(whole) > 2 and text[found.start() - 1] not in "RL)":
                kinds["texts"].append(Mutant(file, text, found.start(), found.end(), whole[:-1] + '~"'))
            elif whole[0] == "'" and not sql:
                kinds["numbers"].append(Mutant(file, text, found.start(), found.end(),
                                               "'~'" if whole != "'~'" else "'^'"))
            elif whole[0] == "'" and len(whole) > 2:
                kinds["texts"].append(Mutant(file, text, found.start(), found.end(), whole[:-1] + "~'"))
        code = "".join(code)
        for kind, table in (("conditions", SQL_CONDITIONS if sql else CONDITIONS),
                            ("offsets", OFFSETS)):
            for pattern, after in table:
                for found in pattern.finditer(code):
                    start, end, new = found.start(), found.end(), after
                    if new == "if (!":
                        close = end
                        depth = 1
                        while depth:
                            depth += {"(": 1, ")": -1}.get(code[close], 0)
                            close += 1
                        if ";" in code[end:close]:
                            continue
                        new, end = f"if (!({text[end:close - 1]}))", close
                    kinds[kind].append(Mutant(file, text, start, end, new))
        for found in NUMBER.finditer(code):
            kinds["numbers"].append(Mutant(file, text, found.start(), found.end(),
                                           str(int(found.group()) + 1)))
        if sql:
            continue
        lines, offset = text.split("\n"), 0
        for first, second in zip(lines, lines[1:]):
            one, two = CALL.match(first), CALL.match(second)
            if one and two and one.group(1) == two.group(1) and first != second:
                kinds["order"].append(Mutant(file, text, offset, offset + len(first) + 1 + len(second),
                                             second + "\n" + first))
            offset += len(first) + 1
    return kinds


def draw_mutants():
    """All of them in the order in which they are tried: kinds take turns, constants half numbers."""
    kinds = collect_mutants()
    dice = random.Random(SEED)
    for mutants in kinds.values():
        dice.shuffle(mutants)
    turn = ["conditions", "offsets", "numbers", "order", "conditions", "offsets", "texts", "order"]
    while any(kinds.values()):
        for kind in turn:
            if kinds[kind]:
                yield kind, kinds[kind].pop()


commands = {}  # of the compiler, by source; of the linker, by program
compiled_with = {}  # by source: those with which it is compiled together, itself among them
tests_of = {}  # by room: seconds that each takes


def read_commands():
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        commands[entry["file"]] = entry["command"]
        if "/Unity/" in entry["file"]:
            together = INCLUDE.findall(pathlib.Path(entry["file"]).read_text())
            for source in together:
                commands[source] = entry["command"]
                compiled_with[source] = together
    for room in {room for rooms in ROOMS.values() for room in rooms}:
        listed = subprocess.run(["ninja", "-t", "commands", f"bin/pq_tests_{room}"], cwd=BUILD,
                                capture_output=True, text=True, check=True).stdout
        link = listed.strip().split("\n")[-1]
        commands[room] = link.removeprefix(": && ").removesuffix(" && :")


def limit_resources(seconds):
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 5))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    os.nice(10)  # whoever works here goes first


def run(arguments, folder, seconds=SECONDS, **more):
    return subprocess.run(arguments, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", preexec_fn=lambda: limit_resources(seconds), **more)


def compile_source(source, original, result, flags="-O0", launcher=()):
    """Whether it could be, as the original is but for optimisation."""
    words = shlex.split(commands[str(original)])
    words[words.index("-o") + 1] = str(result)
    words[-1] = str(source)
    drop = {"-O2", "-Werror", "-DNDEBUG", "-D_FORTIFY_SOURCE=3"}
    words = [*launcher, *(word for word in words if word not in drop), "-w", flags]
    return run(words, BUILD).returncode == 0


def compile_mutant(mutant, folder, flags="-O0"):
    """The object, or None for what does not compile."""
    source, original = folder / pathlib.Path(mutant.file).name, ROOT / mutant.file
    source.write_text(mutant.source())
    if mutant.file == RULES:
        original, rules = BUILD / "host/built_in_rules.cpp", source
        source = folder / "built_in_rules.cpp"
        run(["cmake", f"-DOUTPUT={source}", "-DHEADER=host/answers/health/built_in_rules.h",
             f"-DFILES=kBuiltInRules={rules}", "-P", ROOT / "cmake/EmbedText.cmake"], folder)
    result = folder / "mutant.o"
    return result if compile_source(source, original, result, flags) else None


def compile_neighbours(mutant, folder):
    """The objects of what is compiled together with the mutant's source, which must not be called there."""
    original = str(ROOT / mutant.file)
    built = []
    for source in compiled_with.get(original, []):
        if source != original:
            built.append(folder / f"{pathlib.Path(source).stem}.neighbour.o")
            if not compile_source(source, source, built[-1], launcher=["ccache"]):
                sys.exit(f"{source} cannot be compiled by itself")
    return built


def is_equal_when_optimised(mutant, folder):
    """The compiler itself finds no difference."""
    texts = []
    for source in (mutant, Mutant(mutant.file, mutant.text, mutant.start, mutant.end,
                                  mutant.text[mutant.start:mutant.end])):
        built = compile_mutant(source, folder, "-O2")
        run(["strip", "-g", built], folder)
        texts.append(built.read_bytes())
    return texts[0] == texts[1]


def link_room(room, built, folder):
    """A room's tests with these objects in front of what they are made of."""
    # Programs that tests start are beside them.
    program = BUILD / "bin" / f"mutant_{folder.name}_{room}"
    words = shlex.split(commands[room].replace("\\$", "$"))
    words[words.index("-o") + 1] = str(program)
    # What is linked first is what is called.
    words[1:1] = ["-fuse-ld=lld", "-Wl,--strip-debug", *map(str, built)]
    linked = run(words, BUILD)
    if linked.returncode != 0:
        sys.exit(linked.stdout)
    return program


def run_tests(program, which, folder, *more, seconds=SECONDS):
    """How these tests end; None when they pass."""
    temporary = folder / "tmp"
    shutil.rmtree(temporary, ignore_errors=True)
    temporary.mkdir(parents=True)
    try:
        tested = run([program, f"--gtest_filter={which}", "--gtest_fail_fast", *more],
                     ROOT, seconds, timeout=8 * SECONDS, env=os.environ | {"TMPDIR": str(temporary)})
    except subprocess.TimeoutExpired:
        return "takes too long"
    finally:
        shutil.rmtree(temporary, ignore_errors=True)
    if tested.returncode == 0:
        return None
    if failed := re.search(r"\[  FAILED  \] ([\w/.]+)", tested.stdout):
        return failed.group(1)
    begun = re.findall(r"\[ RUN      \] ([\w/.]+)", tested.stdout)
    return f"{begun[-1]} ends with {tested.returncode}" if begun else f"ends with {tested.returncode}"


def measure_room(room):
    """Keeps how long its tests take, if they pass without any mutant."""
    folder = WORK / room
    times = folder / "times.json"
    if not times.exists() or times.stat().st_mtime < (BUILD / f"bin/pq_tests_{room}").stat().st_mtime:
        times.unlink(missing_ok=True)
        folder.mkdir(parents=True, exist_ok=True)
        program = link_room(room, [], folder)
        how = run_tests(program, "-" + NOT_HERE, folder, f"--gtest_output=json:{times}")
        program.unlink()
        if how:
            times.unlink(missing_ok=True)
            sys.exit(f"The tests of {room} fail without any mutant: {how}")
    tests_of[room] = {f"{suite['name']}.{test['name']}": float(test["time"].rstrip("s"))
                      for suite in json.loads(times.read_text())["testsuites"] for test in suite["testsuite"]
                      if test["result"] == "COMPLETED"}


def order_tests(mutant, results):
    """Rooms and some of their tests, in the order in which they are run; of all but the nearest room only
    quick ones and those that have noticed mutants."""
    part = mutant.file.split("/")[0]
    near, far = set(), set()
    for shown, (outcome, _, _) in results.items():
        if outcome.startswith("killed") and shown.startswith(part):
            test = outcome.removeprefix("killed, ").split(" ends with")[0]
            (near if shown.startswith(mutant.file) else far).add(test)

    def rank(test, seconds):
        if test in near and seconds < 4 * SLOW:
            return 0
        if seconds >= SLOW:
            return 4 if seconds < TOO_SLOW else None
        return 1 if seconds < QUICK else 2 if test in far else 3

    for stage in range(5):
        for room in ROOMS[part][:1] if stage >= 3 else ROOMS[part]:
            which = [test for test, seconds in tests_of[room].items()
                     if rank(f"{room}: {test}", seconds) == stage]
            if which:
                yield room, which


def try_mutant(kind, mutant, folder, results):
    """What became of it, and through which test."""
    built = compile_mutant(mutant, folder)
    if built is None:
        return "does not compile"
    objects = [built, *compile_neighbours(mutant, folder)]
    programs = {}
    try:
        for room, which in order_tests(mutant, results):
            if room not in programs:
                programs[room] = link_room(room, objects, folder)
            # One that never ends shall not be waited for long.
            seconds = 10 + int(3 * sum(tests_of[room][test] for test in which))
            how = run_tests(programs[room], ":".join(which), folder, seconds=seconds)
            if how:
                return f"killed, {room}: {how}"
    finally:
        for program in programs.values():
            program.unlink()
    # Of two calls the compiler does not know that their order is of no matter.
    return "equal" if kind != "order" and is_equal_when_optimised(mutant, folder) else "survived"


def read_results():
    """By what the mutant is: outcome, and a survivor's reason."""
    results = {}
    if RESULTS.exists():
        for line in RESULTS.read_text().splitlines():
            if line and not line.startswith("#"):
                outcome, _, rest = line.partition(" | ")
                kind, _, shown = rest.partition(" | ")
                shown, _, reason = shown.partition(" -- ")
                results[shown] = [outcome, kind, reason]
    return results


def write_results(results):
    count = {}
    for outcome, _, _ in results.values():
        word = outcome.split(",")[0]
        count[word] = count.get(word, 0) + 1
    tried = [r for r in results.values() if not r[0].startswith(("equal", "does not"))]
    killed = count.get("killed", 0)
    lines = ["# What became of mutants: scripts/mutate.py draws and tries them.",
             f"# {len(tried)} tried, {killed} killed, {count.get('survived', 0)} survived"
             f"; besides, {count.get('equal', 0)} that the compiler finds equal"
             f" and {count.get('does not compile', 0)} that do not compile"]
    for shown, (outcome, kind, reason) in results.items():
        lines.append(f"{outcome} | {kind} | {shown}" + (f" -- {reason}" if reason else ""))
    part = RESULTS.with_suffix(".part")
    part.write_text("\n".join(lines) + "\n")
    part.replace(RESULTS)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--again", action="store_true")
    parser.add_argument("--list", action="store_true", help="shows what would be tried")
    options = parser.parse_args()
    results = read_results()
    drawn = list(draw_mutants())
    if options.list:
        for kind, mutant in drawn[:options.count]:
            print(kind, "|", mutant.show())
        print(len(drawn))
        return
    subprocess.run([ROOT / "scripts/build.sh", "native", "all", "pq_tests_by_room"], check=True)
    read_commands()
    RESULTS.parent.mkdir(exist_ok=True)
    for room in sorted({room for rooms in ROOMS.values() for room in rooms}):
        measure_room(room)
    lock, mutants = threading.Lock(), iter(drawn)
    valid = {mutant.show() for _, mutant in drawn}
    for gone in [shown for shown in results if shown not in valid]:
        del results[gone]  # its source has changed

    def counts():
        return sum(1 for r in results.values() if r[0].startswith(("killed", "survived", "running")))

    def work(number):
        folder = WORK / str(number)
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        while True:
            with lock:
                for kind, mutant in mutants:
                    shown = mutant.show()
                    before = results.get(shown)
                    if before is None or (options.again and before[0] == "survived"):
                        break
                else:
                    return
                if before is None:
                    if counts() >= options.count:
                        return
                    results[shown] = ["running", kind, ""]
            outcome = try_mutant(kind, mutant, folder, dict(results))
            with lock:
                results[shown][0] = outcome
                print(outcome, "|", kind, "|", shown, flush=True)
                write_results({s: r for s, r in results.items() if r[0] != "running"})

    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for done in [pool.submit(work, number) for number in range(options.jobs)]:
            done.result()
    print(RESULTS.read_text().splitlines()[1][2:])


if __name__ == "__main__":
    main()
