// Drives the report in headless Chromium: its first screen and where that leads, that tables sort,
// filter, search, copy, download and print, that no text of a tool is obeyed, that everybody can read
// it (axe-core), and that large tables open and scroll.
//   node tests/browser/report_test.mjs PQHOST OUTPUT_FOLDER [PART OF A TEST'S NAME]
import { execFileSync } from "node:child_process";
import { cpSync, mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { resolve } from "node:path";
import { createRequire } from "node:module";
import { pathToFileURL } from "node:url";
import assert from "node:assert/strict";
import { chromium } from "playwright-core";

const [pqhost, outputArgument, only] = process.argv.slice(2);
const output = resolve(outputArgument);
mkdirSync(output, { recursive: true });

const report = (recording, name, more = []) => {
  const file = `${output}/${name}.html`;
  try {
    execFileSync(pqhost, ["collect", "--replay", recording, "--format", "html", "--output", file, ...more], { stdio: "pipe" });
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
  if (options.javaScriptEnabled !== false) await page.waitForSelector("#summary");
  return page;
};
const test = async (name, body) => {
  if (only && !name.includes(only)) return;
  const began = performance.now();
  try {
    await body();
    passed += 1;
    console.log(`ok      ${name} (${((performance.now() - began) / 1000).toFixed(1)} s)`);
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
    const line = page.locator("#summary li", { has: page.locator(`a[href="#at/${table.class}"]`) });
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
  await page.waitForFunction(() => document.querySelector(".told.seen")?.textContent.includes("copied"));
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

await test("hands its data out as the JSON document", async () => {
  const page = await open(server);
  const [file] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Download data (JSON)" }).click()]);
  assert.equal(file.suggestedFilename(), "NODE31.json");
  const whole = JSON.parse(readFileSync(await file.path(), "utf8"));
  assert.deepEqual(whole.tables.map((table) => table.class), collected.tables.map((table) => table.class));
  assert.deepEqual(whole.parts, collected.parts);
  await page.context().close();
});

await test("says why a table is empty", async () => {
  const page = await open(report("samples/no-bmc", "no-bmc"));
  const status = await section(page, "SENSORINFO").locator(".status").textContent();
  assert.ok(status.length > 0);
  await page.context().close();
});

await test("obeys nothing that a tool printed", async () => {
  const page = await open(hostile);
  assert.equal(await page.evaluate(() => window.pwned), undefined);
  assert.deepEqual(page.errors, []);
  assert.deepEqual(page.requests.filter((url) => !url.startsWith("file:")), []);
  assert.equal(await page.locator("img, iframe, marquee, svg:not(.chart), object, foreignObject").count(), 0);
  assert.equal(await page.locator("script").count(), 3); // two of them data
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
  assert.equal(await page.title(), "1 not known \u2013 a \\u202eserver\\u{e0041}");
  assert.equal(await page.locator("h1").textContent(), "a \\u202eserver\\u{e0041}");
  for (const text of await textsOf(page)) assert.doesNotMatch(text, UNSEEN);
  await page.context().close();
});

await test("shows what turns or hides text in columns, cells and module names", async () => {
  const page = await open(answerTo("SELECT 'a\u200b\u00ad\u2800\u3164b' || char(155, 8238) AS 'c\u2066d\u{e007f}'", "answer"));
  await withoutData(page);
  assert.equal(await section(page, "ANSWER").locator("td").textContent(), "a\\u200b\\u00ad\\u2800\\u3164b\\x9b\\u202e");
  assert.equal(await section(page, "ANSWER").locator("th").textContent(), "c\\u2066d\\u{e007f}");
  assert.match(await page.locator("h3", { hasText: "SELECT" }).textContent(), /a\\u200b\\u00ad/);
  for (const text of await textsOf(page)) assert.doesNotMatch(text, UNSEEN);
  await page.context().close();
});

// Browsers differ in what they make fast; Node has no better way than to try every place.
await test("has no regular expression that takes longer than its text", async () => {
  const script = readFileSync(server, "utf8").match(/<script nonce="[^"]*">(.*)<\/script>/s)[1];
  const literals = [...script.matchAll(/(?<=[([=&|,?:!>]\s*|^\s*)\/(?!\*)((?:\[[^\]\n]+\]|\\.|[^/[\\\n])+)\/([a-z]*)/gm)];
  assert.ok(literals.length >= 15, `found ${literals.length}`);
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
  assert.equal(html.split("</script>").length, 4); // data, packed data, script
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
  await page.keyboard.press("Tab");
  assert.equal(await page.evaluate(() => document.activeElement.className), "skip");
  const reached = new Set();
  for (let i = 0; i < 600 && !reached.has("INPUT"); i += 1) {
    await page.keyboard.press("Tab");
    reached.add(await page.evaluate(() => document.activeElement.tagName));
  }
  for (const tag of ["A", "BUTTON", "SUMMARY", "INPUT"]) assert.ok(reached.has(tag), tag);
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

// --- the first screen ---

const findings = JSON.parse((() => {
  try {
    return execFileSync(pqhost, ["health", "--replay", "samples/two-socket-server", "--format", "json"], { stdio: ["ignore", "pipe", "ignore"] });
  } catch (error) {
    return error.stdout; // its exit code is the verdict
  }
})()).findings;
const alarms = findings.filter((finding) => finding.severity !== "notice");
const samples = readdirSync("samples").map((name) => ({ name, file: report(`samples/${name}`, name) }));

await test("begins with the verdict and its findings, also without scripts", async () => {
  for (const javaScriptEnabled of [true, false]) {
    const page = await open(server, { javaScriptEnabled });
    const text = await page.locator("body").innerText();
    assert.match(text, /Needs attention: Wait for the rebuild of volume 3 "VMs"/);
    assert.equal(await page.title(), "4 warnings \u2013 NODE31");
    for (const finding of alarms) assert.ok(text.includes(finding.text), finding.text);
    assert.equal(await page.locator(".findings .finding").count(), alarms.length);
    const drive = await page.locator("tr", { has: page.locator("th", { hasText: /^lsi0 69:9$/ }) }).first().innerText();
    for (const value of ["69:9", "Onln", "HY8000NX0045", "Z4K002C9144", "37", "43 \u00b0C", "Backup"]) assert.ok(drive.includes(value), drive);
    await page.context().close();
  }
});

await test("fits what is wrong and every area on the first screen", async () => {
  const page = await open(server, { viewport: { width: 1440, height: 900 } });
  const bottom = await page.locator(".tiles").evaluate((tiles) => tiles.getBoundingClientRect().bottom);
  assert.ok(bottom <= 900, `${bottom}`);
  await page.context().close();
});

// All that the tools printed.
const filesOf = (folder) => readdirSync(folder, { recursive: true, withFileTypes: true }).filter((file) => file.isFile())
  .map((file) => readFileSync(`${file.path}/${file.name}`, "latin1")).join("\n");

await test("leads from each finding to the cell or line that it was read from", async () => {
  let followed = 0;
  for (const { name, file } of samples) {
    const page = await open(file);
    for (const details of await page.locator("details.more, details.finding").all()) await details.evaluate((one) => { one.open = true; });
    for (const link of await page.locator("a.evidence").all()) {
      const address = await link.getAttribute("href");
      const quote = await link.evaluate((one) => one.parentElement.querySelector("code")?.textContent ?? "");
      await link.click();
      await page.waitForFunction((hash) => location.hash === hash && document.querySelector(".marked"), address);
      // It comes into sight smoothly.
      await page.waitForFunction(() => {
        const box = document.querySelector(".marked").getBoundingClientRect();
        return box.bottom > 0 && box.top < innerHeight;
      });
      const [count, text] = await page.evaluate(() => {
        const marked = [...document.querySelectorAll(".marked")];
        return [marked.length, marked[0].textContent];
      });
      assert.equal(count, 1, `${name} ${address}`);
      const told = quote.replace(/\u2026$/, "").replaceAll("\\t", "\t").trim();
      // What no table keeps is quoted beside the table that the tool was run for.
      const isOfTable = /^#at\/[^/]+$/.test(address);
      const read = isOfTable ? filesOf(`samples/${name}`) : text;
      assert.ok(read.includes(told), `${name} ${address}: ${read.slice(0, 200)} / ${told}`);
      followed += 1;
    }
    for (const link of await page.locator("a[href^='#']:not([href^='#at/'])").all()) {
      const id = (await link.getAttribute("href")).slice(1);
      assert.ok(await page.evaluate((one) => document.getElementById(one) !== null, id), `${name} #${id}`);
    }
    // Every link leads to something, also those of the joined tables.
    const lost = await page.evaluate(() => [...document.querySelectorAll("a[href^='#at/']")].filter((link) =>
      !document.getElementById(`table-${decodeURIComponent(link.getAttribute("href").slice(4).split("/")[0])}`)).length);
    assert.equal(lost, 0, name);
    assert.deepEqual(page.errors, [], name);
    await page.context().close();
  }
  assert.ok(followed > 20, `${followed}`);
});

await test("moves nothing where motion is not wanted", async () => {
  for (const reducedMotion of ["no-preference", "reduce"]) {
    const page = await open(server, { reducedMotion });
    await page.locator("details.finding").first().evaluate((one) => { one.open = true; });
    await page.locator("a.evidence").first().click();
    await page.waitForSelector(".marked.flash");
    const moves = await page.evaluate(() => [getComputedStyle(document.documentElement).scrollBehavior === "smooth",
      document.querySelector(".marked").getAnimations().length > 0]);
    assert.deepEqual(moves, reducedMotion === "reduce" ? [false, false] : [true, true]);
    await page.context().close();
  }
});

await test("goes through findings and finds by single keys", async () => {
  const page = await open(server);
  const current = () => page.evaluate(() => document.activeElement.querySelector("b")?.textContent);
  const titles = await page.locator(".findings .finding-text b").allTextContents();
  await page.keyboard.press("n");
  assert.equal(await current(), titles[0]);
  await page.keyboard.press("n");
  assert.equal(await current(), titles[1]);
  await page.keyboard.press("p");
  assert.equal(await current(), titles[0]);
  await page.keyboard.press("/");
  await page.keyboard.type("predictive");
  await page.waitForFunction(() => /found$/.test(document.querySelector(".find .count").textContent));
  assert.equal(await page.locator(".find input").inputValue(), "predictive");
  await page.locator(".find button.link", { hasText: "LSI controller reports" }).first().click();
  await page.waitForSelector(".marked.line");
  assert.match(await page.locator(".marked.line").textContent(), /predictive/i);
  await page.locator(".find input").focus();
  await page.keyboard.press("Escape");
  assert.equal(await page.locator(".find").isVisible(), false);
  await page.context().close();
});

await test("copies a summary for a ticket, and says when it could not", async () => {
  const page = await open(server, { permissions: ["clipboard-read", "clipboard-write"] });
  await page.getByRole("button", { name: "Copy summary" }).click();
  await page.waitForFunction(() => document.querySelector(".told.seen")?.textContent === "Summary copied");
  const text = await page.evaluate(() => navigator.clipboard.readText());
  assert.ok(text.startsWith("4 warnings \u2013 NODE31\n"), text);
  for (const finding of alarms) assert.ok(text.includes(`- Warning: ${finding.text}\n`), text);
  assert.match(text, /\* storcli \/c0 show, line 90: Dgrd, being rebuilt\n/);
  await page.evaluate(() => {
    navigator.clipboard.writeText = () => Promise.reject(new Error("no"));
    document.execCommand = () => false;
  });
  await page.getByRole("button", { name: "Copy summary" }).click();
  await page.waitForFunction(() => document.querySelector(".told.seen")?.textContent.includes("could not be copied"));
  await page.context().close();
});

await test("keeps light or dark over a reload", async () => {
  const page = await open(server, { colorScheme: "light" });
  await page.getByRole("button", { name: "Light / dark" }).click();
  const dark = await page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  await page.reload();
  await page.waitForSelector("#summary");
  assert.equal(await page.evaluate(() => getComputedStyle(document.body).backgroundColor), dark);
  await page.context().close();
});

// --- the report as a document ---

await test("sorts sizes, hexadecimal numbers and dates of the tools by value", async () => {
  const page = await open(answerTo("WITH v(a, b, c, d) AS (VALUES " +
    "(' 446.625 GB','0x1f','11/18/2026 09:41:07','0d 00:07:13.037'),(' 1.745 TB','0x9','01/05/23 04:56:42','2d 00:00:00.000')," +
    "('512B','0x100','Wed Nov 18 07:53:29 2026','0d 01:00:00.000'),('','','',''),('54.570 TB','0xa','2022-03-07 06:58:11','10d 00:00:00.000')) " +
    "SELECT a AS size, b AS code, c AS time, d AS up FROM v", "values"));
  const expected = [["512B", "446.625 GB", "1.745 TB", "54.570 TB", ""], ["0x9", "0xa", "0x1f", "0x100", ""],
    ["2022-03-07 06:58:11", "01/05/23 04:56:42", "Wed Nov 18 07:53:29 2026", "11/18/2026 09:41:07", ""],
    ["0d 00:07:13.037", "0d 01:00:00.000", "2d 00:00:00.000", "10d 00:00:00.000", ""]];
  for (const [index, name] of ["size", "code", "time", "up"].entries()) {
    const button = section(page, "ANSWER").getByRole("button", { name, exact: true });
    await button.click();
    assert.deepEqual(await column(page, "ANSWER", index), expected[index]);
    await button.click();
    assert.deepEqual(await column(page, "ANSWER", index), [...expected[index].slice(0, 4).reverse(), ""]);
  }
  await page.context().close();
});

await test("breaks no short value, and shows values trimmed", async () => {
  for (const viewport of [{ width: 1440, height: 900 }, { width: 390, height: 844 }]) {
    const page = await open(server, { viewport });
    const broken = await section(page, "PINFO").locator("td", { hasText: /^\d+\.\d+ [GT]B$/ }).evaluateAll((cells) =>
      cells.filter((cell) => {
        const range = document.createRange();
        range.selectNodeContents(cell);
        return range.getClientRects().length !== 1;
      }).map((cell) => cell.textContent));
    assert.deepEqual(broken, []);
    assert.equal(await section(page, "ENDDEVICEINFO").locator("td").first().textContent(), "0-0-0-0");
    await page.context().close();
  }
});

await test("stripes every other row, also of what a filter leaves, and draws check boxes as such", async () => {
  const page = await open(server);
  await section(page, "SENSORINFO").getByRole("searchbox").fill("temp");
  await page.waitForFunction(() => / of /.test(document.querySelector("#table-SENSORINFO .count").textContent));
  const grounds = await section(page, "SENSORINFO").locator("tbody tr td:first-child").evaluateAll((cells) =>
    cells.map((cell) => getComputedStyle(cell).backgroundColor));
  assert.ok(grounds.length > 4);
  grounds.forEach((ground, index) => assert.equal(ground === grounds[0], index % 2 === 0));
  const box = await section(page, "SELINFO").getByRole("checkbox").first().boundingBox();
  assert.ok(Math.abs(box.width - box.height) < 1 && box.width < 24, JSON.stringify(box));
  await page.context().close();
});

await test("prints every column of every row, logs when ticked, and says what it leaves out", async () => {
  const page = await open(server);
  await page.emulateMedia({ media: "print" });
  const print = () => page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  await print();
  const isPrinted = (name) => section(page, name).locator(".scroll").isVisible();
  assert.equal(await isPrinted("SELINFO"), false);
  assert.match(await section(page, "SELINFO").innerText(), /17 lines not printed: .on paper. was not ticked/);
  const width = 720; // of a page of A4, in CSS pixels
  await page.setViewportSize({ width, height: 1000 });
  for (const name of ["PDLIST", "SENSORINFO", "PINFO", "EVENTLOG1"]) {
    const rows = section(page, name).locator("tbody tr:not(.space)");
    assert.equal(await rows.count(), tableOf(name).rows.length, name);
    const beyond = await section(page, name).locator("td").evaluateAll((cells, most) =>
      cells.filter((cell) => cell.getBoundingClientRect().right > most + 1).length, width);
    assert.equal(beyond, 0, name);
    // Nor is a column so narrow that words come in pieces.
    const broken = await section(page, name).locator("tbody tr:not(.space) td").evaluateAll((cells) => cells.filter((cell) => {
      const range = document.createRange();
      range.selectNodeContents(cell);
      return /^\S{1,16}$/.test(cell.textContent) && range.getClientRects().length > 1;
    }).length);
    assert.equal(broken, 0, name);
  }
  const joined = await page.locator("table.joined :is(th, td)").evaluateAll((cells, most) =>
    cells.filter((cell) => cell.getBoundingClientRect().right > most + 1).map((cell) => cell.textContent), width);
  assert.deepEqual(joined, []);
  const first = (await section(page, "PDLIST").locator("tbody tr").first().evaluate((row) =>
    [...row.cells].map((cell) => getComputedStyle(cell, "::before").content + cell.textContent))).join("|");
  for (const column of tableOf("PDLIST").columns) assert.ok(first.includes(column.label.trim()), column.label);
  assert.match(await page.locator("#table-LSILINK details.attachment").first().innerText(), /c0_showall/);
  await page.emulateMedia({ media: "screen" });
  await section(page, "SELINFO").getByRole("checkbox", { name: "on paper" }).check();
  await page.emulateMedia({ media: "print" });
  await print();
  assert.equal(await isPrinted("SELINFO"), true);
  assert.equal(await section(page, "SELINFO").locator("tbody tr:not(.space)").count(), 17);
  await page.pdf({ path: `${output}/report.pdf`, format: "A4" });
  await page.context().close();
});

// --- what changed ---

// The sample's report beside an earlier day, on which a drive was well, and another elsewhere.
const compareWithEarlier = () => {
  const earlier = `${output}/earlier`;
  rmSync(earlier, { recursive: true, force: true });
  cpSync("samples/two-socket-server", earlier, { recursive: true });
  const edit = (file, from, to) => {
    const text = readFileSync(`${earlier}/${file}`, "latin1");
    assert.ok(text.search(from) >= 0, from);
    writeFileSync(`${earlier}/${file}`, text.replace(from, to), "latin1");
  };
  edit("storcli/c0_show.txt", "69:14    32 Rbld", "69:14    32 Onln");
  edit("storcli/c0_show.txt", "69:2     14 Onln", "69:40    14 Onln");
  edit("storcli/c0_eall_sall_show_all.txt", "69:2     14 Onln", "69:40    14 Onln");
  edit("storcli/c0_eall_sall_show_all.txt", /\/c0\/e69\/s2 /g, "/c0/e69/s40 ");
  return report("samples/two-socket-server", "compared", ["--compare", earlier]);
};
const compared = compareWithEarlier();

await test("tells what changed since an earlier collection, and marks it", async () => {
  const page = await open(compared);
  const changes = page.locator("#changes");
  assert.match(await changes.locator("h2").textContent(), /^Changes since 2026-11-18 09:41$/);
  await changes.getByRole("link", { name: "drive lsi0 69:14" }).first().click();
  const row = page.locator("tr:target");
  assert.equal(await row.locator("del").textContent(), "Onln");
  assert.equal(await page.locator("#findings").count(), 1);
  assert.equal(await page.locator(".parts tr", { has: page.locator("ins") }).count(), 1);
  assert.deepEqual(page.errors, []);
  await page.context().close();
});

// --- for everybody ---

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
await test("has nothing that axe-core finds, in light and dark, and fits desktop and phone", async () => {
  for (const { name, file } of [...samples, { name: "compared", file: compared },
    { name: "answer", file: answerTo("SELECT 1 AS a, 2 AS b", "axe-answer") }]) {
    const page = await open(file, { viewport: { width: 1440, height: 900 }, colorScheme: "light", reducedMotion: "reduce" });
    const check = async (look, rules) => {
      await page.screenshot({ path: `${output}/${name}-${look}.png` });
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${name} ${look} is too wide`);
      if (!rules) return;
      const violations = await page.evaluate(async (options) => (await window.axe.run(options)).violations.map((one) =>
        `${one.id}: ${one.nodes.slice(0, 3).map((node) => `${node.target} ${node.failureSummary}`).join(" / ")}`), rules);
      assert.deepEqual(violations, [], `${name} ${look}`);
    };
    await page.evaluate(axe);
    await check("desktop", { resultTypes: ["violations"] });
    await page.emulateMedia({ colorScheme: "dark" });
    await check("dark", { runOnly: ["color-contrast"], resultTypes: ["violations"] }); // all that differs
    await page.emulateMedia({ colorScheme: "light" });
    await page.setViewportSize({ width: 390, height: 844 });
    await check("phone");
    await page.context().close();
  }
});

// --- 100,000 events ---

// A BMC with a log of so many entries, over a month.
const eventful = (count) => {
  const folder = `${output}/events-${count}`;
  mkdirSync(folder, { recursive: true });
  const lines = ["ipmiutil sel version 3.18", "RecId Date/Time_______ SEV Src_ Evt_Type___ Sens# Evt_detail - Trig [Evt_data]"];
  for (let i = 0; i < count; i += 1) {
    lines.push(`${(i % 65535 + 1).toString(16).padStart(4, "0")} 11/${String(1 + i % 28).padStart(2, "0")}/26 04:56:42 ${i % 50 ? "INF" : "MIN"} BMC  System Event #83  OEM System boot event 6f [01 ff ff]`);
  }
  writeFileSync(`${folder}/sel.txt`, `${lines.join("\r\n")}\r\nipmiutil sel, completed successfully\r\n`);
  writeFileSync(`${folder}/recording.json`, JSON.stringify({ format: 1, description: "a busy log", commands: [
    { tool: "check_amt_bmc.exe", arguments: "amt", exitCode: 0 }, { tool: "check_amt_bmc.exe", arguments: "bmc", exitCode: 5 },
    { tool: "ipmiutilnh.exe", arguments: "sel", stdout: "sel.txt" }] }));
  return report(folder, `events-${count}`);
};

// Times are shown, not judged; what is drawn must not grow with the log.
await test("draws as much of 100,000 events as of 1,000", async () => {
  const elements = [];
  for (const count of [1000, 100000]) {
    const file = eventful(count);
    const began = performance.now();
    const page = await open(file);
    console.log(`        ${count} events: ${Math.round(performance.now() - began)} ms`);
    elements.push(await page.evaluate(() => document.querySelectorAll("*").length));
    assert.equal(await section(page, "SELINFO").locator(".count").textContent(), `${(count + 3).toLocaleString("en")} lines`);
    assert.match(await page.locator("section.area", { has: page.locator("#area-log") }).innerText(),
      new RegExp(`50 of ${count} are shown here`));
    assert.equal(await page.locator("figure.days svg").count(), 1);
    await page.context().close();
  }
  assert.ok(elements[1] < elements[0] * 1.1, elements.join(" "));
});

await browser.close();
console.log(`${passed} passed, ${failed} failed`);
process.exitCode = failed ? 1 : 0;
