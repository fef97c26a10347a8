// The page: the tables below its first screen, what is found in them, and how it is shown and printed.
const tables = data.areas.flatMap((area) => area.tables);

// --- the list of all tables ---

const addressOf = (className, ...rest) => `#at/${[className, ...rest].map((one) => encodeURIComponent(one)).join("/")}`;
const linkTo = (table) => make("a", { href: addressOf(table.class) }, table.title);
const listTables = () => {
  const collected = data.areas.map((area) => {
    const filled = area.tables.filter((table) => table.rowCount);
    return filled.length ? make("div", { class: "group" }, make("h4", {}, area.title),
      make("ul", {}, ...filled.map((table) =>
        make("li", {}, linkTo(table), " ", make("span", { class: "count" }, plural(table.rowCount, "row")))))) : null;
  });
  const reasons = new Map(); // why there are no rows: the tables of which this is so
  for (const table of tables) {
    if (!table.rowCount) reasons.set(table.status, [...(reasons.get(table.status) ?? []), table]);
  }
  const missing = [...reasons].map(([reason, list]) => make("li", {}, reason, ": ",
    ...list.flatMap((table, index) => [index ? ", " : "", linkTo(table)])));
  const block = (heading, ...content) => make("div", { class: "block" }, make("h3", {}, heading), ...content);
  return make("section", { class: "panel", id: "summary", "aria-labelledby": "tables-title" },
    make("div", { class: "bar" }, make("h2", { id: "tables-title" }, document.getElementById("verdict") ? "All tables" : "Summary"), make("span", { class: "grow" }),
      make("span", { class: "count" }, data.outcome)),
    block("Collected", make("div", { class: "groups" }, ...collected)),
    missing.length ? block("Without rows", make("ul", { class: "reasons" }, ...missing)) : null,
    data.notes.length ? block("Failures", make("ul", { class: "reasons" }, ...data.notes.map((note) => make("li", {}, note)))) : null);
};

const main = document.getElementById("main");
main.append(listTables());
for (const area of data.areas) {
  main.append(make("h3", { class: "module" }, area.title, " ", make("span", { class: "class faint" }, area.modules.join(", "))));
  for (const table of area.tables) main.append(tableSection(table));
}
document.body.append(announcer);
for (const view of views) view.draw();

// --- the cell that a finding was read from ---

const calm = matchMedia("(prefers-reduced-motion: reduce)");
// #at/CLASS/ROW/KEY/LINE, as far as it is known. The target is marked, flashes, and has the focus.
const revealAddress = () => {
  if (!location.hash.startsWith("#at/")) return;
  let parts;
  try {
    parts = location.hash.slice(4).split("/").map(decodeURIComponent);
  } catch {
    return;
  }
  const [className, row, key, line] = parts;
  const section = sections.get(className);
  if (!section) return;
  for (const marked of document.querySelectorAll(".marked")) marked.classList.remove("marked", "flash");
  for (const view of views) view.marked = null;
  const block = section.blocks.get(`${row}/${key}`);
  const target = (block ? block.reveal(Number(line ?? 0)) : row && section.reveal?.(Number(row), key)) || section;
  target.scrollIntoView({ block: target === section ? "start" : "center", behavior: "instant" });
  target.classList.add("marked", "flash");
  target.tabIndex = -1;
  target.focus({ preventScroll: true });
};
addEventListener("hashchange", revealAddress);
// The same link once more leads there, too.
addEventListener("click", (event) => {
  const link = event.target.closest?.("a[href^='#at/']");
  if (link && link.getAttribute("href") === location.hash) revealAddress();
});

// --- joined tables ---

for (const grid of document.querySelectorAll("table.joined")) {
  const body = grid.tBodies[0], first = [...body.rows];
  grid.classList.toggle("wide", isWide([...grid.rows].map((row) => [...row.cells].map((cell) => cell.textContent))));
  const labels = [...grid.rows[0].cells].map((head) => head.textContent);
  for (const row of first) [...row.cells].forEach((cell, index) => { cell.dataset.label = labels[index]; });
  [...grid.rows[0].cells].forEach((head, column) => {
    const sort = () => {
      const descending = head.getAttribute("aria-sort") === "ascending";
      for (const other of grid.rows[0].cells) other.removeAttribute("aria-sort");
      head.setAttribute("aria-sort", descending ? "descending" : "ascending");
      const value = (row) => valueOf(row.cells[column].dataset.value ?? row.cells[column].textContent);
      const keyed = first.map((row) => [value(row), row]);
      keyed.sort(([a], [b]) => compareValues(a, b, descending ? -1 : 1));
      body.append(...keyed.map(([, row]) => row));
    };
    head.replaceChildren(make("button", { type: "button", "aria-label": labels[column], onclick: sort }, labels[column]));
  });
  const judged = first.filter((row) => row.querySelector(".chip"));
  if (judged.length && judged.length < first.length) {
    for (const row of judged) row.classList.add("judged");
    const onchange = (event) => grid.classList.toggle("only-findings", event.target.checked);
    grid.closest(".parts").querySelector(".bar").append(
      make("label", { class: "tick tools" }, make("input", { type: "checkbox", onchange }), "only findings"));
  }
}

// --- find in the whole report ---

const findBox = make("input", { type: "search", placeholder: "Find in all tables and reports", "aria-label": "Find in all tables and reports" });
const found = make("ul", { class: "reasons" });
const foundCount = make("span", { class: "count", role: "status" });
const closeFind = () => {
  findPanel.hidden = true;
  findButton.focus();
};
const findPanel = make("section", { class: "panel find tools", role: "search", "aria-label": "Find in report", hidden: true },
  make("div", { class: "bar" }, findBox, foundCount, make("span", { class: "grow" }),
    make("button", { type: "button", onclick: closeFind }, "Close")), found);
const search = () => {
  const needle = findBox.value.toLowerCase();
  const results = [];
  const show = (text, count, what, go) => results.push(make("li", {},
    make("button", { type: "button", class: "link", onclick: go }, text), " ", make("span", { class: "count" }, plural(count, what))));
  let total = 0;
  for (const table of needle ? tables : []) {
    const holds = (row) => row.some((cell) => cell?.toLowerCase().includes(needle));
    const rows = table.rows.flatMap((row, index) => holds(row) ? [index] : []);
    if (rows.length) {
      total += rows.length;
      const view = views.find((one) => one.table === table);
      show(`${table.title}, ${table.class}`, rows.length, "row", () => {
        view?.filter(findBox.value);
        sections.get(table.class).scrollIntoView({ behavior: "instant" });
      });
    }
    for (const item of table.attachments) {
      if (!item.text.toLowerCase().includes(needle)) continue;
      item.lines ??= item.text.split(/\r\n|\r|\n/);
      const lines = item.lines.flatMap((line, index) => line.toLowerCase().includes(needle) ? [index] : []);
      if (!lines.length) continue;
      total += lines.length;
      let next = 0; // each press goes to the next line
      show(`${table.title}, ${item.filename}`, lines.length, "line", () => {
        location.hash = addressOf(table.class, String(item.row), item.key, String(item.firstLine + lines[next]));
        next = (next + 1) % lines.length;
      });
    }
  }
  found.replaceChildren(...results);
  foundCount.textContent = needle ? total ? `${total.toLocaleString("en")} found` : "Nothing found" : "";
};
let searchTimer;
findBox.addEventListener("input", () => { clearTimeout(searchTimer); searchTimer = setTimeout(search, 200); });
const openFind = () => {
  findPanel.hidden = false;
  findBox.focus();
  findBox.select();
};

// --- the summary as plain text, for a ticket ---

const textOf = (root, selector) => root.querySelector(selector)?.textContent.trim() ?? "";
const summaryText = () => {
  const lines = [document.title, textOf(document, "h1")];
  for (const fact of document.querySelectorAll("header .facts > div")) lines.push(`${textOf(fact, "dt")}: ${textOf(fact, "dd")}`);
  lines.push("", textOf(document, "#verdict h2"), textOf(document, "#verdict p"), "");
  for (const finding of document.querySelectorAll(".findings .finding")) {
    lines.push(`- ${textOf(finding, ".chip").replace(/^\S /, "")}: ${textOf(finding, ".finding-text b")}`, `  ${textOf(finding, ".sub")}`);
    for (const item of finding.querySelectorAll(".proof li")) lines.push(`  * ${item.firstChild.textContent}${item.childNodes[1]?.textContent ?? ""}`.trimEnd());
  }
  return `${lines.join("\n").trimEnd()}\n`;
};

// --- light, dark, and the tools at the top ---

const THEME = "pqhost-report-theme";
const root = document.documentElement;
try {
  const kept = localStorage.getItem(THEME);
  if (kept === "light" || kept === "dark") root.dataset.theme = kept;
} catch { /* Some browsers keep nothing for files. */ }
const switchTheme = () => {
  const dark = root.dataset.theme ? root.dataset.theme === "dark" : matchMedia("(prefers-color-scheme: dark)").matches;
  root.dataset.theme = dark ? "light" : "dark";
  try {
    localStorage.setItem(THEME, root.dataset.theme);
  } catch { /* Then it lasts as long as the page. */ }
};
const findButton = make("button", { type: "button", onclick: openFind, "aria-keyshortcuts": "/" }, "Find in report");
// The same document as pqhost collect --format json writes.
const downloadData = async () => {
  const packed = Uint8Array.from(atob(document.getElementById("packed").textContent), (c) => c.charCodeAt(0));
  const name = `${document.querySelector("h1").textContent.replace(/[^\w.-]+/g, "-")}.json`;
  try {
    const json = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
    download(name, await new Response(json).blob(), "application/json");
  } catch {
    download(`${name}.gz`, packed, "application/gzip"); // An old browser cannot unpack it.
  }
};
const tools = document.getElementById("tools");
tools.append(findButton,
  ...document.getElementById("verdict") ? [make("button", { type: "button", onclick: () => copyText(summaryText(), "Summary") }, "Copy summary")] : [],
  ...document.getElementById("packed").textContent ? [make("button", { type: "button", class: "data", onclick: downloadData }, "Download data (JSON)")] : [],
  make("button", { type: "button", onclick: switchTheme }, "Light / dark"));
main.prepend(findPanel);

if (tools.dataset.recorded) {
  const days = Math.floor((Date.now() - Date.parse(tools.dataset.recorded)) / 86400000);
  const fact = [...document.querySelectorAll("header .facts > div")].find((one) => textOf(one, "dt") === "Recorded");
  if (days >= 0) fact?.lastChild.append(make("span", { class: "age" }, days ? ` (${plural(days, "day")} ago)` : " (today)"));
}

// --- keys ---

const stepFinding = (direction) => {
  const list = [...document.querySelectorAll(".finding > summary")].filter((one) => one.offsetParent);
  const at = list.indexOf(document.activeElement);
  const next = list[at < 0 ? direction > 0 ? 0 : list.length - 1 : (at + direction + list.length) % list.length];
  next?.focus({ preventScroll: true });
  next?.scrollIntoView({ block: "nearest", behavior: calm.matches ? "instant" : "smooth" });
};
addEventListener("keydown", (event) => {
  if (event.ctrlKey || event.metaKey || event.altKey) return;
  if (event.key === "Escape" && findPanel.contains(document.activeElement)) closeFind();
  if (event.target.closest?.("input, textarea, select")) return;
  if (event.key === "/") {
    event.preventDefault();
    openFind();
  } else if (event.key === "n") stepFinding(1);
  else if (event.key === "p") stepFinding(-1);
});

addEventListener("beforeprint", () => { for (const view of views) view.print(); });
addEventListener("afterprint", () => { for (const view of views) view.draw(); });
revealAddress();
