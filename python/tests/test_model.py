"""Tests that the object model, under its own names, behaves as Python users expect."""

from __future__ import annotations

import copy
import datetime
import gc
import pickle
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any, Callable

import numpy as np
import pytest

import aq_data as aq
from conftest import values


def spectrum(*levels: Any) -> aq.AQ_Spectrum:
    made = aq.AQ_Spectrum()
    for band, level in enumerate(levels, start=24):
        made.SPL[band] = level
    return made


def test_what_is_stored_is_shared_and_outlives_its_owner() -> None:
    history = aq.AQ_SpectralTimeHistory()
    loud = spectrum(65.3, 70)
    history.spectrum[12] = loud
    loud.SPL[24] = 66.5
    assert history.spectrum(12).SPL(24) == 66.5 and history.spectrum[12] is loud
    row, stamp, levels = aq.AQ_MaskMap(), loud.Time, history.spectrum(12).SPL
    del row, loud, history
    gc.collect()
    stamp.TODstring = "10:00:01.5"
    assert stamp.TODseconds == 36001.5 and levels[25] == 70


@pytest.mark.parametrize("given", [None, True, 7, -(2**31), 2.5, "soft", np.float64(3.25)])
def test_a_level_keeps_its_type(given: Any) -> None:
    kept = spectrum(given).SPL[24]
    assert kept == given and (given is None or isinstance(given, type(kept)))


@pytest.mark.parametrize(
    "action, kind, code",
    [
        (lambda: spectrum(1.0).SPL[40], KeyError, aq.ErrorCode.InvalidArgument),
        (lambda: aq.TextCollection(["a"]).Item(2), IndexError, aq.ErrorCode.InvalidIndex),
        (lambda: aq.TextCollection(["a"])[-2], IndexError, None),
        (lambda: aq.TextCollection().Item("key"), KeyError, aq.ErrorCode.InvalidArgument),
        (lambda: setattr(aq.AQ_Time(), "TODseconds", "x"), TypeError, aq.ErrorCode.TypeMismatch),
        (lambda: setattr(aq.AQ_Time(), "TODstring", "10"), ValueError, None),
        (lambda: setattr(aq.AQ_Metric(), "OA", "loud"), TypeError, None),
        (lambda: setattr(aq.AQ_Spectrum(), "Time", 5), TypeError, None),
        (lambda: spectrum(object()), TypeError, None),
        (lambda: spectrum(np.zeros(3)), TypeError, None),
        (lambda: spectrum(1.0).SPL[70000], TypeError, None),
        (lambda: iter(spectrum(1.0).SPL), TypeError, None),
        (lambda: aq.AQ_Spectrum().Encompasses(3), AttributeError, None),
        (lambda: aq.AQ_EmtRcvTable().Record[1], IndexError, aq.ErrorCode.InvalidIndex),
    ],
)
def test_what_is_wrong_raises_as_python_does(
    action: Callable[[], Any], kind: type, code: Any
) -> None:
    with pytest.raises(kind) as raised:
        action()
    if code is not None:
        assert isinstance(raised.value, aq.Error) and raised.value.code == code


def test_enumerations_are_integers() -> None:
    history = aq.AQ_SpectralTimeHistory()
    history.AverageMethod = aq.AQ_4S100
    assert (history.AverageMethod, history.sAveragingMethod) == (2, "4S100")
    history.AverageMethod = 1  # type: ignore[assignment]
    assert history.AverageMethod is aq.AQ_TRUSLO
    with pytest.raises(ValueError, match="Method: expected a member of AQ_Av.*AQ_NA.*found 77"):
        history.AverageMethod = 77  # type: ignore[assignment]
    parameters = aq.AQ_DataINI()  # 99 (not set) is kept, although it is not a member
    assert pickle.loads(pickle.dumps(parameters)).NuTimg == parameters.NuTimg == 99
    metric = aq.AQ_Metric()
    metric.INTEG = aq.AQ_INTEG_MAX | aq.AQ_INTEG_LST
    with pytest.raises(ValueError, match="INTEG"):
        metric.INTEG = 64  # type: ignore[assignment]
    assert metric.INTEG == 5 and aq.AQ_INTEG_LST in metric.INTEG


def test_text_that_is_not_utf8_comes_back() -> None:
    header = aq.AQ_HeaderSTH()
    header.sProjectName = b"18 \xb0C".decode("utf-8", "surrogateescape")
    header.cCommentLines = ["one", "two"]  # type: ignore[assignment]
    header.cCommentLines.Add("three", "last")
    assert header.sProjectName.encode("utf-8", "surrogateescape") == b"18 \xb0C"
    assert list(header.cCommentLines) == ["one", "two", "three"]
    assert header.cCommentLines.Item("last") == header.cCommentLines[-1]


def everything(sample: Path) -> list[Any]:
    read = [aq.read(path) for path in sorted(sample.glob("*.csv"))]
    time = aq.AQ_Time()
    time.assignSeconds(90000, -3)
    time.setWorkingTime(aq.AQ_TIME_REF)
    point, table = aq.AQ_SPointTrk(), aq.AQ_EmtRcvTable()
    point.TOH, table.Record[1] = time, aq.AQ_EmtRcvRecord()
    mixed = spectrum(1, "text", 2.5)
    mixed.SPL[40] = 3.0
    metrics = aq.AQ_MetricSummary()
    metrics.MetricType(aq.AQ_METRIC_PNLT)
    parts = [part for reading in read for part in reading if part is not None]
    return [*parts, time, point, table, mixed, metrics, read[4].data.Band(20)]


def test_everything_pickles_and_copies(sample: Path) -> None:
    for thing in everything(sample):
        for twin in (pickle.loads(pickle.dumps(thing)), copy.deepcopy(thing)):
            assert values(twin) == values(thing) and repr(twin)
    history = aq.read(sample / "fly-over.sth.csv").data
    assert copy.copy(history).spectrum[3] is history.spectrum[3]
    assert copy.deepcopy(history).spectrum[3] is not history.spectrum[3]


def test_a_file_information_service_of_python(tmp_path: Path, history: Any) -> None:
    class Fixed:
        def recordedName(self, path: str) -> str:
            return "recorded"

        def fileDateTime(self, path: str) -> Any:
            return 5

        def currentDateTime(self) -> str:
            raise RuntimeError("no clock")

    aq.setFileInformation(Fixed())
    try:
        aq.setFileInformation(Fixed())  # replaces the first one
        with pytest.raises(RuntimeError, match="no clock"):
            aq.write(history, tmp_path / "x.csv")
        assert not (tmp_path / "x.csv").exists()
        assert aq.fileInformation().recordedName("a/b") == "recorded"
        with pytest.raises(TypeError, match="fileDateTime: expected text, found int"):
            aq.fileInformation().fileDateTime("a")
        with pytest.raises(TypeError, match="method recordedName, found str"):
            aq.setFileInformation("service")
        aq.setFileInformation(None)
        aq.setFileInformation(aq.keepingFileInformation())
        assert aq.fileInformation().recordedName("a/b") == "b"
        header = aq.AQ_HeaderSTH()
        header.aqGenerationDateTime.CurrentDate = 45000
        aq.AQ_DataSTH().writeFile(str(tmp_path / "x.csv"), header, history)
        assert aq.read(tmp_path / "x.csv").header.aqGenerationDateTime.CurrentDate == 45000
    finally:
        aq.setFileInformation(None)


def test_threads_read_at_once_with_one_file_object(sample: Path) -> None:
    reader, found, errors = aq.AQ_DataSTH(), [], []

    def work(name: str) -> None:
        for _ in range(20):
            try:
                found.append(reader.readFile(sample / name)[1].Count)
            except aq.FileError as error:
                errors.append(error.line)

    names = ["fly-over.sth.csv", "fly-over.mask.csv"] * 3
    with ThreadPoolExecutor(len(names)) as threads:
        list(threads.map(work, names))
    assert found == [60] * 60 and errors == [1] * 60


def test_series_are_asked_by_number_and_slice(sample: Path, history: Any, mask: Any) -> None:
    part = history[10:50]
    assert history[12] is history.spectrum(12) is part[12]
    assert (part.records[0], part.records[-1], part.sTimeStampType) == (10, 49, "MIDPT")
    assert part.startTime.TODseconds == history.startTime.TODseconds + 4.5
    assert history.startTime.TODseconds == 52200  # unchanged
    assert len(history[70:]) == 0 and history[5:20:5].records.tolist() == [5, 10, 15]
    assert mask[3:5].records.tolist() == [3, 4] and mask[3] is mask.Row(3)
    track = aq.read(sample / "fly-over.tspi.csv").data
    assert track[2:4][1] is track[2]
    with pytest.raises(KeyError):
        history[999]
    assert dict(spectrum(60.5, 61)) == {24: 60.5, 25: 61} and spectrum(60.5)[24] == 60.5
    assert list(aq.AQ_Spectrum()) == []


def test_objects_are_equal_when_their_values_are(sample: Path) -> None:
    for thing, twin in zip(everything(sample), everything(sample)):
        assert thing == twin and not thing != twin and thing != 5
    history, other = (aq.read(sample / "fly-over.sth.csv").data for _ in range(2))
    other.spectrum[60].SPL[40] = 1.5
    assert history != other and history[1:60] == other[1:60]


def test_a_notebook_shows_tables(sample: Path) -> None:
    for thing in everything(sample):
        assert "<table" in thing._repr_html_()
    header = aq.AQ_HeaderSTH()
    header.sProjectName = "<b>"
    assert "&lt;b&gt;" in header._repr_html_()
    microphone = aq.read(sample / "fly-over.mic.csv").data
    assert microphone.to_xarray(unit="ft").height.attrs["units"] == "ft"
    assert microphone.to_pandas()["Height"] == microphone.Height == microphone.to_xarray().height
    parameters = aq.read(sample / "fly-over.ini.csv").data
    assert parameters.to_xarray().window_before == parameters.PrWndo
    assert parameters.to_pandas()["LoRec"] == parameters.LoRec
    for reading in (aq.read(sample / "fly-over.mic.csv"), aq.read(sample / "fly-over.ini.csv")):
        named = {} if reading.header is None else {"header": reading.header}
        assert aq.from_xarray(reading.data.to_xarray(**named)) == reading
    changed = parameters.to_xarray().assign(window_before=12.5)
    assert aq.from_xarray(changed).data.PrWndo == 12.5
    assert aq.from_xarray(aq.AQ_DataINI().to_xarray()).data.NuAvg == aq.AQ_NA


def test_times_take_text_and_those_of_python(history: Any) -> None:
    for given in ("10:00:05.5", datetime.time(10, 0, 5, 500000)):
        history.startTime = given
        assert history.startTime.TODseconds == 36005.5
    history.ReferenceTime = datetime.datetime(2024, 6, 14, 10)
    assert (history.ReferenceTime.CurrentDate, history.ReferenceTime.TODseconds) == (45457, 36000)
    history.setTimeStamps("10:00:00", aq.AQ_END, datetime.time(10), aq.AQ_AMAX)
    assert history[1].Time.TODstring == "10:00:00.5" and history[1].Time.RelSeconds == 0.5
    with pytest.raises(ValueError):
        history.startTime = "noon"


@pytest.mark.parametrize(
    "owner, name, value, text",
    [
        (aq.AQ_SpectralTimeHistory, "startTime", 5, "startTime: expected an AQ_Time, a datetime.t"),
        (aq.AQ_HeaderSTH, "sProjectName", 5, "AQ_HeaderSTH.sProjectName: expected text, found 5"),
        (aq.AQ_Microphone, "X", "left", "AQ_Microphone.X: expected a number, found 'left'"),
        (aq.AQ_Time, "TODseconds", "noon", "AQ_Time.TODseconds: "),
    ],
)
def test_errors_name_the_property(owner: Any, name: str, value: Any, text: str) -> None:
    with pytest.raises(TypeError, match=text):
        setattr(owner(), name, value)


def test_errors_of_calls_name_the_argument(history: Any) -> None:
    with pytest.raises(TypeError, match="path: expected a path, found 5"):
        aq.read(5)  # type: ignore[arg-type]
    with pytest.raises(TypeError, match="mask: expected AQ_MaskMap, found str"):
        aq.metrics(history, "m")  # type: ignore[arg-type]


def test_errors_of_views_name_property_and_number(history: Any) -> None:
    with pytest.raises(
        TypeError, match=r"AQ_SpectralTimeHistory.spectrum\[3\]: expected AQ_Spectrum, f"
    ):
        history.spectrum[3] = 5
    with pytest.raises(TypeError, match="AQ_SpectralTimeHistory.spectrum: expected a whole number"):
        history.spectrum["x"] = history[1]
    with pytest.raises(
        TypeError, match=r"AQ_Spectrum.SPL\[17\]: expected a number, a date, text or No"
    ):
        history[1].SPL[17] = [1]
