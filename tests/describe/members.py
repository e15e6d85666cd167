"""Compares the description in aq/describe with the public headers: `PROGRAM ROOT HEADER...`.

Each public member of a class must be described with the same argument counts, and each member of an
enumeration with the same value; nothing else may be described. The helpers listed here are exempt.
"""

import collections
import pathlib
import re
import subprocess
import sys

from clang import cindex

# Helpers that are not part of the interface. Every other public member must be described, except
# constructors, destructors and operators.
HELPERS = {
    "begin", "end",
    "Collection.Emplace", "Collection.reserve",
    "AQ_Time.appendTODstring", "AQ_Time.assignSeconds",
    "AQ_Metric.contains", "AQ_Metric.remove",
    "AQ_Spectrum.assignCodes", "AQ_Spectrum.assignLevels", "AQ_Spectrum.hasMetric",
    "AQ_Spectrum.lazyTime", "AQ_Spectrum.levelCodes", "AQ_Spectrum.levelDoubles",
    "AQ_Spectrum.levelNumbers",
    "AQ_Spectrum.plainLevels", "AQ_Spectrum.timeValue",
    "AQ_Position.lazyTime",
    "AQ_MaskRow.codes", "AQ_MaskRow.decision", "AQ_MaskRow.renew", "AQ_MaskRow.store",
    "AQ_MaskMap.heldRow",
    "FileClass.fileInformation", "FileClass.observeHeader",
    "FileInformation.sourceDateTime",
    "AQ_DataINI.kTimingNotSet", "kTitle", "kBeginning",
}  # fmt: skip
met = set()  # the helpers that the headers declare
KINDS = cindex.CursorKind
CALLS = (KINDS.CXX_METHOD, KINDS.FUNCTION_TEMPLATE)
CLASSES = (KINDS.CLASS_DECL, KINDS.STRUCT_DECL, KINDS.CLASS_TEMPLATE)


def counts_of(member):
    if member.kind == KINDS.FIELD_DECL:
        return "field"
    if member.kind == KINDS.VAR_DECL:
        return "constant"
    return str(sum(child.kind == KINDS.PARM_DECL for child in member.get_children()))


def is_interface(cls, member):
    name = member.spelling
    if member.access_specifier != cindex.AccessSpecifier.PUBLIC:
        return False
    if name.startswith("operator") or name in (cls.spelling, "~" + cls.spelling):
        return False
    here = {name, f"{cls.spelling}.{name}"} & HELPERS
    met.update(here)
    return not here


def public_members(cls):
    """The public members of a class and its bases, by name, with their argument counts."""
    members = collections.defaultdict(set)
    for child in cls.get_children():
        if child.kind == KINDS.CXX_BASE_SPECIFIER:
            for name, forms in public_members(child.get_definition()).items():
                members[name] |= forms
        elif child.kind in (*CALLS, KINDS.FIELD_DECL, KINDS.VAR_DECL) and is_interface(cls, child):
            members[child.spelling].add(counts_of(child))
    return members


def declared(root, headers):
    """What the headers declare: the public members of each class, and values by `Enum.name`."""
    text = "".join(f"#include <aq/{header}>\n" for header in headers)
    unit = cindex.Index.create().parse(
        "all.cpp", ["-std=c++20", f"-I{root}"], unsaved_files=[("all.cpp", text)]
    )
    faults = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if faults:
        sys.exit("\n".join(faults))
    members, values = {}, {}
    for space in unit.cursor.get_children():
        if space.kind != KINDS.NAMESPACE or space.spelling != "aq":
            continue
        for item in space.get_children():
            if item.kind in CLASSES and item.is_definition():
                members[item.spelling] = public_members(item)
            if item.kind == KINDS.ENUM_DECL:
                values.update(
                    {f"{item.spelling}.{m.spelling}": m.enum_value for m in item.get_children()}
                )
    return members, values


def renamed(root):
    """Faults: members described under a name other than their own, or too few names found."""
    text = "".join(path.read_text() for path in sorted(root.glob("aq/describe/*.h")))
    pairs = re.findall(r'"(\w+)",\s*(?:static_cast<[^;]*?>\()?&?\w+::(\w+)\b', text)
    pairs += re.findall(r'\.member\("(\w+)", (?:\w+::)?(\w+),', text)
    if len(pairs) < 250:
        yield f"found only {len(pairs)} names in aq/describe"
    for name, member in pairs:
        if name != member:
            yield f"{member} is described as {name}"


VAGUE = re.compile(r"\bthat of the (file|program|list|metric)\b|^(well|other|misc)$", re.IGNORECASE)


def senseless(senses):
    """Members and parameters with a meaningless unit or description. A missing unit is not checked
    here: a number without one does not compile.
    """
    for name, what in senses.items():
        unit, text = what.split("|", 1)
        words = re.findall(r"[A-Za-z0-9%]+", text)
        least = 1 if "(" in name else 3 if "::" in name else 2
        if (
            VAGUE.search(unit)
            or VAGUE.search(text)
            or sum(map(len, words)) < 4
            or len(words) < least
        ):
            yield f"{name}: meaningless unit or description: [{unit}] {text}"


def main(program, root, *headers):
    lines = subprocess.run([program, "members"], check=True, capture_output=True, text=True).stdout
    told = {"member": {}, "value": {}, "number": {}, "sense": {}}
    for kind, name, what in (line.split(" ", 2) for line in lines.splitlines()):
        told[kind][name] = what
    members, values = declared(root, [h for h in headers if not h.startswith("describe/")])
    classes = {name for name in members if name.startswith("AQ_")}
    classes |= {name.split(".")[0] for name in told["member"]}
    found = {
        f"{cls}.{name}": " ".join(sorted(forms))
        for cls in sorted(classes)
        for name, forms in members.get(cls, {}).items()
    }
    enums = {name.split(".")[0] for name in told["value"]}
    found_values = {
        name: str(value)
        for name, value in values.items()
        if name.startswith("AQ_") or name.split(".")[0] in enums
    }
    faults = list(renamed(pathlib.Path(root)))
    for here, there in ((found, told["member"]), (found_values, told["value"])):
        for name in sorted(here.keys() | there.keys()):
            if here.get(name) != there.get(name):
                faults.append(f"{name}: headers {here.get(name)}, description {there.get(name)}")
    faults += [f"no header declares the helper {name}" for name in sorted(HELPERS - met)]
    faults += senseless(told["sense"])
    numbers = list(told["number"].values())
    faults += [f"class number {n} is used twice" for n in set(numbers) if numbers.count(n) > 1]
    print("\n".join(faults) or f"{len(found)} members and {len(found_values)} values, no faults")
    return 1 if faults or not found else 0


sys.exit(main(*sys.argv[1:]))
