"""Measurements shared by the tests."""

from __future__ import annotations

import os
from pathlib import Path
from typing import Any, Callable

import matplotlib
import pytest

import aq_data

matplotlib.use("Agg")
PROJECT = Path(__file__).resolve().parents[2]
SAMPLE = PROJECT / "examples" / "data"


def values(thing: Any) -> Any:
    """The content of an object as plain values: objects are equal if their values are."""
    if type(thing).__module__ == "aq_data._core" and not isinstance(thing, int):
        return type(thing).__name__, values(thing.__getstate__())
    if isinstance(thing, (list, tuple)):
        return [values(part) for part in thing]
    return thing


@pytest.fixture
def sample() -> Path:
    return SAMPLE


@pytest.fixture
def field() -> Path:
    """The folder of field data; the test is skipped if there is none."""
    if "AQ_FIELD_DATA" not in os.environ:
        pytest.skip("AQ_FIELD_DATA is not set")
    return Path(os.environ["AQ_FIELD_DATA"])


@pytest.fixture
def history() -> Any:
    return aq_data.read(SAMPLE / "fly-over.sth.csv").data


@pytest.fixture
def mask() -> Any:
    return aq_data.read(SAMPLE / "fly-over.mask.csv").data


@pytest.fixture
def archive(tmp_path: Path, history: Any) -> Callable[[int], list[Path]]:
    """A function that writes histories, each 1 dB louder than the previous one."""

    def write(count: int) -> list[Path]:
        paths = [tmp_path / f"{number:04}.sth.csv" for number in range(count)]
        levels = history.to_numpy()
        for number, path in enumerate(paths):
            aq_data.write(aq_data.AQ_SpectralTimeHistory.from_numpy(levels + number), path)
        return paths

    return write
