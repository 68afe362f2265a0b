'use strict';
const data = JSON.parse(document.getElementById('data').textContent);
const DAY = 86400000;
// Okabe and Ito 2008: distinguishable with any colour vision. The word is always next to the colour.
const STATE_COLORS = { failing: '#d55e00', silent: '#8a929b', off: '#e69f00', changed: '#cc79a7', drifting: '#56b4e9', network: '#7f6fbf', explained: '#0072b2', good: '#009e73' };
const SERIES_COLORS = ['#0072b2', '#d55e00', '#009e73', '#cc79a7', '#e69f00', '#56b4e9', '#7f6fbf', '#8a929b'];

/** An element with attributes and children; texts are texts, never markup. */
function make(name, attributes = {}, ...children) {
  const spaces = ['svg', 'g', 'path', 'line', 'rect', 'circle', 'text', 'title', 'polyline'];
  const svg = spaces.includes(name) || attributes.svg;
  const element = svg ? document.createElementNS('http://www.w3.org/2000/svg', name) : document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (key === 'svg') continue;
    if (key.startsWith('on')) element.addEventListener(key.slice(2), value);
    else if (key === 'state') element.style.setProperty('--state', value);
    else if (value !== null && value !== undefined) element.setAttribute(key, value);
  }
  element.append(...children.filter((child) => child !== null));
  return element;
}

const dayText = (day) => new Date(day * DAY).toISOString().slice(0, 10);
const numberText = (value, digits) => (value === null || Number.isNaN(value) ? '-' : value.toFixed(digits));
// dB-Hz stays in one line.
const withUnit = (text, unit) => (unit ? `${text} ${unit.replace('-', '\u2011')}` : text);
const css = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

const redraw = [];
function setTheme(theme) {
  document.documentElement.dataset.theme = theme;
  for (const draw of redraw) draw();
}

function begin() {
  const button = document.getElementById('theme');
  button.addEventListener('click', () => setTheme(document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark'));
  setTheme(matchMedia('(prefers-color-scheme: dark)').matches ? 'dark' : 'light');
  let width = innerWidth;
  addEventListener('resize', () => {
    if (innerWidth === width) return;
    width = innerWidth;
    for (const draw of redraw) draw();
  });
}

/** A table with a caption; a cell is a text, a number with class, or an element. */
function table(caption, heads, rows) {
  const isNumber = (value) => typeof value === 'string' && /^-?[\d.]+$|^-$/.test(value);
  const hasNumbers = (place) => place > 0 && rows.length > 0 && rows.every((row) => isNumber(row[place]));
  const cell = (value, place) => {
    if (place === 0) return make('th', { scope: 'row' }, value);
    if (typeof value !== 'string') return make('td', { class: { SPAN: 'short', UL: 'wide' }[value.tagName] ?? null }, value);
    if (isNumber(value)) return make('td', { class: 'number' }, value);
    return make('td', { class: value.length > 24 ? 'wide' : /^[\d-]+$/.test(value) ? 'short' : null }, value);
  };
  return make('table', {}, make('caption', {}, make('span', {}, caption)), make('thead', {}, make('tr', {}, ...heads.map((head, place) => make('th', { scope: 'col', class: hasNumbers(place) ? 'number' : null }, head)))),
    make('tbody', {}, ...rows.map((row) => make('tr', {}, ...row.map(cell)))));
}

const stateMark = (state) => make('span', {}, make('span', { class: 'dot', state: STATE_COLORS[state] }), state);
