// What the reader takes along: names, a CSV file, and paper.

const CSV_COLUMNS = {
  server: server => server.name,
  server_state: server => server.state,
  return_code: server => server.code,
  wwn: (_, port) => port.wwn,
  model: (_, port) => port.model,
  pci: (_, port) => port.pci,
  state: (_, port) => port.state,
  status: (_, port) => port.status,
  version_before: (_, port) => port.before,
  version_image: (_, port) => port.image,
  image_file: (_, port) => port.file,
  version_now: (_, port) => port.now,
  message: (server, port) => port.reason || port.message || (server.ports.length ? "" : server.reason),
};

// A spreadsheet takes a text that begins like a formula for one; an apostrophe keeps it a text. Some split rows at
// semicolons. A minus sign of a number is just that.
function csvField(value) {
  const text = typeof value === "string" ? value.replaceAll(/(^|;)"*(?=[=+@-])/g, "$&'") : String(value ?? "");
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

function csvOfShown() {
  const rows = [Object.keys(CSV_COLUMNS)];
  for (const server of shown) {
    for (const line of server.found) {
      rows.push(Object.values(CSV_COLUMNS).map(of => of(server, line === server ? {} : line)));
    }
  }
  return rows.map(row => `${row.map(csvField).join(",")}\r\n`).join("");
}

let doneTimer = 0;

// Says what a button did, and takes it back after a while.
function say(text) {
  clearTimeout(doneTimer);
  find("done").textContent = text;
  doneTimer = setTimeout(() => {
    find("done").textContent = "";
  }, 6000);
}

function saveCsv() {
  const link = make("a", { download: "fleet.csv" });
  link.href = URL.createObjectURL(new Blob([csvOfShown()], { type: "text/csv;charset=utf-8" }));
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
  say(`Saved the ports of ${counted(shown.length, "server")} as fleet.csv.`);
}

// For browsers that give a page from disk no clipboard.
function copyBySelection(text) {
  const area = make("textarea", { class: "unseen", "aria-hidden": "true" });
  area.value = text;
  document.body.append(area);
  area.select();
  const copied = document.execCommand("copy");
  area.remove();
  find("copy").focus();
  return copied;
}

async function copyNames() {
  const text = shown.map(server => `${server.name}\n`).join("");
  let copied = true;
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    copied = copyBySelection(text);
  }
  say(copied ? `Copied ${counted(shown.length, "name")}.` : "This browser does not let the page copy.");
}
