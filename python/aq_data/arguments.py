"""The types that arguments accept, in words."""

from __future__ import annotations

import os
from typing import Any

WORDS = {
    "int": "a whole number",
    "float": "a number",
    "str": "text",
    "Path": "a path",
    "Value": "a number, a date, text or None",
}


def path_text(path: Any, name: str = "path") -> str:
    """A path as text; raises `TypeError` with the argument's name for anything else."""
    if not isinstance(path, (str, bytes, os.PathLike)):
        raise TypeError(f"{name}: expected a path, found {path!r:.60}")
    return os.fsdecode(path)
