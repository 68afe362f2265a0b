// The index of a run over many files in a browser: rows, order, sorting, links, hostile names, themes, paper, keyboard.
//
// usage: node --test network.test.mjs, with NETWORK (the index; its folder holds the pages and network.csv) and DAYS
// (an index of two stations on two days) in the environment; see run.sh.
import assert from 'node:assert/strict';
import { existsSync, readFileSync, statSync } from 'node:fs';
import { dirname } from 'node:path';
import { after, before, describe, it } from 'node:test';
import { fileURLToPath } from 'node:url';
import { launch, open } from './browser.mjs';

const NETWORK = process.env.NETWORK;
/** Plain fields of network.csv, in which the worst comes first as well. */
const csv = readFileSync(`${dirname(NETWORK)}/network.csv`, 'utf8').trim().split('\n').slice(1).map((line) => line.split(','));
const NAME = 0, STATE = 2, EPOCHS = 7, COMPLETENESS = 15, MP1 = 26;
/** Those with figures, a file that is damaged towards its end among them. */
const judged = csv.filter((row) => row[EPOCHS] !== '');

let browser;
before(async () => {
  browser = await launch();
});
after(async () => {
  await browser.close();
});

const baseName = (path) => path.slice(path.lastIndexOf('/') + 1);
const names = (page) => page.locator('#files tbody th .file > :first-child').allInnerTexts();
const column = (page, i) => page.locator(`#files tbody tr > :nth-child(${i + 1})`).allInnerTexts();
const press = (page, name) => page.locator('#files thead').getByRole('button', { name: new RegExp(`^${name}`) }).click();

describe('index', () => {
  it('has a row per judged file, verdict first and worst first, as the CSV has them', async () => {
    const { context, page, problems, requests } = await open(browser, NETWORK);
    assert.ok(csv.length >= 6);
    assert.deepEqual(await names(page), judged.map((row) => baseName(row[NAME])));
    const words = { ERROR: 'Error', fail: 'Failed', good: 'Good' };
    assert.deepEqual(await column(page, 0), judged.map((row) => words[row[STATE]]));
    assert.deepEqual(new Set(csv.map((row) => row[STATE])), new Set(['ERROR', 'fail', 'good']));
    assert.equal((await page.locator('#files thead th').first().innerText()).split(' ')[0], 'Verdict');
    const percents = judged.map((row) => (row[COMPLETENESS] ? (100 * row[COMPLETENESS]).toFixed(2) : '-'));
    assert.deepEqual(await column(page, 2), percents);
    assert.deepEqual(problems, []);
    assert.equal(requests.length, 1);
    await context.close();
  });

  it('says why a file could not be judged, and counts the states', async () => {
    const { context, page } = await open(browser, NETWORK);
    const causes = page.locator('#failures .cause');
    for (const cause of await causes.all()) await cause.evaluate((details) => (details.open = true));
    const listed = (await page.locator('#failures li').allInnerTexts()).sort();
    assert.deepEqual(listed, csv.filter((row) => !judged.includes(row)).map((row) => baseName(row[NAME])).sort());
    assert.ok((await causes.first().innerText()).includes('found "'), await causes.first().innerText());
    // Files with the same cause are told once.
    assert.ok((await causes.count()) < listed.length, `${await causes.count()} causes of ${listed.length} files`);
    assert.equal(await page.locator('#failures a').count(), 0);
    const tiles = (await page.locator('.tiles').innerText()).replaceAll('\n', ' ');
    for (const [tile, state] of [['Errors', 'ERROR'], ['Failed', 'fail'], ['Good', 'good']]) {
      const count = csv.filter((row) => row[STATE] === state).length;
      assert.ok(tiles.includes(`${tile} ${count}`), `${tile} ${count}: ${tiles}`);
    }
    await context.close();
  });

  it('leads from every judged file to a page that is there', async () => {
    const { context, page, problems } = await open(browser, NETWORK);
    const links = page.locator('#files tbody a');
    assert.deepEqual(await links.allInnerTexts(), judged.map((row) => baseName(row[NAME])));
    for (const href of await links.evaluateAll((all) => all.map((a) => [a.getAttribute('href'), a.href]))) {
      assert.match(href[0], /^[A-Za-z0-9%._~/-]+$/);
      assert.ok(existsSync(fileURLToPath(href[1])), href[1]);
    }
    for (const name of judged.map((row) => baseName(row[NAME]))) {
      await page.locator('#files tbody').getByRole('link', { name, exact: true }).click();
      await page.waitForFunction(() => window.orsolva?.report !== undefined);
      const file = await page.evaluate(() => window.orsolva.report.run.observation_file);
      assert.equal(baseName(file), name);
      await page.goto(`file://${NETWORK}`);
    }
    assert.deepEqual(problems, []);
    await context.close();
  });

  it('is led back to by every page', async () => {
    const { context, page } = await open(browser, NETWORK);
    for (const link of await page.locator('#files tbody a').evaluateAll((all) => all.map((a) => a.href))) {
      const file = await open(browser, fileURLToPath(link));
      assert.equal(await file.page.locator('#index').evaluate((a) => a.href), page.url(), link);
      await file.context.close();
    }
    await context.close();
  });

  it('names the worst file and what is wrong with it on the first screen, wide or narrow', async () => {
    for (const viewport of [{ width: 1400, height: 900 }, { width: 390, height: 844 }]) {
      const { context, page } = await open(browser, NETWORK, { viewport });
      const line = page.locator('.verdict-line');
      const said = await line.innerText();
      assert.ok(said.startsWith(`Worst: ${baseName(csv[0][NAME])} \u2013 error: `) && said.length > 60, said);
      const box = await line.boundingBox();
      assert.ok(box.y + box.height < viewport.height && box.x + box.width <= viewport.width, JSON.stringify(box));
      const description = await page.locator('meta[name=description]').getAttribute('content');
      assert.ok(description.startsWith(`${csv.length} files, ${csv.filter((row) => row[STATE] === 'ERROR').length} with errors`), description);
      await context.close();
    }
  });

  it('sorts by every column and comes back to the worst first', async () => {
    const { context, page } = await open(browser, NETWORK);
    const first = await names(page);
    const head = (name) => page.locator('#files thead th', { hasText: name });
    assert.equal(await head('Verdict').getAttribute('aria-sort'), 'ascending');
    await press(page, 'MP1 m');
    assert.equal(await head('MP1 m').getAttribute('aria-sort'), 'descending');
    assert.equal(await head('Verdict').getAttribute('aria-sort'), 'none');
    const figures = judged.map((row) => row[MP1]).filter((text) => text !== '').map(Number).sort((a, b) => b - a);
    const missing = judged.length - figures.length;
    assert.deepEqual(await column(page, 3), [...figures.map((x) => x.toFixed(3)), ...Array(missing).fill('-')]);
    await press(page, 'File');
    assert.deepEqual(await names(page), [...first].sort());
    await press(page, 'File');
    assert.deepEqual(await names(page), [...first].sort().reverse());
    await page.locator('#files thead').getByRole('button', { name: 'Verdict' }).focus();
    await page.keyboard.press('Enter');
    assert.deepEqual(await names(page), first);
    await context.close();
  });

  it('narrows the rows to what is searched and to a verdict', async () => {
    const { context, page } = await open(browser, NETWORK);
    const first = await names(page);
    await page.locator('input[type=search]').fill('TWO words');
    assert.deepEqual(await names(page), ['two words.21O']);
    assert.equal(await page.locator('[role=status]').innerText(), `1 of ${first.length} files`);
    await page.locator('input[type=search]').fill('');
    await page.locator('#files .bar select').selectOption('good');
    assert.deepEqual(await names(page), judged.filter((row) => row[STATE] === 'good').map((row) => baseName(row[NAME])));
    await page.locator('#files .bar select').selectOption('*');
    assert.deepEqual(await names(page), first);
    await context.close();
  });

  it('draws a bar for every figure, the longest for the largest', async () => {
    const { context, page } = await open(browser, NETWORK);
    const bars = await page.locator('#files tbody tr > :nth-child(4).measured').evaluateAll((all) => all.map((td) => [Number(td.textContent), parseFloat(td.style.getPropertyValue('--part'))]));
    assert.equal(bars.length, judged.filter((row) => row[MP1] !== '').length);
    const most = Math.max(...bars.map(([value]) => value));
    // Figures are shown to 1 mm.
    for (const [value, part] of bars) assert.ok(Math.abs(part - (100 * value) / most) < 0.4, `${bars}`);
    await context.close();
  });

  it('shows the first figures at 390 pixels without scrolling', async () => {
    const { context, page } = await open(browser, NETWORK, { viewport: { width: 390, height: 844 }, isMobile: true, hasTouch: true });
    const table = await page.locator('#files .scroll').boundingBox();
    for (const place of [3, 4]) {
      const cell = await page.locator(`#files tbody tr:first-child > :nth-child(${place})`).boundingBox();
      assert.ok(cell.x + cell.width <= table.x + table.width, `column ${place} ends at ${cell.x + cell.width}`);
    }
    await context.close();
  });

  it('lists stations by days, each leading to its page', async () => {
    const { context, page, problems } = await open(browser, process.env.DAYS);
    assert.deepEqual(await page.locator('#days thead th').allInnerTexts(), ['Station', '2021-03-19', '2022-06-08']);
    const links = page.locator('#days tbody a');
    assert.equal(await links.count(), 2);
    for (const href of await links.evaluateAll((all) => all.map((a) => a.href))) assert.ok(existsSync(fileURLToPath(href)), href);
    assert.equal(await page.locator('#failures').count(), 0);
    await links.first().click();
    await page.waitForFunction(() => window.orsolva?.report !== undefined);
    assert.deepEqual(problems, []);
    await context.close();
  });

  it('keeps names and errors text, whatever markup or scheme they hold', async () => {
    const { context, page, problems } = await open(browser, NETWORK);
    const text = await page.locator('main').innerText();
    for (const hostile of ['<img src=x onerror=hacked=1>.rnx', 'javascript:hacked=1.rnx', '<script>hacked=1<script>.rnx']) {
      assert.ok(text.includes(hostile), hostile);
    }
    assert.ok(text.includes('"<script>hacked=1</script>"'), 'the error quotes the file');
    assert.equal(await page.locator('main img, main script').count(), 0);
    assert.equal(await page.evaluate(() => window.hacked), undefined);
    assert.ok((await page.locator('a').evaluateAll((all) => all.map((a) => a.protocol))).every((p) => p === 'file:'));
    assert.deepEqual(problems, []);
    await context.close();
  });

  it('is small, light or dark, printable and fit for a phone', async () => {
    assert.ok(statSync(NETWORK).size < 40_000, `${statSync(NETWORK).size} bytes`);
    for (const [colorScheme, other] of [['light', 'dark'], ['dark', 'light']]) {
      const { context, page } = await open(browser, NETWORK, { colorScheme });
      assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), colorScheme);
      await page.locator('#theme').click();
      assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), other);
      assert.equal((await page.pdf({ format: 'A4' })).subarray(0, 5).toString(), '%PDF-');
      assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), other);
      await context.close();
    }
    const phone = await open(browser, NETWORK, { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true });
    assert.ok((await phone.page.evaluate(() => document.documentElement.scrollWidth)) <= 360);
    await phone.context.close();
  });

  it('has names for every control, one h1, headers of columns and rows, and a way past the head', async () => {
    const { context, page } = await open(browser, NETWORK);
    const faults = await page.evaluate(() => {
      const found = [];
      if (document.querySelectorAll('h1').length !== 1) found.push('h1');
      for (const s of document.querySelectorAll('select, input')) if (!s.closest('label')) found.push(s.outerHTML);
      for (const b of document.querySelectorAll('button, a')) if (!b.textContent.trim() && !b.hidden) found.push(b.outerHTML);
      const table = document.querySelector('#files table');
      if (!table.caption || table.querySelectorAll('thead th[scope=col]').length !== table.tHead.rows[0].cells.length) found.push('heads');
      for (const r of table.tBodies[0].rows) if (r.querySelectorAll('th[scope=row]').length !== 1) found.push('row');
      return found;
    });
    assert.deepEqual(faults, []);
    await page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.className), 'skip');
    assert.ok(await page.evaluate(() => document.querySelector(document.activeElement.getAttribute('href')) !== null));
    await context.close();
  });
});
