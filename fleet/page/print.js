// On paper: the summary, and a row for each server shown that needs attention, with its ports that do. The rest of a
// fleet would be a hundred pages, and is in the CSV file.

const PRINTED = 400;  // servers

function paperRows(server) {
  const lines = server.found.filter(line => ATTENTION.has(line.state));
  const row = (name, line) => make("tr", {}, make("th", { scope: "row" }, foreign(name)),
    make("td", {}, stateWord(line.state)), make("td", {}, foreign(line.wwn ?? "")), make("td", {}, foreign(line.model ?? "")),
    make("td", {}, foreign(line.before ?? "")), make("td", {}, foreign(line.image ?? "")), make("td", {}, foreign(line.now ?? "")),
    make("td", {}, foreign(line.reason || line.message || "")));
  return (lines.length ? lines : [server]).map((line, place) => row(place ? "" : server.name, line));
}

function filterText() {
  const parts = [view.query.trim() && `search ${view.query.trim()}`,
    view.states.size && `servers ${[...view.states].map(wordOf).join(", ").toLowerCase()}`,
    view.portStates.size && `ports ${[...view.portStates].map(wordOf).join(", ").toLowerCase()}`,
    ...Object.entries(view.only).map(([key, value]) => `${ONLY_WORDS[key].toLowerCase()} ${value}`)];
  return parts.filter(part => part).join("; ");
}

function makePaper() {
  const servers = shown.filter(server => ATTENTION.has(server.state));
  const rest = servers.length - PRINTED;
  const content = [make("h2", {}, servers.length ? `${counted(servers.length, "server")} that need${servers.length === 1 ? "s" : ""} attention` :
    "No server needs attention")];
  if (isFiltered()) {
    content.push(make("p", {}, `Of ${counted(shown.length, "server")} that match: `, foreign(filterText())));
  }
  if (servers.length) {
    const headings = ["Server", "State", "WWN", "Model", "Before", "Image", "Now", "Reason"];
    content.push(make("table", {}, make("thead", {}, make("tr", {}, ...headings.map(word => make("th", { scope: "col" }, word)))),
      ...servers.slice(0, PRINTED).map(server => make("tbody", {}, ...paperRows(server)))));
  }
  if (rest > 0) {
    content.push(make("p", {}, `${counted(rest, "more server")} need attention; "Save as CSV" on the page has them all.`));
  }
  find("paper").replaceChildren(...content);
}

addEventListener("beforeprint", makePaper);
addEventListener("afterprint", () => find("paper").replaceChildren());
