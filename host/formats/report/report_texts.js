// Texts and elements of the report. Every text of the data goes into the page as a text node: nothing
// is ever parsed as markup, and nothing is obeyed or unseen that turns or hides text.
const data = JSON.parse(document.getElementById("data").textContent);

// Characters that the page would obey, or that nobody would see; the host has the list.
const UNSEEN = /[\x00-\x08\x0b-\x1f\x7f-\x9f@UNSEEN@]/gu;
const visible = (text) => text.replace(UNSEEN, (c) => {
  const code = c.codePointAt(0), digits = code.toString(16);
  if (c === "\r") return "";
  return code > 0xffff ? `\\u{${digits}}` : code < 0xa0 ? `\\x${digits.padStart(2, "0")}` : `\\u${digits.padStart(4, "0")}`;
});
const shown = (text) => visible(text.trimEnd());
const READ_ALOUD = new Set(["title", "aria-label", "placeholder", "data-label"]);
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

// Told to the eye for a while, and to a screen reader.
const announcer = make("div", { class: "told", role: "status", "aria-live": "polite" });
let untell;
const say = (text) => {
  announcer.textContent = visible(text);
  announcer.classList.add("seen");
  clearTimeout(untell);
  untell = setTimeout(() => announcer.classList.remove("seen"), 4000);
};

const copyText = async (text, what) => {
  try {
    await navigator.clipboard.writeText(text);
    say(`${what} copied`);
  } catch {
    // A page opened from a file may not be allowed to: the old way still works there.
    const before = document.activeElement;
    const area = make("textarea", { class: "visually-hidden" });
    area.value = text;
    document.body.append(area);
    area.select();
    const copied = document.execCommand("copy");
    area.remove();
    before?.focus();
    say(copied ? `${what} copied` : `${what} could not be copied: the browser does not allow it`);
  }
};

// --- values in order ---

const UNITS = { "": 0, K: 1, M: 2, G: 3, T: 4, P: 5 };
const MONTHS = ["jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"];
// Forms that the tools print, each with what it amounts to. A year of two digits is of this century.
const FORMS = [
  [/^(\d{4})-(\d\d)-(\d\d)(?:[T ](\d\d):(\d\d)(?::(\d\d))?)?/, (m) => Date.UTC(m[1], m[2] - 1, m[3], m[4] ?? 0, m[5] ?? 0, m[6] ?? 0)],
  [/^(\d{4})\/(\d\d)\/(\d\d)(?:,? (\d\d):(\d\d)(?::(\d\d))?)?/, (m) => Date.UTC(m[1], m[2] - 1, m[3], m[4] ?? 0, m[5] ?? 0, m[6] ?? 0)],
  [/^(\d\d?)\/(\d\d?)\/(\d{4}|\d\d)(?:,? (\d\d):(\d\d)(?::(\d\d))?)?/,
    (m) => Date.UTC(m[3] < 100 ? 2000 + Number(m[3]) : m[3], m[1] - 1, m[2], m[4] ?? 0, m[5] ?? 0, m[6] ?? 0)],
  [/^[A-Z][a-z]{2} ([A-Z][a-z]{2}) {1,2}(\d\d?) (\d\d):(\d\d):(\d\d) (\d{4})/,
    (m) => Date.UTC(m[6], MONTHS.indexOf(m[1].toLowerCase()), m[2], m[3], m[4], m[5])],
  [/^(\d{1,6})d (\d\d):(\d\d):(\d\d(?:\.\d{1,6})?)/, (m) => ((m[1] * 24 + Number(m[2])) * 60 + Number(m[3])) * 60 + Number(m[4])],
  [/^0x([0-9a-f]{1,16})$/i, (m) => Number.parseInt(m[1], 16)],
  [/^([0-9a-f]{1,8})h(?=$|\s)/i, (m) => Number.parseInt(m[1], 16)],
  [/^(\d{1,15}(?:\.\d{1,9})?) ?([KMGTP]?)i?B(?=$|\s)/, (m) => m[1] * 1024 ** UNITS[m[2]]],
  [/^([-+]?\d{1,15}(?:\.\d{1,9})?)(?:[A-Za-z%\u00b0]{1,5})?(?=$|\s)/, (m) => Number(m[1])],
];
// A number where the text begins with one that means an amount or a time; otherwise the text.
const valueOf = (text) => {
  const trimmed = (text ?? "").trim();
  for (const [form, amount] of FORMS) {
    const match = form.exec(trimmed);
    if (match) return amount(match);
  }
  return trimmed;
};
const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });
// Amounts before words; nothing comes last, whichever the direction.
const compareValues = (a, b, sign) => {
  if (a === "" || b === "") return (a === "") - (b === "");
  if (typeof a === "number" && typeof b === "number") return sign * (a - b);
  if (typeof a !== typeof b) return sign * (typeof a === "number" ? -1 : 1);
  return sign * collator.compare(a, b);
};
