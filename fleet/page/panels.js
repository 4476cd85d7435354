// The two tables above the list. Their numbers and reasons are filters.

const SHORT = 8; // rows before "Show all"

// A number or a text that shows the lines with exactly these values.
function filterButton(values, attributes, ...content) {
  const filter = () => {
    view.only = values;
    changed(true);
    find("list").scrollIntoView();
  };
  return button(attributes, filter, ...content);
}

function drawPanel(id, words, rows) {
  const panel = find(id);
  panel.hidden = rows.length === 0;
  panel.append(
    makeTable(
      {},
      words.map(word => heading(word)),
      rows,
    ),
  );
  rows.slice(SHORT).forEach(made => made.classList.add("rest"));
  if (rows.length > SHORT) {
    panel.append(moreButton(panel, `Show all ${number(rows.length)}`));
  }
}

function moreButton(panel, text) {
  const more = button(
    { class: "more", "aria-expanded": "false" },
    () => {
      const all = panel.classList.toggle("all");
      more.setAttribute("aria-expanded", all);
      more.textContent = all ? "Show fewer" : text;
    },
    text,
  );
  return more;
}

function drawReasons() {
  const reasons = new Map();
  for (const server of fleet.servers) {
    for (const [reason, ports] of server.failures) {
      const counts = reasons.get(reason) ?? reasons.set(reason, { servers: 0, ports: 0 }).get(reason);
      counts.servers += 1;
      counts.ports += ports;
    }
  }
  const rows = [...reasons]
    .sort(([, a], [, b]) => b.servers - a.servers || b.ports - a.ports)
    .map(([reason, { servers, ports }]) => {
      const name = filterButton({ reason }, {}, foreign(reason || "no reason given"));
      return row(rowHeading(name), cell(number(servers)), cell(number(ports)));
    });
  drawPanel("reasons", ["Reason", "Servers", "Ports"], rows);
}

// How many ports of each model ran each version before, and after.
function versionCounts() {
  const models = new Map();
  const count = (model, version, side) => {
    const versions = models.get(model) ?? models.set(model, new Map()).get(model);
    const counts = versions.get(version) ?? versions.set(version, { before: 0, after: 0 }).get(version);
    counts[side] += 1;
  };
  for (const port of allPorts) {
    count(port.model, port.before || UNKNOWN, "before");
    count(port.model, port.after, "after");
  }
  return models;
}

function versionCell(model, version, side, count) {
  if (!count) {
    return cell("0");
  }
  const label = `${model} ${version} ${ONLY_WORDS[side]}: ${counted(count, "port")}`;
  return cell(filterButton({ model, [side]: version }, { "aria-label": label }, number(count)));
}

// The rows of one model; all but the first leave its name to the screen reader.
function modelRows(model, versions, sides) {
  return inOrder(versions)
    .filter(([, counts]) => sides.some(side => counts[side]))
    .map(([version, counts], place) => {
      const cells = sides.map(side => versionCell(model, version, side, counts[side]));
      const made = row(rowHeading(foreign(model)), cell(foreign(version)), ...cells);
      made.className = place ? "same" : "first";
      return made;
    });
}

const inOrder = map => [...map].sort(([a], [b]) => byName.compare(a, b));

// Queries alone know no version before.
function drawVersions() {
  const sides = allPorts.some(port => port.before) ? ["before", "after"] : ["after"];
  const rows = inOrder(versionCounts()).flatMap(([model, versions]) => modelRows(model, versions, sides));
  drawPanel("versions", ["Model", "Firmware", ...sides.map(side => ONLY_WORDS[side])], rows);
}
