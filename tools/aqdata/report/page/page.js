import { dataOf, element } from "./dom.js";
import { SeasonTable } from "./season.js";
import { Section } from "./section.js";

const season = dataOf("season");
const single = season.runs.length === 1;
const sections = season.runs.map((summary, i) => new Section(i + 1, summary, season));

/** A single run is a plain section; each of several runs is a section that opens and closes. */
function rootOf(section) {
  const { number, summary, body } = section;
  const name = element("h2", { id: `name-${number}` }, summary.name);
  if (single) return element("section", { class: "run", "aria-label": summary.name }, body);
  const root = element(
    "details",
    { class: "run", id: `section-${number}` },
    element("summary", {}, name, element("span", { class: "muted" }, summary.project ?? "")),
    body,
  );
  root.addEventListener("toggle", () => (root.open ? watcher.observe(root) : leave(section)));
  return root;
}

function leave(section) {
  watcher.unobserve(section.root);
  section.close();
}

// Only open sections near the view have charts, since the charts of hundreds of runs would not fit
// in memory.
const watcher = new IntersectionObserver(
  (entries) => {
    for (const { target, isIntersecting } of entries) {
      const section = sections.find(({ root }) => root === target);
      if (isIntersecting) section.open();
      else if (!printing) section.close();
    }
  },
  { rootMargin: "1200px" },
);

function openNamed() {
  const section = sections.find(({ root }) => root.id && `#${root.id}` === location.hash);
  if (!section) return;
  section.root.open = true;
  section.root.scrollIntoView();
  section.root.querySelector("summary").focus({ preventScroll: true });
}

/** Goes to the run after or before the one that is open or has the focus. */
function goBy(steps) {
  const shown = sections.filter(({ root }) => !root.hidden);
  const current = shown.findIndex(({ root }) => root.contains(document.activeElement));
  const open = current >= 0 ? current : shown.findIndex(({ root }) => root.open);
  const next = shown[Math.max(0, Math.min(shown.length - 1, open + steps))];
  if (!next) return;
  if (open >= 0) shown[open].root.open = false;
  location.hash = next.root.id;
  openNamed();
}

function onKey(event) {
  if (event.ctrlKey || event.metaKey || event.altKey || event.target.matches("input[type=search]"))
    return;
  if (event.key === "n") goBy(1);
  if (event.key === "p") goBy(-1);
}

let table = null;
let printing = false;

/** Prints open sections in light colours, at the width of the paper. */
function toPaper() {
  printing = true;
  document.documentElement.classList.add("paper");
  table?.drawAll();
  const some = document.body.classList.contains("print-one");
  for (const section of sections) {
    if (!(single || section.root.open) || (some && !section.root.classList.contains("printed")))
      continue;
    section.open();
    section.fit(true);
  }
}

function fromPaper() {
  printing = false;
  document.documentElement.classList.remove("paper");
  for (const section of sections) section.fit();
}

function redrawAll() {
  for (const section of sections) section.redraw();
}

function build() {
  const [only] = season.runs;
  const title = single ? only.name : `${season.runs.length} runs`;
  const help =
    "Drag across a chart to zoom, double-click to show all. With the keyboard: Tab to a chart, " +
    "arrows move the cursor, + and \u2212 zoom, 0 shows all" +
    (single ? "." : "; n and p go to the next and previous run.");
  for (const section of sections) section.root = rootOf(section);
  if (!single) {
    table = new SeasonTable(season, (i, shown) => (sections[i].root.hidden = !shown));
  }
  document.body.append(
    element(
      "header",
      {},
      element("h1", {}, title),
      element("p", { class: "muted" }, single ? (only.project ?? "") : ""),
    ),
    element("main", {}, table?.node, ...sections.map(({ root }) => root)),
    element(
      "footer",
      { class: "muted" },
      element("p", { class: "screen-only" }, help),
      element("p", {}, `Made by aqdata ${season.version}`),
    ),
  );
}

build();
if (single) sections[0].open();
else {
  addEventListener("hashchange", openNamed);
  table.node.addEventListener("click", ({ target }) => {
    if (target.hash === location.hash) openNamed(); // there is no hashchange event then
  });
  addEventListener("keydown", onKey);
  openNamed();
}
matchMedia("(prefers-color-scheme: dark)").addEventListener("change", redrawAll);
addEventListener("beforeprint", toPaper);
addEventListener("afterprint", fromPaper);
