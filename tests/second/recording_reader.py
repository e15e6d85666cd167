"""A second, plain and slow reader of analyzer recordings, from the binary layout to band levels,
written without knowledge of the library's code.

`opinion(bytes)` returns the lines that print_file prints for such a file."""

import datetime
import math
import struct

# Each record's type and its fields: name, first byte counted from 1, and format for `struct`.
LAYOUTS = {
    "file": (
        10,
        "revision 7 h, applic 9 h, year 11 h, day 13 h, clock 15 h, data 25 h, vectors 27 h,"
        "channels 29 h, unique 31 h, scan 33 h, x 35 h, data_at 37 i, vectors_at 41 i,"
        "channels_at 45 i, unique_at 49 i, scan_at 53 i, x_at 57 i, y_at 61 i, big 65 h,"
        "comments 67 h, big_at 69 i, comments_at 73 i",
    ),
    "measurement": (
        11,
        "start_old 25 h, stop_old 27 h, average 29 h, title 39 60s, start 141 i," "stop 145 i",
    ),
    "data": (
        12,
        "title 11 16s, domain 27 h, kind 29 h, points_old 31 h, last_old 33 h, x0_old 35 f,"
        "dx_old 39 f, resolution 43 h, x_type 45 h, x_per 47 h, y_type 49 h, y_per 51 h,"
        "complex 53 h, power 57 h, valid 59 h, vector 61 i, rows 65 h, columns 67 h,"
        "unit_valid 91 h, unit 93 22s, x0 115 d, dx 123 d, scan 131 h, points 135 i, last 139 i,"
        "passes 145 h",
    ),
    "vector": (13, "channel0 11 h, channel1 13 h, power0 15 h, power1 17 h"),
    "channel": (
        14,
        "label 11 30s, correction 67 h, wide 81 f, narrow 85 f, weight 89 h,"
        "overloaded 105 h, unit 117 22s, factor 139 f, scale 153 d, offset 161 d",
    ),
    "scan": (15, "count 7 h, last 9 h, order 11 h, type 13 h, unit 15 22s"),
    "x": (16, ""),
    "y": (17, ""),
    "big": (18, "count 11 i, last 15 i, order 19 h"),
    "variable": (19, "base 15 h, data 19 h, type 31 h, unit 33 22s"),
    "comment": (20, ""),
    "unique": (1000, ""),
}
LAYOUTS = {
    name: (kind, [field.split() for field in fields.split(",") if field])
    for name, (kind, fields) in LAYOUTS.items()
}
NUMBERS = {1: "h", 2: "i", 3: "f", 4: "d"}
SIZES = {1: 2, 2: 4, 3: 4, 4: 8}
INSTRUMENTS = dict(
    zip(
        [-99, *range(-1, -7, -1), *range(1, 6), *range(7, 13)],
        (
            "UNKNOWN,HP VISTA,HP SINE,HP 35660A,HP 3562A/63A,HP 3588A,HP 3589A,HP 3566A/67A,HP 35665A,"
            "HP 3560A,HP 89410A/440A,CALIBRATION,HP 35635R,HP 35654A-S1A,HP 3569A,HP 35670A,HP 3587S,"
            "HP E3200"
        ).split(","),
    )
)


class Refused(Exception):
    """A recording that cannot be read as a history."""


def require(condition, what):
    if not condition:
        raise Refused(what)


def text(raw):
    return raw.split(b"\0")[0].decode("latin-1").strip(" ")


def unit_of(raw):
    """The factor to SI units, and the eight doubled exponents."""
    return struct.unpack(">f", raw[10:14])[0], struct.unpack("8b", raw[14:22])


def numbers(content, at, kind, count):
    return list(struct.unpack_from(f">{count}{NUMBERS[kind]}", content, at))


class Recording:
    def __init__(self, content):
        self.content = content
        require(content[:2] == b"B\0", "the mark")
        self.file = file = self.record(2, "file")
        self.measurement = self.record(2 + file["size"], "measurement")
        size = self.measurement["size"]
        require(size in (102, 140, 156), "measurement size")
        self.revision = (102, 140, 156).index(size) + 1
        self.data = self.chain("data")
        self.vectors = self.chain("vectors", "vector")
        self.channels = self.chain("channels", "channel")
        self.chain("unique")
        self.scans = self.chain("scan")
        self.x = self.chain("x")
        require(len(self.scans) < 2 and len(self.x) < 2, "one scan and x record")
        third = self.revision == 3
        big = self.chain("big", "big", "variable") if third else []
        if third:
            self.chain("comments", "comment")
        self.big = [record for record in big if record["name"] == "big"]
        self.variables = [record for record in big if record["name"] == "variable"]
        self.y = self.record(file["y_at"], "y")
        self.count_scans()
        self.place_traces()

    def record(self, at, *names):
        require(at is not None and 0 < at <= len(self.content) - 6, "a record's place")
        kind, size = struct.unpack_from(">hi", self.content, at)
        require(size >= 6 and at + size <= len(self.content), "a record's size")
        kind = 1000 if 1000 <= kind <= 2000 else kind
        found = [name for name in names if LAYOUTS[name][0] == kind]
        require(found, "a record's type")
        record = {"name": found[0], "at": at, "size": size}
        for name, first, form in LAYOUTS[found[0]][1]:
            end = int(first) - 1 + struct.calcsize(">" + form)
            value = (
                struct.unpack_from(">" + form, self.content, at + int(first) - 1)
                if end <= size
                else (None,)
            )
            record[name] = value[0]
        return record

    def chain(self, key, *names):
        count, at = self.file[key], self.file[key + "_at"]
        require(count is None or count >= 0, "a count")
        records = []
        for _ in range(count or 0):
            records.append(self.record(at, *(names or (key,))))
            at += records[-1]["size"]
        return records

    def newer(self, record, key, since):
        """The field `key`; before revision `since`, or if the record is too short for it, the old
        field that it replaced."""
        value = record[key] if self.revision >= since else None
        value = record[key + "_old"] if value is None else value
        require(value is not None, key)
        return value

    def count_scans(self):
        self.kept, self.valid, self.order = 1, 1, None
        scan = (self.big or self.scans or [None])[0]
        if scan:
            require(None not in (scan["count"], scan["last"], scan["order"]), "scan fields")
            self.kept, self.valid, self.order = scan["count"], scan["last"] + 1, scan["order"]
            require(0 <= self.valid <= self.kept and self.order in (0, 1), "scan counts")
        for record, header in [(r, 36) for r in self.scans] + [(r, 54) for r in self.variables]:
            record["values"] = None
            if record["size"] > header:
                require(record["type"] in NUMBERS, "scan variable type")
                need = self.kept * SIZES[record["type"]]
                require(record["size"] - header >= need, "scan values")
                record["values"] = numbers(
                    self.content, record["at"] + header, record["type"], self.kept
                )

    def place_traces(self):
        scanned, single = [], []
        for data in self.data:
            data["n"] = self.newer(data, "points", 3)
            require(data["n"] >= 0 and data["rows"] >= 0 and data["columns"] >= 0, "counts")
            require(data["y_per"] >= 0 and data["y_type"] in NUMBERS, "y")
            require(self.revision < 3 or not data["passes"], "multi-pass")
            data["traces"] = data["rows"] * data["columns"]
            data["bytes"] = (
                data["n"] * data["y_per"] * SIZES[data["y_type"]] * (2 if data["complex"] else 1)
            )
            in_scans = self.order is not None and (self.revision == 1 or data["scan"])
            require(in_scans is not None, "scanData")
            data["in_scans"] = bool(in_scans)
            (scanned if in_scans else single).append(data)
        at = 6
        for data in scanned:
            data["y_at"] = at
            whole = data["bytes"] * data["traces"]
            at += whole * (1 if self.order == 1 else self.kept)
        step = at - 6
        if self.order == 1:
            at = 6 + step * self.kept
        for data in scanned:
            data["step"] = step if self.order == 1 else data["bytes"] * data["traces"]
        for data in single:
            data["y_at"], data["step"] = at, 0
            at += data["bytes"] * data["traces"]
        require(at <= self.y["size"], "y data")
        self.place_x()

    def place_x(self):
        """Places x vectors for each scan or, if there is no room, one set for all scans."""
        room = self.x[0]["size"] if self.x else 6
        self.x_scans = True
        if self.x_end() > room:
            self.x_scans = False
        require(self.x_end() <= room, "x data")

    def x_end(self):
        at = 6
        for data in self.data:
            resolution = data["resolution"]
            require(resolution in range(5), "x resolution")
            if resolution < 2:
                continue
            require(data["x_type"] in NUMBERS and data["x_per"] >= 1, "x")
            data["x_bytes"] = data["n"] * data["x_per"] * SIZES[data["x_type"]]
            if resolution == 2:
                data["x_at"] = 6
                at = max(at, 6 + data["x_bytes"])
                continue
            data["x_at"] = at
            scans = self.kept if data["in_scans"] and self.x_scans else 1
            at += data["x_bytes"] * (data["traces"] * scans if resolution == 4 else 1)
        return at

    def x_values(self, data, row, scan):
        n, resolution = data["n"], data["resolution"]
        if resolution < 2:
            x0, dx = self.newer(data, "x0", 2), self.newer(data, "dx", 2)
            return [x0 + i * dx if resolution == 0 else x0 * dx**i for i in range(n)]
        place = row if resolution == 4 else 0
        if resolution == 4 and self.x_scans:
            place += scan * data["traces"]
        at = self.x[0]["at"] + data["x_at"] + place * data["x_bytes"]
        return numbers(self.content, at, data["x_type"], n * data["x_per"])[:: data["x_per"]]

    def y_values(self, data, row, scan):
        at = self.y["at"] + data["y_at"] + scan * data["step"] + row * data["bytes"]
        return numbers(self.content, at, data["y_type"], data["n"])


def bands_of(xs):
    """The bands of the points up to the last one in a band; fails if an earlier point is in no
    band, if the bands do not ascend, or if none is from 2 to 50."""
    found = []
    for x in xs:
        require(math.isfinite(x), "x")
        band = round(10 * math.log10(x)) if x > 0 else None
        if band is not None and abs(x / 10 ** (band / 10) - 1) > 0.03:
            band = None
        found.append(band)
    while found and found[-1] is None:
        found.pop()
    require(None not in found, "an x of no band")
    require(all(a < b for a, b in zip(found, found[1:])), "rising bands")
    require(any(2 <= band <= 50 for band in found), "bands")
    return found


def is_octave(recording, data):
    if data["domain"] != 6 or data["kind"] not in (12, 49):
        return False
    if data["kind"] == 49:
        if not data["traces"]:
            return False
        try:
            bands = bands_of(recording.x_values(data, 0, 0)[: valid_points(recording, data)])
        except Refused:
            return False
        return all(b == a + 1 for a, b in zip(bands, bands[1:]))
    return True


def valid_points(recording, data):
    return max(0, min(data["n"], recording.newer(data, "last", 3) + 1))


def correction(recording, data, row, fft):
    """The correction factor F of the trace, and its first channel."""
    if not recording.vectors or data["vector"] == -1:
        return 1.0, None
    index = data["vector"] + row
    require(0 <= index < len(recording.vectors), "a vector")
    vector, factor, first = recording.vectors[index], 1.0, None
    for i in "01":
        number = vector["channel" + i]
        if number == -1:
            continue
        require(number is not None and 0 <= number < len(recording.channels), "a channel")
        channel = recording.channels[number]
        first = first or channel
        require(channel["factor"] not in (0, None), "int2engrUnit")
        w = 1.0
        if fft:
            w = channel["wide"] / {1: channel["narrow"], 2: channel["wide"]}.get(
                channel["correction"], 1
            )
        factor *= (w / channel["factor"]) ** (vector["power" + i] / 48)
    return factor, first


def seconds_of(recording, data, length):
    """The time of each scan, in seconds from the start of the recording."""
    if not data["in_scans"]:
        return [0.0]
    for variable in recording.variables + recording.scans:
        if variable["values"] is None or variable.get("data", -1) not in (
            -1,
            recording.data.index(data),
        ):
            continue
        factor, exponents = unit_of(variable["unit"])
        if exponents == (0, 0, 2, 0, 0, 0, 0, 0) or variable.get("base") == 2:
            return [value * (factor or 1) for value in variable["values"][: recording.valid]]
    return [k * length for k in range(recording.valid)]


def octave_levels(xs, ys):
    return {band: y for band, y in zip(bands_of(xs), ys) if 2 <= band <= 50}


def synthesised(xs, ys, start, stop):
    """For each band that is covered by three bins or more, half the sum of its bins; a bin on an
    edge is split by width."""
    require(all(a < b for a, b in zip(xs, xs[1:])), "rising x")
    xs, ys = xs[start : stop + 1], ys[start : stop + 1]
    require(len(xs) > 1, "bins")
    middle = [(a + b) / 2 for a, b in zip(xs, xs[1:])]
    edges = [xs[0] - (middle[0] - xs[0]), *middle, xs[-1] + (xs[-1] - middle[-1])]
    sums = {}
    for band in range(2, 51):
        low, high = 10 ** ((band - 0.5) / 10), 10 ** ((band + 0.5) / 10)
        if low < edges[0] or high > edges[-1]:
            continue
        parts = [max(0.0, min(high, b) - max(low, a)) / (b - a) for a, b in zip(edges, edges[1:])]
        if sum(parts) >= 3:
            sums[band] = sum(y * part for y, part in zip(ys, parts) if part) / 2
    require(sums, "bands")
    return sums


def history(content, channel=1, length=0.5, added=0.0):
    recording = Recording(content)
    octaves = [data for data in recording.data if is_octave(recording, data)]
    powers = [data for data in recording.data if (data["domain"], data["kind"]) == (0, 2)]
    require(octaves or powers, "third-octave or power data")
    data, fft = (octaves or powers)[0], not octaves
    require(not data["complex"] and data["y_per"] == 1, "one real value")
    row = channel - 1
    require(0 <= row < data["rows"] and data["traces"], "the channel")
    factor, first = correction(recording, data, row, fft)
    require(data["unit_valid"] or first, "a unit")
    scale, exponents = unit_of(data["unit"] if data["unit_valid"] else first["unit"])
    pressure = exponents == (2, -2, -4, 0, 0, 0, 0, 0)
    require(factor and scale and math.isfinite(factor * scale), "a factor")
    count = recording.valid if data["in_scans"] else 1
    require(0 < count <= 32767, "records")
    used, start, stop = valid_points(recording, data), 0, 0
    if fft:
        start = recording.newer(recording.measurement, "start", 3)
        stop = recording.newer(recording.measurement, "stop", 3)
        require(0 <= start <= stop < data["n"], "start and stop")
    records = []
    for scan in range(count):
        xs = recording.x_values(data, row, scan)[:used]
        ys = [float(y) for y in recording.y_values(data, row, scan)[:used]]
        if data["y_type"] < 3 and first and first["scale"] is not None and recording.revision > 1:
            ys = [first["offset"] + first["scale"] * y for y in ys]
        if fft and not data["power"]:
            ys = [y * y for y in ys]
        values = synthesised(xs, ys, start, min(stop, used - 1)) if fft else octave_levels(xs, ys)
        levels = {}
        for band, y in values.items():
            require(math.isfinite(y), "a finite value")
            squared = data["power"] or fft
            level = y * (factor if data["power"] else 1) if squared else abs(y)
            gain = (1 if data["power"] else factor) * scale
            if level > 0:
                levels[band] = (
                    (10 if squared else 20) * math.log10(level)
                    + 20 * math.log10(abs(gain) / (2e-5 if pressure else 1))
                    + added
                )
        records.append(levels)
    return recording, data, first, records, seconds_of(recording, data, length)


def quoted(value):
    return (
        '"'
        + "".join(c if " " <= c <= "~" and c not in '"\\' else f"\\x{ord(c):02x}" for c in value)
        + '"'
    )


def opinion(content):
    try:
        recording, data, first, records, seconds = history(content)
        file = recording.file
        try:
            date = datetime.date(file["year"], *divmod(file["day"], 100))
        except (ValueError, OverflowError) as error:
            raise Refused("a date") from error
        hour, minute = divmod(file["clock"], 100)
        require(0 <= hour < 24 and 0 <= minute < 60, "a time")
        require(all(map(math.isfinite, seconds)), "a scan variable")
    except (Refused, TypeError, OverflowError, ZeroDivisionError, struct.error):
        return ["result 2 0 0"]
    days = (date - datetime.date(1899, 12, 30)).days
    start = hour * 3600 + minute * 60
    average = {0: 0, 1: 0, 2: 4}.get(recording.measurement["average"], 99)
    notes = [
        word
        for word, there in (
            ("weight", first and first["weight"]),
            ("overload", first and first["overloaded"]),
            ("valid", not data["valid"]),
            ("correct", first and first["correction"]),
        )
        if there
    ]
    out = [
        "result 0",
        "project " + quoted(text(recording.measurement["title"])),
        "microphone " + quoted(text(first["label"]) if first else ""),
        "generator " + quoted(INSTRUMENTS.get(file["applic"], str(file["applic"]))),
        f"averaging {average}",
        f"start {days} {start}",
        "notes " + " ".join(notes),
    ]
    for number, (levels, second) in enumerate(zip(records, seconds), 1):
        at, extra = (start + second) % 86400, (start + second) // 86400
        out.append(
            " ".join(
                [
                    f"record {number} {days + extra:.0f} {at!r} {second!r}",
                    *(f"{band} {level!r}" for band, level in sorted(levels.items())),
                ]
            )
        )
    return out
