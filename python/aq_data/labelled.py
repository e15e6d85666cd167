"""Converts the objects to labelled datasets; `restore` converts them back.

A dataset of a history has the dimensions `time`, one entry per record, and `band`.
"""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import xarray as xr

from . import _core
from .attributes import CLOCK, CLOCK_BESIDE, DATE, LENGTH, NO_DECISION, attach, attributes
from .attributes import band_coordinates, expect, flags, level_variable, plain, table_variables
from .attributes import variable
from .times import OWN

# The variables made from the columns of the library's tables: column, variable, unit, long name.
# Variables of metrics have the names of their columns; the caller gives a microphone's unit.
RECORD_TIMES = (
    ("TODseconds", "time", CLOCK, "time of day, not wrapped at midnight"),
    ("RelSeconds", "relative_time", "s", "time relative to the reference time"),
    ("CurrentDate", "date", DATE, "date"),
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
    ("INTEG", "1", "role of the record in the event, flags"),
    ("Level", "dB", "overall level"),
)
POSITION = RECORD_TIMES + (
    ("X", "x", LENGTH, "first coordinate"),
    ("Y", "y", LENGTH, "second coordinate"),
    ("Z", "z", LENGTH, "height"),
)
GEOMETRY = (
    ("Tm", "time", CLOCK, "time of day of the record at the microphone, not wrapped at midnight"),
    ("Tm_RelSeconds", "relative_time", "s", "time of the record relative to the reference time"),
    ("Tm_CurrentDate", "date", DATE, "date of the record"),
    (
        "Te",
        "emission_time",
        CLOCK_BESIDE,
        "time of day of the emission, nearest to that of the record",
    ),
    (
        "Te_RelSeconds",
        "emission_relative_time",
        "s",
        "time of emission relative to the reference time",
    ),
    ("Te_CurrentDate", "emission_date", DATE, "date of the emission"),
    ("Tprope", "propagation_time", "s", "propagation time from emission to measurement"),
    ("Xe", "x", LENGTH, "first coordinate of the source at emission"),
    ("Ye", "y", LENGTH, "second coordinate of the source at emission"),
    ("Ze", "z", LENGTH, "height of the source at emission"),
    ("SRe", "slant_range", LENGTH, "slant range at emission"),
    ("THETAe", "theta", "degree", "first emission angle"),
    ("BETAe", "beta", "degree", "second emission angle"),
    ("debugTime", "debug_time", "1", "free value for diagnostics"),
)
EMISSION = (
    ("T", "time", CLOCK, "time of day of the emission, not wrapped at midnight"),
    (
        "Tr",
        "reception_time",
        CLOCK_BESIDE,
        "time of day of the reception, nearest to the emission's",
    ),
    ("X", "x", LENGTH, "first coordinate of the aircraft"),
    ("Y", "y", LENGTH, "second coordinate of the aircraft"),
    ("Z", "z", LENGTH, "height of the aircraft"),
    ("SR", "slant_range", LENGTH, "slant range"),
    ("Tprop", "propagation_time", "s", "propagation time"),
)
MICROPHONE = (
    ("X", "x", "first coordinate"),
    ("Y", "y", "second coordinate"),
    ("Z", "z", "height of the ground"),
    ("Height", "height", "height of the microphone above the ground"),
)
PARAMETERS = (
    ("CalAdj", "calibration_adjustment", "dB", "calibration adjustment"),
    ("PrWndo", "window_before", "s", "window before the event"),
    ("PoWndo", "window_after", "s", "window after the event"),
    ("LoRec", "first_record", "1", "first record, 0 when not set"),
    ("HiRec", "last_record", "1", "last record, 0 when not set"),
)
ANGLES = ("degree", "rad")  # units of angles, which files do not name
UNITS = ("m", "km", "ft", "nautical_mile")  # units of lengths, which files do not name


# Histories and maps.


def mask_variables(modes: Any, adjustments: Any, last_good_bands: Any) -> dict[str, xr.Variable]:
    dims = ("time", "band")
    return {
        "mask_mode": flags(dims, modes, _core.AQ_MASK_MODE, "masking decision"),
        "mask_adjustment": flags(
            dims, adjustments, _core.AQ_MASK_ADJUST, "adjustment of a masked level"
        ),
        "last_good_band": variable(
            "time",
            last_good_bands,
            "1",
            "last good band; 0 if no band from 29 up is masked, 9999 if bands 28 and 29 are masked",
        ),
    }


def _first(records: Any, times: Any = None) -> dict[str, Any]:
    """What identifies a dataset before it is cut: the number of records, the first and last record
    number, and the time of the first record.
    """
    first: dict[str, Any] = {
        "records": [len(records), *map(int, records[:1]), *map(int, records[-1:])]
    }
    if times is not None and len(times):
        first["time"] = float(times[0])
    return first


def _named(attrs: dict[str, Any], coordinates: dict[str, Any]) -> dict[str, Any]:
    """The attributes, without `Conventions` if the times do not all ascend, since the CF
    conventions require that they do.
    """
    time = coordinates.get("time")
    if time is not None and not (np.diff(time.values) > 0).all():
        del attrs["Conventions"]
    return attrs


def check_unit(unit: str) -> str:
    if unit not in UNITS:
        raise ValueError(f"expected a unit of length ({', '.join(UNITS)}), found {unit!r}")
    return unit


def check_map(history: _core.AQ_SpectralTimeHistory, mask: _core.AQ_MaskMap) -> None:
    """Rejects a map whose records are not those of the history, or with bands the history lacks."""
    expect(mask, _core.AQ_MaskMap, "mask")
    if not np.array_equal(mask.records, history.records):
        raise ValueError(
            f"expected a map of the history's {len(history)} records, found {len(mask)} rows"
            " with other numbers"
        )
    own, narrow = history.bands, mask.bands  # each array is ascending, without gaps
    if narrow.size and not (own.size and own[0] <= narrow[0] and narrow[-1] <= own[-1]):
        raise ValueError("expected a map of the history's bands, found other bands")


def _mask_beside(history: _core.AQ_SpectralTimeHistory, mask: _core.AQ_MaskMap) -> dict[str, Any]:
    """The variables of a map, on the bands of a history with the same records."""
    check_map(history, mask)
    wide = np.full((2, len(history), len(history.bands)), NO_DECISION, dtype=np.int8)
    if mask.bands.size:
        wide[:, :, np.searchsorted(history.bands, mask.bands)] = mask.to_numpy()
    return mask_variables(wide[0], wide[1], mask.last_good_bands)


def _metric_variables(history: _core.AQ_SpectralTimeHistory) -> dict[str, xr.Variable]:
    """The metrics that the history lists or any record has."""
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
    """A dataset with `level(time, band)` in dB, NaN where a record has no level in a band.

    Its coordinates are `time` and `relative_time` (s), `record`, `band`, `frequency` (Hz), `date`
    if any record has one, and `time_of_day` (s) if the history's own times differ from `time`. A
    map adds `mask_mode` and `mask_adjustment(time, band)` (flags, -1 where a row has no mask) and
    `last_good_band(time)`. The metrics of the history are variables too; headers and settings go
    into the attributes. Raises `ValueError` for a map whose records are not those of the history,
    or with bands that the history lacks.

    >>> ds = history.to_xarray(mask, header, mask_header)
    >>> ds.level.sel(time=52210, method="nearest")
    """
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
    first = _first(self.records, times["time"].values)
    attrs = attributes("history", header, self, mask_header, first)
    return xr.Dataset(variables, coordinates, _named(attrs, coordinates))


@attach(_core.AQ_MaskMap, name="to_xarray")
def map_to_xarray(
    self: _core.AQ_MaskMap, header: Optional[_core.AQ_HeaderMask] = None
) -> xr.Dataset:
    """A dataset with `mask_mode` and `mask_adjustment(time, band)` (flags, -1 where a row has no
    mask), and `last_good_band(time)` (0 if no band from 29 up is masked, 9999 if bands 28 and 29
    both are).

    >>> (mask.to_xarray().mask_mode > 0).sum()
    """
    record = variable("time", self.records, "1", "record number")
    modes, adjustments = self.to_numpy()
    return xr.Dataset(
        mask_variables(modes, adjustments, self.last_good_bands),
        {"record": record, **band_coordinates(self.bands)},
        attributes("map", None, mask_header=header, first=_first(self.records)),
    )


@attach(_core.AQ_Spectrum, name="to_xarray")
def spectrum_to_xarray(
    self: _core.AQ_Spectrum, header: Optional[_core.AQ_HeaderSSR] = None
) -> xr.Dataset:
    """A dataset with `level(band)` in dB, NaN for a band within the range that has no level.

    >>> spectrum.to_xarray().level.sel(band=30)
    """
    level = level_variable("band", self.to_numpy())
    settings = {"Level": self.Level, "Time": plain(self.Time), "Metric": plain(self.Metric)}
    attrs = attributes("spectrum", header, settings)
    return xr.Dataset({"level": level}, band_coordinates(self.bands), attrs)


# Positions, geometries, and tables of emission and reception.


def _series_to_xarray(
    kind: str, series: Any, columns: Any, header: Any = None, unit: str = "m"
) -> xr.Dataset:
    variables = table_variables(series.to_numpy(), columns, "time", check_unit(unit))
    numbers = getattr(series, "records", np.arange(1, len(series) + 1, dtype=np.int32))
    of_records = ("time", "time" + OWN, "relative_time", "date")
    coordinates = {name: variables.pop(name) for name in of_records if name in variables}
    coordinates["record"] = variable("time", numbers, "1", "record number")
    first = _first(numbers, coordinates["time"].values)
    attrs = attributes(kind, header, series, first=first)
    return xr.Dataset(variables, coordinates, _named(attrs, coordinates))


@attach(_core.AQ_PositionTimeHistory, name="to_xarray")
def positions_to_xarray(
    self: _core.AQ_PositionTimeHistory,
    header: Optional[_core.AQ_HeaderPTH] = None,
    unit: str = "m",
) -> xr.Dataset:
    """A dataset with `x`, `y` and `z` over `time`, the time of day in seconds.

    `unit` is the unit of the coordinates, which a file does not name: m, km, ft or nautical_mile;
    any other raises `ValueError`.

    >>> track.positions.to_xarray(unit="ft").z.max()
    """
    return _series_to_xarray("positions", self, POSITION, header, unit)


@attach(_core.AQ_GeometryTimeHistory, name="to_xarray")
def geometry_to_xarray(
    self: _core.AQ_GeometryTimeHistory,
    header: Optional[_core.AQ_HeaderGTH] = None,
    unit: str = "m",
    angle_unit: str = "degree",
) -> xr.Dataset:
    """A dataset over `time` (s) with the emission time, position, slant range, emission angles and
    propagation time of each record.

    `unit` is the length unit, as for positions, and `angle_unit` the angle unit, degree or rad,
    which depends on the program that computed the angles; any other raises `ValueError`.

    >>> geometry.to_xarray().slant_range.min()
    """
    if angle_unit not in ANGLES:
        raise ValueError(f"expected an angle unit ({', '.join(ANGLES)}), found {angle_unit!r}")
    ds = _series_to_xarray("geometry", self, GEOMETRY, header, unit)
    for name in ("theta", "beta"):
        ds[name].attrs["units"] = angle_unit
    return ds


@attach(_core.AQ_EmtRcvTable, name="to_xarray")
def emission_to_xarray(self: _core.AQ_EmtRcvTable, unit: str = "m") -> xr.Dataset:
    """A dataset of reception time, position, slant range and propagation time, indexed by
    emission time (s).

    `unit` is the length unit, as for positions.

    >>> table.to_xarray().reception_time - table.to_xarray().time
    """
    return _series_to_xarray("emission", self, EMISSION, None, unit)
