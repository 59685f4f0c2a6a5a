// What a run measured: a plot of a value over a condition, every point, its summary.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { Chart, saveText } from "./Chart";
import { Card, counted } from "./Page";
import { type Column, Table } from "./Table";

export interface Summary {
  name: string;
  text: string;
  conditions: string[];
  missing: number;
  going: boolean;
}

// Port, conditions, repeat, whether it was measured, values.
export type Point = [string, unknown[], number, boolean, Record<string, unknown>];

// As it is told: points by their number, and the summary.
export type Told = Record<string, Point> & { summary?: Summary };

export const pointsOf = (told: Told): Point[] => Object.entries(told).flatMap(([key, value]) => (key === "summary" ? [] : [value as Point]));

export const progressOf = (summary: Summary, points: Point[]): string =>
  `${counted(points.length, "point")}, ${summary.missing} missing${summary.going ? ", going on" : ""}.`;

export function RunView({ summary, points }: { summary: Summary; points: Point[] }): JSX.Element {
  return (
    <>
      <Curves summary={summary} points={points} />
      <Card title="Points" tools={<button onClick={() => saveText(summary.name, "csv", csvOf(summary, points))}>CSV</button>}>
        <Table label="Points" columns={columnsOf(summary, points)} rows={points} keyOf={([port, conditions, repeat]) => JSON.stringify([port, conditions, repeat])} empty="No point was measured yet." />
      </Card>
      <Card title="Summary">
        <pre>{summary.text}</pre>
      </Card>
    </>
  );
}

function Curves({ summary, points }: { summary: Summary; points: Point[] }): JSX.Element | null {
  const numeric = namesOf(points).filter((name) => points.some((point) => typeof point[4][name] === "number"));
  const across = summary.conditions.filter((_, index) => points.some((point) => typeof point[1][index] === "number"));
  const [chosen, choose] = useState({ value: "", condition: "" });
  const value = numeric.includes(chosen.value) ? chosen.value : numeric[0];
  const condition = across.includes(chosen.condition) ? chosen.condition : longest(summary, points, across);
  if (value === undefined || condition === undefined) return null;
  const place = summary.conditions.indexOf(condition);
  const x = [...new Set(points.map((point) => Number(point[1][place])))].sort((a, b) => a - b);
  const curves = new Map<string, Map<number, number>>();
  for (const [port, conditions, repeat, , values] of points) {
    const others = conditions.filter((_, index) => index !== place).map(String);
    const name = [port, ...others, ...(repeat ? [`repeat ${repeat}`] : [])].join(", ");
    const curve = curves.get(name) ?? new Map<number, number>();
    if (typeof values[value] === "number") curve.set(Number(conditions[place]), values[value] as number);
    curves.set(name, curve);
  }
  return (
    <Card
      title="Plot"
      tools={
        <>
          <Choice label="Value" names={numeric} chosen={value} onChoose={(name) => choose({ ...chosen, value: name })} />
          <Choice label="Over" names={across} chosen={condition} onChoose={(name) => choose({ ...chosen, condition: name })} />
        </>
      }
    >
      <Chart
        title={`${summary.name} ${value}`}
        across={condition}
        x={x}
        curves={[...curves].slice(0, 40).map(([name, curve]) => ({ name, values: x.map((each) => curve.get(each) ?? null), shape: "points" as const }))}
      />
      {curves.size > 40 && <p class="soft">The first 40 of {curves.size} curves.</p>}
    </Card>
  );
}

function Choice(props: { label: string; names: string[]; chosen: string; onChoose: (name: string) => void }): JSX.Element {
  return (
    <label>
      {props.label}{" "}
      <select value={props.chosen} onChange={(event) => props.onChoose(event.currentTarget.value)}>
        {props.names.map((name) => (
          <option key={name}>{name}</option>
        ))}
      </select>
    </label>
  );
}

// The condition that has most values.
const longest = (summary: Summary, points: Point[], names: string[]): string | undefined =>
  [...names].sort((a, b) => count(summary, points, b) - count(summary, points, a))[0];

const count = (summary: Summary, points: Point[], name: string): number =>
  new Set(points.map((point) => point[1][summary.conditions.indexOf(name)])).size;

const namesOf = (points: Point[]): string[] => [...new Set(points.flatMap((point) => Object.keys(point[4])))].sort();

const shown = (value: unknown): string => (typeof value === "number" ? String(Number(value.toPrecision(6))) : String(value ?? ""));

function columnsOf(summary: Summary, points: Point[]): Column<Point>[] {
  const sortable = (value: unknown) => (typeof value === "number" ? value : value === undefined || value === null ? null : String(value));
  return [
    { key: "port", head: "Port", cell: (point) => point[0], order: (point) => point[0] },
    ...summary.conditions.map((name, index) => ({
      key: `condition ${name}`,
      head: name,
      cell: (point: Point) => shown(point[1][index]),
      order: (point: Point) => sortable(point[1][index]),
      kind: "number",
    })),
    { key: "repeat", head: "Repeat", cell: (point) => point[2], order: (point) => point[2], kind: "number wide" },
    ...namesOf(points).map((name) => ({
      key: `value ${name}`,
      head: name,
      cell: (point: Point) => (point[3] ? shown(point[4][name]) : <span class="bad">failed</span>),
      order: (point: Point) => sortable(point[4][name]),
      kind: "number",
    })),
  ];
}

function csvOf(summary: Summary, points: Point[]): string {
  const names = namesOf(points);
  const quoted = (value: unknown) => (/[",\n]/.test(String(value ?? "")) ? `"${String(value).replaceAll('"', '""')}"` : String(value ?? ""));
  const rows = points.map((point) => [point[0], ...point[1], point[2], ...names.map((name) => point[4][name])]);
  return [["port", ...summary.conditions, "repeat", ...names], ...rows].map((row) => row.map(quoted).join(",")).join("\n") + "\n";
}
