// A plot: drag or click to zoom, double click to see all; as a picture or as CSV.
import type { JSX } from "preact";
import { useEffect, useRef, useState } from "preact/hooks";
import uPlot from "uplot";
import "uplot/dist/uPlot.min.css";

export interface Curve {
  name: string;
  values: (number | null)[];
  dashed?: boolean;
  shape?: "line" | "points" | "steps" | "dots"; // a line unless told; points: with its points, dots: those alone
}

interface Props {
  title: string;
  across: string; // name of what the x values are
  time?: boolean; // x values are seconds since 1970
  x: number[];
  curves: Curve[];
}

const height = 240;
const colours = ["--curve-1", "--curve-2", "--curve-3", "--curve-4", "--curve-5", "--curve-6"];

export function Chart({ title, across, time = false, x, curves }: Props): JSX.Element {
  const box = useRef<HTMLDivElement>(null);
  const plot = useRef<uPlot | null>(null);
  const [zoom, setZoom] = useState<[number, number] | null>(null);
  const shape = JSON.stringify([across, time, curves.map((each) => [each.name, each.dashed, each.shape])]);
  useEffect(() => {
    const element = box.current;
    if (!element) return undefined;
    const made = new uPlot(optionsOf(element, across, time, curves, setZoom), dataOf(x, curves), element);
    plot.current = made;
    setZoom(null);
    made.over.addEventListener("dblclick", () => setZoom(null));
    const observer = new ResizeObserver(() => made.setSize({ width: element.clientWidth, height }));
    observer.observe(element);
    return () => {
      observer.disconnect();
      made.destroy();
      plot.current = null;
    };
  }, [shape]);
  useEffect(() => {
    plot.current?.setData(dataOf(x, curves), !zoom); // what was zoomed into stays in sight
    if (zoom) plot.current?.redraw();
  }, [x, curves, zoom]);
  const all = { begin: x[0] ?? 0, end: x[x.length - 1] ?? 0 };
  const narrow = () => {
    const [begin, end] = zoom ?? [all.begin, all.end];
    const quarter = (end - begin) / 4;
    plot.current?.setScale("x", { min: begin + quarter, max: end - quarter });
    setZoom([begin + quarter, end - quarter]);
  };
  return (
    <figure class="chart">
      <figcaption>
        <span>
          {title}
          {zoom && <output class="zoom">{`, ${across} ${shownAt(zoom[0], time)} to ${shownAt(zoom[1], time)}`}</output>}
        </span>
        <span class="tools">
          <button disabled={x.length < 2} onClick={narrow}>Zoom in</button>
          <button disabled={!zoom} onClick={() => setZoom(null)}>All</button>
          <button onClick={() => plot.current && savePicture(plot.current, title)}>PNG</button>
          <button onClick={() => saveText(title, "csv", csvOf(across, x, curves))}>CSV</button>
        </span>
      </figcaption>
      <div ref={box} role="img" aria-label={describe(title, x, curves)} />
    </figure>
  );
}

const shapes: Record<NonNullable<Curve["shape"]>, Partial<uPlot.Series>> = {
  line: {},
  points: { points: { show: true, size: 6 } },
  steps: { paths: uPlot.paths.stepped!({ align: 1 }) },
  dots: { paths: () => null, points: { show: true, size: 7 } },
};

const dataOf = (x: number[], curves: Curve[]): uPlot.AlignedData => [x, ...curves.map((each) => each.values)];

const shownAt = (at: number, time: boolean): string =>
  time ? new Date(at * 1000).toISOString().slice(11, 23) : String(Number(at.toPrecision(4)));

function optionsOf(
  element: HTMLElement,
  across: string,
  time: boolean,
  curves: Curve[],
  onZoom: (range: [number, number]) => void,
): uPlot.Options {
  const style = getComputedStyle(document.documentElement);
  const colour = (name: string) => style.getPropertyValue(name).trim();
  const axis = { stroke: colour("--soft"), grid: { stroke: colour("--line"), width: 1 }, ticks: { show: false } };
  return {
    width: element.clientWidth || 300,
    height,
    scales: { x: { time } },
    cursor: { drag: { x: true, y: false } },
    hooks: {
      setSelect: [
        (plot) => {
          const { left, width } = plot.select;
          if (width > 0) onZoom([plot.posToVal(left, "x"), plot.posToVal(left + width, "x")]);
        },
      ],
    },
    axes: [{ ...axis, ...(time ? {} : { label: across, labelSize: 18 }) }, { ...axis, size: 56 }],
    series: [
      { label: across },
      ...curves.map((curve, index) => ({
        label: curve.name,
        stroke: colour(colours[index % colours.length] ?? "--curve-1"),
        width: 1.5,
        spanGaps: false,
        ...(curve.dashed ? { dash: [6, 4] } : {}),
        ...shapes[curve.shape ?? "line"],
      })),
    ],
  };
}

function describe(title: string, x: number[], curves: Curve[]): string {
  const told = curves.map((curve) => {
    const numbers = curve.values.filter((each): each is number => each !== null);
    if (numbers.length === 0) return `${curve.name}: nothing`;
    const [low, high] = numbers.reduce(([a, b], each) => [Math.min(a, each), Math.max(b, each)], [Infinity, -Infinity]);
    return `${curve.name}: ${low} to ${high}, last ${numbers[numbers.length - 1]}`;
  });
  return `${title}, ${x.length} points. ${told.join("; ")}`;
}

function csvOf(across: string, x: number[], curves: Curve[]): string {
  const quoted = (text: string) => (/[",\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);
  const head = [across, ...curves.map((each) => each.name)].map(quoted).join(",");
  return [head, ...x.map((each, index) => [each, ...curves.map((curve) => curve.values[index] ?? "")].join(","))].join("\n") + "\n";
}

function savePicture(plot: uPlot, title: string): void {
  const picture = document.createElement("canvas");
  const source = plot.ctx.canvas;
  [picture.width, picture.height] = [source.width, source.height];
  const context = picture.getContext("2d");
  if (!context) return;
  context.fillStyle = getComputedStyle(document.documentElement).getPropertyValue("--card");
  context.fillRect(0, 0, picture.width, picture.height);
  context.drawImage(source, 0, 0);
  picture.toBlob((blob) => blob && save(title, "png", blob));
}

export const saveText = (title: string, ending: string, text: string): void =>
  save(title, ending, new Blob([text], { type: "text/plain" }));

function save(title: string, ending: string, blob: Blob): void {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(blob);
  link.download = `${title.replace(/[^A-Za-z0-9]+/g, "-")}.${ending}`;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}
