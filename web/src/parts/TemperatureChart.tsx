// The temperatures of a board since the page was opened, with their set points.
import type { JSX } from "preact";
import { useRef } from "preact/hooks";
import type { Row } from "../types";
import { Chart } from "./Chart";

const kept = 3600; // samples, one a second

interface History {
  x: number[];
  curves: (number | null)[][]; // temperatures, then set points
}

export function TemperatureChart({ serial, row, setPoints }: { serial: string; row: Row; setPoints: Record<string, number> }): JSX.Element {
  const history = useRef<History>({ x: [], curves: [] });
  const latest = useRef<Row | null>(null);
  if (latest.current !== row) {
    latest.current = row;
    remember(history.current, [...row.temperatures, ...row.temperatures.map((_, index) => setPoints[String(index)] ?? null)]);
  }
  const count = row.temperatures.length;
  const names = [...Array(2 * count).keys()].map((index) => (index < count ? `channel ${index}` : `set point ${index - count}`));
  return (
    <Chart
      title={`${serial} temperatures`}
      across="time"
      time
      x={[...history.current.x]}
      curves={names
        .map((name, index) => ({ name, values: history.current.curves[index] ?? [], dashed: index >= count }))
        .filter((curve) => curve.values.some((each) => each !== null))}
    />
  );
}

function remember(history: History, values: (number | null)[]): void {
  history.x.push(Date.now() / 1000);
  values.forEach((value, index) => (history.curves[index] ??= Array(history.x.length - 1).fill(null)).push(value));
  if (history.x.length > kept) {
    history.x.shift();
    history.curves.forEach((each) => each.shift());
  }
}
