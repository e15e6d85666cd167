"""Helpers that add methods to library classes and make the variables and attributes of datasets.

Headers and settings, which do not fit in an array, are stored in the dataset's attribute `aq` as
JSON, so that they survive in a netCDF file too.
"""

from __future__ import annotations

import json
from numbers import Integral, Real
from typing import Any, Callable, TypeVar

import numpy as np
import numpy.typing as npt
import xarray as xr

from . import _core
from .errors import Error
from .formats import FORMATS
from .times import OWN, clock, going_on

Function = TypeVar("Function", bound=Callable[..., Any])

# The header class of each kind of content that has a header.
HEADERS: dict[str, Any] = {
    f.word: f.header for f in FORMATS.values() if f.header is not None and f.word != "recording"
}
KINDS = (None, "emission", "parameters", *HEADERS)
# Attributes for people to read, each with the header fields whose text it shows. The CF conventions
# define the names title and source.
_WORDS: dict[str, tuple[str, ...]] = {
    "title": ("sProjectName", "ProjectName"),
    "source": ("sGeneratedBy", "GeneratedBy"),
    "microphone": ("sMicrophoneID", "MicrophoneID"),
    "adjustment_code": ("sAdjustmentCode",),
    "file_name": ("sFileName", "GTHFileName"),
    "generation_file": ("sGenerationFile",),
    "tracking_file": ("sTSPIFileName",),
    "history_file": ("STHFileName",),
    "position_file": ("PTHFileName",),
    "microphone_file": ("MICFileName",),
}
_COMMENTS = ("cCommentLines", "colCommentLines")
_METHODS = {
    "averaging_method": ("AverageMethod", _core.AQ_AverageMethod),
    "time_stamp_type": ("TimeStampType", _core.AQ_TimeStampType),
    "reference_time_type": ("ReferenceType", _core.AQ_RefTimeType),
}


def attach(*classes: type, name: str) -> Callable[[Function], Function]:
    """Turns a function into a method of library classes."""

    def decorate(function: Function) -> Function:
        for cls in classes:
            setattr(cls, name, function)
        return function

    return decorate


def nominal_frequency(bands: npt.ArrayLike) -> npt.NDArray[np.float64]:
    """Nominal centre frequencies, in Hz, of the one-third-octave bands with these numbers."""
    series = np.array([1.0, 1.25, 1.6, 2.0, 2.5, 3.15, 4.0, 5.0, 6.3, 8.0])
    decade, step = np.divmod(np.asarray(bands, dtype=int), 10)
    return np.asarray(np.round(series[step] * 10.0**decade, 9))


# Converts headers and settings to plain values, and back.

_FOLLOWING = ("LoRec", "HiRec")  # derived from the records, of which a dataset may have fewer


def plain(value: Any) -> Any:
    if isinstance(value, (_core.TextCollection, _core.MetricTypeCollection)):
        return list(value)
    if isinstance(value, _core.AQ_Time):
        return [value.CurrentDate, value.TODseconds, value.RelSeconds]
    if hasattr(value, "_fields"):
        names = [name for name in value._fields if name not in _FOLLOWING]
        values = {name: plain(getattr(value, name)) for name in names}
        if isinstance(value, _core.AQ_MetricSummary):
            values["MetricTypes"] = plain(value.MetricTypes)
        return values
    return value


def restored(target: Any, values: Any) -> Any:
    """Stores values from `plain` in the target, and returns it."""
    try:
        return _restored(target, values)
    except (AttributeError, LookupError, TypeError, ValueError) as error:
        raise ValueError(
            f"the attribute aq does not fit {type(target).__name__}: {error}"
        ) from error


def _restored(target: Any, values: dict[str, Any]) -> Any:
    for name, value in values.items():
        if name == "MetricTypes":
            for metric in value:
                target.MetricType(metric)
        elif isinstance(getattr(target, name), _core.AQ_Time):
            time = getattr(target, name)
            time.CurrentDate = value[0]
            time.assignSeconds(*value[1:])  # the setter would wrap the seconds into a day
        elif isinstance(value, dict):
            _restored(getattr(target, name), value)
        else:
            setattr(target, name, value)
    return target


def _word(member: Any) -> str:
    """The word that headers use for a member of an enumeration."""
    return str(member.name).replace("AQ_", "").replace("_REF", "")


def _clock_text(time: _core.AQ_Time) -> str:
    try:
        return time.TODstring
    except Error:  # not a time within a day
        return f"{time.TODseconds!r} s"


def _moment(time: _core.AQ_Time) -> str:
    date = clock([time.CurrentDate])[0][0]
    if not isinstance(date, np.datetime64) or np.isnat(date):
        return ""
    return f"{date.astype('datetime64[D]')}T{_clock_text(time)}"


def _words_of(header: Any, prefix: str = "") -> dict[str, str]:
    words = {
        prefix + word: getattr(header, name)
        for word, names in _WORDS.items()
        for name in names
        if hasattr(header, name)
    }
    lines = next((getattr(header, name) for name in _COMMENTS if hasattr(header, name)), ())
    return {**words, prefix + "comment": "\n".join(lines)}


def _readable(kind: str, header: Any, settings: Any, mask_header: Any) -> dict[str, Any]:
    """The content of an object's header and settings as readable attributes."""
    words: dict[str, Any] = _words_of(header)
    for name, (field, _) in _METHODS.items():
        member = getattr(settings, field, None)
        words[name] = _word(member) if hasattr(member, "name") else ""
    if hasattr(settings, "ReferenceTime"):
        words["reference_time"] = _clock_text(settings.ReferenceTime)
    dates = {"file_date": "aqFileDateTime", "generation_date": "aqGenerationDateTime"}
    words.update(
        {
            name: _moment(getattr(header, field))
            for name, field in dates.items()
            if hasattr(header, field)
        }
    )
    if hasattr(header, "Temperature"):
        words["temperature"] = header.Temperature
        at = header.MicrophonePosition
        words["microphone_position"] = [at.X, at.Y, at.Z]
    words.update(_words_of(mask_header, "" if kind == "map" else "mask_"))
    return {
        name: value.encode(errors="replace").decode() if isinstance(value, str) else value
        for name, value in words.items()
        if value != ""
    }


def attributes(
    kind: str, header: Any, settings: Any = None, mask_header: Any = None, first: Any = None
) -> dict[str, Any]:
    """Attributes of a dataset: those of the CF conventions, readable header texts, and everything
    as JSON. `first` describes the whole dataset, so that `restore` recognises a cut one.
    """
    for given, its_kind in ((header, kind), (mask_header, "map")):
        if given is not None:
            expect(given, HEADERS[its_kind], "header")
    all_of_it = {"kind": kind, "header": plain(header), "settings": plain(settings)}
    all_of_it.update(mask_header=plain(mask_header), first=first)
    words = _readable(kind, header, settings, mask_header)
    return {"Conventions": "CF-1.8", **words, "aq": json.dumps(all_of_it)}


def changed_words(ds: xr.Dataset, kind: str, header: Any, settings: Any, mask_header: Any) -> None:
    """Copies text that was changed in the attributes back to the headers and settings."""
    was = _readable(kind, header, settings, mask_header)
    for target, prefix in ((header, ""), (mask_header, "" if kind == "map" else "mask_")):
        for word, names in (*_WORDS.items(), ("comment", _COMMENTS)):
            now = ds.attrs.get(prefix + word)
            field = next((name for name in names if hasattr(target, name)), None)
            if field and now is not None and now != was.get(prefix + word):
                setattr(target, field, str(now).split("\n") if word == "comment" else str(now))
    for word, (field, members) in _METHODS.items():
        now = ds.attrs.get(word)
        if now is not None and hasattr(settings, field) and now != was.get(word):
            named = {_word(member): member for member in members}
            if now not in named:
                raise ValueError(f"expected {word} to be one of {', '.join(named)}, found {now!r}")
            setattr(settings, field, named[now])


def kept(ds: xr.Dataset) -> dict[str, Any]:
    """The content of the attribute `aq`: kind, headers and settings; empty if there is none."""
    text = ds.attrs.get("aq", "{}")
    try:
        values = json.loads(text)
    except (TypeError, ValueError):
        values = None
    if not isinstance(values, dict) or values.get("kind") not in KINDS:
        raise ValueError(f"expected the attribute aq as this library writes it, found {text!r:.60}")
    return values


_CLASS_WORDS: dict[type, str] = {Integral: "a whole number", Real: "a number"}


def expect(value: Any, cls: type, name: str = "") -> None:
    """Raises `TypeError` with the name of the argument if the value is of another class."""
    if not isinstance(value, cls):
        place = f"{name}: " if name else ""
        wanted = _CLASS_WORDS.get(cls, cls.__name__)
        data = isinstance(value, tuple) and isinstance(getattr(value, "data", None), cls)
        hint = "; pass its data" if data else ""
        raise TypeError(f"{place}expected {wanted}, found {type(value).__name__}{hint}")


def need(ds: Any, *names: str) -> None:
    expect(ds, xr.Dataset)
    missing = [name for name in names if name not in ds.variables]
    if missing:
        raise ValueError(f"the dataset lacks {', '.join(missing)}")


def dataset_of(data: Any, *names: str) -> xr.Dataset:
    """The given dataset, or that of the given object; it must have the variables `names`."""
    if not isinstance(data, xr.Dataset):
        if not hasattr(type(data), "_fields") or not hasattr(data, "to_xarray"):
            raise TypeError(
                f"expected a dataset or an object of this library, found {type(data).__name__}"
            )
        data = data.to_xarray()
    need(data, *names)
    return data  # type: ignore[no-any-return]


def need_once(ds: xr.Dataset) -> None:
    """Rejects a dataset with a duplicate record number, such as one made from several files, and a
    single record that has lost its dimension.
    """
    need(ds, "record")
    if ds["record"].ndim != 1:
        raise ValueError(
            "expected `record` to have one dimension; select a single record with a list, as in "
            "isel(time=[4]), to keep it"
        )
    numbers, counts = np.unique(ds["record"].values, return_counts=True)
    if (counts > 1).any():
        hint = "; select one file by the coordinate file first" if "file" in ds.variables else ""
        raise ValueError(f"expected each record once, found {numbers[counts > 1][0]} again{hint}")


# Variables.

NO_DECISION = -1  # a flag of a mask variable: the row has no mask for the band


def variable(dims: Any, values: Any, units: str, long_name: str, **more: Any) -> xr.Variable:
    """A variable with its attributes; one without missing values has no fill value in a netCDF
    file.
    """
    attrs = {"units": units} if units else {}
    attrs.update(long_name=long_name, **more)
    made: xr.Variable = xr.Variable(dims, values, attrs)  # type: ignore[no-untyped-call]
    if isinstance(values, np.ndarray) and values.dtype.kind == "f" and not np.isnan(values).any():
        made.encoding = {"_FillValue": None}
    return made


def band_coordinates(bands: Any) -> dict[str, xr.Variable]:
    return {
        "band": variable("band", bands, "1", "one-third-octave band number"),
        "frequency": variable(
            "band",
            nominal_frequency(bands),
            "Hz",
            "nominal centre frequency",
            standard_name="sound_frequency",
        ),
    }


def flags(dims: tuple[str, str], values: Any, enum: Any, long_name: str) -> xr.Variable:
    meanings = {NO_DECISION: "no_decision", **{int(m): m.name.lower() for m in enum}}
    values_and_meanings = {
        "flag_values": np.array(list(meanings), dtype=np.int8),
        "flag_meanings": " ".join(meanings.values()),
    }
    return variable(dims, values, "", long_name, **values_and_meanings)


# Kinds of columns, given in place of a unit in the lists of columns.
DATE, CLOCK, CLOCK_BESIDE, LENGTH = "date", "clock", "clock beside time", "length"


def _own_times(name: str, dim: str, own: Any, seconds: Any) -> dict[str, xr.Variable]:
    """A variable with the times of the file, if those of the dataset differ."""
    if np.array_equal(own, seconds, equal_nan=True):
        return {}
    return {name + OWN: variable(dim, own, "s", "time of day, as in the file")}


def table_variables(table: Any, columns: Any, dim: str, unit: str = "m") -> dict[str, xr.Variable]:
    """The columns of a library table as variables with the names and units of a dataset; omits
    dates if no record has one.
    """
    made: dict[str, xr.Variable] = {}
    for column, name, units, long_name in columns:
        values = np.ascontiguousarray(table[column])
        if units == DATE:
            if not values.any():
                continue  # no record has a date
            dates, attrs, encoding = clock(values)
            made[name] = variable(dim, dates, attrs.get("units", ""), long_name)
            made[name].encoding.update(encoding)
        elif units in (CLOCK, CLOCK_BESIDE):
            beside = made["time"].values if units == CLOCK_BESIDE else None
            seconds = going_on(values, beside)
            made[name] = variable(dim, seconds, "s", long_name)
            made.update(_own_times(name, dim, values, seconds))
        else:
            made[name] = variable(dim, values, unit if units == LENGTH else units, long_name)
    return made


def level_variable(dims: Any, values: Any) -> xr.Variable:
    return variable(
        dims,
        values,
        "dB",
        "one-third-octave band sound pressure level",
        standard_name="sound_pressure_level_in_air",
    )
