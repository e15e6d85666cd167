"""Tests the content of analyzer recordings, their text form and folders of them."""

import pathlib
import struct

import numpy as np
import pytest

import aq_data

SAMPLES = pathlib.Path(__file__).parents[2] / "tests" / "data" / "analyzer-recording"
SCANS = SAMPLES / "good" / "third-octaves-by-scan.dat"


def test_records_and_traces_as_they_are_stored():
    recording = aq_data.read_sdf(SCANS)
    assert (recording["revision"], recording["scans"]) == (3, 3)
    header = recording["SDF_DATA_HDR"][1]
    assert (header["dataTitle"], header["yUnit"]["label"]) == ("Pwr Spec", "Pa")
    assert [channel["channelLabel"] for channel in recording["SDF_CHANNEL_HDR"]] == ["M1", "M5"]
    y = [traces["y"] for traces in recording["traces"]]
    assert [array.shape for array in y] == [(3, 2, 7), (3, 2, 5)]
    assert len(recording["traces"][1]["x"]) == 5
    kind = {1: "h", 2: "i", 3: "f", 4: "d"}[header["ydata_type"]]
    assert struct.pack(f">5{kind}", *y[1][-1, -1].tolist()) in SCANS.read_bytes()


def test_text_form_and_folder(tmp_path):
    file = aq_data.AQ_DataHP3565()
    file.DAT_to_ASC(SCANS, tmp_path / "scans.asc")
    header, history = file.ParseASC(tmp_path / "scans.asc")
    read = aq_data.read(SCANS)
    np.testing.assert_array_equal(history.to_numpy(), read.data.to_numpy())
    assert list(header.cCommentLines) == list(read.header.cCommentLines)
    for name in ("b.dat", "A.DAT", "index1.txt", "TIMEDAT", "notes.txt"):
        (tmp_path / name).touch()
    index, times, recordings = file.readDirectory(tmp_path)
    assert (list(index), list(times)) == (["index1.txt"], ["TIMEDAT"])
    assert list(recordings) == ["A.DAT", "b.dat"]


def test_failures(tmp_path):
    with pytest.raises(FileNotFoundError):
        aq_data.read_sdf(tmp_path / "none.dat")
    cut = tmp_path / "cut.dat"
    cut.write_bytes(SCANS.read_bytes()[:100])
    with pytest.raises(aq_data.FileError) as failed:
        aq_data.read_sdf(cut)
    assert "SDF_" in failed.value.expected
