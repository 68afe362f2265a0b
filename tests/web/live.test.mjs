// The page of the service in the machine's Chromium, over a server of made stations (LIVE_SERVER).
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { after, before, test } from 'node:test';
import { createInterface } from 'node:readline';
import { launch, open, paintAll } from './browser.mjs';

let browser;
let server;
let url;

async function serve() {
  const child = spawn(process.env.LIVE_SERVER, [], { stdio: ['pipe', 'pipe', 'inherit'] });
  const address = await new Promise((resolve) => createInterface({ input: child.stdout }).once('line', resolve));
  return { child, address };
}

before(async () => {
  browser = await launch();
  const { child, address } = await serve();
  server = child;
  url = address;
});

after(async () => {
  server.stdin.end();
  await browser.close();
});

/** The page with the state of all stations and the figures of one. */
async function openLive(hash = '', options = {}) {
  const opened = await open(browser, url + hash, options);
  await opened.page.waitForFunction(() => window.orsolva.page.network !== null && window.orsolva.page.view.shown.minutes !== null);
  return opened;
}

test('stations come worst first, each with what is wrong', async () => {
  const { context, page, problems } = await openLive();
  const names = await page.locator('#stations tbody th a').allTextContents();
  assert.deepEqual([names.slice(0, 2), names.slice(3)], [['WETZ', 'GONE'], ['BERN', 'NEWB']]);
  const states = await page.locator('#stations tbody td .state').allTextContents();
  assert.deepEqual(states, ['Bad', 'Bad', 'Warning', 'Good', 'Starting']);
  assert.match(await page.locator('#stations tbody tr').first().textContent(), /SNR drop \(G 1\), Latency/);
  assert.match(await page.locator('#alarms').textContent(), /6\.2 dB below.*look for a transmitter nearby/);
  assert.deepEqual(problems, []);
  await context.close();
});

test('nothing of a stream is read as markup, and nothing is asked of another host', async () => {
  const { context, page, problems, requests } = await openLive();
  await page.locator('#stations tbody a').nth(2).click();
  await page.waitForFunction(() => document.querySelector('#station h2').textContent.startsWith('</script>'));
  await page.waitForFunction(() => window.orsolva.page.view.shown.minutes !== null);
  await paintAll(page);
  assert.equal(await page.evaluate(() => window.hacked), undefined);
  assert.equal(await page.locator('img, b').count(), 0);
  assert.deepEqual(requests.filter((r) => !r.startsWith(url) && !r.startsWith('data:')), []);
  assert.deepEqual(problems, []);
  await context.close();
});

test('the plots show the last hour and the last day', async () => {
  const { context, page, problems } = await openLive('#station=BERN');
  await paintAll(page);
  const points = () => page.locator('#live-completeness').getAttribute('data-points').then(Number);
  const hour = await points();
  assert.ok(hour >= 59 && hour <= 60, `${hour} minutes`);
  await page.locator('#station .control select').first().selectOption('day');
  const day = await points();
  // 30 minutes of the day are lost and have no figure.
  assert.ok(day >= 1409 && day <= 1410, `${day} minutes`);
  assert.ok(Number(await page.locator('#live-snr').getAttribute('data-points')) >= 5 * 1409);
  await page.locator('#station .control select').nth(1).selectOption('G');
  assert.equal(Number(await page.locator('#live-snr').getAttribute('data-points')), 2 * day);
  assert.deepEqual(problems, []);
  await context.close();
});

test('figures without values are dashes', async () => {
  const { context, page } = await openLive('#station=NEWB');
  await page.waitForFunction(() => document.querySelector('#station h2').textContent === 'NEWB');
  const row = await page.locator('#stations tbody tr').nth(4).locator('td.number').allTextContents();
  assert.deepEqual(new Set(row), new Set(['-']));
  assert.doesNotMatch(await page.locator('#station .facts').textContent(), /NaN|undefined|null/);
  await context.close();
});

test('an event is there as soon as it happens', async () => {
  const { context, page } = await openLive();
  const before = await page.locator('#events .event').count();
  assert.equal(before, 4);
  server.stdin.write('event\n');
  await page.waitForFunction((n) => document.querySelectorAll('#events .event').length > n, before, { timeout: 5000 });
  assert.match(await page.locator('#events .event').first().textContent(), /BERN.*raised CRC errors.*4\.1 %/s);
  await context.close();
});

test('the positions are on the map, and no figure asks for room that a phone has not', async () => {
  const { context, page, problems } = await openLive('', { viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true });
  await paintAll(page);
  assert.equal(await page.locator('#map').getAttribute('data-points'), '4');
  const width = await page.evaluate(() => document.documentElement.scrollWidth);
  assert.ok(width <= 390, `${width} pixels`);
  assert.deepEqual(problems, []);
  await context.close();
});

test('a service that stops is said to, with the time of what is shown', async () => {
  const { child, address } = await serve();
  const { context, page } = await open(browser, address);
  await page.waitForFunction(() => window.orsolva.page.network !== null);
  const ended = new Promise((resolve) => child.once('exit', resolve));
  child.stdin.end();
  await ended;
  await page.waitForSelector('.warning:not([hidden])', { timeout: 15000 });
  assert.match(await page.locator('.warning').last().textContent(), /does not answer.*\d{4}-\d\d-\d\d \d\d:\d\d:\d\d UTC/);
  await context.close();
});
