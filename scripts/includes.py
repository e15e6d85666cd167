"""Checks who includes whom: rooms only look inwards, and no file reaches itself."""

import pathlib
import re
import sys

ALLOWED = {  # each room, and the rooms that it may know besides itself
    "core": {"detail"},
    "detail": {"core"},
    "text": {"core", "detail"},
    "masking": {"core", "detail", "text"},
    "spectral": {"core", "detail", "text", "masking"},
    "geometry": {"core", "detail", "text"},
    "noise": {"core", "detail", "text", "masking", "spectral", "geometry"},
    "files": {"core", "detail", "text", "masking", "spectral", "geometry"},
    "check": {"core", "detail", "text", "masking", "spectral", "geometry", "noise", "files"},
    "describe": {"core", "masking", "spectral", "geometry", "noise", "files"},
}
# A variant, a time and the dates of files have text forms: these sources, not their headers, use them.
WITH_TEXT = {"aq/core/variant.cpp", "aq/core/time.cpp", "aq/core/file_information.cpp"}


def includes(root):
    found = {}
    for path in sorted(root.rglob("*.[hc]*")):
        name = f"aq/{path.relative_to(root).as_posix()}"
        found[name] = re.findall(r'#include "(aq/[^"]+)"', path.read_text())
    return found


def circle_from(start, graph):
    """The files on a way from `start` back to it, or nothing."""
    seen, ways = set(), [[start]]
    while ways:
        way = ways.pop()
        for target in graph.get(way[-1], []):
            if target == start:
                return way + [start]
            if target not in seen:
                seen.add(target)
                ways.append(way + [target])
    return None


def main():
    graph = includes(pathlib.Path(sys.argv[1]))
    faults = []
    for name, targets in graph.items():
        room = name.split("/")[1]
        for target in targets:
            if target not in graph:
                faults.append(f"{name} includes {target}, which is not there")
            other = target.split("/")[1]
            if room in ALLOWED and other != room and other not in ALLOWED[room]:
                if name in WITH_TEXT and other == "text":
                    continue
                faults.append(f"{name} may not include {target}")
        circle = circle_from(name, graph)
        if circle:
            faults.append("circle: " + " > ".join(circle))
    print("\n".join(faults) or f"{len(graph)} files, no fault")
    return 1 if faults or not graph else 0


sys.exit(main())
