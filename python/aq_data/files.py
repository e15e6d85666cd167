"""Reads files of every kind, and writes them back."""

from __future__ import annotations

import copy
import errno
import os
import warnings
from typing import Any, Optional, TypeVar, overload

from . import _core
from ._core import FileKind
from .arguments import path_text
from .errors import FileError, file_error
from .formats import FORMATS, format_for
from .reading import Path, Reading, Tracking
from .restore import writable

AnyReading = Reading[Any, Any]
Data = TypeVar("Data")


def read_tracking(path: Path, limit: int = 1) -> Tracking:
    """The fixes of a tracking file, `(positions, rejected)`: those with a quality figure up to
    `limit` (0 is the best, 255 the worst), numbered from 1, and the others.

    Raises the same errors as `read`.

    >>> track = aq_data.read_tracking("fly-over.tspi.csv", limit=2)
    >>> track.positions.to_numpy()["Z"].max(), len(track.rejected)
    """
    reader = _core.AQ_DataTSPI()
    reader.RT20Limit = limit
    good = reader.readFile(path)
    if reader.nBadPositions == 0:
        return Tracking(good, _core.AQ_PositionTimeHistory())
    reader.RT20Limit = 255
    return Tracking(good, _without(reader.readFile(path), good))


def read_sdf(path: Path) -> dict[str, Any]:
    """The content of an analyzer recording: its records as dictionaries, its traces as arrays.

    `recording["SDF_CHANNEL_HDR"]` is the list of the records of that type, each a dictionary of
    fields; other types have such lists too. `recording["traces"][i]` belongs to data header `i` and
    holds `y` indexed by scan, trace and value, `x` by point and, if there is a scan variable,
    `scan_variable` by scan and its `scan_unit`. Values in `y` are as stored; `read` returns levels.
    The other keys are `revision` and `scans`, the number of valid scans.

    Raises `OSError` for a file that cannot be opened, `FileError` for one that is not a valid
    recording.

    >>> recording = aq_data.read_sdf("TRACE1.DAT")
    >>> recording["SDF_DATA_HDR"][0]["dataTitle"], recording["traces"][0]["y"].shape
    """
    name = path_text(path)
    with open(name, "rb"):  # raises the system's own error if this fails
        pass
    content: Any = _core._readRecording(name)
    if isinstance(content, tuple):
        raise FileError(name, 0, 0, *content)
    return dict(content)


def _without(
    everything: _core.AQ_PositionTimeHistory, good: _core.AQ_PositionTimeHistory
) -> _core.AQ_PositionTimeHistory:
    """The samples of `everything` that are not in `good`, a subset in the same order."""
    rest = _core.AQ_PositionTimeHistory()
    table = good.to_numpy()
    place = 0
    for row, sample in zip(everything.to_numpy(), everything):
        if place < len(table) and row == table[place]:
            place += 1
        else:
            rest.Position[len(rest) + 1] = sample
    return rest


_TIMED = (
    _core.AQ_SpectralTimeHistory,
    _core.AQ_PositionTimeHistory,
    _core.AQ_GeometryTimeHistory,
)
_TABLES = (_core.AQ_SpectralTimeHistory, _core.AQ_MaskMap, _core.AQ_Spectrum)


def _beginning(name: str) -> str:
    """The start of a file of unknown kind, in the form that `aqdata` prints."""
    try:
        with open(name, "rb") as file:
            line = file.readline(400).rstrip(b"\r\n")
    except OSError as error:
        reason = os.strerror(error.errno or 0)
        raise file_error(name, 0, 0, "a file that can be opened", reason, ()) from None
    if not line:
        return "nothing" if os.path.getsize(name) == 0 else "an empty first line"
    text = line[:40].decode("utf-8", "backslashreplace")
    shown = "".join(c if c.isprintable() else f"\\x{ord(c):02x}" for c in text)
    return f'"{shown}{"..." if len(line) > 40 else ""}"'


@overload
def read(path: Path) -> AnyReading:
    ...


@overload
def read(
    path: Path, wanted: type[_core.AQ_SpectralTimeHistory]
) -> Reading[_core.AQ_HeaderSTH, _core.AQ_SpectralTimeHistory]:
    ...


@overload
def read(
    path: Path, wanted: type[_core.AQ_MaskMap]
) -> Reading[_core.AQ_HeaderMask, _core.AQ_MaskMap]:
    ...


@overload
def read(
    path: Path, wanted: type[_core.AQ_Spectrum]
) -> Reading[_core.AQ_HeaderSSR, _core.AQ_Spectrum]:
    ...


@overload
def read(
    path: Path, wanted: type[_core.AQ_PositionTimeHistory]
) -> Reading[Optional[_core.AQ_HeaderPTH], _core.AQ_PositionTimeHistory]:
    ...


@overload
def read(
    path: Path, wanted: type[_core.AQ_GeometryTimeHistory]
) -> Reading[_core.AQ_HeaderGTH, _core.AQ_GeometryTimeHistory]:
    ...


@overload
def read(
    path: Path, wanted: type[_core.AQ_Microphone]
) -> Reading[_core.AQ_HeaderMIC, _core.AQ_Microphone]:
    ...


@overload
def read(path: Path, wanted: type[_core.AQ_DataINI]) -> Reading[None, _core.AQ_DataINI]:
    ...


def read(path: Path, wanted: Optional[type[Any]] = None) -> AnyReading:
    """Returns the header and the data of a file of any kind.

    With `wanted`, the expected class of the object, an editor knows the type of the result, and a
    file of another kind is an error. Levels are in dB, times in seconds, lengths in the unit of the
    file.

    Raises `FileError` with line and field for a file that cannot be read. If the system refuses the
    file, the error is also an `OSError`: `FileNotFoundError`, `PermissionError` or another. Warns of
    an unknown word in a history's header, since `write` would replace it with another word.

    >>> header, history = aq_data.read("fly-over.sth.csv")
    >>> mask = aq_data.read("fly-over.mask.csv", aq_data.AQ_MaskMap).data
    """
    others: list[Any] = []
    reading = read_quietly(path, wanted, others)
    for line, what, word, read_as in others:
        place = f"{os.fsdecode(path)}, line {line}"
        text = f'{place}: the {what} "{word}" is unknown, so it is read as {read_as}'
        warnings.warn(text, stacklevel=2)
    return reading


def read_quietly(
    path: Path, wanted: Optional[type[Any]] = None, others: Optional[list[Any]] = None
) -> AnyReading:
    """Like `read`, but appends unknown words to `others` instead of warning."""
    name = path_text(path)
    kind = _core.kindOfFile(name)
    if kind == FileKind.Unknown:
        raise FileError(name, 0, 0, "the title of a kind that is known", _beginning(name))
    found = FORMATS[kind]
    if wanted is not None and found.model is not wanted:
        raise FileError(name, 0, 0, f"a file of {_named(wanted)}", f"one of {found.model.__name__}")
    return found.read(name, others)


def _named(cls: Any) -> str:
    models = {format.model for format in FORMATS.values()}
    if cls not in models:
        classes = sorted(own.__name__ for own in models)
        raise TypeError(
            f"expected one of the classes with a file format ({', '.join(classes)}), found {cls!r}"
        )
    return str(cls.__name__)


def _of_one_file(ds: Any) -> AnyReading:
    reading = writable(ds)
    if "mask_mode" in ds.variables and not isinstance(reading.data, _core.AQ_MaskMap):
        raise ValueError(
            "expected a dataset for one file, found levels and masks: write both readings of"
            " measurement(dataset), or drop_vars('mask_mode')"
        )
    return reading


def _with_clock_times(obj: Any) -> Any:
    """The object, or a copy in which late times are rounded up to the next second. A time is late
    if its text, which keeps seven digits of the seconds after midnight, would be nearly a second
    early.
    """
    if not isinstance(obj, _TIMED) or not _core._hasLateTimes(obj):
        return obj
    obj = copy.deepcopy(obj)
    _core._roundLateTimes(obj)
    return obj


def write(obj: Any, path: Path, header: Any = None, exist_ok: bool = True) -> None:
    """Writes an object, a pair `(header, object)` as returned by `read`, or a dataset, completely
    or not at all.

    Writes a new header if none is given. A dataset with levels and masks needs two files:
    `measurement` returns the content of each. If a dataset of a map or a geometry was cut, its
    records are numbered from 1, and a comment gives their old numbers. An existing file is
    replaced; with `exist_ok=False`, it raises `FileExistsError` instead.

    Raises `ValueError` for data that would not be read back unchanged (such as records whose bands
    differ from those of the first record, or gaps between records), `TypeError` for an object
    without a file format, and `OSError` if the file cannot be written. In each case the disk stays
    unchanged.

    >>> aq_data.write((header, history), "mended.sth.csv", exist_ok=False)
    """
    path = path_text(path)
    if isinstance(obj, tuple):
        if isinstance(obj, Tracking) or len(obj) != 2:
            raise TypeError(f"expected (header, object), found {type(obj).__name__} of {len(obj)}")
        own_header, obj = obj
        header = own_header if header is None else header
    elif hasattr(obj, "data_vars"):
        own_header, obj = _of_one_file(obj)
        header = own_header if header is None else header
    if not exist_ok and os.path.lexists(path):
        raise FileExistsError(errno.EEXIST, os.strerror(errno.EEXIST), path)
    format = format_for(obj, path)
    if isinstance(obj, _TABLES):
        _core._checkWritable(obj, format.kind)
    is_clock = format.kind != FileKind.FixedColumnHistory  # its times have dates and milliseconds
    format.write(path, header, _with_clock_times(obj) if is_clock else obj)
