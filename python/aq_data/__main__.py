"""The jobs that the command line tool leaves to this package: `python3 -m aq_data plot|convert`."""

from __future__ import annotations

import functools
import os
import sys
import tempfile
from typing import Any, Callable, Optional

from . import _core
from .errors import Error
from .files import read, write
from .restore import measurement

_PAGE = {  # the part of a page that each class of content supplies
    _core.AQ_SpectralTimeHistory: "history",
    _core.AQ_MaskMap: "mask",
    _core.AQ_Spectrum: "ambient",
    _core.AQ_PositionTimeHistory: "positions",
    _core.AQ_GeometryTimeHistory: "geometry",
    _core.AQ_Microphone: "microphone",
}


def _replaced(path: str, save: Callable[[str], Any]) -> None:
    """Writes a file completely or not at all."""
    folder, name = os.path.split(path)
    handle, new = tempfile.mkstemp(
        prefix=".aq-", suffix=os.path.splitext(name)[1], dir=folder or "."
    )
    os.close(handle)
    try:
        save(new)
        umask = os.umask(0)
        os.umask(umask)
        os.chmod(new, 0o666 & ~umask)
        os.replace(new, path)
    except BaseException:
        os.unlink(new)
        raise


def plot(output: str, *paths: str) -> None:
    """Draws the files of one run, at most one of each kind: a page if there is a history, otherwise
    one plot.
    """
    import matplotlib

    matplotlib.use("Agg")
    from . import plot as pictures

    found: dict[str, Any] = {}
    for path in paths:
        header, data = read(path)
        part = _PAGE.get(type(data))
        if part is None:
            raise ValueError(f"{path}: {type(data).__name__} cannot be drawn")
        if part in found:
            raise ValueError(f"{path}: expected one file of each kind, found a second {part}")
        found[part] = (header, data)
    if "history" in found:
        header, history = found.pop("history")
        mask_header, mask = found.pop("mask", (None, None))
        _core.setMetrics(history, mask)
        ds = history.to_xarray(mask, header, mask_header)
        figure = pictures.page(ds, **{part: data for part, (_, data) in found.items()})
    else:
        figure = _single(found, pictures)
    _replaced(output, figure.savefig)


def _single(found: dict[str, Any], pictures: Any) -> Any:
    """For files without a history, draws the spectrum, else the positions, else the geometry."""
    draw: dict[str, Callable[[Any], Any]] = {
        "ambient": lambda data: pictures.spectrum(data),
        "positions": lambda data: pictures.ground_track(
            data, found.get("microphone", (0, None))[1]
        ),
        "geometry": lambda data: pictures.geometry(data),
    }
    for part, picture in draw.items():
        if part in found:
            return picture(found[part][1]).figure
    raise ValueError("expected a history, or a spectrum, positions or a geometry")


def convert(
    source: str, output: str, mask: Optional[str] = None, replace_map: bool = False
) -> None:
    """Converts a file to netCDF, or netCDF back to files. A history and its map make one dataset;
    on the way back, the map gets a file of its own next to the history. Raises `ValueError`, and
    writes neither file, if the map's file exists, unless `replace_map` is true.
    """
    import xarray as xr

    if output.lower().endswith(".nc"):
        header, data = read(source)
        if mask is not None:
            mask_header, rows = read(mask, _core.AQ_MaskMap)
            ds = data.to_xarray(rows, header, mask_header)
        else:
            ds = data.to_xarray() if header is None else data.to_xarray(header=header)
        ds.attrs["history"] = f"aqdata convert {os.path.basename(source)}"
        _replaced(output, ds.to_netcdf)
        return
    with xr.open_dataset(source) as stored:
        ds = stored.load()
    if "mask_mode" not in ds.variables or "level" not in ds.variables:
        write(ds, output)
        return
    history, stored_mask = measurement(ds)
    stem = output[: -len(".sth.csv")] if output.endswith(".sth.csv") else output
    stem = os.path.splitext(stem)[0] if stem == output else stem
    map_file = f"{stem}.mask.csv"
    if os.path.exists(map_file) and not replace_map:
        raise ValueError(f"{map_file}: already exists; --force replaces it")
    write(history, output)
    write(stored_mask, map_file)


def main(words: list[str]) -> int:
    force = words[:1] == ["--force"]
    words = words[1:] if force else words
    commands: dict[str, Callable[..., None]] = {
        "plot": plot,
        "convert": functools.partial(convert, replace_map=force),
    }
    if len(words) < 3 or words[0] not in commands:
        print("expected plot OUT FILE... or [--force] convert FILE OUT [MAP]", file=sys.stderr)
        return 2
    try:
        commands[words[0]](*words[1:])
    except (Error, ValueError, TypeError, OSError) as error:
        print(f"aqdata: {error}", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
