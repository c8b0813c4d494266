// web/dialogs.js: draws the open dialogs from their templates (dialog units turned into
// pixels through the template's font, as the windowing system does) and the waiting message
// box, and turns what a person does in them into dialog inputs. A dialog's elements are
// built once and then updated in place, so a click is never lost to a redraw.

const POINTS_TO_PIXELS = 96 / 72;
const SS_TYPE_MASK = 0x3;
const SS_NOPREFIX = 0x80;
const ES_READONLY = 0x800;
const BS_TYPE_MASK = 0xf;
const BS_3STATE_KINDS = [0x5, 0x6];

const built = new Map();    // dialog handle -> { root, parts[], lastText[] }
const fontUnits = new Map();

function cssFont(font) {
  const face = font.face && font.face !== "Helv" ? `"${font.face}", ` : "";
  const size = (font.size || 8) * POINTS_TO_PIXELS;
  return `${size}px ${face}"Liberation Sans", Arial, sans-serif`;
}

// The dialog base units of a font: the average width of the alphabet and the line height.
function baseUnits(font) {
  const css = cssFont(font);
  if (!fontUnits.has(css)) {
    const context = document.createElement("canvas").getContext("2d");
    context.font = css;
    const metrics = context.measureText("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    const width = Math.round(metrics.width / 52);
    const height = Math.ceil(metrics.fontBoundingBoxAscent + metrics.fontBoundingBoxDescent);
    fontUnits.set(css, { x: width, y: height });
  }
  return fontUnits.get(css);
}

// "&Replot" shows R underlined; "&&" is a plain "&".
export function mnemonicText(element, text, noPrefix = false) {
  element.textContent = "";
  if (noPrefix) {
    element.textContent = text;
    return;
  }
  for (let i = 0; i < text.length; ++i) {
    if (text[i] === "&" && i + 1 < text.length) {
      ++i;
      if (text[i] !== "&") {
        const u = document.createElement("u");
        u.textContent = text[i];
        element.append(u);
        continue;
      }
    }
    element.append(text[i]);
  }
}

function placeAt(element, c, units) {
  const px = (v) => Math.round((v * units.x) / 4);
  const py = (v) => Math.round((v * units.y) / 8);
  element.style.left = `${px(c.x)}px`;
  element.style.top = `${py(c.y)}px`;
  element.style.width = `${px(c.cx)}px`;
  element.style.height = `${py(c.cy)}px`;
}

// A list entry: its tab-separated parts start at the list's tab stops (dialog units). A
// single stop repeats; none means every 32 units; past the last of several, every 32 more.
function tabStop(stops, k) {
  if (stops.length <= 1) return (stops[0] || 32) * (k + 1);
  return k < stops.length ? stops[k] : stops[stops.length - 1] + (k - stops.length + 1) * 32;
}

function fillEntry(row, text, tabStops, units) {
  row.textContent = "";
  text.split("\t").forEach((part, k) => {
    const span = document.createElement("span");
    span.textContent = part;
    span.style.left = `${k === 0 ? 2 : Math.round((tabStop(tabStops, k - 1) * units.x) / 4) + 2}px`;
    row.append(span);
  });
}

function buildControl(c, send, handle, units) {
  const action = (verb, extra = {}) => send({ kind: "dialog", dialog: handle, action: verb, control: c.id, ...extra });
  let element;
  switch (c.kind) {
    case "edit": {
      element = document.createElement("input");
      element.type = "text";
      element.spellcheck = false;
      break;
    }
    case "button":
    case "default-button":
      element = document.createElement("button");
      element.type = "button";
      if (c.kind === "default-button") element.classList.add("default");
      element.addEventListener("click", () => action("click"));
      break;
    case "checkbox":
    case "radio": {
      element = document.createElement("label");
      const box = document.createElement("input");
      box.type = c.kind === "radio" ? "radio" : "checkbox";
      const caption = document.createElement("span");
      element.append(box, caption);
      element.addEventListener("click", (event) => {
        event.preventDefault();     // the dialog procedure decides the check state
        if (!box.disabled) action("click");
      });
      break;
    }
    case "groupbox":
      element = document.createElement("fieldset");
      element.append(document.createElement("legend"));
      break;
    case "listbox":
      element = document.createElement("div");
      element.className = "listbox";
      element.setAttribute("role", "listbox");
      element.tabIndex = 0;
      element.addEventListener("click", (event) => {
        const row = event.target.closest(".entry");
        if (row && !element.classList.contains("disabled")) action("select", { index: Number(row.dataset.index) });
      });
      element.addEventListener("keydown", (event) => {
        const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
        const list = current(handle).controls.find((control) => control.id === c.id);
        const index = list ? list.selection + step : NaN;
        if (step && index >= 0 && index < list.items.length) {
          event.preventDefault();
          action("select", { index });
        }
      });
      break;
    default:
      element = document.createElement("div");
      element.className = "static";
      if ((c.style & SS_TYPE_MASK) === 1) element.classList.add("center");
      if ((c.style & SS_TYPE_MASK) === 2) element.classList.add("right");
  }
  element.dataset.controlId = c.id;
  element.dataset.kind = c.kind;
  placeAt(element, c, units);
  return element;
}

function updateControl(part, c, units) {
  const element = part.element;
  element.hidden = !c.visible;
  element.classList.toggle("disabled", !c.enabled);
  switch (c.kind) {
    case "edit":
      element.disabled = !c.enabled;
      element.readOnly = (c.style & ES_READONLY) !== 0;
      // Text the dialog set replaces what is shown; text the person is typing stays.
      if (c.text !== part.serverText) element.value = c.text;
      break;
    case "button":
    case "default-button":
      element.disabled = !c.enabled;
      mnemonicText(element, c.text);
      break;
    case "checkbox":
    case "radio": {
      const box = element.firstChild;
      box.disabled = !c.enabled;
      box.checked = c.check === 1;
      box.indeterminate = c.check === 2 && BS_3STATE_KINDS.includes(c.style & BS_TYPE_MASK);
      mnemonicText(element.lastChild, c.text);
      break;
    }
    case "groupbox":
      mnemonicText(element.firstChild, c.text);
      break;
    case "listbox": {
      const rows = [...element.children];
      c.items.forEach((text, i) => {
        let row = rows[i];
        if (!row) {
          row = document.createElement("div");
          row.className = "entry";
          row.setAttribute("role", "option");
          row.dataset.index = i;
          element.append(row);
        }
        if (row.dataset.text !== text) {
          row.dataset.text = text;
          fillEntry(row, text, c.tabStops, units);
        }
        row.classList.toggle("selected", i === c.selection);
        row.setAttribute("aria-selected", i === c.selection);
      });
      rows.slice(c.items.length).forEach((row) => row.remove());
      break;
    }
    default:
      mnemonicText(element, c.text, (c.style & SS_NOPREFIX) !== 0);
  }
  part.serverText = c.text;
}

function buildDialog(d, send, depth) {
  const units = baseUnits(d.font);
  const root = document.createElement("div");
  root.className = "window dialog";
  root.setAttribute("role", "dialog");
  root.setAttribute("aria-label", d.caption);
  root.dataset.dialog = d.name;
  root.style.left = `${40 + depth * 30 + Math.round((d.x * units.x) / 4)}px`;
  root.style.top = `${30 + depth * 30 + Math.round((d.y * units.y) / 8)}px`;
  const title = document.createElement("div");
  title.className = "window-title";
  const client = document.createElement("div");
  client.className = "client";
  client.style.font = cssFont(d.font);
  client.style.width = `${Math.round((d.cx * units.x) / 4)}px`;
  client.style.height = `${Math.round((d.cy * units.y) / 8)}px`;
  root.append(title, client);

  const parts = d.controls.map((c) => {
    const element = buildControl(c, send, d.handle, units);
    client.append(element);
    return { element, serverText: undefined };
  });
  const commit = (part, c) => {
    if (part.element.value === part.serverText) return;
    part.serverText = part.element.value;
    send({ kind: "dialog", dialog: d.handle, action: "type", control: c.id, text: part.element.value });
  };
  d.controls.forEach((c, i) => {
    const part = parts[i];
    if (c.kind === "edit") {
      part.element.addEventListener("change", () => commit(part, c));
      part.element.addEventListener("keydown", (event) => {
        if (event.key === "Enter") {
          event.preventDefault();
          commit(part, c);
          send({ kind: "dialog", dialog: d.handle, action: "enter" });
        }
      });
    }
    if (c.kind === "edit" || c.kind === "listbox")
      part.element.addEventListener("focus", () => {
        if (current(d.handle).focus !== c.id) send({ kind: "dialog", dialog: d.handle, action: "focus", control: c.id });
      });
  });
  root.addEventListener("keydown", (event) => {
    if (event.key === "Enter" && event.target.tagName !== "BUTTON" && event.target.tagName !== "INPUT")
      send({ kind: "dialog", dialog: d.handle, action: "enter" });
  });
  return { root, title, parts, units, state: d, focused: false };
}

function current(handle) {
  return built.get(handle).state;
}

function focusControl(entry) {
  const d = entry.state;
  const index = d.controls.findIndex((c) => c.id === d.focus);
  const target = index >= 0 ? entry.parts[index].element : entry.root.querySelector("button.default");
  const focusable = target && (target.matches("input, button, .listbox") ? target : target.querySelector("input"));
  if (focusable) focusable.focus();
}

function buildMessageBox(box, send) {
  const root = document.createElement("div");
  root.className = "window message-box";
  root.id = "message-box";
  root.setAttribute("role", "alertdialog");
  root.setAttribute("aria-label", box.caption);
  const title = document.createElement("div");
  title.className = "window-title";
  title.textContent = box.caption;
  const text = document.createElement("div");
  text.className = "message-text";
  text.textContent = box.text;
  const buttons = document.createElement("div");
  buttons.className = "message-buttons";
  for (const b of box.buttons) {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = b.label;
    if (b.answer === box.defaultAnswer) button.classList.add("default");
    button.addEventListener("click", () => send({ kind: "message", answer: b.answer }));
    buttons.append(button);
  }
  root.append(title, text, buttons);
  root.style.left = "50%";
  root.style.top = "30%";
  root.style.transform = "translateX(-50%)";
  return root;
}

// Esc, wherever the focus is: the message box's Cancel (OK when it has only that), else
// the innermost dialog's Esc.
let escape = null;
document.addEventListener("keydown", (event) => {
  if (event.key === "Escape" && escape) {
    event.preventDefault();
    escape();
  }
});

// Shows the dialogs and the message box of a published state in `layer`.
export function renderModal(layer, state, send) {
  const box = state.messageBox;
  const top = state.dialogs.at(-1);
  const escapeAnswer = box && [2, 1].find((answer) => box.buttons.some((b) => b.answer === answer));
  escape = box ? (escapeAnswer ? () => send({ kind: "message", answer: escapeAnswer }) : null)
    : top ? () => send({ kind: "dialog", dialog: top.handle, action: "cancel" }) : null;
  const open = new Set(state.dialogs.map((d) => d.handle));
  for (const [handle, entry] of built)
    if (!open.has(handle)) {
      entry.root.remove();
      built.delete(handle);
    }
  state.dialogs.forEach((d, depth) => {
    let entry = built.get(d.handle);
    if (!entry) {
      entry = buildDialog(d, send, depth);
      built.set(d.handle, entry);
      layer.append(entry.root);
    }
    entry.state = d;
    entry.title.textContent = d.caption;
    entry.root.setAttribute("aria-label", d.caption);
    d.controls.forEach((c, i) => updateControl(entry.parts[i], c, entry.units));
    entry.root.classList.toggle("inactive", depth !== state.dialogs.length - 1 || !!state.messageBox);
  });

  layer.querySelector("#message-box")?.remove();
  if (state.messageBox) {
    const box = buildMessageBox(state.messageBox, send);
    layer.append(box);
    box.querySelector("button.default")?.focus();
  } else {
    const innermost = built.get(top?.handle);
    if (innermost && !innermost.focused) {
      innermost.focused = true;     // the first focus only: later the person moves it
      focusControl(innermost);
    }
  }
  layer.hidden = state.dialogs.length === 0 && !state.messageBox;
}
