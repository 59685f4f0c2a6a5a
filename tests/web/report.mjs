// Reports in a real browser, opened as files: values, fields and their history, plots, keyboard, accessibility.
//
//     orvane-lab --lab tests/web/rack.json -- node tests/web/report.mjs MODULES SHOTS
//
// ORVANE_TOOL is the program orvane; the rest is as browser.mjs says.
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
  execFileSync(process.env.ORVANE_TOOL, [...words, "--html", page, "--map", map], { stdio: ["ignore", "inherit", "inherit"] });
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
