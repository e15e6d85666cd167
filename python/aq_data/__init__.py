"""Reads and writes files of aircraft noise measurements, as objects, arrays and tables."""

from importlib import import_module as _import_module
from typing import Any as _Any

from . import _core
from ._core import *  # noqa: F403
from ._core import FileKind, kindOfFile
from .errors import Error, FileError
from . import labelled as _labelled  # attaches to_xarray to the classes
from . import tables as _tables  # attaches to_pandas and from_pandas
from . import objects as _objects  # adds [], == and tables in notebooks
from . import accessor as _accessor  # registers Dataset.aq
from .archive import check, scan
from .many import open_many
from .noise import audit, emission_geometry, epnl, events, explain, maskByAmbient, metrics
from .noise import setMetrics, tone_correction
from .excel import read_excel
from .files import read, read_sdf, read_tracking, write
from .reading import Reading, Tracking
from .restore import from_xarray, measurement
from .work import Run, cut, fix, join

__all__ = [
    *(name for name in dir(_core) if not name.startswith("_")),
    "Error",
    "FileError",
    "Reading",
    "Run",
    "Tracking",
    "audit",
    "check",
    "cut",
    "emission_geometry",
    "epnl",
    "events",
    "explain",
    "fix",
    "from_xarray",
    "join",
    "measurement",
    "metrics",
    "open_many",
    "plot",
    "read",
    "read_excel",
    "read_sdf",
    "read_tracking",
    "scan",
    "tone_correction",
    "write",
]


def __dir__() -> list[str]:
    return sorted({*globals(), *__all__})


def __getattr__(name: str) -> _Any:
    if name == "plot":  # matplotlib is slow to import, and most programs do not draw
        return _import_module("aq_data.plot")
    if name == "__version__":
        return _import_module("importlib.metadata").version("aq_data")
    raise AttributeError(f"module 'aq_data' has no attribute '{name}'")
