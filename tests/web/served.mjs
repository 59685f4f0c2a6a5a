// A server of the pages, and the lab around it. ORVANE_WEB and PYTHONPATH lead to the pages and the package.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { connect } from "node:net";
import { createInterface } from "node:readline";

// A running server: the address that it prints.
export async function serve(...words) {
  const process_ = spawn("/usr/bin/python3", ["-m", "orvane.serve", "--port", "0", ...words], { stdio: ["ignore", "pipe", "inherit"] });
  const [address] = await once(createInterface(process_.stdout), "line");
  return { address, end: () => process_.kill("SIGTERM") };
}

// One request to the lab's control socket.
export async function lab(board, action, members = {}) {
  const socket = connect(process.env.ORVANE_LAB_CONTROL);
  socket.write(JSON.stringify({ board, action, ...members }) + "\n");
  const [line] = await once(createInterface(socket), "line");
  socket.end();
  const answer = JSON.parse(line);
  assert.ok(answer.ok, answer.error);
  return answer.result ?? [];
}

export const go = (page, hash) => page.evaluate((to) => { location.hash = to; }, hash);
