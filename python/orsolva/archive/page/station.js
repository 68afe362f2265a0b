// One station: series with changes and equipment, what changed, its files and events.
const HEIGHT = 190, LEFT = 52, BOTTOM = 20, TOP = 8;

/** Round steps for three to seven lines. */
function steps(low, high) {
  const size = 10 ** Math.floor(Math.log10(high - low)), lines = [];
  const step = [2, 1, 0.5, 0.2].map((one) => one * size).find((one) => Math.floor(high / one) - Math.ceil(low / one) >= 2) ?? size / 10;
  for (let value = Math.ceil(low / step) * step; value <= high + step / 1e6; value += step) lines.push(value);
  return lines;
}

function rangeOf(series, figure) {
  const known = series.flatMap((one) => one.values);
  let low = Math.min(...known.slice(0, 1)), high = low;
  for (const value of known) {
    if (value < low) low = value;
    if (value > high) high = value;
  }
  const room = Math.max((high - low) * 0.06, figure.least / 2);
  return [low >= 0 ? Math.max(0, low - room) : low - room, high + room];
}

/** Lines of a series, broken where days are missing. */
function lineOf(one, x, y) {
  let path = '', before = null;
  one.days.forEach((day, i) => {
    path += `${before !== null && day - before <= 1 ? 'L' : 'M'}${x(day).toFixed(1)} ${y(one.values[i]).toFixed(1)}`;
    if (i + 1 === one.days.length || one.days[i + 1] - day > 1) path += 'h0.8';
    before = day;
  });
  return path;
}

function chart(figure, series, width) {
  const [low, high] = rangeOf(series, figure);
  const x = (day) => LEFT + ((day - data.first) / Math.max(1, data.last - data.first)) * (width - LEFT - 10);
  const y = (value) => TOP + ((high - value) / (high - low)) * (HEIGHT - TOP - BOTTOM);
  const parts = steps(low, high).flatMap((value) => [make('line', { class: 'grid', x1: LEFT, x2: width - 10, y1: y(value), y2: y(value) }), make('text', { x: LEFT - 4, y: y(value) + 4, 'text-anchor': 'end' }, String(Number(value.toPrecision(6))))]);
  const every = Math.max(1, Math.ceil(((data.last - data.first + 1) * 110) / (width - LEFT)));
  for (let day = data.first; day <= data.last; day += every) parts.push(make('text', { x: x(day), y: HEIGHT - 5, 'text-anchor': day === data.first ? 'start' : 'middle' }, dayText(day)));
  for (const [day, what] of data.equipment) parts.push(make('g', {}, make('title', {}, `${dayText(day)}: ${what}`), make('path', { d: `M${x(day) - 5} ${TOP - 6}h10l-5 8z`, fill: css('--ink') }), make('line', { x1: x(day), x2: x(day), y1: TOP, y2: HEIGHT - BOTTOM, stroke: css('--ink'), 'stroke-dasharray': '2 4' })));
  for (const change of data.changes) {
    if (!change.parts.some((part) => part.figure === figure.key)) continue;
    const color = change.explanation ? STATE_COLORS.explained : change.network ? STATE_COLORS.network : STATE_COLORS.failing;
    parts.push(make('g', {}, make('title', {}, change.text), make('line', { x1: x(change.day), x2: x(change.day), y1: TOP, y2: HEIGHT - BOTTOM, stroke: color, 'stroke-width': 2, 'stroke-dasharray': change.kind === 'drift' ? '8 3' : null })));
  }
  series.forEach((one, i) => parts.push(make('path', { d: lineOf(one, x, y), fill: 'none', stroke: SERIES_COLORS[i % SERIES_COLORS.length], 'stroke-width': 1.4, 'stroke-linejoin': 'round' })));
  return make('svg', { viewBox: `0 0 ${width} ${HEIGHT}`, width, height: HEIGHT, role: 'img', 'aria-label': `${figure.title} by days` }, ...parts);
}

function charts() {
  const section = make('section', { 'aria-labelledby': 'series' }, make('h2', { id: 'series' }, 'Series'));
  for (const figure of data.figures) {
    const series = data.series.filter((one) => one.figure === figure.key);
    if (!series.length) continue;
    const box = make('div');
    const legend = make('div', { class: 'legend' }, ...series.filter((one) => one.signal).map((one, i) => make('span', {}, make('i', { state: SERIES_COLORS[i % SERIES_COLORS.length] }), one.signal)));
    section.append(make('figure', {}, make('figcaption', {}, withUnit(figure.title, figure.unit && `(${figure.unit})`)), box, legend));
    redraw.push(() => box.replaceChildren(chart(figure, series, Math.max(320, section.clientWidth))));
  }
  section.append(make('p', { class: 'soft' }, 'Vertical lines: a change without (orange) and with (blue) new equipment, or of the whole network (violet); dashed where a drift begins. Triangles: new equipment by the header.'));
  return section;
}

const scrolled = (id, title, content) => make('section', { 'aria-labelledby': id }, make('h2', { id }, title), make('div', { class: 'scroll high' }, content));

function changes() {
  if (!data.changes.length) return make('section', {}, make('h2', {}, 'Changes'), make('p', {}, 'None.'));
  const rows = data.changes.map((change) => [change.last === null ? dayText(change.day) : `${dayText(change.day)} to ${dayText(change.last)}`, change.kind, change.why,
    make('ul', {}, ...change.parts.map((part) => make('li', {}, part.text)))]);
  return scrolled('changes', 'Changes', table('The first day of each, and the last of drifts that have ended', ['Day', 'Kind', 'Explanation', 'Series'], rows));
}

function equipment() {
  const rows = [[dayText(data.first), data.equipment_first], ...data.equipment.map(([day, what]) => [dayText(day), what])];
  return scrolled('equipment', 'Equipment', table('As the headers say', ['From', 'What'], rows));
}

function files() {
  const rows = [...data.runs].reverse().map((run) => [run.date, run.report ? make('a', { href: run.report }, run.name) : run.name, run.verdict || run.state, run.error || '', String(run.slips ?? '-')]);
  return scrolled('files', 'Files', table('Last ones first', ['Day', 'File', 'Verdict', 'Error', 'Slips'], rows));
}

function events() {
  if (!data.events.length) return make('section', {}, make('h2', {}, 'Events'), make('p', {}, 'None.'));
  const rows = data.events.map((one) => [one.time, one.satellite || 'receiver', one.kind, one.signals, one.sizes]);
  return scrolled('events', 'Events', table(`The last ${data.events.length}`, ['Time (GPS)', 'Satellite', 'Kind', 'Signals', 'Cycles'], rows));
}

function main() {
  document.getElementById('main').append(make('p', {}, stateMark(data.state), data.reason ? `: ${data.reason}` : ''), changes(), charts(), equipment(), files(), events());
  begin();
  window.orsolva = data;
}
main();
