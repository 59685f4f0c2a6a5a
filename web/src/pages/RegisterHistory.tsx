// One register of a log: its values as a curve, its fields and how they changed, each of its accesses.
import type { JSX } from "preact";
import { useMemo, useState } from "preact/hooks";
import { hex, meaningOf, numberOf as numberIn, rawOf } from "../decode";
import { Bits } from "../parts/Bits";
import { Chart } from "../parts/Chart";
import { FieldHistory } from "../parts/FieldHistory";
import { FieldTable, plotColumn } from "../parts/Fields";
import { counted } from "../parts/Page";
import { type Column, Table } from "../parts/Table";
import type { LogPart, LogRegister } from "../reported";
import type { Field } from "../types";
import { accessText, numberOf, ownerOf } from "./logContents";

interface Step {
  place: number; // of the access in the log, from 1
  time: string;
  access: string;
  write: boolean;
  value: bigint | null;
  bits: number;
  before: bigint | null; // the value that was known then
}

export function RegisterHistory({ log, register }: { log: LogPart; register: LogRegister }): JSX.Element {
  const steps = useMemo(() => stepsOf(log, register), [log, register]);
  const [plotted, setPlotted] = useState<string[]>([]);
  const valued = useMemo(() => steps.filter((step) => step.value !== null), [steps]);
  const curve = useMemo(() => curvesOf(valued), [valued]);
  const { address, name = address, fields = [] } = register;
  const title = name === address ? address : `${address} ${name}`;
  const toggle = (field: string) => setPlotted(plotted.includes(field) ? plotted.filter((each) => each !== field) : [...plotted, field]);
  return (
    <section class="card detail" aria-label={`History of ${title}`}>
      <h2>{title}</h2>
      <p class="soft">
        on PHY {register.phy} of {ownerOf(register)}
      </p>
      {valued.length > 0 && <Chart title={`${title} values`} across="access" {...curve} />}
      {valued.length > 0 && fields.length > 0 && <Fields fields={fields} steps={valued} name={name} plotted={plotted} onPlot={toggle} />}
      {plotted.length > 0 && <FieldHistory title={`${title} fields`} across="access" names={plotted} samples={samplesOf(name, fields, valued)} />}
      <Table label={`Accesses to ${title}`} columns={columnsOf(log, fields)} rows={steps} keyOf={(step) => String(step.place)} empty="" />
    </section>
  );
}

function stepsOf(log: LogPart, register: LogRegister): Step[] {
  let before: bigint | null = null;
  return register.at.flatMap((at): Step[] => {
    const access = log.accesses[at];
    if (!access) return [];
    const value = access[2] === null ? null : BigInt(access[2]);
    const step = { place: numberOf(log, at), time: access[3] ?? "", access: accessText(access), write: access[0] === 1, value, bits: bitsOf(access[2]), before };
    before = value ?? before;
    return [step];
  });
}

const bitsOf = (text: string | null): number => (text === null ? 0 : (text.length - 2) * 4);

function curvesOf(steps: Step[]) {
  const values = steps.map((step) => Number(step.value));
  return {
    x: steps.map((step) => step.place),
    curves: [
      { name: "value", values, shape: "steps" as const },
      ...(["write", "read"] as const).map((name) => ({
        name,
        values: values.map((value, index) => (steps[index]?.write === (name === "write") ? value : null)),
        shape: "dots" as const,
      })),
    ],
  };
}

function samplesOf(name: string, fields: Field[], steps: Step[]): Map<string, [number, number][]> {
  return new Map(fields.map((field) => [`${name}.${field.name}`, steps.map((step): [number, number] => [step.place, numberIn(field, step.value ?? 0n)])]));
}

function Fields(props: { fields: Field[]; steps: Step[]; name: string; plotted: string[]; onPlot: (name: string) => void }): JSX.Element {
  const { fields, steps } = props;
  const last = steps[steps.length - 1]?.value ?? 0n;
  const changes = new Map(fields.map((field) => [field, steps.filter((step) => isChanged(field, step)).length]));
  return (
    <FieldTable
      fields={fields}
      columns={[
        { head: "Last", cell: (field) => meaningOf(field, last), changed: (field) => (changes.get(field) ?? 0) > 0 },
        { head: "Changes", cell: (field) => (changes.get(field) ? counted(changes.get(field) ?? 0, "change") : "") },
        plotColumn(props.name, props.plotted, props.onPlot),
      ]}
    />
  );
}

const isChanged = (field: Field, { value, before }: Step): boolean =>
  value !== null && before !== null && rawOf(field, before) !== rawOf(field, value);

function columnsOf(log: LogPart, fields: Field[]): Column<Step>[] {
  const differs = (step: Step) => (step.value === null || step.before === null ? 0n : step.value ^ step.before);
  return [
    { key: "place", head: "Access", cell: (step) => step.place, order: (step) => step.place, kind: "number" },
    ...(log.begun ? [{ key: "time", head: "Time", cell: (step: Step) => <time>{step.time.slice(11, 23)}</time> }] : []),
    { key: "access", head: "Kind", cell: (step) => step.access, order: (step) => step.access },
    { key: "value", head: "Value", cell: (step) => <code class={differs(step) ? "changed" : ""}>{step.value === null ? "-" : hex(step.value, step.bits)}</code> },
    { key: "bits", head: "Bits", cell: (step) => step.value !== null && step.bits <= 32 && <Bits value={step.value} bits={step.bits} changed={differs(step)} /> },
    ...(fields.length ? [{ key: "fields", head: "Fields", cell: (step: Step) => <Told fields={fields} step={step} /> }] : []),
  ];
}

// What an access tells of the fields: all of them at first, then those that changed.
function Told({ fields, step }: { fields: Field[]; step: Step }): JSX.Element | null {
  const { value, before } = step;
  if (value === null) return null;
  return (
    <span class="fields">
      {fields
        .filter((field) => before === null || isChanged(field, step))
        .map((field) => (
          <span key={field.name} class={before === null ? "" : "changed"}>
            {`${field.name} ${meaningOf(field, value)}${before === null ? "" : ` was ${meaningOf(field, before)}`}`}
          </span>
        ))}
    </span>
  );
}
