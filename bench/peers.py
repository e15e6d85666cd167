"""Times numpy and pandas beside the library on the same history, reading and writing.

peers.py FOLDER TABLE: FOLDER holds the history that the benchmark program made, TABLE is what it
wrote with --json. Prints `name ratio median spread`: the ratio is that of the peer's median to the
library's in this run.
"""

import json
import statistics
import sys
import time
from collections.abc import Callable
from pathlib import Path

import numpy
import pandas

REPETITIONS = 5


def timed(work: Callable[[], object]) -> list[float]:
    """Milliseconds of each repetition."""
    times = []
    for _ in range(REPETITIONS):
        begin = time.perf_counter()
        work()
        times.append((time.perf_counter() - begin) * 1000)
    return times


def main() -> None:
    folder, table = Path(sys.argv[1]), Path(sys.argv[2])
    history, out = folder / "large.sth.csv", folder / "out.peer.csv"
    header = 1 + next(
        number for number, line in enumerate(history.open()) if line.startswith("Rec#")
    )
    bands = range(3, 27)
    frame = pandas.read_csv(history, skiprows=header, header=None)
    levels = frame[list(bands)].to_numpy()
    peers = {
        "numpy": (
            lambda: numpy.loadtxt(history, delimiter=",", skiprows=header, usecols=bands),
            lambda: numpy.savetxt(out, levels, fmt="%.2f", delimiter=","),
        ),
        "pandas": (
            lambda: pandas.read_csv(history, skiprows=header, header=None),
            lambda: frame.to_csv(out, header=False, index=False, float_format="%.2f"),
        ),
    }
    library = {
        row["name"]: row["median_ms"] for row in json.loads(table.read_text()) if "median_ms" in row
    }
    for name, works in peers.items():
        for kind, work in zip(("read", "write"), works, strict=True):
            times = timed(work)
            median = statistics.median(times)
            ratio = median / library[f"history 32,767 {kind}"]
            spread = 100 * statistics.stdev(times) / median
            print(
                f"{name + ' history 32,767 ' + kind:<36} {ratio:5.1f} {median:9.3f} ms "
                f"{spread:5.1f} %"
            )


main()
