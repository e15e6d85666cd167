"""Cuts and joins measurements, and undoes what other programs did to their files."""

from __future__ import annotations

import copy
import errno
import gzip
import os
import shutil
import tempfile
from typing import Any, Iterable, NamedTuple, Optional, Union

import pandas as pd

from . import _core
from .archive import absolute, walked
from .arguments import path_text
from .attributes import expect
from .errors import FileError
from .files import read
from .objects import Clock, as_time
from .reading import Path, Reading
from .times import DAY

HistoryReading = Reading[_core.AQ_HeaderSTH, _core.AQ_SpectralTimeHistory]
MapReading = Reading[_core.AQ_HeaderMask, _core.AQ_MaskMap]
GeometryReading = Reading[_core.AQ_HeaderGTH, _core.AQ_GeometryTimeHistory]
Records = tuple[int, int]
Times = tuple[Optional[Clock], Optional[Clock]]
_HALF_DAY = DAY / 2


class Run(NamedTuple):
    """A history with its map and geometry, each with its header, as `write` accepts them."""

    history: HistoryReading
    mask: Optional[MapReading] = None
    geometry: Optional[GeometryReading] = None


def _reading(given: Any, cls: type) -> Reading[Any, Any]:
    """A reading whose header may be changed: read from a path, or with the given header copied."""
    if isinstance(given, (str, bytes, os.PathLike)):
        return read(given, cls)  # type: ignore[call-overload, no-any-return]
    if not isinstance(given, tuple) or len(given) != 2:
        raise TypeError(
            f"expected a path or (header, {cls.__name__}), found {type(given).__name__}"
        )
    expect(given[1], cls)
    return Reading(copy.deepcopy(given[0]), given[1])


def _run(history: Any, mask: Any, geometry: Any) -> Run:
    run = Run(
        _reading(history, _core.AQ_SpectralTimeHistory),
        None if mask is None else _reading(mask, _core.AQ_MaskMap),
        None if geometry is None else _reading(geometry, _core.AQ_GeometryTimeHistory),
    )
    if run.mask is not None:
        name = run.history.header.sFileName or "the history"
        for *_, record, _band, message in _core._checkFit(run.history.data, name, run.mask.data):
            raise ValueError(message if record is None else f"record {record}: {message}")
    return run


def _commented(run: Run, line: str) -> Run:
    run.history.header.cCommentLines.Add(line)
    if run.mask is not None:  # the map is for the new history, which has no file name yet
        run.mask.header.cCommentLines.Add(line)
        run.mask.header.sGenerationFile = ""
        run.mask.header.aqGenerationDateTime = _core.AQ_Time()
    if run.geometry is not None:
        run.geometry.header.colCommentLines.Add(line)
        run.geometry.header.STHFileName = run.geometry.header.STHFileDateTime = ""
    return run


def chosen_records(
    history: _core.AQ_SpectralTimeHistory,
    mask: Optional[_core.AQ_MaskMap],
    records: Optional[Records],
    between: Optional[Times],
    down: Optional[float],
) -> tuple[int, int, str]:
    """First and last record, and the request in words. Raises `ValueError` unless exactly one way
    of choosing is given, or if no record remains.
    """
    if sum(each is not None for each in (records, between, down)) != 1:
        raise ValueError("expected exactly one of records, between and down")
    numbers = history.records
    if not numbers.size:
        raise ValueError("the history has no records")
    if down is not None:
        return (*_core.recordsDown(history, mask, down), f"down={down:g}")
    if between is not None:
        begin = float(history.times["TODseconds"][0])
        given = [None if each is None else as_time(each) for each in between]
        ends = (begin, begin + _HALF_DAY - 1)
        first, last = (e if t is None else t.TODseconds for t, e in zip(given, ends))
        words = ", ".join("" if t is None else t.TODstring for t in given)
        return (*_core.recordsBetween(history, first, last), f"between=({words})")
    assert records is not None
    found = numbers[(numbers >= records[0]) & (numbers <= records[1])]
    if not found.size:
        raise ValueError(f"expected records from {numbers[0]} to {numbers[-1]}, found {records}")
    return int(found[0]), int(found[-1]), f"records={records[0]}:{records[1]}"


def cut(
    history: Union[Path, HistoryReading],
    mask: Union[Path, MapReading, None] = None,
    geometry: Union[Path, GeometryReading, None] = None,
    *,
    records: Optional[Records] = None,
    between: Optional[Times] = None,
    down: Optional[float] = None,
    renumber: bool = False,
) -> Run:
    """A range of records of a history, with the rows of its map and the points of its geometry:
    `(history, mask, geometry)`, each with its header.

    Choose the records by one of `records`, the first and the last number; `between`, two times of
    day, either of which may be None; or `down`, the event: from the first to the last record within
    this many decibels of the largest PNLT, plus one record on each side. Time stamps do not change.
    With a map, a geometry or `renumber`, records are numbered from 1. A comment in each header says
    how the records were chosen, and gives their old numbers if these changed. After choosing a file
    name for the new history, set it in the headers of the map and the geometry. The history, the
    map and the geometry are given as paths or as results of `read`.

    Raises `ValueError` if no record remains, if the map or the geometry does not fit the history,
    or unless exactly one way of choosing is given.

    >>> part, part_mask, _ = aq_data.cut("fly-over.sth.csv", "fly-over.mask.csv", down=10)
    """
    run = _run(history, mask, geometry)
    whole = run.history.data
    rows = None if run.mask is None else run.mask.data
    first, last, words = chosen_records(whole, rows, records, between, down)
    from_one = renumber or rows is not None or run.geometry is not None
    part = _core.cutHistory(whole, first, last, from_one)
    own = part.records
    line = f"Cut from {run.history.header.sFileName or 'a history'} by {words}: records {own[0]}"
    line += f" to {own[-1]}" + (f" were {first} to {last}" if own[0] != first else "")
    made = Run(Reading(run.history.header, part))
    if run.mask is not None:
        cut_map = _core.cutMap(run.mask.data, first, last)
        made = made._replace(mask=Reading(run.mask.header, cut_map))
    if run.geometry is not None:
        points = _core.geometryOf(run.geometry.data, whole, first, last)
        made = made._replace(geometry=Reading(run.geometry.header, points))
    return _commented(made, line)


def _same_words(one: Any, other: Any) -> None:
    for name, what in (
        ("sProjectName", "projects"),
        ("sMicrophoneID", "microphones"),
        ("sAdjustmentCode", "adjustments"),
    ):
        if getattr(one, name) != getattr(other, name):
            raise ValueError(
                f"the pieces have different {what}: {getattr(one, name)!r} and"
                f" {getattr(other, name)!r}"
            )


def _joined_geometry(run: Run, piece: Run, gap: int) -> Optional[GeometryReading]:
    """The points of all records of both pieces."""
    if run.geometry is None and piece.geometry is None:
        return None
    if run.geometry is None or piece.geometry is None:
        raise ValueError("expected a geometry for every piece or for none")
    if gap:
        raise ValueError("a gap in a geometry cannot be filled")
    one, other = run.geometry.header, piece.geometry.header
    places = [(at.X, at.Y, at.Z) for at in (one.MicrophonePosition, other.MicrophonePosition)]
    if places[0] != places[1] or one.Temperature != other.Temperature:
        raise ValueError("the geometries have different microphone positions or temperatures")
    parts = [
        _core.geometryOf(points.data, data, int(data.records[0]), int(data.records[-1]))
        for points, data in (
            (run.geometry, run.history.data),
            (piece.geometry, piece.history.data),
        )
    ]
    return Reading(one, _core.joinGeometries(*parts))


def join(
    *pieces: Union[Path, HistoryReading, Run],
    masks: Optional[Iterable[Union[Path, MapReading]]] = None,
    fill: bool = False,
) -> Run:
    """The pieces of one run, given in the order of their time stamps, joined into one: `(history,
    mask, geometry)`.

    Time stamps do not change; record numbers continue from those of the first piece. `masks` are
    the maps of the pieces, one each; a `Run` brings its own geometry and, without `masks`, its map.
    A gap is an error or, with `fill`, is filled with records whose levels are 9999; a gap in a
    geometry cannot be filled.

    Raises `ValueError` for pieces that overlap or differ in bands, record length, averaging method,
    time stamp type, reference, project, microphone or adjustment.

    >>> whole = aq_data.join("a.sth.csv", "b.sth.csv", fill=True).history
    """
    if len(pieces) < 2:
        raise ValueError(f"expected two pieces or more, found {len(pieces)}")
    maps: list[Any] = [getattr(piece, "mask", None) for piece in pieces]
    if masks is not None:
        maps = list(masks)
    if len(maps) != len(pieces):
        raise ValueError(f"expected {len(pieces)} masks, one per piece, found {len(maps)}")
    runs = [
        (
            _run(piece.history, rows, piece.geometry)
            if isinstance(piece, Run)
            else _run(piece, rows, None)
        )
        for piece, rows in zip(pieces, maps)
    ]
    run = runs[0]
    words = [run.history.header.sFileName or "a history"]
    filled = 0
    for piece in runs[1:]:
        _same_words(run.history.header, piece.history.header)
        gap = _core.recordsMissing(run.history.data, piece.history.data)
        filled += gap
        words.append(piece.history.header.sFileName or "a history")
        points = _joined_geometry(run, piece, gap if fill else 0)
        whole = _core.joinHistories(run.history.data, piece.history.data, fill)
        rows = run.mask
        if rows is not None and piece.mask is not None:
            rows = Reading(rows.header, _core.joinMaps(rows.data, piece.mask.data, gap))
        elif (rows is None) != (piece.mask is None):
            raise ValueError("expected a mask for every piece or for none")
        run = Run(Reading(run.history.header, whole), rows, points)
    line = (
        "Joined from "
        + ", ".join(words)
        + (f"; {filled} records of 9999 between" if filled else "")
    )
    return _commented(run, line)


# Mending.


def _replace(path: str, text: bytes) -> None:
    """Writes a file completely or not at all."""
    handle, new = tempfile.mkstemp(prefix=".aq-", dir=os.path.dirname(path))
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(text)
        mode = os.stat(path).st_mode if os.path.exists(path) else 0o666 & ~_umask()
        os.chmod(new, mode)
        os.replace(new, path)
    except BaseException:
        os.unlink(new)
        raise


def _umask() -> int:
    mask = os.umask(0)
    os.umask(mask)
    return mask


def _mended(path: str) -> tuple[bytes, list[str], list[str]]:
    with open(path, "rb") as file:
        raw = file.read()
    packed = raw.startswith(b"\x1f\x8b")
    if packed:
        try:
            raw = gzip.decompress(raw)
        except (OSError, EOFError) as error:
            raise FileError(path, 0, 0, "an intact gzip file", str(error)) from error
    done = ["gzip"] if packed else []
    text, done, left = _core._mendText(raw, os.path.basename(path), done)
    return text, done, left


def _expect_free(path: str) -> None:
    if os.path.lexists(path):
        raise FileExistsError(errno.EEXIST, os.strerror(errno.EEXIST), path)


def _unpacked_name(path: str) -> str:
    return path[:-3] if path.lower().endswith(".gz") else path


def _write_new(path: Any, text: bytes) -> str:
    place = _unpacked_name(os.fsdecode(path))
    _expect_free(place)
    os.makedirs(os.path.dirname(place) or ".", exist_ok=True)
    _replace(place, text)
    return place


def _write_mended(path: str, text: bytes, keep: bool) -> str:
    """Replaces the file; with `keep`, first saves the original. If the file's name ends in `.gz`,
    writes to the name without that ending instead. Returns the name of the written file.
    """
    place = _unpacked_name(path)
    if place != path:
        _expect_free(place)
    original = path + ".orig"
    if place == path and keep:
        _expect_free(original)
        shutil.copy2(path, original)
    try:
        _replace(place, text)
    except BaseException:
        if place == path and keep:
            os.unlink(original)
        raise
    return place


def fix(
    paths: Union[Path, Iterable[Path]],
    write: bool = False,
    keep_original: bool = True,
    to: Optional[Path] = None,
) -> pd.DataFrame:
    """Undoes what other programs did to text files, where that is unambiguous: gzip, UTF-16, byte
    order marks, carriage returns as line endings, a spreadsheet's semicolons, tabs, quotes and
    padding, blank lines, and decimal commas.

    Without `write` nothing changes. With it, each file that needs a change is replaced completely
    or not at all, and the original is kept as `FILE.orig` unless `keep_original` is false; for a
    file whose name ends in `.gz`, the mended text is written next to it, uncompressed. With `write`
    and `to`, nothing is replaced: all files, including those that need no change, are written below
    that folder, and `FileExistsError` is raised for a file that already exists there. If the format
    allows comments, one in the mended text says what was changed.

    The columns are `path`; `done` and `left`, which list in words what was or would be changed and
    what was left alone because it is ambiguous; and `output`, None if nothing was written. `paths`
    are as for `check`.

    >>> found = aq_data.fix("raw", write=True, to="mended")
    >>> found[found.done.str.len() > 0]
    """
    if to is not None and not write:
        raise ValueError("to needs write=True")
    target = None if to is None else path_text(to, "to")
    seen = set() if target is None else {os.path.realpath(target)}
    rows = []
    for given, path in (
        (each, file) for each in absolute(paths) for file in walked(each, seen, (".gz",))
    ):
        if path.lower().endswith(".nc"):
            continue  # not a text file
        text, done, left = _mended(path)
        output = None
        if target is not None:
            base = given if os.path.isdir(given) else os.path.dirname(given)
            output = _write_new(os.path.join(target, os.path.relpath(path, base)), text)
        elif write and done:
            output = _write_mended(path, text, keep_original)
        rows.append((path, done, left, output))
    return pd.DataFrame(rows, columns=["path", "done", "left", "output"])
