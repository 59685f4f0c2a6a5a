// Fields over time, or over the accesses of a log.
import type { JSX } from "preact";
import { Chart } from "./Chart";

export type Samples = Map<string, [number, number][]>; // seconds since 1970 (or number of the access) and value, by REGISTER.FIELD

interface Props {
  title: string;
  names: string[];
  samples: Samples;
  across?: string; // of what is not over time
}

export function FieldHistory({ title, names, samples, across = "" }: Props): JSX.Element {
  const x = [...new Set(names.flatMap((name) => (samples.get(name) ?? []).map(([at]) => at)))].sort((a, b) => a - b);
  const curves = names.map((name) => {
    const known = new Map(samples.get(name));
    let last: number | null = null; // a value holds until it changes
    return { name, values: x.map((at) => (last = known.get(at) ?? last)), shape: "steps" as const };
  });
  return <Chart title={`${title} fields`} across={across || "time"} time={!across} x={x} curves={curves} />;
}
