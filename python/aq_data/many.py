"""All histories of an archive as one lazy dataset."""

from __future__ import annotations

import os
import warnings
from typing import Any, Iterable, NamedTuple, Optional, Sequence, Union

import dask
import dask.array
import dask.base
import numpy as np
import numpy.typing as npt
import xarray as xr

from . import _core
from .archive import expanded, in_threads
from .attributes import NO_DECISION, band_coordinates, level_variable, table_variables, variable
from .errors import Error, FileError
from .files import Path, read
from .labelled import RECORD_TIMES, check_map, mask_variables


class _Shape(NamedTuple):
    """What of a history and its map has to be known before their arrays are read."""

    path: str
    mask: Optional[str]
    records: npt.NDArray[np.int16]
    bands: npt.NDArray[np.int16]
    times: npt.NDArray[Any]
    last_good_bands: Any


def _read(path: str, cls: Any, wanted: str) -> Any:
    data = read(path).data
    if not isinstance(data, cls):
        raise FileError(path, 0, 0, wanted, _core.kindOfFile(path).name)
    return data


def _history(path: str) -> _core.AQ_SpectralTimeHistory:
    return _read(path, _core.AQ_SpectralTimeHistory, "a spectral time history")  # type: ignore


def _map(path: str) -> _core.AQ_MaskMap:
    return _read(path, _core.AQ_MaskMap, "a masking map")  # type: ignore


def _shape(paths: tuple[str, Optional[str]]) -> Union[_Shape, Exception]:
    try:
        history, last = _history(paths[0]), None
        if paths[1] is not None:
            mask = _map(paths[1])
            check_map(history, mask)
            last = mask.last_good_bands
        return _Shape(*paths, history.records, history.bands, history.times, last)
    except (Error, OSError) as error:
        return error
    except ValueError as error:
        return ValueError(f"{paths[1]}: {error}")


def _wide(values: Any, own: Any, bands: Any, shape: tuple[int, int], fill: float) -> Any:
    """Values of a file's own bands on the bands of all files."""
    if values.shape[0] != shape[0] or not np.isin(own, bands).all():
        raise ValueError(f"a file has changed since it was opened: expected {shape}")
    wide = np.full(shape, fill, dtype=values.dtype)
    if len(own):
        wide[:, np.searchsorted(bands, own)] = values
    return wide


def _levels(path: str, bands: Any, shape: tuple[int, int]) -> Any:
    history = _history(path)
    return _wide(history.to_numpy(), history.bands, bands, shape, np.nan)


def _modes(path: str, bands: Any, shape: tuple[int, int]) -> Any:
    mask = _map(path)
    return _wide(mask.to_numpy()[0], mask.bands, bands, shape, NO_DECISION)


def _adjustments(path: str, bands: Any, shape: tuple[int, int]) -> Any:
    mask = _map(path)
    return _wide(mask.to_numpy()[1], mask.bands, bands, shape, NO_DECISION)


def _lazy(
    load: Any, paths: list[str], shapes: list[_Shape], bands: Any, dtype: type
) -> dask.array.Array:
    """One chunk a file; a worker gets the path and no more."""
    chunks = []
    for path, shape in zip(paths, shapes):
        size = (len(shape.records), len(bands))
        now = os.stat(path)  # a file written anew is another task
        state = (now.st_mtime_ns, now.st_size)
        key = f"{load.__name__}-{dask.base.tokenize(path, state, bands, size)}"
        chunk = dask.delayed(load)(path, bands, size, dask_key_name=key)
        chunks.append(dask.array.from_delayed(chunk, size, dtype))
    return dask.array.concatenate(chunks)


def _kept(results: list[Union[_Shape, Exception]], errors: str) -> list[_Shape]:
    failures = [result for result in results if isinstance(result, Exception)]
    if failures and errors == "raise":
        raise failures[0]
    for failure in failures:
        warnings.warn(f"skipped: {failure}", stacklevel=3)
    return [result for result in results if not isinstance(result, Exception)]


def _mask_variables(shapes: list[_Shape], bands: Any) -> dict[str, xr.Variable]:
    paths = [shape.mask or "" for shape in shapes]
    return mask_variables(
        _lazy(_modes, paths, shapes, bands, np.int8),
        _lazy(_adjustments, paths, shapes, bands, np.int8),
        np.concatenate([shape.last_good_bands for shape in shapes]),
    )


def _coordinates(shapes: list[_Shape], bands: Any) -> dict[str, Any]:
    counts = [len(shape.records) for shape in shapes]
    numbers = np.concatenate([shape.records for shape in shapes])
    files = np.repeat(np.arange(len(shapes), dtype=np.int32), counts)
    times = np.concatenate([shape.times for shape in shapes])
    return {
        **table_variables(times, RECORD_TIMES, "time"),
        "record": variable("time", numbers, "1", "record number"),
        "file": variable("time", files, "1", "place in path"),
        "path": ("path", [shape.path for shape in shapes]),
        **band_coordinates(bands),
    }


def open_many(
    paths: Union[Path, Iterable[Path]],
    masks: Union[Path, Iterable[Path], None] = None,
    errors: str = "raise",
) -> xr.Dataset:
    """Many spectral time histories as one dataset, record after record; levels and masks load when
    they are computed.

    `paths` is a pattern or a list; `masks` names the map of each. `file(time)` is the place in
    `path`. Files that do not read and maps that do not fit raise, or with `errors="skip"` the
    history is left out with a warning.
    """
    if errors not in ("raise", "skip"):
        raise ValueError(f"expected errors='raise' or 'skip', found {errors!r}")
    names = expanded(paths)
    map_names: Sequence[Optional[str]] = [None] * len(names)
    if masks is not None:
        map_names = expanded(masks)
    if len(map_names) != len(names):
        raise ValueError(
            f"expected a map for each of {len(names)} histories, found {len(map_names)}"
        )
    shapes = _kept(in_threads(_shape, list(zip(names, map_names)), progress=False), errors)
    if not shapes:
        raise ValueError("expected at least one history that reads, found none")
    bands = np.unique(np.concatenate([shape.bands for shape in shapes]))
    level = _lazy(_levels, [shape.path for shape in shapes], shapes, bands, float)
    variables = {"level": level_variable(("time", "band"), level)}
    if masks is not None:
        variables.update(_mask_variables(shapes, bands))
    return xr.Dataset(variables, _coordinates(shapes, bands), {"Conventions": "CF-1.8"})
