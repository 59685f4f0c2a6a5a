// What the tests of pages share: a browser, pages whose consoles must stay silent, accessibility, pictures.
//
//     node TEST.mjs MODULES SHOTS
//
// MODULES is the folder of npm's packages, SHOTS takes the screenshots. The browser is CHROMIUM, or chromium.
import assert from "node:assert/strict";
import { mkdirSync, mkdtempSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";

const [modules, shots] = process.argv.slice(2);
const load = createRequire(resolve(modules, "package.json"));
const { chromium } = load("playwright-core");
const axe = readFileSync(load.resolve("axe-core/axe.min.js"), "utf8");
const widths = [400, 900, 1400];
const patience = 30_000; // ms for what happens at once on a quiet machine
mkdirSync(shots, { recursive: true });

export const folder = mkdtempSync(join(tmpdir(), "orvane-web-"));

export const launch = () =>
  chromium.launch({ executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"] });

// A page whose console must stay silent, and which loads nothing from elsewhere.
export async function openPage(browser, address, how = {}) {
  const context = await browser.newContext({ viewport: { width: 1400, height: 900 }, ...how });
  await context.addInitScript(axe);
  const page = await context.newPage();
  const origin = address.startsWith("file:") ? address : new URL(address).origin;
  page.complaints = [];
  page.setDefaultTimeout(patience);
  page.on("console", (message) => ["error", "warning"].includes(message.type()) && page.complaints.push(message.text()));
  page.on("pageerror", (problem) => page.complaints.push(String(problem)));
  page.on("dialog", (dialog) => (page.complaints.push(`dialog: ${dialog.message()}`), dialog.dismiss()));
  page.on("request", (request) => {
    if (![origin, "data:", "blob:"].some((known) => request.url().startsWith(known))) page.complaints.push(`loads ${request.url()}`);
  });
  await page.goto(address);
  return page;
}

// What axe finds wrong.
export async function accessibility(page, name) {
  const { violations } = await page.evaluate(() => window.axe.run(document, { resultTypes: ["violations"] }));
  assert.deepEqual(violations.map((each) => [each.id, each.nodes.map((node) => node.html).slice(0, 3)]), [], `axe on ${name}`);
}

// Looks at a page at each width: nothing sticks out, nothing is inaccessible; keeps a picture.
export async function look(page, name) {
  for (const width of widths) {
    await page.setViewportSize({ width, height: width === 400 ? 800 : 900 });
    await page.waitForTimeout(300); // plots follow the width a frame later
    const over = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
    assert.ok(over <= 0, `${name} is ${over} px too wide at ${width}`);
    await accessibility(page, `${name} at ${width}`);
    await page.screenshot({ path: join(shots, `${name}-${width}.png`) });
  }
  await page.setViewportSize({ width: 1400, height: 900 });
}

// What a button of the page saves, byte for character.
export async function saved(page, button) {
  const [file] = await Promise.all([page.waitForEvent("download"), button.click()]);
  return readFileSync(await file.path(), "latin1");
}

// Runs tests in their order; a page that is given must have a silent console after each. True when all passed.
export async function runTests(tests, what, given) {
  let failed = 0;
  for (const [name, test] of Object.entries(tests)) {
    try {
      await test(given);
      assert.deepEqual(given.page?.complaints ?? [], [], "the console");
      console.log(`passed: ${name}`);
    } catch (problem) {
      ++failed;
      if (given.page) {
        given.page.complaints.length = 0;
        await given.page.screenshot({ path: join(shots, `failed-${what.replaceAll(" ", "-")}-${failed}.png`) });
      }
      console.log(`FAILED: ${name}\n${problem.stack}`);
    }
  }
  const count = Object.keys(tests).length;
  console.log(`${count - failed} of ${count} tests of ${what} passed`);
  return failed === 0;
}
