// A lane for each service, a mark for each access at its time.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { type Line, isBad } from "../lines";

const width = 1000;
const laneHeight = 22;
const left = 90;

export function TimeLine({ lines }: { lines: Line[] }): JSX.Element | null {
  const [told, tell] = useState("");
  const marks = lines.map((line) => ({ line, at: Date.parse(line.time) })).filter((mark) => !Number.isNaN(mark.at));
  if (marks.length < 2) return null;
  const [begin, end] = marks.reduce(([low, high], { at }) => [Math.min(low, at), Math.max(high, at)], [Infinity, -Infinity]);
  const lanes = [...new Set(marks.map((mark) => mark.line.lane))].sort();
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
        {marks.map(({ line, at }) => (
          <rect
            key={line.number}
            class={`mark ${isBad(line) ? "bad" : line.write ? "write" : "read"}`}
            x={x(at) - 1.5}
            y={middle(lanes.indexOf(line.lane)) - 7}
            width={3}
            height={14}
            onMouseEnter={() => tell(`${line.time} ${line.port} ${line.access} ${line.where || line.words} ${line.value} ${line.outcome}`)}
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
