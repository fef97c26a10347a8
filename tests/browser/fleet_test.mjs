// Drives the fleet's pages in headless Chromium: what they show, where their links lead, that no
// recording's text is obeyed, and that everybody can read them (axe-core).
//   node tests/browser/fleet_test.mjs ADDRESS OUTPUT_FOLDER
import { mkdirSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { resolve } from "node:path";
import assert from "node:assert/strict";
import { chromium } from "playwright-core";

const [address, outputArgument] = process.argv.slice(2);
const output = resolve(outputArgument);
mkdirSync(output, { recursive: true });
const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
  args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync"],
});
const context = await browser.newContext({ viewport: { width: 1280, height: 900 } });
const page = await context.newPage();
const errors = [];
page.on("pageerror", (error) => errors.push(String(error)));
page.on("console", (message) => { if (message.type() === "error") errors.push(message.text()); });
page.on("dialog", (dialog) => { errors.push(`dialog: ${dialog.message()}`); dialog.dismiss(); });
page.on("request", (request) => {
  if (!request.url().startsWith(address) && !request.url().startsWith("data:")) errors.push(`asks ${request.url()}`);
});

let passed = 0, failed = 0;
const test = async (name, body) => {
  try {
    await body();
    assert.deepEqual(errors, []);
    passed += 1;
    console.log(`ok      ${name}`);
  } catch (error) {
    failed += 1;
    errors.length = 0;
    console.log(`FAILED  ${name}\n${error.stack}`);
  }
};
const open = (path) => page.goto(address + path);
// Clicks, and waits until the page it leads to is there.
const follow = (link, address) => Promise.all([page.waitForURL(address), link.click()]);
const rows = () => page.locator("tbody tr").count();
const names = () => page.locator("tbody th").allTextContents();

await test("lists the servers, the worst first, a page at a time", async () => {
  await open("/");
  const seen = await names();
  assert.equal(seen.length, 100);
  const verdicts = await page.locator("tbody .chip").allTextContents();
  const order = ["critical", "warning", "unknown", "ok", "waiting"];
  assert.deepEqual(verdicts, [...verdicts].sort((a, b) => order.indexOf(a) - order.indexOf(b)));
  assert.equal(verdicts[0], "critical");
  await page.screenshot({ path: `${output}/fleet-servers.png` });
  await follow(page.getByRole("link", { name: "Next servers" }), /after=/);
  const more = await names();
  assert.ok(more.length > 0 && more.length <= 100);
  assert.deepEqual(more.filter((name) => seen.includes(name)), []);
  assert.equal(await page.getByRole("link", { name: "Next servers" }).count(), 0);
  const all = (await page.locator(".tile b").allTextContents()).map(Number).reduce((a, b) => a + b);
  assert.equal(seen.length + more.length, all);
});

await test("finds servers by verdict, name and site", async () => {
  await open("/");
  await follow(page.locator(".tile.critical"), /verdict=critical/);
  assert.ok(await rows() > 0);
  assert.deepEqual(new Set(await page.locator("tbody .chip").allTextContents()), new Set(["critical"]));
  await open("/");
  await page.getByRole("searchbox").fill("node3");
  await follow(page.getByRole("button", { name: "Find" }), /q=node3/);
  assert.deepEqual(await names(), ["NODE31"]);
  await page.getByLabel("Site", { exact: true }).fill("nowhere");
  await follow(page.getByRole("button", { name: "Find" }), /site=nowhere/);
  assert.equal(await rows(), 0);
  await page.getByText("No server is like that.").waitFor();
  assert.equal(await page.getByRole("searchbox").inputValue(), "node3");
});

await test("shows a server with its findings, its history and its report", async () => {
  await open("/?q=NODE31");
  await follow(page.getByRole("link", { name: "NODE31" }), /server\?/);
  assert.equal(await page.locator("h1").textContent(), "NODE31");
  await page.getByText("37 media errors").waitFor();
  await page.screenshot({ path: `${output}/fleet-server.png` });
  await page.getByRole("link", { name: "2026-11-18 08:41" }).click();
  await page.waitForSelector("#summary");
  assert.equal(await page.title().then((title) => title.includes("NODE31")), true);
  assert.ok(await page.locator("#table-SENSORINFO tbody tr").count() > 0, "its scripts run");
  // But not as the fleet's pages.
  assert.equal(await page.evaluate(() => self.origin), "null");
});

await test("shows drives that grow errors, silent servers and the queue", async () => {
  await open("/drives");
  assert.equal(await rows(), 1);
  const cells = await page.locator("tbody td").allTextContents();
  assert.deepEqual(cells.slice(-3, -1), ["4", "37"]);
  await page.screenshot({ path: `${output}/fleet-drives.png` });
  await open("/silent");
  assert.deepEqual(await names(), ["vroc"]);
  await open("/queue");
  assert.equal(await page.locator("tbody").last().locator("tr").count(), 1);
  await page.getByText("not in the store").waitFor();
});

await test("obeys no name, whatever it is", async () => {
  for (const path of ["/?q=%3C", "/?site=%3Cb%3Ebold", "/queue"]) {
    await open(path);
    assert.equal(await page.locator("main img, main script, main b > *, main iframe").count(), 0);
  }
  await open("/?q=%3Cscript");
  const [name] = await names();
  assert.ok(name.startsWith("<script>"), name);
  await follow(page.getByRole("link", { name: "<script>" }), /server\?/);
  assert.ok((await page.locator("h1").textContent()).startsWith("<script>"));
  for (const path of ["/?after=x:y:z", "/?after=1:99999999999999:a", "/server?name=a&site=b&before=soon", "/no/such",
    "/silent?after=x%20y", "/report?name=--help&site=x", "/server?name=%27%22%3E%3Cimg+src%3Dx%3E&site=x"]) {
    const answer = await open(path);
    errors.length = 0; // Chromium tells the status.
    assert.ok([400, 404].includes(answer.status()), `${path} ${answer.status()}`);
    assert.equal(await page.locator("img, script").count(), 0);
  }
});

await test("lets no script run, and nobody frame it", async () => {
  const answer = await open("/");
  const policy = answer.headers()["content-security-policy"];
  assert.match(policy, /default-src 'none'/);
  assert.match(policy, /frame-ancestors 'none'/);
  assert.equal(answer.headers()["x-content-type-options"], "nosniff");
  await page.evaluate(() => {
    const script = document.createElement("script");
    script.textContent = "document.title = 'obeyed'";
    document.body.append(script);
  });
  assert.notEqual(await page.title(), "obeyed");
  errors.length = 0; // It was refused, which Chromium tells.
});

await test("can be read by everybody", async () => {
  const source = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
  for (const colorScheme of ["light", "dark"]) {
    await page.emulateMedia({ colorScheme });
    for (const path of ["/", "/server?name=NODE31&site=default", "/drives", "/silent", "/queue"]) {
      await open(path);
      const found = await page.evaluate(async (axe) => {
        (0, eval)(axe);
        return (await window.axe.run()).violations.map((one) => `${one.id}: ${one.nodes[0].html}`);
      }, source).catch((error) => [String(error)]);
      assert.deepEqual(found, [], path);
    }
    await page.screenshot({ path: `${output}/fleet-${colorScheme}.png` });
  }
  await page.setViewportSize({ width: 400, height: 800 });
  await open("/");
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= 400, "fits a telephone");
});

await browser.close();
console.log(`${passed} passed, ${failed} failed`);
process.exit(failed === 0 ? 0 : 1);
