"""Random comma-separated files of every kind, and delimited text; some are odd or damaged."""

import decimal
import pathlib
import re

import reader

DATA = pathlib.Path(__file__).parent.parent / "data"
FOLDERS = {
    "STH": "spectral-time-history",
    "MASK": "masking-map",
    "PTH": "position-time-history",
    "GTH": "geometric-time-history",
    "MIC": "microphone-position",
    "TSPI": "tracking",
    "SSR": "spectrum-record",
    "INI": "variable-initialization",
}
SAMPLES = {
    name: [path.read_bytes().decode("latin-1") for path in sorted((DATA / folder).glob("*/*.csv"))]
    for name, folder in FOLDERS.items()
}
SAMPLES["ASCII"] = [text for texts in SAMPLES.values() for text in texts]
BLOCK = 1 << 16  # bytes that the library reads at once; a line ending may be split there
DELIMITERS = [",", ",", ",", ";", "\t", " ", "|", ", ", '"', ""]

NUMBERS = [
    "",
    " ",
    '"',
    "x",
    "-",
    "+",
    ".",
    "-.",
    "e5",
    "1e",
    "1e+",
    "--1",
    "+-1",
    "+ 1",
    "- 1",
    "1 2",
    "1\t",
    "\t1",
    "1\x00",
    "\xb2",
    "\xa01",
    "nan",
    "-NaN",
    "inf",
    "Infinity",
    "0x1p3",
    "1d5",
    "&h10",
    "1_0",
    "1.5.2",
    "1e400",
    "-1e400",
    "1e-400",
    "-1e-400",
    "1e-46",
    "1e39",
    "1e0000002",
    "3.4028235e38",
    "1e99999999999999999999",
    "0e99999999999999999999",
    "1e-99999999999999999999",
    "3.4028236e38",
    "3.4028235677973365e38",
    "3.4028235677973366e38",
    "7.0064923216240853e-46",
    "2.5e-45",
    "7.0064923216240854e-46",
    "1.7976931348623158e308",
    "1.7976931348623159e308",
    "4.9e-324",
    "2.4e-324",
    "9007199254740993",
    "9007199254740993.00000000000000001",
    "9" * 400,
    "1" + "0" * 308,
    "0." + "0" * 400 + "1",
    "32767",
    "32768",
    "-32768",
    "-32769",
    "2147483647",
    "2147483648",
    "-2147483649",
    "00000000000000000000000005",
    "5.0",
    "5.",
    "+5",
    "-0",
    "255",
    "256",
    "2.5",
    '"5"',
    "5 ",
    ' "5" ',
    '5"',
    '" 5"',
    "5**",
    "**5",
]
TIMES = [
    "10:00:00.5",
    "10:00",
    "::",
    ":::",
    "1:2:3:4",
    "1 0:0 0:0 5",
    "-1:-2:-3",
    "24:00:00",
    "1e1:2:3",
    "99:99:99.99",
    "12:30:00 PM",
    "PM12:30:00",
    "1:00:00 pm",
    "12:30:00AM",
    "13:00:00 am",
    "1:2:3AM",
    "0.1:0:0 PM",
    "12:0:0 AMPM",
    "1e39:0:0",
    "x:y:z",
    "10x:20y:30z",
    ".5:.5:.5",
    "1.:+2:3e",
    "1e400:0:0",
    "inf:0:0",
    "10:00:00.100000001490116",
    "0:0:1e-50",
    "1\t0:0:0",
    '"1:2:3"',
    "1:2:3\x00",
    "0x10:0:0",
    "2:2:2",
    "23:59:59",
    "23:59:60",
    "0:60:0",
    "00:30:00",
    "12:00:00",
    "1:2:3.0",
    "001:2:3",
    " 1:2:3 ",
    "1: 2:3",
]
DATES = [
    "02/30/2004",
    "2/3/2004",
    "02/29/2000",
    "02/29/1900",
    "13/01/2000",
    "00/01/2000",
    "1/1/0000",
    "1/1/0001",
    "12/31/9999",
    "1/1/10000",
    "1/1/99",
    "1/1/099",
    " 1/1/2000 ",
    "1 /1/2000",
    "1/1/2000 x",
    "+1/1/2000",
    "001/1/2000",
    '"1/1/2000"',
    "1/1",
    "1/1/2000/1",
    "B17/50Hz",
    "17/",
    "\xe917/",
    "B/",
    "B 17/x",
    "B17 /",
    "B+5/",
    "B1/2/3",
    "/17/",
    "B20/",
    "B19/1/",
]
WORDS = [
    "--",
    "MS",
    "m-",
    "M",
    "ZZ",
    "M\xe9",
    "FRS",
    '"FR"',
    "B17",
    "NONE",
    "none",
    "LINEAR",
    "4S95",
    "linear",
    "4s95",
    "midpt",
    ' "4S100"',
    "ICAOSLO",
    "99",
    "a|b",
    "|a|",
    "a, b",
    '"a, b"',
    "a**b",
    "*",
    "\xff\xfe",
    "a\rb",
    "\r",
    "a;b",
]
SCRIBBLES = [
    "0123456789+-.eE ",
    "01:9. PMpma-+e",
    "012/9 ",
    'ab,"| *',
    "".join(map(chr, range(256))),
]


def odd(rng, cell=""):
    """An invalid or borderline value of the cell's kind, a value of another, or random text."""
    kind = "/" in cell and DATES or ":" in cell and TIMES or re.search("[0-9]", cell) and NUMBERS
    if rng.random() < 0.4:
        return "".join(rng.choices(rng.choice(SCRIBBLES), k=rng.randint(1, 9)))
    return rng.choice(kind or WORDS if rng.random() < 0.8 else NUMBERS + TIMES + DATES + WORDS)


def halfway(rng):
    """A number halfway between two neighbours in single or double precision, or next to it."""
    odd_bits = rng.getrandbits(rng.choice([25, 54])) | 1
    with decimal.localcontext() as context:
        context.prec = 400
        text = f"{odd_bits * decimal.Decimal(2) ** rng.randint(-90, -1):f}"
    return text[:-1] + rng.choice(["5", "4" + "9" * 30, "5" + "0" * rng.randrange(900) + "1"])


def number(rng, most=290):
    value = rng.choice([rng.uniform(-1, 1), rng.uniform(-2000, 2000), rng.randint(-9, 99)])
    return rng.choice(
        [
            f"{value:.2f}",
            f"{value:.2f}",
            f"{value:.1f}".replace("0.", "."),
            repr(value),
            f"{value:.{rng.randrange(30)}f}",
            f"{value:.{rng.randrange(20)}e}",
            f"{value:+.3f}",
            f"{value:.2f}".replace("0.", "."),
            f"{value:.3g}",
            f"{value:09.3f}",
            halfway(rng),
            f"{rng.randint(0, 9)}.",
            f"{value:.2E}",
            f"{value * 10.0 ** rng.randint(-most, most):.17g}",
        ]
    )


def clock(rng):
    return f"{rng.randrange(24):02}:{rng.randrange(60):02}:{rng.randrange(60):02}"


def word(rng):
    return rng.choice(
        [
            "Flight test 7",
            "M1",
            "",
            " M1 ",
            '"quoted"',
            '" a ", "b"',
            "a, b",
            "a;b",
            "Fl\xfcge",
            "a\tb",
            "x|y",
            'a "b" c',
            "*",
            "flight.csv",
            odd(rng),
        ]
    )


def cell(kind, rng):
    if kind in ("time", "clock", "twelve", "date") and rng.random() < 0.02:
        return rng.choice(DATES if kind == "date" else TIMES)
    if kind in ("single", "double"):
        return number(rng, 30 if kind == "single" else 290)
    return {
        "int16": lambda: str(rng.choice([rng.randint(-3, 60), rng.randint(-32768, 32767)])),
        "int32": lambda: str(rng.randint(-(2**31), 2**31 - 1)),
        "quality": lambda: str(rng.choice([0, 1, 2, rng.randint(0, 255)])),
        "time": lambda: clock(rng)
        + rng.choice(["", ".5", f".{rng.randrange(10**6)}", " PM", "am"]),
        "date": lambda: "%02d/%02d/%04d"
        % (rng.randint(1, 12), rng.randint(1, 28), rng.randint(1, 9999)),
        "clock": lambda: clock(rng),
        "twelve": lambda: clock(rng),
        "averaging": lambda: rng.choice(list(reader.AVERAGING)),
        "stamp": lambda: rng.choice(list(reader.STAMPS)),
        "mask": lambda: rng.choice(reader.MODES) + rng.choice(reader.ADJUSTMENTS),
        "text": lambda: word(rng),
        "any": lambda: word(rng).replace(",", ""),
    }[kind.lower()]()


def row(kinds, rng, more=0.1):
    cells = [
        rng.choice(["{}"] * 20 + ["{} ", " {}", '"{}"']).format(cell(kind, rng)) for kind in kinds
    ]
    return ",".join(cells + [word(rng)] * (rng.random() < more))


def rows(name, low, high, rng):
    kinds = (
        reader.ROWS[name]
        + {"STH": ["double"], "SSR": ["double"], "MASK": ["mask"]}.get(name, []) * (high - low + 1)
        + ["int16"] * (name == "MASK")
    )
    lines = [row(kinds, rng) for _ in range(1 if name in ("MIC", "SSR") else rng.randrange(6))]
    numbered = kinds[:1] == ["int16"] and rng.random() < 0.7
    return [
        f"{place},{line.partition(',')[2]}" if numbered else line
        for place, line in enumerate(lines, 1)
    ]


def good(name, rng):
    if name == "ASCII":
        return [
            ",".join(word(rng) for _ in range(rng.randrange(5))) for _ in range(rng.randrange(6))
        ]
    if name == "TSPI":
        return [word(rng) for _ in range(6)] + rows(name, 0, 0, rng)
    if name == "INI":
        lines = [
            f"{key}**,{rng.choice(['', ' '])}" + ",".join(cell(kind, rng) for kind in kinds)
            for key, kinds in rng.sample(list(reader.INI.items()), rng.randint(0, 9))
        ]
        comments = [word(rng) for _ in range(rng.randrange(3))]
        place = rng.randint(0, len(lines))
        lines[place:place] = [f"NumberOfCommentLines**,{len(comments)}", *comments]
        return lines
    title, layout = reader.LAYOUTS[name]
    low = rng.randint(-1, 45)
    high = low + rng.randrange(-1, 6)
    lines = [f"FileType**,{title}"]
    for key, *kinds in layout:
        counted = []
        if kinds == ["lines"]:
            counted = [word(rng) for _ in range(rng.randrange(3))]
            value = len(counted)
        else:
            value = f"{low},{high}" if key == "bands" else row(kinds, rng, 0.1 * (len(kinds) > 1))
        lines += [f"{rng.choice([key, key, '', 'a,b'])}**,{value}", *counted]
    lines.append(f"B{low}/x,,B{high}/y" if name == "SSR" else word(rng))
    return lines + rows(name, low, high, rng)


def damaged(lines, rng):
    """Damages one thing in a file, or only makes it odd."""
    if not lines:
        return [odd(rng)]
    place = rng.randrange(len(lines))
    line = lines[place]
    at = rng.randint(0, len(line))
    kind = rng.randrange(10)
    if kind < 5:
        cells = line.split(",")
        cell_at = rng.randrange(len(cells))
        cells[cell_at] = odd(rng, cells[cell_at]) if kind else number(rng)
        new = [",".join(cells)]
    elif kind == 5:
        new = [line[:at] + chr(rng.randrange(256)) + line[at + rng.randrange(2) :]]
    elif kind == 6:
        new = [line[:at] + rng.choice([",", '"', "**", " ", "|", "\r", ":", "-"]) + line[at:]]
    elif kind == 7:
        new = rng.choice([[], [line, line], [""], [line[:at]], [line[:at], line[at:]]])
    elif kind == 8:
        return lines[:place] + rng.choice([[], [line[:at]]])
    else:
        other = rng.randrange(len(lines))
        lines[other], new = line, [lines[other]]
    return lines[:place] + new + lines[place + 1 :]


def file(name, rng):
    """The format as print_file expects it, and the content of a random file."""
    lines = rng.choice(SAMPLES[name]).split("\n") if rng.random() < 0.2 else good(name, rng)
    long = name in ("PTH", "GTH", "TSPI") and rng.random() < 0.001
    if long:
        lines += lines[-1:] * rng.choice([32750, 32768])
    for _ in range(0 if long else rng.choice([0, 0, 0, 1, 1, 2, 5])):
        lines = damaged(lines, rng)
    ends = rng.choice([["\n"]] * 9 + [["\r\n"], ["\r\n", "\n"], ["\n"] * 30 + ["\n\n"], ["\r"]])
    content = "".join(line + rng.choice(ends) for line in lines)
    if rng.random() < 0.01 and name in ("ASCII", "TSPI", "INI"):
        end = content.find("\n")
        content = content.replace("\n", "x" * (BLOCK - rng.randint(0, 3) - end) + "\r\n", 1)
    if rng.random() < 0.3:
        content = content[:-1]
    if name == "ASCII":
        delimiter = rng.choice(DELIMITERS)
        quoted = rng.randrange(2) if delimiter != '"' else 0
        name += f":{delimiter.encode().hex()}:{quoted}"
    return name, content
