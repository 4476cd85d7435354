// What is above the list: the facts, the states, and what they mean.

const allPorts = fleet.servers.flatMap(server => server.ports);
const serversByState = tally(fleet.servers, server => server.state);
const portsByState = tally(allPorts, port => port.state);

function drawFacts() {
  const facts = [`${counted(fleet.servers.length, "server")}, ${counted(portCount, "port")}`];
  if (times.length) {
    const [from, to] = [timeText(oldest), timeText(newest)];
    facts.push(from === to ? `reports of ${to}` : `reports from ${from} to ${to}`);
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
  const [title, text] = onlyPreviews
    ? ["Preview: nothing was written.", "The page shows what the roll-out would do."]
    : ["Preview: where a server would update, nothing was written.", "The list marks these servers."];
  find("preview").append(make("strong", {}, title), " ", text);
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

const stateButtons = [];

// A button of a state: a filter that is on or off. `key` names the view's set of states.
function stateButton(key, name, ...content) {
  const toggleState = () => {
    if (!view[key].delete(name)) {
      view[key].add(name);
    }
    changed(true);
  };
  const element = button({ "aria-pressed": "false" }, toggleState, ...content);
  stateButtons.push({ element, isOn: () => view[key].has(name) });
  return element;
}

function drawState({ name, word }) {
  const servers = serversByState.get(name) ?? 0;
  const ports = portsByState.get(name) ?? 0;
  const count = make("strong", {}, number(servers));
  const unit = make("span", {}, servers === 1 ? "server" : "servers");
  const item = make("li", { class: servers || ports ? name : "none" });
  item.append(stateButton("states", name, stateWord(name), " ", count, " ", unit));
  if (ports) {
    item.append(stateButton("portStates", name, make("span", { class: "unseen" }, `${word} `), counted(ports, "port")));
  }
  find("states").append(item);
}

// Failed is always there: that nothing failed is news, too.
function drawStates() {
  const isShown = ({ name }) => name === "failed" || serversByState.has(name) || portsByState.has(name);
  const states = fleet.states.filter(isShown);
  states.forEach(drawState);
  find("states").style.setProperty("--states", states.length);
}

function drawLegend() {
  const rows = fleet.states.flatMap(({ name, meaning }) => [make("dt", {}, stateWord(name)), make("dd", {}, meaning)]);
  find("legend").append(make("dl", {}, ...rows));
}
