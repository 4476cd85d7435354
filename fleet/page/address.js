// The view in the page's address, so that a link shows the same.

function addressOf() {
  const parameters = new URLSearchParams();
  const add = (key, value) => {
    if (value) {
      parameters.append(key, value);
    }
  };
  add("q", view.query.trim());
  add("state", [...view.states].join(","));
  add("port", [...view.portStates].join(","));
  Object.entries(view.only).forEach(([key, value]) => parameters.append(key, value));
  add("sort", view.sort === "state" && !view.descending ? "" : (view.descending ? "-" : "") + view.sort);
  view.open.forEach(name => parameters.append("open", name));
  return `#${parameters}`;
}

// An address can come from anywhere: what the page does not know is left out.
function readAddress() {
  const parameters = new URLSearchParams(location.hash.slice(1));
  const states = key => new Set((parameters.get(key) ?? "").split(",").filter(name => stateNamed.has(name)));
  const [, minus, sort] = /^(-?)(.*)$/s.exec(parameters.get("sort") ?? "");
  const known = COLUMNS.some(column => column.key === sort);
  view.query = parameters.get("q") ?? "";
  view.states = states("state");
  view.portStates = states("port");
  view.only = Object.fromEntries(
    Object.keys(ONLY_WORDS)
      .filter(key => parameters.has(key))
      .map(key => [key, parameters.get(key)]),
  );
  view.sort = known ? sort : "state";
  view.descending = known && minus === "-";
  view.open = new Set(parameters.getAll("open"));
}

let pendingAddress = 0;

// A filter is a step that the reader can go back from. Typing, sorting and opening only correct the address, and a
// little later, since browsers limit how often that may happen.
function writeAddress(step) {
  clearTimeout(pendingAddress);
  if (step) {
    history.pushState(null, "", addressOf());
  } else {
    pendingAddress = setTimeout(() => history.replaceState(null, "", addressOf()), 300);
  }
}
