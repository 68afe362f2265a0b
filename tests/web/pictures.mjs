// Pictures for docs/user/html.md: pictures.mjs REPORT.html INDEX.html FOLDER [NAME-SCHEME...]
//
// Made again after a change of the pages, and looked at: at 1400 and at 390 pixels, light and dark.
import { mkdirSync } from 'node:fs';
import { resolve } from 'node:path';
import { launch, open, paintAll } from './browser.mjs';

const [report, index, folder] = process.argv.slice(2, 5).map((path) => resolve(path));
/** Only these, such as page-top-dark; all where none is named. */
const wanted = process.argv.slice(5);
mkdirSync(folder, { recursive: true });
const WIDE = { viewport: { width: 1400, height: 900 }, deviceScaleFactor: 0.75 };
const PHONE = { viewport: { width: 390, height: 844 }, deviceScaleFactor: 0.8, hasTouch: true, isMobile: true };
/** Name, page, window, element at the top of the picture. */
const SHOTS = [
  ['page-top', report, WIDE, 'body'],
  ['page-time', report, WIDE, '#availability'],
  ['page-snr', report, WIDE, '#snr-time'],
  ['page-station', report, WIDE, '#clock-time'],
  ['page-sky', report, WIDE, '#sky'],
  ['page-phone', report, PHONE, 'body'],
  ['page-phone-time', report, PHONE, '#availability'],
  ['index', index, WIDE, 'body'],
  ['index-phone', index, PHONE, 'body'],
];
const browser = await launch();
for (const colorScheme of ['light', 'dark']) {
  for (const [name, file, window, element] of SHOTS) {
    if (wanted.length > 0 && !wanted.includes(`${name}-${colorScheme}`)) continue;
    const { context, page } = await open(browser, file, { ...window, colorScheme });
    if (element !== 'body') await paintAll(page);
    await page.locator(element).first().evaluate((e) => e.scrollIntoView({ block: 'start' }));
    await page.waitForTimeout(500);
    await page.screenshot({ path: `${folder}/${name}-${colorScheme}.png` });
    await context.close();
  }
}
await browser.close();
