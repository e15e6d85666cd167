"""A complete workflow over an archive, on a cluster of two worker processes on this machine.

    /usr/bin/python3 examples/archive_on_a_cluster.py [--files 2000] [--folder FOLDER]

Makes histories, maps and geometry files, and scans the folder. Each worker then reads the files at
its paths, leaves out masked levels and sums band energies by emission angle. The energy means are
written to `by_angle.nc`.
"""

from __future__ import annotations

import argparse
import tempfile
import time
from pathlib import Path

import numpy as np
import xarray as xr
from distributed import Client, LocalCluster

import aq_data

RECORDS, LOW_BAND, BANDS = 60, 17, 24
ANGLES = np.arange(0, 181, 15)  # edges of the angle classes, degrees
PATHS_PER_TASK = 25


def make(folder: Path, number: int) -> None:
    """Writes the files of a fly-over, whose speed depends on `number`. Masks levels below 40 dB."""
    rng = np.random.default_rng(number)
    seconds = (np.arange(RECORDS) - RECORDS // 2) * 0.5
    slant = np.hypot(150, (60 + number % 40) * seconds)
    spectrum = 125 - 0.14 * (np.arange(BANDS) - 7) ** 2
    levels = spectrum - 20 * np.log10(slant)[:, None] + rng.normal(0, 0.5, (RECORDS, BANDS))
    history = aq_data.AQ_SpectralTimeHistory.from_numpy(levels, LOW_BAND)
    history.times = {"TODseconds": 36000 + seconds, "RelSeconds": seconds}
    mask = aq_data.AQ_MaskMap.from_numpy((levels < 40).astype(int), low_band=LOW_BAND)
    mask.setLGB()
    angles = np.degrees(np.arccos(-np.sign(seconds) * np.sqrt(1 - (150 / slant) ** 2)))
    geometry = aq_data.AQ_GeometryTimeHistory.from_numpy({"SRe": slant, "THETAe": angles})
    for data, kind in ((history, "sth"), (mask, "mask"), (geometry, "gth")):
        aq_data.write(data, folder / f"{number:05}.{kind}.csv")


def energy_by_angle(paths: list[str]) -> xr.Dataset:
    """Sums of band energy and counts of levels by emission angle, over the histories at `paths`."""
    energy = np.zeros((len(ANGLES) - 1, BANDS))
    count = np.zeros_like(energy)
    for path in paths:
        stem = path.removesuffix(".sth.csv")
        history = xr.open_dataset(path, engine="aq", mask=stem + ".mask.csv")
        joined = history.aq.unmasked().aq.with_geometry(
            xr.open_dataset(stem + ".gth.csv", engine="aq")
        )
        joined = joined.isel(time=((joined.theta >= 0) & (joined.theta <= 180)).values)
        place = np.minimum(np.digitize(joined.theta.values, ANGLES), len(ANGLES) - 1) - 1
        levels = joined.level.values
        np.add.at(energy, place, np.nan_to_num(10 ** (levels / 10)))
        np.add.at(count, place, ~np.isnan(levels))
    dims = ("theta", "band")
    return xr.Dataset(
        {"energy": (dims, energy), "count": (dims, count)},
        {"theta": (ANGLES[1:] + ANGLES[:-1]) / 2, "band": np.arange(LOW_BAND, LOW_BAND + BANDS)},
    )


def mean_level(parts: list[xr.Dataset]) -> xr.Dataset:
    total = sum(parts[1:], parts[0])
    level = 10 * np.log10((total.energy / total["count"]).where(total["count"] > 0))
    level.attrs = {"units": "dB", "long_name": "energy mean of the band level"}
    total.theta.attrs = {"units": "degree", "long_name": "emission angle"}
    return xr.Dataset({"level": level, "count": total["count"].astype(np.int32)})


def run(folder: Path, files: int) -> None:
    started = time.perf_counter()

    def say(what: str) -> None:
        print(f"{time.perf_counter() - started:6.1f} s  {what}")

    for number in range(files):
        make(folder, number)
    say(f"{files} measurements made")
    found = aq_data.scan(folder, "*.sth.csv")
    say(f"{len(found)} histories, {int(found.records.sum())} records, {int((~found.ok).sum())} bad")
    paths = list(found[found.ok].path)
    tasks = [paths[i : i + PATHS_PER_TASK] for i in range(0, len(paths), PATHS_PER_TASK)]
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with Client(cluster) as client:
            say("two workers are up")
            lazy = aq_data.open_many(paths)
            loudest = float(lazy.aq.level.max().compute())
            say(f"loudest level {loudest:.1f} dB, computed by dask on the cluster")
            parts = client.gather(client.map(energy_by_angle, tasks))
            say("energies by angle")
    mean_level(parts).to_netcdf(folder / "by_angle.nc")
    say(f"written to {folder / 'by_angle.nc'}")


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--files", type=int, default=2000)
    parser.add_argument("--folder", type=Path)
    arguments = parser.parse_args()
    if arguments.folder is not None:
        arguments.folder.mkdir(parents=True, exist_ok=True)
        run(arguments.folder, arguments.files)
        return
    with tempfile.TemporaryDirectory() as folder:
        run(Path(folder), arguments.files)


if __name__ == "__main__":
    main()
