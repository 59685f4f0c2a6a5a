// What pages take from a log of a report.
import { type Line, laneOf, placeOf } from "../lines";
import type { Access, Happened, LogPart, LogRegister } from "../reported";

const bars = 120; // of the picture of the activity

export const ownerOf = (register: LogRegister): string => register.device ?? `adapter ${register.adapter}`;

// The number of an access in the log.
export const numberOf = (log: LogPart, at: number): number => (log.places?.[at] ?? at) + 1;

export const accessText = ([write, queued]: Access): string => `${queued ? "queued " : ""}${write ? "write" : "read"}`;

export function totalsOf(log: LogPart): [string, number][] {
  const all = log.of ?? {
    accesses: log.accesses.length,
    writes: log.accesses.filter(([write]) => write).length,
    queued: log.accesses.filter(([, queued]) => queued).length,
  };
  const phys = new Set(log.registers.map((each) => `${ownerOf(each)} ${each.phy}`)).size;
  const totals: [string, number][] = [
    ["accesses", all.accesses],
    ["reads", all.accesses - all.writes],
    ["writes", all.writes],
    ["queued", all.queued],
    ["PHYs", phys],
    ["registers", log.registers.length],
    ["changed between reads", log.registers.filter((each) => each.changes > 0).length],
  ];
  const seldom: [string, number][] = [
    ["configuration space", log.configuration],
    ["stray values", log.stray],
  ];
  return [...totals, ...seldom.filter(([, number]) => number > 0)];
}

export function activityOf(log: LogPart): { reads: number[]; writes: number[] } {
  if (log.activity) return log.activity;
  const total = log.accesses.length;
  const count = Math.min(bars, Math.max(1, total));
  const [reads, writes] = [Array<number>(count).fill(0), Array<number>(count).fill(0)];
  log.accesses.forEach(([write], at) => {
    const list = write ? writes : reads;
    const bar = Math.floor((at * count) / total);
    list[bar] = (list[bar] ?? 0) + 1;
  });
  return { reads, writes };
}

// Accesses, services, events and notes as lines, `most` at most.
export function linesOf(log: LogPart, most: number): Line[] {
  const owners: LogRegister[] = [];
  for (const register of log.registers) for (const at of register.at) owners[at] = register;
  const lines: Line[] = [];
  let next = 0;
  const happenedBefore = (place: number) => {
    for (let entry = log.timeline[next]; entry && entry[0] <= place && lines.length < most; entry = log.timeline[++next])
      lines.push(lineOfEntry(entry, lines.length + 1));
  };
  for (let at = 0; at < log.accesses.length && lines.length < most; ++at) {
    happenedBefore(numberOf(log, at) - 1);
    const [register, access] = [owners[at], log.accesses[at]];
    if (register && access) lines.push(lineOfAccess(register, access, lines.length + 1));
  }
  happenedBefore(Infinity);
  return lines;
}

const lineOfEntry = ([, time, device, what, words, result, outcome]: Happened, number: number): Line => ({
  number,
  time,
  port: device,
  lane: laneOf(what),
  access: what,
  where: "",
  value: result,
  words,
  outcome,
  write: false,
});

const lineOfAccess = (register: LogRegister, access: Access, number: number): Line => ({
  number,
  time: access[3] ?? "",
  port: placeOf(register.device ?? String(register.adapter), register.phy),
  lane: "registers",
  access: accessText(access),
  where: register.address,
  value: access[2] ?? "-",
  words: register.name ?? "",
  outcome: "",
  write: access[0] === 1,
});
