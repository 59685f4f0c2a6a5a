// What components take from the connection and from the window.
import { useEffect, useRef, useState } from "preact/hooks";
import { live, type Values } from "./live";

export interface Watched<V> {
  values: V;
  problem: string;
}

// The newest values of a topic; a redraw follows at most once a frame, however many updates come.
export function useTopic<V extends object>(
  kind: string,
  members: Readonly<Record<string, unknown>>,
  onUpdate?: (changed: Values, at: number) => void,
): Watched<V> {
  const [, redraw] = useState(0);
  const state = useRef<Watched<V>>({ values: {} as V, problem: "" });
  const update = useRef(onUpdate);
  update.current = onUpdate;
  const key = JSON.stringify(members);
  useEffect(() => {
    let frame = 0;
    const soon = () => (frame ||= requestAnimationFrame(() => ((frame = 0), redraw((count) => count + 1))));
    state.current = { values: {} as V, problem: "" };
    const end = live.watch(
      kind,
      members,
      (values, changed, at) => {
        state.current = { values: values as V, problem: "" };
        update.current?.(changed, at);
        soon();
      },
      (problem) => {
        state.current = { ...state.current, problem };
        soon();
      },
    );
    return () => {
      end();
      cancelAnimationFrame(frame);
    };
  }, [kind, key]);
  return state.current;
}

// What a request answered; undefined until then.
export function useAnswer<Answer>(
  what: string,
  members: Readonly<Record<string, unknown>>,
  again: unknown = 0,
): { answer: Answer | undefined; problem: string } {
  const [told, tell] = useState<{ answer: Answer | undefined; problem: string }>({ answer: undefined, problem: "" });
  useEffect(() => {
    let wanted = true;
    live.ask<Answer>(what, members).then(
      (answer) => wanted && tell({ answer, problem: "" }),
      (problem: Error) => wanted && tell({ answer: undefined, problem: problem.message }),
    );
    return () => {
      wanted = false;
    };
  }, [what, JSON.stringify(members), again]);
  return told;
}

// The place that the address names: ["board", "OV0001"].
export function usePlace(): string[] {
  const [place, go] = useState(placeOf(location.hash));
  useEffect(() => {
    const follow = () => go(placeOf(location.hash));
    addEventListener("hashchange", follow);
    return () => removeEventListener("hashchange", follow);
  }, []);
  return place;
}

function placeOf(hash: string): string[] {
  try {
    return hash.replace(/^#\/?/, "").split("/").map(decodeURIComponent);
  } catch {
    return [""];
  }
}

export const linkTo = (...place: (string | number)[]): string => `#/${place.map(encodeURIComponent).join("/")}`;
