"""Pandas tables of the objects, wide and tidy."""

from __future__ import annotations

from typing import Any, Optional

import pandas as pd
import xarray as xr

from . import _core
from .attributes import attach


@attach(_core.AQ_SpectralTimeHistory, name="to_pandas")
def history_to_pandas(
    self: _core.AQ_SpectralTimeHistory,
    mask: Optional[_core.AQ_MaskMap] = None,
    tidy: bool = False,
) -> pd.DataFrame:
    """Levels in dB, one row per record and one column per band, NaN for a missing level and, with a
    map, a masked one; `tidy`: one row per record and band, with `time` in s, `frequency` in Hz,
    `level` and masks as columns. Raises `ValueError` for a map of other records.

    >>> history.to_pandas(mask)[24].max()
    >>> history.to_pandas(tidy=True).groupby("band").level.max()
    """
    if tidy:
        return _tidy(self.to_xarray(mask), ["record", "band"])
    index = pd.Index(self.records, name="record")
    return pd.DataFrame(self.to_numpy(mask), index, pd.Index(self.bands, name="band"))


@attach(_core.AQ_MaskMap, name="to_pandas")
def map_to_pandas(self: _core.AQ_MaskMap, tidy: bool = False) -> pd.DataFrame:
    """Mask modes, one row per record and one column per band, -1 for no mask; `tidy`: one row per
    record and band, with `mask_mode`, `mask_adjustment` and `last_good_band` as columns.

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
    """One row per entry, by record number or by index from 1; the columns are those of `to_numpy`:
    times in s of the day, lengths in the unit of the file.

    >>> track.positions.to_pandas().Z.max()
    """
    table = self.to_numpy()
    numbers = getattr(self, "records", range(1, len(table) + 1))
    return pd.DataFrame(table, pd.Index(numbers, name="record"))
