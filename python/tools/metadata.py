"""Writes the package's metadata, with its entry points, into the folder that contains the package:
`metadata.py PROJECT FOLDER`.

Uses the build backend of the wheel, so that a package installed by CMake has the same metadata.
"""

from __future__ import annotations

import os
import shutil
import sys
import tempfile

from setuptools import build_meta


def main(project: str, folder: str) -> None:
    with tempfile.TemporaryDirectory() as work:
        for name in ("pyproject.toml", "setup.py"):
            shutil.copy(os.path.join(project, name), work)
        os.environ["AQ_DATA_PROJECT"] = os.path.dirname(project)
        os.mkdir(os.path.join(work, "aq_data"))
        os.mkdir(os.path.join(work, "metadata"))
        os.chdir(work)
        name = build_meta.prepare_metadata_for_build_wheel(os.path.join(work, "metadata"))
        target = os.path.join(folder, name)
        shutil.rmtree(target, ignore_errors=True)
        shutil.copytree(os.path.join(work, "metadata", name), target)


if __name__ == "__main__":
    main(*map(os.path.abspath, sys.argv[1:]))
