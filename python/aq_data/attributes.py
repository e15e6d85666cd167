"""What datasets are made of: methods of the library's classes, variables, attributes.

What has no place in an array, headers and settings, travels in a dataset's attribute `aq` as JSON,
so that everything comes back from a netCDF file too.
"""

from __future__ import annotations

import json
from typing import Any, Callable, TypeVar

import numpy as np
import numpy.typing as npt
import xarray as xr

from . import _core

Function = TypeVar("Function", bound=Callable[..., Any])

HEADERS: dict[str, Any] = {
    "history": _core.AQ_HeaderSTH,
    "map": _core.AQ_HeaderMask,
    "spectrum": _core.AQ_HeaderSSR,
    "positions": _core.AQ_HeaderPTH,
    "geometry": _core.AQ_HeaderGTH,
}
_TITLES = ("sProjectName", "ProjectName")
_SOURCES = ("sGeneratedBy", "GeneratedBy")
_COMMENTS = ("cCommentLines", "colCommentLines")


def attach(*classes: type, name: str) -> Callable[[Function], Function]:
    """Makes a function a method of classes of the library."""

    def decorate(function: Function) -> Function:
        for cls in classes:
            setattr(cls, name, function)
        return function

    return decorate


def nominal_frequency(bands: npt.ArrayLike) -> npt.NDArray[np.float64]:
    """Nominal centre frequencies in Hz of one-third-octave bands, by their numbers."""
    series = np.array([1.0, 1.25, 1.6, 2.0, 2.5, 3.15, 4.0, 5.0, 6.3, 8.0])
    decade, step = np.divmod(np.asarray(bands, dtype=int), 10)
    return np.asarray(np.round(series[step] * 10.0**decade, 9))


# Headers and settings as plain values and back.

_FOLLOWING = ("LoRec", "HiRec")  # from the records, of which a dataset may have fewer


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
    """The target with these values, which `plain` gave."""
    try:
        return _restored(target, values)
    except (AttributeError, LookupError, TypeError, ValueError) as error:
        raise ValueError(
            f"the attribute aq has another {type(target).__name__}: {error}"
        ) from error


def _restored(target: Any, values: dict[str, Any]) -> Any:
    for name, value in values.items():
        if name == "MetricTypes":
            for metric in value:
                target.MetricType(metric)
        elif isinstance(getattr(target, name), _core.AQ_Time):
            time = getattr(target, name)
            time.CurrentDate = value[0]
            time.assignSeconds(*value[1:])  # not through the setter, which wraps into the day
        elif isinstance(value, dict):
            _restored(getattr(target, name), value)
        else:
            setattr(target, name, value)
    return target


def attributes(
    kind: str, header: Any, settings: Any = None, mask_header: Any = None
) -> dict[str, Any]:
    """Attributes of a dataset: those of the CF conventions for people, and all of it as JSON."""

    for given, its_kind in ((header, kind), (mask_header, "map")):
        if given is not None:
            expect(given, HEADERS[its_kind])

    def first(names: tuple[str, ...]) -> Any:
        return next((getattr(header, n) for n in names if hasattr(header, n)), "")

    all_of_it = {"kind": kind, "header": plain(header), "settings": plain(settings)}
    all_of_it["mask_header"] = plain(mask_header)
    readable = {
        "title": first(_TITLES),
        "source": first(_SOURCES),
        "comment": "\n".join(first(_COMMENTS)),
    }
    text = {n: v.encode(errors="replace").decode() for n, v in readable.items() if v}
    return {"Conventions": "CF-1.8", **text, "aq": json.dumps(all_of_it)}


def kept(ds: xr.Dataset) -> dict[str, Any]:
    """What the attribute `aq` keeps: kind, headers and settings; nothing when there is none."""
    text = ds.attrs.get("aq", "{}")
    try:
        values = json.loads(text)
    except (TypeError, ValueError):
        values = None
    if not isinstance(values, dict) or values.get("kind") not in (None, "emission", *HEADERS):
        raise ValueError(
            f"expected the attribute aq of a dataset of the library, found {text!r:.60}"
        )
    return values


def header_of(ds: xr.Dataset, name: str, cls: type) -> Any:
    return restored(cls(), kept(ds).get(name) or {})


def expect(value: Any, cls: type) -> None:
    if not isinstance(value, cls):
        raise TypeError(f"expected {cls.__name__}, found {type(value).__name__}")


def need(ds: Any, *names: str) -> None:
    expect(ds, xr.Dataset)
    missing = [name for name in names if name not in ds.variables]
    if missing:
        raise ValueError(f"the dataset lacks {', '.join(missing)}")


def dataset_of(data: Any, *names: str) -> xr.Dataset:
    """A dataset, or that of an object, which has these variables."""
    if not isinstance(data, xr.Dataset):
        if not hasattr(type(data), "_fields") or not hasattr(data, "to_xarray"):
            raise TypeError(f"expected a dataset or an object, found {type(data).__name__}")
        data = data.to_xarray()
    need(data, *names)
    return data  # type: ignore[no-any-return]


def need_once(ds: xr.Dataset) -> None:
    """Refuses a dataset that has a record number twice, as one of several files does, and a record
    that was taken out of its dimension."""
    need(ds, "record")
    if ds["record"].ndim != 1:
        raise ValueError(
            "expected records in one dimension; isel(time=[4]) keeps it for one record"
        )
    numbers, counts = np.unique(ds["record"].values, return_counts=True)
    if (counts > 1).any():
        hint = "; select one file by the coordinate file first" if "file" in ds.variables else ""
        raise ValueError(f"expected each record once, found {numbers[counts > 1][0]} again{hint}")


# Variables.

NO_DECISION = -1  # a flag of a mask variable: the row has no mask for the band


def variable(dims: Any, values: Any, units: str, long_name: str, **more: Any) -> xr.Variable:
    attrs = {"units": units} if units else {}
    attrs.update(long_name=long_name, **more)
    return xr.Variable(dims, values, attrs)  # type: ignore[no-untyped-call]


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


def table_variables(table: Any, columns: Any, dim: str) -> dict[str, xr.Variable]:
    return {
        name: variable(dim, np.ascontiguousarray(table[column]), units, long_name)
        for column, name, units, long_name in columns
    }


def level_variable(dims: Any, values: Any) -> xr.Variable:
    return variable(
        dims,
        values,
        "dB",
        "one-third-octave band sound pressure level",
        standard_name="sound_pressure_level_in_air",
    )
