// The plots that a page of plots has, as its address names them: "temperatures OV0001", "capture OV0001",
// "fields OV0001:0 3 ieee8023 0.5 PMA.CONTROL1.LOOPBACK PMA.STATUS1.LINK".
export interface WatchedFields {
  port: string;
  phy: number;
  map: string;
  interval: number; // seconds
  names: string[]; // REGISTER.FIELD
}

export type Wanted = { kind: "temperatures" | "capture"; board: string } | ({ kind: "fields" } & WatchedFields);

export const plotOf = {
  temperatures: (board: string): string => `temperatures ${board}`,
  capture: (board: string): string => `capture ${board}`,
  fields: ({ port, phy, map, interval, names }: WatchedFields): string => ["fields", port, phy, map, interval, ...names].join(" "),
};

// Null: it names none.
export function plotNamed(text: string): Wanted | null {
  const [kind, place = "", phy = "", map = "", interval = "", ...names] = text.split(" ");
  if ((kind === "temperatures" || kind === "capture") && place) return { kind, board: place };
  if (kind === "fields" && names.length) return { kind, port: place, phy: Number(phy), map, interval: Number(interval), names };
  return null;
}
