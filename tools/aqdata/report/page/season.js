import { decimals, unpack } from "./data.js";
import { canvas, dataOf, element } from "./dom.js";
import { Run } from "./run.js";
import { colourLimits, paintLevels } from "./spectrogram.js";

const THUMBNAIL = { width: 110, height: 30 };

const number = (value, digits) => (value == null ? "\u2013" : decimals(value, digits));

function findingsText({ failure, errors, warnings }) {
  if (failure) return "not read";
  const counted = (count, what) => (count ? [`${count} ${what}${count > 1 ? "s" : ""}`] : []);
  return [...counted(errors, "error"), ...counted(warnings, "warning")].join(", ") || "none";
}

// For each column: heading, sort key, text, and whether it is a number.
const text = (key) => [(run) => run[key] ?? "", (run) => run[key] ?? "", false];
const RUN_COLUMNS = [
  ["EPNL", (run) => run.EPNL, (run) => (run.lower_bound ? "\u2265 " : "") + number(run.EPNL), true],
  ["PNLTM", (run) => run.PNLTM, (run) => number(run.PNLTM), true],
  ["LAmax", (run) => run.LAmax, (run) => number(run.LAmax), true],
  ["Begin", ...text("begin")],
  ["Records", (run) => run.records, (run) => number(run.records, 0), true],
  [
    "Findings",
    (run) => (run.failure ? Infinity : 1e6 * run.errors + run.warnings),
    findingsText,
    true,
  ],
  ["Microphone", ...text("microphone")],
  ["Project", ...text("project")],
];
const ALL = [["Run", (run) => run.name, null, false], ...RUN_COLUMNS];

const collator = new Intl.Collator("en", { numeric: true });

/** Rows without a value come last in either direction. */
function compared(a, b, sign) {
  const isNone = (value) => value == null || value === "";
  if (isNone(a) || isNone(b)) return Number(isNone(a)) - Number(isNone(b));
  return sign * (typeof a === "number" ? a - b : collator.compare(a, b));
}

function thumbnail(season, i) {
  const data = dataOf(`run-${i + 1}`);
  const picture = canvas(THUMBNAIL.width, THUMBNAIL.height);
  picture.setAttribute("aria-hidden", "true");
  if (data.failure) return picture;
  const run = new Run({ ...data, metrics: {}, background: null }, season.frequencies);
  const box = { left: 0, top: 0, width: picture.width, height: picture.height };
  if (run.count) paintLevels(picture.getContext("2d"), run, run.whole, colourLimits(run), box);
  return picture;
}

/** The table of all runs, which sorts by any column and filters by text. Calls `onReduce` with the
 * index of each run and whether it is shown. */
export class SeasonTable {
  constructor(season, onReduce) {
    this.season = season;
    this.onReduce = onReduce;
    this.order = { column: -1, sign: 1 };
    this.rows = season.runs.map((run, i) => this.row(run, i));
    this.body = element("tbody", {}, ...this.rows.map(({ node }) => node));
    this.heads = ALL.map(([name], column) => this.head(name, column));
    this.filter = element("input", {
      type: "search",
      "aria-label": "Show runs that contain",
      placeholder: "Filter runs \u2026",
      oninput: () => this.reduce(),
    });
    this.counter = element("span", { class: "muted", role: "status" });
    this.node = element(
      "section",
      { class: "season", "aria-label": "All runs" },
      element("div", { class: "toolbar" }, this.filter, this.counter),
      element(
        "div",
        { class: "scroller", tabindex: 0, role: "region", "aria-label": "Table of all runs" },
        this.table(),
      ),
    );
    this.reduce();
    this.watch();
  }

  table() {
    const [first, ...others] = this.heads;
    const picture = element("th", { scope: "col" }, "Spectrogram");
    return element(
      "table",
      {},
      element("caption", { class: "unseen" }, "All runs; click a heading to sort"),
      element("thead", {}, element("tr", {}, first, picture, ...others)),
      this.body,
    );
  }

  head(name, column) {
    const button = element(
      "button",
      { type: "button", class: "sort", onclick: () => this.sort(column) },
      name,
    );
    return element("th", { scope: "col", class: ALL[column][3] ? "number" : "" }, button);
  }

  row(run, i) {
    const link = element("a", { class: "long", href: `#section-${i + 1}` }, run.name);
    const picture = element("td", { class: "thumbnail" });
    const cells = RUN_COLUMNS.map(([, , text, isNumber]) =>
      element(
        "td",
        { class: isNumber ? "number" : "" },
        element("span", { class: "long" }, text(run)),
      ),
    );
    const node = element("tr", {}, element("th", { scope: "row" }, link), picture, ...cells);
    return { run, i, node, picture, text: node.textContent.toLowerCase() };
  }

  sort(column) {
    const sign = this.order.column === column ? -this.order.sign : 1;
    this.order = { column, sign };
    const key = ALL[column][1];
    this.rows.sort((a, b) => compared(key(a.run), key(b.run), sign) || a.i - b.i);
    this.body.append(...this.rows.map(({ node }) => node));
    this.heads.forEach((head, i) => {
      if (i === column) head.setAttribute("aria-sort", sign > 0 ? "ascending" : "descending");
      else head.removeAttribute("aria-sort");
    });
  }

  reduce() {
    const wanted = this.filter.value.trim().toLowerCase();
    let count = 0;
    for (const { node, text, i } of this.rows) {
      node.hidden = !text.includes(wanted);
      this.onReduce(i, !node.hidden);
      count += node.hidden ? 0 : 1;
    }
    this.counter.textContent = `${count} of ${this.rows.length} runs`;
  }

  /** Draws thumbnails as they come into view. */
  watch() {
    const byNode = new Map(this.rows.map((row) => [row.picture, row.i]));
    const observer = new IntersectionObserver(
      (entries) => {
        for (const { target, isIntersecting } of entries) {
          if (!isIntersecting) continue;
          observer.unobserve(target);
          target.replaceChildren(thumbnail(this.season, byNode.get(target)));
        }
      },
      { rootMargin: "300px" },
    );
    for (const cell of byNode.keys()) observer.observe(cell);
    this.drawAll = () => {
      observer.disconnect();
      for (const [cell, i] of byNode) {
        if (!cell.firstChild) cell.replaceChildren(thumbnail(this.season, i));
      }
    };
  }
}
