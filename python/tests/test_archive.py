"""Tests scans, checks and lazy datasets of folders, with damaged files among good ones."""

from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path
from typing import Any, Callable

import dask
import numpy as np
import pytest
import xarray as xr

import aq_data as aq
from conftest import PROJECT

Archive = Callable[[int], list[Path]]


def test_a_scan_lists_all_and_what_is_wrong(archive: Archive, tmp_path: Path, capfd: Any) -> None:
    paths = archive(40)
    text = paths[17].read_text()
    paths[17].write_text(text[: text.rindex(",")] + ",6x.2\n")
    (tmp_path / "notes").mkdir()
    (tmp_path / "notes" / "letter.txt").write_text("Dear colleague,\n")
    late = tmp_path / "late.gth.csv"  # records 5 and 6
    text = (PROJECT / "tests/data/geometric-time-history/good/two-points.csv").read_text()
    late.write_text(text.replace("\n1,", "\n5,").replace("\n2,", "\n6,"))
    frame = aq.scan(os.fsencode(tmp_path), progress=True)
    assert "100%" in capfd.readouterr().err
    assert len(frame) == 42 and list(frame[~frame.ok].path) == [
        str(paths[17]),
        str(tmp_path / "notes" / "letter.txt"),
    ]
    assert (frame[frame.ok].errors == 0).all() and (frame[~frame.ok].errors > 0).all()
    late_row = frame[frame.path == str(late)].iloc[0]
    assert (late_row.records, late_row.first_record) == (2, 5)
    damaged = frame[frame.path == str(paths[17])].iloc[0]
    assert (damaged.line, damaged.field, damaged.found) == (80, 27, '"6x.2"')
    good = frame.iloc[0]
    assert (good.kind, good.records, good.high_band) == ("SpectralTimeHistory", 60, 40)
    assert (good.begin, good.averaging, good.stamp) == ("00:00:00", "LINEAR", "START")
    with pytest.raises(NotADirectoryError):
        aq.scan(paths[0])


def test_a_check_finds_what_the_tool_finds(archive: Archive, tmp_path: Path, sample: Path) -> None:
    text = (sample / "fly-over.mask.csv").read_text()
    (tmp_path / "fly-over.sth.csv").write_bytes((sample / "fly-over.sth.csv").read_bytes())
    short = tmp_path / "short.mask.csv"
    short.write_text("\n".join(text.splitlines()[:-1]) + "\n")
    damaged = archive(1)[0]
    damaged.write_text(damaged.read_text()[:-40])
    found = aq.check([short, damaged, sample / "fly-over.ini.csv"])
    errors = found[found.severity == "error"]
    assert set(errors.path) >= {str(damaged)} and str(short) in set(found.path)
    assert errors[errors.path == str(damaged)].iloc[0].line == 80
    assert set(found.kind) <= set(aq.FINDING_KINDS)
    assert len(aq.check(os.fsencode(sample / "fly-over.s*.csv"))) == 0


def test_many_histories_are_one_lazy_dataset(
    archive: Archive, tmp_path: Path, mask: Any, monkeypatch: Any
) -> None:
    paths = archive(5)
    narrow = aq.AQ_SpectralTimeHistory.from_numpy([[50.0]], low_band=42)
    aq.write(narrow, tmp_path / "0005.sth.csv")
    monkeypatch.setattr("aq_data.many.RECORDS_PER_CHUNK", 130)
    ds = aq.open_many(tmp_path / "*.sth.csv")
    assert ds.level.chunks[0] == (120, 120, 61) and list(ds.band) == [*range(17, 41), 42]
    assert [str(p) for p in ds.path.values[:5]] == [str(p) for p in paths]
    for scheduler in ("synchronous", "threads"):
        with dask.config.set(scheduler=scheduler):
            levels = ds.level.where(ds.file == 3, drop=True).values[:, :24]
            np.testing.assert_allclose(levels, aq.read(paths[3]).data.to_numpy())
            assert ds.level.values[-1, -1] == 50 and np.isnan(ds.level.values[-1, 0])
    aq.write(mask, tmp_path / "mask.csv")
    monkeypatch.chdir(tmp_path)
    masked = aq.open_many([path.name for path in paths], masks=["mask.csv"] * 5)
    monkeypatch.chdir(PROJECT)
    assert int(masked.aq.masked.sum().compute()) == 5 * 146
    alone = aq.read(paths[4]).data.to_xarray(mask)
    part = masked.isel(time=(masked.file == 4).values).drop_dims("path").drop_vars("file").compute()
    assert set(alone.variables) == set(part.variables)
    for name in alone.variables:
        xr.testing.assert_identical(part[name].variable, alone[name].variable)
    aq.write(aq.AQ_MaskMap.from_numpy([[0]]), tmp_path / "misfit.csv")
    with pytest.warns(UserWarning, match="misfit.csv: expected a map of the history's 60 records"):
        maps = [tmp_path / "mask.csv", tmp_path / "misfit.csv"]
        assert list(aq.open_many(paths[:2], maps, errors="skip").path) == [str(paths[0])]


def test_a_file_whose_levels_are_in_doubt_is_not_fine(
    archive: Archive, tmp_path: Path, sample: Path
) -> None:
    paths = archive(3)
    text = (sample / "fly-over.sth.csv").read_text()
    paths[1].write_text(text.replace(",61.51,", ",615.10,", 1))
    other = text.replace(",61.51,", ",61.50,", 1)  # so that this file is not a copy
    paths[2].write_text(other.replace("MicrophoneID**,", "MicrophoneID**,M7 "))
    assert list(aq.scan(tmp_path).ok) == [True, False, True]
    row = aq.scan(tmp_path).iloc[1]
    assert (row.line, row.warnings) == (22, 1) and "615.1" in row.found
    assert aq.scan(tmp_path, strict=False).ok.all()
    with pytest.raises(aq.FileError, match="0001.sth.csv, line 22, .*615.1"):
        aq.open_many(paths)
    with pytest.warns(UserWarning, match="levels as measured"):
        assert aq.open_many(paths, errors="skip").sizes["path"] == 2
    many = aq.open_many(paths, strict=False)
    assert many.warnings[1:].values.tolist() == [1, 0] and many.errors.sum() == 0
    assert many.microphone[2].item()[:3] == "M7 " and many.begin[2] == "14:30:00"
    assert many.project[2] == "Fly-over sample"


def test_a_copy_is_found_where_it_comes_second(archive: Archive, tmp_path: Path) -> None:
    paths = archive(2)
    copy = tmp_path / "0002.sth.csv"
    copy.write_text(paths[0].read_text())
    found = aq.check(tmp_path)
    copies = found[found.kind == "same-levels"]
    assert copies.path.tolist() == [str(copy)] and f'"{paths[0]}"' in copies.message.iloc[0]
    assert aq.scan(tmp_path).warnings.iloc[2] == aq.scan(tmp_path).warnings.iloc[1] + 2
    warnings = aq.open_many([*paths, copy]).warnings.values
    assert warnings[2] == warnings[1] + 2


def test_a_folder_is_checked_as_a_whole(archive: Archive, tmp_path: Path) -> None:
    (tmp_path / "a" / ".hidden").mkdir(parents=True)
    path = archive(1)[0].rename(tmp_path / "a" / "x.dat")  # recognised by its title
    (tmp_path / "a" / ".hidden" / "x.csv").write_text("not looked at")
    path.write_text(path.read_text().replace("FileName**", "Name**"))
    (tmp_path / "a" / "notes.txt").write_text("no measurement")
    (tmp_path / "a" / "again").symlink_to(tmp_path)
    (tmp_path / "gone.csv").symlink_to(tmp_path / "nowhere")
    found = aq.check(tmp_path)
    assert found.path.map(os.path.basename).unique().tolist() == ["x.dat", "gone.csv"]
    assert found.kind.iloc[0] == "keyword" and found.severity.iloc[-1] == "error"
    with pytest.raises(FileNotFoundError):
        aq.check(tmp_path / "none")


def test_a_pattern_gives_no_history_the_map_of_another(
    archive: Archive, tmp_path: Path, mask: Any
) -> None:
    paths, maps = archive(2), [tmp_path / "b.mask.csv", tmp_path / "a.mask.csv"]
    for path, map_path in zip(paths, maps):
        header = aq.AQ_HeaderMask()
        header.sGenerationFile = path.name
        aq.write((header, mask), map_path)
    with pytest.raises(ValueError, match="a map of 0000.sth.csv, found one of 0001.sth.csv"):
        aq.open_many(tmp_path / "*.sth.csv", tmp_path / "*.mask.csv", errors="skip")
    # Maps in a list may name other histories.
    assert aq.open_many(paths, maps[::-1]).sizes["path"] == 2


def test_a_damaged_file_raises_or_is_left_out(archive: Archive, tmp_path: Path) -> None:
    paths = archive(3)
    aq.write(aq.read(paths[0]), tmp_path / "[0].sth.csv")  # a name that is also a pattern
    assert list(aq.open_many(tmp_path / "[0].sth.csv").path) == [str(tmp_path / "[0].sth.csv")]
    paths[1].write_text(paths[1].read_text()[:-40])
    with pytest.raises(aq.FileError, match="0001"):
        aq.open_many(paths)
    with pytest.warns(UserWarning, match="0001.*line"):
        assert aq.open_many(paths, errors="skip").sizes["path"] == 2
    aq.open_many(paths[::2])
    lazy = aq.open_many(paths[::2])
    aq.write(aq.AQ_SpectralTimeHistory.from_numpy([[1.0]]), paths[0])
    with pytest.raises(ValueError, match="has changed"):
        lazy.level.compute()


@pytest.mark.parametrize(
    "arguments, kind, text",
    [
        (("none*.csv",), FileNotFoundError, "no file matches"),
        (([],), ValueError, "at least one history"),
        ((5,), TypeError, "paths: expected a path, a pattern or a list, found 5"),
        ((["a"], ["b", "c"]), ValueError, "a map for each of 1"),
        ((["a"], None, "ignore"), ValueError, "'ignore'"),
        (([PROJECT / "examples/data/fly-over.mask.csv"],), aq.FileError, "MaskingMap"),
    ],
)
def test_what_is_no_archive_is_refused(arguments: Any, kind: type, text: str) -> None:
    with pytest.raises(kind, match=text):
        aq.open_many(*arguments)


@pytest.mark.slow
def test_the_cluster_example_runs(tmp_path: Path) -> None:
    script = PROJECT / "examples" / "archive_on_a_cluster.py"
    done = subprocess.run(
        [sys.executable, script, "--files", "60", "--folder", tmp_path],
        capture_output=True,
        text=True,
    )
    assert done.returncode == 0, done.stderr
    assert "60 histories" in done.stdout and (tmp_path / "by_angle.nc").exists()
