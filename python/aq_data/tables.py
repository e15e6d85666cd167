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


@attach(_core.AQ_Spectrum, name="to_pandas")
def spectrum_to_pandas(self: _core.AQ_Spectrum) -> pd.Series:
    """Levels in dB by band."""
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
    """One row an entry, by record number or place; the columns are those of `to_numpy`."""
    table = self.to_numpy()
    numbers = getattr(self, "records", range(1, len(table) + 1))
    return pd.DataFrame(table, pd.Index(numbers, name="record"))
