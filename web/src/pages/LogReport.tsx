// A transaction log in a report: totals, activity, its registers, the history of one, everything in order.
import type { JSX } from "preact";
import { useMemo, useState } from "preact/hooks";
import { hasWords } from "../lines";
import { Activity } from "../parts/Activity";
import { Lines } from "../parts/Lines";
import { Card, counted } from "../parts/Page";
import { type Column, Table } from "../parts/Table";
import { Totals } from "../parts/Totals";
import type { LogPart, LogRegister } from "../reported";
import { activityOf, linesOf, ownerOf, totalsOf } from "./logContents";
import { RegisterHistory } from "./RegisterHistory";

const most = 2000; // lines of one look
const mostLines = 200_000; // that are sorted and searched

export function LogReport({ log }: { log: LogPart }): JSX.Element {
  const [picked, pick] = useState(() => mostChanged(log.registers));
  return (
    <>
      <p class="lead">{leadOf(log)}</p>
      <Totals totals={totalsOf(log)} />
      <Card title="Accesses in the order of the log">
        <Activity {...activityOf(log)} />
      </Card>
      <div class="two">
        <Registers log={log} picked={picked} onPick={pick} />
        <div>
          {picked ? (
            <RegisterHistory key={log.registers.indexOf(picked)} log={log} register={picked} />
          ) : (
            <p class="empty">No register was accessed.</p>
          )}
        </div>
      </div>
      <Order log={log} />
    </>
  );
}

function leadOf(log: LogPart): string {
  const times = log.begun
    ? `Transaction log from ${log.begun} to ${log.ended}.`
    : "Transaction log. It has no times: accesses are counted from 1, in order.";
  if (!log.of) return times;
  const [first, last] = [Math.ceil(log.of.each / 2), Math.floor(log.of.each / 2)];
  return `${times} The log is too long for one page: of each register it has the first ${first} and the last ${last} accesses; all are counted.`;
}

const mostChanged = (registers: LogRegister[]): LogRegister | null =>
  registers.reduce<LogRegister | null>((best, each) => (!best || each.changes > best.changes ? each : best), null);

function Registers(props: { log: LogPart; picked: LogRegister | null; onPick: (register: LogRegister) => void }): JSX.Element {
  const { log, picked, onPick } = props;
  const [words, setWords] = useState("");
  const [changed, setChanged] = useState(false);
  const shown = log.registers.filter((each) => hasWords(`${each.address} ${each.name ?? ""} ${ownerOf(each)}`, words) && (!changed || each.changes > 0));
  return (
    <section aria-label="Registers">
      <div class="bar">
        <input type="search" aria-label="Find registers" placeholder="address or name" value={words} onInput={(event) => setWords(event.currentTarget.value)} />
        <label>
          <input type="checkbox" checked={changed} onChange={(event) => setChanged(event.currentTarget.checked)} /> only those whose reads changed
        </label>
        <span class="soft" role="status">
          {`${shown.length} of ${counted(log.registers.length, "register")}`}
        </span>
      </div>
      <Table
        label="Registers of the log"
        columns={registerColumns(log, picked, onPick)}
        rows={shown}
        keyOf={(each) => `${ownerOf(each)} ${each.phy} ${each.address}`}
        rowClass={(each) => (each === picked ? "picked" : "")}
        onPick={onPick}
        empty="No register matches."
      />
    </section>
  );
}

const registerColumns = (log: LogPart, picked: LogRegister | null, onPick: (register: LogRegister) => void): Column<LogRegister>[] => [
  { key: "owner", head: log.begun ? "Device" : "Adapter", cell: (each) => each.device ?? each.adapter, order: (each) => each.device ?? each.adapter },
  { key: "phy", head: "PHY", cell: (each) => each.phy, order: (each) => each.phy, kind: "number" },
  {
    key: "address",
    head: "Address",
    cell: (each) => (
      <button class="name" aria-pressed={each === picked} onClick={() => onPick(each)}>
        <code>{each.address}</code>
      </button>
    ),
    order: (each) => each.address,
  },
  { key: "name", head: "Register", cell: (each) => each.name, order: (each) => each.name ?? "" },
  { key: "reads", head: "Reads", cell: (each) => each.reads, order: (each) => each.reads, kind: "number" },
  { key: "writes", head: "Writes", cell: (each) => each.writes, order: (each) => each.writes, kind: "number" },
  { key: "changes", head: "Changes", cell: (each) => <span class={each.changes ? "changed" : ""}>{each.changes}</span>, order: (each) => each.changes, kind: "number" },
  { key: "first", head: "First read", cell: (each) => <code>{each.first}</code>, order: (each) => each.first, kind: "wide" },
  { key: "last", head: "Last read", cell: (each) => <code>{each.last}</code>, order: (each) => each.last, kind: "wide" },
];

// Everything in order: accesses, services, events and notes.
function Order({ log }: { log: LogPart }): JSX.Element {
  const [words, setWords] = useState("");
  const [first, setFirst] = useState(0);
  const lines = useMemo(() => linesOf(log, mostLines), [log]);
  const found = useMemo(() => (words.trim() ? lines.filter((line) => hasWords(Object.values(line).join(" "), words)) : lines), [lines, words]);
  const shown = found.slice(first, first + most);
  const left = log.moreLines ? `, ${log.moreLines} services and notes more in the log` : "";
  return (
    <Card title="Everything in order">
      <Lines lines={shown} status={`${counted(found.length, "line")}, shown ${shown.length ? first + 1 : 0} to ${first + shown.length}${left}`}>
        <input
          type="search"
          aria-label="Filter lines"
          placeholder="port, register, service"
          value={words}
          onInput={(event) => (setFirst(0), setWords(event.currentTarget.value))}
        />
        <button disabled={first === 0} onClick={() => setFirst(Math.max(0, first - most))}>
          Earlier
        </button>
        <button disabled={first + shown.length >= found.length} onClick={() => setFirst(first + most)}>
          Later
        </button>
      </Lines>
    </Card>
  );
}
