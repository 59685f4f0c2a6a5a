// The page of plots in a real browser beside simulated boards: values, zoom, files, keyboard, accessibility.
//
//     orvane-lab --lab tests/web/rack.json -- node tests/web/plots.mjs MODULES SHOTS
//
// The rest is as browser.mjs and served.mjs say.
import assert from "node:assert/strict";
import { launch, look, openPage, runTests, saved } from "./browser.mjs";
import { go, lab, serve } from "./served.mjs";

const card = (page, title) => page.locator("section.card").filter({ has: page.getByRole("heading", { name: title }) });
const loopback = (value) => lab("OV0001", "set", { register: "0x10000", value, device: 0, phy: 3 });

const tests = {
  async "temperatures are added and drawn with their set points"({ page }) {
    await go(page, "/plots");
    await page.getByText("Nothing is plotted yet").waitFor();
    await page.getByLabel("Board").fill("OV0001");
    await page.getByRole("button", { name: "Add", exact: true }).press("Enter");
    await page.getByRole("img", { name: /^OV0001 temperatures, .*channel 0: 31 to 31, last 31;/ }).waitFor();
    await go(page, "/board/OV0001");
    await page.getByLabel("Set point of channel 0").fill("40");
    await page.getByRole("button", { name: "Set channel 0" }).click();
    await page.getByRole("cell", { name: "40.0" }).waitFor();
    await page.getByRole("link", { name: "On a page of plots" }).click();
    await page.getByRole("img", { name: /channel 0: \S+ to \S+, last \S+;.*set point 0: 40 to 40, last 40/ }).waitFor();
  },

  async "a field is followed as the board changes it"({ page }) {
    await loopback(0);
    await page.getByLabel("Kind of plot").selectOption("fields");
    await page.getByLabel("Board").fill("OV0001");
    await page.getByLabel("PHY").fill("3");
    await page.getByLabel("Field", { exact: true }).fill("PMA.CONTROL1.LOOPBACK");
    await page.getByLabel("Every").selectOption("0.1");
    await page.getByRole("button", { name: "Add", exact: true }).click();
    await page.getByRole("img", { name: /LOOPBACK: 0 to 0, last 0$/ }).waitFor();
    for (const value of [1, 0, 1]) {
      await loopback(value);
      await page.getByRole("img", { name: new RegExp(`LOOPBACK: 0 to 1, last ${value}$`) }).waitFor();
    }
    assert.match(decodeURIComponent(page.url()), /#\/plots\/temperatures OV0001\/fields OV0001:0 3 ieee8023 0\.1 PMA\.CONTROL1\.LOOPBACK$/);
  },

  async "a field that the map has not is refused"({ page }) {
    await page.getByLabel("Field", { exact: true }).fill("PMA.CONTROL1.LOOPBACKS");
    await page.getByRole("button", { name: "Add", exact: true }).click();
    await page.getByRole("alert").getByText("the map ieee8023 has no field PMA.CONTROL1.LOOPBACKS").waitFor();
    await page.getByLabel("Field", { exact: true }).fill("PMA.CONTROL1.LOOPBACK");
  },

  async "a capture is drawn, zoomed into by the mouse and by a button, and seen in full again"({ page }) {
    await page.getByLabel("Kind of plot").selectOption("capture");
    await page.getByRole("button", { name: "Add", exact: true }).click();
    const capture = card(page, "Capture of OV0001");
    await capture.getByRole("button", { name: "Capture", exact: true }).click();
    await capture.getByRole("img", { name: /^OV0001 capture, 1000 points/ }).waitFor();
    await capture.scrollIntoViewIfNeeded();
    const { x, y, width, height } = await capture.locator(".u-over").boundingBox();
    await page.mouse.move(x + width / 4, y + height / 2);
    await page.mouse.down();
    await page.mouse.move(x + width / 2, y + height / 2, { steps: 5 });
    await page.mouse.up();
    const shown = async () => (await capture.locator("output.zoom").innerText()).match(/sample (\S+) to (\S+)$/).slice(1).map(Number);
    const [begin, end] = await shown();
    assert.ok(begin > 230 && begin < 270 && end > 480 && end < 520, `${begin} to ${end}`);
    await capture.getByRole("button", { name: "Zoom in" }).press("Enter");
    const [nearer, until] = await shown();
    assert.ok(Math.abs(until - nearer - (end - begin) / 2) < 2, `${nearer} to ${until}`);
    await capture.getByRole("button", { name: "All" }).click();
    assert.equal(await capture.locator("output.zoom").count(), 0);
  },

  async "a plot is saved as CSV with the values that were drawn, and as a picture"({ page }) {
    const capture = card(page, "Capture of OV0001");
    const rows = (await saved(page, capture.getByRole("button", { name: "CSV" }))).trim().split("\n");
    assert.deepEqual([rows.length, rows[0]], [1001, "sample,converter"]);
    const values = rows.slice(1).map((row) => Number(row.split(",")[1]));
    const label = await capture.getByRole("img").getAttribute("aria-label");
    assert.equal(label, `OV0001 capture, 1000 points. converter: ${Math.min(...values)} to ${Math.max(...values)}, last ${values[999]}`);
    const fields = card(page, "Fields of OV0001:0 PHY 3");
    const told = (await saved(page, fields.getByRole("button", { name: "CSV" }))).trim().split("\n");
    assert.deepEqual([told[0], told.slice(1).map((row) => row.split(",")[1]).join("")], ["time,PMA.CONTROL1.LOOPBACK", "0101"]);
    const picture = await saved(page, card(page, "Temperatures of OV0001").getByRole("button", { name: "PNG" }));
    assert.ok(picture.startsWith("\x89PNG"));
    await look(page, "plots");
  },

  async "the address brings the plots back, and one is removed"({ page }) {
    await page.reload();
    await page.getByRole("img", { name: /^OV0001:0 PHY 3 fields, .*last 1$/ }).waitFor();
    await page.getByRole("button", { name: "Remove Capture of OV0001" }).click();
    assert.equal(await card(page, "Capture of OV0001").count(), 0);
    assert.ok(!page.url().includes("capture"));
  },

  async "a server that only shows captures nothing"({ browser, showing }) {
    const page = await openPage(browser, showing.address);
    await page.getByRole("link", { name: "Plots" }).click();
    assert.deepEqual(await page.getByLabel("Kind of plot").locator("option").allInnerTexts(), ["Temperatures", "Field"]);
    await go(page, "/plots/capture%20OV0001");
    await page.getByRole("alert").getByText("orvane serve --write").waitFor();
    assert.deepEqual(page.complaints, []);
    await page.context().close();
  },
};

const writing = await serve("--write");
const showing = await serve();
const browser = await launch();
try {
  const page = await openPage(browser, writing.address);
  await page.getByRole("link", { name: "OV0001" }).waitFor();
  const passed = await runTests(tests, "plots", { page, browser, showing });
  process.exitCode = passed ? 0 : 1;
} finally {
  await browser.close();
  writing.end();
  showing.end();
}
