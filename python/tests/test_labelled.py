"""Labelled datasets and tables, and measurements restored from datasets."""

from __future__ import annotations

from pathlib import Path
from typing import Any

import numpy as np
import pytest
import xarray as xr

import aq_data as aq
from conftest import values

History, Map, NAN = aq.AQ_SpectralTimeHistory.from_numpy, aq.AQ_MaskMap.from_numpy, float("nan")
HISTORY = History([[60.0, 61.0]])
GRID, TWICE, BANDS = (("time", "band"), [[1.0], [2.0]]), ("time", [4, 4]), {"band": [17]}
POINTS = aq.AQ_GeometryTimeHistory.from_numpy({"SRe": [1.0]})
UNEVEN = "record 2 has bands 17 to 18, but record 1 has bands 18 to 18"
LABELLED = ["fly-over.ssr.csv", "fly-over.mask.csv", "fly-over.sth.csv", "fly-over.tspi.csv"]


def through_netcdf(ds: xr.Dataset, folder: Path) -> xr.Dataset:
    ds.to_netcdf(folder / "x.nc")
    with xr.open_dataset(folder / "x.nc") as stored:
        return stored.load()


def check_measurement(folder: Path, stem: str, work: Path) -> None:
    header, history = aq.read(folder / f"{stem}.sth.csv")
    mask_header, mask = aq.read(folder / f"{stem}.mask.csv")
    mask.setLGB()
    history.setLGB(mask)
    history.spectrum[2].Metric.INTEG = aq.AQ_INTEG_FST
    history.spectrum[2].Level = 81.5
    history.Metrics.MetricType(aq.AQ_METRIC_PNL)
    history.ReferenceTime.assignSeconds(90001, 2)
    ds = history.to_xarray(mask, header, mask_header)
    stored = through_netcdf(ds, work)
    xr.testing.assert_identical(stored, ds)
    mixed = stored.isel(band=slice(None, None, -1)).roll(time=7, roll_coords=True)
    for dataset in (ds, stored, stored.transpose("band", "time"), mixed):
        (header_2, history_2), (mask_header_2, mask_2) = aq.measurement(dataset)
        assert values(mask_2) == values(mask) and values(mask_header_2) == values(mask_header)
        assert values(header_2) == values(header)
        assert values(history_2) == values(history)


def test_history_and_map_come_back_through_netcdf(sample: Path, tmp_path: Path) -> None:
    check_measurement(sample, "fly-over", tmp_path)


def test_field_data_comes_back_through_netcdf(field: Path, tmp_path: Path) -> None:
    check_measurement(field, "landing", tmp_path)
    for name in ("landing.gth.csv", "landing.pth.csv", "turbofan.ssr.csv"):
        header, data = aq.read(field / name)
        header_2, data_2 = aq.from_xarray(through_netcdf(data.to_xarray(header), tmp_path))
        assert values((header_2, data_2)) == values((header, data))


def test_gaps_odd_text_and_narrow_maps_come_back(tmp_path: Path) -> None:
    levels = np.array([[60.0, np.nan, 61.0], [np.nan, 62.5, 9999.0]])
    history = aq.AQ_SpectralTimeHistory.from_numpy(levels, 24, records=[3, 9])
    mask = aq.AQ_MaskMap.from_numpy([[2], [-1]], low_band=25, records=[3, 9])
    header = aq.AQ_HeaderSTH()
    header.sProjectName = "18 \udcb0C"
    (header_2, history_2), (_, mask_2) = aq.measurement(
        through_netcdf(history.to_xarray(mask, header), tmp_path)
    )
    assert values((header_2, history_2, mask_2)) == values((header, history, mask))


def test_variables_tell_what_they_are(history: Any, mask: Any) -> None:
    ds = history.to_xarray(mask)
    assert ds.level.attrs["units"] == "dB" and ds.level.dims == ("time", "band")
    assert ds.frequency.values[[0, 1, 13, 23]].tolist() == [50, 63, 1000, 10000]
    for band, hertz in zip(ds.band.values, ds.frequency.values):
        label = aq.bandLabel(int(band)).split("/")[1]
        assert label == (f"{hertz / 1000:g}kHz" if hertz >= 1000 else f"{hertz:g}Hz")
    meanings = ds.mask_mode.attrs["flag_meanings"].split()
    assert dict(zip(ds.mask_mode.attrs["flag_values"], meanings))[1] == "masked_by_mask_criterion"
    assert ds.time.values[0] == 52200.25 and ds.relative_time.values[0] == -14.5


def test_what_people_do_with_a_history(history: Any, mask: Any) -> None:
    levels = np.array([[60.0, 60.0, 9999.0], [np.nan, 9999.0, np.nan]])
    ds = aq.AQ_SpectralTimeHistory.from_numpy(levels, 30).to_xarray()
    np.testing.assert_allclose(ds.aq.overall(), [63.0103, np.nan], atol=1e-4)
    np.testing.assert_allclose(ds.aq.overall([30]), [60, np.nan])
    ds = history.to_xarray(mask)
    assert list(ds.aq.between(500, 1000).band) == [27, 28, 29, 30]
    assert int(ds.aq.masked.sum()) == 146 == int(ds.aq.unmasked().level.isnull().sum())
    geometry = aq.AQ_GeometryTimeHistory.from_numpy({"SRe": [150.0, 160.0]}).to_xarray()
    joined = ds.aq.with_geometry(geometry)
    assert joined.slant_range.values[:2].tolist() == [150, 160]
    assert joined.slant_range.isnull().sum() == 58 and "slant_range" not in ds


def test_tables_for_people(history: Any, mask: Any) -> None:
    wide, tidy = history.to_pandas(mask), history.to_pandas(mask, tidy=True)
    assert wide.shape == (60, 24) and wide.loc[1, 19] == 61.75 and np.isnan(wide.loc[1, 17])
    assert len(tidy) == 60 * 24
    row = tidy[(tidy.record == 1) & (tidy.band == 17)].iloc[0]
    assert (row.level, row.mask_mode, row.frequency, row.time) == (61.51, 1, 50, 52200.25)
    assert history.spectrum[1].to_pandas()[19] == 61.75
    assert mask.to_pandas().loc[4, 17] == 1 and len(mask.to_pandas(tidy=True)) == 60 * 24


@pytest.mark.parametrize("name", LABELLED)
def test_xarray_opens_the_files_itself(name: str, sample: Path) -> None:
    ds = xr.open_dataset(sample / name, engine="aq")
    reading = aq.read(sample / name)
    assert values(aq.from_xarray(ds).data) == values(reading.data)
    xr.testing.assert_identical(xr.open_dataset(str(sample / name)), ds)  # finds the engine itself


def test_the_engine_joins_the_map_and_drops_variables(sample: Path) -> None:
    history, mask = sample / "fly-over.sth.csv", sample / "fly-over.mask.csv"
    ds = xr.open_dataset(history, engine="aq", mask=mask, drop_variables="last_good_band")
    assert "mask_mode" in ds and "last_good_band" not in ds
    assert "window_before" in xr.open_dataset(sample / "fly-over.ini.csv", engine="aq")


@pytest.mark.parametrize(
    "ds, text",
    [
        (xr.Dataset(), "lacks all of level, mask_mode"),
        (xr.Dataset({"level": ("time", [1.0])}), "lacks band"),
        (xr.Dataset({"x": ("time", [1.0])}), "lacks time, y, z"),
        (HISTORY.to_xarray().assign_coords(band=[17, 19]), "consecutive bands"),
        (
            xr.Dataset({"level": ("band", [1.0])}, {"band": [17]}),
            "over time, band, found level over band",
        ),
        (xr.Dataset({"level": GRID, "record": TWICE, "file": 0}, BANDS), "4 again; select one"),
    ],
)
def test_a_dataset_without_what_it_needs_says_so(ds: xr.Dataset, text: str) -> None:
    with pytest.raises(ValueError, match=text):
        aq.from_xarray(ds)


@pytest.mark.parametrize(
    "action, kind, text",
    [
        (lambda ds: aq.from_xarray([ds]), TypeError, "expected Dataset, found list"),
        (lambda ds: HISTORY.to_xarray(HISTORY), TypeError, "expected AQ_MaskMap"),
        (lambda ds: HISTORY.to_xarray(header=aq.AQ_HeaderGTH()), TypeError, "AQ_HeaderSTH"),
        (lambda ds: ds.aq.with_geometry(5), TypeError, "found int"),
        (lambda ds: ds.aq.with_geometry(ds), ValueError, "lacks slant_range"),
        (lambda ds: ds.drop_vars("frequency").aq.between(1, 2), ValueError, "lacks frequency"),
        (lambda ds: ds.aq.overall([99]), ValueError, "99"),
        (lambda ds: ds.aq.between(1e6, 1e7), ValueError, "1e\\+06 to 1e\\+07 Hz, found none"),
        (lambda ds: ds.isel(time=0).aq.with_geometry(POINTS), ValueError, "one dimension"),
        (lambda ds: aq.from_xarray(ds.assign_attrs(aq="x")), ValueError, "attribute aq.*'x'"),
        (lambda ds: aq.from_xarray(ds.assign_attrs(aq='{"kind": 1}')), ValueError, "attribute aq"),
        (lambda ds: aq.from_xarray(ds.assign_attrs(aq='{"header": {"x": 1}}')), ValueError, "'x'"),
        (lambda ds: aq.write(History([[1], [2]], 17, [5, 7]), "x.csv"), ValueError, "no record 6"),
        (lambda ds: aq.write(History([[NAN, 5], [4, 5]]), "x.csv"), ValueError, UNEVEN),
        (lambda ds: aq.write(Map([[-1, 1], [1, 1]]), "x.csv"), ValueError, UNEVEN),
        (lambda ds: aq.write(History([[4, NAN, 5]]), "x.csv"), ValueError, "record 1: band 18 has"),
        (lambda ds: aq.write(History([[NAN]]), "x.csv"), ValueError, "with bands, found none"),
        (lambda ds: aq.write(Map(np.zeros((0, 1))), "x.csv"), ValueError, "records, found none"),
        (lambda ds: aq.write(aq.AQ_Spectrum(), "x.csv"), ValueError, "with bands, found none"),
        (lambda ds: aq.write(ds.assign(mask_mode=ds.level), "x.csv"), ValueError, "measurement"),
        (lambda ds: aq.write(aq.Tracking(None, None), "x.csv"), TypeError, "Tracking"),  # type: ignore
        (lambda ds: aq.plot.page(aq.AQ_SpectralTimeHistory()), ValueError, "levels, found none"),
        (lambda ds: aq.plot.level_time(aq.AQ_MaskMap()), ValueError, "lacks level"),
        (lambda ds: aq.plot.spectrogram(5), TypeError, "found int"),
        (
            lambda ds: aq.setMetrics(aq.Reading(None, HISTORY)),
            TypeError,
            "history: .*found Reading; pass its data",
        ),
        (
            lambda ds: aq.maskByAmbient(HISTORY, aq.AQ_Spectrum(), "3"),
            TypeError,
            "margin: .*number",
        ),
    ],
)
def test_what_people_get_wrong_is_named(action: Any, kind: type, text: str) -> None:
    with pytest.raises(kind, match=text):
        action(HISTORY.to_xarray())


def test_a_selection_is_written_with_its_own_records(history: Any, tmp_path: Path) -> None:
    ds = history.to_xarray()
    first, later = ds.isel(time=slice(10)), ds.isel(time=slice(10, 15))
    for part in (first, later, xr.concat([first, later], "time")):
        aq.write(part, tmp_path / "part.sth.csv")
        assert (
            aq.read(tmp_path / "part.sth.csv").data.records.tolist() == part.record.values.tolist()
        )


def test_a_map_of_another_measurement_is_refused(history: Any, mask: Any) -> None:
    with pytest.raises(ValueError, match="60 records, found 1 rows"):
        history.to_xarray(aq.AQ_MaskMap.from_numpy([[0]]))
    mask.Row[1].Mask[45].MaskMode = aq.NOT_MASKED
    with pytest.raises(ValueError, match="history's bands"):
        history.to_xarray(mask)


def test_a_dataset_of_ones_own_is_a_history(tmp_path: Path) -> None:
    ds = xr.Dataset({"level": (("time", "band"), [[70.5, 71.5]])}, {"band": [20, 21]})
    aq.write(ds, tmp_path / "own.sth.csv")
    assert aq.read(tmp_path / "own.sth.csv").data.spectrum(1).SPL(21) == 71.5
