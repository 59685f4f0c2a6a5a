// The fields of a register, with what is told of each.
import type { ComponentChildren, JSX } from "preact";
import { bitsText } from "../decode";
import type { Field } from "../types";

export interface FieldColumn<Of extends Field = Field> {
  head: string;
  cell: (field: Of) => ComponentChildren;
  changed?: (field: Of) => boolean;
}

export function FieldTable<Of extends Field>({ fields, columns }: { fields: Of[]; columns: FieldColumn<Of>[] }): JSX.Element {
  return (
    <table class="plain">
      <thead>
        <tr>
          {["Bits", "Field", ...columns.map((each) => each.head)].map((head, index) => (
            <th key={index} scope="col">
              {head}
            </th>
          ))}
        </tr>
      </thead>
      <tbody>
        {fields.map((field) => (
          <tr key={field.name} title={field.text}>
            <td>
              <code>{bitsText(field)}</code>
            </td>
            <th scope="row">{field.name}</th>
            {columns.map(({ cell, changed }, index) => (
              <td key={index} class={changed?.(field) ? "changed" : ""}>
                {cell(field)}
              </td>
            ))}
          </tr>
        ))}
      </tbody>
    </table>
  );
}

// A tick for each field that is to be plotted, by REGISTER.FIELD.
export const plotColumn = (register: string, plotted: string[], onPlot: (name: string) => void): FieldColumn => ({
  head: "Plot",
  cell: ({ name }) => (
    <input
      type="checkbox"
      aria-label={`Plot ${register}.${name}`}
      checked={plotted.includes(`${register}.${name}`)}
      onChange={() => onPlot(`${register}.${name}`)}
    />
  ),
});
