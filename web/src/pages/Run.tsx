// Runs, and one of them: how far it is and what it measured.
import type { JSX } from "preact";
import { linkTo, useTopic } from "../hooks";
import { Page, Problem } from "../parts/Page";
import { RunView, type Told, pointsOf, progressOf } from "../parts/RunView";
import type { Hello } from "../types";

export function RunsPage({ hello }: { hello: Hello }): JSX.Element {
  return (
    <Page title="Runs">
      {hello.runs.length === 0 ? (
        <p class="empty">None was named: 'orvane serve --run FILE' shows a data set.</p>
      ) : (
        <ul class="links">
          {hello.runs.map((name, index) => (
            <li key={index}>
              <a href={linkTo("run", index)}>{name}</a>
            </li>
          ))}
        </ul>
      )}
    </Page>
  );
}

export function RunPage({ run }: { run: number }): JSX.Element {
  const { values, problem } = useTopic<Told>("run", { run });
  const { summary } = values;
  const points = pointsOf(values);
  return (
    <Page title={summary?.name ?? "Run"} lead={summary && progressOf(summary, points)}>
      <Problem text={problem} />
      {summary && <RunView summary={summary} points={points} />}
    </Page>
  );
}
