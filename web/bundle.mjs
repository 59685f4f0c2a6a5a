// Makes the pages and the page of reports: bundle.mjs FOLDER. Nothing in them is loaded from elsewhere.
import { build } from "esbuild";
import { createHash } from "node:crypto";
import { copyFile, mkdir, readFile, stat, writeFile } from "node:fs/promises";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const folder = process.argv[2] ?? "dist";
const source = join(dirname(fileURLToPath(import.meta.url)), "src");
const mostBytes = 250_000; // of a first visit, uncompressed

const notices = "/*! Preact, (c) 2015-present Jason Miller, MIT licence. uPlot, (c) 2022 Leon Sorokin, MIT licence. */";
const how = {
  absWorkingDir: source,
  bundle: true,
  minify: true,
  target: ["chrome110", "firefox110", "safari16"],
  jsx: "automatic",
  jsxImportSource: "preact",
  legalComments: "inline",
  banner: { js: notices },
  logLevel: "warning",
};

await mkdir(folder, { recursive: true });
await build({ ...how, entryPoints: { orvane: "main.tsx" }, outdir: folder, format: "esm" });
for (const name of ["index.html", "icon.svg"])
  await copyFile(join(source, name), join(folder, name));

let bytes = 0;
for (const name of ["index.html", "icon.svg", "orvane.js", "orvane.css"])
  bytes += (await stat(join(folder, name))).size;
console.log(`the pages: ${Math.round(bytes / 1000)} kB`);
if (bytes > mostBytes)
  throw new Error(`the pages have ${bytes} bytes, ${mostBytes} at most`);

// The report: script and style stand in the page, and its policy lets these two run and nothing else.
const { outputFiles } = await build({ ...how, entryPoints: { report: "report.tsx" }, outdir: folder, format: "iife", write: false });
const textOf = (ending) => outputFiles.find((file) => file.path.endsWith(ending)).text.trim();
const hashOf = (text) => `sha256-${createHash("sha256").update(text).digest("base64")}`;
const [script, style] = [textOf(".js"), textOf(".css")];
if (/<\/(script|style)|<!--/i.test(script + style)) throw new Error("the report's script would end its own element");
const values = { SCRIPT_HASH: hashOf(script), STYLE_HASH: hashOf(style), STYLE: style, SCRIPT: script };
const frame = await readFile(join(source, "report.html"), "utf8");
const report = frame.replace(/\b(SCRIPT_HASH|STYLE_HASH|STYLE|SCRIPT)\b/g, (name) => values[name]);
await writeFile(join(folder, "report.html"), report);
console.log(`the report: ${Math.round(report.length / 1000)} kB`);
