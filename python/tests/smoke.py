"""Tests whether an installed package works: `smoke.py FOLDER_OF_THE_SAMPLE`."""

import importlib.metadata
import sys
from pathlib import Path

import xarray as xr

import aq_data

sample = Path(sys.argv[1])
project = Path(__file__).resolve().parents[1]
assert (
    project not in Path(aq_data.__file__).parents
), "imported the package from the sources, not the installed one"
assert importlib.metadata.version("aq_data") == aq_data.__version__
assert (Path(aq_data.__file__).parent / "_core.pyi").exists()
ds = xr.open_dataset(sample / "fly-over.sth.csv", engine="aq")
assert (ds.level.values == aq_data.read(sample / "fly-over.sth.csv").data.to_numpy()).all()
print(aq_data.__file__)
