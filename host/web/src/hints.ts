// What to look at first, told from the figures.
import { gapsInView, holes, splitEvents } from './common';
import type { Detail } from './detail';
import { clock, fixed, percent } from './format';
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

interface SlipCount {
  name: string;
  slips: number;
  jumps: number;
}

function slipCounts(detail: Detail): { counts: SlipCount[]; commonTimes: number[] } {
  const { single, commonTimes } = splitEvents(detail);
  const counts = new Map<string, SlipCount>();
  for (const e of single) {
    let c = counts.get(e.satellite);
    if (c === undefined) counts.set(e.satellite, (c = { name: e.satellite, slips: 0, jumps: 0 }));
    if (e.kind === 'jump') ++c.jumps;
    else ++c.slips;
  }
  return { counts: [...counts.values()].sort((a, b) => b.slips - a.slips || b.jumps - a.jumps), commonTimes };
}

function many(count: number, one: string): string {
  return `${count} ${one}${count === 1 ? '' : 's'}`;
}

/** "C01, G05 and 3 more" */
function names(list: string[]): string {
  const most = 10;
  const more = list.length > most ? ` and ${list.length - most} more` : '';
  return list.slice(0, most).join(', ') + more;
}

function slips(detail: Detail): Hint[] {
  const { counts, commonTimes } = slipCounts(detail);
  const hints: Hint[] = [];
  const slipped = counts.filter((c) => c.slips > 0);
  const jumped = counts.filter((c) => c.jumps > 0);
  if (slipped.length > 0) {
    const most = slipped[0].slips;
    const first = slipped.filter((c) => c.slips === most).map((c) => c.name);
    const rest = slipped.filter((c) => c.slips < most).map((c) => `${c.name} (${c.slips})`);
    hints.push({
      title: `Most slips: ${first.length > 3 ? `${first.length} satellites` : first.join(', ')}`,
      text: `${many(most, 'slip')} of the geometry-free phase${first.length > 1 ? ` each: ${names(first)}` : ''}.${rest.length > 0 ? ` Then ${names(rest)}.` : ''}`,
      figure: 'timeline',
      satellite: first.length === 1 ? first[0] : undefined,
    });
  }
  if (jumped.length > 0) {
    const total = jumped.reduce((sum, c) => sum + c.jumps, 0);
    const order = [...jumped].sort((a, b) => b.jumps - a.jumps).map((c) => `${c.name} (${c.jumps})`);
    hints.push({ title: many(total, 'code jump'), text: `The multipath left its average on ${names(order)}.`, figure: 'timeline' });
  }
  if (commonTimes.length > 0) {
    const times = [...commonTimes].sort((a, b) => a - b).map(clock);
    hints.push({
      title: `Slips of the whole receiver`,
      text: `Many satellites slipped at once at ${names(times)}: look for an outage or a reset.`,
      figure: 'timeline',
    });
  }
  if (hints.length === 0) {
    hints.push({ title: 'No slips', text: 'No slip of the geometry-free phase and no code jump was found.', figure: 'timeline' });
  }
  return hints;
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
  const breaks = holes(detail);
  if (report.run.lost_epochs > 0) {
    const times = breaks.map((hole) => clock(hole.from));
    hints.push({
      title: `${many(report.run.lost_epochs, 'epoch')} lost`,
      text: `No satellite at all was recorded in them${times.length > 0 ? `: ${names(times)}` : ''}.`,
      figure: 'timeline',
    });
  }
  const counts = detail.satellites
    .map((s) => ({ name: s.name, gaps: gapsInView(detail, s, breaks).length }))
    .filter((s) => s.gaps > 0)
    .sort((a, b) => b.gaps - a.gaps);
  if (counts.length > 0) {
    hints.push({
      title: many(counts.reduce((sum, s) => sum + s.gaps, 0), 'gap') + ' while in view',
      text: `Single satellites were lost above the cut-off: ${names(counts.map((s) => `${s.name} (${s.gaps})`))}.`,
      figure: 'timeline',
      satellite: counts.length === 1 ? counts[0].name : undefined,
    });
  }
  return hints;
}

export function hintsOf(report: Report, detail: Detail): Hint[] {
  return [...slips(detail), ...worstMultipath(report), ...worstCompleteness(report), ...gaps(report, detail)];
}
