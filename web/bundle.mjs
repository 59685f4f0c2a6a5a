// Makes the pages: bundle.mjs FOLDER. One script, one style sheet, nothing that is loaded from elsewhere.
import { build } from "esbuild";
import { copyFile, mkdir, stat } from "node:fs/promises";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const folder = process.argv[2] ?? "dist";
const source = join(dirname(fileURLToPath(import.meta.url)), "src");
const mostBytes = 250_000; // of a first visit, uncompressed

await mkdir(folder, { recursive: true });
await build({
  absWorkingDir: source,
  entryPoints: { orvane: "main.tsx" },
  outdir: folder,
  bundle: true,
  minify: true,
  format: "esm",
  target: ["chrome110", "firefox110", "safari16"],
  jsx: "automatic",
  jsxImportSource: "preact",
  legalComments: "inline",
  logLevel: "warning",
});
for (const name of ["index.html", "icon.svg"])
  await copyFile(join(source, name), join(folder, name));

let bytes = 0;
for (const name of ["index.html", "icon.svg", "orvane.js", "orvane.css"])
  bytes += (await stat(join(folder, name))).size;
console.log(`the pages: ${Math.round(bytes / 1000)} kB`);
if (bytes > mostBytes)
  throw new Error(`the pages have ${bytes} bytes, ${mostBytes} at most`);
