import { element } from "./dom.js";
import { LEVEL_COLOURS } from "./theme.js";

/** The heading of a chart, and its keys: pairs of a style name and a label. */
export function caption(title, keys) {
  const made = element("figcaption", {}, element("span", { class: "title" }, title));
  for (const [style, text] of keys) {
    const swatch = element("i", { class: `key ${style}`, "aria-hidden": true });
    made.append(element("span", { class: "entry" }, swatch, text));
  }
  return made;
}

/** The colours of levels between two limits. */
export function colourBar([low, high]) {
  const bar = document.createElement("canvas");
  bar.width = LEVEL_COLOURS.length;
  bar.height = 1;
  const pen = bar.getContext("2d");
  LEVEL_COLOURS.forEach((colour, i) => {
    pen.fillStyle = `rgb(${colour})`;
    pen.fillRect(i, 0, 1, 1);
  });
  bar.setAttribute("aria-hidden", "true");
  return element(
    "span",
    { class: "scale entry", title: "Levels beyond either end have its colour" },
    `${Math.round(low)}`,
    bar,
    `${Math.round(high)} dB`,
  );
}
