import { clock, decimals, goingOn, unpack } from "./data.js";

export const TONE_LOW = 19; // the bands of the tone correction
const TONE_BANDS = 22;
const ALL_GOOD = 0; // values of the last good band that are not bands
const NONE_GOOD = 9999;

/** A run: its records by zero-based index, each with levels, masks and metrics. */
export class Run {
  constructor(data, frequencies) {
    this.data = data;
    this.frequencies = frequencies;
    this.records = unpack(data.records);
    this.count = this.records.length;
    this.low = data.low;
    this.high = data.high;
    this.bands = Math.max(0, data.high - data.low + 1);
    this.levels = unpack(data.levels);
    this.masks = data.masks ? unpack(data.masks) : null;
    this.background = unpack(data.background);
    this.relative = unpack(data.relative);
    this.metrics = {};
    for (const [name, packed] of Object.entries(data.metrics ?? {})) {
      this.metrics[name] = unpack(packed);
    }
    this.setTimes(unpack(data.time));
  }

  /** The axis is the time stamps if they ascend, otherwise the record numbers. */
  setTimes(stamps) {
    this.time = goingOn(stamps);
    this.timed = this.time.every((time, i) => i === 0 || time > this.time[i - 1]);
    this.x = this.timed ? this.time : this.records;
    const steps = Array.from(this.x.slice(1), (x, i) => x - this.x[i]).sort((a, b) => a - b);
    this.step = steps[steps.length >> 1] ?? 0.5;
    const most = this.step * 0.75; // longer gaps stay blank
    const reach = (i, j) =>
      Math.min(most, Math.abs((this.x[j] ?? NaN) - this.x[i]) / 2 || this.step / 2);
    this.begins = Float64Array.from(this.x, (x, i) => x - reach(i, i - 1));
    this.ends = Float64Array.from(this.x, (x, i) => x + reach(i, i + 1));
    this.whole = this.count ? [this.begins[0], this.ends[this.count - 1]] : [0, 1];
  }

  level(place, band) {
    return this.levels[place * this.bands + band - this.low];
  }

  mask(place, band) {
    const code = this.masks ? this.masks[place * this.bands + band - this.low] : 0;
    return { masked: (code & 1) !== 0, adjusted: (code & 2) !== 0 };
  }

  backgroundLevel(place, band) {
    const at = band - TONE_LOW;
    return at < 0 || at >= TONE_BANDS ? NaN : (this.background[place * TONE_BANDS + at] ?? NaN);
  }

  metric(name, place) {
    return this.metrics[name]?.[place] ?? NaN;
  }

  /** The upper edge of the last good band, within the measured bands. */
  lastGoodEdge(place) {
    const last = this.metric("LGB", place);
    if (!Number.isFinite(last)) return NaN;
    if (last === ALL_GOOD) return this.high + 0.5;
    if (last === NONE_GOOD) return this.low - 0.5;
    return Math.max(this.low - 0.5, Math.min(this.high + 0.5, last + 0.5));
  }

  frequency(band) {
    return this.frequencies[band] ?? `band ${band}`;
  }

  /** The bands at octave centres; every second one if space is short. */
  octaves(room) {
    const all = [];
    for (let band = this.low; band <= this.high; band++) if (band % 3 === 0) all.push(band);
    if (all.length === 0) return [this.low];
    return all.length <= room ? all : all.filter((band) => band % 6 === 0);
  }

  placeOf(record) {
    return this.records.indexOf(record);
  }

  axisText(x) {
    return this.timed ? clock(x) : String(Math.round(x));
  }

  /** The text at the cursor for a record and one of its bands. */
  textOf(place, band) {
    const parts = [`record ${this.records[place]}`, clock(this.time[place])];
    const add = (name, label, unit) => {
      const value = this.metric(name, place);
      if (Number.isFinite(value)) parts.push(`${label} ${decimals(value)} ${unit}`);
    };
    add("AWT", "LA", "dB");
    add("PNLT", "PNLT", "TPNdB");
    const tone = this.metric("TONEBND", place);
    if (tone > 0) {
      parts.push(`tone ${decimals(this.metric("TONECOR", place))} dB at ${this.frequency(tone)}`);
    }
    if (band != null) parts.push(`${this.frequency(band)}: ${this.levelText(place, band)}`);
    return parts.join(" \u00b7 ");
  }

  levelText(place, band) {
    const level = this.level(place, band);
    if (!Number.isFinite(level)) return "no valid level";
    const { masked, adjusted } = this.mask(place, band);
    return `${decimals(level)} dB${masked ? (adjusted ? ", masked, adjusted" : ", masked") : ""}`;
  }
}

/** The state that the charts of a run share: record and band at the cursor, and the range shown. */
export class Selection {
  constructor(run) {
    this.run = run;
    this.range = run.whole;
    this.band = null;
    const maximum = run.placeOf(run.data.event?.maximum);
    this.place = maximum >= 0 ? maximum : 0;
    this.listeners = new Set();
  }

  /** Calls `listener` after each change; `what` is "cursor" or "range". */
  onChange(listener) {
    this.listeners.add(listener);
  }

  tell(what) {
    for (const listener of this.listeners) listener(what);
  }

  pick(place, band = this.band) {
    const bounded = Math.max(0, Math.min(this.run.count - 1, place));
    if (bounded === this.place && band === this.band) return;
    this.place = bounded;
    this.band = band;
    this.keepInView();
    this.tell("cursor");
  }

  /** Moves the range shown so that it includes the cursor. */
  keepInView() {
    const x = this.run.x[this.place];
    const [low, high] = this.range;
    if (x < low) this.show(x - this.run.step, x - this.run.step + high - low);
    if (x > high) this.show(x + this.run.step - (high - low), x + this.run.step);
  }

  pickBand(band) {
    this.pick(this.place, Math.max(this.run.low, Math.min(this.run.high, band)));
  }

  show(low, high) {
    const [first, last] = this.run.whole;
    const width = Math.min(last - first, Math.max(high - low, 2 * this.run.step));
    const begin = Math.max(first, Math.min(last - width, low));
    this.range = [begin, begin + width];
    this.tell("range");
  }

  /** Zooms the range by `factor`, keeping `x` in place. */
  zoom(factor, x = this.run.x[this.place]) {
    const [low, high] = this.range;
    const about = Math.max(low, Math.min(high, x));
    this.show(about - (about - low) * factor, about + (high - about) * factor);
  }

  showWhole() {
    this.show(...this.run.whole);
  }

  /** Shows the 10 dB-down part, plus a tenth on either side. */
  showEvent() {
    const event = this.run.data.event;
    if (!event) return;
    const at = (record, otherwise) => this.run.x[this.run.placeOf(record ?? otherwise)] ?? NaN;
    const low = at(event.first, this.run.records[0]);
    const high = at(event.last, this.run.records[this.run.count - 1]);
    const room = (high - low) / 10 + this.run.step;
    this.show(low - room, high + room);
  }

  get isWhole() {
    return this.range[0] <= this.run.whole[0] && this.range[1] >= this.run.whole[1];
  }
}
