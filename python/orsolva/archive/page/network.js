// The network: counts, heat map of stations by days, list worst first, map.
const VIRIDIS = [[68, 1, 84], [59, 82, 139], [33, 145, 140], [94, 201, 98], [253, 231, 37]];
const BETTER = [0, 114, 178], WORSE = [213, 94, 0];
const NONE = 255;

const stations = data.stations;
/** Bytes of a figure: stations by days, 0 to 254 between its low and high, 255 without data. */
const cells = data.figures.map((figure) => Uint8Array.from(atob(figure.cells), (letter) => letter.charCodeAt(0)));

const valueAt = (f, station, day) => {
  const byte = cells[f][station * data.days + day];
  return byte === NONE ? NaN : data.figures[f].low + ((data.figures[f].high - data.figures[f].low) * byte) / 254;
};

function medianOf(f, station) {
  const known = [];
  for (let day = 0; day < data.days; ++day) if (cells[f][station * data.days + day] !== NONE) known.push(valueAt(f, station, day));
  known.sort((a, b) => a - b);
  return known.length ? known[known.length >> 1] : NaN;
}

function ramp(part) {
  const place = Math.max(0, Math.min(1, part)) * (VIRIDIS.length - 1), i = Math.min(VIRIDIS.length - 2, Math.floor(place));
  return VIRIDIS[i].map((from, channel) => Math.round(from + (VIRIDIS[i + 1][channel] - from) * (place - i)));
}

/** From better (blue) over the paper's colour to worse (orange). */
function diverging(part, middle) {
  const end = part > 0 ? WORSE : BETTER, share = Math.min(1, Math.abs(part));
  return middle.map((from, channel) => Math.round(from + (end[channel] - from) * share));
}

const rgb = (text) => (text.match(/[0-9a-f]{2}/gi) || []).slice(0, 3).map((part) => parseInt(part, 16));

function drawHeat(canvas, f, own) {
  const figure = data.figures[f], middle = rgb(css('--empty')), empty = css('--paper');
  const width = Math.max(1, Math.floor((canvas.parentElement.clientWidth - 92) / data.days)), high = stations.length > 400 ? 2 : stations.length > 60 ? 6 : 16;
  canvas.width = 90 + width * data.days;
  canvas.height = 18 + high * stations.length;
  Object.assign(canvas.dataset, { width, high });
  const paint = canvas.getContext('2d');
  paint.fillStyle = empty;
  paint.fillRect(0, 0, canvas.width, canvas.height);
  const bad = figure.rises_when_bad === false ? -1 : 1;
  for (let s = 0; s < stations.length; ++s) {
    const median = own ? medianOf(f, s) : 0, span = 2 * (figure.least + figure.share * Math.abs(median));
    for (let day = 0; day < data.days; ++day) {
      const value = valueAt(f, s, day);
      if (Number.isNaN(value)) continue;
      const color = own ? diverging((bad * (value - median)) / span, middle) : ramp((value - figure.low) / (figure.high - figure.low || 1));
      paint.fillStyle = `rgb(${color})`;
      paint.fillRect(90 + day * width, 18 + s * high, width, high);
    }
  }
  paint.fillStyle = css('--soft');
  paint.font = '11px system-ui, sans-serif';
  if (high >= 10) stations.forEach((station, s) => paint.fillText(station.name, 2, 18 + s * high + high - 4));
  let last = -100;
  for (let day = 0; day < data.days; ++day) {
    const text = dayText(data.first + day);
    if ((day === 0 || text.endsWith('-01')) && 90 + day * width - last > 70) paint.fillText(text, (last = 90 + day * width), 11);
  }
  canvas.setAttribute('aria-label', `Heat map of ${figure.title}: ${stations.length} stations by ${data.days} days. The figures are on the stations' pages.`);
}

function heatMap() {
  const figure = make('select', {}, ...data.figures.map((one, i) => make('option', { value: i, selected: one.key === 'snr' ? '' : null }, one.title)));
  const own = make('select', {}, make('option', { value: '1' }, 'against the station\'s own median'), make('option', { value: '' }, 'as it is'));
  const canvas = make('canvas', { role: 'img' }), readout = make('p', { id: 'readout', 'aria-live': 'polite' }, 'Point at a day to read it; press it to open the station.');
  const scale = make('span', { class: 'scale' });
  const at = (event) => {
    const box = canvas.getBoundingClientRect(), ratio = canvas.width / box.width;
    const day = Math.floor(((event.clientX - box.left) * ratio - 90) / canvas.dataset.width), s = Math.floor(((event.clientY - box.top) * ratio - 18) / canvas.dataset.high);
    return stations[s] && day < data.days ? { s, day } : null;
  };
  canvas.addEventListener('mousemove', (event) => {
    const place = at(event), one = data.figures[figure.value];
    if (!place || place.day < 0) return;
    const value = valueAt(figure.value, place.s, place.day);
    readout.textContent = `${stations[place.s].name}, ${dayText(data.first + place.day)}: ${Number.isNaN(value) ? 'no data' : withUnit(numberText(value, one.digits), one.unit)}`;
  });
  canvas.addEventListener('click', (event) => {
    const place = at(event);
    if (place) location.href = stations[place.s].page;
  });
  const draw = () => {
    const one = data.figures[figure.value];
    drawHeat(canvas, Number(figure.value), own.value === '1');
    const strip = make('canvas', { width: 120, height: 10 }), paint = strip.getContext('2d');
    for (let x = 0; x < 120; ++x) {
      paint.fillStyle = `rgb(${own.value ? diverging(x / 60 - 1, rgb(css('--empty'))) : ramp(x / 119)})`;
      paint.fillRect(x, 0, 1, 10);
    }
    const ends = own.value ? ['better', 'worse'] : [numberText(one.low, one.digits), withUnit(numberText(one.high, one.digits), one.unit)];
    scale.replaceChildren(ends[0], strip, ends[1]);
  };
  figure.addEventListener('change', draw);
  own.addEventListener('change', draw);
  redraw.push(draw);
  return make('section', { 'aria-labelledby': 'heat' }, make('h2', { id: 'heat' }, 'Stations by days'),
    make('div', { class: 'bar' }, make('label', {}, 'Figure ', figure), make('label', {}, 'Colour ', own), scale),
    readout, make('div', { class: 'scroll high' }, canvas));
}

function list() {
  const search = make('input', { type: 'search', placeholder: 'station' });
  const state = make('select', {}, make('option', { value: '' }, 'all states'), ...data.states.map((one) => make('option', { value: one }, one)));
  const box = make('div', { class: 'scroll high', id: 'stations' }), status = make('span', { role: 'status', class: 'soft' });
  const draw = () => {
    const shown = stations.filter((one) => one.name.includes(search.value.toUpperCase()) && (!state.value || one.state === state.value));
    status.textContent = `${shown.length} of ${stations.length} stations`;
    const heads = ['Station', 'State', 'Why', 'Last day', 'Days', ...data.figures.map((figure) => withUnit(figure.title, figure.unit))];
    box.replaceChildren(table('Worst first; figures are medians of the last seven days', heads, shown.map((one) => [
      make('a', { href: one.page }, one.name), stateMark(one.state), one.reason, one.last, String(one.runs),
      ...one.figures.map((value, f) => numberText(value, data.figures[f].digits))])));
  };
  search.addEventListener('input', draw);
  state.addEventListener('change', draw);
  draw();
  return make('section', { 'aria-labelledby': 'list' }, make('h2', { id: 'list' }, 'List, worst first'),
    make('div', { class: 'bar' }, make('label', {}, 'Search ', search), make('label', {}, 'State ', state), status), box);
}

/** Steps of many stations at the same time: their cause is none of the stations. */
function together() {
  if (!data.changes.length) return null;
  const rows = data.changes.map((change) => [dayText(change.day), change.figure, withUnit(change.size, change.unit), change.stations]);
  return make('section', { 'aria-labelledby': 'together' }, make('h2', { id: 'together' }, 'Changes of the whole network'),
    make('div', { class: 'scroll high' }, table('Last ones first; their cause is not at the stations', ['Day', 'Figure', 'Median step', 'Stations'], rows)));
}

/** Latitude over longitude, cut to where the stations are. */
function map() {
  const known = stations.filter((one) => one.latitude !== null);
  if (!known.length) return null;
  const range = (values, margin, limit) => {
    const low = Math.min(...values), high = Math.max(...values), grow = Math.max(margin, (high - low) * 0.08);
    return [Math.max(-limit, low - grow), Math.min(limit, high + grow)];
  };
  const [west, east] = range(known.map((one) => one.longitude), 2, 180), [south, north] = range(known.map((one) => one.latitude), 1.5, 90);
  const shape = Math.max(0.2, Math.cos((((south + north) / 2) * Math.PI) / 180)), box = make('div');
  redraw.push(() => box.replaceChildren(mapDrawing(known, [west, east, south, north], shape, Math.max(300, box.clientWidth))));
  return make('section', { 'aria-labelledby': 'map' }, make('h2', { id: 'map' }, 'Map'), box,
    make('p', { class: 'legend' }, ...data.states.filter((state) => stations.some((one) => one.state === state)).map(stateMark)));
}

function mapDrawing(known, [west, east, south, north], shape, width) {
  const height = Math.max(160, Math.min(520, (width * (north - south)) / ((east - west) * shape)));
  const x = (longitude) => ((longitude - west) / (east - west)) * width, y = (latitude) => ((north - latitude) / (north - south)) * height;
  const step = [1, 2, 5, 10, 20, 30, 60].find((one) => (east - west) / one <= 8) || 60, lines = [];
  for (let d = Math.ceil(west / step) * step; d <= east; d += step) lines.push(make('line', { class: 'grid', x1: x(d), x2: x(d), y1: 0, y2: height }), make('text', { x: x(d) + 3, y: height - 4 }, `${d}°`));
  for (let d = Math.ceil(south / step) * step; d <= north; d += step) lines.push(make('line', { class: 'grid', x1: 0, x2: width, y1: y(d), y2: y(d) }), make('text', { x: 3, y: y(d) - 3 }, `${d}°`));
  const dots = [...known].reverse().map((one) => make('a', { svg: true, href: one.page }, make('circle', { cx: x(one.longitude), cy: y(one.latitude), r: known.length > 300 ? 4 : 7, fill: STATE_COLORS[one.state], stroke: 'currentColor', 'stroke-width': 0.7 },
    make('title', {}, `${one.name}: ${one.state}`))));
  return make('svg', { viewBox: `0 0 ${width} ${height}`, width, height, role: 'group', 'aria-label': 'Map of the stations' }, make('rect', { width, height, fill: 'none', class: 'grid' }), ...lines, ...dots);
}

function main() {
  const counts = data.states.map((state) => [state, stations.filter((one) => one.state === state).length]).filter(([, count]) => count);
  const chips = make('ul', { class: 'chips' }, ...counts.map(([state, count]) => make('li', {}, make('b', {}, String(count)), stateMark(state))));
  document.getElementById('main').append(chips, list(), together() || '', heatMap(), map() || '');
  begin();
  window.orsolva = data;
}
main();
