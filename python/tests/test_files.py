"""Tests reading and writing any file with one call, and what cannot be read or written."""

from __future__ import annotations

import errno
import pickle
import re
from pathlib import Path
from typing import Any

import pytest

import aq_data as aq
from conftest import PROJECT, values

KINDS = {
    "spectral-time-history": aq.AQ_SpectralTimeHistory,
    "masking-map": aq.AQ_MaskMap,
    "spectrum-record": aq.AQ_Spectrum,
    "position-time-history": aq.AQ_PositionTimeHistory,
    "geometric-time-history": aq.AQ_GeometryTimeHistory,
    "variable-initialization": aq.AQ_DataINI,
    "tracking": aq.AQ_PositionTimeHistory,
    "microphone-position": aq.AQ_Microphone,
}
READ_ONLY = ("tracking", "microphone-position")
GOOD = [
    (folder, path)
    for folder in KINDS
    for path in sorted((PROJECT / "tests" / "data" / folder / "good").iterdir())
    if aq.kindOfFile(path) != aq.FileKind.Unknown  # a tracking file without fixes is Unknown
]


def without_own_name(part: Any) -> Any:
    """The content of a header or an object, except the name and date of its own file."""
    own = re.compile("s?FileName|aqFileDateTime|FileDateTime|GTHFile.*")
    names = [name for name in getattr(part, "_fields", ()) if not own.fullmatch(name)]
    entries = list(part) if hasattr(part, "__iter__") else []
    return values([[getattr(part, name) for name in names], entries])


@pytest.mark.parametrize("folder, path", GOOD, ids=lambda x: x.name if isinstance(x, Path) else x)
def test_every_kind_reads_and_is_written_the_same(folder: str, path: Path, tmp_path: Path) -> None:
    reading = aq.read(path)
    assert type(reading.data) is KINDS[folder]
    if folder in READ_ONLY:
        return
    copy, again = tmp_path / "copy.csv", tmp_path / "again.csv"
    aq.write(reading, copy)
    aq.write(aq.read(copy), again)
    for before, after in (
        (reading.header, aq.read(copy).header),
        (reading.data, aq.read(copy).data),
    ):
        assert without_own_name(before) == without_own_name(after)
    own = (b"FileName", b"FileDateTime")  # lines about the file itself
    first, second = (
        [line for line in file.read_bytes().splitlines() if not line.startswith(own)]
        for file in (copy, again)
    )
    assert first and first == second


def test_what_a_file_cannot_say_is_told(tmp_path: Path, sample: Path) -> None:
    text = (sample / "fly-over.sth.csv").read_text()
    odd = tmp_path / "odd.sth.csv"
    odd.write_text(text.replace("Method**,", "Method**,FOO"))
    with pytest.warns(UserWarning, match='odd.sth.csv, line 6: .* "FOOLINEAR" .* read as LINEAR'):
        aq.read(odd)
    late = aq.AQ_PositionTimeHistory.from_numpy(
        {"TODseconds": [45296.996], "X": [1], "Y": [2], "Z": [3]}
    )
    aq.write(late, tmp_path / "late.pth.csv")  # unrounded, this would read as 12:34:56
    assert aq.read(tmp_path / "late.pth.csv").data.to_numpy()["TODseconds"] == 45297
    assert late.to_numpy()["TODseconds"] == 45296.996


def test_failures_name_the_place(tmp_path: Path, sample: Path) -> None:
    lines = (sample / "fly-over.sth.csv").read_text().splitlines()
    lines[23] = lines[23].replace(",", ",6x.2,", 3).replace(",6x.2,", ",", 2)
    damaged = tmp_path / "damaged.csv"
    damaged.write_text("\n".join(lines))
    with pytest.raises(aq.FileError) as raised:
        aq.read(damaged)
    error = raised.value
    assert (error.file, error.line, error.field) == (str(damaged), 24, 4)
    assert (error.expected, error.found) == ("a level", '"6x.2"')
    assert error.partial[0].sProjectName == "Fly-over sample" and error.partial[1] is None
    assert str(error) == f'{damaged}, line 24, field 4: expected a level, found "6x.2"'


SAMPLES = sorted((PROJECT / "examples" / "data").glob("*.csv"))


def same_line(line: str) -> str:
    """A line, or an empty one if it holds the name or the date of the file itself."""
    return "" if re.match("(FileName|FileDateTime)[*]", line) else line


@pytest.mark.parametrize("path", SAMPLES, ids=lambda path: path.name)
def test_a_read_and_write_keeps_every_word_and_date(path: Path, tmp_path: Path) -> None:
    if any(kind in path.name for kind in (".mic.", ".tspi.")):
        return  # read only
    text = path.read_text().replace("ReferenceTimeType**,START", "ReferenceTimeType**,AMAX")
    (tmp_path / "in.csv").write_text(text)
    aq.write(aq.read(tmp_path / "in.csv"), tmp_path / "out.csv")
    out = (tmp_path / "out.csv").read_text()
    pairs = zip(text.splitlines(), out.splitlines())
    assert [pair for pair in pairs if same_line(pair[0]) != same_line(pair[1])] == []


@pytest.mark.parametrize("name, kind", [("none.csv", FileNotFoundError), (".", IsADirectoryError)])
def test_what_cannot_be_opened_raises_as_open_does(name: str, kind: type, tmp_path: Path) -> None:
    with pytest.raises(kind):
        aq.read(tmp_path / name)


def test_each_file_class_says_that_a_file_is_missing(tmp_path: Path) -> None:
    classes = (aq.AQ_DataSTH, aq.AQ_DataMIC, aq.AQ_DataTSPI, aq.AQ_DataINI)
    for file_class in classes:
        reader = file_class()
        with pytest.raises(FileNotFoundError):
            reader.readFile(tmp_path / "none.csv")
        assert reader.lastFailure and reader.lastFailure.line == 0
    with pytest.raises(FileNotFoundError):
        aq.write(aq.AQ_DataINI(), tmp_path / "no folder" / "x.csv")


def test_what_the_system_refuses_has_its_number(tmp_path: Path, history: Any) -> None:
    (tmp_path / "x.csv").write_text("")
    for path, number in ((tmp_path / "x.csv" / "y.csv", errno.ENOTDIR), (tmp_path, errno.EISDIR)):
        with pytest.raises(OSError) as raised:
            aq.write(history, path)
        for error in (raised.value, pickle.loads(pickle.dumps(raised.value))):
            assert isinstance(error, aq.FileError)
            assert (error.errno, error.filename) == (number, str(path))
    with pytest.raises(FileExistsError):
        aq.write(history, tmp_path / "x.csv", exist_ok=False)
    aq.write(history, tmp_path / "new.csv", exist_ok=False)


def test_a_file_of_another_class_than_wanted_is_refused(sample: Path) -> None:
    assert aq.read(sample / "fly-over.mask.csv", aq.AQ_MaskMap).header.lNumberRows == 60
    with pytest.raises(aq.FileError, match="a file of AQ_MaskMap, found one of AQ_Spectral"):
        aq.read(sample / "fly-over.sth.csv", aq.AQ_MaskMap)
    with pytest.raises(TypeError, match="one of the classes with a file format"):
        aq.read(sample / "fly-over.sth.csv", str)  # type: ignore[call-overload]


def test_what_has_no_file_is_refused(tmp_path: Path, history: Any) -> None:
    (tmp_path / "letter.txt").write_text("Dear colleague,\n")
    with pytest.raises(aq.FileError, match='a kind that is known, found "Dear colleague,"'):
        aq.read(tmp_path / "letter.txt")
    for thing in (aq.AQ_Microphone(), "text", (1, 2, 3), None):
        with pytest.raises(TypeError, match="expected"):
            aq.write(thing, tmp_path / "x.csv")
    history.spectrum[3].SPL[20] = "loud"
    with pytest.raises(TypeError):
        aq.write(history, tmp_path / "x.csv")
    assert not (tmp_path / "x.csv").exists()


def test_tracking_gives_the_rejected_fixes_too(sample: Path) -> None:
    good, rejected = aq.read_tracking(sample / "fly-over.tspi.csv")
    everything = aq.read_tracking(sample / "fly-over.tspi.csv", limit=255)
    assert (len(good), len(rejected), len(everything.positions)) == (146, 4, 150)
    assert values(aq.read(sample / "fly-over.tspi.csv").data) == values(good)
    times = sorted(p.Time.TODseconds for p in (*good, *rejected))
    assert times == [p.Time.TODseconds for p in everything.positions]


def test_lines_and_fields_of_any_text(tmp_path: Path) -> None:
    text = aq.AQ_DataASCII()
    text.Lines = ["a, b", "c"]  # type: ignore[assignment]
    text.writeLines(tmp_path / "x.txt")
    text.appendLines(tmp_path / "x.txt")
    text.readFields(tmp_path / "x.txt")
    assert [list(line) for line in text.Fields] == [["a", "b"], ["c"]] * 2
