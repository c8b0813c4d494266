// web/app.js: the page's side of the session. Sends what the person does (menu commands,
// point clicks, dialog inputs) one at a time to praxa, and shows each state it publishes:
// the menu bar, the diagram's marks, the plots with their data files, the transcript, and
// the dialogs and message boxes (dialogs.js).
import { mnemonicText, renderModal } from "./dialogs.js";

const session = new URLSearchParams(location.search).get("session") || "";
const $ = (id) => document.getElementById(id);
let shown = { sequence: -1 };
let queue = Promise.resolve();
let stopped = false;

function showInUse(message) {
  stopped = true;
  document.body.innerHTML = "";
  const h1 = document.createElement("h1");
  h1.textContent = "Praxa is in use";
  const p = document.createElement("p");
  p.id = "in-use";
  p.textContent = message;
  document.body.append(h1, p);
}

async function request(path, options = {}) {
  const response = await fetch(path, { ...options, headers: { "X-Praxa-Session": session, ...(options.headers || {}) } });
  if (response.status === 409) {
    showInUse((await response.json()).error + " Close the other page, or start another praxa serve.");
    throw new Error("in use");
  }
  if (!response.ok) throw new Error(await response.text());
  return response.json();
}

// Inputs go in order: each waits for the state that follows the one before. The body's
// data-pending tells how many are still on their way.
let pending = 0;
export function send(input) {
  document.body.dataset.pending = ++pending;
  queue = queue
    .then(() => request("/api/input", { method: "POST", body: JSON.stringify(input) }))
    .then(apply)
    .catch((error) => notice(error.message))
    .finally(() => (document.body.dataset.pending = --pending));
  return queue;
}

function notice(text) {
  $("notice").hidden = !text;
  $("notice").textContent = text || "";
}

function renderMenuBar(bar, modal) {
  const nav = $("menu-bar");
  const openMenu = modal ? undefined : nav.querySelector(".menu.open")?.dataset.menu;
  nav.textContent = "";
  for (const popup of bar) {
    const menu = document.createElement("div");
    menu.className = "menu";
    menu.dataset.menu = popup.text;
    const title = document.createElement("button");
    title.type = "button";
    title.setAttribute("role", "menuitem");
    title.disabled = modal;
    mnemonicText(title, popup.text);
    const list = document.createElement("div");
    list.className = "menu-popup";
    list.setAttribute("role", "menu");
    list.hidden = popup.text !== openMenu;
    menu.classList.toggle("open", !list.hidden);
    for (const item of popup.items) {
      if (item.separator) {
        list.append(document.createElement("hr"));
        continue;
      }
      const entry = document.createElement("button");
      entry.type = "button";
      entry.className = "menu-item";
      entry.setAttribute("role", item.checked ? "menuitemcheckbox" : "menuitem");
      if (item.checked) entry.setAttribute("aria-checked", "true");
      entry.dataset.command = item.id;
      entry.disabled = item.grayed;
      const check = document.createElement("span");
      check.className = "check";
      check.textContent = item.checked ? "✓" : "";
      const label = document.createElement("span");
      mnemonicText(label, item.text);
      entry.append(check, label);
      entry.addEventListener("click", () => {
        closeMenus();
        send({ kind: "command", id: item.id });
      });
      list.append(entry);
    }
    if (!popup.items.length) {
      const empty = document.createElement("div");
      empty.className = "menu-empty";
      empty.textContent = "(empty)";
      list.append(empty);
    }
    title.addEventListener("click", (event) => {
      event.stopPropagation();
      const wasOpen = !list.hidden;
      closeMenus();
      list.hidden = wasOpen;
      menu.classList.toggle("open", !wasOpen);
    });
    menu.append(title, list);
    nav.append(menu);
  }
}

function closeMenus() {
  document.querySelectorAll(".menu-popup").forEach((list) => (list.hidden = true));
  document.querySelectorAll(".menu.open").forEach((menu) => menu.classList.remove("open"));
}

let pictureLoaded = false;

async function loadDiagramPicture() {
  pictureLoaded = true;
  const response = await fetch("/diagram.svg");
  if (!response.ok) return;
  $("diagram").innerHTML = await response.text();
  $("diagram").addEventListener("click", (event) => {
    const port = event.target.closest("g.port[data-point]");
    if (port && !shown.busy && !shown.dialogs.length && !shown.messageBox) send({ kind: "point", name: port.dataset.point });
  });
  markDiagram(shown.diagram);
}

function markDiagram(diagram) {
  if (!diagram) return;
  const points = new Set(diagram.points);
  for (const port of document.querySelectorAll("#diagram g.port[data-point]"))
    port.classList.toggle("picked", points.has(port.dataset.point));
  $("diagram-marks").textContent =
    `${diagram.file || "no diagram"}: selection ${diagram.selection.join(", ") || "none"}; ` +
    `reference points ${diagram.points.join(", ") || "none"}`;
}

function renderPlots(plots) {
  $("no-plots").hidden = plots.length > 0;
  const container = $("plots");
  const keep = new Set(plots.map((p) => p.file));
  for (const card of [...container.children]) if (!keep.has(card.dataset.plot)) card.remove();
  for (const plot of plots) {
    let card = [...container.children].find((c) => c.dataset.plot === plot.file);
    if (!card) {
      card = document.createElement("figure");
      card.className = "plot";
      card.dataset.plot = plot.file;
      card.innerHTML = "<h3><span></span><span class=\"downloads\"></span></h3><img alt=\"\">";
      container.append(card);
    }
    card.querySelector("h3 span").textContent = plot.title;
    const downloads = card.querySelector(".downloads");
    downloads.textContent = "";
    for (const [label, file] of [["SVG", plot.file], ["CSV", plot.csv]]) {
      if (!file) continue;
      const link = document.createElement("a");
      link.href = `/files/${encodeURIComponent(file)}`;
      link.download = file;
      link.textContent = label;
      downloads.append(link, " ");
    }
    const image = card.querySelector("img");
    const source = `/files/${encodeURIComponent(plot.file)}?v=${plot.version}`;
    if (card.dataset.version !== String(plot.version)) {
      card.dataset.version = plot.version;
      image.src = source;
      image.alt = plot.title;
    }
  }
}

function apply(state) {
  if (state.sequence < shown.sequence) return;
  const changed = state.sequence !== shown.sequence;
  shown = state;
  document.body.classList.toggle("busy", state.busy);
  $("busy").hidden = !state.busy;
  if (!changed) return;
  notice(state.message);
  const modal = state.dialogs.length > 0 || !!state.messageBox;
  renderMenuBar(state.menuBar, modal || state.busy);
  renderModal($("modal-layer"), state, send);
  $("point-hint").hidden = !state.pointSelection;
  if (!pictureLoaded) loadDiagramPicture();
  markDiagram(state.diagram);
  renderPlots(state.plots);
  // The report panel shows only when this build of praxa makes the report.
  $("report-panel").hidden = state.report === undefined;
  document.querySelector("main").classList.toggle("no-report", state.report === undefined);
  if (state.report !== undefined) $("report").textContent = state.report;
  $("log").textContent = state.log.join("\n");
  document.body.dataset.sequence = state.sequence;
}

// Keeps the page's hold on the session and picks up states published while praxa was busy.
async function poll() {
  while (!stopped) {
    try {
      apply(await request(`/api/state?after=${shown.sequence}`));
    } catch (error) {
      if (stopped) return;
      notice(error.message === "Failed to fetch" ? "praxa is not running any more." : error.message);
      await new Promise((resolve) => setTimeout(resolve, 2000));
    }
  }
}

document.addEventListener("click", closeMenus);
document.addEventListener("keydown", (event) => {
  if (event.key === "Escape") closeMenus();
});
document.body.dataset.pending = 0;
poll();
