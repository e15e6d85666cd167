"""Writes aq_data/_core.pyi, the type stubs of the compiled module, from its own signatures. FOLDER
contains the package aq_data:

    python3 stubs.py FOLDER
"""

from __future__ import annotations

import enum
import inspect
import re
import sys
from pathlib import Path
from types import ModuleType
from typing import Any, Iterator

HEAD = '''"""The object model and the file classes of aq_data. Written by tools/stubs.py."""

import os
from enum import IntEnum, IntFlag
from typing import Any, Iterable, Iterator, Optional, Sequence, Union, overload

import numpy as np
import numpy.typing as npt
import pandas as pd
import xarray as xr

_Path = Union[str, bytes, os.PathLike[str], os.PathLike[bytes]]
_Value = Union[None, bool, float, str]
'''
WORDS = {
    r"aq_data\._core\.": "",
    r"numpy\.ndarray\[numpy\.(\w+)\]": r"npt.NDArray[np.\1]",
    r"numpy\.ndarray(?:\[[^\]]*\])?": "npt.NDArray[Any]",
    r"\b(Path|Value)\b": r"_\1",
    r"\bobject\b": "Any",
    r"\bhandle\b": "Any",
    r"\biterable\b": "Iterable[Any]",
    r"\bIterable(?!\[)": "Iterable[Any]",
    r"\biterator\b": "Iterator[Any]",
    r"\bIterator(?!\[)": "Iterator[Any]",
    r"\bTuple\b": "tuple",
    r"\bList\[": "list[",
    r"\btuple(?!\[)": "tuple[Any, ...]",
    r"\b_core\.": "",
    r"<[^>]*>": "...",
    r": ([\w.]+) = None": r": Optional[\1] = None",
}
SKIPPED = {"__module__", "__dict__", "__weakref__", "__doc__", "_fields", "__setstate__"}


def typed(text: str) -> str:
    for word, replacement in WORDS.items():
        text = re.sub(word, replacement, text)
    return text


def signatures(function: Any) -> list[tuple[str, str]]:
    """Parameters and result of each overload."""
    if inspect.isfunction(function):
        signature = re.sub(r"= '([^']*)'", r'= "\1"', str(inspect.signature(function)))
        signature = signature.replace("'", "")
        parameters, _, result = typed(signature).rpartition(" -> ")
        return [(parameters.replace("(self: Any", "(self"), result)]
    found = re.findall(r"^(?:\d+\. )?\w*(\(.*\)) -> (.*)$", function.__doc__ or "", re.MULTILINE)
    return [(typed(re.sub(r"\((self|arg0): [^,)]*", r"(self", p)), typed(r)) for p, r in found]


def text_of(function: Any) -> str:
    """The description after the signatures."""
    if inspect.isfunction(function):
        return inspect.getdoc(function) or ""
    lines = (function.__doc__ or "").split("\n")
    told = r"(\d+\. )?\w*\(.*\) -> |\w+\(\*args|Overloaded"
    plain = [line for line in lines if line and not re.match(told, line)]
    return " ".join(plain)


def quoted(text: str, indent: str) -> list[str]:
    return [f'{indent}"""{text}"""'] if text else [f"{indent}..."]


def method(name: str, function: Any, static: bool = False) -> Iterator[str]:
    options = signatures(function)
    if name == "__init__" and any(p.startswith("(self, *args") for p, _ in options):
        return
    for parameters, result in options:
        if len(options) > 1:
            yield "    @overload"
        if static:
            yield "    @staticmethod"
        yield f"    def {name}{parameters} -> {result}:"
        yield from quoted(text_of(function), " " * 8)


def attribute(name: str, value: property) -> Iterator[str]:
    kind = signatures(value.fget)[0][1]
    given = re.search(r"arg1: ([^)]*)\)", getattr(value.fset, "__doc__", None) or "")
    if given and typed(given[1]) == "Any":  # mypy wants the same type for reading and setting
        kind = "Any"
    yield "    @property"
    yield f"    def {name}(self) -> {kind}:"
    yield from quoted(value.__doc__ or "", " " * 8)
    if value.fset:
        yield f"    @{name}.setter"
        yield f"    def {name}(self, value: {kind}) -> None: ..."


def class_lines(name: str, cls: type) -> Iterator[str]:
    if issubclass(cls, enum.Enum):
        yield f"class {name}({cls.__mro__[1].__name__}):"
        yield from quoted(cls.__doc__ or "", "    ")
        yield from (f"    {member.name} = {member.value}" for member in cls)  # type: ignore
        return
    yield f"class {name}:"
    yield from quoted(cls.__doc__ or "", "    ")
    for key, value in vars(cls).items():
        if key in SKIPPED or key == "__hash__":
            continue
        if key == "__iter__" and value is None:
            yield "    __iter__: None"
        elif isinstance(value, property):
            yield from attribute(key, value)
        elif isinstance(value, staticmethod):
            yield from method(key, value.__func__, static=True)
        elif callable(value):
            yield from method(key, value)
    if hasattr(cls, "_fields"):
        yield "    _fields: tuple[str, ...]"


def module_lines(module: ModuleType) -> Iterator[str]:
    yield HEAD
    for name, value in vars(module).items():
        if inspect.isclass(value):
            yield ""
            yield from class_lines(name, value)
        elif isinstance(value, dict) and name.isupper():
            yield f"{name}: dict[str, str]"
        elif isinstance(value, enum.Enum):
            yield f"{name} = {type(value).__name__}.{name}"
        elif inspect.isbuiltin(value):
            yield ""
            yield from (line[4:] for line in method(name, value))


def main(folder: str) -> None:
    sys.path.insert(0, folder)
    from aq_data import _core

    text = "\n".join(module_lines(_core)) + "\n"
    (Path(folder) / "aq_data" / "_core.pyi").write_text(text)


if __name__ == "__main__":
    main(sys.argv[1])
