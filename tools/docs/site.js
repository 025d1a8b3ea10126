// The search in the head of each page, and the octets of the tree's element under the pointer.
"use strict";
const root = document.documentElement.dataset.root;
const input = document.getElementById("search"), found = document.getElementById("found");
let chosen = -1;

// [rank, name, address, what it is]: names that begin so first, then those that have it inside, the short ones ahead.
function search(words) {
  const hits = [];
  const rank = (name, whole) => {
    const lower = name.toLowerCase(), at = lower.replace(/^(zyn|asn)/, "").startsWith(words) || lower.startsWith(words);
    if (lower === words) return 0;
    if (at) return 1 + name.length / 1000;
    return lower.includes(words) ? 2 + name.length / 1000 : whole.toLowerCase().includes(words) ? 4 : -1;
  };
  for (const [name, address, what] of zynEntries) {
    const place = rank(name, what);
    if (place >= 0) hits.push([place, name, address, what]);
  }
  for (const name in zynFields) {
    const place = rank(name, "");
    if (place < 0) continue;
    for (const number of zynFields[name]) {
      hits.push([place + 0.5, name, `records/${zynTypes[number]}.html#field-${name}`, `field of ${zynTypes[number]}`]);
    }
  }
  return hits.sort((one, other) => one[0] - other[0]).slice(0, 40);
}

function show() {
  const words = input.value.trim().toLowerCase();
  chosen = -1;
  found.replaceChildren();
  for (const [, name, address, what] of words ? search(words) : []) {
    const line = document.createElement("li"), link = document.createElement("a"), strong = document.createElement("b");
    link.href = root + address;
    strong.textContent = name;
    link.append(strong, " ", Object.assign(document.createElement("small"), { textContent: what }));
    line.append(link);
    found.append(line);
  }
  if (words && !found.children.length) found.append(Object.assign(document.createElement("li"), { textContent: "nothing" }));
  found.hidden = !words;
}

input.addEventListener("input", show);
input.addEventListener("focus", show);
input.addEventListener("keydown", (event) => {
  const lines = found.querySelectorAll("a");
  if (event.key === "Escape") { found.hidden = true; input.blur(); }
  if (event.key === "Enter" && lines.length) lines[Math.max(chosen, 0)].click();
  if (event.key !== "ArrowDown" && event.key !== "ArrowUp") return;
  event.preventDefault();
  if (chosen >= 0) lines[chosen].parentNode.classList.remove("chosen");
  chosen = Math.min(Math.max(chosen + (event.key === "ArrowDown" ? 1 : -1), 0), lines.length - 1);
  if (chosen >= 0) { lines[chosen].parentNode.classList.add("chosen"); lines[chosen].scrollIntoView({ block: "nearest" }); }
});
document.addEventListener("click", (event) => { if (!event.target.closest(".search")) found.hidden = true; });
document.addEventListener("keydown", (event) => {
  if (event.key === "/" && document.activeElement.tagName !== "INPUT") { event.preventDefault(); input.focus(); }
});

for (const example of document.querySelectorAll(".example")) {
  const block = example.querySelector(".octets"), plain = block.innerHTML, octets = example.dataset.octets.split(" ");
  const part = (from, to, name) => (to > from ? `<span class="${name}">${octets.slice(from, to).join(" ")}</span> ` : "");
  const point = (row) => {
    const from = +row.dataset.from, middle = from + +row.dataset.head, to = +row.dataset.to;
    block.innerHTML = octets.slice(0, from).join(" ") + (from ? " " : "") + part(from, middle, "head") + part(middle, to, "content") +
      octets.slice(to).join(" ");
  };
  for (const row of example.querySelectorAll(".tree tr")) {
    row.addEventListener("mouseenter", () => point(row));
    row.addEventListener("click", () => point(row));
  }
  example.querySelector(".tree").addEventListener("mouseleave", () => { block.innerHTML = plain; });
}
