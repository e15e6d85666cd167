"""The library's exceptions."""

from __future__ import annotations

import errno
import os

from . import _core


class Error(Exception):
    """A fault that the data model reports; `code` is its `ErrorCode`, `None` for a file error."""

    def __init__(self, message: str, code: int | None = None) -> None:
        super().__init__(message, code)
        self.code = code

    def __str__(self) -> str:
        return str(self.args[0])


class NoEntryError(Error, KeyError, ValueError):
    """No entry with that key, malformed text, or unsuitable arguments."""


class NoPlaceError(Error, IndexError):
    """No entry at that index."""


class UnwritableError(Error, ValueError):
    """A value that is not allowed, or a time of day that cannot be written."""


class MismatchError(Error, TypeError):
    """A value that does not convert to the requested type, a required object that is missing, or a
    member that the object does not have.
    """


class RangeError(Error, OverflowError):
    """A value or a count outside the range of its type."""


class FileError(Error):
    """A file that could not be read or written: the place, and what was expected and found
    there.

    `line` and `field` count from 1; 0 means the whole file or line. `partial` holds the header if
    all of it was read and, for a masking map, the rows before the failure.
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
        failure = _core.FileFailure()
        failure.file, failure.line, failure.field = file, line, field
        failure.expected, failure.found = expected, found
        self.message = failure.message()
        super().__init__(self.message)
        self.args = (file, line, field, expected, found, partial)  # for pickling
        self.file, self.line, self.field = file, line, field
        self.expected, self.found, self.partial = expected, found, partial

    def __str__(self) -> str:
        return self.message


class SystemFileError(FileError, OSError):
    """A file that the operating system refused: also an `OSError`, with `errno`, `strerror` and
    `filename`.
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
        super().__init__(file, line, field, expected, found, partial)
        self.errno, self.strerror, self.filename = _NUMBERS[found], found, file


class MissingFileError(SystemFileError, FileNotFoundError):
    """A file that does not exist."""


class RefusedFileError(SystemFileError, PermissionError):
    """A file that the user may not read or write."""


class FolderFileError(SystemFileError, IsADirectoryError):
    """A folder where a file is expected."""


class NoFolderFileError(SystemFileError, NotADirectoryError):
    """A path through something that is not a folder."""


# Error numbers by the library's words for them, which are English in every locale.
_NUMBERS = {os.strerror(number): number for number in errno.errorcode}
_CLASSES = {
    errno.ENOENT: MissingFileError,
    errno.EACCES: RefusedFileError,
    errno.EPERM: RefusedFileError,
    errno.EISDIR: FolderFileError,
    errno.ENOTDIR: NoFolderFileError,
}

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
    """The exception for a fault that the library reports; it is also an instance of Python's own
    exception for such a fault.
    """
    return _KINDS[code](message, code)


def file_error(
    file: str, line: int, field: int, expected: str, found: str, partial: tuple[object, ...]
) -> Exception:
    """The exception for a failure with a file; also an instance of Python's own exception if the
    system refused the file.
    """
    number = _NUMBERS.get(found) if line == 0 else None
    cls = FileError if number is None else _CLASSES.get(number, SystemFileError)
    return cls(file, line, field, expected, found, partial)
