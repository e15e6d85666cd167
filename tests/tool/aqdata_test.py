"""Drives the installed program end to end: aqdata_test.py PROGRAM PROJECT

Each of ROWS holds a command line, its exit status, and what its output and its messages must
contain. If the status is 0, there must be no messages. The commands run in a folder with the
project's samples and altered copies of them.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unicodedata

PROGRAM, PROJECT = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
SAMPLES = PROJECT / "examples" / "data"
ODD_NAME = "odd name\n\u00e9.sth.csv"
NO_TEXT = b"bytes \xff.sth.csv"
faults = []


def run(command, folder, **more):
    path = f"{PROGRAM.parent}:{os.environ['PATH']}"
    environment = {**os.environ, "PATH": path, "COLUMNS": "80"}
    return subprocess.run(
        ["bash", "-c", command],
        cwd=folder,
        capture_output=True,
        timeout=60,
        env=environment,
        **more,
    )


def expect(what, found, wanted):
    if found != wanted:
        faults.append(f"{what}: expected {wanted!r}, found {found!r}")


def expect_in(what, found, wanted):
    if wanted not in found:
        faults.append(f"{what}: expected {wanted!r} in {found!r}")


def samples(folder):
    shutil.copytree(SAMPLES, folder, dirs_exist_ok=True)
    history = (folder / "fly-over.sth.csv").read_text()

    def named(name):
        return history.replace("FileName**,fly-over.sth.csv", f"FileName**,{name}")

    def changed(name, before, after):
        assert before in history, before
        (folder / name).write_text(named(name).replace(before, after, 1))

    changed("bad.sth.csv", "61.51", "6x.2")
    changed("loud.sth.csv", "61.51", "261.51")
    changed("short.sth.csv", "NumberOfSpectrum**,60", "NumberOfSpectrum**,59")
    changed("gap.sth.csv", "\n30,", "\n-3,")
    changed("invalid.sth.csv", "61.51", "9999")
    changed("words.sth.csv", "AveragingMethod**,", "AveragingMethod**,FOO")
    changed("near.sth.csv", "61.51", "61.52")
    last = history.splitlines(keepends=True)[-1]
    (folder / "again.sth.csv").write_text(named("again.sth.csv") + last * 5000)
    (folder / "late.csv").write_text("\n" * 6 + "14:30:03.996,0,,,,,,,7,8,9\n")
    (folder / "notes.txt").write_text("no measurement\n")
    (folder / "killed").write_text("#!/bin/sh\nkill -9 $$\n")
    (folder / "killed").chmod(0o755)
    (folder / "deep" / "er").mkdir(parents=True)
    (folder / "deep" / ".hidden").mkdir()
    shutil.copy(folder / "bad.sth.csv", folder / "deep" / ".hidden")
    for name in ("one.csv", "er/two.csv", "notes.txt"):
        source = "notes.txt" if name == "notes.txt" else "fly-over.sth.csv"
        shutil.copy(folder / source, folder / "deep" / name)
    shutil.copy(folder / "fly-over.sth.csv", folder / ODD_NAME)
    os.link(folder / STH, folder / "same.csv")
    shutil.copy(folder / "fly-over.sth.csv", os.fsencode(folder) + b"/" + NO_TEXT)


STH, MAP = "fly-over.sth.csv", "fly-over.mask.csv"
ROWS = [  # command, status, what the output contains, what the messages contain
    ("--version", 0, ".", ""),
    ("", 2, "", "expected a command"),
    ("inof x", 2, "", 'unknown command "inof"; did you mean info?'),
    (f"info --jsno {STH}", 2, "", 'unknown option "--jsno"; did you mean --json?'),
    ("info", 2, "", "FILES is required"),
    ("info none.csv", 2, "", "none.csv: no such file"),
    (f"info {STH}", 0, "duration s                 29.5", ""),
    (f"--json -q info {STH}", 0, '{"file":"fly-over.sth.csv","kind"', ""),
    (f"--color=never --jobs 1 info {STH}", 0, "duration s", ""),
    ("--json", 2, "", "expected a command"),
    ("help diff", 0, "aqdata diff [OPTIONS] A B", ""),
    ("help", 0, "Commands:", ""),
    ("help --json info", 0, "aqdata info [OPTIONS] FILES", ""),
    ("help x", 2, "", 'unknown command "x"'),
    ("info --color sometimes x", 2, "", 'info: --color: expected auto, always, never, found "some'),
    ("info --color", 2, "", "info: --color: expected a value"),
    ("info '*.csv' bad.sth.csv", 2, "near.sth.csv", ""),
    ("info deep", 0, "deep/one.csv", ""),
    (
        "mkdir -p \u98db && cp near.sth.csv \u98db/\u00fc.csv; cut \u98db --records 10:20 -q -o \u98db/\u00e9 "
        "&& aqdata info \u98db/\u00e9/\u00fc.csv && rm -r \u98db",
        0,
        "\u00fc.csv  spectral",
        "",
    ),
    ("info notes.txt fly-over.mic.csv", 2, "M1", 'found "no measurement"'),
    ("info 'fly-*.csv'", 0, "tracking", ""),
    ("info --json bad.sth.csv", 2, '{"file":"bad.sth.csv","error":"bad.sth.csv, line 22', "6x.2"),
    ("info --json gap.sth.csv", 0, '"first":-3,"last":60,"missing":4', ""),
    ("mkdir -p up && cp bad.sth.csv up/R.CSV; check up up/", 1, "1 file checked", ""),
    (
        "mkdir -p up/none; check up/none 'u*'",
        2,
        "1 file checked",
        "up/none: contains no measurement",
    ),
    (f"cat {STH} | aqdata info --json /dev/stdin", 2, '{"file":"/dev/stdin","error"', "a pipe"),
    (f"check {STH} {MAP}", 0, "2 files checked, 2 without findings", ""),
    (
        "check bad.sth.csv",
        1,
        'line 22, field 4: error: expected a level, found "6x.2" [unreadable]',
        "",
    ),
    ("convert words.sth.csv -o w.sth.csv", 2, "", 'method "FOOLINEAR", which is unknown'),
    (f"convert {STH} -o w.sth.csv && aqdata diff --dates {STH} w.sth.csv", 0, "no difference", ""),
    ("track late.csv -o late.pth.csv && tail -1 late.pth.csv", 0, "14:30:04,7", ""),
    ("check words.sth.csv", 1, 'line 6, field 2: warning: "FOOLINEAR" is unknown', ""),
    ("check loud.sth.csv", 1, "line 22, field 4, record 1, band 17: warning: 261.51 dB", ""),
    ("check --only heading loud.sth.csv", 0, "1 without findings", ""),
    ("check --ignore level-range,heading loud.sth.csv", 0, "1 without findings", ""),
    ("check --only level-rnge loud.sth.csv", 2, "", "did you mean level-range?"),
    ("check invalid.sth.csv", 0, "the level is 9999, which means not valid [level-invalid]", ""),
    ("check --strict invalid.sth.csv", 1, "1 note", ""),
    ("check -q again.sth.csv", 1, "warning: 4980 more [record-repeated]", ""),
    ("check --json again.sth.csv", 1, '"counts":{"record-count":1,"record-repeated":5000}', ""),
    (
        "check --summary again.sth.csv short.sth.csv",
        1,
        "record-count     warning       2      2",
        "",
    ),
    (
        "check --summary --json again.sth.csv",
        1,
        '"record-repeated":{"severity":"warning","count":5000',
        "",
    ),
    (
        "check --severity warning invalid.sth.csv",
        0,
        "1 without findings: 0 errors, 0 warnings, 0 no",
        "",
    ),
    ("check --severity warning short.sth.csv", 1, "0 errors, 1 warning", ""),
    (
        f"check {STH} same.csv deep/one.csv",
        1,
        'deep/one.csv: warning: all levels equal those of "fly-over.sth.csv" [same-levels]',
        "",
    ),
    ("check notes.txt short.sth.csv", 1, "[unknown-kind]", ""),
    (f"show {STH} --records 29:30", 0, "30  14:30:14.75           0", ""),
    (f"show {STH} --records 29:30 --bands 17:18 --mask {MAP}", 0, "17     18", ""),
    (f"show {STH} --records 1 --bands 17 --mask {MAP}", 0, "61.51*", ""),
    (
        f"show {STH} --records 2:1",
        2,
        "",
        '--records: expected a number or a range such as 10:40, found "2:1"',
    ),
    (f"show {STH} --records 200:300", 2, "", "has no records from 200 to 300"),
    (f"show {STH} --bands 50", 2, "", "has no band 50"),
    (f"show gap.sth.csv --mask {MAP}", 2, "", "record 30: the history has no such record"),
    (f"show {MAP} --mask {MAP}", 2, "", "has no records to mask"),
    (f"show --json {STH} --records 1 --bands 17:18 --mask {MAP}", 0, '"masked":[true,', ""),
    (f"show {STH} --plot", 0, "Level of all bands combined in dB", ""),
    (
        f"show {STH} --plot --mask {MAP}",
        0,
        "all bands combined, excluding masked ones, in",
        "",
    ),
    (f"show {STH} --plot --bands 17 --mask {MAP} | tail -2 | head -1", 0, "└────", ""),
    (f"show {STH} --plot --bands 17 --mask {MAP} | tail -3 | head -1", 0, "│░░░", ""),
    (f"show {STH} --plot --records 1 --mask {MAP} | head -1", 0, "61.51* ░░", ""),
    (f"show {STH} --spectrogram --mask {MAP} | head -1", 0, "B40/10kHz   ····", ""),
    (f"show {STH} --plot --records 30", 0, "B17/50Hz", ""),
    (f"show {STH} --plot --bands 30", 0, "Level of B30/1kHz in dB", ""),
    (f"show {STH} --spectrogram", 0, "B40/10kHz", ""),
    (f"TERM=xterm-256color show {STH} --spectrogram --color always", 0, "\x1b[48;5;", ""),
    (
        f"COLORTERM=truecolor TERM=xterm show {STH} --spectrogram --color always",
        0,
        "\x1b[48;2;",
        "",
    ),
    ("show fly-over.mic.csv --plot", 2, "", "no levels"),
    ("show fly-over.ini.csv --records 1", 2, "", "has no record 1"),
    (f"show gap.sth.csv --plot --bands 17 --records 26:33 | tail -4 | head -1", 0, "███ ███", ""),
    ("show fly-over.ini.csv", 0, "window_before_s            10", ""),
    (f"convert {STH} -o tidy.csv", 0, "tidy.csv: written", ""),
    (f"convert {STH} -o tidy.csv", 2, "", "tidy.csv: already exists; --force replaces it"),
    (
        f"convert {STH} -o q.odt",
        2,
        "",
        "q.odt: expected a name that ends in .sth.csv, .spc, .mask.csv, .pth.csv, .ssr.csv, .json, .xl",
    ),
    (f"convert {STH} -o q.mask.CSV", 2, "", "only a masking map, or its table or JSON,"),
    (f"convert {STH} --to json -o q.csv", 2, "", "ends in .json, .txt"),
    (f"convert {STH} --to Table -o q.TXT", 0, "q.TXT: written", ""),
    ("convert fly-over.ini.csv -o ini.csv && aqdata check ini.csv", 0, "[table]", ""),
    (f"convert --json {STH} -o q.JSON", 0, '{"output":"q.JSON"}', ""),
    (f"ln -f {STH} same.csv; convert {STH} -f -o same.csv", 2, "", "same.csv: is an input"),
    (f"mask {STH} --ambient fly-over.ssr.csv -f -o same.csv", 2, "", "same.csv: is an input"),
    (f"track fly-over.tspi.csv -o x.sth.csv", 2, "", "expected a name that ends in .pth.csv, .csv"),
    (
        f"cp {STH} /dev/shm/aqdata-$$.csv; convert {STH} -o /dev/shm/aqdata-$$.csv; s=$?; "
        "rm /dev/shm/aqdata-$$.csv; exit $s",
        2,
        "",
        "already exists; --force replaces it",
    ),
    (f"convert {STH} --to spectrum --record 30", 2, "", "name a file with -o"),
    (f"convert {STH} --to spectrum --record 30 -o /dev/stdout | head -n 1", 0, "FileType**,", ""),
    (f"convert {STH} --record 30", 0, "30,14:30:14.75,52214.75,0,17,", ""),
    (f"convert {STH} -o one.ssr.csv", 2, "", "expected --record N"),
    (f"convert {STH} -o one.ssr.csv --record 61", 2, "", "has no record 61"),
    (f"convert {STH} -o one.ssr.csv --record 30", 0, "one.ssr.csv: written", ""),
    (f"convert {MAP} -o one.pth.csv", 2, "", "expected a tracking file, found a masking map file"),
    (f"convert {STH} -o no/where.csv", 2, "", "cannot write no/where.csv: No such file"),
    ("track fly-over.tspi.csv -o made.pth.csv --list", 0, "line 24: RT20 figure 2 is above 1", ""),
    ("track fly-over.tspi.csv -o all.pth.csv --rt20 2", 0, "150 positions, 0 rejected", ""),
    ("track fly-over.tspi.csv -o /dev/stdout --list", 2, "", "-o must name a file"),
    ("convert fly-over.tspi.csv --rt20 2 | tail -1", 0, "150,", ""),
    ("diff made.pth.csv all.pth.csv", 1, "records only in the second file: 147 to 150", ""),
    (f"lgb {STH} {MAP}", 0, "1  14:30:00.25              36  B36/4kHz", ""),
    (f"lgb gap.sth.csv {MAP}", 2, "", "record 30: the history has no such record"),
    (f"lgb {MAP} {STH}", 2, "", "expected a spectral time history file"),
    (
        f"mask {STH} --ambient fly-over.ssr.csv -o made.mask.csv",
        0,
        "60 rows, 146 levels masked",
        "",
    ),
    (
        f"aqdata convert {STH} -o blank.spc -q &&"
        " sed -i '30s/.\\{16\\}\\(\\r*\\)$/         9999.00\\1/' blank.spc;"
        " mask blank.spc --ambient fly-over.ssr.csv -o blank.csv",
        0,
        "; 1 level of 9999, not valid",
        "",
    ),
    (f"mask invalid.sth.csv --ambient fly-over.ssr.csv -o y.csv", 0, "1 level of 9999", ""),
    (f"mask gap.sth.csv --ambient fly-over.ssr.csv -o x.csv", 2, "", "record 30 is missing"),
    (
        f"sed 's/,..\\.../,9999/' fly-over.ssr.csv > no.ssr.csv; mask {STH} --ambient no.ssr.csv -o x.csv",
        2,
        "",
        "no.ssr.csv: expected an ambient level in band 18, found 9999",
    ),
    (f"diff --json {MAP} made.mask.csv", 1, '"only_in_b":[],"columns":[],"bands":[]', ""),
    (
        f"stamp {STH} --start 14:30:00 --type midpt --ref 14:30:14.75 --ref-type overhead -o s.sth.csv",
        0,
        "60 records",
        "",
    ),
    (f"diff --dates {STH} s.sth.csv", 0, "no difference", ""),
    (
        f"sed 's/,OVERHEAD/,PEAK/' {STH} > peak.csv; stamp peak.csv --start 9:00:00 --ref 9:00:00 -o x",
        2,
        "",
        'has the reference time type "PEAK", which is unknown; --ref-type sets',
    ),
    (
        "stamp words.sth.csv --start 9:00:00 --ref 9:00:00 -o x",
        2,
        "",
        'has the averaging method "FOOLINEAR", which is unknown',
    ),
    (
        f"sed 's/^Gen.*Date.*/GenerationFileDateTime**,01\/02\/2003,04:05:06/' {STH} > dated.csv; "
        f"diff --dates {STH} dated.csv",
        1,
        "generation_file_date",
        "",
    ),
    (f"diff {STH} dated.csv", 0, "no difference", ""),
    (
        "sed -i -e s/,OVERHEAD/,PMAX/ -e 's/^GenerationFile..,/&made.dat/' dated.csv; stamp dated.csv "
        "--start 14:30:00 --type MIDPT --ref 14:30:14.75 -o r.sth.csv",
        0,
        "r.sth.csv: 60 records",
        "",
    ),
    ("diff --dates dated.csv r.sth.csv", 0, "no difference", ""),
    (f"stamp {STH} --start 23:59:50 --ref 0:00:04 -o night.sth.csv", 0, "60 records", ""),
    ("check night.sth.csv", 0, "1 without findings", ""),
    ("convert night.sth.csv --record 1", 0, "1,23:59:50,86390,-14,17,", ""),
    ("stamp gap.sth.csv --start 10:00:00 --ref 10:00:00 -o x.csv", 2, "", "gap.sth.csv: no record"),
    (
        f"sed 's/,OVERHEAD/,PMAX/' {STH} > pmax.csv; diff {STH} pmax.csv",
        1,
        "reference_time_type",
        "",
    ),
    (f"stamp {STH} --start 10 --ref 10:00:00 -o x.csv", 2, "", "--start: expected a time of day"),
    (
        f"stamp {STH} --start 10:00:00 --type MID --ref 10:00:00 -o x.csv",
        2,
        "",
        "--type: expected START",
    ),
    (
        f"cp {STH} self.sth.csv; stamp self.sth.csv --start 9:00:00 --ref 9:00:00 --force -o "
        "self.sth.csv",
        0,
        "from 9:00:00, relative",
        "",
    ),
    (
        f"diff {STH} near.sth.csv",
        1,
        "band 17: differs in 1 record, by at most 0.01, for example in record 1",
        "",
    ),
    (f"diff --tolerance 0.01 {STH} near.sth.csv", 0, "no difference", ""),
    (f"diff --tolerance -1 {STH} {STH}", 2, "", "expected 0 or more, found -1"),
    (f"diff {STH} gap.sth.csv", 1, "records only in the first file: 30", ""),
    (f"diff {STH} {MAP}", 2, "", "(spectral time history) cannot be compared"),
    (f"cat {STH}", 0, "\nReferenceTimeType**,OVERHEAD\n", ""),
    ("cat --json fly-over.tspi.csv", 0, '"Rate: 5 a second"', ""),
    (
        "head -n 0x1 fly-over.tspi.csv",
        2,
        "",
        '--lines: expected a whole number from 0 to 32767, found "0x1"',
    ),
    ("head -n 1 fly-over.tspi.csv", 0, "1  14:30:00  -1258  0  150", ""),
    (f"head -n 1 fly-over.mic.csv {STH}", 0, f"==> {STH} <==\nrecord", ""),
    ("completion zsh", 0, "convert:--to) compadd -- table json", ""),
    ("completion fish", 0, "-x -l ref-type -a 'START OVERHEAD", ""),
    (f"metrics {STH} --mask {MAP}", 0, "EPNL ", ""),
    (f"metrics {STH} again.sth.csv", 0, "duration", ""),
    (f"metrics deep --masks", 2, "", "cannot open deep/er/two.mask.csv: No such file"),
    (f"mask {STH} --ambient fly-over.ssr.csv --margin -3 -o m.csv", 2, "", "expected 0 or more"),
    (f"metrics {STH} deep/one.csv --mask {MAP}", 2, "", "--mask names the map of a single"),
    (f"metrics --json {STH}", 0, '"event":{"EPNL":', ""),
    (f"aqdata metrics {STH} --masks -o made.csv; metrics -q {STH} -o made.csv", 2, "", "made.csv"),
    (f"metrics fly-over.mic.csv", 2, "", "expected a spectral time history"),
    ("metrics invalid.sth.csv", 0, "bands count", ""),
    (f"explain {STH} --record 30", 0, "Record 30 has ", ""),
    (f"explain {STH} --record 99", 2, "", "has no record 99"),
    (f"explain {STH}", 2, "", "expected --record N"),
    ("explain fly-over.ssr.csv", 0, "The spectrum has", ""),
    ("explain fly-over.mic.csv --record 1", 2, "", "found a microphone position file"),
    (f"explain {STH} --record 30 --mask {MAP} --json", 0, '"last_band":', ""),
    (
        f"geometry {STH} fly-over.tspi.csv fly-over.mic.csv --celsius 20 -o g.gth.csv",
        2,
        "",
        "no position for the emission of",
    ),
    (
        f"geometry {STH} fly-over.tspi.csv fly-over.mic.csv --celsius -300 -o g.gth.csv",
        2,
        "",
        "above -273.15",
    ),
    (
        f"geometry {STH} {STH} fly-over.mic.csv --celsius 20 -o g.gth.csv",
        2,
        "",
        "expected a position time history or tracking",
    ),
    (
        "geometry gap.sth.csv fly-over.tspi.csv fly-over.mic.csv --celsius 20 --records 30:50 -q "
        "-o gap.gth.csv && cat gap.gth.csv",
        0,
        "Point 1 belongs to record 31",
        "",
    ),
    (
        f"aqdata convert {STH} -o all.json && aqdata convert all.json -o all.sth.csv -q; diff --dates {STH} all.sth.csv",
        0,
        "no difference",
        "",
    ),
    (
        f"aqdata convert {STH} -o t.csv && aqdata convert t.csv -o t.sth.csv -q; check t.sth.csv",
        0,
        "1 without findings",
        "",
    ),
    (f"diff {STH} t.sth.csv", 1, 'reference_time_type: "OVERHEAD" and "OTHER"', ""),
    (
        f"aqdata convert {MAP} -o m.json && aqdata convert m.json -o m.mask.csv -q; diff --dates {MAP} m.mask.csv",
        0,
        "no difference",
        "",
    ),
    (
        f"aqdata convert {MAP} -o m.csv && aqdata convert m.csv -o m.mask.csv -f -q; diff {MAP} m.mask.csv",
        1,
        "comments: [] and",
        "",
    ),
    (
        "aqdata convert made.pth.csv -o p.csv && aqdata convert p.csv -o p.pth.csv -q && aqdata convert made.pth.csv -o p.json && aqdata convert p.json -o p2.pth.csv -q; diff made.pth.csv p2.pth.csv",
        0,
        "no difference",
        "",
    ),
    ("diff --json made.pth.csv p.pth.csv", 1, '"only_in_b":[],"columns":[]', ""),
    (
        "sed '5s/.*/1,14:30:00.25,52200.25,-14.5,x,1/' t.csv > t2.csv; convert t2.csv -o x.sth.csv",
        2,
        "",
        "t2.csv, line 5, field 5: expected a band number",
    ),
    (
        "sed 's/^4,\\(.*\\),-13,/4,\\1,-9,/' t.csv > t4.csv; convert t4.csv -o x4.sth.csv",
        2,
        "",
        "record 4: its relative time implies a different",
    ),
    (
        "head -c 999 all.json > half.json; convert half.json -o x.sth.csv",
        2,
        "",
        "half.json: expected a JSON document, found an error at byte",
    ),
    (
        'printf \'{"rows":[{"level_db":3,"time":1}]}\' > strange.json; convert strange.json -o x.sth.csv',
        2,
        "",
        "strange.json: expected a document written by convert",
    ),
    ("convert m.json -o x5.sth.csv", 2, "", "only a history or a recording can become a history"),
    (f"convert {STH} deep -o x.csv", 2, "", "only a workbook holds several files"),
    (
        f"convert {STH} deep/one.csv --mask {MAP} -o x.xlsx",
        2,
        "",
        "--mask names the map of a single",
    ),
    (
        f"convert {STH} near.sth.csv bad.sth.csv -o x.xlsx",
        2,
        "",
        "nothing was written, because some files",
    ),
    (f"convert {STH} deep/one.csv deep/er/two.csv -o two.xlsx", 0, "two.xlsx: 3 runs", ""),
    (f"export AQ_PYTHON=false; plot {STH} -o x.png", 2, "", "making an image failed"),
    (f"export AQ_PYTHON=./killed; plot {STH} -o x.png", 2, "", "making an image failed"),
    (
        f"export AQ_PYTHON=none; plot {STH} -o x.png",
        2,
        "",
        "an image needs Python with the package aq_data",
    ),
    (f"plot {STH} -o x.gif", 2, "", "expected a name that ends in .png, .svg, .pdf"),
    ("plot bad.sth.csv -o x.png", 2, "", "bad.sth.csv, line 22"),
    (
        "info gap* near* --where 'microphone=m? and (records>60 or missing>=1)' --columns file,missing",
        0,
        "gap.sth.csv        4",
        "",
    ),
    (
        "info --json 'fly-*' --where 'not kind=*history and begin>=14:30' --columns kind",
        0,
        '{"kind":"tracking"}',
        "",
    ),
    (
        "info 'fly-over.*' --sort records,file --reverse --columns file --where 'records>0'",
        0,
        "file\nfly-over.sth.csv",
        "",
    ),
    (
        f"info {STH} --where 'project=\"fly-over sample\"' --columns project,comments",
        0,
        "Fly-over sample",
        "",
    ),
    (
        f"info {STH} --where records",
        2,
        "",
        '--where: expected =, !=, <, <=, > or >= at the end of "records"',
    ),
    (f"info {STH} --where 'record>1'", 2, "", 'unknown field "record"; did you mean records?'),
    (f"info {STH} --where 'begin>7'", 2, "", "expected a time of day to compare begin with, found"),
    (f"info {STH} --where '(records>1'", 2, "", "expected a closing parenthesis at the end"),
    (f"info {STH} --sort size", 2, "", 'unknown field "size"'),
    (
        "mkdir -p s1 s2 && cp fly-over.* near.sth.csv s1 && cp fly-over.* near.sth.csv loud.sth.csv s2 && rm s2/*ssr*; diff s1 s2",
        1,
        "8 files: 6 equal, 0 differ, 1 missing, 1 new",
        "",
    ),
    (
        "cp loud.sth.csv s2/near.sth.csv; diff --json s1 s2",
        1,
        '"equal":false,"largest":199.99,"where":"band 17","record":1,"mean":0.13888',
        "",
    ),
    (f"diff s1 {STH}", 2, "", f"{STH}: expected a folder, since s1 is one"),
    (f"cut {STH} -o x.sth.csv", 2, "", "choose records with"),
    (f"cut {STH} --records 1:9 --down 10 -o x.sth.csv", 2, "", "cannot be combined"),
    (f"cut {STH} --mask {MAP} --masks --down 10 -o x.sth.csv", 2, "", "cannot be combined"),
    (f"cut {STH} deep --mask {MAP} --down 10 -o x", 2, "", "belong to one history"),
    (f"cut {STH} --records 70: -o x.sth.csv", 2, "", f"{STH}: no record from 70"),
    (f"cut {STH} --from 15:00 -o x.sth.csv", 2, "", "--from: expected a time of day"),
    (f"cut {STH} --down 10 --force -o {STH}", 2, "", f"{STH}: is an input, which is never over"),
    (f"cut {STH} --down 10 -o x.mask.csv", 2, "", "expected a name that ends in .sth.csv"),
    (f"cut {STH} near.sth.csv --down 10 -o notes.txt", 2, "", "expected a folder for several"),
    (
        f"cut {STH} deep/one.csv deep/er/two.csv --records 5:9 -q -o five && ls five",
        0,
        "two.csv",
        "",
    ),
    (
        f"cut deep bad.sth.csv --down 10 -o down || ls down/er && exit 2",
        2,
        "down/er/two.csv: rec",
        "6x.2",
    ),
    (f"cut {STH} --down 10 --mask {MAP} -o e.sth.csv", 0, "records 1 to 21 were 20 to 40", ""),
    ("check e.sth.csv e.mask.csv", 0, "2 without findings", ""),
    ("metrics --json e.sth.csv --masks", 0, '"event":{"EPNL":97.16', ""),
    (f"cut {STH} --from 14:30:14 --renumber --json -o late.spc", 0, '"last":32,"first_was":29', ""),
    (
        f"geometry {STH} fly-over.tspi.csv fly-over.mic.csv --celsius 20 --records 10:50 -o f.gth.csv"
        f" && aqdata cut {STH} --down 10 --geometry f.gth.csv -f -q -o e.sth.csv && "
        "aqdata check --only map-misfit,source-misfit e.gth.csv && "
        f"aqdata cut {STH} --records 1:20 --geometry f.gth.csv -o g.sth.csv",
        2,
        "1 without findings",
        f"{STH}: the geometry has no point for record 1",
    ),
    (
        f"cut {STH} --records 10:20 --geometry f.gth.csv -q -o h.sth.csv && aqdata cut {STH} --records "
        "21:50 --geometry f.gth.csv -q -o i.sth.csv && aqdata join h.sth.csv i.sth.csv --geometries -q "
        "-o hi.sth.csv && aqdata diff f.gth.csv hi.gth.csv",
        1,
        "Joined from h.sth.csv (records 1 to 11), i",
        "",
    ),
    (
        f"aqdata cut {STH} --records 22:50 --geometry f.gth.csv -q -o j.sth.csv; join h.sth.csv j.sth.csv "
        "--geometries --fill -o hj.sth.csv",
        2,
        "",
        "j.sth.csv: a gap in a geometry cannot be filled",
    ),
    (
        f"cut {STH} --records :20 --masks -q -o a.sth.csv && aqdata cut {STH} --records 24: --masks -q "
        "-o b.sth.csv && aqdata join a.sth.csv b.sth.csv -o ab.sth.csv",
        2,
        "",
        "b.sth.csv: 3 records are missing before it; --fill",
    ),
    ("join a.sth.csv b.sth.csv --fill --masks -o ab.sth.csv", 0, "60 records, 3 filled", ""),
    ("diff fly-over.mask.csv ab.mask.csv", 1, "Joined from a.sth.csv (records 1 to 20), b.sth", ""),
    ("check --severity warning ab.*", 0, "2 without findings", ""),
    ("join b.sth.csv a.sth.csv -o ba.sth.csv", 2, "", "begins before the first one ends"),
    (
        "sed 's/^Project.*/&s/' b.sth.csv > c.sth.csv; join a.sth.csv c.sth.csv --fill -o ac.sth.csv",
        2,
        "",
        'c.sth.csv: has the project "Fly-over samples", but the piece before it has "Fly-o',
    ),
    ("join a.sth.csv -o x.sth.csv", 2, "", "expected two pieces or more"),
    ("join a.sth.csv b.sth.csv --fill -f -o b.sth.csv", 2, "", "is an input"),
    (
        f"mkdir -p raw/in && printf '\\xef\\xbb\\xbf' | cat - {STH} > raw/mark.csv && gzip -c {STH} > "
        "raw/in/p.sth.csv.gz && cp fly-over.tspi.csv raw; fix raw",
        1,
        "raw/mark.csv: would mend byte order mark\n3 files: 2 to mend, 1 unchanged",
        "",
    ),
    ("fix raw -o mended", 2, "", "-o needs --write"),
    ("fix raw --write -o mended && ls mended/in", 0, "3 files: 2 mended, 1 unchanged\n", ""),
    (
        "cd raw; fix . --write -o in/new && aqdata fix . --write -f -o in/new && rm -r in/new",
        0,
        "3 files: 2",
        "",
    ),
    (f"diff mended/in/p.sth.csv {STH}", 1, "Mended from p.sth.csv.gz: gzip", ""),
    ("fix raw --write -o mended", 2, "", "mended/mark.csv: already exists; --force replaces it"),
    ("fix raw/mark.csv --write -q && ! cmp -s raw/mark.csv.orig raw/mark.csv", 0, "", ""),
    ("fix raw", 1, "raw/in/p.sth.csv.gz: would mend gzip\n3 files: 1 to mend", ""),
    ("fix raw/mark.csv --json", 0, '"mends":[],"left":[]', ""),
    ("fix bad.sth.csv", 1, 'bad.sth.csv: line 22: expected a level, found "6x.2"', ""),
    ("head -c 99 raw/in/p.sth.csv.gz > cut.csv.gz; fix cut.csv.gz", 2, "", "truncated or damaged"),
    (f"report {STH} --celsius 20 -o page.html", 0, "page.html: a page of 1 run, 0.", ""),
    (f"report {STH} -o page.html", 2, "", "page.html: already exists"),
    (f"report {STH} -f -o page.csv", 2, "", "expected a name that ends in .html, .htm"),
    (f"report {STH} deep -o p.html --mask {MAP}", 2, "", "name files of a single history"),
    (f"report {STH} -o p.html --mask fly-over.mic.csv", 2, "", "expected a masking map file"),
    (f"report {STH} --alone --celsius 20 -o p.html", 2, "p.html: a page", "no geometry: there are"),
    (f"report {STH} bad.sth.csv -o two.html", 2, "two.html: a page of 2 runs", '"6x.2"'),
    (
        "report bad.sth.csv -o no.html",
        2,
        "",
        "nothing was written, because no history could be read",
    ),
    (f"cp {MAP} gap.mask.csv; report gap.sth.csv -o gap.html", 2, "gap.html: a", "record 30: the"),
    (
        "test -s page.html && ! grep -e :// -e src= -e @import page.html || exit 9; help report",
        0,
        "Usage",
        "",
    ),
    ("completion tcsh", 2, "", "tcsh"),
    ("info --json odd*", 0, r'"file":"odd name\né.sth.csv"', ""),
    ("info odd* deep/one.csv", 0, "odd name\\x0aé.sth.csv", ""),
    ("check -q --ignore file-name,same-levels odd* bytes*", 0, "", ""),
    (f"info {STH} >/dev/full", 2, "", "cannot write to standard output"),
    (f"convert {STH} -o /dev/full", 2, "", "/dev/full"),
]


def command_line(row):
    """Inserts `aqdata` after the first "; ", or else after any leading variable assignments."""
    words = row.split(" ")
    first = next(
        (i for i, word in enumerate(words) if not re.fullmatch(r"[A-Z]+=\S*", word)), len(words)
    )
    if "; " in row:
        before, row = row.split("; ", 1)
        return f"{before}; aqdata {row}"
    return " ".join(words[:first] + ["aqdata"] + words[first:])


def check_rows(folder):
    for row, status, output, messages in ROWS:
        done = run(command_line(row), folder)
        expect(f"aqdata {row}: status", done.returncode, status)
        expect_in(f"aqdata {row}", done.stdout.decode(errors="replace"), output)
        expect_in(f"aqdata {row}: messages", done.stderr.decode(errors="replace"), messages)
        if status == 0:
            expect(f"aqdata {row}: messages", done.stderr, b"")


def check_json(folder):
    done = run("aqdata check --json . ; aqdata info --json .", folder)
    documents = [json.loads(line) for line in done.stdout.decode("utf-8").splitlines()]
    bad = [d["file"] for d in documents if "unreadable" in d.get("counts", {})]
    expect("unreadable files", bad, ["./bad.sth.csv", "./up/R.CSV"])
    expect("hidden files", [d for d in documents if "hidden" in d["file"]], [])


def check_streams(folder):
    done = run(f"set -o pipefail; aqdata convert {STH} | head -1", folder)
    expect("a closed pipe: status", done.returncode in (0, 141), True)
    expect("a closed pipe: messages", done.stderr, b"")
    plain = run(f"aqdata check --jobs 1 .", folder).stdout
    expect("four threads or one", run("aqdata check --jobs 4 .", folder).stdout, plain)
    expect("leftovers", list(folder.rglob(".aq-*")), [])


def check_folders(parent):
    """Linked folders are visited once; broken links and what cannot be read are reported."""
    folder = parent / "links"
    (folder / "b" / "c").mkdir(parents=True)
    shutil.copy(SAMPLES / "fly-over.mic.csv", folder / "b" / "c" / "m.csv")
    for link, target in (("a", "b"), ("b/up", ".."), ("gone.csv", "nowhere")):
        (folder / link).symlink_to(target)
    done = run("aqdata info . a b ./a/c gone.csv", folder)
    expect("visited once", done.stdout.decode().splitlines()[0], "./b/c/m.csv  microphone position")
    expect("broken links", done.stderr.decode().count("gone.csv: a broken link to nowhere"), 2)
    if os.geteuid() != 0:
        for name, refused in (("b/c", "b/c"), ("b/c/m.csv", "b")):
            (folder / name).chmod(0)
            expect(f"{name} is refused", run(f"aqdata check {refused}", folder).returncode, 2)
            (folder / name).chmod(0o755)
    shutil.rmtree(folder)


def check_completion(folder):
    """The bash completion offers the right words for each command line."""
    for line, offered in (
        ("aqdata co", "convert completion"),
        ("aqdata --color a", "auto always"),
        ("aqdata -q convert x --to j", "json"),
        ("aqdata check --only record-g", "record-gap"),
        ("aqdata check --color=al", "always"),
        ("aqdata help sta", "stamp"),
        ("aqdata info --js", "--json"),
    ):
        words = re.sub("=", " = ", line).split()
        script = (
            f"source <(aqdata completion bash); COMP_WORDS=({' '.join(words)}); "
            f"COMP_CWORD={len(words) - 1}; _aqdata; echo ${{COMPREPLY[@]}}"
        )
        expect(line, run(script, folder).stdout.decode().strip(), offered)


def check_widths(folder):
    """Tables stay aligned when a character in a name is twice as wide as others or has no width,
    and say which columns did not fit.
    """
    names = ["fly-\u98db\u884c.csv", "fly-e\u0301.csv", "fly-plain.csv"]
    for name in names:
        shutil.copy(SAMPLES / "fly-over.mic.csv", folder / name)
    lines = run("aqdata info fly-\u98db* fly-e* fly-p*", folder).stdout.decode().splitlines()
    places = {
        unicodedata.normalize("NFC", line).replace("\u98db\u884c", "four").find("microphone")
        for line in lines[1:4]
    }
    expect("names with wide characters", len(places), 1)
    wide = pathlib.Path(folder / "narrow.txt")
    run(
        f"stty cols 60 2>/dev/null; script -qc 'stty cols 60; aqdata info {names[0]} {STH}' {wide}",
        folder,
    )
    if shutil.which("script"):
        expect_in("columns left out", wide.read_text(errors="replace"), "no room for ")


def check_cpp_tutorial():
    """The C++ tutorial shows the tested program, its output and signatures from the headers."""
    page = (PROJECT / "docs" / "tutorials" / "cpp.md").read_text()

    def blocks(language):
        return re.findall(rf"^```{re.escape(language)}\n(.*?)^```", page, re.S | re.M)

    program = (PROJECT / "examples" / "tutorial.cpp").read_text().partition("#include <aq")
    shown = "".join(blocks("cpp")).split()
    expect("program of the C++ tutorial", "".join(program[1:]).split(), shown)
    output = (PROJECT / "examples" / "tutorial.txt").read_text()
    expect("output of the C++ tutorial", blocks("text")[0].strip(), output.strip())
    headers = "".join(path.read_text() for path in (PROJECT / "aq").rglob("*.h"))
    for signature in "".join(blocks("c++")).split(";")[:-1]:
        found = "".join(signature.split()) in "".join(headers.split())
        expect(f"in a header: {signature.strip()}", found, True)


def check_documents(parent):
    """Console blocks in the pages show what the program prints; the examples in README.md and in
    the help run; no help line is wider than 80 columns.
    """
    check_cpp_tutorial()
    for page in ("docs/aqdata", "docs/metrics", "docs/season", "docs/tutorials/shell"):
        folder = parent / page.replace("/", "-")
        shutil.copytree(SAMPLES, folder)
        page += ".md"
        for block in re.findall(r"```console\n(.*?)```", (PROJECT / page).read_text(), re.S):
            for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
                command, _, shown = part.partition("\n")
                done = run(command, folder)
                expect(f"{page}: {command}", (done.stdout + done.stderr).decode(), shown)
    folder = parent / "examples-of-help"
    shutil.copytree(SAMPLES, folder)
    for command in re.findall(r"^(aqdata .*)$", (PROJECT / "README.md").read_text(), re.M):
        done = run(command, folder)
        expect(f"README.md: {command}: status", done.returncode, 0)
        promised = re.search(r"# (EPNL .*)", command)
        expect_in(f"README.md: {command}", done.stdout.decode(), promised[1] if promised else "")
    names = run("aqdata --help", folder).stdout.decode()
    for name in re.findall(r"^  ([a-z]+) ", names.split("Commands:")[1], re.M):
        text = run(f"aqdata {name} --help", folder).stdout.decode()
        expect(f"wide lines of {name}", [l for l in text.splitlines() if len(l) > 80], [])
        text = text.replace("\\\n", "")
        for example in re.findall(r"^  ((?:source|aqdata) .*)$", text, re.M):
            done = run(example + (" --force" if " -o " in example else ""), folder)
            without = b"needs Python with" in done.stderr  # the Python package is not built
            expect(f"{example}: status", done.returncode in (0, 1) or without, True)


def check_recordings(folder):
    samples = PROJECT / "tests" / "data" / "analyzer-recording"
    done = run(f"aqdata analyzer --json '{samples}/good'", folder)
    found = {line["file"]: line for line in json.loads(done.stdout)["files"]}
    expect("recordings", sorted(found), sorted(p.name for p in (samples / "good").glob("*.dat")))
    expect("records", found["third-octaves-by-scan.dat"]["records"], 3)
    expect("bad recordings: status", run(f"aqdata analyzer '{samples}/bad'", folder).returncode, 1)
    run(f"aqdata convert '{samples}/good/third-octaves-by-header.dat' -o recording.sth.csv", folder)
    info = json.loads(run("aqdata info --json recording.sth.csv", folder).stdout)
    expect(
        "a recording as a history", (info["kind"], info["records"]), ("spectral time history", 7)
    )
    done = run(f"aqdata check '{samples}/good/third-octaves-by-scan.dat'", folder)
    expect_in("marks of a recording", done.stdout.decode(), "analyzer-mark")
    card = run(f"aqdata info '{samples}/bad/complex.dat'", folder).stdout.decode()
    expect_in("a recording without levels", card, "with real data, found complex data")
    expect_in("the traces of a recording", card, "title Pwr Spec, domain OCTAVE_DOMAIN")
    table = run(f"aqdata info '{samples}/bad/complex.dat' --columns channels", folder).stdout
    expect_in("channels in a table", table.decode(), "channels\nlabel ")
    wrong = run(f"aqdata lgb {STH} '{samples}/good/auto-power.dat'", folder).stderr.decode()
    expect_in("another kind of file", wrong, "found an analyzer recording file")
    done = run(f"aqdata info '{samples}/bad/offset-outside.dat'", folder)
    expect("a damaged recording", (done.returncode, done.stdout), (2, b""))


def check_columns(folder):
    """Histories convert to fixed columns and back, and recordings to fixed columns. A missing level
    is left empty in a table and refused in a spectral time history. A finding names its field.
    """
    run(f"aqdata convert {STH} -o there.spc", folder)
    run("aqdata convert there.spc -o back.sth.csv", folder)
    expect("fixed columns and back", run(f"aqdata diff {STH} back.sth.csv", folder).returncode, 0)
    info = json.loads(run("aqdata info --json there.spc", folder).stdout)
    expect("fixed columns", (info["kind"], info["records"]), ("fixed-column history", 60))
    samples = PROJECT / "tests" / "data"
    gap = samples / "fixed-column-history" / "good" / "landing.spc"
    done = run(f"aqdata convert '{gap}' -o gap.sth.csv", folder)
    expect("a gap: status", done.returncode, 2)
    expect_in("a gap", done.stderr.decode(), "record 2: band 30 has no level")
    rows = run(f"aqdata convert '{gap}'", folder).stdout.decode()
    expect_in("a gap in a table", rows, ",30,\n")
    found = run(f"aqdata check '{gap}'", folder).stdout.decode()
    expect_in(
        "findings in fixed columns",
        found,
        "line 21, field 7, record 1, band 32: note: the level is 9999",
    )
    recording = samples / "analyzer-recording" / "good" / "third-octaves-by-scan.dat"
    run(f"aqdata convert '{recording}' -o recording.spc", folder)
    done = run("aqdata check recording.spc", folder)
    expect_in("a recording in fixed columns", done.stdout.decode(), "1 without findings")


def check_field_data(folder):
    data = os.environ.get("AQ_FIELD_DATA")
    if data is None:
        return
    run(
        f"aqdata mask '{data}/landing.sth.csv' --ambient '{data}/landing.ambient.ssr.csv' "
        "-o landing.csv",
        folder,
    )
    done = run(f"aqdata diff --json '{data}/landing.mask.csv' landing.csv", folder)
    difference = json.loads(done.stdout)
    for part in ("only_in_a", "only_in_b", "columns", "bands"):
        expect(f"the landing's own map: {part}", difference[part], [])


def main():
    with tempfile.TemporaryDirectory() as name:
        place = pathlib.Path(name)
        samples(place)
        for check in (
            check_rows,
            check_json,
            check_streams,
            check_folders,
            check_completion,
            check_widths,
            check_documents,
            check_recordings,
            check_columns,
            check_field_data,
        ):
            check(place)
    print("\n".join(faults) or f"{len(ROWS)} commands, no faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
