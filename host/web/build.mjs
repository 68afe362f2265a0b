// Bundles the page: script and style into one HTML file that holds a mark where a report's data go.
import { build } from 'esbuild';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const target = process.argv[2] ?? join(here, 'dist', 'report.html');
const common = { bundle: true, minify: true, write: false, charset: 'ascii', target: ['es2020'], absWorkingDir: here };

const script = await build({ ...common, entryPoints: ['src/main.ts'], format: 'iife', legalComments: 'none' });
const style = await build({ ...common, entryPoints: ['src/style.css'], legalComments: 'none' });

const notices = readFileSync(join(here, 'THIRD_PARTY.md'), 'utf8').replaceAll('--', '- -');
const text = (bundle) => bundle.outputFiles[0].text.trim();
const page = readFileSync(join(here, 'src', 'page.html'), 'utf8')
  .replace('<!--NOTICES-->', () => `<!--\n${notices}-->`)
  .replace('/*STYLE*/', () => text(style))
  .replace('/*SCRIPT*/', () => text(script));
mkdirSync(dirname(target), { recursive: true });
writeFileSync(target, page);
console.log(`${target}: ${page.length} bytes`);
