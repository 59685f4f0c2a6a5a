// One board: ports and PHYs, services, temperatures, captures, what was asked of it and what happened.
import type { JSX } from "preact";
import { useRef, useState } from "preact/hooks";
import { linkTo, useTopic } from "../hooks";
import { live } from "../live";
import { Chart } from "../parts/Chart";
import { Card, Page, Problem, State, celsius, milliseconds, timeOf } from "../parts/Page";
import type { BoardPage as Told, Hello, Row } from "../types";

const keptTemperatures = 3600; // samples, one a second

export function BoardPage({ serial, hello }: { serial: string; hello: Hello }): JSX.Element {
  const { values, problem } = useTopic<Told>("board", { board: serial });
  const row = values.row;
  return (
    <Page
      title={serial}
      lead={
        row && (
          <>
            <State row={row} /> at {row.address}. Round trip {milliseconds(row.now)} ms, median {milliseconds(row.median)} ms,
            99 % within {milliseconds(row.p99)} ms. Sessions of this server: {row.sessions.join(", ") || "none"}.
          </>
        )
      }
    >
      <Problem text={problem || row?.problem || ""} />
      {row && (
        <div class="cards">
          <Ports serial={serial} row={row} phys={values.phys ?? {}} />
          <Temperatures serial={serial} row={row} setPoints={values.setPoints ?? {}} write={hello.write} />
          {hello.write && <Capture serial={serial} />}
          <Services services={values.services ?? {}} />
          <Requests requests={values.requests ?? []} />
          <Events events={values.events ?? []} />
        </div>
      )}
    </Page>
  );
}

function Ports({ serial, row, phys }: { serial: string; row: Row; phys: Record<string, [number, string][]> }): JSX.Element {
  return (
    <Card title="Ports">
      {row.ports.map((port) => (
        <Port key={port} name={`${serial}:${port}`} smbus={port >= 10} found={phys[String(port)]} />
      ))}
    </Card>
  );
}

function Port({ name, smbus, found }: { name: string; smbus: boolean; found: [number, string][] | undefined }): JSX.Element {
  const [state, setState] = useState({ busy: false, problem: "" });
  const [phy, setPhy] = useState("0");
  const scan = () => {
    setState({ busy: true, problem: "" });
    live.ask("scan", { port: name }).then(
      () => setState({ busy: false, problem: "" }),
      (problem: Error) => setState({ busy: false, problem: problem.message }),
    );
  };
  const go = (event: Event) => {
    event.preventDefault();
    location.hash = linkTo("phy", name, phy);
  };
  return (
    <div class="port">
      <h3>{name}</h3>
      <form class="bar" onSubmit={go}>
        {!smbus && (
          <button type="button" onClick={scan} disabled={state.busy} aria-label={`Scan ${name}`}>
            {state.busy ? "Scanning ..." : "Scan"}
          </button>
        )}
        <label>
          {smbus ? "Device" : "PHY"}{" "}
          <input
            type="number"
            min="0"
            max={smbus ? 127 : 31}
            value={phy}
            aria-label={`PHY of ${name}`}
            onInput={(event) => setPhy(event.currentTarget.value)}
          />
        </label>
        <button aria-label={`Open PHY of ${name}`}>Open</button>
      </form>
      <Problem text={state.problem} />
      {found && found.length === 0 && <p class="empty">No PHY answered the scan.</p>}
      {found && found.length > 0 && (
        <ul class="links">
          {found.map(([number, identifier]) => (
            <li key={number}>
              <a href={linkTo("phy", name, number)}>PHY {number}</a> <code>{identifier}</code>
            </li>
          ))}
        </ul>
      )}
    </div>
  );
}

function Temperatures(props: { serial: string; row: Row; setPoints: Record<string, number>; write: boolean }): JSX.Element {
  const { serial, row, setPoints } = props;
  const history = useRef<{ x: number[]; curves: (number | null)[][] }>({ x: [], curves: [] });
  const latest = useRef<unknown>(null);
  if (latest.current !== row && row.temperatures.length) {
    latest.current = row;
    remember(history.current, [...row.temperatures, ...row.temperatures.map((_, index) => setPoints[String(index)] ?? null)]);
  }
  if (!row.temperatures.length)
    return (
      <Card title="Temperatures">
        <p class="empty">{row.state === "up" ? "This board tells none." : "Not known."}</p>
      </Card>
    );
  const count = row.temperatures.length;
  const names = [...Array(2 * count).keys()].map((index) => (index < count ? `channel ${index}` : `set point ${index - count}`));
  return (
    <Card title="Temperatures">
      <table class="plain">
        <thead>
          <tr>
            <th scope="col">Channel</th>
            <th scope="col" class="number">
              °C
            </th>
            <th scope="col" class="number">
              Set point
            </th>
            {props.write && <th scope="col">Change</th>}
          </tr>
        </thead>
        <tbody>
          {row.temperatures.map((value, channel) => (
            <tr key={channel}>
              <td>{channel}</td>
              <td class="number">{celsius(value)}</td>
              <td class="number">{celsius(setPoints[String(channel)])}</td>
              {props.write && (
                <td>
                  <SetPoint serial={serial} channel={channel} />
                </td>
              )}
            </tr>
          ))}
        </tbody>
      </table>
      <Chart
        title={`${serial} temperatures`}
        across="time"
        time
        x={[...history.current.x]}
        curves={names
          .map((name, index) => ({ name, values: history.current.curves[index] ?? [], dashed: index >= count }))
          .filter((curve) => curve.values.some((each) => each !== null))}
      />
    </Card>
  );
}

function remember(history: { x: number[]; curves: (number | null)[][] }, values: (number | null)[]): void {
  history.x.push(Date.now() / 1000);
  values.forEach((value, index) => (history.curves[index] ??= Array(history.x.length - 1).fill(null)).push(value));
  if (history.x.length > keptTemperatures) {
    history.x.shift();
    history.curves.forEach((each) => each.shift());
  }
}

function SetPoint({ serial, channel }: { serial: string; channel: number }): JSX.Element {
  const [value, setValue] = useState("");
  const [problem, setProblem] = useState("");
  const set = (event: Event) => {
    event.preventDefault();
    live.ask("temperature", { board: serial, channel, celsius: Number(value) }).then(
      () => setProblem(""),
      (refused: Error) => setProblem(refused.message),
    );
  };
  return (
    <form class="bar" onSubmit={set}>
      <input
        type="number"
        step="0.1"
        required
        aria-label={`Set point of channel ${channel}`}
        value={value}
        onInput={(event) => setValue(event.currentTarget.value)}
      />
      <button aria-label={`Set channel ${channel}`}>Set</button>
      <Problem text={problem} />
    </form>
  );
}

function Capture({ serial }: { serial: string }): JSX.Element {
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
    <Card title="Capture">
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
    </Card>
  );
}

function Services({ services }: { services: Record<string, number> }): JSX.Element {
  return (
    <Card title="Services">
      <table class="plain">
        <tbody>
          {Object.entries(services).map(([name, port]) => (
            <tr key={name}>
              <th scope="row">{name}</th>
              <td class="number">{port}</td>
            </tr>
          ))}
        </tbody>
      </table>
    </Card>
  );
}

function Requests({ requests }: { requests: [number, string, string, number][] }): JSX.Element {
  return (
    <Card title="Last requests of this server">
      {requests.length === 0 && <p class="empty">None by a click yet. What is watched is not listed.</p>}
      <ul class="lines" tabIndex={0}>
        {[...requests].reverse().map(([at, what, outcome, ms]) => (
          <li key={`${at} ${what}`}>
            <time>{timeOf(at)}</time> {what}: <span class={outcome === "done" ? "" : "bad"}>{outcome}</span>
            <span class="soft"> {ms} ms</span>
          </li>
        ))}
      </ul>
    </Card>
  );
}

function Events({ events }: { events: [number, string, string, string][] }): JSX.Element {
  return (
    <Card title="Events">
      {events.length === 0 && <p class="empty">Nothing has happened since this server began.</p>}
      <ul class="lines" tabIndex={0}>
        {[...events].reverse().map(([at, kind, place, text], index) => (
          <li key={events.length - index}>
            <time>{timeOf(at)}</time> {kind} {place && `port ${place}`} {text}
          </li>
        ))}
      </ul>
    </Card>
  );
}
