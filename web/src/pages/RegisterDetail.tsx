// One register: bits, fields with their meanings, reading by a click, writing.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { bitsText, hex, meaningOf, rawOf } from "../decode";
import { live } from "../live";
import { Problem } from "../parts/Page";
import type { Described, Field, Listed } from "../types";

interface Props {
  place: { port: string; phy: number; map: string };
  listed: Listed;
  described: Described;
  value: number | null;
  changed: number;
  write: boolean;
  plotted: string[];
  onPlot: (name: string) => void;
  onRead: (value: number) => void;
}

export function RegisterDetail(props: Props): JSX.Element {
  const { place, listed, described, value, changed } = props;
  const [name, address, bits, access, safe, readable, writable] = listed;
  const [problem, setProblem] = useState("");
  const failed = (refused: Error) => setProblem(refused.message);
  const read = () =>
    live.ask<number>("read", { ...place, name }).then((now) => {
      setProblem("");
      props.onRead(now);
    }, failed);
  const write = (what: string, next: number | string) =>
    live.ask("write", { ...place, name: what, value: next }).then(() => {
      setProblem("");
      return safe && readable ? read() : undefined;
    }, failed);
  return (
    <section class="card detail" aria-label={name}>
      <h2>{name}</h2>
      <p class="soft">
        <code>{address}</code>, {bits} bits, {access}
        {described.reset !== null && (
          <>
            , <code>{hex(described.reset, bits)}</code> after a reset
          </>
        )}
        . {described.text}
      </p>
      {!safe && readable && <p class="notice">A read changes it: it is read by a click only.</p>}
      <Problem text={problem} />
      <div class="bar">
        {readable && <button onClick={() => void read()}>Read</button>}
        {value !== null && <output class="big">{hex(value, bits)}</output>}
        {props.write && writable && <WriteForm label={`Value for ${name}`} onWrite={(text) => void write(name, Number(text))} />}
      </div>
      {value !== null && <Bits value={value} bits={bits} changed={changed} />}
      <table class="plain">
        <thead>
          <tr>
            <th scope="col">Bits</th>
            <th scope="col">Field</th>
            <th scope="col">Value</th>
            <th scope="col">Plot</th>
          </tr>
        </thead>
        <tbody>
          {described.fields.map((field) => (
            <tr key={field.name} title={field.text}>
              <td>
                <code>{bitsText(field)}</code>
              </td>
              <th scope="row">{field.name}</th>
              <td class={rawOf(field, changed) ? "changed" : ""}>
                {value === null ? "" : meaningOf(field, value)}
                {props.write && writable && isWritable(field) && (
                  <FieldForm field={field} label={`${name}.${field.name}`} onWrite={(next) => void write(`${name}.${field.name}`, next)} />
                )}
              </td>
              <td>
                {safe && readable && (
                  <input
                    type="checkbox"
                    aria-label={`Plot ${name}.${field.name}`}
                    checked={props.plotted.includes(`${name}.${field.name}`)}
                    onChange={() => props.onPlot(`${name}.${field.name}`)}
                  />
                )}
              </td>
            </tr>
          ))}
        </tbody>
      </table>
    </section>
  );
}

const isWritable = (field: Field): boolean => ["rw", "wo", "w1c", "self-clearing"].includes(field.access);

function Bits({ value, bits, changed }: { value: number; bits: number; changed: number }): JSX.Element {
  const digits = [...Array(bits).keys()].reverse();
  return (
    <p class="bits" aria-hidden="true">
      {digits.map((bit) => (
        <span key={bit} class={(BigInt(changed) >> BigInt(bit)) & 1n ? "changed" : bit % 4 === 3 ? "nibble" : ""}>
          {String((BigInt(value) >> BigInt(bit)) & 1n)}
        </span>
      ))}
    </p>
  );
}

function WriteForm({ label, onWrite }: { label: string; onWrite: (text: string) => void }): JSX.Element {
  const [text, setText] = useState("");
  const send = (event: Event) => {
    event.preventDefault();
    onWrite(text);
  };
  return (
    <form class="bar inline" onSubmit={send}>
      <input
        required
        pattern="0[xX][0-9a-fA-F]+|[0-9]+"
        size={8}
        aria-label={label}
        placeholder="0x..."
        value={text}
        onInput={(event) => setText(event.currentTarget.value)}
      />
      <button>Write</button>
    </form>
  );
}

function FieldForm({ field, label, onWrite }: { field: Field; label: string; onWrite: (value: number | string) => void }): JSX.Element {
  if (field.choices.length === 0) return <WriteForm label={`Value for ${label}`} onWrite={(text) => onWrite(Number(text))} />;
  return (
    <select aria-label={`Choice for ${label}`} value="" onChange={(event) => onWrite(event.currentTarget.value)}>
      <option value="" disabled>
        set ...
      </option>
      {field.choices.map(([, choice]) => (
        <option key={choice}>{choice}</option>
      ))}
    </select>
  );
}
