"""All histories of an archive as one lazy dataset."""

from __future__ import annotations

import ntpath
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
from .archive import ONE_PATH, expanded, in_threads
from .attributes import NO_DECISION, band_coordinates, level_variable, table_variables, variable
from .errors import Error, FileError
from .files import Path, Reading, read
from .labelled import RECORD_TIMES, check_map, mask_variables


class _Shape(NamedTuple):
    """What of a history and its map has to be known before their arrays are read."""

    path: str
    mask: Optional[str]
    records: npt.NDArray[np.int16]
    bands: npt.NDArray[np.int16]
    times: npt.NDArray[Any]
    last_good_bands: Any


class _WrongPair(ValueError):
    """A pattern gave a history the map of another one, which no `errors` skips."""


def _read(path: str, cls: Any, wanted: str) -> Reading:
    reading = read(path)
    if not isinstance(reading.data, cls):
        raise FileError(path, 0, 0, wanted, _core.kindOfFile(path).name)
    return reading


def _history(path: str) -> _core.AQ_SpectralTimeHistory:
    reading = _read(path, _core.AQ_SpectralTimeHistory, "a spectral time history")
    return reading.data  # type: ignore[no-any-return]


def _map(path: str) -> Reading:
    return _read(path, _core.AQ_MaskMap, "a masking map")


def _check_pair(path: str, mask: str, header: _core.AQ_HeaderMask) -> None:
    """Refuses a map that says that it was made from another history, in whatever folder."""
    own, named = os.path.basename(path), ntpath.basename(header.sGenerationFile)
    if named and named.lower() != own.lower():
        raise _WrongPair(f"{mask}: expected a map of {own}, found one of {named}")


def _shape(job: tuple[str, Optional[str], bool]) -> Union[_Shape, Exception]:
    """What is known of a history and its map; whether a pattern joined them comes third."""
    path, map_path, joined = job
    try:
        history, last = _history(path), None
        if map_path is not None:
            header, mask = _map(map_path)
            if joined:
                _check_pair(path, map_path, header)
            check_map(history, mask)
            last = mask.last_good_bands
        return _Shape(path, map_path, history.records, history.bands, history.times, last)
    except _WrongPair:
        raise
    except (Error, OSError) as error:
        return error
    except ValueError as error:
        return ValueError(f"{map_path}: {error}")


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
    mask = _map(path).data
    return _wide(mask.to_numpy()[0], mask.bands, bands, shape, NO_DECISION)


def _adjustments(path: str, bands: Any, shape: tuple[int, int]) -> Any:
    mask = _map(path).data
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

    `paths` is a pattern or a list; `masks` names the map of each, in the same order; maps of a
    pattern that say that they are of other histories raise. `file(time)` is the place in `path`.
    Files that do not read and maps that do not fit raise, or with `errors="skip"` the history is
    left out with a warning.
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
    joined = isinstance(masks, ONE_PATH)
    jobs = [(path, map_path, joined) for path, map_path in zip(names, map_names)]
    shapes = _kept(in_threads(_shape, jobs, progress=False), errors)
    if not shapes:
        raise ValueError("expected at least one history that reads, found none")
    bands = np.unique(np.concatenate([shape.bands for shape in shapes]))
    level = _lazy(_levels, [shape.path for shape in shapes], shapes, bands, float)
    variables = {"level": level_variable(("time", "band"), level)}
    if masks is not None:
        variables.update(_mask_variables(shapes, bands))
    return xr.Dataset(variables, _coordinates(shapes, bands), {"Conventions": "CF-1.8"})
