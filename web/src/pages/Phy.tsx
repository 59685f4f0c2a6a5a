// One PHY: its registers by a map, decoded, live while they are on the screen.
import type { JSX } from "preact";
import { useMemo, useRef, useState } from "preact/hooks";
import { hex, meaningOf, numberOf, rawOf } from "../decode";
import { linkTo, useAnswer, useTopic } from "../hooks";
import { FieldHistory, type Samples } from "../parts/FieldHistory";
import { Page, Problem, counted } from "../parts/Page";
import { type Column, Table } from "../parts/Table";
import { plotOf } from "../plots";
import type { Described, Hello, Listed } from "../types";
import { RegisterDetail } from "./RegisterDetail";

interface Seen {
  value: number | null;
  changed: number; // bits that the last change changed
  at: number;
}

type Line = { block: string; depth: number; count: number } | { listed: Listed; depth: number };

const fresh = 3; // seconds for which a change is marked

export function PhyPage({ port, phy, hello }: { port: string; phy: number; hello: Hello }): JSX.Element {
  const [map, setMap] = useState(hello.maps[0] ?? "");
  const [words, setWords] = useState("");
  const [interval, setInterval] = useState(1);
  const [closed, setClosed] = useState<ReadonlySet<string>>(new Set());
  const [inSight, setInSight] = useState<string[]>([]);
  const [picked, setPicked] = useState<string | null>(null);
  const [plotted, setPlotted] = useState<string[]>([]); // REGISTER.FIELD
  const [, redraw] = useState(0);
  const { answer: list, problem } = useAnswer<{ total: number; registers: Listed[] }>("map", { map, words });
  const byName = useMemo(() => new Map(list?.registers.map((each) => [each[0], each])), [list]);
  const seen = useRef(new Map<string, Seen>());
  const samples = useRef<Samples>(new Map());
  const lines = useMemo(() => linesOf(list?.registers ?? [], closed), [list, closed]);

  const plottedRegisters = plotted.map((each) => each.slice(0, each.lastIndexOf(".")));
  const wanted = [...new Set([...inSight, ...(picked ? [picked] : []), ...plottedRegisters])].filter((name) => {
    const listed = byName.get(name);
    return listed !== undefined && listed[4] && listed[5];
  });
  wanted.sort(); // the same ones are one topic, whoever watches them
  const described = useDescriptions(map, [...new Set([...inSight, ...(picked ? [picked] : [])])]);
  const { values, problem: refused } = useTopic<{ problem?: string | null }>(
    "registers",
    { port, phy, map, names: wanted, interval },
    (changed, at) => {
      for (const [index, value] of Object.entries(changed)) take(seen.current, wanted[Number(index)], value, at);
      remember(samples.current, plotted, described, seen.current, at);
      setTimeout(() => redraw((count) => count + 1), fresh * 1000 + 50); // the marks end
    },
  );

  const columns: Column<Line>[] = [
    {
      key: "name",
      head: "Register",
      cell: (line) =>
        "block" in line ? (
          <button
            class={`block depth-${line.depth}`}
            aria-expanded={!closed.has(line.block)}
            onClick={() => setClosed(toggled(closed, line.block))}
          >
            {line.block} <span class="soft">{line.count}</span>
          </button>
        ) : (
          <button class={`name depth-${line.depth}`} aria-pressed={picked === line.listed[0]} onClick={() => setPicked(line.listed[0])}>
            {line.listed[0].slice(line.listed[0].lastIndexOf(".") + 1)}
          </button>
        ),
    },
    { key: "at", head: "Address", cell: (line) => ("block" in line ? "" : <code>{line.listed[1]}</code>), kind: "wide" },
    { key: "value", head: "Value", cell: (line) => ("block" in line ? "" : <Value listed={line.listed} seen={seen.current.get(line.listed[0])} />) },
    {
      key: "fields",
      head: "Fields",
      cell: (line) => ("block" in line ? "" : <Fields described={described[line.listed[0]]} seen={seen.current.get(line.listed[0])} />),
    },
  ];
  const chosen = picked ? byName.get(picked) : undefined;
  return (
    <Page title={`${port} PHY ${phy}`}>
      <Problem text={problem || refused || values.problem || ""} />
      <div class="bar">
        <input
          type="search"
          aria-label="Find registers"
          placeholder="name, field or words"
          value={words}
          onInput={(event) => setWords(event.currentTarget.value)}
        />
        <label>
          Map{" "}
          <select value={map} onChange={(event) => setMap(event.currentTarget.value)}>
            {hello.maps.map((name) => (
              <option key={name}>{name}</option>
            ))}
          </select>
        </label>
        <label>
          Every{" "}
          <select value={interval} onChange={(event) => setInterval(Number(event.currentTarget.value))}>
            {hello.intervals.map((seconds) => (
              <option key={seconds} value={seconds}>
                {seconds} s
              </option>
            ))}
          </select>
        </label>
        <span class="soft" role="status">
          {list ? `${counted(list.total, "register")}${list.total > list.registers.length ? `, the first ${list.registers.length} shown` : ""}` : ""}
        </span>
      </div>
      <div class="two">
        <Table
          label="Registers"
          columns={columns}
          rows={lines}
          keyOf={(line) => ("block" in line ? `block ${line.block}` : line.listed[0])}
          empty="No register matches."
          rowClass={(line) => ("block" in line ? "block-row" : line.listed[0] === picked ? "picked" : "")}
          onInSight={(rows) => setInSight(rows.flatMap((line) => ("block" in line ? [] : [line.listed[0]])))}
        />
        <div class="side">
          {chosen && described[chosen[0]] ? (
            <RegisterDetail
              place={{ port, phy, map }}
              listed={chosen}
              described={described[chosen[0]] as Described}
              value={seen.current.get(chosen[0])?.value ?? null}
              changed={changedBits(seen.current.get(chosen[0]))}
              write={hello.write}
              plotted={plotted}
              onPlot={(name) => {
                samples.current.delete(name);
                remember(samples.current, [name], described, seen.current, Date.now() / 1000);
                setPlotted(plotted.includes(name) ? plotted.filter((each) => each !== name) : [...plotted, name]);
              }}
              onRead={(value) => {
                take(seen.current, chosen[0], value, Date.now() / 1000);
                redraw((count) => count + 1);
              }}
            />
          ) : (
            <p class="empty">Choose a register to see its fields.</p>
          )}
          {plotted.length > 0 && (
            <>
              <FieldHistory title={`${port} PHY ${phy}`} names={plotted} samples={samples.current} />
              <a href={linkTo("plots", plotOf.fields({ port, phy, map, interval, names: plotted }))}>On a page of plots</a>
            </>
          )}
        </div>
      </div>
    </Page>
  );
}

// What the map says of registers; each is asked for once.
function useDescriptions(map: string, names: string[]): Record<string, Described> {
  const known = useRef<{ map: string; told: Record<string, Described> }>({ map, told: {} });
  if (known.current.map !== map) known.current = { map, told: {} };
  const missing = names.filter((name) => !(name in known.current.told)).slice(0, 256);
  const { answer } = useAnswer<Record<string, Described>>("describe", { map, names: missing });
  if (answer) Object.assign(known.current.told, answer);
  return known.current.told;
}

function take(seen: Map<string, Seen>, name: string | undefined, value: unknown, at: number): void {
  if (name === undefined || (typeof value !== "number" && value !== null)) return;
  const before = seen.get(name);
  if (before?.value === value) return;
  const changed = before && before.value !== null && value !== null ? Number(BigInt(before.value) ^ BigInt(value)) : 0;
  seen.set(name, { value, changed, at });
}

function remember(samples: Samples, plotted: string[], described: Record<string, Described>, seen: Map<string, Seen>, at: number): void {
  for (const name of plotted) {
    const dot = name.lastIndexOf(".");
    const value = seen.get(name.slice(0, dot))?.value;
    const field = described[name.slice(0, dot)]?.fields.find((each) => each.name === name.slice(dot + 1));
    if (!field || value === undefined || value === null) continue;
    const known = samples.get(name) ?? [];
    known.push([at, numberOf(field, value)]);
    samples.set(name, known.slice(-6000));
  }
}

const changedBits = (seen: Seen | undefined): number => (seen && Date.now() / 1000 - seen.at < fresh ? seen.changed : 0);

function Value({ listed, seen }: { listed: Listed; seen: Seen | undefined }): JSX.Element {
  if (!listed[5]) return <span class="soft">write only</span>;
  if (seen?.value === undefined || seen.value === null) return <span class="soft">{listed[4] ? "..." : "by a click"}</span>;
  return <code class={changedBits(seen) ? "changed" : ""}>{hex(seen.value, listed[2])}</code>;
}

function Fields({ described, seen }: { described: Described | undefined; seen: Seen | undefined }): JSX.Element | null {
  if (!described || seen?.value === undefined || seen.value === null) return null;
  const value = seen.value;
  const changed = changedBits(seen);
  return (
    <span class="fields">
      {described.fields.map((field) => (
        <span key={field.name} class={rawOf(field, changed) ? "changed" : ""}>
          {field.name} {meaningOf(field, value)}
        </span>
      ))}
    </span>
  );
}

// Blocks with their registers, in the order of the map; those of closed blocks are left out.
function linesOf(registers: Listed[], closed: ReadonlySet<string>): Line[] {
  const lines: Line[] = [];
  const blocks = new Map<string, { block: string; depth: number; count: number }>();
  for (const listed of registers) {
    const parts = listed[0].split(".").slice(0, -1);
    let hidden = false;
    parts.forEach((_, index) => {
      const block = parts.slice(0, index + 1).join(".");
      const known = blocks.get(block);
      if (known) ++known.count;
      else {
        const line = { block, depth: Math.min(index, 4), count: 1 };
        blocks.set(block, line);
        if (!hidden) lines.push(line);
      }
      hidden ||= closed.has(block);
    });
    if (!hidden) lines.push({ listed, depth: Math.min(parts.length, 4) });
  }
  return lines;
}

function toggled(set: ReadonlySet<string>, one: string): Set<string> {
  const next = new Set(set);
  if (!next.delete(one)) next.add(one);
  return next;
}
