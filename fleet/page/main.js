// The parts together.

function drawFilters() {
  find("filters").replaceChildren(...Object.entries(view.only).map(([key, value]) => {
    const label = `${ONLY_WORDS[key]}: `;
    const chip = button({ class: "chip" }, () => {
      delete view.only[key];
      changed(true);
      find("search").focus();
    }, label, foreign(value || "no reason given"), make("span", { "aria-hidden": "true" }, " \u00d7"));
    chip.setAttribute("aria-label", `Remove the filter ${label}${value}`);
    return chip;
  }));
}

// Draws all that depends on the view.
function draw() {
  drawList();
  drawFilters();
  stateButtons.forEach(element => element.update());
  const filtered = isFiltered();
  const ports = shown.reduce((sum, server) => sum + (server.ports.length && server.found.length), 0);
  setText(find("count"), filtered ?
    `${number(shown.length)} of ${counted(fleet.servers.length, "server")}, ${number(ports)} of ${counted(portCount, "port")}` :
    `${counted(fleet.servers.length, "server")}, ${counted(portCount, "port")}`);
  find("reset").hidden = !filtered;
  find("copy").disabled = find("save").disabled = !shown.length;
  drawOpenAll();
}

// `step`: whether the browser's back button undoes it.
function changed(step) {
  draw();
  writeAddress(step);
}

const OPEN_AT_ONCE = 100;  // servers; their names are in the address

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
setTimeout(() => allPorts.forEach(textOfPort), 500);
