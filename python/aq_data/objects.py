"""The behaviour that Python users expect of objects: `[]` and slices, `==`, tables in notebooks,
times as text, and errors that name the property.
"""

from __future__ import annotations

import copy
import datetime
import html
import re
from typing import Any, Callable, Iterator, Union

import pandas as pd
import xarray as xr

from . import _core
from .attributes import attach, attributes, plain, variable
from .arguments import WORDS
from .errors import Error, MismatchError
from .labelled import MICROPHONE, PARAMETERS, check_unit
from .times import DAY, going_on

Clock = Union[_core.AQ_Time, datetime.time, datetime.datetime, str]
COLLECTIONS = ("TextCollection", "FieldLines", "NumberCollection", "MetricTypeCollection")
CLASSES: list[Any] = [cls for cls in vars(_core).values() if hasattr(cls, "_fields")]
CLASSES.append(_core.AQ_Time)


def as_time(given: Clock) -> _core.AQ_Time:
    """The given `AQ_Time`, or a new one for a time of day: text `hh:mm:ss` with or without a
    fraction, a Python time, or a datetime, whose date is kept. Raises `ValueError` for other text.
    """
    if isinstance(given, _core.AQ_Time):
        return given
    time = _core.AQ_Time()
    if isinstance(given, str):
        time.TODstring = given
        return time
    if isinstance(given, datetime.datetime):
        time.CurrentDate = float((given.date() - datetime.date(1899, 12, 30)).days)
    seconds = given.hour * 3600 + given.minute * 60 + given.second + given.microsecond / 1e6
    time.assignSeconds(seconds, 0.0)
    return time


# Properties.


def _taken(cls: type, name: str) -> str:
    """The values that a property accepts, in words."""
    setter = getattr(getattr(cls, name, None), "fset", None)
    found = re.search(r"arg\d: ([^,)]*)\)", getattr(setter, "__doc__", None) or "")
    kind = found[1].rpartition(".")[2] if found else "another value"
    members = getattr(getattr(_core, kind, None), "__members__", None)
    if members:
        return f"a member of {kind} ({', '.join(members)})"
    clock = "an AQ_Time, a datetime.time or text hh:mm:ss"
    return clock if kind == "AQ_Time" else WORDS.get(kind, kind)


def _set(self: Any, name: str, value: Any) -> None:
    try:
        object.__setattr__(self, name, value)
    except Error as error:
        raise type(error)(f"{type(self).__name__}.{name}: {error}", error.code) from None
    except TypeError:
        is_clock = isinstance(value, (str, datetime.time, datetime.datetime))
        if is_clock and isinstance(getattr(self, name, None), _core.AQ_Time):
            object.__setattr__(self, name, as_time(value))
            return
        place = f"{type(self).__name__}.{name}"
        text = f"{place}: expected {_taken(type(self), name)}, found {value!r:.60}"
        raise (ValueError if "a member of" in text and isinstance(value, int) else TypeError)(
            text
        ) from None


def _checked_setting(view: type) -> None:
    """Makes errors from `view[number] = value` name the type that it accepts."""
    method: Callable[..., Any] = getattr(view, "__setitem__")
    place = "AQ_" + ".".join(view.__name__[1:].rsplit("_", 1))
    found = re.search(r"value: ([^)]*)\)", method.__doc__ or "")
    taken = found[1].rpartition(".")[2] if found else "another value"
    wanted = WORDS.get(taken, taken)

    def setitem(self: Any, number: int, value: Any) -> None:
        try:
            method(self, number, value)
        except Error:
            raise
        except TypeError:
            if not hasattr(number, "__index__"):
                raise TypeError(f"{place}: expected a whole number, found {number!r:.60}") from None
            text = f"{place}[{number}]: expected {wanted}, found {value!r:.60}"
            raise TypeError(text) from None

    setitem.__doc__, setitem.__name__ = method.__doc__, "__setitem__"
    setattr(view, "__setitem__", setitem)


for _name, _cls in list(vars(_core).items()):
    if _name.startswith("_") and hasattr(_cls, "__setitem__") and isinstance(_cls, type):
        _checked_setting(_cls)


def _equal(self: Any, other: object) -> bool:
    """Whether both hold the same values, of the same types."""
    if type(other) is not type(self):
        return NotImplemented
    return bool(self.__getstate__() == other.__getstate__())  # type: ignore[attr-defined]


for _cls in CLASSES:
    _cls.__setattr__ = _set
for _cls in (*CLASSES, *(cls for name, cls in vars(_core).items() if name in COLLECTIONS)):
    _cls.__eq__ = _equal
    _cls.__hash__ = None


def _taking_clocks(cls: type, name: str) -> None:
    """Makes a method accept times of any form as arguments."""
    method: Callable[..., Any] = getattr(cls, name)

    def call(self: Any, *arguments: Any, **named: Any) -> Any:
        clocks = (str, datetime.time, datetime.datetime)
        given = [as_time(each) if isinstance(each, clocks) else each for each in arguments]
        return method(
            self,
            *given,
            **{k: as_time(v) if isinstance(v, clocks) else v for k, v in named.items()},
        )

    call.__doc__, call.__name__ = method.__doc__, name
    setattr(cls, name, call)


_taking_clocks(_core.AQ_SpectralTimeHistory, "setTimeStamps")
_taking_clocks(_core.AQ_SpectralTimeHistory, "setRelTimes")
_taking_clocks(_core.AQ_Time, "setRelTime")


# Series by number.


def _chosen(numbers: Any, part: slice) -> list[int]:
    """The numbers from start to stop, stop excluded, or every step-th of them."""
    start = part.start if part.start is not None else -(2**15)
    stop = part.stop if part.stop is not None else 2**15
    return [int(n) for n in numbers if start <= n < stop][:: part.step or 1]


@attach(_core.AQ_SpectralTimeHistory, name="__getitem__")
def history_getitem(self: _core.AQ_SpectralTimeHistory, number: Any) -> Any:
    """The spectrum of a record; for a slice, a history that shares the spectra from start to stop,
    stop excluded, and keeps their numbers. Its start time moves by as much as the time of its first
    record.

    >>> history[12].SPL[24], len(history[10:50])
    """
    if not isinstance(number, slice):
        return self.spectrum(number)
    part = _core.AQ_SpectralTimeHistory()
    for record in _chosen(self.records, number):
        part.spectrum[record] = self.spectrum(record)
    for name in ("startTime", "ReferenceTime", "Metrics"):
        setattr(part, name, copy.deepcopy(getattr(self, name)))
    for name in ("AverageMethod", "ReferenceType", "TimeStampType"):
        setattr(part, name, getattr(self, name))
    seconds = going_on(self.times["TODseconds"])
    if len(part):
        place = list(self.records).index(part.records[0])
        shift, start = float(seconds[place] - seconds[0]), part.startTime
        if shift:
            days, rest = divmod(start.TODseconds + shift, DAY)
            start.assignSeconds(rest, start.RelSeconds)
            start.CurrentDate += days if start.CurrentDate else 0
    return part


@attach(_core.AQ_MaskMap, name="__getitem__")
def map_getitem(self: _core.AQ_MaskMap, number: Any) -> Any:
    """The row of a record; for a slice, a map that shares the rows from start to stop, stop
    excluded, and keeps their numbers.

    >>> mask[12].Mask[40].MaskMode
    """
    if not isinstance(number, slice):
        return self.Row(number)
    part = _core.AQ_MaskMap()
    for record in _chosen(self.records, number):
        part.Row[record] = self.Row(record)
    return part


@attach(_core.AQ_PositionTimeHistory, name="__getitem__")
def positions_getitem(self: _core.AQ_PositionTimeHistory, number: Any) -> Any:
    """The position with this index, counted from 1; for a slice, a series that shares the positions
    from start to stop, stop excluded, numbered from 1.

    >>> track.positions[1].X
    """
    if not isinstance(number, slice):
        return self.Position(number)
    part = _core.AQ_PositionTimeHistory()
    for place in _chosen(range(1, len(self) + 1), number):
        part.Position[len(part) + 1] = self.Position(place)
    return part


@attach(_core.AQ_Spectrum, name="__getitem__")
def spectrum_getitem(self: _core.AQ_Spectrum, band: int) -> Any:
    """The level of a band, in dB. Raises `KeyError` if the band has none.

    >>> spectrum[24]
    """
    return self.SPL(band)


@attach(_core.AQ_Spectrum, name="__iter__")
def spectrum_iter(self: _core.AQ_Spectrum) -> Iterator[tuple[int, Any]]:
    """The number and the level (dB) of each band, in ascending order; omits bands without a level.

    >>> loudest, level = max(spectrum, key=lambda each: each[1])
    """
    for band in self.bands.tolist():
        try:
            level = self.SPL(band)
        except KeyError:
            continue
        yield band, level


# Microphone and parameters.


def _fields(self: Any) -> dict[str, Any]:
    names = getattr(self, "_fields", ("CurrentDate", "TODseconds", "RelSeconds"))
    values = {name: getattr(self, name) for name in names}
    return {
        name: list(value) if isinstance(value, _core.TextCollection) else value
        for name, value in values.items()
    }


@attach(_core.AQ_Microphone, _core.AQ_DataINI, name="to_pandas")
def fields_to_pandas(self: Any) -> "pd.Series[Any]":
    """The properties by name.

    >>> aq_data.read("fly-over.mic.csv").data.to_pandas()
    """
    return pd.Series(_fields(self), dtype=object)


@attach(_core.AQ_Microphone, name="to_xarray")
def microphone_to_xarray(
    self: _core.AQ_Microphone, header: Any = None, unit: str = "m"
) -> xr.Dataset:
    """A dataset of `x`, `y`, `z` and `height`, without dimensions, which `from_xarray` converts
    back; `unit` as for positions.

    >>> aq_data.read("fly-over.mic.csv").data.to_xarray().height
    """
    check_unit(unit)
    variables = {
        name: variable((), getattr(self, own), unit, text) for own, name, text in MICROPHONE
    }
    return xr.Dataset(variables, attrs=attributes("microphone", header))


@attach(_core.AQ_DataINI, name="to_xarray")
def parameters_to_xarray(self: _core.AQ_DataINI) -> xr.Dataset:
    """A dataset with `calibration_adjustment` (dB), `window_before` and `window_after` (s),
    `first_record` and `last_record`; the averaging method, the time stamp type and the comments are
    attributes. `from_xarray` converts it back.

    >>> aq_data.read("fly-over.ini.csv").data.to_xarray().window_before
    """
    variables = {
        name: variable((), getattr(self, own), unit, text) for own, name, unit, text in PARAMETERS
    }
    words = {
        name: method.name.replace("AQ_", "")
        for name, method in (("averaging_method", self.NuAvg), ("time_stamp_type", self.NuTimg))
        if hasattr(method, "name")
    }
    comment = {"comment": "\n".join(self.Comments)} if len(self.Comments) else {}
    attrs = attributes(
        "parameters", None, {name: plain(getattr(self, name)) for name in self._fields}
    )
    return xr.Dataset(variables, attrs={**attrs, **words, **comment})


# Notebooks.


def _html(self: Any) -> str:
    """A table for a notebook: the first and last entries of a series, otherwise the properties."""
    is_table = hasattr(self, "to_pandas") and not isinstance(
        self, (_core.AQ_Microphone, _core.AQ_DataINI)
    )
    if not is_table:
        rows = {name: str(value) for name, value in _fields(self).items()}
        return str(pd.Series(rows, dtype=object).to_frame(type(self).__name__).to_html())
    try:
        table = self.to_pandas()
    except MismatchError:  # a level that is not a number does not fit in a table
        return f"<table><tr><td>{html.escape(repr(self))}</td></tr></table>"
    frame = table.to_frame() if isinstance(table, pd.Series) else table
    return f"<p>{html.escape(repr(self))}</p>" + str(frame.to_html(max_rows=10, max_cols=12))


for _cls in CLASSES:
    _cls._repr_html_ = _html
