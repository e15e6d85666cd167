"""Generates histories and flights, computes their metrics and geometry with the library
(print_metrics) and with metrics.py, and compares.

    compare_metrics.py PROGRAM [COUNT] [--seed N]

Values must agree to 1e-9 dB, 1e-9 s, 1e-6 m and 1e-4 degrees. Prints the first ten
differences, each with its case as SEED-INDEX."""

import argparse
import concurrent.futures
import math
import pathlib
import random
import shlex
import subprocess
import sys

import metrics

BATCH = 100
NONE = -12345.0
NAMES = ["AWT", "CWT", "DWT", "OA", "PNL", "PNLT", "TONECOR", "TONEBND", "LGB", "INTEG"]
LEVEL, SECONDS, METRES, DEGREES = 1e-9, 1e-9, 1e-6, 1e-4  # angles are in single precision


def level(rng, mean):
    """A level: usually about `mean` dB with two decimals, as in files, but sometimes an odd one."""
    kind = rng.random()
    if kind < 0.9:
        return round(rng.gauss(mean, 3), 2)
    if kind < 0.96:
        return rng.uniform(mean - 60, mean + 20)
    return rng.choice([9999.0, math.nan, 0.0, -20.0, 200.0, 46.0, 87.3, round(mean)])


def history(rng):
    """Records of a passing aircraft, and their map or None."""
    low, high = rng.choice([(17, 40)] * 6 + [(10, 43), (2, 50), (19, 35), (20, 40), (30, 30)])
    count = rng.choice([1, 2, 3, 5, 12, 30])
    number, seconds = rng.choice([1, 1, 1, -3, 50]), rng.choice([0.0, 36000.25, 86395.0])
    closest, top, slope = rng.uniform(0, count), rng.uniform(40, 110), rng.uniform(0, 8)
    regular, gaps = rng.random() < 0.7, rng.random() < 0.1
    map_chance = rng.choice([None, None, 0.0, 0.05, 0.4])
    records, masks = [], None if map_chance is None else {}
    for k in range(count):
        mean = top - slope * abs(k - closest)
        levels = {
            band: level(rng, mean - abs(band - 27) * rng.choice([0.5, 1]))
            for band in range(low, high + 1)
        }
        band = rng.randint(low, high)
        if rng.random() < 0.5 and levels[band] < 200:  # adds a tone
            levels[band] = round(levels[band] + rng.uniform(0, 30), 2)
        for band in [b for b in levels if rng.random() < rng.choice([0, 0, 0, 0.05])]:
            del levels[band]
        if rng.random() < 0.03:
            levels = dict.fromkeys(levels, 9999.0)
        records.append({"number": number, "seconds": seconds, "levels": levels})
        if masks is not None and rng.random() < 0.95:
            masks[number] = {
                band: (rng.randint(1, 3), rng.choice([0, 0, 0, 1, 4, 6]))
                if rng.random() < map_chance
                else (0, rng.choice([0, 0, 2]))
                for band in range(17, 41)
                if rng.random() < 0.95
            } or {30: (0, 0)}
        number += rng.choice([1, 2, 5]) if gaps else 1
        seconds = (seconds + (0.5 if regular else rng.uniform(0.01, 3))) % metrics.DAY
    return records, masks


def history_text(records, masks):
    words = ["history", len(records), int(masks is not None)]
    for record in records:
        words += [record["number"], repr(record["seconds"]), len(record["levels"])]
        for band, value in record["levels"].items():
            words += [band, repr(value)]
        row = (masks or {}).get(record["number"], {})
        words.append(len(row))
        for band, (mode, adjustment) in row.items():
            words += [band, mode, adjustment]
    return " ".join(map(str, words)) + "\n"


def metrics_opinion(records, masks):
    """The values that print_metrics must print, each with its tolerance."""
    rows, event = metrics.metrics(records, masks)
    lines = []
    for record, row in zip(records, rows):
        values = [NONE if row[name] is None else row[name] for name in NAMES]
        lines.append([(record["number"], 0)] + [(value, LEVEL) for value in values])
    last = []
    if event:
        places = [event["maximum"], event["first"], event["last"]]
        last = [(NONE if place is None else place, 0) for place in places]
        last += [
            (event[name], LEVEL)
            for name in ("pnltm", "epnl", "epnlWithBandSharing", "duration", "bandSharing")
        ]
        last += [(place, 0) for place in event["secondPeaks"]]
    return lines + [last]


def flight(rng):
    """Fixes, a microphone, a temperature and the times of records."""
    start = rng.choice([0.0, 36000.0, 86380.0])
    place = [rng.uniform(-3000, 3000), rng.uniform(-500, 500), rng.uniform(50, 1000)]
    speed = [rng.uniform(-150, 150), rng.uniform(-150, 150), rng.choice([0, 0, rng.uniform(-9, 9)])]
    fixes, seconds = [], start
    for _ in range(rng.choice([2, 3, 10, 40])):
        fixes.append((seconds % metrics.DAY, tuple(place)))
        step = rng.choice([0.1, 0.5, rng.uniform(0.05, 5)])
        hovers = rng.random() < 0.1
        place = [x if hovers else x + step * (v + rng.gauss(0, 2)) for x, v in zip(place, speed)]
        seconds += step
    microphone = [rng.uniform(-500, 500), rng.uniform(-500, 500), rng.choice([0, 1.2, 10])]
    times = [(start + rng.uniform(-2, seconds - start + 12)) % metrics.DAY for _ in range(20)]
    return fixes, microphone, rng.uniform(-20, 40), times


def flight_text(fixes, microphone, celsius, times):
    words = ["flight", len(fixes)]
    for seconds, place in fixes:
        words += [repr(seconds), *map(repr, place)]
    words += [*map(repr, microphone), repr(celsius), len(times), *map(repr, times)]
    return " ".join(map(str, words)) + "\n"


def flight_opinion(fixes, microphone, celsius, times):
    lines = []
    if all(place == fixes[0][1] for _, place in fixes):
        return None  # the source does not move: nothing to compare
    for number, received in enumerate(times, start=1):
        point = metrics.emission(fixes, microphone, received, celsius)
        if point:
            lines.append(
                [
                    (number, 0),
                    (point["Te"], SECONDS),
                    (point["Tprope"], SECONDS),
                    (point["SRe"], METRES),
                    (point["THETAe"], DEGREES),
                    (point["BETAe"], DEGREES),
                    *((x, METRES) for x in point["Pe"]),
                ]
            )
    return lines


def made(seed):
    """The input for the program and the expected values of one case."""
    rng = random.Random(f"metrics {seed}")
    if rng.random() < 0.9:
        given = history(rng)
        return history_text(*given), metrics_opinion(*given)
    given = flight(rng)
    return flight_text(*given), flight_opinion(*given)


def agrees(line, answer):
    numbers = [float(word) for word in answer.split()[answer.startswith("event") :]]
    return len(numbers) == len(line) and all(
        abs(number - value) <= tolerance for number, (value, tolerance) in zip(numbers, line)
    )


def compare(program, seeds):
    cases = [(seed, *made(seed)) for seed in seeds]
    run = subprocess.run(
        [program] if pathlib.Path(program).exists() else shlex.split(program),
        input="".join(text for _, text, _ in cases),
        capture_output=True,
        encoding="ascii",
        check=True,
    )
    differences = []
    for (seed, _, opinion), answer in zip(cases, run.stdout.split("end\n")):
        lines = answer.splitlines()
        if opinion is None:
            continue
        if len(lines) != len(opinion):
            differences.append(f"case {seed}: not {len(opinion)} lines; the last is {lines[-1:]}")
        for line, found in zip(opinion, lines):
            if not agrees(line, found):
                values = " ".join(f"{value:.12g}" for value, _ in line)
                differences.append(f"case {seed}:\n  second:  {values}\n  library: {found}")
    return differences


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("count", type=int, nargs="?", default=10000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    seeds = [f"{options.seed}-{i}" for i in range(options.count)]
    differences = []
    with concurrent.futures.ProcessPoolExecutor(2) as pool:
        batches = [seeds[i : i + BATCH] for i in range(0, len(seeds), BATCH)]
        for found in pool.map(compare, [options.program] * len(batches), batches):
            differences += found
    print(*differences[:10], sep="\n", end="\n" * bool(differences))
    print(f"{options.count} cases, {len(differences)} lines differ")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
