// Viridis, as in the plots of the Python package: distinguishable with any colour vision and in
// grey.
const VIRIDIS =
  "440154 470d60 48186a 482374 472e7c 453882 424186 3e4a89 3a548c 365d8d 32658e 2e6d8e " +
  "2b758e 287d8e 25848e 228c8d 1f948c 1e9c89 20a386 25ab82 2eb37c 3aba76 48c16e 58c765 " +
  "6ccd5a 7fd34e 93d741 a8db34 c0df25 d5e21a eae51a fde725";

/** The 256 colours of levels from low to high, each as red, green and blue. */
export const LEVEL_COLOURS = interpolated(VIRIDIS.split(" "));

function interpolated(stops) {
  const channel = (stop, i) => parseInt(stops[stop].slice(2 * i, 2 * i + 2), 16);
  return Array.from({ length: 256 }, (_, k) => {
    const at = (k / 255) * (stops.length - 1);
    const stop = Math.min(Math.floor(at), stops.length - 2);
    const mix = (i) => channel(stop, i) + (at - stop) * (channel(stop + 1, i) - channel(stop, i));
    return [0, 1, 2].map((i) => Math.round(mix(i)));
  });
}

/** The colour of a level between two limits. */
export function levelColour(level, [low, high]) {
  const part = high > low ? (level - low) / (high - low) : 1;
  return LEVEL_COLOURS[Math.max(0, Math.min(255, Math.round(part * 255)))];
}

/** One of the page style's colours, in light, dark or print mode. */
export function colour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();
}

/** Hatching for masked cells; `rising` for adjusted ones. */
export function hatching(context, rising) {
  const size = 6 * Math.max(1, Math.round(devicePixelRatio));
  const tile = document.createElement("canvas");
  tile.width = tile.height = size;
  const pen = tile.getContext("2d");
  for (const [style, width] of [
    ["#000", 0.34],
    ["#fff", 0.17],
  ]) {
    pen.strokeStyle = style;
    pen.lineWidth = width * size;
    pen.beginPath();
    for (const shift of [-size, 0, size]) {
      pen.moveTo(shift, rising ? size : 0);
      pen.lineTo(shift + size, rising ? 0 : size);
    }
    pen.stroke();
  }
  return context.createPattern(tile, "repeat");
}
