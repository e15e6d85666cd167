"""Makes random analyzer recordings, some of them damaged. They differ in revision, scan order,
units and the form in which x and y are stored.
"""

import math
import struct

from recording_reader import LAYOUTS, NUMBERS

RECORD_SIZES = {  # in bytes, for revisions 1, 2 and 3
    "file": (64, 64, 80),
    "measurement": (102, 140, 156),
    "data": (114, 134, 148),
    "vector": (18, 18, 18),
    "channel": (146, 192, 212),
}
PASCAL, VOLT, SECOND = (2, -2, -4), (2, 4, -6, -2), (0, 0, 2)


def unit(label, factor, exponents=()):
    raw = label.encode() + b"\0" + b"\xff" * 10  # garbage after the end of the text
    return raw[:10] + struct.pack(">f8b", factor, *exponents, *[0] * (8 - len(exponents)))


def record(name, size, tail=b"", **fields):
    kind, layout = LAYOUTS[name]
    raw = bytearray(size)
    struct.pack_into(">hi", raw, 0, kind, size + len(tail))
    for key, first, form in layout:
        value = fields.get(key)
        if value is not None and int(first) - 1 + struct.calcsize(">" + form) <= size:
            struct.pack_into(
                ">" + form,
                raw,
                int(first) - 1,
                value.encode("latin-1") if isinstance(value, str) else value,
            )
    return bytes(raw) + tail


def packed(kind, values):
    if kind < 3:
        values = [max(-30000, min(30000, round(value))) for value in values]
    return struct.pack(f">{len(values)}{NUMBERS[kind]}", *values)


class Maker:
    def __init__(self, rng):
        self.rng, self.revision = rng, rng.randint(1, 3)
        self.scans = rng.choice([0, 0, 1, 3, 7])
        self.order = rng.randrange(2)
        self.rows = rng.randint(1, 3)
        self.fft = rng.random() < 0.35
        self.units = [
            unit("Pa", rng.choice([1.0, 0.001]), PASCAL),
            unit("V", 1.0, VOLT),
            unit("kPa", 1000.0, PASCAL),
        ]

    def sized(self, name, tail=b"", **fields):
        return record(name, RECORD_SIZES[name][self.revision - 1], tail, **fields)

    def axis(self):
        rng = self.rng
        if self.fft:
            n, x0, dx = rng.choice([(400, 0.0, 4.0), (201, 100.0, 2.5), (60, 0.0, 1.0)])
            return 0, [x0 + i * dx for i in range(n)], x0, dx
        low, count = rng.choice([(2, 5), (10, 30), (-2, 12), (17, 24), (45, 8)])
        x0, dx = 10 ** (low / 10) * rng.choice([1.0, 1.02]), 10**0.1
        if rng.random() < 0.1:
            dx = 2 ** (1 / 3)
        return 1, [x0 * dx**i for i in range(count)], x0, dx

    def y(self, count, kind):
        size = 1000 if kind < 3 else 10.0 ** self.rng.randint(-6, 1)
        values = [self.rng.uniform(0, 1) ** 2 * size for _ in range(count)]
        if self.rng.random() < 0.2:
            values[self.rng.randrange(count)] = self.rng.choice([0.0, -size])
        if self.rng.random() < 0.02 and kind > 2:
            values[self.rng.randrange(count)] = self.rng.choice([math.nan, math.inf])
        return values

    def data_header(self, first_vector, decoy=False):
        rng = self.rng
        resolution, xs, x0, dx = self.axis()
        if rng.random() < 0.4:
            resolution = rng.choice([2, 3, 4])
        extra = 0 if self.fft else rng.choice([0, 0, 2])
        if extra:
            xs, resolution = xs + [0.0] * extra, rng.choice([2, 3, 4])
        n, y_type = len(xs), rng.choice([1, 2, 3, 3, 3, 4, 4])
        x_type = rng.choice([3, 4]) if self.fft or min(xs) < 100 else rng.choice([1, 2, 3, 4])
        domain, kind = (0, 2) if self.fft else (6, rng.choice([12, 12, 49]))
        if decoy:
            domain, kind = rng.choice([(0, 4), (6, 11), (1, 0)])
        last = n - 1 - rng.choice([0, 0, 0, 1, 3])
        scan = rng.choice([1, 1, 1, 0]) if self.scans else 0
        if self.revision == 1:
            scan = 1 if self.scans else 0
        fields = dict(
            title="Freq Resp" if decoy else "Pwr Spec",
            domain=domain,
            kind=kind,
            points_old=n,
            last_old=last,
            points=n,
            last=last,
            x0_old=x0,
            dx_old=dx,
            x0=x0,
            dx=dx,
            resolution=resolution,
            x_type=x_type,
            x_per=rng.choice([1, 1, 2]),
            y_type=y_type,
            y_per=1,
            complex=int(decoy and rng.random() < 0.5),
            power=rng.choice([1, 1, 0]),
            valid=rng.choice([1, 1, 0]),
            vector=first_vector,
            rows=self.rows,
            columns=1,
            unit_valid=rng.choice([0, 1]),
            unit=rng.choice(self.units),
            scan=scan,
            passes=0,
        )
        return fields, xs

    def channel(self):
        rng = self.rng
        wide = rng.choice([1.0, 1.63, 2.0])
        return self.sized(
            "channel",
            label=f"M{rng.randint(1, 9)}\0\x07\x08",
            wide=wide,
            narrow=wide * 1.5,
            correction=rng.choice([0, 0, 1, 2, 3]),
            weight=rng.choice([0, 0, 1, 3]),
            overloaded=rng.choice([0, 0, 1, 3]),
            unit=rng.choice(self.units),
            factor=rng.choice([1.0, 0.05, 2.5, 1.0, 0.0][: 4 + (rng.random() < 0.05)]),
            scale=rng.choice([1.0, 0.001]),
            offset=rng.choice([0.0, 0.5]),
        )

    def scan_records(self):
        """Two lists: one with the scan record, and one with the two records that may replace it in
        revision 3. One of them is empty; without scans, both are.
        """
        rng = self.rng
        if not self.scans:
            return [], []
        last = self.scans - 1 - rng.choice([0, 0, 1])
        kind = rng.choice([1, 2, 3, 4])
        values = [rng.choice([0.5, 3600.0, 30000.0]) * i for i in range(self.scans)]
        tail = packed(kind, values) if rng.random() < 0.8 else b""
        measure = rng.choice(
            [unit("s", 1.0, SECOND), unit("ms", 0.001, SECOND), unit("rpm", 1.0, (0, 0, -2))]
        )
        struct_record = record(
            "scan", 36, tail, count=self.scans, last=last, order=self.order, type=kind, unit=measure
        )
        if self.revision < 3 or rng.random() < 0.5:
            return [struct_record], []
        big = [
            record("big", 20, count=self.scans, last=last, order=self.order),
            record(
                "variable", 54, tail, base=rng.choice([0, 2, 3]), data=-1, type=kind, unit=measure
            ),
        ]
        return [], big

    def y_record(self, headers):
        blocks = {}  # by header and scan
        for i, (fields, xs) in enumerate(headers):
            for scan in range(max(1, self.scans) if fields["scan"] else 1):
                count = len(xs) * (2 if fields["complex"] else 1)
                blocks[i, scan] = b"".join(
                    packed(fields["y_type"], self.y(count, fields["y_type"]))
                    for _ in range(self.rows)
                )
        inside = [i for i, (fields, _) in enumerate(headers) if fields["scan"]]
        scans = range(self.scans)
        order = (
            [(i, s) for s in scans for i in inside]
            if self.order
            else [(i, s) for i in inside for s in scans]
        )
        order += [(i, 0) for i in range(len(headers)) if i not in inside]
        return record("y", 6, b"".join(blocks[key] for key in order))

    def x_record(self, headers):
        tail = b""
        for fields, xs in headers:
            kind, per = fields["x_type"], fields["x_per"]
            vector = packed(kind, [x for x in xs for _ in range(per)])
            if fields["resolution"] == 4:
                vector *= self.rows * (self.scans if fields["scan"] else 1)
            if fields["resolution"] > 1:
                tail += vector
        return [record("x", 6, tail)] if tail else []

    def make(self):
        rng = self.rng
        decoys = [True] if rng.random() < 0.4 else []
        headers = [
            self.data_header(k * self.rows, decoy) for k, decoy in enumerate([*decoys, False])
        ]
        if (
            sum(fields["resolution"] == 2 for fields, _ in headers) > 1
            or len(headers) > 1
            and headers[-1][0]["resolution"] == 2
        ):
            headers[-1][0]["resolution"] = 3
        channels = [self.channel() for _ in range(self.rows)]
        vectors = [
            self.sized(
                "vector",
                channel0=i % self.rows,
                channel1=rng.choice([-1, i % self.rows]),
                power0=rng.choice([96, 48]),
                power1=rng.choice([0, 48, -48]),
            )
            for i in range(self.rows * len(headers))
        ]
        scan, big = self.scan_records()
        groups = {
            "data": [self.sized("data", **fields) for fields, _ in headers],
            "vectors": vectors,
            "channels": channels,
            "unique": [record("unique", 30)] * rng.randrange(2),
            "scan": scan,
            "big": big,
            "comments": [record("comment", 24, b"hello")] if self.revision == 3 else [],
            "x": self.x_record(headers),
            "y": [self.y_record(headers)],
        }
        measurement = self.sized(
            "measurement",
            title="Fly-over 7 \0\xff",
            start_old=0,
            start=0,
            average=rng.choice([0, 1, 2, 5]),
            stop_old=len(headers[-1][1]) - 1,
            stop=len(headers[-1][1]) - 1 - rng.choice([0, 5]),
        )
        return self.joined(groups, measurement)

    def joined(self, groups, measurement):
        rng = self.rng
        at = 2 + RECORD_SIZES["file"][self.revision - 1] + len(measurement)
        counts, body = {}, b""
        for name in rng.sample(list(groups), len(groups)):
            counts[name] = len(groups[name])
            counts[name + "_at"] = at + len(body) if groups[name] else -1
            body += b"".join(groups[name])
        file = self.sized(
            "file",
            revision=rng.choice([0, self.revision]),
            applic=rng.choice([-99, 10, 1, 77]),
            year=rng.choice([1999, 2004]),
            day=rng.choice([101, 229 if rng.random() < 0.1 else 228, 1231]),
            clock=rng.choice([0, 1459, 2359]),
            **counts,
        )
        return b"B\0" + file + measurement + body


def damaged(rng, content):
    raw = bytearray(content)
    if rng.random() < 0.3:
        return bytes(raw[: rng.randrange(len(raw))])
    for _ in range(rng.choice([1, 1, 2, 5])):
        at = rng.randrange(min(len(raw), rng.choice([80, 700, len(raw)])))
        raw[at] = rng.choice([0, 1, 255, 127, 128, rng.randrange(256), raw[at] ^ 1])
    return bytes(raw)


def made(rng):
    content = Maker(rng).make()
    return damaged(rng, content) if rng.random() < 0.4 else content
