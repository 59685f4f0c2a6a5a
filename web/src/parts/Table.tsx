// A table of any length: only the rows on the screen are in the document.
import type { ComponentChildren, JSX } from "preact";
import { useEffect, useLayoutEffect, useRef, useState } from "preact/hooks";

export interface Column<Row> {
  key: string;
  head: string;
  cell: (row: Row, index: number) => ComponentChildren;
  order?: (row: Row) => string | number | null; // what it is sorted by
  kind?: string; // class of its cells: "number", "wide" (left out on phones)
}

interface Props<Row> {
  label: string;
  columns: readonly Column<Row>[];
  rows: readonly Row[];
  keyOf: (row: Row) => string;
  empty: string;
  rowClass?: (row: Row) => string;
  onInSight?: (rows: Row[]) => void;
  onPick?: (row: Row) => void;
}

const rowHeight = 30; // px, as the style sheet has it
const spare = 8; // rows above and below

export function Table<Row>(props: Props<Row>): JSX.Element {
  const { columns, rows, keyOf } = props;
  const [order, setOrder] = useState<{ key: string; down: boolean } | null>(null);
  const box = useRef<HTMLDivElement>(null);
  const [range, setRange] = useState({ first: 0, count: 40 });
  const sorted = order ? sortedBy(rows, columns.find((each) => each.key === order.key), order.down) : rows;

  const measure = () => {
    const element = box.current;
    if (!element) return;
    const first = Math.max(0, Math.floor(element.scrollTop / rowHeight) - spare);
    const count = Math.ceil(element.clientHeight / rowHeight) + 2 * spare;
    setRange((known) => (known.first === first && known.count === count ? known : { first, count }));
  };
  useLayoutEffect(() => {
    measure();
    const observer = new ResizeObserver(measure);
    if (box.current) observer.observe(box.current);
    return () => observer.disconnect();
  }, []);

  const first = Math.min(range.first, Math.max(0, sorted.length - 1));
  const shown = sorted.slice(first, first + range.count);
  const inSight = shown.map(keyOf).join("\n");
  useEffect(() => props.onInSight?.(shown), [inSight]);

  return (
    <div class="table-box" ref={box} onScroll={measure} tabIndex={0} role="region" aria-label={props.label}>
      <table aria-rowcount={sorted.length + 1}>
        <thead>
          <tr>
            {columns.map((column) => (
              <th key={column.key} class={column.kind} aria-sort={sortWord(order, column.key)} scope="col">
                {column.order ? (
                  <button onClick={() => setOrder(nextOrder(order, column.key))}>{column.head}</button>
                ) : (
                  column.head
                )}
              </th>
            ))}
          </tr>
        </thead>
        <tbody>
          <Gap rows={first} columns={columns.length} />
          {shown.map((row, index) => (
            <tr
              key={keyOf(row)}
              class={props.rowClass?.(row)}
              aria-rowindex={first + index + 2}
              onClick={props.onPick && (() => props.onPick?.(row))}
            >
              {columns.map((column) => (
                <td key={column.key} class={column.kind}>
                  {column.cell(row, first + index)}
                </td>
              ))}
            </tr>
          ))}
          <Gap rows={sorted.length - first - shown.length} columns={columns.length} />
        </tbody>
      </table>
      {sorted.length === 0 && <p class="empty">{props.empty}</p>}
    </div>
  );
}

function Gap({ rows, columns }: { rows: number; columns: number }): JSX.Element | null {
  if (rows <= 0) return null;
  return (
    <tr aria-hidden="true" class="gap">
      <td colSpan={columns} style={{ height: `${rows * rowHeight}px` }} />
    </tr>
  );
}

const byText = new Intl.Collator("en", { numeric: true });

const sortWord = (order: { key: string; down: boolean } | null, key: string) =>
  order?.key !== key ? "none" : order.down ? "descending" : "ascending";

function nextOrder(order: { key: string; down: boolean } | null, key: string) {
  if (order?.key !== key) return { key, down: false };
  return order.down ? null : { key, down: true };
}

function sortedBy<Row>(rows: readonly Row[], column: Column<Row> | undefined, down: boolean): Row[] {
  const order = column?.order;
  if (!order) return [...rows];
  const sign = down ? -1 : 1;
  return [...rows].sort((a, b) => {
    const [x, y] = [order(a), order(b)];
    if (x === null || y === null) return x === y ? 0 : x === null ? 1 : -1; // what is not known comes last
    return (typeof x === "string" ? byText.compare(x, String(y)) : x - Number(y)) * sign;
  });
}
