"""Runs the Python code of the README, the guide and the tutorial, and the notebook script."""

from __future__ import annotations

import re
import runpy
from pathlib import Path
from typing import Any

import matplotlib.pyplot as plt
import pytest

from conftest import PROJECT


@pytest.mark.parametrize("page", ["README.md", "docs/python.md", "docs/tutorials/python.md"])
def test_the_code_of_a_page_runs(page: str, tmp_path: Path, sample: Path, monkeypatch: Any) -> None:
    for path in sample.glob("*.csv"):
        (tmp_path / path.name).write_bytes(path.read_bytes())
    monkeypatch.chdir(tmp_path)
    text = (PROJECT / page).read_text()
    blocks = re.findall(r"```python\n(.*?)```", text, re.DOTALL)
    names: dict[str, Any] = {"__name__": "guide"}
    for block in blocks:
        exec(compile(block, page, "exec"), names)
    assert len(blocks) >= (1 if page == "README.md" else 7)
    plt.close("all")


@pytest.mark.slow
def test_the_notebook_script_runs(tmp_path: Path, monkeypatch: Any) -> None:
    monkeypatch.chdir(tmp_path)
    runpy.run_path(str(PROJECT / "examples" / "fly_over_notebook.py"))
    assert (tmp_path / "fly-over.png").exists() and (tmp_path / "fly-over.nc").exists()
    plt.close("all")
