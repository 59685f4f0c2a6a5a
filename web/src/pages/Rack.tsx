// The rack: every board in one table.
import type { JSX } from "preact";
import { useEffect, useMemo, useRef, useState } from "preact/hooks";
import { linkTo, useTopic } from "../hooks";
import { live } from "../live";
import { type Column, Table } from "../parts/Table";
import { Page, Problem, State, celsius, counted, milliseconds } from "../parts/Page";
import type { Row } from "../types";

type Board = Row & { serial: string };

const pause = 150; // ms without a scroll until the boards on the screen are asked: those that fly past are not

const columns: Column<Board>[] = [
  { key: "serial", head: "Board", cell: (row) => <a href={linkTo("board", row.serial)}>{row.serial}</a>, order: (row) => row.serial },
  { key: "state", head: "State", cell: (row) => <State row={row} />, order: (row) => row.state },
  { key: "address", head: "Address", cell: (row) => row.address, order: (row) => row.address, kind: "wide" },
  { key: "ports", head: "Ports", cell: (row) => row.ports.join(", "), kind: "wide" },
  { key: "now", head: "Trip, ms", cell: (row) => milliseconds(row.now), order: (row) => row.now, kind: "number" },
  { key: "median", head: "Median", cell: (row) => milliseconds(row.median), order: (row) => row.median, kind: "number wide" },
  { key: "p99", head: "99 %", cell: (row) => milliseconds(row.p99), order: (row) => row.p99, kind: "number wide" },
  { key: "celsius", head: "°C", cell: (row) => celsius(row.temperatures[0]), order: (row) => row.temperatures[0] ?? null, kind: "number" },
  {
    key: "sessions",
    head: "Sessions",
    cell: (row) => (row.state === "held" ? "of another program" : row.sessions.length ? `${row.sessions.length} of this server` : ""),
    order: (row) => row.sessions.length,
    kind: "wide",
  },
];

export function RackPage(): JSX.Element {
  const { values, problem } = useTopic<Record<string, Row>>("rack", {});
  const [wanted, want] = useState("");
  const [searching, setSearching] = useState(false);
  const all = Object.keys(values).length;
  const serials = useMemo(() => Object.keys(values).sort(byName.compare), [all]);
  const shown = matching(serials, values, wanted);
  const looking = useRef(0);
  const look = (boards: string[]) => {
    clearTimeout(looking.current);
    looking.current = setTimeout(() => live.look(boards), pause);
  };
  useEffect(() => () => clearTimeout(looking.current), []);
  const search = () => {
    setSearching(true);
    void live.ask("search").finally(() => setSearching(false));
  };
  return (
    <Page title="Rack">
      <Problem text={problem} />
      <div class="bar">
        <input
          type="search"
          aria-label="Filter boards"
          placeholder="name, address or state"
          value={wanted}
          onInput={(event) => want(event.currentTarget.value)}
        />
        <button onClick={search} disabled={searching}>
          {searching ? "Looking ..." : "Look again"}
        </button>
        <span class="soft" role="status">
          {shown.length === all ? counted(all, "board") : `${shown.length} of ${counted(all, "board")}`}
        </span>
      </div>
      <Table
        label="Boards"
        columns={columns}
        rows={shown}
        keyOf={(row) => row.serial}
        empty={all ? "No board matches." : "No board has answered yet."}
        onInSight={(rows) => look(rows.map((row) => row.serial))}
      />
    </Page>
  );
}

const byName = new Intl.Collator("en", { numeric: true });

function matching(serials: string[], values: Record<string, Row>, wanted: string): Board[] {
  const words = wanted.toLowerCase().split(/\s+/).filter(Boolean);
  const found: Board[] = [];
  for (const serial of serials) {
    const row = values[serial];
    if (!row) continue;
    const text = `${serial} ${row.address} ${row.state}`.toLowerCase();
    if (words.every((word) => text.includes(word))) found.push({ ...row, serial });
  }
  return found;
}
