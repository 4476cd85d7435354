// What is above the list: the facts, the states, the reasons of failures, and the versions.

const SHORT = 8;  // rows of a panel before "Show all"

function tally(items, keyOf) {
  const counts = new Map();
  for (const item of items) {
    counts.set(keyOf(item), (counts.get(keyOf(item)) ?? 0) + 1);
  }
  return counts;
}

const allPorts = fleet.servers.flatMap(server => server.ports);
const serversByState = tally(fleet.servers, server => server.state);
const portsByState = tally(allPorts, port => port.state);

function drawFacts() {
  const facts = [`${counted(fleet.servers.length, "server")}, ${counted(portCount, "port")}`];
  if (times.length) {
    facts.push(oldest === newest ? `report of ${timeText(newest)}` : `reports from ${timeText(oldest)} to ${timeText(newest)}`);
  }
  const old = fleet.servers.filter(daysBehind).length;
  if (old) {
    facts.push(`${number(old)} more than a day older than the newest`);
  }
  facts.push(`page made ${timeText(fleet.created)} by ${fleet.program}`);
  find("facts").append(...facts.map(fact => make("span", {}, fact)));
  document.title = `Firmware report: ${counted(fleet.servers.length, "server")}`;
}

function drawBanner() {
  const previews = fleet.servers.filter(server => server.preview).length;
  find("preview").append(make("strong", {}, "Preview: nothing was written. "), onlyPreviews ?
    "The page shows what the roll-out would do." :
    `This holds for ${counted(previews, "server")} of ${number(fleet.servers.length)}, marked "Preview" in the list.`);
  find("preview").hidden = !fleet.preview;
}

function drawBar(word, counts, total) {
  const states = fleet.states.filter(state => counts.has(state.name));
  const text = states.map(state => `${number(counts.get(state.name))} ${state.word.toLowerCase()}`).join(", ");
  const bar = make("div", { class: "bar", role: "img", "aria-label": `${word} by state: ${text || "none"}` });
  for (const { name, word: stateName } of states) {
    const part = make("span", { class: name, title: `${stateName}: ${number(counts.get(name))} of ${number(total)}` });
    part.style.flexGrow = counts.get(name);
    bar.append(part);
  }
  find("bars").append(make("span", { class: "label", "aria-hidden": "true" }, word), bar);
}

// A button of a state: a filter that is on or off.
function stateButton(set, name, ...content) {
  const element = button({ "aria-pressed": "false" }, () => {
    if (!set().delete(name)) {
      set().add(name);
    }
    changed(true);
  }, ...content);
  element.update = () => element.setAttribute("aria-pressed", set().has(name));
  return element;
}

const stateButtons = [];

// Failed is always there: that nothing failed is news, too.
function drawStates() {
  for (const { name, word } of fleet.states) {
    const servers = serversByState.get(name) ?? 0;
    const ports = portsByState.get(name) ?? 0;
    if (!servers && !ports && name !== "failed") {
      continue;
    }
    const serverButton = stateButton(() => view.states, name, stateWord(name), " ",
      make("strong", {}, number(servers)), " ", make("span", {}, servers === 1 ? "server" : "servers"));
    const item = make("li", { class: servers || ports ? name : "none" }, serverButton);
    stateButtons.push(serverButton);
    if (ports) {
      const portButton = stateButton(() => view.portStates, name,
        make("span", { class: "unseen" }, `${word} `), counted(ports, "port"));
      item.append(portButton);
      stateButtons.push(portButton);
    }
    find("states").append(item);
  }
}

function only(values) {
  view.only = values;
  changed(true);
  find("list").scrollIntoView();
}

// A panel's table; long ones are cut until the reader asks for all.
function drawPanel(id, headings, rows) {
  const rest = rows.slice(SHORT);
  rest.forEach(row => row.classList.add("rest"));
  const panel = find(id);
  panel.append(make("table", {}, make("thead", {}, make("tr", {},
    ...headings.map(heading => make("th", { scope: "col" }, heading)))), make("tbody", {}, ...rows)));
  if (rest.length) {
    const more = button({ class: "more", "aria-expanded": "false" }, () => {
      const all = panel.classList.toggle("all");
      more.setAttribute("aria-expanded", all);
      more.textContent = all ? "Show fewer" : `Show all ${number(rows.length)}`;
    }, `Show all ${number(rows.length)}`);
    panel.append(more);
  }
  panel.hidden = false;
}

function drawReasons() {
  const reasons = new Map();
  for (const server of fleet.servers) {
    for (const [reason, ports] of server.failures) {
      const row = reasons.get(reason) ?? reasons.set(reason, { servers: 0, ports: 0 }).get(reason);
      row.servers += 1;
      row.ports += ports.length;
    }
  }
  const rows = [...reasons].sort(([, a], [, b]) => b.servers - a.servers || b.ports - a.ports)
    .map(([reason, { servers, ports }]) => make("tr", {},
      make("th", { scope: "row" }, button({}, () => only({ reason }), foreign(reason || "no reason given"))),
      make("td", {}, number(servers)), make("td", {}, number(ports))));
  if (rows.length) {
    drawPanel("reasons", ["Reason", "Servers", "Ports"], rows);
  }
}

// How many ports of each model run, or ran, each version.
function versionCounts() {
  const models = new Map();
  const count = (model, version, side) => {
    const versions = models.get(model) ?? models.set(model, new Map()).get(model);
    const row = versions.get(version) ?? versions.set(version, { before: 0, after: 0 }).get(version);
    row[side] += 1;
  };
  for (const port of allPorts) {
    count(port.model, port.before || UNKNOWN, "before");
    count(port.model, port.after, "after");
  }
  return models;
}

// Queries alone know no version before.
function drawVersions() {
  const sides = allPorts.some(port => port.before) ? ["before", "after"] : ["after"];
  const ordered = map => [...map].sort(([a], [b]) => byName.compare(a, b));
  const cell = (model, version, side, value) => make("td", {}, value ?
    button({ "aria-label": `${model} ${version} ${ONLY_WORDS[side]}: ${counted(value, "port")}` },
      () => only({ model, [side]: version }), number(value)) : "0");
  const rows = ordered(versionCounts()).flatMap(([model, versions]) => ordered(versions)
    .filter(([, counts]) => sides.some(side => counts[side]))
    .map(([version, counts], place) => make("tr", { class: place ? "same" : "first" },
      make("th", { scope: "row" }, foreign(model)), make("td", {}, foreign(version)),
      ...sides.map(side => cell(model, version, side, counts[side])))));
  if (rows.length) {
    drawPanel("versions", ["Model", "Firmware", ...sides.map(side => ONLY_WORDS[side])], rows);
  }
}

function drawLegend() {
  find("legend").append(make("dl", {}, ...fleet.states.flatMap(({ name, meaning }) =>
    [make("dt", {}, stateWord(name)), make("dd", {}, meaning)])));
}
