"""One call for any file: what it is, what it holds, and back."""

from __future__ import annotations

import os
from typing import Any, Callable, NamedTuple, Union

from . import _core
from ._core import FileKind
from .errors import FileError

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class Reading(NamedTuple):
    """What a file holds. `header` is `None` where the kind has none of its own."""

    header: Any
    data: Any


class Tracking(NamedTuple):
    """The fixes of a tracking file: those that are good, and those of poor quality."""

    positions: _core.AQ_PositionTimeHistory
    rejected: _core.AQ_PositionTimeHistory


def read_tracking(path: Path, limit: int = 1) -> Tracking:
    """Fixes with a quality figure up to `limit` (0 is the best), and the rejected others."""
    reader = _core.AQ_DataTSPI()
    reader.RT20Limit = limit
    good = reader.readFile(path)
    if reader.nBadPositions == 0:
        return Tracking(good, _core.AQ_PositionTimeHistory())
    reader.RT20Limit = 255
    return Tracking(good, _without(reader.readFile(path), good))


def _without(
    everything: _core.AQ_PositionTimeHistory, good: _core.AQ_PositionTimeHistory
) -> _core.AQ_PositionTimeHistory:
    """The samples of a series that a part of it, in the same order, lacks."""
    rest = _core.AQ_PositionTimeHistory()
    table = good.to_numpy()
    place = 0
    for row, sample in zip(everything.to_numpy(), everything):
        if place < len(table) and row == table[place]:
            place += 1
        else:
            rest.Position[len(rest) + 1] = sample
    return rest


def _read_parameters(path: Path) -> Reading:
    parameters = _core.AQ_DataINI()
    parameters.readFile(path)
    return Reading(None, parameters)


def _read_positions(path: Path) -> Reading:
    return Reading(None, _core.AQ_DataTSPI().readFile(path))


def _with_header(file_class: Callable[[], Any]) -> Callable[[Path], Reading]:
    return lambda path: Reading(*file_class().readFile(path))


_READERS: dict[FileKind, Callable[[Path], Reading]] = {
    FileKind.SpectralTimeHistory: _with_header(_core.AQ_DataSTH),
    FileKind.MaskingMap: _with_header(_core.AQ_DataMask),
    FileKind.SpectrumRecord: _with_header(_core.AQ_DataSSR),
    FileKind.PositionTimeHistory: _with_header(_core.AQ_DataPTH),
    FileKind.GeometricTimeHistory: _with_header(_core.AQ_DataGTH),
    FileKind.MicrophonePosition: _with_header(_core.AQ_DataMIC),
    FileKind.Tracking: _read_positions,
    FileKind.VariableInitialization: _read_parameters,
}

_WRITERS: dict[type, tuple[type, type]] = {
    _core.AQ_SpectralTimeHistory: (_core.AQ_DataSTH, _core.AQ_HeaderSTH),
    _core.AQ_MaskMap: (_core.AQ_DataMask, _core.AQ_HeaderMask),
    _core.AQ_Spectrum: (_core.AQ_DataSSR, _core.AQ_HeaderSSR),
    _core.AQ_PositionTimeHistory: (_core.AQ_DataPTH, _core.AQ_HeaderPTH),
    _core.AQ_GeometryTimeHistory: (_core.AQ_DataGTH, _core.AQ_HeaderGTH),
}
_TABLES = (_core.AQ_SpectralTimeHistory, _core.AQ_MaskMap, _core.AQ_Spectrum)


def read(path: Path) -> Reading:
    """Header and object of a file of any kind: `header, history = aq_data.read("x.sth.csv")`.

    A file that does not read raises `FileError`, one that is not there `FileNotFoundError`.
    """
    name = os.fsdecode(path)
    kind = _core.kindOfFile(name)
    if kind == FileKind.Unknown:
        with open(name, "rb"):  # the system's own reason, if it cannot be opened
            raise FileError(name, 0, 0, "a file of a kind that is known", "another one")
    return _READERS[kind](name)


def write(obj: Any, path: Path, header: Any = None) -> None:
    """Writes an object, what `read` gave, or a dataset; without a header it gets a new one.

    A dataset with masks is two files: `measurement` gives what to write into each. What would not
    come back as it is raises: records with other bands than the first, gaps between records.
    """
    path = os.fsdecode(path)
    if isinstance(obj, tuple):
        if isinstance(obj, Tracking) or len(obj) != 2:
            raise TypeError(f"expected (header, object), found {type(obj).__name__} of {len(obj)}")
        own_header, obj = obj
        header = own_header if header is None else header
    elif hasattr(obj, "data_vars"):
        from .restore import from_xarray

        reading = from_xarray(obj)
        if "mask_mode" in obj.variables and not isinstance(reading.data, _core.AQ_MaskMap):
            raise ValueError(
                "expected a dataset for one file, found levels and masks: write both readings of"
                " measurement(dataset), or drop_vars('mask_mode')"
            )
        write(reading, path, header)
        return
    if isinstance(obj, _core.AQ_DataINI):
        obj.writeFile(path)
        return
    for model, (file_class, header_class) in _WRITERS.items():
        if isinstance(obj, model):
            if isinstance(obj, _TABLES):
                _core._checkWritable(obj)
            file_class().writeFile(path, header_class() if header is None else header, obj)
            return
    raise TypeError(f"expected an object that has a file, found {type(obj).__name__}")
