"""Plots of a measurement. Each function takes datasets or objects and optionally an `Axes`, and
returns the `Axes`; `page` makes and returns a figure.
"""

from __future__ import annotations

from numbers import Integral
from typing import Any, Optional, Union

import matplotlib
import matplotlib.pyplot as plt
import numpy as np
import xarray as xr
from matplotlib.axes import Axes
from matplotlib.figure import Figure
from matplotlib.patches import Patch

from . import _core
from .attributes import dataset_of, expect, need_once
from .axes import (
    axes,
    complete,
    edges,
    every_record,
    finite,
    frequency_axis,
    history_of,
    legend_above,
    length_unit,
    time_axis,
)
from .noise import epnl, explain
from .reading import Tracking

History = Union[xr.Dataset, _core.AQ_SpectralTimeHistory]
AMBIENT, MASKED, NO_LEVEL = "0.35", "0.25", "0.7"
ALONE: dict[str, Any] = {"marker": ".", "ms": 3}  # a record between two gaps shows no line
GOOD, REJECTED, TONE = "tab:blue", "tab:red", "tab:purple"
NO_BAND_IS_GOOD = int(_core.AQ_CONSTANTS.AQ_INVALID_LEVEL)


def _last_good_band(ds: xr.Dataset) -> tuple[Any, bool]:
    """The upper edge of the last good band of each record, within the drawn bands, and whether any
    record has no good band; such a record gets the lower edge of the plot.
    """
    low, high = ds["band"].values[[0, -1]]
    last = ds["last_good_band"].values.astype(float)
    last[last == 0] = high  # no band from 29 up is masked
    none = last == NO_BAND_IS_GOOD
    last[none] = low - 1
    return np.clip(last + 0.5, low - 0.5, high + 0.5), bool(none.any())


def spectrogram(history: History, ax: Optional[Axes] = None) -> Axes:
    """Levels in dB over time and band; masked cells are hatched, and the last good band is drawn as
    a line.

    Raises `ValueError` for a history without levels, as do all plots of a history.

    >>> aq_data.plot.spectrogram(history.to_xarray(mask))
    """
    ds, ax = complete(history_of(history)), axes(ax)
    (seconds,) = time_axis(ax, ds)
    bands, level = ds["band"].values, ds.aq.level.values
    x, y = edges(ax, seconds), np.append(bands - 0.5, bands[-1] + 0.5)
    ax.set_facecolor(NO_LEVEL)
    mesh = ax.pcolormesh(x, y, level.T, cmap="viridis", rasterized=True)
    ax.figure.colorbar(mesh, ax=ax, label="Band level (dB)", pad=0.02)
    handles: list[Any] = []
    if np.isnan(level).any():
        handles.append(Patch(facecolor=NO_LEVEL, label="no level"))
    if ds.aq.masked.values.any():
        masked = np.where(ds.aq.masked.values.T, 1.0, np.nan)
        with matplotlib.rc_context({"hatch.linewidth": 0.5, "hatch.color": "white"}):
            ax.pcolor(x, y, masked, hatch="////", alpha=0, edgecolor="none")
            handles.append(Patch(facecolor=MASKED, hatch="////", edgecolor="white", label="masked"))
    if "last_good_band" in ds.variables:
        line, none = _last_good_band(ds)
        label = "last good band" + (" (lower edge: none)" if none else "")
        steps = (np.repeat(x, 2)[1:-1], np.repeat(line, 2))
        handles += ax.plot(*steps, color=REJECTED, label=label, clip_on=False, zorder=3)
    ax.set(xlim=x[[0, -1]], ylim=y[[0, -1]])
    if handles:
        legend_above(ax, handles)
    frequency_axis(ax.yaxis, ds)
    return ax


def _one_spectrum(data: Any, record: Optional[int]) -> tuple[xr.Dataset, str]:
    """The dataset of one record of a history, or of a spectrum, and its label."""
    if record is None:
        ds = dataset_of(data, "level", "band", "frequency")
        if ds["level"].dims != ("band",):
            raise ValueError("expected the number of a record, found None")
        finite(ds, "level", "levels")
        return ds, "spectrum"
    ds = history_of(data)
    expect(record, Integral, "record")
    places = np.flatnonzero(ds["record"].values == record)
    if len(places) == 0:
        raise ValueError(f"expected a record of the history, found {record}")
    return ds.isel(time=places[0]), f"record {record}"


def spectrum(
    history: Union[History, _core.AQ_Spectrum],
    record: Optional[int] = None,
    ambient: Union[xr.Dataset, _core.AQ_Spectrum, None] = None,
    ax: Optional[Axes] = None,
) -> Axes:
    """The levels of a record or a spectrum, in dB by band, with masked levels drawn hollow, and the
    spectrum of the ambient if it is given.

    Raises `ValueError` for a record that the history lacks.

    >>> aq_data.plot.spectrum(ds, 30, ambient)
    """
    one, label = _one_spectrum(history, record)
    ds, ax = one.sortby("band"), axes(ax)
    bands, level, masked = ds["band"].values, ds.aq.level.values, ds.aq.masked.values
    ax.plot(bands, level, color=GOOD, label=label)
    ax.plot(bands[~masked], level[~masked], "o", color=GOOD)
    if masked.any():
        ax.plot(bands[masked], level[masked], "o", color=GOOD, mfc="white", label="masked")
    if ambient is not None:
        floor = dataset_of(ambient, "level", "band")
        if floor["level"].dims != ("band",):
            raise ValueError(
                "expected one spectrum as the ambient, found levels over other dimensions than band"
            )
        finite(floor, "level", "ambient levels")
        ax.plot(floor["band"], floor.aq.level, "--", color=AMBIENT, label="ambient")
    ax.set_ylabel("Band level (dB)")
    ax.legend()
    ax.grid(alpha=0.3)
    frequency_axis(ax.xaxis, ds)
    return ax


def _check_events(events: Any) -> None:
    for name, second in (events or {}).items():
        if not isinstance(second, (int, float, np.number)) or not np.isfinite(second):
            raise ValueError(f"expected events as seconds, found {second!r} for {name}")


def tone(
    history: Union[History, _core.AQ_Spectrum],
    record: Optional[int] = None,
    mask: Optional[_core.AQ_MaskMap] = None,
    ax: Optional[Axes] = None,
) -> Axes:
    """The levels of a record or a spectrum, their background, and the largest tone correction."""
    steps, ax = explain(history, record, mask), axes(ax)
    if steps.empty:
        raise ValueError("expected valid levels from 80 Hz up, found none")
    label = "spectrum" if record is None else f"record {record}"
    ax.plot(steps.index, steps["level"], ".-", color=GOOD, label=label)
    ax.plot(steps.index, steps["background"], "--", color=AMBIENT, label="background")
    band, correction = steps.attrs["band"], steps.attrs["correction"]
    if band:
        hertz = steps.loc[band, "frequency"]
        ends = steps.loc[band, ["background", "level"]]
        text = f"band {band}, {hertz:g} Hz: {correction:.2f} dB"
        ax.plot([band, band], ends, color=REJECTED, lw=2, label=text)
    ax.set_ylabel("Band level (dB)")
    ax.legend()
    ax.grid(alpha=0.3)
    frequency_axis(ax.xaxis, steps.reset_index().to_xarray().swap_dims(index="band"))
    return ax


def _draw_event(ax: Axes, seconds: Any, ds: xr.Dataset) -> list[Any]:
    """Draws PNLT, its maximum, and a line 10 dB below the maximum over the records that the EPNL
    sums; returns the lines.
    """
    pnlt = np.where(ds["PNLT"].values > 0, ds["PNLT"].values, np.nan)
    lines = ax.plot(seconds, pnlt, color=TONE, lw=1, label="PNLT (TPNdB)", **ALONE)
    steps: Any = np.diff(ds["time"].values)
    steps = np.append(steps, steps[-1:]) if steps.size and (steps > 0).all() else 0.5
    event = epnl(pnlt, steps)
    ends = [0 if event.first is None else event.first]
    ends.append(len(pnlt) - 1 if event.last is None else event.last)
    bound = "" if None not in (event.first, event.last) else ", a lower bound"
    label = f"10 dB down, EPNL {event.epnl:.1f} EPNdB{bound}"
    lines += ax.plot(seconds[ends], [event.pnltm - 10] * 2, "|-", color=TONE, lw=1, label=label)
    ax.plot(seconds[event.maximum], event.pnltm, "v", color=TONE)
    return list(lines)


def level_time(
    history: History, events: Optional[dict[str, float]] = None, ax: Optional[Axes] = None
) -> Axes:
    """The overall level in dB over time, of all bands and of those that are not masked, and the
    event if the history has PNLT. `events` gives times by name, in seconds on the time axis.

    >>> aq_data.plot.level_time(ds, {"overhead": 0.0})
    """
    _check_events(events)
    ds, ax = complete(history_of(history)), axes(ax)
    (seconds,) = time_axis(ax, ds)
    ax.plot(seconds, ds.aq.overall(), color=AMBIENT, lw=1, label="all bands", **ALONE)
    if ds.aq.masked.values.any():
        good = ds.aq.unmasked().aq.overall()
        ax.plot(seconds, good, color=GOOD, label="bands that are not masked", **ALONE)
    for name, second in (events or {}).items():
        ax.axvline(second, color=REJECTED, ls=":")
        ax.annotate(
            name,
            (second, 0),
            (-3, 4),
            xycoords=ax.get_xaxis_transform(),
            textcoords="offset points",
            rotation=90,
            color=REJECTED,
            ha="right",
        )
    ax.set_ylabel("Overall level (dB)")
    lines = list(ax.lines[: 2 if ds.aq.masked.values.any() else 1])
    if "PNLT" in ds.variables and (ds["PNLT"].values > 0).any():
        lines += _draw_event(ax, seconds, ds)
        ax.set_ylabel("Level (dB)")
    legend_above(ax, lines)
    ax.grid(alpha=0.3)
    return ax


def _fixes(positions: Any) -> list[xr.Dataset]:
    """The good fixes, and the rejected ones if there are any."""
    some = [positions]
    if isinstance(positions, Tracking):
        some = list(positions) if len(positions.rejected) else [positions.positions]
    fixes = [dataset_of(each, "time", "x", "y", "z") for each in some]
    finite(max(fixes, key=lambda ds: ds["x"].size), "x", "fixes")
    return fixes


def _draw_fixes(ax: Axes, xs: list[Any], ys: list[Any]) -> None:
    """Good fixes as a line with points, rejected ones as crosses."""
    ax.plot(xs[0], ys[0], ".-", ms=3, lw=1, color=GOOD, label=f"{len(xs[0])} fixes")
    for x, y in zip(xs[1:], ys[1:]):
        ax.plot(x, y, "x", color=REJECTED, label=f"{len(x)} rejected")
    ax.legend()
    ax.grid(alpha=0.3)


def ground_track(
    positions: Any, microphone: Any = None, ax: Optional[Axes] = None, unit: Optional[str] = None
) -> Axes:
    """The path over the ground, to scale, with rejected fixes and the microphone.

    `unit` labels the lengths, which are not converted: m, km, ft or nautical_mile, by default the
    dataset's unit; any other raises `ValueError`, as do positions without a fix.

    >>> aq_data.plot.ground_track(track, microphone)
    """
    fixes, ax = _fixes(positions), axes(ax)
    unit = length_unit(unit, fixes[0], "x")
    _draw_fixes(ax, [ds["x"].values for ds in fixes], [ds["y"].values for ds in fixes])
    if microphone is not None:
        expect(microphone, _core.AQ_Microphone, "microphone")
        ax.plot(
            microphone.X, microphone.Y, "^", color="black", ms=9, mfc="none", label="microphone"
        )
        ax.legend()
    ax.set_xlabel(f"X ({unit})")
    ax.set_ylabel(f"Y ({unit})")
    ax.set_aspect("equal", adjustable="datalim")
    return ax


def height(positions: Any, ax: Optional[Axes] = None, unit: Optional[str] = None) -> Axes:
    """The height over time, with rejected fixes; `unit` as for the ground track.

    >>> aq_data.plot.height(track, unit="ft")
    """
    fixes, ax = _fixes(positions), axes(ax)
    unit = length_unit(unit, fixes[0], "z")
    _draw_fixes(ax, time_axis(ax, *fixes), [ds["z"].values for ds in fixes])
    ax.set_ylabel(f"Height Z ({unit})")
    return ax


def _degrees(ds: xr.Dataset, name: str) -> Any:
    angle = ds[name].values
    return np.degrees(angle) if ds[name].attrs.get("units") == "rad" else angle


def geometry(geometry: Any, ax: Optional[Axes] = None, unit: Optional[str] = None) -> Axes:
    """Slant range (left axis) and emission angles in degrees (right axis) over the time of the
    record; `unit` as for the ground track. A dataset may have its angles in radians.

    >>> aq_data.plot.geometry(points)
    """
    ds = dataset_of(geometry, "time", "record", "slant_range", "theta", "beta")
    need_once(finite(ds, "slant_range", "points"))
    unit = length_unit(unit, ds, "slant_range")
    ds, ax = every_record(ds), axes(ax)
    (seconds,) = time_axis(ax, ds)
    lines = ax.plot(seconds, ds["slant_range"], color=GOOD, label="range", **ALONE)
    angles = ax.twinx()
    lines += angles.plot(
        seconds, _degrees(ds, "theta"), color="tab:orange", label="first angle", **ALONE
    )
    lines += angles.plot(
        seconds, _degrees(ds, "beta"), "--", color="tab:green", label="second angle", **ALONE
    )
    ax.set_ylabel(f"Slant range at emission ({unit})")
    angles.set_ylabel("Emission angle (degrees)")
    legend_above(ax, lines)
    ax.grid(alpha=0.3)
    return ax


_draw_geometry = geometry  # `page` has an argument named `geometry`


def page(
    history: History,
    ambient: Any = None,
    positions: Any = None,
    geometry: Any = None,
    microphone: Any = None,
    events: Optional[dict[str, float]] = None,
    unit: Optional[str] = None,
) -> Figure:
    """A whole measurement on one page; omits what is not given. `unit` is the unit of positions and
    geometry. Raises the same errors as its plots, and then leaves no figure open.

    >>> aq_data.plot.page(ds, ambient, track).savefig("fly-over.png")
    """
    ds = history_of(history)
    loudest = int(ds["record"].values[np.nanargmax(ds.aq.overall().values)])
    panels: list[Any] = [
        (lambda ax: spectrogram(ds, ax), "Spectrogram"),
        (lambda ax: level_time(ds, events, ax), "Level over time"),
        (lambda ax: spectrum(ds, loudest, ambient, ax), "Spectrum of the loudest record"),
    ]
    if positions is not None:
        panels.append((lambda ax: ground_track(positions, microphone, ax, unit), "Ground track"))
        panels.append((lambda ax: height(positions, ax, unit), "Height"))
    if geometry is not None:
        panels.append((lambda ax: _draw_geometry(geometry, ax, unit), "Geometry"))
    rows = (len(panels) + 1) // 2
    figure = plt.figure(figsize=(12, 3.6 * rows), layout="constrained")
    try:
        for place, (draw, title) in enumerate(panels, start=1):
            draw(figure.add_subplot(rows, 2, place)).set_title(title, loc="left")
    except Exception:
        plt.close(figure)
        raise
    figure.suptitle(ds.attrs.get("title", "Measurement"))
    return figure
