"""Times numpy and pandas against the library on the same history: reading, writing, noise metrics.

peers.py FOLDER TABLE: FOLDER contains the history that the benchmark program made; TABLE is the
program's output with --json. Prints `name ratio median spread`; the ratio is the peer's median
divided by the library's, which for reading and writing comes from TABLE. aq_data must be
importable.
"""

import json
import statistics
import sys
import time
from collections.abc import Callable
from pathlib import Path

import metrics_peer
import numpy
import pandas

import aq_data

REPETITIONS = 5


def timed(work: Callable[[], object], repetitions: int = REPETITIONS) -> list[float]:
    """The milliseconds of each repetition."""
    times = []
    for _ in range(repetitions):
        begin = time.perf_counter()
        work()
        times.append((time.perf_counter() - begin) * 1000)
    return times


def printed(name: str, times: list[float], own: float) -> None:
    median = statistics.median(times)
    spread = 100 * statistics.stdev(times) / median
    print(f"{name:<36} {median / own:5.1f} {median:9.3f} ms {spread:5.1f} %")


def compare_metrics(history: Path) -> None:
    """Checks that the metrics of all records and the EPNL agree to 1e-9; prints the time ratios."""
    read = aq_data.read(history).data
    levels = read.to_numpy()
    expected, found = metrics_peer.metrics(levels), aq_data.metrics(read)
    for name, values in expected.items():
        own = found.attrs[name] if name in found.attrs else found[name].values
        numpy.testing.assert_allclose(own, values, rtol=0, atol=1e-9, err_msg=name)
    works = (
        lambda: metrics_peer.metrics(levels),
        lambda: aq_data.metrics(read),
        lambda: aq_data.setMetrics(read),
    )
    rounds = [[timed(work, 1)[0] for work in works] for _ in range(REPETITIONS)]
    numpys, tables, stored = zip(*rounds)
    printed("numpy metrics 32,767 to dataset", list(numpys), statistics.median(tables))
    printed("numpy metrics 32,767 to history", list(numpys), statistics.median(stored))


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
            printed(f"{name} history 32,767 {kind}", times, library[f"history 32,767 {kind}"])
    compare_metrics(history)


main()
