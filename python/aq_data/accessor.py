"""`Dataset.aq`: the few things that people do with a history."""

from __future__ import annotations

from typing import Iterable, Optional

import numpy as np
import xarray as xr

from ._core import AQ_CONSTANTS, AQ_MASK_MODE

INVALID_LEVEL = float(AQ_CONSTANTS.AQ_INVALID_LEVEL)


@xr.register_dataset_accessor("aq")  # type: ignore[no-untyped-call]
class Accessor:
    """Selections and sums over `level(time, band)`; every one leaves the dataset as it was."""

    def __init__(self, ds: xr.Dataset) -> None:
        self._ds = ds

    @property
    def level(self) -> xr.DataArray:
        """Levels in dB, NaN where there is no valid one."""
        if "level" not in self._ds.variables:
            raise ValueError("the dataset lacks level")
        level = self._ds["level"]
        return level.where(level != INVALID_LEVEL)

    @property
    def masked(self) -> xr.DataArray:
        """Whether the ambient masks a level; all False without masks."""
        if "mask_mode" not in self._ds.variables:
            return xr.zeros_like(self._ds["level"], dtype=bool).rename("masked")
        masked: xr.DataArray = self._ds["mask_mode"] > AQ_MASK_MODE.NOT_MASKED
        return masked.rename("masked")

    def unmasked(self) -> xr.Dataset:
        """The dataset with NaN for levels that are masked or not valid."""
        return self._ds.assign(level=self.level.where(~self.masked))

    def between(self, low: float, high: float) -> xr.Dataset:
        """The bands with a nominal frequency from `low` to `high`, in Hz."""
        frequency = self._ds["frequency"]
        return self._ds.isel(band=((frequency >= low) & (frequency <= high)).values)

    def overall(self, bands: Optional[Iterable[int]] = None) -> xr.DataArray:
        """The energy sum over bands, all unless given, in dB; NaN where no band has a level."""
        level = self.level if bands is None else self.level.sel(band=list(bands))
        energy = (10.0 ** (level / 10.0)).sum("band", min_count=1)
        total: xr.DataArray = 10.0 * np.log10(energy)
        total.attrs = {"units": "dB", "long_name": "overall sound pressure level"}
        return total.rename("overall_level")

    def with_geometry(self, geometry: xr.Dataset) -> xr.Dataset:
        """The dataset with the emission geometry of each record, NaN where it has none."""
        found = {int(record): i for i, record in enumerate(geometry["record"].values)}
        places = np.array([found.get(int(r), -1) for r in self._ds["record"].values], dtype=int)
        joined = {}
        for name, variable in geometry.data_vars.items():
            values = np.append(variable.values, np.nan)[places]  # place -1 is the NaN
            joined[name] = ("time", values, variable.attrs)
        return self._ds.assign(joined)
