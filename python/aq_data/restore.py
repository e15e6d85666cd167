"""The objects of labelled datasets."""

from __future__ import annotations

from typing import Any

import numpy as np
import xarray as xr

from . import _core
from .attributes import HEADERS, header_of, kept, need, need_once, restored
from .files import Reading
from .labelled import EMISSION, GEOMETRY, METRICS, POSITION, RECORD_TIMES


def _by_band(ds: xr.Dataset, name: str, *dims: str) -> tuple[xr.Dataset, int]:
    """A dataset with its bands ascending, and the lowest of them, where the objects begin."""
    need(ds, name, "band")
    if set(ds[name].dims) != {*dims, "band"}:
        raise ValueError(
            f"expected {name} over {', '.join((*dims, 'band'))}, found it over"
            f" {', '.join(map(str, ds[name].dims)) or 'nothing'}"
        )
    ds = ds.sortby("band")
    bands = ds["band"].values
    if not bands.size:
        return ds, 17
    if bands.dtype.kind not in "iuf" or bands[0] != bands[0] // 1 or (np.diff(bands) != 1).any():
        raise ValueError(f"expected bands that follow each other, found {bands.tolist()}")
    return ds, int(bands[0])


def _by_record(ds: xr.Dataset) -> tuple[xr.Dataset, Any]:
    """A dataset in the order of its records, as the tables of the objects are, and their numbers."""
    if "record" not in ds.variables:
        return ds, None
    need_once(ds)
    ds = ds.isel({ds["record"].dims[0]: np.argsort(ds["record"].values, kind="stable")})
    return ds, ds["record"].values


def _table(ds: xr.Dataset, columns: Any) -> dict[str, Any]:
    return {column: ds[name].values for column, name, *_ in columns if name in ds.variables}


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
    return restored(history, kept(ds).get("settings") or {})  # type: ignore[no-any-return]


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
    return restored(made, kept(ds).get("settings") or {})  # type: ignore[no-any-return]


def _emission_from(ds: xr.Dataset) -> _core.AQ_EmtRcvTable:
    need(ds, "time", "reception_time")
    return _core.AQ_EmtRcvTable.from_numpy(_table(ds, EMISSION))


_MAKERS: dict[str, Any] = {
    "history": _history_from,
    "map": _map_from,
    "spectrum": _spectrum_from,
    "positions": _positions_from,
    "geometry": _geometry_from,
    "emission": _emission_from,
}


def _kind(ds: xr.Dataset) -> str:
    """What a dataset holds: as it says, else by its variables."""
    need(ds)
    marks = {"level": "history", "mask_mode": "map", "slant_range": "geometry", "x": "positions"}
    kind = kept(ds).get("kind") or next((k for v, k in marks.items() if v in ds.variables), None)
    if kind is None:
        raise ValueError(f"the dataset lacks all of {', '.join(marks)}")
    return str(kind)


def from_xarray(ds: xr.Dataset) -> Any:
    """The object of a dataset with its header, as `read` gives them.

    Of a history with its masks it is the history; `measurement` gives both.
    """
    kind = _kind(ds)
    name = "mask_header" if kind == "map" else "header"
    header = header_of(ds, name, HEADERS[kind]) if kind in HEADERS else None
    return Reading(header, _MAKERS[kind](ds))


def measurement(ds: xr.Dataset) -> tuple[Any, Any]:
    """History and map of a dataset, each with its header: `(Reading, Reading or None)`."""
    history = from_xarray(ds)
    if "mask_mode" not in ds.variables:
        return history, None
    return history, Reading(header_of(ds, "mask_header", _core.AQ_HeaderMask), _map_from(ds))
