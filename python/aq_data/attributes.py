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


def plain(value: Any) -> Any:
    if isinstance(value, (_core.TextCollection, _core.MetricTypeCollection)):
        return list(value)
    if isinstance(value, _core.AQ_Time):
        return [value.CurrentDate, value.TODseconds, value.RelSeconds]
    if hasattr(value, "_fields"):
        values = {name: plain(getattr(value, name)) for name in value._fields}
        if isinstance(value, _core.AQ_MetricSummary):
            values["MetricTypes"] = plain(value.MetricTypes)
        return values
    return value


def restored(target: Any, values: dict[str, Any]) -> Any:
    for name, value in values.items():
        if name == "MetricTypes":
            for metric in value:
                target.MetricType(metric)
        elif isinstance(getattr(target, name), _core.AQ_Time):
            time = getattr(target, name)
            time.CurrentDate = value[0]
            time.assignSeconds(*value[1:])  # not through the setter, which wraps into the day
        elif isinstance(value, dict):
            restored(getattr(target, name), value)
        else:
            setattr(target, name, value)
    return target


def attributes(kind: str, header: Any, settings: Any = None, **more: Any) -> dict[str, Any]:
    """Attributes of a dataset: those of the CF conventions for people, and all of it as JSON."""

    def first(names: tuple[str, ...]) -> Any:
        return next((getattr(header, n) for n in names if hasattr(header, n)), "")

    all_of_it = {"kind": kind, "header": plain(header), "settings": plain(settings)}
    all_of_it.update({name: plain(value) for name, value in more.items()})
    readable = {
        "title": first(_TITLES),
        "source": first(_SOURCES),
        "comment": "\n".join(first(_COMMENTS)),
    }
    text = {n: v.encode(errors="replace").decode() for n, v in readable.items() if v}
    return {"Conventions": "CF-1.8", **text, "aq": json.dumps(all_of_it)}


def kept(ds: xr.Dataset) -> dict[str, Any]:
    return dict(json.loads(ds.attrs.get("aq", "{}")))


def header_of(ds: xr.Dataset, name: str, cls: type) -> Any:
    return restored(cls(), kept(ds).get(name) or {})


def need(ds: xr.Dataset, *names: str) -> None:
    missing = [name for name in names if name not in ds.variables]
    if missing:
        raise ValueError(f"the dataset lacks {', '.join(missing)}")


# Variables.


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
