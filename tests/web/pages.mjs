// Every page in a real browser beside simulated boards: values, a board that goes, writing, keyboard, accessibility.
//
//     orvane-lab --lab tests/web/rack.json -- node tests/web/pages.mjs MODULES SHOTS
//
// ORVANE_WEB and PYTHONPATH lead to the pages and the package; the rest is as browser.mjs says.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { accessibility, folder, launch, look, openPage, runTests, saved } from "./browser.mjs";
import { go, lab, serve } from "./served.mjs";

const hostile = "<IMG/SRC=X/ONERROR=ALERT(1)>"; // board names are capitals

const tests = {
  async "the rack has every board with its round trip, temperature and state"({ page }) {
    await page.getByText("6 boards", { exact: true }).waitFor();
    const row = page.getByRole("row").filter({ hasText: "OV0001" });
    await row.getByText("answers").waitFor();
    const cells = await row.getByRole("cell").allInnerTexts();
    assert.deepEqual([cells[0], cells[2], cells[3], cells[7]], ["OV0001", "10.83.0.1", "0, 1, 10", "31.0"]);
    assert.match(cells[4], /^\d+\.\d\d$/);
    await page.getByLabel("Filter boards").fill("OV");
    await look(page, "rack");
  },

  async "the rack is filtered and sorted"({ page }) {
    await page.getByLabel("Filter boards").fill("ov000");
    await page.getByText("5 of 6 boards").waitFor();
    await page.getByRole("button", { name: "Board", exact: true }).click();
    await page.getByRole("button", { name: "Board", exact: true }).click();
    const first = page.getByRole("table").getByRole("link").first();
    assert.equal(await first.innerText(), "OV0005");
    assert.equal(await page.getByRole("columnheader", { name: "Board" }).getAttribute("aria-sort"), "descending");
    await page.getByRole("button", { name: "Board", exact: true }).click();
    await page.getByLabel("Filter boards").fill("");
  },

  async "a hostile name is text"({ page }) {
    await page.getByRole("link", { name: hostile }).click();
    await page.getByRole("heading", { level: 1, name: hostile }).waitFor();
    assert.equal(await page.locator("img[src='X']").count(), 0);
    await go(page, "/");
  },

  async "a board that is stopped and started again is seen doing so"({ page }) {
    const row = page.getByRole("row").filter({ hasText: "OV0002" });
    await row.getByText("answers").waitFor();
    await lab("OV0002", "stop");
    await row.getByText("does not answer").waitFor();
    await lab("OV0002", "start");
    await row.getByText("answers").waitFor();
  },

  async "a board tells its ports, services, temperatures, events and what a scan finds"({ page }) {
    await go(page, "/board/OV0001");
    assert.equal(await page.getByRole("button", { name: "Scan OV0001:10" }).count(), 0); // it would write
    await page.getByRole("button", { name: "Scan OV0001:0" }).click();
    await page.getByRole("link", { name: "PHY 3", exact: true }).waitFor();
    await page.getByRole("row", { name: /^mdio \d+$/ }).waitFor();
    await page.getByRole("cell", { name: "31.0" }).first().waitFor();
    await page.getByText("OV0001:0 scan:").waitFor();
    await page.getByText("opened port 0 PHY 0").first().waitFor();
    await page.getByRole("img", { name: /^OV0001 temperatures, .*channel 0: 31 to 31/ }).waitFor();
    await look(page, "board");
  },

  async "a plot is saved as a picture and as CSV"({ page }) {
    for (const [name, start] of [["CSV", "time,channel 0"], ["PNG", "\x89PNG"]])
      assert.ok((await saved(page, page.getByRole("button", { name }))).startsWith(start), name);
  },

  async "a PHY's registers are named, decoded and follow the board, with changed bits marked"({ page }) {
    await go(page, "/phy/OV0001:0/3");
    await page.getByLabel("Find registers").fill("PMA.CONTROL1");
    await page.getByLabel("Every").selectOption("0.1");
    await lab("OV0001", "set", { register: "0x10000", value: 0x0000, device: 0, phy: 3 });
    await page.getByRole("button", { name: "CONTROL1", exact: true }).click();
    const detail = page.getByRole("region", { name: "PMA.CONTROL1" });
    await detail.getByText("0x0000", { exact: true }).first().waitFor();
    await detail.getByLabel("Plot PMA.CONTROL1.LOOPBACK").check();
    await lab("OV0001", "set", { register: "0x10000", value: 0x0001, device: 0, phy: 3 });
    await detail.getByText("0x0001", { exact: true }).first().waitFor();
    await detail.locator(".bits .changed").first().waitFor();
    assert.equal(await detail.locator(".bits .changed").count(), 1);
    await page.getByRole("img", { name: /LOOPBACK: 0 to 1, last 1/ }).waitFor();
    await look(page, "phy");
  },

  async "a page that nobody sees asks the boards for nothing, and goes on when it is seen"({ page }) {
    const hide = (hidden) => page.evaluate((now) => {
      Object.defineProperty(document, "hidden", { value: now, configurable: true });
      document.dispatchEvent(new Event("visibilitychange"));
    }, hidden);
    const reads = async () => (await lab("OV0001", "counts")).filter((each) => each.procedure.startsWith("mdio"))
      .reduce((sum, each) => sum + each.received, 0);
    await hide(true);
    await page.getByText("not connected").waitFor();
    await page.waitForTimeout(500); // what was under way
    const before = await reads();
    await page.waitForTimeout(1500); // fifteen reads, if it went on
    assert.equal(await reads(), before);
    await lab("OV0001", "set", { register: "0x10000", value: 0x0002, device: 0, phy: 3 });
    await hide(false);
    await page.getByRole("region", { name: "PMA.CONTROL1" }).getByText("0x0002", { exact: true }).first().waitFor();
  },

  async "a register that a read changes waits for a click"({ page }) {
    await page.getByLabel("Find registers").fill("PMA.STATUS1");
    const row = page.getByRole("row").filter({ hasText: "1.0x0001" });
    await row.getByText("by a click").waitFor();
    await page.getByRole("button", { name: "STATUS1", exact: true }).click();
    await page.getByText("A read changes it").waitFor();
    await page.getByRole("button", { name: "Read", exact: true }).click();
    await page.getByRole("region", { name: "PMA.STATUS1" }).getByRole("status").waitFor();
  },

  async "without --write there is nothing to write with, and the server refuses it, too"({ page }) {
    await page.getByText("live, read only").waitFor();
    assert.equal(await page.getByRole("button", { name: "Write" }).count(), 0);
    const refusal = await page.evaluate(() => new Promise((resolve) => {
      const socket = new WebSocket(`ws://${location.host}/live`);
      socket.onopen = () => socket.send(JSON.stringify({ id: 1, do: "write", port: "OV0001:0", phy: 3, name: "PMA.CONTROL1", value: 1 }));
      socket.onmessage = (event) => (socket.close(), resolve(JSON.parse(event.data).error));
    }));
    assert.match(refusal, /only shows/);
  },

  async "with --write a value, a choice and a set point reach the board"({ browser, writing }) {
    const page = await openPage(browser, writing.address);
    await page.getByText("live, may write").waitFor();
    await page.getByRole("link", { name: "OV0003" }).waitFor();
    await go(page, "/phy/OV0003:0/3");
    await page.getByLabel("Find registers").fill("PMA.CONTROL1");
    await page.getByRole("button", { name: "CONTROL1", exact: true }).click();
    const detail = page.getByRole("region", { name: "PMA.CONTROL1" });
    await detail.getByLabel("Value for PMA.CONTROL1", { exact: true }).fill("0x0040");
    await detail.getByRole("button", { name: "Write" }).first().click();
    await detail.getByText("0x0040", { exact: true }).first().waitFor();
    const [held] = await lab("OV0003", "get", { register: "0x10000", device: 0, phy: 3 });
    assert.equal(Number(held.value), 0x40);
    await accessibility(page, "a PHY that may be written");
    await go(page, "/board/OV0003");
    await page.getByRole("button", { name: "Scan OV0003:10" }).click();
    await page.getByRole("link", { name: "Device 31", exact: true }).waitFor();
    assert.equal(await page.getByRole("link", { name: "Device 3", exact: true }).count(), 1);
    assert.equal(await page.getByRole("link", { name: "Device 2", exact: true }).count(), 0); // reserved
    await page.getByLabel("Set point of channel 0").fill("60");
    await page.getByRole("button", { name: "Set channel 0" }).click();
    await page.getByRole("cell", { name: "60.0" }).waitFor();
    await page.getByRole("button", { name: "Capture", exact: true }).click();
    await page.getByRole("img", { name: /^OV0003 capture, 1000 points/ }).waitFor();
    await look(page, "write");
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  },

  async "a time line shows a log's services and accesses"({ page }) {
    await go(page, "/log");
    await page.getByText("4 lines, shown 1 to 4").waitFor();
    await page.getByRole("cell", { name: "30.0xC010" }).first().waitFor();
    await page.getByRole("img", { name: "4 accesses of i2c, note, registers in 2 s" }).waitFor();
    await look(page, "log");
    await page.getByLabel("Filter lines").fill("i2c");
    await page.getByText("1 line, shown 1 to 1").waitFor();
  },

  async "a live time line shows what is done now"({ page, browser, server }) {
    await page.getByLabel("Time line of").selectOption("-1");
    await page.getByLabel("Filter lines").fill("");
    const other = await openPage(browser, server.address);
    await other.getByRole("link", { name: "OV0004" }).click();
    await page.getByRole("cell", { name: "shell.ping" }).first().waitFor();
    await other.context().close();
  },

  async "a run shows its points and a plot of them"({ page }) {
    await go(page, "/runs");
    await page.getByRole("link", { name: "sweep.orvrun" }).click();
    await page.getByText("8 points, 0 missing.").waitFor();
    await page.getByRole("img", { name: /^sweep eye, 4 points\. OV0001:0: 0 to 6/ }).waitFor();
    await look(page, "run");
  },

  async "everything is reached by the keyboard"({ page }) {
    await go(page, "/");
    await page.reload();
    await page.getByRole("link", { name: "OV0001" }).waitFor();
    const reached = [];
    for (let presses = 0; presses < 14; ++presses) {
      await page.keyboard.press("Tab");
      reached.push(await page.evaluate(() => document.activeElement?.textContent?.trim() || document.activeElement?.getAttribute("aria-label") || ""));
    }
    for (const name of ["To the page", "Rack", "Plots", "Time line", "Runs", "Filter boards", "Look again", "Board"])
      assert.ok(reached.includes(name), `${name} is not among ${reached}`);
  },

  async "the pages are as accessible on dark paper"({ browser, server }) {
    const page = await openPage(browser, server.address, { colorScheme: "dark" });
    await page.getByRole("link", { name: "OV0001" }).waitFor();
    await look(page, "dark");
    for (const [hash, text] of [["/board/OV0001", "Services"], ["/phy/OV0001:0/3", "Choose a register"], ["/log", "shown"], ["/run/0", "8 points"], ["/plots", "Nothing is plotted"]]) {
      await go(page, hash);
      await page.getByText(text).first().waitFor();
      await accessibility(page, `dark ${hash}`);
    }
    await page.context().close();
  },

  async "the token leaves the address line, and a second visit needs none"({ page, server }) {
    assert.ok(!page.url().includes("token"));
    await page.goto(new URL(server.address).origin);
    await page.getByRole("link", { name: "OV0001" }).waitFor();
  },
};

function makeLog() {
  const file = join(folder, "session.csv");
  const time = (second) => `2026-11-22T02:08:0${second}.000000Z`;
  writeFileSync(file, ["adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result",
    `0,3,MW,1E,C010,CAFE,${time(1)},OV0001:0,done,,`, `0,3,MR,1E,C010,CAFE,${time(2)},OV0001:0,done,,`,
    `0,3,i2c.read,,,,${time(3)},OV0001:0,done,bus=0;device=0x50;command=0x00;length=2,bytes=4F56`,
    `,,note,,,,${time(3)},,,half way,`, ""].join("\n"));
  return file;
}

async function makeRun() {
  const program = join(folder, "sweep.py");
  writeFileSync(program, `import orvane
run = orvane.Run("sweep", boards=["OV0001:0", "OV0003:0"], phy=3, drive=range(4))
@run.point
def measure(p, drive):
    p.record(eye=drive * 2.0)
run.go("${join(folder, "sweep.orvrun")}")
`);
  const [status] = await once(spawn("/usr/bin/python3", [program], { stdio: "inherit" }), "exit");
  assert.equal(status, 0, "the run");
  return join(folder, "sweep.orvrun");
}

const server = await serve("--log", makeLog(), "--run", await makeRun());
const writing = await serve("--write");
const browser = await launch();
try {
  const page = await openPage(browser, server.address);
  const passed = await runTests(tests, "the pages", { page, browser, server, writing });
  process.exitCode = passed ? 0 : 1;
} finally {
  await browser.close();
  server.end();
  writing.end();
}
