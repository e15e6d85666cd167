"""Datasets and their files: the CF conventions, clocks that pass midnight, and cut datasets."""

from __future__ import annotations

import re
from pathlib import Path
from typing import Any

import netCDF4
import numpy as np
import pytest
import xarray as xr

import aq_data as aq
from conftest import values
from test_labelled import through_netcdf

UNITS = {"1", "s", "Hz", "m", "ft", "degree", "d"} | {
    "dB",
    "PNdB",
    "TPNdB",
}  # the last three are acoustic units that UDUNITS lacks
NAMES = {"sound_frequency", "sound_pressure_level_in_air"}
TYPES = {"int8", "int16", "int32", "float32", "float64", "str"}


def faults_of_variable(name: str, var: Any, file: Any) -> list[str]:
    """The rules of the CF conventions that a variable breaks."""
    is_coordinate = var.dimensions == (name,)
    told = {key: var.getncattr(key) for key in var.ncattrs()}
    kind = "str" if var.dtype is str else str(var.dtype)
    data = np.asarray(var[:]) if kind != "str" else None
    flags = np.atleast_1d(told.get("flag_values", []))
    units = told.get("units", "1" if len(flags) else "")
    rules = {
        "name": re.fullmatch(r"[A-Za-z]\w*", name),
        "type": kind in TYPES,
        "units": kind == "str" or units in UNITS or "since" in units,
        "calendar": ("calendar" in told) == ("since" in units),
        "long name": told.get("long_name"),
        "standard name": told.get("standard_name", "sound_frequency") in NAMES,
        "missing value": not (is_coordinate and {"_FillValue", "missing_value"} & set(told)),
        "order": not is_coordinate or (np.diff(data) > 0).all(),
        "flags": len(flags) == len(told.get("flag_meanings", "").split()),
        "type of flags": not len(flags) or flags.dtype == var.dtype,
        "coordinates": set(told.get("coordinates", "").split()) <= set(file.variables),
    }
    return [f"{name}: {rule}" for rule, holds in rules.items() if not holds]


def check_conventions(ds: xr.Dataset, path: Path) -> None:
    ds.to_netcdf(path)
    with netCDF4.Dataset(path) as file:
        assert file.Conventions == "CF-1.8" and set(file.dimensions) <= {"time", "band"}
        assert [f for n, v in file.variables.items() for f in faults_of_variable(n, v, file)] == []


def test_files_keep_to_the_conventions(
    sample: Path, history: Any, mask: Any, tmp_path: Path
) -> None:
    header, _ = aq.read(sample / "fly-over.sth.csv")
    mask.setLGB()
    history.setLGB(mask)
    history.spectrum[2].Metric.PNLT = 90.5
    history.times = {"CurrentDate": np.full(60, 45123.0)}
    ds = history.to_xarray(mask, header)
    assert ds.date.values[0] == np.datetime64("2023-07-16") and "date" not in mask.to_xarray()
    check_conventions(ds, tmp_path / "history.nc")
    assert ds.attrs["title"] == "Fly-over sample" and ds.attrs["microphone"] == "M1"
    assert ds.attrs["averaging_method"] == "LINEAR" and ds.attrs["time_stamp_type"] == "MIDPT"
    assert ds.attrs["reference_time"] == "14:30:14.75"
    check_conventions(mask.to_xarray(), tmp_path / "mask.nc")
    track = aq.read(sample / "fly-over.tspi.csv").data
    check_conventions(track.to_xarray(unit="ft"), tmp_path / "positions.nc")
    assert track.to_xarray(unit="ft").x.attrs["units"] == "ft"
    unstamped = aq.AQ_SpectralTimeHistory.from_numpy([[1.0], [2.0]]).to_xarray()
    assert "Conventions" not in unstamped.attrs and "date" not in unstamped.variables
    geometry = aq.AQ_GeometryTimeHistory.from_numpy({"Tm": [5.0, 5.5], "Te": [4.0, 4.5]})
    check_conventions(geometry.to_xarray(), tmp_path / "geometry.nc")
    with pytest.raises(ValueError, match=r"\(m, km, ft, nautical_mile\), found 'mile'"):
        geometry.to_xarray(unit="mile")


@pytest.mark.parametrize("days", [45123.25, 1e7, -0.5])
def test_dates_that_are_no_whole_days_come_back(days: float, tmp_path: Path) -> None:
    history = aq.AQ_SpectralTimeHistory.from_numpy([[1.0], [2.0]])
    history.times = {"CurrentDate": [days, 45123.0], "TODseconds": [1.0, 1.5]}
    assert values(aq.from_xarray(through_netcdf(history.to_xarray(), tmp_path))[1]) == values(
        history
    )


def test_words_that_people_change_are_written(sample: Path, tmp_path: Path) -> None:
    header, history = aq.read(sample / "fly-over.sth.csv")
    ds = history.to_xarray(None, header)
    ds.attrs.update(
        microphone="M 12", reference_time_type="AMAX", comment="one\ntwo", file_date="x"
    )
    aq.write(ds, tmp_path / "x.csv")
    text = (tmp_path / "x.csv").read_text()
    assert "MicrophoneID**,M 12\n" in text and "ReferenceTimeType**,AMAX\n" in text
    assert "NumberOfCommentLines**,2\none\ntwo\n" in text
    with pytest.raises(ValueError, match="averaging_method to be one of LINEAR, .*found 'MEAN'"):
        aq.from_xarray(ds.assign_attrs(averaging_method="MEAN"))


def at_midnight(history: Any) -> Any:
    seconds = 86390.1 + np.arange(60) / 2
    history.times = {"TODseconds": np.where(seconds > 86400, seconds - 86400, seconds)}
    history.startTime.assignSeconds(86390.1, 0)
    return history


def test_clocks_go_on_beyond_midnight_and_come_back(
    history: Any, mask: Any, tmp_path: Path, monkeypatch: Any
) -> None:
    ds = at_midnight(history).to_xarray(mask)
    assert (np.diff(ds.time) > 0).all() and ds.indexes["time"].is_monotonic_increasing
    assert ds.sel(time=86404.2, method="nearest").record == 29
    assert np.isfinite(ds.level.interp(time=86400.05)).all()
    for stored in (ds, through_netcdf(ds, tmp_path), ds.roll(time=7, roll_coords=True)):
        assert values(aq.from_xarray(stored).data) == values(history)
    late = aq.measurement(ds.isel(time=slice(40, None)))[0].data
    assert late.times["TODseconds"][0] == history.times["TODseconds"][40]
    assert late.startTime.TODseconds == pytest.approx(10.1)
    moved = aq.from_xarray(ds.assign_coords(time=ds.time + 3)).data
    np.testing.assert_allclose(moved.times["TODseconds"][:2], [86393.1, 86393.6])
    np.testing.assert_allclose(moved.times["TODseconds"][-1], 86390.1 + 29.5 + 3 - 86400)
    own = {"Tm": [86399.5, 0.0], "Te": [86398.0, 86398.5]}
    geometry = aq.AQ_GeometryTimeHistory.from_numpy(own)
    stored = geometry.to_xarray()
    assert (stored.time - stored.emission_time).values.tolist() == [1.5, 1.5]
    assert values(aq.from_xarray(stored).data) == values(geometry)
    paths = [tmp_path / "a.sth.csv", tmp_path / "b.sth.csv"]
    for path in paths:
        aq.write(history, path)
    many = aq.open_many(paths)
    assert many.time.values[:60].max() == pytest.approx(ds.time.values.max())


def test_a_cut_dataset_is_written_again(sample: Path, tmp_path: Path) -> None:
    header, history = aq.read(sample / "fly-over.sth.csv")
    mask_header, mask = aq.read(sample / "fly-over.mask.csv")
    ds = history.to_xarray(mask, header, mask_header)
    for part, numbers in ((slice(10, 50), "11 to 50"), ([3, 7, 8], "4, 8 to 9")):
        cut = through_netcdf(ds, tmp_path).isel(time=part)
        parts = aq.measurement(cut)
        aq.write(parts[0], tmp_path / "cut.sth.csv")
        aq.write(parts[1], tmp_path / "cut.mask.csv")
        header_2, history_2 = aq.read(tmp_path / "cut.sth.csv")
        mask_header_2, mask_2 = aq.read(tmp_path / "cut.mask.csv")
        again = history_2.to_xarray(mask_2)
        np.testing.assert_array_equal(again.level, cut.level)
        np.testing.assert_array_equal(again.mask_mode, cut.mask_mode)
        assert list(history_2.records) == [*range(1, len(cut.time) + 1)]
        comment = f"Records 1 to {len(cut.time)} were {numbers}"
        assert header_2.cCommentLines[-1] == comment and not mask_header_2.sGenerationFile
        assert mask_header_2.cCommentLines[-1] == f"{comment} of the map of fly-over.sth.csv"
        first = cut.time.values[0] - ds.time.values[0]
        assert history_2.startTime.TODseconds == 52200 + first
    end, end_mask = aq.measurement(ds.isel(time=slice(10)))
    assert end.header.cCommentLines[-1] == "Cut to records 1 to 10"
    assert end_mask.header.cCommentLines[-1].endswith("10 of the map of fly-over.sth.csv")
    assert not end_mask.header.sGenerationFile
    whole = aq.measurement(ds)[0]
    assert whole.header.cCommentLines[-1] == header.cCommentLines[-1]
    geometry = aq.AQ_GeometryTimeHistory.from_numpy({"Tm": [1.0, 2.0, 3.0], "SRe": [7.0, 8.0, 9.0]})
    aq.write(geometry.to_xarray().isel(time=slice(1, None)), tmp_path / "cut.gth.csv")
    header_3, geometry_3 = aq.read(tmp_path / "cut.gth.csv")
    assert geometry_3.records.tolist() == [1, 2] and geometry_3.to_numpy()["SRe"][0] == 8
    assert list(header_3.colCommentLines) == ["Records 1 to 2 were 2 to 3"]
