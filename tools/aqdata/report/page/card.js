import { decimals } from "./data.js";
import { element } from "./dom.js";

const FINDINGS_ON_PAPER = 6;
const KEPT_OUT = new Set(["other_records", "comments"]); // shown below the others

const wordsOf = (key) => {
  const text = key.replaceAll("_", " ");
  return text[0].toUpperCase() + text.slice(1);
};

function pair(name, value) {
  return element("div", {}, element("dt", {}, name), element("dd", {}, value));
}

/** The header, the files that the page was made from, and the figures of the event. */
export function card(run) {
  const { header, sources, event, file } = run.data;
  const pairs = [pair("File", file)];
  for (const [key, value] of Object.entries(header)) {
    if (KEPT_OUT.has(key) || value === "" || value == null) continue;
    pairs.push(pair(wordsOf(key), String(value)));
  }
  for (const { what, file: name } of sources) pairs.push(pair(wordsOf(what), name));
  const lines = [...(header.other_records ?? []), ...(header.comments ?? [])];
  return element(
    "div",
    { class: "card" },
    event ? figures(event) : null,
    element("dl", {}, ...pairs),
    lines.length ? element("pre", { class: "lines" }, lines.join("\n")) : null,
  );
}

function figures(event) {
  const bound = event.first == null || event.last == null;
  const each = [
    ["EPNL", event.EPNL, bound ? "EPNdB, a lower bound" : "EPNdB"],
    ["PNLTM", event.PNLTM, "TPNdB"],
    ["Duration", event.duration_correction, "dB"],
  ];
  return element(
    "ul",
    { class: "figures" },
    ...each.map(([name, value, unit]) =>
      element("li", {}, `${name} `, element("b", {}, decimals(value)), ` ${unit}`),
    ),
  );
}

function placeText(finding) {
  const parts = [finding.file];
  for (const key of ["line", "field", "record", "band"]) {
    if (finding[key] != null) parts.push(`${key} ${finding[key]}`);
  }
  return parts.join(", ");
}

/** What `aqdata check` finds in the files of the run; `onRecord` moves the cursor to a record. */
export function findings(run, onRecord) {
  const all = run.data.findings;
  const rows = all.map((finding, i) => {
    const goes = finding.record != null && run.placeOf(finding.record) >= 0;
    const place = goes
      ? element(
          "button",
          { type: "button", class: "link", onclick: () => onRecord(finding) },
          placeText(finding),
        )
      : placeText(finding);
    return element(
      "li",
      { class: i < FINDINGS_ON_PAPER ? finding.severity : `${finding.severity} screen-only` },
      element("span", { class: "severity" }, finding.severity),
      " ",
      place,
      `: ${finding.message} `,
      element("span", { class: "muted" }, `[${finding.name}]`),
    );
  });
  const more =
    all.length > FINDINGS_ON_PAPER ? `and ${all.length - FINDINGS_ON_PAPER} more on the screen` : "";
  return element(
    "div",
    { class: "findings" },
    element("h3", {}, all.length ? "Findings" : "No findings"),
    element("ul", {}, ...rows),
    element("p", { class: "paper-only" }, more),
  );
}

/** The event, and values that could not be computed, in words. */
export function words(run) {
  const lines = run.data.words ?? [];
  return element("ul", { class: "words" }, ...lines.map((line) => element("li", {}, line)));
}
