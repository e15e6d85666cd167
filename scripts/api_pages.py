"""Writes the page of C++ classes and functions, grouped by public header, from Doxygen's XML:

    api_pages.py XML PAGE
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as tree

ROOT = pathlib.Path(__file__).resolve().parent.parent
TITLES = {
    "core": "Time, collections, errors",
    "spectral": "Spectra and histories",
    "masking": "Masking",
    "geometry": "Positions and geometry",
    "noise": "Noise metrics",
    "files": "Files",
    "check": "Checks",
}
BEGIN = """# C++ classes and functions

Every public class and function, from the headers; the [C++ API](cpp.md) lists the most important
ones.
"""


def public_headers():
    """The headers that aq.h includes and, through the list of formats, those of file classes, file
    headers and models.
    """
    found, queue = set(), ["aq/aq.h"]
    for header in queue:
        for name in re.findall(r'#include "(aq/[^"]+)"', (ROOT / header).read_text()):
            part = re.search(
                r"(data|header)_\w+\.h$|(microphone|file_kind|file_class|header_observer)\.h$", name
            )
            if name not in found and (header == "aq/aq.h" or part):
                found.add(name)
                queue.append(name)
    return found - {"aq/files/formats.h"}


def entries(xml):
    """Header and directive of each class, enumeration and function of the namespace."""
    space = tree.parse(xml / "namespaceaq.xml").getroot()
    for inner in space.iter("innerclass"):
        cls = tree.parse(xml / (inner.get("refid") + ".xml")).getroot().find("compounddef")
        name = inner.text
        if name.count("::") == 1 and "<" not in name:
            kind = "struct" if cls.get("kind") == "struct" else "class"
            directive = f".. doxygen{kind}:: {name}\n   :members:\n   :undoc-members:"
            yield cls.find("location").get("file"), directive
    for member in space.iter("memberdef"):
        name, kind = member.find("qualifiedname").text, member.get("kind")
        where = member.find("location").get("file")
        if kind == "enum":
            yield where, f".. doxygenenum:: {name}"
        elif kind == "function" and not name.startswith("aq::operator"):
            types = ("".join(p.find("type").itertext()) for p in member.iter("param"))
            yield where, f".. doxygenfunction:: {name}({', '.join(types)})"


def part_of(header):
    """The folder whose section lists a header; headers of aq/text are listed under files."""
    return "files" if header.startswith("aq/text/") else header.split("/")[1]


def main(xml, target):
    headers = public_headers()
    by_header = {}
    for header, directive in entries(pathlib.Path(xml)):
        by_header.setdefault(header, []).append(directive)
    page = [BEGIN]
    for folder, title in TITLES.items():
        page.append(f"\n## {title}\n")
        for header in sorted(headers & by_header.keys()):
            if part_of(header) == folder:
                directives = "\n\n".join(by_header[header])
                page.append(f"\n### {header}\n\n```{{eval-rst}}\n{directives}\n```\n")
    pathlib.Path(target).write_text("".join(page))


if __name__ == "__main__":
    main(*sys.argv[1:])
