"""Computes noise metrics, from the regulations' formulas, and emission geometry a second time: in
plain Python, without knowledge of the library's code.

A history is a list of records {"number", "seconds", "levels": {band: level}}, in order of their
numbers. A map is {record number: {band: (mode, adjustment)}}. A missing value is None.
"""

import cmath
import math

INVALID = 9999
DAY = 86400.0
MAX, FIRST, LAST, SECOND = 1, 2, 4, 8  # flags for a record's role in the integration

# SPL(a) to SPL(e), M(b) to M(e), from 50 Hz (band 17) up.
NOYS = [
    (91, 64, 52, 49, 55, 0.043478, 0.030103, 0.07952, 0.058098),  # 50 Hz
    (85.9, 60, 51, 44, 51, 0.040570, 0.030103, 0.06816, 0.058098),  # 63 Hz
    (87.3, 56, 49, 39, 46, 0.036831, 0.030103, 0.06816, 0.052288),  # 80 Hz
    (79.9, 53, 47, 34, 42, 0.036831, 0.030103, 0.05964, 0.047534),  # 100 Hz
    (79.8, 51, 46, 30, 39, 0.035336, 0.030103, 0.053013, 0.043573),  # 125 Hz
    (76, 48, 45, 27, 36, 0.033333, 0.030103, 0.053013, 0.043573),  # 160 Hz
    (74, 46, 43, 24, 33, 0.033333, 0.030103, 0.053013, 0.040221),  # 200 Hz
    (74.9, 44, 42, 21, 30, 0.032051, 0.030103, 0.053013, 0.037349),  # 250 Hz
    (94.6, 42, 41, 18, 27, 0.030675, 0.030103, 0.053013, 0.034859),  # 315 Hz
    (None, 40, 40, 16, 25, 0.030103, None, 0.053013, 0.034859),  # 400 Hz
    (None, 40, 40, 16, 25, 0.030103, None, 0.053013, 0.034859),  # 500 Hz
    (None, 40, 40, 16, 25, 0.030103, None, 0.053013, 0.034859),  # 630 Hz
    (None, 40, 40, 16, 25, 0.030103, None, 0.053013, 0.034859),  # 800 Hz
    (None, 40, 40, 16, 25, 0.030103, None, 0.053013, 0.034859),  # 1000 Hz
    (None, 38, 38, 15, 23, 0.030103, None, 0.05964, 0.034859),  # 1250 Hz
    (None, 34, 34, 12, 21, 0.02996, None, 0.053013, 0.040221),  # 1600 Hz
    (None, 32, 32, 9, 18, 0.02996, None, 0.053013, 0.037349),  # 2000 Hz
    (None, 30, 30, 5, 15, 0.02996, None, 0.047712, 0.034859),  # 2500 Hz
    (None, 29, 29, 4, 14, 0.02996, None, 0.047712, 0.034859),  # 3150 Hz
    (None, 29, 29, 5, 14, 0.02996, None, 0.053013, 0.034859),  # 4000 Hz
    (None, 30, 30, 6, 15, 0.02996, None, 0.053013, 0.034859),  # 5000 Hz
    (None, 31, 31, 10, 17, 0.02996, None, 0.06816, 0.037349),  # 6300 Hz
    (44.3, 37, 34, 17, 23, 0.042285, 0.02996, 0.07952, 0.037349),  # 8000 Hz
    (50.7, 41, 37, 21, 29, 0.042285, 0.02996, 0.05964, 0.043573),  # 10000 Hz
]


def tenths(value):
    """The value rounded to 0.1 dB, halves away from zero."""
    return math.copysign(math.floor(abs(value) * 10 + 0.5) / 10, value)


def pole_frequencies():
    """The frequencies f1 to f4 in the formulas of the A and C curves."""
    f_r, f_l, f_h = 1000.0, 10**1.5, 10**3.9
    d = math.sqrt(0.5)
    b = (f_r**2 + f_l**2 * f_h**2 / f_r**2 - d * (f_l**2 + f_h**2)) / (1 - d)
    c = f_l**2 * f_h**2
    f_a = 10**2.45
    f1 = math.sqrt((-b - math.sqrt(b * b - 4 * c)) / 2)
    f4 = math.sqrt((-b + math.sqrt(b * b - 4 * c)) / 2)
    return f1, (3 - math.sqrt(5)) / 2 * f_a, (3 + math.sqrt(5)) / 2 * f_a, f4


def curve_c(f):
    f1, _, _, f4 = pole_frequencies()
    return 20 * math.log10(f4**2 * f**2 / ((f**2 + f1**2) * (f**2 + f4**2)))


def curve_a(f):
    _, f2, f3, _ = pole_frequencies()
    return curve_c(f) + 20 * math.log10(f**2 / math.sqrt((f**2 + f2**2) * (f**2 + f3**2)))


def curve_d(f):
    h = ((1037918.48 - f * f) ** 2 + 1080768.16 * f * f) / (
        (9837328 - f * f) ** 2 + 11723776 * f * f
    )
    return 20 * math.log10(
        f / 6.8966888496476e-5 * math.sqrt(h / ((f * f + 79919.29) * (f * f + 1345600)))
    )


def weights(curve, bands=range(10, 44)):
    """The weights of the bands in dB, rounded to tenths; A and C are 0 dB at 1 kHz."""
    zero = 0 if curve is curve_d else curve(1000.0)
    return {band: tenths(curve(10 ** (band / 10)) - zero) for band in bands}


WEIGHTS = {"AWT": weights(curve_a), "CWT": weights(curve_c), "DWT": weights(curve_d)}


def counting(levels, masks):
    """The levels that count: valid, and not masked unless adjusted."""
    good = {}
    for band, level in levels.items():
        mode, adjustment = (masks or {}).get(band, (0, 0))
        masked = mode != 0 and adjustment == 0
        if level is not None and math.isfinite(level) and level != INVALID and not masked:
            good[band] = level
    return good


def level_sum(levels):
    return 10 * math.log10(sum(10 ** (0.1 * level) for level in levels)) if levels else None


def weighted(levels, name):
    if name == "OA":
        return level_sum(list(levels.values()))
    table = WEIGHTS[name]
    return level_sum([level + table[band] for band, level in levels.items() if band in table])


def noys(band, level):
    a, b, c, d, e, m_b, m_c, m_d, m_e = NOYS[band - 17]
    if a is not None and level >= a:
        return 10 ** (m_c * (level - c))
    if level >= b:
        return 10 ** (m_b * (level - b))
    if level >= e:
        return 0.3 * 10 ** (m_e * (level - e))
    if level >= d:
        return 0.1 * 10 ** (m_d * (level - d))
    return 0.0


def perceived(levels):
    """The PNL, or None if no band from 17 to 40 counts."""
    values = [noys(band, level) for band, level in levels.items() if 17 <= band <= 40]
    if not values:
        return None
    total = 0.85 * max(values) + 0.15 * sum(values)
    return 40 + 10 / math.log10(2) * math.log10(total) if total > 0 else 0.0


def tone(levels):
    """The correction, the tone band (0 for none) and the last band. Numbers bands as the regulation
    does: i = band - 16, up to n.
    """
    n = 2
    while n < 24 and n + 17 in levels:
        n += 1
    if n < 5:
        return 0.0, 0, n + 16
    level = {i: levels[i + 16] for i in range(3, n + 1)}
    slope = {i: level[i] - level[i - 1] for i in range(4, n + 1)}
    marked = set()
    for i in range(5, n + 1):
        if abs(slope[i] - slope[i - 1]) > 5:
            if slope[i] > 0 and slope[i] > slope[i - 1]:
                marked.add(i)
            elif slope[i] <= 0 and slope[i - 1] > 0:
                marked.add(i - 1)
    adjusted = dict(level)
    for i in marked:
        adjusted[i] = (level[i - 1] + level[i + 1]) / 2 if i < n else level[n - 1] + slope[n - 1]
    new_slope = {i: adjusted[i] - adjusted[i - 1] for i in range(4, n + 1)}
    new_slope[3] = new_slope[4]
    new_slope[n + 1] = new_slope[n]
    background = {3: level[3]}
    for i in range(4, n + 1):
        mean = (new_slope[i - 1] + new_slope[i] + new_slope[i + 1]) / 3
        background[i] = background[i - 1] + mean
    best, band = 0.0, 0
    for i in range(3, n + 1):
        f = level[i] - background[i]
        middle = 11 <= i <= 21  # 500 to 5000 Hz
        if f < 1.5:
            c = 0.0
        elif f < 3:
            c = 2 * f / 3 - 1 if middle else f / 3 - 0.5
        elif f < 20:
            c = f / 3 if middle else f / 6
        else:
            c = 20 / 3 if middle else 10 / 3
        if c > best:
            best, band = c, i + 16
    return best, band, n + 16


def last_good_band(masks):
    """9999 if bands 28 and 29 are masked, otherwise the band below the first masked one from 29
    up; 0 if none is masked there."""

    def masked(band):
        return masks.get(band, (0, 0))[0] != 0

    if masked(28) and masked(29):
        return INVALID
    return next((band - 1 for band in range(29, max(masks, default=0) + 1) if masked(band)), 0)


def steps(seconds):
    """The time from each stamp to the next; the last record lasts as long as the one before it,
    and a single one 0.5 s."""
    if len(seconds) == 1:
        return [0.5]
    each = [(b - a) % DAY for a, b in zip(seconds, seconds[1:])]
    if min(each) <= 0:
        raise ValueError("a step is not above 0")
    return each + each[-1:]


def event(pnlt, seconds, corrections=None):
    """The event in a list of PNLT values, which are None for records without a PNLT; None if all
    are."""
    low = -math.inf
    value = [low if p is None else p for p in pnlt]
    top = max(value)
    if top == low:
        return None
    at = value.index(top)
    limit = top - 10
    count = len(value)

    def nearer(outer, inner):
        return outer if abs(value[outer] - limit) <= abs(value[inner] - limit) else inner

    above = next(k for k in range(count) if value[k] > limit)
    first = nearer(above - 1, above) if above > 0 else None
    below = count  # from here to the end, all values stay below the limit
    while below > 0 and value[below - 1] < limit:
        below -= 1
    if below < count:
        last = nearer(below, below - 1)
    else:
        last = None if value[-1] > limit else count - 1
    begin = 0 if first is None else first
    end = count - 1 if last is None else last
    energy = sum(10 ** (0.1 * value[k]) * seconds[k] for k in range(begin, end + 1))
    epnl = 10 * math.log10(energy) - 10 * math.log10(10)
    sharing = 0.0
    if corrections is not None and corrections[at] is not None:
        near = [
            corrections[k]
            for k in range(at - 2, at + 3)
            if 0 <= k < count and corrections[k] is not None
        ]
        sharing = max(0.0, sum(near) / len(near) - corrections[at])
    second = [
        k
        for k in range(max(begin, 1), min(end, count - 2) + 1)
        if k != at
        and value[k] >= top - 2
        and value[k] - value[k - 1] >= 0.1
        and value[k] - value[k + 1] >= 0.1
    ]
    return {
        "maximum": at,
        "first": first,
        "last": last,
        "secondPeaks": second,
        "pnltm": top,
        "epnl": epnl,
        "bandSharing": sharing,
        "epnlWithBandSharing": epnl + sharing,
        "duration": epnl - top,
    }


def metrics(history, masks=None):
    """The metrics of each record, and the event or None; indices start at the lowest record."""
    rows = []
    for record in history:
        row = (masks or {}).get(record["number"], {})
        levels = counting(record["levels"], row)
        values = {name: weighted(levels, name) for name in ("AWT", "CWT", "DWT", "OA")}
        values["PNL"] = perceived(levels)
        values["PNLT"] = values["TONECOR"] = values["TONEBND"] = None
        if values["PNL"] is not None:
            values["TONECOR"], values["TONEBND"], _ = tone(levels)
            values["PNLT"] = values["PNL"] + values["TONECOR"]
        values["LGB"] = None if masks is None else last_good_band(row)
        values["INTEG"] = 0
        rows.append(values)
    # A number without a record becomes an index without levels, and the record before it lasts
    # until the next one.
    lowest = history[0]["number"]
    places = history[-1]["number"] - lowest + 1
    pnlt, corrections, seconds = [None] * places, [None] * places, [0.5] * places
    each = steps([record["seconds"] for record in history])
    for record, values, step in zip(history, rows, each):
        place = record["number"] - lowest
        pnlt[place], corrections[place], seconds[place] = values["PNLT"], values["TONECOR"], step
    found = event(pnlt, seconds, corrections)
    if found:
        by_number = {record["number"] - lowest: row for record, row in zip(history, rows)}
        for place, flag in [
            (found["maximum"], MAX),
            (found["first"], FIRST),
            (found["last"], LAST),
        ] + [(p, SECOND) for p in found["secondPeaks"]]:
            if place is not None and place in by_number:
                by_number[place]["INTEG"] |= flag
    return rows, found


def minus(a, b):
    return [x - y for x, y in zip(a, b)]


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def emission(fixes, microphone, received, celsius):
    """When the sound that arrives at `received` was emitted, and its geometry; None if that
    was outside the times of `fixes`, an ascending list of (seconds after midnight, (x, y, z)).
    """
    c = 343.2 * math.sqrt((celsius + 273.15) / 293.15)
    times = [fixes[0][0]]
    for before, fix in zip(fixes, fixes[1:]):
        times.append(times[-1] + (fix[0] - before[0]) % DAY)
    places = [fix[1] for fix in fixes]
    received += DAY if received < times[0] else 0

    def place(t):
        k = next((k for k in range(len(times) - 2) if t < times[k + 1]), len(times) - 2)
        step = times[k + 1] - times[k]
        part = (t - times[k]) / step if step else 0.0
        return k, [a + part * (b - a) for a, b in zip(places[k], places[k + 1])]

    def late(t):
        return c * (received - t) - math.dist(place(t)[1], microphone)

    low, high = times[0], times[-1]
    if len(fixes) < 2 or late(low) < 0 or late(high) > 0:
        return None
    for _ in range(200):
        middle = (low + high) / 2
        low, high = (middle, high) if late(middle) > 0 else (low, middle)
    k, source = place(high)
    moving = [i for i in range(len(places) - 1) if places[i] != places[i + 1]]
    k = min(moving, key=lambda i: (max(times[i] - high, high - times[i + 1], 0), i))
    way = minus(places[k + 1], places[k])
    way = [x / math.sqrt(dot(way, way)) for x in way]
    line = minus(microphone, source)
    distance = math.sqrt(dot(line, line))
    theta = math.degrees(math.acos(max(-1.0, min(1.0, dot(way, line) / distance))))
    if way[0] == 0 and way[1] == 0:
        beta = 0.0
    else:
        across = math.hypot(way[0], way[1])
        left = [-way[1] / across, way[0] / across, 0.0]
        down = [way[2] * way[0] / across, way[2] * way[1] / across, -across]
        beta = math.degrees(cmath.phase(complex(dot(line, down), dot(line, left))))
    return {
        "Te": high % DAY,
        "Tprope": received - high,
        "SRe": distance,
        "THETAe": theta,
        "BETAe": beta,
        "Pe": source,
    }
