// On paper: the summary, and a row for each server shown that needs attention, with its ports that do. The rest of a
// fleet would be a hundred pages, and is in the CSV file.

const PRINTED = 400; // servers

function paperRow(name, line) {
  const texts = [line.wwn, line.model, line.before, line.image, line.now, line.reason || line.message];
  const cells = texts.map(text => cell(foreign(text ?? "")));
  return row(rowHeading(foreign(name)), cell(stateWord(line.state)), ...cells);
}

function paperRows(server) {
  const lines = server.found.filter(line => ATTENTION.has(line.state));
  const explained = lines.some(line => line.state === server.state);
  return (explained ? lines : [server, ...lines]).map((line, place) => paperRow(place ? "" : server.name, line));
}

function filterText() {
  const parts = [
    view.query.trim() && `search ${view.query.trim()}`,
    view.states.size && `servers ${[...view.states].map(wordOf).join(", ").toLowerCase()}`,
    view.portStates.size && `ports ${[...view.portStates].map(wordOf).join(", ").toLowerCase()}`,
    ...Object.entries(view.only).map(([key, value]) => `${ONLY_WORDS[key].toLowerCase()} ${value}`),
  ];
  return parts.filter(part => part).join("; ");
}

function paperTitle(count) {
  if (!count) {
    return "No server needs attention";
  }
  return count === 1 ? "1 server needs attention" : `${number(count)} servers need attention`;
}

function makePaper() {
  const servers = shown.filter(server => ATTENTION.has(server.state));
  const content = [make("h2", {}, paperTitle(servers.length))];
  if (isFiltered()) {
    content.push(make("p", {}, `Of ${counted(shown.length, "server")} that match: `, foreign(filterText())));
  }
  if (servers.length) {
    const words = ["Server", "State", "WWN", "Model", "Before", "Image", "Now", "Reason"];
    const groups = servers.slice(0, PRINTED).map(paperRows);
    content.push(
      makeTable(
        {},
        words.map(word => heading(word)),
        ...groups,
      ),
    );
  }
  if (servers.length > PRINTED) {
    const rest = number(servers.length - PRINTED);
    content.push(make("p", {}, `${rest} more are not printed. "Save as CSV" on the page saves them all.`));
  }
  find("paper").replaceChildren(...content);
}

addEventListener("beforeprint", makePaper);
