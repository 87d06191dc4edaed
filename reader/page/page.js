// What a page can do beyond standing there: tables are filtered and sorted, the tree is searched, and on the fleet's
// page the lists are made from the data in the page. Texts enter the document as text alone.
"use strict";

const order = new Intl.Collator("en", { numeric: true, sensitivity: "base" });

function make(name, attributes, ...content) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (value !== null && value !== undefined) element.setAttribute(key, value);
  }
  element.append(...content.filter((part) => part !== null));
  return element;
}

function number(value) {
  return value.toLocaleString("en");
}

// Every word of the query has to stand somewhere in the text.
function matcher(query) {
  const words = query.toLowerCase().split(/\s+/).filter((word) => word);
  return (text) => words.every((word) => text.includes(word));
}

// Empty values come last, whichever way is sorted.
function compare(a, b, direction) {
  if (a === "" || b === "") return (a === "") - (b === "");
  return direction * (typeof a === "number" && typeof b === "number" ? a - b : order.compare(a, b));
}

// Makes the column heads buttons; `sort(column, direction)` is called with 1 for ascending and -1 for descending.
function sortable(table, sort) {
  const heads = [...table.tHead.rows[0].cells];
  heads.forEach((head, column) => {
    if (!head.textContent) return;
    const button = make("button", { type: "button" }, head.textContent);
    head.replaceChildren(button);
    button.addEventListener("click", () => {
      const up = head.getAttribute("aria-sort") !== "ascending";
      heads.forEach((other) => other.removeAttribute("aria-sort"));
      head.setAttribute("aria-sort", up ? "ascending" : "descending");
      sort(column, up ? 1 : -1);
    });
  });
}

// A table whose rows stand in the page.
function standingTable(table) {
  const body = table.tBodies[0];
  const rows = [...body.rows];
  const key = (row, column) => {
    const cell = row.cells[column];
    return cell.dataset.key ? Number(cell.dataset.key) : cell.textContent;
  };
  sortable(table, (column, direction) => {
    const keyed = rows.map((row) => [key(row, column), row]);
    keyed.sort((a, b) => compare(a[0], b[0], direction));
    body.append(...keyed.map((pair) => pair[1]));
  });
  const tools = table.closest("details").querySelector(".tools");
  if (!tools) return;
  tools.hidden = false;
  const texts = rows.map((row) => [...row.cells].map((cell) => cell.textContent).join("\n").toLowerCase());
  const input = tools.querySelector("input");
  const status = tools.querySelector("[role=status]");
  input.addEventListener("input", () => {
    const matches = matcher(input.value);
    let shown = 0;
    rows.forEach((row, i) => {
      row.hidden = !matches(texts[i]);
      shown += row.hidden ? 0 : 1;
    });
    status.textContent = shown === rows.length ? `${number(rows.length)} rows` : `${number(shown)} of ${number(rows.length)} rows`;
  });
}

// The tree: a search that opens the way to what it finds, and two buttons.
function searchableTree(tree) {
  const tools = tree.querySelector(".tools");
  tools.hidden = false;
  const input = tools.querySelector("input");
  const status = tools.querySelector("[role=status]");
  const branches = [...tree.querySelectorAll("details")];
  const [openAll, closeAll] = tools.querySelectorAll("button");
  openAll.addEventListener("click", () => branches.forEach((branch) => (branch.open = true)));
  closeAll.addEventListener("click", () => branches.forEach((branch) => (branch.open = false)));
  const itemOf = (item) => { // what stands at the tag itself, and the tag that holds it
    const own = item.querySelector(":scope > details") || item;
    const text = [...own.children].filter((child) => child.localName !== "ul").map((child) => child.textContent);
    return { item, own, text: text.join("\n").toLowerCase(), holder: item.parentElement.closest("li") };
  };
  let items = null;
  const search = () => {
    items = items || [...tree.querySelectorAll("li")].map(itemOf);
    const matches = matcher(input.value);
    const all = !input.value.trim();
    const found = new Set(items.filter((one) => matches(one.text)).map((one) => one.item));
    const way = new Set();
    const inside = new Set(); // below something found: shown, not opened
    for (const one of items) {
      if (inside.has(one.holder) || found.has(one.holder)) inside.add(one.item);
      if (!found.has(one.item)) continue;
      for (let up = one.holder; up && !way.has(up); up = up.parentElement.closest("li")) way.add(up);
    }
    for (const one of items) {
      one.item.hidden = !found.has(one.item) && !way.has(one.item) && !inside.has(one.item);
      if (!all) one.own.open = found.has(one.item) || way.has(one.item);
    }
    status.textContent = all ? "" : `${number(found.size)} found`;
  };
  let waiting = 0;
  input.addEventListener("input", () => {
    clearTimeout(waiting);
    waiting = setTimeout(search, 120);
  });
}

// Tables in closed sections are printed, too.
function printClosed() {
  let opened = [];
  addEventListener("beforeprint", () => {
    opened = [...document.querySelectorAll("details.list:not([open])")];
    opened.forEach((section) => (section.open = true));
  });
  addEventListener("afterprint", () => opened.forEach((section) => (section.open = false)));
}

const shownAtOnce = 50;

// A list that is made from data: `rows` are {cells, text()}, a cell being a text, a node or [number to sort by, text].
// `opened(row)` gives what a row shows when it is opened; without it rows do not open.
function liveList(id, rows, opened) {
  const section = document.getElementById(`list-${id}`);
  const table = section.querySelector("table");
  const body = table.tBodies[0];
  const kinds = [...table.tHead.rows[0].cells].map((head) => head.className);
  const input = section.querySelector("input");
  const status = section.querySelector("[role=status]");
  const more = section.querySelector(".more button");
  const chips = make("span", { class: "chips" });
  input.after(chips);
  const filters = new Map(); // words on the button that takes it away -> test
  let order = rows;
  let found = rows;
  let limit = shownAtOnce;

  const cellOf = (row, column, name) => {
    const cell = Array.isArray(row.cells[column]) ? row.cells[column][1] : row.cells[column];
    const element = make(name, { class: kinds[column], dir: "auto", scope: name === "th" ? "row" : null });
    if (column > 0 || !opened) {
      if (cell === "Serious") element.classList.add("grave");
      element.append(cell);
      return element;
    }
    const button = make("button", { type: "button", class: "opener", "aria-expanded": "false" }, cell || "without a name");
    button.addEventListener("click", () => toggle(row, button));
    element.append(button);
    return element;
  };
  const toggle = (row, button) => {
    const line = button.closest("tr");
    const open = button.getAttribute("aria-expanded") === "false";
    button.setAttribute("aria-expanded", String(open));
    if (open) line.after(make("tr", { class: "opened" }, make("td", { colspan: kinds.length }, opened(row))));
    else line.nextElementSibling.remove();
  };
  const show = () => {
    const lines = found.slice(0, limit).map((row) => {
      const cells = row.cells.map((cell, column) => cellOf(row, column, column === 0 ? "th" : "td"));
      return make("tr", {}, ...cells);
    });
    body.replaceChildren(...lines);
    status.textContent = found.length === rows.length ? number(rows.length) : `${number(found.length)} of ${number(rows.length)}`;
    more.parentElement.hidden = found.length <= limit;
    more.textContent = `Show ${number(Math.min(shownAtOnce, found.length - limit))} more`;
  };
  const filter = () => {
    const matches = matcher(input.value);
    const tests = [...filters.values()];
    found = order.filter((row) => tests.every((test) => test(row)) && matches(row.text()));
    limit = shownAtOnce;
    show();
  };
  const narrow = (words, test) => {
    if (words) filters.set(words, test);
    chips.replaceChildren(...[...filters.keys()].map((key) => {
      const chip = make("button", { type: "button", "aria-label": `Remove the filter ${key}` }, `${key} ×`);
      chip.addEventListener("click", () => {
        filters.delete(key);
        narrow();
        input.focus();
      });
      return chip;
    }));
    filter();
  };
  input.addEventListener("input", filter);
  more.addEventListener("click", () => {
    const first = limit;
    limit += shownAtOnce;
    show();
    const next = body.rows[first].querySelector("button"); // the pressed button has moved away
    if (next) next.focus();
  });
  sortable(table, (column, direction) => {
    const key = (row) => {
      const cell = row.cells[column];
      return Array.isArray(cell) ? cell[0] : cell instanceof Node ? cell.textContent : cell;
    };
    const keyed = rows.map((row) => [key(row), row]);
    keyed.sort((a, b) => compare(a[0], b[0], direction));
    order = keyed.map((pair) => pair[1]);
    filter();
  });
  section.hidden = false;
  show();
  let prepared = 0; // texts to search in are made while nothing else is to do, so that the first key is as quick as the others
  const prepare = (idle) => {
    while (prepared < rows.length && idle.timeRemaining() > 1) rows[prepared++].text();
    if (prepared < rows.length) requestIdleCallback(prepare);
  };
  if (window.requestIdleCallback) requestIdleCallback(prepare);
  return {
    narrow(words, test) {
      narrow(words, test);
      input.focus();
      section.scrollIntoView();
    },
  };
}

function bar(parts) {
  const space = "http://www.w3.org/2000/svg";
  const drawing = document.createElementNS(space, "svg");
  const set = (element, values) => Object.entries(values).forEach(([key, value]) => element.setAttribute(key, value));
  set(drawing, { class: "bar", height: 10, "aria-hidden": "true" });
  for (const [kind, from, length] of parts) {
    const part = document.createElementNS(space, "rect");
    set(part, { class: kind, x: `${from}%`, width: `${length}%`, height: 10 });
    drawing.append(part);
  }
  return drawing;
}

// All that the data says of a Mac.
function factsOf(mac, names) {
  const facts = make("dl", { class: "facts" });
  mac.f.forEach((texts, i) => {
    if (!texts.length) return;
    const values = texts.map((text) => make("dd", { dir: "auto" }, text));
    facts.append(make("div", {}, make("dt", {}, names[i]), ...values));
  });
  const alarms = mac.a.map(([serious, kind, text]) => make("li", { class: serious ? "serious" : "notice", dir: "auto" },
    make("strong", {}, `${serious ? "Serious" : "Notice"}: ${kind}`), ` ${text}`));
  const volumes = mac.v.map(([text, used, low]) => make("li", {}, make("span", { dir: "auto" }, text),
    bar([["free", 0, 100], [low ? "low" : "used", 0, used]])));
  return make("div", { class: "inside" }, make("ul", { class: "plain" }, ...alarms), make("ul", { class: "spaces" }, ...volumes), facts);
}

function fleetPage(data) {
  const lower = (row, make) => {
    let text = null;
    row.text = () => (text = text === null ? make().join("\n").toLowerCase() : text);
    return row;
  };
  const shown = (cells) => cells.map((cell) => (Array.isArray(cell) ? cell[1] : cell));
  const macs = data.macs.map((mac) => lower({ cells: mac.c, mac }, () => [...shown(mac.c), ...mac.f.flat(), ...mac.v.map((volume) => volume[0])]));
  const macList = liveList("macs", macs, (row) => factsOf(row.mac, data.facts));

  const alarms = data.macs.flatMap((mac) => mac.a.map(([serious, kind, text]) => {
    const level = serious ? "Serious" : "Notice";
    return lower({ cells: [mac.c[0], level, kind, text], mac, kind, serious }, () => [mac.c[0], level, kind, text]);
  }));
  alarms.sort((a, b) => b.serious - a.serious);
  const alarmList = liveList("alarms", alarms, (row) => factsOf(row.mac, data.facts));

  const software = data.software.map(([name, count, versions]) => lower(
    { cells: [name, [count, number(count)], [versions.length, number(versions.length)], versions[0][0]], versions, count },
    () => [name, ...versions.map((version) => version[0])]));
  const softwareList = liveList("software", software, (row) => make("ul", { class: "spaces" }, ...row.versions.map(([version, count]) =>
    make("li", {}, make("span", { dir: "auto" }, `${version || "without a version"}: ${number(count)} ${count === 1 ? "Mac" : "Macs"}`),
      bar([["blank", 0, 100], ["used", 0, (count * 100) / row.count]])))));
  if (data.more) {
    document.getElementById("list-software").append(make("p", { class: "soft" }, `${number(data.more)} rarer applications are left out.`));
  }

  // The names in the counts narrow the lists to what they count.
  const lead = (selector, action) => document.querySelectorAll(selector).forEach((head) => {
    const name = head.textContent;
    const title = head.closest(".card").querySelector("h3").textContent;
    const button = make("button", { type: "button", class: "opener" }, name);
    button.addEventListener("click", () => action(head.dataset, `${title}: ${name}`, name));
    head.replaceChildren(button);
  });
  lead("th[data-count]", ({ count, group }, words) => macList.narrow(words, (row) => row.mac.g[count] === Number(group)));
  lead("th[data-kind]", (_, words, name) => alarmList.narrow(words, (row) => row.kind === name));
  lead("th[data-search]", (_, words, name) => softwareList.narrow(words, (row) => row.cells[0].trim() === name.trim()));
}

document.querySelectorAll("table.data").forEach(standingTable);
document.querySelectorAll(".tree").forEach(searchableTree);
printClosed();
const fleet = document.getElementById("fleet");
if (fleet) fleetPage(JSON.parse(fleet.textContent));
