// A time line over all services: of a transaction log, or of what the server does now.
import type { JSX } from "preact";
import { useEffect, useState } from "preact/hooks";
import { useAnswer, useTopic } from "../hooks";
import { TimeLine } from "../parts/TimeLine";
import { Page, Problem, counted } from "../parts/Page";
import { type Column, Table } from "../parts/Table";
import type { Hello } from "../types";

// Number of the line; adapter, phy, op, mmd, address, value, time, port, outcome, arguments, result.
export type Entry = [number, string[]];

const every = 2000; // ms between looks at a file, which may grow
const most = 2000; // rows of one look

const columns: Column<Entry>[] = [
  { key: "line", head: "Line", cell: ([number]) => number, order: ([number]) => number, kind: "number wide" },
  { key: "time", head: "Time", cell: ([, row]) => <time>{row[6]?.slice(11, 23)}</time>, order: ([, row]) => row[6] ?? "" },
  { key: "port", head: "Port", cell: ([, row]) => `${row[7] || row[0]}${row[1] ? ` PHY ${row[1]}` : ""}`, order: ([, row]) => row[7] ?? "" },
  { key: "op", head: "Access", cell: ([, row]) => nameOf(row[2] ?? ""), order: ([, row]) => row[2] ?? "" },
  { key: "where", head: "Register", cell: ([, row]) => <code>{whereOf(row)}</code>, order: (entry) => whereOf(entry[1]) },
  { key: "value", head: "Value", cell: ([, row]) => <code>{row[5] || row[10]}</code> },
  { key: "arguments", head: "Arguments", cell: ([, row]) => row[9], kind: "wide" },
  { key: "outcome", head: "Outcome", cell: ([, row]) => <span class={row[8] && row[8] !== "done" ? "bad" : ""}>{row[8]}</span>, order: ([, row]) => row[8] ?? "" },
];

export function LogPage({ hello }: { hello: Hello }): JSX.Element {
  const [source, setSource] = useState(hello.logs.length ? 0 : -1);
  const [words, setWords] = useState("");
  return (
    <Page title="Time line">
      <div class="bar">
        <label>
          Of{" "}
          <select aria-label="Time line of" value={source} onChange={(event) => setSource(Number(event.currentTarget.value))}>
            <option value={-1}>this server, now</option>
            {hello.logs.map((name, index) => (
              <option key={index} value={index}>
                {name}
              </option>
            ))}
          </select>
        </label>
        <input
          type="search"
          aria-label="Filter lines"
          placeholder="port, register, service"
          value={words}
          onInput={(event) => setWords(event.currentTarget.value)}
        />
      </div>
      {source < 0 ? <LiveLog words={words} /> : <FileLog log={source} words={words} />}
    </Page>
  );
}

function LiveLog({ words }: { words: string }): JSX.Element {
  const { values, problem } = useTopic<Record<string, string[]>>("log", {});
  const wanted = words.toLowerCase().split(/\s+/).filter(Boolean);
  const entries = Object.entries(values)
    .slice(-most)
    .map(([number, row]): Entry => [Number(number), row])
    .filter(([, row]) => wanted.every((word) => row.join(",").toLowerCase().includes(word)))
    .reverse();
  return <Entries entries={entries} problem={problem} status={`${entries.length} accesses since this page was opened, the newest first`} />;
}

function FileLog({ log, words }: { log: number; words: string }): JSX.Element {
  const [first, setFirst] = useState(0);
  const [look, again] = useState(0);
  useEffect(() => {
    const timer = setInterval(() => again((count) => count + 1), every);
    return () => clearInterval(timer);
  }, []);
  useEffect(() => setFirst(0), [log, words]);
  const { answer, problem } = useAnswer<{ total: number; cut: boolean; rows: Entry[] }>("log", { log, first, words }, look);
  const rows = answer?.rows ?? [];
  const status = answer ? `${counted(answer.total, "line")}${answer.cut ? " at the end of the file" : ""}, shown ${rows.length ? first + 1 : 0} to ${first + rows.length}` : "";
  return (
    <Entries entries={rows} problem={problem} status={status}>
      <button disabled={first === 0} onClick={() => setFirst(Math.max(0, first - most))}>
        Earlier
      </button>
      <button disabled={!answer || first + rows.length >= answer.total} onClick={() => setFirst(first + most)}>
        Later
      </button>
    </Entries>
  );
}

function Entries(props: { entries: Entry[]; problem: string; status: string; children?: JSX.Element[] }): JSX.Element {
  return (
    <>
      <Problem text={props.problem} />
      <div class="bar">
        {props.children}
        <span class="soft" role="status">
          {props.status}
        </span>
      </div>
      <TimeLine entries={props.entries} />
      <Table label="Accesses" columns={columns} rows={props.entries} keyOf={([number]) => String(number)} empty="No line matches." />
    </>
  );
}

const names: Record<string, string> = { MW: "write", MR: "read", "2W": "write, Clause 22", "2R": "read, Clause 22" };

const nameOf = (op: string): string => names[op] ?? op;

function whereOf(row: string[]): string {
  if (!row[4]) return "";
  return row[3] ? `${parseInt(row[3], 16)}.0x${row[4]}` : `0x${row[4]}`;
}
