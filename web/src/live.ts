// The connection to the server: requests and their answers, and topics with their newest values.
export type Values = Readonly<Record<string, unknown>>;
type Members = Readonly<Record<string, unknown>>;
type Listener = (values: Values, changed: Values, at: number) => void;

interface Waiting {
  resolve: (value: unknown) => void;
  reject: (problem: Error) => void;
}

interface Watch {
  kind: string;
  members: Members;
  listener: Listener;
  topic?: number;
  values: Record<string, unknown>;
}

const patience = 1000; // ms until the first try to come back, doubled up to the longest
const longest = 10_000;

export class Live {
  // Called when the connection comes or goes.
  onState: (connected: boolean) => void = () => undefined;
  private socket: WebSocket | undefined;
  private next = 1;
  private waiting = new Map<number, Waiting>();
  private watches = new Set<Watch>();
  private early = new Map<number, Values[]>(); // updates that overtake the answer that names their topic
  private inSight: readonly string[] = [];
  private pause = patience;

  // From now on, while the page is to be seen: boards are not asked for what nobody looks at.
  begin(): void {
    document.addEventListener("visibilitychange", () => {
      if (document.hidden) this.socket?.close();
      else this.connect();
    });
    this.connect();
  }

  private connect(): void {
    const open = this.socket !== undefined && this.socket.readyState <= WebSocket.OPEN;
    if (document.hidden || open) return;
    const scheme = location.protocol === "https:" ? "wss" : "ws";
    this.socket = new WebSocket(`${scheme}://${location.host}/live`);
    const socket = this.socket;
    socket.onopen = () => this.opened();
    socket.onmessage = (event) => this.take(JSON.parse(String(event.data)));
    socket.onclose = () => socket === this.socket && this.closed();
  }

  // The answer to a request; an error is what the server says.
  ask<Answer>(what: string, members: Members = {}): Promise<Answer> {
    return new Promise((resolve, reject) => {
      if (this.socket?.readyState !== WebSocket.OPEN) {
        reject(new Error("the server is not reached"));
        return;
      }
      const id = this.next++;
      this.waiting.set(id, { resolve: resolve as (value: unknown) => void, reject });
      this.socket.send(JSON.stringify({ ...members, id, do: what }));
    });
  }

  // Tells the listener the values of a topic until the function that it returns is called.
  watch(kind: string, members: Members, listener: Listener, onProblem: (text: string) => void): () => void {
    const watch: Watch = { kind, members, listener, values: {} };
    this.watches.add(watch);
    this.start(watch).catch((problem: Error) => onProblem(problem.message));
    return () => {
      this.watches.delete(watch);
      if (watch.topic !== undefined && ![...this.watches].some((each) => each.topic === watch.topic))
        this.ask("unwatch", { topic: watch.topic }).catch(() => undefined);
    };
  }

  // The boards that are on the screen: only they are asked.
  look(boards: readonly string[]): void {
    this.inSight = boards;
    this.ask("look", { boards }).catch(() => undefined);
  }

  private async start(watch: Watch): Promise<void> {
    if (this.socket?.readyState !== WebSocket.OPEN) return; // it begins when the connection does
    const { topic } = await this.ask<{ topic: number }>("watch", { ...watch.members, kind: watch.kind });
    if (!this.watches.has(watch)) {
      if (![...this.watches].some((each) => each.topic === topic)) await this.ask("unwatch", { topic });
      return;
    }
    watch.topic = topic;
    const known = [...this.watches].find((each) => each !== watch && each.topic === topic);
    if (known) this.tell(watch, known.values, Date.now() / 1000);
    for (const values of this.early.get(topic) ?? []) this.tell(watch, values, Date.now() / 1000);
    this.early.delete(topic);
  }

  private opened(): void {
    this.pause = patience;
    this.onState(true);
    for (const watch of this.watches) this.start(watch).catch(() => undefined);
    if (this.inSight.length) this.look(this.inSight);
  }

  private closed(): void {
    for (const each of this.waiting.values()) each.reject(new Error("the server is not reached"));
    this.waiting.clear();
    this.early.clear();
    for (const watch of this.watches) {
      delete watch.topic;
      watch.values = {}; // the server begins anew, and numbers what it tells anew
    }
    this.onState(false);
    setTimeout(() => this.connect(), this.pause);
    this.pause = Math.min(longest, this.pause * 2);
  }

  private take(message: { id?: number; ok?: unknown; error?: string; topic?: number; at?: number; set?: Values }): void {
    if (message.topic !== undefined) {
      const mine = [...this.watches].filter((each) => each.topic === message.topic);
      for (const watch of mine) this.tell(watch, message.set ?? {}, message.at ?? 0);
      if (mine.length === 0)
        this.early.set(message.topic, [...(this.early.get(message.topic) ?? []), message.set ?? {}].slice(-20));
      return;
    }
    const waiting = this.waiting.get(message.id ?? 0);
    this.waiting.delete(message.id ?? 0);
    if (message.error !== undefined) waiting?.reject(new Error(message.error));
    else waiting?.resolve(message.ok);
  }

  private tell(watch: Watch, changed: Values, at: number): void {
    Object.assign(watch.values, changed);
    watch.listener(watch.values, changed, at);
  }
}

export const live = new Live();
