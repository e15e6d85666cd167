"""Builds the wheel's compiled module with CMake from the source tree that contains this folder.

The wheel takes its version from the CMake project.
"""

from __future__ import annotations

import os
import re
import shutil
import subprocess
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = Path(os.environ.get("AQ_DATA_PROJECT", Path(__file__).resolve().parent.parent))
VERSION = re.search(r"project\(\S+ VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text())
assert VERSION is not None


class CMakeBuild(build_ext):
    def build_extension(self, ext: Extension) -> None:
        ready = os.environ.get("AQ_DATA_BUILD")  # a build tree that has the module
        build = Path(ready or self.build_temp).resolve()
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DAQ_PYTHON=ON"]
        if not ready:
            subprocess.run(["cmake", "-S", PROJECT, "-B", build, *options], check=True)
        command = ["cmake", "--build", build, "--parallel", "--target", "aq_python_package"]
        subprocess.run(command, check=True)
        target = Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(build / "python" / "aq_data" / target.name, target)
        shutil.copy(build / "python" / "aq_data" / "_core.pyi", target.parent)


setup(
    version=VERSION[1],
    ext_modules=[Extension("aq_data._core", [])],
    cmdclass={"build_ext": CMakeBuild},
)
