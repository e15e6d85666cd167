"""Noise metrics of spectra and histories, events, audits and emission geometry."""

from __future__ import annotations

from numbers import Integral, Real
from typing import Any, Iterator, NamedTuple, Optional, Union

import dask
import dask.array
import numpy as np
import numpy.typing as npt
import pandas as pd
import xarray as xr

from . import _core
from .attributes import NO_DECISION, band_coordinates, expect, need, variable
from .errors import Error
from .labelled import METRICS
from .restore import history_and_map

NAMES = [name for name, *_ in METRICS[:10]]  # AWT to INTEG, in the order of their numbers
_WORDS = {name: (units, long_name) for name, units, long_name in METRICS}
History = Union[_core.AQ_SpectralTimeHistory, xr.Dataset]
EVENT = {
    "EPNL": "epnl",
    "EPNL_with_band_sharing": "epnlWithBandSharing",
    "PNLTM": "pnltm",
    "band_sharing": "bandSharing",
    "duration_correction": "duration",
}
_LIMITS = ("first", "maximum", "last")
NO_RECORD = -1
RECORDS_PER_CHUNK = 4096  # several short files form one task and share its cost


def _pair(history: History, mask: Optional[_core.AQ_MaskMap]) -> tuple[Any, Any]:
    """The history and its map: `mask` or, if that is None, the map of a dataset with masks."""
    if isinstance(history, xr.Dataset):
        own, own_mask = history_and_map(history)
        return own, own_mask if mask is None else mask
    expect(history, _core.AQ_SpectralTimeHistory, "history")
    if mask is not None:
        expect(mask, _core.AQ_MaskMap, "mask")
    return history, mask


def event_words(event: Optional[_core.NoiseEvent], first_record: int) -> dict[str, Any]:
    """The values of an event by attribute name, with record numbers in place of indices."""
    if event is None:
        return {**dict.fromkeys(EVENT, np.nan), **dict.fromkeys(_LIMITS, NO_RECORD)}
    words: dict[str, Any] = {name: getattr(event, own) for name, own in EVENT.items()}
    for name in _LIMITS:
        place = getattr(event, name)
        words[name] = NO_RECORD if place is None else first_record + place
    return words


def metric_variables(values: Any, dim: str) -> dict[str, xr.Variable]:
    """The ten metrics as variables; `values` has a row per metric and a column per record."""
    return {name: variable(dim, values[place], *_WORDS[name]) for place, name in enumerate(NAMES)}


def metrics(history: History, mask: Optional[_core.AQ_MaskMap] = None) -> xr.Dataset:
    """The ten metrics of each record and the event.

    The dataset has the variables `AWT`, `CWT`, `DWT`, `OA`, `PNL`, `PNLT`, `TONECOR`, `TONEBND`,
    `LGB` and `INTEG` over `record`, and the coordinate `time`. The variables are doubles, NaN where
    there is no value (for example `LGB` without a map). The attributes describe the event: `EPNL`,
    `EPNL_with_band_sharing`, `PNLTM`, `band_sharing`, `duration_correction`, and the record numbers
    `first`, `maximum` and `last`, -1 if missing. A row of `mask` belongs to the record with
    the same number. Does not change the history.

    >>> m = aq_data.metrics(history, mask)
    >>> m.attrs["EPNL"], m.PNLT.sel(record=30)
    """
    own, own_mask = _pair(history, mask)
    numbers, time, values, event = _core.historyMetrics(own, own_mask)
    coordinates = {
        "record": variable("record", numbers, "1", "record number"),
        "time": variable("record", time, "s", "time of day"),
    }
    first = int(numbers[0]) if numbers.size else 0
    return xr.Dataset(metric_variables(values, "record"), coordinates, event_words(event, first))


def maskByAmbient(  # named as in C++
    history: _core.AQ_SpectralTimeHistory, ambient: _core.AQ_Spectrum, margin: float
) -> _core.AQ_MaskMap:
    """The masking map of a history from an ambient spectrum: masks levels less than `margin` dB
    above those of the ambient, and sets the last good band of each row.

    >>> mask = aq_data.maskByAmbient(history, ambient, 3)
    """
    expect(history, _core.AQ_SpectralTimeHistory, "history")
    expect(ambient, _core.AQ_Spectrum, "ambient")
    expect(margin, Real, "margin")
    return _core.maskByAmbient(history, ambient, margin)


def setMetrics(  # named as in C++
    history: _core.AQ_SpectralTimeHistory, map: Optional[_core.AQ_MaskMap] = None
) -> Optional[_core.NoiseEvent]:
    """Computes and stores the ten metrics of each record; returns the event, `None` if no record
    has a PNLT.

    The event's `first`, `maximum` and `last` count records from 0; `metrics(history).attrs` has
    record numbers.
    """
    expect(history, _core.AQ_SpectralTimeHistory, "history")
    if map is not None:
        expect(map, _core.AQ_MaskMap, "map")
    return _core.setMetrics(history, map)


def tone_correction(levels: npt.ArrayLike) -> npt.NDArray[Any]:
    """Tone corrections of levels in bands 17 to 40, given as an array `(records, 24)` or `(24,)`.

    Returns `correction` in dB, `band` (0 for none) and `last_band` (18 if there is no level at 80
    Hz) of each record. A level of NaN or 9999 is taken as missing.

    >>> aq_data.tone_correction(history.to_numpy())["correction"]
    """
    found = np.asanyarray(levels)
    rows = _core.toneCorrections(found[np.newaxis] if found.ndim == 1 else found)
    return rows[0] if found.ndim == 1 else rows  # type: ignore[no-any-return]


def epnl(
    pnlt: npt.ArrayLike,
    seconds: npt.ArrayLike = 0.5,
    tone_corrections: Optional[npt.ArrayLike] = None,
) -> _core.NoiseEvent:
    """The event of a series of PNLT values, NaN where a record has none.

    `seconds` is the duration of each record: one number for all, or one per record. Without
    `tone_corrections`, the band-sharing adjustment is 0. The event counts records from 0.

    >>> aq_data.epnl(m.PNLT, tone_corrections=m.TONECOR).epnl
    """
    corrections = np.empty(0) if tone_corrections is None else np.asarray(tone_corrections)
    return _core.noiseEvent(np.asarray(pnlt), np.atleast_1d(np.asarray(seconds)), corrections)


def explain(
    history: Union[History, _core.AQ_Spectrum],
    record: Optional[int] = None,
    mask: Optional[_core.AQ_MaskMap] = None,
) -> pd.DataFrame:
    """The steps of the tone correction of a record, or of a spectrum: one row per band from 80 Hz
    up.

    The columns are `frequency` in Hz; `level`, `slope`, `adjusted`, `adjusted_slope`, `mean_slope`,
    `background`, `difference` and `correction` in dB, NaN where a step has no value; and the flags
    `slope_marked` and `level_marked`, the latter for a level that is replaced to find the
    background. The attributes `correction`, `band` and `last_band` hold the result.

    >>> aq_data.explain(history, 30, mask)[["level", "background", "correction"]]
    """
    spectrum: Any = history
    row: Any = None
    if not isinstance(history, _core.AQ_Spectrum):
        expect(record, Integral, "record")
        own, own_mask = _pair(history, mask)
        if record not in own.records:
            raise ValueError(f"expected a record of the history, found {record}")
        spectrum = own.spectrum(record)
        if own_mask is not None and record in own_mask.records:
            row = own_mask.Row(record)
    frame = pd.DataFrame(_core.toneSteps(spectrum, row)).set_index("band")
    frame.insert(0, "frequency", band_coordinates(frame.index.to_numpy())["frequency"].values)
    best = frame["correction"].max() if len(frame) else 0.0
    found = int(frame["correction"].idxmax()) if best > 0 else 0
    last = int(frame.index[-1]) if len(frame) else 18
    frame.attrs.update(correction=float(best), band=found, last_band=last)
    return frame


def audit(
    history: History, mask: Optional[_core.AQ_MaskMap] = None, tolerance: float = 0.05
) -> pd.DataFrame:
    """The stored metrics of a history that differ from those computed from its levels: `record`,
    `metric`, `stored` and `computed`, NaN if the levels give no value.

    Levels and corrections differ if they are more than `tolerance` dB apart, bands and flags if
    they are not equal. Compares the last good band only if there is a map.

    >>> aq_data.audit(aq_data.from_xarray(xarray.open_dataset("season.nc")).data)
    """
    own, own_mask = _pair(history, mask)
    found = _core.auditMetrics(own, own_mask, tolerance)
    frame = pd.DataFrame(found, columns=["record", "metric", "stored", "computed"])
    frame["metric"] = [metric.name.rpartition("_")[2] for _, metric, *_ in found]
    return frame.astype({"record": "int16", "stored": float, "computed": float})


_core.FINDING_KINDS["metric"] = "a stored metric differs from the computed one"


def metric_findings(path: str) -> list[tuple[Any, ...]]:
    """The findings of `check` for a netCDF file: severity, kind, line, field, record, band,
    message.
    """
    try:
        with xr.open_dataset(path) as opened:
            ds = opened.load()
        if "level" not in ds.variables or not {*NAMES} & {*ds.variables}:
            return []
        differences = audit(ds)
    except (ValueError, OSError, Error) as error:
        return [("error", "unreadable", 0, 0, None, None, str(error))]
    return [
        ("warning", "metric", 0, 0, int(row.record), None, _difference(row))
        for row in differences.itertuples()
    ]


def _difference(row: Any) -> str:
    computed = "no value" if np.isnan(row.computed) else f"{row.computed:.2f}"
    return f"{row.metric} is {row.stored:.2f}, but the levels give {computed}"


def emission_geometry(
    positions: Any,
    microphone: Union[_core.AQ_Position, _core.AQ_Microphone],
    history: History,
    celsius: float,
) -> _core.AQ_GeometryTimeHistory:
    """Where and when the sound of each record was emitted, in metres, seconds and degrees.

    The source flies straight between its positions; a record whose sound was emitted before the
    first or after the last one has no point. An `AQ_Microphone` measures at X, Y and
    Z + Height.

    >>> geometry = aq_data.emission_geometry(positions, microphone, history, 18.5)
    >>> geometry.to_xarray().slant_range
    """
    expect(positions, _core.AQ_PositionTimeHistory, "positions")
    own, _ = _pair(history, None)
    place: Any = microphone
    if isinstance(microphone, _core.AQ_Microphone):
        place = _core.membraneOf(microphone)
    expect(place, _core.AQ_Position, "microphone")
    return _core.emissionGeometry(positions, place, own, celsius)


# Datasets, including lazy ones of many files.


class _Measured(NamedTuple):
    """Levels and masks of whole files, with the time, number and file of each record."""

    level: Any  # (records, bands)
    modes: Any  # (records, bands), or None
    adjustments: Any
    numbers: Any  # (records, 3): time of day, record number and index of the file
    bands: Any

    def by_file(self) -> Iterator[tuple[slice, _core.AQ_SpectralTimeHistory, Any]]:
        """For each file: its slice of the records, its history, and its map or None."""
        files = self.numbers[:, 2]
        starts = np.flatnonzero(np.diff(files, prepend=np.nan) != 0)
        for start, end in zip(starts, [*starts[1:], len(files)]):
            yield slice(start, end), *self._objects(slice(start, end))

    def _objects(self, part: slice) -> tuple[_core.AQ_SpectralTimeHistory, Any]:
        low = int(self.bands[0])
        records = self.numbers[part, 1].astype(int)
        level = self._wide(self.level[part], np.nan)
        history = _core.AQ_SpectralTimeHistory.from_numpy(level, low, records)
        order = np.argsort(records, kind="stable")
        history.times = {"TODseconds": self.numbers[part, 0][order]}
        if self.modes is None:
            return history, None
        modes, adjustments = (
            self._wide(each[part], NO_DECISION) for each in (self.modes, self.adjustments)
        )
        return history, _core.AQ_MaskMap.from_numpy(modes, adjustments, low, records)

    def _wide(self, values: Any, empty: Any) -> Any:
        """The values with a column for every band from the lowest to the highest."""
        if self.bands[-1] - self.bands[0] + 1 == len(self.bands):
            return values
        wide = np.full((len(values), self.bands[-1] - self.bands[0] + 1), empty, values.dtype)
        wide[:, self.bands - self.bands[0]] = values
        return wide


def _block_metrics(*arrays: Any, bands: Any) -> Any:
    """The ten metrics of each record of a block of whole files."""
    block = _Measured._make([*_filled(arrays), bands])
    values = np.full((len(block.numbers), len(NAMES)), np.nan)
    for part, history, mask in block.by_file():
        order = np.argsort(block.numbers[part, 1], kind="stable")
        values[part][order] = _core.historyMetrics(history, mask)[2].T
    return values


def _block_events(*arrays: Any, bands: Any) -> list[dict[str, Any]]:
    """The event of each file of a block of whole files."""
    block = _Measured._make([*_filled(arrays), bands])
    rows = []
    for part, history, mask in block.by_file():
        records, first, event = _core.historyEvent(history, mask)
        place = int(block.numbers[part.start, 2])
        rows.append({"file": place, "records": records, **event_words(event, first)})
    return rows


def _filled(arrays: tuple[Any, ...]) -> tuple[Any, ...]:
    """Levels, modes, adjustments and numbers, with None for missing masks."""
    return arrays if len(arrays) == 4 else (arrays[0], None, None, arrays[1])


def _file_sizes(files: Any) -> tuple[int, ...]:
    """The number of records of each block; a block consists of consecutive whole files."""
    starts = np.flatnonzero(np.diff(files, prepend=np.nan) != 0)
    sizes: list[int] = []
    for size in np.diff([*starts, len(files)]):
        if not sizes or sizes[-1] + size > RECORDS_PER_CHUNK:
            sizes.append(0)
        sizes[-1] += int(size)
    return tuple(sizes)


def _arrays(ds: xr.Dataset) -> tuple[list[Any], Any]:
    """The arrays from which the metrics of a dataset are computed, lazy if its levels are, and its
    bands.
    """
    need(ds, "level", "band", "time", "record")
    ds = ds.sortby("band")
    bands = ds["band"].values
    if not bands.size or not ds["time"].size:
        raise ValueError("expected a history with levels, found none")
    names = ["level"]
    if "mask_mode" in ds.variables:
        names += ["mask_mode", "mask_adjustment"]
    arrays = [ds[name].transpose("time", "band").data for name in names]
    files = ds["file"].values if "file" in ds.variables else np.zeros(ds["time"].size)
    columns = [ds["time"].values, ds["record"].values, files]
    numbers = np.stack([np.asarray(column, dtype=float) for column in columns], axis=1)
    if not dask.is_dask_collection(ds["level"].data):
        return [*map(np.asarray, arrays), numbers], bands
    rows = _file_sizes(files)
    lazy = [dask.array.asarray(array).rechunk((rows, -1)) for array in arrays]
    return [*lazy, dask.array.from_array(numbers, chunks=(rows, -1))], bands


def dataset_metrics(ds: xr.Dataset) -> xr.Dataset:
    """The ten metrics and the dataset's coordinates over `time`; the metrics are lazy if its levels
    are.
    """
    arrays, bands = _arrays(ds)
    attrs: dict[str, Any] = {}
    if dask.is_dask_collection(arrays[0]):
        values = dask.array.map_blocks(
            _block_metrics,
            *arrays,
            bands=bands,
            dtype=float,
            chunks=(arrays[0].chunks[0], (len(NAMES),)),
        )
    else:
        values = _block_metrics(*arrays, bands=bands)
        if "file" not in ds.variables:
            attrs = _block_events(*arrays, bands=bands)[0]
            attrs = {name: attrs[name] for name in (*EVENT, *_LIMITS)}
    variables = metric_variables(values.T, "time")
    own = {name: each for name, each in ds.coords.items() if each.dims == ("time",)}
    return xr.Dataset(variables, own, attrs)


def events(many: xr.Dataset) -> pd.DataFrame:
    """The event of each history in a dataset from `open_many`, one row per file, computed by dask:
    `path`, `project`, `microphone`, `begin`, `records`, then the attributes of `metrics`.

    >>> aq_data.events(aq_data.open_many("season/*.sth.csv", "season/*.mask.csv"))
    """
    arrays, bands = _arrays(many)
    if dask.is_dask_collection(arrays[0]):
        blocks = zip(*(np.ravel(array.to_delayed()) for array in arrays))
        parts = dask.compute(
            *(dask.delayed(_block_events)(*block, bands=bands) for block in blocks)
        )
    else:
        parts = (_block_events(*arrays, bands=bands),)
    frame = pd.DataFrame([row for part in parts for row in part])
    by_file = [name for name in ("path", "project", "microphone", "begin") if name in many.coords]
    for place, name in enumerate(by_file):
        frame.insert(place, name, many[name].values[frame["file"]])
    return frame.drop(columns="file")
