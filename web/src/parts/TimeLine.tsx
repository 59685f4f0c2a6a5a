// A lane for each service, a mark for each access at its time.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import type { Entry } from "../pages/Log";

const width = 1000;
const laneHeight = 22;
const left = 90;

export function TimeLine({ entries }: { entries: Entry[] }): JSX.Element | null {
  const [told, tell] = useState("");
  const marks = entries
    .map(([number, row]) => ({ number, row, at: Date.parse(row[6] ?? ""), lane: laneOf(row[2] ?? "") }))
    .filter((mark) => !Number.isNaN(mark.at));
  if (marks.length < 2) return null;
  const [begin, end] = marks.reduce(([low, high], { at }) => [Math.min(low, at), Math.max(high, at)], [Infinity, -Infinity]);
  const lanes = [...new Set(marks.map((mark) => mark.lane))].sort();
  const x = (at: number) => left + ((at - begin) / Math.max(1, end - begin)) * (width - left - 10);
  const height = lanes.length * laneHeight + 18;
  return (
    <figure class="timeline">
      <div class="lanes" tabIndex={0} role="group" aria-label="Lanes of services">
        <svg viewBox={`0 0 ${width} ${height}`} role="img" aria-label={`${marks.length} accesses of ${lanes.join(", ")} in ${(end - begin) / 1000} s`}>
        {lanes.map((lane, index) => (
          <g key={lane}>
            <line x1={left} x2={width} y1={middle(index)} y2={middle(index)} class="lane" />
            <text x={0} y={middle(index) + 4}>
              {lane}
            </text>
          </g>
        ))}
        {marks.map(({ number, row, at, lane }) => (
          <rect
            key={number}
            class={`mark ${kindOf(row)}`}
            x={x(at) - 1.5}
            y={middle(lanes.indexOf(lane)) - 7}
            width={3}
            height={14}
            onMouseEnter={() => tell(`${row[6]} ${row[7]} ${row[2]} ${row[9] || row[5]} ${row[8]}`)}
          />
        ))}
        <text x={left} y={height - 2}>
          {new Date(begin).toISOString().slice(11, 23)}
        </text>
        <text x={width} y={height - 2} text-anchor="end">
          {new Date(end).toISOString().slice(11, 23)}
        </text>
        </svg>
      </div>
      <figcaption class="soft">{told || "Point at a mark to see its access."}</figcaption>
    </figure>
  );
}

const middle = (lane: number): number => lane * laneHeight + laneHeight / 2;

function laneOf(op: string): string {
  if (["MW", "MR", "2W", "2R"].includes(op)) return "registers";
  return op.split(".")[0] || "notes";
}

function kindOf(row: string[]): string {
  if (row[8] && row[8] !== "done") return "bad";
  return row[2]?.endsWith("W") ? "write" : "read";
}
