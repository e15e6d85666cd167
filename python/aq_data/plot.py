"""Pictures of a measurement. Each takes datasets and an `Axes`, and gives the `Axes` back."""

from __future__ import annotations

from typing import Any, Optional, Union

import matplotlib
import matplotlib.pyplot as plt
import matplotlib.ticker
import numpy as np
import xarray as xr
from matplotlib.axes import Axes
from matplotlib.figure import Figure
from matplotlib.patches import Patch

from . import _core
from .files import Tracking

History = Union[xr.Dataset, _core.AQ_SpectralTimeHistory]
AMBIENT, MASKED, GOOD, REJECTED = "0.35", "0.25", "tab:blue", "tab:red"
NO_BAND_IS_GOOD = int(_core.AQ_CONSTANTS.AQ_INVALID_LEVEL)


def _dataset(data: Any) -> xr.Dataset:
    ds: xr.Dataset = data if isinstance(data, xr.Dataset) else data.to_xarray()
    return ds


def _axes(ax: Optional[Axes]) -> Axes:
    return plt.subplots(figsize=(8, 4.5), layout="constrained")[1] if ax is None else ax


def _clock(seconds: float, _: Any = None) -> str:
    whole = int(seconds // 1)
    return f"{whole // 3600:02}:{whole // 60 % 60:02}:{whole % 60:02}" + f"{seconds % 1:.3g}"[1:]


def _time_axis(ds: xr.Dataset, ax: Axes) -> Any:
    """Times for a picture: relative to the reference where the records have such times."""
    if "relative_time" in ds.variables and ds["relative_time"].values.any():
        ax.set_xlabel("Time relative to reference (s)")
        return ds["relative_time"].values
    ax.set_xlabel("Time of day (h:min:s)")
    ax.xaxis.set_major_formatter(_clock)
    ax.xaxis.set_major_locator(matplotlib.ticker.MaxNLocator(5))
    return ds["time"].values


def _legend_above(ax: Axes, handles: list[Any]) -> None:
    """Where it hides no data; titles of a page stand left of it."""
    ax.legend(
        handles=handles,
        loc="lower right",
        bbox_to_anchor=(1, 1),
        ncols=len(handles),
        frameon=False,
        handlelength=1.4,
        columnspacing=1.0,
        borderaxespad=0.2,
    )


def _frequency_label(hertz: float) -> str:
    return f"{hertz / 1000:g}k" if hertz >= 1000 else f"{hertz:g}"


def _frequency_axis(axis: Any, ds: xr.Dataset) -> None:
    """Ticks at every third band, an octave apart, named by their nominal frequencies."""
    bands = ds["band"].values
    octaves = bands[bands % 3 == 0]
    if len(octaves) == 0:
        octaves = bands
    frequencies = dict(zip(bands, ds["frequency"].values))
    axis.set_ticks(octaves, labels=[_frequency_label(frequencies[band]) for band in octaves])
    axis.set_label_text("One-third-octave band (Hz)")


def _edges(centres: Any) -> Any:
    """Cell edges half-way between centres; a centre alone gets a cell of half a second."""
    if len(centres) < 2:
        return np.concatenate([centres - 0.25, centres + 0.25])
    middles = (centres[1:] + centres[:-1]) / 2
    first, last = centres[0] - (middles[0] - centres[0]), centres[-1] * 2 - middles[-1]
    return np.concatenate([[first], middles, [last]])


def _last_good_band(ds: xr.Dataset) -> Any:
    """The upper edge of the last good band of each record; NaN where none is good."""
    last = ds["last_good_band"].values.astype(float)
    last[last == 0] = ds["band"].values[-1]  # all are good
    last[last == NO_BAND_IS_GOOD] = np.nan
    return last + 0.5


def spectrogram(history: History, ax: Optional[Axes] = None) -> Axes:
    """Levels over time and band; masked cells are hatched, the last good band is a line."""
    ds, ax = _dataset(history), _axes(ax)
    seconds = _time_axis(ds, ax)
    x, y = _edges(seconds), np.append(ds["band"].values - 0.5, ds["band"].values[-1] + 0.5)
    mesh = ax.pcolormesh(x, y, ds.aq.level.values.T, cmap="viridis", rasterized=True)
    ax.figure.colorbar(mesh, ax=ax, label="Band level (dB)", pad=0.02)
    handles: list[Any] = []
    if ds.aq.masked.values.any():
        masked = np.where(ds.aq.masked.values.T, 1.0, np.nan)
        with matplotlib.rc_context({"hatch.linewidth": 0.5, "hatch.color": "white"}):
            ax.pcolor(x, y, masked, hatch="////", alpha=0, edgecolor="none")
            handles.append(Patch(facecolor=MASKED, hatch="////", edgecolor="white", label="masked"))
    if "last_good_band" in ds.variables:
        line = np.repeat(_last_good_band(ds), 2)
        handles += ax.plot(np.repeat(x, 2)[1:-1], line, color="tab:red", label="last good band")
    if handles:
        _legend_above(ax, handles)
    _frequency_axis(ax.yaxis, ds)
    return ax


def spectrum(
    history: History,
    record: int,
    ambient: Union[xr.Dataset, _core.AQ_Spectrum, None] = None,
    ax: Optional[Axes] = None,
) -> Axes:
    """The levels of one record by band, masked ones hollow, with the ambient."""
    ds, ax = _dataset(history), _axes(ax)
    places = np.flatnonzero(ds["record"].values == record)
    if len(places) == 0:
        raise ValueError(f"expected a record of the history, found {record}")
    one = ds.isel(time=places[0])
    bands, level, masked = ds["band"].values, one.aq.level.values, one.aq.masked.values
    ax.plot(bands, level, color=GOOD, label=f"record {record}")
    ax.plot(bands[~masked], level[~masked], "o", color=GOOD)
    if masked.any():
        ax.plot(bands[masked], level[masked], "o", color=GOOD, mfc="white", label="masked")
    if ambient is not None:
        floor = _dataset(ambient)
        ax.plot(floor["band"], floor.aq.level, "--", color=AMBIENT, label="ambient")
    ax.set_ylabel("Band level (dB)")
    ax.legend()
    ax.grid(alpha=0.3)
    _frequency_axis(ax.xaxis, ds)
    return ax


def level_time(
    history: History, events: Optional[dict[str, float]] = None, ax: Optional[Axes] = None
) -> Axes:
    """The overall level of unmasked bands over time; events are times in the axis's seconds."""
    ds, ax = _dataset(history), _axes(ax)
    seconds = _time_axis(ds, ax)
    ax.plot(seconds, ds.aq.overall(), color=AMBIENT, lw=1, label="all bands")
    if ds.aq.masked.values.any():
        good = ds.aq.unmasked().aq.overall()
        ax.plot(seconds, good, color=GOOD, label="bands that are not masked")
    for name, second in (events or {}).items():
        ax.axvline(second, color=REJECTED, ls=":", label=f"{name}, {second:g} s")
    ax.set_ylabel("Overall level (dB)")
    ax.legend()
    ax.grid(alpha=0.3)
    return ax


def _fixes(
    positions: Any, columns: tuple[str, str], ax: Optional[Axes], lines: str, unit: str
) -> Axes:
    """Good fixes as a line with points, rejected ones as crosses."""
    ax = _axes(ax)
    good, rejected = positions if isinstance(positions, Tracking) else (positions, None)
    x, y = (_dataset(good)[name] for name in columns)
    ax.plot(x, y, lines, ms=3, lw=1, color=GOOD, label=f"{x.size} fixes")
    if rejected is not None and len(rejected):
        x, y = (_dataset(rejected)[name] for name in columns)
        ax.plot(x, y, "x", color=REJECTED, label=f"{x.size} rejected")
    ax.set_ylabel(f"{columns[1].upper()} ({unit})")
    ax.legend()
    ax.grid(alpha=0.3)
    return ax


def ground_track(
    positions: Any, microphone: Any = None, ax: Optional[Axes] = None, unit: str = "m"
) -> Axes:
    """The path over the ground, to scale, with rejected fixes and the microphone."""
    ax = _fixes(positions, ("x", "y"), ax, ".-", unit)
    if microphone is not None:
        ax.plot(
            microphone.X, microphone.Y, "^", color="black", ms=9, mfc="none", label="microphone"
        )
        ax.legend()
    ax.set_xlabel(f"X ({unit})")
    ax.set_aspect("equal", adjustable="datalim")
    return ax


def height(positions: Any, ax: Optional[Axes] = None, unit: str = "m") -> Axes:
    """The height over time, with rejected fixes."""
    ax = _fixes(positions, ("time", "z"), ax, ".-", unit)
    _time_axis(_dataset(positions[0] if isinstance(positions, Tracking) else positions), ax)
    ax.set_ylabel(f"Height Z ({unit})")
    return ax


def geometry(geometry: Any, ax: Optional[Axes] = None, unit: str = "m") -> Axes:
    """Slant range, left, and emission angles, right, over the time of the record."""
    ds, ax = _dataset(geometry), _axes(ax)
    seconds = _time_axis(ds, ax)
    lines = ax.plot(seconds, ds["slant_range"], color=GOOD, label="range")
    angles = ax.twinx()
    lines += angles.plot(seconds, ds["theta"], color="tab:orange", label="first angle")
    lines += angles.plot(seconds, ds["beta"], "--", color="tab:green", label="second angle")
    ax.set_ylabel(f"Slant range at emission ({unit})")
    angles.set_ylabel("Emission angle (degrees)")
    _legend_above(ax, lines)
    ax.grid(alpha=0.3)
    return ax


def page(
    history: History,
    ambient: Any = None,
    positions: Any = None,
    geometry: Any = None,
    microphone: Any = None,
    events: Optional[dict[str, float]] = None,
) -> Figure:
    """All of a measurement on one page; what is not given is left out."""
    ds = _dataset(history)
    loudest = int(ds["record"].values[int(ds.aq.overall().fillna(-np.inf).argmax())])
    panels: list[Any] = [
        (lambda ax: spectrogram(ds, ax), "Spectrogram"),
        (lambda ax: level_time(ds, events, ax), "Overall level"),
        (lambda ax: spectrum(ds, loudest, ambient, ax), "Spectrum of the loudest record"),
    ]
    if positions is not None:
        panels.append((lambda ax: ground_track(positions, microphone, ax), "Ground track"))
        panels.append((lambda ax: height(positions, ax), "Height"))
    if geometry is not None:
        panels.append((lambda ax: globals()["geometry"](geometry, ax), "Geometry"))
    rows = (len(panels) + 1) // 2
    figure = plt.figure(figsize=(12, 3.6 * rows), layout="constrained")
    for place, (draw, title) in enumerate(panels, start=1):
        draw(figure.add_subplot(rows, 2, place)).set_title(title, loc="left")
    figure.suptitle(ds.attrs.get("title", "Measurement"))
    return figure
