"""Checks that each library folder includes only from the folders listed for it, and that
neither C++ includes nor Python imports form a cycle.
"""

import ast
import pathlib
import re
import sys

ALLOWED = {  # each folder, and the other folders that it may use
    "core": {"detail"},
    "detail": {"core"},
    "text": {"core", "detail"},
    "sdf": {"core", "detail", "text"},
    "masking": {"core", "detail", "text"},
    "spectral": {"core", "detail", "text", "masking"},
    "geometry": {"core", "detail", "text"},
    "noise": {"core", "detail", "text", "masking", "spectral", "geometry"},
    "files": {"core", "detail", "text", "sdf", "masking", "spectral", "geometry"},
    "check": {"core", "detail", "text", "sdf", "masking", "spectral", "geometry", "noise", "files"},
    "describe": {"core", "masking", "spectral", "geometry", "noise", "files", "check"},
}
# Variants, times and file dates convert to text, so these sources may use aq/text; their headers
# may not.
WITH_TEXT = {"aq/core/variant.cpp", "aq/core/time.cpp", "aq/core/file_information.cpp"}


def includes(root):
    found = {}
    for path in sorted(root.rglob("*.[hc]*")):
        name = f"aq/{path.relative_to(root).as_posix()}"
        found[name] = re.findall(r'#include "(aq/[^"]+)"', path.read_text())
    return found


def imports(root):
    """The modules that each module of a package imports, including imports in functions."""
    modules = {path.stem: f"{root.name}/{path.name}" for path in sorted(root.glob("*.py"))}
    modules.pop("__init__", None)  # it imports all modules
    found = {}
    for stem, name in modules.items():
        known = set()
        for node in ast.walk(ast.parse((root / f"{stem}.py").read_text())):
            if isinstance(node, ast.ImportFrom) and node.level == 1:
                known |= {node.module} if node.module else {alias.name for alias in node.names}
        found[name] = [modules[each] for each in sorted(known) if each in modules]
    return found


def circle_from(start, graph):
    """The files on a circular path from `start`; None if there is no such path."""
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


def room_faults(graph):
    for name, targets in graph.items():
        room = name.split("/")[1]
        for target in targets:
            if target not in graph:
                yield f"{name} includes {target}, which does not exist"
            other = target.split("/")[1]
            if room in ALLOWED and other != room and other not in ALLOWED[room]:
                if name not in WITH_TEXT or other != "text":
                    yield f"{name} may not include {target}"


def main():
    """Arguments: the library's folder, then the folders of Python packages."""
    library, *packages = map(pathlib.Path, sys.argv[1:])
    graph = includes(library)
    faults = list(room_faults(graph))
    graphs = [graph, *map(imports, packages)]
    for each in graphs:
        ways = filter(None, (circle_from(name, each) for name in each))
        faults += ["circle: " + " > ".join(way) for way in ways]
    count = sum(map(len, graphs))
    print("\n".join(faults) or f"{count} files, no faults")
    return 1 if faults or not all(graphs) else 0


sys.exit(main())
