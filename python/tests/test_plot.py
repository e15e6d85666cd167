"""Plots are drawn without a display, on the given axes, with units."""

from __future__ import annotations

from pathlib import Path
from typing import Any

import matplotlib.pyplot as plt
import numpy as np
import pytest

import aq_data as aq


@pytest.fixture
def pictures(sample: Path, history: Any, mask: Any) -> Any:
    ds = history.to_xarray(mask)
    track = aq.read_tracking(sample / "fly-over.tspi.csv")
    ambient = aq.read(sample / "fly-over.ssr.csv").data
    seconds = np.arange(52200.0, 52210.0, 0.5)
    geometry = aq.AQ_GeometryTimeHistory.from_numpy({"Tm": seconds, "SRe": seconds - 52000})
    return {
        "spectrogram": (lambda ax: aq.plot.spectrogram(ds, ax), "reference (s)", "(Hz)"),
        "spectrum": (lambda ax: aq.plot.spectrum(ds, 1, ambient, ax), "(Hz)", "(dB)"),
        "ambient": (lambda ax: aq.plot.spectrum(ambient, ax=ax), "(Hz)", "(dB)"),
        "level_time": (lambda ax: aq.plot.level_time(ds, {"x": 3.0}, ax), "(s)", "(dB)"),
        "ground_track": (lambda ax: aq.plot.ground_track(track, ax=ax), "X (m)", "Y (m)"),
        "height": (lambda ax: aq.plot.height(track, ax), "(h:min:s)", "(m)"),
        "geometry": (lambda ax: aq.plot.geometry(geometry, ax), "(h:min:s)", "(m)"),
        "page": lambda: aq.plot.page(ds, ambient, track, geometry, events={"x": 3.0}, unit="ft"),
    }


def test_each_picture_takes_and_returns_its_axes(pictures: Any) -> None:
    page = pictures.pop("page")()
    assert [ax.get_title("left") for ax in page.axes if ax.get_title("left")][-1] == "Geometry"
    assert sum("(ft)" in ax.get_xlabel() + ax.get_ylabel() for ax in page.axes) == 3
    for draw, x, y in pictures.values():
        _, ax = plt.subplots()
        assert draw(ax) is ax
        ax.figure.canvas.draw()
        assert x in ax.get_xlabel() and y in ax.get_ylabel()
        assert draw(None).figure is not ax.figure
    plt.close("all")


def test_pictures_show_the_masks_and_the_rejected(pictures: Any, sample: Path) -> None:
    ax = pictures["spectrogram"][0](None)
    legend = [text.get_text() for text in ax.get_legend().get_texts()]
    assert legend == ["masked", "last good band"]
    hatched = next(c for c in ax.collections if c.get_hatch())
    assert hatched.get_array().count() == 146
    assert ax.lines[0].get_ydata()[0] == 36.5
    masked = pictures["spectrum"][0](None).lines[2].get_xdata()
    assert list(masked) == [17, 18, 37, 38, 39, 40]
    rejected = pictures["height"][0](None).lines[1]
    assert rejected.get_label() == "4 rejected" and len(rejected.get_xdata()) == 4
    _, bad = aq.read_tracking(sample / "fly-over.tspi.csv")
    only_bad = aq.Tracking(aq.AQ_PositionTimeHistory(), bad)
    assert "h:min:s" in aq.plot.height(only_bad).get_xlabel()
    with pytest.raises(ValueError, match="found 999"):
        aq.plot.spectrum(aq.AQ_SpectralTimeHistory.from_numpy([[1.0]]), 999)
    plt.close("all")


def test_a_spectrogram_shows_gaps_and_what_lies_outside(history: Any, mask: Any) -> None:
    ds = history.to_xarray(mask)
    ds["last_good_band"][:3] = [0, 9999, 20]
    mesh = aq.plot.spectrogram(ds.isel(time=[0, 1, 2, 9], band=slice(5, 9))).axes
    assert mesh.collections[0].get_array().reshape(4, 10)[:, 3:9].mask.all()
    edges = mesh.lines[0].get_ydata()
    assert edges[:6].tolist() == [25.5, 25.5, 21.5, 21.5, 21.5, 21.5] and edges[-1] == 25.5
    over = aq.plot.level_time(ds.isel(time=[0, 9]), {"a": 0.0, "b": 1.0})
    assert np.isnan(over.lines[0].get_ydata()[1:9]).all()
    assert [text.get_text() for text in over.texts] == ["a", "b"]
    history.times = {"TODseconds": 86390 + np.arange(60) / 2 - 86400 * (np.arange(60) > 19)}
    history.times = {"RelSeconds": np.zeros(60)}
    over_midnight = history.to_xarray().isel(time=np.r_[:10, 30:60])
    assert np.ptp(aq.plot.level_time(over_midnight).lines[0].get_xdata()) == 29.5
    assert aq.plot.spectrogram(ds.isel(time=[4])).get_xticks().tolist() == [-12.5]
    history.times = {"TODseconds": np.zeros(60)}
    assert aq.plot.level_time(history).get_xlabel() == "Record"
    points = aq.AQ_GeometryTimeHistory.from_numpy({"SRe": [1.0, 2.0, 3.0]}, records=[1, 2, 5])
    line = aq.plot.geometry(points.to_xarray().isel(time=[2, 0, 1])).lines[0]
    np.testing.assert_array_equal(line.get_ydata(), [1, 2, np.nan, np.nan, 3])
    plt.close("all")


EMPTY, HISTORY = aq.AQ_PositionTimeHistory(), aq.AQ_SpectralTimeHistory.from_numpy([[60.0, 61.0]])


@pytest.mark.parametrize(
    "draw, kind, text",
    [
        (lambda: aq.plot.ground_track(EMPTY), ValueError, "expected fixes to draw, found none"),
        (lambda: aq.plot.geometry(aq.AQ_GeometryTimeHistory()), ValueError, "points to draw"),
        (lambda: aq.plot.spectrum(HISTORY, 1, HISTORY), ValueError, "one spectrum as the ambient"),
        (lambda: aq.plot.spectrum(HISTORY), ValueError, "number of a record, found None"),
        (lambda: aq.plot.level_time(HISTORY, {"x": "noon"}), ValueError, "'noon' for x"),
        (lambda: aq.plot.spectrogram(HISTORY, plt), TypeError, "expected Axes, found module"),
        (lambda: aq.plot.page(HISTORY, positions=EMPTY), ValueError, "fixes to draw"),
    ],
)
def test_what_cannot_be_drawn_is_refused(draw: Any, kind: type, text: str) -> None:
    with pytest.raises(kind, match=text):
        draw()
    plt.close("all")


def test_units_are_those_of_the_data_or_known(sample: Path) -> None:
    track = aq.read(sample / "fly-over.tspi.csv").data.to_xarray(unit="ft")
    assert aq.plot.height(track).get_ylabel() == "Height Z (ft)"
    with pytest.raises(ValueError, match=r"\(m, km, ft, nautical_mile\), found 'mile'"):
        aq.plot.height(track, unit="mile")
    points = aq.AQ_GeometryTimeHistory.from_numpy({"SRe": [1.0, 2.0], "THETAe": [0.0, np.pi]})
    in_radians = aq.plot.geometry(points.to_xarray(angle_unit="rad"))
    np.testing.assert_allclose(in_radians.figure.axes[1].lines[0].get_ydata(), [0, 180])
    assert "plot" in dir(aq)
    plt.close("all")
