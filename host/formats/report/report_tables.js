// The tools' tables and raw reports: sorted, filtered, searched, and drawn as far as they are seen.
const DRAW_ALL = 400;      // rows up to which a table is drawn whole
const PRINT_LIMIT = 20000; // rows of one table that are printed
const OVERSCAN = 20;       // rows drawn beyond the visible ones
const LONG = 48;           // characters from which a cell's text may break
const WIDE = 9;            // columns from which a row is printed as labels with values
const PAPER = 96;          // characters side by side on paper; a column's longest word is not broken
const WHOLE_TEXT = 1 << 20; // characters up to which a raw report is drawn whole
const LINES_AROUND = 200;  // lines on either side of the one that is looked for in a longer one

// Whether rows are printed as labels with values, for columns as wide as their words do not fit.
const isWide = (rows) => {
  const widths = [];
  for (const row of rows) {
    row.forEach((cell, column) => {
      const longest = Math.max(0, ...(cell ?? "").split(/\s/, 64).map((word) => word.length));
      widths[column] = Math.max(widths[column] ?? 0, Math.min(longest, LONG) + 2);
    });
  }
  return widths.length >= WIDE || widths.reduce((sum, width) => sum + width, 0) > PAPER;
};

const asCsv = (table, order) => {
  const field = (text) => /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
  const lines = [table.columns.map((column) => field(column.label))];
  for (const index of order) lines.push(table.rows[index].map((cell) => field(cell == null ? "" : cell)));
  return lines.map((line) => line.join(",") + "\r\n").join("");
};

// Rows of one table: which are shown, in which order, and the part of them that is in the page.
class RowView {
  constructor(table) {
    this.table = table;
    this.isLog = table.kind === "log";
    this.needle = "";
    this.sortColumn = -1;
    this.descending = false;
    this.order = table.rows.map((_, index) => index);
    this.current = -1;
    this.marked = null; // the cell that a finding was read from
    this.body = make("tbody");
    this.head = this.isLog ? null : this.makeHead();
    this.scroll = make("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": `Rows of ${table.title}, ${table.class}` },
      make("table", { class: this.isLog ? "log" : null }, this.head, this.body));
    this.grid = this.scroll.firstChild;
    this.scroll.addEventListener("scroll", () => this.drawSoon(), { passive: true });
    addEventListener("resize", () => this.drawSoon());
    this.draw();
  }
  makeHead() {
    const cells = this.table.columns.map((column, index) =>
      make("th", { scope: "col", title: column.key },
        make("button", { type: "button", "aria-label": column.label.trim() || column.key, onclick: () => this.sortBy(index) },
          column.label.trim() || column.key)));
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
      const sign = this.descending ? -1 : 1, values = rows.map((row) => valueOf(row[this.sortColumn]));
      order.sort((a, b) => compareValues(values[a], values[b], sign) || a - b);
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
    this.scrollTo(this.matches[this.current]);
    this.draw();
    this.onChange?.();
  }
  scrollTo(place) {
    this.scroll.scrollTop = Math.max(0, place * this.rowHeight() - this.scroll.clientHeight / 2);
  }
  // Marks a cell, and answers with its element; null when the table has none there.
  reveal(index, key) {
    const column = this.table.columns.findIndex((one) => one.key === key);
    if (column < 0 || !this.table.rows[index]) return null;
    this.marked = { index, column };
    if (!this.order.includes(index)) this.clear?.();
    this.scrollTo(this.order.indexOf(index));
    this.draw();
    return this.body.querySelector("td.marked");
  }
  rowHeight() {
    if (!this.height) {
      const row = this.body.querySelector("tr:not(.space)");
      this.height = (row && row.getBoundingClientRect().height) || 30;
    }
    return this.height;
  }
  makeCell(index, column, cell) {
    const text = this.isLog ? shown(cell ?? "") : visible((cell ?? "").trim());
    const isMarked = this.marked?.index === index && this.marked.column === column;
    const classes = [text.length > LONG ? "long" : "", isMarked ? "marked" : ""].join(" ").trim();
    return make("td", { class: classes || null, "data-label": this.isLog ? null : this.table.columns[column].label.trim() },
      highlighted(text, this.needle));
  }
  makeRow(place) {
    const index = this.order[place];
    const cells = this.table.rows[index].map((cell, column) => this.makeCell(index, column, cell));
    if (this.isLog) cells.unshift(make("td", { class: "number" }, String(this.table.firstRow + index + 1)));
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
    const visibleRows = Math.ceil((this.scroll.clientHeight || 800) / height) + 2 * OVERSCAN;
    const last = Math.min(total, first + visibleRows);
    const space = (rows) => {
      const cell = make("td", { colspan: String(this.table.columns.length + 1) });
      cell.style.height = `${rows * height}px`;
      return make("tr", { class: "space", "aria-hidden": "true" }, cell);
    };
    this.body.replaceChildren(space(first),
      ...Array.from({ length: last - first }, (_, at) => this.makeRow(first + at)), space(total - last));
  }
  // What of it goes on paper: a log only when that was asked for, and never more than can be printed.
  print() {
    const isWanted = !this.isLog || this.onPaper;
    if (isWanted) this.draw(true);
    if (!this.isLog) {
      const labels = this.table.columns.map((column) => column.label);
      this.grid.classList.toggle("wide", isWide([labels, ...this.order.slice(0, PRINT_LIMIT).map((index) => this.table.rows[index])]));
    }
    const left = isWanted ? Math.max(0, this.order.length - PRINT_LIMIT) : this.order.length;
    this.section.classList.toggle("not-printed", !isWanted);
    this.paperNote.textContent = left
      ? `${plural(left, this.isLog ? "line" : "row")} not printed${isWanted ? "" : ": \u201con paper\u201d was not ticked"}.` : "";
  }
}

const views = [];
const title = (table) => [make("h4", {}, table.title), make("span", { class: "class" }, table.class)];

const rowTable = (table, section) => {
  const view = new RowView(table);
  view.section = section;
  view.paperNote = make("p", { class: "on-paper faint" });
  views.push(view);
  const count = make("span", { class: "count" });
  const what = view.isLog ? "Search" : "Filter";
  const input = make("input", { type: "search", placeholder: what, "aria-label": `${what} ${table.title}, ${table.class}` });
  const report = () => {
    const words = view.isLog ? "line" : "row";
    count.textContent = view.isLog && view.needle
      ? `${plural(view.matches.length, "match").replace("matchs", "matches")}${view.current >= 0 ? `, at ${view.current + 1}` : ""}`
      : view.order.length === table.rows.length ? plural(table.rows.length, words)
        : `${view.order.length.toLocaleString("en")} of ${plural(table.rows.length, words)}`;
  };
  let timer;
  view.filter = (text) => { input.value = text; view.search(text); };
  view.clear = () => view.filter("");
  input.addEventListener("input", () => { clearTimeout(timer); timer = setTimeout(() => view.search(input.value), 120); });
  view.onChange = report;
  const tools = [input];
  const tick = (text, onchange) => make("label", { class: "tick" }, make("input", { type: "checkbox", onchange }), text);
  if (view.isLog) {
    input.addEventListener("keydown", (event) => {
      if (event.key === "Enter") view.step(event.shiftKey ? -1 : 1);
    });
    tools.push(make("button", { type: "button", "aria-label": "Previous match", onclick: () => view.step(-1) }, "\u2191"),
      make("button", { type: "button", "aria-label": "Next match", onclick: () => view.step(1) }, "\u2193"),
      tick("only matches", (event) => { view.onlyMatches = event.target.checked; view.arrange(); }),
      tick("on paper", (event) => { view.onPaper = event.target.checked; }));
  }
  tools.push(make("button", { type: "button", onclick: () => copyText(asCsv(table, view.order), table.title) }, "Copy as CSV"));
  report();
  section.reveal = (row, key) => view.reveal(row - 1 - table.firstRow, key);
  return [make("div", { class: "bar" }, ...title(table), make("span", { class: "grow" }), count,
    make("span", { class: "tools bar-tools" }, ...tools)), view.scroll, view.paperNote];
};

const propertyTable = (table, section) => {
  const body = make("tbody", {}, ...table.columns.map((column, index) =>
    make("tr", { class: index % 2 ? "odd" : null }, make("th", { scope: "row", title: column.key }, column.label.trim() || column.key),
      ...table.rows.map((row) => make("td", {}, visible((row[index] ?? "").trim()))))));
  section.reveal = (row, key) => {
    const column = table.columns.findIndex((one) => one.key === key);
    const cell = body.rows[column]?.cells[row - table.firstRow];
    cell?.classList.add("marked");
    return cell;
  };
  return [make("div", { class: "bar" }, ...title(table), make("span", { class: "grow" }),
    make("button", { type: "button", class: "tools", onclick: () => copyText(asCsv(table, table.rows.keys()), table.title) }, "Copy as CSV")),
    make("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": `Values of ${table.title}, ${table.class}` },
      make("table", { class: "properties" }, body))];
};

// Draws the lines of a raw report, of a long one only those around `line`, which is marked.
const drawText = (item, place, line) => {
  item.lines ??= item.text.split(/\r\n|\r|\n/);
  const index = line ? line - item.firstLine : 0;
  const isWhole = item.text.length <= WHOLE_TEXT || place.wholeWanted;
  const from = isWhole ? 0 : Math.max(0, index - LINES_AROUND);
  const to = isWhole ? item.lines.length : Math.min(item.lines.length, index + LINES_AROUND);
  const join = (lines) => lines.map((one) => `${shown(one)}\n`).join("");
  const target = line && index >= 0 && index < item.lines.length
    ? make("mark", { class: "marked line" }, shown(item.lines[index]) || " ") : null;
  place.text.replaceChildren(...target
    ? [join(item.lines.slice(from, index)), target, `\n${join(item.lines.slice(index + 1, to))}`]
    : [isWhole && !line ? shown(item.text) : join(item.lines.slice(from, to))]);
  place.part.replaceChildren(...isWhole ? [] : [
    make("span", { class: "faint" }, `lines ${(item.firstLine + from).toLocaleString("en")} to ${(item.firstLine + to - 1).toLocaleString("en")} of ${item.lines.length.toLocaleString("en")}`), " ",
    make("button", { type: "button", onclick: () => { place.wholeWanted = true; drawText(item, place, line); } }, "Show all")]);
  return target;
};

const attachment = (item) => {
  const place = { text: make("pre", { tabindex: "0", role: "region", "aria-label": `Text of ${item.filename}, ${item.row}` }), part: make("span") };
  const safe = item.filename.replace(UNSEEN, "_");
  const name = /\.\w+$/.test(safe) ? safe : `${safe}.txt`;
  const block = make("details", { class: "attachment" },
    make("summary", {}, item.label, " ", make("span", { class: "faint" }, `${item.filename}, ${plural(item.text.length, "character")}`)),
    make("div", { class: "bar" },
      make("button", { type: "button", class: "download", "data-filename": name,
        onclick: () => download(name, item.text, "text/plain;charset=utf-8") }, `Download ${name}`), place.part),
    place.text);
  block.addEventListener("toggle", () => { if (block.open && !place.text.firstChild) drawText(item, place, 0); });
  block.reveal = (line) => {
    block.open = true;
    return drawText(item, place, line) ?? block;
  };
  return block;
};

const notes = (table) => table.notes.map((note) => make("p", { class: "note" }, note));

// Sections by class; each may have reveal(row, key), and the blocks of its attachments.
const sections = new Map();
const tableSection = (table) => {
  const section = make("section", { class: "panel", id: `table-${table.class}`, tabindex: "-1", "aria-label": `${table.title}, ${table.class}` });
  sections.set(table.class, section);
  section.blocks = new Map();
  if (!table.rowCount) {
    section.append(make("div", { class: "bar" }, ...title(table), make("span", { class: "grow" }),
      make("span", { class: "status faint" }, table.status)), ...notes(table));
    return section;
  }
  const [bar, ...content] = !table.rows.length ? [make("div", { class: "bar" }, ...title(table))] // attachments only
    : table.kind === "properties" ? propertyTable(table, section) : rowTable(table, section);
  section.append(bar, ...notes(table), ...content);
  if (table.firstRow) {
    section.append(make("p", { class: "cut" }, `The first ${plural(table.firstRow, "row")} are left out of this report; other formats have all of it.`));
  }
  for (const item of table.attachments) {
    const block = attachment(item);
    section.blocks.set(`${item.row}/${item.key}`, block);
    section.append(block);
  }
  return section;
};
