// How many reads and writes there were, from the first access to the last.
import type { JSX } from "preact";

const width = 1200;
const height = 80;

export function Activity({ reads, writes }: { reads: number[]; writes: number[] }): JSX.Element {
  const most = reads.reduce((high, each, index) => Math.max(high, each + (writes[index] ?? 0)), 1);
  const step = width / Math.max(1, reads.length);
  const sum = (list: number[]) => list.reduce((all, each) => all + each, 0);
  return (
    <figure class="activity">
      <svg
        viewBox={`0 0 ${width} ${height}`}
        preserveAspectRatio="none"
        role="img"
        aria-label={`${sum(reads)} reads and ${sum(writes)} writes in the order of the log`}
      >
        {reads.map((count, index) => {
          const low = (count / most) * height;
          const high = ((writes[index] ?? 0) / most) * height;
          return (
            <g key={index}>
              <rect class="mark read" x={index * step} y={height - low} width={step * 0.86} height={low} />
              <rect class="mark write" x={index * step} y={height - low - high} width={step * 0.86} height={high} />
            </g>
          );
        })}
      </svg>
      <figcaption class="key">
        <i class="read" /> reads <i class="write" /> writes
      </figcaption>
    </figure>
  );
}
