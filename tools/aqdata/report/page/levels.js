import { decimals, extent } from "./data.js";
import { caption } from "./legend.js";
import { colour } from "./theme.js";
import { line, plain, sideAxis, TimeChart } from "./time_chart.js";

const LINES = [
  ["AWT", "level", "LA"],
  ["PNLT", "pnlt", "PNLT"],
];

const linesOf = (run) => LINES.filter(([name]) => run.metrics[name]?.some(Number.isFinite));

/** The summed part of the event, from the start of its first record to the end of its last. */
function summed(run) {
  const { event } = run.data;
  const place = (record, otherwise) => (record == null ? otherwise : run.placeOf(record));
  return [run.begins[place(event.first, 0)], run.ends[place(event.last, run.count - 1)]];
}

function paintPart(plot, run) {
  if (!run.data.event) return;
  const { ctx: pen, bbox: box } = plot;
  const [begin, end] = summed(run).map((x) => plot.valToPos(x, "x", true));
  const down = plot.valToPos(run.data.event.PNLTM - 10, "y", true);
  pen.save();
  pen.beginPath();
  pen.rect(box.left, box.top, box.width, box.height);
  pen.clip();
  pen.fillStyle = colour("part");
  pen.fillRect(begin, box.top, end - begin, box.height);
  pen.strokeStyle = colour("pnlt");
  pen.lineWidth = devicePixelRatio;
  pen.setLineDash([5, 4].map((length) => length * devicePixelRatio));
  pen.beginPath();
  pen.moveTo(begin, down);
  pen.lineTo(end, down);
  pen.stroke();
  pen.restore();
}

/** Triangles: filled at the maximum, hollow at second peaks. */
function paintPeaks(plot, run) {
  const { event } = run.data;
  if (!event) return;
  const { ctx: pen, bbox: box } = plot;
  const size = 5 * devicePixelRatio;
  pen.save();
  pen.fillStyle = pen.strokeStyle = colour("pnlt");
  for (const record of [event.maximum, ...event.second_peaks]) {
    const place = run.placeOf(record);
    const x = plot.valToPos(run.x[place], "x", true);
    const y = plot.valToPos(run.metric("PNLT", place), "y", true) - 2 * devicePixelRatio;
    if (!(x >= box.left && x <= box.left + box.width)) continue;
    pen.beginPath();
    pen.moveTo(x, y);
    pen.lineTo(x - size, y - 1.6 * size);
    pen.lineTo(x + size, y - 1.6 * size);
    pen.closePath();
    if (record === event.maximum) pen.fill();
    else pen.stroke();
  }
  pen.restore();
}

function eventText({ event }) {
  if (!event) return "no event";
  const bound = event.first == null || event.last == null ? ", a lower bound" : "";
  return `10 dB down, EPNL ${decimals(event.EPNL)} EPNdB${bound}`;
}

/** The levels of the records over time, and the event. */
export const levels = {
  caption(run) {
    const units = { AWT: "dB", PNLT: "TPNdB" };
    const keys = linesOf(run).map(([name, style, text]) => [style, `${text} (${units[name]})`]);
    if (run.data.event) keys.push(["part", eventText(run.data)]);
    return caption("Level history", keys);
  },

  serves: (run) => linesOf(run).length > 0,

  mount(host, selection) {
    const { run } = selection;
    const lines = linesOf(run);
    const range = extent(
      lines.flatMap(([name]) => Array.from(run.metrics[name])),
      0.1,
    );
    const alone = run.count < 3; // one point does not make a line
    return new TimeChart(host, selection, {
      label: `Level history: ${lines.map(([, , text]) => text).join(" and ")}, ${eventText(run.data)}`,
      heights: { screen: 220, paper: 165 },
      data: [Array.from(run.x), ...lines.map(([name]) => plain(run.metrics[name]))],
      series: lines.map(([, style]) => line(style, alone ? { points: { show: true } } : {})),
      scales: { y: { range: () => range } },
      axes: [sideAxis("Level (dB)")],
      hooks: {
        drawAxes: [(plot) => paintPart(plot, run)],
        draw: [(plot) => paintPeaks(plot, run)],
      },
    });
  },
};
