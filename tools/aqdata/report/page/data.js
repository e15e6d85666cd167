const VIEWS = { i16: Int16Array, i32: Int32Array, f32: Float32Array };
const NO_VALUE = { i16: -32768, i32: -2147483648 };

/** Unpacks the page's little-endian numbers; NaN where there is no value. */
export function unpack(packed) {
  if (!packed) return new Float64Array(0);
  const scale = Math.round(1 / packed.step); // dividing by it gives the nearest decimal
  if (packed.type === "even") {
    const { first, by, count } = packed;
    return Float64Array.from({ length: count }, (_, i) => (first + i * by) / scale);
  }
  const bytes = Uint8Array.from(atob(packed.data), (c) => c.charCodeAt(0));
  if (packed.type === "u2") {
    return Float64Array.from(
      { length: 4 * bytes.length },
      (_, i) => (bytes[i >> 2] >> (2 * (i & 3))) & 3,
    );
  }
  const raw = new VIEWS[packed.type](bytes.buffer);
  const none = NO_VALUE[packed.type];
  return Float64Array.from(raw, (value) => (value === none ? NaN : value / scale));
}

/** A number with this many decimals; a dash for no value. */
export function decimals(value, digits = 2) {
  return Number.isFinite(value) ? value.toFixed(digits) : "\u2013";
}

/** A time of day as hh:mm:ss with its decimals; seconds may continue past midnight. */
export function clock(seconds) {
  if (!Number.isFinite(seconds)) return "\u2013";
  const ticks = Math.round((((seconds % 86400) + 86400) % 86400) * 1000) % 86400000;
  const two = (value) => String(Math.floor(value)).padStart(2, "0");
  const fraction = String(ticks % 1000)
    .padStart(3, "0")
    .replace(/0+$/, "");
  const whole = `${two(ticks / 3600000)}:${two((ticks / 60000) % 60)}:${two((ticks / 1000) % 60)}`;
  return fraction ? `${whole}.${fraction}` : whole;
}

/** Makes times of day continue past midnight; the first is on the day nearest to `near`. */
export function goingOn(times, near = times[0]) {
  const day = 86400;
  const out = Float64Array.from(times);
  if (out.length === 0) return out;
  let shift = Number.isFinite(near) ? Math.round((near - out[0]) / day) * day : 0;
  for (let i = 0; i < out.length; i++) {
    out[i] += shift;
    if (i > 0 && out[i] < out[i - 1] - day / 2) {
      shift += day;
      out[i] += day;
    }
  }
  return out;
}

/** The index of the value nearest to `wanted` among ascending values. */
export function nearest(values, wanted) {
  let low = 0;
  let high = values.length - 1;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if (values[middle] <= wanted) low = middle;
    else high = middle;
  }
  return Math.abs(values[high] - wanted) < Math.abs(values[low] - wanted) ? high : low;
}

/** The lowest and highest of the numbers, with a margin; `otherwise` if there are none. */
export function extent(numbers, room = 0.05, otherwise = [0, 1]) {
  let low = Infinity;
  let high = -Infinity;
  for (const value of numbers) {
    if (!Number.isFinite(value)) continue;
    if (value < low) low = value;
    if (value > high) high = value;
  }
  if (low > high) return otherwise;
  const more = (high - low) * room || 1;
  return [low - more, high + more];
}

/** The quantiles of the numbers at these fractions, such as [0.01, 0.99]. */
export function quantiles(numbers, parts) {
  const sorted = Float64Array.from(numbers.filter(Number.isFinite)).sort();
  return parts.map((part) => sorted[Math.round(part * (sorted.length - 1))]);
}
