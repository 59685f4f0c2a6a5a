// A time line over all services: of a transaction log, or of what the server does now.
import type { JSX } from "preact";
import { useEffect, useState } from "preact/hooks";
import { useAnswer, useTopic } from "../hooks";
import { Lines } from "../parts/Lines";
import { Page, counted } from "../parts/Page";
import { type Told, hasWords, lineOf } from "../lines";
import type { Hello } from "../types";

const every = 2000; // ms between looks at a file, which may grow
const most = 2000; // rows of one look

export function LogPage({ hello }: { hello: Hello }): JSX.Element {
  const [source, setSource] = useState(hello.logs.length ? 0 : -1);
  const [words, setWords] = useState("");
  return (
    <Page title="Time line">
      <div class="bar">
        <label>
          Of{" "}
          <select aria-label="Time line of" value={source} onChange={(event) => setSource(Number(event.currentTarget.value))}>
            <option value={-1}>this server, now</option>
            {hello.logs.map((name, index) => (
              <option key={index} value={index}>
                {name}
              </option>
            ))}
          </select>
        </label>
        <input
          type="search"
          aria-label="Filter lines"
          placeholder="port, register, service"
          value={words}
          onInput={(event) => setWords(event.currentTarget.value)}
        />
      </div>
      {source < 0 ? <LiveLog words={words} /> : <FileLog log={source} words={words} />}
    </Page>
  );
}

function LiveLog({ words }: { words: string }): JSX.Element {
  const { values, problem } = useTopic<Record<string, string[]>>("log", {});
  const lines = Object.entries(values)
    .slice(-most)
    .filter(([, row]) => hasWords(row.join(","), words))
    .map(([number, row]) => lineOf(Number(number), row))
    .reverse();
  return <Lines lines={lines} problem={problem} status={`${lines.length} accesses since this page was opened, the newest first`} />;
}

function FileLog({ log, words }: { log: number; words: string }): JSX.Element {
  const [first, setFirst] = useState(0);
  const [look, again] = useState(0);
  useEffect(() => {
    const timer = setInterval(() => again((count) => count + 1), every);
    return () => clearInterval(timer);
  }, []);
  useEffect(() => setFirst(0), [log, words]);
  const { answer, problem } = useAnswer<{ total: number; cut: boolean; rows: Told[] }>("log", { log, first, words }, look);
  const rows = answer?.rows ?? [];
  const status = answer ? `${counted(answer.total, "line")}${answer.cut ? " at the end of the file" : ""}, shown ${rows.length ? first + 1 : 0} to ${first + rows.length}` : "";
  return (
    <Lines lines={rows.map(([number, row]) => lineOf(number, row))} problem={problem} status={status}>
      <button disabled={first === 0} onClick={() => setFirst(Math.max(0, first - most))}>
        Earlier
      </button>
      <button disabled={!answer || first + rows.length >= answer.total} onClick={() => setFirst(first + most)}>
        Later
      </button>
    </Lines>
  );
}
