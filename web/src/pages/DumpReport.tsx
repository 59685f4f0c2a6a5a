// Dumps in a report: each register with its value in every dump, decoded, and what differs from the first.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { meaningOf, rawOf } from "../decode";
import { hasWords } from "../lines";
import { Bits } from "../parts/Bits";
import { FieldTable } from "../parts/Fields";
import { counted } from "../parts/Page";
import { type Column, Table } from "../parts/Table";
import type { DumpedRegister, DumpsPart } from "../reported";
import type { Field } from "../types";

export function DumpReport({ part: { dumps, registers } }: { part: DumpsPart }): JSX.Element {
  const [words, setWords] = useState("");
  const [only, setOnly] = useState(false);
  const differing = registers.filter(isDifferent);
  const [picked, pick] = useState(differing[0] ?? registers[0]);
  const shown = (only ? differing : registers).filter((each) => hasWords(`${each.address} ${each.name ?? ""} ${(each.fields ?? []).map(({ name }) => name).join(" ")}`, words));
  return (
    <>
      <Dumps dumps={dumps} />
      <div class="two">
        <section aria-label="Registers">
          <div class="bar">
            <input type="search" aria-label="Find registers" placeholder="address, name or field" value={words} onInput={(event) => setWords(event.currentTarget.value)} />
            {dumps.length > 1 && (
              <label>
                <input type="checkbox" checked={only} onChange={(event) => setOnly(event.currentTarget.checked)} /> only what differs
              </label>
            )}
            <span class="soft" role="status">
              {`${shown.length} of ${counted(registers.length, "register")}${dumps.length > 1 ? `, ${differing.length} differ` : ""}`}
            </span>
          </div>
          <Table
            label="Registers of the dumps"
            columns={columnsOf(dumps, picked, pick)}
            rows={shown}
            keyOf={(each) => each.address}
            rowClass={(each) => (each === picked ? "picked" : "")}
            onPick={pick}
            empty="No register matches."
          />
        </section>
        {picked ? <Detail register={picked} dumps={dumps} /> : <p class="empty">There is no register in it.</p>}
      </div>
    </>
  );
}

function Dumps({ dumps }: { dumps: DumpsPart["dumps"] }): JSX.Element {
  return (
    <div class="table-box" tabIndex={0} role="region" aria-label="Dumps">
      <table>
        <thead>
          <tr>
            {["Dump", "Taken", "Device", "Address", "PHY", "Identifier"].map((head) => (
              <th key={head} scope="col">
                {head}
              </th>
            ))}
          </tr>
        </thead>
        <tbody>
          {dumps.map((dump, index) => (
            <tr key={index}>
              <td>{dump.file}</td>
              <td>{dump.date}</td>
              <td>{dump.device}</td>
              <td>{dump.address}</td>
              <td>{dump.phy}</td>
              <td>
                <code>{dump.identifier}</code>
              </td>
            </tr>
          ))}
        </tbody>
      </table>
    </div>
  );
}

// The bits of a value that are not those of the first dump, as far as they are compared; all of one that is missing.
function changedBits(register: DumpedRegister, index: number): bigint {
  const [first, value] = [register.values[0] ?? null, register.values[index] ?? null];
  if (index === 0 || (first === null && value === null)) return 0n;
  const mask = register.mask === undefined ? ~0n : BigInt(register.mask);
  return first === null || value === null ? ~0n : (BigInt(first) ^ BigInt(value)) & mask;
}

const isDifferent = (register: DumpedRegister): boolean => register.values.some((_, index) => changedBits(register, index) !== 0n);

const columnsOf = (dumps: DumpsPart["dumps"], picked: DumpedRegister | undefined, pick: (register: DumpedRegister) => void): Column<DumpedRegister>[] => [
  {
    key: "address",
    head: "Address",
    cell: (each) => (
      <button class="name" aria-pressed={each === picked} onClick={() => pick(each)}>
        <code>{each.address}</code>
      </button>
    ),
  },
  { key: "name", head: "Register", cell: (each) => each.name, order: (each) => each.name ?? "" },
  ...dumps.map((dump, index) => ({
    key: `value ${index}`,
    head: dump.file,
    cell: (each: DumpedRegister) => <code class={changedBits(each, index) ? "changed" : ""}>{each.values[index] ?? "-"}</code>,
  })),
];

function Detail({ register, dumps }: { register: DumpedRegister; dumps: DumpsPart["dumps"] }): JSX.Element {
  const { address, name, fields, values } = register;
  return (
    <section class="card detail" aria-label={name ?? address}>
      <h2>{name ? `${address} ${name}` : address}</h2>
      <table class="plain">
        <tbody>
          {dumps.map((dump, index) => {
            const value = values[index] ?? null;
            return (
              <tr key={index}>
                <th scope="row">{dump.file}</th>
                <td>
                  <code class={changedBits(register, index) ? "changed" : ""}>{value ?? "-"}</code>
                </td>
                <td>{value !== null && <Bits value={BigInt(value)} bits={(value.length - 2) * 4} changed={changedBits(register, index)} />}</td>
              </tr>
            );
          })}
        </tbody>
      </table>
      {fields && (
        <FieldTable<Field>
          fields={fields}
          columns={dumps.map((dump, index) => ({
            head: dump.file,
            cell: (field) => (values[index] ? meaningOf(field, BigInt(values[index] ?? 0)) : "-"),
            changed: (field) => values[index] !== null && rawOf(field, changedBits(register, index)) !== 0n,
          }))}
        />
      )}
    </section>
  );
}
