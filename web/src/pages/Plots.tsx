// Plots side by side: temperatures, captures, fields over time. The address has them, to be kept and shared.
import type { ComponentChildren, JSX } from "preact";
import { useState } from "preact/hooks";
import { linkTo, useTopic } from "../hooks";
import { live } from "../live";
import { Capture } from "../parts/Capture";
import { Card, Page, Problem } from "../parts/Page";
import { TemperatureChart } from "../parts/TemperatureChart";
import { WatchedFieldsPlot } from "../parts/WatchedFieldsPlot";
import { type Wanted, plotNamed, plotOf } from "../plots";
import type { BoardPage, Described, Hello, Row } from "../types";

const most = 12; // plots of one page

export function PlotsPage({ wanted, hello }: { wanted: string[]; hello: Hello }): JSX.Element {
  const plots = [...new Set(wanted)].filter((text) => plotNamed(text)).slice(0, most);
  const show = (next: string[]) => (location.hash = linkTo("plots", ...next));
  return (
    <Page title="Plots" lead="Drag in a plot to zoom. The address has the plots: keep it to see them again.">
      <AddPlot hello={hello} full={plots.length === most} onAdd={(text) => show([...plots, text])} />
      {plots.length === 0 && <p class="empty">Nothing is plotted yet: add temperatures, a field or a capture.</p>}
      <div class="cards">
        {plots.map((text) => (
          <Plot key={text} plot={plotNamed(text)} hello={hello} onRemove={() => show(plots.filter((each) => each !== text))} />
        ))}
      </div>
    </Page>
  );
}

function Plot({ plot, hello, onRemove }: { plot: Wanted | null; hello: Hello; onRemove: () => void }): JSX.Element | null {
  if (!plot) return null;
  const framed = (title: string, children: ComponentChildren) => (
    <Card
      title={title}
      tools={
        <button aria-label={`Remove ${title}`} onClick={onRemove}>
          Remove
        </button>
      }
    >
      {children}
    </Card>
  );
  if (plot.kind === "temperatures") return framed(`Temperatures of ${plot.board}`, <Temperatures board={plot.board} />);
  if (plot.kind === "fields") return framed(`Fields of ${plot.port} PHY ${plot.phy}`, <WatchedFieldsPlot watched={plot} />);
  const refused = "This server only shows: 'orvane serve --write' captures.";
  return framed(`Capture of ${plot.board}`, hello.write ? <Capture serial={plot.board} /> : <Problem text={refused} />);
}

function Temperatures({ board }: { board: string }): JSX.Element {
  const { values, problem } = useTopic<BoardPage>("board", { board });
  const row = values.row;
  if (row?.temperatures.length) return <TemperatureChart serial={board} row={row} setPoints={values.setPoints ?? {}} />;
  return (
    <>
      <Problem text={problem || row?.problem || ""} />
      <p class="empty">{row?.state === "up" ? "This board tells none." : "Not known yet."}</p>
    </>
  );
}

type Kind = Wanted["kind"];

function AddPlot({ hello, full, onAdd }: { hello: Hello; full: boolean; onAdd: (text: string) => void }): JSX.Element {
  const [kind, setKind] = useState<Kind>("temperatures");
  const [problem, setProblem] = useState("");
  const [form, setForm] = useState({ board: "", port: "0", phy: "0", map: hello.maps[0] ?? "", interval: "1", field: "" });
  const { values: boards } = useTopic<Record<string, Row>>("rack", {});
  const put = (member: keyof typeof form) => (event: { currentTarget: { value: string } }) =>
    setForm({ ...form, [member]: event.currentTarget.value.trim() });
  const add = (event: Event) => {
    event.preventDefault();
    plotText(kind, form).then(
      (text) => (setProblem(""), onAdd(text)),
      (refused: Error) => setProblem(refused.message),
    );
  };
  return (
    <form class="bar" onSubmit={add} aria-label="Add a plot">
      <select aria-label="Kind of plot" value={kind} onChange={(event) => setKind(event.currentTarget.value as Kind)}>
        <option value="temperatures">Temperatures</option>
        <option value="fields">Field</option>
        {hello.write && <option value="capture">Capture</option>}
      </select>
      <label>
        Board <input required list="boards" size={12} value={form.board} onInput={put("board")} />
      </label>
      <datalist id="boards">
        {Object.keys(boards).map((serial) => (
          <option key={serial} value={serial} />
        ))}
      </datalist>
      {kind === "fields" && (
        <>
          <label>
            Port <input type="number" min="0" max="19" required value={form.port} onInput={put("port")} />
          </label>
          <label>
            PHY <input type="number" min="0" max="127" required value={form.phy} onInput={put("phy")} />
          </label>
          <label>
            Map <Choice names={hello.maps} chosen={form.map} onChoose={put("map")} />
          </label>
          <label>
            Field <input required size={28} placeholder="PMA.CONTROL1.LOOPBACK" value={form.field} onInput={put("field")} />
          </label>
          <label>
            Every <Choice names={hello.intervals.map(String)} chosen={form.interval} onChoose={put("interval")} /> s
          </label>
        </>
      )}
      <button disabled={full}>Add</button>
      {full && <span class="soft">{most} plots are the most.</span>}
      <Problem text={problem} />
    </form>
  );
}

function Choice(props: { names: string[]; chosen: string; onChoose: (event: JSX.TargetedEvent<HTMLSelectElement>) => void }): JSX.Element {
  return (
    <select value={props.chosen} onChange={props.onChoose}>
      {props.names.map((name) => (
        <option key={name}>{name}</option>
      ))}
    </select>
  );
}

// As the address names it; refused is a field that there is not.
async function plotText(kind: Kind, form: Record<"board" | "port" | "phy" | "map" | "interval" | "field", string>): Promise<string> {
  if (kind !== "fields") return plotOf[kind](form.board);
  const dot = form.field.lastIndexOf(".");
  const register = form.field.slice(0, dot);
  const described = await live.ask<Record<string, Described>>("describe", { map: form.map, names: [register] });
  if (!described[register]?.fields.some((field) => field.name === form.field.slice(dot + 1)))
    throw new Error(`the map ${form.map} has no field ${form.field}: it is REGISTER.FIELD`);
  return plotOf.fields({ port: `${form.board}:${form.port}`, phy: Number(form.phy), map: form.map, interval: Number(form.interval), names: [form.field] });
}
