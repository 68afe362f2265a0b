// Bundles the pages: script and style of each into one HTML file that holds a mark where its data go.
import { build } from 'esbuild';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const folder = process.argv[2] ?? join(here, 'dist');
const common = { bundle: true, minify: true, write: false, charset: 'ascii', target: ['es2020'], absWorkingDir: here };
const PAGES = [
  { name: 'report.html', page: 'page.html', script: 'main.ts' },
  { name: 'network.html', page: 'network.html', script: 'network.ts' },
  { name: 'live.html', page: 'live.html', script: 'live.ts' },
];

const text = (bundle) => bundle.outputFiles[0].text.trim();
const style = text(await build({ ...common, entryPoints: ['src/style.css'], legalComments: 'none' }));
const notices = readFileSync(join(here, 'THIRD_PARTY.md'), 'utf8').replaceAll('--', '- -');

mkdirSync(folder, { recursive: true });
for (const { name, page, script } of PAGES) {
  const bundle = await build({ ...common, entryPoints: [`src/${script}`], format: 'iife', legalComments: 'none' });
  const html = readFileSync(join(here, 'src', page), 'utf8')
    .replace('<!--NOTICES-->', () => `<!--\n${notices}-->`)
    .replace('/*STYLE*/', () => style)
    .replace('/*SCRIPT*/', () => text(bundle));
  writeFileSync(join(folder, name), html);
  console.log(`${join(folder, name)}: ${html.length} bytes`);
}
