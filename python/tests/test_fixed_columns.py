"""Fixed-column histories, compared with programs that know only the columns: pandas, and a program
in Fortran.
"""

import pathlib
import random
import shutil
import subprocess

import numpy as np
import pandas as pd
import pytest

import aq_data

FIRST = 20  # the line of the first record, as there are no comments and no other records


def columns(count):
    return [(0, 6), (6, 20), (20, 32), *((32 + 8 * i, 40 + 8 * i) for i in range(count))]


def made(seed):
    """A history of random size with gaps, the number of its first record, its lowest band, and its
    levels by record and band, NaN where missing.
    """
    rng = random.Random(seed)
    low = rng.randint(2, 50)
    high = rng.randint(low, 50)
    first = rng.choice([1, 1, 7, 30000])
    count = rng.randint(1, 40)
    levels = np.full((count, high - low + 1), np.nan)
    history = aq_data.AQ_SpectralTimeHistory()
    history.startTime.CurrentDate = 38061
    for row in range(count):
        spectrum = aq_data.AQ_Spectrum()
        for band in range(low, high + 1):
            if (row, band) != (0, low) and (row, band) != (0, high) and rng.random() < 0.2:
                continue
            level = round(rng.choice([rng.uniform(-30, 140), 9999, rng.uniform(-9999, 99999)]), 2)
            levels[row, band - low] = level
            spectrum.SPL[band] = level
        spectrum.Time.TODseconds = 36000 + row * 0.5
        spectrum.Time.RelSeconds = row * 0.5 - 3
        history.spectrum[first + row] = spectrum
    return history, first, low, levels


@pytest.mark.parametrize("seed", range(40))
def test_pandas_reads_what_is_written_and_the_reverse(tmp_path, seed):
    history, first, low, levels = made(seed)
    path = tmp_path / "made.spc"
    aq_data.write(history, path)
    count = levels.shape[1]
    table = pd.read_fwf(
        path, skiprows=FIRST - 1, colspecs=columns(count), header=None, skip_blank_lines=False
    )
    assert table[0].tolist() == list(range(first, first + len(levels)))
    assert table[2].tolist() == [row * 0.5 - 3 for row in range(len(levels))]
    np.testing.assert_array_equal(table.iloc[:, 3:].to_numpy(dtype=float), levels)
    assert table[1].tolist()[0] == "10:00:00.000"

    text = path.read_text().splitlines()[: FIRST - 1]
    for row, own in enumerate(levels):
        clock = f"10:00:{row * 0.5:06.3f}"
        cells = "".join(" " * 8 if np.isnan(level) else f"{level:8.2f}" for level in own)
        text.append(f"{first + row:6d}{clock:>14}{row * 0.5 - 3:12.3f}{cells}")
    path.write_text("\n".join(text) + "\n")
    again = aq_data.read(path).data
    for row, own in enumerate(levels):
        spectrum = again.spectrum[first + row]
        for place, level in enumerate(own):
            if not np.isnan(level):
                assert spectrum.SPL[low + place] == level
        assert spectrum.Time.CurrentDate == 38061


@pytest.fixture(scope="session")
def fortran(tmp_path_factory):
    compiler = shutil.which("gfortran")
    if compiler is None:
        pytest.skip("gfortran is not installed")
    source = pathlib.Path(__file__).parents[2] / "tests" / "second" / "fixed_columns.f90"
    program = tmp_path_factory.mktemp("fortran") / "fixed_columns"
    subprocess.run([compiler, source, "-o", program, "-J", program.parent], check=True)
    return program


@pytest.mark.parametrize("seed", range(10))
def test_fortran_writes_the_same_file_again(tmp_path, fortran, seed):
    history, first, low, levels = made(seed)
    for row, own in enumerate(levels):
        for place, level in enumerate(own):
            if np.isnan(level):  # Fortran reads a blank as 0
                history.spectrum[first + row].SPL[low + place] = 0.0
    one, other = tmp_path / "one.spc", tmp_path / "other.spc"
    aq_data.write(history, one)
    subprocess.run([fortran, one, other], check=True)
    assert other.read_text() == one.read_text()


def test_header_and_kind(tmp_path):
    header, history = aq_data.AQ_HeaderSTH(), made(1)[0]
    header.sProjectName = "Landing"
    history.ReferenceType = aq_data.AQ_RefTimeType.AQ_PMAX
    path = tmp_path / "made.spc"
    aq_data.write((header, history), path)
    assert aq_data.kindOfFile(path) == aq_data.FileKind.FixedColumnHistory
    again = aq_data.read(path)
    assert again.header.sProjectName == "Landing"
    assert again.data.ReferenceType == aq_data.AQ_RefTimeType.AQ_PMAX
