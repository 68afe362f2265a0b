// What to look at first, told from the figures.
import { gapsInView } from './charts/timeline';
import type { Detail } from './detail';
import { HARD } from './events';
import { fixed, percent } from './format';
import type { Report, SignalReport } from './report';

export interface Hint {
  title: string;
  text: string;
  /** Id of the figure that shows it. */
  figure: string;
  signal?: string;
  satellite?: string;
}

function extreme(signals: SignalReport[], value: (s: SignalReport) => number | null, sign: number): SignalReport | null {
  let best: SignalReport | null = null;
  for (const s of signals) {
    const v = value(s);
    if (v !== null && (best === null || sign * v > sign * value(best)!)) best = s;
  }
  return best;
}

function median(values: number[]): number | null {
  if (values.length === 0) return null;
  const sorted = [...values].sort((a, b) => a - b);
  return sorted[sorted.length >> 1];
}

function slips(detail: Detail): Hint[] {
  const counts = new Map<string, { slips: number; jumps: number }>();
  for (const e of detail.events) {
    if (!HARD.has(e.kind)) continue;
    let c = counts.get(e.satellite);
    if (c === undefined) counts.set(e.satellite, (c = { slips: 0, jumps: 0 }));
    if (e.kind === 'jump') ++c.jumps;
    else ++c.slips;
  }
  if (counts.size === 0) return [{ title: 'No slips', text: 'No slip of the geometry-free phase and no code jump was found.', figure: 'timeline' }];
  const order = [...counts].sort(([, a], [, b]) => b.slips - a.slips || b.jumps - a.jumps);
  const [name, c] = order[0];
  const jumps = c.jumps > 0 ? ` and ${c.jumps} code jumps` : '';
  const next = order.length > 1 ? ` Next: ${order.slice(1, 4).map(([n, k]) => `${n} (${k.slips} slips, ${k.jumps} jumps)`).join(', ')}.` : '';
  return [{ title: `Most slips: ${name}`, text: `${c.slips} slips of the geometry-free phase${jumps}.${next}`, figure: 'timeline', satellite: name }];
}

function worstMultipath(report: Report): Hint[] {
  const worst = extreme(report.signals, (s) => s.mp_rms_m, 1);
  if (worst === null) return [];
  const middle = median(report.signals.flatMap((s) => (s.mp_rms_m === null ? [] : [s.mp_rms_m])));
  const key = `${worst.letter} ${worst.signal}`;
  return [
    {
      title: `Worst multipath: ${key}`,
      text: `RMS ${fixed(worst.mp_rms_m, 3)} m on ${worst.band ?? 'its band'}; the median of all signals is ${fixed(middle, 3)} m.`,
      figure: 'multipath',
      signal: key,
    },
  ];
}

function worstCompleteness(report: Report): Hint[] {
  const worst = extreme(report.signals, (s) => s.completeness_ratio, -1);
  if (worst === null) return [];
  const key = `${worst.letter} ${worst.signal}`;
  const missing = (worst.expected_epochs ?? 0) - (worst.observed_epochs ?? 0);
  if (missing <= 0) return [{ title: 'Nothing missing', text: 'Every signal was observed whenever it was expected.', figure: 'completeness' }];
  return [
    {
      title: `Least complete: ${key}`,
      text: `${percent(worst.completeness_ratio)} of the expected epochs; ${missing} are missing.`,
      figure: 'completeness',
      signal: key,
    },
  ];
}

function gaps(report: Report, detail: Detail): Hint[] {
  const hints: Hint[] = [];
  if (report.run.lost_epochs > 0) {
    hints.push({ title: `${report.run.lost_epochs} epochs lost`, text: 'No satellite at all was recorded in them: look for a break of the receiver or the line.', figure: 'timeline' });
  }
  const counts = detail.satellites.map((s) => ({ name: s.name, gaps: gapsInView(s, detail.cutoff) })).filter((s) => s.gaps.length > 0);
  if (counts.length > 0) {
    const all = counts.reduce((sum, s) => sum + s.gaps.length, 0);
    const most = counts.reduce((a, b) => (b.gaps.length > a.gaps.length ? b : a));
    hints.push({
      title: `${all} gaps while in view`,
      text: `${counts.length} satellites were lost above the cut-off, most often ${most.name} (${most.gaps.length} times).`,
      figure: 'timeline',
      satellite: counts.length === 1 ? most.name : undefined,
    });
  }
  return hints;
}

export function hintsOf(report: Report, detail: Detail): Hint[] {
  return [...slips(detail), ...worstMultipath(report), ...worstCompleteness(report), ...gaps(report, detail)];
}
