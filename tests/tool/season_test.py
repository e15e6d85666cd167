"""Runs the commands of docs/season.md on a generated season, in which some raw files are damaged:
season_test.py PROGRAM PROJECT RUNS [PACKAGE]

Compares the results with those of the undamaged files. Prints the time of each command of the
page's first block, relative to the time it takes to read all files once.
"""

import csv
import gzip
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

PROGRAM, PROJECT = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
RUNS = int(sys.argv[3])
PACKAGE = sys.argv[4] if len(sys.argv) > 4 else None  # a folder with the Python package
SAMPLES = PROJECT / "examples" / "data"


def with_commas(head, between, rows):
    """A file with decimal commas in its data lines."""
    return head + between + rows.replace(b".", b",")


ONE = "event/day-1/run-001"
IN_PYTHON = """
import pathlib, aq_data
runs = aq_data.read_excel("season.xlsx")
paths = sorted(pathlib.Path("event").rglob("*.sth.csv"))
assert len(runs) == len(paths)
for run, path in zip(runs.values(), paths):
    header, history = aq_data.read(path)
    assert run.history.data == history, path
    assert run.mask.data == aq_data.read(str(path).replace(".sth.", ".mask.")).data
    assert list(run.history.header.cCommentLines) == list(header.cCommentLines)
"""
BY_PACKAGE = [  # commands that use the Python package
    f"aqdata convert {ONE}.sth.csv --masks -o one.nc",
    "aqdata convert one.nc -o one.sth.csv | tail -1 | grep -q '^one.mask.csv: written'",
    f"aqdata diff --dates {ONE}.sth.csv one.sth.csv && aqdata diff {ONE}.mask.csv one.mask.csv",
    f"aqdata plot {ONE}.sth.csv {ONE}.mask.csv -o one.png && grep -q PNG one.png",
    f"! aqdata plot one.sth.csv {ONE}.sth.csv -o two.png",
    f"/usr/bin/python3 -c '{IN_PYTHON}'",
]
DAMAGE = {  # the damage to a run, by the last digit of its number
    1: lambda text: b"\xef\xbb\xbf" + text,
    2: lambda text: text.decode().encode("utf-16"),
    3: lambda text: text.replace(b"\n", b"\r"),
    4: lambda text: text.replace(b"\n", b",,,,\n"),
    5: lambda text: with_commas(*text.partition(b"\n1,")),
    6: lambda text: gzip.compress(text),
    7: lambda text: text + b"\n\n",
}


def run(command, folder):
    environment = {**os.environ, "PATH": f"{PROGRAM.parent}:{os.environ['PATH']}"}
    environment["PYTHONPATH"] = PACKAGE or ""
    begin = time.perf_counter()
    done = subprocess.run(["bash", "-c", command], cwd=folder, capture_output=True, env=environment)
    return done, time.perf_counter() - begin


def louder(text, number):
    """The sample with all levels raised by `number` tenths of a decibel."""
    head, heading, rows = text.partition("Rec#")
    first, *lines = rows.splitlines()
    made = [
        ",".join(
            line.split(",")[:3] + [f"{float(v) + number / 10:.2f}" for v in line.split(",")[3:]]
        )
        for line in lines
    ]
    return head + heading + "\n".join([first, *made, ""])


def make(folder):
    """Writes raw files, some of them damaged, and the undamaged originals, in one folder per day."""
    history = (SAMPLES / "fly-over.sth.csv").read_text()
    mask = (SAMPLES / "fly-over.mask.csv").read_text()
    for number in range(1, RUNS + 1):
        name = f"day-{1 + number // 100}/run-{number:03}"
        text = louder(history.replace("fly-over.sth.csv", f"{name[6:]}.sth.csv"), number)
        for place, damage in (("whole", None), ("raw", DAMAGE.get(number % 10))):
            (folder / place / name).parent.mkdir(parents=True, exist_ok=True)
            packed = ".gz" if damage is not None and number % 10 == 6 else ""
            raw = text.encode()
            raw = raw if damage is None else damage(raw)
            (folder / place / f"{name}.sth.csv{packed}").write_bytes(raw)
            (folder / place / f"{name}.mask.csv").write_text(
                mask.replace("fly-over.sth.csv", f"{name[6:]}.sth.csv")
            )


def events(folder, files):
    done, _ = run(f"aqdata metrics --json {files} --masks", folder)
    found = [json.loads(line) for line in done.stdout.splitlines()]
    return {
        each["file"].split("/", 1)[1]: (
            each["event"]["EPNL"],
            each["event"]["last"] - each["event"]["first"],
        )
        for each in found
    }


def main(folder):
    make(folder)
    page = (PROJECT / "docs" / "season.md").read_text()
    blocks = [block.strip().splitlines() for block in re.findall(r"```sh\n(.*?)```", page, re.S)]
    _, once = run("aqdata info whole", folder)
    print(f"{RUNS} runs read once: {once:.2f} s")
    for command in blocks[0]:
        done, seconds = run(command, folder)
        print(f"{seconds / once:5.1f} times that: {command}")
        if done.returncode != 0:
            sys.exit(f"{command}: {done.returncode}\n{(done.stdout + done.stderr).decode()[:2000]}")
    whole, cut = events(folder, "whole"), events(folder, "event")
    assert len(cut) == RUNS and cut == whole, (whole, cut)
    with open(folder / "epnl.csv", newline="") as file:
        table = {row["file"].split("/", 1)[1]: float(row["EPNL"]) for row in csv.DictReader(file)}
    assert table == {name: epnl for name, (epnl, _) in whole.items()}
    done, _ = run("aqdata diff --json whole mended", folder)
    pairs = [json.loads(line) for line in done.stdout.splitlines()]
    assert len(pairs) == 2 * RUNS, len(pairs)
    assert not [p for p in pairs if p["largest"] or p["only_in_a"] or p["only_in_b"]], pairs
    assert {key for p in pairs for key in p["header"]} == {"comments"}, pairs
    for command in BY_PACKAGE if PACKAGE else []:
        done, _ = run(command, folder)
        assert done.returncode == 0, (command, done)
    for command in blocks[1]:
        done, _ = run(command, folder)
        assert done.stdout and not done.stderr, (command, done)
    before = run("aqdata info whole event mended --columns file,records", folder)[0].stdout
    done, _ = run(
        "aqdata fix raw --write -o /dev/full/x; test $? = 2 && aqdata fix raw --write -o mended",
        folder,
    )
    assert done.returncode == 2 and b"already exists" in done.stderr
    assert before == run("aqdata info whole event mended --columns file,records", folder)[0].stdout
    done, _ = run(
        "cp whole/day-1/run-001.* . && printf x >> run-001.sth.csv; "
        "aqdata cut run-001.sth.csv whole --down 10 -o part",
        folder,
    )
    assert done.returncode == 2 and len(list((folder / "part").rglob("*.csv"))) == RUNS, done


with tempfile.TemporaryDirectory() as name:
    main(pathlib.Path(name))
