"""The results of reading a file."""

from __future__ import annotations

import os
from typing import Generic, NamedTuple, TypeVar, Union

from . import _core

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
Header = TypeVar("Header")
Data = TypeVar("Data")


class Reading(NamedTuple, Generic[Header, Data]):
    """The content of a file: `header, data = aq_data.read(path)`. `header` is `None` if this kind
    of file has none of its own.
    """

    header: Header
    data: Data


class Tracking(NamedTuple):
    """The fixes of a tracking file: the good ones, and those of poor quality."""

    positions: _core.AQ_PositionTimeHistory
    rejected: _core.AQ_PositionTimeHistory
