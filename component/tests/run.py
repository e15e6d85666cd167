"""Registers the component under wine, drives it with each client, and unregisters it.
Arguments: WINE DLL CLIENT DATA WORK."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

wine, dll, client, data, work = sys.argv[1:6]
work = pathlib.Path(work).resolve()
shutil.rmtree(work / "files", ignore_errors=True)
(work / "files").mkdir(parents=True)
os.environ.update(
    LC_ALL="C.UTF-8",
    WINEPREFIX=str(work / "prefix"),
    WINEDEBUG="-all",
    WINEDLLOVERRIDES="mscoree,mshtml=",
)
failures = []


def run(*command):
    """The output of a Windows program, whose exit status is unreliable."""
    said = subprocess.run([wine, *map(str, command)], capture_output=True, timeout=300)
    return said.stdout.decode("utf-8", "replace").replace("\r", "")


def windows(path):
    return "Z:" + str(pathlib.Path(path).resolve()).replace("/", "\\")


def expect(what, holds, said=""):
    print(
        ("ok      " if holds else "FAILED  ") + what,
        said if not holds else "",
        sep="\n" * (not holds),
    )
    if not holds:
        failures.append(what)


def drive(what, *command):
    """Expects a line that reports zero failures; a script that stops early prints no such line."""
    said = run(*command)
    ended = re.search(r"^(\d+) passed, 0 failed$", said, re.MULTILINE)
    expect(f"{what}: {ended.group(1) if ended else 'not all'} passed", ended, said)


def keys(scope):
    return int(run(client, "keys", scope).split()[0])


run("wineboot", "--init")
here = pathlib.Path(__file__).parent
example = here.parents[1] / "examples/fly_over.vbs"
expect("nothing is registered at first", keys("machine") + keys("user") == 0)
run("regsvr32", "/s", windows(dll))
expect("registered for the machine", keys("machine") > 100)
drive("keys of the machine", client, "values", "machine", windows(dll))
drive("C++", client, windows(data))
said = subprocess.run([wine, client, "forget", windows(data)], capture_output=True)
expect(
    "a host that leaves objects unreleased ends normally",
    said.returncode == 0 and b"forgotten" in said.stdout,
    said.stdout,
)
common = (here / "common.vbs").read_text()  # wine's script host cannot include files
for script in sorted([*here.glob("*.vbs"), *here.glob("*.js")]):
    if script.name == "common.vbs":
        continue
    whole = work / script.name
    whole.write_text((common if script.suffix == ".vbs" else "") + script.read_text())
    drive(
        script.name,
        "cscript",
        "//nologo",
        windows(whole),
        windows(data),
        windows(work / "files"),
        "\u0416",
        "Caf\u00e9",
    )
said = run("cscript", "//nologo", *map(windows, (example, example.parent / "data", work / "files")))
expect("the example", "EPNL 97.16" in said and said.endswith("error 5: no record 500\n"), said)
print(run(client, "speed"), end="")  # only printed: ratios vary too much for a limit
run("regsvr32", "/s", "/u", windows(dll))
expect("nothing is left on the machine", keys("machine") == 0)
run("regsvr32", "/s", "/n", "/i:user", windows(dll))
expect("registered for the user", keys("user") > 100)
drive("keys of the user", client, "values", "user", windows(dll))
run("regsvr32", "/s", "/u", "/n", "/i:user", windows(dll))
expect("nothing is left for the user", keys("user") + keys("machine") == 0)
subprocess.run([os.environ.get("WINESERVER", "wineserver"), "--kill"])  # this prefix only
sys.exit(bool(failures))
