"""Folders of files: what is in them, and all histories as one lazy dataset."""

from __future__ import annotations

import contextlib
import glob
import os
import sys
import warnings
from pathlib import Path as FolderPath
from typing import Any, Callable, Iterable, NamedTuple, Optional, TypeVar, Union

import dask
import dask.array
import numpy as np
import numpy.typing as npt
import pandas as pd
import xarray as xr
from dask.diagnostics import ProgressBar

from . import _core
from .errors import Error, FileError
from .files import Path, Reading, read
from .attributes import band_coordinates, variable

Result = TypeVar("Result")
FILES_PER_TASK = 16

_HEADER_COLUMNS = {
    "project": ("sProjectName", "ProjectName"),
    "microphone": ("sMicrophoneID", "MicrophoneID"),
    "generated_by": ("sGeneratedBy", "GeneratedBy"),
}
_COLUMNS = ["path", "kind", *_HEADER_COLUMNS, "records", "first_record", "last_record"] + [
    "low_band",
    "high_band",
    "ok",
    "line",
    "field",
    "expected",
    "found",
]


def _in_threads(work: Callable[[str], Result], paths: list[str], progress: bool) -> list[Result]:
    """`work` of each path, some at a time in threads: the library leaves them the interpreter."""
    parts = [paths[i : i + FILES_PER_TASK] for i in range(0, len(paths), FILES_PER_TASK)]
    tasks: list[Any] = [dask.delayed(lambda some: [work(p) for p in some])(part) for part in parts]
    bar: Any = ProgressBar(out=sys.stderr) if progress else contextlib.nullcontext()
    with bar, warnings.catch_warnings():
        warnings.filterwarnings("ignore", "Running on a single-machine scheduler")  # on purpose
        done = dask.compute(*tasks, scheduler="threads")
    return [result for part in done for result in part]


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
    return row


def _row(path: str) -> dict[str, Any]:
    row: dict[str, Any] = {"path": path, "kind": _core.kindOfFile(path).name, "ok": True}
    try:
        reading = read(path)
    except FileError as error:
        reading = Reading(*error.partial) if error.partial else Reading(None, None)
        row.update(ok=False, line=error.line, field=error.field)
        row.update(expected=error.expected, found=error.found)
    except OSError as error:
        reading = Reading(None, None)
        row.update(ok=False, expected="a file that can be opened", found=error.strerror)
    return {**row, **_header_row(reading.header), **_data_row(reading.data)}


def scan(folder: Path, pattern: str = "**/*", progress: Optional[bool] = None) -> pd.DataFrame:
    """One row a file below a folder: kind, header, records, bands, and why it does not read.

    Files are read in threads; the progress bar shows on a terminal unless `progress` says else.
    """
    root = FolderPath(folder)
    if not root.is_dir():
        raise NotADirectoryError(f"expected a folder, found {root}")
    paths = sorted(str(path) for path in root.glob(pattern) if path.is_file())
    shown = sys.stderr.isatty() if progress is None else progress
    frame = pd.DataFrame(_in_threads(_row, paths, shown), columns=_COLUMNS)
    counts = ["records", "first_record", "last_record", "low_band", "high_band", "line", "field"]
    return frame.astype({"ok": bool}).astype({count: "Int32" for count in counts})


# What a person should know about files.

_FINDING = ["severity", "kind", "line", "field", "record", "band", "message"]


def _findings(path: str) -> list[tuple[Any, ...]]:
    found: list[tuple[Any, ...]] = [(path, *finding) for finding in _core.checkFile(path)]
    history = (
        _core.historyOfMap(path) if _core.kindOfFile(path) == _core.FileKind.MaskingMap else ""
    )
    if history and os.path.exists(history):
        found += [(path, *finding) for finding in _core.checkFit(history, path)]
    return found


def check(paths: Union[Path, Iterable[Path]]) -> pd.DataFrame:
    """The findings of `aqdata check`, one a row: `paths` is a file, a pattern or a list.

    `FINDING_KINDS` says what each kind means; line and field are 0 for the whole file or line.
    """
    rows = _in_threads(_findings, _expanded(paths), progress=False)
    frame = pd.DataFrame([row for found in rows for row in found], columns=["path", *_FINDING])
    return frame.astype({"record": "Int32", "band": "Int16"})


# All histories as one.


class _Shape(NamedTuple):
    """What of a history has to be known before its levels are read."""

    path: str
    records: npt.NDArray[np.int16]
    bands: npt.NDArray[np.int16]
    times: npt.NDArray[Any]


def _expanded(paths: Union[Path, Iterable[Path]]) -> list[str]:
    if not isinstance(paths, (str, os.PathLike)):
        return [os.fspath(path) for path in paths]
    found = sorted(glob.glob(os.fspath(paths), recursive=True))
    if not found:
        raise FileNotFoundError(f"no file matches {os.fspath(paths)}")
    return found


def _history(path: str) -> _core.AQ_SpectralTimeHistory:
    data = read(path).data
    if not isinstance(data, _core.AQ_SpectralTimeHistory):
        raise FileError(path, 0, 0, "a spectral time history", _core.kindOfFile(path).name)
    return data


def _shape(path: str) -> Union[_Shape, Exception]:
    try:
        history = _history(path)
        return _Shape(path, history.records, history.bands, history.times)
    except (Error, OSError) as error:
        return error


def _wide(values: Any, own: Any, bands: Any, shape: tuple[int, int], fill: float) -> Any:
    """Values of a file's own bands on the bands of all files."""
    if values.shape[0] != shape[0] or not np.isin(own, bands).all():
        raise ValueError(f"a file has changed since it was opened: expected {shape}")
    wide = np.full(shape, fill, dtype=values.dtype)
    if len(own):
        wide[:, np.searchsorted(bands, own)] = values
    return wide


def _levels(path: str, bands: Any, shape: tuple[int, int]) -> Any:
    history = _history(path)
    return _wide(history.to_numpy(), history.bands, bands, shape, np.nan)


def _modes(path: str, bands: Any, shape: tuple[int, int]) -> Any:
    mask = read(path).data
    return _wide(mask.to_numpy()[0], mask.bands, bands, shape, -1)


def _lazy(
    load: Any, paths: list[str], shapes: list[_Shape], bands: Any, dtype: type
) -> dask.array.Array:
    """One chunk a file; a worker gets the path and no more."""
    chunks = []
    for path, shape in zip(paths, shapes):
        size = (len(shape.records), len(bands))
        chunk = dask.delayed(load, pure=True)(path, bands, size)
        chunks.append(dask.array.from_delayed(chunk, size, dtype))
    return dask.array.concatenate(chunks)


def _kept(results: list[Union[_Shape, Exception]], errors: str) -> list[_Shape]:
    failures = [result for result in results if isinstance(result, Exception)]
    if failures and errors == "raise":
        raise failures[0]
    for failure in failures:
        warnings.warn(f"skipped: {failure}", stacklevel=3)
    return [result for result in results if not isinstance(result, Exception)]


def open_many(
    paths: Union[Path, Iterable[Path]],
    masks: Optional[Iterable[Path]] = None,
    errors: str = "raise",
) -> xr.Dataset:
    """Many spectral time histories as one dataset, record after record; levels load when computed.

    `paths` is a pattern or a list; `masks` names the map of each. `file(time)` is the place in
    `path`. Files that do not read raise, or with `errors="skip"` are left out with a warning.
    """
    if errors not in ("raise", "skip"):
        raise ValueError(f"expected errors='raise' or 'skip', found {errors!r}")
    names = _expanded(paths)
    map_names = [] if masks is None else _expanded(masks)
    if masks is not None and len(map_names) != len(names):
        raise ValueError(
            f"expected a map for each of {len(names)} histories, found {len(map_names)}"
        )
    shapes = _kept(_in_threads(_shape, names, progress=False), errors)
    if not shapes:
        raise ValueError("expected at least one history that reads, found none")
    bands = np.unique(np.concatenate([shape.bands for shape in shapes]))
    times = np.concatenate([shape.times for shape in shapes])
    kept = [shape.path for shape in shapes]
    level = _lazy(_levels, kept, shapes, bands, float)
    variables = {
        "level": variable(
            ("time", "band"), level, "dB", "one-third-octave band sound pressure level"
        )
    }
    if masks is not None:
        map_of = dict(zip(names, map_names))
        modes = _lazy(_modes, [map_of[path] for path in kept], shapes, bands, np.int8)
        variables["mask_mode"] = variable(("time", "band"), modes, "1", "masking decision")
    counts = [len(shape.records) for shape in shapes]
    numbers = np.concatenate([shape.records for shape in shapes])
    files = np.repeat(np.arange(len(shapes), dtype=np.int32), counts)
    coordinates = {
        "time": variable("time", times["TODseconds"], "s", "time of day"),
        "relative_time": variable(
            "time", times["RelSeconds"], "s", "time relative to the reference time"
        ),
        "record": variable("time", numbers, "1", "record number"),
        "file": variable("time", files, "1", "place in path"),
        "path": ("path", kept),
        **band_coordinates(bands),
    }
    return xr.Dataset(variables, coordinates, {"Conventions": "CF-1.8"})
