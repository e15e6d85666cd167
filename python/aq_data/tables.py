"""Converts the objects to wide and tidy pandas tables, and back."""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import pandas as pd
import xarray as xr

from . import _core
from .attributes import attach
from .times import DAY


@attach(_core.AQ_SpectralTimeHistory, name="to_pandas")
def history_to_pandas(
    self: _core.AQ_SpectralTimeHistory,
    mask: Optional[_core.AQ_MaskMap] = None,
    tidy: bool = False,
) -> pd.DataFrame:
    """Levels in dB, one row per record and one column per band, NaN for a missing level and, with a
    map, for a masked one; with `tidy`, one row per record and band, with `time` in s, `frequency`
    in Hz, `level` (of masked bands too) and masks as columns. Raises `ValueError` for a map that
    lacks a record; with `tidy`, also for one with records or bands that the history lacks.

    >>> history.to_pandas(mask)[24].max()
    >>> history.to_pandas(tidy=True).groupby("band").level.max()
    """
    if tidy:
        return _tidy(self.to_xarray(mask), ["record", "band"])
    index = pd.Index(self.records, name="record")
    return pd.DataFrame(self.to_numpy(mask), index, pd.Index(self.bands, name="band"))


@attach(_core.AQ_MaskMap, name="to_pandas")
def map_to_pandas(self: _core.AQ_MaskMap, tidy: bool = False) -> pd.DataFrame:
    """Mask modes, one row per record and one column per band, -1 for no mask; with `tidy`, one row
    per record and band, with `mask_mode`, `mask_adjustment` and `last_good_band` as columns.

    >>> (mask.to_pandas() > 0).sum(axis="columns")
    """
    if tidy:
        return _tidy(self.to_xarray(), ["record", "band"])
    index = pd.Index(self.records, name="record")
    return pd.DataFrame(self.to_numpy()[0], index, pd.Index(self.bands, name="band"))


@attach(_core.AQ_Spectrum, name="to_pandas")
def spectrum_to_pandas(self: _core.AQ_Spectrum) -> pd.Series:
    """Levels in dB by band number, NaN for a missing level.

    >>> spectrum.to_pandas().idxmax()
    """
    return pd.Series(self.to_numpy(), pd.Index(self.bands, name="band"), name="level")


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
    """One row per entry, indexed by record number, or from 1 if entries have no record numbers. The
    columns are those of `to_numpy`; times of day are in seconds, lengths in the unit of the file.

    >>> track.positions.to_pandas().Z.max()
    """
    table = self.to_numpy()
    numbers = getattr(self, "records", range(1, len(table) + 1))
    return pd.DataFrame(table, pd.Index(numbers, name="record"))


# And back.


def _wide(frame: pd.DataFrame, values: str) -> pd.DataFrame:
    """Turns a wide or tidy frame into one row per record and one column per band."""
    if "band" not in frame.columns:
        return frame.sort_index(axis="index").sort_index(axis="columns")
    if frame.duplicated(["record", "band"]).any():
        raise ValueError("expected each record and band only once")
    return frame.pivot(index="record", columns="band", values=values)


def _bands(wide: pd.DataFrame) -> int:
    """The lowest band. Raises `ValueError` unless the columns are consecutive bands."""
    bands = wide.columns.to_numpy()
    if not bands.size or bands.dtype.kind not in "iu" or (np.diff(bands) != 1).any():
        raise ValueError(f"expected consecutive bands as columns, found {list(bands)}")
    return int(bands[0])


def _of_records(frame: pd.DataFrame, column: str, wide: pd.DataFrame) -> Any:
    """A column of a tidy frame that has one value per record."""
    first = frame.groupby("record")[column]
    if (first.nunique(dropna=False) > 1).any():
        raise ValueError(f"expected one {column} per record, found several")
    return first.first().reindex(wide.index).to_numpy()


def _named(frame: pd.DataFrame, *names: str) -> Optional[str]:
    return next((name for name in names if name in frame.columns), None)


def history_from_pandas(frame: pd.DataFrame) -> _core.AQ_SpectralTimeHistory:
    """A history from a frame made by `to_pandas`, wide or tidy, or from a table written by
    `aqdata convert`. NaN means no level; a tidy frame has stamps in `time_of_day`, `time_s` or `time`, and
    relative times in `relative_time` or `relative_s`. Raises `ValueError` for other frames.

    >>> aq_data.AQ_SpectralTimeHistory.from_pandas(history.to_pandas())
    """
    level = _named(frame, "level", "level_db")
    wide = _wide(frame, level or "level")
    made = _core.AQ_SpectralTimeHistory.from_numpy(
        wide.to_numpy(dtype=float), _bands(wide), wide.index.to_numpy()
    )
    times: dict[str, Any] = {}
    for column, names in (
        ("TODseconds", ("time_of_day", "time_s", "time")),
        ("RelSeconds", ("relative_time", "relative_s")),
    ):
        name = _named(frame, *names)
        if name is not None and "band" in frame.columns:
            times[column] = np.asarray(_of_records(frame, name, wide), dtype=float)
    if "TODseconds" in times:
        times["TODseconds"] = np.where(
            times["TODseconds"] >= DAY, times["TODseconds"] % DAY, times["TODseconds"]
        )
    if times:
        made.times = times
    return made


def map_from_pandas(frame: pd.DataFrame) -> _core.AQ_MaskMap:
    """A masking map from a frame made by `to_pandas`, wide or tidy. A wide frame has no
    adjustments, and the last good bands are computed from its masks. Raises `ValueError` for other
    frames.

    >>> aq_data.AQ_MaskMap.from_pandas(mask.to_pandas(tidy=True))
    """
    wide = _wide(frame, "mask_mode")
    adjustments = None
    if "mask_adjustment" in frame.columns:
        adjustments = _wide(frame, "mask_adjustment").to_numpy()
    made = _core.AQ_MaskMap.from_numpy(
        wide.to_numpy(), adjustments, _bands(wide), wide.index.to_numpy()
    )
    if "last_good_band" in frame.columns:
        made.last_good_bands = _of_records(frame, "last_good_band", wide)
    else:
        made.setLGB()
    return made


def spectrum_from_pandas(series: pd.Series) -> _core.AQ_Spectrum:
    """A spectrum from levels by band number; NaN means no level.

    >>> aq_data.AQ_Spectrum.from_pandas(history.to_pandas().loc[30])
    """
    levels = series.sort_index()
    return _core.AQ_Spectrum.from_numpy(levels.to_numpy(float), _bands(levels.to_frame().T))


def positions_from_pandas(frame: pd.DataFrame) -> _core.AQ_PositionTimeHistory:
    """Positions from a frame made by `to_pandas`, or from a table written by `aqdata convert`.

    >>> aq_data.AQ_PositionTimeHistory.from_pandas(track.positions.to_pandas())
    """
    names = {"time_s": "TODseconds", "x": "X", "y": "Y", "z": "Z"}
    table = frame.rename(columns={k: v for k, v in names.items() if v not in frame.columns})
    columns = ("CurrentDate", "TODseconds", "RelSeconds", "X", "Y", "Z")
    return _core.AQ_PositionTimeHistory.from_numpy(
        {name: table[name].to_numpy(float) for name in columns if name in table.columns}
    )


def geometry_from_pandas(frame: pd.DataFrame) -> _core.AQ_GeometryTimeHistory:
    """A geometry from a frame made by `to_pandas`.

    >>> aq_data.AQ_GeometryTimeHistory.from_pandas(geometry.to_pandas())
    """
    columns = {str(name): frame[name].to_numpy() for name in frame.columns}
    return _core.AQ_GeometryTimeHistory.from_numpy(columns, frame.index.to_numpy())


_MAKERS: list[tuple[Any, Any]] = [
    (_core.AQ_SpectralTimeHistory, history_from_pandas),
    (_core.AQ_MaskMap, map_from_pandas),
    (_core.AQ_Spectrum, spectrum_from_pandas),
    (_core.AQ_PositionTimeHistory, positions_from_pandas),
    (_core.AQ_GeometryTimeHistory, geometry_from_pandas),
]
for _cls, _maker in _MAKERS:
    setattr(_cls, "from_pandas", staticmethod(_maker))
