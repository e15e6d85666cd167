"""Labelled datasets of the objects, and the objects from them again.

A dataset of a history has the dimensions `time`, one entry a record, and `band`.
"""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import xarray as xr

from . import _core
from .attributes import attach, attributes, band_coordinates, header_of, kept, need, plain
from .attributes import restored, variable
from .files import Reading

NO_DECISION = -1  # a flag of a mask variable: the row has no mask for the band

# Variables by the columns of the library's tables: name there, name here, unit, long name.
_RECORD_TIMES = (
    ("TODseconds", "time", "s", "time of day"),
    ("RelSeconds", "relative_time", "s", "time relative to the reference time"),
    ("CurrentDate", "date", "d", "days since 1899-12-30"),
)
_METRICS = (
    ("AWT", "dB", "A-weighted sound level"),
    ("CWT", "dB", "C-weighted sound level"),
    ("DWT", "dB", "D-weighted sound level"),
    ("OA", "dB", "overall sound level"),
    ("PNL", "PNdB", "perceived noise level"),
    ("PNLT", "TPNdB", "tone-corrected perceived noise level"),
    ("TONECOR", "dB", "tone correction"),
    ("TONEBND", "1", "band that caused the tone correction"),
    ("LGB", "1", "last good band"),
    ("INTEG", "1", "part of the record in the integration, flags"),
    ("Level", "dB", "overall level"),
)
_POSITION = _RECORD_TIMES + (
    ("X", "x", "", "first coordinate, in the unit of the file"),
    ("Y", "y", "", "second coordinate, in the unit of the file"),
    ("Z", "z", "", "height, in the unit of the file"),
)
_GEOMETRY = (
    ("Tm", "time", "s", "time of day of the record at the microphone"),
    ("Tm_RelSeconds", "relative_time", "s", "time of the record relative to the reference time"),
    ("Tm_CurrentDate", "date", "d", "date of the record, days since 1899-12-30"),
    ("Te", "emission_time", "s", "time of day of the emission"),
    ("Te_RelSeconds", "emission_relative_time", "s", "emission relative to the reference time"),
    ("Te_CurrentDate", "emission_date", "d", "date of the emission, days since 1899-12-30"),
    ("Tprope", "propagation_time", "s", "propagation time from emission to measurement"),
    ("Xe", "x", "", "first coordinate of the source at emission, in the unit of the file"),
    ("Ye", "y", "", "second coordinate of the source at emission, in the unit of the file"),
    ("Ze", "z", "", "height of the source at emission, in the unit of the file"),
    ("SRe", "slant_range", "", "slant range at emission, in the unit of the file"),
    ("THETAe", "theta", "degree", "first emission angle"),
    ("BETAe", "beta", "degree", "second emission angle"),
    ("debugTime", "debug_time", "", "free value for diagnostics"),
)
_EMISSION = (
    ("T", "time", "s", "time of day of the emission"),
    ("Tr", "reception_time", "s", "time of day of the reception"),
    ("X", "x", "", "first coordinate of the aircraft, in the unit of the file"),
    ("Y", "y", "", "second coordinate of the aircraft, in the unit of the file"),
    ("Z", "z", "", "height of the aircraft, in the unit of the file"),
    ("SR", "slant_range", "", "slant range, in the unit of the file"),
    ("Tprop", "propagation_time", "s", "propagation time"),
)


# Histories and maps.


def _flags(dims: tuple[str, str], values: Any, enum: Any, long_name: str) -> xr.Variable:
    flags = {NO_DECISION: "no_decision", **{int(m): m.name.lower() for m in enum}}
    values_and_meanings = {
        "flag_values": np.array(list(flags), dtype=np.int8),
        "flag_meanings": " ".join(flags.values()),
    }
    return variable(dims, values, "", long_name, **values_and_meanings)


def _table_variables(table: Any, columns: Any, dim: str) -> dict[str, xr.Variable]:
    return {
        name: variable(dim, np.ascontiguousarray(table[column]), units, long_name)
        for column, name, units, long_name in columns
    }


def _table(ds: xr.Dataset, columns: Any) -> dict[str, Any]:
    return {column: ds[name].values for column, name, *_ in columns if name in ds.variables}


def mask_variables(mask: _core.AQ_MaskMap) -> dict[str, xr.Variable]:
    modes, adjustments = mask.to_numpy()
    return {
        "mask_mode": _flags(("time", "band"), modes, _core.AQ_MASK_MODE, "masking decision"),
        "mask_adjustment": _flags(
            ("time", "band"), adjustments, _core.AQ_MASK_ADJUST, "adjustment of a masked level"
        ),
        "last_good_band": variable(
            "time", mask.last_good_bands, "1", "last good band; 0 all, 9999 none"
        ),
    }


def _mask_beside(history: _core.AQ_SpectralTimeHistory, mask: _core.AQ_MaskMap) -> dict[str, Any]:
    """The variables of a map, on the bands of a history with the same records."""
    if not np.array_equal(mask.records, history.records):
        raise ValueError(
            f"expected a map of the history's {len(history)} records, found {len(mask)} rows"
            " of other numbers"
        )
    if not np.isin(mask.bands, history.bands).all():
        raise ValueError("expected a map of the history's bands, found more of them")
    variables: dict[str, Any] = mask_variables(mask)
    for name in ("mask_mode", "mask_adjustment"):
        flags = variables[name]
        wide = np.full((len(history), len(history.bands)), NO_DECISION, dtype=np.int8)
        if flags.size:
            low = int(mask.bands[0] - history.bands[0])
            wide[:, low : low + flags.shape[1]] = flags.values
        variables[name] = variable(flags.dims, wide, "", **flags.attrs)
    return variables


def _metric_variables(history: _core.AQ_SpectralTimeHistory) -> dict[str, xr.Variable]:
    """The metrics that the history lists or that any record has."""
    table = history.metrics
    listed = {metric.name.rpartition("_")[2] for metric in history.Metrics.MetricTypes}
    return {
        name: variable("time", np.ascontiguousarray(table[name]), units, long_name)
        for name, units, long_name in _METRICS
        if name in listed or table[name].any()
    }


@attach(_core.AQ_SpectralTimeHistory, name="to_xarray")
def history_to_xarray(
    self: _core.AQ_SpectralTimeHistory,
    mask: Optional[_core.AQ_MaskMap] = None,
    header: Optional[_core.AQ_HeaderSTH] = None,
    mask_header: Optional[_core.AQ_HeaderMask] = None,
) -> xr.Dataset:
    """A dataset with `level(time, band)` in dB, its coordinates, masks and metrics."""
    times = _table_variables(self.times, _RECORD_TIMES, "time")
    level = variable(
        ("time", "band"),
        self.to_numpy(),
        "dB",
        "one-third-octave band sound pressure level",
        standard_name="sound_pressure_level_in_air",
    )
    variables = {"level": level, **_metric_variables(self)}
    if mask is not None:
        variables.update(_mask_beside(self, mask))
    coordinates = {
        **times,
        "record": variable("time", self.records, "1", "record number"),
        **band_coordinates(self.bands),
    }
    attrs = attributes("history", header, self, mask_header=mask_header)
    return xr.Dataset(variables, coordinates, attrs)


def _history_from(ds: xr.Dataset) -> _core.AQ_SpectralTimeHistory:
    need(ds, "level", "band")
    bands, level = ds["band"].values, ds["level"].transpose("time", "band")
    if len(bands) and not np.array_equal(bands, np.arange(bands[0], bands[0] + len(bands))):
        raise ValueError("expected bands that follow each other, found gaps")
    records = ds["record"].values if "record" in ds.variables else None
    low = int(bands[0]) if len(bands) else 17
    history = _core.AQ_SpectralTimeHistory.from_numpy(level.values, low, records)
    times = _table(ds, _RECORD_TIMES)
    if times:
        history.times = times
    metrics = {name: ds[name].values for name, *_ in _METRICS if name in ds.variables}
    if metrics:
        history.metrics = metrics
    return restored(history, kept(ds).get("settings") or {})  # type: ignore[no-any-return]


def _map_from(ds: xr.Dataset) -> _core.AQ_MaskMap:
    need(ds, "mask_mode", "band")
    arrays = [
        ds[name].transpose("time", "band").values
        for name in ("mask_mode", "mask_adjustment")
        if name in ds.variables
    ]
    records = ds["record"].values if "record" in ds.variables else None
    low = int(ds["band"].values[0]) if ds.sizes["band"] else 17
    made = _core.AQ_MaskMap.from_numpy(arrays[0], arrays[1] if arrays[1:] else None, low, records)
    if "last_good_band" in ds.variables:
        made.last_good_bands = ds["last_good_band"].values
    return made


@attach(_core.AQ_MaskMap, name="to_xarray")
def map_to_xarray(
    self: _core.AQ_MaskMap, header: Optional[_core.AQ_HeaderMask] = None
) -> xr.Dataset:
    """A dataset with `mask_mode(time, band)`, `mask_adjustment` and the last good band."""
    record = variable("time", self.records, "1", "record number")
    return xr.Dataset(
        mask_variables(self),
        {"record": record, **band_coordinates(self.bands)},
        attributes("map", None, mask_header=header),
    )


@attach(_core.AQ_Spectrum, name="to_xarray")
def spectrum_to_xarray(
    self: _core.AQ_Spectrum, header: Optional[_core.AQ_HeaderSSR] = None
) -> xr.Dataset:
    """A dataset with `level(band)` in dB."""
    level = variable("band", self.to_numpy(), "dB", "one-third-octave band sound pressure level")
    settings = {"Level": self.Level, "Time": plain(self.Time), "Metric": plain(self.Metric)}
    attrs = attributes("spectrum", header, settings)
    return xr.Dataset({"level": level}, band_coordinates(self.bands), attrs)


def _spectrum_from(ds: xr.Dataset) -> _core.AQ_Spectrum:
    need(ds, "level", "band")
    low = int(ds["band"].values[0]) if ds.sizes["band"] else 17
    made = _core.AQ_Spectrum.from_numpy(ds["level"].values, low)
    return restored(made, kept(ds).get("settings") or {})  # type: ignore[no-any-return]


# Series of positions and of geometry.


def _series_to_xarray(kind: str, series: Any, columns: Any, dim: str, header: Any) -> xr.Dataset:
    variables = _table_variables(series.to_numpy(), columns, dim)
    numbers = np.arange(1, len(series) + 1, dtype=np.int32)
    coordinates = {
        name: variables.pop(name) for name in ("time", "relative_time", "date") if name in variables
    }
    coordinates["record"] = variable(dim, numbers, "1", "record number")
    return xr.Dataset(variables, coordinates, attributes(kind, header, series))


@attach(_core.AQ_PositionTimeHistory, name="to_xarray")
def positions_to_xarray(
    self: _core.AQ_PositionTimeHistory, header: Optional[_core.AQ_HeaderPTH] = None
) -> xr.Dataset:
    """A dataset with `x`, `y` and `z` over `time`, the time of day in seconds."""
    return _series_to_xarray("positions", self, _POSITION, "time", header)


@attach(_core.AQ_GeometryTimeHistory, name="to_xarray")
def geometry_to_xarray(
    self: _core.AQ_GeometryTimeHistory, header: Optional[_core.AQ_HeaderGTH] = None
) -> xr.Dataset:
    """A dataset with the emission time, position, slant range and angles of each record."""
    return _series_to_xarray("geometry", self, _GEOMETRY, "time", header)


@attach(_core.AQ_EmtRcvTable, name="to_xarray")
def emission_to_xarray(self: _core.AQ_EmtRcvTable) -> xr.Dataset:
    """A dataset with reception time, position and slant range over the time of emission."""
    return _series_to_xarray("emission", self, _EMISSION, "time", None)


def _series_from(ds: xr.Dataset, cls: Any, columns: Any, *needed: str) -> Any:
    need(ds, *needed)
    return restored(cls.from_numpy(_table(ds, columns)), kept(ds).get("settings") or {})


_SERIES: dict[str, tuple[Any, Any, tuple[str, ...]]] = {
    "positions": (_core.AQ_PositionTimeHistory, _POSITION, ("time", "x", "y", "z")),
    "geometry": (_core.AQ_GeometryTimeHistory, _GEOMETRY, ("time", "slant_range")),
    "emission": (_core.AQ_EmtRcvTable, _EMISSION, ("time", "reception_time")),
}
_HEADERS: dict[str, Any] = {
    "history": _core.AQ_HeaderSTH,
    "map": _core.AQ_HeaderMask,
    "spectrum": _core.AQ_HeaderSSR,
    "positions": _core.AQ_HeaderPTH,
    "geometry": _core.AQ_HeaderGTH,
}


def _kind(ds: xr.Dataset) -> str:
    """What a dataset holds: as it says, else by its variables."""
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
    if kind == "map":
        return Reading(header_of(ds, "mask_header", _HEADERS[kind]), _map_from(ds))
    header = header_of(ds, "header", _HEADERS[kind]) if kind in _HEADERS else None
    if kind in _SERIES:
        cls, columns, needed = _SERIES[kind]
        return Reading(header, _series_from(ds, cls, columns, *needed))
    return Reading(header, (_history_from if kind == "history" else _spectrum_from)(ds))


def measurement(ds: xr.Dataset) -> tuple[Any, Any]:
    """History and map of a dataset, each with its header: `(Reading, Reading or None)`."""
    history = from_xarray(ds)
    if "mask_mode" not in ds.variables:
        return history, None
    return history, Reading(header_of(ds, "mask_header", _core.AQ_HeaderMask), _map_from(ds))
