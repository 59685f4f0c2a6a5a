// What stands in a report, as the tool writes it.
import type { Told as Run } from "./parts/RunView";
import type { Field } from "./types";

export interface Report {
  title: string;
  parts: Part[];
}

export type Part = LogPart | DumpsPart | RunPart;

// Whether it is a write, whether it was queued, its value, its time if the log has times.
export type Access = [0 | 1, 0 | 1, string | null, string?];

export interface LogPart {
  kind: "log";
  title: string;
  accesses: Access[];
  registers: LogRegister[];
  configuration: number;
  stray: number;
  begun: string; // of the first line and the last; empty: the log has no times
  ended: string;
  timeline: Happened[];
  moreLines?: number; // of the time line that are not here
  // Of a log that is too long for a page: places of its accesses in the log, how many there are, the picture of all.
  places?: number[];
  of?: { accesses: number; writes: number; queued: number; each: number };
  activity?: { reads: number[]; writes: number[] };
}

// How many accesses went before; time, device, what, arguments or text, result, outcome.
export type Happened = [number, string, string, string, string, string, string];

export interface LogRegister extends Named {
  device?: string;
  adapter: number;
  phy: number;
  reads: number;
  writes: number;
  changes: number;
  first: string;
  last: string;
  at: number[]; // its accesses
}

// What a map says of it, if there is one that has it.
export interface Named {
  address: string;
  name?: string;
  fields?: Field[];
}

export interface DumpsPart {
  kind: "dumps";
  title: string;
  dumps: { file: string; date: string; device: string; address: string; phy: number; identifier: string }[];
  registers: DumpedRegister[];
}

export interface DumpedRegister extends Named {
  values: (string | null)[]; // in each dump
  mask?: string; // the bits that are compared
}

export interface RunPart {
  kind: "run";
  title: string;
  told: Run;
}
