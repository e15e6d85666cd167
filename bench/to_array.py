"""Times reading 32,767 records of 24 bands into an array, with the library and with pandas.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/to_array.py
"""

from __future__ import annotations

import statistics
import tempfile
import time
from pathlib import Path
from typing import Callable

import numpy as np
import pandas as pd

import aq_data

RECORDS, BANDS, ROUNDS = 32767, 24, 7
HEADER_LINES = 20


def seconds(work: Callable[[], object]) -> float:
    start = time.perf_counter()
    work()
    return time.perf_counter() - start


def main() -> None:
    rng = np.random.default_rng(1)
    levels = np.round(rng.uniform(20, 110, (RECORDS, BANDS)), 2)
    history = aq_data.AQ_SpectralTimeHistory.from_numpy(levels)
    tod = np.arange(RECORDS) * 0.5
    history.times = {"TODseconds": tod, "RelSeconds": tod - 30}
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "long.sth.csv"
        aq_data.write(history, path)

        def ours() -> np.ndarray:
            return aq_data.read(path).data.to_numpy()

        def pandas() -> np.ndarray:
            frame = pd.read_csv(path, skiprows=HEADER_LINES, header=None, engine="c")
            return frame.iloc[:, 3:].to_numpy()

        assert np.array_equal(ours(), levels) and np.array_equal(pandas(), levels)
        times = [(seconds(ours), seconds(pandas)) for _ in range(ROUNDS)]
    own, other = (statistics.median(column) for column in zip(*times))
    print(f"to array: {own * 1e3:.1f} ms, pandas {other * 1e3:.1f} ms, ratio {other / own:.1f}")


if __name__ == "__main__":
    main()
