// The machine's Chromium, with every request but that of the page itself refused and noted.
import { existsSync } from 'node:fs';
import { chromium } from 'playwright-core';

const QUIET = [
  '--no-sandbox',
  '--disable-gpu',
  '--disable-quic',
  '--no-first-run',
  '--disable-background-networking',
  '--disable-component-update',
  '--disable-sync',
];

export async function launch() {
  const executablePath = [process.env.CHROMIUM, '/usr/bin/chromium', '/usr/bin/google-chrome'].find(
    (path) => path && existsSync(path),
  );
  if (!executablePath) throw new Error('no Chromium found; install the package chromium or set CHROMIUM to its path');
  return chromium.launch({ executablePath, headless: true, args: QUIET });
}

/** Opens a file as a reader does, by a double click, or an address of a server. */
export async function open(browser, file, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, acceptDownloads: true, ...options });
  const page = await context.newPage();
  const problems = [];
  const requests = [];
  page.on('console', (message) => {
    if (['error', 'warning'].includes(message.type())) problems.push(message.text());
  });
  page.on('pageerror', (error) => problems.push(String(error)));
  page.on('request', (request) => requests.push(request.url()));
  if (file !== 'about:blank') {
    await page.goto(file.startsWith('http:') ? file : `file://${file}`);
    await page.waitForFunction(() => window.orsolva !== undefined);
  }
  return { context, page, problems, requests };
}

/** Draws every plot and returns when each has painted its last point. */
export async function paintAll(page) {
  await page.evaluate(() => {
    const figures = window.orsolva.figures ?? []; // the index has none
    window.unpainted = new Set(figures);
    for (const figure of figures) {
      figure.show();
      figure.chart.on('finished', () => window.unpainted.delete(figure));
      figure.chart.getZr().refresh(); // a plot that is painted already says so once more
    }
  });
  await page.waitForFunction(() => window.unpainted.size === 0);
}
