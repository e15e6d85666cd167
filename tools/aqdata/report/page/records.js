import { clock, decimals } from "./data.js";
import { element } from "./dom.js";

const PAGE = 500; // rows at a time
const ROWS_ON_PAPER = 30;
const FLAGS = [
  [1, "max"],
  [2, "first"],
  [4, "last"],
  [8, "2nd"],
];

const METRIC_COLUMNS = [
  ["AWT", "LA"],
  ["CWT", "LC"],
  ["DWT", "LD"],
  ["OA", "Overall"],
  ["PNL", "PNL"],
  ["PNLT", "PNLT"],
  ["TONECOR", "Tone"],
  ["TONEBND", "Tone band"],
  ["LGB", "Last good band"],
  ["INTEG", "Event"],
];

function cellText(run, name, place) {
  const value = run.metric(name, place);
  if (name === "TONEBND" && value > 0) return run.frequency(value);
  if (name === "LGB") return { 0: "all", 9999: "none" }[value] ?? run.frequency(value);
  if (name === "INTEG")
    return FLAGS.filter(([bit]) => value & bit)
      .map(([, text]) => text)
      .join(" ");
  if (name === "TONEBND") return "\u2013";
  return decimals(value);
}

/** The rows to print: as many of the 10 dB-down part as fit on the page. */
function onPaper(run) {
  const { event } = run.data;
  const place = (record, otherwise) => (record == null ? otherwise : run.placeOf(record));
  const few = run.count <= ROWS_ON_PAPER;
  const first = few ? 0 : place(event?.first, 0);
  const last = few ? run.count - 1 : place(event?.last, run.count - 1);
  const step = Math.ceil((last - first + 1) / ROWS_ON_PAPER);
  const places = new Set();
  for (let i = first; i <= last; i += step) places.add(i);
  const text = few
    ? ""
    : `Printed: ${step > 1 ? `one in ${step} of ` : ""}records ` +
      `${run.records[first]} to ${run.records[last]} of ${run.count}.`;
  return { places, text };
}

/** The metrics of every record; a click moves the cursor to its row. */
export class RecordTable {
  constructor(selection) {
    this.selection = selection;
    const { run } = selection;
    this.columns = METRIC_COLUMNS.filter(([name]) => run.metrics[name]);
    this.paper = onPaper(run);
    this.first = 0;
    this.body = element("tbody", { onclick: (event) => this.onClick(event) });
    this.scroller = element(
      "div",
      { class: "scroller", tabindex: 0, role: "region", "aria-label": "Records" },
      this.table(),
    );
    this.pager = run.count > PAGE ? this.makePager() : null;
    this.node = element(
      "figure",
      { class: "records" },
      element("figcaption", {}, element("span", { class: "title" }, "Records"), this.pager),
      element("p", { class: "paper-only" }, this.paper.text),
      this.scroller,
    );
    this.fill();
  }

  table() {
    const head = (text) => element("th", { scope: "col" }, text);
    const names = ["Record", "Time", "Relative (s)", ...this.columns.map(([, text]) => text)];
    return element(
      "table",
      {},
      element("caption", { class: "unseen" }, "Metrics by record; levels in dB"),
      element("thead", {}, element("tr", {}, ...names.map(head))),
      this.body,
    );
  }

  makePager() {
    const turn = (pages) => () => {
      this.first = Math.max(0, Math.min(this.selection.run.count - 1, this.first + pages * PAGE));
      this.first -= this.first % PAGE;
      this.fill();
    };
    this.range = element("span", {});
    return element(
      "span",
      { class: "pager" },
      element("button", { type: "button", onclick: turn(-1) }, "Previous rows"),
      this.range,
      element("button", { type: "button", onclick: turn(1) }, "Next rows"),
    );
  }

  fill() {
    const { run } = this.selection;
    const end = Math.min(run.count, this.first + PAGE);
    const rows = [];
    for (let place = this.first; place < end; place++) rows.push(this.row(place));
    this.body.replaceChildren(...rows);
    if (this.range)
      this.range.textContent = `${run.records[this.first]}\u2013${run.records[end - 1]}`;
    this.mark();
  }

  row(place) {
    const { run } = this.selection;
    const cells = [clock(run.time[place]), decimals(run.relative[place])];
    for (const [name] of this.columns) cells.push(cellText(run, name, place));
    return element(
      "tr",
      { "data-place": place, class: this.paper.places.has(place) ? "" : "screen-only" },
      element("th", { scope: "row" }, String(run.records[place])),
      ...cells.map((text) => element("td", {}, text)),
    );
  }

  onClick(event) {
    const row = event.target.closest("tr");
    if (row) this.selection.pick(Number(row.dataset.place));
  }

  mark() {
    this.body.querySelector("[aria-current]")?.removeAttribute("aria-current");
    const row = this.body.children[this.selection.place - this.first];
    row?.setAttribute("aria-current", "true");
    return row;
  }

  update(what) {
    if (what !== "cursor") return;
    const { place } = this.selection;
    if (place < this.first || place >= this.first + PAGE) {
      this.first = place - (place % PAGE);
      this.fill();
    }
    const row = this.mark();
    const { scroller } = this;
    const head = scroller.querySelector("thead").offsetHeight;
    if (row.offsetTop - head < scroller.scrollTop) scroller.scrollTop = row.offsetTop - head;
    const foot = row.offsetTop + row.offsetHeight - scroller.clientHeight;
    if (foot > scroller.scrollTop) scroller.scrollTop = foot;
  }
}
