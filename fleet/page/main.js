const fleet = JSON.parse(document.getElementById("fleet").textContent);
document.getElementById("page").textContent = `${fleet.servers.length} servers`;
