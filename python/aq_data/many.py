"""All histories of an archive as one lazy dataset."""

from __future__ import annotations

import ntpath
import os
import warnings
from typing import Any, Iterable, NamedTuple, Optional, Sequence, Union

import dask.array
import dask.base
import numpy as np
import numpy.typing as npt
import xarray as xr

from . import _core
from .archive import ONE_PATH, SEVERITIES, Checked, Finding, absolute, checked, counts
from .archive import header_words, in_threads, see_same_levels
from .attributes import NO_DECISION, band_coordinates, level_variable, table_variables, variable
from .errors import Error, FileError
from .files import read_quietly
from .reading import Path, Reading
from .labelled import RECORD_TIMES, check_map, mask_variables

RECORDS_PER_CHUNK = 4096  # several short files form one task and share its cost


class _Job(NamedTuple):
    """A history and its map, if it has one."""

    path: str
    mask: Optional[str]
    joined: bool  # paired by a pattern, not by the caller
    strict: bool  # whether findings about the levels exclude the history


class _Shape(NamedTuple):
    """What is kept of a history and its map once they are checked; their arrays are read later."""

    path: str
    mask: Optional[str]
    records: npt.NDArray[np.int16]
    bands: npt.NDArray[np.int16]
    times: npt.NDArray[Any]
    last_good_bands: Any
    words: dict[str, Any]  # the coordinates that have one value per file
    levels: Optional[int]  # a digest of the levels

    def state(self) -> list[Any]:
        """The files' names, with the times and sizes by which a rewritten file is noticed."""
        stats = [os.stat(path) for path in (self.path, self.mask) if path]
        return [self.path, self.mask, *((s.st_mtime_ns, s.st_size) for s in stats)]


class _WrongPair(ValueError):
    """A pattern paired a history with another history's map; raised even with `errors="skip"`."""


def _read(path: str, cls: Any, wanted: str) -> Reading[Any, Any]:
    reading = read_quietly(path)
    if not isinstance(reading.data, cls):
        raise FileError(path, 0, 0, wanted, _core.kindOfFile(path).name)
    return reading


def _history(path: str) -> Reading[Any, Any]:
    return _read(path, _core.AQ_SpectralTimeHistory, "a spectral time history")


def _map(path: str) -> Reading[Any, Any]:
    return _read(path, _core.AQ_MaskMap, "a masking map")


def _check_pair(path: str, mask: str, header: _core.AQ_HeaderMask) -> None:
    """Rejects a map whose header names another history as its source; ignores folders and case."""
    own, named = os.path.basename(path), ntpath.basename(header.sGenerationFile)
    if named and named.lower() != own.lower():
        raise _WrongPair(f"{mask}: expected a map of {own}, found one of {named}")


def _checked(job: _Job) -> Checked:
    """The findings of a history and of its map. If strict, raises for an error or a warning about
    the levels.
    """
    result = checked(job.path)
    found = [(job.path, result.found)]
    if job.mask is not None:
        for rows in (_core.checkFile(job.mask), _core.checkFit(job.path, job.mask)):
            found.append((job.mask, [Finding(*row) for row in rows]))
    placed = [(path, finding) for path, some in found for finding in some]
    for path, finding in placed:
        if job.strict and finding.doubts_levels:
            place = (path, finding.line, finding.field)
            raise FileError(*place, "levels as measured (strict)", finding.message)
    return Checked([finding for _, finding in placed], result.levels)


def _count_copies(shapes: list[_Shape]) -> None:
    """Counts a warning for each history that has the same levels as an earlier one."""
    same = [Checked([], shape.levels) for shape in shapes]
    see_same_levels([shape.path for shape in shapes], same)
    for shape, (found, _) in zip(shapes, same):
        shape.words["warnings"] += len(found)


def _words(header: Any, history: _core.AQ_SpectralTimeHistory, found: list[Finding]) -> Any:
    words = header_words(header)
    own = {"project": words["project"], "microphone": words["microphone"]}
    return {**own, "begin": history.startTime.TODstring, **counts(found)}


def _shape(job: _Job) -> Union[_Shape, Exception]:
    """Information about a history and its map, or the reason for leaving them out."""
    try:
        header, history = _history(job.path)
        last = None
        if job.mask is not None:
            mask_header, mask = _map(job.mask)
            if job.joined:
                _check_pair(job.path, job.mask, mask_header)
            check_map(history, mask)
            last = mask.last_good_bands
        result = _checked(job)
        words = _words(header, history, result.found)
        own = (history.records, history.bands, history.times)
        return _Shape(job.path, job.mask, *own, last, words, result.levels)
    except _WrongPair:
        raise
    except (Error, OSError) as error:
        return error
    except ValueError as error:
        return ValueError(f"{job.mask}: {error}")


# Levels and masks, read when they are computed.


def _levels(path: str) -> tuple[Any, Any]:
    history = _history(path).data
    return history.to_numpy(), history.bands


def _modes(path: str) -> tuple[Any, Any]:
    mask = _map(path).data
    return mask.to_numpy()[0], mask.bands


def _adjustments(path: str) -> tuple[Any, Any]:
    mask = _map(path).data
    return mask.to_numpy()[1], mask.bands


def _chunk(read_file: Any, files: tuple[tuple[str, int], ...], bands: Any, empty: Any) -> Any:
    """The values of several files, one file after another, on common bands. `files` has the
    path and number of records of each.
    """
    values = np.full((sum(count for _, count in files), len(bands)), empty)
    first = 0
    for path, count in files:
        own, own_bands = read_file(path)
        places = np.searchsorted(bands, own_bands)
        if len(own) != count or (bands.take(places, mode="clip") != own_bands).any():
            raise ValueError(
                f"{path} has changed since it was opened: expected {count} records with the same"
                f" bands, found {len(own)}"
            )
        values[first : first + count, places] = own
        first += count
    return values


def _chunks(shapes: list[_Shape]) -> list[list[_Shape]]:
    """Groups of consecutive files, one group per task."""
    chunks: list[list[_Shape]] = []
    room = 0
    for shape in shapes:
        room -= len(shape.records)
        if room < 0:
            chunks.append([])
            room = RECORDS_PER_CHUNK - len(shape.records)
        chunks[-1].append(shape)
    return chunks


class _Lazy:
    """Lazy arrays over all files. Workers are sent paths, not levels, and read the files."""

    def __init__(self, shapes: list[_Shape], bands: Any) -> None:
        self.bands = bands
        self.chunks = _chunks(shapes)
        self.token = dask.base.tokenize([shape.state() for shape in shapes], bands)

    def array(self, read_file: Any, attribute: str, empty: Any) -> dask.array.Array:
        """A lazy array: `read_file` applied to the file that `attribute` names in each shape."""
        name = f"aq{read_file.__name__}-{self.token}"
        tasks, sizes = {}, []
        for place, chunk in enumerate(self.chunks):
            files = tuple((getattr(shape, attribute), len(shape.records)) for shape in chunk)
            tasks[(name, place, 0)] = (_chunk, read_file, files, self.bands, empty)
            sizes.append(sum(count for _, count in files))
        chunks = (tuple(sizes), (len(self.bands),))
        return dask.array.Array(tasks, name, chunks, meta=np.empty((0, 0), type(empty)))


def _kept(results: list[Union[_Shape, Exception]], errors: str) -> list[_Shape]:
    failures = [result for result in results if isinstance(result, Exception)]
    if failures and errors == "raise":
        raise failures[0]
    for failure in failures:
        warnings.warn(f"skipped: {failure}", stacklevel=3)
    return [result for result in results if not isinstance(result, Exception)]


def _mask_variables(shapes: list[_Shape], lazy: _Lazy) -> dict[str, xr.Variable]:
    none = np.int8(NO_DECISION)
    return mask_variables(
        lazy.array(_modes, "mask", none),
        lazy.array(_adjustments, "mask", none),
        np.concatenate([shape.last_good_bands for shape in shapes]),
    )


_BY_FILE = {
    "project": "project of the file",
    "microphone": "microphone of the file",
    "begin": "start time of the file, hh:mm:ss",
    **{column: f"{column} that check finds in the file and its map" for column in SEVERITIES},
}


def _coordinates(shapes: list[_Shape], bands: Any) -> dict[str, Any]:
    sizes = [len(shape.records) for shape in shapes]
    numbers = np.concatenate([shape.records for shape in shapes])
    files = np.repeat(np.arange(len(shapes), dtype=np.int32), sizes)
    times = np.concatenate([shape.times for shape in shapes])
    by_file = {}
    for name, long_name in _BY_FILE.items():
        values = np.array([shape.words[name] for shape in shapes])
        units = "1" if values.dtype.kind == "i" else ""
        values = values.astype(np.int32) if units else values
        by_file[name] = variable("path", values, units, long_name)
    return {
        **table_variables(times, RECORD_TIMES, "time"),
        "record": variable("time", numbers, "1", "record number"),
        "file": variable("time", files, "1", "index in path"),
        "path": ("path", [shape.path for shape in shapes]),
        **by_file,
        **band_coordinates(bands),
    }


def open_many(
    paths: Union[Path, Iterable[Path]],
    masks: Union[Path, Iterable[Path], None] = None,
    errors: str = "raise",
    strict: bool = True,
) -> xr.Dataset:
    """The records of many spectral time histories, file after file, as one dataset. Levels and
    masks are loaded when a computation needs them.

    `paths` is a file, a pattern or a list; `masks` names the map of each history, in the same
    order. If `masks` is a pattern, a map whose header names another history is an error; a list is
    not checked for this.

    The dataset has `level(time, band)` in dB, NaN where a record has no level in a band. If there
    are maps, it also has `mask_mode` and `mask_adjustment` of the same shape, and
    `last_good_band(time)`. `file(time)` is the index in `path`; per file there are `project`,
    `microphone`, `begin` (start time as text) and the numbers of `errors`, `warnings` and `notes`
    that `check` finds in the history and its map.

    Raises `FileError`, `OSError` or `ValueError` for a file that cannot be read, a map that does
    not fit and, unless `strict` is false, a file with an error or a warning about its levels. With
    `errors="skip"` the history is left out with a warning instead, unless a pattern paired it with
    the map of another history.

    >>> many = aq_data.open_many("season-7/*.sth.csv", "season-7/*.mask.csv", errors="skip")
    >>> many.aq.unmasked().level.max().compute()
    """
    if errors not in ("raise", "skip"):
        raise ValueError(f"expected errors='raise' or 'skip', found {errors!r}")
    names = absolute(paths)
    map_names: Sequence[Optional[str]] = [None] * len(names)
    if masks is not None:
        map_names = absolute(masks)
    if len(map_names) != len(names):
        raise ValueError(
            f"expected a map for each of {len(names)} histories, found {len(map_names)}"
        )
    joined = isinstance(masks, ONE_PATH)
    jobs = [_Job(path, map_path, joined, strict) for path, map_path in zip(names, map_names)]
    shapes = _kept(in_threads(_shape, jobs, progress=False), errors)
    _count_copies(shapes)
    if not shapes:
        raise ValueError("expected at least one history that can be read, found none")
    bands = np.unique(np.concatenate([shape.bands for shape in shapes]))
    lazy = _Lazy(shapes, bands)
    level = level_variable(("time", "band"), lazy.array(_levels, "path", np.nan))
    variables = {"level": level}
    if masks is not None:
        variables.update(_mask_variables(shapes, lazy))
    return xr.Dataset(variables, _coordinates(shapes, bands))
