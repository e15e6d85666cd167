import { nearest } from "./data.js";
import { element } from "./dom.js";
import { colour } from "./theme.js";

const FONT = '12px system-ui, "DejaVu Sans", sans-serif';
export const GUTTER = 58; // width of every vertical axis, so that charts align in time
const SECONDS = [0.5, 1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 21600];
const RECORDS = [1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000];

/** An axis in the page's colours. */
export function axis(more = {}) {
  return {
    stroke: () => colour("text"),
    font: FONT,
    labelFont: FONT,
    labelSize: 16,
    size: GUTTER - 16,
    gap: 3,
    grid: { stroke: () => colour("grid"), width: 1 },
    ticks: { stroke: () => colour("grid"), width: 1, size: 4 },
    ...more,
  };
}

/** A vertical axis with the name and unit of its quantity. */
export const sideAxis = (label, more = {}) => axis({ label, ...more });

/** A line in a chart. */
export function line(name, more = {}) {
  return {
    stroke: () => colour(name),
    width: 1.75,
    points: { show: false },
    spanGaps: false,
    ...more,
  };
}

/** The uPlot options that all charts share. */
export function baseOptions(width, height) {
  return {
    width,
    height,
    legend: { show: false },
    padding: [8, 28, 0, 0],
    cursor: { x: false, y: false, points: { show: false }, drag: { x: false, y: false } },
  };
}

/** Converts `values` for uPlot: null where there is no value. */
export function plain(values) {
  return Array.from(values, (value) => (Number.isFinite(value) ? value : null));
}

/**
 * A chart over the time of the records, linked to the selection: a line marks the record at the
 * cursor, dragging zooms, and keys move and zoom.
 *
 * `options` has uPlot's `data`, `series`, `axes` except the first, `scales` except x, and `hooks`;
 * `label` describes the chart; `heights` are its heights on the screen and on paper; `bandAt` gives
 * the band at the pointer; `marksCursor` is set if `hooks` draw something at the cursor.
 */
export class TimeChart {
  constructor(host, selection, options) {
    this.host = host;
    this.selection = selection;
    this.options = options;
    this.marker = element("div", { class: "marker", "aria-hidden": true });
    this.plot = new uPlot(this.plotOptions(), options.data, host);
    this.plot.over.append(this.marker);
    this.describe();
    host.addEventListener("keydown", (event) => this.onKey(event));
    host.addEventListener("wheel", (event) => this.onWheel(event), { passive: false });
  }

  plotOptions() {
    const { run } = this.selection;
    const { series, axes, scales, hooks = {}, heights } = this.options;
    const base = baseOptions(this.host.clientWidth || 600, heights.screen);
    const [min, max] = this.selection.range;
    return {
      ...base,
      cursor: {
        ...base.cursor,
        drag: { x: true, y: false, setScale: false },
        bind: { dblclick: () => () => (this.selection.showWhole(), null) },
      },
      scales: {
        x: { time: false, auto: false, min, max, range: (_, low, high) => [low, high] },
        ...scales,
      },
      axes: [
        axis({
          size: 26,
          space: 76,
          incrs: run.timed ? SECONDS : RECORDS,
          values: (_, splits) => splits.map((x) => run.axisText(x)),
        }),
        ...axes,
      ],
      series: [{}, ...series],
      hooks: {
        ...hooks,
        draw: [...(hooks.draw ?? []), () => this.placeMarker()],
        setCursor: [(plot) => this.onPointer(plot)],
        setSelect: [(plot) => this.onDragged(plot)],
      },
    };
  }

  /** Presents the chart to assistive programs as a slider over the records. */
  describe() {
    const { run } = this.selection;
    const set = (name, value) => this.host.setAttribute(name, value);
    this.host.tabIndex = 0;
    set("role", "slider");
    set("aria-label", `${this.options.label}. Arrow keys move the cursor, plus and minus zoom`);
    set("aria-valuemin", run.records[0]);
    set("aria-valuemax", run.records[run.count - 1]);
    this.sayRecord();
  }

  sayRecord() {
    const { run, place, band } = this.selection;
    this.host.setAttribute("aria-valuenow", run.records[place]);
    this.host.setAttribute("aria-valuetext", run.textOf(place, band));
  }

  /** Redraws when the selection changes. */
  update(what) {
    if (what === "range") {
      const [min, max] = this.selection.range;
      this.plot.setScale("x", { min, max });
    } else {
      this.sayRecord();
      this.placeMarker();
      if (this.options.marksCursor) this.plot.redraw(false);
    }
  }

  placeMarker() {
    if (!this.plot) return;
    const left = this.plot.valToPos(this.selection.run.x[this.selection.place], "x");
    this.marker.hidden = !(left >= 0 && left <= this.plot.over.clientWidth);
    this.marker.style.left = `${left}px`;
  }

  onPointer(plot) {
    if (!(plot.cursor.left >= 0)) return;
    const { run } = this.selection;
    const place = nearest(run.x, plot.posToVal(plot.cursor.left, "x"));
    this.selection.pick(place, this.options.bandAt?.(plot) ?? this.selection.band);
  }

  onDragged(plot) {
    const { left, width } = plot.select;
    if (width < 4) return;
    plot.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
    this.selection.show(plot.posToVal(left, "x"), plot.posToVal(left + width, "x"));
  }

  onWheel(event) {
    if (!event.ctrlKey && !event.metaKey) return;
    event.preventDefault();
    const left = event.clientX - this.plot.over.getBoundingClientRect().left;
    this.selection.zoom(event.deltaY < 0 ? 0.8 : 1.25, this.plot.posToVal(left, "x"));
  }

  onKey(event) {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const act = this.actionOf(event);
    if (!act) return;
    event.preventDefault();
    act();
  }

  actionOf(event) {
    const { selection } = this;
    const { run, place, band } = selection;
    const by = (records) => () => selection.pick(place + records);
    const bandBy = (bands) => () => selection.pickBand(band == null ? run.low : band + bands);
    const page = Math.max(1, Math.round(run.count / 10));
    const withBands = Boolean(this.options.bandAt);
    return {
      ArrowLeft: by(event.shiftKey ? -10 : -1),
      ArrowRight: by(event.shiftKey ? 10 : 1),
      ArrowUp: withBands ? bandBy(1) : by(1),
      ArrowDown: withBands ? bandBy(-1) : by(-1),
      PageUp: by(page),
      PageDown: by(-page),
      Home: by(-run.count),
      End: by(run.count),
      "+": () => selection.zoom(0.5),
      "=": () => selection.zoom(0.5),
      "-": () => selection.zoom(2),
      0: () => selection.showWhole(),
      Escape: () => selection.showWhole(),
    }[event.key];
  }

  resize(width, paper) {
    const { screen, paper: onPaper } = this.options.heights;
    this.plot.setSize({ width, height: paper ? onPaper : screen });
  }

  destroy() {
    this.plot.destroy();
  }
}
