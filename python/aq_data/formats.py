"""The library's file formats."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional

from . import _core
from ._core import FileKind
from .reading import Path, Reading


class Format(NamedTuple):
    """A kind of file: its names, and the classes that read it and hold its content."""

    kind: FileKind
    text: str  # the name in words
    word: str  # the name in one word
    ending: str  # the usual ending of file names
    file: Any
    header: Any  # None where the kind has no header of its own
    model: Any
    writes: bool

    def read(self, path: Path, others: Optional[list[Any]] = None) -> Reading[Any, Any]:
        """Reads a file; for each unknown word, appends its line, meaning, text and replacement to
        `others`.
        """
        file = self.file()
        if hasattr(file, "_readWithWords"):
            *given, unknown = file._readWithWords(path)
            if others is not None:
                others += unknown
            return Reading(*given)
        given = file.readFile(path)
        if self.header is not None:
            return Reading(*given)
        return Reading(None, file if self.model is self.file else given)

    def write(self, path: Path, header: Any, model: Any) -> None:
        """Writes a file; the dates that the header gives for source files do not change."""
        if self.header is None:
            model.writeFile(path)
            return
        file = self.file()
        file.fileInformation(_core.keepingFileInformation())
        header = self.header() if header is None else header
        if hasattr(file, "setHeader"):
            file.setHeader(header)
            file.RecordLength = _record_length(model)
            file.writeFile(path, model)
        else:
            file.writeFile(path, header, model)


def _record_length(history: Any) -> float:
    """Seconds from the first time stamp to the next; half a second if they give no valid
    length.
    """
    stamps = history.times["TODseconds"][:2]
    length = round(float(stamps[-1] - stamps[0]) % 86400, 3)
    return length if 0 < length < 1000 else 0.5


_rows: Any = _core._formats()
FORMATS: dict[FileKind, Format] = {row[0]: Format(*row) for row in _rows}
"""The format of each kind."""


def format_for(obj: Any, path: str) -> Format:
    """The format in which an object is written: chosen by the file name's ending, otherwise the
    first one for its class.
    """
    written = [f for f in FORMATS.values() if f.writes and isinstance(obj, f.model)]
    if not written:
        raise TypeError(f"expected an object with a file format, found {type(obj).__name__}")
    return next((f for f in written if path.lower().endswith(f.ending)), written[0])
