// The parts together.

function filterChip(key, value) {
  const remove = () => {
    delete view.only[key];
    changed(true);
    find("search").focus();
  };
  const content = [`${ONLY_WORDS[key]}: `, foreign(value || "no reason given")];
  const cross = make("span", { "aria-hidden": "true" }, " \u00d7");
  return button({ class: "chip" }, remove, make("span", { class: "unseen" }, "Remove the filter "), ...content, cross);
}

function countText() {
  const all = [counted(fleet.servers.length, "server"), counted(portCount, "port")];
  const ports = shown.reduce((sum, server) => sum + (server.ports.length && server.found.length), 0);
  return isFiltered() ? `${number(shown.length)} of ${all[0]}, ${number(ports)} of ${all[1]}` : all.join(", ");
}

// Draws all that depends on the view.
function draw() {
  drawList();
  find("filters").replaceChildren(...Object.entries(view.only).map(([key, value]) => filterChip(key, value)));
  stateButtons.forEach(({ element, isOn }) => element.setAttribute("aria-pressed", isOn()));
  setText(find("count"), countText());
  find("reset").hidden = !isFiltered();
  find("copy").disabled = find("save").disabled = !shown.length;
  drawOpenAll();
}

// `step`: whether the browser's back button undoes it.
function changed(step) {
  draw();
  writeAddress(step);
}

const OPEN_AT_ONCE = 100; // servers; their names are in the address

function drawOpenAll() {
  const all = shown.length > 0 && shown.every(server => view.open.has(server.name));
  find("open-all").textContent = all ? "Close all" : "Open all";
  find("open-all").hidden = !all && (shown.length === 0 || shown.length > OPEN_AT_ONCE);
}

find("open-all").addEventListener("click", () => {
  const all = find("open-all").textContent === "Close all";
  view.open = new Set(all ? [] : shown.map(server => server.name));
  changed(false);
});
find("search").addEventListener("input", () => {
  view.query = find("search").value;
  changed(false);
});
find("reset").addEventListener("click", () => {
  Object.assign(view, { query: "", states: new Set(), portStates: new Set(), only: {} });
  find("search").value = "";
  changed(true);
  find("search").focus();
});
find("copy").addEventListener("click", copyNames);
find("save").addEventListener("click", saveCsv);
find("skip").addEventListener("click", event => {
  event.preventDefault();
  table.focus();
});

function drawAddress() {
  readAddress();
  find("search").value = view.query;
  draw();
}

addEventListener("popstate", drawAddress);
drawFacts();
drawBanner();
drawBar("Servers", serversByState, fleet.servers.length);
drawBar("Ports", portsByState, portCount);
drawStates();
drawReasons();
drawVersions();
drawLegend();
drawAddress();
if (fleet.servers.length === 1 && !location.hash) {
  view.open.add(fleet.servers[0].name);
  draw();
}
// The texts that a search needs take a moment: better now than at the first letter.
setTimeout(() => {
  fleet.servers.forEach(textOfServer);
  allPorts.forEach(textOfPort);
}, 500);
