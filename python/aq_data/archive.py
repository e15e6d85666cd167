"""Catalogues folders of measurement files and checks their content."""

from __future__ import annotations

import contextlib
import errno
import glob
import os
import sys
import warnings
from pathlib import Path as FolderPath
from typing import Any, Callable, Iterable, Iterator, NamedTuple, Optional, TypeVar, Union

import dask
import numpy as np
import pandas as pd
from dask.diagnostics import ProgressBar

from . import _core
from .arguments import path_text
from .errors import Error, FileError
from .files import read_quietly
from .noise import metric_findings
from .reading import Path, Reading

Item = TypeVar("Item")
Result = TypeVar("Result")
FILES_PER_TASK = 16
ONE_PATH = (str, bytes, os.PathLike)
UNKNOWN = _core.FileKind.Unknown

_HEADER_COLUMNS = {
    "project": ("sProjectName", "ProjectName"),
    "microphone": ("sMicrophoneID", "MicrophoneID"),
    "generated_by": ("sGeneratedBy", "GeneratedBy"),
}
_DATA_COLUMNS = {"averaging": "sAveragingMethod", "stamp": "sTimeStampType"}
_COUNTS = ["records", "first_record", "last_record", "low_band", "high_band"]
SEVERITIES = {"errors": "error", "warnings": "warning", "notes": "note"}
_COLUMNS = ["path", "kind", *_HEADER_COLUMNS, "begin", *_DATA_COLUMNS, *_COUNTS, *SEVERITIES]
_COLUMNS += ["ok", "line", "field", "expected", "found"]


def in_threads(work: Callable[[Item], Result], paths: list[Item], progress: bool) -> list[Result]:
    """Calls `work` for each path, several at a time: threads suffice, since the library releases
    the interpreter's lock.
    """
    parts = [paths[i : i + FILES_PER_TASK] for i in range(0, len(paths), FILES_PER_TASK)]
    tasks: list[Any] = [dask.delayed(lambda some: [work(p) for p in some])(part) for part in parts]
    bar: Any = ProgressBar(out=sys.stderr) if progress else contextlib.nullcontext()
    with bar, warnings.catch_warnings():
        warnings.filterwarnings("ignore", "Running on a single-machine scheduler")  # on purpose
        done = dask.compute(*tasks, scheduler="threads")
    return [result for part in done for result in part]


def absolute(paths: Union[Path, Iterable[Path]]) -> list[str]:
    """The absolute paths of a file, a pattern or a list of files, valid wherever a task runs."""
    if not isinstance(paths, ONE_PATH):
        if not isinstance(paths, Iterable):
            raise TypeError(f"paths: expected a path, a pattern or a list, found {paths!r:.60}")
        names: Iterable[Any] = paths
        return [os.path.abspath(os.fsdecode(name)) for name in names]
    name = os.fsdecode(paths)  # a file name may look like a pattern
    found = [name] if os.path.exists(name) else sorted(glob.glob(name, recursive=True))
    if not found:
        raise FileNotFoundError(errno.ENOENT, "no file matches", name)
    return [os.path.abspath(path) for path in found]


def walked(path: str, seen: set[str], more: tuple[str, ...] = ()) -> Iterator[str]:
    """The path itself or, for a folder, the measurement files below it: those of a known kind and
    those that end in `.csv`, `.nc` or one of `more`. A broken link with such an ending counts as an
    unreadable file. Visits each folder once, since links may form a loop.
    """
    if not os.path.isdir(path):
        yield path
        return
    if os.path.realpath(path) in seen:
        return
    seen.add(os.path.realpath(path))
    for name in sorted(os.listdir(path)):
        entry = os.path.join(path, name)
        if name.startswith(".") or name.endswith(".orig"):  # hidden, or an original kept by fix
            continue
        if os.path.isdir(entry):
            yield from walked(entry, seen, more)
        elif name.lower().endswith((".csv", ".nc", *more)) or _core.kindOfFile(entry) != UNKNOWN:
            yield entry


# Findings of files.


_DOUBTING = frozenset(_core._doubtingKinds())


class Finding(NamedTuple):
    severity: str
    kind: str
    line: int
    field: int
    record: Optional[int]
    band: Optional[int]
    message: str

    @property
    def doubts_levels(self) -> bool:
        """Whether this is an error, or a warning that levels may differ from those measured."""
        return self.kind in _DOUBTING


class Checked(NamedTuple):
    """The findings of a file, and a digest of its levels if it is a history with enough of them."""

    found: list[Finding]
    levels: Optional[int] = None


def checked(path: str) -> Checked:
    if path.lower().endswith(".nc"):
        return Checked([Finding(*each) for each in metric_findings(path)])
    rows, levels = _core._checkWithLevels(path)
    return Checked([Finding(*row) for row in rows], levels)


def see_same_levels(paths: Iterable[str], results: Iterable[Checked]) -> None:
    """Adds findings for files that have the same levels as an earlier file."""
    same = _core.SameLevels()
    for path, (found, levels) in zip(paths, results):
        found[:0] = [Finding(*row) for row in same.see(path, levels)]


def counts(found: list[Finding]) -> dict[str, int]:
    """The number of findings of each severity."""
    severities = [finding.severity for finding in found]
    return {column: severities.count(severity) for column, severity in SEVERITIES.items()}


# The content of a folder.


def header_words(header: Any) -> dict[str, str]:
    """Project, microphone and generating program; each is empty if the header lacks the field."""
    return {
        column: next((getattr(header, name) for name in names if hasattr(header, name)), "")
        for column, names in _HEADER_COLUMNS.items()
    }


def _data_row(data: Any) -> dict[str, Any]:
    row: dict[str, Any] = {"records": len(data)} if hasattr(data, "__len__") else {}
    records = np.asarray(getattr(data, "records", ()))
    bands = np.asarray(getattr(data, "bands", ()))
    if records.size:
        row.update(first_record=int(records[0]), last_record=int(records[-1]))
    if bands.size:
        row.update(low_band=int(bands[0]), high_band=int(bands[-1]))
    is_history = isinstance(data, _core.AQ_SpectralTimeHistory)
    row["begin"] = data.startTime.TODstring if is_history else ""
    return {**row, **{column: getattr(data, name, "") for column, name in _DATA_COLUMNS.items()}}


def _row(path: str) -> tuple[dict[str, Any], Checked]:
    row = {"path": path, "kind": _core.kindOfFile(path).name, "ok": True, **_data_row(None)}
    reading: Any = Reading(None, None)
    result = checked(path)
    try:
        reading = read_quietly(path)
        row.update(_data_row(reading.data))
    except FileError as error:
        reading = Reading(*error.partial) if error.partial else reading
        row.update(ok=False, line=error.line, field=error.field)
        row.update(expected=error.expected, found=error.found, **_data_row(reading.data))
    except OSError as error:
        row.update(ok=False, expected="a file that can be opened", found=error.strerror)
    except Error as error:
        row.update(ok=False, expected="values that do not contradict each other", found=str(error))
    return {**row, **header_words(reading.header)}, result


def _judged(row: dict[str, Any], found: list[Finding], strict: bool) -> dict[str, Any]:
    """The row with its findings counted; if `strict`, doubtful levels make a file not ok."""
    doubt = next((finding for finding in found if finding.doubts_levels), None)
    if row["ok"] and strict and doubt:
        row.update(ok=False, line=doubt.line, field=doubt.field)
        row.update(expected="levels as measured", found=doubt.message)
    return {**row, **counts(found)}


def scan(
    folder: Path,
    pattern: str = "**/*",
    progress: Optional[bool] = None,
    strict: bool = True,
) -> pd.DataFrame:
    """Lists the files below a folder that match `pattern`, one row per file, in path order.

    The columns are `path`, `kind`, what the header says (`project`, `microphone`, `generated_by`,
    `begin`, `averaging`, `stamp`), `records` (how many), `first_record`, `last_record`,
    `low_band`, `high_band`, the numbers of `errors`, `warnings` and `notes` that `check` finds,
    whether the file is `ok`, and if not, why: `line`, `field` (from 1; 0 for the whole file or
    line), `expected`, `found`. A file is not ok if it cannot be read or, unless `strict` is false,
    if `check` finds an error or a warning about its levels.

    Files are read in threads. `progress` turns the progress bar on or off; by default it is shown
    only on a terminal. Raises `NotADirectoryError` for a path that is not a folder.

    >>> found = aq_data.scan("season-7")
    >>> found[~found.ok]
    """
    root = FolderPath(os.path.abspath(path_text(folder, "folder")))
    if not root.is_dir():
        raise NotADirectoryError(errno.ENOTDIR, "not a folder", str(root))
    paths = sorted(str(path) for path in root.glob(pattern) if path.is_file())
    shown = sys.stderr.isatty() if progress is None else progress
    rows = in_threads(_row, paths, shown)
    see_same_levels(paths, (result for _, result in rows))
    judged = [_judged(row, result.found, strict) for row, result in rows]
    frame = pd.DataFrame(judged, columns=_COLUMNS)
    integers = [*_COUNTS, *SEVERITIES, "line", "field"]
    return frame.astype({"ok": bool}).astype({column: "Int32" for column in integers})


def check(paths: Union[Path, Iterable[Path]]) -> pd.DataFrame:
    """The findings of `aqdata check`, one per row, by file and line.

    `paths` is a file, a folder, a pattern or a list of files and folders. In a folder and its
    subfolders, checks files that end in `.csv` or `.nc` or are of a known kind, except hidden ones
    and the `.orig` files that `fix` keeps. For a netCDF file, compares the stored metrics with
    those computed from its levels. The columns are `path`, `severity` ("error", "warning", "note"),
    `kind`, `line` and `field` (from 1; 0 for the whole file or line), `record`, `band`, `message`;
    `FINDING_KINDS` gives the meaning of each kind. Raises `FileNotFoundError` if a single path or
    pattern matches nothing; a file that cannot be read gives a finding. Also finds histories that
    have the same levels as an earlier one.

    >>> aq_data.check("season-7").groupby(["severity", "kind"]).size()
    """
    seen: set[str] = set()
    files = [file for path in absolute(paths) for file in walked(path, seen)]
    results = in_threads(checked, files, progress=False)
    see_same_levels(files, results)
    rows = [(path, *each) for path, result in zip(files, results) for each in result.found]
    frame = pd.DataFrame(rows, columns=["path", *Finding._fields])
    return frame.astype({"record": "Int32", "band": "Int16"})
