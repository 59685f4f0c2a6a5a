// Fields of a PHY that are watched, over time.
import type { JSX } from "preact";
import { useRef } from "preact/hooks";
import { numberOf } from "../decode";
import { useAnswer, useTopic } from "../hooks";
import type { WatchedFields } from "../plots";
import type { Described } from "../types";
import { FieldHistory, type Samples } from "./FieldHistory";
import { Problem } from "./Page";

const kept = 6000; // samples of a field

export function WatchedFieldsPlot({ watched }: { watched: WatchedFields }): JSX.Element {
  const { port, phy, map, interval, names } = watched;
  const registers = [...new Set(names.map(registerOf))].sort(); // the same ones are one topic, whoever watches them
  const samples = useRef<Samples>(new Map());
  const { answer: described, problem } = useAnswer<Record<string, Described>>("describe", { map, names: registers });
  const told = useRef(new Map<string, [number, number][]>()); // of registers: when, and what they held
  const { values, problem: refused } = useTopic<{ problem?: string | null }>("registers", { port, phy, map, names: registers, interval }, (changed, at) => {
    for (const [index, value] of Object.entries(changed)) {
      const register = registers[Number(index)];
      if (register !== undefined && typeof value === "number") told.current.set(register, [...(told.current.get(register) ?? []), [at, value] as [number, number]].slice(-kept));
    }
  });
  for (const name of names) {
    const field = described?.[registerOf(name)]?.fields.find((each) => each.name === name.slice(name.lastIndexOf(".") + 1));
    if (field) samples.current.set(name, (told.current.get(registerOf(name)) ?? []).map(([at, value]) => [at, numberOf(field, value)]));
  }
  return (
    <>
      <Problem text={problem || refused || values.problem || ""} />
      <FieldHistory title={`${port} PHY ${phy}`} names={names} samples={samples.current} />
    </>
  );
}

const registerOf = (name: string): string => name.slice(0, name.lastIndexOf("."));
