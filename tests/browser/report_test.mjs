// Drives the report in headless Chromium: what it shows, that it sorts, filters, searches, copies and
// downloads, that no text of a tool is obeyed, and that large tables open and scroll.
//   node tests/browser/report_test.mjs PQHOST OUTPUT_FOLDER
import { execFileSync } from "node:child_process";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { resolve } from "node:path";
import { pathToFileURL } from "node:url";
import assert from "node:assert/strict";
import { chromium } from "playwright-core";

const [pqhost, outputArgument] = process.argv.slice(2);
const output = resolve(outputArgument);
mkdirSync(output, { recursive: true });

const report = (recording, name) => {
  const file = `${output}/${name}.html`;
  try {
    execFileSync(pqhost, ["collect", "--replay", recording, "--format", "html", "--output", file], { stdio: "pipe" });
  } catch (error) {
    if (error.status !== 1) throw error; // 1: something could not be collected, which the report says
  }
  return file;
};

const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
  args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync"],
});

let passed = 0, failed = 0;
const open = async (file, options = {}) => {
  const context = await browser.newContext({ acceptDownloads: true, viewport: { width: 1280, height: 900 }, ...options });
  const page = await context.newPage();
  page.requests = [];
  page.errors = [];
  page.on("request", (request) => page.requests.push(request.url()));
  page.on("pageerror", (error) => page.errors.push(String(error)));
  page.on("console", (message) => { if (message.type() === "error") page.errors.push(message.text()); });
  page.on("dialog", (dialog) => { page.errors.push(`dialog: ${dialog.message()}`); dialog.dismiss(); });
  await page.goto(pathToFileURL(file).href);
  await page.waitForSelector("footer");
  return page;
};
const test = async (name, body) => {
  try {
    await body();
    passed += 1;
    console.log(`ok      ${name}`);
  } catch (error) {
    failed += 1;
    console.log(`FAILED  ${name}\n${error.stack}`);
  }
};

const server = report("samples/two-socket-server", "two-socket-server");
const hostile = report("samples/hostile", "hostile");
const collected = JSON.parse(execFileSync(pqhost,
  ["collect", "--replay", "samples/two-socket-server", "--format", "json"], { maxBuffer: 1 << 28 }));
const tableOf = (name) => collected.tables.find((table) => table.class === name);
const section = (page, name) => page.locator(`#table-${name}`);
const column = (page, name, index) =>
  section(page, name).locator(`tbody tr:not(.space) td:nth-child(${index + 1})`).allTextContents();

await test("asks no network for anything and reports no error", async () => {
  const page = await open(server);
  assert.deepEqual(page.requests.filter((url) => !url.startsWith("file:")), []);
  assert.deepEqual(page.errors, []);
  await page.context().close();
});

await test("begins with a summary that names every table with its rows", async () => {
  const page = await open(server);
  assert.equal(await page.locator("#summary a").count(), collected.tables.length);
  for (const table of collected.tables) {
    const line = page.locator("#summary li", { has: page.locator(`a[href="#table-${table.class}"]`) });
    const text = await line.textContent();
    assert.ok(text.includes(table.rows.length ? `${table.rows.length.toLocaleString("en")} row` : table.status.text), text);
  }
  await page.context().close();
});

await test("shows the cells of a table as they were collected", async () => {
  const page = await open(server);
  assert.deepEqual(await column(page, "ARPINFO", 0), tableOf("ARPINFO").rows.map((row) => row.item1));
  await page.context().close();
});

await test("sorts by a column, both ways, by mouse and by keyboard", async () => {
  const page = await open(server);
  const names = tableOf("SENSORINFO").rows.map((row) => row.item1.trim());
  const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });
  const button = section(page, "SENSORINFO").getByRole("button", { name: "Name", exact: true });
  await button.click();
  const ascending = (await column(page, "SENSORINFO", 0)).map((text) => text.trim());
  assert.deepEqual(ascending, [...names].sort(collator.compare));
  assert.notDeepEqual(ascending, names);
  await button.focus();
  await page.keyboard.press("Enter");
  assert.equal(await section(page, "SENSORINFO").locator("th").first().getAttribute("aria-sort"), "descending");
  assert.equal((await column(page, "SENSORINFO", 0))[0].trim(), ascending.at(-1));
  await page.context().close();
});

await test("filters rows and says how many are left", async () => {
  const page = await open(server);
  const wanted = tableOf("SENSORINFO").rows.filter((row) => Object.values(row).some((cell) => cell.toLowerCase().includes("fan")));
  assert.ok(wanted.length > 0 && wanted.length < tableOf("SENSORINFO").rows.length);
  await section(page, "SENSORINFO").getByRole("searchbox").fill("FAN");
  await page.waitForFunction((count) =>
    document.querySelectorAll("#table-SENSORINFO tbody tr").length === count, wanted.length);
  assert.match(await section(page, "SENSORINFO").locator(".count").textContent(),
    new RegExp(`^${wanted.length} of ${tableOf("SENSORINFO").rows.length} rows$`));
  assert.ok(await section(page, "SENSORINFO").locator("mark").count() > 0);
  await page.context().close();
});

await test("searches a log and steps through its matches", async () => {
  const page = await open(server);
  const lines = tableOf("SELINFO").rows.map((row) => row.SELINFO);
  const needle = "temp";
  const matches = lines.filter((line) => line.toLowerCase().includes(needle)).length;
  assert.ok(matches > 1);
  const box = section(page, "SELINFO").getByRole("searchbox");
  await box.fill(needle);
  await page.waitForFunction((count) =>
    document.querySelector("#table-SELINFO .count").textContent.startsWith(`${count} match`), matches);
  await box.press("Enter");
  await box.press("Enter");
  assert.match(await section(page, "SELINFO").locator(".count").textContent(), /, at 2$/);
  const current = await section(page, "SELINFO").locator("tr.current").textContent();
  assert.ok(current.toLowerCase().includes(needle));
  await page.context().close();
});

await test("copies a table as CSV, filtered as it is shown", async () => {
  const page = await open(server, { permissions: ["clipboard-read", "clipboard-write"] });
  await section(page, "ARPINFO").getByRole("button", { name: "Copy as CSV" }).click();
  await page.waitForFunction(() => document.querySelector("[role=status]").textContent.includes("copied"));
  const text = await page.evaluate(() => navigator.clipboard.readText());
  const lines = text.trim().split(/\r?\n/);
  assert.equal(lines[0], tableOf("ARPINFO").columns.map((c) => c.label).join(","));
  assert.equal(lines.length, tableOf("ARPINFO").rows.length + 1);
  assert.equal(lines[1], Object.values(tableOf("ARPINFO").rows[0]).join(","));
  await page.context().close();
});

await test("folds attachments and downloads one whole under its file name", async () => {
  const page = await open(server);
  const wanted = tableOf("LSILINK").attachments.find((a) => a.attributes.filename === "c0_showall");
  const whole = tableOf("LSILINK").rows[wanted.row][wanted.key];
  const block = section(page, "LSILINK").locator("details", { hasText: "c0_showall" }).first();
  assert.equal(await block.evaluate((element) => element.open), false);
  await block.locator("summary").click();
  assert.ok((await block.locator("pre").textContent()).includes("Product Name ="));
  const [file] = await Promise.all([page.waitForEvent("download"), block.locator("button.download").click()]);
  assert.equal(file.suggestedFilename(), "c0_showall.txt");
  assert.equal(readFileSync(await file.path(), "utf8"), whole);
  await page.context().close();
});

await test("says why a table is empty", async () => {
  const page = await open(report("samples/no-bmc", "no-bmc"));
  const status = await section(page, "SENSORINFO").locator(".warn").textContent();
  assert.ok(status.length > 0);
  await page.context().close();
});

await test("obeys nothing that a tool printed", async () => {
  const page = await open(hostile);
  assert.equal(await page.evaluate(() => window.pwned), undefined);
  assert.deepEqual(page.errors, []);
  assert.deepEqual(page.requests.filter((url) => !url.startsWith("file:")), []);
  assert.equal(await page.locator("img, iframe, marquee, svg, object").count(), 0);
  assert.equal(await page.locator("script").count(), 2);
  const text = await page.locator("body").innerText();
  assert.ok(text.includes("<script>window.pwned=1</script>"));
  assert.ok(text.includes("\\x1b[31m"));
  await page.screenshot({ path: `${output}/hostile.png` });
  await page.context().close();
});

// Characters that turn text around or that nobody sees, wherever a text can come from.
const turned = `${output}/turned`;
mkdirSync(turned, { recursive: true });
writeFileSync(`${turned}/recording.json`, JSON.stringify({ format: 1, description: "a \u202eserver\u{e0041}", commands: [] }));
const answerTo = (sql, name) => {
  const file = `${output}/${name}.html`;
  execFileSync(pqhost, ["query", "--replay", "samples/two-socket-server", "--format", "html", "--output", file, sql]);
  return file;
};
const UNSEEN = /[\u00ad\u061c\u200b\u200e\u200f\u2028-\u202e\u2060-\u206f\u2800\u3164\ufeff\ufff9-\ufffb\u{e0000}-\u{e007f}\x80-\x9f]/u;
const textsOf = (page) => page.evaluate(() => [document.title, document.body.textContent,
  ...[...document.querySelectorAll("[title], [aria-label], [placeholder]")].flatMap((element) =>
    ["title", "aria-label", "placeholder"].map((name) => element.getAttribute(name) ?? ""))]);
// The data block keeps its texts as they are; the script has its own list.
const withoutData = (page) => page.evaluate(() => document.querySelectorAll("script").forEach((script) => script.remove()));

await test("shows what turns or hides text, in titles and headings too", async () => {
  const page = await open(report(turned, "turned"));
  await withoutData(page);
  assert.equal(await page.title(), "a \\u202eserver\\u{e0041} \u2013 server report");
  assert.equal(await page.locator("h1").textContent(), "a \\u202eserver\\u{e0041}");
  for (const text of await textsOf(page)) assert.doesNotMatch(text, UNSEEN);
  await page.context().close();
});

await test("shows what turns or hides text in columns, cells and module names", async () => {
  const page = await open(answerTo("SELECT 'a\u200b\u00ad\u2800\u3164b' || char(155, 8238) AS 'c\u2066d\u{e007f}'", "answer"));
  await withoutData(page);
  assert.equal(await section(page, "ANSWER").locator("td").textContent(), "a\\u200b\\u00ad\\u2800\\u3164b\\x9b\\u202e");
  assert.equal(await section(page, "ANSWER").locator("th").textContent(), "c\\u2066d\\u{e007f}");
  assert.match(await page.locator("h2", { hasText: "SELECT" }).textContent(), /a\\u200b\\u00ad/);
  for (const text of await textsOf(page)) assert.doesNotMatch(text, UNSEEN);
  await page.context().close();
});

// Browsers differ in what they make fast; Node has no better way than to try every place.
await test("has no regular expression that takes longer than its text", async () => {
  const script = readFileSync(server, "utf8").match(/<script nonce="[^"]*">(.*)<\/script>/s)[1];
  const literals = [...script.matchAll(/(?<=[(=&|,?:!>]\s*|^\s*)\/(?!\*)((?:\[[^\]\n]+\]|\\.|[^/[\\\n])+)\/([a-z]*)/gm)];
  assert.ok(literals.length >= 7, `found ${literals.length}`);
  for (const [whole, pattern, flags] of literals) {
    for (const text of [" ", "1", ".", "a", ".1", "a.", "\u202e"]) {
      const began = performance.now();
      (text.repeat(100000) + "\0-").replace(new RegExp(pattern, flags), "");
      assert.ok(performance.now() - began < 1000, `${whole} on ${JSON.stringify(text)}`);
    }
  }
});

await test("has a policy that lets nothing in but its own style and script", async () => {
  const html = readFileSync(hostile, "utf8");
  const policy = html.match(/Content-Security-Policy" content="([^"]*)"/)[1];
  assert.match(policy, /^default-src 'none'; script-src 'nonce-[0-9a-f]{32}'; style-src 'nonce-[0-9a-f]{32}'; base-uri 'none'; form-action 'none'$/);
  assert.equal(html.split("</script>").length, 3);
  const page = await open(hostile);
  await page.evaluate(() => {
    const script = document.createElement("script");
    script.textContent = "window.pwned = 'inline'";
    document.body.append(script);
  });
  assert.equal(await page.evaluate(() => window.pwned), undefined);
  await page.context().close();
});

await test("can be read and used by keyboard alone", async () => {
  const page = await open(server);
  const reached = new Set();
  for (let i = 0; i < 60; i += 1) {
    await page.keyboard.press("Tab");
    reached.add(await page.evaluate(() => document.activeElement.tagName));
  }
  for (const tag of ["A", "BUTTON", "INPUT"]) assert.ok(reached.has(tag), tag);
  await page.context().close();
});

await test("follows light and dark, and can be switched", async () => {
  for (const colorScheme of ["light", "dark"]) {
    const page = await open(server, { colorScheme });
    const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    const before = await ground();
    const sum = before.match(/\d+/g).map(Number).reduce((a, b) => a + b);
    assert.equal(sum > 380, colorScheme === "light", before);
    await page.screenshot({ path: `${output}/${colorScheme}.png` });
    await page.getByRole("button", { name: "Light / dark" }).click();
    assert.notEqual(await ground(), before);
    await page.context().close();
  }
});

await test("prints every row", async () => {
  const page = await open(server);
  const lines = tableOf("EVENTLOG1")?.rows.length ?? tableOf("SELINFO").rows.length;
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  const name = tableOf("EVENTLOG1") ? "EVENTLOG1" : "SELINFO";
  assert.equal(await section(page, name).locator("tbody tr:not(.space)").count(), lines);
  await page.pdf({ path: `${output}/report.pdf` });
  await page.context().close();
});

// One table of 100,000 rows: a generated term log, and a connection table.
const big = `${output}/big`;
mkdirSync(big, { recursive: true });
const rows = 100000;
const connections = ["", "Active Connections", "", "  Proto  Local Address          Foreign Address        State"];
for (let i = 0; i < rows; i += 1) {
  connections.push(`  TCP    10.0.${i >> 8 & 255}.${i & 255}:${1024 + i % 60000}   host${i}:443   ESTABLISHED`);
}
writeFileSync(`${big}/netstat.txt`, connections.join("\r\n") + "\r\n");
writeFileSync(`${big}/recording.json`, JSON.stringify({ format: 1, description: "a busy machine",
  commands: [{ tool: "netstat.exe", stdout: "netstat.txt" }] }));
const large = report(big, "large");

// Times are shown, not judged: they depend on what else the machine does.
await test("opens a table of 100,000 rows without drawing them all", async () => {
  const began = performance.now();
  const page = await open(large);
  const count = await section(page, "NETSTATINFO").locator(".count").textContent();
  const took = performance.now() - began;
  assert.equal(count, "100,000 rows");
  console.log(`        ${Math.round(took)} ms`);
  assert.ok(await section(page, "NETSTATINFO").locator("tbody tr").count() < 200);
  await page.context().close();
});

await test("draws the rows of a large table as they are scrolled to", async () => {
  const page = await open(large);
  const scroll = section(page, "NETSTATINFO").locator(".scroll");
  await scroll.evaluate((element) => { element.scrollTop = element.scrollHeight; });
  await page.waitForSelector("#table-NETSTATINFO tr[data-row='99999']");
  const times = await scroll.evaluate(async (element) => {
    const frames = [];
    for (let i = 0; i < 60; i += 1) {
      const before = performance.now();
      element.scrollTop = i * element.scrollHeight / 60;
      await new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
      frames.push(performance.now() - before);
    }
    return frames;
  });
  const slowest = Math.max(...times);
  console.log(`        slowest step ${Math.round(slowest)} ms`);
  assert.ok(await section(page, "NETSTATINFO").locator("tbody tr").count() < 200);
  await page.context().close();
});

await browser.close();
console.log(`${passed} passed, ${failed} failed`);
process.exitCode = failed ? 1 : 0;
