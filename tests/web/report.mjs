// Reports in a real browser, opened as files: values, fields and their history, plots, keyboard, accessibility.
//
//     orvane-lab --lab tests/web/rack.json -- node tests/web/report.mjs MODULES SHOTS
//
// ORVANE_TOOL is the program orvane, PYTHONPATH leads to its package; the rest is as browser.mjs says.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { accessibility, folder, launch, look, openPage, runTests, saved } from "./browser.mjs";

const hostile = "</script><script>alert(1)</script><img src=x onerror=alert(1)>\u2028";
const map = write("wren.json", JSON.stringify({
  format: "orvane-map-1",
  name: "wren",
  registers: { CONTROL: { at: "30.0xC010", fields: {
    LED: "0: Lights the LED",
    MODE: { bits: "7:6", values: { 3: "both" } },
    LEVEL: { bits: "11:8", signed: true, scale: 0.5, unit: "V" },
  } } },
}));

function write(name, text) {
  writeFileSync(join(folder, name), text);
  return join(folder, name);
}

// Runs the program and gives the address of the page that it has written.
function report(name, ...words) {
  const page = join(folder, name);
  execFileSync(process.env.ORVANE_TOOL, [...words, "--html", page, "--map", map], { env: { ...process.env, ORVANE_PYTHON: "/usr/bin/python3" }, stdio: ["ignore", "inherit", "inherit"] });
  return `file://${page}`;
}

function logReport() {
  const time = (second) => `2026-11-22T02:08:0${second}.000000Z`;
  const line = (second, op, address, value, words = "", result = "") =>
    `0,3,${op},${address},${value},${time(second)},OV0001:0,done,${words},${result}`;
  return report("log.html", "log", write("session.csv", ["adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result",
    line(1, "MW", "1E,C010", "CAFE"), line(2, "MR", "1E,C010", "CAFE"), line(3, "MR", "1E,C010", "CBFF"),
    line(4, "MR", "01,0002", "0A5C"), line(5, "i2c.read", ",", "", "bus=0;device=0x50", "bytes=4F56"),
    `,,note,,,,${time(6)},,,${hostile.replaceAll(",", "")},`, ""].join("\n")));
}

function dumpReport() {
  const head = (second) => `# orvane dump 2\n# version 1\n# date 2026-11-22T02:08:0${second}Z\n# device OV0001:0\n# address 10.83.0.1\n# phy 3\n# space c45\n# ranges x\n`;
  const before = write("before.dump", `${head(1)}1.0x0002 0x0A5C\n1.0x0005 0x0007 0x0003\n30.0xC010 0x0000\n`);
  const after = write("after.dump", `${head(2)}1.0x0002 0x0A5C\n1.0x0005 0x0087\n30.0xC010 0x00C1\n`);
  return report("dumps.html", "export", before, after);
}

function runReport() {
  const program = write("sweep.py", `import orvane
run = orvane.Run("sweep", boards=["OV0001:0", "OV0003:0"], phy=3, drive=range(4))
@run.point
def measure(p, drive):
    p.record(eye=drive * 2.0)
run.go("${join(folder, "sweep.orvrun")}")
`);
  execFileSync("/usr/bin/python3", [program], { stdio: "inherit" });
  return report("run.html", "export", join(folder, "sweep.orvrun"), join(folder, "session.csv"), "--title", "Monday");
}

const history = (page) => page.getByRole("region", { name: "History of 30.0xC010 CONTROL" });

const tests = {
  async "a log's report tells totals, registers and when it was"({ page }) {
    assert.equal(await page.title(), "session.csv - Orvane");
    assert.deepEqual(await page.locator(".totals li").allInnerTexts(),
      ["4 accesses", "3 reads", "1 writes", "0 queued", "1 PHYs", "2 registers", "1 changed between reads"]);
    await page.getByText("Transaction log from 2026-11-22T02:08:01.000000Z to 2026-11-22T02:08:06.000000Z.").waitFor();
    const row = page.getByRole("region", { name: "Registers of the log" }).getByRole("row").filter({ hasText: "CONTROL" });
    assert.deepEqual(await row.getByRole("cell").allInnerTexts(), ["OV0001:0", "3", "30.0xC010", "CONTROL", "2", "1", "1", "0xCAFE", "0xCBFF"]);
    await page.getByRole("img", { name: "3 reads and 1 writes in the order of the log" }).waitFor();
    await look(page, "report-log");
  },

  async "the register that changed most shows its fields and what changed them"({ page }) {
    const mode = history(page).getByRole("row").filter({ has: page.getByRole("rowheader", { name: "LEVEL" }) });
    assert.deepEqual((await mode.getByRole("cell").allInnerTexts()).slice(0, 3), ["11:8", "-2.5 V", "1 change"]);
    const last = history(page).getByRole("region", { name: "Accesses to 30.0xC010 CONTROL" }).getByRole("row").last();
    const cells = await last.getByRole("cell").allInnerTexts();
    assert.deepEqual([cells[0], cells[2], cells[3]], ["3", "read", "0xCBFF"]);
    assert.equal(cells[5].replace(/\s+/g, " "), "LEVEL -2.5 V was -3 V LED 1 was 0");
    assert.equal(await last.locator(".bits .changed").count(), 2);
    await history(page).getByRole("img", { name: /^30.0xC010 CONTROL values, 3 points\. value: 51966 to 52223, last 52223/ }).waitFor();
  },

  async "a field is plotted over the accesses, and saved as CSV and as a picture"({ page }) {
    await history(page).getByLabel("Plot CONTROL.LEVEL").check();
    await history(page).getByRole("img", { name: /CONTROL.LEVEL: -3 to -2.5, last -2.5/ }).waitFor();
    const plot = history(page).locator("figure").last();
    assert.equal(await saved(page, plot.getByRole("button", { name: "CSV" })), "access,CONTROL.LEVEL\n1,-3\n2,-3\n3,-2.5\n");
    assert.ok((await saved(page, plot.getByRole("button", { name: "PNG" }))).startsWith("\x89PNG"));
    await history(page).getByLabel("Plot CONTROL.LEVEL").uncheck();
  },

  async "registers are filtered, and another is chosen by the keyboard"({ page }) {
    await page.getByLabel("Find registers").fill("pma");
    await page.getByText("1 of 2 registers").waitFor();
    await page.getByRole("button", { name: "1.0x0002" }).press("Enter");
    await page.getByRole("region", { name: "History of 1.0x0002 PMA.ID1" }).waitFor();
    await page.getByLabel("Find registers").fill("");
    await page.getByLabel("only those whose reads changed").check();
    await page.getByText("1 of 2 registers").waitFor();
    await page.getByLabel("only those whose reads changed").uncheck();
  },

  async "everything stands in order, and hostile text is text"({ page }) {
    await page.getByText("6 lines, shown 1 to 6").waitFor();
    await page.getByRole("cell", { name: hostile.trim() }).waitFor();
    assert.equal(await page.locator("img[src='x']").count(), 0);
    await page.getByRole("img", { name: "6 accesses of i2c, note, registers in 5 s" }).waitFor();
    await page.getByLabel("Filter lines").fill("i2c");
    await page.getByText("1 line, shown 1 to 1").waitFor();
    await page.getByRole("cell", { name: "bytes=4F56" }).waitFor();
  },

  async "only the page's own script runs in it"({ page }) {
    const refused = await page.evaluate(() => new Promise((resolve) => {
      document.addEventListener("securitypolicyviolation", (event) => resolve(event.effectiveDirective));
      document.body.append(Object.assign(document.createElement("script"), { textContent: "window.ran = true" }));
    }));
    assert.equal(refused, "script-src-elem");
    assert.equal(await page.evaluate(() => window.ran), undefined);
    page.complaints.length = 0; // the refusal is told there
  },

  async "a log without times is counted"({ browser }) {
    const log = write("flat.csv", "0,3,MW,1E,C010,CAFE\n0,3,MR,1E,C010,CAFE\n0,3,MR,1E,C010,CAFF\n0,3,MW,80004000,DEADBEEF\nlink up\n");
    const page = await openPage(browser, report("flat.html", "log", log));
    await page.getByText("It has no times: accesses are counted from 1, in order.").waitFor();
    await page.getByText("on PHY 3 of adapter 0").waitFor();
    const cells = await page.getByRole("region", { name: "Accesses", exact: true }).getByRole("row").last().getByRole("cell").allInnerTexts();
    assert.deepEqual([cells[0], cells[3], cells[6]], ["5", "note", "link up"]);
    await accessibility(page, "a log without times");
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  },

  async "dumps stand side by side, decoded, with what differs marked"({ browser }) {
    const page = await openPage(browser, dumpReport());
    await page.getByText("3 of 3 registers, 1 differ").waitFor();
    const table = page.getByRole("region", { name: "Registers of the dumps" });
    assert.deepEqual(await table.getByRole("row").last().getByRole("cell").allInnerTexts(), ["30.0xC010", "CONTROL", "0x0000", "0x00C1"]);
    assert.deepEqual(await table.locator(".changed").allInnerTexts(), ["0x00C1"]);
    const detail = page.getByRole("region", { name: "CONTROL" });
    const mode = detail.getByRole("row").filter({ has: page.getByRole("rowheader", { name: "MODE" }) });
    assert.deepEqual(await mode.getByRole("cell").allInnerTexts(), ["7:6", "0x0", "both"]);
    assert.equal(await detail.locator(".bits .changed").count(), 3);
    await look(page, "report-dumps");
    await page.getByLabel("only what differs").check();
    await page.getByText("1 of 3 registers, 1 differ").waitFor();
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  },

  async "a run has its points, its plot and its CSV, and a log stands behind it"({ browser }) {
    const page = await openPage(browser, runReport());
    await page.getByRole("heading", { level: 1, name: "Monday" }).waitFor();
    const part = page.getByRole("region", { name: "sweep.orvrun" });
    await part.getByText("8 points, 0 missing.").waitFor();
    await part.getByRole("img", { name: /^sweep eye, 4 points\. OV0001:0: 0 to 6, last 6; OV0003:0: 0 to 6, last 6/ }).waitFor();
    assert.match(await saved(page, part.getByRole("button", { name: "CSV" }).last()), /^port,drive,repeat,eye\nOV0001:0,0,0,0\n/);
    await page.getByRole("region", { name: "session.csv" }).getByText("6 lines, shown 1 to 6").waitFor();
    await look(page, "report-run");
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  },

  async "a report is as accessible on dark paper"({ browser, address }) {
    const page = await openPage(browser, address, { colorScheme: "dark" });
    await look(page, "report-dark");
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  },
};

const address = logReport();
const browser = await launch();
try {
  const page = await openPage(browser, address);
  const passed = await runTests(tests, "reports", { page, browser, address });
  process.exitCode = passed ? 0 : 1;
} finally {
  await browser.close();
}
