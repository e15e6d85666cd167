"""A second reader of comma-separated files and delimited text, plain and slow, written from
docs/formats alone.

`opinion(format, content)` returns the lines that print_file prints for such a file. The content is
a string with one character per byte."""

import datetime
import decimal
import math
import re
import struct

LAYOUTS = {
    "STH": (
        "Spectral Time-History",
        """
        fileName text
        fileDate date clock
        project text
        microphone text
        averaging AVERAGING
        stamp STAMP
        adjustment text
        start time
        reference time
        - text
        - int16
        range int16 int16
        bands int16 int16
        generator text
        generationFile text
        generationDate date clock
        other lines
        comments lines""",
    ),
    "MASK": (
        "Masking Map",
        """
        fileName text
        fileDate date clock
        rows int32
        bands int16 int16
        generator text
        generationFile text
        generationDate date clock
        other lines
        comments lines""",
    ),
    "PTH": (
        "Position Time-History",
        """
        fileName text
        fileDate date clock
        project text
        generator text
        trackFile text
        trackDate text
        records int32
        other lines
        comments lines""",
    ),
    "GTH": (
        "Geometric Time-History",
        """
        fileName text
        fileDate date twelve
        project text
        generator text
        microphone text
        position double double double
        temperature single
        historyFile text
        historyDate text
        positionFile text
        positionDate text
        microphoneFile text
        microphoneDate text
        records int32
        other lines
        comments lines""",
    ),
    "MIC": (
        "Microphone Position File",
        """
        fileName text
        fileDate date clock
        project text
        microphone text
        other lines
        comments lines""",
    ),
    "SSR": (
        "Spectrum Record",
        """
        fileName text
        fileDate date clock
        comments lines""",
    ),
}
LAYOUTS = {
    name: (title, [line.split() for line in text.split("\n")[1:]])
    for name, (title, text) in LAYOUTS.items()
}
ROWS = {
    "STH": ["int16", "time", "single"],
    "MASK": ["int16"],
    "PTH": ["time", "double", "double", "double"],
    "GTH": ["int16", "time", "time"] + ["double"] * 5 + ["single"] * 2,
    "MIC": ["double"] * 4,
    "TSPI": ["time", "quality"] + ["any"] * 6 + ["double"] * 3,
    "SSR": [],
}
INI = {
    "CalAdj": ["single"],
    "NuAvg": ["averaging"],
    "PrWndo": ["single"],
    "PoWndo": ["single"],
    "NuTimg": ["stamp"],
    "LoRec": ["int16"],
    "HiRec": ["int16"],
    "FileName": ["text"],
    "FileDateTime": ["date", "clock"],
}
INI_BEFORE = {  # as print_file sets them, except for two that a read resets to 99
    "caladj": [1],
    "nuavg": [99],
    "prwndo": [2],
    "powndo": [3],
    "nutimg": [99],
    "lorec": [4],
    "hirec": [5],
    "filename": ["name"],
    "filedatetime": [0, 0],
}
AVERAGING = {"LINEAR": 0, "TRUSLO": 1, "4S100": 2, "4S95": 3, "CONTEXPO": 4, "NA": 99}
STAMPS = {"START": 0, "MIDPT": 1, "END": 2, "ICAOSLO": 3, "OLDSLO": 4}
MODES, ADJUSTMENTS = "-MAF", "-SFTACR"
COUNTED = 32767  # the most data lines in PTH and GTH, and the most lines in TSPI


class Failure(Exception):
    """The line and field where a file cannot be read; field 0 is the whole line."""


# Convert text to values. Text that is not a valid value raises ValueError or AttributeError.

NUMBER = re.compile(r"[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?")


def double(text):
    text = text.strip(" ")
    if not NUMBER.fullmatch(text) or math.isinf(float(text)):
        raise ValueError
    return float(text)


def narrowed(value):
    try:
        return struct.unpack("<f", struct.pack("<f", value))[0]
    except OverflowError:
        raise ValueError from None


def single(text):
    """Rounds once: the intermediate double keeps a sticky last bit."""
    value = double(text)
    exact = decimal.Decimal(text.strip(" ") if value else 0).copy_abs()
    if exact != decimal.Decimal(value).copy_abs():
        if exact < decimal.Decimal(value).copy_abs():
            value = math.nextafter(value, 0)
        if not struct.unpack("<q", struct.pack("<d", value))[0] & 1:
            value = math.nextafter(value, math.copysign(math.inf, value))
    return narrowed(value)


def integer(low, high):
    def convert(text):
        sign, digits = re.fullmatch(r" *([+-]?)0*([0-9]+) *", text).groups()
        value = int(sign + digits) if len(digits) < 20 else math.inf
        if not low <= value <= high:
            raise ValueError
        return value

    return convert


def time_of_day(text):
    parts = [part.replace(" ", "") for part in text.split(":")]
    if len(parts) < 3:
        raise ValueError
    hours, minutes, seconds = (
        single(number.group() if (number := NUMBER.match(part)) else "0") for part in parts[:3]
    )
    hours = narrowed(hours + 12 * ("PM" in text.upper()))
    if hours == 12 and "AM" in text.upper():
        hours = 0
    return hours * 3600 + minutes * 60 + seconds


def date(text):
    month, day, year = re.fullmatch(r" *([0-9]{1,2})/([0-9]{1,2})/([0-9]{4}) *", text).groups()
    return float(
        (datetime.date(int(year), int(month), int(day)) - datetime.date(1899, 12, 30)).days
    )


def clock(text):
    parts = re.fullmatch(r" *([0-9]{1,2}):([0-9]{1,2}):([0-9]{1,2}) *", text).groups()
    moment = datetime.time(*map(int, parts))
    return moment.hour * 3600.0 + moment.minute * 60 + moment.second


def twelve(text):
    """A twelve-hour clock shows 12:30 as 12:30:00 PM, to which the time value adds 12 hours."""
    seconds = clock(text)
    return seconds + 43200 if seconds // 3600 == 12 else seconds


def plain(text):
    return text.replace('"', "").strip(" ")


def mask(text):
    if len(text) != 2:
        raise ValueError
    return [max(0, letters.find(letter)) for letters, letter in zip((MODES, ADJUSTMENTS), text)]


KINDS = {
    "int16": integer(-32768, 32767),
    "int32": integer(-(2**31), 2**31 - 1),
    "quality": integer(0, 255),
    "double": double,
    "single": single,
    "time": time_of_day,
    "date": date,
    "clock": clock,
    "twelve": twelve,
    "mask": mask,
    "any": str,
    "text": str,
    "averaging": lambda text: AVERAGING.get(text, 0),
    "stamp": lambda text: STAMPS.get(text, 0),
    "AVERAGING": lambda text: AVERAGING.get(text.upper(), 0),  # ignoring case
    "STAMP": lambda text: STAMPS.get(text.upper(), 0),
}


def take(line, fields, kinds, first=1):
    """The values of a line's fields, numbered from `first` in failures."""
    values = []
    for place, kind in enumerate(kinds):
        try:
            values.append(KINDS[kind](fields[place]))
        except (ValueError, AttributeError, IndexError):
            raise Failure(line, first + place) from None
    return values


class File:
    def __init__(self, content):
        self.lines = re.split(r"\r?\n", content)
        if self.lines[-1] == "":
            self.lines.pop()
        self.number = 0

    def next(self):
        self.number += 1
        if self.number > len(self.lines):
            raise Failure(self.number, 0)
        return self.lines[self.number - 1]

    def fields(self, line):
        return [plain(field) for field in line.split(",")]

    def rows(self, kinds, most=math.inf):
        """The values of all remaining lines."""
        for count, line in enumerate(self.lines[self.number :], 1):
            self.number += 1
            if count > most:
                raise Failure(self.number, 0)
            yield take(self.number, self.fields(line), kinds)

    def header(self, name):
        title, layout = LAYOUTS[name]
        if not self.lines or "**" not in self.lines[0]:
            raise Failure(1, 0)
        if self.value() != title:
            raise Failure(1, 2)
        header = {}
        for key, *kinds in layout:
            value = self.value()
            lines = kinds == ["lines"]
            fields = value.split(",") if len(kinds) > 1 else [value]
            header[key] = take(self.number, fields, ["int16"] if lines else kinds, 2)
            if lines:
                header[key] += [self.text() for _ in range(header[key][0])]
        return header

    def text(self):
        """The next line up to its first **."""
        return plain(self.next().split("**")[0])

    def value(self):
        parts = self.next().split("**")
        if len(parts) < 2:
            raise Failure(self.number, 0)
        return plain(plain(parts[1])[1:])


# Convert values to the lines that print_file prints.


def shown(value):
    if isinstance(value, list):
        return " ".join(map(shown, value))
    if isinstance(value, str):
        return '"' + re.sub(r'[^ -~]|["\\]', lambda c: f"\\x{ord(c.group()):02x}", value) + '"'
    return "%.17g" % value


def show(out, key, *values):
    out.append(" ".join([key, *map(shown, (value for value in values if value != []))]))


def band_range(low, high):
    return [low, high] if low <= high else [9999, -1]


def show_header(out, name, header, hidden=()):
    if name in ("MASK", "PTH", "GTH", "MIC"):
        show(out, "title", LAYOUTS[name][0])
    for key, *kinds in LAYOUTS[name][1]:
        if kinds == ["lines"] and name in ("STH", "SSR"):
            header[key][0] = len(header[key]) - 1
        if key not in hidden and key != "-":
            show(out, key, header[key])


# The formats.


def read_sth(file, out):
    header = file.header("STH")
    show_header(out, "STH", header, ("averaging", "stamp", "start", "reference", "range", "bands"))
    file.number += 1
    low, high = header["bands"]
    records = {row[0]: row[1:] for row in file.rows(ROWS["STH"] + ["double"] * (high - low + 1))}
    for key in ("averaging", "stamp", "start", "reference"):
        show(out, key, header[key])
    low_record = min(header["range"][0], *records, 32767)
    high_record = max(header["range"][1], *records, -32768)
    show(out, "records", len(records), low_record or 1, high_record or len(records))
    for number in sorted(records):
        show(out, "record", number, records[number][:2], band_range(low, high), records[number][2:])


def read_mask(file, out):
    header = file.header("MASK")
    columns = file.text()
    show_header(out, "MASK", header)
    show(out, "columns", columns)
    low, high = header["bands"]
    rows = {}
    try:
        for row in file.rows(ROWS["MASK"] + ["mask"] * (high - low + 1) + ["int16"]):
            rows[row[0]] = row[1:]
    finally:
        for number in sorted(rows):
            show(out, "row", number, band_range(low, high), rows[number])


def read_pth(file, out):
    show_header(out, "PTH", file.header("PTH"))
    file.number += 1
    positions = list(file.rows(ROWS["PTH"], COUNTED))
    show(out, "positions", len(positions))
    for position in positions:
        show(out, "position", position)


def read_gth(file, out):
    show_header(out, "GTH", file.header("GTH"))
    file.number += 1
    points = {row[0]: row for row in file.rows(ROWS["GTH"], COUNTED)}
    show(out, "points", len(points))
    for number in sorted(points):
        show(out, "point", points[number])


def read_mic(file, out):
    microphone = [1, 2, 3, 4]
    try:
        show_header(out, "MIC", file.header("MIC"))
        file.next()
        fields = file.fields(file.next())
        for place, kind in enumerate(ROWS["MIC"]):
            (microphone[place],) = take(file.number, fields[place:], [kind], place + 1)
    finally:
        show(out, "microphone", microphone)


def read_tspi(file, out):
    positions, dropped = [], 0
    file.fields = lambda line: line.split(",")
    file.number = 6
    try:
        for time, quality, *_, x, y, z in file.rows(ROWS["TSPI"], COUNTED - 6):
            if quality > 1:
                dropped += 1
            else:
                positions.append([time, x, y, z])
        show(out, "positions", len(positions))
        for position in positions:
            show(out, "position", position)
    finally:
        show(out, "dropped", dropped)


def read_ssr(file, out):
    show_header(out, "SSR", file.header("SSR"))
    labels = file.fields(file.next())
    bands = []
    for place in (0, len(labels) - 1):
        number, slash, _ = labels[place][1:].partition("/")
        bands += take(file.number, [number if slash else ""], ["int16"], place + 1)
    fields = file.fields(file.next())
    count = bands[1] - bands[0] + 1
    levels = take(file.number, fields, ["double"] * count)
    show(out, "spectrum", band_range(*bands), levels)


def read_ini(file, out):
    values = dict(INI_BEFORE)
    kinds = {key.lower(): kinds for key, kinds in INI.items()}
    comments = ["before"]
    try:
        while file.number < len(file.lines):
            first, *fields = file.fields(file.next())
            key = first.partition("**")[0].lower()
            if "**" in first and key == "numberofcommentlines":
                (count,) = take(file.number, fields, ["int16"], 2)
                for _ in range(count):
                    comments.append(file.fields(file.next())[0])
            elif "**" in first and key in kinds:
                values[key] = list(values[key])
                for place, kind in enumerate(kinds[key]):
                    (values[key][place],) = take(file.number, fields[place:], [kind], place + 2)
    finally:
        for key, value in values.items():
            show(out, key, value)
        show(out, "comments", [comment for comment in comments if comment])


def divided(line, delimiter, quoted):
    line = line.strip(" ")
    if delimiter == " ":
        return [field for field in line.split(" ") if field]
    end = f"(?={re.escape(delimiter)}|\\Z)" if delimiter else "\\Z"
    in_quotes = f'".*?"{end}|' if quoted and delimiter != "|" else ""
    fields, at = [], 0
    while at <= len(line):
        found = re.compile(f"{in_quotes}.*?{end}", re.DOTALL).match(line, at)
        field = found.group().replace('"', "")
        fields.append((field.replace("|", delimiter) if quoted else field).strip(" "))
        at = found.end() + (len(delimiter) or 1)
    return fields


def read_ascii(file, out, delimiter, quoted):
    show(out, "lines", len(file.lines))
    for line in file.lines:
        show(out, "line", line)
        show(out, "fields", divided(line, delimiter, quoted))


def opinion(name, content):
    """For delimited text, `name` includes the bytes of the delimiter and whether fields may be
    quoted, as in ASCII:2c:1."""
    name, *options = name.split(":")
    if name == "ASCII":
        options = [bytes.fromhex(options[0]).decode("latin-1"), options[1] == "1"]
    out = []
    try:
        globals()["read_" + name.lower()](File(content), out, *options)
        return ["result 0", *out]
    except Failure as failure:
        return ["result 2 %d %d" % failure.args, *out]
