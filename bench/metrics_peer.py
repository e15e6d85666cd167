"""Computes eight noise metrics of many records, and the EPNL, in vectorised numpy. peers.py
compares the time that this takes with the library's.
"""

import pathlib
import re

import numpy as np

ROOM = pathlib.Path(__file__).parent.parent / "aq" / "noise"
BANDS = np.arange(17, 41)


def _numbers(text: str) -> list[float]:
    return [float(each) for each in re.findall(r"-?\d+(?:\.\d+)?", text)]


def _weights(name: str) -> np.ndarray:
    text = (ROOM / "weightings.h").read_text()
    table = re.search(name + r"\{(.*?)\}", text, re.S)
    return np.array(_numbers(table[1]))[BANDS - 10]


def _noy_table() -> np.ndarray:
    rows = re.findall(r"^ +\{(.*)\}, *//", (ROOM / "noy_table.h").read_text(), re.M)
    return np.array(
        [[float(cell.replace("noys::kNone", "inf")) for cell in row.split(",")] for row in rows]
    )


def level_sum(levels: np.ndarray) -> np.ndarray:
    return 10 * np.log10((10 ** (0.1 * levels)).sum(axis=1))


def perceived(levels: np.ndarray) -> np.ndarray:
    a, b, c, d, e, m_b, m_c, m_d, m_e = _noy_table().T
    noys = np.select(
        [levels >= a, levels >= b, levels >= e, levels >= d],
        [
            10 ** (m_c * (levels - c)),
            10 ** (m_b * (levels - b)),
            0.3 * 10 ** (m_e * (levels - e)),
            0.1 * 10 ** (m_d * (levels - d)),
        ],
        0.0,
    )
    total = 0.85 * noys.max(axis=1) + 0.15 * noys.sum(axis=1)
    return 40 + 10 / np.log10(2) * np.log10(total)


def tone(levels: np.ndarray) -> tuple[np.ndarray, np.ndarray]:
    """The tone correction and tone band of each record; the levels must have no gaps."""
    level = levels[:, 2:]
    slope = np.diff(level, axis=1)
    before, after = slope[:, :-1], slope[:, 1:]
    marked = np.abs(after - before) > 5
    taken = np.zeros(level.shape, bool)
    taken[:, 2:] |= marked & (after > 0) & (after > before)
    taken[:, 1:-1] |= marked & (after <= 0) & (before > 0)
    instead = level.copy()
    instead[:, 1:-1] = (level[:, :-2] + level[:, 2:]) / 2
    instead[:, -1] = level[:, -2] + slope[:, -2]
    adjusted = np.where(taken, instead, level)
    slope = np.diff(adjusted, axis=1)
    slope = np.concatenate([slope[:, :1], slope, slope[:, -1:]], axis=1)
    mean = (slope[:, :-2] + slope[:, 1:-1] + slope[:, 2:]) / 3
    steps = np.concatenate([level[:, :1], mean], axis=1)
    difference = level - np.cumsum(steps, axis=1)
    middle = (BANDS[2:] >= 27) & (BANDS[2:] <= 37)
    correction = np.select(
        [difference < 1.5, difference < 3, difference < 20],
        [0.0, difference / 3 - 0.5, difference / 6],
        10 / 3,
    ) * np.where(middle, 2, 1)
    largest = correction.max(axis=1)
    return largest, np.where(largest > 0, BANDS[2:][correction.argmax(axis=1)], 0)


def metrics(levels: np.ndarray, seconds: float = 0.5) -> dict[str, np.ndarray]:
    """Eight metrics and the EPNL by name. Each band from 17 to 40 needs a level other than 9999."""
    corrections, bands = tone(levels)
    pnl = perceived(levels)
    pnlt = pnl + corrections
    top = int(pnlt.argmax())
    limit = pnlt[top] - 10
    inside = np.flatnonzero(pnlt > limit)
    first, last = inside[0], inside[-1]
    if first > 0 and abs(pnlt[first - 1] - limit) <= abs(pnlt[first] - limit):
        first -= 1
    if last + 1 < len(pnlt) and abs(pnlt[last + 1] - limit) <= abs(pnlt[last] - limit):
        last += 1
    energy = (10 ** (0.1 * pnlt[first : last + 1]) * seconds).sum()
    return {
        "AWT": level_sum(levels + _weights("kWeightingA")),
        "CWT": level_sum(levels + _weights("kWeightingC")),
        "DWT": level_sum(levels + _weights("kWeightingD")),
        "OA": level_sum(levels),
        "PNL": pnl,
        "PNLT": pnlt,
        "TONECOR": corrections,
        "TONEBND": bands,
        "EPNL": 10 * np.log10(energy) - 10,
    }
