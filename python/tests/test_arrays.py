"""Tests the conversion of objects to arrays and tables of numbers, and back."""

from __future__ import annotations

import pickle
from typing import Any

import numpy as np
import pytest

import aq_data as aq

NAN = float("nan")
History, Map, Spectrum = aq.AQ_SpectralTimeHistory, aq.AQ_MaskMap, aq.AQ_Spectrum
Positions, REL = aq.AQ_PositionTimeHistory, "RelSeconds"
LEVELS = np.array([[60.5, 61.0, NAN], [NAN, 62.5, 63.0]])
PAIR = History.from_numpy(LEVELS, records=[7, 8])
HUGE = np.array([2**64 - 1], dtype=np.uint64)


class Gone:
    """An array backed by a file that no longer exists."""

    def __array__(self, *_: Any) -> Any:
        return open("gone.csv")


def test_levels_go_by_band_and_record_number() -> None:
    history = History.from_numpy(LEVELS, low_band=24, records=[7, 5])
    assert history.spectrum(7).SPL(24) == 60.5 and history.spectrum(5).SPL(26) == 63
    with pytest.raises(KeyError):
        history.spectrum(5).SPL(24)
    assert list(history.records) == [5, 7] and list(history.bands) == [24, 25, 26]
    np.testing.assert_array_equal(history.to_numpy(), LEVELS[::-1])


def test_masked_levels_are_missing_on_request() -> None:
    history = History.from_numpy(LEVELS, low_band=24, records=[5, 7])
    mask = Map()
    mask.Row[5] = aq.AQ_MaskRow()  # a row without bands masks nothing
    mask.Row[7] = aq.AQ_MaskRow()
    mask.Row[7].Mask[25].MaskMode = aq.MASKED_BY_PRE_DETECT
    mask.Row[7].Mask[40].MaskMode = aq.MASKED_BY_PRE_DETECT  # a band that the history lacks
    expected = LEVELS.copy()
    expected[1, 1] = NAN
    np.testing.assert_array_equal(history.to_numpy(mask), expected)
    np.testing.assert_array_equal(history.to_numpy(), LEVELS)


@pytest.mark.parametrize(
    "given",
    [
        np.asfortranarray(LEVELS),
        LEVELS[:, ::-1],
        LEVELS.astype(np.float32),
        np.array([[1, 2], [3, 4]], dtype=np.int8),
        LEVELS[:0],
        LEVELS[:, :0],
        [[50.0, 60.0]],
    ],
)
def test_any_layout_and_type_of_number_is_right(given: Any) -> None:
    taken = History.from_numpy(given).to_numpy()
    expected = np.asarray(given, dtype=float)
    if expected.size:
        np.testing.assert_array_equal(taken, expected)
    else:
        assert taken.shape == (len(expected), 0)


@pytest.mark.parametrize(
    "action, kind, text",
    [
        (lambda: History.from_numpy(np.zeros(3)), ValueError, "two dimensions.*1 dim"),
        (lambda: History.from_numpy([["a"]]), TypeError, "expected numbers.*U1"),
        (lambda: History.from_numpy(np.zeros((1, 9)), low_band=32760), ValueError, "32768"),
        (lambda: History.from_numpy(np.zeros((2, 2)), records=[1]), ValueError, "2 of them"),
        (lambda: History.from_numpy(np.zeros((1, 2)), records=[40000]), ValueError, "40000"),
        (lambda: History.from_numpy([[0], [0]], records=[1, 1]), ValueError, "1 appears twice"),
        (lambda: History.from_numpy([[1.0]], records=[1.5]), ValueError, "numbers, found 1.5"),
        (lambda: History.from_numpy(LEVELS).to_numpy(Map()), ValueError, "no row for record 1"),
        (lambda: Spectrum.from_numpy(LEVELS), ValueError, "one dimension"),
        (lambda: History.from_numpy([[0.0]], low_band=-1), ValueError, "-1 is below 0"),
        (lambda: History.from_numpy([[0]], records=HUGE), ValueError, "beyond 64 bits"),
        (lambda: History.from_numpy(Gone()), FileNotFoundError, "gone.csv"),
        (lambda: Map.from_numpy([[0.0, 300.0]]), ValueError, "mask mode of -1 to 3, found 300"),
        (lambda: Map.from_numpy([[1]], [[-1]]), ValueError, "adjustment of 0 to 6, found -1"),
        (lambda: setattr(aq.AQ_Mask(), "MaskMode", 9), ValueError, "member of AQ_MASK_MODE"),
        (lambda: setattr(aq.AQ_Mask(), "AdjustMode", 7), ValueError, "member of AQ_MASK_ADJUST"),
        (lambda: Map.from_numpy([[0]], [[0, 0]]), ValueError, "same shape"),
        (lambda: setattr(Map(), "last_good_bands", [1, 2]), ValueError, "0 of them, found 2"),
        (lambda: Positions.from_numpy({"A": [1]}), ValueError, "TODseconds"),
        (lambda: Positions.from_numpy(5), TypeError, "named columns"),
        (lambda: Positions.from_numpy({"X": [1.0], "Y": [1.0, 2.0]}), ValueError, "1 rows in.* Y"),
        (lambda: setattr(History(), "times", {"RelSeconds": [1.0]}), ValueError, "0 rows, found 1"),
        (lambda: setattr(PAIR, "times", {REL: [1, NAN]}), ValueError, "record 8.*found nan"),
        (lambda: setattr(PAIR, "times", {REL: [1, 2], "TOD": [1, 2]}), ValueError, "'TOD'"),
        (lambda: setattr(PAIR, "metrics", {"LGB": [30, 1.5]}), ValueError, "whole.*found 1.5"),
        (lambda: Positions.from_numpy({"TODseconds": [NAN]}), ValueError, "row 1"),
    ],
)
def test_what_is_no_such_array_is_refused(action: Any, kind: type, text: str) -> None:
    with pytest.raises(kind, match=text):
        action()


def test_a_level_that_is_no_number_has_no_array() -> None:
    history = History.from_numpy(LEVELS)
    history.spectrum[1].SPL[18] = "loud"
    with pytest.raises(TypeError, match="record 1: band 18"):
        history.to_numpy()
    history.spectrum[2] = None  # type: ignore[assignment]
    with pytest.raises(TypeError, match="number 2 is None"):
        history.to_numpy()


def test_masks_keep_modes_adjustments_and_gaps() -> None:
    modes, adjustments = np.array([[-1, 1, 0], [3, 2, -1]]), np.array([[-1, 6, 0], [0, 1, -1]])
    mask = Map.from_numpy(modes, adjustments, low_band=27, records=[2, 1])
    assert mask.Row(2).Mask(28).MaskString == "MR" and mask.Row(2).LowBand == 28
    mask.last_good_bands = [29, 9999]
    assert mask.Row(1).LGB == 29
    back = mask.to_numpy()
    np.testing.assert_array_equal(back, [modes[::-1], adjustments[::-1]])
    hidden = np.ma.array(modes, mask=modes == 2)
    assert Map.from_numpy(hidden).to_numpy()[0].tolist() == [[-1, 1, 0], [3, -1, -1]]
    assert Map.from_numpy(modes > 1).to_numpy()[0].tolist() == [[0, 0, 0], [1, 1, 0]]
    assert back[0].dtype == np.int8 and list(mask.bands) == [27, 28, 29]


def test_tables_of_times_metrics_positions_and_geometry() -> None:
    history = History.from_numpy(LEVELS)
    history.times = {"TODseconds": [90000.0, 1.0], "CurrentDate": [37695, 37696]}
    history.metrics = {"PNLT": [95.5, 90.25], "INTEG": [5, 0], "Level": [70.0, 71.0]}
    first = history.spectrum(1)
    assert (first.Time.TODseconds, first.Time.CurrentDate) == (90000, 37695)  # no wrap at midnight
    assert (first.Metric.PNLT, first.Metric.INTEG, first.Level) == (95.5, 5, 70)
    with pytest.raises(ValueError, match="LGB, record 2"):
        history.metrics = {"PNLT": [1.0, 2.0], "LGB": [30, 1e9]}
    assert history.metrics["PNLT"].tolist() == [95.5, 90.25]  # the failed call stored nothing
    rows = [(37695, 36000.1, -1.5, 1.0, 2.0, 3.0), (0, 36000.2, 0, 4, 5, 6)]
    names = ["CurrentDate", "TODseconds", "RelSeconds", "X", "Y", "Z"]
    table = np.array(rows, dtype=[(name, "f8") for name in names])
    positions = aq.AQ_PositionTimeHistory.from_numpy(table)
    assert (positions.Position(1).Z, positions.Position(2).Time.TODseconds) == (3, 36000.2)
    np.testing.assert_array_equal(positions.to_numpy(), table)
    columns = {
        name: [float(i)]
        for i, name in enumerate(aq.AQ_GeometryTimeHistory().to_numpy().dtype.names or (), start=1)
    }
    geometry = aq.AQ_GeometryTimeHistory.from_numpy(columns, records=[7])
    for twin in (pickle.loads(pickle.dumps(geometry)), aq.from_xarray(geometry.to_xarray()).data):
        assert list(twin.records) == [7] and len(twin) == 1
    point = geometry.Point(7)
    read = (point.Tm.TODseconds, point.Te.RelSeconds, point.Tprope, point.Pe.Z, point.BETAe)
    assert read == (2, 6, 7, 10, 13)
    assert geometry.to_numpy().tolist() == [tuple(v[0] for v in columns.values())]
