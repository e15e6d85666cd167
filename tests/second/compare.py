"""Generates files, reads them with the library (print_file) and with reader.py, and compares.

    compare.py PROGRAM FOLDER [COUNT] [--seed N] [--against OTHER]

PROGRAM may be a command with arguments. OTHER is a build of print_file for another system, which is
then used instead of reader.py. Files with different results are kept in FOLDER. The same seed makes
the same files.
"""

import argparse
import concurrent.futures
import itertools
import pathlib
import random
import shlex
import subprocess
import sys
import tempfile

import files
import reader
import recording_reader
import recordings

BATCH = 250
FORMATS = [*files.SAMPLES, "HP3565"]  # recordings are read directly or through their text form


def library(program, paths):
    """The lines that `program` prints for each path, up to the line `end`."""
    run = subprocess.run(
        [program] if pathlib.Path(program).exists() else shlex.split(program),
        input="".join(f"{name} {path}\n" for name, path in paths),
        capture_output=True,
        encoding="ascii",
        check=False,
    )
    answers = [answer.splitlines() for answer in run.stdout.split("end\n")][: len(paths)]
    if run.returncode != 0:
        answers[-1].append(f"print_file ended with {run.returncode}: {run.stderr}")
    return answers


def made(name, rng):
    if name == "HP3565":
        return rng.choice(["HP3565", "HP3565TEXT"]), recordings.made(rng).decode("latin-1")
    return files.file(name, rng)


def opinion(variant, content):
    if variant.startswith("HP3565"):
        return recording_reader.opinion(content.encode("latin-1"))
    return reader.opinion(variant, content)


def near(ours, theirs):
    """Whether two lines are equal, apart from numbers that differ by less than 1e-9."""
    pairs = [(a, b) for a, b in zip(ours.split(), theirs.split()) if a != b]
    try:
        return len(ours.split()) == len(theirs.split()) and all(
            abs(float(a) - float(b)) < 1e-9 for a, b in pairs
        )
    except ValueError:
        return False


def agree(variant, ours, theirs):
    if not variant.startswith("HP3565"):
        return ours == theirs
    return len(ours) == len(theirs) and all(map(near, ours, theirs))


def compare(program, kept, seed, name, first, count, other):
    """The format's name, how many files there are, how many can be read, and the differences."""
    with tempfile.TemporaryDirectory() as folder:
        inputs = []
        for index in range(first, first + count):
            variant, content = made(name, random.Random(f"{seed} {name} {index}"))
            path = pathlib.Path(folder) / f"{name}-{seed}-{index}.csv"
            path.write_bytes(content.encode("latin-1"))
            inputs.append((variant, path, content))
        paths = [(variant, path) for variant, path, _ in inputs]
        answers = library(program, paths)
        opinions = library(other, paths) if other else [opinion(v, text) for v, _, text in inputs]
        good, differences = 0, []
        for (variant, path, content), answer, expected in zip(inputs, answers, opinions):
            good += expected[0] == "result 0"
            if not agree(variant, expected, answer):
                (kept / path.name).write_bytes(content.encode("latin-1"))
                ours, theirs = next(
                    pair
                    for pair in itertools.zip_longest(expected, answer)
                    if None in pair or not agree(variant, *([x] for x in pair))
                )
                differences.append(
                    f"{variant} {kept / path.name}\n" f"  second:  {ours}\n  library: {theirs}"
                )
    return name, count, good, differences


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("count", type=int, nargs="?", default=100000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--against", metavar="OTHER")
    options = parser.parse_args()
    options.folder.mkdir(parents=True, exist_ok=True)
    each = -(-options.count // len(FORMATS))
    table = {name: [0, 0, 0] for name in FORMATS}
    with concurrent.futures.ProcessPoolExecutor(2) as pool:
        jobs = [
            pool.submit(
                compare,
                options.program,
                options.folder,
                options.seed,
                name,
                first,
                min(BATCH, each - first),
                options.against,
            )
            for name in table
            for first in range(0, each, BATCH)
        ]
        for job in concurrent.futures.as_completed(jobs):
            name, count, good, differences = job.result()
            print(*differences[:10], sep="\n", end="\n" * bool(differences))
            table[name] = [a + b for a, b in zip(table[name], (count, good, len(differences)))]
    print(f"{'format':8}{'files':>9}{'good':>9}{'failed':>9}{'different':>11}")
    table["all"] = [sum(column) for column in zip(*table.values())]
    for name, (count, good, different) in table.items():
        print(f"{name:8}{count:9}{good:9}{count - good:9}{different:11}")
    return 1 if table["all"][2] or not table["all"][1] else 0


if __name__ == "__main__":
    sys.exit(main())
