// Draws the report from the data block. Every text of the data goes into the page as a text node:
// nothing is ever parsed as markup, and nothing is obeyed or unseen that turns or hides text.
"use strict";
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const DRAW_ALL = 400;      // rows up to which a table is drawn whole
  const PRINT_LIMIT = 20000; // rows of one table that are printed
  const OVERSCAN = 20;       // rows drawn beyond the visible ones

  // Characters that the page would obey, or that nobody would see; the host has the list.
  const UNSEEN = /[\x00-\x08\x0b-\x1f\x7f-\x9f@UNSEEN@]/gu;
  const visible = (text) => text.replace(UNSEEN, (c) => {
    const code = c.codePointAt(0), digits = code.toString(16);
    if (c === "\r") return "";
    return code > 0xffff ? `\\u{${digits}}` : code < 0xa0 ? `\\x${digits.padStart(2, "0")}` : `\\u${digits.padStart(4, "0")}`;
  });
  const shown = (text) => visible(text.trimEnd());
  const READ_ALOUD = new Set(["title", "aria-label", "placeholder"]);
  const make = (tag, attributes = {}, ...children) => {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
      if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
      else if (value === true) element.setAttribute(name, "");
      else if (value !== false && value != null) element.setAttribute(name, READ_ALOUD.has(name) ? visible(value) : value);
    }
    element.append(...children.filter((child) => child != null)
      .map((child) => typeof child === "string" ? visible(child) : child));
    return element;
  };
  const plural = (count, word) => `${count.toLocaleString("en")} ${word}${count === 1 ? "" : "s"}`;

  const highlighted = (text, needle) => {
    const fragment = document.createDocumentFragment();
    if (!needle) {
      fragment.append(text);
      return fragment;
    }
    const lower = text.toLowerCase();
    let from = 0;
    for (let at = lower.indexOf(needle); at >= 0; at = lower.indexOf(needle, from)) {
      fragment.append(text.slice(from, at), make("mark", {}, text.slice(at, at + needle.length)));
      from = at + needle.length;
    }
    fragment.append(text.slice(from));
    return fragment;
  };

  const download = (name, text, type) => {
    const link = make("a", { href: URL.createObjectURL(new Blob([text], { type })), download: name });
    document.body.append(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
  };
  const say = (text) => { announcer.textContent = visible(text); };
  const announcer = make("div", { class: "visually-hidden", role: "status", "aria-live": "polite" });

  const asCsv = (table, order) => {
    const field = (text) => /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
    const lines = [table.columns.map((column) => field(column.label))];
    for (const index of order) lines.push(table.rows[index].map((cell) => field(cell == null ? "" : cell)));
    return lines.map((line) => line.join(",") + "\r\n").join("");
  };
  const copyText = async (text, what) => {
    try {
      await navigator.clipboard.writeText(text);
      say(`${what} copied`);
    } catch {
      // A page opened from a file may not be allowed to: the old way still works there.
      const area = make("textarea", { class: "visually-hidden" });
      area.value = text;
      document.body.append(area);
      area.select();
      document.execCommand("copy");
      area.remove();
      say(`${what} copied`);
    }
  };

  const compare = (a, b) => {
    const numberA = Number.parseFloat(a), numberB = Number.parseFloat(b);
    if (!Number.isNaN(numberA) && !Number.isNaN(numberB) && numberA !== numberB &&
        /^\s*[-+]?[\d.]/.test(a) && /^\s*[-+]?[\d.]/.test(b) && !/[.:]\d+[.:]/.test(a) && !/[.:]\d+[.:]/.test(b)) {
      return numberA - numberB;
    }
    return collator.compare(a, b);
  };
  const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });

  // Rows of one table: which are shown, in which order, and the part of them that stands in the page.
  class RowView {
    constructor(table) {
      this.table = table;
      this.isLog = table.kind === "log";
      this.needle = "";
      this.sortColumn = -1;
      this.descending = false;
      this.order = table.rows.map((_, index) => index);
      this.current = -1;
      this.body = make("tbody");
      this.head = this.isLog ? null : this.makeHead();
      this.scroll = make("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": table.title },
        make("table", { class: this.isLog ? "log" : "" }, this.head, this.body));
      this.grid = this.scroll.firstChild;
      this.scroll.addEventListener("scroll", () => this.drawSoon(), { passive: true });
      addEventListener("resize", () => this.drawSoon());
      this.draw();
    }
    makeHead() {
      const cells = this.table.columns.map((column, index) =>
        make("th", { scope: "col", title: column.key },
          make("button", { type: "button", "aria-label": column.label, onclick: () => this.sortBy(index) }, column.label)));
      return make("thead", {}, make("tr", {}, ...cells));
    }
    sortBy(column) {
      this.descending = this.sortColumn === column && !this.descending;
      this.sortColumn = column;
      [...this.head.rows[0].cells].forEach((cell, index) => {
        if (index === column) cell.setAttribute("aria-sort", this.descending ? "descending" : "ascending");
        else cell.removeAttribute("aria-sort");
      });
      this.arrange();
    }
    search(text) {
      this.needle = text.toLowerCase();
      this.current = -1;
      this.arrange();
    }
    holds(row) {
      return row.some((cell) => cell != null && cell.toLowerCase().includes(this.needle));
    }
    arrange() {
      const rows = this.table.rows;
      let order = rows.map((_, index) => index);
      if (this.needle && (!this.isLog || this.onlyMatches)) order = order.filter((index) => this.holds(rows[index]));
      if (this.sortColumn >= 0) {
        const column = this.sortColumn, sign = this.descending ? -1 : 1;
        order.sort((a, b) => sign * compare(rows[a][column] ?? "", rows[b][column] ?? "") || a - b);
      }
      this.order = order;
      this.matches = this.isLog && this.needle ? order.flatMap((index, place) => this.holds(rows[index]) ? [place] : []) : [];
      this.scroll.scrollTop = 0;
      this.draw();
      this.onChange?.();
    }
    step(direction) {
      if (!this.matches?.length) return;
      this.current = (this.current + direction + this.matches.length) % this.matches.length;
      const place = this.matches[this.current];
      this.scroll.scrollTop = Math.max(0, place * this.rowHeight() - this.scroll.clientHeight / 2);
      this.draw();
      this.onChange?.();
    }
    rowHeight() {
      if (!this.height) {
        const row = this.body.querySelector("tr:not(.space)");
        this.height = (row && row.getBoundingClientRect().height) || 30;
      }
      return this.height;
    }
    makeRow(place) {
      const index = this.order[place];
      const cells = this.table.rows[index].map((cell) => make("td", {}, highlighted(shown(cell ?? ""), this.needle)));
      if (this.isLog) cells.unshift(make("td", { class: "number" }, String(index + 1)));
      const marks = [place % 2 ? "odd" : "", this.matches?.[this.current] === place ? "current" : ""];
      return make("tr", { class: marks.join(" ").trim() || null, "data-row": index }, ...cells);
    }
    drawSoon() {
      if (this.waiting) return;
      this.waiting = true;
      requestAnimationFrame(() => { this.waiting = false; this.draw(); });
    }
    draw(all = false) {
      const total = this.order.length;
      const whole = total <= DRAW_ALL || all;
      this.grid.classList.toggle("drawn-as-needed", !whole);
      if (whole) {
        const end = all ? Math.min(total, PRINT_LIMIT) : total;
        this.body.replaceChildren(...Array.from({ length: end }, (_, place) => this.makeRow(place)));
        return;
      }
      if (!this.height) this.body.replaceChildren(this.makeRow(0));
      const height = this.rowHeight();
      const first = Math.max(0, Math.floor(this.scroll.scrollTop / height) - OVERSCAN);
      const visible = Math.ceil((this.scroll.clientHeight || 800) / height) + 2 * OVERSCAN;
      const last = Math.min(total, first + visible);
      const space = (rows) => {
        const cell = make("td", { colspan: String(this.table.columns.length + 1) });
        cell.style.height = `${rows * height}px`;
        return make("tr", { class: "space", "aria-hidden": "true" }, cell);
      };
      this.body.replaceChildren(space(first),
        ...Array.from({ length: last - first }, (_, at) => this.makeRow(first + at)), space(total - last));
    }
  }

  const views = [];
  const title = (table) => [make("h3", {}, table.title), make("span", { class: "class" }, table.class)];

  const rowTable = (table) => {
    const view = new RowView(table);
    views.push(view);
    const count = make("span", { class: "count" });
    const what = view.isLog ? "Search" : "Filter";
    const input = make("input", { type: "search", placeholder: what, "aria-label": `${what} ${table.title}` });
    const report = () => {
      const words = view.isLog ? "line" : "row";
      count.textContent = view.isLog && view.needle
        ? `${plural(view.matches.length, "match").replace("matchs", "matches")}${view.current >= 0 ? `, at ${view.current + 1}` : ""}`
        : view.order.length === table.rows.length ? plural(table.rows.length, words)
          : `${view.order.length.toLocaleString("en")} of ${plural(table.rows.length, words)}`;
    };
    let timer;
    input.addEventListener("input", () => { clearTimeout(timer); timer = setTimeout(() => view.search(input.value), 120); });
    view.onChange = report;
    const tools = [input];
    if (view.isLog) {
      input.addEventListener("keydown", (event) => {
        if (event.key === "Enter") view.step(event.shiftKey ? -1 : 1);
      });
      const only = make("input", { type: "checkbox", onchange: (event) => { view.onlyMatches = event.target.checked; view.arrange(); } });
      tools.push(make("button", { type: "button", "aria-label": "Previous match", onclick: () => view.step(-1) }, "\u2191"),
        make("button", { type: "button", "aria-label": "Next match", onclick: () => view.step(1) }, "\u2193"),
        make("label", { class: "faint" }, only, " only matches"));
    }
    tools.push(make("button", { type: "button", onclick: () => copyText(asCsv(table, view.order), table.title) }, "Copy as CSV"));
    report();
    return [make("div", { class: "bar" }, ...title(table), make("span", { class: "grow" }), count,
      make("span", { class: "tools bar-tools" }, ...tools.flatMap((tool) => [tool, " "]))), view.scroll];
  };

  const propertyTable = (table) => {
    const body = make("tbody", {}, ...table.columns.map((column, index) =>
      make("tr", {}, make("th", { scope: "row", title: column.key }, column.label),
        ...table.rows.map((row) => make("td", {}, shown(row[index] ?? ""))))));
    return [make("div", { class: "bar" }, ...title(table), make("span", { class: "grow" }),
      make("button", { type: "button", class: "tools", onclick: () => copyText(asCsv(table, table.rows.keys()), table.title) }, "Copy as CSV")),
      make("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": table.title }, make("table", { class: "properties" }, body))];
  };

  const attachment = (item) => {
    const text = make("pre", { tabindex: "0" });
    const safe = item.filename.replace(UNSEEN, "_");
    const name = /\.\w+$/.test(safe) ? safe : `${safe}.txt`;
    const block = make("details", { class: "attachment" },
      make("summary", {}, item.label, " ", make("span", { class: "faint" }, `${item.filename}, ${plural(item.text.length, "character")}`)),
      make("div", { class: "bar" },
        make("button", { type: "button", class: "download", "data-filename": name,
          onclick: () => download(name, item.text, "text/plain;charset=utf-8") }, `Download ${name}`)),
      text);
    block.addEventListener("toggle", () => { if (block.open && !text.firstChild) text.append(shown(item.text)); });
    return block;
  };

  const notes = (table) => table.notes.map((note) => make("p", { class: "note" }, note));

  const tableSection = (table) => {
    const section = make("section", { class: "panel", id: `table-${table.class}` });
    if (!table.rowCount) {
      section.append(make("div", { class: "bar" }, ...title(table), make("span", { class: "grow" }),
        make("span", { class: "warn" }, table.status)), ...notes(table));
      return section;
    }
    const [bar, ...content] = !table.rows.length ? [make("div", { class: "bar" }, ...title(table))] // attachments only
      : table.kind === "properties" ? propertyTable(table) : rowTable(table);
    section.append(bar, ...notes(table), ...content);
    for (const item of table.attachments) section.append(attachment(item));
    return section;
  };

  const linkTo = (table) => make("a", { href: `#table-${table.class}` }, table.title);
  const summary = () => {
    const collected = data.areas.map((area) => {
      const filled = area.tables.filter((table) => table.rowCount);
      return filled.length ? make("div", { class: "group" }, make("h4", {}, area.title),
        make("ul", {}, ...filled.map((table) =>
          make("li", {}, linkTo(table), " ", make("span", { class: "count" }, plural(table.rowCount, "row")))))) : null;
    });
    const reasons = new Map(); // why there are no rows: the tables of which this is so
    for (const area of data.areas) {
      for (const table of area.tables) {
        if (!table.rowCount) reasons.set(table.status, [...(reasons.get(table.status) ?? []), table]);
      }
    }
    const missing = [...reasons].map(([reason, tables]) => make("li", {}, make("span", { class: "warn" }, reason), ": ",
      ...tables.flatMap((table, index) => [index ? ", " : "", linkTo(table)])));
    const block = (heading, ...content) => make("div", { class: "block" }, make("h3", {}, heading), ...content);
    return make("section", { class: "panel", id: "summary" },
      make("div", { class: "bar" }, make("h2", {}, "Summary"), make("span", { class: "grow" }),
        make("span", { class: "count" }, data.outcome)),
      block("Collected", make("div", { class: "groups" }, ...collected)),
      missing.length ? block("Without rows", make("ul", { class: "reasons" }, ...missing)) : null,
      data.notes.length ? block("Failures", make("ul", { class: "reasons" }, ...data.notes.map((note) => make("li", {}, note)))) : null);
  };

  const setTheme = () => {
    const root = document.documentElement;
    const dark = root.dataset.theme ? root.dataset.theme === "dark" : matchMedia("(prefers-color-scheme: dark)").matches;
    root.dataset.theme = dark ? "light" : "dark";
  };

  document.title = `${visible(data.title)} \u2013 server report`;
  const facts = make("dl", { class: "facts" }, ...data.facts.map(([name, value]) =>
    make("div", {}, make("dt", {}, name), make("dd", {}, value))));
  const main = make("main", {}, summary());
  for (const area of data.areas) {
    main.append(make("h2", {}, area.title, " ", make("span", { class: "class faint" }, area.modules.join(", "))));
    for (const table of area.tables) main.append(tableSection(table));
  }
  document.body.append(
    make("header", { class: "page" }, make("div", {}, make("h1", {}, data.title), facts),
      make("button", { type: "button", class: "tools", onclick: setTheme }, "Light / dark")),
    main, make("footer", {}, data.footer), announcer);
  for (const view of views) view.draw();

  addEventListener("beforeprint", () => { for (const view of views) view.draw(true); });
  addEventListener("afterprint", () => { for (const view of views) view.draw(); });
})();
