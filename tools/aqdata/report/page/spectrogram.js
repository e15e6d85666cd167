import { decimals, quantiles } from "./data.js";
import { caption, colourBar } from "./legend.js";
import { colour, hatching, levelColour } from "./theme.js";
import { axis, GUTTER, TimeChart } from "./time_chart.js";

/** The range of levels that a run's colours span, without outliers, which would make the rest look alike. */
export function colourLimits(run) {
  const limits = quantiles(run.levels, [0.005, 0.9995]);
  return Number.isFinite(limits[0]) ? limits : [0, 1];
}

/** The index of the record that each column of pixels shows; -1 if none. */
function placesOf(run, [low, high], columns) {
  const places = new Int32Array(columns).fill(-1);
  let place = 0;
  for (let column = 0; column < columns; column++) {
    const x = low + ((column + 0.5) / columns) * (high - low);
    while (place < run.count && run.ends[place] < x) place++;
    if (place < run.count && run.begins[place] <= x) places[column] = place;
  }
  return places;
}

/** Draws the levels of a part of a run, column by column. */
export function paintLevels(pen, run, range, limits, { left, top, width, height }) {
  if (!(width > 0) || run.bands === 0) return new Int32Array(0);
  const places = placesOf(run, range, width);
  const image = new ImageData(width, run.bands);
  places.forEach((place, column) => {
    if (place < 0) return;
    for (let i = 0; i < run.bands; i++) {
      const level = run.levels[place * run.bands + run.bands - 1 - i];
      if (Number.isFinite(level)) {
        image.data.set([...levelColour(level, limits), 255], 4 * (i * width + column));
      }
    }
  });
  const sheet = document.createElement("canvas");
  sheet.width = width;
  sheet.height = run.bands;
  sheet.getContext("2d").putImageData(image, 0, 0);
  pen.imageSmoothingEnabled = false;
  pen.drawImage(sheet, left, top, width, height);
  return places;
}

/** Hatches masked cells; adjusted ones in the other direction. */
function paintMasks(pen, run, places, { left, top, width, height }) {
  if (!run.masks) return;
  const row = height / run.bands;
  for (const adjusted of [false, true]) {
    pen.beginPath();
    for (let band = run.low; band <= run.high; band++) {
      let begin = -1;
      for (let column = 0; column <= width; column++) {
        const place = column < width ? places[column] : -1;
        const mask = place < 0 ? null : run.mask(place, band);
        const hatched = mask !== null && mask.masked && mask.adjusted === adjusted;
        if (hatched && begin < 0) begin = column;
        if (hatched || begin < 0) continue;
        pen.rect(left + begin, top + (run.high - band) * row, column - begin, row);
        begin = -1;
      }
    }
    pen.fillStyle = hatching(pen, adjusted);
    pen.fill();
  }
}

function paintLastGoodBand(pen, run, places, { left, top, height }) {
  if (!run.metrics.LGB) return;
  const y = (edge) => top + ((run.high + 0.5 - edge) / run.bands) * height;
  pen.beginPath();
  let before = NaN;
  places.forEach((place, column) => {
    const at = place < 0 ? NaN : y(run.lastGoodEdge(place));
    if (Number.isFinite(at)) {
      if (Number.isFinite(before)) pen.lineTo(left + column, at);
      else pen.moveTo(left + column, at);
      pen.lineTo(left + column + 1, at);
    }
    before = at;
  });
  for (const [style, width] of [
    ["#000", 4],
    ["#fff", 2],
  ]) {
    pen.strokeStyle = style;
    pen.lineWidth = width * devicePixelRatio;
    pen.stroke();
  }
}

function paint(plot, run, limits) {
  const pen = plot.ctx;
  const box = Object.fromEntries(
    Object.entries(plot.bbox).map(([name, value]) => [name, Math.round(value)]),
  );
  pen.save();
  pen.beginPath();
  pen.rect(box.left, box.top, box.width, box.height);
  pen.clip();
  pen.fillStyle = colour("no-level");
  pen.fillRect(box.left, box.top, box.width, box.height);
  const places = paintLevels(pen, run, [plot.scales.x.min, plot.scales.x.max], limits, box);
  paintMasks(pen, run, places, box);
  paintLastGoodBand(pen, run, places, box);
  pen.restore();
}

function countMasked(run) {
  return run.masks ? run.masks.reduce((count, code) => count + (code & 1), 0) : 0;
}

/** Levels over time and band, with masks and the last good band. */
export const spectrogram = {
  serves: (run) => run.bands > 0,

  caption(run) {
    const keys = [];
    if (run.masks) keys.push(["masked", "masked"]);
    if (run.masks?.some((code) => code === 3)) {
      keys.push(["adjusted", "masked and adjusted"]);
    }
    if (run.metrics.LGB) keys.push(["lgb", "last good band"]);
    if (run.levels.some(Number.isNaN)) keys.push(["no-level", "no valid level"]);
    const made = caption("Spectrogram", keys);
    made.append(colourBar(colourLimits(run)));
    return made;
  },

  mount(host, selection) {
    const { run } = selection;
    const limits = colourLimits(run);
    const masked = countMasked(run);
    const label =
      `Spectrogram of ${run.count} records, ${run.frequency(run.low)} to ` +
      `${run.frequency(run.high)}, ${decimals(limits[0], 0)} to ${decimals(limits[1], 0)} dB` +
      (run.masks ? `, ${masked} levels masked` : "");
    const bandAt = (plot) =>
      Math.max(run.low, Math.min(run.high, Math.round(plot.posToVal(plot.cursor.top, "y"))));
    const chart = new TimeChart(host, selection, {
      label,
      bandAt,
      heights: { screen: 280, paper: 185 },
      data: [Array.from(run.x), Array.from(run.x, () => null)],
      series: [{ show: true, scale: "y" }],
      scales: { y: { range: () => [run.low - 0.5, run.high + 0.5] } },
      axes: [
        axis({
          size: GUTTER,
          splits: (plot) => run.octaves(plot.height / 24),
          values: (_, splits) => splits.map((band) => run.frequency(band)),
          grid: { show: false },
        }),
      ],
      hooks: { draw: [(plot) => paint(plot, run, limits)] },
    });
    return chart;
  },
};
