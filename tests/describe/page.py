"""Fails if the committed reference page differs from the one that the program generates from the
description: `PROGRAM PAGE`.
"""

import difflib
import pathlib
import subprocess
import sys

program, page = sys.argv[1:]
made = subprocess.run([program], check=True, capture_output=True, text=True).stdout
held = pathlib.Path(page).read_text(encoding="utf-8")
sys.stdout.writelines(
    difflib.unified_diff(held.splitlines(True), made.splitlines(True), page, "description", n=0)
)
sys.exit(made != held)
