"""Labelled datasets and tables of the objects, and the objects from them again.

A dataset of a history has the dimensions `time`, one entry a record, and `band`. What has no place
in an array, headers and settings, travels in its attribute `aq` as JSON, so that everything comes
back from a netCDF file too.
"""

from __future__ import annotations

import json
from typing import Any, Callable, Optional, TypeVar

import numpy as np
import numpy.typing as npt
import pandas as pd
import xarray as xr

from . import _core

Function = TypeVar("Function", bound=Callable[..., Any])

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
_TITLES = ("sProjectName", "ProjectName")
_SOURCES = ("sGeneratedBy", "GeneratedBy")
_COMMENTS = ("cCommentLines", "colCommentLines")


def attach(*classes: type, name: str) -> Callable[[Function], Function]:
    """Makes a function a method of classes of the library."""

    def decorate(function: Function) -> Function:
        for cls in classes:
            setattr(cls, name, function)
        return function

    return decorate


def nominal_frequency(bands: npt.ArrayLike) -> npt.NDArray[np.float64]:
    """Nominal centre frequencies in Hz of one-third-octave bands, by their numbers."""
    series = np.array([1.0, 1.25, 1.6, 2.0, 2.5, 3.15, 4.0, 5.0, 6.3, 8.0])
    decade, step = np.divmod(np.asarray(bands, dtype=int), 10)
    return np.asarray(np.round(series[step] * 10.0**decade, 9))


# Headers and settings as plain values and back.


def _plain(value: Any) -> Any:
    if isinstance(value, (_core.TextCollection, _core.MetricTypeCollection)):
        return list(value)
    if isinstance(value, _core.AQ_Time):
        return [value.CurrentDate, value.TODseconds, value.RelSeconds]
    if hasattr(value, "_fields"):
        plain = {name: _plain(getattr(value, name)) for name in value._fields}
        if isinstance(value, _core.AQ_MetricSummary):
            plain["MetricTypes"] = _plain(value.MetricTypes)
        return plain
    return value


def _restored(target: Any, plain: dict[str, Any]) -> Any:
    for name, value in plain.items():
        if name == "MetricTypes":
            for metric in value:
                target.MetricType(metric)
        elif isinstance(getattr(target, name), _core.AQ_Time):
            time = getattr(target, name)
            time.CurrentDate = value[0]
            time.assignSeconds(*value[1:])  # not through the setter, which wraps into the day
        elif isinstance(value, dict):
            _restored(getattr(target, name), value)
        else:
            setattr(target, name, value)
    return target


def _attributes(kind: str, header: Any, settings: Any = None, **more: Any) -> dict[str, Any]:
    """Attributes of a dataset: those of the CF conventions for people, and all of it as JSON."""

    def first(names: tuple[str, ...]) -> Any:
        return next((getattr(header, n) for n in names if hasattr(header, n)), "")

    kept = {"kind": kind, "header": _plain(header), "settings": _plain(settings)}
    kept.update({name: _plain(value) for name, value in more.items()})
    readable = {
        "title": first(_TITLES),
        "source": first(_SOURCES),
        "comment": "\n".join(first(_COMMENTS)),
    }
    text = {n: v.encode(errors="replace").decode() for n, v in readable.items() if v}
    return {"Conventions": "CF-1.8", **text, "aq": json.dumps(kept)}


def _kept(ds: xr.Dataset) -> dict[str, Any]:
    return dict(json.loads(ds.attrs.get("aq", "{}")))


def _header(ds: xr.Dataset, name: str, cls: type) -> Any:
    return _restored(cls(), _kept(ds).get(name) or {})


def _need(ds: xr.Dataset, *names: str) -> None:
    missing = [name for name in names if name not in ds.variables]
    if missing:
        raise ValueError(f"the dataset lacks {', '.join(missing)}")


# Histories and maps.


def _flags(dims: tuple[str, str], values: Any, enum: Any, long_name: str) -> xr.Variable:
    flags = {NO_DECISION: "no_decision", **{int(m): m.name.lower() for m in enum}}
    values_and_meanings = {
        "flag_values": np.array(list(flags), dtype=np.int8),
        "flag_meanings": " ".join(flags.values()),
    }
    return variable(dims, values, "", long_name, **values_and_meanings)


def variable(dims: Any, values: Any, units: str, long_name: str, **more: Any) -> xr.Variable:
    attrs = {"units": units} if units else {}
    attrs.update(long_name=long_name, **more)
    return xr.Variable(dims, values, attrs)  # type: ignore[no-untyped-call]


def band_coordinates(bands: Any) -> dict[str, xr.Variable]:
    return {
        "band": variable("band", bands, "1", "one-third-octave band number"),
        "frequency": variable(
            "band",
            nominal_frequency(bands),
            "Hz",
            "nominal centre frequency",
            standard_name="sound_frequency",
        ),
    }


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
    attrs = _attributes("history", header, self, mask_header=mask_header)
    return xr.Dataset(variables, coordinates, attrs)


def _history_from(ds: xr.Dataset) -> _core.AQ_SpectralTimeHistory:
    _need(ds, "level", "band")
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
    return _restored(history, _kept(ds).get("settings") or {})  # type: ignore[no-any-return]


def _map_from(ds: xr.Dataset) -> _core.AQ_MaskMap:
    _need(ds, "mask_mode", "band")
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
        _attributes("map", None, mask_header=header),
    )


@attach(_core.AQ_Spectrum, name="to_xarray")
def spectrum_to_xarray(
    self: _core.AQ_Spectrum, header: Optional[_core.AQ_HeaderSSR] = None
) -> xr.Dataset:
    """A dataset with `level(band)` in dB."""
    level = variable("band", self.to_numpy(), "dB", "one-third-octave band sound pressure level")
    kept = {"Level": self.Level, "Time": _plain(self.Time), "Metric": _plain(self.Metric)}
    attrs = _attributes("spectrum", header, kept)
    return xr.Dataset({"level": level}, band_coordinates(self.bands), attrs)


def _spectrum_from(ds: xr.Dataset) -> _core.AQ_Spectrum:
    _need(ds, "level", "band")
    low = int(ds["band"].values[0]) if ds.sizes["band"] else 17
    made = _core.AQ_Spectrum.from_numpy(ds["level"].values, low)
    return _restored(made, _kept(ds).get("settings") or {})  # type: ignore[no-any-return]


# Series of positions and of geometry.


def _series_to_xarray(kind: str, series: Any, columns: Any, dim: str, header: Any) -> xr.Dataset:
    variables = _table_variables(series.to_numpy(), columns, dim)
    numbers = np.arange(1, len(series) + 1, dtype=np.int32)
    coordinates = {
        name: variables.pop(name) for name in ("time", "relative_time", "date") if name in variables
    }
    coordinates["record"] = variable(dim, numbers, "1", "record number")
    return xr.Dataset(variables, coordinates, _attributes(kind, header, series))


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
    _need(ds, *needed)
    return _restored(cls.from_numpy(_table(ds, columns)), _kept(ds).get("settings") or {})


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
    kind = _kept(ds).get("kind") or next((k for v, k in marks.items() if v in ds.variables), None)
    if kind is None:
        raise ValueError(f"the dataset lacks all of {', '.join(marks)}")
    return str(kind)


def from_xarray(ds: xr.Dataset) -> Any:
    """The object of a dataset with its header, as `read` gives them.

    Of a history with its masks it is the history; `measurement` gives both.
    """
    from .files import Reading

    kind = _kind(ds)
    if kind == "map":
        return Reading(_header(ds, "mask_header", _HEADERS[kind]), _map_from(ds))
    header = _header(ds, "header", _HEADERS[kind]) if kind in _HEADERS else None
    if kind in _SERIES:
        cls, columns, needed = _SERIES[kind]
        return Reading(header, _series_from(ds, cls, columns, *needed))
    return Reading(header, (_history_from if kind == "history" else _spectrum_from)(ds))


def measurement(ds: xr.Dataset) -> tuple[Any, Any]:
    """History and map of a dataset, each with its header: `(Reading, Reading or None)`."""
    from .files import Reading

    history = from_xarray(ds)
    if "mask_mode" not in ds.variables:
        return history, None
    return history, Reading(_header(ds, "mask_header", _core.AQ_HeaderMask), _map_from(ds))


# Tables.


@attach(_core.AQ_SpectralTimeHistory, name="to_pandas")
def history_to_pandas(
    self: _core.AQ_SpectralTimeHistory,
    mask: Optional[_core.AQ_MaskMap] = None,
    tidy: bool = False,
) -> pd.DataFrame:
    """Levels in dB by record and band; tidy: one row a level, with times, frequency and masks."""
    if tidy:
        return _tidy(self.to_xarray(mask), ["record", "band"])
    index = pd.Index(self.records, name="record")
    return pd.DataFrame(self.to_numpy(mask), index, pd.Index(self.bands, name="band"))


@attach(_core.AQ_MaskMap, name="to_pandas")
def map_to_pandas(self: _core.AQ_MaskMap, tidy: bool = False) -> pd.DataFrame:
    """Mask modes by record and band; tidy: one row a mask, with adjustment and last good band."""
    if tidy:
        return _tidy(self.to_xarray(), ["record", "band"])
    index = pd.Index(self.records, name="record")
    return pd.DataFrame(self.to_numpy()[0], index, pd.Index(self.bands, name="band"))


def _tidy(ds: xr.Dataset, keys: list[str]) -> pd.DataFrame:
    frame = ds.reset_coords().to_dataframe().reset_index()
    return frame[keys + [name for name in frame.columns if name not in keys]]


@attach(
    _core.AQ_PositionTimeHistory,
    _core.AQ_GeometryTimeHistory,
    _core.AQ_EmtRcvTable,
    name="to_pandas",
)
def series_to_pandas(self: Any) -> pd.DataFrame:
    """One row an entry, numbered from 1; the columns are those of `to_numpy`."""
    frame = pd.DataFrame(self.to_numpy())
    frame.index = pd.RangeIndex(1, len(frame) + 1, name="record")
    return frame
