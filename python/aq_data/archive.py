"""Folders of files: what is in them, and what is wrong with it."""

from __future__ import annotations

import contextlib
import glob
import os
import sys
import warnings
from pathlib import Path as FolderPath
from typing import Any, Callable, Iterable, Optional, TypeVar, Union

import dask
import numpy as np
import pandas as pd
from dask.diagnostics import ProgressBar

from . import _core
from .errors import Error, FileError
from .files import Path, Reading, read

Item = TypeVar("Item")
Result = TypeVar("Result")
FILES_PER_TASK = 16
ONE_PATH = (str, bytes, os.PathLike)

_HEADER_COLUMNS = {
    "project": ("sProjectName", "ProjectName"),
    "microphone": ("sMicrophoneID", "MicrophoneID"),
    "generated_by": ("sGeneratedBy", "GeneratedBy"),
}
_DATA_COLUMNS = {"averaging": "sAveragingMethod", "stamp": "sTimeStampType"}
_COUNTS = ["records", "first_record", "last_record", "low_band", "high_band"]
_SEVERITIES = {"errors": "error", "warnings": "warning", "notes": "note"}
_COLUMNS = ["path", "kind", *_HEADER_COLUMNS, "begin", *_DATA_COLUMNS, *_COUNTS, *_SEVERITIES]
_COLUMNS += ["ok", "line", "field", "expected", "found"]


def in_threads(work: Callable[[Item], Result], paths: list[Item], progress: bool) -> list[Result]:
    """`work` of each path, some at a time in threads: the library leaves them the interpreter."""
    parts = [paths[i : i + FILES_PER_TASK] for i in range(0, len(paths), FILES_PER_TASK)]
    tasks: list[Any] = [dask.delayed(lambda some: [work(p) for p in some])(part) for part in parts]
    bar: Any = ProgressBar(out=sys.stderr) if progress else contextlib.nullcontext()
    with bar, warnings.catch_warnings():
        warnings.filterwarnings("ignore", "Running on a single-machine scheduler")  # on purpose
        done = dask.compute(*tasks, scheduler="threads")
    return [result for part in done for result in part]


def expanded(paths: Union[Path, Iterable[Path]]) -> list[str]:
    """Absolute paths, which hold wherever a task runs: a file or pattern, or those of a list."""
    if not isinstance(paths, ONE_PATH):
        if not isinstance(paths, Iterable):
            raise TypeError(f"expected a path, a pattern or a list, found {type(paths).__name__}")
        names: Iterable[Any] = paths
        return [os.path.abspath(os.fsdecode(name)) for name in names]
    name = os.fsdecode(paths)  # a file may be called as a pattern is
    found = [name] if os.path.exists(name) else sorted(glob.glob(name, recursive=True))
    if not found:
        raise FileNotFoundError(f"no file matches {name}")
    return [os.path.abspath(path) for path in found]


# What is in a folder.


def _header_row(header: Any) -> dict[str, str]:
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


def _severities(path: str) -> dict[str, int]:
    """How many findings of each severity the check of a file has."""
    found = [severity for _, severity, *_ in _findings(path)]
    return {column: found.count(severity) for column, severity in _SEVERITIES.items()}


def _row(path: str) -> dict[str, Any]:
    row = {"path": path, "kind": _core.kindOfFile(path).name, "ok": True, **_data_row(None)}
    reading = Reading(None, None)
    try:
        reading = read(path)
        row.update(_data_row(reading.data))
    except FileError as error:
        reading = Reading(*error.partial) if error.partial else reading
        row.update(ok=False, line=error.line, field=error.field)
        row.update(expected=error.expected, found=error.found, **_data_row(reading.data))
    except OSError as error:
        row.update(ok=False, expected="a file that can be opened", found=error.strerror)
    except Error as error:
        row.update(ok=False, expected="values that go together", found=str(error))
    return {**row, **_severities(path), **_header_row(reading.header)}


def scan(folder: Path, pattern: str = "**/*", progress: Optional[bool] = None) -> pd.DataFrame:
    """One row a file below a folder: kind, header, records, bands, why it does not read, and how
    many findings `check` has for it.

    Files are read in threads; the progress bar shows on a terminal unless `progress` says else.
    """
    root = FolderPath(os.path.abspath(os.fsdecode(folder)))
    if not root.is_dir():
        raise NotADirectoryError(f"expected a folder, found {root}")
    paths = sorted(str(path) for path in root.glob(pattern) if path.is_file())
    shown = sys.stderr.isatty() if progress is None else progress
    frame = pd.DataFrame(in_threads(_row, paths, shown), columns=_COLUMNS)
    counts = [*_COUNTS, *_SEVERITIES, "line", "field"]
    return frame.astype({"ok": bool}).astype({count: "Int32" for count in counts})


# What a person should know about files.

_FINDING = ["severity", "kind", "line", "field", "record", "band", "message"]


def _findings(path: str) -> list[tuple[Any, ...]]:
    return [(path, *finding) for finding in _core.checkWithHistory(path)]


def check(paths: Union[Path, Iterable[Path]]) -> pd.DataFrame:
    """The findings of `aqdata check`, one a row: `paths` is a file, a pattern or a list.

    `FINDING_KINDS` says what each kind means; line and field are 0 for the whole file or line.
    """
    rows = in_threads(_findings, expanded(paths), progress=False)
    frame = pd.DataFrame([row for found in rows for row in found], columns=["path", *_FINDING])
    return frame.astype({"record": "Int32", "band": "Int16"})
