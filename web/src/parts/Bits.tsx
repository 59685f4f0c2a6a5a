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
        <span key={bit} class={classOf((BigInt(changed) >> BigInt(bit)) & 1n, bit % 4 === 3)}>
          {String((BigInt(value) >> BigInt(bit)) & 1n)}
        </span>
      ))}
    </span>
  );
}

const classOf = (changed: bigint, nibble: boolean): string => [...(changed ? ["changed"] : []), ...(nibble ? ["nibble"] : [])].join(" ");
