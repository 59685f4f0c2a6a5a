// The rack of thousands of boards in a real browser: what is in the document, and how smoothly it scrolls.
//
//     orvane-lab --boards 3000 -- node tests/web/fleet.mjs MODULES SHOTS
//
// The rest is as browser.mjs and served.mjs say.
import assert from "node:assert/strict";
import { accessibility, launch, openPage, runTests } from "./browser.mjs";
import { go, serve } from "./served.mjs";

const boards = 3000;
const rowHeight = 30; // px, as the style sheet has it
const mostRows = 60; // of a table that 900 px are enough for

const table = (page) => page.getByRole("region", { name: "Boards" });
const inDocument = (page) => page.locator("tbody tr:not(.gap)").count();

async function scrollTo(page, row) {
  await table(page).evaluate((box, top) => { box.scrollTop = top; }, row * rowHeight);
}

// Scrolls through the whole table, a little each frame; how long each frame took, in ms.
const ride = (page) => table(page).evaluate((box) => new Promise((resolve) => {
  const frames = [];
  const step = box.scrollHeight / 300;
  let before = 0;
  requestAnimationFrame(function next(now) {
    if (before) frames.push(now - before);
    before = now;
    box.scrollTop += step;
    if (box.scrollTop + box.clientHeight < box.scrollHeight - 1) requestAnimationFrame(next);
    else resolve(frames);
  });
}));

// Seconds of a processor that the page's thread has worked, and in scripts, whatever else the machine does.
async function workOf(page) {
  const session = await page.context().newCDPSession(page);
  await session.send("Performance.enable", { timeDomain: "threadTicks" });
  return async () => {
    const { metrics } = await session.send("Performance.getMetrics");
    return ["TaskDuration", "ScriptDuration"].map((name) => metrics.find((each) => each.name === name).value);
  };
}

const ranked = (list) => [...list].sort((a, b) => a - b);
const told = (list) => ["median", 0.5, "95 %", 0.95, "most", 1]
  .map((part) => (typeof part === "string" ? part : `${ranked(list)[Math.min(list.length - 1, Math.floor(part * list.length))].toFixed(1)} ms`)).join(" ");

const tests = {
  async "every board is counted, and only rows on the screen are in the document"({ page }) {
    await page.getByText(`${boards} boards`, { exact: true }).waitFor({ timeout: 120_000 });
    assert.equal(await table(page).getByRole("table").getAttribute("aria-rowcount"), String(boards + 1));
    assert.ok((await inDocument(page)) <= mostRows, `${await inDocument(page)} rows`);
  },

  async "a row is where it belongs after a scroll, and few stay in the document"({ page }) {
    for (const row of [100, 2500, boards - 1, 0]) {
      await scrollTo(page, row);
      const serial = `OV${String(row + 1).padStart(4, "0")}`;
      const shown = page.locator(`tbody tr[aria-rowindex="${row + 2}"]`);
      await shown.getByRole("link", { name: serial, exact: true }).waitFor();
      const box = await table(page).boundingBox();
      const place = await shown.boundingBox();
      assert.ok(place.y >= box.y && place.y + place.height <= box.y + box.height + 1, `${serial} is not on the screen`);
      assert.ok((await inDocument(page)) <= mostRows, `${await inDocument(page)} rows`);
    }
  },

  async "the boards that are scrolled to are those that are asked"({ page }) {
    await scrollTo(page, 1500);
    await page.locator('tbody tr[aria-rowindex="1502"]').getByText("answers").waitFor();
  },

  async "scrolling through all of them ends at the last"({ page }) {
    await scrollTo(page, 0);
    const seconds = await workOf(page);
    const before = await seconds();
    const frames = await ride(page);
    const [work, script] = (await seconds()).map((after, index) => ((after - before[index]) * 1000 / frames.length).toFixed(1));
    await page.getByRole("link", { name: `OV${boards}`, exact: true }).waitFor();
    assert.ok(frames.length >= 250, `${frames.length} frames`);
    assert.ok((await inDocument(page)) <= mostRows, `${await inDocument(page)} rows`);
    console.log(`${boards} boards scrolled through in ${frames.length} frames: ${work} ms of a processor for each, ${script} ms of them script; from one to the next ${told(frames)}`);
  },

  async "a table of thousands is filtered, sorted and accessible"({ page }) {
    await page.getByLabel("Filter boards").fill("OV29");
    await page.getByText(`100 of ${boards} boards`).waitFor();
    await page.getByLabel("Filter boards").fill("");
    await page.getByRole("button", { name: "Board", exact: true }).click();
    await page.getByRole("button", { name: "Board", exact: true }).click();
    await scrollTo(page, 0);
    await page.locator('tbody tr[aria-rowindex="2"]').getByRole("link", { name: `OV${boards}` }).waitFor();
    await accessibility(page, "the rack of thousands");
    await go(page, "/");
  },
};

const server = await serve();
const browser = await launch();
try {
  const page = await openPage(browser, server.address);
  process.exitCode = (await runTests(tests, "the rack of thousands", { page })) ? 0 : 1;
} finally {
  await browser.close();
  server.end();
}
