// Accesses in order: a time line over them, and a table.
import type { ComponentChildren, JSX } from "preact";
import { type Line, isBad } from "../lines";
import { Problem } from "./Page";
import { type Column, Table } from "./Table";
import { TimeLine } from "./TimeLine";

const columns: Column<Line>[] = [
  { key: "line", head: "Line", cell: (line) => line.number, order: (line) => line.number, kind: "number wide" },
  { key: "time", head: "Time", cell: (line) => <time>{line.time.slice(11, 23)}</time>, order: (line) => line.time },
  { key: "port", head: "Port", cell: (line) => line.port, order: (line) => line.port },
  { key: "op", head: "Access", cell: (line) => line.access, order: (line) => line.access },
  { key: "where", head: "Register", cell: (line) => <code>{line.where}</code>, order: (line) => line.where },
  { key: "value", head: "Value", cell: (line) => <code>{line.value}</code> },
  { key: "arguments", head: "Arguments", cell: (line) => line.words, kind: "wide" },
  { key: "outcome", head: "Outcome", cell: (line) => <span class={isBad(line) ? "bad" : ""}>{line.outcome}</span>, order: (line) => line.outcome },
];

interface Props {
  lines: Line[];
  problem?: string;
  status: string;
  children?: ComponentChildren; // what chooses among them
}

export function Lines({ lines, problem = "", status, children }: Props): JSX.Element {
  return (
    <>
      <Problem text={problem} />
      <div class="bar">
        {children}
        <span class="soft" role="status">
          {status}
        </span>
      </div>
      <TimeLine lines={lines} />
      <Table label="Accesses" columns={columns} rows={lines} keyOf={(line) => String(line.number)} empty="No line matches." />
    </>
  );
}
