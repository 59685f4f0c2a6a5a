// Watched fields over time.
import type { JSX } from "preact";
import { Chart } from "../parts/Chart";

export type Samples = Map<string, [number, number][]>; // seconds since 1970 and value, by REGISTER.FIELD

export function FieldHistory({ title, names, samples }: { title: string; names: string[]; samples: Samples }): JSX.Element {
  const x = [...new Set(names.flatMap((name) => (samples.get(name) ?? []).map(([at]) => at)))].sort((a, b) => a - b);
  const curves = names.map((name) => {
    const known = new Map(samples.get(name));
    let last: number | null = null; // a value holds until it changes
    return { name, values: x.map((at) => (last = known.get(at) ?? last)) };
  });
  return <Chart title={`${title} fields`} across="time" time x={x} curves={curves} />;
}
