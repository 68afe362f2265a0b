// The HTML report in a browser: what is drawn, what hovering says, themes, paper, keyboard, size, hostile names.
//
// usage: node --test page.test.mjs, with REPORT (a page), REPORT_JSON and REPORT_SERIES (the same run's --json
// --sats and --series), DEMO and DEMO_TRUTH (a page of simulated data and their truth) and HOSTILE (a page of a file with markup in its name
// and header) in the environment; see run.sh.
import assert from 'node:assert/strict';
import { readFileSync, statSync } from 'node:fs';
import { after, before, describe, it } from 'node:test';
import { launch, open, paintAll } from './browser.mjs';

const REPORT = process.env.REPORT;
const HOSTILE = process.env.HOSTILE;
const DEMO = process.env.DEMO;
const json = JSON.parse(readFileSync(process.env.REPORT_JSON, 'utf8'));
const [columns, ...lines] = readFileSync(process.env.REPORT_SERIES, 'utf8').trim().split('\n').map((line) => line.split(','));
/** The table of figures over time; '' is no value. */
const series = lines.map((line) => Object.fromEntries(columns.map((name, i) => [name, line[i]])));
const MOST_BYTES = 6e6;
const MOST_S = 2;

let browser;
before(async () => {
  browser = await launch();
});
after(async () => {
  await browser.close();
});

const showAll = (page) => page.evaluate(() => window.orsolva.figures.forEach((figure) => figure.show()));
/** Only these: every choice draws again what is shown. */
const show = (page, ...ids) =>
  page.evaluate((wanted) => window.orsolva.figures.filter((f) => wanted.includes(f.element.id)).forEach((f) => f.show()), ids);
const points = (page, id) => page.locator(`#${id}`).getAttribute('data-points').then(Number);

async function choose(page, signal, satellite = '*') {
  await page.evaluate(([g, s]) => window.orsolva.selection.set(g, s), [signal, satellite]);
}

/** Moves the pointer onto a value of a chart and reads what appears. */
async function hover(page, id, finder) {
  await page.locator(`#${id} .chart`).scrollIntoViewIfNeeded();
  const at = await page.evaluate(
    ([figureId, x, y]) => {
      const figure = window.orsolva.figures.find((f) => f.element.id === figureId);
      return figure.chart.convertToPixel({ xAxisIndex: 0, yAxisIndex: 0 }, [x, y]);
    },
    [id, finder.x, finder.y],
  );
  const box = await page.locator(`#${id} .chart`).boundingBox();
  await page.mouse.move(box.x + at[0] - 3, box.y + at[1] + 3);
  await page.mouse.move(box.x + at[0], box.y + at[1] + (finder.down ?? 0), { steps: 3 });
  const tip = page.locator(`#${id} .tip`);
  await tip.waitFor({ timeout: 5000 });
  return tip.innerText();
}

describe('page', () => {
  it('opens with less than two seconds of work', async () => {
    const { context, page } = await open(browser, 'about:blank');
    // Time of the page's own thread, whatever else the machine does.
    const session = await context.newCDPSession(page);
    await session.send('Performance.enable', { timeDomain: 'threadTicks' });
    await page.goto(`file://${REPORT}`);
    await page.waitForFunction(() => window.orsolva !== undefined);
    const { metrics } = await session.send('Performance.getMetrics');
    const seconds = metrics.find((m) => m.name === 'TaskDuration').value;
    assert.ok(seconds > 0 && seconds < MOST_S, `${seconds} s`);
    await context.close();
  });

  it('is small, asks for nothing and says nothing on the console', async () => {
    assert.ok(statSync(REPORT).size < MOST_BYTES, `${statSync(REPORT).size} bytes`);
    const { context, page, problems, requests } = await open(browser, REPORT);
    await paintAll(page);
    assert.deepEqual(problems, []);
    assert.equal(requests.length, 1);
    await context.close();
  });

  it('names the marker, the worst signal and the tables', async () => {
    const { context, page } = await open(browser, REPORT);
    assert.equal(await page.locator('h1').innerText(), json.run.marker);
    const rms = (s) => s.multipath_moving_rms_m;
    const worst = json.analysis.signals.filter((s) => rms(s) !== null).reduce((a, b) => (rms(b) > rms(a) ? b : a));
    const hints = await page.locator('.hints').innerText();
    assert.ok(hints.includes(`Most multipath: ${worst.letter} ${worst.signal}`), hints);
    assert.ok(hints.includes(rms(worst).toFixed(3)), hints);
    for (const caption of ['Systems', 'Signals', 'Satellites', 'Slips and restarts']) {
      assert.equal(await page.locator('caption', { hasText: new RegExp(`^${caption}$`) }).count(), 1, caption);
    }
    for (const [caption, rows] of [
      ['Systems of the analysis', json.analysis.systems],
      ['Signals of the analysis', json.analysis.signals],
    ]) {
      const table = page.locator('table', { has: page.locator('caption', { hasText: new RegExp(`^${caption}$`) }) });
      assert.equal(await table.locator('tbody tr').count(), rows.length, caption);
    }
    const events = page.locator('table', { has: page.locator('caption', { hasText: /^Events of the analysis$/ }) });
    assert.ok((await events.locator('tbody tr').count()) > 0);
    await context.close();
  });
});

describe('headline and findings', () => {
  it('are those of the report, in its order', async () => {
    const { context, page } = await open(browser, REPORT);
    const tiles = (await page.locator('.tiles').innerText()).replaceAll('\n', ' ').replaceAll('\u202f', '');
    const { headline } = json;
    assert.equal(await page.locator('.verdict-line').innerText(), `Verdict: ${json.verdict.grade} \u2013 ${json.verdict.text}`);
    for (const [name, value] of [
      ['Completeness', `${(100 * headline.cutoff_completeness_ratio).toFixed(2)} %`],
      ['Cycle slips', headline.cycle_slips],
      ['MP1 of GPS', `${headline.gps_mp1_rms_m.toFixed(3)} m`],
      ['MP2 of GPS', `${headline.gps_mp2_rms_m.toFixed(3)} m`],
      ['Epochs', headline.present_epochs],
      ['Epochs missing', headline.missing_epochs],
      ['Satellites observed', headline.satellites_tracked],
    ]) {
      assert.ok(tiles.includes(`${name} ${value}`), `${name} ${value}: ${tiles}`);
    }
    const found = await page.locator('.hints li > div').allInnerTexts();
    assert.ok(found.length > 0);
    assert.deepEqual(found.map((text) => text.replace(/\n+/, ' ')), json.findings.map((f) => `${f.title} ${f.text}`));
    await context.close();
  });

  it('are on the first screen: the verdict, wide or narrow', async () => {
    for (const viewport of [{ width: 1400, height: 900 }, { width: 390, height: 844 }]) {
      const { context, page } = await open(browser, DEMO, { viewport });
      const box = await page.locator('.verdict-line').boundingBox();
      assert.ok(box.y + box.height < viewport.height && box.x + box.width <= viewport.width, JSON.stringify(box));
      const said = await page.locator('.verdict-line').innerText();
      const description = await page.locator('meta[name=description]').getAttribute('content');
      assert.equal(description, `${await page.locator('h1').innerText()}: ${said.replace('Verdict: ', '').replace(' \u2013 ', ' - ')}`);
      // No tile leaves a hole at the end of its row.
      const tiles = await page.locator('.tile').evaluateAll((all) => all.map((t) => Math.round(t.getBoundingClientRect().right)));
      assert.equal(tiles.at(-1), Math.max(...tiles));
      await context.close();
    }
  });

  it('lead to the plot or table that shows them', async () => {
    const { context, page, problems } = await open(browser, REPORT);
    for (const show of await page.locator('.hints button').all()) await show.click();
    assert.deepEqual(problems, []);
    await context.close();
  });
});

describe('demo day', () => {
  it('names the satellites with injected slips and code jumps, and no others', async () => {
    const truth = JSON.parse(readFileSync(process.env.DEMO_TRUTH, 'utf8'));
    const injected = (kind) => new Set(truth.faults.filter((f) => f.kind === kind && f.shows_in_the_data).map((f) => f.satellite));
    const { context, page } = await open(browser, process.env.DEMO);
    const named = async (title) => {
      const text = await page.locator('.hints li', { hasText: title }).first().innerText();
      return new Set(text.match(/\b[GRECJ]\d\d\b/g));
    };
    assert.deepEqual([...(await named('cycle slip'))].sort(), [...injected('slip')].sort());
    const jumped = await page.evaluate(() => window.orsolva.detail.satellites.filter((s) => s.codeJumps > 0).map((s) => s.name));
    assert.deepEqual(jumped.sort(), [...injected('code_jump')].sort());
    const missing = await page.locator('.hints li > div', { hasText: 'epochs missing' }).first().innerText();
    // Epochs that are there without any satellite are missing, too.
    assert.ok(Number.parseInt(missing, 10) >= truth.missing_epochs, missing);
    await context.close();
  });

  it('carries every point within its size', async () => {
    assert.ok(statSync(process.env.DEMO).size < MOST_BYTES, `${statSync(process.env.DEMO).size} bytes`);
    const { context, page } = await open(browser, process.env.DEMO);
    assert.equal(await page.evaluate(() => window.orsolva.detail.stride), 1);
    await context.close();
  });
});

describe('plots', () => {
  it('draw as many multipath points as values enter the RMS of each signal', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'multipath');
    assert.equal(await page.evaluate(() => window.orsolva.detail.stride), 1);
    for (const s of json.library.signals.filter((s) => s.mp_values !== null)) {
      await choose(page, `${s.letter} ${s.signal}`);
      assert.equal(await points(page, 'multipath'), s.mp_values, `${s.letter} ${s.signal}`);
    }
    await context.close();
  });

  it('give the RMS of the report from the points they draw', async () => {
    const { context, page } = await open(browser, REPORT);
    for (const s of json.library.signals.filter((s) => s.mp_values !== null)) {
      const rms = await page.evaluate(([letter, name]) => {
        let sum = 0;
        let count = 0;
        for (const satellite of window.orsolva.detail.satellites.filter((x) => x.letter === letter)) {
          const signal = satellite.signals.find((x) => x.signal === name);
          for (const r of signal?.mp ?? []) {
            if (Number.isNaN(r)) continue;
            sum += r * r;
            ++count;
          }
        }
        return Math.sqrt(sum / count);
      }, [s.letter, s.signal]);
      // Residuals are kept to 1 mm.
      assert.ok(Math.abs(rms - s.mp_rms_m) < 1e-3, `${s.letter} ${s.signal}: ${rms}`);
    }
    await context.close();
  });

  it('show the phase-minus-geometry slips that the report counts', async () => {
    const { context, page } = await open(browser, REPORT);
    for (const s of json.library.signals.filter((s) => s.phase_geometry_slip_epochs !== null)) {
      const count = await page.evaluate(
        ([letter, name]) =>
          window.orsolva.detail.events.filter(
            (e) =>
              e.satellite[0] === letter &&
              e.signals.includes(name) &&
              ['geometry', 'data_gap', 'new_ephemeris'].includes(e.kind),
          ).length,
        [s.letter, s.signal],
      );
      assert.equal(count, s.phase_geometry_slip_epochs, `${s.letter} ${s.signal}`);
    }
    await context.close();
  });

  it('draw a bar for every signal with a figure', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'multipath-bars', 'completeness');
    const { signals, satellites } = json.analysis;
    assert.equal(await points(page, 'multipath-bars'), signals.filter((s) => s.multipath_moving_rms_m !== null).length);
    const complete = signals.filter((s) => s.cutoff_completeness_ratio !== null);
    assert.ok(['7Q', '8Q'].every((name) => complete.some((s) => s.letter === 'E' && s.signal === name)));
    assert.equal(await points(page, 'completeness'), complete.length);
    await page.locator('#completeness select').selectOption('satellite');
    assert.equal(await points(page, 'completeness'), satellites.filter((s) => s.cutoff_completeness_ratio !== null).length);
    await context.close();
  });

  it('draw only the satellite chosen, and all kinds of colour', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'sky');
    await page.locator('#sky select').selectOption('system');
    const all = await points(page, 'sky');
    const name = await page.evaluate(() => window.orsolva.detail.satellites[0].name);
    await page.locator('.selection select').nth(1).selectOption(name);
    const rows = await page.evaluate(() => window.orsolva.detail.satellites[0].rows);
    const one = await points(page, 'sky');
    assert.ok(one > 0 && one <= rows && rows < all, `${one} of ${rows} of ${all}`);
    await page.locator('#sky select').selectOption('mp');
    assert.ok((await points(page, 'sky')) > 0);
    await context.close();
  });

  it('say the value of the report under the pointer', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'multipath-bars');
    const bars = json.analysis.signals.filter((s) => s.multipath_moving_rms_m !== null);
    const place = Math.floor(bars.length / 2);
    const text = await hover(page, 'multipath-bars', { x: place, y: bars[place].multipath_moving_rms_m / 2 });
    assert.ok(text.includes(`${bars[place].letter} ${bars[place].signal}`), text);
    assert.ok(text.includes(`${bars[place].multipath_moving_rms_m.toFixed(3)} m`), text);
    await context.close();
  });

  it('say the values of a point under the pointer', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'snr');
    const name = await page.evaluate(() => window.orsolva.detail.satellites[0].name);
    await choose(page, '*', name);
    const wanted = await page.evaluate(() => {
      const { satellite, signal } = window.orsolva.selection.shown()[0];
      let row = 0;
      for (let i = 0; i < satellite.rows; ++i) if (signal.snr[i] > 0 && satellite.elevation[i] > satellite.elevation[row]) row = i;
      return { x: satellite.elevation[row], y: signal.snr[row] };
    });
    const text = await hover(page, 'snr', wanted);
    const lines = text.replaceAll('\n', ' ');
    const time = /\d\d:\d\d:\d\d/.exec(lines)[0];
    // Neighbours lie on top of each other: what is said must be true of the epoch that is named.
    const truth = await page.evaluate((clock) => {
      const { satellite, signal } = window.orsolva.selection.shown()[0];
      for (let i = 0; i < satellite.rows; ++i) {
        if (new Date(satellite.time[i]).toISOString().slice(11, 19) === clock) {
          return [`${satellite.elevation[i].toFixed(1)}\u00b0`, `${signal.snr[i].toFixed(2)} dB-Hz`];
        }
      }
      return ['no such epoch'];
    }, time);
    for (const value of [name, ...truth]) assert.ok(lines.includes(value), `${value}: ${lines}`);
    await context.close();
  });

  it('zoom by buttons and come back', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'snr');
    const shown = () =>
      page.evaluate(() => {
        const zoom = window.orsolva.figures.find((f) => f.element.id === 'snr').chart.getOption().dataZoom[0];
        return Math.round(zoom.end - zoom.start);
      });
    assert.equal(await shown(), 100);
    await page.locator('#snr').getByRole('button', { name: /^Zoom in/ }).click();
    assert.equal(await shown(), 50);
    await page.locator('#snr').getByRole('button', { name: /^Reset zoom/ }).click();
    assert.equal(await shown(), 100);
    await context.close();
  });

  it('are saved as PNG and SVG', async () => {
    const { context, page } = await open(browser, REPORT);
    await choose(page, '*', await page.evaluate(() => window.orsolva.detail.satellites[0].name));
    for (const [kind, start] of [['PNG', '\x89PNG'], ['SVG', '<svg']]) {
      const waiting = page.waitForEvent('download');
      await page.locator('#snr').getByRole('button', { name: `Save as ${kind}` }).click();
      const file = await (await waiting).path();
      assert.equal(readFileSync(file, 'latin1').slice(0, 4), start, kind);
    }
    await context.close();
  });
});

describe('plots over time', () => {
  it('draw every bin of the table of figures over time', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'snr-time', 'multipath-time');
    assert.equal(await page.evaluate(() => window.orsolva.series.bin), 300_000);
    for (const { letter, signal } of json.analysis.signals) {
      await choose(page, `${letter} ${signal}`);
      const rows = series.filter((r) => r.system === letter && r.satellite !== '' && r.signal === signal);
      assert.equal(await points(page, 'snr-time'), rows.filter((r) => r.snr_dbhz !== '').length, `${letter} ${signal}`);
      assert.equal(await points(page, 'multipath-time'), rows.filter((r) => r.multipath_m !== '').length, `${letter} ${signal}`);
    }
    await choose(page, '*');
    await show(page, 'roti-time', 'position-scatter', 'position-time', 'clock-time');
    assert.equal(await points(page, 'roti-time'), series.filter((r) => r.roti_tecu_per_min !== '').length);
    const solved = series.filter((r) => r.system === '' && r.east_m !== '').length;
    assert.ok(solved > 280, `${solved}`);
    assert.equal(await points(page, 'position-scatter'), solved);
    assert.equal(await points(page, 'position-time'), 3 * solved);
    assert.equal(await points(page, 'clock-time'), solved);
    await context.close();
  });

  it('have a row per signal of a chosen satellite', async () => {
    const { context, page } = await open(browser, REPORT);
    await choose(page, '*', 'E11');
    await show(page, 'snr-time');
    const rows = series.filter((r) => r.satellite === 'E11' && r.snr_dbhz !== '');
    assert.ok(new Set(rows.map((r) => r.signal)).size > 3);
    assert.equal(await points(page, 'snr-time'), rows.length);
    await context.close();
  });

  it('say the value of the table under the pointer', async () => {
    const { context, page } = await open(browser, REPORT);
    await show(page, 'position-time');
    const station = series.filter((r) => r.system === '');
    const place = Math.floor(station.length / 2);
    const x = Date.parse(`${station[place].time_gpst.replace(' ', 'T')}Z`) + 150_000;
    const text = await hover(page, 'position-time', { x, y: Number(station[place].up_m) });
    assert.ok(text.includes(`${Number(station[place].up_m).toFixed(2)} m`), text);
    assert.ok(text.includes(station[place].time_gpst.slice(11, 16)), text);
    await context.close();
  });

  it('mark slips, gaps and events of the receiver, each of them', async () => {
    const { context, page } = await open(browser, process.env.DEMO);
    await showAll(page);
    const marked = await page.evaluate(() =>
      window.orsolva.figures
        .filter((f) => f.element.closest('#over-time') !== null && f.element.id !== 'position-scatter')
        .map((f) => [f.element.id, f.chart.getOption().series.map((s) => s.name)]),
    );
    assert.equal(marked.length, 8);
    const { receiver_clock_resets, code_clock_jumps } = await page.evaluate(() => window.orsolva.report.analysis);
    for (const [id, names] of marked) {
      assert.ok(names.includes('Data gap'), `${id}: ${names}`);
      if (receiver_clock_resets + code_clock_jumps > 0) assert.ok(names.includes('Receiver event'), `${id}: ${names}`);
      if (id !== 'availability') assert.ok(names.some((name) => /^Slips?$/.test(name)), `${id}: ${names}`);
    }
    await context.close();
  });
});

describe('layout', () => {
  it('leads with findings, then time, then the analysis, and the library last', async () => {
    const { context, page } = await open(browser, REPORT);
    const ids = await page.locator('main > section').evaluateAll((all) => all.map((s) => s.id));
    assert.deepEqual(ids, ['look-first', 'over-time', 'analysis', 'sky-elevation', 'library', 'notes']);
    const facts = (await page.locator('.facts').innerText()).replaceAll('\n', ' ');
    assert.ok(facts.includes(`RINEX ${json.run.rinex_version.toFixed(2)}`), facts);
    assert.ok(facts.includes(json.library.run.position_ecef_m.map((x) => x.toFixed(1)).join(', ')), facts);
    assert.match(facts, /Coverage orbits of \d+ of \d+ satellites observed/);
    await context.close();
  });

  it('has no hole beside a plot', async () => {
    const { context, page } = await open(browser, REPORT);
    const rows = await page.evaluate(() =>
      [...document.querySelectorAll('.figures')].flatMap((grid) => {
        const widths = new Map();
        for (const card of grid.children) {
          const { top, width } = card.getBoundingClientRect();
          widths.set(Math.round(top), (widths.get(Math.round(top)) ?? 0) + width);
        }
        return [...widths.values()].map((width) => width / grid.clientWidth);
      }),
    );
    assert.ok(rows.length > 5);
    for (const part of rows) assert.ok(part > 0.97, `${rows}`);
    await context.close();
  });
});

describe('themes and paper', () => {
  it('follow the system and the button', async () => {
    for (const [colorScheme, other] of [['light', 'dark'], ['dark', 'light']]) {
      const { context, page } = await open(browser, REPORT, { colorScheme });
      const back = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
      assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), colorScheme);
      const first = await back();
      await page.locator('#theme').click();
      assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), other);
      assert.notEqual(await back(), first);
      await context.close();
    }
  });

  it('print every plot, in light, from the dark', async () => {
    const { context, page, problems } = await open(browser, REPORT, { colorScheme: 'dark' });
    const pdf = await page.pdf({ format: 'A4' });
    assert.equal(pdf.subarray(0, 5).toString(), '%PDF-');
    assert.ok(pdf.length > 50_000, `${pdf.length} bytes`);
    const drawn = await page.evaluate(() => window.orsolva.figures.filter((f) => f.chart !== null).length);
    assert.equal(drawn, await page.evaluate(() => window.orsolva.figures.length));
    assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), 'dark');
    assert.deepEqual(problems, []);
    await context.close();
  });

  it('paint every plot whole before the paper is taken', async () => {
    const { context, page } = await open(browser, REPORT);
    await paintAll(page);
    const marks = (where) =>
      page.evaluate((selector) => {
        if (selector === '.still') dispatchEvent(new Event('beforeprint'));
        return window.orsolva.figures.map((figure) => {
          let count = 0;
          for (const canvas of figure.element.querySelectorAll(selector)) {
            const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
            for (let i = 3; i < data.length; i += 4) if (data[i] > 0) ++count;
          }
          return count / figure.chart.getWidth() / figure.chart.getHeight();
        });
      }, where);
    const paper = await marks('.still');
    await page.evaluate(() => dispatchEvent(new Event('afterprint')));
    assert.equal(await page.locator('.still').count(), 0);
    // Share of the area with ink: every plot has lines, letters and its points.
    for (const share of paper) assert.ok(share > 0.05, `${paper}`);
    await context.close();
  });

  it('fit a phone without scrolling sideways', async () => {
    const { context, page } = await open(browser, REPORT, { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true });
    await showAll(page);
    assert.ok((await page.evaluate(() => document.documentElement.scrollWidth)) <= 360);
    await context.close();
  });
});

describe('keyboard and screen readers', () => {
  it('sort tables by every column with the keyboard', async () => {
    const { context, page } = await open(browser, REPORT);
    const table = page.locator('table', { has: page.locator('caption', { hasText: /^Satellites$/ }) });
    const head = table.locator('th', { hasText: 'Expected' });
    await head.locator('button').focus();
    await page.keyboard.press('Enter');
    assert.equal(await head.getAttribute('aria-sort'), 'descending');
    const most = Math.max(...json.library.satellites.map((s) => s.expected_epochs ?? 0));
    const cell = () => table.locator('tbody tr').first().locator('td').nth(1).innerText();
    assert.equal((await cell()).replace(/\D/g, ''), String(most));
    await page.keyboard.press('Enter');
    assert.equal(await head.getAttribute('aria-sort'), 'ascending');
    const least = Math.min(...json.library.satellites.map((s) => s.expected_epochs ?? Infinity));
    assert.equal((await cell()).replace(/\D/g, ''), String(least));
    await context.close();
  });

  it('have names for every control, one h1, headers in every table and a text for every plot', async () => {
    const { context, page } = await open(browser, REPORT);
    await showAll(page);
    const faults = await page.evaluate(() => {
      const found = [];
      if (document.querySelectorAll('h1').length !== 1) found.push('h1');
      for (const b of document.querySelectorAll('button')) {
        if (!(b.getAttribute('aria-label') || b.textContent.trim())) found.push(b.outerHTML);
      }
      for (const s of document.querySelectorAll('select')) if (!s.closest('label')) found.push(s.outerHTML);
      for (const t of document.querySelectorAll('table')) {
        if (!t.caption || t.querySelectorAll('thead th[scope=col]').length === 0) found.push('table');
        for (const r of t.tBodies[0].rows) if (!r.querySelector('th[scope=row]')) found.push('row');
      }
      for (const c of document.querySelectorAll('.chart')) {
        if (c.getAttribute('role') !== 'img' || !c.getAttribute('aria-label')) found.push('chart');
      }
      if (document.querySelector('[tabindex]:not([tabindex="0"]):not([tabindex="-1"])')) found.push('tabindex');
      return found;
    });
    assert.deepEqual(faults, []);
    await page.keyboard.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.className), 'skip');
    await context.close();
  });
});

describe('hostile input', () => {
  it('stays text: markup in file and marker names does nothing', async () => {
    const { context, page, problems, requests } = await open(browser, HOSTILE);
    await showAll(page);
    assert.equal(await page.evaluate(() => window.hacked), undefined);
    assert.equal(await page.evaluate(() => document.querySelectorAll('main img, header img').length), 0);
    const name = await page.locator('h1').innerText();
    assert.ok(name.includes('</script><img'), name);
    assert.ok((await page.locator('.facts').innerText()).includes('<img src=x'), 'file name');
    assert.deepEqual(problems, []);
    assert.equal(requests.length, 1);
    await context.close();
  });
});
