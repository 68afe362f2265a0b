// Pictures of a report or an index: screenshot.mjs PAGE.html FOLDER
import { mkdirSync } from 'node:fs';
import { resolve } from 'node:path';
import { launch, open, paintAll } from './browser.mjs';

const [report, folder] = process.argv.slice(2).map((path) => resolve(path));
mkdirSync(folder, { recursive: true });
const browser = await launch();
const shots = {
  light: { colorScheme: 'light' },
  dark: { colorScheme: 'dark' },
  phone: { colorScheme: 'light', viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true },
};
for (const [name, options] of Object.entries(shots)) {
  const { context, page } = await open(browser, report, options);
  await paintAll(page);
  await page.screenshot({ path: `${folder}/${name}.png`, fullPage: true });
  await page.screenshot({ path: `${folder}/${name}-top.png` });
  if (name === 'light') await page.pdf({ path: `${folder}/print.pdf`, format: 'A4' });
  await context.close();
}
await browser.close();
