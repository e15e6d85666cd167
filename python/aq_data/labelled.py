"""Labelled datasets of the objects; `restore` has the way back.

A dataset of a history has the dimensions `time`, one entry a record, and `band`.
"""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import xarray as xr

from . import _core
from .attributes import NO_DECISION, attach, attributes, band_coordinates, expect, flags
from .attributes import level_variable, plain, table_variables, variable

# Variables by the columns of the library's tables: name there, name here, unit, long name.
RECORD_TIMES = (
    ("TODseconds", "time", "s", "time of day"),
    ("RelSeconds", "relative_time", "s", "time relative to the reference time"),
    ("CurrentDate", "date", "d", "days since 1899-12-30"),
)
METRICS = (
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
POSITION = RECORD_TIMES + (
    ("X", "x", "", "first coordinate, in the unit of the file"),
    ("Y", "y", "", "second coordinate, in the unit of the file"),
    ("Z", "z", "", "height, in the unit of the file"),
)
GEOMETRY = (
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
EMISSION = (
    ("T", "time", "s", "time of day of the emission"),
    ("Tr", "reception_time", "s", "time of day of the reception"),
    ("X", "x", "", "first coordinate of the aircraft, in the unit of the file"),
    ("Y", "y", "", "second coordinate of the aircraft, in the unit of the file"),
    ("Z", "z", "", "height of the aircraft, in the unit of the file"),
    ("SR", "slant_range", "", "slant range, in the unit of the file"),
    ("Tprop", "propagation_time", "s", "propagation time"),
)


# Histories and maps.


def mask_variables(modes: Any, adjustments: Any, last_good_bands: Any) -> dict[str, xr.Variable]:
    dims = ("time", "band")
    return {
        "mask_mode": flags(dims, modes, _core.AQ_MASK_MODE, "masking decision"),
        "mask_adjustment": flags(
            dims, adjustments, _core.AQ_MASK_ADJUST, "adjustment of a masked level"
        ),
        "last_good_band": variable(
            "time", last_good_bands, "1", "last good band; 0 all, 9999 none"
        ),
    }


def check_map(history: _core.AQ_SpectralTimeHistory, mask: _core.AQ_MaskMap) -> None:
    """Refuses a map that is not of the history's records and bands."""
    expect(mask, _core.AQ_MaskMap)
    if not np.array_equal(mask.records, history.records):
        raise ValueError(
            f"expected a map of the history's {len(history)} records, found {len(mask)} rows"
            " of other numbers"
        )
    own, narrow = history.bands, mask.bands  # each from a lowest to a highest
    if narrow.size and not (own.size and own[0] <= narrow[0] and narrow[-1] <= own[-1]):
        raise ValueError("expected a map of the history's bands, found more of them")


def _mask_beside(history: _core.AQ_SpectralTimeHistory, mask: _core.AQ_MaskMap) -> dict[str, Any]:
    """The variables of a map, on the bands of a history with the same records."""
    check_map(history, mask)
    wide = np.full((2, len(history), len(history.bands)), NO_DECISION, dtype=np.int8)
    if mask.bands.size:
        wide[:, :, np.searchsorted(history.bands, mask.bands)] = mask.to_numpy()
    return mask_variables(wide[0], wide[1], mask.last_good_bands)


def _metric_variables(history: _core.AQ_SpectralTimeHistory) -> dict[str, xr.Variable]:
    """The metrics that the history lists or that any record has."""
    table = history.metrics
    listed = {metric.name.rpartition("_")[2] for metric in history.Metrics.MetricTypes}
    return {
        name: variable("time", np.ascontiguousarray(table[name]), units, long_name)
        for name, units, long_name in METRICS
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
    times = table_variables(self.times, RECORD_TIMES, "time")
    level = level_variable(("time", "band"), self.to_numpy())
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


@attach(_core.AQ_MaskMap, name="to_xarray")
def map_to_xarray(
    self: _core.AQ_MaskMap, header: Optional[_core.AQ_HeaderMask] = None
) -> xr.Dataset:
    """A dataset with `mask_mode(time, band)`, `mask_adjustment` and the last good band."""
    record = variable("time", self.records, "1", "record number")
    modes, adjustments = self.to_numpy()
    return xr.Dataset(
        mask_variables(modes, adjustments, self.last_good_bands),
        {"record": record, **band_coordinates(self.bands)},
        attributes("map", None, mask_header=header),
    )


@attach(_core.AQ_Spectrum, name="to_xarray")
def spectrum_to_xarray(
    self: _core.AQ_Spectrum, header: Optional[_core.AQ_HeaderSSR] = None
) -> xr.Dataset:
    """A dataset with `level(band)` in dB."""
    level = level_variable("band", self.to_numpy())
    settings = {"Level": self.Level, "Time": plain(self.Time), "Metric": plain(self.Metric)}
    attrs = attributes("spectrum", header, settings)
    return xr.Dataset({"level": level}, band_coordinates(self.bands), attrs)


# Series of positions and of geometry.


def _series_to_xarray(kind: str, series: Any, columns: Any, dim: str, header: Any) -> xr.Dataset:
    variables = table_variables(series.to_numpy(), columns, dim)
    numbers = getattr(series, "records", np.arange(1, len(series) + 1, dtype=np.int32))
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
    return _series_to_xarray("positions", self, POSITION, "time", header)


@attach(_core.AQ_GeometryTimeHistory, name="to_xarray")
def geometry_to_xarray(
    self: _core.AQ_GeometryTimeHistory, header: Optional[_core.AQ_HeaderGTH] = None
) -> xr.Dataset:
    """A dataset with the emission time, position, slant range and angles of each record."""
    return _series_to_xarray("geometry", self, GEOMETRY, "time", header)


@attach(_core.AQ_EmtRcvTable, name="to_xarray")
def emission_to_xarray(self: _core.AQ_EmtRcvTable) -> xr.Dataset:
    """A dataset with reception time, position and slant range over the time of emission."""
    return _series_to_xarray("emission", self, EMISSION, "time", None)
