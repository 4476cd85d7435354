// The table of servers. Its rows are in blocks that the browser lays out only when they come into view. The first
// blocks are filled at once, the others while the browser is idle: all rows are there for the browser's own search.

const BLOCK = 50; // rows
const SLICE = 10; // milliseconds of filling before the reader's next action can be handled
const table = find("servers");

const PORT_COLUMNS = [
  { key: "wwn", word: "WWN", of: port => port.wwn },
  { key: "state", word: "State", of: port => port.state },
  { key: "model", word: "Model", of: port => port.model },
  { key: "pci", word: "PCI", of: port => port.pci },
  { key: "before", word: "Before", of: port => port.before },
  { key: "image", word: "Image", of: port => port.image },
  { key: "now", word: "Now", of: port => port.now },
  { key: "file", word: "File", of: port => port.file },
  { key: "message", word: "Message", of: port => port.reason || port.message },
].filter(column => fleet.servers.some(server => server.ports.some(column.of)));

function portCell({ key, word, of }, port) {
  const attributes = { role: key === "wwn" ? "rowheader" : "cell", class: key, "data-word": word };
  if (key === "state") {
    return make("td", attributes, stateWord(port.state));
  }
  if (key === "message") {
    const texts = [...new Set([port.reason, port.message])].filter(text => text);
    return make("td", attributes, ...texts.map(text => make("div", {}, foreign(text))));
  }
  return make("td", attributes, foreign(of(port)));
}

function portsTable(server, ports) {
  const words = PORT_COLUMNS.map(({ key, word }) => heading(word, key));
  const rows = ports.map(port => row(...PORT_COLUMNS.map(column => portCell(column, port))));
  return makeTable({ class: "inner", "aria-label": `Ports of ${server.name}` }, words, rows);
}

// The ports of a server that match, worst first, and how many do not.
function portsRow(server) {
  const found = server.ports.length ? [...server.found].sort((a, b) => a.rank - b.rank) : [];
  const others = server.ports.length - found.length;
  const content = cell();
  if (found.length) {
    content.append(portsTable(server, found));
  }
  if (!server.ports.length) {
    content.append(make("p", {}, "No ports."));
  } else if (others) {
    content.append(make("p", {}, `${counted(others, "other port")} ${others === 1 ? "does" : "do"} not match.`));
  }
  return make("tr", { role: "row", class: "inside", id: `ports-${inNameOrder.indexOf(server)}` }, content);
}

function reportTime(server) {
  const days = daysBehind(server);
  const time = make("time", { datetime: new Date(server.time * 1000).toISOString() }, timeText(server.time));
  const mark = make("span", { class: "old waiting" }, `${counted(days, "day")} older`);
  return days ? [time, " ", mark] : [time];
}

// The reason of a server's state. A server without one can have ports in several states: then their numbers.
function reasonContent(server) {
  const counts = tally(server.ports, port => port.state);
  if (server.reason || counts.size < 2) {
    return foreign(server.reason);
  }
  const found = fleet.states.filter(({ name }) => counts.has(name));
  const texts = found.map(({ name, word }) => `${number(counts.get(name))} ${word.toLowerCase()}`);
  return make("span", { class: "quiet" }, texts.join(", "));
}

function makeServerRow(server) {
  const opener = { class: "toggle", "aria-expanded": "false" };
  server.button = button(opener, () => toggle(server), foreign(server.name || "(no name)"));
  const state = [stateWord(server.state)];
  if (server.reboot && server.state !== "waiting") {
    state.push(" ", make("span", { class: "mark waiting" }, "Reboot needed"));
  }
  if (server.preview && !onlyPreviews) {
    state.push(" ", make("span", { class: "mark waiting" }, "Preview"));
  }
  const contents = {
    state,
    reason: [reasonContent(server)],
    ports: [],
    models: [foreign(server.models)],
    code: server.code === null ? [] : [String(server.code)],
    time: server.time === null ? [] : reportTime(server),
  };
  const cells = COLUMNS.slice(1).map(({ key, word }) =>
    make("td", { role: "cell", class: key, "data-word": word }, ...contents[key]),
  );
  server.portsCell = cells.find(made => made.className === "ports");
  const name = make("th", { role: "rowheader", scope: "row", class: "name" }, server.button);
  return make("tr", { role: "row", class: "server" }, name, ...cells);
}

// The rows of a server as the view wants them. The server's own row is made once and kept.
function rowsOf(server) {
  server.row ??= makeServerRow(server);
  const total = server.ports.length;
  const found = total ? server.found.length : 0;
  setText(server.portsCell, found === total ? number(total) : `${number(found)} of ${number(total)}`);
  const open = view.open.has(server.name);
  server.button.setAttribute("aria-expanded", open);
  server.inside = open ? portsRow(server) : null;
  if (open) {
    server.button.setAttribute("aria-controls", server.inside.id);
    return [server.row, server.inside];
  }
  server.button.removeAttribute("aria-controls");
  return [server.row];
}

function toggle(server) {
  if (!view.open.delete(server.name)) {
    view.open.add(server.name);
  }
  server.inside?.remove();
  server.row.after(...rowsOf(server).slice(1));
  drawOpenAll();
  writeAddress(false);
}

let shown = [];
let waitingBlocks = [];

function fill({ body, servers }) {
  body.replaceChildren(...servers.flatMap(rowsOf));
}

function fillWaiting() {
  const end = performance.now() + SLICE;
  while (waitingBlocks.length && performance.now() < end) {
    fill(waitingBlocks.shift());
  }
  if (waitingBlocks.length) {
    setTimeout(fillWaiting);
  }
}

function fillAll() {
  waitingBlocks.splice(0).forEach(fill);
}

function drawList() {
  shown = serversShown();
  const blocks = [];
  for (let start = 0; start < shown.length; start += BLOCK) {
    const servers = shown.slice(start, start + BLOCK);
    const body = make("tbody", { role: "rowgroup" });
    body.style.setProperty("--rows", servers.length);
    blocks.push({ body, servers });
  }
  blocks.slice(0, 1).forEach(fill);
  const isIdle = waitingBlocks.length === 0;
  waitingBlocks = blocks.slice(1);
  if (isIdle) {
    setTimeout(fillWaiting);
  }
  [...table.tBodies].forEach(body => body.remove());
  table.append(...blocks.map(block => block.body));
  find("nothing").hidden = shown.length > 0;
  drawHeadings();
}

function sortBy(key) {
  view.descending = view.sort === key && !view.descending;
  view.sort = key;
  drawList();
  writeAddress(false);
}

const headings = COLUMNS.map(({ key, word }) =>
  heading(
    button({}, () => sortBy(key), word),
    key,
  ),
);
find("headings").append(...headings);

function drawHeadings() {
  COLUMNS.forEach(({ key }, place) => {
    if (view.sort === key) {
      headings[place].setAttribute("aria-sort", view.descending ? "descending" : "ascending");
    } else {
      headings[place].removeAttribute("aria-sort");
    }
  });
}

// Up and down move between the servers' buttons, in whatever block they are.
table.addEventListener("keydown", event => {
  const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
  const from = step && event.target.closest("tr.server");
  if (from) {
    const target = shown[shown.findIndex(server => server.row === from) + step];
    if (target) {
      fillAll();
      target.button.focus();
    }
    event.preventDefault();
  }
});

// A click anywhere on a server's row opens it, unless it ends the selection of a text.
table.addEventListener("click", event => {
  const clicked = event.target.closest("tr.server");
  if (clicked && !event.target.closest("button") && getSelection().isCollapsed) {
    toggle(shown.find(server => server.row === clicked));
  }
});
