/** An element with attributes and children. Strings become text, never markup. */
export function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) made.addEventListener(name.slice(2), value);
    else if (value === true) made.setAttribute(name, "");
    else if (value !== false && value != null) made.setAttribute(name, String(value));
  }
  made.append(...children.filter((child) => child != null));
  return made;
}

/** A canvas of this size in CSS pixels, and its drawing context in the same units. */
export function canvas(width, height) {
  const made = element("canvas", {
    width: width * devicePixelRatio,
    height: height * devicePixelRatio,
  });
  made.style.width = `${width}px`;
  made.style.height = `${height}px`;
  return made;
}

/** The data in the page's element with this id. */
export function dataOf(id) {
  return JSON.parse(document.getElementById(id).textContent);
}
