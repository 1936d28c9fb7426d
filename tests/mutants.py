#!/usr/bin/env python3
"""Plants the faults of mutants.tsv one by one and asks whether the fast tests notice.

The faults go into a copy of the source tree below build/mutants, which is built incrementally. The fast tests are the
unit tests and the scripts of tests/cli. The tests of a fault's own room are asked first; the others are built only for
faults that these do not notice. A test that crashes, or runs far longer
than without the fault, has noticed it. Ends with 1 when a fault goes unnoticed that has no explanation in the list.
"""
import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
WORK = ROOT / "build/mutants"
TREE = WORK / "tree"
BUILD = WORK / "build"
MEMORY = 8 << 30  # bytes of address space for a test: a fault must not take the machine down

Mutant = collections.namedtuple("Mutant", "line file original replacement effect explanation")


def die(sentence):
    sys.exit(f"mutants: {sentence}")


# --- the list and the copy --------------------------------------------------------------------------------------------

def read_list(path, pattern):
    """The faults whose file or effect matches. Each must change its file in exactly one place."""
    mutants, errors = [], []
    for number, row in enumerate(path.read_text().splitlines(), 1):
        if not row or row.startswith("#"):
            continue
        columns = row.split("\t")
        if len(columns) not in (4, 5):
            errors.append(f"{path.name}:{number}: {len(columns)} columns, not 4 or 5")
            continue
        mutant = Mutant(number, *columns, *[""] * (5 - len(columns)))
        file = ROOT / mutant.file
        found = file.read_text().count(mutant.original) if mutant.original and file.is_file() else 0
        if found != 1:
            errors.append(f"{path.name}:{number}: stands {found} times in {mutant.file}: {mutant.original}")
        elif mutant.original == mutant.replacement:
            errors.append(f"{path.name}:{number}: changes nothing")
        mutants.append(mutant)
    if errors:
        die("\n".join(errors))
    return [mutant for mutant in mutants if re.search(pattern, f"{mutant.file} {mutant.effect}")]


def copy_tree():
    """Brings the copy up to date. What did not change keeps its time, so that it is not built again."""
    wanted = set()
    for top in sorted(ROOT.iterdir()):
        if top.name == "build" or top.name.startswith("."):
            continue
        for source in [top, *sorted(top.rglob("*"))]:
            if "__pycache__" in source.parts:
                continue
            target = TREE / source.relative_to(ROOT)
            wanted.add(target)
            if source.is_dir():
                target.mkdir(parents=True, exist_ok=True)
            elif not target.exists() or target.read_bytes() != source.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)
    for target in sorted(TREE.rglob("*"), reverse=True):
        if target not in wanted:
            target.rmdir() if target.is_dir() else target.unlink()


# --- building and testing ---------------------------------------------------------------------------------------------

def build(jobs, targets):
    """Returns what the compiler said when it failed, else nothing."""
    command = ["cmake", "--build", BUILD, f"-j{jobs}", "--target", *targets]
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    return done.stdout if done.returncode else ""


def configure():
    done = subprocess.run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                           "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DVARNPDF_BUILD_EXAMPLES=OFF"],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode:
        die(f"cmake could not configure the copy:\n{done.stdout}")


def room_of(mutant):
    """Whose tests are asked first: "src/signing/Locks.cpp" -> "signing"."""
    parts = pathlib.Path(mutant.file).parts
    return "cli" if parts[0] == "cli" else parts[1]


def target_of(room):
    return {"cli": "varnpdf_cli", "support": "test_support_room"}.get(room, f"test_{room}")


def fast_tests():
    """Room -> its commands. Rooms are named after directories of tests, and have tests."""
    rooms = {}
    for directory in sorted((TREE / "tests").iterdir()):
        if directory.name not in ("architecture", "corpus", "cli", "docs") and any(directory.glob("*Test.cpp")):
            rooms[directory.name] = [[str(BUILD / "tests" / target_of(directory.name)), "--gtest_fail_fast"]]
    rooms["cli"] = [[str(script)] for script in sorted((TREE / "tests/cli").glob("*.sh"))
                    if not script.name.startswith("lib")]
    return rooms


def limit():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def failing(command, seconds):
    """The name of what failed, nothing when all passed."""
    environment = {name: value for name, value in os.environ.items() if name != "VARNPDF_CORPUS"}
    environment |= {"VARNPDF": str(BUILD / "cli/varnpdf"), "VARNPDF_SOURCE_DIR": str(TREE)}
    process = subprocess.Popen(command, cwd=BUILD / "tests", env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, preexec_fn=limit,
                               start_new_session=True)
    late = False
    try:
        output, _ = process.communicate(timeout=seconds)
    except subprocess.TimeoutExpired:
        late = True
        os.killpg(process.pid, 9)
        output, _ = process.communicate()
    if not late and process.returncode in (0, 77):
        return ""
    text = output.decode(errors="replace")
    name = "cli." + pathlib.Path(command[0]).stem
    for pattern in (r"^\[  FAILED  \] (\S+?),? ", r"^\[ RUN      \] (\S+)"):  # a crash leaves the test that began last
        if found := re.findall(pattern, text, re.MULTILINE):
            name = found[-1]
            break
    why = f"after {seconds:.0f} s" if late else f"ended with {process.returncode}" if process.returncode != 1 else ""
    return f"{name} {why}".strip()


class Tests:
    """The fast tests; how long each may take is learnt from a run without faults."""

    def __init__(self, jobs):
        self.jobs = jobs
        self.rooms = fast_tests()
        self.seconds = {}

    def learn(self, rooms):
        """Builds the rooms' tests and runs those that were not run yet."""
        def measure(command):
            begin = time.monotonic()
            failed = failing(command, 600)
            return command[0], time.monotonic() - begin, failed

        if said := build(self.jobs, [target_of(room) for room in rooms]):
            die(f"does not build without a fault:\n{said}")
        todo = [command for room in rooms for command in self.rooms[room] if command[0] not in self.seconds]
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            for name, seconds, failed in pool.map(measure, todo):
                if failed:
                    die(f"fails without a fault: {failed} ({name})")
                self.seconds[name] = max(20, 5 * seconds)

    def notice(self, mutant, rooms):
        """Plants the fault and gives the first test of these rooms that fails; nothing when none does."""
        file = TREE / mutant.file
        original = file.read_text()
        file.write_text(original.replace(mutant.original, mutant.replacement))
        try:
            if said := build(self.jobs, [target_of(room) for room in rooms]):
                die(f"line {mutant.line} of the list does not compile with its fault:\n{said}")
            return self.first_failing([command for room in rooms for command in self.rooms[room]])
        finally:
            file.write_text(original)

    def first_failing(self, commands):
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            for failed in pool.map(lambda command: failing(command, self.seconds[command[0]]), commands):
                if failed:
                    pool.shutdown(wait=True, cancel_futures=True)
                    return failed
        return ""


def main():
    parser = argparse.ArgumentParser(prog="run mutants", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("pattern", nargs="?", default="", help="only faults whose file or effect matches (a regex)")
    parser.add_argument("--list", action="store_true", help="checks and prints the list, and plants nothing")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count(), help="compilers and tests at the same time")
    arguments = parser.parse_args()
    mutants = read_list(ROOT / "tests/mutants.tsv", arguments.pattern)
    if not mutants:
        die("no such fault in the list")
    if arguments.list:
        for mutant in mutants:
            print(f"{mutant.file}: {mutant.effect}")
        return 0

    TREE.mkdir(parents=True, exist_ok=True)
    copy_tree()
    configure()
    tests = Tests(arguments.jobs)
    counts = collections.Counter()

    def tell(state, mutant, why):
        counts[state] += 1
        print(f"{state:<12}{mutant.file}: {mutant.effect} ({why})", flush=True)

    left = []
    tests.learn(sorted({room_of(mutant) for mutant in mutants} & tests.rooms.keys()))
    for mutant in mutants:
        own = [room for room in tests.rooms if room == room_of(mutant)]
        if failed := own and tests.notice(mutant, own):
            tell("noticed", mutant, failed)
        else:
            left.append(mutant)
    if left:
        tests.learn(list(tests.rooms))
    for mutant in left:
        if failed := tests.notice(mutant, [room for room in tests.rooms if room != room_of(mutant)]):
            tell("noticed", mutant, failed)
        elif mutant.explanation:
            tell("explained", mutant, mutant.explanation)
        else:
            tell("NOT NOTICED", mutant, "by no fast test")
    print(f"{len(mutants)} faults: " + ", ".join(f"{counts[state]} {state.lower()}"
                                               for state in ("noticed", "explained", "NOT NOTICED")))
    return 1 if counts["NOT NOTICED"] else 0


if __name__ == "__main__":
    sys.exit(main())
