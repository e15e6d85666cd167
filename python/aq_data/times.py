"""Converts clock times and dates between the library's tables and datasets.

Times of day in a file restart at midnight; times in a dataset continue to rise, because lookups
need ascending times. If they differ, a dataset also keeps the file's own times.
"""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
import xarray as xr

DAY = 86400.0
EPOCH = np.datetime64("1899-12-30", "D")
OWN = "_of_day"  # the suffix of a variable that holds the file's own times
_CF_DATE = {"units": "days since 1899-12-30", "calendar": "standard", "dtype": "float64"}


def going_on(seconds: Any, beside: Optional[Any] = None) -> Any:
    """Times of day in seconds that continue to rise after midnight: a drop of more than half a day
    starts the next day. If `beside` gives times that already continue, each result is on the day
    that brings it nearest to its counterpart there.
    """
    if beside is not None:
        return seconds + DAY * np.round((beside - seconds) / DAY)
    falls = np.round(-np.diff(seconds) / DAY).clip(min=0)
    return seconds + DAY * np.concatenate([[0.0][: len(seconds)], np.cumsum(falls)])


def of_day(ds: xr.Dataset, name: str) -> Any:
    """The file's own times: those kept with the variable or, where the variable has since changed
    by more than rounding or whole days, its times of day.
    """
    seconds = np.asarray(ds[name].values, dtype=float)
    if name + OWN not in ds.variables:
        return seconds
    own = np.asarray(ds[name + OWN].values, dtype=float)
    apart = (seconds - own) / DAY
    return np.where(abs(apart - np.round(apart)) * DAY < 1e-6, own, seconds % DAY)


def clock(days: Any) -> tuple[Any, dict[str, Any], dict[str, Any]]:
    """Dates, their attributes, and their encoding in netCDF; 0 means unknown and gives no date.

    If any value is not a whole day between 1694 and 2242, all of them stay numbers.
    """
    days = np.asarray(days, dtype=float)
    if not (np.isfinite(days).all() and (days % 1 == 0).all() and (abs(days - 25000) < 1e5).all()):
        return days, {"units": "d"}, {}
    dates = (EPOCH + days.astype(int)).astype("datetime64[ns]")
    dates[days == 0] = np.datetime64("NaT")
    return dates, {}, dict(_CF_DATE)


def days_of(dates: Any) -> Any:
    """Dates as days since 1899-12-30, 0 for no date. Numbers are taken to be such days already."""
    dates = np.asarray(dates)
    if dates.dtype.kind == "M":
        none = np.isnat(dates)
        since = dates.astype("datetime64[ns]") - EPOCH.astype("datetime64[ns]")
        whole, rest = np.divmod(since.astype(np.int64), np.int64(DAY) * 10**9)
        return np.where(none, 0.0, whole + rest / (DAY * 1e9))
    days = dates.astype(float)
    return np.where(np.isnan(days), 0.0, days)
