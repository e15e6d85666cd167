"""Reads the workbooks that `aqdata convert` writes."""

from __future__ import annotations

from typing import Any, Iterator

import numpy as np

from . import _core
from .arguments import path_text
from .errors import FileError
from .objects import as_time
from .reading import Path, Reading
from .work import Run

_WORDS = {
    "project": "sProjectName",
    "microphone": "sMicrophoneID",
    "adjustment": "sAdjustmentCode",
    "generated_by": "sGeneratedBy",
    "generation_file": "sGenerationFile",
    "file_name": "sFileName",
}
_LISTS = {"comments": "cCommentLines", "other_records": "cOtherRecords"}
_DATES = {"generation_file_date": "aqGenerationDateTime", "file_date": "aqFileDateTime"}
_MEMBERS = {
    "averaging": ("AverageMethod", _core.AQ_AverageMethod),
    "time_stamp": ("TimeStampType", _core.AQ_TimeStampType),
    "reference_time_type": ("ReferenceType", _core.AQ_RefTimeType),
}
_FIRST_BAND = 4  # the column of the lowest band
_NO_MASK = ".."


def _date(text: str) -> _core.AQ_Time:
    """Parses `mm/dd/yyyy hh:mm:ss`, or a date alone, which means midnight."""
    day, _, clock = text.partition(" ")
    month, number, year = map(int, day.split("/"))
    time = as_time(clock or "00:00:00")
    time.CurrentDate = float(
        (np.datetime64(f"{year:04}-{month:02}-{number:02}") - np.datetime64("1899-12-30")).astype(
            int
        )
    )
    return time


def _set_header(header: Any, key: str, value: str) -> None:
    if key in _WORDS and hasattr(header, _WORDS[key]):
        setattr(header, _WORDS[key], value)
    elif key in _LISTS:
        getattr(header, _LISTS[key]).Add(value)
    elif key in _DATES:
        setattr(header, _DATES[key], _date(value))


def _set_setting(history: _core.AQ_SpectralTimeHistory, key: str, value: str) -> None:
    if key in _MEMBERS:
        field, members = _MEMBERS[key]
        words = {m.name.replace("AQ_", "").replace("_REF", ""): m for m in members}
        if value not in words:
            raise ValueError(f"expected {key} to be one of {', '.join(words)}, found {value!r}")
        setattr(history, field, words[value])
    elif key in ("start_time", "reference_time"):
        time = history.startTime if key == "start_time" else history.ReferenceTime
        time.TODstring = value


def _number(value: Any) -> float:
    return np.nan if value is None else float(value)


def _stamp(text: Any, seconds: float) -> float:
    """The time of day in `text`; `seconds` if there is no text, or if they differ by more than the
    text's rounding.
    """
    own = as_time(str(text)).TODseconds if text else seconds
    return own if abs(own - seconds) < 0.006 else seconds


def _run_of(rows: list[tuple[Any, ...]], headers: list[tuple[str, str, Any]]) -> Run:
    names = list(rows[0])
    if names[:_FIRST_BAND] != ["record", "time", "time_s", "relative_s"]:
        raise ValueError("expected the columns record, time, time_s, relative_s")
    end = names.index("last_good_band")
    low = int(str(names[_FIRST_BAND]).lstrip("B").partition("/")[0])
    numbers = [int(row[0]) for row in rows[1:]]
    levels = np.array([[_number(cell) for cell in row[_FIRST_BAND:end]] for row in rows[1:]])
    history = _core.AQ_SpectralTimeHistory.from_numpy(levels, low, numbers)
    stamps = [_stamp(row[1], _number(row[2])) for row in rows[1:]]
    relative = np.array([_number(row[3]) for row in rows[1:]], dtype=np.float32)  # as in files
    history.times = {"TODseconds": np.array(stamps), "RelSeconds": relative.astype(float)}
    header, map_header = _core.AQ_HeaderSTH(), _core.AQ_HeaderMask()
    for part, key, value in headers:
        text = "" if value is None else str(value)
        _set_header(header if part == "history" else map_header, key, text)
        if part == "history":
            _set_setting(history, key, text)
    made = Run(Reading(header, history))
    if all(row[end] is None for row in rows[1:]):
        return made
    mask = _core.AQ_MaskMap()
    for number, row in zip(numbers, rows[1:]):
        mask.Row[number] = _mask_row(low, row[end], str(row[end + 1] or ""))
    return made._replace(mask=Reading(map_header, mask))


def _mask_row(low: int, last_good_band: Any, letters: str) -> _core.AQ_MaskRow:
    row = _core.AQ_MaskRow()
    for band, pair in enumerate(letters.split(" "), start=low):
        if pair != _NO_MASK:
            decision = _core.AQ_Mask()
            decision.MaskString = pair
            row.Mask[band] = decision
    row.LGB = int(last_good_band)
    return row


def _sheets(path: str) -> Iterator[tuple[str, list[tuple[Any, ...]]]]:
    import openpyxl  # optional, and needed only here
    from openpyxl.utils.exceptions import InvalidFileException

    with open(path, "rb") as file:
        try:
            book = openpyxl.load_workbook(file, read_only=True, data_only=True)
        except (InvalidFileException, KeyError, ValueError, OSError) as error:
            raise FileError(path, 0, 0, "a workbook", str(error)) from error
        for sheet in book.worksheets:
            yield sheet.title, [tuple(row) for row in sheet.iter_rows(values_only=True)]


def read_excel(path: Path) -> dict[str, Run]:
    """The runs of a workbook that `aqdata convert FILES -o BOOK.xlsx` wrote, by the names of their
    sheets: `(history, mask, geometry)`, each with its header; `mask` is None for a run without a
    map, `geometry` always.

    Raises `FileError` for any other file, `OSError` for one that cannot be opened. Does not read
    metrics, which follow from the levels.

    >>> for name, run in aq_data.read_excel("season.xlsx").items():
    ...     aq_data.write(run.history, f"{name}.sth.csv")
    """
    name = path_text(path)
    sheets = dict(_sheets(name))
    if "Runs" not in sheets or "Headers" not in sheets:
        raise FileError(name, 0, 0, "the sheets Runs and Headers", ", ".join(sheets))
    headers: dict[str, list[tuple[str, str, Any]]] = {}
    for sheet, part, key, value in (row[:4] for row in sheets["Headers"][1:]):
        headers.setdefault(str(sheet), []).append((str(part), str(key), value))
    runs = {}
    for row in sheets["Runs"][1:]:
        try:
            runs[str(row[0])] = _run_of(sheets[str(row[0])], headers.get(str(row[0]), []))
        except (KeyError, ValueError, TypeError, IndexError) as error:
            raise FileError(name, 0, 0, f"a run in the sheet {row[0]}", str(error)) from error
    return runs
