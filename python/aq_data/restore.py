"""Converts labelled datasets back to objects."""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import xarray as xr

from . import _core
from .attributes import CLOCK, CLOCK_BESIDE, DATE, HEADERS, changed_words, kept, need, need_once
from .attributes import restored
from .reading import Reading
from .labelled import EMISSION, GEOMETRY, METRICS, MICROPHONE, PARAMETERS, POSITION, RECORD_TIMES
from .times import DAY, days_of, of_day


def _by_band(ds: xr.Dataset, name: str, *dims: str) -> tuple[xr.Dataset, int]:
    """The dataset with its bands in ascending order, and the lowest band."""
    need(ds, name, "band")
    if set(ds[name].dims) != {*dims, "band"}:
        raise ValueError(
            f"expected {name} over {', '.join((*dims, 'band'))}, found {name} over"
            f" {', '.join(map(str, ds[name].dims)) or 'nothing'}"
        )
    ds = ds.sortby("band")
    bands = ds["band"].values
    if not bands.size:
        return ds, 17
    if bands.dtype.kind not in "iuf" or bands[0] != bands[0] // 1 or (np.diff(bands) != 1).any():
        raise ValueError(f"expected consecutive bands, found {bands.tolist()}")
    return ds, int(bands[0])


def _by_record(ds: xr.Dataset) -> tuple[xr.Dataset, Any]:
    """The dataset sorted by record number, as the tables of the objects are, and those numbers."""
    if "record" not in ds.variables:
        return ds, None
    need_once(ds)
    ds = ds.isel({ds["record"].dims[0]: np.argsort(ds["record"].values, kind="stable")})
    return ds, ds["record"].values


def _column(ds: xr.Dataset, name: str, units: str) -> Any:
    if units in (CLOCK, CLOCK_BESIDE):
        return of_day(ds, name)
    return days_of(ds[name].values) if units == DATE else ds[name].values


def _table(ds: xr.Dataset, columns: Any) -> dict[str, Any]:
    return {
        column: _column(ds, name, units)
        for column, name, units, _ in columns
        if name in ds.variables
    }


def _settings(ds: xr.Dataset, target: Any) -> Any:
    """The target with the dataset's settings; its start time moves with the first record."""
    restored(target, kept(ds).get("settings") or {})
    before = (kept(ds).get("first") or {}).get("time")
    if before is None or "time" not in ds.variables or not ds["time"].size:
        return target
    shift = float(ds["time"].values[0]) - before
    if shift:
        start = target.startTime
        days, seconds = divmod(start.TODseconds + shift, DAY)
        start.assignSeconds(seconds, start.RelSeconds)
        start.CurrentDate += days if start.CurrentDate else 0
    return target


def _history_from(ds: xr.Dataset) -> _core.AQ_SpectralTimeHistory:
    ds, low = _by_band(ds, "level", "time")
    ds, records = _by_record(ds)
    level = ds["level"].transpose("time", "band").values
    history = _core.AQ_SpectralTimeHistory.from_numpy(level, low, records)
    times = _table(ds, RECORD_TIMES)
    if times:
        history.times = times
    metrics = {name: ds[name].values for name, *_ in METRICS if name in ds.variables}
    if metrics:
        history.metrics = metrics
    return _settings(ds, history)  # type: ignore[no-any-return]


def _map_from(ds: xr.Dataset) -> _core.AQ_MaskMap:
    ds, low = _by_band(ds, "mask_mode", "time")
    ds, records = _by_record(ds)
    arrays = [
        ds[name].transpose("time", "band").values
        for name in ("mask_mode", "mask_adjustment")
        if name in ds.variables
    ]
    made = _core.AQ_MaskMap.from_numpy(arrays[0], arrays[1] if arrays[1:] else None, low, records)
    if "last_good_band" in ds.variables:
        made.last_good_bands = ds["last_good_band"].values
    return made


def _spectrum_from(ds: xr.Dataset) -> _core.AQ_Spectrum:
    ds, low = _by_band(ds, "level")
    made = _core.AQ_Spectrum.from_numpy(ds["level"].values, low)
    return restored(made, kept(ds).get("settings") or {})  # type: ignore[no-any-return]


def _positions_from(ds: xr.Dataset) -> _core.AQ_PositionTimeHistory:
    need(ds, "time", "x", "y", "z")
    return _core.AQ_PositionTimeHistory.from_numpy(_table(ds, POSITION))


def _geometry_from(ds: xr.Dataset) -> _core.AQ_GeometryTimeHistory:
    need(ds, "time", "slant_range")
    ds, records = _by_record(ds)
    made = _core.AQ_GeometryTimeHistory.from_numpy(_table(ds, GEOMETRY), records)
    return _settings(ds, made)  # type: ignore[no-any-return]


def _emission_from(ds: xr.Dataset) -> _core.AQ_EmtRcvTable:
    need(ds, "time", "reception_time")
    return _core.AQ_EmtRcvTable.from_numpy(_table(ds, EMISSION))


def _microphone_from(ds: xr.Dataset) -> _core.AQ_Microphone:
    need(ds, *(name for _, name, _ in MICROPHONE))
    made = _core.AQ_Microphone()
    for own, name, _ in MICROPHONE:
        setattr(made, own, float(ds[name]))
    return made


def _parameters_from(ds: xr.Dataset) -> _core.AQ_DataINI:
    """Parameters from a dataset; an unknown number for the time stamp type counts as not set."""
    need(ds, *(name for _, name, *_ in PARAMETERS))
    values = dict(kept(ds).get("settings") or {})
    if values.get("NuTimg") not in [int(member) for member in _core.AQ_TimeStampType]:
        values.pop("NuTimg", None)
    made = restored(_core.AQ_DataINI(), values)
    for own, name, *_ in PARAMETERS:
        given = ds[name].item()
        setattr(made, own, int(given) if own.endswith("Rec") else float(given))
    return made  # type: ignore[no-any-return]


_MAKERS: dict[str, Any] = {
    "microphone": _microphone_from,
    "parameters": _parameters_from,
    "history": _history_from,
    "map": _map_from,
    "spectrum": _spectrum_from,
    "positions": _positions_from,
    "geometry": _geometry_from,
    "emission": _emission_from,
}


def _kind(ds: xr.Dataset) -> str:
    """The kind of a dataset: from its attribute, otherwise from its variables."""
    need(ds)
    marks = {"level": "history", "mask_mode": "map", "slant_range": "geometry"}
    marks.update(height="microphone", window_before="parameters", x="positions")
    kind = kept(ds).get("kind") or next((k for v, k in marks.items() if v in ds.variables), None)
    if kind is None:
        raise ValueError(f"the dataset lacks all of {', '.join(marks)}")
    return str(kind)


def _headers(ds: xr.Dataset, kind: str, data: Any) -> tuple[Any, Any]:
    """Headers of the object and of the map, updated from the dataset's attributes."""
    header, mask_header = (
        restored(cls(), kept(ds).get(name) or {}) if cls else None
        for name, cls in (
            ("header", HEADERS.get(kind) if kind != "map" else None),
            ("mask_header", _core.AQ_HeaderMask),
        )
    )
    changed_words(ds, kind, header, data, mask_header)
    return header, mask_header


def from_xarray(ds: xr.Dataset) -> Reading[Any, Any]:
    """The object of a dataset with its header, as from `read`: `(header, data)`.

    Records keep their numbers. If a dataset was cut or its times were changed, the start time
    moves by as much as the time of its first record. For a history with masks, returns the history;
    `measurement` returns both. Raises `ValueError` for a dataset that lacks what the object needs.

    >>> header, history = aq_data.from_xarray(ds.sel(time=slice(52205, 52215)))
    """
    kind = _kind(ds)
    data = _MAKERS[kind](ds)
    header, mask_header = _headers(ds, kind, data)
    return Reading(mask_header if kind == "map" else header, data)


# Datasets that were cut.


def _runs(numbers: Any) -> str:
    """Numbers as text: 3, 7 to 9."""
    parts = np.split(numbers, np.flatnonzero(np.diff(numbers) != 1) + 1)
    return ", ".join(f"{p[0]} to {p[-1]}" if len(p) > 1 else f"{p[0]}" for p in parts)


def _is_cut(ds: xr.Dataset) -> bool:
    """Whether the dataset's records differ from those it was made with."""
    before = (kept(ds).get("first") or {}).get("records")
    numbers = np.sort(ds["record"].values) if "record" in ds.variables else np.array([])
    now = [numbers.size, *map(int, numbers[:1]), *map(int, numbers[-1:])]
    return before is not None and now != before


def _renumbered(ds: xr.Dataset) -> tuple[xr.Dataset, list[str]]:
    """The dataset and comments for it. If it was cut, its records are numbered from 1, and a comment
    gives their old numbers.
    """
    if not _is_cut(ds) or not ds["record"].size:
        return ds, []
    ds, numbers = _by_record(ds)
    own = np.arange(1, len(numbers) + 1, dtype=np.int32)
    if np.array_equal(own, numbers):
        return ds, [f"Cut to records 1 to {own[-1]}"]
    ds = ds.assign_coords(record=(ds["record"].dims, own, ds["record"].attrs))
    return ds, [f"Records 1 to {own[-1]} were {_runs(numbers)}"]


def _without_source(header: _core.AQ_HeaderMask, comments: list[str]) -> list[str]:
    """If there are comments, the map was cut: removes the name and the date of the whole history
    from its header, and returns the first comment with that name added.
    """
    if not comments or not header.sGenerationFile:
        return comments
    comments = [f"{comments[0]} of the map of {header.sGenerationFile}"]
    header.sGenerationFile = ""
    header.aqGenerationDateTime = _core.AQ_Time()
    return comments


def _commented(header: Any, comments: list[str]) -> Any:
    name = "colCommentLines" if hasattr(header, "colCommentLines") else "cCommentLines"
    if comments:
        setattr(header, name, [*getattr(header, name), *comments])
    return header


def history_and_map(
    ds: xr.Dataset,
) -> tuple[_core.AQ_SpectralTimeHistory, Optional[_core.AQ_MaskMap]]:
    """History and map of a dataset, with its record numbers; `None` for the map if the dataset has
    no masks.
    """
    need(ds)
    return _history_from(ds), _map_from(ds) if "mask_mode" in ds.variables else None


def measurement(
    ds: xr.Dataset,
) -> tuple[
    Reading[_core.AQ_HeaderSTH, _core.AQ_SpectralTimeHistory],
    Optional[Reading[_core.AQ_HeaderMask, _core.AQ_MaskMap]],
]:
    """History and map of a dataset, each with its header, as `write` takes them; `None` for the map
    if the dataset has no masks.

    If a dataset with masks was cut, its records are numbered from 1, as a map requires, and a
    comment in both headers gives their old numbers. The map's header then no longer names the
    whole history, which the map does not fit: set `sGenerationFile` to the name of the cut history.
    Without masks, records keep their numbers.

    >>> history, mask = aq_data.measurement(ds.isel(time=slice(10, 50)))
    >>> aq_data.write(history, "cut.sth.csv")
    >>> aq_data.write(mask, "cut.mask.csv")
    """
    need(ds)
    if "mask_mode" not in ds.variables:
        return from_xarray(ds), None
    ds, comments = _renumbered(ds)
    history, mask = _history_from(ds), _map_from(ds)
    header, mask_header = _headers(ds, "history", history)
    map_comments = _without_source(mask_header, comments)
    return (
        Reading(_commented(header, comments), history),
        Reading(_commented(mask_header, map_comments), mask),
    )


def writable(ds: xr.Dataset) -> Reading[Any, Any]:
    """Like `from_xarray`, but renumbers the records of a cut dataset from 1 if the file requires
    it.
    """
    if _kind(ds) not in ("map", "geometry"):
        return from_xarray(ds)
    ds, comments = _renumbered(ds)
    header, data = from_xarray(ds)
    if isinstance(header, _core.AQ_HeaderMask):
        comments = _without_source(header, comments)
    return Reading(_commented(header, comments), data)
