"""Tests the pages of `aqdata report` in a browser: report_test.py PROGRAM PROJECT [SCREENSHOTS]

Chromium runs headless, driven by Debian's selenium. If a folder SCREENSHOTS is given, it
receives screenshots of the pages and PDF files of the printed pages.
"""

import base64
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

PROGRAM, PROJECT = (str(pathlib.Path(argument).resolve()) for argument in sys.argv[1:3])
SHOTS = pathlib.Path(sys.argv[3]).resolve() if len(sys.argv) > 3 else None
SAMPLES = pathlib.Path(PROJECT) / "examples" / "data"
HOSTILE = [
    "</script><script>window.hacked=1</script>",
    '"><img src=x onerror=window.hacked=1>',
    "<!--<script>",
    "\u202egnorw && <b>bold</b> \\u003c &lt;",
    "]]> \x01\x1b[31m\x7f\u2028\u2029 \udcff",  # ends with a byte that is not UTF-8
    "w" * 400,
]
HOSTILE_NAME = '<img src=x onerror=window.hacked=1>"&\u2028'
TEXTS = "Name|ID|Code|By|File|ReferenceTimeType"  # endings of the keywords whose values are text
faults = []


def expect(what, found, wanted):
    if found != wanted:
        faults.append(f"{what}: expected {wanted!r}, found {found!r}")


def run(*arguments, status=0):
    done = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True)
    expect(f"{arguments}: status", done.returncode, status)
    return done.stdout


def season(folder):
    """Fills a folder with four runs: the sample with its companion files, an altered copy without
    them, a damaged one that cannot be read, and one whose file names and headers have markup and
    script in them.
    """
    shutil.copytree(SAMPLES, folder, dirs_exist_ok=True)
    text = (folder / "fly-over.sth.csv").read_text()
    odd = text.replace("61.51", "9999", 1).replace("61.48", "61.4875", 1)
    (folder / "alone.sth.csv").write_text(odd)
    (folder / "damaged.sth.csv").write_text(text.replace("61.51", "6x.2", 1))
    track = str(folder / "track.pth.csv")
    run("convert", str(folder / "fly-over.tspi.csv"), "-o", track)
    sample = (str(folder / "fly-over.sth.csv"), track, str(folder / "fly-over.mic.csv"))
    geometry = ("--records", "8:50", "--celsius", "20", "-o", str(folder / "x.gth.csv"))
    run("geometry", *sample, *geometry)
    for name in (
        "fly-over.sth",
        "fly-over.mask",
        "fly-over.ssr",
        "fly-over.mic",
        "track.pth",
        "x.gth",
    ):
        (folder / f"{HOSTILE_NAME}.{name.split('.')[1]}.csv").write_text(
            hostile((folder / f"{name}.csv").read_text()), errors="surrogateescape"
        )


def hostile(text):
    """The text with all of HOSTILE in the fields that TEXTS selects, in a comment and in an
    `OtherRecords` line.
    """
    words = " ".join(HOSTILE)
    text = re.sub(rf"^(\w*({TEXTS}))\*\*,.*", lambda m: f"{m[1]}**,{words}", text, flags=re.M)
    text = re.sub(r"^OtherRecords\*\*,0", lambda m: f"OtherRecords**,1\n{words}", text, flags=re.M)
    count = re.search(r"^NumberOfCommentLines\*\*,(\d+)", text, flags=re.M)
    more = f"NumberOfCommentLines**,{int(count[1]) + 1}\n{words}"
    return text[: count.start()] + more + text[count.end() :]


class Browser:
    def __init__(self):
        options = webdriver.ChromeOptions()
        for flag in ("headless=new", "no-sandbox", "disable-gpu", "hide-scrollbars"):
            options.add_argument(f"--{flag}")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options)

    def open(self, page, width=1024, height=900, dark=False):
        self.driver.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride",
            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False},
        )
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [scheme]})
        self.driver.get("about:blank")
        self.driver.get(pathlib.Path(page).as_uri())
        self.settle()

    def settle(self):
        """Gives the page time to draw: two animation frames and 50 ms."""
        self.driver.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(() => "
            "setTimeout(done, 50)))"
        )

    def js(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def all(self, css):
        return self.driver.find_elements(By.CSS_SELECTOR, css)

    def one(self, css):
        return self.driver.find_element(By.CSS_SELECTOR, css)

    def keys(self, css, *keys):
        self.one(css).send_keys(*keys)
        self.settle()

    def shoot(self, name):
        if not SHOTS:
            return
        SHOTS.mkdir(exist_ok=True)
        size = self.driver.execute_cdp_cmd("Page.getLayoutMetrics", {})["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": min(size["height"], 4000)}
        shot = self.driver.execute_cdp_cmd(
            "Page.captureScreenshot",
            {"clip": {**clip, "scale": 1}, "captureBeyondViewport": True},
        )
        (SHOTS / f"{name}.png").write_bytes(base64.b64decode(shot["data"]))

    def pdf(self, name):
        made = self.driver.execute_cdp_cmd("Page.printToPDF", {"printBackground": True})
        data = base64.b64decode(made["data"])
        if SHOTS:
            SHOTS.mkdir(exist_ok=True)
            (SHOTS / f"{name}.pdf").write_bytes(data)
        return len(re.findall(rb"/Type\s*/Page\b", data))

    def check_quiet(self, what):
        """Checks that the page has written nothing to the console and made no requests."""
        log = [entry["message"] for entry in self.driver.get_log("browser")]
        expect(f"{what}: console", log, [])
        entries = self.js("return performance.getEntriesByType('resource').map((e) => e.name)")
        expect(f"{what}: requests", entries, [])


PICTURES = ["spectrogram", "levels", "spectrum", "track", "height", "geometry"]
INK = """return [...document.querySelectorAll('.picture')].map((figure) => {
  const canvas = figure.querySelector('canvas:not([aria-hidden])');
  const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
  const colours = new Map();
  for (let i = 0; i < data.length; i += 4) {
    const key = data[i] << 16 | data[i + 1] << 8 | data[i + 2];
    if (data[i + 3] > 200) colours.set(key, (colours.get(key) ?? 0) + 1);
  }
  return [...figure.classList][1] + ':' + ([...colours.values()].filter((n) => n > 60).length > 2);
})"""
NAMELESS = """return [...document.querySelectorAll('button, input, [role], [tabindex], canvas')]
  .filter((e) => !e.closest('[aria-hidden], .uplot') && !e.getAttribute('aria-label')
    && !e.textContent.trim() && !e.closest('label')).map((e) => e.outerHTML)"""


def readout(browser):
    return browser.one(".readout").text


def marker(browser):
    return browser.js(
        "return parseFloat(document.querySelector('.spectrogram .marker').style.left)"
    )


def check_cursor(browser):
    """The mouse and the keyboard move the cursor in all charts and in the table."""
    plot = ".spectrogram .plot"
    browser.keys(plot, Keys.HOME, Keys.ARROW_RIGHT)
    expect("keys", "record 2 \u00b7 14:30:00.75" in readout(browser), True)
    browser.keys(plot, Keys.ARROW_UP)
    expect("a band", "50 Hz: 61.60 dB, masked" in readout(browser), True)
    now = browser.js(
        "return [...document.querySelectorAll('[role=slider]')].map((e) => e.ariaValueNow)"
    )
    expect("the cursor in all charts", now, ["2"] * 4)
    row = browser.one(".records [aria-current]").text.split()
    expect("the table's row", row[:2], ["2", "14:30:00.75"])
    label = browser.one(".spectrum .plot").get_attribute("aria-label")
    expect("the spectrum's label", label, f"Spectrum of {readout(browser)}")
    before = marker(browser)
    over = browser.one(".levels .u-over")
    ActionChains(browser.driver).move_to_element(over).perform()
    browser.settle()
    expect("the mouse", 28 < int(readout(browser).split()[1]) < 33, True)
    expect("the marker", marker(browser) > before + 50, True)


def check_zoom(browser):
    def apart():
        browser.keys(".levels .plot", Keys.HOME, *[Keys.ARROW_RIGHT] * 20)
        low = marker(browser)
        browser.keys(".levels .plot", Keys.ARROW_RIGHT)
        return marker(browser) - low

    whole = apart()
    browser.keys(".levels .plot", "+")
    expect("zoom by key", round(apart() / whole, 1), 2.0)
    browser.keys(".levels .plot", "0")
    expect("zooming out by key", round(apart() / whole, 1), 1.0)
    over = browser.one(".levels .u-over")
    width = over.size["width"]
    ActionChains(browser.driver).move_to_element_with_offset(
        over, -width // 4, 0
    ).click_and_hold().move_by_offset(width // 4, 0).move_by_offset(
        width // 4, 0
    ).release().perform()
    browser.settle()
    expect("zoom by dragging", 1.8 < apart() / whole < 2.2, True)
    ActionChains(browser.driver).double_click(over).perform()
    browser.settle()
    expect("zooming out by double-click", round(apart() / whole, 1), 1.0)
    for button in browser.all(".toolbar button"):
        if button.text == "10 dB down":
            button.click()
    browser.settle()
    expect("the 10 dB-down part", apart() / whole > 2, True)


def check_values(browser, folder):
    """The record table shows the values that `aqdata metrics` prints."""
    mask = str(folder / "fly-over.mask.csv")
    found = json.loads(run("metrics", "--json", "--mask", mask, str(folder / "fly-over.sth.csv")))
    rows = browser.js(
        "return [...document.querySelectorAll('.records tbody tr')]"
        ".map((row) => [...row.cells].map((cell) => cell.textContent))"
    )
    names = ["AWT", "CWT", "DWT", "OA", "PNL", "PNLT", "TONECOR"]
    wanted = [[str(r["record"])] + [f"{r[name]:.2f}" for name in names] for r in found["records"]]
    expect("metrics", [row[:1] + row[3:10] for row in rows], wanted)
    figures = browser.one(".figures").text
    expect("EPNL", f"EPNL {found['event']['EPNL']:.2f} EPNdB" in figures, True)
    begin = found["event"]["first"]
    expect("the first record", rows[begin - 1][-1], "first")


def check_run(browser, folder):
    page = folder / "run.html"
    run("report", str(folder / "fly-over.sth.csv"), "--celsius", "20", "-o", str(page))
    browser.open(page)
    expect("charts", browser.js(INK), [f"{name}:true" for name in PICTURES])
    expect("elements without a name", browser.js(NAMELESS), [])
    check_values(browser, folder)
    check_cursor(browser)
    check_zoom(browser)
    expect("printed pages", browser.pdf("run"), 2)
    browser.check_quiet("a run")
    for dark in (False, True):
        for width in (390, 1024, 1920):
            browser.open(page, width, dark=dark)
            wide = browser.js("return document.documentElement.scrollWidth")
            expect(f"{width} wide", wide <= width, True)
            browser.shoot(f"run-{width}-{'dark' if dark else 'light'}")
    shade = browser.js("return getComputedStyle(document.body).backgroundColor")
    expect("dark", shade, "rgb(20, 23, 26)")
    browser.check_quiet("widths")


def names(browser):
    shown = [e for e in browser.all(".season tbody th") if e.is_displayed()]
    return [e.get_property("textContent") for e in shown]


def check_season(browser, folder):
    page = folder / "season.html"
    run("report", str(folder), "-o", str(page), status=2)
    browser.open(page)
    browser.shoot("season-1024")
    runs = [f"{HOSTILE_NAME}.sth.csv", "alone.sth.csv", "damaged.sth.csv", "fly-over.sth.csv"]
    expect("runs", sorted(names(browser)), runs)
    for sign in ("ascending", "descending"):
        browser.all(".sort")[0].click()
        expect("sorted", browser.one("[aria-sort]").get_attribute("aria-sort"), sign)
    expect("the last run first", names(browser)[0], "fly-over.sth.csv")
    browser.keys("input[type=search]", "damaged")
    expect("filtered", names(browser), ["damaged.sth.csv"])
    browser.keys("input[type=search]", *[Keys.BACKSPACE] * 7)
    for link in browser.all(".season a"):
        if link.get_property("textContent") == runs[0]:
            link.click()
            break
    browser.settle()
    check_hostile(browser, "details[open]")
    browser.keys("body", "n")  # to the run without companion files
    browser.keys("details[open] .spectrogram .plot", Keys.HOME, Keys.ARROW_UP)
    expect("9999", readout(browser)[-21:], "50 Hz: no valid level")
    browser.keys("details[open] .spectrogram .plot", Keys.ARROW_UP)
    expect("more decimals", readout(browser)[-15:], "63 Hz: 61.49 dB")
    browser.keys("body", "nn")  # past the damaged run, to the sample
    titles = browser.js(
        "return [...document.querySelectorAll('details[open] h2')].map(h => h.textContent)"
    )
    expect("the open run", titles, ["fly-over.sth.csv"])
    expect("printed pages of a season", browser.pdf("season"), 3)
    browser.check_quiet("a season")
    page = folder / "hostile.html"
    run("report", str(folder / f"{HOSTILE_NAME}.sth.csv"), "-o", str(page))
    for width in (390, 1920):
        browser.open(page, width)
        check_hostile(browser, "body")
        browser.shoot(f"hostile-{width}")
        wide = browser.js("return document.documentElement.scrollWidth")
        expect(f"hostile, {width} wide", wide <= width, True)
    browser.check_quiet("hostile")
    page = folder / "season.html"
    for width in (390, 1920):
        browser.open(page, width, dark=width == 390)
        browser.shoot(f"season-{width}")
        wide = browser.js("return document.documentElement.scrollWidth")
        expect(f"{width} wide", wide <= width, True)


def check_hostile(browser, place):
    """Markup and script from files are shown as text."""
    rows = browser.js(
        "return [...document.querySelector(arguments[0]).querySelectorAll('dd, pre, h2')]"
        ".map((e) => e.textContent)",
        place,
    )
    whole = " ".join(HOSTILE).replace("\udcff", "\ufffd").replace('"', "")  # without quotes
    expect("fields shown as text", sum(whole in row.replace('"', "") for row in rows), 8)
    pictures = browser.js(
        "return document.querySelector(arguments[0]).querySelectorAll('.picture').length", place
    )
    expect("charts of a hostile run", pictures, len(PICTURES))
    expect("script from a file", browser.js("return window.hacked ?? null"), None)
    expect("markup from a file", len(browser.all("img, details b:not(.figures b)")), 0)
    title = browser.one(f"{place} :is(h1, h2)").get_property("textContent")
    expect("the title", title, f"{HOSTILE_NAME}.sth.csv")


with tempfile.TemporaryDirectory() as name:
    place = pathlib.Path(name)
    season(place)
    browser = Browser()
    try:
        check_run(browser, place)
        check_season(browser, place)
    finally:
        browser.driver.quit()
print("\n".join(faults) or "no faults")
sys.exit(1 if faults else 0)
