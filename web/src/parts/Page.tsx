// What the pages are made of: heading, card, complaint, state of a board.
import type { ComponentChildren, JSX } from "preact";
import { useEffect } from "preact/hooks";
import type { Row } from "../types";

interface PageProps {
  title: string;
  lead?: ComponentChildren;
  children: ComponentChildren;
}

export function Page({ title, lead, children }: PageProps): JSX.Element {
  useEffect(() => {
    document.title = `${title} - Orvane`;
  }, [title]);
  return (
    <main id="content" tabIndex={-1}>
      <h1>{title}</h1>
      {lead && <div class="lead">{lead}</div>}
      {children}
    </main>
  );
}

export function Card({ title, tools, children }: { title: string; tools?: ComponentChildren; children: ComponentChildren }) {
  return (
    <section class="card">
      <h2>
        {title}
        {tools && <span class="tools">{tools}</span>}
      </h2>
      {children}
    </section>
  );
}

export const Problem = ({ text }: { text: string }): JSX.Element | null =>
  text ? (
    <p class="problem" role="alert">
      {text}
    </p>
  ) : null;

const words = { found: "found", up: "answers", away: "does not answer", held: "held by others", trouble: "in trouble" };

export const State = ({ row }: { row: Row }): JSX.Element => (
  <span class={`state ${row.state}`} title={row.problem}>
    {words[row.state]}
  </span>
);

export const timeOf = (seconds: number): string => new Date(seconds * 1000).toISOString().slice(11, 23);

export const milliseconds = (value: number | null): string => (value === null ? "" : value.toFixed(2));

export const celsius = (value: number | null | undefined): string =>
  value === null || value === undefined ? "" : value.toFixed(1);

// "1 board", "2 boards".
export const counted = (count: number, what: string): string => `${count} ${what}${count === 1 ? "" : "s"}`;
