"""Noise metrics of histories, arrays and archives, and emission geometry. The metrics of a history
are compared with those of a plain program in tests/second.
"""

from __future__ import annotations

import sys
from pathlib import Path
from typing import Any

import matplotlib.pyplot as plt
import numpy as np
import pytest
import xarray as xr

import aq_data as aq
from conftest import PROJECT

sys.path.insert(0, str(PROJECT / "tests" / "second"))
import metrics as second  # noqa: E402

TURBOFAN = [0, 0, 70, 62, 70, 80, 82, 83, 76, 80, 80, 79, 78, 80, 78, 76, 79, 85, 79, 78]
TURBOFAN += [71, 60, 54, 45]


def records_of(history: Any) -> list[dict[str, Any]]:
    bands = history.bands.tolist()
    return [
        {"number": int(number), "seconds": float(time), "levels": dict(zip(bands, row.tolist()))}
        for number, time, row in zip(
            history.records, history.times["TODseconds"], history.to_numpy()
        )
    ]


def rows_of(mask: Any) -> dict[int, Any]:
    modes, adjustments = mask.to_numpy()
    bands = mask.bands.tolist()
    return {
        int(number): {b: (int(m), int(a)) for b, m, a in zip(bands, mode, adjustment) if m >= 0}
        for number, mode, adjustment in zip(mask.records, modes, adjustments)
    }


def test_metrics_of_a_history(history: Any, mask: Any) -> None:
    found = aq.metrics(history, mask)
    rows, event = second.metrics(records_of(history), rows_of(mask))
    assert event is not None
    for name in ("AWT", "CWT", "DWT", "OA", "PNL", "PNLT", "TONECOR", "TONEBND", "LGB", "INTEG"):
        expected = np.array([row[name] for row in rows], float)
        np.testing.assert_allclose(found[name].values, expected, rtol=0, atol=1e-9)
    assert found.attrs["EPNL"] == pytest.approx(event["epnl"], abs=1e-9)
    assert found.attrs["maximum"] == event["maximum"] + 1
    for name in ("first", "last"):
        place = event[name]
        assert found.attrs[name] == (-1 if place is None else place + 1)
    assert float(found.PNLT.sel(record=found.attrs["maximum"])) == found.attrs["PNLTM"]
    assert np.isnan(aq.metrics(history).LGB).all()
    assert not history.Metrics.MetricTypes  # nothing was stored


def test_what_has_no_value_is_nan(history: Any) -> None:
    levels = history.to_numpy()
    levels[5] = 9999
    levels[6, 2:] = np.nan
    ds = history.to_xarray()
    ds["level"] = (("time", "band"), levels)
    found = ds.aq.metrics()
    assert np.isnan(found.PNLT[5]) and np.isnan(found.OA[5]) and found.INTEG[5] == 0
    assert found.TONECOR[6] == 0 and found.TONEBND[6] == 0
    empty = aq.metrics(aq.AQ_SpectralTimeHistory())
    assert np.isnan(empty.attrs["EPNL"]) and empty.attrs["maximum"] == -1


def test_tone_corrections_of_arrays() -> None:
    one = aq.tone_correction(TURBOFAN)
    assert one["correction"] == pytest.approx(2) and one["band"] == 34 and one["last_band"] == 40
    levels = np.array([TURBOFAN, TURBOFAN, TURBOFAN], float)
    levels[1, 2] = np.nan
    levels[2, 20:] = 9999
    many = aq.tone_correction(levels)
    assert many["last_band"].tolist() == [40, 18, 36]
    assert many["band"].tolist() == [34, 0, 34]
    assert aq.tone_correction(np.ma.masked_equal(levels, 45))["last_band"][0] == 39
    with pytest.raises(ValueError, match="24 bands"):
        aq.tone_correction(levels[:, 1:])
    with pytest.raises(TypeError):
        aq.tone_correction(["a"] * 24)


def test_events_of_arrays() -> None:
    event = aq.epnl([80, 86, 90, 96, 90, 86, 80], 0.5, [0, 0, 2, 1, 2, 3, 0])
    assert (event.first, event.maximum, event.last) == (1, 3, 5)
    assert event.epnlWithBandSharing == pytest.approx(event.epnl + 0.6)
    assert event.duration == event.epnl - event.pnltm == event.epnl - 96
    open_ended = aq.epnl([96, np.nan, 95, 96])
    assert open_ended.first is None and open_ended.last is None and open_ended.bandSharing == 0
    for pnlt, seconds in (([], 0.5), ([np.nan], 0.5), ([96, 95], [1, 1, 1])):
        with pytest.raises(ValueError):
            aq.epnl(pnlt, seconds)
    with pytest.raises(aq.Error, match="above 0 s"):
        aq.epnl([96, 95], 0)


def test_the_tone_correction_is_explained(history: Any, mask: Any) -> None:
    spectrum = aq.AQ_Spectrum.from_numpy(np.array(TURBOFAN, float))
    steps = aq.explain(spectrum)
    assert steps.attrs["band"] == 34 and steps.attrs["correction"] == pytest.approx(2)
    assert steps.loc[20, "background"] == pytest.approx(67 + 2 / 3)
    assert steps.index[steps.level_marked].tolist() == [21, 24, 26, 34]
    assert np.isnan(steps.loc[19, "slope"]) and steps.loc[34, "frequency"] == 2500
    of_record = aq.explain(history, 30, mask)
    assert of_record.attrs["correction"] == aq.metrics(history, mask).TONECOR.sel(record=30)
    with pytest.raises(ValueError, match="found 99"):
        aq.explain(history, 99)
    ax = aq.plot.tone(history, 30, mask)
    assert "dB" in ax.get_ylabel() and "(Hz)" in ax.get_xlabel()
    plt.close("all")


def test_an_audit_finds_what_is_stored_wrong(history: Any, mask: Any, tmp_path: Path) -> None:
    aq.setMetrics(history, mask)
    assert aq.audit(history, mask).empty
    ds = history.to_xarray(mask)
    assert aq.audit(ds).empty
    ds["PNLT"][3] += 0.2
    ds["TONEBND"][4] = 20
    found = aq.audit(ds)
    assert found.record.tolist() == [4, 5] and found.metric.tolist() == ["PNLT", "TONEBND"]
    assert found.stored[0] - found.computed[0] == pytest.approx(0.2, abs=1e-4)
    ds.to_netcdf(tmp_path / "wrong.nc")
    told = aq.check(tmp_path)
    assert told.kind.tolist() == ["metric"] * 2 and told.record.tolist() == [4, 5]
    assert set(told.kind) <= set(aq.FINDING_KINDS)


def test_metrics_of_an_archive(archive: Any, history: Any) -> None:
    paths = archive(3)
    for path in paths:  # the archive's histories have no times
        header, own = aq.read(path)
        own.times = history.times
        aq.write(own, path)
    many = aq.open_many(paths)
    found = many.aq.metrics()
    assert found.PNLT.chunks is not None and found.PNLT.dims == ("time",)
    alone = [aq.metrics(aq.read(path).data) for path in paths]
    for name in ("AWT", "PNLT", "INTEG"):
        np.testing.assert_array_equal(
            found[name].compute(), np.concatenate([each[name].values for each in alone])
        )
    table = aq.events(many)
    assert table.path.tolist() == [str(path) for path in paths]
    np.testing.assert_array_equal(table.EPNL, [each.attrs["EPNL"] for each in alone])
    assert aq.events(many.compute()).equals(table)
    assert (np.diff(table.EPNL) > 0.9).all()


def test_emission_geometry_of_a_microphone(sample: Path, history: Any) -> None:
    positions = aq.read_tracking(sample / "fly-over.tspi.csv").positions
    microphone = aq.read(sample / "fly-over.mic.csv").data
    found = aq.emission_geometry(positions, microphone, history, 20).to_xarray()
    np.testing.assert_allclose(found.slant_range, 343.2 * found.propagation_time, atol=1e-6)
    assert 0 < len(found.record) < 60 and (np.diff(found.theta) > 0).all()
    place = aq.AQ_Position()
    place.X, place.Y, place.Z = microphone.X, microphone.Y, microphone.Z + microphone.Height
    again = aq.emission_geometry(positions, place, history, 20).to_xarray()
    assert again.identical(found)


def test_the_event_is_drawn(history: Any, mask: Any) -> None:
    aq.setMetrics(history, mask)
    ax = aq.plot.level_time(history.to_xarray(mask))
    labels = [text.get_text() for text in ax.get_legend().get_texts()]
    assert any("PNLT" in label for label in labels)
    assert any(f"EPNL {aq.metrics(history, mask).attrs['EPNL']:.1f}" in label for label in labels)
    aq.plot.page(history)
    plt.close("all")


def test_metrics_need_a_history(history: Any) -> None:
    with pytest.raises(TypeError):
        aq.metrics([1, 2])
    with pytest.raises(ValueError):
        xr.Dataset().aq.metrics()
