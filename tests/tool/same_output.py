"""Runs the rows of aqdata_test.py with the native program and with the program for Windows, and
compares exit status, output and files: same_output.py PROGRAM PROJECT OTHER...

OTHER is the command that runs the program for Windows under wine. Rows whose results must differ on
Windows are skipped.
"""

import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

import aqdata_test

ELSEWHERE = {  # rows that contain a key are skipped; its value says what differs on Windows
    "odd": "names with line breaks",
    "bytes": "names that are not UTF-8",
    "/dev/": "Unix devices",
    "ln -f": "hard links, which wine does not keep",
    "COLORTERM": "the number of colours, which a Windows console does not report",
    "TERM=": "the number of colours, which a Windows console does not report",
    "| head": "a reader that closes the pipe early, which is an error for a Windows program",
    "xlsx": "workbooks, which the program for Windows does not write",
    "AQ_PYTHON": "Unix interpreters",
    "/&s/": "line endings, which include a carriage return on Windows",
    "completion": "Unix shells",
}


def same_form(text):
    """Unifies line endings and path separators, and removes a warning from wine and the dates and
    times of files.
    """
    text = text.replace(b"\r\n", b"\n").replace(b"\\\\", b"\\").replace(b"\\", b"/")
    text = re.sub(rb"Wine cannot find the FreeType(.*\n){4}", b"", text)
    return re.sub(rb"(FileDateTime\*\*|created|file date).*", rb"\1", text)


def answer(path, command, folder):
    done = subprocess.run(
        ["bash", "-c", command],
        cwd=folder,
        capture_output=True,
        timeout=120,
        check=False,
        env={**os.environ, "PATH": f"{path}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"},
    )
    return done.returncode, same_form(done.stdout), same_form(done.stderr)


def contents(folder):
    return {
        str(path.relative_to(folder)): same_form(path.read_bytes())
        for path in sorted(folder.rglob("*"))
        if path.is_file() and path.name.isascii()
    }


def main():
    faults, compared = [], 0
    with tempfile.TemporaryDirectory() as name:
        here, there, bin_there = (pathlib.Path(name) / part for part in ("here", "there", "bin"))
        for folder in (here, there):
            folder.mkdir()
            aqdata_test.samples(folder)
            for odd in (os.fsencode(aqdata_test.ODD_NAME), aqdata_test.NO_TEXT):
                os.unlink(os.path.join(os.fsencode(folder), odd))
        bin_there.mkdir()
        program = bin_there / "aqdata"
        program.write_text(f'#!/bin/sh\nexec {shlex.join(sys.argv[3:])} "$@"\n')
        program.chmod(0o755)
        for row, *_ in aqdata_test.ROWS:
            if any(part in row for part in ELSEWHERE):
                continue
            command = aqdata_test.command_line(row)
            ours = answer(aqdata_test.PROGRAM.parent.resolve(), command, here)
            theirs = answer(bin_there, command, there)
            compared += 1
            if ours != theirs:
                faults.append(f"{command}\n  native:  {ours}\n  Windows: {theirs}")
        ours, theirs = contents(here), contents(there)
        faults += [
            f"file {path} differs"
            for path in sorted(ours.keys() | theirs.keys())
            if ours.get(path) != theirs.get(path)
        ]
    print(*faults, f"{compared} commands compared, {len(faults)} differences", sep="\n")
    return 1 if faults or not compared else 0


if __name__ == "__main__":
    sys.exit(main())
