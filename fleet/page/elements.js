// Making elements. Text from reports only ever becomes a text node.

const find = id => document.getElementById(id);

// `attributes` holds names and values that this script chose. An attribute with a value of false is left out.
function make(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value !== false) {
      element.setAttribute(name, value);
    }
  }
  element.append(...children);
  return element;
}

// A text of a report: its direction stays inside.
const foreign = text => make("bdi", {}, text);

function button(attributes, action, ...children) {
  const element = make("button", { type: "button", ...attributes }, ...children);
  element.addEventListener("click", action);
  return element;
}

// Rows and tables have their roles spelled out: as cards in a narrow window they would lose them.
const row = (...cells) => make("tr", { role: "row" }, ...cells);
const cell = (...content) => make("td", { role: "cell" }, ...content);
const rowHeading = (...content) => make("th", { role: "rowheader", scope: "row" }, ...content);
const heading = (word, key = false) => make("th", { role: "columnheader", scope: "col", class: key }, word);

function makeTable(attributes, headings, ...groups) {
  const head = make("thead", { role: "rowgroup" }, row(...headings));
  const bodies = groups.map(rows => make("tbody", { role: "rowgroup" }, ...rows));
  return make("table", { role: "table", ...attributes }, head, ...bodies);
}

const stateWord = name => make("span", { class: `word ${name}` }, wordOf(name));

// Sets a text only if it is another one: a live region would read it again.
function setText(element, text) {
  if (element.textContent !== text) {
    element.textContent = text;
  }
}
