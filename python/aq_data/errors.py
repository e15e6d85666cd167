"""What the library raises."""

from __future__ import annotations

import errno


class Error(Exception):
    """A fault that the data model reports; `code` is its `ErrorCode`, `None` for a file's."""

    def __init__(self, message: str, code: int | None = None) -> None:
        super().__init__(message, code)
        self.code = code

    def __str__(self) -> str:
        return str(self.args[0])


class NoEntryError(Error, KeyError, ValueError):
    """No entry under that key, or text that has no such form."""


class NoPlaceError(Error, IndexError):
    """No entry at that place."""


class UnwritableError(Error, ValueError):
    """A value that has no written form."""


class MismatchError(Error, TypeError):
    """A value that does not convert to the type that is wanted, or an object that is missing."""


class RangeError(Error, OverflowError):
    """A value outside the range of the type that is wanted."""


class FileError(Error):
    """A file that could not be read or written: where, and what was expected and found there.

    `line` and `field` count from 1, 0 where it is the whole file or line. `partial` holds the
    header as far as it was read and, of a masking map, the rows in front of the failure.
    """

    def __init__(
        self,
        file: str,
        line: int,
        field: int,
        expected: str,
        found: str,
        partial: tuple[object, ...] = (),
    ) -> None:
        place = (f", line {line}" if line else "") + (f", field {field}" if field else "")
        self.message = f"{file}{place}: expected {expected}, found {found}"
        super().__init__(self.message)
        self.args = (file, line, field, expected, found, partial)  # what a pickle makes it from
        self.file, self.line, self.field = file, line, field
        self.expected, self.found, self.partial = expected, found, partial

    def __str__(self) -> str:
        return self.message


_NOT_THERE = "No such file or directory"  # as the library says it under any locale

_KINDS = (
    NoEntryError,
    NoPlaceError,
    UnwritableError,
    MismatchError,
    RangeError,
    MismatchError,
    MismatchError,
)


def error(message: str, code: int) -> Error:
    """The exception for a fault of the library, which is also Python's own for such a fault."""
    return _KINDS[code](message, code)


def file_error(
    file: str, line: int, field: int, expected: str, found: str, partial: tuple[object, ...]
) -> Exception:
    """The exception for a file's failure: Python's own when there is no such file."""
    if line == 0 and found == _NOT_THERE:
        return FileNotFoundError(errno.ENOENT, found, file)
    return FileError(file, line, field, expected, found, partial)
