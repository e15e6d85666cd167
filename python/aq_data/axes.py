"""Shared parts of plots: datasets ready to be drawn, axes of time and frequency, legends."""

from __future__ import annotations

from typing import Any, Optional

import matplotlib.pyplot as plt
import matplotlib.ticker
import numpy as np
import xarray as xr
from matplotlib.axes import Axes

from .attributes import NO_DECISION, band_coordinates, dataset_of, expect, need_once
from .labelled import check_unit

DAY = 86400.0
_TIMES = {
    "relative_time": "Time relative to reference (s)",
    "time": "Time of day (h:min:s)",
    "record": "Record",
}


def axes(ax: Optional[Axes]) -> Axes:
    """The given axes, or new ones."""
    if ax is not None:
        expect(ax, Axes, "ax")
    return plt.subplots(figsize=(8, 4.5), layout="constrained")[1] if ax is None else ax


def length_unit(unit: Optional[str], ds: xr.Dataset, name: str) -> str:
    """The length unit of a plot: the given one, otherwise the dataset's."""
    return check_unit(ds[name].attrs.get("units", "m") if unit is None else unit)


def finite(ds: xr.Dataset, name: str, what: str) -> xr.Dataset:
    """Returns the dataset. Raises `ValueError` if `name` has no finite value to draw."""
    if not np.isfinite(np.asarray(ds[name].values, dtype=float)).any():
        raise ValueError(f"expected {what} to draw, found none")
    return ds


# Histories.


def history_of(data: Any) -> xr.Dataset:
    """The dataset of a history to be drawn."""
    ds = dataset_of(data, "level", "band", "frequency", "time", "record")
    need_once(ds)
    if not np.isfinite(ds.aq.level.values).any():
        raise ValueError("expected a history with levels, found none")
    return ds


def every_record(ds: xr.Dataset) -> xr.Dataset:
    """Every record from first to last, in order; missing ones have no values.

    Gaps then look like gaps, and cells are as wide as a record.
    """
    ds = ds.isel(time=np.argsort(ds["record"].values))
    own = ds["record"].values
    if not own.size:
        return ds
    records = np.arange(own[0], own[-1] + 1)
    times = {name: ds[name].values for name in ("time", "relative_time") if name in ds.variables}
    times["time"] = np.unwrap(times["time"], period=DAY)  # a gap may cross midnight
    coordinates: dict[str, Any] = {
        name: ("time", np.interp(records, own, values), ds[name].attrs)
        for name, values in times.items()
    }
    wide = ds.assign_coords(time=own).reindex(time=records, fill_value={"mask_mode": NO_DECISION})
    return wide.assign_coords({**coordinates, "record": ("time", records)})


def complete(ds: xr.Dataset) -> xr.Dataset:
    """Every record and every band from first to last."""
    ds = every_record(ds.sortby("band"))
    bands = np.arange(ds["band"].values[0], ds["band"].values[-1] + 1)
    wide = ds.reindex(band=bands, fill_value={"mask_mode": NO_DECISION})
    return wide.assign_coords(band_coordinates(bands))


# Axes.


def _clock(seconds: float, _: Any = None) -> str:
    """Formats seconds as a time of day, which wraps to 00:00 at midnight."""
    whole, thousandths = divmod(round(seconds % DAY * 1000), 1000)
    text = f"{whole // 3600 % 24:02}:{whole // 60 % 60:02}:{whole % 60:02}.{thousandths:03}"
    return text.rstrip("0").rstrip(".") if thousandths else text[:-4]


def _tells(values: Any) -> bool:
    """Whether times are set: not all equal or, if there is only one, not 0."""
    return bool(values.any() if values.size == 1 else values.size and np.ptp(values) > 0)


def time_axis(ax: Axes, *datasets: xr.Dataset) -> list[Any]:
    """Labels the horizontal axis, and returns the times of each dataset on it.

    The first dataset with records determines the kind: times relative to the reference if they are
    set, otherwise times of day if these are set, otherwise record numbers.
    """
    first = next((ds for ds in datasets if ds["time"].size), datasets[0])
    kinds = [name for name in _TIMES if name in first.variables]
    name = next((kind for kind in kinds if _tells(first[kind].values)), kinds[-1])
    ax.set_xlabel(_TIMES[name])
    ax.xaxis.set_major_locator(matplotlib.ticker.MaxNLocator(5 if name == "time" else "auto"))
    times = [ds[name].values for ds in datasets]
    if name == "time" and first["time"].size:
        ax.xaxis.set_major_formatter(_clock)
        start = first["time"].values[0]  # a flight across midnight continues to the right
        times = [start + (each - start + DAY / 2) % DAY - DAY / 2 for each in times]
    ticks = np.unique(np.concatenate(times))
    if ticks.size == 1:
        ax.set_xticks(ticks)
    return times


def _frequency_label(hertz: float) -> str:
    return f"{hertz / 1000:g}k" if hertz >= 1000 else f"{hertz:g}"


def frequency_axis(axis: Any, ds: xr.Dataset) -> None:
    """Ticks an octave apart, at every third band, or at all bands if none of those is drawn;
    labelled with the nominal frequencies.
    """
    bands = ds["band"].values
    octaves = bands[bands % 3 == 0]
    if len(octaves) == 0:
        octaves = bands
    frequencies = dict(zip(bands, ds["frequency"].values))
    axis.set_ticks(octaves, labels=[_frequency_label(frequencies[band]) for band in octaves])
    axis.set_label_text("One-third-octave band (Hz)")


def edges(ax: Axes, centres: Any) -> Any:
    """Cell edges halfway between centres; a single cell is one record, or half a second, wide."""
    if len(centres) < 2:
        half = 0.5 if ax.get_xlabel() == _TIMES["record"] else 0.25
        return np.concatenate([centres - half, centres + half])
    middles = (centres[1:] + centres[:-1]) / 2
    first, last = centres[0] - (middles[0] - centres[0]), centres[-1] * 2 - middles[-1]
    return np.concatenate([[first], middles, [last]])


def legend_above(ax: Axes, handles: list[Any]) -> None:
    """Puts the legend above the axes, where it hides no data. Long labels get two columns, which
    leave room for a title on the left.
    """
    is_long = sum(len(handle.get_label()) for handle in handles) > 40
    ax.legend(
        handles=handles,
        loc="lower right",
        bbox_to_anchor=(1, 1),
        ncols=2 if is_long else len(handles),
        fontsize="small",
        frameon=False,
        handlelength=1.4,
        columnspacing=1.0,
        borderaxespad=0.2,
    )
