import { card, findings, words } from "./card.js";
import { dataOf, element } from "./dom.js";
import { geometry } from "./geometry.js";
import { levels } from "./levels.js";
import { height, track } from "./path.js";
import { RecordTable } from "./records.js";
import { Run, Selection } from "./run.js";
import { spectrogram } from "./spectrogram.js";
import { spectrum } from "./spectrum.js";

const PAPER_WIDTH = 720; // width in CSS pixels that fits A4 and Letter
const PICTURES = [
  // name, chart, whether it takes half the width of the paper
  ["spectrogram", spectrogram, false],
  ["levels", levels, false],
  ["spectrum", spectrum, false],
  ["track", track, true],
  ["height", height, true],
  ["geometry", geometry, false],
];

/** The section of one run. Its charts exist between `open` and `close`. */
export class Section {
  constructor(number, summary, season) {
    this.number = number;
    this.summary = summary;
    this.season = season;
    this.body = element("div", { class: "body" });
    this.charts = [];
    this.shown = false;
  }

  open() {
    if (this.shown) return;
    this.shown = true;
    const data = dataOf(`run-${this.number}`);
    this.body.style.minHeight = "";
    if (data.failure)
      return this.body.replaceChildren(element("p", { class: "failure" }, data.failure));
    this.run = new Run(data, this.season.frequencies);
    if (this.run.count === 0) {
      return this.body.replaceChildren(
        card(this.run),
        findings(this.run),
        element("p", {}, "No records"),
      );
    }
    this.selection = new Selection(this.run);
    this.fill();
  }

  fill() {
    const { run, selection } = this;
    const hosts = PICTURES.filter(([, picture]) => picture.serves(run)).map(
      ([name, picture, half]) => ({ name, picture, half, host: element("div", { class: "plot" }) }),
    );
    const figure = ({ name, picture, host }) =>
      element("figure", { class: `picture ${name}` }, picture.caption(run), host);
    const toRecord = ({ record, band }) =>
      selection.pick(run.placeOf(record), band ?? selection.band);
    this.records = new RecordTable(selection);
    this.body.replaceChildren(
      element("div", { class: "about" }, card(run), words(run), findings(run, toRecord)),
      this.toolbar(),
      element("div", { class: "pictures" }, ...hosts.map(figure)),
      this.records.node,
    );
    this.charts = hosts.map(({ picture, host, half }) => ({
      host,
      half,
      chart: picture.mount(host, selection),
    }));
    for (const { chart } of this.charts) selection.onChange((what) => chart.update(what));
    selection.onChange((what) => this.records.update(what));
    selection.onChange(() => this.sayCursor());
    this.sayCursor();
    this.resizer = new ResizeObserver(() => this.fit());
    for (const { host } of this.charts) this.resizer.observe(host);
  }

  toolbar() {
    const { run, selection } = this;
    const button = (text, act) => element("button", { type: "button", onclick: act }, text);
    this.slider = element("input", {
      type: "range",
      min: 0,
      max: run.count - 1,
      "aria-label": "Record at the cursor",
      oninput: () => selection.pick(Number(this.slider.value)),
    });
    this.readout = element("p", { class: "readout" });
    return element(
      "div",
      { class: "toolbar" },
      this.readout,
      this.slider,
      button("Zoom in", () => selection.zoom(0.5)),
      button("Zoom out", () => selection.zoom(2)),
      button("Whole run", () => selection.showWhole()),
      run.data.event ? button("10 dB down", () => selection.showEvent()) : null,
      button("Print", () => this.print()),
    );
  }

  sayCursor() {
    const { run, selection } = this;
    const text = run.textOf(selection.place, selection.band);
    this.readout.textContent = text;
    this.slider.value = selection.place;
    this.slider.setAttribute("aria-valuetext", text);
  }

  /** Fits the charts to the page width, or to all or half of the paper. */
  fit(paper = false) {
    for (const { host, half, chart } of this.charts) {
      const width = paper ? (half ? PAPER_WIDTH / 2 - 6 : PAPER_WIDTH) : host.clientWidth;
      if (width > 0) chart.resize(width, paper);
    }
  }

  print() {
    this.root.classList.add("printed");
    document.body.classList.add("print-one");
    window.print();
    document.body.classList.remove("print-one");
    this.root.classList.remove("printed");
  }

  /** Releases the charts; the section keeps its height. */
  close() {
    if (!this.shown) return;
    this.shown = false;
    this.body.style.minHeight = `${this.body.offsetHeight}px`;
    this.resizer?.disconnect();
    for (const { chart } of this.charts) chart.destroy();
    this.charts = [];
    this.body.replaceChildren();
  }

  /** Redraws, for example in other colours. */
  redraw() {
    const { selection, shown } = this;
    if (!shown || !selection) return;
    this.close();
    this.open();
    this.selection.pick(selection.place, selection.band);
    this.selection.show(...selection.range);
  }
}
