"""Tests cutting, joining and mending, reading tables back, and the package's commands."""

import gzip
import shutil

import numpy as np
import pandas as pd
import pytest

import aq_data
from aq_data.__main__ import main

STH, MAP = "fly-over.sth.csv", "fly-over.mask.csv"


@pytest.fixture
def place(sample, tmp_path, monkeypatch):
    shutil.copytree(sample, tmp_path, dirs_exist_ok=True)
    monkeypatch.chdir(tmp_path)
    return tmp_path


def geometry_of(whole):
    """The points of records 10 to 50, and the same points numbered from 1, as in a file."""
    microphone = aq_data.read("fly-over.mic.csv").data
    track = aq_data.read_tracking("fly-over.tspi.csv").positions
    part = aq_data.AQ_SpectralTimeHistory()
    for record in range(10, 51):
        part.spectrum[record] = whole.data.spectrum(record)
    points = aq_data.emission_geometry(track, microphone, part, celsius=20)
    numbered = aq_data.AQ_GeometryTimeHistory.from_numpy(points.to_numpy())  # numbers them from 1
    return points, (aq_data.AQ_HeaderGTH(), numbered)


def test_cut_with_map_and_geometry(place):
    whole = aq_data.read(STH)
    points, geometry = geometry_of(whole)
    run = aq_data.cut(whole, MAP, geometry, down=10)
    assert run.history.data.records.tolist() == list(range(1, 22))
    assert run.history.header.cCommentLines[-1] == (
        "Cut from fly-over.sth.csv by down=10: records 1 to 21 were 20 to 40"
    )
    assert len(whole.header.cCommentLines) == 1  # the caller's header is unchanged
    assert run.geometry.data.Point(1).SRe == points.Point(20).SRe
    for reading, name in zip(run, ("e.sth.csv", "e.mask.csv", "e.gth.csv")):
        aq_data.write(reading, name)
    assert aq_data.check(["e.sth.csv", "e.mask.csv"]).empty
    ds = whole.data.to_xarray(aq_data.read(MAP).data).aq.cut(down=10)
    assert ds.record.values.tolist() == list(range(20, 41))
    assert np.array_equal(ds.level.values, run.history.data.to_numpy())
    levels, modes = ds.level.values[5:], ds.mask_mode.values[5:]
    history = aq_data.AQ_SpectralTimeHistory.from_numpy(levels, 17, range(25, 41))
    late = history.to_xarray(aq_data.AQ_MaskMap.from_numpy(modes, None, 17, range(25, 41)))
    assert late.aq.cut(records=(28, 30)).record.values.tolist() == [28, 29, 30]
    assert aq_data.metrics(ds.isel(time=slice(5, None))).record.values[0] == 25
    with pytest.raises(ValueError, match="no point"):
        aq_data.cut(whole, None, geometry, records=(1, 20))


@pytest.mark.parametrize(
    "choice, found",
    [
        ({"records": (58, 99)}, (58, 60)),
        ({"between": ("14:30:05", "14:30:06")}, (11, 12)),
        ({"between": (None, "14:30:01")}, (1, 2)),
        ({}, "just|one of"),
        ({"records": (1, 2), "down": 10}, "one of"),
        ({"records": (70, 80)}, "records from 1 to 60"),
        ({"between": ("15:00:00", None)}, "no record"),
        ({"down": 0}, "above 0"),
    ],
)
def test_choices(place, choice, found):
    ds = aq_data.read(STH).data.to_xarray(aq_data.read(MAP).data)
    for call in (
        lambda: aq_data.cut(STH, **choice).history.data.records,
        lambda: ds.aq.cut(**choice).record,
    ):
        if isinstance(found, str):
            with pytest.raises(ValueError, match=found):
                call()
        else:
            numbers = np.asarray(call())
            assert (numbers[0], numbers[-1]) == found


def test_join(place):
    first = aq_data.cut(STH, MAP, records=(1, 20))
    rest = aq_data.cut(STH, MAP, records=(24, 60))
    with pytest.raises(ValueError, match="records are missing"):
        aq_data.join(first, rest)
    whole = aq_data.join(first, rest, fill=True)
    assert (whole.history.data.to_numpy()[20:23] == 9999).all()
    assert len(whole.mask.data) == 60
    assert whole.history.header.cCommentLines[-1].endswith("3 records of 9999 between")
    rest.history.header.sMicrophoneID = "M2"
    with pytest.raises(ValueError, match="different microphones"):
        aq_data.join(first, rest, fill=True)
    with pytest.raises(ValueError, match="two pieces"):
        aq_data.join(first)
    points, geometry = geometry_of(aq_data.read(STH))
    cuts = [(10, 20), (21, 50), (22, 50)]
    one, two, late = (aq_data.cut(STH, MAP, geometry, records=cut) for cut in cuts)
    bare = aq_data.cut(STH, MAP, records=(51, 60))
    assert np.array_equal(aq_data.join(one, two).geometry.data.to_numpy(), geometry[1].to_numpy())
    for pieces, found in [
        ((one, late), "filled"),
        ((two, one), "before the first"),
        ((two, bare), "or none"),
    ]:
        with pytest.raises(ValueError, match=found):
            aq_data.join(*pieces, fill=True)


def test_fix(place):
    plain = (place / STH).read_bytes()
    (place / "bad.csv.gz").write_bytes(gzip.compress(plain.replace(b",", b"\t"))[:-9])
    with pytest.raises(aq_data.FileError, match="gzip"):
        aq_data.fix("bad.csv.gz")
    (place / "bad.csv.gz").unlink()
    (place / "wide.csv").write_bytes(plain.decode().encode("utf-16"))
    (place / "p.sth.csv.gz").write_bytes(gzip.compress(plain))
    told = aq_data.fix(".").set_index("path").done
    assert {path.rsplit("/")[-1]: done for path, done in told.items() if done} == {
        "wide.csv": ["UTF-16"],
        "p.sth.csv.gz": ["gzip"],
    }
    assert not (place / "wide.csv.orig").exists()
    aq_data.fix(".", write=True)
    for name in ("wide.csv", "p.sth.csv"):
        assert aq_data.read(name).data == aq_data.read(STH).data
    assert (place / "wide.csv.orig").read_bytes() == plain.decode().encode("utf-16")
    with pytest.raises(FileExistsError):
        aq_data.fix("p.sth.csv.gz", write=True)
    (place / "p.sth.csv").unlink()
    rows = aq_data.fix([".", "wide.csv.orig"], write=True, to="new/mended")
    assert {place / output for output in rows.output} == set((place / "new" / "mended").iterdir())
    assert rows.output.str.endswith("orig").sum() == 1  # only the one that was named
    with pytest.raises(FileExistsError):
        aq_data.fix(".", write=True, to="new/mended")


def test_tables_back(place):
    history, mask = aq_data.read(STH).data, aq_data.read(MAP).data
    for frame in (history.to_pandas(), history.to_pandas(tidy=True).sample(frac=1, random_state=1)):
        back = aq_data.AQ_SpectralTimeHistory.from_pandas(frame)
        assert np.array_equal(back.to_numpy(), history.to_numpy())
        if "band" in frame:
            assert np.array_equal(back.times, history.times)
    assert aq_data.AQ_MaskMap.from_pandas(mask.to_pandas()) == mask
    assert aq_data.AQ_MaskMap.from_pandas(mask.to_pandas(tidy=True)) == mask
    row = history.to_pandas().loc[30]
    assert np.array_equal(aq_data.AQ_Spectrum.from_pandas(row).to_numpy(), row)
    track = aq_data.read_tracking("fly-over.tspi.csv").positions
    assert aq_data.AQ_PositionTimeHistory.from_pandas(track.to_pandas()) == track
    with pytest.raises(ValueError, match="consecutive bands"):
        aq_data.AQ_SpectralTimeHistory.from_pandas(history.to_pandas().drop(columns=20))
    with pytest.raises(ValueError, match="once"):
        tidy = history.to_pandas(tidy=True)
        aq_data.AQ_SpectralTimeHistory.from_pandas(pd.concat([tidy, tidy.iloc[:1]]))


def test_pictures_and_netcdf(place, capsys):
    assert main(["plot", "page.svg", STH, MAP, "fly-over.tspi.csv", "fly-over.ssr.csv"]) == 0
    assert b"EPNL" in (place / "page.svg").read_bytes()
    assert main(["plot", "ambient.png", "fly-over.ssr.csv"]) == 0
    assert main(["plot", "x.png", STH, "fly-over.ini.csv"]) == 2
    assert "AQ_DataINI cannot be drawn" in capsys.readouterr().err
    assert main(["convert", STH, "fly.nc", MAP]) == 0
    assert main(["convert", "fly.nc", "back.sth.csv"]) == 0
    assert aq_data.read("back.sth.csv").data == aq_data.read(STH).data
    assert aq_data.read("back.mask.csv").data == aq_data.read(MAP).data
    (place / "back.sth.csv").unlink()
    assert main(["convert", "fly.nc", "back.sth.csv"]) == 2
    assert "back.mask.csv: already exists" in capsys.readouterr().err
    assert not (place / "back.sth.csv").exists()
    assert main(["--force", "convert", "fly.nc", "back.sth.csv"]) == 0
    assert not list(place.glob(".aq-*"))
