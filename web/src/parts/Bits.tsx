// A value bit by bit, those that have changed marked.
import type { JSX } from "preact";

interface Props {
  value: number | bigint;
  bits: number;
  changed: number | bigint;
}

export function Bits({ value, bits, changed }: Props): JSX.Element {
  const digits = [...Array(bits).keys()].reverse();
  return (
    <span class="bits" aria-hidden="true">
      {digits.map((bit) => (
        <span key={bit} class={(BigInt(changed) >> BigInt(bit)) & 1n ? "changed" : bit % 4 === 3 ? "nibble" : ""}>
          {String((BigInt(value) >> BigInt(bit)) & 1n)}
        </span>
      ))}
    </span>
  );
}
