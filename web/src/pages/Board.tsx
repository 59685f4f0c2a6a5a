// One board: ports and PHYs, services, temperatures, captures, what was asked of it and what happened.
import type { JSX } from "preact";
import { useState } from "preact/hooks";
import { linkTo, useTopic } from "../hooks";
import { live } from "../live";
import { Capture } from "../parts/Capture";
import { Card, Page, Problem, State, celsius, milliseconds, timeOf } from "../parts/Page";
import { TemperatureChart } from "../parts/TemperatureChart";
import { plotOf } from "../plots";
import type { BoardPage as Told, Hello, Row } from "../types";

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
          <Ports serial={serial} row={row} phys={values.phys ?? {}} write={hello.write} />
          <Temperatures serial={serial} row={row} setPoints={values.setPoints ?? {}} write={hello.write} />
          {hello.write && (
            <Card title="Capture">
              <Capture serial={serial} />
            </Card>
          )}
          <Services services={values.services ?? {}} />
          <Requests requests={values.requests ?? []} />
          <Events events={values.events ?? []} />
        </div>
      )}
    </Page>
  );
}

function Ports(props: { serial: string; row: Row; phys: Record<string, [number, string][]>; write: boolean }): JSX.Element {
  const { serial, row, phys, write } = props;
  return (
    <Card title="Ports">
      {row.ports.map((port) => (
        <Port key={port} name={`${serial}:${port}`} smbus={port >= 10} mayScan={port < 10 || write} found={phys[String(port)]} />
      ))}
    </Card>
  );
}

// An SMBus is scanned by writing to whatever is there.
function Port(props: { name: string; smbus: boolean; mayScan: boolean; found: [number, string][] | undefined }): JSX.Element {
  const { name, smbus, mayScan, found } = props;
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
        {mayScan && (
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
      {found && found.length === 0 && <p class="empty">{smbus ? "No device" : "No PHY"} answered the scan.</p>}
      {found && found.length > 0 && (
        <ul class="links">
          {found.map(([number, identifier]) => (
            <li key={number}>
              <a href={linkTo("phy", name, number)}>{smbus ? "Device" : "PHY"} {number}</a> <code>{identifier}</code>
            </li>
          ))}
        </ul>
      )}
    </div>
  );
}

function Temperatures(props: { serial: string; row: Row; setPoints: Record<string, number>; write: boolean }): JSX.Element {
  const { serial, row, setPoints } = props;
  if (!row.temperatures.length)
    return (
      <Card title="Temperatures">
        <p class="empty">{row.state === "up" ? "This board tells none." : "Not known."}</p>
      </Card>
    );
  return (
    <Card title="Temperatures" tools={<a href={linkTo("plots", plotOf.temperatures(serial))}>On a page of plots</a>}>
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
      <TemperatureChart serial={serial} row={row} setPoints={setPoints} />
    </Card>
  );
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
