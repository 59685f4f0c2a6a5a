// Lines of a transaction log, as pages show them.
export interface Line {
  number: number;
  time: string;
  port: string;
  lane: string; // of the time line
  access: string;
  where: string;
  value: string;
  words: string; // arguments, the text of a note
  outcome: string;
  write: boolean;
}

// Number of the line; adapter, phy, op, mmd, address, value, time, port, outcome, arguments, result.
export type Told = [number, string[]];

const names: Record<string, string> = { MW: "write", MR: "read", "2W": "write, Clause 22", "2R": "read, Clause 22" };

export function lineOf(number: number, row: string[]): Line {
  const [adapter = "", phy = "", op = "", mmd = "", address = "", value = "", time = "", port = "", outcome = "", words = "", result = ""] = row;
  return {
    number,
    time,
    port: placeOf(port || adapter, phy),
    lane: names[op] ? "registers" : laneOf(op),
    access: names[op] ?? op,
    where: address && (mmd ? `${parseInt(mmd, 16)}.0x${address}` : `0x${address}`),
    value: value || result,
    words,
    outcome,
    write: op.endsWith("W"),
  };
}

export const placeOf = (port: string, phy: string | number): string => `${port}${phy === "" ? "" : ` PHY ${phy}`}`;

// "i2c" of i2c.read.
export const laneOf = (op: string): string => op.split(".")[0] || "notes";

export const isBad = (line: Line): boolean => line.outcome !== "" && line.outcome !== "done";

// Whether every word is in the text.
export const hasWords = (text: string, words: string): boolean => {
  const known = text.toLowerCase();
  return words.toLowerCase().split(/\s+/).every((word) => known.includes(word));
};
