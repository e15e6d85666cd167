import { decimals, extent, unpack } from "./data.js";
import { caption } from "./legend.js";
import { colour } from "./theme.js";
import { baseOptions, line, plain, sideAxis, axis } from "./time_chart.js";

const SPECTRUM_HEIGHTS = { screen: 280, beside: 548, paper: 185 };
const isBeside = matchMedia("(min-width: 1400px)"); // beside spectrogram and levels, and as high

function ambientOf(run) {
  const { ambient } = run.data;
  if (!ambient) return null;
  const read = unpack(ambient.levels);
  return (band) => read[band - ambient.low] ?? NaN;
}

/** The levels of the record at the cursor, with the ambient, the background found by the tone
 * correction, and the band of the tone. */
class SpectrumChart {
  constructor(host, selection) {
    this.host = host;
    this.selection = selection;
    const { run } = selection;
    this.bands = Array.from({ length: run.bands }, (_, i) => run.low + i);
    this.ambient = ambientOf(run);
    const all = Array.from(run.levels).concat(this.ambient ? this.bands.map(this.ambient) : []);
    this.range = extent(all, 0.05);
    host.setAttribute("role", "img");
    this.plot = new uPlot(this.plotOptions(), this.dataNow(), host);
    this.say();
  }

  plotOptions() {
    const { run } = this.selection;
    return {
      ...baseOptions(this.host.clientWidth || 400, SPECTRUM_HEIGHTS.screen),
      scales: {
        x: { time: false, range: () => [run.low - 0.7, run.high + 0.7] },
        y: { range: () => this.range },
      },
      axes: [
        axis({
          size: 26,
          space: 40,
          splits: (plot) => run.octaves(plot.width / 48),
          values: (_, splits) =>
            splits.map((band) => run.frequency(band).replace(" kHz", "k").replace(" Hz", "")),
          grid: { show: false },
        }),
        sideAxis("Band level (dB)"),
      ],
      series: [
        {},
        line("ambient", { dash: [6, 4] }),
        line("background", { dash: [2, 3], width: 2 }),
      ],
      hooks: { drawAxes: [(plot) => this.paintBars(plot)], draw: [(plot) => this.paintTone(plot)] },
    };
  }

  dataNow() {
    const { run, place } = this.selection;
    return [
      this.bands,
      plain(this.bands.map((band) => this.ambient?.(band) ?? NaN)),
      plain(this.bands.map((band) => run.backgroundLevel(place, band))),
    ];
  }

  paintBars(plot) {
    const { run, place, band: chosen } = this.selection;
    const { ctx: pen, bbox: box } = plot;
    const foot = box.top + box.height;
    const width = Math.max(2, (plot.valToPos(1, "x", true) - plot.valToPos(0, "x", true)) * 0.72);
    pen.save();
    pen.lineWidth = 1.25 * devicePixelRatio;
    for (const band of this.bands) {
      const level = run.level(place, band);
      if (!Number.isFinite(level)) continue;
      const left = plot.valToPos(band, "x", true) - width / 2;
      const top = Math.max(box.top, plot.valToPos(level, "y", true));
      const { masked } = run.mask(place, band);
      pen.strokeStyle = colour("level");
      pen.fillStyle = colour(band === chosen ? "chosen" : "bar");
      pen.setLineDash(masked ? [3 * devicePixelRatio, 3 * devicePixelRatio] : []);
      if (!masked) pen.fillRect(left, top, width, foot - top);
      pen.strokeRect(left, top, width, foot - top);
    }
    pen.restore();
  }

  /** The tone as a bar from the background to the level. */
  paintTone(plot) {
    const { run, place } = this.selection;
    const band = run.metric("TONEBND", place);
    if (!(band > 0)) return;
    const { ctx: pen, bbox: box } = plot;
    const [x, top, foot] = [
      plot.valToPos(band, "x", true),
      plot.valToPos(run.level(place, band), "y", true),
      plot.valToPos(run.backgroundLevel(place, band), "y", true),
    ];
    const width = 5 * devicePixelRatio;
    pen.save();
    pen.fillStyle = colour("tone");
    pen.fillRect(x - width / 2, top, width, foot - top);
    pen.font = `${12 * devicePixelRatio}px system-ui, "DejaVu Sans", sans-serif`;
    pen.textAlign = x > box.left + box.width * 0.75 ? "right" : "center";
    pen.fillText(
      `${decimals(run.metric("TONECOR", place))} dB`,
      x,
      Math.max(top - width, box.top + 3 * width),
    );
    pen.restore();
  }

  say() {
    const { run, place, band } = this.selection;
    this.host.setAttribute("aria-label", `Spectrum of ${run.textOf(place, band)}`);
  }

  update(what) {
    if (what !== "cursor") return;
    this.plot.setData(this.dataNow(), true);
    this.say();
  }

  resize(width, paper) {
    const onScreen = isBeside.matches ? SPECTRUM_HEIGHTS.beside : SPECTRUM_HEIGHTS.screen;
    this.plot.setSize({ width, height: paper ? SPECTRUM_HEIGHTS.paper : onScreen });
  }

  destroy() {
    this.plot.destroy();
  }
}

export const spectrum = {
  caption(run) {
    const keys = [["bar", "level"]];
    if (run.masks) keys.push(["hollow", "masked"]);
    if (run.data.ambient) keys.push(["ambient", "ambient"]);
    if (run.data.background) keys.push(["background", "background"], ["tone", "tone correction"]);
    return caption("Spectrum at the cursor", keys);
  },

  serves: (run) => run.bands > 0,

  mount: (host, selection) => new SpectrumChart(host, selection),
};
