// The pages: where the address leads, the way between them, and the connection.
import "./style.css";
import { render, type JSX } from "preact";
import { useEffect, useState } from "preact/hooks";
import { linkTo, usePlace } from "./hooks";
import { live } from "./live";
import { Page } from "./parts/Page";
import { BoardPage } from "./pages/Board";
import { LogPage } from "./pages/Log";
import { PhyPage } from "./pages/Phy";
import { PlotsPage } from "./pages/Plots";
import { RackPage } from "./pages/Rack";
import { RunPage, RunsPage } from "./pages/Run";
import type { Hello } from "./types";

function App(): JSX.Element {
  const place = usePlace();
  const [connected, setConnected] = useState(false);
  const [hello, setHello] = useState<Hello | null>(null);
  useEffect(() => {
    live.onState = (now) => {
      setConnected(now);
      if (now) live.ask<Hello>("hello").then(setHello, () => undefined);
    };
    live.begin();
  }, []);
  return (
    <>
      <a class="skip" href="#content" onClick={skip}>
        To the page
      </a>
      <header>
        <a class="home" href={linkTo("")}>
          <img src="/icon.svg" alt="" width="22" height="22" /> Orvane
        </a>
        <nav aria-label="Pages">
          <Way to="" place={place} text="Rack" />
          <Way to="plots" place={place} text="Plots" />
          <Way to="log" place={place} text="Time line" />
          <Way to="runs" place={place} text="Runs" />
        </nav>
        <span class={`connection ${connected ? "up" : "away"}`} role="status">
          {connected ? (hello?.write ? "live, may write" : "live, read only") : "not connected"}
        </span>
      </header>
      {hello ? <Place place={place} hello={hello} /> : <main id="content" class="empty">Connecting ...</main>}
    </>
  );
}

function Way({ to, place, text }: { to: string; place: string[]; text: string }): JSX.Element {
  return (
    <a href={linkTo(to)} aria-current={place[0] === to ? "page" : undefined}>
      {text}
    </a>
  );
}

function Place({ place, hello }: { place: string[]; hello: Hello }): JSX.Element {
  const [kind, first = "", second = ""] = place;
  if (kind === "") return <RackPage />;
  if (kind === "board") return <BoardPage key={first} serial={first} hello={hello} />;
  if (kind === "phy") return <PhyPage key={`${first} ${second}`} port={first} phy={Number(second)} hello={hello} />;
  if (kind === "plots") return <PlotsPage wanted={place.slice(1)} hello={hello} />;
  if (kind === "log") return <LogPage hello={hello} />;
  if (kind === "runs") return <RunsPage hello={hello} />;
  if (kind === "run") return <RunPage key={first} run={Number(first)} />;
  return (
    <Page title="Nothing here">
      <p>
        There is no such page. <a href={linkTo("")}>The rack</a> is where to begin.
      </p>
    </Page>
  );
}

// To the page itself, without a change of the address.
function skip(event: Event): void {
  event.preventDefault();
  document.getElementById("content")?.focus();
}

history.replaceState(null, "", location.pathname + location.hash); // the token is not to be seen or shared by accident
const root = document.getElementById("app");
if (root) render(<App />, root);
