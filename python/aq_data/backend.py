"""`xarray.open_dataset("x.csv", engine="aq")`."""

from __future__ import annotations

import os
from typing import Any, Iterable, Optional

import xarray as xr
from xarray.backends import BackendEntrypoint

from ._core import AQ_SpectralTimeHistory, FileKind, kindOfFile
from .files import read
from .reading import Path, Reading

LABELLED = (
    FileKind.SpectralTimeHistory,
    FileKind.MaskingMap,
    FileKind.SpectrumRecord,
    FileKind.PositionTimeHistory,
    FileKind.GeometricTimeHistory,
    FileKind.Tracking,
)


def to_dataset(reading: Reading[Any, Any], mask: Optional[Path] = None) -> xr.Dataset:
    """Makes a dataset from the result of `read`; a history's map may come from a second file."""
    if not hasattr(reading.data, "to_xarray"):
        raise ValueError(f"expected a file that can be a dataset, found {reading.data!r}")
    arguments: dict[str, Any] = {} if reading.header is None else {"header": reading.header}
    if mask is not None:
        if not isinstance(reading.data, AQ_SpectralTimeHistory):
            raise ValueError(f"expected a history for the map, found {reading.data!r}")
        arguments["mask_header"], arguments["mask"] = read(mask)
    return reading.data.to_xarray(**arguments)  # type: ignore[no-any-return]


class AqBackend(BackendEntrypoint):
    """Opens measurement files as datasets; kinds in `LABELLED` do not need `engine="aq"`."""

    description = "Aircraft noise measurements"
    open_dataset_parameters = ("filename_or_obj", "drop_variables", "mask")

    def open_dataset(  # type: ignore[override]
        self,
        filename_or_obj: Any,
        *,
        drop_variables: Optional[Iterable[str]] = None,
        mask: Optional[Path] = None,
    ) -> xr.Dataset:
        ds = to_dataset(read(filename_or_obj), mask)
        names = [drop_variables] if isinstance(drop_variables, str) else drop_variables
        return ds.drop_vars(names or [], errors="ignore")

    def guess_can_open(self, filename_or_obj: Any) -> bool:
        return isinstance(filename_or_obj, (str, os.PathLike)) and (
            kindOfFile(filename_or_obj) in LABELLED
        )
