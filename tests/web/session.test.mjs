// tests/web/session.test.mjs: a whole design session on the servo example through
// `praxa serve`, with the mouse and keyboard in Debian's chromium (headless, driven by
// Playwright): the plug-in's real dialogs, message boxes and plots, then a second tab,
// requests the server must refuse, and Ctrl-C with the settings file left whole.
// PRAXA_EXE names the praxa executable (default: build/praxa); PRAXA_SCREENSHOTS names a
// folder to save screenshots of the page into.
import { test } from "node:test";
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { connect } from "node:net";
import { request } from "node:http";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { chromium } from "playwright-core";

const root = resolve(import.meta.dirname, "../..");
const praxa = process.env.PRAXA_EXE || join(root, "build/praxa");
const screenshots = process.env.PRAXA_SCREENSHOTS;

function startServer(work) {
  const child = spawn(praxa, ["--settings", join(work, "tervan.ini"), "--out", join(work, "out"),
    join(root, "examples/servo.json"), "serve", "--port", "0"], { stdio: ["ignore", "pipe", "inherit"] });
  let output = "";
  const address = new Promise((resolveAddress, reject) => {
    child.stdout.on("data", (chunk) => {
      output += chunk;
      const found = output.match(/http:\/\/127\.0\.0\.1:\d+\//);
      if (found) resolveAddress(found[0]);
    });
    child.on("exit", (code) => reject(new Error(`praxa serve exited with ${code}:\n${output}`)));
  });
  const exited = new Promise((resolveExit) => child.on("exit", (code, signal) => resolveExit({ code, signal })));
  return { child, address, exited, output: () => output };
}

// Sends `text` as it is on one connection and returns the first line of the answer.
function rawRequest(port, text) {
  return new Promise((resolveLine, reject) => {
    const socket = connect(port, "127.0.0.1", () => socket.write(text));
    let answer = "";
    socket.on("data", (chunk) => {
      answer += chunk;
      if (answer.includes("\r\n")) {
        resolveLine(answer.split("\r\n")[0]);
        socket.destroy();
      }
    });
    socket.on("close", () => resolveLine(answer));
    socket.on("error", reject);
  });
}

function getWithHost(port, host) {
  return new Promise((resolveAnswer, reject) => {
    const req = request({ host: "127.0.0.1", port, path: "/", headers: { Host: host } }, (res) => {
      let body = "";
      res.on("data", (chunk) => (body += chunk));
      res.on("end", () => resolveAnswer({ status: res.statusCode, body }));
    });
    req.on("error", reject);
    req.end();
  });
}

// Waits until every input the page sent has been answered and praxa is not busy.
async function settled(page) {
  await page.waitForFunction(() => document.body.dataset.pending === "0" && !document.body.classList.contains("busy"));
}

const control = (dialog, id) => dialog.locator(`[data-control-id="${id}"]`);
// The entries of a list box as drawn: each entry's text, or its parts between tabs joined by tabs.
async function listEntries(dialog, id) {
  await settled(dialog.page());
  await control(dialog, id).waitFor();
  return control(dialog, id).locator(".entry").evaluateAll((rows) =>
    rows.map((row) => [...row.children].map((part) => part.textContent).join("\t")));
}

async function runMenuItem(page, name) {
  await settled(page);
  await page.getByRole("menuitem", { name: "Praxa", exact: true }).click();
  await page.getByRole("menuitem", { name, exact: true }).click();
}

async function plotFiles(page) {
  await settled(page);
  const cards = page.locator("#plots figure");
  const files = {};
  for (const card of await cards.all()) {
    const file = await card.getAttribute("data-plot");
    files[file] = await (await page.request.get(new URL(`/files/${encodeURIComponent(file)}`, page.url()).href)).text();
  }
  return files;
}

async function shoot(page, name) {
  if (screenshots) await page.screenshot({ path: join(screenshots, name), fullPage: true });
}

test("a design session on the servo loop, in the browser", async () => {
  const work = mkdtempSync(join(tmpdir(), "praxa-web-"));
  const server = startServer(work);
  const address = await server.address;
  const port = Number(new URL(address).port);
  const browser = await chromium.launchPersistentContext(join(work, "profile"), {
    executablePath: "/usr/bin/chromium",
    headless: true,
    viewport: { width: 1400, height: 1000 },
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
      "--disable-component-update", "--disable-sync"],
  });
  try {
    const page = await browser.newPage();
    page.setDefaultTimeout(20000);
    await page.goto(address);
    assert.match(page.url(), /\?session=[0-9a-f]{32}$/);
    await assert.doesNotReject(page.getByRole("menuitem", { name: "Praxa", exact: true }).waitFor());
    assert.equal(await page.locator("#diagram-marks").textContent(),
      `${join(root, "examples/servo.json")}: selection ctrl, amp, motor; reference points ctrl.in1, motor.out1`);

    // A click on the amplifier's output port makes it the output point, a second click on
    // the motor's output port makes that the output point again.
    const picked = () => page.locator("#diagram g.port.picked").evaluateAll((ports) => ports.map((p) => p.dataset.point));
    await page.locator("#diagram g.port.picked").first().waitFor();
    assert.deepEqual(await picked(), ["ctrl.in1", "motor.out1"]);
    await page.locator('#diagram g.port[data-point="amp.out1"]').click();
    await settled(page);
    assert.deepEqual(await picked(), ["ctrl.in1", "amp.out1"]);
    await page.locator('#diagram g.port[data-point="motor.out1"]').click();
    await settled(page);
    assert.deepEqual(await picked(), ["ctrl.in1", "motor.out1"]);

    // Transfer Function Info: gain and coefficients, then zeros and poles.
    await runMenuItem(page, "Transfer Function Info");
    let dialog = page.getByRole("dialog", { name: "Transfer Function" });
    assert.equal(await control(dialog, 109).textContent(), "20");
    assert.deepEqual(await listEntries(dialog, 106), ["s^0\t1\t    \t0", "s^1\t0\t    \t10.000000000000002", "s^2\t0\t    \t11", "s^3\t0\t    \t1"]);
    await dialog.getByRole("button", { name: "OK" }).click();
    dialog = page.getByRole("dialog", { name: "Zeros and Poles" });
    assert.deepEqual(await listEntries(dialog, 108), ["(-10,0)", "(-1,0)", "(0,0)"]);
    await page.keyboard.press("Enter");
    await dialog.waitFor({ state: "detached" });
    await settled(page);
    assert.match(await page.locator("#report").textContent(),
      /phase margin\s+31\.71239222 deg at 1\.243673034 rad\/s \(critical\)/, "the report panel gives the exact margins");

    // The frequency range, first with a step count the dialog refuses.
    await runMenuItem(page, "Frequency Range");
    dialog = page.getByRole("dialog", { name: "Bode Frequency Range" });
    await control(dialog, 102).fill("0.01");
    await control(dialog, 103).fill("100");
    await control(dialog, 104).fill("1");
    await control(dialog, 104).press("Enter");
    const message = page.getByRole("alertdialog", { name: "Tervan" });
    assert.equal(await message.locator(".message-text").textContent(), "step count too low");
    await shoot(page, "web-message-box.png");
    await message.getByRole("button", { name: "OK" }).click();
    await message.waitFor({ state: "detached" });
    await control(dialog, 104).fill("200");
    await dialog.getByRole("button", { name: "OK" }).click();
    await dialog.waitFor({ state: "detached" });

    // Bode plots and the margins dialog.
    await runMenuItem(page, "Frequency Response");
    dialog = page.getByRole("dialog", { name: "Phase and Gain Margins" });
    const margins = async () => (await settled(page)) || Promise.all([1032, 1033, 1034, 105].map((id) => control(dialog, id).inputValue()));
    assert.deepEqual(await margins(), ["3.10787", ".188231", "1.23155", "32.0552"]);
    assert.equal(await control(dialog, 105).isDisabled(), true);
    await dialog.getByRole("button", { name: "OK" }).click();
    await page.locator('#plots figure[data-plot^="Bode-Magnitude"] img').waitFor();

    // Root locus.
    await runMenuItem(page, "Root Locus");
    await page.locator('#plots figure[data-plot*="Locus"]').waitFor();
    const before = await plotFiles(page);
    const locusFile = Object.keys(before).find((file) => file.includes("Locus"));
    await shoot(page, "web-session.png");

    // The compensator: a zero at -2, Replot (the plots change while the dialog is open), OK.
    await runMenuItem(page, "Compensator Design");
    const compensator = page.getByRole("dialog", { name: "Compensator Design" });
    await control(compensator, 1021).fill("-2,0");
    await control(compensator, 303).click();
    assert.deepEqual(await listEntries(compensator, 107), ["(-2,0)"]);
    await control(compensator, 302).click();
    dialog = page.getByRole("dialog", { name: "Phase and Gain Margins" });
    assert.deepEqual(await margins(), ["1e+006", "1e+006", "2.24781", "59.6535"]);
    await shoot(page, "web-compensator.png");
    await dialog.getByRole("button", { name: "OK" }).click();
    await dialog.waitFor({ state: "detached" });
    assert.equal(await compensator.isVisible(), true);
    const replotted = await plotFiles(page);
    assert.notEqual(replotted[locusFile], before[locusFile], "the root locus is redrawn by Replot");
    const magnitude = (files) => Object.entries(files).filter(([file]) => file.startsWith("Bode-Magnitude"));
    assert.equal(magnitude(replotted).length, 1, `one Bode magnitude plot: ${Object.keys(replotted)}`);
    assert.notEqual(magnitude(replotted)[0][1], magnitude(before)[0][1], "the Bode magnitude is redrawn by Replot");
    await compensator.getByRole("button", { name: "OK" }).click();
    await compensator.waitFor({ state: "detached" });
    assert.match(await page.locator("#log").textContent(), /\[compensator\] gain 1 zeros \(-2,0\) poles/);

    // A second tab gets the "in use" page; the first keeps the session.
    const second = await browser.newPage();
    const answer = await second.goto(address);
    assert.equal(answer.status(), 409);
    assert.match(await second.locator("#in-use").textContent(), /Another page holds this Praxa session/);
    await second.close();

    // Requests the server refuses, and it goes on serving.
    assert.equal(await rawRequest(port, "NONSENSE\r\n\r\n"), "HTTP/1.1 400 Bad Request");
    assert.deepEqual(await getWithHost(port, "praxa.example:80"),
      { status: 403, body: `Praxa answers requests for 127.0.0.1:${port} only, not for 'praxa.example:80'. Open http://127.0.0.1:${port}/ instead.\n` });
    await runMenuItem(page, "Reuse Plots");
    await page.getByRole("menuitem", { name: "Praxa", exact: true }).click();
    assert.equal(await page.getByRole("menuitemcheckbox", { name: "Reuse Plots" }).getAttribute("aria-checked"), "true");
    await page.keyboard.press("Escape");

    // Ctrl-C with a dialog open: the dialog is cancelled and the settings file stays whole.
    await runMenuItem(page, "Root Locus Options");
    await page.getByRole("dialog", { name: "Root Locus Gain Range" }).waitFor();
    server.child.kill("SIGINT");
    assert.deepEqual(await server.exited, { code: 0, signal: null });
    const settings = readFileSync(join(work, "tervan.ini"), "utf8");
    assert.match(settings, /^\[tervan\]\n/);
    assert.match(settings, /\nfreqSteps=200\nfreqStart=\.01\nfreqStop=100\n/);
    assert.match(server.output(), /\[end\] Root Locus Gain Range: 2\n/);
  } finally {
    await browser.close();
    server.child.kill("SIGKILL");
    rmSync(work, { recursive: true, force: true });
  }
});
