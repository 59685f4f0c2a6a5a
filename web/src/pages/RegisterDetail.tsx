// One register: bits, fields with their meanings, reading by a click, writing.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { hex, meaningOf, rawOf } from "../decode";
import { live } from "../live";
import { FieldTable, plotColumn } from "../parts/Fields";
import { Bits } from "../parts/Bits";
import { Problem } from "../parts/Page";
import type { AccessedField, Described, Field, Listed } from "../types";

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
      <FieldTable
        fields={described.fields}
        columns={[
          {
            head: "Value",
            changed: (field) => rawOf(field, changed) !== 0n,
            cell: (field) => (
              <>
                {value === null ? "" : meaningOf(field, value)}
                {props.write && writable && isWritable(field) && (
                  <FieldForm field={field} label={`${name}.${field.name}`} onWrite={(next) => void write(`${name}.${field.name}`, next)} />
                )}
              </>
            ),
          },
          ...(safe && readable ? [plotColumn(name, props.plotted, props.onPlot)] : []),
        ]}
      />
    </section>
  );
}

const isWritable = (field: AccessedField): boolean => ["rw", "wo", "w1c", "self-clearing"].includes(field.access);

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
