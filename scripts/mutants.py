"""Changes the library in small ways, one at a time, and lists the changes that no test detects.

    mutants.py [--sample N] [--seed N] [--all] [--only PLACE...] [--jobs N]

Each worker has its own copy of the source tree and its own build, in a temporary folder. A change
that does not compile does not count; a test that hangs or runs out of memory counts as detecting
the change. Changes that mutants.txt lists as having no effect are not tried. PLACE is the beginning
of `file:line:`, such as `aq/text/` or `aq/core/time.cpp:30:`. The same seed selects the same
changes.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import os
import pathlib
import queue
import random
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SLOW_MILLISECONDS = 100
ENOUGH = 95  # percentage of the changes that the tests must detect
MEMORY = 4 << 30
COMPILE_SECONDS = 900  # time limit for all sources that a changed header affects
FLAGS = [
    "-std=c++20",
    "-O0",
    "-D_GLIBCXX_ASSERTIONS",
    "-fstack-protector-all",
    "-fPIC",
    "-fvisibility=hidden",
    "-fvisibility-inlines-hidden",
    "-Werror=return-type",
    "-Werror=return-stack-address",
]
STANDARD = [
    "algorithm",
    "charconv",
    "filesystem",
    "fstream",
    "functional",
    "map",
    "memory",
    "random",
    "sstream",
    "string",
    "variant",
    "vector",
    "gtest/gtest.h",
]

Mutant = collections.namedtuple("Mutant", "file line begin end text")

# Operators and their replacements. Since the source is formatted, binary operators have spaces
# around them, and template brackets do not.
OPERATORS = {
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "==": ("!=",),
    "!=": ("==",),
    "&&": ("||",),
    "||": ("&&",),
    "+": ("-",),
    "-": ("+",),
    "*": ("/",),
    "/": ("*",),
    "%": ("*",),
    "+=": ("-=",),
    "-=": ("+=",),
    "<<": (">>",),
    ">>": ("<<",),
    "|": ("&",),
    "&": ("|",),
    "|=": ("&=",),
    "&=": ("|=",),
}
WORDS = {"true": "false", "false": "true", "++": "--", "--": "++", "!": ""}
NUMBER = r"(?<![\w.'])(?:0x[\dA-Fa-f']+|\d[\d']*(?:\.\d+)?(?:e[+-]?\d+)?)[FUL]*(?![\w.'])"
EMPTY = ("{}", "0", "false", "true", "nullptr", "std::nullopt", "AQ_DATA_OK", "*this")
CHARACTER = r"'(?:\\.|[^'\\])'"
HIDDEN = re.compile(
    r"(?P<kept>'(?:\\.|[^'\\])')|"
    r'//[^\n]*|/\*.*?\*/|R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"'
    r"|^ *#(?:[^\n]*\\\n)*[^\n]*|static_assert\([^;]*;|^using [^;]*;"
    r"|^namespace [^\n]*",
    re.M | re.S,
)
# A line that is a single statement. Declarations, which start with two words or a keyword, are
# left alone.
STATEMENT = re.compile(r" +((?!return )[^ ].*;) *$")
DECLARATION = re.compile(
    r"(?!throw|if|for|while|delete)(?:\[\[\w+\]\] )?[\w:]+(?:<.*>)?[&*]*"
    r"(?: (?:const |operator)?[&*]*\w+|.* = default|.* = delete)"
    r"|(?:friend|using|constexpr|static|explicit|virtual|template|case|~)\b"
)


def visible(source):
    """The source with blanks in place of comments, strings and whatever else is not changed."""
    return HIDDEN.sub(
        lambda part: "'" + "c" * (len(part[0]) - 2) + "'"
        if part["kept"]
        else re.sub(r"[^\n]", " ", part[0]),
        source,
    )


def statements(code):
    """Where each line that is a single statement begins and ends."""
    at, before = 0, ""
    for line in code.splitlines(keepends=True):
        found = STATEMENT.match(line)
        if found and before[-1:] in tuple(";{})") and not DECLARATION.match(found[1]):
            yield at + found.start(1), at + found.end(1)
        before = line.rstrip() or before
        at += len(line)


def arguments(code, opening):
    """The beginnings and ends of the arguments after the parenthesis at `opening`."""
    depth, begin, found = 0, opening + 1, []
    for at in range(opening, len(code)):
        if code[at] in "([{":
            depth += 1
        elif code[at] in ")]}":
            depth -= 1
        if depth == 0 or (depth == 1 and code[at] == ","):
            found.append((begin, at))
            begin = at + 1
        if depth == 0:
            break
    return found


def swaps(code, source):
    """The changes that swap neighbouring arguments of a call."""
    for call in re.finditer(r"[\w>]\(", code):
        if re.search(r"\b(?:if|for|while|switch|return|swap)$", code[: call.end() - 1]):
            continue
        places = [
            (b + len(source[b:e]) - len(source[b:e].lstrip()), e)
            for b, e in arguments(code, call.end() - 1)
        ]
        for (b1, e1), (b2, e2) in zip(places, places[1:]):
            one, two = source[b1:e1], source[b2:e2]
            declares = re.search(r"\w[&*]* [&*]*\w+$", one) or re.search(r"\w[&*]* [&*]*\w+$", two)
            if one != two and not declares:
                yield b1, e2, two + source[e1:b2] + one


def changes(source):
    """All changes to a file's text: where they begin and end, and the replacement."""
    code = visible(source)
    for found in re.finditer(r" ([-+*/%<>=!&|]{1,2}) ", code):
        for other in OPERATORS.get(found[1], ()):
            yield found.start(1), found.end(1), other
    for found in re.finditer(r"\b(?:true|false)\b|\+\+|--|!(?!=)", code):
        yield found.start(), found.end(), WORDS[found[0]]
    for found in re.finditer(f"{NUMBER}|{CHARACTER}", code):
        yield found.start(), found.end(), f"({source[found.start():found.end()]} + 1)"
    for found in re.finditer(r"\breturn ([^;]+);", code):
        if found[1] not in EMPTY:
            yield found.start(1), found.end(1), "{}"
    for begin, end in statements(code):
        yield begin, end, ";"
    for found in re.finditer(r"[)t] \{ ((?!return )[^{}\n]+;) \}", code):
        yield found.start(1), found.end(1), ""
    yield from swaps(code, source)


def mutants():
    """All mutants of the library, except those of its Windows sources, in source order."""
    for path in sorted((ROOT / "aq").rglob("*.[ch]*")):
        if path.suffix in (".h", ".cpp") and not path.stem.endswith("_windows"):
            source = path.read_text(encoding="utf-8")
            for begin, end, text in sorted(set(changes(source))):
                yield Mutant(
                    str(path.relative_to(ROOT)), source.count("\n", 0, begin) + 1, begin, end, text
                )


class Hung(Exception):
    """A command took too long."""


class Worker:
    """A copy of the source tree with a build of it, in which one mutant at a time is tried."""

    def __init__(self, folder):
        self.source, self.build = folder / "source", folder / "build"
        self.fresh, self.room = folder / "fresh", folder / "room"
        folder.mkdir()
        shutil.copytree(
            ROOT,
            self.source,
            symlinks=True,
            ignore=shutil.ignore_patterns(".git", "build", "__pycache__"),
        )
        # FLAGS keep compilation fast, and reject a function that may end without returning a value.
        self.run(
            [
                "cmake",
                "-S",
                self.source,
                "-B",
                self.build,
                "-G",
                "Ninja",
                "-DCMAKE_CXX_COMPILER=clang++-14",
                "-DBUILD_SHARED_LIBS=ON",
                "-DAQ_TESTS=ON",
                "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
                f"-DCMAKE_CXX_FLAGS={' '.join(FLAGS)} -include-pch {self.precompiled(folder)}",
            ],
            required=True,
        )
        self.slow, self.limits = [], []
        self.make(*(target for target, _ in self.stages()), required=True)
        self.measure()
        self.run(["cp", "-a", self.build, self.fresh], required=True)

    def precompiled(self, folder):
        """Makes a precompiled header of GoogleTest and the standard headers that most sources
        include; returns its path."""
        header = folder / "standard.h"
        header.write_text("".join(f"#include <{name}>\n" for name in STANDARD), encoding="ascii")
        self.run(
            ["clang++-14", *FLAGS, "-x", "c++-header", header, "-o", f"{header}.pch"], required=True
        )
        return f"{header}.pch"

    def run(self, command, seconds=COMPILE_SECONDS, required=False):
        """Whether a command succeeds. A process that uses more than `seconds` of processor time is
        killed, and so fails; a command that takes five times as long in real time is killed too,
        and raises `Hung`. If a `required` command fails, the program ends and shows its output.
        """

        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        shutil.rmtree(self.room, ignore_errors=True)
        self.room.mkdir()
        process = subprocess.Popen(
            command,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            preexec_fn=limit,
            start_new_session=True,
            env={**os.environ, "TMPDIR": str(self.room)},
        )
        try:
            output = process.communicate(timeout=5 * seconds)[0]
        except subprocess.TimeoutExpired as error:
            os.killpg(process.pid, 9)
            process.communicate()
            raise Hung from error
        if required and process.returncode != 0:
            sys.exit(output.decode(errors="replace"))
        return process.returncode == 0

    def make(self, *targets, required=False):
        return self.run(["ninja", "-C", self.build, "-j", "1", *targets], required=required)

    def stages(self):
        """The tests, quickest first: the target to build for each and the command that runs it."""
        program = self.build / "tests/aq_tests"
        tests = [program, "--gtest_fail_fast", "--gtest_brief=1"]
        slow = ":".join(self.slow)
        compare = self.source / "tests/second/compare.py"

        def ctest(pattern):
            return ["ctest", "--test-dir", self.build, "-R", pattern, "--stop-on-failure"]

        return [
            ("aq_tests", [*tests, f"--gtest_filter=-{slow}"]),
            ("aq_tests", [*tests, f"--gtest_filter={slow}"]),
            (
                "fuzz_replay",
                [
                    self.build / "fuzz/fuzz_replay",
                    self.source / "fuzz/corpus",
                    self.source / "tests/data",
                ],
            ),
            (
                "print_file",
                [
                    sys.executable,
                    compare,
                    self.build / "tests/print_file",
                    self.room / "second",
                    "240",
                ],
            ),
            ("aq_reference", ctest("^reference")),
            ("aq_component_idl", ctest("^component.idl")),
            ("examples/all", ctest("^example")),
        ]

    def measure(self):
        """Times each stage on the unchanged library to set its time limit, and finds the slow
        tests."""
        program = self.build / "tests/aq_tests"
        shown = subprocess.run([program], capture_output=True, encoding="utf-8", check=True).stdout
        times = re.findall(r"OK \] (\S+) \((\d+) ms\)", shown)
        self.slow = [name for name, taken in times if int(taken) >= SLOW_MILLISECONDS]
        for _, command in self.stages():
            begin = time.monotonic()
            self.run(command, required=True)
            self.limits.append(5 + int(4 * (time.monotonic() - begin)))

    def survives(self, mutant):
        """Whether no test detects the mutant; None if it does not compile."""
        path = self.source / mutant.file
        source, status = path.read_text(encoding="utf-8"), path.stat()
        path.write_text(
            source[: mutant.begin] + mutant.text + source[mutant.end :], encoding="utf-8"
        )
        try:
            for (target, command), seconds in zip(self.stages(), self.limits):
                if not self.make(target):
                    return None
                if not self.run(command, seconds):
                    return False
            return True
        except Hung:
            return False
        finally:
            path.write_text(source, encoding="utf-8")
            os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))
            shutil.rmtree(self.build)
            subprocess.run(["cp", "-a", self.fresh, self.build], check=True)


def described(mutant):
    """The mutant's file, and the changed lines before and after the change."""
    source = (ROOT / mutant.file).read_text(encoding="utf-8")
    begin = source.rfind("\n", 0, mutant.begin) + 1
    end = source.find("\n", mutant.end)
    after = source[begin : mutant.begin] + mutant.text + source[mutant.end : end]
    return mutant.file, " ".join(source[begin:end].split()), " ".join(after.split())


def equals():
    """The changes in `mutants.txt` whose entry says why they have no effect."""
    text = pathlib.Path(__file__).with_suffix(".txt").read_text(encoding="utf-8")
    return set(re.findall(r"^(\S+)\n  before: (.*)\n  after:  (.*)\n  equal:  .", text, re.M))


def tried(mutants_taken, jobs, folder):
    """Each mutant with its outcome, as soon as it is known."""
    workers = queue.SimpleQueue()

    def trial(mutant):
        worker = workers.get()
        try:
            return mutant, worker.survives(mutant)
        finally:
            workers.put(worker)

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for worker in pool.map(Worker, [folder / str(job) for job in range(jobs)]):
            workers.put(worker)
        futures = [pool.submit(trial, mutant) for mutant in mutants_taken]
        try:
            for done in concurrent.futures.as_completed(futures):
                yield done.result()
        finally:
            pool.shutdown(cancel_futures=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sample", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--only", nargs="+", default=[""], metavar="PLACE")
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()
    taken = [m for m in mutants() if f"{m.file}:{m.line}:".startswith(tuple(options.only))]
    if not options.all and len(taken) > options.sample:
        taken = random.Random(options.seed).sample(taken, options.sample)
    counts = collections.Counter()
    known = equals()
    equal = [mutant for mutant in taken if described(mutant) in known]
    taken = [mutant for mutant in taken if mutant not in equal]
    begin = time.monotonic()
    # If interrupted, prints the results so far.
    with tempfile.TemporaryDirectory(prefix="aq-mutants-") as folder, contextlib.suppress(
        KeyboardInterrupt
    ):
        os.chmod(folder, 0o755)  # for tests that drop their privileges
        for mutant, survives in tried(taken, options.jobs, pathlib.Path(folder)):
            counts[survives] += 1
            if survives:
                file, before, after = described(mutant)
                print(f"{file}:{mutant.line}\n  before: {before}\n  after:  {after}", flush=True)
            if sys.stderr.isatty():
                print(f"\r{counts.total()} of {len(taken)}", end="\r", file=sys.stderr)
    compiled = counts[True] + counts[False]
    killed = 100 * counts[False] / max(compiled, 1)
    print(
        f"{counts.total()} of {len(taken)} tried, not counting {len(equal)} equal:"
        f" {compiled} compiled, {counts[False]} killed, {counts[True]} survived,"
        f" {killed:.1f} % killed, {(time.monotonic() - begin) / max(counts.total(), 1):.1f} s each"
    )
    return 0 if killed >= ENOUGH else 1


if __name__ == "__main__":
    sys.exit(main())
