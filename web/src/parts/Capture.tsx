// Samples of a board's converter, taken by a click.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { live } from "../live";
import { Chart } from "./Chart";
import { Problem } from "./Page";

export function Capture({ serial }: { serial: string }): JSX.Element {
  const [count, setCount] = useState("1000");
  const [state, setState] = useState<{ samples: number[]; problem: string }>({ samples: [], problem: "" });
  const capture = (event: Event) => {
    event.preventDefault();
    live.ask<number[]>("capture", { board: serial, count: Number(count) }).then(
      (samples) => setState({ samples, problem: "" }),
      (problem: Error) => setState({ samples: [], problem: problem.message }),
    );
  };
  return (
    <>
      <form class="bar" onSubmit={capture}>
        <label>
          Samples{" "}
          <input type="number" min="1" max="65536" value={count} onInput={(event) => setCount(event.currentTarget.value)} />
        </label>
        <button>Capture</button>
      </form>
      <Problem text={state.problem} />
      {state.samples.length > 0 && (
        <Chart
          title={`${serial} capture`}
          across="sample"
          x={state.samples.map((_, index) => index)}
          curves={[{ name: "converter", values: state.samples }]}
        />
      )}
    </>
  );
}
