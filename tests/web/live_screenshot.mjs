// Pictures of the page of a service: live_screenshot.mjs URL FOLDER
import { mkdirSync } from 'node:fs';
import { launch, open, paintAll } from './browser.mjs';

const [url, folder] = process.argv.slice(2);
mkdirSync(folder, { recursive: true });
const browser = await launch();
for (const [width, height] of [[1400, 900], [390, 844]]) {
  for (const colorScheme of ['light', 'dark']) {
    const { context, page, problems } = await open(browser, url, { viewport: { width, height }, colorScheme });
    await page.waitForFunction(() => window.orsolva.page.view.shown.minutes !== null);
    await page.locator('#station .control select').first().selectOption('day');
    await paintAll(page);
    await page.screenshot({ path: `${folder}/live-${width}-${colorScheme}.png`, fullPage: true });
    if (problems.length > 0) console.error(problems);
    await context.close();
  }
}
await browser.close();
