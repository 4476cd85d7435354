// Which servers and ports are shown, and in which order.

// What the reader asked for. The address holds the same.
const view = {
  query: "",
  states: new Set(), // of servers
  portStates: new Set(),
  only: {}, // exact values of a line: reason, model, before, after
  sort: "state",
  descending: false,
  open: new Set(), // names of servers
};

const AFTER = onlyPreviews ? "Planned" : fleet.preview ? "Now or planned" : "Now";
const ONLY_WORDS = { reason: "Reason", model: "Model", before: "Before", after: AFTER };

const ONLY_MATCHES = {
  reason: (line, server, reason) =>
    server.failures.get(reason) ? FAILURES.has(line.state) && line.reason === reason : server.failures.has(reason),
  model: (line, _, model) => line.model === model,
  before: (line, server, version) => line !== server && (line.before || UNKNOWN) === version,
  after: (line, _, version) => line.after === version,
};

// Words, and phrases in quotation marks. A quotation mark without its second one reaches to the end.
function wordsOf(query) {
  return Array.from(query.toLowerCase().matchAll(/"([^"]*)"?|([^\s"]+)/g), ([, phrase, word]) => phrase ?? word).filter(
    word => word.trim(),
  );
}

const isFiltered = () =>
  Boolean(view.query.trim() || view.states.size || view.portStates.size || Object.keys(view.only).length);

// The lines of one server that match. Words of the server's own need not be in each line.
function linesFound(server, words, only) {
  if (view.states.size && !view.states.has(server.state)) {
    return [];
  }
  const missing = words.filter(word => !textOfServer(server).includes(word));
  return server.lines.filter(
    line =>
      (!view.portStates.size || (line !== server && view.portStates.has(line.state))) &&
      only.every(([key, value]) => ONLY_MATCHES[key](line, server, value)) &&
      (!missing.length || (line !== server && missing.every(word => textOfPort(line).includes(word)))),
  );
}

// Columns that can be sorted by. A key of null comes last in both directions.
const COLUMNS = [
  { key: "name", word: "Server", of: server => server.name },
  { key: "state", word: "State", of: server => server.rank },
  { key: "reason", word: "Reason", of: server => server.reason || null },
  { key: "ports", word: "Ports", of: server => server.ports.length },
  { key: "models", word: "Models", of: server => server.models || null },
  { key: "code", word: "Code", of: server => server.code },
  { key: "time", word: "Report", of: server => server.time },
];

const inNameOrder = [...fleet.servers].sort((a, b) => byName.compare(a.name, b.name));

// The places of the values in their order. Many servers share a value, and comparing texts takes time.
function placesOf(values) {
  const compare = (a, b) => (typeof a === "number" ? a - b : byName.compare(a, b));
  const different = [...new Set(values)].filter(value => value !== null).sort(compare);
  return new Map(different.map((value, place) => [value, place]));
}

function sortServers(key, descending) {
  const { of } = COLUMNS.find(column => column.key === key);
  const places = placesOf(inNameOrder.map(of));
  const sign = descending ? -1 : 1;
  return inNameOrder
    .map(server => ({ server, place: places.get(of(server)) ?? sign * Infinity }))
    .sort((a, b) => (a.place === b.place ? 0 : sign * (a.place - b.place)))
    .map(({ server }) => server);
}

// All servers in one order; the orders are kept, since a filter changes none.
const orders = new Map();

function serversInOrder() {
  const key = (view.descending ? "-" : "") + view.sort;
  if (!orders.has(key)) {
    orders.set(key, sortServers(view.sort, view.descending));
  }
  return orders.get(key);
}

// The servers to show in their order. Each one's `found` holds its lines that match.
function serversShown() {
  const words = wordsOf(view.query);
  const only = Object.entries(view.only);
  const filtered = isFiltered();
  return serversInOrder().filter(server => {
    server.found = filtered ? linesFound(server, words, only) : server.lines;
    return server.found.length > 0;
  });
}
