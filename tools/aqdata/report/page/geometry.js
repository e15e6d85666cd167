import { decimals, extent, goingOn, unpack } from "./data.js";
import { caption } from "./legend.js";
import { line, plain, sideAxis, TimeChart } from "./time_chart.js";

/** Slant range and angles at emission, over the time of the records. */
export const geometry = {
  caption(run) {
    const { celsius } = run.data.geometry;
    const computed = celsius == null ? "" : `, computed for ${decimals(celsius, 1)} \u00b0C`;
    return caption(`Geometry at emission${computed}`, [
      ["level", "slant range"],
      ["theta", "theta"],
      ["beta", "beta"],
    ]);
  },

  serves: (run) =>
    run.timed && Boolean(run.data.geometry) && unpack(run.data.geometry.time).length > 0,

  mount(host, selection) {
    const { run } = selection;
    const data = run.data.geometry;
    const [range, theta, beta] = ["range", "theta", "beta"].map((name) => unpack(data[name]));
    const far = extent(range, 0.08);
    const angles = extent([...theta, ...beta], 0.08, [0, 180]);
    return new TimeChart(host, selection, {
      label: "Geometry: slant range and emission angles theta and beta",
      heights: { screen: 220, paper: 165 },
      data: [
        Array.from(goingOn(unpack(data.time), run.time[0])),
        plain(range),
        plain(theta),
        plain(beta),
      ],
      series: [
        line("level"),
        line("theta", { scale: "angle" }),
        line("beta", { scale: "angle", dash: [6, 3] }),
      ],
      scales: { y: { range: () => far }, angle: { range: () => angles } },
      axes: [
        sideAxis("Slant range"),
        sideAxis("Angle (degrees)", { scale: "angle", side: 1, grid: { show: false } }),
      ],
    });
  },
};
