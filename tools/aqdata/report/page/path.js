import { extent, goingOn, nearest, unpack } from "./data.js";
import { caption } from "./legend.js";
import { colour } from "./theme.js";
import { axis, baseOptions, line, plain, sideAxis, TimeChart } from "./time_chart.js";

const PATH_HEIGHTS = { screen: 240, paper: 200 };

/** The flight path from positions or, without them, from the geometry; null without either. */
export function pathOf(run) {
  const data = run.data.positions ?? run.data.geometry;
  if (!data) return null;
  const path = { ofGeometry: !run.data.positions, rejected: data.rejected ?? 0 };
  for (const name of ["x", "y", "z"]) path[name] = unpack(data[name]);
  path.time = goingOn(unpack(run.data.positions ? data.time : data.emission), run.time[0]);
  path.emission = emissionsOf(run);
  return path.time.length ? path : null;
}

/** When the sound of each record was emitted, if known. */
function emissionsOf(run) {
  const { geometry } = run.data;
  if (!geometry) return null;
  const measured = goingOn(unpack(geometry.time), run.time[0]);
  return { measured, emitted: goingOn(unpack(geometry.emission), run.time[0]) };
}

/** The cursor's place on the path: where the sound was emitted or, if unknown, where the source was
 * at the time of the record. */
function placeAt(path, time) {
  let when = time;
  if (path.emission) {
    const point = nearest(path.emission.measured, time);
    if (Math.abs(path.emission.measured[point] - time) < 0.3) when = path.emission.emitted[point];
  }
  const { time: times } = path;
  if (when < times[0] - 0.5 || when > times[times.length - 1] + 0.5) return null;
  let i = nearest(times, when);
  if (times[i] > when && i > 0) i--;
  const next = Math.min(i + 1, times.length - 1);
  const part = times[next] > times[i] ? (when - times[i]) / (times[next] - times[i]) : 0;
  const between = (values) => values[i] + part * (values[next] - values[i]);
  return { time: when, x: between(path.x), y: between(path.y), z: between(path.z) };
}

/** The path over the ground, to scale, for the time range shown. */
class TrackChart {
  constructor(host, selection) {
    this.host = host;
    this.selection = selection;
    this.path = pathOf(selection.run);
    this.ranges = { x: [0, 1], y: [0, 1] };
    host.setAttribute("role", "img");
    const { run } = selection;
    const microphone = run.data.microphone ? ", and the microphone" : "";
    host.setAttribute(
      "aria-label",
      `Ground track of ${this.path.time.length} positions${microphone}`,
    );
    this.plot = new uPlot(
      this.plotOptions(),
      [
        [0, 1],
        [null, null],
      ],
      host,
    );
    this.fit();
  }

  plotOptions() {
    const own = (name) => ({ time: false, auto: false, range: () => this.ranges[name] });
    return {
      ...baseOptions(this.host.clientWidth || 400, PATH_HEIGHTS.screen),
      scales: { x: own("x"), y: own("y") },
      axes: [axis({ size: 26, space: 60 }), sideAxis("Y")],
      series: [{}, {}],
      hooks: { draw: [(plot) => this.paint(plot)] },
    };
  }

  /** The indices of the positions in the time range shown; all if there are none. */
  shown() {
    const [low, high] = this.selection.range;
    const all = Array.from(this.path.time.keys());
    if (this.selection.isWhole) return all;
    const part = all.filter((i) => this.path.time[i] >= low && this.path.time[i] <= high);
    return part.length > 1 ? part : all;
  }

  /** Gives both scales the same number of units per pixel. */
  fit() {
    const places = this.shown();
    const { microphone } = this.selection.run.data;
    const box = this.plot.bbox;
    const middle = {};
    let unit = 0;
    for (const [name, pixels] of [
      ["x", box.width],
      ["y", box.height],
    ]) {
      const values = places.map((i) => this.path[name][i]);
      if (microphone && this.selection.isWhole) values.push(microphone[name]);
      const [low, high] = extent(values, 0.08);
      middle[name] = (low + high) / 2;
      unit = Math.max(unit, (high - low) / pixels);
    }
    for (const [name, pixels] of [
      ["x", box.width],
      ["y", box.height],
    ]) {
      const half = (unit * pixels) / 2;
      this.ranges[name] = [middle[name] - half, middle[name] + half];
    }
    this.plot.batch(() => {
      for (const name of ["x", "y"]) {
        const [min, max] = this.ranges[name];
        this.plot.setScale(name, { min, max });
      }
    });
  }

  paint(plot) {
    const { ctx: pen, bbox: box } = plot;
    const { path } = this;
    const at = (i) => [plot.valToPos(path.x[i], "x", true), plot.valToPos(path.y[i], "y", true)];
    const dot = devicePixelRatio;
    pen.save();
    pen.beginPath();
    pen.rect(box.left, box.top, box.width, box.height);
    pen.clip();
    pen.strokeStyle = pen.fillStyle = colour("level");
    pen.lineWidth = 1.5 * dot;
    pen.beginPath();
    path.time.forEach((_, i) => pen.lineTo(...at(i)));
    pen.stroke();
    if (path.time.length < 500) {
      path.time.forEach((_, i) => {
        const [x, y] = at(i);
        pen.fillRect(x - 1.5 * dot, y - 1.5 * dot, 3 * dot, 3 * dot);
      });
    }
    this.paintMicrophone(plot, pen);
    this.paintCursor(plot, pen);
    pen.restore();
  }

  paintMicrophone(plot, pen) {
    const { microphone } = this.selection.run.data;
    if (!microphone) return;
    const size = 7 * devicePixelRatio;
    const [x, y] = [plot.valToPos(microphone.x, "x", true), plot.valToPos(microphone.y, "y", true)];
    pen.strokeStyle = colour("text");
    pen.lineWidth = 2 * devicePixelRatio;
    pen.beginPath();
    pen.moveTo(x, y - size);
    pen.lineTo(x + size, y + size * 0.7);
    pen.lineTo(x - size, y + size * 0.7);
    pen.closePath();
    pen.stroke();
  }

  paintCursor(plot, pen) {
    const at = placeAt(this.path, this.selection.run.time[this.selection.place]);
    if (!at) return;
    pen.fillStyle = colour("cursor");
    pen.beginPath();
    const [x, y] = [plot.valToPos(at.x, "x", true), plot.valToPos(at.y, "y", true)];
    pen.arc(x, y, 5 * devicePixelRatio, 0, 2 * Math.PI);
    pen.fill();
  }

  update(what) {
    if (what === "range") this.fit();
    else this.plot.redraw(false);
  }

  resize(width, paper) {
    this.plot.setSize({ width, height: paper ? PATH_HEIGHTS.paper : PATH_HEIGHTS.screen });
    this.fit();
  }

  destroy() {
    this.plot.destroy();
  }
}

function trackKeys(run, path) {
  const keys = [["level", path.ofGeometry ? "at emission" : `${path.time.length} positions`]];
  if (path.rejected) keys.push(["plain", `${path.rejected} rejected`]);
  if (run.data.microphone) keys.push(["microphone", "microphone"]);
  keys.push(["cursor", path.emission ? "emission of the record" : "at the time of the record"]);
  return keys;
}

export const track = {
  caption: (run) =>
    caption("Ground track, to scale, in the unit of the file", trackKeys(run, pathOf(run))),
  serves: (run) => pathOf(run) !== null,
  mount: (host, selection) => new TrackChart(host, selection),
};

export const height = {
  caption(run) {
    const keys = [["level", "height Z"]];
    if (run.data.geometry) keys.push(["cursor", "time of emission"]);
    return caption("Height, in the unit of the file", keys);
  },

  serves: (run) => run.timed && pathOf(run) !== null,

  mount(host, selection) {
    const { run } = selection;
    const path = pathOf(run);
    const range = extent(path.z, 0.08);
    return new TimeChart(host, selection, {
      label: "Height of the source",
      heights: PATH_HEIGHTS,
      data: [Array.from(path.time), plain(path.z)],
      series: [line("level")],
      scales: { y: { range: () => range } },
      axes: [sideAxis("Height Z")],
      hooks: { draw: [(plot) => paintEmission(plot, path, selection)] },
      marksCursor: Boolean(path.emission),
    });
  },
};

/** A dot at the time when the sound of the record at the cursor was emitted. */
function paintEmission(plot, path, selection) {
  const at = placeAt(path, selection.run.time[selection.place]);
  if (!at || !path.emission) return;
  const [x, y] = [plot.valToPos(at.time, "x", true), plot.valToPos(at.z, "y", true)];
  const { ctx: pen, bbox: box } = plot;
  if (x < box.left || x > box.left + box.width) return;
  pen.save();
  pen.fillStyle = colour("cursor");
  pen.beginPath();
  pen.arc(x, y, 5 * devicePixelRatio, 0, 2 * Math.PI);
  pen.fill();
  pen.restore();
}
