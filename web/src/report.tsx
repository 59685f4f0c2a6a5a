// A report: one file, with what it shows in itself.
import "./style.css";
import { render, type JSX } from "preact";
import { DumpReport } from "./pages/DumpReport";
import { LogReport } from "./pages/LogReport";
import { Page } from "./parts/Page";
import { RunView, pointsOf, progressOf } from "./parts/RunView";
import type { Part, Report, RunPart } from "./reported";

function Shown({ report }: { report: Report }): JSX.Element {
  const [only] = report.parts;
  if (only && report.parts.length === 1)
    return (
      <Page title={report.title}>
        <PartOf part={only} />
      </Page>
    );
  return (
    <Page title={report.title}>
      {report.parts.map((part, index) => (
        <section key={index} class="part" aria-label={part.title}>
          <h2>{part.title}</h2>
          <PartOf part={part} />
        </section>
      ))}
    </Page>
  );
}

function PartOf({ part }: { part: Part }): JSX.Element {
  if (part.kind === "log") return <LogReport log={part} />;
  if (part.kind === "dumps") return <DumpReport part={part} />;
  return <RunReport part={part} />;
}

function RunReport({ part: { told } }: { part: RunPart }): JSX.Element | null {
  const points = pointsOf(told);
  return (
    told.summary && (
      <>
        <p class="lead">{progressOf(told.summary, points)}</p>
        <RunView summary={told.summary} points={points} />
      </>
    )
  ) ?? null;
}

const data = document.getElementById("data")?.textContent;
const root = document.getElementById("app");
if (data && root) render(<Shown report={JSON.parse(data) as Report} />, root);
