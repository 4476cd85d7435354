// The fleet as the program wrote it, and what follows from it. Nothing here touches the page.

const fleet = JSON.parse(document.getElementById("fleet").textContent);
const byName = new Intl.Collator("en", { numeric: true });
const DAY = 24 * 60 * 60;

fleet.states.forEach((state, rank) => {
  state.rank = rank;
});
const stateNamed = new Map(fleet.states.map(state => [state.name, state]));
const wordOf = name => stateNamed.get(name).word;

const FAILURES = new Set(["failed", "not-installed", "no-report"]);
const ATTENTION = new Set([...FAILURES, "waiting", "not-verified"]);

const UNKNOWN = "not known"; // as a version

// What the port runs when all is done, or would run.
function versionAfter(port) {
  const version =
    port.state === "would-update" ? port.image : ["skipped", "current"].includes(port.state) ? port.before : "";
  return port.now || version || UNKNOWN;
}

function joined(...texts) {
  return texts
    .filter(text => text !== null && text !== "")
    .join("\n")
    .toLowerCase();
}

// How many items have each key.
function tally(items, keyOf) {
  const counts = new Map();
  for (const item of items) {
    counts.set(keyOf(item), (counts.get(keyOf(item)) ?? 0) + 1);
  }
  return counts;
}

// How many ports of a server fail for each reason. That of the whole server, such as its return code, has none.
function failuresOf(server) {
  const failures = new Map(FAILURES.has(server.state) ? server.reasons.map(reason => [reason, 0]) : []);
  for (const port of server.ports.filter(({ state }) => FAILURES.has(state))) {
    failures.set(port.reason, (failures.get(port.reason) ?? 0) + 1);
  }
  return failures;
}

// A line is a port, or a server without ports: what is counted, found, and one row of the CSV file.
for (const server of fleet.servers) {
  server.rank = stateNamed.get(server.state).rank;
  server.models = [...new Set(server.ports.map(port => port.model))].sort(byName.compare).join(", ");
  for (const port of server.ports) {
    port.rank = stateNamed.get(port.state).rank;
    port.after = versionAfter(port);
  }
  server.lines = server.ports.length ? server.ports : [server];
  server.reason = server.reasons.join("; ");
  server.failures = failuresOf(server);
}

// A fleet can hold previews and real runs. A report cannot tell which it is of when no port needed a download.
const EITHER = new Set(["skipped", "current", "listed"]);
const onlyPreviews =
  fleet.preview &&
  fleet.servers.every(server => server.preview || server.ports.every(({ state }) => EITHER.has(state)));
const portCount = fleet.servers.reduce((sum, server) => sum + server.ports.length, 0);
const times = fleet.servers.map(server => server.time).filter(time => time !== null);
const oldest = times.reduce((a, b) => Math.min(a, b), Infinity);
// A file with a time in the future must not make all others look old.
const newest = Math.min(
  times.reduce((a, b) => Math.max(a, b), -Infinity),
  fleet.created,
);

// Whole days by which a report is older than the newest one; 0 for less than a day.
function daysBehind(server) {
  return server.time === null ? 0 : Math.max(0, Math.floor((newest - server.time) / DAY));
}

// What a search looks in. Made when it is first needed.
function textOfServer(server) {
  return (server.text ??= joined(
    server.name,
    wordOf(server.state),
    server.reason,
    server.code === null ? "" : `code ${server.code}`,
    server.reboot ? "reboot needed" : "",
  ));
}

function textOfPort(port) {
  return (port.text ??= joined(
    port.wwn,
    wordOf(port.state),
    port.model,
    port.pci,
    port.before,
    port.image,
    port.file,
    port.now,
    port.reason,
    port.message,
    port.status === null ? "" : `status ${port.status}`,
  ));
}

const number = value => value.toLocaleString("en");
const counted = (value, word) => `${number(value)} ${word}${value === 1 ? "" : "s"}`;

// Local time, as files and logs show it.
function timeText(seconds) {
  const date = new Date(seconds * 1000);
  const two = value => String(value).padStart(2, "0");
  return (
    `${date.getFullYear()}-${two(date.getMonth() + 1)}-${two(date.getDate())} ` +
    `${two(date.getHours())}:${two(date.getMinutes())}`
  );
}
