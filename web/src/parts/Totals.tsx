// Numbers that say how much there is of what.
import type { JSX } from "preact";

export const Totals = ({ totals }: { totals: [string, number][] }): JSX.Element => (
  <ul class="totals">
    {totals.map(([name, number]) => (
      <li key={name}>
        <b>{number.toLocaleString("en")}</b> <span>{name}</span>
      </li>
    ))}
  </ul>
);
