"""Makes files, has them read by the library (print_file) and by reader.py, and compares.

    compare.py PROGRAM FOLDER [COUNT] [--seed N]

Files that are read differently stay in FOLDER. The same seed makes the same files."""

import argparse
import concurrent.futures
import itertools
import pathlib
import random
import subprocess
import sys
import tempfile

import files
import reader

BATCH = 250


def library(program, paths):
    """The lines that the program prints for each path, up to one that ends it."""
    run = subprocess.run(
        [program],
        input="".join(f"{name} {path}\n" for name, path in paths),
        capture_output=True,
        encoding="ascii",
        check=False,
    )
    answers = [answer.splitlines() for answer in run.stdout.split("end\n")][: len(paths)]
    if run.returncode != 0:
        answers[-1].append(f"print_file ended with {run.returncode}: {run.stderr}")
    return answers


def compare(program, kept, seed, name, first, count):
    """The numbers of files, of those that read and of those that fail; and the differences."""
    with tempfile.TemporaryDirectory() as folder:
        made = []
        for index in range(first, first + count):
            variant, content = files.file(name, random.Random(f"{seed} {name} {index}"))
            path = pathlib.Path(folder) / f"{name}-{seed}-{index}.csv"
            path.write_bytes(content.encode("latin-1"))
            made.append((variant, path, content))
        answers = library(program, [(variant, path) for variant, path, _ in made])
        good, differences = 0, []
        for (variant, path, content), answer in zip(made, answers):
            expected = reader.opinion(variant, content)
            good += expected[0] == "result 0"
            if answer != expected:
                (kept / path.name).write_bytes(content.encode("latin-1"))
                ours, theirs = next(
                    pair for pair in itertools.zip_longest(expected, answer) if pair[0] != pair[1]
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
    options = parser.parse_args()
    options.folder.mkdir(parents=True, exist_ok=True)
    each = -(-options.count // len(files.SAMPLES))
    table = {name: [0, 0, 0] for name in files.SAMPLES}
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
