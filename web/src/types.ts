// What the server tells, as it is told.
export interface Hello {
  write: boolean;
  maps: string[];
  logs: string[];
  runs: string[];
  intervals: number[];
}

export interface Row {
  address: string;
  ports: number[];
  state: "found" | "up" | "away" | "held" | "trouble";
  problem: string;
  sessions: string[];
  now: number | null;
  median: number | null;
  p99: number | null;
  temperatures: (number | null)[];
}

export interface BoardPage {
  row?: Row;
  services?: Record<string, number>;
  events?: [number, string, string, string][];
  requests?: [number, string, string, number][];
  phys?: Record<string, [number, string][]>;
  setPoints?: Record<string, number>;
}

// Name, address, bits, access, safe to read, readable, writable.
export type Listed = [string, string, number, string, boolean, boolean, boolean];

export interface Field {
  name: string;
  text: string;
  bits: [number, number][];
  signed: boolean;
  scaled: boolean;
  scale: number;
  offset: number;
  unit: string;
  choices: [number, string][];
}

export interface AccessedField extends Field {
  access: string;
}

export interface Described {
  text: string;
  reset: number | null;
  fields: AccessedField[];
}
