"""Calls of the compiled module that name the argument at fault and what it takes."""

from __future__ import annotations

import datetime
import functools
import os
import re
from typing import Any, Callable, Iterator, NamedTuple

from . import _core

_PATHS = (str, bytes, os.PathLike)
_CLOCKS = (_core.AQ_Time, datetime.time, datetime.datetime, str)

WORDS = {"int": "a whole number", "float": "a number", "str": "text", "Path": "a path"}
WORDS["Value"] = "a number, a date, text or None"


def path_text(path: Any, name: str = "path") -> str:
    """A path as text; raises `TypeError` with the argument's name for anything else."""
    if not isinstance(path, _PATHS):
        raise TypeError(f"{name}: expected a path, found {path!r:.60}")
    return os.fsdecode(path)


class _Parameter(NamedTuple):
    name: str
    kind: str
    default: str

    def wanted(self) -> str:
        """What it takes, in words."""
        return WORDS.get(self.kind, self.kind)

    def takes(self, given: Any) -> bool:
        if given is None and (self.default == "None" or self.kind.startswith("Optional")):
            return True
        if self.kind == "Path":
            return isinstance(given, _PATHS)
        if self.kind == "AQ_Time":
            return isinstance(given, _CLOCKS)
        if self.kind == "int":
            return hasattr(given, "__index__")
        if self.kind in ("float", "Value"):
            return hasattr(given, "__float__") or hasattr(given, "__index__")
        cls = {"str": str, "bool": bool}.get(self.kind) or getattr(_core, self.kind, None)
        return not isinstance(cls, type) or isinstance(given, cls)


def _parameters(signature: str) -> Iterator[_Parameter]:
    inner = signature.partition("(")[2].rpartition(") -> ")[0]
    for text in re.split(r", (?=\w+: )", inner):
        name, _, rest = text.partition(": ")
        kind, _, default = rest.partition(" = ")
        yield _Parameter(name, kind.rpartition(".")[2], default)


def _fault(signature: str, args: tuple[Any, ...], named: dict[str, Any]) -> str:
    """What is wrong with the arguments of a call."""
    parameters = list(_parameters(signature))
    names = [parameter.name for parameter in parameters]
    given = dict(zip(names, args))
    extra = [name for name in named if name not in names or name in given]
    if len(args) > len(names) or extra:
        own = [name for name in names if name != "self"]
        return f"expected {', '.join(own) or 'no arguments'}, found " + (
            f"{extra[0]}=" if extra else f"{len(args) - len(names) + len(own)} arguments"
        )
    given.update(named)
    for parameter in parameters:
        if parameter.name not in given:
            if not parameter.default:
                return f"{parameter.name}: expected {parameter.wanted()}, found no argument"
        elif not parameter.takes(given[parameter.name]):
            found = given[parameter.name]
            return f"{parameter.name}: expected {parameter.wanted()}, found {found!r:.60}"
    return f"expected {signature.partition('(')[2].partition(') ->')[0]}"


def naming_arguments(call: Callable[..., Any], place: str) -> Callable[..., Any]:
    """The call, whose `TypeError` says which argument it does not take."""
    signature = (call.__doc__ or "").partition("\n")[0]

    @functools.wraps(call)
    def named(*args: Any, **more: Any) -> Any:
        try:
            return call(*args, **more)
        except TypeError as error:
            if "incompatible function arguments" not in str(error):
                raise
            raise TypeError(f"{place}: {_fault(signature, args, more)}") from None

    return named


def _wrap(owner: Any, place: str) -> None:
    for name, call in list(vars(owner).items()):
        public = not name.startswith("_") or name == "__call__"
        signature = (getattr(call, "__doc__", None) or "").partition("\n")[0]
        if public and callable(call) and not isinstance(call, type) and " -> " in signature:
            where = place if name == "__call__" else f"{place}.{name}".lstrip(".")
            setattr(owner, name, naming_arguments(getattr(owner, name), where))


_wrap(_core, "")
for _name, _cls in list(vars(_core).items()):
    if isinstance(_cls, type) and not issubclass(_cls, BaseException):
        # A view, as _SpectralTimeHistory_spectrum, is a property.
        _wrap(_cls, "AQ_" + ".".join(_name[1:].rsplit("_", 1)) if _name[0] == "_" else _name)
