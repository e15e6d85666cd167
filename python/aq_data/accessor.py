"""`Dataset.aq`: the common operations on a history."""

from __future__ import annotations

from typing import Iterable, Optional, Union

import numpy as np
import xarray as xr

from ._core import AQ_CONSTANTS, AQ_GeometryTimeHistory, AQ_MASK_MODE
from .attributes import dataset_of, need, need_once
from .noise import dataset_metrics
from .restore import history_and_map
from .work import Records, Times, chosen_records

INVALID_LEVEL = float(AQ_CONSTANTS.AQ_INVALID_LEVEL)


@xr.register_dataset_accessor("aq")  # type: ignore[no-untyped-call]
class Accessor:
    """Operations on a dataset with `level(time, band)`; none of them changes it."""

    def __init__(self, ds: xr.Dataset) -> None:
        self._ds = ds

    @property
    def level(self) -> xr.DataArray:
        """Levels in dB over `time` and `band`, NaN where there is no valid level. Raises
        `ValueError` if the dataset has no levels.

        >>> ds.aq.level.max("time")
        """
        need(self._ds, "level")
        level = self._ds["level"]
        return level.where(level != INVALID_LEVEL)

    @property
    def masked(self) -> xr.DataArray:
        """Whether each level is masked, over `time` and `band`; all False without masks.

        >>> ds.aq.masked.sum("band")
        """
        if "mask_mode" not in self._ds.variables:
            return xr.zeros_like(self.level, dtype=bool).rename("masked")
        masked: xr.DataArray = self._ds["mask_mode"] > AQ_MASK_MODE.NOT_MASKED
        return masked.rename("masked")

    def unmasked(self) -> xr.Dataset:
        """The dataset with NaN for levels that are masked or not valid. Raises `ValueError` if it
        has no levels.

        >>> ds.aq.unmasked().level.max("time")
        """
        return self._ds.assign(level=self.level.where(~self.masked))

    def between(self, low: float, high: float) -> xr.Dataset:
        """The dataset cut to the bands with a nominal frequency from `low` to `high`, in Hz, both
        included. Raises `ValueError` if there is no such band.

        >>> ds.aq.between(500, 5000).level
        """
        need(self._ds, "frequency")
        frequency = self._ds["frequency"].values
        chosen = (frequency >= low) & (frequency <= high)
        if not chosen.any():
            raise ValueError(f"expected bands from {low:g} to {high:g} Hz, found none")
        return self._ds.isel(band=chosen)

    def cut(
        self,
        records: Optional[Records] = None,
        between: Optional[Times] = None,
        down: Optional[float] = None,
    ) -> xr.Dataset:
        """The dataset cut to a range of records, by number or between two times of day, or to the
        event: from the first to the last record within `down` decibels of the largest PNLT (masks
        taken into account), plus one record on each side. Records keep their numbers; `measurement`
        returns history and map. Raises `ValueError` unless exactly one range is given, or if no
        record remains.

        >>> ds.aq.cut(down=10)
        """
        need_once(self._ds)
        first, last, _ = chosen_records(*history_and_map(self._ds), records, between, down)
        here = self._ds["record"]
        return self._ds.isel(time=((here >= first) & (here <= last)).values)

    def overall(self, bands: Optional[Iterable[int]] = None) -> xr.DataArray:
        """The energy sum of each record, in dB, over the bands with the given numbers, by default
        all bands; NaN where no band has a level. Raises `ValueError` for a band that the dataset
        lacks.

        >>> ds.aq.unmasked().aq.overall(range(24, 34)).max()
        """
        level = self.level if bands is None else self._levels(list(bands))
        energy = (10.0 ** (level / 10.0)).sum("band", min_count=1)
        total: xr.DataArray = 10.0 * np.log10(energy)
        total.attrs = {"units": "dB", "long_name": "overall sound pressure level"}
        return total.rename("overall_level")

    def metrics(self) -> xr.Dataset:
        """The ten noise metrics of each record, computed as in `aq_data.metrics` but with the
        dimension `time`; their attributes give the units. For a dataset from `open_many` they are
        computed on demand, with one event per file. Raises `ValueError` if the dataset has no
        levels.

        >>> ds.aq.metrics().PNLT.max()
        """
        return dataset_metrics(self._ds)

    def _levels(self, bands: list[int]) -> xr.DataArray:
        need(self._ds, "level", "band")
        missing = np.setdiff1d(bands, self._ds["band"].values)
        if missing.size:
            raise ValueError(f"the dataset lacks the bands {missing.tolist()}")
        return self.level.sel(band=bands)

    def with_geometry(self, geometry: Union[xr.Dataset, AQ_GeometryTimeHistory]) -> xr.Dataset:
        """The dataset joined with the emission geometry of records with the same number, NaN for
        other records: `slant_range`, `x`, `theta` and others over `time`, in the units that their
        attributes give. Raises `ValueError` for a duplicate record number.

        >>> ds.aq.with_geometry(geometry).plot.scatter("slant_range", "theta")
        """
        points = dataset_of(geometry, "record", "slant_range")
        need_once(points)
        need_once(self._ds)
        found = {int(record): i for i, record in enumerate(points["record"].values)}
        places = np.array([found.get(int(r), -1) for r in self._ds["record"].values], dtype=int)
        joined = {}
        for name, column in points.data_vars.items():
            dates = column.dtype.kind == "M"
            none = np.array([np.datetime64("NaT") if dates else np.nan])
            values = np.append(column.values, none)[places]  # index -1 picks the missing value
            joined[name] = ("time", values, column.attrs)
        return self._ds.assign(joined)
